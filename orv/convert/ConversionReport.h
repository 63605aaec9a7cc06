// ConversionReport.h: what became of the points of a conversion.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "orv/core/Export.h"

namespace orv {

/// The stages of a conversion, in the order in which they work.
enum ConversionStage : int {
  ConversionStageInput = 0,             ///< the points as they come
  ConversionStageSourceProjection = 1,  ///< source projection, backward
  ConversionStageDatum = 2,
  ConversionStageDestProjection = 3,  ///< destination projection, forward
  ConversionStageDestWarp = 4
};

/// What is counted.  The events of a lost point exclude each other; a placed point may have several notes.
enum ConversionEvent : int {
  // The point is lost: it has become the marker in both coordinates.
  ConversionLostNoPoint = 0,           ///< it held the marker, a NaN or an infinity
  ConversionLostLatitude = 1,          ///< geographic input whose latitude is beyond 90 degrees
  ConversionLostSourceProjection = 2,  ///< the source projection has no place with these coordinates
  ConversionLostDatum = 3,             ///< the datum step gives no finite number
  ConversionLostDestArea = 4,          ///< outside the usable part of the destination projection
  ConversionLostDestProjection = 5,    ///< within it, but the destination projection gives no finite number
  ConversionLostDestWarp = 6,          ///< the destination warp gives no finite number

  // The point is placed, but its place deserves a doubt.
  ConversionNotedOutsideGrids = 7,           ///< a grid step left it unshifted, for want of a grid there
  ConversionNotedFarFromSourceMeridian = 8,  ///< see Conversion
  ConversionNotedFarFromDestMeridian = 9
};
inline constexpr int kConversionEvents = 10;

/// How often an event was met, and where first.
struct ConversionTally {
  size_t count = 0;
  size_t first = 0;  ///< index of the first such point; of no meaning while the count is 0
};

/// Counts over any number of points.  A copyable value.
///
/// Every point is either placed or lost, and lost for one reason: Placed() plus the counts of the first seven
/// events is Points().  The notes count placed points only.
class ORV_API ConversionReport {
 public:
  size_t Points() const { return m_Points; }
  size_t Placed() const { return m_Points - Lost(); }
  size_t Lost() const;
  /// Placed points with at least one note.
  size_t Doubtful() const { return m_Doubtful; }
  const ConversionTally& Tally(ConversionEvent event) const { return m_Tallies[static_cast<size_t>(event)]; }

  /// Whether the event loses the point.
  static bool IsLoss(ConversionEvent event) { return event < ConversionNotedOutsideGrids; }
  static ConversionStage StageOf(ConversionEvent event);
  /// "input", "source projection", "datum", "destination projection", "destination warp".
  static const char* StageName(ConversionStage stage);
  /// A word for programs, such as "outside-grids".
  static const char* EventName(ConversionEvent event);
  /// A sentence's end for people, such as "the point is outside all grids and was left unshifted".
  static const char* Reason(ConversionEvent event);

  /// Adds points that follow at once: one event for each point.
  void AddPoints(size_t count) { m_Points += count; }
  /// Counts an event of the point with that index.
  void Add(ConversionEvent event, size_t index);
  void AddDoubtful(size_t count) { m_Doubtful += count; }
  /// Adds the report of other points.
  ///
  /// @param offset  index that the other report's point 0 has in this one's numbering.
  void Merge(const ConversionReport& other, size_t offset);

  /// A line "1000 points, 990 placed, 10 lost", then one for each event that was met: the count, the stage, the
  /// reason and the index of the first one, counted from 1.
  std::string ToText() const;
  /// An object with "points", "placed", "lost", "doubtful" and "events": an array of objects with "event",
  /// "stage", "lost", "reason", "count" and "first", the index counted from 0.  Events that were not met are
  /// left out.
  std::string ToJson() const;

 private:
  size_t m_Points = 0;
  size_t m_Doubtful = 0;
  std::array<ConversionTally, kConversionEvents> m_Tallies = {};
};

}  // namespace orv
