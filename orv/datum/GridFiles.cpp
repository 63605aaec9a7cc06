#include "orv/datum/GridFiles.h"

#include "orv/core/internal/Globals.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/GridShift.h"

namespace orv {

void ORVSetNadconGridPath(const char* path) {
  Globals().nadconGridPath = internal::EmptyIfNull(path);
  internal::ReleaseNadconGrids();
}

const char* ORVGetNadconGridPath() { return internal::NullIfEmpty(Globals().nadconGridPath); }

void ORVSetNTv2GridFile(const char* name) {
  Globals().ntv2GridFile = internal::EmptyIfNull(name);
  internal::ReleaseNTv2Grids();
}

const char* ORVGetNTv2GridFile() { return internal::NullIfEmpty(Globals().ntv2GridFile); }

}  // namespace orv
