#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "orv/core/internal/Angle.h"
#include "orv/datum/NTv2Grid.h"
#include "tests/peer/Peer.h"

namespace orv {
namespace {

using shr::Vec2d;

constexpr size_t kCount = 1000;

/// NTv2 files of Debian's proj-data.
class GridPeer : public ::testing::TestWithParam<const char*> {};

TEST_P(GridPeer, NTv2ShiftsForwardAsThePeer) {
  const std::string path = std::string("/usr/share/proj/") + GetParam();
  if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " is not here (package proj-data)";
  internal::FileReader file;
  ASSERT_TRUE(file.Open(path));
  internal::NTv2Grid grid;
  ASSERT_EQ(internal::NTv2Done, grid.Read(file));
  const auto first = std::find_if(grid.SubGrids().begin(), grid.SubGrids().end(),
                                  [](const internal::NTv2SubGrid& sub) { return sub.IsTopLevel(); });
  ASSERT_NE(grid.SubGrids().end(), first);
  // A hair inside, where both have the point in the grid.
  const double hair = 1e-6;
  const std::vector<Vec2d> points = test::RandomPoints(
      kCount, internal::ToDegrees(first->West()) + hair, internal::ToDegrees(first->East()) - hair,
      internal::ToDegrees(first->South()) + hair, internal::ToDegrees(first->North()) - hair);
  const std::vector<Vec2d> expected = test::Peer("+proj=hgridshift +grids=" + path).Forward(points);
  double largest = 0.0, shift = 0.0;
  for (size_t i = 0; i < kCount; ++i) {
    Vec2d point(internal::ToRadians(points[i].x), internal::ToRadians(points[i].y));
    ASSERT_EQ(internal::NTv2Done, grid.Shift(point, false));
    point = {internal::ToDegrees(point.x), internal::ToDegrees(point.y)};
    const double apart = std::max(std::fabs(std::remainder(point.x - expected[i].x, 360.0)),
                                  std::fabs(point.y - expected[i].y));
    if (!(apart <= largest)) largest = apart;
    shift = std::max(shift, test::Distance(point, points[i]));
  }
  RecordProperty("largest", std::to_string(largest * 1e12) + "e-12 degree");
  EXPECT_LT(largest, 1e-9);
  EXPECT_GT(shift, 1e-5);  // there was something to shift
}

INSTANTIATE_TEST_SUITE_P(Files, GridPeer,
                         ::testing::Values("BETA2007.gsb", "ntf_r93.gsb", "nzgd2kgrid0005.gsb",
                                           "CHENYX06_etrs.gsb"));

}  // namespace
}  // namespace orv
