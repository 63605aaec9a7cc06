// What all engines have in common and no suite of numbers shows.
#include "orv/projection/ProjActor.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>

#include "orv/projection/ProjectionDef.h"
#include "tests/projection/EngineProperties.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

TEST(Engines, NoPointsRaiseFromTheEnginesOwnUnit) {
  const struct {
    ProjectionMethod method;
    const char* unit;
  } rows[] = {
      {ProjectionMethodMercator, "ProjMercator"},
      {ProjectionMethodMiller, "ProjMiller"},
      {ProjectionMethodEquidistantCylindrical, "ProjEquidistantCylindrical"},
      {ProjectionMethodTransverseMercator, "ProjTransverseMercator"},
      {ProjectionMethodUTM, "ProjUTM"},
      {ProjectionMethodCassini, "ProjCassini"},
      {ProjectionMethodObliqueMercator, "ProjObliqueMercator"},
      {ProjectionMethodHotine, "ProjHotine"},
      {ProjectionMethodLambert, "ProjLambertConformalConic"},
      {ProjectionMethodAlbers, "ProjTranAlbers"},
      {ProjectionMethodEquidistantConic, "ProjEquidistantConic"},
      {ProjectionMethodPolyconic, "ProjPolyconic"},
      {ProjectionMethodBonne, "ProjBonne"},
      {ProjectionMethodStereographic, "ProjStereographic"},
      {ProjectionMethodOrthographic, "ProjOrthographic"},
      {ProjectionMethodGnomonic, "ProjGnomonic"},
      {ProjectionMethodAzimuthalEquidistant, "ProjAzimuthalEquidistant"},
      {ProjectionMethodLambertAzimuthal, "ProjLambertAzimuthal"},
      {ProjectionMethodEckert4, "ProjEckert4"},
      {ProjectionMethodEckert6, "ProjEckert6"},
      {ProjectionMethodMollweide, "ProjMollweide"},
      {ProjectionMethodRobinson, "ProjRobinson"},
      {ProjectionMethodRobinsonSterling, "ProjRobinsonSterling"},
      {ProjectionMethodSinusoidal, "ProjSinusoidal"},
      {ProjectionMethodVanDerGrinten, "ProjVanDerGrinten"},
  };
  static_assert(std::size(rows) == 25);
  for (const auto& row : rows) {
    const std::unique_ptr<ProjActor> engine = test::MakeEngine(*ProjectionDef(row.method).GetParameters());
    ASSERT_NE(engine, nullptr);
    shr::Vec2d point;
    EXPECT_RAISES(engine->Forward(nullptr, 1), 1026, row.unit, "No points to transform.");
    EXPECT_RAISES(engine->Forward(&point, 0), 1026, row.unit, "No points to transform.");
    EXPECT_RAISES(engine->Inverse(nullptr, 1), 1026, row.unit, "No points to transform.");
    EXPECT_RAISES(engine->Inverse(&point, 0), 1026, row.unit, "No points to transform.");
  }
}

}  // namespace
}  // namespace orv
