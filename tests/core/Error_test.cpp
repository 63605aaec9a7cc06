#include "orv/core/Error.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/shared/Exception.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Raises.h"

ORV_UNIT("ErrorTest")

namespace {

// Throwing is off as long as it lives; nothing in the library does this.
class Quiet {
 public:
  Quiet() { orv::Globals().throwOnError = false; }
  ~Quiet() { orv::Globals().throwOnError = true; }
};

void Raise(int code, const char* text) {
  try {
    ORV_FAIL(code, "%s", text);
  } catch (const shr::Exception&) {
  }
}

}  // namespace

TEST(Error, TheCodesHaveTheirNumbers) {
  using namespace orv;
  EXPECT_EQ(ErrCorrupt, 1026);
  EXPECT_EQ(ErrWrongState, 1027);
  EXPECT_EQ(ErrFileMissing, 1028);
  EXPECT_EQ(ErrSyntax, 1029);
  EXPECT_EQ(ErrWriteFailed, 1030);
  EXPECT_EQ(ErrBadParameter, 1032);
  EXPECT_EQ(ErrNoRoute, 1033);
  EXPECT_EQ(ErrDatumMethod, 1034);
  EXPECT_EQ(ErrSerialized, 1035);
  EXPECT_EQ(ErrTypesDiffer, 1036);
  EXPECT_EQ(ErrSourceWarp, 1037);
  EXPECT_EQ(ErrDestWarp, 1038);
  EXPECT_EQ(ErrSourceProjection, 1039);
  EXPECT_EQ(ErrDestProjection, 1040);
  EXPECT_EQ(ErrNoSourceDatum, 1041);
  EXPECT_EQ(ErrNoDestDatum, 1042);
  EXPECT_EQ(ErrSourceDatumMethod, 1043);
  EXPECT_EQ(ErrDestDatumMethod, 1044);
  EXPECT_EQ(ErrExternalEngine, 2027);
}

TEST(Error, ThrowingIsOn) { EXPECT_TRUE(orv::Globals().throwOnError); }

TEST(Error, AFailureIsRecordedAndThrownAlike) {
  int line = 0;
  try {
    line = __LINE__ + 1;
    ORV_FAIL(1032, "Bad parameter to function call.");
    FAIL() << "nothing was thrown";
  } catch (const shr::Exception& e) {
    EXPECT_STREQ(e.Module(), "ORVCore.dll");
    EXPECT_STREQ(e.File(), "ErrorTest");
    EXPECT_EQ(e.Line(), line);
    EXPECT_EQ(e.Code(), 1032);
    EXPECT_STREQ(e.Message(), "Bad parameter to function call.");
    EXPECT_STREQ(e.what(), "Bad parameter to function call.");
  }
  EXPECT_EQ(orv::ORVGetErrorCode(), 1032);
  EXPECT_STREQ(orv::ORVGetErrorFile(), "ErrorTest");
  EXPECT_EQ(orv::ORVGetErrorLine(), line);
  EXPECT_STREQ(orv::ORVGetErrorText(), "Bad parameter to function call.");
}

TEST(Error, SharedCodeReportsFromItsCallersSite) {
  const orv::ErrorSite site = {"SomeOwner", 4711};
  try {
    ORV_FAIL_AT(site, 1029, "%s(%d):  x", "file", 5);
    FAIL();
  } catch (const shr::Exception& e) {
    EXPECT_STREQ(e.File(), "SomeOwner");
    EXPECT_EQ(e.Line(), 4711);
    EXPECT_STREQ(e.Message(), "file(5):  x");
  }
}

TEST(Error, TheLastFailureReplacesTheOneBefore) {
  Raise(1032, "first");
  EXPECT_RAISES(ORV_FAIL(1026, "second %d", 2), 1026, "ErrorTest", "second 2");
  Raise(1030, "");
  EXPECT_STREQ(orv::ORVGetErrorText(), "");
  EXPECT_EQ(orv::ORVGetErrorCode(), 1030);
}

TEST(Error, DataIsNeverTheFormat) {
  EXPECT_RAISES(ORV_FAIL(1032, "%s", "100% %s %n %d"), 1032, "ErrorTest", "100% %s %n %d");
}

TEST(Error, TextsOfAnyLengthAreWhole) {
  for (const size_t length : {511u, 512u, 513u, 4096u, 1000000u}) {
    const std::string text(length, 'x');
    EXPECT_RAISES(ORV_FAIL(1026, "%s!", text.c_str()), 1026, "ErrorTest", text + "!");
  }
}

TEST(Error, AnArgumentMayBeTheRecordedTextItself) {
  Raise(1032, "inner");
  EXPECT_RAISES(ORV_FAIL(1026, "<%s|%s>", orv::ORVGetErrorText(), orv::ORVGetErrorText()), 1026, "ErrorTest",
                "<inner|inner>");
  const std::string longText(5000, 'y');
  Raise(1032, longText.c_str());
  EXPECT_RAISES(ORV_FAIL(1026, "%s%s", orv::ORVGetErrorText(), orv::ORVGetErrorText()), 1026, "ErrorTest",
                longText + longText);
  EXPECT_RAISES(ORV_FAIL(1026, "%s", orv::ORVGetErrorText()), 1026, "ErrorTest", longText + longText);
}

TEST(Error, ACaughtFailureStaysRecorded) {
  Raise(1034, "kept");
  EXPECT_EQ(orv::ORVGetErrorCode(), 1034);
  EXPECT_STREQ(orv::ORVGetErrorText(), "kept");
}

TEST(Error, WithThrowingOffTheTextKeepsItsOldValue) {
  Raise(1032, "old text");
  const Quiet quiet;
  const orv::ErrorSite site = {"NewUnit", 99};
  EXPECT_FALSE(ORV_FAIL_AT(site, 1026, "new %s", "text"));
  EXPECT_EQ(orv::ORVGetErrorCode(), 1026);
  EXPECT_STREQ(orv::ORVGetErrorFile(), "NewUnit");
  EXPECT_EQ(orv::ORVGetErrorLine(), 99);
  // Deliberate: only code, unit and line are current.
  EXPECT_STREQ(orv::ORVGetErrorText(), "old text");
}

TEST(Error, WithThrowingOffCodeZeroStoresItsText) {
  Raise(1032, "old text");
  const Quiet quiet;
  EXPECT_FALSE(ORV_FAIL(0, "new %d", 5));
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
  EXPECT_STREQ(orv::ORVGetErrorText(), "new 5");
}

TEST(Error, ResettingEmptiesEverything) {
  Raise(1032, "text");
  orv::ORVResetError();
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
  EXPECT_EQ(orv::ORVGetErrorLine(), 0);
  EXPECT_STREQ(orv::ORVGetErrorFile(), "");
  EXPECT_STREQ(orv::ORVGetErrorText(), "");
}

TEST(Error, EachThreadHasItsOwnRecord) {
  Raise(1032, "of the main thread");
  const int line = orv::ORVGetErrorLine();
  std::thread([] {
    EXPECT_EQ(orv::ORVGetErrorCode(), 0) << "a new thread begins without a failure";
    EXPECT_EQ(orv::ORVGetErrorLine(), 0);
    EXPECT_STREQ(orv::ORVGetErrorFile(), "");
    EXPECT_STREQ(orv::ORVGetErrorText(), "");
    Raise(1026, "of the other thread");
    EXPECT_EQ(orv::ORVGetErrorCode(), 1026);
    EXPECT_STREQ(orv::ORVGetErrorText(), "of the other thread");
    orv::FpFault() = true;
  }).join();
  EXPECT_EQ(orv::ORVGetErrorCode(), 1032);
  EXPECT_EQ(orv::ORVGetErrorLine(), line);
  EXPECT_STREQ(orv::ORVGetErrorText(), "of the main thread");
  EXPECT_FALSE(orv::FpFault()) << "so has the floating-point fault flag";
}

TEST(Error, TheTwoSpellingsOfABadParameterDifferInTheirStop) {
  EXPECT_STREQ(ORV_BAD_PARAMETER, "Bad parameter to function call");
  EXPECT_STREQ(ORV_BAD_PARAMETER_STOP, "Bad parameter to function call.");
}

TEST(Error, ADecimalCommaOfTheHostChangesNothing) {
  ORV_WITH_COMMA_LOCALE();
  EXPECT_RAISES(ORV_FAIL(1026, "%.3f %g", 1.5, 0.25), 1026, "ErrorTest", "1.500 0.25");
}
