#include "orv/datum/DatumMethods.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Marker.h"
#include "orv/datum/RegressionTables.h"
#include "tests/datum/Datums.h"

namespace orv {
namespace {

using internal::DatumStep;
using internal::kMarker;
using shr::Vec2d;
using test::Clarke66;
using test::International;
using test::Wgs84;

DatumParameters Parameters(DatumMethod method, const EllipsoidDef& ellipsoid,
                           const std::vector<double>& values) {
  DatumParameters p;
  p.method = method;
  p.target = DatumTargetWGS84;
  p.ellipsoid = ellipsoid;
  double* const fields[] = {&p.dx, &p.dy, &p.dz, &p.rx, &p.ry, &p.rz, &p.k};
  for (size_t i = 0; i + 1 < values.size(); ++i) *fields[i] = values[i];
  p.pmShift = values.back();
  return p;
}

/// Runs a step that must succeed on one point.
Vec2d Shifted(const DatumParameters& p, const EllipsoidDef& target, Vec2d point) {
  EXPECT_EQ(nullptr, DatumStep(p, target, internal::Grids()).Run(&point, 1));
  return point;
}

// ---- Molodensky and Bursa-Wolf ---------------------------------------------------------------------------

const DatumParameters kMolodenskyA =
    Parameters(DatumMethodMolodensky, International(), {-87.5, -98.25, -121.125, 2.5});
const DatumParameters kMolodenskyB =
    Parameters(DatumMethodMolodensky, Clarke66(), {-8.0, 160.0, 176.0, -17.625});
const DatumParameters kBursaWolfA =
    Parameters(DatumMethodBursaWolf, International(), {-87.5, -98.25, -121.125, 1.25, -2.5, 0.75, 5.5, 2.5});
const DatumParameters kBursaWolfB =
    Parameters(DatumMethodBursaWolf, Clarke66(), {565.25, 50.0, 465.5, -15.5, 12.25, -30.0, -25.0, -17.625});

struct ShiftRow {
  const DatumParameters* parameters;
  bool inverse;
  double lon, lat;        // input, degrees
  double newLon, newLat;  // 50 digits: datum_methods_expected.py
};

const ShiftRow kShifts[] = {
    // clang-format off
// rows begin
    {&kMolodenskyA, false, 10.5, 52.25, 12.9988865185292251, 52.2493008149526858},
    {&kMolodenskyA, false, -73.125, -33.5, -70.6262390321674934, -33.4998365599478177},
    {&kMolodenskyA, false, 179.75, 71.0, 182.252606091434875, 70.9983675028252424},
    {&kMolodenskyA, false, 0.0, 0.0, 2.49915256458434203, -0.00109540562052112082},
    {&kMolodenskyA, true, 10.5, 52.25, 8.00124630593535476, 52.2507491479548395},
    {&kMolodenskyA, true, -73.125, -33.5, -75.6238253359714023, -33.5002121208525876},
    {&kMolodenskyA, true, 179.75, 71.0, 177.247184812524892, 71.0015596153405625},
    {&kMolodenskyA, true, 0.0, 0.0, -2.49908395930093991, 0.00109541752908156647},
    {&kMolodenskyB, false, 10.5, 52.25, -7.12268991434354715, 52.2490939816650442},
    {&kMolodenskyB, false, -73.125, -33.5, -90.7501086219258621, -33.4975003916211061},
    {&kMolodenskyB, false, 179.75, 71.0, 162.1208786747606, 70.9987165721154076},
    {&kMolodenskyB, false, 0.0, 0.0, -17.6236519390014172, 0.00159179199273070583},
    {&kMolodenskyB, true, 10.5, 52.25, 28.1228786288906994, 52.2515892059375528},
    {&kMolodenskyB, true, -73.125, -33.5, -55.5009043229450896, -33.5026164134517326},
    {&kMolodenskyB, true, 179.75, 71.0, 197.37926640859391, 71.0004625036865571},
    {&kMolodenskyB, true, 0.0, 0.0, 17.6236084047996947, -0.00159169027961490774},
    {&kBursaWolfA, false, 10.5, 52.25, 12.9988611942753025, 52.2500533076381188},
    {&kBursaWolfA, false, -73.125, -33.5, -70.6255242587550037, -33.499933043502734},
    {&kBursaWolfA, false, 179.75, 71.0, -177.746263678686728, 70.9976629670062948},
    {&kBursaWolfA, false, 0.0, 0.0, 2.4993608933901651, -0.000381666873636022931},
    {&kBursaWolfA, true, 10.5, 52.25, 8.0013550420442066, 52.2500154188402156},
    {&kBursaWolfA, true, -73.125, -33.5, -75.6245326038077553, -33.5000487497588813},
    {&kBursaWolfA, true, 179.75, 71.0, 177.245879542156724, 71.0022335840153631},
    {&kBursaWolfA, true, 0.0, 0.0, -2.49929229682017396, 0.000412218465953919356},
    {&kBursaWolfB, false, 10.5, 52.25, -7.12555835721480358, 52.2437154243999758},
    {&kBursaWolfB, false, -73.125, -33.5, -90.7544574462006781, -33.4904565090914813},
    {&kBursaWolfB, false, 179.75, 71.0, 162.095741801336751, 71.0063783210540026},
    {&kBursaWolfB, false, 0.0, 0.0, -17.6313672457690198, 0.00225725670485040241},
    {&kBursaWolfB, true, 10.5, 52.25, 28.133777841198336, 52.2582382953615941},
    {&kBursaWolfB, true, -73.125, -33.5, -55.4935369845712656, -33.5084805434761948},
    {&kBursaWolfB, true, 179.75, 71.0, -162.611081862399891, 70.9907473745331853},
    {&kBursaWolfB, true, 0.0, 0.0, 17.6344435154845066, 0.000367675173946064205},
    // rows end
    // clang-format on
};

TEST(DatumMethods, ShiftsAgreeWithFiftyDigits) {
  for (const ShiftRow& row : kShifts) {
    SCOPED_TRACE(::testing::Message()
                 << "method " << row.parameters->method << " dx " << row.parameters->dx << " at " << row.lon
                 << " " << row.lat << (row.inverse ? " inverse" : ""));
    DatumParameters p = *row.parameters;
    p.inverse = row.inverse;
    const Vec2d out = Shifted(p, Wgs84(), {row.lon, row.lat});
    // A few units in the last place of 180 degrees; 1e-13 degrees are 1e-8 m.
    EXPECT_NEAR(row.newLon, out.x, 1.5e-13);
    EXPECT_NEAR(row.newLat, out.y, 1.5e-13);
  }
}

TEST(DatumMethods, BursaWolfGivesThePublishedExample) {
  // [EPSG9], method 9606: WGS 72 to WGS 84, given to a thousandth of a second.
  const EllipsoidDef wgs72(6378135.0, 1 / 298.26, "WGS72", nullptr, nullptr, 0);
  const DatumParameters p =
      Parameters(DatumMethodBursaWolf, wgs72, {0.0, 0.0, 4.5, 0.0, 0.0, 0.554, 0.219, 0.0});
  const Vec2d out = Shifted(p, Wgs84(), {4.0, 55.0});
  EXPECT_NEAR(4.0 + 0.554 / 3600, out.x, 0.0005 / 3600);
  EXPECT_NEAR(55.0 + 0.090 / 3600, out.y, 0.0005 / 3600);
}

TEST(DatumMethods, MolodenskyGivesThePublishedExample) {
  // [EPSG9], method 9603: a North Sea point from WGS 84 to ED50, at 73 m, by geocentric translation.  Height
  // and method move it by less than 0.001" in each coordinate.
  DatumParameters p = Parameters(DatumMethodMolodensky, International(), {-84.87, -96.49, -116.95, 0.0});
  p.inverse = true;
  const Vec2d out = Shifted(p, Wgs84(), {2.0 + 7.0 / 60 + 46.38 / 3600, 53.0 + 48.0 / 60 + 33.82 / 3600});
  EXPECT_NEAR(2.0 + 7.0 / 60 + 51.477 / 3600, out.x, 0.0015 / 3600);
  EXPECT_NEAR(53.0 + 48.0 / 60 + 36.565 / 3600, out.y, 0.0015 / 3600);
}

TEST(DatumMethods, MolodenskyWithoutParametersReturnsTheBits) {
  const DatumParameters p = Parameters(DatumMethodMolodensky, Wgs84(), {0.0, 0.0, 0.0, 0.0});
  for (const Vec2d point : {Vec2d(0.1, 0.3), Vec2d(-179.3, 89.7), Vec2d(1.0 / 3, -2.0 / 3)}) {
    const Vec2d out = Shifted(p, Wgs84(), point);
    EXPECT_EQ(point.x, out.x);
    EXPECT_EQ(point.y, out.y);
  }
}

TEST(DatumMethods, MolodenskyAtAPoleIsFinite) {
  // The cosine of 90 degrees is 6e-17: the longitude shift is huge, but no marker.
  const Vec2d out = Shifted(kMolodenskyA, Wgs84(), {10.0, 90.0});
  EXPECT_TRUE(std::isfinite(out.x));
  EXPECT_GT(std::fabs(out.x), 1e10);
  EXPECT_NE(kMarker, out.x);
}

TEST(DatumMethods, TheInverseOfBursaWolfIsApproximate) {
  DatumParameters back = kBursaWolfB;
  back.inverse = true;
  back.pmShift = 0.0;
  DatumParameters forth = kBursaWolfB;
  forth.pmShift = 0.0;
  const Vec2d point(10.5, 52.25);
  const Vec2d out = Shifted(back, Wgs84(), Shifted(forth, Wgs84(), point));
  const double metres =
      std::hypot((out.x - point.x) * std::cos(internal::ToRadians(point.y)), out.y - point.y) * 111195;
  // What is left is of the second order: rotations of 36" (1.7e-4) times 730 m and 6400 km, here some
  // decimetres.
  EXPECT_GT(metres, 0.01);
  EXPECT_LT(metres, 1.0);
}

TEST(DatumMethods, ShiftsRefuseAnEllipsoidWithoutRadius) {
  const EllipsoidDef none;
  const struct {
    DatumMethod method;
    const char* message;
  } cases[] = {{DatumMethodMolodensky, "Molodensky datum conversion failed."},
               {DatumMethodBursaWolf, "Bursa-Wolf datum conversion failed."}};
  for (const auto& row : cases) {
    DatumParameters p = kBursaWolfA;
    p.method = row.method;
    for (const bool inverse : {false, true}) {
      p.inverse = inverse;
      Vec2d point(10.0, 20.0);
      EXPECT_STREQ(row.message, DatumStep(p, none, internal::Grids()).Run(&point, 1));
      EXPECT_EQ(10.0, point.x);
      EXPECT_EQ(20.0, point.y);
      DatumParameters without = p;
      without.ellipsoid.Flush();
      EXPECT_STREQ(row.message, DatumStep(without, Wgs84(), internal::Grids()).Run(&point, 1));
      EXPECT_NE(nullptr, DatumStep(without, Wgs84(), internal::Grids()).Prepare());
    }
    EXPECT_EQ(nullptr, DatumStep(p, Wgs84(), internal::Grids()).Prepare());
  }
}

TEST(DatumMethods, MethodNoneDoesNothing) {
  for (const DatumMethod method : {DatumMethodNone, DatumMethodUnknown}) {
    DatumParameters p = kBursaWolfA;
    p.method = method;
    const Vec2d out = Shifted(p, EllipsoidDef(), {10.5, 20.5});
    EXPECT_EQ(10.5, out.x);  // the prime meridian shift is ignored
    EXPECT_EQ(20.5, out.y);
  }
}

// ---- regression equations --------------------------------------------------------------------------------

struct RegionRow {
  const char* name;
  double lat, lon;  // origin, degrees
  size_t latTerms, lonTerms;
  double constLat, constLon;      // arc-seconds
  double checkLat, checkLon;      // a point of the printed examples, degrees
  double shiftLat, shiftLon;      // its shift, arc-seconds, four decimals
  double printedLat, printedLon;  // as printed, two decimals; NAN where the print is not known
};

// Check points and printed values: data/generate/regression_equations.json, "check_point".
const RegionRow kRegions[] = {
    {"AGD1966", -27, 134, 17, 19, 5.19238, 4.6925, -17.0091055556, 144.1936805556, 5.4804, 3.9223, 5.48,
     3.92},
    {"AGD1984", -27, 134, 17, 17, 5.20604, 4.67877, -20.6335194444, 144.4081361111, 5.5048, 4.1092, 5.50,
     4.11},
    {"CAMPO", -35, -64, 17, 15, 1.6747, -2.93117, -29.7960222222, -58.1272777778, 1.9525, -1.9629, 1.95,
     -1.96},
    {"CORREGO", -15, -50, 17, 21, -0.84315, -1.46053, -20.4836166667, -54.7869916667, -1.0300, -2.4288, NAN,
     NAN},
    {"ED50", 52, 10, 15, 30, -2.65261, -4.13447, 46.6952472222, 13.915025, -3.0807, -3.4857, -3.08, -3.49},
    {"NAD27CANADA", 60, -100, 43, 38, 0.79395, -1.36099, 54.4357416667, -110.2840027778, 0.2889, -3.1562, NAN,
     NAN},
    {"NAD27CONUS", 37, -95, 23, 23, 0.16984, -0.88437, 34.7857869444, -86.5811597222, 0.3555, 0.0798, 0.36,
     0.08},
    {"SA69", -20, -60, 33, 23, -1.67504, -1.77967, -31.9427638889, -65.1051833333, -1.3559, -2.1582, -1.36,
     -2.16},
};

DatumParameters Region(int type) {
  DatumParameters p;
  p.method = DatumMethodMRE;
  p.target = DatumTargetWGS84;
  p.mreType = static_cast<DatumMREType>(type);
  return p;
}

class RegressionTables : public ::testing::TestWithParam<int> {
 protected:
  const RegionRow& Row() const { return kRegions[GetParam() - 1]; }
};

TEST_P(RegressionTables, CheckPointIsThePublishedOne) {
  const RegionRow& row = Row();
  const Vec2d out = Shifted(Region(GetParam()), EllipsoidDef(), {row.checkLon, row.checkLat});
  const double lat = (out.y - row.checkLat) * 3600;
  const double lon = (out.x - row.checkLon) * 3600;
  EXPECT_NEAR(row.shiftLat, lat, 0.00006);
  EXPECT_NEAR(row.shiftLon, lon, 0.00006);
  if (std::isnan(row.printedLat)) return;
  EXPECT_NEAR(row.printedLat, lat, 0.0051);
  EXPECT_NEAR(row.printedLon, lon, 0.0051);
}

TEST_P(RegressionTables, OriginShiftsByTheConstantTerms) {
  const RegionRow& row = Row();
  const Vec2d out = Shifted(Region(GetParam()), EllipsoidDef(), {row.lon, row.lat});
  EXPECT_EQ(row.lat + row.constLat / 3600, out.y);
  EXPECT_EQ(row.lon + row.constLon / 3600, out.x);
}

TEST_P(RegressionTables, TermsAreWhole) {
  const RegionRow& row = Row();
  const Regression& region = *internal::RegressionOf(static_cast<DatumMREType>(GetParam()));
  EXPECT_EQ(row.lat, region.phim);
  EXPECT_EQ(row.lon, region.lambdam);
  EXPECT_EQ(row.latTerms, region.latCount);
  EXPECT_EQ(row.lonTerms, region.lonCount);
  EXPECT_STREQ(row.name, DatumDef::MRETypeToName(static_cast<DatumMREType>(GetParam())));
  // Deliberate: CAMPO's coefficients belong to three times the factor.
  EXPECT_EQ(GetParam() == 3 ? 3 * 0.05235988 : 0.05235988, region.k);
  const std::pair<const RegressionTerm*, size_t> tables[] = {{region.lat, region.latCount},
                                                             {region.lon, region.lonCount}};
  for (const auto& [terms, count] : tables) {
    std::set<std::pair<int, int>> powers;
    for (size_t i = 0; i < count; ++i) {
      EXPECT_TRUE(terms[i].u >= 0 && terms[i].u <= 9 && terms[i].v >= 0 && terms[i].v <= 9) << i;
      EXPECT_TRUE(powers.insert({terms[i].u, terms[i].v}).second)
          << "twice: " << terms[i].u << " " << terms[i].v;
      EXPECT_NE(0.0, terms[i].c);
    }
    EXPECT_EQ(1u, powers.count({0, 0}));
  }
}

TEST_P(RegressionTables, TheInverseFlagHasNoEffect) {
  const RegionRow& row = Row();
  DatumParameters p = Region(GetParam());
  const Vec2d forward = Shifted(p, EllipsoidDef(), {row.checkLon, row.checkLat});
  p.inverse = true;
  const Vec2d flagged = Shifted(p, EllipsoidDef(), {row.checkLon, row.checkLat});
  EXPECT_EQ(forward.x, flagged.x);
  EXPECT_EQ(forward.y, flagged.y);
}

INSTANTIATE_TEST_SUITE_P(Regions, RegressionTables, ::testing::Range(1, 9),
                         [](const auto& region) { return std::string(kRegions[region.param - 1].name); });

TEST(DatumMethods, ARegionOutsideTheTableHasNoEquations) {
  for (const int type : {-1, 0, 9}) {
    EXPECT_EQ(nullptr, internal::RegressionOf(static_cast<DatumMREType>(type)));
    Vec2d point(10.0, 20.0);
    EXPECT_STREQ("Datum has invalid MRE special code.",
                 DatumStep(Region(type), EllipsoidDef(), internal::Grids()).Run(&point, 1));
    EXPECT_EQ(10.0, point.x);
  }
}

// ---- grids -----------------------------------------------------------------------------------------------

/// Grids that answer as they are told.
class FakeGrids : public internal::GridShift {
 public:
  bool nadcon = true;
  internal::NTv2Status load = internal::NTv2Done;
  std::vector<internal::NTv2Status> statuses;  // of the points in turn; NTv2Done behind the last
  std::vector<bool> inverses;
  std::vector<Vec2d> seen;

  bool LoadNadcon() override { return nadcon; }
  void ShiftNadcon(Vec2d* points, size_t count, bool inverse) override {
    inverses.push_back(inverse);
    for (size_t i = 0; i < count; ++i) {
      if (!internal::IsMarked(points[i])) points[i] = {points[i].x + 1, points[i].y + 2};
    }
  }
  internal::NTv2Status LoadNTv2() override { return load; }
  internal::NTv2Status ShiftNTv2(Vec2d* points, size_t count, bool inverse) override {
    for (size_t i = 0; i < count; ++i) {
      if (internal::IsMarked(points[i])) continue;
      inverses.push_back(inverse);
      seen.push_back(points[i]);
      const size_t turn = seen.size() - 1;
      const internal::NTv2Status status = turn < statuses.size() ? statuses[turn] : internal::NTv2Done;
      if (status == internal::NTv2Done) points[i] = {points[i].x * 2, points[i].y * 3};
      if (status != internal::NTv2Done && status != internal::NTv2NoShift) return status;
    }
    return internal::NTv2Done;
  }
};

DatumParameters Grid(DatumMethod method, bool inverse = false) {
  DatumParameters p;
  p.method = method;
  p.target = DatumTargetNAD83;
  p.inverse = inverse;
  return p;
}

TEST(DatumMethods, NadconPassesTheFlagOn) {
  FakeGrids grids;
  Vec2d points[] = {{10, 20}, {kMarker, 20}};
  for (const bool inverse : {false, true}) {
    EXPECT_EQ(nullptr, DatumStep(Grid(DatumMethodNADCON, inverse), EllipsoidDef(), grids).Run(points, 2));
  }
  EXPECT_EQ((std::vector<bool>{false, true}), grids.inverses);
  EXPECT_EQ(12.0, points[0].x);
  EXPECT_EQ(24.0, points[0].y);
  EXPECT_EQ(20.0, points[1].y);
}

TEST(DatumMethods, NadconWithoutGridsFails) {
  FakeGrids grids;
  grids.nadcon = false;
  Vec2d point(10, 20);
  EXPECT_STREQ("NADCON grid shift files missing or corrupt.",
               DatumStep(Grid(DatumMethodNADCON), EllipsoidDef(), grids).Run(&point, 1));
  EXPECT_EQ(10.0, point.x);
}

TEST(DatumMethods, NTv2WorksInRadiansAndSkipsMarkedPoints) {
  FakeGrids grids;
  Vec2d points[] = {{10, 20}, {kMarker, 20}, {-30, kMarker}, {30, -40}};
  EXPECT_EQ(nullptr, DatumStep(Grid(DatumMethodNTV2, true), EllipsoidDef(), grids).Run(points, 4));
  ASSERT_EQ(2u, grids.seen.size());
  EXPECT_EQ((std::vector<bool>{true, true}), grids.inverses);
  EXPECT_DOUBLE_EQ(10 * 3.141592653589793 / 180, grids.seen[0].x);
  EXPECT_DOUBLE_EQ(-40 * 3.141592653589793 / 180, grids.seen[1].y);
  EXPECT_NEAR(20.0, points[0].x, 1e-13);
  EXPECT_NEAR(60.0, points[0].y, 1e-13);
  EXPECT_NEAR(60.0, points[3].x, 1e-13);
  EXPECT_NEAR(-120.0, points[3].y, 1e-13);
  EXPECT_EQ(kMarker, points[1].x);
  EXPECT_EQ(20.0, points[1].y);
  EXPECT_EQ(-30.0, points[2].x);
  EXPECT_EQ(kMarker, points[2].y);
}

struct NTv2Case {
  internal::NTv2Status status;
  const char* message;
};
const char* const kBadFile =
    "NTV2 grid shift file is incomplete or contains bad data (possibly corrupted during download?)";
const NTv2Case kNTv2Cases[] = {
    {internal::NTv2NoName, "NTV2 datum conversion failed."},
    {internal::NTv2BadGeometry, "NTV2 datum conversion failed."},
    {internal::NTv2NotPresent, "NTV2 grid shift file not present."},
    {internal::NTv2ReadShort, kBadFile},
    {internal::NTv2BadHeader, kBadFile},
    {static_cast<internal::NTv2Status>(8), "NTV2 datum conversion failed."},
};

TEST(DatumMethods, AnNTv2LoadThatFailsTouchesNoPoint) {
  for (const NTv2Case& row : kNTv2Cases) {
    FakeGrids grids;
    grids.load = row.status;
    Vec2d point(10, 20);
    EXPECT_STREQ(row.message, DatumStep(Grid(DatumMethodNTV2), EllipsoidDef(), grids).Run(&point, 1));
    EXPECT_EQ(10.0, point.x);
    EXPECT_TRUE(grids.seen.empty());
  }
  FakeGrids grids;
  grids.load = internal::NTv2NoShift;  // no status of a load, but not 0
  Vec2d point(10, 20);
  EXPECT_STREQ("NTV2 datum conversion failed.",
               DatumStep(Grid(DatumMethodNTV2), EllipsoidDef(), grids).Run(&point, 1));
}

TEST(DatumMethods, AnNTv2PointWithoutShiftStaysAndIsNoError) {
  FakeGrids grids;
  grids.statuses = {internal::NTv2NoShift, internal::NTv2Done};
  Vec2d points[] = {{10, 20}, {10, 20}};
  EXPECT_EQ(nullptr, DatumStep(Grid(DatumMethodNTV2), EllipsoidDef(), grids).Run(points, 2));
  EXPECT_NEAR(10.0, points[0].x, 1e-13);  // through radians and back
  EXPECT_NEAR(20.0, points[0].y, 1e-13);
  EXPECT_NEAR(20.0, points[1].x, 1e-13);
}

TEST(DatumMethods, AnNTv2PointThatFailsEndsTheBatchInDegrees) {
  for (const NTv2Case& row : kNTv2Cases) {
    FakeGrids grids;
    grids.statuses = {internal::NTv2Done, row.status};
    Vec2d points[] = {{10, 20}, {10, 20}, {10, 20}};
    EXPECT_STREQ(row.message, DatumStep(Grid(DatumMethodNTV2), EllipsoidDef(), grids).Run(points, 3));
    EXPECT_EQ(2u, grids.seen.size());
    EXPECT_NEAR(20.0, points[0].x, 1e-13);
    EXPECT_NEAR(10.0, points[1].x, 1e-13);
    EXPECT_NEAR(10.0, points[2].x, 1e-13);
  }
}

// ---- all methods -----------------------------------------------------------------------------------------

TEST(DatumMethods, HalfMarkedPointsPassEveryMethod) {
  FakeGrids grids;
  for (int method = 1; method <= 6; ++method) {
    DatumParameters p = kBursaWolfA;
    p.method = static_cast<DatumMethod>(method);
    p.mreType = DatumMRETypeED50;
    Vec2d points[] = {{kMarker, 47.5}, {12.25, kMarker}, {kMarker, kMarker}, {12.25, 47.5}};
    EXPECT_EQ(nullptr, DatumStep(p, Wgs84(), grids).Run(points, 4));
    EXPECT_EQ(kMarker, points[0].x);
    EXPECT_EQ(47.5, points[0].y);
    EXPECT_EQ(12.25, points[1].x);
    EXPECT_EQ(kMarker, points[1].y);
    EXPECT_EQ(kMarker, points[2].x);
    EXPECT_EQ(kMarker, points[2].y);
    if (method != DatumMethodNone) {
      EXPECT_NE(47.5, points[3].y);
    }
  }
}

TEST(DatumMethods, ABatchGivesTheBitsOfItsPoints) {
  for (const DatumParameters* p : {&kMolodenskyA, &kBursaWolfB}) {
    const DatumStep step(*p, Wgs84(), internal::Grids());
    std::vector<Vec2d> batch;
    for (int i = 0; i < 523; ++i) batch.emplace_back(-180.0 + i * 0.6875, -88.0 + i * 0.3359375);
    std::vector<Vec2d> single = batch;
    ASSERT_EQ(nullptr, step.Run(batch.data(), batch.size()));
    for (Vec2d& point : single) ASSERT_EQ(nullptr, step.Run(&point, 1));
    EXPECT_EQ(0, std::memcmp(batch.data(), single.data(), batch.size() * sizeof(Vec2d)));
  }
}

}  // namespace
}  // namespace orv
