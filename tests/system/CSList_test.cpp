#include "orv/system/CSList.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/Generators.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using test::TempFolder;

constexpr const char* kBadIndex = "Bad parameter to function call";  // no full stop
constexpr const char* kSameName = "Can't have two coordinate systems with the same name.";
constexpr const char* kSameToken = "Can't have two coordinate systems with the same ID token.";

#define EXPECT_LIST_FAILS(statement, code, text) EXPECT_RAISES(statement, code, "CSList", text)

ORVDef Orv(const char* token, const char* name, const DatumDef* datum = nullptr) {
  ORVDef system(datum, nullptr, nullptr);
  system.SetToken(token);
  system.SetName(name);
  return system;
}

UCSDef Ucs(const char* token, const char* name, double scale = 1.0) {
  UCSDef system(scale, 0.0, 0.0, nullptr);
  system.SetToken(token);
  system.SetName(name);
  return system;
}

DatumDef Datum(const char* token, const char* name) {
  DatumDef datum = test::MolodenskyDatum();
  datum.SetToken(token);
  datum.SetName(name);
  return datum;
}

/// A system whose own check fails: its text is decoded, which no setter judges.
UCSDef Invalid() {
  std::string text;
  Ucs("BAD", "bad", 2.0).EncodeToText(text);
  UCSDef system;
  const size_t at = text.find('2', text.find("Scale"));
  text.insert(at, "-");
  system.DecodeFromText(text, nullptr);
  return system;
}

// The known systems, empty at the beginning and at the end of each test.
class KnownSystems : public test::KnownDatums {
 protected:
  void SetUp() override {
    KnownDatums::SetUp();
    ORVKnownSystemsList.Flush();
  }
  void TearDown() override {
    ORVKnownSystemsList.Flush();
    KnownDatums::TearDown();
  }
};

std::string Tokens(const CSList& list) {
  std::string tokens;
  for (int pos = list.First(); pos <= list.Last(); ++pos) tokens += std::string(list.EnumToken(pos)) + " ";
  return tokens;
}

bool LoadText(CSList& list, const TempFolder& folder, const std::string& text) {
  return list.Load(folder.Write("list.ocf", text).c_str(), true);
}

// Expects that loading `text` raises `message` (with "FILE" for the file's name) and leaves `before` systems.
void ExpectLoadFails(CSList& list, const std::string& text, int code, const char* unit, std::string message,
                     int before = 0) {
  const TempFolder folder;
  const size_t at = message.find("FILE");
  if (at != std::string::npos) message.replace(at, 4, folder.Path("list.ocf"));
  EXPECT_RAISES(LoadText(list, folder, text), code, unit, message) << text;
  EXPECT_EQ(list.Count(), before) << text;
}

std::string Saved(const CSList& list) {
  const TempFolder folder;
  EXPECT_TRUE(list.Save(folder.Path("x.ocf").c_str()));
  return folder.Read("x.ocf");
}

// ---- entries ---------------------------------------------------------------------------------------------

TEST(CSList, AnEmptyListFindsNothing) {
  const CSList list;
  EXPECT_EQ(list.First(), 2);
  EXPECT_EQ(list.Last(), 1);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.FindByToken("A"), 0);
  EXPECT_EQ(list.FindByName("A"), 0);
  EXPECT_EQ(list.FindByShortName("A"), 0);
  EXPECT_EQ(list.FindSystem(ORVDef(), false, true), 0);
  EXPECT_EQ(list.FindSystem(ORVDef(), false, false), 0);
  std::vector<int> positions = {7};
  EXPECT_EQ(list.FindSystem(ORVDef(), false, positions), 0);
  EXPECT_TRUE(positions.empty());
}

TEST(CSList, SystemsAreNumberedFromTwoAndCloned) {
  CSList list;
  UCSDef local = Ucs("U", "Local", 3.0);
  EXPECT_EQ(list.Add(local), 2);
  EXPECT_EQ(list.Add(Orv("O", "Groups|Other")), 3);
  local.SetName("changed");
  EXPECT_EQ(list.First(), 2);
  EXPECT_EQ(list.Last(), 3);
  EXPECT_EQ(list.EnumType(2), CSTypeUCS);
  EXPECT_EQ(list.EnumType(3), CSTypeORV);
  EXPECT_STREQ(list.EnumName(2), "Local");
  EXPECT_STREQ(list.EnumToken(2), "U");
  EXPECT_EQ(static_cast<const UCSDef*>(list.Enum(2))->GetScale(), 3.0);
  EXPECT_STREQ(list.Enum(3)->GetName(), "Groups|Other");
  // A system of the list itself may be handed in.
  EXPECT_EQ(list.Add(*list.Enum(2)), 4);
  EXPECT_TRUE(list.Replace(4, *list.Enum(3)));
  EXPECT_EQ(Tokens(list), "U O O ");
}

TEST(CSList, PositionsOutsideTheListAreBadParameters) {
  CSList list;
  list.Add(Orv("A", "a"));
  list.Add(Orv("B", "b"));
  for (const int pos : {1, 0, -1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_LIST_FAILS(list.Enum(pos), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumType(pos), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumToken(pos), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.EnumName(pos), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.Replace(pos, Orv("C", "c")), 1032, kBadIndex);
    EXPECT_LIST_FAILS(list.Replace(pos, Invalid()), 1032, kBadIndex);  // before the system's own check
    EXPECT_LIST_FAILS(list.Remove(pos), 1032, kBadIndex);
  }
  EXPECT_EQ(Tokens(list), "A B ");
}

TEST_F(KnownSystems, InvalidSystemsAreRefusedByAnyList) {
  CSList own;
  for (CSList* const list : {&own, &ORVKnownSystemsList}) {
    constexpr const char* kText = "Coordinate system fails validity check.  Scale must not be negative.";
    EXPECT_LIST_FAILS(list->Add(Invalid()), 1032, kText);
    list->Add(Orv("A", "a"));
    EXPECT_LIST_FAILS(list->Replace(2, Invalid()), 1032, kText);
    EXPECT_EQ(Tokens(*list), "A ");
  }
}

TEST_F(KnownSystems, AreUniqueByNameAndThenToken) {
  CSList& list = ORVKnownSystemsList;
  list.Add(Orv("A", "Group|a"));
  EXPECT_LIST_FAILS(list.Add(Orv("a", "GROUP|A")), 1032, kSameName);
  EXPECT_LIST_FAILS(list.Add(Ucs("a", "other")), 1032, kSameToken);
  EXPECT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Add(Orv("B", "Other group|a")), 3) << "the same short name is no clash";
  // The clash comes before the system's own check.
  UCSDef both = Invalid();
  both.SetName("group|a");
  EXPECT_LIST_FAILS(list.Add(both), 1032, kSameName);
  // Empty texts are never found, so they never clash.
  EXPECT_EQ(list.Add(ORVDef()), 4);
  EXPECT_EQ(list.Add(ORVDef()), 5);
}

TEST_F(KnownSystems, AreReplacedUnderTheSameRulesButForThemselves) {
  CSList& list = ORVKnownSystemsList;
  list.Add(Orv("A", "a name"));
  list.Add(Orv("B", "b name"));
  EXPECT_TRUE(list.Replace(2, Ucs("a", "A NAME")));
  EXPECT_EQ(list.EnumType(2), CSTypeUCS);
  EXPECT_LIST_FAILS(list.Replace(2, Orv("A", "B Name")), 1032, kSameName);
  EXPECT_LIST_FAILS(list.Replace(2, Orv("b", "a name")), 1032, kSameToken);
  EXPECT_TRUE(list.Replace(2, Orv("C", "x|c name")));
  EXPECT_EQ(list.FindByToken("a"), 0);
  EXPECT_EQ(list.FindByName("a name"), 0);
  EXPECT_EQ(list.FindByToken("c"), 2);
  EXPECT_EQ(list.FindByShortName("C NAME"), 2);
}

TEST_F(KnownSystems, GiveCopiesThatAcceptDuplicates) {
  ORVKnownSystemsList.Add(Orv("A", "a"));
  CSList copy(ORVKnownSystemsList);
  EXPECT_EQ(copy.Add(Orv("A", "a")), 3);
  EXPECT_LIST_FAILS(ORVKnownSystemsList.Add(Orv("A", "a")), 1032, kSameName);
}

TEST(CSList, CopiesAreWholeAndIndependent) {
  CSList list;
  list.Add(Orv("A", "x|a"));
  list.Add(Ucs("B", "b"));
  const CSList built(list);
  CSList assigned;
  assigned.Add(Orv("gone", "gone"));
  assigned = list;
  CSList copied;
  copied.CopyAll(list);
  copied.CopyAll(copied);
  list.Flush();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.FindByToken("A"), 0);
  for (const CSList* const copy :
       {&built, static_cast<const CSList*>(&assigned), static_cast<const CSList*>(&copied)}) {
    EXPECT_EQ(Tokens(*copy), "A B ");
    EXPECT_EQ(copy->FindByName("B"), 3);
    EXPECT_EQ(copy->FindByShortName("a"), 2);
    EXPECT_EQ(copy->FindByToken("gone"), 0);
  }
}

TEST(CSList, RemovingMovesLaterSystemsDown) {
  CSList list;
  for (const char* const token : {"M", "z", "A", "q_"})
    list.Add(Orv(token, (std::string("g|") + token).c_str()));
  EXPECT_TRUE(list.Remove(2));
  EXPECT_EQ(Tokens(list), "z A q_ ");
  for (int pos = list.First(); pos <= list.Last(); ++pos) {
    EXPECT_EQ(list.FindByToken(list.EnumToken(pos)), pos);
    EXPECT_EQ(list.FindByName(list.EnumName(pos)), pos);
    EXPECT_EQ(list.FindByShortName(list.EnumToken(pos)), pos);
  }
  EXPECT_EQ(list.FindByToken("M"), 0);
}

// ---- finding ---------------------------------------------------------------------------------------------

TEST(CSList, FindsByTextWithoutRegardToCase) {
  CSList list;
  list.Add(Orv("UTM_31", "World|UTM|Zone 31"));
  list.Add(Orv("UTMA", "Zone 31 too"));
  EXPECT_EQ(list.FindByToken("utm_31"), 2);
  EXPECT_EQ(list.FindByToken("utma"), 3);
  EXPECT_EQ(list.FindByName("world|utm|ZONE 31"), 2);
  EXPECT_EQ(list.FindByName("Zone 31"), 0);
  EXPECT_EQ(list.FindByShortName("zone 31"), 2);
  EXPECT_EQ(list.FindByShortName("ZONE 31 TOO"), 3) << "a name without groups is its own short name";
}

TEST(CSList, ShortNamesAreThoseOfTheDefinitions) {
  CSList list;
  for (const char* const name : {"World| Spaced", "a||b", "Bar at the end|", "none"}) {
    const ORVDef system = Orv("", name);
    const int pos = list.Add(system);
    const std::string shortName = system.GetShortName();
    EXPECT_EQ(list.FindByShortName(shortName.c_str()), shortName.empty() ? 0 : pos) << name;
  }
  EXPECT_EQ(list.FindByShortName("spaced"), 2);
  EXPECT_EQ(list.FindByShortName("B"), 3);
}

TEST(CSList, ANameThatHoldsAByte0EndsThere) {
  const TempFolder folder;
  CSList list;
  ASSERT_TRUE(LoadText(list, folder, std::string("{ token=T name='g|n\0 and more|than it seems' }", 46)));
  EXPECT_EQ(list.FindByShortName("n"), 2);
  EXPECT_EQ(list.FindByName("g|n"), 2);
  EXPECT_EQ(list.Enum(2)->GetShortName(), "n");
}

TEST(CSList, NullAndEmptyTextsAreNeverFound) {
  CSList list;
  list.Add(ORVDef());
  list.Add(Orv("T", "Only groups|"));
  EXPECT_EQ(list.FindByToken(nullptr), 0);
  EXPECT_EQ(list.FindByToken(""), 0);
  EXPECT_EQ(list.FindByName(nullptr), 0);
  EXPECT_EQ(list.FindByName(""), 0);
  EXPECT_EQ(list.FindByShortName(nullptr), 0);
  EXPECT_EQ(list.FindByShortName(""), 0);
}

TEST(CSList, FindsEqualSystems) {
  const DatumDef wgs84 = test::Wgs84Datum(), other = test::MolodenskyDatum();
  CSList list;
  list.Add(Orv("A", "a", &wgs84));
  list.Add(Orv("B", "b", &other));
  list.Add(Orv("C", "c", &wgs84));
  std::vector<int> positions = {99};
  EXPECT_EQ(list.FindSystem(Orv("", "", &wgs84), false, positions), 2);
  EXPECT_EQ(positions, (std::vector<int>{2, 4}));
  EXPECT_EQ(list.FindSystem(Orv("C", "c", &wgs84), false, true), 2) << "the first match, whatever its name";
  EXPECT_EQ(list.FindSystem(Orv("A", "a", &other), false, false), 3) << "the only one, whatever its name";
  EXPECT_EQ(list.FindSystem(Orv("A", "a"), false, false), 0);
  EXPECT_EQ(list.FindSystem(Ucs("A", "a"), false, true), 0) << "of another type";
}

TEST(CSList, WarpsCountUnlessTheyAreIgnored) {
  WarpDef warp;
  warp.SetCoefficients(1.0, 2.0, 3.0, 4.0, 5.0, 7.0);
  CSList list;
  list.Add(ORVDef(nullptr, nullptr, &warp));
  EXPECT_EQ(list.FindSystem(ORVDef(), false, true), 0);
  EXPECT_EQ(list.FindSystem(ORVDef(), true, true), 2);
  EXPECT_EQ(list.FindSystem(ORVDef(), true, false), 2);
  std::vector<int> positions;
  EXPECT_EQ(list.FindSystem(ORVDef(), false, positions), 0);
  EXPECT_EQ(list.FindSystem(ORVDef(), true, positions), 1);
}

TEST(CSList, TheBestOfEqualSystemsSharesTheMostTexts) {
  const auto best = [](const std::vector<ORVDef>& systems, const ORVDef& asked) {
    CSList list;
    for (const ORVDef& system : systems) list.Add(system);
    return list.FindSystem(asked, false, false);
  };
  // All of these compare equal: texts do not count in that.
  const DatumDef d = Datum("D", "datum"), dToken = Datum("d", "x"), dName = Datum("x", "Datum"),
                 x = Datum("x", "x");
  EXPECT_EQ(best({Orv("", "A"), Orv("", "B")}, Orv("", "b")), 3);
  EXPECT_EQ(best({Orv("A", "x"), Orv("B", "y")}, Orv("b", "z")), 3);
  EXPECT_EQ(best({Orv("T", "x", &x), Orv("T", "x", &dName)}, Orv("T", "x", &d)), 3);
  EXPECT_EQ(best({Orv("T", "x", &x), Orv("T", "x", &dToken)}, Orv("T", "x", &d)), 3);
  // Two points beat one, and of a tie the first is taken.
  EXPECT_EQ(best({Orv("T", "x", &x), Orv("y", "y", &d)}, Orv("T", "z", &d)), 3);
  EXPECT_EQ(best({Orv("T", "x", &x), Orv("y", "y", &dName)}, Orv("T", "z", &d)), 2);
  EXPECT_EQ(best({Orv("y", "y", &dName), Orv("T", "x", &x)}, Orv("T", "z", &d)), 2);
  // Datums without texts agree in them.
  const DatumDef bare = test::MolodenskyDatum();
  EXPECT_EQ(best({Orv("T", "x", &x), Orv("y", "y", &bare)}, Orv("T", "z", &bare)), 3);
}

TEST(CSList, FindsAreRightAmongManySystems) {
  const TempFolder folder;
  std::string text;
  for (int i = 0; i < 500; ++i) {
    const int scrambled = i * 173 % 500;
    text +=
        "{ token=t" + std::to_string(scrambled) + " name=\"g|n" + std::to_string(499 - scrambled) + "\" }\n";
  }
  CSList list;
  LoadText(list, folder, text);
  list.Add(Orv("last", "g|last"));
  for (int i = 0; i < 500; ++i) {
    const int pos = list.FindByToken(("T" + std::to_string(i)).c_str());
    ASSERT_NE(pos, 0);
    EXPECT_EQ(list.EnumToken(pos), "t" + std::to_string(i));
    EXPECT_EQ(list.FindByName(("G|N" + std::to_string(499 - i)).c_str()), pos);
    EXPECT_EQ(list.FindByShortName(("N" + std::to_string(499 - i)).c_str()), pos);
  }
  EXPECT_EQ(list.FindByShortName("LAST"), 502);
}

// ---- loading ---------------------------------------------------------------------------------------------

TEST_F(KnownSystems, LoadBothKindsOfEntries) {
  const TempFolder folder;
  CSList& list = ORVKnownSystemsList;
  list.Add(Orv("old", "old"));
  EXPECT_TRUE(
      LoadText(list, folder,
               "; head\n{ token=A name='g|a' datum=WGS84 posc=9 }\n{TYPE = UnRef token=U name=u scale=2.5}\n"
               "{ type=anything token=B name=b type=later }"));
  EXPECT_EQ(Tokens(list), "A U B ");
  ASSERT_EQ(list.EnumType(2), CSTypeORV);
  const auto& a = static_cast<const ORVDef&>(*list.Enum(2));
  EXPECT_STREQ(a.GetDatum()->GetToken(), "WGS84");
  EXPECT_EQ(a.GetPOSC(), 9);
  ASSERT_EQ(list.EnumType(3), CSTypeUCS);
  EXPECT_EQ(static_cast<const UCSDef*>(list.Enum(3))->GetScale(), 2.5);
  EXPECT_EQ(list.EnumType(4), CSTypeORV);
  EXPECT_EQ(list.FindByShortName("A"), 2);
  EXPECT_EQ(list.FindByToken("old"), 0);
}

TEST(CSList, SyntaxErrorsTellFileAndLine) {
  CSList list;
  const std::string good = "; head\n{ token=A name=a }\n";
  const struct {
    const char* text;
    const char* unit;
    const char* message;
  } rows[] = {
      {"token", "CSList", "FILE(3): Expected '{', found 'token' at start of entry\n"},
      {"100%s", "CSList", "FILE(3): Expected '{', found '100' at start of entry\n"},
      {"}", "CSList", "FILE(3): Expected '{', found '}' at start of entry\n"},
      {"{\n", "CSList", "FILE(4):  Unexpected end of file.\n"},
      {"{ type", "CSList", "FILE(3):  Unexpected end of file.\n"},
      {"{ type =\n", "CSList", "FILE(4):  Unexpected end of file.\n"},
      {"{ type\nunref }", "CSList", "FILE(4):  Expected '=' between 'type' and coordinate system type.\n"},
      {"{ type = unref", "UCSDef", "FILE(3):  Unexpected end of file.\n"},
      {"{ token=B\n\n", "ORVDef", "FILE(5):  Unexpected end of file.\n"},
      {"{ token B }", "ORVDef", "FILE(3):  Expected '=' between parameter and value.\n"},
      {"{ type=unref token B }", "UCSDef", "FILE(3):  Expected '=' between parameter and value.\n"},
      {"{ }", "CSList", "FILE(3):  No token parameter specified.\n"},
      {"{ name=b\n }", "CSList", "FILE(4):  No token parameter specified.\n"},
      {"{ token=B }", "CSList", "FILE(3):  No name parameter specified.\n"},
      {"{ type=unref token=B }", "CSList", "FILE(3):  No name parameter specified.\n"},
  };
  for (const auto& row : rows) ExpectLoadFails(list, good + row.text, 1029, row.unit, row.message, 1);
  ExpectLoadFails(list, good + "{ type=unref scale=-1 }", 1032, "UCSDef",
                  "Scale parameter must not be negative.", 1);
  EXPECT_EQ(list.FindByToken("A"), 2) << "the indexes hold what was read before the error";
}

TEST(CSList, AFileNeedsASystem) {
  CSList list;
  list.Add(Orv("old", "old"));
  ExpectLoadFails(list, "; nothing\n", 1029, "CSList", "No coordinate systems in configuration file.");
  ExpectLoadFails(list, "", 1029, "CSList", "No coordinate systems in configuration file.");
}

TEST_F(KnownSystems, AreUniqueInTheirFileToo) {
  const std::string good = "{ token=A name=a }";
  // Without file and line.
  ExpectLoadFails(ORVKnownSystemsList, good + "{ token=B name=A }", 1032, "CSList", kSameName, 1);
  ExpectLoadFails(ORVKnownSystemsList, good + "{ token=a name=b }", 1032, "CSList", kSameToken, 1);
  const TempFolder folder;
  CSList own;
  EXPECT_TRUE(LoadText(own, folder, good + good));
  EXPECT_EQ(Tokens(own), "A A ");
}

TEST(CSList, AMissingFileIsReportedOnRequestAndEmptiesTheListAnyway) {
  CSList list;
  list.Add(Orv("A", "a"));
  EXPECT_LIST_FAILS(list.Load("no 100% such.ocf", true), 1028,
                    "Can't find coordinate systems configuration file 'no 100% such.ocf'");
  EXPECT_EQ(list.Count(), 0);
  list.Add(Orv("A", "a"));
  ORVResetError();
  EXPECT_FALSE(list.Load("no such.ocf", false));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(ORVGetErrorCode(), 0);
}

TEST(CSList, TheDefaultFileIsFoundInTheConfigurationPath) {
  const TempFolder folder;
  folder.Write("system.ocf", "{ token=Default name=d }");
  const std::string before = Globals().configPath;
  ORVSetConfigPath(folder.Path().c_str());
  CSList list;
  EXPECT_TRUE(list.Load(nullptr, true));
  EXPECT_EQ(Tokens(list), "Default ");
  // The name of a file may be a text of the list's own.
  folder.Write("Default", "{ token=Second name=d }");
  EXPECT_TRUE(list.Load(list.EnumToken(2), true));
  EXPECT_EQ(Tokens(list), "Second ");
  std::filesystem::remove(folder.Path("system.ocf"));
  // Nobody but a full installation beside this program could offer another one.
  std::string elsewhere;
  if (!ORVFindConfigFile("system.ocf", elsewhere)) {
    EXPECT_LIST_FAILS(list.Load(nullptr, true), 1028,
                      "Can't find coordinate systems configuration file 'system.ocf'");
  }
  ORVSetConfigPath(before.c_str());
}

// ---- saving ----------------------------------------------------------------------------------------------

TEST_F(KnownSystems, AreSavedByteForByteWithoutThoseOfDatums) {
  CSList& list = ORVKnownSystemsList;
  list.Add(Orv("GEOGCS_A", "Geographic|a"));
  list.Add(Orv("First", "100% g|first"));
  list.Add(Orv("GEOGCS_", "only the beginning"));
  list.Add(Orv("geogcs_b", "in another case"));
  list.Add(Ucs("U", "u", 0.5));
  // Deliberate: the numbers count what is left out.
  EXPECT_EQ(
      Saved(list),
      ";\n; Brevan coordinate systems configuration file.\n;\n\n"
      "; Entry 2 of 5\n{\n   token=\"First\"\n   name=\"100% g|first\"\n}\n"
      "; Entry 4 of 5\n{\n   token=\"geogcs_b\"\n   name=\"in another case\"\n}\n"
      "; Entry 5 of 5\n{\n   type=UNREF\n   token=\"U\"\n   name=\"u\"\n"
      "   scale=0.50000000000000000000\n   xorg=0.00000000000000000000\n   yorg=0.00000000000000000000\n}\n"
      ";\n; End coordinate systems configuration file.\n;\n");
  // Any other list saves all it has.
  const std::string copy = Saved(CSList(list));
  EXPECT_NE(copy.find("; Entry 1 of 5\n{\n   token=\"GEOGCS_A\"\n"), std::string::npos);
  EXPECT_NE(copy.find("; Entry 3 of 5\n"), std::string::npos);
}

TEST(CSList, TheDefaultFileIsSavedInTheWorkingDirectory) {
  const TempFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_TRUE(CSList().Save(nullptr));
  std::filesystem::current_path(before);
  EXPECT_EQ(folder.Read("system.ocf"), Saved(CSList()));
}

TEST(CSList, AFileThatCannotBeWrittenIsReported) {
  EXPECT_LIST_FAILS(
      CSList().Save("/no such 100% folder/x.ocf"), 1028,
      "Failed opening coordinate systems configuration file for writing '/no such 100% folder/x.ocf'");
}

/// A text that a quoted token can hold, and not empty.
std::string FileText() { return "t" + test::QuotableText(); }

TEST_F(KnownSystems, ASavedListComesBackEqual) {
  const TempFolder folder;
  const std::string path = folder.Path("x.ocf");
  EXPECT_TRUE(test::Holds(
      [&] {
        CSList list;
        const int count = test::IntIn(1, 8);
        for (int i = 0; i < count; ++i) {
          // Files keep four decimals of a radius and ten of a warp's numbers.
          const double radius = static_cast<double>(test::IntegerIn(10000, 70000000000)) / 10000.0;
          const EllipsoidDef ellipsoid(radius, test::NumberIn(0.0, 0.5), "", "e", "", 0);
          ORVDef system;
          if (test::AnyBool()) {
            DatumDef datum = test::Wgs84Datum();  // known: saved by its token
            if (test::AnyBool()) {
              datum = test::ValidDatum();
              datum.SetParameter(DatumParameterIDEllipsoid, ellipsoid);
              datum.SetToken(FileText().c_str());
              datum.SetName(FileText().c_str());
            }
            // No key says "no method".
            if (datum.GetMethod() != DatumMethodUnknown) system.SetDatum(&datum);
          }
          if (test::AnyBool()) {
            ProjectionDef projection = test::ValidProjection();
            projection.SetParameter(ProjectionParameterIDEllipsoid, ellipsoid);
            if (projection.CheckParameters() == ProjectionParameterIDNone) system.SetProjection(&projection);
          }
          if (test::AnyBool()) {
            WarpDef warp;
            double c[6];
            for (double& value : c) value = test::IntIn(8, 800) / 8.0;
            warp.SetCoefficients(c);
            if (warp.Validate()) system.SetWarp(&warp);
          }
          system.SetPOSC(test::AnyInt());
          system.SetUSGS(test::AnyInt());
          system.SetLegacyName(FileText().c_str());
          UCSDef local(std::fabs(test::NumberIn(1.0, 9.0)), 0.0, 0.0, nullptr);
          const bool isLocal = test::IntIn(0, 4) == 0;
          CSDef& either = isLocal ? static_cast<CSDef&>(local) : system;
          either.SetToken(FileText().c_str());
          either.SetName(FileText().c_str());
          if (!isLocal) either.SetComment(FileText().c_str());
          list.Add(either);
        }
        ORV_HOLDS(list.Save(path.c_str()));
        const std::string saved = folder.Read("x.ocf");
        CSList read;
        ORV_HOLDS(read.Load(path.c_str(), true));
        ORV_HOLDS(read.Count() == list.Count());
        for (int pos = list.First(); pos <= list.Last(); ++pos) {
          const CSDef &a = *list.Enum(pos), &b = *read.Enum(pos);
          std::string why;
          ORV_HOLDS(a.Compare(b, false, &why));
          ORV_HOLDS(std::string(a.GetToken()) == b.GetToken());
          ORV_HOLDS(std::string(a.GetName()) == b.GetName());
          ORV_HOLDS(std::string(a.GetComment()) == b.GetComment());
          if (a.Type() == CSTypeUCS) {
            ORV_HOLDS(static_cast<const UCSDef&>(a).GetScale() == static_cast<const UCSDef&>(b).GetScale());
            continue;
          }
          const auto &x = static_cast<const ORVDef&>(a), &y = static_cast<const ORVDef&>(b);
          ORV_HOLDS(x.GetPOSC() == y.GetPOSC());
          ORV_HOLDS(x.GetUSGS() == y.GetUSGS());
          ORV_HOLDS(std::string(x.GetLegacyName()) == y.GetLegacyName());
        }
        ORV_HOLDS(read.Save(path.c_str()));
        ORV_HOLDS(folder.Read("x.ocf") == saved);
      },
      60));
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST(CSList, DumpsSystemsAndIndexes) {
  CSList list;
  list.Add(Orv("b", "Groups|Zulu"));
  list.Add(Ucs("A", "alpha"));
  std::string text = "before\n";
  list.DebugDump(text, 1);
  text = test::Masked(text);
  EXPECT_EQ(text.find("before\n CSList this=ADDRESS:\n ENTRY 2\n ORVDef at "), 0u) << text;
  EXPECT_NE(text.find("\n ENTRY 3\n Unref this=ADDRESS:\n"), std::string::npos) << text;
  const std::string indexes =
      " IndexByName:\n   0:     1 (alpha)\n   1:     0 (Groups|Zulu)\n"
      " IndexByToken:\n   0:     1 (A)\n   1:     0 (b)\n"
      " IndexByShortName:\n   0:     1 (alpha)\n   1:     0 (Zulu)\n";
  ASSERT_GT(text.size(), indexes.size());
  EXPECT_EQ(text.substr(text.size() - indexes.size()), indexes);
}

}  // namespace
}  // namespace orv
