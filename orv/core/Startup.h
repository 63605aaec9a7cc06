// Startup.h: start-up and shut-down of the library.  See tables/, datum/ and system/ for the six known lists
// that they fill and empty.
#pragma once

#include <string>

#include "orv/core/Export.h"

namespace orv {

/// Starts the library, counted: only the first call, and the first one behind a complete shut-down, does
/// anything but count.
///
/// It sets the configuration path when `configPath` is not null ("" clears it), and then loads as
/// ORVLoadAllConfigs does; whether that succeeded is told by ORVActive, not by a result.
///
/// Deliberate: the call counts before it loads, and a load that raises does not take that back.  Who catches the
/// failure calls ORVShutdown and starts anew, or ORVLoadAllConfigs.
///
/// @param bThrowIfFileMissing  governs missing files only: whatever is wrong within a file that is there raises
///                             in any case.
ORV_API void ORVInitialize(const char* configPath, bool bThrowIfFileMissing);

/// Counts down; at 0 empties the known lists: systems, datums, ellipsoids, angular units, linear units,
/// meridians.  Loaded grids are released; the next conversion that needs them loads them again.
///
/// Deliberate: a surplus call empties them again and leaves the count at 0; ORVActive, the configuration path,
/// the two switches and the error state stay as they are.
ORV_API void ORVShutdown();

/// Calls of ORVInitialize that no ORVShutdown has matched yet.
ORV_API unsigned int ORVReferenceCount();

/// Whether the last full load succeeded.  Deliberate: stays true when the lists have been emptied.
ORV_API bool ORVActive();

/// Reads the settings file "orvmisc.ocf", when there is one, and loads, in this order, "meridian.ocf",
/// "angularunit.ocf", "linearunit.ocf", "ellipsoid.ocf", "datum.ocf" and "system.ocf" into the known lists;
/// each is found by ORVFindConfigFile.  When all of them loaded it adds to the known systems, in list order,
/// one geographic system for each known datum whose flags have bit 0 set: token "GEOGCS_" and the datum's
/// token, name "Geographic (lat/lon)|" and the datum's name, POSC number 2000 less than the datum's when that
/// lies in 6000 to 6998 (6999 not, deliberately), else 0.
///
/// False when a file is missing or its load failed; the other files are loaded nevertheless, and no geographic
/// systems are made.  A list whose file is missing keeps what it held; every other one is emptied first, so
/// that a second load replaces the first.  Neither the count of starts nor the configuration path changes.
///
/// Raised: 1028 "Can't find configuration file '%s'" (unit "Globals") for the first missing file when
/// `bThrowIfFileMissing` is set, and whatever Load and Add of the lists raise, those of the geographic systems
/// included: a system file that holds such a token or name already is refused with 1032.  What was loaded
/// before a failure stays; ORVActive is then false.
ORV_API bool ORVLoadAllConfigs(bool bThrowIfFileMissing);

/// Replaces the text by a report of how long the last loads took, in seconds with three decimals.
ORV_API void ORVDumpBenchmarks(std::string& text);

/// Sets two switches that the settings file may set as well.  They are kept and have no effect: what they ask
/// for is not available here.
ORV_API void ORVEnableCSMIFace(bool forProjection, bool forDatumConversion);

/// Hears trace lines: whole lines, each with its line feed, valid during the call.
using ORVTraceCallback = void (*)(const char* line, void* context);
/// Sets who hears trace lines; null, as at the beginning, for nobody.  `context` is handed on as it is.
ORV_API void ORVSetTraceCallback(ORVTraceCallback callback, void* context);

}  // namespace orv
