// Number.h: numbers read from text, the same in every locale.  (Numbers are written with Format of Text.h.)
#pragma once

#include <string_view>

namespace orv::internal {

/// The longest decimal number that `text` begins with: an optional sign, digits with an optional point, an
/// optional exponent.  0 when there is none; no hexadecimal, no infinity or NaN, no leading blanks. Correctly
/// rounded; too large gives infinity, too small 0.
///
/// @param end  when not null, receives the number of characters used (0 when there is no number).
double ReadDecimal(std::string_view text, size_t* end = nullptr);

/// The longest decimal integer that `text` begins with, as atoi takes it (leading white space, optional
/// sign), clamped to 32 bits; 0 when there is none.
int ReadInteger(std::string_view text);

/// Truncation toward zero, clamped to the range of int; NaN gives 0.
int TruncateToInt(double value);

}  // namespace orv::internal
