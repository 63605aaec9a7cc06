// Catalogue.h: the known ellipsoids and datums of the command line.
#pragma once

#include <string>

namespace orv {
class DatumDef;
class EllipsoidDef;
}  // namespace orv

namespace orv::tool {

/// Loads ellipsoid.ocf and datum.ocf, found by the configuration search, into the library's known lists; once
/// in a process.  A file that is missing or does not load raises shr::Exception.
void LoadCatalogue();

/// The known ellipsoid or datum with that token, name or "EPSG:" and code, without regard to case.  An
/// unknown one raises UsageError with the tokens that are known.  Both need LoadCatalogue.
const EllipsoidDef& KnownEllipsoid(const std::string& text);
const DatumDef& KnownDatum(const std::string& text);

}  // namespace orv::tool
