// ByteBuffer.h: bytes that are appended, kept and thrown away block after block without new memory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace orv::tool {

/// A string that neither fills its room with zeros nor gives it back when it is cleared.
class ByteBuffer {
 public:
  /// Bytes behind the end that may be read and written, to no effect.
  static constexpr size_t kSpare = 16;

  const char* Data() const { return m_Bytes.get(); }
  char* Data() { return m_Bytes.get(); }
  size_t Size() const { return m_Size; }
  std::string_view View() const { return {m_Bytes.get(), m_Size}; }

  void Clear() { m_Size = 0; }
  /// @param size  at most what there is.
  void Shorten(size_t size) { m_Size = size; }

  /// Where `more` bytes can be written; Grow then says how many were.
  char* Room(size_t more) {
    if (m_Size + more > m_Capacity) Enlarge(m_Size + more);
    return m_Bytes.get() + m_Size;
  }
  void Grow(size_t by) { m_Size += by; }

  void Append(std::string_view text) {
    if (text.empty()) return;
    std::memcpy(Room(text.size()), text.data(), text.size());
    m_Size += text.size();
  }

 private:
  void Enlarge(size_t least) {
    const size_t capacity = std::max(least, m_Capacity + m_Capacity / 2);
    std::unique_ptr<char[]> bytes(new char[capacity + kSpare]);
    if (m_Size > 0) std::memcpy(bytes.get(), m_Bytes.get(), m_Size);
    m_Bytes = std::move(bytes);
    m_Capacity = capacity;
  }

  std::unique_ptr<char[]> m_Bytes;
  size_t m_Size = 0;
  size_t m_Capacity = 0;
};

}  // namespace orv::tool
