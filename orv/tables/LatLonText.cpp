#include "orv/tables/LatLonText.h"

#include <cmath>
#include <cstring>
#include <string>
#include <string_view>

#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"

namespace orv {

namespace {

enum Flag : int {
  FlagDecimals = 0x000F,
  FlagDecimalDegrees = 0x0010,
  FlagMinus = 0x0020,
  FlagPlus = 0x0040,
  FlagBlank = 0x0080,
  FlagDecimalMinutes = 0x0100,
  FlagSpaced = 0x0200,
  FlagHemisphere = 0x1000,
  FlagLatitude = 0x2000,
  FlagPadded = 0x4000,
};

// The last field: fixed point, with 0x4000 in decimals + 3 places.
std::string LastField(double value, int decimals, bool padded) {
  return padded ? internal::Format("%0*.*f", decimals + 3, decimals, value)
                : internal::Format("%.*f", decimals, value);
}

// Walks a text from left to right.
class Scanner {
 public:
  explicit Scanner(const char* text) : m_pAt(text) {}

  void SkipBlanksAndTabs() {
    while (*m_pAt == ' ' || *m_pAt == '\t') ++m_pAt;
  }
  /// Takes the next character if it is this one.  0 never is: it would be the end of the text.
  bool Take(char c) {
    if (c == '\0' || *m_pAt != c) return false;
    ++m_pAt;
    return true;
  }
  bool TakeInEitherCase(char c) {
    return internal::FoldCase(*m_pAt) == internal::FoldCase(c) && Take(*m_pAt);
  }
  /// Digits with an optional point, converted as a whole; a point alone is 0.
  bool TakeNumber(double& value) {
    const char* const begin = m_pAt;
    SkipDigits();
    if (Take('.')) SkipDigits();
    if (m_pAt == begin) return false;
    value = internal::ReadDecimal(std::string_view(begin, static_cast<size_t>(m_pAt - begin)));
    return true;
  }
  bool AtEnd() const { return *m_pAt == '\0'; }

 private:
  void SkipDigits() {
    while (*m_pAt >= '0' && *m_pAt <= '9') ++m_pAt;
  }

  const char* m_pAt;
};

// What follows the degree marker; minutes and seconds are added one after the other.
void AddMinutesAndSeconds(Scanner& scanner, double& degrees) {
  double minutes = 0.0;
  if (!scanner.TakeNumber(minutes)) return;
  degrees += minutes / 60.0;
  // Deliberate: the markers are "'" or "m" and '"' or "s", in lower case only.
  if (!scanner.Take('\'') && !scanner.Take('m')) return;
  scanner.Take(' ');
  double seconds = 0.0;
  if (!scanner.TakeNumber(seconds)) return;
  degrees += seconds / 3600.0;
  if (!scanner.Take('"')) scanner.Take('s');
}

}  // namespace

bool DegreesToLatLon(char* out, double degrees, int flags, char degreeSymbol, char minuteSymbol,
                     char secondSymbol) {
  if (!out || ((flags & FlagPlus) && (flags & FlagBlank))) return false;
  const double a = std::fabs(degrees);
  const bool negative = degrees < 0.0;
  const int decimals = flags & FlagDecimals;
  const bool padded = (flags & FlagPadded) != 0;
  const char* const gap = flags & FlagSpaced ? " " : "";

  std::string text;
  if (negative) {
    if (flags & FlagMinus) text += '-';
  } else {
    if (flags & FlagPlus) text += '+';
    if (flags & FlagBlank) text += ' ';
  }
  if (flags & FlagDecimalDegrees) {
    text += LastField(a, decimals, false);  // deliberate: padding does not reach here
  } else {
    const double wholeDegrees = std::trunc(a);
    const double minutes = (a - wholeDegrees) * 60.0;
    text += internal::Format("%g", wholeDegrees) + degreeSymbol + gap;
    if (flags & FlagDecimalMinutes) {
      text += LastField(minutes, decimals, padded) + minuteSymbol;
    } else {
      // Deliberate: seconds that print as 60.00 stay so.
      const double wholeMinutes = std::trunc(minutes);
      const double seconds = (minutes - wholeMinutes) * 60.0;
      text += internal::Format(padded ? "%02g" : "%g", wholeMinutes) + minuteSymbol + gap;
      text += LastField(seconds, decimals, padded) + secondSymbol;
    }
  }
  if (flags & FlagHemisphere) {
    text += gap;
    text += flags & FlagLatitude ? (negative ? 'S' : 'N') : (negative ? 'W' : 'E');
  }
  std::memcpy(out, text.c_str(), text.size() + 1);
  return true;
}

bool LatLonToDegrees(const char* text, double* degrees, char degreeSymbol) {
  if (!text || !degrees) return false;
  Scanner scanner(text);
  scanner.SkipBlanksAndTabs();
  bool negative = scanner.Take('-');
  if (!negative) scanner.Take('+');
  double value = 0.0;
  if (!scanner.TakeNumber(value)) return false;
  if (scanner.TakeInEitherCase('d') || scanner.TakeInEitherCase(degreeSymbol)) {
    scanner.Take(' ');
    AddMinutesAndSeconds(scanner, value);
  }
  scanner.Take(' ');
  if (scanner.TakeInEitherCase('s') || scanner.TakeInEitherCase('w')) {
    negative = true;  // deliberate: never flips
  } else if (!scanner.TakeInEitherCase('n')) {
    scanner.TakeInEitherCase('e');
  }
  scanner.SkipBlanksAndTabs();
  if (!scanner.AtEnd()) return false;
  *degrees = negative ? -value : value;
  return true;
}

}  // namespace orv
