// Runs the built command line tool.  Expected coordinates are PROJ 9.1.1's (cs2cs, proj, cct), with the
// command beside them; where the seven-parameter shift runs backward, it is approximate by design and 1 cm is
// allowed.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "orv/tables/EllipsoidList.h"
#include "tests/support/RunOrv.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::test::Content;
using orv::test::Lines;
using orv::test::Result;
using orv::test::RunOrv;
using orv::test::ScratchFile;
using orv::test::TempFolder;

const std::string kGeographic = "datum=WGS84";
const std::string kUtm33 = "method=UTM,Lon0=15,datum=WGS84";

Result ConvertToUtm(const std::string& input, std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"convert", "--from", kGeographic, "--to", kUtm33};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return RunOrv(arguments, input);
}

std::string Binary(const std::vector<double>& values) {
  std::string bytes;
  for (const double value : values) {
    auto bits = std::bit_cast<uint64_t>(value);
    for (int i = 0; i < 8; ++i, bits >>= 8) bytes += static_cast<char>(bits & 0xFF);
  }
  return bytes;
}

std::vector<double> Doubles(const std::string& bytes) {
  std::vector<double> values;
  for (size_t at = 0; at + 8 <= bytes.size(); at += 8) {
    uint64_t bits = 0;
    for (size_t i = 8; i-- > 0;) bits = bits << 8 | static_cast<unsigned char>(bytes[at + i]);
    values.push_back(std::bit_cast<double>(bits));
  }
  return values;
}

/// Converts one point and expects it within `tolerance` of (x, y).
void ExpectPoint(const std::string& from, const std::string& to, const std::string& point, double x, double y,
                 double tolerance) {
  const Result r = RunOrv({"convert", "--from", from, "--to", to, "--precision", "12"}, point + "\n");
  EXPECT_EQ(r.status, 0) << r.err;
  double gotX = NAN, gotY = NAN;
  std::istringstream(r.out) >> gotX >> gotY;
  EXPECT_NEAR(gotX, x, tolerance) << from << " -> " << to;
  EXPECT_NEAR(gotY, y, tolerance) << from << " -> " << to;
}

// ---- clip and plot -----------------------------------------------------------------------------------------

// On a sphere of 180/pi the Equator of Mercator is measured in degrees.
const char* const kMercatorOfDegrees = "method=Merc,a=57.29577951308232,f=0";

TEST(OrvClip, ClipsProjectsAndCounts) {
  const ScratchFile file(R"({"type":"FeatureCollection","features":[
    {"type":"Feature","id":7,"properties":{"a":1},"geometry":{"type":"LineString","coordinates":[[-10,0],[20,0,5]]}},
    {"type":"Feature","properties":null,"geometry":{"type":"Polygon",
      "coordinates":[[[170,-1],[190,-1],[190,1],[170,1],[170,-1]]]}},
    {"type":"Feature","properties":{},"geometry":{"type":"LineString","coordinates":[[0,91],[1,92]]}},
    {"type":"Feature","properties":{},"geometry":{"type":"Point","coordinates":[1,2]}}]})");
  const Result result = RunOrv({"clip", "--in", kMercatorOfDegrees, "--precision", "1", file.Path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "orv: 1 whole, 1 clipped, 1 of them split, 1 dropped\n");
  EXPECT_NE(result.out.find(R"({"type":"Feature","id":7,"properties":{"a":1},"geometry":)"
                            R"({"type":"LineString","coordinates":[[-10.0,0.0],[20.0,0.0]]}})"),
            std::string::npos)
      << result.out;
  // Two pieces, each from 170 degrees to the edge, on the east and on the west of the map.
  EXPECT_NE(result.out.find(R"("type":"MultiPolygon","coordinates":[[[[170.0,-1.0],[180.0,-1.0],)"),
            std::string::npos);
  EXPECT_NE(result.out.find("[-170.0,-1.0]"), std::string::npos);
  EXPECT_EQ(result.out.find("NaN"), std::string::npos);
}

TEST(OrvClip, SaysWhatIsWrong) {
  const struct {
    const char *text, *system, *message;
  } kRows[] = {
      {"{\"type\":", kMercatorOfDegrees, "no JSON at byte 9"},
      {"[1]", kMercatorOfDegrees, "it holds something without a type, which GeoJSON objects have"},
      {R"({"type":"Feature"})", kMercatorOfDegrees, "a feature has no geometry"},
      {R"({"type":"Circle"})", kMercatorOfDegrees, "'Circle' is no type of GeoJSON"},
      {R"({"type":"LineString"})", kMercatorOfDegrees, "coordinates are missing"},
      {R"({"type":"LineString","coordinates":[[1],[2,3]]})", kMercatorOfDegrees,
       "a position is not a list of two numbers"},
      {R"({"type":"LineString","coordinates":[[1,2]]})", kMercatorOfDegrees,
       "a line or ring has fewer than two positions"},
      {"{}", "method=geographic,a=1,f=0", "the system has no projection"},
  };
  for (const auto& row : kRows) {
    const ScratchFile file(row.text);
    const Result result = RunOrv({"clip", "--in", row.system, file.Path()});
    EXPECT_EQ(result.status, 2) << row.text;
    EXPECT_EQ(result.out, "") << row.text;
    EXPECT_NE(result.err.find(row.message), std::string::npos) << result.err;
  }
  EXPECT_NE(
      RunOrv({"clip", "--in", kMercatorOfDegrees, "/no/such/file"}).err.find("cannot open '/no/such/file'"),
      std::string::npos);
}

TEST(OrvPlot, WritesBothKindsOfPicture) {
  const ScratchFile file(R"({"type":"Polygon","coordinates":[[[170,-10],[190,-10],[190,10],[170,-10]]]})");
  for (const char* const ending : {".svg", ".png"}) {
    const ScratchFile picture;
    const std::string path = picture.Path() + ending;
    const Result result = RunOrv({"plot", "--in", "method=Cass,Lon0=170,a=6371000,f=0", "--graticule", "15",
                                  "--size", "200", file.Path(), "-o", path});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "orv: 1 whole, 0 clipped, 0 of them split, 0 dropped\n");
    const std::string content = Content(path);
    EXPECT_EQ(content.substr(1, 3), ending == std::string(".svg") ? "?xm" : "PNG");
    EXPECT_GT(content.size(), 1000u);
    std::remove(path.c_str());
  }
}

TEST(OrvPlot, SaysWhatIsWrong) {
  EXPECT_NE(RunOrv({"plot", "--in", kMercatorOfDegrees, "-o", "map.gif"})
                .err.find("the picture must be a .svg or .png file"),
            std::string::npos);
  EXPECT_NE(RunOrv({"plot", "--in", kMercatorOfDegrees, "--within", "10,0,0,1", "-o", "map.svg"})
                .err.find("--within: west must be below east, south below north"),
            std::string::npos);
  for (const char* const window : {"1,2,3", "1,2,3,4,5", "1,2,3,x"}) {
    EXPECT_NE(RunOrv({"plot", "--in", kMercatorOfDegrees, "--within", window, "-o", "map.svg"}).status, 0)
        << window;
  }
  EXPECT_NE(RunOrv({"plot", "--in", kMercatorOfDegrees, "--within", "1,2,3", "-o", "map.svg"})
                .err.find("--within: '1,2,3' is not four numbers WEST,SOUTH,EAST,NORTH"),
            std::string::npos);
  EXPECT_NE(
      RunOrv({"plot", "--in", kMercatorOfDegrees, "-o", "map.svg", "--within", "1,2,3,4", "/no/such/file"})
          .err.find("/no/such/file"),
      std::string::npos)
      << "what stands behind the window is a file";
  EXPECT_NE(RunOrv({"plot", "--in", kMercatorOfDegrees, "-o", "/no/such/folder/map.png"})
                .err.find("cannot write '/no/such/folder/map.png'"),
            std::string::npos);
  EXPECT_NE(RunOrv({"plot", "--in", kMercatorOfDegrees, "--within", "0,91,1,92", "-o", "map.svg"})
                .err.find("the map shows nothing"),
            std::string::npos);
}

}  // namespace

// ---- the command as a whole

TEST(Orv, VersionAndHelpGoToStandardOutputWithStatus0) {
  const Result version = RunOrv({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.substr(0, 4), "orv ");
  EXPECT_NE(version.out.find("\ncatalogue: EPSG Geodetic Parameter Dataset v10.076 (2022-08-31), /"),
            std::string::npos)
      << version.out;
  EXPECT_NE(version.out.find("owned by IOGP"), std::string::npos) << version.out;
  const TempFolder folder;
  folder.Write("system.ocf", "; mine\n");
  EXPECT_NE(RunOrv({"--config", folder.Path(), "--version"}).out.find("/system.ocf, of the user's own"),
            std::string::npos);
  const Result help = RunOrv({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("x is longitude"), std::string::npos);
  const Result convert = RunOrv({"convert", "--help"});
  EXPECT_EQ(convert.status, 0);
  EXPECT_NE(convert.out.find("x is longitude"), std::string::npos);
  EXPECT_EQ(help.err + version.err + convert.err, "");
}

TEST(Orv, UsageErrorsGoToStandardErrorWithStatus2) {
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"transmogrify"},
      {"convert", "--from", kGeographic},
      {"convert", "--from", kGeographic, "--to", kUtm33, "--precision", "99"},
      {"convert", "--from", kGeographic, "--to", kUtm33, "--separator", "pipe"},
      {"convert", "--from", kGeographic, "--to", kUtm33, "/no/such/points"},
      {"convert", "--from", kGeographic, "--to", "/no/such/definition"},
      {"def"},
      {"def", kUtm33, "--encoded", "--dump"},
      {"latlon"},
      {"latlon", "--dms", "--dm", "5"}};
  for (const auto& arguments : wrong) {
    const Result r = RunOrv(arguments);
    EXPECT_EQ(r.status, 2) << ::testing::PrintToString(arguments);
    EXPECT_EQ(r.out, "") << ::testing::PrintToString(arguments);
    EXPECT_EQ(r.err.substr(0, 5), "orv: ") << ::testing::PrintToString(arguments);
  }
}

TEST(Orv, AMissingCatalogueIsSaid) {
  const ScratchFile broken("{ token=");
  const std::string folder = broken.Path() + ".d";
  ASSERT_EQ(
      std::system(("mkdir " + folder + " && cp " + broken.Path() + " " + folder + "/ellipsoid.ocf").c_str()),
      0);
  const Result r = RunOrv({"--config", folder, "def", kUtm33});
  EXPECT_EQ(r.status, 2);
  EXPECT_NE(r.err.find("ellipsoid.ocf(1)"), std::string::npos) << r.err;
  ASSERT_EQ(std::system(("rm -r " + folder).c_str()), 0);
}

// ---- coordinates

TEST(Orv, ConvertsToUtm) {
  // echo 13.5 52.5 | proj +proj=utm +zone=33 +ellps=WGS84; 1 mm for the truncated series.
  ExpectPoint(kGeographic, kUtm33, "13.5 52.5", 398178.3970, 5817709.5264, 1e-3);
  ExpectPoint(kUtm33, kGeographic, "398178.3970 5817709.5264", 13.5, 52.5, 1e-8);
}

TEST(Orv, ConvertsBetweenDatumsOfTheCatalogue) {
  // cs2cs +proj=longlat +ellps=... +towgs84=... +to +proj=longlat +ellps=WGS84 +towgs84=0,0,0
  ExpectPoint("datum=DHDN", kGeographic, "9.5 51.25", 9.498874379, 51.248712004, 2e-9);
  ExpectPoint("datum=OSGB36", kGeographic, "-1.5 52.25", -1.501478118, 52.250402975, 2e-9);
  ExpectPoint("datum=NAD83", kGeographic, "-100.5 40.25", -100.5, 40.25, 2e-9);
  // cct ... +proj=helmert ... +convention=coordinate_frame, with the published signs
  ExpectPoint("datum=EPSG:6284-5044", kGeographic, "37.5 55.75", 37.498123838, 55.750040531, 2e-9);
  // Molodensky's formulas beside three geocentric translations: 1 cm.
  ExpectPoint("datum=ED50", kGeographic, "10.25 59.75", 10.248560071, 59.749536900, 1e-7);
}

TEST(Orv, ConvertsToProjectionsOnOtherDatums) {
  // cs2cs to +proj=tmerc +lon_0=9 +x_0=3500000 +ellps=bessel +towgs84=598.1,...
  ExpectPoint(kGeographic, "method=Transverse Mercator,Lon0=9,xOrg=3500000,datum=DHDN", "9.5 51.25",
              3534983.1418, 5679577.6666, 1e-2);
  // ... +proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy
  // +towgs84=446.448,...
  ExpectPoint(kGeographic,
              "method=TMerc,Lat0=49,Lon0=-2,K0=0.9996012717,xOrg=400000,yOrg=-100000,datum=OSGB36",
              "-2.5 53.5", 366930.3264, 400483.4019, 1e-2);
}

TEST(Orv, EqualProjectionsOnDifferentDatumsGoThroughGeographicCoordinates) {
  // The DHDN position in WGS 84 (cs2cs, as above), then proj +proj=tmerc +lon_0=9 +x_0=500000 +ellps=bessel.
  const std::string projection = "method=TMerc,Lon0=9,xOrg=500000,ellipsoid=Bessel1841,";
  ExpectPoint(projection + "datum=DHDN", projection + "datum=WGS84", "550000 5678000", 549920.5278,
              5677856.2206, 5e-3);
}

TEST(Orv, ADatumOfOnesOwnConvertsLikeTheSameKnownOne) {
  const std::string own =
      "ellipsoid=Bessel1841,datum.method=Bursa-Wolf,datum.target=WGS84,datum.dx=598.1,datum.dy=73.7,datum.dz=418.2,"
      "datum.rx=0.202,datum.ry=0.045,datum.rz=-2.455,datum.K=6.7";
  ExpectPoint(own, kGeographic, "9.5 51.25", 9.498874379, 51.248712004, 2e-9);
  const std::string dimensions =
      "datum.a=6377397.155,datum.rf=299.1528128,datum.method=bursa,datum.target=wgs84,DATUM.DX=598.1,datum.dy=73.7,"
      "datum.dz=418.2,datum.rx=0.202,datum.ry=0.045,datum.rz=-2.455,datum.k=6.7";
  ExpectPoint(dimensions, kGeographic, "9.5 51.25", 9.498874379, 51.248712004, 2e-9);
  // A prime meridian shift moves longitudes before the conversion.
  ExpectPoint(own + ",datum.PMShift=2d30mE", kGeographic, "7 51.25", 9.498874379, 51.248712004, 2e-9);
}

TEST(Orv, TheCatalogueHasTheDefiningValuesOfTheEllipsoids) {
  // EPSG Geodetic Parameter Dataset v10.076, as proj.db quotes it; Clarke 1866 is (a - b) / a of its two
  // radii.
  orv::EllipsoidList list;
  ASSERT_TRUE(list.Load((orv::test::CatalogueFolder() + "/ellipsoid.ocf").c_str(), true));
  const struct {
    int posc;
    const char* token;
    double radius, flattening;
  } rows[] = {
      {7030, "EPSG:7030", 6378137.0, 1 / 298.257223563},  {7019, "EPSG:7019", 6378137.0, 1 / 298.257222101},
      {7004, "EPSG:7004", 6377397.155, 1 / 299.1528128},  {7001, "EPSG:7001", 6377563.396, 1 / 299.3249646},
      {7008, "EPSG:7008", 6378206.4, 0.0033900753039287}, {7022, "EPSG:7022", 6378388.0, 1 / 297.0},
      {7024, "EPSG:7024", 6378245.0, 1 / 298.3}};
  for (const auto& row : rows) {
    const int index = list.FindByPOSCNumber(row.posc);
    ASSERT_NE(index, 0) << row.token;
    EXPECT_STREQ(list.EnumToken(index), row.token);
    EXPECT_EQ(list.EnumRadius(index), row.radius) << row.token;
    EXPECT_NEAR(list.EnumFlattening(index), row.flattening, 1e-16) << row.token;
  }
}

// ---- text of points

TEST(OrvConvert, KeepsTheHeaderAndTheOtherColumnsAndTheLineEnds) {
  const Result r = ConvertToUtm(
      "id,\"Name, quoted\",Lat, LON \r\n"
      "1,\"Berlin, \"\"Spree\"\"\",52.5,13.5\r\n"
      "\r\n"
      "2,x, 52.5 ,\"13.5\"",
      {"--columns", "lon,lat"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(r.out,
            "id,\"Name, quoted\",Lat, LON \r\n"
            "1,\"Berlin, \"\"Spree\"\"\",5817709.5269,398178.3970\r\n"
            "\r\n"
            "2,x,5817709.5269,398178.3970");
}

TEST(OrvConvert, FindsTheSeparatorOnTheFirstLine) {
  const std::string x = "398178.3970", y = "5817709.5269";  // within 1 mm of PROJ's, see ConvertsToUtm
  EXPECT_EQ(ConvertToUtm("13.5,52.5\n").out, x + "," + y + "\n");
  EXPECT_EQ(ConvertToUtm("\n13.5,52.5;a b\n").status, 1) << "a comma goes before a semicolon and blanks";
  EXPECT_EQ(ConvertToUtm("13.5\t52.5\t1,2;3 4\n").out, x + "\t" + y + "\t1,2;3 4\n")
      << "a tab goes before all";
  EXPECT_EQ(ConvertToUtm("\"a,b\" 13.5 52.5\n", {"--columns", "2,3"}).out, "\"a,b\" " + x + " " + y + "\n")
      << "quoted ones do not count";
}

TEST(OrvConvert, ReadsTabsSemicolonsAndBlanks) {
  const std::string x = "398178.3970", y = "5817709.5269";
  EXPECT_EQ(ConvertToUtm("13.5\t52.5\ta, \"b\n").out, x + "\t" + y + "\ta, \"b\n");
  EXPECT_EQ(ConvertToUtm("13.5;52.5;\"a;b\"\n").out, x + ";" + y + ";\"a;b\"\n");
  EXPECT_EQ(Lines(ConvertToUtm("  13.5   52.5  a \n0 0 \t b").out).at(0), "  " + x + "   " + y + "  a ");
  EXPECT_EQ(ConvertToUtm("\"New York\" 13.5 52.5\n", {"--columns", "2,3"}).out,
            "\"New York\" " + x + " " + y + "\n");
  EXPECT_EQ(ConvertToUtm("13.5;52.5;a,b\n", {"--separator", "semicolon"}).out, x + ";" + y + ";a,b\n");
}

TEST(OrvConvert, TakesTheFirstLineForAHeaderWhenNeitherFieldBeginsLikeANumber) {
  EXPECT_EQ(ConvertToUtm("lon,lat\n13.5,52.5\n").out.substr(0, 8), "lon,lat\n");
  EXPECT_EQ(ConvertToUtm("lon,lat\n13.5,52.5\n").status, 0);
  // What begins like a number is data, though it may not parse.
  EXPECT_EQ(ConvertToUtm("13.5x,52.5y\n").status, 1);
  EXPECT_EQ(ConvertToUtm("-x,.y\n").status, 1);
  EXPECT_EQ(ConvertToUtm(",\n").status, 1);
  EXPECT_EQ(ConvertToUtm("lon,52.5\n13.5,52.5\n").status, 1);
  EXPECT_EQ(ConvertToUtm("lon,lat\n13.5,52.5\n", {"--header", "no"}).status, 1);
  EXPECT_EQ(ConvertToUtm("1,2\n13.5,52.5\n", {"--header", "yes"}).out.substr(0, 4), "1,2\n");
}

TEST(OrvConvert, ReadsDegreesMinutesAndSeconds) {
  const std::string point = ConvertToUtm("13.5,52.51\n").out;
  EXPECT_EQ(ConvertToUtm("13d30m,52d30m36s\n").out, point);
  EXPECT_EQ(ConvertToUtm("13D30mE,52d30'36\"N\n").out, point);
  EXPECT_EQ(ConvertToUtm("+13.5E,52\xC2\xB0"
                         "30\xE2\x80\xB2"
                         "36\xE2\x80\xB3N\n")
                .out,
            point);
  EXPECT_EQ(ConvertToUtm("\"13d 30m E\" \"52d 30m 36s\"\n").out, ConvertToUtm("13.5 52.51\n").out);
  // Westward and southward.
  EXPECT_EQ(ConvertToUtm("1d30mW,2.25S\n").out, ConvertToUtm("-1.5,-2.25\n").out);
}

TEST(OrvConvert, ReadsNoAnglesWhereTheSourceIsProjected) {
  const Result r =
      RunOrv({"convert", "--from", kUtm33, "--to", kGeographic, "--header", "no"}, "13d30m,52\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "orv: line 1: '13d30m' is not a number\n");
}

TEST(OrvConvert, WritesNineDecimalsOfDegreesAndFourOfMetres) {
  EXPECT_EQ(RunOrv({"convert", "--from", kGeographic, "--to", kGeographic}, "13.5 -52.25\n").out,
            "13.500000000 -52.250000000\n");
  EXPECT_EQ(
      RunOrv({"convert", "--from", kGeographic, "--to", kGeographic, "--precision", "0"}, "13.4 52.7\n").out,
      "13 53\n");
  EXPECT_EQ(RunOrv({"convert", "--from", kGeographic, "--to", kGeographic, "-p", "3"}, "-0.0004 1e1\n").out,
            "0.000 10.000\n")
      << "what rounds to zero has no sign";
  EXPECT_EQ(Lines(ConvertToUtm("13.5 52.5\n").out).at(0).size(),
            std::string("398178.3970 5817709.5269").size());
}

TEST(OrvConvert, ReportsEachBadLineWritesItEmptyAndGoesOn) {
  const struct {
    const char* line;
    const char* written;
    const char* reason;
  } rows[] = {
      {"a,abc,52", "a,,", "'abc' is neither a number nor degrees, minutes and seconds"},
      {"a,13,nan", "a,,", "'nan' is neither a number nor degrees, minutes and seconds"},
      {"a,inf,52", "a,,", "'inf' is neither a number nor degrees, minutes and seconds"},
      {"a,13,1e999", "a,,", "'1e999' is neither a number nor degrees, minutes and seconds"},
      {"a,13", "a,,", "the line has 2 fields, but the coordinates are fields 2 and 3"},
      {"a", "a,,", "the line has 1 field, but the coordinates are fields 2 and 3"},
      {"a,,52,z", "a,,,z", "the x coordinate is empty"},
      {"a,13,", "a,,", "the y coordinate is empty"},
      {"a,13,90.5,z", "a,,,z", "latitude 90.5 is beyond 90 degrees"},
      {"a,52d30mN,13", "a,,", "'52d30mN' is a latitude where the longitude should be"},
      {"a,52,13E", "a,,", "'13E' is a longitude where the latitude should be"},
      {"\"a,13,52", "\"a,13,52,,", "a quoted field is not closed"},
      {"a,1.7976931348623157e308,1", "a,,", "the point has no place in the target system"},
      {"a,0123456789012345678901234567890123456789x,1", "a,,",
       "'0123456789012345678901234567890123456789...' is neither a number nor degrees, minutes and seconds"}};
  std::string input, output, errors;
  int number = 0;
  for (const auto& row : rows) {
    input += std::string(row.line) + "\nok,13.5,52.5\n";
    output += std::string(row.written) + "\nok,398178.3970,5817709.5269\n";
    errors += "orv: line " + std::to_string(++number) + ": " + row.reason + "\n";
    ++number;
  }
  const Result r = ConvertToUtm(input, {"--columns", "2,3", "--header", "no"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, output);
  EXPECT_EQ(r.err, errors);
}

TEST(OrvConvert, APointWithoutAPlaceIsAnEmptyPairAndNeverAHugeNumber) {
  // Mercator has no poles.
  const std::string mercator = "method=Mercator,datum=WGS84";
  const Result commas = RunOrv({"convert", "--from", kGeographic, "--to", mercator}, "1,90,a\n0,0,b\n");
  EXPECT_EQ(commas.status, 1);
  EXPECT_EQ(commas.out, ",,a\n0.0000,0.0000,b\n");
  EXPECT_EQ(commas.err, "orv: line 1: the point has no place in the target system\n");
  // Between blanks an empty field is written as one, so that the others keep their places.
  EXPECT_EQ(RunOrv({"convert", "--from", kGeographic, "--to", mercator}, "1 90 a\nx 2 b\n").out,
            "\"\" \"\" a\n\"\" \"\" b\n");
}

TEST(OrvConvert, LinesKeepTheirOrderAndNumbersAcrossBlocks) {
  // Some 4 MB: several blocks, with a bad line now and then.
  std::string input, errors;
  constexpr int kLines = 200000;
  for (int i = 1; i <= kLines; ++i) {
    const bool bad = i % 50000 == 7;
    input += std::to_string(i) + (bad ? ",13.5,x\n" : ",13.5,52.5\n");
    if (bad) {
      errors +=
          "orv: line " + std::to_string(i) + ": 'x' is neither a number nor degrees, minutes and seconds\n";
    }
  }
  const Result r = ConvertToUtm(input, {"--columns", "2,3"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, errors);
  const std::vector<std::string> lines = Lines(r.out);
  ASSERT_EQ(lines.size(), static_cast<size_t>(kLines));
  int wrong = 0;
  for (int i = 1; i <= kLines; ++i) {
    const std::string expected = std::to_string(i) + (i % 50000 == 7 ? ",," : ",398178.3970,5817709.5269");
    if (lines[static_cast<size_t>(i) - 1] != expected) ++wrong;
  }
  EXPECT_EQ(wrong, 0);
}

TEST(OrvConvert, EmptyInputGivesEmptyOutput) {
  EXPECT_EQ(ConvertToUtm("").out, "");
  EXPECT_EQ(ConvertToUtm("").status, 0);
  EXPECT_EQ(ConvertToUtm("\n\n").out, "\n\n");
  EXPECT_EQ(ConvertToUtm("", {"--binary"}).out, "");
}

TEST(OrvConvert, AByteOrderMarkIsNoPartOfTheFirstField) {
  EXPECT_EQ(ConvertToUtm("\xEF\xBB\xBFlon,lat\n13.5,52.5\n", {"--columns", "lon,lat"}).out,
            "\xEF\xBB\xBFlon,lat\n398178.3970,5817709.5269\n");
  EXPECT_EQ(ConvertToUtm("\xEF\xBB\xBF"
                         "13.5,52.5\n")
                .out,
            "398178.3970,5817709.5269\n");
}

TEST(OrvConvert, ColumnsThatAreNotThereAreSaid) {
  const struct {
    const char* columns;
    const char* error;
  } rows[] = {{"lon,height", "orv: --columns: the header has no column 'height' (it has: id, lon, lat)\n"},
              {"lon", "orv: --columns: 'lon' is not two columns with a comma between\n"},
              {"1,2,3", "orv: --columns: '1,2,3' is not two columns with a comma between\n"},
              {"lon,", "orv: --columns: '' names no column; they are counted from 1\n"},
              {"0,1", "orv: --columns: '0' names no column; they are counted from 1\n"},
              {"2,lon", "orv: --columns: both coordinates in one column\n"},
              {"2,2", "orv: --columns: both coordinates in one column\n"}};
  for (const auto& row : rows) {
    const Result r = ConvertToUtm("id,lon,lat\n1,2,3\n", {"--columns", row.columns});
    EXPECT_EQ(r.status, 2) << row.columns;
    EXPECT_EQ(r.err, row.error);
  }
  EXPECT_EQ(ConvertToUtm("1,2\n", {"--columns", "lon,lat", "--header", "no"}).err,
            "orv: --columns: names need a header\n");
}

TEST(OrvConvert, TheLocaleOfTheHostChangesNothing) {
  const std::string input = "1.5 2.25\n";
  const Result plain = ConvertToUtm(input);
  const Result german = RunOrv({"convert", "--from", kGeographic, "--to", kUtm33}, input,
                               {"LC_ALL=de_DE.UTF-8", "LANG=de_DE.UTF-8"});
  EXPECT_EQ(german.status, 0);
  EXPECT_EQ(german.out, plain.out);
  EXPECT_NE(plain.out.find('.'), std::string::npos);
}

TEST(OrvConvert, StatsCountPointsAndLosses) {
  const Result r = ConvertToUtm("lon,lat\n13.5,52.5\n\nx,1\n", {"--stats"});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("orv: 2 points, 1 without a result; "), std::string::npos) << r.err;
}

// ---- binary points

TEST(OrvConvert, ReadsAndWritesBinaryPairs) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Result r = ConvertToUtm(Binary({13.5, 52.5, nan, 1.0, 13.5, 91.0, 15.0, 0.0}), {"--binary"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err,
            "orv: point 2: the point has no place in the target system\n"
            "orv: point 3: latitude 91 is beyond 90 degrees\n");
  const std::vector<double> values = Doubles(r.out);
  ASSERT_EQ(values.size(), 8U);
  EXPECT_NEAR(values[0], 398178.3970, 1e-3);
  EXPECT_NEAR(values[1], 5817709.5264, 1e-3);
  for (size_t i = 2; i < 6; ++i) EXPECT_TRUE(std::isnan(values[i])) << i;
  EXPECT_NEAR(values[6], 500000.0, 1e-6);  // on the central meridian and the equator
  EXPECT_NEAR(values[7], 0.0, 1e-6);
}

TEST(OrvConvert, BinaryDataThatEndsWithinAPointIsSaidBehindTheWholePoints) {
  const Result r = ConvertToUtm(Binary({15.0, 0.0}) + "abc", {"--binary"});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "orv: the data ends with 3 bytes of a point that has 16\n");
  EXPECT_EQ(r.out.size(), 16U);
  EXPECT_EQ(ConvertToUtm("a", {"--binary"}).err, "orv: the data ends with 1 byte of a point that has 16\n");
}

// ---- definitions

TEST(OrvDef, ShowsParametersThatReadBackAsTheSameSystem) {
  const std::string definitions[] = {
      kUtm33 + ",bSouth=true", "datum=OSGB36",
      "name=\"A, \"\"b\"\"\",token=T,comment=c,method=Hotine,Lat0=4,Lon1=115,Lat1=2,Lon2=117,Lat2=6.5,K0=0.99984,"
      "bUseAlpha=true,Alpha=53.25,bRotate=1,bUOffset=true,xOrg=590476.87,yOrg=442857.65,Scale=0.5,a=6377298.556,"
      "rf=300.8017,datum.method=Mol,datum.target=WGS84,datum.dx=-679,datum.dy=669,datum.dz=-48,datum.PMShift=1e-7",
      "ellipsoid=WGS84,method=Miller,Lon0=-90.5,datum.method=MRE,datum.target=WGS84,datum.Equation=ED50"};
  for (const std::string& definition : definitions) {
    const Result encoded = RunOrv({"def", definition, "--encoded"});
    EXPECT_EQ(encoded.status, 0) << encoded.err;
    EXPECT_EQ(encoded.out.substr(0, 14), "<{6,ORVDef[1]>") << definition;
    const Result text = RunOrv({"def", definition});
    EXPECT_EQ(RunOrv({"def", definition, "--text"}).out, text.out);
    const ScratchFile textFile(text.out), encodedFile(encoded.out);
    EXPECT_EQ(RunOrv({"def", textFile.Path(), "--encoded"}).out, encoded.out) << text.out;
    EXPECT_EQ(RunOrv({"def", encodedFile.Path()}).out, text.out);
    EXPECT_EQ(RunOrv({"def", encoded.out, "--encoded"}).out, encoded.out);
  }
}

TEST(OrvDef, ShowsLocalSystemsAndDumps) {
  const std::string local = "<{6,UCSDef[1]>\r\n<f5,Scale[1]=2.5>\r\n<f4,XOrg[1]=-10>\r\n<}6,UCSDef[1]>\r\n";
  EXPECT_EQ(RunOrv({"def", local}).out, "local.scale=2.5\nlocal.xOrg=-10\nlocal.yOrg=0\n");
  const Result dump = RunOrv({"def", kUtm33, "--dump"});
  EXPECT_EQ(dump.status, 0);
  EXPECT_NE(dump.out.find("Method:  'Universal Transverse Mercator (UTM)' (26)"), std::string::npos)
      << dump.out;
}

TEST(OrvDef, NamesAreUnderstoodInManyForms) {
  const std::string encoded = RunOrv({"def", "method=Mercator,ellipsoid=Bessel1841", "--encoded"}).out;
  EXPECT_EQ(RunOrv({"def", "METHOD=merc, Ellipsoid = bessel 1841 ,", "--encoded"}).out, encoded);
  EXPECT_EQ(RunOrv({"def", "ellipsoid=EPSG:7004,,method=MERCATOR", "--encoded"}).out, encoded);
  EXPECT_EQ(RunOrv({"def", "datum=Deutsches Hauptdreiecksnetz", "--encoded"}).out,
            RunOrv({"def", "method=geographic,datum=epsg:6314", "--encoded"}).out);
  EXPECT_EQ(RunOrv({"def", "method=Merc,datum=WGS84,Lon0=9d30mW", "--encoded"}).out,
            RunOrv({"def", "method=Merc,datum=WGS84,Lon0=-9.5", "--encoded"}).out);
}

TEST(OrvDef, EachMistakeHasItsMessage) {
  const struct {
    const char* definition;
    const char* error;
  } rows[] = {
      {"", "the definition is empty"},
      {"Lon0=9,K0", "'K0' is not of the form key=value"},
      {"=9", "a key is missing in front of '='"},
      {"Lon0=9,lon0=8", "'lon0' is given twice"},
      {"name=\"x", "the quoted value of 'name' is not closed"},
      {"name=\"x\"y", "there is text behind the quoted value of 'name'"},
      {"zone=33", "unknown key 'zone'"},
      {"method=Globular", "unknown projection method 'Globular'"},
      {"method=Unknown", "unknown projection method 'Unknown'"},
      {"method=Merc,datum=WGS84,Lat1=3", "Lat1: the projection method 'Mercator' has no such parameter"},
      {"method=UTM,datum=WGS84,xOrg=3",
       "xOrg: the projection method 'Universal Transverse Mercator (UTM)' has no such parameter"},
      {"datum=WGS84,Lon0=3", "Lon0: the projection method 'Unprojected Lat/Long' has no such parameter"},
      {"method=Merc,datum=WGS84,Lon0=east", "Lon0: 'east' is neither a number nor an angle such as 9d30mE"},
      {"method=Merc,datum=WGS84,xOrg=1,5", "'5' is not of the form key=value"},
      {"method=Merc,datum=WGS84,xOrg=1d5", "xOrg: '1d5' is not a number"},
      {"method=UTM,datum=WGS84,bSouth=maybe", "bSouth: 'maybe' is neither true nor false"},
      {"method=Merc,datum=WGS84,Lat0=91", "Lat0 (central latitude) parameter out of range."},
      {"method=Merc", "no ellipsoid: give ellipsoid, or a with f or rf, or a datum that has one"},
      {"ellipsoid=WGS84,f=0", "ellipsoid and f are both given"},
      {"datum.method=None,datum.target=WGS84,datum.ellipsoid=WGS84,datum.a=0",
       "datum.ellipsoid and datum.a are both given"},
      {"f=0", "f is given without a"},
      {"rf=300", "rf is given without a"},
      {"a=1", "a is given without f or rf"},
      {"a=1,f=0,rf=300", "f and rf are both given"},
      {"a=1,rf=0", "rf: must be above 1 (a sphere has f=0)"},
      {"a=-1,f=0", "a=-1: Ellipsoid radius must be greater than zero."},
      {"a=1,f=1", "Ellipsoid flattening must be less than one."},
      {"datum=WGS84,datum.dx=3", "datum and datum.dx are both given"},
      {"datum.dx=3", "datum.method is missing"},
      {"datum.method=Mol", "datum.target is missing"},
      {"datum.method=Teleport", "datum.method: unknown datum method 'Teleport'"},
      {"datum.method=Mol,datum.target=WGS84",
       "the datum has no ellipsoid: give datum.ellipsoid or ellipsoid"},
      {"datum.method=NTV2,datum.target=NAD83,datum.ellipsoid=WGS84",
       "the datum method 'NTV2' has no ellipsoid"},
      {"datum.method=Mol,datum.target=Moon,ellipsoid=WGS84", "datum.target: unknown target 'Moon'"},
      {"datum.method=MRE,datum.target=WGS84,datum.Equation=Moon", "datum.Equation: unknown region 'Moon'"},
      {"datum.method=Mol,datum.target=WGS84,ellipsoid=WGS84,datum.rx=1",
       "datum.rx: the datum method 'Molodensky' has no such parameter"},
      {"datum.method=Mol,datum.target=WGS84,ellipsoid=WGS84,datum.colour=1", "unknown key 'datum.colour'"},
      {"datum.method=Mol,datum.target=WGS84,ellipsoid=WGS84,datum.dx=1e39",
       "datum: Invalid X displacement parameter."},
      {"datum.method=NADCON,datum.target=NAD83,datum.NadconPrvi=2",
       "datum.NadconPrvi: '2' is neither true nor false"},
      {"<{3,abc[1]>", "not a definition: Corrupt coordinate system data.  Expected ORVDef or UCSDef block."},
      {"<{6,UCSDef[1]>\n<f5,Scale[1]=-1>\n<}6,UCSDef[1]>",
       "the definition is not valid: Scale must not be negative."}};
  for (const auto& row : rows) {
    const Result r = RunOrv({"def", row.definition});
    EXPECT_EQ(r.status, 2) << row.definition;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, std::string("orv: ") + row.error + "\n") << row.definition;
  }
  const ScratchFile noDefinition("hello\n"), wrong("method=Merc\nLon0=9\n");
  EXPECT_EQ(RunOrv({"def", noDefinition.Path()}).err,
            "orv: " + noDefinition.Path() +
                ": not a definition: neither encoded text, well-known text, a PROJ string nor parameters\n");
  EXPECT_EQ(RunOrv({"def", wrong.Path()}).err,
            "orv: " + wrong.Path() +
                ": no ellipsoid: give ellipsoid, or a with f or rf, or a datum that has one\n");
  EXPECT_EQ(RunOrv({"convert", "--from", "zone=33", "--to", kUtm33}).err,
            "orv: --from: unknown key 'zone'\n");
}

TEST(OrvDef, WhatIsNotKnownIsSaidWithTheNearestNames) {
  const struct {
    const char* definition;
    const char* begins;
    const char* holds;
  } rows[] = {
      {"ellipsoid=Bessel1842", "orv: unknown ellipsoid 'Bessel1842'; nearest: EPSG:7004 (Bessel 1841)", ""},
      {"datum=Pulkovo 1948", "orv: unknown datum 'Pulkovo 1948'; nearest: ", "Pulkovo 1942"},
      {"EPSG:99999", "orv: unknown system 'EPSG:99999'; nearest: ", "; and there is no such file"},
      {"WGS 84 / UTM zone 33", "orv: unknown system 'WGS 84 / UTM zone 33'; nearest: ", "EPSG:32633"},
      {"/no/such/file", "orv: unknown system '/no/such/file'", "; and there is no such file"}};
  for (const auto& row : rows) {
    const Result r = RunOrv({"def", row.definition});
    EXPECT_EQ(r.status, 2) << row.definition;
    EXPECT_EQ(r.err.find(row.begins), 0u) << r.err;
    EXPECT_NE(r.err.find(row.holds), std::string::npos) << r.err;
    EXPECT_EQ(Lines(r.err).size(), 1u);
  }
}

TEST(OrvDef, SystemsThatCannotBeConnectedAreSaid) {
  const Result r = RunOrv({"convert", "--from", "ellipsoid=WGS84", "--to", kUtm33});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(
      r.err,
      "orv: source system: it has no datum, and the target's is 'World Geodetic System 1984' (EPSG:6326); give it its "
      "datum, or take the datum off the target when both lie on the same one\n");
}

// ---- angles

TEST(OrvLatLon, ReadsAndWritesAngles) {
  EXPECT_EQ(RunOrv({"latlon", "10d30m36sS", "10d30", "10.5", "-7.25",
                    "52\xC2\xB0"
                    "30'N"})
                .out,
            "-10.510000000\n10.500000000\n10.500000000\n-7.250000000\n52.500000000\n");
  EXPECT_EQ(RunOrv({"latlon", "--dms", "--letter", "lon", "-12.5"}).out, "12d30m0.00sW\n");
  EXPECT_EQ(RunOrv({"latlon", "--dm", "--letter", "lat", "--spaced", "--decimals", "1", "45.25"}).out,
            "45d 15.0m N\n");
  EXPECT_EQ(RunOrv({"latlon", "--flags", "0x3301", "45.25"}).out, "45d 15.0m N\n");
  EXPECT_EQ(RunOrv({"latlon", "--decimals", "3", "-0.1234"}).out, "-0.123\n");
  EXPECT_EQ(RunOrv({"latlon", "--flags", "0x13", "-0.1234"}).out, "0.123\n");
  EXPECT_EQ(RunOrv({"latlon", "--dms", "59.9999999"}).out, "59d59m60.00s\n");
  EXPECT_EQ(RunOrv({"latlon", "--dms", "--padded", "--positive", "plus", "5.0625"}).out, "+5d03m45.00s\n");
  EXPECT_EQ(RunOrv({"latlon", "--dm", "--positive", "blank", "-p", "2", "5.5"}).out, " 5d30.00m\n");
  EXPECT_EQ(RunOrv({"latlon", "--dms", "--degree", "*", "--minute", "'", "--second", "\"", "5*30'"}).out,
            "5*30'0.00\"\n");
  EXPECT_EQ(RunOrv({"latlon", "--", "-.5"}).out, "-0.500000000\n");
}

TEST(OrvLatLon, WhatIsNoAngleIsReportedAndAnEmptyLine) {
  const Result r = RunOrv({"latlon", "10 30", "5", "N"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "\n5.000000000\n\n");
  EXPECT_EQ(r.err, "orv: '10 30' is not an angle\norv: 'N' is not an angle\n");
}

TEST(OrvLatLon, FlagsThatExcludeEachOtherAreRefused) {
  EXPECT_EQ(RunOrv({"latlon", "--flags", "0xC0", "5"}).err,
            "orv: the flags 0x40 (plus) and 0x80 (blank) exclude each other\n");
  EXPECT_EQ(RunOrv({"latlon", "--flags", "x", "5"}).err,
            "orv: --flags: 'x' is not a number such as 0x1102\n");
  EXPECT_EQ(RunOrv({"latlon", "--degree", "dd", "5"}).err, "orv: --degree: 'dd' is not one character\n");
  EXPECT_EQ(RunOrv({"latlon", "--flags", "1", "--dms", "5"}).status, 2);
}
