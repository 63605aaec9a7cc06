#include "orv/tables/EllipsoidList.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::EllipsoidDef;
using orv::EllipsoidList;
using orv::ORVKnownEllipsoidsList;
using orv::test::TempFolder;

constexpr double kWgs84Flattening = 1.0 / 298.257223563;
constexpr const char* kBadIndex = "Bad parameter to function call.";
constexpr const char* kInvalid = "Invalid ellipsoid parameters specified.";

#define EXPECT_LIST_FAILS(statement, code, text) EXPECT_RAISES(statement, code, "EllipsoidList", text)

EllipsoidDef Make(const char* token, const char* name, int posc, double radius = 6378137.0,
                  double flattening = kWgs84Flattening) {
  return {radius, flattening, token, name, nullptr, posc};
}

EllipsoidDef Wgs84() { return Make("WGS84", "WGS 84", 7030); }

// The library-wide list, empty at the beginning and at the end of each test.
class KnownEllipsoids : public ::testing::Test {
 protected:
  void SetUp() override { ORVKnownEllipsoidsList.Flush(); }
  void TearDown() override { ORVKnownEllipsoidsList.Flush(); }
};

// Loads a text into a list.  The file's name holds a separator, so it is found as given.
bool LoadText(EllipsoidList& list, const TempFolder& folder, const std::string& text) {
  return list.Load(folder.Write("list.ocf", text).c_str(), true);
}

EllipsoidDef Loaded(const std::string& pairs) {
  const TempFolder folder;
  EllipsoidList list;
  EXPECT_TRUE(LoadText(list, folder, "{ " + pairs + " }"));
  EXPECT_EQ(list.Count(), 1);
  EllipsoidDef def;
  if (list.Count() > 0) list.Enum(2, def);
  return def;
}

// Expects that loading `text` raises `message` (with "FILE" for the file's name) and leaves `before` entries.
void ExpectLoadFails(EllipsoidList& list, const std::string& text, int code, std::string message,
                     int before = 0) {
  const TempFolder folder;
  const size_t at = message.find("FILE");
  if (at != std::string::npos) message.replace(at, 4, folder.Path("list.ocf"));
  EXPECT_LIST_FAILS(LoadText(list, folder, text), code, message);
  EXPECT_EQ(list.Count(), before) << text;
}

std::string Saved(const EllipsoidList& list) {
  const TempFolder folder;
  EXPECT_TRUE(list.Save(folder.Path("x.ocf").c_str()));
  return folder.Read("x.ocf");
}

std::string Tokens(const EllipsoidList& list) {
  std::string tokens;
  for (int i = list.First(); i <= list.Last(); ++i) tokens += std::string(list.EnumToken(i)) + " ";
  return tokens;
}

}  // namespace

// ---- entries ---------------------------------------------------------------------------------------------

TEST(EllipsoidList, AnEmptyListFindsNothing) {
  const EllipsoidList list;
  EXPECT_EQ(list.First(), 2);
  EXPECT_EQ(list.Last(), 1);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.FindByName("WGS 84", nullptr), 0);
  EXPECT_EQ(list.FindByToken("WGS84", nullptr), 0);
  EXPECT_EQ(list.FindByPOSCNumber(7030), 0);
  EXPECT_EQ(list.FindEllipsoid(Wgs84()), 0);
  EXPECT_EQ(list.FindByDimensions(6378137.0, kWgs84Flattening), 0);
}

TEST(EllipsoidList, EntriesAreNumberedFromTwo) {
  EllipsoidList list;
  EXPECT_EQ(list.Add(Wgs84()), 2);
  EXPECT_EQ(list.Add(Make("S", "Sphere", 0, 6370997.0, 0.0)), 3);
  EXPECT_EQ(list.First(), 2);
  EXPECT_EQ(list.Last(), 3);
  EXPECT_EQ(list.Count(), 2);
}

TEST(EllipsoidList, EveryFieldOfAnEntryIsEnumerated) {
  EllipsoidList list;
  list.Add(Wgs84());
  list.Add(Make(nullptr, nullptr, -4, 2.0, 0.25));
  ASSERT_NE(list.Enum(3), nullptr);
  EXPECT_EQ(list.Enum(3)->GetMajorRadius(), 2.0);
  EllipsoidDef def;
  EXPECT_TRUE(list.Enum(2, def));
  EXPECT_STREQ(def.GetToken(), "WGS84");
  EXPECT_STREQ(list.EnumToken(2), "WGS84");
  EXPECT_STREQ(list.EnumName(2), "WGS 84");
  EXPECT_EQ(list.EnumRadius(2), 6378137.0);
  EXPECT_EQ(list.EnumFlattening(2), kWgs84Flattening);
  EXPECT_EQ(list.EnumPOSCNumber(2), 7030);
  EXPECT_EQ(list.EnumPOSCNumber(3), -4);
  EXPECT_EQ(list.EnumFlattening(3), 0.25);
  std::string text = "before";
  EXPECT_TRUE(list.EnumToken(2, text));
  EXPECT_EQ(text, "WGS84");
  EXPECT_TRUE(list.EnumName(2, text));
  EXPECT_EQ(text, "WGS 84");
  // An empty text is no null pointer here: null is the answer for a bad index.
  EXPECT_STREQ(list.EnumToken(3), "");
  EXPECT_STREQ(list.EnumName(3), "");
  EXPECT_TRUE(list.EnumToken(3, text));
  EXPECT_EQ(text, "");
}

TEST(EllipsoidList, IndexesOutsideTheListAreBadParameters) {
  EllipsoidList list;
  list.Add(Wgs84());
  list.Add(Wgs84());
  EllipsoidDef def;
  std::string text;
  for (const int index : {1, 0, -1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_LIST_FAILS(list.Enum(index), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.Enum(index, def), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumToken(index), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumToken(index, text), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumName(index), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumName(index, text), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumRadius(index), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumFlattening(index), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumPOSCNumber(index), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.Replace(index, Wgs84()), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.Replace(index, EllipsoidDef()), 1032, kBadIndex);  // before the entry's own check
    EXPECT_LIST_FAILS(list.Remove(index), 1032, kBadIndex);
  }
  EXPECT_EQ(list.Count(), 2);
}

TEST(EllipsoidList, InvalidEllipsoidsAreRefusedByAnyList) {
  EllipsoidList list;
  EllipsoidDef flat = Wgs84();
  flat.SetFlattening(1.0);
  for (EllipsoidList* const any : {&list, &ORVKnownEllipsoidsList}) {
    any->Flush();
    EXPECT_LIST_FAILS(any->Add(EllipsoidDef()), 1032, kInvalid);
    EXPECT_LIST_FAILS(any->Add(flat), 1032, kInvalid);
    any->Add(Wgs84());
    EXPECT_LIST_FAILS(any->Replace(2, EllipsoidDef()), 1032, kInvalid);
    EXPECT_EQ(any->Count(), 1);
    EXPECT_STREQ(any->EnumToken(2), "WGS84");
    any->Flush();
  }
}

TEST(EllipsoidList, OtherListsAcceptDuplicates) {
  EllipsoidList list;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list.Add(Wgs84()), i + 2);
  EXPECT_TRUE(list.Replace(3, Wgs84()));
  EXPECT_NE(list.FindByToken("WGS84", nullptr), 0);
}

TEST_F(KnownEllipsoids, AreUniqueByNumberTokenAndName) {
  ORVKnownEllipsoidsList.Add(Wgs84());
  const auto expect = [](const EllipsoidDef& def, const char* message) {
    EXPECT_LIST_FAILS(ORVKnownEllipsoidsList.Add(def), 1032, message);
    EXPECT_EQ(ORVKnownEllipsoidsList.Count(), 1);
  };
  expect(Make("wgs84", "wgs 84", 7030), "Can't have two ellipsoids with the same POSC/EPSG number.");
  expect(Make("wgs84", "wgs 84", 1), "Can't have two ellipsoids with the same token.");
  expect(Make("other", "wgs 84", 1), "Can't have two ellipsoids with the same name.");
  EXPECT_EQ(ORVKnownEllipsoidsList.Add(Make("other", "other", 1)), 3) << "the same dimensions are no clash";
}

TEST_F(KnownEllipsoids, MayRepeatNumberZeroAndEmptyTexts) {
  EXPECT_EQ(ORVKnownEllipsoidsList.Add(Make(nullptr, nullptr, 0)), 2);
  EXPECT_EQ(ORVKnownEllipsoidsList.Add(Make(nullptr, nullptr, 0)), 3);
  // Deliberate: every number but 0 counts, though only positive ones can be found.
  EXPECT_EQ(ORVKnownEllipsoidsList.Add(Make(nullptr, nullptr, -1)), 4);
  EXPECT_LIST_FAILS(ORVKnownEllipsoidsList.Add(Make(nullptr, nullptr, -1)), 1032,
                    "Can't have two ellipsoids with the same POSC/EPSG number.");
}

TEST_F(KnownEllipsoids, AreReplacedUnderTheSameRulesButForThemselves) {
  EllipsoidList& list = ORVKnownEllipsoidsList;
  list.Add(Make("A", "a name", 1));
  list.Add(Make("B", "b name", 2));
  EXPECT_TRUE(list.Replace(2, Make("a", "A NAME", 1, 5.0)));
  EXPECT_EQ(list.EnumRadius(2), 5.0);
  EXPECT_LIST_FAILS(list.Replace(2, Make("A", "a name", 2)), 1032,
                    "Can't have two ellipsoids with the same POSC/EPSG number.");
  EXPECT_LIST_FAILS(list.Replace(2, Make("b", "a name", 1)), 1032,
                    "Can't have two ellipsoids with the same token.");
  EXPECT_LIST_FAILS(list.Replace(2, Make("A", "B NAME", 1)), 1032,
                    "Can't have two ellipsoids with the same name.");
  EXPECT_EQ(list.EnumRadius(2), 5.0);
  EXPECT_TRUE(list.Replace(2, Make("C", "c name", 3)));
  EXPECT_EQ(list.FindByToken("A", nullptr), 0);
  EXPECT_EQ(list.FindByName("a name", nullptr), 0);
  EXPECT_EQ(list.FindByPOSCNumber(1), 0);
  EXPECT_EQ(list.FindByToken("c", nullptr), 2);
  EXPECT_EQ(list.FindByName("C Name", nullptr), 2);
  EXPECT_EQ(list.FindByPOSCNumber(3), 2);
}

TEST(EllipsoidList, RemovingMovesLaterEntriesDown) {
  EllipsoidList list;
  for (const char* const token : {"M", "z", "A", "q"}) list.Add(Make(token, token, 10 + *token));
  EXPECT_TRUE(list.Remove(2));
  EXPECT_EQ(Tokens(list), "z A q ");
  for (int i = list.First(); i <= list.Last(); ++i) {
    EXPECT_EQ(list.FindByToken(list.EnumToken(i), nullptr), i);
    EXPECT_EQ(list.FindByName(list.EnumName(i), nullptr), i);
    EXPECT_EQ(list.FindByPOSCNumber(list.EnumPOSCNumber(i)), i);
  }
  EXPECT_EQ(list.FindByToken("M", nullptr), 0);
  EXPECT_TRUE(list.Remove(4));
  EXPECT_TRUE(list.Remove(2));
  EXPECT_EQ(Tokens(list), "A ");
  EXPECT_EQ(list.FindByToken("a", nullptr), 2);
}

TEST(EllipsoidList, FlushEmptiesTheIndexesToo) {
  EllipsoidList list;
  list.Add(Wgs84());
  list.Flush();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.FindByToken("WGS84", nullptr), 0);
  EXPECT_EQ(list.Add(Make("B", "b", 1)), 2);
  EXPECT_EQ(list.FindByToken("B", nullptr), 2);
}

TEST(EllipsoidList, CopiesAreWholeAndIndependent) {
  EllipsoidList list;
  list.Add(Wgs84());
  list.Add(Make("B", "b", 1));
  const EllipsoidList built(list);
  EllipsoidList assigned;
  assigned.Add(Make("gone", "gone", 9));
  assigned = list;
  EllipsoidList copied;
  copied.CopyAll(list);
  copied.CopyAll(copied);
  list.Flush();
  for (const EllipsoidList* const copy :
       {&built, static_cast<const EllipsoidList*>(&assigned), static_cast<const EllipsoidList*>(&copied)}) {
    EXPECT_EQ(Tokens(*copy), "WGS84 B ");
    EXPECT_EQ(copy->FindByName("B", nullptr), 3);
    EXPECT_EQ(copy->FindByToken("gone", nullptr), 0);
    EXPECT_EQ(copy->FindByPOSCNumber(7030), 2);
  }
}

TEST_F(KnownEllipsoids, GiveCopiesThatAcceptDuplicates) {
  ORVKnownEllipsoidsList.Add(Wgs84());
  EllipsoidList copy(ORVKnownEllipsoidsList);
  EXPECT_EQ(copy.Add(Wgs84()), 3);
  EXPECT_LIST_FAILS(ORVKnownEllipsoidsList.Add(Wgs84()), 1032,
                    "Can't have two ellipsoids with the same POSC/EPSG number.");
}

// ---- finding ---------------------------------------------------------------------------------------------

TEST(EllipsoidList, FindsByTextWithoutRegardToCaseAndCopiesTheEntry) {
  EllipsoidList list;
  list.Add(Make("WGS84", "WGS 84", 7030));
  list.Add(Make("GRS_80", "GRS 1980", 7019));
  EllipsoidDef out;
  EXPECT_EQ(list.FindByToken("grs_80", &out), 3);
  EXPECT_STREQ(out.GetName(), "GRS 1980");
  EXPECT_EQ(list.FindByName("wgs 84", &out), 2);
  EXPECT_STREQ(out.GetToken(), "WGS84");
  EXPECT_EQ(list.FindByName("GRS_80", &out), 0) << "a token is no name";
  EXPECT_EQ(list.FindByToken("WGS8", &out), 0);
  EXPECT_STREQ(out.GetToken(), "WGS84") << "not found leaves it alone";
  // The text may be the copied entry's own.
  EXPECT_EQ(list.FindByName(out.GetName(), &out), 2);
}

TEST(EllipsoidList, NullEmptyAndNonPositiveKeysAreNeverFound) {
  EllipsoidList list;
  list.Add(Make(nullptr, nullptr, 0));
  list.Add(Make("x", "y", -5));
  EXPECT_EQ(list.FindByToken(nullptr, nullptr), 0);
  EXPECT_EQ(list.FindByToken("", nullptr), 0);
  EXPECT_EQ(list.FindByName(nullptr, nullptr), 0);
  EXPECT_EQ(list.FindByName("", nullptr), 0);
  EXPECT_EQ(list.FindByPOSCNumber(0), 0);
  EXPECT_EQ(list.FindByPOSCNumber(-5), 0);
}

TEST(EllipsoidList, FindsAreRightAmongManyEntries) {
  EllipsoidList list;
  for (int i = 0; i < 500; ++i) {
    const int scrambled = i * 173 % 500;
    const std::string token = (i % 2 ? "tok" : "TOK") + std::to_string(scrambled);
    list.Add(Make(token.c_str(), ("name " + std::to_string(499 - scrambled)).c_str(), scrambled + 1));
  }
  for (int i = 0; i < 500; ++i) {
    const int index = list.FindByToken(("Tok" + std::to_string(i)).c_str(), nullptr);
    ASSERT_NE(index, 0);
    EXPECT_EQ(list.EnumPOSCNumber(index), i + 1);
    EXPECT_EQ(list.FindByName(("NAME " + std::to_string(499 - i)).c_str(), nullptr), index);
    EXPECT_EQ(list.FindByPOSCNumber(i + 1), index);
  }
}

TEST(EllipsoidList, FindEllipsoidWantsTheSameBits) {
  EllipsoidList list;
  list.Add(Make("near", "near", 0, std::nextafter(6378137.0, 0.0)));
  list.Add(Make("first", "first", 0));
  list.Add(Make("second", "second", 0));
  EXPECT_EQ(list.FindEllipsoid(Make("any", "any", 99)), 3) << "the first of the equals; texts do not count";
  EXPECT_EQ(list.FindEllipsoid(Make("", "", 0, 6378137.0, std::nextafter(kWgs84Flattening, 1.0))), 0);
}

TEST(EllipsoidList, FindByDimensionsAllowsABillionth) {
  EllipsoidList list;
  list.Add(Make("S", "Sphere", 0, 6370997.0, 0.0));
  list.Add(Wgs84());
  EXPECT_EQ(list.FindByDimensions(6378137.000001, 1.0 / 298.257223563), 3);
  EXPECT_EQ(list.FindByDimensions(6378137.01, 1.0 / 298.257223563), 0);
  EXPECT_EQ(list.FindByDimensions(6378137.0, 1.0 / 298.2572235), 3);
  EXPECT_EQ(list.FindByDimensions(6378137.0, 1.0 / 298.257222101), 0) << "GRS 1980";
  EXPECT_EQ(list.FindByDimensions(6370997.0, 0.0), 2);
  EXPECT_EQ(list.FindByDimensions(6370997.001, 0.0), 2);
  EXPECT_EQ(list.FindByDimensions(6370997.0, 1e-300), 0) << "nothing but 0 is near a sphere's flattening";
  EXPECT_EQ(list.FindByDimensions(std::numeric_limits<double>::quiet_NaN(), 0.0), 0);
}

TEST(EllipsoidList, FindByDimensionsIsRelativeToTheValueAskedFor) {
  // Deliberate.  A billionth of 1e9 + 1 is more than 1, a billionth of 1e9 is not.
  EllipsoidList list;
  list.Add(Make("", "", 0, 1e9, 0.25));
  EXPECT_EQ(list.FindByDimensions(1e9 + 1.0, 0.25), 2);
  list.Flush();
  list.Add(Make("", "", 0, 1e9 + 1.0, 0.25));
  EXPECT_EQ(list.FindByDimensions(1e9, 0.25), 0);
}

TEST(EllipsoidList, FindByDimensionsPrefersAnExactMatch) {
  EllipsoidList list;
  list.Add(Make("near", "near", 0, 6378137.000001));
  list.Add(Make("exact", "exact", 0, 6378137.0));
  list.Add(Make("near too", "near too", 0, 6378137.000002));
  EXPECT_EQ(list.FindByDimensions(6378137.0, kWgs84Flattening), 3);
  EXPECT_EQ(list.FindByDimensions(6378137.0000005, kWgs84Flattening), 2) << "else the first near one";
}

// ---- loading ---------------------------------------------------------------------------------------------

TEST(EllipsoidList, EveryKeyIsLoaded) {
  const EllipsoidDef def = Loaded(
      "TOKEN=\"T\" Name=\"My name\" comment='A ; comment' radius=6378206.4 flat=0.0033 POSC=7008 unknown=5");
  EXPECT_STREQ(def.GetToken(), "T");
  EXPECT_STREQ(def.GetName(), "My name");
  EXPECT_STREQ(def.GetComment(), "A ; comment");
  EXPECT_EQ(def.GetMajorRadius(), 6378206.4);
  EXPECT_EQ(def.GetFlattening(), 0.0033);
  EXPECT_EQ(def.GetPOSCNumber(), 7008);
  EXPECT_EQ(Loaded("radius=1 invflat=298.257223563").GetFlattening(), 1.0 / 298.257223563);
}

TEST(EllipsoidList, TheMinorRadiusUsesTheRadiusReadSoFar) {
  // Deliberate: the order of the keys matters, and so does the form of the division.
  EXPECT_EQ(Loaded("radius=6378137 minrad=6356752.3142").GetFlattening(),
            1.0 / (6378137.0 / (6378137.0 - 6356752.3142)));
  EXPECT_EQ(Loaded("radius=1000 minrad=1000").GetFlattening(), 0.0) << "a sphere";
  EXPECT_EQ(Loaded("radius=1000 minrad=750 radius=5").GetFlattening(), 0.25);
  EllipsoidList list;
  ExpectLoadFails(list, "{ minrad=6356752.3142 radius=6378137 }", 1032, kInvalid);
}

TEST(EllipsoidList, ALaterFlatteningOverridesAnEarlierOne) {
  EXPECT_EQ(Loaded("radius=1000 flat=0.5 invflat=8").GetFlattening(), 0.125);
  EXPECT_EQ(Loaded("radius=1000 invflat=8 flat=0.5").GetFlattening(), 0.5);
  EXPECT_EQ(Loaded("radius=1000 invflat=8 minrad=750").GetFlattening(), 0.25);
  EXPECT_EQ(Loaded("radius=1000 minrad=750 invflat=8").GetFlattening(), 0.125);
}

TEST(EllipsoidList, BadDimensionsAreReportedByTheListNotByTheSetters) {
  EllipsoidList list;
  const std::string good = "{ radius=1 }\n";
  ExpectLoadFails(list, good + "{\nname=x\n}", 1029, "FILE(4):  Radius value must be positive.\n", 1);
  ExpectLoadFails(list, good + "{ radius=0 }", 1029, "FILE(2):  Radius value must be positive.\n", 1);
  ExpectLoadFails(list, good + "{ radius=-5 }", 1029, "FILE(2):  Radius value must be positive.\n", 1);
  ExpectLoadFails(list, good + "{ radius=x }", 1029, "FILE(2):  Radius value must be positive.\n", 1);
  ExpectLoadFails(list, good + "{ radius=1 flat=-0.1 }", 1032, kInvalid, 1);
  ExpectLoadFails(list, good + "{ radius=1 flat=1 }", 1032, kInvalid, 1);
  ExpectLoadFails(list, good + "{ radius=1 invflat=0 }", 1032, kInvalid, 1);
  ExpectLoadFails(list, good + "{ radius=1 invflat=-5 }", 1032, kInvalid, 1);
}

TEST(EllipsoidList, SyntaxErrorsTellFileAndLine) {
  EllipsoidList list;
  const std::string good = "; head\n{ radius=1 }\n";
  ExpectLoadFails(list, good + "name", 1029, "FILE(3): Expected '{', found 'name' at start of entry\n", 1);
  ExpectLoadFails(list, good + "{ radius\n5 }", 1029, "FILE(4):  Expected '=' between parameter and value.\n",
                  1);
  ExpectLoadFails(list, good + "{ radius=1e+5 }", 1029,
                  "FILE(3):  Expected '=' between parameter and value.\n", 1);
  ExpectLoadFails(list, good + "{ radius=1\n", 1029, "FILE(4):  Unexpected end of file.\n", 1);
  ExpectLoadFails(list, good + "{ radius", 1029, "FILE(3):  Unexpected end of file.\n", 1);
  ExpectLoadFails(list, good + "{ radius=", 1029, "FILE(3):  Unexpected end of file.\n", 1);
}

TEST_F(KnownEllipsoids, NeedANameAndThenATokenInTheirFile) {
  EllipsoidList& list = ORVKnownEllipsoidsList;
  const std::string good = "{ radius=1 token=T name=N }\n";
  ExpectLoadFails(list, good + "{ radius=1 }", 1029, "FILE(2):  No name parameter specified.\n", 1);
  ExpectLoadFails(list, good + "{ radius=1 token=U }", 1029, "FILE(2):  No name parameter specified.\n", 1);
  ExpectLoadFails(list, good + "{ radius=1 name=M }", 1029, "FILE(2):  No token parameter specified.\n", 1);
  ExpectLoadFails(list, good + "{ }", 1029, "FILE(2):  Radius value must be positive.\n", 1);
  // Any other list takes them.
  const TempFolder folder;
  EllipsoidList other;
  EXPECT_TRUE(LoadText(other, folder, good + "{ radius=1 }"));
  EXPECT_EQ(other.Count(), 2);
}

TEST_F(KnownEllipsoids, AreUniqueInTheirFileToo) {
  ExpectLoadFails(ORVKnownEllipsoidsList, "{ radius=1 token=T name=N posc=5 } { radius=2 token=t name=M }",
                  1032, "Can't have two ellipsoids with the same token.", 1);
}

TEST(EllipsoidList, EntriesBeginAfreshAndLoadingReplacesTheList) {
  const TempFolder folder;
  EllipsoidList list;
  list.Add(Make("old", "old", 1));
  EXPECT_TRUE(LoadText(list, folder, "{ radius=5 flat=0.5 token=A name=N comment=C posc=7 } { radius=6 }"));
  ASSERT_EQ(list.Count(), 2);
  EllipsoidDef second;
  list.Enum(3, second);
  EXPECT_EQ(second.GetToken(), nullptr);
  EXPECT_EQ(second.GetName(), nullptr);
  EXPECT_EQ(second.GetComment(), nullptr);
  EXPECT_EQ(second.GetPOSCNumber(), 0);
  EXPECT_EQ(second.GetFlattening(), 0.0);
  EXPECT_EQ(list.FindByToken("old", nullptr), 0);
  EXPECT_EQ(list.FindByToken("A", nullptr), 2);
}

TEST(EllipsoidList, AMissingFileIsReportedOnRequestAndEmptiesTheListAnyway) {
  EllipsoidList list;
  list.Add(Wgs84());
  EXPECT_LIST_FAILS(list.Load("no 100% such.ocf", true), 1028,
                    "Can't find ellipsoid configuration file 'no 100% such.ocf'");
  EXPECT_EQ(list.Count(), 0);
  list.Add(Wgs84());
  orv::ORVResetError();
  EXPECT_FALSE(list.Load("no such.ocf", false));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TEST(EllipsoidList, TheDefaultFileIsFoundInTheConfigurationPath) {
  const TempFolder folder;
  folder.Write("ellipsoid.ocf", "{ token=Default radius=5 }");
  const std::string before = orv::Globals().configPath;
  orv::ORVSetConfigPath(folder.Path().c_str());
  EllipsoidList list;
  EXPECT_TRUE(list.Load(nullptr, true));
  EXPECT_EQ(Tokens(list), "Default ");
  std::filesystem::remove(folder.Path("ellipsoid.ocf"));
  // Nobody but a full installation beside this program could offer another one.
  std::string elsewhere;
  if (!orv::ORVFindConfigFile("ellipsoid.ocf", elsewhere)) {
    EXPECT_LIST_FAILS(list.Load(nullptr, true), 1028,
                      "Can't find ellipsoid configuration file 'ellipsoid.ocf'");
  }
  orv::ORVSetConfigPath(before.c_str());
}

// ---- saving ----------------------------------------------------------------------------------------------

namespace {

EllipsoidList ThreeEllipsoids() {
  EllipsoidList list;
  list.Add(Wgs84());
  list.Add(Make("SPHERE", "100% round", 0, 6370997.00004, 0.0));
  list.Add({2.5, 0.25, nullptr, nullptr, "a comment", -3});
  return list;
}

// 1 / (1 / 298.257223563) in doubles is 298.2572235630000250239...
constexpr const char* kThreeSaved =
    ";\n; Brevan ellipsoid configuration file.\n;\n\n"
    "; Entry 1 of 3\n{\n   token=\"WGS84\"\n   name=\"WGS 84\"\n   radius=6378137.0000\n"
    "   invflat=298.2572235630000250239\n   posc=7030\n}\n\n"
    "; Entry 2 of 3\n{\n   token=\"SPHERE\"\n   name=\"100% round\"\n   radius=6370997.0000\n"
    "   flat=0.0000000000000000000\n}\n\n"
    "; Entry 3 of 3\n{\n   token=\"\"\n   name=\"\"\n   radius=2.5000\n   invflat=4.0000000000000000000\n   posc=-3\n"
    "   comment=\"a comment\"\n}\n\n"
    ";\n; End ellipsoid configuration file.\n;\n";

}  // namespace

TEST(EllipsoidList, IsSavedByteForByte) {
  EXPECT_EQ(Saved(ThreeEllipsoids()), kThreeSaved);
  EXPECT_EQ(Saved(EllipsoidList()),
            ";\n; Brevan ellipsoid configuration file.\n;\n\n;\n; End ellipsoid configuration file.\n;\n");
}

TEST(EllipsoidList, SmallFlatteningsAreSavedAsTheyAre) {
  const double limit = 1.1920928955078125e-7;  // 2^-23
  const auto saved = [](double flattening) {
    EllipsoidList list;
    list.Add(Make("T", "N", 0, 1.0, flattening));
    return Saved(list);
  };
  EXPECT_NE(saved(limit).find("\n   flat=0.0000001192092895508\n}"), std::string::npos) << saved(limit);
  EXPECT_NE(saved(std::nextafter(limit, 1.0)).find("\n   invflat=8388607.999999998"), std::string::npos);
  EXPECT_EQ(saved(std::nextafter(limit, 1.0)).find("flat=0"), std::string::npos);
}

TEST(EllipsoidList, ASavedListIsLoadedAgainWithinItsDecimals) {
  const TempFolder folder;
  const EllipsoidList list = ThreeEllipsoids();
  list.Save(folder.Path("x.ocf").c_str());
  EllipsoidList read;
  EXPECT_TRUE(read.Load(folder.Path("x.ocf").c_str(), true));
  ASSERT_EQ(read.Count(), 3);
  EXPECT_EQ(Tokens(read), Tokens(list));
  for (int i = 2; i <= 4; ++i) {
    EXPECT_NEAR(read.EnumRadius(i), list.EnumRadius(i), 0.5001e-4);  // deliberate: four decimals
    EXPECT_NEAR(read.EnumFlattening(i), list.EnumFlattening(i), 1e-18);
    EXPECT_EQ(read.EnumPOSCNumber(i), list.EnumPOSCNumber(i));
    EXPECT_STREQ(read.EnumName(i), list.EnumName(i));
  }
  EXPECT_STREQ(read.Enum(4)->GetComment(), "a comment");
}

TEST(EllipsoidList, TheDefaultFileIsSavedInTheWorkingDirectory) {
  const TempFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_TRUE(ThreeEllipsoids().Save(nullptr));
  std::filesystem::current_path(before);
  EXPECT_EQ(folder.Read("ellipsoid.ocf"), kThreeSaved);
}

TEST(EllipsoidList, AFileThatCannotBeWrittenIsReported) {
  EXPECT_LIST_FAILS(EllipsoidList().Save("/no such 100% folder/x.ocf"), 1028,
                    "Failed opening configuration file for writing '/no such 100% folder/x.ocf'");
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST(EllipsoidList, DumpsEntriesAndIndexes) {
  EllipsoidList list;
  list.Add(Make("b", "Zulu", 7030, 6378137.0, 0.25));
  list.Add(Make("A", nullptr, 0, 2.0, 0.0));
  std::string text = "before\n";
  list.DebugDump(text, 1);
  EXPECT_EQ(orv::test::Masked(text),
            "before\n"
            " EllipsoidList this=ADDRESS:\n"
            " ENTRY 2\n"
            "   Ellipsoid this=ADDRESS:\n"
            "     Token      = 'b'\n"
            "     Name       = 'Zulu'\n"
            "     POSC       = 7030\n"
            "     Comment    = ''\n"
            "     Radius     =           6378137.000000\n"
            "     Flattening =     0.250000000000000000\n"
            " ENTRY 3\n"
            "   Ellipsoid this=ADDRESS:\n"
            "     Token      = 'A'\n"
            "     Name       = ''\n"
            "     POSC       = 0\n"
            "     Comment    = ''\n"
            "     Radius     =                 2.000000\n"
            "     Flattening =     0.000000000000000000\n"
            " IndexByName:\n"
            "   0:     1 ()\n"
            "   1:     0 (Zulu)\n"
            " IndexByToken:\n"
            "   0:     1 (A)\n"
            "   1:     0 (b)\n"
            " IndexByPOSC:\n"
            "   0:     1 (POSC=0)\n"
            "   1:     0 (POSC=7030)\n");
}

TEST(EllipsoidList, DumpsNothingButTitlesWhenEmpty) {
  std::string text;
  EllipsoidList().DebugDump(text, 0);
  EXPECT_EQ(orv::test::Masked(text),
            "EllipsoidList this=ADDRESS:\nIndexByName:\nIndexByToken:\nIndexByPOSC:\n");
}

TEST(EllipsoidList, ADecimalCommaOfTheHostChangesNothing) {
  const EllipsoidList list = ThreeEllipsoids();
  std::string dumpBefore;
  list.DebugDump(dumpBefore, 0);
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(Saved(list), kThreeSaved);
  EXPECT_EQ(Loaded("radius=6378206.4 invflat=294.5").GetMajorRadius(), 6378206.4);
  EXPECT_EQ(Loaded("radius=6378206.4 invflat=294.5").GetFlattening(), 1.0 / 294.5);
  std::string dump;
  list.DebugDump(dump, 0);
  EXPECT_EQ(dump, dumpBefore);
}

TEST(EllipsoidList, TheNameOfAFileMayBeATextOfTheListsOwn) {
  const TempFolder folder;
  const std::string path = folder.Path("of its own.ocf");  // longer than what a string keeps in itself
  folder.Write("of its own.ocf", "{ token=\"" + path + "\" name=n radius=1 }");
  EllipsoidList list;
  ASSERT_TRUE(list.Load(path.c_str(), true));
  EXPECT_TRUE(list.Load(list.EnumToken(list.First()), true));
  EXPECT_EQ(list.Count(), 1);
}

// What a file keeps: a radius to four decimals and a flattening to nineteen digits of its inverse.
TEST(EllipsoidList, RandomListsComeBackFromTheirFile) {
  std::mt19937_64 random(20261121);
  const TempFolder folder;
  for (int round = 0; round < 20; ++round) {
    EllipsoidList list;
    for (int i = 0; i < 10; ++i) {
      EllipsoidDef ellipsoid;
      ellipsoid.SetToken(("token " + std::to_string(i)).c_str());
      ellipsoid.SetName(("name; { } = " + std::to_string(i) + " " + std::to_string(random() % 1000)).c_str());
      ellipsoid.SetMajorRadius(static_cast<double>(1 + random() % 100000000000) / 10000.0);
      ellipsoid.SetFlattening(static_cast<double>(random() % 1000001) / 2e6);
      ASSERT_NE(list.Add(ellipsoid), 0);
    }
    const std::string path = folder.Path("list.ocf");
    ASSERT_TRUE(list.Save(path.c_str()));
    EllipsoidList again;
    ASSERT_TRUE(again.Load(path.c_str(), true));
    ASSERT_EQ(again.Count(), list.Count());
    for (int i = list.First(); i <= list.Last(); ++i) {
      EXPECT_STREQ(again.EnumToken(i), list.EnumToken(i));
      EXPECT_STREQ(again.EnumName(i), list.EnumName(i));
      EXPECT_EQ(again.EnumRadius(i), list.EnumRadius(i));
      EXPECT_NEAR(again.EnumFlattening(i), list.EnumFlattening(i), 4e-16 * list.EnumFlattening(i));
    }
  }
}
