#include "tools/orv/GeometryConvert.h"

#include <fmt/core.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "tools/orv/Command.h"
#include "tools/orv/JsonMembers.h"
#include "tools/orv/NumberText.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

/// How deep the positions of a type lie in its coordinates: 0 for a point; -1 for what has none.
int DepthOf(std::string_view type) {
  if (type == "Point") return 0;
  if (type == "MultiPoint" || type == "LineString") return 1;
  if (type == "MultiLineString" || type == "Polygon") return 2;
  return type == "MultiPolygon" ? 3 : -1;
}

}  // namespace

/// Reads and writes geometries as pieces of text, so that what is not converted stays byte for byte.
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

  /// As GeometryConverter::Convert, without its messages.
  std::string Convert(std::string_view text) {
    m_Text = text;
    m_Losses = {};
    const std::string converted = Geometry(SkipJsonBlanks(text, 0));
    return converted.empty() ? "null" : converted;
  }

  /// What the last Convert has left out.
  struct Losses {
    uint64_t lost = 0;       ///< positions without a place
    uint64_t goneAlong = 0;  ///< placed ones of lines and rings of which too few are left
    uint64_t flattened =
        0;  ///< geometries that were cut and have lost what their positions held behind x and y
  };
  const Losses& LossesHere() const { return m_Losses; }

 private:
  /// The positions of a geometry: lines or rings, by polygons; those of other types are one "polygon".
  using Parts = std::vector<std::vector<Line>>;

  [[noreturn]] void Fail(const std::string& what) const {
    throw UsageError(fmt::format("'{}': {}", m_Name, what));
  }

  std::string_view At(JsonSpan span) const { return m_Text.substr(span.begin, span.end - span.begin); }

  std::string Geometry(size_t at) {
    const std::vector<JsonMember> members = JsonMembersOf(m_Text, at);
    const JsonMember* const typeMember = Find(members, "type");
    if (!typeMember || m_Text[typeMember->value.begin] != '"') {
      Fail("it holds something without a type, which GeoJSON objects have");
    }
    const std::string_view quoted = At(typeMember->value), type = quoted.substr(1, quoted.size() - 2);
    if (type == "GeometryCollection") return Collection(members);
    const int depth = DepthOf(type);
    if (depth < 0) Fail(fmt::format("'{}' is no type of GeoJSON", Excerpt(type)));
    const JsonMember* const coordinates = Find(members, "coordinates");
    if (!coordinates || m_Text[coordinates->value.begin] != '[') Fail("coordinates are missing");

    m_HasMore = false;
    Parts parts = PartsOf(coordinates->value, depth);
    const bool bRings = type == "Polygon" || type == "MultiPolygon";
    std::vector<shr::Vec2d> points;
    for (const std::vector<Line>& lines : parts) {
      for (const Line& line : lines) points.insert(points.end(), line.begin(), line.end());
    }
    if (points.empty()) return Copied(members, At(coordinates->value));  // an empty geometry stays one
    if (m_pClip && type != "Point" && type != "MultiPoint") {
      ClipTally tally;
      const bool bCut = Cut(parts, bRings, tally);
      for (size_t ClipTally::*const count :
           {&ClipTally::whole, &ClipTally::clipped, &ClipTally::split, &ClipTally::dropped})
        m_Clipped.*count += tally.*count;
      if (bCut) return OfShape(members, points, bRings, std::move(parts));
    }
    Count(points, false);
    const uint64_t lostBefore = m_Losses.lost;
    size_t next = 0;
    m_Written = 0;
    const size_t least = bRings ? 4 : type == "MultiPoint" || type == "Point" ? 1 : 2;
    const std::string written = Written(coordinates->value, depth, least, points, next);
    m_Losses.lost += static_cast<uint64_t>(std::count_if(points.begin(), points.end(), &IsLost));
    m_Losses.goneAlong += points.size() - (m_Losses.lost - lostBefore) - m_Written;
    return written.empty() ? "" : Copied(members, written);
  }

  static const JsonMember* Find(const std::vector<JsonMember>& members, std::string_view key) {
    const JsonMember* found = nullptr;
    for (const JsonMember& member : members) {
      if (member.key == key) found = &member;  // of several the last holds
    }
    return found;
  }

  std::string Collection(const std::vector<JsonMember>& members) {
    const JsonMember* const geometries = Find(members, "geometries");
    if (!geometries || m_Text[geometries->value.begin] != '[') Fail("geometries are missing");
    std::string parts;
    bool bNone = true;
    for (const JsonSpan& part : JsonElementsOf(m_Text, geometries->value.begin)) {
      bNone = false;
      const std::string text = Geometry(part.begin);
      if (!text.empty()) parts += (parts.empty() ? "" : ",") + text;
    }
    return parts.empty() && !bNone ? "" : Copied(members, "[" + parts + "]", "geometries");
  }

  /// The geometry with other coordinates, and all else as it was.
  std::string Copied(const std::vector<JsonMember>& members, std::string_view coordinates,
                     std::string_view key = "coordinates") const {
    std::string text = "{";
    for (const JsonMember& member : members) {
      if (member.key == "bbox" || member.key == "crs") continue;
      if (text.size() > 1) text += ',';
      text += '"';
      text += member.key;
      text += "\":";
      text += member.key == key ? coordinates : At(member.value);
    }
    return text + "}";
  }

  // ---- what is read

  Parts PartsOf(JsonSpan coordinates, int depth) {
    if (depth == 0) return {{{Position(coordinates)}}};
    if (depth == 1) return {{LineOf(coordinates)}};
    Parts parts;
    if (depth == 2) {
      parts.emplace_back();
      for (const JsonSpan& line : Elements(coordinates)) parts[0].push_back(LineOf(line));
      return parts;
    }
    for (const JsonSpan& polygon : Elements(coordinates)) {
      parts.emplace_back();
      for (const JsonSpan& ring : Elements(polygon)) parts.back().push_back(LineOf(ring));
    }
    return parts;
  }

  std::vector<JsonSpan> Elements(JsonSpan span) const {
    if (m_Text[span.begin] != '[') Fail("coordinates are not nested as their type needs it");
    return JsonElementsOf(m_Text, span.begin);
  }

  Line LineOf(JsonSpan span) {
    Line line;
    for (const JsonSpan& position : Elements(span)) line.push_back(Position(position));
    return line;
  }

  shr::Vec2d Position(JsonSpan span) {
    const std::vector<JsonSpan> numbers = JsonElementsOf(m_Text, span.begin);
    shr::Vec2d point;
    if (numbers.size() < 2 || !ParseNumber(At(numbers[0]), point.x) ||
        !ParseNumber(At(numbers[1]), point.y)) {
      Fail("a position is not a list of two numbers");
    }
    m_HasMore = m_HasMore || numbers.size() > 2;
    return point;
  }

  // ---- clipped

  /// Brings the parts to the map's datum, clips and projects them; false when nothing is cut off, and then they are of no use.
  bool Cut(Parts& parts, bool bRings, ClipTally& tally) {
    GeoShape shape;
    for (std::vector<Line>& lines : parts) {
      for (Line& line : lines) {
        if (line.empty()) continue;  // of no consequence
        if (line.size() < 2) Fail("a line or ring has fewer than two positions");
        ToMapDatum(line, bRings ? 4 : 2);
      }
      const auto isGone = [](const Line& line) { return line.empty(); };
      // Without its outline a polygon's holes mean nothing.
      if (bRings && !lines.empty() && lines.front().empty()) lines.clear();
      std::erase_if(lines, isGone);
      if (lines.empty()) continue;
      if (bRings) {
        shape.polygons.push_back(lines);
      } else {
        shape.lines.insert(shape.lines.end(), lines.begin(), lines.end());
      }
    }
    shape = m_pClip->Clip(shape, tally, nullptr);
    parts.clear();
    if (tally.clipped + tally.dropped == 0) return false;
    if (bRings) {
      parts = std::move(shape.polygons);
    } else {
      parts.push_back(std::move(shape.lines));
    }
    return true;
  }

  /// Positions without a place are left out.
  ///
  /// @param least  positions that a line or ring needs; with fewer it becomes empty.
  void ToMapDatum(Line& line, size_t least) const {
    m_ToMapDatum->Convert(line.data(), line.size());
    if (std::erase_if(line, &IsLost) > 0 && line.size() < least) line.clear();
  }

  /// The geometry that is left of one that was cut, and the account of its positions.
  std::string OfShape(const std::vector<JsonMember>& members, std::vector<shr::Vec2d>& points, bool bRings,
                      Parts parts) {
    m_Losses.lost += Count(points, true);
    GeoShape shape;
    if (bRings) {
      shape.polygons = std::move(parts);
    } else if (!parts.empty()) {
      shape.lines = std::move(parts[0]);
    }
    if (shape.lines.empty() && shape.polygons.empty()) return "";
    if (m_HasMore) ++m_Losses.flattened;
    std::string text = WriteGeoGeometry(shape, m_Options.decimals);
    text.pop_back();
    for (const JsonMember& member : members) {
      const auto isOther = [&](std::string_view key) { return member.key != key; };
      if (isOther("type") && isOther("coordinates") && isOther("bbox") && isOther("crs")) {
        text += ',';
        text += At(member.all);
      }
    }
    return text + "}";
  }

  // ---- position by position

  /// Converts, counts and adds to the report.
  ///
  /// @param bCut  what the target's projection does not show was cut off on purpose, and is no loss.
  /// @return positions without a place, those that were cut off left out.
  uint64_t Count(std::vector<shr::Vec2d>& points, bool bCut) {
    const std::vector<shr::Vec2d> sources = points;
    BlockTally block;
    m_Direct.Convert(points.data(), points.size(), block.report);
    block.points = points.size();
    // What comes as far as the map's datum is lost by the projection alone.
    std::vector<shr::Vec2d> onDatum;
    if (bCut) {
      onDatum = sources;
      m_ToMapDatum->Convert(onDatum.data(), onDatum.size());
    }
    for (size_t i = 0; i < points.size(); ++i) {
      if (!IsLost(points[i])) continue;
      if (bCut && !IsLost(onDatum[i])) {
        ++block.cutOff;
      } else {
        block.lost.push_back({static_cast<uint32_t>(i), false, BadLine::NoNumber, true, sources[i], ""});
      }
    }
    for (size_t i = 0; i < kConversionEvents; ++i) {
      block.firstPlace[i] = static_cast<uint32_t>(block.report.Tally(static_cast<ConversionEvent>(i)).first);
    }
    m_Tally.Add(block, sources, m_Tally.points);
    return block.lost.size();
  }

  /// @param least  positions that a line or ring must have.
  /// @return "" when nothing is left.
  std::string Written(JsonSpan coordinates, int depth, size_t least, const std::vector<shr::Vec2d>& points,
                      size_t& next) {
    const std::vector<JsonSpan> elements = JsonElementsOf(m_Text, coordinates.begin);
    if (depth == 0) {
      const shr::Vec2d& point = points[next++];
      if (IsLost(point)) return "";
      ++m_Written;
      std::string text = "[";
      AppendFixed(text, point.x, m_Options.decimals);
      text += ',';
      AppendFixed(text, point.y, m_Options.decimals);
      for (size_t i = 2; i < elements.size(); ++i) {
        text += ',';
        text += At(elements[i]);
      }
      return text + "]";
    }
    const uint64_t writtenBefore = m_Written;
    std::string text;
    size_t count = 0;
    bool bFirstLost = false;
    for (size_t i = 0; i < elements.size(); ++i) {
      const std::string part = Written(elements[i], depth - 1, least, points, next);
      bFirstLost = bFirstLost || (i == 0 && part.empty());
      if (part.empty()) continue;
      text += (count++ == 0 ? "" : ",") + part;
    }
    // A ring whose first and last position are lost is closed again by its first one left.
    if (depth == 1 && least == 4 && bFirstLost && count > 0) {
      text += "," + text.substr(0, text.find(']') + 1);
      ++count;
    }
    const bool bTooShort = depth == 1 && count < least && !elements.empty();
    // What lies within a polygon's outline is nothing without it.
    const bool bNoOutline = depth == 2 && least == 4 && bFirstLost;
    if (bTooShort || bNoOutline || count == 0) {
      m_Written = writtenBefore;
      return "";
    }
    return "[" + text + "]";
  }

  const std::string m_Name;
  const GeoJsonOptions m_Options;
  Conversion m_Direct;
  std::optional<Conversion> m_ToMapDatum;
  std::unique_ptr<MapClip> m_pClip;
  ConvertTally& m_Tally;
  ClipTally& m_Clipped;
  std::string_view m_Text;  ///< of the geometry at hand
  Losses m_Losses;
  bool m_HasMore = false;  ///< a position of the geometry at hand holds more than x and y
  uint64_t m_Written = 0;  ///< positions of the geometry at hand
};

GeometryConverter::GeometryConverter(const std::string& name, const CSDef& from, const CSDef& to,
                                     const GeoJsonOptions& options, ConvertTally& tally, ClipTally& clipped)
    : m_pImpl(std::make_unique<Impl>(name, from, to, options, tally, clipped)) {}

GeometryConverter::~GeometryConverter() = default;

std::string GeometryConverter::Convert(std::string_view text, uint64_t feature) {
  std::string converted = m_pImpl->Convert(text);
  const Impl::Losses& losses = m_pImpl->LossesHere();
  if (losses.lost > 0) {
    std::string note =
        fmt::format("feature {}: {} position{} no place in the target system and {} left out", feature,
                    losses.lost, losses.lost == 1 ? " has" : "s have", losses.lost == 1 ? "is" : "are");
    if (losses.goneAlong > 0)
      note += fmt::format(", and {} more with the lines or rings that are left too short", losses.goneAlong);
    Note(note);
  }
  if (losses.flattened > 0) {
    Note(fmt::format(
        "feature {}: it was cut, and the heights of its positions are left out; --no-clip keeps them",
        feature));
  }
  return converted;
}

}  // namespace orv::tool
