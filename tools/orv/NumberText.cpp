#include "tools/orv/NumberText.h"

#include <array>
#include <charconv>

#include "orv/convert/internal/TypedText.h"
#include "orv/core/internal/Number.h"
#include "tools/orv/FixedNumber.h"

namespace orv::tool {

std::string_view Trimmed(std::string_view text) { return internal::Trimmed(text); }
bool EqualFold(std::string_view a, std::string_view b) { return internal::EqualFold(a, b); }
bool ParseNumber(std::string_view text, double& value) { return internal::ParseNumber(text, value); }
bool ParseAngle(std::string_view text, double& degrees) { return internal::ParseAngle(text, degrees); }
std::string Excerpt(std::string_view text) { return internal::Excerpt(text); }

bool ParseInteger(std::string_view text, int& value) {
  const std::string_view digits = internal::WithoutPlus(text);
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return false;
  value = number;
  return true;
}

std::string ShortestNumber(double value) { return internal::ShortestNumber(value); }

void AppendFixed(std::string& out, double value, int decimals) {
  std::array<char, kFixedRoom> text;
  out.append(text.data(), WriteFixed(text.data(), value, decimals));
}

}  // namespace orv::tool
