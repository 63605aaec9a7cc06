// SystemRecord.h: the serialized record of a coordinate system, in a host's documents.
//
// Version (1) and length of the text, both unsigned 32-bit little-endian, then the encoded text itself.
#pragma once

#include "orv/core/internal/Fail.h"
#include "orv/shared/ISerialize.h"
#include "orv/system/CSDef.h"

namespace orv::internal {

void StoreRecord(const CSDef& system, shr::ISerialize& archive);

/// Decodes a record into `system`.  Another version, or a length of 0, raises 1035 with the text `bad`.
bool LoadRecord(CSDef& system, shr::ISerialize& archive, const ErrorSite& site, const char* bad);

}  // namespace orv::internal
