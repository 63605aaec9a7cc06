// A text is read exactly or refused: what is missing, said twice or contradicted is neither guessed nor dropped.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/interop/Interchange.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/system/ORVDef.h"
#include "tests/support/Raises.h"
#include "tests/support/ShippedCatalogue.h"

namespace orv {
namespace {

using shr::Vec2d;

// ---- texts -----------------------------------------------------------------------------------------------

const std::string kDegree = R"(UNIT["degree",0.0174532925199433])";
const std::string kBase =
    R"(GEOGCS["x",DATUM["x",SPHEROID["s",6378137,298.257223563]],PRIMEM["Greenwich",0],)" + kDegree + "]";

std::string Par(const std::string& name, const std::string& value) {
  return "PARAMETER[\"" + name + "\"," + value + "],";
}
const std::string kOrigin = Par("latitude_of_origin", "40") + Par("central_meridian", "10");
const std::string kOne = Par("scale_factor", "1");
const std::string kCentre = Par("latitude_of_center", "40") + Par("longitude_of_center", "10");

/// WKT1, the method on the second line and the parameters on the third.
std::string Wkt1(const std::string& method, const std::string& parameters, const std::string& more = "") {
  return "PROJCS[\"x\"," + kBase + ",\nPROJECTION[\"" + method + "\"],\n" + parameters + "UNIT[\"metre\",1]" +
         more + "]";
}

const std::string kDatum2 = R"(DATUM["x",ELLIPSOID["s",6378137,298.257223563]])";
const std::string kAngle = R"(ANGLEUNIT["degree",0.0174532925199433])";
const std::string kMetres = R"(CS[Cartesian,2],AXIS["e",east],AXIS["n",north],LENGTHUNIT["metre",1])";
const std::string kTm = R"(METHOD["Transverse Mercator"],)" + Par("Latitude of natural origin", "10") +
                        Par("Longitude of natural origin", "9") + Par("Scale factor at natural origin", "1") +
                        Par("False easting", "500") + R"(PARAMETER["False northing",0])";

/// WKT2, each part on a line of its own: base, conversion, axes.
std::string Wkt2(const std::string& unit, const std::string& cs, const std::string& conversion = kTm) {
  return "PROJCRS[\"x\",\nBASEGEOGCRS[\"x\"," + kDatum2 + unit + "],\nCONVERSION[\"c\"," + conversion +
         "],\n" + cs + "]";
}
std::string Geographic2(const std::string& rest) { return "GEOGCRS[\"x\",\n" + kDatum2 + rest + "]"; }

std::string Bound(const std::string& method, const std::string& parameters) {
  return "BOUNDCRS[SOURCECRS[" +
         Geographic2(R"(,CS[ellipsoidal,2],AXIS["lat",north],AXIS["lon",east],)" + kAngle) +
         R"(],TARGETCRS[GEOGCRS["WGS 84",)" + kDatum2 + "]],\nABRIDGEDTRANSFORMATION[\"t\",METHOD[" + method +
         "],\n" + parameters + "]]";
}
const std::string kShift =
    R"(PARAMETER["X-axis translation",1],PARAMETER["Y-axis translation",2],PARAMETER["Z-axis translation",3])";
const std::string kTurn =
    R"(,PARAMETER["X-axis rotation",0],PARAMETER["Y-axis rotation",0],PARAMETER["Z-axis rotation",4])";

// ---- refused ---------------------------------------------------------------------------------------------

struct Refusal {
  std::string text;
  int code;
  const char* message;
};

void Refuse(const std::vector<Refusal>& rows) {
  for (const Refusal& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_RAISES(ORVReadText(row.text), row.code, "Interchange", row.message);
  }
}

// clang-format off

TEST(InterchangeExact, KeysThatAProjectionHasNotAreRefused) {
  Refuse({
      {"+proj=omerc +lat_0=4 +lon_0=115 +alpha=53.3 +datum=WGS84", 1032, "Line 1, column 22: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=tmerc +lonc=9 +datum=WGS84", 1032, "Line 1, column 13: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=eqc +lat_1=45 +R=6371000", 1032, "Line 1, column 11: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=lcc +lat_ts=45 +lat_0=45 +datum=WGS84", 1032, "Line 1, column 11: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=cass +lat_0=45 +lon_0=9 +k=0.9996 +datum=WGS84", 1032, "Line 1, column 31: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=cass +lat_0=45 +lon_0=9 +k_0=0.9996 +datum=WGS84", 1032, "Line 1, column 31: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=merc +ellps=intl +alpha=3", 1032, "Line 1, column 24: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=omerc +lat_0=40 +lonc=3 +lat_1=40 +lon_1=9 +lat_2=45 +lon_2=12 +datum=WGS84", 1032, "Line 1, column 23: the system cannot be expressed: the projection has no such parameter."},
      {"+proj=stere +lat_0=90 +lat_ts=70 +k=0.99 +datum=WGS84", 1032, "Line 1, column 1: the projection 'stere' cannot be expressed: it has both a standard parallel and a scale factor."},
      {"+proj=stere +lat_0=90 +lat_ts=-70 +datum=WGS84", 1032, "Line 1, column 1: the projection 'Polar Stereographic (variant B)' cannot be expressed: the pole and the standard parallel lie in different hemispheres."},
      {"+proj=omerc +lat_0=40 +lonc=10 +gamma=30 +datum=WGS84", 1032, "Line 1, column 1: the projection 'omerc' cannot be expressed: its line is given by +gamma alone, which is no azimuth at the centre."},
      {"+proj=omerc +lat_0=40 +alpha=30 +lat_1=40 +lon_1=9 +lat_2=45 +lon_2=12 +datum=WGS84", 1032, "Line 1, column 1: the projection 'omerc' cannot be expressed: its line is given both by two points and by an azimuth."},
      {"+proj=omerc +lat_0=40 +lonc=10 +datum=WGS84", 1032, "Line 1, column 1: expected the azimuth of the projection 'Hotine Oblique Mercator (variant B)'."},
      {"+proj=omerc +lat_0=40 +lonc=10 +alpha=150 +datum=WGS84", 1032, "Line 1, column 1: the projection 'Hotine Oblique Mercator (variant B)' cannot be expressed: its azimuth lies beyond 90 degrees and u is counted from the centre, where software differs on the place."},
      {"+proj=aea +lat_1=30 +datum=WGS84", 1032, "Line 1, column 1: expected the second standard parallel of the projection 'Albers Equal Area'."},
  });
}

TEST(InterchangeExact, FiguresAndUnitsThatContradictAreRefused) {
  const char* const ellipsoid = "Line 1, column 33: the system cannot be expressed: its ellipsoid is given twice, and differently.";
  Refuse({
      {"+proj=utm +zone=32 +datum=WGS84 +ellps=clrk66", 1032, ellipsoid},
      {"+proj=utm +zone=32 +datum=WGS84 +f=0.003", 1032, ellipsoid},
      {"+proj=utm +zone=32 +datum=WGS84 +rf=300", 1032, ellipsoid},
      {"+proj=utm +zone=32 +datum=WGS84 +b=6356000", 1032, ellipsoid},
      {"+proj=utm +zone=32 +datum=WGS84 +a=6378388", 1032, ellipsoid},
      {"+proj=utm +zone=32 +datum=WGS84 +R=6378137", 1032, ellipsoid},
      {"+proj=utm +zone=32 +ellps=WGS84 +R=6378137", 1032, ellipsoid},
      {"+proj=utm +zone=32 +a=6378137.0 +b=6356752 +rf=300", 1032, ellipsoid},
      {"+proj=utm +zone=32 +a=6378137 +rf=300 +f=0.003", 1032, "Line 1, column 39: the system cannot be expressed: its ellipsoid is given twice, and differently."},
      {"+proj=merc +R=6371000 +rf=300", 1032, "Line 1, column 23: the system cannot be expressed: its ellipsoid is given twice, and differently."},
      {"+proj=utm +zone=32 +ellps=clrk66 +units=us-ft +to_meter=0.3048", 1032, "Line 1, column 47: the system cannot be expressed: its unit is given twice, and differently."},
  });
  for (const char* const same : {"+proj=utm +zone=32 +datum=WGS84 +ellps=WGS84 +a=6378137 +rf=298.257223563 +b=6356752.314245179",
                                 "+proj=merc +R=6371000 +a=6371000 +b=6371000", "+proj=merc +ellps=intl +units=ft +to_meter=0.3048"}) {
    EXPECT_NO_THROW(ORVReadText(same)) << same;
  }
}

TEST(InterchangeExact, WhatAMethodNeedsMustBeGivenOnce) {
  const char* const backward = "Line 2, column 1: the projection 'Hotine Oblique Mercator (variant B)' cannot be expressed: its azimuth lies beyond 90 degrees and u is counted from the centre, where software differs on the place.";
  Refuse({
      {Wkt1("Transverse_Mercator", kOne + Par("central_meridian", "9")), 1032, "Line 2, column 1: expected the latitude of origin of the projection 'Transverse Mercator'."},
      {Wkt1("Transverse_Mercator", kOne + Par("latitude_of_origin", "9")), 1032, "Line 2, column 1: expected the central longitude of the projection 'Transverse Mercator'."},
      {Wkt1("Transverse_Mercator", kOrigin), 1032, "Line 2, column 1: expected the scale factor of the projection 'Transverse Mercator'."},
      {Wkt1("Transverse_Mercator", kOrigin + kOne + Par("central_meridian", "12")), 1026, "Line 3, column 97: expected the central longitude only once."},
      {Wkt1("Transverse_Mercator", kOrigin + kOne + Par("Longitude of natural origin", "12")), 1026, "Line 3, column 97: expected the central longitude only once."},
      {Wkt1("Lambert_Conformal_Conic_2SP", kOrigin + Par("standard_parallel_1", "40")), 1032, "Line 2, column 1: expected the second standard parallel of the projection 'Lambert Conic Conformal (2SP)'."},
      {Wkt1("Lambert_Conformal_Conic", kOrigin + Par("standard_parallel_1", "40")), 1032, "Line 2, column 1: expected the scale factor of the projection 'Lambert Conic Conformal (1SP)'."},
      {Wkt1("Albers_Conic_Equal_Area", kCentre + Par("standard_parallel_1", "40")), 1032, "Line 2, column 1: expected the second standard parallel of the projection 'Albers Equal Area'."},
      {Wkt1("Hotine_Oblique_Mercator_Azimuth_Center", kCentre + Par("azimuth", "30")), 1032, "Line 2, column 1: expected the scale factor of the projection 'Hotine Oblique Mercator (variant B)'."},
      {Wkt1("Hotine_Oblique_Mercator_Azimuth_Center", kCentre + kOne + Par("azimuth", "150")), 1032, backward},
      {Wkt1("Rectified_Skew_Orthomorphic_Center", kCentre + kOne + Par("azimuth", "-150")), 1032, backward},
      {Wkt1("Polar_Stereographic", kOne + Par("central_meridian", "9")), 1032, "Line 2, column 1: expected the latitude of origin of the projection 'Polar_Stereographic'."},
      {Wkt1("Polar_Stereographic", Par("latitude_of_origin", "90") + Par("central_meridian", "9")), 1032, "Line 2, column 1: expected the scale factor of the projection 'Polar_Stereographic'."},
      {Wkt1("Polar_Stereographic", Par("latitude_of_origin", "70") + Par("central_meridian", "9") + Par("scale_factor", "0.9")), 1032, "Line 2, column 1: the projection 'Polar_Stereographic' cannot be expressed: it has both a standard parallel and a scale factor."},
      {Wkt1("Polar_Stereographic", Par("latitude_of_origin", "0") + Par("central_meridian", "9")), 1032, "Line 2, column 1: the projection 'Polar_Stereographic' cannot be expressed: the standard parallel is none of a polar map."},
      {Wkt1("Stereographic_North_Pole", Par("standard_parallel_1", "-71") + Par("central_meridian", "9")), 1032, "Line 2, column 1: the projection 'Stereographic_North_Pole' cannot be expressed: its standard parallel lies in the other hemisphere."},
      {Wkt1("Stereographic_South_Pole", Par("standard_parallel_1", "71") + Par("central_meridian", "9")), 1032, "Line 2, column 1: the projection 'Stereographic_South_Pole' cannot be expressed: its standard parallel lies in the other hemisphere."},
      {Wkt1("Stereographic_North_Pole", Par("standard_parallel_1", "71") + kOrigin), 1032, "Line 2, column 1: the projection 'Polar Stereographic (variant B)' cannot be expressed: its origin is not a pole."},
      {Wkt2("," + kAngle, kMetres, R"(METHOD["Transverse Mercator",ID["EPSG",9804]],)" + Par("Latitude of natural origin", "10") + R"(PARAMETER["False northing",0])"), 1032, "Line 3, column 16: the projection 'Transverse Mercator' cannot be expressed: its code 9804 means another."},
      {Wkt2("," + kAngle, kMetres, R"(METHOD["Transverse Mercator"],PARAMETER["False easting",5,ID["EPSG",8807]])"), 1032, "Line 3, column 46: the parameter 'False easting' cannot be expressed: its code 8807 means another."},
  });
}

TEST(InterchangeExact, UnitsAndAxesMustBeGiven) {
  const std::string grad = R"(,ANGLEUNIT["grad",0.015707963267949])";
  Refuse({
      {Geographic2(R"(,CS[ellipsoidal,2],AXIS["lat",north],AXIS["lon",east],LENGTHUNIT["metre",1])"), 1026, "Line 1, column 1: expected ANGLEUNIT in GEOGCRS."},
      {Geographic2(R"(,CS[ellipsoidal,2],AXIS["lat",north],AXIS["lon",east])"), 1026, "Line 1, column 1: expected ANGLEUNIT in GEOGCRS."},
      {Geographic2("," + kAngle), 1026, "Line 1, column 1: expected CS in GEOGCRS."},
      {Geographic2(",CS[ellipsoidal,2]," + kAngle), 1026, "Line 1, column 1: expected two axes (AXIS) in GEOGCRS."},
      {Geographic2(R"(,CS[ellipsoidal,3],AXIS["lat",north],AXIS["lon",east],)" + kAngle), 1032, "Line 2, column 49: the system cannot be expressed: it has more than two axes."},
      {Geographic2(R"(,CS[ellipsoidal,1],AXIS["lat",north],)" + kAngle), 1026, "Line 2, column 49: expected two axes in CS."},
      {Geographic2(R"(,CS[ellipsoidal,2],AXIS["lat",north],AXIS["lon",north],)" + kAngle), 1032, "Line 2, column 85: the system cannot be expressed: both of its axes run one way."},
      {Geographic2(R"(,PRIMEM["Paris",2.5969213],CS[ellipsoidal,2],AXIS["lat",north],AXIS["lon",east])" + grad + "," + kAngle), 1026, "Line 2, column 164: expected ANGLEUNIT only once."},
      {Wkt2("," + kAngle, R"(AXIS["e",east],AXIS["n",north],LENGTHUNIT["metre",1])"), 1026, "Line 1, column 1: expected CS in PROJCRS."},
      {Wkt2("," + kAngle, R"(CS[ellipsoidal,2],AXIS["e",east],AXIS["n",north],LENGTHUNIT["metre",1])"), 1032, "Line 4, column 1: the system cannot be expressed: its coordinates are not those of a plane."},
      {Wkt2("," + kAngle, R"(CS[Cartesian,3],AXIS["e",east],AXIS["n",north],LENGTHUNIT["metre",1])"), 1032, "Line 4, column 1: the system cannot be expressed: it has more than two axes."},
      {Wkt2("," + kAngle, R"(CS[Cartesian,2],LENGTHUNIT["metre",1])"), 1026, "Line 1, column 1: expected two axes (AXIS) in PROJCRS."},
      {Wkt2("," + kAngle, R"(CS[Cartesian,2],AXIS["e",east],AXIS["n",east],LENGTHUNIT["metre",1])"), 1032, "Line 4, column 32: the system cannot be expressed: both of its axes run one way."},
      {Wkt2("," + kAngle, R"(CS[Cartesian,2],AXIS["e",east,LENGTHUNIT["metre",1]],AXIS["n",north])"), 1026, "Line 4, column 54: expected LENGTHUNIT in AXIS."},
      {Wkt2("," + kAngle, R"(CS[Cartesian,2],AXIS["e",east],AXIS["n",north])"), 1026, "Line 1, column 1: expected LENGTHUNIT in PROJCRS."},
      {Wkt1("Transverse_Mercator", kOrigin + kOne, R"(,AXIS["e",EAST])"), 1026, "Line 1, column 1: expected two axes (AXIS) in PROJCS."},
      // Writers mean the unit of the axes by a parameter without one, readers the metre and the degree.
      {Wkt2("," + kAngle, R"(CS[Cartesian,2],AXIS["e",east],AXIS["n",north],LENGTHUNIT["km",1000])"), 1032, "Line 3, column 178: the system cannot be expressed: its unit is missing, by which some mean the metre and some the unit of the axes."},
      {Wkt2(grad, kMetres), 1032, "Line 3, column 46: the system cannot be expressed: its unit is missing, by which some mean the degree and some the unit of the geographic system."},
      {Wkt2("", kMetres), 1026, "Line 3, column 46: expected ANGLEUNIT in PARAMETER."},
      {Wkt2(R"(,PRIMEM["Paris",2.33722917])", kMetres), 1026, "Line 2, column 65: expected ANGLEUNIT in PRIMEM."},
      // Units of another kind.
      {Wkt2("," + kAngle, kMetres, R"(METHOD["Transverse Mercator"],PARAMETER["False easting",5,)" + kAngle + "]"), 1026, "Line 3, column 46: expected LENGTHUNIT in PARAMETER."},
      {Wkt2("," + kAngle, kMetres, R"(METHOD["Transverse Mercator"],PARAMETER["Latitude of natural origin",5,LENGTHUNIT["metre",1]])"), 1026, "Line 3, column 46: expected ANGLEUNIT in PARAMETER."},
      {Wkt2("," + kAngle, kMetres, R"(METHOD["Transverse Mercator"],PARAMETER["Scale factor at natural origin",5,LENGTHUNIT["metre",1]])"), 1026, "Line 3, column 46: expected SCALEUNIT in PARAMETER."},
      {Wkt2(R"(,PRIMEM["Paris",2,LENGTHUNIT["metre",1]])", kMetres), 1026, "Line 2, column 65: expected ANGLEUNIT in PRIMEM."},
  });
}

TEST(InterchangeExact, WhatStandsTwiceIsRefused) {
  Refuse({
      {R"(GEOGCS["x",DATUM["x",SPHEROID["s",6378137,298]],DATUM["y",SPHEROID["s",6378137,298]],)" + kDegree + "]", 1026, "Line 1, column 49: expected DATUM only once."},
      {R"(GEOGCS["x",DATUM["x",SPHEROID["s",6378137,298],TOWGS84[1,2,3],TOWGS84[1,2,4]],)" + kDegree + "]", 1026, "Line 1, column 63: expected a shift to WGS 84 only once."},
      {R"(GEOGCS["x",DATUM["x",SPHEROID["s",6378137,298]],)" + kDegree + R"(,AUTHORITY["EPSG","4326"],AUTHORITY["EPSG","4258"]])", 1026, "Line 1, column 108: expected a code of EPSG only once."},
      {Wkt1("Mercator_1SP", Par("central_meridian", "9") + kOne, R"(,EXTENSION["PROJ4","+proj=merc +ellps=WGS84"],EXTENSION["PROJ4","+proj=merc +ellps=WGS84"])"), 1026, "Line 3, column 122: expected EXTENSION only once."},
  });
}

TEST(InterchangeExact, TransformationsAreReadWholly) {
  const std::string translations = R"~("Geocentric translations (geog2D domain)",ID["EPSG",9603])~";
  const std::string vector = R"~("Position Vector transformation (geog2D domain)",ID["EPSG",9606])~";
  const std::string scale = R"(,PARAMETER["Scale difference",)";
  const char* const hundredth = "Line 4, column 196: the system cannot be expressed: its scale differs from 1 by more than a hundredth, as it does with its unit missing.";
  Refuse({
      {Bound(vector, kShift + kTurn + scale + "2.4232]"), 1032, hundredth},
      {Bound(vector, kShift + kTurn + scale + R"(2.4232,SCALEUNIT["unity",1]])"), 1032, hundredth},
      {Bound(translations, kShift + kTurn), 1032, "Line 4, column 165: the system cannot be expressed: a geocentric translation has neither rotation nor scale."},
      {Bound(translations, kShift + scale + "1.000002]"), 1032, "Line 4, column 103: the system cannot be expressed: a geocentric translation has neither rotation nor scale."},
      {Bound(R"~("Coordinate Frame rotation full matrix (geog2D domain)",ID["EPSG",1133])~", kShift + kTurn + scale + "1]"), 1032, "Line 3, column 28: the transformation 'Coordinate Frame rotation full matrix (geog2D domain)' cannot be expressed: only geocentric translations, position vector and coordinate frame can."},
      {Bound(R"~("Coordinate Frame rotation full matrix (geog2D domain)")~", kShift + kTurn + scale + "1]"), 1032, "Line 3, column 28: the transformation 'Coordinate Frame rotation full matrix (geog2D domain)' cannot be expressed: only geocentric translations, position vector and coordinate frame can."},
      {Bound(R"~("Position Vector transformation (geog2D domain)",ID["EPSG",9607])~", kShift + kTurn + scale + "1]"), 1032, "Line 3, column 28: the transformation 'Position Vector transformation (geog2D domain)' cannot be expressed: its code 9607 means another."},
      {Bound(vector, kShift + kTurn), 1026, "Line 3, column 1: expected Scale difference in ABRIDGEDTRANSFORMATION."},
      {Bound(translations, R"(PARAMETER["X-axis translation",1])"), 1026, "Line 3, column 1: expected Y-axis translation in ABRIDGEDTRANSFORMATION."},
      {Bound(translations, kShift + R"(,PARAMETER["Z-axis translation",3])"), 1026, "Line 4, column 103: expected Z-axis translation only once."},
  });
  EXPECT_EQ(ORVReadText(Bound(translations, kShift))->GetDatum()->GetParameters()->dz, 3.0);
  EXPECT_EQ(ORVReadText(Bound(vector, kShift + kTurn + scale + "1.009]"))->GetDatum()->GetParameters()->rz, 4.0);
}

TEST(InterchangeExact, AnExtensionMustAgreeWithItsText) {
  const auto with = [](const std::string& proj) {
    return Wkt1("Transverse_Mercator", kOrigin + kOne, ",\nEXTENSION[\"PROJ4\",\"+proj=tmerc +lon_0=9 +ellps=WGS84 " + proj + "\"]");
  };
  const std::string shifted = R"(GEOGCS["x",DATUM["x",SPHEROID["s",6378137,298.257223563],TOWGS84[1,2,3]],)" + kDegree + "]";
  std::string own = with("+towgs84=1,2,3"), other = with("+towgs84=1,2,4"), none = with("");
  for (std::string* const text : {&own, &other, &none}) text->replace(text->find(kBase), kBase.size(), shifted);
  const char* const datum = "Line 4, column 1: the system cannot be expressed: its PROJ string has another datum or shift.";
  Refuse({
      {with("+units=us-ft"), 1032, "Line 4, column 1: the system cannot be expressed: its PROJ string has another unit."},
      {with("+pm=ferro"), 1032, "Line 4, column 1: the system cannot be expressed: its PROJ string has another prime meridian."},
      {with("+towgs84=100,200,300"), 1032, datum},
      {with("+nadgrids=@null"), 1032, datum},
      {other, 1032, datum},
      {none, 1032, datum},
      {Wkt1("Transverse_Mercator", kOrigin + kOne, R"(,EXTENSION["other","x"])"), 1032, "Line 3, column 113: the system cannot be expressed: its EXTENSION is not the PROJ4 that is understood."},
      {R"(GEOGCS["NAD27",DATUM["x",SPHEROID["s",6378206.4,294.978698213898]],)" + kDegree + R"(,EXTENSION["PROJ4","+proj=longlat +ellps=clrk66 +nadgrids=conus"]])", 1032, "Line 1, column 102: the system cannot be expressed: its datum is converted by grids."},
      {R"(GEOGCS["NAD27",DATUM["x",SPHEROID["s",6378206.4,294.978698213898],EXTENSION["PROJ4_GRIDS","conus"]],)" + kDegree + "]", 1032, "Line 1, column 67: the system cannot be expressed: its datum is converted by grids."},
      {R"(GEOGCS["x",DATUM["x",SPHEROID["s",6378137,298]],)" + kDegree + R"(,EXTENSION["PROJ4","+proj=longlat +lon_wrap=180"]])", 1032, "Line 1, column 83: the system cannot be expressed: an EXTENSION is understood at a projected system only."},
  });
  // The projection is the string's, then.
  EXPECT_EQ(ORVReadText(with("+units=m"))->GetProjection()->GetParameter(ProjectionParameterIDLon0), 9.0);
  EXPECT_EQ(ORVReadText(own)->GetDatum()->GetParameters()->dz, 3.0);
}

// ---- read ------------------------------------------------------------------------------------------------

/// Where the peer places a point: echo LON LAT | cs2cs -f %.4f +proj=longlat +datum=WGS84 +to TEXT (PROJ 9.1.1).
struct Placed {
  std::string text;
  double lon, lat, x, y;
};

TEST(InterchangeExact, PointsComeToThePeersPlace) {
  const std::string hotine = "Hotine_Oblique_Mercator_Azimuth_Center";
  const std::vector<Placed> rows = {
      {"+proj=omerc +lat_0=4 +lonc=115 +alpha=53.3 +k=0.99984 +datum=WGS84", 115, 5, 2.6721, 110567.0306},
      {"+proj=omerc +lat_0=40 +lonc=10 +alpha=330 +k=1 +datum=WGS84", 11, 41, 84140.1400, 111529.4940},
      {"+proj=omerc +lat_0=40 +lonc=10 +alpha=270 +k=1 +datum=WGS84", 11, 41, 84146.2226, 111521.9555},
      {"+proj=omerc +lat_0=40 +lonc=10 +alpha=150 +k=1 +no_uoff +datum=WGS84", 11, 41, 2504257.3987, -4371709.5516},
      // By echo 8 30 | proj -f %.4f TEXT: cs2cs makes "+proj=utm" of it, and refuses that on a sphere.
      {"+proj=tmerc +lat_0=0 +lon_0=9 +k=0.9996 +x_0=500000 +y_0=0 +R=6371000", 8, 30, 403738.4443, 3334933.5071},
      {"+proj=eqc +lat_ts=45 +R=6371000", 9, 50, 707640.1800, 5559746.3322},
      {"+proj=stere +lat_0=90 +lat_ts=90 +k=0.99 +datum=WGS84", 9, 80, 173403.2963, -1094825.3250},
      {"+proj=stere +lat_0=-90 +lat_ts=-71 +datum=WGS84", 9, -80, 170385.2055, 1075769.8491},
      {Wkt1("Polar_Stereographic", Par("latitude_of_origin", "70") + Par("central_meridian", "0") + kOne), 9, 80, 169875.3608, -1072550.8166},
      {Wkt1("Polar_Stereographic", Par("latitude_of_origin", "90") + Par("central_meridian", "0") + Par("scale_factor", "0.994")), 9, 80, 174103.9157, -1099248.8616},
      {Wkt1("Lambert_Conformal_Conic", kOrigin + Par("standard_parallel_1", "40") + Par("standard_parallel_2", "50")), 11, 41, 84020.4628, 111486.4656},
      {Wkt1("Lambert_Conformal_Conic", kOrigin + Par("standard_parallel_1", "40") + Par("scale_factor", "0.9996")), 11, 41, 84112.5911, 111477.3026},
      {Wkt1(hotine, kCentre + kOne + Par("azimuth", "330")), 11, 41, 84140.1400, 111529.4940},
      {Wkt1("Cassini_Soldner", kOrigin), 11, 41, 84133.3465, 111525.9809},
      {Wkt2("," + kAngle, kMetres), 10, 20, 105151.1843, 1106823.7944},
  };
  for (const Placed& row : rows) {
    SCOPED_TRACE(row.text);
    std::vector<Vec2d> point{{row.lon, row.lat}};
    Projector(*ORVReadText(row.text)->GetProjection()).TransformForward(point);
    EXPECT_NEAR(point[0].x, row.x, 1.5e-4);
    EXPECT_NEAR(point[0].y, row.y, 1.5e-4);
  }
}

// clang-format on

// ---- names -----------------------------------------------------------------------------------------------

class InterchangeNames : public test::ShippedCatalogue {};

std::string Named(const std::string& system, const std::string& datum, const std::string& figure,
                  const std::string& more = "") {
  return "GEOGCS[\"" + system + "\",DATUM[\"" + datum + "\",SPHEROID[\"s\"," + figure + "]]," + kDegree +
         more + "]";
}
const std::string kWgs84 = "6378137,298.257223563";

// Only a code says that a datum with a name of its own is the known one of the system.
TEST_F(InterchangeNames, OfSystemsDoNotReplaceADatum) {
  const auto own = ORVReadText(Named("WGS 84", "My local datum", kWgs84));
  EXPECT_TRUE(own->GetDatum()->IsUnknown());
  EXPECT_STREQ(own->GetDatum()->GetName(), "My local datum");
  EXPECT_STREQ(own->GetToken(), "");

  const std::string base = Named("MGI", "Totally other", "6377397.155,299.1528128");
  const auto projected = ORVReadText("PROJCS[\"x\"," + base + ",PROJECTION[\"Transverse_Mercator\"]," +
                                     kOrigin + kOne + "UNIT[\"metre\",1]]");
  EXPECT_TRUE(projected->GetDatum()->IsUnknown());

  const auto utm = [](const std::string& datum) {
    return ORVReadText("PROJCS[\"WGS 84 / UTM zone 33N\"," + Named("y", datum, kWgs84) +
                       ",PROJECTION[\"Transverse_Mercator\"]," + Par("latitude_of_origin", "0") +
                       Par("central_meridian", "15") + Par("scale_factor", "0.9996") +
                       Par("false_easting", "500000") + "UNIT[\"metre\",1]]");
  };
  EXPECT_TRUE(utm("Some island 1950")->GetDatum()->IsUnknown());
  EXPECT_STREQ(utm("Some island 1950")->GetToken(), "");
  EXPECT_STREQ(utm("WGS_1984")->GetToken(), "EPSG:32633");
  // A datum without a name leaves it to the system's.
  EXPECT_STREQ(utm("unknown")->GetToken(), "EPSG:32633");
  EXPECT_STREQ(utm("Unknown based on WGS 84 ellipsoid")->GetToken(), "EPSG:32633");
  EXPECT_STREQ(
      ORVReadText(Named("WGS 84", "My local datum", kWgs84, ",AUTHORITY[\"EPSG\",\"4326\"]"))->GetToken(),
      "EPSG:4326");
  // A title is a remark.
  const auto title = ORVReadText("+proj=longlat +ellps=WGS84 +title=WGS84");
  EXPECT_TRUE(title->GetDatum()->IsUnknown());
  EXPECT_STREQ(title->GetToken(), "");
  EXPECT_STREQ(title->GetName(), "WGS84");
}

// Qatar 1948 and TWD67: two datums that no way leads from are not one.
TEST_F(InterchangeNames, AnUnknownDatumIsNotAnotherUnknownOne) {
  const std::string helmert = "6378200,298.3", qatar = ",AUTHORITY[\"EPSG\",\"4286\"]",
                    twd = ",AUTHORITY[\"EPSG\",\"3821\"]";
  EXPECT_STREQ(ORVReadText(Named("x", "Qatar_1948", helmert, qatar))->GetToken(), "EPSG:4286");
  const auto other = ORVReadText(Named("x", "Qatar_1948", helmert, twd));
  EXPECT_STREQ(other->GetToken(), "");
  EXPECT_STREQ(other->GetDatum()->GetName(), "Qatar 1948");
}

// A code is a whole number.
TEST_F(InterchangeNames, CodesAreWhole) {
  for (const char* const code : {"\"4326abc\"", "\"4326.7\"", "4326.7", "\"\"", "-4326"})
    EXPECT_EQ(
        ORVReadText(Named("x", "y", kWgs84, std::string(",AUTHORITY[\"EPSG\",") + code + "]"))->GetPOSC(), 0)
        << code;
  EXPECT_EQ(ORVReadText(Named("x", "y", kWgs84, ",ID[\"other\",7],ID[\"EPSG\",4326]"))->GetPOSC(), 4326);
}

// ---- writing ---------------------------------------------------------------------------------------------

TEST(InterchangeExact, WhatReadersTakeForAnotherIsNotWritten) {
  ProjectionParameters p;
  p.method = ProjectionMethodHotine;
  p.ellipsoid = EllipsoidDef(6378137.0, 1.0 / 298.257223563, nullptr, nullptr, nullptr, 0);
  p.Lat0 = 40;
  p.Lon1 = 10;
  p.Alpha = 150;
  p.bUseAlpha = p.bRotate = p.bUOffset = true;
  const ProjectionDef hotine(p);
  EXPECT_RAISES(
      ORVWriteText(ORVDef(nullptr, &hotine, nullptr), TextDialectWkt2), 1032, "Interchange",
      "The projection 'Hotine Oblique Mercator' cannot be written as WKT2:2019: its azimuth lies beyond 90 degrees "
      "and u is counted from the centre, where software differs on the place.");

  // On a sphere PROJ refuses "+proj=utm" ("Invalid value for eccentricity"); of this one it makes the same by itself
  // as a system, but as a projection it places it: PointsComeToThePeersPlace.
  ProjectionParameters zone;
  zone.method = ProjectionMethodUTM;
  zone.ellipsoid = EllipsoidDef(6371000.0, 0.0, nullptr, nullptr, nullptr, 0);
  zone.Lon0 = 9;
  zone.K0 = 0.9996;
  const ProjectionDef utm(zone);
  EXPECT_EQ(
      ORVWriteText(ORVDef(nullptr, &utm, nullptr), TextDialectProj),
      "+proj=tmerc +lat_0=0 +lon_0=9 +k=0.9996 +x_0=500000 +y_0=0 +R=6371000 +units=m +no_defs +type=crs");

  // With EPSG's number 1125 PROJ 9.1.1 places nothing; on a sphere 9832 is the same map.
  ProjectionParameters centre;
  centre.method = ProjectionMethodAzimuthalEquidistant;
  centre.ellipsoid = zone.ellipsoid;
  const ProjectionDef equidistant(centre);
  const std::string text = ORVWriteText(ORVDef(nullptr, &equidistant, nullptr), TextDialectWkt2);
  EXPECT_NE(text.find(R"(METHOD["Modified Azimuthal Equidistant",ID["EPSG",9832]],)"), std::string::npos)
      << text;
}

}  // namespace
}  // namespace orv
