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
// A key is a struct with `static K Of(const Info&)`, `static int Compare(K, K)` (negative, 0 or positive),
// `static bool Equal(K, K)` (whether Compare gives 0, but quicker), `static uint64_t Hash(K)` (the same for equal keys),
// `static uint64_t HashOf(const Info&)` (the same of an entry's key, in its lower 32 bits) and `static void Sort(first,
// last, of)`, which sorts ascending positions by their keys of(position), those of equal keys staying in order.
// The header of each list says which finds use an index and which scan.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

#include "orv/core/internal/Fail.h"

namespace orv::internal {

/// Positions under the hashes of their keys, of which the lower 32 bits count.
class HashedPositions {
 public:
  void Clear() {
    m_Slots.clear();
    m_Count = 0;
    m_bRepeats = false;
  }
  void Add(uint64_t hash, uint32_t position) {
    if (2 * (m_Count + 1) > m_Slots.size()) Grow();
    const Slot slot = {static_cast<uint32_t>(hash), position};
    size_t at = Home(slot.hash);
    for (; m_Slots[at].position != kFree; at = Next(at)) m_bRepeats |= m_Slots[at].hash == slot.hash;
    m_Slots[at] = slot;
    ++m_Count;
  }
  /// Calls matches(position) for the positions of that hash, until it gives true; whether it has.
  template <class Matches>
  bool Find(uint64_t hash, Matches matches) const {
    if (m_Count == 0) return false;
    const auto wanted = static_cast<uint32_t>(hash);
    for (size_t at = Home(wanted); m_Slots[at].position != kFree; at = Next(at)) {
      if (m_Slots[at].hash == wanted && matches(m_Slots[at].position)) return true;
    }
    return false;
  }
  /// Whether positions may have equal keys: they do when this is true, but for chance.
  bool Repeats() const { return m_bRepeats; }

 private:
  static constexpr uint32_t kFree = 0xffffffff;
  struct Slot {
    uint32_t hash = 0;
    uint32_t position = kFree;
  };

  size_t Home(uint32_t hash) const { return hash & (m_Slots.size() - 1); }
  size_t Next(size_t at) const { return (at + 1) & (m_Slots.size() - 1); }
  void Grow() {
    const std::vector<Slot> old = std::move(m_Slots);
    m_Slots.assign(std::max<size_t>(64, 4 * old.size()), Slot());
    for (const Slot& slot : old) {
      if (slot.position == kFree) continue;
      size_t at = Home(slot.hash);
      while (m_Slots[at].position != kFree) at = Next(at);
      m_Slots[at] = slot;
    }
  }

  std::vector<Slot> m_Slots;  // a power of two of them, at most half of them taken
  size_t m_Count = 0;
  bool m_bRepeats = false;
};

/// One index: positions of entries under the hashes of their keys and, as far as anybody has asked for it, sorted by
/// them.  Equal keys stand in the order in which they came.
class KeyIndex {
 public:
  /// The sorted positions.
  const std::vector<uint32_t>& Slots() const { return m_Slots; }
  void Clear() {
    m_Slots.clear();
    m_Hashes.Clear();
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
  /// Positions are hashed in their order; removals drop the hashes.
  HashedPositions& Hashes() { return m_Hashes; }
  const HashedPositions& Hashes() const { return m_Hashes; }
  /// Sorts in, behind their equals, the positions from the present size up to `count`: sort(first, last) sorts them by
  /// themselves.
  template <class Sort, class Less>
  void Settle(size_t count, Sort sort, Less less) {
    const auto old = static_cast<std::ptrdiff_t>(m_Slots.size());
    m_Slots.reserve(count);
    while (m_Slots.size() < count) m_Slots.push_back(static_cast<uint32_t>(m_Slots.size()));
    sort(m_Slots.begin() + old, m_Slots.end());
    std::inplace_merge(m_Slots.begin(), m_Slots.begin() + old, m_Slots.end(), less);
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
  HashedPositions m_Hashes;
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

  ListCore() = default;
  ListCore(const ListCore& other) { *this = other; }
  ListCore& operator=(const ListCore& other) {
    if (this == &other) return *this;
    other.SortAll(kAllKeys);  // another thread may be about to
    m_Entries = other.m_Entries;
    m_Indexes = other.m_Indexes;
    m_bHashed = other.m_bHashed;
    m_bSorted = true;
    return *this;
  }

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

  /// While it lives, Append does not sort; finds are right meanwhile.  What is left unsorted is sorted when the order
  /// is first asked for: for a dump, for a change of the list, or for one of several entries of equal keys.
  class Batch {
   public:
    explicit Batch(ListCore& core) : m_Core(core) { m_Core.m_bBatch = true; }
    ~Batch() { m_Core.m_bBatch = false; }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

   private:
    ListCore& m_Core;
  };

  /// Index of an entry with that key, or kNone; of several equal ones it may meet any.  A look at the hashes, or a binary
  /// search of the key's index where keys repeat or entries have been taken out.
  template <class Key, class K>
  int FindByKey(const K& key) const {
    return FindByKey<Key>(key, Key::Hash(key));
  }
  /// The same of a key whose hash is known.
  template <class Key, class K>
  int FindByKey(const K& key, uint64_t hash) const {
    if (m_bHashed) {
      const HashedPositions& hashes = m_Indexes[NumberOf<Key>(kAllKeys)].Hashes();
      int found = kNone;
      hashes.Find(hash, [&](uint32_t position) {
        if (!Key::Equal(key, Key::Of(m_Entries[position]))) return false;
        found = static_cast<int>(position) + kFirst;
        return true;
      });
      if (found == kNone || !hashes.Repeats()) return found;
    }
    const std::vector<uint32_t>& slots = IndexOf<Key>().Slots();
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
    return KeyTaken<Key>(key, Key::Hash(key), except);
  }
  template <class Key, class K>
  bool KeyTaken(const K& key, uint64_t hash, int except) const {
    const int found = FindByKey<Key>(key, hash);
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
    DropHashes();
    const auto position = static_cast<uint32_t>(index - kFirst);
    for (KeyIndex& keys : m_Indexes) keys.Erase(position);
    m_Entries[position] = std::move(info);
    InsertIntoIndexes(position, kAllKeys);
  }
  /// Takes out the entry at an index that the list holds; later ones move down by one.
  void Remove(int index) {
    DropHashes();
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
    m_bHashed = m_bSorted = true;
  }

  /// The sorted index of a key.  Threads may ask for it at the same time.
  template <class Key>
  const KeyIndex& IndexOf() const {
    SortAll(kAllKeys);
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
    if (m_bBatch && !m_bHashed) HashUpTo(position);
    if (m_bHashed) Hash(position, kAllKeys);
    if (m_bBatch) {
      m_bSorted = false;
    } else if (m_bSorted) {
      InsertIntoIndexes(position, kAllKeys);
    }
  }
  void HashUpTo(uint32_t end) {
    for (uint32_t position = 0; position < end; ++position) Hash(position, kAllKeys);
    m_bHashed = true;
  }
  template <size_t... I>
  void Hash([[maybe_unused]] uint32_t position, std::index_sequence<I...>) {
    (m_Indexes[I].Hashes().Add(std::tuple_element_t<I, Keys>::HashOf(m_Entries[position]), position), ...);
  }
  /// Positions are about to change: sorted indexes can follow, hashes cannot.
  void DropHashes() {
    SortAll(kAllKeys);
    for (KeyIndex& keys : m_Indexes) keys.Hashes().Clear();
    m_bHashed = false;
  }
  template <size_t... I>
  void SortAll(std::index_sequence<I...>) const {
    if (m_bSorted.load(std::memory_order_acquire)) return;
    const std::lock_guard<std::mutex> guard(m_Sorting);
    if (m_bSorted.load(std::memory_order_relaxed)) return;
    (Sort<std::tuple_element_t<I, Keys>>(m_Indexes[I]), ...);
    m_bSorted.store(true, std::memory_order_release);
  }
  template <class Key>
  void Sort(KeyIndex& keys) const {
    const auto of = [this](uint32_t position) { return Key::Of(m_Entries[position]); };
    keys.Settle(
        m_Entries.size(), [&of](auto first, auto last) { Key::Sort(first, last, of); }, LessBy<Key>());
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
  mutable std::array<KeyIndex, std::tuple_size_v<Keys>> m_Indexes;
  mutable std::atomic<bool> m_bSorted = true;  // the indexes hold all entries
  mutable std::mutex m_Sorting;
  bool m_bHashed = true;  // every entry is among the hashes
  bool m_bBatch = false;
};

}  // namespace orv::internal
