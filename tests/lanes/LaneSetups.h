// Set-up constants of the engines for the lane tests, computed here in scalar doubles from the published
// equations, and points to run them on.  Independent of the engine classes.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "orv/datum/BursaWolf.h"
#include "orv/datum/Molodensky.h"
#include "orv/datum/NTv2Shift.h"
#include "orv/datum/NadconShift.h"
#include "orv/datum/Regression.h"
#include "orv/lanes/Dispatch.h"
#include "orv/projection/ProjAzimuthalEquidistant.h"
#include "orv/projection/ProjBonne.h"
#include "orv/projection/ProjCassini.h"
#include "orv/projection/ProjEckert4.h"
#include "orv/projection/ProjEckert6.h"
#include "orv/projection/ProjEquidistantConic.h"
#include "orv/projection/ProjEquidistantCylindrical.h"
#include "orv/projection/ProjGnomonic.h"
#include "orv/projection/ProjHotine.h"
#include "orv/projection/ProjLambertAzimuthal.h"
#include "orv/projection/ProjLambertConformalConic.h"
#include "orv/projection/ProjMercator.h"
#include "orv/projection/ProjMiller.h"
#include "orv/projection/ProjMollweide.h"
#include "orv/projection/ProjObliqueMercator.h"
#include "orv/projection/ProjOrthographic.h"
#include "orv/projection/ProjPolyconic.h"
#include "orv/projection/ProjRobinson.h"
#include "orv/projection/ProjRobinsonSterling.h"
#include "orv/projection/ProjSinusoidal.h"
#include "orv/projection/ProjStereographic.h"
#include "orv/projection/ProjTranAlbers.h"
#include "orv/projection/ProjTransverseMercator.h"
#include "orv/projection/ProjVanDerGrinten.h"
#include "orv/shared/RegistrationWarp.h"
#include "orv/warp/WarpTranCoeff.h"
#include "orv/warp/WarpTranHelmert.h"
#include "orv/warp/WarpTranOffset.h"
#include "orv/warp/WarpTranOrder3.h"

namespace lanetest {

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kDegree = kPi / 180;
constexpr double kMarker = 1.7976931348623157e308;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Ellipsoid {
  double a, f;
  double e2() const { return 2 * f - f * f; }
  double e() const { return std::sqrt(e2()); }
};
constexpr Ellipsoid kClarke1866 = {6378206.4, 0.0033900753040885176};
constexpr Ellipsoid kAiry = {6377563.396, 1 / 299.3249646};
constexpr Ellipsoid kWgs84 = {6378137, 1 / 298.257223563};
constexpr Ellipsoid kSphere = {6370997, 0};
constexpr Ellipsoid kFlat = {6e7, 0.1};  // a flattened planet: the general branches of ConformalLatitude.h

struct Pt {
  double x, y;
};

inline orv::Mercator MakeMercator(Ellipsoid el, double lon0, double lat0) {
  const double s = std::sin(lat0), e2 = el.e2();
  const double k = el.f == 0 ? std::cos(lat0) : std::cos(lat0) / std::sqrt(1 - e2 * s * s);
  return {el.f == 0, false, el.a, el.e(), k, lon0};
}

// phi - chi of the sine of 2 chi, to the sixth power of the third flattening [Kaw11], by Chebyshev's polynomials.
inline orv::LatitudeSeries MakeSeries(double e) {
  const double r = std::sqrt(1 - e * e), n = (1 - r) / (1 + r);
  const double rows[6][6] = {{2, -2. / 3, -2, 116. / 45, 26. / 45, -2854. / 675},
                             {0, 7. / 3, -8. / 5, -227. / 45, 2704. / 315, 2323. / 945},
                             {0, 0, 56. / 15, -136. / 35, -1262. / 105, 73814. / 2835},
                             {0, 0, 0, 4279. / 630, -332. / 35, -399572. / 14175},
                             {0, 0, 0, 0, 4174. / 315, -144838. / 6237},
                             {0, 0, 0, 0, 0, 601676. / 22275}};
  const double chebyshev[6][6] = {
      {1}, {0, 2}, {-1, 0, 4}, {0, -4, 0, 8}, {1, 0, -12, 0, 16}, {0, 6, 0, -32, 0, 32}};
  orv::LatitudeSeries series = {};
  for (int k = 0; k < 6; ++k) {
    double d = 0;
    for (int power = 5; power >= 0; --power) d = (d + rows[k][power]) * n;
    for (int i = 0; i < 6; ++i) series.c[i] += d * chebyshev[k][i];
  }
  return series;
}

inline orv::MeridianArc MakeArc(Ellipsoid el) {
  const double e2 = el.e2(), e4 = e2 * e2, e6 = e4 * e2, root = std::sqrt(1 - e2);
  const double e1 = (1 - root) / (1 + root), e12 = e1 * e1, e13 = e12 * e1, e14 = e12 * e12;
  orv::MeridianArc m{};
  m.a = el.a;
  m.c0 = 1 - e2 / 4 - 3 * e4 / 64 - 5 * e6 / 256;
  m.c2 = 3 * e2 / 8 + 3 * e4 / 32 + 45 * e6 / 1024;
  m.c4 = 15 * e4 / 256 + 45 * e6 / 1024;
  m.c6 = 35 * e6 / 3072;
  m.ac0 = el.a * m.c0;
  m.f2 = 3 * e1 / 2 - 27 * e13 / 32;
  m.f4 = 21 * e12 / 16 - 55 * e14 / 32;
  m.f6 = 151 * e13 / 96;
  m.f8 = 1097 * e14 / 512;
  return m;
}

inline double ArcTo(const orv::MeridianArc& m, double phi) {
  return m.a * (m.c0 * phi - m.c2 * std::sin(2 * phi) + m.c4 * std::sin(4 * phi) - m.c6 * std::sin(6 * phi));
}

inline orv::TransverseMercator MakeTm(Ellipsoid el, double k0, double lon0, double lat0) {
  const orv::MeridianArc arc = MakeArc(el);
  return {el.f == 0, el.a, k0, lon0, lat0, el.e2(), el.e2() / (1 - el.e2()), arc, ArcTo(arc, lat0)};
}

inline orv::Cassini MakeCassini(Ellipsoid el, double lon0, double lat0) {
  const orv::MeridianArc arc = MakeArc(el);
  return {el.f == 0, el.a, lon0, lat0, el.e2(), el.e2() / (1 - el.e2()), arc, ArcTo(arc, lat0)};
}

// m of (14-15), t of (15-9) and q of (3-12), as printed.
inline double ParallelM(Ellipsoid el, double phi) {
  return std::cos(phi) / std::sqrt(1 - el.e2() * std::sin(phi) * std::sin(phi));
}
inline double ConformalT(double e, double phi) {
  const double es = e * std::sin(phi);
  return std::tan(kPi / 4 - phi / 2) / std::pow((1 - es) / (1 + es), e / 2);
}
inline double AuthalicQ(double e, double phi) {
  const double s = std::sin(phi), es = e * s;
  if (e == 0) return 2 * s;
  return (1 - e * e) * (s / (1 - es * es) - 1 / (2 * e) * std::log((1 - es) / (1 + es)));
}

inline orv::LambertConformalConic MakeLambert(Ellipsoid el, double lon0, double lat0, double lat1,
                                              double lat2) {
  const double e = el.e(), t1 = ConformalT(e, lat1), m1 = ParallelM(el, lat1);
  const double n =
      (std::log(m1) - std::log(ParallelM(el, lat2))) / (std::log(t1) - std::log(ConformalT(e, lat2)));
  const double aF = el.a * m1 / (n * std::pow(t1, n));
  return {el.f == 0, e, lon0, n, aF, aF * std::pow(ConformalT(e, lat0), n), MakeSeries(e)};
}

inline orv::Albers MakeAlbers(Ellipsoid el, double lon0, double lat0, double lat1, double lat2) {
  const double e = el.e(), m1 = ParallelM(el, lat1), m2 = ParallelM(el, lat2), q1 = AuthalicQ(e, lat1);
  const double n = (m1 * m1 - m2 * m2) / (AuthalicQ(e, lat2) - q1), C = m1 * m1 + n * q1;
  const double rho0 = el.a * std::sqrt(C - n * AuthalicQ(e, lat0)) / n;
  return {el.f == 0, el.a, e, lon0, n, C, rho0, AuthalicQ(e, kHalfPi), e == 0 ? 0 : 1 / (e * e)};
}

inline orv::EquidistantConic MakeEquiConic(Ellipsoid el, double lon0, double lat0, double lat1, double lat2) {
  const orv::MeridianArc arc = MakeArc(el);
  const double m1 = ParallelM(el, lat1), M1 = ArcTo(arc, lat1);
  const double n = el.a * (m1 - ParallelM(el, lat2)) / (ArcTo(arc, lat2) - M1);
  const double aG = el.a * m1 / n + M1;
  return {el.f == 0, lon0, n, aG, aG - ArcTo(arc, lat0), arc};
}

inline orv::Polyconic MakePolyconic(Ellipsoid el, double lon0, double lat0) {
  const orv::MeridianArc arc = MakeArc(el);
  return {el.f == 0, el.a, lon0, el.e2(), arc, ArcTo(arc, lat0)};
}

inline orv::Bonne MakeBonne(Ellipsoid el, double lon0, double lat1) {
  const orv::MeridianArc arc = MakeArc(el);
  const double apex = el.a * ParallelM(el, lat1) / std::sin(lat1);
  return {el.f == 0, el.a, lon0, el.e2(), apex, apex + ArcTo(arc, lat1), arc};
}

inline orv::Sinusoidal MakeSinusoidal(Ellipsoid el, double lon0) {
  return {el.f == 0, el.a, lon0, el.e2(), MakeArc(el)};
}

inline orv::ObliqueMercator MakeOblique(double a, double k0, double lon1, double lat1, double lon2,
                                        double lat2) {
  const double lp = std::atan2(
      std::cos(lat1) * std::sin(lat2) * std::cos(lon1) - std::sin(lat1) * std::cos(lat2) * std::cos(lon2),
      std::sin(lat1) * std::cos(lat2) * std::sin(lon2) - std::cos(lat1) * std::sin(lat2) * std::sin(lon1));
  const double pp = std::atan(-std::cos(lp - lon1) / std::tan(lat1));
  return {k0 * a, std::sin(pp), std::cos(pp), lp + kHalfPi};
}

inline double HotineT(double e, double phi) {
  const double s = std::sin(phi), es = e * s;
  return std::sqrt((1 - s) / (1 + s) * std::pow((1 + es) / (1 - es), e));
}

struct HotineBase {
  double e, A, B, D, t0;
};
inline HotineBase MakeHotineBase(Ellipsoid el, double k0, double lat0) {
  const double e2 = el.e2(), s = std::sin(lat0), c = std::cos(lat0);
  const double B = std::sqrt(1 + e2 * c * c * c * c / (1 - e2));
  const double A = el.a * B * k0 * std::sqrt(1 - e2) / (1 - e2 * s * s);
  const double D = B * std::sqrt(1 - e2) / (c * std::sqrt(1 - e2 * s * s));
  return {el.e(), A, B, D * D < 1 ? 1 : D, HotineT(el.e(), lat0)};
}
inline orv::Hotine FinishHotine(const HotineBase& h, double E, double gamma0, double lambda0, double azimuth,
                                double lat0, bool rotate, bool offsetU) {
  const double scale = h.A / h.B;
  const double uc = scale * std::atan(std::sqrt(h.D * h.D - 1) / std::cos(azimuth)) * (lat0 < 0 ? -1 : 1);
  return {h.e,
          h.A,
          h.B,
          E,
          std::sin(gamma0),
          std::cos(gamma0),
          lambda0,
          std::sin(azimuth),
          std::cos(azimuth),
          uc,
          scale * std::log(std::tan(kPi / 4 - gamma0 / 2)),
          scale * std::log(std::tan(kPi / 4 + gamma0 / 2)),
          rotate,
          offsetU,
          MakeSeries(h.e)};
}
inline orv::Hotine MakeHotineAzimuth(Ellipsoid el, double k0, double alpha, double lon1, double lat0,
                                     bool rotate, bool offsetU) {
  const HotineBase h = MakeHotineBase(el, k0, lat0);
  const double F = h.D + (lat0 >= 0 ? 1 : -1) * std::sqrt(h.D * h.D - 1);
  const double E = F * std::pow(h.t0, h.B), G = (F - 1 / F) / 2;
  const double gamma0 = std::asin(std::sin(alpha) / h.D);
  const double lambda0 = lon1 - std::asin(G * std::tan(gamma0)) / h.B;
  return FinishHotine(h, E, gamma0, lambda0, alpha, lat0, rotate, offsetU);
}
inline orv::Hotine MakeHotinePoints(Ellipsoid el, double k0, double lat0, Pt one, Pt two, bool rotate,
                                    bool offsetU) {
  const HotineBase h = MakeHotineBase(el, k0, lat0);
  const double E = (h.D + (lat0 >= 0 ? 1 : -1) * std::sqrt(h.D * h.D - 1)) * std::pow(h.t0, h.B);
  const double H = std::pow(HotineT(h.e, one.y), h.B), L = std::pow(HotineT(h.e, two.y), h.B);
  const double F = E / H, G = (F - 1 / F) / 2, J = (E * E - L * H) / (E * E + L * H), P = (L - H) / (L + H);
  const double lambda0 = (one.x + two.x) / 2 - std::atan(J * std::tan(h.B * (one.x - two.x) / 2) / P) / h.B;
  const double gamma0 = std::atan(std::sin(h.B * (one.x - lambda0)) / G);
  return FinishHotine(h, E, gamma0, lambda0, std::asin(h.D * std::sin(gamma0)), lat0, rotate, offsetU);
}

inline orv::AzimuthalCentre MakeCentre(double lon0, double lat0) {
  return {lon0, lat0, std::sin(lat0), std::abs(lat0) == kHalfPi ? 0 : std::cos(lat0)};
}

inline orv::Stereographic MakeStereographic(Ellipsoid el, double k0, double lon0, double lat0) {
  const double e = el.e(), s = std::sin(lat0), chi1 = kHalfPi - 2 * std::atan(ConformalT(e, lat0));
  orv::Stereographic c = {el.f == 0, e, el.a * k0, MakeCentre(lon0, lat0), MakeSeries(e)};
  if (std::abs(lat0) == kHalfPi) {
    c.radius /= std::sqrt(std::pow(1 + e, 1 + e) * std::pow(1 - e, 1 - e));
  } else if (el.f != 0) {
    c.radius *= std::cos(lat0) / std::sqrt(1 - el.e2() * s * s) / std::cos(chi1);
    c.centre.sin = std::sin(chi1);
    c.centre.cos = std::cos(chi1);
  }
  return c;
}

inline orv::Molodensky MakeMolodensky(Ellipsoid from, Ellipsoid to, double dx, double dy, double dz,
                                      double pm) {
  return {from.a, (1 - from.f) * from.a, from.e2(), to.a - from.a, to.f - from.f, dx, dy, dz, pm};
}

inline orv::BursaWolf MakeBursaWolf(Ellipsoid from, Ellipsoid to, double dx, double dy, double dz, double rx,
                                    double ry, double rz, double k, double pm) {
  const double r = kPi / 180 / 3600;
  return {from.a, from.e2(), to.a, to.f, dx, dy, dz, rx * r, ry * r, rz * r, 1 + k * 1e-6, pm};
}

// Made up: every power from 0 to 9 of each variable occurs, and mixed ones.
inline constexpr orv::RegressionTerm kLatTerms[] = {{1.25, 0, 0},  {-0.75, 1, 0}, {0.5, 0, 1},  {2.5, 2, 1},
                                                    {-1.5, 3, 3},  {0.25, 4, 0},  {7.5, 9, 0},  {-3.5, 5, 6},
                                                    {0.125, 7, 8}, {2, 6, 2},     {-2.25, 8, 9}};
inline constexpr orv::RegressionTerm kLonTerms[] = {{-2.5, 0, 0}, {1.5, 0, 1},  {0.3, 1, 1}, {-4.2, 0, 9},
                                                    {0.7, 2, 7},  {-0.9, 9, 4}, {0.1, 3, 5}};
inline orv::Regression MakeRegression(double k) { return {37, -95, k, kLatTerms, 11, kLonTerms, 7}; }

// Two grids of NADCON, the second finer and within the first, and two of NTv2, the second a child of the first; shifts
// of up to ten seconds, made from the node's number.
struct GridTables {
  static constexpr std::size_t kColumns = 40, kRows = 30;
  double seconds[2 * kColumns * kRows];
  double radians[2 * kColumns * kRows];
  orv::NadconCells nadcon[2];
  orv::NTv2Cells ntv2[2];
  std::size_t children[2] = {0, 1};

  GridTables() {
    for (std::size_t i = 0; i < 2 * kColumns * kRows; ++i) {
      seconds[i] = static_cast<double>(i * 7919 % 2000) / 100 - 10;
      radians[i] = seconds[i] * 4.84813681109536e-6;
    }
    nadcon[0] = {-10.5, 9.25, 39.5, 53.75, -10, 40, 0.5, 0.5, kColumns, seconds};
    nadcon[1] = {0, 3.5, 45, 47.5, 0.125, 45.125, 0.125, 0.125, kColumns, seconds};
    ntv2[0] = Cells(-0.25, 0.5, 0.0125, 1, 1, false);
    ntv2[1] = Cells(-0.125, 0.625, 0.003125, 0, 0, true);
  }
  orv::NadconSet Nadcon() const { return {nadcon, 2}; }
  orv::NTv2Set NTv2() const { return {ntv2, children, 0, 1}; }

 private:
  orv::NTv2Cells Cells(double west, double south, double step, std::size_t child, std::size_t childCount,
                       bool certain) const {
    const double width = step * (kColumns - 1), height = step * (kRows - 1);
    return {west,           south,    west + width, south + height, 1 / step, 1 / step,   width + 1e-12,
            height + 1e-12, kColumns, kRows,        radians,        child,    childCount, certain};
  }
};
inline const GridTables kGridTables;

// Made up, like the regression's terms: an image of 4000 by 3000 pixels to metres.
template <int kOrder>
orv::WarpOrder3<kOrder> MakeWarpOrder3() {
  constexpr double kE[] = {447000.25, 0.31, -0.07, 2.5e-6, -1.25e-6, 7e-7, 3e-11, -2e-11, 5e-12, 1e-12};
  constexpr double kN[] = {5411000.5, -0.06, -0.33, 4e-6, 1.75e-6, -3e-7, 1e-12, 6e-11, -7e-12, 9e-11};
  orv::WarpOrder3<kOrder> warp;
  std::copy_n(kE, warp.kTerms, warp.e);
  std::copy_n(kN, warp.kTerms, warp.n);
  return warp;
}
inline constexpr orv::WarpOffset kWarpOffset = {447000.25, -17.3};
inline constexpr orv::WarpHelmert kWarpHelmert = {0.31, -0.07, 447000.25, 5411000.5};
inline constexpr orv::WarpCoeff kWarpCoeff = {0.31, -0.07, 447000.25, -0.06, -0.33, 5411000.5};
// The first node lies at pixel (40, 30), exactly.
inline constexpr orv::RegistrationNode kRegistrationNodes[] = {{0, 0, 0.25, -0.5},
                                                               {1, 0.125, -0.75, 0.3},
                                                               {0.9, 1, 0.1, -0.2},
                                                               {0.0625, 0.85, 0.35, 0.6},
                                                               {0.5, 0.375, 0.05, -0.2}};
inline orv::RegistrationWarp MakeRegistration() {
  return {{40, 3900},          {30, 2900},      {447000.25, 1210},  {5411000.5, 930},
          {0.125, 0.9, -0.07}, {0.75, 0.1, -1}, kRegistrationNodes, 5};
}

// n points in a box, drawn evenly with a fixed seed.
inline std::vector<Pt> Box(std::size_t n, double x0, double x1, double y0, double y1) {
  std::mt19937_64 generator(5);
  std::uniform_real_distribution<double> x(x0, x1), y(y0, y1);
  std::vector<Pt> points(n);
  for (Pt& p : points) p = {x(generator), y(generator)};
  return points;
}

inline double* Data(std::vector<Pt>& points) { return points.empty() ? nullptr : &points[0].x; }

}  // namespace lanetest
