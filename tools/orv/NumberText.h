// NumberText.h: numbers, angles and words as the command line reads and writes them, in no locale.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace orv::tool {

/// Without blanks and tabs at both ends.
std::string_view Trimmed(std::string_view text);

/// Compares without regard to the case of A to Z.
bool EqualFold(std::string_view a, std::string_view b);

/// A whole text that is a finite decimal number: an optional sign, digits with an optional point, an optional
/// exponent.  Else false, with `value` as it was.
bool ParseNumber(std::string_view text, double& value);
bool ParseInteger(std::string_view text, int& value);

/// A number, or degrees with minutes and seconds as LatLonToDegrees reads them, with d, D or the degree sign
/// (UTF-8) behind the degrees; prime signs (UTF-8) count as ' and ".
bool ParseAngle(std::string_view text, double& degrees);

/// The value of an option that is an area: WEST,SOUTH,EAST,NORTH, west below east and south below north.  Anything else
/// raises UsageError with the option's name.
std::array<double, 4> ReadArea(const char* option, const std::string& text);

/// The shortest text that reads back as the same number, with an exponent only below 1e-6 and from 1e15 on.
std::string ShortestNumber(double value);

/// Appends a number with that many decimals; what rounds to zero has no sign.
void AppendFixed(std::string& out, double value, int decimals);

/// A text of the user's for a message: at most 40 bytes of it, control characters as "?".
std::string Excerpt(std::string_view text);

}  // namespace orv::tool
