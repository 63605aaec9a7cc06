// ConvertRun.h: the conversion of a whole file of points, text or binary.
#pragma once

#include <cstddef>

#include "tools/orv/Conversion.h"
#include "tools/orv/ConvertTally.h"
#include "tools/orv/Descriptor.h"
#include "tools/orv/TextForm.h"

namespace orv::tool {

/// Reads lines of points, writes them to standard output and reports each that is lost, all in the order of the input.
///
/// The memory needed is bounded: some 2 MiB for each worker, or a few times the longest line.
/// @param workers  threads that convert; 1 works without any other thread.
void ConvertText(InputFile& input, TextForm& form, const Conversion& conversion, size_t workers,
                 ConvertTally& tally);

/// The same with pairs of 64-bit floating-point numbers, x then y (with latFirst, latitude then longitude on a geographic
/// side), little-endian.  Raises UsageError, when all whole points have been written, when the data does not end with one.
void ConvertBinary(InputFile& input, bool bLatFirst, const Conversion& conversion, size_t workers,
                   ConvertTally& tally);

/// The message about a point that the conversion has not placed.
extern const char* const kNoPlace;

}  // namespace orv::tool
