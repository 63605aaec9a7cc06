#include "orv/core/internal/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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

TEST(Text, WholeTextsAreComparedBehindTheirZerosToo) {
  using namespace std::string_view_literals;
  EXPECT_TRUE(EqualIgnoringCase("Transverse MERCATOR"sv, "transverse Mercator"sv));
  EXPECT_FALSE(EqualIgnoringCase("Transverse Mercator"sv, "Transverse Mercatos"sv));
  EXPECT_FALSE(EqualIgnoringCase("Mercator"sv, "Mercato"sv));
  EXPECT_FALSE(EqualIgnoringCase("type\0x"sv, "type"sv));
  EXPECT_FALSE(EqualIgnoringCase("type\0x"sv, "type\0y"sv));
  EXPECT_TRUE(EqualIgnoringCase(""sv, ""sv));
}

TEST(Text, EightCharactersOrderAsTheirTextsDo) {
  static_assert(EightFolded("AZaz@[`{") == 0x617a617a405b607bu);
  static_assert(EightFolded("ab") == 0x6162000000000000u);
  static_assert(EightFolded("abcdefghi") == EightFolded("ABCDEFGH"));
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(9, static_cast<char>(byte));
    const uint64_t folded = FoldCase(static_cast<char>(byte));
    EXPECT_EQ(EightFolded(text), folded * 0x0101010101010101u) << byte;
    EXPECT_EQ(EightFolded(text.substr(0, 3)), folded * 0x0101010000000000u) << byte;
  }
}

TEST(Text, TheFirstEightAreThoseThatATextHas) {
  const std::string all = "abcdefghij";
  for (size_t size = 0; size <= all.size(); ++size) {
    uint64_t expected = 0;
    for (size_t i = 0; i < 8; ++i)
      expected = expected << 8 | (i < size ? static_cast<unsigned char>(all[i]) : 0u);
    EXPECT_EQ(FirstEight(std::string_view(all).substr(0, size)), expected) << size;
  }
}

TEST(Text, EachOfEightCharactersIsTestedByItself) {
  for (int byte = 0; byte < 256; ++byte) {
    const auto c = static_cast<char>(byte);
    const std::string text = std::string("a") + c + "z" + c + c + "{`" + c;
    const uint64_t eight = EightAt(text.c_str());
    EXPECT_EQ(eight, FirstEight(text)) << byte;
    const uint64_t each = byte >= 'a' && byte <= 'z' ? 0x0080008080000080u : 0u;
    EXPECT_EQ(Within(eight, 'a', 'z'), each | 0x8000800000000000u) << byte;
    EXPECT_EQ(Within(eight, 0, 127) & 0x0080008080000080u, byte < 128 ? 0x0080008080000080u : 0u) << byte;
  }
}

TEST(Text, HashesOfAllLengthsIgnoreCaseAndMindEveryCharacter) {
  const std::string lower = "abcdefghijklmnopqrstuvwxyz", upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  for (size_t size = 1; size <= lower.size(); ++size) {
    const std::string text = lower.substr(0, size);
    EXPECT_EQ(HashIgnoringCase(text), HashIgnoringCase(upper.substr(0, size))) << size;
    for (size_t i = 0; i < size; ++i) {
      std::string other = text;
      other[i] = '1';
      EXPECT_NE(HashIgnoringCase(text), HashIgnoringCase(other)) << size << ", " << i;
    }
  }
}

TEST(Text, SortsAsItComparesAndEqualTextsByTheirNumbers) {
  EXPECT_TRUE(orv::test::Holds([] {
    // few different characters and lengths around eight, so that many texts begin alike or are equal
    std::vector<std::string> longer;
    for (int count = orv::test::IntIn(0, 40); count > 0; --count) {
      const std::string text = orv::test::TextOf({'a', 'A', 'b', '_', '\xE4'});
      longer.push_back(std::string(text.size() % 3 * 8, 'A') + text);
    }
    std::vector<NumberedText> sorted;
    for (size_t i = 0; i < longer.size(); ++i)
      sorted.push_back({longer[i].c_str(), static_cast<uint32_t>(i)});
    std::vector<NumberedText> expected = sorted;
    std::stable_sort(expected.begin(), expected.end(), [](const NumberedText& a, const NumberedText& b) {
      return CompareIgnoringCase(a.text, b.text) < 0;
    });
    SortIgnoringCase(sorted);
    for (size_t i = 0; i < sorted.size(); ++i) {
      ORV_HOLDS(sorted[i].number == expected[i].number);
      ORV_HOLDS(sorted[i].text == expected[i].text);
    }
  }));
}

TEST(Text, LongEqualTextsAreSortedWithoutRecursion) {
  const std::string text(1000000, 'x');
  std::vector<NumberedText> texts = {{text.c_str(), 2}, {text.c_str(), 1}, {"x", 0}};
  SortIgnoringCase(texts);
  EXPECT_EQ(texts[0].number, 0u);
  EXPECT_EQ(texts[1].number, 1u);
  EXPECT_EQ(texts[2].number, 2u);
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
        const auto text = [] {
          return orv::test::TextOf({'a', 'A', 'b', 'Z', 'z', '_', '[', '0', '\xC4', '\xE4'});
        };
        const std::string a = text();
        const std::string b = text();
        const int order = Folded(a).compare(Folded(b));
        ORV_HOLDS(CompareIgnoringCase(a.c_str(), b.c_str()) == (order < 0 ? -1 : order > 0 ? 1 : 0));
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

TEST(Text, ShortNamesStandBehindTheLastBar) {
  EXPECT_STREQ(ShortNameOf("UTM|WGS 84|WGS 84 / UTM zone 33N"), "WGS 84 / UTM zone 33N");
  EXPECT_STREQ(ShortNameOf("plain"), "plain");
  EXPECT_STREQ(ShortNameOf("World| Spaced"), "Spaced");
  EXPECT_STREQ(ShortNameOf("Group|| "), "");
  EXPECT_STREQ(ShortNameOf(""), "");
}
