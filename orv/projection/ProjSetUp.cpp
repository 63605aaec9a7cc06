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

LatitudeSeries MakeLatitudeSeries(double e) {
  const double root = std::sqrt(1.0 - e * e);
  const double n = (1.0 - root) / (1.0 + root);
  const double n2 = n * n, n3 = n2 * n, n4 = n2 * n2, n5 = n3 * n2, n6 = n3 * n3;
  // [Kaw11]: the coefficients of sin 2 k chi
  const double d1 =
      2.0 * n - 2.0 / 3.0 * n2 - 2.0 * n3 + 116.0 / 45.0 * n4 + 26.0 / 45.0 * n5 - 2854.0 / 675.0 * n6;
  const double d2 =
      7.0 / 3.0 * n2 - 8.0 / 5.0 * n3 - 227.0 / 45.0 * n4 + 2704.0 / 315.0 * n5 + 2323.0 / 945.0 * n6;
  const double d3 = 56.0 / 15.0 * n3 - 136.0 / 35.0 * n4 - 1262.0 / 105.0 * n5 + 73814.0 / 2835.0 * n6;
  const double d4 = 4279.0 / 630.0 * n4 - 332.0 / 35.0 * n5 - 399572.0 / 14175.0 * n6;
  const double d5 = 4174.0 / 315.0 * n5 - 144838.0 / 6237.0 * n6;
  const double d6 = 601676.0 / 22275.0 * n6;
  // sin 2 k chi = sin 2 chi U_k-1(cos 2 chi): Chebyshev polynomials of the second kind, by powers of the cosine
  return {{d1 - d3 + d5, 2.0 * d2 - 4.0 * d4 + 6.0 * d6, 4.0 * d3 - 12.0 * d5, 8.0 * d4 - 32.0 * d6,
           16.0 * d5, 32.0 * d6}};
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
