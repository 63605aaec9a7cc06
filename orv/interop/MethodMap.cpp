#include "orv/interop/internal/MethodMap.h"

#include "orv/core/internal/Text.h"

namespace orv::internal {

namespace {

// clang-format off

// ---- parameters ------------------------------------------------------------------------------------------

constexpr ParameterRow Optional(ParameterRow row) {
  row.isOptional = true;
  return row;
}

constexpr ParameterRow kEnd       = {Par::Count, 0, nullptr, nullptr, nullptr, nullptr};
constexpr ParameterRow kLat       = {Par::Lat0, 8801, "Latitude of natural origin",        "latitude_of_origin",   "Latitude_Of_Origin",  "lat_0"};
constexpr ParameterRow kLatCenter = {Par::Lat0, 8801, "Latitude of natural origin",        "latitude_of_center",   "Latitude_Of_Origin",  "lat_0"};
constexpr ParameterRow kLon       = {Par::Lon0, 8802, "Longitude of natural origin",       "central_meridian",     "Central_Meridian",    "lon_0"};
constexpr ParameterRow kLonCenter = {Par::Lon0, 8802, "Longitude of natural origin",       "longitude_of_center",  "Central_Meridian",    "lon_0"};
constexpr ParameterRow kK         = {Par::K,    8805, "Scale factor at natural origin",    "scale_factor",         "Scale_Factor",        "k"};
constexpr ParameterRow kX         = {Par::X,    8806, "False easting",                     "false_easting",        "False_Easting",       "x_0"};
constexpr ParameterRow kY         = {Par::Y,    8807, "False northing",                    "false_northing",       "False_Northing",      "y_0"};
constexpr ParameterRow kFalseLat  = {Par::Lat0, 8821, "Latitude of false origin",          "latitude_of_origin",   "Latitude_Of_Origin",  "lat_0"};
constexpr ParameterRow kFalseLon  = {Par::Lon0, 8822, "Longitude of false origin",         "central_meridian",     "Central_Meridian",    "lon_0"};
constexpr ParameterRow kAlbersLat = {Par::Lat0, 8821, "Latitude of false origin",          "latitude_of_center",   "Latitude_Of_Origin",  "lat_0"};
constexpr ParameterRow kAlbersLon = {Par::Lon0, 8822, "Longitude of false origin",         "longitude_of_center",  "Central_Meridian",    "lon_0"};
constexpr ParameterRow kLat1      = {Par::Lat1, 8823, "Latitude of 1st standard parallel", "standard_parallel_1",  "Standard_Parallel_1", "lat_1"};
constexpr ParameterRow kLat2      = {Par::Lat2, 8824, "Latitude of 2nd standard parallel", "standard_parallel_2",  "Standard_Parallel_2", "lat_2"};
constexpr ParameterRow kFalseX    = {Par::X,    8826, "Easting at false origin",           "false_easting",        "False_Easting",       "x_0"};
constexpr ParameterRow kFalseY    = {Par::Y,    8827, "Northing at false origin",          "false_northing",       "False_Northing",      "y_0"};
constexpr ParameterRow kCentreLat = {Par::Lat0, 8811, "Latitude of projection centre",     "latitude_of_center",   "Latitude_Of_Center",  "lat_0"};
constexpr ParameterRow kCentreLon = {Par::Lon0, 8812, "Longitude of projection centre",    "longitude_of_center",  "Longitude_Of_Center", "lonc"};
constexpr ParameterRow kAzimuth   = {Par::Azimuth, 8813, "Azimuth of initial line",        "azimuth",              "Azimuth",             "alpha"};
constexpr ParameterRow kGamma     = Optional({Par::Gamma, 8814, "Angle from Rectified to Skew Grid", "rectified_grid_angle", nullptr,     "gamma"});
constexpr ParameterRow kCentreK   = {Par::K,    8815, "Scale factor on initial line",      "scale_factor",         "Scale_Factor",        "k"};
constexpr ParameterRow kCentreX   = {Par::X,    8816, "Easting at projection centre",      "false_easting",        "False_Easting",       "x_0"};
constexpr ParameterRow kCentreY   = {Par::Y,    8817, "Northing at projection centre",     "false_northing",       "False_Northing",      "y_0"};
constexpr ParameterRow kTrueLat   = {Par::Lat1, 8823, "Latitude of 1st standard parallel", "standard_parallel_1",  "Standard_Parallel_1", "lat_ts"};
constexpr ParameterRow kPolarLat  = {Par::Lat1, 8832, "Latitude of standard parallel",     nullptr,                "Standard_Parallel_1", "lat_ts"};
constexpr ParameterRow kPolarLon  = {Par::Lon0, 8833, "Longitude of origin",               "central_meridian",     "Central_Meridian",    "lon_0"};
constexpr ParameterRow kFlatLat   = Optional({Par::Lat0, 8801, "Latitude of natural origin", "latitude_of_origin",   nullptr,               nullptr});  // must be 0

// ---- methods ---------------------------------------------------------------------------------------------

constexpr ProjectionMethod kLambert = ProjectionMethodLambert, kStereo = ProjectionMethodStereographic,
                           kHotine = ProjectionMethodHotine, kMercator = ProjectionMethodMercator;

const MethodRow kMethods[] = {
    {Form::TransverseMercator, ProjectionMethodTransverseMercator, Figure::Any, 9807, "Transverse Mercator", "Transverse_Mercator", "Transverse_Mercator", "tmerc",
     {kLat, kLon, kK, kX, kY, kEnd}},
    {Form::Utm, ProjectionMethodUTM, Figure::Any, 0, nullptr, nullptr, nullptr, "utm",
     {kEnd}},
    // First of the four: ESRI and PROJ have one name for the forms of one and of two parallels, with or without a factor.
    {Form::LambertScaled, kLambert, Figure::Any, 1051, "Lambert Conic Conformal (2SP Michigan)", "Lambert_Conformal_Conic_2SP_Michigan", "Lambert_Conformal_Conic", "lcc",
     {kFalseLat, kFalseLon, kLat1, kLat2, kFalseX, kFalseY, {Par::K, 1038, "Ellipsoid scaling factor", "ellipsoid_scaling_factor", "Scale_Factor", "k"}, kEnd}},
    {Form::Lambert2, kLambert, Figure::Any, 9802, "Lambert Conic Conformal (2SP)", "Lambert_Conformal_Conic_2SP", "Lambert_Conformal_Conic", "lcc",
     {kFalseLat, kFalseLon, kLat1, kLat2, kFalseX, kFalseY, kEnd}},
    {Form::Lambert1, kLambert, Figure::Any, 9801, "Lambert Conic Conformal (1SP)", "Lambert_Conformal_Conic_1SP", "Lambert_Conformal_Conic", "lcc",
     {kLat, kLon, kK, kX, kY, Optional({Par::Lat1, 0, nullptr, nullptr, "Standard_Parallel_1", "lat_1"}), kEnd}},
    {Form::LambertBelgium, kLambert, Figure::Any, 9803, "Lambert Conic Conformal (2SP Belgium)", "Lambert_Conformal_Conic_2SP_Belgium", nullptr, nullptr,
     {kFalseLat, kFalseLon, kLat1, kLat2, kFalseX, kFalseY, kEnd}},
    {Form::MercatorA, kMercator, Figure::Any, 9804, "Mercator (variant A)", "Mercator_1SP", "Mercator_Variant_A", "merc",
     {kFlatLat, kLon, kK, kX, kY, kEnd}},
    {Form::MercatorB, kMercator, Figure::Any, 9805, "Mercator (variant B)", "Mercator_2SP", "Mercator", "merc",
     {kTrueLat, kLon, kX, kY, Optional({Par::Lat0, 0, nullptr, nullptr, nullptr, nullptr}), kEnd}},
    {Form::PseudoMercator, kMercator, Figure::Any, 1024, "Popular Visualisation Pseudo Mercator", nullptr, "Mercator_Auxiliary_Sphere", "webmerc",
     {kFlatLat, kLon, kX, kY, Optional({Par::Lat1, 0, nullptr, nullptr, "Standard_Parallel_1", nullptr}), Optional({Par::Zero, 0, nullptr, nullptr, "Auxiliary_Sphere_Type", nullptr}), kEnd}},
    {Form::PolarA, kStereo, Figure::Any, 9810, "Polar Stereographic (variant A)", nullptr, "Polar_Stereographic_Variant_A", "stere",
     {kLat, kLon, kK, kX, kY, kEnd}},
    {Form::PolarB, kStereo, Figure::Any, 9829, "Polar Stereographic (variant B)", nullptr, "Stereographic_North_Pole", "stere",
     {Optional({Par::Lat0, 0, nullptr, nullptr, nullptr, "lat_0"}), kPolarLat, kPolarLon, kX, kY, kEnd}},
    {Form::PolarC, kStereo, Figure::Any, 9830, "Polar Stereographic (variant C)", nullptr, nullptr, nullptr,
     {kPolarLat, kPolarLon, kFalseX, kFalseY, kEnd}},
    {Form::PolarOgc, kStereo, Figure::Any, 0, nullptr, "Polar_Stereographic", nullptr, nullptr,
     {kLat, kLon, Optional(kK), kX, kY, kEnd}},  // needed at the pole only
    {Form::Stereographic, kStereo, Figure::Any, 0, "Stereographic", "Stereographic", "Stereographic", "stere",
     {kLat, kLon, kK, kX, kY, kEnd}},
    {Form::Albers, ProjectionMethodAlbers, Figure::Any, 9822, "Albers Equal Area", "Albers_Conic_Equal_Area", "Albers", "aea",
     {kAlbersLat, kAlbersLon, kLat1, kLat2, kFalseX, kFalseY, kEnd}},
    {Form::Cassini, ProjectionMethodCassini, Figure::Any, 9806, "Cassini-Soldner", "Cassini_Soldner", "Cassini", "cass",
     {kLat, kLon, kX, kY, Optional({Par::K, 0, nullptr, nullptr, "Scale_Factor", nullptr}), kEnd}},
    {Form::Polyconic, ProjectionMethodPolyconic, Figure::Any, 9818, "American Polyconic", "Polyconic", "Polyconic", "poly",
     {kLat, kLon, kX, kY, kEnd}},
    {Form::HotineA, kHotine, Figure::Any, 9812, "Hotine Oblique Mercator (variant A)", "Hotine_Oblique_Mercator", "Hotine_Oblique_Mercator_Azimuth_Natural_Origin", "omerc",
     {kCentreLat, kCentreLon, kAzimuth, kGamma, kCentreK, kX, kY, kEnd}},
    {Form::HotineB, kHotine, Figure::Any, 9815, "Hotine Oblique Mercator (variant B)", "Hotine_Oblique_Mercator_Azimuth_Center", "Hotine_Oblique_Mercator_Azimuth_Center", "omerc",
     {kCentreLat, kCentreLon, kAzimuth, kGamma, kCentreK, kCentreX, kCentreY, kEnd}},
    // Only as a PROJ string: readers of well-known text differ on whether u counts from the centre there.
    {Form::HotinePoints, kHotine, Figure::Any, 0, nullptr, nullptr, nullptr, "omerc",
     {kCentreLat,
      {Par::Lat1, 0, nullptr, nullptr, nullptr, "lat_1"}, {Par::Lon1, 0, nullptr, nullptr, nullptr, "lon_1"},
      {Par::Lat2, 0, nullptr, nullptr, nullptr, "lat_2"}, {Par::Lon2, 0, nullptr, nullptr, nullptr, "lon_2"},
      kCentreK, kCentreX, kCentreY, kEnd}},
    {Form::SwissOblique, kHotine, Figure::Any, 0, nullptr, "Swiss_Oblique_Cylindrical", nullptr, "somerc",
     {kLatCenter, kLon, Optional(kK), kX, kY, kEnd}},
    {Form::EquidistantCylindrical, ProjectionMethodEquidistantCylindrical, Figure::Sphere, 1029, "Equidistant Cylindrical (Spherical)", "Equirectangular", "Equidistant_Cylindrical", "eqc",
     {Optional(kTrueLat), kLon, kX, kY, Optional({Par::Lat0, 0, nullptr, nullptr, nullptr, "lat_0"}), kEnd}},  // none: the Equator, "Plate_Carree"
    {Form::EquidistantConic, ProjectionMethodEquidistantConic, Figure::Any, 0, "Equidistant Conic", "Equidistant_Conic", "Equidistant_Conic", "eqdc",
     {kLatCenter, kLonCenter, kLat1, kLat2, kX, kY, kEnd}},
    {Form::Bonne, ProjectionMethodBonne, Figure::Any, 9827, "Bonne", "Bonne", "Bonne", "bonne",
     {{Par::Lat1, 8801, "Latitude of natural origin", "standard_parallel_1", "Standard_Parallel_1", "lat_1"}, kLon, kX, kY, kEnd}},
    {Form::Sinusoidal, ProjectionMethodSinusoidal, Figure::Any, 0, "Sinusoidal", "Sinusoidal", "Sinusoidal", "sinu",
     {kLonCenter, kX, kY, kEnd}},
    {Form::Miller, ProjectionMethodMiller, Figure::Sphere, 0, "Miller Cylindrical", "Miller_Cylindrical", "Miller_Cylindrical", "mill",
     {kLonCenter, kX, kY, Optional({Par::Lat0, 0, nullptr, nullptr, nullptr, "lat_0"}), kEnd}},
    {Form::Mollweide, ProjectionMethodMollweide, Figure::Radius, 0, "Mollweide", "Mollweide", "Mollweide", "moll",
     {kLon, kX, kY, kEnd}},
    {Form::Eckert4, ProjectionMethodEckert4, Figure::Radius, 0, "Eckert IV", "Eckert_IV", "Eckert_IV", "eck4",
     {kLon, kX, kY, kEnd}},
    {Form::Eckert6, ProjectionMethodEckert6, Figure::Radius, 0, "Eckert VI", "Eckert_VI", "Eckert_VI", "eck6",
     {kLon, kX, kY, kEnd}},
    {Form::VanDerGrinten, ProjectionMethodVanDerGrinten, Figure::Sphere, 0, "Van Der Grinten", "VanDerGrinten", "Van_der_Grinten_I", "vandg",
     {kLon, kX, kY, kEnd}},
    {Form::Orthographic, ProjectionMethodOrthographic, Figure::Sphere, 9840, "Orthographic", "Orthographic", nullptr, "ortho",
     {kLat, kLon, kX, kY, kEnd}},
    {Form::Gnomonic, ProjectionMethodGnomonic, Figure::Sphere, 0, "Gnomonic", "Gnomonic", "Gnomonic", "gnom",
     {kLat, kLon, kX, kY, kEnd}},
    // On a sphere the modified one is the plain one, and PROJ 9.1 knows no number of the plain one.
    {Form::AzimuthalEquidistant, ProjectionMethodAzimuthalEquidistant, Figure::Sphere, 9832, "Modified Azimuthal Equidistant", "Azimuthal_Equidistant", "Azimuthal_Equidistant", "aeqd",
     {kLatCenter, kLonCenter, kX, kY, kEnd}},
    {Form::LambertAzimuthal, ProjectionMethodLambertAzimuthal, Figure::Sphere, 1027, "Lambert Azimuthal Equal Area (Spherical)", "Lambert_Azimuthal_Equal_Area", "Lambert_Azimuthal_Equal_Area", "laea",
     {kLatCenter, kLonCenter, kX, kY, kEnd}},
};

/// Other names and codes under which texts have a method.
struct AliasRow {
  Form form;
  int epsg;
  const char* name;
};
constexpr AliasRow kAliases[] = {
    {Form::TransverseMercator,     1111, "Gauss_Kruger"},  // 1111: Transverse Mercator 3D
    {Form::TransverseMercator,     0,    "Transverse_Mercator_Complex"},
    {Form::Lambert2,               0,    "Lambert Conformal Conic (2SP)"},
    {Form::Lambert1,               0,    "Lambert Conformal Conic (1SP)"},
    {Form::MercatorA,              0,    "Mercator (1SP)"},
    {Form::MercatorB,              0,    "Mercator (2SP)"},
    {Form::PseudoMercator,         0,    "Pseudo_Mercator"},
    {Form::PolarB,                 0,    "Stereographic_South_Pole"},
    {Form::HotineA,                0,    "Rectified_Skew_Orthomorphic_Natural_Origin"},
    {Form::HotineB,                0,    "Rectified_Skew_Orthomorphic_Center"},
    {Form::HotineA,                0,    "Hotine Oblique Mercator"},
    {Form::HotineB,                0,    "Oblique Mercator"},
    {Form::EquidistantCylindrical, 1028, "Equidistant Cylindrical"},
    {Form::EquidistantCylindrical, 9842, "Plate_Carree"},
    {Form::Albers,                 0,    "Albers_Equal_Area_Conic"},
    {Form::LambertAzimuthal,       9820, "Lambert Azimuthal Equal Area"},
    {Form::AzimuthalEquidistant,   1125, "Azimuthal Equidistant"},
    {Form::Mollweide,              0,    "Mollweide_Auxiliary_Sphere"},
    {Form::Miller,                 0,    "Miller"},
    {Form::EquidistantConic,       1119, "Equidistant Conic (EPSG)"},
};

/// Methods that the library has not, or has otherwise, with the reason.
struct RefusedRow {
  int epsg;
  const char* name;
  const char* proj;
  const char* reason;
};
constexpr const char* kTwoSteps = "the library has the one-step form over the conformal latitude, this is the two-step form";
constexpr const char* kNodes = "the library's nodes and interpolation are not those of other software, up to 8.6 km apart";
constexpr const char* kSouthWest = "its axes point west or south, x is the easting and y the northing here";
constexpr const char* kTwoPoints = "readers differ on where its origin is";
constexpr const char* kOtherCassini = "the library has the plain Cassini, 3 m apart";
constexpr RefusedRow kRefused[] = {
    {9809, "Oblique Stereographic",                          "sterea",   kTwoSteps},
    {0,    "Double_Stereographic",                           nullptr,    kTwoSteps},
    {0,    "Robinson",                                       "robin",    kNodes},
    {9808, "Transverse Mercator (South Orientated)",         nullptr,    kSouthWest},
    {0,    "Transverse_Mercator_South_Orientated",           nullptr,    kSouthWest},
    {9826, "Lambert Conic Conformal (West Orientated)",      nullptr,    kSouthWest},
    {0,    "Hotine Oblique Mercator Two Point Natural Origin", nullptr,  kTwoPoints},
    {0,    "Hotine Oblique Mercator Two Point Center",       nullptr,    kTwoPoints},
    {9833, "Hyperbolic Cassini-Soldner",                     nullptr,    kOtherCassini},
};

// clang-format on

/// Names that parameters have in one text or another, beside those of the method's row.
struct SynonymRow {
  Par par;
  const char* name;
};
constexpr SynonymRow kSynonyms[] = {
    {Par::Lat0, "latitude_of_origin"},
    {Par::Lat0, "latitude_of_center"},
    {Par::Lat0, "latitude_of_centre"},
    {Par::Lat0, "central_parallel"},
    {Par::Lat0, "Latitude of natural origin"},
    {Par::Lat0, "Latitude of false origin"},
    {Par::Lon0, "central_meridian"},
    {Par::Lon0, "longitude_of_center"},
    {Par::Lon0, "longitude_of_centre"},
    {Par::Lon0, "longitude_of_origin"},
    {Par::Lon0, "Longitude of natural origin"},
    {Par::Lon0, "Longitude of false origin"},
    {Par::Lat1, "standard_parallel_1"},
    {Par::Lat1, "Latitude of standard parallel"},
    {Par::Lat1, "Latitude of 1st standard parallel"},
    {Par::Lat2, "standard_parallel_2"},
    {Par::K, "scale_factor"},
    {Par::K, "Scale factor at natural origin"},
    {Par::K, "Scale factor at projection centre"},
    {Par::X, "false_easting"},
    {Par::X, "Easting at false origin"},
    {Par::Y, "false_northing"},
    {Par::Y, "Northing at false origin"},
    {Par::Azimuth, "Azimuth at projection centre"},
    {Par::Gamma, "XY_Plane_Rotation"},
    {Par::Gamma, "Angle from Rectified to Skew Grid"},
};

bool Names(const char* row, const std::string& name) { return row && EqualBare(row, name.c_str()); }

const ParameterRow* OfPar(const MethodRow& method, Par par) {
  for (const ParameterRow& row : method) {
    if (row.par == par) return &row;
  }
  return nullptr;
}

}  // namespace

bool EqualBare(const char* a, const char* b) {
  const auto isBare = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           static_cast<unsigned char>(c) >= 0x80;
  };
  bool any = false;
  while (true) {
    while (*a && !isBare(*a)) ++a;
    while (*b && !isBare(*b)) ++b;
    if (!*a || !*b) return any && !*a && !*b;
    if (FoldCase(*a) != FoldCase(*b)) return false;
    any = true;
    ++a;
    ++b;
  }
}

const ParameterRow* MethodRow::end() const {
  const ParameterRow* row = parameters;
  while (row->par != Par::Count) ++row;
  return row;
}

const MethodRow& RowOfForm(Form form) {
  for (const MethodRow& row : kMethods) {
    if (row.form == form) return row;
  }
  return kMethods[0];  // every form has a row, a test sees to it
}

const MethodRow* FindMethod(const std::string& name, int epsg) {
  if (epsg > 0) {
    for (const MethodRow& row : kMethods) {
      if (row.epsg == epsg) return &row;
    }
    for (const AliasRow& row : kAliases) {
      if (row.epsg == epsg) return &RowOfForm(row.form);
    }
  }
  for (const MethodRow& row : kMethods) {
    if (Names(row.wkt2, name) || Names(row.gdal, name) || Names(row.esri, name)) return &row;
  }
  for (const AliasRow& row : kAliases) {
    if (Names(row.name, name)) return &RowOfForm(row.form);
  }
  return nullptr;
}

const MethodRow* FindProjMethod(const std::string& proj) {
  for (const MethodRow& row : kMethods) {
    if (row.proj && proj == row.proj) return &row;
  }
  return nullptr;
}

bool IsOtherMethod(const MethodRow& method, const std::string& name) {
  const MethodRow* const named = FindMethod(name, 0);
  if (!named || named->form == method.form) return false;
  if (Names(method.wkt2, name) || Names(method.gdal, name) || Names(method.esri, name)) return false;
  for (const AliasRow& row : kAliases) {
    if (row.form == method.form && Names(row.name, name)) return false;
  }
  return true;
}

const char* WhyNotMethod(const std::string& name, int epsg) {
  for (const RefusedRow& row : kRefused) {
    if ((epsg > 0 && row.epsg == epsg) || Names(row.name, name)) return row.reason;
  }
  return nullptr;
}

const char* WhyNotProjMethod(const std::string& proj) {
  for (const RefusedRow& row : kRefused) {
    if (row.proj && proj == row.proj) return row.reason;
  }
  return nullptr;
}

const ParameterRow* FindParameter(const MethodRow& method, const std::string& name, int epsg) {
  if (epsg > 0) {
    for (const ParameterRow& row : method) {
      if (row.epsg == epsg) return &row;
    }
  }
  for (const ParameterRow& row : method) {
    if (Names(row.wkt2, name) || Names(row.gdal, name) || Names(row.esri, name)) return &row;
  }
  for (const SynonymRow& row : kSynonyms) {
    if (!Names(row.name, name)) continue;
    if (const ParameterRow* const found = OfPar(method, row.par)) return found;
  }
  return nullptr;
}

const ParameterRow* FindProjParameter(const MethodRow& method, const std::string& key) {
  for (const ParameterRow& row : method) {
    if (row.proj && (key == "k_0" ? "k" : key) == row.proj) return &row;
  }
  return nullptr;
}

const ParameterRow* FindProjParameter(const std::string& proj, const std::string& key) {
  for (const MethodRow& method : kMethods) {
    if (!method.proj || proj != method.proj) continue;
    if (const ParameterRow* const found = FindProjParameter(method, key)) return found;
  }
  return nullptr;
}

const char* ParName(Par par) {
  switch (par) {
    case Par::Lat0:
      return "the latitude of origin";
    case Par::Lon0:
      return "the central longitude";
    case Par::Lat1:
      return "the (first) standard parallel";
    case Par::Lat2:
      return "the second standard parallel";
    case Par::Lon1:
      return "the longitude of the first point";
    case Par::Lon2:
      return "the longitude of the second point";
    case Par::K:
      return "the scale factor";
    case Par::X:
      return "the false easting";
    case Par::Y:
      return "the false northing";
    case Par::Azimuth:
      return "the azimuth";
    case Par::Gamma:
      return "the rectified grid angle";
    default:
      return "a parameter";
  }
}

}  // namespace orv::internal
