// Every conic method beside PROJ: 1000 points and two parameter sets each, one on either side of the Equator,
// with every parameter away from its default; on the ellipsoid and on the sphere.
//
// Deliberate differences, with their sizes:
//   Polyconic, Bonne    the meridian arc is a series: within 3 mm on the ellipsoid
//   Equidistant Conic   the same within 3 mm between the Equator and the pole of the cone; on the other side
//                       up to 4.9 mm, since the truncated arc between the parallels enters n and G, and the
//                       error grows with the distance from the apex (the same figures at 40 digits in
//                       tests/projection/series_truncation.py)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orv/core/internal/Text.h"
#include "orv/projection/Projector.h"
#include "tests/peer/Peer.h"

namespace orv {
namespace {

using internal::Format;

constexpr size_t kPoints = 1000;

struct Set {
  double a, f, lon0, lat0, lat1, lat2, xOrg, yOrg, scale;
};
// Airy 1830 in the north, WGS 84 in the south.
constexpr Set kSets[] = {{6377563.396, 1.0 / 299.3249646, -96.0, 23.0, 29.5, 45.5, 12000.0, -34000.0, 2.0},
                         {6378137.0, 1.0 / 298.257223563, 134.0, -31.5, -18.0, -36.0, -5e5, 1e6, 0.001}};

ProjectionParameters Parameters(ProjectionMethod method, const Set& set, bool sphere) {
  ProjectionParameters p;
  p.method = method;
  p.ellipsoid.SetMajorRadius(set.a);
  p.ellipsoid.SetFlattening(sphere ? 0.0 : set.f);
  p.Lon0 = set.lon0;
  p.Lat0 = set.lat0;
  p.Lat1 = set.lat1;
  p.Lat2 = set.lat2;
  p.xOrg = set.xOrg;
  p.yOrg = set.yOrg;
  p.Scale = set.scale;
  return p;
}

// The peer's line of the parameters; `names` tells which ones the method takes.
std::string PeerLine(const char* method, const ProjectionParameters& p, bool hasLat0, bool hasLat1,
                     bool hasLat2) {
  std::string line = Format("+proj=%s +lon_0=%.17g", method, p.Lon0);
  if (hasLat0) line += Format(" +lat_0=%.17g", p.Lat0);
  if (hasLat1) line += Format(" +lat_1=%.17g", p.Lat1);
  if (hasLat2) line += Format(" +lat_2=%.17g", p.Lat2);
  const double f = p.ellipsoid.GetFlattening(), a = p.ellipsoid.GetMajorRadius();
  line += f == 0.0 ? Format(" +R=%.17g", a) : Format(" +a=%.17g +f=%.17g", a, f);
  return line + Format(" +x_0=%.17g +y_0=%.17g +units=m +no_defs", p.xOrg, p.yOrg);
}

std::vector<shr::Vec2d> Scaled(std::vector<shr::Vec2d> points, double scale) {
  for (shr::Vec2d& point : points) point = {point.x * scale, point.y * scale};
  return points;
}

// Expects ours and theirs within `metres` forward (before Scale), and our inverse of their points within
// `degrees` of arc.
void Compare(const ProjectionParameters& p, const std::string& line, double halfWidth, double south,
             double north, double metres, double degrees) {
  SCOPED_TRACE(line);
  Projector projector{ProjectionDef(p)};
  const test::Peer other(line);
  const std::vector<shr::Vec2d> given =
      test::RandomPoints(kPoints, p.Lon0 - halfWidth, p.Lon0 + halfWidth, south, north);
  const std::vector<shr::Vec2d> theirs = other.Forward(given);
  std::vector<shr::Vec2d> ours = given, back = Scaled(theirs, p.Scale);
  projector.TransformForward(ours);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  projector.TransformInverse(back);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  EXPECT_LE(test::LargestDistance(Scaled(ours, 1.0 / p.Scale), theirs), metres);
  EXPECT_LE(test::LargestArc(back, given), degrees);
}

constexpr double kMicron = 1e-6;      // metres
constexpr double kMicronArc = 1e-10;  // degrees
constexpr double kSeries = 0.003, kSeriesArc = 0.003 / 1e5;

TEST(ConicPeer, LambertConformalConic) {
  for (const Set& set : kSets) {
    for (const bool sphere : {false, true}) {
      const ProjectionParameters p = Parameters(ProjectionMethodLambert, set, sphere);
      // not where the cone opens to infinity
      const double south = set.lat1 > 0 ? -70 : -89, north = set.lat1 > 0 ? 89 : 70;
      Compare(p, PeerLine("lcc", p, true, true, true), 179, south, north, kMicron, kMicronArc);
    }
  }
}

TEST(ConicPeer, Albers) {
  for (const Set& set : kSets) {
    for (const bool sphere : {false, true}) {
      const ProjectionParameters p = Parameters(ProjectionMethodAlbers, set, sphere);
      Compare(p, PeerLine("aea", p, true, true, true), 179, -89, 89, kMicron, kMicronArc);
    }
  }
}

TEST(ConicPeer, EquidistantConic) {
  for (const Set& set : kSets) {
    for (const bool sphere : {false, true}) {
      const ProjectionParameters p = Parameters(ProjectionMethodEquidistantConic, set, sphere);
      const std::string line = PeerLine("eqdc", p, true, true, true);
      const bool isNorth = set.lat1 > 0;
      Compare(p, line, 179, isNorth ? 0 : -89.9, isNorth ? 89.9 : 0, sphere ? kMicron : kSeries,
              sphere ? kMicronArc : kSeriesArc);
      Compare(p, line, 179, -89.9, 89.9, sphere ? kMicron : 0.005, sphere ? kMicronArc : 0.005 / 1e5);
    }
  }
}

TEST(ConicPeer, Polyconic) {
  for (const Set& set : kSets) {
    for (const bool sphere : {false, true}) {
      const ProjectionParameters p = Parameters(ProjectionMethodPolyconic, set, sphere);
      Compare(p, PeerLine("poly", p, true, false, false), 179, -89.9, 89.9, sphere ? kMicron : kSeries,
              sphere ? kMicronArc : kSeriesArc);
    }
  }
}

TEST(ConicPeer, Bonne) {
  for (const Set& set : kSets) {
    for (const bool sphere : {false, true}) {
      const ProjectionParameters p = Parameters(ProjectionMethodBonne, set, sphere);
      Compare(p, PeerLine("bonne", p, false, true, false), 179, -89, 89, sphere ? kMicron : kSeries,
              sphere ? kMicronArc : kSeriesArc);
    }
  }
}

}  // namespace
}  // namespace orv
