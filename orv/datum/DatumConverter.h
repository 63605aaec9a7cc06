// DatumConverter.h: positions from one datum to another, along a route of steps that it plans itself.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/datum/DatumDef.h"
#include "orv/shared/Vec2d.h"

namespace orv {

namespace internal {
class DatumStep;
}

/// Converts geographic positions (x longitude, y latitude, degrees) from a source to a destination datum.
///
/// A datum only knows the way to its target.  The converter plans a chain of steps through the known datums
/// (ORVKnownDatumsList): a step runs one datum's method forward (to its target) or backward.  NTV2 and MRE
/// never run backward.  The first route found, in a fixed order of trial, is taken; entries are tried in list
/// order.
///
/// Distinct converters may work on distinct threads as long as nobody changes the known lists.
///
/// Failures carry the unit "DatumConverter".
class ORV_API DatumConverter {
 public:
  /// Empty source, destination and route.
  DatumConverter();
  /// Sets both as the setters do.
  DatumConverter(const DatumDef* source, const DatumDef* dest);
  /// Datums and route are copied; the copy has met no unplottable point.
  DatumConverter(const DatumConverter& other);
  DatumConverter& operator=(const DatumConverter& other);
  ~DatumConverter();

  /// Empties that datum and the route, then copies the argument in; null leaves the datum empty.  A datum
  /// that fails its own check raises 1032 "Invalid datum parameters." and is not taken.
  void SetSourceDatum(const DatumDef* datum);
  void SetDestDatum(const DatumDef* datum);
  void GetSourceDatum(DatumDef& out) const;
  void GetDestDatum(DatumDef& out) const;

  /// Plans the route; every method is allowed.
  void Initialize();
  /// Plans the route with these methods only; an empty list allows all.  Deliberate: the list is not asked at
  /// every turn of the search, see internal/RoutePlanner.h.
  ///
  /// Raised: 1032 "Invalid conversion method in source datum", "Invalid conversion method in destination
  /// datum", "Invalid parameters in source datum", "Invalid parameters in destination datum"; 1026 "Master
  /// datum list has no datums with special datum code matching source datum's target code! ..." when no known
  /// datum is the target of one on the way; 1033 "No conversion possible between the specified datums.".  The
  /// route is then empty.
  void Initialize(const std::vector<DatumMethod>& allowed);

  /// Converts in place.  Plans first, with all methods, when there is no route, even for no points.
  ///
  /// A point with a NaN or infinite coordinate, before or behind the steps, becomes the unplottable marker in
  /// both; a point with the marker in either coordinate passes untouched.  Longitudes are taken modulo 360
  /// and latitudes folded into [-90, 90]; a longitude that was then brought into [-180, 180] by 360 goes back
  /// by 360 behind the steps, so 350 comes back near 350, but 370 near 10 (deliberate).
  ///
  /// Raised, all 1034, when a step cannot run: "Molodensky datum conversion failed.", "Bursa-Wolf datum
  /// conversion failed." (an ellipsoid of theirs has no radius), "Datum has invalid MRE special code.",
  /// "NADCON grid shift files missing or corrupt.", "NTV2 grid shift file not present.", "NTV2 grid shift
  /// file is incomplete or contains bad data (possibly corrupted during download?)", "NTV2 datum conversion
  /// failed.". Points then stay as far as the steps got: brought into range and not brought back.
  ///
  /// @param points  null counts as no points.
  void Convert(shr::Vec2d* points, size_t count);
  void Convert(std::vector<shr::Vec2d>& points);

  /// Whether the last Convert met or made an unplottable point.
  bool CheckUnplottableResult() const;

  /// Back to the default-constructed state.
  void Flush();
  void DebugDump(std::string& text, size_t indent) const;

 private:
  /// One datum's method, forward or backward as the inverse flag of the parameters says.
  struct Step {
    DatumParameters parameters;
    EllipsoidDef
        targetEllipsoid;  ///< of the known datum that is the parameters' target; empty when there is none
    std::shared_ptr<const internal::DatumStep> ready;  ///< what follows from both, shared by copies
  };

  void CopyAll(const DatumConverter& other);

  DatumDef m_Source;
  DatumDef m_Dest;
  std::vector<Step> m_Route;
  bool m_bHadUnplottables = false;
};

}  // namespace orv
