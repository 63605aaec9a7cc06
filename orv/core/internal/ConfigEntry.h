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

#include <cstring>
#include <string>

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

/// Reads pairs up to the closing brace, whose opening one has been read, and hands each to take(key, value).
template <class Take>
bool ReadEntryBody(ConfigFileReader& reader, const EntryTexts& texts, const ErrorSite& site, Take take) {
  const auto unexpectedEnd = [&] {
    return ORV_FAIL_AT(site, ErrSyntax, texts.unexpectedEnd, reader.FileName(), reader.Line());
  };
  std::string key;
  for (;;) {
    if (!reader.Next()) return unexpectedEnd();
    if (reader.Token() == "}") return true;
    key = reader.Token();
    if (!reader.Next()) return unexpectedEnd();
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
                         reader.Token().c_str());
    }
    begin();
    if (!ReadEntryBody(reader, texts, site, take)) return false;
    end();
  }
  return true;
}

/// Offers one pair to an entry's keys.
class KeyReader {
 public:
  KeyReader(const std::string& key, const std::string& value, const ConfigFileReader& reader,
            const ErrorSite& site)
      : m_Key(key), m_Value(value), m_Reader(reader), m_Site(site) {}

  void Text(const char* key, std::string& value, bool = true) {
    if (Takes(key)) value = m_Value;
  }
  void Number(const char* key, const char*, double& value, bool = true) {
    if (Takes(key)) value = ReadDecimal(m_Value);
  }
  void Int(const char* key, int& value, bool = true) {
    if (Takes(key)) value = ReadInteger(m_Value);
  }
  /// "true" without regard to case sets the flag, every other text clears it.
  void Flag(const char* key, bool& value, bool = true) {
    if (Takes(key)) value = EqualIgnoringCase(m_Value, "true");
  }
  /// A name of a vocabulary; one that stands in no row raises `unknown` (1029, with file, line and the
  /// value).
  template <class E, class Rows>
  void Named(const char* key, E& value, const Rows& vocabulary, const char* unknown, bool = true) {
    if (!Takes(key)) return;
    const auto* const row = RowNamed(vocabulary, m_Value.c_str());
    if (row) {
      value = row->number;
    } else {
      Complain(unknown);
    }
  }
  template <class Self>
  void Derived(const char* key, const char*, Self& self, double (*)(const Self&), void (*set)(Self&, double),
               bool = true) {
    if (Takes(key)) set(self, ReadDecimal(m_Value));
  }
  template <class Self>
  void ReadOnly(const char* key, Self& self, void (*set)(Self&, double)) {
    if (Takes(key)) set(self, ReadDecimal(m_Value));
  }
  /// A number whose text only the caller understands: parse(self, text) gives false to raise `bad` (1029,
  /// with file, line and the text).  It is written by `format` as it is.
  template <class Self>
  void Parsed(const char* key, const char*, Self& self, double, bool (*parse)(Self&, const std::string&),
              const char* bad) {
    if (Takes(key) && !parse(self, m_Value)) Complain(bad);
  }
  /// The token of an entry of another list: take(self, token) gives false, when that list has no such entry,
  /// to raise `unknown` (1029, with file, line and the token).
  template <class Self>
  void Reference(const char* key, const std::string&, Self& self, bool (*take)(Self&, const std::string&),
                 const char* unknown, bool = true) {
    if (Takes(key) && !take(self, m_Value)) Complain(unknown);
  }

  /// Whether one of the keys offered so far was the pair's.
  bool Taken() const { return m_Taken; }

 private:
  bool Takes(const char* key) {
    if (m_Taken || m_Key.size() != std::strlen(key) || !EqualIgnoringCase(m_Key, key)) return false;
    m_Taken = true;
    return true;
  }
  void Complain(const char* message) {
    ORV_FAIL_AT(m_Site, ErrSyntax, message, m_Reader.FileName(), m_Reader.Line(), m_Value.c_str());
  }

  const std::string& m_Key;
  const std::string& m_Value;
  const ConfigFileReader& m_Reader;
  ErrorSite m_Site;
  bool m_Taken = false;
};

/// Writes an entry's keys, one line each with three leading blanks.
class KeyWriter {
 public:
  explicit KeyWriter(ConfigFileWriter& writer) : m_Writer(writer) {}

  void Text(const char* key, const std::string& value, bool write = true) {
    if (write) Line(key, '"' + value + '"');
  }
  void Number(const char* key, const char* format, double value, bool write = true) {
    if (write) Line(key, Format(format, value));
  }
  void Int(const char* key, int value, bool write = true) {
    if (write) Line(key, std::to_string(value));
  }
  void Flag(const char* key, bool value, bool write = true) {
    if (write) Line(key, value ? "true" : "false");
  }
  template <class E, class Rows>
  void Named(const char* key, E value, const Rows& vocabulary, const char*, bool write = true) {
    if (write) Text(key, EmptyIfNull(NameOf(vocabulary, value)));
  }
  template <class Self>
  void Derived(const char* key, const char* format, const Self& self, double (*get)(const Self&),
               void (*)(Self&, double), bool write = true) {
    if (write) Number(key, format, get(self));
  }
  template <class Self>
  void ReadOnly(const char*, const Self&, void (*)(Self&, double)) {}
  template <class Self>
  void Parsed(const char* key, const char* format, const Self&, double value,
              bool (*)(Self&, const std::string&), const char*) {
    Number(key, format, value);
  }
  template <class Self>
  void Reference(const char* key, const std::string& token, const Self&, bool (*)(Self&, const std::string&),
                 const char*, bool write = true) {
    Text(key, token, write);
  }

 private:
  // Names may hold anything: a line never passes through a format.
  void Line(const char* key, const std::string& value) {
    m_Writer.Write(std::string("   ") + key + '=' + value + '\n');
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
