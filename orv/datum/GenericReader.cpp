#include "orv/datum/GenericReader.h"

#include <cstring>

#include "orv/core/Platform.h"

namespace orv::internal {

void GenericReader::SetSize(uint64_t size) {
  m_Size = size;
  m_At = 0;
}

bool GenericReader::Seek(uint64_t at) {
  if (at > m_Size) return false;
  m_At = at;
  return true;
}

bool GenericReader::Read(unsigned char* out, size_t size) {
  if (size > Left()) return false;
  if (size > 0 && !ReadAt(m_At, out, size)) return false;
  m_At += size;
  return true;
}

bool GenericReader::Read(std::vector<unsigned char>& out, uint64_t size) {
  if (size > Left()) return false;
  out.resize(static_cast<size_t>(size));
  return Read(out.data(), out.size());
}

bool FileReader::Open(const std::string& path) {
  Close();
  m_pFile = platform::OpenFile(path.c_str(), "rb");
  if (!m_pFile) return false;
  const long size = std::fseek(m_pFile, 0, SEEK_END) == 0 ? std::ftell(m_pFile) : -1;
  if (size < 0 || std::fseek(m_pFile, 0, SEEK_SET) != 0) {
    Close();
    return false;
  }
  SetSize(static_cast<uint64_t>(size));
  return true;
}

void FileReader::Close() {
  if (m_pFile) std::fclose(m_pFile);
  m_pFile = nullptr;
  m_FileAt = 0;
  SetSize(0);
}

bool FileReader::ReadAt(uint64_t at, unsigned char* out, size_t size) {
  if (at != m_FileAt && std::fseek(m_pFile, static_cast<long>(at), SEEK_SET) != 0) return false;
  const size_t count = std::fread(out, 1, size, m_pFile);
  m_FileAt = at + count;  // a file that another process has cut ends early
  return count == size;
}

bool MemoryReader::ReadAt(uint64_t at, unsigned char* out, size_t size) {
  std::memcpy(out, m_pData + at, size);
  return true;
}

}  // namespace orv::internal
