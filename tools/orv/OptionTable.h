// OptionTable.h: the commands and options of the program as plain rows: completions and manual pages are made of them.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace orv::tool {

struct OptionRow {
  std::vector<std::string> names;    ///< "--from", "-f"; one name without dashes for a positional argument
  std::string value;                 ///< what its value is called: "FILE", "DEF"; "" for a flag
  std::vector<std::string> choices;  ///< the only values there are; none: any
  std::string text;
  std::string preset;  ///< what holds when it is not given; "" when nothing is to be told
  bool bPositional = false;
  bool bRequired = false;
  bool bMany = false;  ///< whether it takes several values
};

struct CommandRow {
  std::string name;  ///< "" for the program itself
  std::string text;
  std::string footer;
  std::vector<OptionRow> options;
};

/// The program first, then its commands in the order in which they were added.
std::vector<CommandRow> ReadOptionTable(const CLI::App& app);

/// A text of the completion for a shell: "bash", "zsh" or "fish"; "" for another one.
std::string CompletionFor(const std::string& shell, const std::vector<CommandRow>& table);

/// The page of a command, or of the program for "", in the man macros.
///
/// @param version   of the program.
/// @param examples  a text of examples, see ExamplesFor in ManualPage.cpp; may be empty.
/// Raises UsageError when there is no such command.
std::string ManualPageFor(const std::string& command, const std::vector<CommandRow>& table,
                          const std::string& version, const std::string& examples);

}  // namespace orv::tool
