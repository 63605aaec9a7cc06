// The instruction sets against each other, bit for bit; batches; the passes; markers; floating-point flags.
#include <gtest/gtest.h>

#include <cfenv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
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
void AddPass(std::vector<Work>& all, const std::string& name, std::size_t count,
             void (*KernelTable::*pass)(double*, std::size_t)) {
  all.push_back({name, Box(count, -700, 700, -300, 300),
                 [=](const KernelTable& k, double* xy, std::size_t n, auto&) { (k.*pass)(xy, n); }});
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
  AddEngine(all, "robinson-sterling", MakeSterling(6378137, 0.2), &KernelTable::robinsonSterling, world);
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
  AddPass(all, "normaliseCoordinates", n, &KernelTable::normaliseCoordinates);
  AddPass(all, "normalisePoints", n, &KernelTable::normalisePoints);
  AddPass(all, "toRadians", n, &KernelTable::toRadians);
  AddPass(all, "toDegrees", n, &KernelTable::toDegrees);
  const auto any = Box(n, -700, 700, -300, 300);
  all.push_back(
      {"checkMarks", any,
       [](const KernelTable& k, double* xy, std::size_t m, std::vector<double>&) { k.checkMarks(xy, m); }});
  all.push_back({"addOrigin", any, [](const KernelTable& k, double* xy, std::size_t m, auto&) {
                   k.addOrigin(xy, m, 0.1, -7.3);
                 }});
  all.push_back({"subtractOrigin", any, [](const KernelTable& k, double* xy, std::size_t m, auto&) {
                   k.subtractOrigin(xy, m, 0.1, -7.3);
                 }});
  all.push_back({"multiply", any,
                 [](const KernelTable& k, double* xy, std::size_t m, auto&) { k.multiply(xy, m, 0.3048); }});
  all.push_back({"divide", any,
                 [](const KernelTable& k, double* xy, std::size_t m, auto&) { k.divide(xy, m, 0.3048); }});
  const auto turned = Box(n, -360, 360, -90, 90);
  all.push_back({"wrapLongitudes", turned,
                 [](const KernelTable& k, double* xy, std::size_t m, std::vector<double>& extra) {
                   extra.assign(m, -1);
                   k.wrapLongitudes(xy, m, extra.data());
                 }});
  all.push_back({"unwrapLongitudes", turned,
                 [](const KernelTable& k, double* xy, std::size_t m, std::vector<double>& extra) {
                   extra.clear();
                   for (std::size_t i = 0; i < m; ++i) {
                     extra.push_back(360.0 * (std::floor(std::fmod(std::fabs(xy[2 * i]), 3)) - 1));
                   }
                   k.unwrapLongitudes(xy, m, extra.data());
                 }});
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
  AddEngine(all, "nadcon", kGridTables.Nadcon(), &KernelTable::nadcon, Box(n, -12, 12, 38, 56));
  AddEngine(all, "ntv2", kGridTables.NTv2(), &KernelTable::ntv2, Box(n, -0.3, 0.3, 0.45, 0.9));
  return all;
}

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
      for (std::size_t n = 1; n <= 20; ++n) sizes.push_back(n);
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
      for (std::size_t n = 0; n <= 17; ++n) {
        std::vector<Pt> points(work.points.begin(), work.points.begin() + 24);
        const auto before = points;
        std::vector<double> extra;
        work.run(*set, Data(points), n, extra);
        EXPECT_EQ(std::memcmp(&points[n], &before[n], (24 - n) * sizeof(Pt)), 0)
            << work.name << ", " << set->isa << ", " << n;
      }
    }
  }
}

TEST(Lanes, EnginesAndMethodsLeavePointsWithAMarkerUntouched) {
  for (const Work& work : AllWork()) {
    const bool kernel = work.name.find("ward") != std::string::npos ||
                        work.name.find("verse") != std::string::npos || work.name == "molodensky" ||
                        work.name == "bursa-wolf" || work.name == "regression" ||
                        work.name.find("warp ") == 0;
    if (!kernel) continue;
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
    const bool degrees = regression || work.name == "molodensky" || work.name == "bursa-wolf";
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
    batch = points;
    set->normaliseCoordinates(Data(batch), batch.size());
    set->toRadians(Data(batch), batch.size());
    EXPECT_EQ(flags(), "") << set->isa;
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

double FoldedLatitude(double y) {
  const double r = std::fmod(y, 180);
  return r > 90 ? 180 - r : r < -90 ? -180 - r : r;
}

TEST(Lanes, NormaliseCoordinatesKeepsTheSignAndFoldsLatitudes) {
  ForSets([](const KernelTable& k) {
    const std::vector<Pt> in = {{370, 100},      {-370, -100}, {350, 90},     {-360, -90},
                                {359.9999, 180}, {360, 270},   {725.5, -271}, {1e15, 1e10},
                                {-1e300, 7},     {-0.0, -0.0}, {-kMarker, 1}};
    auto out = in;
    k.normaliseCoordinates(Data(out), out.size());
    for (std::size_t i = 0; i < in.size(); ++i)
      ExpectPoint(out[i], std::fmod(in[i].x, 360), FoldedLatitude(in[i].y));
    ExpectPoint(out[0], 10, 80);  // the longitude is not turned with the latitude
    ExpectPoint(out[1], -10, -80);
    ExpectPoint(out[5], 0, -90 + 180);
  });
}

TEST(Lanes, NormaliseCoordinatesMarksOddCoordinatesAloneAndNormalisePointsSkipsMarkedPoints) {
  ForSets([](const KernelTable& k) {
    const std::vector<Pt> in = {{kNaN, 100},    {370, kInf},    {-kInf, 100},
                                {kMarker, 100}, {370, kMarker}, {kMarker, kMarker}};
    auto out = in;
    k.normaliseCoordinates(Data(out), out.size());
    ExpectPoint(out[0], kMarker, 80);
    ExpectPoint(out[1], 10, kMarker);
    ExpectPoint(out[2], kMarker, 80);
    ExpectPoint(out[3], kMarker, 80);
    ExpectPoint(out[4], 10, kMarker);
    ExpectPoint(out[5], kMarker, kMarker);
    out = {{kMarker, 100}, {370, kMarker}, {370, 100}};
    k.normalisePoints(Data(out), out.size());
    ExpectPoint(out[0], kMarker, 100);
    ExpectPoint(out[1], 370, kMarker);
    ExpectPoint(out[2], 10, 80);
  });
}

// x * kPi / 180.0 and x * 180.0 / kPi, the division correctly rounded whatever way it is computed.
TEST(Lanes, DegreesAndRadiansAreTheStatedOperationsToTheLastBit) {
  std::mt19937_64 generator(11);
  std::uniform_real_distribution<double> exponent(-1074, 1000), mantissa(-2, 2), usual(-400, 400);
  std::vector<Pt> in = {{0, -0.0},           {5e-324, -5e-324}, {1e-280, 1e-281},   {-1e-279, 180},
                        {kMarker, 90},       {90, kMarker},     {kMarker, kMarker}, {57.29577951308232, -kPi},
                        {2.2e-308, 1.7e305}, {1e-310, 7}};
  for (int i = 0; i < 300000; ++i)
    in.push_back({std::ldexp(mantissa(generator), static_cast<int>(exponent(generator))), usual(generator)});
  ForSets([&](const KernelTable& k) {
    auto radians = in, degrees = in;
    k.toRadians(Data(radians), in.size());
    k.toDegrees(Data(degrees), in.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
      const auto rad = [](double v) { return v == kMarker ? v : v * kPi / 180.0; };
      const auto deg = [](double v) { return v == kMarker ? v : v * 180.0 / kPi; };
      const Pt r = {rad(in[i].x), rad(in[i].y)}, d = {deg(in[i].x), deg(in[i].y)};
      ASSERT_EQ(std::memcmp(&radians[i], &r, sizeof r), 0) << in[i].x << ", " << in[i].y;
      ASSERT_EQ(std::memcmp(&degrees[i], &d, sizeof d), 0) << in[i].x << ", " << in[i].y;
    }
  });
}

TEST(Lanes, OriginAndScaleLeaveMarkedCoordinatesAlone) {
  ForSets([](const KernelTable& k) {
    const std::vector<Pt> in = {{1, 2}, {kMarker, 3}, {4, kMarker}, {kMarker, kMarker}, {0.1, -7}};
    auto p = in;
    k.addOrigin(Data(p), p.size(), 10, -0.3);
    ExpectPoint(p[0], 11, 2 - 0.3);
    ExpectPoint(p[1], kMarker, 3 - 0.3);
    ExpectPoint(p[2], 14, kMarker);
    ExpectPoint(p[3], kMarker, kMarker);
    p = in;
    k.subtractOrigin(Data(p), p.size(), 10, -0.3);
    ExpectPoint(p[1], kMarker, 3 + 0.3);
    ExpectPoint(p[4], 0.1 - 10, -7 + 0.3);
    p = in;
    k.multiply(Data(p), p.size(), 0.7);
    ExpectPoint(p[1], kMarker, 3 * 0.7);
    ExpectPoint(p[4], 0.1 * 0.7, -7 * 0.7);
    p = in;
    k.divide(Data(p), p.size(), 0.7);
    ExpectPoint(p[2], 4 / 0.7, kMarker);
    ExpectPoint(p[4], 0.1 / 0.7, -7 / 0.7);
  });
}

TEST(Lanes, WrapLongitudesRemembersWhatUnwrapLongitudesAddsBack) {
  ForSets([](const KernelTable& k) {
    const std::vector<Pt> in = {{350, 1},     {-350, 1},      {180, 1},  {-180, 1}, {180.5, 1},
                                {-180.5, 1},  {360, 1},       {-360, 1}, {361, 1},  {-361, 1},
                                {kMarker, 1}, {350, kMarker}, {10, 1},   {359, 1}};
    const double wrapped[] = {-10, 10, 180, -180, -179.5, 179.5, 0, 0, 361, -361, kMarker, 350, 10, -1};
    const double offset[] = {360, -360, 0, 0, 360, -360, 360, -360, 0, 0, 0, 0, 0, 360};
    auto p = in;
    std::vector<double> offsets(in.size() + 1, -1);
    k.wrapLongitudes(Data(p), p.size(), offsets.data());
    for (std::size_t i = 0; i < in.size(); ++i) {
      ExpectPoint(p[i], wrapped[i], in[i].y);
      EXPECT_EQ(offsets[i], offset[i]) << in[i].x;
    }
    EXPECT_EQ(offsets.back(), -1);
    k.unwrapLongitudes(Data(p), p.size(), offsets.data());
    EXPECT_TRUE(SameBits(p, in));
    std::vector<Pt> marked = {{kMarker, 1}, {5, kMarker}, {5, 6}};
    const double shifts[] = {360, 360, 360};
    k.unwrapLongitudes(Data(marked), 3, shifts);
    ExpectPoint(marked[0], kMarker, 1);
    ExpectPoint(marked[1], 5, kMarker);
    ExpectPoint(marked[2], 365, 6);
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
    while (fit < best && (n > 8 || Sets()[fit]->lanes < n)) ++fit;
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
    EXPECT_EQ(orv::lanes::KernelsFor(1).lanes, 1u);
    for (std::size_t n = 2; n <= 4; ++n)
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
