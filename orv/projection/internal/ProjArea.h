// ProjArea.h: where a projection is usable, and where its map is cut.
//
// All take the definition's parameters, in degrees, and points as longitude and latitude in degrees.
// Deliberate: no longitude is normalised here, so 370 is outside although it is projected as 10.
#pragma once

#include <cstddef>

#include "orv/projection/ProjectionParameters.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

// ---- inside tests ----------------------------------------------------------------------------------------

// A NaN coordinate that a test looks at is outside.

/// Lon0 - 180 < longitude < Lon0 + 180, both strictly.
bool InsideWindow(const ProjectionParameters& p, const shr::Vec2d& at);
/// The same, and -90 < latitude < 90, both strictly.
bool InsideWindowBelowPoles(const ProjectionParameters& p, const shr::Vec2d& at);
/// InsideWindow, if the parameters are those of a Sinusoidal.
bool InsideSinusoidalWindow(const ProjectionParameters& p, const shr::Vec2d& at);
/// -180 < longitude < 180, both strictly, whatever Lon0: for Robinson, which has none.
bool InsideGreenwichWindow(const ProjectionParameters& p, const shr::Vec2d& at);
/// Within 90 degrees of (Lon0, Lat0), the rim included.
bool InsideHemisphere(const ProjectionParameters& p, const shr::Vec2d& at);
/// Within 60 degrees of (Lon0, Lat1), the rim included.
bool InsideGnomonic(const ProjectionParameters& p, const shr::Vec2d& at);
/// Within 170 degrees of (Lon0, Lat1), the rim included.
bool InsideAzimuthalEquidistant(const ProjectionParameters& p, const shr::Vec2d& at);
/// The latitude lies less than 45 degrees from Lat1 and from Lat2.
bool InsideObliqueMercator(const ProjectionParameters& p, const shr::Vec2d& at);
/// The longitude lies less than 15 degrees from Lon1 and, unless bUseAlpha is set, the latitude from Lat1.
bool InsideHotine(const ProjectionParameters& p, const shr::Vec2d& at);
/// Every point, one without a value too.
bool InsideEverywhere(const ProjectionParameters& p, const shr::Vec2d& at);

// ---- split offsets ---------------------------------------------------------------------------------------

/// The rule of the methods that are cut at Lon0 +- 180.  False when pts, dx or dy is null or n is 0 (and then
/// nothing is written); else both offsets are written: dx = 360 and true when the westernmost longitude is
/// Lon0 - 180 or less; else dx = -360 and true when the easternmost is Lon0 + 180 or more; else 0 and false.
/// dy is 0.
///
/// Deliberate: the bounds count (in the inside tests they do not), the west wins, and markers count as
/// longitudes; a NaN does not.
bool SplitAtWindow(const ProjectionParameters& p, const shr::Vec2d* pts, size_t n, double* dx, double* dy);
/// The same rule with -180 and 180 as bounds, for Robinson.
bool SplitAtGreenwichWindow(const ProjectionParameters& p, const shr::Vec2d* pts, size_t n, double* dx,
                            double* dy);
/// The rule of the others: false, both offsets 0 where there is room for them.
bool SplitNowhere(const ProjectionParameters& p, const shr::Vec2d* pts, size_t n, double* dx, double* dy);

}  // namespace orv::internal
