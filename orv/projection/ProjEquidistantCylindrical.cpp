#include "orv/projection/ProjEquidistantCylindrical.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjEquidistantCylindrical")

namespace orv {

namespace {

constexpr internal::EngineRow<EquidistantCylindrical> kRow = {
    kUnit, &lanes::KernelTable::equidistantCylindrical, internal::InsideEverywhere, internal::SplitNowhere};

// A double's cosine of 90 degrees is 6.1e-17: below this it counts as exactly 0.
constexpr double kNoCosine = 1e-15;

EquidistantCylindrical Constants(const ProjectionParameters& p) {
  const double cosLat1 = std::cos(p.Lat1);
  return {p.ellipsoid.GetMajorRadius(), p.Lon0, std::fabs(cosLat1) < kNoCosine ? 0.0 : cosLat1};
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorEquiCyl() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
