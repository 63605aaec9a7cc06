#include "orv/projection/ProjMercator.h"

#include <cmath>

#include "orv/lanes/Dispatch.h"
#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjMercator")

namespace orv {

namespace {

using internal::RunKernel;

const lanes::EngineKernels<Mercator>& Kernels() { return lanes::Kernels().mercator; }

class ProjectorMercator final
    : public internal::Engine<ProjectorMercator, internal::InsideWindowBelowPoles, internal::SplitAtWindow> {
 public:
  void SetParameters(const ProjectionParameters& radians) override;
  bool Forward(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().forward, m_Mercator, pts, n, ORV_SITE);
  }
  bool Inverse(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().inverse, m_Mercator, pts, n, ORV_SITE);
  }

 private:
  Mercator m_Mercator{};
};

// A double's cosine of 90 degrees is 6.1e-17: below this it counts as exactly 0.
constexpr double kNoCosine = 1e-15;

void ProjectorMercator::SetParameters(const ProjectionParameters& radians) {
  ProjActor::SetParameters(radians);
  Mercator c{};
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
    ORV_FAIL(ErrCorrupt,
             "Undefined mathematical result during projection.  Unexpected zero value in intermediate "
             "calculation.");
    return;
  }
  m_Mercator = c;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorMercator() { return std::make_unique<ProjectorMercator>(); }

}  // namespace orv
