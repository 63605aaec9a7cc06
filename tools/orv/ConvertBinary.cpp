// The conversion of pairs of 64-bit numbers.
#include <fmt/core.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/orv/ByteBuffer.h"
#include "tools/orv/Command.h"
#include "tools/orv/ConvertRun.h"
#include "tools/orv/LineSource.h"
#include "tools/orv/Pipeline.h"
#include "tools/orv/Progress.h"

namespace orv::tool {

namespace {

constexpr size_t kPointBytes = 16;

struct Job {
  ByteBuffer bytes;  ///< read, then written
  std::vector<shr::Vec2d> points;
  std::vector<shr::Vec2d> sources;
  BlockTally tally;
};

double LittleEndianDouble(const char* bytes) {
  uint64_t bits = 0;
  for (int i = 7; i >= 0; --i) bits = bits << 8 | static_cast<unsigned char>(bytes[i]);
  return std::bit_cast<double>(bits);
}

void PutLittleEndian(char* to, double value) {
  auto bits = std::bit_cast<uint64_t>(value);
  for (int i = 0; i < 8; ++i, bits >>= 8) to[i] = static_cast<char>(bits & 0xFF);
}

/// Whole points of a file.
class PointSource {
 public:
  explicit PointSource(InputFile& file) : m_File(file) {}

  bool Next(ByteBuffer& block) {
    block.Clear();
    block.Append(m_Rest.View());
    m_Rest.Clear();
    size_t got = 1;
    while (got > 0 && (block.Size() < kPointBytes || (block.Size() < kBlockBytes && m_File.IsReady()))) {
      got = m_File.Read(block.Room(kBlockBytes), kBlockBytes);
      block.Grow(got);
    }
    const size_t whole = block.Size() / kPointBytes * kPointBytes;
    m_Rest.Append(block.View().substr(whole));
    block.Shorten(whole);
    if (whole == 0 && m_Rest.Size() > 0) {
      throw UsageError(fmt::format("the data ends with {} byte{} of a point that has 16", m_Rest.Size(),
                                   m_Rest.Size() == 1 ? "" : "s"));
    }
    return whole > 0;
  }

 private:
  InputFile& m_File;
  ByteBuffer m_Rest;
};

void Work(Job& job, bool bLatFirst, const Conversion& conversion) {
  const size_t count = job.bytes.Size() / kPointBytes;
  const char* from = job.bytes.Data();
  job.points.resize(count);
  for (shr::Vec2d& point : job.points) {
    point = shr::Vec2d(LittleEndianDouble(from), LittleEndianDouble(from + 8));
    if (bLatFirst && conversion.FromGeographic()) std::swap(point.x, point.y);
    from += kPointBytes;
  }
  job.sources = job.points;
  const auto start = std::chrono::steady_clock::now();
  job.tally.report = ConversionReport();
  conversion.Convert(job.points.data(), count, job.tally.report);
  job.tally.converting = std::chrono::steady_clock::now() - start;

  job.tally.points = count;
  job.tally.lost.clear();
  for (size_t i = 0; i < kConversionEvents; ++i) {
    job.tally.firstPlace[i] =
        static_cast<uint32_t>(job.tally.report.Tally(static_cast<ConversionEvent>(i)).first);
  }
  char* to = job.bytes.Data();
  for (size_t i = 0; i < count; ++i, to += kPointBytes) {
    const shr::Vec2d& point = job.points[i];
    const bool bSwap = bLatFirst && conversion.ToGeographic();
    PutLittleEndian(to, bSwap ? point.y : point.x);
    PutLittleEndian(to + 8, bSwap ? point.x : point.y);
    if (!IsLost(point)) continue;
    const shr::Vec2d& source = job.sources[i];
    const bool bBeyond = conversion.FromGeographic() && std::fabs(source.y) > conversion.Pole();
    job.tally.lost.push_back(
        {static_cast<uint32_t>(i), false, BadLine::BeyondPole, true, source,
         bBeyond ? fmt::format("latitude {} is beyond 90 degrees", source.y) : kNoPlace});
  }
}

}  // namespace

void ConvertBinary(InputFile& input, bool bLatFirst, const Conversion& conversion, size_t workers,
                   ConvertTally& tally) {
  PointSource source(input);
  Progress progress(input.Size(), !IsQuiet() && ErrorIsTerminal());

  Pipeline<Job> pipeline;
  pipeline.read = [&](Job& job) { return source.Next(job.bytes); };
  pipeline.work = [&](Job& job) { Work(job, bLatFirst, conversion); };
  pipeline.write = [&](Job& job) {
    WriteDirectly(job.bytes.Data(), job.bytes.Size());
    if (!job.tally.lost.empty()) progress.Hide();
    for (const LostPoint& lost : job.tally.lost) {
      Note(fmt::format("point {}: {}", tally.points + lost.place + 1, lost.message));
    }
    tally.Add(job.tally, job.sources, tally.points);
    progress.Update(tally.points * kPointBytes, tally.points);
  };
  pipeline.Run(workers);
}

}  // namespace orv::tool
