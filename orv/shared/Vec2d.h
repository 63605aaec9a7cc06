// Vec2d.h: the point of every interface.
#pragma once

namespace shr {

/// A point of two doubles, x then y.  Geographic points carry longitude in x and latitude in y, in decimal
/// degrees.  A coordinate equal to 1.7976931348623157e308, the largest finite double, is the unplottable
/// marker: the point has no value.
struct Vec2d {
  double x = 0.0;
  double y = 0.0;

  Vec2d() = default;
  Vec2d(double px, double py) : x(px), y(py) {}
};

}  // namespace shr
