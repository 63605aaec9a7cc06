// NTv2 files.  What loads must shift points and bring them back without leaving its arrays.

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
  for (const in::NTv2SubGrid& sub : grid.SubGrids()) {
    for (const double s : {-0.1, 0.0, 0.3, 0.5, 1.0}) {
      for (const double t : {0.0, 0.7, 1.0, 1.1}) {
        const shr::Vec2d start(sub.West() + s * (sub.East() - sub.West()),
                               sub.South() + t * (sub.North() - sub.South()));
        for (const bool inverse : {false, true}) {
          shr::Vec2d point = start;
          const in::NTv2Status shifted = grid.Shift(point, inverse);
          Require(shifted == in::NTv2Done || shifted == in::NTv2NoShift, "a listed status of a point");
          Require(shifted == in::NTv2Done || (point.x == start.x && point.y == start.y), "no shift, no move");
          Require(grid.GridFor(start) || (point.x == start.x && point.y == start.y), "a point outside stays");
        }
      }
    }
  }
  return 0;
}
