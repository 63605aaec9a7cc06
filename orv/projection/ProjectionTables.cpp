#include "orv/projection/internal/ProjectionTables.h"

#include <cmath>

namespace orv::internal {

// clang-format off

const ProjectionMethodRow kProjectionMethods[kProjectionMethodCount] = {
    {{ProjectionMethodUnknown,                "Unknown",                              "Unknown"},    0x00},
    {{ProjectionMethodUnprojected,            "Unprojected Lat/Long",                 "None"},       0x00},
    {{ProjectionMethodOther,                  "Other/Unsupported Projection",         "Other"},      0x00},
    {{ProjectionMethodMercator,               "Mercator",                             "Merc"},       0x2F},
    {{ProjectionMethodAlbers,                 "Albers Equal Area Conic",              "Albers"},     0x2F},
    {{ProjectionMethodMiller,                 "Miller Cylindrical",                   "Miller"},     0x2F},
    {{ProjectionMethodUTM,                    "Universal Transverse Mercator (UTM)",  "UTM"},        0x1B},
    {{ProjectionMethodLambert,                "Lambert Conformal Conic",              "Lambert"},    0x2F},
    {{ProjectionMethodStereographic,          "Stereographic",                        "Stereo"},     0x1B},
    {{ProjectionMethodOrthographic,           "Orthographic",                         "Ortho"},      0x1B},
    {{ProjectionMethodMollweide,              "Mollweide",                            "Moll"},       0x3F},
    {{ProjectionMethodPolyconic,              "Polyconic",                            "Poly"},       0x1B},
    {{ProjectionMethodHotine,                 "Hotine Oblique Mercator",              "Hotine"},     0x03},
    {{ProjectionMethodEquidistantCylindrical, "Equidistant Cylindrical",              "EquiCyl"},    0x2F},
    {{ProjectionMethodRobinson,               "Robinson",                             "Rob"},        0x3F},
    {{ProjectionMethodVanDerGrinten,          "Van Der Grinten",                      "Grinten"},    0x3F},
    {{ProjectionMethodCassini,                "Cassini",                              "Cass"},       0x3B},
    {{ProjectionMethodTransverseMercator,     "Transverse Mercator",                  "TMerc"},      0x1B},
    {{ProjectionMethodSinusoidal,             "Sinusoidal",                           "Sinus"},      0x3F},
    {{ProjectionMethodLambertAzimuthal,       "Lambert Azimuthal Equal Area",         "LambertAEA"}, 0x3B},
    {{ProjectionMethodBonne,                  "Bonne",                                "Bonne"},      0x1B},
    {{ProjectionMethodRobinsonSterling,       "Robinson-Sterling",                    "RobSter"},    0x3F},
    {{ProjectionMethodEckert4,                "Eckert IV",                            "Eckert4"},    0x3F},
    {{ProjectionMethodEckert6,                "Eckert VI",                            "Eckert6"},    0x3F},
    {{ProjectionMethodObliqueMercator,        "Oblique Mercator",                     "OMerc"},      0x03},
    {{ProjectionMethodEquidistantConic,       "Equidistant Conic",                    "EquiCon"},    0x2F},
    {{ProjectionMethodGnomonic,               "Gnomonic",                             "Gnom"},       0x1B},
    {{ProjectionMethodAzimuthalEquidistant,   "Azimuthal Equidistant",                "Azim"},       0x3F},
};

const ProjectionParameterRow kProjectionParameters[kProjectionParameterCount] = {
    {{ProjectionParameterIDMethod,    "Method",    "Projection Method"},                 ORVDataTypeIDEnum},
    {{ProjectionParameterIDScale,     "Scale",     "Scale"},                             ORVDataTypeIDDouble},
    {{ProjectionParameterIDXOrg,      "xOrg",      "False Easting"},                     ORVDataTypeIDDouble},
    {{ProjectionParameterIDYOrg,      "yOrg",      "False Northing"},                    ORVDataTypeIDDouble},
    {{ProjectionParameterIDLat0,      "Lat0",      "Central Latitude"},                  ORVDataTypeIDDouble},
    {{ProjectionParameterIDLon0,      "Lon0",      "Central Longitude"},                 ORVDataTypeIDDouble},
    {{ProjectionParameterIDLat1,      "Lat1",      "Standard Parallel"},                 ORVDataTypeIDDouble},
    {{ProjectionParameterIDLat2,      "Lat2",      "2nd Standard Parallel"},             ORVDataTypeIDDouble},
    {{ProjectionParameterIDLon1,      "Lon1",      "1st Meridian"},                      ORVDataTypeIDDouble},
    {{ProjectionParameterIDLon2,      "Lon2",      "2nd Meridian"},                      ORVDataTypeIDDouble},
    {{ProjectionParameterIDK0,        "K0",        "Central Scale Factor (K0)"},         ORVDataTypeIDDouble},
    {{ProjectionParameterIDSouth,     "bSouth",    "Projection in Southern Hemisphere"}, ORVDataTypeIDBool},
    {{ProjectionParameterIDUseAlpha,  "bUseAlpha", "Use Alpha Parameter"},               ORVDataTypeIDBool},
    {{ProjectionParameterIDAlpha,     "Alpha",     "Alpha (Azimuth)"},                   ORVDataTypeIDDouble},
    {{ProjectionParameterIDRotate,    "bRotate",   "Rotate U/V to X/Y"},                 ORVDataTypeIDBool},
    {{ProjectionParameterIDUOffset,   "bUOffset",  "Offset by U"},                       ORVDataTypeIDBool},
    {{ProjectionParameterIDEllipsoid, "Ellipsoid", "Ellipsoid"},                         ORVDataTypeIDEllipsoid},
};

namespace {
using P = ProjectionParameters;
constexpr auto kEll = ProjectionParameterIDEllipsoid;
constexpr auto kScale = ProjectionParameterIDScale;
constexpr auto kXOrg = ProjectionParameterIDXOrg, kYOrg = ProjectionParameterIDYOrg;
constexpr auto kLon0 = ProjectionParameterIDLon0, kLat0 = ProjectionParameterIDLat0;
constexpr auto kLon1 = ProjectionParameterIDLon1, kLat1 = ProjectionParameterIDLat1;
constexpr auto kLon2 = ProjectionParameterIDLon2, kLat2 = ProjectionParameterIDLat2;
constexpr auto kK0 = ProjectionParameterIDK0, kSouth = ProjectionParameterIDSouth;
constexpr auto kUseAlpha = ProjectionParameterIDUseAlpha, kAlpha = ProjectionParameterIDAlpha;
constexpr auto kRotate = ProjectionParameterIDRotate, kUOffset = ProjectionParameterIDUOffset;
constexpr auto kNoWrap = ProjectionParameterIDNoWrap;
constexpr auto kEvery = ProjectionMethodUnknown;
}  // namespace

// Deliberate: Robinson has no central longitude; UTM has no false origin of the caller's; the Lambert Azimuthal, Gnomonic and
// Azimuthal Equidistant methods have their latitude of origin in Lat1; Cassini lists Lat0 before Lon0.
const ProjectionUse kProjectionUses[kProjectionUseCount] = {
    {ProjectionMethodUnprojected,            {}},
    {ProjectionMethodAlbers,                 {kEll, kScale, kXOrg, kYOrg, kLon0, kLat0, kLat1, kLat2}},
    {ProjectionMethodBonne,                  {kEll, kScale, kXOrg, kYOrg, kLon0, kLat1}},
    {ProjectionMethodCassini,                {kEll, kScale, kXOrg, kYOrg, kLat0, kLon0}},
    {ProjectionMethodEckert4,                {kEll, kScale, kXOrg, kYOrg, kLon0}},
    {ProjectionMethodEckert6,                {kEll, kScale, kXOrg, kYOrg, kLon0}},
    {ProjectionMethodEquidistantCylindrical, {kEll, kScale, kXOrg, kYOrg, kLon0, kLat1}},
    {ProjectionMethodHotine,                 {kEll, kScale, kXOrg, kYOrg, kK0, kUseAlpha, kAlpha, kLat0, kLat1, kLon1, kLat2,
                                              kLon2, kRotate, kUOffset}},
    {ProjectionMethodLambert,                {kEll, kScale, kXOrg, kYOrg, kLon0, kLat0, kLat1, kLat2}},
    {ProjectionMethodLambertAzimuthal,       {kEll, kScale, kXOrg, kYOrg, kLon0, kLat1}},
    {ProjectionMethodMercator,               {kEll, kScale, kXOrg, kYOrg, kLon0, kLat0}},
    {ProjectionMethodMiller,                 {kEll, kScale, kXOrg, kYOrg, kLon0}},
    {ProjectionMethodMollweide,              {kEll, kScale, kXOrg, kYOrg, kLon0}},
    {ProjectionMethodObliqueMercator,        {kEll, kScale, kXOrg, kYOrg, kLon1, kLat1, kLon2, kLat2, kK0}},
    {ProjectionMethodOrthographic,           {kEll, kScale, kXOrg, kYOrg, kLon0, kLat0}},
    {ProjectionMethodStereographic,          {kEll, kScale, kXOrg, kYOrg, kK0, kLon0, kLat0}},
    {ProjectionMethodPolyconic,              {kEll, kScale, kXOrg, kYOrg, kLon0, kLat0}},
    {ProjectionMethodRobinson,               {kEll, kScale, kXOrg, kYOrg}},
    {ProjectionMethodRobinsonSterling,       {kEll, kScale, kXOrg, kYOrg, kLon0}},
    {ProjectionMethodSinusoidal,             {kEll, kScale, kXOrg, kYOrg, kLon0}},
    {ProjectionMethodTransverseMercator,     {kEll, kScale, kXOrg, kYOrg, kK0, kLon0, kLat0}},
    {ProjectionMethodUTM,                    {kEll, kScale, kK0, kLon0, kLat0, kSouth}},
    {ProjectionMethodVanDerGrinten,          {kEll, kScale, kXOrg, kYOrg, kLon0}},
    {ProjectionMethodEquidistantConic,       {kEll, kScale, kXOrg, kYOrg, kLon0, kLat0, kLat1, kLat2}},
    {ProjectionMethodGnomonic,               {kEll, kScale, kXOrg, kYOrg, kLon0, kLat1}},
    {ProjectionMethodAzimuthalEquidistant,   {kEll, kScale, kXOrg, kYOrg, kLon0, kLat1}},
};

const ProjectionField kProjectionFields[kProjectionFieldCount] = {
    {kScale,    "Scale",     "Scale:  ",     &P::Scale, nullptr,       Apart::Beyond},
    {kXOrg,     "xOrg",      "xOrg:   ",     &P::xOrg,  nullptr,       Apart::Relative},
    {kYOrg,     "yOrg",      "yOrg:   ",     &P::yOrg,  nullptr,       Apart::Relative},
    {kLon0,     "Lon0",      "Lon0:   ",     &P::Lon0,  nullptr,       Apart::Beyond},
    {kLon1,     "Lon1",      "Lon1:   ",     &P::Lon1,  nullptr,       Apart::Beyond},
    {kLon2,     "Lon2",      "Lon2:   ",     &P::Lon2,  nullptr,       Apart::Beyond},
    {kLat0,     "Lat0",      "Lat0:   ",     &P::Lat0,  nullptr,       Apart::Beyond},
    {kLat1,     "Lat1",      "Lat1:   ",     &P::Lat1,  nullptr,       Apart::Within},
    {kLat2,     "Lat2",      "Lat2:   ",     &P::Lat2,  nullptr,       Apart::Within},
    {kK0,       "K0",        "K0:     ",     &P::K0,    nullptr,       Apart::Within},
    {kSouth,    "bSouth",    "bSouth:     ", nullptr,   &P::bSouth,    Apart::Flag},
    {kUseAlpha, "bUseAlpha", "bUseAlpha:  ", nullptr,   &P::bUseAlpha, Apart::Flag},
    {kAlpha,    "Alpha",     "Alpha:      ", &P::Alpha, nullptr,       Apart::Within},
    {kRotate,   "bRotate",   "bRotate:    ", nullptr,   &P::bRotate,   Apart::Flag},
    {kUOffset,  "bUOffset",  "bUOffset:   ", nullptr,   &P::bUOffset,  Apart::Flag},
    {kNoWrap,   "bNoWrap",   "bNoWrap:    ", nullptr,   &P::bNoWrap,   Apart::Flag},
};

const ProjectionDefault kProjectionDefaults[kProjectionDefaultCount] = {
    {ProjectionMethodAlbers,               kLat1, 29.5}, {ProjectionMethodAlbers,               kLat2, 45.5},
    {ProjectionMethodAzimuthalEquidistant, kLon0, -90},  {ProjectionMethodAzimuthalEquidistant, kLat0, 45},
    {ProjectionMethodOrthographic,         kLon0, -90},  {ProjectionMethodOrthographic,         kLat0, 45},
    {ProjectionMethodStereographic,        kLon0, -90},  {ProjectionMethodStereographic,        kLat0, 45},
    {ProjectionMethodTransverseMercator,   kLon0, -90},  {ProjectionMethodTransverseMercator,   kLat0, 45},
    {ProjectionMethodBonne,                kLat1, 45},
    {ProjectionMethodGnomonic,             kLat1, 45},
    {ProjectionMethodLambertAzimuthal,     kLat1, 45},
    {ProjectionMethodCassini,              kLat0, 45},
    {ProjectionMethodEquidistantConic,     kLat1, 45},   {ProjectionMethodEquidistantConic,     kLat2, 22.5},
    {ProjectionMethodObliqueMercator,      kLat1, 45},   {ProjectionMethodObliqueMercator,      kLat2, 22.5},
    {ProjectionMethodHotine,               kUseAlpha, 1}, {ProjectionMethodHotine,              kRotate, 1},
    {ProjectionMethodHotine,               kUOffset, 1},
    {ProjectionMethodHotine,               kLat1, 45},   {ProjectionMethodHotine,               kAlpha, 22.5},
    {ProjectionMethodLambert,              kLat1, 33},   {ProjectionMethodLambert,              kLat2, 45},
    {ProjectionMethodUTM,                  kLon0, -90},  {ProjectionMethodUTM,                  kLat0, 45},
};

// clang-format on

namespace {

constexpr double kMost = 1.7014117331926443e38;
constexpr double kMostK0 = 1.7014117331926443e37;  // deliberate: ten times smaller

// "Outside a range" lets NaN pass, "not inside a range" refuses it: each test stands as its rule is worded.
bool IsOutside(double v, double low, double high) { return v < low || v > high; }
bool IsFalseOrigin(double v) { return v > -kMost && v <= kMost; }
bool IsOnCircle(double v) { return v > -360.0 && v < 360.0; }
bool IsLatitude(double v) { return v >= -90.0 && v <= 90.0; }

}  // namespace

const ProjectionCheck kProjectionChecks[kProjectionCheckCount] = {
    {kEvery, [](const P& p) { return IsOutside(p.Scale, 0.0, kMost); }, "Bad linear scale parameter.",
     kScale},
    {kEvery, [](const P& p) { return IsOutside(p.K0, 0.0, kMostK0); },
     "Bad K0 (central scale factor) parameter.", kK0},
    {kEvery, [](const P& p) { return p.method != ProjectionMethodUTM && !IsFalseOrigin(p.xOrg); },
     "Bad xOrg (false easting) parameter.", kXOrg},
    {kEvery, [](const P& p) { return p.method != ProjectionMethodUTM && !IsFalseOrigin(p.yOrg); },
     "Bad yOrg (false northing) parameter.", kYOrg},
    {kEvery, [](const P& p) { return !IsOnCircle(p.Lon0); },
     "Lon0 (central longitude) parameter out of range.", kLon0},
    {kEvery, [](const P& p) { return !IsOnCircle(p.Lon1); },
     "Lon1 (1st standard meridian) parameter out of range.", kLon1},
    {kEvery, [](const P& p) { return !IsOnCircle(p.Lon2); },
     "Lon2 (2nd standard meridian) parameter out of range.", kLon2},
    {kEvery, [](const P& p) { return !IsLatitude(p.Lat0); },
     "Lat0 (central latitude) parameter out of range.", kLat0},
    {kEvery, [](const P& p) { return !IsLatitude(p.Lat1); },
     "Lat1 (1st standard parallel) parameter out of range.", kLat1},
    {kEvery, [](const P& p) { return !IsLatitude(p.Lat2); },
     "Lat2 (2nd standard parallel) parameter out of range.", kLat2},
    {ProjectionMethodHotine, [](const P& p) { return !IsOnCircle(p.Alpha); }, "Alpha parameter out of range.",
     kAlpha},
    {ProjectionMethodBonne, [](const P& p) { return p.Lat1 == 0.0; },
     "Lat1 (standard parallel) parameter can't be zero in Bonne projection.", kLat1},
    {ProjectionMethodAlbers, [](const P& p) { return std::fabs(p.Lat1 + p.Lat2) < 0.001; },
     "Sum of standard parallel parameters can't be zero in Albers projection.", kLat1},
    {ProjectionMethodAlbers, [](const P& p) { return std::fabs(p.Lat1 - p.Lat2) < 0.001; },
     "Difference of standard parallel parameters can't be zero in Albers projection.", kLat1},
    {ProjectionMethodEquidistantConic, [](const P& p) { return std::fabs(p.Lat1 + p.Lat2) < 0.001; },
     "Sum of standard parallel parameters can't be zero in Equidistant Conic projection.", kLat1},
    {ProjectionMethodEquidistantConic, [](const P& p) { return std::fabs(p.Lat1 - p.Lat2) < 0.001; },
     "Difference of standard parallel parameters can't be zero in Equidistant Conic projection.", kLat1},
    {ProjectionMethodHotine, [](const P& p) { return p.bUseAlpha && p.Alpha == 0.0; },
     "Alpha parameter can't be zero in Hotine Oblique Mercator projection.", kAlpha},
    {ProjectionMethodLambert, [](const P& p) { return std::fabs(p.Lat1 - p.Lat2) <= 0.01; },
     "Standard parallel parameters can't be equal (or nearly equal) in Lambert Conformal Conic projection.",
     kLat1},
    {ProjectionMethodMercator, [](const P& p) { return std::fabs(std::fabs(p.Lat0) - 90.0) < 0.01; },
     "Central latitude parameter can't be +90 or -90 degrees in Mercator projection.", kLat0},
    {ProjectionMethodObliqueMercator, [](const P& p) { return std::fabs(p.Lat1 - p.Lat2) < 0.001; },
     "Standard parallel parameters can't be equal in Oblique Mercator projection.", kLat1},
    {ProjectionMethodObliqueMercator, [](const P& p) { return std::fabs(p.Lat1) < 0.001; },
     "1st standard parallel can't be zero in Oblique Mercator projection.", kLat1},
    // Deliberate: it is Lat1 that is tested, against +90 only, although the text speaks of the second
    // parallel and both poles.
    {ProjectionMethodObliqueMercator, [](const P& p) { return std::fabs(p.Lat1 - 90.0) < 0.001; },
     "2nd standard parallel can't be +90 or -90 degrees in Oblique Mercator projection.", kLat2},
};

const ProjectionUse* UseOf(ProjectionMethod method) {
  for (const ProjectionUse& row : kProjectionUses) {
    if (row.method == method) return &row;
  }
  return nullptr;
}

bool MethodUses(ProjectionMethod method, ProjectionParameterID id) {
  const ProjectionUse* const row = UseOf(method);
  if (!row || id == ProjectionParameterIDNone) return false;
  for (const ProjectionParameterID used : row->uses) {
    if (used == id) return true;
  }
  return false;
}

const ProjectionField* FieldOf(ProjectionParameterID id) { return RowOf(kProjectionFields, id); }

}  // namespace orv::internal
