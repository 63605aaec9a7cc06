#include "orv/system/internal/SystemRecord.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace orv::internal {

namespace {

constexpr uint32_t kVersion = 1;
constexpr size_t kPiece = 64 * 1024;  // bytes read at once: a corrupt length must not allocate gigabytes

void WriteNumber(shr::ISerialize& archive, uint32_t value) {
  unsigned char bytes[4];
  for (unsigned char& byte : bytes) {
    byte = static_cast<unsigned char>(value & 0xFFu);
    value >>= 8;
  }
  archive.Write(bytes, sizeof bytes);
}

uint32_t ReadNumber(shr::ISerialize& archive) {
  unsigned char bytes[4] = {};
  archive.Read(bytes, sizeof bytes);
  uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | bytes[i];
  return value;
}

}  // namespace

void StoreRecord(const CSDef& system, shr::ISerialize& archive) {
  std::string text;
  system.EncodeToText(text);
  WriteNumber(archive, kVersion);
  WriteNumber(archive, static_cast<uint32_t>(text.size()));
  archive.Write(text.data(), text.size());
}

bool LoadRecord(CSDef& system, shr::ISerialize& archive, const ErrorSite& site, const char* bad) {
  const uint32_t version = ReadNumber(archive);
  size_t left = ReadNumber(archive);
  if (version != kVersion || left == 0) return ORV_FAIL_AT(site, ErrSerialized, "%s", bad);

  std::string text;
  while (left > 0) {
    const size_t begin = text.size();
    const size_t size = std::min(left, kPiece);
    text.resize(begin + size);
    archive.Read(text.data() + begin, size);
    left -= size;
  }
  size_t at = 0;
  system.DecodeFromText(text, &at);
  return true;
}

}  // namespace orv::internal
