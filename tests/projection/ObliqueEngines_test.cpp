#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <memory>

#include "orv/core/internal/Angle.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/Projector.h"
#include "tests/projection/EngineProperties.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using internal::ToDegrees;
using internal::ToRadians;
using test::BothMarked;
using test::ExpectNear;
using test::Forward;
using test::InRadians;
using test::Inverse;
using test::MakeEngine;
using test::On;

constexpr double kClarkeF = 0.0033900753040885176;  // Clarke 1866
constexpr double kClarkeA = 6378206.4;

constexpr const char* kZero =
    "Undefined mathematical result during projection.  Unexpected zero value in intermediate calculation.";
constexpr const char* kZeroTerm =
    "Undefined mathematical result during projection.  Unexpected zero value in intermediate term.";

// ---- Oblique Mercator ------------------------------------------------------------------------------------

ProjectionParameters Oblique(double lon1, double lat1, double lon2, double lat2) {
  ProjectionParameters p = On(ProjectionMethodObliqueMercator, 1000.0, 0.0);
  p.Lon1 = lon1;
  p.Lat1 = lat1;
  p.Lon2 = lon2;
  p.Lat2 = lat2;
  return p;
}

TEST(ObliqueMercator, CannotBeSetUpWithItsFirstPointOnTheEquator) {
  EXPECT_RAISES(MakeEngine(Oblique(10, 0, 50, 30)), 1026, "ProjObliqueMercator", kZero);
}

TEST(ObliqueMercator, HasItsTwoPointsOnTheLineOfYZero) {
  const auto engine = MakeEngine(Oblique(-110, 30, -60, 50));
  EXPECT_NEAR(Forward(*engine, InRadians({-110, 30})).y, 0.0, 1e-10);
  EXPECT_NEAR(Forward(*engine, InRadians({-60, 50})).y, 0.0, 1e-10);
}

// Deliberate: from west to east in the north the pole comes out in the south, and the map is turned by 180
// degrees.
TEST(ObliqueMercator, TakesWhicheverPoleComesOut) {
  const auto eastward = MakeEngine(Oblique(-110, 30, -60, 50)),
             westward = MakeEngine(Oblique(-60, 50, -110, 30));
  const shr::Vec2d first = Forward(*eastward, InRadians({-100, 35})),
                   first2 = Forward(*eastward, InRadians({-80, 45}));
  const shr::Vec2d other = Forward(*westward, InRadians({-100, 35})),
                   other2 = Forward(*westward, InRadians({-80, 45}));
  EXPECT_LT(first2.x, first.x);  // eastwards x becomes less
  EXPECT_GT(other2.x, other.x);
  EXPECT_LT(Forward(*eastward, InRadians({-90, 80})).y, 0.0);  // and y northwards
  EXPECT_GT(Forward(*westward, InRadians({-90, 80})).y, 0.0);
  EXPECT_NEAR(first.y, -other.y, 1e-9);
  EXPECT_NEAR(first2.x - first.x, -(other2.x - other.x), 1e-9);
}

TEST(ObliqueMercator, MarksThePolesOfItsGraticule) {
  // The central line is the meridian of Greenwich, its poles lie on the Equator at 90 degrees.
  const auto engine = MakeEngine(Oblique(0, 45, 0, 90));
  EXPECT_TRUE(BothMarked(Forward(*engine, InRadians({90, 0}))));
  EXPECT_TRUE(BothMarked(Forward(*engine, InRadians({-90, 0}))));
  EXPECT_FALSE(BothMarked(Forward(*engine, InRadians({90, 1e-6}))));
  EXPECT_FALSE(BothMarked(Inverse(*engine, {0.0, 1e6})));
}

TEST(ObliqueMercator, K0ScalesTheMap) {
  ProjectionParameters p = Oblique(-60, 50, -110, 30);
  const shr::Vec2d a = Forward(*MakeEngine(p), InRadians({-90, 60}));
  p.K0 = 0.5;
  const auto half = MakeEngine(p);
  const shr::Vec2d b = Forward(*half, InRadians({-90, 60}));
  ExpectNear(b, 0.5 * a.x, 0.5 * a.y, 1e-10);
  const shr::Vec2d back = Inverse(*half, b);
  EXPECT_NEAR(std::remainder(ToDegrees(back.x) + 90.0, 360.0), 0.0, 1e-11);
  EXPECT_NEAR(ToDegrees(back.y), 60.0, 1e-11);
}

// ---- Hotine ----------------------------------------------------------------------------------------------

ProjectionParameters ByAzimuth(double lon1, double lat0, double alpha) {
  ProjectionParameters p = On(ProjectionMethodHotine, kClarkeA, kClarkeF);
  p.Lon1 = lon1;
  p.Lat0 = lat0;
  p.Alpha = alpha;
  p.bUseAlpha = true;
  p.K0 = 0.9996;
  return p;
}

ProjectionParameters ByPoints(double lat0, double lon1, double lat1, double lon2, double lat2) {
  ProjectionParameters p = On(ProjectionMethodHotine, kClarkeA, kClarkeF);
  p.Lat0 = lat0;
  p.Lon1 = lon1;
  p.Lat1 = lat1;
  p.Lon2 = lon2;
  p.Lat2 = lat2;
  p.K0 = 0.9996;
  return p;
}

TEST(Hotine, SetUpFailuresHaveTheirTexts) {
  ProjectionParameters disk = ByAzimuth(10, 20, 30);
  disk.ellipsoid.SetFlattening(1.0);
  EXPECT_RAISES(
      MakeEngine(disk), 1026, "ProjHotine",
      "Undefined mathematical result during projection.  Square of ellipsoid eccentricity value must not be "
      "exactly one.");
  EXPECT_RAISES(
      MakeEngine(ByAzimuth(10, 20, 0)), 1026, "ProjHotine",
      "Undefined mathematical result during projection.  Alpha parameter for Hotine Oblique Mercator projection "
      "must be nonzero.");
  // P is 0 between points of one latitude.
  EXPECT_RAISES(MakeEngine(ByPoints(40, -120, 30, -80, 30)), 1026, "ProjHotine", kZeroTerm);
  // G is 0 where the line's first point has the latitude of the centre on the Equator.
  EXPECT_RAISES(MakeEngine(ByPoints(0, -120, 0, -80, 30)), 1026, "ProjHotine", kZeroTerm);
  // F is 0 at the south pole, where D - sqrt(D^2 - 1) vanishes in doubles.
  EXPECT_RAISES(MakeEngine(ByAzimuth(10, -90, 30)), 1026, "ProjHotine", kZeroTerm);
  std::feclearexcept(FE_ALL_EXCEPT);
  EXPECT_RAISES(MakeEngine(ByPoints(-90, -120, -30, -80, -50)), 1026, "ProjHotine", kZeroTerm);
  EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_INVALID), 0);
}

// Deliberate: t of the south pole is 1.1920928955078125e-07, and F is 3.4028234663852886e38 where H is 0.  Expected
// values: equations (9-11) to (9-31) written out in Python, with these two numbers.
TEST(Hotine, APoleAsFirstPointTakesTheSubstitutes) {
  std::feclearexcept(FE_ALL_EXCEPT);
  ExpectNear(Forward(*MakeEngine(ByPoints(-40, 20, -90, 35, -50)), InRadians({25, -45})), -5046210.61180779,
             -788165.4747063352, 1e-6);
  ExpectNear(Forward(*MakeEngine(ByPoints(40, 20, 90, 35, 50)), InRadians({25, 45})), 5046210.686167157,
             -788165.5228644477, 1e-6);
  EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_INVALID), 0);
}

TEST(Hotine, AFailedSetUpIsThatOfTheProjectorToo) {
  const ProjectionDef def(ByPoints(40, -120, 30, -80, 30));
  EXPECT_EQ(def.CheckParameters(), 0);
  EXPECT_RAISES(Projector{def}, 1026, "ProjHotine", kZeroTerm);
}

TEST(Hotine, TheFlagsSelectRotationAndOffsetIndependently) {
  ProjectionParameters p = ByAzimuth(-77.7610558, 36, 14.3394883);
  const shr::Vec2d at = InRadians({-76.87079527777777, 38.80921277777777});
  const auto run = [&](bool rotate, bool offset) {
    p.bRotate = rotate;
    p.bUOffset = offset;
    return Forward(*MakeEngine(p), at);
  };
  const shr::Vec2d uv = run(false, false), shifted = run(false, true);
  // u of the centre is uc.
  p.bRotate = p.bUOffset = false;
  const double uc = Forward(*MakeEngine(p), InRadians({-77.7610558, 36})).x;
  ExpectNear(shifted, uv.x - uc, uv.y, 1e-6);
  const double alpha = ToRadians(14.3394883);
  const auto rotated = [&](double u, double v) {
    return shr::Vec2d(v * std::cos(alpha) + u * std::sin(alpha), u * std::cos(alpha) - v * std::sin(alpha));
  };
  const shr::Vec2d xy = rotated(uv.x, uv.y), xyShifted = rotated(uv.x - uc, uv.y);
  ExpectNear(run(true, false), xy.x, xy.y, 1e-6);
  ExpectNear(run(true, true), xyShifted.x, xyShifted.y, 1e-6);
}

TEST(Hotine, UOfTheTwoPointFormIsOffsetToTheParallelOfTheCentreInBothHemispheres) {
  for (const double south : {1.0, -1.0}) {
    ProjectionParameters p = ByPoints(40 * south, -122.3, 47.5 * south, -80.2, 25.7 * south);
    p.bUOffset = true;
    const auto engine = MakeEngine(p);
    // u = 0, v = 0 is the point of the central line in the latitude Lat0.
    const shr::Vec2d origin = Inverse(*engine, {0, 0});
    EXPECT_NEAR(ToDegrees(origin.y), 40 * south, 1e-9);
    EXPECT_GT(ToDegrees(origin.x), -122.3);
    EXPECT_LT(ToDegrees(origin.x), -80.2);
  }
}

TEST(Hotine, BringsTheLongitudeNextToItsCentralLine) {
  const auto engine = MakeEngine(ByAzimuth(-170, 50, 20));
  const shr::Vec2d a = Forward(*engine, InRadians({175, 51})), b = Forward(*engine, InRadians({-185, 51}));
  ExpectNear(a, b.x, b.y, 1e-7);
}

TEST(Hotine, HasItsPolesWhereTheirNeighboursAre) {
  for (const bool useAlpha : {true, false}) {
    ProjectionParameters p = useAlpha ? ByAzimuth(-77, 36, 14) : ByPoints(40, -122.3, 47.5, -80.2, 25.7);
    p.bRotate = true;
    const auto engine = MakeEngine(p);
    for (const double lat : {90.0, -90.0}) {
      const shr::Vec2d pole = Forward(*engine, InRadians({-60, lat}));
      const shr::Vec2d near = Forward(*engine, InRadians({-60, lat * (1 - 1e-10)}));
      EXPECT_FALSE(BothMarked(pole));
      ExpectNear(pole, near.x, near.y, 0.02);  // a hundred millionth of a degree away
      const shr::Vec2d back = Inverse(*engine, pole);
      EXPECT_NEAR(ToDegrees(back.y), lat, 1e-8);
    }
  }
}

TEST(Hotine, PointsOnBothSidesOf180DegreesMustBeGivenInOneTurn) {
  const auto turned = MakeEngine(ByPoints(40, -10, 45, 10, 30));
  const auto across = MakeEngine(ByPoints(40, 170, 45, 190, 30));
  const shr::Vec2d expected = Forward(*turned, InRadians({-5, 42}));
  const shr::Vec2d point = Forward(*across, InRadians({175, 42}));
  ExpectNear(point, expected.x, expected.y, 1e-6);
  // Deliberate: 170 and -170 are taken as 340 degrees apart.
  const auto literal = MakeEngine(ByPoints(40, 170, 45, -170, 30));
  const shr::Vec2d wrong = Forward(*literal, InRadians({175, 42}));
  EXPECT_GT(std::hypot(wrong.x - expected.x, wrong.y - expected.y), 1e5);
}

TEST(Hotine, AtTheEquatorTheCentreIsTheOriginOfU) {
  ProjectionParameters p = ByAzimuth(15, 0, 22.5);
  const shr::Vec2d centre = Forward(*MakeEngine(p), InRadians({15, 0}));
  ExpectNear(centre, 0, 0, 1e-8);
  p.bUOffset = true;
  ExpectNear(Forward(*MakeEngine(p), InRadians({15, 0})), 0, 0, 1e-8);
}

TEST(Hotine, AnAzimuthOf90DegreesIsAccepted) {
  const auto engine = MakeEngine(ByAzimuth(15, 40, 90));
  EXPECT_FALSE(BothMarked(Forward(*engine, InRadians({20, 41}))));
  // Along the Equator the poles are those of the oblique graticule.
  const auto equatorial = MakeEngine(ByAzimuth(15, 0, 90));
  EXPECT_FALSE(BothMarked(Forward(*equatorial, InRadians({20, 41}))));
  EXPECT_TRUE(BothMarked(Forward(*equatorial, InRadians({20, 90}))));
  EXPECT_TRUE(BothMarked(Forward(*equatorial, InRadians({20, -90}))));
}

TEST(Hotine, WithItsCentreAtTheNorthPoleHasNoPoints) {
  const auto engine = MakeEngine(ByAzimuth(15, 90, 30));
  std::feclearexcept(FE_ALL_EXCEPT);
  EXPECT_TRUE(BothMarked(Forward(*engine, InRadians({20, 41}))));
  EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW), 0);
}

TEST(Hotine, OfTheSphereIsAnObliqueMercator) {
  // With e = 0: the central line is a great circle at the scale K0.
  ProjectionParameters p = ByPoints(30, -60, 50, -110, 20);
  p.ellipsoid.SetFlattening(0.0);
  const auto engine = MakeEngine(p);
  const shr::Vec2d a = Forward(*engine, InRadians({-60, 50})), b = Forward(*engine, InRadians({-110, 20}));
  EXPECT_NEAR(a.y, 0.0, 1e-6);
  EXPECT_NEAR(b.y, 0.0, 1e-6);
  const double cosine = std::sin(ToRadians(50)) * std::sin(ToRadians(20)) +
                        std::cos(ToRadians(50)) * std::cos(ToRadians(20)) * std::cos(ToRadians(50));
  EXPECT_NEAR(std::fabs(a.x - b.x), 0.9996 * kClarkeA * std::acos(cosine), 1e-6);
}

}  // namespace
}  // namespace orv
