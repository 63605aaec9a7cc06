// NadconGrid.h: one NADCON grid [Dew90], a .los file of longitude shifts and a .las file of latitude shifts.
//
// Layout of either file (Fortran direct access, little-endian): records of 4 x (columns + 1) bytes, rows + 1 of
// them.  The first holds, from byte 64: int32 columns, int32 rows, a word that is no use, float32 xMin, dx, yMin,
// dy (degrees).  Each other is a row, the southernmost first: one word that is no data, then its values from west
// to east, float32 arc-seconds.  Latitude shifts are positive north, longitude shifts positive WEST.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "orv/datum/GenericReader.h"
#include "orv/datum/NadconShift.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

/// The header of a .los or .las file.
struct NadconFileInfo {
  int32_t columns = 0;
  int32_t rows = 0;
  float xMin = 0.0F;  ///< longitude of the first column, degrees
  float dx = 0.0F;
  float yMin = 0.0F;  ///< latitude of the first row, degrees
  float dy = 0.0F;

  bool operator==(const NadconFileInfo&) const = default;
};

/// Columns and rows are counted from 1, as the files count their nodes.  No point may be asked for before a pair is read.
class NadconGrid {
 public:
  /// Reads a header and checks it: columns and rows above 0, finite origin, finite spacing above 0, and a file
  /// that holds rows + 1 records.
  static bool ReadNadconFileInfo(GenericReader& file, NadconFileInfo& info);

  /// Reads a pair.  False, and the grid stays as it was, when a header fails its check or the headers differ.
  bool Initialize(GenericReader& los, GenericReader& las);

  /// The file's name without extension.
  const std::string& GetName() const { return m_Name; }
  void SetName(const std::string& name) { m_Name = name; }

  int Columns() const { return m_Columns; }
  int Rows() const { return m_Rows; }
  double XMin() const { return m_XMin; }
  double YMin() const { return m_YMin; }
  double Dx() const { return m_Dx; }
  double Dy() const { return m_Dy; }
  /// Shifts of a node, arc-seconds, positive east and north; columns 0 to Columns(), rows 0 to Rows().
  /// Column 0 and row 0 are no nodes of the file: their shifts are 0.
  double LonShift(int col, int row) const { return m_Shifts[Index(col, row)].lon; }
  double LatShift(int col, int row) const { return m_Shifts[Index(col, row)].lat; }

  /// True when the point, in degrees, has a node.
  ///
  /// Its column is trunc((x - xMin) / dx + 1), its row likewise; both must be from 0 to one less than the
  /// count.  Deliberate: up to two spacings west and south of the first node are inside with shift 0, the last
  /// column and row are outside.
  bool Contains(const shr::Vec2d& point) const {
    return point.x >= m_West && point.x <= m_East && point.y >= m_South && point.y <= m_North;
  }

  /// Adds the shift of the point's node.  A point outside stays.
  ///
  /// Deliberate: that shift itself, nothing is interpolated between nodes.
  void Forward(shr::Vec2d& point) const;
  /// The point that Forward takes to this one, by a secant iteration on each coordinate: residuals below 1e-10
  /// degree settle a coordinate; after 100 rounds the last guess stands.
  void Inverse(shr::Vec2d& point) const;

  /// What the kernels see of the grid; valid while it stands where it stands.
  NadconCells Cells() const;

 private:
  struct Node {
    double lon;
    double lat;
  };

  size_t Index(int col, int row) const {
    return static_cast<size_t>(row) * (static_cast<size_t>(m_Columns) + 1) + static_cast<size_t>(col);
  }
  void FindEdges();

  std::string m_Name;
  int m_Columns = 0;
  int m_Rows = 0;
  double m_XMin = 0.0;
  double m_YMin = 0.0;
  double m_Dx = 0.0;
  double m_Dy = 0.0;
  double m_West = 0.0;  // the least and largest coordinates that have a node
  double m_East = 0.0;
  double m_South = 0.0;
  double m_North = 0.0;
  std::vector<Node> m_Shifts;
};

}  // namespace orv::internal
