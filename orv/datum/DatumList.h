// DatumList.h: the list of datums, and the library-wide instance of it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "orv/core/Export.h"
#include "orv/datum/DatumDef.h"

namespace orv {

namespace internal {
struct SharedParts;
}

/// Datums in insertion (file) order, each with a word of flags; found by name, token, POSC number, special
/// role or parameters.
///
/// Deliberate: indices run from 2 (First) to count + 1 (Last), and 0 means "none"; 0 and 1 never name an
/// entry. The order of the entries decides every search that scans.  The library-wide list,
/// ORVKnownDatumsList, keeps names and tokens unique (POSC numbers may repeat); every other list accepts
/// duplicates, and then a find by name or token may meet any of them.
///
/// Flags: bit 0 marks a datum that has a geographic system of its own ("geogcs=true"); 32 bits are kept, the
/// others without a meaning.
///
/// Failures carry the unit "DatumList".  Every function that takes an index raises 1032 "Bad parameter to
/// function call" for one outside First to Last; Remove alone has a full stop behind it (deliberate).
class ORV_API DatumList {
 public:
  DatumList();
  DatumList(const DatumList& other);
  DatumList& operator=(const DatumList& other);
  ~DatumList();
  void CopyAll(const DatumList& other);
  void Flush();

  int Count() const;
  int First() const;  ///< always 2
  int Last() const;   ///< count + 1, so 1 when the list is empty

  /// The entry, owned by the list and valid until the list changes.
  const DatumDef* Enum(int index) const;
  bool Enum(int index, DatumDef& out) const;
  /// "" for an entry without name or token.
  const char* EnumName(int index) const;
  bool EnumName(int index, std::string& out) const;
  const char* EnumToken(int index) const;
  bool EnumToken(int index, std::string& out) const;
  int EnumPOSCNumber(int index) const;
  unsigned long EnumFlags(int index) const;
  bool EnumParameters(int index, DatumParameters& out) const;

  /// Index of the first entry whose parameters compare equal, or 0.
  int FindDatum(const DatumDef& def) const;
  /// Index of the first entry, from `start` on (at least 2), whose special value is `target`, or 0.
  /// DatumTargetNone finds plain datums.
  int FindSpecial(DatumTarget target, int start) const;
  /// Index or 0; a null or empty text gives 0.  A found entry is copied to `out` when that is not null.
  int FindByName(const char* name, DatumDef* out) const;
  int FindByToken(const char* token, DatumDef* out) const;
  /// Index or 0; numbers below 1 give 0.
  ///
  /// @param start  below 0: any entry of that number (by the index); else the first one from there on.
  int FindByPOSCNumber(int posc, DatumDef* out, int start) const;
  /// The same with the entry's method as a second condition.
  int FindByPOSCNumberAndMethod(int posc, DatumMethod method, DatumDef* out, int start) const;

  /// Appends a copy and gives its index.  Raised, all 1032: "Invalid datum parameters specified." when the
  /// entry's own check fails; in the library-wide list "Can't have two datums with the same name.", "Can't
  /// have two datums with the same ID token." when a set one is taken already.
  int Add(const DatumDef& def, unsigned long flags);
  /// Overwrites an entry after the checks of Add, in which the entry itself does not count.
  bool Replace(int index, const DatumDef& def, unsigned long flags);
  /// Later entries move down by one.
  bool Remove(int index);

  /// Empties the list and reads a configuration file, found by ORVFindConfigFile; null means "datum.ocf".
  ///
  /// @param reportErrors  raises 1028 "Can't find datum configuration file '%s'" when there is none; else
  ///        that gives false quietly.  One that does not open always raises 1028 "Failed opening datum
  ///        configuration file '%s'".
  /// Raised for a bad entry, 1029 with file name and line, "%s(%d):  " before each: "Unknown special token
  /// for datum '%s'", "Unknown datum method '%s'", "Unknown target '%s'", "Unknown MRE type code '%s'",
  /// "Unknown ellipsoid token '%s'" (each with the value), "Datum has no NAME parameter.", "Datum has no
  /// TOKEN parameter.", "Datum fails validity check.\n%s"; the syntax messages of all lists, here without a
  /// line feed; and what Add raises.  Entries read before an error stay.
  bool Load(const char* file, bool reportErrors);
  /// Writes a configuration file; null means "datum.ocf" in the current folder.
  ///
  /// An ellipsoid that the known ellipsoids hold with that token and exactly these dimensions is written by
  /// its token, any other by token, name, radius (four decimals, deliberate) and flattening; none when its
  /// radius is 0.  The inverse flag is never written (deliberate).  A file that cannot be created raises 1028
  /// "Failed opening configuration file for writing '%s'".
  bool Save(const char* file) const;

  void DebugDump(std::string& text, size_t indent) const;

 private:
  friend struct internal::SharedParts;
  std::shared_ptr<const DatumDef> SharedAt(int index) const;

  struct Impl;
  std::unique_ptr<Impl> m_pImpl;
};

/// The datums that the library knows.
extern ORV_API DatumList ORVKnownDatumsList;

}  // namespace orv
