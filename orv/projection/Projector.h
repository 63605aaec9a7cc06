// Projector.h: from geographic to projected coordinates and back, for one projection.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/projection/ProjectionClip.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Vec2d.h"

namespace orv {

class ProjActor;

namespace internal {
struct ProjectorAccess;
struct ProjectorClip;
}  // namespace internal

/// Projects batches of points in place.  Geographic points are longitude and latitude in degrees; projected
/// ones are x and y in the projected unit.
///
/// A point without a value carries the unplottable marker, 1.7976931348623157e308, in either coordinate.  A
/// point that cannot be projected becomes the marker in both; it never raises.  After a batch
/// CheckUnplottableResult tells whether it met or made any.  A point's result depends neither on its place in
/// the batch nor on the batch's size.
///
/// Forward, in this order: longitude = fmod(longitude, 360), which keeps its sign and is not brought into
/// -180 to 180 (deliberate); latitude = fmod(latitude, 180), beyond a pole folded back on the same meridian
/// (100 is 80); the engine; x + xOrg, y + yOrg; and the result times Scale (deliberate: the false origin is
/// scaled too).  The inverse undoes this in reverse order and normalises its result in the same way.
///
/// Failures carry the unit "Projector" and leave the batch partly transformed.  Where the host has unmasked a
/// floating-point trap (divide by zero, overflow, underflow, denormal operand), one that an engine meets
/// fails the batch, and the host gets back its environment with its status cleared and these four unmasked.
/// Merely marked points meet none.
///
/// Distinct objects may be used on distinct threads.
class ORV_API Projector {
 public:
  /// No projection is set.
  Projector();
  /// The same and then SetSystem(&def).
  explicit Projector(const ProjectionDef& def);
  Projector(const Projector& other);
  Projector& operator=(const Projector& other);
  ~Projector();

  /// Takes a copy of the definition and makes its engine; null takes it away.
  ///
  /// The old engine is gone even where this fails.  Raised: 1032 "Invalid projection specified." (the
  /// definition's check fails), 1032 "Transform not possible with unspecified projection." (method Other);
  /// these two keep the old definition; 1026 "Unknown projection method." (Unprojected too), and what the
  /// engine's set-up raises.
  void SetSystem(const ProjectionDef* def);
  /// The definition as it was given.
  void GetSystem(ProjectionDef& out) const;

  /// Degrees to projected coordinates, in place.  Raised: 1032 "Nothing to transform." (no points), 1026
  /// "Projection not initialized." (method Unknown), 1026 "Transform not initialized." (no engine), 1026
  /// "Projection failure." (the engine has failed as a whole or met an unmasked trap).
  void TransformForward(shr::Vec2d* points, size_t count);
  void TransformForward(std::vector<shr::Vec2d>& points);
  /// Projected coordinates to degrees; the same failures.
  void TransformInverse(shr::Vec2d* points, size_t count);
  void TransformInverse(std::vector<shr::Vec2d>& points);

  /// Whether the last batch met or made a point without a value.
  bool CheckUnplottableResult() const;

  /// Whether a geographic point lies in the usable part of the projection; false for a null point and without
  /// an engine. Deliberate: the longitude is taken as it is, not normalised.
  bool LatLonInProjection(const shr::Vec2d& point) const;
  bool LatLonInProjection(const shr::Vec2d* point) const;

  /// Whether an object that crosses the longitude where the map is cut must be shifted, and by how many
  /// degrees; false without an engine, which writes nothing.
  bool OffsetSplitObject(const shr::Vec2d* points, size_t count, double* dx, double* dy);

  /// Cuts a polyline (degrees) down to the usable part of the projection and hands over each visible part;
  /// projects nothing.  One wholly inside comes once, unchanged.
  ///
  /// A crossing is found to 0.001 degree, on the inside.  Deliberate: an edge with both ends outside is
  /// outside, whatever lies between.  When OffsetSplitObject has a shift for the polyline, the shifted copy is
  /// clipped as well, in addition.  Without an engine there is no call.
  ///
  /// Raised, with the unit "ProjectionClip": 1026 "Not enough points for polyline." (fewer than 2, null points
  /// or a null callback); 1026 "Failed clipping polyline." and for the copy 1026 "Failed clipping adjusted
  /// polyline." (the callback has said no, or an edge that crosses has an infinite or NaN coordinate).  What
  /// has been handed over stays so.  1026 "Out of memory." has the unit "ProjCSegList".
  void PreclipPolyline(void* context, size_t n, const shr::Vec2d* points, ORVPolylineCallback callback);

  /// The same for a polygon: rings of degrees, one behind the other, read under the even-odd rule; a ring may
  /// repeat its first point at its end, and then its pieces do.
  ///
  /// Each connected piece comes in one call: its outer ring, then its holes, orientation kept.  A polygon
  /// wholly inside comes in one call, its rings unchanged; one that contains the whole usable area yields the
  /// area's own rim.  Rings of fewer than three edges never come.  The rim between two crossings is traced with
  /// five probes, which stand in the ring wherever they lie between the two on the rim.  More points come between
  /// them only where a chord would stray from the rim by more than 2 degrees (0.08 around the cap that Azimuthal
  /// Equidistant leaves out, whose edges are at most 10 degrees long; and no edge is longer than its distance to
  /// the two points that Cassini shows as lines), or would cut off or pass by a part of the polygon; a gap whose
  /// probes lie elsewhere is halved until they do not.  The second callback receives what is to be
  /// stroked: the visible part of each ring, without traced rim.  When a ring has a shift the shifted polygon
  /// is clipped as well, in addition; the first ring that has one decides.
  ///
  /// Raised, with the unit "ProjectionClip": 1032 "Bad parameter to function call." (no rings, null counts,
  /// either callback null); 1026 "Bad parameters to internal function call." (null points, or a ring of fewer
  /// than 2); 1032 "Failed clipping polygon." and for the copy 1032 "Failed clipping adjusted polygon."
  /// (deliberate: not the 1026 of the polylines).
  void PreclipPolygon(void* context, size_t ringCount, const size_t* pointsPerRing, const shr::Vec2d* points,
                      ORVPolygonCallback polygonCallback, ORVPolylineCallback polylineCallback);

  /// Back to the default-constructed state.
  void Flush();

  void DebugDump(std::string& text, size_t indentation) const;

 protected:
  void CopyAll(const Projector& other);

 private:
  friend struct internal::ProjectorAccess;
  friend struct internal::ProjectorClip;

  bool CanTransform(const shr::Vec2d* points, size_t count) const;

  ProjectionDef m_Projection;
  ProjectionParameters m_Working;  ///< the definition's parameters with angles in radians
  bool m_bHadUnplottables = false;
  std::unique_ptr<ProjActor> m_pActor;
};

}  // namespace orv
