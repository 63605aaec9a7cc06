// NadconUtility.h: the set of NADCON grids, found in a folder or in an archive there.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orv/datum/NadconGrid.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

class NadconUtility {
 public:
  NadconUtility() = default;
  NadconUtility(const NadconUtility&) = delete;
  NadconUtility& operator=(const NadconUtility&) = delete;

  /// Loads the grids of a folder; true when at least one is loaded.  Does nothing once one is.
  ///
  /// "NADGRIDS.ZIP" comes first.  When it gives no grid, each "*.LOS" of the folder is read with the ".las" of
  /// the same name.  A .los file without partner is skipped, and so is a pair that is damaged.  Names are compared
  /// without regard to case and files taken in that order; members of the archive in the archive's.
  bool LoadGrids(const std::string& folder);
  /// Loads the grids of an archive only; true when at least one is loaded.  The two members of a pair must be
  /// of one uncompressed size.
  bool LoadZippedGrids(const std::string& archive);

  const std::vector<NadconGrid>& Grids() const { return m_Grids; }
  /// The grid that shifts a point; null for none.  Of several that contain it one is replaced by a later one
  /// with both dx and dy smaller, so among equals the first loaded stays.
  const NadconGrid* GridFor(const shr::Vec2d& point) const;

  /// Shifts points in degrees.  One with the marker in either coordinate, and one in no grid, stays.  The
  /// inverse uses the grid that contains the point as it comes.
  void Transform(shr::Vec2d* points, size_t count, bool inverse) const;

 private:
  void LoadLooseGrids(const std::string& folder, const std::vector<std::string>& files);
  bool Append(GenericReader& los, GenericReader& las, const std::string& losName);

  std::vector<NadconGrid> m_Grids;
  std::vector<NadconCells> m_Cells;  // of m_Grids
};

}  // namespace orv::internal
