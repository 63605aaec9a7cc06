#include "orv/core/internal/ConfigEntry.h"

#include "orv/core/ORVGlobals.h"

namespace orv::internal {

bool OpenListFile(ConfigFileReader& reader, const ListFile& file, const char* fileName, bool bReportMissing,
                  const ErrorSite& site) {
  if (!fileName) fileName = file.defaultName;
  std::string path;
  if (!ORVFindConfigFile(fileName, path)) {
    return bReportMissing && ORV_FAIL_AT(site, ErrFileMissing, file.notFound, fileName);
  }
  if (reader.TryOpen(path.c_str())) return true;
  return (bReportMissing || file.bAlwaysReportUnopenable) &&
         ORV_FAIL_AT(site, ErrFileMissing, file.notOpened, path.c_str());
}

bool CreateListFile(ConfigFileWriter& writer, const ListFile& file, const char* fileName,
                    const ErrorSite& site) {
  if (!fileName) fileName = file.defaultName;
  if (!writer.TryOpen(fileName)) return ORV_FAIL_AT(site, ErrFileMissing, file.notWritable, fileName);
  writer.Write(file.header);
  return true;
}

bool KeyReader::Takes(std::string_view key) {
  if (!m_pAhead) return IsRead(key);
  const char* const value = ValueAhead(key);
  if (!value || !m_Reader.TakeAt(value)) return false;
  m_Value = m_Reader.Token();
  return true;
}

const RecentNumbers::Number* KeyReader::TakesNumber(std::string_view key) {
  if (!m_pAhead) return IsRead(key) ? &m_Reader.Decimal(m_Value) : nullptr;
  const char* const value = ValueAhead(key);
  return value ? m_Reader.TakeDecimalAt(value) : nullptr;
}

// Of these two keys the first eight characters are equal already.
bool KeyReader::IsRead(std::string_view key) const {
  return m_Key.size() == key.size() && (key.size() <= 8 || EqualIgnoringCase(m_Key.substr(8), key.substr(8)));
}

const char* KeyReader::ValueAhead(std::string_view key) const {
  for (size_t at = 8; at < key.size(); ++at) {
    if (m_pAhead[at] != key[at]) return nullptr;
  }
  return m_pAhead[key.size()] == '=' ? m_pAhead + key.size() + 1 : nullptr;
}

bool KeyReader::IsTrue() const {
  return EqualIgnoringCase(m_Value.substr(0, m_Value.find('\0')), std::string_view("true"));
}

void KeyReader::Complain(const char* message) {
  ORV_FAIL_AT(m_Site, ErrSyntax, message, m_Reader.FileName(), m_Reader.Line(), std::string(m_Value).c_str());
}

}  // namespace orv::internal
