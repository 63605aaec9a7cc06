// MemoryArchive.h: an archive in memory.
#pragma once

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

#include "orv/shared/ISerialize.h"

namespace orv::test {

/// Stores into, or loads from, a string of bytes.  Reading beyond the end throws std::out_of_range, as a
/// host's archive would in its own way.
class MemoryArchive : public shr::ISerialize {
 public:
  MemoryArchive() : m_bStoring(true) {}
  explicit MemoryArchive(std::string bytes) : m_bStoring(false), m_Bytes(std::move(bytes)) {}

  bool IsStoring() const override { return m_bStoring; }
  void Read(void* data, size_t size) override {
    if (size > m_LargestRead) m_LargestRead = size;
    if (size > m_Bytes.size() - m_At) throw std::out_of_range("archive ended");
    std::memcpy(data, m_Bytes.data() + m_At, size);
    m_At += size;
  }
  void Write(const void* data, size_t size) override { m_Bytes.append(static_cast<const char*>(data), size); }

  const std::string& Bytes() const { return m_Bytes; }
  size_t Left() const { return m_Bytes.size() - m_At; }
  size_t LargestRead() const { return m_LargestRead; }

 private:
  bool m_bStoring;
  std::string m_Bytes;
  size_t m_At = 0;
  size_t m_LargestRead = 0;
};

}  // namespace orv::test
