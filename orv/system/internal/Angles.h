// Angles.h: whether a system's coordinates are longitudes and latitudes, in which unit.
#pragma once

namespace orv {

class ORVDef;

namespace internal {

/// Degrees in one unit of a georeferenced system's coordinates; 0 when they are no longitudes and latitudes.
///
/// They are when the system has no projection or an Unprojected one (1), and when its projection draws angles as they are: an
/// Equidistant Cylindrical with the Equator for its parallel, no false origin (1e-6; the catalogue keeps some systems apart by
/// nanometres) and a scale that makes a whole turn 360 degrees, 400 grads or 2 pi radians (1e-9, relative).  That is how
/// geographic systems in grads or radians, or counted from another meridian, are held.  On a sphere it takes a datum as well:
/// without one it may be a map of the sphere.
double DegreesPerUnit(const ORVDef& system);

}  // namespace internal
}  // namespace orv
