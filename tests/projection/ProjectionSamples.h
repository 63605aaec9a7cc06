// ProjectionSamples.h: the tables of the projections' vocabulary, typed again from their description, and
// definitions to try.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orv/projection/ProjectionDef.h"

namespace orv::test {

inline ProjectionMethod Method(int number) { return static_cast<ProjectionMethod>(number); }
inline ProjectionParameterID Id(int number) { return static_cast<ProjectionParameterID>(number); }

struct MethodRow {
  int number;
  const char *longName, *shortName;
  unsigned flags;
  std::vector<int> uses;
};

inline const std::vector<MethodRow>& MethodRows() {
  static const std::vector<MethodRow> rows = {
      {0, "Unknown", "Unknown", 0x00, {}},
      {1, "Unprojected Lat/Long", "None", 0x00, {}},
      {2, "Other/Unsupported Projection", "Other", 0x00, {}},
      {3, "Albers Equal Area Conic", "Albers", 0x2F, {2, 3, 4, 5, 6, 9, 10, 11}},
      {4, "Azimuthal Equidistant", "Azim", 0x3F, {2, 3, 4, 5, 6, 10}},
      {5, "Bonne", "Bonne", 0x1B, {2, 3, 4, 5, 6, 10}},
      {6, "Cassini", "Cass", 0x3B, {2, 3, 4, 5, 9, 6}},
      {7, "Eckert IV", "Eckert4", 0x3F, {2, 3, 4, 5, 6}},
      {8, "Eckert VI", "Eckert6", 0x3F, {2, 3, 4, 5, 6}},
      {9, "Equidistant Cylindrical", "EquiCyl", 0x2F, {2, 3, 4, 5, 6, 10}},
      {10, "Equidistant Conic", "EquiCon", 0x2F, {2, 3, 4, 5, 6, 9, 10, 11}},
      {11, "Gnomonic", "Gnom", 0x1B, {2, 3, 4, 5, 6, 10}},
      {12, "Hotine Oblique Mercator", "Hotine", 0x03, {2, 3, 4, 5, 12, 14, 15, 9, 10, 7, 11, 8, 16, 17}},
      {13, "Mercator", "Merc", 0x2F, {2, 3, 4, 5, 6, 9}},
      {14, "Mollweide", "Moll", 0x3F, {2, 3, 4, 5, 6}},
      {15, "Oblique Mercator", "OMerc", 0x03, {2, 3, 4, 5, 7, 10, 8, 11, 12}},
      {16, "Lambert Conformal Conic", "Lambert", 0x2F, {2, 3, 4, 5, 6, 9, 10, 11}},
      {17, "Lambert Azimuthal Equal Area", "LambertAEA", 0x3B, {2, 3, 4, 5, 6, 10}},
      {18, "Miller Cylindrical", "Miller", 0x2F, {2, 3, 4, 5, 6}},
      {19, "Orthographic", "Ortho", 0x1B, {2, 3, 4, 5, 6, 9}},
      {20, "Stereographic", "Stereo", 0x1B, {2, 3, 4, 5, 12, 6, 9}},
      {21, "Polyconic", "Poly", 0x1B, {2, 3, 4, 5, 6, 9}},
      {22, "Robinson", "Rob", 0x3F, {2, 3, 4, 5}},
      {23, "Robinson-Sterling", "RobSter", 0x3F, {2, 3, 4, 5, 6}},
      {24, "Sinusoidal", "Sinus", 0x3F, {2, 3, 4, 5, 6}},
      {25, "Transverse Mercator", "TMerc", 0x1B, {2, 3, 4, 5, 12, 6, 9}},
      {26, "Universal Transverse Mercator (UTM)", "UTM", 0x1B, {2, 3, 12, 6, 9, 13}},
      {27, "Van Der Grinten", "Grinten", 0x3F, {2, 3, 4, 5, 6}},
  };
  return rows;
}

struct ParameterRow {
  int number;
  const char *shortName, *longName;
  int type;  // 1 double, 3 bool, 4 enumeration, 5 ellipsoid
};

inline constexpr ParameterRow kParameterRows[] = {
    {1, "Method", "Projection Method", 4},
    {2, "Ellipsoid", "Ellipsoid", 5},
    {3, "Scale", "Scale", 1},
    {4, "xOrg", "False Easting", 1},
    {5, "yOrg", "False Northing", 1},
    {6, "Lon0", "Central Longitude", 1},
    {7, "Lon1", "1st Meridian", 1},
    {8, "Lon2", "2nd Meridian", 1},
    {9, "Lat0", "Central Latitude", 1},
    {10, "Lat1", "Standard Parallel", 1},
    {11, "Lat2", "2nd Standard Parallel", 1},
    {12, "K0", "Central Scale Factor (K0)", 1},
    {13, "bSouth", "Projection in Southern Hemisphere", 3},
    {14, "bUseAlpha", "Use Alpha Parameter", 3},
    {15, "Alpha", "Alpha (Azimuth)", 1},
    {16, "bRotate", "Rotate U/V to X/Y", 3},
    {17, "bUOffset", "Offset by U", 3},
};

inline bool IsFlag(int id) { return id == 13 || id == 14 || id == 16 || id == 17 || id == 18; }

inline std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// A definition of the method that passes its check.
inline ProjectionDef Valid(int method) {
  ProjectionDef def(Method(method));
  std::string why;
  EXPECT_EQ(def.CheckParameters(why), 0) << method << ": " << why;
  return def;
}

inline ProjectionDef With(ProjectionDef def, int id, double value) {
  def.SetParameter(Id(id), value);
  return def;
}

// Every field away from its constructed value.
inline ProjectionParameters Odd(int method) {
  ProjectionParameters p;
  p.method = Method(method);
  p.ellipsoid = EllipsoidDef(6400000.0, 0.004, "ODD", "An odd one", "a comment", 77);
  p.Scale = 2.5;
  p.xOrg = 11.0;
  p.yOrg = 12.0;
  p.Lon0 = 13.0;
  p.Lon1 = 14.0;
  p.Lon2 = 15.0;
  p.Lat0 = 16.0;
  p.Lat1 = 17.0;
  p.Lat2 = 18.0;
  p.K0 = 0.5;
  p.bSouth = p.bUseAlpha = p.bRotate = p.bUOffset = p.bNoWrap = true;
  p.Alpha = 19.0;
  return p;
}

}  // namespace orv::test
