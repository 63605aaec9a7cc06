// Harness.h: what is measured, beside whom, and how.
//
// A case is one conversion that several sides do: this library, and peers that compute the same.  All sides of a case get
// the same places and are held against each other before anything is timed.  Then come rounds: in each of them every side
// (this library once with each instruction set) converts the same points, in a random order, so that what a shared machine
// does meanwhile hits all alike; medians of the rounds count.  Input is copied into place outside the time taken.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "orv/shared/Vec2d.h"

namespace orv::bench {

inline constexpr double kDegree = 3.141592653589793 / 180.0;

using Points = std::vector<shr::Vec2d>;

/// Converts points in place; each copy made by Side::make may serve another thread.
using Work = std::function<void(shr::Vec2d* points, size_t count)>;
struct Both {
  Work forward;
  Work inverse;  ///< empty when there is none
};

struct Side {
  std::string who;             ///< "orv", "proj" or "geographiclib"
  std::function<Both()> make;  ///< new objects at each call, for one thread
  double inputUnit = 1.0;      ///< the case's points times this are what forward takes ...
  double outputUnit = 1.0;     ///< ... and what forward gives, divided by this, is in the case's unit
  std::function<shr::Vec2d(const shr::Vec2d&)>
      reading;               ///< of its results in ours, to compare; null: the same
  bool takesBatches = true;  ///< false: a loop over points, whose speed does not depend on the batch
};

/// The goals that a case belongs to; scripts/bench has their numbers.
enum class Goal { None, Closed, Iterates, Shift, Grid, System };
const char* NameOf(Goal goal);

struct Case {
  std::string subject;                       ///< "Mercator"
  Goal goal = Goal::None;                    ///< of the forward direction
  Goal inverseGoal = Goal::None;             ///< of the inverse
  std::function<Points(size_t count)> draw;  ///< points for the forward direction; no count is too small
  std::vector<Side> sides;                   ///< this library first
  double apart = 0.0;                        ///< how far results may lie apart, in the unit of the result
  double backApart = 1e-6;                   ///< how far from where it started the way back may end
  size_t largest = 1000000;                  ///< the largest batch that is worth its time
  bool huge = false;                         ///< also with 16 million points (forward)
  bool threads = false;                      ///< also on two threads (forward)
  bool isWhole = false;                      ///< a transformation of systems: its direction is "transform"
};

/// Work that is done once, or on something else than batches of points.
struct Once {
  std::string name;
  std::string unit;            ///< "microseconds", or what `units` counts for each microsecond
  double units = 0.0;          ///< 0: the time itself counts
  std::function<void()> work;  ///< fails by an exception
};

struct Options {
  int rounds = 5;
  std::string only;  ///< subjects that contain this; empty: all
  std::string out;   ///< the file of results, JSON
};

/// Runs every side of the case there and back on some hundred points; throws when a point gets no result, sides disagree
/// or the way back does not end where it started.
void Check(const Case& subject);

/// Measures and writes Options::out.  Progress goes to standard error.
void Measure(const std::vector<Case>& cases, const std::vector<Once>& once, const Options& options);

/// Random points in a box, always the same ones.
struct Box {
  double west, east, south, north;
};
Points RandomPoints(const Box& box, size_t count);

}  // namespace orv::bench
