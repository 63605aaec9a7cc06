#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Marker.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/Projector.h"
#include "tests/projection/EngineProperties.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using internal::kMarker;
using internal::ToDegrees;
using internal::ToRadians;
using test::BothMarked;
using test::ExpectNear;
using test::Forward;
using test::InRadians;
using test::Inverse;
using test::MakeEngine;
using test::On;

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kClarkeF = 0.0033900753040885176;  // Clarke 1866
constexpr double kClarkeA = 6378206.4;

constexpr const char* kZero =
    "Undefined mathematical result during projection.  Unexpected zero value in intermediate calculation.";

// ---- all of them -----------------------------------------------------------------------------------------

TEST(CylindricalEngines, MethodsWithoutEngineHaveNone) {
  for (const int method : {-1, 0, 1, 2, 28})
    EXPECT_EQ(MakeProjActor(static_cast<ProjectionMethod>(method)), nullptr);
}

TEST(CylindricalEngines, TheInsideTestsAndCutsAreThoseOfTheirMethods) {
  struct Row {
    ProjectionMethod method;
    double lon, lat;
    bool inside;
  };
  // Lon0 10, Lat0 20, Lon1 30, Lat1 40, Lat2 25.
  const Row rows[] = {
      {ProjectionMethodMercator, 189, 89, true},
      {ProjectionMethodMercator, 10, 90, false},
      {ProjectionMethodMercator, 190, 0, false},
      {ProjectionMethodMiller, 189, 89, true},
      {ProjectionMethodMiller, 10, -90, false},
      {ProjectionMethodEquidistantCylindrical, 1000, 1000, true},
      {ProjectionMethodTransverseMercator, 189, 90, true},
      {ProjectionMethodTransverseMercator, -170, 0, false},
      {ProjectionMethodUTM, 189, 90, true},
      {ProjectionMethodUTM, 190, 0, false},
      {ProjectionMethodCassini, 10, -69, true},
      {ProjectionMethodCassini, 10, -71, false},
      {ProjectionMethodObliqueMercator, 500, 69, true},
      {ProjectionMethodObliqueMercator, 10, 71, false},
      {ProjectionMethodObliqueMercator, 10, -6, false},
      {ProjectionMethodHotine, 44, 54, true},
      {ProjectionMethodHotine, 46, 40, false},
      {ProjectionMethodHotine, 30, 56, false},
  };
  for (const Row& row : rows) {
    ProjectionParameters p = On(row.method, 1.0, 0.0);
    p.Lon0 = 10;
    p.Lat0 = 20;
    p.Lon1 = 30;
    p.Lat1 = 40;
    p.Lon2 = 50;
    p.Lat2 = 25;
    const std::unique_ptr<ProjActor> engine = MakeEngine(p);
    const shr::Vec2d point(row.lon, row.lat), west(-175, 0);
    EXPECT_EQ(engine->IsLatLonInside(p, &point), row.inside)
        << row.method << ": " << row.lon << ", " << row.lat;
    EXPECT_FALSE(engine->IsLatLonInside(p, nullptr)) << row.method;
    const bool isCut = row.method != ProjectionMethodEquidistantCylindrical &&
                       row.method != ProjectionMethodCassini && row.method != ProjectionMethodHotine;
    double dx = 7, dy = 7;
    EXPECT_EQ(engine->GetSplitOffset(p, &west, 1, &dx, &dy), isCut) << row.method;
    EXPECT_EQ(dx, isCut ? 360 : 0);
    EXPECT_EQ(dy, 0);
  }
}

TEST(CylindricalEngines, AVanishingScaleMarksTheInverseAndDividesByNothing) {
  for (const ProjectionMethod method : {ProjectionMethodTransverseMercator, ProjectionMethodUTM,
                                        ProjectionMethodObliqueMercator, ProjectionMethodHotine}) {
    ProjectionDef def(method);
    def.SetParameter(ProjectionParameterIDK0, 0.0);
    EXPECT_EQ(def.CheckParameters(), 0);
    const std::unique_ptr<ProjActor> engine = MakeEngine(*def.GetParameters());
    std::feclearexcept(FE_ALL_EXCEPT);
    EXPECT_TRUE(BothMarked(Inverse(*engine, {0.0, 0.0}))) << method;
    EXPECT_TRUE(BothMarked(Inverse(*engine, {5.0, 6.0}))) << method;
    EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID), 0) << method;
  }
}

// ---- Mercator --------------------------------------------------------------------------------------------

TEST(Mercator, OfTheSphereIsTheInverseGudermannianAndHasNoPoles) {
  const auto engine = MakeEngine(On(ProjectionMethodMercator, 1000.0, 0.0));
  ExpectNear(Forward(*engine, InRadians({0, 45})), 0.0, 881.37358701954303, 1e-12);  // ln(1 + sqrt 2)
  EXPECT_TRUE(BothMarked(Forward(*engine, InRadians({0, 90}))));
  EXPECT_TRUE(BothMarked(Forward(*engine, InRadians({0, -90}))));
}

TEST(Mercator, MarksFromJustBelowThePoleOnTheSphereInclusivelyOnTheEllipsoidNot) {
  const double limit = 1.5707963267948963;  // deliberate: two steps of a double below pi/2
  const auto sphere = MakeEngine(On(ProjectionMethodMercator, 1.0, 0.0));
  EXPECT_TRUE(BothMarked(Forward(*sphere, {0.0, limit})));
  EXPECT_TRUE(BothMarked(Forward(*sphere, {0.0, -limit})));
  EXPECT_FALSE(BothMarked(Forward(*sphere, {0.0, std::nextafter(limit, 0.0)})));
  // The ellipsoid also marks where the sine is exactly 1, which is from about 1.05e-8 rad before the pole on.
  const auto ellipsoid = MakeEngine(On(ProjectionMethodMercator, 1.0, kClarkeF));
  EXPECT_TRUE(BothMarked(Forward(*ellipsoid, {0.0, kHalfPi - 1.0e-8})));
  EXPECT_TRUE(BothMarked(Forward(*ellipsoid, {0.0, -kHalfPi + 1.0e-8})));
  EXPECT_FALSE(BothMarked(Forward(*ellipsoid, {0.0, kHalfPi - 1.2e-8})));
}

TEST(Mercator, Lat0IsTheTrueParallelAndNotTheOrigin) {
  ProjectionParameters p = On(ProjectionMethodMercator, 1000.0, 0.0);
  p.Lat0 = 60.0;
  p.Lon0 = 20.0;
  const auto engine = MakeEngine(p);
  ExpectNear(Forward(*engine, InRadians({21, 0})), 1000.0 * 0.5 * ToRadians(1.0), 0.0, 1e-12);
  ExpectNear(Forward(*engine, InRadians({20, 45})), 0.0, 500.0 * 0.88137358701954303, 1e-12);
}

TEST(Mercator, CannotBeSetUpWithATrueParallelAtThePole) {
  for (const double f : {0.0, kClarkeF}) {
    for (const double lat0 : {90.0, -90.0}) {
      ProjectionParameters p = On(ProjectionMethodMercator, 1.0, f);
      p.Lat0 = lat0;
      EXPECT_RAISES(MakeEngine(p), 1026, "ProjMercator", kZero);
    }
  }
}

TEST(Mercator, MarksEverythingOnADiskSeenFromItsPole) {
  ProjectionParameters p = On(ProjectionMethodMercator, 1.0, 1.0);  // e = 1
  p.Lat0 = 89.9999999;                                              // whose sine is 1 in doubles
  const auto engine = MakeEngine(p);
  EXPECT_TRUE(BothMarked(Forward(*engine, {0.1, 0.2})));
  EXPECT_TRUE(BothMarked(Inverse(*engine, {0.1, 0.2})));
}

// tests/projection/mercator_inverse_expected.py: exact images, inverted with powers of 2.71828.
TEST(Mercator, InverseKeepsTheFiveDigitBase) {
  const struct {
    double lat, back;
  } rows[] = {{-60, -59.999974691379459},
              {10, 9.999993323898333},
              {45, 44.999976022347792},
              {60, 59.999974691379459},
              {85, 84.999989504024983}};
  ProjectionParameters p = On(ProjectionMethodMercator, kClarkeA, kClarkeF);
  p.Lon0 = 5.0;
  p.Lat0 = 30.0;
  const auto engine = MakeEngine(p);
  for (const auto& row : rows) {
    const shr::Vec2d back = Inverse(*engine, Forward(*engine, InRadians({12, row.lat})));
    EXPECT_NEAR(ToDegrees(back.x), 12.0, 1e-13);
    EXPECT_NEAR(ToDegrees(back.y), row.back, 1e-12);
    EXPECT_GT(std::fabs(ToDegrees(back.y) - row.lat), 6e-6);  // far more than round-off
  }
}

TEST(Mercator, InverseOfTheSphereHasNoSuchShift) {
  ProjectionParameters p = On(ProjectionMethodMercator, kClarkeA, 0.0);
  p.Lat0 = 30.0;
  const auto engine = MakeEngine(p);
  for (const double lat : {-85.0, 10.0, 60.0}) {
    EXPECT_NEAR(ToDegrees(Inverse(*engine, Forward(*engine, InRadians({12, lat}))).y), lat, 1e-13);
  }
}

TEST(Mercator, InverseFarOutIsAPole) {
  for (const double f : {0.0, kClarkeF}) {
    const auto engine = MakeEngine(On(ProjectionMethodMercator, 1.0, f));
    EXPECT_NEAR(Inverse(*engine, {0.0, 1e6}).y, kHalfPi, 1e-12);
    EXPECT_NEAR(Inverse(*engine, {0.0, -1e6}).y, -kHalfPi, 1e-12);
  }
}

// ---- Miller, Equidistant Cylindrical ---------------------------------------------------------------------

TEST(Miller, HasFinitePoles) {
  ProjectionParameters p = On(ProjectionMethodMiller, 1000.0, 0.3);  // the flattening does not matter
  p.Lon0 = -30.0;
  const auto engine = MakeEngine(p);
  // ln(tan 81 degrees) / 0.8
  ExpectNear(Forward(*engine, InRadians({-30, 90})), 0.0, 2303.4125433763913, 1e-9);
  ExpectNear(Forward(*engine, InRadians({-30, -90})), 0.0, -2303.4125433763913, 1e-9);
  EXPECT_NEAR(ToDegrees(Inverse(*engine, {0, 2303.4125433763913}).y), 90.0, 1e-11);
  EXPECT_DOUBLE_EQ(Forward(*engine, InRadians({60, 0})).x, 1000.0 * kHalfPi);
}

TEST(Miller, InverseBeyondItsPolesGoesOnAndIsFoldedByTheProjector) {
  const ProjectionParameters p = On(ProjectionMethodMiller, 1.0, 0.0);
  const auto engine = MakeEngine(p);
  // 100 degrees: ln(tan(45 + 40 degrees)) / 0.8
  const double y = std::log(std::tan(ToRadians(85.0))) / 0.8;
  EXPECT_NEAR(ToDegrees(Inverse(*engine, {0, y}).y), 100.0, 1e-11);
  Projector projector{ProjectionDef(p)};
  std::vector<shr::Vec2d> point = {{0, y}};
  projector.TransformInverse(point);
  EXPECT_NEAR(point[0].y, 80.0, 1e-11);
}

TEST(EquidistantCylindrical, WithThePoleAsStandardParallelHasNoWidthAndNoInverse) {
  for (const double lat1 : {90.0, -90.0}) {
    ProjectionParameters p = On(ProjectionMethodEquidistantCylindrical, 1000.0, 0.0);
    p.Lat1 = lat1;
    const auto engine = MakeEngine(p);
    for (const shr::Vec2d& point : {shr::Vec2d(1, 1), shr::Vec2d(-3, 0.5), shr::Vec2d(0, 0)}) {
      const shr::Vec2d xy = Forward(*engine, point);
      EXPECT_EQ(xy.x, 0.0);
      EXPECT_EQ(xy.y, 1000.0 * point.y);
      EXPECT_TRUE(BothMarked(Inverse(*engine, xy)));
      EXPECT_TRUE(BothMarked(Inverse(*engine, {5.0, 6.0})));
    }
    Projector projector{ProjectionDef(p)};  // the definition's check has nothing against it
  }
}

TEST(EquidistantCylindrical, IsASphereWhateverTheFlattening) {
  ProjectionParameters p = On(ProjectionMethodEquidistantCylindrical, 1000.0, 0.25);
  p.Lat1 = 60.0;
  p.Lon0 = 10.0;
  ExpectNear(Forward(*MakeEngine(p), InRadians({100, 45})), 1000.0 * kPi / 4, 1000.0 * kPi / 4, 1e-9);
}

// ---- Transverse Mercator ---------------------------------------------------------------------------------

TEST(TransverseMercator, MarksThePointsWhereBIsOne) {
  ProjectionParameters p = On(ProjectionMethodTransverseMercator, 1000.0, 0.0);
  const auto engine = MakeEngine(p);
  EXPECT_TRUE(BothMarked(Forward(*engine, InRadians({90, 0}))));
  EXPECT_TRUE(BothMarked(Forward(*engine, InRadians({-90, 0}))));
  EXPECT_FALSE(BothMarked(Forward(*engine, InRadians({89, 0}))));
}

TEST(TransverseMercator, OfTheSphereRunsOverThePoleOnTheFarSide) {
  ProjectionParameters p = On(ProjectionMethodTransverseMercator, 1000.0, 0.0);
  p.Lat0 = 20.0;
  p.K0 = 0.5;
  p.Lon0 = 30.0;
  const auto engine = MakeEngine(p);
  // On the meridian opposite to Lon0: as far behind the pole as its latitude tells.
  ExpectNear(Forward(*engine, InRadians({210, 80})), 0.0, 500.0 * ToRadians(100.0 - 20.0), 1e-9);
  ExpectNear(Forward(*engine, InRadians({210, -80})), 0.0, 500.0 * ToRadians(-100.0 - 20.0), 1e-9);
  // At +-90 degrees from Lon0 off the Equator: at the height of the pole, artanh(cos phi) out.
  ExpectNear(Forward(*engine, InRadians({120, 30})), 500.0 * std::atanh(std::cos(ToRadians(30.0))),
             500.0 * ToRadians(90.0 - 20.0), 1e-9);
  // The poles themselves.
  ExpectNear(Forward(*engine, InRadians({77, 90})), 0.0, 500.0 * ToRadians(70.0), 1e-9);
  ExpectNear(Forward(*engine, InRadians({77, -90})), 0.0, 500.0 * ToRadians(-110.0), 1e-9);
  const shr::Vec2d back = Inverse(*engine, {0.0, 500.0 * ToRadians(80.0)});
  EXPECT_NEAR(std::fabs(std::remainder(ToDegrees(back.x) - 210.0, 360.0)), 0.0, 1e-11);
  EXPECT_NEAR(ToDegrees(back.y), 80.0, 1e-11);
}

TEST(TransverseMercator, OfTheEllipsoidHasItsPolesAtTheQuadrantOfTheMeridian) {
  ProjectionParameters p = On(ProjectionMethodTransverseMercator, 6378137.0, 1.0 / 298.257222101);
  p.K0 = 0.9996;
  p.Lon0 = 15.0;
  const auto engine = MakeEngine(p);
  // GRS 1980, the quadrant: 10001965.7293 m [Mor00].  The series is within a millimetre of it.
  ExpectNear(Forward(*engine, InRadians({77, 90})), 0.0, 0.9996 * 10001965.7293, 1e-3);
  ExpectNear(Forward(*engine, InRadians({-40, -90})), 0.0, -0.9996 * 10001965.7293, 1e-3);
  EXPECT_EQ(Forward(*engine, InRadians({77, 90})).x, 0.0);
}

TEST(TransverseMercator, InverseBeyondThePoleIsThePole) {
  for (const ProjectionMethod method : {ProjectionMethodTransverseMercator, ProjectionMethodUTM}) {
    ProjectionParameters p = On(method, kClarkeA, kClarkeF);
    p.Lon0 = 15.0;
    const auto engine = MakeEngine(p);
    for (const double y : {1.2e7, 1e9, 1e300}) {
      const shr::Vec2d north = Inverse(*engine, {1000.0, y}), south = Inverse(*engine, {1000.0, -y});
      EXPECT_EQ(north.y, kHalfPi);
      EXPECT_EQ(south.y, -kHalfPi);
      EXPECT_EQ(north.x, ToRadians(15.0));
      EXPECT_EQ(south.x, ToRadians(15.0));
    }
  }
}

TEST(TransverseMercator, DoesNotWrapLongitudes) {
  ProjectionParameters p = On(ProjectionMethodTransverseMercator, kClarkeA, kClarkeF);
  p.Lon0 = -179.0;
  const auto engine = MakeEngine(p);
  EXPECT_NEAR(Forward(*engine, InRadians({-181, 0})).x, -222643.0, 300.0);  // two degrees of the Equator
  EXPECT_GT(Forward(*engine, InRadians({179, 0})).x, 1e7);
}

// ---- UTM -------------------------------------------------------------------------------------------------

TEST(UTM, ForwardIsTheTransverseMercatorAndTheFalseOriginItsOwn) {
  ProjectionParameters p = On(ProjectionMethodTransverseMercator, kClarkeA, kClarkeF);
  p.Lon0 = -75.0;
  p.K0 = 0.9996;
  p.Lat0 = 10.0;
  ProjectionParameters utm = p;
  utm.method = ProjectionMethodUTM;
  utm.bSouth = true;
  Projector plain{ProjectionDef(p)}, zone{ProjectionDef(utm)};
  std::vector<shr::Vec2d> a = {{-73.5, 40.5}}, b = a;
  plain.TransformForward(a);
  zone.TransformForward(b);
  EXPECT_EQ(b[0].x, a[0].x + 500000.0);
  EXPECT_EQ(b[0].y, a[0].y + 10000000.0);
}

// The terms in D^8 and D^7 that UTM has beyond the Transverse Mercator, computed here as they are printed.
TEST(UTM, InverseTakesOneMoreTermInEachSeries) {
  ProjectionParameters p = On(ProjectionMethodTransverseMercator, kClarkeA, kClarkeF);
  p.Lon0 = -75.0;
  p.K0 = 0.9996;
  ProjectionParameters utm = p;
  utm.method = ProjectionMethodUTM;
  const auto shorter = MakeEngine(p), longer = MakeEngine(utm);
  const double e2 = 2 * kClarkeF - kClarkeF * kClarkeF;
  for (const double lat : {-40.0, 20.0, 60.0}) {
    // On the central meridian the footpoint is the latitude itself.
    const double y = Forward(*shorter, InRadians({-75, lat})).y;
    const double phi1 = ToRadians(lat), s = std::sin(phi1), T = std::tan(phi1) * std::tan(phi1);
    const double N = kClarkeA / std::sqrt(1 - e2 * s * s);
    const double R = kClarkeA * (1 - e2) / std::pow(1 - e2 * s * s, 1.5);
    const double x = 400000.0, D = x / (N * p.K0);
    const double dPhi =
        N * std::tan(phi1) / R * (1385 + 3633 * T + 4095 * T * T + 1575 * T * T * T) * std::pow(D, 8) / 40320;
    const double dLambda =
        -(61 + 662 * T + 1320 * T * T + 720 * T * T * T) * std::pow(D, 7) / 5040 / std::cos(phi1);
    const shr::Vec2d a = Inverse(*shorter, {x, y}), b = Inverse(*longer, {x, y});
    EXPECT_NEAR(b.y - a.y, dPhi, 1e-4 * std::fabs(dPhi) + 4e-16);
    EXPECT_NEAR(b.x - a.x, dLambda, 1e-4 * std::fabs(dLambda) + 4e-16);
    EXPECT_GT(std::fabs(dLambda), 1e-11);
  }
}

TEST(UTM, InverseBeyondThePoleIsMarked) {
  ProjectionParameters p = On(ProjectionMethodUTM, kClarkeA, kClarkeF);
  const auto engine = MakeEngine(p);
  // A footpoint just below the pole, and so far out that the series runs away.
  EXPECT_TRUE(BothMarked(Inverse(*engine, {5e6, -9.99e6})));
}

// ---- Cassini ---------------------------------------------------------------------------------------------

TEST(Cassini, OfTheSphereReachesItsRim) {
  ProjectionParameters p = On(ProjectionMethodCassini, 1000.0, 0.0);
  p.Lat0 = 20.0;
  p.Lon0 = 30.0;
  const auto engine = MakeEngine(p);
  // 90 degrees from Lon0 on the Equator: a quarter of the circumference out.
  EXPECT_NEAR(Forward(*engine, InRadians({120, 0})).x, 1000.0 * kHalfPi, 1e-4);
  // Over the pole.
  ExpectNear(Forward(*engine, InRadians({210, 80})), 0.0, 1000.0 * ToRadians(80.0), 1e-9);
  const shr::Vec2d rim = Inverse(*engine, {1000.0 * kHalfPi, 1000.0 * ToRadians(-20.0)});
  EXPECT_NEAR(ToDegrees(rim.x), 120.0, 1e-9);
  EXPECT_NEAR(ToDegrees(rim.y), 0.0, 1e-9);
  EXPECT_FALSE(BothMarked(Inverse(*engine, {1000.0 * kHalfPi * (1 + 0.9e-9), 0.0})));
  EXPECT_TRUE(BothMarked(Inverse(*engine, {1000.0 * kHalfPi * (1 + 1.1e-9), 0.0})));
  EXPECT_TRUE(BothMarked(Inverse(*engine, {-1000.0 * kHalfPi * (1 + 1.1e-9), 0.0})));
}

TEST(Cassini, IsEllipsoidalWithAnyFlattening) {
  ProjectionParameters p = On(ProjectionMethodCassini, 6378137.0, 1.0 / 298.257222101);
  p.Lat0 = 40.0;
  p.Lon0 = -75.0;
  const auto engine = MakeEngine(p);
  p.ellipsoid.SetFlattening(0.0);
  const auto sphere = MakeEngine(p);
  const shr::Vec2d a = Forward(*engine, InRadians({-72, 42})), b = Forward(*sphere, InRadians({-72, 42}));
  EXPECT_GT(std::hypot(a.x - b.x, a.y - b.y), 500.0);
  // The poles: on the meridian, GRS 1980's quadrant less the arc to Lat0; x is 0.
  p.ellipsoid.SetFlattening(1.0 / 298.257222101);
  p.Lat0 = 0.0;
  const auto fromEquator = MakeEngine(p);
  ExpectNear(Forward(*fromEquator, InRadians({10, 90})), 0.0, 10001965.7293, 1e-3);
  ExpectNear(Forward(*fromEquator, InRadians({10, -90})), 0.0, -10001965.7293, 1e-3);
  const shr::Vec2d north = Inverse(*fromEquator, {1000.0, 1.1e7});
  EXPECT_EQ(north.y, kHalfPi);
  EXPECT_EQ(north.x, ToRadians(-75.0));
}

}  // namespace

// ---- properties ------------------------------------------------------------------------------------------

namespace test {
namespace {

std::vector<EngineCase> Cases() {
  const auto def = [](ProjectionMethod method, double f, auto set) {
    ProjectionParameters p = On(method, 6378137.0, f);
    p.xOrg = 12345.0;
    p.yOrg = -54321.0;
    p.Scale = 0.75;
    set(p);
    return ProjectionDef(p);
  };
  constexpr double kWgsF = 1.0 / 298.257223563;
  const auto mercator = [](ProjectionParameters& p) {
    p.Lon0 = -20;
    p.Lat0 = 30;
  };
  const auto transverse = [](ProjectionParameters& p) {
    p.Lon0 = 15;
    p.Lat0 = 10;
    p.K0 = 0.9996;
    p.bSouth = true;
  };
  const auto cassini = [](ProjectionParameters& p) {
    p.Lon0 = -75;
    p.Lat0 = 40;
  };
  const auto byAzimuth = [](ProjectionParameters& p) {
    p.Lon1 = 102.25;
    p.Lat0 = 4;
    p.Alpha = 323.0257905;
    p.bUseAlpha = p.bRotate = true;
    p.K0 = 0.99984;
  };
  const auto byPoints = [](ProjectionParameters& p) {
    p.Lat0 = -35;
    p.Lon1 = 20;
    p.Lat1 = -30;
    p.Lon2 = 35;
    p.Lat2 = -50;
    p.bUOffset = true;
    p.K0 = 0.9996;
  };
  const auto oblique = [](ProjectionParameters& p) {
    p.Lon1 = -60;
    p.Lat1 = 50;
    p.Lon2 = -110;
    p.Lat2 = 30;
    p.K0 = 0.9;
  };
  const auto lon0 = [](ProjectionParameters& p) {
    p.Lon0 = -40;
    p.Lat1 = 35;
  };
  // Tolerances in degrees: a few units in the last place of 180 where the inverse is exact, more where points
  // near the rim of a map are badly conditioned; what an iteration to 1e-12 rad leaves; the shift of
  // Mercator's five-digit base; and for a series what it misses itself by, of
  // series_truncation.py: 1.11e-8, 7.07e-9 and 1.554e-7.
  return {
      {"MercatorEllipsoid", def(ProjectionMethodMercator, kWgsF, mercator), -199, 159, -89.9, 89.9, 2.6e-5,
       true, true},
      {"MercatorSphere", def(ProjectionMethodMercator, 0.0, mercator), -199, 159, -89.9, 89.9, 1e-13, true,
       true},
      {"Miller", def(ProjectionMethodMiller, kWgsF, lon0), -219, 139, -90, 90, 2e-13, true, true},
      {"EquidistantCylindrical", def(ProjectionMethodEquidistantCylindrical, kWgsF, lon0), -219, 139, -90, 90,
       2e-13, true, true},
      {"TransverseMercatorEllipsoid", def(ProjectionMethodTransverseMercator, kWgsF, transverse), 11.5, 18.5,
       -80, 84, 1.2e-8, true, true},
      {"TransverseMercatorSphere", def(ProjectionMethodTransverseMercator, 0.0, transverse), -70, 100, -89,
       89, 2e-13, true, true},
      {"UTMEllipsoid", def(ProjectionMethodUTM, kWgsF, transverse), 11.5, 18.5, -80, 84, 7.5e-9, true, true},
      {"UTMSphere", def(ProjectionMethodUTM, 0.0, transverse), -70, 100, -89, 89, 2e-13, true, true},
      {"CassiniEllipsoid", def(ProjectionMethodCassini, kWgsF, cassini), -78, -72, 0, 80, 1.6e-7, true, true},
      {"CassiniSphere", def(ProjectionMethodCassini, 0.0, cassini), -164, 14, -49, 89, 1e-12, true, true},
      {"ObliqueMercator", def(ProjectionMethodObliqueMercator, kWgsF, oblique), -179, 179, 6, 74, 1e-12},
      {"HotineByAzimuth", def(ProjectionMethodHotine, kWgsF, byAzimuth), 88, 116, -30, 30, 1e-10},
      {"HotineByPoints", def(ProjectionMethodHotine, kWgsF, byPoints), 6, 34, -45, -16, 1e-10},
      {"HotineSphere", def(ProjectionMethodHotine, 0.0, byPoints), 6, 34, -45, -16, 1e-12},
  };
}

INSTANTIATE_TEST_SUITE_P(Cylindrical, EngineProperties, testing::ValuesIn(Cases()), EngineCaseName);

}  // namespace
}  // namespace test

}  // namespace orv
