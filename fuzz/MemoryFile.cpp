#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/FuzzTarget.h"

namespace orv::fuzz {

MemoryFile::MemoryFile()
    : m_File(memfd_create("orv_fuzz", 0)), m_Path("/proc/self/fd/" + std::to_string(m_File)) {
  Require(m_File >= 0, "memfd_create works");
}

MemoryFile::~MemoryFile() { close(m_File); }

void MemoryFile::Write(const void* data, size_t size) {
  Require(ftruncate(m_File, 0) == 0, "ftruncate works");
  Require(pwrite(m_File, data, size, 0) == static_cast<ssize_t>(size), "pwrite works");
}

std::string MemoryFile::Content() const {
  std::string content(static_cast<size_t>(lseek(m_File, 0, SEEK_END)), '\0');
  Require(pread(m_File, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size()),
          "pread works");
  return content;
}

}  // namespace orv::fuzz
