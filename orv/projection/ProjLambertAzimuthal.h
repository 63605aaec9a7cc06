// ProjLambertAzimuthal.h: Lambert Azimuthal Equal Area, sphere.
//
// Source      Snyder 1987 [Sny87], section 24, equations (22-4), (24-2) to (24-4), (24-8), (24-9), (24-14),
//             (24-16), (20-14), (20-15).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the centre (Lon0, Lat1).
// Marks       forward: the antipode of the centre.  Inverse: rho > 2 a (1 + 1e-9), inside that the antipode.
// Departures  sphere of radius a whatever the flattening.
#pragma once

#include "orv/projection/Azimuthal.h"

namespace orv {

struct LambertAzimuthal {
  double a;                // major radius, metres
  AzimuthalCentre centre;  // (Lon0, Lat1)
};

namespace ORV_ISA {

/// Relative: how far rho may exceed the radius of the map.
inline constexpr double kLambertAzimuthalRim = 1e-9;

inline Point Forward(const LambertAzimuthal& c, Point p) {
  const FromCentre v = SeenFrom(c.centre, p);
  const Lanes squaredSine = SquaredSine(v);
  const Mask antipode = AtAntipode(v, squaredSine);
  const Lanes k = c.a * sqrt(2.0 / OnePlusCosine(v, squaredSine, antipode));  // (24-2)
  return {Except(k * v.east, antipode, kNaN), k * v.north};                   // (22-4), (24-14)
}

inline Point Inverse(const LambertAzimuthal& c, Point p) {
  const Lanes x0 = p.x / c.a, y0 = p.y / c.a;
  const Mask far = FartherThan(x0, y0, 4.0);
  const Lanes x = Except(x0, far, 0.0), y = Except(y0, far, 0.0);
  const Lanes q = 0.5 * sqrt(x * x + y * y);  // sin(c/2) (24-16)
  const Mask outside = far | (q > 1.0 + kLambertAzimuthalRim);
  const Lanes w = (1.0 - q) * (1.0 + q);          // cos^2(c/2)
  const Lanes k = sqrt(Except(w, w < 0.0, 0.0));  // sin c / (rho/a)
  const Point r = PointAt(c.centre, k * x, k * y, 1.0 - 2.0 * q * q);
  return {Except(r.x, outside, kNaN), r.y};
}

}  // namespace ORV_ISA
}  // namespace orv
