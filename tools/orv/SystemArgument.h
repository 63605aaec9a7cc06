// SystemArgument.h: a coordinate system as it is given on the command line.
#pragma once

#include <memory>
#include <string>

#include "orv/system/CSDef.h"
#include "orv/system/ORVDef.h"

namespace orv::tool {

/// The grammar of ORVReadSystem, for --help.
extern const char* const kSystemArgumentHelp;

/// Loads the catalogue and reads a system as ORVReadSystem does.
///
/// Raised: UsageError with what is wrong; shr::Exception from the catalogue.
std::unique_ptr<CSDef> ReadSystem(const std::string& text);
/// The same of one of several; messages begin with the one's name, and tell how to find a system that is not known.
std::unique_ptr<CSDef> ReadSystem(const std::string& text, const std::string& name);

/// The system when it is georeferenced and projected, else null.
const ORVDef* Projected(const CSDef& system);

}  // namespace orv::tool
