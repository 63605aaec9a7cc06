// Georeferenced.h: a system as what it is.
#pragma once

#include "orv/system/CSDef.h"
#include "orv/system/ORVDef.h"

namespace orv::internal {

/// The system itself when it is georeferenced, null for a local one.
inline const ORVDef* Georeferenced(const CSDef& system) {
  return system.Type() == CSTypeORV ? static_cast<const ORVDef*>(&system) : nullptr;
}

}  // namespace orv::internal
