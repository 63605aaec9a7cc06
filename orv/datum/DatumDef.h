// DatumDef.h: the definition of one geodetic datum, and the vocabulary of datums.
#pragma once

#include <cstddef>
#include <string>

#include "orv/core/DataType.h"
#include "orv/core/Export.h"
#include "orv/datum/DatumParameters.h"

namespace orv {

namespace internal {
struct BlockAccess;
struct DatumEntry;
}  // namespace internal

/// A geodetic datum: its identity, its special role and how a position on it is converted to one of the
/// well-known target datums.  A copyable value.
///
/// A datum is special when it is itself one of the targets: the datum whose special value is DatumTargetWGS84
/// is the WGS 84 datum.
///
/// Failures carry the unit "DatumDef".  Those named "bad parameter" are 1032 "Bad parameter to function call"
/// (no full stop).
class ORV_API DatumDef {
 public:
  // ---- vocabulary ----------------------------------------------------------------------------------------
  // Names are compared without regard to case.  Several names may mean one number; the canonical one is
  // written.

  /// "Molodensky" ...; null for a number without a name.
  static const char* MethodToName(DatumMethod method);
  /// The same into a string; a number without a name raises the bad parameter failure and leaves `name`.
  static bool MethodToName(DatumMethod method, std::string& name);
  /// DatumMethodUnknown for null, an empty or an unknown name.
  static DatumMethod NameToMethod(const char* name);
  static const char* TargetToName(DatumTarget target);  ///< DatumTargetNone is "NONE"
  static bool TargetToName(DatumTarget target, std::string& name);
  static DatumTarget NameToTarget(const char* name);
  static const char* MRETypeToName(DatumMREType type);  ///< null for DatumMRETypeNone
  static bool MRETypeToName(DatumMREType type, std::string& name);
  static DatumMREType NameToMREType(const char* name);

  /// "Prime Meridian Shift" ...; null for a number without a row.
  static const char* ParameterName(DatumParameterID id);
  /// The same into a string; a number without a row raises the bad parameter failure and leaves `name`.
  static bool ParameterName(DatumParameterID id, std::string& name);
  /// "PMShift" ...; null for a number without a row.
  static const char* ParameterShortName(DatumParameterID id);
  /// The parameter with that short or long name; DatumParameterIDNone when there is none.
  static DatumParameterID NameToParameter(const char* name);
  /// ORVDataTypeIDNone for a number without a row.
  static ORVDataTypeID ParameterDataType(DatumParameterID id);

  /// Parameters that a method has, in the table's own order; an unknown method has none.  Deliberate: no
  /// method has DatumParameterIDInverse, so that flag is never written or compared, though it is kept and
  /// decoded.
  static bool UsesParameter(DatumMethod method, DatumParameterID id);
  static size_t NumParameters(DatumMethod method);
  static DatumParameterID EnumParameter(DatumMethod method, size_t index);  ///< none past the end
  bool UsesParameter(DatumParameterID id) const;
  size_t NumParameters() const;
  DatumParameterID EnumParameter(size_t index) const;

  /// True when both blocks convert alike: the same method and target, and alike in what the method uses.
  ///
  /// Radii, shifts, rotations and scale may differ by 1e-8, flattenings by 1e-12 (absolute; a NaN difference
  /// counts as none).  Deliberate: the prime meridian shift is not compared for DatumMethodNone.  Null on
  /// either side gives false.
  static bool CompareParameters(const DatumParameters* a, const DatumParameters* b);
  bool CompareParameters(const DatumDef* other) const;
  bool CompareParameters(const DatumParameters* other) const;

  // ---- the definition ------------------------------------------------------------------------------------

  /// Empty texts, POSC number 0, not special, DatumParameters as they are constructed.
  DatumDef();
  /// Empty texts, that POSC number, then SetParameters(params).
  DatumDef(const DatumParameters* params, int poscNumber);

  /// The text, or null (not "") when it is empty; callers rely on the null.
  const char* GetToken() const;
  const char* GetName() const;
  const char* GetComment() const;
  /// A null pointer empties the text.
  void SetToken(const char* token);
  void SetToken(std::string& token);
  void SetName(const char* name);
  void SetName(std::string& name);
  void SetComment(const char* comment);
  void SetComment(std::string& comment);

  /// POSC (EPSG) code; 0 means none.  Not checked.
  int GetPOSCNumber() const;
  void SetPOSCNumber(int posc);
  /// The target that this datum is itself, or DatumTargetNone.  Not checked.
  DatumTarget GetSpecial() const;
  void SetSpecial(DatumTarget special);

  DatumMethod GetMethod() const;
  DatumTarget GetTarget() const;
  DatumTarget GetConversionTarget() const;  ///< the same as GetTarget
  /// The datum's own ellipsoid, never null; valid as long as this object.
  const EllipsoidDef* GetEllipsoid() const;

  /// Stores a method from DatumMethodNone to DatumMethodMRE; every other number raises the bad parameter
  /// failure and changes nothing.
  ///
  /// @param flush  brings all fields back to their defaults first.
  void SetMethod(DatumMethod method, bool flush);

  /// The block itself, valid as long as this object.
  const DatumParameters* GetParameters() const;
  void GetParameters(DatumParameters& out) const;
  /// Null flushes the whole datum: texts, POSC number and special role too.
  void SetParameters(const DatumParameters* params);

  /// Any parameter from a number, unchecked: enumerations take it truncated and clamped to 32 bits (NaN: 0),
  /// flags take value != 0.  For the ellipsoid it is an index into the known ellipsoids; one that names no
  /// entry (1 too: the first entry is 2) is ignored silently, deliberately.  Other IDs raise the bad
  /// parameter failure.
  void SetParameter(DatumParameterID id, double value);
  void SetParameter(DatumParameterID id, int value);
  /// DatumParameterIDEllipsoid only; others raise the bad parameter failure.
  void SetParameter(DatumParameterID id, const EllipsoidDef& value);

  /// PMShift to Inverse; flags give 1 or 0.  Other IDs store 0.0 and then raise the bad parameter failure.
  void GetParameter(DatumParameterID id, double& value) const;
  double GetParameter(DatumParameterID id) const;
  /// Method and Target, and what the form above gives, truncated and clamped to 32 bits (NaN: 0).  Untouched
  /// on failure.
  void GetParameter(DatumParameterID id, int& value) const;
  // One kind of parameter each: flags, target, equation, ellipsoid.  Other IDs raise the bad parameter
  // failure and leave `value`.
  void GetParameter(DatumParameterID id, bool& value) const;
  void GetParameter(DatumParameterID id, DatumTarget& value) const;
  void GetParameter(DatumParameterID id, DatumMREType& value) const;
  void GetParameter(DatumParameterID id, EllipsoidDef& value) const;

  /// The first faulty parameter with an explanation; DatumParameterIDNone and an empty text when there is
  /// none. Never raises.
  ///
  /// An unknown method passes.  In this order: "Datum conversion method not valid." (outside 0 to 6),
  /// "Conversion target not valid." (outside 1 to 5), for MRE "Invalid MRE type code specified for MRE datum
  /// conversion method." (0, or 9 and above).  Then only for Molodensky and Bursa-Wolf: the ellipsoid's own
  /// complaint, "Prime meridian shift parameter must be between +/-180 degrees.", "Invalid X displacement
  /// parameter.", "Invalid y displacement parameter.", "Invalid z displacement parameter." (beyond half of
  /// the largest single-precision number; the mixed case is deliberate), and for Bursa-Wolf alone "Invalid X
  /// rotation parameter.", "Invalid Y rotation parameter.", "Invalid Z rotation parameter.".  NaN passes; the
  /// scale is not checked.
  DatumParameterID CheckParameters(std::string& message) const;
  DatumParameterID CheckParameters() const;

  /// True for DatumMethodUnknown.
  bool IsUnknown() const;
  /// Back to the default-constructed state.
  void Flush();

  /// Appends the block "Datum": Token, Name, Comment (s, when not empty), Special (s, when special), POSC
  /// (d), Method and Target (s), and what the method uses of the block "Ellipsoid", PMShift, dx, dy, dz, rx,
  /// ry, rz, k (f), MREType (s), NadconPrvi, Inverse (b).  A number without a name is written as "".
  void EncodeToText(std::string& out) const;
  /// Reads the block that starts at *cursor (0 when null) and leaves *cursor ON its BLOCKEND item.
  ///
  /// Items that are absent keep their values; nothing is flushed or checked.  A block that cannot be read
  /// raises 1026 "Corrupt data enountered in encoded datum parameters." (deliberate spelling) and leaves
  /// *cursor as it was.
  void DecodeFromText(const std::string& text, size_t* cursor);

  /// Each line is cut at 2047 bytes (behind its indent).
  void DebugDump(std::string& text, size_t indent) const;
  static void DebugDumpParameters(const DatumParameters* params, std::string& text, size_t indent);

 private:
  friend struct internal::BlockAccess;
  friend struct internal::DatumEntry;

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d);
  void DecodeBlock(const std::string& text, size_t* at);

  std::string m_Token;
  std::string m_Name;
  int m_POSC = 0;
  std::string m_Comment;
  DatumTarget m_Special = DatumTargetNone;
  DatumParameters m_Parameters;
};

}  // namespace orv
