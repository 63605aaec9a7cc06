#include "orv/core/internal/Dump.h"

#include <cstdarg>

#include "orv/core/internal/Text.h"

namespace orv::internal {

void Dump::Append(const std::string& line) {
  m_Text.append(m_Indent, ' ');
  m_Text += line;
  m_Text += '\n';
}

Dump& Dump::Line(const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  Append(FormatV(format, args));
  va_end(args);
  return *this;
}

Dump& Dump::CutLine(size_t most, const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  Append(FormatV(format, args).substr(0, most));
  va_end(args);
  return *this;
}

}  // namespace orv::internal
