// FixedNumber.h: the numbers of most lines of points, read and written several times as fast as by the standard library.
#pragma once

#include <cstddef>

namespace orv::tool {

/// Reads what most numbers look like: an optional sign, digits, and perhaps a point and digits, at most 19 of them and
/// below 2^53 without the point.  What ParseNumber makes of these characters, to the last bit.
///
/// @return behind the number, or null when the text at `begin` does not begin so; more of the number may follow.
const char* ParsePlainNumber(const char* begin, const char* end, double& value);

constexpr int kMostDecimals = 40;   ///< more are taken for as many
constexpr size_t kFixedRoom = 384;  ///< 309 digits, a point, a sign and 40 decimals at most

/// Writes a number with that many decimals, correctly rounded, to an array of at least kFixedRoom characters; what rounds
/// to zero has no sign.  @return behind the number.
char* WriteFixed(char* out, double value, int decimals);

}  // namespace orv::tool
