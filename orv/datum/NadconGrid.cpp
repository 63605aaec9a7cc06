#include "orv/datum/NadconGrid.h"

#include <cmath>
#include <utility>

#include "orv/core/internal/ByteReader.h"

namespace orv::internal {

namespace {

constexpr uint64_t kHeaderAt = 64;
constexpr size_t kHeaderSize = 28;
constexpr int kMostRounds = 100;
constexpr double kFirstStep = 1e-7;  // degrees
constexpr double kSettled = 1e-10;   // degrees, absolute

uint64_t RecordSize(const NadconFileInfo& info) { return 4 * (static_cast<uint64_t>(info.columns) + 1); }

/// Reads the values of a file, `sign` times each, behind the zeros of row 0 and column 0.
bool ReadShifts(GenericReader& file, const NadconFileInfo& info, double sign, std::vector<double>& shifts) {
  const auto columns = static_cast<size_t>(info.columns);
  const auto rows = static_cast<size_t>(info.rows);
  shifts.assign((columns + 1) * (rows + 1), 0.0);
  std::vector<unsigned char> record;
  for (size_t row = 1; row <= rows; ++row) {
    if (!file.Seek(row * RecordSize(info)) || !file.Read(record, RecordSize(info))) return false;
    ByteReader values(record.data(), record.size());
    values.Skip(4);
    for (size_t col = 1; col <= columns; ++col) {
      shifts[row * (columns + 1) + col] = sign * static_cast<double>(values.F32());
    }
  }
  return true;
}

/// One coordinate of a secant iteration.
class Secant {
 public:
  /// @param residual  at the input itself, which is the guess before the first.
  Secant(double input, double residual)
      : m_Previous(input), m_PreviousResidual(residual), m_Guess(input + kFirstStep) {}

  double Guess() const { return m_Guess; }
  void Update(double residual) {
    if (std::fabs(residual) < kSettled) return;
    const double change = residual - m_PreviousResidual;
    if (change == 0.0) return;  // both nodes' residuals are the same: no secant
    const double next = m_Guess - residual * (m_Guess - m_Previous) / change;
    m_Previous = m_Guess;
    m_PreviousResidual = residual;
    m_Guess = next;
  }

 private:
  double m_Previous;
  double m_PreviousResidual;
  double m_Guess;
};

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
  std::vector<double> lonShifts, latShifts;
  // The file's longitude shifts are positive west.
  if (!ReadShifts(los, info, -1.0, lonShifts) || !ReadShifts(las, info, 1.0, latShifts)) return false;
  m_Columns = info.columns;
  m_Rows = info.rows;
  m_XMin = info.xMin;
  m_YMin = info.yMin;
  m_Dx = info.dx;
  m_Dy = info.dy;
  m_LonShifts = std::move(lonShifts);
  m_LatShifts = std::move(latShifts);
  return true;
}

bool NadconGrid::NodeOf(const shr::Vec2d& point, int& col, int& row) const {
  const double u = (point.x - m_XMin) / m_Dx + 1.0;
  const double v = (point.y - m_YMin) / m_Dy + 1.0;
  // Tested as doubles, since a far point's quotient fits no int.  Truncation makes all above -1 a column 0.
  if (!(u > -1.0 && u < m_Columns && v > -1.0 && v < m_Rows)) return false;
  col = static_cast<int>(u);
  row = static_cast<int>(v);
  return true;
}

bool NadconGrid::Contains(const shr::Vec2d& point) const {
  int col, row;
  return NodeOf(point, col, row);
}

void NadconGrid::Forward(shr::Vec2d& point) const {
  int col, row;
  if (!NodeOf(point, col, row)) return;
  // Deliberate: the weights of the cell's four nodes come from the whole column and row, so the fractions are 0
  // and the shift is that of the first node.
  point.x += LonShift(col, row) / 3600.0;
  point.y += LatShift(col, row) / 3600.0;
}

void NadconGrid::Inverse(shr::Vec2d& point) const {
  const auto residual = [this, input = point](shr::Vec2d guess) {
    Forward(guess);
    return shr::Vec2d(guess.x - input.x, guess.y - input.y);
  };
  const shr::Vec2d first = residual(point);
  Secant x(point.x, first.x), y(point.y, first.y);
  for (int round = 0; round < kMostRounds; ++round) {
    const shr::Vec2d left = residual({x.Guess(), y.Guess()});
    if (std::fabs(left.x) < kSettled && std::fabs(left.y) < kSettled) break;
    x.Update(left.x);
    y.Update(left.y);
  }
  point = {x.Guess(), y.Guess()};
}

}  // namespace orv::internal
