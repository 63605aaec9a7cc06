// ProjGnomonic.h: Gnomonic, sphere.
//
// Source      Snyder 1987 [Sny87], section 22, equations (22-3) to (22-5), (22-10), (22-11), (22-16), (20-14)
//             to (20-16).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the centre (Lon0, Lat1), and whether it is taken as a pole: |Lat1| within 0.0001 degrees of 90.
// Marks       forward: cos c <= 0; in the polar form sin phi = 0 too.  Inverse: nothing; x and y beyond 1e70
//             radii count as 1e70.
// Departures  sphere of radius a whatever the flattening.  Deliberate: in the south polar form y has the sign
//             of (22-11) as printed, which mirrors the map from north to south against (22-5): y = -a tan c
//             cos L there, where its limit is a tan c cos L.  The inverse undoes that form as it is.
#pragma once

#include "orv/projection/Azimuthal.h"

namespace orv {

struct Gnomonic {
  double a;                // major radius, metres
  double pole;             // 1 and -1: the north and the south polar form; 0: the oblique one
  AzimuthalCentre centre;  // (Lon0, Lat1), also where the form is polar
};

namespace ORV_ISA {

/// In the polar form a smaller sine of the latitude counts as 0: no cotangent overflows.
inline constexpr double kGnomonicLeastSine = 1e-200;

inline Point GnomonicForwardPolar(const Gnomonic& c, Point p) {
  const SinCos f = sincos(p.y), l = sincos(p.x - c.centre.lon0);
  const FromCentre v = SeenFrom(c.centre, f, l);
  const Mask outside = (v.cosC <= 0.0) | (abs(f.sin) < kGnomonicLeastSine);
  // north: x = a cot phi sin L, y = -a cot phi cos L (22-10);
  // south: x = -a cot phi sin L, y = a cot phi cos L (22-11).  Deliberate: that sign of y.
  const Lanes k = c.a * c.pole * (f.cos / Except(f.sin, outside, 1.0));
  return {Except(k * l.sin, outside, kNaN), -(k * l.cos)};
}

inline Point GnomonicForwardOblique(const Gnomonic& c, Point p) {
  const FromCentre v = SeenFrom(c.centre, p);
  const Mask outside = v.cosC <= 0.0;
  const Lanes k = c.a / Except(v.cosC, outside, 1.0);       // (22-3)
  return {Except(k * v.east, outside, kNaN), k * v.north};  // (22-4), (22-5)
}

inline Point Forward(const Gnomonic& c, Point p) {
  return c.pole != 0.0 ? GnomonicForwardPolar(c, p) : GnomonicForwardOblique(c, p);
}

inline Point Inverse(const Gnomonic& c, Point p) {
  const double inverseRadius = 1.0 / c.a;
  const Lanes x = Clamp(p.x * inverseRadius, kFarthestRadii), y = Clamp(p.y * inverseRadius, kFarthestRadii);
  // tan c = rho (22-16): with cos c as the common factor sin c/rho is 1 and cos c is 1
  if (c.pole == 0.0) return PointAt(c.centre, x, y, 1.0);
  // (20-14) with P = +-90; (20-16).  In the south too: it undoes the sign of y above.
  const Lanes rho = sqrt(x * x + y * y);
  const Lanes lambda = c.centre.lon0 + atan2(x, -y);
  return {Except(lambda, rho <= kAtPole, c.centre.lon0), c.pole * atan2(1.0, rho)};
}

}  // namespace ORV_ISA
}  // namespace orv
