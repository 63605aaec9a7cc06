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

// Texts as PROJ 9.1.1 writes them:  projinfo -q --single-line -o WKT1:ESRI EPSG:31467 (and so on).  They hold no code, so that
// it is the parameters that are recognised; ESRI's dialect names the datum only.
const char* const kGaussKrueger =
    R"(PROJCS["DHDN_3_Degree_Gauss_Zone_3",GEOGCS["GCS_Deutsches_Hauptdreiecksnetz",DATUM["D_Deutsches_Hauptdreiecksnetz",SPHEROID["Bessel_1841",6377397.155,299.1528128]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Gauss_Kruger"],PARAMETER["False_Easting",3500000.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",9.0],PARAMETER["Scale_Factor",1.0],PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])";
const char* const kUtm =
    R"(PROJCS["WGS_1984_UTM_Zone_33N",GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",15.0],PARAMETER["Scale_Factor",0.9996],PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])";

TEST(ToolInterchange, IdentifyNamesTheSystemOfAPrjFileAndOfATextWithItsCode) {
  // Two codes for one system, whose axes EPSG gives in another order.
  const std::string both =
      "EPSG:5677\tequal\tDHDN / 3-degree Gauss-Kruger zone 3 (E-N)\nEPSG:31467\tequal\tDHDN / 3-degree Gauss-Kruger zone "
      "3\n";
  const ScratchFile prj(kGaussKrueger), crlf(kGaussKrueger + std::string("\r\n"));
  for (const std::string& what : {prj.Path(), crlf.Path(), std::string(kGaussKrueger)}) {
    const Result r = RunOrv({"identify", what});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, both);
  }
  // A text with the code of one of them is that one.
  EXPECT_EQ(RunOrv({"identify", Info("--wkt", "EPSG:31467"), "--limit", "1"}).out,
            "EPSG:31467\tequal\tDHDN / 3-degree Gauss-Kruger zone 3\n");
  for (const char* const what : {kUtm, "+proj=utm +zone=33 +datum=WGS84 +units=m +no_defs",
                                 "+proj=tmerc +lon_0=15 +k=0.9996 +x_0=500000 +datum=WGS84"}) {
    EXPECT_EQ(RunOrv({"identify", what, "--limit", "1"}).out, "EPSG:32633\tequal\tWGS 84 / UTM zone 33N\n")
        << what;
  }
}

TEST(ToolInterchange, IdentifyTellsHowFarAlikeAndDifferentOnesAreApart) {
  // Sweden's grid is zone 33 written as Transverse Mercator.
  const Result alike = RunOrv({"identify", kUtm});
  EXPECT_NE(alike.out.find("EPSG:3006\talike\tSWEREF99 TM\t"), std::string::npos) << alike.out;
  EXPECT_NE(
      alike.out.find(" mm apart\n\tMethod: Universal Transverse Mercator (UTM), there Transverse Mercator\n"),
      std::string::npos)
      << alike.out;
  // A shift of the false easting is the distance itself.
  const struct {
    const char *easting, *distance;
  } kRows[] = {{"500000.9996", "1.00 m"}, {"500002.5", "2.50 m"}, {"500012.5", "12.5 m"}, {"500125", "125 m"},
               {"500999.6", "1.00 km"},   {"512500", "12.5 km"},  {"625000", "125 km"}};
  for (const auto& row : kRows) {
    const Result r =
        RunOrv({"identify", std::string("+proj=tmerc +lon_0=15 +k=0.9996 +datum=WGS84 +x_0=") + row.easting,
                "--limit", "1"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orv: no known system places points alike; the nearest are shown with what differs\n");
    EXPECT_EQ(r.out.find(std::string("EPSG:3006\tdifferent\tSWEREF99 TM\t") + row.distance +
                         " apart\n\tFalse Easting: "),
              0u)
        << r.out;
  }
}

}  // namespace
