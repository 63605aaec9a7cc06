// ProjectionTables.h: the tables that make a projection method: its names, its parameters, its defaults and
// its checks.
//
// A new method is new rows here, not new code.  Encoding, decoding, comparison, checks, dumps, getters and
// setters walk them.
#pragma once

#include <cstddef>

#include "orv/core/DataType.h"
#include "orv/core/internal/NameTable.h"
#include "orv/projection/ProjectionParameters.h"

namespace orv::internal {

/// A method's names and its six published bits, in the order in which names are looked up.
struct ProjectionMethodRow : NameRow<ProjectionMethod> {  // name is the long one, other the short one
  unsigned int flags;
};
inline constexpr size_t kProjectionMethodCount = 28;
extern const ProjectionMethodRow kProjectionMethods[kProjectionMethodCount];

/// A parameter's names and its type, in the order in which names are looked up.  Deliberate: NoWrap has no
/// row.
struct ProjectionParameterRow : NameRow<ProjectionParameterID> {  // name is the short one, other the long one
  ORVDataTypeID type;
};
inline constexpr size_t kProjectionParameterCount = 17;
extern const ProjectionParameterRow kProjectionParameters[kProjectionParameterCount];

/// The parameters of a method in the order in which they are enumerated, ended by none.
struct ProjectionUse {
  ProjectionMethod method;
  ProjectionParameterID uses[15];
};
inline constexpr size_t kProjectionUseCount = 26;
extern const ProjectionUse kProjectionUses[kProjectionUseCount];

/// A method's row, or null for one without parameters of its own.
const ProjectionUse* UseOf(ProjectionMethod method);
bool MethodUses(ProjectionMethod method, ProjectionParameterID id);

/// Whether a parameter's values are degrees.
constexpr bool IsAngle(ProjectionParameterID id) {
  return (id >= ProjectionParameterIDLon0 && id <= ProjectionParameterIDLat2) ||
         id == ProjectionParameterIDAlpha;
}

/// How two definitions' values of a number are told apart.
enum class Apart {
  Beyond,    ///< differ by more than 1e-9; NaN equals everything
  Within,    ///< do not lie within 1e-9 of each other; NaN differs from everything
  Relative,  ///< differ by more than a millionth of the larger one; NaN equals everything
  Flag       ///< a bool: differ at all
};

/// A number or a flag of the block: all parameters but the method and the ellipsoid, in the order of their
/// numbers.
struct ProjectionField {
  ProjectionParameterID number;
  const char* item;                       ///< its name in encoded text
  const char* label;                      ///< its line of a dump, up to the value
  double ProjectionParameters::*pNumber;  ///< null for a flag
  bool ProjectionParameters::*pFlag;      ///< null for a number
  Apart apart;
};
inline constexpr size_t kProjectionFieldCount = 16;
extern const ProjectionField kProjectionFields[kProjectionFieldCount];

/// A parameter's field, or null.
const ProjectionField* FieldOf(ProjectionParameterID id);

/// A customary value that a method has beyond what all methods have.
struct ProjectionDefault {
  ProjectionMethod method;
  ProjectionParameterID id;
  double value;  ///< 1.0 for a flag
};
inline constexpr size_t kProjectionDefaultCount = 27;
extern const ProjectionDefault kProjectionDefaults[kProjectionDefaultCount];

/// What makes a definition invalid, in the order of the tests; the first that applies is reported.
struct ProjectionCheck {
  ProjectionMethod method;  ///< Unknown: the test holds for all methods
  bool (*bBad)(const ProjectionParameters& p);
  const char* text;
  ProjectionParameterID which;
};
inline constexpr size_t kProjectionCheckCount = 22;
extern const ProjectionCheck kProjectionChecks[kProjectionCheckCount];

}  // namespace orv::internal
