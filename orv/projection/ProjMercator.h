// ProjMercator.h: Mercator, sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 7, sphere (7-1), (7-2), (7-4), (7-5); ellipsoid (7-6),
//             (7-7), (7-9), (7-10).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      k; see the members.
// Marks       sphere: |phi| >= 1.5707963267948963; ellipsoid: |phi| > 1.5707963267948963, and |sin phi|
//             exactly 1 (in doubles that is |phi| > pi/2 - 1.05e-8); everything when `nowhere`.
// Departures  Deliberate: the inverse of the ellipsoid takes powers of 2.71828, not of e, which shifts
//             latitudes by up to 2.5e-5 degrees, and its iteration stops at 1.1920928955078125e-6 rad.  y is
//             counted from the Equator: Lat0 is the latitude of true scale.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/ConformalLatitude.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct Mercator {
  bool sphere;   // f is exactly 0
  bool nowhere;  // ellipsoid with 1 - e^2 sin^2 Lat0 <= 0: every point is marked, both ways
  double a;      // major radius, metres
  double e;      // sqrt(2 f - f^2); 0 on the sphere
  double k;      // sphere: cos Lat0; ellipsoid: cos Lat0 / sqrt(1 - e^2 sin^2 Lat0); not 0
  double lon0;   // Lon0, radians
};

namespace ORV_ISA {

/// Deliberate: just below pi/2.
inline constexpr double kMercatorLargestLatitude = 1.5707963267948963;

/// ln 2.71828.  Deliberate: not 1.
inline constexpr double kMercatorLnBase = 0.999999327347282;

/// Absolute, radians.
inline constexpr double kMercatorTolerance = 1.1920928955078125e-6;

inline constexpr int kMercatorSteps = 500;

inline Point Forward(const Mercator& c, Point p) {
  if (c.nowhere) return {kNaN, kNaN};
  const Lanes x = c.a * c.k * (p.x - c.lon0);  // (7-1), (7-6)
  const Mask inside = c.sphere ? abs(p.y) < kMercatorLargestLatitude : abs(p.y) <= kMercatorLargestLatitude;
  const SinCos t = sincos(Except(p.y, !inside, 0.0));
  if (c.sphere) {
    const Lanes y = c.a * c.k * LogTan(t);  // (7-2), ln tan(pi/4 + phi/2)
    return {x, Except(y, !inside, kNaN)};
  }
  // (7-7): (a/2) k ln(((1 + sin phi)/(1 - sin phi)) ((1 - e sin phi)/(1 + e sin phi))^e), in a form that does
  // not cancel near the poles: ln((1 + sin phi)/(1 - sin phi))/2 is ln tan(pi/4 + phi/2), and
  // (e/2) ln((1 - e sin phi)/(1 + e sin phi)) is -e artanh(e sin phi).  1 + sin phi = 0 gives ln 0: marked
  // too.
  const Lanes y = c.a * c.k * (LogTan(t) - EAtanh(c.e, t.sin));
  const Mask plotted = inside & (abs(t.sin) != 1.0);
  return {x, Except(y, !plotted, kNaN)};
}

inline Point Inverse(const Mercator& c, Point p) {
  if (c.nowhere) return {kNaN, kNaN};
  const double inverseRadius = 1.0 / (c.k * c.a);
  const Lanes lambda = p.x * inverseRadius + c.lon0;  // (7-5), (7-12): x / k / a + Lon0
  const Lanes q = p.y * inverseRadius;
  if (c.sphere) return {lambda, atan(sinh(Clamp(q, kLargestHyperbolic)))};  // (7-4)
  // Beyond +-300 t is so small or large that the latitude is that of the pole, to the last bit.
  const Lanes t = exp(Clamp(q, 300.0) * -kMercatorLnBase);  // (7-10): 2.71828^(-y / k / a)
  const Lanes phi = LatitudeOf(t, c.e, kMercatorTolerance, kMercatorSteps);
  return {lambda, phi};
}

}  // namespace ORV_ISA
}  // namespace orv
