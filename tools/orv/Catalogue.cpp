#include "tools/orv/Catalogue.h"

#include <fmt/core.h>

#include <fstream>

#include "orv/core/ORVGlobals.h"
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

namespace {

/// "EPSG Geodetic Parameter Dataset v10.076 (2022-08-31)" from the comment that a file of the catalogue begins
/// with; "" for another file.
std::string DataSetOf(const std::string& path) {
  constexpr const char* kDataSet = "EPSG Geodetic Parameter Dataset v";
  std::ifstream file(path);
  for (std::string line; std::getline(file, line) && line.starts_with(';');) {
    const size_t begin = line.find(kDataSet);
    if (begin != std::string::npos) return line.substr(begin, line.find(',', begin) - begin);
  }
  return "";
}

}  // namespace

std::string VersionText() {
  const std::string program = "orv " ORV_VERSION;
  std::string path;
  if (!ORVFindConfigFile("system.ocf", path)) return program + "\ncatalogue: none found";
  const std::string dataSet = DataSetOf(path);
  if (dataSet.empty()) return fmt::format("{}\ncatalogue: {}, of the user's own", program, path);
  return fmt::format("{}\ncatalogue: {}, {}\n{}", program, dataSet, path, NoticeFor("EPSG:0"));
}

}  // namespace orv::tool
