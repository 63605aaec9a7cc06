// orv bench: the form of what it writes; speeds are the machine's.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/RunOrv.h"

namespace {

using orv::test::Result;
using orv::test::RunOrv;

TEST(OrvBench, TellsASpeedForEachNumberOfPointsAtATime) {
  const Result result = RunOrv({"bench", "--from", "EPSG:32633", "--to", "EPSG:4326", "--points", "100",
                                "--seconds", "0.001", "--json"});
  EXPECT_EQ(result.status, 0) << result.err;
  const nlohmann::json json = nlohmann::json::parse(result.out);
  EXPECT_EQ(json["points"], 100);
  EXPECT_EQ(json["area"], (std::vector<double>{12, 0, 18, 60}));  // around the meridian of zone 33
  ASSERT_EQ(json["runs"].size(), 3u);
  EXPECT_EQ(json["runs"][2]["batch"], 100);
  EXPECT_GT(json["runs"][2]["millionPointsPerSecond"], 0.0);
}

TEST(OrvBench, SaysWhatIsWrong) {
  EXPECT_EQ(RunOrv({"bench", "-f", "EPSG:4326", "-t", "EPSG:32633", "--area", "9,1,8,2"}).err,
            "orv: --area: west must be below east, south below north\n");
  for (const char* area : {"1,2,3", "1,2,3,4,5", "1 2 3 4", "1,2,3,x", ","}) {
    EXPECT_EQ(RunOrv({"bench", "-f", "EPSG:4326", "-t", "EPSG:32633", "--area", area}).err,
              "orv: --area: '" + std::string(area) + "' is not four numbers WEST,SOUTH,EAST,NORTH\n");
  }
  EXPECT_EQ(
      RunOrv({"bench", "-f", "EPSG:4326", "-t", "EPSG:32633", "-n", "10", "--area", "100,1,110,2"}).err,
      "orv: most points of 100 to 110 degrees of longitude, 1 to 2 of latitude have no good place in both systems; "
      "give --area\n");
}

}  // namespace
