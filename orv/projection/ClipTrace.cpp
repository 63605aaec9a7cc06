#include <algorithm>
#include <cmath>

#include "orv/projection/internal/ClipTrace.h"

namespace orv::internal {

namespace {

constexpr int kDeepest = 48;        // halvings of a gap
constexpr double kShort = 0.002;    // degrees: twice the crossings' own tolerance
constexpr double kClosest = 0.001;  // degrees: the crossings' own tolerance
constexpr double kSample = 1e-6;    // degrees: how far inside the rim it is sampled

double Distance(const shr::Vec2d& a, const shr::Vec2d& b) { return std::hypot(a.x - b.x, a.y - b.y); }

double DistanceToEdge(const shr::Vec2d& p, const shr::Vec2d& a, const shr::Vec2d& b) {
  const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
  if (square == 0.0) return Distance(p, a);
  const double t = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0);
  return Distance(p, shr::Vec2d(a.x + t * dx, a.y + t * dy));
}

struct Stop {
  shr::Vec2d at;
  double s;
};

class Tracer {
 public:
  Tracer(const ClipArea& area, const ClipRim& rim, const ClipOptions& options, ClipGap& gap)
      : m_Area(area), m_Rim(rim), m_Options(options), m_Gap(gap) {}

  /// @param bProbeWhole  the probes of the whole gap stand in the trace wherever they lie on the gap in order; parts
  ///                     come between them.
  void Run(bool bProbeWhole) {
    m_Gap.points.clear();
    if (m_Gap.bStraight) return;
    const Stop from = {m_Gap.from, m_Gap.s0}, to = {m_Gap.to, m_Gap.s1};
    std::vector<Stop> stops = {from};
    if (bProbeWhole) {
      std::vector<shr::Vec2d> found;
      FollowClipEdge(m_Area, &from.at, &to.at, found, m_Options.probes);
      if (!Place(from, to, found, stops)) stops = {from};
    }
    stops.push_back(to);
    for (size_t i = 0; i + 1 < stops.size(); ++i) {
      if (i > 0) m_Gap.points.push_back(stops[i].at);
      if (!IsClose({stops[i], stops[i + 1]})) FromCornerToCorner(stops[i], stops[i + 1]);
    }
  }

 private:
  // The points between two stops, with the corners among them.
  void FromCornerToCorner(const Stop& from, const Stop& to) {
    Stop last = from;
    ForCorners(from.s, to.s, [&](double corner) {
      const Stop stop = {m_Rim.InsideAt(m_Gap.piece, corner), corner};
      Leg(last, stop, 0);
      m_Gap.points.push_back(stop.at);
      last = stop;
    });
    Leg(last, to, 0);
  }

  // Calls visit(s) for each corner strictly between two places, in their direction.
  template <class Visit>
  void ForCorners(double s0, double s1, Visit visit) const {
    if (!m_Rim.HasCorners()) return;
    const bool bUp = s1 >= s0;
    double corner = bUp ? std::floor(s0) + 1.0 : std::ceil(s0) - 1.0;
    for (; bUp ? corner < s1 : corner > s1; corner += bUp ? 1.0 : -1.0) visit(corner);
  }

  // The points between two stops.
  void Leg(const Stop& from, const Stop& to, int depth) {
    std::vector<shr::Vec2d> found;
    FollowClipEdge(m_Area, &from.at, &to.at, found, m_Options.probes);
    std::vector<Stop> stops = {from};
    const bool bOnPath = Place(from, to, found, stops);
    stops.push_back(to);
    if (depth >= kDeepest || (bOnPath && IsClose(stops))) {
      for (size_t i = 1; i + 1 < stops.size(); ++i) m_Gap.points.push_back(stops[i].at);
      return;
    }
    const double s = 0.5 * (from.s + to.s);
    const Stop middle = {m_Rim.InsideAt(m_Gap.piece, s), s};
    Leg(from, middle, depth + 1);
    m_Gap.points.push_back(middle.at);
    Leg(middle, to, depth + 1);
  }

  // Appends the points as stops; false when one lies on another part of the rim or out of order.
  bool Place(const Stop& from, const Stop& to, const std::vector<shr::Vec2d>& found,
             std::vector<Stop>& stops) const {
    for (const shr::Vec2d& p : found) {
      const RimSpot spot = m_Rim.Locate(p);
      if (spot.piece != m_Gap.piece) return false;
      double s = spot.s;
      if (m_Rim.IsClosed()) s += m_Rim.Turn() * std::round((0.5 * (from.s + to.s) - s) / m_Rim.Turn());
      const double last = stops.back().s;
      const bool bInOrder = to.s >= from.s ? last <= s && s <= to.s : to.s <= s && s <= last;
      if (bInOrder) {
        stops.push_back({p, s});
      } else if (Distance(p, from.at) > kShort && Distance(p, to.at) > kShort) {
        return false;
      }
    }
    return true;
  }

  bool IsClose(const std::vector<Stop>& stops) const {
    for (size_t i = 0; i + 1 < stops.size(); ++i) {
      const Stop &a = stops[i], &b = stops[i + 1];
      const double length = Distance(a.at, b.at);
      if (length > std::min(m_Options.step, m_Rim.LongestEdge())) return false;
      const double toSingular = std::min(m_Rim.ToSingular(a.at), m_Rim.ToSingular(b.at));
      if (length > std::max(kShort, m_Options.approach * toSingular)) return false;
      bool bStrays = false;
      const auto look = [&](double s) {
        const shr::Vec2d rim = m_Rim.At(m_Gap.piece, s, kSample);
        // The ends themselves lie up to the crossings' tolerance inside.
        const double most = std::min(m_Gap.tolerance, m_Rim.Fineness()) + kShort;
        bStrays = bStrays || DistanceToEdge(rim, a.at, b.at) > most;
      };
      for (double part : {0.25, 0.5, 0.75}) look(a.s + part * (b.s - a.s));
      ForCorners(a.s, b.s, look);
      if (bStrays) return false;
    }
    return true;
  }

  const ClipArea& m_Area;
  const ClipRim& m_Rim;
  const ClipOptions& m_Options;
  ClipGap& m_Gap;
};

// ---- traced edges that meet others ------------------------------------------------------------------------

struct TracedEdge {
  shr::Vec2d a, b;
  size_t gap;
};

double Turn(const shr::Vec2d& a, const shr::Vec2d& b, const shr::Vec2d& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool Same(const shr::Vec2d& a, const shr::Vec2d& b) { return a.x == b.x && a.y == b.y; }

bool Meet(const TracedEdge& e, const shr::Vec2d& c, const shr::Vec2d& d) {
  if (std::max(c.x, d.x) < std::min(e.a.x, e.b.x) || std::min(c.x, d.x) > std::max(e.a.x, e.b.x) ||
      std::max(c.y, d.y) < std::min(e.a.y, e.b.y) || std::min(c.y, d.y) > std::max(e.a.y, e.b.y)) {
    return false;
  }
  if (Same(e.a, c) || Same(e.a, d) || Same(e.b, c) || Same(e.b, d)) return false;
  const double c1 = Turn(e.a, e.b, c), d1 = Turn(e.a, e.b, d);
  const double a1 = Turn(c, d, e.a), b1 = Turn(c, d, e.b);
  const auto apart = [](double u, double v) { return (u > 0.0 && v > 0.0) || (u < 0.0 && v < 0.0); };
  return !apart(c1, d1) && !apart(a1, b1);
}

// The traced edges in the cells of a grid.
class EdgeGrid {
 public:
  explicit EdgeGrid(std::vector<TracedEdge> edges) : m_Edges(std::move(edges)) {
    for (const TracedEdge& e : m_Edges) {
      m_Box.Add(e.a);
      m_Box.Add(e.b);
    }
    m_Side = std::clamp<size_t>(static_cast<size_t>(std::sqrt(static_cast<double>(m_Edges.size()))), 1, 512);
    m_Cells.resize(m_Side * m_Side);
    for (size_t i = 0; i < m_Edges.size(); ++i) {
      ForCells(m_Edges[i].a, m_Edges[i].b, [&](std::vector<size_t>& cell) { cell.push_back(i); });
    }
  }

  /// Calls found(gap) for each traced edge that an edge meets.
  template <class Found>
  void Query(const shr::Vec2d& c, const shr::Vec2d& d, size_t ownGap, Found found) {
    ForCells(c, d, [&](std::vector<size_t>& cell) {
      for (size_t i : cell) {
        if (m_Edges[i].gap != ownGap && Meet(m_Edges[i], c, d)) found(m_Edges[i].gap);
      }
    });
  }

  const std::vector<TracedEdge>& Edges() const { return m_Edges; }

 private:
  size_t Cell(double at, double low, double high) const {
    const double part = high > low ? (at - low) / (high - low) : 0.0;
    return static_cast<size_t>(std::clamp(part, 0.0, 1.0) * static_cast<double>(m_Side - 1) + 0.5);
  }

  template <class Visit>
  void ForCells(const shr::Vec2d& a, const shr::Vec2d& b, Visit visit) {
    if (!m_Box.bAny || !(std::max(a.x, b.x) >= m_Box.low.x && std::min(a.x, b.x) <= m_Box.high.x &&
                         std::max(a.y, b.y) >= m_Box.low.y && std::min(a.y, b.y) <= m_Box.high.y)) {
      return;
    }
    const size_t x0 = Cell(std::min(a.x, b.x), m_Box.low.x, m_Box.high.x);
    const size_t x1 = Cell(std::max(a.x, b.x), m_Box.low.x, m_Box.high.x);
    const size_t y0 = Cell(std::min(a.y, b.y), m_Box.low.y, m_Box.high.y);
    const size_t y1 = Cell(std::max(a.y, b.y), m_Box.low.y, m_Box.high.y);
    for (size_t y = y0; y <= y1; ++y) {
      for (size_t x = x0; x <= x1; ++x) visit(m_Cells[y * m_Side + x]);
    }
  }

  std::vector<TracedEdge> m_Edges;
  ClipBox m_Box;
  size_t m_Side = 1;
  std::vector<std::vector<size_t>> m_Cells;
};

// What lies between the trace of a gap and the rim itself.
class Sliver {
 public:
  Sliver(const ClipRim& rim, const ClipGap& gap) : m_Loop(gap.points) {
    m_Loop.insert(m_Loop.begin(), gap.from);
    m_Loop.push_back(gap.to);
    // Back along the rim: a side of a rectangle is straight, a curve is taken in steps of a quarter of a degree.
    const double step = rim.HasCorners() ? 1.0 : 0.25;
    const bool bUp = gap.s0 >= gap.s1;  // the direction of the way back
    double s = (bUp ? std::floor(gap.s1 / step) + 1.0 : std::ceil(gap.s1 / step) - 1.0) * step;
    for (; bUp ? s < gap.s0 : s > gap.s0; s += bUp ? step : -step)
      m_Loop.push_back(rim.At(gap.piece, s, 0.0));
    for (const shr::Vec2d& p : m_Loop) m_Box.Add(p);
  }

  const ClipBox& Box() const { return m_Box; }
  /// By the even-odd rule.
  bool Holds(const shr::Vec2d& at) const {
    if (!(at.x >= m_Box.low.x && at.x <= m_Box.high.x)) return false;
    bool bInside = false;
    for (size_t i = 0; i < m_Loop.size(); ++i) {
      const shr::Vec2d &a = m_Loop[i], &b = m_Loop[(i + 1) % m_Loop.size()];
      if ((a.y > at.y) == (b.y > at.y)) continue;
      if (at.x < a.x + (at.y - a.y) / (b.y - a.y) * (b.x - a.x)) bInside = !bInside;
    }
    return bInside;
  }

 private:
  std::vector<shr::Vec2d> m_Loop;
  ClipBox m_Box;
};

// Calls mark(gap) for each gap between whose trace and the rim a whole ring lies.  (Of others a run ends on the rim.)
template <class Mark>
void MarkPassedRings(const ClipRim& rim, const std::vector<ClipGap>& gaps,
                     const std::vector<ClipChain>& chains, Mark mark) {
  std::vector<shr::Vec2d> rings;  // a point of each, by latitude
  for (const ClipChain& chain : chains) {
    if (chain.bClosed) rings.push_back(chain.points[0]);
  }
  std::sort(rings.begin(), rings.end(), [](const shr::Vec2d& a, const shr::Vec2d& b) { return a.y < b.y; });
  for (size_t i = 0; i < gaps.size() && !rings.empty(); ++i) {
    if (gaps[i].bStraight) continue;
    const Sliver sliver(rim, gaps[i]);
    auto ring = std::lower_bound(rings.begin(), rings.end(), sliver.Box().low.y,
                                 [](const shr::Vec2d& p, double y) { return p.y < y; });
    for (; ring != rings.end() && ring->y <= sliver.Box().high.y; ++ring) {
      if (!sliver.Holds(*ring)) continue;
      mark(i);
      break;
    }
  }
}

/// The edges of a gap's trace: visit(from, to).
template <class Visit>
void ForEdges(const ClipGap& gap, Visit visit) {
  shr::Vec2d last = gap.from;
  for (const shr::Vec2d& p : gap.points) {
    visit(last, p);
    last = p;
  }
  visit(last, gap.to);
}

std::vector<TracedEdge> EdgesOf(const std::vector<ClipGap>& gaps) {
  std::vector<TracedEdge> edges;
  for (size_t i = 0; i < gaps.size(); ++i) {
    ForEdges(gaps[i], [&](const shr::Vec2d& a, const shr::Vec2d& b) { edges.push_back({a, b, i}); });
  }
  return edges;
}

/// Whether an edge turns back on the one before it: the rim turns by a right angle at most.
bool TurnsBack(const TracedEdge& before, const TracedEdge& e) {
  const double dot =
      (before.b.x - before.a.x) * (e.b.x - e.a.x) + (before.b.y - before.a.y) * (e.b.y - e.a.y);
  return dot < -0.5 * Distance(before.a, before.b) * Distance(e.a, e.b);
}

/// Whether edges of the trace meet other than at a common end, or turn back there.
bool MeetsItself(const ClipGap& gap) {
  std::vector<TracedEdge> edges;  // each counts as a gap of its own
  ForEdges(gap, [&](const shr::Vec2d& a, const shr::Vec2d& b) { edges.push_back({a, b, edges.size()}); });
  EdgeGrid grid(edges);
  bool bMeets = false;
  for (size_t i = 1; i < edges.size(); ++i) bMeets = bMeets || TurnsBack(edges[i - 1], edges[i]);
  for (const TracedEdge& e : edges) grid.Query(e.a, e.b, e.gap, [&](size_t) { bMeets = true; });
  return bMeets;
}

}  // namespace

void TraceGap(const ClipArea& area, const ClipRim& rim, const ClipOptions& options, ClipGap& gap) {
  Tracer tracer(area, rim, options, gap);
  tracer.Run(true);
  // Beside a pole the rim turns by many degrees within the probes' own tolerance.
  if (MeetsItself(gap)) tracer.Run(false);
}

void SeparateGaps(const ClipArea& area, const ClipRim& rim, const ClipOptions& options,
                  const std::vector<ClipChain>& chains, std::vector<ClipGap>& gaps) {
  constexpr size_t kNone = static_cast<size_t>(-1);
  for (;;) {
    EdgeGrid grid(EdgesOf(gaps));
    std::vector<char> meets(gaps.size(), 0);
    const auto mark = [&](size_t gap) { meets[gap] = 1; };
    for (const ClipChain& chain : chains) {
      for (size_t i = 0; i + 1 < chain.count; ++i) {
        grid.Query(chain.points[i], chain.points[i + 1], kNone, mark);
      }
      if (chain.bClosed) grid.Query(chain.points[chain.count - 1], chain.points[0], kNone, mark);
    }
    for (const TracedEdge& e : grid.Edges()) grid.Query(e.a, e.b, e.gap, mark);
    MarkPassedRings(rim, gaps, chains, mark);
    bool bAny = false;
    for (size_t i = 0; i < gaps.size(); ++i) {
      ClipGap& gap = gaps[i];
      if (!meets[i] || gap.bStraight || gap.tolerance <= kClosest) continue;
      gap.tolerance = std::max(kClosest, gap.tolerance / 4.0);
      TraceGap(area, rim, options, gap);
      bAny = true;
    }
    if (!bAny) return;
  }
}

}  // namespace orv::internal
