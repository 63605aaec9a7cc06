// Conversion.h: points from one system to another, through as many transformers as this needs.
#pragma once

#include <cstddef>
#include <vector>

#include "orv/shared/Vec2d.h"
#include "orv/system/CSTransformer.h"

namespace orv::tool {

/// Whether the system's points are longitudes and latitudes: georeferenced and not projected.
bool IsGeographic(const CSDef& system);

/// A conversion between two systems.
///
/// One CSTransformer, but for one case: two systems with equal projections on different datums, where it
/// would let the projections cancel and shift projected numbers, go through longitude and latitude on the
/// source's datum.
class Conversion {
 public:
  /// Raises shr::Exception when there is no way from one to the other.
  Conversion(const CSDef& from, const CSDef& to);

  /// Converts in place.  A point without a result becomes NaN in both coordinates.
  void Convert(shr::Vec2d* points, size_t count) const;

  bool FromGeographic() const { return m_bFromGeographic; }
  bool ToGeographic() const { return m_bToGeographic; }

 private:
  void Add(const CSDef& from, const CSDef& to);

  std::vector<CSTransformer> m_Stages;
  bool m_bFromGeographic;
  bool m_bToGeographic;
};

/// Whether a result is no point: NaN in either coordinate.
bool IsLost(const shr::Vec2d& point);

}  // namespace orv::tool
