// Well-known text and PROJ strings.  What reads to a system passes its check; what is written of it reads again and is
// then written alike.
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "orv/interop/Interchange.h"
#include "orv/shared/Exception.h"

namespace {

using orv::fuzz::Require;

void RequireStable(const orv::ORVDef& system, orv::TextDialect dialect) {
  std::string first;
  try {
    first = orv::ORVWriteText(system, dialect);
  } catch (const shr::Exception&) {
    return;  // refused
  }
  std::unique_ptr<orv::ORVDef> again;
  try {
    again = orv::ORVReadText(first);
  } catch (const shr::Exception& e) {
    Require(false, "a written text is read", first + "\n" + e.Message());
    return;
  }
  std::string why;
  Require(again->Check(why), "a text of a text is a system", first + "\n" + why);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::unique_ptr<orv::ORVDef> system;
  try {
    system = orv::ORVReadText(text);
  } catch (const shr::Exception& e) {
    Require(std::strncmp(e.Message(), "Line ", 5) == 0, "a failure names its place", e.Message());
    return 0;
  }
  std::string why;
  Require(system->Check(why), "what is read passes its check", text + "\n" + why);
  for (int dialect = 0; dialect < 4; ++dialect)
    RequireStable(*system, static_cast<orv::TextDialect>(dialect));
  return 0;
}
