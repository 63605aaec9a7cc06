// Configuration files, as lists of datums.
#include <cmath>

#include "fuzz/ListTarget.h"
#include "orv/datum/DatumList.h"
#include "orv/tables/EllipsoidList.h"

namespace {

using orv::DatumList;
using orv::fuzz::Require;

/// Radii keep four decimals (deliberate).
bool Saveable(const DatumList& list, int index) {
  const orv::DatumDef& datum = *list.Enum(index);
  const orv::DatumParameters& p = *datum.GetParameters();
  const orv::EllipsoidDef& e = p.ellipsoid;
  for (const double value : {p.pmShift, p.dx, p.dy, p.dz, p.rx, p.ry, p.rz, p.k}) {
    if (!std::isfinite(value)) return false;
  }
  const bool sizeKept = !datum.UsesParameter(orv::DatumParameterIDEllipsoid) || e.GetMajorRadius() >= 1e-4;
  return sizeKept && orv::fuzz::Saveable(datum.GetComment()) && orv::fuzz::Saveable(e.GetToken()) &&
         orv::fuzz::Saveable(e.GetName()) && std::isfinite(e.GetMajorRadius()) &&
         std::isfinite(e.GetFlattening());
}

void RequireSame(const DatumList& first, const DatumList& second, const DatumList& third, int i,
                 const std::string& saved) {
  Require(first.EnumFlags(i) == third.EnumFlags(i), "flags stay", saved);
  Require(second.Enum(i)->GetSpecial() == first.Enum(i)->GetSpecial(), "special roles stay", saved);
  Require(second.Enum(i)->CompareParameters(third.Enum(i)), "saved parameters stay", saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int known = orv::ORVKnownEllipsoidsList.Add(
      orv::EllipsoidDef(6378137.0, 1 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030));
  (void)known;
  orv::fuzz::LoadSaveLoad<DatumList>(data, size, Saveable, RequireSame);
  return 0;
}
