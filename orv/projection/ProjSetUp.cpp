#include "orv/projection/internal/ProjSetUp.h"

#include <cmath>

namespace orv::internal {

double EccentricitySquared(const ProjectionParameters& p) {
  const double f = p.ellipsoid.GetFlattening();
  return 2.0 * f - f * f;
}

double RadiusOfParallel(double e2, double phi) {
  const double s = std::sin(phi);
  return std::cos(phi) / std::sqrt(1.0 - e2 * s * s);
}

MeridianArc MakeMeridianArc(double a, double e2) {
  const double e4 = e2 * e2, e6 = e4 * e2;
  const double root = std::sqrt(1.0 - e2);
  const double e1 = (1.0 - root) / (1.0 + root);  // (3-24)
  const double e1p2 = e1 * e1, e1p3 = e1p2 * e1, e1p4 = e1p3 * e1;

  MeridianArc m{};
  m.a = a;
  // (3-21)
  m.c0 = 1.0 - e2 / 4.0 - 3.0 * e4 / 64.0 - 5.0 * e6 / 256.0;
  m.c2 = 3.0 * e2 / 8.0 + 3.0 * e4 / 32.0 + 45.0 * e6 / 1024.0;
  m.c4 = 15.0 * e4 / 256.0 + 45.0 * e6 / 1024.0;
  m.c6 = 35.0 * e6 / 3072.0;
  m.ac0 = a * m.c0;  // (7-19)
  // (3-26)
  m.f2 = 3.0 * e1 / 2.0 - 27.0 * e1p3 / 32.0;
  m.f4 = 21.0 * e1p2 / 16.0 - 55.0 * e1p4 / 32.0;
  m.f6 = 151.0 * e1p3 / 96.0;
  m.f8 = 1097.0 * e1p4 / 512.0;
  return m;
}

double ArcLength(const MeridianArc& m, double phi) {
  return m.a *
         (m.c0 * phi - m.c2 * std::sin(2.0 * phi) + m.c4 * std::sin(4.0 * phi) - m.c6 * std::sin(6.0 * phi));
}

bool SetUpTransverseMercator(ProjectionParameters& radians, TransverseMercator& c) {
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.a = radians.ellipsoid.GetMajorRadius();
  c.k0 = radians.K0;
  c.lon0 = radians.Lon0;
  c.lat0 = radians.Lat0;
  c.e2 = EccentricitySquared(radians);
  c.ep2 = c.e2 / (1.0 - c.e2);  // (8-12)
  c.arc = MakeMeridianArc(c.a, c.e2);
  c.m0 = ArcLength(c.arc, c.lat0);
  return true;
}

AzimuthalCentre MakeAzimuthalCentre(double lon0, double lat0) {
  constexpr double kRightAngle = 1.5707963267948966;
  return {lon0, lat0, std::sin(lat0), std::fabs(lat0) == kRightAngle ? 0.0 : std::cos(lat0)};
}

}  // namespace orv::internal
