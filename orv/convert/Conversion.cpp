#include "orv/convert/Conversion.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "orv/convert/SystemText.h"
#include "orv/convert/internal/DatumSteps.h"
#include "orv/convert/internal/GridPlaces.h"
#include "orv/convert/internal/GridTrace.h"
#include "orv/convert/internal/MeridianReach.h"
#include "orv/convert/internal/OneDatum.h"
#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Marker.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/lanes/Blocks.h"
#include "orv/lanes/Dispatch.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/shared/Exception.h"
#include "orv/system/CSList.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "orv/system/internal/Angles.h"
#include "orv/system/internal/Georeferenced.h"
#include "orv/warp/WarpDef.h"

ORV_UNIT("Conversion")

namespace orv {

namespace {

using internal::Georeferenced;
using internal::IsMarked;
using internal::Mark;

/// Points go through all stages block by block, while a block is in the first-level cache: what looks at them in
/// addition then costs no way to the memory.
constexpr size_t kBlock = lanes::kBlockPoints;

bool IsProjected(const ORVDef& system) { return system.HasProjection(false, true); }

/// As DegreesPerUnit; 0 for a local system.
double AngleUnitOf(const CSDef& system) {
  const ORVDef* const def = Georeferenced(system);
  return def ? internal::DegreesPerUnit(*def) : 0.0;
}

/// Whether there is a datum step between two systems that a CSTransformer accepts.
///
/// Raised: 1043 when nothing is known of how either datum converts and they are not one; a CSTransformer takes all such
/// datums for one.
bool DatumsDiffer(const ORVDef& from, const ORVDef& to) {
  if (!from.GetDatum() || !to.GetDatum()) return false;
  if (!from.GetDatum()->CompareParameters(to.GetDatum())) return true;
  if (!internal::IsOneDatum(*from.GetDatum(), *to.GetDatum())) {
    ORV_FAIL(ErrSourceDatumMethod, "Two datums of unknown method are not one.");
  }
  return false;
}

/// Longitude and latitude on the datum of a system.
ORVDef GeographicOf(const ORVDef& system) {
  const ProjectionDef unprojected(ProjectionMethodUnprojected);
  return ORVDef(system.GetDatum(), &unprojected, nullptr);
}

}  // namespace

// ---- the plan --------------------------------------------------------------------------------------------

struct Conversion::Worker::Chain {
  struct Stage {
    ConversionStage kind;
    CSTransformer transformer;
  };
  std::vector<Stage> stages;
  std::vector<shr::Vec2d> before;  ///< room for a block in front of the destination projection

  void Add(ConversionStage kind, const CSDef& from, const CSDef& to) {
    stages.push_back({kind, CSTransformer(&from, &to, true, true)});
    stages.back().transformer.Initialize();
  }
};

struct Conversion::Shared {
  Shared(const CSDef& source, const CSDef& dest) : from(source.Clone()), to(dest.Clone()) {}

  std::unique_ptr<CSDef> from;
  std::unique_ptr<CSDef> to;
  double fromAngleUnit = 0.0;  ///< degrees in a unit of the points; 0 when they are no angles

  Worker::Chain plan;                        ///< what workers are copies of
  std::optional<internal::GridTrace> grids;  ///< of a datum stage that uses some
  internal::MeridianReach sourceReach;
  internal::MeridianReach destReach;
  std::unique_ptr<Projector> destProjector;  ///< knows the usable part; only asked, never run

  mutable std::mutex mutex;
  mutable std::vector<std::unique_ptr<Worker::Chain>> idle;

  void Plan();
  std::unique_ptr<Worker::Chain> Take() const;
  void GiveBack(std::unique_ptr<Worker::Chain> chain) const;
  void Run(Worker::Chain& chain, shr::Vec2d* points, size_t count, ConversionReport* report) const;
};

void Conversion::Shared::Plan() {
  fromAngleUnit = AngleUnitOf(*from);
  const ORVDef* const source = Georeferenced(*from);
  const ORVDef* const dest = Georeferenced(*to);
  if (source && dest) {
    const bool datumStep = DatumsDiffer(*source, *dest);
    // Equal projections cancel when nothing stands between them, and only then: see CSTransformer's own rule.
    const bool cancel = !datumStep && IsProjected(*source) && IsProjected(*dest) &&
                        source->GetProjection()->Compare(*dest->GetProjection(), nullptr);
    const ORVDef sourceGeographic = GeographicOf(*source), destGeographic = GeographicOf(*dest);
    if (IsProjected(*source) && !cancel) {
      plan.Add(ConversionStageSourceProjection, *source, sourceGeographic);
      sourceReach = internal::MeridianReach(*source->GetProjection());
    }
    if (datumStep) {
      plan.Add(ConversionStageDatum, sourceGeographic, destGeographic);
      for (const DatumStep& step : internal::PlanDatumSteps(*source->GetDatum(), *dest->GetDatum())) {
        const DatumMethod method = step.datum.GetMethod();
        const bool needsTarget = method == DatumMethodMolodensky || method == DatumMethodBursaWolf;
        // Such a route is planned, and fails when points come.
        if (needsTarget && !(step.target.GetEllipsoid()->GetMajorRadius() > 0.0)) {
          ORV_FAIL(ErrNoRoute, "No conversion possible between the specified datums.");
        }
      }
      internal::GridTrace trace(*source->GetDatum(), *dest->GetDatum());
      if (trace.HasGrids()) grids = std::move(trace);
    }
    if (IsProjected(*dest) && !cancel) {
      ORVDef unwarped(*dest);
      unwarped.SetWarp(nullptr);
      plan.Add(ConversionStageDestProjection, destGeographic, unwarped);
      destReach = internal::MeridianReach(*dest->GetProjection());
      destProjector = std::make_unique<Projector>(*dest->GetProjection());
    }
  }
  if (to->HasWarp()) {
    const std::unique_ptr<CSDef> unwarped(to->Clone());
    unwarped->SetWarp(nullptr);
    plan.Add(ConversionStageDestWarp, *unwarped, *to);
  }
}

// ---- making one ------------------------------------------------------------------------------------------

namespace {

/// "source system 'EPSG:4326' (WGS 84)", as much of it as there is.
std::string SideText(const char* side, const CSDef& system) {
  const std::string token = system.GetToken(), shortName = system.GetShortName();
  std::string text = std::string(side) + " system";
  if (!token.empty()) text += " '" + token + "'";
  if (!shortName.empty()) text += " (" + shortName + ")";
  return text;
}

std::string DatumText(const CSDef& system) {
  const ORVDef* const def = Georeferenced(system);
  const DatumDef* const datum = def ? def->GetDatum() : nullptr;
  if (!datum) return "none";
  const char* const token = datum->GetToken();
  const char* const name = datum->GetName();
  if (!token && !name) return "a datum of its own";
  return name ? std::string("'") + name + "'" + (token ? std::string(" (") + token + ")" : "") : token;
}

/// What would help with a failure of CSTransformer::Initialize, and which side it concerns.
std::string Helped(const shr::Exception& e, const CSDef& from, const CSDef& to) {
  const std::string source = SideText("source", from), target = SideText("target", to);
  switch (e.Code()) {
    case ErrTypesDiffer:
      return (Georeferenced(from) ? target : source) +
             ": it is a local system and the other one is georeferenced, so no way leads from one to the other; "
             "give a georeferenced system instead";
    case ErrNoSourceDatum:
      return source + ": it has no datum, and the target's is " + DatumText(to) +
             "; give it its datum, or take the datum off the target when both lie on the same one";
    case ErrNoDestDatum:
      return target + ": it has no datum, and the source's is " + DatumText(from) +
             "; give it its datum, or take the datum off the source when both lie on the same one";
    case ErrSourceDatumMethod:
    case ErrDestDatumMethod:
      return (e.Code() == ErrSourceDatumMethod ? source : target) + ": no way is known from its datum " +
             DatumText(e.Code() == ErrSourceDatumMethod ? from : to) +
             " to any other; only systems on that datum can be converted to it, or a datum of your own with the "
             "parameters of the shift";
    case ErrNoRoute:
      return source + ": no route leads from its datum " + DatumText(from) + " to the target's, " +
             DatumText(to) +
             ", through the known datums (a step that uses regression equations or an NTv2 grid never runs backward); " +
             (ORVKnownDatumsList.Count() == 0 ? "no datums are known: start the library with ORVInitialize"
                                              : "give another datum of the same name on either side");
    default:
      return source + ", " + target + ": " + e.Message();
  }
}

std::unique_ptr<CSDef> ReadSide(const char* side, std::string_view text) {
  try {
    return ORVReadSystem(text);
  } catch (const shr::Exception& e) {
    ORV_FAIL(e.Code(), "%s system: %s%s", side, e.Message(),
             ORVKnownSystemsList.Count() == 0
                 ? " (no systems are known: start the library with ORVInitialize)"
                 : "");
    return nullptr;
  }
}

}  // namespace

Conversion Conversion::Create(std::string_view from, std::string_view to) {
  const std::unique_ptr<CSDef> source = ReadSide("source", from), dest = ReadSide("target", to);
  return Create(*source, *dest);
}

Conversion Conversion::Create(const CSDef& from, const CSDef& to) {
  if (from.HasWarp()) {
    ORV_FAIL(
        ErrCorrupt,
        "%s: its warp cannot be undone; convert from the system without it, or fit a warp of the other direction",
        SideText("source", from).c_str());
  }
  auto shared = std::make_shared<Shared>(from, to);
  try {
    CSTransformer(&from, &to, true, true).Initialize();  // all that can be wrong, in its order
    shared->Plan();
  } catch (const shr::Exception& e) {
    ORV_FAIL(e.Code(), "%s", Helped(e, from, to).c_str());
  }
  return Conversion(std::move(shared));
}

Conversion::Conversion(std::shared_ptr<const Shared> shared) : m_pShared(std::move(shared)) {}
Conversion::Conversion(const Conversion&) = default;
Conversion::Conversion(Conversion&&) noexcept = default;
Conversion& Conversion::operator=(const Conversion&) = default;
Conversion& Conversion::operator=(Conversion&&) noexcept = default;
Conversion::~Conversion() = default;

std::vector<ConversionStage> Conversion::Stages() const {
  std::vector<ConversionStage> kinds;
  for (const Worker::Chain::Stage& stage : m_pShared->plan.stages) kinds.push_back(stage.kind);
  return kinds;
}
const CSDef& Conversion::From() const { return *m_pShared->from; }
const CSDef& Conversion::To() const { return *m_pShared->to; }
double Conversion::FromAngleUnit() const { return m_pShared->fromAngleUnit; }
double Conversion::ToAngleUnit() const { return AngleUnitOf(*m_pShared->to); }

// ---- points ----------------------------------------------------------------------------------------------

namespace {

bool IsPoint(const shr::Vec2d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && !IsMarked(p); }

/// Whether any latitude may be beyond the pole's: also true for some points that are none.  Branch-free: the signs
/// of the distances to the pole are gathered.
bool AnyBeyondPole(const shr::Vec2d* points, size_t count, double pole) {
  uint64_t signs[2] = {0, 0};  // side by side, for neither waits for the other
  const auto sign = [pole](double y) { return std::bit_cast<uint64_t>(pole - std::fabs(y)); };
  size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    signs[0] |= sign(points[i].y) | sign(points[i + 1].y);
    signs[1] |= sign(points[i + 2].y) | sign(points[i + 3].y);
  }
  for (; i < count; ++i) signs[0] |= sign(points[i].y);
  return ((signs[0] | signs[1]) >> 63) != 0;
}

/// Makes points that hold the marker in one coordinate hold it in both.
void MarkWhole(shr::Vec2d* points, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (IsMarked(points[i])) Mark(points[i]);
  }
}

/// Of one block: what became of each point, kept only as far as there is something to tell.
class BlockEvents {
 public:
  explicit BlockEvents(size_t count) : m_Count(count) {}

  /// Marks and notes each point that is none and was not lost before; `why` gives its event.
  template <class Why>
  void Lose(shr::Vec2d* points, Why why) {
    for (size_t i = 0; i < m_Count; ++i) {
      if (IsPoint(points[i]) || IsLost(i)) continue;
      Lose(points, i, why(i));
    }
  }
  void Lose(shr::Vec2d* points, size_t i, ConversionEvent event) {
    if (m_Lost.empty()) m_Lost.assign(m_Count, kNotLost);
    m_Lost[i] = static_cast<signed char>(event);
    Mark(points[i]);
  }
  bool IsLost(size_t i) const { return !m_Lost.empty() && m_Lost[i] != kNotLost; }

  /// Notes the points that `flag(flags)` flags.
  template <class FlagPoints>
  void Note(ConversionEvent event, FlagPoints flag) {
    std::vector<unsigned char>& flags = m_Notes[event - ConversionNotedOutsideGrids];
    unsigned char room[kBlock] = {};
    if (flag(room)) flags.assign(room, room + m_Count);
  }

  void AddTo(ConversionReport& report) const;

 private:
  static constexpr signed char kNotLost = -1;
  static constexpr size_t kNotes = kConversionEvents - ConversionNotedOutsideGrids;

  size_t m_Count;
  std::vector<signed char> m_Lost;             ///< empty as long as none is lost
  std::vector<unsigned char> m_Notes[kNotes];  ///< each empty as long as none is flagged
};

void BlockEvents::AddTo(ConversionReport& report) const {
  const size_t first = report.Points();
  report.AddPoints(m_Count);
  const bool noted =
      std::any_of(std::begin(m_Notes), std::end(m_Notes), [](const auto& f) { return !f.empty(); });
  if (m_Lost.empty() && !noted) return;
  for (size_t i = 0; i < m_Count; ++i) {
    if (IsLost(i)) {
      report.Add(ConversionEvent(m_Lost[i]), first + i);
      continue;
    }
    bool doubtful = false;
    for (size_t note = 0; note < kNotes; ++note) {
      if (m_Notes[note].empty() || m_Notes[note][i] == 0) continue;
      report.Add(ConversionEvent(ConversionNotedOutsideGrids + static_cast<int>(note)), first + i);
      doubtful = true;
    }
    report.AddDoubtful(doubtful ? 1 : 0);
  }
}

}  // namespace

void Conversion::Shared::Run(Worker::Chain& chain, shr::Vec2d* points, size_t count,
                             ConversionReport* report) const {
  if (count > 0 && !points) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return;
  }
  // What can fail fails here, before a point is touched.
  if (const auto missing = count > 0 && grids ? grids->FindMissing() : internal::GridTrace::Missing();
      missing.message) {
    ORV_FAIL(ErrDatumMethod, "%s  %s.", missing.message, internal::GridPlacesText(missing.method).c_str());
  }
  const lanes::KernelTable& kernels = lanes::Kernels();
  const bool fromAngles = fromAngleUnit != 0.0;
  const double pole = fromAngles ? 90.0 / fromAngleUnit : 0.0;
  for (size_t at = 0; at < count; at += kBlock) {
    shr::Vec2d* const block = points + at;
    const size_t n = std::min(count - at, kBlock);
    BlockEvents events(n);

    // What is no point passes the stages as one; it is looked for first only where the report asks for the reason, or
    // where no stage looks.
    const bool looked = report || chain.stages.empty() || chain.stages[0].kind == ConversionStageDestWarp;
    if (looked && kernels.checkMarks(&block->x, n)) {
      events.Lose(block, [](size_t) { return ConversionLostNoPoint; });
    }
    if (fromAngles && AnyBeyondPole(block, n, pole)) {
      for (size_t i = 0; i < n; ++i) {
        if (std::fabs(block[i].y) > pole && !IsMarked(block[i]))
          events.Lose(block, i, ConversionLostLatitude);
      }
    }

    for (Worker::Chain::Stage& stage : chain.stages) {
      const ConversionStage kind = stage.kind;
      if (report && kind == ConversionStageSourceProjection && sourceReach.IsLimited()) {
        events.Note(ConversionNotedFarFromSourceMeridian,
                    [&](unsigned char* flags) { return sourceReach.FlagFarInverse(block, n, flags); });
      }
      if (report && kind == ConversionStageDatum && grids) {
        events.Note(ConversionNotedOutsideGrids,
                    [&](unsigned char* flags) { return grids->FlagOutside(block, n, flags); });
      }
      if (report && kind == ConversionStageDestProjection) {
        if (destReach.IsLimited()) {
          events.Note(ConversionNotedFarFromDestMeridian,
                      [&](unsigned char* flags) { return destReach.FlagFarForward(block, n, flags); });
        }
        chain.before.assign(block, block + n);
      }
      stage.transformer.Transform(block, block, n);
      // A warp looks at nothing that it makes.
      const bool warp = kind == ConversionStageDestWarp;
      if (warp ? !kernels.checkMarks(&block->x, n) : !stage.transformer.CheckUnplottableResult()) continue;
      if (!report) {
        if (!looked) MarkWhole(block, n);
        continue;
      }
      events.Lose(block, [&](size_t i) {
        if (kind == ConversionStageSourceProjection) return ConversionLostSourceProjection;
        if (kind == ConversionStageDatum) return ConversionLostDatum;
        if (warp) return ConversionLostDestWarp;
        return destProjector->LatLonInProjection(chain.before[i]) ? ConversionLostDestProjection
                                                                  : ConversionLostDestArea;
      });
    }
    if (report) events.AddTo(*report);
  }
}

std::unique_ptr<Conversion::Worker::Chain> Conversion::Shared::Take() const {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!idle.empty()) {
      std::unique_ptr<Worker::Chain> chain = std::move(idle.back());
      idle.pop_back();
      return chain;
    }
  }
  return std::make_unique<Worker::Chain>(plan);
}

void Conversion::Shared::GiveBack(std::unique_ptr<Worker::Chain> chain) const {
  const std::lock_guard<std::mutex> lock(mutex);
  try {
    idle.push_back(std::move(chain));
  } catch (const std::bad_alloc&) {  // then the next worker makes one
  }
}

Conversion::Worker Conversion::MakeWorker() const { return Worker(m_pShared, m_pShared->Take()); }

void Conversion::Convert(shr::Vec2d* points, size_t count) const { MakeWorker().Convert(points, count); }
void Conversion::Convert(shr::Vec2d* points, size_t count, ConversionReport& report) const {
  MakeWorker().Convert(points, count, report);
}

Conversion::Worker::Worker(std::shared_ptr<const Shared> shared, std::unique_ptr<Chain> chain)
    : m_pShared(std::move(shared)), m_pChain(std::move(chain)) {}
Conversion::Worker::Worker(Worker&&) noexcept = default;
Conversion::Worker& Conversion::Worker::operator=(Worker&& other) noexcept {
  std::swap(m_pShared, other.m_pShared);
  std::swap(m_pChain, other.m_pChain);
  return *this;
}
Conversion::Worker::~Worker() {
  if (m_pChain) m_pShared->GiveBack(std::move(m_pChain));
}

void Conversion::Worker::Convert(shr::Vec2d* points, size_t count) {
  m_pShared->Run(*m_pChain, points, count, nullptr);
}
void Conversion::Worker::Convert(shr::Vec2d* points, size_t count, ConversionReport& report) {
  m_pShared->Run(*m_pChain, points, count, &report);
}

// ---- there and back --------------------------------------------------------------------------------------

namespace {

constexpr double kEarthRadius = 6371000.0;  // metres, the mean radius

/// Metres on the sphere between two geographic points, by the haversine, which keeps its digits when they are near.
double OnTheSphere(const shr::Vec2d& a, const shr::Vec2d& b) {
  const double dPhi = std::sin(internal::ToRadians(b.y - a.y) / 2);
  const double dLambda = std::sin(internal::ToRadians(b.x - a.x) / 2);
  const double cosines = std::cos(internal::ToRadians(a.y)) * std::cos(internal::ToRadians(b.y));
  return 2.0 * kEarthRadius * std::asin(std::min(1.0, std::sqrt(dPhi * dPhi + cosines * dLambda * dLambda)));
}

}  // namespace

RoundTrip ORVRoundTrip(const Conversion& there, const Conversion& back, const shr::Vec2d* points,
                       size_t count) {
  if (count > 0 && !points) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return {};
  }
  std::vector<shr::Vec2d> moved(points, points + count);
  there.Convert(moved.data(), count);
  back.Convert(moved.data(), count);
  RoundTrip result;
  for (size_t i = 0; i < count; ++i) {
    if (IsMarked(moved[i])) continue;
    const double unit = there.FromAngleUnit();
    const double distance =
        there.FromGeographic()
            ? OnTheSphere({points[i].x * unit, points[i].y * unit}, {moved[i].x * unit, moved[i].y * unit})
            : std::hypot(moved[i].x - points[i].x, moved[i].y - points[i].y);
    if (result.returned++ == 0 || distance > result.largest) {
      result.largest = distance;
      result.worst = i;
    }
  }
  return result;
}

}  // namespace orv
