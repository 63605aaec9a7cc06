#include "orv/core/internal/Text.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"

namespace {

using namespace orv::internal;

// Every byte, folded on its own.
std::string Folded(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return text;
}

}  // namespace

TEST(Text, OnlyLettersOfAsciiAreFolded) {
  for (int byte = 0; byte < 256; ++byte) {
    const int expected = byte >= 'A' && byte <= 'Z' ? byte + 32 : byte;
    EXPECT_EQ(FoldCase(static_cast<char>(byte)), expected) << byte;
  }
}

TEST(Text, ComparisonsIgnoreCase) {
  EXPECT_EQ(CompareIgnoringCase("Feet", "fEET"), 0);
  EXPECT_EQ(HashIgnoringCase("Feet"), HashIgnoringCase("fEET"));
  EXPECT_EQ(HashIgnoringCase(nullptr), HashIgnoringCase(""));
  EXPECT_NE(HashIgnoringCase("foot"), HashIgnoringCase("feet"));
  EXPECT_TRUE(EqualIgnoringCase("WGS84", "wgs84"));
  EXPECT_FALSE(EqualIgnoringCase("WGS84", "WGS 84"));
  EXPECT_TRUE(EqualIgnoringCase(std::string("NONE"), "none"));
  EXPECT_EQ(CompareIgnoringCase("abc", "ABD"), -1);
  EXPECT_EQ(CompareIgnoringCase("ABD", "abc"), 1);
  EXPECT_EQ(CompareIgnoringCase("ab", "abc"), -1);
  EXPECT_EQ(CompareIgnoringCase("abc", "ab"), 1);
}

TEST(Text, TheOrderIsThatOfLowerCaseBytesAsUnsigned) {
  EXPECT_EQ(CompareIgnoringCase("A_", "Aa"), -1) << "the underscore comes before the letters";
  EXPECT_EQ(CompareIgnoringCase("_", "Z"), -1) << "also before upper-case ones, which are behind it in ASCII";
  EXPECT_EQ(CompareIgnoringCase("9", "a"), -1);
  EXPECT_EQ(CompareIgnoringCase("z", "\x80"), -1) << "bytes above 127 come last";
  EXPECT_EQ(CompareIgnoringCase("\xFF", "\x80"), 1);
}

TEST(Text, BytesBeyondAsciiHaveNoCase) {
  EXPECT_FALSE(EqualIgnoringCase("\xC4", "\xE4"));
  EXPECT_FALSE(EqualIgnoringCase("\xC3\x84", "\xC3\xA4"));  // A and a with dots, in UTF-8
}

TEST(Text, ANullTextCountsAsEmpty) {
  EXPECT_EQ(CompareIgnoringCase(nullptr, nullptr), 0);
  EXPECT_EQ(CompareIgnoringCase(nullptr, ""), 0);
  EXPECT_EQ(CompareIgnoringCase(nullptr, "a"), -1);
  EXPECT_EQ(CompareIgnoringCase("a", nullptr), 1);
}

TEST(Text, ComparisonsAgreeWithComparingFoldedTexts) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const auto text = rc::gen::container<std::string>(
            rc::gen::element('a', 'A', 'b', 'Z', 'z', '_', '[', '0', '\xC4', '\xE4'));
        const std::string a = *text;
        const std::string b = *text;
        const int order = Folded(a).compare(Folded(b));
        RC_ASSERT(CompareIgnoringCase(a.c_str(), b.c_str()) == (order < 0 ? -1 : order > 0 ? 1 : 0));
      },
      1000));
}

TEST(Text, EmptyTextsAndNullPointersTurnIntoEachOther) {
  const std::string empty;
  const std::string text = "x";
  EXPECT_EQ(NullIfEmpty(empty), nullptr);
  EXPECT_EQ(NullIfEmpty(text), text.c_str());
  EXPECT_STREQ(EmptyIfNull(nullptr), "");
  EXPECT_EQ(EmptyIfNull(text.c_str()), text.c_str());
}

TEST(Text, FormatTakesAnyLength) {
  EXPECT_EQ(Format("%s", ""), "");
  for (const size_t length : {1u, 510u, 511u, 512u, 513u, 1023u, 100000u}) {
    const std::string text(length, 'x');
    EXPECT_EQ(Format("%s", text.c_str()), text);
    EXPECT_EQ(Format("<%s>%d", text.c_str(), 7), "<" + text + ">7") << "arguments are used twice";
  }
}

TEST(Text, FormatsAsTheCLocaleWould) {
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(Format("%.2f %g %.18e %d", 1.5, 0.25, 0.5, 1234567).substr(0, 10), "1.50 0.25 ");
  EXPECT_EQ(Format("%.20f", 0.5), "0.50000000000000000000");
  EXPECT_EQ(Format("%.19f", 1.0 / 1024), "0.0009765625000000000");
  EXPECT_EQ(Format("%.600f", 0.5), "0.5" + std::string(599, '0')) << "also when the text is formatted twice";
  char before[32];
  std::snprintf(before, sizeof before, "%.1f", 1.5);
  EXPECT_STREQ(before, "1,5") << "the host's own locale stays";
}
