#include "orv/projection/ProjBonne.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjBonne")

namespace orv {

namespace {

constexpr internal::EngineRow<Bonne> kRow = {kUnit, &lanes::KernelTable::bonne, internal::InsideWindow,
                                             internal::SplitAtWindow};

bool SetUp(ProjectionParameters& radians, Bonne& c) {
  const double sin1 = std::sin(radians.Lat1);
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.a = radians.ellipsoid.GetMajorRadius();
  c.lon0 = radians.Lon0;
  c.e2 = internal::EccentricitySquared(radians);
  c.arc = internal::MakeMeridianArc(c.a, c.e2);
  if (sin1 != 0.0) c.apex = c.a * internal::RadiusOfParallel(c.e2, radians.Lat1) / sin1;
  c.apexArc = c.apex + internal::ArcLength(c.arc, radians.Lat1);
  if (sin1 == 0.0 || !std::isfinite(c.apexArc)) {
    return ORV_FAIL(ErrCorrupt, "Undefined mathematical result during projection.");
  }
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorBonne() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
