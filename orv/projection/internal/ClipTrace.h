// ClipTrace.h: the rim between two crossings, as points.
#pragma once

#include <vector>

#include "orv/projection/internal/ClipRim.h"

namespace orv::internal {

/// How closely the rim is traced.
struct ClipOptions {
  size_t probes;     ///< of FollowClipEdge, on each part of a gap
  double tolerance;  ///< degrees: a part that strays farther from the rim is halved
  double step;       ///< degrees: no traced edge is longer
  double approach;   ///< nor longer than this part of its distance to a point that the map shows as a line
};

/// Five probes on each gap, which stand in the ring wherever they lie on the gap.  The tolerance catches what five
/// probes cannot follow at all: the long way around a cap, or a bend of the rim that they cut off, in the plane or on
/// the map.
inline constexpr ClipOptions kFiveProbes = {5, 2.0, 1e300, 1.0};
/// Within 0.01 degree of the rim: 0.001 is the crossings' own, and room is left for the chords.
inline constexpr ClipOptions kRefined = {5, 0.005, 0.1, 0.1};

/// A part of the rim that bounds the clipped polygon: from one crossing to its neighbour on the rim.
struct ClipGap {
  long piece = 0;
  double s0 = 0.0, s1 = 0.0;  ///< either may be the larger; on a closed curve at most one turn apart
  shr::Vec2d from, to;
  bool bStraight = false;          ///< the crossings have no neighbour: a straight edge
  double tolerance = 0.0;          ///< of the present trace
  std::vector<shr::Vec2d> points;  ///< the trace without its ends
};

/// Fills the gap's points: the probes of the whole gap that lie on it in order, and between two of them whose edge
/// strays too far those of its parts, from corner to corner.
void TraceGap(const ClipArea& area, const ClipRim& rim, const ClipOptions& options, ClipGap& gap);

/// A run of edges.
struct ClipChain {
  const shr::Vec2d* points;
  size_t count;
  bool bClosed;  ///< an edge goes from the last point to the first
};

/// Traces again, each time four times closer, those gaps whose traced edges meet an edge of the chains or of
/// another gap other than at a common end, or pass a whole ring by: what lies between the rim and a chord that cuts
/// it off.
void SeparateGaps(const ClipArea& area, const ClipRim& rim, const ClipOptions& options,
                  const std::vector<ClipChain>& chains, std::vector<ClipGap>& gaps);

}  // namespace orv::internal
