// ProjEckert4.h: Eckert IV.
//
// Source      Snyder 1987 [Sny87], section 32, equations (32-1) to (32-4), (32-9) to (32-11).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      none beyond the working block.
// Marks       forward nothing.  Inverse: |y| beyond that of a pole, 1.3265 a, by more than 1e-9 of it; inside
//             that clamped.
// Departures  sphere of radius a whatever the flattening.  lambda - Lon0 is not wrapped.  The constants are
//             the closed ones, not their seven printed digits (0.2 m in y).  Polewards of 1 rad (32-3) is
//             solved for u = pi/2 - theta, so that it does not cancel: as printed Newton's iteration has a
//             double root at the pole.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/SmallSteps.h"

namespace orv {

struct Eckert4 {
  double a;     // major radius, metres
  double lon0;  // Lon0, radians
};

namespace ORV_ISA {

inline constexpr double kEckert4X = 0.4222382003157712;  // 2/sqrt(pi (4 + pi))
inline constexpr double kEckert4Y = 1.3265004281770023;  // 2 sqrt(pi/(4 + pi))
inline constexpr double kEckert4C = 2.0 + kHalfPi;

/// Radians: from here on polewards the equation is solved for the complement.
inline constexpr double kEckert4NearPole = 1.0;

/// Relative: how far |y| may exceed that of a pole.
inline constexpr double kEckert4Rim = 1e-9;

/// Sine and cosine of theta of a latitude from 0 to pi/2.
///
/// theta + sin theta cos theta + 2 sin theta = (2 + pi/2) sin phi (32-3), or, with u = pi/2 - theta,
/// u - sin u cos u + 4 sin^2(u/2) = (2 + pi/2) (1 - sin phi) = (4 + pi) sin^2((pi/2 - phi)/2).
inline SinCos Eckert4Theta(Lanes phi) {
  const Mask near = phi > kEckert4NearPole;
  const Lanes sine = sin(Select(near, 0.5 * (kHalfPi - phi), phi));
  const Lanes right = Select(near, (2.0 * kEckert4C) * sine * sine, kEckert4C * sine);
  // Within 7e-7: polynomials fitted to the solution (tools/generate/newton_starts.py).
  const Lanes r = sqrt(Select(near, right, 0.0)), z = phi * phi;
  const Lanes start =
      Select(near,
             r * Poly(r, 0.99999816563962007, -0.33319169227605909, 0.31666824371059211, -0.28985054565689672,
                      0.24996126289862465, -0.14855217482028536, 0.042249156242786633),
             phi * Poly(z, 0.89269910774699027, 0.029065272529773161, 0.0035709123578597511,
                        0.00047852938307824749, 0.00014249931018612887));
  // One step of (32-4), with its second derivative, and without an angle after it.
  const SinCos h = sincos(0.5 * start);
  const Lanes s = 2.0 * h.sin * h.cos, versine = 2.0 * Square(h.sin), k = 1.0 - versine;
  const Lanes a = Select(near, s, k),
              b = Select(near, k, -s);  // the slope is 2 a (1 + a), half its own slope b (2 a + 1)
  const Lanes left = Select(near, (start - s * k) + 2.0 * versine, start + s * k + 2.0 * s);
  const Lanes slope = 2.0 * a * (1.0 + a);
  const Lanes inverseSlope = 1.0 / Except(slope, slope == 0.0, 1.0);
  const Lanes d = StepToSolution(right - left, inverseSlope, b * (2.0 * a + 1.0));
  const SinCos t = Turned({s, k}, d);
  return {Select(near, t.cos, t.sin), Select(near, t.sin, t.cos)};
}

inline Point Forward(const Eckert4& c, Point p) {
  const SinCos theta = Eckert4Theta(abs(p.y));
  const Lanes x = c.a * kEckert4X * (p.x - c.lon0) * (1.0 + theta.cos);  // (32-1)
  const Lanes y = c.a * kEckert4Y * FlipSign(theta.sin, p.y);            // (32-2)
  return {x, y};
}

inline Point Inverse(const Eckert4& c, Point p) {
  const Lanes s0 = p.y * (1.0 / (c.a * kEckert4Y));
  const Mask outside = abs(s0) > 1.0 + kEckert4Rim;
  const Lanes s = Clamp(s0, 1.0);
  const Lanes theta = asin(s);  // (32-9)
  const Lanes cosTheta = sqrt((1.0 - abs(s)) * (1.0 + abs(s)));
  const Lanes sinPhi = (theta + s * cosTheta + 2.0 * s) * (1.0 / kEckert4C);
  const Lanes phi = asin(Clamp(sinPhi, 1.0));                                // (32-10)
  const Lanes lambda = c.lon0 + p.x / (c.a * kEckert4X * (1.0 + cosTheta));  // (32-11)
  return {lambda, Except(phi, outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
