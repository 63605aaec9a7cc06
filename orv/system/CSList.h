// CSList.h: the list of coordinate systems, and the library-wide instance of it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/system/CSDef.h"

namespace orv {

namespace internal {
struct SharedParts;
}

/// Coordinate systems in insertion (file) order, found by token, name, short name or by what they mean.  The
/// list owns clones of what it is given.
///
/// Deliberate: positions run from 2 (First) to count + 1 (Last), and 0 means "none"; 0 and 1 never name a
/// system. Finds by token, name and short name use indexes, without regard to case.
/// The library-wide list, ORVKnownSystemsList, keeps names and tokens unique; every other list, a copy of that
/// one too, accepts duplicates, and then a find may meet any of them.
///
/// Failures carry the unit "CSList".  Every function that takes a position raises 1032 "Bad parameter to
/// function call" for one outside First to Last.
class ORV_API CSList {
 public:
  CSList();
  CSList(const CSList& other);
  CSList& operator=(const CSList& other);
  ~CSList();

  int Count() const;
  int First() const;  ///< always 2
  int Last() const;   ///< count + 1, so 1 when the list is empty

  /// The system, owned by the list and valid until it is replaced, removed or flushed.
  const CSDef* Enum(int pos) const;
  CSType EnumType(int pos) const;
  /// "" for a system without token or name.
  const char* EnumToken(int pos) const;
  const char* EnumName(int pos) const;

  /// Position or 0; a null or empty text gives 0.
  int FindByToken(const char* token) const;
  int FindByName(const char* name) const;
  /// The short name is the name's part behind its last vertical bar, see CSDef::GetShortName.
  int FindByShortName(const char* name) const;

  /// Fills `positions` with those of all systems for which cs.Compare(system, ignoreWarp) is true, in list
  /// order, and gives their number.
  int FindSystem(const CSDef& cs, bool ignoreWarp, std::vector<int>& positions) const;
  /// Position of a system for which cs.Compare(system, ignoreWarp) is true, or 0.
  ///
  /// @param firstMatch  the first one in list order.  Else the best one: a point each for equal names, equal
  ///        tokens and, when both are ORVDefs with datums, equal names and equal tokens of the datums (without
  ///        regard to case; two empty texts are equal).  Of several best ones the first.
  int FindSystem(const CSDef& cs, bool ignoreWarp, bool firstMatch) const;

  /// Appends a clone and gives its position.  Raised, all 1032: in the library-wide list "Can't have two
  /// coordinate systems with the same name.", then "... with the same ID token.", when a set one is taken
  /// already; in every list "Coordinate system fails validity check.  %s" with the reason that the system's
  /// own check gives.
  int Add(const CSDef& cs);
  /// Replaces a system by a clone after the checks of Add, in which the system itself does not count.
  bool Replace(int pos, const CSDef& cs);
  /// Later systems move down by one.
  bool Remove(int pos);

  /// Empties the list and reads a configuration file, found by ORVFindConfigFile; null means "system.ocf".
  ///
  /// @param bThrowIfFileMissing  raises 1028 "Can't find coordinate systems configuration file '%s'" when there
  ///        is none; else that gives false quietly.  One that does not open always raises 1028 "Failed opening
  ///        coordinate systems configuration file '%s'".
  /// Raised for a bad entry, 1029 with file name and line: "%s(%d): Expected '{', found '%s' at start of
  /// entry\n" (deliberate: one blank behind this colon) and, with "%s(%d):  " before each, "Unexpected end of
  /// file.\n", "Expected '=' between 'type' and coordinate system type.\n", "No token parameter specified.\n",
  /// "No name parameter specified.\n"; what the entry's own reader raises (units "ORVDef" and "UCSDef"); what
  /// Add raises, without file and line.  Systems read before an error stay.  A file without any system raises
  /// 1029 "No coordinate systems in configuration file.".
  bool Load(const char* fileName, bool bThrowIfFileMissing);
  /// Writes a configuration file; null means "system.ocf" in the current folder.  A file that cannot be created
  /// raises 1028 "Failed opening coordinate systems configuration file for writing '%s'".
  ///
  /// The library-wide list leaves out systems whose token begins with "GEOGCS_" (exactly so): they are made
  /// anew from the datums at each start-up.  Deliberate: the others keep their numbers in the comments, gaps
  /// and all.
  bool Save(const char* fileName) const;
  void Flush();

  void CopyAll(const CSList& other);

  void DebugDump(std::string& text, size_t indent) const;

 private:
  friend struct internal::SharedParts;
  int AddOwned(std::unique_ptr<CSDef> system);

  struct Impl;
  std::unique_ptr<Impl> m_pImpl;
};

/// The coordinate systems that the library knows.
extern ORV_API CSList ORVKnownSystemsList;

}  // namespace orv
