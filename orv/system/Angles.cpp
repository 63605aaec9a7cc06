#include "orv/system/internal/Angles.h"

#include <cmath>

#include "orv/core/internal/Angle.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"

namespace orv::internal {

double DegreesPerUnit(const ORVDef& system) {
  if (!system.HasProjection(false, true)) return 1.0;
  const ProjectionParameters& p = *system.GetProjection()->GetParameters();
  if (p.method != ProjectionMethodEquidistantCylindrical || p.Lat1 != 0.0) return 0.0;
  if (std::fabs(p.xOrg) > 1e-6 || std::fabs(p.yOrg) > 1e-6) return 0.0;
  if (p.ellipsoid.GetFlattening() == 0.0 && !system.HasDatum(false)) return 0.0;
  const double degrees = 360.0 / (p.Scale * 2.0 * kPi * p.ellipsoid.GetMajorRadius());
  for (const double unit : {1.0, 0.9, 180.0 / kPi}) {
    if (std::fabs(degrees / unit - 1.0) < 1e-9) return unit;
  }
  return 0.0;
}

}  // namespace orv::internal
