// Globals.h: the one state object of the library.
//
// The error state and the floating-point fault flag belong to a thread each; everything else is one for the
// process and is changed by start-up, shut-down and the explicit setters only.
#pragma once

#include <cstdint>
#include <string>

namespace orv {

struct ErrorState {
  int code = 0;
  int line = 0;
  std::string file;
  std::string text;
};

struct ORVGlobals {
  bool throwOnError = true;  ///< nothing turns it off; only tests of the quiet branch do
  std::string configPath;    ///< empty: no path is set

  std::string nadconGridPath;               ///< folder of the NADCON grids; empty: the usual places
  std::string ntv2GridFile = "ntv2_0.gsb";  ///< name of the NTv2 file; empty: none is known

  bool csMapForDatumConversion = false;  ///< read and kept; has no effect
  bool csMapForProjection = false;       ///< read and kept; has no effect
  uint32_t ellipsoidLoadTime = 0;        ///< milliseconds, like the three below
  uint32_t datumLoadTime = 0;
  uint32_t systemsLoadTime = 0;
  uint32_t totalLoadTime = 0;
  uint32_t referenceCount = 0;  ///< ORVInitialize calls not yet matched by ORVShutdown
  bool active = false;          ///< the last full load succeeded

  void (*traceCallback)(const char* line, void* context) = nullptr;  ///< null: trace lines go nowhere
  void* traceContext = nullptr;
};

/// The state of the process.
ORVGlobals& Globals();
/// The last failure of this thread.
ErrorState& Errors();
/// Set when a floating-point trap was met by an engine on this thread.
bool& FpFault();

}  // namespace orv
