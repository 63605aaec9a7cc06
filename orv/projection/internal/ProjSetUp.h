// ProjSetUp.h: set-up constants that several engines share, in scalar double.
#pragma once

#include "orv/projection/Azimuthal.h"
#include "orv/projection/ConformalLatitude.h"
#include "orv/projection/MeridianArc.h"
#include "orv/projection/ProjTransverseMercator.h"
#include "orv/projection/ProjectionParameters.h"

namespace orv::internal {

/// The square of the eccentricity, 2 f - f^2.
double EccentricitySquared(const ProjectionParameters& p);

/// The radius of the parallel phi (radians), a = 1: cos phi / sqrt(1 - e2 sin^2 phi), m of [Sny87] (14-15).
double RadiusOfParallel(double e2, double phi);

/// The series of the meridian arc and of its inverse, [Sny87] (3-21), (3-24), (3-26), (7-19).
///
/// @param a   major radius, metres.
/// @param e2  square of the eccentricity, below 1.
MeridianArc MakeMeridianArc(double a, double e2);

/// The arc from the Equator to phi, radians, in the unit of a: [Sny87] (3-21).
double ArcLength(const MeridianArc& m, double phi);

/// The series of the latitude in the conformal latitude, to the sixth power of the third flattening [Kaw11].
///
/// @param e  eccentricity, below 1; exact to 2e-17 radians up to 0.087.
LatitudeSeries MakeLatitudeSeries(double e);

/// The constants of the Transverse Mercator and of UTM, of working parameters (radians).  Always true.
bool SetUpTransverseMercator(ProjectionParameters& radians, TransverseMercator& c);

/// The centre of an azimuthal projection, radians.  The cosine of a right angle, +-1.5707963267948966, is 0
/// here.
AzimuthalCentre MakeAzimuthalCentre(double lon0, double lat0);

}  // namespace orv::internal
