#include "orv/core/internal/Number.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "orv/core/internal/Text.h"
#include "tests/support/CommaLocale.h"

namespace {

using namespace orv::internal;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// A text whose number strtod reads by the same rules: no blanks, no hexadecimal, infinity or NaN in it.
void ExpectAsStrtod(const std::string& text) {
  char* stop = nullptr;
  const double expected = std::strtod(text.c_str(), &stop);
  size_t end = 99;
  const double value = ReadDecimal(text, &end);
  EXPECT_TRUE(SameBits(value, expected)) << "'" << text << "': " << value << " instead of " << expected;
  EXPECT_EQ(end, static_cast<size_t>(stop - text.c_str())) << "'" << text << "'";
}

}  // namespace

TEST(Number, DigitsAreCountedUpToEight) {
  for (size_t digits = 0; digits <= 8; ++digits) {
    for (int byte = 0; byte < 256; ++byte) {
      if (byte >= '0' && byte <= '9') continue;
      std::string text = "0918273645";
      text[digits] = static_cast<char>(byte);
      EXPECT_EQ(LeadingDigits(text.c_str()), digits) << byte;
    }
  }
}

// ---- decimal numbers -------------------------------------------------------------------------------------

TEST(Number, TheLongestDecimalPrefixIsRead) {
  struct Row {
    const char* text;
    double value;
    size_t end;
  };
  for (const Row& row :
       {Row{"1.5", 1.5, 3}, {"+1.5", 1.5, 4}, {"-1.5", -1.5, 4},  {".5", 0.5, 2},    {"5.", 5.0, 2},
        {"-.5x", -0.5, 3},  {"1e5", 1e5, 3},  {"1E+5", 1e5, 4},   {"1e-5", 1e-5, 4}, {"1e", 1.0, 1},
        {"1e+", 1.0, 1},    {"1e-x", 1.0, 1}, {"1.5.5", 1.5, 3},  {"1,5", 1.0, 1},   {"12 3", 12.0, 2},
        {"1e5e5", 1e5, 3},  {"1-2", 1.0, 1},  {"00012", 12.0, 5}, {"1_000", 1.0, 1}, {"1'000", 1.0, 1}}) {
    size_t end = 99;
    EXPECT_EQ(ReadDecimal(row.text, &end), row.value) << row.text;
    EXPECT_EQ(end, row.end) << row.text;
    EXPECT_EQ(ReadDecimal(row.text), row.value) << "without an end: " << row.text;
  }
}

TEST(Number, WhatIsNoDecimalNumberIsZero) {
  for (const char* const text : {"",
                                 ".",
                                 "+",
                                 "-",
                                 "+.",
                                 "-.e5",
                                 "e5",
                                 ".e5",
                                 "x",
                                 "abc",
                                 " 1",
                                 "\t1",
                                 "\n1",
                                 "inf",
                                 "-inf",
                                 "infinity",
                                 "nan",
                                 "NAN",
                                 "nan(1)",
                                 "--1",
                                 "+-1",
                                 "\xC2\xA0"
                                 "1"}) {
    size_t end = 99;
    EXPECT_TRUE(SameBits(ReadDecimal(text, &end), 0.0)) << text;
    EXPECT_EQ(end, 0u) << text;
  }
}

TEST(Number, HexadecimalIsNotRead) {
  size_t end = 99;
  EXPECT_EQ(ReadDecimal("0x10", &end), 0.0);
  EXPECT_EQ(end, 1u);
  EXPECT_EQ(ReadDecimal("1p5"), 1.0);
}

TEST(Number, TooLargeIsInfinityAndTooSmallIsZero) {
  EXPECT_EQ(ReadDecimal("1e400"), kInfinity);
  EXPECT_EQ(ReadDecimal("-1e400"), -kInfinity);
  EXPECT_EQ(ReadDecimal("1e99999999999999999999999"), kInfinity);
  EXPECT_EQ(ReadDecimal("0.0001e400"), kInfinity);
  EXPECT_EQ(ReadDecimal(std::string(400, '9')), kInfinity);
  EXPECT_EQ(ReadDecimal("1.7976931348623159e308"), kInfinity);
  EXPECT_EQ(ReadDecimal("1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_TRUE(SameBits(ReadDecimal("1e-400"), 0.0));
  EXPECT_TRUE(SameBits(ReadDecimal("-1e-400"), -0.0));
  EXPECT_TRUE(SameBits(ReadDecimal("1e-99999999999999999999999"), 0.0));
  EXPECT_TRUE(SameBits(ReadDecimal("-" + std::string("0.") + std::string(400, '0') + "1"), -0.0));
  EXPECT_TRUE(SameBits(ReadDecimal("10000e-400"), 0.0));
  EXPECT_EQ(ReadDecimal(std::string(400, '9') + "e-395"), 99999.99999999999999);
}

TEST(Number, ZeroStaysZeroWhateverItsExponent) {
  EXPECT_TRUE(SameBits(ReadDecimal("0e999999"), 0.0));
  EXPECT_TRUE(SameBits(ReadDecimal("-0.000e-999999"), -0.0));
  EXPECT_TRUE(SameBits(ReadDecimal("-0"), -0.0));
}

TEST(Number, RoundsCorrectly) {
  EXPECT_EQ(ReadDecimal("9007199254740993"), 9007199254740992.0) << "half way: to even";
  EXPECT_EQ(ReadDecimal("9007199254740993.00000000000000000000000000000000000001"), 9007199254740994.0);
  EXPECT_EQ(ReadDecimal("4.9406564584124654e-324"), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(ReadDecimal("2.4703282292062328e-324"), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(ReadDecimal("2.4703282292062327e-324"), 0.0);
  EXPECT_EQ(ReadDecimal("2.2250738585072011e-308"), 0x0.fffffffffffffp-1022);
}

TEST(Number, OnlyTheViewIsRead) {
  const char text[] = "12345e2";
  EXPECT_EQ(ReadDecimal(std::string_view(text, 3)), 123.0);
  EXPECT_EQ(ReadDecimal(std::string_view(text, 6)), 12345.0);
  EXPECT_EQ(ReadDecimal(std::string_view(text, 0)), 0.0);
  EXPECT_EQ(ReadDecimal(std::string_view("1\0002", 3)), 1.0);
}

TEST(Number, AgreesWithTheRunTimeLibraryOnRandomNumbers) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    const auto digits = [&](size_t most) {
      for (size_t n = random() % (most + 1); n > 0; --n) text += static_cast<char>('0' + random() % 10);
    };
    if (random() % 3 == 0) text += random() % 2 ? '-' : '+';
    digits(random() % 20 == 0 ? 800 : 20);
    if (random() % 2) {
      text += '.';
      digits(random() % 20 == 0 ? 800 : 20);
    }
    if (random() % 2) {
      text += random() % 2 ? 'e' : 'E';
      if (random() % 2) text += random() % 2 ? '-' : '+';
      digits(3);
    }
    ExpectAsStrtod(text);
  }
}

TEST(Number, AgreesWithTheRunTimeLibraryOnNumbersAsFilesHoldThem) {
  // Short numbers with many zeros behind them, and those around the largest integer that is exact.
  std::mt19937_64 random(10);
  for (int i = 0; i < 20000; ++i) {
    const auto digits = static_cast<int>(random() % 17);
    const uint64_t integer = random() % (digits < 16 ? 100000 : uint64_t{1} << 55);
    std::string text = std::to_string(integer);
    if (random() % 8) {
      const size_t decimals = random() % (text.size() + 4);
      if (decimals >= text.size()) text.insert(0, decimals - text.size() + 1, '0');
      text.insert(text.size() - decimals, 1, '.');
      text.append(random() % 22, '0');
    }
    ExpectAsStrtod((random() % 4 ? "" : "-") + text);
  }
}

TEST(Number, AgreesWithTheRunTimeLibraryOnRandomBits) {
  std::mt19937_64 random(8);
  for (int i = 0; i < 20000; ++i) {
    const uint64_t bits = random();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    // Too few digits to tell neighbours apart, enough, and many more.
    ExpectAsStrtod(Format("%.*e", static_cast<int>(random() % 40), value));
    EXPECT_TRUE(SameBits(ReadDecimal(Format("%.18e", value)), value));
  }
}

TEST(Number, AgreesWithTheRunTimeLibraryOnAnyCharactersOfNumbers) {
  std::mt19937_64 random(9);
  const std::string alphabet = "0123456789..eE+-,_";
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (size_t n = random() % 12; n > 0; --n) text += alphabet[random() % alphabet.size()];
    ExpectAsStrtod(text);
  }
}

// ---- integers --------------------------------------------------------------------------------------------

TEST(Number, IntegersAreReadAsTheRunTimeLibraryDoesButClamped) {
  struct Row {
    const char* text;
    int value;
  };
  for (const Row& row : {Row{"42", 42},
                         {"-42", -42},
                         {"+42", 42},
                         {" \t\n\v\f\r42", 42},
                         {"42abc", 42},
                         {"42.9", 42},
                         {"007", 7},
                         {"", 0},
                         {" ", 0},
                         {"-", 0},
                         {"+", 0},
                         {"abc", 0},
                         {"- 5", 0},
                         {"--5", 0},
                         {"0x10", 0},
                         {"1e5", 1},
                         {"2147483647", INT_MAX},
                         {"2147483648", INT_MAX},
                         {"-2147483648", INT_MIN},
                         {"-2147483649", INT_MIN},
                         {"4294967297", INT_MAX},
                         {"99999999999999999999999", INT_MAX},
                         {"-99999999999999999999999", INT_MIN}}) {
    EXPECT_EQ(ReadInteger(row.text), row.value) << row.text;
  }
}

TEST(Number, IntegersAgreeWithTheRunTimeLibrary) {
  std::mt19937_64 random(10);
  const std::string alphabet = "0123456789012345678901234567890123456789+- x";
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (size_t n = random() % 13; n > 0; --n) text += alphabet[random() % alphabet.size()];
    const long long wide = std::strtoll(text.c_str(), nullptr, 10);
    const int expected = wide > INT_MAX ? INT_MAX : wide < INT_MIN ? INT_MIN : static_cast<int>(wide);
    EXPECT_EQ(ReadInteger(text), expected) << "'" << text << "'";
  }
}

TEST(Number, TruncationGoesTowardZeroAndIsClamped) {
  EXPECT_EQ(TruncateToInt(1.9), 1);
  EXPECT_EQ(TruncateToInt(-1.9), -1);
  EXPECT_EQ(TruncateToInt(-0.5), 0);
  EXPECT_EQ(TruncateToInt(2147483646.9), 2147483646);
  EXPECT_EQ(TruncateToInt(2147483647.0), INT_MAX);
  EXPECT_EQ(TruncateToInt(2147483648.0), INT_MAX);
  EXPECT_EQ(TruncateToInt(-2147483648.0), INT_MIN);
  EXPECT_EQ(TruncateToInt(-2147483649.0), INT_MIN);
  EXPECT_EQ(TruncateToInt(1e300), INT_MAX);
  EXPECT_EQ(TruncateToInt(-kInfinity), INT_MIN);
  EXPECT_EQ(TruncateToInt(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(Number, ADecimalCommaOfTheHostChangesNothing) {
  ORV_WITH_COMMA_LOCALE();
  size_t end = 0;
  EXPECT_EQ(ReadDecimal("1.5", &end), 1.5);
  EXPECT_EQ(end, 3u);
  EXPECT_EQ(ReadDecimal("1,5", &end), 1.0);
  EXPECT_EQ(end, 1u);
}
