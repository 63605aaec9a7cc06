#include "tools/orv/GeoJsonConvert.h"

#include <fmt/core.h>

#include <string_view>
#include <vector>

#include "tools/orv/Command.h"
#include "tools/orv/Descriptor.h"
#include "tools/orv/JsonMembers.h"

namespace orv::tool {

namespace {

/// Copies the text, geometries converted.
class Copier {
 public:
  Copier(std::string_view text, const std::string& name, GeometryConverter& converter)
      : m_Text(text), m_Name(name), m_Converter(converter) {}

  void Run() {
    Object(SkipJsonBlanks(m_Text, 0));
    CopyTo(m_Text.size());
    WriteDirectly(m_Out.data(), m_Out.size());
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw UsageError(fmt::format("'{}': {}", m_Name, what));
  }

  std::string TypeOf(const std::vector<JsonMember>& members) const {
    for (const JsonMember& member : members) {
      if (member.key != "type" || m_Text[member.value.begin] != '"') continue;
      return std::string(m_Text.substr(member.value.begin + 1, member.value.end - member.value.begin - 2));
    }
    Fail("it holds something without a type, which GeoJSON objects have");
  }

  void Object(size_t at) {
    const std::vector<JsonMember> members = JsonMembersOf(m_Text, at);
    const std::string type = TypeOf(members);
    if (type == "FeatureCollection" || type == "Feature") {
      Members(members, type);
      return;
    }
    ++m_Feature;
    Geometry({at, SkipJsonValue(m_Text, at)});
  }

  void Members(const std::vector<JsonMember>& members, const std::string& type) {
    const bool bCollection = type == "FeatureCollection";
    bool bFound = false, bFirst = true;  // bFirst: no member has stayed yet
    if (!bCollection) ++m_Feature;
    for (size_t i = 0; i < members.size(); ++i) {
      const JsonMember& member = members[i];
      if (member.key == "bbox" || member.key == "crs") {
        LeaveOut(members, i, bFirst);
        continue;
      }
      bFirst = false;
      if (bCollection && member.key == "features") {
        bFound = m_Text[member.value.begin] == '[';
        for (const JsonSpan& feature : JsonElementsOf(m_Text, member.value.begin)) Object(feature.begin);
      } else if (!bCollection && member.key == "geometry") {
        bFound = true;
        if (m_Text[member.value.begin] == '{') Geometry(member.value);
      }
    }
    if (!bFound) Fail(bCollection ? "features are missing" : "a feature has no geometry");
  }

  /// With the comma in front of it, or behind it when none before it stays.
  void LeaveOut(const std::vector<JsonMember>& members, size_t i, bool bFirst) {
    CopyTo(bFirst ? members.front().all.begin : members[i - 1].all.end);
    m_Position = bFirst && i + 1 < members.size() ? members[i + 1].all.begin : members[i].all.end;
  }

  void Geometry(JsonSpan span) {
    CopyTo(span.begin);
    m_Out += m_Converter.Convert(m_Text.substr(span.begin, span.end - span.begin), m_Feature);
    m_Position = span.end;
    if (m_Out.size() < (size_t{1} << 20)) return;
    WriteDirectly(m_Out.data(), m_Out.size());
    m_Out.clear();
  }

  void CopyTo(size_t end) {
    if (end <= m_Position) return;
    m_Out += m_Text.substr(m_Position, end - m_Position);
    m_Position = end;
  }

  std::string_view m_Text;
  const std::string& m_Name;
  GeometryConverter& m_Converter;
  size_t m_Position = 0;  ///< copied, or left out, so far
  uint64_t m_Feature = 0;
  std::string m_Out;
};

}  // namespace

void ConvertGeoJson(const std::string& text, const std::string& name, const CSDef& from, const CSDef& to,
                    const GeoJsonOptions& options, ConvertTally& tally, ClipTally& clipped) {
  const std::string_view json = CheckedJson(text, name);
  GeometryConverter converter(name, from, to, options, tally, clipped);
  Copier(json, name, converter).Run();
}

}  // namespace orv::tool
