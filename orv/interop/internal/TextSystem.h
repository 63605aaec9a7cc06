// TextSystem.h: what a text says of a system, whatever its dialect: between the readers and writers of the texts and the
// library's own definitions.
#pragma once

#include <cmath>
#include <memory>
#include <string>

#include "orv/interop/Interchange.h"
#include "orv/interop/internal/MethodMap.h"
#include "orv/interop/internal/WktNode.h"

namespace orv::internal {

/// A unit with its size in metres or degrees.
struct TextUnit {
  std::string name;
  int code = 0;
  double size = 1.0;
};

struct TextSystem {
  bool isGeographic = false;
  std::string name;           ///< of the system
  bool isNameRemark = false;  ///< the name is a remark ("+title"): it means no known system
  int code = 0;               ///< EPSG, 0 for none; the other codes too
  std::string baseName;       ///< of the geographic system; written, and never asked for when a text is read
  int baseCode = 0;

  std::string datumName;
  int datumCode = 0;
  std::string ellipsoidName;
  int ellipsoidCode = 0;
  double a = 0.0;              ///< major radius, metres
  double f = 0.0;              ///< flattening
  bool isPlainSphere = false;  ///< "+R=": the text's figure is a sphere of the ellipsoid's major radius
  std::string meridianName = "Greenwich";
  double meridian = 0.0;  ///< degrees east of Greenwich

  TextUnit angle{"degree", 9122, 1.0};  ///< of a geographic system's coordinates
  TextUnit length{"metre", 9001, 1.0};  ///< of the plane

  bool hasShift = false;
  double shift[7] = {};     ///< metres, arc-seconds (position vector), parts per million
  bool isWgs84 = false;     ///< the datum is that of WGS 84 itself
  bool isNullGrid = false;  ///< "+nadgrids=@null": longitude and latitude are those of WGS 84

  const MethodRow* method = nullptr;
  bool hasDefaults = false;    ///< of a PROJ string: values that are not given have defaults
  Values values;               ///< degrees from the prime meridian, metres, ratios
  bool isUnrotated = false;    ///< Hotine, "+no_rot"
  bool isFromNatural = false;  ///< Hotine by two points, "+no_uoff"; the forms by azimuth say it themselves
  int zone = 0;                ///< UTM zone, 0 for none
  bool isSouth = false;
  std::string conversionName;

  Place place;        ///< of the whole
  Place methodPlace;  ///< of the method
};

/// The projection of a text on the text's ellipsoid and in its unit.  Raised: what cannot be expressed, at the method's
/// place.
ProjectionParameters ParametersOf(const TextSystem& text);

/// Fills unit, method and values for a projection.  Raised, 1032: what the dialect cannot say, with the reason.
///
/// @param pseudo  the system is spherical formulas on ellipsoidal coordinates, see Form::PseudoMercator.
void DescribeProjection(const ProjectionParameters& p, TextDialect dialect, bool pseudo, TextSystem& text);

/// The whole, both ways.
std::unique_ptr<ORVDef> DefinitionOf(const TextSystem& text);
TextSystem DescribeSystem(const ORVDef& system, TextDialect dialect);

/// Texts.
TextSystem ReadWkt(std::string_view text);
TextSystem ReadProjString(std::string_view text, Place at);
std::string WriteWkt(const TextSystem& text, TextDialect dialect, bool indented);
std::string WriteProjString(const TextSystem& text);

/// The unit of that size: the nearest of the known and the built-in ones, when it is within `tolerance` (relative);
/// unnamed else.
TextUnit LengthUnit(double metres, double tolerance);
TextUnit AngleUnit(double degrees);

/// A longitude from some meridian counted from Greenwich, in (-180, 180].
double FoldMeridian(double longitude, double meridian);

/// Degrees.  Deliberate: the engine's set-up loses half the digits at exactly 90 degrees, up to 9 cm; 0.7 seconds less
/// cost half a millimetre near the centre, more away from it (see the docs).  The catalogue does the same.
inline constexpr double kAzimuthBeside90 = 89.9998;
/// Why Hotine's map with u from the centre and a line that runs backward is refused, both ways.
inline constexpr const char* kAzimuthBeyond90 =
    "its azimuth lies beyond 90 degrees and u is counted from the centre, where software differs on the place";

/// Whether two latitudes, degrees, are one but for rounding.
inline bool SameLatitude(double a, double b) { return std::fabs(a - b) < 1e-9; }

/// Degrees of a geographic system's own count as a map: the scale of an Equidistant Cylindrical.
inline constexpr double kAngleSphereRadius = 6378137.0;

}  // namespace orv::internal
