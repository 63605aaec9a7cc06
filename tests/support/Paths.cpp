#include "tests/support/Paths.h"

#ifndef ORV_TOOL_PATH
#define ORV_TOOL_PATH ""
#define ORV_TOOL_SHARE ""
#endif

namespace orv::test {

std::string SourceFolder() { return ORV_SOURCE_DIR; }
std::string DataFolder() { return ORV_SOURCE_DIR "/tests/data"; }
std::string CatalogueFolder() { return ORV_SOURCE_DIR "/data/catalogue"; }
std::string ToolPath() { return ORV_TOOL_PATH; }
std::string ShareFolder() { return ORV_TOOL_SHARE; }

}  // namespace orv::test
