// CSDef.h: what all coordinate system definitions have in common.
#pragma once

#include <cstddef>
#include <string>

#include "orv/core/Export.h"

namespace shr {
class ISerialize;
}  // namespace shr

namespace orv {

class ConfigFileReader;
class ConfigFileWriter;
class WarpDef;

/// The kind of a definition.  The numbers are persistent.
enum CSType : int {
  CSTypeNone = 0,  ///< neither of the two below
  CSTypeORV = 1,   ///< ORVDef, georeferenced
  CSTypeUCS = 2    ///< UCSDef, a user's local system
};

/// A coordinate system definition: how the numbers of a map are to be read.  Abstract; see ORVDef and UCSDef.
///
/// Definitions are plain values: they own their parts, and copying copies these.  The order of the virtual
/// operations below is part of the binary interface.
///
/// Check and Compare never raise; they explain themselves through their text argument.  Everything else
/// raises with the unit of the derived class.
class ORV_API CSDef {
 protected:
  friend class CSList;

  /// Reads one entry of the systems file, up to its closing brace; the opening one has been read.
  virtual void ReadConfigEntry(ConfigFileReader* reader) = 0;
  /// Writes one entry of the systems file, without its opening brace.
  virtual void WriteConfigEntry(ConfigFileWriter* writer) const = 0;

 public:
  /// Reads the definition's block of encoded text that starts at *offset (0 when null) and leaves *offset on
  /// the block's own BLOCKEND item.  Names of items are compared without regard to case, unknown items are
  /// skipped, and what the text does not hold keeps its value.  A block that cannot be read raises 1026 and
  /// leaves *offset as it was; what was read before stays.
  virtual void DecodeFromText(const std::string& data, size_t* offset) = 0;

  virtual ~CSDef();

  /// A new deep copy, which belongs to the caller.
  virtual CSDef* Clone() const = 0;

  /// A null pointer empties the text.  Deliberate: unlike ellipsoids and datums, systems never answer null.
  virtual void SetName(const char* name);
  virtual void SetToken(const char* token);
  virtual void SetComment(const char* comment);

  /// The same as the other form, without the explanation.
  virtual bool Check() const;
  /// Whether the definition is valid.  `why` is emptied first; it explains a false answer.
  virtual bool Check(std::string& why) const;

  /// Whether both systems place points alike; names, tokens, comments and codes are never compared.
  ///
  /// @param why  when not null, is emptied first and explains a false answer with the first difference.
  ///             Systems of different types: "Coordinate systems are not the same type (ORV versus UCS).".
  /// Not symmetric: tolerances are measured on this object, see ORVDef.
  virtual bool Compare(const CSDef& other, bool ignoreWarp, std::string* why) const = 0;

  /// Never null.
  virtual const char* GetName() const;
  virtual const char* GetToken() const;
  virtual const char* GetComment() const;

  /// Replaces the warp by a copy of this one; null removes it.
  virtual void SetWarp(const WarpDef* warp) = 0;
  /// The warp held, or null.
  virtual const WarpDef* GetWarp() const = 0;
  /// Whether a warp is held whose method is not 0.
  virtual bool HasWarp() const = 0;

  /// Appends the definition's block of encoded text.
  virtual void EncodeToText(std::string& out) const = 0;

  /// Stores or loads one record, as the archive wants: version (1), length of the encoded text (both unsigned
  /// 32-bit, little-endian on every host), and the text's bytes.
  ///
  /// A loaded definition is what its encoded text says and nothing else: what is not encoded (the codes of an
  /// ORVDef, for instance) is back at its default.  A failed load leaves the object as it was.  Another
  /// version, or a length of 0, raises 1035, see the derived classes.
  virtual void Serialize(shr::ISerialize& archive) = 0;

  virtual void DebugDump(std::string& text, size_t indent) const;

  CSType Type() const;

  /// The part of the name behind its last vertical bar, without leading blanks; the whole name when it has no
  /// bar (leading blanks then stay, deliberately).
  std::string GetShortName() const;

  /// Builds the definition whose block starts at *offset (0 when null); *offset ends on the block's BLOCKEND
  /// item. The new object belongs to the caller.
  ///
  /// Raised, all 1026, unit "CSDef", each behind "Corrupt coordinate system data.  ": "Malformed or missing
  /// header.", "Expected BLOCKBEGIN.", "Expected ORVDef or UCSDef block.".
  static CSDef* BuildFromEncodedText(const std::string& data, size_t* offset);

 protected:
  CSDef();
  CSDef(const CSDef&);
  CSDef& operator=(const CSDef&);

  /// What Compare says when only one of both has a warp; null when they agree.
  static const char* WarpPresenceDiffers(const CSDef& first, const CSDef& second);

  std::string m_Token;
  std::string m_Name;
  std::string m_Comment;

 private:
  friend class ORVDef;
  friend class UCSDef;

  // Only these two say what they are, so that a type of ORV or UCS stands for the class itself.
  explicit CSDef(CSType type);

  CSType m_Type = CSTypeNone;
};

}  // namespace orv
