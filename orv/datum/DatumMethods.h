// DatumMethods.h: one step of a datum conversion over a batch of points.
//
// Points are longitude and latitude in degrees, at height 0 on their ellipsoid.  A point with the unplottable
// marker in either coordinate is skipped by every method; a point whose result is not finite gets the marker
// in both.
#pragma once

#include <cstddef>
#include <variant>

#include "orv/datum/BursaWolf.h"
#include "orv/datum/DatumParameters.h"
#include "orv/datum/GridShift.h"
#include "orv/datum/Molodensky.h"
#include "orv/datum/Regression.h"
#include "orv/shared/Vec2d.h"

namespace orv::internal {

/// The constants of a Molodensky shift.  Inverse: from and to are exchanged, dx, dy, dz and pmShift negated.
Molodensky MolodenskyOf(const DatumParameters& p, double targetRadius, double targetFlattening, bool inverse);

/// The constants of a Bursa-Wolf similarity.  Inverse: from and to are exchanged, translations, rotations and
/// pmShift negated, the scale inverted.  Deliberate: that inverse is approximate, since the rotation still
/// comes before scale and translation.
BursaWolf BursaWolfOf(const DatumParameters& p, double targetRadius, double targetFlattening, bool inverse);

/// A step made ready: its method with constants computed once, or the reason why it cannot run.
class DatumStep {
 public:
  /// @param p       the method, run forward, or backward when its inverse flag is set (regression equations
  ///                know no backward and ignore the flag).
  /// @param target  the ellipsoid of p's target.
  /// @param grids   must outlive the step.
  DatumStep(const DatumParameters& p, const EllipsoidDef& target, GridShift& grids);

  bool UsesGrids() const {
    return std::holds_alternative<Nadcon>(m_Method) || std::holds_alternative<NTv2>(m_Method);
  }
  /// Loads the grids of a step that needs some.  Null when the step can run, else the text of the failure.
  const char* Prepare() const;
  /// Runs the step on interleaved longitudes and latitudes.  Null when done, else the text of the failure: never once
  /// Prepare has given null, for the library's own grids.  The points are then as far as the step got.
  const char* Run(double* xy, size_t count) const;
  const char* Run(shr::Vec2d* points, size_t count) const {
    return count > 0 ? Run(&points->x, count) : Prepare();
  }

 private:
  struct Nothing {};
  struct Failure {
    const char* text;
  };
  struct Nadcon {
    GridShift* grids;
    bool inverse;
  };
  struct NTv2 {
    GridShift* grids;
    bool inverse;
  };

  static const char* RunNTv2(const NTv2& step, shr::Vec2d* points, size_t count);

  std::variant<Nothing, Failure, Molodensky, BursaWolf, const Regression*, Nadcon, NTv2> m_Method;
};

}  // namespace orv::internal
