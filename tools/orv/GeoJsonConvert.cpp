#include "tools/orv/GeoJsonConvert.h"

#include <fmt/core.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <vector>

#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "tools/orv/Command.h"
#include "tools/orv/Descriptor.h"
#include "tools/orv/JsonMembers.h"
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

/// Converts geometries and counts.
class GeometryConverter {
 public:
  GeometryConverter(const std::string& name, const CSDef& from, const CSDef& to,
                    const GeoJsonOptions& options, ConvertTally& tally, ClipTally& clipped)
      : m_Name(name), m_Options(options), m_Direct(from, to), m_Tally(tally), m_Clipped(clipped) {
    const ORVDef* const target = Projected(to);
    if (!options.bClip || !target) return;
    const ProjectionDef unprojected(ProjectionMethodUnprojected);
    m_ToMapDatum.emplace(from, ORVDef(target->GetDatum(), &unprojected, nullptr));
    m_pClip = std::make_unique<MapClip>(to);
  }

  /// The text of the geometry that comes of a geometry's text; "null" when nothing is left.
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

  const std::string& m_Name;
  const GeoJsonOptions& m_Options;
  Conversion m_Direct;
  std::optional<Conversion> m_ToMapDatum;
  std::unique_ptr<MapClip> m_pClip;
  ConvertTally& m_Tally;
  ClipTally& m_Clipped;
  uint64_t m_Lost = 0;  ///< of the feature at hand
};

/// Copies the text, geometries converted.
class Copier {
 public:
  Copier(std::string_view text, const std::string& name, GeometryConverter& converter)
      : m_Text(text), m_Name(name), m_Converter(converter) {}

  void Run() {
    Object(SkipJsonBlanks(m_Text, 0));
    CopyTo(m_Text.size());
    WriteDirectly(m_Out.data(), m_Out.size());
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw UsageError(fmt::format("'{}': {}", m_Name, what));
  }

  std::string TypeOf(const std::vector<JsonMember>& members) const {
    for (const JsonMember& member : members) {
      if (member.key != "type" || m_Text[member.value.begin] != '"') continue;
      return std::string(m_Text.substr(member.value.begin + 1, member.value.end - member.value.begin - 2));
    }
    Fail("it holds something without a type, which GeoJSON objects have");
  }

  void Object(size_t at) {
    const std::vector<JsonMember> members = JsonMembersOf(m_Text, at);
    const std::string type = TypeOf(members);
    if (type == "FeatureCollection" || type == "Feature") {
      Members(members, type);
      return;
    }
    ++m_Feature;
    Geometry({at, SkipJsonValue(m_Text, at)});
  }

  void Members(const std::vector<JsonMember>& members, const std::string& type) {
    const bool bCollection = type == "FeatureCollection";
    bool bFound = false, bFirst = true;  // bFirst: no member has stayed yet
    if (!bCollection) ++m_Feature;
    for (size_t i = 0; i < members.size(); ++i) {
      const JsonMember& member = members[i];
      if (member.key == "bbox" || member.key == "crs") {
        LeaveOut(members, i, bFirst);
        continue;
      }
      bFirst = false;
      if (bCollection && member.key == "features") {
        bFound = m_Text[member.value.begin] == '[';
        for (const JsonSpan& feature : JsonElementsOf(m_Text, member.value.begin)) Object(feature.begin);
      } else if (!bCollection && member.key == "geometry") {
        bFound = true;
        if (m_Text[member.value.begin] == '{') Geometry(member.value);
      }
    }
    if (!bFound) Fail(bCollection ? "features are missing" : "a feature has no geometry");
  }

  /// With the comma in front of it, or behind it when none before it stays.
  void LeaveOut(const std::vector<JsonMember>& members, size_t i, bool bFirst) {
    CopyTo(bFirst ? members.front().all.begin : members[i - 1].all.end);
    m_Position = bFirst && i + 1 < members.size() ? members[i + 1].all.begin : members[i].all.end;
  }

  void Geometry(JsonSpan span) {
    CopyTo(span.begin);
    m_Out += m_Converter.Convert(m_Text.substr(span.begin, span.end - span.begin));
    m_Position = span.end;
    if (const uint64_t lost = m_Converter.LostHere()) {
      Note(fmt::format("feature {}: {} position{} no place in the target system and {} left out", m_Feature,
                       lost, lost == 1 ? " has" : "s have", lost == 1 ? "is" : "are"));
    }
    if (m_Out.size() < (size_t{1} << 20)) return;
    WriteDirectly(m_Out.data(), m_Out.size());
    m_Out.clear();
  }

  void CopyTo(size_t end) {
    if (end <= m_Position) return;
    m_Out += m_Text.substr(m_Position, end - m_Position);
    m_Position = end;
  }

  std::string_view m_Text;
  const std::string& m_Name;
  GeometryConverter& m_Converter;
  size_t m_Position = 0;  ///< copied, or left out, so far
  uint64_t m_Feature = 0;
  std::string m_Out;
};

}  // namespace

void ConvertGeoJson(const std::string& text, const std::string& name, const CSDef& from, const CSDef& to,
                    const GeoJsonOptions& options, ConvertTally& tally, ClipTally& clipped) {
  try {
    // Nothing is kept: this only looks for mistakes.
    const Json nothing = Json::parse(text, [](int, Json::parse_event_t, Json&) { return false; });
    (void)nothing;
  } catch (const Json::parse_error& e) {
    throw UsageError(fmt::format("'{}': no JSON at byte {}", name, e.byte));
  }
  GeometryConverter converter(name, from, to, options, tally, clipped);
  Copier(text, name, converter).Run();
}

}  // namespace orv::tool
