// Configuration files, as lists of datums.  What loads and is saved must load alike.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "orv/datum/DatumList.h"
#include "orv/shared/Exception.h"
#include "orv/tables/EllipsoidList.h"

namespace {

using orv::fuzz::MemoryFile;
using orv::fuzz::Require;

/// A quoted text ends at a quote and at a line end, and knows no escapes (deliberate).
bool Saveable(const char* text) { return !text || !std::strpbrk(text, "\"\n\r"); }

/// Radii keep four decimals (deliberate).
bool Saveable(const orv::DatumDef& datum) {
  const orv::DatumParameters& p = *datum.GetParameters();
  const orv::EllipsoidDef& e = p.ellipsoid;
  for (const double value : {p.pmShift, p.dx, p.dy, p.dz, p.rx, p.ry, p.rz, p.k}) {
    if (!std::isfinite(value)) return false;
  }
  const bool sizeKept = !datum.UsesParameter(orv::DatumParameterIDEllipsoid) || e.GetMajorRadius() >= 1e-4;
  return sizeKept && Saveable(datum.GetToken()) && Saveable(datum.GetName()) &&
         Saveable(datum.GetComment()) && Saveable(e.GetToken()) && Saveable(e.GetName()) &&
         std::isfinite(e.GetMajorRadius()) && std::isfinite(e.GetFlattening());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static MemoryFile input, saved, savedAgain;
  static const int known = orv::ORVKnownEllipsoidsList.Add(
      orv::EllipsoidDef(6378137.0, 1 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030));
  (void)known;
  input.Write(data, size);
  orv::DatumList list;
  bool loaded = false;
  try {
    loaded = list.Load(input.Path(), true);
  } catch (const shr::Exception& e) {
    Require(e.Code() == 1028 || e.Code() == 1029 || e.Code() == 1032, "a listed failure", e.Message());
  }
  std::string dump;
  list.DebugDump(dump, 0);
  // A byte 0 ends a text for all who ask for it, but not for the writer.
  if (!loaded || std::find(data, data + size, uint8_t{0}) != data + size) return 0;
  for (int i = list.First(); i <= list.Last(); ++i) {
    if (list.Enum(i)->IsUnknown() || !Saveable(*list.Enum(i))) return 0;
  }

  orv::DatumList second, third;
  Require(list.Save(saved.Path()), "the list is saved");
  Require(second.Load(saved.Path(), true), "what was saved loads", saved.Content());
  Require(second.Save(savedAgain.Path()), "the second list is saved");
  Require(third.Load(savedAgain.Path(), true), "what was saved again loads", savedAgain.Content());
  Require(list.Count() == second.Count() && list.Count() == third.Count(), "no entry is lost",
          saved.Content());
  for (int i = second.First(); i <= second.Last(); ++i) {
    Require(std::strcmp(list.EnumToken(i), third.EnumToken(i)) == 0, "tokens stay", saved.Content());
    Require(std::strcmp(list.EnumName(i), third.EnumName(i)) == 0, "names stay", saved.Content());
    Require(list.EnumFlags(i) == third.EnumFlags(i), "flags stay", saved.Content());
    Require(second.Enum(i)->GetSpecial() == list.Enum(i)->GetSpecial(), "special roles stay",
            saved.Content());
    Require(second.Enum(i)->CompareParameters(third.Enum(i)), "saved parameters stay", saved.Content());
  }
  return 0;
}
