#include "tests/projection/EngineProperties.h"

#include <cfenv>
#include <cmath>
#include <limits>

namespace orv::test {

namespace {

using internal::kMarker;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The arc between two points, degrees; for small arcs.
double ArcBetween(const shr::Vec2d& a, const shr::Vec2d& b) {
  const double dLat = a.y - b.y;
  const double dLon = std::remainder(a.x - b.x, 360.0) * std::cos(internal::ToRadians(b.y));
  return std::hypot(dLat, dLon);
}

}  // namespace

std::vector<shr::Vec2d> EngineProperties::Area(size_t count) const {
  const EngineCase& c = GetParam();
  std::mt19937_64 random(kEngineSeed);
  // Not std::uniform_real_distribution, whose numbers differ between libraries.
  const auto unit = [&random] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  std::vector<shr::Vec2d> points;
  for (size_t i = 0; i < count; ++i) {
    const double u = unit(), v = unit();
    points.emplace_back(c.west + (c.east - c.west) * u, c.south + (c.north - c.south) * v);
  }
  return points;
}

TEST_P(EngineProperties, PointsOfTheAreaComeBack) {
  const EngineCase& c = GetParam();
  Projector projector(c.def);
  const std::vector<shr::Vec2d> given = Area(2000);
  std::vector<shr::Vec2d> points = given;
  projector.TransformForward(points);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  projector.TransformInverse(points);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  double worst = 0.0;
  for (size_t i = 0; i < given.size(); ++i) worst = std::fmax(worst, ArcBetween(points[i], given[i]));
  EXPECT_LE(worst, c.roundTrip) << "seed " << kEngineSeed;
}

TEST_P(EngineProperties, MarkedPointsPassUntouched) {
  const std::unique_ptr<ProjActor> engine = MakeEngine(*GetParam().def.GetParameters());
  for (const bool forward : {true, false}) {
    const std::vector<shr::Vec2d> given = {
        {kMarker, kMarker}, {kMarker, 0.25}, {0.25, kMarker}, {0.1, 0.2}, {kMarker, kNaN}};
    std::vector<shr::Vec2d> points = given;
    EXPECT_TRUE(forward ? engine->Forward(points.data(), points.size())
                        : engine->Inverse(points.data(), points.size()));
    for (const size_t i : {size_t{0}, size_t{1}, size_t{2}, size_t{4}})
      EXPECT_TRUE(SameBits(points[i], given[i])) << i;
  }
}

TEST_P(EngineProperties, ABatchIsItsPointsOneByOneInAnyOrder) {
  const std::unique_ptr<ProjActor> engine = MakeEngine(*GetParam().def.GetParameters());
  std::vector<shr::Vec2d> given;
  for (const shr::Vec2d& point : Area(1003)) given.push_back(InRadians(point));
  given[100] = {kMarker, 1};
  given[101] = {kNaN, 1};
  for (const bool forward : {true, false}) {
    std::vector<shr::Vec2d> batch = given;
    const auto run = [&](shr::Vec2d* points, size_t n) {
      return forward ? engine->Forward(points, n) : engine->Inverse(points, n);
    };
    EXPECT_TRUE(run(batch.data(), batch.size()));
    std::vector<shr::Vec2d> reversed(given.rbegin(), given.rend());
    EXPECT_TRUE(run(reversed.data(), reversed.size()));
    for (size_t i = 0; i < given.size(); ++i) {
      shr::Vec2d alone = given[i];
      EXPECT_TRUE(run(&alone, 1));
      ASSERT_TRUE(SameBits(batch[i], alone)) << i;
      ASSERT_TRUE(SameBits(reversed[given.size() - 1 - i], alone)) << i;
    }
    given = batch;  // metres, for the inverse
  }
}

TEST_P(EngineProperties, CopiesOfTheEngineDoTheSame) {
  const std::unique_ptr<ProjActor> engine = MakeEngine(*GetParam().def.GetParameters());
  const std::unique_ptr<ProjActor> copy = engine->Clone();
  for (const shr::Vec2d& point : Area(20)) {
    const shr::Vec2d xy = Forward(*engine, InRadians(point));
    EXPECT_TRUE(SameBits(Forward(*copy, InRadians(point)), xy));
    EXPECT_TRUE(SameBits(Inverse(*copy, xy), Inverse(*engine, xy)));
  }
}

TEST_P(EngineProperties, PointsThatAreNoNumbersGetTheMarker) {
  const std::unique_ptr<ProjActor> engine = MakeEngine(*GetParam().def.GetParameters());
  Projector projector(GetParam().def);
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    for (const shr::Vec2d point : {shr::Vec2d(bad, 0.5), shr::Vec2d(0.5, bad), shr::Vec2d(bad, bad)}) {
      if (std::isnan(bad)) {
        EXPECT_TRUE(BothMarked(Forward(*engine, point)));
        EXPECT_TRUE(BothMarked(Inverse(*engine, point)));
      }
      // The projector marks a bad coordinate before the engine sees it, in the inverse the whole point.
      std::vector<shr::Vec2d> points = {point};
      projector.TransformForward(points);
      EXPECT_EQ(points[0].x == kMarker, point.x == bad || std::isnan(point.x));
      EXPECT_EQ(points[0].y == kMarker, point.y == bad || std::isnan(point.y));
      EXPECT_TRUE(projector.CheckUnplottableResult());
      points = {point};
      projector.TransformInverse(points);
      EXPECT_TRUE(BothMarked(points[0]));
      EXPECT_TRUE(projector.CheckUnplottableResult());
    }
  }
}

TEST_P(EngineProperties, BothSidesOfTheCentralMeridianAndOfTheEquatorAreAlike) {
  const EngineCase& c = GetParam();
  if (!c.mirrorsLon0 && !c.mirrorsEquator) GTEST_SKIP() << "no symmetry about Lon0 or the Equator";
  ProjectionParameters p = *c.def.GetParameters();
  const double lon0 = p.Lon0;
  p.Lon0 = 0.0;  // so that lambda - Lon0 is exact on both sides
  if (c.mirrorsEquator && p.method != ProjectionMethodMercator) p.Lat0 = 0.0;
  const std::unique_ptr<ProjActor> engine = MakeEngine(p);
  for (const shr::Vec2d& point : Area(200)) {
    const shr::Vec2d at = InRadians({point.x - lon0, point.y});
    const shr::Vec2d xy = Forward(*engine, at);
    if (c.mirrorsLon0) {
      const shr::Vec2d mirrored = Forward(*engine, {-at.x, at.y});
      EXPECT_EQ(mirrored.x, -xy.x);
      EXPECT_EQ(mirrored.y, xy.y);
    }
    if (c.mirrorsEquator) {
      const shr::Vec2d mirrored = Forward(*engine, {at.x, -at.y});
      EXPECT_EQ(mirrored.x, xy.x);
      EXPECT_EQ(mirrored.y, -xy.y);
    }
  }
}

// The flags that a trap would have answered, over the area, all special points of the globe and their images.
TEST_P(EngineProperties, NoPointDividesByZeroOverflowsOrIsInvalid) {
  const EngineCase& c = GetParam();
  const std::unique_ptr<ProjActor> engine = MakeEngine(*c.def.GetParameters());
  std::vector<shr::Vec2d> points;
  for (const shr::Vec2d& point : Area(500)) points.push_back(InRadians(point));
  const ProjectionParameters& p = *c.def.GetParameters();
  for (const double lon0 : {0.0, p.Lon0, p.Lon1}) {
    for (int lon = -360; lon <= 360; lon += 15) {
      for (int lat = -90; lat <= 90; lat += 15) points.push_back(InRadians({lon0 + lon, 0.0 + lat}));
    }
  }
  points.emplace_back(kMarker, kMarker);
  points.emplace_back(kMarker, 0.0);
  const int watched = FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID;
  for (const bool forward : {true, false}) {
    for (shr::Vec2d& point : points) {
      const shr::Vec2d given = point;
      std::feclearexcept(FE_ALL_EXCEPT);
      forward ? engine->Forward(&point, 1) : engine->Inverse(&point, 1);
      const int raised = std::fetestexcept(watched);
      EXPECT_EQ(raised, 0) << (forward ? "forward" : "inverse") << " of " << given.x << ", " << given.y;
    }
  }
  std::feclearexcept(FE_ALL_EXCEPT);
}

#if defined(__GLIBC__)
TEST_P(EngineProperties, TheAreaMeetsNoUnmaskedTrap) {
  Projector projector(GetParam().def);
  std::vector<shr::Vec2d> points = Area(1000);
  std::feclearexcept(FE_ALL_EXCEPT);
  feenableexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID);
  projector.TransformForward(points);
  projector.TransformInverse(points);
  std::fesetenv(FE_DFL_ENV);
  EXPECT_FALSE(projector.CheckUnplottableResult());
}
#endif

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EngineProperties);

}  // namespace orv::test
