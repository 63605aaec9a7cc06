// Text.h: names compared without regard to case, and texts formatted as in the C locale.
#pragma once

#include <bit>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace orv::internal {

/// Folds A to Z; every other byte stays as it is, whatever the locale.
constexpr unsigned char FoldCase(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte - 'A' + 'a') : byte;
}

/// -1, 0 or 1: the order of two texts without regard to case, byte by byte as unsigned after folding to lower
/// case (so "_" sorts before letters).  A null text counts as empty.
int CompareIgnoringCase(const char* a, const char* b);

/// The first eight characters of a text as one number that orders as they do: the first character counts most, and
/// characters that a shorter text lacks are 0.
constexpr uint64_t FirstEight(std::string_view text) {
  const size_t size = text.size();
  const auto at = [text](size_t i) { return uint64_t{static_cast<unsigned char>(text[i])} << (56 - 8 * i); };
  const auto fourFrom = [text](size_t i) {  // one load
    const auto byte = [text, i](size_t k) {
      return uint64_t{static_cast<unsigned char>(text[i + k])} << (56 - 8 * k);
    };
    return byte(0) | byte(1) | byte(2) | byte(3);
  };
  if (size >= 8) return at(0) | at(1) | at(2) | at(3) | at(4) | at(5) | at(6) | at(7);  // one load
  if (size >= 4) return fourFrom(0) | fourFrom(size - 4) >> (8 * (size - 4));           // which overlap
  return size == 0 ? 0 : at(0) | at(size / 2) | at(size - 1);
}

/// The same of eight characters that are there, always by one load.
inline uint64_t EightAt(const char* text) {
  uint64_t eight;
  std::memcpy(&eight, text, sizeof eight);
  if constexpr (std::endian::native == std::endian::big) return eight;
  eight = (eight & 0x00ff00ff00ff00ffu) << 8 | (eight >> 8 & 0x00ff00ff00ff00ffu);  // one swap
  eight = (eight & 0x0000ffff0000ffffu) << 16 | (eight >> 16 & 0x0000ffff0000ffffu);
  return eight << 32 | eight >> 32;
}

/// Bit 7 of those of eight characters that lie within two others, which are below 128.
constexpr uint64_t Within(uint64_t eight, char first, char last) {
  constexpr uint64_t kEach = 0x0101010101010101u;
  const uint64_t low = eight & kEach * 0x7f;  // so that sums carry into no other character
  const uint64_t fromFirst = low + kEach * static_cast<unsigned char>(0x80 - first);
  const uint64_t behindLast = low + kEach * static_cast<unsigned char>(0x7f - last);
  return (fromFirst ^ behindLast) & ~eight & kEach * 0x80;
}

/// Eight such characters folded.
constexpr uint64_t Folded(uint64_t eight) { return eight | Within(eight, 'A', 'Z') >> 2; }

/// The first eight characters of the folded text.
constexpr uint64_t EightFolded(std::string_view text) { return Folded(FirstEight(text)); }

/// A number that texts share which are equal without regard to case.
inline uint64_t HashIgnoringCase(std::string_view text) {
  uint64_t hash = text.size();
  const auto take = [&hash](uint64_t eight) {
    hash = (hash ^ (eight | 0x2020202020202020u)) * 0x9e3779b97f4a7c15u;  // the bit that tells 'A' from 'a'
    hash ^= hash >> 32;
  };
  if (text.size() < 8) {
    take(FirstEight(text));
    return hash;
  }
  const char* const last = text.data() + text.size() - 8;
  for (const char* at = text.data(); at < last; at += 8) take(EightAt(at));
  take(EightAt(last));  // which may overlap
  return hash;
}

/// A text and a number that goes with it.
struct NumberedText {
  const char* text;
  uint32_t number;
};
/// Sorts by CompareIgnoringCase, equal texts by their numbers.
void SortIgnoringCase(std::vector<NumberedText>& texts);

inline bool EqualIgnoringCase(const char* a, const char* b) {
  if (a && b && FoldCase(*a) != FoldCase(*b)) return false;  // most texts are told apart here
  return CompareIgnoringCase(a, b) == 0;
}
inline bool EqualIgnoringCase(const std::string& a, const char* b) { return EqualIgnoringCase(a.c_str(), b); }
/// Whole texts, which may hold bytes 0.
constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  if (a == b) return true;
  for (size_t at = 0; at < a.size(); at += 8) {
    if (EightFolded(a.substr(at)) != EightFolded(b.substr(at))) return false;
  }
  return true;
}

/// Null for an empty text, else its characters: the getters' way of saying "none".
inline const char* NullIfEmpty(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }
/// "" for a null pointer.
inline const char* EmptyIfNull(const char* text) { return text ? text : ""; }

/// Of a name in groups, "UTM|WGS 84|WGS 84 / UTM zone 33N": what stands behind its last bar and the bars and blanks
/// that follow it; the whole name when it has no bar.  Points into the name.
const char* ShortNameOf(const char* name);

/// A text of the user's for a message: at most 40 bytes of it, control characters as "?".  Header only, so that the command
/// line shares it.
inline std::string Excerpt(std::string_view text) {
  std::string excerpt(text.substr(0, 40));
  for (char& c : excerpt) {
    if (static_cast<unsigned char>(c) < 32 || c == 127) c = '?';
  }
  if (text.size() > 40) excerpt += "...";
  return excerpt;
}

/// printf into a string, in the C locale whatever the host has set; any length.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
std::string
Format(const char* format, ...);
std::string FormatV(const char* format, std::va_list args);

}  // namespace orv::internal
