// NewtonSteps.h: Newton's iteration in lanes, for the projections whose auxiliary angle has no closed form.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {
namespace ORV_ISA {

/// In the unit of the unknown, and relative to its start: a lane stops at its first correction that is no larger
/// than the sum of both.  The second leaves an error of its square, below round-off; it is for starts that are of
/// the order of the solution.
inline constexpr double kNewtonTolerance = 1e-12;
inline constexpr double kNewtonRelative = 1e-8;

inline constexpr int kNewtonSteps = 50;

/// x + correction(x), again and again, each lane until its own stop (the last correction is made); NaN for a
/// lane that takes more than kNewtonSteps steps.
template <class Correction>
inline Lanes Newton(Lanes x, double relative, Correction correction) {
  const Lanes stop = kNewtonTolerance + relative * abs(x);
  Mask active = x == x;
  for (int i = 0; i < kNewtonSteps && Any(active); ++i) {
    const Lanes d = correction(x);
    x = Select(active, x + d, x);
    active = active & (abs(d) > stop);
  }
  return Except(x, active, kNaN);
}

}  // namespace ORV_ISA
}  // namespace orv
