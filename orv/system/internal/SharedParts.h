// SharedParts.h: systems and datums handed from owner to owner without a copy, for whoever makes thousands of them.
#pragma once

#include <memory>

#include "orv/datum/DatumList.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"

namespace orv::internal {

/// Reaches the private halves of lists and systems.
struct SharedParts {
  /// The datum at an index that the list holds; it stays as it is whatever becomes of the list.
  static std::shared_ptr<const DatumDef> DatumAt(const DatumList& list, int index) {
    return list.SharedAt(index);
  }
  /// A datum that has passed its checks already, as those of lists have.
  static void SetDatum(ORVDef& system, std::shared_ptr<const DatumDef> datum) {
    system.m_pDatum = std::move(datum);
  }
  /// As ORVDef::SetProjection, without the copy.
  static void SetProjection(ORVDef& system, std::unique_ptr<ProjectionDef> projection) {
    system.TakeProjection(std::move(projection));
  }
  /// As CSList::Add, without the copy.
  static int Add(CSList& list, std::unique_ptr<CSDef> system) { return list.AddOwned(std::move(system)); }
};

}  // namespace orv::internal
