// GenericReader.h: bytes of a grid, out of a file or out of memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace orv::internal {

/// Reads from a position that moves.  Nothing behind the end is ever asked of the source.
class GenericReader {
 public:
  virtual ~GenericReader() = default;
  GenericReader(const GenericReader&) = delete;
  GenericReader& operator=(const GenericReader&) = delete;

  /// Bytes in all, and from the position to the end.
  uint64_t Size() const { return m_Size; }
  uint64_t Left() const { return m_Size - m_At; }

  /// False, and the position stays, when `at` lies behind the end.
  bool Seek(uint64_t at);
  /// All of `size` bytes, or false: then the position stays and `out` holds nothing of use.
  bool Read(unsigned char* out, size_t size);
  /// The same into a vector, which grows only when the source holds as much.
  bool Read(std::vector<unsigned char>& out, uint64_t size);

 protected:
  GenericReader() = default;
  void SetSize(uint64_t size);
  virtual bool ReadAt(uint64_t at, unsigned char* out, size_t size) = 0;

 private:
  uint64_t m_Size = 0;
  uint64_t m_At = 0;
};

/// A file, open as long as its reader lives.
class FileReader : public GenericReader {
 public:
  FileReader() = default;
  ~FileReader() override { Close(); }

  /// False when the file cannot be opened; the reader is then empty.
  bool Open(const std::string& path);
  void Close();

 protected:
  bool ReadAt(uint64_t at, unsigned char* out, size_t size) override;

 private:
  std::FILE* m_pFile = nullptr;
  uint64_t m_FileAt = 0;  // where stdio stands, which spares most seeks
};

/// Bytes in memory that the caller keeps.
class MemoryReader : public GenericReader {
 public:
  MemoryReader(const unsigned char* data, size_t size) : m_pData(data) { SetSize(size); }

 protected:
  bool ReadAt(uint64_t at, unsigned char* out, size_t size) override;

 private:
  const unsigned char* m_pData;
};

}  // namespace orv::internal
