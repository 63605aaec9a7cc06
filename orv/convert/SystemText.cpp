#include "orv/convert/SystemText.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>

#include "orv/convert/KnownSearch.h"
#include "orv/convert/internal/TypedText.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/interop/Interchange.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/internal/ProjectionTables.h"
#include "orv/shared/Exception.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/EllipsoidList.h"

ORV_UNIT("SystemText")

namespace orv {

namespace {

using internal::EqualFold;
using internal::Excerpt;
using internal::ParseAngle;
using internal::ParseNumber;
using internal::Trimmed;

/// Why a text is refused; ORVReadSystem makes the library's failure of it.
class Refusal : public std::runtime_error {
 public:
  explicit Refusal(const std::string& text) : std::runtime_error(text) {}
  /// A format whose arguments are all texts, for %s.
  template <class First, class... Texts>
  explicit Refusal(const char* format, const First& first, const Texts&... texts)
      : std::runtime_error(internal::Format(format, Raw(first), Raw(texts)...)) {}

 private:
  static const char* Raw(const char* text) { return text; }
  static const char* Raw(const std::string& text) { return text.c_str(); }
};

/// The place in its list of the entry that a text names.
int Known(KnownList list, const std::string& text) {
  const int index = ORVFindKnown(list, text);
  if (index == 0) throw Refusal(ORVUnknownText(list, text));
  return index;
}

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
      if (!key.empty()) throw Refusal("'%s' is not of the form key=value", Excerpt(key));
      at = keyEnd == std::string::npos ? text.size() : keyEnd + 1;
      return;
    }
    at = keyEnd + 1;
    if (key.empty()) throw Refusal("a key is missing in front of '='");
    const std::string value = ReadValue(text, at, key);
    if (!m_Items.emplace(Folded(std::string(key)), Item{std::string(key), value}).second) {
      throw Refusal("'%s' is given twice", Excerpt(key));
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
      if (at >= text.size()) throw Refusal("the quoted value of '%s' is not closed", Excerpt(key));
      ++at;
      while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
      if (at < text.size() && !EndsItem(text[at])) {
        throw Refusal("there is text behind the quoted value of '%s'", Excerpt(key));
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
  if (!ParseNumber(value, number)) throw Refusal("%s: '%s' is not a number", key, Excerpt(value));
  return number;
}

double AngleOf(const std::string& key, const std::string& value) {
  double number = 0.0;
  if (!ParseAngle(value, number)) {
    throw Refusal("%s: '%s' is neither a number nor an angle such as 9d30mE", key, Excerpt(value));
  }
  return number;
}

bool FlagOf(const std::string& key, const std::string& value) {
  if (EqualFold(value, "true") || value == "1") return true;
  if (EqualFold(value, "false") || value == "0") return false;
  throw Refusal("%s: '%s' is neither true nor false", key, Excerpt(value));
}

/// The ellipsoid that the keys with this prefix give; none when there are none.
std::optional<EllipsoidDef> TakeEllipsoid(Items& items, const std::string& prefix) {
  const auto known = items.Take(prefix + "ellipsoid");
  const auto a = items.Take(prefix + "a"), f = items.Take(prefix + "f"), rf = items.Take(prefix + "rf");
  if (known && (a || f || rf)) {
    throw Refusal("%sellipsoid and %s%s are both given", prefix, prefix, a ? "a" : f ? "f" : "rf");
  }
  if (known) return *ORVKnownEllipsoidsList.Enum(Known(KnownListEllipsoids, *known));
  if (!a && !f && !rf) return std::nullopt;
  if (!a) throw Refusal("%s%s is given without %sa", prefix, f ? "f" : "rf", prefix);
  if (f && rf) throw Refusal("%sf and %srf are both given", prefix, prefix);
  if (!f && !rf) throw Refusal("%sa is given without %sf or %srf", prefix, prefix, prefix);
  const double radius = NumberOf(prefix + "a", *a);
  double flattening = 0.0;
  if (f) {
    flattening = NumberOf(prefix + "f", *f);
  } else {
    const double inverse = NumberOf(prefix + "rf", *rf);
    if (!(inverse > 1.0)) throw Refusal("%srf: must be above 1 (a sphere has %sf=0)", prefix, prefix);
    flattening = 1.0 / inverse;
  }
  try {
    EllipsoidDef ellipsoid(radius, flattening, nullptr, nullptr, nullptr, 0);
    std::string why;
    if (!ellipsoid.CheckParameters(why)) throw Refusal(why);
    return ellipsoid;
  } catch (const shr::Exception& e) {
    throw Refusal("%sa=%s: %s", prefix, *a, e.Message());
  }
}

void SetDatumValue(DatumParameters& p, DatumParameterID id, const std::string& key,
                   const std::string& value) {
  if (id == DatumParameterIDTarget) {
    p.target = DatumDef::NameToTarget(value.c_str());
    if (p.target == DatumTargetNone) throw Refusal("%s: unknown target '%s'", key, Excerpt(value));
    return;
  }
  if (id == DatumParameterIDEquation) {
    p.mreType = DatumDef::NameToMREType(value.c_str());
    if (p.mreType == DatumMRETypeNone) throw Refusal("%s: unknown region '%s'", key, Excerpt(value));
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
  if (!methodName) throw Refusal("datum.method is missing");
  DatumParameters p;
  p.method = DatumDef::NameToMethod(methodName->c_str());
  if (p.method == DatumMethodUnknown) {
    throw Refusal("datum.method: unknown datum method '%s'", Excerpt(*methodName));
  }
  if (!items.Has(prefix + "target")) throw Refusal("datum.target is missing");
  const auto own = TakeEllipsoid(items, prefix);
  if (DatumDef::UsesParameter(p.method, DatumParameterIDEllipsoid)) {
    if (!own && !ellipsoid) throw Refusal("the datum has no ellipsoid: give datum.ellipsoid or ellipsoid");
    p.ellipsoid = own ? *own : *ellipsoid;
  } else if (own) {
    throw Refusal("the datum method '%s' has no ellipsoid", DatumDef::MethodToName(p.method));
  }
  for (std::string key = items.FirstKey(prefix); !key.empty(); key = items.FirstKey(prefix)) {
    const DatumParameterID id = DatumDef::NameToParameter(key.substr(prefix.size()).c_str());
    if (id == DatumParameterIDNone) throw Refusal("unknown key '%s'", Excerpt(key));
    if (!DatumDef::UsesParameter(p.method, id)) {
      throw Refusal("%s: the datum method '%s' has no such parameter", key, DatumDef::MethodToName(p.method));
    }
    SetDatumValue(p, id, key, *items.Take(key));
  }
  DatumDef datum(&p, 0);
  std::string why;
  if (datum.CheckParameters(why) != DatumParameterIDNone) throw Refusal("datum: %s", why);
  return datum;
}

ProjectionMethod MethodOf(const std::optional<std::string>& name) {
  if (!name || EqualFold(*name, "geographic") || EqualFold(*name, "Unprojected"))
    return ProjectionMethodUnprojected;
  const ProjectionMethod method = ProjectionDef::NameToMethod(name->c_str());
  if (method == ProjectionMethodUnknown || method == ProjectionMethodOther) {
    throw Refusal("unknown projection method '%s'", Excerpt(*name));
  }
  return method;
}

void TakeProjectionValues(Items& items, ProjectionParameters& p) {
  for (std::string key = items.FirstKey(); !key.empty(); key = items.FirstKey()) {
    ProjectionParameterID id = ProjectionDef::NameToParameter(key.c_str());
    const char* const shortName =
        id == ProjectionParameterIDNone ? nullptr : ProjectionDef::ParameterShortName(id);
    if (!shortName || !EqualFold(shortName, key)) throw Refusal("unknown key '%s'", Excerpt(key));
    if (!ProjectionDef::UsesParameter(p.method, id)) {
      throw Refusal("%s: the projection method '%s' has no such parameter", shortName,
                    ProjectionDef::MethodToName(p.method));
    }
    const std::string value = *items.Take(key);
    if (ProjectionDef::ParameterDataType(id) == ORVDataTypeIDBool) {
      ProjectionDef::SetParameter(p, id, FlagOf(shortName, value));
    } else {
      ProjectionDef::SetParameter(
          p, id, internal::IsAngle(id) ? AngleOf(shortName, value) : NumberOf(shortName, value));
    }
  }
}

std::unique_ptr<CSDef> SystemFromParameters(const std::string& text) {
  Items items(text);

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
  if (knownDatum && !ownKey.empty()) throw Refusal("datum and %s are both given", ownKey);
  std::optional<DatumDef> datum;
  if (knownDatum) {
    datum = *ORVKnownDatumsList.Enum(Known(KnownListDatums, *knownDatum));
  } else if (!ownKey.empty()) {
    datum = TakeOwnDatum(items, ellipsoid);
  }

  if (ellipsoid) {
    p.ellipsoid = *ellipsoid;
  } else if (datum && !datum->GetEllipsoid()->IsUnknown()) {
    p.ellipsoid = *datum->GetEllipsoid();
  } else if (p.method != ProjectionMethodUnprojected) {
    throw Refusal("no ellipsoid: give ellipsoid, or a with f or rf, or a datum that has one");
  }
  TakeProjectionValues(items, p);

  ProjectionDef projection;
  projection.SetParameters(&p);
  std::string why;
  if (projection.CheckParameters(why) != ProjectionParameterIDNone) throw Refusal(why);
  system->SetProjection(&projection);
  if (datum) system->SetDatum(&*datum);
  return system;
}

std::unique_ptr<CSDef> SystemFromEncodedText(const std::string& text) {
  std::unique_ptr<CSDef> system;
  try {
    system.reset(CSDef::BuildFromEncodedText(text, nullptr));
  } catch (const shr::Exception& e) {
    throw Refusal("not a definition: %s", e.Message());
  }
  if (!system) throw Refusal("not a definition: neither an ORVDef nor a UCSDef block");
  std::string why;
  if (!system->Check(why)) throw Refusal("the definition is not valid: %s", why);
  return system;
}

/// Definitions are small; a file larger than this is something else.
constexpr size_t kLargestFile = size_t{1} << 20;

std::string ContentOf(const std::string& file) {
  std::FILE* const stream = std::fopen(file.c_str(), "rb");
  if (!stream) {
    throw Refusal("cannot open '%s': %s", file, std::strerror(errno));
  }
  std::string content(kLargestFile + 1, '\0');
  content.resize(std::fread(content.data(), 1, content.size(), stream));
  const bool failed = std::ferror(stream) != 0;
  std::fclose(stream);
  if (failed) throw Refusal("cannot read '%s'", file);
  if (content.size() > kLargestFile) throw Refusal("'%s' is too large for a definition", file);
  if (content.starts_with("\xEF\xBB\xBF")) content.erase(0, 3);
  return content;
}

// ---- the forms of a definition -----------------------------------------------------------------------------

std::unique_ptr<CSDef> SystemFromExchangedText(const std::string& text) {
  try {
    return ORVReadText(text);
  } catch (const shr::Exception& e) {
    throw Refusal("%s", e.Message());
  }
}

/// A way to write a definition.
struct Form {
  bool (*matches)(const std::string& text);
  std::unique_ptr<CSDef> (*read)(const std::string& text);
};

/// The first form that matches reads the text, which has neither blanks nor line ends in front.  Another form
/// is another row.
constexpr Form kForms[] = {
    {[](const std::string& text) { return text[0] == '<'; }, SystemFromEncodedText},
    {[](const std::string& text) { return ORVLooksLikeWkt(text) || ORVLooksLikeProjString(text); },
     SystemFromExchangedText},
    {[](const std::string& text) { return text.find('=') != std::string::npos; }, SystemFromParameters},
};

/// Null for a text in none of the forms.
const Form* FormOf(const std::string& text) {
  if (text.empty()) return nullptr;
  const Form* const form =
      std::find_if(std::begin(kForms), std::end(kForms), [&](const Form& row) { return row.matches(text); });
  return form == std::end(kForms) ? nullptr : form;
}

std::unique_ptr<CSDef> SystemFromFile(const std::string& file) {
  std::string content = ContentOf(file);
  content.erase(0, std::min(content.find_first_not_of(" \t\r\n"), content.size()));
  const Form* const form = FormOf(content);
  if (!form)
    throw Refusal("%s: not a definition: neither encoded text, well-known text, a PROJ string nor parameters",
                  file);
  try {
    return form->read(content);
  } catch (const Refusal& refusal) {
    throw Refusal("%s: %s", file, refusal.what());
  }
}

std::unique_ptr<CSDef> Read(const std::string& text) {
  if (text.empty()) throw Refusal("the definition is empty");
  std::error_code ignored;  // a text that can be no path names no file
  if (const Form* const form = FormOf(text)) {
    // A path may hold "=" too.
    const bool isFile = form->read == SystemFromParameters && std::filesystem::is_regular_file(text, ignored);
    return isFile ? SystemFromFile(text) : form->read(text);
  }
  if (const int index = ORVFindKnown(KnownListSystems, text); index != 0) {
    return std::unique_ptr<CSDef>(ORVKnownSystemsList.Enum(index)->Clone());
  }
  if (std::filesystem::exists(text, ignored)) return SystemFromFile(text);
  throw Refusal("%s; and there is no such file", ORVUnknownText(KnownListSystems, text));
}

}  // namespace

std::unique_ptr<CSDef> ORVReadSystem(std::string_view text) {
  try {
    return Read(std::string(text));
  } catch (const Refusal& refusal) {
    ORV_FAIL(ErrBadParameter, "%s", refusal.what());
    return nullptr;
  }
}

}  // namespace orv
