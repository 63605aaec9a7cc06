#include "orv/projection/ProjObliqueMercator.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjObliqueMercator")

namespace orv {

namespace {

constexpr internal::EngineRow<ObliqueMercator> kRow = {
    kUnit, &lanes::KernelTable::obliqueMercator, internal::InsideObliqueMercator, internal::SplitAtWindow};

bool SetUp(ProjectionParameters& radians, ObliqueMercator& c) {
  const double sin1 = std::sin(radians.Lat1), cos1 = std::cos(radians.Lat1);
  const double sin2 = std::sin(radians.Lat2), cos2 = std::cos(radians.Lat2);
  const double lambda1 = radians.Lon1, lambda2 = radians.Lon2;
  // (9-1): the pole of the oblique graticule
  const double lambdaP = std::atan2(cos1 * sin2 * std::cos(lambda1) - sin1 * cos2 * std::cos(lambda2),
                                    sin1 * cos2 * std::sin(lambda2) - cos1 * sin2 * std::sin(lambda1));
  // Deliberate: with the first point on the Equator there is no set-up, although there is a pole.
  const double tan1 = std::tan(radians.Lat1);
  if (tan1 == 0.0) {
    return ORV_FAIL(ErrCorrupt,
                    "Undefined mathematical result during projection.  Unexpected zero value in intermediate "
                    "calculation.");
  }
  // (9-2).  Deliberate: whichever of the two poles comes out; the source takes the northern one.
  const double phiP = std::atan(-std::cos(lambdaP - lambda1) / tan1);

  c.rk = radians.K0 * radians.ellipsoid.GetMajorRadius();
  c.sinPhiP = std::sin(phiP);
  c.cosPhiP = std::cos(phiP);
  c.lon0 = lambdaP + 1.5707963267948966;
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorObliqueMercator() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
