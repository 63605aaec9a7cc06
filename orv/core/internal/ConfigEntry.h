// ConfigEntry.h: the entries of configuration files, the one reader and the one writer of all lists.
//
// An entry is "{", pairs key = value, "}".  A list's entry type names its keys once, in the order in which
// they are written:
//
//     template <class Walker, class Self> void Entry(Walker& w, Self& d) {
//       w.Text   ("token",   d.token);
//       w.Number ("radius",  "%.4f",  d.radius);
//       w.Derived("invflat", "%.19f", d, &InvFlat, &SetInvFlat, d.flat > kFlatAsIs);
//       w.ReadOnly("minrad", d, &SetFromMinorRadius);
//     }
//
// The trailing condition only governs writing.  On reading, keys are compared without regard to case and
// applied as they are met, so keys that depend on earlier ones stay honest; unknown keys are skipped with
// their value.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "orv/core/ConfigFile.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/NameTable.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"

namespace orv::internal {

/// The complaints about an entry's form, with places for file name, line and, in the first, the token found.
struct EntryTexts {
  const char* expectedBrace;
  const char* expectedEquals;
  const char* unexpectedEnd;
};

/// Most lists end these texts in a line feed.  Deliberate: one blank only behind the first one's colon.
inline constexpr EntryTexts kEntryTexts = {
    "%s(%d): Expected '{', found '%s' at start of entry\n",
    "%s(%d):  Expected '=' between parameter and value.\n",
    "%s(%d):  Unexpected end of file.\n",
};

/// A list's file: its default name, its first and last lines and what is said when it cannot be had.
struct ListFile {
  const char* defaultName;
  const char* notFound;     ///< with a place for the given name
  const char* notOpened;    ///< with a place for the located path
  const char* notWritable;  ///< with a place for the given name
  const char* header;
  const char* trailer;
  bool bAlwaysReportUnopenable;  ///< else only when missing files are to be reported
};

/// Finds and opens a list's file.  False when it cannot be had; that is reported as `file` says.
///
/// @param fileName  null means the default name.
bool OpenListFile(ConfigFileReader& reader, const ListFile& file, const char* fileName, bool bReportMissing,
                  const ErrorSite& site);

/// Creates a list's file and writes its first lines; one that cannot be created is reported (1028).
bool CreateListFile(ConfigFileWriter& writer, const ListFile& file, const char* fileName,
                    const ErrorSite& site);

/// Reads pairs up to the closing brace, whose opening one has been read, and hands each to take(key, value), which may read the
/// pairs that follow as KeyReader does.  The first time it gets an empty key, for what stands ahead.
template <class Take>
bool ReadEntryBody(ConfigFileReader& reader, const EntryTexts& texts, const ErrorSite& site, Take take) {
  const auto unexpectedEnd = [&] {
    return ORV_FAIL_AT(site, ErrSyntax, texts.unexpectedEnd, reader.FileName(), reader.Line());
  };
  take(std::string_view(), std::string_view());
  for (;;) {
    if (!reader.Next()) return unexpectedEnd();
    if (reader.Token() == "}") return true;
    const std::string_view key = reader.Token();
    if (!reader.NextAtOnce('=') && !reader.Next()) return unexpectedEnd();
    if (reader.Token() != "=") {
      return ORV_FAIL_AT(site, ErrSyntax, texts.expectedEquals, reader.FileName(), reader.Line());
    }
    if (!reader.Next()) return unexpectedEnd();
    take(key, reader.Token());
  }
}

/// Reads entries up to the end of the file: begin() before each, take(key, value) for its pairs, end() behind
/// it.
template <class Begin, class Take, class End>
bool ReadEntries(ConfigFileReader& reader, const EntryTexts& texts, const ErrorSite& site, Begin begin,
                 Take take, End end) {
  while (reader.Next()) {
    if (reader.Token() != "{") {
      return ORV_FAIL_AT(site, ErrSyntax, texts.expectedBrace, reader.FileName(), reader.Line(),
                         std::string(reader.Token()).c_str());
    }
    begin();
    if (!ReadEntryBody(reader, texts, site, take)) return false;
    end();
  }
  return true;
}

/// The name of a key, in a form in which a reader tells it from nearly every other at once.  Made of literals in lower case.
struct KeyName {
  consteval KeyName(const char* name)
      : text(name),
        eight(EightOf(text)),
        mask(text.size() < 7 ? ~(~uint64_t{0} >> (8 * text.size() + 8)) : ~uint64_t{0}) {}
  /// The first eight characters of a key and of the "=" behind it.
  static constexpr uint64_t EightOf(std::string_view key) {
    return EightFolded(key) | (key.size() < 8 ? uint64_t{'='} << (56 - 8 * key.size()) : 0);
  }

  std::string_view text;
  uint64_t eight;
  uint64_t mask;  // of those of the eight that count
};

/// Offers a pair that has been read to an entry's keys and, when a key has taken it or it is empty, the pair that follows, as
/// long as these stand in the form in which they are written: a key in lower case, "=" and, maybe behind white space, a
/// value.  Pairs in the order of the keys are all taken in one walk; those that are not taken are not read.
class KeyReader {
 public:
  KeyReader(std::string_view key, std::string_view value, ConfigFileReader& reader, const ErrorSite& site)
      : m_Eight(KeyName::EightOf(key)), m_Key(key), m_Value(value), m_Reader(reader), m_Site(site) {
    if (key.empty()) LookAhead();
  }

  void Text(KeyName key, std::string& value, bool = true) {
    On(key, [&] { value = std::string(m_Value); });
  }
  void Number(KeyName key, const char*, double& value, bool = true) {
    OnNumber(key, [&](const auto& number) { value = number.value; });
  }
  /// The same, or a text that parse(value, text) understands.
  void NumberOr(KeyName key, double& value, void (*parse)(double& value, std::string_view text)) {
    OnNumber(key, [&](const auto& number) {
      if (number.isWhole) {
        value = number.value;
      } else {
        parse(value, m_Reader.Token());
      }
    });
  }
  void Int(KeyName key, int& value, bool = true) {
    On(key, [&] { value = ReadInteger(m_Value); });
  }
  /// "true" without regard to case sets the flag, every other text clears it.
  void Flag(KeyName key, bool& value, bool = true) {
    On(key, [&] { value = IsTrue(); });
  }
  /// A name of a vocabulary; one that stands in no row raises `unknown` (1029, with file, line and the
  /// value).
  template <class E, class Rows>
  void Named(KeyName key, E& value, const Rows& vocabulary, const char* unknown, bool = true) {
    On(key, [&] {
      const auto* const row = RowNamed(vocabulary, m_Value);
      if (row) {
        value = row->number;
      } else {
        Complain(unknown);
      }
    });
  }
  template <class Self>
  void Derived(KeyName key, const char*, Self& self, double (*)(const Self&), void (*set)(Self&, double),
               bool = true) {
    OnNumber(key, [&](const auto& number) { set(self, number.value); });
  }
  template <class Self>
  void ReadOnly(KeyName key, Self& self, void (*set)(Self&, double)) {
    OnNumber(key, [&](const auto& number) { set(self, number.value); });
  }
  /// A number whose text only the caller understands: parse(self, text) gives false to raise `bad` (1029,
  /// with file, line and the text).  It is written by `format` as it is.
  template <class Self>
  void Parsed(KeyName key, const char*, Self& self, double, bool (*parse)(Self&, std::string_view),
              const char* bad) {
    On(key, [&] {
      if (!parse(self, m_Value)) Complain(bad);
    });
  }
  /// The token of an entry of another list: take(self, token) gives false, when that list has no such entry,
  /// to raise `unknown` (1029, with file, line and the token).
  template <class Self>
  void Reference(KeyName key, const std::string&, Self& self, bool (*take)(Self&, std::string_view),
                 const char* unknown, bool = true) {
    On(key, [&] {
      if (!take(self, m_Value)) Complain(unknown);
    });
  }
  /// A value of several tokens: take(reader) reads those behind the present one.
  template <class Take>
  void Tokens(KeyName key, Take take) {
    On(key, [&] { take(m_Reader); });
  }

  /// Whether the pair's key begins with these six characters and has more.
  bool BeginsWith(KeyName six) const {
    const uint64_t apart = m_Eight ^ six.eight;
    return apart >> 16 == 0 && apart >> 8 != 0;
  }
  /// How many pairs have been taken.
  size_t Taken() const { return m_Taken; }

 private:
  // Nearly every key that is offered is another one: what follows a match is kept out of line.
  template <class Work>
  void On(const KeyName& key, Work work) {
    if (!IsNext(key) || !Takes(key.text)) return;
    work();
    ++m_Taken;
    LookAhead();
  }
  template <class Work>
  void OnNumber(const KeyName& key, Work work) {
    if (!IsNext(key)) return;
    const RecentNumbers::Number* const number = TakesNumber(key.text);
    if (!number) return;
    work(*number);
    ++m_Taken;
    LookAhead();
  }
  bool IsNext(const KeyName& key) const { return ((m_Eight ^ key.eight) & key.mask) == 0; }
  bool Takes(std::string_view key);
  const RecentNumbers::Number* TakesNumber(std::string_view key);
  bool IsRead(std::string_view key) const;
  const char* ValueAhead(std::string_view key) const;
  void LookAhead() {
    m_pAhead = m_Reader.Ahead();
    m_Eight = m_pAhead ? EightAt(m_pAhead) : 0;
  }
  bool IsTrue() const;
  void Complain(const char* message);

  uint64_t m_Eight;                // the first characters of the pair; 0 for none
  const char* m_pAhead = nullptr;  // the pair, when it has not been read
  std::string_view m_Key;          // when it has
  std::string_view m_Value;
  ConfigFileReader& m_Reader;
  ErrorSite m_Site;
  size_t m_Taken = 0;
};

class KeyWriter;

/// What only a writer asks for need not be computed for a reader, which walks all keys for each entry, if not for each pair of
/// it.
template <class Walker>
constexpr bool kWriting = std::is_same_v<Walker, KeyWriter>;

/// Writes an entry's keys, one line each with three leading blanks.
class KeyWriter {
 public:
  explicit KeyWriter(ConfigFileWriter& writer) : m_Writer(writer) {}

  void Text(KeyName key, const std::string& value, bool write = true) {
    if (write) Line(key, '"' + value + '"');
  }
  void Number(KeyName key, const char* format, double value, bool write = true) {
    if (write) Line(key, Format(format, value));
  }
  void Int(KeyName key, int value, bool write = true) {
    if (write) Line(key, std::to_string(value));
  }
  void Flag(KeyName key, bool value, bool write = true) {
    if (write) Line(key, value ? "true" : "false");
  }
  template <class E, class Rows>
  void Named(KeyName key, E value, const Rows& vocabulary, const char*, bool write = true) {
    if (write) Text(key, EmptyIfNull(NameOf(vocabulary, value)));
  }
  template <class Self>
  void Derived(KeyName key, const char* format, const Self& self, double (*get)(const Self&),
               void (*)(Self&, double), bool write = true) {
    if (write) Number(key, format, get(self));
  }
  template <class Self>
  void ReadOnly(KeyName, const Self&, void (*)(Self&, double)) {}
  template <class Self>
  void Parsed(KeyName key, const char* format, const Self&, double value, bool (*)(Self&, std::string_view),
              const char*) {
    Number(key, format, value);
  }
  template <class Self>
  void Reference(KeyName key, const std::string& token, const Self&, bool (*)(Self&, std::string_view),
                 const char*, bool write = true) {
    Text(key, token, write);
  }

 private:
  // Names may hold anything: a line never passes through a format.
  void Line(KeyName key, const std::string& value) {
    m_Writer.Write("   " + std::string(key.text) + '=' + value + '\n');
  }

  ConfigFileWriter& m_Writer;
};

/// Writes entry `number` of `count`: its comment line, its braces and between them what walk(KeyWriter&)
/// writes.
template <class Walk>
void WriteEntry(ConfigFileWriter& writer, int number, int count, Walk walk) {
  writer.Print("; Entry %d of %d\n", number, count);
  writer.Write("{\n");
  KeyWriter keys(writer);
  walk(keys);
  writer.Write("}\n\n");
}

}  // namespace orv::internal
