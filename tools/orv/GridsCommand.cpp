// orv grids: the grid files of datum shifts, found and missing.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "orv/convert/GridSearch.h"
#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"
#include "tools/orv/Describe.h"

namespace orv::tool {

namespace {

Json Describe(const GridSource& source) {
  Json json;
  json["method"] = DatumDef::MethodToName(source.method);
  json["found"] = source.Found();
  json["wanted"] = source.wanted.empty() ? "no file is set" : source.wanted;
  if (source.Found()) {
    json["folder"] = source.folder;
    Json files = Json::array();
    for (const GridFile& file : source.files) {
      Json entry;
      entry["path"] = file.path;
      entry["size"] = file.size;
      entry["crc32"] = fmt::format("{:08x}", file.crc32);
      Json grids = Json::array();
      for (const GridExtent& extent : file.extents) {
        grids.push_back({{"name", extent.name},
                         {"west", extent.west},
                         {"south", extent.south},
                         {"east", extent.east},
                         {"north", extent.north}});
      }
      entry["grids"] = grids;
      files.push_back(entry);
    }
    json["files"] = files;
    return json;
  }
  if (!source.problem.empty()) json["problem"] = source.problem;
  json["searched"] = source.folders;
  return json;
}

int RunGrids(bool asJson) {
  LoadCatalogue();  // which may set the places
  Json all = Json::array();
  for (const GridSource& source : ORVListGrids()) all.push_back(Describe(source));
  WriteDescription(all, asJson);
  return ExitAllDone;
}

}  // namespace

void AddGridsCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand(
      "grids", "List the grid files of datum shifts that are found, and where others are looked for");
  const auto json = std::make_shared<bool>(false);
  command->add_flag("--json", *json, "As JSON");
  command->callback([json, &status] { status = RunGrids(*json); });
}

}  // namespace orv::tool
