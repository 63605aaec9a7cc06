// Fail.h: how the library records a failure.
//
// Each .cpp names its unit once with ORV_UNIT and raises with ORV_FAIL.  Code that serves several classes
// takes the caller's site, so that a report carries the unit that owns the class.
#pragma once

#include "orv/core/Error.h"

namespace orv {

/// Where a failure is reported from.
struct ErrorSite {
  const char* unit;  ///< the source file's name without extension
  int line;
};

/// Stores unit and line of the report that follows.
void RecordSite(const ErrorSite& site);

/// Records code and formatted text and throws shr::Exception with the recorded site.
///
/// The text is formatted whole before it is stored, so an argument may be the present error text itself.
/// Numbers are formatted as in the C locale.  With throwing off (nothing in the library turns it off) the
/// text keeps its old value and only code, unit and line are current; the result is then false.
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
bool ORVSetError(int code, const char* format, ...);

/// Empties unit and text and zeroes line and code.  No success calls it.
void ORVResetError();

}  // namespace orv

#define ORV_UNIT(name)                                 \
  namespace {                                          \
  [[maybe_unused]] constexpr const char* kUnit = name; \
  }
#define ORV_SITE \
  ::orv::ErrorSite { kUnit, __LINE__ }
#define ORV_FAIL(code, ...) ORV_FAIL_AT(ORV_SITE, code, __VA_ARGS__)
#define ORV_FAIL_AT(site, code, ...) (::orv::RecordSite(site), ::orv::ORVSetError((code), __VA_ARGS__))

// Two spellings of one complaint: callers and tests tell them apart, so both are kept letter for letter.
#define ORV_BAD_PARAMETER "Bad parameter to function call"
#define ORV_BAD_PARAMETER_STOP "Bad parameter to function call."
