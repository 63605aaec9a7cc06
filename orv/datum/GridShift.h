// GridShift.h: what the grid methods need of the grids.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orv/shared/Vec2d.h"

namespace orv::internal {

class NTv2Grid;
class NadconUtility;

/// Statuses of the NTv2 grids.
enum NTv2Status : int {
  NTv2Done = 0,
  NTv2NoName = 2,       ///< no file name is known
  NTv2BadGeometry = 3,  ///< a sub-grid's geometry is invalid
  NTv2NoShift = 4,      ///< no shift could be computed for a point
  NTv2NotPresent = 5,   ///< the file cannot be opened
  NTv2ReadShort = 6,    ///< the file ends early
  NTv2BadHeader = 7     ///< a check of the headers failed
};

/// Grids of shifts between datums.  Loading is done once, on the first call, and again after one that failed.
/// Grids that are loaded never change, so distinct threads may shift points.
class GridShift {
 public:
  virtual ~GridShift() = default;

  /// True when at least one NADCON grid is loaded.
  virtual bool LoadNadcon() = 0;
  /// Shifts points in degrees from NAD27 to NAD83, or back.  A point with the marker in either coordinate,
  /// and one in no grid, stays.
  virtual void ShiftNadcon(shr::Vec2d* points, size_t count, bool inverse) = 0;

  virtual NTv2Status LoadNTv2() = 0;
  /// Shifts points in RADIANS.  A point with the marker in either coordinate, one outside every grid and one for
  /// which no shift can be computed stay and are no failure; any other status of a point ends the batch with it.
  virtual NTv2Status ShiftNTv2(shr::Vec2d* points, size_t count, bool inverse) = 0;
};

/// The library's own grids.
GridShift& Grids();

/// The library's grids as they are loaded; null while none are.  Valid until they are released.
const NadconUtility* LoadedNadcon();
const NTv2Grid* LoadedNTv2();
/// The folders in which NADCON grids are looked for, in that order: the one that is set, else the usual places.
std::vector<std::string> NadconFolders();

/// Lets go of the library's loaded grids; the next use loads them anew.  Not while another thread converts.
void ReleaseNadconGrids();
void ReleaseNTv2Grids();
/// Both, as shut-down does.
void ReleaseGrids();

}  // namespace orv::internal
