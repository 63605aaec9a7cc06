// orv check: a configuration file, entry by entry.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "orv/convert/internal/JsonText.h"
#include "orv/core/ConfigFile.h"
#include "orv/core/ORVGlobals.h"
#include "orv/datum/DatumList.h"
#include "orv/shared/Exception.h"
#include "orv/system/CSList.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

namespace fs = std::filesystem;

struct CheckOptions {
  std::string file;
  std::string as;
  bool json = false;
};

/// What is wrong with the file.
struct CheckError {
  int line;  ///< 0 when it is not known
  std::string message;
};

struct CheckResult {
  std::vector<CheckError> errors;
  int entries = 0;        ///< without errors; of settings the pairs
  bool bComplete = true;  ///< whether all of the file was read
};

/// A kind of configuration file: what loads it, and how many entries that has taken.
struct FileKind {
  const char* name;
  void (*load)(const char* path);
  int (*count)();
  int needs;  ///< lists that its entries look up: 0 none, 1 ellipsoids, 2 ellipsoids and datums
};

template <auto* list>
void Load(const char* path) {
  list->Load(path, true);
}
template <auto* list>
int Count() {
  return list->Count();
}

const FileKind kKinds[] = {
    {"meridian", Load<&ORVKnownMeridiansList>, Count<&ORVKnownMeridiansList>, 0},
    {"angularunit", Load<&ORVKnownAngularUnitsList>, Count<&ORVKnownAngularUnitsList>, 0},
    {"linearunit", Load<&ORVKnownLinearUnitsList>, Count<&ORVKnownLinearUnitsList>, 0},
    {"ellipsoid", Load<&ORVKnownEllipsoidsList>, Count<&ORVKnownEllipsoidsList>, 0},
    {"datum", Load<&ORVKnownDatumsList>, Count<&ORVKnownDatumsList>, 1},
    {"system", Load<&ORVKnownSystemsList>, Count<&ORVKnownSystemsList>, 2},
};
constexpr const char* kSettings = "orvmisc";

/// The text of a file, and the same with entries left out, line for line.
class Source {
 public:
  explicit Source(const std::string& path) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (!file) throw UsageError(fmt::format("cannot open '{}': {}", path, std::strerror(errno)));
    char block[1 << 16];
    for (size_t size; (size = std::fread(block, 1, sizeof block, file)) > 0;) m_Text.append(block, size);
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) throw UsageError(fmt::format("cannot read '{}'", path));
    FindEntries();
  }

  size_t Entries() const { return m_Entries.size(); }
  /// Line of the brace with which the n-th entry left begins; 0 when there are not so many.
  int LineOf(size_t n) const { return n < m_Entries.size() ? m_Entries[n].line : 0; }
  /// Leaves out the n-th entry left; lines stay where they are.
  void LeaveOut(size_t n) {
    for (size_t at = m_Entries[n].begin; at < m_Entries[n].end; ++at) {
      if (m_Text[at] != '\n') m_Text[at] = ' ';
    }
    m_Entries.erase(m_Entries.begin() + static_cast<std::ptrdiff_t>(n));
  }
  const std::string& Text() const { return m_Text; }

 private:
  struct Entry {
    size_t begin, end;
    int line;
  };

  /// From each brace to its partner, as the reader of these files sees them: not within quotes or comments.  A quote
  /// within an unquoted token is an ordinary character: 2d20'14"E.
  void FindEntries() {
    int line = 1;
    char quote = '\0';
    bool comment = false, open = false, plain = false;  // plain: within an unquoted token
    Entry entry{};
    for (size_t at = 0; at < m_Text.size(); ++at) {
      const char c = m_Text[at];
      const bool wasPlain = std::exchange(plain, false);
      if (c == '\n') {
        ++line;
        comment = false;
        quote = '\0';
      } else if (comment) {
        continue;
      } else if (quote != '\0') {
        if (c == quote) quote = '\0';
      } else if ((c == '"' || c == '\'') && !wasPlain) {
        quote = c;
      } else if (c == ';') {
        comment = true;
      } else if (c == '{' && !open) {
        open = true;
        entry = {at, at, line};
      } else if (c == '}' && open) {
        open = false;
        entry.end = at + 1;
        m_Entries.push_back(entry);
      } else {
        plain =
            c != '\0' && std::string_view(" \t\r=+,;:~/!@#$%^&*(){}[]|<>").find(c) == std::string_view::npos;
      }
    }
  }

  std::string m_Text;
  std::vector<Entry> m_Entries;
};

/// A file in a folder of its own beside the system's other temporary ones, removed at the end.
class Scratch {
 public:
  explicit Scratch(const std::string& name) {
    std::random_device random;
    do {  // a folder that stands there already is somebody else's
      m_Folder = fs::temp_directory_path() / fmt::format("orv-check-{:08x}{:08x}", random(), random());
    } while (!fs::create_directory(m_Folder));
    fs::permissions(m_Folder, fs::perms::owner_all);
    m_Path = (m_Folder / name).string();
  }
  ~Scratch() {
    std::error_code ignored;
    fs::remove_all(m_Folder, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::string& Path() const { return m_Path; }
  void Write(const std::string& text) const {
    std::FILE* const file = std::fopen(m_Path.c_str(), "wb");
    const bool written = file && std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if ((file && std::fclose(file) != 0) || !written)
      throw UsageError(fmt::format("cannot write '{}'", m_Path));
  }

 private:
  fs::path m_Folder;
  std::string m_Path;
};

constexpr size_t kMostErrors = 100;

/// A message of the library, which may begin with "PATH(LINE):  ".
///
/// @param line  where the entry begins that it is about, for a message that does not tell.
CheckError ErrorFrom(std::string message, const std::string& path, int line) {
  while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
  if (!message.starts_with(path)) return {line, message};
  std::string_view rest = std::string_view(message).substr(path.size());
  const size_t close = rest.find("):");
  int told = 0;
  if (rest.starts_with('(') && close != std::string_view::npos &&
      ParseInteger(rest.substr(1, close - 1), told)) {
    return {told, std::string(Trimmed(rest.substr(close + 2)))};
  }
  return {line, std::string(Trimmed(rest.substr(std::min(rest.size(), rest.find_first_not_of(": ")))))};
}

/// Loads the file; after each error once more without the entry that it is in.
CheckResult CheckEntries(const FileKind& kind, const std::string& path) {
  Source source(path);
  const Scratch scratch(fs::path(path).filename().string());
  CheckResult result;
  for (;;) {
    scratch.Write(source.Text());
    try {
      kind.load(scratch.Path().c_str());
      break;
    } catch (const shr::Exception& e) {
      if (!result.errors.empty() && source.Entries() == 0)
        break;  // all were faulty: that none is left is no news
      // Entries in front of the faulty one have been taken.
      const auto faulty = static_cast<size_t>(kind.count());
      result.errors.push_back(ErrorFrom(e.Message(), scratch.Path(), source.LineOf(faulty)));
      result.bComplete = faulty < source.Entries() && result.errors.size() < kMostErrors;
      if (!result.bComplete) break;
      source.LeaveOut(faulty);
    }
  }
  result.entries = kind.count();
  return result;
}

/// Pairs key = value up to the end of the file.
CheckResult CheckSettings(const std::string& path) {
  ConfigFileReader reader;
  reader.Open(path.c_str());
  CheckResult result;
  while (reader.Next()) {
    const std::string key(reader.Token());
    const int line = reader.Line();
    if (!reader.Next() || reader.Token() != "=" || !reader.Next()) {
      result.errors.push_back(
          {line, fmt::format("Expected '=' and a value behind '{}'; what follows is not read", key)});
      result.bComplete = false;
      return result;
    }
    ++result.entries;
  }
  return result;
}

void WriteForPeople(const CheckResult& result, const std::string& file, bool bSettings) {
  for (const CheckError& error : result.errors) {
    Report(error.line > 0 ? fmt::format("{}({}):  {}", file, error.line, error.message)
                          : fmt::format("{}:  {}", file, error.message));
  }
  if (result.errors.size() == kMostErrors)
    Report(fmt::format("{}: {} errors; the rest is not read", file, kMostErrors));
  if (bSettings) return;
  WriteOutput(fmt::format("{}: {} entries, {} {}\n", file, result.entries, result.errors.size(),
                          result.errors.size() == 1 ? "error" : "errors"));
}

std::string AsJson(const CheckResult& result, const std::string& file, const std::string& kind) {
  internal::JsonText json;
  json.BeginObject().Key("file").Text(file).Key("kind").Text(kind);
  json.Key("entries").Number(static_cast<size_t>(result.entries)).Key("complete").Bool(result.bComplete);
  json.Key("errors").BeginArray();
  for (const CheckError& error : result.errors) {
    json.BeginObject().Key("line");
    error.line > 0 ? json.Number(static_cast<size_t>(error.line)) : json.Null();
    json.Key("message").Text(error.message).EndObject();
  }
  return json.EndArray().EndObject().Finish();
}

int RunCheck(const CheckOptions& options) {
  const fs::path path(options.file);
  const std::string name = options.as.empty() ? path.stem().string() : options.as;
  const auto kind =
      std::find_if(std::begin(kKinds), std::end(kKinds), [&](const FileKind& k) { return name == k.name; });
  if (name != kSettings && kind == std::end(kKinds)) {
    throw UsageError(
        fmt::format("'{}' is not named like a configuration file: say with --as what it is", options.file));
  }
  CheckResult result;
  if (name == kSettings) {
    result = CheckSettings(options.file);
  } else {
    // The files that stand beside it go with it.
    if (!ORVGetConfigPath() && path.has_parent_path()) ORVSetConfigPath(path.parent_path().string().c_str());
    if (kind->needs >= 1) ORVKnownEllipsoidsList.Load(nullptr, true);
    if (kind->needs >= 2) ORVKnownDatumsList.Load(nullptr, true);
    result = CheckEntries(*kind, options.file);
  }
  if (options.json) {
    WriteOutput(AsJson(result, options.file, name));
  } else {
    WriteForPeople(result, options.file, name == kSettings);
  }
  return result.errors.empty() ? ExitAllDone : ExitSomeLost;
}

}  // namespace

void AddCheckCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("check", "Read a configuration file and report every error in it");
  const auto options = std::make_shared<CheckOptions>();
  command->add_option("file", options->file, "The file")->type_name("FILE")->required();
  std::vector<std::string> names = {kSettings};
  for (const FileKind& kind : kKinds) names.emplace_back(kind.name);
  command->add_option("--as", options->as, "What it is, when its name does not say so")
      ->check(CLI::IsMember(names));
  command->add_flag("--json", options->json, "As JSON, errors included");
  command->footer(
      "Errors go to standard error, with file and line; an entry with an error is left out and the rest is read.\n"
      "With --json they stand in the output: an object with file, kind, entries (those without errors), complete (whether\n"
      "all of the file was read) and errors, an array of objects with line (or null) and message.\n"
      "Entries that name an ellipsoid or a datum look it up in the files beside FILE, or else in the catalogue.\n"
      "Exit status 1 when there is an error.");
  command->callback([options, &status] { status = RunCheck(*options); });
}

}  // namespace orv::tool
