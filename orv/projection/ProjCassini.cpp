#include "orv/projection/ProjCassini.h"

#include "orv/lanes/Dispatch.h"
#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjCassini")

namespace orv {

namespace {

using internal::RunKernel;

const lanes::EngineKernels<Cassini>& Kernels() { return lanes::Kernels().cassini; }

class ProjectorCassini final
    : public internal::Engine<ProjectorCassini, internal::InsideHemisphere, internal::SplitNowhere> {
 public:
  bool Forward(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().forward, Constants(), pts, n, ORV_SITE);
  }
  bool Inverse(shr::Vec2d* pts, size_t n) override {
    return RunKernel(Kernels().inverse, Constants(), pts, n, ORV_SITE);
  }

 private:
  // Computed for each batch: this engine keeps nothing but the working parameters.
  Cassini Constants() const {
    Cassini c{};
    c.sphere = m_Parameters.ellipsoid.GetFlattening() == 0.0;
    c.a = m_Parameters.ellipsoid.GetMajorRadius();
    c.lon0 = m_Parameters.Lon0;
    c.lat0 = m_Parameters.Lat0;
    c.e2 = internal::EccentricitySquared(m_Parameters);
    c.ep2 = c.e2 / (1.0 - c.e2);  // (8-12)
    c.arc =
        internal::MakeMeridianArc(c.a, c.e2);  // also on the sphere: no constant that is divided by may be 0
    c.m0 = internal::ArcLength(c.arc, c.lat0);
    return c;
  }
};

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorCassini() { return std::make_unique<ProjectorCassini>(); }

}  // namespace orv
