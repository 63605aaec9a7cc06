#include "orv/projection/ProjOrthographic.h"

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjOrthographic")

namespace orv {

namespace {

constexpr internal::EngineRow<Orthographic> kRow = {kUnit, &lanes::KernelTable::orthographic,
                                                    internal::InsideHemisphere, internal::SplitNowhere};

Orthographic Constants(const ProjectionParameters& p) {
  Orthographic c{};
  c.a = p.ellipsoid.GetMajorRadius();
  c.centre = internal::MakeAzimuthalCentre(p.Lon0, p.Lat0);
  return c;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorOrtho() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
