// RegressionTables.h: the regression equations of the eight regions.
#pragma once

#include "orv/datum/DatumParameters.h"
#include "orv/datum/Regression.h"

namespace orv::internal {

/// The equations of a region, which lead from its datum to WGS 84; null for a number outside 1 to 8.
const Regression* RegressionOf(DatumMREType type);

}  // namespace orv::internal
