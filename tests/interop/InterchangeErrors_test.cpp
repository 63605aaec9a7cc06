// What the readers and writers of texts refuse, each with place and reason.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "orv/core/internal/Text.h"
#include "orv/datum/DatumDef.h"
#include "orv/interop/Interchange.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Exception.h"
#include "orv/system/ORVDef.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/Raises.h"
#include "tests/support/ShippedCatalogue.h"

namespace orv {
namespace {

struct BadText {
  const char* text;
  int code;
  const char* message;
};

const std::string kHead =
    "GEOGCS[\"x\",DATUM[\"x\",SPHEROID[\"x\",6378137,298.25]],PRIMEM[\"G\",0],UNIT[\"d\",0.0174532925199433]]";
std::string Projected(const std::string& method, const std::string& more) {
  return "PROJCS[\"x\"," + kHead + ",\nPROJECTION[\"" + method + "\"]" + more + ",UNIT[\"metre\",1]]";
}

// clang-format off
const BadText kSyntax[] = {
    {"", 1026, "Line 1, column 1: expected the keyword of a coordinate system, found the end of the text."},
    {"  \n 5", 1026, "Line 2, column 2: expected the keyword of a coordinate system, found '5'."},
    {"\xC3\xA4", 1026, "Line 1, column 1: expected the keyword of a coordinate system, found the byte 0xC3."},
    {"GEOGCS", 1026, "Line 1, column 1: expected '[' behind the keyword 'GEOGCS'."},
    {"GEOGCS[", 1026, "Line 1, column 8: expected a value (a number, a text in double quotes or a keyword), found the end of the text."},
    {"GEOGCS[\"x\",]", 1026, "Line 1, column 12: expected a value (a number, a text in double quotes or a keyword), found ']'."},
    {"GEOGCS[\"x\"", 1026, "Line 1, column 11: expected ',' or ']', found the end of the text."},
    {"GEOGCS(\"x\"]", 1026, "Line 1, column 11: expected ',' or ')', found ']'."},
    {"GEOGCS[\"x\"] y", 1026, "Line 1, column 13: expected the end of the text, found 'y'."},
    {"GEOGCS[\n  \"x]", 1026, "Line 2, column 3: expected '\"' at the end of the text that begins here."},
    {"GEOGCS[\"x\",1e999]", 1026, "Line 1, column 12: expected a number that a double can hold."},
    {"GEOGCS[\"x\",-]", 1026, "Line 1, column 12: expected a number that a double can hold."},
    {"GEOGCS[5]", 1026, "Line 1, column 1: expected a name in double quotes in GEOGCS."},
    {"GEOGCS[\"x\"]", 1026, "Line 1, column 1: expected DATUM in GEOGCS."},
    {"GEOGCS[\"x\",DATUM[\"y\"],UNIT[\"d\",1]]", 1026, "Line 1, column 12: expected SPHEROID or ELLIPSOID in DATUM."},
    {"GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"z\"]],UNIT[\"d\",1]]", 1026, "Line 1, column 22: expected the major radius in SPHEROID."},
    {"GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"z\",6]],UNIT[\"d\",1]]", 1026, "Line 1, column 22: expected the inverse flattening in SPHEROID."},
    {"GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"z\",6,0]]]", 1026, "Line 1, column 1: expected UNIT in GEOGCS."},
    {"GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"z\",6,0]],UNIT[\"d\",0]]", 1026, "Line 1, column 41: expected a size from 1e-12 to 1e12 in UNIT."},
    {"GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"z\",6,0],TOWGS84[1,2]],UNIT[\"d\",1]]", 1026, "Line 1, column 40: expected three or seven numbers in TOWGS84."},
    {"GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"z\",-6,0]],UNIT[\"d\",1]]", 1032, "Line 1, column 1: expected an ellipsoid with a radius above 0 and a flattening from 0 to 1."},
    {"GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"z\",6,0.5]],UNIT[\"d\",1]]", 1032, "Line 1, column 1: expected an ellipsoid with a radius above 0 and a flattening from 0 to 1."},
    {"PROJCS[\"x\"]", 1026, "Line 1, column 1: expected GEOGCS or BASEGEOGCRS in PROJCS."},
    {"GEOCCS[\"x\"]", 1032, "Line 1, column 1: expected a projected or geographic system (PROJCS, GEOGCS, PROJCRS, GEOGCRS, BOUNDCRS), found GEOCCS."},
    {"COMPD_CS[\"x\"]", 1032, "Line 1, column 1: expected a projected or geographic system (PROJCS, GEOGCS, PROJCRS, GEOGCRS, BOUNDCRS), found COMPD_CS."},
    {"BOUNDCRS[\"x\"]", 1026, "Line 1, column 1: expected SOURCECRS in BOUNDCRS."},
    {"+proj=utm +zone=61 +ellps=intl", 1026, "Line 1, column 11: expected a +zone from 1 to 60."},
    {"+proj=utm +ellps=intl", 1026, "Line 1, column 1: expected a +zone from 1 to 60."},
    {"+proj=merc", 1026, "Line 1, column 1: expected an ellipsoid (+ellps, +datum, +R or +a) in a PROJ string."},
    {"+proj=merc\n +lon_0=9d +ellps=intl", 1026, "Line 2, column 2: expected a decimal number, found '9d'."},
    {"+proj=merc +ellps=intl +ellps=intl", 1026, "Line 1, column 24: expected 'ellps' only once."},
    {"+proj=merc + +ellps=intl", 1026, "Line 1, column 12: expected '+key' or '+key=value'."},
    {"+proj=merc +ellps=intl +towgs84=1,2", 1026, "Line 1, column 24: expected three or seven numbers in +towgs84."},
    {"+proj=longlat +ellps=intl +towgs84=1e39,0,0", 1032, "Line 1, column 1: the system is not valid: Invalid X displacement parameter."},
    {"+init=epsg:4326", 1026, "Line 1, column 1: expected +proj= in a PROJ string."},
    {"+proj=merc +ellps=none", 1032, "Line 1, column 12: the system cannot be expressed: PROJ's documentation lists no such ellipsoid."},
    {"+proj=merc +datum=none", 1032, "Line 1, column 12: the system cannot be expressed: PROJ's documentation lists no such datum."},
    {"+proj=merc +ellps=intl +units=none", 1032, "Line 1, column 24: the system cannot be expressed: PROJ's documentation lists no such unit."},
    {"+proj=merc +ellps=intl +to_meter=0", 1032, "Line 1, column 24: the system cannot be expressed: its unit is not of 1e-12 to 1e12 metres."},
    {"+proj=merc +ellps=intl +nadgrids=a.gsb", 1032, "Line 1, column 24: the system cannot be expressed: its datum is converted by grids."},
    {"+proj=merc +ellps=intl +axis=wsu", 1032, "Line 1, column 24: the system cannot be expressed: x is the easting and y the northing here."},
    {"+proj=merc +ellps=intl +geoidgrids=a", 1032, "Line 1, column 24: the parameter 'geoidgrids' cannot be expressed."},
    {"+proj=merc +ellps=intl +alpha=0 +over", 1032, "Line 1, column 33: the parameter 'over' cannot be expressed."},
    {"+proj=moll +lat_0=3 +ellps=intl", 1032, "Line 1, column 12: the system cannot be expressed: the projection has no such parameter."},
    {"+proj=sterea +ellps=intl", 1032, "Line 1, column 1: the projection 'sterea' cannot be expressed: the library has the one-step form over the conformal latitude, this is the two-step form."},
    {"+proj=robin +ellps=intl", 1032, "Line 1, column 1: the projection 'robin' cannot be expressed: the library's nodes and interpolation are not those of other software, up to 8.6 km apart."},
    {"+proj=krovak +ellps=intl", 1032, "Line 1, column 1: the projection 'krovak' cannot be expressed: the library has no such method."},
    {"+proj=laea +lat_0=5 +ellps=intl", 1032, "Line 1, column 1: the projection 'Lambert Azimuthal Equal Area (Spherical)' cannot be expressed: the library has the method on the sphere of the major radius only, the text means another."},
    {"+proj=omerc +lat_0=3 +lonc=4 +alpha=30 +gamma=31 +ellps=intl", 1032, "Line 1, column 1: the projection 'Hotine Oblique Mercator (variant B)' cannot be expressed: the library rotates by the azimuth, and the rectified grid angle differs."},
    {"+proj=gnom +lat_0=-90 +R=6371000", 1032, "Line 1, column 1: the projection 'Gnomonic' cannot be expressed: the library's map of the south pole is mirrored."},
    {"+proj=aea +lat_1=30 +lat_2=-30 +ellps=intl", 1032, "Line 1, column 1: the projection 'Albers Equal Area' cannot be expressed: Sum of standard parallel parameters can't be zero in Albers projection."},
    {"+proj=aea +ellps=intl", 1032, "Line 1, column 1: expected the (first) standard parallel of the projection 'Albers Equal Area'."},
    {"+proj=merc +k=0 +ellps=intl", 1032, "Line 1, column 1: the projection 'Mercator (variant A)' cannot be expressed: the scale factor is not above 0."},
};
// clang-format on

TEST(InterchangeErrors, TellPlaceAndReason) {
  for (const BadText& row : kSyntax) {
    SCOPED_TRACE(row.text);
    EXPECT_RAISES(ORVReadText(row.text), row.code, "Interchange", row.message);
  }
}

TEST(InterchangeErrors, OfProjectedTexts) {
  const auto expect = [](const std::string& text, int code, const std::string& message) {
    SCOPED_TRACE(text);
    EXPECT_RAISES(ORVReadText(text), code, "Interchange", message);
  };
  expect(Projected("Krovak", ""), 1032,
         "Line 2, column 1: the projection 'Krovak' cannot be expressed: the library has no such method.");
  expect(
      Projected("Robinson", ""), 1032,
      "Line 2, column 1: the projection 'Robinson' cannot be expressed: the library's nodes and interpolation are "
      "not those of other software, up to 8.6 km apart.");
  expect(Projected("Mollweide", ",\nPARAMETER[\"azimuth\",3]"), 1032,
         "Line 3, column 1: the parameter 'azimuth' cannot be expressed: the projection has none such.");
  expect(Projected("Mollweide", ",PARAMETER[\"false_easting\"]"), 1026,
         "Line 2, column 25: expected the value of the parameter in PARAMETER.");
  expect(Projected("Mollweide", ",AXIS[\"X\",WEST],AXIS[\"Y\",NORTH]"), 1032,
         "Line 2, column 25: the axis 'X' points WEST: x is the easting and y the northing here.");
  expect("PROJCS[\"x\"," + kHead + ",UNIT[\"m\",1]]", 1026,
         "Line 1, column 1: expected PROJECTION in PROJCS.");
  expect("PROJCS[\"x\"," + kHead + ",PROJECTION[\"Mollweide\"]]", 1026,
         "Line 1, column 1: expected UNIT in PROJCS.");
  expect(
      Projected("Mercator_Auxiliary_Sphere", ",PARAMETER[\"Auxiliary_Sphere_Type\",3]"), 1032,
      "Line 2, column 1: the projection 'Popular Visualisation Pseudo Mercator' cannot be expressed: the only kind of "
      "auxiliary sphere is the one of the major radius (type 0).");
  std::string deep = "GEOGCS[\"x\"";
  for (int i = 0; i < 40; ++i) deep += ",A[1";
  expect(deep, 1026, "Line 1, column 136: expected brackets nested at most 32 deep.");
  expect("GEOGCS[" + std::string(300000, ' '), 1026,
         "Line 1, column 1: expected a text of at most 262144 bytes.");
  std::string many = "A[1";
  for (int i = 0; i < 20000; ++i) many += ",1";
  expect(many, 1026, "Line 1, column 40001: expected at most 20000 values in a text.");
}

class InterchangeRefusals : public test::KnownDatums {};

TEST_F(InterchangeRefusals, OfWriting) {
  ProjectionParameters p;
  p.method = ProjectionMethodTransverseMercator;
  p.ellipsoid = test::Bessel();
  const ProjectionDef projection(p);
  const auto refuses = [&](const DatumDef* datum, const ProjectionDef* map, TextDialect dialect,
                           const char* message) {
    const ORVDef system(datum, map, nullptr);
    EXPECT_RAISES(ORVWriteText(system, dialect), 1032, "Interchange", message);
  };
  const auto converted = [&](DatumMethod method, DatumTarget target) {
    DatumParameters d;
    d.method = method;
    d.target = target;
    d.ellipsoid = test::Bessel();
    d.mreType = DatumMRETypeED50;
    return DatumDef(&d, 0);
  };
  const DatumDef molodensky = converted(DatumMethodMolodensky, DatumTargetWGS84);
  const DatumDef nadcon = converted(DatumMethodNADCON, DatumTargetNAD83);
  const DatumDef equations = converted(DatumMethodMRE, DatumTargetWGS84);
  const DatumDef elsewhere = converted(DatumMethodBursaWolf, DatumTargetNAD83);
  const DatumDef shifted = converted(DatumMethodBursaWolf, DatumTargetWGS84);
  refuses(
      &molodensky, &projection, TextDialectWkt2,
      "The system cannot be written as WKT2:2019: its datum is converted by Molodensky's formulas, texts know "
      "geocentric shifts only.");
  refuses(&nadcon, &projection, TextDialectWkt1Gdal,
          "The system cannot be written as WKT1 (GDAL): its datum is converted by grids.");
  refuses(&equations, &projection, TextDialectWkt1Esri,
          "The system cannot be written as WKT1 (ESRI): its datum is converted by regression equations.");
  refuses(&elsewhere, &projection, TextDialectProj,
          "The system cannot be written as PROJ string: its datum leads elsewhere than to WGS 84.");
  ProjectionParameters other = p;
  other.ellipsoid = test::Wgs84Ellipsoid();
  const ProjectionDef mismatched(other);
  refuses(
      &shifted, &mismatched, TextDialectWkt2,
      "The system cannot be written as WKT2:2019: the ellipsoid of its projection is not that of its datum.");
  other.method = ProjectionMethodOther;
  const ProjectionDef unknown(other);
  refuses(nullptr, &unknown, TextDialectWkt2,
          "The system cannot be written as WKT2:2019: its projection is unknown.");
  refuses(nullptr, nullptr, TextDialectWkt2,
          "The system cannot be written as WKT2:2019: it has no ellipsoid.");
  ProjectionParameters tiny = p;
  tiny.Scale = 1e-13;
  const ProjectionDef unitless(tiny);
  refuses(
      nullptr, &unitless, TextDialectWkt2,
      "The projection 'Transverse Mercator' cannot be written as WKT2:2019: its Scale is that of no unit of 1e-12 to "
      "1e12 metres.");
  const ORVDef plain(&shifted, &projection, nullptr);
  EXPECT_RAISES(ORVWriteText(plain, static_cast<TextDialect>(7)), 1032, "Interchange",
                "Bad parameter to function call.");
  EXPECT_EQ(ORVTextDialectName(static_cast<TextDialect>(7)), nullptr);
}

// ---- hostile texts ---------------------------------------------------------------------------------------

class InterchangeMutations : public test::ShippedCatalogue {};

// Ten thousand changed texts: each is a system that passes its check, or a failure that names its place.
TEST_F(InterchangeMutations, EndAsASystemOrWithAPlace) {
  std::vector<std::string> seeds;
  for (const char* const token :
       {"EPSG:31467", "EPSG:4326", "EPSG:3031", "ORV:2056", "ORV:27572", "EPSG:2964", "ORV:4807"}) {
    for (const TextDialect dialect :
         {TextDialectWkt2, TextDialectWkt1Gdal, TextDialectWkt1Esri, TextDialectProj}) {
      try {
        seeds.push_back(ORVWriteText(System(token), dialect));
      } catch (const shr::Exception&) {
        continue;  // grads have no PROJ string
      }
    }
  }
  ASSERT_EQ(seeds.size(), 27u);
  std::mt19937 random(20260711);
  const auto pick = [&random](size_t count) { return random() % count; };
  int systems = 0, failures = 0;
  for (int i = 0; i < 10000; ++i) {
    std::string text = seeds[pick(seeds.size())];
    for (size_t changes = 1 + pick(3); changes > 0; --changes) {
      const size_t at = pick(text.size());
      switch (pick(6)) {
        case 0:
          text.resize(at + 1);  // cut off
          break;
        case 1:
          text[at] = static_cast<char>(random());
          break;
        case 2:
          text.erase(at, 1 + pick(12));
          break;
        case 3:
          text.insert(at, seeds[pick(seeds.size())].substr(0, pick(40)));
          break;
        case 4:
          text[at] = "[](),\"0129.-eE+= "[pick(17)];
          break;
        default:
          text.insert(at, text.substr(pick(text.size()), pick(60)));
      }
      if (text.empty()) text = "x";
    }
    try {
      const std::unique_ptr<ORVDef> system = ORVReadText(text);
      ASSERT_TRUE(system->Check()) << text;
      ++systems;
    } catch (const shr::Exception& e) {
      ++failures;
      const std::string message = e.Message();
      int line = 0, column = 0, used = 0;
      ASSERT_EQ(std::sscanf(message.c_str(), "Line %d, column %d: %n", &line, &column, &used), 2)
          << message << "\n"
          << text;
      ASSERT_GT(used, 0);
      ASSERT_TRUE(line >= 1 && column >= 1 && column <= static_cast<int>(text.size()) + 1) << message;
      ASSERT_TRUE(e.Code() == 1026 || e.Code() == 1032) << message;
      ASSERT_TRUE(message.find("expected ") != std::string::npos ||
                  message.find("cannot be expressed") != std::string::npos ||
                  message.find("points ") != std::string::npos ||
                  message.find("not valid: ") != std::string::npos)
          << message << "\n"
          << text;
    }
  }
  std::printf("%d systems, %d failures\n", systems, failures);
  EXPECT_GT(systems, 500);
  EXPECT_GT(failures, 4000);
}

}  // namespace
}  // namespace orv
