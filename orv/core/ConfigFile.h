// ConfigFile.h: the lexical layer of all configuration files (".ocf").  (Library-internal.)
//
// Tokens: white space is blank, tab, carriage return and line feed; each of the 24 characters
// =+,;:~/!@#$%^&*(){}[]|<> is a token by itself; ";" begins a comment that runs to the end of its line; a
// double quote or an apostrophe at the start of a token opens a quoted one, which ends at the same quote or
// at the line's end and knows no escapes. docs/formats/configuration-files.md tells the format in full.
//
// Failures carry the unit "ConfigFile": 1027 for a call in the wrong state, 1028 for a file that does not
// open, 1030 for a failed write.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "orv/core/Export.h"
#include "orv/core/Platform.h"

namespace orv {

namespace internal {

/// Numbers that were read lately, by their texts: in files of definitions most of them are the same few.
class RecentNumbers {
 public:
  struct Number {
    std::string_view text;
    double value = 0.0;    ///< of ReadDecimal
    bool isWhole = false;  ///< the text is a number throughout
    bool isPlain = false;  ///< and so is one that is not quoted
  };
  /// @param text  stays where it is as long as this object is used.
  const Number& Find(std::string_view text);
  /// That of 20 characters or more that is a token at `at` in a text of a file up to `end`, or null when none of those lately
  /// read is.
  const Number* FindAt(const char* at, const char* end) const;
  void Clear() { m_pNumbers = std::make_unique<Numbers>(); }

 private:
  using Numbers = std::array<Number, 2048>;
  static constexpr size_t kLeast = 20;
  static size_t PlaceOf(const char* text);

  std::unique_ptr<Numbers> m_pNumbers = std::make_unique<Numbers>();  // too many for a thread's stack
};

}  // namespace internal

/// Splits a file, which is read whole when it is opened, into tokens.  Every read character is a byte; no
/// character is special beyond those named above.
class ORV_API ConfigFileReader {
 public:
  /// @param unescape  undo backslash escapes in unquoted tokens.  No file of this library turns it on.
  explicit ConfigFileReader(bool unescape = false);
  ~ConfigFileReader();
  ConfigFileReader(const ConfigFileReader&) = delete;
  ConfigFileReader& operator=(const ConfigFileReader&) = delete;

  /// Opens a file; false when it does not open.  Raises 1027 when one is open already.
  bool TryOpen(const char* fileName);
  /// The same, but a file that does not open raises 1028.
  bool Open(const char* fileName);
  void Close();

  /// Reads the next token; false at the end of the file.
  bool Next();
  /// Reads the next token when it is this delimiter and nothing stands before it; else false, and nothing is read.  Quicker
  /// than Next for what is mostly there.
  bool NextAtOnce(char delimiter) {
    if (m_pAt == m_pEnd || *m_pAt != delimiter) return false;
    m_Token = {m_pAt++, 1};
    return true;
  }
  /// What stands ahead behind white space: at the end of the file other characters, of which 24 can be looked at.  Null without
  /// a file, and where escapes are to be undone, which is left to Next.
  const char* Ahead() const;
  /// Reads everything up to a token that stands ahead at `at`, or behind white space there, and the token; false, and nothing is
  /// read, when no token but a delimiter stands there.
  bool TakeAt(const char* at);
  /// The same of a token that is taken as a number; null when no token but a delimiter stands there.
  const internal::RecentNumbers::Number* TakeDecimalAt(const char* at);
  /// Gives the present token, which Next has read, back, so that Next reads it again.
  void GiveBack() { m_pAt = m_pToken; }

  /// The present token, valid until the file is closed.
  std::string_view Token() const { return m_Token; }
  /// The number that a token of this file begins with.
  const internal::RecentNumbers::Number& Decimal(std::string_view token) { return m_Numbers.Find(token); }
  /// Number of the line that was read last, from 1; a line feed that ends a token is not counted until it is
  /// read.  Counted when it is asked for, which is for messages only.
  int Line() const;
  const char* FileName() const { return m_FileName.c_str(); }

 private:
  void ReadAll(std::FILE* file);
  /// Reads the token at a plain character.
  void ReadPlain(const char* at);

  std::string m_FileName;
  bool m_bOpen = false;
  bool m_bUnescape;
  std::string_view m_Token;         // within the text, or the last of the unescaped ones
  std::unique_ptr<char[]> m_pText;  // the whole file
  const char* m_pAt = nullptr;      // what has been read ends here
  const char* m_pToken = nullptr;   // where the token that Next has read last begins, with its quote
  const char* m_pEnd = nullptr;     // of the text
  std::deque<std::string> m_Unescaped;
  internal::RecentNumbers m_Numbers;
};

/// Writes a configuration file.  Lines end in a line feed on every platform.
///
/// The file appears, or replaces the one that stood there, whole when it is closed; until then, and after any
/// failure, the old one is as it was.
class ConfigFileWriter {
 public:
  enum class Escape {
    None = 0,      ///< text as it is
    All = 1,       ///< control characters and backslashes escaped
    KeepLines = 2  ///< the same, but a line feed stays one
  };

  explicit ConfigFileWriter(Escape escape = Escape::None) : m_Escape(escape) {}
  /// Gives up, silently, a file that has not been closed.
  ~ConfigFileWriter();
  ConfigFileWriter(const ConfigFileWriter&) = delete;
  ConfigFileWriter& operator=(const ConfigFileWriter&) = delete;

  /// Creates a file; false when it cannot be created.  Raises 1027 when one is open already.
  bool TryOpen(const char* fileName);
  /// The same, but a file that cannot be created raises 1028.
  bool Open(const char* fileName);
  /// Raises 1030 when the last bytes cannot be written, or others could not.
  void Close();

  /// Writes a text as one piece; raises 1027 without an open file, 1030 when the write fails.
  void Write(const std::string& text);
  /// Formats in the C locale, then writes.
#if defined(__GNUC__)
  __attribute__((format(printf, 2, 3)))
#endif
  void
  Print(const char* format, ...);

  /// Line feeds written so far.
  int Lines() const { return m_Lines; }

 private:
  std::string m_FileName;
  platform::Replacement m_Replacement;  // its file is null when none is open
  bool m_bFailed = false;               // a write has failed
  int m_Lines = 0;
  Escape m_Escape;
};

}  // namespace orv
