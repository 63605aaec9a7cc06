// InverseLimits.h: what an inverse accepts, for the engines whose equations do not say.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {
namespace ORV_ISA {

/// Absolute, radians (6 mm on the Earth): a latitude that exceeds pi/2 by no more is the pole, one that
/// exceeds it by more is no latitude.
inline constexpr double kBeyondPole = 1e-9;

/// Absolute, radians (6 nm on the Earth): a point that close to a pole is the pole, and has the central
/// longitude.
inline constexpr double kAtPole = 1e-15;

/// Radians: sines of larger angles mean nothing, since neighbouring doubles lie about a right angle apart.
inline constexpr double kLargestAngle = 1e15;

/// From this |t| on, artanh(tanh t), sinh t / cosh t and the like are constant to the last bit.
inline constexpr double kLargestHyperbolic = 40.0;

/// A set-up constant that is divided by: 1 in the place of 0.  Where it is 0 the caller marks all results.
///
/// To ask before the division would not do: nothing keeps the compiler from dividing ahead of the question,
/// once for all points.  Nor may it see where the 1 comes from: it would turn 1/(d or 1) into (1/d) or 1.
inline double Divisor(double d) {
  double safe = d == 0.0 ? 1.0 : d;
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
  __asm__("" : "+x"(safe));
#elif defined(__GNUC__) && defined(__aarch64__)
  __asm__("" : "+w"(safe));
#endif
  return safe;
}

/// True where either coordinate, in radii, is farther out than that: no point of the map, and squares might
/// overflow.
inline Mask FartherThan(Lanes x, Lanes y, double farthest) {
  const Mask farX = abs(x) > farthest;
  const Mask farY = abs(y) > farthest;
  return farX | farY;
}

/// phi, clamped to the poles; NaN when more than kBeyondPole outside.
inline Lanes LatitudeOrNaN(Lanes phi) {
  return Except(Clamp(phi, kHalfPi), abs(phi) > kHalfPi + kBeyondPole, kNaN);
}

}  // namespace ORV_ISA
}  // namespace orv
