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
#include "orv/projection/SmallSteps.h"

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
  // Within 7e-7: a polynomial fitted to the solution (tools/generate/newton_starts.py).
  const Lanes start = p.y * Poly(p.y * p.y, 1.2853984979282222, -0.037281387016328427, -0.018979436877656568,
                                 -0.0062198830023686982, 0.001126768649503507, -0.0016643174567012616,
                                 0.00081834288408083775, -0.00010532718669847829);
  // One step of (32-7), (32-8), with its second derivative, and without an angle after it.
  const SinCos t = sincos(start);
  const Lanes slope = 1.0 + t.cos;
  const Lanes inverseSlope = 1.0 / Except(slope, slope == 0.0, 1.0);
  const Lanes d = StepToSolution(right - (start + t.sin), inverseSlope, -0.5 * t.sin);
  const Lanes theta = start + d;
  const Lanes x = c.a * kEckert6X * (p.x - c.lon0) * (1.0 + Turned(t, d).cos);  // (32-5)
  const Lanes y = c.a * (2.0 * kEckert6X) * theta;                              // (32-6)
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
