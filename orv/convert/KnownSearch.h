// KnownSearch.h: entries of the known lists, found by what people type.
//
// The lists' own finds want a token or a name letter for letter.  These take what stands on a map or in a
// message: "epsg:32633", "32633", "WGS 84 / UTM zone 33N", "utm 33".
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orv/core/Export.h"

namespace orv {

/// The library-wide lists.
enum KnownList {
  KnownListSystems,
  KnownListDatums,
  KnownListEllipsoids,
  KnownListMeridians,
  KnownListLinearUnits,
  KnownListAngularUnits
};

/// What a search shows of an entry.
struct ORV_API KnownEntry {
  int index = 0;      ///< in its list; numbered as the list numbers
  std::string token;  ///< "" for none, as the other texts
  std::string name;   ///< with its groups: "UTM|WGS 84|WGS 84 / UTM zone 33N"
  int code = 0;       ///< POSC (EPSG) number, 0 for none
  std::string about;  ///< comment of systems, datums and ellipsoids: area of use and the like

  /// The name's part behind its last vertical bar and the blanks that follow it, as CSDef::GetShortName.
  std::string ShortName() const;
};

/// All entries of a list, in list order.
ORV_API std::vector<KnownEntry> ORVKnownEntries(KnownList list);

/// Index of the entry that a text names, or the list's value for "none" (0, or -1 for meridians and units).
///
/// Tried in this order, each over the whole list and without regard to case; the first hit is it:
///   1. token, then name;
///   2. "EPSG:" and a number, or a number alone: the entry with that code (of several the first);
///   3. short name (systems); one of NAD27, NAD83, WGS84 (datums: by their long names); plural name (units);
///   4. for datums: short name of a known system that is geographic: its datum, when the list holds it;
///   5. the same texts once more with blanks and punctuation left out: "wgs84utmzone33n".
ORV_API int ORVFindKnown(KnownList list, std::string_view text);

/// Entries that hold all the words, best first.
///
/// Words are separated by blanks and matched without regard to case, in any order, against token, code, name
/// and comment.  A word counts most where it is a whole word of the short name, then where a word of that
/// begins with it, then for code and token, groups of the name, parts of words, and least in the comment.
/// Of equal ones come first systems whose datum stands earlier in the list of datums, then shorter names,
/// then list order.
///
/// @param words  no word at all gives every entry, in list order.
/// @param limit  at most so many; 0 for all.
ORV_API std::vector<KnownEntry> ORVSearchKnown(KnownList list, std::string_view words, size_t limit);

/// Entries whose token or short name is written most like the text, nearest first: those to which the fewest
/// letters have to be changed, put in or left out.  Far ones (more than half of the letters) are none.
ORV_API std::vector<KnownEntry> ORVNearestKnown(KnownList list, std::string_view text, size_t limit);

/// What to tell of a text that names no entry: "unknown system 'x'; nearest: EPSG:4326 (WGS 84), ...", with the
/// three nearest; the part from the semicolon on is left out when none is near.  Systems, datums, ellipsoids,
/// meridians and units go by these names.
ORV_API std::string ORVUnknownText(KnownList list, std::string_view text);

}  // namespace orv
