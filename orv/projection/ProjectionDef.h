// ProjectionDef.h: the definition of one map projection, and the vocabulary of projections.
#pragma once

#include <cstddef>
#include <string>

#include "orv/core/DataType.h"
#include "orv/core/Export.h"
#include "orv/projection/ProjectionParameters.h"

namespace orv {

namespace internal {
struct BlockAccess;
struct SystemEntry;
}  // namespace internal

/// A map projection: one ProjectionParameters block with its vocabulary, checks and texts.  A copyable value.
///
/// Angles are decimal degrees; xOrg and yOrg have the projected unit (metres, unless the caller's system says
/// otherwise).
///
/// UTM keeps its false origin itself: xOrg is 500000.0, yOrg is 10000000.0 when bSouth is set and else 0.0.
/// The rule runs after SetMethod, SetDefaultParameters, SetParameters, a successful decode, and after Method,
/// xOrg, yOrg or bSouth is set, so that a caller's own values are always overwritten (deliberate).  It does
/// not run on copying.
///
/// Failures carry the unit "ProjectionDef".  Those named "bad parameter" are 1032 "Bad parameter to function
/// call" (no full stop) and leave the block as it was.
class ORV_API ProjectionDef {
 public:
  // ---- vocabulary ----------------------------------------------------------------------------------------

  /// Six bits that the library publishes and never tests; 0 for an unknown number.
  static unsigned int Flags(ProjectionMethod method);
  /// The long name; an unknown number raises 1032 "Bad parameter to function call." (with a full stop).
  static const char* MethodToName(ProjectionMethod method);
  /// The method with that long or short name, without regard to case; ProjectionMethodUnknown when there is
  /// none.
  static ProjectionMethod NameToMethod(const char* name);
  /// Deliberate: ProjectionParameterIDNoWrap has no row in the table of names, so its type is none, it has no
  /// names and no name finds it, yet it can be set, got and decoded.
  static ORVDataTypeID ParameterDataType(ProjectionParameterID id);
  /// The parameter with that long or short name, without regard to case; ProjectionParameterIDNone when there
  /// is none.
  static ProjectionParameterID NameToParameter(const char* name);
  /// "Lon0", "bSouth" ...; null for a number without a row.
  static const char* ParameterShortName(ProjectionParameterID id);
  /// "Central Longitude" ...; null for a number without a row.
  static const char* ParameterName(ProjectionParameterID id);
  /// The same into a string; a number without a row raises the bad parameter failure after emptying it.
  static void ParameterName(ProjectionParameterID id, std::string& name);
  /// Parameters that a method has, in the table's own order.  Unknown and Other have none.
  static bool UsesParameter(ProjectionMethod method, ProjectionParameterID id);
  static ProjectionParameterID EnumParameter(ProjectionMethod method, size_t index);  ///< none past the end
  static size_t NumParameters(ProjectionMethod method);

  // ---- the definition ------------------------------------------------------------------------------------

  /// Method Unknown; all values as ProjectionParameters constructs them.
  ProjectionDef();
  /// The same and then SetDefaultParameters(method).
  explicit ProjectionDef(ProjectionMethod method);
  /// The same as SetParameters(&params).
  explicit ProjectionDef(const ProjectionParameters& params);

  /// Back to the default-constructed state.
  void Flush();

  ProjectionMethod GetMethod() const;
  /// Stores the method and nothing else (but for UTM's false origin).  A number above 27 raises the bad
  /// parameter failure; a negative one is stored and fails CheckParameters.
  void SetMethod(ProjectionMethod method);

  bool UsesParameter(ProjectionParameterID id) const;
  ProjectionParameterID EnumParameter(size_t index) const;
  size_t NumParameters() const;

  /// The block itself, valid as long as this object.
  const ProjectionParameters* GetParameters() const;
  void GetParameters(ProjectionParameters& out) const;
  /// Null flushes.  A Scale of 0 becomes 1.0.
  void SetParameters(const ProjectionParameters* params);
  const EllipsoidDef* GetEllipsoid() const;

  /// True for a method outside 1 to 27, and for Other when the flag is set.
  bool IsUnknown(bool otherIsUnknown) const;

  /// SetMethod, then the method's customary values: origins, angles 0, flags false, Scale and K0 1.0, the
  /// dimensions of Clarke 1866, and what the method has beyond these.  Deliberate: Alpha keeps its value
  /// (except for Hotine), and so do the ellipsoid's texts and POSC number.
  void SetDefaultParameters(ProjectionMethod method);

  /// The first parameter that is out of range, with an explanation; ProjectionParameterIDNone and an empty
  /// text when the definition is valid.  Never raises.
  ///
  /// Unprojected and Other are always valid.  All other methods are tested on Scale, K0, false origin,
  /// longitudes, latitudes and the ellipsoid whether they use them or not, and on what is particular to the
  /// method.
  ProjectionParameterID CheckParameters(std::string& message) const;
  ProjectionParameterID CheckParameters() const;

  /// True when both describe the same projection: the same method, and alike in what it uses.
  ///
  /// @param which  when not null, receives the first differing parameter, or none.
  /// Ellipsoids are compared with the tolerance of EllipsoidDef::CompareParameters, which is measured on the
  /// first one, so that the comparison is not symmetric.  Angles, Scale and K0 may differ by 1e-9, false
  /// origins by a millionth of the larger one.  Lambert's two parallels may stand in either order.
  bool Compare(const ProjectionDef& other, ProjectionParameterID* which) const;
  static bool CompareParameters(const ProjectionParameters& a, const ProjectionParameters& b,
                                ProjectionParameterID* which);

  /// Appends the block "Projection": Method (s, the long name), the block "Ellipsoid", and what the method
  /// uses of Scale, xOrg, yOrg, Lon0 to Lat2, K0, bSouth, bUseAlpha, Alpha, bRotate, bUOffset in this order
  /// (f and b).  A method outside the table raises as MethodToName does.
  void EncodeToText(std::string& text) const;
  /// Reads the block that starts at *pos (0 when null) and leaves *pos behind its end.
  ///
  /// Items that are absent keep their values; an unknown method name stores Unknown; values are stored as
  /// they are, without the rules of the setters (a Scale of 0 stays 0), but UTM's false origin is set at the
  /// end.  Raised, all 1026, each behind "Corrupt projection data.  ": "Malformed header.", "BLOCKBEGIN
  /// missing.", "Not a projection block.", "Expected end of projection block.", "Unexpected end of encoded
  /// data."; the last stands alone when the text ends behind a nested block.  On failure *pos is as it was,
  /// and what has been read stays.
  void DecodeFromText(const std::string& text, size_t* pos);

  void DebugDump(std::string& text, size_t indentation) const;

  // ---- single parameters ---------------------------------------------------------------------------------

  // Forms that cannot carry a parameter raise the bad parameter failure.

  /// Every parameter but the ellipsoid.  Method takes the truncated number unchecked (beyond int, and NaN:
  /// the lowest int), Scale takes 1.0 for 0, a flag takes value != 0.
  void SetParameter(ProjectionParameterID id, double value);
  void SetParameter(ProjectionParameterID id, int value);
  /// Flags only.
  void SetParameter(ProjectionParameterID id, bool value);
  /// The ellipsoid only.
  void SetParameter(ProjectionParameterID id, const EllipsoidDef& value);

  /// Every parameter but the ellipsoid; a flag gives 1 or 0.  The result is 0 before a failure is raised.
  void GetParameter(ProjectionParameterID id, double& value) const;
  /// The same, truncated (beyond int, and NaN: the lowest int).
  void GetParameter(ProjectionParameterID id, int& value) const;
  /// Flags only; untouched on failure.
  void GetParameter(ProjectionParameterID id, bool& value) const;
  /// The ellipsoid only; untouched on failure.
  void GetParameter(ProjectionParameterID id, EllipsoidDef& value) const;
  double GetParameter(ProjectionParameterID id) const;

  // The same on a block.
  static void SetParameter(ProjectionParameters& p, ProjectionParameterID id, double value);
  static void SetParameter(ProjectionParameters& p, ProjectionParameterID id, int value);
  static void SetParameter(ProjectionParameters& p, ProjectionParameterID id, bool value);
  static void SetParameter(ProjectionParameters& p, ProjectionParameterID id, const EllipsoidDef& value);
  static void GetParameter(const ProjectionParameters& p, ProjectionParameterID id, double& value);
  static void GetParameter(const ProjectionParameters& p, ProjectionParameterID id, int& value);
  static void GetParameter(const ProjectionParameters& p, ProjectionParameterID id, bool& value);
  static void GetParameter(const ProjectionParameters& p, ProjectionParameterID id, EllipsoidDef& value);
  static double GetParameter(const ProjectionParameters& p, ProjectionParameterID id);

 private:
  friend struct internal::BlockAccess;
  friend struct internal::SystemEntry;

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d);
  void DecodeBlock(const std::string& text, size_t* at);

  ProjectionParameters m_Parameters;
};

}  // namespace orv
