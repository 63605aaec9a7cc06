#include "tools/orv/TextForm.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tools/orv/Command.h"

namespace orv::tool {

namespace {

/// Whether a field may be the name of a column: it does not begin like a number.
bool NamesColumn(const std::string& field) {
  return !field.empty() && std::string_view("0123456789+-.").find(field[0]) == std::string_view::npos;
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
