#include "orv/warp/WarpDef.h"

#include <algorithm>
#include <cmath>

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/NameTable.h"
#include "orv/core/internal/TextBlock.h"

ORV_UNIT("WarpDef")

namespace orv {

namespace {

struct MethodRow {
  WarpMethod number;
  const char* name;
  size_t required;              // the least number of control points
  const char* other = nullptr;  // no method has a second spelling
};

// Encoded texts carry the names, so they are kept letter for letter; "Marcov Spline" is deliberate.
constexpr MethodRow kMethods[] = {
    {WarpMethodUnknown, "Unknown", 0},
    {WarpMethodDisplacement, "Displacement", 1},
    {WarpMethodHelmert, "Helmert", 2},
    {WarpMethodAffinePolynomial, "Affine Polynomial", 3},
    {WarpMethodFirstOrderPolynomial, "First Order Polynomial", 4},
    {WarpMethodSecondOrderPolynomial, "Second Order Polynomial", 6},
    {WarpMethodThirdOrderPolynomial, "Third Order Polynomial", 10},
    {WarpMethodAffineWithCoefficients, "Affine With Coefficients", 0},
    {WarpMethodThinPlateSpline, "Thin Plate Spline", 6},
    {WarpMethodNaturalCubicSpline, "Natural Cubic Spline", 6},
    {WarpMethodMarcovSpline, "Marcov Spline", 6},
    {WarpMethodExponentialSpline, "Exponential Spline", 6},
    {WarpMethodRationalQuadraticSpline, "Rational Quadratic Spline", 6},
    {WarpMethodInverseDistanceSquared, "Inverse Distance Squared", 6},
};
static_assert(std::size(kMethods) == WarpMethodInverseDistanceSquared + 1);

constexpr const char* kCorrupt = "Corrupt data encountered while decoding warp/georeference parameters.";
constexpr internal::BlockSyntax kBlock = {"Georef", kCorrupt, kCorrupt, kCorrupt,
                                          kCorrupt, kCorrupt, kCorrupt, kCorrupt};

constexpr double kSame = 1e-9;  // absolute; differences below it are none

// The test has this direction so that NaN differs.
bool Same(double a, double b) { return std::fabs(a - b) < kSame; }

bool SamePoints(const std::vector<shr::Vec2d>& a, const std::vector<shr::Vec2d>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const shr::Vec2d& p, const shr::Vec2d& q) {
    return Same(p.x, q.x) && Same(p.y, q.y);
  });
}

int Find(const std::vector<shr::Vec2d>& points, double x, double y) {
  for (size_t i = 0; i < points.size(); ++i) {
    if (points[i].x == x && points[i].y == y) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace

template <class Walker, class Self>
void WarpDef::Fields(Walker& w, Self& d) {
  w.Named("Method", d.m_Method, kMethods, d.m_Method != WarpMethodUnknown);
  w.Points("SrcControls", d.m_Source, !d.m_Source.empty());
  w.Points("DestControls", d.m_Destination, !d.m_Destination.empty());
  // Deliberate: reading the coefficients leaves the method as it is; only the setters change it.
  w.Doubles("Coeff", d.m_Coeff, 6, d.m_Method == WarpMethodAffineWithCoefficients);
}

WarpDef::WarpDef() = default;

void WarpDef::Flush() { *this = WarpDef(); }

// ---- methods ---------------------------------------------------------------------------------------------

const char* WarpDef::MethodName(WarpMethod method) { return internal::NameOf(kMethods, method); }

WarpMethod WarpDef::NameToMethod(const char* name) { return internal::IdOf(kMethods, name); }
WarpMethod WarpDef::NameToMethod(std::string& name) { return NameToMethod(name.c_str()); }

size_t WarpDef::RequiredControls(WarpMethod method) {
  const MethodRow* const row = internal::RowOf(kMethods, method);
  return row ? row->required : 0;
}

WarpMethod WarpDef::GetMethod() const { return m_Method; }
const char* WarpDef::MethodName() const { return MethodName(m_Method); }

void WarpDef::SetMethod(WarpMethod method) {
  if (!internal::RowOf(kMethods, method)) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return;
  }
  m_Method = method;
}

// ---- coefficients ----------------------------------------------------------------------------------------

void WarpDef::GetCoefficients(double& c0, double& c1, double& c2, double& c3, double& c4, double& c5) const {
  c0 = m_Coeff[0];
  c1 = m_Coeff[1];
  c2 = m_Coeff[2];
  c3 = m_Coeff[3];
  c4 = m_Coeff[4];
  c5 = m_Coeff[5];
}
void WarpDef::GetCoefficients(double* six) const {
  if (six) std::copy_n(m_Coeff, 6, six);
}

void WarpDef::SetCoefficients(double c0, double c1, double c2, double c3, double c4, double c5) {
  double six[6] = {c0, c1, c2, c3, c4, c5};
  SetCoefficients(six);
}
void WarpDef::SetCoefficients(double* six) {
  if (!six) return;
  std::copy_n(six, 6, m_Coeff);
  m_Method = WarpMethodAffineWithCoefficients;
}

// ---- control points --------------------------------------------------------------------------------------

void WarpDef::AddSourcePoint(const shr::Vec2d& point) { m_Source.push_back(point); }
void WarpDef::AddSourcePoint(double x, double y) { m_Source.emplace_back(x, y); }
void WarpDef::AddDestinationPoint(const shr::Vec2d& point) { m_Destination.push_back(point); }
void WarpDef::AddDestinationPoint(double x, double y) { m_Destination.emplace_back(x, y); }

void WarpDef::SetNumControlPoints(size_t count) {
  m_Source.resize(count);
  m_Destination.resize(count);
}
size_t WarpDef::NumControlPoints(bool destination) const {
  return destination ? m_Destination.size() : m_Source.size();
}

int WarpDef::FindSourcePoint(shr::Vec2d& point) const { return Find(m_Source, point.x, point.y); }
int WarpDef::FindSourcePoint(double x, double y) const { return Find(m_Source, x, y); }
int WarpDef::FindDestinationPoint(shr::Vec2d& point) const { return Find(m_Destination, point.x, point.y); }
int WarpDef::FindDestinationPoint(double x, double y) const { return Find(m_Destination, x, y); }

// The two sides below differ on purpose in what they report; a shared helper would even that out.

const shr::Vec2d* WarpDef::EnumSourcePoint(size_t index) const {
  return index < m_Source.size() ? &m_Source[index] : nullptr;  // deliberate: no report
}

const shr::Vec2d* WarpDef::EnumDestinationPoint(size_t index) const {
  if (index >= m_Destination.size()) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return nullptr;
  }
  return &m_Destination[index];
}

bool WarpDef::EnumSourcePoint(size_t index, shr::Vec2d& out) const {
  out = shr::Vec2d();
  if (index >= m_Source.size()) return ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
  out = m_Source[index];
  return true;
}

bool WarpDef::EnumDestinationPoint(size_t index, shr::Vec2d& out) const {
  out = shr::Vec2d();
  if (index >= m_Destination.size()) return ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
  out = m_Destination[index];
  return true;
}

bool WarpDef::ReplaceSourcePoint(size_t index, shr::Vec2d& point) {
  return ReplaceSourcePoint(index, point.x, point.y);
}
bool WarpDef::ReplaceSourcePoint(size_t index, double x, double y) {
  if (index >= m_Source.size()) return ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
  m_Source[index] = shr::Vec2d(x, y);
  return true;
}

bool WarpDef::ReplaceDestinationPoint(size_t index, shr::Vec2d& point) {
  return ReplaceDestinationPoint(index, point.x, point.y);
}
bool WarpDef::ReplaceDestinationPoint(size_t index, double x, double y) {
  if (index >= m_Destination.size()) return ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
  for (size_t i = 0; i < m_Destination.size(); ++i) {
    if (i != index && m_Destination[i].x == x && m_Destination[i].y == y) {
      return ORV_FAIL(ErrBadParameter, "Warp context can't have two identical control points.");
    }
  }
  m_Destination[index] = shr::Vec2d(x, y);
  return true;
}

// ---- the whole -------------------------------------------------------------------------------------------

bool WarpDef::Compare(const WarpDef& other) const {
  if (m_Method != other.m_Method) return false;
  if (m_Method == WarpMethodAffineWithCoefficients) {
    return std::equal(std::begin(m_Coeff), std::end(m_Coeff), std::begin(other.m_Coeff), Same);
  }
  return SamePoints(m_Source, other.m_Source) && SamePoints(m_Destination, other.m_Destination);
}

bool WarpDef::Validate() const {
  std::string message;
  return Validate(message);
}

bool WarpDef::Validate(std::string& message) const {
  message.clear();
  if (m_Method < WarpMethodDisplacement || m_Method > WarpMethodInverseDistanceSquared) {
    message = "Transform method not valid.";
    return false;
  }
  if (m_Method == WarpMethodAffineWithCoefficients) {
    if (std::any_of(std::begin(m_Coeff), std::end(m_Coeff), [](double c) { return c != 0.0; })) return true;
    message = "Coefficients not initialized (all zeroes).";
    return false;
  }
  if (m_Source.size() != m_Destination.size()) {
    message = "Source and destination control point counts don't match.";
    return false;
  }
  const size_t required = RequiredControls(m_Method);
  if (m_Source.size() < required) {
    // Deliberate: the full stop stands behind the line feed.
    message =
        internal::Format("Not enough control points for specified transform method (have %d, need %d)\n.",
                         static_cast<int>(m_Source.size()), static_cast<int>(required));
    return false;
  }
  return true;
}

void WarpDef::EncodeToText(std::string& out) const { internal::WriteBlock(*this, kBlock, out); }

void WarpDef::DecodeBlock(const std::string& text, size_t* at) {
  // Deliberate: unlike other definitions, a warp is flushed first, but only when the block's head is good.
  internal::ReadBlock(*this, kBlock, ORV_SITE, text, at, [this] { Flush(); });
}

void WarpDef::DecodeFromText(const std::string& text, size_t* position) {
  size_t at = position ? *position : 0;
  DecodeBlock(text, &at);
  if (position) *position = internal::BehindBlockEnd(text, at);
}

void WarpDef::DebugDump(std::string& out, size_t indent) const {
  internal::Dump dump(out, indent);
  dump.Line("Georef:").Line("  Method:  %s", internal::EmptyIfNull(MethodName()));
  if (m_Method == WarpMethodAffineWithCoefficients) {
    dump.Line("  Coefficients:");
    for (int i = 0; i < 6; ++i) dump.Line("    Coeff[%d] = %.18f", i, m_Coeff[i]);
    return;
  }
  dump.Line("  Control Points (src=%d, dest=%d):", static_cast<int>(m_Source.size()),
            static_cast<int>(m_Destination.size()));
  const auto side = [](const char* name, const std::vector<shr::Vec2d>& points, size_t i) {
    return i < points.size() ? internal::Format("%s( %.18f, %.18f ) ", name, points[i].x, points[i].y)
                             : internal::Format("%s( ...empty... ) ", name);
  };
  for (size_t i = 0; i < std::max(m_Source.size(), m_Destination.size()); ++i) {
    dump.Line("    Point[%d] %s%s", static_cast<int>(i), side("Src", m_Source, i).c_str(),
              side("Dest", m_Destination, i).c_str());
  }
}

}  // namespace orv
