#include "bench/Harness.h"

#include <time.h>

#include <algorithm>
#include <barrier>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>

#include "bench/Peers.h"
#include "orv/convert/internal/JsonText.h"
#include "orv/lanes/Dispatch.h"

namespace orv::bench {

namespace {

constexpr unsigned kSeed = 20260104;
constexpr size_t kSmallSizes[] = {1, 2, 4, 8, 16, 100, 1000};
constexpr size_t kHuge = 16000000;
constexpr size_t kFewPoints = 20000;      // of one pass in small batches
constexpr size_t kSinglePoints = 100000;  // of one pass of a side that takes no batches
constexpr int kHugeRounds = 3;

struct Direction {
  const char* name;
  bool isInverse;
};

double Now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void Scale(Points& points, double factor) {
  if (factor == 1.0) return;
  for (shr::Vec2d& point : points) point = {point.x * factor, point.y * factor};
}

/// Conversions of nothing, or to nothing, would be fast for no reason.
void RequirePlaced(const Points& points, const std::string& name) {
  if (points.empty()) throw std::runtime_error(name + ": no points");
  for (const shr::Vec2d& point : points) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || point.x == std::numeric_limits<double>::max()) {
      throw std::runtime_error(name + ": a point has no result");
    }
  }
}

/// What a side starts from in a direction, given the case's points: results of its own for the inverse.
Points InputOf(const Side& side, const Both& both, Points drawn, bool isInverse) {
  Scale(drawn, side.inputUnit);
  if (isInverse) both.forward(drawn.data(), drawn.size());
  return drawn;
}

void RequireClose(const Points& a, const Points& b, double apart, const std::string& name) {
  RequirePlaced(a, name);
  double largest = 0.0;
  for (size_t i = 0; i < a.size(); ++i) {
    const double distance = std::max(std::abs(a[i].x - b[i].x), std::abs(a[i].y - b[i].y));
    if (!(distance <= largest)) largest = distance;
  }
  if (!(largest <= apart)) {
    char text[100];
    std::snprintf(text, sizeof text, ": results are %g apart, %g at most were expected", largest, apart);
    throw std::runtime_error(name + text);
  }
}

const std::vector<const char*>& Sets() {
  static const std::vector<const char*> sets = [] {
    std::vector<const char*> found;
    for (const char* isa : {"avx512", "avx2", "sse2", "neon", "one"}) {
      if (lanes::KernelsOf(isa)) found.push_back(isa);
    }
    return found;
  }();
  return sets;
}

/// One side in one direction, with one instruction set and one size of batch.
struct Run {
  const Side* side = nullptr;
  const char* isa = nullptr;  // null: a peer
  size_t batch = 0;
  size_t points = 0;  // of one pass
  int threads = 0;    // 0: processor time of the caller's; else so many threads of their own, by the clock
  std::vector<double> nanoseconds;  // for each point, by round
};

/// What is needed to take a run's time.
struct Prepared {
  std::vector<Work> work;  // one for each thread
  Points input;
};

/// Nanoseconds of processor time for each point.
double TimeOnce(const Run& run, const Prepared& prepared, Points& room) {
  room.assign(prepared.input.begin(), prepared.input.begin() + static_cast<std::ptrdiff_t>(run.points));
  const Work& work = prepared.work[0];
  const double start = Now(CLOCK_THREAD_CPUTIME_ID);
  for (size_t at = 0; at + run.batch <= run.points; at += run.batch) work(room.data() + at, run.batch);
  const double seconds = Now(CLOCK_THREAD_CPUTIME_ID) - start;
  return seconds * 1e9 / static_cast<double>(run.points / run.batch * run.batch);
}

/// Nanoseconds on the clock for each point, all threads together.
double TimeThreads(const Run& run, const Prepared& prepared) {
  std::barrier gate(run.threads + 1);
  std::vector<std::thread> threads;
  for (int i = 0; i < run.threads; ++i) {
    threads.emplace_back([&, i] {
      Points room(prepared.input.begin(), prepared.input.begin() + static_cast<std::ptrdiff_t>(run.points));
      gate.arrive_and_wait();
      prepared.work[static_cast<size_t>(i)](room.data(), run.points);
    });
  }
  gate.arrive_and_wait();
  const double start = Now(CLOCK_MONOTONIC);
  for (std::thread& thread : threads) thread.join();
  return (Now(CLOCK_MONOTONIC) - start) * 1e9 / static_cast<double>(run.points) / run.threads;
}

const Work& WorkOf(const Both& both, bool isInverse) { return isInverse ? both.inverse : both.forward; }

std::vector<Run> RunsOf(const Case& subject, const Side& side, bool isInverse) {
  std::vector<Run> runs;
  const bool isOurs = &side == &subject.sides.front();
  const auto add = [&](const char* isa, size_t batch, size_t points, int threads = 0) {
    runs.push_back({&side, isa, batch, points, threads, {}});
  };
  if (!isOurs && !side.takesBatches) {
    add(nullptr, subject.largest, std::min(subject.largest, kSinglePoints));
    runs.back().batch = runs.back().points;
    return runs;
  }
  const char* const best = isOurs ? Sets().front() : nullptr;
  add(best, subject.largest, subject.largest);
  for (size_t i = 1; isOurs && i < Sets().size(); ++i) add(Sets()[i], subject.largest, subject.largest);
  for (const size_t size : kSmallSizes) add(best, size, kFewPoints);
  if (subject.huge && !isInverse) add(best, kHuge, kHuge);
  if (subject.threads && !isInverse && isOurs) {
    for (const int threads : {1, 2}) add(best, subject.largest, subject.largest, threads);
  }
  return runs;
}

std::string Processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    const size_t colon = line.find(": ");
    if (line.rfind("model name", 0) == 0 && colon != std::string::npos) return line.substr(colon + 2);
  }
  return "unknown";
}

std::string Today() {
  const std::time_t now = std::time(nullptr);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", std::gmtime(&now));
  return text;
}

/// To hundredths.
double Rounded(double value) { return std::round(value * 100.0) / 100.0; }

void WriteRun(internal::JsonText& json, const Run& run) {
  const double median = Median(run.nanoseconds);
  if (!(median > 0.3)) throw std::runtime_error("a point in less than a cycle: nothing was done");
  json.BeginObject().Key("who").Text(run.side->who);
  if (run.isa) json.Key("set").Text(run.isa);
  json.Key("batch").Number(run.batch);
  if (run.threads != 0) json.Key("threads").Number(static_cast<size_t>(run.threads));
  json.Key("nanoseconds").Number(Rounded(median));
  json.Key("least").Number(Rounded(*std::min_element(run.nanoseconds.begin(), run.nanoseconds.end())));
  json.Key("most").Number(Rounded(*std::max_element(run.nanoseconds.begin(), run.nanoseconds.end())));
  json.EndObject();
}

void MeasureDirection(const Case& subject, const Direction& direction, int rounds, internal::JsonText& json) {
  std::vector<Run> runs;
  std::map<const Side*, Prepared> prepared;
  for (const Side& side : subject.sides) {
    const Both both = side.make();
    if (!WorkOf(both, direction.isInverse)) continue;
    size_t most = 0;
    for (const Run& run : RunsOf(subject, side, direction.isInverse)) {
      most = std::max(most, run.points);
      runs.push_back(run);
    }
    Prepared& ready = prepared[&side];
    ready.input = InputOf(side, both, subject.draw(most), direction.isInverse);
    RequirePlaced(ready.input, subject.subject + " of " + side.who);
    ready.work = {WorkOf(both, direction.isInverse), WorkOf(side.make(), direction.isInverse)};
  }
  Points room;
  std::mt19937 random(kSeed);
  std::vector<Run*> order;
  for (Run& run : runs) order.push_back(&run);
  for (int round = -1; round < rounds; ++round) {  // the first warms up and does not count
    std::shuffle(order.begin(), order.end(), random);
    for (Run* const run : order) {
      if (run->batch == kHuge && round >= std::min(rounds, kHugeRounds)) continue;
      lanes::LimitKernels(run->isa);
      const Prepared& ready = prepared[run->side];
      if (round < 0) {
        Run few = *run;
        few.points = std::min<size_t>(run->points, 1000);
        few.batch = std::min(run->batch, few.points);
        TimeOnce(few, ready, room);
      } else {
        run->nanoseconds.push_back(run->threads == 0 ? TimeOnce(*run, ready, room)
                                                     : TimeThreads(*run, ready));
      }
    }
  }
  lanes::LimitKernels(nullptr);

  json.BeginObject();
  json.Key("subject").Text(subject.subject).Key("direction").Text(direction.name);
  json.Key("goal").Text(NameOf(direction.isInverse ? subject.inverseGoal : subject.goal));
  json.Key("largest").Number(subject.largest).Key("runs").BeginArray();
  for (const Run& run : runs) WriteRun(json, run);
  json.EndArray().EndObject();
}

std::vector<Direction> DirectionsOf(const Case& subject) {
  if (subject.isWhole) return {{"transform", false}};
  std::vector<Direction> directions = {{"forward", false}};
  if (subject.sides.front().make().inverse) directions.push_back({"inverse", true});
  return directions;
}

/// Microseconds of one call, or what the unit says.  The clock is read once for many calls: reading it takes microseconds.
double MeasureOnce(const Once& once, int rounds) {
  const auto timeOf = [&once](int calls) {
    const double start = Now(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 0; i < calls; ++i) once.work();
    return Now(CLOCK_THREAD_CPUTIME_ID) - start;
  };
  once.work();
  int calls = 1;
  while (timeOf(calls) < 0.02) calls *= 2;
  std::vector<double> values;
  for (int round = 0; round < rounds; ++round) {
    const double microseconds = timeOf(calls) / calls * 1e6;
    values.push_back(once.units == 0.0 ? microseconds : once.units / microseconds);
  }
  return Median(values);
}

}  // namespace

const char* NameOf(Goal goal) {
  constexpr const char* kNames[] = {"", "closed", "iterates", "shift", "grid", "system"};
  return kNames[static_cast<size_t>(goal)];
}

Points RandomPoints(const Box& box, size_t count) {
  std::mt19937_64 random(kSeed);
  std::uniform_real_distribution<double> lon(box.west, box.east), lat(box.south, box.north);
  Points points(count);
  for (shr::Vec2d& point : points) point = {lon(random), lat(random)};
  return points;
}

void Check(const Case& subject) {
  constexpr size_t kPoints = 500;
  const Points drawn = subject.draw(kPoints);
  const bool hasInverse = bool{subject.sides.front().make().inverse};
  Points ours;
  for (const Side& side : subject.sides) {
    const std::string name = subject.subject + " of " + side.who;
    const Both both = side.make();
    Points there = InputOf(side, both, drawn, true);
    Points back = there;
    Scale(there, 1.0 / side.outputUnit);
    if (side.reading) std::transform(there.begin(), there.end(), there.begin(), side.reading);
    RequirePlaced(there, name);
    if (ours.empty()) ours = there;
    RequireClose(there, ours, subject.apart, name);
    if (!hasInverse || !both.inverse) continue;
    both.inverse(back.data(), back.size());
    Scale(back, 1.0 / side.inputUnit);
    RequireClose(back, drawn, subject.backApart, name + ", back");
  }
}

void Measure(const std::vector<Case>& cases, const std::vector<Once>& once, const Options& options) {
  const auto chosen = [&](const std::string& name) { return name.find(options.only) != std::string::npos; };
  internal::JsonText json;
  json.BeginObject();
  json.Key("date")
      .Text(Today())
      .Key("processor")
      .Text(Processor())
      .Key("compiler")
      .Text(
#if defined(__clang__)
          "clang " __clang_version__
#else
          "g++ " __VERSION__
#endif
      );
  json.Key("proj").Text(ProjVersion()).Key("geographiclib").Text(GeographicLibVersion());
  json.Key("rounds").Number(static_cast<size_t>(options.rounds)).Key("sets").BeginArray();
  for (const char* isa : Sets()) json.Text(isa);
  json.EndArray().Key("rows").BeginArray();
  for (const Case& subject : cases) {
    if (!chosen(subject.subject)) continue;
    std::fprintf(stderr, "%s\n", subject.subject.c_str());
    Check(subject);
    for (const Direction& direction : DirectionsOf(subject)) {
      MeasureDirection(subject, direction, options.rounds, json);
    }
  }
  json.EndArray().Key("once").BeginArray();
  for (const Once& work : once) {
    if (!chosen(work.name)) continue;
    json.BeginObject().Key("name").Text(work.name).Key("unit").Text(work.unit);
    json.Key("value").Number(Rounded(MeasureOnce(work, options.rounds))).EndObject();
  }
  json.EndArray().EndObject();
  std::ofstream file(options.out);
  if (!(file << json.Finish()) || !file.flush()) throw std::runtime_error("cannot write " + options.out);
}

}  // namespace orv::bench
