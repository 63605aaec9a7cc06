// LatLonText.h: angles as display text, and such text read back.
#pragma once

#include "orv/core/Export.h"

namespace orv {

/// Writes an angle in decimal degrees as text.
///
/// `out` must have room for the text and its terminating zero: less than 80 characters for |degrees| below
/// 1e15, some 330 for the largest doubles with 0x0010.  False, with nothing written, when `out` is null or
/// the flags hold both 0x0040 and 0x0080; the error state is not touched.
///
/// Flags, combinable:
///   0x000F  number of decimals n of the last numeric field
///   0x0010  decimal degrees only: fixed point with n decimals, no symbols, never padded
///   0x0020  "-" before negative values
///   0x0040  "+" before values of 0 and more
///   0x0080  one blank before values of 0 and more
///   0x0100  degrees and decimal minutes, no seconds
///   0x0200  one blank between the fields and before the hemisphere letter
///   0x1000  hemisphere letter at the end: "E" or "W", with 0x2000 "N" or "S"
///   0x2000  latitude, see 0x1000; nothing without it
///   0x4000  zeros in front: whole minutes in two places, the last field in n + 3 (with n = 0 too: "005")
///
/// Without 0x0010 the degrees are truncated, and without 0x0100 the minutes too.  Deliberate: no rounding is
/// carried from field to field, so 59.9999999 with two decimals is 59d59m60.00s.  A value is negative when it
/// is below 0; -0.0 is not.  Sign and hemisphere letter are independent of each other.  Degrees and minutes
/// are printed with "%g", so from a million degrees on they have an exponent.  Each symbol is written right
/// behind its field, whatever it is.  The decimal point is "." in every locale.
ORV_API bool DegreesToLatLon(char* out, double degrees, int flags, char degreeSymbol, char minuteSymbol,
                             char secondSymbol);

/// Reads such a text, in decimal degrees; false when it does not parse, with `degrees` as it was.
///
///   [blanks, tabs] ["+" or "-"] number [marker [blank] [minutes]] [blank] [hemisphere] [blanks, tabs]
///   minutes    number, or number ("'" or "m") [blank] [number ['"' or "s"]]
///   marker     "d", "D" or `degreeSymbol` in either case (0 stands for no further symbol)
///   hemisphere "N" or "E", "S" or "W", in either case
///   number     digits with an optional point; a point alone is 0; no exponent
///
/// "S" and "W" make the result negative and never flip it: -10S is -10.  Deliberate: behind seconds a
/// lower-case "s" is the marker, behind minutes without a marker it is the hemisphere, and "S" is always the
/// hemisphere: 10d30m36s is 10.51, 10d30s is -10.5, 10d30m36S is -10.51.  The point is "." in every locale;
/// the error state is not touched.
///
/// @param text, degrees  a null pointer gives false.
ORV_API bool LatLonToDegrees(const char* text, double* degrees, char degreeSymbol);

}  // namespace orv
