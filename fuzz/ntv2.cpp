// NTv2 files.  What loads must shift points and bring them back without leaving its arrays.
#include <cstring>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "orv/datum/NTv2Grid.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using orv::fuzz::Require;
  namespace in = orv::internal;
  in::MemoryReader file(data, size);
  in::NTv2Grid grid;
  const in::NTv2Status status = grid.Read(file);
  Require(status == in::NTv2Done || status == in::NTv2BadGeometry || status == in::NTv2ReadShort ||
              status == in::NTv2BadHeader,
          "a listed status");
  Require(status == in::NTv2Done || grid.SubGrids().empty(), "a file that is refused leaves no grid");
  size_t nodes = 0;
  for (const in::NTv2SubGrid& sub : grid.SubGrids()) {
    nodes += static_cast<size_t>(sub.Columns()) * static_cast<size_t>(sub.Rows());
  }
  Require(nodes * 16 <= size, "no grid is larger than its file");
  std::vector<shr::Vec2d> starts, forward, inverse;
  for (const in::NTv2SubGrid& sub : grid.SubGrids()) {
    if (starts.size() > 2000) break;  // a file may hold many grids
    for (const double s : {-0.1, 0.0, 0.3, 0.5, 1.0}) {
      for (const double t : {0.0, 0.7, 1.0, 1.1}) {
        const shr::Vec2d start(sub.West() + s * (sub.East() - sub.West()),
                               sub.South() + t * (sub.North() - sub.South()));
        starts.push_back(start);
        for (const bool bInverse : {false, true}) {
          shr::Vec2d point = start;
          const in::NTv2Status shifted = grid.Shift(point, bInverse);
          (bInverse ? inverse : forward).push_back(point);
          Require(shifted == in::NTv2Done || shifted == in::NTv2NoShift, "a listed status of a point");
          Require(shifted == in::NTv2Done || (point.x == start.x && point.y == start.y), "no shift, no move");
          Require(grid.GridFor(start) || (point.x == start.x && point.y == start.y), "a point outside stays");
        }
      }
    }
  }
  const std::vector<shr::Vec2d> wanted[] = {forward, inverse};
  for (const bool bInverse : {false, true}) {
    std::vector<shr::Vec2d> batch = starts;
    grid.Transform(batch.data(), batch.size(), bInverse);
    Require(batch.empty() ||
                std::memcmp(batch.data(), wanted[bInverse].data(), batch.size() * sizeof batch[0]) == 0,
            "a batch gives what its points give one by one");
  }
  return 0;
}
