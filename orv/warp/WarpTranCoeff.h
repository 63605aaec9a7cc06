// WarpTranCoeff.h: an affine map by its coefficients, X = c0 x + c1 y + c2, Y = c3 x + c4 y + c5.
//
// Input       a point of the source plane.   Output  its image in the destination plane.
// Set-up      none: the coefficients are given.      Marks  nothing.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {

struct WarpCoeff {
  double c0, c1, c2, c3, c4, c5;
};

namespace ORV_ISA {

inline Point Forward(const WarpCoeff& c, Point p) {
  return {c.c0 * p.x + c.c1 * p.y + c.c2, c.c3 * p.x + c.c4 * p.y + c.c5};
}

}  // namespace ORV_ISA
}  // namespace orv
