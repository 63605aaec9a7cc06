#include "tools/orv/TextForm.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

/// Whether a field may be the name of a column: it does not begin like a number, and is neither an angle ("E9.5") nor one
/// of the words for no number.
bool NamesColumn(const std::string& field) {
  if (field.empty() || std::string_view("0123456789+-.").find(field[0]) != std::string_view::npos)
    return false;
  for (const std::string_view word : {"nan", "na", "n/a", "inf", "infinity", "null", "none"}) {
    if (EqualFold(Trimmed(field), word)) return false;
  }
  double angle = 0.0;
  return !ParseAngle(Trimmed(field), angle);
}

/// Whether a carriage return stands within a line, outside quotes.
bool HoldsCarriageReturn(std::string_view line) {
  bool bQuoted = false;
  for (const char c : line) {
    if (c == '"') bQuoted = !bQuoted;
    if (c == '\r' && !bQuoted) return true;
  }
  return false;
}

}  // namespace

LineCut FirstLine(std::string_view text) {
  const size_t end = text.find('\n');
  const size_t size = end == std::string_view::npos ? text.size() : end + 1;
  size_t textSize = end == std::string_view::npos ? size : end;
  if (textSize > 0 && text[textSize - 1] == '\r') --textSize;
  return {text.substr(0, textSize), size};
}

TextForm::Start TextForm::Begin(std::string_view lines) {
  for (size_t at = 0; at < lines.size();) {
    const LineCut line = FirstLine(lines.substr(at));
    if (line.text.find_first_not_of(" \t") == std::string_view::npos) {
      at += line.size;
      continue;
    }
    if (lines.find('\n') == std::string_view::npos && HoldsCarriageReturn(line.text)) {
      throw UsageError(
          "the lines end in carriage returns alone: turn them into line feeds first, as by tr '\\r' '\\n'");
    }
    const size_t mark = line.text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    const bool bHeader = IsHeader(line.text.substr(mark));
    m_bBegun = true;
    if (bHeader) return {at + line.size, at + line.size};
    return {at, at + mark};
  }
  return {lines.size(), lines.size()};
}

bool TextForm::IsHeader(std::string_view line) {
  m_Separator = m_Options.separator ? *m_Options.separator : DetectSeparator(line);
  std::vector<Field> fields;
  std::vector<std::string> names;
  std::string room;
  if (SplitLine(line, m_Separator, fields)) {
    for (const Field& field : fields) names.emplace_back(FieldText(line, field, room));
  }
  const bool bByName = m_Options.columns.ByName();
  if (bByName && m_Options.header == false) throw UsageError("--columns: names need a header");
  m_Columns = m_Options.columns.Find(names);
  if (m_Options.header) return *m_Options.header;
  if (bByName) return true;
  return std::max(First(), Second()) < names.size() && NamesColumn(names[First()]) &&
         NamesColumn(names[Second()]);
}

}  // namespace orv::tool
