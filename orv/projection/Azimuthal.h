// Azimuthal.h: directions and distances seen from a centre, for the azimuthal projections of the sphere.
//
// Source      Snyder 1987 [Sny87], sections 20 to 25, equations (5-3), (20-14), (20-15), (22-4), (22-5).
// Input       lambda, phi in radians; in the inverse x and y in radii.
// Set-up      the centre; see the members.
// Departures  none; the printed arc sines as angles with their cosines, which keeps the digits that arc sine
//             and arc cosine lose near the centre, its antipode and the poles.  The polar equations (x and y
//             from phi and L alone) need no branch: with a cosine of exactly 0 the oblique ones are the same.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct AzimuthalCentre {
  double lon0;  // longitude of the centre, radians
  double lat0;  // latitude of the centre, radians: P
  double sin;   // sin P
  double cos;   // cos P; exactly 0 where P is 1.5707963267948966 or its negative
};

namespace ORV_ISA {

/// Radians (60 nm on the Earth): a point that close to the antipode of the centre is the antipode.
/// Longitudes of a turn or two are not exact to more.
inline constexpr double kAtAntipode = 1e-14;

/// Radii: what lies farther out, where infinity is the antipode or the rim, is taken as far as that in each
/// coordinate, so that no square overflows.
inline constexpr double kFarthestRadii = 1e70;

/// The unit vector to a point, seen from the centre; c is the arc between the two.
struct FromCentre {
  Lanes east;   // cos phi sin L = sin c sin Az
  Lanes north;  // cos P sin phi - sin P cos phi cos L = sin c cos Az
  Lanes cosC;   // sin P sin phi + cos P cos phi cos L (5-3)
};

inline FromCentre SeenFrom(const AzimuthalCentre& c, SinCos phi, SinCos L) {
  const Lanes m = phi.cos * L.cos;
  return {phi.cos * L.sin, c.cos * phi.sin - c.sin * m, c.sin * phi.sin + c.cos * m};
}

inline FromCentre SeenFrom(const AzimuthalCentre& c, Point p) {
  return SeenFrom(c, sincos(p.y), sincos(p.x - c.lon0));
}

/// sin^2 c, without the cancellation of 1 - cos^2 c.
inline Lanes SquaredSine(const FromCentre& v) { return v.east * v.east + v.north * v.north; }

inline Mask AtAntipode(const FromCentre& v, Lanes squaredSine) {
  return (squaredSine <= kAtAntipode * kAtAntipode) & (v.cosC < 0.0);
}

/// 1 + cos c, without cancellation near the antipode; 1 at the antipode itself, where the caller marks.
inline Lanes OnePlusCosine(const FromCentre& v, Lanes squaredSine, Mask antipode) {
  const Mask beyond = v.cosC < 0.0;
  if (!Any(beyond)) return 1.0 + v.cosC;
  const Lanes sum = Select(beyond, squaredSine / (1.0 + abs(v.cosC)), 1.0 + v.cosC);
  return Except(sum, antipode, 1.0);
}

/// Sine and cosine of a latitude times a common positive factor, and the longitude.
struct Direction {
  Lanes s, root;
  Lanes lambda;
  Mask centre, pole;
};

/// The direction with these parts, which may have a common positive factor: cos c, and x sin c/rho and
/// y sin c/rho. Common inverse, (20-14) and (20-15): a point at a pole gets the longitude Lon0.
inline Direction DirectionOf(const AzimuthalCentre& c, Lanes east, Lanes north, Lanes cosC) {
  const Lanes m = c.cos * cosC - c.sin * north;
  const Lanes s = c.sin * cosC + c.cos * north;
  const Lanes root = sqrt(east * east + m * m);
  const Mask pole = root <= kAtPole * abs(s);
  const Mask centre = (east == 0.0) & (north == 0.0) & (cosC > 0.0);
  return {s, root, Except(c.lon0 + atan2(east, m), pole | centre, c.lon0), centre, pole};
}

/// The latitude: the centre's own at the centre, a right angle at a pole.
inline Lanes LatitudeAt(const AzimuthalCentre& c, const Direction& d) {
  const Lanes phi = Except(atan2(d.s, d.root), d.pole, WithSign(kHalfPi, d.s));
  return Except(phi, d.centre, c.lat0);
}

inline Point PointAt(const AzimuthalCentre& c, Lanes east, Lanes north, Lanes cosC) {
  const Direction d = DirectionOf(c, east, north, cosC);
  return {d.lambda, LatitudeAt(c, d)};
}

}  // namespace ORV_ISA
}  // namespace orv
