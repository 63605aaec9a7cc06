#include "tools/orv/JsonMembers.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>

#include "tools/orv/Command.h"

namespace orv::tool {

namespace {

constexpr int kMostLevels = 200;

/// Takes the events of a text, keeps nothing, and remembers what is wrong.
class Checker : public nlohmann::json_sax<nlohmann::json> {
 public:
  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool string(string_t&) override { return true; }
  bool binary(binary_t&) override { return true; }
  bool key(string_t&) override { return true; }
  bool start_object(std::size_t) override { return Enter(); }
  bool end_object() override { return Leave(); }
  bool start_array(std::size_t) override { return Enter(); }
  bool end_array() override { return Leave(); }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::json::exception& e) override {
    constexpr int kOutOfRange = 406;  // of a number
    m_Problem = e.id == kOutOfRange ? fmt::format("a number beyond 1.8e308 at byte {}", position)
                                    : fmt::format("no JSON at byte {}", position);
    return false;
  }
  const std::string& Problem() const { return m_Problem; }

 private:
  bool Enter() {
    if (++m_Levels <= kMostLevels) return true;
    m_Problem = fmt::format("nested deeper than {} levels", kMostLevels);
    return false;
  }
  bool Leave() {
    --m_Levels;
    return true;
  }

  int m_Levels = 0;
  std::string m_Problem;
};

/// Behind the string whose opening quote is at `at`.
size_t SkipString(std::string_view text, size_t at) {
  for (++at; at < text.size() && text[at] != '"'; ++at) {
    if (text[at] == '\\') ++at;
  }
  return at + 1;
}

}  // namespace

std::string_view CheckedJson(std::string_view text, const std::string& name) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
  Checker checker;
  if (!nlohmann::json::sax_parse(text, &checker))
    throw UsageError(fmt::format("'{}': {}", name, checker.Problem()));
  return text;
}

size_t SkipJsonBlanks(std::string_view text, size_t at) {
  const size_t found = text.find_first_not_of(" \t\r\n", at);
  return found == std::string_view::npos ? text.size() : found;
}

size_t SkipJsonValue(std::string_view text, size_t at) {
  size_t depth = 0;
  for (; at < text.size();) {
    const char c = text[at];
    if (c == '"') {
      at = SkipString(text, at);
      if (depth == 0) return at;
      continue;
    }
    if (c == '{' || c == '[') ++depth;
    if (c == '}' || c == ']') {
      if (depth == 0) return at;  // of what is around a number or word
      ++at;
      if (--depth == 0) return at;
      continue;
    }
    if (depth == 0 && (c == ',' || c == ' ' || c == '\t' || c == '\r' || c == '\n')) return at;
    ++at;
  }
  return text.size();
}

std::vector<JsonMember> JsonMembersOf(std::string_view text, size_t at) {
  std::vector<JsonMember> members;
  if (at >= text.size() || text[at] != '{') return members;
  for (at = SkipJsonBlanks(text, at + 1); at < text.size() && text[at] == '"';) {
    JsonMember member{};
    const size_t keyEnd = SkipString(text, at);
    member.key = text.substr(at + 1, keyEnd - at - 2);
    member.value.begin = SkipJsonBlanks(text, SkipJsonBlanks(text, keyEnd) + 1);
    member.value.end = SkipJsonValue(text, member.value.begin);
    member.all = {at, member.value.end};
    members.push_back(member);
    at = SkipJsonBlanks(text, member.value.end);
    if (at < text.size() && text[at] == ',') at = SkipJsonBlanks(text, at + 1);
  }
  return members;
}

std::vector<JsonSpan> JsonElementsOf(std::string_view text, size_t at) {
  std::vector<JsonSpan> elements;
  if (at >= text.size() || text[at] != '[') return elements;
  for (at = SkipJsonBlanks(text, at + 1); at < text.size() && text[at] != ']';) {
    const size_t end = SkipJsonValue(text, at);
    elements.push_back({at, end});
    at = SkipJsonBlanks(text, end);
    if (at < text.size() && text[at] == ',') at = SkipJsonBlanks(text, at + 1);
  }
  return elements;
}

}  // namespace orv::tool
