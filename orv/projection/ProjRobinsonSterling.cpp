#include "orv/projection/ProjRobinsonSterling.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjRobinsonSterling")

namespace orv {

namespace {

constexpr internal::EngineRow<RobinsonSterling> kRow = {kUnit, &lanes::KernelTable::robinsonSterling,
                                                        internal::InsideWindow, internal::SplitAtWindow};

RobinsonSterling Constants(const ProjectionParameters& p) { return {p.ellipsoid.GetMajorRadius(), p.Lon0}; }

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorRobinsonSterling() {
  return MakePlainEngine(kRow, &Constants);
}

}  // namespace orv
