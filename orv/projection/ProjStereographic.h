// ProjStereographic.h: Stereographic, sphere and ellipsoid, oblique, equatorial and polar.
//
// Source      Snyder 1987 [Sny87], section 21: sphere (21-2) to (21-10), (21-15), (20-14), (20-15); ellipsoid
//             (3-1), (14-15), (15-9), (21-24), (21-25), (21-27), (21-30), (21-31), (21-33), (21-36) to
//             (21-39), (7-9).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the centre and the radius of the sphere that carries the conformal latitudes; see the members.
// Marks       forward: the antipode of the centre.  Inverse: everything when K0 = 0, and a latitude that
//             takes more than 100 steps; x and y beyond 1e70 radii count as 1e70.
// Departures  none.  All four forms are one: the ellipsoid is mapped to the sphere by its conformal latitude
//             chi (3-1), given by t = tan(pi/4 - chi/2) (15-9), and there (21-24), (21-25), (21-27) are the
//             spherical equations with the radius a K0 m1/cos chi1, and (21-33) with the radius below.
#pragma once

#include "orv/projection/Azimuthal.h"
#include "orv/projection/ConformalLatitude.h"

namespace orv {

struct Stereographic {
  bool sphere;  // f is exactly 0
  double e;     // sqrt(2 f - f^2); 0 on the sphere
  // Radius, metres; 0 when K0 is.  Sphere: a K0.  Ellipsoid: a K0 m1/cos chi1, m1 (14-15); when the centre is
  // a pole a K0/sqrt((1 + e)^(1 + e) (1 - e)^(1 - e)), of (21-33).
  double radius;
  AzimuthalCentre centre;   // (Lon0, Lat0), but sine and cosine on the ellipsoid are those of chi1
  LatitudeSeries latitude;  // of e; not read on the sphere
};

namespace ORV_ISA {

/// Sine and cosine of the conformal latitude (3-1), by t of the absolute latitude, which is at most 1 (15-9).
inline SinCos ConformalSinCos(double e, SinCos phi) {
  const Lanes s = abs(phi.sin);
  const Lanes t = phi.cos / (1.0 + s) * ConformalFactor(e, -s);
  const Lanes t2 = t * t, inverse = 1.0 / (1.0 + t2);
  return {FlipSign((1.0 - t2) * inverse, phi.sin), 2.0 * t * inverse};
}

inline Point Forward(const Stereographic& c, Point p) {
  const SinCos phi = sincos(p.y);
  const FromCentre v =
      SeenFrom(c.centre, c.sphere ? phi : ConformalSinCos(c.e, phi), sincos(p.x - c.centre.lon0));
  const Lanes squaredSine = SquaredSine(v);
  const Mask antipode = AtAntipode(v, squaredSine);
  const Lanes k = 2.0 * c.radius / OnePlusCosine(v, squaredSine, antipode);  // (21-4), (21-27)
  return {Except(k * v.east, antipode, kNaN), k * v.north};  // (21-2), (21-3); (21-24), (21-25)
}

inline Point Inverse(const Stereographic& c, Point p) {
  const double half = 0.5 / Divisor(c.radius);
  const Lanes x = Clamp(p.x * half, kFarthestRadii), y = Clamp(p.y * half, kFarthestRadii);
  // q = tan(c/2) (21-15), (21-38): sin c = 2 q/(1 + q^2), cos c = (1 - q^2)/(1 + q^2)
  const Direction d = DirectionOf(c.centre, 2.0 * x, 2.0 * y, 1.0 - (x * x + y * y));
  const Lanes lambda = c.radius == 0.0 ? kNaN : d.lambda;
  if (c.sphere) return {lambda, LatitudeAt(c.centre, d)};
  const Lanes s = abs(d.s);
  const Lanes t = d.root / (sqrt(d.s * d.s + d.root * d.root) + s);  // tan(pi/4 - |chi|/2)
  const Lanes phi = FlipSign(LatitudeOf(t, c.e, c.latitude), d.s);
  const Lanes phiOrPole = Except(phi, d.pole, WithSign(kHalfPi, d.s));
  return {lambda, Except(phiOrPole, d.centre, c.centre.lat0)};
}

}  // namespace ORV_ISA
}  // namespace orv
