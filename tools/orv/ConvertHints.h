// ConvertHints.h: what a user may have meant, when a conversion went as nobody wants it to.
#pragma once

#include <string>
#include <vector>

#include "tools/orv/Conversion.h"
#include "tools/orv/ConvertTally.h"

namespace orv::tool {

struct HintQuestion {
  const CSDef& from;
  const Conversion& conversion;
  const ConvertTally& tally;
  std::string input;  ///< "standard input", or the name in quotes
  bool bLatFirst;
  bool bBinary;  ///< numbers are of points, not of lines
  bool bGeoJson;
};

/// Messages, none when all is well: no points at all; lines with too few fields; degrees in a projected system, metres in
/// a geographic one; coordinates exchanged; and each note that the conversion has made about placed points.
///
/// Each guess is made when it holds for more than half of what was lost (or all that was read).  Exchanged coordinates
/// are tried: the guess is made when most of the lost points, or of those far from the meridian, would then be well placed.
std::vector<std::string> Hints(const HintQuestion& question);

}  // namespace orv::tool
