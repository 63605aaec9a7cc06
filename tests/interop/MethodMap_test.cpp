// The table of methods: what holds of all its rows.
#include "orv/interop/internal/MethodMap.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

#include "orv/interop/internal/Conformal.h"

namespace orv::internal {
namespace {

constexpr Form kLastForm = Form::Utm;

TEST(MethodMap, EveryFormHasARowOfItsOwn) {
  for (int form = 0; form <= static_cast<int>(kLastForm); ++form) {
    EXPECT_EQ(static_cast<int>(RowOfForm(static_cast<Form>(form)).form), form);
  }
}

TEST(MethodMap, NamesAndCodesLeadBackToTheirRow) {
  std::set<int> codes;
  for (int form = 0; form <= static_cast<int>(kLastForm); ++form) {
    const MethodRow& row = RowOfForm(static_cast<Form>(form));
    SCOPED_TRACE(row.wkt2 ? row.wkt2 : row.proj ? row.proj : row.gdal);
    if (row.epsg > 0) {
      EXPECT_TRUE(codes.insert(row.epsg).second);
      EXPECT_EQ(FindMethod("", row.epsg), &row);
    }
    if (row.wkt2) {
      EXPECT_EQ(FindMethod(row.wkt2, 0), &row);
      EXPECT_EQ(WhyNotMethod(row.wkt2, row.epsg), nullptr);
    }
    if (row.gdal) {
      EXPECT_EQ(FindMethod(row.gdal, 0), &row);
    }
    if (row.proj) {
      EXPECT_NE(FindProjMethod(row.proj), nullptr);
    }
    std::set<int> parameters;
    for (const ParameterRow& parameter : row) {
      EXPECT_TRUE(parameters.insert(static_cast<int>(parameter.par)).second || row.proj)
          << ParName(parameter.par);
      if (parameter.wkt2) {
        EXPECT_EQ(FindParameter(row, parameter.wkt2, parameter.epsg), &parameter);
      }
      if (parameter.gdal) {
        EXPECT_EQ(FindParameter(row, parameter.gdal, 0)->par, parameter.par);
      }
      if (parameter.esri) {
        EXPECT_EQ(FindParameter(row, parameter.esri, 0)->par, parameter.par);
      }
    }
  }
  // ESRI's one name leads to the form that takes one parallel or two, with a factor or without.
  EXPECT_EQ(FindMethod("Lambert_Conformal_Conic", 0)->form, Form::LambertScaled);
  EXPECT_EQ(FindMethod("lambert conic conformal 1sp", 0)->form, Form::Lambert1);
  EXPECT_EQ(FindMethod("Gauss_Kruger", 0)->form, Form::TransverseMercator);
  EXPECT_EQ(FindMethod("no such", 0), nullptr);
  EXPECT_TRUE(IsOtherMethod(RowOfForm(Form::MercatorA), "Transverse Mercator"));
  EXPECT_FALSE(IsOtherMethod(RowOfForm(Form::Lambert2), "Lambert_Conformal_Conic"));
  EXPECT_FALSE(IsOtherMethod(RowOfForm(Form::Lambert2), "no such"));
}

// A key of a PROJ string is one parameter in all the forms of its "+proj=", and none of others.
TEST(MethodMap, KeysOfProjBelongToTheirMethods) {
  for (int form = 0; form <= static_cast<int>(kLastForm); ++form) {
    const MethodRow& row = RowOfForm(static_cast<Form>(form));
    if (!row.proj) continue;
    SCOPED_TRACE(row.proj);
    for (const ParameterRow& parameter : row) {
      if (!parameter.proj) continue;
      EXPECT_EQ(FindProjParameter(row, parameter.proj), &parameter);
      EXPECT_EQ(FindProjParameter(std::string(row.proj), parameter.proj)->par, parameter.par)
          << parameter.proj;
    }
  }
  const std::string hotine = "omerc", conic = "lcc";
  EXPECT_EQ(FindProjParameter(hotine, "lonc")->par, Par::Lon0);
  EXPECT_EQ(FindProjParameter(hotine, "lon_0"), nullptr);
  EXPECT_EQ(FindProjParameter(conic, "k_0")->par, Par::K);
  EXPECT_EQ(FindProjParameter(conic, "lat_ts"), nullptr);
  EXPECT_EQ(FindProjParameter("none", "lat_0"), nullptr);
}

// What a text may leave out, by name in WKT2 or in the dialect that has it: anything else but false origins it needs.
TEST(MethodMap, FewParametersMayBeLeftOut) {
  std::set<std::pair<Form, Par>> optional;
  for (int form = 0; form <= static_cast<int>(kLastForm); ++form) {
    for (const ParameterRow& parameter : RowOfForm(static_cast<Form>(form))) {
      if (parameter.isOptional) optional.emplace(static_cast<Form>(form), parameter.par);
    }
  }
  EXPECT_EQ(optional, (std::set<std::pair<Form, Par>>{{Form::Lambert1, Par::Lat1},
                                                      {Form::MercatorA, Par::Lat0},
                                                      {Form::MercatorB, Par::Lat0},
                                                      {Form::PseudoMercator, Par::Lat0},
                                                      {Form::PseudoMercator, Par::Lat1},
                                                      {Form::PseudoMercator, Par::Zero},
                                                      {Form::PolarB, Par::Lat0},
                                                      {Form::PolarOgc, Par::K},
                                                      {Form::Cassini, Par::K},
                                                      {Form::HotineA, Par::Gamma},
                                                      {Form::HotineB, Par::Gamma},
                                                      {Form::SwissOblique, Par::K},
                                                      {Form::EquidistantCylindrical, Par::Lat0},
                                                      {Form::EquidistantCylindrical, Par::Lat1},
                                                      {Form::Miller, Par::Lat0}}));
}

TEST(MethodMap, NamesAreComparedByLettersAndDigits) {
  EXPECT_TRUE(EqualBare("Transverse_Mercator", "transverse mercator"));
  EXPECT_TRUE(EqualBare("(2SP)", "2sp"));
  EXPECT_FALSE(EqualBare("a", "ab"));
  EXPECT_FALSE(EqualBare("", ""));
  EXPECT_FALSE(EqualBare("_", " "));
}

// Values of data/generate/catalogue/conversions.py, which has them in the catalogue; IOGP Guidance Note 7-2 gives the
// pole's scale of 71 degrees south as 0.972769012891835.
TEST(Conformal, ConversionsAgreeWithTheGenerator) {
  constexpr double kWgs84 = 1.0 / 298.257223563, kBessel = 1.0 / 299.1528128, kIntl = 1.0 / 297.0;
  EXPECT_NEAR(PolarScale(-71.0, kWgs84), 0.97276901289179695809, 1e-14);
  EXPECT_NEAR(PolarScale(-71.0, kWgs84), 0.972769012891835, 1e-13);
  EXPECT_NEAR(PolarParallel(0.97276901289179695809, kWgs84), 71.0, 1e-11);
  EXPECT_NEAR(MercatorLatitude(0.997, kBessel), 4.45405154589747986904, 1e-13);
  EXPECT_NEAR(MercatorScale(4.45405154589747986904, kBessel), 0.997, 1e-15);
  const TwoParallels two = LambertParallels(10.16666666666666607455, 1.0, kIntl);
  EXPECT_NEAR(two.lat1, 9.16559498007694095634, 1e-10);
  EXPECT_NEAR(two.lat2, 11.16666666666698937149, 1e-10);
  EXPECT_NEAR(two.scale, 1.00015149816883774925, 1e-14);
  const ConformalCone cone = ConformalCone::OfParallels(two.lat1, two.lat2, kIntl);
  EXPECT_NEAR(cone.Phi0() * 180.0 / M_PI, 10.16666666666666607455, 1e-10);
  EXPECT_NEAR(cone.K0() * two.scale, 1.0, 1e-14);
}

}  // namespace
}  // namespace orv::internal
