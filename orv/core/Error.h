// Error.h: the last failure, and the codes of all failures.
//
// Every failure is recorded with its source unit, line, code and text, and then thrown as shr::Exception with
// the same values.  The record is kept for each thread by itself: a thread reads its own last failure.  No
// success clears it.
#pragma once

#include "orv/core/Export.h"

namespace orv {

/// What kind of failure a code stands for.  The numbers are persistent.
enum ORVErrorCode : int {
  ErrCorrupt = 1026,            ///< corrupt data or an impossible computation
  ErrWrongState = 1027,         ///< a call made in the wrong state
  ErrFileMissing = 1028,        ///< a configuration file is missing or does not open
  ErrSyntax = 1029,             ///< a syntax error inside a configuration file
  ErrWriteFailed = 1030,        ///< writing a configuration file failed
  ErrBadParameter = 1032,       ///< a bad argument, an invalid definition or a duplicate entry
  ErrNoRoute = 1033,            ///< no datum conversion route
  ErrDatumMethod = 1034,        ///< a datum conversion method failed
  ErrSerialized = 1035,         ///< serialized data is corrupt or of an unknown version
  ErrTypesDiffer = 1036,        ///< source and target system are of different types
  ErrSourceWarp = 1037,         ///< the source system's warp method is unknown
  ErrDestWarp = 1038,           ///< the target system's warp method is unknown
  ErrSourceProjection = 1039,   ///< the source system's projection method is unknown
  ErrDestProjection = 1040,     ///< the target system's projection method is unknown
  ErrNoSourceDatum = 1041,      ///< only the target system holds a datum
  ErrNoDestDatum = 1042,        ///< only the source system holds a datum
  ErrSourceDatumMethod = 1043,  ///< the source datum's conversion method is unknown
  ErrDestDatumMethod = 1044,    ///< the target datum's conversion method is unknown
  ErrExternalEngine = 2027      ///< an external engine was requested that is not available
};

/// The message of the last failure on this thread; "" when there was none, never null.
ORV_API const char* ORVGetErrorText();
/// The source unit that recorded it ("DatumList", "EncodeText" ...); "" when there was none, never null.
ORV_API const char* ORVGetErrorFile();
/// The source line that recorded it; 0 when there was none.
ORV_API int ORVGetErrorLine();
/// Its code, one of ORVErrorCode; 0 when there was none.
ORV_API int ORVGetErrorCode();

}  // namespace orv
