#include "tools/orv/OptionTable.h"

#include <CLI/CLI.hpp>

namespace orv::tool {

namespace {

/// The values in "TEXT:{auto,yes,no}", which is how a set of choices writes itself into the name of a type.
std::vector<std::string> ChoicesIn(const std::string& type) {
  std::vector<std::string> choices;
  const size_t open = type.find('{'), close = type.find('}');
  if (open == std::string::npos || close == std::string::npos) return choices;
  for (size_t at = open + 1; at <= close;) {
    const size_t end = std::min(type.find(',', at), close);
    choices.push_back(type.substr(at, end - at));
    at = end + 1;
  }
  return choices;
}

OptionRow RowOf(const CLI::Option& option) {
  OptionRow row;
  row.bPositional = !option.nonpositional();
  if (row.bPositional) {
    row.names.push_back(option.get_name());
  } else {
    for (const std::string& name : option.get_lnames()) row.names.push_back("--" + name);
    for (const std::string& name : option.get_snames()) row.names.push_back("-" + name);
  }
  const std::string type = option.get_type_name();
  row.choices = ChoicesIn(type);
  if (option.get_expected_max() > 0 && option.get_type_size_max() > 0) {
    const std::string name = type.substr(0, type.find_first_of(":"));
    row.value = row.choices.empty() ? name : "WORD";
    if (row.value.empty()) row.value = "TEXT";
  }
  row.text = option.get_description();
  row.preset = option.get_default_str();
  row.bRequired = option.get_required();
  row.bMany = option.get_items_expected_max() > 1;
  return row;
}

CommandRow RowOf(const CLI::App& app, const std::string& name) {
  CommandRow row{name, app.get_description(), app.get_footer(), {}};
  for (const CLI::Option* const option : app.get_options({})) {
    if (!option->get_group().empty()) row.options.push_back(RowOf(*option));
  }
  return row;
}

}  // namespace

std::vector<CommandRow> ReadOptionTable(const CLI::App& app) {
  std::vector<CommandRow> table = {RowOf(app, "")};
  for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (!command->get_group().empty()) table.push_back(RowOf(*command, command->get_name()));
  }
  return table;
}

}  // namespace orv::tool
