// ProjEngine.h: what the engines of the kernel table have in common, and the makers of all engines.
//
// An engine is a class of its own unit:
//
//     class ProjectorMercator final : public Engine<ProjectorMercator, InsideWindowBelowPoles, SplitAtWindow>
//     {
//      public:
//       void SetParameters(const ProjectionParameters& radians) override;
//       bool Forward(shr::Vec2d* pts, size_t n) override { return Run(Kernels().forward, m_Mercator, pts, n,
//       ORV_SITE); }
//       ...
//
// A new engine is a new unit, its maker below, and a row in ProjActor.cpp.
#pragma once

#include <cstddef>
#include <memory>

#include "orv/core/internal/Fail.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/internal/ProjArea.h"

namespace orv::internal {

using InsideTest = bool(const ProjectionParameters& degrees, const shr::Vec2d& lonlat);
using SplitRule = bool(const ProjectionParameters& degrees, const shr::Vec2d* pts, size_t n, double* dx,
                       double* dy);

/// An engine with its inside test and its split rule.
template <class Self, InsideTest* kInside, SplitRule* kSplit>
class Engine : public ProjActor {
 public:
  std::unique_ptr<ProjActor> Clone() const final {
    return std::make_unique<Self>(static_cast<const Self&>(*this));
  }

  bool IsLatLonInside(const ProjectionParameters& degrees, const shr::Vec2d* lonlat) const final {
    return lonlat && kInside(degrees, *lonlat);
  }

  bool GetSplitOffset(const ProjectionParameters& degrees, const shr::Vec2d* pts, size_t n, double* dx,
                      double* dy) const final {
    return kSplit(degrees, pts, n, dx, dy);
  }
};

/// Runs an entry of the kernel table on a batch; no points raise from the engine's own site.
///
/// @param constants  the engine's set-up constants.
template <class Constants>
bool RunKernel(void (*kernel)(const Constants&, double* xy, size_t n), const Constants& constants,
               shr::Vec2d* pts, size_t n, const ErrorSite& site) {
  static_assert(sizeof(shr::Vec2d) == 2 * sizeof(double), "a batch of points must be interleaved doubles");
  if (!pts || n == 0) return ORV_FAIL_AT(site, ErrCorrupt, "No points to transform.");
  kernel(constants, &pts->x, n);
  return true;
}

std::unique_ptr<ProjActor> MakeProjectorCassini();
std::unique_ptr<ProjActor> MakeProjectorEquiCyl();
std::unique_ptr<ProjActor> MakeProjectorHotine();
std::unique_ptr<ProjActor> MakeProjectorMercator();
std::unique_ptr<ProjActor> MakeProjectorMiller();
std::unique_ptr<ProjActor> MakeProjectorObliqueMercator();
std::unique_ptr<ProjActor> MakeProjectorTransverseMercator();
std::unique_ptr<ProjActor> MakeProjectorUTM();

}  // namespace orv::internal
