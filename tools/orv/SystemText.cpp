#include "tools/orv/SystemText.h"

#include <fmt/core.h>

#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/warp/WarpDef.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

class Lines {
 public:
  void Add(const std::string& key, const std::string& value) {
    const bool plain =
        value.find_first_of(",\"\n\r") == std::string::npos && Trimmed(value).size() == value.size();
    m_Text += key + '=' + (plain ? value : Quoted(value)) + '\n';
  }
  void Add(const std::string& key, double value) { Add(key, ShortestNumber(value)); }
  void Add(const std::string& key, bool value) { Add(key, std::string(value ? "true" : "false")); }
  /// Nothing for an empty text.
  void AddIfAny(const std::string& key, const char* value) {
    if (value && *value != '\0') Add(key, std::string(value));
  }
  const std::string& Text() const { return m_Text; }

 private:
  static std::string Quoted(const std::string& value) {
    std::string quoted = "\"";
    for (const char c : value) {
      if (c == '"') quoted += '"';
      quoted += c;
    }
    return quoted + '"';
  }

  std::string m_Text;
};

bool SameDimensions(const EllipsoidDef& a, const EllipsoidDef& b) {
  return a.GetMajorRadius() == b.GetMajorRadius() && a.GetFlattening() == b.GetFlattening();
}

void AddEllipsoid(Lines& lines, const std::string& prefix, const EllipsoidDef& ellipsoid) {
  EllipsoidDef known;
  const bool found = ORVKnownEllipsoidsList.FindByToken(ellipsoid.GetToken(), &known) != 0;
  if (found && SameDimensions(known, ellipsoid)) {
    lines.Add(prefix + "ellipsoid", std::string(known.GetToken()));
  } else {
    lines.Add(prefix + "a", ellipsoid.GetMajorRadius());
    lines.Add(prefix + "f", ellipsoid.GetFlattening());
  }
}

std::string KeyOf(DatumParameterID id) {
  if (id == DatumParameterIDMethod) return "datum.method";
  if (id == DatumParameterIDTarget) return "datum.target";
  return std::string("datum.") + DatumDef::ParameterShortName(id);
}

void AddDatumValue(Lines& lines, const std::string& key, const DatumDef& datum, DatumParameterID id) {
  const DatumParameters& p = *datum.GetParameters();
  switch (id) {
    case DatumParameterIDMethod:
      return lines.AddIfAny(key, DatumDef::MethodToName(p.method));
    case DatumParameterIDTarget:
      return lines.AddIfAny(key, DatumDef::TargetToName(p.target));
    case DatumParameterIDEllipsoid:
      return AddEllipsoid(lines, "datum.", p.ellipsoid);
    case DatumParameterIDEquation:
      return lines.AddIfAny(key, DatumDef::MRETypeToName(p.mreType));
    default:
      break;
  }
  if (DatumDef::ParameterDataType(id) == ORVDataTypeIDBool) {
    lines.Add(key, datum.GetParameter(id) != 0.0);
  } else {
    lines.Add(key, datum.GetParameter(id));
  }
}

/// Whether naming the known datum gives this one back: alike in all that conversions ask for.
bool IsKnown(const DatumDef& datum) {
  DatumDef known;
  return ORVKnownDatumsList.FindByToken(datum.GetToken(), &known) != 0 &&
         known.GetSpecial() == datum.GetSpecial() && known.GetPOSCNumber() == datum.GetPOSCNumber() &&
         known.CompareParameters(&datum) && known.GetParameters()->pmShift == datum.GetParameters()->pmShift;
}

void AddDatum(Lines& lines, const DatumDef& datum) {
  if (IsKnown(datum)) return lines.Add("datum", std::string(datum.GetToken()));
  if (datum.IsUnknown()) return lines.Add("datum.method", std::string("Unknown"));
  for (size_t i = 0; i < datum.NumParameters(); ++i) {
    const DatumParameterID id = datum.EnumParameter(i);
    AddDatumValue(lines, KeyOf(id), datum, id);
  }
}

void AddProjection(Lines& lines, const ProjectionDef& projection) {
  const ProjectionMethod method = projection.GetMethod();
  lines.Add("method",
            std::string(method == ProjectionMethodUnprojected ? "geographic"
                                                              : ProjectionDef::MethodToName(method)));
  for (size_t i = 0; i < projection.NumParameters(); ++i) {
    const ProjectionParameterID id = projection.EnumParameter(i);
    if (id == ProjectionParameterIDEllipsoid) {
      AddEllipsoid(lines, "", *projection.GetEllipsoid());
    } else if (ProjectionDef::ParameterDataType(id) == ORVDataTypeIDBool) {
      lines.Add(ProjectionDef::ParameterShortName(id), projection.GetParameter(id) != 0.0);
    } else {
      lines.Add(ProjectionDef::ParameterShortName(id), projection.GetParameter(id));
    }
  }
}

}  // namespace

std::string SystemAsParameters(const CSDef& system) {
  Lines lines;
  lines.AddIfAny("name", system.GetName());
  lines.AddIfAny("token", system.GetToken());
  lines.AddIfAny("comment", system.GetComment());
  if (system.Type() == CSTypeORV) {
    const auto& def = static_cast<const ORVDef&>(system);
    if (def.GetProjection()) AddProjection(lines, *def.GetProjection());
    if (def.GetDatum()) AddDatum(lines, *def.GetDatum());
  } else {
    const auto& local = static_cast<const UCSDef&>(system);
    shr::Vec2d origin;
    local.GetOrigin(origin);
    lines.Add("local.scale", local.GetScale());
    lines.Add("local.xOrg", origin.x);
    lines.Add("local.yOrg", origin.y);
  }
  if (system.HasWarp()) lines.AddIfAny("warp.method", system.GetWarp()->MethodName());
  return lines.Text();
}

}  // namespace orv::tool
