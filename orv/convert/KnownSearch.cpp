#include "orv/convert/KnownSearch.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <utility>

#include "orv/convert/internal/TypedText.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/system/internal/Georeferenced.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"

namespace orv {

namespace {

using internal::EmptyIfNull;
using internal::FoldCase;
using internal::Georeferenced;

// ---- entries ---------------------------------------------------------------------------------------------

template <class List, class Fill>
std::vector<KnownEntry> Collect(const List& list, Fill fill) {
  std::vector<KnownEntry> entries;
  entries.reserve(static_cast<size_t>(list.Count()));
  for (int index = list.First(); index <= list.Last(); ++index) {
    KnownEntry entry;
    entry.index = index;
    entry.token = EmptyIfNull(list.EnumToken(index));
    entry.name = EmptyIfNull(list.EnumName(index));
    fill(index, entry);
    entries.push_back(std::move(entry));
  }
  return entries;
}

template <class List>
std::vector<KnownEntry> CollectTable(const List& list) {
  return Collect(list, [&](int index, KnownEntry& entry) { entry.code = list.EnumPOSC(index); });
}

std::vector<KnownEntry> CollectSystems() {
  return Collect(ORVKnownSystemsList, [](int index, KnownEntry& entry) {
    const CSDef& system = *ORVKnownSystemsList.Enum(index);
    entry.about = system.GetComment();
    if (const ORVDef* const def = Georeferenced(system)) entry.code = def->GetPOSC();
  });
}

std::vector<KnownEntry> CollectDatums() {
  return Collect(ORVKnownDatumsList, [](int index, KnownEntry& entry) {
    entry.code = ORVKnownDatumsList.EnumPOSCNumber(index);
    entry.about = EmptyIfNull(ORVKnownDatumsList.Enum(index)->GetComment());
  });
}

std::vector<KnownEntry> CollectEllipsoids() {
  return Collect(ORVKnownEllipsoidsList, [](int index, KnownEntry& entry) {
    entry.code = ORVKnownEllipsoidsList.EnumPOSCNumber(index);
    entry.about = EmptyIfNull(ORVKnownEllipsoidsList.Enum(index)->GetComment());
  });
}

int None(KnownList list) {
  return list == KnownListSystems || list == KnownListDatums || list == KnownListEllipsoids ? 0 : -1;
}

// ---- texts -----------------------------------------------------------------------------------------------

bool IsWordPart(char c) {
  // Bytes of UTF-8 beyond ASCII are letters to us.
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string Folded(std::string_view text) {
  std::string folded;
  for (const char c : text) folded += static_cast<char>(FoldCase(c));
  return folded;
}

/// The text's letters and digits, folded.
std::string Bare(std::string_view text) {
  std::string bare;
  for (const char c : text) {
    if (IsWordPart(c)) bare += static_cast<char>(FoldCase(c));
  }
  return bare;
}

/// The number that a text is, with "EPSG:" in front or without; 0 for anything else.
int CodeOf(std::string_view text) {
  constexpr std::string_view kAuthority = "epsg:";
  if (text.size() > kAuthority.size() && Folded(text.substr(0, kAuthority.size())) == kAuthority) {
    text.remove_prefix(kAuthority.size());
  }
  int code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
  return error == std::errc() && end == text.data() + text.size() && code > 0 ? code : 0;
}

// ---- finding one -----------------------------------------------------------------------------------------

/// Index of the first entry for which test gives true, or none.
template <class Test>
int First(const std::vector<KnownEntry>& entries, int none, Test test) {
  const auto found = std::find_if(entries.begin(), entries.end(), test);
  return found == entries.end() ? none : found->index;
}

struct DatumAlias {
  const char* alias;
  const char* name;
};
constexpr DatumAlias kDatumAliases[] = {
    {"NAD27", "North American Datum 1927"},
    {"NAD83", "North American Datum 1983"},
    {"WGS84", "World Geodetic System 1984"},
};

/// The names beside token and name by which an entry is known, for one kind of list; equal decides.
template <class Equal>
int FindByOtherNames(KnownList list, const std::vector<KnownEntry>& entries, Equal equal) {
  const int none = None(list);
  if (list == KnownListSystems) {
    return First(entries, none, [&](const KnownEntry& entry) { return equal(entry.ShortName()); });
  }
  if (list == KnownListLinearUnits || list == KnownListAngularUnits) {
    return First(entries, none, [&](const KnownEntry& entry) {
      return equal(list == KnownListLinearUnits
                       ? EmptyIfNull(ORVKnownLinearUnitsList.EnumNamePlural(entry.index))
                       : EmptyIfNull(ORVKnownAngularUnitsList.EnumNamePlural(entry.index)));
    });
  }
  if (list != KnownListDatums) return none;
  for (const DatumAlias& row : kDatumAliases) {
    const int index = equal(row.alias) ? ORVKnownDatumsList.FindByName(row.name, nullptr) : none;
    if (index != none) return index;
  }
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    const ORVDef* const system = Georeferenced(*ORVKnownSystemsList.Enum(pos));
    if (!system || !system->HasDatum(false) || system->HasProjection(false, true)) continue;
    if (!equal(system->GetShortName())) continue;
    const int index = ORVKnownDatumsList.FindByToken(system->GetDatum()->GetToken(), nullptr);
    if (index != none) return index;
  }
  return none;
}

// ---- searching -------------------------------------------------------------------------------------------

/// How well a word is met; 0 for not at all.  The rows of the documented order.
enum Weight {
  WeightNone = 0,
  WeightAbout = 1,
  WeightPart = 3,
  WeightGroup = 5,
  WeightCode = 8,
  WeightBegins = 10,
  WeightWord = 13
};

/// The best place of a word in a text whose words are whole, begun or only parts.
int WeightIn(const std::string& text, const std::string& word, int whole, int begins, int part) {
  int best = WeightNone;
  for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    const bool starts = at == 0 || !IsWordPart(text[at - 1]);
    const size_t end = at + word.size();
    const bool ends = end == text.size() || !IsWordPart(text[end]);
    best = std::max(best, starts ? (ends ? whole : begins) : part);
  }
  return best;
}

/// An entry's texts, folded, with what it scores.
struct Candidate {
  const KnownEntry* entry;
  int score = 0;
  int datumRank = 0;
};

int Score(const KnownEntry& entry, const std::vector<std::string>& words) {
  const std::string token = Folded(entry.token), name = Folded(entry.name), about = Folded(entry.about);
  const std::string code = entry.code != 0 ? std::to_string(entry.code) : "";
  const std::string shortName = internal::ShortNameOf(name.c_str());
  int score = 0;
  for (const std::string& word : words) {
    int best = WeightIn(shortName, word, WeightWord, WeightBegins, WeightPart);
    if (word == code || word == token) best = std::max<int>(best, WeightCode);
    best = std::max(best, WeightIn(name, word, WeightGroup, WeightGroup, WeightPart));
    best = std::max(best, WeightIn(token, word, WeightPart, WeightPart, WeightPart));
    best = std::max(best, WeightIn(about, word, WeightAbout, WeightAbout, WeightNone));
    if (best == WeightNone) return 0;
    score += best;
  }
  return score;
}

std::vector<std::string> WordsOf(std::string_view text) {
  std::vector<std::string> words;
  for (size_t at = 0; at < text.size();) {
    const size_t begin = text.find_first_not_of(" \t\r\n", at);
    if (begin == std::string_view::npos) break;
    const size_t end = std::min(text.find_first_of(" \t\r\n", begin), text.size());
    words.push_back(Folded(text.substr(begin, end - begin)));
    at = end;
  }
  return words;
}

/// Place of a system's datum in the list of datums; behind all of them when it is not there.
int DatumRank(const KnownEntry& entry) {
  const int behind = ORVKnownDatumsList.Last() + 1;
  const ORVDef* const system = Georeferenced(*ORVKnownSystemsList.Enum(entry.index));
  if (!system || !system->HasDatum(false)) return behind;
  const int index = ORVKnownDatumsList.FindByToken(system->GetDatum()->GetToken(), nullptr);
  return index == 0 ? behind : index;
}

// ---- nearness --------------------------------------------------------------------------------------------

/// Letters to change, put in or leave out to make one text of the other.
size_t Distance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

const char* WordFor(KnownList list) {
  switch (list) {
    case KnownListSystems:
      return "system";
    case KnownListDatums:
      return "datum";
    case KnownListEllipsoids:
      return "ellipsoid";
    case KnownListMeridians:
      return "meridian";
    case KnownListLinearUnits:
    case KnownListAngularUnits:
      break;
  }
  return "unit";
}

constexpr size_t kLongestLikeness = 200;  // texts beyond are cut: nobody types them

}  // namespace

std::string KnownEntry::ShortName() const { return internal::ShortNameOf(name.c_str()); }

std::vector<KnownEntry> ORVKnownEntries(KnownList list) {
  switch (list) {
    case KnownListSystems:
      return CollectSystems();
    case KnownListDatums:
      return CollectDatums();
    case KnownListEllipsoids:
      return CollectEllipsoids();
    case KnownListMeridians:
      return CollectTable(ORVKnownMeridiansList);
    case KnownListLinearUnits:
      return CollectTable(ORVKnownLinearUnitsList);
    case KnownListAngularUnits:
      return CollectTable(ORVKnownAngularUnitsList);
  }
  return {};
}

int ORVFindKnown(KnownList list, std::string_view text) {
  const int none = None(list);
  if (text.empty()) return none;
  const std::vector<KnownEntry> entries = ORVKnownEntries(list);
  const std::string asked(text), bare = Bare(text);
  const int code = CodeOf(text);
  const auto same = [&](const std::string& other) {
    return internal::EqualIgnoringCase(asked, other.c_str());
  };
  const auto alike = [&](const std::string& other) { return !bare.empty() && Bare(other) == bare; };

  int found = First(entries, none, [&](const KnownEntry& entry) { return same(entry.token); });
  if (found == none) found = First(entries, none, [&](const KnownEntry& entry) { return same(entry.name); });
  if (found == none && code > 0) {
    found = First(entries, none, [&](const KnownEntry& entry) { return entry.code == code; });
  }
  if (found == none) found = FindByOtherNames(list, entries, same);
  if (found != none || code > 0) return found;
  found = First(entries, none, [&](const KnownEntry& entry) { return alike(entry.token); });
  if (found == none) found = First(entries, none, [&](const KnownEntry& entry) { return alike(entry.name); });
  return found == none ? FindByOtherNames(list, entries, alike) : found;
}

std::vector<KnownEntry> ORVSearchKnown(KnownList list, std::string_view text, size_t limit) {
  std::vector<KnownEntry> entries = ORVKnownEntries(list);
  const std::vector<std::string> words = WordsOf(text);
  std::vector<Candidate> candidates;
  for (const KnownEntry& entry : entries) {
    const int score = words.empty() ? 0 : Score(entry, words);
    if (score == 0 && !words.empty()) continue;
    candidates.push_back({&entry, score, list == KnownListSystems && score > 0 ? DatumRank(entry) : 0});
  }
  if (!words.empty()) {
    std::stable_sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
      if (a.score != b.score) return a.score > b.score;
      if (a.datumRank != b.datumRank) return a.datumRank < b.datumRank;
      return a.entry->name.size() < b.entry->name.size();
    });
  }
  if (limit > 0 && candidates.size() > limit) candidates.resize(limit);
  std::vector<KnownEntry> found;
  found.reserve(candidates.size());
  for (const Candidate& candidate : candidates) found.push_back(*candidate.entry);
  return found;
}

std::vector<KnownEntry> ORVNearestKnown(KnownList list, std::string_view text, size_t limit) {
  const std::string asked = Bare(text.substr(0, kLongestLikeness));
  std::vector<KnownEntry> entries = ORVKnownEntries(list);
  std::vector<std::pair<size_t, const KnownEntry*>> near;
  for (const KnownEntry& entry : entries) {
    size_t distance = asked.size() + 1;
    for (const std::string& name : {entry.token, entry.ShortName()}) {
      const std::string bare = Bare(std::string_view(name).substr(0, kLongestLikeness));
      const size_t longer = std::max(asked.size(), bare.size());
      const size_t away = Distance(asked, bare);
      if (!bare.empty() && 2 * away <= longer) distance = std::min(distance, away);
    }
    if (distance <= asked.size()) near.emplace_back(distance, &entry);
  }
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  if (near.size() > limit) near.resize(limit);
  std::vector<KnownEntry> found;
  for (const auto& [distance, entry] : near) found.push_back(*entry);
  return found;
}

std::string ORVUnknownText(KnownList list, std::string_view text) {
  std::string nearest;
  for (const KnownEntry& entry : ORVNearestKnown(list, text, 3)) {
    nearest += (nearest.empty() ? "; nearest: " : ", ") + entry.token + " (" + entry.ShortName() + ")";
  }
  return internal::Format("unknown %s '%s'%s", WordFor(list), internal::Excerpt(text).c_str(),
                          nearest.c_str());
}

}  // namespace orv
