// Catalogue.h: the known systems, datums and ellipsoids of the command line.
#pragma once

#include <string>

#include "orv/convert/KnownSearch.h"

namespace orv {
class CSDef;
class DatumDef;
class EllipsoidDef;
}  // namespace orv

namespace orv::tool {

/// Loads the seven configuration files, found by the configuration search, into the library's known lists;
/// once in a process.  A file that is missing or does not load raises shr::Exception.
void LoadCatalogue();

/// The known system, datum or ellipsoid that a text names, see ORVFindKnown.  An unknown one raises UsageError
/// with the nearest names.  All need LoadCatalogue.
const CSDef& KnownSystem(const std::string& text);
const DatumDef& KnownDatum(const std::string& text);
const EllipsoidDef& KnownEllipsoid(const std::string& text);

/// What has to be told with values of the shipped catalogue; "" for entries that are not from it.
std::string NoticeFor(const std::string& token);

/// What --version tells: the program, the catalogue that the configuration search finds with the data set it was
/// made from, and the notice that goes with it.  Reads no more than the comment at the beginning of system.ocf.
std::string VersionText();

}  // namespace orv::tool
