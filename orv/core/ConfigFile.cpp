#include "orv/core/ConfigFile.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>

#include "orv/core/Platform.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"

ORV_UNIT("ConfigFile")

namespace orv {

namespace {

constexpr size_t kBufferSize = 65536;
constexpr char kDelimiters[] = "=+,;:~/!@#$%^&*(){}[]|<>";
static_assert(sizeof kDelimiters - 1 == 24, "the delimiter set has 24 characters");

enum class Kind : unsigned char { Plain, White, Delimiter };

struct KindTable {
  Kind kinds[256] = {};
  constexpr KindTable() {
    for (const char c : {' ', '\t', '\r', '\n'}) kinds[static_cast<unsigned char>(c)] = Kind::White;
    for (const char* c = kDelimiters; *c != '\0'; ++c)
      kinds[static_cast<unsigned char>(*c)] = Kind::Delimiter;
  }
};
constexpr KindTable kKinds;

// Undoes the escapes of an unquoted token.
std::string Unescaped(const std::string& text) {
  std::string plain;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\') {
      plain += text[at];
      continue;
    }
    if (++at >= text.size()) break;  // a backslash at the end of the text ends it
    switch (text[at]) {
      case 'b':
        plain += '\b';
        break;
      case 't':
        plain += '\t';
        break;
      case 'n':
        plain += '\n';
        break;
      case 'r':
        plain += '\r';
        break;
      case 'x':
        // Deliberate: hexadecimal escapes do not survive reading; with two more characters all four are
        // dropped.
        if (text.size() - at > 2) {
          at += 2;
        } else {
          plain += 'x';
        }
        break;
      default:
        plain += text[at];
    }
  }
  return plain;
}

std::string Escaped(const std::string& text, bool keepLines) {
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\b') {
      out += "\\b";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\\') {
      out += "\\\\";
    } else if (c == '\n') {
      out += keepLines ? "\n" : "\\n";
    } else if (byte < 32 || byte == 127) {
      out += internal::Format("\\x%02X", byte);
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

// ---- reader ----------------------------------------------------------------------------------------------

ConfigFileReader::ConfigFileReader(bool unescape) : m_bUnescape(unescape) {}

ConfigFileReader::~ConfigFileReader() { Close(); }

bool ConfigFileReader::TryOpen(const char* fileName) {
  fileName = internal::EmptyIfNull(fileName);
  if (m_pFile) {
    return ORV_FAIL(ErrWrongState, "Configuration file already open while attempting to open '%s'", fileName);
  }
  m_FileName = fileName;
  m_pFile = platform::OpenFile(m_FileName.c_str(), "rb");
  m_Line = 1;
  m_Token.clear();
  m_Pushback = kNone;
  m_bGivenBack = false;
  m_Used = m_Filled = 0;
  return m_pFile != nullptr;
}

bool ConfigFileReader::Open(const char* fileName) {
  return TryOpen(fileName) ||
         ORV_FAIL(ErrFileMissing, "Failed opening configuration file '%s'", internal::EmptyIfNull(fileName));
}

void ConfigFileReader::Close() {
  if (m_pFile) std::fclose(m_pFile);
  m_pFile = nullptr;
}

int ConfigFileReader::ReadCharacter() {
  int c = m_Pushback;
  m_Pushback = kNone;
  if (c == kNone) {
    if (m_Used == m_Filled) {
      if (!m_pFile) return kEnd;
      m_Buffer.resize(kBufferSize);
      m_Filled = std::fread(m_Buffer.data(), 1, m_Buffer.size(), m_pFile);
      m_Used = 0;
      if (m_Filled == 0) return kEnd;
    }
    c = static_cast<unsigned char>(m_Buffer[m_Used++]);
  }
  if (c == '\n') ++m_Line;
  return c;
}

// A line feed that is given back is not counted until it is read again.
void ConfigFileReader::PushBack(int c) {
  if (c == '\n') --m_Line;
  m_Pushback = c;
}

void ConfigFileReader::SkipComment() {
  for (int c = ReadCharacter(); c != kEnd && c != '\n';) c = ReadCharacter();
}

void ConfigFileReader::ReadQuoted(int quote) {
  for (;;) {
    const int c = ReadCharacter();
    if (c == quote || c == kEnd) return;
    if (c == '\n') {
      PushBack(c);
      return;
    }
    m_Token += static_cast<char>(c);
  }
}

void ConfigFileReader::ReadPlain(int first) {
  int c = first;
  do {
    m_Token += static_cast<char>(c);
    c = ReadCharacter();
  } while (c != kEnd && kKinds.kinds[c] == Kind::Plain);
  if (c != kEnd) PushBack(c);
  if (m_bUnescape && m_Token.find('\\') != std::string::npos) m_Token = Unescaped(m_Token);
}

bool ConfigFileReader::Next() {
  if (m_bGivenBack) {
    m_bGivenBack = false;
    return true;
  }
  for (;;) {
    m_Token.clear();
    int c = ReadCharacter();
    while (c != kEnd && kKinds.kinds[c] == Kind::White) c = ReadCharacter();
    if (c == kEnd) return false;
    if (c == ';') {
      SkipComment();
      continue;
    }
    if (kKinds.kinds[c] == Kind::Delimiter) {
      m_Token = static_cast<char>(c);
    } else if (c == '"' || c == '\'') {
      ReadQuoted(c);
    } else {
      ReadPlain(c);
    }
    return true;
  }
}

// ---- writer ----------------------------------------------------------------------------------------------

ConfigFileWriter::~ConfigFileWriter() {
  if (m_Replacement.file) platform::AbandonReplacement(m_Replacement);
}

bool ConfigFileWriter::TryOpen(const char* fileName) {
  fileName = internal::EmptyIfNull(fileName);
  if (m_Replacement.file) {
    return ORV_FAIL(ErrWrongState, "Configuration file already open while attempting to open '%s'", fileName);
  }
  m_FileName = fileName;
  m_Lines = 0;
  m_bFailed = false;
  return platform::BeginReplacement(m_FileName.c_str(), m_Replacement);
}

bool ConfigFileWriter::Open(const char* fileName) {
  return TryOpen(fileName) ||
         ORV_FAIL(ErrFileMissing, "Failed opening file for writing:  %s", internal::EmptyIfNull(fileName));
}

void ConfigFileWriter::Close() {
  if (!m_Replacement.file) return;
  if (m_bFailed) platform::AbandonReplacement(m_Replacement);
  if (m_bFailed || !platform::FinishReplacement(m_Replacement)) {
    ORV_FAIL(ErrWriteFailed, "File write failed on configuration file '%s'", m_FileName.c_str());
  }
}

void ConfigFileWriter::Write(const std::string& text) {
  if (!m_Replacement.file) {
    ORV_FAIL(ErrWrongState, "Attempt to write to configuration file before file is open");
    return;
  }
  const std::string& written = m_Escape == Escape::None ? text : Escaped(text, m_Escape == Escape::KeepLines);
  if (std::fwrite(written.data(), 1, written.size(), m_Replacement.file) != written.size()) {
    m_bFailed = true;
    ORV_FAIL(ErrWriteFailed, "File write failed on configuration file '%s'", m_FileName.c_str());
    return;
  }
  m_Lines += static_cast<int>(std::count(written.begin(), written.end(), '\n'));
}

void ConfigFileWriter::Print(const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  const std::string text = internal::FormatV(format, args);
  va_end(args);
  Write(text);
}

}  // namespace orv
