#include "orv/core/internal/Number.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace orv::internal {

namespace {

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

const char* SkipDigits(const char* at, const char* end) {
  while (end - at >= 8) {
    const size_t digits = LeadingDigits(at);
    at += digits;
    if (digits < 8) return at;
  }
  while (at != end && IsDigit(*at)) ++at;
  return at;
}

// The decimal number, without sign, that a text begins with.
struct Decimal {
  const char* end;       // where it ends; where it begins when there is none
  bool exact = false;    // the number is integer / 10^decimals, and both are exact as doubles
  uint64_t integer = 0;  // its digits, but for zeros at the end of a fraction
  size_t decimals = 0;   // those of them that stand behind the point
};

// The powers of ten that are exact as doubles, as far as 19 characters need them.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                   1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};

Decimal ScanDecimal(const char* begin, const char* end) {
  const char* const point = SkipDigits(begin, end);
  const bool hasPoint = point != end && *point == '.';
  const char* const behind = hasPoint ? SkipDigits(point + 1, end) : point;
  Decimal number = {behind};
  if (behind - begin == (hasPoint ? 1 : 0)) return {begin};  // no digits
  if (behind != end && (*behind == 'e' || *behind == 'E')) {
    const char* exponent = behind + 1;
    if (exponent != end && (*exponent == '+' || *exponent == '-')) ++exponent;
    number.end = SkipDigits(exponent, end);
    if (number.end != exponent) return number;
    number.end = behind;  // no exponent
  }
  const char* last = behind;
  if (hasPoint) {
    while (last - point > 8 && std::memcmp(last - 8, "00000000", 8) == 0) last -= 8;
    while (last[-1] == '0') --last;
  }
  if (last - begin > 19) return number;  // more than 64 bits hold, perhaps
  for (const char* at = begin; at != last; ++at) {
    if (at != point) number.integer = number.integer * 10 + static_cast<uint64_t>(*at - '0');
  }
  number.decimals = last > point ? static_cast<size_t>(last - point - 1) : 0;
  number.exact = number.integer <= uint64_t{1} << 53;
  return number;
}

// Whether a number that fits no double is too small rather than too large.
bool IsTiny(std::string_view number) {
  long long magnitude = 0;  // power of ten of the first significant digit
  bool significant = false;
  bool point = false;
  size_t at = 0;
  for (; at < number.size() && number[at] != 'e' && number[at] != 'E'; ++at) {
    const char c = number[at];
    if (c == '.') {
      point = true;
    } else if (IsDigit(c)) {
      significant = significant || c != '0';
      if (!point && significant) ++magnitude;
      if (point && !significant) --magnitude;
    }
  }
  if (at < number.size()) {
    const bool negative = number[at + 1] == '-';
    long long exponent = 0;
    for (++at; at < number.size(); ++at) {
      if (IsDigit(number[at]) && exponent < LLONG_MAX / 100) exponent = exponent * 10 + (number[at] - '0');
    }
    magnitude += negative ? -exponent : exponent;
  }
  return magnitude < 0;
}

}  // namespace

double ReadDecimal(std::string_view text, size_t* end) {
  const char* const begin = text.data();
  const bool negative = !text.empty() && *begin == '-';
  const size_t sign = negative || (!text.empty() && *begin == '+') ? 1 : 0;
  const char* const first = begin + sign;
  const Decimal number = ScanDecimal(first, begin + text.size());
  if (end) *end = number.end == first ? 0 : static_cast<size_t>(number.end - begin);
  if (number.end == first) return 0.0;
  double value = 0.0;
  if (number.exact) {
    value = static_cast<double>(number.integer) / kPowersOfTen[number.decimals];  // rounded once [Cli90]
  } else if (std::from_chars(first, number.end, value).ec == std::errc::result_out_of_range) {
    const std::string_view magnitude(first, static_cast<size_t>(number.end - first));
    value = IsTiny(magnitude) ? 0.0 : std::numeric_limits<double>::infinity();
  }
  return negative ? -value : value;
}

int ReadInteger(std::string_view text) {
  size_t at = 0;
  while (at < text.size() && IsSpace(text[at])) ++at;
  if (at == text.size()) return 0;
  bool negative = false;
  if (text[at] == '+' || text[at] == '-') negative = text[at++] == '-';
  int64_t value = 0;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    value = value * 10 + (text[at] - '0');
    if (value > int64_t{INT_MAX} + 1) value = int64_t{INT_MAX} + 1;
  }
  if (negative) value = -value;
  return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

int TruncateToInt(double value) {
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(INT_MAX)) return INT_MAX;
  if (value <= static_cast<double>(INT_MIN)) return INT_MIN;
  return static_cast<int>(value);
}

}  // namespace orv::internal
