#include "orv/projection/ProjectionClip.h"

#include <vector>

#include "orv/core/internal/Fail.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/Projector.h"
#include "orv/projection/internal/ClipPolygon.h"

ORV_UNIT("ProjectionClip")

namespace orv {

namespace {

using internal::ClipArea;
using internal::ClipOptions;
using internal::ClipRing;

std::vector<shr::Vec2d> Moved(const shr::Vec2d* points, size_t count, double dx, double dy) {
  std::vector<shr::Vec2d> moved;
  moved.reserve(count);
  for (size_t i = 0; i < count; ++i) moved.emplace_back(points[i].x + dx, points[i].y + dy);
  return moved;
}

bool LocalPreclipPolyline(const ClipArea& area, void* context, size_t n, const shr::Vec2d* points,
                          ORVPolylineCallback callback) {
  return internal::ClipPolyline(area, n, points, context, callback);
}

// Fills the rings from the shared array; a bad one raises.
bool SplitRings(size_t ringCount, const size_t* pointsPerRing, const shr::Vec2d* points,
                std::vector<ClipRing>& rings) {
  rings.clear();
  size_t at = 0;
  for (size_t i = 0; i < ringCount; ++i) {
    if (!points || pointsPerRing[i] < 2) {
      return ORV_FAIL(ErrCorrupt, "Bad parameters to internal function call.");
    }
    rings.push_back({points + at, pointsPerRing[i]});
    at += pointsPerRing[i];
  }
  return true;
}

bool LocalPreclipPolygon(const ClipArea& area, const ClipOptions& options, void* context, size_t ringCount,
                         const size_t* pointsPerRing, const shr::Vec2d* points, ORVPolygonCallback onPolygon,
                         ORVPolylineCallback onOutline) {
  std::vector<ClipRing> rings;
  if (!SplitRings(ringCount, pointsPerRing, points, rings)) return false;
  return internal::ClipPolygon(area, options, rings, context, onPolygon, onOutline);
}

}  // namespace

void Projector::PreclipPolyline(void* context, size_t n, const shr::Vec2d* points,
                                ORVPolylineCallback callback) {
  if (n < 2 || !points || !callback) {
    ORV_FAIL(ErrCorrupt, "Not enough points for polyline.");
    return;
  }
  const ClipArea area(m_pActor.get(), *m_Projection.GetParameters());
  if (!LocalPreclipPolyline(area, context, n, points, callback)) {
    ORV_FAIL(ErrCorrupt, "Failed clipping polyline.");
    return;
  }
  double dx = 0.0, dy = 0.0;
  if (!OffsetSplitObject(points, n, &dx, &dy)) return;
  const std::vector<shr::Vec2d> moved = Moved(points, n, dx, dy);
  if (!LocalPreclipPolyline(area, context, n, moved.data(), callback)) {
    ORV_FAIL(ErrCorrupt, "Failed clipping adjusted polyline.");
  }
}

void Projector::PreclipPolygon(void* context, size_t ringCount, const size_t* pointsPerRing,
                               const shr::Vec2d* points, ORVPolygonCallback polygonCallback,
                               ORVPolylineCallback polylineCallback) {
  internal::ProjectorClip::Polygon(*this, internal::kFiveProbes, context, ringCount, pointsPerRing, points,
                                   polygonCallback, polylineCallback);
}

namespace internal {

bool ProjectorClip::BoxPolyline(const ClipBox& window, void* context, size_t n, const shr::Vec2d* points,
                                ORVPolylineCallback callback) {
  return ClipPolyline(ClipArea(window), n, points, context, callback);
}

bool ProjectorClip::BoxPolygon(const ClipBox& window, const std::vector<ClipRing>& rings, void* context,
                               ORVPolygonCallback onPolygon, ORVPolylineCallback onOutline) {
  return ClipPolygon(ClipArea(window), kRefined, rings, context, onPolygon, onOutline);
}

void ProjectorClip::Polygon(Projector& projector, const ClipOptions& options, void* context, size_t ringCount,
                            const size_t* pointsPerRing, const shr::Vec2d* points,
                            ORVPolygonCallback onPolygon, ORVPolylineCallback onOutline) {
  if (ringCount == 0 || !pointsPerRing || !onPolygon || !onOutline) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return;
  }
  const ClipArea area(projector.m_pActor.get(), *projector.m_Projection.GetParameters());
  if (!LocalPreclipPolygon(area, options, context, ringCount, pointsPerRing, points, onPolygon, onOutline)) {
    ORV_FAIL(ErrBadParameter, "Failed clipping polygon.");
    return;
  }
  size_t at = 0, count = 0;
  for (size_t i = 0; i < ringCount; ++i) count += pointsPerRing[i];
  for (size_t i = 0; i < ringCount; at += pointsPerRing[i], ++i) {
    double dx = 0.0, dy = 0.0;
    if (!projector.OffsetSplitObject(points + at, pointsPerRing[i], &dx, &dy)) continue;
    const std::vector<shr::Vec2d> moved = Moved(points, count, dx, dy);
    if (!LocalPreclipPolygon(area, options, context, ringCount, pointsPerRing, moved.data(), onPolygon,
                             onOutline)) {
      ORV_FAIL(ErrBadParameter, "Failed clipping adjusted polygon.");
    }
    return;
  }
}

}  // namespace internal

}  // namespace orv
