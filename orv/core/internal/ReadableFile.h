// ReadableFile.h: whether a candidate of a file search is there, and where files are searched.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "orv/core/Platform.h"

namespace orv::internal {

inline bool OpensForReading(const std::string& path) {
  std::FILE* const file = platform::OpenFile(path.c_str(), "rb");
  if (!file) return false;
  std::fclose(file);
  return true;
}

/// Tries a candidate as it stands and, where it holds backslashes, with them turned into "/".  `path` receives
/// what opened and is left alone otherwise.
inline bool FindReadableFile(const std::string& candidate, std::string& path) {
  std::string tried = candidate;
  if (!OpensForReading(tried)) {
    if (tried.find('\\') == std::string::npos) return false;
    std::replace(tried.begin(), tried.end(), '\\', '/');
    if (!OpensForReading(tried)) return false;
  }
  path = tried;
  return true;
}

/// The folders in which ORVFindConfigFile looks, in its order, the installed ones of shr::LocateFile included.
std::vector<std::string> ConfigFolders();
/// The folders of shr::LocateFile alone.
std::vector<std::string> InstalledFolders();

}  // namespace orv::internal
