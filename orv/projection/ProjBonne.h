// ProjBonne.h: Bonne, sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 19: sphere (19-1) to (19-7); ellipsoid (19-8) to (19-14), with
//             (14-15), (3-21), (3-26), (7-19).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      the apex and the meridian arc; see the members.
// Marks       forward nothing.  Inverse: a latitude more than 1e-9 rad beyond a pole, inside that clamped.
// Departures  none.  A pole comes back at longitude Lon0.
#pragma once

#include "orv/lanes/Ellipsoid.h"
#include "orv/projection/Cone.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/MeridianArc.h"

namespace orv {

struct Bonne {
  bool sphere;      // f is exactly 0
  double a;         // major radius, metres
  double lon0;      // Lon0, radians
  double e2;        // 2 f - f^2
  double apex;      // y of the centre of the parallels, a m1/sin Lat1, metres; has the sign of Lat1
  double apexArc;   // apex + M1, metres: rho of the Equator
  MeridianArc arc;  // of a and e2
};

namespace ORV_ISA {

/// Radians: a rectifying latitude beyond this is none, and its sine means little.
inline constexpr double kBonneLargestMu = 10.0;

inline Point Forward(const Bonne& c, Point p) {
  const SinCos f = sincos(p.y);
  const Lanes M = c.sphere ? c.a * p.y : ArcTo(c.arc, p.y, f);      // (3-21)
  const Lanes rho = c.apexArc - M;                                  // (19-1), (19-8)
  const Lanes am = c.a * f.cos * InverseRoot(c.e2, Square(f.sin));  // a m, of (14-15)
  const Mask apex = rho == 0.0;                                     // a pole that is the standard parallel
  const Lanes E = am * (p.x - c.lon0) / Except(rho, apex, c.a);     // (19-2), (19-9)
  return FromPolar(rho, Except(E, apex, 0.0), c.apex);              // (19-3), (19-4), (19-10), (19-11)
}

inline Point Inverse(const Bonne& c, Point p) {
  const double sign = c.apex < 0.0 ? -1.0 : 1.0;
  const Polar at = ToPolar(p, c.apex, sign);
  const Lanes rho = sign * sqrt(at.rho2);                                          // (19-5), (19-12)
  const Lanes mu = Clamp((c.apexArc - rho) * (1.0 / c.arc.ac0), kBonneLargestMu);  // (19-13), (7-19)
  const Lanes phi0 = c.sphere ? mu : FootpointLatitude(c.arc, mu);                 // (19-6), (3-26)
  const SinCos f = sincos(Clamp(phi0, kHalfPi));
  const Mask pole = f.cos <= kAtPole;
  const Lanes am = c.a * Except(f.cos, pole, 1.0) * InverseRoot(c.e2, Square(f.sin));
  const Lanes L = rho * at.theta / am;  // (19-7), (19-14)
  return {c.lon0 + Except(L, pole, 0.0), LatitudeOrNaN(phi0)};
}

}  // namespace ORV_ISA
}  // namespace orv
