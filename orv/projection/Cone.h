// Cone.h: between the polar coordinates of a conic projection and the plane.
//
// Source      Snyder 1987 [Sny87], equations (14-1), (14-2), (14-4), (14-10), (14-11); those of sections 15,
//             16 and 19 are the same.
// Input       rho, the distance from the apex, in the unit of a, with the sign of the cone constant; theta,
//             the angle at the apex, radians; or x, y.
// Departures  none.
#pragma once

#include "orv/lanes/LaneMath.h"

namespace orv {
namespace ORV_ISA {

/// Metres: what lies farther from the axes is taken to lie there, so that its square does not overflow.
inline constexpr double kConeFarthest = 1e150;

/// x = rho sin theta (14-1), y = rho0 - rho cos theta (14-2).
inline Point FromPolar(Lanes rho, Lanes theta, double rho0) {
  const SinCos t = sincos(theta);
  return {rho * t.sin, rho0 - rho * t.cos};
}

struct Polar {
  Lanes rho2;   // rho^2
  Lanes theta;  // radians, in [-pi, pi]; 0 at the apex
};

/// rho^2 = x^2 + (rho0 - y)^2 (14-10), theta = atan2(x, rho0 - y) (14-11).
///
/// @param sign  -1 turns the signs of both arguments of the arc tangent, for a cone open to the north.
inline Polar ToPolar(Point p, double rho0, double sign) {
  const Lanes x = Clamp(p.x, kConeFarthest), d = Clamp(rho0 - p.y, kConeFarthest);
  return {x * x + d * d, atan2(x * sign, d * sign)};
}

}  // namespace ORV_ISA
}  // namespace orv
