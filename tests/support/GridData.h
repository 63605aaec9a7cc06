// GridData.h: published grids, and the results that are expected of them.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orv::test {

/// Path of a published grid or of its table, like "nadcon/stpaul.los".  They are no part of this tree: the folder is
/// that of the environment variable ORV_GRID_DATA, or else the one that CMake found beside the tree.  "" when the
/// file is not there; tests then skip, with kNoGridData.
inline std::string GridData(const std::string& name) {
  const char* const variable = std::getenv("ORV_GRID_DATA");
  const std::string path = std::string(variable ? variable : ORV_GRID_DATA_DIR) + "/" + name;
  return std::filesystem::exists(path) ? path : "";
}
inline constexpr char kNoGridData[] = "the published grids are not here: set ORV_GRID_DATA to their folder";

/// Rows of a table with a header line, by column.
inline std::vector<std::map<std::string, std::string>> ReadTable(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  const auto split = [](const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, '\t');) fields.push_back(field);
    return fields;
  };
  std::string line;
  std::getline(file, line);
  const std::vector<std::string> columns = split(line);
  std::vector<std::map<std::string, std::string>> rows;
  while (std::getline(file, line)) {
    const std::vector<std::string> fields = split(line);
    if (fields.empty()) continue;
    auto& row = rows.emplace_back();
    for (size_t k = 0; k < fields.size() && k < columns.size(); ++k) row[columns[k]] = fields[k];
  }
  return rows;
}

}  // namespace orv::test
