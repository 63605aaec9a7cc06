#include "tools/orv/Conversion.h"

#include <cmath>
#include <limits>

namespace orv::tool {

namespace {

void MarkersToNaN(shr::Vec2d* points, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (points[i].x != std::numeric_limits<double>::max()) continue;
    points[i].x = points[i].y = std::numeric_limits<double>::quiet_NaN();
  }
}

}  // namespace

bool IsLost(const shr::Vec2d& point) { return std::isnan(point.x) || std::isnan(point.y); }

void Conversion::Convert(shr::Vec2d* points, size_t count) const {
  m_Conversion.Convert(points, count);
  MarkersToNaN(points, count);
}

void Conversion::Convert(shr::Vec2d* points, size_t count, ConversionReport& report) const {
  m_Conversion.Convert(points, count, report);
  MarkersToNaN(points, count);
}

}  // namespace orv::tool
