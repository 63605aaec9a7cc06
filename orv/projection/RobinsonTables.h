// RobinsonTables.h: the Robinson projection's parallels, every 5 degrees from the Equator to the pole.
//
// Source      node values: Snyder and Voxland 1989 [SnyVox89], Robinson; cubics between them: a spline
//             through the nodes, in single precision.
// Departures  Deliberate: the distance of 40 degrees is 0.4968 in the cubics, where the published node is
//             0.4958; the rows around it follow that node.
#pragma once

namespace orv {

inline constexpr int kRobinsonIntervals = 18;                  // of 5 degrees
inline constexpr int kRobinsonNodes = kRobinsonIntervals + 1;  // the last row is the pole itself

/// c0 + c1 d + c2 d^2 + c3 d^3, with d in degrees from the row's node, 0 to 5.
inline constexpr int kRobinsonTerms = 4;

/// Length of the parallel, as a fraction of the Equator's.  Single precision: the decimals as doubles would
/// move x by up to 0.5 m on the Earth.
extern const float kRobinsonLength[kRobinsonNodes][kRobinsonTerms];

/// Distance from the Equator, as a fraction of the pole's.  Single precision: 0.25 m in y.
extern const float kRobinsonDistance[kRobinsonNodes][kRobinsonTerms];

/// The published nodes of both.
extern const double kRobinsonLengthNodes[kRobinsonNodes];
extern const double kRobinsonDistanceNodes[kRobinsonNodes];

// ---- the same as the kernels read them -------------------------------------------------------------------

/// In doubles and in pairs, each for all intervals: c0 c1 and c2 c3 of the distance; b1 b2 and b3 b4 of its inverse's
/// start, d = b1 u + b2 u^2 + b3 u^3 + b4 u^4 with u = distance - c0; c0 c1 and c2 c3 of the length.
struct RobinsonPairs {
  double distance[2][kRobinsonIntervals][2];
  double start[2][kRobinsonIntervals][2];
  double length[2][kRobinsonIntervals][2];
};
extern const RobinsonPairs kRobinsonPairs;

/// Stirling's formula to the second difference, Z = z0 + p z1 + p^2 z2 with p from 0 to 1, through the published nodes,
/// which go on across the Equator: X[-1] = X[1], Y[-1] = -Y[1].
///
/// z0 = Z[i], z1 = (Z[i+1] - Z[i-1])/2, z2 = (Z[i+1] - 2 Z[i] + Z[i-1])/2.
struct SterlingPairs {
  double distance[kRobinsonIntervals][2];  // y0 y1
  double length[kRobinsonIntervals][2];    // x0 x1
  double seconds[kRobinsonIntervals][2];   // y2 x2
};
extern const SterlingPairs kSterlingPairs;

/// The interval that a distance lies in.  Of the distances that are next to k/32, at most 1/64 away, those below `node`
/// lie in interval `before` and the others in the one after it.
struct RobinsonSearch {
  struct {
    double node;  // 2 where all lie in the same one
    double before;
  } at[33];
};
extern const RobinsonSearch kRobinsonSearch;  // in the cubics
extern const RobinsonSearch kSterlingSearch;  // in the published nodes

}  // namespace orv
