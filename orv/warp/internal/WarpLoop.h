// WarpLoop.h: a warp's kernel over a batch of points.
#pragma once

#include <cstddef>
#include <type_traits>

#include "orv/lanes/Blocks.h"
#include "orv/lanes/Dispatch.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

/// Replaces each point that is not marked by its image.
template <class W>
void TransformUnmarked(shr::Vec2d* points, size_t count, lanes::WarpKernel<W> lanes::KernelTable::*kernel,
                       const W& warp) {
  static_assert(std::is_standard_layout_v<shr::Vec2d> && sizeof(shr::Vec2d) == 2 * sizeof(double));
  lanes::ForEachBlock(&points->x, count, [&](const lanes::KernelTable& kernels, double* xy, size_t n) {
    (kernels.*kernel)(warp, xy, n);
  });
}

}  // namespace orv::internal
