#include "orv/projection/ProjRobinsonSterling.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjRobinsonSterling")

namespace orv {

namespace {

constexpr internal::EngineRow<RobinsonSterling> kRow = {kUnit, &lanes::KernelTable::robinsonSterling,
                                                        internal::InsideWindow, internal::SplitAtWindow};

bool SetUp(ProjectionParameters& radians, RobinsonSterling& c) {
  c.a = radians.ellipsoid.GetMajorRadius();
  c.lon0 = radians.Lon0;
  // Stirling's formula to the second difference; `before` continues the nodes across the Equator.
  const auto interpolate = [](const double* nodes, double before, double* z0, double* z1, double* z2) {
    for (int i = 0; i < kRobinsonIntervals; ++i) {
      const double last = i == 0 ? before : nodes[i - 1];
      z0[i] = nodes[i];
      z1[i] = (nodes[i + 1] - last) / 2.0;
      z2[i] = (nodes[i + 1] - 2.0 * nodes[i] + last) / 2.0;
    }
  };
  interpolate(kRobinsonLengthNodes, kRobinsonLengthNodes[1], c.x0, c.x1, c.x2);
  interpolate(kRobinsonDistanceNodes, -kRobinsonDistanceNodes[1], c.y0, c.y1, c.y2);
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorRobinsonSterling() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
