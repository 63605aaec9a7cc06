// ClipRim.h: the rim of a projection's usable area as curves in the plane of longitude and latitude.
//
// The rim's place is found with the inside test (ClipEdge.h).  Its shape is known here for one purpose: to say
// in which order points lie on it, which the inside test cannot.
#pragma once

#include <vector>

#include "orv/projection/internal/ClipEdge.h"

namespace orv::internal {

/// A place on the rim.
struct RimSpot {
  long piece = 0;  ///< which of the rim's curves: they repeat every 360 degrees of longitude
  double s = 0.0;  ///< the place on a curve, growing in one direction
};

/// The rim.  Each curve is
///
///   a rectangle  counterclockwise from its lower left corner, s = number of the side (0 to 3) and the part of
///                it that is passed: the windows, bands and the hemisphere about a point of the Equator.  A side
///                that the area does not have (no limit of latitude, for example) stands at the poles or
///                beyond the object, whichever is farther, and is not real;
///   a closed curve  s = azimuth about the centre of a cap, degrees from south over east, when neither pole
///                lies in the cap, or when both do and the curve bounds the cap that is left out;
///   an open curve  from west to east without an end, s = azimuth + 360 for each turn, when one pole lies in it.
///
/// Curves of a cap stand at every 360 degrees of longitude.
class ClipRim {
 public:
  /// @param data  where the object lies.
  ClipRim(const ClipArea& area, const ClipBox& data);

  /// There is none: every point is inside.
  bool IsNone() const { return m_Kind == Kind::None; }
  /// Whether a curve ends where it begins.
  bool IsClosed() const { return m_Kind != Kind::Open; }
  /// The length of a closed curve in s.
  double Turn() const { return m_Kind == Kind::Rectangle ? 4.0 : 360.0; }
  /// Whether what a closed curve surrounds is outside.
  bool IsHole() const { return m_bHole; }
  /// Whether a whole number in s is a corner.
  bool HasCorners() const { return m_Kind == Kind::Rectangle; }

  /// The distance in degrees to the nearest point of the rim that the map shows as a line: Cassini's rim passes
  /// two, 90 degrees to the east and west of the centre on the Equator. Infinite for the others.
  double ToSingular(const shr::Vec2d& at) const;

  /// The farthest that a trace may stray, degrees: 0.08 around the cap of 10 degrees that Azimuthal Equidistant
  /// leaves out, which its map draws out to the whole outer circle.
  double Fineness() const;
  /// The longest traced edge, degrees: 10 for Azimuthal Equidistant, for the same reason.
  double LongestEdge() const;

  /// The closed curves that lie within the box.
  std::vector<long> PiecesWithin(const ClipBox& box) const;

  /// The spot of a point on the rim or next to it.
  RimSpot Locate(const shr::Vec2d& at) const;

  /// The point of a spot, moved inward by a depth in degrees (not from sides that are not real).
  shr::Vec2d At(long piece, double s, double depth) const;
  /// A point of the spot that passes the inside test, at most 0.001 degree from the rim.
  shr::Vec2d InsideAt(long piece, double s) const;

 private:
  enum class Kind { None, Rectangle, Closed, Open };

  void SetShape(const ProjectionParameters& p, const ClipBox& data);
  void SetWindow(double west, double east, double south, double north, const ClipBox& data);
  void SetCap(double lon, double lat, double radius, const ClipBox& data);

  const ClipArea& m_Area;
  Kind m_Kind = Kind::None;
  bool m_bHole = false;
  bool m_bCassini = false;
  bool m_bEquidistant = false;  // Azimuthal Equidistant
  bool m_bRepeats = false;      // at every 360 degrees of longitude
  shr::Vec2d m_Low, m_High;     // rectangle
  bool m_bReal[4] = {};         // its sides: south, east, north, west
  double m_Lon = 0.0;           // cap: centre and radius
  double m_Lat = 0.0;
  double m_Radius = 0.0;
  bool m_bFromNorth = false;  // azimuths are measured from north: the cap holds the south pole
};

}  // namespace orv::internal
