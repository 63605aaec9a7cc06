// SystemText.h: a coordinate system shown as parameters.
#pragma once

#include <string>

#include "orv/system/CSDef.h"

namespace orv::tool {

/// The system as parameters of SystemArgument.h, one on each line, numbers with all their digits.
///
/// A georeferenced system that has a projection, a known method of its datum (if any) and no warp reads back
/// equal, in the sense of CSDef::Compare.  A local system and a warp are shown with keys that are not read.
/// Needs LoadCatalogue: known ellipsoids and datums are named by their tokens.
std::string SystemAsParameters(const CSDef& system);
/// The same as a JSON object: the keys, with numbers and flags as JSON has them and all else as text.
std::string SystemAsJson(const CSDef& system);

}  // namespace orv::tool
