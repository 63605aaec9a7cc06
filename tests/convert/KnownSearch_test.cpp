#include "orv/convert/KnownSearch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"
#include "tests/support/KnownDatums.h"

namespace orv {
namespace {

ORVDef System(const char* token, const char* name, int posc, const char* comment, const DatumDef& datum,
              ProjectionMethod method) {
  ProjectionParameters p;
  p.method = method;
  p.ellipsoid = *datum.GetEllipsoid();
  p.K0 = 0.9996;
  const ProjectionDef projection(p);
  ORVDef system(&datum, &projection, nullptr);
  system.SetToken(token);
  system.SetName(name);
  system.SetPOSC(posc);
  system.SetComment(comment);
  return system;
}

// A small catalogue: two datums, geographic systems and UTM zones on them.
class KnownSearch : public test::KnownDatums {
 protected:
  void SetUp() override {
    KnownDatums::SetUp();
    Clear();
    DatumDef potsdam = test::BursaWolfDatum();
    potsdam.SetToken("EPSG:6314");
    potsdam.SetName("Deutsches Hauptdreiecksnetz");
    potsdam.SetComment("accuracy 3 m");
    ORVKnownDatumsList.Add(potsdam, 0);
    const DatumDef wgs84 = test::Wgs84Datum();
    const auto utm = ProjectionMethodUTM;
    CSList& list = ORVKnownSystemsList;
    list.Add(
        System("EPSG:4314", "Geographic 2D|DHDN", 4314, "Germany", potsdam, ProjectionMethodUnprojected));
    list.Add(System("EPSG:4326", "Geographic 2D|WGS 84", 4326, "World", wgs84, ProjectionMethodUnprojected));
    list.Add(System("EPSG:9933", "UTM|DHDN|DHDN / UTM zone 33N", 9933, "Germany, east", potsdam, utm));
    list.Add(System("EPSG:32633", "UTM|WGS 84|WGS 84 / UTM zone 33N", 32633, "World north", wgs84, utm));
    list.Add(System("EPSG:32733", "UTM|WGS 84|WGS 84 / UTM zone 33S", 32733, "World south", wgs84, utm));
    list.Add(System("ORV:3300", "Other|zone", 3300, "Estonia 33", wgs84, utm));
    UCSDef local;
    local.SetToken("SITE");
    local.SetName("Building site");
    list.Add(local);
    ORVKnownEllipsoidsList.Add(test::Bessel());
  }
  void TearDown() override {
    Clear();
    KnownDatums::TearDown();
  }
  static void Clear() {
    ORVKnownSystemsList.Flush();
    ORVKnownEllipsoidsList.Flush();
    ORVKnownLinearUnitsList.Flush();
    ORVKnownAngularUnitsList.Flush();
    ORVKnownMeridiansList.Flush();
  }

  static std::string TokenOf(std::string_view text) {
    const int pos = ORVFindKnown(KnownListSystems, text);
    return pos == 0 ? "" : ORVKnownSystemsList.EnumToken(pos);
  }
  static std::string DatumOf(std::string_view text) {
    const int index = ORVFindKnown(KnownListDatums, text);
    return index == 0 ? "" : ORVKnownDatumsList.EnumToken(index);
  }
  static std::string Search(std::string_view words, size_t limit = 0) {
    std::string tokens;
    for (const KnownEntry& entry : ORVSearchKnown(KnownListSystems, words, limit))
      tokens += entry.token + " ";
    return tokens;
  }
};

TEST_F(KnownSearch, SystemsAreFoundByTokenNameCodeAndShortName) {
  EXPECT_EQ(TokenOf("epsg:32633"), "EPSG:32633");
  EXPECT_EQ(TokenOf("32733"), "EPSG:32733");
  EXPECT_EQ(TokenOf("EPSG:3300"), "ORV:3300") << "the code counts, whatever the token";
  EXPECT_EQ(TokenOf("utm|wgs 84|WGS 84 / utm zone 33n"), "EPSG:32633");
  EXPECT_EQ(TokenOf("wgs 84 / utm zone 33s"), "EPSG:32733");
  EXPECT_EQ(TokenOf("dhdn"), "EPSG:4314");
  EXPECT_EQ(TokenOf("site"), "SITE");
}

TEST_F(KnownSearch, BlanksAndPunctuationMayBeLeftOut) {
  EXPECT_EQ(TokenOf("wgs84utmzone33n"), "EPSG:32633");
  EXPECT_EQ(TokenOf("WGS 84/UTM-zone_33S"), "EPSG:32733");
  EXPECT_EQ(TokenOf("buildingSITE"), "SITE");
}

TEST_F(KnownSearch, WhatNamesNothingIsNone) {
  for (const char* const text :
       {"", " ", "/", "EPSG:", "EPSG:1", "-32633", "32633x", "4294999929", "UTM", "zone 33N"}) {
    EXPECT_EQ(TokenOf(text), "") << text;
  }
  EXPECT_EQ(ORVFindKnown(KnownListMeridians, "Paris"), -1);
  EXPECT_EQ(ORVFindKnown(KnownListLinearUnits, "m"), -1);
  EXPECT_EQ(ORVFindKnown(KnownListAngularUnits, "m"), -1);
  EXPECT_EQ(ORVFindKnown(KnownListEllipsoids, "m"), 0);
}

TEST_F(KnownSearch, DatumsAreFoundByAliasAndByTheirGeographicSystem) {
  EXPECT_EQ(DatumOf("wgs84"), "WGS84") << "its token";
  EXPECT_EQ(DatumOf("World geodetic system 1984"), "WGS84");
  EXPECT_EQ(DatumOf("wgs 84"), "WGS84") << "the geographic system's short name";
  EXPECT_EQ(DatumOf("DHDN"), "EPSG:6314");
  EXPECT_EQ(DatumOf("6314"), "EPSG:6314");
  EXPECT_EQ(DatumOf("deutsches-hauptdreiecksnetz"), "EPSG:6314");
  EXPECT_EQ(DatumOf("DHDN / UTM zone 33N"), "") << "not geographic";
  EXPECT_EQ(DatumOf("NAD27"), "") << "an alias of a datum that is not known";
  DatumDef clarke = test::MolodenskyDatum();
  clarke.SetToken("EPSG:6267");
  clarke.SetName("North American Datum 1927");
  ORVKnownDatumsList.Add(clarke, 0);
  EXPECT_EQ(DatumOf("nad27"), "EPSG:6267");
  EXPECT_EQ(DatumOf("NAD 27"), "EPSG:6267");
}

TEST_F(KnownSearch, TheOtherListsAreFoundAlike) {
  EXPECT_EQ(ORVFindKnown(KnownListEllipsoids, "bessel 1841"), 2);
  EXPECT_EQ(ORVFindKnown(KnownListEllipsoids, "Bessel1841"), 2);
  EXPECT_EQ(ORVFindKnown(KnownListEllipsoids, "EPSG:7004"), 2);
  LinearUnitInfo foot;
  foot.token = "ft";
  foot.name = "foot";
  foot.namePlural = "feet";
  foot.posc = 9002;
  ORVKnownLinearUnitsList.Add(foot);
  for (const char* const text : {"FT", "foot", "FEET", "9002"}) {
    EXPECT_EQ(ORVFindKnown(KnownListLinearUnits, text), 0) << text;
  }
  MeridianInfo paris;
  paris.token = "P";
  paris.name = "Paris";
  paris.posc = 8903;
  ORVKnownMeridiansList.Add(paris);
  EXPECT_EQ(ORVFindKnown(KnownListMeridians, "paris"), 0);
  EXPECT_EQ(ORVKnownEntries(KnownListMeridians).at(0).code, 8903);
}

TEST_F(KnownSearch, EntriesTellWhatTheListHolds) {
  const std::vector<KnownEntry> systems = ORVKnownEntries(KnownListSystems);
  ASSERT_EQ(systems.size(), 7u);
  EXPECT_EQ(systems[3].index, 5);
  EXPECT_EQ(systems[3].token, "EPSG:32633");
  EXPECT_EQ(systems[3].name, "UTM|WGS 84|WGS 84 / UTM zone 33N");
  EXPECT_EQ(systems[3].ShortName(), "WGS 84 / UTM zone 33N");
  EXPECT_EQ(systems[3].code, 32633);
  EXPECT_EQ(systems[3].about, "World north");
  EXPECT_EQ(systems[6].code, 0);
  EXPECT_EQ(systems[6].ShortName(), "Building site");
  KnownEntry entry;
  entry.name = "Group| Blanks in front";
  EXPECT_EQ(entry.ShortName(), "Blanks in front");
  entry.name = "Group| ";
  EXPECT_EQ(entry.ShortName(), "");
  EXPECT_EQ(ORVKnownEntries(KnownListDatums).at(1).about, "accuracy 3 m");
  EXPECT_EQ(ORVKnownEntries(KnownListEllipsoids).at(0).code, 7004);
}

TEST_F(KnownSearch, AllWordsMustBeMetInAnyOrder) {
  // Zone 33 in the short name beats "33" in code and comment; WGS 84 stands first among the datums.
  EXPECT_EQ(Search("utm 33"), "EPSG:32633 EPSG:32733 EPSG:9933 ");
  EXPECT_EQ(Search("33 UTM"), Search("utm 33"));
  EXPECT_EQ(Search("utm 33 germany"), "EPSG:9933 ");
  EXPECT_EQ(Search("utm 33 antarctica"), "");
  EXPECT_EQ(Search("  33n\tutm \n"), "EPSG:32633 EPSG:9933 ");
}

TEST_F(KnownSearch, BetterPlacesComeFirst) {
  EXPECT_EQ(Search("zone"), "ORV:3300 EPSG:32633 EPSG:32733 EPSG:9933 ")
      << "equal: datum, then the shorter name";
  EXPECT_EQ(Search("3300"), "ORV:3300 ");
  EXPECT_EQ(Search("site"), "SITE ");
  EXPECT_EQ(Search("estonia"), "ORV:3300 ") << "the comment counts";
  EXPECT_EQ(Search("geographic"), "EPSG:4326 EPSG:4314 ") << "groups count";
  EXPECT_EQ(Search("dhdn"), "EPSG:4314 EPSG:9933 ");
  EXPECT_EQ(Search("erman"), "") << "in the comment words count from their beginning";
  EXPECT_EQ(Search("german"), "EPSG:4314 EPSG:9933 ");
}

TEST_F(KnownSearch, NoWordGivesAllInListOrderAndTheLimitHolds) {
  EXPECT_EQ(Search(""), "EPSG:4314 EPSG:4326 EPSG:9933 EPSG:32633 EPSG:32733 ORV:3300 SITE ");
  EXPECT_EQ(Search(" ", 2), "EPSG:4314 EPSG:4326 ");
  EXPECT_EQ(Search("utm", 1), "EPSG:32633 ");
}

TEST_F(KnownSearch, TheNearestNamesDifferInTheFewestLetters) {
  const auto nearest = [](std::string_view text, size_t limit) {
    std::string tokens;
    for (const KnownEntry& entry : ORVNearestKnown(KnownListSystems, text, limit))
      tokens += entry.token + " ";
    return tokens;
  };
  EXPECT_EQ(nearest("wgs 84 utm zone 33m", 1), "EPSG:32633 ");
  EXPECT_EQ(nearest("wgs84 utm zone 33", 2), "EPSG:32633 EPSG:32733 ");
  EXPECT_EQ(nearest("EPSG:4327", 1), "EPSG:4326 ") << "one letter off; EPSG:4314 two";
  EXPECT_EQ(nearest("DHN", 1), "EPSG:4314 ");
  EXPECT_EQ(nearest("qqqqqqqqqqqqq", 3), "") << "nothing is near";
  EXPECT_EQ(nearest("", 3), "");
  EXPECT_EQ(nearest(std::string(100000, 'w'), 3), "") << "and long texts do no harm";
}

TEST_F(KnownSearch, EmptyListsHaveNothing) {
  Clear();
  ORVKnownDatumsList.Flush();
  for (const KnownList list : {KnownListSystems, KnownListDatums, KnownListEllipsoids}) {
    EXPECT_EQ(ORVFindKnown(list, "x"), 0);
    EXPECT_TRUE(ORVSearchKnown(list, "", 0).empty());
    EXPECT_TRUE(ORVNearestKnown(list, "x", 3).empty());
  }
}

}  // namespace
}  // namespace orv
