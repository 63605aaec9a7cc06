#include "orv/projection/ProjCSegList.h"

#include <new>
#include <stdexcept>

#include "orv/core/internal/Fail.h"

ORV_UNIT("ProjCSegList")

namespace orv {

namespace {

template <class Change>
void WithMemory(Change change) {
  bool bDone = false;
  try {
    change();
    bDone = true;
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  if (!bDone) ORV_FAIL(ErrCorrupt, "Out of memory.");
}

}  // namespace

void CSegList::Reserve(size_t count) {
  WithMemory([&] { m_Segments.reserve(count); });
}

void CSegList::Append(const CSeg& segment) {
  WithMemory([&] { m_Segments.push_back(segment); });
}

void CSegList::Insert(size_t position, const CSeg& segment) {
  const size_t at = position < m_Segments.size() ? position : m_Segments.size();
  WithMemory([&] { m_Segments.insert(m_Segments.begin() + static_cast<std::ptrdiff_t>(at), segment); });
}

}  // namespace orv
