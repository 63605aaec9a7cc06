#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <locale.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cfenv>
#include <chrono>
#include <climits>
#include <cstring>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#include "orv/core/Platform.h"
#include "orv/core/internal/Text.h"

namespace orv::platform {

const char kSeparator = '/';
const char kPathListSeparator = ':';

namespace {

std::string Absolute(const char* path) {
  char resolved[PATH_MAX];
  return path && ::realpath(path, resolved) ? resolved : "";
}

struct LoadedPaths {
  std::string module;
  std::string executable;

  LoadedPaths() {
    Dl_info info;
    if (::dladdr(&kSeparator, &info) != 0) module = Absolute(info.dli_fname);
    executable = Absolute("/proc/self/exe");
    if (module.empty()) module = executable;
  }
};

const LoadedPaths& Paths() {
  static const LoadedPaths paths;
  return paths;
}

// Taken at load, before the host can change its working directory.
[[maybe_unused]] const LoadedPaths& kTakenAtLoad = Paths();

locale_t CLocale() {
  static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  return locale;
}

bool IsRegularFile(const char* path) {
  struct stat status;
  return ::stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

const std::string& ModulePath() { return Paths().module; }
const std::string& ExecutablePath() { return Paths().executable; }

std::FILE* OpenFile(const char* path, const char* mode) {
  if (!path || *path == '\0') return nullptr;
  // POSIX lets a directory be opened for reading; here only a file counts.
  if (mode[0] == 'r' && !IsRegularFile(path)) return nullptr;
  return std::fopen(path, mode);
}

bool BeginReplacement(const char* path, Replacement& replacement) {
  replacement = Replacement();
  if (!path || *path == '\0') return false;
  struct stat status;
  const bool exists = ::stat(path, &status) == 0;
  if (exists && (!S_ISREG(status.st_mode) || status.st_nlink == 0)) {  // nothing that could be renamed
    replacement.file = std::fopen(path, "wb");
    return replacement.file != nullptr;
  }
  if (exists && ::access(path, W_OK) != 0) return false;
  replacement.target = exists ? Absolute(path) : path;
  const std::string folder = replacement.target.substr(0, replacement.target.rfind('/') + 1);
  int descriptor = -1;
  for (int number = 0; descriptor < 0 && number < 1000; ++number) {
    replacement.temporary = folder + ".orv-save-" + std::to_string(::getpid()) + '-' + std::to_string(number);
    descriptor =
        ::open(replacement.temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, exists ? 0600 : 0666);
    if (descriptor < 0 && errno != EEXIST) return false;
  }
  if (descriptor < 0) return false;
  if (exists) {
    // Only the owner of everything may give a file away: else the new one is the saver's own, and a group that it does
    // not keep gets no rights.  Nobody gains any.
    const bool whole = ::fchown(descriptor, status.st_uid, status.st_gid) == 0;
    const bool group = whole || ::fchown(descriptor, static_cast<uid_t>(-1), status.st_gid) == 0;
    const mode_t kept = whole ? 07777 : group ? 0777 : 0707;
    [[maybe_unused]] const int changed = ::fchmod(descriptor, status.st_mode & kept);
  }
  replacement.file = ::fdopen(descriptor, "wb");
  if (replacement.file) return true;
  ::close(descriptor);
  ::unlink(replacement.temporary.c_str());
  return false;
}

bool FinishReplacement(Replacement& replacement) {
  const bool renames = !replacement.temporary.empty();
  bool done = std::fflush(replacement.file) == 0 && (!renames || ::fsync(::fileno(replacement.file)) == 0);
  done = std::fclose(replacement.file) == 0 && done;
  replacement.file = nullptr;
  if (!renames) return done;
  done = done && std::rename(replacement.temporary.c_str(), replacement.target.c_str()) == 0;
  if (!done) ::unlink(replacement.temporary.c_str());
  return done;
}

void AbandonReplacement(Replacement& replacement) {
  std::fclose(replacement.file);
  replacement.file = nullptr;
  if (!replacement.temporary.empty()) ::unlink(replacement.temporary.c_str());
}

std::vector<std::string> ListFiles(const std::string& folder) {
  std::vector<std::string> names;
  DIR* const directory = ::opendir(folder.c_str());
  if (!directory) return names;
  while (const dirent* const entry = ::readdir(directory)) {
    if (IsRegularFile((folder + '/' + entry->d_name).c_str())) names.emplace_back(entry->d_name);
  }
  ::closedir(directory);
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const int order = internal::CompareIgnoringCase(a.c_str(), b.c_str());  // in no locale
    return order != 0 ? order < 0 : a < b;
  });
  return names;
}

uint32_t TickMilliseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

int FormatInCLocale(char* out, size_t size, const char* format, std::va_list args) {
  const locale_t hosts = ::uselocale(CLocale());
  const int length = std::vsnprintf(out, size, format, args);
  ::uselocale(hosts);
  return length;
}

double ToDoubleInCLocale(const char* text) { return ::strtod_l(text, nullptr, CLocale()); }

// ---- floating-point traps --------------------------------------------------------------------------------
#if defined(__SSE2__)

namespace {
// MXCSR: status bits 0 to 5 are invalid, denormal, zero-divide, overflow, underflow, inexact; their masks are
// bits 7 to 12 in the same order.
constexpr unsigned kMxcsrStatus = 0x003F;
constexpr unsigned kMxcsrMasks = 0x1F80;
constexpr unsigned kMaskShift = 7;

unsigned FourOf(unsigned mxcsrStatusBits) {
  unsigned set = 0;
  if (mxcsrStatusBits & 0x02) set |= FpDenormal;
  if (mxcsrStatusBits & 0x04) set |= FpZeroDivide;
  if (mxcsrStatusBits & 0x08) set |= FpOverflow;
  if (mxcsrStatusBits & 0x10) set |= FpUnderflow;
  return set;
}
}  // namespace

unsigned UnmaskedFpExceptions() { return FourOf((~_mm_getcsr() & kMxcsrMasks) >> kMaskShift); }

void HoldFpExceptions(FpEnvironment& saved) {
  const unsigned word = _mm_getcsr();
  std::memcpy(saved.bytes, &word, sizeof word);
  _mm_setcsr((word & ~kMxcsrStatus) | kMxcsrMasks);
}

unsigned RaisedFpExceptions() { return FourOf(_mm_getcsr() & kMxcsrStatus); }

void RestoreFpEnvironment(const FpEnvironment& saved) {
  unsigned word;
  std::memcpy(&word, saved.bytes, sizeof word);
  _mm_setcsr(word);
}

void ClearAndUnmaskFpExceptions() {
  constexpr unsigned kFour = 0x1Eu << kMaskShift;
  _mm_setcsr(_mm_getcsr() & ~kMxcsrStatus & ~kFour);
}

#else

namespace {
unsigned FourOf(int set) {
  unsigned four = 0;
  if (set & FE_DIVBYZERO) four |= FpZeroDivide;
  if (set & FE_OVERFLOW) four |= FpOverflow;
  if (set & FE_UNDERFLOW) four |= FpUnderflow;
  return four;
}
}  // namespace

static_assert(sizeof(std::fenv_t) <= sizeof(FpEnvironment), "FpEnvironment is too small for this platform");

#if defined(__GLIBC__)
unsigned UnmaskedFpExceptions() { return FourOf(::fegetexcept()); }
#else
unsigned UnmaskedFpExceptions() { return 0; }
#endif

void HoldFpExceptions(FpEnvironment& saved) {
  std::fenv_t environment;
  std::feholdexcept(&environment);
  std::memcpy(saved.bytes, &environment, sizeof environment);
}

unsigned RaisedFpExceptions() { return FourOf(std::fetestexcept(FE_ALL_EXCEPT)); }

void RestoreFpEnvironment(const FpEnvironment& saved) {
  std::fenv_t environment;
  std::memcpy(&environment, saved.bytes, sizeof environment);
  std::fesetenv(&environment);
}

void ClearAndUnmaskFpExceptions() {
  std::feclearexcept(FE_ALL_EXCEPT);
#if defined(__GLIBC__)
  ::feenableexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW);
#endif
}

#endif

}  // namespace orv::platform
