#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/core/Platform.h"
#include "orv/core/Startup.h"
#include "orv/core/internal/Globals.h"
#include "orv/core/internal/Marker.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"
#include "orv/datum/NadconUtility.h"
#include "tests/datum/Datums.h"
#include "tests/support/GridBytes.h"
#include "tests/support/GridData.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using internal::MemoryReader;
using internal::NadconGrid;
using internal::NadconUtility;
using shr::Vec2d;
using test::NadconLayout;

// Powers of two in the layout and multiples of 3600 / 1024 seconds in the shifts keep all sums exact.
constexpr float kUnit = 3600.0F / 1024.0F;
float WestShift(int col, int row) { return kUnit * static_cast<float>(col + 100 * row); }
float NorthShift(int col, int row) { return kUnit * static_cast<float>(-3 * col + row); }

std::string Los(const NadconLayout& layout) { return test::NadconFile(layout, WestShift); }
std::string Las(const NadconLayout& layout) { return test::NadconFile(layout, NorthShift); }
std::string Constant(const NadconLayout& layout, float seconds) {
  return test::NadconFile(layout, [seconds](int, int) { return seconds; });
}

bool Initialize(NadconGrid& grid, const std::string& los, const std::string& las) {
  // Copies of the very size, so that a sanitizer sees a read behind their end.
  const std::vector<unsigned char> a(los.begin(), los.end()), b(las.begin(), las.end());
  MemoryReader losReader(a.data(), a.size()), lasReader(b.data(), b.size());
  return grid.Initialize(losReader, lasReader);
}

NadconGrid Grid(const NadconLayout& layout = {}) {
  NadconGrid grid;
  EXPECT_TRUE(Initialize(grid, Los(layout), Las(layout)));
  return grid;
}

Vec2d Forward(const NadconGrid& grid, Vec2d point) {
  grid.Forward(point);
  return point;
}

// ---- one grid --------------------------------------------------------------------------------------------

TEST(NadconGrid, NodesAreNumberedFromOneAndLongitudeShiftsTurnEast) {
  const NadconGrid grid = Grid();
  EXPECT_EQ(24, grid.Columns());
  EXPECT_EQ(3, grid.Rows());
  EXPECT_EQ(0.5, grid.Dx());
  EXPECT_EQ(0.25, grid.Dy());
  for (int row = 0; row <= 3; ++row) {
    for (int col = 0; col <= 24; ++col) {
      const bool node = col > 0 && row > 0;
      EXPECT_EQ(node ? -WestShift(col, row) : 0.0F, grid.LonShift(col, row)) << col << " " << row;
      EXPECT_EQ(node ? NorthShift(col, row) : 0.0F, grid.LatShift(col, row)) << col << " " << row;
    }
  }
}

TEST(NadconGrid, TheFirstNodeShiftsAPointOnIt) {
  // xMin, yMin is node (1, 1), not (0, 0).
  const Vec2d shifted = Forward(Grid(), {-100.0, 40.0});
  EXPECT_EQ(-100.0 - 101.0 / 1024, shifted.x);
  EXPECT_EQ(40.0 - 2.0 / 1024, shifted.y);
}

TEST(NadconGrid, TheShiftIsTheNodesAllOverItsCell) {
  const NadconGrid grid = Grid();
  for (const Vec2d& part : {Vec2d(0.0, 0.0), {0.25, 0.125}, {0.49, 0.01}, {0.01, 0.24}, {0.499, 0.249}}) {
    const Vec2d point(-97.5 + part.x, 40.25 + part.y);  // the cell of column 6, row 2
    const Vec2d shifted = Forward(grid, point);
    EXPECT_EQ(point.x + -206.0 / 1024, shifted.x);
    EXPECT_EQ(point.y + -16.0 / 1024, shifted.y);
  }
}

TEST(NadconGrid, TwoSpacingsWestAndSouthAreInsideWithoutShift) {
  const NadconGrid grid = Grid();
  for (const Vec2d& point : {Vec2d(-100.9375, 40.125),
                             {-100.5, 40.125},
                             {-100.0625, 40.125},
                             {-99.75, 39.5625},
                             {-99.75, 39.9375},
                             {-100.9375, 39.5625}}) {
    EXPECT_TRUE(grid.Contains(point)) << point.x << " " << point.y;
    const Vec2d shifted = Forward(grid, point);
    EXPECT_EQ(point.x, shifted.x);
    EXPECT_EQ(point.y, shifted.y);
  }
  EXPECT_FALSE(grid.Contains({-101.0, 40.125}));
  EXPECT_FALSE(grid.Contains({-99.75, 39.5}));
}

TEST(NadconGrid, TheLastColumnAndRowAreOutside) {
  const NadconGrid grid = Grid();
  EXPECT_TRUE(grid.Contains({-88.53125, 40.46875}));  // column 23, row 2
  EXPECT_FALSE(grid.Contains({-88.5, 40.46875}));     // column 24
  EXPECT_FALSE(grid.Contains({-88.53125, 40.5}));     // row 3
  const Vec2d shifted = Forward(grid, {-88.5, 40.5});
  EXPECT_EQ(-88.5, shifted.x);
  EXPECT_EQ(40.5, shifted.y);
}

TEST(NadconGrid, PointsFarAwayAreOutside) {
  const NadconGrid grid = Grid();
  const double inf = std::numeric_limits<double>::infinity();
  for (const double far : {1e300, -1e300, 1e18, -1e18, 3e9, inf, -inf, std::nan("")}) {
    EXPECT_FALSE(grid.Contains({far, 40.1})) << far;
    EXPECT_FALSE(grid.Contains({-99.0, far})) << far;
  }
}

TEST(NadconGrid, TheInverseUndoesTheForwardShift) {
  const NadconGrid grid = Grid();
  for (const Vec2d& start : {Vec2d(-97.25, 40.375), {-95.0625, 40.3125}, {-99.25, 40.125}}) {
    Vec2d point = Forward(grid, start);
    grid.Inverse(point);
    const Vec2d again = Forward(grid, point);
    const Vec2d wanted = Forward(grid, start);
    EXPECT_NEAR(wanted.x, again.x, 1e-10);
    EXPECT_NEAR(wanted.y, again.y, 1e-10);
  }
}

TEST(NadconGrid, TheInverseOfAPointThatIsNotShiftedStaysNearIt) {
  // Shift 0: the first guess, 1e-7 away, is no solution, the second is.
  const NadconGrid grid = Grid();
  Vec2d point(-100.5, 39.75);
  grid.Inverse(point);
  EXPECT_NEAR(-100.5, point.x, 1e-10);
  EXPECT_NEAR(39.75, point.y, 1e-10);
}

TEST(NadconGrid, AnInverseThatDoesNotSettleEnds) {
  // No point maps into the gap between two cells that are shifted apart.
  const NadconLayout layout;
  NadconGrid grid;
  const std::string los = test::NadconFile(layout, [](int col, int) { return col <= 6 ? 900.0F : -900.0F; });
  ASSERT_TRUE(Initialize(grid, los, Constant(layout, 0.0F)));
  Vec2d point(-97.0, 40.125);
  grid.Inverse(point);  // whatever it is, it ends after 100 rounds
  const Vec2d again = Forward(grid, point);
  EXPECT_GT(std::fabs(again.x - -97.0), 1e-10);
}

// ---- files that are not grids ----------------------------------------------------------------------------

TEST(NadconGrid, APairMustAgreeInEveryHeaderValue) {
  const NadconLayout layout;
  NadconLayout columns = layout, rows = layout, xMin = layout, dx = layout, yMin = layout, dy = layout;
  columns.columns = 25;
  rows.rows = 4;
  xMin.xMin += 0.5F;
  dx.dx *= 2;
  yMin.yMin += 0.5F;
  dy.dy *= 2;
  for (const NadconLayout& other : {columns, rows, xMin, dx, yMin, dy}) {
    NadconGrid grid;
    EXPECT_TRUE(Initialize(grid, Los(other), Las(other)));
    EXPECT_FALSE(Initialize(grid, Los(layout), Las(other)));
    EXPECT_FALSE(Initialize(grid, Los(other), Las(layout)));
  }
}

TEST(NadconGrid, HeaderValuesThatMakeNoGridAreRefused) {
  const std::string los = Los({}), las = Las({});
  const float nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
  const auto refused = [&](size_t at, const std::string& over) {
    NadconGrid grid;
    return !Initialize(grid, test::Patched(los, at, over), test::Patched(las, at, over));
  };
  EXPECT_FALSE(refused(72, test::Bytes().I32(-1)));  // no use is made of it
  for (const int32_t count : {0, -1, std::numeric_limits<int32_t>::min(), 2147483647, 1000000}) {
    EXPECT_TRUE(refused(64, test::Bytes().I32(count))) << count;
    EXPECT_TRUE(refused(68, test::Bytes().I32(count))) << count;
  }
  EXPECT_TRUE(refused(64, test::Bytes().I32(2147483647).I32(2147483647)));
  for (const size_t spacing : {80u, 88u}) {
    for (const float value : {0.0F, -0.5F, nan, inf}) {
      EXPECT_TRUE(refused(spacing, test::Bytes().F32(value))) << spacing << " " << value;
    }
  }
  for (const size_t origin : {76u, 84u}) {
    for (const float value : {nan, inf, -inf}) {
      EXPECT_TRUE(refused(origin, test::Bytes().F32(value))) << origin << " " << value;
    }
  }
}

TEST(NadconGrid, AFileCutAnywhereIsRefused) {
  const std::string los = Los({}), las = Las({});
  NadconGrid grid;
  for (size_t size = 0; size < los.size(); ++size) {
    ASSERT_FALSE(Initialize(grid, los.substr(0, size), las)) << size;
    ASSERT_FALSE(Initialize(grid, los, las.substr(0, size))) << size;
  }
  EXPECT_EQ(0, grid.Columns());
  EXPECT_TRUE(Initialize(grid, los + "more", las));
}

// ---- the set ---------------------------------------------------------------------------------------------

TEST(NadconUtility, LoadsPairsInAnyCaseAndSkipsALosWithoutLas) {
  const test::TempFolder folder;
  folder.Write("b.LOS", Los({}));
  folder.Write("B.las", Las({}));
  folder.Write("A.los", Los({}));
  folder.Write("a.LAS", Las({}));
  folder.Write("alone.los", Los({}));
  folder.Write("damaged.los", Los({}).substr(0, 150));
  folder.Write("damaged.las", Las({}));
  folder.Write("c.las", Las({}));
  folder.Write("los", "");
  NadconUtility nadcon;
  EXPECT_TRUE(nadcon.LoadGrids(folder.Path()));
  ASSERT_EQ(2u, nadcon.Grids().size());
  EXPECT_EQ("A", nadcon.Grids()[0].GetName());
  EXPECT_EQ("b", nadcon.Grids()[1].GetName());
}

TEST(NadconUtility, LoadingAgainDoesNothingOnceAGridIsThere) {
  const test::TempFolder empty, one, other;
  for (const test::TempFolder* folder : {&one, &other}) {
    folder->Write(folder == &one ? "one.los" : "other.los", Los({}));
    folder->Write(folder == &one ? "one.las" : "other.las", Las({}));
  }
  NadconUtility nadcon;
  EXPECT_FALSE(nadcon.LoadGrids(empty.Path()));
  EXPECT_FALSE(nadcon.LoadGrids(empty.Path("no such folder")));
  EXPECT_TRUE(nadcon.LoadGrids(one.Path()));
  EXPECT_TRUE(nadcon.LoadGrids(other.Path()));
  ASSERT_EQ(1u, nadcon.Grids().size());
  EXPECT_EQ("one", nadcon.Grids()[0].GetName());
}

TEST(NadconUtility, TheArchiveComesBeforeLooseFiles) {
  for (const int method : {0, 8}) {
    const test::TempFolder folder;
    folder.Write("loose.los", Los({}));
    folder.Write("loose.las", Las({}));
    folder.Write("NadGrids.zip", test::ZipArchive({{"alone.LOS", Los({}), method},
                                                   {"z.las", Las({}), method},
                                                   {"z.los", Los({}), method},
                                                   {"longer.los", Los({}), method},
                                                   {"longer.las", Las({}) + "more", method},
                                                   {"damaged.los", Los({}), method, "", "", -1, 1},
                                                   {"damaged.las", Las({}), method},
                                                   {"UPPER.LOS", Los({}), method},
                                                   {"UPPER.LAS", Las({}), method}}));
    NadconUtility nadcon;
    EXPECT_TRUE(nadcon.LoadGrids(folder.Path()));
    ASSERT_EQ(2u, nadcon.Grids().size());
    EXPECT_EQ("z", nadcon.Grids()[0].GetName());  // in the order of the archive
    EXPECT_EQ("UPPER", nadcon.Grids()[1].GetName());
    const Vec2d expected = Forward(Grid(), {-97.2, 40.3});
    for (const NadconGrid& grid : nadcon.Grids()) {
      EXPECT_EQ(expected.x, Forward(grid, {-97.2, 40.3}).x);
      EXPECT_EQ(expected.y, Forward(grid, {-97.2, 40.3}).y);
    }
  }
}

TEST(NadconUtility, AnArchiveWithoutAGridLeavesTheLooseFiles) {
  const std::string archives[] = {"too small", test::ZipArchive({{"alone.los", Los({})}}),
                                  test::ZipArchive({{"x.los", "not a grid"}, {"x.las", "not a grid"}})};
  for (const std::string& archive : archives) {
    const test::TempFolder folder;
    folder.Write("NADGRIDS.ZIP", archive);
    folder.Write("loose.los", Los({}));
    folder.Write("loose.las", Las({}));
    NadconUtility nadcon;
    EXPECT_TRUE(nadcon.LoadGrids(folder.Path()));
    ASSERT_EQ(1u, nadcon.Grids().size());
    EXPECT_EQ("loose", nadcon.Grids()[0].GetName());
  }
}

/// Grids of one place under names in load order, and which of them has the point.
std::string Chosen(const std::vector<NadconLayout>& layouts, const Vec2d& point) {
  const test::TempFolder folder;
  for (size_t i = 0; i < layouts.size(); ++i) {
    folder.Write(std::to_string(i) + ".los", Los(layouts[i]));
    folder.Write(std::to_string(i) + ".las", Las(layouts[i]));
  }
  NadconUtility nadcon;
  EXPECT_TRUE(nadcon.LoadGrids(folder.Path()));
  const NadconGrid* const grid = nadcon.GridFor(point);
  return grid ? grid->GetName() : "";
}

TEST(NadconUtility, TheFinestGridWinsAndTiesKeepTheEarlier) {
  const NadconLayout coarse = {24, 20, -100.0F, 1.0F, 40.0F, 1.0F};
  const NadconLayout fine = {24, 20, -99.0F, 0.25F, 41.0F, 0.25F};
  const NadconLayout narrow = {24, 20, -99.0F, 0.125F, 41.0F, 1.0F};  // smaller dx only
  const Vec2d both(-98.0, 42.0);
  EXPECT_EQ("1", Chosen({coarse, fine}, both));
  EXPECT_EQ("0", Chosen({fine, coarse}, both));
  EXPECT_EQ("0", Chosen({fine, fine}, both));
  EXPECT_EQ("0", Chosen({coarse, narrow}, both));
  EXPECT_EQ("0", Chosen({narrow, coarse}, both));
  EXPECT_EQ("2", Chosen({coarse, narrow, fine}, both));
  EXPECT_EQ("0", Chosen({coarse, fine}, {-90.0, 42.0}));
  EXPECT_EQ("", Chosen({coarse, fine}, {-60.0, 42.0}));
  // Deliberate: what is just west of the fine grid counts as inside it and hides the coarse one.
  EXPECT_EQ("1", Chosen({coarse, fine}, {-99.25, 42.0}));
}

TEST(NadconUtility, MarkedPointsAndPointsInNoGridStay) {
  const test::TempFolder folder;
  folder.Write("a.los", Los({}));
  folder.Write("a.las", Las({}));
  NadconUtility nadcon;
  ASSERT_TRUE(nadcon.LoadGrids(folder.Path()));
  for (const bool inverse : {false, true}) {
    Vec2d points[] = {{internal::kMarker, 40.1}, {-99.0, internal::kMarker}, {10.0, 20.0}, {-97.2, 40.3}};
    nadcon.Transform(points, 4, inverse);
    EXPECT_EQ(internal::kMarker, points[0].x);
    EXPECT_EQ(40.1, points[0].y);
    EXPECT_EQ(-99.0, points[1].x);
    EXPECT_EQ(internal::kMarker, points[1].y);
    EXPECT_EQ(10.0, points[2].x);
    EXPECT_EQ(20.0, points[2].y);
    EXPECT_NE(-97.2, points[3].x);
  }
  nadcon.Transform(nullptr, 0, false);
}

// ---- published grids -------------------------------------------------------------------------------------

class PublishedNadcon : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    m_Los = test::GridData(std::string("nadcon/") + GetParam() + ".los");
    m_Las = test::GridData(std::string("nadcon/") + GetParam() + ".las");
    m_Expected = test::GridData(std::string("expected/") + GetParam() + ".tsv");
    if (m_Los.empty() || m_Las.empty() || m_Expected.empty()) {
      GTEST_SKIP() << test::kNoGridData;
    }
  }
  std::string m_Los, m_Las, m_Expected;
};

TEST_P(PublishedNadcon, ShiftsAsExpected) {
  internal::FileReader los, las;
  ASSERT_TRUE(los.Open(m_Los));
  ASSERT_TRUE(las.Open(m_Las));
  NadconGrid grid;
  ASSERT_TRUE(grid.Initialize(los, las));
  int inverses = 0;
  for (auto& row : test::ReadTable(m_Expected)) {
    SCOPED_TRACE(row["kind"] + " " + row["lon"] + " " + row["lat"]);
    const Vec2d point(std::stod(row["lon"]), std::stod(row["lat"]));
    EXPECT_EQ(row["grid"] != "-", grid.Contains(point));
    if (row["grid"] != "-") {
      const int col = std::stoi(row["col"]), line = std::stoi(row["row"]);
      EXPECT_EQ(static_cast<double>(-std::stof(row["los"])), grid.LonShift(col, line));
      EXPECT_EQ(static_cast<double>(std::stof(row["las"])), grid.LatShift(col, line));
    }
    const Vec2d shifted = Forward(grid, point);
    EXPECT_NEAR(std::stod(row["lon_out_ngs"]), shifted.x, 1e-13);
    EXPECT_NEAR(std::stod(row["lat_out"]), shifted.y, 1e-13);
    if (row["inv_lon_ngs"] == "noconv") continue;
    Vec2d back = point;
    if (grid.Contains(point)) grid.Inverse(back);
    EXPECT_NEAR(std::stod(row["inv_lon_ngs"]), back.x, 1e-9);
    EXPECT_NEAR(std::stod(row["inv_lat_ngs"]), back.y, 1e-9);
    ++inverses;
  }
  EXPECT_GT(inverses, 10);
}

TEST_P(PublishedNadcon, AnArchiveGivesTheSameBits) {
  const test::TempFolder loose, zipped;
  const std::string name = GetParam(), los = test::ReadBytes(m_Los), las = test::ReadBytes(m_Las);
  loose.Write(name + ".los", los);
  loose.Write(name + ".las", las);
  std::vector<Vec2d> points;
  for (auto& row : test::ReadTable(m_Expected))
    points.emplace_back(std::stod(row["lon"]), std::stod(row["lat"]));
  NadconUtility fromFiles;
  ASSERT_TRUE(fromFiles.LoadGrids(loose.Path()));
  for (const bool inverse : {false, true}) {
    std::vector<Vec2d> expected = points;
    fromFiles.Transform(expected.data(), expected.size(), inverse);
    for (const int method : {0, 8}) {
      for (const char* extension : {".LOS", ".los"}) {
        const char* const partner = *(extension + 1) == 'L' ? ".LAS" : ".LaS";
        zipped.Write("NADGRIDS.ZIP", test::ZipArchive({{"wyhpgn.los", los, method},
                                                       {name + extension, los, method},
                                                       {name + partner, las, method}}));
        NadconUtility fromArchive;
        ASSERT_TRUE(fromArchive.LoadGrids(zipped.Path()));
        ASSERT_EQ(1u, fromArchive.Grids().size());
        std::vector<Vec2d> actual = points;
        fromArchive.Transform(actual.data(), actual.size(), inverse);
        EXPECT_EQ(0, std::memcmp(expected.data(), actual.data(), actual.size() * sizeof(Vec2d)));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Grids, PublishedNadcon,
                         ::testing::Values("stpaul", "stgeorge", "prvi", "conus", "hawaii", "alaska"));

TEST(NadconUtility, ConusHoldsThePublishedNodeValues) {
  const std::string los = test::GridData("nadcon/conus.los"),
                    table = test::GridData("expected/nadcon_conus_nodes.tsv");
  if (los.empty() || table.empty()) GTEST_SKIP() << test::kNoGridData;
  internal::FileReader losFile, lasFile;
  ASSERT_TRUE(losFile.Open(los));
  ASSERT_TRUE(lasFile.Open(test::GridData("nadcon/conus.las")));
  NadconGrid grid;
  ASSERT_TRUE(grid.Initialize(losFile, lasFile));
  for (auto& row : test::ReadTable(table)) {
    const int col = std::stoi(row["col"]), line = std::stoi(row["row"]);
    EXPECT_NEAR(-std::stod(row["los_published"]), grid.LonShift(col, line), 1e-6);  // printed to 6 decimals
    EXPECT_NEAR(std::stod(row["las_published"]), grid.LatShift(col, line), 1e-6);
  }
}

TEST(NadconUtility, TheIslandsWithoutALasAreSkipped) {
  // A folder as found in the wild: wyhpgn.los has no partner, the other pairs still load.
  const std::string alone = test::GridData("nadcon/wyhpgn.los");
  if (alone.empty()) GTEST_SKIP() << test::kNoGridData;
  NadconUtility nadcon;
  ASSERT_TRUE(nadcon.LoadGrids(std::filesystem::path(alone).parent_path().string()));
  bool stPaul = false;
  for (const NadconGrid& grid : nadcon.Grids()) {
    EXPECT_NE("wyhpgn", grid.GetName());
    stPaul = stPaul || grid.GetName() == "stpaul";
  }
  EXPECT_TRUE(stPaul);
}

// ---- through the converter -------------------------------------------------------------------------------

class NadconConversion : public test::KnownLists {
 protected:
  NadconConversion() {
    ORVSetNadconGridPath(m_Folder.Path().c_str());
    ORVKnownDatumsList.Add(test::Named(m_Nad83, "NAD83", "NAD83"), 0);
  }
  ~NadconConversion() override { ORVSetNadconGridPath(nullptr); }

  void WritePair(const std::string& name) {
    m_Folder.Write(name + ".los", Los({}));
    m_Folder.Write(name + ".las", Las({}));
  }
  static void Convert(const DatumDef& from, const DatumDef& to, std::vector<Vec2d>& points) {
    DatumConverter converter(&from, &to);
    converter.Initialize();
    converter.Convert(points);
  }

  test::TempFolder m_Folder;
  DatumDef m_Nad27 = test::Make{DatumMethodNADCON, DatumTargetNAD83, DatumTargetNAD27};
  DatumDef m_Nad83 = test::Make{DatumMethodNone, DatumTargetWGS84, DatumTargetNAD83};
};

TEST_F(NadconConversion, GoesBothWays) {
  WritePair("a");
  std::vector<Vec2d> points = {{-97.25, 40.375}, {10.0, 50.0}, {internal::kMarker, 1.0}};
  Convert(m_Nad27, m_Nad83, points);
  EXPECT_NEAR(-97.25 - 206.0 / 1024, points[0].x, 1e-12);
  EXPECT_NEAR(40.375 - 16.0 / 1024, points[0].y, 1e-12);
  EXPECT_NEAR(10.0, points[1].x, 1e-12);
  EXPECT_EQ(internal::kMarker, points[2].x);
  Convert(m_Nad83, m_Nad27, points);
  EXPECT_NEAR(-97.25, points[0].x, 1e-9);
  EXPECT_NEAR(40.375, points[0].y, 1e-9);
}

TEST_F(NadconConversion, ThePublishedSetGoesThereAndBack) {
  const std::string prvi = test::GridData("nadcon/prvi.los"), table = test::GridData("expected/prvi.tsv");
  if (prvi.empty() || table.empty()) GTEST_SKIP() << test::kNoGridData;
  ORVSetNadconGridPath(std::filesystem::path(prvi).parent_path().string().c_str());
  // Puerto Rico's grid is found among the others.
  for (auto& row : test::ReadTable(table)) {
    if (row["grid"] == "-") continue;
    std::vector<Vec2d> points = {{std::stod(row["lon"]), std::stod(row["lat"])}};
    Convert(m_Nad27, m_Nad83, points);
    EXPECT_NEAR(std::stod(row["lon_out_ngs"]), points[0].x, 1e-12);
    EXPECT_NEAR(std::stod(row["lat_out"]), points[0].y, 1e-12);
  }
  // The conterminous states.  A point whose shift crosses into another cell may have no point of origin: the shifts
  // are some 1e-3 degree and differ by 1e-5 between cells of 0.25 degree, so that is one point in 10 000.
  std::mt19937_64 random(20260106);
  std::vector<Vec2d> points;
  for (int i = 0; i < 1000; ++i) {
    const double u = static_cast<double>(random() >> 11) * 0x1p-53,
                 v = static_cast<double>(random() >> 11) * 0x1p-53;
    points.emplace_back(-125.0 + 58.0 * u, 25.0 + 24.0 * v);
  }
  std::vector<Vec2d> there = points;
  Convert(m_Nad27, m_Nad83, there);
  std::vector<Vec2d> back = there;
  Convert(m_Nad83, m_Nad27, back);
  int same = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    EXPECT_GT(std::hypot(there[i].x - points[i].x, there[i].y - points[i].y), 1e-7);
    same += std::hypot(back[i].x - points[i].x, back[i].y - points[i].y) < 1e-9 ? 1 : 0;
  }
  EXPECT_GE(same, 995);
}

TEST_F(NadconConversion, ALoadThatFailedIsTriedAgain) {
  std::vector<Vec2d> points = {{-97.25, 40.375}};
  EXPECT_RAISES(Convert(m_Nad27, m_Nad83, points), 1034, "DatumConverter",
                "NADCON grid shift files missing or corrupt.");
  m_Folder.Write("a.los", Los({}));
  m_Folder.Write("a.las", "corrupt");
  EXPECT_RAISES(Convert(m_Nad27, m_Nad83, points), 1034, "DatumConverter",
                "NADCON grid shift files missing or corrupt.");
  WritePair("a");
  Convert(m_Nad27, m_Nad83, points);
  EXPECT_NEAR(-97.25 - 206.0 / 1024, points[0].x, 1e-12);
}

TEST_F(NadconConversion, GridsStayLoadedUntilThePathIsSet) {
  WritePair("a");
  std::vector<Vec2d> points = {{-97.25, 40.375}};
  Convert(m_Nad27, m_Nad83, points);
  m_Folder.Write("a.los", "gone");
  Convert(m_Nad27, m_Nad83, points);
  EXPECT_STREQ(m_Folder.Path().c_str(), ORVGetNadconGridPath());
  ORVSetNadconGridPath(m_Folder.Path().c_str());
  EXPECT_RAISES(Convert(m_Nad27, m_Nad83, points), 1034, "DatumConverter",
                "NADCON grid shift files missing or corrupt.");
}

TEST_F(NadconConversion, WithoutAPathTheUsualPlacesAreSearched) {
  WritePair("a");
  ORVSetNadconGridPath("");
  EXPECT_EQ(nullptr, ORVGetNadconGridPath());
  std::vector<Vec2d> points = {{-97.25, 40.375}};
  EXPECT_RAISES(Convert(m_Nad27, m_Nad83, points), 1034, "DatumConverter",
                "NADCON grid shift files missing or corrupt.");
  ORVSetConfigPath(m_Folder.Path().c_str());
  Convert(m_Nad27, m_Nad83, points);
  ORVSetConfigPath(nullptr);
  EXPECT_NEAR(-97.25 - 206.0 / 1024, points[0].x, 1e-12);
}

TEST_F(NadconConversion, TheFolderBesideAnInstalledCatalogueIsSearched) {
  m_Folder.Write("datum.ocf", "");
  m_Folder.Write("grids/a.los", Los({}));
  m_Folder.Write("grids/a.las", Las({}));
  ORVSetNadconGridPath(nullptr);
  ASSERT_EQ(0, setenv("ORV_CONFIG_PATH", m_Folder.Path().c_str(), 1));
  std::vector<Vec2d> points = {{-97.25, 40.375}};
  EXPECT_NO_THROW(Convert(m_Nad27, m_Nad83, points));
  ASSERT_EQ(0, unsetenv("ORV_CONFIG_PATH"));
  EXPECT_NEAR(-97.25 - 206.0 / 1024, points[0].x, 1e-12);
}

TEST(NadconGrid, EqualResidualsLeaveTheGuess) {  // a shift that swallows the first step
  NadconGrid grid;
  ASSERT_TRUE(Initialize(grid, Constant({}, 3.6e30F), Constant({}, 3.6e30F)));
  Vec2d point(-97.25, 40.125);
  grid.Inverse(point);
  EXPECT_EQ(-97.25 + 1e-7, point.x);
  EXPECT_EQ(40.125 + 1e-7, point.y);
}

TEST_F(NadconConversion, TheUsualPlacesAreTheModulesFolderTheConfigurationPathAndTheCatalogues) {
  const std::string before = Globals().configPath;
  m_Folder.Write("datum.ocf", "");
  setenv("ORV_CONFIG_PATH", m_Folder.Path().c_str(), 1);
  ORVSetNadconGridPath(nullptr);
  ORVSetConfigPath("/c");
  const std::vector<std::string> folders = internal::NadconFolders();
  ORVSetConfigPath(before.c_str());
  unsetenv("ORV_CONFIG_PATH");
  ASSERT_EQ(folders.size(), 3U);
  EXPECT_EQ(std::filesystem::path(folders[0]), std::filesystem::path(platform::ModulePath()).parent_path());
  EXPECT_EQ(folders[1], "/c");
  EXPECT_EQ(folders[2], m_Folder.Path() + "/grids");
}

TEST_F(NadconConversion, TroubleWithAnArchiveIsTracedAndLooseFilesAreTried) {
  WritePair("loose");
  const std::string archive = m_Folder.Write("NADGRIDS.ZIP", "no archive");
  std::vector<std::string> lines;
  ORVSetTraceCallback([](const char* line,
                         void* context) { static_cast<std::vector<std::string>*>(context)->push_back(line); },
                      &lines);
  NadconUtility grids;
  EXPECT_TRUE(grids.LoadGrids(m_Folder.Path()));
  ORVSetTraceCallback(nullptr, nullptr);
  EXPECT_EQ(lines, std::vector<std::string>{archive + ": Too small to be a valid ZIP file!\n"});
}

}  // namespace
}  // namespace orv
