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

bool KeyReader::TakesWhole(std::string_view key) {
  const std::string_view own = m_Key.key;
  if (own.size() != key.size()) return false;
  if (own.size() > 8 && !EqualIgnoringCase(own.substr(8), key.substr(8)))
    return false;  // eight are equal already
  if (m_Key.pValue) {
    m_Reader.Take(m_Key);
    m_Value = m_Reader.Token();
  }
  return true;
}

void KeyReader::Follow() {
  ++m_Taken;
  if (!m_Reader.Peek(m_Key)) m_Key = {};
}

bool KeyReader::IsTrue() const {
  return EqualIgnoringCase(m_Value.substr(0, m_Value.find('\0')), std::string_view("true"));
}

void KeyReader::Complain(const char* message) {
  ORV_FAIL_AT(m_Site, ErrSyntax, message, m_Reader.FileName(), m_Reader.Line(), std::string(m_Value).c_str());
}

}  // namespace orv::internal
