// ProjTranAlbers.h: Albers Equal Area Conic with two standard parallels, sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 14: sphere (14-3) to (14-8); ellipsoid (14-12) to (14-21),
//             (3-12), (3-16); both with (14-1), (14-2), (14-9) to (14-11).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      n, C, rho0, qp; see the members.
// Marks       forward: C - n q below 0; ellipsoid with e = 1: the poles.  Inverse: |q| > qp (1 + 1e-9),
//             inside that clamped; no convergence in 50 steps.
// Departures  q of the sphere is 2 sin phi, so that its equations are those of the ellipsoid.  (3-16) is
//             iterated on sin phi, which divides by no cos phi and converges at the poles as well: the same
//             root.  The poles are arcs and keep their longitudes.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/Cone.h"
#include "orv/projection/ConformalLatitude.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct Albers {
  bool sphere;  // f is exactly 0
  double a;     // major radius, metres
  double e;     // sqrt(2 f - f^2); 0 on the sphere
  double lon0;  // Lon0, radians
  double n;     // cone constant (14-6), (14-14); not 0
  double C;     // (14-5), (14-13)
  double rho0;  // distance of the apex from the origin (14-3a), (14-12a), metres; has the sign of n
  double qp;    // q of the north pole: 2 on the sphere, (14-20) on the ellipsoid
  double ie2;   // 1/e^2; 0 on the sphere, where it is not used
};

namespace ORV_ISA {

/// Absolute, in sin phi, and steps of (3-16).
inline constexpr double kAlbersTolerance = 1e-10;
inline constexpr int kAlbersSteps = 50;

/// Absolute: what round-off makes of the C - n q that is 0 in a pole which is a standard parallel.
inline constexpr double kAlbersRoundOff = 4e-15;

/// Relative: how far |q| may exceed that of the pole.
inline constexpr double kAlbersBeyondPole = 1e-9;

/// q (3-12) of a sine, with (1/(2e)) ln((1 - e s)/(1 + e s)) as -artanh(e s)/e; |e s| < 1.
inline Lanes AuthalicQ(const Albers& c, Lanes s) {
  const double e2 = c.e * c.e;
  if (IsSmall(e2)) {  // both terms as one series, which is exact to 1e-17
    return (1.0 - e2) * s *
           Poly(e2 * (s * s), 2.0, 4.0 / 3, 6.0 / 5, 8.0 / 7, 10.0 / 9, 12.0 / 11, 14.0 / 13, 16.0 / 15);
  }
  return (1.0 - e2) * (s / (1.0 - e2 * (s * s)) + EAtanh(c.e, s) * c.ie2);
}

/// The sine of the latitude that has this q, |q| <= qp: (3-16).
///
/// @param active  set where it does not converge.
inline Lanes SineOfQ(const Albers& c, Lanes q, Mask& active) {
  const double e2 = c.e * c.e, k = 0.5 / (1.0 - e2);
  Lanes s = q * (1.0 / c.qp);
  active = s == s;
  for (int i = 0; i < kAlbersSteps && Any(active); ++i) {
    const Lanes step = (q - AuthalicQ(c, s)) * (k * Square(1.0 - e2 * (s * s)));
    s = Select(active, Clamp(s + step, 1.0), s);
    active = active & (abs(step) > kAlbersTolerance);
  }
  return s;
}

inline Point Forward(const Albers& c, Point p) {
  const Lanes s = sin(p.y);
  const Mask infinite = !(abs(c.e * s) < 1.0);
  const Lanes q = c.sphere ? 2.0 * s : AuthalicQ(c, Except(s, infinite, 0.0));
  const Lanes w = c.C - c.n * q;
  const Mask bad = (w < -kAlbersRoundOff) | infinite;
  const Lanes rho = sqrt(Except(w, w < 0.0, 0.0)) * (c.a / c.n);  // (14-3), (14-12)
  return FromPolar(Except(rho, bad, kNaN), c.n * (p.x - c.lon0), c.rho0);
}

inline Point Inverse(const Albers& c, Point p) {
  const Polar at = ToPolar(p, c.rho0, c.n < 0.0 ? -1.0 : 1.0);
  const Lanes lambda = c.lon0 + at.theta * (1.0 / c.n);  // (14-9)
  const double k = c.n / c.a;
  const Lanes q = (c.C - at.rho2 * (k * k)) * (1.0 / c.n);  // (14-19); (14-8) has q/2
  const Mask outside = abs(q) > c.qp * (1.0 + kAlbersBeyondPole);
  const Lanes inside = Clamp(Except(q, outside, 0.0), c.qp);
  if (c.sphere) return {lambda, Except(asin(0.5 * inside), outside, kNaN)};
  Mask failed;
  const Lanes phi = asin(SineOfQ(c, inside, failed));
  return {lambda, Except(phi, outside | failed, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
