#include "tools/orv/JsonMembers.h"

namespace orv::tool {

namespace {

/// Behind the string whose opening quote is at `at`.
size_t SkipString(std::string_view text, size_t at) {
  for (++at; at < text.size() && text[at] != '"'; ++at) {
    if (text[at] == '\\') ++at;
  }
  return at + 1;
}

}  // namespace

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
