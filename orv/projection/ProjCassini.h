// ProjCassini.h: Cassini (Cassini-Soldner), sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 13: sphere (8-5), (13-1) to (13-6); ellipsoid (13-7) to (13-13),
//             with (3-21) and (3-26).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      e2, e'2, the meridian arc and M0; see the members.
// Marks       forward nothing.  Inverse, sphere: |x| > a (pi/2) (1 + 1e-9), inside that clamped; |y| beyond
//             1e15 radii.  Inverse, ellipsoid: a latitude more than 1e-9 rad beyond a pole; |x| beyond 1e20
//             radii.
// Departures  none.  lambda - Lon0 is not wrapped.  At phi = +-pi/2 the series are not evaluated: x = 0,
//             y = M - M0; in the inverse a footpoint at or beyond a pole is the pole, at longitude Lon0.
#pragma once

#include "orv/lanes/Ellipsoid.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/MeridianArc.h"

namespace orv {

struct Cassini {
  bool sphere;      // f is exactly 0
  double a;         // major radius, metres
  double lon0;      // Lon0, radians
  double lat0;      // Lat0, radians; read by the sphere only
  double e2;        // 2 f - f^2
  double ep2;       // e2 / (1 - e2)
  MeridianArc arc;  // of a and e2; not read on the sphere
  double m0;        // a (c0 Lat0 - c2 sin 2 Lat0 + c4 sin 4 Lat0 - c6 sin 6 Lat0); not read on the sphere
};

namespace ORV_ISA {

/// Relative: how far |x| may exceed a quarter of the sphere's circumference.
inline constexpr double kCassiniRim = 1e-9;

/// Relative to the radius of curvature, and radians: as in the Transverse Mercator.
inline constexpr double kCassiniLargestD = 1e20, kCassiniLargestMu = 1e5;

// ---- sphere ----------------------------------------------------------------------------------------------

inline Point CassiniForwardSphere(const Cassini& c, Point p) {
  const SinCos f = sincos(p.y), l = sincos(p.x - c.lon0);
  const Lanes b = f.cos * l.sin;  // (8-5)
  const Lanes n = f.sin, m = f.cos * l.cos;
  // (13-1): a asin B, as an angle with its cosine
  const Lanes x = c.a * atan2(b, sqrt(n * n + m * m));
  // (13-2): atan2(tan phi, cos L), both times cos phi, which is positive
  const Lanes y = c.a * (atan2(n, m) - c.lat0);
  return {x, y};
}

inline Point CassiniInverseSphere(const Cassini& c, Point p) {
  const Lanes d0 = p.y * (1.0 / c.a) + c.lat0;  // (13-6)
  const Lanes x0 = p.x * (1.0 / c.a);
  const Mask far = abs(d0) > kLargestAngle, beyondRim = abs(x0) > kHalfPi * (1.0 + kCassiniRim);
  const Mask outside = far | beyondRim;
  const SinCos d = sincos(Except(d0, outside, 0.0));
  const SinCos x = sincos(Except(Clamp(x0, kHalfPi), outside, 0.0));
  const Lanes m = x.cos * d.cos;
  const Lanes root = sqrt(x.sin * x.sin + m * m);
  const Lanes phi = atan2(d.sin * x.cos, root);   // (13-4): asin(sin D cos(x/a)), as an angle with its cosine
  const Lanes lambda = c.lon0 + atan2(x.sin, m);  // (13-5): atan2(tan(x/a), cos D), both times cos(x/a) > 0
  const Mask pole = root <= kAtPole;
  return {Except(Except(lambda, pole, c.lon0), outside, kNaN), Except(phi, pole, WithSign(kHalfPi, d.sin))};
}

// ---- ellipsoid -------------------------------------------------------------------------------------------

inline Point CassiniForwardEllipsoid(const Cassini& c, Point p) {
  const SinCos f = sincos(p.y);
  const Lanes N = c.a * InverseRoot(c.e2, Square(f.sin));  // (4-20)
  const Lanes tanPhi = f.sin / f.cos;
  const Lanes T = tanPhi * tanPhi;         // (8-13)
  const Lanes C = c.ep2 * Square(f.cos);   // (8-14)
  const Lanes A = (p.x - c.lon0) * f.cos;  // (8-15)
  const Lanes A2 = A * A;
  const Lanes M = ArcTo(c.arc, p.y, f);                                                         // (3-21)
  const Lanes x = N * A * (1.0 - T * A2 * (1.0 / 6 + (8.0 - T + 8.0 * C) * A2 * (1.0 / 120)));  // (13-7)
  const Lanes s = N * tanPhi * A2 * (0.5 + (5.0 - T + 6.0 * C) * A2 * (1.0 / 24));              // (13-8)
  const Mask pole = abs(p.y) == kHalfPi;
  return {Except(x, pole, 0.0), M - c.m0 + Except(s, pole, 0.0)};
}

inline Point CassiniInverseEllipsoid(const Cassini& c, Point p) {
  const Lanes mu0 = (c.m0 + p.y) * (1.0 / c.arc.ac0);  // (13-12), (7-19)
  const Mask beyond = abs(mu0) > kCassiniLargestMu;
  const Lanes phi1 = FootpointLatitude(c.arc, Except(mu0, beyond, 0.0));  // (3-26)
  const Mask pole = beyond | (abs(phi1) >= kHalfPi);
  const SinCos f = sincos(phi1);
  const Lanes w = 1.0 - c.e2 * Square(f.sin);
  const Lanes D0 = p.x * (w * InverseRoot(c.e2, Square(f.sin))) * (1.0 / c.a);  // (13-13): x / N1
  const Mask wild = abs(D0) > kCassiniLargestD;
  const Lanes D = Except(D0, wild, 0.0), D2 = D * D;
  const Lanes secant = 1.0 / f.cos;
  const Lanes tanPhi = f.sin * secant;
  const Lanes T = tanPhi * tanPhi;               // (8-22)
  const Lanes ratio = w * (1.0 / (1.0 - c.e2));  // N1 / R1, of (8-23), (8-24)
  const Lanes phi = phi1 - ratio * tanPhi * D2 * (0.5 - (1.0 + 3.0 * T) * D2 * (1.0 / 24));  // (13-10)
  const Lanes lambda =
      c.lon0 + D * (1.0 - T * D2 * (1.0 / 3 - (1.0 + 3.0 * T) * D2 * (1.0 / 15))) * secant;  // (13-11)
  if (!Any(pole | wild)) return {lambda, LatitudeOrNaN(phi)};
  return {Select(pole, c.lon0, Select(wild, kNaN, lambda)),
          Select(pole, WithSign(kHalfPi, mu0), LatitudeOrNaN(phi))};
}

// ---- both ------------------------------------------------------------------------------------------------

inline Point Forward(const Cassini& c, Point p) {
  return c.sphere ? CassiniForwardSphere(c, p) : CassiniForwardEllipsoid(c, p);
}

inline Point Inverse(const Cassini& c, Point p) {
  return c.sphere ? CassiniInverseSphere(c, p) : CassiniInverseEllipsoid(c, p);
}

}  // namespace ORV_ISA
}  // namespace orv
