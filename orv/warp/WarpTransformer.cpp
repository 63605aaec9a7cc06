#include "orv/warp/WarpTransformer.h"

#include <algorithm>
#include <cmath>

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/NameTable.h"
#include "orv/shared/ImageRegistration.h"
#include "orv/warp/internal/WarpAccess.h"

ORV_UNIT("WarpTransformer")

namespace orv {

namespace {

constexpr const char* kNoContext = "Invalid or insufficiently initialized warping context.";

// What is said of each method whose transform fails without a report of its own.
constexpr internal::NameRow<WarpMethod> kTransformFailures[] = {
    {WarpMethodDisplacement, "Failure during offset/displacement coordinate transform."},
    {WarpMethodHelmert, "Failure during Helmert coordinate transform."},
    {WarpMethodAffinePolynomial, "Failure during affine coordinate transform."},
    {WarpMethodFirstOrderPolynomial, "Failure during first order polynomial coordinate transform."},
    {WarpMethodSecondOrderPolynomial, "Failure during second order polynomial coordinate transform."},
    {WarpMethodThirdOrderPolynomial, "Failure during third order polynomial coordinate transform."},
    {WarpMethodAffineWithCoefficients, "Failure during linear coordinate transform."},
    {WarpMethodThinPlateSpline, "Failure during coordinate transform."},
    {WarpMethodNaturalCubicSpline, "Failure during coordinate transform."},
    {WarpMethodMarcovSpline, "Failure during coordinate transform."},
    {WarpMethodExponentialSpline, "Failure during coordinate transform."},
    {WarpMethodRationalQuadraticSpline, "Failure during coordinate transform."},
    {WarpMethodInverseDistanceSquared, "Failure during coordinate transform."},
};

}  // namespace

bool internal::ReportTransformFailure(WarpMethod method) {
  const char* const message = NameOf(kTransformFailures, method);
  return ORV_FAIL(ErrCorrupt, "%s", message ? message : "Unrecognized warping method selected.");
}

WarpTransformer::WarpTransformer() = default;

WarpTransformer::WarpTransformer(const WarpDef& def) { SetSystem(&def); }

WarpTransformer::~WarpTransformer() = default;

void WarpTransformer::SetSystem(const WarpDef* def) {
  if (!def) {
    m_Def.Flush();
    return;
  }
  if (!def->Validate()) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  m_Def = *def;
  // Deliberate: a step that throws leaves the new definition; only one that fails quietly flushes it.
  if (!Calibrate()) {
    m_Def.Flush();
    ORV_FAIL(
        ErrCorrupt,
        "Coordinate warping calibration failed.  One or more control points may be colinear, or there may "
        "not be enough control points for the selected warping method.");
  }
}

void WarpTransformer::GetSystem(WarpDef& out) const { out = m_Def; }

bool WarpTransformer::Calibrate() {
  switch (m_Def.m_Method) {
    case WarpMethodDisplacement:
      return InitializeOffset();
    case WarpMethodHelmert:
      return InitializeHelmert();
    case WarpMethodAffinePolynomial:
      return InitializeOrder3(1);
    case WarpMethodFirstOrderPolynomial:
      return InitializeOrder3(0);
    case WarpMethodSecondOrderPolynomial:
      return InitializeOrder3(2);
    case WarpMethodThirdOrderPolynomial:
      return InitializeOrder3(3);
    case WarpMethodAffineWithCoefficients:
      return InitializeCoeff();
    default:
      return ExCalibrate();
  }
}

bool WarpTransformer::Transform(shr::Vec2d* points, size_t count) {
  switch (m_Def.m_Method) {
    case WarpMethodDisplacement:
      return TransformOffset(points, count);
    case WarpMethodHelmert:
      return TransformHelmert(points, count);
    case WarpMethodAffinePolynomial:
      return TransformOrder3(points, count, 1);
    case WarpMethodFirstOrderPolynomial:
      return TransformOrder3(points, count, 0);
    case WarpMethodSecondOrderPolynomial:
      return TransformOrder3(points, count, 2);
    case WarpMethodThirdOrderPolynomial:
      return TransformOrder3(points, count, 3);
    case WarpMethodAffineWithCoefficients:
      return TransformCoeff(points, count);
    default:
      return ExTransform(points, count);
  }
}

void WarpTransformer::TransformForward(shr::Vec2d* points, size_t count) {
  if (!m_Def.Validate()) {
    ORV_FAIL(ErrCorrupt, kNoContext);
    return;
  }
  if (!Transform(points, count)) internal::ReportTransformFailure(m_Def.m_Method);
}

void WarpTransformer::TransformForward(std::vector<shr::Vec2d>& points) {
  TransformForward(points.data(), points.size());
}

void WarpTransformer::ComputeError(double& meanError, std::vector<double>& residuals) {
  if (!m_Def.Validate()) {
    ORV_FAIL(ErrCorrupt, kNoContext);
    return;
  }
  residuals.clear();
  meanError = 0.0;
  std::vector<shr::Vec2d> found = m_Def.m_Source;
  TransformForward(found);
  // Only the lists of method 7 can differ in length.
  const size_t pairs = std::min(found.size(), m_Def.m_Destination.size());
  for (size_t i = 0; i < pairs; ++i) {
    const double dx = m_Def.m_Destination[i].x - found[i].x;
    const double dy = m_Def.m_Destination[i].y - found[i].y;
    const double distance = std::sqrt(dy * dy + dx * dx);
    residuals.push_back(distance);
    meanError += distance;
  }
  // Deliberate: the mean distance, not a root mean square; no guard against 0/0.
  meanError /= static_cast<double>(pairs);
}

void WarpTransformer::ComputeError(double* meanError, double* residuals, size_t maxResiduals) {
  double mean = 0.0;
  std::vector<double> distances;
  ComputeError(mean, distances);
  if (meanError) *meanError = mean;
  if (residuals) std::copy_n(distances.begin(), std::min(distances.size(), maxResiduals), residuals);
}

// ---- methods 8 to 13: the registration service -----------------------------------------------------------

bool WarpTransformer::ExCalibrate() {
  if (m_Def.m_Method < WarpMethodThinPlateSpline || m_Def.m_Method > WarpMethodInverseDistanceSquared) {
    return false;
  }
  static_assert(WarpMethodInverseDistanceSquared - WarpMethodThinPlateSpline ==
                shr::WarpingMethodInverseDistanceSquared);
  const auto method = static_cast<shr::WarpingMethod>(m_Def.m_Method - WarpMethodThinPlateSpline);
  m_WarpCtx = std::make_unique<shr::CImageRegistration>();
  shr::RPoints source;
  shr::RPoints destination;
  for (size_t i = 0; i < m_Def.m_Source.size(); ++i) {
    source.Append({m_Def.m_Source[i].x, m_Def.m_Source[i].y});
    destination.Append({m_Def.m_Destination[i].x, m_Def.m_Destination[i].y});
  }
  return m_WarpCtx->Calibrate(source, destination, method) == method;
}

bool WarpTransformer::ExTransform(shr::Vec2d* points, size_t count) {
  if (!points || count == 0 || !m_WarpCtx) return false;
  m_WarpCtx->Transform(&points->x, count);
  return true;
}

// ---- dump ------------------------------------------------------------------------------------------------

void WarpTransformer::DebugDump(std::string& out, size_t indent) const {
  internal::Dump dump(out, indent);
  dump.Line("WarpTransformer this=%p:", static_cast<const void*>(this)).Line("---m_Def:");
  m_Def.DebugDump(out, indent);
  dump.Line("---Other members:");
  if (m_Def.m_Method == WarpMethodDisplacement) {
    dump.Line("     m_ShiftX=%20.10f  m_ShiftY=%20.10f", m_ShiftX, m_ShiftY);
  } else if (m_Def.m_Method == WarpMethodHelmert) {
    dump.Line("     m_Helm_a = %20.10f", m_Helm_a)
        .Line("     m_Helm_b = %20.10f", m_Helm_b)
        .Line("     m_Helm_c = %20.10f", m_Helm_c)
        .Line("     m_Helm_d = %20.10f", m_Helm_d);
  } else {
    for (int i = 0; i < 10; ++i) {
      dump.Line("     m_e[%2d] = %20.10f  m_n[%2d] = %20.10f", i, m_e[static_cast<size_t>(i)], i,
                m_n[static_cast<size_t>(i)]);
    }
  }
  if (m_WarpCtx) dump.Line("     m_WarpCtx = %p", static_cast<const void*>(m_WarpCtx.get()));
}

}  // namespace orv
