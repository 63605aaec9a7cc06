// TextBlock.h: a block of whole lines: read, converted elsewhere, and written.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "orv/shared/Vec2d.h"
#include "tools/orv/ByteBuffer.h"
#include "tools/orv/TextForm.h"

namespace orv::tool {

/// What can be wrong with a line.
enum class BadLine : uint8_t {
  NoNumber,
  NoAngle,
  OtherAxis,
  BeyondPole,
  EmptyCoordinate,
  FewFields,
  OpenQuote
};
constexpr size_t kBadLineKinds = 7;
/// For reports: "not a number" ...
const char* BadLineName(BadLine kind);

/// A line with coordinates, or one that should have them.  Places count from the block's first byte.
struct TextRow {
  uint32_t begin;
  uint32_t textEnd;  ///< where the line's end begins
  uint32_t end;      ///< behind the line's end
  uint32_t firstAt;  ///< the field of the first coordinate, quotes included; at textEnd when there is none
  uint32_t firstSize;
  uint32_t secondAt;
  uint32_t secondSize;
  uint32_t missing;  ///< fields that the line lacks up to the second coordinate
  uint32_t line;     ///< from 0, in the block
  int32_t point;     ///< index of its point, or -1 - index of its problem
};

struct TextProblem {
  BadLine kind;
  std::string text;
  shr::Vec2d point;  ///< what was read, when it is BeyondPole
};

/// Lines and what is made of them.  Vectors and buffers keep their memory when they are cleared.
struct TextBlock {
  ByteBuffer input;
  TextForm::Start start{0, 0};
  size_t lines = 0;  ///< all of them
  std::vector<TextRow> rows;
  std::vector<shr::Vec2d> points;
  std::vector<TextProblem> problems;
  ByteBuffer output;
};

/// Fills lines, rows, points and problems from the input behind start.data.
///
/// An empty line is no row.  (A row of empty fields between tabs is one.)
void ReadRows(const TextForm& form, TextBlock& block);

/// Fills the output: all lines, with their coordinates replaced by the block's points, fixed point with the form's
/// decimals.  A row without a point, and one whose point is NaN, has empty coordinates ("" between blanks, so that the
/// fields can still be told apart); fields that the line lacks are added.  All else is written as it was read.
void WriteRows(const TextForm& form, TextBlock& block);

}  // namespace orv::tool
