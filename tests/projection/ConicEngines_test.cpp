#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/internal/Angle.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/ProjTranAlbers.h"
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

constexpr double kHalfPi = 1.5707963267948966;
constexpr double kClarkeF = 0.0033900753040885176;  // Clarke 1866
constexpr double kClarkeA = 6378206.4;
constexpr double kAlmostFlat = 1.0 - 1e-9;  // the eccentricity of this flattening is 1 in doubles

constexpr const char* kZero =
    "Undefined mathematical result during projection.  Unexpected zero value in intermediate calculation.";
constexpr const char* kUndefined = "Undefined mathematical result during projection.";

ProjectionParameters Cone(ProjectionMethod method, double f, double lat0, double lat1, double lat2) {
  ProjectionParameters p = On(method, kClarkeA, f);
  p.Lon0 = -96.0;
  p.Lat0 = lat0;
  p.Lat1 = lat1;
  p.Lat2 = lat2;
  return p;
}

// ---- all of them -----------------------------------------------------------------------------------------

TEST(ConicEngines, AreUsableAndCutWithinHalfATurnOfLon0) {
  for (const ProjectionMethod method :
       {ProjectionMethodLambert, ProjectionMethodAlbers, ProjectionMethodEquidistantConic,
        ProjectionMethodPolyconic, ProjectionMethodBonne}) {
    const ProjectionParameters p = Cone(method, kClarkeF, 23, 29.5, 45.5);
    const std::unique_ptr<ProjActor> engine = MakeEngine(p);
    const auto inside = [&](shr::Vec2d point) { return engine->IsLatLonInside(p, &point); };
    EXPECT_TRUE(inside({83.9, 90})) << method;
    EXPECT_TRUE(inside({-275.9, -90})) << method;
    EXPECT_FALSE(inside({84, 0})) << method;
    EXPECT_FALSE(inside({-276, 0})) << method;
    EXPECT_FALSE(engine->IsLatLonInside(p, nullptr)) << method;
    const shr::Vec2d east(84, 0), west(-276, 0);
    double dx = 7, dy = 7;
    EXPECT_TRUE(engine->GetSplitOffset(p, &east, 1, &dx, &dy)) << method;
    EXPECT_EQ(dx, -360) << method;
    EXPECT_EQ(dy, 0) << method;
    EXPECT_TRUE(engine->GetSplitOffset(p, &west, 1, &dx, &dy)) << method;
    EXPECT_EQ(dx, 360) << method;
  }
}

TEST(ConicEngines, LongitudesAreNotWrapped) {
  for (const ProjectionMethod method :
       {ProjectionMethodLambert, ProjectionMethodAlbers, ProjectionMethodEquidistantConic,
        ProjectionMethodPolyconic, ProjectionMethodBonne}) {
    const std::unique_ptr<ProjActor> engine = MakeEngine(Cone(method, kClarkeF, 23, 29.5, 45.5));
    const shr::Vec2d a = Forward(*engine, InRadians({-96 + 200, 20}));
    const shr::Vec2d b = Forward(*engine, InRadians({-96 - 160, 20}));
    EXPECT_GT(std::hypot(a.x - b.x, a.y - b.y), 1e6) << method;
  }
}

// ---- Lambert Conformal Conic -----------------------------------------------------------------------------

TEST(LambertConformalConic, WithoutAConeCannotBeSetUp) {
  const auto fails = [](double f, double lat0, double lat1, double lat2) {
    const ProjectionParameters p = Cone(ProjectionMethodLambert, f, lat0, lat1, lat2);
    std::feclearexcept(FE_ALL_EXCEPT);
    EXPECT_RAISES(MakeEngine(p), 1026, "ProjLambertConformalConic", kZero);
    EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID), 0) << lat0 << " " << lat1;
  };
  for (const double f : {0.0, kClarkeF}) {
    fails(f, 0, 30, -30);  // n = 0
    fails(f, 0, 30, 30);
  }
  fails(0.0, 0, -90, 30);  // tan(pi/4 + Lat1/2) = 0
  fails(0.0, 0, 30, -90);
  fails(0.0, -90, 33, 45);          // the origin where the cone is infinite
  fails(kClarkeF, 90, -33, -45);    // and that of a southern cone
  fails(kClarkeF, 0, 90, 45);       // t(Lat1) = 0
  fails(kClarkeF, 0, 45, 90);       // t(Lat2) = 0
  fails(kAlmostFlat, -90, 33, 45);  // 1 + e sin Lat0 = 0
  fails(kAlmostFlat, 10, 33, -90);  // 1 + e sin Lat2 = 0
}

TEST(LambertConformalConic, OfParallelsOnEitherSideOfTheEquatorLeavesTheProjectorWithoutEngine) {
  const ProjectionDef def(Cone(ProjectionMethodLambert, 0.0, 10, 30, -30));
  Projector projector;
  EXPECT_RAISES(projector.SetSystem(&def), 1026, "ProjLambertConformalConic", kZero);
  shr::Vec2d point(1, 2);
  EXPECT_RAISES(projector.TransformForward(&point, 1), 1026, "Projector", "Transform not initialized.");
}

TEST(LambertConformalConic, PolesOfTheSphere) {
  const auto north = MakeEngine(Cone(ProjectionMethodLambert, 0.0, 23, 33, 45));
  const auto south = MakeEngine(Cone(ProjectionMethodLambert, 0.0, -23, -33, -45));
  std::feclearexcept(FE_ALL_EXCEPT);
  // The apex, of whatever longitude.
  const shr::Vec2d apex = Forward(*north, InRadians({-96, 90})), far = Forward(*north, InRadians({50, 90}));
  ExpectNear(far, apex.x, apex.y, 2e-3);
  const shr::Vec2d southApex = Forward(*south, InRadians({-96, -90}));
  ExpectNear(Forward(*south, InRadians({50, -90})), southApex.x, southApex.y, 0.0);
  ExpectNear(southApex, 0.0, -apex.y, 2e-3);
  // Opposite to it: tan(pi/4 + phi/2) is exactly 0 at -90 only.
  EXPECT_TRUE(BothMarked(Forward(*north, InRadians({-96, -90}))));
  EXPECT_FALSE(BothMarked(Forward(*south, InRadians({-96, 90}))));
  EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID), 0);
}

// Deliberate: a southern cone shows the north pole in its apex, where the south pole is, too.
TEST(LambertConformalConic, PolesOfTheEllipsoid) {
  const auto north = MakeEngine(Cone(ProjectionMethodLambert, kClarkeF, 23, 33, 45));
  const auto south = MakeEngine(Cone(ProjectionMethodLambert, kClarkeF, -23, -33, -45));
  const shr::Vec2d apex = Forward(*north, InRadians({-96, 90}));
  ExpectNear(Forward(*north, InRadians({50, 90})), apex.x, apex.y, 0.0);
  const shr::Vec2d southPole = Forward(*south, InRadians({-96, -90}));
  ExpectNear(southPole, 0.0, -apex.y, 2e-3);
  for (const double lon : {-96.0, 10.0}) {
    ExpectNear(Forward(*south, InRadians({lon, 90})), southPole.x, southPole.y, 2e-3);
  }
  EXPECT_FALSE(BothMarked(Forward(*north, InRadians({-96, -90}))));
}

TEST(LambertConformalConic, TheApexComesBackAsItsPoleAtTheCentralLongitude) {
  for (const double f : {0.0, kClarkeF}) {
    for (const double side : {1.0, -1.0}) {
      // With the origin in the pole the apex is (0, 0).
      const auto engine = MakeEngine(Cone(ProjectionMethodLambert, f, side * 90, side * 33, side * 45));
      std::feclearexcept(FE_ALL_EXCEPT);
      ExpectNear(Forward(*engine, InRadians({-96, side * 90})), 0.0, 0.0, 2e-3);
      const auto other = MakeEngine(Cone(ProjectionMethodLambert, f, side * 20, side * 33, side * 45));
      const shr::Vec2d back = Inverse(*other, Forward(*other, InRadians({-96, side * 90})));
      EXPECT_NEAR(back.y, side * kHalfPi, 1e-15);
      EXPECT_NEAR(back.x, ToRadians(-96.0), 1e-15);
      EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID), 0);
    }
  }
}

TEST(LambertConformalConic, InverseMarksNothing) {
  for (const double f : {0.0, kClarkeF}) {
    const auto engine = MakeEngine(Cone(ProjectionMethodLambert, f, 23, 33, 45));
    for (const shr::Vec2d point : {shr::Vec2d(1e9, -1e9), shr::Vec2d(0, 1e30), shr::Vec2d(-1e200, 1e200)}) {
      const shr::Vec2d back = Inverse(*engine, point);
      EXPECT_FALSE(BothMarked(back));
      EXPECT_LT(back.y, -0.5);  // far out is far south
    }
  }
}

// ---- Albers ----------------------------------------------------------------------------------------------

TEST(Albers, EachWayOfHavingNoConeHasItsMessage) {
  const auto fails = [](double f, double lat1, double lat2, const char* text) {
    EXPECT_RAISES(MakeEngine(Cone(ProjectionMethodAlbers, f, 10, lat1, lat2)), 1026, "ProjTranAlbers", text);
  };
  fails(
      0.0, 30, -30,
      "Undefined mathematical result during projection.  Sum of Lat1 and Lat2 parameters must not be zero.");
  // Deliberate: the text speaks of a sum, the test is on the difference.
  fails(kClarkeF, 30, 30,
        "Undefined mathematical result during projection.  Lat1 and Lat2 parameters must not be defined such "
        "that the sum of the Albers q1 and q2 intermediate values is zero.");
  fails(kClarkeF, 30, -30, kUndefined);
  fails(kAlmostFlat, 30, 40, kUndefined);
  // The definition's own check comes first.
  const ProjectionDef def(Cone(ProjectionMethodAlbers, 0.0, 10, 30, -30));
  Projector projector;
  EXPECT_RAISES(projector.SetSystem(&def), 1032, "Projector", "Invalid projection specified.");
}

TEST(Albers, PolesAreArcsThatKeepTheirLongitudes) {
  for (const double f : {0.0, kClarkeF}) {
    for (const double side : {1.0, -1.0}) {
      const auto engine = MakeEngine(Cone(ProjectionMethodAlbers, f, 23, side * 29.5, side * 45.5));
      for (const double lat : {90.0, -90.0}) {
        const shr::Vec2d a = Forward(*engine, InRadians({-60, lat})),
                         b = Forward(*engine, InRadians({-96, lat}));
        EXPECT_GT(std::hypot(a.x - b.x, a.y - b.y), 1e6);
        const shr::Vec2d back = Inverse(*engine, a);
        EXPECT_NEAR(ToDegrees(back.x), -60.0, 1e-12);
        EXPECT_NEAR(ToDegrees(back.y), lat, 1e-5);  // the parallels crowd there
      }
    }
  }
}

TEST(Albers, APoleThatIsAStandardParallelIsTheApex) {
  for (const double f : {0.0, kClarkeF}) {
    for (const bool first : {true, false}) {
      const auto engine = MakeEngine(Cone(ProjectionMethodAlbers, f, 90, first ? 90 : 50, first ? 50 : 90));
      ExpectNear(Forward(*engine, InRadians({40, 90})), 0.0, 0.0, 1.0);  // the root of a round-off: 0.4 m
    }
  }
}

TEST(Albers, InverseOutsideThePolesArcsIsMarked) {
  for (const double f : {0.0, kClarkeF}) {
    const auto engine = MakeEngine(Cone(ProjectionMethodAlbers, f, 23, 29.5, 45.5));
    const double north = Forward(*engine, InRadians({-96, 90})).y;
    const double south = Forward(*engine, InRadians({-96, -90})).y;
    EXPECT_FALSE(BothMarked(Inverse(*engine, {0.0, north - 1.0})));
    EXPECT_FALSE(BothMarked(Inverse(*engine, {0.0, south + 1.0})));
    EXPECT_TRUE(BothMarked(Inverse(*engine, {0.0, north + 1.0})));
    EXPECT_TRUE(BothMarked(Inverse(*engine, {0.0, south - 1.0})));
    EXPECT_TRUE(BothMarked(Inverse(*engine, {1e200, 0.0})));
  }
}

// ---- Equidistant Conic -----------------------------------------------------------------------------------

TEST(EquidistantConic, WithoutAConeCannotBeSetUp) {
  for (const double f : {0.0, kClarkeF}) {
    for (const double lat2 : {30.0, -30.0}) {
      EXPECT_RAISES(MakeEngine(Cone(ProjectionMethodEquidistantConic, f, 10, 30, lat2)), 1026,
                    "ProjEquidistantConic", kUndefined);
    }
  }
}

// The quadrant of the meridian of GRS 1980: 10001965.7293 m.
TEST(EquidistantConic, MeridiansAreTrueAndEndAtThePoles) {
  for (const double side : {1.0, -1.0}) {
    ProjectionParameters p =
        Cone(ProjectionMethodEquidistantConic, 1.0 / 298.257222101, 0, side * 30, side * 50);
    p.ellipsoid.SetMajorRadius(6378137.0);
    const auto engine = MakeEngine(p);
    ExpectNear(Forward(*engine, InRadians({-96, 90})), 0.0, 10001965.7293, 1e-3);
    ExpectNear(Forward(*engine, InRadians({-96, -90})), 0.0, -10001965.7293, 1e-3);
    for (const double lat : {90.0, -90.0}) {
      const shr::Vec2d back = Inverse(*engine, Forward(*engine, InRadians({-20, lat})));
      EXPECT_NEAR(ToDegrees(back.x), -20.0, 1e-12);
      EXPECT_NEAR(ToDegrees(back.y), lat, 1e-8);
    }
  }
}

TEST(EquidistantConic, InverseEndsABillionthOfARadianBeyondThePoles) {
  for (const double side : {1.0, -1.0}) {
    ProjectionParameters p = Cone(ProjectionMethodEquidistantConic, 0.0, 10, side * 30, side * 50);
    p.ellipsoid.SetMajorRadius(1000.0);
    const auto engine = MakeEngine(p);
    const auto at = [&](double phi) { return Inverse(*engine, {0.0, 1000.0 * (phi - ToRadians(10.0))}); };
    EXPECT_EQ(at(kHalfPi + 0.9e-9).y, kHalfPi);
    EXPECT_EQ(at(-kHalfPi - 0.9e-9).y, -kHalfPi);
    EXPECT_TRUE(BothMarked(at(kHalfPi + 1.1e-9)));
    EXPECT_TRUE(BothMarked(at(-kHalfPi - 1.1e-9)));
    EXPECT_TRUE(BothMarked(at(1e200)));
  }
}

// ---- Polyconic -------------------------------------------------------------------------------------------

TEST(Polyconic, TheEquatorIsAStraightLineAndTrue) {
  for (const double f : {0.0, kClarkeF}) {
    ProjectionParameters p = Cone(ProjectionMethodPolyconic, f, 0, 0, 0);
    const auto engine = MakeEngine(p);
    ExpectNear(Forward(*engine, InRadians({-36, 0})), kClarkeA * ToRadians(60.0), 0.0, 1e-8);
    const shr::Vec2d back = Inverse(*engine, {kClarkeA * 2.5, 0.0});
    EXPECT_NEAR(back.x, ToRadians(-96.0) + 2.5, 1e-15);
    EXPECT_EQ(back.y, 0.0);
  }
}

// The set-up takes the q of the poles from the kernels' function: their inverse must find exactly them.
TEST(Albers, TheQOfAPoleHasExactlyItsSine) {
  for (const double f : {1 / 298.257223563, 1 / 298.257222101, kClarkeF, 1e-3, 3.7e-3, 0.0123, 0.08, 0.3}) {
    orv::Albers c{};
    c.e = std::sqrt((2.0 - f) * f);
    c.ie2 = 1.0 / (c.e * c.e);
    for (const double side : {1.0, -1.0}) {
      c.qp = one::AuthalicQ(c, 1.0);
      bool failed = false;
      EXPECT_EQ(one::SineOfQ(c, side * c.qp, failed), side) << f;
      EXPECT_FALSE(failed);
    }
  }
}

// y = a phi (1 + L^2/2) but for the third power of phi.
TEST(Polyconic, KeepsItsDigitsNextToTheEquator) {
  const auto engine = MakeEngine(Cone(ProjectionMethodPolyconic, 0.0, 0, 0, 0));
  for (const double phi : {1e-6, 1.7e-8, -3e-9, 1e-200}) {
    const shr::Vec2d xy = Forward(*engine, {ToRadians(-96.0) + 1.0, phi});
    EXPECT_NEAR(xy.x, kClarkeA, 1e-5);
    EXPECT_NEAR(xy.y / phi, 1.5 * kClarkeA, 1e-5);
  }
}

TEST(Polyconic, PolesAreOnTheMeridianAndComeBackAtTheCentralLongitude) {
  ProjectionParameters p = Cone(ProjectionMethodPolyconic, 1.0 / 298.257222101, 0, 0, 0);
  p.ellipsoid.SetMajorRadius(6378137.0);
  const auto engine = MakeEngine(p);
  for (const double side : {1.0, -1.0}) {
    const shr::Vec2d pole = Forward(*engine, InRadians({50, side * 90}));
    ExpectNear(pole, 0.0, side * 10001965.7293, 1e-3);
    const shr::Vec2d back = Inverse(*engine, {0.0, pole.y});
    EXPECT_NEAR(back.y, side * kHalfPi, 1e-12);
    EXPECT_NEAR(back.x, ToRadians(-96.0), 1e-15);
  }
}

// As printed, the iteration fails from 84 degrees on and the arc sine is the wrong one from 90 degrees on.
TEST(Polyconic, InverseReachesTheWholeMap) {
  for (const double f : {0.0, kClarkeF}) {
    const auto engine = MakeEngine(Cone(ProjectionMethodPolyconic, f, 20, 0, 0));
    for (int lon = -275; lon <= 83; lon += 2) {
      for (int lat = -89; lat <= 89; lat += 2) {
        const shr::Vec2d back = Inverse(*engine, Forward(*engine, InRadians({0.0 + lon, 0.0 + lat})));
        ASSERT_NEAR(ToDegrees(back.x), lon, 1e-10) << lon << ", " << lat;
        ASSERT_NEAR(ToDegrees(back.y), lat, 1e-10) << lon << ", " << lat;
      }
    }
  }
}

TEST(Polyconic, InverseKeepsItsDigitsNextToThePoles) {
  for (const double f : {0.0, kClarkeF}) {
    const auto engine = MakeEngine(Cone(ProjectionMethodPolyconic, f, 20, 0, 0));
    for (const double colatitude : {1e-12, 1e-9, 3e-7, 1e-5, 1e-3, 2e-3, 0.03, 0.12}) {
      for (const double side : {1.0, -1.0}) {
        for (const double L : {0.0, 1e-9, 1e-3, 0.5, 1.5, 3.0, -3.1}) {
          const double phi = side * (kHalfPi - colatitude);
          const shr::Vec2d back = Inverse(*engine, Forward(*engine, {ToRadians(-96.0) + L, phi}));
          EXPECT_NEAR(back.y, phi, 5e-15) << colatitude << ", " << L;
          EXPECT_NEAR((back.x - ToRadians(-96.0) - L) * colatitude, 0.0, 1e-14) << colatitude << ", " << L;
        }
      }
    }
  }
}

TEST(Polyconic, InverseOfWhatIsAHundredRadiiAwayIsMarked) {
  const auto engine = MakeEngine(Cone(ProjectionMethodPolyconic, kClarkeF, 0, 0, 0));
  for (const double side : {1.0, -1.0}) {
    EXPECT_FALSE(BothMarked(Inverse(*engine, {side * kClarkeA * 99, 1e6})));
    EXPECT_FALSE(BothMarked(Inverse(*engine, {1e6, side * kClarkeA * 99})));
    EXPECT_TRUE(BothMarked(Inverse(*engine, {side * kClarkeA * 101, 1e6})));
    EXPECT_TRUE(BothMarked(Inverse(*engine, {1e6, side * kClarkeA * 101})));
  }
}

// ---- Bonne -----------------------------------------------------------------------------------------------

TEST(Bonne, OfTheEquatorCannotBeSetUp) {
  for (const double f : {0.0, kClarkeF}) {
    EXPECT_RAISES(MakeEngine(Cone(ProjectionMethodBonne, f, 0, 0, 0)), 1026, "ProjBonne", kUndefined);
  }
}

TEST(Bonne, PolesComeBackAtTheCentralLongitude) {
  for (const double f : {0.0, kClarkeF}) {
    for (const double lat1 : {40.0, -25.0}) {
      const auto engine = MakeEngine(Cone(ProjectionMethodBonne, f, 0, lat1, 0));
      for (const double side : {1.0, -1.0}) {
        const shr::Vec2d pole = Forward(*engine, InRadians({50, side * 90}));
        EXPECT_NEAR(pole.x, 0.0, 1e-8);
        const shr::Vec2d beyond = {
            0.0, pole.y + side * 1e-4};  // within the millimetres that still count as the pole
        const shr::Vec2d back = Inverse(*engine, beyond);
        EXPECT_NEAR(back.y, side * kHalfPi, 1e-9);
        EXPECT_EQ(back.x, ToRadians(-96.0));
      }
    }
  }
}

TEST(Bonne, OfAPoleIsHeartShapedWithTheApexInThePole) {
  for (const double f : {0.0, kClarkeF}) {
    for (const double side : {1.0, -1.0}) {
      const auto engine = MakeEngine(Cone(ProjectionMethodBonne, f, 0, side * 90, 0));
      std::feclearexcept(FE_ALL_EXCEPT);
      for (const double lon : {-96.0, 50.0}) {
        ExpectNear(Forward(*engine, InRadians({lon, side * 90})), 0.0, 0.0, 1e-8);
      }
      EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID), 0);
    }
  }
}

TEST(Bonne, InverseEndsABillionthOfARadianBeyondThePoles) {
  for (const double lat1 : {40.0, -25.0}) {
    ProjectionParameters p = Cone(ProjectionMethodBonne, 0.0, 0, lat1, 0);
    p.ellipsoid.SetMajorRadius(1000.0);
    const auto engine = MakeEngine(p);
    const auto at = [&](double phi) { return Inverse(*engine, {0.0, 1000.0 * (phi - ToRadians(lat1))}); };
    EXPECT_EQ(at(kHalfPi + 0.9e-9).y, kHalfPi);
    EXPECT_EQ(at(-kHalfPi - 0.9e-9).y, -kHalfPi);
    EXPECT_TRUE(BothMarked(at(kHalfPi + 1.1e-9)));
    EXPECT_TRUE(BothMarked(at(-kHalfPi - 1.1e-9)));
    EXPECT_TRUE(BothMarked(at(1e200)));
  }
}

}  // namespace

// ---- properties ------------------------------------------------------------------------------------------

namespace test {
namespace {

std::vector<EngineCase> ConicCases() {
  constexpr double kWgsF = 1.0 / 298.257223563;
  const auto def = [](ProjectionMethod method, double f, double lon0, double lat0, double lat1, double lat2) {
    ProjectionParameters p = On(method, 6378137.0, f);
    p.xOrg = 12345.0;
    p.yOrg = -54321.0;
    p.Scale = 0.75;
    p.Lon0 = lon0;
    p.Lat0 = lat0;
    p.Lat1 = lat1;
    p.Lat2 = lat2;
    return ProjectionDef(p);
  };
  // Tolerances in degrees: some units in the last place of what the inverse works on.  The cones open to the
  // other side, where Albers' parallels crowd: a unit of q is 60 of phi at 89 degrees.  Series of the
  // meridian arc: (3-26) inverts (3-21) within 7.07e-9 degrees (series_truncation.py), which Bonne's
  // longitudes multiply by up to pi.
  std::vector<EngineCase> cases;
  for (const bool north : {true, false}) {
    const double lon0 = north ? -96 : 134, side = north ? 1 : -1;
    const double lat0 = side * 23, lat1 = side * 29.5, lat2 = side * 45.5, west = lon0 - 179,
                 east = lon0 + 179;
    const double low = north ? -80 : -90, high = north ? 90 : 80;
    for (const double f : {kWgsF, 0.0}) {
      const std::string where = std::string(f == 0.0 ? "Sphere" : "Ellipsoid") + (north ? "North" : "South");
      cases.push_back({"Lambert" + where, def(ProjectionMethodLambert, f, lon0, lat0, lat1, lat2), west, east,
                       low, high, 1e-12, true, false});
      cases.push_back({"Albers" + where, def(ProjectionMethodAlbers, f, lon0, lat0, lat1, lat2), west, east,
                       -89, 89, 1e-11, true, false});
      cases.push_back({"EquidistantConic" + where,
                       def(ProjectionMethodEquidistantConic, f, lon0, lat0, lat1, lat2), west, east, -90, 90,
                       f == 0.0 ? 1e-12 : 7.1e-9, true, false});
      cases.push_back({"Polyconic" + where, def(ProjectionMethodPolyconic, f, lon0, lat0, 0, 0), west, east,
                       -90, 90, 1e-11, true, true});
      cases.push_back({"Bonne" + where, def(ProjectionMethodBonne, f, lon0, 0, lat1, 0), west, east, -90, 90,
                       f == 0.0 ? 1e-12 : 2.3e-8, true, false});
    }
  }
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Conic, EngineProperties, testing::ValuesIn(ConicCases()), EngineCaseName);

}  // namespace
}  // namespace test

}  // namespace orv
