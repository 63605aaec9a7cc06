#include "orv/convert/internal/JsonText.h"

#include <cmath>

#include "orv/core/internal/Number.h"

namespace orv::internal {

namespace {

/// Bytes of the well-formed UTF-8 sequence at the front [RFC3629]; 0 when there is none.
size_t SequenceLength(std::string_view text) {
  const auto byte = [&](size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const auto follows = [&](size_t i, unsigned low = 0x80, unsigned high = 0xBF) {
    return byte(i) >= low && byte(i) <= high;
  };
  const unsigned lead = byte(0);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return follows(1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {  // neither longer than needed nor a surrogate
    return follows(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF) && follows(2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {  // nor beyond U+10FFFF
    const bool second = follows(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF);
    return second && follows(2) && follows(3) ? 4 : 0;
  }
  return 0;
}

}  // namespace

void JsonText::Separate() {
  if (m_AfterKey) {
    m_AfterKey = false;
    return;
  }
  if (m_Filled.empty()) return;
  m_Out += m_Filled.back() ? ",\n" : "\n";
  m_Filled.back() = true;
  m_Out.append(2 * m_Filled.size(), ' ');
}

JsonText& JsonText::Begin(char bracket) {
  Separate();
  m_Out += bracket;
  m_Filled.push_back(false);
  return *this;
}

JsonText& JsonText::End(char bracket) {
  const bool filled = m_Filled.back();
  m_Filled.pop_back();
  if (filled) {
    m_Out += '\n';
    m_Out.append(2 * m_Filled.size(), ' ');
  }
  m_Out += bracket;
  return *this;
}

JsonText& JsonText::Key(std::string_view key) {
  Separate();
  Quote(key);
  m_Out += ": ";
  m_AfterKey = true;
  return *this;
}

JsonText& JsonText::Text(std::string_view text) {
  Separate();
  Quote(text);
  return *this;
}

void JsonText::Quote(std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  m_Out += '"';
  while (!text.empty()) {
    const size_t length = SequenceLength(text);
    const auto byte = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      m_Out += "\xEF\xBF\xBD";  // U+FFFD
    } else if (byte == '"' || byte == '\\') {
      m_Out += {'\\', text[0]};
    } else if (byte == '\n') {
      m_Out += "\\n";
    } else if (byte == '\t') {
      m_Out += "\\t";
    } else if (byte < 0x20 || byte == 0x7F) {
      m_Out += {'\\', 'u', '0', '0', kHex[byte >> 4], kHex[byte & 15]};
    } else {
      m_Out += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  m_Out += '"';
}

JsonText& JsonText::Number(double value) {
  Separate();
  m_Out += std::isfinite(value) ? ShortestNumber(value) : "null";
  return *this;
}

JsonText& JsonText::Number(size_t value) {
  Separate();
  m_Out += std::to_string(value);
  return *this;
}

JsonText& JsonText::Bool(bool value) {
  Separate();
  m_Out += value ? "true" : "false";
  return *this;
}

JsonText& JsonText::Null() {
  Separate();
  m_Out += "null";
  return *this;
}

}  // namespace orv::internal
