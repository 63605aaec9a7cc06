// Platform.h: everything that differs between operating systems, behind one face.
//
// Platform_posix.cpp and Platform_win32.cpp implement it; no other unit asks which system it runs on.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace orv::platform {

/// The separator that this library writes between folder and file name.
extern const char kSeparator;
/// What separates folders in environment variables like PATH.
extern const char kPathListSeparator;

/// Full file name of the module that holds this library, and of the running executable; "" when unknown.
/// Both are taken once, when the library is loaded: the host may change its working directory later.
const std::string& ModulePath();
const std::string& ExecutablePath();

/// Opens a file as stdio does; a directory never opens.
std::FILE* OpenFile(const char* path, const char* mode);
/// Names (not paths) of the regular files of a folder, sorted by name without regard to case; empty when the
/// folder cannot be read.
std::vector<std::string> ListFiles(const std::string& folder);

/// A file that is being replaced.  What is written goes to a new file beside it, which takes its place at the
/// end, so that a full disk or a crash never leaves half a file where a whole one stood.
struct Replacement {
  std::FILE* file = nullptr;
  std::string temporary;  ///< "" when the target itself is written: a device, a pipe, a file without a name
  std::string target;     ///< behind symbolic links
};
/// Opens a replacement with the access rights of the file that stands there.  False, and nothing changed, when
/// that file may not be written or its folder takes no new file.
bool BeginReplacement(const char* path, Replacement& replacement);
/// Brings the bytes to the disk, closes and puts the new file in the old one's place.  False when any of it
/// fails; the old file is then as it was and the new one is gone.
bool FinishReplacement(Replacement& replacement);
/// Closes and deletes the new file; the old one is as it was.
void AbandonReplacement(Replacement& replacement);

/// Milliseconds of a monotonic clock.
uint32_t TickMilliseconds();

/// vsnprintf and strtod in the C locale, whatever the host has set.
int FormatInCLocale(char* out, size_t size, const char* format, std::va_list args);
double ToDoubleInCLocale(const char* text);

// ---- floating-point traps --------------------------------------------------------------------------------

/// Bits of a set of floating-point exceptions, the same on all platforms.
enum FpException : unsigned {
  FpZeroDivide = 1,
  FpOverflow = 2,
  FpUnderflow = 4,
  FpDenormal = 8,  ///< a denormal operand; exists on x86 only
};

/// Which of the four exceptions above the host has unmasked (trapping); 0 is the usual answer.
unsigned UnmaskedFpExceptions();

/// Opaque room for the floating-point environment.
struct FpEnvironment {
  alignas(16) unsigned char bytes[64];
};
/// Saves the environment, clears the status and masks all exceptions.
void HoldFpExceptions(FpEnvironment& saved);
/// Which of the four exceptions have been raised since they were held.
unsigned RaisedFpExceptions();
/// Puts a saved environment back, status included; nothing is raised.
void RestoreFpEnvironment(const FpEnvironment& saved);
/// Clears the status and lets the four exceptions trap.
void ClearAndUnmaskFpExceptions();

}  // namespace orv::platform
