// orv bench: how fast a conversion is on this machine, by the number of points at a time.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "orv/convert/Conversion.h"
#include "orv/convert/internal/JsonText.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

using Clock = std::chrono::steady_clock;

using Area = std::array<double, 4>;  // west, south, east, north

struct BenchOptions {
  std::string from;
  std::string to;
  std::string area;  ///< west, south, east, north; empty: see AreaOf
  size_t points = 100000;
  double seconds = 0.2;
  bool json = false;
};

/// Where the points lie when the options do not say: 3 degrees around the origin of the source's projection, or of the
/// target's when the source has none; from the equator to 60 degrees north where the origin is on the equator.
Area AreaOf(const CSDef& from, const CSDef& to) {
  const ORVDef* const system = Projected(from) ? Projected(from) : Projected(to);
  if (!system) return {-180.0, -80.0, 180.0, 80.0};
  ProjectionParameters p;
  system->GetProjection()->GetParameters(p);
  const double lat0 = ProjectionDef::UsesParameter(p.method, ProjectionParameterIDLat0) ? p.Lat0 : 0.0;
  const double lon0 = ProjectionDef::UsesParameter(p.method, ProjectionParameterIDLon0) ? p.Lon0 : 0.0;
  if (lat0 == 0.0) return {lon0 - 3.0, 0.0, lon0 + 3.0, 60.0};
  return {lon0 - 3.0, std::max(lat0 - 3.0, -90.0), lon0 + 3.0, std::min(lat0 + 3.0, 90.0)};
}

std::string Where(const Area& area) {
  return fmt::format("{:g} to {:g} degrees of longitude, {:g} to {:g} of latitude", area[0], area[2], area[1],
                     area[3]);
}

/// Random points of the area in the source's coordinates, all of which the conversion places without a doubt.
std::vector<shr::Vec2d> DrawPoints(const CSDef& from, const orv::Conversion& conversion, const Area& area,
                                   size_t count) {
  constexpr size_t kAtATime = 1000, kMostTries = 20;
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> x(area[0], area[2]), y(area[1], area[3]);
  std::unique_ptr<orv::Conversion> toSource;
  if (const ORVDef* const system = Projected(from)) {
    const ProjectionDef unprojected(ProjectionMethodUnprojected);
    toSource = std::make_unique<orv::Conversion>(
        orv::Conversion::Create(ORVDef(system->GetDatum(), &unprojected, nullptr), from));
  }
  std::vector<shr::Vec2d> points;
  for (size_t i = 0; points.size() < count && i < kMostTries * (count / kAtATime + 1); ++i) {
    std::vector<shr::Vec2d> sources(kAtATime);
    for (shr::Vec2d& point : sources) point = shr::Vec2d(x(random), y(random));
    if (toSource) toSource->Convert(sources.data(), sources.size());
    for (const shr::Vec2d& source : sources) {
      shr::Vec2d result = source;
      ConversionReport report;
      conversion.Convert(&result, 1, report);
      if (report.Placed() == 1 && report.Doubtful() == 0 && points.size() < count) points.push_back(source);
    }
  }
  if (points.size() < count) {
    throw UsageError(
        fmt::format("most points of {} have no good place in both systems; give --area", Where(area)));
  }
  return points;
}

/// Million points per second, with so many at a time.
double Speed(const orv::Conversion& conversion, const std::vector<shr::Vec2d>& points, size_t batch,
             double seconds) {
  orv::Conversion::Worker worker = conversion.MakeWorker();
  std::vector<shr::Vec2d> room(batch);
  size_t done = 0, at = 0;
  const auto start = Clock::now();
  double spent = 0.0;
  while (spent < seconds) {
    // Some thousand points between two looks at the clock.
    for (size_t i = 0; i < 1 + 4096 / batch; ++i) {
      if (at + batch > points.size()) at = 0;
      std::copy_n(points.begin() + static_cast<ptrdiff_t>(at), batch, room.begin());
      worker.Convert(room.data(), batch);
      at += batch;
      done += batch;
    }
    spent = std::chrono::duration<double>(Clock::now() - start).count();
  }
  return static_cast<double>(done) / spent * 1e-6;
}

int RunBench(const BenchOptions& options) {
  const std::unique_ptr<CSDef> from = ReadSystem(options.from), to = ReadSystem(options.to);
  const orv::Conversion conversion = orv::Conversion::Create(*from, *to);
  const Area area = options.area.empty() ? AreaOf(*from, *to) : ReadArea("--area", options.area);
  const std::vector<shr::Vec2d> points = DrawPoints(*from, conversion, area, options.points);
  internal::JsonText json;
  json.BeginObject().Key("from").Text(options.from).Key("to").Text(options.to);
  json.Key("points").Number(points.size()).Key("area").BeginArray();
  for (const double side : area) json.Number(side);
  json.EndArray().Key("runs").BeginArray();
  std::string text = fmt::format("{} points, {}; one thread\n{:>16}  {:>16}\n", points.size(), Where(area),
                                 "points at a time", "million points/s");
  for (size_t batch = 1; batch <= points.size(); batch *= 10) {
    const double speed = Speed(conversion, points, batch, options.seconds);
    json.BeginObject().Key("batch").Number(batch).Key("millionPointsPerSecond").Number(speed).EndObject();
    text += fmt::format("{:>16}  {:>16.2f}\n", batch, speed);
  }
  WriteOutput(options.json ? json.EndArray().EndObject().Finish() : text);
  return ExitAllDone;
}

}  // namespace

void AddBenchCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("bench", "Time a conversion on this machine");
  const auto options = std::make_shared<BenchOptions>();
  command->add_option("--from,-f", options->from, "System of the points")->type_name("DEF")->required();
  command->add_option("--to,-t", options->to, "System that they are converted to")
      ->type_name("DEF")
      ->required();
  command
      ->add_option(
          "--area", options->area,
          "Where the points lie, degrees on the source's datum; around the projection's origin when not given")
      ->type_name("W,S,E,N");
  command->add_option("--points,-n", options->points, "How many different points")
      ->type_name("N")
      ->check(CLI::Range(1, 10000000))
      ->capture_default_str();
  command->add_option("--seconds", options->seconds, "Time for each number of points at a time")
      ->type_name("SECONDS")
      ->check(CLI::Range(0.001, 100.0))
      ->capture_default_str();
  command->add_flag("--json", options->json, "As JSON");
  command->footer(kSystemArgumentHelp);
  command->callback([options, &status] { status = RunBench(*options); });
}

}  // namespace orv::tool
