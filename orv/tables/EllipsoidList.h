// EllipsoidList.h: the list of ellipsoids, and the library-wide instance of it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "orv/core/Export.h"
#include "orv/tables/EllipsoidDef.h"

namespace orv {

/// Ellipsoids in insertion (file) order, found by name, token, POSC number or dimensions.
///
/// Deliberate: indices run from 2 (First) to count + 1 (Last), and 0 means "none"; 0 and 1 never name an
/// entry. Finds by name, token and POSC number use indexes (names and tokens
/// without regard to case). The library-wide list, ORVKnownEllipsoidsList, keeps its entries unique; every
/// other list accepts duplicates, and then a find may meet any of them.
///
/// Failures carry the unit "EllipsoidList".  Every function that takes an index raises 1032 "Bad parameter to
/// function call." for one outside First to Last.
class ORV_API EllipsoidList {
 public:
  EllipsoidList();
  EllipsoidList(const EllipsoidList& other);
  EllipsoidList& operator=(const EllipsoidList& other);
  ~EllipsoidList();

  int First() const;  ///< always 2
  int Last() const;   ///< count + 1, so 1 when the list is empty
  int Count() const;

  /// The entry, owned by the list and valid until the list changes.
  const EllipsoidDef* Enum(int index) const;
  bool Enum(int index, EllipsoidDef& out) const;
  /// "" for an entry without token or name.
  const char* EnumToken(int index) const;
  bool EnumToken(int index, std::string& out) const;
  const char* EnumName(int index) const;
  bool EnumName(int index, std::string& out) const;
  double EnumRadius(int index) const;
  double EnumFlattening(int index) const;
  int EnumPOSCNumber(int index) const;

  /// Index or 0; a null or empty text gives 0.  A found entry is copied to `out` when that is not null.
  int FindByName(const char* name, EllipsoidDef* out) const;
  int FindByToken(const char* token, EllipsoidDef* out) const;
  /// Index or 0; numbers below 1 give 0.
  int FindByPOSCNumber(int posc) const;
  /// Index of the first entry with exactly the same radius and flattening, or 0.
  int FindEllipsoid(const EllipsoidDef& def) const;
  /// Index of the first entry with these dimensions, or 0.
  ///
  /// @param radius      in the entries' own length unit.
  /// @param flattening  dimensionless.
  /// Two passes in list order: exact equality first, then each value equal or within 1e-9 relative to the
  /// value ASKED FOR, not to the stored one (deliberate).  Never raises.
  int FindByDimensions(double radius, double flattening) const;

  /// Appends a copy and gives its index.  Raised, all 1032: "Invalid ellipsoid parameters specified." when
  /// the entry's own check fails; in the library-wide list "Can't have two ellipsoids with the same POSC/EPSG
  /// number.", "... with the same token.", "... with the same name." when a set one is taken already.
  int Add(const EllipsoidDef& def);
  /// Overwrites an entry after the checks of Add, in which the entry itself does not count.
  bool Replace(int index, const EllipsoidDef& def);
  /// Later entries move down by one.
  bool Remove(int index);
  void Flush();
  void CopyAll(const EllipsoidList& other);

  /// Empties the list and reads a configuration file, found by ORVFindConfigFile; null means "ellipsoid.ocf".
  ///
  /// @param bThrowIfFileMissing  raises 1028 "Can't find ellipsoid configuration file '%s'" or "Failed
  ///        opening ellipsoid configuration file '%s'"; else these give false quietly.
  /// Raised for a bad entry, 1029 with file name and line, "%s(%d):  " before each: "Radius value must be
  /// positive.\n"; in the library-wide list "No name parameter specified.\n", "No token parameter
  /// specified.\n"; the syntax messages of all lists; and what Add raises.  Entries read before an error
  /// stay.
  bool Load(const char* fileName, bool bThrowIfFileMissing);
  /// Writes a configuration file; null means "ellipsoid.ocf" in the current folder.  Deliberate: radii keep
  /// four decimals.  A file that cannot be created raises 1028 "Failed opening configuration file for writing
  /// '%s'".
  bool Save(const char* fileName) const;

  void DebugDump(std::string& out, size_t indent) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> m_pImpl;
};

/// The ellipsoids that the library knows.
extern ORV_API EllipsoidList ORVKnownEllipsoidsList;

}  // namespace orv
