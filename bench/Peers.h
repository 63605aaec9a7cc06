// Peers.h: the sides of other libraries.
#pragma once

#include <string>
#include <vector>

#include "bench/Harness.h"

namespace orv::bench {

/// PROJ's operation of that definition.  `angularIn`, `angularOut`: it takes or gives radians where the case has degrees.
///
/// Each object has a context of its own.  Points go through proj_trans_generic, a whole batch in one call.
Side ProjSide(const std::string& definition, bool angularIn, bool angularOut);
inline Side ProjProjection(const std::string& definition) { return ProjSide(definition, true, false); }
inline Side ProjShift(const std::string& definition) { return ProjSide(definition, true, true); }

/// GeographicLib's side of that subject (a case's name), on the case's parameters; none when it has none or the
/// benchmark is built without it.
std::vector<Side> GeographicLibSides(const std::string& subject);

/// "9.1.1"; "" when the benchmark is built without it.
std::string ProjVersion();
std::string GeographicLibVersion();

}  // namespace orv::bench
