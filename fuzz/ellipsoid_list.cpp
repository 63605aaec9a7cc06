// Configuration files, as lists of ellipsoids.  What loads and is saved must load alike and be saved alike.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "orv/shared/Exception.h"
#include "orv/tables/EllipsoidList.h"

namespace {

using orv::fuzz::MemoryFile;
using orv::fuzz::Require;

/// A quoted text ends at a quote and at a line end, and knows no escapes (deliberate); a byte 0 ends a C
/// string.
bool Saveable(const char* text) { return !text || !std::strpbrk(text, "\"\n\r"); }

/// Radii keep four decimals (deliberate).
bool Saveable(const orv::EllipsoidDef& e) {
  return Saveable(e.GetToken()) && Saveable(e.GetName()) && Saveable(e.GetComment()) &&
         e.GetMajorRadius() >= 1e-4 && std::isfinite(e.GetMajorRadius()) && std::isfinite(e.GetFlattening());
}

bool Near(double a, double b) { return std::fabs(a - b) <= 1e-12 * std::fabs(a) + 1e-18; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static MemoryFile input, saved, savedAgain;
  input.Write(data, size);
  orv::EllipsoidList list;
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
    if (!Saveable(*list.Enum(i))) return 0;
  }

  orv::EllipsoidList second, third;
  Require(list.Save(saved.Path()), "the list is saved");
  Require(second.Load(saved.Path(), true), "what was saved loads", saved.Content());
  Require(second.Save(savedAgain.Path()), "the second list is saved");
  Require(third.Load(savedAgain.Path(), true), "what was saved again loads", savedAgain.Content());
  Require(list.Count() == second.Count() && list.Count() == third.Count(), "no entry is lost",
          saved.Content());
  for (int i = second.First(); i <= second.Last(); ++i) {
    Require(std::strcmp(list.EnumToken(i), third.EnumToken(i)) == 0, "tokens stay", saved.Content());
    Require(std::strcmp(list.EnumName(i), third.EnumName(i)) == 0, "names stay", saved.Content());
    Require(list.EnumPOSCNumber(i) == third.EnumPOSCNumber(i), "numbers stay", saved.Content());
    Require(second.EnumRadius(i) == third.EnumRadius(i), "saved radii stay", saved.Content());
    Require(Near(second.EnumFlattening(i), third.EnumFlattening(i)), "saved flattenings stay",
            saved.Content());
  }
  return 0;
}
