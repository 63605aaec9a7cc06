// WarpAccess.h: what tests need to reach of a warp transformer: its steps, and the reports that stand
// behind an earlier one of the same failure.
#pragma once

#include <array>
#include <cstddef>

#include "orv/warp/WarpTransformer.h"

namespace orv::internal {

/// Reports that the step of a method has failed to transform without saying why.  False.
///
/// Only the steps of methods 8 to 13 do so; for the others this is the answer with throwing off.
bool ReportTransformFailure(WarpMethod method);

/// The second report of a polynomial fit that has no solution; seen with throwing off only.  False.
bool ReportNoFit();

/// The private steps and parameters, for tests.
struct WarpAccess {
  static WarpDef& Def(WarpTransformer& t) { return t.m_Def; }
  static bool InitializeOffset(WarpTransformer& t) { return t.InitializeOffset(); }
  static bool InitializeHelmert(WarpTransformer& t) { return t.InitializeHelmert(); }
  static bool InitializeOrder3(WarpTransformer& t, int order) { return t.InitializeOrder3(order); }
  static bool InitializeCoeff(WarpTransformer& t) { return t.InitializeCoeff(); }
  static bool ExCalibrate(WarpTransformer& t) { return t.ExCalibrate(); }
  static bool TransformOrder3(WarpTransformer& t, shr::Vec2d* points, size_t count, int order) {
    return t.TransformOrder3(points, count, order);
  }
  static bool ExTransform(WarpTransformer& t, shr::Vec2d* points, size_t count) {
    return t.ExTransform(points, count);
  }
  static double ShiftX(const WarpTransformer& t) { return t.m_ShiftX; }
  static double ShiftY(const WarpTransformer& t) { return t.m_ShiftY; }
  static double HelmertA(const WarpTransformer& t) { return t.m_Helm_a; }
  static double HelmertB(const WarpTransformer& t) { return t.m_Helm_b; }
  static double HelmertC(const WarpTransformer& t) { return t.m_Helm_c; }
  static double HelmertD(const WarpTransformer& t) { return t.m_Helm_d; }
  static const std::array<double, 10>& E(const WarpTransformer& t) { return t.m_e; }
  static const std::array<double, 10>& N(const WarpTransformer& t) { return t.m_n; }
};

}  // namespace orv::internal
