// GridSearch.h: the grid files of datum shifts, found and missing, told.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/datum/DatumDef.h"

namespace orv {

/// The nodes of one grid.  Degrees, east and north positive; longitudes as the file counts them.
struct GridExtent {
  std::string name;
  double west = 0.0;
  double south = 0.0;
  double east = 0.0;
  double north = 0.0;
};

/// A file that holds grids, or a part of some.
struct GridFile {
  std::string path;
  uint64_t size = 0;                ///< bytes
  uint32_t crc32 = 0;               ///< of the whole file, as zlib and zip count it
  std::vector<GridExtent> extents;  ///< of the grids in it; of a pair .los and .las both files tell the same
};

/// What a method would read now.
struct GridSource {
  DatumMethod method = DatumMethodUnknown;  ///< DatumMethodNADCON or DatumMethodNTV2
  std::string wanted;                       ///< the file names that are looked for; "" when none is set
  std::vector<std::string> folders;         ///< where, in that order
  std::string folder;                       ///< the one in which they were found; "" when there are none
  std::vector<GridFile> files;              ///< none when they are missing or no good
  std::string problem;                      ///< of files that are there and no good; else ""

  bool Found() const { return !files.empty(); }
};

/// NADCON's and NTv2's grids, in this order, as the next conversion would find them.  Reads the files; what the
/// library has loaded is neither asked nor changed.
ORV_API std::vector<GridSource> ORVListGrids();

}  // namespace orv
