// GridPlaces.h: where the grids of a datum method are looked for, told.
#pragma once

#include <string>

#include "orv/datum/DatumDef.h"

namespace orv::internal {

/// What NADCON looks for.
inline constexpr const char* kNadconFiles = "NADGRIDS.ZIP, or .los with .las files";

/// "NADGRIDS.ZIP, or .los with .las files, looked for in: A; B" for NADCON; "'ntv2_0.gsb' looked for in: A; B" for
/// NTv2, or "no NTv2 file is set"; "" for other methods.
std::string GridPlacesText(DatumMethod method);

}  // namespace orv::internal
