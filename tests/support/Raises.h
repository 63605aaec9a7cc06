// Raises.h: expects one failure, all of it: code, unit, text, and the same in the error state.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "orv/core/Error.h"
#include "orv/shared/Exception.h"

namespace orv::test {

template <class Statement>
::testing::AssertionResult Raises(Statement statement, int code, const std::string& unit,
                                  const std::string& text) {
  try {
    statement();
  } catch (const shr::Exception& e) {
    const bool same = e.Code() == code && unit == e.File() && text == e.Message() &&
                      std::string("ORVCore.dll") == e.Module();
    const bool recorded = ORVGetErrorCode() == code && unit == ORVGetErrorFile() &&
                          text == ORVGetErrorText() && ORVGetErrorLine() == e.Line() && e.Line() > 0;
    if (same && recorded) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "raised " << e.Code() << " " << e.File() << "(" << e.Line() << "): '" << e.Message()
           << "'; recorded " << ORVGetErrorCode() << " " << ORVGetErrorFile() << ": '" << ORVGetErrorText()
           << "'; expected " << code << " " << unit << ": '" << text << "'";
  }
  return ::testing::AssertionFailure()
         << "raised nothing; expected " << code << " " << unit << ": '" << text << "'";
}

}  // namespace orv::test

/// Expects that the statement throws shr::Exception with this code, unit and text, recorded alike.
#define EXPECT_RAISES(statement, code, unit, text) \
  EXPECT_TRUE(::orv::test::Raises([&] { (void)(statement); }, code, unit, text)) << #statement
