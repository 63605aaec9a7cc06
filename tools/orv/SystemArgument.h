// SystemArgument.h: a coordinate system as it is given on the command line.
#pragma once

#include <memory>
#include <string>

#include "orv/system/CSDef.h"

namespace orv::tool {

/// The grammar of ORVReadSystem, for --help.
extern const char* const kSystemArgumentHelp;

/// Loads the catalogue and reads a system as ORVReadSystem does.
///
/// Raised: UsageError with what is wrong; shr::Exception from the catalogue.
std::unique_ptr<CSDef> ReadSystem(const std::string& text);

}  // namespace orv::tool
