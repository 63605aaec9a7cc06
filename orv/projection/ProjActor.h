// ProjActor.h: the face of a projection's engine.  (Library-internal.)
#pragma once

#include <cstddef>
#include <memory>

#include "orv/projection/ProjectionParameters.h"
#include "orv/shared/Vec2d.h"

namespace orv {

/// An engine: the mathematics of one projection method, with its own copy of the working parameters.
///
/// Working parameters are those of the definition with Lon0, Lon1, Lon2, Lat0, Lat1, Lat2 and Alpha in
/// radians. Everything else (degrees, false origin, scale, normalisation, detection of points without a
/// value) is the Projector's. The operations stand in the order of their slots.
class ProjActor {
 public:
  /// A copy with parameters and derived constants.
  virtual std::unique_ptr<ProjActor> Clone() const = 0;

  /// Does nothing; kept for its slot.
  virtual void Hook() {}

  /// Takes the working parameters and computes what follows from them; raises where they have no projection
  /// (1026, with the engine's own unit and text).  The base keeps the block only.
  virtual void SetParameters(const ProjectionParameters& radians);

  /// Whether a geographic point, in degrees, lies in the usable part of the projection.  A null point does
  /// not.
  ///
  /// @param degrees  the definition's parameters.
  virtual bool IsLatLonInside(const ProjectionParameters& degrees, const shr::Vec2d* lonlat) const = 0;

  /// Whether an object must be shifted because it crosses the longitude where the map is cut, and by how
  /// much.
  ///
  /// @param degrees  the definition's parameters.
  /// @param dx, dy   receive the shift in degrees; dy is always 0.
  virtual bool GetSplitOffset(const ProjectionParameters& degrees, const shr::Vec2d* pts, size_t n,
                              double* dx, double* dy) const = 0;

  /// Longitude and latitude in radians to x and y in the unit of the major radius, in place.
  ///
  /// A point with the marker in either coordinate stays; one that cannot be computed gets it in both.  No
  /// points raise 1026 "No points to transform." with the engine's unit.  False when the whole batch has
  /// failed.
  virtual bool Forward(shr::Vec2d* pts, size_t n) = 0;
  /// The reverse; the base has none and gives false.
  virtual bool Inverse(shr::Vec2d* pts, size_t n);

  virtual ~ProjActor();

 protected:
  ProjActor() = default;
  ProjActor(const ProjActor&) = default;
  ProjActor& operator=(const ProjActor&) = default;

  ProjectionParameters m_Parameters;  ///< the working parameters
};

/// A new engine of the method, without parameters yet; null for a method that has none.
std::unique_ptr<ProjActor> MakeProjActor(ProjectionMethod method);

}  // namespace orv
