// ProjOrthographic.h: Orthographic, sphere.
//
// Source      Snyder 1987 [Sny87], section 20, equations (20-3) to (20-8), (20-14), (20-15), (20-18),
//             (20-19).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the centre (Lon0, Lat0).
// Marks       forward: cos c < 0, the far hemisphere; a computed cosine, so that of the points of the rim
//             those that round to its far side are marked too.  Inverse: rho > a (1 + 1e-9), inside that the
//             rim.
// Departures  sphere of radius a whatever the flattening.
#pragma once

#include "orv/projection/Azimuthal.h"

namespace orv {

struct Orthographic {
  double a;                // major radius, metres
  AzimuthalCentre centre;  // (Lon0, Lat0)
};

namespace ORV_ISA {

/// Relative: how far rho may exceed the radius of the map.
inline constexpr double kOrthographicRim = 1e-9;

inline Point Forward(const Orthographic& c, Point p) {
  const FromCentre v = SeenFrom(c.centre, p);
  // (20-4); with P = +-90 (20-5) and (20-7), with P = 0 (20-8), all exactly: the terms are 0 or have factor 1
  return {Except(c.a * v.east, v.cosC < 0.0, kNaN), c.a * v.north};
}

inline Point Inverse(const Orthographic& c, Point p) {
  const Lanes x0 = p.x / c.a, y0 = p.y / c.a;
  const Mask far = FartherThan(x0, y0, 2.0);
  const Lanes x = Except(x0, far, 0.0), y = Except(y0, far, 0.0);
  const Lanes rho = sqrt(x * x + y * y);  // (20-18), which is sin c (20-19)
  const Mask outside = far | (rho > 1.0 + kOrthographicRim);
  const Lanes w = (1.0 - rho) * (1.0 + rho);
  const Point q = PointAt(c.centre, x, y, sqrt(Except(w, w < 0.0, 0.0)));
  return {Except(q.x, outside, kNaN), q.y};
}

}  // namespace ORV_ISA
}  // namespace orv
