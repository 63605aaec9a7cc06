#include "orv/core/internal/Text.h"

#include <cstdint>

#include "orv/core/Platform.h"

namespace orv::internal {

int CompareIgnoringCase(const char* a, const char* b) {
  a = EmptyIfNull(a);
  b = EmptyIfNull(b);
  while (*a != '\0' && FoldCase(*a) == FoldCase(*b)) {
    ++a;
    ++b;
  }
  const unsigned char left = FoldCase(*a);
  const unsigned char right = FoldCase(*b);
  return left < right ? -1 : left > right ? 1 : 0;
}

size_t HashIgnoringCase(const char* text) {
  uint64_t hash = 14695981039346656037u;  // FNV-1a, 64 bits
  for (text = EmptyIfNull(text); *text != '\0'; ++text) hash = (hash ^ FoldCase(*text)) * 1099511628211u;
  return static_cast<size_t>(hash);
}

std::string FormatV(const char* format, std::va_list args) {
  std::va_list again;
  va_copy(again, args);
  char room[512];
  const int length = platform::FormatInCLocale(room, sizeof room, format, args);
  std::string text;
  if (length >= 0 && static_cast<size_t>(length) < sizeof room) {
    text.assign(room, static_cast<size_t>(length));
  } else if (length >= 0) {
    text.resize(static_cast<size_t>(length) + 1);
    platform::FormatInCLocale(text.data(), text.size(), format, again);
    text.pop_back();
  }
  va_end(again);
  return text;
}

std::string Format(const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  std::string text = FormatV(format, args);
  va_end(args);
  return text;
}

}  // namespace orv::internal
