// TableList.h: what the lists of units and of meridians have in common.
#pragma once

#include <memory>
#include <string>

#include "orv/core/Export.h"

namespace orv {

/// Entries in file order, found by token, name or number.  LinearUnitList, AngularUnitList and MeridianList
/// derive from it.
///
/// Indices run from 0 to count - 1; -1 means "not found".  They are stable until the next Load, Remove or
/// Flush. The library-wide list of each kind keeps its entries unique; every other list accepts anything.
///
/// Failures carry the unit of the derived class's file.  Every function that takes an index raises 1032 "Bad
/// parameter to function call." for one outside 0 to Last.
template <class Info>
class ORV_API TableList {
 public:
  int First() const;  ///< always 0
  int Last() const;   ///< count - 1, so -1 when the list is empty
  int Count() const;

  bool Enum(int index, Info& out) const;
  /// "" for an empty text; the pointer is valid until the list changes.
  const char* EnumToken(int index) const;
  const char* EnumName(int index) const;
  int EnumPOSC(int index) const;

  /// Index of the first entry with that text, without regard to case, or -1; null gives -1.
  int FindByToken(const char* token) const;
  int FindByName(const char* name) const;
  int FindByPOSCNumber(int posc) const;

  /// Appends a copy and gives its index.  In the library-wide list a POSC number above 0, a token or a name
  /// that is taken already raises 1032, in this order.
  ///
  /// Deliberate: a failing Add returns 0, not -1; callers must not read it as an index.
  int Add(const Info& info);
  /// Overwrites an entry after the checks of Add, in which the entry itself does not count.
  bool Replace(int index, const Info& info);
  /// Later entries move down by one.
  bool Remove(int index);
  void Flush();

  /// Empties the list and reads a configuration file, found by ORVFindConfigFile; null means the list's
  /// default file. Entries read before an error stay.
  bool Load(const char* fileName, bool bThrowIfFileMissing);
  /// Writes a configuration file; null means the default name in the current folder.
  bool Save(const char* fileName) const;

 protected:
  TableList();
  TableList(const TableList& other);
  TableList& operator=(const TableList& other);
  ~TableList();

  struct Impl;
  std::unique_ptr<Impl> m_pImpl;
};

}  // namespace orv
