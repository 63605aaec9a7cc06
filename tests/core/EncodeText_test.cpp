#include "orv/core/EncodeText.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "orv/core/Error.h"
#include "orv/core/internal/Fail.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"

namespace {

using orv::ORVDecodeInfo;
using orv::ORVDecodeValue;
using orv::ORVEncodeValue;
using orv::ORVSkipItem;

constexpr const char* kBadType = "Bad data type while encoding data.";
constexpr const char* kBadCount = "Bad count or bad data pointer while encoding data.";
constexpr const char* kOutOfRange = "Offset out of range while parsing encoded data.";
constexpr const char* kCorrupt = "Corrupt data while parsing encoded data.";
constexpr const char* kMismatch = "Mismatched data type while parsing encoded data.";

#define EXPECT_ENCODE_FAILS(statement, text) EXPECT_RAISES(statement, 1026, "EncodeText", text)

std::string Encoded(const char* name, char type, const void* data, size_t count) {
  std::string out;
  ORVEncodeValue(out, name, type, data, count);
  return out;
}

std::string Encoded(const std::string& text) { return Encoded("S", 's', text.c_str(), 0); }

// Reads the one item of a text.
template <class T>
T Decoded(const std::string& item) {
  size_t at = 0;
  T value{};
  ORVDecodeValue(item, &at, &value);
  EXPECT_EQ(at, 0u) << "the cursor must stay";
  return value;
}

std::string DecodedText(const std::string& item) {
  size_t at = 0;
  std::string value;
  ORVDecodeValue(item, &at, value);
  EXPECT_EQ(at, 0u) << "the cursor must stay";
  return value;
}

std::vector<double> DecodedDoubles(const std::string& item, size_t start, size_t count) {
  size_t at = 0;
  std::vector<double> values(count);
  ORVDecodeValue(item, &at, values.data(), start, count);
  EXPECT_EQ(at, 0u) << "the cursor must stay";
  return values;
}

double DecodedDouble(const std::string& item) { return DecodedDoubles(item, 0, 1)[0]; }

struct Head {
  bool read;
  std::string name;
  char type;
  size_t count;
};

Head HeadOf(const std::string& data, size_t at = 0) {
  Head head{false, "before", '?', 77};
  const size_t cursor = at;
  head.read = ORVDecodeInfo(data, &at, head.name, head.type, head.count);
  EXPECT_EQ(at, cursor) << "the cursor must stay";
  return head;
}

}  // namespace

// ---- writing ---------------------------------------------------------------------------------------------

TEST(EncodeText, EveryTypeIsWrittenByteForByte) {
  const bool bools[] = {true, false, true};
  EXPECT_EQ(Encoded("Flags", 'b', bools, 3), "<b5,Flags[3]=t,f,t>\r\n");
  const int ints[] = {0, -1, INT_MAX, INT_MIN};
  EXPECT_EQ(Encoded("N", 'd', ints, 4), "<d1,N[4]=0,-1,2147483647,-2147483648>\r\n");
  const unsigned unsigneds[] = {0u, UINT_MAX};
  EXPECT_EQ(Encoded("U", 'u', unsigneds, 2), "<u1,U[2]=0,4294967295>\r\n");
  const double doubles[] = {1500.0, 0.0, -0.5};
  EXPECT_EQ(orv::test::TwoDigitExponents(Encoded("Xorg", 'f', doubles, 3)),
            "<f4,Xorg[3]=1.500000000000000000e+03,0,-5.000000000000000000e-01>\r\n");
  EXPECT_EQ(Encoded("Name", 's', "My grid", 0), "<s4,Name[7]=\"My grid\">\r\n");
  const unsigned char bytes[] = {0x00, 0x0A, 0xFF};
  EXPECT_EQ(Encoded("Raw", 'v', bytes, 3), "<v3,Raw[3]=000AFF>\r\n");
  EXPECT_EQ(Encoded("ORVDef", '{', nullptr, 1), "<{6,ORVDef[1]>\r\n");
  EXPECT_EQ(Encoded("ORVDef", '}', nullptr, 1), "<}6,ORVDef[1]>\r\n");
}

TEST(EncodeText, BlockItemsCarryTheCallersCountAndNoValues) {
  EXPECT_EQ(Encoded("B", '{', "ignored", 12), "<{1,B[12]>\r\n");
  EXPECT_EQ(Encoded("B", '}', nullptr, 0), "<}1,B[0]>\r\n");
}

TEST(EncodeText, ItemsAreAppended) {
  std::string out = "before";
  const int n = 7;
  ORVEncodeValue(out, "A", 'd', &n, 1);
  ORVEncodeValue(out, "B", 'd', &n, 1);
  EXPECT_EQ(out, "before<d1,A[1]=7>\r\n<d1,B[1]=7>\r\n");
}

TEST(EncodeText, ANullNameHasLengthZero) {
  const int n = 7;
  EXPECT_EQ(Encoded(nullptr, 'd', &n, 1), "<d0,[1]=7>\r\n");
  EXPECT_EQ(HeadOf("<d0,[1]=7>\r\n").name, "");
}

TEST(EncodeText, AStringsCountIsItsOwnLength) {
  EXPECT_EQ(Encoded("S", 's', "abc", 99), "<s1,S[3]=\"abc\">\r\n");
  EXPECT_EQ(Encoded("S", 's', nullptr, 99), "<s1,S[0]=\"\">\r\n");
}

TEST(EncodeText, AnEmptyStringIsCountZeroAndReadsBackEmpty) {
  EXPECT_EQ(Encoded(""), "<s1,S[0]=\"\">\r\n");
  EXPECT_EQ(DecodedText(Encoded("")), "");
}

TEST(EncodeText, ZeroOfEitherSignIsWrittenAsOneDigit) {
  const double zeros[] = {0.0, -0.0};
  EXPECT_EQ(Encoded("Z", 'f', zeros, 2), "<f1,Z[2]=0,0>\r\n");
  EXPECT_EQ(DecodedDouble(Encoded("Z", 'f', &zeros[1], 1)), 0.0);
  EXPECT_FALSE(std::signbit(DecodedDouble(Encoded("Z", 'f', &zeros[1], 1))));
}

TEST(EncodeText, SpecialCharactersOfStringsAreEscaped) {
  EXPECT_EQ(Encoded("a\"b<c>d\te\x7F"), "<s1,S[10]=\"a\\x22b\\x3Cc\\x3Ed\\x09e\\x7F\">\r\n");
  EXPECT_EQ(DecodedText(Encoded("a\"b<c>d\te\x7F")), "a\"b<c>d\te\x7F");
  EXPECT_EQ(Encoded("\x01\x1F\r\n"), "<s1,S[4]=\"\\x01\\x1F\\x0D\\x0A\">\r\n");
  EXPECT_EQ(Encoded("100% 'x', =[]{}"), "<s1,S[15]=\"100% 'x', =[]{}\">\r\n");
}

TEST(EncodeText, BytesAbove127PassUnchanged) {
  std::string high;
  for (int byte = 128; byte < 256; ++byte) high += static_cast<char>(byte);
  EXPECT_EQ(Encoded(high), "<s1,S[128]=\"" + high + "\">\r\n");
  EXPECT_EQ(DecodedText(Encoded(high)), high);
}

TEST(EncodeText, ABackslashIsNotEscapedAndDoesNotComeBack) {
  // Deliberate: a backslash is one of "all other bytes" to the writer but opens an escape to the reader.
  EXPECT_EQ(Encoded("a\\b"), "<s1,S[3]=\"a\\b\">\r\n");
  EXPECT_ENCODE_FAILS(DecodedText(Encoded("a\\b")), kCorrupt);
  EXPECT_EQ(DecodedText(Encoded("a\\x41")), "aA");
}

TEST(EncodeText, UnknownTypesAreRefusedAfterTheHeader) {
  const int n = 7;
  for (const char type : {'x', 'a', 'B', 'D', 'S', '|', '~', '!', ' ', '\0', '\x80', '\xFF'}) {
    std::string out = "before";
    EXPECT_ENCODE_FAILS(ORVEncodeValue(out, "Name", type, &n, 1), kBadType);
    EXPECT_EQ(out, std::string("before<") + type + "4,Name[1]") << "the half item stays";
  }
}

TEST(EncodeText, ArraysNeedACountAndAPointer) {
  const double data[1] = {1.0};
  for (const char type : {'b', 'd', 'u', 'f', 'v'}) {
    std::string out;
    EXPECT_ENCODE_FAILS(ORVEncodeValue(out, "A", type, data, 0), kBadCount);
    EXPECT_EQ(out, std::string("<") + type + "1,A[0]") << "the half item stays";
    EXPECT_ENCODE_FAILS(ORVEncodeValue(out, "A", type, nullptr, 1), kBadCount);
  }
}

// ---- headers ---------------------------------------------------------------------------------------------

TEST(EncodeText, AHeaderGivesNameTypeAndCount) {
  const Head head = HeadOf("junk<f4,Xorg[2]=1,0>\r\n", 4);
  EXPECT_TRUE(head.read);
  EXPECT_EQ(head.name, "Xorg");
  EXPECT_EQ(head.type, 'f');
  EXPECT_EQ(head.count, 2u);
}

TEST(EncodeText, ANullCursorIsTheBeginning) {
  std::string name;
  char type = 0;
  size_t count = 0;
  EXPECT_TRUE(ORVDecodeInfo("<{1,B[1]>", nullptr, name, type, count));
  EXPECT_EQ(name, "B");
}

TEST(EncodeText, HeadersAreReadLiberally) {
  EXPECT_TRUE(HeadOf("<{1,B[1]").read) << "the closing character is not looked for";
  EXPECT_TRUE(HeadOf("<d1,B[1]=").read);
  EXPECT_EQ(HeadOf("<q1,B[1]=").type, 'q') << "any type letter passes";
  EXPECT_EQ(HeadOf("<d,[]=").count, 0u) << "no digits are 0";
  EXPECT_TRUE(HeadOf("<d,[]=").read);
  EXPECT_EQ(HeadOf("<d003,abc[007]=").count, 7u);
  EXPECT_EQ(HeadOf("<d3,a[b[1]=").name, "a[b") << "the length rules, not the bracket";
  EXPECT_EQ(HeadOf("<d1,B[18446744073709551615]=").count, SIZE_MAX);
}

TEST(EncodeText, MalformedHeadersGiveFalseAndNoReport) {
  orv::ORVResetError();
  for (const char* const text : {"",
                                 "x",
                                 "d1,B[1]=0",
                                 " <d1,B[1]=0>",
                                 "<",
                                 "<d",
                                 "<d1",
                                 "<d1B[1]=0",
                                 "<d1,",
                                 "<d1,B",
                                 "<d1,B1]=0",
                                 "<d1,B[",
                                 "<d1,B[1",
                                 "<d1,B[1=0",
                                 "<d1,B[1]",
                                 "<d1,B[1]>",
                                 "<d1,B[-1]=0",
                                 "<d-1,B[1]=0",
                                 "<d2,B[1]=0",
                                 "<{1,B[1",
                                 "<d9,short[1]=0",
                                 "<d5,short",
                                 "<d18446744073709551615,B[1]=0",
                                 "<d18446744073709551616,B[1]=0",
                                 "<d99999999999999999999999999,B[1]=0",
                                 "<d1,B[18446744073709551616]=0",
                                 "<d1,B[1]:0"}) {
    const Head head = HeadOf(text);
    EXPECT_FALSE(head.read) << text;
    EXPECT_EQ(head.name + head.type + std::to_string(head.count), "before?77")
        << "outputs must stay: " << text;
  }
  EXPECT_FALSE(HeadOf("<d1,B[1]=0>", 11).read) << "at the end";
  EXPECT_FALSE(HeadOf("<d1,B[1]=0>", 12).read) << "past the end";
  EXPECT_FALSE(HeadOf("<d1,B[1]=0>", SIZE_MAX).read);
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TEST(EncodeText, AHeaderCutAnywhereIsMalformed) {
  const std::string whole = "<s11,Description[3]=";
  EXPECT_TRUE(HeadOf(whole).read);
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(HeadOf(whole.substr(0, length)).read) << length;
  }
}

// ---- skipping --------------------------------------------------------------------------------------------

TEST(EncodeText, SkippingGoesToTheNextOpener) {
  const std::string data = "x<{1,A[1]>\r\n<d1,B[1]=0>\r\n";
  size_t at = 0;
  EXPECT_TRUE(ORVSkipItem(data, &at));
  EXPECT_EQ(at, 1u);
  EXPECT_TRUE(ORVSkipItem(data, &at)) << "by one character at least, and into blocks";
  EXPECT_EQ(at, 12u);
  EXPECT_FALSE(ORVSkipItem(data, &at));
  EXPECT_EQ(at, data.size());
  EXPECT_FALSE(ORVSkipItem(data, &at));
  EXPECT_EQ(at, data.size());
}

TEST(EncodeText, SkippingLooksAtNoHeader) {
  size_t at = 0;
  EXPECT_TRUE(ORVSkipItem("<<", &at));
  EXPECT_EQ(at, 1u);
}

TEST(EncodeText, SkippingFromBeyondTheEndStopsAtTheEnd) {
  size_t at = 1000;
  EXPECT_FALSE(ORVSkipItem("<abc<", &at));
  EXPECT_EQ(at, 5u);
  at = SIZE_MAX;
  EXPECT_FALSE(ORVSkipItem("<abc<", &at));
  EXPECT_EQ(at, 5u);
  at = 4;
  EXPECT_FALSE(ORVSkipItem("<abc<", &at));
  EXPECT_EQ(at, 5u);
  at = 0;
  EXPECT_FALSE(ORVSkipItem("", &at));
  EXPECT_EQ(at, 0u);
}

TEST(EncodeText, SkippingReportsNothing) {
  orv::ORVResetError();
  size_t at = 0;
  EXPECT_FALSE(ORVSkipItem("no item", &at));
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

// ---- reading booleans and integers -----------------------------------------------------------------------

TEST(EncodeText, ABooleanIsTrueForExactlyOneLetter) {
  EXPECT_TRUE(Decoded<bool>("<b1,B[1]=t>"));
  EXPECT_TRUE(Decoded<bool>("<b1,B[2]=t,f>")) << "the first element";
  for (const char* const item : {"<b1,B[1]=f>", "<b1,B[1]=T>", "<b1,B[1]=1>", "<b1,B[1]=>", "<b1,B[1]= t>"}) {
    EXPECT_FALSE(Decoded<bool>(item)) << item;
  }
}

TEST(EncodeText, AnIntegerIsAMinusAndDigits) {
  EXPECT_EQ(Decoded<int>("<d1,N[1]=42>"), 42);
  EXPECT_EQ(Decoded<int>("<d1,N[1]=-42>"), -42);
  EXPECT_EQ(Decoded<int>("<d1,N[2]=7,8>"), 7) << "the first element";
  EXPECT_EQ(Decoded<int>("<d1,N[1]=007>"), 7);
  EXPECT_EQ(Decoded<int>("<d1,N[1]=12abc>"), 12);
  EXPECT_EQ(Decoded<int>("<d1,N[1]=12"), 12) << "the end of the text ends the digits";
}

TEST(EncodeText, AnIntegerWithoutDigitsIsZero) {
  for (const char* const item : {"<d1,N[1]=>", "<d1,N[1]=+5>", "<d1,N[1]=-", "<d1,N[1]=->", "<d1,N[1]=--5>",
                                 "<d1,N[1]= 5>", "<d1,N[1]=x>"}) {
    EXPECT_EQ(Decoded<int>(item), 0) << item;
  }
}

TEST(EncodeText, IntegersWrapAtThirtyTwoBits) {
  EXPECT_EQ(Decoded<int>("<d1,N[1]=-2147483648>"), INT_MIN);
  EXPECT_EQ(Decoded<int>("<d1,N[1]=2147483647>"), INT_MAX);
  EXPECT_EQ(Decoded<int>("<d1,N[1]=2147483648>"), INT_MIN);
  EXPECT_EQ(Decoded<int>("<d1,N[1]=4294967297>"), 1);
  EXPECT_EQ(Decoded<int>("<d1,N[1]=-4294967297>"), -1);
}

TEST(EncodeText, BooleansAndIntegersTellAWrongTypeFromCorruptData) {
  bool b = true;
  int n = 5;
  size_t at = 0;
  for (const char* const item :
       {"<s1,A[1]=\"x\">", "<f1,A[1]=1>", "<u1,A[1]=1>", "<{1,A[1]>", "<B1,A[1]=t>"}) {
    EXPECT_ENCODE_FAILS(ORVDecodeValue(item, &at, &b), kMismatch);
    EXPECT_ENCODE_FAILS(ORVDecodeValue(item, &at, &n), kMismatch);
  }
  EXPECT_ENCODE_FAILS(ORVDecodeValue("<d1,A[1]=1>", &at, &b), kMismatch);
  EXPECT_ENCODE_FAILS(ORVDecodeValue("<b1,A[1]=t>", &at, &n), kMismatch);
  for (const char* const item : {"x", "<b1,A[1", "<b1,A[0]=t>", "<b1,A[]=t>", "<b1,A[1]="}) {
    EXPECT_ENCODE_FAILS(ORVDecodeValue(item, &at, &b), kCorrupt);
  }
  for (const char* const item : {"x", "<d1,A[1", "<d1,A[0]=1>", "<d1,A[]=1>", "<d1,A[1]="}) {
    EXPECT_ENCODE_FAILS(ORVDecodeValue(item, &at, &n), kCorrupt);
  }
  EXPECT_TRUE(b);
  EXPECT_EQ(n, 5);
}

TEST(EncodeText, ACursorAtOrPastTheEndIsOutOfRange) {
  bool b = false;
  int n = 0;
  double x = 0.0;
  std::string s;
  const std::string data = "<b1,A[1]=t>";
  for (size_t at : {data.size(), data.size() + 1, static_cast<size_t>(SIZE_MAX)}) {
    EXPECT_ENCODE_FAILS(ORVDecodeValue(data, &at, &b), kOutOfRange);
    EXPECT_ENCODE_FAILS(ORVDecodeValue(data, &at, &n), kOutOfRange);
    EXPECT_ENCODE_FAILS(ORVDecodeValue(data, &at, &x, 0, 1), kOutOfRange);
    EXPECT_ENCODE_FAILS(ORVDecodeValue(data, &at, s), kOutOfRange);
  }
  size_t at = 0;
  EXPECT_ENCODE_FAILS(ORVDecodeValue("", &at, &b), kOutOfRange);
}

// ---- reading doubles -------------------------------------------------------------------------------------

TEST(EncodeText, AnyExponentWidthIsRead) {
  const std::vector<double> values = DecodedDoubles("<f1,X[4]=1.5e+003,1.5e3,1.5E+03,1.5e+0000003>", 0, 4);
  for (const double value : values) EXPECT_EQ(value, 1500.0);
}

TEST(EncodeText, PartsOfAnArrayAreReadByStartAndCount) {
  const std::string item = "<f1,X[3]=1.5,-2.5,3.5e2>";
  EXPECT_EQ(DecodedDoubles(item, 2, 1), std::vector<double>({350.0}));
  EXPECT_EQ(DecodedDoubles(item, 1, 2), std::vector<double>({-2.5, 350.0}));
  EXPECT_EQ(DecodedDoubles(item, 0, 3), std::vector<double>({1.5, -2.5, 350.0}));
  EXPECT_ENCODE_FAILS(DecodedDoubles(item, 3, 1), kCorrupt);
  EXPECT_ENCODE_FAILS(DecodedDoubles(item, 0, 4), kCorrupt);
}

TEST(EncodeText, NothingIsReadWhenStartAndCountAreZero) {
  size_t at = 0;
  EXPECT_NO_THROW(ORVDecodeValue("<f1,X[0]=", &at, nullptr, 0, 0));
  EXPECT_NO_THROW(ORVDecodeValue("<f1,X[1]=rubbish", &at, nullptr, 0, 0));
}

TEST(EncodeText, HostileRangesAreCorrupt) {
  double x = 7.0;
  size_t at = 0;
  // The sums of these overflow.
  EXPECT_ENCODE_FAILS(ORVDecodeValue("<f1,X[3]=1,2,3>", &at, &x, SIZE_MAX, 2), kCorrupt);
  EXPECT_ENCODE_FAILS(ORVDecodeValue("<f1,X[3]=1,2,3>", &at, &x, 2, SIZE_MAX), kCorrupt);
  EXPECT_ENCODE_FAILS(ORVDecodeValue("<f1,X[3]=1,2,3>", &at, &x, 4, 0), kCorrupt);
  EXPECT_NO_THROW(ORVDecodeValue("<f1,X[3]=1,2,3>", &at, &x, 3, 0));
  EXPECT_EQ(x, 7.0);
  // The item's count itself lies.
  EXPECT_EQ(DecodedDouble("<f1,X[4294967296]=5>"), 5.0);
  EXPECT_ENCODE_FAILS(DecodedDoubles("<f1,X[4294967296]=5>", 1, 1), kCorrupt);
  EXPECT_ENCODE_FAILS(DecodedDoubles("<f1,X[18446744073709551615]=5>", 4000000000u, 1), kCorrupt);
}

TEST(EncodeText, ElementsAreSeparatedByOneComma) {
  for (const char* const item : {"<f1,X[2]=1>", "<f1,X[2]=1;2>", "<f1,X[2]=1 ,2>", "<f1,X[2]=1",
                                 "<f1,X[2]=1,", "<f1,X[2]=0x10,2>", "<f1,X[2]=inf,2>"}) {
    EXPECT_ENCODE_FAILS(DecodedDoubles(item, 0, 2), kCorrupt);
  }
  EXPECT_EQ(DecodedDoubles("<f1,X[2]=,2>", 0, 2), std::vector<double>({0.0, 2.0})) << "an empty element is 0";
  EXPECT_EQ(DecodedDoubles("<f1,X[2]=1e,2>", 0, 2), std::vector<double>({1.0, 2.0}));
  EXPECT_EQ(DecodedDoubles("<f1,X[2]=1+2-3.e,2>", 0, 2), std::vector<double>({1.0, 2.0}))
      << "the cursor passes all characters of numbers";
}

TEST(EncodeText, ElementsAreConvertedAsTheRunTimeLibraryDoes) {
  EXPECT_EQ(DecodedDouble("<f1,X[1]=+2.5>"), 2.5);
  EXPECT_EQ(DecodedDouble("<f1,X[1]=-.5>"), -0.5);
  EXPECT_EQ(DecodedDouble("<f1,X[1]=x>"), 0.0);
  EXPECT_EQ(DecodedDouble("<f1,X[1]=1e999>"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(DecodedDouble("<f1,X[1]=1e-999>"), 0.0);
  EXPECT_EQ(DecodedDouble("<f1,X[1]=1.7976931348623157e308>"), std::numeric_limits<double>::max());
}

TEST(EncodeText, DoublesAndStringsCallAWrongTypeCorrupt) {
  // Deliberate: the other readers call it a mismatch.
  for (const char* const item : {"<d1,A[1]=1>", "<s1,A[1]=\"1\">", "<F1,A[1]=1>", "<{1,A[1]>", "x", "<f1,A[1",
                                 "<f1,A[0]=1>", "<f1,A[1]="}) {
    EXPECT_ENCODE_FAILS(DecodedDouble(item), kCorrupt);
  }
  for (const char* const item :
       {"<d1,A[1]=1>", "<f1,A[1]=1>", "<S1,A[1]=\"1\">", "<}1,A[1]>", "x", "<s1,A[1"}) {
    EXPECT_ENCODE_FAILS(DecodedText(item), kCorrupt);
  }
}

// ---- reading strings -------------------------------------------------------------------------------------

TEST(EncodeText, StringsAreAppendedToTheValue) {
  std::string value = "before ";
  size_t at = 0;
  ORVDecodeValue("<s1,S[5]=\"after\">", &at, value);
  EXPECT_EQ(value, "before after");
}

TEST(EncodeText, EscapesAreTwoUpperCaseHexadecimalDigits) {
  EXPECT_EQ(DecodedText("<s1,S[1]=\"\\x22\\x3C\\x3E\\x09\\x7F\\x4A\">"), "\"<>\t\x7FJ");
  EXPECT_EQ(DecodedText("<s1,S[1]=\"\\xFF\">"), "\xFF");
  EXPECT_EQ(DecodedText("<s1,S[1]=\"\\x00z\">"), std::string("\0z", 2));
}

TEST(EncodeText, LowerCaseHexadecimalDigitsDecodeToAWrongCharacter) {
  // Deliberate: "c" counts 99 - 55 = 44, so \x3c is 3 * 16 + 44 = 92, a backslash.
  EXPECT_EQ(DecodedText("<s1,S[1]=\"\\x3c\">"), "\\");
  // "G" is 16, so \xG1 is 257, kept to 8 bits; "!" is 33 - 55 = -22, so \x1! is -6.
  EXPECT_EQ(DecodedText("<s1,S[1]=\"\\xG1\\x1!\">"), "\x01\xFA");
}

TEST(EncodeText, OnlyACountOfZeroMatters) {
  EXPECT_EQ(DecodedText("<s1,S[0]=\"whatever\">"), "");
  EXPECT_EQ(DecodedText("<s1,S[0]=\""), "");
  EXPECT_EQ(DecodedText("<s1,S[1]=\"longer\">"), "longer");
  EXPECT_EQ(DecodedText("<s1,S[18446744073709551615]=\"x\">"), "x");
}

TEST(EncodeText, UnreadableStringsAreCorrupt) {
  for (const char* const item : {"<s1,S[3]=abc>", "<s1,S[0]=abc>", "<s1,S[3]=\"abc", "<s1,S[3]=", "<s1,S[0]=",
                                 "<s1,S[3]=\"a\\n\"", "<s1,S[3]=\"a\\", "<s1,S[3]=\"a\\x", "<s1,S[3]=\"a\\x2",
                                 "<s1,S[3]=\"a\\x22", "<s1,S[3]=\"\\X22\">"}) {
    EXPECT_ENCODE_FAILS(DecodedText(item), kCorrupt);
  }
}

// ---- all of it -------------------------------------------------------------------------------------------

TEST(EncodeText, ItemsCutAnywhereReadWholeOrFail) {
  const double doubles[] = {1.25, -2.5e-7};
  const int n = -12;
  const bool b = true;
  const std::string items[] = {Encoded("Two", 'f', doubles, 2), Encoded("Name", 'd', &n, 1),
                               Encoded("Flag", 'b', &b, 1), Encoded("a\"b\x7F")};
  for (const std::string& item : items) {
    for (size_t length = 0; length < item.size(); ++length) {
      const std::string cut = item.substr(0, length);
      try {
        switch (item[1]) {
          case 'f':
            DecodedDoubles(cut, 0, 2);
            break;
          case 'd':
            Decoded<int>(cut);
            break;
          case 'b':
            EXPECT_TRUE(Decoded<bool>(cut));
            break;
          default:
            EXPECT_EQ(DecodedText(cut), "a\"b\x7F");
        }
        EXPECT_GT(length, item.find('=')) << "a value was read out of " << cut;
      } catch (const shr::Exception& e) {
        EXPECT_EQ(e.Code(), 1026);
        EXPECT_STREQ(e.File(), "EncodeText");
      }
    }
  }
}

TEST(EncodeText, DoublesComeBackBitForBit) {
  EXPECT_TRUE(orv::test::Holds([] {
    std::vector<double> values = {0.1};
    for (int count = orv::test::IntIn(0, 40); count > 0; --count) values.push_back(orv::test::AnyNumber());
    const std::string item = Encoded("Values", 'f', values.data(), values.size());
    const std::vector<double> read = DecodedDoubles(item, 0, values.size());
    for (size_t i = 0; i < values.size(); ++i) {
      const double expected = values[i] == 0.0 ? 0.0 : values[i];  // the sign of a zero is lost
      ORV_HOLDS(std::memcmp(&read[i], &expected, sizeof expected) == 0);
    }
    ORV_HOLDS(Encoded("Values", 'f', read.data(), read.size()) == item);
  }));
}

TEST(EncodeText, StringsWithoutBackslashComeBack) {
  EXPECT_TRUE(orv::test::Holds([] {
    const std::string text = orv::test::AnyText();
    const std::string item = Encoded(text);
    ORV_HOLDS(DecodedText(item) == text);
    // Nothing inside looks like the beginning or the end of an item.
    ORV_HOLDS(item.find('<', 1) == std::string::npos);
    ORV_HOLDS(item.find('>') == item.size() - 3);
    ORV_HOLDS(HeadOf(item).count == text.size());
  }));
}

TEST(EncodeText, IntegersAndBooleansComeBack) {
  EXPECT_TRUE(orv::test::Holds([] {
    const int n = orv::test::AnyInt();
    const bool b = orv::test::AnyBool();
    ORV_HOLDS(Decoded<int>(Encoded("N", 'd', &n, 1)) == n);
    ORV_HOLDS(Decoded<bool>(Encoded("B", 'b', &b, 1)) == b);
  }));
}

TEST(EncodeText, RandomBytesAreReadOrRefusedButNeverMore) {
  EXPECT_TRUE(orv::test::Holds(
      [] {
        const std::string junk = orv::test::TextOf({'<', '>', 'b', 'd', 'f', 's',  '{', '}', '0',  '1',   '9',
                                                    ',', '[', ']', '=', '"', '\\', 'x', 't', '\0', '\xFF'});
        const std::string data = (orv::test::AnyBool() ? "<f1,A[2]=" : "<s1,A[2]=\"") + junk;
        try {
          if (data[1] == 'f') {
            DecodedDoubles(data, 0, 2);
          } else {
            ORV_HOLDS(DecodedText(data).size() < data.size());
          }
        } catch (const shr::Exception& e) {
          ORV_HOLDS(e.Code() == 1026);
        }
      },
      2000));
}

TEST(EncodeText, ADecimalCommaOfTheHostChangesNothing) {
  const double values[] = {1.5, -1e-300, 123456.789};
  const std::string before = Encoded("X", 'f', values, 3);
  ASSERT_NE(before.find("1.5"), std::string::npos);
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(Encoded("X", 'f', values, 3), before);
  EXPECT_EQ(DecodedDoubles(before, 0, 3), std::vector<double>(values, values + 3));
  EXPECT_EQ(DecodedDouble("<f1,X[1]=1.75e+000>"), 1.75);
  const int n = 1234567;
  EXPECT_EQ(Encoded("N", 'd', &n, 1), "<d1,N[1]=1234567>\r\n");
}
