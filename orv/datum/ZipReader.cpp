#include "orv/datum/ZipReader.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>

#include "orv/core/Platform.h"
#include "orv/core/internal/ByteReader.h"

namespace orv::internal {

namespace {

constexpr uint32_t kEndSignature = 0x06054b50;
constexpr uint32_t kEntrySignature = 0x02014b50;
constexpr uint32_t kLocalSignature = 0x04034b50;
constexpr size_t kEndSize = 22;
constexpr size_t kEntrySize = 46;
constexpr size_t kLocalSize = 30;
constexpr uint64_t kEndSearched = 4096;

constexpr uint16_t kStored = 0;
constexpr uint16_t kDeflated = 8;
constexpr uint64_t kLargestMember = uint64_t{1} << 30;
constexpr uint64_t kLargestRatio = 1100;
constexpr size_t kInflateStep = 64 * 1024;

/// Inflates raw deflate data to exactly as many bytes as `out` has room for.
bool Inflate(const std::vector<unsigned char>& in, std::vector<unsigned char>& out) {
  z_stream stream = {};
  // Deliberate: zlib looks at the first character of the version only.
  if (inflateInit2_(&stream, -15, "1.1.4", static_cast<int>(sizeof stream)) != Z_OK) return false;
  size_t inAt = 0, outAt = 0;
  unsigned char beyond = 0;  // takes a byte that should not be there
  int result = Z_OK;
  while (result == Z_OK) {
    const size_t inStep = std::min(in.size() - inAt, kInflateStep);
    const size_t outStep = std::min(out.size() - outAt, kInflateStep);
    stream.next_in = const_cast<unsigned char*>(in.data()) + inAt;  // zlib does not write to it
    stream.avail_in = static_cast<uInt>(inStep);
    stream.next_out = outStep > 0 ? out.data() + outAt : &beyond;
    stream.avail_out = static_cast<uInt>(outStep > 0 ? outStep : 1);
    const uInt room = stream.avail_out;
    result = inflate(&stream, inStep > 0 ? Z_NO_FLUSH : Z_FINISH);
    const size_t taken = inStep - stream.avail_in;
    const size_t given = room - stream.avail_out;
    if (given > 0 && outStep == 0) {  // more than the directory says
      result = Z_DATA_ERROR;
      break;
    }
    inAt += taken;
    outAt += given;
    // With Z_FINISH, "no progress" only means that the room was used up.
    if (result == Z_BUF_ERROR && given > 0) result = Z_OK;
  }
  inflateEnd(&stream);
  return result == Z_STREAM_END && outAt == out.size();
}

}  // namespace

ZipStatus ZipReader::Open(const std::string& path) {
  Close();
  if (!m_File.Open(path)) return ZipOpenFailed;
  const ZipStatus status = ReadDirectory();
  if (status != ZipDone) {
    m_Members.clear();
    m_File.Close();
  }
  return status;
}

void ZipReader::Close() {
  m_File.Close();
  m_Members.clear();
  m_pTrouble = "";
}

ZipStatus ZipReader::ReadDirectory() {
  uint64_t at = 0;
  uint16_t count = 0;
  ZipStatus status = FindDirectory(at, count);
  uint64_t left = m_File.Size();  // for the data of the members that are still to come
  for (uint16_t i = 0; i < count && status == ZipDone; ++i) {
    Member& member = m_Members.emplace_back();
    status = ReadEntry(at, member);
    if (status != ZipDone) break;
    if (member.compressedSize > left) return ZipBad;
    left -= member.compressedSize;
  }
  return status;
}

ZipStatus ZipReader::FindDirectory(uint64_t& at, uint16_t& count) {
  if (m_File.Size() < kEndSize) {
    m_pTrouble = "Too small to be a valid ZIP file!";
    return ZipBad;
  }
  const uint64_t searched = std::min(m_File.Size(), kEndSearched);
  std::vector<unsigned char> tail;
  if (!m_File.Seek(m_File.Size() - searched) || !m_File.Read(tail, searched)) return ZipReadFailed;
  for (size_t offset = tail.size() - kEndSize + 1; offset-- > 0;) {
    ByteReader record(tail.data() + offset, kEndSize);
    if (record.U32() != kEndSignature) continue;
    record.Skip(6);  // disks, and the members on this one
    count = record.U16();
    record.Skip(4);  // size of the directory
    at = record.U32();
    return ZipDone;
  }
  return ZipBad;
}

ZipStatus ZipReader::ReadEntry(uint64_t& at, Member& member) {
  unsigned char bytes[kEntrySize];
  if (!m_File.Seek(at) || !m_File.Read(bytes, kEntrySize)) return ZipReadFailed;
  ByteReader entry(bytes, kEntrySize);
  if (entry.U32() != kEntrySignature) return ZipBad;
  entry.Skip(6);  // versions and flags
  member.method = entry.U16();
  entry.Skip(4);  // time and date
  member.crc = entry.U32();
  member.compressedSize = entry.U32();
  member.size = entry.U32();
  const uint16_t nameSize = entry.U16();
  const uint16_t extraSize = entry.U16();
  const uint16_t commentSize = entry.U16();
  entry.Skip(8);  // disk and attributes
  const uint32_t localAt = entry.U32();
  std::vector<unsigned char> name;
  if (!m_File.Read(name, nameSize)) return ZipReadFailed;
  member.name.assign(name.begin(), name.end());
  at += kEntrySize + uint64_t{nameSize} + extraSize + commentSize;

  if (!m_File.Seek(localAt) || !m_File.Read(bytes, kLocalSize)) return ZipReadFailed;
  ByteReader local(bytes, kLocalSize);
  if (local.U32() != kLocalSignature) return ZipBad;
  local.Skip(22);  // everything that the directory has as well
  const uint16_t localNameSize = local.U16();
  const uint16_t localExtraSize = local.U16();
  member.dataAt = localAt + kLocalSize + uint64_t{localNameSize} + localExtraSize;
  const bool inside =
      member.dataAt <= m_File.Size() && member.compressedSize <= m_File.Size() - member.dataAt;
  return inside ? ZipDone : ZipReadFailed;
}

ZipStatus ZipReader::ExtractToMemory(int index, std::vector<unsigned char>& buffer) {
  m_pTrouble = "";
  buffer.clear();
  if (index < 0 || index >= CountFiles()) return ZipNoSuchFile;
  const ZipStatus status = Extract(m_Members[static_cast<size_t>(index)], buffer);
  if (status != ZipDone) buffer.clear();
  return status;
}

ZipStatus ZipReader::Extract(const Member& member, std::vector<unsigned char>& buffer) {
  if (member.method != kStored && member.method != kDeflated) return ZipUnsupported;
  if (member.size > kLargestMember || member.size > kLargestRatio * member.compressedSize) return ZipBad;
  if (!m_File.Seek(member.dataAt)) return ZipReadFailed;
  if (member.method == kStored) {
    if (member.size != member.compressedSize) return ZipBad;
    if (!m_File.Read(buffer, member.size)) return ZipReadFailed;
  } else {
    std::vector<unsigned char> compressed;
    if (!m_File.Read(compressed, member.compressedSize)) return ZipReadFailed;
    buffer.resize(member.size);
    if (!Inflate(compressed, buffer)) return ZipBad;
  }
  const uLong crc = crc32(crc32(0, nullptr, 0), buffer.data(), static_cast<uInt>(buffer.size()));
  if (crc == member.crc) return ZipDone;
  m_pTrouble = "CRC check failed!";
  return ZipBad;
}

ZipStatus ZipReader::ExtractToFile(int index, const std::string& path) {
  std::vector<unsigned char> bytes;
  const ZipStatus status = ExtractToMemory(index, bytes);
  if (status != ZipDone) return status;
  std::FILE* const file = platform::OpenFile(path.c_str(), "wb");
  if (!file) return ZipWriteFailed;
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const bool closed = std::fclose(file) == 0;  // a full disk may only show here
  if (written && closed) return ZipDone;
  std::remove(path.c_str());
  return ZipWriteFailed;
}

}  // namespace orv::internal
