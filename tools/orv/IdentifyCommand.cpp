// orv identify: which system of the catalogue a definition is.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "orv/convert/Identify.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"
#include "tools/orv/Describe.h"
#include "tools/orv/NumberText.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

struct IdentifyOptions {
  std::string what;
  size_t limit = 0;
  bool json = false;
};

const char* KindText(SystemMatch::Kind kind) {
  return kind == SystemMatch::Equal ? "equal" : kind == SystemMatch::Alike ? "alike" : "different";
}

/// "0.12 mm apart", or nothing when it was not measured.
std::string DistanceText(double distance) {
  if (std::isnan(distance)) return "";
  if (std::isinf(distance)) return "not the same points have a place";
  const bool bSmall = distance < 0.9995, bLarge = distance >= 999.5;
  const double number = bSmall ? distance * 1e3 : bLarge ? distance * 1e-3 : distance;
  const char* const unit = bSmall ? "mm" : bLarge ? "km" : "m";
  if (bSmall && number < 1.0) return fmt::format("{:.2g} {} apart", number, unit);
  return fmt::format("{:.{}f} {} apart", number, number < 9.995 ? 2 : number < 99.95 ? 1 : 0, unit);
}

void WriteForPeople(const std::vector<SystemMatch>& matches) {
  for (const SystemMatch& match : matches) {
    const CSDef& known = *ORVKnownSystemsList.Enum(match.position);
    std::string line =
        fmt::format("{}\t{}\t{}", known.GetToken(), KindText(match.kind), known.GetShortName());
    const std::string distance = match.kind == SystemMatch::Equal ? "" : DistanceText(match.distance);
    if (!distance.empty()) line += '\t' + distance;
    WriteOutput(line + '\n');
    for (const SystemDifference& difference : match.differences) {
      WriteOutput(fmt::format("\t{}: {}, there {}\n", difference.what, difference.asked, difference.known));
    }
  }
}

Json ForPrograms(const std::vector<SystemMatch>& matches) {
  Json list = Json::array();
  for (const SystemMatch& match : matches) {
    const CSDef& known = *ORVKnownSystemsList.Enum(match.position);
    Json json;
    json["token"] = known.GetToken();
    const int code = known.Type() == CSTypeORV ? static_cast<const ORVDef&>(known).GetPOSC() : 0;
    if (code != 0) json["code"] = code;
    json["name"] = known.GetName();
    json["match"] = KindText(match.kind);
    if (std::isfinite(match.distance) && match.kind != SystemMatch::Equal) json["distance"] = match.distance;
    if (!match.differences.empty()) {
      json["differences"] = Json::array();
      for (const SystemDifference& difference : match.differences) {
        json["differences"].push_back(
            {{"what", difference.what}, {"asked", difference.asked}, {"known", difference.known}});
      }
    }
    list.push_back(json);
  }
  return list;
}

int RunIdentify(const IdentifyOptions& options) {
  const std::unique_ptr<CSDef> system = ReadSystem(options.what);
  LoadCatalogue();
  const std::vector<SystemMatch> matches = ORVIdentifySystem(*system, options.limit);
  const bool isKnown = !matches.empty() && matches.front().kind != SystemMatch::Different;
  if (options.json) {
    WriteOutput(JsonOf(ForPrograms(matches)));
  } else {
    WriteForPeople(matches);
  }
  if (isKnown) return ExitAllDone;
  Report(matches.empty() ? "no known system is like this one"
                         : "no known system places points alike; the nearest are shown with what differs");
  return ExitSomeLost;
}

}  // namespace

void AddIdentifyCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("identify", "Name the known systems that place points as a definition does");
  const auto options = std::make_shared<IdentifyOptions>();
  command->add_option("what", options->what, "A definition, or a file that holds one")
      ->type_name("SYSTEM")
      ->required();
  command
      ->add_option("--limit", options->limit, "At most so many; all of them when not given, or 3 near ones")
      ->type_name("N");
  command->add_flag("--json", options->json, "As JSON");
  command->footer(fmt::format(
      "Each line: token, match, short name.  Match is \"equal\" (the parameters agree), \"alike\" (written otherwise,\n"
      "but points are placed within a millimetre) or \"different\".  With neither of the first two the nearest are\n"
      "shown with everything in which they differ, and the exit status is 1.  With --json: an array of objects with token,\n"
      "code (EPSG, if any), name, match, distance (metres, if measured) and differences, an array of objects with what,\n"
      "asked and known.\n\n{}",
      kSystemArgumentHelp));
  command->callback([options, &status] { status = RunIdentify(*options); });
}

}  // namespace orv::tool
