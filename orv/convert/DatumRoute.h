// DatumRoute.h: the steps that a DatumConverter takes from one datum to another, told.
#pragma once

#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/datum/DatumDef.h"

namespace orv {

/// One step of a route.
struct DatumStep {
  enum Direction {
    Nothing,  ///< both sides count as one datum: points stay
    Forward,  ///< from `datum` to its target
    Backward  ///< from the target of `datum` to it
  };

  Direction direction = Nothing;
  DatumDef datum;   ///< whose method runs; empty for Nothing
  DatumDef target;  ///< the known datum with the special value that is the method's target; empty for Nothing

  /// Of NADCON and NTV2: the grid file or folder, or when nothing is there what was looked for; else "".
  std::string grids;
  bool gridsFound = true;  ///< false when the step will fail for want of grids
};

/// The steps that DatumConverter::Initialize plans with all methods allowed, in their order.
///
/// Raises what that raises.
ORV_API std::vector<DatumStep> ORVPlanDatumRoute(const DatumDef& from, const DatumDef& to);

}  // namespace orv
