// Molodensky.h: the standard (not abridged) Molodensky shift of latitude and longitude, at height 0.
//
// Source      [DMA91], section 7.3: Molodensky formulas.
// Input       longitude, latitude in degrees.   Output  the same on the other datum; carries the prime meridian
//             shift.
// Set-up      see the members; one kernel serves both directions.
// Marks       nothing of its own.  At a pole the longitude shift is huge but finite (deliberate: no guard).
// Departures  evaluated once, at the input latitude.  The inverse is the forward with exchanged ellipsoids, not
//             a solution of it.
#pragma once

#include "orv/lanes/Ellipsoid.h"

namespace orv {

// Forward: 1 is the datum's own ellipsoid, 2 the step's target ellipsoid.  Inverse: 1 and 2 exchanged and
// dx, dy, dz, pmShift negated.
struct Molodensky {
  double a1;          // major radius of ellipsoid 1, metres
  double b1;          // (1 - f1) a1, metres
  double e2;          // 2 f1 - f1^2
  double da;          // a2 - a1, metres
  double df;          // f2 - f1
  double dx, dy, dz;  // metres
  double pmShift;     // degrees
};

namespace ORV_ISA {

/// The sine of one arc-second.
inline constexpr double kSineOfSecond = 4.84813681107637e-06;

inline Point Shift(const Molodensky& c, Point p) {
  const Lanes lon = p.x + c.pmShift;
  const SinCos l = sincos(lon * (kPi / 180.0)), f = sincos(p.y * (kPi / 180.0));
  const Lanes W = 1.0 - c.e2 * Square(f.sin), v = InverseRoot(c.e2, Square(f.sin));
  const Lanes N = c.a1 * v;
  const Lanes M = (1.0 - c.e2) * c.a1 * (v * v * v);
  const Lanes sc = f.sin * f.cos;
  const Lanes shift = c.dz * f.cos - (c.dx * f.sin * l.cos + c.dy * f.sin * l.sin) +
                      c.e2 * N * sc * (c.da / c.a1) + (M * (c.a1 / c.b1) + N * (c.b1 / c.a1)) * c.df * sc;
  // Arc-seconds: over M sin 1" and over N cos phi sin 1", where 1/v is W v.
  const Lanes dphi = shift * (W * W * v) * (1.0 / ((1.0 - c.e2) * c.a1 * kSineOfSecond));
  const Lanes dlambda = (c.dy * l.cos - c.dx * l.sin) * (W * v) / f.cos * (1.0 / (c.a1 * kSineOfSecond));
  return {lon + dlambda * (1.0 / 3600), p.y + dphi * (1.0 / 3600)};
}

}  // namespace ORV_ISA
}  // namespace orv
