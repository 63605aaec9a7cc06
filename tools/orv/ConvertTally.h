// ConvertTally.h: what has become of the points, for messages, the report and the exit status.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "orv/convert/ConversionReport.h"
#include "orv/shared/Vec2d.h"
#include "tools/orv/TextBlock.h"

namespace orv::tool {

/// How many points met one fate, and the first of them.
struct Fate {
  uint64_t count = 0;
  uint64_t first = 0;   ///< number of its line, or of the point in binary data, from 1; 0 when there is none
  std::string message;  ///< about the first

  void Add(uint64_t number, const std::string& text, uint64_t howMany = 1);
};

/// A point or line without a result.
struct LostPoint {
  uint32_t place;  ///< line or point, from 0, in the block
  bool bBad;  ///< a bad line, of this kind; else the conversion has not placed it, which BlockTally counts
  BadLine kind;
  bool bRead;  ///< whether the coordinates are known
  shr::Vec2d source;
  std::string message;
};

/// What has become of the points of one block.
struct BlockTally {
  uint64_t lines = 0;   ///< all lines; 0 for binary data
  uint64_t points = 0;  ///< lines with coordinates, or that should have them
  uint64_t cutOff =
      0;  ///< lost in the destination projection on purpose: parts of a geometry that was clipped
  std::vector<LostPoint> lost;
  ConversionReport report;  ///< of the points that were converted
  /// Where the first point with each event of the report stands, from 0, in the block.
  std::array<uint32_t, kConversionEvents> firstPlace{};
  uint64_t likeDegrees = 0;  ///< points read that could be longitude and latitude
  std::chrono::steady_clock::duration converting{};
};

/// What has become of all points.
struct ConvertTally {
  uint64_t lines = 0;
  uint64_t points = 0;
  uint64_t placed = 0;
  uint64_t cutOff = 0;                  ///< by clipping; neither placed nor lost
  uint64_t doubtful = 0;                ///< placed, but with one of the report's notes
  std::array<Fate, kBadLineKinds> bad;  ///< but for BeyondPole, which is the event ConversionLostLatitude
  std::array<Fate, kConversionEvents> events;
  uint64_t likeDegrees = 0;
  std::vector<shr::Vec2d> lostSample;  ///< the first thousand points that were read and have no result
  std::vector<shr::Vec2d> sample;      ///< the first thousand points that were converted, before that
  std::chrono::steady_clock::duration converting{};

  uint64_t Lost() const { return points - placed - cutOff; }
  /// Adds the block that follows.
  ///
  /// @param before  lines, or points of binary data, in front of it.
  /// @param sources  its points, as they were read.
  void Add(const BlockTally& block, const std::vector<shr::Vec2d>& sources, uint64_t before);
};

/// The report as a JSON object: from, to, lines (of text), points, placed, lost, doubtful, cutOff (where any are); and three arrays, unparsable,
/// unplaced and doubts, of objects with reason, count and first, which has line (or point) and message; those of the
/// latter two also have event and stage, in the words of ConversionReport.
std::string ReportAsJson(const ConvertTally& tally, const std::string& from, const std::string& to,
                         bool bBinary);

}  // namespace orv::tool
