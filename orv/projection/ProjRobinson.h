// ProjRobinson.h: Robinson.
//
// Source      the tables of RobinsonTables.h; x = 0.8487 a X lambda, y = 1.3523 a Y [SnyVox89], the constants
//             in single precision.
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      none beyond the working block.
// Marks       forward nothing.  Inverse: |y| more than 1e-6 (relative) beyond that of a pole.
// Departures  sphere of radius a whatever the flattening.  Deliberate: the central meridian is Greenwich, and
//             Lon0 is not read.  The cubics are rounded: their ends miss the next node by up to 2e-7 of the
//             pole's distance, so that the inverse is not that of the forward within 5 m of a node.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/InverseLimits.h"
#include "orv/projection/RobinsonTables.h"

namespace orv {

struct Robinson {
  double a;  // major radius, metres
};

namespace ORV_ISA {

// Deliberate: constants of single precision, all of them.
inline constexpr double kRobinsonX = 0.8486999869346619;
inline constexpr double kRobinsonY = 1.3523000478744507;
inline constexpr double kRobinsonPerRadian = 11.459156036376953;  // 36/pi, rows in a radian
inline constexpr double kRobinsonStep = 0.08726646f;              // 5 degrees in radians
inline constexpr double kRobinsonDegrees = 57.29577951308232;     // in a radian

/// Relative: how far |y| may exceed that of a pole.
inline constexpr double kRobinsonRim = 1e-6;

/// The whole number i, 0 <= i < 65536, as an index.
inline Ints RobinsonIndex(Lanes i) { return BitsOf(i + 0x1p52) & 0xffff; }

/// The row of w = |phi| in steps of 5 degrees: floor(w), at most 17.
inline Lanes RobinsonRow(Lanes w) {
  const Lanes inside = Select(w < 18.0, w, kRobinsonIntervals - 1.0);
  Ints unused;
  const Lanes nearest = Round(inside, unused);
  return Select(nearest > inside, nearest - 1.0, nearest);
}

struct Cubic {
  Lanes c0, c1, c2, c3;
};
inline Cubic RobinsonCubic(const double (&pairs)[2][kRobinsonIntervals][2], Ints row) {
  Cubic c;
  GatherPairs(pairs[0][0], row, c.c0, c.c1);
  GatherPairs(pairs[1][0], row, c.c2, c.c3);
  return c;
}
inline Lanes ValueOf(const Cubic& c, Lanes d) { return ((c.c3 * d + c.c2) * d + c.c1) * d + c.c0; }

inline Point Forward(const Robinson& c, Point p) {
  const Lanes phi = abs(p.y);
  const Lanes i = RobinsonRow(phi * kRobinsonPerRadian);
  const Lanes d = (phi - i * kRobinsonStep) * kRobinsonDegrees;
  const Ints row = RobinsonIndex(i);
  const Lanes X = ValueOf(RobinsonCubic(kRobinsonPairs.length, row), d);
  const Lanes Y = ValueOf(RobinsonCubic(kRobinsonPairs.distance, row), d);
  const Lanes y = Y * kRobinsonY * c.a;
  return {X * kRobinsonX * p.x * c.a, Select(p.y < 0.0, -y, y)};
}

/// The row whose node is the last that the distance has reached, at most 17.
inline Lanes RobinsonRowOf(Lanes distance, const RobinsonSearch& search) {
  Ints nearest;
  Round(distance * 32.0, nearest);
  Lanes node, before;
  GatherPairs(&search.at[0].node, nearest & 0xffff, node, before);
  return before + Select(distance >= node, 1.0, 0.0);
}

inline Point Inverse(const Robinson& c, Point p) {
  const Lanes Y0 = abs(p.y) * (1.0 / (kRobinsonY * c.a));
  const Mask outside = !(Y0 <= 1.0 + kRobinsonRim);
  const Lanes Y = Except(Y0, outside, 0.0);
  const Lanes i = RobinsonRowOf(Y, kRobinsonSearch);
  const Ints row = RobinsonIndex(i);
  const Cubic t = RobinsonCubic(kRobinsonPairs.distance, row),
              start = RobinsonCubic(kRobinsonPairs.start, row);
  const Lanes u = Y - t.c0;
  const Lanes v = u * Poly(u, start.c0, start.c1, start.c2, start.c3);
  // the cubic about the start, less Y, is -rest + slope e + s2 e^2 + c3 e^3; the series of its root e, whose next term
  // is below 1e-16 degrees
  const Lanes rest = u - v * Poly(v, t.c1, t.c2, t.c3);
  const Lanes s2 = t.c2 + 3.0 * t.c3 * v;
  const Lanes inverse = 1.0 / (t.c1 + v * (t.c2 + s2));
  const Lanes h = rest * inverse, f2 = s2 * inverse, f3 = t.c3 * inverse, square = f2 * f2;
  const Lanes d = v + h * Poly(h, 1.0, -f2, 2.0 * square - f3, -5.0 * f2 * (square - f3));
  const Cubic length = RobinsonCubic(kRobinsonPairs.length, row);
  const Lanes X = Poly(d, length.c0, length.c1, length.c2, length.c3);
  const Lanes phi = Clamp(i * kRobinsonStep + d * (1.0 / kRobinsonDegrees), kHalfPi);
  return {p.x / (kRobinsonX * c.a * X), Except(FlipSign(phi, p.y), outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
