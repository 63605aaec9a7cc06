// Number.h: numbers read from text and the shortest texts of numbers, the same in every locale.  (Numbers of a stated form
// are written with Format of Text.h.)
#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace orv::internal {

/// Whether eight characters are digits, 0x30 to 0x39: the upper half of each is 3, and still is when 6 is added.
inline bool AreEightDigits(const char* at) {
  constexpr uint64_t kEach = 0x0101010101010101u;
  uint64_t eight;
  std::memcpy(&eight, at, sizeof eight);
  const uint64_t three = kEach * 0x30;
  const uint64_t plusSix = (eight & kEach * 0x7f) + kEach * 0x06;  // carries into no other character
  return (((eight ^ three) | (plusSix ^ three)) & kEach * 0xf0) == 0;
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
