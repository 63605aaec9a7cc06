// WarpExpected.h: control points, and fits to them computed independently by warp_expected.py.
#pragma once

#include <cstddef>

#include "orv/warp/WarpDef.h"

namespace orv::test::warp {

struct FitRow {
  int method;
  size_t used;          // control points, from the first of kCloud on
  double meanResidual;  // distance
  double x[10];         // terms of X
  double y[10];         // terms of Y
  double queryX[4];     // images of kQueries
  double queryY[4];
};

struct HelmertRow {
  size_t used;  // control points, from the first of kSheet on
  double meanResidual;
  double abcd[4];
  double image[2];  // of (100.25, 301.5)
};

#include "tests/warp/warp_expected.inc"

/// A warp over the first `used` rows x, y, X, Y.
inline WarpDef MakeWarp(int method, const double (*rows)[4], size_t used) {
  WarpDef def;
  def.SetMethod(static_cast<WarpMethod>(method));
  for (size_t i = 0; i < used; ++i) {
    def.AddSourcePoint(rows[i][0], rows[i][1]);
    def.AddDestinationPoint(rows[i][2], rows[i][3]);
  }
  return def;
}

}  // namespace orv::test::warp
