#include "orv/core/EncodeText.h"

#include <cstdint>
#include <cstring>

#include "orv/core/Platform.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"

ORV_UNIT("EncodeText")

namespace orv {

namespace {

constexpr char kTypes[] = "bdufsv{}";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// ---- writing ---------------------------------------------------------------------------------------------

bool NeedsEscape(unsigned char byte) {
  return byte < 32 || byte == 127 || byte == '"' || byte == '<' || byte == '>';
}

template <class T, class F>
void AppendElements(std::string& out, const void* data, size_t count, F textOf) {
  const T* const elements = static_cast<const T*>(data);
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) out += ',';
    out += textOf(elements[i]);
  }
}

// A zero of either sign is written "0".
std::string DoubleText(double value) { return value == 0.0 ? "0" : internal::Format("%.18e", value); }

// ---- reading ---------------------------------------------------------------------------------------------

struct Header {
  char type = 0;
  size_t nameAt = 0;
  size_t nameLength = 0;
  size_t count = 0;
  size_t valueAt = 0;
};

// Decimal digits at the cursor; none count as 0.  False when the number does not fit.
bool ReadDigits(const std::string& data, size_t& at, size_t& number) {
  number = 0;
  for (; at < data.size() && IsDigit(data[at]); ++at) {
    const size_t digit = static_cast<size_t>(data[at] - '0');
    if (number > (SIZE_MAX - digit) / 10) return false;
    number = number * 10 + digit;
  }
  return true;
}

bool ReadCharacter(const std::string& data, size_t& at, char expected) {
  if (at >= data.size() || data[at] != expected) return false;
  ++at;
  return true;
}

bool ReadHeader(const std::string& data, size_t at, Header& header) {
  if (!ReadCharacter(data, at, '<') || at >= data.size()) return false;
  header.type = data[at++];
  if (!ReadDigits(data, at, header.nameLength) || !ReadCharacter(data, at, ',')) return false;
  if (header.nameLength >= data.size() - at) return false;  // the name, and "[" behind it
  header.nameAt = at;
  at += header.nameLength;
  if (!ReadCharacter(data, at, '[') || !ReadDigits(data, at, header.count)) return false;
  if (!ReadCharacter(data, at, ']')) return false;
  const bool isBlock = header.type == kBlockBegin || header.type == kBlockEnd;
  if (!isBlock && !ReadCharacter(data, at, '=')) return false;
  header.valueAt = at;
  return true;
}

void Corrupt(int line) {
  ORV_FAIL_AT((ErrorSite{kUnit, line}), ErrCorrupt, "Corrupt data while parsing encoded data.");
}

// The header of the item at the cursor, of the wanted type.
//
// Deliberate: another type letter is a mismatch to the bool and int readers but corrupt data to the others.
Header ReadHeaderOf(const std::string& data, const size_t* offset, char type, bool mismatchIsCorrupt) {
  const size_t at = offset ? *offset : 0;
  if (at >= data.size()) ORV_FAIL(ErrCorrupt, "Offset out of range while parsing encoded data.");
  Header header;
  if (!ReadHeader(data, at, header)) Corrupt(__LINE__);
  if (header.type != type) {
    if (mismatchIsCorrupt) Corrupt(__LINE__);
    ORV_FAIL(ErrCorrupt, "Mismatched data type while parsing encoded data.");
  }
  return header;
}

// The value of one hexadecimal digit.  Deliberate: every character but 0 to 9 counts its code minus 55, so
// that only upper-case A to F are right.
unsigned HexDigit(char c) {
  return IsDigit(c) ? static_cast<unsigned>(c - '0')
                    : static_cast<unsigned>(static_cast<unsigned char>(c)) - 55u;
}

bool BelongsToDouble(char c) {
  return IsDigit(c) || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E';
}

}  // namespace

void ORVEncodeValue(std::string& out, const char* name, char type, const void* data, size_t count) {
  if (!name) name = "";
  const char* const text = type == 's' ? internal::EmptyIfNull(static_cast<const char*>(data)) : nullptr;
  if (text) count = std::strlen(text);
  out += '<';
  out += type;
  out += std::to_string(std::strlen(name));
  out += ',';
  out += name;
  out += '[';
  out += std::to_string(count);
  out += ']';
  if (type == '\0' || !std::strchr(kTypes, type)) {
    ORV_FAIL(ErrCorrupt, "Bad data type while encoding data.");
    return;
  }
  if (type != kBlockBegin && type != kBlockEnd) {
    if (!text && (count == 0 || !data)) {
      ORV_FAIL(ErrCorrupt, "Bad count or bad data pointer while encoding data.");
      return;
    }
    out += '=';
  }
  switch (type) {
    case 'b':
      AppendElements<bool>(out, data, count, [](bool v) { return v ? "t" : "f"; });
      break;
    case 'd':
      AppendElements<int>(out, data, count, [](int v) { return std::to_string(v); });
      break;
    case 'u':
      AppendElements<unsigned>(out, data, count, [](unsigned v) { return std::to_string(v); });
      break;
    case 'f':
      AppendElements<double>(out, data, count, DoubleText);
      break;
    case 'v':
      for (size_t i = 0; i < count; ++i)
        out += internal::Format("%02X", static_cast<const unsigned char*>(data)[i]);
      break;
    case 's':
      out += '"';
      for (const char* c = text; *c != '\0'; ++c) {
        const auto byte = static_cast<unsigned char>(*c);
        if (NeedsEscape(byte)) {
          out += internal::Format("\\x%02X", byte);
        } else {
          out += *c;
        }
      }
      out += '"';
      break;
    default:
      break;
  }
  out += ">\r\n";
}

bool ORVDecodeInfo(const std::string& data, size_t* offset, std::string& name, char& type, size_t& count) {
  Header header;
  if (!ReadHeader(data, offset ? *offset : 0, header)) return false;
  name.assign(data, header.nameAt, header.nameLength);
  type = header.type;
  count = header.count;
  return true;
}

bool ORVSkipItem(const std::string& data, size_t* offset) {
  const size_t next = *offset >= data.size() ? std::string::npos : data.find('<', *offset + 1);
  *offset = next == std::string::npos ? data.size() : next;
  return next != std::string::npos;
}

void ORVDecodeValue(const std::string& data, size_t* offset, bool* value) {
  const Header header = ReadHeaderOf(data, offset, 'b', false);
  if (header.count == 0 || header.valueAt >= data.size()) Corrupt(__LINE__);
  *value = data[header.valueAt] == 't';
}

void ORVDecodeValue(const std::string& data, size_t* offset, int* value) {
  const Header header = ReadHeaderOf(data, offset, 'd', false);
  if (header.count == 0 || header.valueAt >= data.size()) Corrupt(__LINE__);
  size_t at = header.valueAt;
  const bool negative = data[at] == '-';
  if (negative) ++at;
  uint32_t number = 0;  // wraps, so that -2147483648 survives
  for (; at < data.size() && IsDigit(data[at]); ++at)
    number = number * 10u + static_cast<uint32_t>(data[at] - '0');
  if (negative) number = 0u - number;
  *value = static_cast<int>(number);
}

void ORVDecodeValue(const std::string& data, size_t* offset, double* values, size_t start, size_t count) {
  const Header header = ReadHeaderOf(data, offset, 'f', true);
  if (start > header.count || count > header.count - start) Corrupt(__LINE__);
  if (start == 0 && count == 0) return;
  size_t at = header.valueAt;
  for (size_t i = 0; i < start + count; ++i) {
    if (i > 0 && !ReadCharacter(data, at, ',')) Corrupt(__LINE__);
    if (at >= data.size()) Corrupt(__LINE__);
    if (i >= start) values[i - start] = platform::ToDoubleInCLocale(data.c_str() + at);
    while (at < data.size() && BelongsToDouble(data[at])) ++at;
  }
}

void ORVDecodeValue(const std::string& data, size_t* offset, std::string& value) {
  const Header header = ReadHeaderOf(data, offset, 's', true);
  size_t at = header.valueAt;
  if (!ReadCharacter(data, at, '"')) Corrupt(__LINE__);
  if (header.count == 0) return;  // whatever stands between the quotes
  for (;; ++at) {
    if (at >= data.size()) Corrupt(__LINE__);
    if (data[at] == '"') return;
    if (data[at] != '\\') {
      value += data[at];
      continue;
    }
    if (data.size() - at < 4 || data[at + 1] != 'x') Corrupt(__LINE__);
    value +=
        static_cast<char>(static_cast<unsigned char>(HexDigit(data[at + 2]) * 16u + HexDigit(data[at + 3])));
    at += 3;
  }
}

}  // namespace orv
