#include "orv/datum/NadconGrid.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "orv/core/internal/ByteReader.h"

namespace orv::internal {

namespace {

constexpr uint64_t kHeaderAt = 64;
constexpr size_t kHeaderSize = 28;

uint64_t RecordSize(const NadconFileInfo& info) { return 4 * (static_cast<uint64_t>(info.columns) + 1); }

/// Reads the values of a file, `sign` times each, to set(node, value); nodes are counted row by row behind the zeros
/// of row 0 and column 0.
template <class Set>
bool ReadShifts(GenericReader& file, const NadconFileInfo& info, double sign, Set set) {
  const auto columns = static_cast<size_t>(info.columns);
  const auto rows = static_cast<size_t>(info.rows);
  std::vector<unsigned char> record;
  for (size_t row = 1; row <= rows; ++row) {
    if (!file.Seek(row * RecordSize(info)) || !file.Read(record, RecordSize(info))) return false;
    ByteReader values(record.data(), record.size());
    values.Skip(4);
    for (size_t col = 1; col <= columns; ++col) {
      set(row * (columns + 1) + col, sign * static_cast<double>(values.F32()));
    }
  }
  return true;
}

/// The least finite double of which `after` holds, for a condition that holds from some number on, the largest
/// finite one included.
template <class Condition>
double First(Condition after) {
  // Doubles in their order as integers: the bits of a negative one run the other way.
  const auto numbered = [](int64_t n) {
    return std::bit_cast<double>(n < 0 ? std::numeric_limits<int64_t>::min() - n : n);
  };
  int64_t high = std::bit_cast<int64_t>(std::numeric_limits<double>::max());
  int64_t low = -high;
  if (after(numbered(low))) return numbered(low);
  while (high - 1 > low) {  // after(high) and not after(low)
    const int64_t middle = low / 2 + high / 2 + (low % 2 + high % 2) / 2;
    (after(numbered(middle)) ? high : low) = middle;
  }
  return numbered(high);
}

}  // namespace

bool NadconGrid::ReadNadconFileInfo(GenericReader& file, NadconFileInfo& info) {
  unsigned char bytes[kHeaderSize];
  if (!file.Seek(kHeaderAt) || !file.Read(bytes, kHeaderSize)) return false;
  ByteReader header(bytes, kHeaderSize);
  info.columns = header.I32();
  info.rows = header.I32();
  header.Skip(4);
  info.xMin = header.F32();
  info.dx = header.F32();
  info.yMin = header.F32();
  info.dy = header.F32();
  if (info.columns < 1 || info.rows < 1) return false;
  if (!std::isfinite(info.xMin) || !std::isfinite(info.yMin)) return false;
  if (!std::isfinite(info.dx) || !std::isfinite(info.dy) || info.dx <= 0.0F || info.dy <= 0.0F) return false;
  return file.Size() / RecordSize(info) >= static_cast<uint64_t>(info.rows) + 1;
}

bool NadconGrid::Initialize(GenericReader& los, GenericReader& las) {
  NadconFileInfo info, other;
  if (!ReadNadconFileInfo(los, info) || !ReadNadconFileInfo(las, other) || info != other) return false;
  std::vector<Node> shifts((static_cast<size_t>(info.columns) + 1) * (static_cast<size_t>(info.rows) + 1));
  // The file's longitude shifts are positive west.
  if (!ReadShifts(los, info, -1.0, [&](size_t node, double shift) { shifts[node].lon = shift; }) ||
      !ReadShifts(las, info, 1.0, [&](size_t node, double shift) { shifts[node].lat = shift; })) {
    return false;
  }
  m_Columns = info.columns;
  m_Rows = info.rows;
  m_XMin = info.xMin;
  m_YMin = info.yMin;
  m_Dx = info.dx;
  m_Dy = info.dy;
  m_Shifts = std::move(shifts);
  FindEdges();
  return true;
}

// A coordinate has a node when u = (x - min) / step + 1 lies above -1 and below the count: all above -1 are truncated
// to column 0.  Each operation keeps the order of its operands, so these are all x between two.
void NadconGrid::FindEdges() {
  const auto edges = [](double min, double step, int count, double& least, double& largest) {
    const auto u = [=](double x) { return (x - min) / step + 1.0; };
    least = First([&](double x) { return u(x) > -1.0; });
    largest = std::nextafter(First([&](double x) { return u(x) >= count; }), -HUGE_VAL);
  };
  edges(m_XMin, m_Dx, m_Columns, m_West, m_East);
  edges(m_YMin, m_Dy, m_Rows, m_South, m_North);
}

NadconCells NadconGrid::Cells() const {
  return {m_West,
          m_East,
          m_South,
          m_North,
          m_XMin,
          m_YMin,
          m_Dx,
          m_Dy,
          static_cast<double>(m_Columns) + 1.0,
          &m_Shifts.front().lon};
}

void NadconGrid::Forward(shr::Vec2d& point) const {
  // Deliberate: the weights of the cell's four nodes come from the whole column and row, so the fractions are 0
  // and the shift is that of the first node.
  const one::Point shifted = one::Forward(Cells(), one::Point{point.x, point.y}, true);
  point = {shifted.x, shifted.y};
}

void NadconGrid::Inverse(shr::Vec2d& point) const {
  const one::Point found = one::Inverse(Cells(), one::Point{point.x, point.y}, true);
  point = {found.x, found.y};
}

}  // namespace orv::internal
