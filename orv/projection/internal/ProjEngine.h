// ProjEngine.h: what the engines of the kernel table have in common, and the makers of all engines.
//
// An engine is a unit of three parts: its set-up function, one row of facts, and its maker.
//
//     ORV_UNIT("ProjMercator")
//
//     bool SetUp(ProjectionParameters& working, Mercator& c) { ... }
//
//     constexpr EngineRow<Mercator> kRow = {kUnit, &lanes::KernelTable::mercator, InsideWindowBelowPoles,
//                                           SplitAtWindow};
//
//     std::unique_ptr<ProjActor> internal::MakeProjectorMercator() { return MakeEngine(kRow, &SetUp); }
//
// A new engine is a new unit, its entry in the kernel table, its maker below, and a row in ProjActor.cpp.
#pragma once

#include <cstddef>
#include <memory>

#include "orv/core/internal/Fail.h"
#include "orv/lanes/Dispatch.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/internal/ProjArea.h"

namespace orv::internal {

using InsideTest = bool(const ProjectionParameters& degrees, const shr::Vec2d& lonlat);
using SplitRule = bool(const ProjectionParameters& degrees, const shr::Vec2d* pts, size_t n, double* dx,
                       double* dy);

/// The facts of an engine whose set-up constants are a C.
template <class C>
struct EngineRow {
  const char* unit;                                      ///< named by its errors
  lanes::EngineKernels<C> lanes::KernelTable::*kernels;  ///< forward and inverse
  InsideTest* inside;
  SplitRule* split;
};

/// Computes the constants of working parameters, which it may adjust.  False after a report.
template <class C>
using SetUpFunction = bool (*)(ProjectionParameters& working, C& constants);

/// The constants of working parameters, when they follow without fail from a few functions of them.
template <class C>
using ConstantsFunction = C (*)(const ProjectionParameters& working);

/// An engine of the kernel table, but for where its constants come from.
template <class C>
class KernelEngine : public ProjActor {
 public:
  bool IsLatLonInside(const ProjectionParameters& degrees, const shr::Vec2d* lonlat) const final {
    return lonlat && m_Row->inside(degrees, *lonlat);
  }
  bool GetSplitOffset(const ProjectionParameters& degrees, const shr::Vec2d* pts, size_t n, double* dx,
                      double* dy) const final {
    return m_Row->split(degrees, pts, n, dx, dy);
  }
  bool Forward(shr::Vec2d* pts, size_t n) final { return Run(Kernels(n).forward, pts, n); }
  bool Inverse(shr::Vec2d* pts, size_t n) final { return Run(Kernels(n).inverse, pts, n); }

 protected:
  explicit KernelEngine(const EngineRow<C>& row) : m_Row(&row) {}

  virtual C Constants() const = 0;

 private:
  const lanes::EngineKernels<C>& Kernels(size_t n) const { return lanes::KernelsFor(n).*m_Row->kernels; }

  bool Run(typename lanes::EngineKernels<C>::Run kernel, shr::Vec2d* pts, size_t n) const {
    static_assert(sizeof(shr::Vec2d) == 2 * sizeof(double), "a batch of points must be interleaved doubles");
    if (!pts || n == 0) {
      return ORV_FAIL_AT((ErrorSite{m_Row->unit, __LINE__}), ErrCorrupt, "No points to transform.");
    }
    kernel(Constants(), &pts->x, n);
    return true;
  }

  const EngineRow<C>* m_Row;
};

/// An engine that keeps constants derived from its parameters; those of a set-up that fails are not taken.
template <class C>
class DerivedEngine final : public KernelEngine<C> {
 public:
  DerivedEngine(const EngineRow<C>& row, SetUpFunction<C> setUp) : KernelEngine<C>(row), m_SetUp(setUp) {}

  std::unique_ptr<ProjActor> Clone() const override { return std::make_unique<DerivedEngine>(*this); }
  void SetParameters(const ProjectionParameters& radians) override {
    ProjActor::SetParameters(radians);
    C constants{};
    if (m_SetUp(this->m_Parameters, constants)) m_Constants = constants;
  }

 private:
  C Constants() const override { return m_Constants; }

  SetUpFunction<C> m_SetUp;
  C m_Constants{};
};

/// An engine that keeps nothing but the working parameters: its constants are computed for each batch.
template <class C>
class PlainEngine final : public KernelEngine<C> {
 public:
  PlainEngine(const EngineRow<C>& row, ConstantsFunction<C> constants)
      : KernelEngine<C>(row), m_ConstantsOf(constants) {}

  std::unique_ptr<ProjActor> Clone() const override { return std::make_unique<PlainEngine>(*this); }

 private:
  C Constants() const override { return m_ConstantsOf(this->m_Parameters); }

  ConstantsFunction<C> m_ConstantsOf;
};

/// A new engine without parameters.  The row must outlive it.
template <class C>
std::unique_ptr<ProjActor> MakeEngine(const EngineRow<C>& row, SetUpFunction<C> setUp) {
  return std::make_unique<DerivedEngine<C>>(row, setUp);
}
template <class C>
std::unique_ptr<ProjActor> MakePlainEngine(const EngineRow<C>& row, ConstantsFunction<C> constants) {
  return std::make_unique<PlainEngine<C>>(row, constants);
}

std::unique_ptr<ProjActor> MakeProjectorAlbers();
std::unique_ptr<ProjActor> MakeProjectorAzimuthalEquidistant();
std::unique_ptr<ProjActor> MakeProjectorBonne();
std::unique_ptr<ProjActor> MakeProjectorCassini();
std::unique_ptr<ProjActor> MakeProjectorEckert4();
std::unique_ptr<ProjActor> MakeProjectorEckert6();
std::unique_ptr<ProjActor> MakeProjectorEquiConic();
std::unique_ptr<ProjActor> MakeProjectorEquiCyl();
std::unique_ptr<ProjActor> MakeProjectorGnomonic();
std::unique_ptr<ProjActor> MakeProjectorHotine();
std::unique_ptr<ProjActor> MakeProjectorLambert();
std::unique_ptr<ProjActor> MakeProjectorLambertAzimuthal();
std::unique_ptr<ProjActor> MakeProjectorMercator();
std::unique_ptr<ProjActor> MakeProjectorMiller();
std::unique_ptr<ProjActor> MakeProjectorMollweide();
std::unique_ptr<ProjActor> MakeProjectorObliqueMercator();
std::unique_ptr<ProjActor> MakeProjectorOrtho();
std::unique_ptr<ProjActor> MakeProjectorPolar();
std::unique_ptr<ProjActor> MakeProjectorPolyconic();
std::unique_ptr<ProjActor> MakeProjectorRobinson();
std::unique_ptr<ProjActor> MakeProjectorRobinsonSterling();
std::unique_ptr<ProjActor> MakeProjectorSinusoidal();
std::unique_ptr<ProjActor> MakeProjectorTransverseMercator();
std::unique_ptr<ProjActor> MakeProjectorUTM();
std::unique_ptr<ProjActor> MakeProjectorVanDerGrinten();

}  // namespace orv::internal
