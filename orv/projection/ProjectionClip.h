// ProjectionClip.h: the callbacks that receive what clipping leaves.
//
// The operations are Projector::PreclipPolyline and Projector::PreclipPolygon.
#pragma once

#include <cstddef>

#include "orv/shared/Vec2d.h"

namespace orv {

/// Receives one polyline.
///
/// @param context  the caller's, passed through.
/// @param points   longitude and latitude in degrees; valid during the call only.
/// @return false ends the clipping, which then fails.
typedef bool (*ORVPolylineCallback)(void* context, size_t count, const shr::Vec2d* points);

/// Receives one polygon: its outer ring, then its holes.
///
/// @param pointsPerRing  the rings' numbers of points; the rings lie one behind the other in points.
/// @return false ends the clipping, which then fails.
typedef bool (*ORVPolygonCallback)(void* context, size_t ringCount, const size_t* pointsPerRing,
                                   const shr::Vec2d* points);

}  // namespace orv
