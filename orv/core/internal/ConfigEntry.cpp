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
  if (m_Taken || m_Key.size() != key.size()) return false;
  m_Taken =
      m_Key.size() <= 8 || EqualIgnoringCase(m_Key.substr(8), key.substr(8));  // eight are equal already
  return m_Taken;
}

bool KeyReader::IsTrue() const {
  return EqualIgnoringCase(m_Value.substr(0, m_Value.find('\0')), std::string_view("true"));
}

void KeyReader::Complain(const char* message) {
  ORV_FAIL_AT(m_Site, ErrSyntax, message, m_Reader.FileName(), m_Reader.Line(), std::string(m_Value).c_str());
}

}  // namespace orv::internal
