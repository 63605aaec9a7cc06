#include "orv/core/internal/ConfigEntry.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/Globals.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

ORV_UNIT("ConfigEntryTest")

namespace {

using namespace orv::internal;
using orv::ConfigFileReader;
using orv::ConfigFileWriter;
using orv::test::TempFolder;

enum Colour { ColourNone, ColourRed, ColourBlue };
constexpr NameRow<Colour> kColours[] = {
    {ColourRed, "Red", "Rouge"}, {ColourBlue, "Blue"}, {ColourBlue, "Azure"}};

// An entry of a list of the test's own, with every kind of key.
struct Entry {
  std::string name;
  double radius = 0.0;
  int number = 0;
  bool flag = false;
  Colour colour = ColourNone;
  double angle = 0.0;
  std::string note;
  std::string other;

  static double Inverse(const Entry& d) { return 1.0 / d.radius; }
  static void SetInverse(Entry& d, double value) { d.radius = 1.0 / value; }
  static void SetDoubled(Entry& d, double value) { d.radius += 2.0 * value; }
  static bool SetAngle(Entry& d, std::string_view text) {
    if (text == "bad") return false;
    d.angle = ReadDecimal(text);
    return true;
  }

  static bool SetOther(Entry& d, std::string_view token) {
    if (token != "Known") return false;
    d.other = token;
    return true;
  }

  template <class Walker, class Self>
  static void Walk(Walker& w, Self& d) {
    w.Text("name", d.name);
    w.Number("radius", "%.4f", d.radius, d.radius != 0.5);
    w.Derived("inverse", "%.3f", d, &Inverse, &SetInverse, d.radius == 0.5);
    w.ReadOnly("doubled", d, &SetDoubled);
    w.Int("number", d.number, d.number != 0);
    w.Flag("flag", d.flag);
    w.Named("colour", d.colour, kColours, "%s(%d):  Unknown colour '%s'.\n");
    w.Parsed("angle", "%.2f", d, d.angle, &SetAngle, "%s(%d):  Bad angle '%s'.\n");
    w.Text("note", d.note, !d.note.empty());
    w.Reference("other", d.other, d, &SetOther, "%s(%d):  Unknown other '%s'.\n", !d.other.empty());
  }
};

constexpr ListFile kFile = {"default-name.ocf",
                            "Can't find test file '%s'",
                            "Can't open test file '%s'",
                            "Can't write test file '%s'",
                            "; header 100%\n",
                            "; trailer\n",
                            false};
constexpr ListFile kLoudFile = {"default-name.ocf",
                                "Can't find test file '%s'",
                                "Can't open test file '%s'",
                                "Can't write test file '%s'",
                                "",
                                "",
                                true};

bool ReadAll(const std::string& path, std::vector<Entry>& entries, const EntryTexts& texts = kEntryTexts) {
  ConfigFileReader reader;
  reader.Open(path.c_str());
  Entry entry;
  return ReadEntries(
      reader, texts, ORV_SITE, [&] { entry = Entry(); },
      [&](std::string_view key, std::string_view value) {
        KeyReader keys(key, value, reader, ORV_SITE);
        Entry::Walk(keys, entry);
      },
      [&] { entries.push_back(entry); });
}

std::vector<Entry> EntriesOf(const std::string& text) {
  const TempFolder folder;
  std::vector<Entry> entries;
  EXPECT_TRUE(ReadAll(folder.Write("x.ocf", text), entries));
  return entries;
}

Entry EntryOf(const std::string& pairs) { return EntriesOf("{" + pairs + "}").at(0); }

// The message that a text raises, with "FILE" for the file's name; expects that `before` entries were read.
void ExpectSyntaxError(const std::string& text, const std::string& message, size_t before = 0) {
  const TempFolder folder;
  const std::string path = folder.Write("x.ocf", text);
  std::string expected = message;
  expected.replace(expected.find("FILE"), 4, path);
  std::vector<Entry> entries;
  EXPECT_RAISES(ReadAll(path, entries), 1029, "ConfigEntryTest", expected);
  EXPECT_EQ(entries.size(), before) << text;
}

}  // namespace

TEST(ConfigEntry, EveryKindOfKeyIsRead) {
  const Entry entry =
      EntryOf("NAME=\"My name\" Radius=2.5 number=-7 flag=TRUE colour=rouge angle=1.25 note='n' other=Known");
  EXPECT_EQ(entry.name, "My name");
  EXPECT_EQ(entry.radius, 2.5);
  EXPECT_EQ(entry.number, -7);
  EXPECT_TRUE(entry.flag);
  EXPECT_EQ(entry.colour, ColourRed);
  EXPECT_EQ(entry.angle, 1.25);
  EXPECT_EQ(entry.note, "n");
  EXPECT_EQ(entry.other, "Known");
}

TEST(ConfigEntry, KeysAreAppliedInTheOrderInWhichTheyStand) {
  EXPECT_EQ(EntryOf("radius=8 inverse=4").radius, 0.25);
  EXPECT_EQ(EntryOf("inverse=4 radius=8").radius, 8.0);
  EXPECT_EQ(EntryOf("radius=8 doubled=3").radius, 14.0);
  EXPECT_EQ(EntryOf("doubled=3 radius=8").radius, 8.0);
  EXPECT_EQ(EntryOf("name=a name=b").name, "b") << "and a text is not appended to";
}

// A walk takes as many pairs as stand in the order of the keys: orders and forms must not matter.
TEST(ConfigEntry, PairsOfAnyOrderAndFormAreAppliedOneAfterTheOther) {
  EXPECT_TRUE(orv::test::Holds([] {
    Entry expected;
    std::string text;
    for (int count = orv::test::IntIn(0, 12); count > 0; --count) {
      const int value = orv::test::IntIn(1, 100);
      const auto pair = [&](const std::string& key) {
        text += orv::test::OneOf<std::string>({"\n   ", " ", "\n; note\n"}) + key;
        text += orv::test::OneOf<std::string>({"=", "=", " = ", "=\n;x=y\n"});
        text += orv::test::OneOf<std::string>({"", " "}) + std::to_string(value) + " ";
      };
      switch (orv::test::IntIn(0, 7)) {
        case 0:
          pair("name");
          expected.name = std::to_string(value);
          break;
        case 1:
          pair("RADIUS");
          expected.radius = value;
          break;
        case 2:
          pair("inverse");
          expected.radius = 1.0 / value;
          break;
        case 3:
          pair("doubled");
          expected.radius += 2.0 * value;
          break;
        case 4:
          pair("number");
          expected.number = value;
          break;
        case 5:
          pair("angle");
          expected.angle = value;
          break;
        default:
          pair("unknown");
      }
    }
    const Entry read = EntryOf(text);
    ORV_HOLDS(read.name == expected.name && read.radius == expected.radius && read.number == expected.number);
    ORV_HOLDS(read.angle == expected.angle && !read.flag && read.note.empty());
  }));
}

TEST(ConfigEntry, UnknownKeysAreSkippedWithTheirValue) {
  const Entry entry = EntryOf("unknown=radius name=x radius2=5 =\"=\"y {=number 'quoted key'=7");
  EXPECT_EQ(entry.name, "x");
  EXPECT_EQ(entry.radius, 0.0);
  EXPECT_EQ(entry.number, 0);
}

TEST(ConfigEntry, OnlyTrueSetsAFlagAndEveryOtherTextClearsIt) {
  EXPECT_TRUE(EntryOf("flag=\"True\"").flag);
  for (const char* const text : {"false", "1", "yes", "t", "\"true \"", "\"\""}) {
    EXPECT_FALSE(EntryOf(std::string("flag=true flag=") + text).flag) << text;
  }
}

TEST(ConfigEntry, NumbersAreTheLongestPrefixOrZero) {
  EXPECT_EQ(EntryOf("radius=1.5abc").radius, 1.5);
  EXPECT_EQ(EntryOf("radius=abc").radius, 0.0);
  EXPECT_EQ(EntryOf("radius=\"\"").radius, 0.0);
  EXPECT_EQ(EntryOf("radius=0x10").radius, 0.0);
  EXPECT_EQ(EntryOf("radius=1e5").radius, 100000.0);
  EXPECT_EQ(EntryOf("radius=\"1e+5\"").radius, 100000.0) << "quoted, it is one token";
  EXPECT_EQ(EntryOf("number=12.9").number, 12);
  EXPECT_EQ(EntryOf("number=99999999999").number, 2147483647);
  EXPECT_EQ(EntryOf("number=-99999999999").number, -2147483647 - 1);
}

TEST(ConfigEntry, APlusSignIsATokenOfItsOwn) {
  // The value of "radius" is 1e, and "+" is the next key.
  ExpectSyntaxError("{radius=1e+5}", "FILE(1):  Expected '=' between parameter and value.\n");
}

TEST(ConfigEntry, AnyTokenIsAValueAndAnyTextIsAKey) {
  EXPECT_EQ(EntryOf("name=}number=5").name, "}");
  EXPECT_EQ(EntryOf("name==").name, "=");
  EXPECT_EQ(EntryOf("name={").name, "{");
  // Quoted braces act as braces: the reader has no memory of the quotes.
  EXPECT_EQ(EntriesOf("\"{\" name '=' x \"}\"").at(0).name, "x");
}

TEST(ConfigEntry, EntriesFollowEachOtherAndBeginAfresh) {
  const std::vector<Entry> entries = EntriesOf("; head\n{ name=a number=1 }\n\n; between\n{name=b}{}\n; end");
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[1].name, "b");
  EXPECT_EQ(entries[1].number, 0);
  EXPECT_EQ(entries[2].name, "");
  EXPECT_TRUE(EntriesOf("").empty());
}

TEST(ConfigEntry, SyntaxErrorsTellFileAndLineAndKeepTheEntriesBefore) {
  ExpectSyntaxError("{}\n{}\nname", "FILE(3): Expected '{', found 'name' at start of entry\n", 2);
  ExpectSyntaxError("}", "FILE(1): Expected '{', found '}' at start of entry\n");
  ExpectSyntaxError("100%s", "FILE(1): Expected '{', found '100' at start of entry\n");
  ExpectSyntaxError("%", "FILE(1): Expected '{', found '%' at start of entry\n");
  ExpectSyntaxError("{name=x\n\nradius 5}", "FILE(3):  Expected '=' between parameter and value.\n");
  ExpectSyntaxError("{name}", "FILE(1):  Expected '=' between parameter and value.\n");
  ExpectSyntaxError("{{name=x}}", "FILE(1):  Expected '=' between parameter and value.\n");
  for (const char* const text :
       {"{", "{\n", "{name", "{name=", "{name=x", "{name=x ; }", "{name='}", "{name=}"}) {
    const std::string line = text == std::string("{\n") ? "2" : "1";
    ExpectSyntaxError(text, "FILE(" + line + "):  Unexpected end of file.\n");
  }
}

TEST(ConfigEntry, AnOwnersTextsReplaceTheUsualOnes) {
  constexpr EntryTexts kOwn = {"%s(%d): brace '%s'", "%s(%d): equals", "%s(%d): end"};
  const TempFolder folder;
  std::vector<Entry> entries;
  const std::string path = folder.Write("x.ocf", "\nx");
  EXPECT_RAISES(ReadAll(path, entries, kOwn), 1029, "ConfigEntryTest", path + "(2): brace 'x'");
  EXPECT_RAISES(ReadAll(folder.Write("x.ocf", "{a b"), entries, kOwn), 1029, "ConfigEntryTest",
                path + "(1): equals");
  EXPECT_RAISES(ReadAll(folder.Write("x.ocf", "{a"), entries, kOwn), 1029, "ConfigEntryTest",
                path + "(1): end");
}

TEST(ConfigEntry, OwnersComplainAboutValuesWithFileLineAndValue) {
  ExpectSyntaxError("{}{\ncolour=\"100% Green\"}", "FILE(2):  Unknown colour '100% Green'.\n", 1);
  ExpectSyntaxError("{colour=''}", "FILE(1):  Unknown colour ''.\n");
  ExpectSyntaxError("{\n\nangle=bad}", "FILE(3):  Bad angle 'bad'.\n");
  ExpectSyntaxError("{\nother=100%s}", "FILE(2):  Unknown other '100'.\n");
}

TEST(ConfigEntry, TwoRowsOfOneNumberAreBothRead) {
  EXPECT_EQ(EntryOf("colour=AZURE").colour, ColourBlue);
  EXPECT_EQ(EntryOf("colour=blue").colour, ColourBlue);
}

// ---- writing ---------------------------------------------------------------------------------------------

namespace {

std::string WrittenEntries(const std::vector<Entry>& entries) {
  const TempFolder folder;
  ConfigFileWriter writer;
  EXPECT_TRUE(CreateListFile(writer, kFile, folder.Path("x").c_str(), ORV_SITE));
  int number = 0;
  for (const Entry& entry : entries) {
    WriteEntry(writer, ++number, static_cast<int>(entries.size()),
               [&](KeyWriter& keys) { Entry::Walk(keys, entry); });
  }
  writer.Write(kFile.trailer);
  writer.Close();
  return folder.Read("x");
}

constexpr const char* kTwoEntries =
    "; header 100%\n"
    "; Entry 1 of 2\n{\n   name=\"100% %s\"\n   radius=1234567.1250\n   number=-5\n   flag=true\n"
    "   colour=\"Blue\"\n   angle=0.75\n   note=\"n\"\n   other=\"Known\"\n}\n\n"
    "; Entry 2 of 2\n{\n   name=\"\"\n   inverse=2.000\n   flag=false\n   colour=\"\"\n   angle=0.00\n}\n\n"
    "; trailer\n";

std::vector<Entry> TwoEntries() {
  Entry first{"100% %s", 1234567.125, -5, true, ColourBlue, 0.75, "n", "Known"};
  Entry second;
  second.radius = 0.5;
  return {first, second};
}

}  // namespace

TEST(ConfigEntry, KeysAreWrittenInOrderUnderTheirConditions) {
  EXPECT_EQ(WrittenEntries(TwoEntries()), kTwoEntries);
}

TEST(ConfigEntry, ADecimalCommaOfTheHostChangesNothing) {
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(WrittenEntries(TwoEntries()), kTwoEntries);
  EXPECT_EQ(EntryOf("radius=1234567.125").radius, 1234567.125);
  EXPECT_EQ(EntryOf("radius=\"2,5\"").radius, 2.0);
}

// ---- files -----------------------------------------------------------------------------------------------

TEST(ConfigEntry, AListsFileIsFoundByTheGivenOrTheDefaultName) {
  const TempFolder folder;
  const std::string before = orv::Globals().configPath;
  orv::ORVSetConfigPath(folder.Path().c_str());
  folder.Write("default-name.ocf", "d");
  folder.Write("other.ocf", "o");
  ConfigFileReader first;
  EXPECT_TRUE(OpenListFile(first, kFile, nullptr, true, ORV_SITE));
  EXPECT_TRUE(first.Next());
  EXPECT_EQ(first.Token(), "d");
  EXPECT_EQ(first.FileName(), folder.Path("default-name.ocf"));
  ConfigFileReader second;
  EXPECT_TRUE(OpenListFile(second, kFile, "other.ocf", true, ORV_SITE));
  EXPECT_TRUE(second.Next());
  EXPECT_EQ(second.Token(), "o");
  orv::ORVSetConfigPath(before.c_str());
}

TEST(ConfigEntry, AFileThatIsNotFoundIsReportedOnRequest) {
  ConfigFileReader reader;
  EXPECT_RAISES(OpenListFile(reader, kFile, "no 100% such file.ocf", true, ORV_SITE), 1028, "ConfigEntryTest",
                "Can't find test file 'no 100% such file.ocf'");
  EXPECT_RAISES(OpenListFile(reader, kFile, nullptr, true, ORV_SITE), 1028, "ConfigEntryTest",
                "Can't find test file 'default-name.ocf'");
  EXPECT_RAISES(OpenListFile(reader, kFile, "", true, ORV_SITE), 1028, "ConfigEntryTest",
                "Can't find test file ''");
  orv::ORVResetError();
  EXPECT_FALSE(OpenListFile(reader, kFile, "no such file.ocf", false, ORV_SITE));
  EXPECT_FALSE(OpenListFile(reader, kLoudFile, "no such file.ocf", false, ORV_SITE))
      << "not found stays quiet";
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TEST(ConfigEntry, AFileThatCannotBeCreatedIsReported) {
  ConfigFileWriter writer;
  EXPECT_RAISES(CreateListFile(writer, kFile, "/no such 100% folder/x.ocf", ORV_SITE), 1028,
                "ConfigEntryTest", "Can't write test file '/no such 100% folder/x.ocf'");
}
