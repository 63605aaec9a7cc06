#include "orv/convert/Explanation.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "orv/convert/Conversion.h"
#include "orv/convert/SystemText.h"
#include "orv/core/internal/Marker.h"
#include "tests/support/Raises.h"
#include "tests/support/ShippedCatalogue.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

class ExplanationTest : public test::ShippedCatalogue {};

TEST_F(ExplanationTest, AStepInWhichNothingIsDoneStandsBetweenItsNeighbours) {
  // NADCON leads to NAD 83, which counts as WGS 84.
  const Explanation told =
      Conversion::Create("method=geographic,datum=ORV:NADCON-6267", "EPSG:4326").Explain();
  ASSERT_EQ(told.stages.size(), 1u);
  const std::vector<ExplainedStep>& steps = told.stages[0].steps;
  ASSERT_EQ(steps.size(), 2u);
  EXPECT_EQ(steps[0].direction, "forward");
  EXPECT_EQ(steps[0].from.token, "ORV:NADCON-6267");
  EXPECT_EQ(steps[0].to.token, "ORV:6269");
  EXPECT_EQ(steps[1].direction, "none");
  EXPECT_EQ(steps[1].from.token, "ORV:6269");
  EXPECT_EQ(steps[1].to.token, "EPSG:6326");
}

TEST_F(ExplanationTest, DatumsThatCountAsOneAreNamedWithWhatIsStatedOfThem) {
  const Explanation told = Conversion::Create("EPSG:4258", "EPSG:4326").Explain();
  EXPECT_TRUE(told.stages.empty());
  ASSERT_EQ(told.notes.size(), 1u);
  EXPECT_EQ(
      told.notes[0].find("The datums count as one, nothing is shifted between them: European Terrestrial"),
      0u)
      << told.notes[0];
  EXPECT_NE(told.notes[0].find("(ORV:6258; EPSG operation 1149: ETRS89 to WGS 84 (1); accuracy: 1 m)"),
            std::string::npos)
      << told.notes[0];
  EXPECT_NE(told.notes[0].find("World Geodetic System 1984 (EPSG:6326"), std::string::npos) << told.notes[0];
  EXPECT_TRUE(Conversion::Create("EPSG:4326", "EPSG:32633").Explain().notes.empty());  // one datum
}

TEST_F(ExplanationTest, TwoDatumsOfWhichNothingIsKnownAreNotOne) {
  // Qatar 1948 and TWD67; Qatar 1948 and TC(1948).
  for (const char* const other : {"EPSG:3821", "EPSG:30339"}) {
    EXPECT_RAISES(
        Conversion::Create("EPSG:4286", other), ErrSourceDatumMethod, "Conversion",
        std::string(
            "source system 'EPSG:4286' (Qatar 1948): no way is known from its datum 'Qatar 1948' "
            "(EPSG:6286) to any other; only systems on that datum can be converted to it, or a datum of "
            "your own with the parameters of the shift"));
  }
  EXPECT_TRUE(Conversion::Create("EPSG:4286", "EPSG:4286").Stages().empty());
  // Without numbers the names and the ellipsoids decide.
  const std::string bessel = "+proj=longlat +ellps=bessel +type=crs";
  EXPECT_EQ(Conversion::Create(bessel, "+proj=merc +ellps=bessel +type=crs").Stages().size(), 1u);
  EXPECT_THROW(Conversion::Create(bessel, "+proj=longlat +ellps=clrk66 +type=crs"), shr::Exception);
  EXPECT_THROW(Conversion::Create(bessel, "EPSG:4286"), shr::Exception);
}

TEST_F(ExplanationTest, APathMayHoldAnEqualsSign) {
  const test::TempFolder folder;
  const std::string path = folder.Write("a=b.def", "method=UTM,Lon0=9,datum=EPSG:6326");
  EXPECT_EQ(Conversion::Create("EPSG:4326", path).Stages().size(), 1u);
}

TEST_F(ExplanationTest, AnglesInGradsAndRadiansAreLongitudesAndLatitudesToo) {
  // NTF (Paris), in grads from Paris: 2.33722917 degrees east of Greenwich.
  const Conversion fromParis =
      Conversion::Create(*std::unique_ptr<CSDef>(ORVReadSystem("4807")), System("EPSG:4275"));
  EXPECT_DOUBLE_EQ(fromParis.FromAngleUnit(), 0.9);
  EXPECT_DOUBLE_EQ(fromParis.ToAngleUnit(), 1.0);
  EXPECT_TRUE(fromParis.FromGeographic());
  std::vector<shr::Vec2d> points = {{0.0, 55.0}, {10.0, 100.0}, {0.0, 100.1}, {0.0, -101.0}};
  ConversionReport report;
  fromParis.Convert(points.data(), points.size(), report);
  EXPECT_NEAR(points[0].x, 2.33722917, 1e-8);
  EXPECT_NEAR(points[0].y, 49.5, 1e-12);
  EXPECT_FALSE(internal::IsMarked(points[1]));  // the pole
  EXPECT_EQ(report.Tally(ConversionLostLatitude).count, 2u);
  EXPECT_EQ(report.Tally(ConversionLostLatitude).first, 2u);

  EXPECT_EQ(Conversion::Create("EPSG:4326", "EPSG:32633").ToAngleUnit(), 0.0);
}

}  // namespace
}  // namespace orv
