#include "orv/projection/internal/MapPlaces.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "orv/core/internal/Marker.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/shared/Exception.h"

namespace orv::internal {

namespace {

shr::Vec2d Middle(const ProjectionDef& projection) {
  const ProjectionParameters& p = *projection.GetParameters();
  const bool isHotine = p.method == ProjectionMethodHotine;
  if (p.method == ProjectionMethodObliqueMercator || (isHotine && !p.bUseAlpha)) {
    return {p.Lon1 + std::remainder(p.Lon2 - p.Lon1, 360.0) / 2.0, (p.Lat1 + p.Lat2) / 2.0};
  }
  if (isHotine) return {p.Lon1, p.Lat0};
  if (projection.UsesParameter(ProjectionParameterIDLat2)) return {p.Lon0, (p.Lat1 + p.Lat2) / 2.0};
  if (projection.UsesParameter(ProjectionParameterIDLat1)) return {p.Lon0, p.Lat1};
  return {p.Lon0, projection.UsesParameter(ProjectionParameterIDLat0) ? p.Lat0 : 0.0};
}

}  // namespace

MapPlaces::MapPlaces(const ProjectionDef& projection) : m_Scale(projection.GetParameters()->Scale) {
  const shr::Vec2d middle = Middle(projection);
  const double lat = std::isfinite(middle.y) ? std::clamp(middle.y, -85.0, 85.0) : 0.0;
  size_t n = 0;
  for (const double dLon : {-2.5, 0.3, 2.1}) {
    for (const double dLat : {-2.2, 0.4, 2.5}) m_Points[n++] = {middle.x + dLon, lat + dLat};
  }
  m_Places = Placed(projection, m_Points);
}

MapPlaces::Sample MapPlaces::Placed(const ProjectionDef& projection, Sample points) {
  try {
    Projector(projection).TransformForward(points.data(), points.size());
  } catch (const shr::Exception&) {  // it cannot be set up
    for (shr::Vec2d& point : points) Mark(point);
  }
  return points;
}

double MapPlaces::DistanceTo(const ProjectionDef& other) const {
  const Sample there = Placed(other, m_Points);
  double largest = std::numeric_limits<double>::quiet_NaN();
  for (size_t i = 0; i < there.size(); ++i) {
    const bool isLost = IsMarked(m_Places[i]);
    if (isLost != IsMarked(there[i])) return std::numeric_limits<double>::infinity();
    if (isLost) continue;
    const double distance = std::hypot(m_Places[i].x - there[i].x, m_Places[i].y - there[i].y) / m_Scale;
    if (!(distance <= largest)) largest = distance;
  }
  return largest;
}

}  // namespace orv::internal
