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
//             arc cosine and cosine of (29-17) to (29-19), which lose half the digits near the Equator and on
//             the rim, where the cubic has a double root, are replaced by forms that do not.  The latitude of
//             the inverse is within 2e-15 rad everywhere.
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

/// cos(2/3 acos s) = top/below for 0 <= s <= 1: 7e-17, absolute, before round-off.  Coefficients:
/// tools/generate/van_der_grinten_root.py.
struct RootQuotient {
  Lanes top, below;
};
inline RootQuotient CosineOfThird(Lanes s) {
  return {Poly(s, 0.5, 1.7934949840148087, 2.3620742429004946, 1.4292198253693615, 0.40170092005741809,
               0.046072493995665112, 0.0014431147262684537),
          Poly(s, 1.0, 2.4322894296503748, 2.1378047941111005, 0.82350734967633643, 0.13335641377044014,
               0.0070069811013275729, 4.0612754437565043e-5)};
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
  // c3 m^3 + c2 m^2 + c1 m + Y^2 = 0 for m = |phi|/pi, the smallest positive root.  With m = |Y|/u, over Y^2:
  // u^3 - k1 u^2 + k2 u + k3 = 0, and u, the largest root, lies between 1 and 2.
  const Lanes k1 = 1.0 + r2;                                       // (29-11): -c1/|Y|
  const Lanes k2 = X2 - 2.0 * Y2 - Y * k1;                         // (29-12): c2
  const Lanes k3 = Y * (2.0 * Y * k1 + 1.0 + 2.0 * Y2 + r2 * r2);  // (29-13): |Y| c3
  // 3 u = k1 + 2 sqrt(q) cos(alpha/3), cos alpha = r/v
  const Lanes q = k1 * k1 - 3.0 * k2;
  const Lanes root = sqrt(q);
  const Lanes v = 2.0 * q * root;
  const Lanes r = k1 * (2.0 * k1 * k1 - 9.0 * k2) - 27.0 * k3;
  // (1 - r2)^2 g = (v^2 - r^2)/27 is the discriminant, in a sum of what is not negative
  const Lanes g = 4.0 * Y * (Square(1.0 - Y * Y2) + X2 * (r2 * (r2 + Y2) + Y2 * Y2)) + X2 * (X2 + 20.0 * Y2);
  const Lanes w0 = 1.0 - r2;
  // s = cos(alpha/2); on the rim it is 0
  const Mask obtuse = r < 0.0;
  const Lanes s = sqrt(Select(obtuse, 27.0 * g * Square(w0), v + r) / (2.0 * v * Select(obtuse, v - r, 1.0)));
  const RootQuotient third = CosineOfThird(s);
  const Lanes uUnder = k1 * third.below + 2.0 * root * third.top;
  // (29-19), with 1 + 2 (X^2 - Y^2) + (X^2 + Y^2)^2 = w^2 + 4 X^2; at X = 0 it gives (29-20)
  const Lanes w = Select(w0 < 0.0, 0.0, w0);
  const Lanes under0 = w + sqrt(w * w + 4.0 * X2);
  const Lanes under = Except(under0, under0 == 0.0, 1.0);
  // one division for phi = pi |Y|/u and lambda
  const Lanes inverse = kPi / (uUnder * under);
  const Lanes phi = Clamp(3.0 * Y * third.below * under * inverse, kHalfPi);
  const Lanes lambda = c.lon0 + 2.0 * X * uUnder * inverse;
  return {lambda, Except(FlipSign(phi, point.y), outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
