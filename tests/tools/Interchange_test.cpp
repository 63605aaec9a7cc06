// The texts of the field on the command line: info writes them, every SYSTEM may be one.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/support/RunOrv.h"

namespace {

using orv::test::Result;
using orv::test::RunOrv;
using orv::test::ScratchFile;

std::string Info(const std::string& flag, const std::string& what) {
  const Result r = RunOrv({"info", flag, what});
  EXPECT_EQ(r.status, 0) << r.err;
  return r.out;
}

TEST(ToolInterchange, InfoWritesTheText) {
  EXPECT_EQ(Info("--proj", "EPSG:32633"), "+proj=utm +zone=33 +datum=WGS84 +units=m +no_defs +type=crs\n");
  EXPECT_EQ(Info("--wkt", "EPSG:4326").substr(0, 27), "GEOGCRS[\"WGS 84\",\n  DATUM[\"");
  EXPECT_EQ(Info("--wkt1", "EPSG:4326").substr(0, 26), "GEOGCS[\"WGS 84\",\n  DATUM[\"");
  // A .prj file has one line.
  const std::string esri = Info("--esri", "EPSG:31467");
  EXPECT_EQ(esri.substr(0, 8), "PROJCS[\"");
  EXPECT_EQ(esri.find('\n'), esri.size() - 1);
}

TEST(ToolInterchange, InfoTellsWhatCannotBeWritten) {
  EXPECT_EQ(
      RunOrv({"info", "--proj", "NTF (Paris)"}).err,
      "orv: The system cannot be written as PROJ string: its unit is the grad, and the string counts degrees.\n");
  EXPECT_EQ(RunOrv({"info", "--wkt", "--kind", "datum", "WGS84"}).err,
            "orv: only a system has such a text\n");
  EXPECT_EQ(RunOrv({"info", "--wkt", "--proj", "EPSG:4326"}).status, 2);
}

TEST(ToolInterchange, ASystemMayBeATextOrAFile) {
  const ScratchFile prj(Info("--esri", "EPSG:31467")), wkt(Info("--wkt", "EPSG:31467"));
  const std::string proj =
      "+proj=tmerc +lon_0=9 +x_0=3500000 +ellps=bessel +towgs84=598.1,73.7,418.2,0.202,0.045,-2.455,6.7";
  for (const std::string& from : {prj.Path(), wkt.Path(), proj, Info("--wkt1", "EPSG:31467")}) {
    const Result r =
        RunOrv({"convert", "--from", from, "--to", "+proj=longlat +datum=WGS84", "--precision", "9"},
               "3500000 5500000\n");
    EXPECT_EQ(r.status, 0) << r.err;
    std::istringstream stream(r.out);
    double lon = 0.0, lat = 0.0;
    stream >> lon >> lat;
    // To a millimetre:  echo 3500000 5500000 | cs2cs "<the PROJ string above> +type=crs" "+proj=longlat +datum=WGS84 +type=crs"
    EXPECT_NEAR(lon, 8.998963564, 1e-8) << from;
    EXPECT_NEAR(lat, 49.636710644, 1e-8) << from;
  }
  EXPECT_EQ(RunOrv({"def", "PROJCS[\"x\""}).err,
            "orv: Line 1, column 11: expected ',' or ']', found the end of the text.\n");
  const ScratchFile bad("GEOGCS[1]");
  EXPECT_EQ(RunOrv({"def", bad.Path()}).err,
            "orv: " + bad.Path() + ": Line 1, column 1: expected a name in double quotes in GEOGCS.\n");
}

}  // namespace
