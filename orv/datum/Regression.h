// Regression.h: multiple regression equations for the shift of latitude and longitude.
//
// Source      [DMA91], appendix D.
// Input       longitude, latitude in degrees.   Output  the same on the other datum.
// Set-up      the origin, the factor and the two lists of terms of a region.
// Marks       nothing.      Departures  forward only; far outside its region a polynomial gives nonsense.
#pragma once

#include <cstddef>

#include "orv/lanes/Lanes.h"

namespace orv {

struct RegressionTerm {
  double c;  // coefficient, arc-seconds
  int u, v;  // powers of U and V, 0 to 9
};

// The tables are read-only and outlive every call.
struct Regression {
  double phim, lambdam;       // origin of U and V, degrees
  double k;                   // factor of U and V: 0.05235988, or three times that (CAMPO)
  const RegressionTerm* lat;  // terms of the latitude shift
  std::size_t latCount;
  const RegressionTerm* lon;  // terms of the longitude shift
  std::size_t lonCount;
};

namespace ORV_ISA {

inline constexpr int kRegressionPowers = 10;

/// The sum of c U^u V^v in the order of the terms.
inline Lanes SumOfTerms(const RegressionTerm* terms, std::size_t count, const Lanes (&u)[kRegressionPowers],
                        const Lanes (&v)[kRegressionPowers]) {
  Lanes sum = 0.0;
  for (std::size_t i = 0; i < count; ++i) sum = sum + terms[i].c * u[terms[i].u] * v[terms[i].v];
  return sum;
}

inline Point Shift(const Regression& c, Point p) {
  Lanes u[kRegressionPowers], v[kRegressionPowers];
  u[0] = 1.0;
  v[0] = 1.0;
  u[1] = c.k * (p.y - c.phim);
  v[1] = c.k * (p.x - c.lambdam);
  for (int i = 2; i < kRegressionPowers; ++i) {
    u[i] = u[i - 1] * u[1];
    v[i] = v[i - 1] * v[1];
  }
  const Lanes dphi = SumOfTerms(c.lat, c.latCount, u, v);     // arc-seconds
  const Lanes dlambda = SumOfTerms(c.lon, c.lonCount, u, v);  // arc-seconds
  return {p.x + dlambda / 3600.0, p.y + dphi / 3600.0};
}

}  // namespace ORV_ISA
}  // namespace orv
