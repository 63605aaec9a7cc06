#include "tools/orv/ConvertHints.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"

namespace orv::tool {

namespace {

/// Whether coordinates of the system are lengths on the Earth, far larger than degrees.
bool IsMeasuredOnEarth(const CSDef& system) {
  if (system.Type() != CSTypeORV) return false;
  const auto& def = static_cast<const ORVDef&>(system);
  return def.HasProjection(false, true) && def.GetProjection()->GetEllipsoid()->GetMajorRadius() > 1e6;
}

bool IsBeyondDegrees(const shr::Vec2d& point) {
  return std::fabs(point.x) > 720.0 || std::fabs(point.y) > 720.0;
}

bool IsMost(uint64_t part, uint64_t all) { return all > 0 && 2 * part > all; }

/// What would become of the points with x and y exchanged.
ConversionReport Exchanged(const Conversion& conversion, std::vector<shr::Vec2d> points) {
  for (shr::Vec2d& point : points) std::swap(point.x, point.y);
  ConversionReport report;
  conversion.Convert(points.data(), points.size(), report);
  return report;
}

std::string ExchangeAdvice(const HintQuestion& question) {
  if (question.bGeoJson) return "GeoJSON has longitude or easting first";
  if (!question.conversion.FromGeographic()) return "they seem to be northing, easting; give --columns 2,1";
  return question.bLatFirst ? "they seem to be longitude, latitude; leave --lat-first out"
                            : "they seem to be latitude, longitude; give --lat-first";
}

std::string NoPoints(const HintQuestion& question) {
  if (question.bBinary || question.tally.lines == 0)
    return fmt::format("no points: {} is empty", question.input);
  return fmt::format("no points: {} has nothing but empty lines or a header", question.input);
}

void GuessCoordinates(const HintQuestion& question, std::vector<std::string>& hints) {
  const ConvertTally& tally = question.tally;
  if (!question.conversion.FromGeographic() && IsMeasuredOnEarth(question.from) && tally.likeDegrees > 0 &&
      tally.likeDegrees == tally.points &&
      std::any_of(tally.sample.begin(), tally.sample.end(),
                  [](const auto& p) { return p.x != 0.0 || p.y != 0.0; })) {
    hints.push_back(
        "all points look like degrees, but the system of --from is projected; give the system that the degrees are in, "
        "such as --from EPSG:4326");
    return;
  }
  const auto beyond = std::count_if(tally.lostSample.begin(), tally.lostSample.end(), &IsBeyondDegrees);
  if (question.conversion.FromGeographic() &&
      IsMost(static_cast<uint64_t>(beyond), tally.lostSample.size())) {
    hints.push_back(
        "most lost points are far too large for degrees, but the system of --from is geographic; give the projected "
        "system that they are in");
    return;
  }
  // A single lost point proves nothing, but for a latitude that is none.
  const uint64_t lost = tally.lostSample.size();
  const bool bTellsSomething =
      IsMost(tally.events[ConversionLostLatitude].count, tally.Lost()) || IsMost(tally.Lost(), tally.points);
  if (bTellsSomething && IsMost(Exchanged(question.conversion, tally.lostSample).Placed(), lost)) {
    hints.push_back("most lost points would have a place with their coordinates exchanged: " +
                    (IsMost(tally.Lost(), tally.points) ? ExchangeAdvice(question) : "look at those lines"));
    return;
  }
  if (!IsMost(tally.events[ConversionNotedFarFromDestMeridian].count, tally.points)) return;
  const ConversionReport exchanged = Exchanged(question.conversion, tally.sample);
  if (IsMost(exchanged.Placed() - exchanged.Doubtful(), tally.sample.size())) {
    hints.push_back("most points would be near the central meridian with their coordinates exchanged: " +
                    ExchangeAdvice(question));
  }
}

}  // namespace

std::vector<std::string> Hints(const HintQuestion& question) {
  const ConvertTally& tally = question.tally;
  if (tally.points == 0) return {NoPoints(question)};
  std::vector<std::string> hints;
  for (size_t i = 0; i < kConversionEvents; ++i) {
    const auto event = static_cast<ConversionEvent>(i);
    const Fate& fate = tally.events[i];
    if (ConversionReport::IsLoss(event) || fate.count == 0) continue;
    hints.push_back(fmt::format("placed, but doubtful: {} point{}, first {} {}: {}", fate.count,
                                fate.count == 1 ? "" : "s", question.bBinary ? "point" : "line", fate.first,
                                fate.message));
  }
  if (IsMost(tally.bad[static_cast<size_t>(BadLine::FewFields)].count, tally.points)) {
    hints.push_back(
        "most lines have too few fields: --columns X,Y tells which hold the coordinates, --separator what stands between "
        "fields");
  }
  GuessCoordinates(question, hints);
  return hints;
}

}  // namespace orv::tool
