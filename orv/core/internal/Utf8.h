// Utf8.h: well-formed UTF-8 [RFC3629].
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orv::internal {

/// Bytes of the well-formed sequence at the front; 0 when there is none.
inline size_t Utf8Length(std::string_view text) {
  const auto byte = [&](size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const auto follows = [&](size_t i, unsigned low = 0x80, unsigned high = 0xBF) {
    return byte(i) >= low && byte(i) <= high;
  };
  const unsigned lead = byte(0);
  if (lead < 0x80) return text.empty() ? 0 : 1;
  if (lead >= 0xC2 && lead <= 0xDF) return follows(1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {  // neither longer than needed nor a surrogate
    return follows(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF) && follows(2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {  // nor beyond U+10FFFF
    const bool second = follows(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF);
    return second && follows(2) && follows(3) ? 4 : 0;
  }
  return 0;
}

/// U+FFFD, which stands for bytes that are no text.
inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// The text with each byte that is no part of well-formed UTF-8 replaced by U+FFFD.
inline std::string WellFormedUtf8(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const size_t length = Utf8Length(text);
    out += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

}  // namespace orv::internal
