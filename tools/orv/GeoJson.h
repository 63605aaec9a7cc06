// GeoJson.h: the lines and polygons of a GeoJSON text.
#pragma once

#include <string>
#include <vector>

#include "orv/shared/Vec2d.h"

namespace orv::tool {

using Line = std::vector<shr::Vec2d>;

/// A geometry: lines, or polygons with their holes.  Points have neither.
struct GeoShape {
  std::vector<Line> lines;
  std::vector<std::vector<Line>> polygons;
};

/// A feature, or a geometry without one.
struct GeoFeature {
  GeoShape shape;
  std::string id;          ///< JSON text, or empty
  std::string properties;  ///< JSON text, or empty
};

/// Reads LineString, MultiLineString, Polygon, MultiPolygon, GeometryCollection, Feature and FeatureCollection;
/// Point and MultiPoint have no shape, and a third coordinate is left out.
///
/// @param name  of the file, for messages.
/// Raised: UsageError with what is wrong.
std::vector<GeoFeature> ReadGeoJson(const std::string& text, const std::string& name);

/// The simplest geometry that holds the shape, as GeoJSON; "null" for an empty one.  Rings are closed.
///
/// @param decimals  of the coordinates.
std::string WriteGeoGeometry(const GeoShape& shape, int decimals);
/// One feature as GeoJSON, without a line feed.
std::string WriteGeoFeature(const GeoFeature& feature, int decimals);

}  // namespace orv::tool
