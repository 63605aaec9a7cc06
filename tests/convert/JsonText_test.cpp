#include "orv/convert/internal/JsonText.h"

#include <gtest/gtest.h>

#include <limits>

namespace orv {
namespace {

TEST(JsonText, WritesNestedValuesIndented) {
  internal::JsonText json;
  json.BeginObject().Key("a").BeginArray().Number(size_t{1}).Number(0.1).Bool(true).Null().EndArray();
  json.Key("b").BeginObject().EndObject().Key("c").BeginArray().EndArray();
  EXPECT_EQ(json.EndObject().Finish(),
            "{\n  \"a\": [\n    1,\n    0.1,\n    true,\n    null\n  ],\n  \"b\": {},\n  \"c\": []\n}\n");
}

TEST(JsonText, EscapesWhatJsonDoesNotTakeAsItIs) {
  const auto quoted = [](std::string_view text) { return internal::JsonText().Text(text).Finish(); };
  EXPECT_EQ(quoted("a\"b\\c/"), "\"a\\\"b\\\\c/\"\n");
  EXPECT_EQ(quoted(std::string_view("\0\n\t\r\x1F\x7F", 6)), "\"\\u0000\\n\\t\\u000d\\u001f\\u007f\"\n");
  EXPECT_EQ(quoted("\xC3\xBC \xE2\x82\xAC \xF0\x9F\x8C\x8D"), "\"\xC3\xBC \xE2\x82\xAC \xF0\x9F\x8C\x8D\"\n");
  const std::string bad = "\xEF\xBF\xBD";
  EXPECT_EQ(quoted("\xFC."), "\"" + bad + ".\"\n") << "Latin-1";
  EXPECT_EQ(quoted("\xC0\x80"), "\"" + bad + bad + "\"\n") << "longer than needed";
  EXPECT_EQ(quoted("\xED\xA0\x80"), "\"" + bad + bad + bad + "\"\n") << "a surrogate";
  EXPECT_EQ(quoted("\xF4\x90\x80\x80"), "\"" + bad + bad + bad + bad + "\"\n") << "beyond U+10FFFF";
  EXPECT_EQ(quoted("\xE2\x82"), "\"" + bad + bad + "\"\n") << "cut off";
}

TEST(JsonText, ANumberThatIsNoneIsNull) {
  internal::JsonText json;
  json.BeginArray().Number(std::numeric_limits<double>::infinity()).Number(-1e300).EndArray();
  EXPECT_EQ(json.Finish(), "[\n  null,\n  -1e+300\n]\n");
}

}  // namespace
}  // namespace orv
