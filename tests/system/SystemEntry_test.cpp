// The entries of the systems file, through the protected operations that the list of systems calls.
#include <gtest/gtest.h>

#include <string>

#include "orv/core/ConfigFile.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/Generators.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

template <class Base>
struct Open : Base {
  Open() = default;
  explicit Open(const Base& system) : Base(system) {}
  using Base::ReadConfigEntry;
  using Base::WriteConfigEntry;
};
using OpenOrv = Open<ORVDef>;
using OpenUcs = Open<UCSDef>;

class SystemEntry : public test::KnownDatums {
 protected:
  void SetUp() override {
    KnownDatums::SetUp();
    ORVKnownEllipsoidsList.Flush();
    ORVKnownEllipsoidsList.Add(test::Bessel());
  }
  void TearDown() override {
    ORVKnownEllipsoidsList.Flush();
    KnownDatums::TearDown();
  }

  /// Reads the body of an entry, which stands behind its opening brace in a file's second line.
  template <class System>
  void Read(System& system, const std::string& body) {
    m_Path = m_Folder.Write("system.ocf", "; first line\n{ " + body);
    ConfigFileReader reader;
    reader.Open(m_Path.c_str());
    reader.Next();
    system.ReadConfigEntry(&reader);
  }
  OpenOrv Orv(const std::string& body) {
    OpenOrv system;
    Read(system, body + "}");
    return system;
  }
  template <class System>
  std::string Written(const System& system) {
    ConfigFileWriter writer;
    writer.Open(m_Folder.Path("out.ocf").c_str());
    Open<System>(system).WriteConfigEntry(&writer);
    writer.Close();
    return m_Folder.Read("out.ocf");
  }
  std::string At(int line, const std::string& text) const {
    return m_Path + "(" + std::to_string(line) + "):  " + text;
  }

  test::TempFolder m_Folder;
  std::string m_Path;
};

// ---- reading ---------------------------------------------------------------------------------------------

TEST_F(SystemEntry, ReadsTextsAndCodesInAnyCaseAndOrder) {
  const OpenOrv system =
      Orv("COMMENT=\"c\" posc=4326\nUsgs = 12 name='n' token=T legacyname=\"old one\" unknown=7\n");
  EXPECT_STREQ(system.GetComment(), "c");
  EXPECT_EQ(system.GetPOSC(), 4326);
  EXPECT_EQ(system.GetUSGS(), 12);
  EXPECT_STREQ(system.GetName(), "n");
  EXPECT_STREQ(system.GetToken(), "T");
  EXPECT_STREQ(system.GetLegacyName(), "old one");
  EXPECT_EQ(system.GetDatum(), nullptr);
  EXPECT_EQ(system.GetProjection(), nullptr);
  EXPECT_EQ(system.GetWarp(), nullptr);
}

// Keys ahead are told apart by their first characters, then by the others: none of these is a key.
TEST_F(SystemEntry, KeysThatBeginOrEndAsOthersDoAreUnknown) {
  const OpenOrv system = Orv(
      "token=T\n   tokens=x\n   nam=x\n   projtypes=x\n   ellipsoi=x\n   ellipsoids=x\n   ellipsoid_=x\n"
      "   ellipsoid_radii=x\n   datum_=x\n   datum_ellipsoid_tokens=x\n   poscs=1\n   name=N\n   warp_coef=x");
  EXPECT_STREQ(system.GetToken(), "T");
  EXPECT_STREQ(system.GetName(), "N");
  EXPECT_EQ(system.GetPOSC(), 0);
  EXPECT_EQ(system.GetDatum(), nullptr);
  EXPECT_EQ(system.GetProjection(), nullptr);
  EXPECT_EQ(system.GetWarp(), nullptr);
  EXPECT_EQ(Orv("posc=7").GetPOSC(), 7);
}

TEST_F(SystemEntry, StopsAtItsClosingBrace) {
  OpenOrv system;
  Read(system, "token=A } { token=B }");
  EXPECT_STREQ(system.GetToken(), "A");
}

TEST_F(SystemEntry, FindsADatumByTokenNameOrOldName) {
  DatumDef nad27 = test::Wgs84Datum();
  nad27.SetToken("NAS");
  nad27.SetName("North American Datum 1927");
  nad27.SetSpecial(DatumTargetNAD27);
  ORVKnownDatumsList.Add(nad27, 0);
  DatumDef nad83 = nad27;
  nad83.SetToken("NAR");
  nad83.SetName("North American Datum 1983");
  nad83.SetSpecial(DatumTargetNAD83);
  ORVKnownDatumsList.Add(nad83, 0);
  EXPECT_STREQ(Orv("datum=wgs84").GetDatum()->GetToken(), "WGS84");
  EXPECT_STREQ(Orv("datum=\"world geodetic system 1984\"").GetDatum()->GetToken(), "WGS84");
  EXPECT_STREQ(Orv("datum=nad27").GetDatum()->GetToken(), "NAS");
  EXPECT_STREQ(Orv("datum=NAD83").GetDatum()->GetToken(), "NAR");

  // No datum has the token WGS84: the old name finds it by its long one.
  DatumDef renamed = test::Wgs84Datum();
  renamed.SetToken("WGE");
  ORVKnownDatumsList.Flush();
  ORVKnownDatumsList.Add(renamed, 0);
  EXPECT_STREQ(Orv("datum=WGS84").GetDatum()->GetToken(), "WGE");
}

TEST_F(SystemEntry, LaterDatumKeysChangeTheCopy) {
  const OpenOrv system = Orv("datum=WGS84 datum_token=MINE datum_pmshift=2.5");
  EXPECT_STREQ(system.GetDatum()->GetToken(), "MINE");
  EXPECT_STREQ(system.GetDatum()->GetName(), "World Geodetic System 1984");
  EXPECT_EQ(system.GetDatum()->GetParameter(DatumParameterIDPMShift), 2.5);
  EXPECT_EQ(system.GetDatum()->GetPOSCNumber(), 6326);
  // A datum found later replaces everything before it.
  EXPECT_STREQ(Orv("datum_token=MINE datum=WGS84").GetDatum()->GetToken(), "WGS84");
}

TEST_F(SystemEntry, ReadsAnInlineDatum) {
  const OpenOrv system = Orv(
      "datum_token=D datum_name=\"The datum\" datum_method=Bursa datum_target=WGS84 datum_special=NAD83\n"
      "datum_ellipsoid_radius=6378388 datum_ellipsoid_flat=0.00336700336700337 datum_ellipsoid_name=Int\n"
      "datum_ellipsoid_token=I datum_dx=-87 datum_dy=-98.5 datum_dz=121 datum_rx=0.1 datum_ry=0.2 datum_rz=0.3\n"
      "datum_k=1.5 datum_pmshift=2 datum_prvi=TRUE datum_inverse=true datum_mretype=ed50");
  const DatumDef& datum = *system.GetDatum();
  EXPECT_STREQ(datum.GetToken(), "D");
  EXPECT_STREQ(datum.GetName(), "The datum");
  EXPECT_EQ(datum.GetMethod(), DatumMethodBursaWolf);
  EXPECT_EQ(datum.GetTarget(), DatumTargetWGS84);
  EXPECT_EQ(datum.GetSpecial(), DatumTargetNAD83);
  EXPECT_EQ(datum.GetEllipsoid()->GetMajorRadius(), 6378388.0);
  EXPECT_EQ(datum.GetEllipsoid()->GetFlattening(), 0.00336700336700337);
  EXPECT_STREQ(datum.GetEllipsoid()->GetToken(), "I");
  EXPECT_STREQ(datum.GetEllipsoid()->GetName(), "Int");
  DatumParameters p;
  datum.GetParameters(p);
  EXPECT_EQ(p.dx, -87.0);
  EXPECT_EQ(p.dy, -98.5);
  EXPECT_EQ(p.dz, 121.0);
  EXPECT_EQ(p.rx, 0.1);
  EXPECT_EQ(p.ry, 0.2);
  EXPECT_EQ(p.rz, 0.3);
  EXPECT_EQ(p.k, 1.5);
  EXPECT_EQ(p.pmShift, 2.0);
  EXPECT_TRUE(p.nadconPrvi);
  EXPECT_TRUE(p.inverse);
  EXPECT_EQ(p.mreType, DatumMRETypeED50);
  EXPECT_STREQ(Orv("datum_method=None datum_target=WGS84 datum_ellipsoid=bessel")
                   .GetDatum()
                   ->GetEllipsoid()
                   ->GetName(),
               "Bessel 1841");
}

TEST_F(SystemEntry, ReadsAProjection) {
  const OpenOrv system = Orv(
      "projtype=hotine ellipsoid=BESSEL lon0=1 lon1=-2d30m lon2=3d15'36\"W lat0=4.5 lat1=5d30m36sS lat2=6\n"
      "kscale=0.9996 scale=2 xorg=500000 yorg=-7 alpha=10d30m busealpha=true brotate=True buoffset=true\n"
      "bnowrap=true bsouth=yes");
  ProjectionParameters p;
  system.GetProjection()->GetParameters(p);
  EXPECT_EQ(p.method, ProjectionMethodHotine);
  EXPECT_STREQ(p.ellipsoid.GetToken(), "BESSEL");
  EXPECT_EQ(p.ellipsoid.GetMajorRadius(), 6377397.155);
  EXPECT_EQ(p.Lon0, 1.0);
  EXPECT_EQ(p.Lon1, -2.5);
  EXPECT_DOUBLE_EQ(p.Lon2, -3.26);
  EXPECT_EQ(p.Lat0, 4.5);
  EXPECT_DOUBLE_EQ(p.Lat1, -5.51);
  EXPECT_EQ(p.Lat2, 6.0);
  EXPECT_EQ(p.K0, 0.9996);
  EXPECT_EQ(p.Scale, 2.0);
  EXPECT_EQ(p.xOrg, 500000.0);
  EXPECT_EQ(p.yOrg, -7.0);
  EXPECT_EQ(p.Alpha, 10.5);
  EXPECT_TRUE(p.bUseAlpha);
  EXPECT_TRUE(p.bRotate);
  EXPECT_TRUE(p.bUOffset);
  EXPECT_TRUE(p.bNoWrap);
  EXPECT_FALSE(p.bSouth);  // only "true" sets a flag
}

TEST_F(SystemEntry, ProjectionsHaveThreeKeywordsAndNoDefaults) {
  for (const char* const key : {"projtype", "projmethod", "PROJ"}) {
    // Lat1 of the Lambert's defaults would be 33; here nothing but the keys counts, in any order.
    const OpenOrv system =
        Orv(std::string("lat2=20 ") + key + "=\"Lambert Conformal Conic\" lat1=10 ellipsoid_radius=6371000");
    ProjectionParameters p;
    system.GetProjection()->GetParameters(p);
    EXPECT_EQ(p.method, ProjectionMethodLambert);
    EXPECT_EQ(p.Lat1, 10.0);
    EXPECT_EQ(p.Lat2, 20.0);
    EXPECT_EQ(p.ellipsoid.GetMajorRadius(), 6371000.0);
    EXPECT_EQ(p.ellipsoid.GetFlattening(), 0.0);
  }
}

TEST_F(SystemEntry, ReadsWarps) {
  const OpenOrv coefficients = Orv("warp_coeff=1 2 3 4 5 6.5 token=T");
  EXPECT_EQ(coefficients.GetWarp()->GetMethod(), WarpMethodAffineWithCoefficients);
  double c[6];
  coefficients.GetWarp()->GetCoefficients(c);
  EXPECT_EQ(c[0], 1.0);
  EXPECT_EQ(c[5], 6.5);
  EXPECT_STREQ(coefficients.GetToken(), "T");

  const OpenOrv points = Orv("warp_pt=1 2 3 4 warp_coeff=1 2 3 4 5 6 warp_method=helmert WARP_PT=-5 6 7 8");
  const WarpDef& warp = *points.GetWarp();
  EXPECT_EQ(warp.GetMethod(), WarpMethodHelmert);  // the coefficients come first and do not win
  ASSERT_EQ(warp.NumControlPoints(false), 2u);
  ASSERT_EQ(warp.NumControlPoints(true), 2u);
  EXPECT_EQ(warp.EnumSourcePoint(1)->x, -5.0);
  EXPECT_EQ(warp.EnumSourcePoint(1)->y, 6.0);
  EXPECT_EQ(warp.EnumDestinationPoint(0)->x, 3.0);
  EXPECT_EQ(warp.EnumDestinationPoint(0)->y, 4.0);
}

TEST_F(SystemEntry, ReadsALocalSystem) {
  OpenUcs system;
  Read(system, "token=U NAME=\"Local\" scale=2.5 xorg=-1 yorg=3 comment=ignored }");
  EXPECT_STREQ(system.GetToken(), "U");
  EXPECT_STREQ(system.GetName(), "Local");
  EXPECT_EQ(system.GetScale(), 2.5);
  double x = 0.0, y = 0.0;
  system.GetOrigin(x, y);
  EXPECT_EQ(x, -1.0);
  EXPECT_EQ(y, 3.0);
  EXPECT_STREQ(system.GetComment(), "");
}

TEST_F(SystemEntry, Messages) {
  const struct {
    const char* body;
    int line;
    const char* text;
  } rows[] = {
      {"token=A\nname", 3, "Unexpected end of file.\n"},
      {"", 2, "Unexpected end of file.\n"},
      {"token=", 2, "Unexpected end of file.\n"},
      {"token\nA }", 3, "Expected '=' between parameter and value.\n"},  // the line of the value
      {"datum=Nowhere }", 2, "Unknown datum 'Nowhere'\n"},
      {"datum=NAD27 }", 2, "Unknown datum 'NAD27'\n"},  // not in this list
      {"datum_method=magic }", 2, "Unknown datum method 'magic'\n"},
      {"datum_method=Unknown }", 2, "Unknown datum method 'Unknown'\n"},
      {"datum_target=mars }", 2, "Unknown target 'mars'\n"},
      {"datum_target=NONE }", 2, "Unknown target 'NONE'\n"},
      {"datum_special=100%s }", 2, "Unknown special token for datum '100'\n"},
      {"datum_mretype=X }", 2, "Unknown MRE type code 'X'\n"},
      {"datum_ellipsoid=E }", 2, "Unknown ellipsoid token 'E'\n"},
      {"ellipsoid=\"%d%s\" }", 2, "Unknown ellipsoid token '%d%s'\n"},
      {"warp_method=w }", 2, "Unknown warp method 'w'\n"},
      {"warp_coeff=1 2 3 4 5", 2, "Unexpected end of file.\n"},
      {"proj=flat }", 2, "Unrecognized projection 'flat'\n"},
      {"projtype=Unknown }", 2, "Unrecognized projection 'Unknown'\n"},
      // What a part rejects.
      {"\nellipsoid_radius=0 }", 3, "Ellipsoid radius must be greater than zero.\n"},
      {"datum_ellipsoid_flat=-1 }", 2, "Ellipsoid radius must be positive.\n"},
      {"datum_method=Mol\n}", 3, "Datum parameters not valid.\n"},
      {"projtype=UTM }", 2, "Projection parameters not valid (check failed on parameter 'Ellipsoid').\n"},
      {"lat0=4 }", 2, "Projection parameters not valid (check failed on parameter 'Projection Method').\n"},
      {"warp_pt=1 2 3 4 }", 2, "Warp parameters not valid.\n"},
  };
  for (const auto& row : rows) {
    OpenOrv system;
    // The path is the same for every row.
    m_Path = m_Folder.Path("system.ocf");
    EXPECT_RAISES(Read(system, row.body), 1029, "ORVDef", At(row.line, row.text)) << row.body;
  }
  OpenUcs local;
  EXPECT_RAISES(Read(local, "token=A"), 1029, "UCSDef", At(2, "Unexpected end of file.\n"));
  EXPECT_RAISES(Read(local, "token A }"), 1029, "UCSDef",
                At(2, "Expected '=' between parameter and value.\n"));
  // Deliberate: the setter's own failure, without file and line.
  EXPECT_RAISES(Read(local, "scale=-1 }"), 1032, "UCSDef", "Scale parameter must not be negative.");
}

// ---- writing ---------------------------------------------------------------------------------------------

TEST_F(SystemEntry, WritesAnEmptySystem) { EXPECT_EQ(Written(ORVDef()), "   token=\"\"\n   name=\"\"\n}\n"); }

TEST_F(SystemEntry, WritesALocalSystem) {
  UCSDef system(0.5, 100.0, -2.0, nullptr);
  system.SetToken("U");
  system.SetName("A \"b\" 100%");
  EXPECT_EQ(Written(system),
            "   type=UNREF\n   token=\"U\"\n   name=\"A \"b\" 100%\"\n   scale=0.50000000000000000000\n"
            "   xorg=100.00000000000000000000\n   yorg=-2.00000000000000000000\n}\n");
}

TEST_F(SystemEntry, WritesPartsInTheirOrder) {
  ProjectionParameters p;
  p.method = ProjectionMethodUTM;
  p.ellipsoid = test::Bessel();
  p.Lon0 = -3.0;
  p.bSouth = true;
  p.K0 = 0.5;
  const ProjectionDef projection(p);
  const DatumDef datum = test::MolodenskyDatum();
  WarpDef warp;
  warp.SetMethod(WarpMethodDisplacement);
  warp.AddSourcePoint(1.0, 2.0);
  warp.AddDestinationPoint(-12345678901.5, 4.0);
  ORVDef system(&datum, &projection, &warp);
  system.SetToken("T");
  system.SetName("N");
  system.SetLegacyName("L");
  system.SetComment("C");
  system.SetPOSC(5);
  system.SetUSGS(-6);
  EXPECT_EQ(
      Written(system),
      "   legacyname=\"L\"\n   token=\"T\"\n   name=\"N\"\n"
      "   warp_method=\"Displacement\"\n"
      "   warp_pt=        1.0000000000         2.0000000000 -12345678901.5000000000         4.0000000000\n"
      "   datum_method=\"Molodensky\"\n   datum_target=\"WGS84\"\n"
      "   datum_ellipsoid_token=\"INTL\"\n   datum_ellipsoid_name=\"International 1924\"\n"
      "   datum_ellipsoid_radius=6378388.0000\n   datum_ellipsoid_flat=0.0033670033670033669\n"
      "   datum_pmshift=    0.000000000000000000\n   datum_dx=  -87.000000000000000000\n"
      "   datum_dy=  -98.000000000000000000\n   datum_dz= -121.000000000000000000\n"
      "   projtype=\"Universal Transverse Mercator (UTM)\"\n   ellipsoid=\"BESSEL\"\n"
      "   scale=1.00000000000000000000\n   lon0=-3.00000000000000000000\n   lat0=0.00000000000000000000\n"
      "   kscale=0.50000000000000000000\n   bsouth=true\n"
      "   posc=5\n   usgs=-6\n   comment=\"C\"\n}\n");
}

TEST_F(SystemEntry, WritesAKnownDatumByReference) {
  DatumDef datum = test::Wgs84Datum();
  datum.SetComment("not part of it");
  EXPECT_EQ(Written(ORVDef(&datum, nullptr, nullptr)),
            "   token=\"\"\n   name=\"\"\n   datum=\"WGS84\"\n}\n");
  datum.SetParameter(DatumParameterIDPMShift, 1.0);
  const std::string text = Written(ORVDef(&datum, nullptr, nullptr));
  EXPECT_EQ(text.find("datum=\""), std::string::npos);
  EXPECT_NE(text.find("datum_token=\"WGS84\"\n"), std::string::npos);
  EXPECT_NE(text.find("datum_special=\"WGS84\"\n"), std::string::npos);
}

TEST_F(SystemEntry, WritesCoefficientsSeparated) {
  WarpDef warp;
  warp.SetCoefficients(-12345678901.5, -12345678901.5, 3.0, 4.0, 5.0, 6.0);
  const std::string text = Written(ORVDef(nullptr, nullptr, &warp));
  EXPECT_NE(text.find("   warp_method=\"Affine With Coefficients\"\n"
                      "   warp_coeff=-12345678901.5000000000 -12345678901.5000000000         3.0000000000"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("warp_pt"), std::string::npos);
}

TEST_F(SystemEntry, WhatIsWrittenReadsBack) {
  // Numbers of few digits, since the file keeps four to twenty decimals.
  EXPECT_TRUE(test::Holds(
      [this] {
        const auto coarse = [](double low, double high) {
          return test::IntIn(static_cast<int>(low * 8), static_cast<int>(high * 8)) / 8.0;
        };
        ProjectionParameters p;
        p.method = static_cast<ProjectionMethod>(test::IntIn(1, 28));
        p.ellipsoid =
            test::AnyBool() ? test::Bessel() : EllipsoidDef(6378388.0, 1.0 / 256.0, "X", "Y", "", 0);
        p.Scale = coarse(1, 9);
        for (double* const value : {&p.xOrg, &p.yOrg}) *value = coarse(-1e6, 1e6);
        for (double* const value : {&p.Lon0, &p.Lon1, &p.Lon2, &p.Lat0}) *value = coarse(-80, 80);
        p.Lat1 = coarse(1, 40);
        p.Lat2 = coarse(41, 80);
        p.K0 = coarse(1, 3);
        p.Alpha = coarse(1, 300);
        test::SetFlags(p);
        const ProjectionDef projection(p);
        DatumParameters d;
        d.method = static_cast<DatumMethod>(test::IntIn(1, 7));
        d.target = static_cast<DatumTarget>(test::IntIn(1, 6));
        d.ellipsoid = p.ellipsoid;
        for (double* const value : {&d.pmShift, &d.dx, &d.dy, &d.dz, &d.rx, &d.ry, &d.rz, &d.k})
          *value = coarse(-99, 99);
        d.mreType = static_cast<DatumMREType>(test::IntIn(1, 9));
        d.nadconPrvi = test::AnyBool();
        DatumDef datum(&d, 0);
        datum.SetName("some datum");
        datum.SetSpecial(static_cast<DatumTarget>(test::IntIn(0, 6)));
        WarpDef warp;
        warp.SetMethod(WarpMethodAffinePolynomial);
        test::AddPoints(warp, 3, 3, [&] { return coarse(-1e4, 1e4); });
        const bool hasWarp = test::AnyBool();
        ORVDef system(&datum, &projection, hasWarp ? &warp : nullptr);
        system.SetName("name; {=}");
        system.SetToken("token");
        system.SetComment("it's");
        system.SetPOSC(test::AnyInt());
        system.SetUSGS(test::AnyInt());

        OpenOrv back;
        Read(back, Written(system));
        std::string why;
        ORV_HOLDS(system.Compare(back, false, &why));
        ORV_HOLDS(back.GetPOSC() == system.GetPOSC());
        ORV_HOLDS(back.GetUSGS() == system.GetUSGS());
        ORV_HOLDS(std::string(back.GetName()) == system.GetName());
        ORV_HOLDS(std::string(back.GetComment()) == system.GetComment());
        ORV_HOLDS(Written(static_cast<const ORVDef&>(back)) == Written(system));
        ORV_HOLDS(back.GetDatum()->GetSpecial() == datum.GetSpecial());
      },
      100));
}

TEST_F(SystemEntry, AnAngleThatIsNoneIsAPlainNumber) {
  const OpenOrv system = Orv("proj=Mercator ellipsoid=BESSEL lon0=1e1 lat0=2d30mS");
  EXPECT_EQ(system.GetProjection()->GetParameter(ProjectionParameterIDLon0), 10.0);
  EXPECT_EQ(system.GetProjection()->GetParameter(ProjectionParameterIDLat0), -2.5);
}

TEST_F(SystemEntry, ADatumWithoutMethodIsWrittenByItsTexts) {  // values of 0 could not be read again
  DatumDef bare;
  bare.SetToken("D");
  bare.SetName("N");
  EXPECT_EQ(Written(ORVDef(&bare, nullptr, nullptr)),
            "   token=\"\"\n   name=\"\"\n   datum_token=\"D\"\n   datum_name=\"N\"\n}\n");
}

TEST_F(SystemEntry, AnInverseFlagMakesADatumDifferFromTheKnownOneAndIsNotWritten) {
  DatumDef turned = test::Wgs84Datum();
  turned.SetParameter(DatumParameterIDInverse, 1);
  const std::string text = Written(ORVDef(&turned, nullptr, nullptr));
  EXPECT_EQ(text.find("datum=\""), std::string::npos) << text;
  EXPECT_EQ(text.find("datum_inverse"), std::string::npos) << "deliberate: never written";
}

}  // namespace
}  // namespace orv
