// Ellipsoid.h: what the formulas of the ellipsoid share.
//
// Source      Snyder 1987 [Sny87], (4-20), (4-21), by the binomial series.
// Input       e^2 = 2 f - f^2, squares of sines of latitudes.
// Departures  none; a series in the place of a root and a division, equal to them to 1e-17.
#pragma once

#include "orv/lanes/LaneMath.h"

namespace orv {
namespace ORV_ISA {

/// Up to this eccentricity, which every ellipsoid of the Earth is below, short series replace roots, artanh and exp.
inline constexpr double kLargestSmallEccentricity = 0.087;

/// Whether e^2 is that of so small an eccentricity.
inline bool IsSmall(double e2) { return e2 <= kLargestSmallEccentricity * kLargestSmallEccentricity; }

/// 1/sqrt(1 - z) of a z that IsSmall.
inline Lanes InverseRootOfSmall(Lanes z) {
  return Poly(z, 1.0, 1.0 / 2, 3.0 / 8, 5.0 / 16, 35.0 / 128, 63.0 / 256, 231.0 / 1024, 429.0 / 2048);
}

/// 1/sqrt(1 - e^2 sin^2 phi): the radius of curvature in the prime vertical, in radii (4-20).
inline Lanes InverseRoot(double e2, Lanes squaredSine) {
  const Lanes z = e2 * squaredSine;
  return IsSmall(e2) ? InverseRootOfSmall(z) : 1.0 / sqrt(1.0 - z);
}

/// 1/sqrt(x) of a positive x that is hardly ever far from 1.
inline Lanes InverseRootNearOne(Lanes x) {
  const Lanes z = 1.0 - x;
  const Mask far = abs(z) > kLargestSmallEccentricity * kLargestSmallEccentricity;
  const Lanes near = InverseRootOfSmall(Except(z, far, 0.0));
  if (!Any(far)) return near;
  return Select(far, 1.0 / sqrt(x), near);
}

}  // namespace ORV_ISA
}  // namespace orv
