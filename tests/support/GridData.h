// GridData.h: published grids, and the results that are expected of them.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/Table.h"

namespace orv::test {

/// Path of a published grid or of its table, like "nadcon/stpaul.los".  They are no part of this tree: the folder is
/// that of the environment variable ORV_GRID_DATA.  "" when the file is not there; tests then skip, with kNoGridData.
inline std::string GridData(const std::string& name) {
  const char* const folder = std::getenv("ORV_GRID_DATA");
  if (!folder) return "";
  const std::string path = std::string(folder) + "/" + name;
  return std::filesystem::exists(path) ? path : "";
}
inline constexpr char kNoGridData[] = "the published grids are not here: set ORV_GRID_DATA to their folder";

}  // namespace orv::test
