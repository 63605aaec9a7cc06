#include "tools/orv/ConvertTally.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace orv::tool {

namespace {

constexpr size_t kSampleSize = 1000;

using Json = nlohmann::ordered_json;

Json FateAsJson(const Fate& fate, const char* number) {
  return {{"count", fate.count}, {"first", {{number, fate.first}, {"message", fate.message}}}};
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
  placed += block.points - block.lost.size();
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
    const size_t count = block.report.Tally(event).count;
    if (count > 0) events[i].Add(before + block.firstPlace[i] + 1, ConversionReport::Reason(event), count);
  }
}

std::string ReportAsJson(const ConvertTally& tally, const std::string& from, const std::string& to,
                         bool bBinary) {
  const char* const number = bBinary ? "point" : "line";
  Json json = {{"from", from}, {"to", to}};
  if (!bBinary) json["lines"] = tally.lines;
  json["points"] = tally.points;
  json["placed"] = tally.placed;
  json["lost"] = tally.Lost();
  json["doubtful"] = tally.doubtful;
  for (const char* const list : {"unparsable", "unplaced", "doubts"}) json[list] = Json::array();
  for (size_t i = 0; i < kBadLineKinds; ++i) {
    if (tally.bad[i].count == 0) continue;
    Json one = {{"reason", BadLineName(static_cast<BadLine>(i))}};
    one.update(FateAsJson(tally.bad[i], number));
    json["unparsable"].push_back(one);
  }
  for (size_t i = 0; i < kConversionEvents; ++i) {
    if (tally.events[i].count == 0) continue;
    const auto event = static_cast<ConversionEvent>(i);
    Json one = {{"event", ConversionReport::EventName(event)},
                {"stage", ConversionReport::StageName(ConversionReport::StageOf(event))},
                {"reason", ConversionReport::Reason(event)}};
    one.update(FateAsJson(tally.events[i], number));
    json[ConversionReport::IsLoss(event) ? "unplaced" : "doubts"].push_back(one);
  }
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace orv::tool
