// WarpDef.h: one plane-to-plane warp, as it is stored and edited.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/shared/Vec2d.h"

namespace orv {

namespace internal {
struct BlockAccess;
}

/// How a warp maps its source plane to its destination plane.  The numbers are persistent.
enum WarpMethod : int {
  WarpMethodUnknown = 0,
  WarpMethodDisplacement = 1,            ///< the mean shift of the control points
  WarpMethodHelmert = 2,                 ///< scale, rotation and two shifts
  WarpMethodAffinePolynomial = 3,        ///< terms 1, x, y
  WarpMethodFirstOrderPolynomial = 4,    ///< terms 1, x, y, xy
  WarpMethodSecondOrderPolynomial = 5,   ///< terms to the second degree
  WarpMethodThirdOrderPolynomial = 6,    ///< terms to the third degree
  WarpMethodAffineWithCoefficients = 7,  ///< six coefficients instead of control points
  WarpMethodThinPlateSpline = 8,
  WarpMethodNaturalCubicSpline = 9,
  WarpMethodMarcovSpline = 10,  ///< deliberate: its name is written "Marcov Spline", with a c
  WarpMethodExponentialSpline = 11,
  WarpMethodRationalQuadraticSpline = 12,
  WarpMethodInverseDistanceSquared = 13
};

/// A warp: a method, two parallel lists of control points, and the six coefficients of method 7.  A copyable
/// value.
///
/// The source plane is mostly that of an image, in pixels; the destination plane is that of the coordinate
/// system.  Point i of the source list corresponds to point i of the destination list.  The lists may differ
/// in length while they are edited; Validate refuses that state.  WarpTransformer evaluates a warp.
///
/// Failures carry the unit "WarpDef", those of the three resizing operations the unit "WarpResize".  Where no
/// other text is named, the failure is 1032 "Bad parameter to function call.", and the object stays as it
/// was.
class ORV_API WarpDef {
 public:
  /// Method 0, no points, all coefficients 0.
  WarpDef();

  // ---- methods -------------------------------------------------------------------------------------------

  /// The name, or null for a number outside 0 to 13.
  static const char* MethodName(WarpMethod method);
  /// The method of that name, without regard to case; 0 for a null, empty or unknown text.
  static WarpMethod NameToMethod(const char* name);
  static WarpMethod NameToMethod(std::string& name);
  /// The least number of control points, or 0 for a number outside 0 to 13.
  static size_t RequiredControls(WarpMethod method);

  WarpMethod GetMethod() const;
  /// The stored method's name.
  const char* MethodName() const;
  /// A number outside 0 to 13 fails.
  void SetMethod(WarpMethod method);

  // ---- coefficients --------------------------------------------------------------------------------------

  /// For a source point (x, y): X = c0 x + c1 y + c2, Y = c3 x + c4 y + c5.
  void GetCoefficients(double& c0, double& c1, double& c2, double& c3, double& c4, double& c5) const;
  /// @param six  c0 to c5; a null pointer is ignored.
  void GetCoefficients(double* six) const;
  /// Deliberate: also sets the method to 7.
  void SetCoefficients(double c0, double c1, double c2, double c3, double c4, double c5);
  void SetCoefficients(double* six);

  // ---- control points ------------------------------------------------------------------------------------

  /// Appends; equal points are not looked for.
  void AddSourcePoint(const shr::Vec2d& point);
  void AddSourcePoint(double x, double y);
  void AddDestinationPoint(const shr::Vec2d& point);
  void AddDestinationPoint(double x, double y);
  /// Resizes both lists; new points are (0, 0).
  void SetNumControlPoints(size_t count);
  /// @param destination  false: the length of the source list, true: of the destination list.
  size_t NumControlPoints(bool destination) const;

  /// Index of the first point with exactly these coordinates, or -1.
  int FindSourcePoint(shr::Vec2d& point) const;
  int FindSourcePoint(double x, double y) const;
  int FindDestinationPoint(shr::Vec2d& point) const;
  int FindDestinationPoint(double x, double y) const;

  /// The point, or null for a bad index.  Deliberate: the source form does so without a report, the
  /// destination form fails.
  const shr::Vec2d* EnumSourcePoint(size_t index) const;
  const shr::Vec2d* EnumDestinationPoint(size_t index) const;
  /// Sets `out` to (0, 0) and then to the point; a bad index fails.
  bool EnumSourcePoint(size_t index, shr::Vec2d& out) const;
  bool EnumDestinationPoint(size_t index, shr::Vec2d& out) const;

  /// Overwrites a point; a bad index fails.
  bool ReplaceSourcePoint(size_t index, shr::Vec2d& point);
  bool ReplaceSourcePoint(size_t index, double x, double y);
  /// Deliberate: only this side refuses a point that another index already holds exactly, after the index
  /// test, with 1032 "Warp context can't have two identical control points.".  A point's own value passes.
  bool ReplaceDestinationPoint(size_t index, shr::Vec2d& point);
  bool ReplaceDestinationPoint(size_t index, double x, double y);

  // ---- the whole -----------------------------------------------------------------------------------------

  /// Back to the default-constructed state.
  void Flush();

  /// True when the methods are the same and all that the method uses agrees to less than 1e-9, absolute: the
  /// coefficients for method 7, the numbers of points and the points for all others.  NaN never agrees.
  bool Compare(const WarpDef& other) const;

  /// Whether a transformer can be fitted.  Never raises.  `message` is emptied first; the first failure wins:
  /// "Transform method not valid." (outside 1 to 13);
  /// method 7: "Coefficients not initialized (all zeroes)." (points are not looked at);
  /// others: "Source and destination control point counts don't match.", and "Not enough control points for
  /// specified transform method (have %d, need %d)\n." with the deliberate full stop behind the line feed.
  bool Validate() const;
  bool Validate(std::string& message) const;

  /// Turns a warp of method 7 into one of method 3 over the four corners of an image: (0, 0), (width, 0),
  /// (width, height), (0, height).  Former points are lost; the coefficients stay.
  ///
  /// @param width, height  pixels; a value below 1 counts as 100.
  /// Any other method fails.
  void CoefficientsToControls(int width, int height);
  /// Turns control points into the coefficients of their affine least squares fit (exact for 3 points), and
  /// the method into 7; the points are dropped.  The stored method only has to be a known one, not 7, and
  /// both lists must hold at least 3 points.  A failed fit is WarpTransformer's failure; the object is
  /// unchanged.
  void ControlsToCoefficients();
  /// Follows a resampling of the image: source x is scaled by newWidth / oldWidth, source y by newHeight /
  /// oldHeight.  Method 7 goes through the corners and back, to the rounding of the fit, and loses any points
  /// it carried.
  ///
  /// A size below 1 fails with 1032 "Bad parameter to function call.  Image dimensions must be positive.".
  void Resize(int oldWidth, int oldHeight, int newWidth, int newHeight);

  /// Appends the block "Georef": Method (s, when not 0), SrcControls and DestControls (f, x0, y0, x1, y1 ...,
  /// when not empty), Coeff (f, 6, for method 7).
  void EncodeToText(std::string& out) const;
  /// Reads the block that starts at *position (0 when null) and leaves *position behind its end.
  ///
  /// Deliberate: the definition is flushed once the block's head is accepted.  An unknown method name gives
  /// method 0, an odd count of coordinates drops the last one, repeated lists append, and "Coeff" leaves the
  /// method as "Method" says.  A block that cannot be read raises 1026 "Corrupt data encountered while
  /// decoding warp/georeference parameters." and leaves *position as it was; what was read so far stays.
  void DecodeFromText(const std::string& text, size_t* position);

  void DebugDump(std::string& out, size_t indent) const;

 private:
  friend struct internal::BlockAccess;
  friend class WarpTransformer;

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d);
  void DecodeBlock(const std::string& text, size_t* at);

  WarpMethod m_Method = WarpMethodUnknown;
  std::vector<shr::Vec2d> m_Source;
  std::vector<shr::Vec2d> m_Destination;
  double m_Coeff[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
};

}  // namespace orv
