#include "orv/projection/ProjRobinson.h"

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjRobinson")

namespace orv {

namespace {

constexpr internal::EngineRow<Robinson> kRow = {
    kUnit, &lanes::KernelTable::robinson, internal::InsideGreenwichWindow, internal::SplitAtGreenwichWindow};

Robinson Constants(const ProjectionParameters& p) { return {p.ellipsoid.GetMajorRadius()}; }

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorRobinson() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
