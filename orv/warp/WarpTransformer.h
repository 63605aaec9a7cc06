// WarpTransformer.h: evaluates a warp.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/shared/Vec2d.h"
#include "orv/warp/WarpDef.h"

namespace shr {
class CImageRegistration;
}

namespace orv {

namespace internal {
struct WarpAccess;
}

/// Fits a warp's parameters once and then maps arrays of points from its source plane to its destination
/// plane, in place.  There is no inverse.
///
/// A point that carries the unplottable marker in either coordinate is left untouched.  Distinct transformers
/// may be used on distinct threads.  Not copyable: make another one from the definition that GetSystem gives.
///
/// Failures carry the unit "WarpTransformer"; those of the methods' own steps "WarpTranOffset" (method 1),
/// "WarpTranHelmert" (2), "WarpTranOrder3" (3 to 6) and "WarpTranCoeff" (7).
class ORV_API WarpTransformer {
 public:
  /// Holds an empty definition (method 0), which transforms nothing.
  WarpTransformer();
  explicit WarpTransformer(const WarpDef& def);
  ~WarpTransformer();
  WarpTransformer(const WarpTransformer&) = delete;
  WarpTransformer& operator=(const WarpTransformer&) = delete;

  /// Takes a copy of the definition and fits it.  Null empties the definition held, without a report.
  ///
  /// A definition that fails Validate raises 1032 "Bad parameter to function call" (no full stop) and changes
  /// nothing.  A fit that cannot be made raises the step's own failure: for collinear points in methods 3 to
  /// 6 1026 "Matrix solution not possible.  Invalid coefficients."; the definition held is then the new one
  /// with stale parameters (deliberate: discard the transformer).  For methods 8 to 13 it is 1026 "Coordinate
  /// warping calibration failed.  One or more control points may be colinear, or there may not be enough
  /// control points for the selected warping method.", and the definition held is empty.  Method 2 over
  /// source points that are all equal succeeds and gives coordinates that are not finite (deliberate).
  void SetSystem(const WarpDef* def);
  /// Copies the definition held.
  void GetSystem(WarpDef& out) const;

  /// Maps points in place.  All failures are 1026: "Invalid or insufficiently initialized warping context."
  /// (nothing valid was set); null or no points: "No points to transform." for methods 1 to 7, "Failure
  /// during coordinate transform." for methods 8 to 13.
  void TransformForward(shr::Vec2d* points, size_t count);
  void TransformForward(std::vector<shr::Vec2d>& points);

  /// Distances between the destination control points and the transformed source control points, in the
  /// destination's unit, and their mean (deliberate: the mean distance, not a root mean square).
  ///
  /// Without source points (method 7 only) TransformForward's failure comes out.  Method 7 takes as many
  /// pairs as both lists hold; with source points but no destination points the mean is 0/0.
  void ComputeError(double& meanError, std::vector<double>& residuals);
  /// Either pointer may be null.  At most maxResiduals values are written.
  void ComputeError(double* meanError, double* residuals, size_t maxResiduals);

  void DebugDump(std::string& out, size_t indent) const;

 private:
  friend struct internal::WarpAccess;
  friend class WarpDef;  // takes the coefficients of an affine fit

  // The methods' steps.  Each returns true on success; those of methods 1 to 7 report what fails.  The lists
  // of m_Def are of one length (Validate has seen to it).
  bool Calibrate();
  bool Transform(shr::Vec2d* points, size_t count);
  bool InitializeOffset();
  bool TransformOffset(shr::Vec2d* points, size_t count);
  bool InitializeHelmert();
  bool TransformHelmert(shr::Vec2d* points, size_t count);
  bool InitializeOrder3(int order);
  bool TransformOrder3(shr::Vec2d* points, size_t count, int order);
  bool InitializeCoeff();
  bool TransformCoeff(shr::Vec2d* points, size_t count);
  bool ExCalibrate();
  bool ExTransform(shr::Vec2d* points, size_t count);

  // The parameters of one method are not cleared when another is set; only the present method's count.
  WarpDef m_Def;
  double m_ShiftX = 0.0;  // method 1
  double m_ShiftY = 0.0;
  double m_Helm_a = 0.0;  // method 2
  double m_Helm_b = 0.0;
  double m_Helm_c = 0.0;
  double m_Helm_d = 0.0;
  std::array<double, 10> m_e = {};  // methods 3 to 6: X is the sum of m_e[j - 1] times term j
  std::array<double, 10> m_n = {};  // and Y of m_n[j - 1]
  std::unique_ptr<shr::CImageRegistration> m_WarpCtx;  // methods 8 to 13; null until one is calibrated
};

}  // namespace orv
