// ProjectionParameters.h: the vocabulary of map projections as numbers, and the block of their parameters.
#pragma once

#include "orv/core/Export.h"
#include "orv/tables/EllipsoidDef.h"

namespace orv {

/// A map projection.  The numbers are persistent; 28 is the first invalid one.
enum ProjectionMethod : int {
  ProjectionMethodUnknown = 0,
  ProjectionMethodUnprojected = 1,  ///< plain longitude and latitude
  ProjectionMethodOther = 2,        ///< a projection that this library does not know
  ProjectionMethodAlbers = 3,
  ProjectionMethodAzimuthalEquidistant = 4,
  ProjectionMethodBonne = 5,
  ProjectionMethodCassini = 6,
  ProjectionMethodEckert4 = 7,
  ProjectionMethodEckert6 = 8,
  ProjectionMethodEquidistantCylindrical = 9,
  ProjectionMethodEquidistantConic = 10,
  ProjectionMethodGnomonic = 11,
  ProjectionMethodHotine = 12,
  ProjectionMethodMercator = 13,
  ProjectionMethodMollweide = 14,
  ProjectionMethodObliqueMercator = 15,
  ProjectionMethodLambert = 16,
  ProjectionMethodLambertAzimuthal = 17,
  ProjectionMethodMiller = 18,
  ProjectionMethodOrthographic = 19,
  ProjectionMethodStereographic = 20,
  ProjectionMethodPolyconic = 21,
  ProjectionMethodRobinson = 22,
  ProjectionMethodRobinsonSterling = 23,
  ProjectionMethodSinusoidal = 24,
  ProjectionMethodTransverseMercator = 25,
  ProjectionMethodUTM = 26,
  ProjectionMethodVanDerGrinten = 27
};

/// One field of ProjectionParameters.  The numbers are persistent.
enum ProjectionParameterID : int {
  ProjectionParameterIDNone = 0,  ///< no parameter, or no error
  ProjectionParameterIDMethod = 1,
  ProjectionParameterIDEllipsoid = 2,
  ProjectionParameterIDScale = 3,
  ProjectionParameterIDXOrg = 4,
  ProjectionParameterIDYOrg = 5,
  ProjectionParameterIDLon0 = 6,
  ProjectionParameterIDLon1 = 7,
  ProjectionParameterIDLon2 = 8,
  ProjectionParameterIDLat0 = 9,
  ProjectionParameterIDLat1 = 10,
  ProjectionParameterIDLat2 = 11,
  ProjectionParameterIDK0 = 12,
  ProjectionParameterIDSouth = 13,
  ProjectionParameterIDUseAlpha = 14,
  ProjectionParameterIDAlpha = 15,
  ProjectionParameterIDRotate = 16,
  ProjectionParameterIDUOffset = 17,
  ProjectionParameterIDNoWrap = 18
};

/// A projection method with the values of all parameters that any method has.  A plain, copyable value;
/// nothing is checked here.
class ORV_API ProjectionParameters {
 public:
  ProjectionMethod method = ProjectionMethodUnknown;
  EllipsoidDef ellipsoid;  ///< ellipsoid of the projection's mathematics, radius in metres
  double Scale = 1.0;      ///< linear scale of the projected plane, applied behind the false origin
  double xOrg = 0.0;       ///< false easting, projected units
  double yOrg = 0.0;       ///< false northing, projected units
  double Lon0 = 0.0;       ///< central longitude, degrees
  double Lon1 = 0.0;       ///< first meridian, degrees
  double Lon2 = 0.0;       ///< second meridian, degrees
  double Lat0 = 0.0;       ///< central latitude, degrees
  double Lat1 = 0.0;       ///< first (or only) standard parallel, degrees
  double Lat2 = 0.0;       ///< second standard parallel, degrees
  double K0 = 1.0;         ///< central scale factor
  bool bSouth = false;     ///< UTM: southern hemisphere
  bool bUseAlpha = false;  ///< Hotine: the central line is given by Alpha, else by two points
  double Alpha = 0.0;      ///< Hotine: azimuth of the central line, degrees
  bool bRotate = false;    ///< Hotine: (u, v) is rotated to (x, y)
  bool bUOffset = false;   ///< Hotine: u is counted from the centre
  bool bNoWrap = false;    ///< no wrap-around; stored, but no method uses it

  ProjectionParameters();
  /// Back to the values above, the ellipsoid's texts included.
  void Flush();
};

}  // namespace orv
