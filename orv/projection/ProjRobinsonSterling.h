// ProjRobinsonSterling.h: Robinson-Sterling, the Robinson projection with Stirling's interpolation.
//
// Source      node values and x = 0.8487 a X L, y = 1.3523 a Y: Snyder and Voxland 1989 [SnyVox89];
//             Stirling's central-difference formula to the second difference: Snyder 1990 [Sny90].
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the coefficients of each 5 degrees; see the members.
// Marks       forward nothing.  Inverse: |y| more than 1e-9 (relative) beyond that of a pole, inside that
//             clamped.
// Departures  sphere of radius a whatever the flattening.  lambda - Lon0 is not wrapped.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/ProjRobinson.h"

namespace orv {

struct RobinsonSterling {
  double a;     // major radius, metres
  double lon0;  // Lon0, radians
  // Of the nodes Z[-1] to Z[18], where X[-1] = X[1] and Y[-1] = -Y[1]:
  // Z(p) = Z[i] + p first + p^2 second, p from 0 to 1 between nodes i and i + 1.
  double x0[kRobinsonIntervals];  // Z[i]
  double x1[kRobinsonIntervals];  // (Z[i+1] - Z[i-1])/2
  double x2[kRobinsonIntervals];  // (Z[i+1] - 2 Z[i] + Z[i-1])/2
  double y0[kRobinsonIntervals], y1[kRobinsonIntervals], y2[kRobinsonIntervals];
};

namespace ORV_ISA {

inline constexpr double kSterlingX = 0.8487, kSterlingY = 1.3523;
inline constexpr double kSterlingPerRadian = 36.0 / kPi;  // rows in a radian

/// Relative: how far |y| may exceed that of a pole.
inline constexpr double kSterlingRim = 1e-9;

inline Lanes SterlingLength(const RobinsonSterling& c, Ints row, Lanes p) {
  return Gather(c.x0, row) + p * (Gather(c.x1, row) + p * Gather(c.x2, row));
}

inline Point Forward(const RobinsonSterling& c, Point p) {
  const Lanes w = abs(p.y) * kSterlingPerRadian;
  const Lanes i = RobinsonRow(w);
  const Lanes part = w - i;
  const Ints row = RobinsonIndex(i);
  const Lanes X = SterlingLength(c, row, part);
  const Lanes Y = Gather(c.y0, row) + part * (Gather(c.y1, row) + part * Gather(c.y2, row));
  return {kSterlingX * c.a * X * (p.x - c.lon0), FlipSign(kSterlingY * c.a * Y, p.y)};
}

inline Point Inverse(const RobinsonSterling& c, Point p) {
  const Lanes Y0 = abs(p.y) * (1.0 / (kSterlingY * c.a));
  const Mask outside = Y0 > 1.0 + kSterlingRim;
  const Lanes Y = Clamp(Except(Y0, outside, 0.0), 1.0);
  Lanes i = 0.0;
  for (int r = 1; r < kRobinsonIntervals; ++r) i += Select(Y >= c.y0[r], 1.0, 0.0);
  const Ints row = RobinsonIndex(i);
  // y2 p^2 + y1 p + (y0 - Y) = 0, the root that is 0 at the node; y1 is positive
  const Lanes q = Gather(c.y2, row), b = Gather(c.y1, row), k = Gather(c.y0, row) - Y;
  const Lanes part = -2.0 * k / (b + sqrt(b * b - 4.0 * q * k));
  const Lanes phi = Clamp((i + part) * (kPi / 36.0), kHalfPi);
  const Lanes lambda = c.lon0 + p.x / (kSterlingX * c.a * SterlingLength(c, row, part));
  return {lambda, Except(FlipSign(phi, p.y), outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
