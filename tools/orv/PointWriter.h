// PointWriter.h: converted points written in the form in which they came.
#pragma once

#include <string>

#include "tools/orv/PointReader.h"
#include "tools/orv/TextLayout.h"

namespace orv::tool {

/// Appends the block's lines with their coordinates replaced by the converted ones, fixed point with that
/// many decimals.  A point that is lost, and a bad row, have empty coordinates ("" between blanks, so that
/// the fields can still be told apart); fields that the line lacks are added.  All else is written as it was
/// read.
void AppendText(std::string& out, const PointBlock& block, Separator separator, Columns columns,
                int decimals);

/// Appends the block's points as pairs of 64-bit floating-point numbers, little-endian; lost ones as they
/// are, NaN.
void AppendBinary(std::string& out, const PointBlock& block);

}  // namespace orv::tool
