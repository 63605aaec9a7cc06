// EllipsoidDef.h: one reference ellipsoid.
#pragma once

#include <cstddef>
#include <string>

#include "orv/core/Export.h"

namespace orv {

namespace internal {
struct BlockAccess;
struct DatumEntry;
struct EllipsoidEntry;
}  // namespace internal

/// A reference ellipsoid: its identity and its two defining dimensions.  A copyable value.
///
/// The radius has the length unit of the datum that uses it (metres in the shipped tables).  A flattening of
/// 0.0 is a sphere.  A default-constructed ellipsoid has radius 0 and is unknown.
///
/// Failures carry the unit "EllipsoidDef".
class ORV_API EllipsoidDef {
 public:
  /// Empty texts, POSC number 0, radius and flattening 0.
  EllipsoidDef();
  /// Applies the checks of SetMajorRadius and then SetFlattening, which end construction; null texts stay
  /// empty.
  EllipsoidDef(double majorRadius, double flattening, const char* token, const char* name,
               const char* comment, int poscNumber);

  /// Back to the default-constructed state.
  void Flush();

  /// The text, or null (not "") when it is empty; callers rely on the null.
  const char* GetToken() const;
  const char* GetName() const;
  const char* GetComment() const;
  /// A null pointer empties the text.
  void SetToken(const char* token);
  void SetName(const char* name);
  void SetComment(const char* comment);

  /// POSC (EPSG) code; 0 means none.  Not checked.
  int GetPOSCNumber() const;
  void SetPOSCNumber(int posc);

  double GetMajorRadius() const;
  /// The major radius itself when the flattening is exactly 0, else (1 - f) a.
  double GetMinorRadius() const;
  /// The flattening f itself, not its inverse.
  double GetFlattening() const;

  /// Stores a radius above 0.  Everything else, NaN too, raises 1032 "Ellipsoid radius must be greater than
  /// zero." and keeps the old value.
  void SetMajorRadius(double radius);
  /// Stores a flattening of 0 or more; there is no upper bound here.  Everything else, NaN too, raises 1032
  /// with the deliberate wording "Ellipsoid radius must be positive." and keeps the old value.
  void SetFlattening(double flattening);

  /// True when the major radius is 0 or less.
  bool IsUnknown() const;

  /// Never raises.  The first failure wins: "Ellipsoid radius must be positive." (radius <= 0), "Ellipsoid
  /// flattening must not be negative." (< 0), "Ellipsoid flattening must be less than one." (>= 1).  NaN
  /// passes. `message` is written on failure only.
  bool CheckParameters() const;
  bool CheckParameters(std::string& message) const;

  /// Compares the two dimensions only; null gives false.  Exact equality always passes.  When tolerant, the
  /// radii may differ by less than a millionth of this object's radius, and the flattenings by less than this
  /// object's whole flattening (deliberate: no divisor, so 0 never matches anything else).
  bool CompareParameters(const EllipsoidDef* other, bool tolerant) const;

  /// Appends the block "Ellipsoid": Token, Name, Comment (s, when not empty), POSC (d), Radius and Flat (f).
  void EncodeToText(std::string& out) const;
  /// Reads the block that starts at *position (0 when null) and leaves *position behind its end.  Items that
  /// are absent keep their values; nothing is flushed and no dimension is checked.  A block that cannot be
  /// read raises 1026 "Corrupt data encountered in encoded ellipsoid data." and leaves *position as it was.
  void DecodeFromText(const std::string& text, size_t* position);

  void DebugDump(std::string& out, size_t indent) const;

 private:
  friend struct internal::BlockAccess;
  friend struct internal::DatumEntry;
  friend struct internal::EllipsoidEntry;

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d);
  void DecodeBlock(const std::string& text, size_t* at);

  std::string m_Token;
  std::string m_Name;
  int m_POSC = 0;
  std::string m_Comment;
  double m_Radius = 0.0;
  double m_Flattening = 0.0;
};

}  // namespace orv
