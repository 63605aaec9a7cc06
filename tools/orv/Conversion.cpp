#include "tools/orv/Conversion.h"

#include <cmath>
#include <limits>

#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"

namespace orv::tool {

namespace {

const ORVDef* Georeferenced(const CSDef& system) {
  return system.Type() == CSTypeORV ? static_cast<const ORVDef*>(&system) : nullptr;
}

/// The one case in which a single transformer leaves out the projections but not the datums.
bool CutsShort(const ORVDef& from, const ORVDef& to) {
  return from.HasProjection(true, true) && to.HasProjection(true, true) &&
         from.GetProjection()->Compare(*to.GetProjection(), nullptr) && from.HasDatum(true) &&
         to.HasDatum(true) && !from.GetDatum()->CompareParameters(to.GetDatum());
}

constexpr double kMarker = std::numeric_limits<double>::max();

bool HasNoValue(double coordinate) { return coordinate == kMarker || !std::isfinite(coordinate); }

}  // namespace

bool IsGeographic(const CSDef& system) {
  const ORVDef* const def = Georeferenced(system);
  return def && !def->HasProjection(false, true);
}

bool IsLost(const shr::Vec2d& point) { return std::isnan(point.x) || std::isnan(point.y); }

Conversion::Conversion(const CSDef& from, const CSDef& to)
    : m_bFromGeographic(IsGeographic(from)), m_bToGeographic(IsGeographic(to)) {
  const ORVDef* const source = Georeferenced(from);
  const ORVDef* const dest = Georeferenced(to);
  if (source && dest && CutsShort(*source, *dest)) {
    const ProjectionDef unprojected(ProjectionMethodUnprojected);
    const ORVDef between(source->GetDatum(), &unprojected, nullptr);
    Add(from, between);
    Add(between, to);
  } else {
    Add(from, to);
  }
}

void Conversion::Add(const CSDef& from, const CSDef& to) {
  m_Stages.emplace_back(&from, &to, true, true).Initialize();
}

void Conversion::Convert(shr::Vec2d* points, size_t count) const {
  for (const CSTransformer& stage : m_Stages) stage.Transform(points, points, count);
  for (size_t i = 0; i < count; ++i) {
    if (HasNoValue(points[i].x) || HasNoValue(points[i].y)) {
      points[i].x = points[i].y = std::numeric_limits<double>::quiet_NaN();
    }
  }
}

}  // namespace orv::tool
