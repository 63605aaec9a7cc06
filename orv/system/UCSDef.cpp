#include "orv/system/UCSDef.h"

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/TextBlock.h"
#include "orv/system/internal/SystemRecord.h"

ORV_UNIT("UCSDef")

namespace orv {

namespace {

constexpr const char* kCorrupt = "Corrupt data encountered in encoded coordinate system.";
constexpr internal::BlockSyntax kBlock = {"UCSDef", kCorrupt, kCorrupt, kCorrupt,
                                          kCorrupt, kCorrupt, kCorrupt, kCorrupt};
constexpr const char* kBadRecord =
    "Previously serialized unreferenced coordinate system (UCS) data is corrupt or has an unrecognized version.";

}  // namespace

template <class Walker, class Self>
void UCSDef::Fields(Walker& w, Self& d) {
  w.Text("Token", d.m_Token, !d.m_Token.empty());
  w.Text("Name", d.m_Name, !d.m_Name.empty());
  w.Text("Comment", d.m_Comment, !d.m_Comment.empty());
  w.Double("Scale", d.m_Scale);
  w.Double("XOrg", d.m_XOrg);
  w.Double("YOrg", d.m_YOrg);
  w.Block("Georef", d.m_Warp, d.HasWarp());
}

UCSDef::UCSDef() : CSDef(CSTypeUCS) {}

UCSDef::UCSDef(double scale, double x, double y, const WarpDef* warp) : UCSDef() {
  SetScale(scale);
  SetOrigin(x, y);
  UCSDef::SetWarp(warp);
}

UCSDef::UCSDef(double scale, shr::Vec2d& origin, const WarpDef* warp)
    : UCSDef(scale, origin.x, origin.y, warp) {}

UCSDef::UCSDef(const UCSDef& other) : UCSDef() { CopyAll(other); }

UCSDef& UCSDef::operator=(const UCSDef& other) {
  CopyAll(other);
  return *this;
}

UCSDef::~UCSDef() = default;

UCSDef* UCSDef::Clone() const { return new UCSDef(*this); }

void UCSDef::Flush() {
  m_Scale = 1.0;
  m_XOrg = 0.0;
  m_YOrg = 0.0;
  // Deliberate: the texts and the warp stay.
}

void UCSDef::CopyAll(const UCSDef& other) {
  if (this == &other) return;
  Flush();
  CSDef::operator=(other);
  m_Scale = other.m_Scale;
  m_XOrg = other.m_XOrg;
  m_YOrg = other.m_YOrg;
  m_Warp = other.m_Warp;
}

double UCSDef::GetScale() const { return m_Scale; }

void UCSDef::SetScale(double scale) {
  if (scale < 0.0) {
    ORV_FAIL(ErrBadParameter, "Scale parameter must not be negative.");
    return;
  }
  m_Scale = scale;
}

void UCSDef::GetOrigin(double& x, double& y) const {
  x = m_XOrg;
  y = m_YOrg;
}
void UCSDef::GetOrigin(shr::Vec2d& origin) const { origin = shr::Vec2d(m_XOrg, m_YOrg); }
void UCSDef::SetOrigin(double x, double y) {
  m_XOrg = x;
  m_YOrg = y;
}
void UCSDef::SetOrigin(const shr::Vec2d& origin) { SetOrigin(origin.x, origin.y); }

void UCSDef::SetWarp(const WarpDef* warp) {
  if (!warp) {
    m_Warp.Flush();
  } else if (warp != &m_Warp) {
    m_Warp = *warp;
  }
}
const WarpDef* UCSDef::GetWarp() const { return &m_Warp; }
bool UCSDef::HasWarp() const { return m_Warp.GetMethod() != 0; }

bool UCSDef::Check() const {
  std::string why;
  return Check(why);
}

bool UCSDef::Check(std::string& why) const {
  why.clear();
  if (m_Scale < 0.0) {
    why = "Scale must not be negative.";
    return false;
  }
  if (HasWarp() && !m_Warp.Validate()) {
    why = "One or more warping parameters not valid.";
    return false;
  }
  return true;
}

bool UCSDef::Compare(const CSDef& other, bool ignoreWarp, std::string* why) const {
  if (why) why->clear();
  const auto differs = [why](const char* difference) {
    if (why) *why = difference;
    return false;
  };
  if (Type() != other.Type()) return differs("Coordinate systems are not the same type (ORV versus UCS).");
  // Deliberate: neither scale nor origin is compared.
  if (ignoreWarp) return true;
  if (const char* const difference = WarpPresenceDiffers(*this, other)) return differs(difference);
  if (!HasWarp()) return true;
  return m_Warp.Compare(static_cast<const UCSDef&>(other).m_Warp) ||
         differs("Warp parameters are different.");
}

void UCSDef::EncodeToText(std::string& out) const { internal::WriteBlock(*this, kBlock, out); }

void UCSDef::DecodeBlock(const std::string& text, size_t* at) {
  internal::ReadBlock(*this, kBlock, ORV_SITE, text, at);
}

void UCSDef::DecodeFromText(const std::string& data, size_t* offset) {
  size_t at = offset ? *offset : 0;
  DecodeBlock(data, &at);
  if (offset) *offset = at;
}

void UCSDef::Serialize(shr::ISerialize& archive) {
  if (archive.IsStoring()) {
    internal::StoreRecord(*this, archive);
    return;
  }
  UCSDef loaded;
  if (internal::LoadRecord(loaded, archive, ORV_SITE, kBadRecord)) CopyAll(loaded);
}

void UCSDef::DebugDump(std::string& text, size_t indent) const {
  internal::Dump dump(text, indent);
  dump.Line("Unref this=%p:", static_cast<const void*>(this));
  CSDef::DebugDump(text, indent);
  dump.Line("Scale      = %24.6f", m_Scale)
      .Line("XOrg       = %24.6f", m_XOrg)
      .Line("YOrg       = %24.6f", m_YOrg)
      .Line("Warp:");
  m_Warp.DebugDump(text, indent + 2);
}

}  // namespace orv
