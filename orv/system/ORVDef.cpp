#include "orv/system/ORVDef.h"

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/TextBlock.h"
#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/internal/SystemRecord.h"
#include "orv/warp/WarpDef.h"

ORV_UNIT("ORVDef")

namespace orv {

namespace {

constexpr internal::BlockSyntax kBlock = {
    "ORVDef",
    "Corrupt coordinate system data.  Malformed or missing header.",
    "Corrupt coordinate system data.  Expected BLOCKBEGIN.",
    "Corrupt coordinate system data.  Expected ORVDef block.",
    "Corrupt coordinate system data.  Expected end of block.",
    "Unexpected end of encoded data.",
    "Unexpected end of encoded data.",
    "Unexpected end of encoded coordinate system data.",
};
constexpr const char* kBadRecord =
    "Previously serialized global coordinate system (ORV) data is corrupt or has an unrecognized version.";

template <class T>
std::unique_ptr<T> CopyOf(const std::unique_ptr<T>& part) {
  return part ? std::make_unique<T>(*part) : nullptr;
}
template <class T>
std::shared_ptr<const T> CopyOf(const std::shared_ptr<const T>& part) {
  return part ? std::make_shared<const T>(*part) : nullptr;
}

template <class Pointer>
void DumpPart(const Pointer& part, std::string& text, size_t indent) {
  if (part) {
    part->DebugDump(text, indent + 2);
  } else {
    internal::Dump(text, indent).Line("NONE");
  }
}

}  // namespace

template <class Walker, class Self>
void ORVDef::Fields(Walker& w, Self& d) {
  w.Text("Token", d.m_Token, !d.m_Token.empty());
  w.Text("Name", d.m_Name, !d.m_Name.empty());
  w.Text("Comment", d.m_Comment, !d.m_Comment.empty());
  w.Part("Projection", d.m_pProjection);
  w.Part("Datum", d.m_pDatum);
  w.Part("Georef", d.m_pWarp);
}

ORVDef::ORVDef() : CSDef(CSTypeORV) {}

ORVDef::ORVDef(const DatumDef* datum, const ProjectionDef* projection, const WarpDef* warp) : ORVDef() {
  SetDatum(datum);
  SetProjection(projection);
  ORVDef::SetWarp(warp);
}

ORVDef::ORVDef(const ORVDef& other) : ORVDef() { CopyAll(other); }

ORVDef& ORVDef::operator=(const ORVDef& other) {
  CopyAll(other);
  return *this;
}

ORVDef::~ORVDef() = default;

ORVDef* ORVDef::Clone() const { return new ORVDef(*this); }

void ORVDef::Flush() {
  m_pProjection.reset();
  m_pDatum.reset();
  m_pWarp.reset();
  m_Name.clear();
  m_Token.clear();
  m_POSC = 0;
  m_USGS = 0;
  m_LegacyName.clear();
  // Deliberate: the comment stays.
}

void ORVDef::CopyAll(const ORVDef& other) {
  if (this == &other) return;
  Flush();
  CSDef::operator=(other);
  m_POSC = other.m_POSC;
  m_USGS = other.m_USGS;
  m_LegacyName = other.m_LegacyName;
  // Past the setters: a decoded system may hold parts that these refuse.
  m_pProjection = CopyOf(other.m_pProjection);
  m_pDatum = CopyOf(other.m_pDatum);
  m_pWarp = CopyOf(other.m_pWarp);
}

// ---- parts -----------------------------------------------------------------------------------------------
// The old part lives until its setter ends, since the argument may be that very part.

void ORVDef::SetDatum(const DatumDef* datum) {
  const std::shared_ptr<const DatumDef> old = std::move(m_pDatum);
  if (!datum) return;
  if (datum->CheckParameters() != 0) {
    ORV_FAIL(ErrBadParameter, "Datum parameters not valid.");
    return;
  }
  m_pDatum = std::make_shared<const DatumDef>(*datum);
}

void ORVDef::SetProjection(const ProjectionDef* projection) {
  TakeProjection(projection ? std::make_unique<ProjectionDef>(*projection) : nullptr);
}

void ORVDef::TakeProjection(std::unique_ptr<ProjectionDef> projection) {
  m_pProjection.reset();
  if (!projection) return;
  const ProjectionParameterID bad = projection->CheckParameters();
  if (bad != ProjectionParameterIDNone) {
    ORV_FAIL(ErrBadParameter, "Projection parameters not valid (check failed on parameter '%s').",
             internal::EmptyIfNull(ProjectionDef::ParameterName(bad)));
    return;
  }
  m_pProjection = std::move(projection);
}

void ORVDef::SetWarp(const WarpDef* warp) {
  const std::unique_ptr<WarpDef> old = std::move(m_pWarp);
  if (!warp) return;
  if (!warp->Validate()) {
    ORV_FAIL(ErrBadParameter, "Warp parameters not valid.");
    return;
  }
  m_pWarp = std::make_unique<WarpDef>(*warp);
}

const DatumDef* ORVDef::GetDatum() const { return m_pDatum.get(); }
const ProjectionDef* ORVDef::GetProjection() const { return m_pProjection.get(); }
const WarpDef* ORVDef::GetWarp() const { return m_pWarp.get(); }

bool ORVDef::HasDatum(bool requireMethod) const {
  return m_pDatum && !(requireMethod && m_pDatum->GetMethod() == 0);
}

bool ORVDef::HasProjection(bool requireKnownMethod, bool excludeGeographic) const {
  if (!m_pProjection) return false;
  if (requireKnownMethod && m_pProjection->IsUnknown(false)) return false;
  return !(excludeGeographic && m_pProjection->GetMethod() == ProjectionMethodUnprojected);
}

bool ORVDef::HasWarp() const { return m_pWarp && m_pWarp->GetMethod() != 0; }

int ORVDef::GetPOSC() const { return m_POSC; }
void ORVDef::SetPOSC(int posc) { m_POSC = posc; }
int ORVDef::GetUSGS() const { return m_USGS; }
void ORVDef::SetUSGS(int usgs) { m_USGS = usgs; }
const char* ORVDef::GetLegacyName() const { return internal::NullIfEmpty(m_LegacyName); }
void ORVDef::SetLegacyName(const char* name) { m_LegacyName = internal::EmptyIfNull(name); }

// ---- verdicts --------------------------------------------------------------------------------------------

bool ORVDef::Check() const {
  std::string why;
  return Check(why);
}

bool ORVDef::Check(std::string& why) const {
  why.clear();
  if (m_pProjection && m_pProjection->CheckParameters(why) != 0) return false;
  if (m_pDatum && m_pDatum->CheckParameters(why) != 0) return false;
  if (HasWarp() && !m_pWarp->Validate()) {
    why = "One or more warping/georeference parameters not valid.";
    return false;
  }
  return true;
}

bool ORVDef::Compare(const CSDef& other, bool ignoreWarp, std::string* why) const {
  if (why) why->clear();
  std::string room;
  const char* const difference = Type() != other.Type()
                                     ? "Coordinate systems are not the same type (ORV versus UCS)."
                                     : FirstDifference(static_cast<const ORVDef&>(other), ignoreWarp, room);
  if (difference && why) *why = difference;
  return !difference;
}

/// The explanation of the first difference, kept in `room` when it is made up; null when there is none.
const char* ORVDef::FirstDifference(const ORVDef& other, bool ignoreWarp, std::string& room) const {
  const bool projected = HasProjection(true, false);
  const bool otherProjected = other.HasProjection(true, false);
  if (projected && !otherProjected) return "First system is projected and second system isn't.";
  if (otherProjected && !projected) return "Second system is projected and first system isn't.";

  const bool hasDatum = HasDatum(true);
  const bool otherHasDatum = other.HasDatum(true);
  if (hasDatum && !otherHasDatum) return "First system has datum and second system doesn't.";
  if (otherHasDatum && !hasDatum) return "Second system has datum and first system doesn't.";

  if (!ignoreWarp) {
    if (const char* const difference = WarpPresenceDiffers(*this, other)) return difference;
  }

  if (m_pProjection) {
    // Both are projected, or neither: then the second may be missing where the first has an unknown method.
    const ProjectionParameters none;
    const ProjectionParameters& second = other.m_pProjection ? *other.m_pProjection->GetParameters() : none;
    ProjectionParameterID which = ProjectionParameterIDNone;
    if (!ProjectionDef::CompareParameters(*m_pProjection->GetParameters(), second, &which)) {
      room = internal::Format("Projection parameter differs (%s).",
                              internal::EmptyIfNull(ProjectionDef::ParameterName(which)));
      return room.c_str();
    }
  }

  // Deliberate: a datum without a method that only the second holds makes no difference.
  if (m_pDatum && !(other.m_pDatum && m_pDatum->CompareParameters(other.m_pDatum.get()))) {
    return "Datum parameters differ.";
  }

  if (ignoreWarp || !m_pWarp || !other.m_pWarp) return nullptr;
  return m_pWarp->Compare(*other.m_pWarp) ? nullptr : "Warp parameters differ.";
}

// ---- texts -----------------------------------------------------------------------------------------------

void ORVDef::EncodeToText(std::string& out) const { internal::WriteBlock(*this, kBlock, out); }

void ORVDef::DecodeBlock(const std::string& text, size_t* at) {
  internal::ReadBlock(*this, kBlock, ORV_SITE, text, at);
}

void ORVDef::DecodeFromText(const std::string& data, size_t* offset) {
  size_t at = offset ? *offset : 0;
  DecodeBlock(data, &at);
  if (offset) *offset = at;
}

void ORVDef::Serialize(shr::ISerialize& archive) {
  if (archive.IsStoring()) {
    internal::StoreRecord(*this, archive);
    return;
  }
  ORVDef loaded;
  if (internal::LoadRecord(loaded, archive, ORV_SITE, kBadRecord)) CopyAll(loaded);
}

void ORVDef::DebugDump(std::string& text, size_t indent) const {
  internal::Dump dump(text, indent);
  dump.Line("ORVDef at %p", static_cast<const void*>(this));
  CSDef::DebugDump(text, indent);
  dump.Line("POSC:     %d", m_POSC).Line("USGS:     %d", m_USGS);
  DumpPart(m_pProjection, text, indent);
  dump.Line("Datum:");
  DumpPart(m_pDatum, text, indent);
  dump.Line("Warp:");
  DumpPart(m_pWarp, text, indent);
}

}  // namespace orv
