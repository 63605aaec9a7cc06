// Dump.h: the readable dumps of all classes.
#pragma once

#include <cstddef>
#include <string>

namespace orv::internal {

/// Appends lines to a text, each preceded by `indent` blanks.
class Dump {
 public:
  Dump(std::string& text, size_t indent) : m_Text(text), m_Indent(indent) {}

  /// One line: blanks, the formatted text in the C locale, and a line feed (which `format` does not hold).
#if defined(__GNUC__)
  __attribute__((format(printf, 2, 3)))
#endif
  Dump&
  Line(const char* format, ...);

  /// The same, with the formatted text cut at `most` bytes before the line feed.
#if defined(__GNUC__)
  __attribute__((format(printf, 3, 4)))
#endif
  Dump&
  CutLine(size_t most, const char* format, ...);

  std::string& Text() { return m_Text; }
  size_t Indent() const { return m_Indent; }

 private:
  void Append(const std::string& line);

  std::string& m_Text;
  size_t m_Indent;
};

inline const char* TrueOrFalse(bool value) { return value ? "true" : "false"; }

}  // namespace orv::internal
