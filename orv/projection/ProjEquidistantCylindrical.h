// ProjEquidistantCylindrical.h: Equidistant Cylindrical.
//
// Source      Snyder 1987 [Sny87], section 12, equations (12-1), (12-2), (12-5), (12-6).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      cosLat1, brought to exactly 0 near the poles, where a double's cosine is 6.1e-17.
// Marks       cosLat1 exactly 0: every point in the inverse, none in the forward (x is 0).
// Departures  sphere of radius a whatever the flattening.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {

struct EquidistantCylindrical {
  double a;        // major radius, metres
  double lon0;     // Lon0, radians
  double cosLat1;  // cos Lat1; exactly 0 where |cos Lat1| < 1e-15
};

namespace ORV_ISA {

inline Point Forward(const EquidistantCylindrical& c, Point p) {
  return {c.a * c.cosLat1 * (p.x - c.lon0), c.a * p.y};  // (12-1), (12-2)
}

inline Point Inverse(const EquidistantCylindrical& c, Point p) {
  if (c.cosLat1 == 0.0) return {kNaN, kNaN};
  return {p.x / (c.a * c.cosLat1) + c.lon0, p.y / c.a};  // (12-6), (12-5)
}

}  // namespace ORV_ISA
}  // namespace orv
