// NTv2Shift.h: shifts by the grids of an NTv2 file, over lanes.
//
// Source      [Jun95] for the grids; the rules of choice and shift stand in NTv2Grid.h.
// Input       longitude, latitude in radians.   Output  the same on the other datum.
// Marks       nothing: a point in no grid, and one for which no shift can be computed, stays.  (So a marked one does: the
//             marker lies beyond every grid.)
#pragma once

#include "orv/lanes/LaneMath.h"

namespace orv {

struct NTv2Cells {
  double west, south, east, north;  // radians, edges included
  double perLon, perLat;            // columns and rows per radian
  double mostLon, mostLat;          // the largest offsets from west and south that have a shift
  double columns, rows;             // integers, at least 2
  const double* nodes;              // longitude and latitude shift of each node, radians, row by row
  std::size_t child, childCount;    // NTv2Set::children of this grid
  bool certain;                     // to contain a point is enough to be the grid that shifts it
};

// The grids outlive every call.
struct NTv2Set {
  const NTv2Cells* grids;
  const std::size_t* children;  // indices of grids, each grid's own in the order of the file
  std::size_t top, topCount;    // those of the top level
};

namespace ORV_ISA {

inline constexpr int kNTv2Rounds = 11;
inline constexpr double kNTv2Settled = 1e-12;  // radians, absolute
inline constexpr double kNTv2Edge = 1e-12;     // radians: rounding of an offset, not a margin (6 micrometres)

inline Mask Contains(const NTv2Cells& g, Point p) {
  return (p.y >= g.south) & (p.y <= g.north) & (p.x >= g.west) & (p.x <= g.east);
}

/// Into 0 to 2 pi: pi is taken off, the rest brought into -pi to pi, and pi put back.
inline Lanes WrappedOffset(Lanes radians) {
  const Lanes centred = radians - kPi;
  const Lanes back = centred + kPi;
  if (!Any(!((back >= 0.0) & (back < 6.28)))) return back;  // no turn to take off: the same bits
  return (centred - 2.0 * kPi * Floor(back / (2.0 * kPi))) + kPi;
}

/// Into 0 to `most`; a NaN, which the smallest spacings make, gives 0.
inline Lanes Within(Lanes value, double most) {
  const Lanes notBelow = Select(value > 0.0, value, 0.0);
  return Select(notBelow < most, notBelow, most);
}

/// The cell of a coordinate in units of the spacing; that on the east or north edge belongs to the last one.
inline Lanes CellOf(Lanes u, double nodes) {
  const Lanes cell = Floor(u);
  return Select(cell < nodes - 2.0, cell, nodes - 2.0);
}

struct NTv2Shifts {
  Lanes lon, lat;
  Mask found;
};

/// The shifts, bilinear within a cell.  The longitude is taken relative to the western edge and wrapped.
inline NTv2Shifts ShiftsAt(const NTv2Cells& g, Point p) {
  const Lanes lon = WrappedOffset(p.x - g.west);
  const Lanes lat = p.y - g.south;
  const Mask outside = !((lon <= g.mostLon) & (lat >= -kNTv2Edge) & (lat <= g.mostLat));
  const Lanes u = Within(Except(lon, outside, 0.0) * g.perLon, g.columns - 1.0);
  const Lanes v = Within(Except(lat, outside, 0.0) * g.perLat, g.rows - 1.0);
  const Lanes col = CellOf(u, g.columns), row = CellOf(v, g.rows);
  const Lanes s = u - col, t = v - row;
  const Ints south = ToInts(row * g.columns + col), north = ToInts((row + 1.0) * g.columns + col);
  Lanes swLon, swLat, seLon, seLat, nwLon, nwLat, neLon, neLat;
  GatherPairs(g.nodes, south, swLon, swLat);
  GatherPairs(g.nodes + 2, south, seLon, seLat);
  GatherPairs(g.nodes, north, nwLon, nwLat);
  GatherPairs(g.nodes + 2, north, neLon, neLat);
  const Lanes southWest = (1.0 - s) * (1.0 - t);
  const Lanes southEast = s * (1.0 - t);
  const Lanes northWest = (1.0 - s) * t;
  const Lanes northEast = s * t;
  const Lanes dx = southWest * swLon + southEast * seLon + northWest * nwLon + northEast * neLon;
  const Lanes dy = southWest * swLat + southEast * seLat + northWest * nwLat + northEast * neLat;
  // Shifts are float32 seconds: no sum of finite ones overflows.
  const Mask finite = IsFinite(dx + dy), found = finite & !outside;
  return {dx, dy, found};
}

/// The points with their shifts; those that have none stay, and leave `lanes`.
inline Point Forward(const NTv2Cells& g, Point p, Mask& lanes) {
  const NTv2Shifts shift = ShiftsAt(g, p);
  lanes = lanes & shift.found;
  return {Select(lanes, p.x + shift.lon, p.x), Select(lanes, p.y + shift.lat, p.y)};
}

/// A search for the points that Forward takes to some, of the lanes that are still at it.
struct NTv2Search {
  const NTv2Cells* grid;
  double* xy;  // where the points stand
  Mask active;
  Point p, guess;
};

/// The first guess.  Lanes without a shift leave.
inline void Begin(NTv2Search& s) {
  const NTv2Shifts shift = ShiftsAt(*s.grid, s.p);
  s.active = s.active & shift.found;
  s.guess = {s.p.x - shift.lon, s.p.y - shift.lat};
}

/// A better guess.  Returns the lanes that are settled by it; they leave, and so do those without a shift.
///
/// Deliberate: a lane is settled as soon as ONE of its residuals is 1e-12 or less.
inline Mask Refine(NTv2Search& s) {
  const Point at = {Except(s.guess.x, !s.active, s.grid->west), Except(s.guess.y, !s.active, s.grid->south)};
  const NTv2Shifts shift = ShiftsAt(*s.grid, at);
  const Mask found = s.active & shift.found;
  const Lanes dx = at.x + shift.lon - s.p.x, dy = at.y + shift.lat - s.p.y;
  s.guess = {at.x - dx, at.y - dy};
  const Mask xLarge = abs(dx) > kNTv2Settled, yLarge = abs(dy) > kNTv2Settled;
  s.active = found & xLarge & yLarge;
  return found & !s.active;
}

/// The index of the grid that shifts a point: the first of the top level that contains it, then the first of its
/// children, and so on down; -1 for none.
inline long long GridOf(const NTv2Set& set, double x, double y) {
  long long chosen = -1;
  std::size_t at = set.top, count = set.topCount;
  while (count > 0) {
    const std::size_t i = set.children[at];
    const NTv2Cells& g = set.grids[i];
    if ((y >= g.south) & (y <= g.north) & (x >= g.west) & (x <= g.east)) {
      chosen = static_cast<long long>(i);
      at = g.child;
      count = g.childCount;
    } else {
      ++at;
      --count;
    }
  }
  return chosen;
}

/// Calls f(grid, lanes) for each grid that shifts points of a group, with those of its lanes.
///
/// @param last  a certain grid that has shifted the points before these, or null; spares the walk.
template <class F>
inline void EachGrid(const NTv2Set& set, Point p, const NTv2Cells*& last, F f) {
  if (last) {
    const Mask inside = Contains(*last, p);
    if (!Any(!inside)) return f(*last, inside);
  }
  double x[kLanes], y[kLanes];
  StoreLanes(x, p.x);
  StoreLanes(y, p.y);
  double grids[kLanes];  // indices
  for (std::size_t k = 0; k < kLanes; ++k) {
    grids[k] = static_cast<double>(GridOf(set, x[k], y[k]));
  }
  const Lanes chosen = LoadLanes(grids);
  last = nullptr;
  for (std::size_t k = 0; k < kLanes; ++k) {
    if (grids[k] < 0.0) continue;
    const NTv2Cells& g = set.grids[static_cast<std::size_t>(grids[k])];
    if (g.certain) last = &g;
    bool before = false;
    for (std::size_t j = 0; j < k; ++j) before |= grids[j] == grids[k];
    if (!before) f(g, chosen == grids[k]);
  }
}

inline Point OnLanes(Point p, Mask lanes, double x, double y) {
  return {Except(p.x, !lanes, x), Except(p.y, !lanes, y)};
}

/// Searches for 16 points side by side: a round of one waits for the round before it, a round of another does not.
class NTv2Searches {
 public:
  void Add(const NTv2Cells& g, double* xy, Point p, Mask lanes) {
    NTv2Search& s = m_Searches[m_Count];
    s = {&g, xy, lanes, OnLanes(p, lanes, g.west, g.south), p};
    Begin(s);
    if (Any(s.active) && ++m_Count == kMost) Finish();
  }
  void Finish() {
    for (int round = 0; round < kNTv2Rounds && m_Count > 0; ++round) {
      std::size_t left = 0;
      for (std::size_t i = 0; i < m_Count; ++i) {
        NTv2Search& s = m_Searches[i];
        const Mask settled = Refine(s);
        if (Any(settled)) {
          Point p;
          Load(s.xy, p.x, p.y);
          Store(s.xy, Select(settled, s.guess.x, p.x), Select(settled, s.guess.y, p.y));
        }
        if (!Any(s.active)) continue;
        if (left != i) m_Searches[left] = s;
        ++left;
      }
      m_Count = left;
    }
    m_Count = 0;
  }

 private:
  static constexpr std::size_t kMost = 16 / kLanes;
  NTv2Search m_Searches[kMost];
  std::size_t m_Count = 0;
};

}  // namespace ORV_ISA
}  // namespace orv
