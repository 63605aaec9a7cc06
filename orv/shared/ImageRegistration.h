// ImageRegistration.h: smooth plane-to-plane warps that pass through every control point.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "orv/core/Export.h"

namespace shr {

/// The registration methods.  The numbers are persistent.
///
/// r is the distance to a control point in box units (see CImageRegistration).  Sources: [Duc77] for r^2 ln r
/// and r^3, [Wen05] for the positive definite phi of methods 2, 3 and 4 and for the side conditions, [She68]
/// for method 5.
enum WarpingMethod : int {
  WarpingMethodThinPlateSpline = 0,          ///< phi(r) = r^2 ln r, phi(0) = 0; affine part
  WarpingMethodNaturalCubicSpline = 1,       ///< phi(r) = r^3; affine part
  WarpingMethodMarcovSpline = 2,             ///< phi(r) = exp(-r); affine part.  Deliberate: "Marcov" with c
  WarpingMethodExponentialSpline = 3,        ///< phi(r) = exp(-r^2); affine part
  WarpingMethodRationalQuadraticSpline = 4,  ///< phi(r) = 1 / (1 + r^2); affine part
  WarpingMethodInverseDistanceSquared = 5,   ///< affine least squares fit, its residuals weighted by 1 / r^2
  WarpingMethodNone = -1                     ///< not calibrated
};

/// A point of the plane, in any unit.
struct RPoint {
  double x;
  double y;
};

/// A growable list of points.  Indices are 0 to Count() - 1 and are not checked.
class RPoints {
 public:
  void Append(const RPoint& point) { m_Points.push_back(point); }
  std::size_t Count() const { return m_Points.size(); }
  const RPoint& operator[](std::size_t index) const { return m_Points[index]; }
  RPoint& operator[](std::size_t index) { return m_Points[index]; }
  void Clear() { m_Points.clear(); }

 private:
  std::vector<RPoint> m_Points;
};

/// An exact interpolant of control point pairs: source (x, y) to destination (X, Y).
///
/// Box units.  The source is mapped to the unit box of the source control points, axis by axis:
/// u = (x - xMin) / (xMax - xMin), v = (y - yMin) / (yMax - yMin), r^2 = du^2 + dv^2.  Each axis has its own
/// scale (deliberate): a new origin, unit or direction of either source axis then changes nothing, and an
/// image that is resampled to another width and height keeps its warp.  The price is that a rotation of the
/// source plane gives a (slightly) different warp, as it gives a different box.  The destination is mapped to
/// its own box the same way, for the rounding only: X and Y are separate interpolants, linear in the
/// destination.  An axis on which all destination values are equal has extent 1.
///
/// Methods 0 to 4.  X(u, v) = a0 + a1 u + a2 v + sum of w_i phi(r_i) over the control points i, with the side
/// conditions sum w_i = sum w_i u_i = sum w_i v_i = 0, and X(u_i, v_i) = X_i.
///
/// Method 5.  X(u, v) = A(u, v) + sum(e_i / r_i^2) / sum(1 / r_i^2), where A is the affine least squares fit
/// and e_i = X_i - A(u_i, v_i); at a control point itself, where r_i = 0, X = A + e_i.
///
/// All methods give back an affine map everywhere when the control points lie on one: residuals of the affine
/// least squares fit that are within the rounding of the coordinates (4 units in the last place) count as 0.
/// Three control points always give an affine map.
///
/// Distinct objects may be used on distinct threads; so may Transform on one calibrated object.
class ORV_API CImageRegistration {
 public:
  /// Not calibrated.
  CImageRegistration();
  ~CImageRegistration();
  CImageRegistration(const CImageRegistration&) = delete;
  CImageRegistration& operator=(const CImageRegistration&) = delete;

  /// Fits the method to the pairs (source[i], destination[i]), and replaces any former calibration.
  ///
  /// Returns the method, or WarpingMethodNone when it fails.  The object is then not calibrated, even if it
  /// was before.  Never raises an ORV error.  It fails when
  /// - the method is not one of 0 to 5;
  /// - the counts differ, or are less than 3;
  /// - a coordinate is not finite, or the extent of a box overflows;
  /// - two source points are equal: exactly, or after the mapping to the box (about 1e-16 of the box);
  /// - all source points are on one line: an axis of the source box has no extent, or the spread of one box
  ///   coordinate about its regression line on the other is at most 1e-10 of the spread of that other (the
  ///   diagonal of a column-pivoted QR decomposition).  Across such a line fewer than six digits could be
  ///   found.  Where the rounding of the source coordinates is coarser the limit is that rounding: about
  ///   1e-15 times magnitude over extent, which is above 1e-10 for coordinates of 1e5 boxes;
  /// - the fit misses a control point by more than 1e-6 of the destination box (a thousandth of a pixel of an
  ///   image 1000 pixels wide), or than the rounding of the coordinates where that is coarser.  It happens
  ///   to methods 3 and 4 with many points and rough data: their phi is so smooth that the weights outgrow
  ///   double precision.  Displacements that differ from point to point at random by a tenth of the box are
  ///   met at some 20 points by method 3, some 40 by method 4, some 1000 by method 1, and thousands by the
  ///   others.  Displacements that change smoothly are met at up to 2000 points by all; above that the solver
  ///   for numerically rank deficient systems is not tried, and methods 3 and 4 mostly fail;
  /// - methods 0 to 4: there are more than 5000 points.  Memory is about 24 bytes times the square of the
  /// count.
  ///
  /// Destination points may be equal, or lie on one line.
  WarpingMethod Calibrate(const RPoints& source, const RPoints& destination, WarpingMethod method);

  /// The image of a source point; the point itself, unchanged, when the object is not calibrated.
  ///
  /// Outside the box the map extrapolates.  Points so far off that r^2 overflows (beyond 1e154 boxes), and
  /// points that are not finite, give coordinates that need not be finite.  A point with the largest finite double
  /// in either coordinate, which stands for no value, comes back unchanged.  The same bits on every processor, for
  /// the same calibration.  Never raises.
  RPoint Transform(const RPoint& point) const;
  /// Replaces points, x and y in turns, by their images.  The bits of one by one.
  void Transform(double* xy, std::size_t count) const;

 private:
  struct Impl;
  std::unique_ptr<const Impl> m_pImpl;  // null: not calibrated
};

}  // namespace shr
