#include "orv/core/internal/NameTable.h"

#include <gtest/gtest.h>

namespace {

using namespace orv::internal;

enum Fruit : int {
  FruitNone = 0,
  FruitApple = 1,
  FruitPear = 2,
  FruitQuince = 7,
  FruitNameless = 8,
  FruitMissing = 99
};

constexpr NameRow<Fruit> kFruits[] = {
    {FruitPear, "Pear", "Birne"},  {FruitApple, "Apple"},         {FruitPear, "Poire"},
    {FruitQuince, "Apple Quince"}, {FruitNameless, nullptr, "x"}, {FruitQuince, "apple"},
};

// A table with more columns than a vocabulary.
struct Wide {
  Fruit number;
  const char* name;
  const char* other;
  double price;
};
constexpr Wide kWide[] = {{FruitApple, "A", "Apfel", 1.5}, {FruitPear, "P", nullptr, 2.5}};

}  // namespace

TEST(NameTable, TheFirstRowOfANumberIsItsCanonicalOne) {
  EXPECT_STREQ(NameOf(kFruits, FruitPear), "Pear");
  EXPECT_STREQ(NameOf(kFruits, FruitApple), "Apple");
  EXPECT_STREQ(NameOf(kFruits, FruitQuince), "Apple Quince");
  EXPECT_EQ(RowOf(kFruits, FruitPear), &kFruits[0]);
}

TEST(NameTable, ANumberWithoutRowHasNoName) {
  EXPECT_EQ(NameOf(kFruits, FruitNone), nullptr);
  EXPECT_EQ(NameOf(kFruits, FruitMissing), nullptr);
  EXPECT_EQ(RowOf(kFruits, FruitMissing), nullptr);
}

TEST(NameTable, EverySpellingIsFoundWithoutRegardToCase) {
  EXPECT_EQ(IdOf(kFruits, "Pear"), FruitPear);
  EXPECT_EQ(IdOf(kFruits, "PEAR"), FruitPear);
  EXPECT_EQ(IdOf(kFruits, "birne"), FruitPear);
  EXPECT_EQ(IdOf(kFruits, "poire"), FruitPear);
  EXPECT_EQ(IdOf(kFruits, "apple quince"), FruitQuince);
  EXPECT_EQ(IdOf(kFruits, "X"), FruitNameless);
}

TEST(NameTable, TheFirstRowWithASpellingWins) {
  EXPECT_EQ(IdOf(kFruits, "apple"), FruitApple);
  EXPECT_EQ(RowNamed(kFruits, "APPLE"), &kFruits[1]);
}

TEST(NameTable, UnknownNullAndEmptyTextsGiveTheEnumerationsZero) {
  for (const char* const text : {static_cast<const char*>(nullptr), "", "Plum", "Pea", "Pears", " Pear"}) {
    EXPECT_EQ(IdOf(kFruits, text), FruitNone) << (text ? text : "(null)");
    EXPECT_EQ(RowNamed(kFruits, text), nullptr);
  }
}

TEST(NameTable, RowsMayHaveFurtherColumns) {
  EXPECT_EQ(RowNamed(kWide, "apfel")->price, 1.5);
  EXPECT_EQ(RowOf(kWide, FruitPear)->price, 2.5);
  EXPECT_STREQ(NameOf(kWide, FruitPear), "P");
}
