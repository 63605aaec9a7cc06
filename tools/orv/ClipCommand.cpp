// orv clip: the lines and polygons of a GeoJSON file, clipped to what a projection shows, and projected.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tools/orv/Command.h"
#include "tools/orv/MapClip.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

struct ClipArguments {
  std::string system;
  std::string file = "-";
  int precision = 3;
};

int RunClip(const ClipArguments& arguments) {
  MapClip clip(*ReadSystem(arguments.system));
  ClipTally tally;
  std::string text = "{\"type\":\"FeatureCollection\",\"features\":[";
  const char* separator = "\n";
  for (GeoFeature& feature : ReadGeoJson(ReadFile(arguments.file), arguments.file)) {
    feature.shape = clip.Clip(feature.shape, tally, nullptr);
    if (feature.shape.lines.empty() && feature.shape.polygons.empty()) continue;
    text += separator + WriteGeoFeature(feature, arguments.precision);
    separator = ",\n";
  }
  WriteOutput(text + "\n]}\n");
  Report(fmt::format("{} whole, {} clipped, {} of them split, {} dropped", tally.whole, tally.clipped,
                     tally.split, tally.dropped));
  if (tally.lost == 0) return ExitAllDone;
  Report(fmt::format("{} points have no place in the system and are left out", tally.lost));
  return ExitSomeLost;
}

}  // namespace

void AddClipCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("clip", "Clip lines and polygons to what a projection shows, and project them");
  const auto arguments = std::make_shared<ClipArguments>();
  command->add_option("--in", arguments->system, "System of the map")->type_name("DEF")->required();
  command->add_option("file", arguments->file, "GeoJSON file; standard input when not given, or -")
      ->type_name("FILE");
  command->add_option("--precision,-p", arguments->precision, "Decimals of the coordinates")
      ->check(CLI::Range(0, 15))
      ->capture_default_str();
  command->footer(
      std::string("Longitudes and latitudes are on the system's own datum.  Writes GeoJSON; what is "
                  "not seen at all is left out.\n\n") +
      kSystemArgumentHelp);
  command->callback([arguments, &status] { status = RunClip(*arguments); });
}

}  // namespace orv::tool
