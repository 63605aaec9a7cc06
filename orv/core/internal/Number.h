// Number.h: numbers read from text and the shortest texts of numbers, the same in every locale.  (Numbers of a stated form
// are written with Format of Text.h.)
#pragma once

#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "orv/core/internal/Text.h"

namespace orv::internal {

/// How many of eight characters, from the first on, are digits.
inline size_t LeadingDigits(const char* at) {
  const uint64_t others = Within(EightAt(at), '0', '9') ^ 0x8080808080808080u;
  return static_cast<size_t>(std::countl_zero(others)) / 8;
}

/// The longest decimal number that `text` begins with: an optional sign, digits with an optional point, an
/// optional exponent.  0 when there is none; no hexadecimal, no infinity or NaN, no leading blanks. Correctly
/// rounded; too large gives infinity, too small 0.
///
/// @param end  when not null, receives the number of characters used (0 when there is no number).
double ReadDecimal(std::string_view text, size_t* end = nullptr);

/// The longest decimal integer that `text` begins with, as atoi takes it (leading white space, optional
/// sign), clamped to 32 bits; 0 when there is none.
int ReadInteger(std::string_view text);

/// The shortest text that reads back as the same number, with an exponent only below 1e-6 and from 1e15 on; "inf" and
/// "nan" for what is none.  Header only, so that the command line shares it.
inline std::string ShortestNumber(double value) {
  char text[64];
  const double size = std::fabs(value);
  const bool isPlain = value == 0.0 || (size >= 1e-6 && size < 1e15);
  const std::to_chars_result result = std::to_chars(
      text, text + sizeof text, value, isPlain ? std::chars_format::fixed : std::chars_format::scientific);
  return std::string(text, result.ptr);
}

/// Truncation toward zero, clamped to the range of int; NaN gives 0.
int TruncateToInt(double value);

}  // namespace orv::internal
