// TempFolder.h: a folder of a test's own, gone with the object.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>

namespace orv::test {

/// The bytes of a file; throws when it does not open.
inline std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Writes a file, and the folders that it stands in; gives its path.
inline std::string WriteBytes(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream file(path, std::ios::binary);
  if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error("cannot write " + path);
  }
  return path;
}

/// A new, empty folder under the system's folder for temporary files.
class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    do {
      m_Path = std::filesystem::temp_directory_path() / ("orv-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_Path));
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  /// Without a separator at the end.
  std::string Path() const { return m_Path.string(); }
  std::string Path(const std::string& name) const { return (m_Path / name).string(); }
  /// Writes a file in the folder and gives its path.
  std::string Write(const std::string& name, const std::string& bytes) const {
    return WriteBytes(Path(name), bytes);
  }
  std::string Read(const std::string& name) const { return ReadBytes(Path(name)); }

 private:
  std::filesystem::path m_Path;
};

}  // namespace orv::test
