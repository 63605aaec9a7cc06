#include "orv/shared/ImageRegistration.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include <Eigen/Cholesky>
#include <Eigen/Core>
#include <Eigen/QR>

#include "orv/lanes/Blocks.h"
#include "orv/lanes/Dispatch.h"
#include "orv/shared/RegistrationWarp.h"

namespace shr {
namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using orv::one::ToBox;

// Spread across the best line, relative to the spread along it.  Rounding of 2.2e-16 leaves 2.2e-6 relative
// there.
constexpr double kCollinear = 1e-10;
// Rounding of one given coordinate, relative to its magnitude: four units in the last place.
constexpr double kRounding = 4 * std::numeric_limits<double>::epsilon();
// Largest miss at a control point, relative to the destination box.
constexpr double kResidual = 1e-6;
// Pivots below this, relative to the largest, are rounding: about four units in the last place.
constexpr double kRankCut = 1e-15;
// Largest system of methods 0 to 4: 400 megabytes.
constexpr std::size_t kMaxSplinePoints = 5000;
// Largest system for the rank-revealing solver: some 6 seconds.
constexpr Index kMaxRankRevealing = 2000;

struct MethodRow {
  WarpingMethod method;
  double (*phi)(double r2);  // null: inverse distance squared
};

constexpr MethodRow kMethods[] = {
    {WarpingMethodThinPlateSpline, &orv::one::Phi<WarpingMethodThinPlateSpline>},
    {WarpingMethodNaturalCubicSpline, &orv::one::Phi<WarpingMethodNaturalCubicSpline>},
    {WarpingMethodMarcovSpline, &orv::one::Phi<WarpingMethodMarcovSpline>},
    {WarpingMethodExponentialSpline, &orv::one::Phi<WarpingMethodExponentialSpline>},
    {WarpingMethodRationalQuadraticSpline, &orv::one::Phi<WarpingMethodRationalQuadraticSpline>},
    {WarpingMethodInverseDistanceSquared, nullptr},
};

const MethodRow* FindMethod(WarpingMethod method) {
  for (const MethodRow& row : kMethods) {
    if (row.method == method) return &row;
  }
  return nullptr;
}

// One axis of a control points' box.
struct Axis : orv::RegistrationAxis {
  double rounding = 0;  // of the coordinates, in box units
};

// The axis of the values of one member of the points; false when a value or the extent is not finite.
bool MeasureAxis(const RPoints& points, double RPoint::*member, Axis& axis) {
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (std::size_t i = 0; i < points.Count(); ++i) {
    const double value = points[i].*member;
    if (!std::isfinite(value)) return false;
    low = std::min(low, value);
    high = std::max(high, value);
  }
  axis.origin = low;
  axis.extent = high - low;
  if (axis.extent > 0) axis.rounding = kRounding * (std::max(std::fabs(low), std::fabs(high)) / axis.extent);
  return std::isfinite(axis.extent);
}

// Two equal points, given as rows (u, v).
bool HasCoincident(const MatrixXd& boxed) {
  std::vector<std::pair<double, double>> sorted;
  for (Index i = 0; i < boxed.rows(); ++i) sorted.emplace_back(boxed(i, 0), boxed(i, 1));
  std::sort(sorted.begin(), sorted.end());
  return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
}

// R of a column-pivoted QR decomposition of the centred points: R00 is the larger of the spreads along u and
// v, R11 the spread of the other coordinate about its regression line.
bool IsCollinear(const MatrixXd& boxed, double tolerance) {
  const MatrixXd centred = boxed.rowwise() - boxed.colwise().mean();
  const Eigen::ColPivHouseholderQR<MatrixXd> qr(centred);
  const double along = std::fabs(qr.matrixQR()(0, 0));
  const double across = std::fabs(qr.matrixQR()(1, 1));
  return !(across > tolerance * along);
}

}  // namespace

struct CImageRegistration::Impl {
  const MethodRow* m_Method = nullptr;
  Axis m_SourceX = {}, m_SourceY = {};
  Axis m_TargetX = {}, m_TargetY = {};
  double m_ToleranceX = kResidual;  // largest miss at a control point, in box units
  double m_ToleranceY = kResidual;
  orv::RegistrationWarp m_Warp = {};
  std::vector<orv::RegistrationNode> m_Nodes;  // empty: affine

  bool Fit(const MatrixXd& boxed, const MatrixXd& target);
  bool FitWeights(const MatrixXd& boxed, const Eigen::HouseholderQR<MatrixXd>& qr, const MatrixXd& affine,
                  const MatrixXd& residual, const MatrixXd& target);
  bool Store(const MatrixXd& boxed, const MatrixXd& affine, const MatrixXd& weights, const MatrixXd& target);
  void Run(const orv::RegistrationWarp& warp, double* xy, std::size_t count) const;
};

void CImageRegistration::Impl::Run(const orv::RegistrationWarp& warp, double* xy, std::size_t count) const {
  orv::lanes::ForEachBlock(xy, count,
                           [&](const orv::lanes::KernelTable& kernels, double* block, std::size_t n) {
                             kernels.registration[m_Method->method](warp, block, n);
                           });
}

// Takes the solution (no weights: affine) and tells whether it meets all control points.
bool CImageRegistration::Impl::Store(const MatrixXd& boxed, const MatrixXd& affine, const MatrixXd& weights,
                                     const MatrixXd& target) {
  for (Index k = 0; k < 3; ++k) {
    m_Warp.a[k] = affine(k, 0);
    m_Warp.b[k] = affine(k, 1);
  }
  m_Nodes.clear();
  for (Index i = 0; i < weights.rows(); ++i) {
    m_Nodes.push_back({boxed(i, 0), boxed(i, 1), weights(i, 0), weights(i, 1)});
  }
  m_Warp.nodes = m_Nodes.data();
  m_Warp.count = m_Nodes.size();
  orv::RegistrationWarp inBoxes = m_Warp;
  inBoxes.sourceX = inBoxes.sourceY = inBoxes.targetX = inBoxes.targetY = {0, 1};
  std::vector<double> found;
  for (Index i = 0; i < boxed.rows(); ++i) found.insert(found.end(), {boxed(i, 0), boxed(i, 1)});
  Run(inBoxes, found.data(), found.size() / 2);
  for (Index i = 0; i < boxed.rows(); ++i) {
    const std::size_t at = 2 * static_cast<std::size_t>(i);
    // Written so that a NaN fails.
    if (!(std::fabs(found[at] - target(i, 0)) <= m_ToleranceX)) return false;
    if (!(std::fabs(found[at + 1] - target(i, 1)) <= m_ToleranceY)) return false;
  }
  return true;
}

// boxed: rows (u, v).  target: rows (X, Y) in units of the destination box.
bool CImageRegistration::Impl::Fit(const MatrixXd& boxed, const MatrixXd& target) {
  const Index n = boxed.rows();
  MatrixXd basis(n, 3);
  basis << MatrixXd::Ones(n, 1), boxed;
  const Eigen::HouseholderQR<MatrixXd> qr(basis);

  // 1. The affine least squares fit and its residuals.
  const MatrixXd affine = qr.solve(target);
  MatrixXd residual = target - basis * affine;

  // 2. Residuals within the rounding of the coordinates count as 0.
  const auto rounding = [&](const Axis& axis, Index k) {
    return axis.rounding + std::fabs(affine(1, k)) * m_SourceX.rounding +
           std::fabs(affine(2, k)) * m_SourceY.rounding;
  };
  const double roundings[] = {rounding(m_TargetX, 0), rounding(m_TargetY, 1)};
  m_ToleranceX = std::max(kResidual, roundings[0]);
  m_ToleranceY = std::max(kResidual, roundings[1]);
  for (Index k = 0; k < 2; ++k) {
    if (n == 3 || residual.col(k).cwiseAbs().maxCoeff() <= roundings[k]) residual.col(k).setZero();
  }
  if (residual.isZero(0)) return Store(boxed, affine, MatrixXd(0, 2), target);

  // 3. Carry the residuals.
  if (m_Method->phi) return FitWeights(boxed, qr, affine, residual, target);
  return Store(boxed, affine, residual, target);
}

// The null space method ([Wen05] for the conditions).  With [1 u v] = Q R, Q = [Q1 Q2], the side conditions
// say w = Q2 z.  Then (Q2' K Q2) z = Q2' e, where K_ij = phi(r_ij); for each phi here the matrix is positive
// definite on that space.  The affine part takes the rest: R a' = Q1' (e - K w).
bool CImageRegistration::Impl::FitWeights(const MatrixXd& boxed, const Eigen::HouseholderQR<MatrixXd>& qr,
                                          const MatrixXd& affine, const MatrixXd& residual,
                                          const MatrixXd& target) {
  const Index n = boxed.rows(), m = n - 3;
  MatrixXd kernel(n, n);
  for (Index j = 0; j < n; ++j) {
    for (Index i = 0; i <= j; ++i) {
      const double du = boxed(i, 0) - boxed(j, 0), dv = boxed(i, 1) - boxed(j, 1);
      kernel(i, j) = kernel(j, i) = m_Method->phi(du * du + dv * dv);
    }
  }
  kernel.applyOnTheLeft(qr.householderQ().adjoint());
  kernel.applyOnTheRight(qr.householderQ());
  const MatrixXd rotated = qr.householderQ().adjoint() * residual;

  const auto accept = [&](const MatrixXd& z) {
    MatrixXd weights = MatrixXd::Zero(n, 2);
    weights.bottomRows(m) = z;
    weights.applyOnTheLeft(qr.householderQ());
    const MatrixXd rest = rotated.topRows(3) - kernel.topRightCorner(3, m) * z;
    const MatrixXd change = qr.matrixQR().topRows(3).triangularView<Eigen::Upper>().solve(rest);
    return Store(boxed, affine + change, weights, target);
  };

  const Eigen::LLT<MatrixXd> cholesky(kernel.bottomRightCorner(m, m));
  if (cholesky.info() == Eigen::Success && accept(cholesky.solve(rotated.bottomRows(m)))) return true;

  // Numerically rank deficient: the smallest weights that the significant part of the matrix gives.  Meets
  // the control points when the data are smooth.
  if (n > kMaxRankRevealing) return false;
  Eigen::CompleteOrthogonalDecomposition<MatrixXd> orthogonal;
  orthogonal.setThreshold(kRankCut);
  orthogonal.compute(kernel.bottomRightCorner(m, m));
  return accept(orthogonal.solve(rotated.bottomRows(m)));
}

CImageRegistration::CImageRegistration() = default;
CImageRegistration::~CImageRegistration() = default;

WarpingMethod CImageRegistration::Calibrate(const RPoints& source, const RPoints& destination,
                                            WarpingMethod method) {
  m_pImpl.reset();
  const MethodRow* const row = FindMethod(method);
  const std::size_t count = source.Count();
  if (!row || count < 3 || count != destination.Count()) return WarpingMethodNone;
  if (row->phi && count > kMaxSplinePoints) return WarpingMethodNone;

  auto fit = std::make_unique<Impl>();
  fit->m_Method = row;
  if (!MeasureAxis(source, &RPoint::x, fit->m_SourceX) || !MeasureAxis(source, &RPoint::y, fit->m_SourceY) ||
      !MeasureAxis(destination, &RPoint::x, fit->m_TargetX) ||
      !MeasureAxis(destination, &RPoint::y, fit->m_TargetY)) {
    return WarpingMethodNone;
  }
  if (fit->m_SourceX.extent == 0 || fit->m_SourceY.extent == 0) return WarpingMethodNone;
  for (Axis* axis : {&fit->m_TargetX, &fit->m_TargetY}) {
    if (axis->extent == 0) axis->extent = 1;
  }

  const Index n = static_cast<Index>(count);
  MatrixXd boxed(n, 2), target(n, 2);
  for (Index i = 0; i < n; ++i) {
    const RPoint& from = source[static_cast<std::size_t>(i)];
    const RPoint& to = destination[static_cast<std::size_t>(i)];
    boxed.row(i) << ToBox(fit->m_SourceX, from.x), ToBox(fit->m_SourceY, from.y);
    target.row(i) << ToBox(fit->m_TargetX, to.x), ToBox(fit->m_TargetY, to.y);
  }
  fit->m_Warp.sourceX = fit->m_SourceX;
  fit->m_Warp.sourceY = fit->m_SourceY;
  fit->m_Warp.targetX = fit->m_TargetX;
  fit->m_Warp.targetY = fit->m_TargetY;
  if (HasCoincident(boxed)) return WarpingMethodNone;
  if (IsCollinear(boxed, std::max(kCollinear, fit->m_SourceX.rounding + fit->m_SourceY.rounding)))
    return WarpingMethodNone;
  if (!fit->Fit(boxed, target)) return WarpingMethodNone;

  m_pImpl = std::move(fit);
  return method;
}

RPoint CImageRegistration::Transform(const RPoint& point) const {
  double xy[] = {point.x, point.y};
  Transform(xy, 1);
  return {xy[0], xy[1]};
}

void CImageRegistration::Transform(double* xy, std::size_t count) const {
  if (m_pImpl) m_pImpl->Run(m_pImpl->m_Warp, xy, count);
}

}  // namespace shr
