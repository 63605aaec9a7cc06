#include "orv/projection/ProjSinusoidal.h"

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjSinusoidal")

namespace orv {

namespace {

constexpr internal::EngineRow<Sinusoidal> kRow = {kUnit, &lanes::KernelTable::sinusoidal,
                                                  internal::InsideSinusoidalWindow, internal::SplitAtWindow};

bool SetUp(ProjectionParameters& radians, Sinusoidal& c) {
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.a = radians.ellipsoid.GetMajorRadius();
  c.lon0 = radians.Lon0;
  c.e2 = internal::EccentricitySquared(radians);
  c.arc = internal::MakeMeridianArc(c.a, c.e2);  // also on the sphere: what is divided by may not be 0
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorSinusoidal() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
