#include "orv/projection/ProjMercator.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjMercator")

namespace orv {

namespace {

constexpr internal::EngineRow<Mercator> kRow = {kUnit, &lanes::KernelTable::mercator,
                                                internal::InsideWindowBelowPoles, internal::SplitAtWindow};

// A double's cosine of 90 degrees is 6.1e-17: below this it counts as exactly 0.
constexpr double kNoCosine = 1e-15;

bool SetUp(ProjectionParameters& radians, Mercator& c) {
  const double e2 = internal::EccentricitySquared(radians);
  const double cosLat0 = std::cos(radians.Lat0), sinLat0 = std::sin(radians.Lat0);
  const double cosine = std::fabs(cosLat0) < kNoCosine ? 0.0 : cosLat0;
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.a = radians.ellipsoid.GetMajorRadius();
  c.e = std::sqrt(e2);
  c.lon0 = radians.Lon0;
  const double w = 1.0 - e2 * sinLat0 * sinLat0;
  c.nowhere = !c.sphere && !(w > 0.0);
  // Scale along the Equator for a true parallel Lat0, the m of (14-15); (7-1) has cos Lat0 on the sphere.
  c.k = c.sphere ? cosine : (c.nowhere ? 1.0 : cosine / std::sqrt(w));
  if (c.k == 0.0) {
    return ORV_FAIL(ErrCorrupt,
                    "Undefined mathematical result during projection.  Unexpected zero value in intermediate "
                    "calculation.");
  }
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorMercator() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
