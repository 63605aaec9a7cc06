#include "orv/datum/DatumMethods.h"

#include <algorithm>
#include <type_traits>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Marker.h"
#include "orv/datum/RegressionTables.h"
#include "orv/lanes/Blocks.h"
#include "orv/lanes/Dispatch.h"

namespace orv::internal {

namespace {

struct Axes {
  double a;  // major radius, metres
  double f;  // flattening
};

// What the status of a load, or of a point, means for the batch; null when it goes on.
const char* NTv2Failure(NTv2Status status) {
  switch (status) {
    case NTv2Done:
      return nullptr;
    case NTv2NotPresent:
      return "NTV2 grid shift file not present.";
    case NTv2ReadShort:
    case NTv2BadHeader:
      return "NTV2 grid shift file is incomplete or contains bad data (possibly corrupted during download?)";
    default:
      return "NTV2 datum conversion failed.";
  }
}

template <class... F>
struct Choose : F... {
  using F::operator()...;
};
template <class... F>
Choose(F...) -> Choose<F...>;

}  // namespace

Molodensky MolodenskyOf(const DatumParameters& p, double targetRadius, double targetFlattening,
                        bool inverse) {
  const Axes own = {p.ellipsoid.GetMajorRadius(), p.ellipsoid.GetFlattening()};
  const Axes target = {targetRadius, targetFlattening};
  const Axes& from = inverse ? target : own;
  const Axes& to = inverse ? own : target;
  const double sign = inverse ? -1.0 : 1.0;
  Molodensky c;
  c.a1 = from.a;
  c.b1 = (1.0 - from.f) * from.a;
  c.e2 = 2.0 * from.f - from.f * from.f;
  c.da = to.a - from.a;
  c.df = to.f - from.f;
  c.dx = sign * p.dx;
  c.dy = sign * p.dy;
  c.dz = sign * p.dz;
  c.pmShift = sign * p.pmShift;
  return c;
}

BursaWolf BursaWolfOf(const DatumParameters& p, double targetRadius, double targetFlattening, bool inverse) {
  const Axes own = {p.ellipsoid.GetMajorRadius(), p.ellipsoid.GetFlattening()};
  const Axes target = {targetRadius, targetFlattening};
  const Axes& from = inverse ? target : own;
  const Axes& to = inverse ? own : target;
  const double sign = inverse ? -1.0 : 1.0;
  const auto radians = [sign](double seconds) { return sign * (seconds / 3600.0 * (kPi / 180.0)); };
  const double scale = 1.0 + p.k * 1e-6;
  BursaWolf c;
  c.aFrom = from.a;
  c.e2From = (2.0 - from.f) * from.f;
  c.aTo = to.a;
  c.fTo = to.f;
  c.dx = sign * p.dx;
  c.dy = sign * p.dy;
  c.dz = sign * p.dz;
  c.rx = radians(p.rx);
  c.ry = radians(p.ry);
  c.rz = radians(p.rz);
  c.s = inverse ? 1.0 / scale : scale;
  c.pmShift = sign * p.pmShift;
  return c;
}

DatumStep::DatumStep(const DatumParameters& p, const EllipsoidDef& target, GridShift& grids) {
  const double a = target.GetMajorRadius();
  const double f = target.GetFlattening();
  // The target's ellipsoid is empty when the known datums hold no such datum.
  const bool bRadii = p.ellipsoid.GetMajorRadius() > 0.0 && a > 0.0;
  switch (p.method) {
    case DatumMethodMolodensky:
      m_Method = MolodenskyOf(p, a, f, p.inverse);
      if (!bRadii) m_Method = Failure{"Molodensky datum conversion failed."};
      break;
    case DatumMethodBursaWolf:
      m_Method = BursaWolfOf(p, a, f, p.inverse);
      if (!bRadii) m_Method = Failure{"Bursa-Wolf datum conversion failed."};
      break;
    case DatumMethodNADCON:
      m_Method = Nadcon{&grids, p.inverse};
      break;
    case DatumMethodNTV2:
      m_Method = NTv2{&grids, p.inverse};
      break;
    case DatumMethodMRE:
      m_Method = RegressionOf(p.mreType);
      if (!RegressionOf(p.mreType)) m_Method = Failure{"Datum has invalid MRE special code."};
      break;
    case DatumMethodUnknown:
    case DatumMethodNone:
    case DatumMethodEnd:
      break;
  }
}

const char* DatumStep::Prepare() const {
  if (const auto* const failure = std::get_if<Failure>(&m_Method)) return failure->text;
  if (const auto* const nadcon = std::get_if<Nadcon>(&m_Method)) {
    return nadcon->grids->LoadNadcon() ? nullptr : "NADCON grid shift files missing or corrupt.";
  }
  if (const auto* const ntv2 = std::get_if<NTv2>(&m_Method)) return NTv2Failure(ntv2->grids->LoadNTv2());
  return nullptr;
}

const char* DatumStep::Run(double* xy, size_t count) const {
  if (const char* const failure = Prepare()) return failure;
  static_assert(std::is_standard_layout_v<shr::Vec2d> && sizeof(shr::Vec2d) == 2 * sizeof(double));
  auto* const points = reinterpret_cast<shr::Vec2d*>(xy);
  const lanes::KernelTable& kernels = lanes::KernelsFor(count);
  const char* failure = nullptr;
  std::visit(Choose{[&](const Molodensky& c) { kernels.molodensky(c, xy, count); },
                    [&](const BursaWolf& c) { kernels.bursaWolf(c, xy, count); },
                    [&](const Regression* c) { kernels.regression(*c, xy, count); },
                    [&](const Nadcon& c) { c.grids->ShiftNadcon(points, count, c.inverse); },
                    [&](const NTv2& c) { failure = RunNTv2(c, points, count); }, [](const auto&) {}},
             m_Method);
  return failure;
}

const char* DatumStep::RunNTv2(const NTv2& step, shr::Vec2d* points, size_t count) {
  const char* failure = nullptr;
  const lanes::KernelTable& kernels = lanes::Kernels();
  constexpr double kDegrees = 57.29577951308232;
  constexpr size_t kBlock = lanes::kBlockPoints;
  struct Marked {
    size_t at;
    double x, y;
  } marked[kBlock];  // not filled before it is needed
  for (size_t begin = 0; begin < count; begin += kBlock) {
    shr::Vec2d* const block = points + begin;
    const size_t n = std::min(count - begin, kBlock);
    // The passes over a block skip coordinates with the marker; a point with one is skipped as a whole.
    size_t markedCount = 0;
    for (size_t i = 0; i < n; ++i) {
      if (IsMarked(block[i])) marked[markedCount++] = {i, block[i].x, block[i].y};
    }
    kernels.toRadians(&block->x, n);
    if (!failure) failure = NTv2Failure(step.grids->ShiftNTv2(block, n, step.inverse));
    // After a failure too, all points go through radians.
    kernels.multiply(&block->x, n, kDegrees);
    for (size_t i = 0; i < markedCount; ++i) block[marked[i].at] = {marked[i].x, marked[i].y};
  }
  return failure;
}

}  // namespace orv::internal
