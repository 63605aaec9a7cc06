// Encoded text of coordinate systems.  What decodes must encode to a text that decodes to the same text.
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "orv/core/Error.h"
#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Exception.h"
#include "orv/system/ORVDef.h"

namespace {

using orv::fuzz::Require;

bool HoldsBackslash(const char* text) { return text && std::strchr(text, '\\'); }

bool HoldsBackslash(const orv::EllipsoidDef& e) {
  return HoldsBackslash(e.GetToken()) || HoldsBackslash(e.GetName()) || HoldsBackslash(e.GetComment());
}

/// A backslash is written as it is and read as the beginning of an escape (deliberate).
bool HoldsBackslash(const orv::CSDef& system) {
  if (HoldsBackslash(system.GetToken()) || HoldsBackslash(system.GetName()) ||
      HoldsBackslash(system.GetComment())) {
    return true;
  }
  if (system.Type() != orv::CSTypeORV) return false;
  const auto& def = static_cast<const orv::ORVDef&>(system);
  const orv::DatumDef* const datum = def.GetDatum();
  if (datum && (HoldsBackslash(datum->GetToken()) || HoldsBackslash(datum->GetName()) ||
                HoldsBackslash(datum->GetComment()) || HoldsBackslash(*datum->GetEllipsoid()))) {
    return true;
  }
  return def.GetProjection() && HoldsBackslash(*def.GetProjection()->GetEllipsoid());
}

/// A number beyond the doubles is read as an infinity, which has no encoded form.
bool HoldsInfinity(const std::string& text) {
  for (const char* form : {"=inf", "=-inf", ",inf", ",-inf"}) {
    if (text.find(form) != std::string::npos) return true;
  }
  return false;
}

/// Only texts that are not empty are written; so an empty one begins with a byte 0, behind which nothing is
/// written.
bool HoldsCutText(const std::string& text) { return text.find("[0]=\"\"") != std::string::npos; }

std::unique_ptr<orv::CSDef> Decode(const std::string& text) {
  try {
    return std::unique_ptr<orv::CSDef>(orv::CSDef::BuildFromEncodedText(text, nullptr));
  } catch (const shr::Exception& e) {
    Require(e.Code() == orv::ErrCorrupt, "only 1026 is raised", e.Message());
    return nullptr;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::unique_ptr<orv::CSDef> first = Decode(std::string(reinterpret_cast<const char*>(data), size));
  if (!first) return 0;
  std::string why, text, again;
  first->Check(why);
  first->DebugDump(why, 2);
  first->EncodeToText(text);
  Require(text.size() <= 1000 + 30 * size, "the definition is not much larger than its text");
  if (HoldsBackslash(*first) || HoldsInfinity(text) || HoldsCutText(text)) return 0;
  const std::unique_ptr<orv::CSDef> second = Decode(text);
  Require(second != nullptr, "what was encoded decodes", text);
  second->EncodeToText(again);
  Require(text == again, "encoded text is stable", text + "\n---\n" + again);
  return 0;
}
