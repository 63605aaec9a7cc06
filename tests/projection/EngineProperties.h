// EngineProperties.h: what must hold for every engine, whatever its projection.
//
// A family's test makes a list of EngineCase and instantiates EngineProperties with it:
//
//     INSTANTIATE_TEST_SUITE_P(Cylindrical, EngineProperties, testing::ValuesIn(Cases()), EngineCaseName);
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Marker.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/Projector.h"

namespace orv::test {

inline constexpr unsigned kEngineSeed = 20240229;

/// A projection, with all its parameters away from their defaults, and where it is to be tried.
struct EngineCase {
  std::string name;
  ProjectionDef def;
  double west, east, south, north;  ///< the area, degrees
  double roundTrip;  ///< degrees of arc by which a point may miss itself on the way there and back
  /// The mathematics is the same on both sides of Lon0 (x turns its sign), and of the Equator (y turns its
  /// sign).
  bool mirrorsLon0 = false, mirrorsEquator = false;
};

inline std::string EngineCaseName(const testing::TestParamInfo<EngineCase>& info) { return info.param.name; }
inline void PrintTo(const EngineCase& c, std::ostream* out) { *out << c.name; }

/// An engine set up as the Projector does it, for parameters that a check might refuse as well.
inline std::unique_ptr<ProjActor> MakeEngine(const ProjectionParameters& degrees) {
  ProjectionParameters p = degrees;
  for (double* const angle : {&p.Lon0, &p.Lon1, &p.Lon2, &p.Lat0, &p.Lat1, &p.Lat2, &p.Alpha}) {
    *angle = internal::ToRadians(*angle);
  }
  std::unique_ptr<ProjActor> actor = MakeProjActor(p.method);
  if (actor) actor->SetParameters(p);
  return actor;
}

inline shr::Vec2d InRadians(const shr::Vec2d& degrees) {
  return {internal::ToRadians(degrees.x), internal::ToRadians(degrees.y)};
}

/// One point through an engine: radians to metres, or back.
inline shr::Vec2d Forward(ProjActor& actor, shr::Vec2d point) {
  EXPECT_TRUE(actor.Forward(&point, 1));
  return point;
}
inline shr::Vec2d Inverse(ProjActor& actor, shr::Vec2d point) {
  EXPECT_TRUE(actor.Inverse(&point, 1));
  return point;
}

inline bool SameBits(const shr::Vec2d& a, const shr::Vec2d& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
inline bool BothMarked(const shr::Vec2d& p) { return p.x == internal::kMarker && p.y == internal::kMarker; }

/// Parameters of a method on an ellipsoid, all else as constructed; a radius of 0 leaves it unknown.
inline ProjectionParameters On(ProjectionMethod method, double a, double f) {
  ProjectionParameters p;
  p.method = method;
  if (a > 0.0) p.ellipsoid.SetMajorRadius(a);
  p.ellipsoid.SetFlattening(f);
  return p;
}

inline void ExpectNear(const shr::Vec2d& point, double x, double y, double tolerance) {
  EXPECT_NEAR(point.x, x, tolerance);
  EXPECT_NEAR(point.y, y, tolerance);
}

class EngineProperties : public testing::TestWithParam<EngineCase> {
 protected:
  /// Points of the area, degrees.
  std::vector<shr::Vec2d> Area(size_t count) const;
};

}  // namespace orv::test
