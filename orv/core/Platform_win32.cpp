#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <fcntl.h>
#include <float.h>
#include <io.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cstring>

#include "orv/core/Platform.h"
#include "orv/core/internal/Text.h"

namespace orv::platform {

const char kSeparator = '\\';
const char kPathListSeparator = ';';

namespace {

std::string FileNameOf(HMODULE module) {
  std::string name(MAX_PATH, '\0');
  for (;;) {
    const DWORD length = ::GetModuleFileNameA(module, name.data(), static_cast<DWORD>(name.size()));
    if (length == 0) return "";
    if (length < name.size()) return name.substr(0, length);
    name.resize(name.size() * 2);
  }
}

struct LoadedPaths {
  std::string module;
  std::string executable;

  LoadedPaths() {
    HMODULE self = nullptr;
    if (::GetModuleHandleExA(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            &kSeparator, &self)) {
      module = FileNameOf(self);
    }
    executable = FileNameOf(nullptr);
    if (module.empty()) module = executable;
  }
};

const LoadedPaths& Paths() {
  static const LoadedPaths paths;
  return paths;
}

// Taken at load, before the host can change its working directory.
[[maybe_unused]] const LoadedPaths& kTakenAtLoad = Paths();

_locale_t CLocale() {
  static const _locale_t locale = ::_create_locale(LC_ALL, "C");
  return locale;
}

}  // namespace

const std::string& ModulePath() { return Paths().module; }
const std::string& ExecutablePath() { return Paths().executable; }

std::FILE* OpenFile(const char* path, const char* mode) {
  if (!path || *path == '\0') return nullptr;
  return std::fopen(path, mode);
}

bool BeginReplacement(const char* path, Replacement& replacement) {
  replacement = Replacement();
  if (!path || *path == '\0') return false;
  const DWORD attributes = ::GetFileAttributesA(path);
  constexpr DWORD kRefused = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kRefused) != 0) return false;
  replacement.target = path;
  const size_t separator = replacement.target.find_last_of("/\\");
  const std::string folder =
      separator == std::string::npos ? std::string() : replacement.target.substr(0, separator + 1);
  HANDLE handle = INVALID_HANDLE_VALUE;
  for (int number = 0; handle == INVALID_HANDLE_VALUE && number < 1000; ++number) {
    replacement.temporary =
        folder + ".orv-save-" + std::to_string(::GetCurrentProcessId()) + '-' + std::to_string(number);
    handle = ::CreateFileA(replacement.temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE && ::GetLastError() != ERROR_FILE_EXISTS) return false;
  }
  if (handle == INVALID_HANDLE_VALUE) return false;
  const int descriptor = ::_open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_BINARY);
  replacement.file = descriptor < 0 ? nullptr : ::_fdopen(descriptor, "wb");
  if (replacement.file) return true;
  if (descriptor < 0) {
    ::CloseHandle(handle);
  } else {
    ::_close(descriptor);
  }
  ::DeleteFileA(replacement.temporary.c_str());
  return false;
}

bool FinishReplacement(Replacement& replacement) {
  bool done = std::fflush(replacement.file) == 0 && ::_commit(::_fileno(replacement.file)) == 0;
  done = std::fclose(replacement.file) == 0 && done;
  replacement.file = nullptr;
  done = done && ::MoveFileExA(replacement.temporary.c_str(), replacement.target.c_str(),
                               MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  if (!done) ::DeleteFileA(replacement.temporary.c_str());
  return done;
}

void AbandonReplacement(Replacement& replacement) {
  std::fclose(replacement.file);
  replacement.file = nullptr;
  ::DeleteFileA(replacement.temporary.c_str());
}

std::vector<std::string> ListFiles(const std::string& folder) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA found;
  const HANDLE search = ::FindFirstFileA((folder + "\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.emplace_back(found.cFileName);
  } while (::FindNextFileA(search, &found));
  ::FindClose(search);
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return internal::CompareIgnoringCase(a.c_str(), b.c_str()) < 0;  // in no locale
  });
  return names;
}

uint32_t TickMilliseconds() { return static_cast<uint32_t>(::GetTickCount64()); }

int FormatInCLocale(char* out, size_t size, const char* format, std::va_list args) {
  // The length is asked for first: the run-time library gives -1, not the length, when the text is cut.
  std::va_list again;
  va_copy(again, args);
  const int length = ::_vscprintf_l(format, CLocale(), again);
  va_end(again);
  if (size > 0) {
    ::_vsnprintf_l(out, size, format, CLocale(), args);
    out[size - 1] = '\0';
  }
  return length;
}

double ToDoubleInCLocale(const char* text) { return ::_strtod_l(text, nullptr, CLocale()); }

// ---- floating-point traps --------------------------------------------------------------------------------
namespace {
constexpr unsigned kFour = _EM_ZERODIVIDE | _EM_OVERFLOW | _EM_UNDERFLOW | _EM_DENORMAL;

unsigned FourOf(unsigned zeroDivide, unsigned overflow, unsigned underflow, unsigned denormal) {
  unsigned set = 0;
  if (zeroDivide) set |= FpZeroDivide;
  if (overflow) set |= FpOverflow;
  if (underflow) set |= FpUnderflow;
  if (denormal) set |= FpDenormal;
  return set;
}
}  // namespace

unsigned UnmaskedFpExceptions() {
  const unsigned unmasked = ~::_controlfp(0, 0);
  return FourOf(unmasked & _EM_ZERODIVIDE, unmasked & _EM_OVERFLOW, unmasked & _EM_UNDERFLOW,
                unmasked & _EM_DENORMAL);
}

void HoldFpExceptions(FpEnvironment& saved) {
  const unsigned word = ::_controlfp(0, 0);
  std::memcpy(saved.bytes, &word, sizeof word);
  ::_clearfp();
  ::_controlfp(_MCW_EM, _MCW_EM);
}

unsigned RaisedFpExceptions() {
  // The status word has the bits of the masks.
  const unsigned status = ::_statusfp();
  return FourOf(status & _EM_ZERODIVIDE, status & _EM_OVERFLOW, status & _EM_UNDERFLOW,
                status & _EM_DENORMAL);
}

void RestoreFpEnvironment(const FpEnvironment& saved) {
  unsigned word;
  std::memcpy(&word, saved.bytes, sizeof word);
  ::_clearfp();
  ::_controlfp(word, _MCW_EM);
}

void ClearAndUnmaskFpExceptions() {
  ::_clearfp();
  ::_controlfp(0, kFour);
}

}  // namespace orv::platform
