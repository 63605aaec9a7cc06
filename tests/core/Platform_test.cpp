#include "orv/core/Platform.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <chrono>
#include <cstdarg>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/CommaLocale.h"
#include "tests/support/TempFolder.h"

namespace {

namespace platform = orv::platform;
namespace fs = std::filesystem;
using orv::test::TempFolder;
using platform::FpEnvironment;

std::string Formatted(size_t room, int* length, const char* format, ...) {
  std::vector<char> out(room + 1, '?');
  std::va_list args;
  va_start(args, format);
  *length = platform::FormatInCLocale(out.data(), room, format, args);
  va_end(args);
  return out.data();
}

// Operands that no compiler computes with beforehand.
volatile double g_One = 1.0;
volatile double g_Zero = 0.0;
volatile double g_Huge = std::numeric_limits<double>::max();
volatile double g_Least = std::numeric_limits<double>::min();
volatile double g_Denormal = std::numeric_limits<double>::denorm_min();
volatile double g_Result = 0.0;

void DivideByZero() { g_Result = g_One / g_Zero; }
void Overflow() { g_Result = g_Huge * g_Huge; }
void Underflow() { g_Result = g_Least * g_Least; }
void UseDenormal() { g_Result = g_One + g_Denormal; }
void Invalid() { g_Result = g_Zero / g_Zero; }

// What an operation raises while exceptions are held.
unsigned RaisedBy(void (*operation)()) {
  FpEnvironment saved;
  platform::HoldFpExceptions(saved);
  operation();
  const unsigned raised = platform::RaisedFpExceptions();
  platform::RestoreFpEnvironment(saved);
  return raised;
}

// Whatever a test does to the floating-point environment ends with it.
class FpTraps : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(std::fegetenv(&m_Before), 0);
    std::fesetenv(FE_DFL_ENV);
  }
  void TearDown() override { std::fesetenv(&m_Before); }

 private:
  std::fenv_t m_Before;
};

}  // namespace

// ---- files -----------------------------------------------------------------------------------------------

TEST(Platform, OnlyFilesOpenForReading) {
  const TempFolder folder;
  const std::string file = folder.Write("a file", "x");
  std::FILE* const opened = platform::OpenFile(file.c_str(), "rb");
  ASSERT_NE(opened, nullptr);
  std::fclose(opened);
  EXPECT_EQ(platform::OpenFile(folder.Path().c_str(), "rb"), nullptr) << "a folder";
  EXPECT_EQ(platform::OpenFile((folder.Path() + "/").c_str(), "rb"), nullptr);
  EXPECT_EQ(platform::OpenFile(folder.Path("missing").c_str(), "rb"), nullptr);
  EXPECT_EQ(platform::OpenFile(folder.Path().c_str(), "wb"), nullptr);
  EXPECT_EQ(platform::OpenFile("", "rb"), nullptr);
  EXPECT_EQ(platform::OpenFile(nullptr, "rb"), nullptr);
}

TEST(Platform, FilesAreWrittenByteForByte) {
  const TempFolder folder;
  std::FILE* const file = platform::OpenFile(folder.Path("x").c_str(), "wb");
  ASSERT_NE(file, nullptr);
  std::fputs("a\nb\r\n", file);
  std::fclose(file);
  EXPECT_EQ(folder.Read("x"), "a\nb\r\n");
}

TEST(Platform, FilesAreListedByNameWithoutRegardToCase) {
  const TempFolder folder;
  for (const char* const name : {"b.las", "A.LAS", "a.los", "C", "_", "9", "Zulu", "\xC3\xA4", "b.LAS"}) {
    folder.Write(name, "");
  }
  folder.Write("folder/inside", "");
  // "b.LAS" and "b.las" differ in case only: then the bytes decide.
  const std::vector<std::string> expected = {"9",     "_", "A.LAS", "a.los",   "b.LAS",
                                             "b.las", "C", "Zulu",  "\xC3\xA4"};
  EXPECT_EQ(platform::ListFiles(folder.Path()), expected);
}

TEST(Platform, AFolderThatCannotBeReadHasNoFiles) {
  const TempFolder folder;
  EXPECT_TRUE(platform::ListFiles(folder.Path("missing")).empty());
  EXPECT_TRUE(platform::ListFiles(folder.Write("file", "")).empty());
  EXPECT_TRUE(platform::ListFiles(folder.Path()).size() == 1);
}

TEST(Platform, ModuleAndExecutableAreAbsoluteAndStayWhenTheFolderChanges) {
  const std::string module = platform::ModulePath();
  const std::string executable = platform::ExecutablePath();
  EXPECT_TRUE(fs::path(module).is_absolute()) << module;
  EXPECT_TRUE(fs::path(executable).is_absolute()) << executable;
  EXPECT_TRUE(fs::is_regular_file(module));
  EXPECT_TRUE(fs::equivalent(executable, "/proc/self/exe"));
  EXPECT_EQ(module, executable) << "this program holds the library itself";
  const fs::path before = fs::current_path();
  fs::current_path("/");
  EXPECT_EQ(platform::ModulePath(), module);
  EXPECT_EQ(platform::ExecutablePath(), executable);
  fs::current_path(before);
}

TEST(Platform, TheTickCountsMilliseconds) {
  const auto begin = std::chrono::steady_clock::now();
  const uint32_t first = platform::TickMilliseconds();
  uint32_t last = first;
  while (std::chrono::steady_clock::now() - begin < std::chrono::milliseconds(30)) {
    const uint32_t now = platform::TickMilliseconds();
    ASSERT_LT(now - last, 1000000u) << "never backwards";
    last = now;
  }
  const auto passed = std::chrono::steady_clock::now() - begin;
  const uint32_t ticks = platform::TickMilliseconds() - first;
  EXPECT_GE(ticks, 28u);
  EXPECT_LE(ticks, 1u + std::chrono::duration_cast<std::chrono::milliseconds>(passed +
                                                                              std::chrono::milliseconds(1000))
                            .count());
}

// ---- numbers ---------------------------------------------------------------------------------------------

TEST(Platform, FormattingGivesTheWholeLengthAndCutsTheText) {
  int length = 0;
  EXPECT_EQ(Formatted(100, &length, "%s-%d", "abc", 5), "abc-5");
  EXPECT_EQ(length, 5);
  EXPECT_EQ(Formatted(4, &length, "%s-%d", "abc", 5), "abc");
  EXPECT_EQ(length, 5);
}

TEST(Platform, NumbersAreThoseOfTheCLocale) {
  ORV_WITH_COMMA_LOCALE();
  int length = 0;
  EXPECT_EQ(Formatted(100, &length, "%.2f", 1.5), "1.50");
  EXPECT_EQ(platform::ToDoubleInCLocale("1.5"), 1.5);
  EXPECT_EQ(platform::ToDoubleInCLocale("1,5"), 1.0);
  EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "the host's own locale stays";
}

// ---- floating-point traps --------------------------------------------------------------------------------

TEST_F(FpTraps, NothingIsUnmaskedByDefault) { EXPECT_EQ(platform::UnmaskedFpExceptions(), 0u); }

TEST_F(FpTraps, EachExceptionIsSeenWhileHeld) {
  EXPECT_EQ(RaisedBy([] {}), 0u);
  EXPECT_EQ(RaisedBy(&DivideByZero), platform::FpZeroDivide);
  EXPECT_EQ(RaisedBy(&Overflow), platform::FpOverflow);
  EXPECT_EQ(RaisedBy(&Underflow), platform::FpUnderflow);
  EXPECT_EQ(RaisedBy(&Invalid), 0u) << "an invalid operation is none of the four";
#if defined(__x86_64__)
  EXPECT_EQ(RaisedBy(&UseDenormal), platform::FpDenormal);
#endif
}

TEST_F(FpTraps, HoldingClearsTheStatusAndRestoringBringsItBack) {
  std::feclearexcept(FE_ALL_EXCEPT);
  DivideByZero();
  EXPECT_NE(std::fetestexcept(FE_DIVBYZERO), 0);
  FpEnvironment saved;
  platform::HoldFpExceptions(saved);
  EXPECT_EQ(platform::RaisedFpExceptions(), 0u);
  Overflow();
  EXPECT_EQ(platform::RaisedFpExceptions(), platform::FpOverflow);
  platform::RestoreFpEnvironment(saved);
  EXPECT_EQ(platform::RaisedFpExceptions(), platform::FpZeroDivide);
  EXPECT_EQ(std::fetestexcept(FE_OVERFLOW), 0) << "what was raised meanwhile is gone";
  EXPECT_NE(std::fetestexcept(FE_DIVBYZERO), 0);
}

TEST_F(FpTraps, RoundingModesSurvive) {
  std::fesetround(FE_UPWARD);
  FpEnvironment saved;
  platform::HoldFpExceptions(saved);
  EXPECT_EQ(std::fegetround(), FE_UPWARD);
  platform::RestoreFpEnvironment(saved);
  EXPECT_EQ(std::fegetround(), FE_UPWARD);
}

#if defined(__GLIBC__)

TEST_F(FpTraps, UnmaskedExceptionsAreToldOneByOne) {
  const std::pair<int, unsigned> kinds[] = {{FE_DIVBYZERO, platform::FpZeroDivide},
                                            {FE_OVERFLOW, platform::FpOverflow},
                                            {FE_UNDERFLOW, platform::FpUnderflow},
                                            {FE_INVALID, 0u},
                                            {FE_INEXACT, 0u}};
  for (const auto& [kind, expected] : kinds) {
    std::feclearexcept(FE_ALL_EXCEPT);
    feenableexcept(kind);
    const unsigned unmasked = platform::UnmaskedFpExceptions();
    fedisableexcept(FE_ALL_EXCEPT);
    EXPECT_EQ(unmasked, expected) << kind;
  }
}

TEST_F(FpTraps, HeldExceptionsDoNotTrapAndAreUnmaskedAgainAfterwards) {
  std::feclearexcept(FE_ALL_EXCEPT);
  feenableexcept(FE_DIVBYZERO | FE_OVERFLOW);
  FpEnvironment saved;
  platform::HoldFpExceptions(saved);
  const unsigned whileHeld = platform::UnmaskedFpExceptions();
  DivideByZero();
  Invalid();
  const unsigned raised = platform::RaisedFpExceptions();
  platform::RestoreFpEnvironment(saved);  // must not trap: nothing raised while held comes back
  const unsigned afterwards = platform::UnmaskedFpExceptions();
  fedisableexcept(FE_ALL_EXCEPT);
  EXPECT_EQ(whileHeld, 0u);
  EXPECT_EQ(raised, platform::FpZeroDivide);
  EXPECT_EQ(afterwards, platform::FpZeroDivide | platform::FpOverflow);
}

TEST_F(FpTraps, ClearingAndUnmaskingLeavesTheFourTrapping) {
  DivideByZero();
  platform::ClearAndUnmaskFpExceptions();
  const unsigned unmasked = platform::UnmaskedFpExceptions();
  const unsigned raised = platform::RaisedFpExceptions();
  std::fesetenv(FE_DFL_ENV);
  EXPECT_EQ(raised, 0u);
#if defined(__x86_64__)
  EXPECT_EQ(unmasked,
            platform::FpZeroDivide | platform::FpOverflow | platform::FpUnderflow | platform::FpDenormal);
#else
  EXPECT_EQ(unmasked, platform::FpZeroDivide | platform::FpOverflow | platform::FpUnderflow);
#endif
}

using FpTrapsDeathTest = FpTraps;

TEST_F(FpTrapsDeathTest, AnUnmaskedExceptionReallyTraps) {
  EXPECT_DEATH(
      {
        platform::ClearAndUnmaskFpExceptions();
        DivideByZero();
      },
      "");
}

#endif
