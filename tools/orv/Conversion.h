// Conversion.h: the library's conversion, with NaN in place of the marker.
#pragma once

#include <cstddef>

#include "orv/convert/Conversion.h"
#include "orv/shared/Vec2d.h"

namespace orv::tool {

/// orv::Conversion, whose failures come out as they are.  Serves any number of threads at once.
class Conversion {
 public:
  Conversion(const CSDef& from, const CSDef& to) : m_Conversion(orv::Conversion::Create(from, to)) {}

  /// Converts in place.  A point without a result becomes NaN in both coordinates.
  void Convert(shr::Vec2d* points, size_t count) const;
  /// The same, and adds the points to the report.
  void Convert(shr::Vec2d* points, size_t count, ConversionReport& report) const;

  bool FromGeographic() const { return m_Conversion.FromGeographic(); }
  bool ToGeographic() const { return m_Conversion.ToGeographic(); }
  double FromAngleUnit() const { return m_Conversion.FromAngleUnit(); }
  double ToAngleUnit() const { return m_Conversion.ToAngleUnit(); }
  /// The largest latitude of the source, in its unit, when that is geographic.
  double Pole() const { return 90.0 / m_Conversion.FromAngleUnit(); }

 private:
  orv::Conversion m_Conversion;
};

/// Whether a result is no point: NaN in either coordinate.
bool IsLost(const shr::Vec2d& point);

}  // namespace orv::tool
