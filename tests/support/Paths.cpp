#include "tests/support/Paths.h"

#ifndef ORV_TOOL_PATH
#define ORV_TOOL_PATH ""
#endif

namespace orv::test {

std::string SourceFolder() { return ORV_SOURCE_DIR; }
std::string DataFolder() { return ORV_SOURCE_DIR "/tests/data"; }
std::string CatalogueFolder() { return ORV_SOURCE_DIR "/data/catalogue"; }
std::string ToolPath() { return ORV_TOOL_PATH; }

}  // namespace orv::test
