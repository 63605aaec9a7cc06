// Text.h: names compared without regard to case, and texts formatted as in the C locale.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>

namespace orv::internal {

/// Folds A to Z; every other byte stays as it is, whatever the locale.
constexpr unsigned char FoldCase(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte - 'A' + 'a') : byte;
}

/// -1, 0 or 1: the order of two texts without regard to case, byte by byte as unsigned after folding to lower
/// case (so "_" sorts before letters).  A null text counts as empty.
int CompareIgnoringCase(const char* a, const char* b);

/// A number that texts share which are equal without regard to case.  A null text counts as empty.
size_t HashIgnoringCase(const char* text);

inline bool EqualIgnoringCase(const char* a, const char* b) { return CompareIgnoringCase(a, b) == 0; }
inline bool EqualIgnoringCase(const std::string& a, const char* b) { return EqualIgnoringCase(a.c_str(), b); }

/// Null for an empty text, else its characters: the getters' way of saying "none".
inline const char* NullIfEmpty(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }
/// "" for a null pointer.
inline const char* EmptyIfNull(const char* text) { return text ? text : ""; }

/// printf into a string, in the C locale whatever the host has set; any length.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
std::string
Format(const char* format, ...);
std::string FormatV(const char* format, std::va_list args);

}  // namespace orv::internal
