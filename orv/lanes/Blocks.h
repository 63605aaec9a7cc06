// Blocks of points for the passes: small enough for the first-level cache, and of whole groups.
#pragma once

#include <cstddef>

#include "orv/lanes/Dispatch.h"

namespace orv::lanes {

inline constexpr std::size_t kBlockPoints = 512;  ///< points in a block: 8 KB
inline constexpr std::size_t kMostLanes = 8;      ///< a multiple of every set's lanes

/// Calls f(double* xy, std::size_t count) on block after block of the n points, in order.
///
/// count is a multiple of `lanes` (1, 2, 4 or 8), so that no pass meets a partial group.  The last points,
/// fewer than `lanes`, are padded once: a copy on the stack, filled up with copies of its own last point, is
/// given to f as a block of its own, and the real points are copied back.  f need not tell padding from
/// points: a flag that it takes from a padded block is the flag of the real points, since padding repeats one
/// of them. An exception out of f passes through; the padded points are then not copied back.
template <class F>
void ForEachBlock(double* xy, std::size_t n, std::size_t lanes, F f) {
  const std::size_t whole = n - n % lanes;
  for (std::size_t i = 0; i < whole; i += kBlockPoints) {
    f(xy + 2 * i, whole - i < kBlockPoints ? whole - i : kBlockPoints);
  }
  const std::size_t rest = n - whole;
  if (rest == 0) return;
  double* const tail = xy + 2 * whole;
  double padded[2 * kMostLanes];
  for (std::size_t i = 0; i < lanes; ++i) {
    const std::size_t from = i < rest ? i : rest - 1;
    padded[2 * i] = tail[2 * from];
    padded[2 * i + 1] = tail[2 * from + 1];
  }
  f(static_cast<double*>(padded), lanes);
  for (std::size_t i = 0; i < 2 * rest; ++i) tail[i] = padded[i];
}

/// The same with the lanes of Kernels().
template <class F>
void ForEachBlock(double* xy, std::size_t n, F f) {
  ForEachBlock(xy, n, Kernels().lanes, f);
}

}  // namespace orv::lanes
