// Blocks of points for the passes: small enough for the first-level cache, and of whole groups.
#pragma once

#include <cstddef>

#include "orv/lanes/Dispatch.h"

namespace orv::lanes {

inline constexpr std::size_t kBlockPoints = 512;  ///< points in a block: 8 KB
inline constexpr std::size_t kMostLanes = 16;     ///< a multiple of every set's lanes

/// Calls f(const KernelTable& kernels, double* xy, std::size_t count) on block after block of the n points,
/// in order.
///
/// Whole groups of `best` come first, with that set.  The last points, fewer than its lanes, are a block of
/// their own with the set fit(their number).  count is a multiple of the set's lanes, so that no pass meets a
/// partial group: where the last points are not, a copy on the stack, filled up with copies of its own last
/// point, is given to f, and the real points are copied back.  f need not tell padding from points: a flag
/// that it takes from a padded block is the flag of the real points, since padding repeats one of them. An
/// exception out of f passes through; the padded points are then not copied back.
template <class Fit, class F>
void ForEachBlock(double* xy, std::size_t n, const KernelTable& best, Fit fit, F f) {
  // Lanes are a power of two: a remainder by division would take a fifth of a call of one point.
  const std::size_t rest = n & (best.lanes - 1), whole = n - rest;
  for (std::size_t i = 0; i < whole; i += kBlockPoints) {
    f(best, xy + 2 * i, whole - i < kBlockPoints ? whole - i : kBlockPoints);
  }
  if (rest == 0) return;
  const KernelTable& few = fit(rest);
  double* const tail = xy + 2 * whole;
  const std::size_t missing = (0 - rest) & (few.lanes - 1);
  if (missing == 0) return f(few, tail, rest);
  double padded[2 * kMostLanes];
  for (std::size_t i = 0; i < rest + missing; ++i) {
    const std::size_t from = i < rest ? i : rest - 1;
    padded[2 * i] = tail[2 * from];
    padded[2 * i + 1] = tail[2 * from + 1];
  }
  f(few, static_cast<double*>(padded), rest + missing);
  for (std::size_t i = 0; i < 2 * rest; ++i) tail[i] = padded[i];
}

/// The same with Kernels() and KernelsFor().
template <class F>
void ForEachBlock(double* xy, std::size_t n, F f) {
  ForEachBlock(xy, n, Kernels(), KernelsFor, f);
}

}  // namespace orv::lanes
