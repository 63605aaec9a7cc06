#include "orv/projection/Projector.h"

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Dump.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/lanes/Blocks.h"
#include "orv/lanes/Dispatch.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/internal/FpGuard.h"

ORV_UNIT("Projector")

namespace orv {

namespace {

static_assert(sizeof(shr::Vec2d) == 2 * sizeof(double), "a batch of points must be interleaved doubles");

ProjectionParameters InRadians(const ProjectionParameters& degrees) {
  ProjectionParameters p = degrees;
  for (double ProjectionParameters::*angle :
       {&ProjectionParameters::Lon0, &ProjectionParameters::Lon1, &ProjectionParameters::Lon2,
        &ProjectionParameters::Lat0, &ProjectionParameters::Lat1, &ProjectionParameters::Lat2,
        &ProjectionParameters::Alpha}) {
    p.*angle = internal::ToRadians(p.*angle);
  }
  return p;
}

using Operation = bool (ProjActor::*)(shr::Vec2d*, size_t);

// Runs an engine on a block.  False after a report; the flag is then set if it was a trap that failed the
// batch.
bool RunEngine(ProjActor& actor, Operation operation, double* xy, size_t n, internal::FpGuard& guard,
               bool& hadUnplottables) {
  auto* const points = reinterpret_cast<shr::Vec2d*>(xy);
  if (guard([&] { return (actor.*operation)(points, n); })) return true;
  if (guard.Trapped()) hadUnplottables = true;
  return ORV_FAIL(ErrCorrupt, "Projection failure.");
}

}  // namespace

Projector::Projector() = default;
Projector::Projector(const ProjectionDef& def) { SetSystem(&def); }
Projector::Projector(const Projector& other) { CopyAll(other); }
Projector& Projector::operator=(const Projector& other) {
  CopyAll(other);
  return *this;
}
Projector::~Projector() = default;

void Projector::SetSystem(const ProjectionDef* def) {
  m_pActor.reset();
  if (!def) {
    m_Projection.Flush();  // deliberate: the working block stays as it was
    return;
  }
  if (def->CheckParameters() != ProjectionParameterIDNone) {
    ORV_FAIL(ErrBadParameter, "Invalid projection specified.");
    return;
  }
  if (def->GetMethod() == ProjectionMethodOther) {
    ORV_FAIL(ErrBadParameter, "Transform not possible with unspecified projection.");
    return;
  }
  m_Projection = *def;
  m_Working = InRadians(*def->GetParameters());
  std::unique_ptr<ProjActor> actor = MakeProjActor(m_Working.method);
  if (!actor) {
    ORV_FAIL(ErrCorrupt, "Unknown projection method.");
    return;
  }
  actor->SetParameters(m_Working);
  m_pActor = std::move(actor);
}

void Projector::GetSystem(ProjectionDef& out) const { out = m_Projection; }

bool Projector::CanTransform(const shr::Vec2d* points, size_t count) const {
  if (!points || count == 0) return ORV_FAIL(ErrBadParameter, "Nothing to transform.");
  if (m_Projection.GetMethod() == ProjectionMethodUnknown) {
    return ORV_FAIL(ErrCorrupt, "Projection not initialized.");
  }
  if (!m_pActor) return ORV_FAIL(ErrCorrupt, "Transform not initialized.");
  return true;
}

void Projector::TransformForward(shr::Vec2d* points, size_t count) {
  if (!CanTransform(points, count)) return;
  if (m_Working.method == ProjectionMethodUnprojected) return;  // deliberate: the flag keeps its value
  const double scale = m_Working.Scale, xOrg = m_Working.xOrg, yOrg = m_Working.yOrg;
  m_bHadUnplottables = false;
  FpFault() = false;
  internal::FpGuard guard;
  lanes::ForEachBlock(&points->x, count, [&](const lanes::KernelTable& passes, double* xy, size_t n) {
    passes.beforeForward(xy, n);
    if (!RunEngine(*m_pActor, &ProjActor::Forward, xy, n, guard, m_bHadUnplottables)) return;
    // Deliberate: the false origin is added before the scale is applied.
    if (passes.afterForward(xy, n, xOrg, yOrg, scale)) m_bHadUnplottables = true;
  });
}

void Projector::TransformForward(std::vector<shr::Vec2d>& points) {
  TransformForward(points.data(), points.size());
}

void Projector::TransformInverse(shr::Vec2d* points, size_t count) {
  if (!CanTransform(points, count)) return;
  const double scale = m_Working.Scale, xOrg = m_Working.xOrg, yOrg = m_Working.yOrg;
  const bool isProjected = m_Working.method != ProjectionMethodUnprojected;
  m_bHadUnplottables = false;
  FpFault() = false;
  internal::FpGuard guard;
  lanes::ForEachBlock(&points->x, count, [&](const lanes::KernelTable& passes, double* xy, size_t n) {
    if (!isProjected) {
      if (passes.checkMarks(xy, n)) m_bHadUnplottables = true;
      return;
    }
    if (passes.beforeInverse(xy, n, scale, xOrg, yOrg)) m_bHadUnplottables = true;
    if (!RunEngine(*m_pActor, &ProjActor::Inverse, xy, n, guard, m_bHadUnplottables)) return;
    if (passes.afterInverse(xy, n)) m_bHadUnplottables = true;
  });
}

void Projector::TransformInverse(std::vector<shr::Vec2d>& points) {
  TransformInverse(points.data(), points.size());
}

bool Projector::CheckUnplottableResult() const { return m_bHadUnplottables; }

bool Projector::LatLonInProjection(const shr::Vec2d& point) const { return LatLonInProjection(&point); }
bool Projector::LatLonInProjection(const shr::Vec2d* point) const {
  return m_pActor && m_pActor->IsLatLonInside(*m_Projection.GetParameters(), point);
}

bool Projector::OffsetSplitObject(const shr::Vec2d* points, size_t count, double* dx, double* dy) {
  return m_pActor && m_pActor->GetSplitOffset(*m_Projection.GetParameters(), points, count, dx, dy);
}

void Projector::CopyAll(const Projector& other) {
  if (this == &other) return;
  Flush();
  m_Projection = other.m_Projection;
  m_Working = other.m_Working;
  m_bHadUnplottables = other.m_bHadUnplottables;
  if (other.m_pActor) m_pActor = other.m_pActor->Clone();
}

void Projector::Flush() {
  m_pActor.reset();
  m_Projection.Flush();
  m_bHadUnplottables = false;
}

void Projector::DebugDump(std::string& text, size_t indentation) const {
  internal::Dump dump(text, indentation);
  dump.Line("Projector this=%p:", static_cast<const void*>(this));
  dump.Line("---m_Projection:");
  m_Projection.DebugDump(text, indentation);
  dump.Line("---m_pActor = %p", static_cast<const void*>(m_pActor.get()));
  dump.Line("---m_bHadUnplottables = %s", internal::TrueOrFalse(m_bHadUnplottables));
}

}  // namespace orv
