// orv: the command line of ORVCore.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/shared/Exception.h"
#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"
#include "tools/orv/OptionTable.h"

namespace orv::tool {

namespace {

/// The hidden options with which the build makes completions and manual pages; they stand alone:
///   --print-completion bash|zsh|fish
///   --print-man [COMMAND [FILE]]   with the examples of the file; orv is the program itself
///   --print-commands               one on a line
/// @return whether it was one of them.
bool PrintsTable(const CLI::App& app, int argc, char** argv) {
  const auto argument = [&](int i) { return i < argc ? std::string(argv[i]) : std::string(); };
  const std::string what = argument(1);
  if (what != "--print-completion" && what != "--print-man" && what != "--print-commands") return false;
  const std::vector<CommandRow> table = ReadOptionTable(app);
  if (what == "--print-man") {
    const std::string examples = argument(3).empty() ? "" : ReadFile(argument(3));
    WriteOutput(ManualPageFor(argument(2) == "orv" ? "" : argument(2), table, ORV_VERSION, examples));
  } else if (what == "--print-commands") {
    for (const CommandRow& command : table) WriteOutput(command.name.empty() ? "" : command.name + "\n");
  } else {
    const std::string text = CompletionFor(argument(2), table);
    if (text.empty()) throw UsageError("--print-completion: bash, zsh or fish");
    WriteOutput(text);
  }
  FlushOutput();
  return true;
}

}  // namespace

}  // namespace orv::tool

int main(int argc, char** argv) {
  using namespace orv::tool;
  int status = ExitAllDone;
  CLI::App app{
      "Converts points between coordinate systems and shows definitions of such systems.\n"
      "x is longitude or easting, y latitude or northing, always in this order; angles are degrees, east and north\n"
      "positive.  Data goes to standard output, messages to standard error."};
  app.name("orv");
  app.set_version_flag("--version", &VersionText,
                       "Version of the program and of the catalogue, and its notice");
  app.add_option_function<std::string>(
         "--config", [](const std::string& folder) { orv::ORVSetConfigPath(folder.c_str()); },
         "Folder that is searched first for configuration files")
      ->type_name("FOLDER")
      ->trigger_on_parse();
  app.add_flag_callback(
      "--quiet,-q", [] { SetQuiet(true); }, "No messages but those of failures, and no progress");
  app.fallthrough();  // both also behind the subcommand
  app.require_subcommand(1);
  app.failure_message([](const CLI::App*, const CLI::Error& e) {
    return fmt::format("orv: {}\nTry orv --help or orv COMMAND --help.\n", e.what());
  });
  app.footer(
      "Exit status: 0 all done; 1 some points have no value in the target system or did not parse (each is reported);\n"
      "2 the arguments, a definition or a file cannot be used.");
  AddConvertCommand(app, status);
  AddLatLonCommand(app, status);
  AddListCommand(app, status);
  AddInfoCommand(app, status);
  AddIdentifyCommand(app, status);
  AddRouteCommand(app, status);
  AddDefCommand(app, status);
  AddCheckCommand(app, status);
  AddClipCommand(app, status);
  AddPlotCommand(app, status);
  AddExplainCommand(app, status);
  AddGridsCommand(app, status);
  AddWarpCommand(app, status);
  AddBenchCommand(app, status);

  try {
    if (PrintsTable(app, argc, argv)) return ExitAllDone;
    app.parse(argc, argv);
    FlushOutput();
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? ExitAllDone : ExitUsage;
  } catch (const std::exception& e) {  // UsageError and shr::Exception
    std::fflush(stdout);
    Report(e.what());
    return ExitUsage;
  }
  std::fflush(nullptr);
  std::_Exit(status);  // taking the lists apart would be a tenth of what a short command takes
}
