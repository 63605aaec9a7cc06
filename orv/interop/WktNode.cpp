#include "orv/interop/internal/WktNode.h"

#include <cfloat>
#include <cmath>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"

ORV_UNIT("Interchange")

namespace orv::internal {

namespace {

constexpr size_t kLargestText = size_t{256} * 1024;
constexpr int kDeepest = 32;
constexpr int kMostValues = 20000;

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// value = number | text | word | block;  block = keyword ("[" | "(") value { "," value } ("]" | ")").
class Reader {
 public:
  explicit Reader(std::string_view text) : m_Text(text) {}

  WktNode ReadAll() {
    SkipSpace();
    const Place start = Here();
    if (m_At >= m_Text.size() || !IsLetter(m_Text[m_At])) Expected("the keyword of a coordinate system");
    WktNode node = ReadValue(1);
    if (node.kind != WktNode::Block) {
      m_At = m_Text.size();
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected '[' behind the keyword '%s'.", start.line,
               start.column, Excerpt(node.text).c_str());
    }
    SkipSpace();
    if (m_At < m_Text.size()) Expected("the end of the text");
    return node;
  }

 private:
  Place Here() const { return {m_Line, static_cast<int>(m_At - m_LineStart) + 1}; }

  void Expected(const char* what) const {
    const Place place = Here();
    if (m_At >= m_Text.size()) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected %s, found the end of the text.", place.line,
               place.column, what);
    }
    const auto byte = static_cast<unsigned char>(m_Text[m_At]);
    if (byte < 0x20 || byte >= 0x7F) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected %s, found the byte 0x%02X.", place.line,
               place.column, what, static_cast<unsigned>(byte));
    }
    ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected %s, found '%c'.", place.line, place.column, what,
             m_Text[m_At]);
  }

  void Advance(size_t count) {
    for (; count > 0; --count, ++m_At) {
      if (m_Text[m_At] != '\n') continue;
      ++m_Line;
      m_LineStart = m_At + 1;
    }
  }

  void SkipSpace() {
    while (m_At < m_Text.size() && IsSpace(m_Text[m_At])) Advance(1);
  }

  WktNode ReadValue(int depth) {
    WktNode node;
    node.place = Here();
    if (++m_Values > kMostValues) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected at most %d values in a text.", node.place.line,
               node.place.column, kMostValues);
    }
    const char c = m_At < m_Text.size() ? m_Text[m_At] : '\0';
    if (c == '"') {
      ReadText(node);
    } else if (IsLetter(c)) {
      ReadWordOrBlock(node, depth);
    } else if (IsDigit(c) || c == '-' || c == '+' || c == '.') {
      ReadNumber(node);
    } else {
      Expected("a value (a number, a text in double quotes or a keyword)");
    }
    return node;
  }

  void ReadText(WktNode& node) {
    node.kind = WktNode::Text;
    for (Advance(1); m_At < m_Text.size(); Advance(1)) {
      if (m_Text[m_At] == '"') {
        if (m_At + 1 == m_Text.size() || m_Text[m_At + 1] != '"') {
          Advance(1);
          return;
        }
        Advance(1);
      }
      node.text += m_Text[m_At];
    }
    ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected '\"' at the end of the text that begins here.",
             node.place.line, node.place.column);
  }

  void ReadNumber(WktNode& node) {
    node.kind = WktNode::Number;
    size_t length = 0;
    node.number = ReadDecimal(m_Text.substr(m_At), &length);
    if (length == 0 || !std::isfinite(node.number)) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected a number that a double can hold.", node.place.line,
               node.place.column);
    }
    node.text = m_Text.substr(m_At, length);
    Advance(length);
  }

  void ReadWordOrBlock(WktNode& node, int depth) {
    size_t end = m_At;
    while (end < m_Text.size() && (IsLetter(m_Text[end]) || IsDigit(m_Text[end]))) ++end;
    node.text = m_Text.substr(m_At, end - m_At);
    Advance(end - m_At);
    SkipSpace();
    const char open = m_At < m_Text.size() ? m_Text[m_At] : '\0';
    if (open != '[' && open != '(') {
      node.kind = WktNode::Word;
      return;
    }
    if (depth > kDeepest) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected brackets nested at most %d deep.", node.place.line,
               node.place.column, kDeepest);
    }
    Advance(1);
    const char close = open == '[' ? ']' : ')';
    while (true) {
      SkipSpace();
      node.items.push_back(ReadValue(depth + 1));
      SkipSpace();
      const char next = m_At < m_Text.size() ? m_Text[m_At] : '\0';
      if (next != ',' && next != close) Expected(close == ']' ? "',' or ']'" : "',' or ')'");
      Advance(1);
      if (next == close) return;
    }
  }

  std::string_view m_Text;
  size_t m_At = 0;
  size_t m_LineStart = 0;
  int m_Line = 1;
  int m_Values = 0;
};

void AppendNode(std::string& out, const WktNode& node, bool indented, bool wholeHavePoint, size_t depth) {
  switch (node.kind) {
    case WktNode::Number: {
      const std::string text = NumberText(node.number);
      out += text;
      if (wholeHavePoint && text.find_first_of(".e") == std::string::npos) out += ".0";
      break;
    }
    case WktNode::Text:
      out += '"';
      for (const char c : node.text) {
        if (c == '"') out += '"';
        out += c;
      }
      out += '"';
      break;
    case WktNode::Word:
      out += node.text;
      break;
    case WktNode::Block:
      out += node.text;
      out += '[';
      for (size_t i = 0; i < node.items.size(); ++i) {
        if (i > 0) out += ',';
        if (indented && node.items[i].kind == WktNode::Block) {
          out += '\n';
          out.append(2 * (depth + 1), ' ');
        }
        AppendNode(out, node.items[i], indented, wholeHavePoint, depth + 1);
      }
      out += ']';
      break;
  }
}

}  // namespace

bool WktNode::Is(const char* keyword) const {
  return (kind == Block || kind == Word) && EqualIgnoringCase(text, keyword);
}

const WktNode* WktNode::Find(const char* keyword) const {
  for (const WktNode& item : items) {
    if (item.kind == Block && item.Is(keyword)) return &item;
  }
  return nullptr;
}

const std::string& WktNode::TextAt(size_t index) const {
  static const std::string none;
  return index < items.size() && items[index].kind == Text ? items[index].text : none;
}

WktNode WktNode::Of(const char* keyword) {
  WktNode node;
  node.text = keyword;
  return node;
}
WktNode& WktNode::Add(WktNode item) {
  items.push_back(std::move(item));
  return *this;
}
WktNode WktNode::With(WktNode item) && {
  items.push_back(std::move(item));
  return std::move(*this);
}
WktNode WktNode::With(const std::string& quoted) && {
  WktNode item;
  item.kind = Text;
  item.text = quoted;
  return std::move(*this).With(std::move(item));
}
WktNode WktNode::With(double value) && {
  WktNode item;
  item.kind = Number;
  item.number = value;
  return std::move(*this).With(std::move(item));
}
WktNode WktNode::WithWord(const char* word) && {
  WktNode item;
  item.kind = Word;
  item.text = word;
  return std::move(*this).With(std::move(item));
}

WktNode ReadWktTree(std::string_view text) {
  if (text.size() > kLargestText) {
    ORV_FAIL(ErrCorrupt, "Line 1, column 1: expected a text of at most %d bytes.",
             static_cast<int>(kLargestText));
  }
  return Reader(text).ReadAll();
}

std::string WriteWktTree(const WktNode& node, bool indented, bool wholeHavePoint) {
  std::string out;
  AppendNode(out, node, indented, wholeHavePoint, 0);
  return out;
}

std::string NumberText(double value) {
  return ShortestNumber(value + 0.0);  // no sign of zero
}

double Tidied(double value) {
  const double tidy = ReadDecimal(Format("%.15g", value));
  return std::fabs(tidy - value) <= 4 * DBL_EPSILON * std::fabs(value) ? tidy : value;
}

Place PlaceOf(std::string_view text, size_t offset) {
  Place place;
  size_t start = 0;
  for (size_t i = 0; i < offset && i < text.size(); ++i) {
    if (text[i] != '\n') continue;
    ++place.line;
    start = i + 1;
  }
  place.column = static_cast<int>(offset - start) + 1;
  return place;
}

}  // namespace orv::internal
