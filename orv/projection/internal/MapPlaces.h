// MapPlaces.h: whether two projections draw the same map around its middle.
#pragma once

#include <array>

#include "orv/shared/Vec2d.h"

namespace orv {

class ProjectionDef;

namespace internal {

/// The places of nine points within two and a half degrees of the middle of a projection's map.
///
/// The middle is where the projection's own centre lies: half-way between two points or parallels, else at the one
/// parallel or central latitude, on the central meridian; at most 85 degrees from the equator.
class MapPlaces {
 public:
  explicit MapPlaces(const ProjectionDef& projection);

  /// Largest distance between the places of one point in this projection and the other, in metres of this one's scale;
  /// infinite when only one of both has a place for a point, NaN when no point has one.  A projection that cannot be set up
  /// has no places.
  double DistanceTo(const ProjectionDef& other) const;

 private:
  using Sample = std::array<shr::Vec2d, 9>;
  static Sample Placed(const ProjectionDef& projection, Sample points);

  double m_Scale;
  Sample m_Points, m_Places;
};

}  // namespace internal
}  // namespace orv
