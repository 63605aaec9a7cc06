// GridFiles.h: where the grids of datum shifts are.
//
// Grids are read when a conversion first needs them and are then shared by all converters.  A read that fails is
// tried again at the next conversion.  Neither setter may be called while another thread converts.
#pragma once

#include "orv/core/Export.h"

namespace orv {

/// Sets the folder of the NADCON grids: "NADGRIDS.ZIP", or pairs of .los and .las files.  The next conversion
/// reads them anew.
///
/// @param path  null or empty, as at first, means the usual places; the first one with a grid is taken:
///              1. the folder of the library's module file;
///              2. the configuration path, when one is set;
///              3. the folder "grids" beside the installed datum.ocf, as shr::LocateFile finds it.
ORV_API void ORVSetNadconGridPath(const char* path);
/// The folder as it was set; null when the usual places are meant.  Valid until the next set.
ORV_API const char* ORVGetNadconGridPath();

/// Sets the name of the NTv2 file, at first "ntv2_0.gsb", which ORVFindConfigFile finds.  The next conversion reads
/// it anew.
///
/// @param name  null or empty means that no name is known: conversions then fail with "NTV2 datum conversion
///              failed."
ORV_API void ORVSetNTv2GridFile(const char* name);
/// The name as it was set; null when none is known.  Valid until the next set.
ORV_API const char* ORVGetNTv2GridFile();

}  // namespace orv
