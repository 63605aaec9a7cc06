// WarpTranOrder3.h: polynomials, X = sum of e[j - 1] tj, Y = sum of n[j - 1] tj.
//
// Input       a point of the source plane.   Output  its image in the destination plane.
// Set-up      the fit of WarpTranOrder3.cpp; the terms tj are numbered in internal/WarpPolynomial.h.
// Marks       nothing.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {

/// kOrder 1 to 3: the full polynomial of that degree, of 3, 6 or 10 terms; 0: bilinear, the 4 terms 1, x, y, xy.
template <int kOrder>
struct WarpOrder3 {
  static constexpr std::size_t kTerms = kOrder == 0 ? 4 : (kOrder + 2) * (kOrder + 1) / 2;
  double e[kTerms], n[kTerms];
};

namespace ORV_ISA {

template <int kOrder>
inline Point Forward(const WarpOrder3<kOrder>& c, Point p) {
  const Lanes x = p.x, y = p.y;
  const Lanes t[] = {1.0,       x,         y,        kOrder == 0 ? x * y : x * x, x * y, y * y, x * x * x,
                     x * x * y, x * y * y, y * y * y};
  Point sum = {0.0, 0.0};
  for (std::size_t j = 0; j < WarpOrder3<kOrder>::kTerms; ++j) {
    sum.x = sum.x + c.e[j] * t[j];
    sum.y = sum.y + c.n[j] * t[j];
  }
  return sum;
}

}  // namespace ORV_ISA
}  // namespace orv
