#include "orv/tables/Meridians.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <type_traits>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::MeridianInfo;
using orv::MeridianList;
using orv::ORVKnownMeridiansList;
using orv::test::TempFolder;

constexpr const char* kBadIndex = "Bad parameter to function call.";
constexpr const char* kSamePOSC = "Can't have two meridians with the same POSC/EPSG number.";
constexpr const char* kSameToken = "Can't have two meridians with the same ID token.";
constexpr const char* kSameName = "Can't have two meridians with the same name.";

#define EXPECT_MERIDIANS_FAIL(statement, code, text) EXPECT_RAISES(statement, code, "Meridians", text)

MeridianInfo Make(const char* token, const char* name, double longitude = 0.0, int posc = 0) {
  MeridianInfo meridian;
  meridian.token = token;
  meridian.name = name;
  meridian.longitude = longitude;
  meridian.posc = posc;
  return meridian;
}

MeridianInfo At(double longitude) { return Make("", "", longitude); }

// Loads a text into a list.  The file's path holds a separator, so it is found as given.
bool LoadText(MeridianList& list, const TempFolder& folder, const std::string& text) {
  return list.Load(folder.Write("meridians.ocf", text).c_str(), true);
}

// Expects that loading `text` raises `message` (with "FILE" for the file's name) and leaves `left` entries.
void ExpectLoadFails(MeridianList& list, const std::string& text, int code, std::string message, int left) {
  const TempFolder folder;
  const size_t at = message.find("FILE");
  if (at != std::string::npos) message.replace(at, 4, folder.Path("meridians.ocf"));
  EXPECT_MERIDIANS_FAIL(LoadText(list, folder, text), code, message) << text;
  EXPECT_EQ(list.Count(), left) << text;
}

MeridianInfo Loaded(const std::string& pairs) {
  const TempFolder folder;
  MeridianList list;
  EXPECT_TRUE(LoadText(list, folder, "{ " + pairs + " }"));
  EXPECT_EQ(list.Count(), 1);
  MeridianInfo meridian;
  if (list.Count() > 0) list.Enum(0, meridian);
  return meridian;
}

std::string Saved(const MeridianList& list) {
  const TempFolder folder;
  EXPECT_TRUE(list.Save(folder.Path("x.ocf").c_str()));
  return folder.Read("x.ocf");
}

std::string Tokens(const MeridianList& list) {
  std::string tokens;
  for (int i = list.First(); i <= list.Last(); ++i) tokens += std::string(list.EnumToken(i)) + " ";
  return tokens;
}

// Failures are recorded and not thrown while it lives.
class Quiet {
 public:
  Quiet() { orv::Globals().throwOnError = false; }
  ~Quiet() { orv::Globals().throwOnError = true; }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;
};

// The library-wide list, empty at the beginning and at the end of each test.
class KnownMeridians : public ::testing::Test {
 protected:
  void SetUp() override { ORVKnownMeridiansList.Flush(); }
  void TearDown() override { ORVKnownMeridiansList.Flush(); }
};

}  // namespace

// ---- entries ---------------------------------------------------------------------------------------------

TEST(Meridians, AMeridianIsGreenwichWithoutATextAtFirst) {
  const MeridianInfo meridian;
  EXPECT_EQ(meridian.token, "");
  EXPECT_EQ(meridian.name, "");
  EXPECT_EQ(meridian.longitude, 0.0);
  EXPECT_EQ(meridian.posc, 0);
  EXPECT_TRUE(std::is_copy_assignable_v<MeridianInfo>);
}

TEST(Meridians, AnEmptyListFindsNothing) {
  const MeridianList list;
  EXPECT_EQ(list.First(), 0);
  EXPECT_EQ(list.Last(), -1);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.FindByToken(""), -1);
  EXPECT_EQ(list.FindByName(""), -1);
  EXPECT_EQ(list.FindByPOSCNumber(0), -1);
  EXPECT_EQ(list.FindByLongitude(0.0), -1);
}

TEST(Meridians, EveryFieldOfAnEntryIsEnumerated) {
  MeridianList list;
  EXPECT_EQ(list.Add(Make("BOG", "Bogota", -74.25, 8904)), 0);
  EXPECT_EQ(list.Add(MeridianInfo()), 1);
  EXPECT_EQ(list.First(), 0);
  EXPECT_EQ(list.Last(), 1);
  EXPECT_EQ(list.Count(), 2);
  EXPECT_STREQ(list.EnumToken(0), "BOG");
  EXPECT_STREQ(list.EnumName(0), "Bogota");
  EXPECT_EQ(list.EnumLongitude(0), -74.25);
  EXPECT_EQ(list.EnumPOSC(0), 8904);
  // An empty text is no null pointer: null is the answer to a bad index.
  EXPECT_STREQ(list.EnumToken(1), "");
  EXPECT_STREQ(list.EnumName(1), "");
  MeridianInfo meridian;
  EXPECT_TRUE(list.Enum(0, meridian));
  EXPECT_EQ(meridian.token, "BOG");
  EXPECT_EQ(meridian.name, "Bogota");
  EXPECT_EQ(meridian.longitude, -74.25);
  EXPECT_EQ(meridian.posc, 8904);
}

TEST(Meridians, IndexesOutsideTheListAreBadParameters) {
  MeridianList list;
  list.Add(Make("A", "a name"));
  list.Add(Make("B", "b name"));
  MeridianInfo meridian;
  for (const int index : {-1, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_MERIDIANS_FAIL(list.Enum(index, meridian), 1032, kBadIndex);
    EXPECT_MERIDIANS_FAIL(list.EnumToken(index), 1032, kBadIndex);
    EXPECT_MERIDIANS_FAIL(list.EnumName(index), 1032, kBadIndex);
    EXPECT_MERIDIANS_FAIL(list.EnumLongitude(index), 1032, kBadIndex);
    EXPECT_MERIDIANS_FAIL(list.EnumPOSC(index), 1032, kBadIndex);
    EXPECT_MERIDIANS_FAIL(list.Replace(index, meridian), 1032, kBadIndex);
    EXPECT_MERIDIANS_FAIL(list.Remove(index), 1032, kBadIndex);
  }
  EXPECT_EQ(Tokens(list), "A B ");
}

TEST(Meridians, ABadIndexGivesNothingWhenItIsNotThrown) {
  const MeridianList list;
  MeridianInfo meridian = Make("before", "before", 5.0);
  const Quiet quiet;
  EXPECT_FALSE(list.Enum(0, meridian));
  EXPECT_EQ(meridian.token, "before");
  EXPECT_EQ(list.EnumToken(0), nullptr);
  EXPECT_EQ(list.EnumName(0), nullptr);
  EXPECT_EQ(list.EnumLongitude(0), 0.0);
  EXPECT_EQ(list.EnumPOSC(0), 0);
}

TEST(Meridians, EntriesAreReplacedRemovedAndFlushed) {
  MeridianList list;
  for (const char* const token : {"A", "B", "C"}) list.Add(Make(token, token));
  EXPECT_TRUE(list.Replace(1, Make("X", "ex", 30.5, 5)));
  EXPECT_EQ(Tokens(list), "A X C ");
  EXPECT_EQ(list.FindByLongitude(30.5), 1);
  EXPECT_TRUE(list.Remove(0));
  EXPECT_EQ(Tokens(list), "X C ");
  EXPECT_EQ(list.FindByLongitude(30.5), 0);
  list.Flush();
  EXPECT_EQ(list.Count(), 0);
}

// ---- finding ---------------------------------------------------------------------------------------------

TEST(Meridians, TokensAndNamesAreFoundWithoutRegardToCase) {
  MeridianList list;
  list.Add(Make("GRW", "Greenwich"));
  list.Add(Make("Par", "Paris"));
  list.Add(Make("PAR", "PARIS"));
  EXPECT_EQ(list.FindByToken("pAR"), 1);
  EXPECT_EQ(list.FindByToken("PARIS"), -1);
  EXPECT_EQ(list.FindByToken(""), -1);
  EXPECT_EQ(list.FindByToken(nullptr), -1);
  EXPECT_EQ(list.FindByName("pARIS"), 1);
  EXPECT_EQ(list.FindByName("Pari"), -1);
  EXPECT_EQ(list.FindByName("GRW"), -1);
  EXPECT_EQ(list.FindByName(""), -1) << "there is no plural name that could be empty";
  EXPECT_EQ(list.FindByName(nullptr), -1);
}

TEST(Meridians, EveryNumberIsLookedFor) {
  // Deliberate, other than with units: whoever means "none" must not search.
  MeridianList list;
  for (const int posc : {8901, 0, -7, 0, 8901}) list.Add(Make("", "", 0.0, posc));
  EXPECT_EQ(list.FindByPOSCNumber(0), 1);
  EXPECT_EQ(list.FindByPOSCNumber(-7), 2);
  EXPECT_EQ(list.FindByPOSCNumber(8901), 0);
  EXPECT_EQ(list.FindByPOSCNumber(8902), -1);
  EXPECT_EQ(list.FindByPOSCNumber(std::numeric_limits<int>::min()), -1);
}

TEST(Meridians, LongitudesAreFoundWithinABillionthOfADegree) {
  MeridianList list;
  list.Add(At(0.0));
  list.Add(At(-74.0416500000001));
  list.Add(At(-74.04165));
  EXPECT_EQ(list.FindByLongitude(-74.04165), 1);
  EXPECT_EQ(list.FindByLongitude(-74.041650002), -1);
  EXPECT_EQ(list.FindByLongitude(74.04165), -1);
  EXPECT_EQ(list.FindByLongitude(std::nextafter(1e-9, 0.0)), 0);
  EXPECT_EQ(list.FindByLongitude(-std::nextafter(1e-9, 0.0)), 0);
  EXPECT_EQ(list.FindByLongitude(1e-9), -1);
  EXPECT_EQ(list.FindByLongitude(std::numeric_limits<double>::quiet_NaN()), -1);
}

TEST(Meridians, LongitudesAreNotNormalised) {
  MeridianList list;
  list.Add(At(180.0));
  EXPECT_EQ(list.FindByLongitude(-180.0), -1);
  list.Add(At(-180.0));
  EXPECT_EQ(list.FindByLongitude(-180.0), 1);
  EXPECT_EQ(list.FindByLongitude(540.0), -1);
}

// ---- uniqueness ------------------------------------------------------------------------------------------

TEST_F(KnownMeridians, AreUniqueByNumberTokenAndName) {
  MeridianList& known = ORVKnownMeridiansList;
  known.Add(Make("PAR", "Paris", 2.5, 8903));
  const auto expect = [](const MeridianInfo& meridian, const char* message) {
    EXPECT_MERIDIANS_FAIL(ORVKnownMeridiansList.Add(meridian), 1032, message);
    EXPECT_EQ(ORVKnownMeridiansList.Count(), 1);
  };
  expect(Make("par", "paris", 3.0, 8903), kSamePOSC);
  expect(Make("other", "other", 3.0, 8903), kSamePOSC);
  expect(Make("par", "paris", 3.0, 1), kSameToken);
  expect(Make("par", "other", 3.0), kSameToken);
  expect(Make("other", "pARIS", 3.0, 1), kSameName);
  EXPECT_EQ(known.Add(Make("other", "other", 2.5, 1)), 1) << "the same longitude is no clash";
}

TEST_F(KnownMeridians, MayRepeatNumbersBelowOne) {
  // Though FindByPOSCNumber would find them.
  MeridianList& known = ORVKnownMeridiansList;
  EXPECT_EQ(known.Add(Make("A", "a", 0.0, 0)), 0);
  EXPECT_EQ(known.Add(Make("B", "b", 0.0, 0)), 1);
  EXPECT_EQ(known.Add(Make("C", "c", 0.0, -5)), 2);
  EXPECT_EQ(known.Add(Make("D", "d", 0.0, -5)), 3);
}

TEST_F(KnownMeridians, MayNotRepeatAnEmptyTokenOrName) {
  MeridianList& known = ORVKnownMeridiansList;
  EXPECT_EQ(known.Add(Make("", "a")), 0);
  EXPECT_MERIDIANS_FAIL(known.Add(Make("", "b")), 1032, kSameToken);
  EXPECT_EQ(known.Add(Make("C", "")), 1);
  EXPECT_MERIDIANS_FAIL(known.Add(Make("D", "")), 1032, kSameName);
}

TEST_F(KnownMeridians, AreReplacedUnderTheSameRulesButForThemselves) {
  MeridianList& known = ORVKnownMeridiansList;
  known.Add(Make("A", "a name", 1.0, 1));
  known.Add(Make("B", "b name", 2.0, 2));
  EXPECT_TRUE(known.Replace(0, Make("a", "A NAME", 5.0, 1)));
  const auto expect = [](int index, const MeridianInfo& meridian, const char* message) {
    EXPECT_MERIDIANS_FAIL(ORVKnownMeridiansList.Replace(index, meridian), 1032, message);
    EXPECT_EQ(ORVKnownMeridiansList.EnumLongitude(0), 5.0);
    EXPECT_EQ(ORVKnownMeridiansList.EnumLongitude(1), 2.0);
  };
  expect(0, Make("b", "b name", 9.0, 2), kSamePOSC);
  expect(0, Make("b", "b name", 9.0, 1), kSameToken);
  expect(0, Make("A", "B name", 9.0, 1), kSameName);
  expect(1, Make("B", "A name", 9.0, 2), kSameName);
  expect(2, Make("b", "b name", 9.0, 2), kBadIndex);
  expect(-1, Make("b", "b name", 9.0, 2), kBadIndex);
  EXPECT_TRUE(known.Replace(1, Make("C", "c", 400.0, 0))) << "only loading looks at the longitude";
}

TEST_F(KnownMeridians, GiveZeroForAFailedAddThatIsNotThrown) {
  MeridianList& known = ORVKnownMeridiansList;
  known.Add(Make("A", "a"));
  known.Add(Make("B", "b"));
  const Quiet quiet;
  EXPECT_EQ(known.Add(Make("B", "c")), 0);  // deliberate: neither -1 nor an index
  EXPECT_FALSE(known.Replace(0, Make("B", "c")));
  EXPECT_EQ(Tokens(known), "A B ");
}

TEST_F(KnownMeridians, AreUniqueButOtherListsAndCopiesAreFree) {
  const MeridianInfo meridian = Make("GRW", "Greenwich", 0.0, 8901);
  MeridianList list;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list.Add(meridian), i);
  EXPECT_TRUE(list.Replace(1, meridian));
  EXPECT_EQ(list.Add(At(400.0)), 3);
  ORVKnownMeridiansList.Add(meridian);
  MeridianList copy = ORVKnownMeridiansList;
  EXPECT_EQ(copy.Add(meridian), 1);
  EXPECT_MERIDIANS_FAIL(ORVKnownMeridiansList.Add(meridian), 1032, kSamePOSC);
}

// ---- loading ---------------------------------------------------------------------------------------------

TEST(Meridians, EveryKeyIsLoaded) {
  const MeridianInfo meridian =
      Loaded("TOKEN=\"T\" Name=\"My ; name\" LON=-17.5 Posc=8909 namep=x unknown=5");
  EXPECT_EQ(meridian.token, "T");
  EXPECT_EQ(meridian.name, "My ; name");
  EXPECT_EQ(meridian.longitude, -17.5);
  EXPECT_EQ(meridian.posc, 8909);
  EXPECT_EQ(Loaded("token=T").longitude, 0.0);
  EXPECT_EQ(Loaded("posc=-12").posc, -12);
}

TEST(Meridians, LongitudesAreDegreesOrDegreesMinutesAndSeconds) {
  EXPECT_EQ(Loaded("lon=2d20m14.025sE").longitude, 2 + 20 / 60.0 + 14.025 / 3600);
  EXPECT_EQ(Loaded("lon=2.3372291666666667").longitude, 2.3372291666666667);
  const double west = -(10 + 30 / 60.0 + 36 / 3600.0);
  EXPECT_EQ(Loaded("lon=10d30m36sW").longitude, west);
  EXPECT_EQ(Loaded("lon=10D30'36\"w").longitude, west);
  EXPECT_EQ(Loaded("lon=\"10d 30' 36s W\"").longitude, west);
  EXPECT_EQ(Loaded("lon='-10d 30m 36\" W'").longitude, west) << "a letter never turns the sign twice";
  EXPECT_EQ(Loaded("lon='+10d30'").longitude, 10.5);
}

TEST(Meridians, ALongitudeThatDoesNotParseIsReportedAtOnce) {
  MeridianList list;
  const std::string good = "{ lon=5 }\n";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails(list, good + text, 1029, message, 1);
  };
  fails("{\nlon=10x\nname=N\n}", "FILE(3):  Failed reading degrees or degree, minute, second value '10x'\n");
  fails("{ lon=\"5 100%s\" }",
        "FILE(2):  Failed reading degrees or degree, minute, second value '5 100%s'\n");
  fails("{ lon=\"\" }", "FILE(2):  Failed reading degrees or degree, minute, second value ''\n");
  fails("{ lon=1e2 }", "FILE(2):  Failed reading degrees or degree, minute, second value '1e2'\n");
  fails("{ lon=400 lon=x }", "FILE(2):  Failed reading degrees or degree, minute, second value 'x'\n");
  // A plus sign is a token by itself, and blanks end an unquoted value.
  fails("{ lon=+2 }", "FILE(2):  Failed reading degrees or degree, minute, second value '+'\n");
  fails("{ lon=2 20 14 }", "FILE(2):  Expected '=' between parameter and value.\n");
}

TEST(Meridians, LongitudesBeyond360AreRefusedAtTheEndOfTheirEntry) {
  MeridianList list;
  const std::string good = "{ lon=360 token=A }{ lon=-360 token=B }\n";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails(list, good + text, 1029, message, 2);
    EXPECT_EQ(Tokens(list), "A B ");
  };
  fails("{ lon=400 }", "FILE(2):  Longitude out of range.\n");
  fails("{ lon=-400 }", "FILE(2):  Longitude out of range.\n");
  fails("{\nlon=360.0000001\nname=N\n}", "FILE(5):  Longitude out of range.\n");
  fails("{ lon=360.0000001W }", "FILE(2):  Longitude out of range.\n");
  EXPECT_EQ(Loaded("lon=400 lon=4").longitude, 4.0) << "looked at when the entry is complete";
}

TEST(Meridians, SyntaxErrorsTellFileAndLine) {
  MeridianList list;
  const std::string good = "; head\n{ lon=1 }\n";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails(list, good + text, 1029, message, 1);
  };
  // Deliberate: one blank behind the first one's colon.
  fails("lon", "FILE(3): Expected '{', found 'lon' at start of entry\n");
  fails("{ lon\n5 }", "FILE(4):  Expected '=' between parameter and value.\n");
  fails("{", "FILE(3):  Unexpected end of file.\n");
  fails("{ lon", "FILE(3):  Unexpected end of file.\n");
  fails("{ lon=", "FILE(3):  Unexpected end of file.\n");
  fails("{ lon=1\n", "FILE(4):  Unexpected end of file.\n");
}

TEST_F(KnownMeridians, NeedANameAndThenATokenInTheirFile) {
  MeridianList& known = ORVKnownMeridiansList;
  const std::string good = "{ token=T name=N }\n";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails(known, good + text, 1029, message, 1);
  };
  fails("{ lon=400 }", "FILE(2):  Longitude out of range.\n");
  fails("{ }", "FILE(2):  No name parameter specified.\n");
  fails("{ token=T\n}", "FILE(3):  No name parameter specified.\n");
  fails("{ name=N\n}", "FILE(3):  No token parameter specified.\n");
  const TempFolder folder;
  MeridianList other;
  EXPECT_TRUE(LoadText(other, folder, good + "{ } { token=U } { name=M }"));
  EXPECT_EQ(other.Count(), 4);
}

TEST_F(KnownMeridians, AreUniqueInTheirFileToo) {
  MeridianList& known = ORVKnownMeridiansList;
  const std::string first = "{ token=T name=N posc=5 }";
  ExpectLoadFails(known, first + "{ token=U name=M posc=5 }", 1032, kSamePOSC, 1);
  ExpectLoadFails(known, first + "{ token=t name=M }", 1032, kSameToken, 1);
  ExpectLoadFails(known, first + "{ token=U name=n }", 1032, kSameName, 1);
  const TempFolder folder;
  MeridianList other;
  EXPECT_TRUE(LoadText(other, folder, first + first));
  EXPECT_EQ(other.Count(), 2);
  EXPECT_TRUE(LoadText(known, folder, first));
  EXPECT_TRUE(LoadText(known, folder, first)) << "the list is emptied first";
  EXPECT_EQ(known.Count(), 1);
}

TEST(Meridians, EntriesBeginAfreshAndLoadingReplacesTheList) {
  const TempFolder folder;
  MeridianList list;
  list.Add(Make("old", "old"));
  EXPECT_TRUE(LoadText(list, folder, "{ token=A name=N lon=5 posc=4 }{}"));
  ASSERT_EQ(list.Count(), 2);
  EXPECT_STREQ(list.EnumToken(0), "A");
  EXPECT_STREQ(list.EnumToken(1), "");
  EXPECT_STREQ(list.EnumName(1), "");
  EXPECT_EQ(list.EnumLongitude(1), 0.0);
  EXPECT_EQ(list.EnumPOSC(1), 0);
}

TEST(Meridians, AMissingFileIsReportedOnRequestAndEmptiesTheListAnyway) {
  MeridianList list;
  list.Add(Make("A", "a"));
  EXPECT_MERIDIANS_FAIL(list.Load("no 100% such.ocf", true), 1028,
                        "Can't find meridians configuration file 'no 100% such.ocf'");
  EXPECT_EQ(list.Count(), 0);
  list.Add(Make("A", "a"));
  orv::ORVResetError();
  EXPECT_FALSE(list.Load("no such.ocf", false));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TEST(Meridians, TheDefaultFileIsFoundInTheConfigurationPath) {
  const TempFolder folder;
  folder.Write("meridian.ocf", "{ token=Default }");
  const std::string before = orv::Globals().configPath;
  orv::ORVSetConfigPath(folder.Path().c_str());
  MeridianList list;
  EXPECT_TRUE(list.Load(nullptr, true));
  EXPECT_EQ(Tokens(list), "Default ");
  std::filesystem::remove(folder.Path("meridian.ocf"));
  // Nobody but a full installation beside this program could offer another one.
  std::string elsewhere;
  if (!orv::ORVFindConfigFile("meridian.ocf", elsewhere)) {
    EXPECT_MERIDIANS_FAIL(list.Load(nullptr, true), 1028,
                          "Can't find meridians configuration file 'meridian.ocf'");
  }
  orv::ORVSetConfigPath(before.c_str());
}

// ---- saving ----------------------------------------------------------------------------------------------

namespace {

MeridianList ThreeMeridians() {
  MeridianList list;
  list.Add(Make("GRW", "Greenwich", 0.0, 8901));
  list.Add(Make("FER", "100% Ferro", -(17.0 + 40.0 / 60.0), -3));
  list.Add(Make("", "", 2.5969213));
  return list;
}

// -17 2/3 and 2.5969213 in doubles are -17.666666666666667850904... and 2.596921299999999988017...
constexpr const char* kThreeSaved =
    ";\n; Brevan meridians configuration file.\n;\n\n"
    "; Entry 1 of 3\n{\n   token=\"GRW\"\n   name=\"Greenwich\"\n   lon=0.00000000000000000000\n"
    "   posc=8901\n}\n\n"
    "; Entry 2 of 3\n{\n   token=\"FER\"\n   name=\"100% Ferro\"\n   lon=-17.66666666666666785090\n"
    "   posc=-3\n}\n\n"
    "; Entry 3 of 3\n{\n   token=\"\"\n   name=\"\"\n   lon=2.59692129999999998802\n}\n\n"
    ";\n; End meridians configuration file.\n;\n";

}  // namespace

TEST(Meridians, AreSavedByteForByte) {
  EXPECT_EQ(Saved(ThreeMeridians()), kThreeSaved);
  EXPECT_EQ(Saved(MeridianList()),
            ";\n; Brevan meridians configuration file.\n;\n\n;\n; End meridians configuration file.\n;\n");
}

TEST(Meridians, ASavedListIsLoadedAgain) {
  // Twenty decimals give the same double back from 2^-14 on, where half a unit in the last place is more than
  // half of the last decimal; below, they are off by less than one of them.
  const TempFolder folder;
  EXPECT_TRUE(orv::test::Holds([&] {
    MeridianList list;
    const int count = orv::test::IntIn(0, 5);
    for (int i = 0; i < count; ++i) {
      MeridianInfo meridian;
      meridian.token = orv::test::QuotableText();
      meridian.name = orv::test::QuotableText();
      meridian.longitude =
          orv::test::AnyBool() ? orv::test::NumberIn(-360.0, 360.0) : orv::test::NumberIn(-1e-3, 1e-3);
      meridian.posc = orv::test::AnyInt();
      list.Add(meridian);
    }
    const std::string path = folder.Path("x.ocf");
    ORV_HOLDS(list.Save(path.c_str()));
    MeridianList read;
    ORV_HOLDS(read.Load(path.c_str(), true));
    ORV_HOLDS(read.Count() == count);
    for (int i = 0; i < count; ++i) {
      ORV_HOLDS(std::string(read.EnumToken(i)) == list.EnumToken(i));
      ORV_HOLDS(std::string(read.EnumName(i)) == list.EnumName(i));
      ORV_HOLDS(read.EnumPOSC(i) == list.EnumPOSC(i));
      const double written = list.EnumLongitude(i);
      const double tolerance = std::fabs(written) >= std::ldexp(1.0, -14) ? 0.0 : 1e-20;
      ORV_HOLDS(std::fabs(read.EnumLongitude(i) - written) <= tolerance);
    }
  }));
}

TEST(Meridians, TheDefaultFileIsSavedInTheWorkingDirectory) {
  const TempFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_TRUE(ThreeMeridians().Save(nullptr));
  std::filesystem::current_path(before);
  EXPECT_EQ(folder.Read("meridian.ocf"), kThreeSaved);
}

TEST(Meridians, AFileThatCannotBeWrittenIsReported) {
  EXPECT_MERIDIANS_FAIL(
      MeridianList().Save("/no such 100% folder/x.ocf"), 1028,
      "Failed opening meridians configuration file for writing '/no such 100% folder/x.ocf'");
}

TEST(Meridians, ADecimalCommaOfTheHostChangesNothing) {
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(Saved(ThreeMeridians()), kThreeSaved);
  EXPECT_EQ(Loaded("lon=2d20m14.025sE").longitude, 2 + 20 / 60.0 + 14.025 / 3600);
}

TEST(Meridians, TheNameOfAFileMayBeATextOfTheListsOwn) {
  const TempFolder folder;
  const std::string path = folder.Path("of its own.ocf");  // longer than what a string keeps in itself
  folder.Write("of its own.ocf", "{ token=\"" + path + "\" name=n lon=1 }");
  MeridianList list;
  ASSERT_TRUE(list.Load(path.c_str(), true));
  EXPECT_TRUE(list.Load(list.EnumToken(list.First()), true));
  EXPECT_EQ(list.Count(), 1);
}
