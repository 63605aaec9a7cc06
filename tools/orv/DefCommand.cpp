// orv def: a definition shown.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"
#include "tools/orv/SystemArgument.h"
#include "tools/orv/SystemText.h"

namespace orv::tool {

namespace {

struct DefOptions {
  std::string def;
  bool encoded = false;
  bool dump = false;
  bool json = false;
  bool text = false;  ///< the default
};

int RunDef(const DefOptions& options) {
  const std::unique_ptr<CSDef> system = ReadSystem(options.def);
  std::string text;
  if (options.encoded) {
    system->EncodeToText(text);
  } else if (options.dump) {
    system->DebugDump(text, 0);
  } else if (options.json) {
    text = SystemAsJson(*system);
  } else {
    text = SystemAsParameters(*system);
  }
  WriteOutput(text);
  return ExitAllDone;
}

}  // namespace

void AddDefCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("def", "Show a definition");
  const auto options = std::make_shared<DefOptions>();
  command->add_option("def", options->def, "The definition")->type_name("DEF")->required();
  auto* const text = command->add_flag(
      "--text", options->text,
      "As parameters, one on each line, which is the default; a file of them is a definition again");
  auto* const encoded =
      command->add_flag("--encoded", options->encoded, "As encoded text, for files and documents");
  auto* const dump =
      command->add_flag("--dump", options->dump, "All fields, for people who look for a mistake");
  auto* const json = command->add_flag("--json", options->json,
                                       "The parameters as a JSON object; numbers and flags as JSON has them");
  text->excludes(encoded)->excludes(dump)->excludes(json);
  encoded->excludes(dump)->excludes(json);
  dump->excludes(json);
  command->footer(kSystemArgumentHelp);
  command->callback([options, &status] { status = RunDef(*options); });
}

}  // namespace orv::tool
