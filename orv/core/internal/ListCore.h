// ListCore.h: the one list behind the lists of units, meridians, ellipsoids, datums and systems.
//
// What varies stands in a list's traits:
//
//     struct EllipsoidTraits {
//       using Info = EllipsoidDef;                   // what an entry is
//       static constexpr int kFirst = 2, kNone = 0;  // index of the first entry; what "not found" is
//       static constexpr const char* kBadIndex = "Bad parameter to function call.";
//       using Keys = std::tuple<NameKey, TokenKey>;  // one sorted index each; may be empty
//       static const UniqueRule<ListCore<EllipsoidTraits>> kUnique[3];  // the first broken rule wins
//     };
//
// A key is a struct with `static K Of(const Info&)` and `static int Compare(K, K)` (negative, 0 or positive).
// The header of each list says which finds use an index and which scan.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

#include "orv/core/internal/Fail.h"

namespace orv::internal {

/// One sorted index: positions of entries, kept sorted by a key.  Equal keys stand in the order in which they
/// came.
class KeyIndex {
 public:
  const std::vector<uint32_t>& Slots() const { return m_Slots; }
  size_t Size() const { return m_Slots.size(); }
  void Clear() { m_Slots.clear(); }

  /// Inserts a position behind its equals.  less(a, b) orders positions by their keys.
  template <class Less>
  void Insert(uint32_t position, Less less) {
    size_t low = 0;
    size_t high = m_Slots.size();
    while (low < high) {
      const size_t middle = low + (high - low) / 2;
      if (less(position, m_Slots[middle])) {
        high = middle;
      } else {
        low = middle + 1;
      }
    }
    m_Slots.insert(m_Slots.begin() + static_cast<std::ptrdiff_t>(low), position);
  }
  /// Takes a position out; the others stay.
  void Erase(uint32_t position) {
    for (size_t slot = 0; slot < m_Slots.size(); ++slot) {
      if (m_Slots[slot] == position) {
        m_Slots.erase(m_Slots.begin() + static_cast<std::ptrdiff_t>(slot));
        return;
      }
    }
  }
  /// Positions above `position` move down by one.
  void CloseGap(uint32_t position) {
    for (uint32_t& slot : m_Slots) {
      if (slot > position) --slot;
    }
  }

 private:
  std::vector<uint32_t> m_Slots;
};

/// A rule that entries of a library-wide list keep: `broken` tells whether `info` breaks it against the
/// entries other than the one at index `except`.
template <class Core>
struct UniqueRule {
  bool (*broken)(const Core& core, const typename Core::Info& info, int except);
  const char* message;
};

template <class Traits>
class ListCore {
 public:
  using Info = typename Traits::Info;
  using Keys = typename Traits::Keys;
  static constexpr int kFirst = Traits::kFirst;
  static constexpr int kNone = Traits::kNone;

  int Count() const { return static_cast<int>(m_Entries.size()); }
  int First() const { return kFirst; }
  int Last() const { return kFirst + Count() - 1; }
  bool Holds(int index) const { return index >= kFirst && index <= Last(); }
  const std::vector<Info>& Entries() const { return m_Entries; }
  /// The entry at an index that the list holds.
  const Info& At(int index) const { return m_Entries[static_cast<size_t>(index - kFirst)]; }

  /// The entry at an index, or null after a report (1032, the traits' text).
  const Info* Get(int index, const ErrorSite& site) const {
    if (Holds(index)) return &At(index);
    ORV_FAIL_AT(site, ErrBadParameter, "%s", Traits::kBadIndex);
    return nullptr;
  }

  /// Index of the first entry, from index `start` on, of which matches(entry) is true; kNone when there is
  /// none.
  template <class Matches>
  int Find(Matches matches, int start = kFirst) const {
    for (int index = start < kFirst ? kFirst : start; index <= Last(); ++index) {
      if (matches(At(index))) return index;
    }
    return kNone;
  }

  /// Index of an entry with that key, or kNone.  A binary search of the key's index when it is complete,
  /// which may meet any of several equal entries; else a scan from the front.
  template <class Key, class K>
  int FindByKey(const K& key) const {
    const std::vector<uint32_t>& slots = IndexOf<Key>().Slots();
    if (slots.size() != m_Entries.size()) {
      return Find([&key](const Info& info) { return Key::Compare(key, Key::Of(info)) == 0; });
    }
    size_t low = 0;
    size_t high = slots.size();
    while (low < high) {
      const size_t middle = low + (high - 1 - low) / 2;
      const int order = Key::Compare(key, Key::Of(m_Entries[slots[middle]]));
      if (order == 0) return static_cast<int>(slots[middle]) + kFirst;
      if (order > 0) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    return kNone;
  }

  /// Whether an entry other than the one at `except` has that key.
  template <class Key, class K>
  bool KeyTaken(const K& key, int except) const {
    const int found = FindByKey<Key>(key);
    if (found == kNone || found != except) return found != kNone;
    return Find([&](const Info& info) {
             return &info != &At(except) && Key::Compare(key, Key::Of(info)) == 0;
           }) != kNone;
  }

  /// The message of the first rule that an entry would break, or null.  `except` is the index of the entry
  /// that it is to replace, or kNone.
  const char* Clash(const Info& info, int except = kNone) const {
    for (const auto& rule : Traits::kUnique) {
      if (rule.broken(*this, info, except)) return rule.message;
    }
    return nullptr;
  }

  /// Appends an entry and gives its index.
  int Append(Info info) {
    m_Entries.push_back(std::move(info));
    InsertIntoIndexes(static_cast<uint32_t>(m_Entries.size() - 1));
    return Last();
  }
  /// Overwrites the entry at an index that the list holds.
  void Replace(int index, Info info) {
    const auto position = static_cast<uint32_t>(index - kFirst);
    for (KeyIndex& keys : m_Indexes) keys.Erase(position);
    m_Entries[position] = std::move(info);
    InsertIntoIndexes(position);
  }
  /// Takes out the entry at an index that the list holds; later ones move down by one.
  void Remove(int index) {
    const auto position = static_cast<uint32_t>(index - kFirst);
    for (KeyIndex& keys : m_Indexes) {
      keys.Erase(position);
      keys.CloseGap(position);
    }
    m_Entries.erase(m_Entries.begin() + static_cast<std::ptrdiff_t>(position));
  }
  void Clear() {
    m_Entries.clear();
    for (KeyIndex& keys : m_Indexes) keys.Clear();
  }

  /// The index of a key, for dumps.
  template <class Key>
  const KeyIndex& IndexOf() const {
    return m_Indexes[NumberOf<Key>(std::make_index_sequence<std::tuple_size_v<Keys>>())];
  }

 private:
  template <class Key, size_t... I>
  static constexpr size_t NumberOf(std::index_sequence<I...>) {
    static_assert((std::is_same_v<Key, std::tuple_element_t<I, Keys>> || ...), "the list has no such key");
    size_t number = 0;
    ((std::is_same_v<Key, std::tuple_element_t<I, Keys>> ? void(number = I) : void()), ...);
    return number;
  }

  void InsertIntoIndexes(uint32_t position) {
    InsertIntoIndexes(position, std::make_index_sequence<std::tuple_size_v<Keys>>());
  }
  template <size_t... I>
  void InsertIntoIndexes([[maybe_unused]] uint32_t position, std::index_sequence<I...>) {
    (InsertInto<std::tuple_element_t<I, Keys>>(m_Indexes[I], position), ...);
  }
  template <class Key>
  void InsertInto(KeyIndex& keys, uint32_t position) {
    keys.Insert(position, [this](uint32_t a, uint32_t b) {
      return Key::Compare(Key::Of(m_Entries[a]), Key::Of(m_Entries[b])) < 0;
    });
  }

  std::vector<Info> m_Entries;
  std::array<KeyIndex, std::tuple_size_v<Keys>> m_Indexes;
};

}  // namespace orv::internal
