// NTv2Grid.h: the tree of grids in an NTv2 file [Jun95].
//
// Layout (little-endian): records of 16 bytes, mostly an 8-character keyword and an 8-byte value.  An overview of
// 11 records; then for each grid a header of 11 records and its nodes, a record of four float32 each: latitude
// shift, longitude shift, and two accuracies that are dropped.  Rows run from south to north, and in the file
// from east to west.  Longitudes and their shifts are positive WEST in the file and positive east in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "orv/datum/GenericReader.h"
#include "orv/datum/GridShift.h"
#include "orv/datum/NTv2Shift.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

/// One grid.  All angles are radians.
class NTv2SubGrid {
 public:
  struct Node {
    double lon;
    double lat;
  };

  /// Reads header and nodes.  NTv2Done, NTv2ReadShort, NTv2BadGeometry or NTv2BadHeader (the node count does not
  /// fit the extent).
  NTv2Status Read(GenericReader& file);

  /// As the file has them, to the first NUL; blanks are kept.
  const std::string& GetName() const { return m_Name; }
  const std::string& GetParent() const { return m_Parent; }
  /// True when the parent is "NONE", with any blanks around it.
  bool IsTopLevel() const;

  int Columns() const { return m_Columns; }
  int Rows() const { return m_Rows; }
  double West() const { return m_West; }
  double South() const { return m_South; }
  double East() const { return m_East; }
  double North() const { return m_North; }
  /// Column 0 is the westernmost, row 0 the southernmost.
  const Node& NodeAt(int col, int row) const {
    return m_Nodes[static_cast<size_t>(row) * static_cast<size_t>(m_Columns) + static_cast<size_t>(col)];
  }

  /// Edges included.  Longitudes are not wrapped: a grid that is stored beyond 180 degrees is met there only.
  bool Contains(const shr::Vec2d& point) const {
    return point.y >= m_South && point.y <= m_North && point.x >= m_West && point.x <= m_East;
  }
  /// True when the two have a point in common, and when all points of the other are this one's.
  bool Meets(const NTv2SubGrid& other) const;
  bool Covers(const NTv2SubGrid& other) const;
  /// True when the other grid lies in this one, within a thousandth of this one's spacing.
  bool Encloses(const NTv2SubGrid& other) const;

  /// Adds the shift, bilinear within the cell.  False, and the point stays, when the grid has none for it.  The
  /// longitude is taken relative to the western edge and wrapped.
  bool Forward(shr::Vec2d& point) const;
  /// The point that Forward takes to this one.  False, and the point stays, when 11 rounds do not settle it or a
  /// guess leaves the grid.
  ///
  /// Deliberate: a round is the last as soon as ONE of its residuals is 1e-12 or less.
  bool Inverse(shr::Vec2d& point) const;

  /// What the kernels see of the grid; valid while it stands where it stands.  Without children, and not certain.
  NTv2Cells Cells() const;

 private:
  NTv2Status ReadHeader(GenericReader& file);
  NTv2Status ReadNodes(GenericReader& file);

  std::string m_Name;
  std::string m_Parent;
  int m_Columns = 0;
  int m_Rows = 0;
  double m_West = 0.0;
  double m_South = 0.0;
  double m_East = 0.0;
  double m_North = 0.0;
  double m_LonStep = 0.0;
  double m_LatStep = 0.0;
  double m_PerLon = 0.0;  // columns and rows per radian
  double m_PerLat = 0.0;
  double m_MostLon = 0.0;  // the largest offsets from west and south that are inside
  double m_MostLat = 0.0;
  std::vector<Node> m_Nodes;  // row by row
};

class NTv2Grid {
 public:
  NTv2Grid() = default;
  NTv2Grid(NTv2Grid&&) = default;  // what the cells point at moves along
  NTv2Grid& operator=(NTv2Grid&&) = default;

  /// Loads the file that the configuration search finds under a name.
  ///
  /// NTv2Done; NTv2NoName for an empty name; NTv2NotPresent when none is found or it does not open;
  /// NTv2ReadShort when it ends early; NTv2BadGeometry when a grid's extent is not finite, its spacing not above
  /// 0 or it has fewer than 2 columns or rows; NTv2BadHeader when a check of the headers fails: the first keyword
  /// is not "NUM_OREC" (so for a big-endian file its value), the record counts are not 11, the shifts not in
  /// "SECONDS", a node count does not fit, a parent is not found or a grid is its own ancestor.  A file of fewer
  /// than 1 grids loads nothing and is done.  After a failure the tree is as it was.
  NTv2Status Load(const std::string& name);
  NTv2Status Read(GenericReader& file);

  /// In the order of the file.
  const std::vector<NTv2SubGrid>& SubGrids() const { return m_SubGrids; }
  /// The grid that shifts a point: the first top-level grid that contains it, then the first of its children, and
  /// so on down; null for none.
  const NTv2SubGrid* GridFor(const shr::Vec2d& point) const;

  /// Shifts one point, in radians.  NTv2NoShift when no shift can be computed; the point then stays.  A point
  /// whose latitude is the marker, and one in no grid, stays and gives NTv2Done.
  NTv2Status Shift(shr::Vec2d& point, bool inverse) const;
  /// Shifts points, in radians.  One with the marker in either coordinate, one in no grid and one for which no shift
  /// can be computed stays.
  void Transform(shr::Vec2d* points, size_t count, bool inverse) const;

  /// What the kernels see of the tree; valid while it stands where it stands and is not read anew.
  NTv2Set Set() const { return {m_Cells.data(), m_Lists.data(), 0, m_TopLevel.size()}; }

 private:
  NTv2Status ReadGrids(GenericReader& file);
  NTv2Status Attach();
  void FindCertain();
  void MakeCells();

  std::vector<NTv2SubGrid> m_SubGrids;
  std::vector<std::vector<size_t>> m_Children;  // of each grid, in the order of the file
  std::vector<size_t> m_TopLevel;
  std::vector<char> m_Certain;  // of each grid: NTv2Cells::certain
  std::vector<NTv2Cells> m_Cells;
  std::vector<size_t> m_Lists;  // m_TopLevel, then m_Children in turn
};

}  // namespace orv::internal
