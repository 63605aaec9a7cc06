// Identify.h: which known system a definition is.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orv/core/Export.h"

namespace orv {

class CSDef;

/// One thing in which a known system differs from the one asked about.
struct SystemDifference {
  std::string what;   ///< long name of the parameter, or "Datum", "Datum Parameters", "Warp"
  std::string asked;  ///< the value asked about; "none" when it has none
  std::string known;  ///< that of the known system
};

/// A known system beside the one asked about.
struct SystemMatch {
  enum Kind {
    Equal,     ///< CSDef::Compare finds no difference
    Alike,     ///< written otherwise, but places points within kAlikeDistance
    Different  ///< places points elsewhere
  };
  int position = 0;  ///< in ORVKnownSystemsList
  Kind kind = Different;
  /// Largest distance in metres between the places of one point in both projections, over the sample; NaN
  /// when it was not measured.
  double distance = 0.0;
  std::vector<SystemDifference> differences;  ///< in the order of the parameters; of Equal ones none
};

/// Metres below which two projections place points alike.
constexpr double kAlikeDistance = 1e-3;

/// The known systems that place points as `system` does, or else those that come nearest.
///
/// Equal ones come first, the best of them in front (see CSList::FindSystem with firstMatch false), the others
/// in list order; then those that are Alike, nearest first.  With none of either: Different ones of the same
/// type, those that differ in the fewest and smallest things first.
///
/// Projections are measured on nine points around the centre of the projection asked about, two and a half
/// degrees to each side; a point that only one of both can place makes them Different.  Datums are compared
/// by DatumDef::CompareParameters; two of method Unknown, for which it finds no difference, also by number or else by name
/// and ellipsoid.  Warps take part; names, tokens and comments do not.
///
/// @param limit  at most so many; 0 for all that are Equal or Alike, and for 3 Different ones.
ORV_API std::vector<SystemMatch> ORVIdentifySystem(const CSDef& system, size_t limit);

}  // namespace orv
