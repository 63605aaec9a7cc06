#include "orv/projection/ProjAzimuthalEquidistant.h"

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjAzimuthalEquidistant")

namespace orv {

namespace {

constexpr internal::EngineRow<AzimuthalEquidistant> kRow = {kUnit, &lanes::KernelTable::azimuthalEquidistant,
                                                            internal::InsideAzimuthalEquidistant,
                                                            internal::SplitNowhere};

AzimuthalEquidistant Constants(const ProjectionParameters& p) {
  AzimuthalEquidistant c{};
  c.a = p.ellipsoid.GetMajorRadius();
  c.centre = internal::MakeAzimuthalCentre(p.Lon0, p.Lat1);
  return c;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorAzimuthalEquidistant() {
  return MakePlainEngine(kRow, &Constants);
}

}  // namespace orv
