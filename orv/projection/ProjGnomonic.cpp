#include "orv/projection/ProjGnomonic.h"

#include <cmath>

#include "orv/core/internal/Angle.h"
#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjGnomonic")

namespace orv {

namespace {

// Degrees: a centre that close to a pole is taken as the pole.
constexpr double kPoleTolerance = 0.0001;

constexpr internal::EngineRow<Gnomonic> kRow = {kUnit, &lanes::KernelTable::gnomonic,
                                                internal::InsideGnomonic, internal::SplitNowhere};

Gnomonic Constants(const ProjectionParameters& p) {
  Gnomonic c{};
  c.a = p.ellipsoid.GetMajorRadius();
  c.centre = internal::MakeAzimuthalCentre(p.Lon0, p.Lat1);
  const double degrees = internal::ToDegrees(p.Lat1);
  const bool north = std::fabs(degrees - 90.0) <= kPoleTolerance;
  const bool south = std::fabs(degrees + 90.0) <= kPoleTolerance;
  c.pole = north ? 1.0 : (south ? -1.0 : 0.0);
  return c;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorGnomonic() { return MakePlainEngine(kRow, &Constants); }

}  // namespace orv
