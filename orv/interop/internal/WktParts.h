// WktParts.h: what blocks of well-known text hold, or must hold: values, units, codes.
//
// Raised, unit "Interchange", with line and column of the block: 1026 for what is missing or stands twice.
#pragma once

#include <string>

#include "orv/interop/internal/TextSystem.h"
#include "orv/interop/internal/WktNode.h"

namespace orv::internal {

/// What a unit measures, by its keyword in WKT2.
inline constexpr char kAngle[] = "ANGLEUNIT", kLength[] = "LENGTHUNIT", kRatio[] = "SCALEUNIT";

/// Whether a block or word has one of the keywords; null ends them.
bool IsAny(const WktNode& node, const char* const* keywords);

/// Raises 1026: "expected (what) in (keyword)."
void Expected(const WktNode& node, const char* what);
/// Raises 1026: "expected (what) only once."
void OnlyOnce(const WktNode& second, const char* what);
/// Raises 1032: "the system cannot be expressed: (reason)."
void Refuse(const WktNode& node, const char* reason);

/// The block of any of these keywords, or null.  Raised: there are two of them.
const WktNode* FindOne(const WktNode& node, const char* const* keywords);
/// The same; raised too: there is none.
const WktNode& Need(const WktNode& node, const char* const* keywords, const char* what);
/// The text in front, and the number at an index.
const std::string& NeedText(const WktNode& node, const char* what);
double NeedNumber(const WktNode& node, size_t index, const char* what);

/// The EPSG code of a block, AUTHORITY["EPSG","4326"] or ID["EPSG",4326]; 0 for none, and for what is no whole number.
/// A block may have numbers of others beside it.  Raised: two different ones of EPSG.
int CodeOf(const WktNode& node);

/// The unit of a block, null for none.  Raised: a unit that measures something else, or two of them.
///
/// @param keyword  kAngle, kLength or kRatio; UNIT may be any.
const WktNode* UnitOf(const WktNode& node, const char* keyword);
/// Its size in radians, metres or as a ratio: 1e-12 to 1e12.
double UnitSize(const WktNode& unit);
/// The known unit of that size, else one of the text's own.
TextUnit AngleOf(const WktNode& unit);
TextUnit LengthOf(const WktNode& unit);

}  // namespace orv::internal
