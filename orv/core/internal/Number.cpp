#include "orv/core/internal/Number.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>

namespace orv::internal {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Length of the decimal number that the text begins with; 0 when there is none.
size_t DecimalLength(std::string_view text) {
  size_t at = 0;
  size_t digits = 0;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
  for (; at < text.size() && IsDigit(text[at]); ++at) ++digits;
  if (at < text.size() && text[at] == '.') {
    ++at;
    for (; at < text.size() && IsDigit(text[at]); ++at) ++digits;
  }
  if (digits == 0) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    size_t exponent = at + 1;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
    if (exponent < text.size() && IsDigit(text[exponent])) {
      while (exponent < text.size() && IsDigit(text[exponent])) ++exponent;
      at = exponent;
    }
  }
  return at;
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
  const size_t length = DecimalLength(text);
  if (end) *end = length;
  if (length == 0) return 0.0;
  const std::string_view number = text.substr(0, length);
  const char* first = number.data();
  const char* const last = first + length;
  if (*first == '+') ++first;  // from_chars knows no plus sign
  double value = 0.0;
  const std::from_chars_result result = std::from_chars(first, last, value);
  if (result.ec == std::errc::result_out_of_range) {
    value = IsTiny(number) ? 0.0 : std::numeric_limits<double>::infinity();
    if (number[0] == '-') value = -value;
  }
  return value;
}

int ReadInteger(std::string_view text) {
  size_t at = text.find_first_not_of(" \t\n\v\f\r");
  if (at == std::string_view::npos) return 0;
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
