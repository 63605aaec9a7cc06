// SmallSteps.h: from a place near a solution to the solution, for the projections whose auxiliary angle has no closed form.
#pragma once

#include "orv/lanes/LaneMath.h"

namespace orv {
namespace ORV_ISA {

/// Radians: how far Turned may turn.
inline constexpr double kLargestTurn = 1.0 / 16;

/// The sine and cosine of an angle that is turned by d, |d| <= kLargestTurn, from those of the angle: at a third of the
/// price of new ones.
inline SinCos Turned(SinCos t, Lanes d) {
  const Lanes z = d * d;
  const Lanes sine = d + d * z * Poly(z, -1.0 / 6, 1.0 / 120, -1.0 / 5040, 1.0 / 362880);
  const Lanes versine = z * Poly(z, 1.0 / 2, -1.0 / 24, 1.0 / 720, -1.0 / 40320);
  return {t.sin + (t.cos * sine - t.sin * versine), t.cos - (t.sin * sine + t.cos * versine)};
}

/// The sine and cosine of x, which was turned by d; t are those before.  Few steps turn by more than kLargestTurn.
inline SinCos SinCosAfter(SinCos t, Lanes x, Lanes d) {
  const SinCos turned = Turned(t, d);
  const Mask far = abs(d) > kLargestTurn;
  if (!Any(far)) return turned;
  const SinCos fresh = sincos(x);
  return {Select(far, fresh.sin, turned.sin), Select(far, fresh.cos, turned.cos)};
}

/// The step from a start that is within 1e-6 of the solution of f(x) = value, relative: Newton's with the term after it,
/// which is Chebyshev's, whose error is of the order of the third power of the start's.
///
/// @param left  value - f(start).
/// @param inverseSlope  1/f'.
/// @param bend  f''/2.
inline Lanes StepToSolution(Lanes left, Lanes inverseSlope, Lanes bend) {
  const Lanes d = left * inverseSlope;
  return d - d * d * (bend * inverseSlope);
}

}  // namespace ORV_ISA
}  // namespace orv
