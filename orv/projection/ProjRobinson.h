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
#include "orv/projection/NewtonSteps.h"
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
inline Cubic RobinsonCubic(const float (&table)[kRobinsonNodes][kRobinsonTerms], Ints row) {
  const float* const first = table[0];
  const Ints at = row * kRobinsonTerms;
  return {Gather(first, at), Gather(first, at + 1), Gather(first, at + 2), Gather(first, at + 3)};
}
inline Lanes ValueOf(const Cubic& c, Lanes d) { return ((c.c3 * d + c.c2) * d + c.c1) * d + c.c0; }

inline Point Forward(const Robinson& c, Point p) {
  const Lanes phi = abs(p.y);
  const Lanes i = RobinsonRow(phi * kRobinsonPerRadian);
  const Lanes d = (phi - i * kRobinsonStep) * kRobinsonDegrees;
  const Ints row = RobinsonIndex(i);
  const Lanes X = ValueOf(RobinsonCubic(kRobinsonLength, row), d);
  const Lanes Y = ValueOf(RobinsonCubic(kRobinsonDistance, row), d);
  const Lanes y = Y * kRobinsonY * c.a;
  return {X * kRobinsonX * p.x * c.a, Select(p.y < 0.0, -y, y)};
}

inline Point Inverse(const Robinson& c, Point p) {
  const Lanes Y0 = abs(p.y) * (1.0 / (kRobinsonY * c.a));
  const Mask outside = Y0 > 1.0 + kRobinsonRim;
  const Lanes Y = Except(Y0, outside, 0.0);
  // the row whose c0 is the last that Y has reached, at most 17
  Lanes i = 0.0;
  for (int r = 1; r < kRobinsonIntervals; ++r) {
    i += Select(Y >= static_cast<double>(kRobinsonDistance[r][0]), 1.0, 0.0);
  }
  const Ints row = RobinsonIndex(i);
  const Cubic t = RobinsonCubic(kRobinsonDistance, row);
  const Lanes next = Gather(kRobinsonDistance[0], (row + 1) * kRobinsonTerms);
  const Lanes d = Newton(5.0 * (Y - t.c0) / (next - t.c0), 0.0, [&](Lanes v) {
    return (Y - ValueOf(t, v)) / ((3.0 * t.c3 * v + 2.0 * t.c2) * v + t.c1);
  });
  const Lanes X = ValueOf(RobinsonCubic(kRobinsonLength, row), d);
  const Lanes phi = Clamp(i * kRobinsonStep + d * (1.0 / kRobinsonDegrees), kHalfPi);
  return {p.x / (kRobinsonX * c.a * X), Except(FlipSign(phi, p.y), outside, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
