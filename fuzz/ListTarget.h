// ListTarget.h: a configuration file as a list.  What loads and is saved must load alike.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "orv/shared/Exception.h"

namespace orv::fuzz {

/// Whether a text survives in a configuration file: a quoted text ends at a quote and at a line end, and knows
/// no escapes (deliberate).
inline bool Saveable(const char* text) { return !text || !std::strpbrk(text, "\"\n\r"); }

/// Whether two texts are equal; null counts as empty.
inline bool Same(const char* a, const char* b) { return std::strcmp(a ? a : "", b ? b : "") == 0; }

/// Loads the bytes as a list; when that succeeds and `saveable` holds for each entry, saves and loads twice.
///
/// @param saveable  saveable(list, index): whether the format can keep the entry.
/// @param require   require(first, second, third, index, saved) for each entry: what must have stayed.  The
///                  second list has been saved and loaded once, and the third twice.
template <class List, class IsSaveable, class RequireSame>
void LoadSaveLoad(const uint8_t* data, size_t size, IsSaveable saveable, RequireSame require) {
  static MemoryFile input, saved, savedAgain;
  input.Write(data, size);
  List list;
  bool loaded = false;
  try {
    loaded = list.Load(input.Path(), true);
  } catch (const shr::Exception& e) {
    Require(e.Code() == 1028 || e.Code() == 1029 || e.Code() == 1032, "a listed failure", e.Message());
  }
  // A byte 0 ends a text for all who ask for it, but not for the writer.
  if (!loaded || std::find(data, data + size, uint8_t{0}) != data + size) return;
  for (int i = list.First(); i <= list.Last(); ++i) {
    if (!Saveable(list.EnumToken(i)) || !Saveable(list.EnumName(i)) || !saveable(list, i)) return;
  }

  List second, third;
  Require(list.Save(saved.Path()), "the list is saved");
  Require(second.Load(saved.Path(), true), "what was saved loads", saved.Content());
  Require(second.Save(savedAgain.Path()), "the second list is saved");
  Require(third.Load(savedAgain.Path(), true), "what was saved again loads", savedAgain.Content());
  Require(list.Count() == second.Count() && list.Count() == third.Count(), "no entry is lost",
          saved.Content());
  for (int i = list.First(); i <= list.Last(); ++i) {
    Require(Same(list.EnumToken(i), third.EnumToken(i)), "tokens stay", saved.Content());
    Require(Same(list.EnumName(i), third.EnumName(i)), "names stay", saved.Content());
    require(list, second, third, i, saved.Content());
  }
}

}  // namespace orv::fuzz
