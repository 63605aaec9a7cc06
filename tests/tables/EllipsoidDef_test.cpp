#include "orv/tables/EllipsoidDef.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "orv/core/internal/Fail.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"

namespace {

using orv::EllipsoidDef;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kWgs84Flattening = 1.0 / 298.257223563;

constexpr const char* kBadRadius = "Ellipsoid radius must be greater than zero.";
constexpr const char* kBadFlattening = "Ellipsoid radius must be positive.";
constexpr const char* kCorrupt = "Corrupt data encountered in encoded ellipsoid data.";

EllipsoidDef Wgs84() { return {6378137.0, kWgs84Flattening, "WGS84", "WGS 84", "GPS", 7030}; }

std::string Encoded(const EllipsoidDef& def) {
  std::string out;
  def.EncodeToText(out);
  return out;
}

void Decode(EllipsoidDef& def, const std::string& text) { def.DecodeFromText(text, nullptr); }

// An ellipsoid that no setter would let pass.
EllipsoidDef Unchecked(const std::string& radius, const std::string& flattening) {
  EllipsoidDef def;
  Decode(def,
         "<{9,Ellipsoid[1]><f6,Radius[1]=" + radius + "><f4,Flat[1]=" + flattening + "><}9,Ellipsoid[1]>");
  return def;
}

// What CheckParameters says: the explanation, or "" when all is well.
std::string Fault(const EllipsoidDef& def) {
  std::string message = "untouched";
  const bool good = def.CheckParameters(message);
  EXPECT_EQ(def.CheckParameters(), good) << "both forms say the same";
  if (!good) return message;
  EXPECT_EQ(message, "untouched");
  return "";
}

void ExpectSame(const EllipsoidDef& a, const EllipsoidDef& b) {
  const auto text = [](const char* t) { return t ? std::string(t) : "(none)"; };
  EXPECT_EQ(text(a.GetToken()), text(b.GetToken()));
  EXPECT_EQ(text(a.GetName()), text(b.GetName()));
  EXPECT_EQ(text(a.GetComment()), text(b.GetComment()));
  EXPECT_EQ(a.GetPOSCNumber(), b.GetPOSCNumber());
  EXPECT_EQ(a.GetMajorRadius(), b.GetMajorRadius());
  EXPECT_EQ(a.GetFlattening(), b.GetFlattening());
}

void ExpectEmpty(const EllipsoidDef& def) {
  EXPECT_EQ(def.GetToken(), nullptr);
  EXPECT_EQ(def.GetName(), nullptr);
  EXPECT_EQ(def.GetComment(), nullptr);
  EXPECT_EQ(def.GetPOSCNumber(), 0);
  EXPECT_EQ(def.GetMajorRadius(), 0.0);
  EXPECT_EQ(def.GetFlattening(), 0.0);
}

}  // namespace

// ---- fields ----------------------------------------------------------------------------------------------

TEST(EllipsoidDef, StartsEmpty) { ExpectEmpty(EllipsoidDef()); }

TEST(EllipsoidDef, IsBuiltFromItsSixFields) {
  const EllipsoidDef def = Wgs84();
  EXPECT_STREQ(def.GetToken(), "WGS84");
  EXPECT_STREQ(def.GetName(), "WGS 84");
  EXPECT_STREQ(def.GetComment(), "GPS");
  EXPECT_EQ(def.GetPOSCNumber(), 7030);
  EXPECT_EQ(def.GetMajorRadius(), 6378137.0);
  EXPECT_EQ(def.GetFlattening(), kWgs84Flattening);
  const EllipsoidDef bare(1.0, 0.0, nullptr, nullptr, nullptr, -3);
  EXPECT_EQ(bare.GetToken(), nullptr);
  EXPECT_EQ(bare.GetName(), nullptr);
  EXPECT_EQ(bare.GetComment(), nullptr);
  EXPECT_EQ(bare.GetPOSCNumber(), -3);
}

TEST(EllipsoidDef, ConstructionChecksTheRadiusAndThenTheFlattening) {
  const auto build = [](double radius, double flattening) {
    return EllipsoidDef(radius, flattening, "T", "N", "C", 1);
  };
  EXPECT_RAISES(build(0.0, 0.1), 1032, "EllipsoidDef", kBadRadius);
  EXPECT_RAISES(build(-1.0, -1.0), 1032, "EllipsoidDef", kBadRadius);
  EXPECT_RAISES(build(kNaN, 0.1), 1032, "EllipsoidDef", kBadRadius);
  EXPECT_RAISES(build(1.0, -1e-300), 1032, "EllipsoidDef", kBadFlattening);
  EXPECT_RAISES(build(1.0, kNaN), 1032, "EllipsoidDef", kBadFlattening);
}

TEST(EllipsoidDef, EmptyTextsAreNullPointers) {
  EllipsoidDef def = Wgs84();
  def.SetToken("");
  def.SetName(nullptr);
  def.SetComment(nullptr);
  EXPECT_EQ(def.GetToken(), nullptr);
  EXPECT_EQ(def.GetName(), nullptr);
  EXPECT_EQ(def.GetComment(), nullptr);
}

TEST(EllipsoidDef, TextsAreCopied) {
  std::string text = "before";
  EllipsoidDef def;
  def.SetToken(text.c_str());
  def.SetName(text.c_str());
  def.SetComment(text.c_str());
  text = "after!";
  EXPECT_STREQ(def.GetToken(), "before");
  EXPECT_STREQ(def.GetName(), "before");
  EXPECT_STREQ(def.GetComment(), "before");
  def.SetName(def.GetToken());
  EXPECT_STREQ(def.GetName(), "before");
}

TEST(EllipsoidDef, AnyPOSCNumberIsStored) {
  EllipsoidDef def;
  for (const int posc : {7030, 0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    def.SetPOSCNumber(posc);
    EXPECT_EQ(def.GetPOSCNumber(), posc);
  }
}

TEST(EllipsoidDef, OnlyARadiusAboveZeroIsStored) {
  EllipsoidDef def = Wgs84();
  for (const double radius : {0.0, -0.0, -1.0, -kInfinity, kNaN}) {
    EXPECT_RAISES(def.SetMajorRadius(radius), 1032, "EllipsoidDef", kBadRadius);
    EXPECT_EQ(def.GetMajorRadius(), 6378137.0) << "the old value stays";
  }
  for (const double radius : {1.0, std::numeric_limits<double>::denorm_min(), kInfinity}) {
    def.SetMajorRadius(radius);
    EXPECT_EQ(def.GetMajorRadius(), radius);
  }
}

TEST(EllipsoidDef, OnlyAFlatteningOfZeroOrMoreIsStored) {
  EllipsoidDef def = Wgs84();
  for (const double flattening : {-1e-300, -1.0, -kInfinity, kNaN}) {
    // Deliberate: the words are the radius's.
    EXPECT_RAISES(def.SetFlattening(flattening), 1032, "EllipsoidDef", kBadFlattening);
    EXPECT_EQ(def.GetFlattening(), kWgs84Flattening) << "the old value stays";
  }
  for (const double flattening : {0.0, 0.5, 1.0, 1.5}) {
    EXPECT_NO_THROW(def.SetFlattening(flattening));
    EXPECT_EQ(def.GetFlattening(), flattening);
  }
}

TEST(EllipsoidDef, TheMinorRadiusOfASphereIsItsRadiusBitForBit) {
  const double radius = 6370997.0000000009;
  EXPECT_EQ(EllipsoidDef(radius, 0.0, "", "", "", 0).GetMinorRadius(), radius);
  EXPECT_EQ(EllipsoidDef(kInfinity, 0.0, "", "", "", 0).GetMinorRadius(), kInfinity);
}

TEST(EllipsoidDef, TheMinorRadiusIsTheFlattenedOne) {
  EXPECT_EQ(Wgs84().GetMinorRadius(), (1.0 - 1.0 / 298.257223563) * 6378137.0);
  EXPECT_NEAR(Wgs84().GetMinorRadius(), 6356752.3142, 5e-5);  // as NIMA TR8350.2 prints it
  EXPECT_EQ(EllipsoidDef(8.0, 0.25, "", "", "", 0).GetMinorRadius(), 6.0);
}

TEST(EllipsoidDef, FlushEmptiesEverything) {
  EllipsoidDef def = Wgs84();
  def.Flush();
  ExpectEmpty(def);
}

TEST(EllipsoidDef, CopiesAreIndependent) {
  EllipsoidDef original = Wgs84();
  const EllipsoidDef copy = original;
  EllipsoidDef assigned;
  assigned = original;
  original.Flush();
  ExpectSame(copy, Wgs84());
  ExpectSame(assigned, Wgs84());
}

// ---- verdicts --------------------------------------------------------------------------------------------

TEST(EllipsoidDef, IsUnknownWithoutAPositiveRadius) {
  EXPECT_TRUE(EllipsoidDef().IsUnknown());
  EXPECT_TRUE(Unchecked("-1", "0").IsUnknown());
  EXPECT_FALSE(Wgs84().IsUnknown());
  EXPECT_FALSE(Unchecked("1e-300", "-5").IsUnknown());
}

TEST(EllipsoidDef, ChecksTellTheFirstFault) {
  EXPECT_EQ(Fault(EllipsoidDef()), "Ellipsoid radius must be positive.");
  EXPECT_EQ(Fault(Unchecked("-1", "-1")), "Ellipsoid radius must be positive.");
  EXPECT_EQ(Fault(Unchecked("1", "-1e-300")), "Ellipsoid flattening must not be negative.");
  EXPECT_EQ(Fault(Unchecked("1", "1")), "Ellipsoid flattening must be less than one.");
  EllipsoidDef def = Wgs84();
  def.SetFlattening(1.5);
  EXPECT_EQ(Fault(def), "Ellipsoid flattening must be less than one.");
  EXPECT_EQ(Fault(Wgs84()), "");
  EXPECT_EQ(Fault(EllipsoidDef(1.0, 0.0, "", "", "", 0)), "");
  EXPECT_EQ(Fault(Unchecked("1", "0.9999999999999999")), "");
}

TEST(EllipsoidDef, ChecksLetNaNPass) {
  // Deliberate: unlike the setters, they test <= 0, < 0 and >= 1.
  EXPECT_EQ(Fault(Unchecked("nan", "0")), "");
  EXPECT_EQ(Fault(Unchecked("1", "nan")), "");
}

TEST(EllipsoidDef, ChecksLeaveTheErrorStateAlone) {
  orv::ORVResetError();
  Fault(EllipsoidDef());
  Wgs84().CompareParameters(nullptr, true);
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TEST(EllipsoidDef, ComparisonsLookAtTheDimensionsOnly) {
  const EllipsoidDef other(6378137.0, kWgs84Flattening, "other", "other", "other", 1);
  EXPECT_TRUE(Wgs84().CompareParameters(&other, false));
  EXPECT_TRUE(Wgs84().CompareParameters(&other, true));
  EXPECT_FALSE(Wgs84().CompareParameters(nullptr, false));
  EXPECT_FALSE(Wgs84().CompareParameters(nullptr, true));
  const EllipsoidDef empty;
  EXPECT_TRUE(empty.CompareParameters(&empty, false)) << "equal is equal, unknown or not";
}

TEST(EllipsoidDef, ExactComparisonsAllowNoDifference) {
  const EllipsoidDef radius(std::nextafter(6378137.0, 7e6), kWgs84Flattening, "", "", "", 0);
  const EllipsoidDef flattening(6378137.0, std::nextafter(kWgs84Flattening, 1.0), "", "", "", 0);
  for (const EllipsoidDef& other : {radius, flattening}) {
    EXPECT_FALSE(Wgs84().CompareParameters(&other, false));
    EXPECT_TRUE(Wgs84().CompareParameters(&other, true));
  }
}

TEST(EllipsoidDef, TolerantComparisonsAllowAMillionthOfTheOwnRadius) {
  const auto matches = [](double own, double other) {
    const EllipsoidDef a(own, 0.003, "", "", "", 0);
    const EllipsoidDef b(other, 0.003, "", "", "", 0);
    return a.CompareParameters(&b, true);
  };
  EXPECT_TRUE(matches(6378137.0, 6378137.5));
  EXPECT_TRUE(matches(6378137.0, 6378143.0));
  EXPECT_FALSE(matches(6378137.0, 6378150.0));
  EXPECT_FALSE(matches(6378137.0, 6378143.5));
  // The own radius counts, not the other's: a millionth of 1000001 is more than the difference of 1, that of
  // 1000000 is not.
  EXPECT_TRUE(matches(1000001.0, 1000000.0));
  EXPECT_FALSE(matches(1000000.0, 1000001.0));
}

TEST(EllipsoidDef, TolerantComparisonsAllowTheWholeOwnFlattening) {
  // Deliberate: there is no divisor, and no symmetry.
  const auto matches = [](double own, double other) {
    const EllipsoidDef a(6378137.0, own, "", "", "", 0);
    const EllipsoidDef b(6378137.0, other, "", "", "", 0);
    return a.CompareParameters(&b, true);
  };
  EXPECT_FALSE(matches(0.0, 1e-12));
  EXPECT_TRUE(matches(0.0, 0.0));
  EXPECT_TRUE(matches(0.0033, 0.0060));
  EXPECT_FALSE(matches(0.0033, 0.0067));
  EXPECT_FALSE(matches(0.25, 0.5)) << "strictly less";
  EXPECT_FALSE(matches(0.25, 0.0)) << "strictly less";
  EXPECT_TRUE(matches(0.5, 0.25)) << "the own flattening counts";
  EXPECT_FALSE(matches(1e-12, 0.0033));
  EXPECT_TRUE(matches(0.0033, 1e-12));
}

// ---- encoded text ----------------------------------------------------------------------------------------

TEST(EllipsoidDef, IsEncodedInTheOrderOfItsItems) {
  const EllipsoidDef def(6378137.0, 0.25, "T<1>", "My ellipsoid", "a \"b\"", -7);
  EXPECT_EQ(orv::test::TwoDigitExponents(Encoded(def)),
            "<{9,Ellipsoid[1]>\r\n"
            "<s5,Token[4]=\"T\\x3C1\\x3E\">\r\n"
            "<s4,Name[12]=\"My ellipsoid\">\r\n"
            "<s7,Comment[5]=\"a \\x22b\\x22\">\r\n"
            "<d4,POSC[1]=-7>\r\n"
            "<f6,Radius[1]=6.378137000000000000e+06>\r\n"
            "<f4,Flat[1]=2.500000000000000000e-01>\r\n"
            "<}9,Ellipsoid[1]>\r\n");
}

TEST(EllipsoidDef, EmptyTextsAreNotEncodedButNumbersAlwaysAre) {
  EXPECT_EQ(
      Encoded(EllipsoidDef()),
      "<{9,Ellipsoid[1]>\r\n<d4,POSC[1]=0>\r\n<f6,Radius[1]=0>\r\n<f4,Flat[1]=0>\r\n<}9,Ellipsoid[1]>\r\n");
}

TEST(EllipsoidDef, EncodingAppends) {
  std::string out = "before";
  EllipsoidDef().EncodeToText(out);
  EXPECT_EQ(out, "before" + Encoded(EllipsoidDef()));
}

TEST(EllipsoidDef, AbsentItemsKeepTheirValuesWhenDecoded) {
  EllipsoidDef def = Wgs84();
  Decode(def, Encoded(EllipsoidDef(2.0, 0.5, "T", "N", nullptr, 3)));
  ExpectSame(def, EllipsoidDef(2.0, 0.5, "T", "N", "GPS", 3));
  Decode(def, "<{9,Ellipsoid[1]><}9,Ellipsoid[1]>");
  ExpectSame(def, EllipsoidDef(2.0, 0.5, "T", "N", "GPS", 3));
}

TEST(EllipsoidDef, NamesInEncodedTextIgnoreCase) {
  EllipsoidDef def;
  Decode(def,
         "<{9,ELLIPSOID[1]>\r\n<s5,tOKEN[1]=\"T\">\r\n<s4,NAME[1]=\"N\">\r\n<s7,comment[1]=\"C\">\r\n"
         "<d4,posc[1]=3>\r\n<f6,RADIUS[1]=2>\r\n<f4,flat[1]=0.5>\r\n<}9,ellipsoid[1]>\r\n");
  ExpectSame(def, EllipsoidDef(2.0, 0.5, "T", "N", "C", 3));
}

TEST(EllipsoidDef, UnknownItemsAreSkippedWhenDecoded) {
  EllipsoidDef def;
  Decode(def,
         "<{9,Ellipsoid[1]>\r\n<s5,Epoch[1]=\"x\">\r\n<f6,Radius[1]=2>\r\n<u3,New[1]=5>\r\n<d4,POSC[1]=3>\r\n"
         "<}9,Ellipsoid[1]>\r\n");
  ExpectSame(def, EllipsoidDef(2.0, 0.0, "", "", "", 3));
}

TEST(EllipsoidDef, RepeatedTextsReplaceEachOther) {
  EllipsoidDef def = Wgs84();
  Decode(def, "<{9,Ellipsoid[1]><s5,Token[1]=\"a\"><s5,Token[2]=\"bc\"><}9,Ellipsoid[1]>");
  EXPECT_STREQ(def.GetToken(), "bc");
}

TEST(EllipsoidDef, DecodedDimensionsAreNotChecked) {
  const EllipsoidDef def = Unchecked("-5", "-0.5");
  EXPECT_EQ(def.GetMajorRadius(), -5.0);
  EXPECT_EQ(def.GetFlattening(), -0.5);
}

TEST(EllipsoidDef, TheCursorGoesBehindTheBlock) {
  const std::string text = "junk" + Encoded(Wgs84()) + "behind";
  EllipsoidDef def;
  size_t at = 4;
  def.DecodeFromText(text, &at);
  EXPECT_EQ(text.substr(at), "behind");
  ExpectSame(def, Wgs84());
  // Two blocks in a row are read one after the other.
  const std::string two = Encoded(Wgs84()) + Encoded(EllipsoidDef(1.0, 0.0, "B", "", "", 0));
  at = 0;
  def.DecodeFromText(two, &at);
  def.DecodeFromText(two, &at);
  EXPECT_STREQ(def.GetToken(), "B");
  EXPECT_EQ(at, two.size());
}

TEST(EllipsoidDef, UnreadableBlocksAreCorrupt) {
  const std::string begin = "<{9,Ellipsoid[1]>\r\n";
  const std::string end = "<}9,Ellipsoid[1]>\r\n";
  for (const std::string& text :
       {std::string(), std::string("x"), " " + begin + end, std::string("<{9,Ellipsoid[1"),
        std::string("<{5,Datum[1]>\r\n<}5,Datum[1]>\r\n"), std::string("<s9,Ellipsoid[1]=\"x\">\r\n"), end,
        begin, begin + "<d4,POSC[1]=3>\r\n", begin + "<d4,POSC[1]3>\r\n" + end, begin + "<" + end,
        begin + "<}5,Datum[1]>\r\n", begin + "<{3,New[1]>\r\n<}3,New[1]>\r\n" + end, begin + begin}) {
    EllipsoidDef def;
    size_t at = 0;
    EXPECT_RAISES(def.DecodeFromText(text, &at), 1026, "EllipsoidDef", kCorrupt);
    EXPECT_EQ(at, 0u) << "the cursor stays: " << text;
    EXPECT_RAISES(def.DecodeFromText(text, nullptr), 1026, "EllipsoidDef", kCorrupt);
  }
  EllipsoidDef def;
  for (size_t at : {begin.size() + end.size(), size_t{1000}, static_cast<size_t>(SIZE_MAX)}) {
    const size_t before = at;
    EXPECT_RAISES(def.DecodeFromText(begin + end, &at), 1026, "EllipsoidDef", kCorrupt);
    EXPECT_EQ(at, before);
  }
}

TEST(EllipsoidDef, UnreadableValuesAreReportedByTheirReaders) {
  const auto decode = [](const std::string& item) {
    EllipsoidDef def;
    Decode(def, "<{9,Ellipsoid[1]>\r\n" + item + "\r\n<}9,Ellipsoid[1]>\r\n");
  };
  constexpr const char* kCorruptValue = "Corrupt data while parsing encoded data.";
  EXPECT_RAISES(decode("<d5,Token[1]=5>"), 1026, "EncodeText", kCorruptValue);
  EXPECT_RAISES(decode("<s4,Name[1]=x>"), 1026, "EncodeText", kCorruptValue);
  EXPECT_RAISES(decode("<f6,Radius[0]=5>"), 1026, "EncodeText", kCorruptValue);
  EXPECT_RAISES(decode("<d4,Flat[1]=5>"), 1026, "EncodeText", kCorruptValue);
  EXPECT_RAISES(decode("<f4,POSC[1]=5>"), 1026, "EncodeText",
                "Mismatched data type while parsing encoded data.");
}

TEST(EllipsoidDef, FieldsDecodedBeforeAFailureStay) {
  EllipsoidDef def = Wgs84();
  EXPECT_RAISES(Decode(def, "<{9,Ellipsoid[1]>\r\n<s5,Token[3]=\"new\">\r\n<f6,Radius[1]=2>\r\n"), 1026,
                "EllipsoidDef", kCorrupt);
  ExpectSame(def, EllipsoidDef(2.0, kWgs84Flattening, "new", "WGS 84", "GPS", 7030));
}

TEST(EllipsoidDef, ABlockCutAnywhereIsRefused) {
  const std::string whole = Encoded(Wgs84());
  for (size_t length = 0; length + 3 < whole.size(); ++length) {
    EllipsoidDef def;
    EXPECT_THROW(Decode(def, whole.substr(0, length)), shr::Exception) << length;
  }
}

TEST(EllipsoidDef, ComesBackFromItsEncodedText) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const EllipsoidDef def = orv::test::AnyEllipsoid();
        const std::string text = Encoded(def);
        EllipsoidDef read;
        size_t at = 0;
        read.DecodeFromText(text, &at);
        ORV_HOLDS(at == text.size());
        ORV_HOLDS(read.CompareParameters(&def, false));
        ORV_HOLDS(read.GetPOSCNumber() == def.GetPOSCNumber());
        const auto same = [](const char* a, const char* b) {
          return a && b ? std::strcmp(a, b) == 0 : a == b;
        };
        ORV_HOLDS(same(read.GetToken(), def.GetToken()));
        ORV_HOLDS(same(read.GetName(), def.GetName()));
        ORV_HOLDS(same(read.GetComment(), def.GetComment()));
        ORV_HOLDS(Encoded(read) == text);
      },
      500));
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST(EllipsoidDef, DumpsEachFieldOnALine) {
  std::string text = "before\n";
  Wgs84().DebugDump(text, 3);
  EXPECT_EQ(orv::test::Masked(text),
            "before\n"
            "     Ellipsoid this=ADDRESS:\n"
            "       Token      = 'WGS84'\n"
            "       Name       = 'WGS 84'\n"
            "       POSC       = 7030\n"
            "       Comment    = 'GPS'\n"
            "       Radius     =           6378137.000000\n"
            "       Flattening =     0.003352810664747480\n");
  text.clear();
  EllipsoidDef().DebugDump(text, 0);
  EXPECT_EQ(
      orv::test::Masked(text),
      "  Ellipsoid this=ADDRESS:\n    Token      = ''\n    Name       = ''\n    POSC       = 0\n    Comment    = ''\n"
      "    Radius     =                 0.000000\n    Flattening =     0.000000000000000000\n");
}

TEST(EllipsoidDef, TextsInADumpAreNeverFormats) {
  std::string text;
  EllipsoidDef(1.0, 0.0, "100%s", "%n", std::string(2000, '%').c_str(), 0).DebugDump(text, 0);
  EXPECT_NE(text.find("Token      = '100%s'\n"), std::string::npos);
  EXPECT_NE(text.find("Name       = '%n'\n"), std::string::npos);
  EXPECT_NE(text.find("'" + std::string(2000, '%') + "'\n"), std::string::npos);
}

TEST(EllipsoidDef, ADecimalCommaOfTheHostChangesNothing) {
  const EllipsoidDef def(6378137.25, 0.00335, "T", "N", "C", 1234567);
  const std::string before = Encoded(def);
  std::string dumpBefore;
  def.DebugDump(dumpBefore, 1);
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(Encoded(def), before);
  std::string dump;
  def.DebugDump(dump, 1);
  EXPECT_EQ(dump, dumpBefore);
  EllipsoidDef read;
  Decode(read, before);
  ExpectSame(read, def);
}
