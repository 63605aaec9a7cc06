#include "orv/tables/EllipsoidDef.h"

#include <cmath>

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/TextBlock.h"

ORV_UNIT("EllipsoidDef")

namespace orv {

namespace {

constexpr const char* kCorrupt = "Corrupt data encountered in encoded ellipsoid data.";
constexpr internal::BlockSyntax kBlock = {"Ellipsoid", kCorrupt, kCorrupt, kCorrupt,
                                          kCorrupt,    kCorrupt, kCorrupt, kCorrupt};

}  // namespace

template <class Walker, class Self>
void EllipsoidDef::Fields(Walker& w, Self& d) {
  w.Text("Token", d.m_Token, !d.m_Token.empty());
  w.Text("Name", d.m_Name, !d.m_Name.empty());
  w.Text("Comment", d.m_Comment, !d.m_Comment.empty());
  w.Int("POSC", d.m_POSC);
  w.Double("Radius", d.m_Radius);
  w.Double("Flat", d.m_Flattening);
}

EllipsoidDef::EllipsoidDef() = default;

EllipsoidDef::EllipsoidDef(double majorRadius, double flattening, const char* token, const char* name,
                           const char* comment, int poscNumber) {
  SetMajorRadius(majorRadius);
  SetFlattening(flattening);
  SetToken(token);
  SetName(name);
  SetComment(comment);
  m_POSC = poscNumber;
}

void EllipsoidDef::Flush() { *this = EllipsoidDef(); }

const char* EllipsoidDef::GetToken() const { return internal::NullIfEmpty(m_Token); }
const char* EllipsoidDef::GetName() const { return internal::NullIfEmpty(m_Name); }
const char* EllipsoidDef::GetComment() const { return internal::NullIfEmpty(m_Comment); }
void EllipsoidDef::SetToken(const char* token) { m_Token = internal::EmptyIfNull(token); }
void EllipsoidDef::SetName(const char* name) { m_Name = internal::EmptyIfNull(name); }
void EllipsoidDef::SetComment(const char* comment) { m_Comment = internal::EmptyIfNull(comment); }

int EllipsoidDef::GetPOSCNumber() const { return m_POSC; }
void EllipsoidDef::SetPOSCNumber(int posc) { m_POSC = posc; }

double EllipsoidDef::GetMajorRadius() const { return m_Radius; }
double EllipsoidDef::GetFlattening() const { return m_Flattening; }
double EllipsoidDef::GetMinorRadius() const {
  return m_Flattening == 0.0 ? m_Radius : (1.0 - m_Flattening) * m_Radius;
}

void EllipsoidDef::SetMajorRadius(double radius) {
  if (!(radius > 0.0)) {
    ORV_FAIL(ErrBadParameter, "Ellipsoid radius must be greater than zero.");
    return;
  }
  m_Radius = radius;
}

void EllipsoidDef::SetFlattening(double flattening) {
  if (!(flattening >= 0.0)) {
    // Deliberate: the flattening is refused in the words of the radius.
    ORV_FAIL(ErrBadParameter, "Ellipsoid radius must be positive.");
    return;
  }
  m_Flattening = flattening;
}

bool EllipsoidDef::IsUnknown() const { return m_Radius <= 0.0; }

bool EllipsoidDef::CheckParameters() const {
  std::string message;
  return CheckParameters(message);
}

bool EllipsoidDef::CheckParameters(std::string& message) const {
  if (m_Radius <= 0.0) {
    message = "Ellipsoid radius must be positive.";
    return false;
  }
  if (m_Flattening < 0.0) {
    message = "Ellipsoid flattening must not be negative.";
    return false;
  }
  if (m_Flattening >= 1.0) {
    message = "Ellipsoid flattening must be less than one.";
    return false;
  }
  return true;
}

bool EllipsoidDef::CompareParameters(const EllipsoidDef* other, bool tolerant) const {
  if (!other) return false;
  if (m_Radius == other->m_Radius && m_Flattening == other->m_Flattening) return true;
  if (!tolerant) return false;
  if (!(std::fabs(m_Radius) / 1000000.0 > std::fabs(m_Radius - other->m_Radius))) return false;
  // Deliberate: the whole flattening is the tolerance; the radius test carries an ellipsoid's identity.
  return std::fabs(m_Flattening) > std::fabs(m_Flattening - other->m_Flattening);
}

void EllipsoidDef::EncodeToText(std::string& out) const { internal::WriteBlock(*this, kBlock, out); }

void EllipsoidDef::DecodeBlock(const std::string& text, size_t* at) {
  internal::ReadBlock(*this, kBlock, ORV_SITE, text, at);
}

void EllipsoidDef::DecodeFromText(const std::string& text, size_t* position) {
  size_t at = position ? *position : 0;
  DecodeBlock(text, &at);
  if (position) *position = internal::BehindBlockEnd(text, at);
}

void EllipsoidDef::DebugDump(std::string& out, size_t indent) const {
  internal::Dump(out, indent)
      .Line("  Ellipsoid this=%p:", static_cast<const void*>(this))
      .Line("    Token      = '%s'", m_Token.c_str())
      .Line("    Name       = '%s'", m_Name.c_str())
      .Line("    POSC       = %d", m_POSC)
      .Line("    Comment    = '%s'", m_Comment.c_str())
      .Line("    Radius     = %24.6f", m_Radius)
      .Line("    Flattening = %24.18f", m_Flattening);
}

}  // namespace orv
