// orv list, info and route on the shipped catalogue, and conversions by name.  Expected coordinates are PROJ
// 9.1.1's (cs2cs), with the command beside them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/GridBytes.h"
#include "tests/support/RunOrv.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::test::Lines;
using orv::test::Result;
using orv::test::RunOrv;
using orv::test::TempFolder;

void ExpectPoint(const std::string& from, const std::string& to, const std::string& point, double x, double y,
                 double tolerance) {
  const Result r = RunOrv({"convert", "--from", from, "--to", to, "--precision", "12"}, point + "\n");
  EXPECT_EQ(r.status, 0) << r.err;
  double gotX = NAN, gotY = NAN;
  std::istringstream(r.out) >> gotX >> gotY;
  EXPECT_NEAR(gotX, x, tolerance) << from << " -> " << to;
  EXPECT_NEAR(gotY, y, tolerance) << from << " -> " << to;
}

std::string Token(const std::string& line) { return line.substr(0, line.find('\t')); }

TEST(OrvCatalogue, SystemsConvertByTokenCodeNameAndShortName) {
  // echo 13.5 52.5 | cs2cs EPSG:4326 EPSG:32633 (northing first there); 1 mm for the truncated series.
  for (const char* const utm33 : {"EPSG:32633", "32633", "wgs 84 / utm zone 33n", "wgs84utmzone33n"}) {
    ExpectPoint("EPSG:4326", utm33, "13.5 52.5", 398178.3970, 5817709.5264, 1e-3);
  }
}

TEST(OrvCatalogue, SearchFindsTheWordsInAnyOrderBestFirst) {
  const Result r = RunOrv({"list", "systems", "--search", "utm", "33", "--limit", "5"});
  EXPECT_EQ(r.status, 0) << r.err;
  const std::vector<std::string> lines = Lines(r.out);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(Token(lines[0]), "EPSG:32633") << "on WGS 84, the first datum";
  EXPECT_EQ(RunOrv({"list", "systems", "--search", "33 utm", "--limit", "5"}).out, r.out);
  for (const std::string& line : lines) EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), 3) << line;
}

TEST(OrvCatalogue, EveryKindIsListed) {
  EXPECT_GE(Lines(RunOrv({"list", "systems"}).out).size(), 5525u);
  EXPECT_GE(Lines(RunOrv({"list", "datums"}).out).size(), 575u);
  EXPECT_NE(RunOrv({"list", "ellipsoids", "--search", "bessel 1841"}).out.find("EPSG:7004"),
            std::string::npos);
  EXPECT_NE(RunOrv({"list", "meridians"}).out.find("Paris"), std::string::npos);
  const std::string units = RunOrv({"list", "units"}).out;
  EXPECT_NE(units.find("US survey foot"), std::string::npos);
  EXPECT_NE(units.find("9105"), std::string::npos) << "angles too: the grad";
}

TEST(OrvCatalogue, ListsAreJsonOnRequest) {
  const Result r = RunOrv({"list", "meridians", "--search", "paris", "--json"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out.substr(0, 4), "[\n  ");
  EXPECT_NE(r.out.find("\"code\": 8903"), std::string::npos) << r.out;
}

TEST(OrvCatalogue, NothingFoundIsStatus1) {
  const Result r = RunOrv({"list", "systems", "--search", "utm", "atlantis"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "orv: nothing found among the systems\n");
  EXPECT_EQ(RunOrv({"list", "planets"}).status, 2);
}

TEST(OrvCatalogue, InfoTellsWhatAUserNeeds) {
  const Result r = RunOrv({"info", "EPSG:27700"});
  EXPECT_EQ(r.status, 0) << r.err;
  for (const char* const text :
       {"British National Grid", "27700", "unit    metre", "Transverse Mercator", "0.9996012717", "Airy 1830",
        "446.448", "Bursa-Wolf forward", "EPSG Terms of Use", "equalSystems"}) {
    EXPECT_NE(r.out.find(text), std::string::npos) << text << "\n" << r.out;
  }
  const Result json = RunOrv({"info", "27700", "--json"});
  EXPECT_NE(json.out.find("\"code\": 27700"), std::string::npos) << json.out;
  EXPECT_NE(RunOrv({"info", "--kind", "datum", "ED50"}).out.find("European Datum 1950"), std::string::npos);
  EXPECT_NE(RunOrv({"info", "--kind", "ellipsoid", "7004"}).out.find("299.1528128"), std::string::npos);
  EXPECT_EQ(RunOrv({"info", "--kind", "ellipsoid", "Potato"}).status, 2);
  EXPECT_NE(RunOrv({"info", "2227"}).out.find("US survey foot"), std::string::npos) << "California zone 3";
  EXPECT_NE(RunOrv({"info", "4326"}).out.find("degree"), std::string::npos);
  EXPECT_NE(RunOrv({"info", "4807"}).out.find("grad"), std::string::npos) << "NTF (Paris)";
}

TEST(OrvCatalogue, IdentifyNamesTheSystemsThatPlacePointsAlike) {
  const Result equal = RunOrv({"identify", "method=UTM,Lon0=15,datum=EPSG:6326"});
  EXPECT_EQ(equal.status, 0) << equal.err;
  EXPECT_EQ(Lines(equal.out).front(), "EPSG:32633\tequal\tWGS 84 / UTM zone 33N");
  EXPECT_EQ(Lines(RunOrv({"identify", "method=UTM,Lon0=15,datum=EPSG:6326", "--limit", "1"}).out).size(), 1u);

  const TempFolder folder;
  folder.Write("mine.txt", RunOrv({"def", "EPSG:27700", "--encoded"}).out);
  const Result file = RunOrv({"identify", folder.Path() + "/mine.txt", "--json"});
  EXPECT_EQ(file.status, 0) << file.err;
  EXPECT_NE(file.out.find("\"token\": \"EPSG:27700\""), std::string::npos) << file.out;
  EXPECT_NE(file.out.find("\"match\": \"equal\""), std::string::npos) << file.out;
}

TEST(OrvCatalogue, IdentifyGivesTheReasonOfTheNearestMiss) {
  const Result r = RunOrv({"identify", "method=Merc,Lon0=0.01,a=6378137,f=0,datum=EPSG:6326"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "orv: no known system places points alike; the nearest are shown with what differs\n");
  // A hundredth of a degree on a sphere of 6378137 m.
  EXPECT_EQ(Lines(r.out)[0], "EPSG:3857\tdifferent\tWGS 84 / Pseudo-Mercator\t1.11 km apart");
  EXPECT_EQ(Lines(r.out)[1], "\tCentral Longitude: 0.01, there 0");
  EXPECT_NE(RunOrv({"identify", "method=Merc,Lon0=0.01,a=6378137,f=0,datum=EPSG:6326", "--json"})
                .out.find("\"what\": \"Central Longitude\""),
            std::string::npos);
  EXPECT_EQ(RunOrv({"identify", "atlantis"}).status, 2);
}

TEST(OrvCatalogue, TheShippedFilesHaveNoErrors) {
  for (const char* const name : {"meridian", "angularunit", "linearunit", "ellipsoid", "datum", "system"}) {
    const std::string file = orv::test::CatalogueFolder() + "/" + name + ".ocf";
    const Result r = RunOrv({"check", file});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find(" entries, 0 errors\n"), std::string::npos) << r.out;
  }
}

TEST(OrvCatalogue, ARouteIsToldStepByStepAndItsStepsGiveTheSamePoints) {
  const Result r = RunOrv({"route", "DHDN", "OSGB36", "--json"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("\"direction\": \"forward\""), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("\"direction\": \"backward\""), std::string::npos) << r.out;
  EXPECT_NE(RunOrv({"route", "EPSG:31467", "27700"}).out.find("446.448"), std::string::npos)
      << "systems will do";

  const std::string whole =
      RunOrv({"convert", "--from", "datum=DHDN", "--to", "datum=OSGB36", "-p", "12"}, "8.5 50.25\n").out;
  const std::string middle =
      RunOrv({"convert", "--from", "datum=DHDN", "--to", "datum=WGS84", "-p", "15"}, "8.5 50.25\n").out;
  const std::string chain =
      RunOrv({"convert", "--from", "datum=WGS84", "--to", "datum=OSGB36", "-p", "12"}, middle).out;
  EXPECT_EQ(whole, chain);
  EXPECT_EQ(RunOrv({"route", "DHDN", "EPSG:1"}).status, 2);
}

// NAD27 to NAD83 through a grid of the test's own, whose folder the settings name.
class OrvNadcon : public ::testing::Test {
 protected:
  void SetUp() override {
    const orv::test::NadconLayout layout = {60, 40, -101.0F, 0.25F, 34.0F, 0.25F};
    m_Folder.Write("test.los", orv::test::NadconFile(layout, [](int col, int) {
                     return 0.5F + 0.0625F * static_cast<float>(col);
                   }));
    m_Folder.Write("test.las", orv::test::NadconFile(layout, [](int, int row) {
                     return 0.25F - 0.03125F * static_cast<float>(row);
                   }));
    m_Folder.Write("orvmisc.ocf", "NadconGridPath=\"" + m_Folder.Path() + "\"\n");
  }
  Result Convert(const std::string& from, const std::string& to, const std::string& points) {
    return RunOrv({"--config", m_Folder.Path(), "convert", "--from", from, "--to", to, "-p", "12"}, points);
  }

  TempFolder m_Folder;
  const std::string m_Nad27 = "datum.method=NADCON,datum.target=NAD83";
};

TEST_F(OrvNadcon, AThousandPointsGoThereAndBack) {
  std::string points;
  for (int i = 0; i < 1000; ++i) {
    char line[64];
    std::snprintf(line, sizeof line, "%.12f %.12f\n", -100.0 + 0.0131 * i, 35.0 + 0.0083 * (i * 7 % 1000));
    points += line;
  }
  const Result there = Convert(m_Nad27, "datum=NAD83", points);
  ASSERT_EQ(there.status, 0) << there.err;
  const Result back = Convert("datum=NAD83", m_Nad27, there.out);
  ASSERT_EQ(back.status, 0) << back.err;
  std::istringstream before(points), between(there.out), after(back.out);
  double shifted = 0.0;
  for (int i = 0; i < 1000; ++i) {
    double x = 0, y = 0, sx = 0, sy = 0, bx = 0, by = 0;
    before >> x >> y;
    between >> sx >> sy;
    after >> bx >> by;
    // The node of a point: one column for each quarter of a degree from -101, counted from 1; positive west.
    const double column = std::trunc((x + 101.0) / 0.25 + 1.0), row = std::trunc((y - 34.0) / 0.25 + 1.0);
    EXPECT_NEAR(sx, x - (0.5 + 0.0625 * column) / 3600.0, 2e-12);
    EXPECT_NEAR(sy, y + (0.25 - 0.03125 * row) / 3600.0, 2e-12);
    // A point that its own shift takes into another cell has no exact way back.
    const bool sameCell =
        std::trunc((sx + 101.0) / 0.25 + 1.0) == column && std::trunc((sy - 34.0) / 0.25 + 1.0) == row;
    if (sameCell) {
      EXPECT_NEAR(bx, x, 1e-9);
      EXPECT_NEAR(by, y, 1e-9);
    }
    shifted = std::max(shifted, std::fabs(sx - x));
  }
  EXPECT_GT(shifted, 1e-4);
}

TEST_F(OrvNadcon, ARouteThroughThreeDatumsEqualsItsSteps) {
  const std::string point = "-95.3 38.4\n";
  const std::string whole = Convert(m_Nad27, "datum=ED50", point).out;
  std::string chain = Convert(m_Nad27, "datum=NAD83", point).out;
  chain = Convert("datum=NAD83", "datum=WGS84", chain).out;
  chain = Convert("datum=WGS84", "datum=ED50", chain).out;
  std::istringstream a(whole), b(chain);
  double x = NAN, y = NAN, chainX = NAN, chainY = NAN;
  a >> x >> y;
  b >> chainX >> chainY;
  EXPECT_NEAR(x, chainX, 3e-12);  // each text rounds to 12 decimals
  EXPECT_NEAR(y, chainY, 3e-12);
  EXPECT_GT(std::fabs(x + 95.3), 1e-5);
  const Result route = RunOrv({"--config", m_Folder.Path(), "route", m_Nad27, "datum=ED50"});
  EXPECT_NE(route.out.find("NADCON"), std::string::npos) << route.err;
  EXPECT_NE(route.out.find("gridsFound  true"), std::string::npos) << route.out;
}

}  // namespace
