// Descriptor.h: what the text and binary streams need of the operating system, which the C library does not give.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orv::tool {

/// Bytes from a file, or from standard input, as soon as there are any.
class InputFile {
 public:
  /// @param name  of the file; "-" is standard input.  Raises UsageError when it cannot be opened.
  explicit InputFile(const std::string& name);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  /// At least one byte and at most `size`; 0 at the end.  Waits for the first one.  Raises UsageError.
  size_t Read(char* to, size_t size);
  /// Whether Read would give something, or the end, without waiting.
  bool IsReady() const;
  /// Bytes from the place where reading began to the end; 0 when that is not known, as of a pipe.
  uint64_t Size() const { return m_Size; }
  /// "standard input", or the name in quotes.
  std::string Title() const;

 private:
  std::string m_Name;
  int m_Descriptor = 0;
  bool m_bRegular = false;
  uint64_t m_Size = 0;
};

/// Writes all of it to standard output at once, past the C library's buffer, which must be empty.  Raises UsageError.
void WriteDirectly(const char* bytes, size_t size);

/// Whether standard error is a terminal.
bool ErrorIsTerminal();
/// Columns of that terminal; 0 when they are not known.
int ErrorColumns();

}  // namespace orv::tool
