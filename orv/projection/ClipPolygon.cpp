#include "orv/projection/internal/ClipPolygon.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orv::internal {

namespace {

using Points = std::vector<shr::Vec2d>;

constexpr size_t kNone = static_cast<size_t>(-1);
constexpr double kNoGap = 1e-6;     // degrees, absolute, each coordinate
constexpr double kLookFrom = 5e-4;  // degrees: how far inside the rim it is asked what lies in the polygon

bool Same(const shr::Vec2d& a, const shr::Vec2d& b) { return a.x == b.x && a.y == b.y; }

/// A chain of inside edges of a ring that is cut.
struct ClipRun {
  size_t ring = 0;
  size_t first = 0;  ///< the point at which the ring was given to begin, in the run that holds it
  Points points;
  shr::Vec2d entry, exit;  ///< where it crosses the rim, to the last digit
};

/// A run in a ring of the result.
struct Step {
  size_t run;
  bool bBackward;
  size_t gap;  ///< the one behind it
};

/// A ring of the result.
struct Piece {
  Points points;
  bool bRepeat = false;  ///< its first point comes again at its end
  size_t lead = kNone;   ///< the ring that it begins with; none for the rim itself
  bool bTraced = false;  ///< not a ring as it was given
};

void AddEdges(CSegList& list, const shr::Vec2d* points, size_t count) {
  for (size_t i = 0; i + 1 < count; ++i) list.Append({points[i], points[i + 1], true, true});
}

bool HandRun(const CSegList& list, size_t first, size_t count, void* context, ORVPolylineCallback callback) {
  Points points;
  points.reserve(count + 1);
  points.push_back(list[first].start);
  for (size_t i = 0; i < count; ++i) points.push_back(list[first + i].end);
  return callback(context, points.size(), points.data());
}

class PolygonClipper {
 public:
  PolygonClipper(const ClipArea& area, const ClipOptions& options, const std::vector<ClipRing>& rings)
      : m_Area(area), m_Options(options), m_Rings(rings), m_Whole(rings.size(), 0) {}

  bool Run(void* context, ORVPolygonCallback onPolygon, ORVPolylineCallback onOutline) {
    if (!Cut()) return false;
    if (!Assemble()) {
      if (!HandOver(AllPieces(), context, onPolygon)) return false;
    } else {
      for (const std::vector<size_t>& group : Groups()) {
        if (!HandOver(group, context, onPolygon)) return false;
      }
    }
    return HandOutlines(context, onOutline);
  }

 private:
  // ---- cutting -------------------------------------------------------------------------------------------

  bool Cut() {
    for (size_t i = 0; i < m_Rings.size(); ++i) {
      const ClipRing& ring = m_Rings[i];
      CSegList list;
      list.Reserve(ring.count);
      AddEdges(list, ring.points, ring.count);
      if (!IsClosed(i)) list.Append({ring.points[ring.count - 1], ring.points[0], true, true});
      if (!Classify(m_Area, list)) return false;
      for (size_t k = 0; k < ring.count; ++k) m_Box.Add(ring.points[k]);
      CollectRuns(i, list);
    }
    return true;
  }

  bool IsClosed(size_t ring) const {
    return Same(m_Rings[ring].points[0], m_Rings[ring].points[m_Rings[ring].count - 1]);
  }

  void CollectRuns(size_t ring, const CSegList& list) {
    const size_t n = list.Count();
    size_t outside = 0;
    while (outside < n && list[outside].IsInside()) ++outside;
    if (outside == n) {
      m_Whole[ring] = 1;
      return;
    }
    const size_t firstRun = m_Runs.size();
    for (size_t k = 1; k <= n; ++k) {
      const size_t i = (outside + k) % n, before = (i + n - 1) % n;
      if (!list[i].IsInside()) continue;
      if (!list[before].IsInside()) {
        m_Runs.emplace_back();
        m_Runs.back().ring = ring;
        m_Runs.back().points.push_back(list[i].start);
        m_Runs.back().entry = SharpCrossing(m_Area, list[i].start, list[before].start);
      }
      ClipRun& run = m_Runs.back();
      if (i == 0) run.first = run.points.size() - 1;
      run.points.push_back(list[i].end);
      const CSeg& next = list[(i + 1) % n];
      if (!next.IsInside()) run.exit = SharpCrossing(m_Area, list[i].end, next.end);
    }
    // The run with the ring's first point comes first.
    if (list[0].IsInside()) {
      std::rotate(m_Runs.begin() + static_cast<std::ptrdiff_t>(firstRun), m_Runs.end() - 1, m_Runs.end());
    }
  }

  // ---- joining -------------------------------------------------------------------------------------------

  // False when the polygon is wholly inside, or wholly outside.
  bool Assemble() {
    const ClipRim rim(m_Area, m_Box);
    const size_t outer = AddWholeRings();
    if (!rim.IsNone()) {
      std::vector<long> crossed;
      Pair(rim, crossed);
      Follow();
      for (ClipGap& gap : m_Gaps) TraceGap(m_Area, rim, m_Options, gap);
      AddUncrossed(rim, crossed, outer);
      Separate(rim);
      BuildPieces();
    }
    std::vector<Piece> kept;
    bool bTraced = false;
    for (Piece& piece : m_Pieces) {
      // A ring that touches the rim only may leave nothing but a sliver.
      if (piece.points.size() < 3 || (piece.bTraced && TwiceArea(piece.points) == 0.0)) continue;
      bTraced = bTraced || piece.bTraced;
      kept.push_back(std::move(piece));
    }
    m_Pieces.swap(kept);
    const bool bAllWhole = std::find(m_Whole.begin(), m_Whole.end(), 0) == m_Whole.end();
    return bTraced || !bAllWhole;
  }

  // The rings that are inside as they are; gives the largest ring of all.
  size_t AddWholeRings() {
    size_t outer = 0;
    double largest = -1.0;
    for (size_t i = 0; i < m_Rings.size(); ++i) {
      const size_t count = m_Rings[i].count - (IsClosed(i) ? 1 : 0);
      Points points(m_Rings[i].points, m_Rings[i].points + count);
      if (m_Rings.size() > 1 || m_Whole[i] == 0) {
        const double area = std::abs(TwiceArea(points));
        if (area > largest) {
          largest = area;
          outer = i;
        }
      }
      if (m_Whole[i] != 0) m_Pieces.push_back({std::move(points), IsClosed(i), i, false});
    }
    return outer;
  }

  struct Crossing {
    RimSpot spot;
    size_t node;  // run * 2, + 1 for its end
  };

  // Joins the crossings of each curve in pairs.
  void Pair(const ClipRim& rim, std::vector<long>& crossed) {
    m_Partner.assign(2 * m_Runs.size(), {kNone, 0.0, 0.0, 0});
    std::vector<Crossing> all;
    for (size_t i = 0; i < m_Runs.size(); ++i) {
      all.push_back({rim.Locate(m_Runs[i].entry), 2 * i});
      all.push_back({rim.Locate(m_Runs[i].exit), 2 * i + 1});
    }
    std::sort(all.begin(), all.end(), [](const Crossing& a, const Crossing& b) {
      if (a.spot.piece != b.spot.piece) return a.spot.piece < b.spot.piece;
      return a.spot.s != b.spot.s ? a.spot.s < b.spot.s : a.node < b.node;
    });
    std::vector<size_t> alone;
    for (size_t begin = 0; begin < all.size();) {
      const long piece = all[begin].spot.piece;
      size_t end = begin;
      while (end < all.size() && all[end].spot.piece == piece) ++end;
      crossed.push_back(piece);
      PairCurve(rim, &all[begin], end - begin, alone);
      begin = end;
    }
    // Only long edges that pass over the area unseen leave crossings without a partner.
    for (size_t i = 0; i + 1 < alone.size(); i += 2) {
      m_Partner[alone[i]] = {alone[i + 1], 0.0, 0.0, 0, true};
      m_Partner[alone[i + 1]] = {alone[i], 0.0, 0.0, 0, true};
    }
  }

  void PairCurve(const ClipRim& rim, const Crossing* crossings, size_t count, std::vector<size_t>& alone) {
    const long piece = crossings[0].spot.piece;
    const double turn = rim.Turn();
    const auto at = [&](size_t i) { return crossings[i % count].spot.s + (i >= count ? turn : 0.0); };
    size_t first = 0;
    if (rim.IsClosed()) {
      size_t widest = 0;
      for (size_t i = 1; i < count; ++i) {
        if (at(i + 1) - at(i) > at(widest + 1) - at(widest)) widest = i;
      }
      const double middle = 0.5 * (at(widest) + at(widest + 1));
      first = IsInPolygon(rim.At(piece, middle, kLookFrom)) ? widest : widest + 1;
    }
    for (size_t k = 0; k + 1 < count; k += 2) {
      const Crossing &a = crossings[(first + k) % count], &b = crossings[(first + k + 1) % count];
      const double s0 = a.spot.s;
      const double s1 = rim.IsClosed() && b.spot.s < s0 ? b.spot.s + turn : b.spot.s;
      m_Partner[a.node] = {b.node, s0, s1, piece};
      m_Partner[b.node] = {a.node, s1, s0, piece};
    }
    if (count % 2 != 0) alone.push_back(crossings[(first + count - 1) % count].node);
  }

  bool IsInPolygon(const shr::Vec2d& at) const {
    bool bInside = false;
    for (const ClipRing& ring : m_Rings) {
      shr::Vec2d a = ring.points[ring.count - 1];
      for (size_t i = 0; i < ring.count; ++i) {
        const shr::Vec2d& b = ring.points[i];
        if ((a.y > at.y) != (b.y > at.y) && at.x < a.x + (at.y - a.y) / (b.y - a.y) * (b.x - a.x)) {
          bInside = !bInside;
        }
        a = b;
      }
    }
    return bInside;
  }

  // Runs and gaps to rings; runs of outer rings lead.
  void Follow() {
    std::vector<size_t> order(m_Runs.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = i;
    if (m_Rings.size() > 1 && !m_Runs.empty()) {
      m_IsHole = InputHoles();
      std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return m_IsHole[m_Runs[a].ring] < m_IsHole[m_Runs[b].ring];
      });
    }
    std::vector<char> used(m_Runs.size(), 0);
    for (size_t lead : order) {
      if (used[lead] != 0) continue;
      std::vector<Step> steps;
      size_t node = 2 * lead;  // where the next run is begun
      while (node != kNone && used[node / 2] == 0) {
        used[node / 2] = 1;
        const size_t last = node ^ 1;
        const Partner& partner = m_Partner[last];
        steps.push_back({node / 2, (node & 1) != 0, m_Gaps.size()});
        ClipGap gap;
        gap.piece = partner.piece;
        gap.s0 = partner.s0;
        gap.s1 = partner.s1;
        gap.bStraight = partner.bStraight || partner.node == kNone;
        gap.tolerance = m_Options.tolerance;
        gap.from = PointOf(last);
        gap.to = partner.node == kNone ? gap.from : PointOf(partner.node);
        m_Gaps.push_back(std::move(gap));
        node = partner.node;
      }
      m_Loops.push_back(std::move(steps));
    }
  }

  const shr::Vec2d& PointOf(size_t node) const {
    const Points& points = m_Runs[node / 2].points;
    return (node & 1) != 0 ? points.back() : points.front();
  }

  std::vector<char> InputHoles() const {
    std::vector<Points> rings;
    for (const ClipRing& ring : m_Rings) rings.emplace_back(ring.points, ring.points + ring.count);
    std::vector<char> isHole;
    for (const RingPlace& place : Nesting(rings)) isHole.push_back(place.bHole ? 1 : 0);
    return isHole;
  }

  void AddUncrossed(const ClipRim& rim, const std::vector<long>& crossed, size_t outer) {
    m_Outer = outer;
    for (long piece : rim.PiecesWithin(m_Box)) {
      if (std::find(crossed.begin(), crossed.end(), piece) != crossed.end()) continue;
      // The middle of the east side, or due south: not a corner, nor a side that stands at the poles.
      if (!IsInPolygon(rim.At(piece, rim.HasCorners() ? 1.5 : 0.0, kLookFrom))) continue;
      ClipGap gap;
      gap.piece = piece;
      gap.s0 = rim.HasCorners() ? 0.0 : -180.0;
      gap.s1 = gap.s0 + rim.Turn();
      gap.from = gap.to = rim.InsideAt(piece, gap.s0);
      gap.tolerance = m_Options.tolerance;
      TraceGap(m_Area, rim, m_Options, gap);
      m_Own.push_back(m_Gaps.size());
      m_Gaps.push_back(std::move(gap));
    }
    m_bHole = rim.IsHole();
  }

  void Separate(const ClipRim& rim) {
    if (m_Gaps.empty()) return;
    std::vector<ClipChain> chains;
    for (const Piece& piece : m_Pieces) chains.push_back({piece.points.data(), piece.points.size(), true});
    for (const ClipRun& run : m_Runs) chains.push_back({run.points.data(), run.points.size(), false});
    SeparateGaps(m_Area, rim, m_Options, chains, m_Gaps);
  }

  void BuildPieces() {
    for (const std::vector<Step>& loop : m_Loops) {
      Piece piece;
      piece.bTraced = true;
      piece.lead = m_Runs[loop[0].run].ring;
      piece.bRepeat = IsClosed(piece.lead);
      for (const Step& step : loop) {
        const Points& points = m_Runs[step.run].points;
        if (step.bBackward) {
          piece.points.insert(piece.points.end(), points.rbegin(), points.rend() - 1);
        } else {
          piece.points.insert(piece.points.end(), points.begin(), points.end() - 1);
        }
        const ClipGap& gap = m_Gaps[step.gap];
        // The end of the run begins the gap's first edge, if the gap has one.
        const bool bNoGap = gap.points.empty() && std::abs(gap.from.x - gap.to.x) < kNoGap &&
                            std::abs(gap.from.y - gap.to.y) < kNoGap;
        if (!bNoGap) piece.points.push_back(gap.from);
        piece.points.insert(piece.points.end(), gap.points.begin(), gap.points.end());
      }
      std::rotate(piece.points.begin(),
                  piece.points.begin() + static_cast<std::ptrdiff_t>(m_Runs[loop[0].run].first),
                  piece.points.end());
      m_Pieces.push_back(std::move(piece));
    }
    std::stable_sort(m_Pieces.begin(), m_Pieces.end(),
                     [](const Piece& a, const Piece& b) { return a.lead < b.lead; });
    for (size_t own : m_Own) {
      Piece piece;
      piece.bTraced = true;
      piece.bRepeat = IsClosed(m_Outer);
      piece.points.push_back(m_Gaps[own].from);
      piece.points.insert(piece.points.end(), m_Gaps[own].points.begin(), m_Gaps[own].points.end());
      if (IsCounterclockwise(m_Outer) == m_bHole) std::reverse(piece.points.begin(), piece.points.end());
      m_Pieces.push_back(std::move(piece));
    }
  }

  bool IsCounterclockwise(size_t ring) const {
    return TwiceArea(Points(m_Rings[ring].points, m_Rings[ring].points + m_Rings[ring].count)) > 0.0;
  }

  // ---- handing over --------------------------------------------------------------------------------------

  std::vector<size_t> AllPieces() const {
    std::vector<size_t> all(m_Pieces.size());
    for (size_t i = 0; i < all.size(); ++i) all[i] = i;
    return all;
  }

  // Each outer ring with its holes.
  std::vector<std::vector<size_t>> Groups() {
    if (m_Pieces.size() == 1) return {{0}};
    std::vector<Points> rings;
    for (const Piece& piece : m_Pieces) rings.push_back(piece.points);
    const std::vector<RingPlace> places = Nesting(rings);
    std::vector<std::vector<size_t>> groups;
    std::vector<size_t> groupOf(m_Pieces.size(), kNone);
    for (size_t i = 0; i < m_Pieces.size(); ++i) {
      if (places[i].bHole) continue;
      groupOf[i] = groups.size();
      groups.push_back({i});
      // A hole that has become an outer ring turns like one.
      Piece& piece = m_Pieces[i];
      const bool bLedByHole =
          piece.bTraced && piece.lead != kNone && !m_IsHole.empty() && m_IsHole[piece.lead] != 0;
      if (bLedByHole && (TwiceArea(piece.points) > 0.0) != IsCounterclockwise(m_Outer)) {
        std::reverse(piece.points.begin(), piece.points.end());
      }
    }
    for (size_t i = 0; i < m_Pieces.size(); ++i) {
      if (places[i].bHole) groups[groupOf[static_cast<size_t>(places[i].parent)]].push_back(i);
    }
    return groups;
  }

  bool HandOver(const std::vector<size_t>& group, void* context, ORVPolygonCallback onPolygon) const {
    if (group.empty()) return true;
    std::vector<size_t> counts;
    Points points;
    for (size_t i : group) {
      const Piece& piece = m_Pieces[i];
      points.insert(points.end(), piece.points.begin(), piece.points.end());
      if (piece.bRepeat) points.push_back(piece.points.front());
      counts.push_back(piece.points.size() + (piece.bRepeat ? 1 : 0));
    }
    return onPolygon(context, counts.size(), counts.data(), points.data());
  }

  bool HandOutlines(void* context, ORVPolylineCallback onOutline) const {
    size_t run = 0;
    for (size_t i = 0; i < m_Rings.size(); ++i) {
      if (m_Whole[i] != 0) {
        Points points(m_Rings[i].points, m_Rings[i].points + m_Rings[i].count);
        if (!IsClosed(i)) points.push_back(points.front());
        if (!onOutline(context, points.size(), points.data())) return false;
      }
      for (; run < m_Runs.size() && m_Runs[run].ring == i; ++run) {
        if (!onOutline(context, m_Runs[run].points.size(), m_Runs[run].points.data())) return false;
      }
    }
    return true;
  }

  struct Partner {
    size_t node;
    double s0, s1;
    long piece;
    bool bStraight = false;
  };

  const ClipArea& m_Area;
  const ClipOptions& m_Options;
  const std::vector<ClipRing>& m_Rings;
  std::vector<char> m_Whole;   // by ring: all of it is inside
  std::vector<char> m_IsHole;  // by ring; empty when there is one ring only
  ClipBox m_Box;
  std::vector<ClipRun> m_Runs;
  std::vector<Partner> m_Partner;  // by node
  std::vector<ClipGap> m_Gaps;
  std::vector<std::vector<Step>> m_Loops;
  std::vector<size_t> m_Own;  // gaps that are whole curves of the rim
  std::vector<Piece> m_Pieces;
  size_t m_Outer = 0;  // the largest ring
  bool m_bHole = false;
};

}  // namespace

bool ClipPolyline(const ClipArea& area, size_t count, const shr::Vec2d* points, void* context,
                  ORVPolylineCallback callback) {
  CSegList list;
  list.Reserve(count - 1);
  AddEdges(list, points, count);
  if (!Classify(area, list)) return false;
  for (size_t i = 0; i < list.Count();) {
    size_t end = i;
    while (end < list.Count() && list[end].IsInside()) ++end;
    if (end > i && !HandRun(list, i, end - i, context, callback)) return false;
    i = std::max(end, i + 1);
  }
  return true;
}

bool ClipPolygon(const ClipArea& area, const ClipOptions& options, const std::vector<ClipRing>& rings,
                 void* context, ORVPolygonCallback onPolygon, ORVPolylineCallback onOutline) {
  return PolygonClipper(area, options, rings).Run(context, onPolygon, onOutline);
}

double TwiceArea(const std::vector<shr::Vec2d>& ring) {
  double sum = 0.0;
  for (size_t i = 0; i < ring.size(); ++i) {
    const shr::Vec2d &a = ring[i], &b = ring[(i + 1) % ring.size()], &o = ring[0];
    sum += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
  }
  return sum;
}

std::vector<RingPlace> Nesting(const std::vector<std::vector<shr::Vec2d>>& rings) {
  struct Look {
    shr::Vec2d from;
    size_t ring;
    std::vector<size_t> passed;  // the rings of the edges to the left, but for pairs that have been cancelled
    size_t room = 64;

    // Drops pairs: what an even number of edges was passed of is not around.  What is left is sorted.
    void Cancel() {
      std::sort(passed.begin(), passed.end());
      size_t kept = 0;
      for (size_t i = 0; i < passed.size();) {
        size_t end = i;
        while (end < passed.size() && passed[end] == passed[i]) ++end;
        if ((end - i) % 2 != 0) passed[kept++] = passed[i];
        i = end;
      }
      passed.resize(kept);
      room = 2 * kept + 64;
    }
  };
  std::vector<Look> looks;
  for (size_t r = 0; r < rings.size(); ++r) {
    // From the middle of the longest edge: rings may touch at points.
    double longest = -1.0;
    shr::Vec2d from;
    for (size_t i = 0; i < rings[r].size(); ++i) {
      const shr::Vec2d &a = rings[r][i], &b = rings[r][(i + 1) % rings[r].size()];
      const double length = std::hypot(a.x - b.x, a.y - b.y);
      if (length > longest) {
        longest = length;
        from = shr::Vec2d(0.5 * (a.x + b.x), 0.5 * (a.y + b.y));
      }
    }
    looks.push_back({from, r, {}, 64});
  }
  std::sort(looks.begin(), looks.end(), [](const Look& a, const Look& b) { return a.from.y < b.from.y; });
  for (size_t r = 0; r < rings.size(); ++r) {
    for (size_t i = 0; i < rings[r].size(); ++i) {
      const shr::Vec2d &a = rings[r][i], &b = rings[r][(i + 1) % rings[r].size()];
      const double low = std::min(a.y, b.y), high = std::max(a.y, b.y);
      auto look = std::lower_bound(looks.begin(), looks.end(), low,
                                   [](const Look& l, double y) { return l.from.y < y; });
      for (; look != looks.end() && look->from.y < high; ++look) {
        const double x = a.x + (look->from.y - a.y) / (b.y - a.y) * (b.x - a.x);
        if (look->ring == r || !(x < look->from.x)) continue;
        look->passed.push_back(r);
        if (look->passed.size() >= look->room) look->Cancel();
      }
    }
  }
  // Rings of which an odd number of edges is passed are around it.
  std::vector<std::vector<size_t>> around(rings.size());
  for (Look& look : looks) {
    look.Cancel();
    around[look.ring] = std::move(look.passed);
  }
  std::vector<RingPlace> places(rings.size());
  for (size_t r = 0; r < rings.size(); ++r) {
    size_t deepest = 0;
    for (size_t other : around[r]) {
      if (around[other].size() >= around[r].size() || around[other].size() < deepest) continue;
      deepest = around[other].size();
      places[r].parent = static_cast<long>(other);
    }
    places[r].bHole = around[r].size() % 2 != 0 && places[r].parent >= 0 && deepest % 2 == 0;
  }
  return places;
}

}  // namespace orv::internal
