// LocateFile.h: the last resort of the configuration file search.
#pragma once

#include <string>

#include "orv/core/Export.h"

namespace shr {

/// Looks for an installed data file by its name.  Folders, in this order:
///   1. those of the environment variable ORV_CONFIG_PATH, separated like PATH (":" on POSIX, ";" on
///   Windows);
///   2. "../share/orvcore" beside the folder of the library's module file;
///   3. "share/orvcore" under the prefix that the library was installed to.
///
/// A candidate that holds backslashes is tried as it stands and then with them turned into "/".  It counts
/// when it is a regular file that opens for reading.  The found path goes to `path`, which is left empty when
/// there is none.  A null or empty name gives false and leaves `path` as it was.
ORV_API bool LocateFile(const char* name, std::string& path);

}  // namespace shr
