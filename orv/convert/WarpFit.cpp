#include "orv/convert/WarpFit.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Marker.h"
#include "orv/shared/Exception.h"
#include "orv/warp/WarpTransformer.h"

ORV_UNIT("WarpFit")

namespace orv {

namespace {

constexpr double kOnOneLine = 1e-9;  // of the extent of the points
constexpr size_t kMostNamed = 10;

bool IsPoint(const shr::Vec2d& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && !internal::IsMarked(p);
}
bool Same(const shr::Vec2d& a, const shr::Vec2d& b) { return a.x == b.x && a.y == b.y; }

/// "1, 2, 3"; of more than ten the first ten and "...".
std::string AllNumbers(size_t count) {
  std::string text;
  for (size_t i = 0; i < std::min(count, kMostNamed); ++i)
    text += (i == 0 ? "" : ", ") + std::to_string(i + 1);
  return count > kMostNamed ? text + " ..." : text;
}

/// The first two pairs, in the order of the second one, with one source point and two destinations.
bool FindConflict(const std::vector<ControlPair>& pairs, size_t& first, size_t& second) {
  std::vector<size_t> order(pairs.size());
  std::iota(order.begin(), order.end(), size_t{0});
  const auto before = [&](size_t a, size_t b) {
    const shr::Vec2d &p = pairs[a].source, &q = pairs[b].source;
    return p.x != q.x ? p.x < q.x : p.y < q.y;
  };
  std::stable_sort(order.begin(), order.end(), before);
  second = pairs.size();
  for (size_t at = 0, group = 0; at < order.size(); ++at) {  // group: where the run of equal sources begins
    if (!Same(pairs[order[at]].source, pairs[order[group]].source)) group = at;
    const bool conflict = !Same(pairs[order[at]].destination, pairs[order[group]].destination);
    if (!conflict || order[at] >= second) continue;
    first = order[group];
    second = order[at];
  }
  return second < pairs.size();
}

/// How far the source points spread, and how far the farthest lies off the line through the two that are farthest
/// from each other, as seen from the first.
void Spread(const std::vector<ControlPair>& pairs, double& extent, double& offLine) {
  const auto farthestFrom = [&](const shr::Vec2d& p) {
    return std::max_element(pairs.begin(), pairs.end(),
                            [&](const ControlPair& a, const ControlPair& b) {
                              return std::hypot(a.source.x - p.x, a.source.y - p.y) <
                                     std::hypot(b.source.x - p.x, b.source.y - p.y);
                            })
        ->source;
  };
  const shr::Vec2d a = farthestFrom(pairs[0].source), b = farthestFrom(a);
  extent = std::hypot(b.x - a.x, b.y - a.y);
  offLine = 0.0;
  if (extent == 0.0) return;
  const double ux = (b.x - a.x) / extent, uy = (b.y - a.y) / extent;
  for (const ControlPair& pair : pairs) {
    offLine = std::max(offLine, std::fabs((pair.source.x - a.x) * uy - (pair.source.y - a.y) * ux));
  }
}

bool CheckPairs(WarpMethod method, const std::vector<ControlPair>& pairs) {
  const char* const name = WarpDef::MethodName(method);
  if (method == WarpMethodAffineWithCoefficients) {
    return ORV_FAIL(ErrBadParameter, "The warp method has no control points: give its coefficients instead.");
  }
  if (!name || method == WarpMethodUnknown) return ORV_FAIL(ErrBadParameter, "No such warp method.");
  const size_t needed = WarpDef::RequiredControls(method);
  if (pairs.size() < needed) {
    return ORV_FAIL(ErrBadParameter, "The warp method '%s' needs at least %zu control points; there are %zu.",
                    name, needed, pairs.size());
  }
  for (size_t i = 0; i < pairs.size(); ++i) {
    if (IsPoint(pairs[i].source) && IsPoint(pairs[i].destination)) continue;
    return ORV_FAIL(ErrBadParameter, "Control point %zu holds no coordinates.", i + 1);
  }
  if (method == WarpMethodDisplacement) return true;
  size_t first = 0, second = 0;
  if (FindConflict(pairs, first, second)) {
    return ORV_FAIL(ErrBadParameter,
                    "Control points %zu and %zu conflict: the same source point goes to two places.",
                    first + 1, second + 1);
  }
  double extent = 0.0, offLine = 0.0;
  Spread(pairs, extent, offLine);
  if (extent == 0.0) {
    return ORV_FAIL(ErrCorrupt,
                    "Control points %s are one point: the warp method '%s' cannot be fitted to them.",
                    AllNumbers(pairs.size()).c_str(), name);
  }
  if (method != WarpMethodHelmert && offLine <= kOnOneLine * extent) {
    return ORV_FAIL(ErrCorrupt,
                    "Control points %s lie on one line: the warp method '%s' cannot be fitted to them.",
                    AllNumbers(pairs.size()).c_str(), name);
  }
  return true;
}

}  // namespace

WarpFit ORVFitWarp(WarpMethod method, const std::vector<ControlPair>& pairs) {
  WarpFit fit;
  if (!CheckPairs(method, pairs)) return fit;
  fit.definition.SetMethod(method);
  for (const ControlPair& pair : pairs) {
    fit.definition.AddSourcePoint(pair.source);
    fit.definition.AddDestinationPoint(pair.destination);
  }
  const char* const name = WarpDef::MethodName(method);
  try {
    WarpTransformer transformer(fit.definition);
    transformer.ComputeError(fit.mean, fit.residuals);
  } catch (const shr::Exception& e) {
    ORV_FAIL(ErrCorrupt, "The warp method '%s' cannot be fitted to these control points: %s", name,
             e.Message());
    return fit;
  }
  if (!std::isfinite(fit.mean)) {
    ORV_FAIL(ErrCorrupt,
             "The warp method '%s' cannot be fitted to these control points: the result is not finite.",
             name);
    return fit;
  }
  const auto worst = std::max_element(fit.residuals.begin(), fit.residuals.end());
  fit.worst = static_cast<size_t>(worst - fit.residuals.begin());
  fit.maximum = *worst;
  return fit;
}

}  // namespace orv
