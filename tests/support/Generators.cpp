#include "tests/support/Generators.h"

#include <rapidcheck.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace orv::test {

::testing::AssertionResult Holds(const std::function<void()>& property, int cases, uint64_t seed) {
  rc::detail::TestParams params;
  params.seed = seed;
  params.maxSuccess = cases;
  const rc::detail::TestResult result =
      rc::detail::checkTestable(property, rc::detail::TestMetadata(), params);
  if (result.is<rc::detail::SuccessResult>()) return ::testing::AssertionSuccess();
  std::ostringstream message;
  rc::detail::printResultMessage(result, message);
  return ::testing::AssertionFailure() << "seed " << seed << ": " << message.str();
}

void Refute(const char* expression, const char* file, int line) {
  throw std::runtime_error(std::string(file) + ":" + std::to_string(line) + ": " + expression);
}

// ---- values ----------------------------------------------------------------------------------------------

bool AnyBool() { return *rc::gen::arbitrary<bool>(); }
int AnyInt() { return *rc::gen::arbitrary<int>(); }
size_t AnySize() { return *rc::gen::arbitrary<size_t>(); }
int IntIn(int low, int end) { return *rc::gen::inRange(low, end); }
size_t SizeIn(size_t low, size_t end) { return *rc::gen::inRange(low, end); }
int64_t IntegerIn(int64_t low, int64_t end) { return *rc::gen::inRange(low, end); }

std::string TextOf(const std::vector<char>& characters) {
  return *rc::gen::container<std::string>(rc::gen::elementOf(characters));
}

std::string AnyText() {
  std::string text;
  for (const int byte : *rc::gen::container<std::vector<int>>(rc::gen::inRange(1, 256))) {
    if (byte != '\\') text += static_cast<char>(byte);
  }
  return text;
}

std::string QuotableText() {
  std::string text;
  for (const char c : AnyText()) {
    if (c != '"' && c != '\n') text += c;
  }
  return text;
}

double AnyNumber() {
  using Limits = std::numeric_limits<double>;
  switch (IntIn(0, 3)) {
    case 0: {
      const uint64_t bits = *rc::gen::inRange<uint64_t>(0, UINT64_MAX);
      double value = 0.0;
      std::memcpy(&value, &bits, sizeof value);
      return std::isfinite(value) ? value : 1.0 / 3.0;
    }
    case 1:
      return IntIn(-100000, 100000) / 64.0;
    default:
      return OneOf(
          {0.0, -0.0, 1.0, -1.0, 0.1, Limits::denorm_min(), Limits::min(), Limits::max(), Limits::lowest()});
  }
}

double NumberIn(double low, double high) {
  constexpr int64_t kSteps = int64_t{1} << 40;
  const double share = static_cast<double>(IntegerIn(0, kSteps + 1)) / static_cast<double>(kSteps);
  return low * (1.0 - share) + high * share;
}

// ---- definitions -----------------------------------------------------------------------------------------

namespace {

EllipsoidDef MakeEllipsoid(double radius, double flattening) {
  EllipsoidDef ellipsoid(radius, flattening, nullptr, nullptr, nullptr, AnyInt());
  ellipsoid.SetToken(AnyText().c_str());
  ellipsoid.SetName(AnyText().c_str());
  ellipsoid.SetComment(AnyText().c_str());
  return ellipsoid;
}

}  // namespace

EllipsoidDef AnyEllipsoid() {
  const double radius = std::fabs(AnyNumber());
  const double flattening = std::fabs(AnyNumber());
  return MakeEllipsoid(radius > 0.0 ? radius : 1.0, flattening);
}

EllipsoidDef ValidEllipsoid() {
  const double radius = NumberIn(1.0, 1e7);
  return MakeEllipsoid(radius, AnyBool() ? 0.0 : NumberIn(0.0, 0.5));
}

namespace {

void SetTexts(DatumDef& datum) {
  datum.SetToken(AnyText().c_str());
  datum.SetName(AnyText().c_str());
  datum.SetComment(AnyText().c_str());
  datum.SetPOSCNumber(AnyInt());
  datum.SetSpecial(static_cast<DatumTarget>(IntIn(0, 6)));
}

}  // namespace

DatumDef AnyDatum() {
  DatumParameters p;
  p.method = static_cast<DatumMethod>(IntIn(0, 7));
  p.target = static_cast<DatumTarget>(IntIn(0, 6));
  p.ellipsoid = AnyEllipsoid();
  for (double* const value : {&p.pmShift, &p.dx, &p.dy, &p.dz, &p.rx, &p.ry, &p.rz, &p.k}) {
    *value = AnyNumber();
  }
  p.mreType = static_cast<DatumMREType>(IntIn(0, 9));
  p.nadconPrvi = AnyBool();
  p.inverse = AnyBool();
  DatumDef datum(&p, 0);
  SetTexts(datum);
  return datum;
}

DatumDef ValidDatum() {
  DatumParameters p;
  p.method = static_cast<DatumMethod>(IntIn(0, 7));
  p.target = static_cast<DatumTarget>(IntIn(1, 6));
  p.ellipsoid = ValidEllipsoid();
  p.pmShift = NumberIn(-180.0, 180.0);
  for (double* const value : {&p.dx, &p.dy, &p.dz}) *value = NumberIn(-2000.0, 2000.0);
  for (double* const value : {&p.rx, &p.ry, &p.rz, &p.k}) *value = NumberIn(-20.0, 20.0);
  p.mreType = static_cast<DatumMREType>(IntIn(1, 9));
  p.nadconPrvi = AnyBool();
  DatumDef datum(&p, 0);
  SetTexts(datum);
  return datum;
}

void SetFlags(ProjectionParameters& p) {
  for (bool* const flag : {&p.bSouth, &p.bUseAlpha, &p.bRotate, &p.bUOffset, &p.bNoWrap}) {
    *flag = AnyBool();
  }
}

ProjectionDef AnyProjection() {
  ProjectionParameters p;
  p.method = static_cast<ProjectionMethod>(IntIn(0, 28));
  p.ellipsoid = AnyEllipsoid();
  for (double* const value :
       {&p.Scale, &p.xOrg, &p.yOrg, &p.Lon0, &p.Lon1, &p.Lon2, &p.Lat0, &p.Lat1, &p.Lat2, &p.K0, &p.Alpha}) {
    *value = AnyNumber();
  }
  SetFlags(p);
  return ProjectionDef(p);
}

ProjectionDef ValidProjection() {
  ProjectionParameters p;
  p.method = static_cast<ProjectionMethod>(IntIn(1, 28));
  p.ellipsoid = ValidEllipsoid();
  p.Scale = NumberIn(0.001, 1000.0);
  p.xOrg = NumberIn(-1e7, 1e7);
  p.yOrg = NumberIn(-1e7, 1e7);
  for (double* const value : {&p.Lon0, &p.Lon1, &p.Lon2}) *value = NumberIn(-359.0, 359.0);
  // Apart from each other, from 0 and from the poles: no method refuses these.
  p.Lat0 = NumberIn(-89.0, 89.0);
  p.Lat1 = NumberIn(1.0, 40.0);
  p.Lat2 = NumberIn(41.0, 89.0);
  p.K0 = NumberIn(0.5, 2.0);
  p.Alpha = NumberIn(1.0, 359.0);
  SetFlags(p);
  return ProjectionDef(p);
}

void AddPoints(WarpDef& warp, size_t sources, size_t destinations,
               const std::function<double()>& coordinate) {
  for (size_t i = 0; i < sources; ++i) {
    const double x = coordinate();
    warp.AddSourcePoint(x, coordinate());
  }
  for (size_t i = 0; i < destinations; ++i) {
    const double x = coordinate();
    warp.AddDestinationPoint(x, coordinate());
  }
}

WarpDef AnyWarp() {
  WarpDef warp;
  double c[6];
  for (double& value : c) value = AnyNumber();
  if (AnyBool()) warp.SetCoefficients(c);
  warp.SetMethod(static_cast<WarpMethod>(IntIn(0, 14)));
  const size_t sources = SizeIn(0, 12);
  AddPoints(warp, sources, SizeIn(0, 12), AnyNumber);
  return warp;
}

WarpDef ValidWarp() {
  WarpDef warp;
  const WarpMethod method = static_cast<WarpMethod>(IntIn(1, 14));
  if (method == static_cast<WarpMethod>(7)) {
    double c[6];
    for (double& value : c) value = NumberIn(1.0, 10.0);
    warp.SetCoefficients(c);
    return warp;
  }
  warp.SetMethod(method);
  const size_t points = WarpDef::RequiredControls(method) + SizeIn(0, 4);
  AddPoints(warp, points, points, [] { return NumberIn(-1e4, 1e4); });
  return warp;
}

namespace {

void SetTexts(CSDef& system) {
  system.SetToken(AnyText().c_str());
  system.SetName(AnyText().c_str());
  system.SetComment(AnyText().c_str());
}

}  // namespace

ORVDef ValidOrvDef() {
  ORVDef system;
  SetTexts(system);
  if (AnyBool()) {
    const DatumDef datum = ValidDatum();
    system.SetDatum(&datum);
  }
  if (AnyBool()) {
    const ProjectionDef projection = ValidProjection();
    system.SetProjection(&projection);
  }
  if (AnyBool()) {
    const WarpDef warp = ValidWarp();
    system.SetWarp(&warp);
  }
  system.SetPOSC(AnyInt());
  system.SetUSGS(AnyInt());
  system.SetLegacyName(AnyText().c_str());
  return system;
}

UCSDef AnyUcsDef() {
  UCSDef system;
  SetTexts(system);
  system.SetScale(std::fabs(AnyNumber()));
  const double x = AnyNumber();
  system.SetOrigin(x, AnyNumber());
  if (AnyBool()) {
    const WarpDef warp = AnyWarp();
    system.SetWarp(&warp);
  }
  return system;
}

}  // namespace orv::test
