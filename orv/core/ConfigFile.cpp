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

constexpr size_t kLeastRoom = 65536;  // for a file that does not tell its length
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
Kind KindOf(char c) { return kKinds.kinds[static_cast<unsigned char>(c)]; }

const char* SkipKind(Kind kind, const char* at, const char* end) {
  while (at != end && KindOf(*at) == kind) ++at;
  return at;
}

// The first line feed from `at` on, or the end of the text.
const char* LineEnd(const char* at, const char* end) {
  const void* const found = std::memchr(at, '\n', static_cast<size_t>(end - at));
  return found ? static_cast<const char*>(found) : end;
}

// Undoes the escapes of an unquoted token.
std::string Unescaped(std::string_view text) {
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

ConfigFileReader::~ConfigFileReader() = default;

bool ConfigFileReader::TryOpen(const char* fileName) {
  fileName = internal::EmptyIfNull(fileName);
  if (m_bOpen) {
    return ORV_FAIL(ErrWrongState, "Configuration file already open while attempting to open '%s'", fileName);
  }
  m_FileName = fileName;
  m_Token = {};
  m_bGivenBack = false;
  m_Size = m_At = 0;
  std::FILE* const file = platform::OpenFile(m_FileName.c_str(), "rb");
  if (!file) return false;
  m_bOpen = true;
  ReadAll(file);
  std::fclose(file);
  return true;
}

bool ConfigFileReader::Open(const char* fileName) {
  return TryOpen(fileName) ||
         ORV_FAIL(ErrFileMissing, "Failed opening configuration file '%s'", internal::EmptyIfNull(fileName));
}

void ConfigFileReader::Close() {
  m_bOpen = false;
  m_Token = {};
  m_pText.reset();
  m_Unescaped.clear();
  m_Size = m_At = 0;
}

void ConfigFileReader::ReadAll(std::FILE* file) {
  const bool told = std::fseek(file, 0, SEEK_END) == 0;
  const long length = told ? std::ftell(file) : 0;
  if (told) std::rewind(file);
  size_t room = std::max(kLeastRoom, static_cast<size_t>(std::max(length, 0L)) + 1);
  m_pText.reset(new char[room]);
  while (const size_t count = std::fread(m_pText.get() + m_Size, 1, room - m_Size, file)) {
    m_Size += count;
    if (m_Size < room) continue;
    room *= 2;
    std::unique_ptr<char[]> larger(new char[room]);
    std::memcpy(larger.get(), m_pText.get(), m_Size);
    m_pText = std::move(larger);
  }
}

int ConfigFileReader::Line() const {
  const char* const text = m_pText.get();
  return 1 + static_cast<int>(std::count(text, text + m_At, '\n'));
}

// Up to the same quote, which is read, or to the line's end, which is not.
void ConfigFileReader::TakeQuoted() {
  const char* const begin = m_pText.get() + m_At + 1;
  const char* const lineEnd = LineEnd(begin, m_pText.get() + m_Size);
  const auto length = static_cast<size_t>(lineEnd - begin);
  const void* const quote = std::memchr(begin, begin[-1], length);
  const char* const end = quote ? static_cast<const char*>(quote) : lineEnd;
  m_Token = {begin, static_cast<size_t>(end - begin)};
  m_At = static_cast<size_t>(end - m_pText.get()) + (quote ? 1 : 0);
}

void ConfigFileReader::TakePlain() {
  const char* const begin = m_pText.get() + m_At;
  const char* const end = SkipKind(Kind::Plain, begin + 1, m_pText.get() + m_Size);
  m_Token = {begin, static_cast<size_t>(end - begin)};
  m_At += m_Token.size();
  if (m_bUnescape && m_Token.find('\\') != std::string_view::npos) {
    m_Token = m_Unescaped.emplace_back(Unescaped(m_Token));
  }
}

bool ConfigFileReader::Next() {
  if (m_bGivenBack) {
    m_bGivenBack = false;
    return true;
  }
  const char* const text = m_pText.get();
  const char* const end = text + m_Size;
  const char* at = SkipKind(Kind::White, text + m_At, end);
  while (at != end && *at == ';') at = SkipKind(Kind::White, LineEnd(at, end), end);  // comments
  m_At = static_cast<size_t>(at - text);
  m_Token = {};
  if (at == end) return false;
  if (*at == '"' || *at == '\'') {
    TakeQuoted();
  } else if (KindOf(*at) == Kind::Plain) {
    TakePlain();
  } else {
    m_Token = {at, 1};
    ++m_At;
  }
  return true;
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
