// orv convert: order of axes, threads, quiet, report.  Coordinates are PROJ 9.1.1's, as in Orv_test.cpp.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/RunOrv.h"

namespace {

using orv::test::Content;
using orv::test::Lines;
using orv::test::Result;
using orv::test::RunOrv;
using orv::test::ScratchFile;

const std::string kGeographic = "datum=WGS84";
const std::string kUtm33 = "method=UTM,Lon0=15,datum=WGS84";
const std::string kX = "398178.3970", kY = "5817709.5269";  // of 13.5, 52.5

Result Convert(const std::string& from, const std::string& to, const std::string& input,
               std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"convert", "--from", from, "--to", to};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return RunOrv(arguments, input);
}

TEST(OrvConvertText, LatFirstConcernsGeographicSystemsOnly) {
  EXPECT_EQ(Convert(kGeographic, kUtm33, "52.5,13.5,a\n", {"--lat-first"}).out, kX + "," + kY + ",a\n");
  EXPECT_EQ(Convert(kUtm33, kGeographic, kX + " " + kY + "\n", {"--lat-first", "-p", "7"}).out,
            "52.5000000 13.5000000\n");
  EXPECT_EQ(Convert(kGeographic, kGeographic, "52.5 13.5\n", {"--lat-first", "-p", "1"}).out, "52.5 13.5\n");
  EXPECT_EQ(Convert(kUtm33, kUtm33, "1 2\n", {"--lat-first", "-p", "0"}).out, "1 2\n");
  // The first of the chosen columns, wherever it stands.
  EXPECT_EQ(Convert(kGeographic, kUtm33, "lon,lat\n13.5,52.5\n", {"--lat-first", "--columns", "lat,lon"}).out,
            "lon,lat\n" + kY + "," + kX + "\n");
  EXPECT_EQ(Convert(kGeographic, kUtm33, "a,13d30m,52d30mN\n", {"--lat-first", "--columns", "3,2"}).out,
            "a," + kY + "," + kX + "\n");
  const Result wrong = Convert(kGeographic, kUtm33, "13d30mE 52d30mN\n", {"--lat-first", "--header", "no"});
  EXPECT_EQ(wrong.err, "orv: line 1: '13d30mE' is a longitude where the latitude should be\n");
}

TEST(OrvConvertText, PlainAndUnusualLinesAreReadAlike) {
  // What is left to the slow way, beside the same values read the fast one.
  const struct {
    const char* line;
    const char* written;
  } kRows[] = {{"13.5,52.5", "X,Y"},
               {" 13.5 , 52.5 ", "X,Y"},
               {"\"13.5\",52.5", "X,Y"},
               {"1.35e1,52.5", "X,Y"},
               {"+13.5,52.5,", "X,Y,"},
               {"13.5,52.5,\"a\"", "X,Y,\"a\""},
               {"13.50000000000000000000000,52.5", "X,Y"},
               {"13.5,52.5,a\"b", "X,Y,a\"b"},
               {"13.5,52.5,\"a,b\",c", "X,Y,\"a,b\",c"},
               {"13.5,00052.5\r", "X,Y\r"}};
  std::string input, output;
  for (const auto& row : kRows) {
    input += std::string(row.line) + "\n";
    std::string written = row.written;
    written.replace(written.find('Y'), 1, kY);
    output += written.replace(written.find('X'), 1, kX) + "\n";
  }
  const Result result = Convert(kGeographic, kUtm33, input);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, output);
  // The same between blanks, tabs and semicolons, with more columns in front.
  EXPECT_EQ(
      Convert(kGeographic, kUtm33, "a  13.5 \t 52.5  \n b 13.5 52.5", {"-c", "2,3", "--separator", "blanks"})
          .out,
      "a  " + kX + " \t " + kY + "  \n b " + kX + " " + kY);
  EXPECT_EQ(Convert(kGeographic, kUtm33, "\t13.5\tb\t52.5\t\n", {"-c", "2,4"}).out,
            "\t" + kX + "\tb\t" + kY + "\t\n");
  EXPECT_EQ(Convert(kGeographic, kUtm33, ";52.5;;13.5\n", {"-c", "4,2"}).out, ";" + kY + ";;" + kX + "\n");
}

TEST(OrvConvertText, AnyNumberOfThreadsWritesTheSame) {
  // Several blocks with bad lines, empty lines and a last line without an end.
  std::string input = "\n\nid,lon,lat\n";
  for (int i = 0; i < 60000; ++i) {
    const std::string lat = i % 997 == 0   ? "x"
                            : i % 499 == 0 ? "91"
                                           : std::to_string(40 + i % 13) + "." + std::to_string(i);
    input +=
        std::to_string(i) + ",1" + std::to_string(i % 7) + ".25," + lat + (i % 1000 == 0 ? "\r\n\n" : "\n");
  }
  input += "last,13.5,52.5";
  const Result one = Convert(kGeographic, kUtm33, input, {"-c", "lon,lat", "--jobs", "1"});
  EXPECT_EQ(one.status, 1);
  EXPECT_EQ(one.out.substr(one.out.rfind('\n') + 1), "last," + kX + "," + kY);
  EXPECT_EQ(Lines(one.err).size(), 61u + 120u + 1u);  // 60000 / 997, 60000 / 499 less those of both, a hint
  for (const char* const jobs : {"2", "5"}) {
    const Result many = Convert(kGeographic, kUtm33, input, {"-c", "lon,lat", "--jobs", jobs});
    EXPECT_EQ(many.status, 1);
    EXPECT_TRUE(many.out == one.out) << jobs;
    EXPECT_TRUE(many.err == one.err) << jobs;
  }
}

TEST(OrvConvertText, QuietLeavesTheMessagesOutButNotTheStatus) {
  for (const char* const quiet : {"--quiet", "-q"}) {
    const Result result = Convert(kGeographic, kUtm33, "13.5 52.5\nx 1\n", {quiet});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, kX + " " + kY + "\n\"\" \"\"\n");
    EXPECT_EQ(result.err, "");
  }
  EXPECT_NE(Convert(kGeographic, "nothing", "", {"--quiet"}).err, "") << "failures are told";
  EXPECT_EQ(RunOrv({"--quiet", "convert", "-f", kGeographic, "-t", kUtm33}, "x 1\n2 2\n").err, "");
}

TEST(OrvConvertText, GradsAndRadiansAreAnglesToo) {
  // EPSG:4807 counts grads from Paris, 2.33722917 degrees east of Greenwich; EPSG:4275 is the same datum in degrees.
  const Result grads = Convert("EPSG:4275", "ORV:4807", "2.33722917,49.5\n3.23722917,-45\n");
  EXPECT_EQ(grads.err, "");
  EXPECT_EQ(grads.out, "0.000000000,55.000000000\n1.000000000,-50.000000000\n");
  EXPECT_EQ(Convert("ORV:4807", "EPSG:4275", "55,1\n", {"--lat-first"}).out, "49.500000000,3.237229170\n");
  const Result beyond = Convert("ORV:4807", "EPSG:4275", "0,99.5\n0,100.5\n9d30m,1\n1,1\n2,2\n");
  EXPECT_EQ(beyond.status, 1);
  EXPECT_EQ(beyond.err,
            "orv: line 2: latitude 100.5 is beyond 90 degrees\n"
            "orv: line 3: '9d30m' is not a number\n");
}

}  // namespace
