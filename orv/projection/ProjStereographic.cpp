#include "orv/projection/ProjStereographic.h"

#include <cmath>

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjStereographic")

namespace orv {

namespace {

constexpr internal::EngineRow<Stereographic> kRow = {kUnit, &lanes::KernelTable::stereographic,
                                                     internal::InsideHemisphere, internal::SplitNowhere};

constexpr double kRightAngle = 1.5707963267948966;

// Radians: a centre on the ellipsoid that close to a pole is the pole.
constexpr double kPoleTolerance = 1e-10;

bool SetUp(ProjectionParameters& radians, Stereographic& c) {
  c.sphere = radians.ellipsoid.GetFlattening() == 0.0;
  c.radius = radians.ellipsoid.GetMajorRadius() * radians.K0;
  c.centre = internal::MakeAzimuthalCentre(radians.Lon0, radians.Lat0);
  if (!c.sphere) {
    const double e2 = internal::EccentricitySquared(radians);
    const double e = e2 > 0.0 ? std::sqrt(e2) : 0.0;
    const double sinLat0 = std::sin(radians.Lat0), cosLat0 = std::cos(radians.Lat0);
    const double es = e * std::fabs(sinLat0), w = 1.0 - e2 * sinLat0 * sinLat0;
    // t of the absolute latitude (15-9), and by it cos chi1 with all its digits next to a pole.
    const double t = es < 1.0 ? std::fabs(cosLat0) / (1.0 + std::fabs(sinLat0)) *
                                    std::pow((1.0 + es) / (1.0 - es), e / 2.0)
                              : 1.0;
    const double cosChi1 = 2.0 * t / (1.0 + t * t);
    if (1.0 + e * sinLat0 == 0.0 || cosChi1 == 0.0) {
      return ORV_FAIL(
          ErrCorrupt,
          "Undefined mathematical result during projection.  Unexpected zero value in intermediate "
          "calculation.");
    }
    // A flattening above 2 has no e: its square is what is not positive.
    if (!(w > 0.0) || e2 < 0.0) {
      return ORV_FAIL(ErrCorrupt,
                      "Undefined mathematical result during projection.  Unexpected non-positive value in "
                      "intermediate calculation.");
    }
    c.e = e;
    c.latitude = internal::MakeLatitudeSeries(e);
    if (std::fabs(std::fabs(radians.Lat0) - kRightAngle) < kPoleTolerance) {
      c.centre = internal::MakeAzimuthalCentre(radians.Lon0, std::copysign(kRightAngle, radians.Lat0));
      c.radius /= std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e));  // (21-33)
    } else {
      c.centre.sin = std::copysign((1.0 - t * t) / (1.0 + t * t), sinLat0);
      c.centre.cos = cosChi1;
      const double m1 = cosLat0 / std::sqrt(w);  // (14-15)
      c.radius *= m1 / c.centre.cos;             // (21-27)
    }
  }
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorPolar() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
