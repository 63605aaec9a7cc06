#include "orv/projection/ProjLambertConformalConic.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjLambertConformalConic")

namespace orv {

namespace {

constexpr internal::EngineRow<LambertConformalConic> kRow = {
    kUnit, &lanes::KernelTable::lambertConformalConic, internal::InsideWindow, internal::SplitAtWindow};

constexpr double kQuarterPi = 3.141592653589793 / 4.0;

// Each gives false where a value that is divided by or whose logarithm is taken is 0.

bool SetUpSphere(const ProjectionParameters& p, LambertConformalConic& c) {
  const auto T = [](double phi) { return std::tan(kQuarterPi + phi / 2.0); };
  const double T0 = T(p.Lat0), T1 = T(p.Lat1), T2 = T(p.Lat2);
  if (T1 == 0.0 || T2 == 0.0) return false;  // ln 0 makes n vanish
  const double lnRatio = std::log(T2 / T1);
  if (lnRatio == 0.0) return false;
  c.n = std::log(std::cos(p.Lat1) / std::cos(p.Lat2)) / lnRatio;  // (15-3)
  if (c.n == 0.0) return false;
  c.aF = p.ellipsoid.GetMajorRadius() * std::cos(p.Lat1) * std::pow(T1, c.n) / c.n;  // (15-2)
  if (T0 == 0.0) {
    c.rho0 = 0.0;  // a southern cone with its origin in its apex
    return c.n < 0.0;
  }
  const double T0n = std::pow(T0, c.n);
  if (T0n == 0.0) return false;
  c.rho0 = c.aF / T0n;  // (15-1a)
  return true;
}

bool SetUpEllipsoid(const ProjectionParameters& p, LambertConformalConic& c) {
  const double e2 = internal::EccentricitySquared(p);
  for (const double phi : {p.Lat0, p.Lat1, p.Lat2}) {
    if (1.0 + c.e * std::sin(phi) == 0.0) return false;
  }
  const auto t = [&c](double phi) {  // (15-9)
    const double es = c.e * std::sin(phi);
    return std::tan(kQuarterPi - phi / 2.0) / std::pow((1.0 - es) / (1.0 + es), c.e / 2.0);
  };
  const double t0 = t(p.Lat0), t1 = t(p.Lat1), t2 = t(p.Lat2);
  if (!(t1 > 0.0) || !(t2 > 0.0)) return false;  // a pole: ln 0 makes n vanish
  const double lnDifference = std::log(t1) - std::log(t2);
  if (lnDifference == 0.0) return false;
  for (const double phi : {p.Lat1, p.Lat2}) {
    if (1.0 - e2 * std::sin(phi) * std::sin(phi) <= 0.0) return false;
  }
  const double m1 = internal::RadiusOfParallel(e2, p.Lat1), m2 = internal::RadiusOfParallel(e2, p.Lat2);
  c.n = (std::log(m1) - std::log(m2)) / lnDifference;  // (15-8)
  if (c.n == 0.0) return false;
  c.aF = p.ellipsoid.GetMajorRadius() * m1 / (c.n * std::pow(t1, c.n));  // (15-10)
  if (t0 == 0.0) {
    c.rho0 = 0.0;  // the origin in the apex; that of a southern cone would be infinite
    return c.n > 0.0;
  }
  c.rho0 = c.aF * std::pow(t0, c.n);  // (15-7a)
  return true;
}

bool SetUp(ProjectionParameters& radians, LambertConformalConic& c) {
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.e = std::sqrt(internal::EccentricitySquared(radians));
  c.latitude = internal::MakeLatitudeSeries(c.e);
  c.lon0 = radians.Lon0;
  const bool done = c.sphere ? SetUpSphere(radians, c) : SetUpEllipsoid(radians, c);
  if (!done || !std::isfinite(c.n) || !std::isfinite(c.aF) || !std::isfinite(c.rho0)) {
    return ORV_FAIL(ErrCorrupt,
                    "Undefined mathematical result during projection.  Unexpected zero value in intermediate "
                    "calculation.");
  }
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorLambert() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
