#include "orv/projection/ProjCassini.h"

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjCassini")

namespace orv {

namespace {

constexpr internal::EngineRow<Cassini> kRow = {kUnit, &lanes::KernelTable::cassini,
                                               internal::InsideHemisphere, internal::SplitNowhere};

Cassini Constants(const ProjectionParameters& p) {
  Cassini c{};
  c.sphere = p.ellipsoid.GetFlattening() == 0.0;
  c.a = p.ellipsoid.GetMajorRadius();
  c.lon0 = p.Lon0;
  c.lat0 = p.Lat0;
  c.e2 = internal::EccentricitySquared(p);
  c.ep2 = c.e2 / (1.0 - c.e2);  // (8-12)
  c.arc =
      internal::MakeMeridianArc(c.a, c.e2);  // also on the sphere: no constant that is divided by may be 0
  c.m0 = internal::ArcLength(c.arc, c.lat0);
  return c;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorCassini() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
