#include "tools/orv/ConvertTally.h"

#include <algorithm>

#include "orv/convert/internal/JsonText.h"

namespace orv::tool {

namespace {

constexpr size_t kSampleSize = 1000;

/// Members of an object that has begun.
void Add(internal::JsonText& json, const Fate& fate, const char* number) {
  json.Key("count").Number(static_cast<size_t>(fate.count)).Key("first").BeginObject();
  json.Key(number).Number(static_cast<size_t>(fate.first)).Key("message").Text(fate.message).EndObject();
}

/// Adds an array of the events of one kind.
void AddEvents(internal::JsonText& json, const char* key, const ConvertTally& tally, bool bLosses,
               const char* number) {
  json.Key(key).BeginArray();
  for (size_t i = 0; i < kConversionEvents; ++i) {
    const auto event = static_cast<ConversionEvent>(i);
    if (tally.events[i].count == 0 || ConversionReport::IsLoss(event) != bLosses) continue;
    json.BeginObject().Key("event").Text(ConversionReport::EventName(event));
    json.Key("stage").Text(ConversionReport::StageName(ConversionReport::StageOf(event)));
    json.Key("reason").Text(ConversionReport::Reason(event));
    Add(json, tally.events[i], number);
    json.EndObject();
  }
  json.EndArray();
}

}  // namespace

void Fate::Add(uint64_t number, const std::string& text, uint64_t howMany) {
  if (count == 0) {
    first = number;
    message = text;
  }
  count += howMany;
}

void ConvertTally::Add(const BlockTally& block, const std::vector<shr::Vec2d>& sources, uint64_t before) {
  lines += block.lines;
  points += block.points;
  placed += block.points - block.lost.size() - block.cutOff;
  cutOff += block.cutOff;
  doubtful += block.report.Doubtful();
  likeDegrees += block.likeDegrees;
  converting += block.converting;
  const size_t more = std::min(kSampleSize - sample.size(), sources.size());
  sample.insert(sample.end(), sources.begin(), sources.begin() + static_cast<ptrdiff_t>(more));
  for (const LostPoint& lost : block.lost) {
    if (lost.bRead && lostSample.size() < kSampleSize) lostSample.push_back(lost.source);
    if (!lost.bBad) continue;
    Fate& fate = lost.kind == BadLine::BeyondPole ? events[ConversionLostLatitude]
                                                  : bad[static_cast<size_t>(lost.kind)];
    fate.Add(before + lost.place + 1, lost.message);
  }
  for (size_t i = 0; i < events.size(); ++i) {
    const auto event = static_cast<ConversionEvent>(i);
    const bool bShown = event == ConversionLostDestArea || event == ConversionLostDestProjection;
    if (bShown && block.cutOff > 0) continue;
    const size_t count = block.report.Tally(event).count;
    if (count > 0) events[i].Add(before + block.firstPlace[i] + 1, ConversionReport::Reason(event), count);
  }
}

std::string ReportAsJson(const ConvertTally& tally, const std::string& from, const std::string& to,
                         bool bBinary) {
  const char* const number = bBinary ? "point" : "line";
  internal::JsonText json;
  json.BeginObject().Key("from").Text(from).Key("to").Text(to);
  if (!bBinary) json.Key("lines").Number(static_cast<size_t>(tally.lines));
  json.Key("points").Number(static_cast<size_t>(tally.points));
  json.Key("placed").Number(static_cast<size_t>(tally.placed));
  json.Key("lost").Number(static_cast<size_t>(tally.Lost()));
  json.Key("doubtful").Number(static_cast<size_t>(tally.doubtful));
  if (tally.cutOff > 0) json.Key("cutOff").Number(static_cast<size_t>(tally.cutOff));
  json.Key("unparsable").BeginArray();
  for (size_t i = 0; i < kBadLineKinds; ++i) {
    if (tally.bad[i].count == 0) continue;
    json.BeginObject().Key("reason").Text(BadLineName(static_cast<BadLine>(i)));
    Add(json, tally.bad[i], number);
    json.EndObject();
  }
  json.EndArray();
  AddEvents(json, "unplaced", tally, true, number);
  AddEvents(json, "doubts", tally, false, number);
  return json.EndObject().Finish();
}

}  // namespace orv::tool
