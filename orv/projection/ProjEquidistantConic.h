// ProjEquidistantConic.h: Equidistant Conic with two standard parallels, sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 16: sphere (16-1) to (16-6); ellipsoid (16-7) to (16-12); both
//             with (14-1), (14-2), (14-4), (14-9) to (14-11); (3-21), (3-26), (7-19).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      n, a G, rho0, the meridian arc; see the members.
// Marks       forward nothing.  Inverse: a latitude more than 1e-9 rad beyond a pole, inside that clamped.
// Departures  none.  The poles are arcs and keep their longitudes.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/Cone.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/MeridianArc.h"

namespace orv {

struct EquidistantConic {
  bool sphere;      // f is exactly 0
  double lon0;      // Lon0, radians
  double n;         // cone constant (16-4), (16-10); not 0
  double aG;        // a G (16-3), (16-11), metres: the arc from the Equator to the apex
  double rho0;      // distance of the apex from the origin (16-2), (16-9), metres
  MeridianArc arc;  // of a and e2
};

namespace ORV_ISA {

/// Radians: a rectifying latitude beyond this is none, and its sine means little.
inline constexpr double kConicLargestMu = 10.0;

inline Point Forward(const EquidistantConic& c, Point p) {
  const Lanes M = c.sphere ? c.arc.a * p.y : ArcTo(c.arc, p.y, sincos(p.y));  // (3-21)
  return FromPolar(c.aG - M, c.n * (p.x - c.lon0), c.rho0);                   // (16-1), (16-8)
}

inline Point Inverse(const EquidistantConic& c, Point p) {
  const double sign = c.n < 0.0 ? -1.0 : 1.0;
  const Polar at = ToPolar(p, c.rho0, sign);
  const Lanes lambda = c.lon0 + at.theta * (1.0 / c.n);                          // (14-9)
  const Lanes M = c.aG - sign * sqrt(at.rho2);                                   // (16-12)
  const Lanes mu = Clamp(M * (1.0 / c.arc.ac0), kConicLargestMu);                // (7-19); (16-6)
  return {lambda, LatitudeOrNaN(c.sphere ? mu : FootpointLatitude(c.arc, mu))};  // (3-26)
}

}  // namespace ORV_ISA
}  // namespace orv
