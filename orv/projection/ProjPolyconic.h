// ProjPolyconic.h: Polyconic (American Polyconic), sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 18: sphere (18-1) to (18-10); ellipsoid (18-11) to (18-22), with
//             (3-21), (4-20).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      e2, the meridian arc and M0; see the members.
// Marks       forward nothing.  Inverse: |x| or |y + M0| beyond 100 radii; no convergence in 50 steps.
// Departures  1 - cos E is 2 sin^2(E/2), which keeps its digits near the Equator.  In the inverse, (18-9)
//             and (18-21) with d = A - M/a, so that they do not cancel, with the derivative everywhere instead of
//             that of a root, and with M' of (18-17) in closed form.  As printed they diverge from 84 degrees
//             off Lon0 on and find latitudes beyond the poles; here the root, of which there is one between the
//             Equator and the pole, stays enclosed.  E comes from its sine and its cosine, since the arc sine of (18-10) and (18-22)
//             gives another point beyond a right angle.
#pragma once

#include "orv/lanes/Ellipsoid.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/MeridianArc.h"
#include "orv/projection/SmallSteps.h"

namespace orv {

struct Polyconic {
  bool sphere;      // f is exactly 0
  double a;         // major radius, metres
  double lon0;      // Lon0, radians
  double e2;        // 2 f - f^2
  MeridianArc arc;  // of a and e2
  double m0;        // arc from the Equator to Lat0, metres
};

namespace ORV_ISA {

/// Radii: no point of any map is as far away.
inline constexpr double kPolyconicFarthest = 100.0;

/// Radians, absolute and relative to the cosine of the latitude, of (18-9), (18-21): the step after one of that size would be
/// of the order of its square over that cosine.
inline constexpr double kPolyconicTolerance = 1e-15, kPolyconicRelative = 1e-9;
inline constexpr int kPolyconicSteps = 50;

/// Radians: steps start no closer to the pole, but for points whose distance from it, in radii, has at most this square.
inline constexpr double kPolyconicHighestStart = 1.5, kPolyconicPolar = 0.01;

/// Radii, radians: an A that close to 0 is 0, and no latitude of another A is nearer to 0 than the second.
inline constexpr double kPolyconicEquator = 1e-280, kPolyconicLowest = 1e-290;

inline Lanes PolyconicArc(const Polyconic& c, Lanes phi, SinCos f) {
  return c.sphere ? c.a * phi : ArcTo(c.arc, phi, f);  // (3-21)
}

inline Point Forward(const Polyconic& c, Point p) {
  const SinCos f = sincos(p.y);
  const Lanes L = p.x - c.lon0;
  const SinCos half = sincos(0.5 * (L * f.sin));  // E/2, of (18-2)
  const Mask equator = p.y == 0.0;
  // sin(E/2)/sin phi; its limit L/2 gives x = a L and y = -M0 (7-1), (18-1), (18-11)
  const Lanes h = Except(half.sin / Except(f.sin, equator, 1.0), equator, 0.5 * L);
  const Lanes k = c.a * InverseRoot(c.e2, Square(f.sin)) * f.cos * (2.0 * h);  // (4-20)
  const Lanes x = k * half.cos;                                                // (18-3), (18-12)
  const Lanes y = PolyconicArc(c, p.y, f) - c.m0 + k * half.sin;               // (18-4), (18-13)
  return {x, y};
}

/// phi from 0 to pi/2, the root of g = d - (C/2)(x^2 + d^2), d = A - M/a, C = sqrt(1 - e2 sin^2 phi) tan phi (18-20), which
/// is positive at the Equator and negative at the pole; with its sine and cosine, and d.
struct PolyconicLatitude {
  Lanes phi;
  SinCos f;
  Lanes d;
  Mask failed;
};

/// Newton's steps (18-9), (18-21), within what encloses the root.
///
/// @param x, A  (18-7), (18-18), radii; A > 0.
inline PolyconicLatitude PolyconicLatitudeOf(const Polyconic& c, Lanes x, Lanes A) {
  // g by the first terms of its series, from one guess to a better one: within 0.1 for 90 degrees from the meridian
  const Lanes x2 = x * x, half = 0.5 * x2;
  Lanes phi = A / (1.0 + half);
  phi = A / (1.0 + half * (1.0 + phi * phi * (1.0 / 3)));
  for (int i = 0; i < 2; ++i) {
    const Lanes z = phi * phi;
    phi = A / (1.0 + (half + 0.5 * Square(A - phi)) * Poly(z, 1.0, 1.0 / 3, 2.0 / 15, 17.0 / 315));
  }
  phi = Select(phi < kPolyconicHighestStart, phi, kPolyconicHighestStart);
  // Near the pole parallels are circles about it; steps from elsewhere would only halve the distance.
  const Lanes beyond = A - PolyconicArc(c, kHalfPi, {1.0, 0.0}) * (1.0 / c.a);
  const Lanes away2 = (1.0 - c.e2) * (x2 + Square(beyond));
  const Mask polar = away2 < kPolyconicPolar;
  if (Any(polar)) phi = Select(polar, kHalfPi - sqrt(away2), phi);
  Lanes low = kPolyconicLowest, high = kHalfPi;
  SinCos f = sincos(phi);
  Mask active = phi == phi;  // all
  for (int step = 0; step < kPolyconicSteps && Any(active); ++step) {
    const Lanes w2 = 1.0 - c.e2 * Square(f.sin), inverse = InverseRoot(c.e2, Square(f.sin)), w = w2 * inverse;
    const Lanes M1 = (1.0 - c.e2) * inverse * Square(inverse);  // (18-17)
    const Lanes d = A - PolyconicArc(c, phi, f) * (1.0 / c.a);
    const Lanes r2 = x2 + d * d;
    // g cos phi, and the derivative of g times cos^2 phi; (18-21) has that of a root in its place.
    const Lanes g = d * f.cos - (0.5 * r2) * w * f.sin;
    const Lanes slope =
        M1 * f.cos * (d * w * f.sin - f.cos) - (0.5 * r2) * (w - c.e2 * Square(f.sin * f.cos) * inverse);
    low = Select(g > 0.0, phi, low);
    high = Select(g > 0.0, high, phi);
    const Lanes newton = phi - g * f.cos / Except(slope, slope == 0.0, 1.0);
    const Mask enclosed = (newton >= low) & (newton <= high);
    const Lanes next = Select(enclosed, newton, 0.5 * (low + high));
    const Lanes turn = Select(active, next - phi, 0.0);
    phi = phi + turn;
    f = SinCosAfter(f, phi, turn);
    active = active & (abs(turn) > kPolyconicTolerance + kPolyconicRelative * abs(f.cos));
  }
  return {phi, f, A - PolyconicArc(c, phi, f) * (1.0 / c.a), active};
}

inline Point Inverse(const Polyconic& c, Point p) {
  const double inverseA = 1.0 / c.a;
  const Lanes x0 = p.x * inverseA, A0 = (c.m0 + p.y) * inverseA;
  const Mask far = FartherThan(x0, A0, kPolyconicFarthest), equator = abs(A0) < kPolyconicEquator;
  const Lanes x = Except(x0, far, 0.0), A = Except(abs(A0), far | equator, 1.0);
  const PolyconicLatitude at = PolyconicLatitudeOf(c, x, A);
  const Lanes w = (1.0 - c.e2 * Square(at.f.sin)) * InverseRoot(c.e2, Square(at.f.sin));
  const Lanes C = w * at.f.sin / at.f.cos;
  const Lanes L = atan2(x * C, 1.0 - at.d * C) / at.f.sin;  // (18-10), (18-22)
  const Mask pole = at.f.cos <= kAtPole, nan = (x0 != x0) | (A0 != A0), bad = at.failed | far | nan;
  const Lanes lambda = c.lon0 + Except(Except(L, pole, 0.0), equator, x);
  return {lambda, Except(Except(WithSign(at.phi, A0), equator, 0.0), bad, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
