#include "orv/interop/Interchange.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/Projector.h"
#include "orv/shared/Exception.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Raises.h"
#include "tests/support/ShippedCatalogue.h"

namespace orv {
namespace {

using shr::Vec2d;
using Counts = std::map<std::string, int>;

constexpr TextDialect kDialects[] = {TextDialectWkt2, TextDialectWkt1Gdal, TextDialectWkt1Esri,
                                     TextDialectProj};

void Print(const std::string& title, const Counts& counts) {
  std::printf("%s\n", title.c_str());
  for (const auto& [what, count] : counts) std::printf("  %5d  %s\n", count, what.c_str());
}

// Of every sixth system.  A PROJ string names no datum: systems on a datum without a way to WGS 84 come back in their
// plain form, which the catalogue has changed to keep datums apart.
const Counts kEsriCounts = {{"equal", 922}};
const Counts kProjCounts = {
    {"equal", 895},
    {"Projection parameter differs (Scale).", 26},
    {"The system cannot be written as PROJ string: its unit is the grad, and the string counts degrees.", 1}};

class Interchange : public test::ShippedCatalogue {
 protected:
  static std::string Compared(const ORVDef& system, const ORVDef& back) {
    std::string why;
    return system.Compare(back, false, &why) ? "equal" : why;
  }
};

// ---- every system ----------------------------------------------------------------------------------------

/// Metres between the two maps around the middle of the first.
double Apart(const ORVDef& a, const ORVDef& b) {
  const ProjectionParameters& p = *a.GetProjection()->GetParameters();
  const double lon = p.method == ProjectionMethodHotine ? p.Lon1 : p.Lon0;
  const double lat = p.method == ProjectionMethodLambert ? (p.Lat1 + p.Lat2) / 2 : p.Lat0;
  if (p.method == ProjectionMethodUnprojected) {
    if (!b.HasProjection(true, true)) return 0.0;
    // The longitudes of a datum of its own Greenwich, as a map: degrees.
    std::vector<Vec2d> first{{10.0 - a.GetDatum()->GetParameters()->pmShift, 20.0}}, second{{10.0, 20.0}};
    Projector(*b.GetProjection()).TransformForward(second);
    return std::hypot(first[0].x - second[0].x, first[0].y - second[0].y) * 111320.0;
  }
  double apart = 0.0;
  for (const double step : {-1.1, 0.3, 1.7}) {
    std::vector<Vec2d> first{{lon + step, std::fmax(-88.0, std::fmin(88.0, lat - 0.7 * step))}},
        second = first;
    first[0].x -= a.GetDatum()->GetParameters()->pmShift;  // longitudes of the datum's own
    second[0].x -= b.GetDatum()->GetParameters()->pmShift;
    Projector(*a.GetProjection()).TransformForward(first);
    Projector(*b.GetProjection()).TransformForward(second);
    apart = std::fmax(apart, std::hypot(first[0].x - second[0].x, first[0].y - second[0].y) / p.Scale);
  }
  return apart;
}

TEST_F(Interchange, EverySystemReadBackComparesEqual) {
  for (const TextDialect dialect : kDialects) {
    Counts counts;
    const bool hasCodes = dialect == TextDialectWkt2 || dialect == TextDialectWkt1Gdal;
    int number = 0;
    for (const ORVDef* const system : Systems()) {
      // All of them take half a minute: each half of them in one of the dialects with codes, every sixth in the others.
      ++number;
      const bool isTaken = dialect == TextDialectWkt2       ? number % 2 == 1
                           : dialect == TextDialectWkt1Gdal ? number % 2 == 0
                                                            : number % 6 == 0;
      if (!isTaken && !std::getenv("ORV_EVERY_SYSTEM")) continue;
      std::string text;
      try {
        text = ORVWriteText(*system, dialect);
      } catch (const shr::Exception& e) {
        ++counts[e.Message()];
        continue;
      }
      const std::unique_ptr<ORVDef> back = ORVReadText(text);
      const std::string verdict = Compared(*system, *back);
      ++counts[verdict];
      if (hasCodes) {
        EXPECT_STREQ(system->GetToken(), back->GetToken());  // the very entry
      } else if (verdict != "equal") {
        EXPECT_LE(Apart(*system, *back), 1e-6) << text;
      }
    }
    Print(ORVTextDialectName(dialect), counts);
    if (hasCodes) {
      EXPECT_EQ(counts.size(), 1u);
      EXPECT_GE(counts["equal"], 2766);
    } else if (!std::getenv("ORV_EVERY_SYSTEM")) {
      EXPECT_EQ(counts, dialect == TextDialectWkt1Esri ? kEsriCounts : kProjCounts);
    }
  }
}

// Neither code nor name: the datum and the numbers alone.
TEST_F(Interchange, SystemsWithoutCodeAndNameReadBackAsTheSameMap) {
  Counts counts;
  int number = 0;
  for (const ORVDef* const system : Systems()) {
    if (++number % 12 != 0) continue;
    ORVDef nameless(*system);
    nameless.SetPOSC(0);
    nameless.SetName("another");
    for (const TextDialect dialect : {TextDialectWkt2, TextDialectWkt1Gdal}) {
      const std::unique_ptr<ORVDef> back = ORVReadText(ORVWriteText(nameless, dialect));
      ++counts[Compared(*system, *back)];
      EXPECT_LE(Apart(*system, *back), 1e-6) << ORVWriteText(nameless, dialect);
      EXPECT_STREQ(back->GetToken(), "");
      EXPECT_STREQ(back->GetName(), "another");
    }
  }
  // Two of them lie on a datum whose longitudes count from another Greenwich.
  EXPECT_EQ(counts, (Counts{{"equal", 920}, {"Projection parameter differs (Scale).", 2}}));
}

// ---- reading ---------------------------------------------------------------------------------------------

/// What a text must read to, from its own numbers.
struct ReadRow {
  const char* name;
  const char* text;
  ProjectionMethod method;
  std::map<ProjectionParameterID, double> values;
};

constexpr auto kScale = ProjectionParameterIDScale, kXOrg = ProjectionParameterIDXOrg,
               kYOrg = ProjectionParameterIDYOrg, kLon0 = ProjectionParameterIDLon0,
               kLat0 = ProjectionParameterIDLat0, kLat1 = ProjectionParameterIDLat1,
               kLat2 = ProjectionParameterIDLat2, kLon1 = ProjectionParameterIDLon1,
               kK0 = ProjectionParameterIDK0, kAlpha = ProjectionParameterIDAlpha,
               kSouth = ProjectionParameterIDSouth;

// clang-format off
const ReadRow kReadRows[] = {
    {"US feet and names of ESRI",
     R"~(PROJCS["x",GEOGCS["GCS_x",DATUM["D_x",SPHEROID["GRS_1980",6378137.0,298.257222101]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],PARAMETER["False_Easting",656166.666666667],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",-85.8333333333333],PARAMETER["Scale_Factor",0.99996],PARAMETER["Latitude_Of_Origin",30.5],UNIT["Foot_US",0.3048006096012192]])~",
     ProjectionMethodTransverseMercator, {{kScale, 39.37 / 12}, {kXOrg, 200000}, {kLon0, -85.8333333333333}, {kLat0, 30.5}, {kK0, 0.99996}}},
    {"grads and Paris, the meridian in degrees",
     R"~(PROJCS["x",GEOGCS["x",DATUM["x",SPHEROID["Clarke 1880 (IGN)",6378249.2,293.466021293627]],PRIMEM["Paris",2.33722917],UNIT["grad",0.0157079632679489]],PROJECTION["Lambert_Conformal_Conic_2SP"],PARAMETER["latitude_of_origin",52],PARAMETER["central_meridian",1],PARAMETER["standard_parallel_1",50],PARAMETER["standard_parallel_2",54],PARAMETER["false_easting",600000],PARAMETER["false_northing",2200000],UNIT["metre",1]])~",
     ProjectionMethodLambert, {{kLat0, 46.8}, {kLat1, 45}, {kLat2, 48.6}, {kLon0, 3.23722917}, {kXOrg, 600000}, {kYOrg, 2200000}}},
    {"grads and Paris, the meridian in grads",
     R"~(GEOGCRS["x",DATUM["x",ELLIPSOID["Clarke 1880 (IGN)",6378249.2,293.466021293627,LENGTHUNIT["metre",1]]],PRIMEM["Paris",2.5969213,ANGLEUNIT["grad",0.0157079632679489]],CS[ellipsoidal,2],AXIS["latitude",north],AXIS["longitude",east],ANGLEUNIT["grad",0.0157079632679489]])~",
     ProjectionMethodEquidistantCylindrical, {{kScale, 400 / (2 * M_PI * 6378137)}, {kLon0, 2.33722917}, {kLat1, 0}}},
    {"units of parameters",
     R"~(PROJCRS["x",BASEGEOGCRS["x",DATUM["x",ELLIPSOID["GRS 1980",6378137,298.257222101]]],CONVERSION["c",METHOD["Transverse Mercator"],PARAMETER["Latitude of natural origin",50,ANGLEUNIT["grad",0.0157079632679489]],PARAMETER["Longitude of natural origin",0.1,ANGLEUNIT["radian",1]],PARAMETER["Scale factor at natural origin",999600,SCALEUNIT["parts per million",1E-06]],PARAMETER["False easting",1000,LENGTHUNIT["foot",0.3048]],PARAMETER["False northing",2,LENGTHUNIT["kilometre",1000]]],CS[Cartesian,2],AXIS["n",north,ORDER[1]],AXIS["e",east,ORDER[2]],LENGTHUNIT["foot",0.3048]])~",
     ProjectionMethodTransverseMercator, {{kScale, 1 / 0.3048}, {kXOrg, 304.8}, {kYOrg, 2000}, {kLat0, 45}, {kLon0, 18 / M_PI}, {kK0, 0.9996}}},
    {"round brackets, small letters, blanks",
     "geogcs ( \"x\" ,\n datum(\"x\", spheroid(\"x\", 6378000, 300)), primem(\"Greenwich\", 0), unit(\"degree\", .0174532925199433) )",
     ProjectionMethodUnprojected, {}},
    {"UTM by its name",
     R"~(PROJCS["a / UTM zone 33S",GEOGCS["x",DATUM["x",SPHEROID["x",6378388,297]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",15],PARAMETER["scale_factor",0.9996],PARAMETER["false_easting",500000],PARAMETER["false_northing",10000000],UNIT["metre",1]])~",
     ProjectionMethodUTM, {{kLon0, 15}, {kK0, 0.9996}, {kSouth, 1}}},
    {"zone of UTM", "+proj=utm +zone=33 +south +ellps=intl", ProjectionMethodUTM, {{kLon0, 15}, {kK0, 0.9996}, {kSouth, 1}}},
    {"no UTM without the name", "+proj=tmerc +lon_0=15 +k=0.9996 +x_0=500000 +ellps=intl", ProjectionMethodTransverseMercator, {{kLon0, 15}, {kK0, 0.9996}, {kXOrg, 500000}}},
    // Scale factor of 0.997 as latitude of true scale on Bessel's ellipsoid: EPSG:3001, computed by data/generate.
    {"Mercator variant A", "+proj=merc +lon_0=110 +k=0.997 +x_0=3900000 +y_0=900000 +ellps=bessel", ProjectionMethodMercator, {{kLat0, 4.45405154589747986904}, {kLon0, 110}}},
    {"Mercator enlarged", "+proj=merc +k=1.25 +x_0=1000 +ellps=bessel", ProjectionMethodMercator, {{kLat0, 0}, {kScale, 1.25}, {kXOrg, 800}}},
    {"Mercator variant B", "+proj=merc +lat_ts=-42 +lon_0=51 +ellps=krass", ProjectionMethodMercator, {{kLat0, -42}, {kLon0, 51}}},
    // One parallel of 10d10' and scale 1 on the International ellipsoid: EPSG:2101, computed by data/generate.
    {"Lambert with one parallel", "+proj=lcc +lat_1=10.16666666666666607455 +lat_0=10.16666666666666607455 +y_0=-52684.972059417 +lon_0=-71.6056177777778 +ellps=intl", ProjectionMethodLambert, {{kLat1, 9.16559498007694095634}, {kLat2, 11.16666666666698937149}, {kScale, 1.00015149816883774925}}},
    // Standard parallel of 71 degrees south as scale at the pole: EPSG:3031, computed by data/generate.
    {"Polar Stereographic of ESRI",
     R"~(PROJCS["x",GEOGCS["x",DATUM["x",SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Stereographic_South_Pole"],PARAMETER["False_Easting",0.0],PARAMETER["False_Northing",7.0],PARAMETER["Central_Meridian",11.0],PARAMETER["Standard_Parallel_1",-71.0],UNIT["Meter",1.0]])~",
     ProjectionMethodStereographic, {{kLat0, -90}, {kLon0, 11}, {kK0, 0.97276901289179695809}, {kYOrg, 7}}},
    {"Polar_Stereographic of GDAL: the parallel",
     R"~(PROJCS["x",GEOGCS["x",DATUM["x",SPHEROID["WGS 84",6378137,298.257223563]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Polar_Stereographic"],PARAMETER["latitude_of_origin",-71],PARAMETER["central_meridian",11],UNIT["metre",1]])~",
     ProjectionMethodStereographic, {{kLat0, -90}, {kLon0, 11}, {kK0, 0.97276901289179695809}}},
    {"Polar Stereographic of PROJ", "+proj=stere +lat_0=90 +lat_ts=90 +lon_0=-45 +ellps=WGS84", ProjectionMethodStereographic, {{kLat0, 90}, {kLon0, -45}, {kK0, 1}}},
    // Deliberate: 90 degrees become 89.9998.
    {"Swiss", "+proj=somerc +lat_0=46.9524055555556 +lon_0=7.43958333333333 +k_0=1 +x_0=2600000 +y_0=1200000 +ellps=bessel", ProjectionMethodHotine, {{kLat0, 46.9524055555556}, {kLon1, 7.43958333333333}, {kAlpha, 89.9998}, {ProjectionParameterIDUOffset, 1}, {ProjectionParameterIDRotate, 1}}},
    {"Hotine of the natural origin", "+proj=omerc +no_uoff +lat_0=45 +lonc=-86 +alpha=337.25556 +k=0.9996 +x_0=5 +ellps=GRS80", ProjectionMethodHotine, {{kAlpha, 337.25556}, {kLon1, -86}, {kLat0, 45}, {ProjectionParameterIDUOffset, 0}, {kXOrg, 5}}},
    {"unit given by its size", "+proj=cass +lat_0=10 +lon_0=-61 +x_0=100 +a=6378293.64520876 +b=6356617.98767984 +to_meter=1/4", ProjectionMethodCassini, {{kScale, 4}, {kXOrg, 100}, {kLon0, -61}}},
    {"meridian by name", "+proj=longlat +ellps=bessel +pm=ferro", ProjectionMethodEquidistantCylindrical, {{kLon0, -17 - 40 / 60.0}, {kScale, 360 / (2 * M_PI * 6378137)}}},
    {"PROJ string for what WKT1 cannot say",
     R"~(PROJCS["x",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Mercator_1SP"],PARAMETER["central_meridian",0],PARAMETER["scale_factor",1],PARAMETER["false_easting",0],PARAMETER["false_northing",0],UNIT["metre",1],EXTENSION["PROJ4","+proj=merc +a=6378137 +b=6378137 +lat_ts=0 +lon_0=5 +x_0=0 +y_0=0 +k=1 +units=m +nadgrids=@null +wktext +no_defs"]])~",
     ProjectionMethodMercator, {{kLon0, 5}, {kLat0, 0}}},
};
// clang-format on

TEST_F(Interchange, TextsReadToTheirNumbers) {
  for (const ReadRow& row : kReadRows) {
    SCOPED_TRACE(row.name);
    const std::unique_ptr<ORVDef> system = ORVReadText(row.text);
    EXPECT_EQ(system->GetProjection()->GetMethod(), row.method);
    for (const auto& [id, value] : row.values) {
      EXPECT_NEAR(system->GetProjection()->GetParameter(id), value, 2e-12 * std::fmax(1.0, std::fabs(value)))
          << ProjectionDef::ParameterShortName(id);
    }
  }
  // Spherical formulas on the ellipsoid's coordinates.
  const std::unique_ptr<ORVDef> web = ORVReadText(std::end(kReadRows)[-1].text);
  EXPECT_EQ(web->GetProjection()->GetEllipsoid()->GetFlattening(), 0.0);
  EXPECT_STREQ(web->GetDatum()->GetToken(), "EPSG:6326");
}

// ---- datums ----------------------------------------------------------------------------------------------

std::string Geographic(const std::string& name, const std::string& figure, const std::string& more,
                       const std::string& last) {
  return "GEOGCS[\"x\",DATUM[\"" + name + "\",SPHEROID[\"s\"," + figure + "]" + more +
         "],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]" + last + "]";
}
const std::string kBessel = "6377397.155,299.1528128", kGrs80 = "6378137,298.257222101";

TEST_F(Interchange, ADatumIsFoundByShiftCodeOrName) {
  const std::string dhdn = ",TOWGS84[598.1,73.7,418.2,0.202,0.045,-2.455,6.7]";
  const auto token = [](const std::string& text) {
    const std::unique_ptr<ORVDef> system = ORVReadText(text);
    const char* const found = system->GetDatum()->GetToken();
    return std::string(found ? found : "");
  };
  EXPECT_EQ(token(Geographic("y", kBessel, dhdn + ",AUTHORITY[\"EPSG\",\"6314\"]", "")), "EPSG:6314");
  EXPECT_EQ(token(Geographic("Deutsches_Hauptdreiecksnetz", kBessel, dhdn, "")), "EPSG:6314");
  EXPECT_EQ(token(Geographic("D_Deutsches_Hauptdreiecksnetz", kBessel, "", "")), "EPSG:6314");
  EXPECT_EQ(token(Geographic("y", kBessel, ",AUTHORITY[\"EPSG\",\"6314\"]", "")), "EPSG:6314");
  EXPECT_EQ(token(Geographic("D_North_American_1983", kGrs80, "", "")), "ORV:6269");
  EXPECT_EQ(token(Geographic("D_ETRS_1989", kGrs80, "", "")), "ORV:6258");
  // As projinfo -o WKT1:ESRI EPSG:4672 names it; the name of the system is no help.
  EXPECT_EQ(token(Geographic("D_Chatham_Island_1971", "6378388,297", "", "")),
            SystemOfCode("4672").GetDatum()->GetToken());
  EXPECT_EQ(token("+proj=longlat +datum=NAD27"), "EPSG:6267");
  EXPECT_EQ(token("+proj=longlat +datum=WGS84"), "EPSG:6326");

  // Its own numbers hold where the known datum has others, and where its ellipsoid is another.
  const std::unique_ptr<ORVDef> own =
      ORVReadText(Geographic("Deutsches_Hauptdreiecksnetz", kBessel, ",TOWGS84[1,2,3]", ""));
  const DatumParameters& d = *own->GetDatum()->GetParameters();
  EXPECT_EQ(own->GetDatum()->GetToken(), nullptr);
  EXPECT_EQ(d.method, DatumMethodBursaWolf);
  EXPECT_EQ(d.target, DatumTargetWGS84);
  EXPECT_EQ(d.dx, 1.0);
  EXPECT_EQ(d.dy, 2.0);
  EXPECT_EQ(d.dz, 3.0);
  EXPECT_EQ(d.ellipsoid.GetMajorRadius(), 6377397.155);
  EXPECT_TRUE(
      ORVReadText(Geographic("Deutsches_Hauptdreiecksnetz", kGrs80, "", ""))->GetDatum()->IsUnknown());
  // A null shift is none on GRS 1980 only.
  EXPECT_EQ(ORVReadText(Geographic("y", kGrs80, ",TOWGS84[0,0,0]", ""))->GetDatum()->GetMethod(),
            DatumMethodNone);
  EXPECT_EQ(ORVReadText(Geographic("y", kBessel, ",TOWGS84[0,0,0]", ""))->GetDatum()->GetMethod(),
            DatumMethodBursaWolf);
  // Nothing converts an unknown one.
  const std::unique_ptr<ORVDef> unknown = ORVReadText(Geographic("of my own", kBessel, "", ""));
  EXPECT_TRUE(unknown->GetDatum()->IsUnknown());
  EXPECT_STREQ(unknown->GetDatum()->GetName(), "of my own");
}

TEST_F(Interchange, ATransformationOfWkt2BecomesItsShift) {
  const auto bound = [](const std::string& method, const std::string& unit, const std::string& scale) {
    return "BOUNDCRS[SOURCECRS[GEOGCRS[\"x\",DATUM[\"x\",ELLIPSOID[\"Bessel\",6377397.155,299.1528128]],CS[ellipsoidal,2],"
           "AXIS[\"lat\",north],AXIS[\"lon\",east],ANGLEUNIT[\"degree\",0.0174532925199433]]],TARGETCRS[GEOGCRS[\"WGS 84\","
           "DATUM[\"World Geodetic System 1984\",ELLIPSOID[\"WGS 84\",6378137,298.257223563]],ID[\"EPSG\",4326]]],"
           "ABRIDGEDTRANSFORMATION[\"t\",METHOD[" +
           method +
           "],PARAMETER[\"X-axis translation\",1],PARAMETER[\"Y-axis "
           "translation\",-2],PARAMETER[\"Z-axis translation\",3],PARAMETER[\"X-axis rotation\",0.25" +
           unit +
           "],PARAMETER[\"Y-axis rotation\",-0.5],PARAMETER[\"Z-axis rotation\",0.75],PARAMETER[\"Scale difference\"," +
           scale + "]]]";
  };
  const auto read = [&](const std::string& text) { return *ORVReadText(text)->GetDatum()->GetParameters(); };
  const DatumParameters vector =
      read(bound("\"Position Vector transformation (geog2D domain)\",ID[\"EPSG\",9606]", "", "1.0000067"));
  EXPECT_EQ(vector.dx, 1.0);
  EXPECT_EQ(vector.dy, -2.0);
  EXPECT_EQ(vector.dz, 3.0);
  EXPECT_EQ(vector.rx, 0.25);
  EXPECT_EQ(vector.ry, -0.5);
  EXPECT_EQ(vector.rz, 0.75);
  EXPECT_NEAR(vector.k, 6.7, 1e-9);
  // The other convention turns the other way.
  const DatumParameters frame = read(bound("\"Coordinate Frame rotation (geog2D domain)\"", "", "0.9999"));
  EXPECT_EQ(frame.dx, 1.0);
  EXPECT_EQ(frame.rx, -0.25);
  EXPECT_EQ(frame.ry, 0.5);
  EXPECT_EQ(frame.rz, -0.75);
  EXPECT_NEAR(frame.k, -100.0, 1e-9);
  const DatumParameters units = read(bound("\"Position Vector\"", ",ANGLEUNIT[\"degree\",0.0174532925199433]",
                                           "-6.5,SCALEUNIT[\"parts per million\",1E-06]"));
  EXPECT_NEAR(units.rx, 900.0, 1e-9);
  EXPECT_NEAR(units.k, -6.5, 1e-9);
}

TEST_F(Interchange, TheCatalogueIsKeptOnlyWhereItFits) {
  const ORVDef& gauss = System("EPSG:31467");
  const std::string text = ORVWriteText(gauss, TextDialectWkt1Gdal);
  const auto with = [&text](const char* from, const char* to) {
    std::string changed = text;
    const size_t at = changed.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return ORVReadText(changed.replace(at, std::string(from).size(), to));
  };
  EXPECT_STREQ(ORVReadText(text)->GetToken(), "EPSG:31467");
  EXPECT_STREQ(ORVReadText(text)->GetComment(), gauss.GetComment());
  // Another false easting, meridian, shift or unit: the text holds.
  EXPECT_STREQ(with("3500000", "3500001")->GetToken(), "");
  EXPECT_EQ(with("3500000", "3500001")->GetProjection()->GetParameter(kXOrg), 3500001.0);
  EXPECT_STREQ(with("central_meridian\",9", "central_meridian\",10")->GetToken(), "");
  EXPECT_STREQ(with("598.1", "599.1")->GetToken(), "");
  EXPECT_EQ(with("598.1", "599.1")->GetDatum()->GetParameters()->dx, 599.1);
  EXPECT_STREQ(with("UNIT[\"metre\",1,", "UNIT[\"foot\",0.3048,")->GetToken(), "");
  EXPECT_EQ(with("598.1", "599.1")->GetPOSC(), 31467);
}

// The transformer drops projections that compare equal: a text's takes the form that keeps it apart.
TEST_F(Interchange, MapsOnDifferentDatumsStayDifferent) {
  const auto wgs72 = ORVReadText(
      R"~(PROJCS["mine",GEOGCS["GCS_WGS_1972",DATUM["D_WGS_1972",SPHEROID["WGS_1972",6378135.0,298.26]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",9.0],PARAMETER["Scale_Factor",0.9996],PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])~");
  EXPECT_STREQ(wgs72->GetName(), "mine");
  EXPECT_STREQ(wgs72->GetDatum()->GetToken(), "EPSG:6322");
  EXPECT_FALSE(wgs72->GetProjection()->Compare(*System("EPSG:32632").GetProjection(), nullptr));
  EXPECT_TRUE(wgs72->GetProjection()->Compare(*SystemOfCode("32232").GetProjection(), nullptr));
}

// ---- writing ---------------------------------------------------------------------------------------------

TEST_F(Interchange, TextsOfKnownSystems) {
  EXPECT_EQ(ORVWriteText(System("EPSG:32633"), TextDialectProj),
            "+proj=utm +zone=33 +datum=WGS84 +units=m +no_defs +type=crs");
  EXPECT_EQ(ORVWriteText(System("EPSG:31467"), TextDialectProj),
            "+proj=tmerc +lat_0=0 +lon_0=9 +k=1 +x_0=3500000 +y_0=0 +ellps=bessel "
            "+towgs84=598.1,73.7,418.2,0.202,0.045,-2.455,6.7 +units=m +no_defs +type=crs");
  EXPECT_EQ(
      ORVWriteText(SystemOfCode("3857"), TextDialectProj),
      "+proj=merc +lon_0=0 +x_0=0 +y_0=0 +k=1 +a=6378137 +b=6378137 +nadgrids=@null +wktext +units=m +no_defs +type=crs");
  EXPECT_EQ(
      ORVWriteText(System("EPSG:31467"), TextDialectWkt1Esri),
      R"~(PROJCS["DHDN_3-degree_Gauss-Kruger_zone_3",GEOGCS["GCS_DHDN",DATUM["D_Deutsches_Hauptdreiecksnetz",)~"
      R"~(SPHEROID["Bessel_1841",6377397.155,299.1528128]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],)~"
      R"~(PROJECTION["Transverse_Mercator"],PARAMETER["Latitude_Of_Origin",0.0],PARAMETER["Central_Meridian",9.0],)~"
      R"~(PARAMETER["Scale_Factor",1.0],PARAMETER["False_Easting",3500000.0],PARAMETER["False_Northing",0.0],UNIT["Meter",1.0]])~");
  const std::string polar = ORVWriteText(System("EPSG:3031"), TextDialectWkt2);
  EXPECT_NE(
      polar.find(
          R"~(METHOD["Polar Stereographic (variant B)",ID["EPSG",9829]],PARAMETER["Latitude of standard parallel",-71,)~"),
      std::string::npos)
      << polar;
  EXPECT_NE(polar.find(R"~(AXIS["easting (E)",north,MERIDIAN[90,)~"), std::string::npos) << polar;
  // What the catalogue had to convert is written as EPSG has it.
  const std::string paris = ORVWriteText(SystemOfCode("27572"), TextDialectWkt1Gdal);
  EXPECT_NE(paris.find(R"~(PROJECTION["Lambert_Conformal_Conic_1SP"],PARAMETER["latitude_of_origin",46.8],)~"
                       R"~(PARAMETER["central_meridian",2.33722917],PARAMETER["scale_factor",0.99987742])~"),
            std::string::npos)
      << paris;
  const std::string swiss = ORVWriteText(SystemOfCode("2056"), TextDialectWkt2);
  EXPECT_NE(swiss.find(R"~(PARAMETER["Azimuth of initial line",90,)~"), std::string::npos) << swiss;
  const std::string indented = ORVWriteText(System("EPSG:4326"), TextDialectWkt1Gdal, true);
  EXPECT_NE(indented.find("\n  DATUM[\"WGS_1984\",\n    SPHEROID["), std::string::npos) << indented;
  EXPECT_EQ(ORVReadText(indented)->GetPOSC(), 4326);
}

TEST_F(Interchange, AnUnknownMeridianIsInTheUnitOfTheSystem) {
  const auto own = ORVReadText(
      R"~(GEOGCS["x",DATUM["x",SPHEROID["x",6378388,297]],PRIMEM["x",5],UNIT["grad",0.0157079632679489]])~");
  EXPECT_NEAR(own->GetProjection()->GetParameter(kLon0), 4.5, 1e-13);
  for (const TextDialect dialect : {TextDialectWkt2, TextDialectWkt1Gdal, TextDialectWkt1Esri}) {
    const auto back = ORVReadText(ORVWriteText(*own, dialect));
    EXPECT_NEAR(back->GetProjection()->GetParameter(kLon0), 4.5, 1e-12) << ORVTextDialectName(dialect);
  }
}

TEST_F(Interchange, NumbersDoNotDependOnTheLocale) {
  const std::string before = ORVWriteText(System("EPSG:31467"), TextDialectWkt2);
  const test::CommaLocale locale;
  if (!locale.Available()) GTEST_SKIP() << "no locale with a comma";
  EXPECT_EQ(ORVWriteText(System("EPSG:31467"), TextDialectWkt2), before);
  EXPECT_STREQ(ORVReadText(before)->GetToken(), "EPSG:31467");
}

TEST(InterchangeWithoutLists, TextsAreReadAndWritten) {
  const auto system = ORVReadText("+proj=utm +zone=33 +datum=WGS84");
  EXPECT_EQ(system->GetDatum()->GetMethod(), DatumMethodNone);
  EXPECT_EQ(ORVWriteText(*system, TextDialectProj),
            "+proj=utm +zone=33 +datum=WGS84 +units=m +no_defs +type=crs");
}

// ---- what a text is --------------------------------------------------------------------------------------

TEST(InterchangeKinds, AreTold) {
  for (const char* const wkt : {"PROJCS[\"x\"]", " \n projcrs (", "BOUNDCRS[", "VERT_CS[\"x\"]"})
    EXPECT_TRUE(ORVLooksLikeWkt(wkt)) << wkt;
  for (const char* const other : {"", "PROJCS", "PROJCSX[", "<{6,ORVDef", "method=x", "EPSG:4326"})
    EXPECT_FALSE(ORVLooksLikeWkt(other)) << other;
  for (const char* const proj : {"+proj=utm", "proj=utm zone=3", "+ellps=x +proj=y", "+init=epsg:4326"})
    EXPECT_TRUE(ORVLooksLikeProjString(proj)) << proj;
  for (const char* const other : {"", "method=x,a=1", "PROJCS[\"x\"]", "projtype=UTM"})
    EXPECT_FALSE(ORVLooksLikeProjString(other)) << other;
}

}  // namespace
}  // namespace orv
