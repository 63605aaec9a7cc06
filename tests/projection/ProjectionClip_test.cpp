// Clipping by hand-made geometry.  The window of Mercator with Lon0 = 0 is -180 < longitude < 180,
// -90 < latitude < 90; crossings lie up to 0.001 degree inside it.
#include "orv/projection/ProjectionClip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "orv/core/Error.h"
#include "orv/projection/internal/ClipPolygon.h"
#include "orv/projection/internal/ProjArea.h"
#include "orv/projection/internal/ProjectorAccess.h"
#include "tests/projection/ProjectionSamples.h"
#include "tests/support/Clipped.h"
#include "tests/support/Raises.h"

namespace orv::test {

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kInside = 0.001;  // how far inside a crossing may lie

/// Has an inside test and no mathematics; counts what it is asked.
class AreaOnly : public ProjActor {
 public:
  using Test = bool (*)(const ProjectionParameters& degrees, const shr::Vec2d& lonlat);
  explicit AreaOnly(Test test) : m_Test(test) {}
  std::unique_ptr<ProjActor> Clone() const override { return std::make_unique<AreaOnly>(m_Test); }
  bool IsLatLonInside(const ProjectionParameters& degrees, const shr::Vec2d* lonlat) const override {
    ++asked;
    return m_Test(degrees, *lonlat);
  }
  bool GetSplitOffset(const ProjectionParameters&, const shr::Vec2d*, size_t, double*,
                      double*) const override {
    return false;
  }
  bool Forward(shr::Vec2d*, size_t) override { return false; }

  mutable size_t asked = 0;

 private:
  Test m_Test;
};

Projector Mercator() { return Projector(Valid(ProjectionMethodMercator)); }

/// A projector of this method about this centre, with an inside test only.
struct Area {
  Area(ProjectionMethod method, AreaOnly::Test test, double lon, double lat) {
    ProjectionDef def = Valid(method);
    def.SetParameter(ProjectionParameterIDLon0, lon);
    def.SetParameter(ProjectionParameterIDLat0, lat);
    def.SetParameter(ProjectionParameterIDLat1, lat);
    internal::ProjectorAccess::Projection(projector) = def;
    auto own = std::make_unique<AreaOnly>(test);
    actor = own.get();
    internal::ProjectorAccess::SetActor(projector, std::move(own));
  }
  Projector projector;
  AreaOnly* actor;
};

Line Box(double west, double south, double east, double north) {
  return {{west, south}, {east, south}, {east, north}, {west, north}};
}

Line Backward(Line ring) {
  std::reverse(ring.begin(), ring.end());
  return ring;
}

Line Repeated(Line ring) {
  ring.push_back(ring.front());
  return ring;
}

bool SamePoints(const Line& a, const Line& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](const auto& p, const auto& q) {
           return p.x == q.x && p.y == q.y;
         });
}

double TwiceArea(const Line& ring) { return internal::TwiceArea(ring); }

double Area2(const std::vector<std::vector<Line>>& polygons) {
  double sum = 0.0;
  for (const std::vector<Line>& rings : polygons) {
    for (const Line& ring : rings) sum += TwiceArea(ring);
  }
  return sum;
}

void ExpectAt(const shr::Vec2d& p, double x, double y) {
  EXPECT_NEAR(p.x, x, kInside);
  EXPECT_NEAR(p.y, y, kInside);
}

}  // namespace

// ---- polylines ---------------------------------------------------------------------------------------------

TEST(ProjectionClip, APolylineWhollyInsideComesOnceUnchanged) {
  Projector projector = Mercator();
  const Line line = {{-170.0, 10.0}, {0.0, 20.5}, {0.0, 20.5}, {179.0, -80.0}};
  const Clipped clipped = ClipLine(projector, line);
  ASSERT_EQ(clipped.lines.size(), 1u);
  EXPECT_TRUE(SamePoints(clipped.lines[0], line));
}

TEST(ProjectionClip, APolylineWhollyOutsideNeverComes) {
  Projector projector = Mercator();
  EXPECT_TRUE(ClipLine(projector, {{0.0, 91.0}, {10.0, 95.0}}).lines.empty());
}

TEST(ProjectionClip, AnEdgeWithBothEndsOutsideIsOutsideWhateverLiesBetween) {
  Projector projector = Mercator();
  EXPECT_TRUE(ClipLine(projector, {{0.0, 91.0}, {0.0, -91.0}}).lines.empty());
}

// From 170 to 190 the halves are 180 (outside), 175, 177.5 ...: after 14 more the ends differ by 10/2^14.
TEST(ProjectionClip, AMercatorPolylineOver180ComesTwiceTheSecondTimeShifted) {
  Projector projector = Mercator();
  const Clipped clipped = ClipLine(projector, {{170.0, 5.0}, {190.0, 5.0}});
  ASSERT_EQ(clipped.lines.size(), 2u);
  EXPECT_TRUE(SamePoints(clipped.lines[0], {{170.0, 5.0}, {180.0 - 10.0 / 16384.0, 5.0}}));
  EXPECT_TRUE(SamePoints(clipped.lines[1], {{-180.0 + 10.0 / 16384.0, 5.0}, {-170.0, 5.0}}));
}

TEST(ProjectionClip, TheWestIsShiftedEast) {
  Projector projector(With(Valid(ProjectionMethodMercator), ProjectionParameterIDLon0, 10.0));
  const Clipped clipped = ClipLine(projector, {{-180.0, 5.0}, {-160.0, 5.0}});
  ASSERT_EQ(clipped.lines.size(), 2u);
  EXPECT_TRUE(SamePoints(clipped.lines[0], {{-170.0 + 10.0 / 16384.0, 5.0}, {-160.0, 5.0}}));
  EXPECT_TRUE(SamePoints(clipped.lines[1], {{180.0, 5.0}, {190.0 - 10.0 / 16384.0, 5.0}}));
}

TEST(ProjectionClip, APolylineComesInItsRuns) {
  Projector projector = Mercator();
  const Clipped clipped = ClipLine(
      projector, {{0.0, 80.0}, {0.0, 100.0}, {10.0, 100.0}, {10.0, 80.0}, {20.0, 80.0}, {20.0, 95.0}});
  ASSERT_EQ(clipped.lines.size(), 2u);
  EXPECT_TRUE(SamePoints(clipped.lines[0], {{0.0, 80.0}, {0.0, 90.0 - 10.0 / 16384.0}}));
  ASSERT_EQ(clipped.lines[1].size(), 4u);
  EXPECT_EQ(clipped.lines[1][1].y, 80.0);
  ExpectAt(clipped.lines[1][3], 20.0, 90.0);
}

// ---- crossings ---------------------------------------------------------------------------------------------

TEST(ProjectionClip, TheCourseOfAnEdge) {
  Area area(ProjectionMethodMercator, &internal::InsideWindowBelowPoles, 0.0, 0.0);
  const ProjectionDef def = Valid(ProjectionMethodMercator);
  const internal::ClipArea clip(area.actor, *def.GetParameters());
  const shr::Vec2d in(179.0, 1.0), also(0.0, 0.0), out(181.0, 1.0), far(200.0, 0.0);
  shr::Vec2d at(-1.0, -1.0);
  EXPECT_EQ(internal::FindCrossing(clip, &in, &also, &at), 1);
  EXPECT_EQ(internal::FindCrossing(clip, &out, &far, &at), 2);
  EXPECT_EQ(at.x, -1.0);
  EXPECT_EQ(internal::FindCrossing(clip, &out, &in, &at), 3);
  EXPECT_EQ(at.x, 180.0 - 1.0 / 1024.0);  // 2/2^11 <= 0.001
  EXPECT_EQ(internal::FindCrossing(clip, &in, &out, &at), 4);
  EXPECT_EQ(at.x, 180.0 - 1.0 / 1024.0);
  EXPECT_EQ(internal::FindCrossing(clip, nullptr, &out, &at), 0);
  EXPECT_EQ(internal::FindCrossing(clip, &in, nullptr, &at), 0);
  EXPECT_EQ(internal::FindCrossing(clip, &in, &out, nullptr), 0);
  const internal::ClipArea nowhere(nullptr, *def.GetParameters());
  EXPECT_EQ(internal::FindCrossing(nowhere, &in, &also, &at), 2);
}

TEST(ProjectionClip, AShortEdgeCrossesAtItsInsideEnd) {
  Area area(ProjectionMethodMercator, &internal::InsideWindowBelowPoles, 0.0, 0.0);
  const ProjectionDef def = Valid(ProjectionMethodMercator);
  const internal::ClipArea clip(area.actor, *def.GetParameters());
  const shr::Vec2d in(179.9995, 1.0), out(180.0004, 1.0009);
  shr::Vec2d at;
  EXPECT_EQ(internal::FindCrossing(clip, &in, &out, &at), 4);
  EXPECT_EQ(at.x, in.x);
  EXPECT_EQ(at.y, in.y);
}

TEST(ProjectionClip, EdgesWithoutEndFailAndHugeOnesEnd) {
  Area area(ProjectionMethodMercator, &internal::InsideWindowBelowPoles, 0.0, 0.0);
  const ProjectionDef def = Valid(ProjectionMethodMercator);
  const internal::ClipArea clip(area.actor, *def.GetParameters());
  const shr::Vec2d in(0.0, 1.0), nan(kNan, 1.0), infinite(1.0, kInfinite);
  const shr::Vec2d huge(1.7976931348623157e308, 1.7976931348623157e308);
  shr::Vec2d at;
  EXPECT_EQ(internal::FindCrossing(clip, &in, &nan, &at), 0);
  EXPECT_EQ(internal::FindCrossing(clip, &infinite, &in, &at), 0);
  EXPECT_EQ(internal::FindCrossing(clip, &nan, &infinite, &at), 2);
  EXPECT_EQ(internal::FindCrossing(clip, &in, &huge, &at), 4);
  EXPECT_NEAR(at.y, 90.0, kInside);
}

// Where doubles lie farther apart than 0.001 the halving ends when it has none left.
TEST(ProjectionClip, HalvingEndsWhereDoublesDo) {
  Area area(
      ProjectionMethodMercator, [](const ProjectionParameters&, const shr::Vec2d& p) { return p.x < 3e15; },
      0.0, 0.0);
  const ProjectionDef def = Valid(ProjectionMethodMercator);
  const internal::ClipArea clip(area.actor, *def.GetParameters());
  const shr::Vec2d in(1e15, 0.0), out(9e15, 0.0);
  shr::Vec2d at;
  EXPECT_EQ(internal::FindCrossing(clip, &in, &out, &at), 4);
  EXPECT_EQ(at.x, std::nextafter(3e15, 0.0));
}

// ---- the traced edge ---------------------------------------------------------------------------------------

TEST(ProjectionClip, FiveProbesLieAtSevenths) {
  Area area(ProjectionMethodMercator, &internal::InsideWindowBelowPoles, 0.0, 0.0);
  const ProjectionDef def = Valid(ProjectionMethodMercator);
  const internal::ClipArea clip(area.actor, *def.GetParameters());
  const shr::Vec2d from(179.75, -35.0), to(179.75, 35.0);
  std::vector<shr::Vec2d> out = {{1.0, 1.0}};
  ASSERT_TRUE(internal::FollowClipEdge(clip, &from, &to, out, 5));
  ASSERT_EQ(out.size(), 5u);
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(out[i].y, -35.0 + 10.0 * static_cast<double>(i + 1));
    // The probe has its inside end at 144.75 and is 70 long: 70/2^17 <= 0.001, and the inside ends go there.
    const double part = 70.0 / 131072.0;
    EXPECT_EQ(out[i].x, 144.75 + part * std::floor((180.0 - 144.75) / part));
  }
  ASSERT_TRUE(internal::FollowClipEdge(clip, &from, &to, out, 3));
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[2].y, -35.0 + 3.0 * 14.0);
}

TEST(ProjectionClip, NoGapAddsNothingAndKeepsWhatWasThere) {
  Area area(ProjectionMethodMercator, &internal::InsideWindowBelowPoles, 0.0, 0.0);
  const ProjectionDef def = Valid(ProjectionMethodMercator);
  const internal::ClipArea clip(area.actor, *def.GetParameters());
  const shr::Vec2d from(179.9999, 1.0), close(179.9999 + 9e-7, 1.0 - 9e-7), to(179.9999, 1.0 + 2e-6);
  std::vector<shr::Vec2d> out = {{1.0, 1.0}};
  EXPECT_TRUE(internal::FollowClipEdge(clip, &from, &close, out, 5));
  EXPECT_EQ(out.size(), 1u);
  EXPECT_TRUE(internal::FollowClipEdge(clip, &from, &to, out, 5));
  EXPECT_TRUE(out.empty());  // emptied; the probes are too short to leave the area
  EXPECT_FALSE(internal::FollowClipEdge(clip, nullptr, &to, out, 5));
  EXPECT_FALSE(internal::FollowClipEdge(clip, &from, nullptr, out, 5));
}

// The crossings at (180, 1 +- 1e-7) differ by less than 1e-6: no traced point, and the exit is not repeated.
TEST(ProjectionClip, TwoCrossingsAtOnePlaceHaveNoBoundaryBetweenThem) {
  Projector projector = Mercator();
  const Line tip = {{170.0, -9.0}, {180.0 + 1e-7, 1.0}, {170.0, 11.0}};
  const Clipped clipped = ClipRings(projector, {tip});
  ASSERT_GE(clipped.polygons.size(), 1u);
  const Line& ring = clipped.polygons[0][0];
  ASSERT_EQ(ring.size(), 4u);  // the two crossings lie up to 0.001 apart, joined by one straight edge
  ExpectAt(ring[1], 180.0, 1.0);
  ExpectAt(ring[2], 180.0, 1.0);
  // An inside point within 0.001 of the rim is its own crossing, both ways: one point thrice, and no gap.
  const Line close = {{170.0, -9.0}, {179.9995, 1.0}, {180.0002, 1.0}, {179.9995, 1.0}, {170.0, 11.0}};
  const Clipped touched = ClipRings(projector, {close});
  ASSERT_GE(touched.polygons.size(), 1u);
  for (size_t i = 1; i + 1 < touched.polygons[0][0].size(); ++i) {
    EXPECT_EQ(touched.polygons[0][0][i].x, 179.9995);
  }
}

// ---- polygons ----------------------------------------------------------------------------------------------

TEST(ProjectionClip, APolygonWhollyInsideComesInOneCallUnchanged) {
  Projector projector = Mercator();
  for (const bool bRepeat : {false, true}) {
    std::vector<Line> rings = {Box(0, 0, 50, 50), Backward(Box(10, 10, 20, 20)), Box(60, 0, 70, 10)};
    if (bRepeat) {
      for (Line& ring : rings) ring = Repeated(ring);
    }
    const Clipped clipped = ClipRings(projector, rings);
    ASSERT_EQ(clipped.polygons.size(), 1u);
    ASSERT_EQ(clipped.polygons[0].size(), 3u);
    ASSERT_EQ(clipped.lines.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_TRUE(SamePoints(clipped.polygons[0][i], rings[i])) << i;
      EXPECT_TRUE(SamePoints(clipped.lines[i], bRepeat ? rings[i] : Repeated(rings[i]))) << i;
    }
  }
}

TEST(ProjectionClip, RingsOfTwoEdgesNeverCome) {
  Projector projector = Mercator();
  const Clipped clipped =
      ClipRings(projector, {Box(0, 0, 50, 50), {{1, 1}, {2, 2}}, {{1, 1}, {2, 3}, {1, 1}}});
  ASSERT_EQ(clipped.polygons.size(), 1u);
  EXPECT_EQ(clipped.polygons[0].size(), 1u);
  EXPECT_TRUE(ClipRings(projector, {{{1, 1}, {2, 2}}}).polygons.empty());
}

TEST(ProjectionClip, APolygonWhollyOutsideNeverComes) {
  Projector projector = Mercator();
  const Clipped clipped = ClipRings(projector, {Box(0, 91, 50, 95)});
  EXPECT_TRUE(clipped.polygons.empty());
  EXPECT_TRUE(clipped.lines.empty());
}

TEST(ProjectionClip, WithoutAnEngineNothingComes) {
  Projector projector;
  EXPECT_TRUE(ClipLine(projector, {{0, 0}, {1, 1}}).lines.empty());
  const Clipped clipped = ClipRings(projector, {Box(0, 0, 50, 50)});
  EXPECT_TRUE(clipped.polygons.empty() && clipped.lines.empty());
}

// Its gap is the one from its exit to its entry: probes at sevenths of it.
TEST(ProjectionClip, ASquareOverTheEdgeIsClosedWithFiveProbes) {
  Projector projector = Mercator();
  const Line square = Box(170, 0, 190, 70);
  const double crossing = 180.0 - 10.0 / 16384.0;
  for (const bool bRepeat : {false, true}) {
    const Clipped clipped = ClipRings(projector, {bRepeat ? Repeated(square) : square});
    ASSERT_EQ(clipped.polygons.size(), 2u);
    ASSERT_EQ(clipped.polygons[0].size(), 1u);
    const Line& ring = clipped.polygons[0][0];
    ASSERT_EQ(ring.size(), bRepeat ? 10u : 9u);
    // Begins where the ring did.
    EXPECT_TRUE(SamePoints(Line(ring.begin(), ring.begin() + 2), {{170, 0}, {crossing, 0}}));
    for (size_t i = 1; i <= 5; ++i) {
      EXPECT_DOUBLE_EQ(ring[1 + i].y, 10.0 * static_cast<double>(i));
      EXPECT_LT(ring[1 + i].x, 180.0);
      EXPECT_GE(ring[1 + i].x, 180.0 - kInside);
    }
    EXPECT_TRUE(SamePoints(Line(ring.begin() + 7, ring.begin() + 9), {{crossing, 70}, {170, 70}}));
    if (bRepeat) {
      EXPECT_TRUE(SamePoints({ring.front()}, {ring.back()}));
    }
    EXPECT_GT(TwiceArea(ring), 0.0);
    // The copy has the other half.
    EXPECT_NEAR(TwiceArea(clipped.polygons[1][0]), 2.0 * 10.0 * 70.0, 1.0);
    ExpectAt(clipped.polygons[1][0][0], -180.0, 0.0);
    // The outline is the run alone.
    ASSERT_EQ(clipped.lines.size(), 2u);
    EXPECT_TRUE(SamePoints(clipped.lines[0], {{crossing, 70}, {170, 70}, {170, 0}, {crossing, 0}}));
  }
}

TEST(ProjectionClip, OrientationIsKept) {
  Projector projector = Mercator();
  for (const bool bBackward : {false, true}) {
    std::vector<Line> rings = {Box(160, 0, 190, 50), Backward(Box(165, 10, 175, 20)),
                               Backward(Box(177, 30, 183, 40))};
    if (bBackward) {
      for (Line& ring : rings) ring = Backward(ring);
    }
    const Clipped clipped = ClipRings(projector, rings);
    ASSERT_EQ(clipped.polygons.size(), 2u);
    ASSERT_EQ(clipped.polygons[0].size(), 2u);
    EXPECT_EQ(TwiceArea(clipped.polygons[0][0]) > 0.0, !bBackward);
    EXPECT_EQ(TwiceArea(clipped.polygons[0][1]) < 0.0, !bBackward);
    const double area = 20.0 * 50.0 - 10.0 * 10.0 - 3.0 * 10.0;
    EXPECT_NEAR(Area2({clipped.polygons[0]}), (bBackward ? -2.0 : 2.0) * area, 0.5);
  }
}

// A hole that reaches the edge is a notch, whichever way it turns.
TEST(ProjectionClip, AHoleThatReachesTheEdgeJoinsItsOuterRing) {
  Projector projector = Mercator();
  for (const bool bBackward : {false, true}) {
    const Line hole = Box(175, 20, 185, 30);
    const Clipped clipped = ClipRings(projector, {Box(160, 0, 190, 50), bBackward ? Backward(hole) : hole});
    ASSERT_EQ(clipped.polygons.size(), 2u);
    ASSERT_EQ(clipped.polygons[0].size(), 1u);
    EXPECT_NEAR(TwiceArea(clipped.polygons[0][0]), 2.0 * (20.0 * 50.0 - 5.0 * 10.0), 0.5);
    ASSERT_EQ(clipped.polygons[1].size(), 1u);
    EXPECT_NEAR(TwiceArea(clipped.polygons[1][0]), 2.0 * (10.0 * 50.0 - 5.0 * 10.0), 0.5);
  }
}

// Prongs that end outside, of a base inside: one piece, three outlines.  The other way around: three pieces.
TEST(ProjectionClip, APieceForEachProng) {
  Projector projector = Mercator();
  Line comb = {{170, 0}};
  for (double y : {0.0, 20.0, 40.0}) {
    comb.emplace_back(190, y);
    comb.emplace_back(190, y + 10);
    if (y < 40.0) {
      comb.emplace_back(175, y + 10);
      comb.emplace_back(175, y + 20);
    }
  }
  comb.emplace_back(170, 50);
  const Clipped clipped = ClipRings(projector, {comb});
  ASSERT_EQ(clipped.polygons.size(), 4u);
  EXPECT_EQ(clipped.polygons[0].size(), 1u);
  EXPECT_NEAR(TwiceArea(clipped.polygons[0][0]), 2.0 * (10.0 * 50.0 - 2 * 5.0 * 10.0), 0.5);
  for (size_t i = 1; i < 4; ++i) {  // of the copy
    ASSERT_EQ(clipped.polygons[i].size(), 1u);
    EXPECT_NEAR(TwiceArea(clipped.polygons[i][0]), 2.0 * 10.0 * 10.0, 0.5);
  }
  EXPECT_EQ(clipped.lines.size(), 3u + 3u);
}

TEST(ProjectionClip, AHoleGoesWithThePieceItLiesIn) {
  Projector projector = Mercator();
  // Two arms inside, joined outside, with a hole in each and an island in one of the holes.
  const Line arms = {{160, 0}, {190, 0}, {190, 50}, {160, 50}, {160, 30}, {185, 30}, {185, 20}, {160, 20}};
  const std::vector<Line> rings = {arms, Backward(Box(165, 35, 175, 45)), Backward(Box(162, 5, 172, 15)),
                                   Box(164, 7, 170, 13)};
  const Clipped clipped = ClipRings(projector, rings);
  ASSERT_GE(clipped.polygons.size(), 3u);
  ASSERT_EQ(clipped.polygons[0].size(), 2u);
  ASSERT_EQ(clipped.polygons[1].size(), 2u);
  const bool bFirstNorth = clipped.polygons[0][0][0].y > 25.0;
  const std::vector<Line>& north = clipped.polygons[bFirstNorth ? 0 : 1];
  const std::vector<Line>& south = clipped.polygons[bFirstNorth ? 1 : 0];
  EXPECT_TRUE(SamePoints(north[1], rings[1]));
  EXPECT_TRUE(SamePoints(south[1], rings[2]));
  ASSERT_EQ(clipped.polygons[2].size(), 1u);
  EXPECT_TRUE(SamePoints(clipped.polygons[2][0], rings[3]));
}

// An island that pokes out twice stays one; what lies between the tips outside is not filled.
TEST(ProjectionClip, AnIslandThatTouchesTheEdgeTwice) {
  Projector projector = Mercator();
  const Line island = {{170, 0}, {182, 10}, {178, 20}, {182, 30}, {170, 40}};
  const Clipped clipped = ClipRings(projector, {island});
  ASSERT_GE(clipped.polygons.size(), 1u);
  ASSERT_EQ(clipped.polygons[0].size(), 1u);
  // Less the two tips, 2 deep and (2 / 12 * 10 + 5) high.
  const double whole = std::abs(TwiceArea(island)), tip = 2.0 * (2.0 / 12.0 * 10.0 + 5.0);
  EXPECT_NEAR(std::abs(TwiceArea(clipped.polygons[0][0])), whole - 2.0 * tip, 0.5);
}

TEST(ProjectionClip, AGapAroundACornerFollowsBothSides) {
  Projector projector = Mercator();
  const Clipped clipped = ClipRings(projector, {Box(170, 60, 190, 100)});
  ASSERT_GE(clipped.polygons.size(), 1u);
  EXPECT_NEAR(TwiceArea(clipped.polygons[0][0]), 2.0 * 10.0 * 30.0, 0.5);
  const Line& ring = clipped.polygons[0][0];
  EXPECT_TRUE(std::any_of(ring.begin(), ring.end(), [](const shr::Vec2d& p) {
    return std::abs(p.x - 180.0) < kInside && std::abs(p.y - 90.0) < kInside;
  }));
}

TEST(ProjectionClip, APolygonAroundTheWholeAreaYieldsTheRim) {
  Projector projector = Mercator();
  for (const bool bBackward : {false, true}) {
    Line all = Box(-200, -100, 200, 100);
    if (bBackward) all = Backward(all);
    const Clipped clipped = ClipRings(projector, {Repeated(all), Backward(Repeated(Box(0, 0, 10, 10)))});
    ASSERT_EQ(clipped.polygons.size(), 1u);  // the copy is 400 wide and covers -560 to -160 only
    ASSERT_EQ(clipped.polygons[0].size(), 2u);
    const Line& rim = clipped.polygons[0][0];
    EXPECT_NEAR(TwiceArea(rim), (bBackward ? -2.0 : 2.0) * 360.0 * 180.0, 2.0);
    EXPECT_TRUE(SamePoints({rim.front()}, {rim.back()}));
  }
}

TEST(ProjectionClip, APolygonAroundACapYieldsTheCap) {
  Area area(ProjectionMethodGnomonic, &internal::InsideGnomonic, 20.0, 10.0);
  const Line all = Box(-80, -85, 130, 85);
  const Clipped probed = ClipRings(area.projector, {all});
  const Clipped refined = ClipRings(area.projector, {all}, internal::kRefined);
  ASSERT_EQ(probed.polygons.size(), 1u);
  ASSERT_EQ(refined.polygons.size(), 1u);
  // The cap in the plane: the integral over the latitudes of twice acos((0.5 - sin P sin phi) / (cos P cos phi)),
  // by Simpson's rule in 1e6 steps (Python).
  const double kArea = 12250.7557;
  EXPECT_NEAR(TwiceArea(refined.polygons[0][0]) / 2.0, kArea, 0.0005 * kArea);
  EXPECT_NEAR(TwiceArea(probed.polygons[0][0]) / 2.0, kArea, 0.02 * kArea);
  for (const shr::Vec2d& p : refined.polygons[0][0]) {
    EXPECT_TRUE(area.projector.LatLonInProjection(p));
    const double cosine =
        std::sin(p.y * M_PI / 180) * std::sin(M_PI / 18) +
        std::cos(p.y * M_PI / 180) * std::cos(M_PI / 18) * std::cos((p.x - 20) * M_PI / 180);
    EXPECT_NEAR(std::acos(cosine) * 180 / M_PI, 60.0, 0.002);
  }
  EXPECT_TRUE(probed.lines.empty());
}

// The area leaves out a cap of 10 degrees about the antipode.
TEST(ProjectionClip, WhatTheAreaLeavesOutBecomesAHole) {
  Area area(ProjectionMethodAzimuthalEquidistant, &internal::InsideAzimuthalEquidistant, 0.0, 0.0);
  const Line sea = Backward(Box(150, -30, 210, 30));
  const Clipped clipped = ClipRings(area.projector, {sea}, internal::kRefined);
  ASSERT_EQ(clipped.polygons.size(), 1u);
  ASSERT_EQ(clipped.polygons[0].size(), 2u);
  EXPECT_TRUE(SamePoints(clipped.polygons[0][0], sea));
  // A circle of 10 degrees on the sphere is pi 10^2 in the plane but for 1 / cos phi.
  EXPECT_NEAR(TwiceArea(clipped.polygons[0][1]) / 2.0, M_PI * 100.0, 4.0);
  // And a turn to the west.
  Line west = sea;
  for (shr::Vec2d& p : west) p.x -= 360.0;
  EXPECT_EQ(ClipRings(area.projector, {west}).polygons[0].size(), 2u);
  // Beside it there is none.
  EXPECT_EQ(ClipRings(area.projector, {Box(100, -30, 160, 30)}).polygons[0].size(), 1u);
}

// A polygon that fills the cap but for a wedge: the gap is the long way around, where the chord is short.
TEST(ProjectionClip, TheLongWayAround) {
  Area area(ProjectionMethodGnomonic, &internal::InsideGnomonic, 0.0, 0.0);
  const Line all = {{0, 0}, {80, 5}, {80, 80}, {-80, 80}, {-80, -80}, {80, -80}, {80, -5}};
  for (const auto& options : {internal::kFiveProbes, internal::kRefined}) {
    const Clipped clipped = ClipRings(area.projector, {all}, options);
    ASSERT_EQ(clipped.polygons.size(), 1u);
    const Clipped whole = ClipRings(area.projector, {Box(-85, -85, 85, 85)}, internal::kRefined);
    const double wedge = 2.0 * 60.0 * 60.0 * std::tan(std::atan(5.0 / 80.0));
    EXPECT_NEAR(std::abs(TwiceArea(clipped.polygons[0][0])), TwiceArea(whole.polygons[0][0]) - wedge,
                0.02 * wedge + 0.02 * TwiceArea(whole.polygons[0][0]) * (options.tolerance > 1.0 ? 1 : 0));
  }
}

// Five probes on an arc of 60 degrees leave chords that cut off a lake near the rim: they are set closer.
TEST(ProjectionClip, AChordNeverCutsALake) {
  Area area(ProjectionMethodOrthographic, &internal::InsideHemisphere, 0.0, 30.0);
  // The rim is 60 degrees below the centre: latitude -60 on the central meridian.
  const Line land = Box(-60, -85, 60, 0);
  const Line lake = Backward(Box(-1.5, -59.9, 1.5, -58.5));
  const Clipped clipped = ClipRings(area.projector, {land, lake});
  ASSERT_EQ(clipped.polygons.size(), 1u);
  ASSERT_EQ(clipped.polygons[0].size(), 2u);
  const Line& ring = clipped.polygons[0][0];
  for (size_t i = 0; i < ring.size(); ++i) {  // no edge passes above the lake's lower side within its width
    const shr::Vec2d &a = ring[i], &b = ring[(i + 1) % ring.size()];
    if (std::max(a.x, b.x) < -1.5 || std::min(a.x, b.x) > 1.5 || std::max(a.y, b.y) > -1.0) continue;
    for (double x : {-1.5, 1.5}) {
      if ((a.x - x) * (b.x - x) <= 0.0) {
        EXPECT_LT(a.y + (x - a.x) / (b.x - a.x) * (b.y - a.y), -59.9);
      }
    }
  }
}

// Crossings nearer to each other than they are found.
TEST(ProjectionClip, ThinProngsKeepTheirOrder) {
  Projector projector = Mercator();
  Line comb = {{170, 0}};
  constexpr int kProngs = 50;
  for (int i = 0; i < kProngs; ++i) {
    const double y = 0.0004 * i;
    comb.emplace_back(180.1 + 0.001 * (i % 7), y);
    comb.emplace_back(180.1, y + 0.0002);
    comb.emplace_back(179.9 - 0.001 * (i % 5), y + 0.0002);
    comb.emplace_back(179.9, y + 0.0003);
  }
  comb.emplace_back(170, 0.02);
  const Clipped clipped = ClipRings(projector, {comb});
  ASSERT_GE(clipped.polygons.size(), 1u);
  EXPECT_EQ(clipped.polygons[0].size(), 1u);
  EXPECT_EQ(std::count_if(clipped.polygons.begin(), clipped.polygons.end(),
                          [](const auto& rings) { return rings[0][0].x > 0.0; }),
            1);
}

// A hundred times the prongs ask the inside test a hundred times as often.
TEST(ProjectionClip, TheWorkGrowsWithThePoints) {
  const auto asked = [](int prongs) {
    Area area(ProjectionMethodMercator, &internal::InsideWindowBelowPoles, 0.0, 0.0);
    Line comb = {{170, 0}};
    for (int i = 0; i < prongs; ++i) {
      const double y = 50.0 * i / prongs, h = 25.0 / prongs;
      comb.emplace_back(190, y);
      comb.emplace_back(190, y + h);
      comb.emplace_back(175, y + h);
      comb.emplace_back(175, y + 2 * h);
    }
    comb.emplace_back(170, 50);
    ClipRings(area.projector, {comb});
    return static_cast<double>(area.actor->asked) / prongs;
  };
  EXPECT_LT(asked(20000), 1.5 * asked(200));
}

// The first ring with an offset decides, and the whole polygon moves.
TEST(ProjectionClip, TheCopyIsOfTheWholePolygon) {
  Projector projector = Mercator();
  const Clipped clipped =
      ClipRings(projector, {Box(-150, 0, -140, 10), Box(170, 20, 185, 30), Box(-190, 40, -170, 50)});
  // As it is: the three, the second and third cut.  The copy, 360 to the west: what lay beyond 180.
  ASSERT_EQ(clipped.polygons.size(), 4u);
  EXPECT_NEAR(TwiceArea(clipped.polygons[3][0]), 2.0 * 5.0 * 10.0, 0.2);
  EXPECT_LT(clipped.polygons[3][0][0].x, -174.0);
}

// ---- messages ----------------------------------------------------------------------------------------------

TEST(ProjectionClip, MessagesOfPolylines) {
  Projector projector = Mercator();
  const Line line = {{170, 0}, {190, 0}};
  Clipped clipped;
  const char* const few = "Not enough points for polyline.";
  EXPECT_RAISES(projector.PreclipPolyline(&clipped, 1, line.data(), &Clipped::OnLine), ErrCorrupt,
                "ProjectionClip", few);
  EXPECT_RAISES(projector.PreclipPolyline(&clipped, 0, line.data(), &Clipped::OnLine), ErrCorrupt,
                "ProjectionClip", few);
  EXPECT_RAISES(projector.PreclipPolyline(&clipped, 2, nullptr, &Clipped::OnLine), ErrCorrupt,
                "ProjectionClip", few);
  EXPECT_RAISES(projector.PreclipPolyline(&clipped, 2, line.data(), nullptr), ErrCorrupt, "ProjectionClip",
                few);
  EXPECT_EQ(ErrCorrupt, 1026);
  clipped.callsUntilNo = 1;
  EXPECT_RAISES(projector.PreclipPolyline(&clipped, 2, line.data(), &Clipped::OnLine), ErrCorrupt,
                "ProjectionClip", "Failed clipping polyline.");
  EXPECT_EQ(clipped.lines.size(), 1u);
  clipped.callsUntilNo = 2;
  EXPECT_RAISES(projector.PreclipPolyline(&clipped, 2, line.data(), &Clipped::OnLine), ErrCorrupt,
                "ProjectionClip", "Failed clipping adjusted polyline.");
  EXPECT_EQ(clipped.lines.size(), 3u);
  const Line lost = {{170, 0}, {kNan, 0}};
  EXPECT_RAISES(ClipLine(projector, lost), ErrCorrupt, "ProjectionClip", "Failed clipping polyline.");
}

TEST(ProjectionClip, MessagesOfPolygons) {
  Projector projector = Mercator();
  const Line ring = Box(170, 0, 190, 10);
  const size_t four = 4, one = 1;
  Clipped clipped;
  const auto clip = [&](size_t rings, const size_t* counts, const shr::Vec2d* points,
                        ORVPolygonCallback polygon, ORVPolylineCallback line) {
    projector.PreclipPolygon(&clipped, rings, counts, points, polygon, line);
  };
  const char* const bad = "Bad parameter to function call.";
  const auto onPolygon = &Clipped::OnPolygon;
  const auto onLine = &Clipped::OnLine;
  EXPECT_RAISES(clip(0, &four, ring.data(), onPolygon, onLine), ErrBadParameter, "ProjectionClip", bad);
  EXPECT_RAISES(clip(1, nullptr, ring.data(), onPolygon, onLine), ErrBadParameter, "ProjectionClip", bad);
  EXPECT_RAISES(clip(1, &four, ring.data(), nullptr, onLine), ErrBadParameter, "ProjectionClip", bad);
  EXPECT_RAISES(clip(1, &four, ring.data(), onPolygon, nullptr), ErrBadParameter, "ProjectionClip", bad);
  EXPECT_EQ(ErrBadParameter, 1032);
  const char* const internal = "Bad parameters to internal function call.";
  EXPECT_RAISES(clip(1, &four, nullptr, onPolygon, onLine), ErrCorrupt, "ProjectionClip", internal);
  EXPECT_RAISES(clip(1, &one, ring.data(), onPolygon, onLine), ErrCorrupt, "ProjectionClip", internal);
  EXPECT_TRUE(clipped.polygons.empty());
  const size_t badSecond[] = {4, 0};
  EXPECT_RAISES(clip(2, badSecond, ring.data(), onPolygon, onLine), ErrCorrupt, "ProjectionClip", internal);
  // One call of each kind as it is, then the same for the copy.
  clipped.callsUntilNo = 1;
  EXPECT_RAISES(clip(1, &four, ring.data(), onPolygon, onLine), ErrBadParameter, "ProjectionClip",
                "Failed clipping polygon.");
  clipped.callsUntilNo = 2;
  EXPECT_RAISES(clip(1, &four, ring.data(), onPolygon, onLine), ErrBadParameter, "ProjectionClip",
                "Failed clipping polygon.");
  for (size_t calls : {3u, 4u}) {
    clipped.callsUntilNo = calls;
    EXPECT_RAISES(clip(1, &four, ring.data(), onPolygon, onLine), ErrBadParameter, "ProjectionClip",
                  "Failed clipping adjusted polygon.");
  }
  Line lost = ring;
  lost[2].y = kInfinite;
  EXPECT_RAISES(clip(1, &four, lost.data(), onPolygon, onLine), ErrBadParameter, "ProjectionClip",
                "Failed clipping polygon.");
}

TEST(ProjectionClip, NoMemory) {
  Projector projector = Mercator();
  const Line line = {{170, 0}, {190, 0}};
  Clipped clipped;
  const size_t all = std::numeric_limits<size_t>::max();
  EXPECT_RAISES(projector.PreclipPolyline(&clipped, all, line.data(), &Clipped::OnLine), ErrCorrupt,
                "ProjCSegList", "Out of memory.");
}

TEST(ProjCSegList, InsertionShiftsTheLaterOnes) {
  CSegList list;
  list.Append({{0, 0}, {1, 0}});
  list.Append({{2, 0}, {3, 0}});
  list.Insert(1, {{1, 0}, {2, 0}, true, false});
  list.Insert(99, {{3, 0}, {4, 0}, false, true});
  ASSERT_EQ(list.Count(), 4u);
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(list[i].start.x, static_cast<double>(i));
  EXPECT_TRUE(list[0].IsInside());
  EXPECT_FALSE(list[1].IsInside());
  EXPECT_FALSE(list[3].IsInside());
  EXPECT_RAISES(list.Reserve(std::numeric_limits<size_t>::max()), ErrCorrupt, "ProjCSegList",
                "Out of memory.");
  EXPECT_EQ(list.Count(), 4u);
}

TEST(ProjCSegList, ClassifyingCutsAndGoesOnBehindTheCut) {
  Area area(ProjectionMethodMercator, &internal::InsideWindowBelowPoles, 0.0, 0.0);
  const ProjectionDef def = Valid(ProjectionMethodMercator);
  const internal::ClipArea clip(area.actor, *def.GetParameters());
  CSegList list;
  list.Append({{170, 0}, {190, 0}});
  list.Append({{190, 0}, {190, 5}});
  list.Append({{190, 5}, {170, 5}});
  ASSERT_TRUE(internal::Classify(clip, list));
  ASSERT_EQ(list.Count(), 5u);
  const bool inside[] = {true, false, false, false, true};
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(list[i].startInside, inside[i]) << i;
    EXPECT_EQ(list[i].endInside, inside[i]) << i;
  }
  EXPECT_EQ(list[0].end.x, list[1].start.x);
  EXPECT_EQ(list[1].end.x, 190.0);
}

// The last chord of the five probes runs from latitude -55.8 to -55.5 there and the rim from -56.5 to -56.3: the lake
// lies between them.
TEST(ProjectionClip, AChordNeverPassesALakeBy) {
  Area area(ProjectionMethodOrthographic, &internal::InsideHemisphere, 0.0, 30.0);
  const Line lake = Backward(Box(29.2, -56.2, 30.2, -55.95));
  const Clipped c = ClipRings(area.projector, {Box(-40, -85, 40, 0), lake});
  ASSERT_EQ(c.polygons.size(), 1u);
  ASSERT_EQ(c.polygons[0].size(), 2u);
  EXPECT_TRUE(SamePoints(c.polygons[0][1], lake));
}

// 3000 teeth side by side, each of which is a piece of its own, and each look for what is around one passes all others.
TEST(ProjectionClip, ManyPiecesSideBySideAreSeparate) {
  std::vector<Line> teeth;
  for (int i = 0; i < 3000; ++i) teeth.push_back(Box(0.01 * i, 0.0, 0.01 * i + 0.005, 1.0));
  const std::vector<internal::RingPlace> places = internal::Nesting(teeth);
  for (const internal::RingPlace& place : places) EXPECT_FALSE(place.bHole);
  teeth.push_back(Box(-1.0, -1.0, 31.0, 2.0));  // around all of them
  const std::vector<internal::RingPlace> within = internal::Nesting(teeth);
  for (size_t i = 0; i + 1 < within.size(); ++i) EXPECT_EQ(within[i].parent, 3000) << i;
}

// The five points of the whole gap stand in the ring as FollowClipEdge gives them.
TEST(ProjectionClip, TheFiveProbesOfAGapStandInTheRing) {
  const struct {
    ProjectionMethod method;
    AreaOnly::Test test;
    double lon, lat;
    Line ring;
  } rows[] = {
      {ProjectionMethodMercator, &internal::InsideWindow, 0.0, 0.0, Box(150, 20, 210, 40)},  // one side
      {ProjectionMethodOrthographic, &internal::InsideHemisphere, 0.0, 30.0,
       Box(-40, -85, 40, 0)},  // the rim bends
      {ProjectionMethodOrthographic, &internal::InsideHemisphere, 20.0, -10.0, Box(60, -40, 140, 30)},
      {ProjectionMethodAzimuthalEquidistant, &internal::InsideAzimuthalEquidistant, 0.0, 40.0,
       Box(150, -60, 178, -40)},
  };
  for (const auto& row : rows) {
    Area area(row.method, row.test, row.lon, row.lat);
    const Clipped c = ClipRings(area.projector, {row.ring});
    ASSERT_EQ(c.polygons.size(), 1u) << row.method;
    ASSERT_EQ(c.lines.size(), 1u) << row.method;
    const shr::Vec2d exit = c.lines[0].back(), entry = c.lines[0].front();
    const internal::ClipArea clip(area.actor,
                                  *internal::ProjectorAccess::Projection(area.projector).GetParameters());
    std::vector<shr::Vec2d> five;
    ASSERT_TRUE(internal::FollowClipEdge(clip, &exit, &entry, five, 5));
    EXPECT_EQ(five.size(), 5u) << row.method;
    const Line& ring = c.polygons[0][0];
    auto at = std::find_if(ring.begin(), ring.end(),
                           [&](const shr::Vec2d& p) { return p.x == exit.x && p.y == exit.y; });
    ASSERT_NE(at, ring.end()) << row.method;
    for (const shr::Vec2d& probe : five) {
      at =
          std::find_if(at, ring.end(), [&](const shr::Vec2d& p) { return p.x == probe.x && p.y == probe.y; });
      ASSERT_NE(at, ring.end()) << row.method << ": " << probe.x << ", " << probe.y;
    }
  }
}

}  // namespace orv::test
