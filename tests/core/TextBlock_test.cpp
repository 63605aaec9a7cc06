#include "orv/core/internal/TextBlock.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"

ORV_UNIT("TextBlockTest")

namespace {

using namespace orv::internal;

enum Size : int { SizeNone, SizeSmall, SizeLarge };
constexpr NameRow<Size> kSizes[] = {{SizeSmall, "Small"}, {SizeLarge, "Large", "Big"}};

// Each complaint has a text of its own, so that a test sees which one was raised.
constexpr BlockSyntax kInner = {"Inner",           "inner header",   "inner begin",       "inner wrong block",
                                "inner wrong end", "inner no items", "inner after block", "inner bad item"};
constexpr BlockSyntax kOuter = {"Outer",           "outer header",   "outer begin",       "outer wrong block",
                                "outer wrong end", "outer no items", "outer after block", "outer bad item"};

class Inner {
 public:
  std::string text;
  double numbers[2] = {0.0, 0.0};
  Size size = SizeNone;

  void EncodeToText(std::string& out) const { WriteBlock(*this, kInner, out); }
  void DecodeBlock(const std::string& data, size_t* at) { ReadBlock(*this, kInner, ORV_SITE, data, at); }

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d) {
    w.Text("Text", d.text, !d.text.empty());
    w.Doubles("Numbers", d.numbers, 2);
    w.Named("Size", d.size, kSizes);
  }
};

class Outer {
 public:
  std::string text;
  int number = 0;
  double value = 0.0;
  bool flag = false;
  std::vector<shr::Vec2d> points;
  Inner inner;
  int last = 0;
  int begun = 0;

  void EncodeToText(std::string& out) const { WriteBlock(*this, kOuter, out); }
  void DecodeBlock(const std::string& data, size_t* at) {
    ReadBlock(*this, kOuter, ORV_SITE, data, at, [this] { ++begun; });
  }

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d) {
    w.Text("Text", d.text, !d.text.empty());
    w.Int("Number", d.number);
    w.Double("Value", d.value, d.value != 0.0);
    w.Bool("Flag", d.flag);
    w.Points("Points", d.points, !d.points.empty());
    w.Block("Inner", d.inner);
    w.Int("Last", d.last);
  }
};

// The same block, with an inner part that need not be there.
class Optional {
 public:
  std::unique_ptr<Inner> part;
  int last = 0;

  void EncodeToText(std::string& out) const { WriteBlock(*this, kOuter, out); }
  void DecodeBlock(const std::string& data, size_t* at) { ReadBlock(*this, kOuter, ORV_SITE, data, at); }

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d) {
    w.Part("Inner", d.part);
    w.Int("Last", d.last);
  }
};

template <class T>
std::string Encoded(const T& definition) {
  std::string out;
  definition.EncodeToText(out);
  return out;
}

template <class T>
size_t Decode(T& definition, const std::string& text, size_t at = 0) {
  definition.DecodeBlock(text, &at);
  return at;
}

Outer Decoded(const std::string& text) {
  Outer outer;
  Decode(outer, text);
  return outer;
}

Outer FullOuter() {
  Outer outer;
  outer.text = "a<b>\"c\"";
  outer.number = -5;
  outer.value = 0.25;
  outer.flag = true;
  outer.points = {{1.5, -2.5}, {0.0, 1e100}};
  outer.inner.text = "inner";
  outer.inner.numbers[1] = 7.0;
  outer.inner.size = SizeLarge;
  outer.last = 9;
  return outer;
}

std::string Item(const std::string& item) { return item + "\r\n"; }
std::string Block(const std::string& items) { return "<{5,Outer[1]>\r\n" + items + "<}5,Outer[1]>\r\n"; }

#define EXPECT_BLOCK_FAILS(text, message) EXPECT_RAISES(Decoded(text), 1026, "TextBlockTest", message)

}  // namespace

TEST(TextBlock, FieldsAreWrittenInOrderUnderTheirConditions) {
  EXPECT_EQ(
      orv::test::TwoDigitExponents(Encoded(FullOuter())),
      "<{5,Outer[1]>\r\n"
      "<s4,Text[7]=\"a\\x3Cb\\x3E\\x22c\\x22\">\r\n"
      "<d6,Number[1]=-5>\r\n"
      "<f5,Value[1]=2.500000000000000000e-01>\r\n"
      "<b4,Flag[1]=t>\r\n"
      "<f6,Points[4]=1.500000000000000000e+00,-2.500000000000000000e+00,0,1.000000000000000016e+100>\r\n"
      "<{5,Inner[1]>\r\n"
      "<s4,Text[5]=\"inner\">\r\n"
      "<f7,Numbers[2]=0,7.000000000000000000e+00>\r\n"
      "<s4,Size[5]=\"Large\">\r\n"
      "<}5,Inner[1]>\r\n"
      "<d4,Last[1]=9>\r\n"
      "<}5,Outer[1]>\r\n");
  EXPECT_EQ(Encoded(Outer()),
            "<{5,Outer[1]>\r\n<d6,Number[1]=0>\r\n<b4,Flag[1]=f>\r\n<{5,Inner[1]>\r\n<f7,Numbers[2]=0,0>\r\n"
            "<s4,Size[0]=\"\">\r\n<}5,Inner[1]>\r\n<d4,Last[1]=0>\r\n<}5,Outer[1]>\r\n");
}

TEST(TextBlock, AWholeBlockIsReadAndTheCursorStandsOnItsEnd) {
  const std::string text = "before" + Encoded(FullOuter()) + "behind";
  Outer outer;
  const size_t at = Decode(outer, text, 6);
  EXPECT_EQ(text.substr(at), "<}5,Outer[1]>\r\nbehind");
  EXPECT_EQ(outer.begun, 1);
  EXPECT_EQ(Encoded(outer), Encoded(FullOuter())) << "the item behind the nested block too";
}

TEST(TextBlock, NamesOfBlocksAndItemsIgnoreCase) {
  const Outer outer = Decoded(
      "<{5,OUTER[1]>\r\n<d6,nUMBER[1]=3>\r\n<{5,inner[1]>\r\n<s4,SIZE[3]=\"bIG\">\r\n"
      "<}5,INNER[1]>\r\n<}5,outer[1]>\r\n");
  EXPECT_EQ(outer.number, 3);
  EXPECT_EQ(outer.inner.size, SizeLarge);
}

TEST(TextBlock, AbsentItemsKeepTheirValues) {
  Outer outer = FullOuter();
  Decode(outer, Block(""));
  EXPECT_EQ(Encoded(outer), Encoded(FullOuter()));
}

TEST(TextBlock, UnknownItemsAreSkipped) {
  const Outer outer =
      Decoded(Block(Item("<s7,Unknown[3]=\"abc\">") + Item("<d6,Number[1]=3>") + Item("<v3,Raw[2]=00FF>") +
                    Item("<q1,?[1]=whatever>") + Item("<d0,[1]=8>") + Item("<d4,Last[1]=4>")));
  EXPECT_EQ(outer.number, 3);
  EXPECT_EQ(outer.last, 4);
}

TEST(TextBlock, WhatStandsBetweenItemsIsSkipped) {
  const Outer outer = Decoded(Block(" any \t text \xFF" + Item("<d6,Number[1]=3>junk>>\n")));
  EXPECT_EQ(outer.number, 3);
}

TEST(TextBlock, TheItemsOfAnUnknownBlockCountAsOnesOwnAndItsEndIsWrong) {
  // Deliberate: items are skipped one at a time, blocks never.
  Outer outer;
  const std::string text = Block(Item("<{7,Unknown[1]>") + Item("<d6,Number[1]=3>") +
                                 Item("<}7,Unknown[1]>") + Item("<d4,Last[1]=4>"));
  EXPECT_RAISES(Decode(outer, text), 1026, "TextBlockTest", "outer wrong end");
  EXPECT_EQ(outer.number, 3);
  EXPECT_EQ(outer.last, 0);
  // Without its end the rest is read as if nothing were there.
  EXPECT_EQ(Decoded(Block(Item("<{7,Unknown[1]>") + Item("<d4,Last[1]=4>"))).last, 4);
}

TEST(TextBlock, RepeatedItemsReplaceButPointsAreAppended) {
  const Outer outer = Decoded(Block(Item("<s4,Text[1]=\"a\">") + Item("<s4,Text[2]=\"bc\">") +
                                    Item("<f6,Points[2]=1,2>") + Item("<f6,Points[4]=3,4,5,6>")));
  EXPECT_EQ(outer.text, "bc");
  ASSERT_EQ(outer.points.size(), 3u);
  EXPECT_EQ(outer.points[2].y, 6.0);
}

TEST(TextBlock, HalfAPointIsDropped) {
  const Outer outer = Decoded(Block(Item("<f6,Points[3]=1,2,3>")));
  ASSERT_EQ(outer.points.size(), 1u);
  EXPECT_EQ(outer.points[0].x, 1.0);
  EXPECT_TRUE(Decoded(Block(Item("<f6,Points[1]=1>"))).points.empty());
}

TEST(TextBlock, UnknownNamesOfAVocabularyAreItsZero) {
  const std::string text = Block("<{5,Inner[1]>\r\n<s4,Size[4]=\"Huge\">\r\n<}5,Inner[1]>\r\n");
  Outer outer = FullOuter();
  Decode(outer, text);
  EXPECT_EQ(outer.inner.size, SizeNone);
}

TEST(TextBlock, APartIsMadeWhenItsBlockIsMet) {
  Optional definition;
  Decode(definition, Block(Item("<d4,Last[1]=4>")));
  EXPECT_EQ(definition.part, nullptr);
  EXPECT_EQ(Encoded(definition), Block(Item("<d4,Last[1]=4>")));
  Decode(definition,
         Block("<{5,Inner[1]>\r\n<s4,Text[1]=\"x\">\r\n<}5,Inner[1]>\r\n" + Item("<d4,Last[1]=5>")));
  ASSERT_NE(definition.part, nullptr);
  EXPECT_EQ(definition.part->text, "x");
  EXPECT_EQ(definition.last, 5);
  // A part that is there keeps what the block does not tell.
  Decode(definition, Block("<{5,Inner[1]>\r\n<}5,Inner[1]>\r\n"));
  EXPECT_EQ(definition.part->text, "x");
}

// ---- complaints ------------------------------------------------------------------------------------------

TEST(TextBlock, EachPlaceHasItsOwnComplaint) {
  EXPECT_BLOCK_FAILS("", "outer header");
  EXPECT_BLOCK_FAILS("x", "outer header");
  EXPECT_BLOCK_FAILS(" " + Block(""), "outer header");
  EXPECT_BLOCK_FAILS("<{5,Outer[1", "outer header");
  EXPECT_BLOCK_FAILS("<d5,Outer[1]=1>\r\n", "outer begin");
  EXPECT_BLOCK_FAILS("<}5,Outer[1]>\r\n", "outer begin");
  EXPECT_BLOCK_FAILS("<{5,Inner[1]>\r\n<}5,Inner[1]>\r\n", "outer wrong block");
  EXPECT_BLOCK_FAILS("<{4,Oute[1]>\r\n<}4,Oute[1]>\r\n", "outer wrong block");
  EXPECT_BLOCK_FAILS("<{5,Outer[1]>\r\n<}5,Inner[1]>\r\n", "outer wrong end");
  EXPECT_BLOCK_FAILS("<{5,Outer[1]>\r\n<}0,[1]>\r\n", "outer wrong end");
  EXPECT_BLOCK_FAILS("<{5,Outer[1]>\r\n", "outer no items");
  EXPECT_BLOCK_FAILS("<{5,Outer[1]>\r\n<d6,Number[1]=3>\r\n", "outer no items");
  EXPECT_BLOCK_FAILS("<{5,Outer[1]>\r\n<{5,Inner[1]>\r\n<}5,Inner[1]>\r\n", "outer after block");
  EXPECT_BLOCK_FAILS("<{5,Outer[1]>\r\n<d6,Number[1]3>\r\n<}5,Outer[1]>\r\n", "outer bad item");
  EXPECT_BLOCK_FAILS("<{5,Outer[1]>\r\n<<}5,Outer[1]>\r\n", "outer bad item");
}

TEST(TextBlock, ANestedBlockComplainsForItself) {
  const std::string begin = "<{5,Outer[1]>\r\n";
  EXPECT_BLOCK_FAILS(begin + "<{5,Inner[1]>\r\n", "inner no items");
  EXPECT_BLOCK_FAILS(begin + "<{5,Inner[1]>\r\n<}5,Outer[1]>\r\n", "inner wrong end");
  EXPECT_BLOCK_FAILS(begin + "<{5,Inner[1]>\r\n<s4,Text[1", "inner bad item");
  EXPECT_BLOCK_FAILS(begin + "<s5,Inner[1]=\"x\">\r\n<}5,Outer[1]>\r\n", "inner begin");
  EXPECT_BLOCK_FAILS(begin + "<}5,Inner[1]>\r\n", "outer wrong end");
}

TEST(TextBlock, ValueFaultsAreTheValueReadersOwn) {
  constexpr const char* kCorrupt = "Corrupt data while parsing encoded data.";
  EXPECT_RAISES(Decoded(Block(Item("<s6,Number[1]=\"3\">"))), 1026, "EncodeText",
                "Mismatched data type while parsing encoded data.");
  EXPECT_RAISES(Decoded(Block(Item("<d4,Text[1]=3>"))), 1026, "EncodeText", kCorrupt);
  EXPECT_RAISES(Decoded(Block(Item("<f5,Value[0]=3>"))), 1026, "EncodeText", kCorrupt);
  EXPECT_RAISES(Decoded(Block(Item("<d6,Points[2]=1,2>"))), 1026, "EncodeText", kCorrupt);
  EXPECT_RAISES(Decoded(Block(Item("<f6,Points[4]=1,2,3>"))), 1026, "EncodeText", kCorrupt);
  EXPECT_RAISES(Decoded(Block("<{5,Inner[1]>\r\n" + Item("<f7,Numbers[1]=1>") + "<}5,Inner[1]>\r\n")), 1026,
                "EncodeText", kCorrupt);
}

TEST(TextBlock, FieldsReadBeforeAFailureStay) {
  Outer outer;
  EXPECT_RAISES(Decode(outer, "<{5,Outer[1]>\r\n<d6,Number[1]=3>\r\n<b4,Flag[1]=t>\r\n"), 1026,
                "TextBlockTest", "outer no items");
  EXPECT_EQ(outer.number, 3);
  EXPECT_TRUE(outer.flag);
}

TEST(TextBlock, NothingIsBegunBeforeTheHeadIsAccepted) {
  Outer outer;
  EXPECT_RAISES(Decode(outer, "<{5,Inner[1]>\r\n"), 1026, "TextBlockTest", "outer wrong block");
  EXPECT_RAISES(Decode(outer, "<d5,Outer[1]=1>\r\n"), 1026, "TextBlockTest", "outer begin");
  EXPECT_EQ(outer.begun, 0);
  EXPECT_RAISES(Decode(outer, "<{5,Outer[1]>\r\n"), 1026, "TextBlockTest", "outer no items");
  EXPECT_EQ(outer.begun, 1);
}

// ---- hostile text ----------------------------------------------------------------------------------------

TEST(TextBlock, ABlockCutAnywhereIsRefused) {
  const std::string whole = Encoded(FullOuter());
  const size_t complete = whole.size() - 3;  // only ">", carriage return and line feed may be missing
  for (size_t length = 0; length < whole.size(); ++length) {
    Outer outer;
    const std::string cut = whole.substr(0, length);
    if (length >= complete) {
      EXPECT_NO_THROW(Decode(outer, cut));
      continue;
    }
    try {
      Decode(outer, cut);
      ADD_FAILURE() << length << " of " << whole.size() << " bytes were accepted";
    } catch (const shr::Exception& e) {
      EXPECT_EQ(e.Code(), 1026) << length;
    }
  }
}

TEST(TextBlock, CountsThatTheTextCannotHoldAllocateNothing) {
  for (const char* const count :
       {"4000000000", "4294967296", "18446744073709551615", "18446744073709551614"}) {
    EXPECT_BLOCK_FAILS(Block(Item("<f6,Points[" + std::string(count) + "]=1,2>")), "outer bad item");
    EXPECT_RAISES(Decoded(Block(Item("<d6,Points[" + std::string(count) + "]=1,2>"))), 1026, "TextBlockTest",
                  "outer bad item");
    EXPECT_EQ(Decoded(Block(Item("<d6,Number[" + std::string(count) + "]=3>"))).number, 3)
        << "the first element";
    EXPECT_EQ(Decoded(Block(Item("<s4,Text[" + std::string(count) + "]=\"x\">"))).text, "x");
  }
}

TEST(TextBlock, DeepNestingIsALoop) {
  std::string text = "<{5,Outer[1]>\r\n";
  for (int i = 0; i < 200000; ++i) text += "<{5,Outer[1]>";
  EXPECT_BLOCK_FAILS(text, "outer no items");
  std::string nested = "<{5,Outer[1]>\r\n";
  for (int i = 0; i < 200000; ++i) nested += "<{5,Inner[1]>";
  EXPECT_BLOCK_FAILS(nested, "inner no items");
}

TEST(TextBlock, ChangedBytesAreReadOrRefusedButNeverMore) {
  const std::string whole = Encoded(FullOuter());
  EXPECT_TRUE(orv::test::Holds(
      [&whole] {
        std::string text = whole;
        for (int changes = orv::test::IntIn(1, 5); changes > 0; --changes) {
          const size_t at = orv::test::SizeIn(0, text.size());
          switch (orv::test::IntIn(0, 3)) {
            case 0:
              text[at] = static_cast<char>(orv::test::IntIn(0, 256));
              break;
            case 1:
              text.erase(at, orv::test::SizeIn(1, 20));
              break;
            default:
              text.insert(at, text.substr(orv::test::SizeIn(0, text.size()), 20));
          }
          if (text.empty()) return;
        }
        Outer outer;
        try {
          Decode(outer, text);
        } catch (const shr::Exception& e) {
          ORV_HOLDS(e.Code() == 1026);
          return;
        }
        // What was accepted is stable from then on.
        Outer again;
        if (outer.text.find('\\') != std::string::npos || outer.inner.text.find('\\') != std::string::npos)
          return;
        Decode(again, Encoded(outer));
        ORV_HOLDS(Encoded(again) == Encoded(outer));
      },
      3000));
}

// ---- cursors ---------------------------------------------------------------------------------------------

TEST(TextBlock, BehindABlocksEndIsBehindItsLine) {
  EXPECT_EQ(BehindBlockEnd("<}1,B[1]>\r\nnext", 0), 11u);
  EXPECT_EQ(BehindBlockEnd("<}1,B[1]>\nnext", 0), 10u);
  EXPECT_EQ(BehindBlockEnd("<}1,B[1]>\rnext", 0), 10u);
  EXPECT_EQ(BehindBlockEnd("<}1,B[1]>next", 0), 9u);
  EXPECT_EQ(BehindBlockEnd("<}1,B[1]>\r\n\r\nnext", 0), 11u) << "one line end only";
  EXPECT_EQ(BehindBlockEnd("<}1,B[1]>", 0), 9u);
  EXPECT_EQ(BehindBlockEnd("<}1,B[1]", 0), 8u) << "the text ends first";
  EXPECT_EQ(BehindBlockEnd("x>\r\n<}1,B[1]>\r\n", 4), 15u);
}

TEST(TextBlock, ADecimalCommaOfTheHostChangesNothing) {
  const std::string before = Encoded(FullOuter());
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(Encoded(FullOuter()), before);
  EXPECT_EQ(Encoded(Decoded(before)), before);
}
