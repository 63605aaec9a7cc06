// Clipped.h: what clipping hands over.
#pragma once

#include <vector>

#include "orv/projection/Projector.h"
#include "orv/projection/internal/ClipPolygon.h"

namespace orv::test {

using Line = std::vector<shr::Vec2d>;

/// The calls of both callbacks.
struct Clipped {
  std::vector<std::vector<Line>> polygons;
  std::vector<Line> lines;
  size_t callsUntilNo = static_cast<size_t>(-1);  ///< after so many calls the answer is no

  static bool OnPolygon(void* context, size_t ringCount, const size_t* pointsPerRing,
                        const shr::Vec2d* points) {
    Clipped& self = *static_cast<Clipped*>(context);
    self.polygons.emplace_back();
    for (size_t i = 0; i < ringCount; points += pointsPerRing[i], ++i) {
      self.polygons.back().emplace_back(points, points + pointsPerRing[i]);
    }
    return self.Answer();
  }
  static bool OnLine(void* context, size_t count, const shr::Vec2d* points) {
    Clipped& self = *static_cast<Clipped*>(context);
    self.lines.emplace_back(points, points + count);
    return self.Answer();
  }

 private:
  bool Answer() { return callsUntilNo-- > 1; }
};

inline Clipped ClipLine(Projector& projector, const Line& line) {
  Clipped clipped;
  projector.PreclipPolyline(&clipped, line.size(), line.data(), &Clipped::OnLine);
  return clipped;
}

/// The rings one behind the other.
struct FlatRings {
  explicit FlatRings(const std::vector<Line>& rings) {
    for (const Line& ring : rings) {
      counts.push_back(ring.size());
      points.insert(points.end(), ring.begin(), ring.end());
    }
  }
  std::vector<size_t> counts;
  Line points;
};

inline Clipped ClipRings(Projector& projector, const std::vector<Line>& rings) {
  Clipped clipped;
  const FlatRings flat(rings);
  projector.PreclipPolygon(&clipped, flat.counts.size(), flat.counts.data(), flat.points.data(),
                           &Clipped::OnPolygon, &Clipped::OnLine);
  return clipped;
}

inline Clipped ClipRings(Projector& projector, const std::vector<Line>& rings,
                         const internal::ClipOptions& options) {
  Clipped clipped;
  const FlatRings flat(rings);
  internal::ProjectorClip::Polygon(projector, options, &clipped, flat.counts.size(), flat.counts.data(),
                                   flat.points.data(), &Clipped::OnPolygon, &Clipped::OnLine);
  return clipped;
}

}  // namespace orv::test
