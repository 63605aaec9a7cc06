#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "orv/warp/WarpDef.h"
#include "orv/warp/WarpTransformer.h"
#include "tests/support/Raises.h"
#include "tests/warp/WarpExpected.h"

namespace {

using namespace orv::test::warp;
using orv::WarpDef;
using orv::WarpMethod;

constexpr const char* kBadParameter = "Bad parameter to function call.";
constexpr const char* kBadSize = "Bad parameter to function call.  Image dimensions must be positive.";

WarpMethod Method(int number) { return static_cast<WarpMethod>(number); }

std::vector<double> Coefficients(const WarpDef& def) {
  std::vector<double> six(6);
  def.GetCoefficients(six.data());
  return six;
}

void ExpectPoints(const WarpDef& def, const std::vector<std::vector<double>>& source,
                  const std::vector<std::vector<double>>& destination) {
  ASSERT_EQ(def.NumControlPoints(false), source.size());
  ASSERT_EQ(def.NumControlPoints(true), destination.size());
  for (size_t i = 0; i < source.size(); ++i) {
    EXPECT_EQ(def.EnumSourcePoint(i)->x, source[i][0]) << i;
    EXPECT_EQ(def.EnumSourcePoint(i)->y, source[i][1]) << i;
  }
  for (size_t i = 0; i < destination.size(); ++i) {
    EXPECT_EQ(def.EnumDestinationPoint(i)->x, destination[i][0]) << i;
    EXPECT_EQ(def.EnumDestinationPoint(i)->y, destination[i][1]) << i;
  }
}

// |found - expected| below 1e-12 of the largest coefficient.
void ExpectCoefficients(const WarpDef& def, const std::vector<double>& expected) {
  double largest = 0.0;
  for (const double c : expected) largest = std::fmax(largest, std::fabs(c));
  const std::vector<double> found = Coefficients(def);
  for (size_t i = 0; i < 6; ++i) EXPECT_NEAR(found[i], expected[i], 1e-12 * largest) << i;
}

TEST(WarpResize, SizesBelowOneCountAsAHundred) {
  WarpDef def;
  def.SetCoefficients(2, 0, 10, 0, 3, 20);
  def.CoefficientsToControls(0, -5);
  ExpectPoints(def, {{0, 0}, {100, 0}, {100, 100}, {0, 100}}, {{10, 20}, {210, 20}, {210, 320}, {10, 320}});
  EXPECT_EQ(def.GetMethod(), 3);
}

TEST(WarpResize, CornersReplaceThePointsAndTheCoefficientsStay) {
  WarpDef def = MakeWarp(3, kSheet, 5);
  def.SetCoefficients(2, 0.5, 10, -0.25, 3, 20);
  def.CoefficientsToControls(640, 1);
  ExpectPoints(def, {{0, 0}, {640, 0}, {640, 1}, {0, 1}},
               {{10, 20}, {1290, -140}, {1290.5, -137}, {10.5, 23}});
  EXPECT_EQ(def.GetMethod(), 3);
  EXPECT_EQ(Coefficients(def), (std::vector<double>{2, 0.5, 10, -0.25, 3, 20}));
  def.SetMethod(Method(7));
  def.CoefficientsToControls(1, 480);
  EXPECT_EQ(def.EnumSourcePoint(2)->x, 1.0);
  EXPECT_EQ(def.EnumSourcePoint(2)->y, 480.0);
}

TEST(WarpResize, CoefficientsToControlsIsForMethodSeven) {
  for (int method = 0; method <= 13; ++method) {
    if (method == 7) continue;
    WarpDef def = MakeWarp(method, kSheet, 5);
    EXPECT_RAISES(def.CoefficientsToControls(10, 10), 1032, "WarpResize", kBadParameter);
    EXPECT_TRUE(def.Compare(MakeWarp(method, kSheet, 5)));
  }
}

TEST(WarpResize, ControlsToCoefficientsIsTheAffineFitWhateverTheMethod) {
  for (const FitRow& row : kFits) {
    if (row.method != 3) continue;
    for (const int method : {1, 2, 3, 4, 6, 8, 13}) {
      WarpDef def = MakeWarp(method, kCloud, row.used);
      def.ControlsToCoefficients();
      EXPECT_EQ(def.GetMethod(), 7);
      EXPECT_EQ(def.NumControlPoints(false), 0u);
      EXPECT_EQ(def.NumControlPoints(true), 0u);
      ExpectCoefficients(def, {row.x[1], row.x[2], row.x[0], row.y[1], row.y[2], row.y[0]});
    }
  }
}

TEST(WarpResize, ControlsToCoefficientsWantsAKnownMethodAndThreePoints) {
  for (const int method : {0, 7}) {
    WarpDef def = MakeWarp(method, kSheet, 5);
    EXPECT_RAISES(def.ControlsToCoefficients(), 1032, "WarpResize", kBadParameter);
    EXPECT_EQ(def.GetMethod(), method);
    EXPECT_EQ(def.NumControlPoints(false), 5u);
  }
  WarpDef two = MakeWarp(2, kSheet, 2);
  EXPECT_RAISES(two.ControlsToCoefficients(), 1032, "WarpResize", kBadParameter);
  two.AddSourcePoint(1, 1);
  EXPECT_RAISES(two.ControlsToCoefficients(), 1032, "WarpResize", kBadParameter);
  WarpDef shortSource = MakeWarp(2, kSheet, 2);
  shortSource.AddDestinationPoint(1, 1);
  EXPECT_RAISES(shortSource.ControlsToCoefficients(), 1032, "WarpResize", kBadParameter);
}

TEST(WarpResize, ListsOfDifferentLengthsFailInTheTransformer) {
  WarpDef def = MakeWarp(2, kSheet, 4);
  def.AddSourcePoint(1, 1);
  const WarpDef before = def;
  EXPECT_RAISES(def.ControlsToCoefficients(), 1032, "WarpTransformer", "Bad parameter to function call");
  EXPECT_TRUE(def.Compare(before));
}

TEST(WarpResize, AFailedFitLeavesTheDefinition) {
  WarpDef def;
  def.SetCoefficients(1, 2, 3, 4, 5, 6);
  def.SetMethod(Method(2));
  for (int i = 0; i < 3; ++i) {
    def.AddSourcePoint(i, 2 * i);
    def.AddDestinationPoint(i, i * i);
  }
  const WarpDef before = def;
  EXPECT_RAISES(def.ControlsToCoefficients(), 1026, "WarpTranOrder3",
                "Matrix solution not possible.  Invalid coefficients.");
  EXPECT_TRUE(def.Compare(before));
  EXPECT_EQ(Coefficients(def), Coefficients(before));
}

TEST(WarpResize, ResizeScalesTheSourcePointsOnly) {
  WarpDef def = MakeWarp(3, kSheet, 5);
  def.AddSourcePoint(3, 7);  // the lists need not match
  def.Resize(100, 100, 200, 50);
  ASSERT_EQ(def.NumControlPoints(false), 6u);
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(def.EnumSourcePoint(i)->x, kSheet[i][0] * 2);
    EXPECT_EQ(def.EnumSourcePoint(i)->y, kSheet[i][1] / 2);
    EXPECT_EQ(def.EnumDestinationPoint(i)->x, kSheet[i][2]);
    EXPECT_EQ(def.EnumDestinationPoint(i)->y, kSheet[i][3]);
  }
  EXPECT_EQ(def.EnumSourcePoint(5)->y, 3.5);
  EXPECT_EQ(def.GetMethod(), 3);
}

TEST(WarpResize, ResizeDividesInDoublePrecision) {
  WarpDef def = MakeWarp(0, kSheet, 1);  // no method is asked for
  def.Resize(3, 7, 2, 1);
  EXPECT_EQ(def.EnumSourcePoint(0)->x, 12.5 * (2.0 / 3.0));
  EXPECT_EQ(def.EnumSourcePoint(0)->y, 9.0 * (1.0 / 7.0));
}

TEST(WarpResize, ResizeOfMethodSevenScalesTheCoefficients) {
  WarpDef def = MakeWarp(1, kSheet, 5);
  def.SetCoefficients(2, 0.5, 10, -0.25, 3, 20);
  def.Resize(100, 100, 200, 50);
  EXPECT_EQ(def.GetMethod(), 7);
  EXPECT_EQ(def.NumControlPoints(false), 0u);  // the points that it carried are lost
  EXPECT_EQ(def.NumControlPoints(true), 0u);
  ExpectCoefficients(def, {1, 1, 10, -0.125, 6, 20});  // c0 and c3 halve, c1 and c4 double

  // The sheet's affine map in metres, from 640 by 480 pixels to 1000 by 999.
  def.SetCoefficients(9.98, -1.1, 431083.75, -1.05, -9.97, 5414091.25);
  def.Resize(640, 480, 1000, 999);
  ExpectCoefficients(def,
                     {9.98 * 0.64, -1.1 * 480 / 999, 431083.75, -1.05 * 0.64, -9.97 * 480 / 999, 5414091.25});
}

TEST(WarpResize, ResizeRefusesSizesBelowOne) {
  for (int which = 0; which < 4; ++which) {
    for (const int size : {0, -1, -2147483647 - 1}) {
      int s[4] = {10, 20, 30, 40};
      s[which] = size;
      WarpDef def = MakeWarp(3, kSheet, 5);
      EXPECT_RAISES(def.Resize(s[0], s[1], s[2], s[3]), 1032, "WarpResize", kBadSize);
      EXPECT_TRUE(def.Compare(MakeWarp(3, kSheet, 5)));
      def.SetCoefficients(1, 2, 3, 4, 5, 6);
      EXPECT_RAISES(def.Resize(s[0], s[1], s[2], s[3]), 1032, "WarpResize", kBadSize);
      EXPECT_EQ(def.GetMethod(), 7);
    }
  }
  WarpDef def = MakeWarp(3, kSheet, 5);
  def.Resize(1, 1, 1, 1);
  EXPECT_TRUE(def.Compare(MakeWarp(3, kSheet, 5)));
}

}  // namespace
