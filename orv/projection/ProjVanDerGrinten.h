// ProjVanDerGrinten.h: Van der Grinten.
//
// Source      Snyder 1987 [Sny87], section 29, equations (29-1) to (29-8), (29-11) to (29-13), (29-19),
//             (29-20).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      none beyond the working block.
// Marks       forward nothing.  Inverse: x^2 + y^2 > (pi a)^2 (1 + 1e-9): the world is a disc.
// Departures  sphere of radius a whatever the flattening.  lambda - Lon0 is not wrapped: beyond 180 degrees
//             the map folds back, but for the Equator, which runs on.  All quotients are extended to forms
//             that neither cancel nor overflow near the central meridian, the Equator and the poles; the
//             cubic of the inverse is solved by iteration, since the arc cosine of (29-17) loses half its
//             digits near the Equator.  On the rim itself, where the cubic has a double root, that costs 1e-8
//             rad of latitude in either form.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct VanDerGrinten {
  double a;     // major radius, metres
  double lon0;  // Lon0, radians
};

namespace ORV_ISA {

/// Relative to the square of the disc's radius: how far a point may lie outside.
inline constexpr double kVanDerGrintenRim = 1e-9;

/// Absolute, in t = |phi|/(pi |Y|), which is about 1; and the most steps, which only the rim needs (its
/// double root halves the distance).
inline constexpr double kVanDerGrintenTolerance = 1e-16;
inline constexpr int kVanDerGrintenSteps = 60;

/// With s = sin theta = 2 |phi|/pi (29-6), k = cos theta, l = |L| and
///   B = l A = |pi^2 - l^2|/(2 pi)                              (29-3)
///   g = s G = (1 + k)(1 + s)/(1 + s + k)                       (29-4)
///   p = s^2 P = g (2 - s)                                      (29-5)
/// the quotients (29-1) and (29-2), freed of their roots' cancellation and extended by powers of s and l, are
///   x = pi a l H/(sqrt(B^2 U^2 + (p^2 l^2 + B^2 s^4) H) + B U)
///   y = pi a s (B^2 s (2g - s) + g^2 l^2)/(p (B^2 s + g l^2) + B s sqrt(B^2 V + H l^2))
///   H = s^4 (P^2 - G^2) = 4 g^2 (1 - s)
///   U = s^4 (P^2 - G) = p^2 - g s^3
///   V = s^4 (P^2 + 1 - 2G) = (p - s^2)^2 + 4 g s^2 (1 - s).
/// On the central meridian and at the poles they give (29-8).
inline Point Forward(const VanDerGrinten& c, Point point) {
  const Lanes L = point.x - c.lon0;
  const Lanes l2 = L * L;
  const Lanes s = Clamp(abs(point.y) * (2.0 / kPi), 1.0), s2 = s * s;
  const Lanes rest =
      Except(kHalfPi - abs(point.y), s == 1.0, 0.0) * (2.0 / kPi);  // 1 - s, with all its digits
  const Lanes k = sqrt(rest * (1.0 + s));
  const Lanes B = abs(kPi * kPi - l2) * (0.5 / kPi), B2 = B * B;
  const Lanes g = (1.0 + k) * (1.0 + s) / (1.0 + s + k);
  const Lanes p = g * (2.0 - s);
  const Lanes H = 4.0 * g * g * rest;
  const Lanes U = p * p - g * s * s2;
  const Lanes V = Square(p - s2) + 4.0 * g * s2 * rest;
  const Lanes xUnder = sqrt(B2 * U * U + (p * p * l2 + B2 * s2 * s2) * H) + B * U;
  const Lanes x = kPi * c.a * L * H / Except(xUnder, xUnder == 0.0, 1.0);
  const Lanes yUnder = p * (B2 * s + g * l2) + B * s * sqrt(B2 * V + H * l2);
  const Lanes y =
      kPi * c.a * s * ((B2 * s * (2.0 * g - s) + g * g * l2) / Except(yUnder, yUnder == 0.0, 1.0));
  const Mask equator = s == 0.0;
  return {Except(x, equator, c.a * L), FlipSign(y, point.y)};  // (29-7)
}

inline Point Inverse(const VanDerGrinten& c, Point point) {
  const Lanes X0 = point.x * (1.0 / (kPi * c.a)), Y0 = point.y * (1.0 / (kPi * c.a));
  const Mask outside = X0 * X0 + Y0 * Y0 > 1.0 + kVanDerGrintenRim;
  // what round-off has put outside is on the rim
  const Lanes square = Except(X0 * X0 + Y0 * Y0, outside, 0.0);
  // 1/sqrt(square) to the last bit, since square is at most 1 + 1e-9
  const Lanes shrink = 1.0 - 0.5 * Except(square - 1.0, square < 1.0, 0.0);
  const Lanes X = Except(X0, outside, 0.0) * shrink, Y = Except(abs(Y0), outside, 0.0) * shrink;
  const Lanes X2 = X * X, Y2 = Y * Y, r2 = X2 + Y2;
  // c3 m^3 + c2 m^2 + c1 m + Y^2 = 0 for m = |phi|/pi, the smallest positive root.  With m = |Y| t, over Y^2:
  // k3 t^3 + k2 t^2 - k1 t + 1 = 0, and t lies between 1/2 and 1.
  const Lanes k1 = 1.0 + r2;                                       // (29-11): -c1/|Y|
  const Lanes k2 = X2 - 2.0 * Y2 - Y * k1;                         // (29-12): c2
  const Lanes k3 = Y * (2.0 * Y * k1 + 1.0 + 2.0 * Y2 + r2 * r2);  // (29-13): |Y| c3
  // From 1/2 Newton's steps go up to the root, each less than half the last one, until round-off breaks that:
  // a lane stops there, or where it no longer moves.
  Lanes t = 0.5, last = 1.0;
  Mask active = t == t;
  for (int i = 0; i < kVanDerGrintenSteps && Any(active); ++i) {
    const Lanes value = ((k3 * t + k2) * t - k1) * t + 1.0;
    const Lanes fall = k1 - (3.0 * k3 * t + 2.0 * k2) * t;
    active = active & (value > 0.0) & (fall > 0.0);
    const Lanes step = value / Opaque(Except(fall, !active, 1.0));
    active = active & (step > kVanDerGrintenTolerance) & (step < last);
    last = step;
    t = Select(active, t + step, t);
  }
  const Lanes phi = Clamp(kPi * Y * t, kHalfPi);
  // (29-19), with 1 + 2 (X^2 - Y^2) + (X^2 + Y^2)^2 = w^2 + 4 X^2; at X = 0 it gives (29-20)
  const Lanes w0 = 1.0 - r2;
  const Lanes w = Select(w0 < 0.0, 0.0, w0);
  const Lanes under = w + sqrt(w * w + 4.0 * X2);
  const Lanes lambda = c.lon0 + 2.0 * kPi * X / Opaque(Except(under, under == 0.0, 1.0));
  return {lambda, Except(FlipSign(phi, point.y), outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
