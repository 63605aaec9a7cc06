// WarpFit.h: a warp fitted to control points, with what it leaves over.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/shared/Vec2d.h"
#include "orv/warp/WarpDef.h"

namespace orv {

/// A point of the source plane and where it belongs in the destination plane.
struct ControlPair {
  shr::Vec2d source;
  shr::Vec2d destination;
};

struct WarpFit {
  WarpDef definition;
  /// Of each pair: the distance between its destination and its fitted source, in the destination's unit.
  std::vector<double> residuals;
  double mean = 0.0;     ///< the mean of the distances, not a root mean square
  double maximum = 0.0;  ///< the largest of them
  size_t worst = 0;      ///< index of that pair, counted from 0; of equal ones the first
};

/// Fits a warp and measures it, by WarpDef and WarpTransformer as they are.
///
/// Equal pairs are taken as often as they are given.  Raised, unit "WarpFit"; pairs are counted from 1 in all texts:
/// - 1032 "The warp method has no control points: give its coefficients instead." for AffineWithCoefficients, and "No
///   such warp method." for others that there are not;
/// - 1032 "The warp method 'X' needs at least N control points; there are M.";
/// - 1032 "Control point N holds no coordinates." for the marker, a NaN or an infinity;
/// - 1032 "Control points N and M conflict: the same source point goes to two places." for the first such pair of
///   pairs; the displacement takes such points, for it only asks for their mean;
/// - 1026 "Control points A, B, C ... lie on one line: the warp method 'X' cannot be fitted to them." when all source
///   points do, to 1e-9 of their extent (the first ten are named), for the methods from AffinePolynomial on; and when
///   they are all one point for Helmert: "Control points ... are one point: ...";
/// - 1026 "The warp method 'X' cannot be fitted to these control points: ..." for what else WarpTransformer raises or
///   gives no numbers for.
ORV_API WarpFit ORVFitWarp(WarpMethod method, const std::vector<ControlPair>& pairs);

}  // namespace orv
