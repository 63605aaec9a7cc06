#include "orv/convert/GridSearch.h"

#include <zlib.h>

#include <algorithm>
#include <filesystem>

#include "orv/convert/internal/GridPlaces.h"
#include "orv/core/ORVGlobals.h"
#include "orv/core/Platform.h"
#include "orv/core/internal/Angle.h"
#include "orv/core/internal/ReadableFile.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/GenericReader.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"
#include "orv/datum/NTv2Grid.h"
#include "orv/datum/NadconUtility.h"

namespace orv {

namespace {

/// Size and checksum of a file; both 0 when it does not open.
GridFile FileAt(const std::string& path) {
  GridFile file;
  file.path = path;
  internal::FileReader reader;
  if (!reader.Open(path)) return file;
  file.size = reader.Size();
  uLong crc = ::crc32(0, nullptr, 0);
  std::vector<unsigned char> block;
  constexpr uint64_t kBlock = 1 << 16;
  while (reader.Left() > 0 && reader.Read(block, std::min(reader.Left(), kBlock))) {
    crc = ::crc32(crc, block.data(), static_cast<uInt>(block.size()));
  }
  file.crc32 = static_cast<uint32_t>(crc);
  return file;
}

std::string PathIn(const std::string& folder, const std::string& name) {
  return (std::filesystem::path(folder) / name).string();
}

GridExtent ExtentOf(const internal::NadconGrid& grid) {
  return {grid.GetName(), grid.XMin(), grid.YMin(), grid.XMin() + (grid.Columns() - 1) * grid.Dx(),
          grid.YMin() + (grid.Rows() - 1) * grid.Dy()};
}

/// The files of a folder whose grids a NadconUtility takes.
std::vector<GridFile> NadconFiles(const std::string& folder) {
  std::vector<GridFile> files;
  internal::NadconUtility grids;
  if (!grids.LoadGrids(folder)) return files;
  const std::vector<std::string> names = platform::ListFiles(folder);
  for (const std::string& name : names) {
    internal::NadconUtility zipped;
    if (!internal::EqualIgnoringCase(name, "NADGRIDS.ZIP") || !zipped.LoadZippedGrids(PathIn(folder, name)))
      continue;
    files.push_back(FileAt(PathIn(folder, name)));
    for (const internal::NadconGrid& grid : zipped.Grids()) files.back().extents.push_back(ExtentOf(grid));
    return files;  // loose files are not read then
  }
  for (const internal::NadconGrid& grid : grids.Grids()) {
    for (const char* const ending : {".los", ".las"}) {
      for (const std::string& name : names) {
        if (!internal::EqualIgnoringCase(name, (grid.GetName() + ending).c_str())) continue;
        files.push_back(FileAt(PathIn(folder, name)));
        files.back().extents = {ExtentOf(grid)};
        break;
      }
    }
  }
  return files;
}

GridSource ListNadcon() {
  GridSource source;
  source.method = DatumMethodNADCON;
  source.wanted = internal::kNadconFiles;
  source.folders = internal::NadconFolders();
  for (const std::string& folder : source.folders) {
    source.files = NadconFiles(folder);
    if (source.files.empty()) continue;
    source.folder = folder;
    break;
  }
  return source;
}

GridSource ListNTv2() {
  GridSource source;
  source.method = DatumMethodNTV2;
  const char* const name = ORVGetNTv2GridFile();
  if (!name) return source;
  source.wanted = name;
  source.folders = internal::ConfigFolders();
  std::string path;
  if (!ORVFindConfigFile(name, path)) return source;
  source.folder = std::filesystem::path(path).parent_path().string();
  internal::NTv2Grid grids;
  if (grids.Load(name) != internal::NTv2Done) {
    source.problem = path + " is no NTv2 file that can be read: it is damaged, incomplete or big-endian";
    return source;
  }
  source.files = {FileAt(path)};
  for (const internal::NTv2SubGrid& grid : grids.SubGrids()) {
    using internal::ToDegrees;
    source.files[0].extents.push_back({grid.GetName(), ToDegrees(grid.West()), ToDegrees(grid.South()),
                                       ToDegrees(grid.East()), ToDegrees(grid.North())});
  }
  return source;
}

}  // namespace

std::vector<GridSource> ORVListGrids() { return {ListNadcon(), ListNTv2()}; }

}  // namespace orv
