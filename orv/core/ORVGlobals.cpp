#include "orv/core/ORVGlobals.h"

#include <algorithm>
#include <cstdarg>

#include "orv/core/Platform.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/core/internal/ReadableFile.h"
#include "orv/core/internal/Text.h"
#include "orv/shared/Exception.h"
#include "orv/shared/LocateFile.h"

namespace orv {

// Both are made at their first use, so that no global object reads another during construction.
ORVGlobals& Globals() {
  static ORVGlobals globals;
  return globals;
}

ErrorState& Errors() {
  thread_local ErrorState state;
  return state;
}

bool& FpFault() {
  thread_local bool fault = false;
  return fault;
}

// ---- error state -----------------------------------------------------------------------------------------

const char* ORVGetErrorText() { return Errors().text.c_str(); }
const char* ORVGetErrorFile() { return Errors().file.c_str(); }
int ORVGetErrorLine() { return Errors().line; }
int ORVGetErrorCode() { return Errors().code; }

void RecordSite(const ErrorSite& site) {
  Errors().file = site.unit;
  Errors().line = site.line;
}

bool ORVSetError(int code, const char* format, ...) {
  ErrorState& state = Errors();
  state.code = code;
  // Deliberate: with throwing off, the text keeps its old value; only code, unit and line are current.
  if (code != 0 && !Globals().throwOnError) return false;
  std::va_list args;
  va_start(args, format);
  std::string text = internal::FormatV(format, args);  // an argument may be the present text itself
  va_end(args);
  state.text = std::move(text);
  if (Globals().throwOnError) {
    // Deliberate: the module is named so on every platform.
    throw shr::Exception("ORVCore.dll", state.file.c_str(), state.line, code, state.text.c_str());
  }
  return false;
}

void ORVResetError() { Errors() = ErrorState(); }

// ---- configuration files ---------------------------------------------------------------------------------

namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

bool HoldsSeparator(const std::string& path) { return std::any_of(path.begin(), path.end(), IsSeparator); }

// Folder of a file, without the separator; the whole text when it holds none.
std::string FolderOf(const std::string& path) {
  for (size_t at = path.size(); at > 0; --at) {
    if (IsSeparator(path[at - 1])) return path.substr(0, at - 1);
  }
  return path;
}

std::string Joined(const std::string& folder, const std::string& name) {
  std::string path = folder;
  if (path.empty() || !IsSeparator(path.back())) path += platform::kSeparator;
  return path + name;
}

}  // namespace

void ORVSetConfigPath(const char* path) { Globals().configPath = internal::EmptyIfNull(path); }

const char* ORVGetConfigPath() { return internal::NullIfEmpty(Globals().configPath); }

namespace {

/// Those in front of the installed ones; the configuration path, when one is set, is the first.
std::vector<std::string> OwnFolders() {
  std::vector<std::string> folders;
  if (!Globals().configPath.empty()) folders.push_back(Globals().configPath);
  const std::string executableFolder = FolderOf(platform::ExecutablePath());
  folders.push_back(FolderOf(platform::ModulePath()));
  folders.push_back(executableFolder);
  folders.push_back(Joined(executableFolder, "../Config/"));
  return folders;
}

}  // namespace

std::vector<std::string> internal::ConfigFolders() {
  std::vector<std::string> folders = OwnFolders();
  for (std::string& folder : InstalledFolders()) folders.push_back(std::move(folder));
  return folders;
}

bool ORVFindConfigFile(const char* fileName, std::string& fullPath) {
  if (!fileName || *fileName == '\0') return false;
  const std::string name = fileName;  // the caller's pointer may lie in fullPath
  fullPath.clear();
  size_t nameItself = Globals().configPath.empty() ? 0 : 1;  // its place among the folders
  for (const std::string& folder : OwnFolders()) {
    if (nameItself-- == 0 && HoldsSeparator(name) && internal::FindReadableFile(name, fullPath)) return true;
    if (internal::FindReadableFile(Joined(folder, name), fullPath)) return true;
  }
  return shr::LocateFile(name.c_str(), fullPath);
}

}  // namespace orv
