#include "tools/orv/Catalogue.h"

#include <fmt/core.h>

#include "orv/datum/DatumList.h"
#include "orv/tables/EllipsoidList.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

/// The number behind "EPSG:", or 0.
int EpsgCode(const std::string& text) {
  int code = 0;
  return EqualFold(text.substr(0, 5), "EPSG:") && ParseInteger(text.substr(5), code) ? code : 0;
}

template <class List>
std::string Tokens(const List& list) {
  std::string tokens;
  for (int i = list.First(); i <= list.Last(); ++i) {
    if (!tokens.empty()) tokens += ", ";
    tokens += list.EnumToken(i);
  }
  return tokens;
}

}  // namespace

void LoadCatalogue() {
  static const bool loaded = [] {
    ORVKnownEllipsoidsList.Load(nullptr, true);
    ORVKnownDatumsList.Load(nullptr, true);
    return true;
  }();
  (void)loaded;
}

const EllipsoidDef& KnownEllipsoid(const std::string& text) {
  const EllipsoidList& list = ORVKnownEllipsoidsList;
  int index = list.FindByToken(text.c_str(), nullptr);
  if (index == 0) index = list.FindByName(text.c_str(), nullptr);
  if (index == 0) index = list.FindByPOSCNumber(EpsgCode(text));
  if (index == 0) throw UsageError(fmt::format("unknown ellipsoid '{}' (known: {})", text, Tokens(list)));
  return *list.Enum(index);
}

const DatumDef& KnownDatum(const std::string& text) {
  const DatumList& list = ORVKnownDatumsList;
  int index = list.FindByToken(text.c_str(), nullptr);
  if (index == 0) index = list.FindByName(text.c_str(), nullptr);
  if (index == 0) index = list.FindByPOSCNumber(EpsgCode(text), nullptr, 0);
  if (index == 0) throw UsageError(fmt::format("unknown datum '{}' (known: {})", text, Tokens(list)));
  return *list.Enum(index);
}

}  // namespace orv::tool
