#include "orv/tables/LatLonText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "orv/core/Error.h"
#include "orv/core/internal/Fail.h"
#include "orv/shared/Exception.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"

namespace {

using orv::DegreesToLatLon;
using orv::LatLonToDegrees;

struct Symbols {
  char degree, minute, second;
};
constexpr Symbols kLetters = {'d', 'm', 's'};

std::string TextOf(double degrees, int flags, Symbols symbols = kLetters) {
  std::vector<char> out(1000, '?');
  if (!DegreesToLatLon(out.data(), degrees, flags, symbols.degree, symbols.minute, symbols.second)) {
    return "(refused)";
  }
  return out.data();
}

// What a text reads as; NaN when it does not parse.
double Parsed(const std::string& text, char degreeSymbol = 'd') {
  double degrees = -999.0;
  if (LatLonToDegrees(text.c_str(), &degrees, degreeSymbol)) return degrees;
  EXPECT_EQ(degrees, -999.0) << "a failure must leave the value: " << text;
  return std::numeric_limits<double>::quiet_NaN();
}

struct FormatRow {
  double degrees;
  int flags;
  const char* text;
};

void ExpectRows(const std::vector<FormatRow>& rows) {
  for (const FormatRow& row : rows) {
    EXPECT_EQ(TextOf(row.degrees, row.flags), row.text)
        << row.degrees << std::hex << " flags 0x" << row.flags;
  }
}

struct ParseRow {
  const char* text;
  double degrees;
};

void ExpectRows(const std::vector<ParseRow>& rows) {
  for (const ParseRow& row : rows) EXPECT_EQ(Parsed(row.text), row.degrees) << "'" << row.text << "'";
}

void ExpectRefused(const std::vector<const char*>& texts) {
  for (const char* const text : texts) EXPECT_TRUE(std::isnan(Parsed(text))) << "'" << text << "'";
}

// 7 degrees, 5 minutes, 9.375 seconds: exact in binary, so are its fields.
constexpr double kExact = 7.0859375;

}  // namespace

// ---- to text ---------------------------------------------------------------------------------------------

TEST(LatLonText, DegreesMinutesSecondsAreTheDefault) {
  ExpectRows({
      {-12.5, 0x1002, "12d30m0.00sW"},
      {kExact, 0x0003, "7d5m9.375s"},
      {kExact, 0x0000, "7d5m9s"},
      {0.0, 0x0001, "0d0m0.0s"},
      {179.5, 0x1000, "179d30m0sE"},
  });
}

TEST(LatLonText, DecimalMinutesLeaveTheSecondsOut) {
  ExpectRows({
      {45.25, 0x3301, "45d 15.0m N"},
      {kExact, 0x0105, "7d5.15625m"},
      {kExact, 0x0102, "7d5.16m"},
      {-kExact, 0x0100, "7d5m"},
  });
}

TEST(LatLonText, DecimalDegreesHaveNoSymbolsAndNoFields) {
  ExpectRows({
      {-0.1234, 0x0013, "0.123"},
      {-0.1234, 0x0033, "-0.123"},
      {kExact, 0x0017, "7.0859375"},
      {kExact, 0x0117, "7.0859375"},  // stronger than decimal minutes
      {kExact, 0x0010, "7"},
      {-12.5, 0x1212, "12.50 W"},
      {-12.5, 0x0212, "12.50"},  // no letter, so no blank
  });
}

TEST(LatLonText, TheSignPrefixFollowsItsThreeFlags) {
  ExpectRows({
      {-1.5, 0x0011, "1.5"},
      {1.5, 0x0011, "1.5"},  //
      {-1.5, 0x0031, "-1.5"},
      {1.5, 0x0031, "1.5"},  // minus
      {-1.5, 0x0051, "1.5"},
      {1.5, 0x0051, "+1.5"},  // plus
      {-1.5, 0x0071, "-1.5"},
      {1.5, 0x0071, "+1.5"},  // both
      {-1.5, 0x0091, "1.5"},
      {1.5, 0x0091, " 1.5"},  // blank
      {-1.5, 0x00B1, "-1.5"},
      {1.5, 0x00B1, " 1.5"},  // minus and blank
      {0.0, 0x0051, "+0.0"},
      {0.0, 0x0031, "0.0"},  // zero is not negative
      {-0.0, 0x0051, "+0.0"},
      {-0.0, 0x0031, "0.0"},  // and -0.0 is not either
      {-1.5, 0x0020, "-1d30m0s"},
      {1.5, 0x0180, " 1d30m"},
  });
}

TEST(LatLonText, HemisphereLettersAreIndependentOfTheSign) {
  ExpectRows({
      {1.5, 0x1011, "1.5E"},
      {-1.5, 0x1011, "1.5W"},
      {1.5, 0x3011, "1.5N"},
      {-1.5, 0x3011, "1.5S"},
      {-1.5, 0x1031, "-1.5W"},
      {-0.0, 0x1011, "0.0E"},
      {0.0, 0x3011, "0.0N"},
      {-1.5, 0x2011, "1.5"},  // the latitude flag alone adds nothing
  });
}

TEST(LatLonText, BlanksStandBetweenTheFieldsAndBeforeTheLetter) {
  ExpectRows({
      {-kExact, 0x1203, "7d 5m 9.375s W"},
      {-kExact, 0x0203, "7d 5m 9.375s"},
      {-kExact, 0x1305, "7d 5.15625m W"},
  });
}

TEST(LatLonText, PaddingReachesWholeMinutesAndTheLastField) {
  ExpectRows({
      {kExact, 0x4003, "7d05m09.375s"},
      {kExact, 0x4002, "7d05m09.38s"},  // 9.375 is exact: to even
      {kExact, 0x4105, "7d05.15625m"},
      {kExact, 0x4102, "7d05.16m"},
      {12.75, 0x4000, "12d45m000s"},
  });
}

TEST(LatLonText, PaddingIsThreePlacesEvenWithoutDecimals) {
  // Deliberate: n + 3 counts a point that is not there.
  EXPECT_EQ(TextOf(kExact, 0x4000), "7d05m009s");
  EXPECT_EQ(TextOf(kExact, 0x4100), "7d005m");
}

TEST(LatLonText, PaddingDoesNotReachDecimalDegrees) {
  EXPECT_EQ(TextOf(0.5, 0x4011), "0.5");
  EXPECT_EQ(TextOf(kExact, 0x4013), "7.086");
}

TEST(LatLonText, NoRoundingIsCarriedBetweenFields) {
  // Deliberate: 60.00 stays.
  EXPECT_EQ(TextOf(59.9999999, 0x0002), "59d59m60.00s");
  EXPECT_EQ(TextOf(10.1, 0x0002), "10d5m60.00s");
  EXPECT_EQ(TextOf(59.9999999, 0x0102), "59d60.00m");
  EXPECT_EQ(TextOf(9.9999, 0x0012), "10.00");  // one field only: rounded as it should be
}

TEST(LatLonText, PlusAndBlankTogetherAreRefusedAndNothingIsWritten) {
  for (const int flags : {0x00C0, 0x00C0 | 0x1002, 0x00F0, 0x40C3}) {
    char out[] = "untouched";
    EXPECT_FALSE(DegreesToLatLon(out, 10.0, flags, 'd', 'm', 's')) << std::hex << flags;
    EXPECT_STREQ(out, "untouched");
  }
}

TEST(LatLonText, NullBuffersAreRefused) { EXPECT_FALSE(DegreesToLatLon(nullptr, 10.0, 0, 'd', 'm', 's')); }

TEST(LatLonText, UpToFifteenDecimals) {
  // 0.1 is 0.1000000000000000055511...
  EXPECT_EQ(TextOf(0.1, 0x001F), "0.100000000000000");
  EXPECT_EQ(TextOf(1.0 + 1.0 / 32768.0, 0x001F), "1.000030517578125");
}

TEST(LatLonText, DegreesArePrintedShort) {
  // Deliberate: "%g" has six digits.
  EXPECT_EQ(TextOf(999999.5, 0x0000), "999999d30m0s");
  EXPECT_EQ(TextOf(1e6, 0x0000), "1e+06d0m0s");
  EXPECT_EQ(TextOf(1234567.5, 0x0100), "1.23457e+06d30m");
}

TEST(LatLonText, AnySymbolsAreWrittenAsTheyAre) {
  EXPECT_EQ(TextOf(-12.5, 0x1002, {'\xB0', '\'', '"'}),
            "12\xB0"
            "30'0.00\"W");
  EXPECT_EQ(TextOf(kExact, 0x0100, {'%', '%', '%'}), "7%5%");
  EXPECT_EQ(TextOf(kExact, 0x0013, {'x', 'y', 'z'}), "7.086");
}

TEST(LatLonText, TextsBeyondTwoHundredAndSixtyCharactersAreWhole) {
  // 2^1000 by doubling its decimal digits.
  std::string digits = "1";
  for (int i = 0; i < 1000; ++i) {
    int carry = 0;
    for (size_t at = digits.size(); at-- > 0;) {
      const int doubled = (digits[at] - '0') * 2 + carry;
      digits[at] = static_cast<char>('0' + doubled % 10);
      carry = doubled / 10;
    }
    if (carry > 0) digits.insert(digits.begin(), '1');
  }
  ASSERT_EQ(digits.size(), 302u);
  EXPECT_EQ(TextOf(std::ldexp(1.0, 1000), 0x0012), digits + ".00");
}

// ---- from text -------------------------------------------------------------------------------------------

TEST(LatLonText, ParsesEveryFormOfTheGrammar) {
  ExpectRows({
      {"10d30m36sS", -10.51},
      {"10d30", 10.5},
      {"10.5", 10.5},
      {"  -7.25 w ", -7.25},
      {"10", 10.0},
      {"\t \t10\t \t", 10.0},
      {"+10", 10.0},
      {"10D30'36\"", 10.51},
      {"10d 30m 36s N", 10.51},
      {"10d 30' 36\" E", 10.51},
      {"10d30m36", 10.51},
      {"10d30m", 10.5},
      {"10d30m E", 10.5},
      {"10d", 10.0},
      {"10d W", -10.0},
      {"10d  W", -10.0},  // a blank behind the marker, one before the letter
      {"10d30 W", -10.5},
      {"10d30.75", 10.0 + 30.75 / 60.0},
      {"10d30.75mn", 10.0 + 30.75 / 60.0},
      {"10d0.5m0.25s", 10.0 + 0.5 / 60.0 + 0.25 / 3600.0},
      {"1.5d30m", 2.0},
      {"10d90m", 11.5},  // no range is checked
      {"007d05m09.375s", 7.0859375},
      {"400", 400.0},
  });
}

TEST(LatLonText, DigitsAreOptionalOnEitherSideOfThePoint) {
  ExpectRows(
      {{".5", 0.5}, {"5.", 5.0}, {".", 0.0}, {"-.5N", -0.5}, {"10d.5m", 10.0 + 0.5 / 60.0}, {".d30", 0.5}});
}

TEST(LatLonText, HemisphereLettersNeverFlipTheSign) {
  ExpectRows({
      {"10S", -10.0},
      {"-10S", -10.0},
      {"-10N", -10.0},
      {"10N", 10.0},
      {"10n", 10.0},
      {"10e", 10.0},
      {"10E", 10.0},
      {"-10E", -10.0},
      {"10w", -10.0},
      {"10s", -10.0},
      {"+10W", -10.0},
      {"-10W", -10.0},
  });
}

TEST(LatLonText, LowerCaseSIsTheMarkerBehindSecondsAndTheHemisphereElsewhere) {
  // Deliberate: the markers m and s are lower case only.
  ExpectRows({
      {"10d30m36s", 10.51},
      {"10d30s", -10.5},
      {"10d30m36S", -10.51},
      {"10d30m36ss", -10.51},
      {"10d30m36sS", -10.51},
      {"10d30m36\"s", -10.51},
      {"10d30ms", -10.5},
  });
  ExpectRefused({"10d30M36s", "10d30M"});
}

TEST(LatLonText, OneBlankIsSkippedBehindAMarkerAndNoTab) {
  ExpectRefused({"10d  30m", "10d\t30m", "10d30m  36s", "10d30m\t36s", "10d30m36s  S", "10\tS", "10  S",
                 "- 10", "10 d30"});
}

TEST(LatLonText, WhatIsLeftOverMakesTheParseFail) {
  ExpectRefused({"10 30", "N", "10x", "", " ", "-", "+", "d", "--10", "+-10", "10d30m36sSS", "10NE", "10d-30",
                 "10d30'36''", "10,5", "10d30m36s40", "S10", "10\n"});
}

TEST(LatLonText, ThereAreNoExponents) {
  EXPECT_EQ(Parsed("1e"), 1.0);  // east
  ExpectRefused({"1e5", "1e+5", "1E5", "0x10", "inf", "nan"});
}

TEST(LatLonText, TheDegreeSymbolMayBeAnyByteInEitherCase) {
  EXPECT_EQ(Parsed("10\xB0"
                   "30'",
                   '\xB0'),
            10.5);
  EXPECT_EQ(Parsed("10g30", 'G'), 10.5);
  EXPECT_EQ(Parsed("10G30", 'g'), 10.5);
  EXPECT_EQ(Parsed("10*30", '*'), 10.5);
  EXPECT_EQ(Parsed("10d30", '*'), 10.5);  // d always is one
  EXPECT_EQ(Parsed("10D30", '\xB0'), 10.5);
  EXPECT_TRUE(
      std::isnan(Parsed("10\xB0"
                        "30",
                        'd')));
  // Bytes beyond ASCII have no case: 0xC4 and 0xE4 differ.
  EXPECT_TRUE(
      std::isnan(Parsed("10\xC4"
                        "30",
                        '\xE4')));
}

TEST(LatLonText, ADegreeSymbolOfZeroNeverMatchesTheEndOfTheText) {
  EXPECT_EQ(Parsed("10", '\0'), 10.0);
  EXPECT_EQ(Parsed("10d30", '\0'), 10.5);
  // What stands behind the terminator must not be read.
  const char text[] =
      "10\0"
      "30";
  double degrees = 0.0;
  EXPECT_TRUE(LatLonToDegrees(text, &degrees, '\0'));
  EXPECT_EQ(degrees, 10.0);
}

TEST(LatLonText, NullPointersAreRefused) {
  double degrees = 5.0;
  EXPECT_FALSE(LatLonToDegrees(nullptr, &degrees, 'd'));
  EXPECT_EQ(degrees, 5.0);
  EXPECT_FALSE(LatLonToDegrees("10", nullptr, 'd'));
}

TEST(LatLonText, NumbersAreConvertedAsAWholeAndCorrectlyRounded) {
  // Digit by digit, 123.456789012345678 and 0.1 + 0.2's neighbour come out one bit off.
  EXPECT_EQ(Parsed("123.456789012345678"), 123.456789012345678);
  EXPECT_EQ(Parsed("0.30000000000000004"), 0.30000000000000004);
  EXPECT_EQ(Parsed("179.99999999999997"), 179.99999999999997);
  EXPECT_EQ(Parsed("9007199254740993"), 9007199254740992.0);  // half way: to even
  EXPECT_EQ(Parsed("0." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(Parsed(std::string(400, '9')), std::numeric_limits<double>::infinity());
}

TEST(LatLonText, NeitherFunctionTouchesTheErrorState) {
  orv::ORVResetError();
  TextOf(1.0, 0x00C0);
  Parsed("nonsense");
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
  EXPECT_STREQ(orv::ORVGetErrorText(), "");
}

TEST(LatLonText, ADecimalCommaOfTheHostChangesNothing) {
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(TextOf(-kExact, 0x1003), "7d5m9.375sW");
  EXPECT_EQ(TextOf(-kExact, 0x1017), "7.0859375W");
  EXPECT_EQ(TextOf(kExact, 0x4105), "7d05.15625m");
  EXPECT_EQ(TextOf(1234567.5, 0x0000), "1.23457e+06d30m0s");
  EXPECT_EQ(Parsed("10d30.75m"), 10.0 + 30.75 / 60.0);
  EXPECT_EQ(Parsed("10.5"), 10.5);
  EXPECT_TRUE(std::isnan(Parsed("10,5")));
}

// ---- there and back --------------------------------------------------------------------------------------

TEST(LatLonText, ATextReadsBackWithinHalfItsLastPlace) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const double magnitude = orv::test::NumberIn(0.0, 360.0);
        const double degrees = orv::test::AnyBool() ? magnitude : -magnitude;
        const int decimals = orv::test::IntIn(0, 16);
        // Either a minus or a hemisphere letter tells the sign.
        const int sign = orv::test::OneOf({0x0020, 0x0060, 0x00A0, 0x1000, 0x3000, 0x1020, 0x1060});
        const int form = orv::test::OneOf({0x0000, 0x0010, 0x0100});
        const int looks = orv::test::OneOf({0x0000, 0x0200, 0x4000, 0x4200});
        const Symbols symbols = orv::test::AnyBool() ? Symbols{'d', 'm', 's'} : Symbols{'\xB0', '\'', '"'};
        const std::string text = TextOf(degrees, decimals | sign | form | looks, symbols);
        double read = -999.0;
        ORV_HOLDS(LatLonToDegrees(text.c_str(), &read, symbols.degree));
        const double unit = form == 0x0010 ? 1.0 : form == 0x0100 ? 60.0 : 3600.0;
        // Half a place, and some roundings of values up to 360.
        const double tolerance = 0.5 * std::pow(10.0, -decimals) / unit + 4.0 * 360.0 * 1.2e-16;
        ORV_HOLDS(std::fabs(read - degrees) <= tolerance);
      },
      2000));
}

TEST(LatLonText, AnyBytesParseOrFailButNeverMore) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const std::string bytes = orv::test::TextOf(
            {'0', '5', '9', '.', 'd', 'D', 'm', 's', 'S', 'N', 'w', '\'', '"', ' ', '\t', '+', '-', '\xB0'});
        double degrees = 1234.5;
        const bool parsed = LatLonToDegrees(bytes.c_str(), &degrees, '\xB0');
        const bool sound = parsed ? !std::isnan(degrees) : degrees == 1234.5;
        ORV_HOLDS(sound);
      },
      2000));
}
