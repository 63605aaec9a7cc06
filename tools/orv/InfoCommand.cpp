// orv info: all that is known of a system, datum or ellipsoid.  orv route: the steps between two datums.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/interop/Interchange.h"
#include "orv/shared/Exception.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/EllipsoidList.h"
#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"
#include "tools/orv/Describe.h"
#include "tools/orv/SystemArgument.h"

namespace orv::tool {

namespace {

const DatumDef* DatumOf(const CSDef& system) {
  if (system.Type() != CSTypeORV) return nullptr;
  const auto& def = static_cast<const ORVDef&>(system);
  return def.HasDatum(true) ? def.GetDatum() : nullptr;
}

/// Adds "key": the route from a datum to WGS 84, or why there is none.
void AddRouteToWgs84(Json& json, const DatumDef& datum) {
  const int wgs84 = ORVKnownDatumsList.FindSpecial(DatumTargetWGS84, ORVKnownDatumsList.First());
  if (wgs84 == 0) return;
  try {
    Json route = Json::array();
    for (const DatumStep& step : ORVPlanDatumRoute(datum, *ORVKnownDatumsList.Enum(wgs84))) {
      route.push_back(step.direction == DatumStep::Nothing
                          ? std::string("nothing to do")
                          : fmt::format("{} {} ({})", DatumDef::MethodToName(step.datum.GetMethod()),
                                        step.direction == DatumStep::Forward ? "forward" : "backward",
                                        step.datum.GetToken() ? step.datum.GetToken() : "own datum"));
    }
    json["toWGS84"] = route;
  } catch (const shr::Exception& e) {
    json["toWGS84"] = e.Message();
  }
}

Json DescribeWhole(const CSDef& system) {
  Json json = DescribeSystem(system);
  if (const DatumDef* const datum = DatumOf(system)) AddRouteToWgs84(json, *datum);
  // Systems of the catalogue that place points alike.
  std::vector<int> positions;
  ORVKnownSystemsList.FindSystem(system, false, positions);
  Json alike = Json::array();
  for (const int pos : positions) alike.push_back(ORVKnownSystemsList.EnumToken(pos));
  json["equalSystems"] = alike;
  const std::string notice = NoticeFor(system.GetToken());
  if (!notice.empty()) json["notice"] = notice;
  return json;
}

struct InfoOptions {
  std::string what;
  std::string kind = "system";
  bool json = false;
  bool wkt2 = false, wkt1 = false, esri = false, proj = false;

  bool AsText() const { return wkt2 || wkt1 || esri || proj; }
};

/// The system in the dialect that was asked for.
void WriteText(const CSDef& system, const InfoOptions& options) {
  if (system.Type() != CSTypeORV) throw UsageError("a local system has no such text");
  const TextDialect dialect = options.wkt2   ? TextDialectWkt2
                              : options.wkt1 ? TextDialectWkt1Gdal
                              : options.esri ? TextDialectWkt1Esri
                                             : TextDialectProj;
  try {
    // A .prj file is one line.
    WriteOutput(ORVWriteText(static_cast<const ORVDef&>(system), dialect, !options.esri) + "\n");
  } catch (const shr::Exception& e) {
    throw UsageError(e.Message());
  }
}

int RunInfo(const InfoOptions& options) {
  LoadCatalogue();
  if (options.AsText()) {
    if (options.kind != "system") throw UsageError("only a system has such a text");
    WriteText(*ReadSystem(options.what), options);
  } else if (options.kind == "datum") {
    const DatumDef& datum = KnownDatum(options.what);
    Json json = DescribeDatum(datum);
    if (!datum.IsUnknown()) AddRouteToWgs84(json, datum);
    WriteDescription(json, options.json);
  } else if (options.kind == "ellipsoid") {
    WriteDescription(DescribeEllipsoid(KnownEllipsoid(options.what)), options.json);
  } else {
    WriteDescription(DescribeWhole(*ReadSystem(options.what)), options.json);
  }
  return ExitAllDone;
}

struct RouteOptions {
  std::string from;
  std::string to;
  bool json = false;
};

/// A datum's name, or a system on it.
DatumDef ReadDatum(const std::string& text) {
  const int index = ORVFindKnown(KnownListDatums, text);
  if (index != 0) return *ORVKnownDatumsList.Enum(index);
  const std::unique_ptr<CSDef> system = ReadSystem(text);
  const DatumDef* const datum = DatumOf(*system);
  if (!datum) throw UsageError(fmt::format("'{}' has no datum that can be converted", text));
  return *datum;
}

int RunRoute(const RouteOptions& options) {
  LoadCatalogue();
  const DatumDef from = ReadDatum(options.from), to = ReadDatum(options.to);
  Json json;
  json["from"] = from.GetToken() ? from.GetToken() : "";
  json["to"] = to.GetToken() ? to.GetToken() : "";
  json["steps"] = DescribeRoute(ORVPlanDatumRoute(from, to));
  WriteDescription(json, options.json);
  return ExitAllDone;
}

}  // namespace

void AddInfoCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("info", "Show all that is known of a system, datum or ellipsoid");
  const auto options = std::make_shared<InfoOptions>();
  command->add_option("what", options->what, "A name, token or code, or a definition")
      ->type_name("SYSTEM")
      ->required();
  command->add_option("--kind", options->kind, "What it names")
      ->check(CLI::IsMember({"system", "datum", "ellipsoid"}))
      ->capture_default_str();
  auto* const forms = command->add_option_group("form", "How it is shown");
  forms->add_flag("--json", options->json, "As JSON");
  forms->add_flag("--wkt", options->wkt2, "A system as well-known text, WKT2:2019");
  forms->add_flag("--wkt1", options->wkt1, "A system as well-known text, WKT1 of GDAL");
  forms->add_flag("--esri", options->esri,
                  "A system as well-known text, WKT1 of ESRI: the content of a .prj file");
  forms->add_flag("--proj", options->proj, "A system as a PROJ string");
  forms->require_option(0, 1);
  command->footer(kSystemArgumentHelp);
  command->callback([options, &status] { status = RunInfo(*options); });
}

void AddRouteCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("route", "Show the steps from one datum to another");
  const auto options = std::make_shared<RouteOptions>();
  command->add_option("from", options->from, "A datum, or a system on it")->type_name("DATUM")->required();
  command->add_option("to", options->to, "A datum, or a system on it")->type_name("DATUM")->required();
  command->add_flag("--json", options->json, "As JSON");
  command->footer(kSystemArgumentHelp);
  command->callback([options, &status] { status = RunRoute(*options); });
}

}  // namespace orv::tool
