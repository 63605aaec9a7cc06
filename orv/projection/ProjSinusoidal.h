// ProjSinusoidal.h: Sinusoidal, sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 30: sphere (30-1), (30-2), (30-6), (30-7); ellipsoid (30-8) to
//             (30-11), with (3-21), (7-19) and (3-26).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      e2 and the meridian arc; see the members.
// Marks       forward nothing.  Inverse: a latitude more than 1e-9 rad beyond a pole.
// Departures  none.  lambda - Lon0 is not wrapped.  A pole comes back at longitude Lon0, whatever x.
#pragma once

#include "orv/lanes/Ellipsoid.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/MeridianArc.h"

namespace orv {

struct Sinusoidal {
  bool sphere;      // f is exactly 0
  double a;         // major radius, metres
  double lon0;      // Lon0, radians
  double e2;        // 2 f - f^2, below 1
  MeridianArc arc;  // of a and e2; not read on the sphere
};

namespace ORV_ISA {

/// Radians: a larger rectifying latitude is not put into the series; it is beyond the pole anyway.
inline constexpr double kSinusoidalLargestMu = 1e5;

inline Point Forward(const Sinusoidal& c, Point p) {
  const SinCos f = sincos(p.y);
  const Lanes L = p.x - c.lon0;
  if (c.sphere) return {c.a * L * f.cos, c.a * p.y};                   // (30-1), (30-2)
  const Lanes x = c.a * L * f.cos * InverseRoot(c.e2, Square(f.sin));  // (30-8)
  return {x, ArcTo(c.arc, p.y, f)};                                    // (30-9), (3-21)
}

inline Point Inverse(const Sinusoidal& c, Point p) {
  Lanes phi0 = p.y * (1.0 / c.a);  // (30-6)
  if (!c.sphere) {
    const Lanes mu = p.y * (1.0 / c.arc.ac0);                          // (30-10), (7-19)
    phi0 = FootpointLatitude(c.arc, Clamp(mu, kSinusoidalLargestMu));  // (3-26)
  }
  const SinCos f = sincos(Clamp(phi0, kHalfPi));
  const Lanes w = c.sphere ? 1.0 : (1.0 - c.e2 * Square(f.sin)) * InverseRoot(c.e2, Square(f.sin));
  const Mask pole = abs(f.cos) <= kAtPole;
  const Lanes lambda = c.lon0 + p.x * w / (c.a * Except(f.cos, pole, 1.0));  // (30-7), (30-11)
  return {Except(lambda, pole, c.lon0), LatitudeOrNaN(phi0)};
}

}  // namespace ORV_ISA
}  // namespace orv
