#include "orv/projection/ProjEquidistantCylindrical.h"

#include <cmath>

#include "orv/lanes/Dispatch.h"
#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjEquidistantCylindrical")

namespace orv {

namespace {

using internal::RunKernel;

const lanes::EngineKernels<EquidistantCylindrical>& Kernels() {
  return lanes::Kernels().equidistantCylindrical;
}

// A double's cosine of 90 degrees is 6.1e-17: below this it counts as exactly 0.
constexpr double kNoCosine = 1e-15;

class ProjectorEquiCyl final
    : public internal::Engine<ProjectorEquiCyl, internal::InsideEverywhere, internal::SplitNowhere> {
 public:
  bool Forward(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().forward, Constants(), pts, n, ORV_SITE);
  }
  bool Inverse(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().inverse, Constants(), pts, n, ORV_SITE);
  }

 private:
  EquidistantCylindrical Constants() const {
    const double cosLat1 = std::cos(m_Parameters.Lat1);
    return {m_Parameters.ellipsoid.GetMajorRadius(), m_Parameters.Lon0,
            std::fabs(cosLat1) < kNoCosine ? 0.0 : cosLat1};
  }
};

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorEquiCyl() { return std::make_unique<ProjectorEquiCyl>(); }

}  // namespace orv
