// The instruction sets against each other, bit for bit; batches; the passes; markers; floating-point flags.
#include <gtest/gtest.h>

#include <cfenv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#if defined(__GLIBC__)
#include <gnu/libc-version.h>
#endif

#include "orv/lanes/Blocks.h"
#include "tests/lanes/LaneSetups.h"
#include "tests/support/Paths.h"

namespace {

using namespace lanetest;
using orv::lanes::KernelsOf;
using orv::lanes::KernelTable;

std::vector<const KernelTable*> Sets() {
  std::vector<const KernelTable*> sets;
  for (const char* isa : {"one", "sse2", "avx2", "avx512", "neon"}) {
    if (const KernelTable* set = KernelsOf(isa)) sets.push_back(set);
  }
  return sets;
}

// A kernel or a pass of any set, on n points; what it returns beside the points (offsets, a flag) goes to
// `extra`.
struct Work {
  std::string name;
  std::vector<Pt> points;  // ordinary ones
  std::function<void(const KernelTable&, double*, std::size_t, std::vector<double>& extra)> run;
};

std::vector<Pt> OddPoints() {
  const double right = 1.5707963267948966;
  return {{kMarker, kMarker},  {kMarker, 0.5}, {0.5, kMarker}, {0, 0},          {-0.0, -0.0},
          {right, 0},          {-right, 0},    {0.3, right},   {0.3, -right},   {0.3, 1.5707963267948961},
          {-0.3, -1.57079632}, {3.2, 0.2},     {180, 90},      {-180, -90},     {180.5, 10},
          {-180.5, 10},        {360, 45},      {-360, -45},    {370, 100},      {-725.5, -100},
          {10, 271},           {0, 1e-300},    {1e-300, 0},    {5e5, 4e6},      {-5e5, 9.5e6},
          {1e7, -1.1e7},       {3e7, 3e7},     {1e9, 1e9},     {-1e12, 1e12},   {1e15, -1e15},
          {1e25, 5e6},         {5e5, 1e25},    {1e60, 1e60},   {-1e100, -1e100}};
}

// ---- the passes, and what each does to one point -------------------------------------------------------------

bool IsOdd(double v) { return !(std::fabs(v) <= std::numeric_limits<double>::max()); }
Pt Checked(Pt p, bool& met) {
  if (IsOdd(p.x) || IsOdd(p.y)) p = {kMarker, kMarker};
  met |= p.x == kMarker || p.y == kMarker;
  return p;
}
template <class F>
double Unless(double v, F f) {
  return v == kMarker ? v : f(v);
}
template <class F>
Pt OfBoth(Pt p, F f) {
  return {Unless(p.x, f), Unless(p.y, f)};
}
double FoldedLatitude(double y) {
  const double r = std::fmod(y, 180);
  return r > 90 ? 180 - r : r < -90 ? -180 - r : r;
}
Pt InRange(Pt p) {
  p = {IsOdd(p.x) ? kMarker : p.x, IsOdd(p.y) ? kMarker : p.y};
  return {Unless(p.x, [](double v) { return std::fmod(v, 360); }), Unless(p.y, FoldedLatitude)};
}
double Radians(double v) { return v * kPi / 180.0; }
double Degrees(double v) { return v * 180.0 / kPi; }
Pt Plus(Pt p, double dx, double dy) {
  if (dx == 0 && dy == 0) return p;
  return {Unless(p.x, [=](double v) { return v + dx; }), Unless(p.y, [=](double v) { return v + dy; })};
}

// A pass of any set; `extra` gets what it returns beside the points, and has the offsets that it reads.  The rule says what
// becomes of one point and its offset, and whether it was marked.
struct Pass {
  std::string name;
  std::function<bool(const KernelTable&, double*, std::size_t, std::vector<double>& extra)> run;
  std::function<Pt(Pt, double& offset, bool& met)> rule;
};

std::vector<Pass> Passes() {
  std::vector<Pass> all;
  all.push_back({"checkMarks",
                 [](const auto& k, double* xy, std::size_t n, auto&) { return k.checkMarks(xy, n); },
                 [](Pt p, double&, bool& met) { return Checked(p, met); }});
  all.push_back({"toRadians",
                 [](const auto& k, double* xy, std::size_t n, auto&) { return k.toRadians(xy, n), false; },
                 [](Pt p, double&, bool&) { return OfBoth(p, Radians); }});
  all.push_back(
      {"multiply",
       [](const auto& k, double* xy, std::size_t n, auto&) { return k.multiply(xy, n, 0.3048), false; },
       [](Pt p, double&, bool&) { return OfBoth(p, [](double v) { return v * 0.3048; }); }});
  all.push_back(
      {"beforeForward",
       [](const auto& k, double* xy, std::size_t n, auto&) { return k.beforeForward(xy, n), false; },
       [](Pt p, double&, bool&) { return OfBoth(InRange(p), Radians); }});
  struct Frame {
    double dx, dy, k;
  };
  for (const Frame f :
       {Frame{0.1, -7.3, 0.3048}, Frame{0, 0, 1}, Frame{-0.0, 0, 0.7}, Frame{5e5, 0, 1}, Frame{-0.0, 1, 1}}) {
    char of[60];
    std::snprintf(of, sizeof of, " (%g, %g) %g", f.dx, f.dy, f.k);
    all.push_back({std::string("afterForward") + of,
                   [f](const auto& k, double* xy, std::size_t n, auto&) {
                     return k.afterForward(xy, n, f.dx, f.dy, f.k);
                   },
                   [f](Pt p, double&, bool& met) {
                     return OfBoth(Plus(Checked(p, met), f.dx, f.dy), [f](double v) { return v * f.k; });
                   }});
    all.push_back({std::string("beforeInverse") + of,
                   [f](const auto& k, double* xy, std::size_t n, auto&) {
                     return k.beforeInverse(xy, n, f.k, f.dx, f.dy);
                   },
                   [f](Pt p, double&, bool& met) {
                     p = OfBoth(Checked(p, met), [f](double v) { return v / f.k; });
                     return f.dx == 0 && f.dy == 0 ? p : Plus(p, -f.dx, -f.dy);
                   }});
  }
  all.push_back({"afterInverse",
                 [](const auto& k, double* xy, std::size_t n, auto&) { return k.afterInverse(xy, n); },
                 [](Pt p, double&, bool& met) { return InRange(OfBoth(Checked(p, met), Degrees)); }});
  all.push_back({"beforeShift",
                 [](const auto& k, double* xy, std::size_t n, auto& offsets) {
                   offsets.resize(n);
                   return k.beforeShift(xy, n, offsets.data());
                 },
                 [](Pt p, double& offset, bool& met) {
                   p = Checked(p, met);
                   offset = 0;
                   if (p.x == kMarker || p.y == kMarker) return p;
                   p = InRange(p);
                   if (p.x >= -360 && p.x < -180) offset = -360;
                   if (p.x > 180 && p.x <= 360) offset = 360;
                   return offset == 0 ? p : Pt{p.x - offset, p.y};
                 }});
  all.push_back({"afterShift",
                 [](const auto& k, double* xy, std::size_t n, auto& offsets) {
                   offsets.resize(n, 360.0);
                   return k.afterShift(xy, n, offsets.data());
                 },
                 [](Pt p, double& offset, bool& met) {
                   p = Checked(p, met);
                   return p.x == kMarker || p.y == kMarker ? p : Pt{p.x + offset, p.y};
                 }});
  return all;
}

template <class E>
void AddEngine(std::vector<Work>& all, const std::string& name, const E& engine,
               orv::lanes::EngineKernels<E> KernelTable::*kernels, std::vector<Pt> geographic) {
  all.push_back({name + " forward", geographic, [=](const KernelTable& k, double* xy, std::size_t n, auto&) {
                   (k.*kernels).forward(engine, xy, n);
                 }});
  (*KernelsOf("one").*kernels).forward(engine, Data(geographic), geographic.size());
  std::erase_if(geographic, [](Pt p) { return p.x == kMarker; });
  all.push_back({name + " inverse", geographic, [=](const KernelTable& k, double* xy, std::size_t n, auto&) {
                   (k.*kernels).inverse(engine, xy, n);
                 }});
}
template <class D>
void AddMethod(std::vector<Work>& all, const std::string& name, const D& method,
               orv::lanes::DatumKernel<D> KernelTable::*kernel, std::vector<Pt> degrees) {
  all.push_back({name, degrees, [=](const KernelTable& k, double* xy, std::size_t n, auto&) {
                   (k.*kernel)(method, xy, n);
                 }});
}
std::vector<Work> AllWork(std::size_t n = 1500) {
  std::vector<Work> all;
  const auto world = Box(n, -3.1, 3.1, -1.57, 1.57), zone = Box(n, -0.1, 0.12, -1.5, 1.5);
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    const std::string of = el.f == 0 ? " sphere" : el.f > 0.05 ? " flat" : "";
    AddEngine(all, "mercator" + of, MakeMercator(el, 0.3, 0.7), &KernelTable::mercator, world);
    AddEngine(all, "tm" + of, MakeTm(el, 0.99, 0.01, 0.4), &KernelTable::transverseMercator,
              el.f == 0 ? world : zone);
    AddEngine(all, "utm" + of, MakeTm(el, 0.99, 0.01, 0.4), &KernelTable::utm, el.f == 0 ? world : zone);
    AddEngine(all, "cassini" + of, MakeCassini(el, 0.01, 0.4), &KernelTable::cassini,
              el.f == 0 ? world : zone);
    for (const double side : {1.0, -1.0}) {  // cones with their apex in the north and in the south
      const std::string where = of + (side > 0 ? " north" : " south");
      AddEngine(all, "lambert" + where, MakeLambert(el, 0.2, 0.3, side * 0.5, side * 0.8),
                &KernelTable::lambertConformalConic, world);
      AddEngine(all, "albers" + where, MakeAlbers(el, 0.2, 0.3, side * 0.5, side * 0.8), &KernelTable::albers,
                world);
      AddEngine(all, "equidistant conic" + where, MakeEquiConic(el, 0.2, 0.3, side * 0.5, side * 0.8),
                &KernelTable::equidistantConic, world);
      AddEngine(all, "bonne" + where, MakeBonne(el, 0.2, side * 0.7), &KernelTable::bonne, world);
    }
    AddEngine(all, "polyconic" + of, MakePolyconic(el, 0.2, 0.3), &KernelTable::polyconic, world);
    AddEngine(all, "hotine azimuth" + of, MakeHotineAzimuth(el, 0.99, 0.4, 0.5, 0.6, true, true),
              &KernelTable::hotine, world);
    AddEngine(all, "hotine points" + of,
              MakeHotinePoints(el, 0.99, 0.7, {-2.1, 0.8}, {-1.4, 0.4}, false, false), &KernelTable::hotine,
              world);
  }
  for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
    AddEngine(all, el.f == 0 ? "sinusoidal sphere" : "sinusoidal", MakeSinusoidal(el, 0.3),
              &KernelTable::sinusoidal, world);
  }
  AddEngine(all, "mollweide", orv::Mollweide{6378137, 0.2}, &KernelTable::mollweide, world);
  AddEngine(all, "eckert iv", orv::Eckert4{6378137, 0.2}, &KernelTable::eckert4, world);
  AddEngine(all, "eckert vi", orv::Eckert6{6378137, 0.2}, &KernelTable::eckert6, world);
  AddEngine(all, "robinson", orv::Robinson{6378137}, &KernelTable::robinson, world);
  AddEngine(all, "robinson-sterling", orv::RobinsonSterling{6378137, 0.2}, &KernelTable::robinsonSterling,
            world);
  AddEngine(all, "van der grinten", orv::VanDerGrinten{6378137, 0.2}, &KernelTable::vanDerGrinten, world);
  for (const Ellipsoid el : {kClarke1866, kSphere}) {  // no scale, hence no inverse: K0 = 0
    AddEngine(all, "tm without scale", MakeTm(el, 0, 0.01, 0.4), &KernelTable::transverseMercator, zone);
    AddEngine(all, "utm without scale", MakeTm(el, 0, 0.01, 0.4), &KernelTable::utm, zone);
  }
  AddEngine(all, "hotine without scale", MakeHotineAzimuth(kClarke1866, 0, 0.4, 0.5, 0.6, true, true),
            &KernelTable::hotine, world);
  AddEngine(all, "oblique without scale", MakeOblique(6370997, 0, -1, 0.8, -1.9, 0.5),
            &KernelTable::obliqueMercator, world);
  for (const double lat0 : {0.0, 0.7, -1.2, kHalfPi, -kHalfPi}) {  // azimuthal: all aspects
    const std::string at = " at " + std::to_string(lat0);
    const orv::AzimuthalCentre centre = MakeCentre(0.3, lat0);
    const double pole = lat0 == kHalfPi ? 1 : lat0 == -kHalfPi ? -1 : 0;
    for (const Ellipsoid el : {kClarke1866, kFlat, kSphere}) {
      AddEngine(all, "stereographic" + at, MakeStereographic(el, 0.97, 0.3, lat0),
                &KernelTable::stereographic, world);
    }
    AddEngine(all, "orthographic" + at, orv::Orthographic{6378137, centre}, &KernelTable::orthographic,
              world);
    AddEngine(all, "gnomonic" + at, orv::Gnomonic{6378137, pole, centre}, &KernelTable::gnomonic, world);
    AddEngine(all, "azimuthal equidistant" + at, orv::AzimuthalEquidistant{6378137, centre},
              &KernelTable::azimuthalEquidistant, world);
    AddEngine(all, "lambert azimuthal" + at, orv::LambertAzimuthal{6378137, centre},
              &KernelTable::lambertAzimuthal, world);
  }
  AddEngine(all, "stereographic without scale", MakeStereographic(kClarke1866, 0, 0.3, 0.7),
            &KernelTable::stereographic, world);
  AddEngine(all, "miller", orv::Miller{6378137, 0.2}, &KernelTable::miller, world);
  AddEngine(all, "equidistant", orv::EquidistantCylindrical{6378137, 0.2, 0.6},
            &KernelTable::equidistantCylindrical, world);
  AddEngine(all, "equidistant at 90", orv::EquidistantCylindrical{6378137, 0.2, 0},
            &KernelTable::equidistantCylindrical, world);
  AddEngine(all, "oblique", MakeOblique(6370997, 0.99, -1, 0.8, -1.9, 0.5), &KernelTable::obliqueMercator,
            world);
  const auto degrees = Box(n, -179, 179, -89, 89);
  AddMethod(all, "molodensky", MakeMolodensky(kAiry, kWgs84, 375, -111, 431, 1.5), &KernelTable::molodensky,
            degrees);
  AddMethod(all, "bursa-wolf",
            MakeBursaWolf(kAiry, kWgs84, 446.4, -125.2, 542.1, 0.15, 0.25, 0.84, -20.5, 1.5),
            &KernelTable::bursaWolf, degrees);
  AddMethod(all, "regression", MakeRegression(0.05235988), &KernelTable::regression,
            Box(n, -125, -66, 24, 50));
  const auto any = Box(n, -700, 700, -300, 300);
  for (const Pass& pass : Passes()) {
    all.push_back({pass.name, any, [pass](const KernelTable& k, double* xy, std::size_t m, auto& extra) {
                     pass.run(k, xy, m, extra);
                   }});
  }
  const auto pixels = Box(n, -500, 4500, -400, 3400);
  AddMethod(all, "warp offset", kWarpOffset, &KernelTable::warpOffset, pixels);
  AddMethod(all, "warp helmert", kWarpHelmert, &KernelTable::warpHelmert, pixels);
  AddMethod(all, "warp order 0", MakeWarpOrder3<0>(), &KernelTable::warpOrder0, pixels);
  AddMethod(all, "warp order 1", MakeWarpOrder3<1>(), &KernelTable::warpOrder1, pixels);
  AddMethod(all, "warp order 2", MakeWarpOrder3<2>(), &KernelTable::warpOrder2, pixels);
  AddMethod(all, "warp order 3", MakeWarpOrder3<3>(), &KernelTable::warpOrder3, pixels);
  AddMethod(all, "warp coefficients", kWarpCoeff, &KernelTable::warpCoeff, pixels);
  for (std::size_t method = 0; method < 6; ++method) {
    auto points = pixels;
    points[1] = {40, 30};  // a node
    all.push_back({"warp registration " + std::to_string(method), points,
                   [method](const KernelTable& k, double* xy, std::size_t m, auto&) {
                     k.registration[method](MakeRegistration(), xy, m);
                   }});
  }
  AddMethod(all, "molodensky flat", MakeMolodensky(kFlat, kWgs84, 375, -111, 431, 1.5),
            &KernelTable::molodensky, degrees);
  // shifts of a thousand kilometres: points far from the ellipsoid, some of them
  AddMethod(all, "bursa-wolf far", MakeBursaWolf(kFlat, kWgs84, 2e6, -1e4, 3e4, 0.15, 0.25, 0.84, -20.5, 1.5),
            &KernelTable::bursaWolf, degrees);
  AddEngine(all, "nadcon", kGridTables.Nadcon(), &KernelTable::nadcon, Box(n, -12, 12, 38, 56));
  AddEngine(all, "ntv2", kGridTables.NTv2(), &KernelTable::ntv2, Box(n, -0.3, 0.3, 0.45, 0.9));
  return all;
}

bool SameBits(const std::vector<Pt>& a, const std::vector<Pt>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Pt)) == 0;
}
std::string FirstDifference(const std::vector<Pt>& in, const std::vector<Pt>& a, const std::vector<Pt>& b) {
  char text[400] = "";
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::memcmp(&a[i], &b[i], sizeof(Pt)) == 0) continue;
    std::snprintf(text, sizeof text, "point %zu (%.17g, %.17g): (%.17g, %.17g) and (%.17g, %.17g)", i,
                  in[i].x, in[i].y, a[i].x, a[i].y, b[i].x, b[i].y);
    break;
  }
  return text;
}

std::vector<Pt> WithOddPoints(std::vector<Pt> points) {
  const auto odd = OddPoints();
  for (std::size_t i = 0; i < odd.size(); ++i) points[7 * i + 3] = odd[i];
  return points;
}

TEST(Lanes, TheOneLaneSetIsAlwaysThereAndUnknownOnesAreNot) {
  ASSERT_NE(KernelsOf("one"), nullptr);
  EXPECT_EQ(KernelsOf("one")->lanes, 1u);
  EXPECT_EQ(KernelsOf("avx1024"), nullptr);
  EXPECT_EQ(KernelsOf(""), nullptr);
  for (const KernelTable* set : Sets()) {
    EXPECT_EQ(KernelsOf(set->isa), set);
    EXPECT_EQ(orv::lanes::kMostLanes % set->lanes, 0u);
  }
#if defined(__x86_64__)
  ASSERT_NE(KernelsOf("sse2"), nullptr);
#endif
}

TEST(Lanes, AllInstructionSetsGiveTheSameBits) {
  for (const Work& work : AllWork()) {
    for (const bool odd : {false, true}) {
      const auto input = odd ? WithOddPoints(work.points) : work.points;
      auto reference = input;
      std::vector<double> referenceExtra;
      work.run(*KernelsOf("one"), Data(reference), reference.size(), referenceExtra);
      for (const KernelTable* set : Sets()) {
        auto got = input;
        std::vector<double> extra;
        work.run(*set, Data(got), got.size(), extra);
        EXPECT_TRUE(SameBits(got, reference))
            << work.name << ", " << set->isa << ": " << FirstDifference(input, got, reference);
        EXPECT_EQ(extra, referenceExtra) << work.name << ", " << set->isa;
      }
    }
  }
}

// ---- the table of bits -----------------------------------------------------------------------------------
// kernel_bits.txt holds a hash of each kernel's results at 10 000 fixed points, forward points first, of which
// those that have an image are the inverse's.  It pins bits and says nothing of correctness, which Formulas_test,
// the worked examples and the peer tests look after: a kernel that is changed on purpose, and passes those, gets
// new rows by
//
//     ORV_WRITE_KERNEL_BITS=1 build/dev/tests/bin/orv_tests --gtest_filter=Lanes.ResultsAreThoseOfTheTable
//
// Every compiler and every instruction set must then give them again.  The constants of the set-ups come from the
// C library, whose last bits differ from one version, and from one kind of processor, to another.

std::string Table() { return orv::test::SourceFolder() + "/tests/lanes/kernel_bits.txt"; }

bool HasTheTablesLibrary() {
#if defined(__x86_64__) && defined(__GLIBC__)
  return std::string(gnu_get_libc_version()) == "2.36" && __builtin_cpu_supports("fma") != 0;
#else
  return false;
#endif
}

std::string HashOf(const std::vector<Pt>& points) {
  std::uint64_t hash = 14695981039346656037u;  // FNV-1a by words of eight bytes
  for (const Pt p : points) {
    for (const double v : {p.x, p.y}) {
      std::uint64_t bits = 0;
      std::memcpy(&bits, &v, sizeof bits);
      hash = (hash ^ bits) * 1099511628211u;
      hash ^= hash >> 29;
    }
  }
  char text[20];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

TEST(Lanes, ResultsAreThoseOfTheTable) {
  if (!HasTheTablesLibrary()) GTEST_SKIP() << "the table belongs to glibc 2.36 on x86-64 with FMA";
  std::string text;
  int number = 0;
  for (const Work& work : AllWork(10000)) {
    auto points = work.points;
    std::vector<double> extra;
    work.run(orv::lanes::Kernels(), Data(points), points.size(), extra);
    text += HashOf(points) + " " + std::to_string(++number) + " " + work.name + "\n";
  }
  if (std::getenv("ORV_WRITE_KERNEL_BITS")) std::ofstream(Table(), std::ios::binary) << text;
  std::ifstream file(Table(), std::ios::binary);
  std::istringstream rows(text);
  std::string row, expected;
  while (std::getline(rows, row)) {
    ASSERT_TRUE(std::getline(file, expected)) << "no row for " << row;
    EXPECT_EQ(row, expected);
  }
  EXPECT_FALSE(std::getline(file, expected)) << "no kernel for " << expected;
}

TEST(Lanes, NoPointDependsOnItsBatch) {
  for (const Work& work : AllWork()) {
    const auto points = WithOddPoints(work.points);
    for (const KernelTable* set : Sets()) {
      std::vector<double> extra;
      auto single = points;
      for (Pt& p : single) work.run(*set, &p.x, 1, extra);
      const auto expect = [&](const std::vector<Pt>& got, const char* what, std::size_t n) {
        const std::vector<Pt> want(single.begin(), single.begin() + static_cast<std::ptrdiff_t>(got.size()));
        EXPECT_TRUE(SameBits(got, want)) << work.name << ", " << set->isa << ", " << what << " " << n << ": "
                                         << FirstDifference(points, got, want);
      };
      std::vector<std::size_t> sizes = {513};
      for (std::size_t n = 1; n <= 35; ++n) sizes.push_back(n);
      for (const std::size_t n : sizes) {
        std::vector<Pt> batch(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(n));
        work.run(*set, Data(batch), n, extra);
        expect(batch, "batch of", n);
      }
      std::vector<Pt> reversed(points.rbegin(), points.rend());
      work.run(*set, Data(reversed), reversed.size(), extra);
      expect({reversed.rbegin(), reversed.rend()}, "reversed batch of", points.size());
    }
  }
}

TEST(Lanes, NothingOutsideTheBatchIsTouched) {
  for (const Work& work : AllWork()) {
    for (const KernelTable* set : Sets()) {
      for (std::size_t n = 0; n <= 33; ++n) {
        std::vector<Pt> points(work.points.begin(), work.points.begin() + 40);
        const auto before = points;
        std::vector<double> extra;
        work.run(*set, Data(points), n, extra);
        EXPECT_EQ(std::memcmp(&points[n], &before[n], (40 - n) * sizeof(Pt)), 0)
            << work.name << ", " << set->isa << ", " << n;
      }
    }
  }
}

TEST(Lanes, EnginesAndMethodsLeavePointsWithAMarkerUntouched) {
  for (const Work& work : AllWork()) {
    const auto passes = Passes();
    if (std::any_of(passes.begin(), passes.end(), [&](const Pass& pass) { return pass.name == work.name; }))
      continue;
    for (const KernelTable* set : Sets()) {
      std::vector<Pt> points = {{kMarker, kMarker}, {kMarker, 0.25}, {0.25, kMarker}, {kMarker, -0.0}};
      const auto before = points;
      std::vector<double> extra;
      work.run(*set, Data(points), points.size(), extra);
      EXPECT_TRUE(SameBits(points, before))
          << work.name << ", " << set->isa << ": " << FirstDifference(before, points, before);
    }
  }
}

// Points that are merely unplottable, or far away, must not look like a fault to a host with unmasked traps.
TEST(Lanes, NoPointRaisesDivideByZeroOverflowOrInvalid) {
  const auto flags = [] {
    const int raised = std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID);
    return std::string(raised & FE_DIVBYZERO ? " divide" : "") + (raised & FE_OVERFLOW ? " overflow" : "") +
           (raised & FE_INVALID ? " invalid" : "");
  };
  for (const Work& work : AllWork()) {
    // Only engines are given latitudes and distances that suit them: radians up to right angles, any metres.
    const bool forward = work.name.find("forward") != std::string::npos;
    const bool regression = work.name == "regression";
    const bool degrees = regression || work.name.find("molodensky") == 0 || work.name.find("bursa-wolf") == 0;
    const auto fits = [&](Pt p) {
      if (p.x == kMarker || p.y == kMarker) return true;
      if (forward) return std::fabs(p.x) < 10 && std::fabs(p.y) <= kHalfPi;
      if (degrees) return std::fabs(p.x) <= 360 && std::fabs(p.y) <= 90;
      return true;
    };
    for (const KernelTable* set : Sets()) {
      auto points = WithOddPoints(work.points);
      std::erase_if(points, [&](Pt p) { return !fits(p); });
      std::vector<double> extra;
      std::feclearexcept(FE_ALL_EXCEPT);
      work.run(*set, Data(points), points.size(), extra);
      EXPECT_EQ(flags(), "") << work.name << ", " << set->isa;
      for (const Pt p : OddPoints()) {  // to name the point
        if (!fits(p)) continue;
        Pt q = p;
        std::feclearexcept(FE_ALL_EXCEPT);
        work.run(*set, &q.x, 1, extra);
        EXPECT_EQ(flags(), "") << work.name << ", " << set->isa << " at (" << p.x << ", " << p.y << ")";
      }
    }
  }
  for (const KernelTable* set : Sets()) {
    std::vector<Pt> points = {{kNaN, 1}, {1, kNaN}, {kInf, 1}, {1, -kInf}, {-kInf, kNaN}, {2, 3}};
    std::feclearexcept(FE_ALL_EXCEPT);
    auto batch = points;
    set->checkMarks(Data(batch), batch.size());
    for (const Pass& pass : Passes()) {
      if (pass.name == "toRadians" || pass.name == "multiply") continue;  // which get what is looked through
      batch = points;
      std::feclearexcept(FE_ALL_EXCEPT);
      std::vector<double> extra;
      pass.run(*set, Data(batch), batch.size(), extra);
      EXPECT_EQ(flags(), "") << pass.name << ", " << set->isa;
    }
  }
}

// ---- the passes, each against its rule -------------------------------------------------------------------

template <class F>
void ForSets(F f) {
  for (const KernelTable* set : Sets()) {
    SCOPED_TRACE(set->isa);
    f(*set);
  }
}
void ExpectPoint(Pt got, double x, double y) {
  EXPECT_EQ(std::memcmp(&got.x, &x, 8), 0) << got.x << " for " << x;
  EXPECT_EQ(std::memcmp(&got.y, &y, 8), 0) << got.y << " for " << y;
}

TEST(Lanes, CheckMarksMarksBothCoordinatesAndTellsOfOldMarkers) {
  ForSets([](const KernelTable& k) {
    std::vector<Pt> clean = {{1, 2}, {-0.0, 3}, {1e308, -1e308}, {-kMarker, 0}};
    const auto before = clean;
    EXPECT_FALSE(k.checkMarks(Data(clean), clean.size()));
    EXPECT_TRUE(SameBits(clean, before));
    for (const Pt odd : {Pt{kNaN, 1}, Pt{1, kNaN}, Pt{kInf, 1}, Pt{1, -kInf}}) {
      for (std::size_t at = 0; at < 11; ++at) {
        std::vector<Pt> points(11, Pt{1, 2});
        points[at] = odd;
        EXPECT_TRUE(k.checkMarks(Data(points), points.size()));
        ExpectPoint(points[at], kMarker, kMarker);
        ExpectPoint(points[at == 0 ? 1 : at - 1], 1, 2);
      }
    }
    std::vector<Pt> half = {{kMarker, 5}};
    EXPECT_TRUE(k.checkMarks(Data(half), 1));
    ExpectPoint(half[0], kMarker, 5);
    half = {{5, kMarker}};
    EXPECT_TRUE(k.checkMarks(Data(half), 1));
    EXPECT_FALSE(k.checkMarks(Data(half), 0));
  });
}

// Every pass does to every point what its rule says, to the last bit, whoever its neighbours are.
TEST(Lanes, PassesFollowTheirRules) {
  std::mt19937_64 generator(11);
  std::uniform_real_distribution<double> exponent(-1074, 1023), mantissa(-2, 2), usual(-400, 400),
      little(-1.5, 1.5);
  std::vector<Pt> in;
  for (int i = 0; i < 4000; ++i) in.push_back({usual(generator), usual(generator) / 5});
  for (int i = 0; i < 4000; ++i) in.push_back({little(generator), little(generator)});
  for (int i = 0; i < 40000; ++i)
    in.push_back({std::ldexp(mantissa(generator), static_cast<int>(exponent(generator))), usual(generator)});
  std::vector<Pt> odd = OddPoints();
  for (const double v : {0.0, -0.0, 5e-324, 1e-280, 1e-310, 90.0, 180.0, 359.99999999999994, 360.0, 1.57,
                         kHalfPi, 6.28, 1e300, 1.7e308, kMarker, kInf, kNaN}) {
    for (const double w :
         {-0.0, 1.0, 90.0, 90.00000000000001, 100.0, -271.0, 1e300, kMarker, -kMarker, -kInf, kNaN})
      odd.insert(odd.end(), {{v, w}, {-v, w}});
  }
  for (std::size_t i = 0; i < odd.size(); ++i) {  // among usual ones, at every place of a group
    in.insert(in.end(), 40, Pt{1.5, -0.0});
    in[in.size() - 20 - i % 17] = odd[i];
  }
  in.insert(in.end(), odd.begin(), odd.end());
  for (const KernelTable* set : Sets()) {
    for (const Pass& pass : Passes()) {
      std::vector<Pt> out = in;
      std::vector<double> offsets(in.size(), 360.0);
      offsets[1] = 0.0;
      offsets[2] = -360.0;
      std::vector<double> ruled = offsets;
      bool anyMet = false;
      const bool met = pass.run(*set, Data(out), out.size(), offsets);
      for (std::size_t i = 0; i < in.size(); ++i) {
        const Pt expected = pass.rule(in[i], ruled[i], anyMet);
        ASSERT_EQ(std::memcmp(&out[i], &expected, sizeof expected), 0)
            << pass.name << ", " << set->isa << " at (" << in[i].x << ", " << in[i].y << "): (" << out[i].x
            << ", " << out[i].y << ") and (" << expected.x << ", " << expected.y << ")";
        ASSERT_EQ(offsets[i], ruled[i]) << pass.name << ", " << set->isa << " at " << in[i].x;
      }
      EXPECT_EQ(met, anyMet) << pass.name;
      for (const Pt plain :
           {Pt{1.25, -0.5}, Pt{370, 100}, Pt{-1e305, 6.3}, Pt{6.3, 1e305}}) {  // usual or not
        std::vector<Pt> clean(37, plain);
        std::vector<double> none;
        EXPECT_FALSE(pass.run(*set, Data(clean), clean.size(), none)) << pass.name << ", " << plain.x;
      }
    }
  }
}

TEST(Lanes, RangesKeepTheSignOfLongitudesAndFoldLatitudes) {
  ForSets([](const KernelTable& k) {
    std::vector<Pt> p = {{370, 100}, {-370, -100}, {360, 270}, {kNaN, 100}, {370, kInf}, {kMarker, 100}};
    k.beforeForward(Data(p), p.size());
    ExpectPoint(p[0], Radians(10), Radians(80));  // the longitude is not turned with the latitude
    ExpectPoint(p[1], Radians(-10), Radians(-80));
    ExpectPoint(p[2], 0, Radians(-90 + 180));
    ExpectPoint(p[3], kMarker, Radians(80));
    ExpectPoint(p[4], Radians(10), kMarker);
    ExpectPoint(p[5], kMarker, Radians(80));
    p = {{kMarker, 100}, {370, kMarker}, {370, 100}};
    double offsets[3];
    k.beforeShift(Data(p), p.size(), offsets);
    ExpectPoint(p[0], kMarker, 100);
    ExpectPoint(p[1], 370, kMarker);
    ExpectPoint(p[2], 10, 80);
  });
}

TEST(Lanes, WhatWrapsALongitudeIsRememberedAndAddedBack) {
  ForSets([](const KernelTable& k) {
    const std::vector<Pt> in = {{350, 1}, {-350, 1}, {180, 1},     {-180, 1},      {180.5, 1}, {-180.5, 1},
                                {0, 1},   {-0.0, 1}, {kMarker, 1}, {350, kMarker}, {10, 1},    {359, 1}};
    const double wrapped[] = {-10, 10, 180, -180, -179.5, 179.5, 0, -0.0, kMarker, 350, 10, -1};
    const double offset[] = {360, -360, 0, 0, 360, -360, 0, 0, 0, 0, 0, 360};
    auto p = in;
    std::vector<double> offsets(in.size() + 1, -1);
    EXPECT_TRUE(k.beforeShift(Data(p), p.size(), offsets.data()));
    for (std::size_t i = 0; i < in.size(); ++i) {
      ExpectPoint(p[i], wrapped[i], in[i].y);
      EXPECT_EQ(offsets[i], offset[i]) << in[i].x;
    }
    EXPECT_EQ(offsets.back(), -1);
    EXPECT_TRUE(k.afterShift(Data(p), p.size(), offsets.data()));
    for (std::size_t i = 0; i < in.size(); ++i) EXPECT_EQ(p[i].x, in[i].x);
  });
}

// ---- blocks and the choice of the set --------------------------------------------------------------------

TEST(Blocks, EveryPointIsSeenOnceInWholeGroups) {
  KernelTable best{}, few{};  // only their lanes matter here
  for (best.lanes = 1; best.lanes <= 16; best.lanes *= 2) {
    for (few.lanes = 1; few.lanes <= best.lanes; few.lanes *= 2) {
      for (const std::size_t n :
           {0u, 1u, 2u, 3u, 5u, 7u, 8u, 9u, 15u, 16u, 17u, 31u, 511u, 512u, 513u, 1024u, 1030u}) {
        std::vector<Pt> points(n);
        for (std::size_t i = 0; i < n; ++i) points[i] = {static_cast<double>(i), 1};
        std::size_t seen = 0, calls = 0;
        const auto fit = [&](std::size_t rest) -> const KernelTable& {
          EXPECT_EQ(rest, n % best.lanes);
          return few;
        };
        orv::lanes::ForEachBlock(
            Data(points), n, best, fit, [&](const KernelTable& kernels, double* xy, std::size_t count) {
              ++calls;
              EXPECT_EQ(&kernels, seen < n - n % best.lanes ? &best : &few);
              EXPECT_EQ(count % kernels.lanes, 0u);
              EXPECT_LE(count, orv::lanes::kBlockPoints);
              for (std::size_t i = 0; i < count; ++i) {
                const std::size_t at = std::min(seen + i, n - 1);  // padding repeats the last point
                EXPECT_EQ(xy[2 * i], static_cast<double>(at));
                xy[2 * i + 1] += 1;
              }
              seen += count;
            });
        EXPECT_GE(seen, n);
        EXPECT_LT(seen, n + few.lanes);
        EXPECT_LE(calls, n / 512 + 2);
        for (const Pt p : points) EXPECT_EQ(p.y, 2);
      }
    }
  }
}

// Names the sets of one process: that of many points, then those of one to nine.
void PrintSets(const char* wanted) {
  setenv("ORV_ISA", wanted, 1);
  std::fputs(orv::lanes::Kernels().isa, stderr);
  for (std::size_t n = 1; n <= 9; ++n) std::fprintf(stderr, " %s", orv::lanes::KernelsFor(n).isa);
  std::exit(0);
}

// The set of index `best`, and for few points the one whose lanes they fill, where there is one below it.
std::string SetsUpTo(std::size_t best) {
  std::string names = std::string("^") + Sets()[best]->isa;
  for (std::size_t n = 1; n <= 9; ++n) {
    std::size_t fit = 0;
    while (fit < best && n > 2 && (n > 8 || Sets()[fit]->lanes < n)) ++fit;
    names += std::string(" ") + Sets()[fit]->isa;
  }
  return names + "$";
}

TEST(Dispatch, TheChoiceCanBeLimitedInOneProcess) {
  const KernelTable& first = orv::lanes::Kernels();
  for (const KernelTable* set : Sets()) {
    orv::lanes::LimitKernels(set->isa);
    EXPECT_EQ(&orv::lanes::Kernels(), set);
    EXPECT_EQ(&orv::lanes::KernelsFor(9), set);
    for (std::size_t n = 1; n <= 2; ++n) EXPECT_EQ(orv::lanes::KernelsFor(n).lanes, 1u);
    for (std::size_t n = 3; n <= 4; ++n)
      EXPECT_LE(orv::lanes::KernelsFor(n).lanes, std::min<std::size_t>(set->lanes, 4));
    for (std::size_t n = 5; n <= 8; ++n)
      EXPECT_LE(orv::lanes::KernelsFor(n).lanes, std::min<std::size_t>(set->lanes, 8));
  }
  orv::lanes::LimitKernels("nonsense");
  EXPECT_EQ(&orv::lanes::Kernels(), Sets().back());
  orv::lanes::LimitKernels(nullptr);
  EXPECT_EQ(&orv::lanes::Kernels(), &first);
}

// The environment is read once in a process, so each case needs its own.
TEST(DispatchDeathTest, TheEnvironmentLimitsTheSets) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (std::size_t i = 0; i < Sets().size(); ++i) {
    EXPECT_EXIT(PrintSets(Sets()[i]->isa), testing::ExitedWithCode(0), SetsUpTo(i));
  }
  const std::string best = SetsUpTo(Sets().size() - 1);
  EXPECT_EXIT(PrintSets("nonsense"), testing::ExitedWithCode(0), best);
  EXPECT_EXIT(PrintSets(""), testing::ExitedWithCode(0), best);
#if defined(__x86_64__)
  // A machine without the set that is named takes the best one below; here that is the best one of all.
  if (!KernelsOf("avx512")) {
    EXPECT_EXIT(PrintSets("avx512"), testing::ExitedWithCode(0), best);
  }
#endif
}

}  // namespace
