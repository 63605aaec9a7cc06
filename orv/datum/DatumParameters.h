// DatumParameters.h: the vocabulary of datums as numbers, and the block of their conversion parameters.
#pragma once

#include "orv/core/Export.h"
#include "orv/tables/EllipsoidDef.h"

namespace orv {

/// How a position on a datum is converted to its target.  The numbers are persistent; 7 is the first invalid
/// one.
enum DatumMethod : int {
  DatumMethodUnknown = 0,     ///< no definition
  DatumMethodNone = 1,        ///< no shift: the datum is a target itself
  DatumMethodMolodensky = 2,  ///< three parameters, standard Molodensky formulas
  DatumMethodBursaWolf = 3,   ///< seven parameters, geocentric coordinates
  DatumMethodNADCON = 4,      ///< grid shift NAD27 to NAD83
  DatumMethodNTV2 = 5,        ///< NTv2 grid shift
  DatumMethodMRE = 6,         ///< multiple regression equations of a region
  DatumMethodEnd = 7          ///< end of the table; no method
};

/// The well-known datums that conversions lead to; also the special role of a datum that is one of them.
enum DatumTarget : int {
  DatumTargetNone = 0,
  DatumTargetWGS84 = 1,
  DatumTargetNAD27 = 2,
  DatumTargetNAD83 = 3,
  DatumTargetNAD27Canada = 4,
  DatumTargetNAD83Canada = 5
};

/// The region of a datum of method MRE.  9 is the first invalid number.
enum DatumMREType : int {
  DatumMRETypeNone = 0,
  DatumMRETypeAGD1966 = 1,
  DatumMRETypeAGD1984 = 2,
  DatumMRETypeCampo = 3,
  DatumMRETypeCorrego = 4,
  DatumMRETypeED50 = 5,
  DatumMRETypeNAD27Canada = 6,
  DatumMRETypeNAD27Conus = 7,
  DatumMRETypeSA69 = 8
};

/// One field of DatumParameters.  The numbers are persistent; 15 is the first invalid one.
enum DatumParameterID : int {
  DatumParameterIDNone = 0,  ///< no parameter, or no error
  DatumParameterIDMethod = 1,
  DatumParameterIDTarget = 2,
  DatumParameterIDEllipsoid = 3,
  DatumParameterIDPMShift = 4,
  DatumParameterIDdx = 5,
  DatumParameterIDdy = 6,
  DatumParameterIDdz = 7,
  DatumParameterIDrx = 8,
  DatumParameterIDry = 9,
  DatumParameterIDrz = 10,
  DatumParameterIDK = 11,
  DatumParameterIDEquation = 12,
  DatumParameterIDNadconPrvi = 13,
  DatumParameterIDInverse = 14,
  DatumParameterIDEnd = 15  ///< end of the table; no parameter
};

/// A conversion method with the values of all parameters that any method has.  A plain, copyable value;
/// nothing is checked here.
class ORV_API DatumParameters {
 public:
  DatumMethod method = DatumMethodUnknown;
  DatumTarget target = DatumTargetNone;
  EllipsoidDef ellipsoid;  ///< the datum's own ellipsoid, radius in metres
  double pmShift = 0.0;    ///< prime meridian shift, degrees, added to the longitude
  double dx = 0.0;         ///< translations, metres
  double dy = 0.0;
  double dz = 0.0;
  double rx = 0.0;  ///< rotations in the position-vector sense, arc-seconds
  double ry = 0.0;
  double rz = 0.0;
  double k = 0.0;  ///< scale difference, parts per million
  DatumMREType mreType = DatumMRETypeNone;
  /// Use the Puerto Rico and Virgin Islands grids.  Kept, compared and written, but without effect: those
  /// grids are part of the one NADCON set, whose finest grid at a point wins.
  bool nadconPrvi = false;
  bool inverse = false;  ///< apply the method in the inverse sense

  DatumParameters();
  /// Back to the values above.
  void Flush();
};

}  // namespace orv
