#include "orv/datum/DatumList.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"

// The known lists stand together in one unit, so that none of them can be used before another exists.  Their
// constructors touch nothing outside themselves.
namespace orv {

MeridianList ORVKnownMeridiansList;
AngularUnitList ORVKnownAngularUnitsList;
LinearUnitList ORVKnownLinearUnitsList;
EllipsoidList ORVKnownEllipsoidsList;
DatumList ORVKnownDatumsList;

}  // namespace orv
