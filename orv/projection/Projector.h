// Projector.h: from geographic to projected coordinates and back, for one projection.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Vec2d.h"

namespace orv {

class ProjActor;

namespace internal {
struct ProjectorAccess;
}

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

  /// Back to the default-constructed state.
  void Flush();

  void DebugDump(std::string& text, size_t indentation) const;

 protected:
  void CopyAll(const Projector& other);

 private:
  friend struct internal::ProjectorAccess;

  bool CanTransform(const shr::Vec2d* points, size_t count) const;

  ProjectionDef m_Projection;
  ProjectionParameters m_Working;  ///< the definition's parameters with angles in radians
  bool m_bHadUnplottables = false;
  std::unique_ptr<ProjActor> m_pActor;
};

}  // namespace orv
