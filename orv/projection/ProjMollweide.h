// ProjMollweide.h: Mollweide.
//
// Source      Snyder 1987 [Sny87], section 31, equations (31-1) to (31-8).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      none beyond the working block.
// Marks       forward nothing.  Inverse: |y| > sqrt(2) a (1 + 1e-9), inside that clamped.
// Departures  sphere of radius a whatever the flattening.  lambda - Lon0 is not wrapped.  Polewards of 1 rad
//             (31-3) is solved for u = pi - theta', so that neither the equation nor its derivative cancels:
//             as printed Newton's iteration has a triple root at the pole.  A pole comes back at Lon0.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/SmallSteps.h"

namespace orv {

struct Mollweide {
  double a;     // major radius, metres
  double lon0;  // Lon0, radians
};

namespace ORV_ISA {

inline constexpr double kMollweideX = 0.9003163161571061;  // sqrt(8)/pi
inline constexpr double kMollweideY = 1.4142135623730951;  // sqrt(2)

/// Radians: from here on polewards the equation is solved for the complement.
inline constexpr double kMollweideNearPole = 1.0;

/// Relative: how far |y| may exceed that of a pole.
inline constexpr double kMollweideRim = 1e-9;

/// Sine and cosine of theta of a latitude from 0 to pi/2.
///
/// theta' + sin theta' = pi sin phi (31-3), or, with u = pi - theta',
/// u - sin u = pi (1 - sin phi) = 2 pi sin^2((pi/2 - phi)/2).
inline SinCos MollweideTheta(Lanes phi) {
  const Mask near = phi > kMollweideNearPole;
  const Lanes sine = sin(Select(near, 0.5 * (kHalfPi - phi), phi));
  const Lanes right = Select(near, (2.0 * kPi) * sine * sine, kPi * sine);
  // Within 1e-6: polynomials fitted to the solution (tools/generate/newton_starts.py); u^3/6 is the first term
  // of u - sin u.
  const Lanes w = Select(near, pow(6.0 * right, 1.0 / 3), phi), w2 = w * w;
  const Lanes start = Select(
      near,
      w * Poly(w2, 0.99999974940745906, 0.016673033613370089, 0.0006978372494706289, 5.2115242292891259e-5),
      w * Poly(w2, 1.5707967941452206, 0.061144150029127544, 0.011310042033730653, 0.0016364180975713659,
               0.0015282719818796587));
  // One step of (31-4), with its second derivative, and without an angle after it.
  const SinCos h = sincos(0.5 * start);
  const Lanes z = start * start;
  // u - sin u by its series, which is exact to 1e-18 up to u = 1.6
  const Lanes series = z * start *
                       Poly(z, 1.0 / 6, -0.008333333333333333, 0.0001984126984126984, -2.7557319223985893e-06,
                            2.505210838544172e-08, -1.6059043836821613e-10, 7.647163731819816e-13,
                            -2.8114572543455206e-15, 8.22063524662433e-18, -1.9572941063391263e-20);
  const Lanes left = Select(near, series, start + 2.0 * h.sin * h.cos);
  const Lanes a = Select(near, h.sin, h.cos), b = Select(near, h.cos, -h.sin);
  const Lanes slope = 2.0 * a * a;  // 1 - cos u, or 1 + cos theta'; half its own slope is a b
  const Lanes inverseSlope = 1.0 / Except(slope, slope == 0.0, 1.0);
  const SinCos t =
      Turned(h, 0.5 * StepToSolution(right - left, inverseSlope, a * b));  // (31-5): theta = theta'/2
  return {Select(near, t.cos, t.sin), Select(near, t.sin, t.cos)};
}

inline Point Forward(const Mollweide& c, Point p) {
  const SinCos theta = MollweideTheta(abs(p.y));
  const Lanes x = c.a * kMollweideX * (p.x - c.lon0) * theta.cos;  // (31-1)
  const Lanes y = c.a * kMollweideY * FlipSign(theta.sin, p.y);    // (31-2)
  return {x, y};
}

inline Point Inverse(const Mollweide& c, Point p) {
  const Lanes s0 = p.y * (1.0 / (c.a * kMollweideY));
  const Mask outside = abs(s0) > 1.0 + kMollweideRim;
  const Lanes s = Clamp(s0, 1.0);
  const Lanes theta = asin(s);  // (31-6)
  const Lanes cosTheta = sqrt((1.0 - abs(s)) * (1.0 + abs(s)));
  const Lanes sinPhi = (2.0 * theta + 2.0 * s * cosTheta) * (1.0 / kPi);
  const Lanes phi = asin(Clamp(sinPhi, 1.0));  // (31-7)
  const Mask pole = cosTheta <= kAtPole;
  const Lanes lambda = c.lon0 + p.x / (c.a * kMollweideX * Except(cosTheta, pole, 1.0));  // (31-8)
  return {Except(lambda, pole, c.lon0), Except(phi, outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
