// TextLayout.h: how a text of points is cut into fields, and which of them hold the coordinates.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv::tool {

/// What stands between the fields of a line.  Comma and semicolon: a field may stand in double quotes, in
/// which "" is a quote.  Blanks: any number of blanks and tabs between fields, which may be quoted alike.
/// Tab: no quotes. A quote inside a field is an ordinary character.  No field goes on in the next line.
enum class Separator { Comma, Semicolon, Tab, Blanks };

/// The separator that a line holds outside quotes: a tab, else a comma, else a semicolon, else blanks.
Separator DetectSeparator(std::string_view line);

/// A field's place in its line, quotes included.
struct Field {
  size_t at;
  size_t size;
};

/// Cuts a line (without its end) into fields; false when a quoted field is not closed.  `fields` is
/// overwritten.
bool SplitLine(std::string_view line, Separator separator, std::vector<Field>& fields);

/// A field without blanks around it and without quotes ("" in it becomes a quote).
/// @param room  holds the text when quotes had to be changed.
std::string_view FieldText(std::string_view line, Field field, std::string& room);

/// The coordinates' columns, counted from 0.
struct Columns {
  size_t x = 0;
  size_t y = 1;
};

/// What --columns says: two columns, each a number from 1 or a name of the header.
class ColumnChoice {
 public:
  /// Columns 1 and 2.
  ColumnChoice() = default;
  /// "lon,lat" or "3,2".  Raises UsageError when it is not two different, non-empty parts.
  explicit ColumnChoice(const std::string& text);

  /// Whether a header is needed to find them.
  bool ByName() const;
  /// Raises UsageError when the header has no column of that name (blanks around it and case do not matter).
  Columns Find(const std::vector<std::string>& header) const;

 private:
  std::string m_X = "1";
  std::string m_Y = "2";
};

}  // namespace orv::tool
