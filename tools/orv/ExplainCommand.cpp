// orv explain: the plan of a conversion, step by step.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "orv/convert/Explanation.h"
#include "tools/orv/Command.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

struct ExplainOptions {
  std::string from;
  std::string to;
  bool json = false;
};

int RunExplain(const ExplainOptions& options) {
  const std::unique_ptr<CSDef> from = ReadSystem(options.from, "source system"),
                               to = ReadSystem(options.to, "target system");
  const Explanation explanation = orv::Conversion::Create(*from, *to).Explain();
  WriteOutput(options.json ? explanation.ToJson() : explanation.ToText());
  return ExitAllDone;
}

}  // namespace

void AddExplainCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand(
      "explain", "Show what a conversion does, its grids and accuracy, and what else there is");
  const auto options = std::make_shared<ExplainOptions>();
  command->add_option("from", options->from, "System of the points that would be read")
      ->type_name("FROM")
      ->required();
  command->add_option("to", options->to, "System of the points that would be written")
      ->type_name("TO")
      ->required();
  command->add_flag("--json", options->json, "As JSON");
  command->footer(kSystemArgumentHelp);
  command->callback([options, &status] { status = RunExplain(*options); });
}

}  // namespace orv::tool
