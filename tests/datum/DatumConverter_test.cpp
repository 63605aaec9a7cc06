#include "orv/datum/DatumConverter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "orv/core/internal/Marker.h"
#include "orv/datum/DatumMethods.h"
#include "tests/datum/Datums.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using internal::kMarker;
using shr::Vec2d;
using test::Make;
using test::Named;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

std::string DumpOf(const DatumConverter& converter) {
  std::string text;
  converter.DebugDump(text, 0);
  return test::Masked(text);
}

bool HasRoute(const DatumConverter& converter) {
  return DumpOf(converter).find("---Transforms (count=0):") == std::string::npos;
}

/// One of method None on another ellipsoid: two of them are identical, and every point goes through
/// unchanged.
DatumDef Plain(const char* name) { return Named(Make{DatumMethodNone, DatumTargetWGS84}, name, name); }

class DatumConverterTest : public test::KnownLists {
 protected:
  /// A Molodensky datum on the international ellipsoid.
  static DatumDef European() {
    DatumParameters p;
    p.method = DatumMethodMolodensky;
    p.target = DatumTargetWGS84;
    p.ellipsoid = test::International();
    p.dx = -87.0;
    p.dy = -98.0;
    p.dz = -121.0;
    return Named(DatumDef(&p, 6230), "ED50", "European Datum 1950");
  }
  static DatumDef World() {
    return Named(Make{DatumMethodNone, DatumTargetWGS84, DatumTargetWGS84, 6326}, "WGS84", "WGS 84");
  }
  static void KnowTheWorld() { ORVKnownDatumsList.Add(World(), 1); }
};

// ---- state -----------------------------------------------------------------------------------------------

TEST_F(DatumConverterTest, IsEmptyAtFirst) {
  const DatumConverter converter;
  DatumDef datum = European();
  converter.GetSourceDatum(datum);
  EXPECT_TRUE(datum.IsUnknown());
  EXPECT_EQ(nullptr, datum.GetName());
  converter.GetDestDatum(datum);
  EXPECT_TRUE(datum.IsUnknown());
  EXPECT_FALSE(HasRoute(converter));
  EXPECT_FALSE(converter.CheckUnplottableResult());
}

TEST_F(DatumConverterTest, KeepsCopiesOfItsDatums) {
  const DatumDef source = European();
  const DatumDef dest = World();
  const DatumConverter converter(&source, &dest);
  DatumDef datum;
  converter.GetSourceDatum(datum);
  EXPECT_STREQ("ED50", datum.GetToken());
  converter.GetDestDatum(datum);
  EXPECT_STREQ("WGS84", datum.GetToken());
}

TEST_F(DatumConverterTest, AFaultyDatumIsNotTaken) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumDef faulty = source;
  faulty.SetParameter(DatumParameterIDTarget, 0);
  DatumConverter converter(&source, &dest);
  converter.Initialize();
  DatumDef datum;
  EXPECT_RAISES(converter.SetSourceDatum(&faulty), 1032, "DatumConverter", "Invalid datum parameters.");
  converter.GetSourceDatum(datum);
  EXPECT_TRUE(datum.IsUnknown());
  EXPECT_FALSE(HasRoute(converter));

  converter.SetSourceDatum(&source);
  converter.Initialize();
  EXPECT_RAISES(converter.SetDestDatum(&faulty), 1032, "DatumConverter", "Invalid datum parameters.");
  converter.GetDestDatum(datum);
  EXPECT_TRUE(datum.IsUnknown());
  EXPECT_FALSE(HasRoute(converter));
  EXPECT_RAISES(DatumConverter(&faulty, &dest), 1032, "DatumConverter", "Invalid datum parameters.");
}

TEST_F(DatumConverterTest, SettingADatumDropsTheRoute) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  converter.Initialize();
  ASSERT_TRUE(HasRoute(converter));
  converter.SetDestDatum(&dest);
  EXPECT_FALSE(HasRoute(converter));
  converter.Initialize();
  converter.SetSourceDatum(nullptr);
  EXPECT_FALSE(HasRoute(converter));
  DatumDef datum = dest;
  converter.GetSourceDatum(datum);
  EXPECT_TRUE(datum.IsUnknown());
}

TEST_F(DatumConverterTest, CopiesKeepTheRouteAndNotTheFlag) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> points = {{kNaN, 10.0}};
  converter.Convert(points);
  ASSERT_TRUE(converter.CheckUnplottableResult());
  ORVKnownDatumsList.Flush();  // no route could be planned now
  DatumConverter copy(converter);
  DatumConverter assigned;
  assigned = converter;
  for (DatumConverter* const one : {&copy, &assigned}) {
    EXPECT_TRUE(HasRoute(*one));
    EXPECT_FALSE(one->CheckUnplottableResult());
    Vec2d point(10.0, 50.0);
    one->Convert(&point, 1);
    EXPECT_NE(10.0, point.x);
  }
  DatumConverter& self = converter;
  converter = self;
  EXPECT_TRUE(HasRoute(converter));
  EXPECT_TRUE(converter.CheckUnplottableResult());
}

TEST_F(DatumConverterTest, FlushEmptiesEverything) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> points = {{kNaN, 10.0}};
  converter.Convert(points);
  converter.Flush();
  EXPECT_FALSE(HasRoute(converter));
  EXPECT_FALSE(converter.CheckUnplottableResult());
  DatumDef datum = source;
  converter.GetSourceDatum(datum);
  EXPECT_TRUE(datum.IsUnknown());
  datum = source;
  converter.GetDestDatum(datum);
  EXPECT_TRUE(datum.IsUnknown());
}

// ---- planning --------------------------------------------------------------------------------------------

TEST_F(DatumConverterTest, NoRouteRaises) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = Make{DatumMethodMRE, DatumTargetWGS84};
  DatumConverter converter(&source, &dest);
  EXPECT_RAISES(converter.Initialize(), 1033, "DatumConverter",
                "No conversion possible between the specified datums.");
  EXPECT_FALSE(HasRoute(converter));
  std::vector<Vec2d> points = {{1.0, 2.0}};
  EXPECT_RAISES(converter.Convert(points), 1033, "DatumConverter",
                "No conversion possible between the specified datums.");
  EXPECT_EQ(1.0, points[0].x);
}

TEST_F(DatumConverterTest, FailuresOfTheSearchComeOut) {
  const DatumDef source = European();
  const DatumDef dest = Make{DatumMethodMRE, DatumTargetWGS84};
  DatumConverter converter;
  EXPECT_RAISES(converter.Initialize(), 1032, "DatumConverter", "Invalid conversion method in source datum");
  converter.SetSourceDatum(&source);
  EXPECT_RAISES(converter.Initialize(), 1032, "DatumConverter",
                "Invalid conversion method in destination datum");
  converter.SetDestDatum(&dest);
  EXPECT_RAISES(
      converter.Initialize(), 1026, "DatumConverter",
      "Master datum list has no datums with special datum code matching source datum's target code! "
      "This may indicate a software installation problem or a problem with the ORV configuration "
      "file(s).");
  EXPECT_FALSE(HasRoute(converter));
}

TEST_F(DatumConverterTest, AFailedInitializeDropsTheOldRoute) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = Make{DatumMethodMolodensky, DatumTargetWGS84};
  DatumConverter converter(&source, &dest);
  converter.Initialize();
  ASSERT_TRUE(HasRoute(converter));
  EXPECT_RAISES(converter.Initialize({DatumMethodNTV2}), 1033, "DatumConverter",
                "No conversion possible between the specified datums.");
  EXPECT_FALSE(HasRoute(converter));
}

TEST_F(DatumConverterTest, ConvertPlansWithAllMethods) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = Make{DatumMethodMolodensky, DatumTargetWGS84};
  DatumConverter converter(&source, &dest);
  EXPECT_RAISES(converter.Initialize({DatumMethodNTV2}), 1033, "DatumConverter",
                "No conversion possible between the specified datums.");
  std::vector<Vec2d> points = {{10.0, 50.0}};
  converter.Convert(points);
  EXPECT_NE(10.0, points[0].x);
  EXPECT_TRUE(HasRoute(converter));
}

TEST_F(DatumConverterTest, ConvertPlansForNoPointsToo) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> none;
  converter.Convert(none);
  EXPECT_TRUE(HasRoute(converter));
  EXPECT_FALSE(converter.CheckUnplottableResult());
  converter.Convert(nullptr, 7);
  DatumConverter empty;
  EXPECT_RAISES(empty.Convert(none), 1032, "DatumConverter", "Invalid conversion method in source datum");
  EXPECT_RAISES(empty.Convert(nullptr, 0), 1032, "DatumConverter",
                "Invalid conversion method in source datum");
}

TEST_F(DatumConverterTest, TheTargetEllipsoidIsThatOfTheFirstKnownTarget) {
  DatumDef odd = World();
  odd.SetParameter(DatumParameterIDEllipsoid, test::Clarke66());
  ORVKnownDatumsList.Add(Named(Make{DatumMethodNone, DatumTargetWGS84, DatumTargetNAD83}, "x", "x"), 0);
  ORVKnownDatumsList.Add(Named(odd, "first", "first"), 0);
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  Vec2d point(10.0, 50.0);
  converter.Convert(&point, 1);
  Vec2d expected(10.0, 50.0);
  ASSERT_EQ(
      nullptr,
      internal::DatumStep(*source.GetParameters(), test::Clarke66(), internal::Grids()).Run(&expected, 1));
  EXPECT_EQ(expected.x, point.x);
  EXPECT_EQ(expected.y, point.y);
}

// ---- converting ------------------------------------------------------------------------------------------

struct RangeCase {
  double x, y, newX, newY;
};
const RangeCase kRanges[] = {
    {10.0, 20.0, 10.0, 20.0},    {180.0, 90.0, 180.0, 90.0}, {-180.0, -90.0, -180.0, -90.0},
    {350.0, 0.0, 350.0, 0.0},    {-350.0, 0.0, -350.0, 0.0}, {181.0, 0.0, 181.0, 0.0},
    {360.0, 0.0, 0.0, 0.0},      {370.0, 0.0, 10.0, 0.0},    {-370.0, 0.0, -10.0, 0.0},
    {730.0, 0.0, 10.0, 0.0},     {10.0, 100.0, 10.0, 80.0},  {10.0, -100.0, 10.0, -80.0},
    {10.0, 270.0, 10.0, 90.0},   {10.0, 180.0, 10.0, 0.0},   {10.0, 190.0, 10.0, 10.0},
    {10.0, -450.0, 10.0, -90.0}, {-0.5, 89.5, -0.5, 89.5},   {1e6, 0.0, -80.0 + 360.0, 0.0},
};

TEST_F(DatumConverterTest, IdenticalDatumsOnlyNormalise) {
  const DatumDef source = Plain("a");
  const DatumDef dest = Plain("b");
  DatumConverter converter(&source, &dest);
  for (const RangeCase& row : kRanges) {
    Vec2d point(row.x, row.y);
    converter.Convert(&point, 1);
    EXPECT_EQ(row.newX, point.x) << row.x << " " << row.y;
    EXPECT_EQ(row.newY, point.y) << row.x << " " << row.y;
    EXPECT_FALSE(converter.CheckUnplottableResult());
  }
}

TEST_F(DatumConverterTest, A350IsConvertedAsMinus10AndGoesBack) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> points = {{350.0, 50.0}, {-10.0, 50.0}, {-200.0, 50.0},
                               {160.0, 50.0}, {370.0, 50.0}, {10.0, 50.0}};
  converter.Convert(points);
  EXPECT_NE(-10.0, points[1].x);
  EXPECT_EQ(points[1].x + 360.0, points[0].x);
  EXPECT_EQ(points[1].y, points[0].y);
  EXPECT_EQ(points[3].x - 360.0, points[2].x);
  EXPECT_EQ(points[5].x, points[4].x);  // what is beyond a turn does not go back
}

TEST_F(DatumConverterTest, PointsThatAreNotFiniteBecomeMarked) {
  const DatumDef source = Plain("a");
  const DatumDef dest = Plain("b");
  DatumConverter converter(&source, &dest);
  for (const Vec2d bad : {Vec2d(kNaN, 10.0), Vec2d(10.0, kNaN), Vec2d(kInfinity, 10.0),
                          Vec2d(10.0, -kInfinity), Vec2d(kMarker, kInfinity)}) {
    std::vector<Vec2d> points = {{1.0, 2.0}, bad, {3.0, 4.0}};
    converter.Convert(points);
    EXPECT_TRUE(converter.CheckUnplottableResult());
    EXPECT_EQ(kMarker, points[1].x);
    EXPECT_EQ(kMarker, points[1].y);
    EXPECT_EQ(1.0, points[0].x);
    EXPECT_EQ(4.0, points[2].y);
    points.erase(points.begin() + 1);
    converter.Convert(points);
    EXPECT_FALSE(converter.CheckUnplottableResult());
  }
}

TEST_F(DatumConverterTest, HalfMarkedPointsPassAndSetTheFlag) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  for (const Vec2d half : {Vec2d(kMarker, 400.0), Vec2d(400.0, kMarker), Vec2d(kMarker, kMarker)}) {
    Vec2d point = half;
    converter.Convert(&point, 1);
    EXPECT_TRUE(converter.CheckUnplottableResult());
    EXPECT_EQ(half.x, point.x);  // not even brought into range
    EXPECT_EQ(half.y, point.y);
  }
}

TEST_F(DatumConverterTest, WhatAStepMakesNotFiniteIsMarked) {
  KnowTheWorld();
  DatumDef source = European();
  // The largest shift that a datum may have takes X beyond 1e38 m, and Bowring's squares beyond the doubles.
  source.SetMethod(DatumMethodBursaWolf, false);
  source.SetParameter(DatumParameterIDK, 1e300);
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  Vec2d point(10.0, 50.0);
  converter.Convert(&point, 1);
  EXPECT_EQ(kMarker, point.x);
  EXPECT_EQ(kMarker, point.y);
  EXPECT_TRUE(converter.CheckUnplottableResult());
}

TEST_F(DatumConverterTest, StepsRunInRouteOrder) {
  KnowTheWorld();
  const DatumDef source = Named(Make{DatumMethodMRE, DatumTargetWGS84}, "MRE", "Regression");
  const DatumDef dest = European();
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> points = {{13.915025, 46.6952472222}};
  converter.Convert(points);
  // The published check point of the equations, then Molodensky backward.
  Vec2d expected(13.915025 - 3.4857 / 3600, 46.6952472222 - 3.0807 / 3600);
  DatumParameters back = *dest.GetParameters();
  back.inverse = true;
  ASSERT_EQ(nullptr, internal::DatumStep(back, test::Wgs84(), internal::Grids()).Run(&expected, 1));
  EXPECT_NEAR(expected.x, points[0].x, 0.0001 / 3600);
  EXPECT_NEAR(expected.y, points[0].y, 0.0001 / 3600);
}

TEST_F(DatumConverterTest, BackwardTogglesTheInverseFlag) {
  KnowTheWorld();
  DatumDef flagged = European();
  flagged.SetParameter(DatumParameterIDInverse, 1);
  const DatumDef world = World();
  const DatumDef plain = European();
  // Backward over a flagged datum is forward over a plain one, and the other way round.
  DatumConverter backFlagged(&world, &flagged);
  DatumConverter forthPlain(&plain, &world);
  DatumConverter forthFlagged(&flagged, &world);
  DatumConverter backPlain(&world, &plain);
  Vec2d a(10.0, 50.0), b(10.0, 50.0), c(10.0, 50.0), d(10.0, 50.0);
  backFlagged.Convert(&a, 1);
  forthPlain.Convert(&b, 1);
  forthFlagged.Convert(&c, 1);
  backPlain.Convert(&d, 1);
  EXPECT_EQ(b.x, a.x);
  EXPECT_EQ(b.y, a.y);
  EXPECT_EQ(d.x, c.x);
  EXPECT_EQ(d.y, c.y);
  EXPECT_NE(a.x, c.x);
}

TEST_F(DatumConverterTest, ABatchGivesTheBitsOfItsPoints) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> batch;
  for (int i = 0; i < 1237; ++i) batch.emplace_back(-400.0 + i * 0.6875, -100.0 + i * 0.171875);
  batch[3].x = kNaN;
  batch[700].y = kMarker;
  batch[1236].x = kInfinity;
  std::vector<Vec2d> single = batch;
  converter.Convert(batch);
  EXPECT_TRUE(converter.CheckUnplottableResult());
  for (Vec2d& point : single) converter.Convert(&point, 1);
  EXPECT_EQ(0, std::memcmp(batch.data(), single.data(), batch.size() * sizeof(Vec2d)));
}

// ---- steps that fail -------------------------------------------------------------------------------------

TEST_F(DatumConverterTest, AStepWithoutATargetEllipsoidFails) {
  // The destination is the target, but the known datums hold none: the step has no target ellipsoid.
  const DatumDef dest = World();
  DatumDef source = European();
  std::vector<Vec2d> points = {{10.0, 50.0}};
  EXPECT_RAISES(DatumConverter(&source, &dest).Convert(points), 1034, "DatumConverter",
                "Molodensky datum conversion failed.");
  source.SetMethod(DatumMethodBursaWolf, false);
  EXPECT_RAISES(DatumConverter(&source, &dest).Convert(points), 1034, "DatumConverter",
                "Bursa-Wolf datum conversion failed.");
  EXPECT_EQ(10.0, points[0].x);
}

TEST_F(DatumConverterTest, ARegionBelowZeroFailsOnConverting) {
  DatumDef source = Make{DatumMethodMRE, DatumTargetWGS84};
  source.SetParameter(DatumParameterIDEquation, -1);
  const DatumDef dest = World();
  std::vector<Vec2d> points = {{10.0, 50.0}};
  EXPECT_RAISES(DatumConverter(&source, &dest).Convert(points), 1034, "DatumConverter",
                "Datum has invalid MRE special code.");
}

TEST_F(DatumConverterTest, GridMethodsFailWithoutTheirFiles) {
  const DatumDef dest = Make{DatumMethodNone, DatumTargetWGS84, DatumTargetNAD83};
  std::vector<Vec2d> points = {{10.0, 50.0}};
  const DatumDef nadcon = Make{DatumMethodNADCON, DatumTargetNAD83};
  EXPECT_RAISES(DatumConverter(&nadcon, &dest).Convert(points), 1034, "DatumConverter",
                "NADCON grid shift files missing or corrupt.");
  const DatumDef ntv2 = Make{DatumMethodNTV2, DatumTargetNAD83};
  EXPECT_RAISES(DatumConverter(&ntv2, &dest).Convert(points), 1034, "DatumConverter",
                "NTV2 grid shift file not present.");
}

TEST_F(DatumConverterTest, AFailingStepLeavesThePointsAsFarAsTheStepsGot) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = Make{DatumMethodNADCON, DatumTargetWGS84};
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> points;
  for (int i = 0; i < 600; ++i) points.emplace_back(350.0, 130.0);
  points[0] = {kNaN, 1.0};
  EXPECT_RAISES(converter.Convert(points), 1034, "DatumConverter",
                "NADCON grid shift files missing or corrupt.");
  EXPECT_EQ(kMarker, points[0].x);
  EXPECT_TRUE(converter.CheckUnplottableResult());
  Vec2d expected(-10.0, 50.0);  // in range, shifted by the first step, and not moved back by 360
  ASSERT_EQ(nullptr,
            internal::DatumStep(*source.GetParameters(), test::Wgs84(), internal::Grids()).Run(&expected, 1));
  for (size_t i = 1; i < points.size(); ++i) {
    ASSERT_EQ(expected.x, points[i].x) << i;
    ASSERT_EQ(expected.y, points[i].y) << i;
  }
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST_F(DatumConverterTest, DumpShowsDatumsAndSteps) {
  KnowTheWorld();
  const DatumDef source = European();
  const DatumDef dest = World();
  DatumConverter converter(&source, &dest);
  std::vector<Vec2d> points = {{kNaN, 1.0}};
  converter.Convert(points);
  std::string text = "before\n";
  converter.DebugDump(text, 1);
  text = test::Masked(text);
  const auto lines = [&text](const std::string& expected) {
    return text.find(expected) != std::string::npos;
  };
  EXPECT_EQ(0u, text.find("before\n DatumConverter this=ADDRESS:\n ---Source Datum:\n Datum this=ADDRESS\n"
                          "   Token   = 'ED50'\n"));
  EXPECT_TRUE(
      lines("NadconPrvi = false\n ---Destination Datum:\n Datum this=ADDRESS\n   Token   = 'WGS84'\n"));
  const std::string expected =
      "NadconPrvi = false\n"
      " ---Transforms (count=1):\n"
      " Step 1:\n"
      "   Method = 'Molodensky'\n"
      "   Target = 'WGS84'\n"
      "     Ellipsoid this=ADDRESS:\n"
      "       Token      = 'INTL'\n"
      "       Name       = 'International 1924'\n"
      "       POSC       = 7022\n"
      "       Comment    = ''\n"
      "       Radius     =           6378388.000000\n"
      "       Flattening =     0.003367003367003367\n"
      "   PMShift =     0.000000000000000000\n"
      "   dx      =   -87.000000000000000000\n"
      "   dy      =   -98.000000000000000000\n"
      "   dz      =  -121.000000000000000000\n"
      "   rx      =     0.000000000000000000\n"
      "   ry      =     0.000000000000000000\n"
      "   rz      =     0.000000000000000000\n"
      "   k       =     0.000000000000000000\n"
      "   Inverse = false\n"
      "   NadconPrvi = false\n"
      " Target Ellipsoid:\n"
      "   Ellipsoid this=ADDRESS:\n"
      "     Token      = 'WGS84'\n"
      "     Name       = 'WGS 84'\n"
      "     POSC       = 7030\n"
      "     Comment    = ''\n"
      "     Radius     =           6378137.000000\n"
      "     Flattening =     0.003352810664747480\n"
      " ---bHadUnplottables = true\n";
  ASSERT_GT(text.size(), expected.size());
  EXPECT_EQ(expected, text.substr(text.size() - expected.size()));
}

TEST_F(DatumConverterTest, AnIdentityStepIsAStepOfMethodNoneAndDefaults) {
  const DatumDef source = European();
  DatumDef dest = source;
  dest.SetName("another");
  DatumConverter converter(&source, &dest);
  converter.Initialize({DatumMethodMRE});
  const std::string text = DumpOf(converter);
  const std::string step = text.substr(text.find("---Transforms"));
  EXPECT_EQ(0u, step.find("---Transforms (count=1):\nStep 1:\n  Method = 'None'\n  Target = 'NONE'\n"));
  EXPECT_NE(std::string::npos, step.find("dx      =     0.000000000000000000\n"));
  EXPECT_EQ(std::string::npos, step.find("WGS"));
  EXPECT_NE(std::string::npos, step.find("---bHadUnplottables = false\n"));
}

}  // namespace
}  // namespace orv
