#include "orv/projection/ProjMiller.h"

#include "orv/lanes/Dispatch.h"
#include "orv/projection/internal/ProjEngine.h"

ORV_UNIT("ProjMiller")

namespace orv {

namespace {

using internal::RunKernel;

const lanes::EngineKernels<Miller>& Kernels() { return lanes::Kernels().miller; }

class ProjectorMiller final
    : public internal::Engine<ProjectorMiller, internal::InsideWindowBelowPoles, internal::SplitAtWindow> {
 public:
  bool Forward(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().forward, Constants(), pts, n, ORV_SITE);
  }
  bool Inverse(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().inverse, Constants(), pts, n, ORV_SITE);
  }

 private:
  Miller Constants() const { return {m_Parameters.ellipsoid.GetMajorRadius(), m_Parameters.Lon0}; }
};

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorMiller() { return std::make_unique<ProjectorMiller>(); }

}  // namespace orv
