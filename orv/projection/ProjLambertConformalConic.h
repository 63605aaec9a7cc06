// ProjLambertConformalConic.h: Lambert Conformal Conic with two standard parallels, sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 15: sphere (15-1) to (15-5); ellipsoid (15-7) to (15-11),
//             (14-15), (7-9); both with (14-1), (14-2), (14-4), (14-9) to (14-11).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      n, a F, rho0; see the members.
// Marks       forward: |phi| > pi/2; sphere with n > 0: phi = -pi/2; ellipsoid with e = 1: the poles.
//             Inverse: nothing.
// Departures  Deliberate: on the ellipsoid the north pole is the apex of a southern cone too, where it would
//             be infinite.  The other poles opposite to the apex lie some 1e17 m out and are not
//             marked.  Powers are exponentials of the isometric latitude, which does not lose digits near
//             the poles.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/Cone.h"
#include "orv/projection/ConformalLatitude.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct LambertConformalConic {
  bool sphere;  // f is exactly 0
  double e;     // sqrt(2 f - f^2); 0 on the sphere
  double lon0;  // Lon0, radians
  double n;     // cone constant (15-3), (15-8); not 0
  double aF;    // a F (15-2), (15-10), metres; has the sign of n
  double rho0;  // distance of the apex from the origin (15-1a), (15-7a), metres; has the sign of n
  LatitudeSeries latitude;  // of e; not read on the sphere
};

namespace ORV_ISA {

inline Point Forward(const LambertConformalConic& c, Point p) {
  const Mask outside = abs(p.y) > kHalfPi;
  const SinCos f = sincos(Except(p.y, outside, 0.0));
  const Lanes theta = c.n * (p.x - c.lon0);  // (14-4)
  if (c.sphere) {
    // (15-1): a F / tan^n(pi/4 + phi/2); the tangent of the south pole is 0
    const Lanes rhoOfPoint = c.aF * exp(-c.n * LogTan(f));
    const Lanes rho = Except(rhoOfPoint, p.y <= -kHalfPi, c.n > 0.0 ? kNaN : 0.0);
    return FromPolar(Except(rho, outside, kNaN), theta, c.rho0);
  }
  const Mask bad = outside | !(abs(c.e * f.sin) < 1.0);  // 1 - e^2 sin^2 phi <= 0 or 1 + e sin phi = 0
  const SinCos g = {Except(f.sin, bad, 0.0), Except(f.cos, bad, 1.0)};
  // (15-7): a F t^n, with t of (15-9) as exp(-(ln tan(pi/4 + phi/2) - e artanh(e sin phi)))
  const Lanes rhoOfPoint = c.aF * exp(-c.n * (LogTan(g) - EAtanh(c.e, g.sin)));
  // t = 0.  Deliberate: the apex, also with n < 0.
  const Lanes rho = Except(rhoOfPoint, p.y >= kHalfPi, 0.0);
  return FromPolar(Except(rho, bad, kNaN), theta, c.rho0);
}

inline Point Inverse(const LambertConformalConic& c, Point p) {
  const Polar at = ToPolar(p, c.rho0, c.n < 0.0 ? -1.0 : 1.0);
  const Lanes lambda = c.lon0 + at.theta * (1.0 / c.n);  // (14-9)
  // ln of (rho/(a F))^(1/n) (15-11); at the apex infinite, with the sign of -n
  const Lanes lnT = log(at.rho2 * (1.0 / (c.aF * c.aF))) * (0.5 / c.n);
  if (c.sphere) return {lambda, atan(sinh(Clamp(-lnT, kLargestHyperbolic)))};  // (15-5)
  return {lambda, LatitudeOf(exp(Clamp(lnT, kLargestLnT)), c.e, c.latitude)};
}

}  // namespace ORV_ISA
}  // namespace orv
