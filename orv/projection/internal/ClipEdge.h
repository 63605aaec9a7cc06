// ClipEdge.h: where an edge crosses the rim of a projection's usable area, found with the inside test alone.
#pragma once

#include <cstddef>
#include <vector>

#include "orv/projection/ProjActor.h"
#include "orv/projection/ProjCSegList.h"

namespace orv::internal {

/// A range of the plane, degrees.
struct ClipBox {
  shr::Vec2d low, high;
  bool bAny = false;

  void Add(const shr::Vec2d& p);
  bool Holds(const ClipBox& other) const;
};

/// The usable area: an engine's inside test.  Without an engine everything is outside.
class ClipArea {
 public:
  /// @param degrees  the definition's parameters; kept by reference, like the engine.
  ClipArea(const ProjActor* actor, const ProjectionParameters& degrees)
      : m_pActor(actor), m_pDegrees(&degrees) {}
  /// What lies within a box, its sides left out: for pictures of a part of the globe.
  explicit ClipArea(const ClipBox& window) : m_Window(window) {}

  bool HasEngine() const { return m_pActor != nullptr; }
  const ClipBox& Window() const { return m_Window; }
  const ProjectionParameters& Degrees() const { return *m_pDegrees; }
  bool Inside(const shr::Vec2d& at) const {
    if (m_pActor) return m_pActor->IsLatLonInside(*m_pDegrees, &at);
    return m_Window.bAny && m_Window.low.x < at.x && at.x < m_Window.high.x && m_Window.low.y < at.y &&
           at.y < m_Window.high.y;
  }

 private:
  const ProjActor* m_pActor = nullptr;
  const ProjectionParameters* m_pDegrees = nullptr;
  ClipBox m_Window;
};

/// What an edge does.
enum EdgeCourse : int { EdgeFailed = 0, EdgeInside = 1, EdgeOutside = 2, EdgeEntering = 3, EdgeLeaving = 4 };

/// Tells the course of the edge from p to q, and where it crosses the rim.
///
/// Deliberate: only the ends are looked at.  Both outside is outside, whatever lies between.  Else the edge is
/// halved until its inside end and its outside end differ by at most 0.001 in both coordinates, or no double
/// lies between them; the crossing is the last inside point, not a midpoint. An edge that short to begin with
/// crosses at its inside end itself.  Failed: a null argument, or an edge with one end inside and an infinite
/// or NaN coordinate.
///
/// @param crossing  receives the crossing of an edge that enters or leaves; else it is not touched.
EdgeCourse FindCrossing(const ClipArea& area, const shr::Vec2d* p, const shr::Vec2d* q, shr::Vec2d* crossing);
/// The same where it is known already which ends are inside.
EdgeCourse FindCrossing(const ClipArea& area, const shr::Vec2d& p, bool pInside, const shr::Vec2d& q,
                        bool qInside, shr::Vec2d& crossing);

/// The crossing between an inside and an outside point to the last digit: for the order of crossings, which
/// 0.001 degree cannot tell.
shr::Vec2d SharpCrossing(const ClipArea& area, shr::Vec2d inside, shr::Vec2d outside);

/// Marks every segment inside or outside and cuts those that cross, the second half standing behind the
/// first. False: an edge has failed.
bool Classify(const ClipArea& area, CSegList& list);

/// Traces the rim between two points of it.  The chord is divided into probes + 2 parts; at the ends of the
/// first `probes` parts (deliberate: 1/7 to 5/7 for five, not centred) an edge as long as the chord is laid
/// across it, from the right of the chord to its left, and where that edge crosses the rim a point is added to
/// out.  A probe without a crossing adds nothing.
///
/// False: a null point.  When the points differ by less than 1e-6 in both coordinates nothing is done, and out
/// keeps what it held (deliberate); else out is emptied first.
bool FollowClipEdge(const ClipArea& area, const shr::Vec2d* from, const shr::Vec2d* to,
                    std::vector<shr::Vec2d>& out, size_t probes);

}  // namespace orv::internal
