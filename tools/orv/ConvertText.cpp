// The conversion of lines of points.
#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <memory>
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
  std::shared_ptr<const TextForm> shape;
  std::vector<shr::Vec2d> sources;  ///< the points before their conversion
  BlockTally tally;
};

bool LooksLikeDegrees(const shr::Vec2d& point) {
  return std::fabs(point.x) <= 180.0 && std::fabs(point.y) <= 90.0;
}

/// Lists the rows without a result, and finds the lines that the report's first points are in.
void CollectTally(Job& job) {
  BlockTally& tally = job.tally;
  tally.lines = job.text.lines;
  tally.points = job.text.rows.size();
  tally.lost.clear();
  for (const TextRow& row : job.text.rows) {
    if (row.point < 0) {
      const TextProblem& problem = job.text.problems[static_cast<size_t>(-1 - row.point)];
      tally.lost.push_back(
          {row.line, true, problem.kind, problem.kind == BadLine::BeyondPole, problem.point, problem.text});
    } else if (IsLost(job.text.points[static_cast<size_t>(row.point)])) {
      tally.lost.push_back(
          {row.line, false, BadLine::NoNumber, true, job.sources[static_cast<size_t>(row.point)], kNoPlace});
    }
  }
  for (size_t i = 0; i < kConversionEvents; ++i) {
    const ConversionTally& event = tally.report.Tally(static_cast<ConversionEvent>(i));
    if (event.count == 0) continue;
    const auto row = std::find_if(job.text.rows.begin(), job.text.rows.end(), [&](const TextRow& one) {
      return one.point == static_cast<int32_t>(event.first);
    });
    tally.firstPlace[i] = row->line;
  }
}

void Work(Job& job, const TextForm& form, const Conversion& conversion) {
  ReadRows(form, job.text);
  std::vector<shr::Vec2d>& points = job.text.points;
  job.sources = points;
  job.tally.likeDegrees =
      form.Options().fromGeographic
          ? 0
          : static_cast<uint64_t>(std::count_if(points.begin(), points.end(), &LooksLikeDegrees));
  job.tally.report = ConversionReport();
  const auto start = Clock::now();
  if (!points.empty()) conversion.Convert(points.data(), points.size(), job.tally.report);
  job.tally.converting = Clock::now() - start;
  CollectTally(job);
  WriteRows(form, job.text);
}

}  // namespace

void ConvertText(InputFile& input, TextForm& form, const Conversion& conversion, size_t workers,
                 ConvertTally& tally) {
  LineSource source(input);
  Progress progress(input.Size(), !IsQuiet() && ErrorIsTerminal());
  uint64_t bytes = 0;

  // The form as the blocks that are read now need it: those in front of the first line may be worked on while that is found.
  std::shared_ptr<const TextForm> shape;
  Pipeline<Job> pipeline;
  pipeline.read = [&](Job& job) {
    if (!source.Next(job.text.input)) return false;
    job.text.start = TextForm::Start{0, 0};
    if (!form.HasBegun()) {
      job.text.start = form.Begin(job.text.input.View());
      shape = std::make_shared<const TextForm>(form);
    }
    job.shape = shape;
    return true;
  };
  pipeline.work = [&](Job& job) { Work(job, *job.shape, conversion); };
  pipeline.write = [&](Job& job) {
    WriteDirectly(job.text.output.Data(), job.text.output.Size());
    bytes += job.text.input.Size();
    if (!job.tally.lost.empty()) progress.Hide();
    for (const LostPoint& lost : job.tally.lost) {
      Note(fmt::format("line {}: {}", tally.lines + lost.place + 1, lost.message));
    }
    tally.Add(job.tally, job.sources, tally.lines);
    progress.Update(bytes, tally.points);
  };
  pipeline.Run(workers);
}

}  // namespace orv::tool
