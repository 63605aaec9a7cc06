// NameTable.h: vocabularies, the numbers of an enumeration with their spellings.
//
// A vocabulary is an array of rows in stored order.  The first row of a number is its canonical one.  A row
// may carry a second spelling.  NameOf and IdOf are the only look-ups.
#pragma once

#include <cstddef>
#include <string_view>

#include "orv/core/internal/Text.h"

namespace orv::internal {

/// A literal with its length, by which most are told apart; or null.
struct Spelling {
  constexpr Spelling(const char* literal)
      : text(literal), size(literal ? std::string_view(literal).size() : 0) {}
  constexpr operator const char*() const { return text; }

  const char* text;
  size_t size;
};

template <class E>
struct NameRow {
  E number;
  Spelling name;             ///< the spelling that is written
  Spelling other = nullptr;  ///< a further spelling of the same row, or null
};

/// The first row of a number, or null.
template <class Row, size_t N, class E>
const Row* RowOf(const Row (&rows)[N], E number) {
  for (const Row& row : rows) {
    if (row.number == number) return &row;
  }
  return nullptr;
}

/// The canonical spelling of a number, or null when no row has it.
template <class Row, size_t N, class E>
const char* NameOf(const Row (&rows)[N], E number) {
  const Row* const row = RowOf(rows, number);
  return row ? row->name : nullptr;
}

/// The first row with that spelling, without regard to case, or null; a null or empty text has none.
template <class Row, size_t N>
const Row* RowNamed(const Row (&rows)[N], const char* name) {
  if (!name || *name == '\0') return nullptr;
  for (const Row& row : rows) {
    if (row.name && EqualIgnoringCase(row.name, name)) return &row;
    if (row.other && EqualIgnoringCase(row.other, name)) return &row;
  }
  return nullptr;
}

/// The same of characters that no 0 ends; a 0 within them ends them.
template <class Row, size_t N>
const Row* RowNamed(const Row (&rows)[N], std::string_view name) {
  name = name.substr(0, name.find('\0'));
  if (name.empty()) return nullptr;
  const auto is = [name](const Spelling& spelling) {
    return spelling.size == name.size() &&
           EqualIgnoringCase(std::string_view(spelling.text, spelling.size), name);
  };
  for (const Row& row : rows) {
    if (is(row.name) || is(row.other)) return &row;
  }
  return nullptr;
}

/// The number of a spelling; the enumeration's 0 when there is none.
template <class Row, size_t N>
auto IdOf(const Row (&rows)[N], const char* name) {
  using E = decltype(Row::number);
  const Row* const row = RowNamed(rows, name);
  return row ? row->number : static_cast<E>(0);
}

}  // namespace orv::internal
