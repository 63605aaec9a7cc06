// The warps' kernels against their formulas, written out with doubles.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>

#include "orv/warp/internal/WarpPolynomial.h"
#include "tests/lanes/LaneSetups.h"

namespace {

using namespace lanetest;
using orv::lanes::KernelsOf;
using orv::lanes::KernelTable;

using Kernel = std::function<void(const KernelTable&, double*, std::size_t)>;
using Formula = std::function<Pt(Pt)>;

// Ordinary points, and such that warps do not mark: NaN, infinite, and of which a power overflows.
std::vector<Pt> Pixels() {
  std::vector<Pt> points = Box(997, -500, 4500, -400, 3400);
  const Pt odd[] = {{kNaN, 1},    {1, kNaN},          {kInf, 2},    {3, -kInf},
                    {1e200, 1},   {1, -1e200},        {-0.0, -0.0}, {kMarker, 5},
                    {5, kMarker}, {kMarker, kMarker}, {40, 30},     {5e-324, 1e-310}};
  for (std::size_t i = 0; i < std::size(odd); ++i) points[11 * i + 5] = odd[i];
  return points;
}

bool Same(double got, double want) {
  return std::memcmp(&got, &want, sizeof got) == 0 || (std::isnan(got) && std::isnan(want));
}

/// @param tolerance  of each coordinate; 0: the same bits.
void ExpectFormula(const std::string& name, const Kernel& run, const Formula& formula, double tolerance = 0) {
  const std::vector<Pt> in = Pixels();
  for (const char* isa : {"one", "sse2", "avx2", "avx512", "neon"}) {
    const KernelTable* const set = KernelsOf(isa);
    if (!set) continue;
    std::vector<Pt> out = in;
    run(*set, Data(out), out.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
      const bool marked = in[i].x == kMarker || in[i].y == kMarker;
      const Pt want = marked ? in[i] : formula(in[i]);
      const auto fits = [tolerance](double a, double b) {
        return Same(a, b) || (tolerance > 0 && std::fabs(a - b) <= tolerance);
      };
      EXPECT_TRUE(fits(out[i].x, want.x) && fits(out[i].y, want.y))
          << name << ", " << isa << " at (" << in[i].x << ", " << in[i].y << "): (" << out[i].x << ", "
          << out[i].y << ") for (" << want.x << ", " << want.y << ")";
    }
  }
}

template <int kOrder>
void ExpectPolynomial(orv::lanes::WarpKernel<orv::WarpOrder3<kOrder>> KernelTable::*kernel) {
  const auto warp = MakeWarpOrder3<kOrder>();
  ExpectFormula(
      "order " + std::to_string(kOrder),
      [&](const KernelTable& k, double* xy, std::size_t n) { (k.*kernel)(warp, xy, n); },
      [&](Pt p) {
        Pt sum = {0, 0};
        for (int j = 0; j < orv::internal::TermCount(kOrder); ++j) {
          const double term = orv::internal::PolynomialTerm(j + 1, p.x, p.y, kOrder == 0);
          sum.x += warp.e[j] * term;
          sum.y += warp.n[j] * term;
        }
        return sum;
      });
}

TEST(Warps, PlaneMapsAreTheirFormulasToTheLastBit) {
  ExpectFormula(
      "offset", [](const KernelTable& k, double* xy, std::size_t n) { k.warpOffset(kWarpOffset, xy, n); },
      [](Pt p) {
        return Pt{p.x + kWarpOffset.dx, p.y + kWarpOffset.dy};
      });
  ExpectFormula(
      "helmert", [](const KernelTable& k, double* xy, std::size_t n) { k.warpHelmert(kWarpHelmert, xy, n); },
      [h = kWarpHelmert](Pt p) {
        return Pt{h.a * p.x - h.b * p.y + h.c, h.b * p.x + h.a * p.y + h.d};
      });
  ExpectFormula(
      "coefficients", [](const KernelTable& k, double* xy, std::size_t n) { k.warpCoeff(kWarpCoeff, xy, n); },
      [c = kWarpCoeff](Pt p) {
        return Pt{c.c0 * p.x + c.c1 * p.y + c.c2, c.c3 * p.x + c.c4 * p.y + c.c5};
      });
}

TEST(Warps, PolynomialsAreTheSumsOfTheirTermsToTheLastBit) {
  ExpectPolynomial<0>(&KernelTable::warpOrder0);
  ExpectPolynomial<1>(&KernelTable::warpOrder1);
  ExpectPolynomial<2>(&KernelTable::warpOrder2);
  ExpectPolynomial<3>(&KernelTable::warpOrder3);
}

// ---- the registration ------------------------------------------------------------------------------------

Pt Mapped(const orv::RegistrationWarp& w, Pt p, const std::function<Pt(double u, double v)>& added) {
  const double u = (p.x - w.sourceX.origin) / w.sourceX.extent;
  const double v = (p.y - w.sourceY.origin) / w.sourceY.extent;
  const Pt sum = added(u, v);
  return {w.targetX.origin + w.targetX.extent * sum.x, w.targetY.origin + w.targetY.extent * sum.y};
}
Pt Affine(const orv::RegistrationWarp& w, double u, double v) {
  return {w.a[0] + w.a[1] * u + w.a[2] * v, w.b[0] + w.b[1] * u + w.b[2] * v};
}
double R2(const orv::RegistrationNode& node, double u, double v) {
  const double du = u - node.u, dv = v - node.v;
  return du * du + dv * dv;
}

// Methods 1 and 4 have no transcendental function, so their bits are fixed.  The others take the lanes' logarithm and
// exponential, of below 1 ULP: five terms of at most 0.75 phi, phi to 1.4 here and log to 2, times 1210 metres.
TEST(Warps, SplinesAreTheAffinePartAndTheSumOverTheNodes) {
  const orv::RegistrationWarp w = MakeRegistration();
  const std::function<double(double)> phis[] = {
      [](double r2) { return r2 == 0 ? 0.0 : 0.5 * r2 * std::log(r2); },
      [](double r2) { return r2 * std::sqrt(r2); }, [](double r2) { return std::exp(-std::sqrt(r2)); },
      [](double r2) { return std::exp(-r2); }, [](double r2) { return 1 / (1 + r2); }};
  for (std::size_t method = 0; method < 5; ++method) {
    const auto spline = [&](double u, double v) {
      Pt sum = Affine(w, u, v);
      for (const orv::RegistrationNode& node : kRegistrationNodes) {
        const double phi = phis[method](R2(node, u, v));
        sum.x += node.wX * phi;
        sum.y += node.wY * phi;
      }
      return sum;
    };
    ExpectFormula(
        "registration " + std::to_string(method),
        [&](const KernelTable& k, double* xy, std::size_t n) { k.registration[method](w, xy, n); },
        [&](Pt p) {
          // Far off, where a rounding is kilometres, the sets are compared with each other only.
          if (method == 0 && std::fabs(p.x) + std::fabs(p.y) > 1e100) {
            KernelsOf("one")->registration[0](w, &p.x, 1);
            return p;
          }
          return Mapped(w, p, spline);
        },
        method == 1 || method == 4 ? 0 : 3e-9);
  }
}

TEST(Warps, InverseDistancesAreWeightsToTheLastBitAndANodeStandsAlone) {
  const orv::RegistrationWarp w = MakeRegistration();
  const Kernel run = [&](const KernelTable& k, double* xy, std::size_t n) { k.registration[5](w, xy, n); };
  const auto weighted = [&](double u, double v) {
    const Pt affine = Affine(w, u, v);
    double nearest = R2(kRegistrationNodes[0], u, v);
    const orv::RegistrationNode* at = kRegistrationNodes;
    for (const auto& node : kRegistrationNodes) {
      if (R2(node, u, v) < nearest) {
        at = &node;
        nearest = R2(node, u, v);
      }
    }
    if (nearest == 0) return Pt{affine.x + at->wX, affine.y + at->wY};
    double sum = 0;
    Pt sums = {0, 0};
    for (const auto& node : kRegistrationNodes) {
      const double weight = nearest / R2(node, u, v);
      sum += weight;
      sums.x += weight * node.wX;
      sums.y += weight * node.wY;
    }
    return Pt{affine.x + sums.x / sum, affine.y + sums.y / sum};
  };
  ExpectFormula("inverse distance", run, [&](Pt p) { return Mapped(w, p, weighted); });
}

TEST(Warps, WithoutNodesARegistrationIsAffine) {
  orv::RegistrationWarp w = MakeRegistration();
  w.nodes = nullptr;
  w.count = 0;
  for (std::size_t method = 0; method < 6; ++method) {
    ExpectFormula(
        "affine " + std::to_string(method),
        [&](const KernelTable& k, double* xy, std::size_t n) { k.registration[method](w, xy, n); },
        [&](Pt p) { return Mapped(w, p, [&](double u, double v) { return Affine(w, u, v); }); });
  }
}

}  // namespace
