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
// A key is a struct with `static K Of(const Info&)`, `static int Compare(K, K)` (negative, 0 or positive) and
// `static size_t Hash(K)` (the same for equal keys).
// The header of each list says which finds use an index and which scan.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <unordered_map>
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
  void Clear() {
    m_Slots.clear();
    m_Pending.clear();
  }

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
  /// Notes a position that Settle is to sort in, under the hash of its key.
  void Postpone(uint32_t position, size_t hash) { m_Pending.emplace(hash, position); }
  /// Calls matches(position) for the postponed positions of that hash, until it gives true.
  template <class Matches>
  bool FindPostponed(size_t hash, Matches matches) const {
    const auto range = m_Pending.equal_range(hash);
    return std::any_of(range.first, range.second, [&](const auto& entry) { return matches(entry.second); });
  }
  /// Sorts in, behind their equals, the positions from the present size up to `count`, all of them postponed.
  template <class Less>
  void Settle(size_t count, Less less) {
    const auto old = static_cast<std::ptrdiff_t>(m_Slots.size());
    m_Slots.reserve(count);
    while (m_Slots.size() < count) m_Slots.push_back(static_cast<uint32_t>(m_Slots.size()));
    std::stable_sort(m_Slots.begin() + old, m_Slots.end(), less);
    std::inplace_merge(m_Slots.begin(), m_Slots.begin() + old, m_Slots.end(), less);
    m_Pending.clear();
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
  std::unordered_multimap<size_t, uint32_t> m_Pending;  // positions not yet among the slots, by hash of key
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

  /// While it lives, Append only notes what it adds; its end sorts the indexes once.  Finds are right
  /// meanwhile.
  class Batch {
   public:
    explicit Batch(ListCore& core) : m_Core(core) { m_Core.m_bBatch = true; }
    ~Batch() {
      m_Core.Settle();
      m_Core.m_bBatch = false;
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

   private:
    ListCore& m_Core;
  };

  /// Index of an entry with that key, or kNone; of several equal ones it may meet any.  A binary search of
  /// the key's index and, during a batch, a look at the hashes of what it added.
  template <class Key, class K>
  int FindByKey(const K& key) const {
    const KeyIndex& index = IndexOf<Key>();
    const std::vector<uint32_t>& slots = index.Slots();
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
    int found = kNone;
    if (slots.size() != m_Entries.size()) {
      index.FindPostponed(Key::Hash(key), [&](uint32_t position) {
        if (Key::Compare(key, Key::Of(m_Entries[position])) != 0) return false;
        found = static_cast<int>(position) + kFirst;
        return true;
      });
    }
    return found;
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
    IntoIndexes(static_cast<uint32_t>(m_Entries.size() - 1));
    return Last();
  }
  /// Overwrites the entry at an index that the list holds.
  void Replace(int index, Info info) {
    Settle();
    const auto position = static_cast<uint32_t>(index - kFirst);
    for (KeyIndex& keys : m_Indexes) keys.Erase(position);
    m_Entries[position] = std::move(info);
    InsertIntoIndexes(position, kAllKeys);
  }
  /// Takes out the entry at an index that the list holds; later ones move down by one.
  void Remove(int index) {
    Settle();
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
    return m_Indexes[NumberOf<Key>(kAllKeys)];
  }

 private:
  static constexpr auto kAllKeys = std::make_index_sequence<std::tuple_size_v<Keys>>();

  template <class Key, size_t... I>
  static constexpr size_t NumberOf(std::index_sequence<I...>) {
    static_assert((std::is_same_v<Key, std::tuple_element_t<I, Keys>> || ...), "the list has no such key");
    size_t number = 0;
    ((std::is_same_v<Key, std::tuple_element_t<I, Keys>> ? void(number = I) : void()), ...);
    return number;
  }

  void IntoIndexes(uint32_t position) {
    if (m_bBatch) {
      Postpone(position, kAllKeys);
    } else {
      InsertIntoIndexes(position, kAllKeys);
    }
  }
  template <size_t... I>
  void Postpone([[maybe_unused]] uint32_t position, std::index_sequence<I...>) {
    (m_Indexes[I].Postpone(position, std::tuple_element_t<I, Keys>::Hash(
                                         std::tuple_element_t<I, Keys>::Of(m_Entries[position]))),
     ...);
  }
  /// Brings the indexes up to date.
  void Settle() {
    if (m_bBatch) Settle(kAllKeys);
  }
  template <size_t... I>
  void Settle(std::index_sequence<I...>) {
    (m_Indexes[I].Settle(m_Entries.size(), LessBy<std::tuple_element_t<I, Keys>>()), ...);
  }
  template <size_t... I>
  void InsertIntoIndexes([[maybe_unused]] uint32_t position, std::index_sequence<I...>) {
    (InsertInto<std::tuple_element_t<I, Keys>>(m_Indexes[I], position), ...);
  }
  template <class Key>
  void InsertInto(KeyIndex& keys, uint32_t position) {
    keys.Insert(position, LessBy<Key>());
  }
  /// The order of positions by a key.
  template <class Key>
  auto LessBy() const {
    return [this](uint32_t a, uint32_t b) {
      return Key::Compare(Key::Of(m_Entries[a]), Key::Of(m_Entries[b])) < 0;
    };
  }

  std::vector<Info> m_Entries;
  std::array<KeyIndex, std::tuple_size_v<Keys>> m_Indexes;
  bool m_bBatch = false;
};

}  // namespace orv::internal
