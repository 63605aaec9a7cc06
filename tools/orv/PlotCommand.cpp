// orv plot: a picture of the map: what the projection shows, a graticule, and the contents of GeoJSON files.
#include <cairo-svg.h>
#include <cairo.h>
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "tools/orv/Command.h"
#include "tools/orv/MapClip.h"
#include "tools/orv/NumberText.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

constexpr double kDegree = 3.141592653589793 / 180.0;
constexpr double kStep = 1.0;     // degrees between points of long lines
constexpr double kMargin = 0.02;  // part of the longer side
constexpr double kBeyond = 10.0;  // sizes of the picture: drawing farther away is left out

struct PlotArguments {
  std::string system;
  std::vector<std::string> files;
  std::string output;
  std::string within;  // west, south, east, north
  double graticule = 0.0;
  int size = 1000;
};

struct Rgb {
  double red, green, blue;
};
constexpr Rgb kSea = {0.86, 0.92, 0.96}, kLand = {0.93, 0.89, 0.78}, kCoast = {0.35, 0.33, 0.28},
              kGraticule = {0.62, 0.70, 0.76}, kRim = {0.20, 0.25, 0.30};

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// Adds the way from the last point to another in small steps.
void StepTo(Line& line, double x, double y) {
  const shr::Vec2d from = line.back();
  const int n =
      std::max(1, static_cast<int>(std::ceil(std::max(std::abs(x - from.x), std::abs(y - from.y)) / kStep)));
  for (int i = 1; i <= n; ++i)
    line.emplace_back(from.x + (x - from.x) * i / n, from.y + (y - from.y) * i / n);
}

/// Longitudes and latitudes that are drawn.
struct Window {
  double west, south, east, north;

  Line Ring() const {
    Line ring = {{west, south}};
    StepTo(ring, east, south);
    StepTo(ring, east, north);
    StepTo(ring, west, north);
    StepTo(ring, west, south);
    return ring;
  }
};

bool RepeatsAtEveryTurn(ProjectionMethod method) {
  switch (method) {
    case ProjectionMethodAzimuthalEquidistant:
    case ProjectionMethodCassini:
    case ProjectionMethodGnomonic:
    case ProjectionMethodLambertAzimuthal:
    case ProjectionMethodOrthographic:
    case ProjectionMethodStereographic:
      return true;
    default:
      return false;
  }
}

/// "WEST,SOUTH,EAST,NORTH".
Window WindowOf(const PlotArguments& arguments, const ProjectionParameters& p) {
  if (!arguments.within.empty()) {
    const auto [west, south, east, north] = ReadArea("--within", arguments.within);
    return {west, south, east, north};
  }
  const double lon = p.method == ProjectionMethodHotine || p.method == ProjectionMethodObliqueMercator
                         ? p.Lon1
                     : p.method == ProjectionMethodRobinson ? 0.0
                                                            : p.Lon0;
  return {lon - 180.0, -90.0, lon + 180.0, 90.0};
}

/// The circle about the point opposite to the centre of a map of the whole globe.
Line FarCircle(const ProjectionParameters& p) {
  const double lat = -p.Lat1 * kDegree, arc = 0.5 * kDegree;
  Line ring;
  for (int azimuth = 0; azimuth <= 360; ++azimuth) {
    const double north = std::cos(azimuth * kDegree) * std::sin(arc),
                 east = std::sin(azimuth * kDegree) * std::sin(arc);
    const double x = std::cos(arc) * std::cos(lat) - north * std::sin(lat);
    const double z = std::cos(arc) * std::sin(lat) + north * std::cos(lat);
    ring.emplace_back(p.Lon0 + 180.0 + std::atan2(east, x) / kDegree,
                      std::atan2(z, std::hypot(x, east)) / kDegree);
  }
  return ring;
}

/// What is drawn, on the map.
struct Picture {
  std::vector<std::vector<Line>> sea, land;
  std::vector<Line> rim, coast, graticule;
};

/// The area and its rim.  Where the map closes on itself at the window's sides these are no rim.
void AddArea(MapClip& clip, const Window& window, bool bWindowGiven, Picture& picture, ClipTally& tally) {
  const ProjectionParameters& p = *clip.Projection().GetParameters();
  if (p.method == ProjectionMethodLambertAzimuthal && !bWindowGiven) {
    Line circle = FarCircle(p);
    clip.Project(circle, tally);
    picture.rim.push_back(circle);
    picture.sea.push_back({circle});
    return;
  }
  const bool bSeams = RepeatsAtEveryTurn(p.method) && !bWindowGiven;
  for (const std::vector<Line>& rings : clip.ClipPlain({window.Ring()})) {
    std::vector<Line> area;
    for (const Line& ring : rings) {
      const auto isSeam = [&](const shr::Vec2d& a, const shr::Vec2d& b) {
        return bSeams && ((a.x == b.x && (a.x == window.west || a.x == window.east)) ||
                          (a.y == b.y && (a.y == window.south || a.y == window.north)));
      };
      for (Line& part : SplitAtSeams(ring, isSeam)) {
        clip.Project(part, tally);
        if (part.size() > 1) picture.rim.push_back(std::move(part));
      }
      Line map = ring;
      clip.Project(map, tally);
      if (map.size() > 2) area.push_back(std::move(map));
    }
    if (!area.empty()) picture.sea.push_back(std::move(area));
  }
}

void AddGraticule(MapClip& clip, const Window& window, double step, Picture& picture) {
  ClipTally tally;
  GeoShape lines;
  for (double lon = std::ceil(window.west / step) * step; lon <= window.east; lon += step) {
    lines.lines.push_back({{lon, window.south}});
    StepTo(lines.lines.back(), lon, window.north);
  }
  for (double lat = std::ceil(window.south / step) * step; lat <= window.north; lat += step) {
    if (std::abs(lat) >= 90.0) continue;
    lines.lines.push_back({{window.west, lat}});
    StepTo(lines.lines.back(), window.east, lat);
  }
  for (Line& line : clip.Clip(lines, tally, nullptr).lines) picture.graticule.push_back(std::move(line));
}

// ---- drawing -----------------------------------------------------------------------------------------------

class Sheet {
 public:
  Sheet(const Picture& picture, const PlotArguments& arguments) : m_Arguments(arguments) {
    double west = std::numeric_limits<double>::max(), south = west, east = -west, north = -west;
    for (const std::vector<Line>& rings : picture.sea) {
      for (const shr::Vec2d& p : rings[0]) {
        west = std::min(west, p.x);
        east = std::max(east, p.x);
        south = std::min(south, p.y);
        north = std::max(north, p.y);
      }
    }
    if (!(west < east && south < north)) throw UsageError("the map shows nothing");
    const double extent = std::max(east - west, north - south);
    m_Scale = arguments.size * (1.0 - 2.0 * kMargin) / extent;
    const double margin = kMargin * arguments.size;
    m_Width = (east - west) * m_Scale + 2.0 * margin;
    m_Height = (north - south) * m_Scale + 2.0 * margin;
    m_X = margin - west * m_Scale;
    m_Y = margin + north * m_Scale;
    const bool bSvg = EndsWith(arguments.output, ".svg");
    m_pSurface = bSvg ? cairo_svg_surface_create(arguments.output.c_str(), m_Width, m_Height)
                      : cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(m_Width)),
                                                   static_cast<int>(std::ceil(m_Height)));
    m_pCairo = cairo_create(m_pSurface);
    cairo_set_source_rgb(m_pCairo, 1.0, 1.0, 1.0);
    cairo_paint(m_pCairo);
    cairo_set_fill_rule(m_pCairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_line_join(m_pCairo, CAIRO_LINE_JOIN_ROUND);
  }
  ~Sheet() {
    cairo_destroy(m_pCairo);
    cairo_surface_destroy(m_pSurface);
  }
  Sheet(const Sheet&) = delete;
  Sheet& operator=(const Sheet&) = delete;

  void Draw(const Picture& picture) {
    cairo_save(m_pCairo);
    for (const std::vector<Line>& rings : picture.sea) Trace(rings, true);
    cairo_clip_preserve(m_pCairo);
    Fill(kSea);
    for (const std::vector<Line>& rings : picture.land) {
      Trace(rings, true);
      Fill(kLand);
    }
    Stroke(picture.graticule, kGraticule, 0.0006);
    Stroke(picture.coast, kCoast, 0.0007);
    cairo_restore(m_pCairo);
    Stroke(picture.rim, kRim, 0.0015);
  }

  void Finish() {
    cairo_surface_flush(m_pSurface);
    cairo_status_t status = cairo_status(m_pCairo);
    if (status == CAIRO_STATUS_SUCCESS && EndsWith(m_Arguments.output, ".png")) {
      status = cairo_surface_write_to_png(m_pSurface, m_Arguments.output.c_str());
    }
    cairo_surface_finish(m_pSurface);
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(m_pSurface);
    if (status != CAIRO_STATUS_SUCCESS) {
      throw UsageError(
          fmt::format("cannot write '{}': {}", m_Arguments.output, cairo_status_to_string(status)));
    }
  }

 private:
  void Trace(const std::vector<Line>& lines, bool bClose) {
    const double far = kBeyond * m_Arguments.size;
    for (const Line& line : lines) {
      bool bPen = false;
      for (const shr::Vec2d& p : line) {
        const double x = m_X + p.x * m_Scale, y = m_Y - p.y * m_Scale;
        if (std::abs(x) > far || std::abs(y) > far) {
          bPen = bPen && bClose;
          continue;
        }
        bPen ? cairo_line_to(m_pCairo, x, y) : cairo_move_to(m_pCairo, x, y);
        bPen = true;
      }
      if (bClose && bPen) cairo_close_path(m_pCairo);
    }
  }

  void Fill(const Rgb& colour) {
    cairo_set_source_rgb(m_pCairo, colour.red, colour.green, colour.blue);
    cairo_fill(m_pCairo);
  }

  void Stroke(const std::vector<Line>& lines, const Rgb& colour, double width) {
    cairo_set_source_rgb(m_pCairo, colour.red, colour.green, colour.blue);
    cairo_set_line_width(m_pCairo, width * m_Arguments.size);
    Trace(lines, false);
    cairo_stroke(m_pCairo);
  }

  const PlotArguments& m_Arguments;
  double m_Scale = 1.0, m_X = 0.0, m_Y = 0.0, m_Width = 0.0, m_Height = 0.0;
  cairo_surface_t* m_pSurface = nullptr;
  cairo_t* m_pCairo = nullptr;
};

int RunPlot(const PlotArguments& arguments) {
  if (!EndsWith(arguments.output, ".svg") && !EndsWith(arguments.output, ".png")) {
    throw UsageError("the picture must be a .svg or .png file");
  }
  MapClip clip(*ReadSystem(arguments.system));
  const Window window = WindowOf(arguments, *clip.Projection().GetParameters());
  Picture picture;
  ClipTally area, tally;
  AddArea(clip, window, !arguments.within.empty(), picture, area);
  if (arguments.graticule > 0.0) AddGraticule(clip, window, arguments.graticule, picture);
  for (const std::string& file : arguments.files) {
    for (const GeoFeature& feature : ReadGeoJson(ReadFile(file), file)) {
      GeoShape shape;
      if (arguments.within.empty()) {
        shape = clip.Clip(feature.shape, tally, &picture.coast);
      } else {
        GeoShape coast;
        shape = clip.Clip(
            MapClip::Within(feature.shape, window.west, window.south, window.east, window.north, coast.lines),
            tally, nullptr);
        ClipTally counted;
        for (Line& line : clip.Clip(coast, counted, nullptr).lines) picture.coast.push_back(std::move(line));
      }
      for (std::vector<Line>& rings : shape.polygons) picture.land.push_back(std::move(rings));
      for (Line& line : shape.lines) picture.coast.push_back(std::move(line));
    }
  }
  Sheet sheet(picture, arguments);
  sheet.Draw(picture);
  sheet.Finish();
  Report(fmt::format("{} whole, {} clipped, {} of them split, {} dropped", tally.whole, tally.clipped,
                     tally.split, tally.dropped));
  return ExitAllDone;
}

}  // namespace

void AddPlotCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("plot", "Draw what a projection shows, with a graticule and shapes");
  const auto arguments = std::make_shared<PlotArguments>();
  command->add_option("--in", arguments->system, "System of the map")->type_name("DEF")->required();
  command->add_option("files", arguments->files, "GeoJSON files; - is standard input")->type_name("FILE");
  command->add_option("--output,-o", arguments->output, "Picture to write, .svg or .png")
      ->type_name("FILE")
      ->required();
  command->add_option("--graticule,-g", arguments->graticule, "Degrees between the lines of a graticule")
      ->check(CLI::Range(0.1, 90.0));
  command
      ->add_option("--within", arguments->within,
                   "Part of the globe to draw, degrees; all of it when not given")
      ->type_name("WEST,SOUTH,EAST,NORTH");
  command->add_option("--size", arguments->size, "Longer side of the picture, pixels")
      ->check(CLI::Range(16, 20000))
      ->capture_default_str();
  command->footer(std::string("Longitudes and latitudes are on the system's own datum.\n\n") +
                  kSystemArgumentHelp);
  command->callback([arguments, &status] { status = RunPlot(*arguments); });
}

}  // namespace orv::tool
