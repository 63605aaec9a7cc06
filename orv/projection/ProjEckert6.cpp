#include "orv/projection/ProjEckert6.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjEckert6")

namespace orv {

namespace {

constexpr internal::EngineRow<Eckert6> kRow = {kUnit, &lanes::KernelTable::eckert6, internal::InsideWindow,
                                               internal::SplitAtWindow};

Eckert6 Constants(const ProjectionParameters& p) { return {p.ellipsoid.GetMajorRadius(), p.Lon0}; }

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorEckert6() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
