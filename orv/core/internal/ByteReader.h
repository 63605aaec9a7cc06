// ByteReader.h: little-endian numbers out of a block of bytes, alike on any host.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>

namespace orv::internal {

/// A cursor over bytes that it does not own.  A read that would pass the end gives 0 (or an empty text), takes
/// nothing and is remembered: read on and ask Ok() once.
class ByteReader {
 public:
  ByteReader(const unsigned char* data, size_t size) : m_pData(data), m_Size(size) {}

  /// False once a read, skip or seek has passed the end.
  bool Ok() const { return m_bOk; }
  size_t Left() const { return m_Size - m_At; }

  void Seek(size_t at) {
    if (at > m_Size) {
      m_bOk = false;
    } else {
      m_At = at;
    }
  }
  void Skip(size_t size) { Take(size); }

  uint16_t U16() { return static_cast<uint16_t>(Unsigned(2)); }
  uint32_t U32() { return static_cast<uint32_t>(Unsigned(4)); }
  int32_t I32() { return static_cast<int32_t>(U32()); }
  float F32() { return std::bit_cast<float>(U32()); }
  double F64() { return std::bit_cast<double>(Unsigned(8)); }
  std::string Text(size_t size) {
    const unsigned char* const bytes = Take(size);
    return bytes ? std::string(bytes, bytes + size) : std::string();
  }

 private:
  const unsigned char* Take(size_t size) {
    if (size > Left()) {
      m_bOk = false;
      return nullptr;
    }
    const unsigned char* const bytes = m_pData + m_At;
    m_At += size;
    return bytes;
  }
  uint64_t Unsigned(size_t size) {
    const unsigned char* const bytes = Take(size);
    uint64_t value = 0;
    for (size_t i = 0; bytes && i < size; ++i) value |= static_cast<uint64_t>(bytes[i]) << (8 * i);
    return value;
  }

  const unsigned char* m_pData;
  size_t m_Size;
  size_t m_At = 0;
  bool m_bOk = true;
};

}  // namespace orv::internal
