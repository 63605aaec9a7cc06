#include "orv/projection/internal/ProjArea.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "orv/core/internal/Marker.h"

namespace orv::internal {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ProjectionParameters At(double lon0, double lat0, double lat1 = 0.0) {
  ProjectionParameters p;
  p.Lon0 = lon0;
  p.Lat0 = lat0;
  p.Lat1 = lat1;
  return p;
}

TEST(ProjArea, TheWindowIsOpenAtBothEnds) {
  const ProjectionParameters p = At(90, 0);
  EXPECT_TRUE(InsideWindow(p, {-89.999, 90}));
  EXPECT_TRUE(InsideWindow(p, {269.999, -90}));
  EXPECT_FALSE(InsideWindow(p, {-90, 0}));
  EXPECT_FALSE(InsideWindow(p, {270, 0}));
  EXPECT_FALSE(InsideWindow(p, {-95, 0}));  // 265 is inside, but nothing is normalised
  EXPECT_FALSE(InsideWindow(p, {kNaN, 0}));
  EXPECT_TRUE(InsideWindow(p, {0, kNaN}));
}

TEST(ProjArea, MercatorAndMillerLeaveOutThePoles) {
  const ProjectionParameters p = At(0, 0);
  EXPECT_TRUE(InsideWindowBelowPoles(p, {179.999, 89.999}));
  EXPECT_FALSE(InsideWindowBelowPoles(p, {0, 90}));
  EXPECT_FALSE(InsideWindowBelowPoles(p, {0, -90}));
  EXPECT_FALSE(InsideWindowBelowPoles(p, {180, 0}));
  EXPECT_FALSE(InsideWindowBelowPoles(p, {0, kNaN}));
}

TEST(ProjArea, SinusoidalAsksForItsOwnMethod) {
  ProjectionParameters p = At(10, 0);
  EXPECT_FALSE(InsideSinusoidalWindow(p, {10, 0}));
  p.method = ProjectionMethodSinusoidal;
  EXPECT_TRUE(InsideSinusoidalWindow(p, {189.9, 0}));
  EXPECT_FALSE(InsideSinusoidalWindow(p, {190, 0}));
}

TEST(ProjArea, RobinsonIsCutAt180WhateverLon0) {
  const ProjectionParameters p = At(90, 0);
  EXPECT_TRUE(InsideGreenwichWindow(p, {-179.9, 0}));
  EXPECT_FALSE(InsideGreenwichWindow(p, {180, 0}));
  EXPECT_FALSE(InsideGreenwichWindow(p, {200, 0}));
  const std::vector<shr::Vec2d> object = {{170, 0}, {190, 0}};
  double dx = 1, dy = 1;
  EXPECT_TRUE(SplitAtGreenwichWindow(p, object.data(), object.size(), &dx, &dy));
  EXPECT_EQ(dx, -360.0);
}

// Points on the meridian of the centre are as far from it as their latitudes tell.
TEST(ProjArea, AzimuthalMethodsMeasureTheArcFromTheirCentre) {
  const ProjectionParameters p = At(20, 30, -40);
  EXPECT_TRUE(InsideHemisphere(p, {20, -59.999}));
  EXPECT_FALSE(InsideHemisphere(p, {20, -60.001}));
  EXPECT_TRUE(InsideHemisphere(p, {-160, 60.001}));  // over the pole
  EXPECT_FALSE(InsideHemisphere(p, {-160, 59.999}));
  EXPECT_TRUE(InsideHemisphere(p, {380, 30}));  // a cosine takes longitudes of any turn
  EXPECT_TRUE(InsideGnomonic(p, {20, 19.999}));
  EXPECT_FALSE(InsideGnomonic(p, {20, 20.001}));
  EXPECT_TRUE(InsideAzimuthalEquidistant(At(20, 30, 0), {189, 0}));
  EXPECT_FALSE(InsideAzimuthalEquidistant(At(20, 30, 0), {191, 0}));
  EXPECT_FALSE(InsideHemisphere(p, {kNaN, 0}));
}

TEST(ProjArea, AzimuthalEquidistantEnds170DegreesFromItsCentre) {
  for (const double lat1 : {0.0, 60.0, -90.0}) {
    const ProjectionParameters p = At(0, 7, lat1);
    const auto above = [&](double arc) {
      return shr::Vec2d(lat1 + arc > 90 ? 180 : 0, lat1 + arc > 90 ? 180 - lat1 - arc : lat1 + arc);
    };
    EXPECT_TRUE(InsideAzimuthalEquidistant(p, above(169)));
    EXPECT_FALSE(InsideAzimuthalEquidistant(p, above(171)));
  }
}

TEST(ProjArea, ObliqueMercatorLooksAtLatitudesOnly) {
  ProjectionParameters p;
  p.Lat1 = 40;
  p.Lat2 = 20;
  EXPECT_TRUE(InsideObliqueMercator(p, {1000, 64.9}));
  EXPECT_FALSE(InsideObliqueMercator(p, {0, 65}));
  EXPECT_TRUE(InsideObliqueMercator(p, {0, -4.9}));
  EXPECT_FALSE(InsideObliqueMercator(p, {0, -5}));
}

TEST(ProjArea, HotineLooksAtLat1OnlyWithoutAlpha) {
  ProjectionParameters p;
  p.Lon1 = 100;
  p.Lat1 = 10;
  p.bUseAlpha = true;
  EXPECT_TRUE(InsideHotine(p, {114.9, 80}));
  EXPECT_FALSE(InsideHotine(p, {115, 10}));
  EXPECT_FALSE(InsideHotine(p, {85, 10}));
  p.bUseAlpha = false;
  EXPECT_FALSE(InsideHotine(p, {100, 25}));
  EXPECT_TRUE(InsideHotine(p, {100, 24.9}));
  EXPECT_FALSE(InsideHotine(p, {100, -5}));
}

TEST(ProjArea, EverywhereTakesPointsWithoutAValueToo) {
  EXPECT_TRUE(InsideEverywhere(At(0, 0), {kNaN, kMarker}));
}

// ---- split offsets ---------------------------------------------------------------------------------------

struct Offset {
  bool shift;
  double dx, dy;
  bool operator==(const Offset& o) const { return shift == o.shift && dx == o.dx && dy == o.dy; }
};
void PrintTo(const Offset& o, std::ostream* out) { *out << o.shift << ' ' << o.dx << ' ' << o.dy; }

Offset Split(double lon0, const std::vector<shr::Vec2d>& pts) {
  Offset offset{false, 7.0, 7.0};
  offset.shift = SplitAtWindow(At(lon0, 0), pts.data(), pts.size(), &offset.dx, &offset.dy);
  return offset;
}

TEST(ProjArea, ObjectsAcrossTheCutAreShifted) {
  EXPECT_EQ(Split(0, {{-190, 5}, {-170, 6}}), (Offset{true, 360, 0}));
  EXPECT_EQ(Split(0, {{170, 5}, {190, 6}}), (Offset{true, -360, 0}));
  EXPECT_EQ(Split(0, {{-170, 5}, {170, 6}}), (Offset{false, 0, 0}));
  EXPECT_EQ(Split(90, {{-89, 5}, {269, 6}}), (Offset{false, 0, 0}));
  EXPECT_EQ(Split(90, {{-91, 5}}), (Offset{true, 360, 0}));
}

TEST(ProjArea, TheBoundsCountAndTheWestWins) {
  EXPECT_EQ(Split(0, {{-180, 0}}), (Offset{true, 360, 0}));
  EXPECT_EQ(Split(0, {{180, 0}}), (Offset{true, -360, 0}));
  EXPECT_EQ(Split(0, {{190, 0}, {-190, 0}}), (Offset{true, 360, 0}));
}

TEST(ProjArea, MarkersAreEasternmostAndNaNIsIgnored) {
  EXPECT_EQ(Split(0, {{kMarker, kMarker}, {10, 0}}), (Offset{true, -360, 0}));
  EXPECT_EQ(Split(0, {{kNaN, 0}, {10, 0}}), (Offset{false, 0, 0}));
  EXPECT_EQ(Split(0, {{kNaN, 0}}), (Offset{false, 0, 0}));
}

TEST(ProjArea, NothingIsWrittenWhereSomethingIsMissing) {
  const shr::Vec2d point(-190, 0);
  double dx = 7, dy = 7;
  EXPECT_FALSE(SplitAtWindow(At(0, 0), nullptr, 1, &dx, &dy));
  EXPECT_FALSE(SplitAtWindow(At(0, 0), &point, 0, &dx, &dy));
  EXPECT_FALSE(SplitAtWindow(At(0, 0), &point, 1, nullptr, &dy));
  EXPECT_FALSE(SplitAtWindow(At(0, 0), &point, 1, &dx, nullptr));
  EXPECT_EQ(dx, 7);
  EXPECT_EQ(dy, 7);
}

TEST(ProjArea, MethodsWithoutACutAnswerFalseWithOffsetsOfZero) {
  double dx = 7, dy = 7;
  EXPECT_FALSE(SplitNowhere(At(0, 0), nullptr, 0, &dx, &dy));
  EXPECT_EQ(dx, 0);
  EXPECT_EQ(dy, 0);
  EXPECT_FALSE(SplitNowhere(At(0, 0), nullptr, 0, nullptr, nullptr));
}

}  // namespace
}  // namespace orv::internal
