// WarpTranHelmert.h: similarity, X = a x - b y + c, Y = b x + a y + d.
//
// Input       a point of the source plane.   Output  its image in the destination plane.
// Set-up      the least squares fit of WarpTranHelmert.cpp.      Marks  nothing.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {

struct WarpHelmert {
  double a, b, c, d;
};

namespace ORV_ISA {

inline Point Forward(const WarpHelmert& h, Point p) {
  return {h.a * p.x - h.b * p.y + h.c, h.b * p.x + h.a * p.y + h.d};
}

}  // namespace ORV_ISA
}  // namespace orv
