#include "tools/orv/PointReader.h"

#include <fmt/core.h>
#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

constexpr size_t kBlockBytes = size_t{1} << 20;
constexpr size_t kBlockPoints = size_t{1} << 16;

[[noreturn]] void FailReading() {
  throw UsageError(fmt::format("cannot read the points: {}", std::strerror(errno)));
}

double LittleEndianDouble(const unsigned char* bytes) {
  uint64_t bits = 0;
  for (int i = 7; i >= 0; --i) bits = bits << 8 | bytes[i];
  return std::bit_cast<double>(bits);
}

/// A hemisphere letter of the other axis at the end of an angle; "s" may mean seconds, so only "S" counts.
bool NamesOtherAxis(std::string_view text, bool isX) {
  const std::string_view letters = isX ? "NnS" : "EeWw";
  return !text.empty() && letters.find(text.back()) != std::string_view::npos;
}

/// Whether a field may be the name of a column: it does not begin like a number.
bool NamesColumn(const std::string& field) {
  return !field.empty() && std::string_view("0123456789+-.").find(field[0]) == std::string_view::npos;
}

}  // namespace

TextPointReader::TextPointReader(std::FILE* file, const Options& options)
    : m_File(file), m_Options(options) {}

bool TextPointReader::FillBuffer(std::string& buffer) {
  buffer.swap(m_Rest);
  m_Rest.clear();
  for (;;) {
    const size_t had = buffer.size();
    buffer.resize(had + kBlockBytes);
    const size_t got = std::fread(buffer.data() + had, 1, kBlockBytes, m_File);
    buffer.resize(had + got);
    if (std::ferror(m_File)) FailReading();
    if (got < kBlockBytes && std::feof(m_File)) return !buffer.empty();
    const size_t lineEnd = buffer.rfind('\n');
    if (lineEnd != std::string::npos) {
      m_Rest.assign(buffer, lineEnd + 1);
      buffer.resize(lineEnd + 1);
      return true;
    }
  }
}

bool TextPointReader::Next(PointBlock& block) {
  block.rows.clear();
  block.points.clear();
  block.problems.clear();
  block.first = m_NextLine;
  if (!FillBuffer(block.buffer)) return false;

  const std::string_view all = block.buffer;
  for (size_t at = 0; at < all.size(); ++m_NextLine) {
    const size_t lineEnd = all.find('\n', at);
    const size_t next = lineEnd == std::string_view::npos ? all.size() : lineEnd + 1;
    size_t textEnd = lineEnd == std::string_view::npos ? next : lineEnd;
    if (textEnd > at && all[textEnd - 1] == '\r') --textEnd;
    TextRow row;
    row.text = all.substr(at, textEnd - at);
    row.end = all.substr(textEnd, next - textEnd);
    if (!IsEmpty(row.text)) {
      if (m_bBegun) {
        ReadRow(row, block);
      } else {
        Begin(row.text, row, block);
      }
    }
    block.rows.push_back(row);
    at = next;
  }
  return true;
}

bool TextPointReader::IsEmpty(std::string_view line) const {
  const bool tabsCount = m_bBegun && m_Separator == Separator::Tab;
  return line.find_first_not_of(tabsCount ? " " : " \t") == std::string_view::npos;
}

void TextPointReader::Begin(std::string_view line, TextRow& row, PointBlock& block) {
  const std::string_view text = line.starts_with("\xEF\xBB\xBF") ? line.substr(3) : line;
  m_Separator = m_Options.separator ? *m_Options.separator : DetectSeparator(text);
  std::vector<std::string> names;
  if (SplitLine(text, m_Separator, m_Fields)) {
    for (const Field& field : m_Fields) names.emplace_back(FieldText(text, field, m_Room));
  }
  const bool byName = m_Options.columns.ByName();
  if (byName && m_Options.header == false) throw UsageError("--columns: names need a header");
  m_Columns = m_Options.columns.Find(names);
  m_bBegun = true;

  bool isHeader = byName;
  if (m_Options.header) {
    isHeader = *m_Options.header;
  } else if (!byName && std::max(m_Columns.x, m_Columns.y) < names.size()) {
    isHeader = NamesColumn(names[m_Columns.x]) && NamesColumn(names[m_Columns.y]);
  }
  if (isHeader) return;
  // A byte order mark in front of data is left out: it is no part of the first number.
  row.text = text;
  ReadRow(row, block);
}

void TextPointReader::ReadRow(TextRow& row, PointBlock& block) {
  std::string problem;
  shr::Vec2d point;
  const size_t needed = std::max(m_Columns.x, m_Columns.y) + 1;
  if (!SplitLine(row.text, m_Separator, m_Fields)) {
    // Nothing is known of the fields, so nothing of the line can be replaced: it stays, with an empty pair
    // behind.
    problem = "a quoted field is not closed";
    row.x = row.y = {row.text.size(), 0};
    row.fieldsMissing = 2;
  } else if (m_Fields.size() < needed) {
    problem = fmt::format("the line has {} field{}, but the coordinates are fields {} and {}",
                          m_Fields.size(), m_Fields.size() == 1 ? "" : "s", m_Columns.x + 1, m_Columns.y + 1);
    const Field none{row.text.size(), 0};
    row.x = m_Columns.x < m_Fields.size() ? m_Fields[m_Columns.x] : none;
    row.y = m_Columns.y < m_Fields.size() ? m_Fields[m_Columns.y] : none;
    row.fieldsMissing = needed - m_Fields.size();
  } else {
    row.x = m_Fields[m_Columns.x];
    row.y = m_Fields[m_Columns.y];
    if (ReadCoordinate(FieldText(row.text, row.x, m_Room), true, point.x, problem) &&
        ReadCoordinate(FieldText(row.text, row.y, m_Room), false, point.y, problem)) {
      row.kind = TextRow::Point;
      row.point = block.points.size();
      block.points.push_back(point);
      return;
    }
  }
  row.kind = TextRow::Bad;
  row.point = block.problems.size();
  block.problems.push_back(std::move(problem));
}

bool TextPointReader::ReadCoordinate(std::string_view text, bool isX, double& value,
                                     std::string& problem) const {
  if (text.empty()) {
    problem = isX ? "the x coordinate is empty" : "the y coordinate is empty";
    return false;
  }
  if (!m_Options.geographic) {
    if (ParseNumber(text, value)) return true;
    problem = fmt::format("'{}' is not a number", Excerpt(text));
    return false;
  }
  if (!ParseNumber(text, value)) {
    if (!ParseAngle(text, value)) {
      problem = fmt::format("'{}' is neither a number nor degrees, minutes and seconds", Excerpt(text));
      return false;
    }
    if (NamesOtherAxis(text, isX)) {
      problem = isX ? fmt::format("'{}' is a latitude where the longitude should be", Excerpt(text))
                    : fmt::format("'{}' is a longitude where the latitude should be", Excerpt(text));
      return false;
    }
  }
  if (!isX && std::fabs(value) > 90.0) {
    problem = fmt::format("latitude {} is beyond 90 degrees", Excerpt(text));
    return false;
  }
  return true;
}

bool BinaryPointReader::Next(PointBlock& block) {
  block.rows.clear();
  block.points.clear();
  block.problems.clear();
  block.first = m_NextPoint;
  if (m_Left != 0) {
    throw UsageError(
        fmt::format("the data ends with {} byte{} of a point that has 16", m_Left, m_Left == 1 ? "" : "s"));
  }
  block.buffer.resize(kBlockPoints * 16);
  const size_t got = std::fread(block.buffer.data(), 1, block.buffer.size(), m_File);
  if (std::ferror(m_File)) FailReading();
  m_Left = got % 16;
  const size_t count = got / 16;
  if (count == 0) return m_Left != 0 && Next(block);
  block.points.resize(count);
  const auto* bytes = reinterpret_cast<const unsigned char*>(block.buffer.data());
  for (shr::Vec2d& point : block.points) {
    point.x = LittleEndianDouble(bytes);
    point.y = LittleEndianDouble(bytes + 8);
    bytes += 16;
  }
  m_NextPoint += count;
  return true;
}

}  // namespace orv::tool
