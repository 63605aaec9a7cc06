// ProjMiller.h: Miller Cylindrical.
//
// Source      Snyder 1987 [Sny87], section 11, equations (11-1), (11-2), (11-5), (11-6a).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      none beyond the working block.
// Marks       only |phi| >= 1.96 rad, which no latitude reaches.  The inverse marks nothing.
// Departures  sphere of radius a whatever the flattening.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct Miller {
  double a;     // major radius, metres
  double lon0;  // Lon0, radians
};

namespace ORV_ISA {

inline Point Forward(const Miller& c, Point p) {
  const Lanes x = c.a * (p.x - c.lon0);  // (11-1)
  // (11-2): a ln(tan(pi/4 + 0.4 phi)) / 0.8
  const SinCos t = sincos(0.8 * p.y);
  const Mask fit = t.cos > 0.0;
  const Lanes y = c.a * 1.25 * LogTan({t.sin, Except(t.cos, !fit, 1.0)});
  return {x, Except(y, !fit, kNaN)};
}

inline Point Inverse(const Miller& c, Point p) {
  const Lanes lambda = p.x * (1.0 / c.a) + c.lon0;  // (11-6a)
  const Lanes phi =
      atan(sinh(Clamp(p.y * (0.8 / c.a), kLargestHyperbolic))) * (1.0 / 0.8);  // (11-5), in sinh form
  return {lambda, phi};
}

}  // namespace ORV_ISA
}  // namespace orv
