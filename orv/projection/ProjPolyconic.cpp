#include "orv/projection/ProjPolyconic.h"

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjPolyconic")

namespace orv {

namespace {

constexpr internal::EngineRow<Polyconic> kRow = {kUnit, &lanes::KernelTable::polyconic,
                                                 internal::InsideWindow, internal::SplitAtWindow};

bool SetUp(ProjectionParameters& radians, Polyconic& c) {
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.a = radians.ellipsoid.GetMajorRadius();
  c.lon0 = radians.Lon0;
  c.e2 = internal::EccentricitySquared(radians);
  c.arc = internal::MakeMeridianArc(c.a, c.e2);
  c.m0 = internal::ArcLength(c.arc, radians.Lat0);  // on the sphere a Lat0
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorPolyconic() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
