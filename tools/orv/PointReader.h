// PointReader.h: points read from text or binary data, block by block.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orv/shared/Vec2d.h"
#include "tools/orv/TextLayout.h"

namespace orv::tool {

/// What a line of text is and where its coordinates stand.
struct TextRow {
  enum Kind {
    Copied,  ///< an empty line, or the header: written as it is
    Point,   ///< point number `point` of the block
    Bad      ///< problem number `point` of the block; written without coordinates
  };
  Kind kind = Copied;
  size_t point = 0;
  std::string_view text;  ///< the line without its end
  std::string_view end;   ///< "\n", "\r\n" or, for a last line without one, ""
  Field x{0, 0};          ///< behind the line's text when the line has no such field
  Field y{0, 0};
  size_t fieldsMissing = 0;  ///< fields that the line lacks up to the second coordinate
};

struct PointBlock {
  size_t first = 1;                   ///< number of the first line, or of the first point of binary data
  std::string buffer;                 ///< the rows' text
  std::vector<TextRow> rows;          ///< empty for binary data
  std::vector<shr::Vec2d> points;     ///< binary data: a point that is not finite is kept
  std::vector<std::string> problems;  ///< what is wrong with the bad rows
};

/// Lines from a file, in blocks of about a mebibyte of whole lines.
class TextPointReader {
 public:
  struct Options {
    bool geographic = false;             ///< angles are read, and latitudes beyond 90 are bad
    std::optional<bool> header;          ///< whether there is one; none: see below
    std::optional<Separator> separator;  ///< none: DetectSeparator on the first line that is not empty
    ColumnChoice columns;
  };

  /// Reads from `file`, which stays the caller's.
  ///
  /// Unless the options say, the first line that is not empty is a header when columns are asked for by name,
  /// or when it has fields for both coordinates and neither is empty or begins with a digit, sign or point.
  TextPointReader(std::FILE* file, const Options& options);

  /// The next block; false at the end.  Raises UsageError when reading fails, or when there is no such
  /// column.
  bool Next(PointBlock& block);

  /// Valid from the first block on that holds a line which is not empty.
  Separator FieldSeparator() const { return m_Separator; }
  Columns CoordinateColumns() const { return m_Columns; }

 private:
  bool FillBuffer(std::string& buffer);
  void Begin(std::string_view line, TextRow& row, PointBlock& block);
  void ReadRow(TextRow& row, PointBlock& block);
  bool ReadCoordinate(std::string_view text, bool isX, double& value, std::string& problem) const;
  bool IsEmpty(std::string_view line) const;

  std::FILE* m_File;
  Options m_Options;
  bool m_bBegun = false;
  Separator m_Separator = Separator::Blanks;
  Columns m_Columns;
  size_t m_NextLine = 1;
  std::string m_Rest;  ///< read, but behind the last whole line
  std::vector<Field> m_Fields;
  std::string m_Room;
};

/// Pairs of 64-bit floating-point numbers, x then y, little-endian.
class BinaryPointReader {
 public:
  explicit BinaryPointReader(std::FILE* file) : m_File(file) {}

  /// The next block; false at the end.  Raises UsageError when reading fails, or when the data does not end
  /// with a whole point; that is when all whole points have been given.
  bool Next(PointBlock& block);

 private:
  std::FILE* m_File;
  size_t m_NextPoint = 1;
  size_t m_Left = 0;  ///< bytes behind the last whole point
};

}  // namespace orv::tool
