#include "orv/interop/Interchange.h"

#include <iterator>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"
#include "orv/interop/internal/TextSystem.h"

ORV_UNIT("Interchange")

namespace orv {

namespace {

constexpr const char* kDialectNames[] = {"WKT2:2019", "WKT1 (GDAL)", "WKT1 (ESRI)", "PROJ string"};

constexpr const char* kWktKeywords[] = {
    "PROJCS",        "GEOGCS",   "GEOCCS",        "COMPD_CS",       "LOCAL_CS",      "VERT_CS",
    "FITTED_CS",     "PROJCRS",  "GEOGCRS",       "PROJECTEDCRS",   "GEODCRS",       "BOUNDCRS",
    "COMPOUNDCRS",   "VERTCRS",  "GEOGRAPHICCRS", "GEODETICCRS",    "ENGCRS",        "TIMECRS",
    "PARAMETRICCRS", "IMAGECRS", "VERTICALCRS",   "ENGINEERINGCRS", "DERIVEDPROJCRS"};

std::string_view WithoutSpace(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

}  // namespace

const char* ORVTextDialectName(TextDialect dialect) {
  const auto index = static_cast<size_t>(dialect);
  return index < std::size(kDialectNames) ? kDialectNames[index] : nullptr;
}

std::string ORVWriteText(const ORVDef& system, TextDialect dialect, bool indented) {
  if (!ORVTextDialectName(dialect)) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return std::string();
  }
  const internal::TextSystem text = internal::DescribeSystem(system, dialect);
  return dialect == TextDialectProj ? internal::WriteProjString(text)
                                    : internal::WriteWkt(text, dialect, indented);
}

std::unique_ptr<ORVDef> ORVReadText(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
  const bool isProj = !ORVLooksLikeWkt(text) && ORVLooksLikeProjString(text);
  return internal::DefinitionOf(isProj ? internal::ReadProjString(text, {}) : internal::ReadWkt(text));
}

bool ORVLooksLikeWkt(std::string_view text) {
  text = WithoutSpace(text);
  const size_t end = text.find_first_of("[( \t\r\n");
  if (end == std::string_view::npos) return false;
  const std::string keyword(text.substr(0, end));
  const std::string_view rest = WithoutSpace(text.substr(end));
  if (rest.empty() || (rest[0] != '[' && rest[0] != '(')) return false;
  for (const char* const known : kWktKeywords) {
    if (internal::EqualIgnoringCase(keyword, known)) return true;
  }
  return false;
}

bool ORVLooksLikeProjString(std::string_view text) {
  if (text.find("+proj=") != std::string_view::npos) return true;
  text = WithoutSpace(text);
  return text.substr(0, 5) == "proj=" || text.substr(0, 6) == "+init=";
}

}  // namespace orv
