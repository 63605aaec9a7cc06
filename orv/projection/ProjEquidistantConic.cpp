#include "orv/projection/ProjEquidistantConic.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjEquidistantConic")

namespace orv {

namespace {

constexpr internal::EngineRow<EquidistantConic> kRow = {kUnit, &lanes::KernelTable::equidistantConic,
                                                        internal::InsideWindow, internal::SplitAtWindow};

bool SetUp(ProjectionParameters& radians, EquidistantConic& c) {
  const double a = radians.ellipsoid.GetMajorRadius();
  const double e2 = internal::EccentricitySquared(radians);
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.lon0 = radians.Lon0;
  c.arc = internal::MakeMeridianArc(a, e2);
  // On the sphere m is cos phi and M is a phi: the equations of the ellipsoid become those of the sphere.
  const double M0 = internal::ArcLength(c.arc, radians.Lat0);
  const double M1 = internal::ArcLength(c.arc, radians.Lat1), M2 = internal::ArcLength(c.arc, radians.Lat2);
  const double m1 = internal::RadiusOfParallel(e2, radians.Lat1);
  const double m2 = internal::RadiusOfParallel(e2, radians.Lat2);
  if (M2 != M1) c.n = a * (m1 - m2) / (M2 - M1);  // (16-4), (16-10)
  if (c.n != 0.0) {
    c.aG = a * m1 / c.n + M1;  // (16-3), (16-11)
    c.rho0 = c.aG - M0;        // (16-2), (16-9)
  }
  if (c.n == 0.0 || !std::isfinite(c.n) || !std::isfinite(c.rho0)) {
    return ORV_FAIL(ErrCorrupt, "Undefined mathematical result during projection.");
  }
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorEquiConic() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
