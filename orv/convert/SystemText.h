// SystemText.h: a coordinate system as people write it.
#pragma once

#include <memory>
#include <string_view>

#include "orv/core/Export.h"
#include "orv/system/CSDef.h"

namespace orv {

/// Reads SYSTEM:
///
///   SYSTEM      encoded text (it begins with "<"); or well-known text or a PROJ string, see ORVReadText; or
///               parameters (they hold a "="); or else what names a known system, see ORVFindKnown; or else the
///               name of a file with any of these texts, such as a .prj file
///   parameters  item { ("," | line end) item };  an empty item counts for nothing
///   item        key "=" value;  blanks around both are dropped
///   value       text up to the next "," or line end, or text in double quotes, in which "" is a quote
///
/// Keys, without regard to case, each at most once:
///
///   method      long or short name of the projection method, or "geographic" (when not given)
///   Scale, xOrg, yOrg, Lon0, Lon1, Lon2, Lat0, Lat1, Lat2, K0, bSouth, bUseAlpha, Alpha, bRotate, bUOffset
///               the parameters that the method has; others are refused.  Not given: 0, false, Scale 1,
///               K0 1 (UTM: 0.9996)
///   ellipsoid   token, name or "EPSG:" and code of a known one; or
///   a, f, rf    radius and flattening, or inverse flattening.  Without any of these: the datum's ellipsoid
///   datum       token, name or "EPSG:" and code of a known one; or one of the user's own:
///   datum.method, datum.target, datum.dx ...
///               names, and the parameters that the datum method has
///   datum.ellipsoid, datum.a, datum.f, datum.rf
///               its ellipsoid.  Without any of these: the one given for the projection
///   name, token, comment
///               texts of the system
///
/// Angles are degrees, also as 9d30mE; flags are true (1) or false (0).
///
/// Known ones are those of the known lists, which the host fills (ORVInitialize).
///
/// @return a system that passes its own check.
/// Raised, unit "SystemText": 1032 with what is wrong, such as "unknown system 'EPSG:3263'; nearest: ...".
ORV_API std::unique_ptr<CSDef> ORVReadSystem(std::string_view text);

}  // namespace orv
