// Configuration files, as lists of units of length and of meridians; units of angle are read by the same code.
#include <cmath>

#include "fuzz/ListTarget.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"

namespace {

using orv::LinearUnitList;
using orv::MeridianList;
using orv::fuzz::Require;

/// Numbers keep twenty decimals.
bool Near(double a, double b) { return std::fabs(a - b) <= 1e-20 + 1e-15 * std::fabs(a); }

bool SaveableUnit(const LinearUnitList& list, int index) {
  const double multiplier = list.EnumMultiplier(index), divider = list.EnumDivider(index);
  // What rounds to 0 means "not given".
  return orv::fuzz::Saveable(list.EnumNamePlural(index)) && std::isfinite(multiplier) &&
         std::isfinite(divider) && (multiplier == 0.0 || multiplier > 1e-19) &&
         (divider == 0.0 || divider > 1e-19);
}

void RequireSameUnit(const LinearUnitList& first, const LinearUnitList&, const LinearUnitList& third, int i,
                     const std::string& saved) {
  Require(orv::fuzz::Same(first.EnumNamePlural(i), third.EnumNamePlural(i)), "plural names stay", saved);
  Require(first.EnumPOSC(i) == third.EnumPOSC(i), "numbers stay", saved);
  Require(Near(first.EnumMultiplier(i), third.EnumMultiplier(i)), "multipliers stay", saved);
  Require(Near(first.EnumDivider(i), third.EnumDivider(i)), "dividers stay", saved);
}

void RequireSameMeridian(const MeridianList& first, const MeridianList&, const MeridianList& third, int i,
                         const std::string& saved) {
  Require(first.EnumPOSC(i) == third.EnumPOSC(i), "numbers stay", saved);
  Require(Near(first.EnumLongitude(i), third.EnumLongitude(i)), "longitudes stay", saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  orv::fuzz::LoadSaveLoad<LinearUnitList>(data, size, SaveableUnit, RequireSameUnit);
  orv::fuzz::LoadSaveLoad<MeridianList>(
      data, size, [](const MeridianList&, int) { return true; }, RequireSameMeridian);
  return 0;
}
