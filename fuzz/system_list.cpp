// Configuration files, as lists of systems.
#include "fuzz/ListTarget.h"
#include "orv/datum/DatumList.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/EllipsoidList.h"

namespace {

using orv::CSList;
using orv::fuzz::Require;

/// Only texts are judged: numbers lose digits when they are written, which changes no type and no method.
bool Saveable(const CSList& list, int index) {
  const orv::CSDef& system = *list.Enum(index);
  if (!orv::fuzz::Saveable(system.GetComment())) return false;
  if (system.HasWarp()) return false;  // control points that differ in the eleventh decimal may fit no warp
  if (system.Type() != orv::CSTypeORV) return false;  // likewise a scale below twenty decimals
  const auto& def = static_cast<const orv::ORVDef&>(system);
  // A projection or datum of its own holds numbers of any size.
  return orv::fuzz::Saveable(def.GetLegacyName()) && !def.HasDatum(false) && !def.HasProjection(false, true);
}

void RequireSame(const CSList& first, const CSList&, const CSList& third, int i, const std::string& saved) {
  Require(first.EnumType(i) == third.EnumType(i), "types stay", saved);
  Require(first.Enum(i)->Compare(*third.Enum(i), false, nullptr), "systems stay", saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int known = [] {
    orv::ORVKnownEllipsoidsList.Add(
        orv::EllipsoidDef(6378137.0, 1 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030));
    orv::DatumParameters p;
    p.method = orv::DatumMethodNone;
    p.target = orv::DatumTargetWGS84;
    p.ellipsoid = *orv::ORVKnownEllipsoidsList.Enum(2);
    orv::DatumDef datum(&p, 6326);
    datum.SetToken("D");
    datum.SetName("World Geodetic System 1984");
    return orv::ORVKnownDatumsList.Add(datum, 1);
  }();
  (void)known;
  orv::fuzz::LoadSaveLoad<CSList>(data, size, Saveable, RequireSame);
  return 0;
}
