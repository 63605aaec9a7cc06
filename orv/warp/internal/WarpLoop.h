// WarpLoop.h: the loop of all warps over a batch of points.
#pragma once

#include <cstddef>

#include "orv/core/internal/Marker.h"

namespace orv::internal {

/// Replaces each point that is not marked by map(x, y).
template <class Map>
void TransformUnmarked(shr::Vec2d* points, size_t count, const Map& map) {
  for (size_t i = 0; i < count; ++i) {
    if (!IsMarked(points[i])) points[i] = map(points[i].x, points[i].y);
  }
}

}  // namespace orv::internal
