// The warps.  PROJ has affine transformations, similarities and complex or real polynomials (+proj=horner), but no splines
// and no inverse distances: those have no peer.  Nothing has an inverse.
#include <cstdio>
#include <memory>

#include "bench/Cases.h"
#include "bench/Peers.h"
#include "orv/warp/WarpDef.h"
#include "orv/warp/WarpTransformer.h"

namespace orv::bench {

namespace {

constexpr double kSide = 1000.0;  // pixels

/// Terms 1, x, y, x2, xy, y2, x3, x2y, xy2, y3 of a plausible sheet: a rotation, and a bend of some pixels.
constexpr double kX[] = {500, 0.96, -0.28, 3e-6, -2e-6, 1e-6, 2e-9, -1e-9, 3e-9, -2e-9};
constexpr double kY[] = {-200, 0.28, 0.96, -1e-6, 4e-6, 2e-6, 1e-9, 2e-9, -3e-9, 1e-9};

/// The image of a pixel by the first `terms` terms; four are 1, x, y, xy.
shr::Vec2d Image(double x, double y, size_t terms) {
  const double t[] = {1, x, y, x * x, x * y, y * y, x * x * x, x * x * y, x * y * y, y * y * y};
  shr::Vec2d sum;
  for (size_t i = 0; i < terms; ++i) {
    const size_t term = terms == 4 && i == 3 ? 4 : i;
    sum.x += kX[term] * t[term];
    sum.y += kY[term] * t[term];
  }
  return sum;
}

/// The warp by 25 control points whose images are those of that many terms.
WarpDef Fitted(WarpMethod method, size_t terms) {
  WarpDef def;
  def.SetMethod(method);
  for (int i = 0; i < 25; ++i) {
    const double x = kSide / 4 * (i % 5), y = kSide / 4 * (i / 5);
    const shr::Vec2d image = Image(x, y, terms);
    def.AddSourcePoint(x, y);
    def.AddDestinationPoint(image);
  }
  return def;
}

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

std::string Affine(double xx, double xy, double x0, double yx, double yy, double y0) {
  return "+proj=affine +xoff=" + Number(x0) + " +yoff=" + Number(y0) + " +s11=" + Number(xx) +
         " +s12=" + Number(xy) + " +s21=" + Number(yx) + " +s22=" + Number(yy);
}

/// PROJ lists the coefficients of u by powers of y and in each by powers of x, those of v the other way round.
std::string Horner(int degree, size_t terms) {
  constexpr size_t kTerm[4][4] = {
      {0, 1, 3, 6}, {2, 4, 7, 0}, {5, 8, 0, 0}, {9, 0, 0, 0}};  // [power of y][of x]
  std::string u, v;
  for (int major = 0; major <= degree; ++major) {
    for (int minor = 0; major + minor <= degree; ++minor) {
      const size_t ofU = kTerm[major][minor], ofV = kTerm[minor][major];
      const bool bilinear = terms == 4;
      const auto isUsed = [&](size_t term) { return bilinear ? term < 3 || term == 4 : term < terms; };
      u += (u.empty() ? "" : ",") + Number(isUsed(ofU) ? kX[ofU] : 0.0);
      v += (v.empty() ? "" : ",") + Number(isUsed(ofV) ? kY[ofV] : 0.0);
    }
  }
  return "+proj=horner +ellps=WGS84 +range=10000000 +deg=" + std::to_string(degree) +
         " +fwd_origin=0,0 +inv_origin=0,0 +fwd_u=" + u + " +fwd_v=" + v + " +inv_u=" + u + " +inv_v=" + v;
}

Case Warp(const WarpDef& def, const std::string& peer) {
  Case result;
  result.subject = std::string("Warp: ") + def.MethodName();
  result.draw = [](size_t count) { return RandomPoints({0, kSide, 0, kSide}, count); };
  Side ours;
  ours.who = "orv";
  ours.make = [def] {
    const auto transformer = std::make_shared<WarpTransformer>(def);
    return Both{
        [transformer](shr::Vec2d* points, size_t count) { transformer->TransformForward(points, count); },
        Work()};
  };
  result.sides = {ours};
  if (!peer.empty()) result.sides.push_back(ProjSide(peer, false, false));
  result.apart = 1e-6;  // pixels
  return result;
}

}  // namespace

std::vector<Case> WarpCases() {
  std::vector<Case> cases;
  WarpDef shift;
  shift.SetMethod(WarpMethodDisplacement);
  shift.AddSourcePoint(10, 20);
  shift.AddDestinationPoint(510, -180);
  cases.push_back(Warp(shift, Affine(1, 0, 500, 0, 1, -200)));
  // A scale of 1, for 0.28 and 0.96 are the cathetuses of 1; the angle whose tangent is 0.28 / 0.96, in seconds.
  cases.push_back(
      Warp(Fitted(WarpMethodHelmert, 3), "+proj=helmert +x=500 +y=-200 +s=1 +theta=-58536.736949923055"));
  cases.push_back(
      Warp(Fitted(WarpMethodAffinePolynomial, 3), Affine(kX[1], kX[2], kX[0], kY[1], kY[2], kY[0])));
  cases.push_back(Warp(Fitted(WarpMethodFirstOrderPolynomial, 4), Horner(2, 4)));
  cases.push_back(Warp(Fitted(WarpMethodSecondOrderPolynomial, 6), Horner(2, 6)));
  cases.push_back(Warp(Fitted(WarpMethodThirdOrderPolynomial, 10), Horner(3, 10)));
  WarpDef coefficients;
  coefficients.SetCoefficients(kX[1], kX[2], kX[0], kY[1], kY[2], kY[0]);
  cases.push_back(Warp(coefficients, Affine(kX[1], kX[2], kX[0], kY[1], kY[2], kY[0])));
  for (int method = WarpMethodThinPlateSpline; method <= WarpMethodInverseDistanceSquared; ++method) {
    cases.push_back(Warp(Fitted(static_cast<WarpMethod>(method), 10), ""));
    cases.back().largest = 100000;
  }
  return cases;
}

}  // namespace orv::bench
