#include "orv/shared/LocateFile.h"

#include <algorithm>
#include <cstdlib>

#include "orv/core/Platform.h"
#include "orv/core/internal/ReadableFile.h"

#ifndef ORV_INSTALL_PREFIX
#define ORV_INSTALL_PREFIX ""
#endif

namespace shr {

namespace platform = orv::platform;

bool LocateFile(const char* name, std::string& path) {
  if (!name || *name == '\0') return false;
  const std::string wanted = name;  // the caller's pointer may lie in path
  path.clear();
  for (const std::string& folder : orv::internal::InstalledFolders()) {
    if (orv::internal::FindReadableFile(folder + platform::kSeparator + wanted, path)) return true;
  }
  return false;
}

}  // namespace shr

std::vector<std::string> orv::internal::InstalledFolders() {
  std::vector<std::string> folders;
  const auto add = [&](const std::string& folder) {
    if (!folder.empty()) folders.push_back(folder);
  };
  if (const char* const variable = std::getenv("ORV_CONFIG_PATH")) {
    const std::string all = variable;
    for (size_t at = 0; at <= all.size();) {
      const size_t end = std::min(all.find(platform::kPathListSeparator, at), all.size());
      add(all.substr(at, end - at));
      at = end + 1;
    }
  }
  const size_t separator = platform::ModulePath().find_last_of("/\\");
  if (separator != std::string::npos && separator > 0) {
    add(platform::ModulePath().substr(0, separator) + "/../share/orvcore");
  }
  const std::string prefix = ORV_INSTALL_PREFIX;
  if (!prefix.empty()) add(prefix + "/share/orvcore");
  return folders;
}
