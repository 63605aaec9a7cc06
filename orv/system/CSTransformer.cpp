#include "orv/system/CSTransformer.h"

#include <cstring>
#include <type_traits>

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/Fail.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/system/ORVDef.h"
#include "orv/warp/WarpDef.h"
#include "orv/warp/WarpTransformer.h"

ORV_UNIT("CSTransformer")

namespace orv {

namespace {

/// Whether a system's projection has to be computed: there is one, and it is not plain longitude and
/// latitude.
bool IsProjected(const ORVDef& system) { return system.HasProjection(false, true); }

/// A method that no projector can serve.
bool HasUnknownMethod(const ProjectionDef& projection) {
  return projection.GetMethod() == ProjectionMethodUnknown || projection.GetMethod() == ProjectionMethodOther;
}

std::unique_ptr<CSDef> CopyOf(const std::unique_ptr<CSDef>& system) {
  return std::unique_ptr<CSDef>(system ? system->Clone() : nullptr);
}
template <class Stage>
std::unique_ptr<Stage> CopyOf(const std::unique_ptr<Stage>& stage) {
  return stage ? std::make_unique<Stage>(*stage) : nullptr;
}
/// Warp transformers are not copied but calibrated anew, which gives the same numbers.
std::unique_ptr<WarpTransformer> CopyOf(const std::unique_ptr<WarpTransformer>& stage) {
  if (!stage) return nullptr;
  WarpDef definition;
  stage->GetSystem(definition);
  return std::make_unique<WarpTransformer>(definition);
}

template <class T>
void DumpSection(const char* title, const std::unique_ptr<T>& part, std::string& text, size_t indent) {
  internal::Dump dump(text, indent);
  dump.Line("%s", title);
  if (part) {
    part->DebugDump(text, indent + 2);
  } else {
    dump.Line("NULL");
  }
}

}  // namespace

CSTransformer::CSTransformer() = default;

CSTransformer::CSTransformer(const CSDef* source, const CSDef* dest, bool sourceWarpEnabled,
                             bool destWarpEnabled) {
  SetSource(source, sourceWarpEnabled);
  SetDest(dest, destWarpEnabled);
}

CSTransformer::CSTransformer(const CSTransformer& other) { Dup(other); }

CSTransformer& CSTransformer::operator=(const CSTransformer& other) {
  Dup(other);
  return *this;
}

CSTransformer::~CSTransformer() = default;

// ---- configuration ---------------------------------------------------------------------------------------
// The old system lives until its setter ends, since the argument may be that very system.

void CSTransformer::SetSource(const CSDef* source, bool warpEnabled) {
  const std::unique_ptr<CSDef> old = std::move(m_pSource);
  m_bInitialized = false;
  if (source) {
    std::string why;
    if (!source->Check(why)) {
      ORV_FAIL(ErrBadParameter, "%s", why.c_str());
      return;
    }
    m_pSource.reset(source->Clone());
  }
  m_bSourceWarp = warpEnabled;
}

void CSTransformer::SetDest(const CSDef* dest, bool warpEnabled) {
  const std::unique_ptr<CSDef> old = std::move(m_pDest);
  m_bInitialized = false;
  if (dest) {
    std::string why;
    if (!dest->Check(why)) {
      ORV_FAIL(ErrBadParameter, "%s", why.c_str());
      return;
    }
    m_pDest.reset(dest->Clone());
  }
  m_bDestWarp = warpEnabled;
}

const CSDef* CSTransformer::GetSource() const { return m_pSource.get(); }
const CSDef* CSTransformer::GetDest() const { return m_pDest.get(); }
bool CSTransformer::GetSourceWarpEnabled() const { return m_bSourceWarp; }
bool CSTransformer::GetDestWarpEnabled() const { return m_bDestWarp; }
bool CSTransformer::IsInitialized() const { return m_bInitialized; }
bool CSTransformer::CheckUnplottableResult() const { return m_bHadUnplottables; }

void CSTransformer::DeleteStages() {
  m_pSourceWarp.reset();
  m_pSourceProjector.reset();
  m_pDatumConverter.reset();
  m_pDestProjector.reset();
  m_pDestWarp.reset();
}

void CSTransformer::Flush() {
  m_pSource.reset();
  m_pDest.reset();
  DeleteStages();
  m_bSourceWarp = false;
  m_bDestWarp = false;
  m_bInitialized = false;
  m_bHadUnplottables = false;
}

void CSTransformer::Dup(const CSTransformer& other) {
  if (this == &other) return;
  Flush();
  m_pSource = CopyOf(other.m_pSource);
  m_pDest = CopyOf(other.m_pDest);
  m_pSourceWarp = CopyOf(other.m_pSourceWarp);
  m_pSourceProjector = CopyOf(other.m_pSourceProjector);
  m_pDatumConverter = CopyOf(other.m_pDatumConverter);
  m_pDestProjector = CopyOf(other.m_pDestProjector);
  m_pDestWarp = CopyOf(other.m_pDestWarp);
  m_bSourceWarp = other.m_bSourceWarp;
  m_bDestWarp = other.m_bDestWarp;
  m_bInitialized = other.m_bInitialized;
}

// ---- stages ----------------------------------------------------------------------------------------------

void CSTransformer::Initialize() {
  m_bInitialized = false;
  if (!m_pSource) {
    ORV_FAIL(ErrWrongState, "Can't transform coordinates because no source coordinate system was specified.");
    return;
  }
  if (!m_pDest) {
    ORV_FAIL(ErrWrongState, "Can't transform coordinates because no target coordinate system was specified.");
    return;
  }
  std::string why;
  if (!m_pSource->Check(why) || !m_pDest->Check(why)) {
    ORV_FAIL(ErrBadParameter, "%s", why.c_str());
    return;
  }
  DeleteStages();

  // The checks above refuse unknown methods before the codes 1037 and 1038 (and 1039 and 1040 for method 0)
  // are reached, unless a derived class answers otherwise.
  if (m_pSource->HasWarp() && m_bSourceWarp) {
    if (m_pSource->GetWarp()->GetMethod() == 0) {
      ORV_FAIL(
          ErrSourceWarp,
          "Can't transform coordinates because the warping method in the source coordinate system is unknown.  "
          "Please specify valid warping parameters or use a coordinate system that does not have a warp.");
      return;
    }
    m_pSourceWarp = std::make_unique<WarpTransformer>(*m_pSource->GetWarp());
  }
  if (m_pSource->Type() != m_pDest->Type()) {
    ORV_FAIL(
        ErrTypesDiffer,
        "Can't transform coordinates because the coordinate system types are mismatched.  Transformation "
        "between global and unreferenced coordinate systems is not possible.");
    return;
  }
  if (m_pSource->Type() == CSTypeORV) {
    BuildGeoreferencedStages(static_cast<const ORVDef&>(*m_pSource), static_cast<const ORVDef&>(*m_pDest));
  }
  if (m_pDest->HasWarp() && m_bDestWarp) {
    if (m_pDest->GetWarp()->GetMethod() == 0) {
      ORV_FAIL(
          ErrDestWarp,
          "Can't transform coordinates because the warping method in the target coordinate system is unknown.  "
          "Please specify valid warping parameters or use a coordinate system that does not have a warp.");
      return;
    }
    m_pDestWarp = std::make_unique<WarpTransformer>(*m_pDest->GetWarp());
  }
  m_bInitialized = true;
  m_bHadUnplottables = false;
}

void CSTransformer::BuildGeoreferencedStages(const ORVDef& source, const ORVDef& dest) {
  if (IsProjected(source)) {
    if (HasUnknownMethod(*source.GetProjection())) {
      ORV_FAIL(
          ErrSourceProjection,
          "Can't transform coordinates because the source coordinate system has an unknown projection method.  "
          "Please specify valid projection parameters or use an unprojected coordinate system.");
      return;
    }
    m_pSourceProjector = std::make_unique<Projector>(*source.GetProjection());
  }
  BuildDatumStage(source, dest);
  if (IsProjected(dest)) {
    if (HasUnknownMethod(*dest.GetProjection())) {
      ORV_FAIL(
          ErrDestProjection,
          "Can't transform coordinates because the target coordinate system has an unknown projection method.  "
          "Please specify valid projection parameters or use an unprojected coordinate system.");
      return;
    }
    m_pDestProjector = std::make_unique<Projector>(*dest.GetProjection());
  }
  // Deliberate: a datum stage does not keep equal projections from cancelling.
  if (IsProjected(source) && IsProjected(dest) &&
      source.GetProjection()->Compare(*dest.GetProjection(), nullptr)) {
    m_pSourceProjector.reset();
    m_pDestProjector.reset();
  }
}

void CSTransformer::BuildDatumStage(const ORVDef& source, const ORVDef& dest) {
  const DatumDef* const from = source.GetDatum();
  const DatumDef* const to = dest.GetDatum();
  if (from && to) {
    if (from->CompareParameters(to)) return;
    if (from->GetMethod() == 0) {
      ORV_FAIL(
          ErrSourceDatumMethod,
          "Can't transform coordinates because the source coordinate system has an unknown datum conversion "
          "method.  Please specify a valid datum.");
      return;
    }
    if (to->GetMethod() == 0) {
      ORV_FAIL(
          ErrDestDatumMethod,
          "Can't transform coordinates because the target coordinate system has an unknown datum conversion "
          "method.  Please specify a valid datum.");
      return;
    }
    m_pDatumConverter = std::make_unique<DatumConverter>(from, to);
    m_pDatumConverter->Initialize();
  } else if (from) {
    ORV_FAIL(
        ErrNoDestDatum,
        "Can't transform coordinates because the target coordinate system's datum was not specified.  Please "
        "specify a datum.");
  } else if (to) {
    ORV_FAIL(
        ErrNoSourceDatum,
        "Can't transform coordinates because the source coordinate system's datum was not specified.  Please "
        "specify a datum.");
  }
}

// ---- points ----------------------------------------------------------------------------------------------

void CSTransformer::Transform(const shr::Vec2d* in, shr::Vec2d* out, size_t count) const {
  if (!m_bInitialized) {
    ORV_FAIL(ErrWrongState, "Transform not initialized.  API functions called in improper order.");
    return;
  }
  if (count > 0 && (!in || !out)) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return;
  }
  m_bHadUnplottables = false;
  static_assert(std::is_trivially_copyable_v<shr::Vec2d>);
  if (count > 0 && in != out) std::memmove(out, in, count * sizeof *out);
  if (m_pSourceWarp) {
    // Deliberate: only here, not in Initialize.
    ORV_FAIL(ErrCorrupt, "Inverse warp not supported.");
    return;
  }
  if (count == 0) return;  // the stages refuse to work on nothing

  if (m_pSourceProjector) {
    m_pSourceProjector->TransformInverse(out, count);
    if (m_pSourceProjector->CheckUnplottableResult()) m_bHadUnplottables = true;
  }
  if (m_pDatumConverter) {
    m_pDatumConverter->Convert(out, count);
    if (m_pDatumConverter->CheckUnplottableResult()) m_bHadUnplottables = true;
  }
  if (m_pDestProjector) {
    m_pDestProjector->TransformForward(out, count);
    if (m_pDestProjector->CheckUnplottableResult()) m_bHadUnplottables = true;
  }
  if (m_pDestWarp) m_pDestWarp->TransformForward(out, count);
}

void CSTransformer::Transform(const std::vector<shr::Vec2d>& in, std::vector<shr::Vec2d>& out) const {
  out.resize(in.size());
  Transform(in.data(), out.data(), in.size());
}

void CSTransformer::DebugDump(std::string& text, size_t indent) const {
  internal::Dump(text, indent).Line("CSTransformer at %p", static_cast<const void*>(this));
  DumpSection("Source:", m_pSource, text, indent);
  DumpSection("Destination:", m_pDest, text, indent);
  DumpSection("Source warp transformer:", m_pSourceWarp, text, indent);
  DumpSection("Source projector:", m_pSourceProjector, text, indent);
  DumpSection("Datum converter:", m_pDatumConverter, text, indent);
  DumpSection("Dest projector:", m_pDestProjector, text, indent);
  DumpSection("Dest warp transformer:", m_pDestWarp, text, indent);
}

}  // namespace orv
