#include "orv/core/ConfigFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "orv/core/Error.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Number.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::ConfigFileReader;
using orv::ConfigFileWriter;
using orv::test::TempFolder;
using Escape = ConfigFileWriter::Escape;

#define EXPECT_FILE_FAILS(statement, code, text) EXPECT_RAISES(statement, code, "ConfigFile", text)

struct Token {
  std::string text;
  int line;  // the reader's line after the token
};
bool operator==(const Token& a, const Token& b) { return a.text == b.text && a.line == b.line; }
std::ostream& operator<<(std::ostream& out, const Token& t) { return out << "'" << t.text << "'@" << t.line; }

std::vector<Token> TokensWithLines(const std::string& bytes, bool unescape = false) {
  const TempFolder folder;
  ConfigFileReader reader(unescape);
  reader.Open(folder.Write("test.ocf", bytes).c_str());
  std::vector<Token> tokens;
  while (reader.Next()) tokens.push_back({std::string(reader.Token()), reader.Line()});
  EXPECT_EQ(reader.Token(), "") << "the end of the file has no token";
  EXPECT_FALSE(reader.Next()) << "the end of the file stays";
  return tokens;
}

std::vector<std::string> Tokens(const std::string& bytes, bool unescape = false) {
  std::vector<std::string> texts;
  for (const Token& token : TokensWithLines(bytes, unescape)) texts.push_back(token.text);
  return texts;
}

using Texts = std::vector<std::string>;

std::string Written(const std::string& text, Escape escape, int* lines = nullptr) {
  const TempFolder folder;
  ConfigFileWriter writer(escape);
  writer.Open(folder.Path("out.ocf").c_str());
  writer.Write(text);
  if (lines) *lines = writer.Lines();
  writer.Close();
  return folder.Read("out.ocf");
}

Texts FilesIn(const TempFolder& folder) {
  Texts names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// While it lives, no file of this process grows beyond so many bytes; writes fail there.
class SizeLimit {
 public:
  explicit SizeLimit(rlim_t bytes) : m_Handler(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &m_Before);
    rlimit limit = m_Before;
    limit.rlim_cur = bytes;
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~SizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &m_Before);
    std::signal(SIGXFSZ, m_Handler);
  }
  SizeLimit(const SizeLimit&) = delete;
  SizeLimit& operator=(const SizeLimit&) = delete;

 private:
  void (*m_Handler)(int);
  rlimit m_Before = {};
};

}  // namespace

// ---- tokens ----------------------------------------------------------------------------------------------

TEST(ConfigFileReader, AnAssignmentIsThreeTokens) {
  EXPECT_EQ(Tokens("a=b"), Texts({"a", "=", "b"}));
  EXPECT_EQ(Tokens("a = b ; note"), Texts({"a", "=", "b"}));
  EXPECT_EQ(Tokens("a = b ; note\n"), Texts({"a", "=", "b"}));
}

TEST(ConfigFileReader, EachOfTheTwentyFourDelimitersIsATokenByItself) {
  const std::string delimiters = "=+,:~/!@#$%^&*(){}[]|<>";  // and ";", which begins a comment
  std::string text;
  Texts expected;
  for (const char c : delimiters) {
    text += std::string("a") + c + c;
    expected.insert(expected.end(), {"a", std::string(1, c), std::string(1, c)});
  }
  EXPECT_EQ(delimiters.size(), 23u);
  EXPECT_EQ(Tokens(text), expected);
  EXPECT_EQ(Tokens("a;b\nc"), Texts({"a", "c"}));
}

TEST(ConfigFileReader, OtherPunctuationIsOrdinary) {
  EXPECT_EQ(Tokens("a-b_c.d?e\\f`g-1.5"), Texts({"a-b_c.d?e\\f`g-1.5"}));
}

TEST(ConfigFileReader, WhiteSpaceIsBlankTabCarriageReturnAndLineFeedOnly) {
  EXPECT_EQ(Tokens(" \t\r\na\t b\r\nc \n\n"), Texts({"a", "b", "c"}));
  // Vertical tab, form feed, NUL, the byte order mark, 255 and a no-break space are ordinary characters.
  const std::string odd("a\vb\fc\0d\xEF\xBB\xBF\xFF\xA0", 12);
  EXPECT_EQ(Tokens(odd), Texts({odd}));
}

TEST(ConfigFileReader, AnEmptyFileHasNoTokens) {
  EXPECT_EQ(Tokens(""), Texts());
  EXPECT_EQ(Tokens("  \r\n \t"), Texts());
  EXPECT_EQ(Tokens("; only a comment"), Texts());
  EXPECT_EQ(Tokens(";"), Texts());
}

TEST(ConfigFileReader, CommentsRunToTheEndOfTheLineWhateverTheyHold) {
  EXPECT_EQ(Tokens("a ; \"quoted ' {x=y} ;\r\nb;c\\\nd"), Texts({"a", "b", "d"}));
}

TEST(ConfigFileReader, AHundredThousandCommentLinesAreOneLoop) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += ";\n";
  EXPECT_EQ(TokensWithLines(text + "a"), std::vector<Token>({{"a", 100001}}));
}

TEST(ConfigFileReader, QuotedTokensHoldDelimitersAndBlanks) {
  EXPECT_EQ(Tokens("\"x;y\""), Texts({"x;y"}));
  EXPECT_EQ(Tokens("name=\"My = {grid}; \t 'a'\"next"), Texts({"name", "=", "My = {grid}; \t 'a'", "next"}));
  EXPECT_EQ(Tokens("'a \"b\" c'"), Texts({"a \"b\" c"}));
  EXPECT_EQ(Tokens("\"1e+5\" 1e+5"), Texts({"1e+5", "1e", "+", "5"}));
}

TEST(ConfigFileReader, AnEmptyQuotedTokenIsATokenToo) {
  EXPECT_EQ(Tokens("comment=\"\" x=''"), Texts({"comment", "=", "", "x", "=", ""}));
}

TEST(ConfigFileReader, AQuoteThatIsNotClosedEndsWithItsLine) {
  EXPECT_EQ(TokensWithLines("a \"no end\nnext"), std::vector<Token>({{"a", 1}, {"no end", 1}, {"next", 2}}));
  EXPECT_EQ(Tokens("\"no end"), Texts({"no end"}));
  EXPECT_EQ(Tokens("\""), Texts({""}));
  EXPECT_EQ(Tokens("\"carriage return stays\r\nnext"), Texts({"carriage return stays\r", "next"}));
  EXPECT_EQ(Tokens("\"wrong quote'\nnext"), Texts({"wrong quote'", "next"}));
}

TEST(ConfigFileReader, QuotesInsideATokenAreOrdinary) {
  EXPECT_EQ(Tokens("lon=2d20'14.025\"E"), Texts({"lon", "=", "2d20'14.025\"E"}));
  EXPECT_EQ(Tokens("a\"b c\"d"), Texts({"a\"b", "c\"d"}));
  EXPECT_EQ(Tokens("\"a\"b"), Texts({"a", "b"}));
}

TEST(ConfigFileReader, LinesAreCountedAsTheyAreConsumed) {
  EXPECT_EQ(TokensWithLines("a\nb\n\nc"), std::vector<Token>({{"a", 1}, {"b", 2}, {"c", 4}}));
  EXPECT_EQ(TokensWithLines("one\ntwo\nlast\n").back(), (Token{"last", 3}));
  EXPECT_EQ(TokensWithLines("; comment\n; comment\nx\n"), std::vector<Token>({{"x", 3}}));
  EXPECT_EQ(TokensWithLines("{\n=\n'q'\n}"), std::vector<Token>({{"{", 1}, {"=", 2}, {"q", 3}, {"}", 4}}));
  EXPECT_EQ(TokensWithLines("a\r\nb\rc"), std::vector<Token>({{"a", 1}, {"b", 2}, {"c", 2}}));
}

TEST(ConfigFileReader, TheLineAtTheEndOfTheFileCountsEveryLineFeed) {
  const TempFolder folder;
  ConfigFileReader reader;
  reader.Open(folder.Write("x.ocf", "a\n\"b\n;c\n\n").c_str());
  EXPECT_EQ(reader.Line(), 1);
  while (reader.Next()) {
  }
  EXPECT_EQ(reader.Line(), 5);
}

TEST(ConfigFileReader, ATokenCanBeGivenBack) {
  const TempFolder folder;
  ConfigFileReader reader;
  reader.Open(folder.Write("x.ocf", "a\nb c").c_str());
  ASSERT_TRUE(reader.Next());
  ASSERT_TRUE(reader.Next());
  reader.GiveBack();
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Token(), "b");
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Token(), "c");
  EXPECT_FALSE(reader.Next());
}

TEST(ConfigFileReader, TokensMayCrossItsBuffer) {
  // Tokens, quotes, line ends and comments around every multiple of 64 KiB.
  const std::string word(65530, 'w');
  for (size_t shift = 0; shift < 16; ++shift) {
    const std::string filler = word + std::string(shift, 'x');
    EXPECT_EQ(TokensWithLines(filler + "\n'quo ted'=b;c\nd"),
              std::vector<Token>({{filler, 1}, {"quo ted", 2}, {"=", 2}, {"b", 2}, {"d", 3}}))
        << shift;
  }
  const std::string huge(300000, 'h');
  EXPECT_EQ(Tokens(huge + " '" + huge + "'"), Texts({huge, huge}));
}

// ---- escapes ---------------------------------------------------------------------------------------------

TEST(ConfigFileReader, EscapesAreUndoneOnRequest) {
  EXPECT_EQ(Tokens("a\\tb", true), Texts({"a\tb"}));
  EXPECT_EQ(Tokens("\\b\\t\\n\\r\\\\\\q\\-", true), Texts({"\b\t\n\r\\q-"}));
  EXPECT_EQ(Tokens("a\\tb"), Texts({"a\\tb"})) << "off by default";
}

TEST(ConfigFileReader, HexadecimalEscapesDoNotSurviveReading) {
  // Deliberate: the four characters are consumed and yield nothing, whatever the two are.
  EXPECT_EQ(Tokens("a\\x41b", true), Texts({"ab"}));
  EXPECT_EQ(Tokens("a\\xzzb", true), Texts({"ab"}));
  EXPECT_EQ(Tokens("a\\x41", true), Texts({"a"}));
  EXPECT_EQ(Tokens("a\\x4", true), Texts({"ax4"})) << "fewer than two left: x and the rest";
  EXPECT_EQ(Tokens("a\\x", true), Texts({"ax"}));
}

TEST(ConfigFileReader, ABackslashAtTheEndEndsTheToken) {
  EXPECT_EQ(Tokens("a\\ b", true), Texts({"a", "b"}));
  EXPECT_EQ(Tokens("a\\", true), Texts({"a"}));
  EXPECT_EQ(Tokens("\\", true), Texts({""}));
}

TEST(ConfigFileReader, QuotedTokensKnowNoEscapes) {
  EXPECT_EQ(Tokens("'a\\tb' \"a\\x41\\\"", true), Texts({"a\\tb", "a\\x41\\"}));
}

TEST(ConfigFileReader, AnEscapeDoesNotProtectADelimiter) {
  EXPECT_EQ(Tokens("a\\=b", true), Texts({"a", "=", "b"}));
}

// ---- files -----------------------------------------------------------------------------------------------

TEST(ConfigFileReader, OpensOneFileAtATime) {
  const TempFolder folder;
  const std::string path = folder.Write("x.ocf", "a\nb");
  ConfigFileReader reader;
  EXPECT_TRUE(reader.Open(path.c_str()));
  EXPECT_FILE_FAILS(reader.Open("second.ocf"), 1027,
                    "Configuration file already open while attempting to open 'second.ocf'");
  EXPECT_FILE_FAILS(reader.TryOpen("100%s.ocf"), 1027,
                    "Configuration file already open while attempting to open '100%s.ocf'");
  ASSERT_TRUE(reader.Next()) << "the first stays open";
  EXPECT_EQ(reader.Token(), "a");
  EXPECT_EQ(reader.FileName(), path);
}

TEST(ConfigFileReader, AMissingFileIsReportedUnlessItIsOnlyTried) {
  const TempFolder folder;
  const std::string missing = folder.Path("100% missing.ocf");
  ConfigFileReader reader;
  EXPECT_FILE_FAILS(reader.Open(missing.c_str()), 1028,
                    "Failed opening configuration file '" + missing + "'");
  EXPECT_FILE_FAILS(reader.Open(folder.Path().c_str()), 1028,
                    "Failed opening configuration file '" + folder.Path() + "'");
  EXPECT_FILE_FAILS(reader.Open(nullptr), 1028, "Failed opening configuration file ''");
  orv::ORVResetError();
  EXPECT_FALSE(reader.TryOpen(missing.c_str()));
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
  EXPECT_FALSE(reader.Next()) << "no file, no tokens";
}

TEST(ConfigFileReader, NumbersOfAnyLengthEndWhereTheyEnd) {
  for (size_t decimals = 0; decimals <= 25; ++decimals) {
    const std::string number = "-17." + std::string(decimals, '3');
    EXPECT_EQ(Tokens("x=" + number), Texts({"x", "=", number}));
    EXPECT_EQ(Tokens("x=" + number + "}"), Texts({"x", "=", number, "}"}));
    EXPECT_EQ(Tokens("x=" + number + "e\n   y"), Texts({"x", "=", number + "e", "y"}));
  }
}

TEST(ConfigFileReader, ADelimiterIsReadAtOnceWhenItIsNext) {
  const TempFolder folder;
  ConfigFileReader reader;
  reader.Open(folder.Write("x.ocf", "a= b}").c_str());
  EXPECT_FALSE(reader.NextAtOnce('='));
  ASSERT_TRUE(reader.Next());
  reader.GiveBack();
  EXPECT_FALSE(reader.NextAtOnce('=')) << "the token given back is next";
  ASSERT_TRUE(reader.Next());
  EXPECT_FALSE(reader.NextAtOnce(':'));
  EXPECT_EQ(reader.Token(), "a");
  ASSERT_TRUE(reader.NextAtOnce('='));
  EXPECT_EQ(reader.Token(), "=");
  EXPECT_FALSE(reader.NextAtOnce('b')) << "a blank stands before it";
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Token(), "b");
  ASSERT_TRUE(reader.NextAtOnce('}'));
  EXPECT_FALSE(reader.NextAtOnce('}')) << "the file has ended";
  EXPECT_FALSE(reader.Next());
}

TEST(RecentNumbers, AreThoseOfTheirTextsHoweverOftenTheyAreAskedFor) {
  // Texts alike in both ends, or empty, or with something behind the number.
  std::vector<std::string> texts = {
      "", "x", "0", "-0", "1e5", "12.5W", "0.99960000000000004405", "0.99960000000000004405 "};
  for (int i = 0; i < 3000; ++i)
    texts.push_back("1234.5678" + std::to_string(i) + "00000000" + (i % 7 == 0 ? "'" : ""));
  orv::internal::RecentNumbers numbers;
  for (int round = 0; round < 3; ++round) {
    for (const std::string& text : texts) {
      size_t end = 0;
      const double expected = orv::internal::ReadDecimal(text, &end);
      for (int again = 0; again < 2; ++again) {
        const auto& number = numbers.Find(text);
        EXPECT_EQ(number.value, expected) << text;
        EXPECT_EQ(number.isWhole, end == text.size()) << text;
      }
    }
  }
}

// What is read ahead as a number is the token that Next would read, and its number, whatever was read before.
TEST(ConfigFileReader, NumbersTakenAheadAreThoseOfTheirTokens) {
  const std::string twenty = "1234567890.123456789";
  const std::string texts[] = {twenty,
                               "'" + twenty + "'",
                               twenty + "0",
                               "-" + twenty,
                               twenty + "x",
                               twenty + "e-5",
                               "'" + twenty + "e+5'",
                               twenty + "e+5",
                               twenty + "e",
                               "1.5",
                               "'2,5'",
                               "2,5",
                               "  " + twenty,
                               "'" + twenty + ",7'",
                               twenty + ",7",
                               "'" + twenty + "\n",
                               "99999999999999999999999",
                               twenty + "/",
                               "=",
                               "" + twenty};
  EXPECT_TRUE(orv::test::Holds([&texts] {
    const TempFolder folder;
    std::string file;
    for (size_t count = orv::test::SizeIn(1, 40); count > 0; --count) {
      file += texts[orv::test::SizeIn(0, std::size(texts))] + orv::test::OneOf<std::string>({" ", "\n", ""});
    }
    const std::string path = folder.Write("test.ocf", file);
    ConfigFileReader taker, reader;
    taker.Open(path.c_str());
    reader.Open(path.c_str());
    for (bool more = true; more;) {
      const auto* const number = taker.TakeDecimalAt(taker.Ahead());
      more = reader.Next();
      ORV_HOLDS(number ? more : taker.Next() == more);
      ORV_HOLDS(taker.Token() == reader.Token() && taker.Line() == reader.Line());
      if (!number) continue;
      size_t end = 0;
      ORV_HOLDS(number->value == orv::internal::ReadDecimal(reader.Token(), &end));
      ORV_HOLDS(number->isWhole == (end == reader.Token().size()));
    }
  }));
}

TEST(ConfigFileReader, ReopeningBeginsAfresh) {
  const TempFolder folder;
  ConfigFileReader reader;
  reader.Open(folder.Write("x.ocf", "a\n\"b\nc d").c_str());
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(reader.Next());
  reader.GiveBack();
  reader.Close();
  EXPECT_FALSE(reader.TryOpen(folder.Path("none").c_str()));
  reader.Open(folder.Write("y.ocf", "z").c_str());
  EXPECT_EQ(reader.Line(), 1);
  EXPECT_EQ(reader.Token(), "");
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Token(), "z");
}

// ---- writing ---------------------------------------------------------------------------------------------

TEST(ConfigFileWriter, WritesTextAsItIsByDefault) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(Written(all, Escape::None), all) << "and a line feed stays one byte";
}

TEST(ConfigFileWriter, EscapesControlCharactersAndBackslashes) {
  const std::string text("a\bb\tc\rd\\e\nf\x01g\x1Fh\x7Fi\0j\xFFk %d", 24);
  EXPECT_EQ(Written(text, Escape::All), "a\\bb\\tc\\rd\\\\e\\nf\\x01g\\x1Fh\\x7Fi\\x00j\xFFk %d");
  EXPECT_EQ(Written(text, Escape::KeepLines), "a\\bb\\tc\\rd\\\\e\nf\\x01g\\x1Fh\\x7Fi\\x00j\xFFk %d");
  EXPECT_EQ(Written("\v\f", Escape::All), "\\x0B\\x0C");
}

TEST(ConfigFileWriter, TheModesHaveTheirNumbers) {
  EXPECT_EQ(static_cast<int>(Escape::None), 0);
  EXPECT_EQ(static_cast<int>(Escape::All), 1);
  EXPECT_EQ(static_cast<int>(Escape::KeepLines), 2);
}

TEST(ConfigFileWriter, CountsTheLineFeedsThatItFinallyWrites) {
  int lines = -1;
  Written("a\nb\n\nc", Escape::None, &lines);
  EXPECT_EQ(lines, 3);
  Written("a\nb\n\nc", Escape::KeepLines, &lines);
  EXPECT_EQ(lines, 3);
  Written("a\nb\n\nc", Escape::All, &lines);
  EXPECT_EQ(lines, 0);
}

TEST(ConfigFileWriter, FormatsFirstAndThenEscapes) {
  const TempFolder folder;
  ConfigFileWriter writer(Escape::All);
  writer.Open(folder.Path("x").c_str());
  writer.Print("%s\t%d%%", "a\\b", 5);
  EXPECT_EQ(writer.Lines(), 0);
  writer.Print("%s", std::string(100000, 'x').c_str());
  writer.Close();
  EXPECT_EQ(folder.Read("x"), "a\\\\b\\t5%" + std::string(100000, 'x'));
}

TEST(ConfigFileWriter, PlainTextIsNeverAFormat) {
  EXPECT_EQ(Written("100%s %n %d\n", Escape::None), "100%s %n %d\n");
}

TEST(ConfigFileWriter, LinesStartAtZeroWithEachFile) {
  const TempFolder folder;
  ConfigFileWriter writer;
  writer.Open(folder.Path("x").c_str());
  writer.Print("a\n\n");
  EXPECT_EQ(writer.Lines(), 2);
  writer.Close();
  writer.Open(folder.Path("y").c_str());
  EXPECT_EQ(writer.Lines(), 0);
}

TEST(ConfigFileWriter, OpensOneFileAtATime) {
  const TempFolder folder;
  ConfigFileWriter writer;
  EXPECT_TRUE(writer.Open(folder.Path("x").c_str()));
  EXPECT_FILE_FAILS(writer.Open("second.ocf"), 1027,
                    "Configuration file already open while attempting to open 'second.ocf'");
  EXPECT_FILE_FAILS(writer.TryOpen("second.ocf"), 1027,
                    "Configuration file already open while attempting to open 'second.ocf'");
  writer.Write("kept");
  writer.Close();
  EXPECT_EQ(folder.Read("x"), "kept");
}

TEST(ConfigFileWriter, AFileThatCannotBeCreatedIsReportedUnlessItIsOnlyTried) {
  const TempFolder folder;
  const std::string nowhere = folder.Path("no such folder/100%.ocf");
  ConfigFileWriter writer;
  EXPECT_FILE_FAILS(writer.Open(nowhere.c_str()), 1028, "Failed opening file for writing:  " + nowhere);
  EXPECT_FILE_FAILS(writer.Open(folder.Path().c_str()), 1028,
                    "Failed opening file for writing:  " + folder.Path());
  EXPECT_FILE_FAILS(writer.Open(nullptr), 1028, "Failed opening file for writing:  ");
  orv::ORVResetError();
  EXPECT_FALSE(writer.TryOpen(nowhere.c_str()));
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TEST(ConfigFileWriter, WritingNeedsAnOpenFile) {
  constexpr const char* kNotOpen = "Attempt to write to configuration file before file is open";
  const TempFolder folder;
  ConfigFileWriter writer;
  EXPECT_FILE_FAILS(writer.Write("x"), 1027, kNotOpen);
  EXPECT_FILE_FAILS(writer.Print("%d", 5), 1027, kNotOpen);
  writer.Open(folder.Path("x").c_str());
  writer.Close();
  EXPECT_FILE_FAILS(writer.Write("x"), 1027, kNotOpen);
  EXPECT_NO_THROW(writer.Close()) << "closing twice is harmless";
  EXPECT_EQ(writer.Lines(), 0);
}

TEST(ConfigFileWriter, AFailedWriteIsReported) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "NOT TESTED: this machine has no /dev/full";
  constexpr const char* kFailed = "File write failed on configuration file '/dev/full'";
  {
    ConfigFileWriter writer;
    writer.Open("/dev/full");
    EXPECT_FILE_FAILS(writer.Write(std::string(1 << 20, 'x')), 1030, kFailed);
  }  // the destructor is silent
  {
    // A text that fits the buffer fails when the buffer is written.
    ConfigFileWriter writer;
    writer.Open("/dev/full");
    EXPECT_NO_THROW(writer.Write("x"));
    EXPECT_FILE_FAILS(writer.Close(), 1030, kFailed);
    EXPECT_NO_THROW(writer.Close());
  }
  {
    ConfigFileWriter writer;
    writer.Open("/dev/full");
    writer.Write("x");
  }
}

TEST(ConfigFileWriter, AFileIsReplacedWholeWhenItIsClosed) {
  const TempFolder folder;
  folder.Write("x", "old");
  ConfigFileWriter writer;
  writer.Open(folder.Path("x").c_str());
  writer.Write(std::string(1 << 20, 'n'));
  EXPECT_EQ(folder.Read("x"), "old");
  writer.Close();
  EXPECT_EQ(folder.Read("x"), std::string(1 << 20, 'n'));
  EXPECT_EQ(FilesIn(folder), std::vector<std::string>{"x"}) << "nothing else stays";
}

TEST(ConfigFileWriter, AFileThatIsNotClosedStaysAsItWas) {
  const TempFolder folder;
  folder.Write("x", "old");
  {
    ConfigFileWriter writer, another;
    writer.Open(folder.Path("x").c_str());
    writer.Write("new");
    another.Open(folder.Path("y").c_str());
    another.Write("new");
  }
  EXPECT_EQ(folder.Read("x"), "old");
  EXPECT_EQ(FilesIn(folder), std::vector<std::string>{"x"});
}

TEST(ConfigFileWriter, AFullDiskLeavesTheOldFile) {
  const TempFolder folder;
  const std::string path = folder.Write("x", "old");
  const std::string failed = "File write failed on configuration file '" + path + "'";
  const SizeLimit limit(100000);  // of any file, as a full disk would
  {
    ConfigFileWriter writer;
    writer.Open(path.c_str());
    EXPECT_FILE_FAILS(writer.Write(std::string(1 << 20, 'n')), 1030, failed);
    EXPECT_FILE_FAILS(writer.Close(), 1030, failed) << "half a file is no file";
  }
  EXPECT_EQ(folder.Read("x"), "old");
  {
    // Everything fits the buffers of the stream until the end.
    ConfigFileWriter writer;
    writer.Open(path.c_str());
    for (int i = 0; i < 99; ++i) writer.Write(std::string(1000, 'n'));
    const SizeLimit smaller(50);
    EXPECT_FILE_FAILS(writer.Close(), 1030, failed);
  }
  EXPECT_EQ(folder.Read("x"), "old");
  EXPECT_EQ(FilesIn(folder), std::vector<std::string>{"x"});
}

TEST(ConfigFileWriter, LinksAndRightsOfTheOldFileStay) {
  namespace fs = std::filesystem;
  const TempFolder folder;
  folder.Write("real", "old");
  fs::permissions(folder.Path("real"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real", folder.Path("link"));
  ConfigFileWriter writer;
  writer.Open(folder.Path("link").c_str());
  writer.Write("new");
  writer.Close();
  EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
  EXPECT_EQ(folder.Read("real"), "new");
  EXPECT_EQ(fs::status(folder.Path("real")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(ConfigFileWriter, AFileWithoutAnOldOneGetsTheUsualRights) {
  const TempFolder folder;
  const mode_t before = ::umask(027);
  ConfigFileWriter writer;
  writer.Open(folder.Path("x").c_str());
  ::umask(before);
  writer.Close();
  EXPECT_EQ(static_cast<int>(std::filesystem::status(folder.Path("x")).permissions()), 0640);
}

TEST(ConfigFileWriter, ASaverWhoMayNotGiveTheFileAwayWidensNobodysRights) {
  namespace fs = std::filesystem;
  if (geteuid() != 0) GTEST_SKIP() << "only root can play another user";
  const TempFolder folder;
  const std::string path = folder.Write("x", "old");
  fs::permissions(folder.Path(), fs::perms::all);
  ASSERT_EQ(chmod(path.c_str(), 0606), 0);
  ASSERT_EQ(chown(path.c_str(), 1, 1), 0);
  ASSERT_EQ(setegid(2), 0);
  ASSERT_EQ(seteuid(2), 0);
  ConfigFileWriter writer;
  const bool opened = writer.Open(path.c_str());
  if (opened) writer.Close();
  ASSERT_EQ(seteuid(0), 0);
  ASSERT_EQ(setegid(0), 0);
  EXPECT_TRUE(opened);
  EXPECT_EQ(static_cast<int>(fs::status(path).permissions()), 0606);
}

TEST(ConfigFileWriter, AFolderThatTakesNoFilesIsReported) {
  const TempFolder folder;
  const std::string path = folder.Write("x", "old");
  std::filesystem::permissions(folder.Path(),
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  ConfigFileWriter writer;
  const bool opened = writer.TryOpen(path.c_str());
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::owner_all);
  EXPECT_EQ(opened, ::geteuid() == 0) << "the administrator may write anywhere";
  if (!opened) {
    EXPECT_EQ(folder.Read("x"), "old");
  }
}

TEST(ConfigFileWriter, ADecimalCommaOfTheHostChangesNothing) {
  ORV_WITH_COMMA_LOCALE();
  const TempFolder folder;
  ConfigFileWriter writer;
  writer.Open(folder.Path("x").c_str());
  writer.Print("   radius=%.4f\n   f=%.19f %g\n", 6378137.0, 1.0 / 1024, 0.5);
  writer.Close();
  EXPECT_EQ(folder.Read("x"), "   radius=6378137.0000\n   f=0.0009765625000000000 0.5\n");
}

// ---- against another way of doing it ---------------------------------------------------------------------

namespace {

// The same lexical rules over a text in memory, line by line; without escapes.
std::vector<Token> TokensByLine(const std::string& bytes) {
  const std::string delimiters = "=+,:~/!@#$%^&*(){}[]|<>;";
  const std::string white = " \t\r";
  std::vector<Token> tokens;
  int number = 0;
  for (size_t begin = 0; begin <= bytes.size();) {
    const size_t end = std::min(bytes.find('\n', begin), bytes.size());
    const std::string line = bytes.substr(begin, end - begin);
    begin = end + 1;
    ++number;
    for (size_t at = line.find_first_not_of(white); at < line.size() && line[at] != ';';) {
      size_t next;
      if (delimiters.find(line[at]) != std::string::npos) {
        next = at + 1;
        tokens.push_back({line.substr(at, 1), number});
      } else if (line[at] == '"' || line[at] == '\'') {
        const size_t close = std::min(line.find(line[at], at + 1), line.size());
        tokens.push_back({line.substr(at + 1, close - at - 1), number});
        next = close + 1;
      } else {
        next = std::min(line.find_first_of(delimiters + white, at), line.size());
        tokens.push_back({line.substr(at, next - at), number});
      }
      at = line.find_first_not_of(white, next);
    }
  }
  return tokens;
}

}  // namespace

TEST(ConfigFileReader, ReadsAnyTextAsTheLineByLineModelDoes) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const std::string text = orv::test::TextOf(
            {'a', 'b', '=', ';', '{', '}', '"', '\'', ' ', '\t', '\r', '\n', '\n', '\\', '+', '\xFF', '\0'});
        ORV_HOLDS(TokensWithLines(text) == TokensByLine(text));
      },
      400));
}

// Two readers of one text: what one of them takes ahead is what the other reads next.
TEST(ConfigFileReader, TokensTakenAheadAreThoseThatAreNext) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const TempFolder folder;
        const std::string text = orv::test::TextOf(
            {'a', 'B', '1', '=', ';', '}', '"', '"', '\'', ' ', '\n', '.', '5', '\xFF', '\0'});
        const std::string path = folder.Write("test.ocf", text);
        ConfigFileReader taker, reader;
        taker.Open(path.c_str());
        reader.Open(path.c_str());
        for (bool more = true; more;) {
          const int line = taker.Line();
          const char* const ahead = taker.Ahead();
          ORV_HOLDS(taker.Line() == line);
          const bool taken = taker.TakeAt(ahead);
          more = reader.Next();
          ORV_HOLDS(taken ? more : taker.Next() == more);
          ORV_HOLDS(taker.Token() == reader.Token() && taker.Line() == reader.Line());
        }
      },
      400));
}

TEST(ConfigFileReader, TakesAheadOverWhiteSpaceButNoDelimiter) {
  const TempFolder folder;
  ConfigFileReader reader;
  EXPECT_EQ(reader.Ahead(), nullptr) << "no file";
  reader.Open(folder.Write("x.ocf", "\n   key= \t\n'a value' =;c\nlast").c_str());
  const char* ahead = reader.Ahead();
  ASSERT_EQ(std::string_view(ahead, 4), "key=");
  ASSERT_TRUE(reader.TakeAt(ahead + 4));
  EXPECT_EQ(reader.Token(), "a value");
  EXPECT_EQ(reader.Line(), 3);
  ahead = reader.Ahead();
  EXPECT_FALSE(reader.TakeAt(ahead)) << "a delimiter";
  EXPECT_FALSE(reader.TakeAt(ahead + 1)) << "a comment";
  EXPECT_EQ(reader.Token(), "a value");
  ASSERT_TRUE(reader.Next());
  reader.GiveBack();
  EXPECT_EQ(reader.Ahead(), ahead) << "a token given back is ahead";
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Token(), "=");
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Token(), "last");
  EXPECT_FALSE(reader.TakeAt(reader.Ahead())) << "the end";
  ConfigFileReader unescaping(true);
  unescaping.Open(folder.Path("x.ocf").c_str());
  EXPECT_EQ(unescaping.Ahead(), nullptr) << "escapes are left to Next";
}

TEST(ConfigFileReader, AQuotedTokenIsGivenBackWithItsQuotes) {
  const TempFolder folder;
  ConfigFileReader reader;
  reader.Open(folder.Write("x.ocf", "a\n'b =c' d").c_str());
  for (int token = 0; token < 2; ++token) ASSERT_TRUE(reader.Next());
  for (int again = 0; again < 2; ++again) {
    reader.GiveBack();
    EXPECT_EQ(reader.Line(), 2);
    ASSERT_TRUE(reader.Next());
    EXPECT_EQ(reader.Token(), "b =c");
  }
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Token(), "d");
}
