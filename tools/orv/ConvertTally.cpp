#include "tools/orv/ConvertTally.h"

#include <nlohmann/json.hpp>

namespace orv::tool {

namespace {

constexpr size_t kSampleSize = 1000;

using Json = nlohmann::ordered_json;

Json FateAsJson(const Fate& fate, const char* number) {
  return {{"count", fate.count}, {"first", {{number, fate.first}, {"message", fate.what}}}};
}

}  // namespace

void Fate::Add(uint64_t number, const std::string& message) {
  if (count++ > 0) return;
  first = number;
  what = message;
}

uint64_t ConvertTally::Bad() const {
  uint64_t sum = 0;
  for (const Fate& fate : bad) sum += fate.count;
  return sum;
}

void ConvertTally::Add(const LostPoint& lost, uint64_t number) {
  (lost.bBad ? bad[static_cast<size_t>(lost.kind)] : unplaced).Add(number, lost.message);
  if (lost.bRead && lostSample.size() < kSampleSize) lostSample.push_back(lost.source);
}

std::string ReportAsJson(const ConvertTally& tally, const std::string& from, const std::string& to,
                         bool bBinary) {
  const char* const number = bBinary ? "point" : "line";
  Json json = {{"from", from}, {"to", to}};
  if (!bBinary) json["lines"] = tally.lines;
  json["points"] = tally.points;
  json["placed"] = tally.placed;
  json["lost"] = tally.Lost();
  json["unparsable"] = Json::object();
  for (size_t i = 0; i < kBadLineKinds; ++i) {
    if (tally.bad[i].count > 0)
      json["unparsable"][BadLineName(static_cast<BadLine>(i))] = FateAsJson(tally.bad[i], number);
  }
  json["unplaced"] = Json::object();
  if (tally.unplaced.count > 0) json["unplaced"]["no place"] = FateAsJson(tally.unplaced, number);
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace orv::tool
