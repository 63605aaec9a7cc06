// Marker.h: the unplottable marker.  Nothing else in the library knows its value (the lane frame has its own
// copy, checked against this one by a test).
#pragma once

#include "orv/shared/Vec2d.h"

namespace orv::internal {

/// The largest finite double: a coordinate that holds it has no value.
inline constexpr double kMarker = 1.7976931348623157e308;

inline bool IsMarked(const shr::Vec2d& point) { return point.x == kMarker || point.y == kMarker; }
inline void Mark(shr::Vec2d& point) { point = shr::Vec2d(kMarker, kMarker); }

}  // namespace orv::internal
