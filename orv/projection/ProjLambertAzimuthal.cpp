#include "orv/projection/ProjLambertAzimuthal.h"

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjLambertAzimuthal")

namespace orv {

namespace {

constexpr internal::EngineRow<LambertAzimuthal> kRow = {kUnit, &lanes::KernelTable::lambertAzimuthal,
                                                        internal::InsideEverywhere, internal::SplitNowhere};

LambertAzimuthal Constants(const ProjectionParameters& p) {
  LambertAzimuthal c{};
  c.a = p.ellipsoid.GetMajorRadius();
  c.centre = internal::MakeAzimuthalCentre(p.Lon0, p.Lat1);
  return c;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorLambertAzimuthal() {
  return MakePlainEngine(kRow, &Constants);
}

}  // namespace orv
