#include "orv/datum/DatumDef.h"

#include <cmath>
#include <iterator>
#include <variant>

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/TextBlock.h"
#include "orv/datum/internal/DatumNames.h"
#include "orv/tables/EllipsoidList.h"

ORV_UNIT("DatumDef")

namespace orv {

namespace {

using internal::kMethodNames;
using internal::kMRETypeNames;
using internal::kTargetNames;

// ---- parameters ------------------------------------------------------------------------------------------

/// Where a parameter is held; which of these it is decides its data type.
using Field = std::variant<double DatumParameters::*, bool DatumParameters::*, DatumMethod DatumParameters::*,
                           DatumTarget DatumParameters::*, DatumMREType DatumParameters::*,
                           EllipsoidDef DatumParameters::*>;

struct ParameterRow {
  DatumParameterID number;
  const char* name;   ///< short name
  const char* other;  ///< display name
  const char* item;   ///< name in encoded text
  Field field;
};

// clang-format off
constexpr ParameterRow kParameters[] = {
    {DatumParameterIDMethod,     "Method",     "Conversion Method",        "Method",     &DatumParameters::method},
    {DatumParameterIDTarget,     "Target",     "Conversion Target",        "Target",     &DatumParameters::target},
    {DatumParameterIDEllipsoid,  "Ellipsoid",  "Ellipsoid",                "Ellipsoid",  &DatumParameters::ellipsoid},
    {DatumParameterIDPMShift,    "PMShift",    "Prime Meridian Shift",     "PMShift",    &DatumParameters::pmShift},
    {DatumParameterIDdx,         "dx",         "X Displacement",           "dx",         &DatumParameters::dx},
    {DatumParameterIDdy,         "dy",         "Y Displacement",           "dy",         &DatumParameters::dy},
    {DatumParameterIDdz,         "dz",         "Z Displacement",           "dz",         &DatumParameters::dz},
    {DatumParameterIDrx,         "rx",         "X Rotation",               "rx",         &DatumParameters::rx},
    {DatumParameterIDry,         "ry",         "Y Rotation",               "ry",         &DatumParameters::ry},
    {DatumParameterIDrz,         "rz",         "Z Rotation",               "rz",         &DatumParameters::rz},
    {DatumParameterIDK,          "K",          "K Scale",                  "k",          &DatumParameters::k},
    {DatumParameterIDEquation,   "Equation",   "Regional Equation",        "MREType",    &DatumParameters::mreType},
    {DatumParameterIDNadconPrvi, "NadconPrvi", "Use PRVI NADCON File Set", "NadconPrvi", &DatumParameters::nadconPrvi},
    {DatumParameterIDInverse,    "Inverse",    "Inverse",                  "Inverse",    &DatumParameters::inverse},
};
// clang-format on
static_assert(std::size(kParameters) == DatumParameterIDEnd - 1);

/// One row for each method, ended by DatumParameterIDNone.
constexpr DatumParameterID kMethodParameters[][12] = {
    {},
    {DatumParameterIDMethod, DatumParameterIDTarget, DatumParameterIDEllipsoid, DatumParameterIDPMShift},
    {DatumParameterIDMethod, DatumParameterIDTarget, DatumParameterIDEllipsoid, DatumParameterIDdx,
     DatumParameterIDdy, DatumParameterIDdz, DatumParameterIDPMShift},
    {DatumParameterIDMethod, DatumParameterIDTarget, DatumParameterIDEllipsoid, DatumParameterIDdx,
     DatumParameterIDdy, DatumParameterIDdz, DatumParameterIDrx, DatumParameterIDry, DatumParameterIDrz,
     DatumParameterIDK, DatumParameterIDPMShift},
    {DatumParameterIDMethod, DatumParameterIDTarget, DatumParameterIDNadconPrvi},
    {DatumParameterIDMethod, DatumParameterIDTarget},
    {DatumParameterIDMethod, DatumParameterIDTarget, DatumParameterIDEquation},
};
static_assert(std::size(kMethodParameters) == DatumMethodEnd);

/// The row of a method, ended by DatumParameterIDNone.
const DatumParameterID* ParametersOf(DatumMethod method) {
  const bool known = method >= DatumMethodUnknown && method < DatumMethodEnd;
  return kMethodParameters[known ? method : DatumMethodUnknown];
}

template <class... F>
struct Choose : F... {
  using F::operator()...;
};
template <class... F>
Choose(F...) -> Choose<F...>;

bool BadParameter(int line) {
  const ErrorSite site = {kUnit, line};
  return ORV_FAIL_AT(site, ErrBadParameter, ORV_BAD_PARAMETER);
}

/// Stores a name, or raises when there is none.
bool Give(const char* found, std::string& name, int line) {
  if (!found) return BadParameter(line);
  name = found;
  return true;
}

// Absolute; a NaN difference is not greater.
bool Differ(double a, double b, double tolerance) { return std::fabs(a - b) > tolerance; }

constexpr double kShiftTolerance = 1e-8;  // radii, degrees, metres, arc-seconds, parts per million: absolute
constexpr double kFlatteningTolerance = 1e-12;

bool SameField(const EllipsoidDef& a, const EllipsoidDef& b) {
  return !Differ(a.GetMajorRadius(), b.GetMajorRadius(), kShiftTolerance) &&
         !Differ(a.GetFlattening(), b.GetFlattening(), kFlatteningTolerance);
}
bool SameField(double a, double b) { return !Differ(a, b, kShiftTolerance); }
template <class Number>
bool SameField(Number a, Number b) {
  return a == b;
}

constexpr const char* kCorrupt =
    "Corrupt data enountered in encoded datum parameters.";  // deliberate spelling
constexpr internal::BlockSyntax kBlock = {"Datum",  kCorrupt, kCorrupt, kCorrupt,
                                          kCorrupt, kCorrupt, kCorrupt, kCorrupt};

// One item of the block for each kind of field.
template <class W, class V>
void WalkField(W& w, const char* item, V& value, bool write) {
  using Value = std::remove_const_t<V>;
  if constexpr (std::is_same_v<Value, double>) {
    w.Double(item, value, write);
  } else if constexpr (std::is_same_v<Value, bool>) {
    w.Bool(item, value, write);
  } else if constexpr (std::is_same_v<Value, DatumMethod>) {
    w.Named(item, value, kMethodNames, write);
  } else if constexpr (std::is_same_v<Value, DatumTarget>) {
    w.Named(item, value, kTargetNames, write);
  } else if constexpr (std::is_same_v<Value, DatumMREType>) {
    w.Named(item, value, kMRETypeNames, write);
  } else {
    w.Block(item, value, write);
  }
}

}  // namespace

DatumParameters::DatumParameters() = default;
void DatumParameters::Flush() { *this = DatumParameters(); }

template <class Walker, class Self>
void DatumDef::Fields(Walker& w, Self& d) {
  w.Text("Token", d.m_Token, !d.m_Token.empty());
  w.Text("Name", d.m_Name, !d.m_Name.empty());
  w.Text("Comment", d.m_Comment, !d.m_Comment.empty());
  w.Named("Special", d.m_Special, kTargetNames, d.m_Special != DatumTargetNone);
  w.Int("POSC", d.m_POSC);
  for (const ParameterRow& row : kParameters) {
    const bool always = row.number == DatumParameterIDMethod || row.number == DatumParameterIDTarget;
    const bool write = always || d.UsesParameter(row.number);
    std::visit([&](auto field) { WalkField(w, row.item, d.m_Parameters.*field, write); }, row.field);
  }
}

// ---- vocabulary ------------------------------------------------------------------------------------------

const char* DatumDef::MethodToName(DatumMethod method) { return internal::NameOf(kMethodNames, method); }
bool DatumDef::MethodToName(DatumMethod method, std::string& name) {
  return Give(MethodToName(method), name, __LINE__);
}
DatumMethod DatumDef::NameToMethod(const char* name) { return internal::IdOf(kMethodNames, name); }

const char* DatumDef::TargetToName(DatumTarget target) { return internal::NameOf(kTargetNames, target); }
bool DatumDef::TargetToName(DatumTarget target, std::string& name) {
  return Give(TargetToName(target), name, __LINE__);
}
DatumTarget DatumDef::NameToTarget(const char* name) { return internal::IdOf(kTargetNames, name); }

const char* DatumDef::MRETypeToName(DatumMREType type) { return internal::NameOf(kMRETypeNames, type); }
bool DatumDef::MRETypeToName(DatumMREType type, std::string& name) {
  return Give(MRETypeToName(type), name, __LINE__);
}
DatumMREType DatumDef::NameToMREType(const char* name) { return internal::IdOf(kMRETypeNames, name); }

const char* DatumDef::ParameterName(DatumParameterID id) {
  const ParameterRow* const row = internal::RowOf(kParameters, id);
  return row ? row->other : nullptr;
}
bool DatumDef::ParameterName(DatumParameterID id, std::string& name) {
  return Give(ParameterName(id), name, __LINE__);
}
const char* DatumDef::ParameterShortName(DatumParameterID id) { return internal::NameOf(kParameters, id); }
DatumParameterID DatumDef::NameToParameter(const char* name) {
  const ParameterRow* const row = internal::RowNamed(kParameters, name);
  return row ? row->number : DatumParameterIDNone;
}

ORVDataTypeID DatumDef::ParameterDataType(DatumParameterID id) {
  const ParameterRow* const row = internal::RowOf(kParameters, id);
  if (!row) return ORVDataTypeIDNone;
  return std::visit(Choose{[](double DatumParameters::*) { return ORVDataTypeIDDouble; },
                           [](bool DatumParameters::*) { return ORVDataTypeIDBool; },
                           [](EllipsoidDef DatumParameters::*) { return ORVDataTypeIDEllipsoid; },
                           [](auto) { return ORVDataTypeIDEnum; }},
                    row->field);
}

bool DatumDef::UsesParameter(DatumMethod method, DatumParameterID id) {
  for (const DatumParameterID* used = ParametersOf(method); *used != DatumParameterIDNone; ++used) {
    if (*used == id) return true;
  }
  return false;
}

size_t DatumDef::NumParameters(DatumMethod method) {
  size_t count = 0;
  while (ParametersOf(method)[count] != DatumParameterIDNone) ++count;
  return count;
}

DatumParameterID DatumDef::EnumParameter(DatumMethod method, size_t index) {
  return index < NumParameters(method) ? ParametersOf(method)[index] : DatumParameterIDNone;
}

bool DatumDef::UsesParameter(DatumParameterID id) const { return UsesParameter(m_Parameters.method, id); }
size_t DatumDef::NumParameters() const { return NumParameters(m_Parameters.method); }
DatumParameterID DatumDef::EnumParameter(size_t index) const {
  return EnumParameter(m_Parameters.method, index);
}

bool DatumDef::CompareParameters(const DatumParameters* a, const DatumParameters* b) {
  if (!a || !b || a->method != b->method || a->target != b->target) return false;
  for (const DatumParameterID* used = ParametersOf(a->method); *used != DatumParameterIDNone; ++used) {
    // Deliberate: the shift of a datum without a conversion does not count.
    if (*used == DatumParameterIDPMShift && a->method == DatumMethodNone) continue;
    const ParameterRow& row = *internal::RowOf(kParameters, *used);
    const auto same = [a, b](auto field) { return SameField(a->*field, b->*field); };
    if (!std::visit(same, row.field)) return false;
  }
  return true;
}
bool DatumDef::CompareParameters(const DatumDef* other) const {
  return other && CompareParameters(&m_Parameters, &other->m_Parameters);
}
bool DatumDef::CompareParameters(const DatumParameters* other) const {
  return CompareParameters(&m_Parameters, other);
}

// ---- the definition --------------------------------------------------------------------------------------

DatumDef::DatumDef() = default;
DatumDef::DatumDef(const DatumParameters* params, int poscNumber) : m_POSC(poscNumber) {
  SetParameters(params);
}

const char* DatumDef::GetToken() const { return internal::NullIfEmpty(m_Token); }
const char* DatumDef::GetName() const { return internal::NullIfEmpty(m_Name); }
const char* DatumDef::GetComment() const { return internal::NullIfEmpty(m_Comment); }
void DatumDef::SetToken(const char* token) { m_Token = internal::EmptyIfNull(token); }
void DatumDef::SetToken(std::string& token) { m_Token = token; }
void DatumDef::SetName(const char* name) { m_Name = internal::EmptyIfNull(name); }
void DatumDef::SetName(std::string& name) { m_Name = name; }
void DatumDef::SetComment(const char* comment) { m_Comment = internal::EmptyIfNull(comment); }
void DatumDef::SetComment(std::string& comment) { m_Comment = comment; }

int DatumDef::GetPOSCNumber() const { return m_POSC; }
void DatumDef::SetPOSCNumber(int posc) { m_POSC = posc; }
DatumTarget DatumDef::GetSpecial() const { return m_Special; }
void DatumDef::SetSpecial(DatumTarget special) { m_Special = special; }
DatumMethod DatumDef::GetMethod() const { return m_Parameters.method; }
DatumTarget DatumDef::GetTarget() const { return m_Parameters.target; }
DatumTarget DatumDef::GetConversionTarget() const { return m_Parameters.target; }
const EllipsoidDef* DatumDef::GetEllipsoid() const { return &m_Parameters.ellipsoid; }

void DatumDef::SetMethod(DatumMethod method, bool flush) {
  if (method < DatumMethodNone || method > DatumMethodMRE) {
    BadParameter(__LINE__);
    return;
  }
  if (flush) Flush();
  m_Parameters.method = method;
}

const DatumParameters* DatumDef::GetParameters() const { return &m_Parameters; }
void DatumDef::GetParameters(DatumParameters& out) const { out = m_Parameters; }
void DatumDef::SetParameters(const DatumParameters* params) {
  if (params) {
    m_Parameters = *params;
  } else {
    Flush();
  }
}

void DatumDef::SetParameter(DatumParameterID id, double value) {
  const ParameterRow* const row = internal::RowOf(kParameters, id);
  if (!row) {
    BadParameter(__LINE__);
    return;
  }
  const auto setEllipsoid = [&](EllipsoidDef DatumParameters::*field) {
    const int index = internal::TruncateToInt(value);
    const EllipsoidList& known = ORVKnownEllipsoidsList;
    // Deliberate: an index that names no entry is ignored.
    if (index >= known.First() && index <= known.Last()) known.Enum(index, m_Parameters.*field);
  };
  const auto setEnumerator = [&](auto field) {
    using E = std::remove_reference_t<decltype(m_Parameters.*field)>;
    m_Parameters.*field = static_cast<E>(internal::TruncateToInt(value));
  };
  std::visit(Choose{[&](double DatumParameters::*field) { m_Parameters.*field = value; },
                    [&](bool DatumParameters::*field) { m_Parameters.*field = value != 0.0; }, setEllipsoid,
                    setEnumerator},
             row->field);
}

// Every int is a double exactly, and is truncated back to itself.
void DatumDef::SetParameter(DatumParameterID id, int value) { SetParameter(id, static_cast<double>(value)); }

void DatumDef::SetParameter(DatumParameterID id, const EllipsoidDef& value) {
  if (id != DatumParameterIDEllipsoid) {
    BadParameter(__LINE__);
    return;
  }
  m_Parameters.ellipsoid = value;
}

void DatumDef::GetParameter(DatumParameterID id, double& value) const {
  value = 0.0;
  // Deliberate: the double form does not know the first three, though two of them are numbers.
  if (id < DatumParameterIDPMShift || id > DatumParameterIDInverse) {
    BadParameter(__LINE__);
    return;
  }
  std::visit(Choose{[](EllipsoidDef DatumParameters::*) {},
                    [&](auto field) { value = static_cast<double>(m_Parameters.*field); }},
             internal::RowOf(kParameters, id)->field);
}

double DatumDef::GetParameter(DatumParameterID id) const {
  double value = 0.0;
  GetParameter(id, value);
  return value;
}

void DatumDef::GetParameter(DatumParameterID id, int& value) const {
  if (id == DatumParameterIDMethod) {
    value = m_Parameters.method;
  } else if (id == DatumParameterIDTarget) {
    value = m_Parameters.target;
  } else {
    value = internal::TruncateToInt(GetParameter(id));
  }
}

void DatumDef::GetParameter(DatumParameterID id, bool& value) const {
  if (id != DatumParameterIDNadconPrvi && id != DatumParameterIDInverse) {
    BadParameter(__LINE__);
    return;
  }
  value = id == DatumParameterIDNadconPrvi ? m_Parameters.nadconPrvi : m_Parameters.inverse;
}

void DatumDef::GetParameter(DatumParameterID id, DatumTarget& value) const {
  if (id != DatumParameterIDTarget) {
    BadParameter(__LINE__);
    return;
  }
  value = m_Parameters.target;
}

void DatumDef::GetParameter(DatumParameterID id, DatumMREType& value) const {
  if (id != DatumParameterIDEquation) {
    BadParameter(__LINE__);
    return;
  }
  value = m_Parameters.mreType;
}

void DatumDef::GetParameter(DatumParameterID id, EllipsoidDef& value) const {
  if (id != DatumParameterIDEllipsoid) {
    BadParameter(__LINE__);
    return;
  }
  value = m_Parameters.ellipsoid;
}

DatumParameterID DatumDef::CheckParameters(std::string& message) const {
  const DatumParameters& p = m_Parameters;
  const auto fault = [&message](DatumParameterID id, const char* text) {
    message = text;
    return id;
  };
  // Half of the largest single-precision number.  Written so that NaN passes.
  const auto outside = [](double v, double bound) { return v < -bound || v > bound; };
  constexpr double kMost = 1.7014117331926443e38;

  message.clear();
  if (p.method < DatumMethodUnknown || p.method > DatumMethodMRE) {
    return fault(DatumParameterIDMethod, "Datum conversion method not valid.");
  }
  if (p.method == DatumMethodUnknown) return DatumParameterIDNone;
  if (p.target < DatumTargetWGS84 || p.target > DatumTargetNAD83Canada) {
    return fault(DatumParameterIDTarget, "Conversion target not valid.");
  }
  // Deliberate: a negative type passes here, and the conversion refuses it.
  if (p.method == DatumMethodMRE && (p.mreType == DatumMRETypeNone || p.mreType > DatumMRETypeSA69)) {
    return fault(DatumParameterIDEquation,
                 "Invalid MRE type code specified for MRE datum conversion method.");
  }
  if (p.method != DatumMethodMolodensky && p.method != DatumMethodBursaWolf) return DatumParameterIDNone;
  if (!p.ellipsoid.CheckParameters(message)) return DatumParameterIDEllipsoid;
  if (outside(p.pmShift, 180.0)) {
    return fault(DatumParameterIDPMShift, "Prime meridian shift parameter must be between +/-180 degrees.");
  }
  // Deliberate: a capital X beside small y and z.
  if (outside(p.dx, kMost)) return fault(DatumParameterIDdx, "Invalid X displacement parameter.");
  if (outside(p.dy, kMost)) return fault(DatumParameterIDdy, "Invalid y displacement parameter.");
  if (outside(p.dz, kMost)) return fault(DatumParameterIDdz, "Invalid z displacement parameter.");
  if (p.method == DatumMethodMolodensky) return DatumParameterIDNone;
  if (outside(p.rx, kMost)) return fault(DatumParameterIDrx, "Invalid X rotation parameter.");
  if (outside(p.ry, kMost)) return fault(DatumParameterIDry, "Invalid Y rotation parameter.");
  if (outside(p.rz, kMost)) return fault(DatumParameterIDrz, "Invalid Z rotation parameter.");
  // Deliberate: the scale is not checked.
  return DatumParameterIDNone;
}

DatumParameterID DatumDef::CheckParameters() const {
  std::string message;
  return CheckParameters(message);
}

bool DatumDef::IsUnknown() const { return m_Parameters.method == DatumMethodUnknown; }
void DatumDef::Flush() { *this = DatumDef(); }

void DatumDef::EncodeToText(std::string& out) const { internal::WriteBlock(*this, kBlock, out); }

void DatumDef::DecodeBlock(const std::string& text, size_t* at) {
  internal::ReadBlock(*this, kBlock, ORV_SITE, text, at);
}

void DatumDef::DecodeFromText(const std::string& text, size_t* cursor) {
  size_t at = cursor ? *cursor : 0;
  DecodeBlock(text, &at);
  if (cursor) *cursor = at;
}

namespace {

constexpr size_t kMostInLine = 2047;

}  // namespace

void DatumDef::DebugDump(std::string& text, size_t indent) const {
  internal::Dump(text, indent)
      .CutLine(kMostInLine, "Datum this=%p", static_cast<const void*>(this))
      .CutLine(kMostInLine, "  Token   = '%s'", m_Token.c_str())
      .CutLine(kMostInLine, "  Name    = '%s'", m_Name.c_str())
      .CutLine(kMostInLine, "  POSC    = %d", m_POSC)
      .CutLine(kMostInLine, "  Comment = '%s'", m_Comment.c_str())
      .CutLine(kMostInLine, "  Special = '%s'", internal::EmptyIfNull(TargetToName(m_Special)));
  DebugDumpParameters(&m_Parameters, text, indent + 2);
}

void DatumDef::DebugDumpParameters(const DatumParameters* params, std::string& text, size_t indent) {
  if (!params) return;
  internal::Dump dump(text, indent);
  dump.CutLine(kMostInLine, "  Method = '%s'", internal::EmptyIfNull(MethodToName(params->method)));
  dump.CutLine(kMostInLine, "  Target = '%s'", internal::EmptyIfNull(TargetToName(params->target)));
  params->ellipsoid.DebugDump(text, indent + 2);
  for (const ParameterRow& row : kParameters) {
    const auto* const field = std::get_if<double DatumParameters::*>(&row.field);
    if (field) dump.CutLine(kMostInLine, "  %-7s = %24.18f", row.item, params->**field);
  }
  dump.CutLine(kMostInLine, "  Inverse = %s", internal::TrueOrFalse(params->inverse));
  dump.CutLine(kMostInLine, "  NadconPrvi = %s", internal::TrueOrFalse(params->nadconPrvi));
}

}  // namespace orv
