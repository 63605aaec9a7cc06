#include "tools/orv/Describe.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "orv/convert/internal/CommentFields.h"
#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/EllipsoidDef.h"
#include "orv/tables/LinearUnits.h"
#include "orv/warp/WarpDef.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

void AddText(Json& json, const char* key, const char* text) {
  if (text && *text != '\0') json[key] = text;
}

void AddCode(Json& json, const char* key, int code) {
  if (code != 0) json[key] = code;
}

/// A known unit of length whose size is that, or none.  Sizes agree to 1e-7 of each other: enough to tell the
/// two feet apart, which differ by 2e-6.
std::string UnitOfSize(double metres) {
  const LinearUnitList& list = ORVKnownLinearUnitsList;
  for (int index = list.First(); index <= list.Last(); ++index) {
    const double divider = list.EnumDivider(index);
    const double multiplier = list.EnumMultiplier(index);
    const double size = multiplier != 0.0 ? multiplier : divider != 0.0 ? 1.0 / divider : 0.0;
    if (std::fabs(size - metres) <= 1e-7 * metres) return list.EnumName(index);
  }
  return fmt::format("{} metres", ShortestNumber(metres));
}

/// Unit of a system's coordinates.
std::string UnitOf(const ORVDef& system) {
  if (!system.HasProjection(false, true)) return "degree";
  const ProjectionParameters& p = *system.GetProjection()->GetParameters();
  if (!(p.Scale > 0.0)) return "unknown";
  if (p.method == ProjectionMethodEquidistantCylindrical) {
    // Longitude and latitude themselves: so many units for each radian.
    constexpr double kRadian = 180.0 / 3.141592653589793;
    const double perRadian = p.Scale * p.ellipsoid.GetMajorRadius();
    if (std::fabs(perRadian / kRadian - 1.0) < 1e-9) return "degree";
    if (std::fabs(perRadian / kRadian - 200.0 / 180.0) < 1e-9) return "grad";
  }
  return UnitOfSize(1.0 / p.Scale);
}

Json DescribeProjection(const ProjectionDef& projection) {
  Json json;
  json["method"] =
      projection.IsUnknown(false) ? "unknown" : ProjectionDef::MethodToName(projection.GetMethod());
  for (size_t i = 0; i < projection.NumParameters(); ++i) {
    const ProjectionParameterID id = projection.EnumParameter(i);
    const char* const key = ProjectionDef::ParameterShortName(id);
    if (id == ProjectionParameterIDEllipsoid) {
      json["ellipsoid"] = DescribeEllipsoid(*projection.GetEllipsoid());
    } else if (ProjectionDef::ParameterDataType(id) == ORVDataTypeIDBool) {
      json[key] = projection.GetParameter(id) != 0.0;
    } else {
      json[key] = projection.GetParameter(id);
    }
  }
  return json;
}

const char* TypeOf(const CSDef& system) {
  if (system.Type() != CSTypeORV) return "local";
  const auto& def = static_cast<const ORVDef&>(system);
  if (!def.HasProjection(false, true)) return "geographic";
  return UnitOf(def) == "degree" || UnitOf(def) == "grad"
             ? "geographic, in a unit or from a meridian of its own"
             : "projected";
}

}  // namespace

Json DescribeEllipsoid(const EllipsoidDef& ellipsoid) {
  Json json;
  AddText(json, "token", ellipsoid.GetToken());
  AddText(json, "name", ellipsoid.GetName());
  json["radius"] = ellipsoid.GetMajorRadius();
  if (ellipsoid.GetFlattening() != 0.0) json["inverseFlattening"] = 1.0 / ellipsoid.GetFlattening();
  AddCode(json, "code", ellipsoid.GetPOSCNumber());
  AddText(json, "comment", ellipsoid.GetComment());
  return json;
}

Json DescribeDatum(const DatumDef& datum) {
  const DatumParameters& p = *datum.GetParameters();
  Json json;
  AddText(json, "token", datum.GetToken());
  AddText(json, "name", datum.GetName());
  AddCode(json, "code", datum.GetPOSCNumber());
  if (datum.GetSpecial() != DatumTargetNone)
    AddText(json, "special", DatumDef::TargetToName(datum.GetSpecial()));
  if (datum.IsUnknown()) {
    json["method"] = "unknown: points convert within this datum only";
  } else {
    for (size_t i = 0; i < datum.NumParameters(); ++i) {
      const DatumParameterID id = datum.EnumParameter(i);
      if (id == DatumParameterIDMethod) {
        AddText(json, "method", DatumDef::MethodToName(p.method));
      } else if (id == DatumParameterIDTarget) {
        AddText(json, "target", DatumDef::TargetToName(p.target));
      } else if (id == DatumParameterIDEquation) {
        AddText(json, "equation", DatumDef::MRETypeToName(p.mreType));
      } else if (id == DatumParameterIDEllipsoid) {
        json["ellipsoid"] = DescribeEllipsoid(p.ellipsoid);
      } else if (DatumDef::ParameterDataType(id) == ORVDataTypeIDBool) {
        json[DatumDef::ParameterShortName(id)] = datum.GetParameter(id) != 0.0;
      } else {
        json[DatumDef::ParameterShortName(id)] = datum.GetParameter(id);
      }
    }
  }
  AddText(json, "comment", datum.GetComment());
  return json;
}

Json DescribeSystem(const CSDef& system) {
  Json json;
  AddText(json, "token", system.GetToken());
  AddText(json, "name", system.GetName());
  json["type"] = TypeOf(system);
  if (system.Type() == CSTypeORV) {
    const auto& def = static_cast<const ORVDef&>(system);
    AddCode(json, "code", def.GetPOSC());
    AddCode(json, "usgs", def.GetUSGS());
    AddText(json, "legacyName", def.GetLegacyName());
    AddText(json, "area", def.GetComment());
    json["unit"] = UnitOf(def);
    if (def.GetProjection()) json["projection"] = DescribeProjection(*def.GetProjection());
    if (def.GetDatum()) json["datum"] = DescribeDatum(*def.GetDatum());
  } else {
    const auto& local = static_cast<const UCSDef&>(system);
    shr::Vec2d origin;
    local.GetOrigin(origin);
    AddText(json, "comment", system.GetComment());
    json["scale"] = local.GetScale();
    json["xOrg"] = origin.x;
    json["yOrg"] = origin.y;
  }
  if (system.HasWarp()) AddText(json, "warp", system.GetWarp()->MethodName());
  return json;
}

Json DescribeRoute(const std::vector<DatumStep>& steps) {
  Json route = Json::array();
  for (const DatumStep& step : steps) {
    Json json;
    if (step.direction == DatumStep::Nothing) {
      json["direction"] = "none: both count as one datum";
    } else {
      json["direction"] = step.direction == DatumStep::Forward ? "forward" : "backward";
      json["datum"] = DescribeDatum(step.datum);
      if (!step.target.GetEllipsoid()->IsUnknown()) json["target"] = DescribeDatum(step.target);
      if (!step.grids.empty()) {
        json["grids"] = step.grids;
        json["gridsFound"] = step.gridsFound;
      }
    }
    route.push_back(json);
  }
  return route;
}

namespace {

std::string ValueText(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_number_float()) return ShortestNumber(value.get<double>());
  return value.dump();
}

/// The fields of a comment below each other.
std::string InLines(const std::string& comment, size_t indent) {
  std::string text;
  for (const std::string_view field : internal::CommentFields(comment)) {
    if (!text.empty()) text += '\n' + std::string(indent, ' ');
    text += field;
  }
  return text;
}

void AppendLines(std::string& text, const Json& json, size_t indent) {
  const std::string blanks(indent, ' ');
  size_t width = 0;
  for (const auto& [key, value] : json.items()) {
    if (value.is_primitive()) width = std::max(width, key.size());
  }
  size_t number = 0;
  for (const auto& [key, value] : json.items()) {
    // Steps and the like are counted from 1.
    const std::string label = json.is_array() ? std::to_string(++number) : key;
    if (value.is_primitive()) {
      std::string shown = ValueText(value);
      if (key == "comment") shown = InLines(shown, indent + width + 2);
      text += fmt::format("{}{:<{}}  {}\n", blanks, label, width, shown);
    } else {
      text += fmt::format("{}{}{}\n", blanks, label, value.empty() ? "  none" : "");
      AppendLines(text, value, indent + 2);
    }
  }
}

}  // namespace

std::string ForPeople(const Json& description) {
  std::string text;
  AppendLines(text, description, 0);
  return text;
}

std::string JsonOf(const Json& description) {
  return description.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

void WriteDescription(const Json& description, bool asJson) {
  WriteOutput(asJson ? JsonOf(description) : ForPeople(description));
}

}  // namespace orv::tool
