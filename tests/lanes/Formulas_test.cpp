// Every engine's kernel against a literal transcription of its equations with the C library's functions.
//
// The kernels use faster or better conditioned forms of the same equations; the tolerances say how far the
// two may differ by round-off, in metres or degrees.  Where a literal form loses digits by itself, its own
// loss is allowed for.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/lanes/LaneSetups.h"

namespace {

using namespace lanetest;
using std::abs, std::asin, std::atan, std::atan2, std::cos, std::cosh, std::exp, std::log, std::pow, std::sin,
    std::sinh, std::sqrt, std::tan, std::tanh;

const orv::lanes::KernelTable& K() { return orv::lanes::Kernels(); }
constexpr std::size_t kPoints = 20000;
const Pt kMarked = {kMarker, kMarker};

using Literal = std::function<Pt(Pt)>;

// Runs the kernel over points and compares: marks exactly, coordinates within the tolerance of each point.
template <class E, class Kernel>
void Compare(const char* name, const E& engine, Kernel kernel, std::vector<Pt> points, const Literal& literal,
             const std::function<double(Pt)>& tolerance) {
  const std::vector<Pt> input = points;
  kernel(engine, Data(points), points.size());
  double worst = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Pt in = input[i], got = points[i], want = literal(in);
    ASSERT_EQ(got.x == kMarker, want.x == kMarker)
        << name << ": (" << in.x << ", " << in.y << ") gives x " << got.x;
    ASSERT_EQ(got.y == kMarker, want.y == kMarker)
        << name << ": (" << in.x << ", " << in.y << ") gives y " << got.y;
    if (got.x == kMarker) continue;
    const double allowed = tolerance(in);
    ASSERT_NEAR(got.x, want.x, allowed) << name << " x: (" << in.x << ", " << in.y << ")";
    ASSERT_NEAR(got.y, want.y, allowed) << name << " y: (" << in.x << ", " << in.y << ")";
    worst = std::max({worst, abs(got.x - want.x), abs(got.y - want.y)});
  }
  std::printf("    %-34s worst difference %.1e\n", name, worst);
}
std::function<double(Pt)> Always(double tolerance) {
  return [tolerance](Pt) { return tolerance; };
}

// The images of geographic points, with the kernel's own forward: a set of plane points in the usable area.
template <class E>
std::vector<Pt> Images(const orv::lanes::EngineKernels<E>& kernels, const E& engine, std::vector<Pt> points) {
  kernels.forward(engine, Data(points), points.size());
  std::erase_if(points, [](Pt p) { return p.x == kMarker; });
  return points;
}

// ---- Mercator --------------------------------------------------------------------------------------------

Pt MercatorForward(const orv::Mercator& c, Pt p) {
  if (c.sphere) {
    if (abs(p.y) >= 1.5707963267948963) return kMarked;
    return {c.a * c.k * (p.x - c.lon0), c.a * c.k * log(tan(kPi / 4 + p.y / 2))};
  }
  const double s = sin(p.y), es = c.e * s;
  if (abs(p.y) > 1.5707963267948963 || 1 - s == 0 || 1 + s == 0)
    return kMarked;  // ln 0 is marked as infinite
  return {c.a * c.k * (p.x - c.lon0), c.a / 2 * c.k * log((1 + s) / (1 - s) * pow((1 - es) / (1 + es), c.e))};
}
Pt MercatorInverse(const orv::Mercator& c, Pt p) {
  if (c.sphere) return {p.x / c.k / c.a + c.lon0, atan(sinh(p.y / c.k / c.a))};
  const double t = pow(2.71828, -p.y / c.k / c.a);
  double phi = kHalfPi - 2 * atan(t);
  for (int i = 0; i < 500; ++i) {
    const double es = c.e * sin(phi);
    if (1 + es == 0) return kMarked;
    const double next = kHalfPi - 2 * atan(t * pow((1 - es) / (1 + es), c.e / 2));
    const bool close = abs(next - phi) <= 1.1920928955078125e-6;
    phi = next;
    if (close) return {p.x / c.k / c.a + c.lon0, phi};
  }
  return kMarked;
}

TEST(Formulas, MercatorForwardIsTheLiteralFormula) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    const orv::Mercator c = MakeMercator(el, -0.3, 0.7);
    // 1 - sin phi keeps an absolute error of 1.1e-16, and so does tan(pi/4 + phi/2) near the pole
    Compare(
        "Mercator forward", c, K().mercator.forward, Box(kPoints, -4, 4, -1.5707, 1.5707),
        [&](Pt p) { return MercatorForward(c, p); },
        [&](Pt p) { return el.a * (4e-15 + 3e-16 / (1 - abs(sin(p.y)))); });
  }
}

TEST(Formulas, MercatorForwardKeepsItsDigitsNextToThePole) {
  // asinh(tan phi) in long doubles, which does not cancel
  const orv::Mercator c = MakeMercator(kClarke1866, 0, 0);
  Compare(
      "Mercator forward, exact", c, K().mercator.forward, Box(kPoints, -4, 4, -1.5707963, 1.5707963),
      [&](Pt p) {
        const long double phi = p.y, s = std::sin(phi), e = c.e;
        const long double q = std::asinh(std::tan(phi)) - e * std::atanh(e * s);
        return Pt{c.a * p.x, static_cast<double>(c.a * q)};
      },
      Always(3e-8));
}

TEST(Formulas, MercatorMarksPolesAndWhatIsNextToThem) {
  for (const Ellipsoid el : {kClarke1866, kSphere}) {
    const orv::Mercator c = MakeMercator(el, 0, 0);
    std::vector<Pt> points;
    for (const double y : {1.5707963267948966, 1.5707963267948963, 1.5707963267948961, 1.57079632, 1.57079631,
                           1.5707, 1.6, 2.0}) {
      points.push_back({0.1, y});
      points.push_back({0.1, -y});
    }
    // next to a pole the literal form has few digits left: only the marks are compared
    Compare(
        "Mercator poles", c, K().mercator.forward, points, [&](Pt p) { return MercatorForward(c, p); },
        Always(1e8));
  }
}

TEST(Formulas, MercatorWithoutARealScaleMarksEverything) {
  orv::Mercator c = MakeMercator(kClarke1866, 0, 0);
  c.nowhere = true;
  Compare(
      "Mercator nowhere", c, K().mercator.forward, Box(20, -1, 1, -1, 1), [](Pt) { return kMarked; },
      Always(0));
  Compare(
      "Mercator nowhere", c, K().mercator.inverse, Box(20, -1, 1, -1, 1), [](Pt) { return kMarked; },
      Always(0));
}

TEST(Formulas, MercatorInverseIsTheLiteralIterationWithItsOwnStop) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    const orv::Mercator c = MakeMercator(el, -0.3, 0.7);
    Compare(
        "Mercator inverse", c, K().mercator.inverse,
        Images(K().mercator, c, Box(kPoints, -4, 4, -1.5706, 1.5706)),
        [&](Pt p) { return MercatorInverse(c, p); }, Always(4e-15));
  }
}

TEST(Formulas, MercatorInverseOfFarPointsIsThePole) {
  const orv::Mercator c = MakeMercator(kClarke1866, 0, 0);
  std::vector<Pt> points = {{0, 1e12}, {0, -1e12}, {0, 1e300}, {0, -1e300}, {1e9, 4e8}, {1e9, -4e8}};
  Compare(
      "Mercator inverse far", c, K().mercator.inverse, points,
      [&](Pt p) {
        return Pt{p.x / c.k / c.a, p.y > 0 ? kHalfPi : -kHalfPi};
      },
      Always(1e-13));
}

// Deliberate: base 2.71828.  The published worked example of the ellipsoid with the true base ends
// at 35.0000006 degrees.
TEST(Formulas, MercatorInverseKeepsTheFiveDigitBase) {
  const orv::Mercator c = MakeMercator(kClarke1866, -kPi, 0);
  std::vector<Pt> points = {{11688673.7, 4139145.6}};
  K().mercator.inverse(c, Data(points), 1);
  EXPECT_NEAR(points[0].x / kDegree, -75.0000001, 1e-7);
  EXPECT_NEAR(points[0].y / kDegree, 34.9999789, 1e-7);
}

// ---- Miller, Equidistant Cylindrical ---------------------------------------------------------------------

TEST(Formulas, MillerIsTheLiteralFormulaBothWays) {
  const orv::Miller c = {6378137, 0.4};
  Compare(
      "Miller forward", c, K().miller.forward, Box(kPoints, -7, 7, -kHalfPi, kHalfPi),
      [&](Pt p) {
        return Pt{c.a * (p.x - c.lon0), c.a * log(tan(kPi / 4 + 0.4 * p.y)) / 0.8};
      },
      Always(1.5e-8));  // eight units in the last place of 1.4e7
  Compare(
      "Miller inverse", c, K().miller.inverse, Box(kPoints, -4e7, 4e7, -1.6e7, 1.6e7),
      [&](Pt p) {
        return Pt{p.x / c.a + c.lon0, atan(sinh(0.8 * p.y / c.a)) / 0.8};
      },
      Always(3e-15));
}

TEST(Formulas, MillerPolesAreFinite) {
  const orv::Miller c = {6378137, 0};
  std::vector<Pt> points = {{0, kHalfPi}, {0, -kHalfPi}};
  K().miller.forward(c, Data(points), 2);
  EXPECT_NEAR(points[0].y, c.a * log(tan(81 * kDegree)) / 0.8, 1e-7);
  EXPECT_NEAR(points[1].y, -c.a * log(tan(81 * kDegree)) / 0.8, 1e-7);
}

TEST(Formulas, MillerInverseBeyondThePoleIsNotMarked) {
  const orv::Miller c = {1, 0};
  std::vector<Pt> points = {{0, 5}};
  K().miller.inverse(c, Data(points), 1);
  EXPECT_NEAR(points[0].y, atan(sinh(4.0)) / 0.8, 1e-15);
  EXPECT_GT(points[0].y, kHalfPi);
}

TEST(Formulas, EquidistantCylindricalIsTheLiteralFormulaBothWays) {
  const orv::EquidistantCylindrical c = {6378137, -1.3, cos(0.9)};
  Compare(
      "Equidistant Cyl. forward", c, K().equidistantCylindrical.forward, Box(kPoints, -7, 7, -2, 2),
      [&](Pt p) {
        return Pt{c.a * c.cosLat1 * (p.x - c.lon0), c.a * p.y};
      },
      Always(0));
  Compare(
      "Equidistant Cyl. inverse", c, K().equidistantCylindrical.inverse, Box(kPoints, -4e7, 4e7, -2e7, 2e7),
      [&](Pt p) {
        return Pt{p.x / (c.a * c.cosLat1) + c.lon0, p.y / c.a};
      },
      Always(0));
}

TEST(Formulas, EquidistantCylindricalOfThePoleHasNoWidthAndNoInverse) {
  const orv::EquidistantCylindrical c = {6378137, 0.2, 0};
  Compare(
      "Equidistant Cyl. at 90", c, K().equidistantCylindrical.forward, Box(100, -3, 3, -1.5, 1.5),
      [&](Pt p) {
        return Pt{0, c.a * p.y};
      },
      Always(0));
  Compare(
      "Equidistant Cyl. at 90", c, K().equidistantCylindrical.inverse, Box(100, -3e6, 3e6, -1e6, 1e6),
      [](Pt) { return kMarked; }, Always(0));
}

// ---- world projections -----------------------------------------------------------------------------------

Pt SinusoidalForward(const orv::Sinusoidal& c, Pt p) {
  const double L = p.x - c.lon0, s = sin(p.y);
  if (c.sphere) return {c.a * L * cos(p.y), c.a * p.y};
  return {c.a * L * cos(p.y) / sqrt(1 - c.e2 * s * s), ArcTo(c.arc, p.y)};
}
Pt SinusoidalInverse(const orv::Sinusoidal& c, Pt p) {
  double phi = p.y / c.a;
  if (!c.sphere) {
    const double mu = p.y / c.arc.ac0;
    phi = mu + c.arc.f2 * sin(2 * mu) + c.arc.f4 * sin(4 * mu) + c.arc.f6 * sin(6 * mu) +
          c.arc.f8 * sin(8 * mu);
  }
  if (abs(phi) > kHalfPi + 1e-9) return kMarked;
  const double s = sin(phi);
  return {c.lon0 + p.x * (c.sphere ? 1 : sqrt(1 - c.e2 * s * s)) / (c.a * cos(phi)), phi};
}

TEST(Formulas, SinusoidalIsTheLiteralFormulaBothWays) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    const orv::Sinusoidal c = MakeSinusoidal(el, -0.3);
    Compare(
        "Sinusoidal forward", c, K().sinusoidal.forward, Box(kPoints, -4, 4, -kHalfPi, kHalfPi),
        [&](Pt p) { return SinusoidalForward(c, p); }, Always(2e-15 * el.a));
    Compare(
        "Sinusoidal inverse", c, K().sinusoidal.inverse,
        Box(kPoints, -3 * el.a, 3 * el.a, -1.6 * el.a, 1.6 * el.a),
        [&](Pt p) { return SinusoidalInverse(c, p); },
        [&](Pt p) {  // the longitude is divided by cos phi, which has the error of phi
          const Pt at = SinusoidalInverse(c, p);
          const double cosine = std::max(at.y == kMarker ? 1 : cos(at.y), 1e-9);
          return 2e-15 * (1 + abs(at.x)) / (cosine * cosine);
        });
  }
}

// As printed: Newton from the latitude, which stops at 1e-12.
template <class Correction>
double PrintedNewton(double start, Correction correction) {
  double x = start;
  for (int i = 0; i < 100; ++i) {
    const double d = correction(x);
    x += d;
    if (abs(d) < 1e-12) break;
  }
  return x;
}

Pt MollweideForward(const orv::Mollweide& c, Pt p) {
  const double theta =
      PrintedNewton(p.y, [&](double t) { return -(t + sin(t) - kPi * sin(p.y)) / (1 + cos(t)); }) / 2;
  return {sqrt(8.0) / kPi * c.a * (p.x - c.lon0) * cos(theta), sqrt(2.0) * c.a * sin(theta)};
}
Pt MollweideInverse(const orv::Mollweide& c, Pt p) {
  if (abs(p.y) > sqrt(2.0) * c.a) return kMarked;
  const double theta = asin(p.y / (sqrt(2.0) * c.a));
  return {c.lon0 + kPi * p.x / (sqrt(8.0) * c.a * cos(theta)),
          asin(std::clamp((2 * theta + sin(2 * theta)) / kPi, -1.0, 1.0))};
}

TEST(Formulas, MollweideIsThePrintedIterationAndItsInverse) {
  const orv::Mollweide c = {6378137, 0.4};
  Compare(
      "Mollweide forward", c, K().mollweide.forward, Box(kPoints, -4, 4, -1.55, 1.55),
      [&](Pt p) { return MollweideForward(c, p); },
      [&](Pt p) {  // theta' of the printed form is uncertain by its round-off over its slope, about u^2/2
        const double colatitude = kHalfPi - abs(p.y), u = std::cbrt(3 * kPi * colatitude * colatitude);
        return c.a * (1e-14 + 1e-14 / (u * u));
      });
  Compare(
      "Mollweide inverse", c, K().mollweide.inverse, Box(kPoints, -1.7e7, 1.7e7, -8.9e6, 8.9e6),
      [&](Pt p) { return MollweideInverse(c, p); },
      [&](Pt p) { return 1e-14 * (2 + abs(MollweideInverse(c, p).x)); });
}

Pt Eckert4Forward(const orv::Eckert4& c, Pt p) {
  const double theta = PrintedNewton(p.y / 2, [&](double t) {
    return -(t + sin(t) * cos(t) + 2 * sin(t) - (2 + kPi / 2) * sin(p.y)) / (2 * cos(t) * (1 + cos(t)));
  });
  return {2 / sqrt(kPi * (4 + kPi)) * c.a * (p.x - c.lon0) * (1 + cos(theta)),
          2 * sqrt(kPi / (4 + kPi)) * c.a * sin(theta)};
}
Pt Eckert4Inverse(const orv::Eckert4& c, Pt p) {
  const double rim = 2 * sqrt(kPi / (4 + kPi)) * c.a;
  if (abs(p.y) > rim) return kMarked;
  const double theta = asin(p.y / rim);
  return {c.lon0 + p.x / (2 / sqrt(kPi * (4 + kPi)) * c.a * (1 + cos(theta))),
          asin(std::clamp((theta + sin(theta) * cos(theta) + 2 * sin(theta)) / (2 + kPi / 2), -1.0, 1.0))};
}

TEST(Formulas, EckertIVIsThePrintedIterationAndItsInverse) {
  const orv::Eckert4 c = {6378137, 0.4};
  Compare(
      "Eckert IV forward", c, K().eckert4.forward, Box(kPoints, -4, 4, -1.55, 1.55),
      [&](Pt p) { return Eckert4Forward(c, p); },
      [&](Pt p) { return c.a * (1e-14 + 4e-15 / (kHalfPi - abs(p.y))); });
  Compare(
      "Eckert IV inverse", c, K().eckert4.inverse, Box(kPoints, -1.7e7, 1.7e7, -8.4e6, 8.4e6),
      [&](Pt p) { return Eckert4Inverse(c, p); }, Always(2e-14));
}

Pt Eckert6Forward(const orv::Eckert6& c, Pt p) {
  const double theta =
      PrintedNewton(p.y, [&](double t) { return -(t + sin(t) - (1 + kPi / 2) * sin(p.y)) / (1 + cos(t)); });
  return {c.a * (p.x - c.lon0) * (1 + cos(theta)) / sqrt(2 + kPi), 2 * c.a * theta / sqrt(2 + kPi)};
}
Pt Eckert6Inverse(const orv::Eckert6& c, Pt p) {
  const double theta = sqrt(2 + kPi) * p.y / (2 * c.a), sine = (theta + sin(theta)) / (1 + kPi / 2);
  if (abs(sine) > 1) return kMarked;
  return {c.lon0 + sqrt(2 + kPi) * p.x / (c.a * (1 + cos(theta))), asin(sine)};
}

TEST(Formulas, EckertVIIsThePrintedIterationAndItsInverse) {
  const orv::Eckert6 c = {6378137, 0.4};
  Compare(
      "Eckert VI forward", c, K().eckert6.forward, Box(kPoints, -4, 4, -kHalfPi, kHalfPi),
      [&](Pt p) { return Eckert6Forward(c, p); }, Always(5e-15 * c.a));
  Compare(
      "Eckert VI inverse", c, K().eckert6.inverse, Box(kPoints, -1.7e7, 1.7e7, -8.8e6, 8.8e6),
      [&](Pt p) { return Eckert6Inverse(c, p); }, Always(2e-14));
}

Pt RobinsonForward(const orv::Robinson& c, Pt p) {
  const int i = std::min(17, static_cast<int>(std::floor(abs(p.y) * 11.459156036376953)));
  const double d = (abs(p.y) - i * static_cast<double>(0.08726646f)) * 57.29577951308232;
  const float *l = orv::kRobinsonLength[i], *s = orv::kRobinsonDistance[i];
  const auto at = [d](float v, double rest) { return rest * d + static_cast<double>(v); };
  const double X = at(l[0], at(l[1], at(l[2], static_cast<double>(l[3]))));
  const double Y = at(s[0], at(s[1], at(s[2], static_cast<double>(s[3]))));
  const double y = Y * 1.3523000478744507 * c.a;
  return {X * 0.8486999869346619 * p.x * c.a, p.y < 0 ? -y : y};
}

TEST(Formulas, RobinsonIsTheLiteralFormulaToTheLastBit) {
  const orv::Robinson c = {6378137};
  std::vector<Pt> points = Box(kPoints, -6.3, 6.3, -kHalfPi, kHalfPi);
  for (int i = -18; i <= 18; ++i) {  // the nodes, and where the row changes a little before them
    points.push_back({2, i * kHalfPi / 18});
    points.push_back({2, i * kHalfPi / 18 * (1 - 1.3e-9)});
    points.push_back({2, i * kHalfPi / 18 * (1 - 0.7e-9)});
  }
  Compare(
      "Robinson forward", c, K().robinson.forward, points, [&](Pt p) { return RobinsonForward(c, p); },
      Always(0));
}

Pt RobinsonInverse(const orv::Robinson& c, Pt p) {
  const double Y = abs(p.y) / (1.3523000478744507 * c.a);
  if (Y > 1 + 1e-6) return kMarked;
  int i = 0;
  while (i < 17 && static_cast<double>(orv::kRobinsonDistance[i + 1][0]) <= Y) ++i;
  // bisection on the row's own forward, a little over both ends
  const auto at = [i](const float(&table)[19][4], double d) {
    double sum = 0;
    for (int k = 3; k >= 0; --k) sum = sum * d + static_cast<double>(table[i][k]);
    return sum;
  };
  double low = -0.01, high = 5.01;
  for (int step = 0; step < 100; ++step) {
    const double mid = (low + high) / 2;
    (at(orv::kRobinsonDistance, mid) < Y ? low : high) = mid;
  }
  const double phi = std::min(kHalfPi, i * static_cast<double>(0.08726646f) + low / 57.29577951308232);
  return {p.x / (0.8486999869346619 * c.a * at(orv::kRobinsonLength, low)), p.y < 0 ? -phi : phi};
}

TEST(Formulas, RobinsonInverseIsTheRootOfItsRow) {
  const orv::Robinson c = {6378137};
  Compare(
      "Robinson inverse", c, K().robinson.inverse, Box(kPoints, -1.7e7, 1.7e7, -8.7e6, 8.7e6),
      [&](Pt p) { return RobinsonInverse(c, p); }, Always(2e-14));
  // next to both ends of each row, half a metre and more away from where it passes into the next
  std::vector<Pt> nodes;
  for (int i = 0; i < orv::kRobinsonNodes; ++i) {
    const double y = 1.3523000478744507 * c.a * static_cast<double>(orv::kRobinsonDistance[i][0]);
    for (const double off : {0.5, 5.0, 5e3, 5e5}) {
      nodes.push_back({1e7, y - off});
      if (i < orv::kRobinsonIntervals) nodes.push_back({-1e7, -y - off});
    }
  }
  Compare(
      "Robinson inverse, nodes", c, K().robinson.inverse, nodes, [&](Pt p) { return RobinsonInverse(c, p); },
      Always(2e-14));
}

Pt SterlingForward(const orv::RobinsonSterling& c, Pt p) {
  const double w = abs(p.y) * 36 / kPi;
  const int i = std::min(17, static_cast<int>(std::floor(w)));
  const auto at = [&](const double* nodes, double sign) {
    const double q = w - i, before = i == 0 ? sign * nodes[1] : nodes[i - 1];
    return nodes[i] + q * (nodes[i + 1] - before) / 2 + q * q * (nodes[i + 1] - 2 * nodes[i] + before) / 2;
  };
  return {0.8487 * c.a * at(orv::kRobinsonLengthNodes, 1) * (p.x - c.lon0),
          (p.y < 0 ? -1.3523 : 1.3523) * c.a * at(orv::kRobinsonDistanceNodes, -1)};
}

TEST(Formulas, RobinsonSterlingIsStirlingsFormulaAndComesBack) {
  const orv::RobinsonSterling c = {6378137, 0.4};
  const std::vector<Pt> world = Box(kPoints, -4, 4, -kHalfPi, kHalfPi);
  Compare(
      "Robinson-Sterling forward", c, K().robinsonSterling.forward, world,
      [&](Pt p) { return SterlingForward(c, p); }, Always(5e-15 * c.a));
  std::vector<Pt> plane = world;
  for (Pt& p : plane) p = SterlingForward(c, p);
  std::size_t next = 0;
  Compare(
      "Robinson-Sterling inverse", c, K().robinsonSterling.inverse, plane, [&](Pt) { return world[next++]; },
      Always(2e-14));
}

Pt VanDerGrintenForward(const orv::VanDerGrinten& c, Pt p) {
  const double L = p.x - c.lon0, theta = asin(abs(2 * p.y / kPi)), A = abs(kPi / L - L / kPi) / 2;
  const double G = cos(theta) / (sin(theta) + cos(theta) - 1), P = G * (2 / sin(theta) - 1), Q = A * A + G;
  const double S = P * P + A * A;
  const double x = (A * (G - P * P) + sqrt(A * A * pow(G - P * P, 2) - S * (G * G - P * P))) / S;
  const double y = (P * Q - A * sqrt((A * A + 1) * S - Q * Q)) / S;
  return {std::copysign(kPi * c.a * x, L), std::copysign(kPi * c.a * y, p.y)};
}
Pt VanDerGrintenInverse(const orv::VanDerGrinten& c, Pt p) {
  const double X = p.x / (kPi * c.a), Y = p.y / (kPi * c.a), r2 = X * X + Y * Y;
  if (r2 > 1 + 1e-9) return kMarked;
  const double c1 = -abs(Y) * (1 + r2), c2 = c1 - 2 * Y * Y + X * X, c3 = -2 * c1 + 1 + 2 * Y * Y + r2 * r2;
  const double d = Y * Y / c3 + (2 * pow(c2 / c3, 3) - 9 * c1 * c2 / (c3 * c3)) / 27;
  const double a1 = (c1 - c2 * c2 / (3 * c3)) / c3, m1 = 2 * sqrt(-a1 / 3);
  const double theta1 = std::acos(std::clamp(3 * d / (a1 * m1), -1.0, 1.0)) / 3;
  return {c.lon0 + kPi * (r2 - 1 + sqrt(1 + 2 * (X * X - Y * Y) + r2 * r2)) / (2 * X),
          std::copysign(kPi * (-m1 * cos(theta1 + kPi / 3) - c2 / (3 * c3)), Y)};
}

TEST(Formulas, VanDerGrintenIsThePrintedQuotientsWhereTheyKeepTheirDigits) {
  const orv::VanDerGrinten c = {6378137, 0};
  for (const double side : {1.0, -1.0}) {
    const auto half = [side](double x0, double x1, double y0, double y1) {
      std::vector<Pt> points = Box(kPoints, x0, x1, y0, y1);
      for (Pt& p : points) p = {side * p.x, side * p.y};
      return points;
    };
    Compare(
        "Van der Grinten forward", c, K().vanDerGrinten.forward, half(0.3, 3.14, 0.05, 1.55),
        [&](Pt p) { return VanDerGrintenForward(c, p); }, Always(2e-6));
    Compare(
        "Van der Grinten, folded", c, K().vanDerGrinten.forward, half(3.15, 6, 0.05, 1.55),
        [&](Pt p) { return VanDerGrintenForward(c, p); }, Always(2e-6));
    // the closed form of the cubic, away from the rim and the Equator, where its arc cosine loses digits
    Compare(
        "Van der Grinten inverse", c, K().vanDerGrinten.inverse, half(1e5, 1.2e7, 1e6, 1.4e7),
        [&](Pt p) { return VanDerGrintenInverse(c, p); }, Always(2e-12));
  }
}

// ---- Transverse Mercator ---------------------------------------------------------------------------------

Pt TmForward(const orv::TransverseMercator& c, Pt p) {
  const double L = p.x - c.lon0, s = sin(p.y), co = cos(p.y);
  if (c.sphere) {
    const double B = co * sin(L);
    if (abs(B) == 1) return kMarked;
    return {c.a * c.k0 / 2 * log((1 + B) / (1 - B)), c.a * c.k0 * (atan2(tan(p.y), cos(L)) - c.lat0)};
  }
  const double M = ArcTo(c.arc, p.y);
  if (abs(p.y) == kHalfPi) return {0, c.k0 * (M - c.m0)};
  const double N = c.a / sqrt(1 - c.e2 * s * s), T = tan(p.y) * tan(p.y), C = c.ep2 * co * co, A = L * co;
  return {
      c.k0 * N *
          (A + (1 - T + C) * pow(A, 3) / 6 + (5 - 18 * T + T * T + 72 * C - 58 * c.ep2) * pow(A, 5) / 120),
      c.k0 * (M - c.m0 +
              N * tan(p.y) *
                  (A * A / 2 + (5 - T + 9 * C + 4 * C * C) * pow(A, 4) / 24 +
                   (61 - 58 * T + T * T + 600 * C - 330 * c.ep2) * pow(A, 6) / 720))};
}

Pt TmInverse(const orv::TransverseMercator& c, Pt p, bool longer) {
  if (c.sphere) {
    const double D = p.y / (c.a * c.k0) + c.lat0, x = p.x / (c.a * c.k0);
    return {c.lon0 + atan2(sinh(x), cos(D)), asin(sin(D) / cosh(x))};
  }
  const double mu = (c.m0 + p.y / c.k0) / c.arc.ac0;
  const double phi1 =
      mu + c.arc.f2 * sin(2 * mu) + c.arc.f4 * sin(4 * mu) + c.arc.f6 * sin(6 * mu) + c.arc.f8 * sin(8 * mu);
  if (abs(phi1) >= kHalfPi) return {c.lon0, phi1 > 0 ? kHalfPi : -kHalfPi};
  const double s = sin(phi1), co = cos(phi1), t = tan(phi1), T = t * t, C = c.ep2 * co * co,
               w = 1 - c.e2 * s * s;
  const double N = c.a / sqrt(w), R = c.a * (1 - c.e2) / pow(w, 1.5), D = p.x / (N * c.k0);
  double inPhi = D * D / 2 - (5 + 3 * T + 10 * C - 4 * C * C - 9 * c.ep2) * pow(D, 4) / 24 +
                 (61 + 90 * T + 298 * C + 45 * T * T - 252 * c.ep2 - 3 * C * C) * pow(D, 6) / 720;
  double inLambda = D - (1 + 2 * T + C) * pow(D, 3) / 6 +
                    (5 - 2 * C + 28 * T - 3 * C * C + 8 * c.ep2 + 24 * T * T) * pow(D, 5) / 120;
  if (longer) {
    inPhi -= (1385 + 3633 * T + 4095 * T * T + 1575 * T * T * T) * pow(D, 8) / 40320;
    inLambda -= (61 + 662 * T + 1320 * T * T + 720 * T * T * T) * pow(D, 7) / 5040;
  }
  const double phi = phi1 - N * t / R * inPhi;
  if (longer && abs(phi) > kHalfPi + 1e-9) return kMarked;
  return {c.lon0 + inLambda / co, longer ? std::clamp(phi, -kHalfPi, kHalfPi) : phi};
}

TEST(Formulas, TransverseMercatorForwardIsTheLiteralSeries) {
  const orv::TransverseMercator c = MakeTm(kAiry, 0.9996012717, -2 * kDegree, 49 * kDegree);
  Compare(
      "Transverse Mercator forward", c, K().transverseMercator.forward, Box(kPoints, -0.15, 0.1, -1.55, 1.55),
      [&](Pt p) { return TmForward(c, p); }, Always(3e-8));
  const orv::TransverseMercator flat = MakeTm(kFlat, 1.1, 0.3, -0.8);
  Compare(
      "TM forward, f = 0.1, far out", flat, K().utm.forward, Box(kPoints, -0.5, 1, -1.3, 1.3),
      [&](Pt p) { return TmForward(flat, p); }, Always(1e-6));
}

TEST(Formulas, TransverseMercatorInverseIsTheLiteralSeries) {
  const orv::TransverseMercator c = MakeTm(kAiry, 0.9996012717, -2 * kDegree, 49 * kDegree);
  const std::vector<Pt> plane = Images(K().transverseMercator, c, Box(kPoints, -0.15, 0.1, -1.5, 1.5));
  // the longitude is divided by cos phi
  Compare(
      "Transverse Mercator inverse", c, K().transverseMercator.inverse, plane,
      [&](Pt p) { return TmInverse(c, p, false); }, Always(2e-14));
  Compare(
      "UTM inverse", c, K().utm.inverse, plane, [&](Pt p) { return TmInverse(c, p, true); }, Always(2e-14));
  const orv::TransverseMercator flat = MakeTm(kFlat, 1.1, 0.3, -0.8);
  const std::vector<Pt> wide = Images(K().transverseMercator, flat, Box(kPoints, 0, 0.6, -1.1, 1.1));
  Compare(
      "TM inverse, f = 0.1", flat, K().transverseMercator.inverse, wide,
      [&](Pt p) { return TmInverse(flat, p, false); }, Always(2e-14));
  Compare(
      "UTM inverse, f = 0.1", flat, K().utm.inverse, wide, [&](Pt p) { return TmInverse(flat, p, true); },
      Always(2e-14));
}

TEST(Formulas, TransverseMercatorPolesAreOnTheMeridianAndComeBackAtTheCentralLongitude) {
  const orv::TransverseMercator c = MakeTm(kClarke1866, 0.9996, 0.2, 0.5);
  std::vector<Pt> points = {{0.7, kHalfPi}, {-1.4, -kHalfPi}};
  K().transverseMercator.forward(c, Data(points), 2);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(points[i].x, 0);
    EXPECT_NEAR(points[i].y, c.k0 * (ArcTo(c.arc, i == 0 ? kHalfPi : -kHalfPi) - c.m0), 1e-8);
  }
  points = {{1e5, 1.2e7}, {-1e5, -2e7}, {1e30, 1e300}, {0, -1e15}};  // beyond the poles
  for (const auto inverse : {K().transverseMercator.inverse, K().utm.inverse}) {
    std::vector<Pt> got = points;
    inverse(c, Data(got), got.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i].x, c.lon0);
      EXPECT_EQ(got[i].y, points[i].y > 0 ? kHalfPi : -kHalfPi);
    }
  }
}

TEST(Formulas, OnlyTheLongerInverseMarksLatitudesBeyondAPole) {
  const orv::TransverseMercator c = MakeTm(kClarke1866, 1, 0, 0);
  const Pt far = {9e6, 7e6};  // the series overshoots there
  std::vector<Pt> tm = {far}, utm = {far};
  K().transverseMercator.inverse(c, Data(tm), 1);
  K().utm.inverse(c, Data(utm), 1);
  EXPECT_GT(abs(TmInverse(c, far, false).y), kHalfPi);
  EXPECT_NEAR(tm[0].y, TmInverse(c, far, false).y, 1e-11);
  EXPECT_EQ(utm[0].x, kMarker);
  EXPECT_EQ(utm[0].y, kMarker);
}

TEST(Formulas, SphericalTransverseMercatorIsTheLiteralFormulaOnBothSides) {
  const orv::TransverseMercator c = MakeTm(kSphere, 0.97, 0.4, -0.6);
  // all round the sphere; (1 + B)/(1 - B) keeps an absolute error of 1.1e-16 in 1 - |B|
  Compare(
      "spherical TM forward", c, K().transverseMercator.forward, Box(kPoints, -3, 3, -kHalfPi, kHalfPi),
      [&](Pt p) { return TmForward(c, p); },
      [&](Pt p) { return c.a * (4e-15 + 3e-16 / (1 - abs(cos(p.y) * sin(p.x - c.lon0)))); });
  Compare(
      "spherical TM inverse", c, K().transverseMercator.inverse, Box(kPoints, -2e7, 2e7, -3e7, 3e7),
      [&](Pt p) { return TmInverse(c, p, false); },
      [&](Pt p) {
        const double cosine =
            cos(TmInverse(c, p, false).y);  // asin loses digits at a pole, the longitude too
        return 4e-15 + 1e-15 / std::max(cosine, 1e-9);
      });
  Compare(
      "spherical UTM inverse", c, K().utm.inverse, Box(100, -2e7, 2e7, -1e7, 1e7),
      [&](Pt p) { return TmInverse(c, p, false); }, Always(1e-13));
}

TEST(Formulas, SphericalTransverseMercatorMarksTheTwoPointsWhereItIsInfinite) {
  const orv::TransverseMercator c = MakeTm(kSphere, 1, 0, 0);
  std::vector<Pt> points = {{kHalfPi, 0}, {-kHalfPi, 0}, {kHalfPi, 0.1}, {0, kHalfPi}};
  K().transverseMercator.forward(c, Data(points), 4);
  EXPECT_EQ(points[0].x, kMarker);
  EXPECT_EQ(points[1].x, kMarker);
  EXPECT_NEAR(points[2].y, c.a * kHalfPi, 1e-7);  // 90 degrees from the meridian y is that of the pole
  EXPECT_NEAR(points[3].x, 0, 1e-7);
  EXPECT_NEAR(points[3].y, c.a * kHalfPi, 1e-7);
  points = {{0, c.a * kHalfPi}, {0, -c.a * kHalfPi}};  // the poles come back at the central longitude
  K().transverseMercator.inverse(c, Data(points), 2);
  EXPECT_EQ(points[0].x, 0);
  EXPECT_EQ(points[0].y, kHalfPi);
  EXPECT_EQ(points[1].x, 0);
  EXPECT_EQ(points[1].y, -kHalfPi);
}

TEST(Formulas, SphericalTransverseMercatorRunsOnOverThePole) {
  const orv::TransverseMercator c = MakeTm(kSphere, 1, 0, 0);
  std::vector<Pt> points = {{3.0, 1.2}};
  K().transverseMercator.forward(c, Data(points), 1);
  EXPECT_GT(points[0].y, c.a * kHalfPi);
  EXPECT_NEAR(points[0].y, c.a * atan2(tan(1.2), cos(3.0)), 1e-7);
}

TEST(Formulas, TransverseMercatorWithoutScaleHasNoInverse) {
  for (const Ellipsoid el : {kSphere, kAiry}) {
    const orv::TransverseMercator c = MakeTm(el, 0, 0, 0);
    Compare(
        "TM, K0 = 0", c, K().transverseMercator.inverse, Box(20, -1, 1, -1, 1), [](Pt) { return kMarked; },
        Always(0));
    Compare(
        "UTM, K0 = 0", c, K().utm.inverse, Box(20, -1, 1, -1, 1), [](Pt) { return kMarked; }, Always(0));
  }
}

// ---- Cassini ---------------------------------------------------------------------------------------------

Pt CassiniForward(const orv::Cassini& c, Pt p) {
  const double L = p.x - c.lon0, s = sin(p.y), co = cos(p.y);
  if (c.sphere) {
    return {c.a * asin(std::clamp(co * sin(L), -1.0, 1.0)), c.a * (atan2(tan(p.y), cos(L)) - c.lat0)};
  }
  const double M = ArcTo(c.arc, p.y);
  if (abs(p.y) == kHalfPi) return {0, M - c.m0};
  const double N = c.a / sqrt(1 - c.e2 * s * s), T = tan(p.y) * tan(p.y), C = c.ep2 * co * co, A = L * co;
  return {N * (A - T * pow(A, 3) / 6 - (8 - T + 8 * C) * T * pow(A, 5) / 120),
          M - c.m0 + N * tan(p.y) * (A * A / 2 + (5 - T + 6 * C) * pow(A, 4) / 24)};
}
Pt CassiniInverse(const orv::Cassini& c, Pt p) {
  if (c.sphere) {
    if (abs(p.x) > c.a * kHalfPi * (1 + 1e-9)) return kMarked;
    const double D = p.y / c.a + c.lat0, x = std::clamp(p.x / c.a, -kHalfPi, kHalfPi);
    return {c.lon0 + atan2(tan(x), cos(D)), asin(sin(D) * cos(x))};
  }
  const double mu = (c.m0 + p.y) / c.arc.ac0;
  const double phi1 =
      mu + c.arc.f2 * sin(2 * mu) + c.arc.f4 * sin(4 * mu) + c.arc.f6 * sin(6 * mu) + c.arc.f8 * sin(8 * mu);
  if (abs(phi1) >= kHalfPi) return {c.lon0, phi1 > 0 ? kHalfPi : -kHalfPi};
  const double s = sin(phi1), t = tan(phi1), T = t * t, w = 1 - c.e2 * s * s;
  const double N = c.a / sqrt(w), R = c.a * (1 - c.e2) / pow(w, 1.5), D = p.x / N;
  const double phi = phi1 - N * t / R * (D * D / 2 - (1 + 3 * T) * pow(D, 4) / 24);
  if (abs(phi) > kHalfPi + 1e-9) return kMarked;
  return {c.lon0 + (D - T * pow(D, 3) / 3 + (1 + 3 * T) * T * pow(D, 5) / 15) / cos(phi1),
          std::clamp(phi, -kHalfPi, kHalfPi)};
}

TEST(Formulas, CassiniIsTheLiteralSeriesBothWays) {
  for (const Ellipsoid el : {kClarke1866, kFlat}) {
    const orv::Cassini c = MakeCassini(el, -1.07, 0.18);
    Compare(
        "Cassini forward", c, K().cassini.forward, Box(kPoints, -1.15, -1, -1.5, 1.5),
        [&](Pt p) { return CassiniForward(c, p); }, Always(el.a * 3e-15));
    Compare(
        "Cassini inverse", c, K().cassini.inverse, Images(K().cassini, c, Box(kPoints, -1.15, -1, -1.4, 1.4)),
        [&](Pt p) { return CassiniInverse(c, p); }, Always(1e-14));
  }
}

TEST(Formulas, CassiniMarksAndPolesOfTheEllipsoid) {
  const orv::Cassini c = MakeCassini(kClarke1866, 0.1, 0.5);
  std::vector<Pt> poles = {{0.3, kHalfPi}, {0.3, -kHalfPi}};
  Compare(
      "Cassini poles", c, K().cassini.forward, poles, [&](Pt p) { return CassiniForward(c, p); },
      Always(1e-8));
  std::vector<Pt> far = {{1e5, 9e6}, {1e5, -3e7}, {3e6, 6.6e6}, {-9e6, 6.8e6}, {-9e6, 5e6}, {0, 1e300}};
  Compare(
      "Cassini inverse far", c, K().cassini.inverse, far, [&](Pt p) { return CassiniInverse(c, p); },
      Always(1e-9));
}

TEST(Formulas, SphericalCassiniIsTheLiteralFormulaBothWays) {
  const orv::Cassini c = MakeCassini(kSphere, 0.4, -0.6);
  Compare(
      "spherical Cassini forward", c, K().cassini.forward, Box(kPoints, -6, 6, -kHalfPi, kHalfPi),
      [&](Pt p) { return CassiniForward(c, p); },
      [&](Pt p) { return c.a * (2e-15 + 2e-16 / sqrt(1 - abs(cos(p.y) * sin(p.x - c.lon0)) + 1e-16)); });
  Compare(
      "spherical Cassini inverse", c, K().cassini.inverse, Box(kPoints, -1.2e7, 1.2e7, -3e7, 3e7),
      [&](Pt p) { return CassiniInverse(c, p); },
      [&](Pt p) { return 4e-15 + 1e-15 / std::max(cos(CassiniInverse(c, p).y), 1e-9); });
}

TEST(Formulas, SphericalCassiniRimIsClampedWithinOnePartInABillion) {
  const orv::Cassini c = MakeCassini(kSphere, 0.4, 0);
  const double rim = c.a * kHalfPi;
  std::vector<Pt> points = {
      {rim, 1e6}, {-rim, 1e6}, {rim * (1 + 9e-10), 1e6}, {rim * (1 + 2e-9), 1}, {-rim * (1 + 2e-9), 1},
      {0, rim},   {0, -rim}};
  K().cassini.inverse(c, Data(points), points.size());
  for (const std::size_t i : {0u, 2u}) {
    EXPECT_NEAR(points[i].x, 0.4 + kHalfPi, 1e-15);
    EXPECT_NEAR(points[i].y, 0, 1e-15);
  }
  EXPECT_NEAR(points[1].x, 0.4 - kHalfPi, 1e-15);
  EXPECT_EQ(points[3].x, kMarker);
  EXPECT_EQ(points[4].y, kMarker);
  EXPECT_EQ(points[5].x, 0.4);  // the poles, at the central longitude
  EXPECT_EQ(points[5].y, kHalfPi);
  EXPECT_EQ(points[6].y, -kHalfPi);
}

// ---- conics ----------------------------------------------------------------------------------------------

struct ConePt {
  double rho, theta;
};
ConePt ConeOf(double n, double rho0, Pt p) {  // (14-10), (14-11)
  const double s = n < 0 ? -1 : 1;
  return {s * sqrt(p.x * p.x + (rho0 - p.y) * (rho0 - p.y)), atan2(s * p.x, s * (rho0 - p.y))};
}
Pt ConePoint(double rho, double theta, double rho0) { return {rho * sin(theta), rho0 - rho * cos(theta)}; }

double LambertRho(const orv::LambertConformalConic& c, double phi) {
  if (c.sphere) return c.aF / pow(tan(kPi / 4 + phi / 2), c.n);
  return c.aF * pow(ConformalT(c.e, phi), c.n);
}
Pt LambertForward(const orv::LambertConformalConic& c, Pt p) {
  return ConePoint(LambertRho(c, p.y), c.n * (p.x - c.lon0), c.rho0);
}
Pt LambertInverse(const orv::LambertConformalConic& c, Pt p) {
  const ConePt at = ConeOf(c.n, c.rho0, p);
  const double lambda = c.lon0 + at.theta / c.n;
  if (c.sphere) return {lambda, 2 * atan(pow(c.aF / at.rho, 1 / c.n)) - kHalfPi};
  const double t = pow(at.rho / c.aF, 1 / c.n);
  double phi = kHalfPi - 2 * atan(t);
  for (int i = 0; i < 60; ++i) {
    const double es = c.e * sin(phi);
    phi = kHalfPi - 2 * atan(t * pow((1 - es) / (1 + es), c.e / 2));
  }
  return {lambda, phi};
}

TEST(Formulas, LambertConformalConicIsTheLiteralFormulaBothWays) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    for (const double side : {1.0, -1.0}) {
      const auto c = MakeLambert(el, -1.7, 0.4, side * 0.58, side * 0.79);
      const auto area = Box(kPoints, -4.8, 1.4, -1.5, 1.5);
      Compare(
          "Lambert forward", c, K().lambertConformalConic.forward, area,
          [&](Pt p) { return LambertForward(c, p); },
          [&](Pt p) { return (abs(LambertRho(c, p.y)) + abs(c.rho0)) * 4e-15 / cos(p.y); });
      Compare(
          "Lambert inverse", c, K().lambertConformalConic.inverse, Images(K().lambertConformalConic, c, area),
          [&](Pt p) { return LambertInverse(c, p); },
          Always(2e-14 + 1e-12 * el.e2() / (1 - el.e2())));  // the stop at 1e-12 leaves e^2 of it
    }
  }
}

Pt AlbersForward(const orv::Albers& c, Pt p) {
  const double w = c.C - c.n * AuthalicQ(c.e, p.y);
  if (w < 0) return kMarked;
  return ConePoint(c.a * sqrt(w) / c.n, c.n * (p.x - c.lon0), c.rho0);
}
Pt AlbersInverse(const orv::Albers& c, Pt p) {
  const ConePt at = ConeOf(c.n, c.rho0, p);
  const double lambda = c.lon0 + at.theta / c.n, e2 = c.e * c.e;
  const double q = (c.C - pow(at.rho * c.n / c.a, 2)) / c.n;
  if (abs(q) > c.qp * (1 + 1e-9)) return kMarked;
  double phi = asin(std::clamp(q / 2, -1.0, 1.0));
  for (int i = 0; i < 50 && !c.sphere; ++i) {  // (3-16)
    const double s = sin(phi), es = c.e * s, w = 1 - es * es;
    phi += w * w / (2 * cos(phi)) * (q / (1 - e2) - s / w + 1 / (2 * c.e) * log((1 - es) / (1 + es)));
  }
  return {lambda, phi};
}

TEST(Formulas, AlbersIsTheLiteralFormulaBothWays) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    for (const double side : {1.0, -1.0}) {
      const auto c = MakeAlbers(el, -1.7, 0.4, side * 0.51, side * 0.79);
      const auto area = Box(kPoints, -4.8, 1.4, -1.4, 1.4);
      Compare(
          "Albers forward", c, K().albers.forward, area, [&](Pt p) { return AlbersForward(c, p); },
          Always(el.a * 2e-14));
      Compare(
          "Albers inverse", c, K().albers.inverse, Images(K().albers, c, area),
          [&](Pt p) { return AlbersInverse(c, p); }, Always(1e-13));
    }
  }
}

TEST(Formulas, AlbersInverseEndsAtThePoles) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    const auto c = MakeAlbers(el, 0, 0.4, 0.51, 0.79);
    const auto at = [&](double q) {  // due north or south of the apex
      return Pt{0, c.rho0 - c.a * sqrt(c.C - c.n * q) / c.n};
    };
    std::vector<Pt> points = {at(c.qp),
                              at(-c.qp),
                              at(c.qp * (1 + 9e-10)),
                              at(-c.qp * (1 + 9e-10)),
                              at(c.qp * (1 + 2e-9)),
                              at(-c.qp * (1 + 2e-9))};
    K().albers.inverse(c, Data(points), points.size());
    for (const std::size_t i : {0u, 1u, 2u, 3u}) {
      EXPECT_NEAR(points[i].y, i % 2 == 0 ? kHalfPi : -kHalfPi, 1e-7);  // q is flat there
      EXPECT_EQ(points[i].x, 0);
    }
    EXPECT_EQ(points[4].x, kMarker);
    EXPECT_EQ(points[5].y, kMarker);
  }
}

double LiteralFootpoint(const orv::MeridianArc& m, double M) {
  const double mu = M / m.ac0;
  return mu + m.f2 * sin(2 * mu) + m.f4 * sin(4 * mu) + m.f6 * sin(6 * mu) + m.f8 * sin(8 * mu);
}

TEST(Formulas, EquidistantConicIsTheLiteralFormulaBothWays) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    for (const double side : {1.0, -1.0}) {
      const auto c = MakeEquiConic(el, -1.7, 0.4, side * 0.51, side * 0.79);
      const auto area = Box(kPoints, -4.8, 1.4, -1.57, 1.57);
      Compare(
          "Equidistant Conic forward", c, K().equidistantConic.forward, area,
          [&](Pt p) { return ConePoint(c.aG - ArcTo(c.arc, p.y), c.n * (p.x - c.lon0), c.rho0); },
          Always(el.a * 1e-14));
      Compare(
          "Equidistant Conic inverse", c, K().equidistantConic.inverse, Images(K().equidistantConic, c, area),
          [&](Pt p) {
            const ConePt at = ConeOf(c.n, c.rho0, p);
            return Pt{c.lon0 + at.theta / c.n, LiteralFootpoint(c.arc, c.aG - at.rho)};
          },
          Always(1e-14));
    }
  }
}

Pt PolyconicForward(const orv::Polyconic& c, Pt p) {
  const double L = p.x - c.lon0, s = sin(p.y), E = L * s;
  if (p.y == 0) return {c.a * L, -c.m0};
  const double N = c.a / sqrt(1 - c.e2 * s * s), cot = 1 / tan(p.y);
  return {N * cot * sin(E), ArcTo(c.arc, p.y) - c.m0 + N * cot * (1 - cos(E))};
}
Pt PolyconicInverse(const orv::Polyconic& c, Pt p) {  // (18-18) to (18-22), with e2 = 0 (18-7) to (18-10)
  const double A = (c.m0 + p.y) / c.a, x = p.x / c.a, B = x * x + A * A;
  if (A == 0) return {c.lon0 + x, 0};
  double phi = A, C = 0;
  for (int i = 0; i < 50; ++i) {
    const double s2 = sin(2 * phi), Ma = ArcTo(c.arc, phi) / c.a;
    C = sqrt(1 - c.e2 * pow(sin(phi), 2)) * tan(phi);
    const double M1 =
        c.arc.c0 - 2 * c.arc.c2 * cos(2 * phi) + 4 * c.arc.c4 * cos(4 * phi) - 6 * c.arc.c6 * cos(6 * phi);
    phi -= (A * (C * Ma + 1) - Ma - (Ma * Ma + B) * C / 2) /
           (c.e2 * s2 * (Ma * Ma + B - 2 * A * Ma) / (4 * C) + (A - Ma) * (C * M1 - 2 / s2) - M1);
  }
  C = sqrt(1 - c.e2 * pow(sin(phi), 2)) * tan(phi);
  return {c.lon0 + asin(x * C) / sin(phi), phi};
}

TEST(Formulas, PolyconicIsTheLiteralFormulaBothWays) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    const auto c = MakePolyconic(el, -1.7, 0.4);
    // the printed 1 - cos E over tan phi loses digits next to the Equator
    Compare(
        "Polyconic forward", c, K().polyconic.forward, Box(kPoints, -4.8, 1.4, -1.5, 1.5),
        [&](Pt p) { return PolyconicForward(c, p); },
        [&](Pt p) { return c.a * (4e-15 + 4e-16 / abs(sin(p.y))); });
    Compare(
        "Polyconic inverse", c, K().polyconic.inverse,
        Images(K().polyconic, c, Box(kPoints, -2.7, -0.7, -1.3, 1.3)),
        [&](Pt p) { return PolyconicInverse(c, p); },
        [&](Pt p) { return 2e-13 + 1e-14 / abs(sin(PolyconicInverse(c, p).y)); });
  }
}

TEST(Formulas, BonneIsTheLiteralFormulaBothWays) {
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    for (const double lat1 : {0.7, -0.4}) {
      const auto c = MakeBonne(el, -1.7, lat1);
      const auto area = Box(kPoints, -4.8, 1.4, -1.5, 1.5);
      Compare(
          "Bonne forward", c, K().bonne.forward, area,
          [&](Pt p) {
            const double rho = c.apexArc - ArcTo(c.arc, p.y);
            return ConePoint(rho, el.a * ParallelM(el, p.y) * (p.x - c.lon0) / rho, c.apex);
          },
          Always(el.a * 2e-14));
      Compare(
          "Bonne inverse", c, K().bonne.inverse, Images(K().bonne, c, area),
          [&](Pt p) {
            const ConePt at = ConeOf(c.apex, c.apex, p);
            const double phi = LiteralFootpoint(c.arc, c.apexArc - at.rho);
            return Pt{c.lon0 + at.rho * at.theta / (el.a * ParallelM(el, phi)), phi};
          },
          [&](Pt p) {
            return 1e-14 + 1e-14 / cos(LiteralFootpoint(c.arc, c.apexArc - ConeOf(c.apex, c.apex, p).rho));
          });
    }
  }
}

// ---- Oblique Mercator ------------------------------------------------------------------------------------

Pt ObliqueForward(const orv::ObliqueMercator& c, Pt p) {
  const double d = p.x - c.lon0;
  const double A = c.sinPhiP * sin(p.y) - c.cosPhiP * cos(p.y) * sin(d);
  if (abs(A) >= 1) return kMarked;
  return {c.rk * atan2(tan(p.y) * c.cosPhiP + c.sinPhiP * sin(d), cos(d)), c.rk / 2 * log((1 + A) / (1 - A))};
}
Pt ObliqueInverse(const orv::ObliqueMercator& c, Pt p) {
  const double x = p.x / c.rk, y = p.y / c.rk;
  return {c.lon0 + atan2(c.sinPhiP * sin(x) - c.cosPhiP * sinh(y), cos(x)),
          asin(std::clamp(c.sinPhiP * tanh(y) + c.cosPhiP * sin(x) / cosh(y), -1.0, 1.0))};
}

TEST(Formulas, ObliqueMercatorIsTheLiteralFormulaBothWays) {
  // a northern pole and, from the same line the other way round, the southern one
  for (const auto& c :
       {MakeOblique(kSphere.a, 0.98, -60 * kDegree, 50 * kDegree, -110 * kDegree, 30 * kDegree),
        MakeOblique(kSphere.a, 0.98, -110 * kDegree, 30 * kDegree, -60 * kDegree, 50 * kDegree)}) {
    Compare(
        "Oblique Mercator forward", c, K().obliqueMercator.forward, Box(kPoints, -6, 6, -kHalfPi, kHalfPi),
        [&](Pt p) { return ObliqueForward(c, p); },
        [&](Pt p) {
          const double A = c.sinPhiP * sin(p.y) - c.cosPhiP * cos(p.y) * sin(p.x - c.lon0);
          return c.rk * (4e-15 + 4e-16 / (1 - abs(A)));
        });
    Compare(
        "Oblique Mercator inverse", c, K().obliqueMercator.inverse, Box(kPoints, -2e7, 2e7, -1.5e7, 1.5e7),
        [&](Pt p) { return ObliqueInverse(c, p); },
        [&](Pt p) { return 4e-15 + 2e-15 / std::max(cos(ObliqueInverse(c, p).y), 1e-9); });
  }
}

TEST(Formulas, ObliqueMercatorKeepsWhicheverPoleComesOut) {
  const auto north = MakeOblique(1, 1, -60 * kDegree, 50 * kDegree, -110 * kDegree, 30 * kDegree);
  const auto south = MakeOblique(1, 1, -110 * kDegree, 30 * kDegree, -60 * kDegree, 50 * kDegree);
  EXPECT_NEAR(asin(north.sinPhiP) / kDegree, 39.4, 0.05);
  EXPECT_NEAR(asin(south.sinPhiP) / kDegree, -39.4, 0.05);
  std::vector<Pt> a = {{-1.5, 0.9}}, b = a;
  K().obliqueMercator.forward(north, Data(a), 1);
  K().obliqueMercator.forward(south, Data(b), 1);
  EXPECT_NEAR(a[0].y, -b[0].y, 1e-15);  // the map turned by 180 degrees
}

TEST(Formulas, ObliqueMercatorMarksItsOwnPolesAndTakesThoseOfTheSphere) {
  const auto c = MakeOblique(kSphere.a, 1, 0, 45 * kDegree, -90 * kDegree, 0);
  std::vector<Pt> points = {{0.2, kHalfPi}, {0.2, -kHalfPi}};
  K().obliqueMercator.forward(c, Data(points), 2);
  EXPECT_NEAR(abs(points[0].x), c.rk * kHalfPi, 1e-6);
  EXPECT_NEAR(abs(points[1].x), c.rk * kHalfPi, 1e-6);
  K().obliqueMercator.inverse(c, Data(points), 2);
  EXPECT_NEAR(points[0].y, kHalfPi, 3e-8);
  EXPECT_NEAR(points[1].y, -kHalfPi, 3e-8);
  const orv::ObliqueMercator polar = {1, 1, 0, 0};  // the oblique pole is the north pole
  points = {{0.2, kHalfPi}, {0.2, -kHalfPi}, {0.2, 1.5}};
  K().obliqueMercator.forward(polar, Data(points), 3);
  EXPECT_EQ(points[0].x, kMarker);
  EXPECT_EQ(points[1].y, kMarker);
  EXPECT_NE(points[2].x, kMarker);
}

// ---- Hotine ----------------------------------------------------------------------------------------------

Pt HotineForward(const orv::Hotine& c, Pt p) {
  double u, v;
  double d = p.x - c.lambda0;
  while (d > kPi) d -= 2 * kPi;
  while (d <= -kPi) d += 2 * kPi;
  if (abs(p.y) == kHalfPi) {
    v = p.y > 0 ? c.vNorth : c.vSouth;
    u = c.A * p.y / c.B;
  } else {
    const double Q = c.E / pow(HotineT(c.e, p.y), c.B);
    const double S = (Q - 1 / Q) / 2, T = (Q + 1 / Q) / 2, V = sin(c.B * d);
    const double U = (-V * c.cosGamma0 + S * c.sinGamma0) / T;
    if (abs(U) == 1) return kMarked;
    v = c.A * log((1 - U) / (1 + U)) / (2 * c.B);
    u = c.A / c.B * atan2(S * c.cosGamma0 + V * c.sinGamma0, cos(c.B * d));
  }
  if (c.offsetU) u -= c.uc;
  if (!c.rotate) return {u, v};
  return {v * c.cosAzimuth + u * c.sinAzimuth, u * c.cosAzimuth - v * c.sinAzimuth};
}
Pt HotineInverse(const orv::Hotine& c, Pt p) {
  double u = c.rotate ? p.y * c.cosAzimuth + p.x * c.sinAzimuth : p.x;
  const double v = c.rotate ? p.x * c.cosAzimuth - p.y * c.sinAzimuth : p.y;
  if (c.offsetU) u += c.uc;
  const double Q = exp(-c.B * v / c.A), S = (Q - 1 / Q) / 2, T = (Q + 1 / Q) / 2, V = sin(c.B * u / c.A);
  const double U = (V * c.cosGamma0 + S * c.sinGamma0) / T;
  if (abs(U) == 1) return {c.lambda0, U * kHalfPi};
  const double t = pow(c.E / sqrt((1 + U) / (1 - U)), 1 / c.B);
  double phi = kHalfPi - 2 * atan(t);
  for (int i = 0; i < 100; ++i) {
    const double es = c.e * sin(phi), next = kHalfPi - 2 * atan(t * pow((1 - es) / (1 + es), c.e / 2));
    const bool close = abs(next - phi) <= 1e-12;
    phi = next;
    if (close) break;
  }
  return {c.lambda0 - atan2(S * c.cosGamma0 - V * c.sinGamma0, cos(c.B * u / c.A)) / c.B, phi};
}

TEST(Formulas, HotineIsTheLiteralFormulaWithEveryFlagPair) {
  for (const bool rotate : {false, true}) {
    for (const bool offset : {false, true}) {
      const orv::Hotine rows[] = {
          MakeHotinePoints(kClarke1866, 0.9996, 40 * kDegree, {-122.3 * kDegree, 47.5 * kDegree},
                           {-80.2 * kDegree, 25.7 * kDegree}, rotate, offset),
          MakeHotineAzimuth(kClarke1866, 1.02, 14.3394883 * kDegree, -77.7610558 * kDegree, 36 * kDegree,
                            rotate, offset),
          MakeHotineAzimuth(kAiry, 0.99984, -53.31582 * kDegree, 115 * kDegree, -4 * kDegree, rotate, offset),
          MakeHotineAzimuth(kFlat, 1, 30 * kDegree, 1, -50 * kDegree, rotate, offset),
          MakeHotineAzimuth(kSphere, 1, 30 * kDegree, 1, 20 * kDegree, rotate, offset)};
      for (const orv::Hotine& c : rows) {
        const auto image = [&](Pt p) { return HotineForward(c, p); };
        // all round the Earth, but for the neighbourhood of |U| = 1, where the literal ln loses digits
        std::vector<Pt> points = Box(kPoints, -6, 6, -1.5, 1.5);
        orv::Hotine plain = c;
        plain.rotate = plain.offsetU = false;
        std::erase_if(points, [&](Pt p) { return abs(HotineForward(plain, p).y) > 3 * c.A; });
        Compare("Hotine forward", c, K().hotine.forward, points, image, Always(c.A * 2e-13));
        Compare(
            "Hotine inverse", c, K().hotine.inverse, Images(K().hotine, c, points),
            [&](Pt p) { return HotineInverse(c, p); },
            [&](Pt p) {  // a step more or less at the stop of 1e-12 moves a very flat ellipsoid's latitude
              return (c.e > 0.1 ? 1e-12 : 1e-13) / std::max(cos(HotineInverse(c, p).y), 1e-3);
            });
      }
    }
  }
}

TEST(Formulas, HotinePolesHaveClosedForms) {
  const orv::Hotine c = MakeHotineAzimuth(kClarke1866, 1, 0.25, -1.36, 0.63, true, true);
  std::vector<Pt> poles = {{0.3, kHalfPi}, {0.3, -kHalfPi}};
  Compare(
      "Hotine poles", c, K().hotine.forward, poles, [&](Pt p) { return HotineForward(c, p); }, Always(1e-8));
  // the limit: a point next to the pole lies next to its image
  std::vector<Pt> next = {{0.3, kHalfPi - 1e-7}, {0.3, -kHalfPi + 1e-7}};
  K().hotine.forward(c, Data(poles), 2);
  K().hotine.forward(c, Data(next), 2);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_NEAR(poles[i].x, next[i].x, 1.5);
    EXPECT_NEAR(poles[i].y, next[i].y, 1.5);
  }
}

TEST(Formulas, HotineWrapsTheLongitudeDifferenceIntoHalfATurn) {
  const orv::Hotine c = MakeHotineAzimuth(kClarke1866, 1, 0.6, -170 * kDegree, 0.63, true, true);
  std::vector<Pt> points = {{175 * kDegree, 0.6}, {-185 * kDegree, 0.6}};
  K().hotine.forward(c, Data(points), 2);
  EXPECT_NEAR(points[0].x, points[1].x, 1e-6);
  EXPECT_NEAR(points[0].y, points[1].y, 1e-6);
  EXPECT_LT(abs(points[0].x), 2e6);
  // exactly half a turn stays positive, its negative becomes positive
  const orv::Hotine centred = {c.e, c.A, c.B, 1, 0, 1, 0, 0, 1, 0, 0, 0, false, false, MakeSeries(c.e)};
  std::vector<Pt> ends = {{kPi, 0.2}, {-kPi, 0.2}};
  K().hotine.forward(centred, Data(ends), 2);
  EXPECT_EQ(ends[0].x, ends[1].x);
  EXPECT_EQ(ends[0].y, ends[1].y);
}

TEST(Formulas, HotineMarksInfinityAndReturnsPolesAtItsOwnLongitude) {
  // a line straight along the meridian (gamma_0 = 0): |U| is 1 on the Equator 90 degrees away
  const orv::Hotine c = {0, 1, 1, 1, 0, 1, 0, 0, 1, 0, 0, 0, false, false, {}};
  std::vector<Pt> points = {{kHalfPi, 0}, {-kHalfPi, 0}, {1.5, 0}};
  K().hotine.forward(c, Data(points), 3);
  EXPECT_EQ(points[0].x, kMarker);
  EXPECT_EQ(points[1].y, kMarker);
  EXPECT_NE(points[2].x, kMarker);
  const orv::Hotine across = {0, 1, 1, 1, 1,     0,     0.7, 0,
                              1, 0, 0, 0, false, false, {}};  // gamma_0 = 90 degrees
  points = {{0.3, -45}, {0.3, 45}};                           // far along v: U' is 1 to the last bit
  K().hotine.inverse(across, Data(points), 2);
  EXPECT_EQ(points[0].x, 0.7);
  EXPECT_EQ(points[0].y, kHalfPi);
  EXPECT_EQ(points[1].x, 0.7);
  EXPECT_EQ(points[1].y, -kHalfPi);
}

// ---- azimuthal projections -------------------------------------------------------------------------------

// The five aspects: oblique north and south, equatorial, the poles.
constexpr double kAspects[] = {40 * kDegree, -25 * kDegree, 0, kHalfPi, -kHalfPi};

double CosineOfArc(const orv::AzimuthalCentre& o, Pt p) {  // (5-3)
  return sin(o.lat0) * sin(p.y) + cos(o.lat0) * cos(p.y) * cos(p.x - o.lon0);
}
// k' times the rectangular coordinates of the unit vector, (22-4) and (22-5)
Pt FromTheCentre(const orv::AzimuthalCentre& o, Pt p, double k) {
  const double L = p.x - o.lon0;
  return {k * cos(p.y) * sin(L), k * (cos(o.lat0) * sin(p.y) - sin(o.lat0) * cos(p.y) * cos(L))};
}
// (20-14) to (20-18), printed form by printed form; lat0 is that of chi1 on the ellipsoid
Pt AzimuthalInverse(double lon0, double lat0, Pt p, double c) {
  const double rho = sqrt(p.x * p.x + p.y * p.y);
  const double phi = asin(std::clamp(cos(c) * sin(lat0) + p.y * sin(c) * cos(lat0) / rho, -1.0, 1.0));
  if (lat0 == kHalfPi) return {lon0 + atan2(p.x, -p.y), phi};
  if (lat0 == -kHalfPi) return {lon0 + atan2(p.x, p.y), phi};
  return {lon0 + atan2(p.x * sin(c), rho * cos(lat0) * cos(c) - p.y * sin(lat0) * sin(c)), phi};
}
// Arc sine and longitude lose digits towards the poles.
double NearPole(Pt lonlat) { return 4e-15 + 4e-15 / std::max(abs(cos(lonlat.y)), 1e-9); }

// The rest of a turn does not matter in the longitudes of an inverse.
std::vector<Pt> Caps(const orv::AzimuthalCentre& o, double leastCosine) {
  std::vector<Pt> points = Box(kPoints, o.lon0 - 3.1, o.lon0 + 3.1, -1.57, 1.57);
  std::erase_if(points, [&](Pt p) { return CosineOfArc(o, p) < leastCosine; });
  return points;
}

TEST(Formulas, OrthographicIsTheLiteralFormulaInEveryAspect) {
  for (const double lat0 : kAspects) {
    const orv::Orthographic c = {6378137, MakeCentre(0.4, lat0)};
    std::vector<Pt> points = Box(kPoints, -6, 6, -1.57, 1.57);
    std::erase_if(points, [&](Pt p) { return abs(CosineOfArc(c.centre, p)) < 1e-14; });  // the rim itself
    Compare(
        "Orthographic forward", c, K().orthographic.forward, points,
        [&](Pt p) {
          if (CosineOfArc(c.centre, p) < 0) return kMarked;
          const double L = p.x - c.centre.lon0, x = c.a * cos(p.y) * sin(L);
          if (lat0 == kHalfPi) return Pt{x, -c.a * cos(p.y) * cos(L)};
          if (lat0 == -kHalfPi) return Pt{x, c.a * cos(p.y) * cos(L)};
          if (lat0 == 0) return Pt{x, c.a * sin(p.y)};
          return FromTheCentre(c.centre, p, c.a);
        },
        Always(5e-9));
    const auto inverse = [&](Pt p) {
      return AzimuthalInverse(0.4, lat0, p, asin(sqrt(p.x * p.x + p.y * p.y) / c.a));
    };
    Compare("Orthographic inverse", c, K().orthographic.inverse,
            Images(K().orthographic, c, Caps(c.centre, 0.05)), inverse,
            [&](Pt p) { return 20 * NearPole(inverse(p)); });
  }
}

TEST(Formulas, GnomonicIsTheLiteralFormulaInEveryAspect) {
  for (const double lat0 : kAspects) {
    const double pole = lat0 == kHalfPi ? 1 : lat0 == -kHalfPi ? -1 : 0;
    const orv::Gnomonic c = {6378137, pole, MakeCentre(0.4, lat0)};
    std::vector<Pt> points = Box(kPoints, -6, 6, -1.57, 1.57);
    std::erase_if(points, [&](Pt p) { return abs(CosineOfArc(c.centre, p)) < 1e-14; });
    Compare(
        "Gnomonic forward", c, K().gnomonic.forward, points,
        [&](Pt p) {
          const double cosC = CosineOfArc(c.centre, p), L = p.x - c.centre.lon0, cot = cos(p.y) / sin(p.y);
          if (cosC <= 0) return kMarked;
          if (pole > 0) return Pt{c.a * cot * sin(L), -c.a * cot * cos(L)};
          if (pole < 0) return Pt{-c.a * cot * sin(L), c.a * cot * cos(L)};  // deliberate: that sign of y
          return FromTheCentre(c.centre, p, c.a / cosC);
        },
        [&](Pt p) { return 1e-8 / std::pow(CosineOfArc(c.centre, p), 2); });
    const auto inverse = [&](Pt p) {
      const double arc = atan(sqrt(p.x * p.x + p.y * p.y) / c.a);
      return AzimuthalInverse(0.4, lat0, pole < 0 ? Pt{p.x, -p.y} : p, arc);  // undoes that sign
    };
    Compare("Gnomonic inverse", c, K().gnomonic.inverse, Images(K().gnomonic, c, Caps(c.centre, 0.01)),
            inverse, [&](Pt p) { return NearPole(inverse(p)); });
  }
}

TEST(Formulas, AzimuthalEquidistantIsTheLiteralFormulaInEveryAspect) {
  for (const double lat0 : kAspects) {
    const orv::AzimuthalEquidistant c = {6378137, MakeCentre(0.4, lat0)};
    Compare(
        "Azimuthal Equidistant forward", c, K().azimuthalEquidistant.forward, Caps(c.centre, -0.99),
        [&](Pt p) {
          const double L = p.x - c.centre.lon0;
          if (lat0 == kHalfPi) return Pt{c.a * (kHalfPi - p.y) * sin(L), -c.a * (kHalfPi - p.y) * cos(L)};
          if (lat0 == -kHalfPi) return Pt{c.a * (kHalfPi + p.y) * sin(L), c.a * (kHalfPi + p.y) * cos(L)};
          const double arc = std::acos(std::clamp(CosineOfArc(c.centre, p), -1.0, 1.0));
          return FromTheCentre(c.centre, p, arc == 0 ? c.a : c.a * arc / sin(arc));
        },
        [&](Pt p) {  // the arc cosine loses digits near the centre and the antipode
          const double s = sqrt(std::max(1 - std::pow(CosineOfArc(c.centre, p), 2), 1e-16));
          return 2e-8 + 4e-9 / s / s;
        });
    const auto inverse = [&](Pt p) {
      return AzimuthalInverse(0.4, lat0, p, sqrt(p.x * p.x + p.y * p.y) / c.a);
    };
    Compare("Azimuthal Equidistant inverse", c, K().azimuthalEquidistant.inverse,
            Images(K().azimuthalEquidistant, c, Caps(c.centre, -0.99)), inverse,
            [&](Pt p) { return 10 * NearPole(inverse(p)); });
  }
}

TEST(Formulas, LambertAzimuthalIsTheLiteralFormulaInEveryAspect) {
  for (const double lat0 : kAspects) {
    const orv::LambertAzimuthal c = {6378137, MakeCentre(0.4, lat0)};
    Compare(
        "Lambert Azimuthal forward", c, K().lambertAzimuthal.forward, Caps(c.centre, -0.99),
        [&](Pt p) {
          const double L = p.x - c.centre.lon0;
          const double north = 2 * c.a * sin(kPi / 4 - p.y / 2), south = 2 * c.a * cos(kPi / 4 - p.y / 2);
          if (lat0 == kHalfPi) return Pt{north * sin(L), -north * cos(L)};
          if (lat0 == -kHalfPi) return Pt{south * sin(L), south * cos(L)};
          return FromTheCentre(c.centre, p, c.a * sqrt(2 / (1 + CosineOfArc(c.centre, p))));
        },
        Always(4e-7));  // 1 + cos c cancels
    const auto inverse = [&](Pt p) {
      return AzimuthalInverse(0.4, lat0, p, 2 * asin(sqrt(p.x * p.x + p.y * p.y) / (2 * c.a)));
    };
    Compare("Lambert Azimuthal inverse", c, K().lambertAzimuthal.inverse,
            Images(K().lambertAzimuthal, c, Caps(c.centre, -0.9)), inverse,
            [&](Pt p) { return 10 * NearPole(inverse(p)); });
  }
}

TEST(Formulas, SphericalStereographicIsTheLiteralFormulaInEveryAspect) {
  for (const double lat0 : kAspects) {
    const orv::Stereographic c = MakeStereographic(kSphere, 0.97, 0.4, lat0);
    const double rk = kSphere.a * 0.97;
    Compare(
        "spherical Stereographic forward", c, K().stereographic.forward, Caps(c.centre, -0.9),
        [&](Pt p) {
          const double L = p.x - c.centre.lon0;
          const double north = 2 * rk * tan(kPi / 4 - p.y / 2), south = 2 * rk * tan(kPi / 4 + p.y / 2);
          if (lat0 == kHalfPi) return Pt{north * sin(L), -north * cos(L)};
          if (lat0 == -kHalfPi) return Pt{south * sin(L), south * cos(L)};
          return FromTheCentre(c.centre, p, 2 * rk / (1 + CosineOfArc(c.centre, p)));
        },
        Always(1e-6));
    const auto inverse = [&](Pt p) {
      return AzimuthalInverse(0.4, lat0, p, 2 * atan(sqrt(p.x * p.x + p.y * p.y) / (2 * rk)));
    };
    Compare("spherical Stereographic inverse", c, K().stereographic.inverse,
            Images(K().stereographic, c, Caps(c.centre, -0.9)), inverse,
            [&](Pt p) { return 4 * NearPole(inverse(p)); });
  }
}

TEST(Formulas, EllipsoidalStereographicIsTheLiteralFormulaInEveryAspect) {
  for (const Ellipsoid el : {kClarke1866, kFlat}) {
    for (const double lat0 : kAspects) {
      const double k0 = 0.97, lon0 = 0.4, e = el.e(), s1 = sin(lat0);
      const orv::Stereographic c = MakeStereographic(el, k0, lon0, lat0);
      const double m1 = cos(lat0) / sqrt(1 - el.e2() * s1 * s1);
      const double chi1 = kHalfPi - 2 * atan(ConformalT(e, lat0));
      const double polar = 2 * el.a * k0 / sqrt(pow(1 + e, 1 + e) * pow(1 - e, 1 - e));  // (21-33)
      const bool isPole = abs(lat0) == kHalfPi;
      const double south = lat0 < 0 ? -1 : 1;
      Compare(
          "ellipsoidal Stereographic forward", c, K().stereographic.forward,
          Caps(MakeCentre(lon0, lat0), -0.8),
          [&](Pt p) {
            const double L = p.x - lon0;
            if (isPole) {
              const double rho = polar * ConformalT(e, south * p.y);
              return Pt{rho * sin(L), -south * rho * cos(L)};
            }
            const double chi = kHalfPi - 2 * atan(ConformalT(e, p.y));
            const double A =
                2 * el.a * k0 * m1 /
                (cos(chi1) * (1 + sin(chi1) * sin(chi) + cos(chi1) * cos(chi) * cos(L)));  // (21-27)
            return Pt{A * cos(chi) * sin(L), A * (cos(chi1) * sin(chi) - sin(chi1) * cos(chi) * cos(L))};
          },
          Always(el.a * 1e-13));
      const auto inverse = [&](Pt p) {
        const double rho = sqrt(p.x * p.x + p.y * p.y);
        double chi, lambda;
        if (isPole) {
          chi = south * (kHalfPi - 2 * atan(rho / polar));  // (21-39), (7-13)
          lambda = lon0 + atan2(p.x, -south * p.y);
        } else {
          const double ce = 2 * atan(rho * cos(chi1) / (2 * el.a * k0 * m1));  // (21-38)
          const Pt q = AzimuthalInverse(lon0, chi1, p, ce);                    // (21-36), (21-37)
          chi = q.y;
          lambda = q.x;
        }
        double phi = chi;
        for (int i = 0; i < 100; ++i) {  // (3-4)
          const double es = e * sin(phi);
          const double next = 2 * atan(tan(kPi / 4 + chi / 2) * pow((1 + es) / (1 - es), e / 2)) - kHalfPi;
          const bool close = abs(next - phi) <= 1e-14;
          phi = next;
          if (close) break;
        }
        return Pt{lambda, phi};
      };
      Compare("ellipsoidal Stereographic inverse", c, K().stereographic.inverse,
              Images(K().stereographic, c, Caps(MakeCentre(lon0, lat0), -0.8)), inverse,
              // the stop at 1e-12 leaves e^2 of it
              [&](Pt p) { return 4 * NearPole(inverse(p)) + 1e-12 * el.e2() / (1 - el.e2()); });
    }
  }
}

TEST(Formulas, AzimuthalKernelsKeepTheirDigitsNextToTheCentreAndTheAntipode) {
  // From a pole the arc is the colatitude: known without any cancellation.
  for (const double far : {1e-3, 1e-6, 1e-9}) {
    const Pt next = {0.4 + kHalfPi, kHalfPi - far};
    const double arc = (kHalfPi - next.y) + 6.123233995736766e-17;  // of the latitude that is stored
    const orv::AzimuthalEquidistant c = {6378137, MakeCentre(0.4, kHalfPi)},
                                    opposite = {6378137, MakeCentre(0.4, -kHalfPi)};
    std::vector<Pt> points = {next};
    K().azimuthalEquidistant.forward(c, Data(points), 1);
    EXPECT_NEAR(points[0].x, c.a * arc, c.a * arc * 1e-14);
    points = {next};
    K().azimuthalEquidistant.forward(opposite, Data(points), 1);
    EXPECT_NEAR(points[0].x, c.a * (kPi - arc), 3e-8);
    const orv::Stereographic s = MakeStereographic(kSphere, 1, 0.4, -kHalfPi);
    points = {next};
    K().stereographic.forward(s, Data(points), 1);
    EXPECT_NEAR(points[0].x, 2 * kSphere.a / tan(arc / 2), 2 * kSphere.a / tan(arc / 2) * 1e-14);
  }
}

// ---- datum methods ---------------------------------------------------------------------------------------

Pt MolodenskyShift(const orv::Molodensky& c, Pt p) {
  const double factor = kPi / 180, lon = p.x + c.pmShift, l = lon * factor, phi = p.y * factor;
  const double s1 = sin(4.84813681109536e-6);
  const double W = 1 - c.e2 * sin(phi) * sin(phi), N = c.a1 / pow(W, 0.5),
               M = (1 - c.e2) * c.a1 / pow(W, 1.5);
  const double dphi = (c.dz * cos(phi) - (c.dx * sin(phi) * cos(l) + c.dy * sin(phi) * sin(l)) +
                       c.e2 * N * sin(phi) * cos(phi) * c.da / c.a1 +
                       (M * c.a1 / c.b1 + N * c.b1 / c.a1) * c.df * sin(phi) * cos(phi)) /
                      (M * s1);
  const double dlambda = (c.dy * cos(l) - c.dx * sin(l)) / (N * cos(phi) * s1);
  return {lon + dlambda / 3600, p.y + dphi / 3600};
}

TEST(Formulas, MolodenskyIsTheLiteralFormula) {
  const auto c = MakeMolodensky(kAiry, kWgs84, 375, -111, 431, -17.666666666666668);
  Compare(
      "Molodensky", c, K().molodensky, Box(kPoints, -180, 180, -89, 89),
      [&](Pt p) { return MolodenskyShift(c, p); }, Always(1e-13));
}

TEST(Formulas, MolodenskyWithoutShiftChangesNothing) {
  const auto c = MakeMolodensky(kAiry, kAiry, 0, 0, 0, 0);
  Compare(
      "Molodensky, no shift", c, K().molodensky, Box(kPoints, -180, 180, -90, 90), [](Pt p) { return p; },
      Always(0));
}

TEST(Formulas, MolodenskyAtAPoleIsHugeButFinite) {
  const auto c = MakeMolodensky(kAiry, kWgs84, 375, -111, 431, 0);
  std::vector<Pt> points = {{10, 90}, {10, -90}};
  K().molodensky(c, Data(points), 2);
  for (const Pt p : points) {
    EXPECT_GT(abs(p.x), 1e6);
    EXPECT_LT(abs(p.x), 1e30);
    EXPECT_LT(abs(p.y), 91);
  }
}

Pt BursaWolfShift(const orv::BursaWolf& c, Pt p) {
  const double l = (p.x + c.pmShift) * (kPi / 180), phi = p.y * (kPi / 180);
  const double N = c.aFrom / sqrt(1 - c.e2From * sin(phi) * sin(phi));
  const double X = N * cos(phi) * cos(l), Y = N * cos(phi) * sin(l), Z = (1 - c.e2From) * N * sin(phi);
  const double X2 = c.s * (X - c.rz * Y + c.ry * Z) + c.dx, Y2 = c.s * (c.rz * X + Y - c.rx * Z) + c.dy;
  const double Z2 = c.s * (-c.ry * X + c.rx * Y + Z) + c.dz;
  const double q = sqrt(X2 * X2 + Y2 * Y2), r = sqrt(q * q + Z2 * Z2), f = c.fTo, e2a = (2 - f) * f * c.aTo;
  const double u = atan2(Z2 * ((1 - f) + e2a / r), q);
  const double lat = atan2(Z2 * (1 - f) + e2a * pow(sin(u), 3), (1 - f) * (q - e2a * pow(cos(u), 3)));
  return {atan2(Y2, X2) * 180 / kPi, lat * 180 / kPi};
}

TEST(Formulas, BursaWolfIsTheLiteralFormula) {
  const auto c =
      MakeBursaWolf(kAiry, kWgs84, 446.448, -125.157, 542.06, 0.1502, 0.247, 0.8421, -20.4894, 2.5);
  Compare(
      "Bursa-Wolf", c, K().bursaWolf, Box(kPoints, -179, 176, -89.9, 89.9),
      [&](Pt p) { return BursaWolfShift(c, p); },
      [](Pt p) { return 1e-13 / cos(p.y * kDegree) * 0.5 + 1e-13; });
  const auto large = MakeBursaWolf(kWgs84, kFlat, -3000, 5000, 1000, 3000, -2000, 4000, 500, -60);
  Compare(
      "Bursa-Wolf, large values", large, K().bursaWolf, Box(kPoints, -110, 110, -80, 80),
      [&](Pt p) { return BursaWolfShift(large, p); }, Always(1e-12));
}

TEST(Formulas, BursaWolfMarksTheCentreOfTheEarth) {
  const auto c = MakeBursaWolf(kWgs84, kWgs84, -6378137, 0, 0, 0, 0, 0, 0, 0);
  std::vector<Pt> points = {{0, 0}, {10, 10}};
  K().bursaWolf(c, Data(points), 2);
  EXPECT_EQ(points[0].x, kMarker);
  EXPECT_EQ(points[0].y, kMarker);
  EXPECT_NE(points[1].x, kMarker);
}

TEST(Formulas, RegressionIsTheLiteralPolynomial) {
  for (const double k : {0.05235988, 0.15707963}) {
    const orv::Regression c = MakeRegression(k);
    Compare(
        "Regression", c, K().regression, Box(kPoints, -125, -66, 24, 50),
        [&](Pt p) {
          const double U = c.k * (p.y - c.phim), V = c.k * (p.x - c.lambdam);
          double lat = 0, lon = 0;
          for (const auto& t : kLatTerms) lat += t.c * pow(U, t.u) * pow(V, t.v);
          for (const auto& t : kLonTerms) lon += t.c * pow(U, t.u) * pow(V, t.v);
          return Pt{p.x + lon / 3600, p.y + lat / 3600};
        },
        [&](Pt p) {  // relative to the largest term
          const double size = std::max({1.0, abs(c.k * (p.y - c.phim)), abs(c.k * (p.x - c.lambdam))});
          return 1e-13 + 1e-17 * pow(size, 17);
        });
  }
}

TEST(Formulas, RegressionAtItsOriginIsTheConstantTermsAlone) {
  const orv::Regression c = MakeRegression(0.05235988);
  std::vector<Pt> points = {{-95, 37}};
  K().regression(c, Data(points), 1);
  EXPECT_EQ(points[0].x, -95 + -2.5 / 3600);
  EXPECT_EQ(points[0].y, 37 + 1.25 / 3600);
}

}  // namespace
