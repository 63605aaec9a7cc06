// JsonMembers.h: where the parts of a JSON text stand, so that others can stay byte for byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv::tool {

/// A place in the text.
struct JsonSpan {
  size_t begin;
  size_t end;
};

struct JsonMember {
  std::string_view key;  ///< between the quotes, as it is written
  JsonSpan all;          ///< key and value
  JsonSpan value;
};

/// The text behind a byte-order mark, when it is JSON of at most 200 levels of nesting.
///
/// @param name  of the file, for messages.
/// Raised: UsageError "'NAME': no JSON at byte N", "... a number beyond 1.8e308 at byte N", "... nested deeper than 200
/// levels".
std::string_view CheckedJson(std::string_view text, const std::string& name);

/// All of these need text that is valid JSON.

/// The first place at or behind `at` that is no white space.
size_t SkipJsonBlanks(std::string_view text, size_t at);
/// Behind the value that begins at `at`.
size_t SkipJsonValue(std::string_view text, size_t at);
/// The members of the object that begins at `at`; none when no object does.
std::vector<JsonMember> JsonMembersOf(std::string_view text, size_t at);
/// The elements of the array that begins at `at`; none when no array does.
std::vector<JsonSpan> JsonElementsOf(std::string_view text, size_t at);

}  // namespace orv::tool
