// TableListImpl.h: the lists of units and of meridians, over the one list core.
//
// Each list's unit gives TableTraits<Info> and instantiates its class.  The traits hold what differs:
//   kUnit             unit name of reports
//   kFile             the configuration file and its complaints
//   kUnique           uniqueness rules, in order
//   HasName           whether a name is the entry's
//   kLeastPOSC        smallest number that FindByPOSCNumber looks for
//   IsKnown(list)     whether a list is the library-wide one
//   Walk(w, d)        the keys of an entry
//   Fault(d)          complaint about an entry read from a file, or null
#pragma once

#include <iterator>
#include <tuple>

#include "orv/core/internal/ConfigEntry.h"
#include "orv/core/internal/ListCore.h"
#include "orv/tables/TableList.h"

namespace orv {

namespace internal {

template <class T>
struct TableTraits;

/// The list core's view of a table: 0-based, no sorted indexes (the tables are short and scanned in order).
template <class T>
struct TableCoreTraits {
  using Info = T;
  static constexpr int kFirst = 0, kNone = -1;
  static constexpr const char* kBadIndex = ORV_BAD_PARAMETER_STOP;
  using Keys = std::tuple<>;
  // The rules name this core themselves, so they are looked up when they are asked for.
  struct Rules {
    auto begin() const { return std::begin(TableTraits<T>::kUnique); }
    auto end() const { return std::end(TableTraits<T>::kUnique); }
  };
  static constexpr Rules kUnique = {};
};

template <class T>
using TableCore = ListCore<TableCoreTraits<T>>;

/// Whether an entry other than the one at `except` fits.
template <class Core, class Matches>
bool TakenByOther(const Core& core, int except, Matches matches) {
  for (int index = core.First(); index <= core.Last(); ++index) {
    if (index != except && matches(core.At(index))) return true;
  }
  return false;
}

template <class T>
bool POSCTaken(const TableCore<T>& core, const T& info, int except) {
  return info.posc > 0 && TakenByOther(core, except, [&](const T& other) { return other.posc == info.posc; });
}
template <class T>
bool TokenTaken(const TableCore<T>& core, const T& info, int except) {
  return TakenByOther(core, except,
                      [&](const T& other) { return EqualIgnoringCase(other.token, info.token.c_str()); });
}
template <class T>
bool NameTaken(const TableCore<T>& core, const T& info, int except) {
  return TakenByOther(core, except,
                      [&](const T& other) { return TableTraits<T>::HasName(other, info.name.c_str()); });
}

}  // namespace internal

template <class Info>
struct TableList<Info>::Impl {
  internal::TableCore<Info> core;
};

#define ORV_TABLE_SITE (::orv::ErrorSite{::orv::internal::TableTraits<Info>::kUnit, __LINE__})

template <class Info>
TableList<Info>::TableList() : m_pImpl(std::make_unique<Impl>()) {}
template <class Info>
TableList<Info>::TableList(const TableList& other) : m_pImpl(std::make_unique<Impl>(*other.m_pImpl)) {}
template <class Info>
TableList<Info>& TableList<Info>::operator=(const TableList& other) {
  *m_pImpl = *other.m_pImpl;
  return *this;
}
template <class Info>
TableList<Info>::~TableList() = default;

template <class Info>
int TableList<Info>::First() const {
  return m_pImpl->core.First();
}
template <class Info>
int TableList<Info>::Last() const {
  return m_pImpl->core.Last();
}
template <class Info>
int TableList<Info>::Count() const {
  return m_pImpl->core.Count();
}

template <class Info>
bool TableList<Info>::Enum(int index, Info& out) const {
  const Info* const entry = m_pImpl->core.Get(index, ORV_TABLE_SITE);
  if (entry) out = *entry;
  return entry != nullptr;
}
template <class Info>
const char* TableList<Info>::EnumToken(int index) const {
  const Info* const entry = m_pImpl->core.Get(index, ORV_TABLE_SITE);
  return entry ? entry->token.c_str() : nullptr;
}
template <class Info>
const char* TableList<Info>::EnumName(int index) const {
  const Info* const entry = m_pImpl->core.Get(index, ORV_TABLE_SITE);
  return entry ? entry->name.c_str() : nullptr;
}
template <class Info>
int TableList<Info>::EnumPOSC(int index) const {
  const Info* const entry = m_pImpl->core.Get(index, ORV_TABLE_SITE);
  return entry ? entry->posc : 0;
}

template <class Info>
int TableList<Info>::FindByToken(const char* token) const {
  if (!token) return m_pImpl->core.kNone;
  return m_pImpl->core.Find(
      [=](const Info& entry) { return internal::EqualIgnoringCase(entry.token, token); });
}
template <class Info>
int TableList<Info>::FindByName(const char* name) const {
  if (!name) return m_pImpl->core.kNone;
  return m_pImpl->core.Find(
      [=](const Info& entry) { return internal::TableTraits<Info>::HasName(entry, name); });
}
template <class Info>
int TableList<Info>::FindByPOSCNumber(int posc) const {
  if (posc < internal::TableTraits<Info>::kLeastPOSC) return m_pImpl->core.kNone;
  return m_pImpl->core.Find([=](const Info& entry) { return entry.posc == posc; });
}

template <class Info>
int TableList<Info>::Add(const Info& info) {
  const char* const clash = internal::TableTraits<Info>::IsKnown(this) ? m_pImpl->core.Clash(info) : nullptr;
  // Deliberate: 0 although that is an index.
  if (clash) return ORV_FAIL_AT(ORV_TABLE_SITE, ErrBadParameter, "%s", clash), 0;
  return m_pImpl->core.Append(info);
}
template <class Info>
bool TableList<Info>::Replace(int index, const Info& info) {
  if (!m_pImpl->core.Get(index, ORV_TABLE_SITE)) return false;
  const char* const clash =
      internal::TableTraits<Info>::IsKnown(this) ? m_pImpl->core.Clash(info, index) : nullptr;
  if (clash) return ORV_FAIL_AT(ORV_TABLE_SITE, ErrBadParameter, "%s", clash);
  m_pImpl->core.Replace(index, info);
  return true;
}
template <class Info>
bool TableList<Info>::Remove(int index) {
  if (!m_pImpl->core.Get(index, ORV_TABLE_SITE)) return false;
  m_pImpl->core.Remove(index);
  return true;
}
template <class Info>
void TableList<Info>::Flush() {
  m_pImpl->core.Clear();
}

template <class Info>
bool TableList<Info>::Load(const char* fileName, bool bThrowIfFileMissing) {
  using Traits = internal::TableTraits<Info>;
  const std::string name = internal::EmptyIfNull(fileName);  // may belong to an entry of this list
  Flush();
  ConfigFileReader reader;
  if (!internal::OpenListFile(reader, Traits::kFile, fileName ? name.c_str() : nullptr, bThrowIfFileMissing,
                              ORV_TABLE_SITE))
    return false;
  const auto complain = [&reader](const char* message) {
    ORV_FAIL_AT(ORV_TABLE_SITE, ErrSyntax, message, reader.FileName(), reader.Line());
  };
  Info entry;
  return internal::ReadEntries(
      reader, internal::kEntryTexts, ORV_TABLE_SITE, [&entry] { entry = Info(); },
      [&](std::string_view key, std::string_view value) {
        internal::KeyReader keys(key, value, reader, ORV_TABLE_SITE);
        Traits::Walk(keys, entry);
      },
      [&] {
        if (const char* const fault = Traits::Fault(entry)) complain(fault);
        if (Traits::IsKnown(this)) {
          if (entry.name.empty()) complain("%s(%d):  No name parameter specified.\n");
          if (entry.token.empty()) complain("%s(%d):  No token parameter specified.\n");
        }
        Add(entry);
      });
}

template <class Info>
bool TableList<Info>::Save(const char* fileName) const {
  using Traits = internal::TableTraits<Info>;
  ConfigFileWriter writer;
  if (!internal::CreateListFile(writer, Traits::kFile, fileName, ORV_TABLE_SITE)) return false;
  int number = 0;
  for (const Info& entry : m_pImpl->core.Entries()) {
    internal::WriteEntry(writer, ++number, Count(),
                         [&entry](internal::KeyWriter& keys) { Traits::Walk(keys, entry); });
  }
  writer.Write(Traits::kFile.trailer);
  writer.Close();
  return true;
}

}  // namespace orv
