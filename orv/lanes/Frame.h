// What surrounds the mathematics: groups of points, markers, and the passes of the projector and the datum
// converter.  The contracts of the passes stand in Dispatch.h.
//
// Only Marked and the functions here know the marker.  Each pass puts a harmless operand in the place of a
// marked coordinate before it computes, so that no floating-point exception is raised for it.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {
namespace ORV_ISA {

// ---- groups of points ------------------------------------------------------------------------------------

/// Calls f(xy, first) on group after group of kLanes interleaved points; `first` is the index of its first
/// point. A last, partial group is worked on in a copy that repeats its last point.
template <class F>
inline void EachGroup(double* xy, std::size_t n, F f) {
  double padded[2 * kLanes];
  const std::size_t whole = n - n % kLanes, rest = n - whole;
  double* points = xy;
  double* end = xy + 2 * whole;
  std::size_t first = 0;
  for (bool last = false;; last = true) {  // the whole groups, then the padded one: f stands here once
    for (; points != end; points += 2 * kLanes, first += kLanes) f(points, first);
    if (last || rest == 0) break;
    for (std::size_t i = 0; i < kLanes; ++i) {
      const std::size_t from = i < rest ? i : rest - 1;
      padded[2 * i] = points[2 * from];
      padded[2 * i + 1] = points[2 * from + 1];
    }
    points = padded;
    end = padded + 2 * kLanes;
  }
  for (std::size_t i = 0; i < 2 * rest; ++i) xy[2 * whole + i] = padded[i];
}

/// Asks for the points that lie `ahead` points further on, or for nothing where the array has ended by then.
/// The address is only a hint and may lie anywhere.
inline void Prefetch(const double* points, std::size_t ahead) {
#if defined(__GNUC__)
  const std::size_t address = reinterpret_cast<std::size_t>(points) + ahead * 2 * sizeof(double);
  for (std::size_t line = 0; line < kLanes * 2 * sizeof(double); line += 64) {
    __builtin_prefetch(reinterpret_cast<const void*>(address + line), 1);
  }
#else
  (void)points;
  (void)ahead;
#endif
}

/// How far the computing passes look ahead: the next block, while this one is in the first-level cache.  The
/// other passes are too short to hide the way to memory (10 % of a large batch).
inline constexpr std::size_t kNextBlock = 512;

/// Replaces every point p by f(p).
template <std::size_t kAhead = 0, class F>
inline void Each(double* xy, std::size_t n, F f) {
  EachGroup(xy, n, [&f](double* points, std::size_t) {
    if constexpr (kAhead > 0) Prefetch(points, kAhead);
    Point p;
    Load(points, p.x, p.y);
    const Point q = f(p);
    Store(points, q.x, q.y);
  });
}

// ---- markers ---------------------------------------------------------------------------------------------

inline Mask Marked(Point p) { return (p.x == kMarker) | (p.y == kMarker); }

/// Harmless points in the places of marked ones.
inline Point WithoutMarked(Point p, Mask marked) {
  return {Except(p.x, marked, 0.0), Except(p.y, marked, 0.0)};
}
/// What becomes of points p whose computation gave q: marked ones pass through, and a point that became NaN in either
/// coordinate gets the marker in both.
inline Point Plotted(Point p, Mask marked, Point q) {
  const Mask bad = !((q.x == q.x) & (q.y == q.y));
  if (!Any(marked | bad)) return q;
  const Lanes x = Select(bad, kMarker, q.x);
  const Lanes y = Select(bad, kMarker, q.y);
  return {Select(marked, p.x, x), Select(marked, p.y, y)};
}
/// A computation on a group of which some points may carry the marker.
template <class F>
inline Point OnPlottable(Point p, F compute) {
  const Mask marked = Marked(p);
  return Plotted(p, marked, compute(WithoutMarked(p, marked)));
}

/// A computation on points without a marker.  A point with the marker in either coordinate stays as it is; a result
/// that is NaN or infinite stays, too.
template <class F>
inline Point OnUnmarkedPoints(Point p, F compute) {
  const Mask skip = Marked(p);
  const Point q = compute(WithoutMarked(p, skip));
  return {Except(q.x, skip, p.x), Except(q.y, skip, p.y)};
}

/// f of each coordinate that is not the marker.
template <class F>
inline Point OnUnmarked(Point p, F f) {
  const Mask xSkip = p.x == kMarker, ySkip = p.y == kMarker;
  const Point q = f(Point{Except(p.x, xSkip, 1.0), Except(p.y, ySkip, 1.0)});
  return {Except(q.x, xSkip, p.x), Except(q.y, ySkip, p.y)};
}

// ---- normalisation ---------------------------------------------------------------------------------------

inline Lanes FoldLatitude(Lanes r) {
  const Lanes down = Select(r > 90.0, 180.0 - r, r);
  return Select(down < -90.0, -180.0 - down, down);
}

inline Point NormaliseCoordinates(Point p) {
  const Lanes x = Except(p.x, p.x != p.x, kMarker);
  const Lanes y = Except(p.y, p.y != p.y, kMarker);
  const Mask xUsual = abs(x) < 360.0, yUsual = abs(y) <= 90.0;
  if (!Any(!(xUsual & yUsual))) return {x, y};
  const Mask xMarked = (x == kMarker) | (abs(x) == kInfinity);
  const Mask yMarked = (y == kMarker) | (abs(y) == kInfinity);
  const Lanes lon = fmod(Except(x, xMarked, 0.0), 360.0);
  const Lanes lat = FoldLatitude(fmod(Except(y, yMarked, 0.0), 180.0));
  return {Select(xMarked, kMarker, lon), Select(yMarked, kMarker, lat)};
}

inline Point NormalisePoints(Point p) {
  const Mask skip = Marked(p);
  const Point q = NormaliseCoordinates(p);
  return {Except(q.x, skip, p.x), Except(q.y, skip, p.y)};
}

// ---- degrees and radians ---------------------------------------------------------------------------------

/// x / d, correctly rounded, for a constant d that is neither tiny nor huge; `inverse` is 1 / d rounded.
///
/// With fused multiply-add: the quotient by the reciprocal, and one correction by its exact remainder.  That
/// is the correctly rounded quotient [Mar90], hence the bits of the division, in a third of the time.  Where the
/// remainder might underflow, for zeros, which must keep their sign, for NaN and infinity: the division itself.
inline Lanes DivideByConstant(Lanes x, double d, double inverse) {
#if ORV_LANES_X86 && ORV_LANES > 4 && defined(__FMA__)
  const Ints magnitude = BitsOf(abs(x));
  if (AnyNegative((magnitude - BitsOf(Lanes(1e-280))) | (BitsOf(Lanes(1e300)) - magnitude))) return x / d;
  return OfEach(x, [d, inverse](Register r) {
    const Register q = r * inverse;
#if ORV_LANES == 8
    const auto wide = [](Register v) { return reinterpret_cast<__m256d>(v); };
    const __m256d rest = _mm256_fnmadd_pd(wide(q), _mm256_set1_pd(d), wide(r));
    return reinterpret_cast<Register>(_mm256_fmadd_pd(rest, _mm256_set1_pd(inverse), wide(q)));
#else
    const auto wide = [](Register v) { return reinterpret_cast<__m512d>(v); };
    const __m512d rest = _mm512_fnmadd_pd(wide(q), _mm512_set1_pd(d), wide(r));
    return reinterpret_cast<Register>(_mm512_fmadd_pd(rest, _mm512_set1_pd(inverse), wide(q)));
#endif
  });
#else
  (void)inverse;
  return x / d;
#endif
}

inline Lanes ToRadians(Lanes degrees) { return DivideByConstant(degrees * kPi, 180.0, 1.0 / 180.0); }
inline Lanes ToDegrees(Lanes radians) { return DivideByConstant(radians * 180.0, kPi, 1.0 / kPi); }

// ---- passes, as Dispatch.h describes them ----------------------------------------------------------------
//
// Most of them do little to a point, and nothing out of the ordinary to most points.  So a group's coordinates are taken as
// they lie in memory, x and y in turn; where all of them are usual, a few operations do the whole pass, and only where
// one is not, the points are taken apart and every rule is applied.

/// The coordinates of a group, as they lie in memory.
struct InTurn {
  Lanes a, b;
};

inline InTurn LoadInTurn(const double* xy) { return {LoadLanes(xy), LoadLanes(xy + kLanes)}; }
inline void StoreInTurn(double* xy, Lanes a, Lanes b) {
  StoreLanes(xy, a);
  StoreLanes(xy + kLanes, b);
}

/// One number for every x, and one for every y.
inline InTurn Alternating(double forX, double forY) {
  double xy[2 * kLanes];
  for (std::size_t i = 0; i < kLanes; ++i) {
    xy[2 * i] = forX;
    xy[2 * i + 1] = forY;
  }
  return LoadInTurn(xy);
}

/// Whether every coordinate has at most that magnitude.  A NaN has not, and raises no flag as a comparison would:
/// magnitudes are ordered as their bits are.
inline bool AllWithin(InTurn s, InTurn most) {
  return !AnyNegative((BitsOf(most.a) - BitsOf(abs(s.a))) | (BitsOf(most.b) - BitsOf(abs(s.b))));
}

/// Of results that are plainly no marker and not infinite, also when an origin as large is added to them.
inline constexpr double kUsualResult = 1e300;

/// Whether an origin is that small.
inline bool IsUsual(double dx, double dy) {
  return dx < kUsualResult && -dx < kUsualResult && dy < kUsualResult && -dy < kUsualResult;
}

/// Points without NaN and infinities; `met` gets the marked ones.
inline Point Checked(Point p, Mask& met) {
  const Mask xFinite = IsFinite(p.x), yFinite = IsFinite(p.y);
  const Mask bad = !(xFinite & yFinite);
  met |= bad | Marked(p);
  return {Except(p.x, bad, kMarker), Except(p.y, bad, kMarker)};
}

inline Point InRadians(Point p) {
  return OnUnmarked(p, [](Point q) { return Point{ToRadians(q.x), ToRadians(q.y)}; });
}
inline Point InDegrees(Point p) {
  return OnUnmarked(p, [](Point q) { return Point{ToDegrees(q.x), ToDegrees(q.y)}; });
}
inline Point Times(Point p, double k) {
  return OnUnmarked(p, [k](Point q) { return Point{q.x * k, q.y * k}; });
}

ORV_KERNEL inline bool RunCheckMarks(double* xy, std::size_t n) {
  Mask met = Mask();
  Each(xy, n, [&met](Point p) { return Checked(p, met); });
  return Any(met);
}

ORV_KERNEL inline void RunToRadians(double* xy, std::size_t n) { Each(xy, n, InRadians); }
ORV_KERNEL inline void RunMultiply(double* xy, std::size_t n, double k) {
  Each(xy, n, [k](Point p) { return Times(p, k); });
}

ORV_KERNEL inline void RunBeforeForward(double* xy, std::size_t n) {
  const InTurn usual = Alternating(359.99999999999994, 90.0);  // that is the number below 360
  EachGroup(xy, n, [usual](double* points, std::size_t) {
    const InTurn s = LoadInTurn(points);
    if (AllWithin(s, usual)) return StoreInTurn(points, ToRadians(s.a), ToRadians(s.b));
    Point p;
    Load(points, p.x, p.y);
    p = InRadians(NormaliseCoordinates(p));
    Store(points, p.x, p.y);
  });
}

ORV_KERNEL inline bool RunAfterForward(double* xy, std::size_t n, double dx, double dy, double k) {
  if (dx == 0.0 && dy == 0.0) dx = dy = -0.0;  // which changes nothing, not even -0
  const InTurn usual = Alternating(kUsualResult, kUsualResult), origin = Alternating(dx, dy);
  const bool isUsual = IsUsual(dx, dy);
  Mask met = Mask();
  EachGroup(xy, n, [=, &met](double* points, std::size_t) {
    const InTurn s = LoadInTurn(points);
    if (isUsual && AllWithin(s, usual))
      return StoreInTurn(points, (s.a + origin.a) * k, (s.b + origin.b) * k);
    Point p;
    Load(points, p.x, p.y);
    p = OnUnmarked(Checked(p, met), [=](Point q) { return Point{q.x + dx, q.y + dy}; });
    p = Times(p, k);
    Store(points, p.x, p.y);
  });
  return Any(met);
}

ORV_KERNEL inline bool RunBeforeInverse(double* xy, std::size_t n, double k, double dx, double dy) {
  if (dx == 0.0 && dy == 0.0) dx = dy = 0.0;  // which changes nothing; to subtract -0 would
  const InTurn usual = Alternating(kUsualResult, kUsualResult), origin = Alternating(dx, dy);
  const bool isUsual = IsUsual(dx, dy);
  const bool scales = k != 1.0;
  Mask met = Mask();
  EachGroup(xy, n, [=, &met](double* points, std::size_t) {
    InTurn s = LoadInTurn(points);
    if (isUsual && AllWithin(s, usual)) {
      if (scales) s = {s.a / k, s.b / k};
      return StoreInTurn(points, s.a - origin.a, s.b - origin.b);
    }
    Point p;
    Load(points, p.x, p.y);
    p = OnUnmarked(Checked(p, met), [=](Point q) { return Point{q.x / k, q.y / k}; });
    p = OnUnmarked(p, [=](Point q) { return Point{q.x - dx, q.y - dy}; });
    Store(points, p.x, p.y);
  });
  return Any(met);
}

ORV_KERNEL inline bool RunAfterInverse(double* xy, std::size_t n) {
  const InTurn usual = Alternating(6.28, 1.57);  // radians: neither a whole turn nor beyond a pole
  Mask met = Mask();
  EachGroup(xy, n, [usual, &met](double* points, std::size_t) {
    const InTurn s = LoadInTurn(points);
    if (AllWithin(s, usual)) return StoreInTurn(points, ToDegrees(s.a), ToDegrees(s.b));
    Point p;
    Load(points, p.x, p.y);
    p = NormaliseCoordinates(InDegrees(Checked(p, met)));
    Store(points, p.x, p.y);
  });
  return Any(met);
}

/// One number for each point of a group, of which there may be fewer than lanes.
inline Lanes LoadOffsets(const double* offsets, std::size_t points) {
  if (points >= kLanes) return LoadLanes(offsets);
  double few[kLanes] = {};
  for (std::size_t i = 0; i < points; ++i) few[i] = offsets[i];
  return LoadLanes(few);
}
inline void StoreOffsets(double* offsets, std::size_t points, Lanes x) {
  if (points >= kLanes) return StoreLanes(offsets, x);
  double few[kLanes];
  StoreLanes(few, x);
  for (std::size_t i = 0; i < points; ++i) offsets[i] = few[i];
}

ORV_KERNEL inline bool RunBeforeShift(double* xy, std::size_t n, double* offsets) {
  const InTurn usual = Alternating(180.0, 90.0);
  Mask met = Mask();
  EachGroup(xy, n, [=, &met](double* points, std::size_t first) {
    if (AllWithin(LoadInTurn(points), usual)) return StoreOffsets(offsets + first, n - first, 0.0);
    Point p;
    Load(points, p.x, p.y);
    p = NormalisePoints(Checked(p, met));
    const Mask plottable = !Marked(p);
    const Mask up = plottable & (p.x >= -360.0) & (p.x < -180.0);
    const Mask down = plottable & (p.x > 180.0) & (p.x <= 360.0);
    const Lanes offset = Select(up, -360.0, Select(down, 360.0, 0.0));
    Store(points, Select(up | down, p.x - offset, p.x), p.y);
    StoreOffsets(offsets + first, n - first, offset);
  });
  return Any(met);
}
ORV_KERNEL inline bool RunAfterShift(double* xy, std::size_t n, const double* offsets) {
  const InTurn usual = Alternating(kUsualResult, kUsualResult);
  Mask met = Mask();
  EachGroup(xy, n, [=, &met](double* points, std::size_t first) {
    const Lanes offset = LoadOffsets(offsets + first, n - first);
    Point p;
    Load(points, p.x, p.y);
    if (AllWithin({p.x, p.y}, usual)) return Store(points, p.x + offset, p.y);
    p = Checked(p, met);
    const Mask skip = Marked(p);
    const Lanes x = Except(p.x, skip, 0.0) + offset;
    Store(points, Except(x, skip, p.x), p.y);
  });
  return Any(met);
}

// The constants are copied, so that no store to a point can change them in the compiler's eyes, and what
// follows from them is computed once for each batch.
template <class E>
ORV_KERNEL void RunForward(const E& engine, double* xy, std::size_t n) {
  const E c = engine;
  Each<kNextBlock>(xy, n, [&c](Point p) { return OnPlottable(p, [&c](Point q) { return Forward(c, q); }); });
}

template <class E>
ORV_KERNEL void RunInverse(const E& engine, double* xy, std::size_t n) {
  const E c = engine;
  Each<kNextBlock>(xy, n, [&c](Point p) { return OnPlottable(p, [&c](Point q) { return Inverse(c, q); }); });
}
template <class D>
ORV_KERNEL void RunShift(const D& method, double* xy, std::size_t n) {
  const D c = method;
  Each<kNextBlock>(xy, n, [&c](Point p) { return OnPlottable(p, [&c](Point q) { return Shift(c, q); }); });
}
template <class W>
ORV_KERNEL void RunWarp(const W& warp, double* xy, std::size_t n) {
  const W c = warp;
  Each<kNextBlock>(xy, n,
                   [&c](Point p) { return OnUnmarkedPoints(p, [&c](Point q) { return Forward(c, q); }); });
}

}  // namespace ORV_ISA
}  // namespace orv
