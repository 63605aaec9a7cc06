#include "orv/datum/NTv2Grid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>
#include <utility>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/Angle.h"
#include "orv/core/internal/ByteReader.h"
#include "orv/core/internal/Marker.h"

namespace orv::internal {

namespace {

constexpr size_t kRecordSize = 16;
constexpr size_t kHeaderSize = 11 * kRecordSize;
constexpr int kHeaderRecords = 11;

constexpr double kArcSecond = 4.84813681109536e-6;  // radians, as written
constexpr int kMostRounds = 11;
constexpr double kSettled = 1e-12;    // radians, absolute
constexpr double kOnTheEdge = 1e-12;  // radians: rounding of an offset, not a margin (6 micrometres)
constexpr double kEnclosed = 1.0e-3;  // of the outer grid's spacing

/// The value of a record behind its keyword.
ByteReader ValueOf(const unsigned char* header, size_t record) {
  return {header + record * kRecordSize + 8, 8};
}

std::string ToFirstNul(const std::string& text) { return text.substr(0, text.find('\0')); }

/// Into 0 to 2 pi: pi is taken off, the rest brought into -pi to pi, and pi put back.
inline double WrappedOffset(double radians) {
  double centred = radians - kPi;
  const double back = centred + kPi;
  if (back >= 0.0 && back < 6.28) return back;  // no turn to take off: the same bits, without a call
  centred -= 2.0 * kPi * std::floor(back / (2.0 * kPi));
  return centred + kPi;
}

/// Into 0 to `most`; a NaN, which the smallest spacings make, gives 0.
inline double Within(double value, int most) {
  const double notBelow = value > 0.0 ? value : 0.0;
  return notBelow < most ? notBelow : most;
}

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

bool NTv2SubGrid::ShiftAt(const shr::Vec2d& point, shr::Vec2d& shift) const {
  const double lon = WrappedOffset(point.x - m_West);
  const double lat = point.y - m_South;
  if (!(lon <= m_MostLon && lat >= -kOnTheEdge && lat <= m_MostLat)) return false;
  const double u = Within(lon * m_PerLon, m_Columns - 1);
  const double v = Within(lat * m_PerLat, m_Rows - 1);
  // A point on the east or north edge belongs to the last cell.
  const int col = std::min(static_cast<int>(u), m_Columns - 2);
  const int row = std::min(static_cast<int>(v), m_Rows - 2);
  const double s = u - col;
  const double t = v - row;
  const Node* const south = &NodeAt(col, row);
  const Node* const north = south + m_Columns;
  const double southWest = (1.0 - s) * (1.0 - t);
  const double southEast = s * (1.0 - t);
  const double northWest = (1.0 - s) * t;
  const double northEast = s * t;
  shift.x = southWest * south[0].lon + southEast * south[1].lon + northWest * north[0].lon +
            northEast * north[1].lon;
  shift.y = southWest * south[0].lat + southEast * south[1].lat + northWest * north[0].lat +
            northEast * north[1].lat;
  return std::isfinite(shift.x + shift.y);  // shifts are float32 seconds: no sum of finite ones overflows
}

bool NTv2SubGrid::BeginInverse(const shr::Vec2d& point, shr::Vec2d& guess) const {
  shr::Vec2d shift;
  if (!ShiftAt(point, shift)) return false;
  guess = {point.x - shift.x, point.y - shift.y};
  return true;
}

NTv2SubGrid::Round NTv2SubGrid::RefineInverse(const shr::Vec2d& point, shr::Vec2d& guess) const {
  shr::Vec2d shift;
  if (!ShiftAt(guess, shift)) return Round::NoShift;
  const shr::Vec2d residual(guess.x + shift.x - point.x, guess.y + shift.y - point.y);
  guess = {guess.x - residual.x, guess.y - residual.y};
  const bool bBothLarge = std::fabs(residual.x) > kSettled && std::fabs(residual.y) > kSettled;
  return bBothLarge ? Round::GoesOn : Round::Settled;
}

bool NTv2SubGrid::Inverse(shr::Vec2d& point) const {
  shr::Vec2d guess;
  if (!BeginInverse(point, guess)) return false;
  Round round = Round::GoesOn;
  for (int i = 0; i < kMostRounds && round == Round::GoesOn; ++i) round = RefineInverse(point, guess);
  if (round == Round::Settled) point = guess;
  return round == Round::Settled;
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

const NTv2SubGrid* NTv2Grid::GridFor(const shr::Vec2d& point) const {
  const NTv2SubGrid* chosen = nullptr;
  const std::vector<size_t>* candidates = &m_TopLevel;
  while (candidates) {
    const std::vector<size_t>* next = nullptr;
    for (const size_t i : *candidates) {
      if (!m_SubGrids[i].Contains(point)) continue;
      chosen = &m_SubGrids[i];
      next = &m_Children[i];
      break;
    }
    candidates = next;
  }
  return chosen;
}

NTv2Status NTv2Grid::Shift(const NTv2SubGrid* grid, shr::Vec2d& point, bool inverse) {
  if (!grid || point.y == kMarker) return NTv2Done;
  return (inverse ? grid->Inverse(point) : grid->Forward(point)) ? NTv2Done : NTv2NoShift;
}

NTv2Status NTv2Grid::Shift(shr::Vec2d& point, bool inverse) const {
  return Shift(GridFor(point), point, inverse);
}

void NTv2Grid::Transform(shr::Vec2d* points, size_t count, bool inverse) const {
  const NTv2SubGrid* last = nullptr;  // a certain grid, which spares the walk to the points near it
  const auto gridOf = [&](const shr::Vec2d& point) {
    if (last && last->Contains(point)) return last;
    const NTv2SubGrid* const grid = GridFor(point);
    last = grid && m_Certain[static_cast<size_t>(grid - m_SubGrids.data())] ? grid : nullptr;
    return grid;
  };
  if (!inverse) {
    for (size_t i = 0; i < count; ++i) {
      if (IsMarked(points[i])) continue;
      if (const NTv2SubGrid* const grid = gridOf(points[i])) grid->Forward(points[i]);
    }
    return;
  }
  // A round waits for the one before it, so the rounds of many points are taken side by side.
  struct Search {
    const NTv2SubGrid* grid;
    shr::Vec2d* point;
    shr::Vec2d guess;
  };
  std::array<Search, 16> searches;
  for (size_t i = 0; i < count;) {
    size_t active = 0;
    for (; i < count && active < searches.size(); ++i) {
      if (IsMarked(points[i])) continue;
      Search& search = searches[active];
      search.grid = gridOf(points[i]);
      search.point = &points[i];
      if (search.grid && search.grid->BeginInverse(points[i], search.guess)) ++active;
    }
    for (int round = 0; round < kMostRounds && active > 0; ++round) {
      size_t left = 0;
      for (size_t k = 0; k < active; ++k) {
        Search& search = searches[k];
        const NTv2SubGrid::Round result = search.grid->RefineInverse(*search.point, search.guess);
        if (result == NTv2SubGrid::Round::Settled) *search.point = search.guess;
        if (result == NTv2SubGrid::Round::GoesOn) searches[left++] = search;
      }
      active = left;
    }
  }
}

}  // namespace orv::internal
