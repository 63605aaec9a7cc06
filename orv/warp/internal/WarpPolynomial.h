// WarpPolynomial.h: the terms of polynomial warps and the solver of their fit.
//
// Terms of a source point (x, y), numbered from 1:
//      1: 1    2: x    3: y    4: x2 (xy for the bilinear order 0)    5: xy    6: y2
//      7: x3   8: x2y  9: xy2  10: y3   and so on to 21: y5
//     22: y6  23: xy5  24: x2y4  25: x3y3  26: x4y2  27: x5y  28: x6
// Deliberate: the sixth-degree row runs from y6 to x6, the reverse of the rows before it.
// Methods use terms 1 to 10 only.
#pragma once

#include <array>
#include <cstddef>

namespace orv::internal {

/// Most terms of a polynomial warp.
inline constexpr int kMaxTerms = 10;

/// Orders are -1 to 3: 0 is the bilinear form with 4 terms, 1 to 3 are the full polynomials of that degree
/// with 3, 6 and 10 terms.  Deliberate: -1 is accepted and has no terms; no method uses it.
constexpr bool IsOrder(int order) { return order >= -1 && order <= 3; }
constexpr int TermCount(int order) { return order == 0 ? 4 : (order + 2) * (order + 1) / 2; }

/// Term `number` of the point; 0 for a number outside 1 to 28.
///
/// @param bilinear  whether term 4 is xy instead of x2.
constexpr double PolynomialTerm(int number, double x, double y, bool bilinear) {
  switch (number) {
    case 1:
      return 1.0;
    case 2:
      return x;
    case 3:
      return y;
    case 4:
      return bilinear ? x * y : x * x;
    case 5:
      return x * y;
    case 6:
      return y * y;
    case 7:
      return x * x * x;
    case 8:
      return x * x * y;
    case 9:
      return x * y * y;
    case 10:
      return y * y * y;
    case 11:
      return x * x * x * x;
    case 12:
      return x * x * x * y;
    case 13:
      return x * x * y * y;
    case 14:
      return x * y * y * y;
    case 15:
      return y * y * y * y;
    case 16:
      return x * x * x * x * x;
    case 17:
      return x * x * x * x * y;
    case 18:
      return x * x * x * y * y;
    case 19:
      return x * x * y * y * y;
    case 20:
      return x * y * y * y * y;
    case 21:
      return y * y * y * y * y;
    case 22:
      return y * y * y * y * y * y;
    case 23:
      return x * y * y * y * y * y;
    case 24:
      return x * x * y * y * y * y;
    case 25:
      return x * x * x * y * y * y;
    case 26:
      return x * x * x * x * y * y;
    case 27:
      return x * x * x * x * x * y;
    case 28:
      return x * x * x * x * x * x;
    default:
      return 0.0;
  }
}

using TermRow = std::array<double, kMaxTerms>;

/// The equations of a fit: a square matrix with a right-hand side for X and one for Y.
struct FitSystem {
  std::array<TermRow, kMaxTerms> a = {};
  TermRow bX = {};
  TermRow bY = {};
};

/// Gauss-Jordan elimination with partial pivoting over the first n rows and columns, both right-hand sides at
/// once; they hold the solution afterwards.
///
/// The pivot of column k is the row from k on with the largest absolute value; a tie keeps the earlier row.
/// Only a pivot of exactly 0 is singular and gives false (deliberate: no tolerance, so nearly collinear
/// points pass with wild numbers).
bool SolveFit(FitSystem& system, int n);

}  // namespace orv::internal
