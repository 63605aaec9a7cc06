#include "tests/support/Generators.h"

#include <gtest/gtest.h>

namespace orv::test {
namespace {

TEST(Generators, APropertyThatDoesNotHoldIsFoundAndShrunk) {
  const ::testing::AssertionResult result = Holds([] { ORV_HOLDS(IntIn(0, 1000) < 700); });
  EXPECT_FALSE(result);
  EXPECT_NE(std::string(result.message()).find("IntIn(0, 1000) < 700"), std::string::npos)
      << result.message();
  EXPECT_TRUE(Holds([] { ORV_HOLDS(IntIn(0, 1000) < 1000); }));
}

TEST(Generators, TheSameCasesComeEachTime) {
  const auto draw = [] {
    std::vector<double> numbers;
    EXPECT_TRUE(Holds([&] { numbers.push_back(NumberIn(-1.0, 1.0)); }));
    return numbers;
  };
  EXPECT_EQ(draw(), draw());
}

}  // namespace
}  // namespace orv::test
