// NADCON grids: four bytes with the length of the .los file, that file, and the .las file.  What loads must shift points
// and bring them back without leaving its arrays.
#include <algorithm>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "orv/core/internal/ByteReader.h"
#include "orv/datum/NadconGrid.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using orv::fuzz::Require;
  namespace in = orv::internal;
  in::ByteReader head(data, size);
  const size_t losSize = head.U32();
  if (!head.Ok()) return 0;
  // Copies of the very sizes, so that a sanitizer sees a read behind their ends.
  const uint8_t* const start = data + 4;
  const uint8_t* const middle = start + std::min(losSize, size - 4);
  const std::vector<unsigned char> los(start, middle), las(middle, data + size);
  in::MemoryReader losReader(los.data(), los.size()), lasReader(las.data(), las.size());
  in::NadconGrid grid;
  if (!grid.Initialize(losReader, lasReader)) {
    Require(grid.Columns() == 0, "a pair that is refused leaves no grid");
    return 0;
  }
  Require(static_cast<uint64_t>(grid.Rows()) * static_cast<uint64_t>(grid.Columns()) * 4 <= los.size(),
          "no grid is larger than its file");
  const double marks[] = {-1e308, -181.0, -101.0, -100.0, -99.75, -88.5, 0.0,
                          39.5,   40.0,   40.25,  41.0,   1e18,   1e308};
  for (const double x : marks) {
    for (const double y : marks) {
      shr::Vec2d forward(x, y), inverse(x, y);
      grid.Forward(forward);
      Require(grid.Contains({x, y}) || (forward.x == x && forward.y == y), "a point outside stays");
      if (grid.Contains({x, y})) grid.Inverse(inverse);
    }
  }
  return 0;
}
