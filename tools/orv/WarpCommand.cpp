// orv warp: a warp fitted to control points, and points sent through it.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "orv/convert/WarpFit.h"
#include "orv/convert/internal/JsonText.h"
#include "orv/core/internal/Marker.h"
#include "orv/warp/WarpTransformer.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

struct WarpOptions {
  std::string file;
  std::string method = "Affine Polynomial";
  std::string apply;
  bool json = false;
};

/// Rows of `width` numbers between commas, semicolons, tabs or blanks.  Empty lines and lines that begin with "#" are
/// skipped, and so is a first line whose first field is no number.
std::vector<std::vector<double>> ReadRows(const std::string& name, size_t width) {
  const std::string content = ReadFile(name);
  std::vector<std::vector<double>> rows;
  size_t number = 0;
  bool first = true;
  for (size_t at = 0; at < content.size();) {
    const size_t end = std::min(content.find('\n', at), content.size());
    std::string_view line = std::string_view(content).substr(at, end - at);
    at = end + 1;
    ++number;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    line = Trimmed(line);
    if (line.empty() || line[0] == '#') continue;
    const char* const separators = line.find(',') != std::string_view::npos ? "," : ";\t ";
    std::vector<double> row;
    std::string problem;
    for (size_t from = 0; from <= line.size() && row.size() < width;) {
      const size_t to = std::min(line.find_first_of(separators, from), line.size());
      const std::string_view field = Trimmed(line.substr(from, to - from));
      from = to + 1;
      if (field.empty() && *separators != ',') continue;  // more than one blank
      double value = 0.0;
      if (!ParseNumber(field, value)) {
        problem = fmt::format("'{}' is not a number", Excerpt(field));
        break;
      }
      row.push_back(value);
    }
    if (problem.empty() && row.size() < width)
      problem = fmt::format("it has {} of {} numbers", row.size(), width);
    if (!problem.empty() && !(first && row.empty())) {
      throw UsageError(fmt::format("{}, line {}: {}", name, number, problem));
    }
    first = false;
    if (problem.empty()) rows.push_back(std::move(row));
  }
  if (rows.empty()) throw UsageError(fmt::format("{} holds no points", name));
  return rows;
}

std::vector<ControlPair> ReadPairs(const std::string& name) {
  std::vector<ControlPair> pairs;
  for (const std::vector<double>& row : ReadRows(name, 4))
    pairs.push_back({{row[0], row[1]}, {row[2], row[3]}});
  return pairs;
}

std::vector<shr::Vec2d> ReadPoints(const std::string& name) {
  std::vector<shr::Vec2d> points;
  for (const std::vector<double>& row : ReadRows(name, 2)) points.emplace_back(row[0], row[1]);
  return points;
}

std::string FitForPeople(const WarpFit& fit, const std::vector<ControlPair>& pairs) {
  std::string encoded;
  fit.definition.EncodeToText(encoded);
  std::string text = fmt::format("{}\npoint,x,y,residual\n", encoded);
  for (size_t i = 0; i < pairs.size(); ++i) {
    text += fmt::format("{},{},{},{:.6g}\n", i + 1, ShortestNumber(pairs[i].source.x),
                        ShortestNumber(pairs[i].source.y), fit.residuals[i]);
  }
  return text;
}

std::string PointsForPeople(const std::vector<shr::Vec2d>& points) {
  std::string text;
  for (const shr::Vec2d& point : points) {
    text +=
        internal::IsMarked(point) ? ",\n" : ShortestNumber(point.x) + "," + ShortestNumber(point.y) + "\n";
  }
  return text;
}

void AddPlace(internal::JsonText& json, const char* x, const char* y, const shr::Vec2d& point) {
  const bool bLost = internal::IsMarked(point);
  json.Key(x);
  bLost ? json.Null() : json.Number(point.x);
  json.Key(y);
  bLost ? json.Null() : json.Number(point.y);
}

/// @param sources, points  of --apply: before and behind the warp; empty without.
std::string AsJson(const WarpFit& fit, const std::vector<ControlPair>& pairs,
                   const std::vector<shr::Vec2d>& sources, const std::vector<shr::Vec2d>& points) {
  std::string encoded;
  fit.definition.EncodeToText(encoded);
  internal::JsonText json;
  json.BeginObject().Key("method").Text(fit.definition.MethodName()).Key("definition").Text(encoded);
  json.Key("meanError").Number(fit.mean).Key("largestError").Number(fit.maximum);
  json.Key("worstPoint").Number(fit.worst + 1).Key("controlPoints").BeginArray();
  for (size_t i = 0; i < pairs.size(); ++i) {
    json.BeginObject();
    AddPlace(json, "x", "y", pairs[i].source);
    AddPlace(json, "toX", "toY", pairs[i].destination);
    json.Key("residual").Number(fit.residuals[i]).EndObject();
  }
  json.EndArray();
  if (!points.empty()) {
    json.Key("points").BeginArray();
    for (size_t i = 0; i < points.size(); ++i) {
      json.BeginObject();
      AddPlace(json, "x", "y", sources[i]);
      AddPlace(json, "toX", "toY", points[i]);
      json.EndObject();
    }
    json.EndArray();
  }
  return json.EndObject().Finish();
}

int RunWarp(const WarpOptions& options) {
  const WarpMethod method = WarpDef::NameToMethod(options.method.c_str());
  if (method == WarpMethodUnknown)
    throw UsageError(fmt::format("unknown warp method '{}'", Excerpt(options.method)));
  const std::vector<ControlPair> pairs = ReadPairs(options.file);
  const WarpFit fit = ORVFitWarp(method, pairs);
  const bool bApply = !options.apply.empty();
  std::vector<shr::Vec2d> sources, points;
  if (bApply) {
    sources = points = ReadPoints(options.apply);
    WarpTransformer(fit.definition).TransformForward(points);
  }
  WriteOutput(options.json ? AsJson(fit, pairs, sources, points)
              : bApply     ? PointsForPeople(points)
                           : FitForPeople(fit, pairs));
  if (!options.json && !bApply) {
    Report(fmt::format("{} control points, mean error {:.6g}, largest {:.6g} at point {}", pairs.size(),
                       fit.mean, fit.maximum, fit.worst + 1));
  }
  const auto lost = std::count_if(points.begin(), points.end(), &internal::IsMarked);
  if (lost == 0) return ExitAllDone;
  Report(fmt::format("{} of {} points have no place behind the warp", lost, points.size()));
  return ExitSomeLost;
}

}  // namespace

void AddWarpCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("warp", "Fit a warp to control points, or send points through it");
  const auto options = std::make_shared<WarpOptions>();
  command->add_option("file", options->file, "Control points, on each line x,y,x',y'; - for standard input")
      ->type_name("FILE")
      ->required();
  command->add_option("--method,-m", options->method, "Warp method, by its name")->capture_default_str();
  command
      ->add_option("--apply", options->apply,
                   "Write the points of this file, x,y on each line, warped instead")
      ->type_name("FILE");
  command->add_flag("--json", options->json, "As JSON: the fit, and the points of --apply when it is given");
  command->footer(
      "Written are the definition as encoded text, and for each control point the distance that the fit leaves over, in\n"
      "the unit of x', y'; the mean, the largest and the worst point go to standard error.  Methods: Displacement,\n"
      "Helmert, \"Affine Polynomial\", \"First Order Polynomial\", \"Second Order Polynomial\", \"Third Order Polynomial\",\n"
      "\"Thin Plate Spline\", \"Natural Cubic Spline\", \"Marcov Spline\", \"Exponential Spline\",\n"
      "\"Rational Quadratic Spline\", \"Inverse Distance Squared\".\n"
      "With --json: an object with method, definition, meanError, largestError, worstPoint (from 1), controlPoints, an array\n"
      "of objects with x, y, toX, toY and residual, and with --apply points, an array of objects with x, y, toX and toY\n"
      "(null where a point has no place, which makes the exit status 1).");
  command->callback([options, &status] { status = RunWarp(*options); });
}

}  // namespace orv::tool
