// Method 1: the mean shift of the control points.

#include "orv/warp/WarpTransformer.h"

#include "orv/core/internal/Fail.h"
#include "orv/warp/WarpTranOffset.h"
#include "orv/warp/internal/WarpLoop.h"

ORV_UNIT("WarpTranOffset")

namespace orv {

bool WarpTransformer::InitializeOffset() {
  const std::vector<shr::Vec2d>& source = m_Def.m_Source;
  const std::vector<shr::Vec2d>& destination = m_Def.m_Destination;
  if (source.empty() || destination.empty()) {
    return ORV_FAIL(ErrBadParameter, "Offset transform requires at least one control point.");
  }
  double sumX = 0.0;
  double sumY = 0.0;
  for (size_t i = 0; i < source.size(); ++i) {
    sumX += destination[i].x - source[i].x;
    sumY += destination[i].y - source[i].y;
  }
  m_ShiftX = sumX / static_cast<double>(source.size());
  m_ShiftY = sumY / static_cast<double>(source.size());
  return true;
}

bool WarpTransformer::TransformOffset(shr::Vec2d* points, size_t count) {
  if (!points || count < 1) return ORV_FAIL(ErrCorrupt, "No points to transform.");
  internal::TransformUnmarked(points, count, &lanes::KernelTable::warpOffset, {m_ShiftX, m_ShiftY});
  return true;
}

}  // namespace orv
