#include "tools/orv/PointWriter.h"

#include <bit>
#include <cstdint>

#include "tools/orv/Conversion.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

void AppendEmpty(std::string& out, Separator separator) {
  if (separator == Separator::Blanks) out += "\"\"";
}

void AppendSeparator(std::string& out, Separator separator) {
  switch (separator) {
    case Separator::Comma:
      out += ',';
      break;
    case Separator::Semicolon:
      out += ';';
      break;
    case Separator::Tab:
      out += '\t';
      break;
    case Separator::Blanks:
      out += ' ';
      break;
  }
}

/// The fields that a line lacks, all empty, each with the separator in front of it.
void AppendMissing(std::string& out, const TextRow& row, Separator separator) {
  for (size_t i = 0; i < row.fieldsMissing; ++i) {
    AppendSeparator(out, separator);
    AppendEmpty(out, separator);
  }
}

/// @param value  null for a coordinate without a value; a field that the line lacks gets nothing here.
void AppendCoordinate(std::string& out, const double* value, Field field, Separator separator, int decimals) {
  if (value) {
    AppendFixed(out, *value, decimals);
  } else if (field.size > 0) {
    AppendEmpty(out, separator);
  }
}

/// @param point  null when the point has no value.
void AppendRow(std::string& out, const TextRow& row, const shr::Vec2d* point, Separator separator,
               bool xFirst, int decimals) {
  const Field first = xFirst ? row.x : row.y, second = xFirst ? row.y : row.x;
  const double* const x = point ? &point->x : nullptr;
  const double* const y = point ? &point->y : nullptr;
  const size_t firstEnd = first.at + first.size;
  out += row.text.substr(0, first.at);
  AppendCoordinate(out, xFirst ? x : y, first, separator, decimals);
  out += row.text.substr(firstEnd, second.at - firstEnd);
  AppendCoordinate(out, xFirst ? y : x, second, separator, decimals);
  out += row.text.substr(second.at + second.size);
  AppendMissing(out, row, separator);
  out += row.end;
}

void AppendLittleEndian(std::string& out, double value) {
  auto bits = std::bit_cast<uint64_t>(value);
  for (int i = 0; i < 8; ++i, bits >>= 8) out += static_cast<char>(bits & 0xFF);
}

}  // namespace

void AppendText(std::string& out, const PointBlock& block, Separator separator, Columns columns,
                int decimals) {
  for (const TextRow& row : block.rows) {
    if (row.kind == TextRow::Copied) {
      out += row.text;
      out += row.end;
      continue;
    }
    const shr::Vec2d* point = row.kind == TextRow::Point ? &block.points[row.point] : nullptr;
    if (point && IsLost(*point)) point = nullptr;
    AppendRow(out, row, point, separator, columns.x < columns.y, decimals);
  }
}

void AppendBinary(std::string& out, const PointBlock& block) {
  for (const shr::Vec2d& point : block.points) {
    AppendLittleEndian(out, point.x);
    AppendLittleEndian(out, point.y);
  }
}

}  // namespace orv::tool
