// WarpTranOffset.h: displacement, X = x + dx, Y = y + dy.
//
// Input       a point of the source plane.   Output  its image in the destination plane.
// Set-up      the mean shift of the control points.      Marks  nothing.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {

struct WarpOffset {
  double dx, dy;
};

namespace ORV_ISA {

inline Point Forward(const WarpOffset& c, Point p) { return {p.x + c.dx, p.y + c.dy}; }

}  // namespace ORV_ISA
}  // namespace orv
