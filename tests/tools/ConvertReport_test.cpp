// orv convert --report: its totals against the counts of a file whose every line is known.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

#include "tests/support/GridBytes.h"
#include "tests/support/RunOrv.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::test::Content;
using orv::test::Result;
using orv::test::RunOrv;
using orv::test::ScratchFile;

/// What a line must become, and where that was first.
struct Count {
  size_t count = 0;
  size_t first = 0;
};

TEST(OrvConvertReport, TotalsAreThoseOfAFileWithEveryKindOfBadPoint) {
  // A NADCON grid of no shift from 100 to 88.5 degrees west and 40 to 40.5 north, in the configuration folder.
  orv::test::TempFolder folder;
  const orv::test::NadconLayout layout;
  const auto zero = [](int, int) { return 0.0F; };
  folder.Write("grid.los", orv::test::NadconFile(layout, zero));
  folder.Write("grid.las", orv::test::NadconFile(layout, zero));

  std::mt19937 random(7);
  const auto between = [&random](double low, double high) {
    return std::to_string(std::uniform_real_distribution<double>(low, high)(random));
  };
  std::map<std::string, Count> expected;
  size_t placed = 0;
  std::string input = "id,lon,lat\n";
  constexpr size_t kLines = 10000;
  for (size_t i = 0; i < kLines; ++i) {
    const std::string in = between(-99.5, -89.0), north = between(40.05, 40.45);
    std::string fate, lon = in, lat = north;
    const auto kind = random() % 14;
    std::string line;
    switch (kind) {
      case 0:
        fate = "neither a number nor an angle", lat = "forty";
        break;
      case 1:
        fate = "neither a number nor an angle", lon = "nan";
        break;
      case 2:
        fate = "an empty coordinate", lon = "";
        break;
      case 3:
        fate = "too few fields", line = "a," + lon;
        break;
      case 4:
        fate = "a quoted field not closed", line = "\"a," + lon + "," + lat;
        break;
      case 5:
        fate = "an angle of the other axis", lon = "40d30mN";
        break;
      case 6:
        fate = "latitude", lat = between(90.001, 500.0);
        break;
      case 7:
        fate = "latitude", lat = between(-500.0, -90.001);
        break;
      case 8:
        fate = "destination-area", lat = "90";
        break;  // Mercator has no poles
      case 9:
        fate = "outside-grids", lat = between(41.0, 80.0);
        break;
      case 10:
        fate = "outside-grids", lon = between(-80.0, 80.0);
        break;
      default:
        break;
    }
    input += (line.empty() ? "a," + lon + "," + lat : line) + "\n";
    if (fate.empty() || fate == "outside-grids") ++placed;
    if (fate.empty()) continue;
    Count& count = expected[fate];
    if (count.count++ == 0) count.first = i + 2;
  }
  ASSERT_EQ(expected.size(), 8u);

  const ScratchFile report;
  const Result result = RunOrv(
      {"--config", folder.Path(), "convert", "--from", "datum.method=NADCON,datum.target=NAD83", "--to",
       "method=Mercator,datum=NAD83", "--columns", "lon,lat", "--report", report.Path(), "--jobs", "3"},
      input);
  EXPECT_EQ(result.status, 1);
  const nlohmann::json json = nlohmann::json::parse(Content(report.Path()));
  EXPECT_EQ(json["lines"], kLines + 1);
  EXPECT_EQ(json["points"], kLines);
  EXPECT_EQ(json["placed"], placed);
  EXPECT_EQ(json["lost"], kLines - placed);
  EXPECT_EQ(json["doubtful"], expected["outside-grids"].count);
  size_t seen = 0;
  for (const char* const list : {"unparsable", "unplaced", "doubts"}) {
    for (const nlohmann::json& fate : json[list]) {
      const std::string name = fate.contains("event") ? fate["event"] : fate["reason"];
      ASSERT_EQ(expected.count(name), 1u) << name;
      EXPECT_EQ(fate["count"], expected[name].count) << name;
      EXPECT_EQ(fate["first"]["line"], expected[name].first) << name;
      EXPECT_NE(fate["first"]["message"], "") << name;
      ++seen;
    }
  }
  EXPECT_EQ(seen, expected.size());
  EXPECT_EQ(orv::test::Lines(result.err).size(), kLines - placed + 1) << "each lost line and one note";
}

TEST(OrvConvertReport, OfBinaryDataCountsPoints) {
  const double values[] = {13.5, 52.5, 13.5, 91.0, 200.0, -91.0};
  const ScratchFile report;
  const Result result = RunOrv({"convert", "--from", "datum=WGS84", "--to", "method=Mercator,datum=WGS84",
                                "--binary", "--report", report.Path()},
                               std::string(reinterpret_cast<const char*>(values), sizeof values));
  EXPECT_EQ(result.status, 1);
  const nlohmann::json json = nlohmann::json::parse(Content(report.Path()));
  EXPECT_FALSE(json.contains("lines"));
  EXPECT_EQ(json["from"], "datum=WGS84");
  EXPECT_EQ(json["to"], "method=Mercator,datum=WGS84");
  EXPECT_EQ(json["points"], 3);
  EXPECT_EQ(json["placed"], 1);
  EXPECT_EQ(json["unplaced"].size(), 1u);
  EXPECT_EQ(json["unplaced"][0]["count"], 2);
  EXPECT_EQ(json["unplaced"][0]["stage"], "input");
  EXPECT_EQ(json["unplaced"][0]["first"]["point"], 2);
}

}  // namespace
