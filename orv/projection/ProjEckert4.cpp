#include "orv/projection/ProjEckert4.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjEckert4")

namespace orv {

namespace {

constexpr internal::EngineRow<Eckert4> kRow = {kUnit, &lanes::KernelTable::eckert4, internal::InsideWindow,
                                               internal::SplitAtWindow};

Eckert4 Constants(const ProjectionParameters& p) { return {p.ellipsoid.GetMajorRadius(), p.Lon0}; }

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorEckert4() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
