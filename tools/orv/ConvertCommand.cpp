// orv convert: points from one system to another.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <string>

#include "tools/orv/Command.h"
#include "tools/orv/Conversion.h"
#include "tools/orv/PointReader.h"
#include "tools/orv/PointWriter.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

const char* const kConvertHelp =
    "x is longitude (degrees, east positive) or easting, y is latitude (degrees, north positive) or northing; always\n"
    "x first, unless --columns names them otherwise.\n";

const char* const kTextHelp =
    "Text: one point on each line.  The separator is detected on the first line that is not empty: a tab, else a\n"
    "comma, else a semicolon, else blanks.  That line is a header, which is kept, when --columns gives names, or when\n"
    "neither of its coordinates begins with a digit, sign or point.  Fields in double quotes are understood (but for\n"
    "tabs) and do not go on in the next line.  Longitude and latitude may also be degrees, minutes and seconds:\n"
    "9d30m15.5sE, 52d31'N, 9\xC2\xB0"
    "30'W.\n"
    "All other columns, empty lines and line ends are written as they were read.\n"
    "A line that does not parse, or a point that has no place in the target system, is reported as \"orv: line N: ...\",\n"
    "is written with empty coordinates (\"\" between blanks), and makes the exit status 1; nothing is dropped.\n"
    "Binary: pairs of little-endian 64-bit floating-point numbers, x then y; a point without a result is NaN NaN and\n"
    "is reported as \"orv: point N: ...\".\n";

const std::map<std::string, Separator> kSeparators = {{"comma", Separator::Comma},
                                                      {"semicolon", Separator::Semicolon},
                                                      {"tab", Separator::Tab},
                                                      {"blanks", Separator::Blanks}};

constexpr const char* kNoPlace = "the point has no place in the target system";

struct ConvertOptions {
  std::string from;
  std::string to;
  std::string file = "-";
  std::string columns;
  std::string header = "auto";
  std::string separator = "auto";
  int precision = -1;
  bool binary = false;
  bool stats = false;
};

using Clock = std::chrono::steady_clock;

/// What has been done, for --stats and the exit status.
struct Tally {
  size_t points = 0;
  size_t lost = 0;
  Clock::duration converting{};
};

double Seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

struct CloseFile {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};

std::unique_ptr<std::FILE, CloseFile> OpenInput(const std::string& name) {
  if (name == "-") return std::unique_ptr<std::FILE, CloseFile>(stdin);
  std::unique_ptr<std::FILE, CloseFile> file(std::fopen(name.c_str(), "rb"));
  if (!file) throw UsageError(fmt::format("cannot open '{}': {}", name, std::strerror(errno)));
  return file;
}

std::unique_ptr<CSDef> ReadSide(const char* option, const std::string& text) {
  try {
    return ReadSystem(text);
  } catch (const UsageError& e) {
    throw UsageError(fmt::format("{}: {}", option, e.what()));
  }
}

void ConvertBlock(const Conversion& conversion, PointBlock& block, Tally& tally) {
  const auto start = Clock::now();
  if (!block.points.empty()) conversion.Convert(block.points.data(), block.points.size());
  tally.converting += Clock::now() - start;
}

void ConvertText(const ConvertOptions& options, const Conversion& conversion, std::FILE* input,
                 Tally& tally) {
  TextPointReader::Options form;
  form.geographic = conversion.FromGeographic();
  if (options.header != "auto") form.header = options.header == "yes";
  if (options.separator != "auto") form.separator = kSeparators.at(options.separator);
  if (!options.columns.empty()) form.columns = ColumnChoice(options.columns);
  const int decimals = options.precision >= 0 ? options.precision : conversion.ToGeographic() ? 9 : 4;

  TextPointReader reader(input, form);
  PointBlock block;
  std::string output;
  while (reader.Next(block)) {
    ConvertBlock(conversion, block, tally);
    output.clear();
    AppendText(output, block, reader.FieldSeparator(), reader.CoordinateColumns(), decimals);
    WriteOutput(output);
    for (size_t i = 0; i < block.rows.size(); ++i) {
      const TextRow& row = block.rows[i];
      if (row.kind == TextRow::Copied) continue;
      ++tally.points;
      const bool bad = row.kind == TextRow::Bad;
      if (!bad && !IsLost(block.points[row.point])) continue;
      ++tally.lost;
      Report(fmt::format("line {}: {}", block.first + i, bad ? block.problems[row.point].c_str() : kNoPlace));
    }
  }
}

void ConvertBinary(const Conversion& conversion, std::FILE* input, Tally& tally) {
  BinaryPointReader reader(input);
  PointBlock block;
  std::string output;
  std::map<size_t, std::string> beyond;
  while (reader.Next(block)) {
    beyond.clear();
    for (size_t i = 0; conversion.FromGeographic() && i < block.points.size(); ++i) {
      shr::Vec2d& point = block.points[i];
      if (!(std::fabs(point.y) > 90.0)) continue;
      beyond[i] = fmt::format("latitude {} is beyond 90 degrees", point.y);
      point.x = point.y = std::numeric_limits<double>::quiet_NaN();
    }
    ConvertBlock(conversion, block, tally);
    output.clear();
    AppendBinary(output, block);
    WriteOutput(output);
    tally.points += block.points.size();
    for (size_t i = 0; i < block.points.size(); ++i) {
      if (!IsLost(block.points[i])) continue;
      ++tally.lost;
      const auto reason = beyond.find(i);
      Report(
          fmt::format("point {}: {}", block.first + i, reason != beyond.end() ? reason->second : kNoPlace));
    }
  }
}

int RunConvert(const ConvertOptions& options) {
  const auto start = Clock::now();
  const std::unique_ptr<CSDef> from = ReadSide("--from", options.from);
  const std::unique_ptr<CSDef> to = ReadSide("--to", options.to);
  const Conversion conversion(*from, *to);
  const auto input = OpenInput(options.file);
  Tally tally;
  if (options.binary) {
    ConvertBinary(conversion, input.get(), tally);
  } else {
    ConvertText(options, conversion, input.get(), tally);
  }
  FlushOutput();
  if (options.stats) {
    const double all = Seconds(Clock::now() - start), inside = Seconds(tally.converting);
    const auto points = static_cast<double>(tally.points);
    Report(fmt::format(
        "{} points, {} without a result; {:.3f} s, {:.2f} million points/s; conversion alone {:.3f} s, "
        "{:.2f} million points/s",
        tally.points, tally.lost, all, points / all * 1e-6, inside,
        inside > 0.0 ? points / inside * 1e-6 : 0.0));
  }
  return tally.lost == 0 ? ExitAllDone : ExitSomeLost;
}

}  // namespace

void AddConvertCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("convert", "Convert points, written in the order and form in which they were read");
  const auto options = std::make_shared<ConvertOptions>();
  command->add_option("--from,-f", options->from, "System of the points that are read")
      ->type_name("DEF")
      ->required();
  command->add_option("--to,-t", options->to, "System of the points that are written")
      ->type_name("DEF")
      ->required();
  command->add_option("file", options->file, "File to read; standard input when not given, or -")
      ->type_name("FILE");
  command
      ->add_option("--columns,-c", options->columns,
                   "Columns of x and y, by name in the header or by number from 1; 1,2 when not given")
      ->type_name("X,Y");
  command->add_option("--header", options->header, "Whether the first line is a header")
      ->check(CLI::IsMember({"auto", "yes", "no"}))
      ->capture_default_str();
  command->add_option("--separator", options->separator, "What stands between fields")
      ->check(CLI::IsMember({"auto", "comma", "semicolon", "tab", "blanks"}))
      ->capture_default_str();
  command
      ->add_option("--precision,-p", options->precision, "Decimals; 9 for geographic and 4 for other targets")
      ->check(CLI::Range(0, 20));
  command->add_flag("--binary,-b", options->binary, "Read and write binary data");
  command->add_flag("--stats", options->stats,
                    "Say on standard error how many points went through and how fast");
  command->footer(fmt::format("{}\n{}\n{}", kConvertHelp, kTextHelp, kSystemArgumentHelp));
  command->callback([options, &status] { status = RunConvert(*options); });
}

}  // namespace orv::tool
