// orv check on small files of its own.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/RunOrv.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::test::Result;
using orv::test::RunOrv;
using orv::test::TempFolder;

constexpr const char* kEllipsoid = "{ token=E name=Earth radius=6378137 invflat=298.25 }\n";

TEST(OrvCheck, AFileWithoutErrorsIsCounted) {
  const TempFolder folder;
  const std::string file = folder.Write("ellipsoid.ocf", kEllipsoid);
  const Result r = RunOrv({"check", file});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, file + ": 1 entries, 0 errors\n");
  EXPECT_EQ(r.err, "");
}

TEST(OrvCheck, EveryErrorIsReportedWithItsLine) {
  const TempFolder folder;
  const std::string file =
      folder.Write("ellipsoid.ocf", std::string(kEllipsoid) +                       // line 1
                                        "{ token=F name=F radius=-1 invflat=3 }\n"  // not positive
                                        "; a comment with a { brace\n"
                                        "{ token=G name='a } in quotes' radius=2 invflat=3 }\n"
                                        "{ token=H\n"
                                        "  name radius=1 }\n"                            // no '='
                                        "{ token=e name=Again radius=1 invflat=300 }\n"  // a token twice
                                        "{ token=I name=Last radius=6378000 flat=0 }\n");
  const Result r = RunOrv({"check", file});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, file + ": 3 entries, 3 errors\n");
  const std::vector<std::string> lines = orv::test::Lines(r.err);
  ASSERT_EQ(lines.size(), 3u) << r.err;
  EXPECT_EQ(lines[0].find("orv: " + file + "(2):  "), 0u) << lines[0];
  EXPECT_EQ(lines[1].find("orv: " + file + "(6):  "), 0u) << lines[1];
  EXPECT_EQ(lines[2].find("orv: " + file + "(7):  Can't have"), 0u) << lines[2];
}

TEST(OrvCheck, AnUnclosedEntryEndsTheCheck) {
  const TempFolder folder;
  const std::string file = folder.Write("linearunit.ocf", "{ token=m name=metre mul=1 }\n{ token=x name=y\n");
  const Result r = RunOrv({"check", file});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(orv::test::Lines(r.err).size(), 1u) << r.err;
  EXPECT_NE(r.err.find("Unexpected end of file"), std::string::npos) << r.err;
}

TEST(OrvCheck, WhatStandsBesideTheFileIsLookedUp) {
  const TempFolder folder;
  folder.Write("ellipsoid.ocf", kEllipsoid);
  folder.Write("datum.ocf", "{ token=D name=Datum method=Molodensky target=WGS84 ellipsoid=E dx=1 }\n");
  const std::string good = folder.Write("system.ocf", "{ token=S name=System datum=D }\n");
  EXPECT_EQ(RunOrv({"check", good}).status, 0);
  EXPECT_EQ(RunOrv({"check", folder.Path("datum.ocf")}).status, 0);
  const std::string bad =
      folder.Write("system.ocf", "{ token=S name=System\n datum=Q }\n{ token=T name=Other }");
  const Result r = RunOrv({"check", bad});
  EXPECT_EQ(r.err, "orv: " + bad + "(2):  Unknown datum 'Q'\n");
  EXPECT_EQ(r.out, bad + ": 1 entries, 1 error\n");
}

TEST(OrvCheck, AHundredErrorsAreEnough) {
  const TempFolder folder;
  std::string text = "{ token=G name=Greenwich lon=0 }\n";
  for (int i = 0; i < 101; ++i) text += "{ token=X name=y lon=400 }\n";
  const std::string file = folder.Write("meridian.ocf", text);
  const Result r = RunOrv({"check", file});
  EXPECT_EQ(r.out, file + ": 1 entries, 100 errors\n");
  const std::vector<std::string> lines = orv::test::Lines(r.err);
  ASSERT_EQ(lines.size(), 101u);
  EXPECT_EQ(lines[99], "orv: " + file + "(101):  Longitude out of range.");
  EXPECT_EQ(lines[100], "orv: " + file + ": 100 errors; the rest is not read");
}

TEST(OrvCheck, ANameThatSaysNothingNeedsTheKind) {
  const TempFolder folder;
  const std::string file = folder.Write("mine.txt", "{ token=G name=Greenwich lon=0 }");
  const Result unnamed = RunOrv({"check", file});
  EXPECT_EQ(unnamed.status, 2);
  EXPECT_NE(unnamed.err.find("--as"), std::string::npos);
  EXPECT_EQ(RunOrv({"check", "--as", "meridian", file}).out, file + ": 1 entries, 0 errors\n");
}

TEST(OrvCheck, SettingsArePairs) {
  const TempFolder folder;
  const std::string good = folder.Write("orvmisc.ocf", "EnableCSMIFaceForProjection = true\nunknown=1\n");
  EXPECT_EQ(RunOrv({"check", good}).status, 0);
  const std::string bad = folder.Write("orvmisc.ocf", "a=1\nb 2\n");
  const Result r = RunOrv({"check", bad});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err.find("orv: " + bad + "(2):  Expected '='"), 0u) << r.err;
}

TEST(OrvCheck, AFileThatIsNotThereIsAUsageError) {
  const Result r = RunOrv({"check", "/no/such/datum.ocf"});
  EXPECT_EQ(r.status, 2);
  EXPECT_NE(r.err.find("cannot open '/no/such/datum.ocf'"), std::string::npos) << r.err;
}

TEST(OrvCheck, AQuoteInsideATokenOpensNothing) {
  const TempFolder folder;
  const std::string file = folder.Write("meridian.ocf",
                                        "{ token=A name=a lon=2d20'14\"E }\n{ token=B name=b lon=400 }\n"
                                        "{ token=C name=c lon=1 }\n");
  const Result r = RunOrv({"check", file});
  EXPECT_EQ(r.err, "orv: " + file + "(2):  Longitude out of range.\n");
  EXPECT_EQ(r.out, file + ": 2 entries, 1 error\n");
}

}  // namespace
