// TextBlock.h: encoded blocks, the one writer and the one reader of all definitions.
//
// A definition lists its fields once:
//
//     template <class Walker, class Self>
//     void EllipsoidDef::Fields(Walker& w, Self& d) {
//       w.Text("Token", d.m_Token, !d.m_Token.empty());
//       w.Double("Radius", d.m_Radius);
//     }
//
// The writer walks the list in order; the reader walks it once for each item it meets, and the field whose
// name matches takes the item.  An item that no field takes is skipped.  The trailing condition only governs
// writing.
//
// What differs between definitions stands in a BlockSyntax: the block's name and the texts of its complaints.
// A block that cannot be read is reported from the owner's site; a value that cannot be read inside a good
// header is reported by the value reader itself (unit "EncodeText").
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/EncodeText.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/NameTable.h"
#include "orv/core/internal/Text.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

struct BlockSyntax {
  const char* name;              ///< the block's name, compared without regard to case
  const char* noHeader;          ///< no item can be read where the block should begin
  const char* noBegin;           ///< the item there opens no block
  const char* wrongBlock;        ///< it opens a block of another name
  const char* wrongEnd;          ///< a block of another name ends inside this one
  const char* noMoreItems;       ///< the text ends inside the block, behind an ordinary item
  const char* noMoreAfterBlock;  ///< ... behind the end of a nested block
  const char* badItem;           ///< an item inside the block has no readable header
};

/// Lets the mechanism reach the private halves of a definition: `Fields`, and `DecodeBlock(text, at)`, which
/// decodes from *at and leaves *at on the block's own BLOCKEND item.
struct BlockAccess {
  template <class Walker, class Self>
  static void Fields(Walker& walker, Self& self) {
    std::remove_const_t<Self>::Fields(walker, self);
  }
  template <class T>
  static void DecodeBlock(T& part, const std::string& text, size_t* at) {
    part.DecodeBlock(text, at);
  }
};

/// Writes a definition's fields in order.
class BlockWriter {
 public:
  explicit BlockWriter(std::string& out) : m_Out(out) {}

  void Text(const char* name, const std::string& value, bool write = true) {
    if (write) ORVEncodeValue(m_Out, name, 's', value.c_str(), value.size());
  }
  void Int(const char* name, int value, bool write = true) {
    if (write) ORVEncodeValue(m_Out, name, 'd', &value, 1);
  }
  void Double(const char* name, double value, bool write = true) { Doubles(name, &value, 1, write); }
  void Doubles(const char* name, const double* values, size_t count, bool write = true) {
    if (write) ORVEncodeValue(m_Out, name, 'f', values, count);
  }
  void Bool(const char* name, bool value, bool write = true) {
    if (write) ORVEncodeValue(m_Out, name, 'b', &value, 1);
  }
  /// x0, y0, x1, y1 ...
  void Points(const char* name, const std::vector<shr::Vec2d>& points, bool write = true) {
    if (!write) return;
    std::vector<double> values;
    values.reserve(points.size() * 2);
    for (const shr::Vec2d& point : points) values.insert(values.end(), {point.x, point.y});
    Doubles(name, values.data(), values.size());
  }
  /// The canonical name of an enumerator as a string; empty when the vocabulary does not hold it.
  template <class E, class Rows>
  void Named(const char* name, E value, const Rows& vocabulary, bool write = true) {
    if (write) ORVEncodeValue(m_Out, name, 's', NameOf(vocabulary, value), 0);
  }
  /// A nested definition's own block.
  template <class T>
  void Block(const char*, const T& part, bool write = true) {
    if (write) part.EncodeToText(m_Out);
  }
  template <class Pointer>
  void Part(const char*, const Pointer& part) {
    if (part) part->EncodeToText(m_Out);
  }

 private:
  std::string& m_Out;
};

/// Offers one item to a definition's fields.
class ItemReader {
 public:
  /// @param name   the item's name as its header has it.
  /// @param count  the item's count as its header has it; not to be trusted.
  ItemReader(const std::string& text, size_t* at, const std::string& name, size_t count,
             const ErrorSite& site, const BlockSyntax& syntax)
      : m_Text(text), m_At(at), m_Name(name), m_Count(count), m_Site(site), m_Syntax(syntax) {}

  void Text(const char* name, std::string& value, bool = true) {
    if (!Takes(name)) return;
    std::string read;  // the value reader appends
    ORVDecodeValue(m_Text, m_At, read);
    value = std::move(read);
  }
  void Int(const char* name, int& value, bool = true) {
    if (Takes(name)) ORVDecodeValue(m_Text, m_At, &value);
  }
  void Double(const char* name, double& value, bool = true) { Doubles(name, &value, 1); }
  void Doubles(const char* name, double* values, size_t count, bool = true) {
    if (Takes(name)) ORVDecodeValue(m_Text, m_At, values, 0, count);
  }
  void Bool(const char* name, bool& value, bool = true) {
    if (Takes(name)) ORVDecodeValue(m_Text, m_At, &value);
  }
  /// Half as many points as the item's count are appended.
  void Points(const char* name, std::vector<shr::Vec2d>& points, bool = true) {
    if (!Takes(name)) return;
    // Every element takes a character at least; a count beyond the text is hostile and must not allocate.
    if (m_Count > m_Text.size() - *m_At) {
      ORV_FAIL_AT(m_Site, ErrCorrupt, "%s", m_Syntax.badItem);
      return;
    }
    std::vector<double> values(m_Count / 2 * 2);
    ORVDecodeValue(m_Text, m_At, values.data(), 0, values.size());
    for (size_t i = 0; i < values.size(); i += 2) points.emplace_back(values[i], values[i + 1]);
  }
  template <class E, class Rows>
  void Named(const char* name, E& value, const Rows& vocabulary, bool = true) {
    if (!Takes(name)) return;
    std::string read;
    ORVDecodeValue(m_Text, m_At, read);
    value = IdOf(vocabulary, read.c_str());
  }
  template <class T>
  void Block(const char* name, T& part, bool = true) {
    if (Takes(name)) BlockAccess::DecodeBlock(part, m_Text, m_At);
  }
  /// A part that is made when the item is met and there is none.
  template <class T>
  void Part(const char* name, std::unique_ptr<T>& part) {
    if (!Takes(name)) return;
    if (!part) part = std::make_unique<T>();
    BlockAccess::DecodeBlock(*part, m_Text, m_At);
  }
  /// The same, of a part that others may share: it is copied first.
  template <class T>
  void Part(const char* name, std::shared_ptr<const T>& part) {
    if (!Takes(name)) return;
    const auto own = part ? std::make_shared<T>(*part) : std::make_shared<T>();
    part = own;
    BlockAccess::DecodeBlock(*own, m_Text, m_At);
  }

 private:
  bool Takes(const char* name) {
    if (m_Taken || !EqualIgnoringCase(m_Name, name)) return false;
    m_Taken = true;
    return true;
  }

  const std::string& m_Text;
  size_t* m_At;
  const std::string& m_Name;
  size_t m_Count;
  ErrorSite m_Site;
  const BlockSyntax& m_Syntax;
  bool m_Taken = false;
};

/// Appends a definition's whole block.
template <class T>
void WriteBlock(const T& definition, const BlockSyntax& syntax, std::string& out) {
  ORVEncodeValue(out, syntax.name, kBlockBegin, nullptr, 1);
  BlockWriter writer(out);
  BlockAccess::Fields(writer, definition);
  ORVEncodeValue(out, syntax.name, kBlockEnd, nullptr, 1);
}

/// Reads a definition's block from *at on and leaves *at on its BLOCKEND item.  Fields read before a failure
/// stay.
///
/// @param onBegin  called once the block's head has been accepted, before any field is read.
template <class T, class OnBegin>
void ReadBlock(T& definition, const BlockSyntax& syntax, const ErrorSite& site, const std::string& text,
               size_t* at, OnBegin onBegin) {
  std::string name;
  char type = 0;
  size_t count = 0;
  const auto fail = [&site](const char* message) { return ORV_FAIL_AT(site, ErrCorrupt, "%s", message); };
  if (!ORVDecodeInfo(text, at, name, type, count)) {
    fail(syntax.noHeader);
    return;
  }
  if (type != kBlockBegin) {
    fail(syntax.noBegin);
    return;
  }
  if (!EqualIgnoringCase(name, syntax.name)) {
    fail(syntax.wrongBlock);
    return;
  }
  onBegin();
  for (;;) {
    const size_t last = *at;
    if (!ORVSkipItem(text, at)) {
      size_t lastAt = last;
      const bool afterBlock = ORVDecodeInfo(text, &lastAt, name, type, count) && type == kBlockEnd;
      fail(afterBlock ? syntax.noMoreAfterBlock : syntax.noMoreItems);
      return;
    }
    if (!ORVDecodeInfo(text, at, name, type, count)) {
      fail(syntax.badItem);
      return;
    }
    if (type == kBlockEnd) {
      if (!EqualIgnoringCase(name, syntax.name)) fail(syntax.wrongEnd);
      return;
    }
    ItemReader reader(text, at, name, count, site, syntax);
    BlockAccess::Fields(reader, definition);
  }
}

template <class T>
void ReadBlock(T& definition, const BlockSyntax& syntax, const ErrorSite& site, const std::string& text,
               size_t* at) {
  ReadBlock(definition, syntax, site, text, at, [] {});
}

/// Where a cursor that stands on a BLOCKEND item goes to stand behind it: behind ">" and, if there, one
/// carriage return and one line feed.
size_t BehindBlockEnd(const std::string& text, size_t at);

}  // namespace orv::internal
