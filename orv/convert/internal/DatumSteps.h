// DatumSteps.h: the planned route without its grids.
#pragma once

#include <vector>

#include "orv/convert/DatumRoute.h"

namespace orv::internal {

/// As ORVPlanDatumRoute, but no grid is looked for or loaded: `grids` stays empty and `gridsFound` true.
std::vector<orv::DatumStep> PlanDatumSteps(const DatumDef& from, const DatumDef& to);

}  // namespace orv::internal
