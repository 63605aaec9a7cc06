// ProjPolyconic.h: Polyconic (American Polyconic), sphere and ellipsoid.
//
// Source      Snyder 1987 [Sny87], section 18: sphere (18-1) to (18-10); ellipsoid (18-11) to (18-22), with
//             (3-21), (4-20).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      e2, the meridian arc and M0; see the members.
// Marks       forward nothing.  Inverse: |x| or |y + M0| beyond 100 radii; no convergence in 50 steps.
// Departures  1 - cos E is 2 sin^2(E/2), which keeps its digits near the Equator.  In the inverse, (18-9)
//             and (18-21) with d = A - M/a, so that they do not cancel, and M' of (18-17) in closed
//             form.  As printed they diverge from 84 degrees off Lon0 on and find latitudes beyond the
//             poles; here the root, of which there is one between the Equator and the pole, stays
//             enclosed.  E comes from its sine and its cosine, since the arc sine of (18-10) and (18-22)
//             gives another point beyond a right angle.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/MeridianArc.h"

namespace orv {

struct Polyconic {
  static constexpr int kInverseSteps = 50;  // of (18-9), (18-21)

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

/// Absolute, radians, of (18-9), (18-21).
inline constexpr double kPolyconicTolerance = 1e-12;

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
  const Lanes k = c.a / sqrt(1.0 - c.e2 * Square(f.sin)) * f.cos * (2.0 * h);  // (4-20)
  const Lanes x = k * half.cos;                                                // (18-3), (18-12)
  const Lanes y = PolyconicArc(c, p.y, f) - c.m0 + k * half.sin;               // (18-4), (18-13)
  return {x, y};
}

/// A search for phi, the root of d - (C/2)(x^2 + d^2), d = A - M/a, C = sqrt(1 - e2 sin^2 phi) tan phi (18-20), which
/// is positive at the Equator and negative at the pole.
struct PolyconicSearch {
  Lanes x, A;            // (18-7), (18-18), radii; A without its sign.  0 and 1 in lanes that need no search.
  Lanes phi, low, high;  // the last trial, and what encloses the root
  Mask active;
};

/// (18-7), (18-18): x and A of a point, in radii, and the points that are no image or lie on the Equator.
struct PolyconicPoint {
  Lanes x, A;
  Mask far, equator;
};
inline PolyconicPoint PolyconicPointOf(const Polyconic& c, Point p) {
  const double inverseA = 1.0 / c.a;
  const Lanes x = p.x * inverseA, A = (c.m0 + p.y) * inverseA;
  const Mask far = FartherThan(x, A, kPolyconicFarthest), equator = abs(A) < kPolyconicEquator;
  return {x, A, far, equator};
}

inline PolyconicSearch BeginInverse(const Polyconic& c, Point p) {
  const PolyconicPoint at = PolyconicPointOf(c, p);
  const Lanes x = Except(at.x, at.far, 0.0), A = Except(abs(at.A), at.far | at.equator, 1.0);
  const Lanes start = A / (1.0 + 0.5 * (x * x));  // the root for small latitudes
  const Mask active = start == start;
  return {x, A, Select(start < kHalfPi, start, kHalfPi), kPolyconicLowest, kHalfPi, active};
}

inline void StepInverse(const Polyconic& c, PolyconicSearch& s) {
  const SinCos f = sincos(s.phi);
  const Lanes w2 = 1.0 - c.e2 * Square(f.sin), w = sqrt(w2);
  const Lanes C = w * f.sin / f.cos;
  const Lanes d = s.A - PolyconicArc(c, s.phi, f) * (1.0 / c.a);
  const Lanes r2 = s.x * s.x + d * d;
  const Lanes g = d - 0.5 * C * r2;          // the numerator of (18-9), (18-21)
  const Lanes M1 = (1.0 - c.e2) / (w2 * w);  // (18-17)
  // and its denominator, where C M' - 2/sin 2 phi is -cot phi/(1 - e2 sin^2 phi)
  const Lanes slope = (0.5 * c.e2) * Square(f.cos) * r2 / w - d * f.cos / (f.sin * w2) - M1;
  s.low = Select(g > 0.0, s.phi, s.low);
  s.high = Select(g > 0.0, s.high, s.phi);
  const Lanes newton = s.phi - g / Except(slope, slope == 0.0, 1.0);
  const Mask enclosed = (newton >= s.low) & (newton <= s.high);
  const Lanes next = Select(enclosed, newton, 0.5 * (s.low + s.high));
  const Mask moving = abs(next - s.phi) > kPolyconicTolerance;
  s.phi = Select(s.active, next, s.phi);
  s.active = s.active & moving;
}

inline Point EndInverse(const Polyconic& c, Point p, const PolyconicSearch& s) {
  const PolyconicPoint at = PolyconicPointOf(c, p);
  const SinCos f = sincos(s.phi);
  const Lanes C = sqrt(1.0 - c.e2 * Square(f.sin)) * f.sin / f.cos;
  const Lanes d = s.A - PolyconicArc(c, s.phi, f) * (1.0 / c.a);
  const Lanes L = atan2(s.x * C, 1.0 - d * C) / f.sin;  // (18-10), (18-22)
  const Mask pole = f.cos <= kAtPole, nan = (at.x != at.x) | (at.A != at.A), bad = s.active | at.far | nan;
  const Lanes lambda = c.lon0 + Except(Except(L, pole, 0.0), at.equator, s.x);
  return {lambda, Except(Except(WithSign(s.phi, at.A), at.equator, 0.0), bad, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
