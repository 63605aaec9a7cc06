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

}  // namespace orv
