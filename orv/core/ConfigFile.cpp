#include "orv/core/ConfigFile.h"

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <cstring>

#include "orv/core/Platform.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Number.h"
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
bool IsQuote(char c) { return c == '"' || c == '\''; }

// What stands behind the text: eight braces, which end what is white and what is plain, then line feeds, which end what is
// quoted.
constexpr char kGuards[] = "}}}}}}}}\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n";
constexpr size_t kGuardsSize = sizeof kGuards - 1;

inline const char* SkipWhite(const char* at) {
  if (internal::EightAt(at) >> 32 == 0x0a202020)
    at += 4;  // a line feed and three blanks begin nearly every line
  while (KindOf(*at) == Kind::White) ++at;
  return at;
}

const char* SkipDigits(const char* at) {
  for (;;) {
    const size_t digits = internal::LeadingDigits(at);
    at += digits;
    if (digits < 8) return at;
  }
}

const char* SkipPlain(const char* at) {
  while (KindOf(*at) == Kind::Plain) {
    if (*at++ == '.') at = SkipDigits(at);  // numbers have 20 decimals, mostly
  }
  return at;
}

// Bit 7 of each of eight characters that is another one than c.
uint64_t Others(uint64_t eight, char c) {
  constexpr uint64_t kEach = 0x0101010101010101u;
  const uint64_t apart = eight ^ kEach * static_cast<unsigned char>(c);
  return ((apart & kEach * 0x7f) + kEach * 0x7f) | apart;
}

// The first quote or line feed from `at` on, or the end of the text.
const char* QuotedEnd(const char* at, const char* end, char quote) {
  for (;; at += 8) {
    const uint64_t eight = internal::EightAt(at);
    const uint64_t found = ~(Others(eight, quote) & Others(eight, '\n')) & 0x8080808080808080u;
    if (found != 0) return std::min(at + std::countl_zero(found) / 8, end);
  }
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
  m_pAt = m_pToken = m_pEnd = nullptr;
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
  m_Numbers.Clear();
  m_pAt = m_pToken = m_pEnd = nullptr;
}

void ConfigFileReader::ReadAll(std::FILE* file) {
  const bool told = std::fseek(file, 0, SEEK_END) == 0;
  const long length = told ? std::ftell(file) : 0;
  if (told) std::rewind(file);
  size_t room = std::max(kLeastRoom, static_cast<size_t>(std::max(length, 0L)) + 1), size = 0;
  m_pText.reset(new char[room + kGuardsSize]);
  while (const size_t count = std::fread(m_pText.get() + size, 1, room - size, file)) {
    size += count;
    if (size < room) continue;
    room *= 2;
    std::unique_ptr<char[]> larger(new char[room + kGuardsSize]);
    std::memcpy(larger.get(), m_pText.get(), size);
    m_pText = std::move(larger);
  }
  m_pAt = m_pText.get();
  m_pEnd = m_pAt + size;
  std::memcpy(m_pText.get() + size, kGuards, kGuardsSize);
}

int ConfigFileReader::Line() const {
  const char* const text = m_pText.get();
  return 1 + static_cast<int>(std::count(text, m_pAt, '\n'));
}

// A quoted token goes up to the same quote, which is read, or to the line's end, which is not.
void ConfigFileReader::ReadPlain(const char* at) {
  const char* begin = at;
  if (IsQuote(*at)) {
    m_pAt = QuotedEnd(++begin, m_pEnd, *at);
    m_Token = {begin, static_cast<size_t>(m_pAt - begin)};
    if (m_pAt != m_pEnd && *m_pAt == *at) ++m_pAt;
  } else {
    m_pAt = SkipPlain(at + 1);
    m_Token = {begin, static_cast<size_t>(m_pAt - begin)};
  }
}

bool ConfigFileReader::Next() {
  m_Token = {};
  if (m_pAt == m_pEnd) return false;
  const char* at = SkipWhite(m_pAt);
  while (*at == ';') at = SkipWhite(LineEnd(at, m_pEnd));  // comments
  m_pAt = m_pToken = at;
  if (at == m_pEnd) return false;
  if (KindOf(*at) == Kind::Plain) {
    ReadPlain(at);
    if (m_bUnescape && !IsQuote(*at) && m_Token.find('\\') != std::string_view::npos) {
      m_Token = m_Unescaped.emplace_back(Unescaped(m_Token));
    }
    return true;
  }
  m_Token = {at, 1};
  ++m_pAt;
  return true;
}

const char* ConfigFileReader::Ahead() const { return m_bUnescape || !m_pAt ? nullptr : SkipWhite(m_pAt); }

bool ConfigFileReader::TakeAt(const char* at) {
  while (KindOf(*at) == Kind::White) ++at;
  if (KindOf(*at) != Kind::Plain) return false;
  ReadPlain(at);
  return true;
}

const internal::RecentNumbers::Number* ConfigFileReader::TakeDecimalAt(const char* at) {
  while (KindOf(*at) == Kind::White) ++at;
  if (const internal::RecentNumbers::Number* const number = m_Numbers.FindAt(at, m_pEnd)) {
    m_Token = {at, number->text.size()};
    m_pAt = at + number->text.size();
    return number;
  }
  return TakeAt(at) ? &m_Numbers.Find(m_Token) : nullptr;
}

// The place of a text by its first 20 characters; one for all shorter ones.
size_t internal::RecentNumbers::PlaceOf(const char* text) {
  return (EightAt(text) ^ EightAt(text + 12) << 1) * 0x9e3779b97f4a7c15u >> 53;
}

const internal::RecentNumbers::Number& internal::RecentNumbers::Find(std::string_view text) {
  Number& number = (*m_pNumbers)[text.size() < kLeast ? 0 : PlaceOf(text.data())];
  if (number.text == text && !text.empty()) return number;
  size_t end = 0;
  number.value = ReadDecimal(text, &end);
  number.isWhole = end == text.size();
  number.isPlain = number.isWhole && text.find('+') == std::string_view::npos;
  number.text = text;
  return number;
}

const internal::RecentNumbers::Number* internal::RecentNumbers::FindAt(const char* at,
                                                                       const char* end) const {
  const Number& number = (*m_pNumbers)[PlaceOf(at)];
  const size_t size = number.text.size();
  const bool isThere = number.isPlain && size >= kLeast && size <= static_cast<size_t>(end - at) &&
                       std::memcmp(at, number.text.data(), size) == 0 && KindOf(at[size]) != Kind::Plain;
  return isThere ? &number : nullptr;
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
