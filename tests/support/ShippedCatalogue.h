// ShippedCatalogue.h: a fixture that holds the catalogue that the library is installed with.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "orv/core/Startup.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"

namespace orv::test {

inline const std::string kCatalogueFolder = ORV_SOURCE_DIR "/data/catalogue";

/// The known lists hold the shipped files while the tests of such a suite run.
class ShippedCatalogue : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ORVInitialize(kCatalogueFolder.c_str(), true);
    ASSERT_TRUE(ORVActive());
  }
  static void TearDownTestSuite() {
    ORVShutdown();
    ORVInitialize("", false);  // back to no configuration path; whatever that found goes again
    ORVShutdown();
  }

  static const ORVDef& System(const std::string& token) {
    const int pos = ORVKnownSystemsList.FindByToken(token.c_str());
    if (pos == 0) throw std::invalid_argument("no system " + token);
    return static_cast<const ORVDef&>(*ORVKnownSystemsList.Enum(pos));
  }
  /// Whichever prefix the code's token has.
  static const ORVDef& SystemOfCode(const std::string& code) {
    const bool isPlain = ORVKnownSystemsList.FindByToken(("EPSG:" + code).c_str()) != 0;
    return System((isPlain ? "EPSG:" : "ORV:") + code);
  }
  /// The known systems, without those made of datums at start-up.
  static std::vector<const ORVDef*> Systems() {
    std::vector<const ORVDef*> systems;
    for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
      const auto* const system = static_cast<const ORVDef*>(ORVKnownSystemsList.Enum(pos));
      if (std::string(system->GetToken()).rfind("GEOGCS_", 0) != 0) systems.push_back(system);
    }
    return systems;
  }
};

/// Whether the system is geographic, or the library can compute its projection.
inline bool HasEngine(const ORVDef& system) {
  const ProjectionMethod method = system.GetProjection()->GetMethod();
  return method == ProjectionMethodUnprojected || MakeProjActor(method) != nullptr;
}

/// The rows of a table of cells separated by tabs, by the names in its first line; lines that begin with "#" are
/// comments.
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
    if (values.size() != head.size()) throw std::invalid_argument(path + ": " + line);
    Row row;
    for (size_t i = 0; i < head.size(); ++i) row[head[i]] = values[i];
    rows.push_back(row);
  }
  return rows;
}
inline double Number(const Row& row, const std::string& name) { return std::stod(row.at(name)); }

}  // namespace orv::test
