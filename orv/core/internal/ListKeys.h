// ListKeys.h: the keys that lists are searched by, and what every list does with them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "orv/core/internal/Dump.h"
#include "orv/core/internal/ListCore.h"
#include "orv/core/internal/Text.h"

namespace orv::internal {

/// A text of an entry, compared without regard to case; the getter may give null for "".
template <class Info, const char* (Info::*Get)() const>
struct TextKey {
  static const char* Of(const Info& info) { return EmptyIfNull((info.*Get)()); }
  static int Compare(const char* a, const char* b) { return CompareIgnoringCase(a, b); }
  static bool Equal(const char* a, const char* b) {
    return (*a == *b && std::strcmp(a, b) == 0) || Compare(a, b) == 0;  // mostly the cases are the same, too
  }
  static uint64_t Hash(const char* text) { return HashIgnoringCase(text); }
  static uint64_t HashOf(const Info& info) { return Hash(Of(info)); }
  template <class Of>
  static void Sort(std::vector<uint32_t>::iterator first, std::vector<uint32_t>::iterator last, Of of) {
    std::vector<NumberedText> texts;
    texts.reserve(static_cast<size_t>(last - first));
    for (auto at = first; at != last; ++at) texts.push_back({of(*at), *at});
    SortIgnoringCase(texts);
    for (const NumberedText& text : texts) *first++ = text.number;
  }
};

/// A number of an entry.
template <class Info, int (Info::*Get)() const>
struct NumberKey {
  static int Of(const Info& info) { return (info.*Get)(); }
  static int Compare(int a, int b) { return a > b ? 1 : a < b ? -1 : 0; }
  static bool Equal(int a, int b) { return a == b; }
  // Numbers mostly follow each other, their hashes must not.
  static uint64_t Hash(int number) { return static_cast<uint64_t>(number) * 0x9e3779b97f4a7c15u >> 32; }
  static uint64_t HashOf(const Info& info) { return Hash(Of(info)); }
  template <class Of>
  static void Sort(std::vector<uint32_t>::iterator first, std::vector<uint32_t>::iterator last, Of of) {
    std::stable_sort(first, last, [&of](uint32_t a, uint32_t b) { return of(a) < of(b); });
  }
};

/// Unique rules: a text that is not empty, or a number that is not 0, must not be taken by another entry.
template <class Core, class Key>
bool TextTaken(const Core& core, const typename Core::Info& info, int except) {
  const char* const text = Key::Of(info);
  return *text != '\0' && core.template KeyTaken<Key>(text, Key::HashOf(info), except);
}
template <class Core, class Key>
bool NumberTaken(const Core& core, const typename Core::Info& info, int except) {
  return Key::Of(info) != 0 && core.template KeyTaken<Key>(Key::Of(info), except);
}

/// Index of the entry with that text; "none" for a null or empty text.
template <class Key, class Core>
int FindText(const Core& core, const char* text) {
  return text && *text != '\0' ? core.template FindByKey<Key>(text) : Core::kNone;
}
/// The same, and the entry is copied to `out` when that is not null.
template <class Key, class Core, class Out>
int FindText(const Core& core, const char* text, Out* out) {
  const int index = FindText<Key>(core, text);
  if (out && index != Core::kNone) *out = core.At(index);
  return index;
}

/// One line for each slot of an index: slot, position and key.
template <class Key, class Core>
void DumpTextIndex(Dump& dump, const char* title, const Core& core) {
  dump.Line("%s", title);
  int slot = 0;
  for (const uint32_t position : core.template IndexOf<Key>().Slots()) {
    dump.Line("%3d: %5d (%s)", slot++, static_cast<int>(position), Key::Of(core.Entries()[position]));
  }
}
template <class Key, class Core>
void DumpNumberIndex(Dump& dump, const char* title, const Core& core) {
  dump.Line("%s", title);
  int slot = 0;
  for (const uint32_t position : core.template IndexOf<Key>().Slots()) {
    dump.Line("%3d: %5d (POSC=%d)", slot++, static_cast<int>(position), Key::Of(core.Entries()[position]));
  }
}

}  // namespace orv::internal
