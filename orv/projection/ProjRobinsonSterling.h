// ProjRobinsonSterling.h: Robinson-Sterling, the Robinson projection with Stirling's interpolation.
//
// Source      node values and x = 0.8487 a X L, y = 1.3523 a Y: Snyder and Voxland 1989 [SnyVox89];
//             Stirling's central-difference formula to the second difference: Snyder 1990 [Sny90].
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      none beyond the working block; the coefficients of each 5 degrees are kSterlingPairs.
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
};

namespace ORV_ISA {

inline constexpr double kSterlingX = 0.8487, kSterlingY = 1.3523;
inline constexpr double kSterlingPerRadian = 36.0 / kPi;  // rows in a radian

/// Relative: how far |y| may exceed that of a pole.
inline constexpr double kSterlingRim = 1e-9;

/// Stirling's coefficients of the distance and of the length.
struct SterlingTerms {
  Lanes y0, y1, y2, x0, x1, x2;
};
inline SterlingTerms SterlingRow(Lanes i) {
  const Ints row = RobinsonIndex(i);
  SterlingTerms t;
  GatherPairs(kSterlingPairs.distance[0], row, t.y0, t.y1);
  GatherPairs(kSterlingPairs.length[0], row, t.x0, t.x1);
  GatherPairs(kSterlingPairs.seconds[0], row, t.y2, t.x2);
  return t;
}

inline Point Forward(const RobinsonSterling& c, Point p) {
  const Lanes w = abs(p.y) * kSterlingPerRadian;
  const Lanes i = RobinsonRow(w);
  const Lanes part = w - i;
  const SterlingTerms t = SterlingRow(i);
  const Lanes X = t.x0 + part * (t.x1 + part * t.x2);
  const Lanes Y = t.y0 + part * (t.y1 + part * t.y2);
  return {kSterlingX * c.a * X * (p.x - c.lon0), FlipSign(kSterlingY * c.a * Y, p.y)};
}

inline Point Inverse(const RobinsonSterling& c, Point p) {
  const Lanes Y0 = abs(p.y) * (1.0 / (kSterlingY * c.a));
  const Mask outside = !(Y0 <= 1.0 + kSterlingRim);
  const Lanes Y = Clamp(Except(Y0, outside, 0.0), 1.0);
  const Lanes i = RobinsonRowOf(Y, kSterlingSearch);
  const SterlingTerms t = SterlingRow(i);
  // y2 p^2 + y1 p + (y0 - Y) = 0, the root that is 0 at the node; y1 is positive
  const Lanes k = t.y0 - Y;
  const Lanes part = -2.0 * k / (t.y1 + sqrt(t.y1 * t.y1 - 4.0 * t.y2 * k));
  const Lanes X = t.x0 + part * (t.x1 + part * t.x2);
  const Lanes phi = Clamp((i + part) * (kPi / 36.0), kHalfPi);
  const Lanes lambda = c.lon0 + p.x / (kSterlingX * c.a * X);
  return {lambda, Except(FlipSign(phi, p.y), outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
