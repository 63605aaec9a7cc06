#include "orv/datum/DatumList.h"
#include "orv/tables/EllipsoidList.h"

// The known lists stand together in one unit, so that none of them can be used before another exists.  Their
// constructors touch nothing outside themselves.
namespace orv {

EllipsoidList ORVKnownEllipsoidsList;
DatumList ORVKnownDatumsList;

}  // namespace orv
