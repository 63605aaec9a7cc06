#include "orv/warp/WarpDef.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "orv/core/internal/TextBlock.h"
#include "tests/support/Generators.h"
#include "tests/support/Raises.h"

namespace {

using orv::WarpDef;
using orv::WarpMethod;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

constexpr const char* kBadParameter = "Bad parameter to function call.";
constexpr const char* kCorrupt = "Corrupt data encountered while decoding warp/georeference parameters.";
constexpr const char* kCorruptValue = "Corrupt data while parsing encoded data.";

WarpMethod Method(int number) { return static_cast<WarpMethod>(number); }

struct MethodRow {
  int number;
  const char* name;
  size_t required;
};

constexpr MethodRow kRows[] = {
    {0, "Unknown", 0},
    {1, "Displacement", 1},
    {2, "Helmert", 2},
    {3, "Affine Polynomial", 3},
    {4, "First Order Polynomial", 4},
    {5, "Second Order Polynomial", 6},
    {6, "Third Order Polynomial", 10},
    {7, "Affine With Coefficients", 0},
    {8, "Thin Plate Spline", 6},
    {9, "Natural Cubic Spline", 6},
    {10, "Marcov Spline", 6},
    {11, "Exponential Spline", 6},
    {12, "Rational Quadratic Spline", 6},
    {13, "Inverse Distance Squared", 6},
};

/// A warp with `sources` source points (i, 10 i) and `destinations` destination points (100 + i, -i).
WarpDef MakeWarp(int method, size_t sources, size_t destinations) {
  WarpDef def;
  def.SetMethod(Method(method));
  for (size_t i = 0; i < sources; ++i) {
    def.AddSourcePoint(static_cast<double>(i), 10.0 * static_cast<double>(i));
  }
  for (size_t i = 0; i < destinations; ++i) {
    def.AddDestinationPoint(100.0 + static_cast<double>(i), -static_cast<double>(i));
  }
  return def;
}

std::string Encoded(const WarpDef& def) {
  std::string text;
  def.EncodeToText(text);
  return text;
}

WarpDef Decoded(const std::string& text) {
  WarpDef def;
  def.DecodeFromText(text, nullptr);
  return def;
}

std::string Message(const WarpDef& def) {
  std::string message = "old";
  EXPECT_EQ(def.Validate(message), def.Validate());
  EXPECT_EQ(def.Validate(), message.empty());
  return message;
}

/// A double as encoded text has it, with the exponent that this platform's printf gives.
std::string Digits(double value) {
  char room[64];
  std::snprintf(room, sizeof room, "%.18e", value);
  return value == 0.0 ? "0" : room;
}

// ---- methods ---------------------------------------------------------------------------------------------

TEST(WarpDef, TheMethodTableIsComplete) {
  for (const MethodRow& row : kRows) {
    EXPECT_STREQ(WarpDef::MethodName(Method(row.number)), row.name);
    EXPECT_EQ(WarpDef::RequiredControls(Method(row.number)), row.required) << row.name;
    EXPECT_EQ(WarpDef::NameToMethod(row.name), row.number);
    std::string text = row.name;
    EXPECT_EQ(WarpDef::NameToMethod(text), row.number);
    for (char& c : text) c = static_cast<char>(std::toupper(c));
    EXPECT_EQ(WarpDef::NameToMethod(text), row.number);
  }
  for (const int outside : {-1, 14, 1000}) {
    EXPECT_EQ(WarpDef::MethodName(Method(outside)), nullptr);
    EXPECT_EQ(WarpDef::RequiredControls(Method(outside)), 0u);
  }
}

TEST(WarpDef, NamesAreFoundWithoutRegardToCaseAndUnknownOnesAreZero) {
  EXPECT_EQ(WarpDef::NameToMethod("thin plate spline"), 8);
  EXPECT_EQ(WarpDef::NameToMethod("Markov Spline"), 0);
  EXPECT_EQ(WarpDef::NameToMethod(""), 0);
  EXPECT_EQ(WarpDef::NameToMethod(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(WarpDef::NameToMethod("Helmert "), 0);
  std::string empty;
  EXPECT_EQ(WarpDef::NameToMethod(empty), 0);
}

TEST(WarpDef, StartsEmpty) {
  const WarpDef def;
  EXPECT_EQ(def.GetMethod(), 0);
  EXPECT_STREQ(def.MethodName(), "Unknown");
  EXPECT_EQ(def.NumControlPoints(false), 0u);
  EXPECT_EQ(def.NumControlPoints(true), 0u);
  double six[6] = {1, 1, 1, 1, 1, 1};
  def.GetCoefficients(six);
  for (const double c : six) EXPECT_EQ(c, 0.0);
}

TEST(WarpDef, SetMethodTakesZeroToThirteen) {
  WarpDef def;
  for (int number = 0; number <= 13; ++number) {
    def.SetMethod(Method(number));
    EXPECT_EQ(def.GetMethod(), number);
    EXPECT_STREQ(def.MethodName(), kRows[number].name);
  }
  for (const int outside : {-1, 14, 2147483647}) {
    EXPECT_RAISES(def.SetMethod(Method(outside)), 1032, "WarpDef", kBadParameter);
    EXPECT_EQ(def.GetMethod(), 13);
  }
}

// ---- coefficients ----------------------------------------------------------------------------------------

TEST(WarpDef, SettingCoefficientsSetsMethodSeven) {
  WarpDef def = MakeWarp(3, 4, 4);
  def.SetCoefficients(1, 2, 3, 4, 5, 6);
  EXPECT_EQ(def.GetMethod(), 7);
  EXPECT_EQ(def.NumControlPoints(false), 4u);
  double c0, c1, c2, c3, c4, c5;
  def.GetCoefficients(c0, c1, c2, c3, c4, c5);
  EXPECT_EQ((std::vector<double>{c0, c1, c2, c3, c4, c5}), (std::vector<double>{1, 2, 3, 4, 5, 6}));

  WarpDef other;
  double six[6] = {7, 8, 9, 10, 11, 12};
  other.SetCoefficients(six);
  EXPECT_EQ(other.GetMethod(), 7);
  double read[6] = {};
  other.GetCoefficients(read);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(read[i], 7.0 + i);
}

TEST(WarpDef, NullCoefficientsAreIgnored) {
  WarpDef def;
  def.SetCoefficients(nullptr);
  EXPECT_EQ(def.GetMethod(), 0);
  def.GetCoefficients(nullptr);
}

// ---- control points --------------------------------------------------------------------------------------

TEST(WarpDef, PointsAreAppendedWithoutADuplicateCheck) {
  WarpDef def;
  def.AddSourcePoint(1, 2);
  def.AddSourcePoint(shr::Vec2d(1, 2));
  def.AddDestinationPoint(3, 4);
  def.AddDestinationPoint(shr::Vec2d(3, 4));
  def.AddDestinationPoint(shr::Vec2d(5, 6));
  EXPECT_EQ(def.NumControlPoints(false), 2u);
  EXPECT_EQ(def.NumControlPoints(true), 3u);
  EXPECT_EQ(def.EnumSourcePoint(1)->x, 1.0);
  EXPECT_EQ(def.EnumSourcePoint(1)->y, 2.0);
  EXPECT_EQ(def.EnumDestinationPoint(2)->x, 5.0);
  EXPECT_EQ(def.EnumDestinationPoint(2)->y, 6.0);
}

TEST(WarpDef, SetNumControlPointsResizesBothListsWithZeros) {
  WarpDef def = MakeWarp(3, 2, 5);
  def.SetNumControlPoints(3);
  EXPECT_EQ(def.NumControlPoints(false), 3u);
  EXPECT_EQ(def.NumControlPoints(true), 3u);
  EXPECT_EQ(def.EnumSourcePoint(1)->y, 10.0);
  EXPECT_EQ(def.EnumSourcePoint(2)->x, 0.0);
  EXPECT_EQ(def.EnumSourcePoint(2)->y, 0.0);
  EXPECT_EQ(def.EnumDestinationPoint(2)->x, 102.0);
}

TEST(WarpDef, FindTakesTheFirstExactMatch) {
  WarpDef def = MakeWarp(3, 3, 3);
  def.AddSourcePoint(1, 10);
  def.AddDestinationPoint(101, -1);
  EXPECT_EQ(def.FindSourcePoint(1, 10), 1);
  EXPECT_EQ(def.FindSourcePoint(std::nextafter(1.0, 2.0), 10), -1);
  EXPECT_EQ(def.FindSourcePoint(1, 20), -1);
  EXPECT_EQ(def.FindSourcePoint(101, -1), -1);
  EXPECT_EQ(def.FindDestinationPoint(101, -1), 1);
  EXPECT_EQ(def.FindDestinationPoint(101, -2), -1);
  EXPECT_EQ(def.FindDestinationPoint(1, 10), -1);
  shr::Vec2d source(2, 20), destination(102, -2);
  EXPECT_EQ(def.FindSourcePoint(source), 2);
  EXPECT_EQ(def.FindSourcePoint(destination), -1);
  EXPECT_EQ(def.FindDestinationPoint(destination), 2);
  EXPECT_EQ(def.FindDestinationPoint(source), -1);
}

TEST(WarpDef, ABadIndexIsSilentForSourcePointersAndReportedForDestinationPointers) {
  const WarpDef def = MakeWarp(3, 2, 3);
  EXPECT_EQ(def.EnumSourcePoint(2), nullptr);
  EXPECT_EQ(def.EnumSourcePoint(SIZE_MAX), nullptr);
  EXPECT_NE(def.EnumDestinationPoint(2), nullptr);
  EXPECT_RAISES(def.EnumDestinationPoint(3), 1032, "WarpDef", kBadParameter);
  EXPECT_RAISES(def.EnumDestinationPoint(SIZE_MAX), 1032, "WarpDef", kBadParameter);
}

TEST(WarpDef, EnumIntoAPointZeroesItBeforeTheIndexTest) {
  const WarpDef def = MakeWarp(3, 2, 3);
  shr::Vec2d out(7, 8);
  EXPECT_TRUE(def.EnumSourcePoint(1, out));
  EXPECT_EQ(out.y, 10.0);
  EXPECT_RAISES(def.EnumSourcePoint(2, out), 1032, "WarpDef", kBadParameter);
  EXPECT_EQ(out.x, 0.0);
  EXPECT_EQ(out.y, 0.0);
  EXPECT_TRUE(def.EnumDestinationPoint(2, out));
  EXPECT_EQ(out.x, 102.0);
  EXPECT_EQ(out.y, -2.0);
  EXPECT_RAISES(def.EnumDestinationPoint(3, out), 1032, "WarpDef", kBadParameter);
  EXPECT_EQ(out.x, 0.0);
  EXPECT_EQ(out.y, 0.0);
}

TEST(WarpDef, ReplaceSourcePointMayMakeEqualPoints) {
  WarpDef def = MakeWarp(3, 3, 3);
  EXPECT_TRUE(def.ReplaceSourcePoint(0, 2, 20));
  shr::Vec2d point(2, 20);
  EXPECT_TRUE(def.ReplaceSourcePoint(1, point));
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(def.EnumSourcePoint(i)->x, 2.0);
    EXPECT_EQ(def.EnumSourcePoint(i)->y, 20.0);
  }
  EXPECT_RAISES(def.ReplaceSourcePoint(3, 0, 0), 1032, "WarpDef", kBadParameter);
  EXPECT_RAISES(def.ReplaceSourcePoint(3, point), 1032, "WarpDef", kBadParameter);
}

TEST(WarpDef, ReplaceDestinationPointMayNotMakeEqualPoints) {
  constexpr const char* kIdentical = "Warp context can't have two identical control points.";
  WarpDef def = MakeWarp(3, 3, 3);
  EXPECT_RAISES(def.ReplaceDestinationPoint(0, 102, -2), 1032, "WarpDef", kIdentical);
  shr::Vec2d taken(100, 0);
  EXPECT_RAISES(def.ReplaceDestinationPoint(2, taken), 1032, "WarpDef", kIdentical);
  EXPECT_TRUE(def.Compare(MakeWarp(3, 3, 3)));

  EXPECT_TRUE(def.ReplaceDestinationPoint(2, 102, -2));  // its own value
  EXPECT_TRUE(def.ReplaceDestinationPoint(2, 102, -3));  // one coordinate alike is not the same point
  EXPECT_EQ(def.EnumDestinationPoint(2)->y, -3.0);
  shr::Vec2d fresh(55, 66);
  EXPECT_TRUE(def.ReplaceDestinationPoint(0, fresh));
  EXPECT_EQ(def.EnumDestinationPoint(0)->x, 55.0);
  EXPECT_EQ(def.EnumDestinationPoint(0)->y, 66.0);

  // The index is tested first.
  EXPECT_RAISES(def.ReplaceDestinationPoint(3, 102, -3), 1032, "WarpDef", kBadParameter);
  EXPECT_RAISES(def.ReplaceDestinationPoint(SIZE_MAX, fresh), 1032, "WarpDef", kBadParameter);
}

// ---- the whole -------------------------------------------------------------------------------------------

TEST(WarpDef, FlushEmptiesEverything) {
  WarpDef def = MakeWarp(3, 4, 5);
  def.SetCoefficients(1, 2, 3, 4, 5, 6);
  def.Flush();
  EXPECT_EQ(def.GetMethod(), 0);
  EXPECT_EQ(def.NumControlPoints(false), 0u);
  EXPECT_EQ(def.NumControlPoints(true), 0u);
  double six[6] = {1, 1, 1, 1, 1, 1};
  def.GetCoefficients(six);
  for (const double c : six) EXPECT_EQ(c, 0.0);
}

TEST(WarpDef, CopiesAreDeep) {
  WarpDef def = MakeWarp(3, 3, 3);
  const WarpDef copy = def;
  def.ReplaceSourcePoint(0, 9, 9);
  EXPECT_EQ(copy.EnumSourcePoint(0)->x, 0.0);
}

TEST(WarpDef, ValidateRefusesMethodZero) {
  EXPECT_EQ(Message(MakeWarp(0, 12, 12)), "Transform method not valid.");
}

TEST(WarpDef, ValidateLooksAtCoefficientsOnlyForMethodSeven) {
  WarpDef def;
  def.SetCoefficients(1, 0, 0, 0, 1, 0);
  EXPECT_EQ(Message(def), "");
  def.AddSourcePoint(1, 1);  // the points are not looked at
  EXPECT_EQ(Message(def), "");
  def.SetCoefficients(0, 0, 0, 0, 0, 0);
  EXPECT_EQ(Message(def), "Coefficients not initialized (all zeroes).");
  def.SetCoefficients(-0.0, 0, -0.0, 0, 0, -0.0);
  EXPECT_EQ(Message(def), "Coefficients not initialized (all zeroes).");
  def.SetCoefficients(0, 0, 0, 0, 0, kNaN);
  EXPECT_EQ(Message(def), "");
  def.SetCoefficients(0, 0, 0, 1e-300, 0, 0);
  EXPECT_EQ(Message(def), "");
}

TEST(WarpDef, ValidateRefusesListsOfDifferentLengthsBeforeCounting) {
  EXPECT_EQ(Message(MakeWarp(3, 3, 2)), "Source and destination control point counts don't match.");
  EXPECT_EQ(Message(MakeWarp(6, 1, 2)), "Source and destination control point counts don't match.");
}

TEST(WarpDef, ValidateWantsTheRequiredControls) {
  // The full stop behind the line feed is deliberate.
  EXPECT_EQ(Message(MakeWarp(6, 9, 9)),
            "Not enough control points for specified transform method (have 9, need 10)\n.");
  for (const MethodRow& row : kRows) {
    if (row.required == 0) continue;
    EXPECT_EQ(Message(MakeWarp(row.number, row.required, row.required)), "") << row.name;
    EXPECT_EQ(Message(MakeWarp(row.number, row.required - 1, row.required - 1)),
              "Not enough control points for specified transform method (have " +
                  std::to_string(row.required - 1) + ", need " + std::to_string(row.required) + ")\n.");
  }
}

TEST(WarpDef, CompareOfMethodSevenIgnoresPoints) {
  WarpDef a = MakeWarp(3, 2, 2), b = MakeWarp(3, 5, 4);
  a.SetCoefficients(1, 2, 3, 4, 5, 6);
  b.SetCoefficients(1, 2, 3, 4, 5, 6);
  EXPECT_TRUE(a.Compare(b));
  for (int i = 0; i < 6; ++i) {
    double six[6] = {1, 2, 3, 4, 5, 6};
    six[i] += 0.9e-9;
    b.SetCoefficients(six);
    EXPECT_TRUE(a.Compare(b)) << i;
    six[i] += 0.2e-9;
    b.SetCoefficients(six);
    EXPECT_FALSE(a.Compare(b)) << i;
    six[i] = kNaN;
    b.SetCoefficients(six);
    EXPECT_FALSE(b.Compare(b)) << i;
  }
}

TEST(WarpDef, CompareHasAnAbsoluteToleranceThatItMustStayBelow) {
  WarpDef zero, atLimit, below;
  zero.SetCoefficients(0, 0, 0, 0, 0, 1);
  atLimit.SetCoefficients(1e-9, 0, 0, 0, 0, 1);
  below.SetCoefficients(std::nextafter(1e-9, 0), 0, 0, 0, 0, 1);
  EXPECT_FALSE(zero.Compare(atLimit));
  EXPECT_TRUE(zero.Compare(below));
}

TEST(WarpDef, CompareOfOtherMethodsIgnoresCoefficients) {
  WarpDef a = MakeWarp(3, 3, 4), b = a;
  b.SetCoefficients(1, 2, 3, 4, 5, 6);
  EXPECT_FALSE(a.Compare(b));  // the methods differ
  b.SetMethod(Method(3));
  EXPECT_TRUE(a.Compare(b));
  EXPECT_FALSE(a.Compare(MakeWarp(4, 3, 4)));
  EXPECT_FALSE(a.Compare(MakeWarp(3, 4, 4)));
  EXPECT_FALSE(a.Compare(MakeWarp(3, 3, 3)));
  for (size_t i = 0; i < 3; ++i) {
    for (const bool alongX : {false, true}) {
      for (const bool destination : {false, true}) {
        for (const double by : {0.5e-9, 2e-9, -2e-9, kNaN}) {
          WarpDef other = a;
          shr::Vec2d p = destination ? *a.EnumDestinationPoint(i) : *a.EnumSourcePoint(i);
          // Near 0, so that the steps are not lost in rounding.
          WarpDef base = a;
          p = shr::Vec2d();
          destination ? base.ReplaceDestinationPoint(i, p) : base.ReplaceSourcePoint(i, p);
          (alongX ? p.x : p.y) += by;
          other = base;
          destination ? other.ReplaceDestinationPoint(i, p) : other.ReplaceSourcePoint(i, p);
          EXPECT_EQ(base.Compare(other), by == 0.5e-9) << i << alongX << destination << by;
        }
      }
    }
  }
}

// ---- encoded text ----------------------------------------------------------------------------------------

TEST(WarpDef, EncodesAnEmptyWarpAsABareBlock) {
  EXPECT_EQ(Encoded(WarpDef()), "<{6,Georef[1]>\r\n<}6,Georef[1]>\r\n");
}

TEST(WarpDef, EncodesMethodThenPoints) {
  WarpDef def;
  def.SetMethod(Method(10));
  def.AddSourcePoint(1.5, 0);
  def.AddSourcePoint(-2, 3);
  def.AddDestinationPoint(-0.0, 0.1);
  EXPECT_EQ(Encoded(def), "<{6,Georef[1]>\r\n<s6,Method[13]=\"Marcov Spline\">\r\n<f11,SrcControls[4]=" +
                              Digits(1.5) + ",0," + Digits(-2) + "," + Digits(3) +
                              ">\r\n<f12,DestControls[2]=0," + Digits(0.1) + ">\r\n<}6,Georef[1]>\r\n");
}

TEST(WarpDef, EncodesCoefficientsForMethodSevenOnlyAndAfterThePoints) {
  WarpDef def;
  def.SetCoefficients(1, 2, 3, 0, 5, 6);
  def.AddDestinationPoint(7, 8);
  const std::string points = "<f12,DestControls[2]=" + Digits(7) + "," + Digits(8) + ">\r\n";
  EXPECT_EQ(Encoded(def), "<{6,Georef[1]>\r\n<s6,Method[24]=\"Affine With Coefficients\">\r\n" + points +
                              "<f5,Coeff[6]=" + Digits(1) + "," + Digits(2) + "," + Digits(3) + ",0," +
                              Digits(5) + "," + Digits(6) + ">\r\n<}6,Georef[1]>\r\n");
  def.SetMethod(Method(0));
  EXPECT_EQ(Encoded(def), "<{6,Georef[1]>\r\n" + points + "<}6,Georef[1]>\r\n");
}

TEST(WarpDef, EncodeAppends) {
  std::string text = "before";
  WarpDef().EncodeToText(text);
  EXPECT_EQ(text, "before<{6,Georef[1]>\r\n<}6,Georef[1]>\r\n");
}

TEST(WarpDef, DecodesItemsInAnyOrderAndCaseAndSkipsUnknownOnes) {
  const WarpDef def = Decoded(
      "<{6,GEOREF[1]>"
      "<f12,destcontrols[4]=1,2,3,4>"
      "<s5,Other[1]=\"x\"><d4,Posc[1]=12><v3,Raw[1]=00>"
      "<f11,SRCCONTROLS[2]=5,6>"
      "<f5,coeff[6]=1,2,3,4,5,6>"
      "<s6,method[7]=\"hELMERT\">"
      "<}6,georef[1]>");
  EXPECT_EQ(def.GetMethod(), 2);
  EXPECT_EQ(def.NumControlPoints(false), 1u);
  EXPECT_EQ(def.NumControlPoints(true), 2u);
  EXPECT_EQ(def.EnumSourcePoint(0)->x, 5.0);
  EXPECT_EQ(def.EnumSourcePoint(0)->y, 6.0);
  EXPECT_EQ(def.EnumDestinationPoint(1)->x, 3.0);
  EXPECT_EQ(def.EnumDestinationPoint(1)->y, 4.0);
  double six[6] = {};
  def.GetCoefficients(six);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(six[i], 1.0 + i);
}

TEST(WarpDef, DecodingCoefficientsLeavesTheMethodAsTheTextSays) {
  EXPECT_EQ(Decoded("<{6,Georef[1]><f5,Coeff[6]=1,2,3,4,5,6><}6,Georef[1]>").GetMethod(), 0);
  EXPECT_EQ(
      Decoded("<{6,Georef[1]><s6,Method[1]=\"Helmert\"><f5,Coeff[6]=1,2,3,4,5,6><}6,Georef[1]>").GetMethod(),
      2);
}

TEST(WarpDef, AnUnknownMethodNameDecodesAsZero) {
  EXPECT_EQ(Decoded("<{6,Georef[1]><s6,Method[1]=\"Markov Spline\"><}6,Georef[1]>").GetMethod(), 0);
  EXPECT_EQ(
      Decoded("<{6,Georef[1]><s6,Method[1]=\"Helmert\"><s6,Method[0]=\"Helmert\"><}6,Georef[1]>").GetMethod(),
      0);
  // A repeated item counts anew; the names are not strung together.
  EXPECT_EQ(Decoded("<{6,Georef[1]><s6,Method[1]=\"Helmert\"><s6,Method[1]=\"Displacement\"><}6,Georef[1]>")
                .GetMethod(),
            1);
}

TEST(WarpDef, AnOddCountDropsTheLastCoordinate) {
  const WarpDef def =
      Decoded("<{6,Georef[1]><f11,SrcControls[3]=1,2,3><f12,DestControls[1]=9><}6,Georef[1]>");
  EXPECT_EQ(def.NumControlPoints(false), 1u);
  EXPECT_EQ(def.EnumSourcePoint(0)->y, 2.0);
  EXPECT_EQ(def.NumControlPoints(true), 0u);
  EXPECT_EQ(Decoded("<{6,Georef[1]><f11,SrcControls[0]=><}6,Georef[1]>").NumControlPoints(false), 0u);
}

TEST(WarpDef, RepeatedListsAppend) {
  const WarpDef def = Decoded("<{6,Georef[1]><f11,SrcControls[2]=1,2><f11,SrcControls[2]=3,4><}6,Georef[1]>");
  ASSERT_EQ(def.NumControlPoints(false), 2u);
  EXPECT_EQ(def.EnumSourcePoint(1)->x, 3.0);
}

TEST(WarpDef, DecodeFlushesOnceTheHeadIsAccepted) {
  WarpDef def = MakeWarp(3, 3, 3);
  def.SetCoefficients(1, 2, 3, 4, 5, 6);
  for (const char* const head : {"", "Georef", "<s6,Georef[1]=\"x\">", "<{6,Datums[1]><}6,Datums[1]>"}) {
    EXPECT_RAISES(def.DecodeFromText(head, nullptr), 1026, "WarpDef", kCorrupt);
    EXPECT_EQ(def.GetMethod(), 7) << head;  // untouched
    EXPECT_EQ(def.NumControlPoints(false), 3u) << head;
  }
  EXPECT_RAISES(def.DecodeFromText("<{6,Georef[1]><s6,Method[1]=\"Helmert\">", nullptr), 1026, "WarpDef",
                kCorrupt);
  EXPECT_EQ(def.GetMethod(), 2);  // what was read stays
  EXPECT_EQ(def.NumControlPoints(false), 0u);
  double six[6] = {};
  def.GetCoefficients(six);
  EXPECT_EQ(six[5], 0.0);
}

TEST(WarpDef, DecodeLeavesThePositionBehindTheBlockEnd) {
  const std::string block = "<{6,Georef[1]>\r\n<s6,Method[7]=\"Helmert\">\r\n<}6,Georef[1]>";
  WarpDef def;
  for (const char* const tail : {"", "\r\n", "\n", "\r\n\r\n", "<s1,A[1]=\"x\">"}) {
    const std::string text = "head" + block + tail;
    const std::string rest = std::string(tail) == "\r\n\r\n" ? "\r\n" : *tail == '<' ? tail : "";
    size_t position = 4;
    def.DecodeFromText(text, &position);
    EXPECT_EQ(text.substr(position), rest) << tail;
    EXPECT_EQ(def.GetMethod(), 2);
  }
  size_t position = 4;
  EXPECT_RAISES(def.DecodeFromText("head<{6,Georef[1]>", &position), 1026, "WarpDef", kCorrupt);
  EXPECT_EQ(position, 4u);
  position = 1000;
  EXPECT_RAISES(def.DecodeFromText(block, &position), 1026, "WarpDef", kCorrupt);
  EXPECT_EQ(position, 1000u);
}

TEST(WarpDef, ANestedBlockEndsOnItsBlockEndItem) {
  const std::string text =
      "<{6,Georef[1]>\r\n<s6,Method[7]=\"Helmert\">\r\n<}6,Georef[1]>\r\n<s1,A[1]=\"x\">";
  WarpDef def;
  size_t at = 0;
  orv::internal::BlockAccess::DecodeBlock(def, text, &at);
  EXPECT_EQ(text.substr(at, 3), "<}6");
}

TEST(WarpDef, ABlockThatCannotBeReadIsCorrupt) {
  const char* const texts[] = {
      "",
      "no item",
      "<{6,Georef[1]",                                   // the head itself
      "<}6,Georef[1]>",                                  // no block begin
      "<{5,Georef[1]>",                                  // the length does not fit
      "<{6,Warped[1]><}6,Warped[1]>",                    // another block
      "<{6,Georef[1]>",                                  // no end
      "<{6,Georef[1]><s6,Method[7]=\"Helmert\">",        // no end
      "<{6,Georef[1]><}6,Warped[1]>",                    // another block's end
      "<{6,Georef[1]><oops><}6,Georef[1]>",              // an item that cannot be read
      "<{6,Georef[1]><{1,X[1]><}1,X[1]><}6,Georef[1]>",  // the end of an unknown nested block
      "<{6,Georef[1]><f11,SrcControls[4000000000]=1,2><}6,Georef[1]>",
      "<{6,Georef[1]><f12,DestControls[18446744073709551615]=1,2><}6,Georef[1]>",
      "<{6,Georef[1]><f12,DestControls[18446744073709551616]=1,2><}6,Georef[1]>",  // fits no number
  };
  for (const char* const text : texts) {
    WarpDef def;
    EXPECT_RAISES(def.DecodeFromText(text, nullptr), 1026, "WarpDef", kCorrupt) << text;
  }
}

TEST(WarpDef, ABadValueIsReportedByTheValueReader) {
  const char* const texts[] = {
      "<{6,Georef[1]><f11,SrcControls[4]=1,2><}6,Georef[1]>",  // fewer values than counted
      "<{6,Georef[1]><f11,SrcControls[2]=1;2><}6,Georef[1]>",
      "<{6,Georef[1]><s11,SrcControls[2]=\"1,2\"><}6,Georef[1]>",  // another type
      "<{6,Georef[1]><f5,Coeff[5]=1,2,3,4,5><}6,Georef[1]>",
      "<{6,Georef[1]><f6,Method[1]=1><}6,Georef[1]>",
      "<{6,Georef[1]><s6,Method[1]=Helmert><}6,Georef[1]>",
  };
  for (const char* const text : texts) {
    WarpDef def;
    EXPECT_RAISES(def.DecodeFromText(text, nullptr), 1026, "EncodeText", kCorruptValue) << text;
  }
}

TEST(WarpDef, EncodedTextComesBackAlike) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const WarpDef def = orv::test::AnyWarp();
        const std::string text = Encoded(def);
        WarpDef read = MakeWarp(5, 7, 8);
        size_t position = 0;
        read.DecodeFromText(text, &position);
        ORV_HOLDS(position == text.size());
        ORV_HOLDS(read.Compare(def));
        ORV_HOLDS(def.Compare(read));
        ORV_HOLDS(Encoded(read) == text);
      },
      500));
}

// Decodes and tells whether it worked; anything but an ordinary report fails the test.
bool Decodes(const std::string& text) {
  WarpDef def;
  try {
    def.DecodeFromText(text, nullptr);
  } catch (const shr::Exception& e) {
    EXPECT_EQ(e.Code(), 1026);
    return false;
  }
  return true;
}

TEST(WarpDef, TextThatIsTruncatedAnywhereIsRefused) {
  WarpDef def = MakeWarp(7, 3, 2);
  def.SetCoefficients(1.25, 2, 3, 4, 5, 1e-7);
  const std::string text = Encoded(def);
  ASSERT_TRUE(Decodes(text));
  const size_t whole = text.rfind(']') + 1;  // the block end is read without its ">"
  for (size_t length = 0; length < text.size(); ++length) {
    EXPECT_EQ(Decodes(text.substr(0, length)), length >= whole) << length;
  }
}

TEST(WarpDef, DamagedTextIsRefusedOrReadStably) {
  WarpDef def = MakeWarp(7, 3, 2);
  def.SetCoefficients(1.25, 2, 3, 4, 5, 1e-7);
  const std::string text = Encoded(def);
  std::mt19937 random(20261121);
  size_t decoded = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string damaged = text;
    for (unsigned n = random() % 4 + 1; n > 0; --n) {
      damaged[random() % damaged.size()] = "<>{}[]=,\"\\0123456789eE+-sfdbuvG\x80"[random() % 32];
    }
    WarpDef read;
    try {
      read.DecodeFromText(damaged, nullptr);
    } catch (const shr::Exception& e) {
      ASSERT_EQ(e.Code(), 1026);
      continue;
    }
    // What can be read is stable: encoded and read again it is the same.  Only a number that overflowed
    // (1e999) has no text that could be read.
    if (Encoded(read).find("inf") != std::string::npos) continue;
    ++decoded;
    const std::string once = Encoded(read);
    ASSERT_EQ(Encoded(Decoded(once)), once) << damaged;
  }
  EXPECT_GT(decoded, 100u);
}

TEST(WarpDef, ManySmallListsAreReadInLinearTime) {
  std::string text = "<{6,Georef[1]>";
  for (int i = 0; i < 100000; ++i) text += "<f11,SrcControls[2]=1,2>";
  EXPECT_EQ(Decoded(text + "<}6,Georef[1]>").NumControlPoints(false), 100000u);
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST(WarpDef, DumpsControlPoints) {
  WarpDef def;
  def.SetMethod(Method(3));
  def.AddSourcePoint(1.5, -2);
  def.AddDestinationPoint(0.1, 300000);
  def.AddDestinationPoint(4, 5);
  std::string text = "head\n";
  def.DebugDump(text, 2);
  EXPECT_EQ(text,
            "head\n"
            "  Georef:\n"
            "    Method:  Affine Polynomial\n"
            "    Control Points (src=1, dest=2):\n"
            "      Point[0] Src( 1.500000000000000000, -2.000000000000000000 ) "
            "Dest( 0.100000000000000006, 300000.000000000000000000 ) \n"
            "      Point[1] Src( ...empty... ) Dest( 4.000000000000000000, 5.000000000000000000 ) \n");
  WarpDef other;
  other.AddSourcePoint(1, 2);
  text.clear();
  other.DebugDump(text, 0);
  EXPECT_EQ(text,
            "Georef:\n"
            "  Method:  Unknown\n"
            "  Control Points (src=1, dest=0):\n"
            "    Point[0] Src( 1.000000000000000000, 2.000000000000000000 ) Dest( ...empty... ) \n");
}

TEST(WarpDef, DumpsCoefficientsOfMethodSevenInsteadOfPoints) {
  WarpDef def = MakeWarp(3, 2, 2);
  def.SetCoefficients(1, 2, 3.5, -4, 0.25, 600000);
  std::string text;
  def.DebugDump(text, 1);
  EXPECT_EQ(text,
            " Georef:\n"
            "   Method:  Affine With Coefficients\n"
            "   Coefficients:\n"
            "     Coeff[0] = 1.000000000000000000\n"
            "     Coeff[1] = 2.000000000000000000\n"
            "     Coeff[2] = 3.500000000000000000\n"
            "     Coeff[3] = -4.000000000000000000\n"
            "     Coeff[4] = 0.250000000000000000\n"
            "     Coeff[5] = 600000.000000000000000000\n");
}

}  // namespace
