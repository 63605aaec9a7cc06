// MethodMap.h: the one table between the library's projection methods and those of the texts.
//
// A row is a method as texts know it, with its parameters as each dialect calls them.  Both directions, and all
// dialects, walk the same rows; what a row's values mean for the library is in MethodForms.cpp and
// MethodChoice.cpp, form by form.
#pragma once

#include <array>
#include <cmath>
#include <string>

#include "orv/projection/ProjectionParameters.h"

namespace orv::internal {

/// A method as texts know it.  Several may belong to one ProjectionMethod.
enum class Form : unsigned char {
  TransverseMercator,
  Lambert2,        // two standard parallels
  Lambert1,        // one, with a scale factor
  LambertBelgium,  // two, turned by 29.2985 seconds; read only
  LambertScaled,   // two, with a scale factor of the ellipsoid (Michigan); read only
  MercatorA,       // scale factor at the Equator
  MercatorB,       // standard parallel
  PseudoMercator,  // spherical formulas on ellipsoidal coordinates
  PolarA,          // Polar Stereographic: scale factor at the pole
  PolarB,          // standard parallel
  PolarC,          // standard parallel, origin on it; read only
  PolarOgc,  // WKT1's Polar_Stereographic: latitude_of_origin is the pole or the parallel; read only, but in GDAL
  Stereographic,  // any centre, one step over the conformal latitude
  Albers,
  Cassini,
  Polyconic,
  HotineA,  // azimuth, origin at the natural origin
  HotineB,  // azimuth, origin at the centre
  HotinePoints,
  SwissOblique,  // HotineB with an azimuth of 90 degrees; read only
  EquidistantCylindrical,
  EquidistantConic,
  Bonne,
  Sinusoidal,
  Miller,
  Mollweide,
  Eckert4,
  Eckert6,
  VanDerGrinten,
  Orthographic,
  Gnomonic,
  AzimuthalEquidistant,
  LambertAzimuthal,
  Utm  // "+proj=utm" only
};

/// What a parameter of a text is, and so its unit: degrees, metres, or none.
enum class Par : unsigned char { Lat0, Lon0, Lat1, Lat2, Lon1, Lon2, K, X, Y, Azimuth, Gamma, Zero, Count };

inline bool IsLength(Par par) { return par == Par::X || par == Par::Y; }
inline bool IsRatio(Par par) { return par == Par::K || par == Par::Zero; }
inline bool IsLongitude(Par par) { return par == Par::Lon0 || par == Par::Lon1 || par == Par::Lon2; }

/// Values by Par; NaN is not given.
class Values {
 public:
  Values() { m_Values.fill(NAN); }
  double& operator[](Par par) { return m_Values[static_cast<size_t>(par)]; }
  double At(Par par) const { return m_Values[static_cast<size_t>(par)]; }
  bool Has(Par par) const { return !std::isnan(At(par)); }
  double Or(Par par, double value) const { return Has(par) ? At(par) : value; }

 private:
  std::array<double, static_cast<size_t>(Par::Count)> m_Values;
};

/// A parameter and its names; a null name: the dialect does not have it.
struct ParameterRow {
  Par par;
  int epsg;  // 0: none
  const char* wkt2;
  const char* gdal;
  const char* esri;
  const char* proj;         // the key without "+"
  bool isOptional = false;  // well-known text may leave it out; a false origin may always be left out
};

/// What the library needs of the ellipsoid to draw the same.
enum class Figure : unsigned char {
  Any,     // sphere or ellipsoid alike
  Radius,  // the method is one of the sphere, and everybody takes the major radius for it
  Sphere  // the text means the ellipsoid, or the sphere of its area; the library has the major radius: a sphere it must be
};

constexpr int kMostParameters = 9;

struct MethodRow {
  Form form;
  ProjectionMethod method;
  Figure figure;
  int epsg;  // 0: none
  const char* wkt2;
  const char* gdal;
  const char* esri;
  const char* proj;
  ParameterRow parameters[kMostParameters];  // ends with par Count

  const ParameterRow* begin() const { return parameters; }
  const ParameterRow* end() const;
};

/// The row of a form.
const MethodRow& RowOfForm(Form form);
/// The row that a name in WKT means (compared by letters and digits, without regard to case), or an EPSG code above
/// 0, which comes first; null when there is none.
const MethodRow* FindMethod(const std::string& name, int epsg);
/// The same of the value of "+proj=".
const MethodRow* FindProjMethod(const std::string& proj);
/// Whether a name in WKT means another method than this; false for names that mean none.
bool IsOtherMethod(const MethodRow& method, const std::string& name);
/// Why the library does not express a method that it knows of; null for one it does not know of.
const char* WhyNotMethod(const std::string& name, int epsg);
const char* WhyNotProjMethod(const std::string& proj);
/// The parameter of a method that a name in WKT or an EPSG code means; null when the method has none such.
const ParameterRow* FindParameter(const MethodRow& method, const std::string& name, int epsg);
/// The parameter of this very key of a PROJ string ("k_0" is "k"): of a method, or of any of the methods of a "+proj=".
const ParameterRow* FindProjParameter(const MethodRow& method, const std::string& key);
const ParameterRow* FindProjParameter(const std::string& proj, const std::string& key);
/// "degree" and so on for messages: the par in words.
const char* ParName(Par par);

/// Equal in letters and digits, without regard to case; other bytes are skipped.
bool EqualBare(const char* a, const char* b);

}  // namespace orv::internal
