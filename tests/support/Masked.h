// Masked.h: dumps without what changes from run to run.
#pragma once

#include <regex>
#include <string>

namespace orv::test {

/// A dump with "ADDRESS" for every address.
inline std::string Masked(const std::string& dump) {
  static const std::regex address("=0x[0-9a-fA-F]+|=[0-9A-F]{8,16}(?=[:\n])");
  return std::regex_replace(dump, address, "=ADDRESS");
}

/// A text with the exponents of its numbers brought to two digits: 1e+003 reads 1e+03.  How wide they are is
/// the platform's choice.
inline std::string TwoDigitExponents(const std::string& text) {
  static const std::regex wide("(e[+-])0([0-9]{2})");
  return std::regex_replace(text, wide, "$1$2");
}

}  // namespace orv::test
