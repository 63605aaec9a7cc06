#include "orv/projection/Projector.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "orv/core/Platform.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/core/internal/Marker.h"
#include "orv/core/internal/Text.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/internal/ProjectorAccess.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using internal::kMarker;
using internal::ProjectorAccess;
using Points = std::vector<shr::Vec2d>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr const char* kUnit = "Projector";

ProjectionDef Sphere(ProjectionMethod method, double radius = 1000.0) {
  ProjectionDef def(method);
  def.SetParameter(ProjectionParameterIDEllipsoid, EllipsoidDef(radius, 0.0, "", "", "", 0));
  return def;
}

shr::Vec2d Forward(Projector& projector, double lon, double lat) {
  shr::Vec2d point(lon, lat);
  projector.TransformForward(&point, 1);
  return point;
}

shr::Vec2d Inverse(Projector& projector, double x, double y) {
  shr::Vec2d point(x, y);
  projector.TransformInverse(&point, 1);
  return point;
}

bool SameBits(const shr::Vec2d& a, const shr::Vec2d& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// An engine that gives what it is told to.
class TestActor : public ProjActor {
 public:
  using Work = std::function<bool(shr::Vec2d*, size_t)>;
  explicit TestActor(Work work) : m_Work(std::move(work)) {}
  std::unique_ptr<ProjActor> Clone() const override { return std::make_unique<TestActor>(*this); }
  bool IsLatLonInside(const ProjectionParameters&, const shr::Vec2d* lonlat) const override {
    return lonlat != nullptr;
  }
  bool GetSplitOffset(const ProjectionParameters&, const shr::Vec2d*, size_t, double*,
                      double*) const override {
    return false;
  }
  bool Forward(shr::Vec2d* pts, size_t n) override { return m_Work(pts, n); }
  bool Inverse(shr::Vec2d* pts, size_t n) override { return m_Work(pts, n); }

 private:
  Work m_Work;
};

// A Projector of that engine, for a sphere of radius 1 without false origin.
Projector WithEngine(TestActor::Work work) {
  Projector projector(Sphere(ProjectionMethodMiller, 1.0));
  ProjectorAccess::SetActor(projector, std::make_unique<TestActor>(std::move(work)));
  return projector;
}

// ---- life ------------------------------------------------------------------------------------------------

TEST(Projector, WithoutPointsThereIsNothingToTransformWhateverItsState) {
  Projector unset, set(Sphere(ProjectionMethodMiller));
  shr::Vec2d point;
  Points none;
  for (Projector* const projector : {&unset, &set}) {
    EXPECT_RAISES(projector->TransformForward(nullptr, 1), 1032, kUnit, "Nothing to transform.");
    EXPECT_RAISES(projector->TransformForward(&point, 0), 1032, kUnit, "Nothing to transform.");
    EXPECT_RAISES(projector->TransformForward(none), 1032, kUnit, "Nothing to transform.");
    EXPECT_RAISES(projector->TransformInverse(nullptr, 1), 1032, kUnit, "Nothing to transform.");
    EXPECT_RAISES(projector->TransformInverse(&point, 0), 1032, kUnit, "Nothing to transform.");
    EXPECT_RAISES(projector->TransformInverse(none), 1032, kUnit, "Nothing to transform.");
  }
}

TEST(Projector, WithoutAProjectionItIsNotInitialized) {
  Projector projector;
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Projection not initialized.");
  EXPECT_RAISES(Inverse(projector, 1, 2), 1026, kUnit, "Projection not initialized.");
  EXPECT_FALSE(projector.LatLonInProjection({0, 0}));
  double dx = 7, dy = 7;
  const shr::Vec2d point(-190, 0);
  EXPECT_FALSE(projector.OffsetSplitObject(&point, 1, &dx, &dy));
  EXPECT_EQ(dx, 7);
}

TEST(Projector, SetSystemRefusesInvalidAndUnspecifiedProjectionsAndKeepsTheOldDefinition) {
  Projector projector(Sphere(ProjectionMethodMiller));
  const ProjectionDef invalid;
  EXPECT_RAISES(projector.SetSystem(&invalid), 1032, kUnit, "Invalid projection specified.");
  ProjectionDef now;
  projector.GetSystem(now);
  EXPECT_EQ(now.GetMethod(), ProjectionMethodMiller);
  // The engine is gone all the same.
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Transform not initialized.");
  EXPECT_RAISES(Inverse(projector, 1, 2), 1026, kUnit, "Transform not initialized.");

  projector.SetSystem(&now);
  const ProjectionDef other(ProjectionMethodOther);
  EXPECT_RAISES(projector.SetSystem(&other), 1032, kUnit,
                "Transform not possible with unspecified projection.");
  projector.GetSystem(now);
  EXPECT_EQ(now.GetMethod(), ProjectionMethodMiller);
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Transform not initialized.");
  EXPECT_RAISES(Projector{other}, 1032, kUnit, "Transform not possible with unspecified projection.");
}

TEST(Projector, AnUnprojectedSystemCannotBeSetButIsKept) {
  Projector projector(Sphere(ProjectionMethodMiller));
  const ProjectionDef unprojected(ProjectionMethodUnprojected);
  EXPECT_RAISES(projector.SetSystem(&unprojected), 1026, kUnit, "Unknown projection method.");
  ProjectionDef now;
  projector.GetSystem(now);
  EXPECT_EQ(now.GetMethod(), ProjectionMethodUnprojected);
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Transform not initialized.");
}

TEST(Projector, AnEngineThatCannotBeSetUpLeavesTheNewDefinitionAndNoEngine) {
  Projector projector(Sphere(ProjectionMethodMiller));
  ProjectionDef hotine(ProjectionMethodHotine);
  hotine.SetParameter(ProjectionParameterIDUseAlpha, false);
  hotine.SetParameter(ProjectionParameterIDLat2, 45.0);  // the same as Lat1
  EXPECT_RAISES(
      projector.SetSystem(&hotine), 1026, "ProjHotine",
      "Undefined mathematical result during projection.  Unexpected zero value in intermediate term.");
  ProjectionDef now;
  projector.GetSystem(now);
  EXPECT_EQ(now.GetMethod(), ProjectionMethodHotine);
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Transform not initialized.");
}

TEST(Projector, SetSystemNullAndFlushTakeTheProjectionAway) {
  Projector projector(Sphere(ProjectionMethodMiller));
  Forward(projector, kNaN, 0);
  EXPECT_TRUE(projector.CheckUnplottableResult());
  projector.SetSystem(nullptr);
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Projection not initialized.");
  EXPECT_TRUE(projector.CheckUnplottableResult());  // only Flush clears it
  EXPECT_EQ(ProjectorAccess::Working(projector).method, ProjectionMethodMiller);
  projector.Flush();
  EXPECT_FALSE(projector.CheckUnplottableResult());
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Projection not initialized.");
}

TEST(Projector, TheEngineSeesTheSevenAnglesInRadiansAndAllElseAsGiven) {
  ProjectionParameters p;
  p.method = ProjectionMethodHotine;
  p.ellipsoid = EllipsoidDef(6378137.0, 0.0033, "T", "N", "C", 5);
  p.Scale = 3;
  p.xOrg = 10;
  p.yOrg = 20;
  p.Lon0 = 1;
  p.Lon1 = 2;
  p.Lon2 = 3;
  p.Lat0 = 4;
  p.Lat1 = 5;
  p.Lat2 = 6;
  p.K0 = 0.9;
  p.Alpha = 7;
  p.bUseAlpha = p.bRotate = true;
  Projector projector{ProjectionDef(p)};
  const ProjectionParameters& working = ProjectorAccess::Working(projector);
  const double angles[] = {working.Lon0, working.Lon1, working.Lon2, working.Lat0,
                           working.Lat1, working.Lat2, working.Alpha};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(angles[i], (i + 1) * 3.141592653589793 / 180.0);
  EXPECT_EQ(working.Scale, 3);
  EXPECT_EQ(working.xOrg, 10);
  EXPECT_EQ(working.yOrg, 20);
  EXPECT_EQ(working.K0, 0.9);
  EXPECT_EQ(working.ellipsoid.GetMajorRadius(), 6378137.0);
  ProjectionDef given;
  projector.GetSystem(given);
  EXPECT_EQ(given.GetParameter(ProjectionParameterIDAlpha), 7);
}

TEST(Projector, CopiesHaveTheirOwnEngine) {
  Projector first(Sphere(ProjectionMethodMercator));
  Forward(first, 0, 90);
  Projector copy(first);
  EXPECT_TRUE(copy.CheckUnplottableResult());
  const shr::Vec2d expected = Forward(first, 10, 20);
  first.Flush();
  EXPECT_TRUE(SameBits(Forward(copy, 10, 20), expected));
  Projector assigned(Sphere(ProjectionMethodMiller));
  assigned = copy;
  EXPECT_TRUE(SameBits(Forward(assigned, 10, 20), expected));
  EXPECT_NE(ProjectorAccess::Actor(assigned), ProjectorAccess::Actor(copy));
  assigned = Projector();
  EXPECT_RAISES(Forward(assigned, 10, 20), 1026, kUnit, "Projection not initialized.");
}

TEST(Projector, AssignedToItselfItStays) {
  Projector projector(Sphere(ProjectionMethodMercator));
  const shr::Vec2d expected = Forward(projector, 10, 20);
  Projector& same = projector;
  projector = same;
  EXPECT_TRUE(SameBits(Forward(projector, 10, 20), expected));
}

TEST(Projector, DumpShowsTheDefinitionAndTheFlag) {
  Projector projector(Sphere(ProjectionMethodMercator));
  Forward(projector, 0, 90);
  std::string text;
  projector.DebugDump(text, 2);
  std::string expected =
      internal::Format("  Projector this=%p:\n  ---m_Projection:\n", static_cast<const void*>(&projector));
  ProjectorAccess::Projection(projector).DebugDump(expected, 2);
  expected += internal::Format("  ---m_pActor = %p\n  ---m_bHadUnplottables = true\n",
                               static_cast<const void*>(ProjectorAccess::Actor(projector)));
  EXPECT_EQ(text, expected);
  std::string unset;
  Projector().DebugDump(unset, 0);
  EXPECT_NE(unset.find("---m_bHadUnplottables = false\n"), std::string::npos);
}

// ---- the frame -------------------------------------------------------------------------------------------

TEST(Projector, TheFalseOriginIsAddedBeforeTheScale) {
  const ProjectionDef plain = Sphere(ProjectionMethodMercator);
  ProjectionDef scaled = plain;
  scaled.SetParameter(ProjectionParameterIDScale, 2.0);
  scaled.SetParameter(ProjectionParameterIDXOrg, 100.0);
  Projector engine(plain), projector(scaled);
  const shr::Vec2d raw = Forward(engine, 30, 40), point = Forward(projector, 30, 40);
  EXPECT_EQ(point.x, 2.0 * (raw.x + 100.0));
  EXPECT_EQ(point.y, 2.0 * raw.y);
  const shr::Vec2d back = Inverse(projector, point.x, point.y);
  EXPECT_NEAR(back.x, 30, 1e-12);
  EXPECT_NEAR(back.y, 40, 1e-12);
}

TEST(Projector, TheInverseDividesByTheScaleAndThenSubtractsTheFalseOrigin) {
  ProjectionDef def = Sphere(ProjectionMethodEquidistantCylindrical, 1.0);
  def.SetParameter(ProjectionParameterIDScale, 4.0);
  def.SetParameter(ProjectionParameterIDXOrg, 3.0);
  def.SetParameter(ProjectionParameterIDYOrg, -2.0);
  Projector projector(def);
  const shr::Vec2d back = Inverse(projector, 4.0 * (3.0 + 0.5), 4.0 * (-2.0 + 0.25));
  EXPECT_DOUBLE_EQ(back.x, 0.5 * 180.0 / 3.141592653589793);
  EXPECT_DOUBLE_EQ(back.y, 0.25 * 180.0 / 3.141592653589793);
}

TEST(Projector, AYOrgAloneIsAddedToo) {
  ProjectionDef def = Sphere(ProjectionMethodEquidistantCylindrical, 1.0);
  def.SetParameter(ProjectionParameterIDYOrg, 5.0);
  Projector projector(def);
  EXPECT_EQ(Forward(projector, 0, 0).y, 5.0);
  EXPECT_EQ(Forward(projector, 0, 0).x, 0.0);
}

TEST(Projector, LongitudesKeepTheirSignAndLatitudesFoldOnTheirMeridian) {
  Projector projector(Sphere(ProjectionMethodEquidistantCylindrical));
  const auto same = [&](double lon, double lat, double asLon, double asLat) {
    EXPECT_TRUE(SameBits(Forward(projector, lon, lat), Forward(projector, asLon, asLat)))
        << lon << ' ' << lat;
  };
  same(370, 100, 10, 80);
  same(-370, -100, -10, -80);
  same(725, 0, 5, 0);
  same(0, 190, 0, 10);  // fmod(190, 180)
  same(0, -190, 0, -10);
  same(0, 270, 0, 90);
  same(360, 180, 0, 0);
  // Deliberate: longitudes are not brought into -180 to 180.
  EXPECT_EQ(Forward(projector, 350, 0).x, 1000.0 * (350 * 3.141592653589793 / 180.0));
  EXPECT_EQ(Forward(projector, -350, 0).x, -1000.0 * (350 * 3.141592653589793 / 180.0));
  // fmod is exact: 1e20 is 280 modulo 360, and 100 modulo 180, which folds to 80.
  same(1e20, 1e20, 280, 80);
}

TEST(Projector, TheInverseNormalisesItsResult) {
  Projector projector(Sphere(ProjectionMethodEquidistantCylindrical, 180.0 / 3.141592653589793));
  EXPECT_NEAR(Inverse(projector, 370, 0).x, 10, 1e-12);
  EXPECT_NEAR(Inverse(projector, -370, 0).x, -10, 1e-12);
  EXPECT_NEAR(Inverse(projector, 350, 0).x, 350, 1e-12);
  EXPECT_NEAR(Inverse(projector, 5, 100).y, 80, 1e-12);
  EXPECT_NEAR(Inverse(projector, 5, 100).x, 5, 1e-12);
  EXPECT_NEAR(Inverse(projector, 5, -100).y, -80, 1e-12);
}

TEST(Projector, MarkedPointsStayMarkedAndSetTheFlagBothWays) {
  ProjectionDef def = Sphere(ProjectionMethodMercator);
  def.SetParameter(ProjectionParameterIDScale, 2.0);
  def.SetParameter(ProjectionParameterIDXOrg, 100.0);
  Projector projector(def);
  for (const bool forward : {true, false}) {
    Points points = {{10, 20}, {kMarker, kMarker}, {30, 40}};
    forward ? projector.TransformForward(points) : projector.TransformInverse(points);
    EXPECT_EQ(points[1].x, kMarker);
    EXPECT_EQ(points[1].y, kMarker);
    EXPECT_TRUE(projector.CheckUnplottableResult());
    points = {{10, 20}};
    forward ? projector.TransformForward(points) : projector.TransformInverse(points);
    EXPECT_FALSE(projector.CheckUnplottableResult());
  }
}

TEST(Projector, PointsThatCannotBeProjectedBecomeTheMarker) {
  Projector projector(Sphere(ProjectionMethodMercator));
  Points points = {{10, 90}, {10, 20}, {10, -90}};
  projector.TransformForward(points);
  for (const size_t i : {size_t{0}, size_t{2}}) {
    EXPECT_EQ(points[i].x, kMarker);
    EXPECT_EQ(points[i].y, kMarker);
  }
  EXPECT_NE(points[1].x, kMarker);
  EXPECT_TRUE(projector.CheckUnplottableResult());
}

TEST(Projector, ForwardMarksABadCoordinateAloneAndStillConvertsTheOther) {
  ProjectionDef def = Sphere(ProjectionMethodMiller);
  def.SetParameter(ProjectionParameterIDScale, 2.0);
  def.SetParameter(ProjectionParameterIDXOrg, 100.0);
  def.SetParameter(ProjectionParameterIDYOrg, 200.0);
  Projector projector(def);
  for (const double bad : {kNaN, kInfinity, -kInfinity, kMarker}) {
    // The engine skips the point; degrees, false origin and scale still reach the other coordinate.
    const shr::Vec2d x = Forward(projector, bad, 370);
    EXPECT_EQ(x.x, kMarker);
    EXPECT_EQ(x.y, ((180.0 - 190.0) * -3.141592653589793 / 180.0 + 200.0) * 2.0) << bad;
    EXPECT_TRUE(projector.CheckUnplottableResult());
    const shr::Vec2d y = Forward(projector, 370, bad);
    EXPECT_EQ(y.x, (10.0 * 3.141592653589793 / 180.0 + 100.0) * 2.0) << bad;
    EXPECT_EQ(y.y, kMarker);
    EXPECT_TRUE(projector.CheckUnplottableResult());
  }
}

TEST(Projector, InverseMarksBothCoordinatesOfABadPoint) {
  Projector projector(Sphere(ProjectionMethodMiller));
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    for (const shr::Vec2d point : {Inverse(projector, bad, 1), Inverse(projector, 1, bad)}) {
      EXPECT_EQ(point.x, kMarker);
      EXPECT_EQ(point.y, kMarker);
    }
    EXPECT_TRUE(projector.CheckUnplottableResult());
  }
  // A half-marked one stays half marked: its other coordinate goes the way of all coordinates, without the
  // engine.
  const shr::Vec2d half = Inverse(projector, kMarker, 0.5);
  EXPECT_EQ(half.x, kMarker);
  EXPECT_EQ(half.y, 0.5 * 180.0 / 3.141592653589793);
  EXPECT_TRUE(projector.CheckUnplottableResult());
}

TEST(Projector, WhatTheEngineLeavesWithoutAValueIsMarked) {
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    Projector projector = WithEngine([bad](shr::Vec2d* pts, size_t) {
      pts[0].y = bad;
      return true;
    });
    for (const shr::Vec2d point : {Forward(projector, 1, 2), Inverse(projector, 1, 2)}) {
      EXPECT_EQ(point.x, kMarker);
      EXPECT_EQ(point.y, kMarker);
      EXPECT_TRUE(projector.CheckUnplottableResult());
    }
  }
}

TEST(Projector, AnOverflowBehindTheEngineIsNotMarked) {
  ProjectionDef def = Sphere(ProjectionMethodEquidistantCylindrical, 1e300);
  def.SetParameter(ProjectionParameterIDScale, 1e38);
  Projector projector(def);
  EXPECT_EQ(Forward(projector, 90, 0).x, kInfinity);
  EXPECT_FALSE(projector.CheckUnplottableResult());
}

TEST(Projector, AScaleOfZeroMarksInTheInverse) {
  ProjectionDef def = Sphere(ProjectionMethodEquidistantCylindrical);
  def.DecodeFromText("<{10,Projection[1]>\r\n<f5,Scale[1]=0>\r\n<}10,Projection[1]>\r\n", nullptr);
  Projector projector(def);
  EXPECT_EQ(Forward(projector, 90, 45).x, 0.0);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  for (const double x : {0.0, 1.0}) {
    EXPECT_EQ(Inverse(projector, x, 1.0).x, kMarker);
    EXPECT_TRUE(projector.CheckUnplottableResult());
  }
}

TEST(Projector, AWorkingMethodOfUnprojectedReturnsBatchesUnchanged) {
  Projector projector = WithEngine([](shr::Vec2d*, size_t) { return false; });
  ProjectorAccess::Working(projector).method = ProjectionMethodUnprojected;
  const shr::Vec2d point = Forward(projector, 400, 100);
  EXPECT_EQ(point.x, 400);
  EXPECT_EQ(point.y, 100);
  EXPECT_EQ(Inverse(projector, 400, 100).x, 400);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  // The inverse has looked at its points before; the forward has not, and its flag keeps its value.
  const shr::Vec2d bad = Inverse(projector, kNaN, 100);
  EXPECT_EQ(bad.x, kMarker);
  EXPECT_EQ(bad.y, kMarker);
  EXPECT_TRUE(projector.CheckUnplottableResult());
  Forward(projector, 1, 2);
  EXPECT_TRUE(projector.CheckUnplottableResult());
}

TEST(Projector, AFailedBatchRaises) {
  Projector projector = WithEngine([](shr::Vec2d*, size_t) { return false; });
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, kUnit, "Projection failure.");
  EXPECT_RAISES(Inverse(projector, 1, 2), 1026, kUnit, "Projection failure.");
  EXPECT_FALSE(projector.CheckUnplottableResult());
}

TEST(Projector, WhatTheEngineRaisesPassesThrough) {
  Projector projector = WithEngine([](shr::Vec2d*, size_t) {
    return ORV_FAIL_AT((ErrorSite{"SomeEngine", 1}), ErrCorrupt, "Something happened.");
  });
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, "SomeEngine", "Something happened.");
  EXPECT_RAISES(Inverse(projector, 1, 2), 1026, "SomeEngine", "Something happened.");
}

TEST(Projector, ResultsDependNeitherOnThePlaceInTheBatchNorOnItsSize) {
  ProjectionDef def(ProjectionMethodTransverseMercator);
  def.SetParameter(ProjectionParameterIDXOrg, 500000.0);
  def.SetParameter(ProjectionParameterIDScale, 0.5);
  Projector projector(def);
  const auto lonlat = [](size_t i) {
    const double t = static_cast<double>(i);
    if (i % 97 == 5) return shr::Vec2d(kMarker, kMarker);
    if (i % 89 == 7) return shr::Vec2d(kNaN, t);
    return shr::Vec2d(-90.0 + 5.0 * std::sin(t), 40.0 * std::cos(1.7 * t));
  };
  constexpr size_t kSizes[] = {1, 2, 7, 8, 9, 15, 511, 512, 513, 519, 520, 521, 1024, 1031};
  for (const size_t n : kSizes) {
    for (const bool forward : {true, false}) {
      Points batch;
      for (size_t i = 0; i < n; ++i) {
        const shr::Vec2d p = lonlat(i);
        batch.push_back(forward ? p : shr::Vec2d(250000.0 + 1000.0 * p.x, 50000.0 * p.y));
      }
      const Points given = batch;
      forward ? projector.TransformForward(batch) : projector.TransformInverse(batch);
      bool flag = false;
      for (size_t i = 0; i < n; ++i) {
        const shr::Vec2d alone =
            forward ? Forward(projector, given[i].x, given[i].y) : Inverse(projector, given[i].x, given[i].y);
        EXPECT_TRUE(SameBits(batch[i], alone)) << n << ' ' << i;
        flag = flag || projector.CheckUnplottableResult();
      }
      Points again = given;
      forward ? projector.TransformForward(again.data(), n) : projector.TransformInverse(again.data(), n);
      EXPECT_EQ(projector.CheckUnplottableResult(), flag) << n;
    }
  }
}

// ---- areas -----------------------------------------------------------------------------------------------

TEST(Projector, LatLonInProjectionTakesLongitudesAsTheyAre) {
  Projector projector(Sphere(ProjectionMethodMercator));
  EXPECT_TRUE(projector.LatLonInProjection({10, 0}));
  const shr::Vec2d point(10, 0);
  EXPECT_TRUE(projector.LatLonInProjection(&point));
  EXPECT_FALSE(projector.LatLonInProjection(nullptr));
  EXPECT_FALSE(projector.LatLonInProjection({180, 0}));
  // Deliberate: 370 is outside although it is projected as 10.
  EXPECT_FALSE(projector.LatLonInProjection({370, 0}));
}

TEST(Projector, OffsetSplitObjectShiftsObjectsAcrossTheCut) {
  Projector projector(Sphere(ProjectionMethodMercator));
  double dx = 0, dy = 1;
  Points object = {{-190, 1}, {-170, 2}};
  EXPECT_TRUE(projector.OffsetSplitObject(object.data(), object.size(), &dx, &dy));
  EXPECT_EQ(dx, 360);
  EXPECT_EQ(dy, 0);
  object = {{170, 1}, {190, 2}};
  EXPECT_TRUE(projector.OffsetSplitObject(object.data(), object.size(), &dx, &dy));
  EXPECT_EQ(dx, -360);
  object = {{-170, 1}, {170, 2}};
  EXPECT_FALSE(projector.OffsetSplitObject(object.data(), object.size(), &dx, &dy));
  EXPECT_EQ(dx, 0);
}

// The definition's degrees reach the engine's inside test and split rule, not its working radians.
TEST(Projector, AreasAreThoseOfTheDefinitionInDegrees) {
  ProjectionDef def = Sphere(ProjectionMethodMercator);
  def.SetParameter(ProjectionParameterIDLon0, 90.0);
  Projector projector(def);
  EXPECT_TRUE(projector.LatLonInProjection({269, 0}));
  EXPECT_FALSE(projector.LatLonInProjection({-91, 0}));
  double dx = 0, dy = 0;
  const shr::Vec2d point(-91, 0);
  EXPECT_TRUE(projector.OffsetSplitObject(&point, 1, &dx, &dy));
}

// ---- floating-point traps --------------------------------------------------------------------------------

#if defined(__GLIBC__) && defined(__SSE2__)

// Each test unmasks what it needs; afterwards everything is masked and clear again.
class ProjectorTraps : public testing::Test {
 protected:
  void SetUp() override { FpFault() = false; }
  void TearDown() override { fesetenv(FE_DFL_ENV); }

  static void Unmask(int traps) {
    feclearexcept(FE_ALL_EXCEPT);
    feenableexcept(traps);
  }
};

constexpr unsigned kFour =
    platform::FpZeroDivide | platform::FpOverflow | platform::FpUnderflow | platform::FpDenormal;

// An engine with an overflow of its own.
Projector Overflowing() { return Projector(Sphere(ProjectionMethodEquidistantCylindrical, 1.7e308)); }

TEST_F(ProjectorTraps, AMaskedOverflowIsAMarkedPoint) {
  Projector projector = Overflowing();
  EXPECT_EQ(Forward(projector, 100, 10).x, kMarker);
  EXPECT_TRUE(projector.CheckUnplottableResult());
  EXPECT_FALSE(FpFault());
}

TEST_F(ProjectorTraps, AnUnmaskedOverflowFailsTheBatch) {
  Projector projector = Overflowing();
  Unmask(FE_OVERFLOW);
  EXPECT_RAISES(Forward(projector, 100, 10), 1026, kUnit, "Projection failure.");
  EXPECT_TRUE(projector.CheckUnplottableResult());
  EXPECT_TRUE(FpFault());
  // The four are left unmasked, the status is clear.
  EXPECT_EQ(platform::UnmaskedFpExceptions(), kFour);
  EXPECT_EQ(fetestexcept(FE_ALL_EXCEPT), 0);
  // The next batch is a new one.
  EXPECT_EQ(Forward(projector, 0, 0).x, 0.0);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  EXPECT_FALSE(FpFault());
}

TEST_F(ProjectorTraps, TheInverseIsUnderTheSameGuard) {
  Projector projector = WithEngine([](shr::Vec2d* pts, size_t) {
    volatile double zero = 0.0;
    pts[0].x = 1.0 / zero;
    return true;
  });
  Unmask(FE_DIVBYZERO);
  EXPECT_RAISES(Inverse(projector, 1, 1), 1026, kUnit, "Projection failure.");
  EXPECT_TRUE(projector.CheckUnplottableResult());
  EXPECT_TRUE(FpFault());
}

TEST_F(ProjectorTraps, AnExceptionThatTheHostHasMaskedDoesNotCount) {
  Projector projector = Overflowing();
  Unmask(FE_DIVBYZERO);
  EXPECT_EQ(Forward(projector, 100, 10).x, kMarker);
  EXPECT_EQ(platform::UnmaskedFpExceptions(), static_cast<unsigned>(platform::FpZeroDivide));
  EXPECT_FALSE(FpFault());
}

TEST_F(ProjectorTraps, TheHostsEnvironmentIsPutBack) {
  Projector projector(Sphere(ProjectionMethodMercator));
  Unmask(FE_DIVBYZERO | FE_OVERFLOW);
  feraiseexcept(FE_INEXACT);
  Forward(projector, 10, 20);
  EXPECT_EQ(platform::UnmaskedFpExceptions(), 0u + platform::FpZeroDivide + platform::FpOverflow);
  EXPECT_EQ(fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW | FE_INVALID), 0);
  EXPECT_NE(fetestexcept(FE_INEXACT), 0);
}

TEST_F(ProjectorTraps, AnEngineThatRaisesLeavesTheHostsEnvironment) {
  Projector projector = WithEngine([](shr::Vec2d*, size_t) {
    return ORV_FAIL_AT((ErrorSite{"SomeEngine", 1}), ErrCorrupt, "Something happened.");
  });
  Unmask(FE_OVERFLOW);
  EXPECT_RAISES(Forward(projector, 1, 2), 1026, "SomeEngine", "Something happened.");
  EXPECT_EQ(platform::UnmaskedFpExceptions(), static_cast<unsigned>(platform::FpOverflow));
  EXPECT_FALSE(FpFault());
}

TEST_F(ProjectorTraps, TheFirstFailingBlockEndsTheBatch) {
  Projector projector = Overflowing();
  Points points(2000, shr::Vec2d(1, 1));
  points[1500].x = 100;
  Unmask(FE_OVERFLOW);
  EXPECT_RAISES(projector.TransformForward(points), 1026, kUnit, "Projection failure.");
  EXPECT_TRUE(projector.CheckUnplottableResult());
}

TEST_F(ProjectorTraps, MerelyMarkedPointsMeetNoTrap) {
  struct Case {
    ProjectionMethod method;
    Points points;
    bool forward;
  };
  const Case cases[] = {
      {ProjectionMethodMercator, {{0, 90}, {0, -90}, {kMarker, kMarker}, {kNaN, 0}, {0, kInfinity}}, true},
      {ProjectionMethodTransverseMercator, {{0, 0}, {-180, 0}, {kMarker, 0}}, true},
      {ProjectionMethodEquidistantCylindrical, {{1, 1}, {kMarker, 2}, {kNaN, 2}}, false},
  };
  for (const Case& c : cases) {
    ProjectionDef def = Sphere(c.method);
    if (c.method == ProjectionMethodEquidistantCylindrical) def.SetParameter(ProjectionParameterIDLat1, 90.0);
    Projector projector(def);
    Points points = c.points;
    Unmask(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID);
    c.forward ? projector.TransformForward(points) : projector.TransformInverse(points);
    fedisableexcept(FE_ALL_EXCEPT);
    EXPECT_TRUE(projector.CheckUnplottableResult()) << c.method;
    for (const shr::Vec2d& point : points)
      EXPECT_TRUE(point.x == kMarker || point.y == kMarker) << c.method << ' ' << point.x;
  }
}

#endif

}  // namespace
}  // namespace orv
