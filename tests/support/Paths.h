// Paths.h: where the tests find their files.  Kept out of the compilers' command lines, so that a compiler cache
// serves every checkout.
#pragma once

#include <string>

namespace orv::test {

/// The repository.
std::string SourceFolder();
/// tests/data.
std::string DataFolder();
/// The folder of the shipped catalogue.
std::string CatalogueFolder();
/// The built command line tool; "" when there is none.
std::string ToolPath();
/// The folder in which the build puts manual pages and completions; "" when there is none.
std::string ShareFolder();

}  // namespace orv::test
