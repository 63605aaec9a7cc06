// ClipPolygon.h: polygons and polylines cut down to the usable area of a projection.
//
// How a polygon is clipped
//
//   The plane is that of longitude and latitude; the rings are read under the even-odd rule.
//
//   1. Each ring is cut at the rim (ClipEdge.h).  What is left of it is either the whole ring or runs: chains
//      of edges that begin where the ring enters the area and end where it leaves it.
//   2. Where the rim crosses a ring it passes from the inside of the polygon to the outside or back. So the
//      crossings on one curve of the rim, sorted along it, are joined in neighbouring pairs, and one bit for
//      each curve says which neighbours: whether one point of it, in the middle between two crossings, lies in
//      the polygon.  On a curve without ends this needs no look: it begins outside.
//      This is what makes the gaps independent of each other: a ring that leaves and enters several times, a
//      hole that reaches the rim, an island that touches it twice, all come apart or together here, and no two
//      gaps share a part of the rim.  Where a ring leaves and enters once it gives that gap.
//   3. Runs and gaps are followed to closed rings, starting with a run in its own direction; so the inside of
//      the polygon stays on its side, and with it the orientation. (Only in a polygon whose holes turn the
//      same way as its outer ring a run may have to be passed backward.)
//   4. Each gap is traced with FollowClipEdge; a trace is repeated more closely where it strays from the rim by
//      more than the tolerance, or where a chord of it cuts off a part of the coast (ClipTrace.h).
//   5. Curves of the rim that no ring crosses and that lie in the polygon become rings themselves: the outer
//      ring of a polygon that contains the whole area, a hole around what the area leaves out.
//   6. The rings are nested by looking to the left from a point of each, and handed over: each ring of even
//      depth with the rings directly within it.
//
//   The order of the crossings is that of crossings found to the last digit; the points of the rings are those
//   found to 0.001 degree. Copies of the area at every turn of longitude are curves of their own.
//
//   Work: linear in the points, n log n in the crossings; nesting looks at each edge once for each ring that
//   lies at its height, and a look whether a point lies in the polygon is linear, once for each curve.
//
// Deliberate limits: an edge whose ends are both outside is outside, one whose ends are both inside is inside,
// whatever lies between; edges should be short against the area.
#pragma once

#include "orv/core/Export.h"
#include "orv/projection/ProjectionClip.h"
#include "orv/projection/Projector.h"
#include "orv/projection/internal/ClipTrace.h"

namespace orv::internal {

/// Clips one polyline, at least two points, and hands over each run of inside edges.  False: an edge could not
/// be classified, or the callback said no.
bool ClipPolyline(const ClipArea& area, size_t count, const shr::Vec2d* points, void* context,
                  ORVPolylineCallback callback);

/// A ring of a polygon, at least two points; the last may repeat the first.
struct ClipRing {
  const shr::Vec2d* points;
  size_t count;
};

/// Clips one polygon; hands over its pieces to the one callback and then the visible outline of each ring, its
/// inside runs without traced rim, to the other.  False as above.
///
/// A polygon wholly inside comes in one call with its rings unchanged, but for those with fewer than three
/// edges, which never come.  A ring repeats its first point at its end if the ring did that it begins with.
bool ClipPolygon(const ClipArea& area, const ClipOptions& options, const std::vector<ClipRing>& rings,
                 void* context, ORVPolygonCallback onPolygon, ORVPolylineCallback onOutline);

/// Where a ring lies among others.
struct RingPlace {
  long parent = -1;    ///< the ring directly around it, or none
  bool bHole = false;  ///< an odd number of rings lie around it
};

/// The places of rings that do not cross; they may touch.
std::vector<RingPlace> Nesting(const std::vector<std::vector<shr::Vec2d>>& rings);

/// Twice the area of a ring, positive when it turns counterclockwise.
double TwiceArea(const std::vector<shr::Vec2d>& ring);

/// For the command line.
struct ProjectorClip {
  /// Cuts to a box, once and without a copy: of the map's longitudes and latitudes, not of a projection.
  static ORV_API bool BoxPolyline(const ClipBox& window, void* context, size_t n, const shr::Vec2d* points,
                                  ORVPolylineCallback callback);
  static ORV_API bool BoxPolygon(const ClipBox& window, const std::vector<ClipRing>& rings, void* context,
                                 ORVPolygonCallback onPolygon, ORVPolylineCallback onOutline);

  /// Projector::PreclipPolygon with the options as an argument.
  static ORV_API void Polygon(Projector& projector, const ClipOptions& options, void* context,
                              size_t ringCount, const size_t* pointsPerRing, const shr::Vec2d* points,
                              ORVPolygonCallback onPolygon, ORVPolylineCallback onOutline);
};

}  // namespace orv::internal
