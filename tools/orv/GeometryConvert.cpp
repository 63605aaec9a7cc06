#include "tools/orv/GeometryConvert.h"

#include <fmt/core.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <vector>

#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

using Json = nlohmann::ordered_json;

const ORVDef* Projected(const CSDef& system) {
  const ORVDef* const def = system.Type() == CSTypeORV ? static_cast<const ORVDef*>(&system) : nullptr;
  return def && def->HasProjection(false, true) ? def : nullptr;
}

/// How deep the positions of a type lie in its coordinates: 0 for a point; -1 for what has none.
int DepthOf(std::string_view type) {
  if (type == "Point") return 0;
  if (type == "MultiPoint" || type == "LineString") return 1;
  if (type == "MultiLineString" || type == "Polygon") return 2;
  return type == "MultiPolygon" ? 3 : -1;
}

}  // namespace

class GeometryConverter::Impl {
 public:
  Impl(const std::string& name, const CSDef& from, const CSDef& to, const GeoJsonOptions& options,
       ConvertTally& tally, ClipTally& clipped)
      : m_Name(name), m_Options(options), m_Direct(from, to), m_Tally(tally), m_Clipped(clipped) {
    const ORVDef* const target = Projected(to);
    if (!options.bClip || !target) return;
    const ProjectionDef unprojected(ProjectionMethodUnprojected);
    m_ToMapDatum.emplace(from, ORVDef(target->GetDatum(), &unprojected, nullptr));
    m_pClip = std::make_unique<MapClip>(to);
  }

  std::string Convert(std::string_view text) {
    const std::string converted = Geometry(Json::parse(text));
    return converted.empty() ? "null" : converted;
  }

  uint64_t LostHere() {
    const uint64_t lost = m_Lost;
    m_Lost = 0;
    return lost;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw UsageError(fmt::format("'{}': {}", m_Name, what));
  }

  std::string Geometry(const Json& geometry) {
    if (!geometry.is_object() || !geometry.contains("type") || !geometry["type"].is_string()) {
      Fail("it holds something without a type, which GeoJSON objects have");
    }
    const std::string type = geometry["type"];
    if (type == "GeometryCollection") return Collection(geometry);
    const int depth = DepthOf(type);
    if (depth < 0) Fail(fmt::format("'{}' is no type of GeoJSON", Excerpt(type)));
    if (!geometry.contains("coordinates") || !geometry["coordinates"].is_array())
      Fail("coordinates are missing");
    if (m_pClip && type != "Point" && type != "MultiPoint") return Clipped(geometry);
    return Direct(geometry, type, depth);
  }

  std::string Collection(const Json& collection) {
    if (!collection.contains("geometries") || !collection["geometries"].is_array())
      Fail("geometries are missing");
    std::string parts;
    for (const Json& part : collection["geometries"]) {
      const std::string text = Geometry(part);
      if (!text.empty()) parts += (parts.empty() ? "" : ",") + text;
    }
    return parts.empty() ? "" : R"({"type":"GeometryCollection","geometries":[)" + parts + "]}";
  }

  std::string Clipped(const Json& geometry) {
    GeoShape shape = ReadGeoJson(geometry.dump(), m_Name).front().shape;
    for (Line& line : shape.lines) ToMapDatum(line, 2);
    std::erase_if(shape.lines, [](const Line& line) { return line.size() < 2; });
    for (std::vector<Line>& rings : shape.polygons) {
      for (Line& ring : rings) ToMapDatum(ring, 4);
      // Without its outline a polygon's holes mean nothing.
      if (!rings.empty() && rings.front().empty()) rings.clear();
      std::erase_if(rings, [](const Line& ring) { return ring.empty(); });
    }
    std::erase_if(shape.polygons, [](const auto& rings) { return rings.empty(); });
    const size_t lostBefore = m_Clipped.lost;
    shape = m_pClip->Clip(shape, m_Clipped, nullptr);
    const size_t lost = m_Clipped.lost - lostBefore;
    m_Lost += lost;
    m_Tally.placed -= std::min<uint64_t>(lost, m_Tally.placed);
    const std::string text = WriteGeoGeometry(shape, m_Options.decimals);
    return text == "null" ? "" : text;
  }

  /// @param least  points that a line or ring needs; with fewer it becomes empty.
  void ToMapDatum(Line& line, size_t least) {
    Count(*m_ToMapDatum, line);
    const size_t before = line.size();
    std::erase_if(line, &IsLost);
    if (line.size() != before && line.size() < least) line.clear();
  }

  /// Converts, counts and adds to the report.
  void Count(const Conversion& conversion, std::vector<shr::Vec2d>& points) {
    const std::vector<shr::Vec2d> sources = points;
    BlockTally block;
    conversion.Convert(points.data(), points.size(), block.report);
    block.points = points.size();
    for (size_t i = 0; i < points.size(); ++i) {
      if (!IsLost(points[i])) continue;
      block.lost.push_back({static_cast<uint32_t>(i), false, BadLine::NoNumber, true, sources[i], ""});
    }
    for (size_t i = 0; i < kConversionEvents; ++i) {
      block.firstPlace[i] = static_cast<uint32_t>(block.report.Tally(static_cast<ConversionEvent>(i)).first);
    }
    m_Lost += block.lost.size();
    m_Tally.Add(block, sources, m_Tally.points);
  }

  // ---- position by position

  std::string Direct(const Json& geometry, const std::string& type, int depth) {
    std::vector<shr::Vec2d> points;
    Collect(geometry["coordinates"], depth, points);
    Count(m_Direct, points);
    size_t next = 0;
    const bool bRings = type == "Polygon" || type == "MultiPolygon";
    const std::string coordinates = Written(geometry["coordinates"], depth,
                                            bRings                 ? 4
                                            : type == "MultiPoint" ? 1
                                                                   : 2,
                                            points, next);
    if (coordinates.empty()) return "";
    std::string text = "{";
    for (const auto& [key, value] : geometry.items()) {
      if (key == "bbox" || key == "crs") continue;
      text += (text.size() > 1 ? "," : "") + Json(key).dump() + ":" +
              (key == "coordinates" ? coordinates : value.dump());
    }
    return text + "}";
  }

  void Collect(const Json& coordinates, int depth, std::vector<shr::Vec2d>& points) const {
    if (depth > 0) {
      if (!coordinates.is_array()) Fail("coordinates are not nested as their type needs it");
      for (const Json& part : coordinates) Collect(part, depth - 1, points);
      return;
    }
    if (!coordinates.is_array() || coordinates.size() < 2 || !coordinates[0].is_number() ||
        !coordinates[1].is_number()) {
      Fail("a position is not a list of two numbers");
    }
    points.emplace_back(coordinates[0].get<double>(), coordinates[1].get<double>());
  }

  /// @param least  positions that a line or ring must have.
  /// @return "" when nothing is left.
  std::string Written(const Json& coordinates, int depth, size_t least, const std::vector<shr::Vec2d>& points,
                      size_t& next) const {
    if (depth == 0) {
      const shr::Vec2d& point = points[next++];
      if (IsLost(point)) return "";
      std::string text = "[";
      AppendFixed(text, point.x, m_Options.decimals);
      text += ',';
      AppendFixed(text, point.y, m_Options.decimals);
      for (size_t i = 2; i < coordinates.size(); ++i) text += "," + coordinates[i].dump();
      return text + "]";
    }
    std::string text;
    size_t count = 0;
    bool bFirstLost = false;
    for (size_t i = 0; i < coordinates.size(); ++i) {
      const std::string part = Written(coordinates[i], depth - 1, least, points, next);
      bFirstLost = bFirstLost || (i == 0 && part.empty());
      if (part.empty()) continue;
      text += (count++ == 0 ? "" : ",") + part;
    }
    // A ring whose first and last position are lost is closed again by its first one left.
    if (depth == 1 && least == 4 && bFirstLost && count > 0) {
      text += "," + text.substr(0, text.find(']') + 1);
      ++count;
    }
    if (depth == 1 && count < least) return "";
    // What lies within a polygon's outline is nothing without it.
    if (depth == 2 && least == 4 && bFirstLost) return "";
    return count == 0 ? "" : "[" + text + "]";
  }

  const std::string m_Name;
  const GeoJsonOptions m_Options;
  Conversion m_Direct;
  std::optional<Conversion> m_ToMapDatum;
  std::unique_ptr<MapClip> m_pClip;
  ConvertTally& m_Tally;
  ClipTally& m_Clipped;
  uint64_t m_Lost = 0;  ///< of the feature at hand
};

GeometryConverter::GeometryConverter(const std::string& name, const CSDef& from, const CSDef& to,
                                     const GeoJsonOptions& options, ConvertTally& tally, ClipTally& clipped)
    : m_pImpl(std::make_unique<Impl>(name, from, to, options, tally, clipped)) {}

GeometryConverter::~GeometryConverter() = default;

std::string GeometryConverter::Convert(std::string_view text, uint64_t feature) {
  std::string converted = m_pImpl->Convert(text);
  if (const uint64_t lost = m_pImpl->LostHere()) {
    Note(fmt::format("feature {}: {} position{} no place in the target system and {} left out", feature, lost,
                     lost == 1 ? " has" : "s have", lost == 1 ? "is" : "are"));
  }
  return converted;
}

}  // namespace orv::tool
