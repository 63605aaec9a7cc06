#include "orv/projection/ProjMiller.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjMiller")

namespace orv {

namespace {

constexpr internal::EngineRow<Miller> kRow = {kUnit, &lanes::KernelTable::miller,
                                              internal::InsideWindowBelowPoles, internal::SplitAtWindow};

Miller Constants(const ProjectionParameters& p) { return {p.ellipsoid.GetMajorRadius(), p.Lon0}; }

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorMiller() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
