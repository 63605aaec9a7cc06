#include "orv/convert/internal/JsonText.h"

#include <cmath>

#include "orv/core/internal/Number.h"
#include "orv/core/internal/Utf8.h"

namespace orv::internal {

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
    const size_t length = Utf8Length(text);
    const auto byte = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      m_Out += kReplacement;
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
