// orv convert on GeoJSON.  13.5, 52.5 is 398178.40, 5817709.53 in UTM zone 33: proj +proj=utm +zone=33 +ellps=WGS84.
// On a sphere of 180/pi the equator of Mercator is measured in degrees, so that clipping there is exact arithmetic.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/RunOrv.h"

namespace {

using orv::test::Content;
using orv::test::Result;
using orv::test::RunOrv;
using orv::test::ScratchFile;

const char* const kDegrees = "EPSG:4326";
const char* const kUtm33 = "EPSG:32633";
const char* const kMercator = "EPSG:3395";
const char* const kSphere = "method=geographic,a=57.29577951308232,f=0";
const char* const kMercatorOfDegrees = "method=Merc,a=57.29577951308232,f=0";
const std::string kPoint = "[13.5,52.5]", kPlace = "[398178.40,5817709.53]";

Result Convert(const std::string& input, const char* from, const char* to,
               std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"convert", "--format", "geojson", "--from", from, "--to", to};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return RunOrv(arguments, input);
}

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

TEST(OrvConvertGeoJson, KeepsAllButTheGeometriesByteForByte) {
  const std::string input =
      R"({ "type" : "FeatureCollection",  "bbox": [13,52,14,53], "name":"a \"b\" \u00e4",
 "features" : [ {"type":"Feature", "id": 1.50e2, "properties": { "coordinates":[13.5,52.5], "big":12345678901234567890,
   "geometry":{"type":"Point","coordinates":[13.5,52.5]} , "x":"}]" } , "geometry" :{"type":"Point","coordinates":[13.5,52.5]} },
  {"geometry":null,"type":"Feature","properties":null, "crs":{}} ,
  {"crs":1,"type":"Feature","geometry":{"type":"Point","coordinates":[13.5,52.5]},"properties":{}}
 ] , "last" : []}
)";
  std::string expected = Replaced(input, R"("geometry" :{"type":"Point","coordinates":[13.5,52.5]})",
                                  R"("geometry" :{"type":"Point","coordinates":)" + kPlace + "}");
  expected = Replaced(expected, R"("Feature","geometry":{"type":"Point","coordinates":[13.5,52.5]})",
                      R"("Feature","geometry":{"type":"Point","coordinates":)" + kPlace + "}");
  expected = Replaced(expected, R"(,  "bbox": [13,52,14,53])", "");
  expected = Replaced(expected, R"(, "crs":{})", "");
  expected = Replaced(expected, R"("crs":1,)", "");
  const Result result = Convert(input, kDegrees, kUtm33, {"-p", "2"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, expected);
}

TEST(OrvConvertGeoJson, ConvertsEveryKindOfGeometry) {
  const char* const kKinds[] = {
      R"({"type":"Point","coordinates":@})",
      R"({"type":"MultiPoint","coordinates":[@,@]})",
      R"({"type":"LineString","coordinates":[@,@]})",
      R"({"type":"MultiLineString","coordinates":[[@,@],[@,@,@]]})",
      R"({"type":"Polygon","coordinates":[[@,@,@,@],[@,@,@,@]]})",
      R"({"type":"MultiPolygon","coordinates":[[[@,@,@,@]],[[@,@,@,@]]]})",
      R"({"type":"GeometryCollection","geometries":[{"type":"Point","coordinates":@},{"type":"LineString","coordinates":[@,@]}]})",
  };
  for (const char* const kind : kKinds) {
    const Result result = Convert(Replaced(kind, "@", kPoint), kDegrees, kUtm33, {"-p", "2", "--no-clip"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, Replaced(kind, "@", kPlace));
  }
}

TEST(OrvConvertGeoJson, HeightsStayWhereNothingIsClipped) {
  const std::string line =
      R"({"type":"LineString","coordinates":[[13.5,52.5,100.25],[13.5,52.5,7,1]],"measure":"m"})";
  EXPECT_EQ(
      Convert(line, kDegrees, kUtm33, {"-p", "2", "--no-clip"}).out,
      R"({"type":"LineString","coordinates":[[398178.40,5817709.53,100.25],[398178.40,5817709.53,7,1]],"measure":"m"})");
  EXPECT_EQ(Convert(R"({"type":"Point","coordinates":[13.5,52.5,3]})", kDegrees, kUtm33, {"-p", "2"}).out,
            R"({"type":"Point","coordinates":[398178.40,5817709.53,3]})");
}

TEST(OrvConvertGeoJson, ClipsToWhatTheTargetShowsUnlessToldNotTo) {
  const std::string polygon =
      R"({"type":"Polygon","coordinates":[[[170,-1],[190,-1],[190,1],[170,1],[170,-1]]]})";
  const Result clipped = Convert(polygon, kSphere, kMercatorOfDegrees, {"-p", "1"});
  EXPECT_EQ(clipped.status, 0) << clipped.err;
  EXPECT_EQ(clipped.err, "orv: 0 lines and polygons whole, 1 clipped, 1 of them split, 0 dropped\n");
  EXPECT_EQ(clipped.out.find(R"({"type":"MultiPolygon","coordinates":[[[[170.0,-1.0],[180.0,-1.0],)"), 0u)
      << clipped.out;
  EXPECT_NE(clipped.out.find("[-170.0,-1.0]"), std::string::npos);
  const Result plain = Convert(polygon, kSphere, kMercatorOfDegrees, {"-p", "1", "--no-clip"});
  EXPECT_EQ(plain.err, "");
  EXPECT_EQ(plain.out.find(R"({"type":"Polygon","coordinates":[[[170.0,-1.0],[190.0,-1.0],)"), 0u)
      << plain.out;
  // A geographic target shows all.
  EXPECT_EQ(Convert(polygon, kSphere, kSphere, {"-p", "0"}).err, "");
}

TEST(OrvConvertGeoJson, PositionsWithoutAPlaceAreLeftOutAndTold) {
  // Mercator has no poles.
  const std::string input =
      R"({"type":"FeatureCollection","features":[)"
      R"({"type":"Feature","properties":{},"geometry":{"type":"Point","coordinates":[0,90]}},)"
      R"({"type":"Feature","properties":{},"geometry":{"type":"MultiPoint","coordinates":[[0,90],[0,0],[0,-90]]}},)"
      R"({"type":"Feature","properties":{},"geometry":{"type":"LineString","coordinates":[[0,0],[0,90]]}},)"
      R"({"type":"Feature","properties":{},"geometry":{"type":"Polygon","coordinates":)"
      R"([[[0,90],[0,0],[0,0],[0,0],[0,90]],[[0,90],[0,90],[0,0],[0,90]]]}}]})";
  const ScratchFile report;
  const Result result =
      Convert(input, kDegrees, kMercator, {"-p", "0", "--no-clip", "--report", report.Path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(
      result.err,
      "orv: feature 1: 1 position has no place in the target system and is left out\n"
      "orv: feature 2: 2 positions have no place in the target system and are left out\n"
      "orv: feature 3: 1 position has no place in the target system and is left out, and 1 more with the lines or rings "
      "that are left too short\n"
      "orv: feature 4: 5 positions have no place in the target system and are left out, and 1 more with the lines or rings "
      "that are left too short\n"
      "orv: most lost points would have a place with their coordinates exchanged: GeoJSON has longitude or easting "
      "first\n");
  EXPECT_EQ(
      result.out,
      R"({"type":"FeatureCollection","features":[)"
      R"({"type":"Feature","properties":{},"geometry":null},)"
      R"({"type":"Feature","properties":{},"geometry":{"type":"MultiPoint","coordinates":[[0,0]]}},)"
      R"({"type":"Feature","properties":{},"geometry":null},)"
      R"({"type":"Feature","properties":{},"geometry":{"type":"Polygon","coordinates":[[[0,0],[0,0],[0,0],[0,0]]]}}]})");
  const nlohmann::json json = nlohmann::json::parse(Content(report.Path()));
  EXPECT_EQ(json["points"], 15);
  EXPECT_EQ(json["lost"], 9);
  EXPECT_EQ(json["unplaced"][0]["first"]["point"], 1);
}

TEST(OrvConvertGeoJson, WhatIsNotCutKeepsAllThatItHolds) {
  // Clipping is on: numbers behind x and y and other members stay as they are written.
  const std::string line =
      R"({"type":"LineString","coordinates":[[13.5,52.5,100.10],[13.5,52.5,7e0,123456789012345678901]],"measure":"m\u00e4"})";
  EXPECT_EQ(
      Convert(line, kDegrees, kUtm33, {"-p", "2"}).out,
      R"({"type":"LineString","coordinates":[[398178.40,5817709.53,100.10],[398178.40,5817709.53,7e0,123456789012345678901]],)"
      R"("measure":"m\u00e4"})");
  // An empty geometry stays one, clipped or not.
  for (const bool bClip : {true, false}) {
    std::vector<std::string> options = {"-p", "2"};
    if (!bClip) options.emplace_back("--no-clip");
    for (const char* const empty :
         {R"({"type":"LineString","coordinates":[]})", R"({"type":"MultiPolygon","coordinates":[]})",
          R"({"type":"GeometryCollection","geometries":[]})"}) {
      EXPECT_EQ(Convert(empty, kDegrees, kUtm33, options).out, empty);
    }
  }
}

TEST(OrvConvertGeoJson, WhatIsCutLosesItsHeightsAndSaysSo) {
  const std::string line = R"({"type":"LineString","coordinates":[[170,1,5.5],[190,1,6.5]],"id":"x"})";
  const Result cut = Convert(line, kSphere, kMercatorOfDegrees, {"-p", "0"});
  EXPECT_EQ(cut.status, 0);
  EXPECT_EQ(cut.out,
            R"({"type":"MultiLineString","coordinates":[[[170,1],[180,1]],[[-180,1],[-170,1]]],"id":"x"})");
  EXPECT_EQ(
      cut.err,
      "orv: feature 1: it was cut, and the heights of its positions are left out; --no-clip keeps them\n"
      "orv: 0 lines and polygons whole, 1 clipped, 1 of them split, 0 dropped\n");
}

TEST(OrvConvertGeoJson, TheReportTellsWhatWasCutOff) {
  // Of a globe seen from 0, 0 the far side is cut off; a latitude beyond the pole is lost all the same.
  const char* const kGlobe = "method=Ortho,Lon0=0,Lat0=0,a=6371000,f=0";
  const std::string input =
      R"({"type":"FeatureCollection","features":[)"
      R"({"type":"Feature","geometry":{"type":"LineString","coordinates":[[0,0],[10,0],[170,0]]}},)"
      R"({"type":"Feature","geometry":{"type":"Polygon","coordinates":[[[170,0],[175,0],[175,5],[170,0]]]}},)"
      R"({"type":"Feature","geometry":{"type":"LineString","coordinates":[[0,0],[10,0],[10,95]]}}]})";
  const ScratchFile report;
  const Result result =
      Convert(input, "method=geographic,a=6371000,f=0", kGlobe, {"-p", "0", "--report", report.Path()});
  EXPECT_EQ(result.status, 1);
  const nlohmann::json json = nlohmann::json::parse(Content(report.Path()));
  EXPECT_EQ(json["points"], 10);
  EXPECT_EQ(json["placed"], 4);
  EXPECT_EQ(json["cutOff"], 5);
  EXPECT_EQ(json["lost"], 1);
  EXPECT_EQ(json["unplaced"].size(), 1u);
  EXPECT_EQ(json["unplaced"][0]["event"], "latitude");

  // A position without a place cuts nothing off: the others keep their heights.
  const Result lost = Convert(R"({"type":"LineString","coordinates":[[0,0,1],[10,0,2.50],[10,95,3]]})",
                              "method=geographic,a=6371000,f=0", kGlobe, {"-p", "0"});
  EXPECT_EQ(lost.status, 1);
  EXPECT_EQ(lost.out,
            R"({"type":"LineString","coordinates":[[0,0,1],[1106313,0,2.50]]})");  // 6371000 sin 10 degrees

  // Far from the meridian of a series: noted though nothing is cut.
  Convert(R"({"type":"LineString","coordinates":[[35,50],[36,50]]})", kDegrees, kUtm33,
          {"--report", report.Path()});
  EXPECT_EQ(nlohmann::json::parse(Content(report.Path()))["doubtful"], 2);
}

TEST(OrvConvertGeoJson, DeepNestingIsRefusedAndAByteOrderMarkSkipped) {
  const auto nested = [](int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) text += R"({"type":"GeometryCollection","geometries":[)";
    text += R"({"type":"Point","coordinates":[13.5,52.5]})";
    for (int i = 0; i < levels; ++i) text += "]}";
    return text;
  };
  EXPECT_EQ(Convert(nested(90), kDegrees, kUtm33).status, 0);  // two levels each
  for (const std::string& text :
       {nested(101), nested(200000), R"({"type":"Point","x":)" + std::string(1000000, '[')}) {
    const Result result = Convert(text, kDegrees, kUtm33);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "orv: '-': nested deeper than 200 levels\n");
  }
  EXPECT_EQ(Convert("\xEF\xBB\xBF"
                    R"({"type":"Point","coordinates":[13.5,52.5]})",
                    kDegrees, kUtm33, {"-p", "2"})
                .out,
            R"({"type":"Point","coordinates":)" + kPlace + "}");
}

TEST(OrvConvertGeoJson, GoesByTheNameOfTheFile) {
  const ScratchFile file;
  const std::string path = file.Path() + ".geojson";
  std::ofstream(path) << R"({"type":"Point","coordinates":[13.5,52.5]})";
  EXPECT_EQ(RunOrv({"convert", "--from", kDegrees, "--to", kUtm33, "-p", "2", path}).out,
            R"({"type":"Point","coordinates":)" + kPlace + "}");
  EXPECT_EQ(RunOrv({"convert", "--from", kDegrees, "--to", kUtm33, "--format", "text", path}).err,
            "orv: '" + path + "' is JSON, not lines of points: give --format geojson when it is GeoJSON\n");
  std::remove(path.c_str());
}

TEST(OrvConvertGeoJson, SaysWhatIsWrong) {
  const struct {
    const char *text, *message;
  } kRows[] = {
      {"{\"type\":", "orv: '-': no JSON at byte 9\n"},
      {R"({"type":"Point","x":1e400,"coordinates":[1,2]})", "orv: '-': a number beyond 1.8e308 at byte 25\n"},
      {"[1]", "it holds something without a type, which GeoJSON objects have"},
      {"{\"type\":1}", "it holds something without a type, which GeoJSON objects have"},
      {R"({"type":"Feature"})", "a feature has no geometry"},
      {R"({"type":"FeatureCollection"})", "features are missing"},
      {R"({"type":"Feature","geometry":{}})",
       "it holds something without a type, which GeoJSON objects have"},
      {R"({"type":"Circle"})", "'Circle' is no type of GeoJSON"},
      {R"({"type":"LineString"})", "coordinates are missing"},
      {R"({"type":"GeometryCollection"})", "geometries are missing"},
      {R"({"type":"Point","coordinates":[1]})", "a position is not a list of two numbers"},
      {R"({"type":"MultiPoint","coordinates":[1,2]})", "a position is not a list of two numbers"},
  };
  for (const auto& row : kRows) {
    const Result result = Convert(row.text, kDegrees, kUtm33);
    EXPECT_EQ(result.status, 2) << row.text;
    EXPECT_NE(result.err.find(row.message), std::string::npos) << row.text << ": " << result.err;
  }
  EXPECT_EQ(Convert("{}", kDegrees, kUtm33, {"--lat-first"}).err,
            "orv: --lat-first: positions of GeoJSON are longitude, latitude\n");
}

}  // namespace
