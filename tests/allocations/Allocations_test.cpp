// Points are converted without a single allocation: a program of its own, whose operator new counts.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "orv/core/Startup.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/DatumMethods.h"
#include "orv/datum/GridFiles.h"
#include "orv/projection/Projector.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/warp/WarpTransformer.h"
#include "tests/support/GridBytes.h"
#include "tests/support/Paths.h"
#include "tests/support/TempFolder.h"

namespace {

size_t g_Allocations = 0;

void* Allocate(size_t size) {
  ++g_Allocations;
  if (void* const room = std::malloc(size > 0 ? size : 1)) return room;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(size_t size) { return Allocate(size); }
void* operator new[](size_t size) { return Allocate(size); }
void operator delete(void* room) noexcept { std::free(room); }
void operator delete[](void* room) noexcept { std::free(room); }
void operator delete(void* room, size_t) noexcept { std::free(room); }
void operator delete[](void* room, size_t) noexcept { std::free(room); }

namespace {

using orv::ORVKnownDatumsList;
using Points = std::vector<shr::Vec2d>;

// Near 10 E, 50 N, where every engine of these tests has its images; one point cannot be plotted.
Points SomePoints(size_t count) {
  Points points(count);
  for (size_t i = 0; i < count; ++i) {
    points[i] = {8 + static_cast<double>(i % 40) / 10, 48 + static_cast<double>(i % 30) / 10};
  }
  if (count > 5) points[5] = {1e300, 1e300};
  return points;
}

/// Allocations of work(points, count) behind its first call, over batches of every kind.
template <class Work>
size_t AllocationsOf(Work work) {
  size_t allocations = 0;
  Points first = SomePoints(1);
  work(first.data(), first.size());
  for (const size_t count : {1u, 2u, 3u, 5u, 8u, 13u, 512u, 1500u}) {
    Points points = SomePoints(count);
    const size_t before = g_Allocations;
    work(points.data(), count);
    allocations += g_Allocations - before;
  }
  return allocations;
}

class Allocations : public testing::Test {
 protected:
  static void SetUpTestSuite() { orv::ORVInitialize(orv::test::CatalogueFolder().c_str(), true); }
  static void TearDownTestSuite() { orv::ORVShutdown(); }

  static orv::DatumDef Datum(const char* token) {
    orv::DatumDef datum;
    EXPECT_NE(ORVKnownDatumsList.FindByToken(token, &datum), 0) << token;
    return datum;
  }
};

TEST_F(Allocations, AreCounted) {
  const size_t counted = AllocationsOf([](shr::Vec2d* points, size_t count) {
    const Points copy(points, points + count);
    points[0] = copy[count - 1];
  });
  EXPECT_EQ(counted, 8u);
}

TEST_F(Allocations, NoProjectorAllocates) {
  for (int number = orv::ProjectionMethodAlbers; number <= orv::ProjectionMethodVanDerGrinten; ++number) {
    const auto method = static_cast<orv::ProjectionMethod>(number);
    orv::ProjectionDef def;
    def.SetDefaultParameters(method);
    def.SetParameter(orv::ProjectionParameterIDLon0, 9.0);
    def.SetParameter(orv::ProjectionParameterIDLat0, 47.0);
    def.SetParameter(orv::ProjectionParameterIDLat1, 45.0);
    def.SetParameter(orv::ProjectionParameterIDLat2, 55.0);
    def.SetParameter(orv::ProjectionParameterIDLon1, 5.0);
    def.SetParameter(orv::ProjectionParameterIDLon2, 15.0);
    def.SetParameter(orv::ProjectionParameterIDXOrg, 500000.0);
    def.SetParameter(orv::ProjectionParameterIDScale, 1.5);
    const std::string name = orv::ProjectionDef::MethodToName(method);
    ASSERT_EQ(def.CheckParameters(), orv::ProjectionParameterIDNone) << name;
    orv::Projector projector(def);
    const auto forward = [&](shr::Vec2d* points, size_t count) { projector.TransformForward(points, count); };
    const auto inverse = [&](shr::Vec2d* points, size_t count) { projector.TransformInverse(points, count); };
    EXPECT_EQ(AllocationsOf(forward), 0u) << name;
    EXPECT_EQ(AllocationsOf(inverse), 0u) << name;
  }
}

TEST_F(Allocations, NoDatumConverterAllocates) {
  const orv::DatumDef wgs84 = Datum("EPSG:6326");
  std::vector<orv::DatumDef> datums = {Datum("EPSG:6314"), Datum("EPSG:6230"), Datum("EPSG:6230")};
  datums[1].SetMethod(orv::DatumMethodMolodensky, false);
  datums[2].SetMethod(orv::DatumMethodMRE, false);
  datums[2].SetParameter(orv::DatumParameterIDEquation, orv::DatumMRETypeED50);
  for (const orv::DatumDef& datum : datums) {
    orv::DatumConverter converter(&datum, &wgs84);
    const auto convert = [&](shr::Vec2d* points, size_t count) { converter.Convert(points, count); };
    EXPECT_EQ(AllocationsOf(convert), 0u) << orv::DatumDef::MethodToName(datum.GetMethod());
  }
}

TEST_F(Allocations, NoGridAllocates) {
  const orv::test::TempFolder folder;
  const auto seconds = [](int col, int row) {
    return static_cast<float>(col * 7 % 5) + 0.25F * static_cast<float>(row);
  };
  const orv::test::NadconLayout layout = {30, 30, 5.0F, 0.25F, 45.0F, 0.25F};
  folder.Write("made.los", orv::test::NadconFile(layout, seconds));
  folder.Write("made.las", orv::test::NadconFile(layout, seconds));
  folder.Write(
      "made.gsb",
      orv::test::NTv2File({orv::test::NTv2Box("MADE", "NONE", 5, 45, 0.25, 30, 30, [&](int col, int row) {
        return orv::test::NTv2Shift{seconds(col, row), seconds(row, col)};
      })}));
  orv::ORVSetNadconGridPath(folder.Path().c_str());
  orv::ORVSetNTv2GridFile(folder.Path("made.gsb").c_str());
  for (const orv::DatumMethod method : {orv::DatumMethodNADCON, orv::DatumMethodNTV2}) {
    for (const bool inverse : {false, true}) {
      orv::DatumParameters p;
      p.method = method;
      p.inverse = inverse;
      const orv::internal::DatumStep step(p, orv::EllipsoidDef(), orv::internal::Grids());
      shr::Vec2d moved(10, 50);
      ASSERT_EQ(step.Run(&moved, 1), nullptr);
      EXPECT_NE(moved.x, 10) << method;  // the grid is there
      const auto run = [&](shr::Vec2d* points, size_t count) { step.Run(points, count); };
      EXPECT_EQ(AllocationsOf(run), 0u) << method << (inverse ? " inverse" : " forward");
    }
  }
  orv::ORVSetNadconGridPath(nullptr);
  orv::ORVSetNTv2GridFile(nullptr);
}

TEST_F(Allocations, NoWarpAllocates) {
  for (int method = orv::WarpMethodDisplacement; method <= orv::WarpMethodInverseDistanceSquared; ++method) {
    orv::WarpDef def;
    def.SetMethod(static_cast<orv::WarpMethod>(method));
    for (int i = 0; i < 12; ++i) {
      const double x = i % 4, y = 0.7 * i - i % 3;
      def.AddSourcePoint(x, y);
      def.AddDestinationPoint(2 * x + 0.1 * y * y, 3 * y + 0.2 * x * y + i % 5);
    }
    if (method == orv::WarpMethodAffineWithCoefficients) def.SetCoefficients(2, 0.5, 100, 0.25, 3, 7);
    orv::WarpTransformer warp(def);
    const auto forward = [&](shr::Vec2d* points, size_t count) { warp.TransformForward(points, count); };
    EXPECT_EQ(AllocationsOf(forward), 0u) << orv::WarpDef::MethodName(def.GetMethod());
  }
}

TEST_F(Allocations, NoTransformerAllocates) {
  const orv::DatumDef dhdn = Datum("EPSG:6314"), wgs84 = Datum("EPSG:6326");
  orv::ProjectionDef grid, utm;
  grid.SetDefaultParameters(orv::ProjectionMethodTransverseMercator);
  grid.SetParameter(orv::ProjectionParameterIDLon0, 9.0);
  grid.SetParameter(orv::ProjectionParameterIDXOrg, 3500000.0);
  grid.SetParameter(orv::ProjectionParameterIDEllipsoid, *dhdn.GetEllipsoid());
  utm.SetDefaultParameters(orv::ProjectionMethodUTM);
  utm.SetParameter(orv::ProjectionParameterIDLon0, 9.0);
  utm.SetParameter(orv::ProjectionParameterIDEllipsoid, *wgs84.GetEllipsoid());
  const orv::ORVDef from(&dhdn, &grid, nullptr), to(&wgs84, &utm, nullptr);
  orv::CSTransformer transformer(&from, &to, false, false);
  transformer.Initialize();
  Points out(1500);
  const auto apart = [&](shr::Vec2d* points, size_t count) {
    transformer.Transform(points, out.data(), count);
  };
  const auto inPlace = [&](shr::Vec2d* points, size_t count) {
    transformer.Transform(points, points, count);
  };
  EXPECT_EQ(AllocationsOf(apart), 0u);
  EXPECT_EQ(AllocationsOf(inPlace), 0u);
}

}  // namespace
