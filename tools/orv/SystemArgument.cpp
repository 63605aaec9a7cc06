#include "tools/orv/SystemArgument.h"

#include <fmt/core.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/interop/Interchange.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Exception.h"
#include "orv/system/ORVDef.h"
#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

const char* const kSystemArgumentHelp =
    "A system is the token, name, short name or code of a known one (EPSG:32633, 32633, \"WGS 84 / UTM zone 33N\"), or\n"
    "encoded text (it begins with \"<\"), well-known text, a PROJ string (\"+proj=utm +zone=33 +datum=WGS84\"), parameters\n"
    "(they hold a \"=\"), or else the name of a file with any of these, such as a .prj file.  Parameters are:\n"
    "  key=value,key=value,...   (in a file also one on each line; a value with a comma stands in double quotes)\n"
    "Keys:\n"
    "  method                    projection method, long or short name; geographic when not given\n"
    "  Scale xOrg yOrg Lon0 Lon1 Lon2 Lat0 Lat1 Lat2 K0 bSouth bUseAlpha Alpha bRotate bUOffset\n"
    "                            what the method has of these; not given: 0, false, Scale 1, K0 1 (UTM: 0.9996)\n"
    "  ellipsoid, or a and f or rf   a known one, or radius and (inverse) flattening; not given: the datum's\n"
    "  datum                     a known datum, also by the name of a geographic system: WGS84, DHDN, EPSG:6314\n"
    "  datum.method datum.target datum.dx datum.dy datum.dz datum.rx datum.ry datum.rz datum.K datum.PMShift\n"
    "  datum.Equation datum.NadconPrvi datum.ellipsoid, or datum.a and datum.f or datum.rf\n"
    "                            a datum of your own; shifts in metres, rotations in arc-seconds, K in ppm\n"
    "  name token comment        texts of the system\n"
    "Ellipsoids and datums: token, name or EPSG:code.  Angles: degrees, also as 9d30mE.  Case does not matter.\n"
    "Example: \"method=Transverse Mercator,Lon0=9,xOrg=3500000,datum=DHDN\"";

namespace {

/// The items of a parameter text, which are taken out as they are understood; what is left is unknown.
class Items {
 public:
  explicit Items(const std::string& text) {
    for (size_t at = 0; at < text.size();) ReadItem(text, at);
  }

  /// The value, removed; none when the key is not there.
  std::optional<std::string> Take(const std::string& key) {
    const auto found = m_Items.find(Folded(key));
    if (found == m_Items.end()) return std::nullopt;
    std::string value = found->second.value;
    m_Items.erase(found);
    return value;
  }

  bool Has(const std::string& key) const { return m_Items.count(Folded(key)) != 0; }

  /// The first key left that begins so, as it was written; "" when there is none.
  std::string FirstKey(const std::string& prefix = "") const {
    const std::string folded = Folded(prefix);
    const auto found = m_Items.lower_bound(folded);
    return found != m_Items.end() && found->first.starts_with(folded) ? found->second.key : "";
  }

 private:
  struct Item {
    std::string key;
    std::string value;
  };

  static std::string Folded(std::string text) {
    for (char& c : text) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
  }

  static bool EndsItem(char c) { return c == ',' || c == '\n' || c == '\r'; }

  void ReadItem(const std::string& text, size_t& at) {
    const size_t keyEnd = text.find_first_of("=,\n\r", at);
    const std::string_view key = Trimmed(std::string_view(text).substr(at, keyEnd - at));
    if (keyEnd == std::string::npos || EndsItem(text[keyEnd])) {
      if (!key.empty()) throw UsageError(fmt::format("'{}' is not of the form key=value", Excerpt(key)));
      at = keyEnd == std::string::npos ? text.size() : keyEnd + 1;
      return;
    }
    at = keyEnd + 1;
    if (key.empty()) throw UsageError("a key is missing in front of '='");
    const std::string value = ReadValue(text, at, key);
    if (!m_Items.emplace(Folded(std::string(key)), Item{std::string(key), value}).second) {
      throw UsageError(fmt::format("'{}' is given twice", Excerpt(key)));
    }
  }

  static std::string ReadValue(const std::string& text, size_t& at, std::string_view key) {
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    std::string value;
    if (at < text.size() && text[at] == '"') {
      for (++at; at < text.size(); ++at) {
        if (text[at] == '"' && (at + 1 == text.size() || text[at + 1] != '"')) break;
        if (text[at] == '"') ++at;
        value += text[at];
      }
      if (at >= text.size())
        throw UsageError(fmt::format("the quoted value of '{}' is not closed", Excerpt(key)));
      ++at;
      while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
      if (at < text.size() && !EndsItem(text[at])) {
        throw UsageError(fmt::format("there is text behind the quoted value of '{}'", Excerpt(key)));
      }
    } else {
      const size_t end = std::min(text.find_first_of(",\n\r", at), text.size());
      value = Trimmed(std::string_view(text).substr(at, end - at));
      at = end;
    }
    if (at < text.size()) ++at;
    return value;
  }

  std::map<std::string, Item> m_Items;
};

double NumberOf(const std::string& key, const std::string& value) {
  double number = 0.0;
  if (!ParseNumber(value, number))
    throw UsageError(fmt::format("{}: '{}' is not a number", key, Excerpt(value)));
  return number;
}

double AngleOf(const std::string& key, const std::string& value) {
  double number = 0.0;
  if (!ParseAngle(value, number)) {
    throw UsageError(
        fmt::format("{}: '{}' is neither a number nor an angle such as 9d30mE", key, Excerpt(value)));
  }
  return number;
}

bool FlagOf(const std::string& key, const std::string& value) {
  if (EqualFold(value, "true") || value == "1") return true;
  if (EqualFold(value, "false") || value == "0") return false;
  throw UsageError(fmt::format("{}: '{}' is neither true nor false", key, Excerpt(value)));
}

/// The ellipsoid that the keys with this prefix give; none when there are none.
std::optional<EllipsoidDef> TakeEllipsoid(Items& items, const std::string& prefix) {
  const auto known = items.Take(prefix + "ellipsoid");
  const auto a = items.Take(prefix + "a"), f = items.Take(prefix + "f"), rf = items.Take(prefix + "rf");
  if (known && (a || f || rf)) {
    throw UsageError(fmt::format("{0}ellipsoid and {0}{1} are both given", prefix, a ? "a" : f ? "f" : "rf"));
  }
  if (known) return KnownEllipsoid(*known);
  if (!a && !f && !rf) return std::nullopt;
  if (!a) throw UsageError(fmt::format("{0}{1} is given without {0}a", prefix, f ? "f" : "rf"));
  if (f && rf) throw UsageError(fmt::format("{0}f and {0}rf are both given", prefix));
  if (!f && !rf) throw UsageError(fmt::format("{0}a is given without {0}f or {0}rf", prefix));
  const double radius = NumberOf(prefix + "a", *a);
  double flattening = 0.0;
  if (f) {
    flattening = NumberOf(prefix + "f", *f);
  } else {
    const double inverse = NumberOf(prefix + "rf", *rf);
    if (!(inverse > 1.0))
      throw UsageError(fmt::format("{0}rf: must be above 1 (a sphere has {0}f=0)", prefix));
    flattening = 1.0 / inverse;
  }
  try {
    EllipsoidDef ellipsoid(radius, flattening, nullptr, nullptr, nullptr, 0);
    std::string why;
    if (!ellipsoid.CheckParameters(why)) throw UsageError(why);
    return ellipsoid;
  } catch (const shr::Exception& e) {
    throw UsageError(fmt::format("{}a={}: {}", prefix, *a, e.Message()));
  }
}

void SetDatumValue(DatumParameters& p, DatumParameterID id, const std::string& key,
                   const std::string& value) {
  if (id == DatumParameterIDTarget) {
    p.target = DatumDef::NameToTarget(value.c_str());
    if (p.target == DatumTargetNone)
      throw UsageError(fmt::format("{}: unknown target '{}'", key, Excerpt(value)));
    return;
  }
  if (id == DatumParameterIDEquation) {
    p.mreType = DatumDef::NameToMREType(value.c_str());
    if (p.mreType == DatumMRETypeNone)
      throw UsageError(fmt::format("{}: unknown region '{}'", key, Excerpt(value)));
    return;
  }
  DatumDef datum(&p, 0);
  if (DatumDef::ParameterDataType(id) == ORVDataTypeIDBool) {
    datum.SetParameter(id, FlagOf(key, value) ? 1 : 0);
  } else {
    datum.SetParameter(id, id == DatumParameterIDPMShift ? AngleOf(key, value) : NumberOf(key, value));
  }
  datum.GetParameters(p);
}

/// A datum of the user's own, from the keys that begin with "datum."; `ellipsoid` is the projection's, if
/// given.
DatumDef TakeOwnDatum(Items& items, const std::optional<EllipsoidDef>& ellipsoid) {
  static const std::string prefix = "datum.";
  const auto methodName = items.Take(prefix + "method");
  if (!methodName) throw UsageError("datum.method is missing");
  DatumParameters p;
  p.method = DatumDef::NameToMethod(methodName->c_str());
  if (p.method == DatumMethodUnknown) {
    throw UsageError(fmt::format("datum.method: unknown datum method '{}'", Excerpt(*methodName)));
  }
  if (!items.Has(prefix + "target")) throw UsageError("datum.target is missing");
  const auto own = TakeEllipsoid(items, prefix);
  if (DatumDef::UsesParameter(p.method, DatumParameterIDEllipsoid)) {
    if (!own && !ellipsoid) throw UsageError("the datum has no ellipsoid: give datum.ellipsoid or ellipsoid");
    p.ellipsoid = own ? *own : *ellipsoid;
  } else if (own) {
    throw UsageError(fmt::format("the datum method '{}' has no ellipsoid", DatumDef::MethodToName(p.method)));
  }
  for (std::string key = items.FirstKey(prefix); !key.empty(); key = items.FirstKey(prefix)) {
    const DatumParameterID id = DatumDef::NameToParameter(key.substr(prefix.size()).c_str());
    if (id == DatumParameterIDNone) throw UsageError(fmt::format("unknown key '{}'", Excerpt(key)));
    if (!DatumDef::UsesParameter(p.method, id)) {
      throw UsageError(fmt::format("{}: the datum method '{}' has no such parameter", key,
                                   DatumDef::MethodToName(p.method)));
    }
    SetDatumValue(p, id, key, *items.Take(key));
  }
  DatumDef datum(&p, 0);
  std::string why;
  if (datum.CheckParameters(why) != DatumParameterIDNone) throw UsageError(fmt::format("datum: {}", why));
  return datum;
}

ProjectionMethod MethodOf(const std::optional<std::string>& name) {
  if (!name || EqualFold(*name, "geographic") || EqualFold(*name, "Unprojected"))
    return ProjectionMethodUnprojected;
  const ProjectionMethod method = ProjectionDef::NameToMethod(name->c_str());
  if (method == ProjectionMethodUnknown || method == ProjectionMethodOther) {
    throw UsageError(fmt::format("unknown projection method '{}'", Excerpt(*name)));
  }
  return method;
}

bool IsAngle(ProjectionParameterID id) {
  return (id >= ProjectionParameterIDLon0 && id <= ProjectionParameterIDLat2) ||
         id == ProjectionParameterIDAlpha;
}

void TakeProjectionValues(Items& items, ProjectionParameters& p) {
  for (std::string key = items.FirstKey(); !key.empty(); key = items.FirstKey()) {
    ProjectionParameterID id = ProjectionDef::NameToParameter(key.c_str());
    const char* const shortName =
        id == ProjectionParameterIDNone ? nullptr : ProjectionDef::ParameterShortName(id);
    if (!shortName || !EqualFold(shortName, key))
      throw UsageError(fmt::format("unknown key '{}'", Excerpt(key)));
    if (!ProjectionDef::UsesParameter(p.method, id)) {
      throw UsageError(fmt::format("{}: the projection method '{}' has no such parameter", shortName,
                                   ProjectionDef::MethodToName(p.method)));
    }
    const std::string value = *items.Take(key);
    if (ProjectionDef::ParameterDataType(id) == ORVDataTypeIDBool) {
      ProjectionDef::SetParameter(p, id, FlagOf(shortName, value));
    } else {
      ProjectionDef::SetParameter(p, id,
                                  IsAngle(id) ? AngleOf(shortName, value) : NumberOf(shortName, value));
    }
  }
}

std::unique_ptr<CSDef> SystemFromParameters(const std::string& text) {
  Items items(text);
  LoadCatalogue();

  auto system = std::make_unique<ORVDef>();
  if (const auto name = items.Take("name")) system->SetName(name->c_str());
  if (const auto token = items.Take("token")) system->SetToken(token->c_str());
  if (const auto comment = items.Take("comment")) system->SetComment(comment->c_str());

  ProjectionParameters p;
  p.method = MethodOf(items.Take("method"));
  if (p.method == ProjectionMethodUTM) p.K0 = 0.9996;
  const auto ellipsoid = TakeEllipsoid(items, "");
  const auto knownDatum = items.Take("datum");
  const std::string ownKey = items.FirstKey("datum.");
  if (knownDatum && !ownKey.empty()) throw UsageError(fmt::format("datum and {} are both given", ownKey));
  std::optional<DatumDef> datum;
  if (knownDatum) {
    datum = KnownDatum(*knownDatum);
  } else if (!ownKey.empty()) {
    datum = TakeOwnDatum(items, ellipsoid);
  }

  if (ellipsoid) {
    p.ellipsoid = *ellipsoid;
  } else if (datum && !datum->GetEllipsoid()->IsUnknown()) {
    p.ellipsoid = *datum->GetEllipsoid();
  } else if (p.method != ProjectionMethodUnprojected) {
    throw UsageError("no ellipsoid: give ellipsoid, or a with f or rf, or a datum that has one");
  }
  TakeProjectionValues(items, p);

  ProjectionDef projection;
  projection.SetParameters(&p);
  std::string why;
  if (projection.CheckParameters(why) != ProjectionParameterIDNone) throw UsageError(why);
  system->SetProjection(&projection);
  if (datum) system->SetDatum(&*datum);
  return system;
}

std::unique_ptr<CSDef> SystemFromEncodedText(const std::string& text) {
  std::unique_ptr<CSDef> system;
  try {
    system.reset(CSDef::BuildFromEncodedText(text, nullptr));
  } catch (const shr::Exception& e) {
    throw UsageError(fmt::format("not a definition: {}", e.Message()));
  }
  if (!system) throw UsageError("not a definition: neither an ORVDef nor a UCSDef block");
  std::string why;
  if (!system->Check(why)) throw UsageError(fmt::format("the definition is not valid: {}", why));
  LoadCatalogue();
  return system;
}

bool IsExchangedText(const std::string& text) {
  return ORVLooksLikeWkt(text) || ORVLooksLikeProjString(text);
}

std::unique_ptr<CSDef> SystemFromExchangedText(const std::string& text) {
  LoadCatalogue();
  try {
    return ORVReadText(text);
  } catch (const shr::Exception& e) {
    throw UsageError(e.Message());
  }
}

/// Definitions are small; a file larger than this is something else.
constexpr size_t kLargestFile = size_t{1} << 20;

std::string ContentOf(const std::string& file) {
  std::FILE* const stream = std::fopen(file.c_str(), "rb");
  if (!stream) {
    throw UsageError(fmt::format("cannot open '{}': {}", file, std::strerror(errno)));
  }
  std::string content(kLargestFile + 1, '\0');
  content.resize(std::fread(content.data(), 1, content.size(), stream));
  const bool failed = std::ferror(stream) != 0;
  std::fclose(stream);
  if (failed) throw UsageError(fmt::format("cannot read '{}'", file));
  if (content.size() > kLargestFile)
    throw UsageError(fmt::format("'{}' is too large for a definition", file));
  if (content.starts_with("\xEF\xBB\xBF")) content.erase(0, 3);
  return content;
}

std::unique_ptr<CSDef> SystemFromContent(const std::string& text) {
  if (IsExchangedText(text)) return SystemFromExchangedText(text);
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first != std::string::npos && text[first] == '<') return SystemFromEncodedText(text.substr(first));
  if (text.find('=') != std::string::npos) return SystemFromParameters(text);
  throw UsageError("not a definition: neither encoded text, well-known text, a PROJ string nor parameters");
}

}  // namespace

std::unique_ptr<CSDef> ReadSystem(const std::string& text) {
  if (text.empty()) throw UsageError("the definition is empty");
  if (text[0] == '<' || text.find('=') != std::string::npos || IsExchangedText(text))
    return SystemFromContent(text);
  LoadCatalogue();
  if (ORVFindKnown(KnownListSystems, text) != 0) return std::unique_ptr<CSDef>(KnownSystem(text).Clone());
  if (!std::filesystem::exists(text)) {
    throw UsageError(UnknownText(KnownListSystems, "system", text) + "; and there is no such file");
  }
  const std::string content = ContentOf(text);
  try {
    return SystemFromContent(content);
  } catch (const UsageError& e) {
    throw UsageError(fmt::format("{}: {}", text, e.what()));
  }
}

}  // namespace orv::tool
