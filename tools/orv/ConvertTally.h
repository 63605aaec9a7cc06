// ConvertTally.h: what has become of the points, for messages, the report and the exit status.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "orv/shared/Vec2d.h"
#include "tools/orv/TextBlock.h"

namespace orv::tool {

/// How many points met one fate, and the first of them.
struct Fate {
  uint64_t count = 0;
  uint64_t first = 0;  ///< number of its line, or of the point in binary data, from 1; 0 when there is none
  std::string what;    ///< the message about the first

  void Add(uint64_t number, const std::string& message);
};

/// A point or line without a result.
struct LostPoint {
  uint32_t line;  ///< from 0, in the block
  bool bBad;      ///< a bad line of this kind; else it was not placed
  BadLine kind;
  bool bRead;  ///< whether the coordinates are known
  shr::Vec2d source;
  std::string message;
};

struct ConvertTally {
  uint64_t lines = 0;   ///< all lines; 0 for binary data
  uint64_t points = 0;  ///< lines with coordinates, or that should have them
  uint64_t placed = 0;
  std::array<Fate, kBadLineKinds> bad;
  Fate unplaced;
  uint64_t likeDegrees = 0;            ///< points read that could be a longitude and a latitude in degrees
  std::vector<shr::Vec2d> lostSample;  ///< the first thousand points read that have no result
  std::chrono::steady_clock::duration converting{};

  uint64_t Bad() const;
  uint64_t Lost() const { return points - placed; }
  /// @param number  of the line or point, from 1.
  void Add(const LostPoint& lost, uint64_t number);
};

/// The report as JSON: the members of the tally by name, each fate with count, first and message.
std::string ReportAsJson(const ConvertTally& tally, const std::string& from, const std::string& to,
                         bool bBinary);

}  // namespace orv::tool
