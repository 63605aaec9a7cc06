#include "tools/orv/TextBlock.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tools/orv/FixedNumber.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

/// A hemisphere letter of the other axis at the end of an angle; "s" may mean seconds, so only "S" counts.
bool NamesOtherAxis(std::string_view text, bool isX) {
  const std::string_view letters = isX ? "NnS" : "EeWw";
  return !text.empty() && letters.find(text.back()) != std::string_view::npos;
}

uint32_t Short(size_t place) { return static_cast<uint32_t>(place); }

const char* EndOfLine(const char* at, const char* end) {
  const void* const found = std::memchr(at, '\n', static_cast<size_t>(end - at));
  return found ? static_cast<const char*>(found) : end;
}

class RowReader {
 public:
  RowReader(const TextForm& form, TextBlock& block)
      : m_Form(form),
        m_Block(block),
        m_Begin(block.input.Data()),
        m_End(m_Begin + block.input.Size()),
        m_Between(form.FieldSeparator() == Separator::Comma       ? ','
                  : form.FieldSeparator() == Separator::Semicolon ? ';'
                                                                  : '\t'),
        m_bBlanks(form.FieldSeparator() == Separator::Blanks),
        m_bQuotes(form.FieldSeparator() != Separator::Tab &&
                  block.input.View().find('"') != std::string_view::npos),
        m_bAscending(form.First() < form.Second()),
        m_Low(std::min(form.First(), form.Second())),
        m_High(std::max(form.First(), form.Second())) {}

  void ReadAll() {
    const char* at = m_Begin + m_Block.start.data;
    m_Line = static_cast<uint32_t>(std::count(m_Begin, m_Begin + m_Block.start.copied, '\n'));
    for (; at != m_End; ++m_Line) {
      const char* const next = ReadPlain(at);
      at = next ? next : ReadAny(at);
    }
    m_Block.lines = m_Line;
  }

 private:
  /// Behind the separators in front of field `to`, from the beginning of field `from`; null when the line ends before,
  /// or a quote stands there.
  const char* Skip(const char* at, size_t from, size_t to) const {
    if (!m_bBlanks) {
      for (; from < to; ++from) {
        while (at != m_End && *at != m_Between && *at != '\n' && *at != '"') ++at;
        if (at == m_End || *at != m_Between) return nullptr;
        ++at;
      }
      return at;
    }
    for (;; ++from) {
      while (at != m_End && (*at == ' ' || *at == '\t')) ++at;
      if (from == to) return at;
      while (at != m_End && *at != ' ' && *at != '\t' && *at != '\n' && *at != '"') ++at;
      if (at == m_End || *at == '\n' || *at == '"') return nullptr;
    }
  }

  bool EndsField(const char* at) const {
    if (at == m_End || *at == '\n') return true;
    if (*at == '\r') return at + 1 == m_End || at[1] == '\n';
    return m_bBlanks ? *at == ' ' || *at == '\t' : *at == m_Between;
  }

  /// A line whose coordinates are plain numbers, found without cutting it into fields.  Whatever is unusual is left to
  /// ReadAny: quotes, angles, exponents, empty lines, missing fields.
  ///
  /// @return behind the line, or null.
  const char* ReadPlain(const char* begin) {
    double low = 0.0, high = 0.0;
    const char* const lowAt = Skip(begin, 0, m_Low);
    const char* const lowEnd = lowAt ? ParsePlainNumber(lowAt, m_End, low) : nullptr;
    if (!lowEnd || !EndsField(lowEnd)) return nullptr;
    // Behind the number the separator is next, but of blanks there may be any number.
    const char* const highAt = Skip(lowEnd, m_Low + (m_bBlanks ? 1 : 0), m_High);
    const char* const highEnd = highAt ? ParsePlainNumber(highAt, m_End, high) : nullptr;
    if (!highEnd || !EndsField(highEnd)) return nullptr;
    const char* const feed = highEnd != m_End && *highEnd == '\n' ? highEnd : EndOfLine(highEnd, m_End);
    if (m_bQuotes && std::memchr(highEnd, '"', static_cast<size_t>(feed - highEnd))) return nullptr;
    const shr::Vec2d point =
        m_bAscending != m_Form.ReadsYFirst() ? shr::Vec2d(low, high) : shr::Vec2d(high, low);
    if (m_Form.Options().fromGeographic && std::fabs(point.y) > m_Form.Options().pole) return nullptr;

    const char* const textEnd = feed != highEnd && feed[-1] == '\r' ? feed - 1 : feed;
    const uint32_t lowPlace = Place(lowAt), lowSize = Short(static_cast<size_t>(lowEnd - lowAt));
    const uint32_t highPlace = Place(highAt), highSize = Short(static_cast<size_t>(highEnd - highAt));
    TextRow row{Place(begin),
                Place(textEnd),
                Place(feed == m_End ? m_End : feed + 1),
                lowPlace,
                lowSize,
                highPlace,
                highSize,
                0,
                m_Line,
                static_cast<int32_t>(m_Block.points.size())};
    if (!m_bAscending) {
      std::swap(row.firstAt, row.secondAt);
      std::swap(row.firstSize, row.secondSize);
    }
    m_Block.rows.push_back(row);
    m_Block.points.push_back(point);
    return m_Begin + row.end;
  }

  /// Any line.  @return behind it.
  const char* ReadAny(const char* begin) {
    const LineCut line = FirstLine({begin, static_cast<size_t>(m_End - begin)});
    const char* const blanks = m_Form.FieldSeparator() == Separator::Tab ? " " : " \t";
    if (line.text.find_first_not_of(blanks) == std::string_view::npos) return begin + line.size;
    TextRow row{};
    row.begin = Place(begin);
    row.textEnd = row.begin + Short(line.text.size());
    row.end = row.begin + Short(line.size);
    row.line = m_Line;
    TextProblem problem{BadLine::NoNumber, "", {}};
    shr::Vec2d point;
    if (ReadFields(line.text, row, point, problem)) {
      row.point = static_cast<int32_t>(m_Block.points.size());
      m_Block.points.push_back(point);
    } else {
      row.point = -1 - static_cast<int32_t>(m_Block.problems.size());
      problem.point = point;
      m_Block.problems.push_back(std::move(problem));
    }
    m_Block.rows.push_back(row);
    return begin + line.size;
  }

  bool ReadFields(std::string_view text, TextRow& row, shr::Vec2d& point, TextProblem& problem) {
    const Field none{text.size(), 0};
    if (!SplitLine(text, m_Form.FieldSeparator(), m_Fields)) {
      // Nothing is known of the fields, so nothing of the line can be replaced: it stays, with an empty pair behind.
      problem = {BadLine::OpenQuote, "a quoted field is not closed", {}};
      Place(row, none, none);
      row.missing = 2;
      return false;
    }
    const size_t first = m_Form.First(), second = m_Form.Second(), has = m_Fields.size();
    const Field firstField = first < has ? m_Fields[first] : none;
    const Field secondField = second < has ? m_Fields[second] : none;
    Place(row, firstField, secondField);
    if (has <= m_High) {
      problem = {BadLine::FewFields,
                 fmt::format("the line has {} field{}, but the coordinates are fields {} and {}", has,
                             has == 1 ? "" : "s", first + 1, second + 1),
                 {}};
      row.missing = Short(m_High + 1 - has);
      return false;
    }
    const bool bYFirst = m_Form.ReadsYFirst();
    return ReadCoordinate(FieldText(text, firstField, m_Room), !bYFirst, bYFirst ? point.y : point.x,
                          problem) &&
           ReadCoordinate(FieldText(text, secondField, m_Room), bYFirst, bYFirst ? point.x : point.y,
                          problem) &&
           IsOnEarth(text, bYFirst ? firstField : secondField, point, problem);
  }

  static void Place(TextRow& row, Field first, Field second) {
    row.firstAt = row.begin + Short(first.at);
    row.firstSize = Short(first.size);
    row.secondAt = row.begin + Short(second.at);
    row.secondSize = Short(second.size);
  }

  bool ReadCoordinate(std::string_view text, bool isX, double& value, TextProblem& problem) const {
    if (text.empty()) {
      problem.kind = BadLine::EmptyCoordinate;
      problem.text = isX ? "the x coordinate is empty" : "the y coordinate is empty";
      return false;
    }
    if (ParseNumber(text, value)) return true;
    if (!m_Form.Options().fromDegrees) {
      problem = {BadLine::NoNumber, fmt::format("'{}' is not a number", Excerpt(text)), {}};
      return false;
    }
    if (!ParseAngle(text, value)) {
      problem = {BadLine::NoAngle,
                 fmt::format("'{}' is neither a number nor degrees, minutes and seconds", Excerpt(text)),
                 {}};
      return false;
    }
    if (!NamesOtherAxis(text, isX)) return true;
    problem.kind = BadLine::OtherAxis;
    problem.text = isX ? fmt::format("'{}' is a latitude where the longitude should be", Excerpt(text))
                       : fmt::format("'{}' is a longitude where the latitude should be", Excerpt(text));
    return false;
  }

  bool IsOnEarth(std::string_view line, Field latitude, const shr::Vec2d& point, TextProblem& problem) {
    if (!m_Form.Options().fromGeographic || !(std::fabs(point.y) > m_Form.Options().pole)) return true;
    problem.kind = BadLine::BeyondPole;
    problem.text =
        fmt::format("latitude {} is beyond 90 degrees", Excerpt(FieldText(line, latitude, m_Room)));
    return false;
  }

  uint32_t Place(const char* at) const { return Short(static_cast<size_t>(at - m_Begin)); }

  const TextForm& m_Form;
  TextBlock& m_Block;
  const char* m_Begin;
  const char* m_End;
  char m_Between;
  bool m_bBlanks;
  bool m_bQuotes;  ///< whether the block has any that count
  bool m_bAscending;
  size_t m_Low;
  size_t m_High;
  uint32_t m_Line = 0;
  std::vector<Field> m_Fields;
  std::string m_Room;
};

/// memcpy for what is mostly a few bytes: sixteen are copied at once, since buffers have room behind their end.
char* Copy(char* to, const char* from, size_t size) {
  if (size <= ByteBuffer::kSpare) {
    std::memcpy(to, from, ByteBuffer::kSpare);
  } else {
    std::memcpy(to, from, size);
  }
  return to + size;
}

char* WriteEmpty(char* to, Separator separator) {
  return separator == Separator::Blanks ? std::copy_n("\"\"", 2, to) : to;
}

char SeparatorCharacter(Separator separator) {
  switch (separator) {
    case Separator::Comma:
      return ',';
    case Separator::Semicolon:
      return ';';
    case Separator::Tab:
      return '\t';
    case Separator::Blanks:
      break;
  }
  return ' ';
}

/// @param value  null for a coordinate without a value; a field that the line lacks gets nothing here.
char* WriteCoordinate(char* to, const double* value, uint32_t fieldSize, const TextForm& form) {
  if (value) return WriteFixed(to, *value, form.Options().decimals);
  return fieldSize > 0 ? WriteEmpty(to, form.FieldSeparator()) : to;
}

/// @param point  null when the row has no point.
void WriteRow(ByteBuffer& out, const char* input, const TextRow& row, const shr::Vec2d* point,
              const TextForm& form) {
  const size_t most = row.end - row.begin + 2 * kFixedRoom + 3 * (size_t{row.missing} + 2);
  char* const room = out.Room(most);
  const bool bYFirst = form.WritesYFirst();
  const double* lowValue = point ? (bYFirst ? &point->y : &point->x) : nullptr;
  const double* highValue = point ? (bYFirst ? &point->x : &point->y) : nullptr;
  uint32_t low = row.firstAt, lowSize = row.firstSize, high = row.secondAt, highSize = row.secondSize;
  if (form.First() > form.Second()) {
    std::swap(low, high);
    std::swap(lowSize, highSize);
    std::swap(lowValue, highValue);
  }
  char* to = Copy(room, input + row.begin, low - row.begin);
  to = WriteCoordinate(to, lowValue, lowSize, form);
  to = Copy(to, input + low + lowSize, high - (low + lowSize));
  to = WriteCoordinate(to, highValue, highSize, form);
  to = Copy(to, input + high + highSize, row.textEnd - (high + highSize));
  for (uint32_t i = 0; i < row.missing; ++i) {
    *to++ = SeparatorCharacter(form.FieldSeparator());
    to = WriteEmpty(to, form.FieldSeparator());
  }
  to = Copy(to, input + row.textEnd, row.end - row.textEnd);
  out.Grow(static_cast<size_t>(to - room));
}

}  // namespace

const char* BadLineName(BadLine kind) {
  constexpr std::array<const char*, kBadLineKinds> kNames = {"not a number",
                                                             "neither a number nor an angle",
                                                             "an angle of the other axis",
                                                             "latitude beyond 90 degrees",
                                                             "an empty coordinate",
                                                             "too few fields",
                                                             "a quoted field not closed"};
  return kNames[static_cast<size_t>(kind)];
}

void ReadRows(const TextForm& form, TextBlock& block) {
  block.rows.clear();
  block.points.clear();
  block.problems.clear();
  RowReader(form, block).ReadAll();
}

void WriteRows(const TextForm& form, TextBlock& block) {
  const char* const input = block.input.Data();
  block.output.Clear();
  block.output.Append({input, block.start.copied});
  auto written = static_cast<uint32_t>(block.start.data);
  for (const TextRow& row : block.rows) {
    if (row.begin != written) block.output.Append({input + written, row.begin - written});  // empty lines
    const shr::Vec2d* point = row.point < 0 ? nullptr : &block.points[static_cast<size_t>(row.point)];
    if (point && std::isnan(point->x)) point = nullptr;
    WriteRow(block.output, input, row, point, form);
    written = row.end;
  }
  if (written != block.input.Size()) block.output.Append({input + written, block.input.Size() - written});
}

}  // namespace orv::tool
