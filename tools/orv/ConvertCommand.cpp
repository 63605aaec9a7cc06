// orv convert: points from one system to another.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include "tools/orv/Command.h"
#include "tools/orv/Conversion.h"
#include "tools/orv/ConvertHints.h"
#include "tools/orv/ConvertRun.h"
#include "tools/orv/GeoJsonConvert.h"
#include "tools/orv/SystemArgument.h"
#include "tools/orv/VectorConvert.h"

namespace orv::tool {

namespace {

const char* const kConvertHelp =
    "x is longitude (degrees, east positive) or easting, y is latitude (degrees, north positive) or northing; always\n"
    "x first, unless --columns names them otherwise.  With --lat-first the first of the two columns (of --columns, or 1)\n"
    "holds the latitude and the second the longitude, in what is read where --from is geographic, and in what is written\n"
    "where --to is geographic; easting stays in front of northing.\n";

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
    "GeoJSON: geometries are converted, all else stays as it was, but for bbox and crs, which are left out.  Lines and\n"
    "polygons are clipped to what the target's projection shows (--no-clip: not); what is cut off is no loss, and one that\n"
    "is cut loses its heights, which is told.  A position that has no place is left out and reported, and makes the exit\n"
    "status 1.  The whole file is held in memory.\n"
    "Other vector files (.shp .gpkg .gml .kml .fgb .tab .mif ..., or --format with GDAL's name of the format) are read by\n"
    "GDAL, where the module for it is installed (in lib/orvcore, or in the folder that ORV_MODULE_PATH names): all layers\n"
    "with their fields, clipped like GeoJSON.  Without --from each layer's own system is taken.  Written is the file that\n"
    "--output names, in the format of its extension or of --output-format; GeoJSON to standard output without it.\n"
    "Binary: pairs of little-endian 64-bit floating-point numbers, x then y; a point without a result is NaN NaN and\n"
    "is reported as \"orv: point N: ...\".\n";

const std::map<std::string, Separator> kSeparators = {{"comma", Separator::Comma},
                                                      {"semicolon", Separator::Semicolon},
                                                      {"tab", Separator::Tab},
                                                      {"blanks", Separator::Blanks}};

struct ConvertOptions {
  std::string from;
  std::string to;
  std::string file = "-";
  std::string columns;
  std::string header = "auto";
  std::string separator = "auto";
  int precision = -1;
  std::string format = "auto";
  std::string output;
  std::string outputFormat;
  std::string report;
  bool noClip = false;
  size_t jobs = 0;
  bool latFirst = false;
  bool binary = false;
  bool stats = false;
};

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

int DecimalsOf(const ConvertOptions& options, const Conversion& conversion) {
  if (options.precision >= 0) return options.precision;
  if (!conversion.ToGeographic()) return 4;
  return conversion.ToAngleUnit() > 10.0 ? 11 : 9;  // radians: 0.06 mm
}

TextOptions TextOptionsOf(const ConvertOptions& options, const Conversion& conversion) {
  TextOptions form;
  form.fromGeographic = conversion.FromGeographic();
  form.fromDegrees = conversion.FromAngleUnit() == 1.0;
  if (form.fromGeographic) form.pole = conversion.Pole();
  form.toGeographic = conversion.ToGeographic();
  form.latFirst = options.latFirst;
  form.decimals = DecimalsOf(options, conversion);
  if (options.header != "auto") form.header = options.header == "yes";
  if (options.separator != "auto") form.separator = kSeparators.at(options.separator);
  if (!options.columns.empty()) form.columns = ColumnChoice(options.columns);
  return form;
}

size_t WorkersOf(const ConvertOptions& options) {
  return options.jobs > 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
}

void WriteReport(const ConvertOptions& options, const ConvertTally& tally, bool bText) {
  const std::string text = ReportAsJson(tally, options.from, options.to, !bText);
  std::ofstream file(options.report, std::ios::binary);
  file << text << std::flush;
  if (!file) throw UsageError(fmt::format("--report: cannot write '{}'", options.report));
}

bool IsGeoJson(const ConvertOptions& options) {
  const std::string_view name = options.file;
  return options.format == "geojson" || (options.format == "auto" && !options.binary &&
                                         (name.ends_with(".geojson") || name.ends_with(".json")));
}

/// Whether GDAL is to read it, or to write what comes of it.
bool IsVector(const ConvertOptions& options) {
  if (options.binary) return false;
  if (!options.output.empty() || !options.outputFormat.empty()) return true;
  return options.format == "auto" ? IsNamedLikeVectorFile(options.file)
                                  : options.format != "text" && options.format != "geojson";
}

void TellClipped(const ClipTally& clipped) {
  if (clipped.clipped + clipped.dropped == 0) return;
  Note(fmt::format("{} lines and polygons whole, {} clipped, {} of them split, {} dropped", clipped.whole,
                   clipped.clipped, clipped.split, clipped.dropped));
}

void RunGeoJson(const ConvertOptions& options, const CSDef& from, const CSDef& to,
                const Conversion& conversion, ConvertTally& tally) {
  if (options.latFirst) throw UsageError("--lat-first: positions of GeoJSON are longitude, latitude");
  ClipTally clipped;
  ConvertGeoJson(ReadFile(options.file), options.file, from, to,
                 {!options.noClip, DecimalsOf(options, conversion)}, tally, clipped);
  TellClipped(clipped);
}

int RunVector(const ConvertOptions& options) {
  if (options.latFirst) throw UsageError("--lat-first: vector files hold longitude before latitude");
  if (options.format == "text") throw UsageError("--output: points in lines of text go to standard output");
  const std::unique_ptr<CSDef> from = options.from.empty() ? nullptr : ReadSystem(options.from, "--from");
  const std::unique_ptr<CSDef> to = ReadSystem(options.to, "--to");
  VectorOptions vector;
  vector.input = options.file;
  if (options.format != "auto") vector.inputFormat = options.format;
  vector.output = options.output;
  vector.outputFormat = options.outputFormat;
  vector.pFrom = from.get();
  vector.bClip = !options.noClip;
  vector.decimals = options.precision;
  ConvertTally tally;
  ClipTally clipped;
  ConvertVectorFile(vector, *to, tally, clipped);
  TellClipped(clipped);
  if (!options.report.empty()) WriteReport(options, tally, false);
  return tally.Lost() == 0 ? ExitAllDone : ExitSomeLost;
}

int RunConvert(const ConvertOptions& options) {
  const auto start = Clock::now();
  if (IsVector(options)) return RunVector(options);
  if (options.from.empty()) throw UsageError("--from is required");
  const std::unique_ptr<CSDef> from = ReadSystem(options.from, "--from");
  const std::unique_ptr<CSDef> to = ReadSystem(options.to, "--to");
  const Conversion conversion(*from, *to);
  InputFile input(options.file);
  ConvertTally tally;
  const bool bGeoJson = IsGeoJson(options);
  if (bGeoJson) {
    RunGeoJson(options, *from, *to, conversion, tally);
  } else if (options.binary) {
    ConvertBinary(input, options.latFirst, conversion, WorkersOf(options), tally);
  } else {
    TextForm form(TextOptionsOf(options, conversion));
    ConvertText(input, form, conversion, WorkersOf(options), tally);
  }
  if (!options.report.empty()) WriteReport(options, tally, !options.binary && !bGeoJson);
  for (const std::string& hint : Hints({*from, conversion, tally, input.Title(), options.latFirst,
                                        options.binary || bGeoJson, bGeoJson})) {
    Note(hint);
  }
  if (options.stats) {
    const double all = Seconds(Clock::now() - start), inside = Seconds(tally.converting);
    const auto points = static_cast<double>(tally.points);
    Report(fmt::format(
        "{} points, {} without a result; {:.3f} s, {:.2f} million points/s; conversion alone {:.3f} s, "
        "{:.2f} million points/s",
        tally.points, tally.Lost(), all, points / all * 1e-6, inside,
        inside > 0.0 ? points / inside * 1e-6 : 0.0));
  }
  return tally.Lost() == 0 ? ExitAllDone : ExitSomeLost;
}

}  // namespace

void AddConvertCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("convert", "Convert points, written in the order and form in which they were read");
  const auto options = std::make_shared<ConvertOptions>();
  command
      ->add_option("--from,-f", options->from,
                   "System of the points that are read; needed but for vector files, which may tell it")
      ->type_name("DEF");
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
  command->add_flag("--lat-first", options->latFirst,
                    "Of geographic systems, the first column is the latitude; in and out");
  command
      ->add_option("--jobs,-j", options->jobs,
                   "Threads that convert; as many as the machine has when not given")
      ->type_name("N")
      ->check(CLI::Range(1, 1024));
  command
      ->add_option("--report", options->report,
                   "File for a report as JSON: how many points met which fate, the first of each")
      ->type_name("FILE");
  command
      ->add_option(
          "--format", options->format,
          "What the file holds: text, geojson, or a format by GDAL's name; auto goes by the file's name")
      ->type_name("NAME")
      ->capture_default_str();
  command->add_option("--output,-o", options->output, "Vector file to write, which must not be there yet")
      ->type_name("FILE");
  command
      ->add_option("--output-format", options->outputFormat,
                   "Its format, by GDAL's name, when its extension does not tell")
      ->type_name("NAME");
  command->add_flag(
      "--no-clip", options->noClip,
      "Convert geometries position by position instead of clipping it to what the target shows");
  command->add_flag("--binary,-b", options->binary, "Read and write binary data");
  command->add_flag("--stats", options->stats,
                    "Say on standard error how many points went through and how fast");
  command->footer(fmt::format("{}\n{}\n{}", kConvertHelp, kTextHelp, kSystemArgumentHelp));
  command->callback([options, &status] { status = RunConvert(*options); });
}

}  // namespace orv::tool
