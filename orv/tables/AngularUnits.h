// AngularUnits.h: units of angle, and the library-wide list of them.
#pragma once

#include "orv/tables/UnitList.h"

namespace orv {

class ORV_API AngularUnitInfo : public UnitInfo {};

/// Units of angle: as LinearUnitList, with "angular" for "linear" in every message, the default file
/// "angularunit.ocf" and the unit "AngularUnits".
class ORV_API AngularUnitList : public UnitList<AngularUnitInfo> {};

/// As ORVConvertLinearUnit, over ORVKnownAngularUnitsList.
ORV_API double ORVConvertAngularUnit(double value, int fromUnit, int toUnit);

/// The units of angle that the library knows.
extern ORV_API AngularUnitList ORVKnownAngularUnitsList;

}  // namespace orv
