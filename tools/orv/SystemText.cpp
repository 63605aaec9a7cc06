#include "tools/orv/SystemText.h"

#include <variant>
#include <vector>

#include "orv/convert/internal/JsonText.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/warp/WarpDef.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

/// Keys and values in order, for either form.
class Parameters {
 public:
  void Add(const std::string& key, const std::string& value) { m_Rows.push_back({key, value}); }
  void Add(const std::string& key, double value) { m_Rows.push_back({key, value}); }
  void Add(const std::string& key, bool value) { m_Rows.push_back({key, value}); }
  /// Nothing for an empty text.
  void AddIfAny(const std::string& key, const char* value) {
    if (value && *value != '\0') Add(key, std::string(value));
  }

  std::string AsLines() const {
    std::string text;
    for (const Row& row : m_Rows) {
      text += row.key + '=';
      if (const auto* const words = std::get_if<std::string>(&row.value)) {
        text += QuotedIfNeeded(*words);
      } else if (const auto* const number = std::get_if<double>(&row.value)) {
        text += ShortestNumber(*number);
      } else {
        text += std::get<bool>(row.value) ? "true" : "false";
      }
      text += '\n';
    }
    return text;
  }
  std::string AsJson() const {
    internal::JsonText json;
    json.BeginObject();
    for (const Row& row : m_Rows) {
      json.Key(row.key);
      if (const auto* const words = std::get_if<std::string>(&row.value)) {
        json.Text(*words);
      } else if (const auto* const number = std::get_if<double>(&row.value)) {
        json.Number(*number);
      } else {
        json.Bool(std::get<bool>(row.value));
      }
    }
    return json.EndObject().Finish();
  }

 private:
  struct Row {
    std::string key;
    std::variant<std::string, double, bool> value;
  };

  static std::string QuotedIfNeeded(const std::string& value) {
    if (value.find_first_of(",\"\n\r") == std::string::npos && Trimmed(value).size() == value.size())
      return value;
    std::string quoted = "\"";
    for (const char c : value) {
      if (c == '"') quoted += '"';
      quoted += c;
    }
    return quoted + '"';
  }

  std::vector<Row> m_Rows;
};

bool SameDimensions(const EllipsoidDef& a, const EllipsoidDef& b) {
  return a.GetMajorRadius() == b.GetMajorRadius() && a.GetFlattening() == b.GetFlattening();
}

void AddEllipsoid(Parameters& parameters, const std::string& prefix, const EllipsoidDef& ellipsoid) {
  EllipsoidDef known;
  const bool found = ORVKnownEllipsoidsList.FindByToken(ellipsoid.GetToken(), &known) != 0;
  if (found && SameDimensions(known, ellipsoid)) {
    parameters.Add(prefix + "ellipsoid", std::string(known.GetToken()));
  } else {
    parameters.Add(prefix + "a", ellipsoid.GetMajorRadius());
    parameters.Add(prefix + "f", ellipsoid.GetFlattening());
  }
}

std::string KeyOf(DatumParameterID id) {
  if (id == DatumParameterIDMethod) return "datum.method";
  if (id == DatumParameterIDTarget) return "datum.target";
  return std::string("datum.") + DatumDef::ParameterShortName(id);
}

void AddDatumValue(Parameters& parameters, const std::string& key, const DatumDef& datum,
                   DatumParameterID id) {
  const DatumParameters& p = *datum.GetParameters();
  switch (id) {
    case DatumParameterIDMethod:
      return parameters.AddIfAny(key, DatumDef::MethodToName(p.method));
    case DatumParameterIDTarget:
      return parameters.AddIfAny(key, DatumDef::TargetToName(p.target));
    case DatumParameterIDEllipsoid:
      return AddEllipsoid(parameters, "datum.", p.ellipsoid);
    case DatumParameterIDEquation:
      return parameters.AddIfAny(key, DatumDef::MRETypeToName(p.mreType));
    default:
      break;
  }
  if (DatumDef::ParameterDataType(id) == ORVDataTypeIDBool) {
    parameters.Add(key, datum.GetParameter(id) != 0.0);
  } else {
    parameters.Add(key, datum.GetParameter(id));
  }
}

/// Whether naming the known datum gives this one back: alike in all that conversions ask for.
bool IsKnown(const DatumDef& datum) {
  DatumDef known;
  return ORVKnownDatumsList.FindByToken(datum.GetToken(), &known) != 0 &&
         known.GetSpecial() == datum.GetSpecial() && known.GetPOSCNumber() == datum.GetPOSCNumber() &&
         known.CompareParameters(&datum) && known.GetParameters()->pmShift == datum.GetParameters()->pmShift;
}

void AddDatum(Parameters& parameters, const DatumDef& datum) {
  if (IsKnown(datum)) return parameters.Add("datum", std::string(datum.GetToken()));
  if (datum.IsUnknown()) return parameters.Add("datum.method", std::string("Unknown"));
  for (size_t i = 0; i < datum.NumParameters(); ++i) {
    const DatumParameterID id = datum.EnumParameter(i);
    AddDatumValue(parameters, KeyOf(id), datum, id);
  }
}

void AddProjection(Parameters& parameters, const ProjectionDef& projection) {
  const ProjectionMethod method = projection.GetMethod();
  parameters.Add("method",
                 std::string(method == ProjectionMethodUnprojected ? "geographic"
                                                                   : ProjectionDef::MethodToName(method)));
  for (size_t i = 0; i < projection.NumParameters(); ++i) {
    const ProjectionParameterID id = projection.EnumParameter(i);
    if (id == ProjectionParameterIDEllipsoid) {
      AddEllipsoid(parameters, "", *projection.GetEllipsoid());
    } else if (ProjectionDef::ParameterDataType(id) == ORVDataTypeIDBool) {
      parameters.Add(ProjectionDef::ParameterShortName(id), projection.GetParameter(id) != 0.0);
    } else {
      parameters.Add(ProjectionDef::ParameterShortName(id), projection.GetParameter(id));
    }
  }
}

Parameters ParametersOf(const CSDef& system) {
  Parameters parameters;
  parameters.AddIfAny("name", system.GetName());
  parameters.AddIfAny("token", system.GetToken());
  parameters.AddIfAny("comment", system.GetComment());
  if (system.Type() == CSTypeORV) {
    const auto& def = static_cast<const ORVDef&>(system);
    if (def.GetProjection()) AddProjection(parameters, *def.GetProjection());
    if (def.GetDatum()) AddDatum(parameters, *def.GetDatum());
  } else {
    const auto& local = static_cast<const UCSDef&>(system);
    shr::Vec2d origin;
    local.GetOrigin(origin);
    parameters.Add("local.scale", local.GetScale());
    parameters.Add("local.xOrg", origin.x);
    parameters.Add("local.yOrg", origin.y);
  }
  if (system.HasWarp()) parameters.AddIfAny("warp.method", system.GetWarp()->MethodName());
  return parameters;
}

}  // namespace

std::string SystemAsParameters(const CSDef& system) { return ParametersOf(system).AsLines(); }

std::string SystemAsJson(const CSDef& system) { return ParametersOf(system).AsJson(); }

}  // namespace orv::tool
