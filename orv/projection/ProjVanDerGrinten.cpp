#include "orv/projection/ProjVanDerGrinten.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjVanDerGrinten")

namespace orv {

namespace {

constexpr internal::EngineRow<VanDerGrinten> kRow = {kUnit, &lanes::KernelTable::vanDerGrinten,
                                                     internal::InsideWindow, internal::SplitAtWindow};

VanDerGrinten Constants(const ProjectionParameters& p) { return {p.ellipsoid.GetMajorRadius(), p.Lon0}; }

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorVanDerGrinten() {
  return MakePlainEngine(kRow, &Constants);
}

}  // namespace orv
