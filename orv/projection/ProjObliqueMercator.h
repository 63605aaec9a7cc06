// ProjObliqueMercator.h: Oblique Mercator of the sphere, central line through two points.
//
// Source      Snyder 1987 [Sny87], section 9, equations (9-3), (9-4), (9-6), (9-9), (9-10).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the pole of the oblique graticule, whichever of the two comes out.
// Marks       forward: |A| >= 1, the two poles of the oblique graticule.  Inverse: only |x| beyond 1e15
//             radii, and K0 = 0.
// Departures  Deliberate: the source takes the northern pole; here a southern pole gives the map turned by
//             180 degrees.  A pole of the sphere comes back at longitude lambda_p + pi/2.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct ObliqueMercator {
  double rk;       // K0 a, metres
  double sinPhiP;  // sin phi_p, latitude of the oblique graticule's pole, whichever pole the set-up gives
  double cosPhiP;  // cos phi_p
  double lon0;     // lambda_p + 1.5707963267948966, radians
};

namespace ORV_ISA {

inline Point Forward(const ObliqueMercator& c, Point p) {
  const SinCos f = sincos(p.y), d = sincos(p.x - c.lon0);
  const Lanes A = c.sinPhiP * f.sin - c.cosPhiP * f.cos * d.sin;  // (9-6)
  const Mask inside = abs(A) < 1.0;
  // (9-3): atan2(tan phi cos phi_p + sin phi_p sin d, cos d), both times cos phi, which is positive
  const Lanes n = f.sin * c.cosPhiP + c.sinPhiP * f.cos * d.sin;
  const Lanes m = f.cos * d.cos;
  const Lanes x = c.rk * atan2(n, m);
  const Lanes root = sqrt(n * n + m * m);  // sqrt(1 - A^2), without its cancellation
  const Mask fit = inside & (root > 0.0);
  const Lanes y = c.rk * LogTan(Except(A, !fit, 0.0), Except(root, !fit, 1.0),
                                1.0);  // (9-4): (Rk/2) ln((1+A)/(1-A))
  return {x, Except(y, !fit, kNaN)};
}

inline Point Inverse(const ObliqueMercator& c, Point p) {
  const Lanes x0 = p.x * (1.0 / Divisor(c.rk));
  const Mask far = abs(x0) > kLargestAngle;
  const SinCos x = sincos(Except(x0, far, 0.0));
  const SinhCosh y = sinhcosh(Clamp(p.y * (1.0 / Divisor(c.rk)), kLargestHyperbolic));
  const Lanes n = c.sinPhiP * x.sin - c.cosPhiP * y.sinh;
  const Lanes root = sqrt(n * n + x.cos * x.cos);
  // (9-9): asin(sin phi_p tanh y' + cos phi_p sin x'/cosh y'), as an angle with its cosine, both times
  // cosh y'
  const Lanes s = c.sinPhiP * y.sinh + c.cosPhiP * x.sin;
  const Lanes phi = atan2(s, root);
  const Lanes lambda = c.lon0 + atan2(n, x.cos);  // (9-10)
  const Mask pole = root <= kAtPole * y.cosh;
  const Lanes lambdaOrPole = Except(lambda, pole, c.lon0);
  return {c.rk == 0.0 ? kNaN : Except(lambdaOrPole, far, kNaN), Except(phi, pole, WithSign(kHalfPi, s))};
}

}  // namespace ORV_ISA
}  // namespace orv
