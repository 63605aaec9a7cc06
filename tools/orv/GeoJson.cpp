#include "tools/orv/GeoJson.h"

#include <fmt/core.h>
#include <nlohmann/json.hpp>

#include "tools/orv/Command.h"
#include "tools/orv/JsonMembers.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

using Json = nlohmann::json;

[[noreturn]] void Fail(const std::string& name, const std::string& what) {
  throw UsageError(fmt::format("'{}': {}", name, what));
}

class Reader {
 public:
  explicit Reader(const std::string& name) : m_Name(name) {}

  void Object(const Json& object, std::vector<GeoFeature>& out) const {
    const std::string type = TypeOf(object);
    if (type == "FeatureCollection") {
      for (const Json& feature : List(object, "features")) Object(feature, out);
      return;
    }
    GeoFeature feature;
    if (type == "Feature") {
      if (object.contains("id")) feature.id = object["id"].dump();
      if (object.contains("properties")) feature.properties = object["properties"].dump();
      if (!object.contains("geometry")) Fail(m_Name, "a feature has no geometry");
      if (!object["geometry"].is_null()) Geometry(object["geometry"], feature.shape);
    } else {
      Geometry(object, feature.shape);
    }
    out.push_back(std::move(feature));
  }

 private:
  std::string TypeOf(const Json& object) const {
    if (!object.is_object() || !object.contains("type") || !object["type"].is_string()) {
      Fail(m_Name, "it holds something without a type, which GeoJSON objects have");
    }
    return object["type"].get<std::string>();
  }

  const Json& List(const Json& object, const char* key) const {
    if (!object.contains(key) || !object[key].is_array()) Fail(m_Name, fmt::format("{} are missing", key));
    return object[key];
  }

  void Geometry(const Json& geometry, GeoShape& shape) const {
    const std::string type = TypeOf(geometry);
    if (type == "GeometryCollection") {
      for (const Json& part : List(geometry, "geometries")) Geometry(part, shape);
    } else if (type == "LineString") {
      shape.lines.push_back(Points(List(geometry, "coordinates")));
    } else if (type == "MultiLineString") {
      for (const Json& line : List(geometry, "coordinates")) shape.lines.push_back(Points(line));
    } else if (type == "Polygon") {
      Polygon(List(geometry, "coordinates"), shape);
    } else if (type == "MultiPolygon") {
      for (const Json& polygon : List(geometry, "coordinates")) Polygon(polygon, shape);
    } else if (type != "Point" && type != "MultiPoint") {
      Fail(m_Name, fmt::format("'{}' is no type of GeoJSON", type));
    }
  }

  void Polygon(const Json& rings, GeoShape& shape) const {
    std::vector<Line> polygon;
    for (const Json& ring : rings) polygon.push_back(Points(ring));
    if (!polygon.empty()) shape.polygons.push_back(std::move(polygon));
  }

  Line Points(const Json& list) const {
    Line points;
    for (const Json& position : list) {
      if (!position.is_array() || position.size() < 2 || !position[0].is_number() ||
          !position[1].is_number()) {
        Fail(m_Name, "a position is not a list of two numbers");
      }
      points.emplace_back(position[0].get<double>(), position[1].get<double>());
    }
    if (points.size() < 2) Fail(m_Name, "a line or ring has fewer than two positions");
    return points;
  }

  const std::string& m_Name;
};

void AppendLine(std::string& text, const Line& line, bool bClose, int decimals) {
  text += '[';
  const bool bOpen = bClose && (line.front().x != line.back().x || line.front().y != line.back().y);
  for (size_t i = 0; i < line.size() + (bOpen ? 1 : 0); ++i) {
    const shr::Vec2d& p = line[i % line.size()];
    text += i == 0 ? "[" : ",[";
    AppendFixed(text, p.x, decimals);
    text += ',';
    AppendFixed(text, p.y, decimals);
    text += ']';
  }
  text += ']';
}

void AppendPolygon(std::string& text, const std::vector<Line>& rings, int decimals) {
  for (size_t i = 0; i < rings.size(); ++i) {
    text += i == 0 ? "[" : ",";
    AppendLine(text, rings[i], true, decimals);
  }
  text += ']';
}

// A list of things as `name`, a single one as `name` without its "Multi".
template <class List, class Append>
std::string Many(const char* name, const List& list, Append append) {
  std::string text;
  for (const auto& one : list) {
    if (!text.empty()) text += ',';
    append(text, one);
  }
  if (list.size() != 1) text = '[' + text + ']';
  return fmt::format(R"({{"type":"{}","coordinates":{}}})", list.size() == 1 ? name + 5 : name, text);
}

}  // namespace

std::vector<GeoFeature> ReadGeoJson(const std::string& text, const std::string& name) {
  std::vector<GeoFeature> features;
  Reader(name).Object(Json::parse(CheckedJson(text, name)), features);
  return features;
}

std::string WriteGeoGeometry(const GeoShape& shape, int decimals) {
  std::string lines, polygons;
  if (!shape.lines.empty()) {
    lines = Many("MultiLineString", shape.lines,
                 [&](std::string& text, const Line& line) { AppendLine(text, line, false, decimals); });
  }
  if (!shape.polygons.empty()) {
    polygons = Many("MultiPolygon", shape.polygons,
                    [&](std::string& text, const auto& rings) { AppendPolygon(text, rings, decimals); });
  }
  std::string geometry = lines + polygons;
  if (!lines.empty() && !polygons.empty()) {
    geometry = fmt::format(R"({{"type":"GeometryCollection","geometries":[{},{}]}})", lines, polygons);
  }
  if (geometry.empty()) geometry = "null";
  return geometry;
}

std::string WriteGeoFeature(const GeoFeature& feature, int decimals) {
  return fmt::format(R"({{"type":"Feature",{}"properties":{},"geometry":{}}})",
                     feature.id.empty() ? "" : "\"id\":" + feature.id + ",",
                     feature.properties.empty() ? "null" : feature.properties,
                     WriteGeoGeometry(feature.shape, decimals));
}

}  // namespace orv::tool
