// Runs a fuzz target over files and the files of folders: each input as it is, cut off at each of its first
// 2000 bytes, and with single bytes changed by a fixed sequence.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t kCuts = 2000;
constexpr int kChanges = 500;

void Run(const std::string& input) {
  // A copy of the very size, so that a sanitizer sees a read behind its end.
  const std::vector<uint8_t> bytes(input.begin(), input.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

void Replay(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  const std::string input = content.str();
  Run(input);
  for (size_t size = 0; size < std::min(input.size(), kCuts); ++size) Run(input.substr(0, size));
  if (input.empty()) return;
  std::mt19937 random(20260104);
  for (int i = 0; i < kChanges; ++i) {
    std::string changed = input;
    // Bytes of the input itself are more telling than any others.
    changed[random() % input.size()] =
        i % 2 == 0 ? input[random() % input.size()] : static_cast<char>(random());
    Run(changed);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int files = 0;
  for (int i = 1; i < argc; ++i) {
    std::vector<fs::path> paths;
    if (fs::is_directory(argv[i])) {
      for (const auto& entry : fs::directory_iterator(argv[i])) paths.push_back(entry.path());
    } else {
      paths.emplace_back(argv[i]);
    }
    std::sort(paths.begin(), paths.end());
    for (const fs::path& path : paths) {
      Replay(path);
      ++files;
    }
  }
  std::printf("replayed %d inputs\n", files);
  return files > 0 ? 0 : 1;  // an empty corpus is a mistake
}
