// Method 2: the least squares similarity, X = a x - b y + c, Y = b x + a y + d.

#include "orv/warp/WarpTransformer.h"

#include "orv/core/internal/Fail.h"
#include "orv/warp/WarpTranHelmert.h"
#include "orv/warp/internal/WarpLoop.h"

ORV_UNIT("WarpTranHelmert")

namespace orv {

bool WarpTransformer::InitializeHelmert() {
  const std::vector<shr::Vec2d>& source = m_Def.m_Source;
  if (source.size() < 2) {
    return ORV_FAIL(ErrBadParameter, "Helmert transform requires at least two control points.");
  }

  // 1. The sums: small letters are source, capitals destination coordinates.
  double Sx = 0.0, Sy = 0.0, S2 = 0.0;
  double SX = 0.0, SY = 0.0, SXx = 0.0, SXy = 0.0, SYx = 0.0, SYy = 0.0;
  for (size_t i = 0; i < source.size(); ++i) {
    const double x = source[i].x;
    const double y = source[i].y;
    const double X = m_Def.m_Destination[i].x;
    const double Y = m_Def.m_Destination[i].y;
    Sx += x;
    Sy += y;
    S2 += x * x + y * y;
    SX += X;
    SY += Y;
    SXx += X * x;
    SXy += X * y;
    SYx += Y * x;
    SYy += Y * y;
  }

  // 2. The normal equations, solved.  Deliberate: D = 0 (all source points equal) has no guard; the
  // parameters are then not finite and the step succeeds.
  const double N = static_cast<double>(source.size());
  const double D = S2 - Sx * Sx / N - Sy * Sy / N;
  const double a = (SXx + SYy - SX * Sx / N - SY * Sy / N) / D;
  const double b = (SYx - SXy + SX * Sy / N - SY * Sx / N) / D;
  m_Helm_a = a;
  m_Helm_b = b;
  m_Helm_c = (SX - a * Sx + b * Sy) / N;
  m_Helm_d = (SY - a * Sy - b * Sx) / N;
  return true;
}

bool WarpTransformer::TransformHelmert(shr::Vec2d* points, size_t count) {
  if (!points || count < 1) return ORV_FAIL(ErrCorrupt, "No points to transform.");
  internal::TransformUnmarked(points, count, &lanes::KernelTable::warpHelmert,
                              {m_Helm_a, m_Helm_b, m_Helm_c, m_Helm_d});
  return true;
}

}  // namespace orv
