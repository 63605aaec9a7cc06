// FuzzTarget.h: what the fuzzers have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// The entry that libFuzzer and the replaying main call.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace orv::fuzz {

/// Ends the process with a message when a property does not hold.
inline void Require(bool holds, const char* property, const std::string& context = "") {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n%s\n", property, context.c_str());
  std::abort();
}

/// A file in memory that has a path.
class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void Write(const void* data, size_t size);
  std::string Content() const;
  const char* Path() const { return m_Path.c_str(); }

 private:
  int m_File;
  std::string m_Path;
};

}  // namespace orv::fuzz
