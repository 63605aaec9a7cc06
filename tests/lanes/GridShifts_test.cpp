// The grid kernels of every instruction set against the rules of the grids, written out point by point.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "orv/datum/NTv2Grid.h"
#include "orv/datum/NadconUtility.h"
#include "orv/lanes/Dispatch.h"
#include "tests/support/GridBytes.h"
#include "tests/support/GridData.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::internal::NadconGrid;
using orv::internal::NadconUtility;
using orv::internal::NTv2Grid;
using orv::lanes::KernelsOf;
using orv::lanes::KernelTable;
using orv::test::NadconLayout;
using orv::test::NTv2Box;
using orv::test::NTv2Layout;
using orv::test::NTv2Shift;
using Points = std::vector<shr::Vec2d>;

constexpr double kMarker = 1.7976931348623157e308;
constexpr double kInf = std::numeric_limits<double>::infinity();

bool Same(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

/// All sets, over whole batches and short ones.
void ExpectShifts(const std::string& name, const Points& in,
                  const std::function<void(const KernelTable&, double*, size_t)>& run,
                  const std::function<shr::Vec2d(shr::Vec2d)>& rule) {
  Points want;
  for (const shr::Vec2d& point : in) {
    const bool marked = point.x == kMarker || point.y == kMarker;
    want.push_back(marked ? point : rule(point));
  }
  for (const char* isa : {"one", "sse2", "avx2", "avx512", "neon"}) {
    const KernelTable* const set = KernelsOf(isa);
    if (!set) continue;
    for (const size_t batch : {in.size(), size_t{13}, size_t{1}}) {
      Points out = in;
      for (size_t at = 0; at < out.size(); at += batch) {
        run(*set, &out[at].x, std::min(batch, out.size() - at));
      }
      int shown = 0;
      for (size_t i = 0; i < in.size() && shown < 3; ++i) {
        if (Same(out[i].x, want[i].x) && Same(out[i].y, want[i].y)) continue;
        ++shown;
        char text[300];
        std::snprintf(text, sizeof text, "(%.17g, %.17g): (%.17g, %.17g) for (%.17g, %.17g)", in[i].x,
                      in[i].y, out[i].x, out[i].y, want[i].x, want[i].y);
        ADD_FAILURE() << name << ", " << isa << ", batches of " << batch << " at " << text;
      }
    }
  }
}

/// Random points of a box, runs of neighbours, and odd ones; `edges` are coordinates at which something changes.
Points PointsIn(double west, double east, double south, double north, const Points& edges) {
  Points points;
  std::mt19937_64 generator(7);
  std::uniform_real_distribution<double> x(west, east), y(south, north);
  for (int i = 0; i < 3000; ++i) points.emplace_back(x(generator), y(generator));
  for (int i = 0; i < 100; ++i) {
    const double x0 = x(generator), y0 = y(generator), step = (east - west) * 1e-4;
    for (int k = 0; k < 9; ++k) points.emplace_back(x0 + k * step, y0 + k * step);
  }
  const auto around = [](double v) {
    return std::vector<double>{std::nextafter(v, -kInf), v, std::nextafter(v, kInf)};
  };
  for (const shr::Vec2d& edge : edges) {
    for (const double ex : around(edge.x)) {
      for (const double ey : around(edge.y)) {
        points.emplace_back(ex, ey);
        points.emplace_back(ex, y(generator));
        points.emplace_back(x(generator), ey);
      }
    }
  }
  const double mx = (west + east) / 2, my = (south + north) / 2;
  for (const double odd : {kMarker, -kMarker, kInf, -kInf, std::nan(""), 1e300, -1e18, 0.0, -0.0}) {
    points.emplace_back(odd, my);
    points.emplace_back(mx, odd);
    points.emplace_back(odd, odd);
  }
  std::shuffle(points.begin() + 2000, points.end(), generator);
  return points;
}

// ---- NADCON ----------------------------------------------------------------------------------------------

/// The node of a point, or false outside.
bool NodeOf(const NadconGrid& grid, const shr::Vec2d& point, int& col, int& row) {
  const double u = (point.x - grid.XMin()) / grid.Dx() + 1.0;
  const double v = (point.y - grid.YMin()) / grid.Dy() + 1.0;
  if (!(u > -1.0 && u < grid.Columns() && v > -1.0 && v < grid.Rows())) return false;
  col = static_cast<int>(u);
  row = static_cast<int>(v);
  return true;
}

const NadconGrid* ChosenGrid(const NadconUtility& set, const shr::Vec2d& point) {
  const NadconGrid* chosen = nullptr;
  int col, row;
  for (const NadconGrid& grid : set.Grids()) {
    if (!NodeOf(grid, point, col, row)) continue;
    if (!chosen || (grid.Dx() < chosen->Dx() && grid.Dy() < chosen->Dy())) chosen = &grid;
  }
  return chosen;
}

shr::Vec2d NadconForward(const NadconGrid& grid, shr::Vec2d point) {
  int col, row;
  if (!NodeOf(grid, point, col, row)) return point;
  return {point.x + grid.LonShift(col, row) / 3600.0, point.y + grid.LatShift(col, row) / 3600.0};
}

shr::Vec2d NadconInverse(const NadconGrid& grid, shr::Vec2d input) {
  struct Secant {
    double previous, previousResidual, guess;
    void Update(double residual) {
      if (std::fabs(residual) < 1e-10 || residual - previousResidual == 0.0) return;
      const double next = guess - residual * (guess - previous) / (residual - previousResidual);
      previous = guess;
      previousResidual = residual;
      guess = next;
    }
  };
  const auto residual = [&](double x, double y) {
    const shr::Vec2d there = NadconForward(grid, {x, y});
    return shr::Vec2d(there.x - input.x, there.y - input.y);
  };
  const shr::Vec2d first = residual(input.x, input.y);
  Secant x = {input.x, first.x, input.x + 1e-7}, y = {input.y, first.y, input.y + 1e-7};
  for (int round = 0; round < 100; ++round) {
    const shr::Vec2d left = residual(x.guess, y.guess);
    if (std::fabs(left.x) < 1e-10 && std::fabs(left.y) < 1e-10) break;
    x.Update(left.x);
    y.Update(left.y);
  }
  return {x.guess, y.guess};
}

void ExpectNadcon(const std::string& name, const NadconUtility& set, const Points& in) {
  std::vector<orv::NadconCells> cells;
  for (const NadconGrid& grid : set.Grids()) cells.push_back(grid.Cells());
  const orv::NadconSet grids = {cells.data(), cells.size()};
  for (const bool inverse : {false, true}) {
    ExpectShifts(
        name + (inverse ? " inverse" : " forward"), in,
        [&](const KernelTable& k, double* xy, size_t n) {
          (inverse ? k.nadcon.inverse : k.nadcon.forward)(grids, xy, n);
        },
        [&](shr::Vec2d point) {
          const NadconGrid* const grid = ChosenGrid(set, point);
          if (!grid) return point;
          return inverse ? NadconInverse(*grid, point) : NadconForward(*grid, point);
        });
  }
}

// Grids that overlap and grids within others, coarser and finer, finer along one axis only; nodes that are no numbers,
// that throw points far away and that keep the secant busy.
TEST(GridShifts, NadconKernelsFollowTheRulesToTheLastBit) {
  const NadconLayout layouts[] = {
      {41, 25, -100.0F, 0.25F, 40.0F, 0.25F}, {31, 30, -97.0F, 0.1F, 41.0F, 0.1F},
      {24, 40, -96.5F, 0.2F, 43.0F, 0.05F},   {30, 30, -98.0F, 0.05F, 42.0F, 0.07F},
      {24, 3, -80.0F, 1.5F, 20.0F, 7.3F},     {23, 1, -60.0F, 0.3F, 10.0F, 0.7F}};
  const float nan = std::numeric_limits<float>::quiet_NaN();
  std::mt19937 generator(3);
  std::uniform_real_distribution<float> seconds(-5.0F, 5.0F);
  orv::test::TempFolder folder;
  Points edges;
  for (size_t i = 0; i < std::size(layouts); ++i) {
    const auto shift = [&](int col, int row) {
      if (i == 4 && col == 3) return row == 2 ? nan : 4.0e5F;
      if (i == 3) return seconds(generator) * 40.0F;  // more than a cell: the secant strays
      return seconds(generator);
    };
    folder.Write(std::to_string(i) + ".los", orv::test::NadconFile(layouts[i], shift));
    folder.Write(std::to_string(i) + ".las", orv::test::NadconFile(layouts[i], shift));
    const NadconLayout& g = layouts[i];
    for (const int col : {-1, 0, 1, g.columns / 2, g.columns - 2, g.columns - 1, g.columns}) {
      for (const int row : {-1, 0, 1, g.rows - 1, g.rows}) {
        edges.emplace_back(double{g.xMin} + double{g.dx} * (col - 1),
                           double{g.yMin} + double{g.dy} * (row - 1));
      }
    }
  }
  NadconUtility set;
  ASSERT_TRUE(set.LoadGrids(folder.Path()));
  ASSERT_EQ(std::size(layouts), set.Grids().size());
  ExpectNadcon("made", set, PointsIn(-101, -88, 39, 47, edges));
}

TEST(GridShifts, NadconEdgesAreWhereTheColumnsEnd) {
  // Spacings of every magnitude, the largest and smallest of a float32 too.
  for (const float dx : {1.0e-45F, 1.0e-20F, 0.1F, 0.3333F, 7.0F, 1.0e20F, 3.4e38F}) {
    const NadconLayout layout = {24, 3, -100.1F, dx, 40.3F, 0.1F};
    const std::string file = orv::test::NadconFile(layout, [](int, int) { return 1.0F; });
    const std::vector<unsigned char> bytes(file.begin(), file.end());
    orv::internal::MemoryReader los(bytes.data(), bytes.size()), las(bytes.data(), bytes.size());
    NadconGrid grid;
    ASSERT_TRUE(grid.Initialize(los, las));
    for (const double end : {-1.0, 24.0}) {
      const double edge = grid.XMin() + (end - 1.0) * grid.Dx();
      double below = edge, above = edge;
      for (int i = 0; i < 300; ++i) {
        int col, row;
        for (const double x : {below, above}) {
          EXPECT_EQ(NodeOf(grid, {x, 40.35}, col, row), grid.Contains({x, 40.35})) << dx << " " << x;
        }
        below = std::nextafter(below, -kInf);
        above = std::nextafter(above, kInf);
      }
    }
  }
}

TEST(GridShifts, PublishedNadconGridsFollowTheRules) {
  const std::string conus = orv::test::GridData("nadcon/conus.los");
  if (conus.empty()) GTEST_SKIP() << orv::test::kNoGridData;
  NadconUtility set;
  ASSERT_TRUE(set.LoadGrids(conus.substr(0, conus.rfind('/'))));
  ExpectNadcon("published", set, PointsIn(-180, -60, 15, 75, {}));
}

// ---- NTv2 ------------------------------------------------------------------------------------------------

constexpr double kArcSecond = 4.84813681109536e-6;
constexpr double kPi = 3.141592653589793;

struct RuleGrid {
  explicit RuleGrid(const NTv2Layout& g)
      : layout(&g),
        west(-g.west * kArcSecond),
        south(g.south * kArcSecond),
        lonStep(g.lonInc * kArcSecond),
        latStep(g.latInc * kArcSecond),
        east(west + (g.columns - 1) * lonStep),
        north(south + (g.rows - 1) * latStep) {}
  const NTv2Layout* layout;
  double west, south, lonStep, latStep, east, north;

  bool Contains(const shr::Vec2d& p) const {
    return p.y >= south && p.y <= north && p.x >= west && p.x <= east;
  }
  bool ShiftAt(const shr::Vec2d& p, shr::Vec2d& shift) const {
    double lon = p.x - west - kPi;
    lon -= 2.0 * kPi * std::floor((lon + kPi) / (2.0 * kPi));
    lon += kPi;
    const double lat = p.y - south;
    if (!(lon <= east - west + 1e-12 && lat >= -1e-12 && lat <= north - south + 1e-12)) return false;
    const auto along = [](double offset, double step, int nodes) {
      const double u = offset * (1.0 / step);
      return u > 0.0 ? (u < nodes - 1 ? u : nodes - 1) : 0.0;
    };
    const double u = along(lon, lonStep, layout->columns), v = along(lat, latStep, layout->rows);
    const int col = std::min(static_cast<int>(u), layout->columns - 2);
    const int row = std::min(static_cast<int>(v), layout->rows - 2);
    const double s = u - col, t = v - row;
    const double weights[] = {(1.0 - s) * (1.0 - t), s * (1.0 - t), (1.0 - s) * t, s * t};
    shift = {0, 0};
    for (int k = 0; k < 4; ++k) {
      const NTv2Shift node = layout->shift(col + k % 2, row + k / 2);
      shift.x += weights[k] * (-static_cast<double>(node.lon) * kArcSecond);
      shift.y += weights[k] * (static_cast<double>(node.lat) * kArcSecond);
    }
    return std::isfinite(shift.x + shift.y);
  }
  shr::Vec2d Forward(const shr::Vec2d& p) const {
    shr::Vec2d shift;
    return ShiftAt(p, shift) ? shr::Vec2d(p.x + shift.x, p.y + shift.y) : p;
  }
  shr::Vec2d Inverse(const shr::Vec2d& p) const {
    shr::Vec2d shift;
    if (!ShiftAt(p, shift)) return p;
    shr::Vec2d guess(p.x - shift.x, p.y - shift.y);
    for (int round = 0; round < 11; ++round) {
      if (!ShiftAt(guess, shift)) return p;
      const shr::Vec2d rest(guess.x + shift.x - p.x, guess.y + shift.y - p.y);
      guess = {guess.x - rest.x, guess.y - rest.y};
      if (!(std::fabs(rest.x) > 1e-12 && std::fabs(rest.y) > 1e-12)) return guess;
    }
    return p;
  }
};

/// The first grid of a parent that contains the point, or its child; null for none.
const RuleGrid* Deepest(const std::vector<RuleGrid>& grids, const std::string& parent, const shr::Vec2d& p) {
  for (const RuleGrid& grid : grids) {
    if (grid.layout->parent != parent || !grid.Contains(p)) continue;
    const RuleGrid* const child = Deepest(grids, grid.layout->name, p);
    return child ? child : &grid;
  }
  return nullptr;
}

void ExpectNTv2(const std::string& name, const std::vector<NTv2Layout>& layouts, double west, double east,
                double south, double north) {
  const std::string file = orv::test::NTv2File(layouts);
  const std::vector<unsigned char> bytes(file.begin(), file.end());
  orv::internal::MemoryReader reader(bytes.data(), bytes.size());
  NTv2Grid tree;
  ASSERT_EQ(orv::internal::NTv2Done, tree.Read(reader));
  std::vector<RuleGrid> grids(layouts.begin(), layouts.end());
  Points edges;
  for (const RuleGrid& g : grids) {
    edges.emplace_back(g.west, g.south);
    edges.emplace_back(g.east, g.north);
    edges.emplace_back(g.west + g.lonStep, g.south + g.latStep);
    edges.emplace_back(g.east - g.lonStep, g.north - g.latStep);
  }
  const double degree = kPi / 180.0;
  const Points in = PointsIn(west * degree, east * degree, south * degree, north * degree, edges);
  for (const bool inverse : {false, true}) {
    ExpectShifts(
        name + (inverse ? " inverse" : " forward"), in,
        [&](const KernelTable& k, double* xy, size_t n) {
          (inverse ? k.ntv2.inverse : k.ntv2.forward)(tree.Set(), xy, n);
        },
        [&](shr::Vec2d point) {
          const RuleGrid* const grid = Deepest(grids, "NONE", point);
          if (!grid) return point;
          return inverse ? grid->Inverse(point) : grid->Forward(point);
        });
  }
}

/// Seconds up to `size` that tell each node from its neighbours.
std::function<NTv2Shift(int, int)> Rough(float size) {
  return [size](int col, int row) {
    const auto part = [](int n) { return static_cast<float>(n % 101) / 50.0F - 1.0F; };
    return NTv2Shift{size * part(37 * col + 53 * row), size * part(71 * col + 29 * row + 11)};
  };
}

TEST(GridShifts, NTv2KernelsFollowTheRulesToTheLastBit) {
  ExpectNTv2("one grid", {NTv2Box("A", "NONE", 10, 40, 0.5, 21, 17, Rough(6.0F))}, 9, 21, 39, 49);
  // Grids that overlap, touch and stick out of their parents; grandchildren; top-level grids behind others.
  ExpectNTv2("a tree",
             {NTv2Box("A", "NONE", 10, 40, 0.5, 9, 9, Rough(6.0F)),
              NTv2Box("B", "NONE", 12, 42, 0.5, 9, 9, Rough(9.0F)),
              NTv2Box("A1", "A", 10.5, 40.5, 0.125, 9, 9, Rough(3.0F)),
              NTv2Box("A2", "A", 11, 41, 0.125, 9, 9, Rough(2.0F)),
              NTv2Box("A11", "A1", 10.75, 40.75, 0.0625, 5, 9, Rough(1.0F)),
              NTv2Box("B1", "B", 15.5, 45.5, 0.125, 9, 9, Rough(4.0F)),
              NTv2Box("C", "NONE", 16, 40, 0.5, 5, 5, Rough(5.0F)),
              NTv2Box("D", "NONE", 18, 40, 0.5, 2, 2, Rough(8.0F))},
             9, 19, 39, 47);
}

TEST(GridShifts, NTv2InversesThatStrayOrFailAreThoseOfTheRules) {
  // Shifts of some cells' size, and nodes that are no numbers: guesses leave the grid, rounds run out.
  const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
  ExpectNTv2("rough", {NTv2Box("A", "NONE", 10, 40, 0.5, 9, 9, Rough(900.0F))}, 9, 15, 39, 45);
  ExpectNTv2("rougher", {NTv2Box("A", "NONE", 10, 40, 0.25, 19, 19, Rough(3000.0F))}, 9, 15, 39, 45);
  ExpectNTv2("holes",
             {NTv2Box("A", "NONE", 10, 40, 0.5, 9, 9,
                      [&](int col, int row) {
                        if (col == 3 && row % 2 == 0) return NTv2Shift{nan, 1.0F};
                        if (col == 6 && row == 4) return NTv2Shift{1.0F, inf};
                        return Rough(100.0F)(col, row);
                      })},
             9, 15, 39, 45);
}

TEST(GridShifts, NTv2LongitudesAreTurnedWithinAGrid) {
  // Around the world, where the offset exceeds 6.28, and a western edge that shifts cross.
  ExpectNTv2("world", {NTv2Box("A", "NONE", -180, -90, 10, 37, 19, Rough(1500.0F))}, -181, 181, -91, 91);
}

}  // namespace
