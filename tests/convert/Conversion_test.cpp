#include "orv/convert/Conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Marker.h"
#include "orv/datum/GridFiles.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/GridBytes.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using internal::kMarker;
using shr::Vec2d;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

ProjectionDef Projection(ProjectionMethod method, double lon0, double lat0, double xOrg = 0.0) {
  ProjectionParameters p;
  p.method = method;
  p.ellipsoid = test::Bessel();
  p.Lon0 = lon0;
  p.Lat0 = lat0;
  p.Lat1 = 40.0;
  p.Lat2 = 60.0;
  p.xOrg = xOrg;
  return ProjectionDef(p);
}

ORVDef System(const DatumDef& datum, const ProjectionDef& projection) {
  return ORVDef(&datum, &projection, nullptr);
}
ORVDef Geographic(const DatumDef& datum) { return System(datum, ProjectionDef(ProjectionMethodUnprojected)); }

/// Warped so that x and y are exchanged.
ORVDef Exchanged(ORVDef system) {
  WarpDef warp;
  warp.SetCoefficients(0, 1, 0, 1, 0, 0);
  system.SetWarp(&warp);
  return system;
}

DatumDef DatumOf(DatumMethod method, DatumTarget target, DatumTarget special = DatumTargetNone) {
  DatumParameters p;
  p.method = method;
  p.target = target;
  p.ellipsoid = test::Wgs84Ellipsoid();
  p.mreType = DatumMRETypeED50;
  DatumDef datum(&p, 0);
  datum.SetSpecial(special);
  return datum;
}

bool SameBits(const std::vector<Vec2d>& a, const std::vector<Vec2d>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Vec2d)) == 0;
}

bool IsLost(const Vec2d& p) { return p.x == kMarker && p.y == kMarker; }

class ConversionTest : public test::KnownDatums {};

TEST_F(ConversionTest, GivesWhatOneTransformerGivesBitForBit) {
  const DatumDef dhdn = test::BursaWolfDatum(), ed50 = test::MolodenskyDatum(), wgs84 = test::Wgs84Datum();
  const std::vector<ORVDef> systems = {
      Geographic(dhdn),
      Geographic(wgs84),
      System(dhdn, Projection(ProjectionMethodTransverseMercator, 9, 0, 3500000)),
      System(ed50, Projection(ProjectionMethodLambert, 10, 50)),
      System(wgs84, Projection(ProjectionMethodOrthographic, 10, 50)),
      Exchanged(System(wgs84, Projection(ProjectionMethodMercator, 3, 0)))};
  for (const ORVDef& from : systems) {
    if (from.HasWarp()) continue;
    std::vector<Vec2d> points;
    for (int i = 0; i < 5001; ++i) points.emplace_back(i % 71 * 5.0 - 175.0, i % 67 * 2.6 - 86.0);
    CSTransformer there(&systems[1], &from, false, false);
    there.Initialize();
    there.Transform(points, points);
    for (const ORVDef& to : systems) {
      CSTransformer one(&from, &to, true, true);
      one.Initialize();
      std::vector<Vec2d> expected, got = points, reported = points;
      one.Transform(points, expected);
      const Conversion conversion = Conversion::Create(from, to);
      conversion.Convert(got.data(), got.size());
      ConversionReport report;
      conversion.Convert(reported.data(), reported.size(), report);
      EXPECT_TRUE(SameBits(got, expected));
      EXPECT_TRUE(SameBits(reported, expected));
      EXPECT_EQ(report.Points(), points.size());
      size_t lost = 0;
      for (const Vec2d& point : expected) lost += IsLost(point) ? 1U : 0U;
      EXPECT_EQ(report.Lost(), lost);
    }
  }
}

TEST_F(ConversionTest, EqualProjectionsOnDifferentDatumsGoThroughLongitudeAndLatitude) {
  const ProjectionDef projection = Projection(ProjectionMethodTransverseMercator, 9, 0, 500000);
  const ORVDef from = System(test::BursaWolfDatum(), projection), to = System(test::Wgs84Datum(), projection);
  Vec2d point(550000, 5678000), plain = point;
  const Conversion conversion = Conversion::Create(from, to);
  conversion.Convert(&point, 1);
  // cs2cs from DHDN (+ellps=bessel, its seven parameters) to WGS 84, then proj +proj=tmerc +lon_0=9 +x_0=500000
  // +ellps=bessel
  EXPECT_NEAR(point.x, 549920.5278, 5e-3);
  EXPECT_NEAR(point.y, 5677856.2206, 5e-3);
  // The transformer's own rule: the projections cancel, and metres are shifted as if they were degrees.
  CSTransformer one(&from, &to, true, true);
  one.Initialize();
  one.Transform(&plain, &plain, 1);
  EXPECT_GT(std::fabs(plain.x - 549920.5278), 1e5);
  // Without a datum step they cancel here too: the bits stay.
  Vec2d same(550000.1, 5678000.3);
  Conversion::Create(from, from).Convert(&same, 1);
  EXPECT_EQ(same.x, 550000.1);
  EXPECT_EQ(same.y, 5678000.3);
}

TEST_F(ConversionTest, WhatIsNoPointBecomesTheMarkerInBothWhateverTheStages) {
  const ORVDef geographic = Geographic(test::Wgs84Datum());
  const ORVDef projected = System(test::Wgs84Datum(), Projection(ProjectionMethodMercator, 0, 0));
  for (const ORVDef* const to : {&geographic, &projected}) {
    for (const ORVDef* const from : {&geographic, &projected}) {
      std::vector<Vec2d> points = {{kNaN, 1},    {1, kNaN},    {kInf, 1}, {1, -kInf},
                                   {kMarker, 1}, {1, kMarker}, {2, 3}};
      Conversion::Create(*from, *to).Convert(points.data(), points.size());
      for (size_t i = 0; i + 1 < points.size(); ++i) EXPECT_TRUE(IsLost(points[i])) << i;
      EXPECT_FALSE(IsLost(points.back()));
    }
  }
}

TEST_F(ConversionTest, ALatitudeBeyond90IsLostAndNotFoldedBack) {
  const ORVDef geographic = Geographic(test::Wgs84Datum());
  const ORVDef projected = System(test::Wgs84Datum(), Projection(ProjectionMethodTransverseMercator, 0, 0));
  std::vector<Vec2d> points = {{1, 90}, {1, -90}, {1, std::nextafter(90.0, 91.0)}, {1, -100}};
  ConversionReport report;
  Conversion::Create(geographic, projected).Convert(points.data(), points.size(), report);
  EXPECT_FALSE(IsLost(points[0]) || IsLost(points[1]));
  EXPECT_TRUE(IsLost(points[2]) && IsLost(points[3]));
  EXPECT_EQ(report.Tally(ConversionLostLatitude).count, 2u);
  EXPECT_EQ(report.Tally(ConversionLostLatitude).first, 2u);
  // Of a projected source 100 is a northing like any other.
  Vec2d metres(1, 100);
  Conversion::Create(projected, geographic).Convert(&metres, 1);
  EXPECT_FALSE(IsLost(metres));
}

TEST_F(ConversionTest, LocalSystemsHaveNoStageButTheWarp) {
  UCSDef from, to;
  to.SetScale(3.0);
  WarpDef warp;
  warp.SetCoefficients(2, 0, 10, 0, 3, 20);
  Vec2d point(1, 2);
  Conversion::Create(from, to).Convert(&point, 1);
  EXPECT_EQ(point.x, 1);
  EXPECT_EQ(point.y, 2);
  to.SetWarp(&warp);
  std::vector<Vec2d> points = {{1, 2}, {1e308, 2}};
  ConversionReport report;
  Conversion::Create(from, to).Convert(points.data(), points.size(), report);
  EXPECT_EQ(points[0].x, 12);
  EXPECT_EQ(points[0].y, 26);
  EXPECT_TRUE(IsLost(points[1])) << "2e308 overflows";
  EXPECT_EQ(report.Tally(ConversionLostDestWarp).count, 1u);
  EXPECT_EQ(report.Tally(ConversionLostDestWarp).first, 1u);
}

// ---- the report ------------------------------------------------------------------------------------------

class ConversionReportTest : public test::KnownDatums {
 protected:
  ConversionReportTest() {
    const auto seconds = [](int, int) { return -36.0F; };
    m_Folder.Write("a.los",
                   test::NadconFile({}, seconds));  // columns from -100, rows from 40, see NadconLayout
    m_Folder.Write("a.las", test::NadconFile({}, seconds));
    ORVSetNadconGridPath(m_Folder.Path().c_str());
  }
  ~ConversionReportTest() override { ORVSetNadconGridPath(nullptr); }
  void SetUp() override {
    KnownDatums::SetUp();
    m_Nad83.SetToken("NAD83");
    m_Nad83.SetName("North American Datum 1983");
    ORVKnownDatumsList.Add(m_Nad83, 0);
  }

  test::TempFolder m_Folder;
  DatumDef m_Nad83 = DatumOf(DatumMethodNone, DatumTargetWGS84, DatumTargetNAD83);
  DatumDef m_Nad27 = DatumOf(DatumMethodNADCON, DatumTargetNAD83);
};

/// Every kind of bad point, in random order, with what has to be counted of each.
struct Mixture {
  std::vector<Vec2d> points;
  size_t expected[kConversionEvents] = {};
  size_t first[kConversionEvents] = {};
  size_t placed = 0;

  void Count(ConversionEvent event) {
    if (expected[event]++ == 0) first[event] = points.size();
  }
};

Mixture MakeMixture(size_t count) {
  Mixture m;
  std::mt19937 random(20240607);
  const auto between = [&](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / 4294967296.0);
  };
  while (m.points.size() < count) {
    Vec2d point(between(-99.5, -90.0), between(40.1, 40.4));  // inside grid and map
    switch (random() % 9) {
      case 0:
        (random() % 2 ? point.x : point.y) = kNaN;
        m.Count(ConversionLostNoPoint);
        break;
      case 1:
        (random() % 2 ? point.x : point.y) = random() % 2 ? kInf : -kInf;
        m.Count(ConversionLostNoPoint);
        break;
      case 2:
        (random() % 2 ? point.x : point.y) = kMarker;
        m.Count(ConversionLostNoPoint);
        break;
      case 3:
        point.y = (random() % 2 ? 1 : -1) * between(90.001, 1000.0);
        m.Count(ConversionLostLatitude);
        break;
      case 4:  // the other hemisphere; outside the grids as well, but lost points have no notes
        point = {between(70.0, 90.0), between(-50.0, -30.0)};
        m.Count(ConversionLostDestArea);
        break;
      case 5:  // north of the grid, still on the map
        point.y = between(50.0, 60.0);
        m.Count(ConversionNotedOutsideGrids);
        ++m.placed;
        break;
      default:
        ++m.placed;
    }
    m.points.push_back(point);
  }
  return m;
}

TEST_F(ConversionReportTest, TotalsAreThoseOfACountByHand) {
  const Mixture m = MakeMixture(10000);
  // The orthographic map of the hemisphere around 40 N, 98 W.
  const Conversion conversion = Conversion::Create(
      Geographic(m_Nad27), System(m_Nad83, Projection(ProjectionMethodOrthographic, -98, 40)));
  std::vector<Vec2d> points = m.points;
  ConversionReport report;
  conversion.Convert(points.data(), points.size(), report);
  EXPECT_EQ(report.Points(), 10000u);
  EXPECT_EQ(report.Placed(), m.placed);
  EXPECT_EQ(report.Lost(), 10000u - m.placed);
  EXPECT_EQ(report.Doubtful(), m.expected[ConversionNotedOutsideGrids]);
  size_t marked = 0;
  for (const Vec2d& point : points) marked += IsLost(point) ? 1U : 0U;
  EXPECT_EQ(marked, report.Lost());
  for (int i = 0; i < kConversionEvents; ++i) {
    const ConversionTally& tally = report.Tally(ConversionEvent(i));
    EXPECT_EQ(tally.count, m.expected[i]) << ConversionReport::EventName(ConversionEvent(i));
    if (tally.count == 0) continue;
    EXPECT_EQ(tally.first, m.first[i]) << ConversionReport::EventName(ConversionEvent(i));
  }
  EXPECT_GT(m.expected[ConversionNotedOutsideGrids], 800u);

  // The same in pieces: one report that goes on, and reports of pieces that are joined in any order.
  ConversionReport goesOn, joined;
  std::vector<std::pair<size_t, ConversionReport>> pieces;
  std::vector<Vec2d> again = m.points;
  for (size_t at = 0, n = 1; at < again.size(); at += n, n = n * 3 + 1) {
    n = std::min(n, again.size() - at);
    std::vector<Vec2d> copy(again.begin() + static_cast<ptrdiff_t>(at),
                            again.begin() + static_cast<ptrdiff_t>(at + n));
    pieces.emplace_back(at, ConversionReport());
    conversion.Convert(copy.data(), n, pieces.back().second);
    conversion.Convert(again.data() + at, n, goesOn);
  }
  for (size_t i = pieces.size(); i-- > 0;) joined.Merge(pieces[i].second, pieces[i].first);
  EXPECT_TRUE(SameBits(again, points));
  EXPECT_EQ(goesOn.ToJson(), report.ToJson());
  EXPECT_EQ(joined.ToJson(), report.ToJson());
}

TEST_F(ConversionReportTest, GridsAreAskedWithThePointsThatReachTheirStep) {
  // Backward to NAD27 the grid sees NAD83 positions: a projected source, and a longitude of a turn more.
  const Conversion back = Conversion::Create(Geographic(m_Nad83), Geographic(m_Nad27));
  std::vector<Vec2d> points = {{-98.25, 40.3}, {261.75, 40.3}, {-98.25, 45.0}, {10, 40.3}};
  ConversionReport report;
  back.Convert(points.data(), points.size(), report);
  EXPECT_EQ(report.Tally(ConversionNotedOutsideGrids).count, 2u);
  EXPECT_EQ(report.Tally(ConversionNotedOutsideGrids).first, 2u);
  EXPECT_NEAR(points[0].x, -98.25 - 0.01, 1e-9);
  EXPECT_EQ(points[2].x, -98.25);
  EXPECT_EQ(report.Placed(), 4u);

  const ORVDef mercator = System(m_Nad27, Projection(ProjectionMethodMercator, -98, 0));
  std::vector<Vec2d> metres = {{-98.25, 40.3}, {-98.25, 45.0}};
  const ORVDef unshifted = Geographic(m_Nad27);
  Conversion::Create(unshifted, mercator).Convert(metres.data(), 2);
  ConversionReport projected;
  Conversion::Create(mercator, Geographic(m_Nad83)).Convert(metres.data(), 2, projected);
  EXPECT_EQ(projected.Tally(ConversionNotedOutsideGrids).count, 1u);
  EXPECT_EQ(projected.Tally(ConversionNotedOutsideGrids).first, 1u);
}

TEST_F(ConversionReportTest, AnNTv2GridIsAskedToo) {
  m_Folder.Write("grid.gsb", test::NTv2File({test::NTv2Box("CAN", "NONE", -100, 40, 1, 5, 5, [](int, int) {
                   return test::NTv2Shift{72.0F, 72.0F};
                 })}));
  ORVSetNTv2GridFile(m_Folder.Path("grid.gsb").c_str());
  const DatumDef nad27 = DatumOf(DatumMethodNTV2, DatumTargetNAD83);
  std::vector<Vec2d> points = {{-98.5, 42.5}, {-94.0, 42.5}, {-100.0, 40.0}, {kNaN, 42.5}};
  ConversionReport report;
  Conversion::Create(Geographic(nad27), Geographic(m_Nad83)).Convert(points.data(), points.size(), report);
  ORVSetNTv2GridFile("ntv2_0.gsb");
  EXPECT_EQ(report.Tally(ConversionNotedOutsideGrids).count, 1u);
  EXPECT_EQ(report.Tally(ConversionNotedOutsideGrids).first, 1u);
  EXPECT_EQ(report.Lost(), 1u);
}

TEST_F(ConversionReportTest, MissingGridsAreNamedWithThePlacesThatWereSearched) {
  const std::string nowhere = m_Folder.Path("nowhere");
  ORVSetNadconGridPath(nowhere.c_str());
  const Conversion conversion = Conversion::Create(Geographic(m_Nad27), Geographic(m_Nad83));
  Vec2d point(-98.25, 40.3);
  ConversionReport report;
  EXPECT_RAISES(
      conversion.Convert(&point, 1, report), ErrDatumMethod, "Conversion",
      "NADCON grid shift files missing or corrupt.  NADGRIDS.ZIP, or .los with .las files, looked for in: " +
          nowhere + ".");
  EXPECT_EQ(report.Points(), 0u);
  // No point is touched, though the projection in front of the grids could be done.
  const Conversion projected = Conversion::Create(
      System(m_Nad27, Projection(ProjectionMethodTransverseMercator, -99, 0)), Geographic(m_Nad83));
  Vec2d metres(1000, 2000);
  EXPECT_THROW(projected.Convert(&metres, 1), shr::Exception);
  EXPECT_EQ(metres.x, 1000);
  EXPECT_EQ(metres.y, 2000);
  projected.Convert(nullptr, 0);  // nothing needs no grids
  ORVSetNadconGridPath(m_Folder.Path().c_str());
  conversion.Convert(&point, 1);  // grids are looked for anew
  EXPECT_NEAR(point.x, -98.25 + 0.01, 1e-9);
}

TEST_F(ConversionTest, LostInTheSourceProjection) {
  const ORVDef disc = System(test::Wgs84Datum(), Projection(ProjectionMethodOrthographic, 0, 0));
  std::vector<Vec2d> points = {{0, 6e6}, {5e6, 5e6}, {kNaN, 0}};
  ConversionReport report;
  Conversion::Create(disc, Geographic(test::BursaWolfDatum())).Convert(points.data(), points.size(), report);
  EXPECT_EQ(report.Tally(ConversionLostSourceProjection).count, 1u);
  EXPECT_EQ(report.Tally(ConversionLostSourceProjection).first, 1u);
  EXPECT_EQ(report.Tally(ConversionLostNoPoint).count, 1u);
  EXPECT_EQ(
      report.ToText(),
      "3 points, 1 placed, 2 lost\n"
      "1 lost, input: the point holds no coordinates (marked, NaN or infinite) (first: point 3)\n"
      "1 lost, source projection: the source projection has no place with these coordinates (first: point 2)\n");
}

TEST_F(ConversionTest, PointsFarFromTheMeridianArePlacedAndNoted) {
  const ORVDef geographic = Geographic(test::Wgs84Datum());
  for (const ProjectionMethod method : {ProjectionMethodTransverseMercator, ProjectionMethodUTM}) {
    ProjectionDef projection = Projection(method, 15, method == ProjectionMethodUTM ? 0 : 30);
    projection.SetParameter(ProjectionParameterIDScale, 2.5);
    projection.SetParameter(ProjectionParameterIDK0, 0.9996);
    const ORVDef projected = System(test::Wgs84Datum(), projection);
    std::vector<Vec2d> points;
    size_t far = 0, first = 0;
    for (int lat = -85; lat <= 85; lat += 5) {
      for (double lon = -200.25; lon < 400; lon += 4.5) {
        if (std::fabs(std::fmod(lon, 360.0) - 15.0) > 10.0 && far++ == 0) first = points.size();
        points.emplace_back(lon, lat);
      }
    }
    ConversionReport report;
    const std::vector<Vec2d> places = points;
    Conversion::Create(geographic, projected).Convert(points.data(), points.size(), report);
    EXPECT_EQ(report.Lost(), 0u);
    EXPECT_EQ(report.Tally(ConversionNotedFarFromDestMeridian).count, far);
    EXPECT_EQ(report.Tally(ConversionNotedFarFromDestMeridian).first, first);
    EXPECT_EQ(report.Doubtful(), far);

    // And back, from where the exact projection of a sphere puts them: no series, so far points stay far.
    ProjectionDef sphere = projection;
    EllipsoidDef round(test::Bessel().GetMajorRadius(), 0.0, nullptr, nullptr, nullptr, 0);
    sphere.SetParameter(ProjectionParameterIDEllipsoid, round);
    std::vector<Vec2d> near, away;
    for (const Vec2d& place : places) {
      const double off = std::fabs(place.x - 15.0);
      if (off < 9.9) near.push_back(place);
      if (off > 10.1 && off < 170) away.push_back(place);
    }
    for (std::vector<Vec2d>* const set : {&near, &away}) {
      ConversionReport silent, back;
      Conversion::Create(geographic, System(test::Wgs84Datum(), sphere))
          .Convert(set->data(), set->size(), silent);
      EXPECT_EQ(silent.Doubtful(), 0u) << "on the sphere nothing is a series";
      Conversion::Create(projected, geographic).Convert(set->data(), set->size(), back);
      EXPECT_EQ(back.Tally(ConversionNotedFarFromSourceMeridian).count, set == &near ? 0u : back.Placed());
    }
    EXPECT_GT(near.size(), 100u);
    EXPECT_GT(away.size(), 1000u);
  }
}

// ---- failures --------------------------------------------------------------------------------------------

TEST_F(ConversionTest, FailuresSayWhichSideAndWhatWouldHelp) {
  ORVDef wgs84 = Geographic(test::Wgs84Datum());
  wgs84.SetToken("EPSG:4326");
  wgs84.SetName("Geographic 2D|WGS 84");
  ORVDef bare = System(test::Wgs84Datum(), ProjectionDef(ProjectionMethodUnprojected));
  bare.SetDatum(nullptr);
  bare.SetName("bare");
  DatumParameters p;
  DatumDef unknown(&p, 0);
  unknown.SetToken("LOST");
  unknown.SetName("Lost Datum");
  ORVDef lost = Geographic(unknown);
  lost.SetToken("L");
  UCSDef local;
  local.SetName("plot");
  EXPECT_RAISES(
      Conversion::Create(wgs84, local), ErrTypesDiffer, "Conversion",
      "target system (plot): it is a local system and the other one is georeferenced, so no way leads from "
      "one to the other; give a georeferenced system instead");
  EXPECT_RAISES(
      Conversion::Create(local, wgs84), ErrTypesDiffer, "Conversion",
      "source system (plot): it is a local system and the other one is georeferenced, so no way leads from "
      "one to the other; give a georeferenced system instead");
  EXPECT_RAISES(
      Conversion::Create(bare, wgs84), ErrNoSourceDatum, "Conversion",
      "source system (bare): it has no datum, and the target's is 'World Geodetic System 1984' (WGS84); give "
      "it its datum, or take the datum off the target when both lie on the same one");
  EXPECT_RAISES(
      Conversion::Create(wgs84, bare), ErrNoDestDatum, "Conversion",
      "target system (bare): it has no datum, and the source's is 'World Geodetic System 1984' (WGS84); give "
      "it its datum, or take the datum off the source when both lie on the same one");
  EXPECT_RAISES(
      Conversion::Create(lost, wgs84), ErrSourceDatumMethod, "Conversion",
      "source system 'L': no way is known from its datum 'Lost Datum' (LOST) to any other; only systems on "
      "that datum can be converted to it, or a datum of your own with the parameters of the shift");
  EXPECT_RAISES(
      Conversion::Create(wgs84, lost), ErrDestDatumMethod, "Conversion",
      "target system 'L': no way is known from its datum 'Lost Datum' (LOST) to any other; only systems on "
      "that datum can be converted to it, or a datum of your own with the parameters of the shift");
  const DatumDef regression = DatumOf(DatumMethodMRE, DatumTargetWGS84);
  EXPECT_RAISES(
      Conversion::Create(wgs84, Geographic(regression)), ErrNoRoute, "Conversion",
      "source system 'EPSG:4326' (WGS 84): no route leads from its datum 'World Geodetic System 1984' (WGS84) "
      "to the target's, a datum of its own, through the known datums (a step that uses regression equations "
      "or an NTv2 grid never runs backward); give another datum of the same name on either side");
  EXPECT_RAISES(
      Conversion::Create(Exchanged(wgs84), wgs84), ErrCorrupt, "Conversion",
      "source system 'EPSG:4326' (WGS 84): its warp cannot be undone; convert from the system without it, or "
      "fit a warp of the other direction");
  EXPECT_RAISES(
      Conversion::Create("no such thing", "datum=WGS84"), ErrBadParameter, "Conversion",
      "source system: unknown system 'no such thing'; and there is no such file (no systems are known: start "
      "the library with ORVInitialize)");
  EXPECT_RAISES(
      Conversion::Create("ellipsoid.a=1", "a=1,f=0"), ErrBadParameter, "Conversion",
      "source system: unknown key 'ellipsoid.a' (no systems are known: start the library with ORVInitialize)");
  EXPECT_RAISES(
      Conversion::Create("a=1,f=0", "x"), ErrBadParameter, "Conversion",
      "target system: unknown system 'x'; and there is no such file (no systems are known: start the library "
      "with ORVInitialize)");
  EXPECT_RAISES(Conversion::Create(wgs84, wgs84).Convert(nullptr, 1), ErrBadParameter, "Conversion",
                "Bad parameter to function call.");
  EXPECT_NO_THROW(Conversion::Create(wgs84, wgs84).Convert(nullptr, 0));
  ORVKnownDatumsList.Flush();
  EXPECT_RAISES(
      Conversion::Create(Geographic(test::BursaWolfDatum()), Geographic(test::MolodenskyDatum())), ErrNoRoute,
      "Conversion",
      "source system: no route leads from its datum a datum of its own to the target's, a datum of its own, "
      "through the known datums (a step that uses regression equations or an NTv2 grid never runs backward); "
      "no datums are known: start the library with ORVInitialize");
}

// ---- there and back --------------------------------------------------------------------------------------

TEST_F(ConversionTest, ARoundTripNamesTheWorstPoint) {
  UCSDef plain, warped;
  WarpDef warp;
  warp.SetCoefficients(1, 0, 3, 0, 1.5, 4);  // (x + 3, 1.5 y + 4)
  warped.SetWarp(&warp);
  const Conversion there = Conversion::Create(plain, warped), nothing = Conversion::Create(plain, plain);
  const std::vector<Vec2d> points = {{0, 0}, {kNaN, 0}, {0, 16}, {0, 4}};
  const RoundTrip trip = ORVRoundTrip(there, nothing, points.data(), points.size());
  EXPECT_EQ(trip.returned, 3u);
  EXPECT_EQ(trip.worst, 2u);
  EXPECT_DOUBLE_EQ(trip.largest, std::hypot(3, 12));
  EXPECT_EQ(ORVRoundTrip(there, nothing, nullptr, 0).returned, 0u);
  EXPECT_RAISES(ORVRoundTrip(there, nothing, nullptr, 1), ErrBadParameter, "Conversion",
                "Bad parameter to function call.");
}

TEST_F(ConversionTest, ARoundTripOfGeographicPointsIsMeasuredInMetres) {
  // A degree of the sphere of 6371 km is 111194.927 m; along 60 N about half of it, by the haversine 55596.92 m of
  // arc along the great circle: 2 R asin(cos 60 sin 0.5).
  const ORVDef wgs84 = Geographic(test::Wgs84Datum());
  ORVDef shifted = wgs84;
  WarpDef warp;
  warp.SetCoefficients(1, 0, 1, 0, 1, 0);
  shifted.SetWarp(&warp);
  const Vec2d points[] = {{179.5, 60}, {0, 0}};
  const Conversion there = Conversion::Create(wgs84, shifted), nothing = Conversion::Create(wgs84, wgs84);
  const RoundTrip trip = ORVRoundTrip(there, nothing, points, 2);
  EXPECT_EQ(trip.worst, 1u);
  EXPECT_NEAR(trip.largest, 6371000.0 * 3.141592653589793 / 180.0, 1e-6);
  EXPECT_NEAR(ORVRoundTrip(there, nothing, points, 1).largest,
              2 * 6371000.0 * std::asin(0.5 * std::sin(0.5 * 3.141592653589793 / 180.0)), 1e-6);
  // In grads the same numbers are nine tenths of that.
  ProjectionParameters p;
  p.method = ProjectionMethodEquidistantCylindrical;
  p.ellipsoid = EllipsoidDef(6378137.0, 0.0, nullptr, nullptr, nullptr, 0);
  p.Scale = 400.0 / (2 * 3.141592653589793 * 6378137.0);
  const ORVDef grads = System(test::Wgs84Datum(), ProjectionDef(p));
  ORVDef shiftedGrads = grads;
  shiftedGrads.SetWarp(&warp);
  EXPECT_NEAR(
      ORVRoundTrip(Conversion::Create(grads, shiftedGrads), Conversion::Create(grads, grads), points + 1, 1)
          .largest,
      0.9 * trip.largest, 1e-6);
  warp.SetCoefficients(1, 0, 360, 0, 1, 0);
  shifted.SetWarp(&warp);
  EXPECT_NEAR(ORVRoundTrip(Conversion::Create(wgs84, shifted), nothing, points, 2).largest, 0.0, 1e-6);
}

}  // namespace
}  // namespace orv
