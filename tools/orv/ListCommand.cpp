// orv list: entries of the known lists.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"
#include "tools/orv/Describe.h"

namespace orv::tool {

namespace {

struct Kind {
  const char* name;
  std::vector<KnownList> lists;
};

const std::vector<Kind> kKinds = {{"systems", {KnownListSystems}},
                                  {"datums", {KnownListDatums}},
                                  {"ellipsoids", {KnownListEllipsoids}},
                                  {"meridians", {KnownListMeridians}},
                                  {"units", {KnownListLinearUnits, KnownListAngularUnits}}};

struct ListOptions {
  std::string kind;
  std::vector<std::string> words;
  size_t limit = 0;
  bool json = false;
};

/// No field holds a tab or a line end, so that every line has four of them.
std::string Field(std::string text) {
  for (char& c : text) {
    if (c == '\t' || c == '\n' || c == '\r') c = ' ';
  }
  return text;
}

int RunList(const ListOptions& options) {
  LoadCatalogue();
  std::string words;
  for (const std::string& word : options.words) words += word + ' ';
  const auto kind =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& k) { return options.kind == k.name; });
  std::string text;
  Json json = Json::array();
  size_t found = 0;
  for (const KnownList list : kind->lists) {
    for (const KnownEntry& entry : ORVSearchKnown(list, words, options.limit)) {
      if (options.limit > 0 && found == options.limit) break;
      ++found;
      if (options.json) {
        json.push_back(
            {{"token", entry.token}, {"code", entry.code}, {"name", entry.name}, {"about", entry.about}});
      } else {
        text += fmt::format("{}\t{}\t{}\t{}\n", Field(entry.token),
                            entry.code == 0 ? "" : std::to_string(entry.code), Field(entry.name),
                            Field(entry.about));
      }
    }
  }
  WriteOutput(options.json ? JsonOf(json) : text);
  if (found > 0) return ExitAllDone;
  Report(words.empty() ? fmt::format("the catalogue has no {}", options.kind)
                       : fmt::format("nothing found among the {}", options.kind));
  return ExitSomeLost;
}

}  // namespace

void AddListCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("list", "List known systems, datums, ellipsoids, meridians or units");
  const auto options = std::make_shared<ListOptions>();
  std::vector<std::string> names;
  for (const Kind& kind : kKinds) names.emplace_back(kind.name);
  command->add_option("kind", options->kind, "What to list")->required()->check(CLI::IsMember(names));
  command->add_option("--search", options->words, "Only what holds all these words, best first")
      ->type_name("WORD ...");
  command->add_option("--limit", options->limit, "At most so many")
      ->type_name("N")
      ->check(CLI::PositiveNumber);
  command->add_flag("--json", options->json, "As JSON");
  command->footer(
      "One entry on each line: token, code (EPSG), name with its groups, and comment or area, separated by tabs.\n"
      "Words are searched in all of these, in any order and without regard to case: orv list systems --search utm 33\n"
      "Exit status 1 when nothing is found.");
  command->callback([options, &status] { status = RunList(*options); });
}

}  // namespace orv::tool
