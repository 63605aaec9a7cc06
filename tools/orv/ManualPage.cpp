// Manual pages in the man macros, made from the option table.
#include <fmt/core.h>

#include <algorithm>
#include <string_view>

#include "tools/orv/Command.h"
#include "tools/orv/OptionTable.h"

namespace orv::tool {

namespace {

/// Text for troff: what it would read as its own is escaped, and what is not ASCII named by its code.
std::string Escaped(std::string_view text) {
  std::string out;
  bool bLineBegins = true;
  for (size_t at = 0; at < text.size(); ++at) {
    const auto c = static_cast<unsigned char>(text[at]);
    if (bLineBegins && (c == '.' || c == '\'')) out += "\\&";
    bLineBegins = c == '\n';
    switch (c) {
      case '\\':
        out += "\\e";
        break;
      case '-':
        out += "\\-";
        break;
      case '\'':
        out += "\\(aq";
        break;
      case '`':
        out += "\\(ga";
        break;
      case '"':
        out += "\\(dq";
        break;
      case '^':
        out += "\\(ha";
        break;
      case '~':
        out += "\\(ti";
        break;
      case 0xC2:  // the only letters beyond ASCII that texts of the program hold: U+0080 to U+00BF
        if (at + 1 < text.size()) out += fmt::format("\\[u{:04X}]", static_cast<unsigned char>(text[++at]));
        break;
      default:
        out += static_cast<char>(c);
    }
  }
  return out;
}

std::string Flat(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

std::string Synopsis(const CommandRow& command) {
  if (command.name.empty()) return ".B orv\n[\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n";
  std::string text = fmt::format(".B orv {}\n", command.name);
  bool bOptions = false;
  for (const OptionRow& option : command.options) {
    if (!option.bPositional && !option.bRequired) bOptions = true;
  }
  if (bOptions) text += "[\\fIOPTIONS\\fR]\n";
  for (const OptionRow& option : command.options) {
    if (!option.bPositional && option.bRequired) {
      text += fmt::format("\\fB{}\\fR \\fI{}\\fR\n", Escaped(option.names.front()), Escaped(option.value));
    }
  }
  for (const OptionRow& option : command.options) {
    if (!option.bPositional) continue;
    const std::string name =
        fmt::format("\\fI{}\\fR{}", Escaped(option.names.front()), option.bMany ? "..." : "");
    text += option.bRequired ? name + "\n" : "[" + name + "]\n";
  }
  return text;
}

std::string OptionText(const OptionRow& option) {
  std::string text = ".TP\n";
  if (option.bPositional) {
    text += fmt::format("\\fI{}\\fR\n", Escaped(option.names.front()));
  } else {
    std::string names;
    for (const std::string& name : option.names)
      names += fmt::format("{}\\fB{}\\fR", names.empty() ? "" : ", ", Escaped(name));
    text += names + (option.value.empty() ? "" : fmt::format(" \\fI{}\\fR", Escaped(option.value))) + "\n";
  }
  text += Escaped(Flat(option.text)) + ".\n";
  if (!option.choices.empty()) {
    std::string choices;
    for (const std::string& choice : option.choices) choices += (choices.empty() ? "" : ", ") + choice;
    text += Escaped("One of " + choices + ".") + "\n";
  }
  if (!option.preset.empty()) text += Escaped("Not given: " + option.preset + ".") + "\n";
  return text;
}

std::string Options(const CommandRow& command) {
  std::string text;
  for (const bool bPositional : {true, false}) {
    std::string rows;
    for (const OptionRow& option : command.options) {
      if (option.bPositional == bPositional) rows += OptionText(option);
    }
    if (!rows.empty()) text += (bPositional ? ".SH ARGUMENTS\n" : ".SH OPTIONS\n") + rows;
  }
  return text;
}

/// A block without the lines that only its test reads.
std::string Shown(const std::string& block) {
  std::string shown;
  for (size_t at = 0; at < block.size();) {
    const size_t end = std::min(block.find('\n', at), block.size() - 1) + 1;
    const std::string line = block.substr(at, end - at);
    if (!line.starts_with("% ") && !line.starts_with("= ")) shown += line;
    at = end;
  }
  while (shown.ends_with('\n')) shown.pop_back();
  return shown;
}

/// The examples of a command, or all for "".  Their text is made of blocks with empty lines between: "# " and a sentence,
/// "$ " and the command, and what it writes.  (Lines that begin with "% " and "= " are for their test.)  An example is of
/// the command that follows the word orv.
std::string ExamplesFor(const std::string& command, const std::string& examples) {
  std::string text;
  for (size_t at = 0; at < examples.size();) {
    const size_t end = std::min(examples.find("\n\n", at), examples.size());
    const std::string block = Shown(examples.substr(at, end - at));
    at = end == examples.size() ? end : end + 2;
    const size_t prompt = block.find("\n$ ");
    if (!block.starts_with("# ") || prompt == std::string::npos) continue;
    if (!command.empty() && block.find("orv " + command + " ", prompt) == std::string::npos) continue;
    text += fmt::format(".PP\n{}\n.PP\n.nf\n{}\n.fi\n", Escaped(block.substr(2, prompt - 2)),
                        Escaped(block.substr(prompt + 1)));
  }
  return text.empty() ? "" : ".SH EXAMPLES\n" + text;
}

constexpr const char* kExitStatus =
    ".SH EXIT STATUS\n"
    ".TP\n0\nAll done.\n"
    ".TP\n1\nSomething has no answer: points that have no place or did not parse, each of which is reported, or a check "
    "that found errors.  Everything was written.\n"
    ".TP\n2\nThe arguments, a definition or a file cannot be used; the output may end early.\n"
    ".SH ENVIRONMENT\n"
    ".TP\nNO_COLOR\nWhen set and not empty, messages have no colours.\n"
    ".TP\nTERM\nWhen it is dumb, no progress is shown.\n";

}  // namespace

std::string ManualPageFor(const std::string& command, const std::vector<CommandRow>& table,
                          const std::string& version, const std::string& examples) {
  const auto found =
      std::find_if(table.begin(), table.end(), [&](const CommandRow& row) { return row.name == command; });
  if (found == table.end()) throw UsageError(fmt::format("there is no command '{}'", command));
  const std::string title = command.empty() ? "orv" : "orv\\-" + command;
  std::string upper = title;
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  const std::string& description = found->text;
  const std::string first = command.empty() ? "coordinate systems and conversions between them"
                                            : description.substr(0, description.find('\n'));
  std::string text =
      fmt::format(".TH {} 1 \"\" \"orv {}\" \"ORVCore\"\n.SH NAME\n{} \\- {}\n.SH SYNOPSIS\n{}", upper,
                  version, title, Escaped(first), Synopsis(*found));
  text += ".SH DESCRIPTION\n" + Escaped(Flat(description)) + (description.ends_with('.') ? "" : ".") + "\n";
  if (!found->footer.empty() && !command.empty()) text += ".PP\n.nf\n" + Escaped(found->footer) + "\n.fi\n";
  text += Options(*found);
  if (command.empty()) {
    text += ".SH COMMANDS\n";
    for (const CommandRow& row : table) {
      if (!row.name.empty()) text += fmt::format(".TP\n.B {}\n{}.\n", row.name, Escaped(Flat(row.text)));
    }
  }
  text += kExitStatus + ExamplesFor(command, examples) + ".SH SEE ALSO\n";
  std::string also;
  for (const CommandRow& row : table) {
    if (row.name == command) continue;
    also += fmt::format("{}.BR {} (1)", also.empty() ? "" : " ,\n",
                        row.name.empty() ? "orv" : "orv\\-" + row.name);
  }
  return text + also + "\n";
}

}  // namespace orv::tool
