// TypedText.h: words, numbers and angles as people type them, read in no locale.
//
// Header only, so that the command line shares it: the module shows none of it.
#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "orv/core/internal/Text.h"
#include "orv/tables/LatLonText.h"

namespace orv::internal {

/// Without blanks and tabs at both ends.
inline std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// Compares without regard to the case of A to Z.
inline bool EqualFold(std::string_view a, std::string_view b) {
  const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (fold(a[i]) != fold(b[i])) return false;
  }
  return true;
}

/// from_chars reads no "+"; one is skipped, but not in front of another sign.
inline std::string_view WithoutPlus(std::string_view text) {
  return text.size() > 1 && text[0] == '+' && text[1] != '-' ? text.substr(1) : text;
}

/// A whole text that is a finite decimal number: an optional sign, digits with an optional point, an optional
/// exponent.  Else false, with `value` as it was.
inline bool ParseNumber(std::string_view text, double& value) {
  const std::string_view digits = WithoutPlus(text);
  double number = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  // Underflow is reported as out of range too; such a text is no coordinate.
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) return false;
  value = number;
  return true;
}

/// A number, or degrees with minutes and seconds as LatLonToDegrees reads them, with d, D or the degree sign
/// (UTF-8) behind the degrees; prime signs (UTF-8) count as ' and ".
inline bool ParseAngle(std::string_view text, double& degrees) {
  const auto replaced = [](std::string_view in, std::string_view from, char to) {
    std::string out;
    for (size_t at = 0; at < in.size();) {
      const bool here = in.substr(at, from.size()) == from;
      out += here ? to : in[at];
      at += here ? from.size() : 1;
    }
    return out;
  };
  if (ParseNumber(text, degrees)) return true;
  if (text.find('\0') != std::string_view::npos) return false;
  std::string plain = replaced(text, "\xC2\xB0", 'd');  // degree sign
  plain = replaced(plain, "\xE2\x80\xB2", '\'');        // prime
  plain = replaced(plain, "\xE2\x80\xB3", '"');         // double prime
  double value = 0.0;
  if (!LatLonToDegrees(plain.c_str(), &value, 'd')) return false;
  degrees = value;
  return true;
}

}  // namespace orv::internal
