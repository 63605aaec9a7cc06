// WktNode.h: the syntax of well-known text, both generations: keyword[value, value, ...].
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv::internal {

/// Where in a text something stands, both from 1; columns count bytes.
struct Place {
  int line = 1;
  int column = 1;
};

/// One value: a number, a quoted text, a bare word (EAST), or a block with a keyword and values.
struct WktNode {
  enum Kind : unsigned char { Number, Text, Word, Block };

  Kind kind = Block;
  std::string text;  ///< keyword, word or text; of a number its letters
  double number = 0.0;
  std::vector<WktNode> items;  ///< of a block
  Place place;

  /// A keyword or word, without regard to case.
  bool Is(const char* keyword) const;
  /// The first block of that keyword among the items, or null.
  const WktNode* Find(const char* keyword) const;
  /// The text of item `index`, or "" when it is no text.
  const std::string& TextAt(size_t index) const;

  // Makers, for writing.
  static WktNode Of(const char* keyword);
  WktNode With(WktNode item) &&;
  WktNode With(const std::string& quoted) &&;
  WktNode With(double value) &&;
  WktNode WithWord(const char* word) &&;
  WktNode& Add(WktNode item);
};

/// Reads exactly one block and white space around it.  Brackets are [ ] or ( ), a quote in a text is doubled.  Raised: see
/// ORVReadText.
WktNode ReadWktTree(std::string_view text);

/// The text of a tree; `indented` puts each block in a block on its own line.  With `wholeHavePoint` whole numbers get
/// ".0", as in the ESRI dialect.
std::string WriteWktTree(const WktNode& node, bool indented, bool wholeHavePoint);

/// The shortest text of a finite number that reads back as itself.
std::string NumberText(double value);

/// A number that came out of a multiplication, without its noise: of 15 digits where that is within 4 units of its last
/// binary place.
double Tidied(double value);

/// Where the byte at `offset` of a text stands.
Place PlaceOf(std::string_view text, size_t offset);

}  // namespace orv::internal
