// Every cylindrical method beside PROJ: 1000 points and two parameter sets each, with every parameter away
// from its default.
//
// Deliberate differences, with their sizes:
//   Mercator inverse of the ellipsoid   latitudes up to 2.6e-5 degrees nearer to the Equator (base 2.71828)
//   Transverse Mercator, UTM, Cassini   series: within 2 mm of the exact projection up to 3.5 (Cassini 3)
//   degrees from Lon0 Oblique Mercator                    x counts from another crossing of the Equator, and
//   the map may be turned by 180 degrees
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "orv/core/internal/Text.h"
#include "orv/projection/Projector.h"
#include "tests/peer/Peer.h"

namespace orv {
namespace {

using internal::Format;

constexpr size_t kPoints = 1000;

// Airy 1830 and WGS 84: as text for PROJ, and the same numbers here.
struct Figure {
  double a, f;
};
constexpr Figure kAiry = {6377563.396, 1.0 / 299.3249646};
constexpr Figure kWgs = {6378137.0, 1.0 / 298.257223563};

ProjectionParameters On(ProjectionMethod method, const Figure& figure) {
  ProjectionParameters p;
  p.method = method;
  p.ellipsoid.SetMajorRadius(figure.a);
  p.ellipsoid.SetFlattening(figure.f);
  return p;
}

// The figure, and the false origin.  PROJ has no scale behind the false origin, so the expected values are
// multiplied here.
std::string Common(const ProjectionParameters& p) {
  const double f = p.ellipsoid.GetFlattening();
  const std::string figure = f == 0.0 ? Format(" +R=%.17g", p.ellipsoid.GetMajorRadius())
                                      : Format(" +a=%.17g +f=%.17g", p.ellipsoid.GetMajorRadius(), f);
  return figure + Format(" +x_0=%.17g +y_0=%.17g +units=m +no_defs", p.xOrg, p.yOrg);
}

struct Window {
  double west, east, south, north;
};

// The worst distances to the peer: forward in the projected unit before Scale, inverse of the peer's points
// in degrees of arc.
struct Worst {
  double forward = 0.0, inverse = 0.0;
};

std::vector<shr::Vec2d> Scaled(std::vector<shr::Vec2d> points, double scale) {
  for (shr::Vec2d& point : points) point = {point.x * scale, point.y * scale};
  return points;
}

Worst Compare(const ProjectionParameters& p, const std::string& peerDefinition, const Window& w) {
  const ProjectionDef def(p);
  Projector projector(def);
  const test::Peer other(peerDefinition + Common(*def.GetParameters()));
  const std::vector<shr::Vec2d> given = test::RandomPoints(kPoints, w.west, w.east, w.south, w.north);
  const std::vector<shr::Vec2d> theirs = other.Forward(given);
  std::vector<shr::Vec2d> ours = given, back = Scaled(theirs, p.Scale);
  projector.TransformForward(ours);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  projector.TransformInverse(back);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  return {test::LargestDistance(Scaled(ours, 1.0 / p.Scale), theirs), test::LargestArc(back, given)};
}

constexpr double kMicron = 1e-6;           // metres
constexpr double kMicronArc = 1e-6 / 1e5;  // degrees: a micrometre on the ground

TEST(ProjectionPeer, Mercator) {
  const struct {
    Figure figure;
    double lon0, lat0, xOrg, yOrg, scale;
  } sets[] = {{kAiry, 51.0, 42.0, 12000.0, -34000.0, 2.0}, {kWgs, -100.0, -17.5, -5e5, 1e6, 0.001}};
  for (const auto& set : sets) {
    ProjectionParameters p = On(ProjectionMethodMercator, set.figure);
    p.Lon0 = set.lon0;
    p.Lat0 = set.lat0;
    p.xOrg = set.xOrg;
    p.yOrg = set.yOrg;
    p.Scale = set.scale;
    const std::string peer = Format("+proj=merc +lon_0=%.17g +lat_ts=%.17g", p.Lon0, p.Lat0);
    const Window window = {p.Lon0 - 179, p.Lon0 + 179, -85, 85};
    const Worst worst = Compare(p, peer, window);
    EXPECT_LE(worst.forward, kMicron);
    // Deliberate: the base 2.71828.
    EXPECT_LE(worst.inverse, 2.6e-5);
    EXPECT_GE(worst.inverse, 2.4e-5);
    p.ellipsoid.SetFlattening(0.0);
    const Worst sphere = Compare(p, peer, window);
    EXPECT_LE(sphere.forward, kMicron);
    EXPECT_LE(sphere.inverse, kMicronArc);
  }
}

TEST(ProjectionPeer, MillerOnTheSphere) {
  for (const double lon0 : {-75.0, 120.0}) {
    ProjectionParameters p = On(ProjectionMethodMiller, {6371007.0, 0.0});
    p.Lon0 = lon0;
    p.xOrg = 1000.0 * lon0;
    p.yOrg = 777.0;
    p.Scale = 3.0;
    const Worst worst =
        Compare(p, Format("+proj=mill +lon_0=%.17g", lon0), {lon0 - 179, lon0 + 179, -90, 90});
    EXPECT_LE(worst.forward, kMicron);
    EXPECT_LE(worst.inverse, kMicronArc);
  }
}

TEST(ProjectionPeer, EquidistantCylindricalOnTheSphere) {
  for (const double lat1 : {-30.0, 56.5}) {
    ProjectionParameters p = On(ProjectionMethodEquidistantCylindrical, {6371007.0, 0.0});
    p.Lon0 = 2.0 * lat1;
    p.Lat1 = lat1;
    p.xOrg = 4e5;
    p.yOrg = -6e5;
    p.Scale = 0.5;
    const Worst worst = Compare(p, Format("+proj=eqc +lon_0=%.17g +lat_ts=%.17g", p.Lon0, lat1),
                                {p.Lon0 - 179, p.Lon0 + 179, -90, 90});
    EXPECT_LE(worst.forward, kMicron);
    EXPECT_LE(worst.inverse, kMicronArc);
  }
}

TEST(ProjectionPeer, TransverseMercatorWithinThreeAndAHalfDegrees) {
  const struct {
    Figure figure;
    double k0, lon0, lat0, xOrg, yOrg, scale;
  } sets[] = {{kAiry, 0.9996012717, -2.0, 49.0, 400000.0, -100000.0, 2.0},
              {kWgs, 1.00005, 134.0, -35.0, 1e6, 5e6, 0.001}};
  for (const auto& set : sets) {
    ProjectionParameters p = On(ProjectionMethodTransverseMercator, set.figure);
    p.K0 = set.k0;
    p.Lon0 = set.lon0;
    p.Lat0 = set.lat0;
    p.xOrg = set.xOrg;
    p.yOrg = set.yOrg;
    p.Scale = set.scale;
    const std::string peer = Format("+proj=tmerc +k_0=%.17g +lon_0=%.17g +lat_0=%.17g", p.K0, p.Lon0, p.Lat0);
    const Worst worst = Compare(p, peer, {p.Lon0 - 3.5, p.Lon0 + 3.5, -84, 84});
    EXPECT_LE(worst.forward, 0.002);
    EXPECT_LE(worst.inverse, 0.002 / 1e5);
  }
}

TEST(ProjectionPeer, TransverseMercatorOfTheSphere) {
  ProjectionParameters p = On(ProjectionMethodTransverseMercator, {6371007.0, 0.0});
  p.K0 = 0.9;
  p.Lon0 = 15.0;
  p.Lat0 = -20.0;
  p.xOrg = 1e5;
  p.yOrg = -2e5;
  p.Scale = 2.0;
  const Worst worst = Compare(p, "+proj=tmerc +approx +k_0=0.9 +lon_0=15 +lat_0=-20", {-60, 90, -89, 89});
  EXPECT_LE(worst.forward, kMicron);
  EXPECT_LE(worst.inverse, kMicronArc);
}

TEST(ProjectionPeer, UTMWithinThreeAndAHalfDegrees) {
  const struct {
    Figure figure;
    double k0, lon0, lat0;
    bool south;
    double scale;
  } sets[] = {{kAiry, 0.9996, 15.0, 3.0, true, 2.0}, {kWgs, 0.9999, -117.0, -60.0, false, 0.001}};
  for (const auto& set : sets) {
    ProjectionParameters p = On(ProjectionMethodUTM, set.figure);
    p.K0 = set.k0;
    p.Lon0 = set.lon0;
    p.Lat0 = set.lat0;
    p.bSouth = set.south;
    p.Scale = set.scale;
    const std::string peer = Format("+proj=tmerc +k_0=%.17g +lon_0=%.17g +lat_0=%.17g", p.K0, p.Lon0, p.Lat0);
    const Worst worst = Compare(p, peer, {p.Lon0 - 3.5, p.Lon0 + 3.5, -84, 84});
    EXPECT_LE(worst.forward, 0.002);
    EXPECT_LE(worst.inverse, 0.002 / 1e5);
  }
}

TEST(ProjectionPeer, UTMZonesAreThoseOfTheirCentralMeridian) {
  for (const bool south : {false, true}) {
    ProjectionParameters p = On(ProjectionMethodUTM, kWgs);
    p.K0 = 0.9996;
    p.Lon0 = 15.0;
    p.bSouth = south;
    const ProjectionDef def(p);
    Projector projector(def);
    const test::Peer zone(south ? "+proj=utm +zone=33 +south +ellps=WGS84"
                                : "+proj=utm +zone=33 +ellps=WGS84");
    const std::vector<shr::Vec2d> given =
        test::RandomPoints(kPoints, 12, 18, south ? -80 : 0, south ? 0 : 84);
    std::vector<shr::Vec2d> ours = given;
    projector.TransformForward(ours);
    EXPECT_LE(test::LargestDistance(ours, zone.Forward(given)), 0.002);
  }
}

TEST(ProjectionPeer, CassiniWithinThreeDegrees) {
  const struct {
    Figure figure;
    double lon0, lat0, xOrg, yOrg, scale;
  } sets[] = {{kAiry, -61.333333333333336, 10.441666666666666, 86501.46, 65379.01, 2.0},
              {kWgs, 35.2, -31.7, 17e4, 1126867.9, 0.1}};
  for (const auto& set : sets) {
    ProjectionParameters p = On(ProjectionMethodCassini, set.figure);
    p.Lon0 = set.lon0;
    p.Lat0 = set.lat0;
    p.xOrg = set.xOrg;
    p.yOrg = set.yOrg;
    p.Scale = set.scale;
    const std::string peer = Format("+proj=cass +lon_0=%.17g +lat_0=%.17g", p.Lon0, p.Lat0);
    const Worst worst = Compare(p, peer, {p.Lon0 - 3, p.Lon0 + 3, -80, 80});
    EXPECT_LE(worst.forward, 0.002);
    // The printed inverse drops terms in e^2: 1.6e-7 degrees (tests/projection/series_truncation.py).
    EXPECT_LE(worst.inverse, 1.6e-7);
    p.ellipsoid.SetFlattening(0.0);
    const Worst sphere = Compare(p, peer, {p.Lon0 - 80, p.Lon0 + 80, -89, 89});
    EXPECT_LE(sphere.forward, kMicron);
    EXPECT_LE(sphere.inverse, kMicronArc);
  }
}

// ---- oblique projections ---------------------------------------------------------------------------------

// Both forms of Hotine in all four combinations of their flags.
//
// PROJ gives (u, v) without offset and (x, y) with offset in both forms.  The azimuth that turns the one into
// the other, and uc, follow from two points; with them the other two combinations.
void CompareHotine(ProjectionParameters p, const std::string& line, const Window& window) {
  ProjectionParameters plain = p;
  plain.xOrg = plain.yOrg = 0.0;
  const test::Peer rotatedMap("+proj=omerc " + line + Common(plain));
  const test::Peer uvMap("+proj=omerc " + line + " +no_rot +no_uoff" + Common(plain));
  const std::vector<shr::Vec2d> given =
      test::RandomPoints(kPoints, window.west, window.east, window.south, window.north);
  const std::vector<shr::Vec2d> rotated = rotatedMap.Forward(given), uv = uvMap.Forward(given);
  // x = v cos A + u sin A, y = u cos A - v sin A: seen from (v, u), a turn of axes by A.
  const auto angle = [](double x, double y, double v, double u) {
    return std::atan2(u, v) - std::atan2(y, x);
  };
  const double A =
      angle(rotated[1].x - rotated[0].x, rotated[1].y - rotated[0].y, uv[1].y - uv[0].y, uv[1].x - uv[0].x);
  const double sinA = std::sin(A), cosA = std::cos(A);
  const double uc = uv[0].x - (rotated[0].x * sinA + rotated[0].y * cosA);
  EXPECT_GT(std::fabs(uc), 1e5);
  for (const bool rotate : {true, false}) {
    for (const bool offsetU : {true, false}) {
      p.bRotate = rotate;
      p.bUOffset = offsetU;
      Projector projector{ProjectionDef(p)};
      std::vector<shr::Vec2d> ours = given;
      projector.TransformForward(ours);
      EXPECT_FALSE(projector.CheckUnplottableResult());
      std::vector<shr::Vec2d> theirs = rotate ? rotated : uv;
      for (shr::Vec2d& point : theirs) {
        if (rotate && !offsetU) point = {point.x + uc * sinA, point.y + uc * cosA};
        if (!rotate && offsetU) point.x -= uc;
        point = {point.x + p.xOrg, point.y + p.yOrg};
      }
      std::vector<shr::Vec2d> back = Scaled(theirs, p.Scale);
      projector.TransformInverse(back);
      const double worst = test::LargestDistance(Scaled(ours, 1.0 / p.Scale), theirs);
      const double worstBack = test::LargestArc(back, given);
      EXPECT_LE(worst, kMicron) << "rotate " << rotate << ", offset " << offsetU;
      EXPECT_LE(worstBack, 1e-10) << "rotate " << rotate << ", offset "
                                  << offsetU;  // the iteration stops at 1e-12 rad
    }
  }
}

TEST(ProjectionPeer, HotineByAzimuth) {
  const struct {
    Figure figure;
    double k0, lon1, lat0, alpha;
  } sets[] = {{kAiry, 0.99984, 115.0, 4.0, 53.31582047222222},
              {kWgs, 0.9996, -133.66666666666666, 57.0, -36.86989764583333}};
  for (const auto& set : sets) {
    ProjectionParameters p = On(ProjectionMethodHotine, set.figure);
    p.bUseAlpha = true;
    p.K0 = set.k0;
    p.Lon1 = set.lon1;
    p.Lat0 = set.lat0;
    p.Alpha = set.alpha;
    p.xOrg = 590476.87;
    p.yOrg = -442857.65;
    p.Scale = 2.0;
    CompareHotine(p,
                  Format("+lonc=%.17g +lat_0=%.17g +alpha=%.17g +k_0=%.17g", p.Lon1, p.Lat0, p.Alpha, p.K0),
                  {p.Lon1 - 15, p.Lon1 + 15, p.Lat0 - 20, p.Lat0 + 20});
  }
}

TEST(ProjectionPeer, HotineByTwoPoints) {
  const struct {
    Figure figure;
    double k0, lat0, lon1, lat1, lon2, lat2;
  } sets[] = {{kAiry, 0.9996, 40.0, -122.3, 47.5, -80.2, 25.7},
              {kWgs, 0.9999, -25.0, 20.0, -33.0, 35.0, -12.0}};
  for (const auto& set : sets) {
    ProjectionParameters p = On(ProjectionMethodHotine, set.figure);
    p.K0 = set.k0;
    p.Lat0 = set.lat0;
    p.Lon1 = set.lon1;
    p.Lat1 = set.lat1;
    p.Lon2 = set.lon2;
    p.Lat2 = set.lat2;
    p.xOrg = 4000000.0;
    p.yOrg = 500000.0;
    p.Scale = 0.5;
    const std::string line =
        Format("+lat_0=%.17g +lon_1=%.17g +lat_1=%.17g +lon_2=%.17g +lat_2=%.17g +k_0=%.17g", p.Lat0, p.Lon1,
               p.Lat1, p.Lon2, p.Lat2, p.K0);
    CompareHotine(p, line, {p.Lon1 - 10, p.Lon2 + 10, -55 + p.Lat0 / 2, p.Lat0 / 2 + 40});
  }
}

// PROJ's omerc of a sphere, not rotated: u runs along the central line as x does, v is -y.  Towards the poles
// of the oblique graticule PROJ loses digits in (1 - U); it is asked within two radii (75 degrees) of the
// line.
TEST(ProjectionPeer, ObliqueMercatorOnTheSphere) {
  const struct {
    double lon1, lat1, lon2, lat2, k0;
  } sets[] = {{-60.0, 50.0, -110.0, 30.0, 0.9}, {20.0, -33.0, 80.0, 12.0, 1.1}};
  for (const auto& set : sets) {
    ProjectionParameters p = On(ProjectionMethodObliqueMercator, {6371007.0, 0.0});
    p.Lon1 = set.lon1;
    p.Lat1 = set.lat1;
    p.Lon2 = set.lon2;
    p.Lat2 = set.lat2;
    p.K0 = set.k0;
    p.xOrg = 1e5;
    p.yOrg = -2e5;
    p.Scale = 2.0;
    const double radius = p.K0 * 6371007.0;
    const test::Peer other(Format(
        "+proj=omerc +lat_0=10 +lon_1=%.17g +lat_1=%.17g +lon_2=%.17g +lat_2=%.17g +k_0=%.17g +R=6371007 "
        "+no_rot +no_uoff",
        p.Lon1, p.Lat1, p.Lon2, p.Lat2, p.K0));
    Projector projector{ProjectionDef(p)};
    const std::vector<shr::Vec2d> given = test::RandomPoints(kPoints + 200, -180, 180, -85, 85);
    std::vector<shr::Vec2d> ours = given;
    projector.TransformForward(ours);
    EXPECT_FALSE(projector.CheckUnplottableResult());
    const auto engineLevel = [&](const shr::Vec2d& q) {
      return shr::Vec2d(q.x / p.Scale - p.xOrg, q.y / p.Scale - p.yOrg);
    };
    // One point tells the sense of both axes and the shift of x, which are this library's own; all others
    // must agree.
    const std::vector<shr::Vec2d> theirs = other.Forward(given);
    const shr::Vec2d first = engineLevel(ours[0]);
    const double turn = first.y * theirs[0].y < 0 ? 1.0 : -1.0;
    const double round = 2.0 * 3.141592653589793 * radius;
    const double shift = first.x - turn * theirs[0].x;
    double worst = 0.0;
    size_t compared = 0;
    for (size_t i = 0; i < given.size(); ++i) {
      const shr::Vec2d mine = engineLevel(ours[i]);
      if (std::fabs(mine.y) > 2.0 * radius) continue;
      ++compared;
      worst = std::fmax(worst, std::hypot(std::remainder(mine.x - turn * theirs[i].x - shift, round),
                                          mine.y + turn * theirs[i].y));
    }
    EXPECT_LE(worst, kMicron);
    EXPECT_GE(compared, kPoints);
    projector.TransformInverse(ours);
    EXPECT_LE(test::LargestArc(ours, given), kMicronArc);
  }
}

}  // namespace
}  // namespace orv
