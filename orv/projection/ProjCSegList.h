// ProjCSegList.h: the segments of a line or a ring while it is clipped.  (Library-internal.)
#pragma once

#include <cstddef>
#include <vector>

#include "orv/shared/Vec2d.h"

namespace orv {

/// A piece of an edge, degrees.
struct CSeg {
  shr::Vec2d start;
  shr::Vec2d end;
  bool startInside = true;
  bool endInside = true;

  /// Neither end is outside, and it is no traced boundary either.
  bool IsInside() const { return startInside && endInside; }
};

/// An ordered, growable array of segments.  No memory raises 1026 "Out of memory." with the unit
/// "ProjCSegList"; the list is then unchanged.
class CSegList {
 public:
  size_t Count() const { return m_Segments.size(); }
  CSeg& operator[](size_t i) { return m_Segments[i]; }
  const CSeg& operator[](size_t i) const { return m_Segments[i]; }

  /// Room for this many, so that appending them needs no more memory.
  void Reserve(size_t count);
  void Append(const CSeg& segment);
  /// Puts a segment before the position's present one; a position past the end appends.
  void Insert(size_t position, const CSeg& segment);
  void Swap(CSegList& other) { m_Segments.swap(other.m_Segments); }

 private:
  std::vector<CSeg> m_Segments;
};

}  // namespace orv
