// The fast ways of numbers and text against the standard library's.
#include "tools/orv/FixedNumber.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>

namespace {

using orv::tool::kFixedRoom;
using orv::tool::ParsePlainNumber;
using orv::tool::WriteFixed;

std::string Fixed(double value, int decimals) {
  std::array<char, kFixedRoom> text;
  return {text.data(), WriteFixed(text.data(), value, decimals)};
}

/// std::to_chars rounds the exact value correctly; a zero has no sign here.
std::string Standard(double value, int decimals) {
  std::array<char, 512> text;
  std::string number(
      text.data(),
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals).ptr);
  if (number[0] == '-' && number.find_first_not_of("-0.") == std::string::npos) number.erase(0, 1);
  return number;
}

TEST(FixedNumber, WriteFixedIsTheStandardLibrarysFixedText) {
  std::mt19937_64 random(1);
  int wrong = 0;
  for (int i = 0; i < 200000 && wrong < 5; ++i) {
    const int decimals = static_cast<int>(random() % 21);
    // Coordinates of all sizes; every bit pattern now and then.
    double value =
        std::ldexp(static_cast<double>(static_cast<int64_t>(random())), static_cast<int>(random() % 70) - 80);
    if (i % 5 == 0) value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    if (Fixed(value, decimals) == Standard(value, decimals)) continue;
    ADD_FAILURE() << Fixed(value, decimals) << " for " << Standard(value, decimals) << ", " << decimals;
    ++wrong;
  }
}

TEST(FixedNumber, WriteFixedRoundsTiesToEvenAndCarries) {
  const struct {
    double value;
    int decimals;
    const char* text;
  } kRows[] = {{0.5, 0, "0"},
               {1.5, 0, "2"},
               {2.5, 0, "2"},
               {0.125, 2, "0.12"},
               {0.375, 2, "0.38"},
               {-0.125, 2, "-0.12"},
               {9.9999999, 3, "10.000"},
               {99999999.5, 0, "100000000"},
               {-0.0004, 3, "0.000"},
               {0.0, 4, "0.0000"},
               {-0.0, 0, "0"},
               {5817709.52685, 4, "5817709.5269"},
               {4503599627370495.5, 1, "4503599627370495.5"},
               {4503599627370496.0, 2, "4503599627370496.00"},
               {0.00048828125, 11, "0.00048828125"},
               {0.00048828124, 11, "0.00048828124"},
               {1844674407370955.25, 4, "1844674407370955.2500"},
               {123.0, 19, "123.0000000000000000000"}};
  for (const auto& row : kRows) EXPECT_EQ(Fixed(row.value, row.decimals), row.text);
  EXPECT_EQ(Fixed(1e308, 40).size(), 309u + 41u);
  EXPECT_EQ(Fixed(1.0, 99), Fixed(1.0, orv::tool::kMostDecimals));
}

TEST(FixedNumber, ParsePlainNumberReadsWhatTheStandardLibraryReads) {
  std::mt19937_64 random(2);
  int plain = 0, wrong = 0;
  for (int i = 0; i < 200000 && wrong < 5; ++i) {
    const std::string whole = std::to_string(random() % static_cast<uint64_t>(std::pow(10, random() % 10)));
    std::string text = (random() % 2 == 0 ? "-" : "") + whole;
    if (random() % 8 != 0) {
      text += '.';
      for (uint64_t digits = 1 + random() % 12; digits > 0; --digits)
        text += static_cast<char>('0' + random() % 10);
    }
    const size_t size = text.size();
    text += i % 3 == 0 ? "" : i % 3 == 1 ? ",52.5\n" : "\nabcdefgh";
    double value = NAN, expected = NAN;
    const char* const end = ParsePlainNumber(text.data(), text.data() + text.size(), value);
    if (!end) continue;  // more than 53 bits
    ++plain;
    std::from_chars(text.data(), text.data() + size, expected);
    if (end == text.data() + size && std::bit_cast<uint64_t>(value) == std::bit_cast<uint64_t>(expected))
      continue;
    ADD_FAILURE() << text << ": " << value;
    ++wrong;
  }
  EXPECT_GT(plain, 150000);
}

TEST(FixedNumber, ParsePlainNumberLeavesTheRestToOthers) {
  double value = 7.0;
  for (const char* const text : {"", "-", "+", ".5", "5.", "x", "-x", "5.x", "99999999999999999999",
                                 "9007199254740993", "0.12345678901234567890"}) {
    const std::string_view all(text);
    EXPECT_EQ(ParsePlainNumber(all.data(), all.data() + all.size(), value), nullptr) << text;
  }
  EXPECT_EQ(value, 7.0);
  const std::string_view more = "+5.25e3";
  EXPECT_EQ(ParsePlainNumber(more.data(), more.data() + more.size(), value), more.data() + 5);
  EXPECT_EQ(value, 5.25);
  // Characters just below and above the digits, at each place of the eight that are read together.
  for (const char other : {'/', ':', '\0', '\x7F', '\x80', '\xFF'}) {
    for (size_t place = 1; place < 8; ++place) {
      std::string text = "123456789";
      text[place] = other;
      EXPECT_EQ(ParsePlainNumber(text.data(), text.data() + text.size(), value), text.data() + place);
      EXPECT_EQ(value, std::stod(text.substr(0, place)));
    }
  }
}

}  // namespace
