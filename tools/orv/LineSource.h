// LineSource.h: whole lines from a file, in blocks of bounded size.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tools/orv/ByteBuffer.h"
#include "tools/orv/Descriptor.h"

namespace orv::tool {

constexpr size_t kBlockBytes = size_t{1} << 18;
/// A line longer than this is refused: it is the bound of the memory, and no line of points is so long.
constexpr size_t kLongestLine = size_t{1} << 24;

/// Reads blocks of some 256 KiB of whole lines; fewer when the next ones have yet to come, so that lines typed, or made by
/// another program, are answered at once.
class LineSource {
 public:
  explicit LineSource(InputFile& file) : m_File(file) {}

  /// The next block; false at the end.  Raises UsageError when reading fails, when the first block holds what is no
  /// text, and when a line is longer than kLongestLine.
  bool Next(ByteBuffer& block);

 private:
  void CheckText(const ByteBuffer& block) const;

  InputFile& m_File;
  ByteBuffer m_Rest;  ///< read, but behind the last whole line
  bool m_bBegun = false;
  uint64_t m_Bytes = 0;  ///< of the blocks before
};

}  // namespace orv::tool
