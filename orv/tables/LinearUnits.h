// LinearUnits.h: units of length, and the library-wide list of them.
#pragma once

#include "orv/tables/UnitList.h"

namespace orv {

class ORV_API LinearUnitInfo : public UnitInfo {};

/// Units of length.  Unit of its failures: "LinearUnits".
///
/// Uniqueness in ORVKnownLinearUnitsList (1032): "Can't have two linear units with same POSC/EPSG number.",
/// "... with same ID token.", "... with same name." (the new name against names and plural names; the new
/// plural name is not checked). Load: default file "linearunit.ocf"; 1028 "Can't find linear units
/// configuration file '%s'", "Failed opening linear units configuration file for reading '%s'", both only
/// when missing files are reported; 1029 "%s(%d):  Scale must be positive.\n" for a negative multiplier or
/// divider, and in the library-wide list "%s(%d):  No name parameter specified.\n",
/// "%s(%d):  No token parameter specified.\n".
/// Save: 1028 "Failed opening linear units configuration file for writing '%s'".
class ORV_API LinearUnitList : public UnitList<LinearUnitInfo> {};

/// A value in one unit of ORVKnownLinearUnitsList as a value in another.  0.0, without a report, when an
/// index is outside the list.  One multiplication or division into the base unit and one out of it, in this
/// order.
ORV_API double ORVConvertLinearUnit(double value, int fromUnit, int toUnit);

/// The units of length that the library knows.
extern ORV_API LinearUnitList ORVKnownLinearUnitsList;

}  // namespace orv
