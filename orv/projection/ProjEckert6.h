// ProjEckert6.h: Eckert VI.
//
// Source      Snyder 1987 [Sny87], section 32, equations (32-5) to (32-8), (32-12) to (32-14).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      none beyond the working block.
// Marks       forward nothing.  Inverse: a sine of the latitude that exceeds 1 by more than 1e-9; inside that
//             clamped.
// Departures  sphere of radius a whatever the flattening.  lambda - Lon0 is not wrapped.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/NewtonSteps.h"

namespace orv {

struct Eckert6 {
  double a;     // major radius, metres
  double lon0;  // Lon0, radians
};

namespace ORV_ISA {

inline constexpr double kEckert6X = 0.4410127717245515;  // 1/sqrt(2 + pi); y has twice that
inline constexpr double kEckert6C = 1.0 + kHalfPi;

/// Relative: how far the sine of a latitude may exceed 1.
inline constexpr double kEckert6Rim = 1e-9;

inline Point Forward(const Eckert6& c, Point p) {
  const Lanes right = kEckert6C * sin(p.y);
  // Within 2e-5: a polynomial fitted to the solution (tools/generate/newton_starts.py).
  const Lanes start = p.y * Poly(p.y * p.y, 1.285398109930846, -0.037212160074808758, -0.019730349080106606,
                                 -0.0037543514198051412, -0.002388117741216549, 0.00078186997231653207);
  const Lanes theta = Newton(start, kNewtonRelative, [&](Lanes t) {  // (32-7), (32-8)
    const SinCos s = sincos(t);
    const Lanes slope = 1.0 + s.cos;
    return (right - (t + s.sin)) / Except(slope, slope == 0.0, 1.0);
  });
  const Lanes x = c.a * kEckert6X * (p.x - c.lon0) * (1.0 + cos(theta));  // (32-5)
  const Lanes y = c.a * (2.0 * kEckert6X) * theta;                        // (32-6)
  return {x, y};
}

inline Point Inverse(const Eckert6& c, Point p) {
  const Lanes theta0 = p.y * (1.0 / (c.a * (2.0 * kEckert6X)));  // (32-12)
  const Lanes theta = Clamp(theta0, kPi);
  const SinCos t = sincos(theta);
  const Lanes sinPhi = (theta + t.sin) * (1.0 / kEckert6C);
  const Mask outside = abs(sinPhi) > 1.0 + kEckert6Rim;
  const Lanes phi = asin(Clamp(sinPhi, 1.0));                                                   // (32-13)
  const Lanes lambda = c.lon0 + p.x / (c.a * kEckert6X * (1.0 + Except(t.cos, outside, 1.0)));  // (32-14)
  return {lambda, Except(phi, outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
