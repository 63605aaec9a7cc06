// orv explain and orv grids, with the shipped catalogue, with and without grids.
#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <string>

#include "tests/support/GridBytes.h"
#include "tests/support/RunOrv.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::test::Result;
using orv::test::RunOrv;
using orv::test::TempFolder;

constexpr const char* kByNadcon = "datum=ORV:NADCON-6267";

std::string Grid() {
  return orv::test::NadconFile({}, [](int, int) { return -36.0F; });
}

void ExpectHolds(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << "'" << part << "' is not in\n" << text;
}

TEST(OrvExplain, Nad27ToWgs84WithoutGrids) {
  const TempFolder folder;
  const Result r = RunOrv({"--config", folder.Path(), "explain", "EPSG:4267", "EPSG:4326"});
  EXPECT_EQ(r.status, 0) << r.err;
  ExpectHolds(
      r.out,
      "from Geographic 2D|NAD27 (EPSG:4267)\n"
      "to   Geographic 2D|WGS 84 (EPSG:4326)\n"
      "1. datum\n"
      "   - Bursa-Wolf forward, North American Datum 1927 (EPSG:6267) to World Geodetic System 1984 (EPSG:6326)\n"
      "     Ellipsoid Clarke 1866, dx -8, dy 160, dz 176, rx 0, ry 0, rz 0, K 0, PMShift 0\n"
      "     EPSG operation 1173: NAD27 to WGS 84 (4); area: USA - CONUS - onshore; accuracy: 10 m\n");
  ExpectHolds(
      r.out,
      "Not taken: North American Datum 1927 (NADCON grids) (ORV:NADCON-6267) by NADCON: NADGRIDS.ZIP, or .los "
      "with .las files, not found in: ");
  ExpectHolds(r.out, "; " + folder.Path() + ";");
  ExpectHolds(
      r.out,
      "Not taken: North American Datum 1927 - Cuba (EPSG 15978) (EPSG:6267-15978) by Bursa-Wolf: the definition "
      "names another way\n   EPSG operation 15978: NAD27 to WGS 84 (88); area: Cuba; accuracy: 1 m\n");
  EXPECT_EQ(r.out.find("accuracy: 44 m"), std::string::npos) << "worse ways are no news";

  const Result missing = RunOrv({"--config", folder.Path(), "explain", kByNadcon, "EPSG:4326"});
  EXPECT_EQ(missing.status, 0) << missing.err;
  ExpectHolds(missing.out, "     grids missing: NADGRIDS.ZIP, or .los with .las files, looked for in:\n");
  ExpectHolds(missing.out, "       " + folder.Path() + "\n");
  // And the conversion says the same.
  const Result converted = RunOrv(
      {"--config", folder.Path(), "convert", "--from", kByNadcon, "--to", "EPSG:4326"}, "-98.25 40.3\n");
  EXPECT_EQ(converted.status, 2);
  ExpectHolds(converted.err,
              "NADCON grid shift files missing or corrupt.  NADGRIDS.ZIP, or .los with .las files, looked");
}

TEST(OrvExplain, Nad27ToWgs84WithGrids) {
  const TempFolder folder;
  folder.Write("a.los", Grid());
  folder.Write("a.las", Grid());
  const Result other = RunOrv({"--config", folder.Path(), "explain", "EPSG:4267", "EPSG:4326"});
  EXPECT_EQ(other.status, 0) << other.err;
  ExpectHolds(other.out,
              "by NADCON: the definition names another way; the grids are in " + folder.Path() + "\n");

  const Result r = RunOrv({"--config", folder.Path(), "explain", kByNadcon, "EPSG:4326"});
  EXPECT_EQ(r.status, 0) << r.err;
  const std::string bytes = Grid();
  char line[200];
  std::snprintf(line, sizeof line, "a.los, %zu bytes, CRC-32 %08lx\n", bytes.size(),
                crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
  ExpectHolds(r.out, "     grid " + folder.Path("") + line);
  ExpectHolds(
      r.out,
      "   - NADCON forward, North American Datum 1927 (NADCON grids) (ORV:NADCON-6267) to North American");
  EXPECT_EQ(r.out.find("missing"), std::string::npos) << r.out;
}

TEST(OrvExplain, WithoutARouteTheReasonIsSaidWithStatus2) {
  // The catalogue knows no way for this datum of Canada.
  const Result r = RunOrv({"explain", "EPSG:4608", "EPSG:4326"});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(
      r.err,
      "orv: source system 'EPSG:4608' (NAD27(76)): no way is known from its datum 'North American Datum 1927 "
      "(1976)' (EPSG:6608) to any other; only systems on that datum can be converted to it, or a datum of your "
      "own with the parameters of the shift\n");
  const Result backward = RunOrv({"explain", "EPSG:4326", "datum=DMA:MRE-ED50"});
  EXPECT_EQ(backward.status, 0) << "another entry of ED50 leads there: " << backward.err;
  const Result unknown = RunOrv({"explain", "EPSG:4326", "EPSG:43261"});
  EXPECT_EQ(unknown.status, 2);
  ExpectHolds(unknown.err, "orv: target system: unknown system 'EPSG:43261'; nearest: ");
  ExpectHolds(unknown.err, "EPSG:4326 (WGS 84), ");
}

TEST(OrvExplain, TellsTheStagesOfAProjectedPair) {
  const Result r =
      RunOrv({"explain", "method=UTM,Lon0=15,datum=WGS84", "method=UTM,Lon0=15,ellipsoid=WGS84,datum=DHDN"});
  EXPECT_EQ(r.status, 0) << r.err;
  ExpectHolds(r.out, "1. source projection backward: Universal Transverse Mercator (UTM)\n");
  ExpectHolds(r.out, "2. datum\n   - Bursa-Wolf backward, World Geodetic System 1984 (EPSG:6326) to ");
  ExpectHolds(r.out, "3. destination projection forward: Universal Transverse Mercator (UTM)\n");
  ExpectHolds(
      r.out,
      "Note: The projections are equal and the datums are not: points go through longitude and latitude");
  const Result same = RunOrv({"explain", "EPSG:32633", "EPSG:32633"});
  ExpectHolds(same.out, "Nothing is done: points stay as they are.\n");
}

TEST(OrvGrids, ListsWhatIsFoundAndWhereOthersAreLookedFor) {
  const TempFolder folder;
  folder.Write("a.los", Grid());
  folder.Write("a.las", Grid());
  const Result r = RunOrv({"--config", folder.Path(), "grids", "--json"});
  EXPECT_EQ(r.status, 0) << r.err;
  ExpectHolds(r.out, "\"folder\": \"" + folder.Path() + "\"");
  ExpectHolds(r.out, "\"path\": \"" + folder.Path("a.las") + "\"");
  // NadconLayout: 24 columns of 0.5 degree from 100 W, 3 rows of 0.25 degree from 40 N
  for (const char* const part :
       {"\"west\": -100.0", "\"east\": -88.5", "\"south\": 40.0", "\"north\": 40.5"}) {
    ExpectHolds(r.out, part);
  }
  ExpectHolds(r.out, "\"wanted\": \"ntv2_0.gsb\"");
  ExpectHolds(r.out, "\"searched\"");

  folder.Write("ntv2_0.gsb", "no grid");
  ExpectHolds(RunOrv({"--config", folder.Path(), "grids"}).out, "is no NTv2 file that can be read");
  folder.Write("ntv2_0.gsb",
               orv::test::NTv2File({orv::test::NTv2Box("CAN", "NONE", -100, 40, 1, 5, 3, [](int, int) {
                 return orv::test::NTv2Shift{1.0F, 1.0F};
               })}));
  const Result both = RunOrv({"--config", folder.Path(), "grids", "--json"});
  ExpectHolds(both.out, "\"name\": \"CAN");
  ExpectHolds(both.out, "\"north\": 42.0");
}

// ---- warp ------------------------------------------------------------------------------------------------

TEST(OrvWarp, FitsAndNamesTheWorstPoint) {
  // The mean shift is (0, 3), so three points are 3 off and one is 9 off.
  const std::string points = "x,y,X,Y\n0,0,0,0\n# a remark\n1,0,1,0\n5,5,5,17\r\n\n9,9,9,9\n";
  const Result r = RunOrv({"warp", "-", "--method", "displacement"}, points);
  EXPECT_EQ(r.status, 0) << r.err;
  ExpectHolds(r.out, "Displacement");
  ExpectHolds(r.out, "point,x,y,residual\n1,0,0,3\n2,1,0,3\n3,5,5,9\n4,9,9,3\n");
  EXPECT_EQ(r.err, "orv: 4 control points, mean error 4.5, largest 9 at point 3\n");
  const TempFolder folder;
  const std::string file = folder.Write("control.csv", points);
  EXPECT_EQ(
      RunOrv({"warp", file, "--method", "Displacement", "--apply", "-"}, "1.5 2\n -1\t;7 ignored\n").out,
      "1.5,5\n-1,10\n");
}

TEST(OrvWarp, APointWithoutAPlaceIsAnEmptyPair) {
  const TempFolder folder;
  const std::string file = folder.Write("control.csv", "0,0,0,3\n");
  const Result r =
      RunOrv({"warp", file, "-m", "displacement", "--apply", "-"}, "1,2\n1.7976931348623157e308,0\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "1,5\n,\n");
  EXPECT_EQ(r.err, "orv: 1 of 2 points have no place behind the warp\n");
}

TEST(OrvWarp, SaysWhatIsWrong) {
  const struct {
    const char *points, *method, *message;
  } kRows[] = {
      {"0,0,1,1\n", "nonsense", "orv: unknown warp method 'nonsense'\n"},
      {"0,0,1,1\n", "helmert",
       "orv: The warp method 'Helmert' needs at least 2 control points; there are 1.\n"},
      {"0,0,1,1\n0,0,2,2\n", "helmert",
       "orv: Control points 1 and 2 conflict: the same source point goes to two places.\n"},
      {"0 0 1 1\n1 2 3\n", "helmert", "orv: -, line 2: it has 3 of 4 numbers\n"},
      {"0,0,1,x\n", "helmert", "orv: -, line 1: 'x' is not a number\n"},
      {"", "helmert", "orv: - holds no points\n"},
  };
  for (const auto& row : kRows) {
    const Result r = RunOrv({"warp", "-", "-m", row.method}, row.points);
    EXPECT_EQ(r.status, 2) << row.points;
    EXPECT_EQ(r.out, "") << row.points;
    EXPECT_EQ(r.err, row.message);
  }
}

}  // namespace
