// TextForm.h: the form of a text of points, taken from the options and from its first line.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "tools/orv/TextLayout.h"

namespace orv::tool {

/// What the options say.
struct TextOptions {
  bool fromGeographic = false;  ///< latitudes beyond the pole are bad
  bool fromDegrees = false;     ///< minutes and seconds are read too
  double pole = 90.0;           ///< of a geographic source: the largest latitude, in its unit
  bool toGeographic = false;
  bool latFirst = false;       ///< of a geographic system the first of the two columns is the latitude
  int decimals = 4;            ///< of what is written
  std::optional<bool> header;  ///< whether there is one; none: see Begin
  std::optional<Separator> separator;  ///< none: DetectSeparator on the first line that is not empty
  ColumnChoice columns;
};

/// The form, complete when Begin has seen the first line that is not empty; workers share it from then on.
class TextForm {
 public:
  explicit TextForm(const TextOptions& options) : m_Options(options) {}

  /// What stands in front of the data, in bytes.
  struct Start {
    size_t copied;  ///< empty lines and the header, written as they are
    size_t data;    ///< where the data begins; a byte order mark in front of data is left out
  };

  /// Looks for the first line that is not empty.  Unless the options say, it is a header when columns are asked for by
  /// name, or when it has fields for both coordinates and neither is empty or begins with a digit, sign or point.
  ///
  /// @param lines  whole lines; all of them are copied when all are empty, and Begin is to be called again.
  /// Raises UsageError when there is no such column, or names are asked for without a header.
  Start Begin(std::string_view lines);
  bool HasBegun() const { return m_bBegun; }

  const TextOptions& Options() const { return m_Options; }
  Separator FieldSeparator() const { return m_Separator; }
  /// The first and the second of the chosen columns.
  size_t First() const { return m_Columns.x; }
  size_t Second() const { return m_Columns.y; }
  /// Whether x is in the second of them.
  bool ReadsYFirst() const { return m_Options.latFirst && m_Options.fromGeographic; }
  bool WritesYFirst() const { return m_Options.latFirst && m_Options.toGeographic; }

 private:
  bool IsHeader(std::string_view line);

  TextOptions m_Options;
  bool m_bBegun = false;
  Separator m_Separator = Separator::Blanks;
  Columns m_Columns;
};

/// A line at the beginning of a text: without its end, and the size with it ("\n", "\r\n" or none at the end).
struct LineCut {
  std::string_view text;
  size_t size;
};
LineCut FirstLine(std::string_view text);

}  // namespace orv::tool
