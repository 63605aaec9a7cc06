// Latitude and longitude text.  The first byte is the degree symbol, the rest the text.  What parses must,
// written as decimal degrees and as degrees, minutes and seconds, parse to the same angle.
#include <array>
#include <cmath>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "orv/tables/LatLonText.h"

namespace {

using orv::fuzz::Require;

constexpr int kSignedDecimal = 0x0010 | 0x0020;
constexpr int kLetters = 0x1000;

void RequireRoundTrip(double degrees, int flags, double tolerance) {
  std::array<char, 1024> text{};
  double again = 0.0;
  Require(orv::DegreesToLatLon(text.data(), degrees, flags, 'd', 'm', 's'), "an angle has a text");
  Require(orv::LatLonToDegrees(text.data(), &again, 'd'), "an angle's text parses", text.data());
  Require(std::fabs(again - degrees) <= tolerance, "an angle's text is the angle", text.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const auto symbol = static_cast<char>(data[0]);
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  double degrees = 0.0;
  if (!orv::LatLonToDegrees(text.c_str(), &degrees, symbol)) return 0;
  Require(!std::isnan(degrees), "a parsed angle is a number", text);
  if (!std::isfinite(degrees)) return 0;  // more digits than a double holds
  RequireRoundTrip(degrees, kSignedDecimal | 15, 1e-15 + 1e-15 * std::fabs(degrees));
  // From a million degrees on, whole degrees are written with an exponent (deliberate).
  if (std::fabs(degrees) < 999999.0)
    RequireRoundTrip(degrees, kLetters | 12, 1e-14 + 1e-14 * std::fabs(degrees));
  return 0;
}
