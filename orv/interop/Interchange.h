// Interchange.h: systems as the texts that the field exchanges: well-known text, .prj files, "+proj=" strings.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "orv/core/Export.h"
#include "orv/system/ORVDef.h"

namespace orv {

/// The texts that can be written.  Reading needs none of these: it takes any of the dialects as it comes.
enum TextDialect : int {
  TextDialectWkt2 = 0,      ///< WKT2:2019 (ISO 19162): PROJCRS[...], GEOGCRS[...], with a shift BOUNDCRS[...]
  TextDialectWkt1Gdal = 1,  ///< WKT1 as OGC and GDAL have it: PROJCS[...] with AUTHORITY and TOWGS84
  TextDialectWkt1Esri = 2,  ///< WKT1 as ESRI has it, the content of .prj files
  TextDialectProj = 3       ///< "+proj=utm +zone=33 +datum=WGS84 ..."
};

/// "WKT2:2019", "WKT1 (GDAL)", "WKT1 (ESRI)", "PROJ string"; null for a number without a name.
ORV_API const char* ORVTextDialectName(TextDialect dialect);

/// The system as a text.
///
/// Only what the text says exactly is written; everything else raises 1032, unit "Interchange", with the reason.
/// docs/formats/well-known-text.md lists method by method what that is.  In short:
/// - x is the easting and y the northing, longitude before latitude, whatever the order that EPSG gives them.
/// - A datum's conversion to WGS 84 is written as TOWGS84, BOUNDCRS or +towgs84; WGS 84 itself needs none, a datum of
///   method Unknown has none.  Deliberate: the ESRI dialect has no place for it and names the datum only.
/// - A system of the catalogue whose Scale is off 1 by a few 1e-9, so that it differs from those of other datums, is
///   written without that: the same map.  Hotine's azimuth of 89.9998 degrees is written as the 90 it stands for (half
///   a millimetre in Switzerland, 86 mm at 55 N 30 E; see the docs).
/// - Refused: systems with a warp, datums that grids or regression equations convert or that lead elsewhere than to
///   WGS 84, methods that the dialect has not, and methods that the library computes on a sphere while the text means
///   the ellipsoid.
///
/// The text is UTF-8, one line without line end; with `indented`, well-known text has a line for each part.
/// Numbers never depend on the locale.  Names and codes of units, ellipsoids and base systems come from the known lists;
/// empty lists do no harm.
ORV_API std::string ORVWriteText(const ORVDef& system, TextDialect dialect, bool indented = false);

/// The system that a text describes: well-known text of any dialect, or a "+proj=" string.
///
/// - When the text carries an EPSG code and the known system of that code draws the same map on the same datum, the
///   result is a copy of that system, its token, name and comment included.
/// - Otherwise the name is the text's, the token is empty and POSC is the text's EPSG code or 0.
/// - The datum: with a shift (TOWGS84, BOUNDCRS, +towgs84) the known datum of the text's name or code that has
///   these very numbers, else one of its own.  Without a shift the known datum of its code or name, when its ellipsoid
///   is the text's.  Otherwise a datum of method Unknown with the text's name: nothing converts it to another datum.
/// - A name of the system or of its base system never replaces a datum that has a name of its own.
/// - What is missing, given twice or contradicted is refused: a parameter that the method needs, a key that it has not, the
///   unit of the axes, two ellipsoids or units, a code beside the name of another method.
/// - Longitudes are counted from Greenwich: a prime meridian is added to Lon0.  A geographic system with another prime
///   meridian or in another unit than the degree becomes an Equidistant Cylindrical of its angles, as in the catalogue.
/// - x is the easting whatever the order of axes in the text; an axis that points west or south is refused.
///
/// Never null; the result passes its check.  Raised, unit "Interchange", each with "Line %d, column %d: " in
/// front (of the first byte of what is meant; both from 1): 1026 for what is not the syntax, with what was expected; 1032
/// for what is understood and cannot be expressed, with the reason.  Texts above 256 KiB, brackets nested deeper than
/// 32 and more than 20000 values are refused with 1026.
ORV_API std::unique_ptr<ORVDef> ORVReadText(std::string_view text);

/// Whether a text begins as well-known text does: a name of a coordinate system's keyword, then a bracket.
ORV_API bool ORVLooksLikeWkt(std::string_view text);
/// Whether a text holds "+proj=", "+init=" or "proj=" as its first word, or "+proj=" as any.
ORV_API bool ORVLooksLikeProjString(std::string_view text);

}  // namespace orv
