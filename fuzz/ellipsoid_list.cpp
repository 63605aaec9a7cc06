// Configuration files, as lists of ellipsoids.
#include <cmath>

#include "fuzz/ListTarget.h"
#include "orv/tables/EllipsoidList.h"

namespace {

using orv::EllipsoidList;
using orv::fuzz::Require;

/// Radii keep four decimals (deliberate).
bool Saveable(const EllipsoidList& list, int index) {
  const orv::EllipsoidDef& e = *list.Enum(index);
  return orv::fuzz::Saveable(e.GetComment()) && e.GetMajorRadius() >= 1e-4 &&
         std::isfinite(e.GetMajorRadius()) && std::isfinite(e.GetFlattening());
}

bool Near(double a, double b) { return std::fabs(a - b) <= 1e-12 * std::fabs(a) + 1e-18; }

void RequireSame(const EllipsoidList& first, const EllipsoidList& second, const EllipsoidList& third, int i,
                 const std::string& saved) {
  Require(first.EnumPOSCNumber(i) == third.EnumPOSCNumber(i), "numbers stay", saved);
  Require(second.EnumRadius(i) == third.EnumRadius(i), "saved radii stay", saved);
  Require(Near(second.EnumFlattening(i), third.EnumFlattening(i)), "saved flattenings stay", saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  orv::fuzz::LoadSaveLoad<EllipsoidList>(data, size, Saveable, RequireSame);
  return 0;
}
