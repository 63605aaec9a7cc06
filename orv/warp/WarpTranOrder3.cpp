// Methods 3 to 6: polynomials, exact through as many control points as there are terms, else least squares.

#include "orv/warp/WarpTransformer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Marker.h"
#include "orv/warp/WarpTranOrder3.h"
#include "orv/warp/internal/WarpAccess.h"
#include "orv/warp/internal/WarpLoop.h"
#include "orv/warp/internal/WarpPolynomial.h"

ORV_UNIT("WarpTranOrder3")

namespace orv {

namespace {

using internal::FitSystem;
using internal::TermRow;

TermRow TermsOf(const shr::Vec2d& point, int n, bool bilinear) {
  TermRow t = {};
  for (int j = 0; j < n; ++j) {
    t[static_cast<size_t>(j)] = internal::PolynomialTerm(j + 1, point.x, point.y, bilinear);
  }
  return t;
}

// One equation for each control point.
FitSystem ExactSystem(const std::vector<shr::Vec2d>& source, const std::vector<shr::Vec2d>& destination,
                      int n, bool bilinear) {
  FitSystem system;
  for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
    system.a[i] = TermsOf(source[i], n, bilinear);
    system.bX[i] = destination[i].x;
    system.bY[i] = destination[i].y;
  }
  return system;
}

// The normal equations: the upper triangle is summed up and mirrored.
FitSystem NormalSystem(const std::vector<shr::Vec2d>& source, const std::vector<shr::Vec2d>& destination,
                       int n, bool bilinear) {
  FitSystem system;
  const size_t terms = static_cast<size_t>(n);
  for (size_t i = 0; i < source.size(); ++i) {
    const TermRow t = TermsOf(source[i], n, bilinear);
    for (size_t j = 0; j < terms; ++j) {
      for (size_t k = j; k < terms; ++k) system.a[j][k] += t[j] * t[k];
      system.bX[j] += t[j] * destination[i].x;
      system.bY[j] += t[j] * destination[i].y;
    }
  }
  for (size_t j = 0; j < terms; ++j) {
    for (size_t k = 0; k < j; ++k) system.a[j][k] = system.a[k][j];
  }
  return system;
}

template <int kOrder>
void Evaluate(shr::Vec2d* points, size_t count,
              lanes::WarpKernel<WarpOrder3<kOrder>> lanes::KernelTable::*kernel, const TermRow& e,
              const TermRow& n) {
  static_assert(WarpOrder3<kOrder>::kTerms == internal::TermCount(kOrder));
  WarpOrder3<kOrder> warp;
  std::copy_n(e.begin(), warp.kTerms, warp.e);
  std::copy_n(n.begin(), warp.kTerms, warp.n);
  internal::TransformUnmarked(points, count, kernel, warp);
}

}  // namespace

bool internal::SolveFit(FitSystem& s, int n) {
  const size_t size = static_cast<size_t>(n);
  for (size_t k = 0; k < size; ++k) {
    size_t pivot = k;
    for (size_t r = k + 1; r < size; ++r) {
      if (std::fabs(s.a[r][k]) > std::fabs(s.a[pivot][k])) pivot = r;
    }
    if (s.a[pivot][k] == 0.0) return false;
    std::swap(s.a[k], s.a[pivot]);
    std::swap(s.bX[k], s.bX[pivot]);
    std::swap(s.bY[k], s.bY[pivot]);
    for (size_t r = 0; r < size; ++r) {
      if (r == k) continue;
      const double multiple = s.a[r][k] / s.a[k][k];
      for (size_t j = k; j < size; ++j) s.a[r][j] -= multiple * s.a[k][j];
      s.bX[r] -= multiple * s.bX[k];
      s.bY[r] -= multiple * s.bY[k];
    }
  }
  for (size_t k = 0; k < size; ++k) {
    s.bX[k] /= s.a[k][k];
    s.bY[k] /= s.a[k][k];
  }
  return true;
}

bool internal::ReportNoFit() {
  return ORV_FAIL(
      ErrCorrupt,
      "Can't calculate coefficients for specified control points.  Control points may be colinear.");
}

bool WarpTransformer::InitializeOrder3(int order) {
  if (!internal::IsOrder(order)) return ORV_FAIL(ErrCorrupt, "Polynomial order invalid.");
  const bool bilinear = order == 0;
  const int n = internal::TermCount(order);
  const size_t terms = static_cast<size_t>(n);
  if (m_Def.m_Source.size() < terms) {
    return ORV_FAIL(ErrCorrupt, "Not enough control points for specified transform.");
  }
  FitSystem system = m_Def.m_Source.size() == terms
                         ? ExactSystem(m_Def.m_Source, m_Def.m_Destination, n, bilinear)
                         : NormalSystem(m_Def.m_Source, m_Def.m_Destination, n, bilinear);
  if (!internal::SolveFit(system, n)) {
    // Deliberate: two reports; with throwing on the first one is the one that is seen.
    ORV_FAIL(ErrCorrupt, "Matrix solution not possible.  Invalid coefficients.");
    return internal::ReportNoFit();
  }
  std::copy_n(system.bX.begin(), n, m_e.begin());
  std::copy_n(system.bY.begin(), n, m_n.begin());
  return true;
}

bool WarpTransformer::TransformOrder3(shr::Vec2d* points, size_t count, int order) {
  if (!points || count < 1) return ORV_FAIL(ErrCorrupt, "No points to transform.");
  if (!internal::IsOrder(order)) return ORV_FAIL(ErrCorrupt, "Polynomial order invalid.");
  switch (order) {
    case 0:
      Evaluate(points, count, &lanes::KernelTable::warpOrder0, m_e, m_n);
      break;
    case 1:
      Evaluate(points, count, &lanes::KernelTable::warpOrder1, m_e, m_n);
      break;
    case 2:
      Evaluate(points, count, &lanes::KernelTable::warpOrder2, m_e, m_n);
      break;
    case 3:
      Evaluate(points, count, &lanes::KernelTable::warpOrder3, m_e, m_n);
      break;
    default:  // -1: a sum of no terms
      for (size_t i = 0; i < count; ++i) {
        if (!internal::IsMarked(points[i])) points[i] = shr::Vec2d();
      }
      break;
  }
  return true;
}

}  // namespace orv
