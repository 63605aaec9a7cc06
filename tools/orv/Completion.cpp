// Completions for three shells, made from the option table.
#include <fmt/core.h>

#include <algorithm>

#include "tools/orv/OptionTable.h"

namespace orv::tool {

namespace {

std::string Joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

/// In single quotes of bash and zsh; `more` has further characters that get a backslash, as _arguments wants it.
std::string Quoted(const std::string& text, const char* more = "") {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      if (std::string_view(more).find(c) != std::string_view::npos) quoted += '\\';
      quoted += c == '\n' ? ' ' : c;
    }
  }
  return quoted + "'";
}

/// In single quotes of fish, in which a backslash escapes.
std::string FishQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') quoted += '\\';
    quoted += c == '\n' ? ' ' : c;
  }
  return quoted + "'";
}

std::vector<std::string> CommandNames(const std::vector<CommandRow>& table) {
  std::vector<std::string> names;
  for (const CommandRow& command : table) {
    if (!command.name.empty()) names.push_back(command.name);
  }
  return names;
}

/// The command's own options, and those of the program that may stand behind a command.
std::vector<OptionRow> AllOptions(const std::vector<CommandRow>& table, const CommandRow& command) {
  std::vector<OptionRow> options = command.options;
  if (command.name.empty()) return options;
  for (const OptionRow& option : table.front().options) {
    const bool bOwn = std::any_of(options.begin(), options.end(),
                                  [&](const OptionRow& other) { return other.names == option.names; });
    if (!bOwn && option.names.front() != "--version") options.push_back(option);
  }
  return options;
}

const OptionRow* Positional(const CommandRow& command) {
  for (const OptionRow& option : command.options) {
    if (option.bPositional) return &option;
  }
  return nullptr;
}

/// What bash offers for a value.
std::string BashValues(const OptionRow& option) {
  if (!option.choices.empty()) return "compgen -W " + Quoted(Joined(option.choices, " ")) + " -- \"$cur\"";
  if (option.value == "FOLDER") return "compgen -d -- \"$cur\"";
  if (option.value == "FILE" || option.value == "DEF") return "compgen -f -- \"$cur\"";
  return "";
}

std::string BashReply(const std::string& values) {
  return values.empty() ? "return" : "mapfile -t COMPREPLY < <(" + values + "); return";
}

std::string Bash(const std::vector<CommandRow>& table) {
  std::string text =
      "# bash completion for orv, made from the options of the program\n"
      "_orv() {\n"
      "  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} command= options= i\n"
      "  COMPREPLY=()\n"
      "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
      "    case ${COMP_WORDS[i]} in\n";
  for (const OptionRow& option : table.front().options) {
    if (!option.value.empty()) text += fmt::format("      {}) i=$((i + 1)) ;;\n", Joined(option.names, "|"));
  }
  text += fmt::format("      {}) command=${{COMP_WORDS[i]}}; break ;;\n", Joined(CommandNames(table), "|"));
  text += "    esac\n  done\n  case $command,$prev in\n";
  for (const CommandRow& command : table) {
    for (const OptionRow& option : AllOptions(table, command)) {
      if (option.bPositional || option.value.empty()) continue;
      std::vector<std::string> patterns;
      for (const std::string& name : option.names) patterns.push_back(command.name + "," + name);
      text += fmt::format("    {}) {} ;;\n", Joined(patterns, "|"), BashReply(BashValues(option)));
    }
  }
  text += "  esac\n  case $command in\n";
  for (const CommandRow& command : table) {
    std::vector<std::string> names;
    for (const OptionRow& option : AllOptions(table, command)) {
      if (!option.bPositional) names.insert(names.end(), option.names.begin(), option.names.end());
    }
    const OptionRow* const positional = Positional(command);
    const std::string values = command.name.empty()
                                   ? "compgen -W " + Quoted(Joined(CommandNames(table), " ")) + " -- \"$cur\""
                               : positional ? BashValues(*positional)
                                            : "";
    text += fmt::format("    {}) options={}\n       [[ $cur == -* ]] || {{ {}; }} ;;\n",
                        command.name.empty() ? "''" : command.name, Quoted(Joined(names, " ")),
                        BashReply(values));
  }
  text +=
      "  esac\n"
      "  mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$cur\")\n"
      "}\n"
      "complete -o filenames -F _orv orv\n";
  return text;
}

/// What zsh offers for a value: ":name:action".
std::string ZshValues(const OptionRow& option) {
  if (option.value.empty()) return "";
  if (!option.choices.empty()) return ":" + option.value + ":(" + Joined(option.choices, " ") + ")";
  if (option.value == "FOLDER") return ":folder:_files -/";
  if (option.value == "FILE" || option.value == "DEF") return ":" + option.value + ":_files";
  return ":" + option.value + ": ";
}

std::string ZshOption(const OptionRow& option) {
  const std::string text = option.text.substr(0, option.text.find('\n'));
  if (option.bPositional) {
    return "    " +
           Quoted((option.bMany ? "*" : "") + std::string(option.bRequired || option.bMany ? "" : ":") +
                  ZshValues(option)) +
           " \\\n";
  }
  std::string lines;
  const std::string others = option.names.size() > 1 ? "(" + Joined(option.names, " ") + ")" : "";
  for (const std::string& name : option.names) {
    const std::string body = Quoted("[" + text + "]");
    std::string escaped = Quoted(text, "[]:\\");
    escaped = escaped.substr(1, escaped.size() - 2);
    lines += "    '" + others + name + "[" + escaped + "]" + ZshValues(option) + "' \\\n";
  }
  return lines;
}

std::string Zsh(const std::vector<CommandRow>& table) {
  std::string text =
      "#compdef orv\n"
      "# zsh completion for orv, made from the options of the program\n"
      "_orv() {\n"
      "  local context state state_descr line\n"
      "  typeset -A opt_args\n"
      "  _arguments -C \\\n";
  for (const OptionRow& option : table.front().options) text += ZshOption(option);
  text +=
      "    '1:command:->command' \\\n"
      "    '*::argument:->argument' && return\n"
      "  case $state in\n"
      "    command)\n"
      "      local -a commands\n"
      "      commands=(\n";
  for (const CommandRow& command : table) {
    if (!command.name.empty()) {
      text +=
          "        " + Quoted(command.name + ":" + command.text.substr(0, command.text.find('\n'))) + "\n";
    }
  }
  text +=
      "      )\n"
      "      _describe command commands ;;\n"
      "    argument)\n"
      "      case $line[1] in\n";
  for (const CommandRow& command : table) {
    if (command.name.empty()) continue;
    text += "        " + command.name + ") _arguments \\\n";
    for (const OptionRow& option : AllOptions(table, command)) text += ZshOption(option);
    text += "    && return ;;\n";
  }
  text += "      esac ;;\n  esac\n}\n_orv \"$@\"\n";
  return text;
}

std::string FishOption(const OptionRow& option, const std::string& condition) {
  std::string line = "complete -c orv -n " + FishQuoted(condition);
  for (const std::string& name : option.names) {
    if (name.starts_with("--")) {
      line += " -l " + name.substr(2);
    } else if (name.starts_with("-")) {
      line += " -s " + name.substr(1);
    }
  }
  if (!option.choices.empty()) {
    line += (option.bPositional ? " -a " : " -x -a ") + FishQuoted(Joined(option.choices, " "));
  } else if (!option.value.empty() && !option.bPositional) {
    line += option.value == "FILE" || option.value == "DEF" || option.value == "FOLDER" ? " -r -F" : " -x";
  }
  return line + " -d " + FishQuoted(option.text.substr(0, option.text.find('\n'))) + "\n";
}

std::string Fish(const std::vector<CommandRow>& table) {
  std::string text = "# fish completion for orv, made from the options of the program\ncomplete -c orv -f\n";
  for (const CommandRow& command : table) {
    if (!command.name.empty()) {
      text += fmt::format("complete -c orv -n __fish_use_subcommand -a {} -d {}\n", command.name,
                          FishQuoted(command.text.substr(0, command.text.find('\n'))));
    }
  }
  for (const OptionRow& option : table.front().options) text += FishOption(option, "true");
  for (const CommandRow& command : table) {
    if (command.name.empty()) continue;
    const std::string condition = "__fish_seen_subcommand_from " + command.name;
    const OptionRow* const positional = Positional(command);
    if (positional && (positional->value == "FILE" || positional->value == "DEF")) {
      text += fmt::format("complete -c orv -n {} -F\n", FishQuoted(condition));
    }
    for (const OptionRow& option : command.options) {
      if (!option.bPositional || !option.choices.empty()) text += FishOption(option, condition);
    }
  }
  return text;
}

}  // namespace

std::string CompletionFor(const std::string& shell, const std::vector<CommandRow>& table) {
  return shell == "bash" ? Bash(table) : shell == "zsh" ? Zsh(table) : shell == "fish" ? Fish(table) : "";
}

}  // namespace orv::tool
