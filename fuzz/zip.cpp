// Zip archives, as such and as sets of NADCON grids.  What comes out has the size that the directory gives.
#include <algorithm>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "orv/datum/NadconUtility.h"
#include "orv/datum/ZipReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using orv::fuzz::Require;
  namespace in = orv::internal;
  static orv::fuzz::MemoryFile file;
  file.Write(data, size);
  in::ZipReader zip;
  const int opened = zip.Open(file.Path());
  Require(opened == in::ZipDone || opened == in::ZipReadFailed || opened == in::ZipBad, "a listed status");
  Require(opened == in::ZipDone || zip.CountFiles() == 0, "an archive that is refused has no members");
  std::vector<unsigned char> bytes;
  for (int i = 0; i < std::min(zip.CountFiles(), 20); ++i) {
    const int status = zip.ExtractToMemory(i, bytes);
    Require(status != in::ZipDone || bytes.size() == zip.UncompressedSize(i),
            "a member has the size it says");
    Require(status == in::ZipDone || bytes.empty(), "a member that fails gives nothing");
  }
  in::NadconUtility nadcon;
  Require(nadcon.LoadZippedGrids(file.Path()) == !nadcon.Grids().empty(),
          "a set is loaded when it has a grid");
  shr::Vec2d point(-99.0, 40.75);
  nadcon.Transform(&point, 1, true);
  return 0;
}
