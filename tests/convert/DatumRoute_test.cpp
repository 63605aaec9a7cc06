#include "orv/convert/DatumRoute.h"

#include <gtest/gtest.h>

#include "orv/core/internal/Fail.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/GridFiles.h"
#include "tests/support/GridBytes.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using DatumRoute = test::KnownDatums;

TEST_F(DatumRoute, OneStepForwardAndOneBackward) {
  const DatumDef dhdn = test::BursaWolfDatum(), ed50 = test::MolodenskyDatum();
  const std::vector<DatumStep> steps = ORVPlanDatumRoute(dhdn, ed50);
  ASSERT_EQ(steps.size(), 2u);
  EXPECT_EQ(steps[0].direction, DatumStep::Forward);
  EXPECT_EQ(steps[0].datum.GetMethod(), DatumMethodBursaWolf);
  EXPECT_STREQ(steps[0].target.GetToken(), "WGS84");
  EXPECT_EQ(steps[1].direction, DatumStep::Backward);
  EXPECT_EQ(steps[1].datum.GetMethod(), DatumMethodMolodensky);
  EXPECT_STREQ(steps[1].target.GetToken(), "WGS84");
}

TEST_F(DatumRoute, TheStepsByHandGiveWhatTheConverterGives) {
  const DatumDef dhdn = test::BursaWolfDatum(), ed50 = test::MolodenskyDatum(), wgs84 = test::Wgs84Datum();
  shr::Vec2d whole{9.5, 51.25}, chain = whole;
  DatumConverter(&dhdn, &ed50).Convert(&whole, 1);
  DatumConverter(&dhdn, &wgs84).Convert(&chain, 1);
  DatumConverter(&wgs84, &ed50).Convert(&chain, 1);
  EXPECT_NEAR(whole.x, chain.x, 1e-12);
  EXPECT_NEAR(whole.y, chain.y, 1e-12);
  EXPECT_NE(whole.x, 9.5);
}

TEST_F(DatumRoute, EqualDatumsNeedNothing) {
  const DatumDef dhdn = test::BursaWolfDatum();
  const std::vector<DatumStep> steps = ORVPlanDatumRoute(dhdn, dhdn);
  ASSERT_EQ(steps.size(), 1u);
  EXPECT_EQ(steps[0].direction, DatumStep::Nothing);
  EXPECT_TRUE(steps[0].datum.IsUnknown());
}

TEST_F(DatumRoute, StepsThatNeedGridsSayWhetherTheyAreThere) {
  DatumParameters p;
  p.method = DatumMethodNone;
  p.target = DatumTargetWGS84;
  p.ellipsoid = test::Wgs84Ellipsoid();
  DatumDef nad83(&p, 6269);
  nad83.SetSpecial(DatumTargetNAD83);
  nad83.SetToken("NAD83");
  nad83.SetName("North American Datum 1983");
  ORVKnownDatumsList.Add(nad83, 0);
  p = DatumParameters();
  p.method = DatumMethodNADCON;
  p.target = DatumTargetNAD83;
  const DatumDef nadcon(&p, 0);
  p.method = DatumMethodNTV2;
  const DatumDef ntv2(&p, 0);

  const test::TempFolder folder;
  ORVSetNadconGridPath(folder.Path().c_str());
  ORVSetNTv2GridFile("no such file.gsb");
  DatumStep step = ORVPlanDatumRoute(nadcon, nad83).at(0);
  EXPECT_FALSE(step.gridsFound);
  EXPECT_EQ(step.grids, folder.Path());
  EXPECT_STREQ(step.target.GetToken(), "NAD83");
  step = ORVPlanDatumRoute(ntv2, nad83).at(0);
  EXPECT_FALSE(step.gridsFound);
  EXPECT_EQ(step.grids, "no such file.gsb");

  const auto one = [](int, int) { return 1.0F; };
  folder.Write("a.los", test::NadconFile({}, one));
  folder.Write("a.las", test::NadconFile({}, one));
  const std::string file = folder.Write("x.gsb", "found, whatever is in it");
  ORVSetNTv2GridFile(file.c_str());
  EXPECT_TRUE(ORVPlanDatumRoute(nadcon, nad83).at(0).gridsFound);
  step = ORVPlanDatumRoute(ntv2, nad83).at(0);
  EXPECT_TRUE(step.gridsFound);
  EXPECT_EQ(step.grids, file);
  ORVSetNadconGridPath(nullptr);
  ORVSetNTv2GridFile("ntv2_0.gsb");
}

TEST_F(DatumRoute, WhereThereIsNoWayItRaisesAsTheConverterDoes) {
  DatumParameters p;
  p.method = DatumMethodMRE;
  p.target = DatumTargetWGS84;
  p.mreType = DatumMRETypeED50;
  const DatumDef oneWay(&p, 0);
  EXPECT_EQ(ORVPlanDatumRoute(oneWay, test::Wgs84Datum()).size(), 1u);
  EXPECT_RAISES(ORVPlanDatumRoute(test::Wgs84Datum(), oneWay), 1033, "DatumConverter",
                "No conversion possible between the specified datums.");
}

}  // namespace
}  // namespace orv
