// JsonText.h: writes JSON [RFC8259], value by value.  The command line compiles it once more: the module shows none of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv::internal {

/// Builds one JSON text, indented by two blanks.  Members and values come in the order of the calls, which must be
/// those of a well-formed text.
///
/// Texts are taken as UTF-8: quotes, backslashes and control characters are escaped, and a byte that is no part of
/// well-formed UTF-8 becomes U+FFFD, so that any text gives valid JSON.  A number that is not finite, which JSON does
/// not have, is null.
class JsonText {
 public:
  JsonText& BeginObject() { return Begin('{'); }
  JsonText& EndObject() { return End('}'); }
  JsonText& BeginArray() { return Begin('['); }
  JsonText& EndArray() { return End(']'); }
  /// The name of the value that follows.
  JsonText& Key(std::string_view key);

  JsonText& Text(std::string_view text);
  /// The shortest digits that read back as the same number.
  JsonText& Number(double value);
  JsonText& Number(size_t value);
  JsonText& Bool(bool value);
  JsonText& Null();

  /// Ends in a line feed.
  std::string Finish() { return m_Out + "\n"; }

 private:
  JsonText& Begin(char bracket);
  JsonText& End(char bracket);
  /// What stands in front of a value or a key: comma, line end, indentation.
  void Separate();
  void Quote(std::string_view text);

  std::string m_Out;
  std::vector<bool> m_Filled;  ///< of each open bracket: whether something stands in it
  bool m_AfterKey = false;
};

}  // namespace orv::internal
