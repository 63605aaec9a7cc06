// MeridianReach.h: how far the series of the Transverse Mercator reach.
#pragma once

#include <cstddef>

#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

/// Tells points that lie more than 10 degrees from the meridian of a Transverse Mercator or UTM of an ellipsoid.
/// Other projections, and these on a sphere, where they are no series, have no such points.
class MeridianReach {
 public:
  /// Nothing is far.
  MeridianReach() = default;
  explicit MeridianReach(const ProjectionDef& projection);

  /// Whether anything can be far.
  bool IsLimited() const { return m_bLimited; }

  /// Points with the marker are not far.  Both set the flag of each far point, leave those of others, and answer
  /// whether any was set.
  ///
  /// @param points  longitude and latitude, in degrees, in front of the forward projection.
  bool FlagFarForward(const shr::Vec2d* points, size_t count, unsigned char* flags) const;
  /// @param points  projected ones, in front of the inverse projection.
  bool FlagFarInverse(const shr::Vec2d* points, size_t count, unsigned char* flags) const;

 private:
  bool IsFarForward(const shr::Vec2d& point) const;
  bool IsFarInverse(const shr::Vec2d& point) const;

  bool m_bLimited = false;
  double m_Lon0 = 0.0;     // degrees
  double m_X0 = 0.0;       // of the meridian, projected unit
  double m_Y0 = 0.0;       // of the Equator on it
  double m_PerUnit = 0.0;  // radians on the sphere for a projected unit
};

}  // namespace orv::internal
