// GridTrace.h: which points the grid steps of a datum conversion leave where they are.
#pragma once

#include <cstddef>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumMethods.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

/// Follows points along the route of a DatumConverter, up to its last grid step.  The converter itself does not tell
/// which points no grid contains; this asks the same grids with the same numbers.
class GridTrace {
 public:
  /// Plans the route as DatumConverter::Initialize does, and raises what that raises.  Loads nothing.
  GridTrace(const DatumDef& from, const DatumDef& to);

  /// Whether there is a grid step at all; without one there is nothing to ask.
  bool HasGrids() const { return !m_Steps.empty(); }

  /// A grid step that cannot run for want of its grids.
  struct Missing {
    DatumMethod method = DatumMethodUnknown;
    const char* message = nullptr;  ///< the converter's; null when all steps can run
  };
  /// The first such step.  Grids are loaded when they are not yet.
  Missing FindMissing() const;

  /// Sets the flag of each point that a grid step meets outside all grids; flags of others stay.  Points with the
  /// marker are no points.  Grids are loaded when they are not yet; without grids nothing is flagged.
  ///
  /// @param points  longitude and latitude in degrees, as they come to the datum stage.
  /// @return whether any flag was set.
  bool FlagOutside(const shr::Vec2d* points, size_t count, unsigned char* flags) const;

 private:
  struct Step {
    DatumStep run;
    bool usesNadcon;
    bool usesNTv2;
  };
  std::vector<Step> m_Steps;  ///< up to the last one that uses grids
};

}  // namespace orv::internal
