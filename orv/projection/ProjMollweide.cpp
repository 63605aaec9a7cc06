#include "orv/projection/ProjMollweide.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjMollweide")

namespace orv {

namespace {

constexpr internal::EngineRow<Mollweide> kRow = {kUnit, &lanes::KernelTable::mollweide,
                                                 internal::InsideWindow, internal::SplitAtWindow};

Mollweide Constants(const ProjectionParameters& p) { return {p.ellipsoid.GetMajorRadius(), p.Lon0}; }

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorMollweide() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
