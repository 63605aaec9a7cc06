// Table.h: tables in files, as tests read them.
#pragma once

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orv::test {

/// The rows of a table of cells separated by tabs, by the names in its first line; lines that begin with "#" are
/// comments.  Cells that a line lacks at its end are empty.
using Row = std::map<std::string, std::string>;
inline std::vector<Row> ReadTable(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::invalid_argument("cannot read " + path);
  const auto cells = [](const std::string& line) {
    std::vector<std::string> found;
    std::istringstream stream(line);
    for (std::string cell; std::getline(stream, cell, '\t');) found.push_back(cell);
    return found;
  };
  std::vector<Row> rows;
  std::vector<std::string> head;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    if (head.empty()) {
      head = cells(line);
      continue;
    }
    const std::vector<std::string> values = cells(line);
    if (values.size() > head.size()) throw std::invalid_argument(path + ": " + line);
    Row row;
    for (size_t i = 0; i < head.size(); ++i) row[head[i]] = i < values.size() ? values[i] : "";
    rows.push_back(row);
  }
  return rows;
}
inline double Number(const Row& row, const std::string& name) { return std::stod(row.at(name)); }

}  // namespace orv::test
