// OneDatum.h: whether two datums are one.
#pragma once

#include "orv/core/internal/Text.h"
#include "orv/datum/DatumDef.h"

namespace orv::internal {

/// Whether two datums are one and the same: their parameters are equal, and where nothing is known of how they convert
/// (method Unknown, for which all parameters are equal), their numbers agree or, without two numbers, their names and
/// ellipsoids.
inline bool IsOneDatum(const DatumDef& a, const DatumDef& b) {
  if (!a.CompareParameters(&b)) return false;
  if (a.GetMethod() != DatumMethodUnknown) return true;
  if (a.GetPOSCNumber() != 0 && b.GetPOSCNumber() != 0) return a.GetPOSCNumber() == b.GetPOSCNumber();
  return EqualIgnoringCase(EmptyIfNull(a.GetName()), EmptyIfNull(b.GetName())) &&
         a.GetEllipsoid()->CompareParameters(b.GetEllipsoid(), true);
}

}  // namespace orv::internal
