// Generators.h: random definitions, and properties checked with a fixed seed.
//
// Texts hold every byte but NUL, which ends a C string, and the backslash: encoded text writes a backslash as
// it is and reads one as the beginning of an escape, so a text that holds one does not come back (deliberate
// there). Numbers are finite, of any magnitude.  "Valid" definitions pass their own checks, "any" ones need
// not.
#pragma once

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/EllipsoidDef.h"
#include "orv/warp/WarpDef.h"

namespace orv::test {

inline constexpr uint64_t kSeed = 20260104;

/// Whether a rapidcheck property holds; always the same random cases.  A failure prints the shrunk case.
template <class Property>
::testing::AssertionResult Holds(const Property& property, int cases = 200, uint64_t seed = kSeed) {
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

// ---- values ----------------------------------------------------------------------------------------------

inline rc::Gen<std::string> AnyText() {
  return rc::gen::map(rc::gen::container<std::vector<int>>(rc::gen::inRange(1, 256)),
                      [](const std::vector<int>& bytes) {
                        std::string text;
                        for (const int byte : bytes) {
                          if (byte != '\\') text += static_cast<char>(byte);
                        }
                        return text;
                      });
}

inline rc::Gen<double> AnyNumber() {
  const auto ofBits = rc::gen::map(rc::gen::inRange<uint64_t>(0, UINT64_MAX), [](uint64_t bits) {
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return std::isfinite(value) ? value : 1.0 / 3.0;
  });
  const auto simple = rc::gen::map(rc::gen::inRange(-100000, 100000), [](int n) { return n / 64.0; });
  const auto special =
      rc::gen::element(0.0, -0.0, 1.0, -1.0, 0.1, std::numeric_limits<double>::denorm_min(),
                       std::numeric_limits<double>::min(), std::numeric_limits<double>::max(),
                       std::numeric_limits<double>::lowest());
  return rc::gen::oneOf(ofBits, simple, special);
}

/// A number from low to high, both included, of 2^40 different ones.
inline rc::Gen<double> NumberIn(double low, double high) {
  constexpr int64_t kSteps = int64_t{1} << 40;
  return rc::gen::map(rc::gen::inRange<int64_t>(0, kSteps + 1), [low, high](int64_t n) {
    const double share = static_cast<double>(n) / static_cast<double>(kSteps);
    return low * (1.0 - share) + high * share;
  });
}

// ---- definitions -----------------------------------------------------------------------------------------

inline EllipsoidDef MakeEllipsoid(double radius, double flattening) {
  EllipsoidDef ellipsoid(radius, flattening, nullptr, nullptr, nullptr, *rc::gen::arbitrary<int>());
  ellipsoid.SetToken((*AnyText()).c_str());
  ellipsoid.SetName((*AnyText()).c_str());
  ellipsoid.SetComment((*AnyText()).c_str());
  return ellipsoid;
}

/// Any radius above 0 and any flattening from 0 on.
inline rc::Gen<EllipsoidDef> AnyEllipsoid() {
  return rc::gen::exec([] {
    const double radius = std::fabs(*AnyNumber());
    const double flattening = std::fabs(*AnyNumber());
    return MakeEllipsoid(radius > 0.0 ? radius : 1.0, flattening);
  });
}

inline rc::Gen<EllipsoidDef> ValidEllipsoid() {
  return rc::gen::exec([] {
    const double radius = *NumberIn(1.0, 1e7);
    return MakeEllipsoid(radius, *rc::gen::oneOf(rc::gen::just(0.0), NumberIn(0.0, 0.5)));
  });
}

inline void SetTexts(DatumDef& datum) {
  datum.SetToken((*AnyText()).c_str());
  datum.SetName((*AnyText()).c_str());
  datum.SetComment((*AnyText()).c_str());
  datum.SetPOSCNumber(*rc::gen::arbitrary<int>());
  datum.SetSpecial(static_cast<DatumTarget>(*rc::gen::inRange(0, 6)));
}

inline rc::Gen<DatumDef> AnyDatum() {
  return rc::gen::exec([] {
    DatumParameters p;
    p.method = static_cast<DatumMethod>(*rc::gen::inRange(0, 7));
    p.target = static_cast<DatumTarget>(*rc::gen::inRange(0, 6));
    p.ellipsoid = *AnyEllipsoid();
    for (double* const value : {&p.pmShift, &p.dx, &p.dy, &p.dz, &p.rx, &p.ry, &p.rz, &p.k}) {
      *value = *AnyNumber();
    }
    p.mreType = static_cast<DatumMREType>(*rc::gen::inRange(0, 9));
    p.nadconPrvi = *rc::gen::arbitrary<bool>();
    p.inverse = *rc::gen::arbitrary<bool>();
    DatumDef datum(&p, 0);
    SetTexts(datum);
    return datum;
  });
}

inline rc::Gen<DatumDef> ValidDatum() {
  return rc::gen::exec([] {
    DatumParameters p;
    p.method = static_cast<DatumMethod>(*rc::gen::inRange(0, 7));
    p.target = static_cast<DatumTarget>(*rc::gen::inRange(1, 6));
    p.ellipsoid = *ValidEllipsoid();
    p.pmShift = *NumberIn(-180.0, 180.0);
    for (double* const value : {&p.dx, &p.dy, &p.dz}) *value = *NumberIn(-2000.0, 2000.0);
    for (double* const value : {&p.rx, &p.ry, &p.rz, &p.k}) *value = *NumberIn(-20.0, 20.0);
    p.mreType = static_cast<DatumMREType>(*rc::gen::inRange(1, 9));
    p.nadconPrvi = *rc::gen::arbitrary<bool>();
    DatumDef datum(&p, 0);
    SetTexts(datum);
    return datum;
  });
}

/// The flags of a projection, which any method may carry.
inline void SetFlags(ProjectionParameters& p) {
  for (bool* const flag : {&p.bSouth, &p.bUseAlpha, &p.bRotate, &p.bUOffset, &p.bNoWrap}) {
    *flag = *rc::gen::arbitrary<bool>();
  }
}

inline rc::Gen<ProjectionDef> AnyProjection() {
  return rc::gen::exec([] {
    ProjectionParameters p;
    p.method = static_cast<ProjectionMethod>(*rc::gen::inRange(0, 28));
    p.ellipsoid = *AnyEllipsoid();
    for (double* const value : {&p.Scale, &p.xOrg, &p.yOrg, &p.Lon0, &p.Lon1, &p.Lon2, &p.Lat0, &p.Lat1,
                                &p.Lat2, &p.K0, &p.Alpha}) {
      *value = *AnyNumber();
    }
    SetFlags(p);
    return ProjectionDef(p);
  });
}

inline rc::Gen<ProjectionDef> ValidProjection() {
  return rc::gen::exec([] {
    ProjectionParameters p;
    p.method = static_cast<ProjectionMethod>(*rc::gen::inRange(1, 28));
    p.ellipsoid = *ValidEllipsoid();
    p.Scale = *NumberIn(0.001, 1000.0);
    p.xOrg = *NumberIn(-1e7, 1e7);
    p.yOrg = *NumberIn(-1e7, 1e7);
    for (double* const value : {&p.Lon0, &p.Lon1, &p.Lon2}) *value = *NumberIn(-359.0, 359.0);
    // Apart from each other, from 0 and from the poles: no method refuses these.
    p.Lat0 = *NumberIn(-89.0, 89.0);
    p.Lat1 = *NumberIn(1.0, 40.0);
    p.Lat2 = *NumberIn(41.0, 89.0);
    p.K0 = *NumberIn(0.5, 2.0);
    p.Alpha = *NumberIn(1.0, 359.0);
    SetFlags(p);
    return ProjectionDef(p);
  });
}

inline void AddPoints(WarpDef& warp, size_t sources, size_t destinations, const rc::Gen<double>& coordinate) {
  for (size_t i = 0; i < sources; ++i) {
    const double x = *coordinate;
    warp.AddSourcePoint(x, *coordinate);
  }
  for (size_t i = 0; i < destinations; ++i) {
    const double x = *coordinate;
    warp.AddDestinationPoint(x, *coordinate);
  }
}

/// Any method, and lists of control points of any, and different, lengths.
inline rc::Gen<WarpDef> AnyWarp() {
  return rc::gen::exec([] {
    WarpDef warp;
    double c[6];
    for (double& value : c) value = *AnyNumber();
    if (*rc::gen::arbitrary<bool>()) warp.SetCoefficients(c);
    warp.SetMethod(static_cast<WarpMethod>(*rc::gen::inRange(0, 14)));
    const size_t sources = *rc::gen::inRange<size_t>(0, 12);
    AddPoints(warp, sources, *rc::gen::inRange<size_t>(0, 12), AnyNumber());
    return warp;
  });
}

inline rc::Gen<WarpDef> ValidWarp() {
  return rc::gen::exec([] {
    WarpDef warp;
    const WarpMethod method = static_cast<WarpMethod>(*rc::gen::inRange(1, 14));
    if (method == static_cast<WarpMethod>(7)) {
      double c[6];
      for (double& value : c) value = *NumberIn(1.0, 10.0);
      warp.SetCoefficients(c);
      return warp;
    }
    warp.SetMethod(method);
    const size_t points = WarpDef::RequiredControls(method) + *rc::gen::inRange<size_t>(0, 4);
    AddPoints(warp, points, points, NumberIn(-1e4, 1e4));
    return warp;
  });
}

inline void SetTexts(CSDef& system) {
  system.SetToken((*AnyText()).c_str());
  system.SetName((*AnyText()).c_str());
  system.SetComment((*AnyText()).c_str());
}

/// Valid parts, each there or not.
inline rc::Gen<ORVDef> ValidOrvDef() {
  return rc::gen::exec([] {
    ORVDef system;
    SetTexts(system);
    if (*rc::gen::arbitrary<bool>()) {
      const DatumDef datum = *ValidDatum();
      system.SetDatum(&datum);
    }
    if (*rc::gen::arbitrary<bool>()) {
      const ProjectionDef projection = *ValidProjection();
      system.SetProjection(&projection);
    }
    if (*rc::gen::arbitrary<bool>()) {
      const WarpDef warp = *ValidWarp();
      system.SetWarp(&warp);
    }
    system.SetPOSC(*rc::gen::arbitrary<int>());
    system.SetUSGS(*rc::gen::arbitrary<int>());
    system.SetLegacyName((*AnyText()).c_str());
    return system;
  });
}

/// Any scale from 0 on and any warp.
inline rc::Gen<UCSDef> AnyUcsDef() {
  return rc::gen::exec([] {
    UCSDef system;
    SetTexts(system);
    system.SetScale(std::fabs(*AnyNumber()));
    const double x = *AnyNumber();
    system.SetOrigin(x, *AnyNumber());
    if (*rc::gen::arbitrary<bool>()) {
      const WarpDef warp = *AnyWarp();
      system.SetWarp(&warp);
    }
    return system;
  });
}

}  // namespace orv::test
