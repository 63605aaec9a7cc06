#include "tools/orv/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

#include "orv/tables/LatLonText.h"

namespace orv::tool {

namespace {

char Fold(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string Replaced(std::string_view text, std::string_view from, char to) {
  std::string replaced;
  for (size_t at = 0; at < text.size();) {
    if (text.substr(at, from.size()) == from) {
      replaced += to;
      at += from.size();
    } else {
      replaced += text[at++];
    }
  }
  return replaced;
}

/// from_chars reads no "+"; one is skipped, but not in front of another sign.
std::string_view WithoutPlus(std::string_view text) {
  return text.size() > 1 && text[0] == '+' && text[1] != '-' ? text.substr(1) : text;
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool EqualFold(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Fold(a[i]) != Fold(b[i])) return false;
  }
  return true;
}

bool ParseNumber(std::string_view text, double& value) {
  const std::string_view digits = WithoutPlus(text);
  double number = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  // Underflow is reported as out of range too; such a text is no coordinate.
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) return false;
  value = number;
  return true;
}

bool ParseInteger(std::string_view text, int& value) {
  const std::string_view digits = WithoutPlus(text);
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return false;
  value = number;
  return true;
}

bool ParseAngle(std::string_view text, double& degrees) {
  if (ParseNumber(text, degrees)) return true;
  if (text.find('\0') != std::string_view::npos) return false;
  std::string plain = Replaced(text, "\xC2\xB0", 'd');  // degree sign
  plain = Replaced(plain, "\xE2\x80\xB2", '\'');        // prime
  plain = Replaced(plain, "\xE2\x80\xB3", '"');         // double prime
  double value = 0.0;
  if (!LatLonToDegrees(plain.c_str(), &value, 'd')) return false;
  degrees = value;
  return true;
}

std::string ShortestNumber(double value) {
  std::array<char, 64> text;
  const double size = std::fabs(value);
  const bool plain = value == 0.0 || (size >= 1e-6 && size < 1e15);
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value,
                                          plain ? std::chars_format::fixed : std::chars_format::scientific);
  return error == std::errc() ? std::string(text.data(), end) : std::string();
}

void AppendFixed(std::string& out, double value, int decimals) {
  std::array<char, 384> text;  // 309 digits, a point, a sign and 40 decimals at most
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value,
                                          std::chars_format::fixed, decimals < 40 ? decimals : 40);
  std::string_view number(text.data(), error == std::errc() ? static_cast<size_t>(end - text.data()) : 0);
  if (number.starts_with('-') && number.find_first_not_of("-0.") == std::string_view::npos)
    number.remove_prefix(1);
  out += number;
}

std::string Excerpt(std::string_view text) {
  std::string excerpt(text.substr(0, 40));
  for (char& c : excerpt) {
    if (static_cast<unsigned char>(c) < 32 || c == 127) c = '?';
  }
  if (text.size() > 40) excerpt += "...";
  return excerpt;
}

}  // namespace orv::tool
