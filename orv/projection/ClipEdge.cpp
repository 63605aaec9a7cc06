#include <cmath>

#include "orv/projection/internal/ClipEdge.h"

namespace orv::internal {

namespace {

constexpr double kCrossingTolerance = 0.001;  // degrees, absolute, each coordinate
constexpr double kNoGap = 1e-6;               // degrees, absolute, each coordinate

bool Same(const shr::Vec2d& a, const shr::Vec2d& b) { return a.x == b.x && a.y == b.y; }

bool IsFinite(const shr::Vec2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

// Halves from an inside to an outside point down to the tolerance; the last inside point.
shr::Vec2d Halve(const ClipArea& area, shr::Vec2d a, shr::Vec2d b, double tolerance) {
  while (!(std::abs(a.x - b.x) <= tolerance && std::abs(a.y - b.y) <= tolerance)) {
    const shr::Vec2d m(0.5 * a.x + 0.5 * b.x, 0.5 * a.y + 0.5 * b.y);
    if (Same(m, a) || Same(m, b)) break;
    (area.Inside(m) ? a : b) = m;
  }
  return a;
}

}  // namespace

EdgeCourse FindCrossing(const ClipArea& area, const shr::Vec2d& p, bool pInside, const shr::Vec2d& q,
                        bool qInside, shr::Vec2d& crossing) {
  if (!pInside && !qInside) return EdgeOutside;
  if (pInside && qInside) return EdgeInside;
  if (!IsFinite(p) || !IsFinite(q)) return EdgeFailed;
  crossing = pInside ? Halve(area, p, q, kCrossingTolerance) : Halve(area, q, p, kCrossingTolerance);
  return pInside ? EdgeLeaving : EdgeEntering;
}

EdgeCourse FindCrossing(const ClipArea& area, const shr::Vec2d* p, const shr::Vec2d* q,
                        shr::Vec2d* crossing) {
  if (!p || !q || !crossing) return EdgeFailed;
  return FindCrossing(area, *p, area.Inside(*p), *q, area.Inside(*q), *crossing);
}

shr::Vec2d SharpCrossing(const ClipArea& area, shr::Vec2d inside, shr::Vec2d outside) {
  return Halve(area, inside, outside, 0.0);
}

bool Classify(const ClipArea& area, CSegList& list) {
  // A second list, so that a cut costs no move of all that follows.
  CSegList cut;
  cut.Reserve(list.Count());
  bool bKnown = false, bStartInside = false;
  for (size_t i = 0; i < list.Count(); ++i) {
    CSeg segment = list[i];
    if (!bKnown || !Same(list[i - 1].end, segment.start)) bStartInside = area.Inside(segment.start);
    const bool bEndInside = area.Inside(segment.end);
    shr::Vec2d at;
    const EdgeCourse course = FindCrossing(area, segment.start, bStartInside, segment.end, bEndInside, at);
    if (course == EdgeFailed) return false;
    bStartInside = bEndInside;
    bKnown = true;
    const bool bFirstInside = course == EdgeInside || course == EdgeLeaving;
    segment.startInside = segment.endInside = bFirstInside;
    if (course == EdgeInside || course == EdgeOutside) {
      cut.Append(segment);
      continue;
    }
    CSeg second = segment;
    segment.end = second.start = at;
    second.startInside = second.endInside = !bFirstInside;
    cut.Append(segment);
    cut.Append(second);
  }
  list.Swap(cut);
  return true;
}

bool FollowClipEdge(const ClipArea& area, const shr::Vec2d* from, const shr::Vec2d* to,
                    std::vector<shr::Vec2d>& out, size_t probes) {
  if (!from || !to) return false;
  const shr::Vec2d d(to->x - from->x, to->y - from->y);
  if (std::abs(d.x) < kNoGap && std::abs(d.y) < kNoGap) return true;
  out.clear();
  const double parts = static_cast<double>(probes + 2);
  const shr::Vec2d step(d.x / parts, d.y / parts), h(d.y / 2.0, -d.x / 2.0);
  for (size_t i = 1; i <= probes; ++i) {
    const double k = static_cast<double>(i);
    const shr::Vec2d c(from->x + k * step.x, from->y + k * step.y);
    const shr::Vec2d right(c.x + h.x, c.y + h.y), left(c.x - h.x, c.y - h.y);
    shr::Vec2d crossing;
    const EdgeCourse course = FindCrossing(area, &right, &left, &crossing);
    if (course == EdgeEntering || course == EdgeLeaving) out.push_back(crossing);
  }
  return true;
}

}  // namespace orv::internal
