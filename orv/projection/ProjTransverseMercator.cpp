#include "orv/projection/ProjTransverseMercator.h"

#include "orv/lanes/Dispatch.h"
#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjTransverseMercator")

namespace orv {

namespace {

using internal::RunKernel;

const lanes::EngineKernels<TransverseMercator>& Kernels() { return lanes::Kernels().transverseMercator; }

class ProjectorTransverseMercator final
    : public internal::Engine<ProjectorTransverseMercator, internal::InsideWindow, internal::SplitAtWindow> {
 public:
  void SetParameters(const ProjectionParameters& radians) override {
    ProjActor::SetParameters(radians);
    m_Constants = internal::MakeTransverseMercator(radians);
  }
  bool Forward(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().forward, m_Constants, pts, n, ORV_SITE);
  }
  bool Inverse(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().inverse, m_Constants, pts, n, ORV_SITE);
  }

 private:
  TransverseMercator m_Constants{};
};

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorTransverseMercator() {
  return std::make_unique<ProjectorTransverseMercator>();
}

}  // namespace orv
