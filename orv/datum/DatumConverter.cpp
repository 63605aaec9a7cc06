#include "orv/datum/DatumConverter.h"

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/Fail.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/DatumMethods.h"
#include "orv/datum/internal/RoutePlanner.h"
#include "orv/lanes/Blocks.h"
#include "orv/lanes/Dispatch.h"

ORV_UNIT("DatumConverter")

namespace orv {

namespace {

bool SetDatum(DatumDef& held, const DatumDef* datum) {
  DatumDef copy;
  if (datum) copy = *datum;  // it may be the one that is held
  held.Flush();
  if (copy.CheckParameters() != DatumParameterIDNone) {
    return ORV_FAIL(ErrBadParameter, "Invalid datum parameters.");
  }
  held = copy;
  return true;
}

}  // namespace

DatumConverter::DatumConverter() = default;
DatumConverter::DatumConverter(const DatumDef* source, const DatumDef* dest) {
  SetSourceDatum(source);
  SetDestDatum(dest);
}
DatumConverter::DatumConverter(const DatumConverter& other) { CopyAll(other); }
DatumConverter& DatumConverter::operator=(const DatumConverter& other) {
  if (this != &other) CopyAll(other);
  return *this;
}
DatumConverter::~DatumConverter() = default;

void DatumConverter::CopyAll(const DatumConverter& other) {
  m_Source = other.m_Source;
  m_Dest = other.m_Dest;
  m_Route = other.m_Route;
  m_bHadUnplottables = false;
}

void DatumConverter::SetSourceDatum(const DatumDef* datum) {
  m_Route.clear();
  SetDatum(m_Source, datum);
}
void DatumConverter::SetDestDatum(const DatumDef* datum) {
  m_Route.clear();
  SetDatum(m_Dest, datum);
}
void DatumConverter::GetSourceDatum(DatumDef& out) const { out = m_Source; }
void DatumConverter::GetDestDatum(DatumDef& out) const { out = m_Dest; }

void DatumConverter::Initialize() { Initialize({}); }

void DatumConverter::Initialize(const std::vector<DatumMethod>& allowed) {
  m_Route.clear();
  m_bHadUnplottables = false;
  const DatumList& known = ORVKnownDatumsList;
  std::vector<internal::PlannedStep> plan;
  if (!internal::PlanRoute(m_Source, m_Dest, known, allowed, plan)) {
    ORV_FAIL(ErrNoRoute, "No conversion possible between the specified datums.");
    return;
  }
  for (const internal::PlannedStep& planned : plan) {
    Step step;
    if (planned.kind == internal::PlannedStep::Identity) {
      step.parameters.method = DatumMethodNone;
    } else {
      step.parameters = *planned.datum->GetParameters();
      // Deliberate: backward toggles the flag, so a datum that carries it runs forward then.
      if (planned.kind == internal::PlannedStep::Backward) step.parameters.inverse = !step.parameters.inverse;
      const int target = known.FindSpecial(step.parameters.target, known.First());
      if (target != 0) step.targetEllipsoid = *known.Enum(target)->GetEllipsoid();
    }
    step.ready =
        std::make_shared<internal::DatumStep>(step.parameters, step.targetEllipsoid, internal::Grids());
    m_Route.push_back(step);
  }
}

void DatumConverter::Convert(std::vector<shr::Vec2d>& points) { Convert(points.data(), points.size()); }

void DatumConverter::Convert(shr::Vec2d* points, size_t count) {
  if (m_Route.empty()) {
    Initialize();
    if (m_Route.empty()) return;
  }
  m_bHadUnplottables = false;
  if (!points) count = 0;

  // Whatever can fail fails here, before a point is touched.
  size_t steps = 0;  // that run
  const char* failure = nullptr;
  for (; steps < m_Route.size(); ++steps) {
    const internal::DatumStep& step = *m_Route[steps].ready;
    failure = step.Prepare();
    if (failure) break;
  }

  // All stages block by block, while a block is in the cache.  A step that fails leaves the points as far as the
  // steps in front of it take them.
  double offsets[lanes::kBlockPoints];
  const auto convert = [&](const lanes::KernelTable& kernels, double* block, size_t n) {
    if (kernels.beforeShift(block, n, offsets)) m_bHadUnplottables = true;
    for (size_t step = 0; step < steps; ++step) m_Route[step].ready->Run(block, n);
    if (!failure && kernels.afterShift(block, n, offsets)) m_bHadUnplottables = true;
  };
  lanes::ForEachBlock(count > 0 ? &points->x : nullptr, count, convert);
  if (failure) ORV_FAIL(ErrDatumMethod, "%s", failure);
}

bool DatumConverter::CheckUnplottableResult() const { return m_bHadUnplottables; }

void DatumConverter::Flush() { *this = DatumConverter(); }

void DatumConverter::DebugDump(std::string& text, size_t indent) const {
  internal::Dump dump(text, indent);
  dump.Line("DatumConverter this=%p:", static_cast<const void*>(this));
  dump.Line("---Source Datum:");
  m_Source.DebugDump(text, indent);
  dump.Line("---Destination Datum:");
  m_Dest.DebugDump(text, indent);
  dump.Line("---Transforms (count=%d):", static_cast<int>(m_Route.size()));
  int number = 0;
  for (const Step& step : m_Route) {
    dump.Line("Step %d:", ++number);
    DatumDef::DebugDumpParameters(&step.parameters, text, indent);
    dump.Line("Target Ellipsoid:");
    step.targetEllipsoid.DebugDump(text, indent);
  }
  dump.Line("---bHadUnplottables = %s", internal::TrueOrFalse(m_bHadUnplottables));
}

}  // namespace orv
