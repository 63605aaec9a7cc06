// World.h: the land polygons of tests/data/world.
#pragma once

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "orv/shared/Vec2d.h"
#include "tests/support/Paths.h"

namespace orv::test {

/// The first ring is the outer one; no ring repeats its first point; outer rings turn clockwise.
using LandPolygon = std::vector<std::vector<shr::Vec2d>>;

/// @param name  "land-110m" or "land-50m".
inline std::vector<LandPolygon> ReadLand(const std::string& name) {
  std::ifstream file(DataFolder() + "/world/" + name + ".txt");
  std::vector<LandPolygon> land;
  std::string word;
  size_t count = 0;
  while (file >> word >> count) {
    if (word == "polygon") {
      land.emplace_back();
      continue;
    }
    land.back().emplace_back();
    long x = 0, y = 0;
    for (size_t i = 0; i < count; ++i) {
      long dx = 0, dy = 0;
      file >> dx >> dy;
      x += dx;
      y += dy;
      land.back().back().emplace_back(static_cast<double>(x) / 1000.0, static_cast<double>(y) / 1000.0);
    }
  }
  if (land.size() < 100) throw std::runtime_error(name + ": not read");
  return land;
}

}  // namespace orv::test
