#include "orv/convert/internal/GridPlaces.h"

#include <vector>

#include "orv/core/internal/ReadableFile.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"

namespace orv::internal {

namespace {

std::string Joined(const std::vector<std::string>& folders) {
  std::string text;
  for (const std::string& folder : folders) text += (text.empty() ? "" : "; ") + folder;
  return text;
}

}  // namespace

std::string GridPlacesText(DatumMethod method) {
  if (method == DatumMethodNADCON) {
    return std::string(kNadconFiles) + ", looked for in: " + Joined(NadconFolders());
  }
  if (method == DatumMethodNTV2) {
    const char* const name = ORVGetNTv2GridFile();
    if (!name) return "no NTv2 file is set";
    return std::string("'") + name + "' looked for in: " + Joined(ConfigFolders());
  }
  return "";
}

}  // namespace orv::internal
