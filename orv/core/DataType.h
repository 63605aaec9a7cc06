// DataType.h: the kinds of values that parameters of datums and projections have.
#pragma once

namespace orv {

/// What a parameter's value is.  The numbers are persistent; 2 is not used.
enum ORVDataTypeID : int {
  ORVDataTypeIDNone = 0,  ///< a number that no table has a row for
  ORVDataTypeIDDouble = 1,
  ORVDataTypeIDBool = 3,
  ORVDataTypeIDEnum = 4,  ///< the number of a method, a target or a type
  ORVDataTypeIDEllipsoid = 5
};

}  // namespace orv
