// ZipReader.h: members of a zip archive, stored or deflated.
//
// Not a general zip library: one disk, sizes below 4 GiB, no encryption.  Every offset and size is bounded by
// the archive's length, so any bytes give either members or a failure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "orv/datum/GenericReader.h"

namespace orv::internal {

enum ZipStatus : int {
  ZipDone = 0,
  ZipOpenFailed = -2,
  ZipReadFailed = -3,   ///< a read came up short, or would have
  ZipUnsupported = -4,  ///< a method other than 0 (stored) and 8 (deflated)
  ZipNoSuchFile = -5,   ///< no member has this index
  ZipWriteFailed = -6,  ///< the file to extract to cannot be written
  ZipBad = -99          ///< a bad signature, an archive that is too small, or a member that is damaged
};

class ZipReader {
 public:
  /// Opens an archive and reads its directory.  The end record is looked for in the last 4096 bytes.
  ///
  /// A file of 21 bytes or less is ZipBad, with the trouble "Too small to be a valid ZIP file!", and so is one whose
  /// members' compressed sizes add up to more than the file: they share bytes, so that a small archive would hold
  /// any number of large members.  After any failure the reader holds no member.
  ZipStatus Open(const std::string& path);
  void Close();

  int CountFiles() const { return static_cast<int>(m_Members.size()); }
  /// Name of a member as the directory has it, index 0 to CountFiles() - 1.
  const std::string& Name(int index) const { return m_Members[static_cast<size_t>(index)].name; }
  uint32_t UncompressedSize(int index) const { return m_Members[static_cast<size_t>(index)].size; }

  /// The bytes of a member.  Sizes, method and CRC-32 are those of the directory.
  ///
  /// A member of more than 1 GiB, or of more than 1100 times its compressed size (deflate gives no more than
  /// 1032 times), is ZipBad before anything is allocated.  Bytes whose CRC-32 differs are ZipBad, with the
  /// trouble "CRC check failed!".  After any failure the buffer is empty.
  ZipStatus ExtractToMemory(int index, std::vector<unsigned char>& buffer);
  /// The same into a file; a file that is written in part is deleted.
  ZipStatus ExtractToFile(int index, const std::string& path);

  /// What a trace would say of the last failure; "" for none and for failures without a text.  Such a text is
  /// never raised.
  const char* Trouble() const { return m_pTrouble; }

 private:
  struct Member {
    std::string name;
    uint16_t method = 0;
    uint32_t crc = 0;
    uint32_t compressedSize = 0;
    uint32_t size = 0;
    uint64_t dataAt = 0;
  };

  ZipStatus ReadDirectory();
  ZipStatus FindDirectory(uint64_t& at, uint16_t& count);
  /// Reads one directory entry, moves `at` behind it and looks at the member's local header.
  ZipStatus ReadEntry(uint64_t& at, Member& member);
  ZipStatus Extract(const Member& member, std::vector<unsigned char>& buffer);

  FileReader m_File;
  std::vector<Member> m_Members;
  const char* m_pTrouble = "";
};

}  // namespace orv::internal
