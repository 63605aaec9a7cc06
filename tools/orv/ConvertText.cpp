// The conversion of lines of points.
#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/orv/Command.h"
#include "tools/orv/ConvertRun.h"
#include "tools/orv/LineSource.h"
#include "tools/orv/Pipeline.h"
#include "tools/orv/Progress.h"
#include "tools/orv/TextBlock.h"

namespace orv::tool {

const char* const kNoPlace = "the point has no place in the target system";

namespace {

using Clock = std::chrono::steady_clock;

struct Job {
  TextBlock text;
  std::vector<shr::Vec2d> sources;  ///< the points before their conversion
  std::vector<LostPoint> lost;
  uint64_t likeDegrees = 0;
  Clock::duration converting{};
};

bool LooksLikeDegrees(const shr::Vec2d& point) {
  return std::fabs(point.x) <= 180.0 && std::fabs(point.y) <= 90.0;
}

/// Lists the rows without a result.
void CollectLost(Job& job) {
  job.lost.clear();
  for (const TextRow& row : job.text.rows) {
    if (row.point < 0) {
      const TextProblem& problem = job.text.problems[static_cast<size_t>(-1 - row.point)];
      job.lost.push_back(
          {row.line, true, problem.kind, problem.kind == BadLine::BeyondPole, problem.point, problem.text});
    } else if (IsLost(job.text.points[static_cast<size_t>(row.point)])) {
      job.lost.push_back(
          {row.line, false, BadLine::NoNumber, true, job.sources[static_cast<size_t>(row.point)], kNoPlace});
    }
  }
}

void Work(Job& job, const TextForm& form, const Conversion& conversion) {
  ReadRows(form, job.text);
  std::vector<shr::Vec2d>& points = job.text.points;
  job.sources = points;
  job.likeDegrees =
      form.Options().fromGeographic
          ? 0
          : static_cast<uint64_t>(std::count_if(points.begin(), points.end(), &LooksLikeDegrees));
  const auto start = Clock::now();
  if (!points.empty()) conversion.Convert(points.data(), points.size());
  job.converting = Clock::now() - start;
  CollectLost(job);
  WriteRows(form, job.text);
}

}  // namespace

void ConvertText(InputFile& input, TextForm& form, const Conversion& conversion, size_t workers,
                 ConvertTally& tally) {
  const std::vector<Conversion> conversions(workers, conversion);  // one serves one thread at a time
  LineSource source(input);
  Progress progress(input.Size(), !IsQuiet() && ErrorIsTerminal());
  uint64_t bytes = 0;

  Pipeline<Job> pipeline;
  pipeline.read = [&](Job& job) {
    if (!source.Next(job.text.input)) return false;
    job.text.start = form.HasBegun() ? TextForm::Start{0, 0} : form.Begin(job.text.input.View());
    return true;
  };
  pipeline.work = [&](Job& job, size_t worker) { Work(job, form, conversions[worker]); };
  pipeline.write = [&](Job& job) {
    WriteDirectly(job.text.output.Data(), job.text.output.Size());
    bytes += job.text.input.Size();
    if (!job.lost.empty()) progress.Hide();
    for (const LostPoint& lost : job.lost) {
      const uint64_t number = tally.lines + lost.line + 1;
      tally.Add(lost, number);
      Note(fmt::format("line {}: {}", number, lost.message));
    }
    tally.lines += job.text.lines;
    tally.points += job.text.rows.size();
    tally.placed += job.text.rows.size() - job.lost.size();
    tally.likeDegrees += job.likeDegrees;
    tally.converting += job.converting;
    progress.Update(bytes, tally.points);
  };
  pipeline.Run(workers);
}

}  // namespace orv::tool
