// MeridianArc.h: arc of the meridian from the Equator, and the latitude that has a given arc.
//
// Source      Snyder 1987 [Sny87], equations (3-21), (3-24), (3-26), (7-19); series to e^6 and e1^4.
// Input       phi in radians (with its sine and cosine), or mu, the rectifying latitude, in radians.
// Output      metres, or radians.
// Set-up      as commented; all from a and e2.      Marks  nothing of its own.
// Departures  the series as printed, not the exact arc: within 0.8 mm of it on the Earth.
#pragma once

#include "orv/lanes/LaneMath.h"

namespace orv {

struct MeridianArc {
  double a;    // major radius, metres
  double c0;   // 1 - e2/4 - 3 e2^2/64 - 5 e2^3/256
  double c2;   // 3 e2/8 + 3 e2^2/32 + 45 e2^3/1024
  double c4;   // 15 e2^2/256 + 45 e2^3/1024
  double c6;   // 35 e2^3/3072
  double ac0;  // a c0, of (7-19)
  // The footpoint series (3-26), with e1 = (1 - sqrt(1 - e2)) / (1 + sqrt(1 - e2)) (3-24):
  double f2;  // 3 e1/2 - 27 e1^3/32
  double f4;  // 21 e1^2/16 - 55 e1^4/32
  double f6;  // 151 e1^3/96
  double f8;  // 1097 e1^4/512
};

namespace ORV_ISA {

/// b1 sin t + b2 sin 2t + b3 sin 3t + b4 sin 4t from one sine and cosine, by the multiple-angle formulas.
inline Lanes SineSeries(SinCos t, double b1, double b2, double b3, double b4) {
  return t.sin * Poly(t.cos, b1 - b3, 2.0 * b2 - 4.0 * b4, 4.0 * b3, 8.0 * b4);
}

/// M, from the Equator to phi (3-21).
inline Lanes ArcTo(const MeridianArc& m, Lanes phi, SinCos t) {
  const SinCos twice = {2.0 * t.sin * t.cos, 1.0 - 2.0 * Square(t.sin)};
  return m.a * (m.c0 * phi - SineSeries(twice, m.c2, -m.c4, m.c6, 0.0));
}

/// phi of a rectifying latitude mu (3-26); |mu| <= 1e5.
inline Lanes FootpointLatitude(const MeridianArc& m, Lanes mu) {
  return mu + SineSeries(sincos(2.0 * mu), m.f2, m.f4, m.f6, m.f8);
}

}  // namespace ORV_ISA
}  // namespace orv
