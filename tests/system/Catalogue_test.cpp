// The shipped catalogue as the library reads it: complete, valid, without traps, and with right numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "orv/core/Error.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/shared/Exception.h"
#include "orv/system/CSList.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"
#include "tests/support/ShippedCatalogue.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using shr::Vec2d;

class Catalogue : public test::ShippedCatalogue {
 protected:
  static std::string Shipped(const std::string& name) {
    return test::ReadBytes(test::CatalogueFolder() + "/" + name);
  }
  /// Without comments and empty lines.
  static std::string Entries(const std::string& text) {
    std::string entries;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
      if (!line.empty() && line[0] != ';') entries += line + "\n";
    }
    return entries;
  }
  static std::vector<const DatumDef*> Datums() {
    std::vector<const DatumDef*> datums;
    for (int i = ORVKnownDatumsList.First(); i <= ORVKnownDatumsList.Last(); ++i) {
      datums.push_back(ORVKnownDatumsList.Enum(i));
    }
    return datums;
  }
  static const DatumDef& Datum(const std::string& token) {
    return *ORVKnownDatumsList.Enum(ORVKnownDatumsList.FindByToken(token.c_str(), nullptr));
  }
};

// ---- the files -------------------------------------------------------------------------------------------

TEST_F(Catalogue, HoldsAtLeastTheSystemsThatTheDataSetAllows) {
  int geographic = 0, projected = 0;
  for (const ORVDef* const system : Systems()) {
    const bool plain = system->GetProjection()->GetMethod() == ProjectionMethodUnprojected;
    const bool angles = system->GetProjection()->GetMethod() == ProjectionMethodEquidistantCylindrical;
    (plain || angles ? geographic : projected)++;
  }
  EXPECT_GE(geographic, 545);
  EXPECT_GE(projected, 4980);
}

TEST_F(Catalogue, EverySystemAndDatumPassesItsCheck) {
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    std::string why;
    EXPECT_TRUE(ORVKnownSystemsList.Enum(pos)->Check(why)) << ORVKnownSystemsList.EnumToken(pos) << why;
  }
  for (const DatumDef* const datum : Datums()) EXPECT_EQ(datum->CheckParameters(), 0) << datum->GetToken();
}

TEST_F(Catalogue, EveryFileBeginsWithTheNotice) {
  for (const auto& file : std::filesystem::directory_iterator(test::CatalogueFolder())) {
    if (file.path().extension() != ".ocf") continue;
    const std::string text = test::ReadBytes(file.path().string());
    const std::string head = text.substr(0, text.find('{'));
    for (const char* const part :
         {"EPSG Geodetic Parameter Dataset v10.076", "International Association of Oil & Gas Producers",
          "https://epsg.org/terms-of-use.html", "provided as is, without warranty",
          "Entries whose token does not begin with EPSG are not EPSG data"}) {
      EXPECT_NE(head.find(part), std::string::npos) << file.path() << part;
    }
    for (const char c : text) EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << file.path() << int{c};
  }
}

// The files are what the library saves, so a catalogue that was changed in a program shows just the change.
TEST_F(Catalogue, IsTheTextThatTheLibrarySaves) {
  const test::TempFolder folder;
  ORVKnownMeridiansList.Save(folder.Path("meridian.ocf").c_str());
  ORVKnownAngularUnitsList.Save(folder.Path("angularunit.ocf").c_str());
  ORVKnownLinearUnitsList.Save(folder.Path("linearunit.ocf").c_str());
  ORVKnownDatumsList.Save(folder.Path("datum.ocf").c_str());
  ORVKnownSystemsList.Save(folder.Path("system.ocf").c_str());
  for (const char* const name :
       {"meridian.ocf", "angularunit.ocf", "linearunit.ocf", "datum.ocf", "system.ocf"}) {
    // Not EXPECT_EQ, which would print megabytes.
    EXPECT_TRUE(Entries(folder.Read(name)) == Entries(Shipped(name))) << name;
    const double size = static_cast<double>(Shipped(name).size());
    // The header alone, which Save does not write, is more than a tenth of the small files.
    const double header = static_cast<double>(Shipped(name).find("; Entry"));
    EXPECT_NEAR(static_cast<double>(folder.Read(name).size()), size - header, 0.1 * size) << name;
  }
}

// Save keeps four decimals of a radius, deliberately; radii that come from feet have more.
TEST_F(Catalogue, SavedEllipsoidsComeBackWithinTheDecimalsOfTheirFile) {
  const test::TempFolder folder;
  const std::string path = folder.Path("ellipsoid.ocf");
  ORVKnownEllipsoidsList.Save(path.c_str());
  EXPECT_NEAR(static_cast<double>(folder.Read("ellipsoid.ocf").size()),
              static_cast<double>(Shipped("ellipsoid.ocf").size()),
              0.1 * static_cast<double>(Shipped("ellipsoid.ocf").size()));
  EllipsoidList saved;
  ASSERT_TRUE(saved.Load(path.c_str(), true));
  ASSERT_EQ(saved.Count(), ORVKnownEllipsoidsList.Count());
  for (int i = saved.First(); i <= saved.Last(); ++i) {
    const EllipsoidDef &a = *saved.Enum(i), &b = *ORVKnownEllipsoidsList.Enum(i);
    EXPECT_STREQ(a.GetToken(), b.GetToken());
    EXPECT_STREQ(a.GetName(), b.GetName());
    EXPECT_EQ(a.GetPOSCNumber(), b.GetPOSCNumber());
    EXPECT_NEAR(a.GetMajorRadius(), b.GetMajorRadius(), 5.1e-5) << b.GetToken();
    EXPECT_NEAR(a.GetFlattening(), b.GetFlattening(), 1e-18) << b.GetToken();
  }
}

TEST_F(Catalogue, FindsDatumsByTheOldShortNames) {
  for (const char* const name :
       {"North American Datum 1927", "North American Datum 1983", "World Geodetic System 1984"}) {
    EXPECT_NE(ORVKnownDatumsList.FindByName(name, nullptr), 0) << name;
  }
  const DatumTarget kTargets[] = {DatumTargetWGS84, DatumTargetNAD27, DatumTargetNAD83,
                                  DatumTargetNAD27Canada, DatumTargetNAD83Canada};
  for (const DatumTarget target : kTargets) {
    const int found = ORVKnownDatumsList.FindSpecial(target, 0);
    EXPECT_NE(found, 0) << target;
    EXPECT_EQ(ORVKnownDatumsList.FindSpecial(target, found + 1), 0) << target;
  }
}

// ---- no two systems are taken for one --------------------------------------------------------------------

// The transformer drops both projectors when the projections compare equal, also where a datum step remains, which
// would then run on projected numbers.
TEST_F(Catalogue, NoTwoSystemsShareAProjectionButNotTheDatum) {
  std::vector<const ORVDef*> systems;
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    const auto* const system = static_cast<const ORVDef*>(ORVKnownSystemsList.Enum(pos));
    if (system->GetProjection()->GetMethod() != ProjectionMethodUnprojected) systems.push_back(system);
  }
  int shared = 0, traps = 0;
  for (const ORVDef* const a : systems) {
    for (const ORVDef* const b : systems) {
      if (a == b || !a->GetProjection()->Compare(*b->GetProjection(), nullptr)) continue;
      ++shared;
      if (a->GetDatum()->CompareParameters(b->GetDatum())) continue;
      if (++traps < 10) ADD_FAILURE() << a->GetToken() << " and " << b->GetToken();
    }
  }
  EXPECT_EQ(traps, 0);
  EXPECT_GT(shared, 1000);  // WGS 84 and what coincides with it
}

// Systems that would have shared one have another form of the same map.
TEST_F(Catalogue, OtherFormsOfAProjectionMoveNoPoint) {
  int tested = 0, changed = 0;
  double largest = 0.0;
  for (const test::Row& row : test::ReadTable(test::DataFolder() + "/catalogue_forms.tsv")) {
    ++changed;
    const std::string& code = row.at("code");
    const ORVDef& system = SystemOfCode(code);
    ProjectionParameters p = *system.GetProjection()->GetParameters();
    p.method = ProjectionDef::NameToMethod(row.at("method").c_str());
    p.Scale = test::Number(row, "scale");
    p.xOrg = test::Number(row, "xorg");
    p.yOrg = test::Number(row, "yorg");
    p.Lon0 = test::Number(row, "lon0");
    p.Lat0 = test::Number(row, "lat0");
    p.Lat1 = test::Number(row, "lat1");
    p.Lat2 = test::Number(row, "lat2");
    p.K0 = test::Number(row, "kscale");
    p.bSouth = row.at("bsouth") == "1";
    const ProjectionDef nominal(p);
    EXPECT_FALSE(nominal.Compare(*system.GetProjection(), nullptr)) << code;
    ++tested;
    const std::vector<Vec2d> at = {{test::Number(row, "lon"), test::Number(row, "lat")}};
    std::vector<Vec2d> a = at, b = at;
    Projector(nominal).TransformForward(a);
    Projector(*system.GetProjection()).TransformForward(b);
    // In metres, also for feet and degrees.
    const double moved = std::hypot(a[0].x - b[0].x, a[0].y - b[0].y) / p.Scale;
    EXPECT_LT(moved, 1e-6) << system.GetToken();
    largest = std::max(largest, moved);
  }
  RecordProperty("largest_move_micrometres", std::to_string(largest * 1e6));
  EXPECT_GT(tested, 900);
  EXPECT_LT(largest, 1e-6);
}

// ---- ways between datums ---------------------------------------------------------------------------------

struct Plan {
  int code = 0;  // of the failure, or 0
  double milliseconds = 0.0;
};

/// The best time of three, so that a busy machine does not count.
Plan PlanOf(const DatumDef& from, const DatumDef& to) {
  Plan plan;
  for (int run = 0; run < 3; ++run) {
    DatumConverter converter(&from, &to);
    const auto start = std::chrono::steady_clock::now();
    try {
      converter.Initialize();
    } catch (const shr::Exception& e) {
      plan.code = e.Code();
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    plan.milliseconds = run == 0 ? took.count() : std::min(plan.milliseconds, took.count());
  }
  return plan;
}

TEST_F(Catalogue, EveryDatumIsPlannedToWgs84AndBackButForThese) {
  const DatumDef& wgs84 = Datum("EPSG:6326");
  // A grid and a set of equations that cannot run backward, and no other datum of their number to stand in; and
  // grids that lead to NAD83, which the search does not try from WGS 84, for datums that have no other way.
  const std::set<std::string> oneWay = {"ORV:NTV2-6267", "DMA:MRE-NAD27CANADA", "ORV:NADCON-6136",
                                        "ORV:NADCON-6137", "ORV:NADCON-6138"};
  int unknown = 0;
  double slowest = 0.0;
  for (const DatumDef* const datum : Datums()) {
    const Plan there = PlanOf(*datum, wgs84), back = PlanOf(wgs84, *datum);
    slowest = std::max({slowest, there.milliseconds, back.milliseconds});
    if (datum->IsUnknown()) {  // no conversion in the data set
      ++unknown;
      EXPECT_EQ(there.code, 1032) << datum->GetToken();
      EXPECT_EQ(back.code, 1032) << datum->GetToken();
      EXPECT_STREQ(datum->GetComment(), "no conversion to WGS 84 in EPSG");
      continue;
    }
    EXPECT_EQ(there.code, 0) << datum->GetToken();
    EXPECT_EQ(back.code, oneWay.count(datum->GetToken()) ? 1033 : 0) << datum->GetToken();
  }
  EXPECT_EQ(unknown, 68);
  RecordProperty("slowest_plan_ms", std::to_string(slowest));
}

// Pairs without a way are searched to the end, through all datums and five levels deep.
TEST_F(Catalogue, PairsWithoutAWayAreGivenUpSoon) {
  double slowest = 0.0, sum = 0.0;
  int count = 0;
  for (const char* const token : {"ORV:NTV2-6267", "DMA:MRE-NAD27CANADA", "ORV:NADCON-6138"}) {
    for (const DatumDef* const datum : Datums()) {
      if (datum->IsUnknown()) continue;
      const Plan plan = PlanOf(*datum, Datum(token));
      slowest = std::max(slowest, plan.milliseconds);
      sum += plan.milliseconds;
      ++count;
    }
  }
  RecordProperty("slowest_plan_ms", std::to_string(slowest));
  RecordProperty("mean_plan_ms", std::to_string(sum / count));
  // 0.04 ms at most are seen; the bound leaves room for sanitizers.
  EXPECT_LT(slowest, 20.0);
}

// ---- numbers ---------------------------------------------------------------------------------------------

struct Example {
  const char* token;
  double lon, lat;
  double x, y;
  double tolerance;
  const char* source;
};

double Dms(double degrees, double minutes, double seconds) {
  return std::copysign(std::abs(degrees) + minutes / 60.0 + seconds / 3600.0, degrees);
}

// Worked examples of IOGP Guidance Note 7-2 [EPSG9], one for each way of converting parameters.
TEST_F(Catalogue, WorkedExamplesOfTheMethods) {
  const Example kExamples[] = {
      {"EPSG:27700", 0.5, 50.5, 577274.99, 69740.50, 0.01, "Transverse Mercator, OSGB 1936"},
      {"EPSG:30200", -62.0, 10.0, 66644.94, 82536.22, 0.01, "Cassini-Soldner, Trinidad Grid, links"},
      {"ORV:3002", 120.0, -3.0, 5009726.58, 569150.82, 0.01, "Mercator A, Makassar / NEIEZ"},
      {"EPSG:3388", 53.0, 53.0, 165704.29, 5171848.07, 0.01, "Mercator B, Caspian Sea"},
      {"EPSG:3857", -Dms(100, 20, 0), Dms(24, 22, 54.433), -11169055.58, 2800000.00, 0.01, "Pseudo Mercator"},
      {"EPSG:5041", 44.0, 73.0, 3320416.75, 632668.43, 0.01, "Polar Stereographic A, UPS North"},
      {"EPSG:3032", 120.0, -75.0, 7255380.79, 7053389.56, 0.01, "Polar Stereographic B"},
      {"EPSG:2985", Dms(140, 4, 17.040), -Dms(66, 36, 18.820), 303169.52, 244055.72, 0.01,
       "Polar Stereographic C"},
      {"ORV:24200", -Dms(76, 56, 37.26), Dms(17, 55, 55.80), 255966.58, 142493.51, 0.01,
       "Lambert 1SP, Jamaica"},
      {"EPSG:32040", -96.0, 28.5, 2963503.91, 254759.80, 0.01,
       "Lambert 2SP, Texas South Central, US survey feet"},
      {"ORV:31300", Dms(5, 48, 26.533), Dms(50, 40, 46.461), 251763.20, 153034.13, 0.01,
       "Lambert 2SP Belgium"},
      {"ORV:6201", -Dms(83, 10, 0), 43.75, 2308335.75, 160210.48, 0.01,
       "Lambert 2SP Michigan, US survey feet"},
  };
  for (const Example& row : kExamples) {
    SCOPED_TRACE(row.source);
    const ORVDef& system = System(row.token);
    std::vector<Vec2d> point = {{row.lon, row.lat}};
    Projector(*system.GetProjection()).TransformForward(point);
    EXPECT_NEAR(point[0].x, row.x, row.tolerance);
    EXPECT_NEAR(point[0].y, row.y, row.tolerance);
  }
}

// NTF (Paris) in grads: the meridian of Paris is 2.5969213 grads from Greenwich, and 0.9 degrees are one grad.
TEST_F(Catalogue, SystemsOfAnglesGiveTheirOwnAngles) {
  const ORVDef &greenwich = System("EPSG:4275"), &paris = System("ORV:4807");
  CSTransformer there(&greenwich, &paris, false, false), back(&paris, &greenwich, false, false);
  there.Initialize();
  back.Initialize();
  const std::vector<Vec2d> points = {{2.33722917, 45.0}, {-4.5, 48.6}};
  std::vector<Vec2d> grads, degrees;
  there.Transform(points, grads);
  EXPECT_NEAR(grads[0].x, 0.0, 1e-13);
  EXPECT_NEAR(grads[0].y, 50.0, 1e-13);
  EXPECT_NEAR(grads[1].x, -5.0 - 2.5969213, 1e-13);
  EXPECT_NEAR(grads[1].y, 54.0, 1e-13);
  back.Transform(grads, degrees);
  for (size_t i = 0; i < points.size(); ++i) {
    EXPECT_NEAR(degrees[i].x, points[i].x, 1e-13);
    EXPECT_NEAR(degrees[i].y, points[i].y, 1e-13);
  }
}

}  // namespace
}  // namespace orv
