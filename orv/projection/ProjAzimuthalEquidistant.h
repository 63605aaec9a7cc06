// ProjAzimuthalEquidistant.h: Azimuthal Equidistant, sphere.
//
// Source      Snyder 1987 [Sny87], section 25, equations (22-4), (22-5), (25-2) to (25-4), (25-7), (25-8),
//             (25-15), (20-14), (20-15).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the centre (Lon0, Lat1).
// Marks       forward: the antipode of the centre, which is a circle.  Inverse: rho > pi a (1 + 1e-9), inside
//             that the antipode.
// Departures  sphere of radius a whatever the flattening.  c is an angle with its sine, not an arc cosine.
#pragma once

#include "orv/projection/Azimuthal.h"

namespace orv {

struct AzimuthalEquidistant {
  double a;                // major radius, metres
  AzimuthalCentre centre;  // (Lon0, Lat1)
};

namespace ORV_ISA {

/// Relative: how far rho may exceed the radius of the map.
inline constexpr double kAzimuthalEquidistantRim = 1e-9;

inline Point Forward(const AzimuthalEquidistant& c, Point p) {
  const FromCentre v = SeenFrom(c.centre, p);
  const Lanes squaredSine = SquaredSine(v);
  const Lanes sinC = sqrt(squaredSine);
  const Mask still = sinC == 0.0;
  // (25-2), c / sin c; 1 at the centre
  const Lanes k = c.a * Except(atan2(sinC, v.cosC) / Except(sinC, still, 1.0), still, 1.0);
  return {Except(k * v.east, AtAntipode(v, squaredSine), kNaN), k * v.north};  // (22-4), (22-5)
}

inline Point Inverse(const AzimuthalEquidistant& c, Point p) {
  const Lanes x0 = p.x / c.a, y0 = p.y / c.a;
  const Mask far = FartherThan(x0, y0, 4.0);
  const Lanes x = Except(x0, far, 0.0), y = Except(y0, far, 0.0);
  const Lanes rho = sqrt(x * x + y * y);  // c (25-15)
  const Mask outside = far | (rho > kPi * (1.0 + kAzimuthalEquidistantRim));
  const SinCos t = sincos(Clamp(rho, kPi));
  const Mask still = rho == 0.0;
  const Lanes k = Except(t.sin / Except(rho, still, 1.0), still, 1.0);
  const Point q = PointAt(c.centre, k * x, k * y, t.cos);
  return {Except(q.x, outside, kNaN), q.y};
}

}  // namespace ORV_ISA
}  // namespace orv
