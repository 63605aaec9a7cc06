#include "tools/orv/MapClip.h"

#include <algorithm>
#include <cmath>

#include "orv/projection/internal/ClipPolygon.h"
#include "orv/system/ORVDef.h"
#include "tools/orv/Command.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

const ORVDef& NeedProjected(const CSDef& system) {
  if (const ORVDef* const def = Projected(system)) return *def;
  throw UsageError("the system has no projection");
}

ORVDef Geographic(const ORVDef& system) {
  const ProjectionDef unprojected(ProjectionMethodUnprojected);
  return ORVDef(system.GetDatum(), &unprojected, nullptr);
}

struct Pieces {
  std::vector<std::vector<Line>> polygons;
  std::vector<Line> lines;

  static bool OnPolygon(void* context, size_t ringCount, const size_t* pointsPerRing,
                        const shr::Vec2d* points) {
    std::vector<Line>& rings = static_cast<Pieces*>(context)->polygons.emplace_back();
    for (size_t i = 0; i < ringCount; points += pointsPerRing[i], ++i) {
      rings.emplace_back(points, points + pointsPerRing[i]);
    }
    return true;
  }
  static bool OnLine(void* context, size_t count, const shr::Vec2d* points) {
    static_cast<Pieces*>(context)->lines.emplace_back(points, points + count);
    return true;
  }
};

// The same points, as they are or a turn away.
bool Same(const Line& a, const Line& b) {
  if (a.size() != b.size()) return false;
  const double turn = a[0].x == b[0].x ? 0.0 : a[0].x < b[0].x ? 360.0 : -360.0;
  return std::equal(a.begin(), a.end(), b.begin(),
                    [turn](const auto& p, const auto& q) { return p.x + turn == q.x && p.y == q.y; });
}

void ClipRings(Projector& projector, const std::vector<Line>& polygon, Pieces& pieces) {
  std::vector<size_t> counts;
  Line points;
  for (const Line& ring : polygon) {
    counts.push_back(ring.size());
    points.insert(points.end(), ring.begin(), ring.end());
  }
  internal::ProjectorClip::Polygon(projector, internal::kRefined, &pieces, counts.size(), counts.data(),
                                   points.data(), &Pieces::OnPolygon, &Pieces::OnLine);
}

bool IsFileSeam(const shr::Vec2d& a, const shr::Vec2d& b) {
  return (a.x == b.x && std::abs(std::remainder(a.x, 360.0)) == 180.0) ||
         (a.y == b.y && std::abs(a.y) == 90.0);
}

void Count(size_t pieces, bool bWhole, ClipTally& tally) {
  if (pieces == 0) {
    ++tally.dropped;
  } else if (bWhole) {
    ++tally.whole;
  } else {
    ++tally.clipped;
    if (pieces > 1) ++tally.split;
  }
}

}  // namespace

MapClip::MapClip(const CSDef& system)
    : m_Definition(*NeedProjected(system).GetProjection()),
      m_Projector(m_Definition),
      m_ToMap(Geographic(NeedProjected(system)), system) {}

void MapClip::Project(Line& line, ClipTally& tally) const {
  if (line.empty()) return;
  m_ToMap.Convert(line.data(), line.size());
  const auto end = std::remove_if(line.begin(), line.end(), &IsLost);
  tally.lost += static_cast<size_t>(line.end() - end);
  line.erase(end, line.end());
}

GeoShape MapClip::Clip(const GeoShape& shape, ClipTally& tally, std::vector<Line>* pOutlines) {
  GeoShape map;
  for (const Line& line : shape.lines) {
    Pieces pieces;
    m_Projector.PreclipPolyline(&pieces, line.size(), line.data(), &Pieces::OnLine);
    Count(pieces.lines.size(), pieces.lines.size() == 1 && Same(pieces.lines[0], line), tally);
    for (Line& piece : pieces.lines) {
      Project(piece, tally);
      if (piece.size() > 1) map.lines.push_back(std::move(piece));
    }
  }
  for (const std::vector<Line>& polygon : shape.polygons) {
    Pieces pieces;
    ClipRings(m_Projector, polygon, pieces);
    const bool bWhole = pieces.polygons.size() == 1 && pieces.polygons[0].size() == polygon.size() &&
                        std::equal(polygon.begin(), polygon.end(), pieces.polygons[0].begin(), &Same);
    Count(pieces.polygons.size(), bWhole, tally);
    for (std::vector<Line>& rings : pieces.polygons) {
      for (Line& ring : rings) Project(ring, tally);
      if (rings[0].size() < 3) continue;
      rings.erase(
          std::remove_if(rings.begin(), rings.end(), [](const Line& ring) { return ring.size() < 3; }),
          rings.end());
      map.polygons.push_back(std::move(rings));
    }
    if (!pOutlines) continue;
    ClipTally counted;  // their points are the rings'
    for (const Line& outline : pieces.lines) {
      for (Line& part : SplitAtSeams(outline, &IsFileSeam)) {
        Project(part, counted);
        if (part.size() > 1) pOutlines->push_back(std::move(part));
      }
    }
  }
  return map;
}

GeoShape MapClip::Within(const GeoShape& shape, double west, double south, double east, double north,
                         std::vector<Line>& outlines) {
  const internal::ClipBox window = {shr::Vec2d(west, south), shr::Vec2d(east, north), true};
  Pieces lines, polygons;
  for (double turn : {-360.0, 0.0, 360.0}) {
    GeoShape moved = shape;
    for (Line& line : moved.lines) {
      for (shr::Vec2d& p : line) p.x += turn;
      internal::ProjectorClip::BoxPolyline(window, &lines, line.size(), line.data(), &Pieces::OnLine);
    }
    for (std::vector<Line>& polygon : moved.polygons) {
      std::vector<internal::ClipRing> rings;
      for (Line& ring : polygon) {
        for (shr::Vec2d& p : ring) p.x += turn;
        rings.push_back({ring.data(), ring.size()});
      }
      internal::ProjectorClip::BoxPolygon(window, rings, &polygons, &Pieces::OnPolygon, &Pieces::OnLine);
    }
  }
  for (const Line& outline : polygons.lines) {
    for (Line& part : SplitAtSeams(outline, &IsFileSeam)) {
      if (part.size() > 1) outlines.push_back(std::move(part));
    }
  }
  GeoShape within;
  within.lines = std::move(lines.lines);
  within.polygons = std::move(polygons.polygons);
  return within;
}

std::vector<std::vector<Line>> MapClip::ClipPlain(const std::vector<Line>& polygon) {
  Pieces pieces;
  ClipRings(m_Projector, polygon, pieces);
  return pieces.polygons;
}

std::vector<Line> SplitAtSeams(const Line& line,
                               const std::function<bool(const shr::Vec2d&, const shr::Vec2d&)>& isSeam) {
  std::vector<Line> parts(1);
  for (size_t i = 0; i < line.size(); ++i) {
    if (i > 0 && isSeam(line[i - 1], line[i])) parts.emplace_back();
    parts.back().push_back(line[i]);
  }
  return parts;
}

}  // namespace orv::tool
