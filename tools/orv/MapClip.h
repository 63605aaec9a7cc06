// MapClip.h: shapes in longitude and latitude, clipped to what a system's projection shows and projected.
#pragma once

#include <functional>
#include <vector>

#include "orv/projection/Projector.h"
#include "tools/orv/Conversion.h"
#include "tools/orv/GeoJson.h"

namespace orv::tool {

/// What has become of the lines and polygons.
struct ClipTally {
  size_t whole = 0;
  size_t clipped = 0;  ///< something is left, and something is cut off
  size_t split = 0;    ///< clipped, and left in more than one piece; counted in clipped as well
  size_t dropped = 0;  ///< nothing is left
  size_t lost = 0;     ///< points inside that have no place in the system; they are left out
};

/// Clips with the refined rim, within 0.01 degree of the true one, and projects.
///
/// Shapes lie on the system's own datum: there is no datum shift.
class MapClip {
 public:
  /// Raised: UsageError when the system has no projection, shr::Exception when it cannot be set up.
  explicit MapClip(const CSDef& system);

  /// The shape on the map; adds to the tally, one for each line and polygon.
  ///
  /// @param pOutlines  receives the visible outlines of the polygons, or null.  Edges along 180 degrees of
  ///                   longitude and at the poles, where files cut what lies on both sides, are no outline.
  GeoShape Clip(const GeoShape& shape, ClipTally& tally, std::vector<Line>* pOutlines);

  /// A polygon clipped and not projected: each piece with its holes.
  std::vector<std::vector<Line>> ClipPlain(const std::vector<Line>& polygon);

  /// Projects in place; leaves out the points that have no place, which are counted.
  void Project(Line& line, ClipTally& tally) const;

  /// Leaves only what lies within longitudes and latitudes, degrees; shapes a turn away are moved there.
  /// Outlines are the lines of the result.
  static GeoShape Within(const GeoShape& shape, double west, double south, double east, double north,
                         std::vector<Line>& outlines);

  const ProjectionDef& Projection() const { return m_Definition; }

 private:
  ProjectionDef m_Definition;
  Projector m_Projector;
  Conversion m_ToMap;
};

/// The ring or line without the edges that are seams.
std::vector<Line> SplitAtSeams(const Line& line,
                               const std::function<bool(const shr::Vec2d&, const shr::Vec2d&)>& isSeam);

}  // namespace orv::tool
