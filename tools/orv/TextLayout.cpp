#include "tools/orv/TextLayout.h"

#include <fmt/core.h>
#include <algorithm>

#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

char CharacterOf(Separator separator) {
  return separator == Separator::Comma ? ',' : separator == Separator::Semicolon ? ';' : '\t';
}

/// Behind the closing quote of the quoted text that starts at `at`; the line's size when it is not closed.
bool SkipQuoted(std::string_view line, size_t& at) {
  for (++at; at < line.size(); ++at) {
    if (line[at] != '"') continue;
    if (at + 1 < line.size() && line[at + 1] == '"') {
      ++at;
    } else {
      ++at;
      return true;
    }
  }
  return false;
}

bool SplitAtBlanks(std::string_view line, std::vector<Field>& fields) {
  for (size_t at = 0;;) {
    while (at < line.size() && IsBlank(line[at])) ++at;
    if (at == line.size()) return true;
    const size_t start = at;
    if (line[at] == '"' && !SkipQuoted(line, at)) return false;
    while (at < line.size() && !IsBlank(line[at])) ++at;
    fields.push_back({start, at - start});
  }
}

/// Column number from 1, or 0.
size_t NumberOf(const std::string& text) {
  int number = 0;
  return text.find_first_not_of("0123456789") == std::string::npos && ParseInteger(text, number)
             ? static_cast<size_t>(number)
             : 0;
}

}  // namespace

Separator DetectSeparator(std::string_view line) {
  bool quoted = false, comma = false, semicolon = false, fieldBegins = true;
  for (size_t at = 0; at < line.size(); ++at) {
    const char c = line[at];
    if (quoted) {
      if (c == '"') quoted = false;
      continue;
    }
    if (c == '\t') return Separator::Tab;
    comma = comma || c == ',';
    semicolon = semicolon || c == ';';
    if (c == '"' && fieldBegins) quoted = true;
    fieldBegins = c == ',' || c == ';' || c == ' ';
  }
  return comma ? Separator::Comma : semicolon ? Separator::Semicolon : Separator::Blanks;
}

bool SplitLine(std::string_view line, Separator separator, std::vector<Field>& fields) {
  fields.clear();
  if (separator == Separator::Blanks) return SplitAtBlanks(line, fields);
  const char between = CharacterOf(separator);
  for (size_t start = 0;;) {
    size_t at = start;
    if (separator != Separator::Tab) {
      while (at < line.size() && IsBlank(line[at])) ++at;
      if (at == line.size() || line[at] != '"') {
        at = start;
      } else if (!SkipQuoted(line, at)) {
        return false;
      }
    }
    const size_t end = std::min(line.find(between, at), line.size());
    fields.push_back({start, end - start});
    if (end == line.size()) return true;
    start = end + 1;
  }
}

std::string_view FieldText(std::string_view line, Field field, std::string& room) {
  std::string_view text = Trimmed(line.substr(field.at, field.size));
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return text;
  text = text.substr(1, text.size() - 2);
  if (text.find('"') != std::string_view::npos) {
    room.clear();
    for (size_t i = 0; i < text.size(); ++i) {
      room += text[i];
      if (text[i] == '"' && i + 1 < text.size() && text[i + 1] == '"') ++i;
    }
    text = room;
  }
  return Trimmed(text);
}

ColumnChoice::ColumnChoice(const std::string& text) {
  const size_t comma = text.find(',');
  if (comma == std::string::npos || text.find(',', comma + 1) != std::string::npos) {
    throw UsageError(fmt::format("--columns: '{}' is not two columns with a comma between", Excerpt(text)));
  }
  m_X = Trimmed(std::string_view(text).substr(0, comma));
  m_Y = Trimmed(std::string_view(text).substr(comma + 1));
  if (m_X.empty() || m_Y.empty() || m_X == "0" || m_Y == "0") {
    throw UsageError(fmt::format("--columns: '{}' names no column; they are counted from 1",
                                 m_X.empty() || m_X == "0" ? m_X : m_Y));
  }
  if (EqualFold(m_X, m_Y)) throw UsageError("--columns: both coordinates in one column");
}

bool ColumnChoice::ByName() const { return NumberOf(m_X) == 0 || NumberOf(m_Y) == 0; }

Columns ColumnChoice::Find(const std::vector<std::string>& header) const {
  const auto find = [&header](const std::string& wanted) {
    if (const size_t number = NumberOf(wanted)) return number - 1;
    for (size_t i = 0; i < header.size(); ++i) {
      if (EqualFold(Trimmed(header[i]), wanted)) return i;
    }
    std::string names;
    for (const std::string& name : header) names += (names.empty() ? "" : ", ") + name;
    throw UsageError(fmt::format("--columns: the header has no column '{}' (it has: {})", wanted, names));
  };
  const Columns columns{find(m_X), find(m_Y)};
  if (columns.x == columns.y) throw UsageError("--columns: both coordinates in one column");
  return columns;
}

}  // namespace orv::tool
