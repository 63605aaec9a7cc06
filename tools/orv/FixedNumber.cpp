#include "tools/orv/FixedNumber.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace orv::tool {

namespace {

constexpr int kPowers = 20;
constexpr std::array<uint64_t, kPowers> kPowerOf10 = [] {
  std::array<uint64_t, kPowers> powers{};
  uint64_t power = 1;
  for (uint64_t& one : powers) {
    one = power;
    power *= 10;
  }
  return powers;
}();

/// |value| times 10^decimals, rounded to the nearest integer, ties to even, by exact arithmetic.
///
/// @return false when the value is not 0 and not from 2^-11 to below 2^52, and when the result has more than 64 bits; the
///         caller has another way.
bool ScaledToInteger(double value, int decimals, uint64_t& scaled) {
#ifdef __SIZEOF_INT128__
  __extension__ using Wide = unsigned __int128;
  const auto bits = std::bit_cast<uint64_t>(value);
  const int biased = static_cast<int>(bits >> 52 & 0x7FF);
  if (decimals >= kPowers || biased < 1023 - 11 || biased >= 1023 + 52) {
    scaled = 0;
    return value == 0.0 && decimals < kPowers;
  }
  // The value is significand / 2^shift; what the shift drops lies within the lower 64 bits of the product.
  const int shift = 1023 + 52 - biased;  // 1 to 63
  const uint64_t significand = (bits & ((uint64_t{1} << 52) - 1)) | uint64_t{1} << 52;
  const Wide product = Wide{significand} * kPowerOf10[static_cast<size_t>(decimals)];
  const auto high = static_cast<uint64_t>(product >> 64), low = static_cast<uint64_t>(product);
  if (high >> shift != 0) return false;
  const uint64_t whole = high << (64 - shift) | low >> shift;
  const uint64_t rest = low & ((uint64_t{1} << shift) - 1), half = uint64_t{1} << (shift - 1);
  scaled = whole + (rest > half || (rest == half && (whole & 1) != 0) ? 1 : 0);
  return scaled != 0 || whole == 0;
#else
  (void)value;
  (void)decimals;
  (void)scaled;
  return false;
#endif
}

/// The digits of a number below 10^8 as bytes 0 to 9, the first in the lowest byte.
///
/// Fours, then pairs, then digits lie side by side in one integer; n * 10486 >> 20 is n / 100 below 10^4, and
/// n * 103 >> 10 is n / 10 below 100.
uint64_t EightDigits(uint32_t value) {
  const uint64_t fours = value / 10000 | uint64_t{value % 10000} << 32;
  const uint64_t hundreds = (fours * 10486 >> 20) & 0x0000007F0000007F;
  const uint64_t pairs = hundreds | (fours - 100 * hundreds) << 16;
  const uint64_t tens = (pairs * 103 >> 10) & 0x000F000F000F000F;
  return tens | (pairs - 10 * tens) << 8;
}

void PutDigits(char* to, uint64_t digits) {
  digits |= 0x3030303030303030;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(to, &digits, 8);
    return;
  }
  for (int i = 0; i < 8; ++i, digits >>= 8) to[i] = static_cast<char>(digits & 0xFF);
}

/// An integer with a point in front of its last digits, and at least one digit in front of the point.
char* WriteInteger(char* out, uint64_t scaled, int decimals) {
  constexpr uint64_t kEight = 100000000;
  constexpr ptrdiff_t kDigits = 24;
  std::array<char, 2 * kDigits> digits;  // the second half is copied and does not count
  const uint64_t high = scaled / kEight;
  const uint64_t low = EightDigits(static_cast<uint32_t>(scaled - high * kEight));
  PutDigits(digits.data() + 16, low);
  ptrdiff_t zeros = 16 + std::countr_zero(low | uint64_t{1} << 63) / 8;
  if (high > 0 || decimals >= 8) {
    const uint64_t top = high / kEight, middle = EightDigits(static_cast<uint32_t>(high - top * kEight));
    PutDigits(digits.data() + 8, middle);
    if (high > 0) zeros = 8 + std::countr_zero(middle | uint64_t{1} << 63) / 8;
    if (top > 0 || decimals >= 16) {
      const uint64_t first = EightDigits(static_cast<uint32_t>(top));
      PutDigits(digits.data(), first);
      if (top > 0) zeros = std::countr_zero(first | uint64_t{1} << 63) / 8;
    }
  }
  const ptrdiff_t point = kDigits - decimals;
  zeros = std::min(zeros, point - 1);
  std::memcpy(out, digits.data() + zeros, kDigits);
  out += point - zeros;
  if (decimals == 0) return out;
  *out++ = '.';
  std::memcpy(out, digits.data() + point, kDigits);
  return out + decimals;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Reads the digits at `at`, up to all; they join those read before.  @return behind them.
///
/// Eight bytes are looked at together: the first that is no digit is found, the digits in front of it move to the end of
/// the integer, and neighbours are joined: digits to pairs, pairs to fours, fours to eight.
const char* ReadDigits(const char* at, const char* end, uint64_t& digits) {
  while (std::endian::native == std::endian::little && end - at >= 8) {
    uint64_t bytes = 0;
    std::memcpy(&bytes, at, 8);
    constexpr uint64_t kEach = 0x0101010101010101;
    const uint64_t values = bytes - '0' * kEach;
    // A byte below '0' borrows, one above '9' reaches 0x80 when 0x76 is added: the first such byte has its high bit set.
    const uint64_t others = (values | (values + 0x76 * kEach) | bytes) & 0x80 * kEach;
    const int count = others == 0 ? 8 : std::countr_zero(others) / 8;
    if (count == 0) return at;
    const uint64_t moved = values << (64 - 8 * count);
    const uint64_t pairs = (moved * 10 + (moved >> 8)) & 0x00FF00FF00FF00FF;
    const uint64_t fours = (pairs * 100 + (pairs >> 16)) & 0x0000FFFF0000FFFF;
    digits = digits * kPowerOf10[static_cast<size_t>(count)] + ((fours * 10000 + (fours >> 32)) & 0xFFFFFFFF);
    at += count;
    if (count < 8) return at;
  }
  for (; at != end && IsDigit(*at); ++at) digits = digits * 10 + static_cast<uint64_t>(*at - '0');
  return at;
}

}  // namespace

const char* ParsePlainNumber(const char* begin, const char* end, double& value) {
  // Both are exact in 53 bits, so that one division rounds correctly.
  constexpr std::array<double, kPowers> kExactPower = [] {
    std::array<double, kPowers> powers{};
    for (size_t i = 0; i < powers.size(); ++i) powers[i] = static_cast<double>(kPowerOf10[i]);
    return powers;
  }();
  const char* at = begin;
  const bool negative = at != end && *at == '-';
  if (at != end && (*at == '-' || *at == '+')) ++at;
  const char* const first = at;
  uint64_t digits = 0;
  at = ReadDigits(at, end, digits);
  if (at == first) return nullptr;
  ptrdiff_t count = at - first, decimals = 0;
  if (at != end && *at == '.') {
    const char* const point = ++at;
    at = ReadDigits(at, end, digits);
    decimals = at - point;
    count += decimals;
    if (decimals == 0) return nullptr;
  }
  if (count >= kPowers || digits >> 53 != 0) return nullptr;
  const double size = static_cast<double>(digits) / kExactPower[static_cast<size_t>(decimals)];
  value = negative ? -size : size;
  return at;
}

char* WriteFixed(char* out, double value, int decimals) {
  decimals = std::clamp(decimals, 0, kMostDecimals);
  uint64_t scaled = 0;
  if (!ScaledToInteger(value, decimals, scaled)) {
    char* const end = std::to_chars(out, out + kFixedRoom, value, std::chars_format::fixed, decimals).ptr;
    const std::string_view number(out, static_cast<size_t>(end - out));
    if (!number.starts_with('-') || number.find_first_not_of("-0.") != std::string_view::npos) return end;
    return std::copy(out + 1, end, out);
  }
  if (value < 0.0 && scaled != 0) *out++ = '-';
  return WriteInteger(out, scaled, decimals);
}

}  // namespace orv::tool
