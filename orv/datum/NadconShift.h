// NadconShift.h: shifts by the nodes of NADCON grids, over lanes.
//
// Source      [Dew90] for the grids; the rules of choice and shift stand in NadconUtility.h and NadconGrid.h.
// Input       longitude, latitude in degrees.   Output  the same on the other datum.
// Marks       nothing: a point in no grid stays.  (So a marked one does: the marker lies beyond every grid.)
// Departures  the shift is that of one node, nothing is interpolated.
#pragma once

#include "orv/lanes/LaneMath.h"

namespace orv {

struct NadconCells {
  double west, east, south, north;  // the points with a node, edges included; degrees
  double xMin, yMin, dx, dy;        // of the nodes, degrees
  double stride;                    // nodes in a row of the table, an integer
  const double* shifts;             // longitude and latitude shift of each node, arc-seconds, row by row
};

// The grids outlive every call.
struct NadconSet {
  const NadconCells* grids;
  std::size_t count;
};

namespace ORV_ISA {

inline constexpr int kNadconRounds = 100;
inline constexpr double kNadconFirstStep = 1e-7;  // degrees
inline constexpr double kNadconSettled = 1e-10;   // degrees, absolute

inline Mask Contains(const NadconCells& g, Point p) {
  return (p.x >= g.west) & (p.x <= g.east) & (p.y >= g.south) & (p.y <= g.north);
}

/// trunc((x - min) / step + 1) of an x that is above -1 by it.
inline Lanes NadconNode(Lanes x, double min, double step) {
  const Lanes u = (x - min) / step + 1.0;
  return Floor(Select(u < 0.0, 0.0, u));
}

/// The points with their node's shift; those outside stay.
inline Point Shifted(const NadconCells& g, Point p) {
  const Mask outside = !Contains(g, p);
  const Lanes x = Except(p.x, outside, g.xMin), y = Except(p.y, outside, g.yMin);
  const Lanes col = NadconNode(x, g.xMin, g.dx), row = NadconNode(y, g.yMin, g.dy);
  Lanes lon, lat;
  GatherPairs(g.shifts, ToInts(row * g.stride + col), lon, lat);
  return {Except(x + lon / 3600.0, outside, p.x), Except(y + lat / 3600.0, outside, p.y)};
}

inline Point Forward(const NadconCells& g, Point p, Mask) { return Shifted(g, p); }

/// One coordinate of a secant iteration.
struct NadconSecant {
  Lanes previous, previousResidual, guess;

  void Update(Lanes residual, Mask active) {
    const Lanes change = residual - previousResidual;
    // Settled, or both guesses' residuals are the same: no secant.
    const Mask settled = abs(residual) < kNadconSettled, level = change == 0.0;
    const Mask stays = settled | level | !active;
    const Lanes next = guess - residual * (guess - previous) / Except(change, stays, 1.0);
    previous = Select(stays, previous, guess);
    previousResidual = Select(stays, previousResidual, residual);
    guess = Select(stays, guess, next);
  }
};

/// The points that Forward takes to these, of the lanes `wanted`.
inline Point Inverse(const NadconCells& g, Point p, Mask wanted) {
  const auto residual = [&g, p](Lanes x, Lanes y) {
    const Point there = Shifted(g, {x, y});
    return Point{there.x - p.x, there.y - p.y};
  };
  const Point first = residual(p.x, p.y);
  NadconSecant x = {p.x, first.x, p.x + kNadconFirstStep}, y = {p.y, first.y, p.y + kNadconFirstStep};
  Mask active = wanted;
  for (int round = 0; round < kNadconRounds; ++round) {
    const Point left = residual(x.guess, y.guess);
    const Mask xSettled = abs(left.x) < kNadconSettled, ySettled = abs(left.y) < kNadconSettled;
    active = active & !(xSettled & ySettled);
    if (!Any(active)) break;
    x.Update(left.x, active);
    y.Update(left.y, active);
  }
  return {x.guess, y.guess};
}

/// shift(grid, point, lanes) of the lanes that a grid contains, each with the grid that is theirs: of several that
/// contain it the first, but a later one with both spacings smaller takes its place.
template <class F>
inline Point WithinGrids(const NadconSet& set, Point p, F shift) {
  Lanes chosen = -1.0, dx = kInfinity, dy = kInfinity;
  std::size_t first = set.count, last = 0;  // grids that any lane has chosen for a time
  for (std::size_t i = 0; i < set.count; ++i) {
    const NadconCells& g = set.grids[i];
    const Mask inside = Contains(g, p);
    if (!Any(inside)) continue;
    const Mask taken = inside & (g.dx < dx) & (g.dy < dy);
    chosen = Select(taken, static_cast<double>(i), chosen);
    dx = Select(taken, g.dx, dx);
    dy = Select(taken, g.dy, dy);
    first = first < i ? first : i;
    last = i;
  }
  Point out = p;
  for (std::size_t i = first; i <= last && i < set.count; ++i) {
    const Mask here = chosen == static_cast<double>(i);
    if (!Any(here)) continue;
    const NadconCells& g = set.grids[i];
    const Point there = shift(g, Point{Except(p.x, !here, g.xMin), Except(p.y, !here, g.yMin)}, here);
    out = {Select(here, there.x, out.x), Select(here, there.y, out.y)};
  }
  return out;
}

inline Point Forward(const NadconSet& set, Point p) {
  return WithinGrids(set, p,
                     [](const NadconCells& g, Point q, Mask wanted) { return Forward(g, q, wanted); });
}
inline Point Inverse(const NadconSet& set, Point p) {
  return WithinGrids(set, p,
                     [](const NadconCells& g, Point q, Mask wanted) { return Inverse(g, q, wanted); });
}

}  // namespace ORV_ISA
}  // namespace orv
