#include "orv/system/CSDef.h"

#include <memory>

#include "orv/core/EncodeText.h"
#include "orv/core/internal/Dump.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"

ORV_UNIT("CSDef")

namespace orv {

CSDef::CSDef() = default;
CSDef::CSDef(CSType type) : m_Type(type) {}
CSDef::CSDef(const CSDef&) = default;
// The texts alone: an object's type never changes.
CSDef& CSDef::operator=(const CSDef& other) {
  m_Token = other.m_Token;
  m_Name = other.m_Name;
  m_Comment = other.m_Comment;
  return *this;
}
CSDef::~CSDef() = default;

void CSDef::SetName(const char* name) { m_Name = internal::EmptyIfNull(name); }
void CSDef::SetToken(const char* token) { m_Token = internal::EmptyIfNull(token); }
void CSDef::SetComment(const char* comment) { m_Comment = internal::EmptyIfNull(comment); }
const char* CSDef::GetName() const { return m_Name.c_str(); }
const char* CSDef::GetToken() const { return m_Token.c_str(); }
const char* CSDef::GetComment() const { return m_Comment.c_str(); }

bool CSDef::Check() const {
  std::string why;
  return Check(why);
}

bool CSDef::Check(std::string& why) const {
  why.clear();
  return true;
}

CSType CSDef::Type() const { return m_Type; }

std::string CSDef::GetShortName() const { return internal::ShortNameOf(m_Name.c_str()); }

const char* CSDef::WarpPresenceDiffers(const CSDef& first, const CSDef& second) {
  if (first.HasWarp() && !second.HasWarp()) return "First system has warp and second system doesn't.";
  if (second.HasWarp() && !first.HasWarp()) return "Second system has warp and first system doesn't.";
  return nullptr;
}

CSDef* CSDef::BuildFromEncodedText(const std::string& data, size_t* offset) {
  size_t at = offset ? *offset : 0;
  std::string name;
  char type = 0;
  size_t count = 0;
  if (!ORVDecodeInfo(data, &at, name, type, count)) {
    ORV_FAIL(ErrCorrupt, "Corrupt coordinate system data.  Malformed or missing header.");
    return nullptr;
  }
  if (type != kBlockBegin) {
    ORV_FAIL(ErrCorrupt, "Corrupt coordinate system data.  Expected BLOCKBEGIN.");
    return nullptr;
  }
  std::unique_ptr<CSDef> system;
  if (internal::EqualIgnoringCase(name, "ORVDef")) {
    system = std::make_unique<ORVDef>();
  } else if (internal::EqualIgnoringCase(name, "UCSDef")) {
    system = std::make_unique<UCSDef>();
  } else {
    ORV_FAIL(ErrCorrupt, "Corrupt coordinate system data.  Expected ORVDef or UCSDef block.");
    return nullptr;
  }
  system->DecodeFromText(data, offset);
  return system.release();
}

void CSDef::DebugDump(std::string& text, size_t indent) const {
  internal::Dump(text, indent)
      .Line("CSDef at %p", static_cast<const void*>(this))
      .Line("Name:  '%s'", m_Name.c_str())
      .Line("Token:  '%s'", m_Token.c_str())
      .Line("Comment:  '%s'", m_Comment.c_str());
}

}  // namespace orv
