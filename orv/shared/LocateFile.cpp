#include "orv/shared/LocateFile.h"

#include <algorithm>
#include <cstdlib>

#include "orv/core/Platform.h"
#include "orv/core/internal/ReadableFile.h"

#ifndef ORV_INSTALL_PREFIX
#define ORV_INSTALL_PREFIX ""
#endif

namespace shr {

namespace {

namespace platform = orv::platform;

bool Found(const std::string& folder, const char* name, std::string& path) {
  return !folder.empty() && orv::internal::FindReadableFile(folder + platform::kSeparator + name, path);
}

std::string FolderOf(const std::string& file) {
  const size_t separator = file.find_last_of("/\\");
  return separator == std::string::npos ? "" : file.substr(0, separator);
}

}  // namespace

bool LocateFile(const char* name, std::string& path) {
  if (!name || *name == '\0') return false;
  const std::string wanted = name;  // the caller's pointer may lie in path
  path.clear();
  if (const char* const variable = std::getenv("ORV_CONFIG_PATH")) {
    const std::string folders = variable;
    for (size_t at = 0; at <= folders.size();) {
      const size_t end = std::min(folders.find(platform::kPathListSeparator, at), folders.size());
      if (Found(folders.substr(at, end - at), wanted.c_str(), path)) return true;
      at = end + 1;
    }
  }
  const std::string moduleFolder = FolderOf(platform::ModulePath());
  if (!moduleFolder.empty() && Found(moduleFolder + "/../share/orvcore", wanted.c_str(), path)) return true;
  const std::string prefix = ORV_INSTALL_PREFIX;
  return !prefix.empty() && Found(prefix + "/share/orvcore", wanted.c_str(), path);
}

}  // namespace shr
