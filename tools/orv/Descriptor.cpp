#include "tools/orv/Descriptor.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/orv/Command.h"

namespace orv::tool {

InputFile::InputFile(const std::string& name) : m_Name(name) {
  if (name != "-") {
    m_Descriptor = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_Descriptor < 0) throw UsageError(fmt::format("cannot open '{}': {}", name, std::strerror(errno)));
  }
  struct stat state {};
  if (fstat(m_Descriptor, &state) != 0) return;
  if (S_ISDIR(state.st_mode)) throw UsageError(fmt::format("'{}' is a folder; give a file of points", name));
  m_bRegular = S_ISREG(state.st_mode);
  if (!m_bRegular) return;
  const off_t at = lseek(m_Descriptor, 0, SEEK_CUR);
  if (at >= 0 && state.st_size > at) m_Size = static_cast<uint64_t>(state.st_size - at);
}

InputFile::~InputFile() {
  if (m_Name != "-") close(m_Descriptor);
}

size_t InputFile::Read(char* to, size_t size) {
  for (;;) {
    const ssize_t got = read(m_Descriptor, to, size);
    if (got >= 0) return static_cast<size_t>(got);
    if (errno != EINTR) throw UsageError(fmt::format("cannot read the points: {}", std::strerror(errno)));
  }
}

bool InputFile::IsReady() const {
  if (m_bRegular) return true;
  pollfd waiting{m_Descriptor, POLLIN, 0};
  return poll(&waiting, 1, 0) != 0;
}

std::string InputFile::Title() const {
  return m_Name == "-" ? "standard input" : fmt::format("'{}'", m_Name);
}

void WriteDirectly(const char* bytes, size_t size) {
  while (size > 0) {
    const ssize_t written = write(STDOUT_FILENO, bytes, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      throw UsageError(fmt::format("cannot write to standard output: {}", std::strerror(errno)));
    }
    bytes += written;
    size -= static_cast<size_t>(written);
  }
}

bool ErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

int ErrorColumns() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace orv::tool
