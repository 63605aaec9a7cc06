// What people do wrong with orv convert: each mistake has a message that says what to do.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/RunOrv.h"

namespace {

using orv::test::Result;
using orv::test::RunOrv;

const char* const kDegrees = "EPSG:4326";
const char* const kUtm33 = "EPSG:32633";
using namespace std::string_literals;

struct Mistake {
  const char* what;
  const char* from;
  const char* to;
  std::vector<std::string> more;
  std::string input;
  int status;
  const char* says;
};

const std::vector<Mistake> kMistakes = {
    {"latitude first, beyond 90",
     kDegrees,
     kUtm33,
     {},
     "35.6,139.7\n34.7,135.5\n",
     1,
     "orv: most lost points would have a place with their coordinates exchanged: they seem to be latitude, longitude; "
     "give --lat-first\n"},
    {"latitude first, in Europe",
     kDegrees,
     kUtm33,
     {},
     "52.5,13.5\n48.2,16.4\n50.1,14.4\n",
     0,
     "orv: most points would be near the central meridian with their coordinates exchanged: they seem to be latitude, "
     "longitude; give --lat-first\n"},
    {"longitude first with --lat-first",
     kDegrees,
     kUtm33,
     {"--lat-first"},
     "139.7,35.6\n",
     1,
     "they seem to be longitude, latitude; leave --lat-first out\n"},
    {"one line of many",
     kDegrees,
     kUtm33,
     {},
     "13.5,52.5\n52.5,100\n14.5,52.5\n",
     1,
     "orv: most lost points would have a place with their coordinates exchanged: look at those lines\n"},
    {"northing first",
     "method=Mollweide,datum=WGS84",
     kDegrees,
     {},
     "1,17000000\n2,16000000\n",
     1,
     "they seem to be northing, easting; give --columns 2,1\n"},
    {"degrees in a projected system",
     kUtm33,
     kDegrees,
     {},
     "13.5,52.5\n16.4,48.2\n",
     0,
     "orv: all points look like degrees, but the system of --from is projected; give the system that the degrees are in, "
     "such as --from EPSG:4326\n"},
    {"metres in a geographic system",
     kDegrees,
     kUtm33,
     {},
     "398178.4,5817709.5\n",
     1,
     "orv: most lost points are far too large for degrees, but the system of --from is geographic; give the projected "
     "system that they are in\n"},
    {"unknown code", "EPSG:43260", kUtm33, {}, "", 2, "orv: --from: unknown system 'EPSG:43260'; nearest: "},
    {"unknown code, what next",
     "EPSG:43260",
     kUtm33,
     {},
     "",
     2,
     "; orv list systems --search WORDS finds others\n"},
    {"a column that is not there",
     kDegrees,
     kUtm33,
     {"--columns", "x,y"},
     "id,lon,lat\n1,2,3\n",
     2,
     "orv: --columns: the header has no column 'x' (it has: id, lon, lat)\n"},
    {"a column number too large",
     kDegrees,
     kUtm33,
     {"--columns", "5,6"},
     "1,2,3\n4,5,6\n",
     1,
     "orv: most lines have too few fields: --columns X,Y tells which hold the coordinates, --separator what stands "
     "between fields\n"},
    {"an empty file", kDegrees, kUtm33, {}, "", 0, "orv: no points: standard input is empty\n"},
    {"a header and no points",
     kDegrees,
     kUtm33,
     {},
     "lon,lat\n\n",
     0,
     "orv: no points: standard input has nothing but empty lines or a header\n"},
    {"lines of an old kind",
     kDegrees,
     kUtm33,
     {},
     "lon,lat\r9,50\r10,51\r",
     2,
     "orv: the lines end in carriage returns alone: turn them into line feeds first, as by tr '\\r' '\\n'\n"},
    {"no number in the first line, which is no header",
     kDegrees,
     kUtm33,
     {},
     "nan,NaN\n15,0\n",
     1,
     "orv: line 1: 'nan' is neither a number nor degrees, minutes and seconds\n"},
    {"empty binary data", kDegrees, kUtm33, {"--binary"}, "", 0, "orv: no points: standard input is empty\n"},
    {"binary data",
     kDegrees,
     kUtm33,
     {},
     "13.5 52.5\n1\0\0\0 2\n"s,
     2,
     "orv: standard input is not text (a zero byte in line 2); for pairs of 64-bit numbers give --binary\n"},
    {"compressed text",
     kDegrees,
     kUtm33,
     {},
     "\x1F\x8B\x08\0\n"s,
     2,
     "orv: standard input is compressed (gzip): unpack it first, as in gunzip -c FILE | orv convert ...\n"},
    {"a spreadsheet",
     kDegrees,
     kUtm33,
     {},
     "PK\x03\x04\n"s,
     2,
     "orv: standard input is a zip archive (or a spreadsheet): unpack it, or save the sheet as CSV\n"},
    {"UTF-16",
     kDegrees,
     kUtm33,
     {},
     "\xFF\xFE\x31\0\x2C\0\n\0"s,
     2,
     "orv: standard input is UTF-16 text: make it UTF-8 first, as in iconv -f UTF-16 -t UTF-8 FILE | orv convert ...\n"},
    {"UTF-16, the other way",
     kDegrees,
     kUtm33,
     {},
     "\xFE\xFF\0\x31\n"s,
     2,
     "orv: standard input is UTF-16 text: "},
    {"a shapefile",
     kDegrees,
     kUtm33,
     {},
     "\0\0\x27\x0A\n"s,
     2,
     "orv: standard input is a shapefile: give its name, FILE.shp, and not its content\n"},
    {"a database",
     kDegrees,
     kUtm33,
     {},
     "SQLite format 3\0\n"s,
     2,
     "orv: standard input is a database (GeoPackage?): give its name, FILE.gpkg, or --format GPKG\n"},
    {"a huge line",
     kDegrees,
     kUtm33,
     {},
     "13.5 52.5\n" + std::string((size_t{1} << 24) + 300000, '1'),
     2,
     "orv: the line that begins at byte 10 of standard input is longer than 16 MiB: each point needs a line\n"},
    {"a huge line without text",
     kDegrees,
     kUtm33,
     {},
     std::string((size_t{1} << 24) + 300000, '\0'),
     2,
     "orv: standard input is not text (a zero byte in line 1)"},
    {"a folder", kDegrees, kUtm33, {"/tmp"}, "", 2, "orv: '/tmp' is a folder; give a file of points\n"},
    {"no such file", kDegrees, kUtm33, {"/no/such/file"}, "", 2, "orv: cannot open '/no/such/file': "},
    {"a report that cannot be written",
     kDegrees,
     kUtm33,
     {"--report", "/no/such/report"},
     "13.5 52.5\n",
     2,
     "orv: --report: cannot write '/no/such/report'\n"},
    {"far from the meridian",
     kDegrees,
     kUtm33,
     {},
     "13.5 52.5\n40 10\n",
     0,
     "orv: placed, but doubtful: 1 point, first line 2: the point is more than 10 degrees from the central meridian"},
};

TEST(OrvUserErrors, EachMistakeHasAMessageThatSaysWhatToDo) {
  for (const Mistake& mistake : kMistakes) {
    std::vector<std::string> arguments = {"convert", "--from", mistake.from, "--to", mistake.to};
    arguments.insert(arguments.end(), mistake.more.begin(), mistake.more.end());
    const Result result = RunOrv(arguments, mistake.input);
    EXPECT_EQ(result.status, mistake.status) << mistake.what;
    EXPECT_NE(result.err.find(mistake.says), std::string::npos) << mistake.what << ": " << result.err;
  }
}

TEST(OrvUserErrors, NothingIsGuessedWhenAllIsWell) {
  const struct {
    const char *from, *to, *input;
  } kRows[] = {{kDegrees, kUtm33, "13.5 52.5\n14.5 51.5\n"},
               {kUtm33, kDegrees, "398178.4 5817709.5\n"},
               {kUtm33, kDegrees, "0 0\n"},                                         // could be anything
               {"method=Merc,a=1,f=0", "method=geographic,a=1,f=0", "0.5 0.5\n"}};  // a small sphere
  for (const auto& row : kRows) {
    const Result result = RunOrv({"convert", "--from", row.from, "--to", row.to}, row.input);
    EXPECT_EQ(result.err, "") << row.input;
  }
  // A pole that the projection does not have is no exchange.
  EXPECT_EQ(
      RunOrv({"convert", "--from", kDegrees, "--to", "method=Mercator,datum=WGS84"}, "1 90\n0 0\n3 4\n").err,
      "orv: line 1: the point has no place in the target system\n");
}

}  // namespace
