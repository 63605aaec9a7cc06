// Method 7: an affine map by its six coefficients, X = c0 x + c1 y + c2, Y = c3 x + c4 y + c5.

#include "orv/warp/WarpTransformer.h"

#include "orv/core/internal/Fail.h"
#include "orv/warp/WarpTranCoeff.h"
#include "orv/warp/internal/WarpLoop.h"

ORV_UNIT("WarpTranCoeff")

namespace orv {

bool WarpTransformer::InitializeCoeff() {
  if (m_Def.m_Method != WarpMethodAffineWithCoefficients) {
    return ORV_FAIL(ErrCorrupt, "Bad transform method.");
  }
  return true;
}

bool WarpTransformer::TransformCoeff(shr::Vec2d* points, size_t count) {
  if (!points || count < 1) return ORV_FAIL(ErrCorrupt, "No points to transform.");
  WarpCoeff c;
  m_Def.GetCoefficients(c.c0, c.c1, c.c2, c.c3, c.c4, c.c5);
  internal::TransformUnmarked(points, count, &lanes::KernelTable::warpCoeff, c);
  return true;
}

}  // namespace orv
