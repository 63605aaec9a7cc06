#include "tools/orv/NumberText.h"

#include <fmt/core.h>

#include <charconv>

#include "orv/convert/internal/TypedText.h"
#include "orv/core/internal/Number.h"
#include "tools/orv/Command.h"
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

std::array<double, 4> ReadArea(const char* option, const std::string& text) {
  std::array<double, 4> edges{};
  std::string_view rest = text;
  for (double& edge : edges) {
    const size_t comma = rest.find(',');
    const bool isLast = &edge == &edges.back();
    if (!ParseNumber(Trimmed(rest.substr(0, comma)), edge) || (comma == std::string_view::npos) != isLast) {
      throw UsageError(fmt::format("{}: '{}' is not four numbers WEST,SOUTH,EAST,NORTH", option, text));
    }
    if (!isLast) rest.remove_prefix(comma + 1);
  }
  const auto [west, south, east, north] = edges;
  if (!(west < east && south < north)) {
    throw UsageError(fmt::format("{}: west must be below east, south below north", option));
  }
  return edges;
}

std::string ShortestNumber(double value) { return internal::ShortestNumber(value); }

void AppendFixed(std::string& out, double value, int decimals) {
  std::array<char, kFixedRoom> text;
  out.append(text.data(), WriteFixed(text.data(), value, decimals));
}

}  // namespace orv::tool
