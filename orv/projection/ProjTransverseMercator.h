// ProjTransverseMercator.h: Transverse Mercator and UTM, sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 8: sphere (8-1), (8-3), (8-5) to (8-8); ellipsoid (8-9), (8-10),
//             (8-12) to (8-25), with (3-21) and (3-26).  The longer UTM inverse takes the next term of (8-17)
//             and of (8-18).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      e2, e'2, the meridian arc and M0; see the members.
// Marks       sphere: |B| = |cos phi sin(lambda - Lon0)| exactly 1.  Inverse: K0 = 0; |x| beyond 1e20 radii
//             (the series would overflow); sphere: |y| beyond 1e15 radii; UTM: a latitude more than 1e-9 rad
//             beyond a pole.
// Departures  none.  lambda - Lon0 is not wrapped.  At phi = +-pi/2 the series are not evaluated: x = 0,
//             y = K0 (M - M0); in the inverse a footpoint at or beyond a pole is the pole, at longitude Lon0.
//             The Transverse Mercator inverse gives what the series gives, also beyond the poles.
#pragma once

#include "orv/lanes/Ellipsoid.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/MeridianArc.h"

namespace orv {

struct TransverseMercator {
  bool sphere;      // f is exactly 0
  double a;         // major radius, metres
  double k0;        // K0
  double lon0;      // Lon0, radians
  double lat0;      // Lat0, radians; read by the sphere only
  double e2;        // 2 f - f^2
  double ep2;       // e2 / (1 - e2)
  MeridianArc arc;  // of a and e2; not read on the sphere
  double m0;        // a (c0 Lat0 - c2 sin 2 Lat0 + c4 sin 4 Lat0 - c6 sin 6 Lat0); not read on the sphere
};

namespace ORV_ISA {

/// Relative to the radius of curvature: x / (N K0) beyond this would overflow in its eighth power.
inline constexpr double kTmLargestD = 1e20;

/// Radians: a rectifying latitude beyond this is past the pole whatever the series adds.
inline constexpr double kTmLargestMu = 1e5;

// ---- sphere ----------------------------------------------------------------------------------------------

inline Point TmForwardSphere(const TransverseMercator& c, Point p) {
  const SinCos f = sincos(p.y), l = sincos(p.x - c.lon0);
  const Lanes b = f.cos * l.sin;  // (8-5)
  const Mask marked = abs(b) == 1.0;
  const Lanes n = f.sin, m = f.cos * l.cos;
  const Lanes root = sqrt(n * n + m * m);  // sqrt(1 - B^2), without its cancellation
  // (8-1): (a K0/2) ln((1 + B)/(1 - B))
  const Lanes x = c.a * c.k0 * LogTan(Except(b, marked, 0.0), Except(root, marked, 1.0), 1.0);
  // (8-3): atan2(tan phi, cos L), both times cos phi, which is positive
  const Lanes y = c.a * c.k0 * (atan2(n, m) - c.lat0);
  return {Except(x, marked, kNaN), y};
}

inline Point TmInverseSphere(const TransverseMercator& c, Point p) {
  const double inverse = 1.0 / (c.a * Divisor(c.k0));
  const Lanes d0 = p.y * inverse + c.lat0;  // (8-8)
  const Mask far = abs(d0) > kLargestAngle;
  const SinCos d = sincos(Except(d0, far, 0.0));
  const Lanes sh = sinh(Clamp(p.x * inverse, kLargestHyperbolic));
  // (8-6): asin(sin D / cosh x'), as an angle with its cosine sqrt(sinh^2 x' + cos^2 D) / cosh x'
  const Lanes root = sqrt(sh * sh + d.cos * d.cos);
  const Lanes phi = atan2(d.sin, root);
  const Lanes lambda = c.lon0 + atan2(sh, d.cos);  // (8-7)
  const Mask pole = root <= kAtPole;
  return {Except(Except(lambda, pole, c.lon0), far, kNaN), Except(phi, pole, WithSign(kHalfPi, d.sin))};
}

// ---- ellipsoid -------------------------------------------------------------------------------------------

inline Point TmForwardEllipsoid(const TransverseMercator& c, Point p) {
  const SinCos f = sincos(p.y);
  const Lanes N = c.a * InverseRoot(c.e2, Square(f.sin));  // (4-20)
  const Lanes tanPhi = f.sin / f.cos;
  const Lanes T = tanPhi * tanPhi;         // (8-13)
  const Lanes C = c.ep2 * Square(f.cos);   // (8-14)
  const Lanes A = (p.x - c.lon0) * f.cos;  // (8-15)
  const Lanes A2 = A * A;
  const Lanes M = ArcTo(c.arc, p.y, f);  // (3-21)
  const Lanes x3 = (1.0 - T + C) * (1.0 / 6);
  const Lanes x5 = (T * (T - 18.0) + 72.0 * C + (5.0 - 58.0 * c.ep2)) * (1.0 / 120);
  const Lanes x = c.k0 * N * A * (1.0 + A2 * (x3 + A2 * x5));  // (8-9)
  const Lanes y4 = (5.0 - T + C * (9.0 + 4.0 * C)) * (1.0 / 24);
  const Lanes y6 = (T * (T - 58.0) + 600.0 * C + (61.0 - 330.0 * c.ep2)) * (1.0 / 720);
  const Lanes s = N * tanPhi * A2 * (0.5 + A2 * (y4 + A2 * y6));  // (8-10)
  const Mask pole = abs(p.y) == kHalfPi;
  return {Except(x, pole, 0.0), c.k0 * (M - c.m0 + Except(s, pole, 0.0))};
}

template <bool kLonger>
inline Point TmInverseEllipsoid(const TransverseMercator& c, Point p) {
  const Lanes mu0 = (c.m0 + p.y * (1.0 / Divisor(c.k0))) * (1.0 / c.arc.ac0);  // (8-20), (7-19)
  const Mask beyond = abs(mu0) > kTmLargestMu;
  const Lanes phi1 = FootpointLatitude(c.arc, Except(mu0, beyond, 0.0));  // (3-26)
  const Mask pole = beyond | (abs(phi1) >= kHalfPi);
  const SinCos f = sincos(phi1);
  const Lanes w = 1.0 - c.e2 * Square(f.sin), root = w * InverseRoot(c.e2, Square(f.sin));
  const Lanes secant = 1.0 / f.cos;
  const Lanes tanPhi = f.sin * secant;
  const Lanes T = tanPhi * tanPhi;                              // (8-22)
  const Lanes C = c.ep2 * Square(f.cos);                        // (8-21)
  const Lanes ratio = w * (1.0 / (1.0 - c.e2));                 // N1 / R1, of (8-23), (8-24)
  const Lanes D0 = p.x * root * (1.0 / (c.a * Divisor(c.k0)));  // (8-25): x / (N1 K0)
  const Mask wild = abs(D0) > kTmLargestD;
  const Lanes D = Except(D0, wild, 0.0), D2 = D * D;
  const Lanes phi4 = (3.0 * T + C * (10.0 - 4.0 * C) + (5.0 - 9.0 * c.ep2)) * (1.0 / 24);
  Lanes phi6 = (T * (90.0 + 45.0 * T) + C * (298.0 - 3.0 * C) + (61.0 - 252.0 * c.ep2)) * (1.0 / 720);
  Lanes lambda5 = (T * (28.0 + 24.0 * T) - C * (2.0 + 3.0 * C) + (5.0 + 8.0 * c.ep2)) * (1.0 / 120);
  if constexpr (kLonger) {  // the next terms, in D^8 and D^7, for a sphere's T
    phi6 = phi6 - D2 * (1385.0 + T * (3633.0 + T * (4095.0 + 1575.0 * T))) * (1.0 / 40320);
    lambda5 = lambda5 - D2 * (61.0 + T * (662.0 + T * (1320.0 + 720.0 * T))) * (1.0 / 5040);
  }
  const Lanes phi = phi1 - ratio * tanPhi * D2 * (0.5 - D2 * (phi4 - D2 * phi6));  // (8-17)
  const Lanes lambda3 = (1.0 + 2.0 * T + C) * (1.0 / 6);
  const Lanes lambda = c.lon0 + D * (1.0 - D2 * (lambda3 - D2 * lambda5)) * secant;  // (8-18)
  if (!Any(pole | wild)) return {lambda, phi};
  return {Select(pole, c.lon0, Select(wild, kNaN, lambda)), Select(pole, WithSign(kHalfPi, mu0), phi)};
}

// ---- both ------------------------------------------------------------------------------------------------

inline Point Forward(const TransverseMercator& c, Point p) {
  return c.sphere ? TmForwardSphere(c, p) : TmForwardEllipsoid(c, p);
}

inline Point Inverse(const TransverseMercator& c, Point p) {
  const Point q = c.sphere ? TmInverseSphere(c, p) : TmInverseEllipsoid<false>(c, p);
  return {c.k0 == 0.0 ? kNaN : q.x, q.y};
}

inline Point InverseUtm(const TransverseMercator& c, Point p) {
  const Point q = c.sphere ? TmInverseSphere(c, p) : TmInverseEllipsoid<true>(c, p);
  return {c.k0 == 0.0 ? kNaN : q.x, c.sphere ? q.y : LatitudeOrNaN(q.y)};
}

}  // namespace ORV_ISA
}  // namespace orv
