#include "orv/projection/ProjTranAlbers.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjTranAlbers")

namespace orv {

namespace {

constexpr internal::EngineRow<Albers> kRow = {kUnit, &lanes::KernelTable::albers, internal::InsideWindow,
                                              internal::SplitAtWindow};

// As kAlbersRoundOff of the kernels.
constexpr double kRoundOff = 4e-15;

bool SetUp(ProjectionParameters& radians, Albers& c) {
  const double e2 = internal::EccentricitySquared(radians);
  const double sin0 = std::sin(radians.Lat0), sin1 = std::sin(radians.Lat1), sin2 = std::sin(radians.Lat2);
  double q0 = 0.0;
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.a = radians.ellipsoid.GetMajorRadius();
  c.e = std::sqrt(e2);
  c.lon0 = radians.Lon0;
  if (c.sphere) {
    c.n = (sin1 + sin2) / 2.0;  // (14-6)
    if (c.n == 0.0) {
      return ORV_FAIL(
          ErrCorrupt,
          "Undefined mathematical result during projection.  Sum of Lat1 and Lat2 parameters must not be "
          "zero.");
    }
    const double cos1 = std::cos(radians.Lat1);
    c.C = cos1 * cos1 + 2.0 * c.n * sin1;  // (14-5)
    q0 = 2.0 * sin0;
    c.qp = 2.0;
  } else {
    const bool isFlat = !(c.e < 1.0);  // a flattening so near 1 has no q at the poles
    c.ie2 = 1.0 / e2;
    // By the kernels' function, so that the q of a pole has exactly its latitude.
    const auto qOf = [&c, isFlat](double sine) { return isFlat ? sine : one::AuthalicQ(c, sine); };
    q0 = qOf(sin0);
    const double q1 = qOf(sin1), q2 = qOf(sin2);
    // Deliberate: the text speaks of a sum, the test is on the difference.
    if (q2 - q1 == 0.0) {
      return ORV_FAIL(
          ErrCorrupt,
          "Undefined mathematical result during projection.  Lat1 and Lat2 parameters must not be defined "
          "such that the sum of the Albers q1 and q2 intermediate values is zero.");
    }
    const double m1 = internal::RadiusOfParallel(e2, radians.Lat1);
    const double m2 = internal::RadiusOfParallel(e2, radians.Lat2);
    c.n = isFlat ? 0.0 : (m1 * m1 - m2 * m2) / (q2 - q1);  // (14-14)
    c.C = m1 * m1 + c.n * q1;                              // (14-13)
    c.qp = qOf(1.0);                                       // (14-20)
  }
  const double w = c.C - c.n * q0;
  const bool isApex = w < 0.0 && w >= -kRoundOff;
  if (c.n != 0.0) c.rho0 = c.a * std::sqrt(isApex || w < 0.0 ? 0.0 : w) / c.n;  // (14-3a), (14-12a)
  if (c.n == 0.0 || (w < 0.0 && !isApex) || !std::isfinite(c.n) || !std::isfinite(c.rho0)) {
    return ORV_FAIL(ErrCorrupt, "Undefined mathematical result during projection.");
  }
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorAlbers() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
