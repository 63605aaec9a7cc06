#include "orv/projection/ProjectionDef.h"

#include <cmath>
#include <limits>

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/TextBlock.h"
#include "orv/projection/internal/ProjectionTables.h"

ORV_UNIT("ProjectionDef")

namespace orv {

namespace {

constexpr internal::BlockSyntax kBlock = {
    "Projection",
    "Corrupt projection data.  Malformed header.",
    "Corrupt projection data.  BLOCKBEGIN missing.",
    "Corrupt projection data.  Not a projection block.",
    "Corrupt projection data.  Expected end of projection block.",
    "Corrupt projection data.  Unexpected end of encoded data.",
    "Unexpected end of encoded data.",
    "Corrupt projection data.  Malformed header.",
};

constexpr ProjectionMethod kLastMethod = ProjectionMethodVanDerGrinten;

// Deliberate: whatever the caller has set is overwritten.
void ApplyUTMOrigin(ProjectionParameters& p) {
  if (p.method != ProjectionMethodUTM) return;
  p.xOrg = 500000.0;
  p.yOrg = p.bSouth ? 10000000.0 : 0.0;
}

// Truncated; the lowest int for NaN and for what no int holds.
int ToInt(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

bool AreApart(internal::Apart rule, double a, double b) {
  const double apart = std::fabs(a - b);
  switch (rule) {
    case internal::Apart::Beyond:
      return apart > 1e-9;
    case internal::Apart::Within:
      return !(apart <= 1e-9);
    default:
      return apart > std::fmax(std::fabs(a), std::fabs(b)) / 1e6;
  }
}

bool ParallelsMatch(double a1, double a2, double b1, double b2) {
  return !AreApart(internal::Apart::Within, a1, b1) && !AreApart(internal::Apart::Within, a2, b2);
}

// The first parameter of one method in which two blocks differ, or none: the ellipsoid, then the numbers,
// then the flags.
ProjectionParameterID FirstDifference(const ProjectionParameters& a, const ProjectionParameters& b) {
  if (internal::MethodUses(a.method, ProjectionParameterIDEllipsoid) &&
      !a.ellipsoid.CompareParameters(&b.ellipsoid, true)) {
    return ProjectionParameterIDEllipsoid;
  }
  const bool isLambert = a.method == ProjectionMethodLambert;
  for (const internal::ProjectionField& field : internal::kProjectionFields) {
    if (!field.pNumber || !internal::MethodUses(a.method, field.number)) continue;
    const bool isParallel =
        field.number == ProjectionParameterIDLat1 || field.number == ProjectionParameterIDLat2;
    if (isLambert && isParallel) {
      // The two parallels of Lambert's cone may stand in either order.
      if (!ParallelsMatch(a.Lat1, a.Lat2, b.Lat1, b.Lat2) &&
          !ParallelsMatch(a.Lat1, a.Lat2, b.Lat2, b.Lat1)) {
        return ProjectionParameterIDLat1;
      }
    } else if (AreApart(field.apart, a.*field.pNumber, b.*field.pNumber)) {
      return field.number;
    }
  }
  for (const internal::ProjectionField& field : internal::kProjectionFields) {
    if (field.pFlag && internal::MethodUses(a.method, field.number) && a.*field.pFlag != b.*field.pFlag) {
      return field.number;
    }
  }
  return ProjectionParameterIDNone;
}

}  // namespace

// ---- vocabulary ------------------------------------------------------------------------------------------

unsigned int ProjectionDef::Flags(ProjectionMethod method) {
  const auto* const row = internal::RowOf(internal::kProjectionMethods, method);
  return row ? row->flags : 0;
}

const char* ProjectionDef::MethodToName(ProjectionMethod method) {
  const char* const name = internal::NameOf(internal::kProjectionMethods, method);
  if (!name)
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);  // deliberate: the one text here with a full stop
  return name;
}

ProjectionMethod ProjectionDef::NameToMethod(const char* name) {
  return internal::IdOf(internal::kProjectionMethods, name);
}

ORVDataTypeID ProjectionDef::ParameterDataType(ProjectionParameterID id) {
  const auto* const row = internal::RowOf(internal::kProjectionParameters, id);
  return row ? row->type : ORVDataTypeIDNone;
}

ProjectionParameterID ProjectionDef::NameToParameter(const char* name) {
  return internal::IdOf(internal::kProjectionParameters, name);
}

const char* ProjectionDef::ParameterShortName(ProjectionParameterID id) {
  return internal::NameOf(internal::kProjectionParameters, id);
}

const char* ProjectionDef::ParameterName(ProjectionParameterID id) {
  const auto* const row = internal::RowOf(internal::kProjectionParameters, id);
  return row ? row->other : nullptr;
}

void ProjectionDef::ParameterName(ProjectionParameterID id, std::string& name) {
  name.clear();
  const char* const known = ParameterName(id);
  if (!known) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  name = known;
}

bool ProjectionDef::UsesParameter(ProjectionMethod method, ProjectionParameterID id) {
  return internal::MethodUses(method, id);
}

ProjectionParameterID ProjectionDef::EnumParameter(ProjectionMethod method, size_t index) {
  return index < NumParameters(method) ? internal::UseOf(method)->uses[index] : ProjectionParameterIDNone;
}

size_t ProjectionDef::NumParameters(ProjectionMethod method) {
  const internal::ProjectionUse* const row = internal::UseOf(method);
  size_t count = 0;
  while (row && row->uses[count] != ProjectionParameterIDNone) ++count;
  return count;
}

// ---- the definition --------------------------------------------------------------------------------------

ProjectionDef::ProjectionDef() = default;
ProjectionDef::ProjectionDef(ProjectionMethod method) { SetDefaultParameters(method); }
ProjectionDef::ProjectionDef(const ProjectionParameters& params) { SetParameters(&params); }

void ProjectionDef::Flush() { m_Parameters.Flush(); }

ProjectionMethod ProjectionDef::GetMethod() const { return m_Parameters.method; }

void ProjectionDef::SetMethod(ProjectionMethod method) {
  if (method > kLastMethod) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  m_Parameters.method = method;
  ApplyUTMOrigin(m_Parameters);
}

bool ProjectionDef::UsesParameter(ProjectionParameterID id) const {
  return UsesParameter(m_Parameters.method, id);
}
ProjectionParameterID ProjectionDef::EnumParameter(size_t index) const {
  return EnumParameter(m_Parameters.method, index);
}
size_t ProjectionDef::NumParameters() const { return NumParameters(m_Parameters.method); }

const ProjectionParameters* ProjectionDef::GetParameters() const { return &m_Parameters; }
void ProjectionDef::GetParameters(ProjectionParameters& out) const { out = m_Parameters; }

void ProjectionDef::SetParameters(const ProjectionParameters* params) {
  if (!params) {
    Flush();
    return;
  }
  m_Parameters = *params;
  if (m_Parameters.Scale == 0.0) m_Parameters.Scale = 1.0;
  ApplyUTMOrigin(m_Parameters);
}

const EllipsoidDef* ProjectionDef::GetEllipsoid() const { return &m_Parameters.ellipsoid; }

bool ProjectionDef::IsUnknown(bool otherIsUnknown) const {
  const ProjectionMethod method = m_Parameters.method;
  return method < ProjectionMethodUnprojected || method > kLastMethod ||
         (otherIsUnknown && method == ProjectionMethodOther);
}

void ProjectionDef::SetDefaultParameters(ProjectionMethod method) {
  SetMethod(method);
  if (m_Parameters.method != method) return;
  ProjectionParameters& p = m_Parameters;
  for (const internal::ProjectionField& field : internal::kProjectionFields) {
    if (field.pFlag) {
      p.*field.pFlag = false;
    } else if (field.number != ProjectionParameterIDAlpha) {  // deliberate: Alpha is left as it was
      p.*field.pNumber = 0.0;
    }
  }
  p.Scale = 1.0;
  p.K0 = 1.0;
  p.ellipsoid.SetMajorRadius(6378206.4);  // Clarke 1866; its texts are not touched
  p.ellipsoid.SetFlattening(0.0033900753040885176);
  for (const internal::ProjectionDefault& row : internal::kProjectionDefaults) {
    if (row.method == method) SetParameter(p, row.id, row.value);
  }
  ApplyUTMOrigin(p);
}

ProjectionParameterID ProjectionDef::CheckParameters(std::string& message) const {
  const ProjectionParameters& p = m_Parameters;
  message.clear();
  if (IsUnknown(false)) {
    message = "Unrecognized projection method.";
    return ProjectionParameterIDMethod;
  }
  if (p.method == ProjectionMethodUnprojected || p.method == ProjectionMethodOther)
    return ProjectionParameterIDNone;
  for (const internal::ProjectionCheck& check : internal::kProjectionChecks) {
    if (check.method != ProjectionMethodUnknown && check.method != p.method) continue;
    if (check.bBad(p)) {
      message = check.text;
      return check.which;
    }
  }
  std::string why;
  if (!p.ellipsoid.CheckParameters(why)) {
    message = "Invalid ellipsoid parameters.  " + why;
    return ProjectionParameterIDEllipsoid;
  }
  return ProjectionParameterIDNone;
}

ProjectionParameterID ProjectionDef::CheckParameters() const {
  std::string message;
  return CheckParameters(message);
}

bool ProjectionDef::Compare(const ProjectionDef& other, ProjectionParameterID* which) const {
  return CompareParameters(m_Parameters, other.m_Parameters, which);
}

bool ProjectionDef::CompareParameters(const ProjectionParameters& a, const ProjectionParameters& b,
                                      ProjectionParameterID* which) {
  const ProjectionParameterID first =
      a.method == b.method ? FirstDifference(a, b) : ProjectionParameterIDMethod;
  if (which) *which = first;
  return first == ProjectionParameterIDNone;
}

// ---- texts -----------------------------------------------------------------------------------------------

template <class Walker, class Self>
void ProjectionDef::Fields(Walker& w, Self& d) {
  auto& p = d.m_Parameters;
  w.Named("Method", p.method, internal::kProjectionMethods);
  w.Block("Ellipsoid", p.ellipsoid, d.UsesParameter(ProjectionParameterIDEllipsoid));
  for (const internal::ProjectionField& field : internal::kProjectionFields) {
    const bool write = d.UsesParameter(field.number);
    if (field.pFlag) {
      w.Bool(field.item, p.*field.pFlag, write);
    } else {
      w.Double(field.item, p.*field.pNumber, write);
    }
  }
}

void ProjectionDef::EncodeToText(std::string& text) const {
  if (!MethodToName(m_Parameters.method)) return;
  internal::WriteBlock(*this, kBlock, text);
}

void ProjectionDef::DecodeBlock(const std::string& text, size_t* at) {
  internal::ReadBlock(*this, kBlock, ORV_SITE, text, at);
  ApplyUTMOrigin(m_Parameters);
}

void ProjectionDef::DecodeFromText(const std::string& text, size_t* pos) {
  size_t at = pos ? *pos : 0;
  DecodeBlock(text, &at);
  if (pos) *pos = internal::BehindBlockEnd(text, at);
}

void ProjectionDef::DebugDump(std::string& text, size_t indentation) const {
  const ProjectionParameters& p = m_Parameters;
  const char* const name = MethodToName(p.method);
  if (!name) return;
  const std::string separator(55, '-');
  internal::Dump dump(text, indentation);
  dump.Line("%s", separator.c_str())
      .Line("Projection Parameters (this=%p)", static_cast<const void*>(this))
      .Line("%s", separator.c_str())
      .Line("  Method:  '%s' (%d)", name, static_cast<int>(p.method));
  for (const internal::ProjectionField& field : internal::kProjectionFields) {
    if (!UsesParameter(field.number)) continue;
    if (field.pFlag) {
      dump.Line("  %s%s", field.label, internal::TrueOrFalse(p.*field.pFlag));
    } else {
      dump.Line("  %s%.16f", field.label, p.*field.pNumber);
    }
  }
  if (UsesParameter(ProjectionParameterIDEllipsoid)) {
    dump.Line("  Ellipsoid:");
    p.ellipsoid.DebugDump(text, indentation + 2);
  }
}

// ---- single parameters -----------------------------------------------------------------------------------

void ProjectionDef::SetParameter(ProjectionParameters& p, ProjectionParameterID id, double value) {
  const internal::ProjectionField* const field = internal::FieldOf(id);
  if (!field && id != ProjectionParameterIDMethod) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  if (!field) {
    p.method = static_cast<ProjectionMethod>(ToInt(value));
  } else if (field->pFlag) {
    p.*field->pFlag = value != 0.0;
  } else {
    p.*field->pNumber = id == ProjectionParameterIDScale && value == 0.0 ? 1.0 : value;
  }
  // The rule restores what it has set before, so it may run after every parameter but must run after these.
  const bool concernsUTM = id == ProjectionParameterIDMethod || id == ProjectionParameterIDXOrg ||
                           id == ProjectionParameterIDYOrg || id == ProjectionParameterIDSouth;
  if (concernsUTM) ApplyUTMOrigin(p);
}

void ProjectionDef::SetParameter(ProjectionParameters& p, ProjectionParameterID id, int value) {
  SetParameter(p, id, static_cast<double>(value));
}

void ProjectionDef::SetParameter(ProjectionParameters& p, ProjectionParameterID id, bool value) {
  const internal::ProjectionField* const field = internal::FieldOf(id);
  if (!field || !field->pFlag) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  p.*field->pFlag = value;
  if (id == ProjectionParameterIDSouth) ApplyUTMOrigin(p);
}

void ProjectionDef::SetParameter(ProjectionParameters& p, ProjectionParameterID id,
                                 const EllipsoidDef& value) {
  if (id != ProjectionParameterIDEllipsoid) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  p.ellipsoid = value;
}

void ProjectionDef::GetParameter(const ProjectionParameters& p, ProjectionParameterID id, double& value) {
  value = 0.0;
  const internal::ProjectionField* const field = internal::FieldOf(id);
  if (id == ProjectionParameterIDMethod) {
    value = static_cast<double>(p.method);
  } else if (!field) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
  } else if (field->pFlag) {
    value = p.*field->pFlag ? 1.0 : 0.0;
  } else {
    value = p.*field->pNumber;
  }
}

void ProjectionDef::GetParameter(const ProjectionParameters& p, ProjectionParameterID id, int& value) {
  value = 0;
  double number = 0.0;
  GetParameter(p, id, number);
  value = ToInt(number);
}

void ProjectionDef::GetParameter(const ProjectionParameters& p, ProjectionParameterID id, bool& value) {
  const internal::ProjectionField* const field = internal::FieldOf(id);
  if (!field || !field->pFlag) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  value = p.*field->pFlag;
}

void ProjectionDef::GetParameter(const ProjectionParameters& p, ProjectionParameterID id,
                                 EllipsoidDef& value) {
  if (id != ProjectionParameterIDEllipsoid) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER);
    return;
  }
  value = p.ellipsoid;
}

double ProjectionDef::GetParameter(const ProjectionParameters& p, ProjectionParameterID id) {
  double value = 0.0;
  GetParameter(p, id, value);
  return value;
}

void ProjectionDef::SetParameter(ProjectionParameterID id, double value) {
  SetParameter(m_Parameters, id, value);
}
void ProjectionDef::SetParameter(ProjectionParameterID id, int value) {
  SetParameter(m_Parameters, id, value);
}
void ProjectionDef::SetParameter(ProjectionParameterID id, bool value) {
  SetParameter(m_Parameters, id, value);
}
void ProjectionDef::SetParameter(ProjectionParameterID id, const EllipsoidDef& value) {
  SetParameter(m_Parameters, id, value);
}
void ProjectionDef::GetParameter(ProjectionParameterID id, double& value) const {
  GetParameter(m_Parameters, id, value);
}
void ProjectionDef::GetParameter(ProjectionParameterID id, int& value) const {
  GetParameter(m_Parameters, id, value);
}
void ProjectionDef::GetParameter(ProjectionParameterID id, bool& value) const {
  GetParameter(m_Parameters, id, value);
}
void ProjectionDef::GetParameter(ProjectionParameterID id, EllipsoidDef& value) const {
  GetParameter(m_Parameters, id, value);
}
double ProjectionDef::GetParameter(ProjectionParameterID id) const { return GetParameter(m_Parameters, id); }

}  // namespace orv
