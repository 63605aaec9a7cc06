#include "tools/orv/Catalogue.h"

#include "orv/core/Startup.h"
#include "orv/datum/DatumList.h"
#include "orv/system/CSList.h"
#include "orv/tables/EllipsoidList.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

void LoadCatalogue() {
  static const bool loaded = [] {
    ORVInitialize(nullptr, true);
    return true;
  }();
  (void)loaded;
}

namespace {

int Find(KnownList list, const std::string& text) {
  const int index = ORVFindKnown(list, text);
  if (index == 0) throw UsageError(ORVUnknownText(list, text));
  return index;
}

}  // namespace

const CSDef& KnownSystem(const std::string& text) {
  return *ORVKnownSystemsList.Enum(Find(KnownListSystems, text));
}

const DatumDef& KnownDatum(const std::string& text) {
  return *ORVKnownDatumsList.Enum(Find(KnownListDatums, text));
}

const EllipsoidDef& KnownEllipsoid(const std::string& text) {
  return *ORVKnownEllipsoidsList.Enum(Find(KnownListEllipsoids, text));
}

std::string NoticeFor(const std::string& token) {
  const std::string authority = token.substr(0, token.find(':'));
  if (!EqualFold(authority, "EPSG") && !EqualFold(authority, "ORV")) return "";
  return "Values derived from the EPSG Geodetic Parameter Dataset, owned by IOGP, used under the EPSG Terms of Use "
         "(https://epsg.org/terms-of-use.html); without warranty.";
}

}  // namespace orv::tool
