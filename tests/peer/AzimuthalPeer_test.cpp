// Every azimuthal method beside PROJ: five aspects, two parameter sets, 1000 points each, every parameter
// away from its default.
//
// Deliberate difference: the south polar Gnomonic has the sign of its y turned.
//
// The points lie in a ring about the centre: PROJ takes the arc c from an arc cosine, which has no digits at
// the centre, and in Azimuthal Equidistant loses 1e-16/sin^2 c of x and y, which is 1.4e-6 m at 179 degrees;
// and towards the edge of each map a rounded x or y is worth more and more of the ground.
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
constexpr double kPi = 3.141592653589793;

// Airy 1830 and WGS 84.
struct ParameterSet {
  double a, f, k0, lon0, lat, xOrg, yOrg, scale;  // lat: of the oblique aspects
};
constexpr ParameterSet kSets[] = {
    {6377563.396, 1.0 / 299.3249646, 0.9999079, 5.38763888889, 52.15616055556, 155000.0, -463000.0, 2.0},
    {6378137.0, 1.0 / 298.257223563, 1.05, -133.25, -37.5, -5e5, 1e6, 0.001},
};

double ArcBetweenFar(double lon1, double lat1, const shr::Vec2d& at) {
  const double r = kPi / 180.0, phi1 = lat1 * r, phi = at.y * r, L = (at.x - lon1) * r;
  const double east = std::cos(phi) * std::sin(L);
  const double north = std::cos(phi1) * std::sin(phi) - std::sin(phi1) * std::cos(phi) * std::cos(L);
  const double up = std::sin(phi1) * std::sin(phi) + std::cos(phi1) * std::cos(phi) * std::cos(L);
  return std::atan2(std::hypot(east, north), up) / r;
}

std::vector<shr::Vec2d> Ring(double lon0, double lat, double least, double most) {
  std::vector<shr::Vec2d> points;
  for (const shr::Vec2d& at : test::RandomPoints(50 * kPoints, -180, 180, -90, 90)) {
    const double arc = ArcBetweenFar(lon0, lat, at);
    if (least <= arc && arc <= most && points.size() < kPoints) points.push_back(at);
  }
  EXPECT_EQ(points.size(), kPoints);
  return points;
}

std::vector<shr::Vec2d> Scaled(std::vector<shr::Vec2d> points, double scale) {
  for (shr::Vec2d& point : points) point = {point.x * scale, point.y * scale};
  return points;
}

struct Method {
  ProjectionMethod method;
  const char* name;    // PROJ's
  bool byLat0;         // else by Lat1
  bool ellipsoid;      // has a form of the ellipsoid; the others are spheres here whatever the flattening
  double least, most;  // the ring, degrees
};

void Compare(const Method& m, const ParameterSet& set, double lat, bool sphere) {
  SCOPED_TRACE(Format("%s at %g, %g%s", m.name, set.lon0, lat, sphere ? ", sphere" : ""));
  ProjectionParameters p;
  p.method = m.method;
  p.ellipsoid.SetMajorRadius(set.a);
  p.ellipsoid.SetFlattening(sphere ? 0.0 : set.f);
  p.Lon0 = set.lon0;
  (m.byLat0 ? p.Lat0 : p.Lat1) = lat;
  p.xOrg = set.xOrg;
  p.yOrg = set.yOrg;
  p.Scale = set.scale;
  const bool mirrored = m.method == ProjectionMethodGnomonic && lat == -90.0;
  std::string peer = Format("+proj=%s +lon_0=%.17g +lat_0=%.17g", m.name, set.lon0, lat);
  if (m.method == ProjectionMethodStereographic) {
    p.K0 = set.k0;
    peer += Format(" +k_0=%.17g", p.K0);
  }
  peer += m.ellipsoid && !sphere ? Format(" +a=%.17g +f=%.17g", set.a, set.f) : Format(" +R=%.17g", set.a);
  peer += " +units=m +no_defs";
  const test::Peer other(peer);
  const std::vector<shr::Vec2d> given = Ring(set.lon0, lat, m.least, m.most);
  std::vector<shr::Vec2d> theirs = other.Forward(given);
  for (shr::Vec2d& point : theirs) {
    point = {point.x + set.xOrg, (mirrored ? -point.y : point.y) + set.yOrg};
  }
  Projector projector{ProjectionDef(p)};
  std::vector<shr::Vec2d> ours = given, back = Scaled(theirs, set.scale);
  projector.TransformForward(ours);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  projector.TransformInverse(back);
  EXPECT_FALSE(projector.CheckUnplottableResult());
  EXPECT_LE(test::LargestDistance(Scaled(ours, 1.0 / set.scale), theirs), 1e-6);  // metres
  EXPECT_LE(test::LargestArc(back, given), 1e-10);                                // degrees
}

void CompareAllAspects(const Method& m) {
  for (const ParameterSet& set : kSets) {
    for (const double lat : {set.lat, -set.lat, 0.0, 90.0, -90.0}) {
      Compare(m, set, lat, false);
      if (m.ellipsoid) Compare(m, set, lat, true);
    }
  }
}

TEST(AzimuthalPeer, Stereographic) {
  CompareAllAspects({ProjectionMethodStereographic, "stere", true, true, 0, 130});
}
TEST(AzimuthalPeer, Orthographic) {
  CompareAllAspects({ProjectionMethodOrthographic, "ortho", true, false, 0, 88});
}
TEST(AzimuthalPeer, Gnomonic) { CompareAllAspects({ProjectionMethodGnomonic, "gnom", false, false, 0, 75}); }
TEST(AzimuthalPeer, AzimuthalEquidistant) {
  CompareAllAspects({ProjectionMethodAzimuthalEquidistant, "aeqd", false, false, 1, 175});
}
TEST(AzimuthalPeer, LambertAzimuthal) {
  CompareAllAspects({ProjectionMethodLambertAzimuthal, "laea", false, false, 0, 170});
}

}  // namespace
}  // namespace orv
