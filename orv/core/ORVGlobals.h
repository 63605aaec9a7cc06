// ORVGlobals.h: the state of the library as a whole, and the search for configuration files.
#pragma once

#include <string>

#include "orv/core/Export.h"

namespace orv {

/// Sets the folder that is searched first for configuration files.  A null pointer or an empty text means
/// that no path is set.
ORV_API void ORVSetConfigPath(const char* path);

/// The folder as it was set; null when no path is set.  Valid until the next ORVSetConfigPath.
ORV_API const char* ORVGetConfigPath();

/// Finds a configuration file by its name.  Candidates, in this order; the first one that opens for reading
/// wins:
///   1. configuration path (when set) + separator (when the path does not end in one) + name;
///   2. the name as given, when it holds a separator itself;
///   3. folder of this library's module file + separator + name;
///   4. folder of the running executable + separator + name;
///   5. folder of the running executable + separator + "../Config/" + name;
///   6. shr::LocateFile.
/// The separator is "/" on POSIX; a backslash counts as one too wherever one is looked for, and a candidate
/// that holds backslashes is tried as it stands and then with them turned into "/".  Only regular files
/// count.
///
/// @param fileName  null or empty gives false and leaves `fullPath` as it was.
/// @param fullPath  receives the path that opened; emptied when none did.
ORV_API bool ORVFindConfigFile(const char* fileName, std::string& fullPath);

}  // namespace orv
