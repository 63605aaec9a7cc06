// ConformalLatitude.h: the ellipsoid's part in the conformal projections.
//
// Source      Snyder 1987 [Sny87], equations (7-9), (7-10), (15-9); [Kaw11] for the series.
// Input       sines of latitudes, or t = tan(pi/4 - phi/2) / ((1 - e sin phi)/(1 + e sin phi))^(e/2) (15-9).
// Set-up      the coefficients of the series, by internal::MakeLatitudeSeries.
// Departures  none; forms without power, sine or arc tangent in the loop, equal to the printed ones to 1e-15
// rad.
#pragma once

#include "orv/lanes/Ellipsoid.h"

namespace orv {

/// phi - chi as sin 2 chi times a polynomial in cos 2 chi, lowest power first.
struct LatitudeSeries {
  double c[6];
};

namespace ORV_ISA {

/// e artanh(e s), which is (e/2) ln((1 + e s)/(1 - e s)), for |s| <= 1, 0 <= e < 1; the series is exact to
/// 1e-18.
inline Lanes EAtanh(double e, Lanes s) {
  const Lanes u = e * s;
  if (e > kLargestSmallEccentricity) return e * atanh(u);
  return e * u * Poly(u * u, 1.0, 1.0 / 3, 1.0 / 5, 1.0 / 7, 1.0 / 9, 1.0 / 11, 1.0 / 13);
}

/// ((1 - e s)/(1 + e s))^(e/2), which is exp(-e artanh(e s)); the series is exact to 1e-18.
inline Lanes ConformalFactor(double e, Lanes s) {
  const Lanes v = -EAtanh(e, s);
  if (e > kLargestSmallEccentricity) return exp(v);
  return Poly(v, 1.0, 1.0, 1.0 / 2, 1.0 / 6, 1.0 / 24, 1.0 / 120, 1.0 / 720);
}

/// The latitude that has this t, by the iteration (7-9), from phi = pi/2 - 2 atan t:
///   phi' = pi/2 - 2 atan(t ((1 - e sin phi)/(1 + e sin phi))^(e/2)),
/// until two successive values differ by no more than `tolerance` (radians, absolute); the last one is the
/// result. A lane is frozen at its own stop.  NaN for one that takes more than `steps` steps.
///
/// Carried by tau = tan(pi/4 - phi/2): sin phi is 2/(1 + tau^2) - 1, and a step of phi is
/// 2 (tau' - tau)/(1 + tau tau') but for its third power.  t from 1e-140 to 1e140; what is beyond is a pole.
inline Lanes LatitudeOf(Lanes t, double e, double tolerance, int steps) {
  Lanes tau = t;
  Mask active = t == t;
  for (int i = 0; i < steps && Any(active); ++i) {
    const Lanes next = t * ConformalFactor(e, 2.0 / (1.0 + tau * tau) - 1.0);
    const Mask moving = 2.0 * abs(next - tau) > tolerance * (1.0 + tau * next);
    tau = Select(active, next, tau);
    active = active & moving;
  }
  return Except(kHalfPi - 2.0 * atan(tau), active, kNaN);
}

/// Beyond it, |ln t| is that of a pole to the last bit.
inline constexpr double kLargestLnT = 100.0;

/// Absolute, radians, and steps of (7-9) where the formulary leaves them open.
inline constexpr double kLatitudeTolerance = 1e-12;
inline constexpr int kLatitudeSteps = 100;

/// The same latitude from chi = pi/2 - 2 atan t by the series, to 2e-17 rad and round-off; by (7-9) where the
/// eccentricity is too large for it.
inline Lanes LatitudeOf(Lanes t, double e, const LatitudeSeries& series) {
  if (e > kLargestSmallEccentricity) return LatitudeOf(t, e, kLatitudeTolerance, kLatitudeSteps);
  const Lanes t2 = t * t, inverse = 1.0 / (1.0 + t2);
  const Lanes rise = 1.0 - t2, run = 2.0 * t;  // of chi
  const Lanes s = rise * inverse, c = run * inverse;
  const auto& k = series.c;
  return atan2(rise, run) + 2.0 * s * c * Poly(c * c - s * s, k[0], k[1], k[2], k[3], k[4], k[5]);
}

}  // namespace ORV_ISA
}  // namespace orv
