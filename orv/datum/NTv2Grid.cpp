#include "orv/datum/NTv2Grid.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/ByteReader.h"
#include "orv/core/internal/Marker.h"
#include "orv/lanes/Dispatch.h"

namespace orv::internal {

namespace {

constexpr size_t kRecordSize = 16;
constexpr size_t kHeaderSize = 11 * kRecordSize;
constexpr int kHeaderRecords = 11;

constexpr double kArcSecond = 4.84813681109536e-6;  // radians, as written
constexpr double kOnTheEdge = one::kNTv2Edge;
constexpr double kEnclosed = 1.0e-3;  // of the outer grid's spacing

/// The value of a record behind its keyword.
ByteReader ValueOf(const unsigned char* header, size_t record) {
  return {header + record * kRecordSize + 8, 8};
}

std::string ToFirstNul(const std::string& text) { return text.substr(0, text.find('\0')); }

/// Nodes along an extent, or 0 for more than an int counts.  Both arguments finite, the increment above 0.
int NodesAlong(double extent, double increment) {
  const double steps = std::fabs(extent) / increment + 0.5;
  return steps < 2147483646.0 ? static_cast<int>(steps) + 1 : 0;
}

}  // namespace

// ---- one grid --------------------------------------------------------------------------------------------

NTv2Status NTv2SubGrid::Read(GenericReader& file) {
  const NTv2Status status = ReadHeader(file);
  return status == NTv2Done ? ReadNodes(file) : status;
}

NTv2Status NTv2SubGrid::ReadHeader(GenericReader& file) {
  unsigned char header[kHeaderSize];
  if (!file.Read(header, kHeaderSize)) return NTv2ReadShort;
  m_Name = ToFirstNul(ValueOf(header, 0).Text(8));
  m_Parent = ToFirstNul(ValueOf(header, 1).Text(8));
  double south = 0.0, north = 0.0, east = 0.0, west = 0.0, latIncrement = 0.0, lonIncrement = 0.0;  // seconds
  double* const values[] = {&south, &north, &east, &west, &latIncrement, &lonIncrement};
  for (size_t i = 0; i < std::size(values); ++i) {
    *values[i] = ValueOf(header, 4 + i).F64();
    if (!std::isfinite(*values[i])) return NTv2BadGeometry;
  }
  const int32_t count = ValueOf(header, 10).I32();
  if (latIncrement <= 0.0 || lonIncrement <= 0.0) return NTv2BadGeometry;
  m_Columns = NodesAlong(west - east, lonIncrement);
  m_Rows = NodesAlong(north - south, latIncrement);
  if (m_Columns == 1 || m_Rows == 1) return NTv2BadGeometry;
  if (int64_t{m_Columns} * m_Rows != count || count <= 0) return NTv2BadHeader;
  m_West = -west * kArcSecond;
  m_South = south * kArcSecond;
  m_LonStep = lonIncrement * kArcSecond;
  m_LatStep = latIncrement * kArcSecond;
  m_East = m_West + (m_Columns - 1) * m_LonStep;
  m_North = m_South + (m_Rows - 1) * m_LatStep;
  m_PerLon = 1.0 / m_LonStep;
  m_PerLat = 1.0 / m_LatStep;
  m_MostLon = m_East - m_West + kOnTheEdge;
  m_MostLat = m_North - m_South + kOnTheEdge;
  return NTv2Done;
}

NTv2Status NTv2SubGrid::ReadNodes(GenericReader& file) {
  const auto columns = static_cast<size_t>(m_Columns);
  const auto rows = static_cast<size_t>(m_Rows);
  if (file.Left() / kRecordSize < columns * rows) return NTv2ReadShort;  // before anything is allocated
  m_Nodes.resize(columns * rows);
  std::vector<unsigned char> bytes;
  for (size_t row = 0; row < rows; ++row) {
    if (!file.Read(bytes, columns * kRecordSize)) return NTv2ReadShort;
    ByteReader values(bytes.data(), bytes.size());
    for (size_t k = 0; k < columns; ++k) {
      Node& node = m_Nodes[row * columns + (columns - 1 - k)];
      node.lat = static_cast<double>(values.F32()) * kArcSecond;
      node.lon = -static_cast<double>(values.F32()) * kArcSecond;
      values.Skip(8);
    }
  }
  return NTv2Done;
}

bool NTv2SubGrid::IsTopLevel() const {
  const size_t first = m_Parent.find_first_not_of(' ');
  const size_t last = m_Parent.find_last_not_of(' ');
  return first != std::string::npos && m_Parent.compare(first, last - first + 1, "NONE") == 0;
}

bool NTv2SubGrid::Meets(const NTv2SubGrid& other) const {
  return other.m_West <= m_East && other.m_East >= m_West && other.m_South <= m_North &&
         other.m_North >= m_South;
}

bool NTv2SubGrid::Covers(const NTv2SubGrid& other) const {
  return other.m_West >= m_West && other.m_East <= m_East && other.m_South >= m_South &&
         other.m_North <= m_North;
}

bool NTv2SubGrid::Encloses(const NTv2SubGrid& other) const {
  const double lonMargin = kEnclosed * m_LonStep;
  const double latMargin = kEnclosed * m_LatStep;
  return other.m_West >= m_West - lonMargin && other.m_East <= m_East + lonMargin &&
         other.m_South >= m_South - latMargin && other.m_North <= m_North + latMargin;
}

NTv2Cells NTv2SubGrid::Cells() const {
  NTv2Cells c = {};
  c.west = m_West;
  c.south = m_South;
  c.east = m_East;
  c.north = m_North;
  c.perLon = m_PerLon;
  c.perLat = m_PerLat;
  c.mostLon = m_MostLon;
  c.mostLat = m_MostLat;
  c.columns = m_Columns;
  c.rows = m_Rows;
  c.nodes = &m_Nodes.front().lon;
  return c;
}

bool NTv2SubGrid::Forward(shr::Vec2d& point) const {
  bool bFound = true;
  const one::Point shifted = one::Forward(Cells(), one::Point{point.x, point.y}, bFound);
  point = {shifted.x, shifted.y};
  return bFound;
}

bool NTv2SubGrid::Inverse(shr::Vec2d& point) const {
  const NTv2Cells cells = Cells();
  const one::Point p = {point.x, point.y};
  bool bSettled = false;
  one::NTv2Search search = {&cells, nullptr, true, p, p};
  one::Begin(search);
  for (int round = 0; round < one::kNTv2Rounds && search.active; ++round) bSettled = one::Refine(search);
  if (bSettled) point = {search.guess.x, search.guess.y};
  return bSettled;
}

// ---- the tree --------------------------------------------------------------------------------------------

NTv2Status NTv2Grid::Load(const std::string& name) {
  if (name.empty()) return NTv2NoName;
  std::string path;
  FileReader file;
  if (!ORVFindConfigFile(name.c_str(), path) || !file.Open(path)) return NTv2NotPresent;
  return Read(file);
}

NTv2Status NTv2Grid::Read(GenericReader& file) {
  NTv2Grid read;
  NTv2Status status = read.ReadGrids(file);
  if (status == NTv2Done) status = read.Attach();
  if (status == NTv2Done) *this = std::move(read);
  return status;
}

NTv2Status NTv2Grid::ReadGrids(GenericReader& file) {
  unsigned char header[kHeaderSize];
  if (!file.Read(header, kHeaderSize)) return NTv2ReadShort;
  if (ByteReader(header, kHeaderSize).Text(8) != "NUM_OREC") return NTv2BadHeader;
  if (ValueOf(header, 0).I32() != kHeaderRecords || ValueOf(header, 1).I32() != kHeaderRecords) {
    return NTv2BadHeader;
  }
  const int32_t count = ValueOf(header, 2).I32();
  if (ValueOf(header, 3).Text(7) != "SECONDS") return NTv2BadHeader;
  for (int32_t i = 0; i < count; ++i) {  // a limit only: the file's end comes first when the count is wrong
    NTv2SubGrid grid;
    const NTv2Status status = grid.Read(file);
    if (status != NTv2Done) return status;
    m_SubGrids.push_back(std::move(grid));
  }
  return NTv2Done;
}

NTv2Status NTv2Grid::Attach() {
  const size_t count = m_SubGrids.size();
  std::unordered_map<std::string, std::vector<size_t>> named;
  for (size_t i = 0; i < count; ++i) named[m_SubGrids[i].GetName()].push_back(i);

  m_Children.resize(count);
  for (size_t i = 0; i < count; ++i) {
    if (m_SubGrids[i].IsTopLevel()) {
      m_TopLevel.push_back(i);
      continue;
    }
    const auto found = named.find(m_SubGrids[i].GetParent());
    if (found == named.end()) return NTv2BadHeader;
    // Of parents with one name it is the first that encloses the child, or else the first.
    const std::vector<size_t>& parents = found->second;
    const auto encloses = [&](size_t k) { return k != i && m_SubGrids[k].Encloses(m_SubGrids[i]); };
    auto parent = std::find_if(parents.begin(), parents.end(), encloses);
    if (parent == parents.end()) {
      parent = std::find_if(parents.begin(), parents.end(), [i](size_t k) { return k != i; });
    }
    if (parent == parents.end()) return NTv2BadHeader;  // its own parent
    m_Children[*parent].push_back(i);
  }

  // Each grid hangs under one parent, so those that are not reached from the top are their own ancestors.
  std::vector<size_t> reached = m_TopLevel;
  for (size_t at = 0; at < reached.size(); ++at) {
    const std::vector<size_t>& children = m_Children[reached[at]];
    reached.insert(reached.end(), children.begin(), children.end());
  }
  if (reached.size() != count) return NTv2BadHeader;
  FindCertain();
  MakeCells();
  return NTv2Done;
}

// A grid is certain when the walk from the top cannot end elsewhere for any point of it: it has no children, no
// earlier grid of its siblings meets it, and the same holds of all grids above it, each of which covers it.
void NTv2Grid::FindCertain() {
  m_Certain.assign(m_SubGrids.size(), 0);
  std::vector<const std::vector<size_t>*> walk = {&m_TopLevel};  // siblings below grids that are met first
  std::vector<const NTv2SubGrid*> parents = {nullptr};
  while (!walk.empty()) {
    const std::vector<size_t>& siblings = *walk.back();
    const NTv2SubGrid* const parent = parents.back();
    walk.pop_back();
    parents.pop_back();
    // Many siblings would take long to compare with each other; what is not certain is only slower.
    const size_t most = std::min<size_t>(siblings.size(), 1000);
    for (size_t k = 0; k < most; ++k) {
      const NTv2SubGrid& grid = m_SubGrids[siblings[k]];
      if (parent && !parent->Covers(grid)) continue;
      const auto meets = [&](size_t earlier) { return m_SubGrids[earlier].Meets(grid); };
      if (std::any_of(siblings.begin(), siblings.begin() + static_cast<std::ptrdiff_t>(k), meets)) continue;
      if (m_Children[siblings[k]].empty()) {
        m_Certain[siblings[k]] = 1;
      } else {
        walk.push_back(&m_Children[siblings[k]]);
        parents.push_back(&grid);
      }
    }
  }
}

void NTv2Grid::MakeCells() {
  m_Lists = m_TopLevel;
  for (size_t i = 0; i < m_SubGrids.size(); ++i) {
    NTv2Cells cells = m_SubGrids[i].Cells();
    cells.child = m_Lists.size();
    cells.childCount = m_Children[i].size();
    cells.certain = m_Certain[i] != 0;
    m_Cells.push_back(cells);
    m_Lists.insert(m_Lists.end(), m_Children[i].begin(), m_Children[i].end());
  }
}

const NTv2SubGrid* NTv2Grid::GridFor(const shr::Vec2d& point) const {
  const long long chosen = one::GridOf(Set(), point.x, point.y);
  return chosen < 0 ? nullptr : &m_SubGrids[static_cast<size_t>(chosen)];
}

NTv2Status NTv2Grid::Shift(shr::Vec2d& point, bool inverse) const {
  const NTv2SubGrid* const grid = GridFor(point);
  if (!grid || point.y == kMarker) return NTv2Done;
  return (inverse ? grid->Inverse(point) : grid->Forward(point)) ? NTv2Done : NTv2NoShift;
}

void NTv2Grid::Transform(shr::Vec2d* points, size_t count, bool inverse) const {
  if (count == 0) return;
  const lanes::GridKernels<NTv2Set>& kernels = lanes::KernelsFor(count).ntv2;
  (inverse ? kernels.inverse : kernels.forward)(Set(), &points->x, count);
}

}  // namespace orv::internal
