// RegistrationWarp.h: the exact interpolants of ImageRegistration.h, over lanes.
//
// Source      [Duc77] for r^2 ln r and r^3, [Wen05] for the other phi, [She68] for the inverse distance.
// Input       a point of the source plane.   Output  its image in the destination plane.
// Set-up      the fit of ImageRegistration.cpp.
// Marks       nothing.  A point that is not finite, or so far off that r^2 overflows, gives what comes of it.
#pragma once

#include "orv/lanes/LaneMath.h"

namespace orv {

/// A control point in units of the source's box.  w is the spline's weight, or the residual of the inverse distance.
struct RegistrationNode {
  double u, v;
  double wX, wY;
};

/// One axis of a box of control points.
struct RegistrationAxis {
  double origin, extent;
};

struct RegistrationWarp {
  RegistrationAxis sourceX, sourceY, targetX, targetY;
  double a[3], b[3];              // affine parts of X and Y: a0 + a1 u + a2 v
  const RegistrationNode* nodes;  // outlive the call; none: affine
  std::size_t count;
};

namespace ORV_ISA {

inline Lanes ToBox(RegistrationAxis axis, Lanes value) { return (value - axis.origin) / axis.extent; }
inline Lanes FromBox(RegistrationAxis axis, Lanes value) { return axis.origin + axis.extent * value; }

/// exp(-x) is 0 from here on, and no larger x must reach it: the compiler computes with it all the same.
inline constexpr double kExpIsZero = 708.0;

/// phi of methods 0 to 4 (shr::WarpingMethod) as a function of r^2.
template <int kMethod>
inline Lanes Phi(Lanes r2) {
  if constexpr (kMethod == 0) {  // r^2 ln r = (r^2 ln r^2) / 2; below 1e-305 it counts as 0
    const Mask tiny = r2 < 2.2250738585072014e-308;
    const Lanes safe = Except(r2, tiny, 1.0);
    return 0.5 * safe * log(safe);
  } else if constexpr (kMethod == 1) {
    return r2 * sqrt(r2);
  } else if constexpr (kMethod == 2) {
    return exp(-Clamp(sqrt(r2), kExpIsZero));
  } else if constexpr (kMethod == 3) {
    return exp(-Clamp(r2, kExpIsZero));
  } else {
    static_assert(kMethod == 4);
    return 1.0 / (1.0 + r2);
  }
}

inline Lanes SquaredDistance(const RegistrationNode& node, Lanes u, Lanes v) {
  return Square(u - node.u) + Square(v - node.v);
}

/// The affine part and the sum of w phi over the nodes in their order.
template <int kMethod>
inline Point Interpolate(const RegistrationWarp& c, Lanes u, Lanes v) {
  Point sum = {c.a[0] + c.a[1] * u + c.a[2] * v, c.b[0] + c.b[1] * u + c.b[2] * v};
  for (const RegistrationNode* node = c.nodes; node != c.nodes + c.count; ++node) {
    const Lanes phi = Phi<kMethod>(SquaredDistance(*node, u, v));
    sum.x = sum.x + node->wX * phi;
    sum.y = sum.y + node->wY * phi;
  }
  return sum;
}

/// [She68].  The weights are taken relative to that of the nearest node, 1 / r^2 to nearest / r^2, so that none
/// overflows.  At a node its residual alone counts.
template <>
inline Point Interpolate<5>(const RegistrationWarp& c, Lanes u, Lanes v) {
  const Point affine = {c.a[0] + c.a[1] * u + c.a[2] * v, c.b[0] + c.b[1] * u + c.b[2] * v};
  if (c.count == 0) return affine;
  Lanes nearest = SquaredDistance(c.nodes[0], u, v);
  Lanes atX = c.nodes[0].wX, atY = c.nodes[0].wY;  // residuals of the nearest node
  for (const RegistrationNode* node = c.nodes + 1; node != c.nodes + c.count; ++node) {
    const Lanes r2 = SquaredDistance(*node, u, v);
    const Mask nearer = r2 < nearest;
    nearest = Select(nearer, r2, nearest);
    atX = Select(nearer, node->wX, atX);
    atY = Select(nearer, node->wY, atY);
  }
  const Mask on = nearest == 0.0;
  Lanes sum = 0.0, sumX = 0.0, sumY = 0.0;
  for (const RegistrationNode* node = c.nodes; node != c.nodes + c.count; ++node) {
    const Lanes weight = nearest / Except(SquaredDistance(*node, u, v), on, 1.0);
    sum = sum + weight;
    sumX = sumX + weight * node->wX;
    sumY = sumY + weight * node->wY;
  }
  const Lanes all = Except(sum, on, 1.0);
  const Point between = {affine.x + sumX / all, affine.y + sumY / all};
  return {Except(between.x, on, affine.x + atX), Except(between.y, on, affine.y + atY)};
}

template <int kMethod>
inline Point Forward(const RegistrationWarp& c, Point p) {
  const Point image = Interpolate<kMethod>(c, ToBox(c.sourceX, p.x), ToBox(c.sourceY, p.y));
  return {FromBox(c.targetX, image.x), FromBox(c.targetY, image.y)};
}

}  // namespace ORV_ISA
}  // namespace orv
