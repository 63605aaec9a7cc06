#include "orv/convert/ConversionReport.h"

#include "orv/convert/internal/JsonText.h"

namespace orv {

namespace {

struct EventRow {
  ConversionStage stage;
  const char* name;
  const char* reason;
};

/// In the order of ConversionEvent.
constexpr EventRow kEvents[] = {
    {ConversionStageInput, "no-point", "the point holds no coordinates (marked, NaN or infinite)"},
    {ConversionStageInput, "latitude", "the latitude is beyond 90 degrees"},
    {ConversionStageSourceProjection, "source-projection",
     "the source projection has no place with these coordinates"},
    {ConversionStageDatum, "datum", "the datum step gives no number"},
    {ConversionStageDestProjection, "destination-area",
     "the point is outside the usable part of the destination projection"},
    {ConversionStageDestProjection, "destination-projection", "the destination projection gives no number"},
    {ConversionStageDestWarp, "destination-warp", "the destination warp gives no number"},
    {ConversionStageDatum, "outside-grids", "the point is outside all grids and was left unshifted"},
    {ConversionStageSourceProjection, "far-from-source-meridian",
     "the point is more than 10 degrees from the central meridian of the source projection, whose series ends there"},
    {ConversionStageDestProjection, "far-from-destination-meridian",
     "the point is more than 10 degrees from the central meridian of the destination projection, whose series ends there"},
};
static_assert(std::size(kEvents) == kConversionEvents);

constexpr const char* kStages[] = {"input", "source projection", "datum", "destination projection",
                                   "destination warp"};

const EventRow& RowOf(ConversionEvent event) { return kEvents[static_cast<size_t>(event)]; }

}  // namespace

ConversionStage ConversionReport::StageOf(ConversionEvent event) { return RowOf(event).stage; }
const char* ConversionReport::StageName(ConversionStage stage) { return kStages[static_cast<size_t>(stage)]; }
const char* ConversionReport::EventName(ConversionEvent event) { return RowOf(event).name; }
const char* ConversionReport::Reason(ConversionEvent event) { return RowOf(event).reason; }

size_t ConversionReport::Lost() const {
  size_t lost = 0;
  for (int event = 0; event < kConversionEvents; ++event) {
    if (IsLoss(ConversionEvent(event))) lost += Tally(ConversionEvent(event)).count;
  }
  return lost;
}

void ConversionReport::Add(ConversionEvent event, size_t index) {
  ConversionTally& tally = m_Tallies[static_cast<size_t>(event)];
  if (tally.count == 0 || index < tally.first) tally.first = index;
  ++tally.count;
}

void ConversionReport::Merge(const ConversionReport& other, size_t offset) {
  m_Points += other.m_Points;
  m_Doubtful += other.m_Doubtful;
  for (size_t i = 0; i < m_Tallies.size(); ++i) {
    const ConversionTally& added = other.m_Tallies[i];
    if (added.count == 0) continue;
    ConversionTally& tally = m_Tallies[i];
    if (tally.count == 0 || added.first + offset < tally.first) tally.first = added.first + offset;
    tally.count += added.count;
  }
}

std::string ConversionReport::ToText() const {
  std::string text = std::to_string(Points()) + " points, " + std::to_string(Placed()) + " placed, " +
                     std::to_string(Lost()) + " lost\n";
  for (int i = 0; i < kConversionEvents; ++i) {
    const auto event = ConversionEvent(i);
    const ConversionTally& tally = Tally(event);
    if (tally.count == 0) continue;
    text += std::to_string(tally.count) + (IsLoss(event) ? " lost, " : " doubtful, ") +
            StageName(StageOf(event)) + ": " + Reason(event) + " (first: point " +
            std::to_string(tally.first + 1) + ")\n";
  }
  return text;
}

std::string ConversionReport::ToJson() const {
  internal::JsonText json;
  json.BeginObject();
  json.Key("points").Number(Points()).Key("placed").Number(Placed()).Key("lost").Number(Lost());
  json.Key("doubtful").Number(Doubtful()).Key("events").BeginArray();
  for (int i = 0; i < kConversionEvents; ++i) {
    const auto event = ConversionEvent(i);
    const ConversionTally& tally = Tally(event);
    if (tally.count == 0) continue;
    json.BeginObject().Key("event").Text(EventName(event)).Key("stage").Text(StageName(StageOf(event)));
    json.Key("lost").Bool(IsLoss(event)).Key("reason").Text(Reason(event));
    json.Key("count").Number(tally.count).Key("first").Number(tally.first).EndObject();
  }
  return json.EndArray().EndObject().Finish();
}

}  // namespace orv
