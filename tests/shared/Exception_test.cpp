#include "orv/shared/Exception.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

TEST(Exception, CarriesWhatItWasBuiltFrom) {
  const shr::Exception e("Module.dll", "Unit", 42, 1032, "The message.");
  EXPECT_STREQ(e.Module(), "Module.dll");
  EXPECT_STREQ(e.File(), "Unit");
  EXPECT_EQ(e.Line(), 42);
  EXPECT_EQ(e.Code(), 1032);
  EXPECT_STREQ(e.Message(), "The message.");
  EXPECT_STREQ(e.what(), "The message.");
}

TEST(Exception, NullTextsAreEmptyTexts) {
  const shr::Exception e(nullptr, nullptr, -1, 0, nullptr);
  EXPECT_STREQ(e.Module(), "");
  EXPECT_STREQ(e.File(), "");
  EXPECT_STREQ(e.Message(), "");
  EXPECT_STREQ(e.what(), "");
}

TEST(Exception, CopiesItsTexts) {
  std::string text = "before";
  auto original = std::make_unique<shr::Exception>("M", "U", 1, 2, text.c_str());
  text = "after!";
  const shr::Exception copy(*original);
  shr::Exception assigned("x", "y", 9, 9, "z");
  assigned = *original;
  original.reset();
  for (const shr::Exception* const e : {&copy, static_cast<const shr::Exception*>(&assigned)}) {
    EXPECT_STREQ(e->Message(), "before");
    EXPECT_STREQ(e->Module(), "M");
    EXPECT_STREQ(e->File(), "U");
    EXPECT_EQ(e->Line(), 1);
    EXPECT_EQ(e->Code(), 2);
  }
}

TEST(Exception, IsCaughtAsAStandardException) {
  static_assert(std::is_base_of_v<std::exception, shr::Exception>);
  try {
    throw shr::Exception("M", "U", 1, 2, "message");
  } catch (const std::exception& e) {
    EXPECT_STREQ(e.what(), "message");
  }
}
