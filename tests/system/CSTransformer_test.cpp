#include "orv/system/CSTransformer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/internal/Marker.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/warp/WarpDef.h"
#include "orv/warp/WarpTransformer.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using internal::kMarker;
using shr::Vec2d;
using test::BursaWolfDatum;
using test::MolodenskyDatum;
using test::Wgs84Datum;

constexpr const char* kNotInitialized = "Transform not initialized.  API functions called in improper order.";

class CSTransformerTest : public test::KnownDatums {};

ProjectionDef TransverseMercator(double lon0) {
  ProjectionParameters p;
  p.method = ProjectionMethodTransverseMercator;
  p.ellipsoid = test::Bessel();
  p.Lon0 = lon0;
  p.K0 = 0.9996;
  p.xOrg = 500000.0;
  p.yOrg = 100.0;
  return ProjectionDef(p);
}

ProjectionDef Mercator() {
  ProjectionParameters p;
  p.method = ProjectionMethodMercator;
  p.ellipsoid = test::Wgs84Ellipsoid();
  p.Lon0 = 11.0;
  p.Lat0 = 40.0;
  p.xOrg = 1000.0;
  p.yOrg = -2000.0;
  p.Scale = 0.5;
  return ProjectionDef(p);
}

ORVDef System(const DatumDef& datum, const ProjectionDef& projection) {
  return ORVDef(&datum, &projection, nullptr);
}
ORVDef Geographic(const DatumDef& datum) { return ORVDef(&datum, nullptr, nullptr); }

WarpDef Affine() {
  WarpDef warp;
  warp.SetCoefficients(2.0, 0.5, 10.0, -0.25, 3.0, -20.0);
  return warp;
}

/// Local systems whose answers are at odds with what they hold.
class OddUcs : public UCSDef {
 public:
  bool claimWarp = false;
  bool valid = true;
  OddUcs* Clone() const override { return new OddUcs(*this); }
  bool HasWarp() const override { return claimWarp; }
  bool Check(std::string& why) const override {
    why = valid ? "" : "odd: 100% %s";
    return valid;
  }
};

/// A local system that passes its first checks and fails afterwards.  (Clones go on counting.)
class Fickle : public UCSDef {
 public:
  Fickle(const char* reason, int passes) : m_Reason(reason), m_Passes(passes) {}
  Fickle* Clone() const override { return new Fickle(*this); }
  bool Check(std::string& why) const override {
    const bool valid = m_Passes-- > 0;
    why = valid ? "" : m_Reason;
    return valid;
  }

 private:
  const char* m_Reason;
  mutable int m_Passes;
};

std::vector<Vec2d> Points() {
  return {Vec2d(500000.0, 5500100.0), Vec2d(420000.0, 5300000.0), Vec2d(650000.5, 6200000.25),
          Vec2d(350000.0, 4100000.0)};
}

void ExpectSameBits(const std::vector<Vec2d>& a, const std::vector<Vec2d>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(0, std::memcmp(&a[i], &b[i], sizeof(Vec2d)))
        << i << ": (" << a[i].x << ", " << a[i].y << ") and (" << b[i].x << ", " << b[i].y << ")";
  }
}

std::vector<Vec2d> Transformed(const CSTransformer& transformer, const std::vector<Vec2d>& in) {
  std::vector<Vec2d> out;
  transformer.Transform(in, out);
  return out;
}

// ---- state and order of calls ----------------------------------------------------------------------------

TEST_F(CSTransformerTest, BeginsEmpty) {
  const CSTransformer transformer;
  EXPECT_EQ(transformer.GetSource(), nullptr);
  EXPECT_EQ(transformer.GetDest(), nullptr);
  EXPECT_FALSE(transformer.GetSourceWarpEnabled());
  EXPECT_FALSE(transformer.GetDestWarpEnabled());
  EXPECT_FALSE(transformer.IsInitialized());
  EXPECT_FALSE(transformer.CheckUnplottableResult());
}

TEST_F(CSTransformerTest, HoldsCopiesOfBothSystems) {
  CSTransformer transformer;
  {
    ORVDef source = Geographic(Wgs84Datum());
    source.SetName("source");
    UCSDef dest(2.0, 0.0, 0.0, nullptr);
    dest.SetName("dest");
    transformer.SetSource(&source, true);
    transformer.SetDest(&dest, false);
    EXPECT_NE(transformer.GetSource(), &source);
  }
  EXPECT_STREQ(transformer.GetSource()->GetName(), "source");
  EXPECT_EQ(transformer.GetSource()->Type(), CSTypeORV);
  EXPECT_STREQ(transformer.GetDest()->GetName(), "dest");
  EXPECT_EQ(transformer.GetDest()->Type(), CSTypeUCS);
  EXPECT_TRUE(transformer.GetSourceWarpEnabled());
  EXPECT_FALSE(transformer.GetDestWarpEnabled());
  transformer.SetSource(nullptr, false);
  transformer.SetDest(nullptr, true);
  EXPECT_EQ(transformer.GetSource(), nullptr);
  EXPECT_EQ(transformer.GetDest(), nullptr);
  EXPECT_FALSE(transformer.GetSourceWarpEnabled());
  EXPECT_TRUE(transformer.GetDestWarpEnabled());
}

TEST_F(CSTransformerTest, SettersTakeTheSystemHeldItself) {
  ORVDef system = Geographic(Wgs84Datum());
  system.SetName("kept");
  CSTransformer transformer(&system, &system, false, false);
  transformer.SetSource(transformer.GetSource(), true);
  transformer.SetDest(transformer.GetDest(), true);
  EXPECT_STREQ(transformer.GetSource()->GetName(), "kept");
  EXPECT_STREQ(transformer.GetDest()->GetName(), "kept");
  EXPECT_TRUE(transformer.GetSourceWarpEnabled());
}

TEST_F(CSTransformerTest, AnInvalidSystemLeavesNoneAndTheOldWarpFlag) {
  const ORVDef good = Geographic(Wgs84Datum());
  ORVDef bad;
  bad.DecodeFromText("<{6,ORVDef[1]><{10,Projection[1]><}10,Projection[1]><}6,ORVDef[1]>", nullptr);
  OddUcs odd;
  odd.valid = false;
  CSTransformer transformer(&good, &good, true, false);
  transformer.Initialize();
  EXPECT_RAISES(transformer.SetSource(&bad, false), 1032, "CSTransformer", "Unrecognized projection method.");
  EXPECT_EQ(transformer.GetSource(), nullptr);
  EXPECT_TRUE(transformer.GetSourceWarpEnabled());
  EXPECT_FALSE(transformer.IsInitialized());
  // The reason is text, never a format.
  EXPECT_RAISES(transformer.SetDest(&odd, true), 1032, "CSTransformer", "odd: 100% %s");
  EXPECT_EQ(transformer.GetDest(), nullptr);
  EXPECT_FALSE(transformer.GetDestWarpEnabled());
  EXPECT_RAISES(CSTransformer(&bad, &good, true, true), 1032, "CSTransformer",
                "Unrecognized projection method.");
}

TEST_F(CSTransformerTest, EveryChangeNeedsInitializeAgain) {
  const ORVDef system = Geographic(Wgs84Datum());
  CSTransformer transformer(&system, &system, false, false);
  std::vector<Vec2d> points = Points();
  EXPECT_FALSE(transformer.IsInitialized());
  EXPECT_RAISES(transformer.Transform(points, points), 1027, "CSTransformer", kNotInitialized);
  EXPECT_RAISES(transformer.Transform(nullptr, nullptr, 0), 1027, "CSTransformer", kNotInitialized);
  transformer.Initialize();
  EXPECT_TRUE(transformer.IsInitialized());
  transformer.Transform(points, points);
  transformer.SetDest(&system, false);
  EXPECT_FALSE(transformer.IsInitialized());
  EXPECT_RAISES(transformer.Transform(points, points), 1027, "CSTransformer", kNotInitialized);
  transformer.Initialize();
  transformer.SetSource(&system, false);
  EXPECT_RAISES(transformer.Transform(points, points), 1027, "CSTransformer", kNotInitialized);
}

TEST_F(CSTransformerTest, FlushForgetsEverything) {
  const ORVDef system = Geographic(Wgs84Datum());
  CSTransformer transformer(&system, &system, true, true);
  transformer.Initialize();
  transformer.Flush();
  EXPECT_EQ(transformer.GetSource(), nullptr);
  EXPECT_EQ(transformer.GetDest(), nullptr);
  EXPECT_FALSE(transformer.GetSourceWarpEnabled());
  EXPECT_FALSE(transformer.GetDestWarpEnabled());
  EXPECT_FALSE(transformer.IsInitialized());
  std::string text;
  transformer.DebugDump(text, 0);
  EXPECT_EQ(text.find("Projector"), std::string::npos);
}

// ---- Initialize: messages and their order ----------------------------------------------------------------

TEST_F(CSTransformerTest, InitializeMessages) {
  const ORVDef none;
  const ORVDef geographic = Geographic(Wgs84Datum());
  const ProjectionDef other(ProjectionMethodOther);
  const ORVDef unknownProjection(nullptr, &other, nullptr);
  const DatumDef noMethod;
  const ORVDef unknownDatum = Geographic(noMethod);
  const UCSDef local;
  const DatumDef molodensky = MolodenskyDatum();
  DatumParameters strange;
  strange.method = DatumMethodNone;
  strange.target = DatumTargetNAD27;
  const DatumDef unreachable(&strange, 0);

  const struct {
    const char* what;
    const CSDef* source;
    const CSDef* dest;
    int code;
    const char* unit;
    const char* text;
  } rows[] = {
      {"no source", nullptr, nullptr, 1027, "CSTransformer",
       "Can't transform coordinates because no source coordinate system was specified."},
      {"no target", &none, nullptr, 1027, "CSTransformer",
       "Can't transform coordinates because no target coordinate system was specified."},
      {"ORV to UCS", &none, &local, 1036, "CSTransformer",
       "Can't transform coordinates because the coordinate system types are mismatched.  Transformation between "
       "global and unreferenced coordinate systems is not possible."},
      {"UCS to ORV", &local, &none, 1036, "CSTransformer",
       "Can't transform coordinates because the coordinate system types are mismatched.  Transformation between "
       "global and unreferenced coordinate systems is not possible."},
      {"unknown source projection", &unknownProjection, &none, 1039, "CSTransformer",
       "Can't transform coordinates because the source coordinate system has an unknown projection method.  Please "
       "specify valid projection parameters or use an unprojected coordinate system."},
      {"unknown target projection", &none, &unknownProjection, 1040, "CSTransformer",
       "Can't transform coordinates because the target coordinate system has an unknown projection method.  Please "
       "specify valid projection parameters or use an unprojected coordinate system."},
      {"no source datum", &none, &geographic, 1041, "CSTransformer",
       "Can't transform coordinates because the source coordinate system's datum was not specified.  Please specify "
       "a datum."},
      {"no target datum", &geographic, &none, 1042, "CSTransformer",
       "Can't transform coordinates because the target coordinate system's datum was not specified.  Please specify "
       "a datum."},
      {"unknown source datum", &unknownDatum, &geographic, 1043, "CSTransformer",
       "Can't transform coordinates because the source coordinate system has an unknown datum conversion method.  "
       "Please specify a valid datum."},
      {"unknown target datum", &geographic, &unknownDatum, 1044, "CSTransformer",
       "Can't transform coordinates because the target coordinate system has an unknown datum conversion method.  "
       "Please specify a valid datum."},
  };
  for (const auto& row : rows) {
    CSTransformer transformer(row.source, row.dest, false, false);
    EXPECT_RAISES(transformer.Initialize(), row.code, row.unit, row.text) << row.what;
    EXPECT_FALSE(transformer.IsInitialized()) << row.what;
  }

  // What a stage raises comes out as it is.
  const ORVDef from = Geographic(MolodenskyDatum()), to = Geographic(unreachable);
  CSTransformer transformer(&from, &to, false, false);
  EXPECT_RAISES(transformer.Initialize(), 1033, "DatumConverter",
                "No conversion possible between the specified datums.");
  EXPECT_FALSE(transformer.IsInitialized());
}

TEST_F(CSTransformerTest, InitializeChecksBothSystemsSourceFirst) {
  const Fickle source("source fails", 1), dest("dest fails", 1);
  const UCSDef good;
  CSTransformer transformer(&source, &dest, false, false);
  EXPECT_RAISES(transformer.Initialize(), 1032, "CSTransformer", "source fails");
  transformer.SetSource(&good, false);
  EXPECT_RAISES(transformer.Initialize(), 1032, "CSTransformer", "dest fails");
}

TEST_F(CSTransformerTest, UnknownWarpMethodsAreReportedForEitherSide) {
  // Only a derived class can claim a warp and hold none.
  OddUcs odd;
  odd.claimWarp = true;
  const UCSDef good;
  CSTransformer source(&odd, &good, true, true);
  EXPECT_RAISES(
      source.Initialize(), 1037, "CSTransformer",
      "Can't transform coordinates because the warping method in the source coordinate system is unknown.  "
      "Please specify valid warping parameters or use a coordinate system that does not have a warp.");
  CSTransformer dest(&good, &odd, true, true);
  EXPECT_RAISES(
      dest.Initialize(), 1038, "CSTransformer",
      "Can't transform coordinates because the warping method in the target coordinate system is unknown.  "
      "Please specify valid warping parameters or use a coordinate system that does not have a warp.");
  // Not asked when the warps are not enabled.
  CSTransformer disabled(&odd, &odd, false, false);
  disabled.Initialize();
  EXPECT_TRUE(disabled.IsInitialized());
}

TEST_F(CSTransformerTest, InitializeReportsInItsOrder) {
  const ProjectionDef other(ProjectionMethodOther);
  const DatumDef noMethod, wgs84 = Wgs84Datum(), molodensky = MolodenskyDatum();
  const auto code = [](const ORVDef& source, const CSDef& dest) {
    CSTransformer transformer(&source, &dest, true, true);
    try {
      transformer.Initialize();
    } catch (const shr::Exception& e) {
      return e.Code();
    }
    return 0;
  };
  // From the first to the last fault, one fewer in each row.
  EXPECT_EQ(code(ORVDef(&noMethod, &other, nullptr), UCSDef()), 1036);
  EXPECT_EQ(code(ORVDef(&noMethod, &other, nullptr), ORVDef(&wgs84, &other, nullptr)), 1039);
  EXPECT_EQ(code(ORVDef(&noMethod, nullptr, nullptr), ORVDef(&wgs84, &other, nullptr)), 1043);
  EXPECT_EQ(code(ORVDef(&wgs84, nullptr, nullptr), ORVDef(&noMethod, &other, nullptr)), 1044);
  EXPECT_EQ(code(ORVDef(&wgs84, nullptr, nullptr), ORVDef(nullptr, &other, nullptr)), 1042);
  EXPECT_EQ(code(ORVDef(nullptr, nullptr, nullptr), ORVDef(&wgs84, &other, nullptr)), 1041);
  EXPECT_EQ(code(ORVDef(&wgs84, nullptr, nullptr), ORVDef(&wgs84, &other, nullptr)), 1040);
  EXPECT_EQ(code(ORVDef(&wgs84, nullptr, nullptr), ORVDef(&wgs84, nullptr, nullptr)), 0);
}

TEST_F(CSTransformerTest, EqualDatumsWithoutMethodNeedNoConversion) {
  const DatumDef noMethod;
  const ORVDef a = Geographic(noMethod), b = Geographic(noMethod);
  CSTransformer transformer(&a, &b, false, false);
  transformer.Initialize();
  ExpectSameBits(Transformed(transformer, Points()), Points());
}

TEST_F(CSTransformerTest, AFailedInitializeAfterASuccessfulOneLeavesItUninitialized) {
  const Fickle source("source fails", 2);
  const UCSDef dest;
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();
  EXPECT_TRUE(transformer.IsInitialized());
  EXPECT_RAISES(transformer.Initialize(), 1032, "CSTransformer", "source fails");
  EXPECT_FALSE(transformer.IsInitialized());
}

// ---- Transform: arrays -----------------------------------------------------------------------------------

TEST_F(CSTransformerTest, NullArraysAreRefusedOnlyWithPoints) {
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest = Geographic(Wgs84Datum());
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();
  Vec2d point(500000.0, 5500100.0);
  EXPECT_RAISES(transformer.Transform(nullptr, &point, 1), 1032, "CSTransformer",
                "Bad parameter to function call.");
  EXPECT_RAISES(transformer.Transform(&point, nullptr, 1), 1032, "CSTransformer",
                "Bad parameter to function call.");
  transformer.Transform(nullptr, nullptr, 0);
  transformer.Transform(nullptr, &point, 0);
  EXPECT_EQ(point.x, 500000.0);
}

TEST_F(CSTransformerTest, ACountOfZeroTransformsNothing) {
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest = System(Wgs84Datum(), Mercator());
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();
  Vec2d marked(kMarker, kMarker), out(1.0, 2.0);
  transformer.Transform(&marked, &out, 1);
  EXPECT_TRUE(transformer.CheckUnplottableResult());
  out = Vec2d(1.0, 2.0);
  transformer.Transform(&marked, &out, 0);
  EXPECT_FALSE(transformer.CheckUnplottableResult());
  EXPECT_EQ(out.x, 1.0);
  const std::vector<Vec2d> none;
  std::vector<Vec2d> result(3);
  transformer.Transform(none, result);
  EXPECT_TRUE(result.empty());
}

TEST_F(CSTransformerTest, InAndOutMayBeTheSameOrOverlap) {
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest = Geographic(Wgs84Datum());
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();
  const std::vector<Vec2d> in = Points();
  const std::vector<Vec2d> expected = Transformed(transformer, in);
  ASSERT_EQ(expected.size(), in.size());

  std::vector<Vec2d> same = in;
  transformer.Transform(same, same);
  ExpectSameBits(same, expected);

  const size_t n = in.size();
  std::vector<Vec2d> room(n + 1);
  std::copy(in.begin(), in.end(), room.begin());
  transformer.Transform(room.data(), room.data() + 1, n);  // moved up by one
  ExpectSameBits(std::vector<Vec2d>(room.begin() + 1, room.end()), expected);
  std::copy(in.begin(), in.end(), room.begin() + 1);
  transformer.Transform(room.data() + 1, room.data(), n);  // moved down by one
  ExpectSameBits(std::vector<Vec2d>(room.begin(), room.end() - 1), expected);

  std::vector<Vec2d> longer(10, Vec2d(7.0, 7.0));
  transformer.Transform(in, longer);  // shrinks
  ExpectSameBits(longer, expected);
}

TEST_F(CSTransformerTest, InIsNotChanged) {
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest = Geographic(Wgs84Datum());
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();
  const std::vector<Vec2d> in = Points();
  Transformed(transformer, in);
  ExpectSameBits(in, Points());
}

// ---- Transform: stages -----------------------------------------------------------------------------------

TEST_F(CSTransformerTest, ATransformIsTheChainOfItsStages) {
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest = System(Wgs84Datum(), Mercator());
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();

  std::vector<Vec2d> chain = Points();
  Projector inverse(*source.GetProjection()), forward(*dest.GetProjection());
  const DatumDef from = BursaWolfDatum(), to = Wgs84Datum();
  DatumConverter converter(&from, &to);
  inverse.TransformInverse(chain);
  converter.Convert(chain);
  forward.TransformForward(chain);
  ExpectSameBits(Transformed(transformer, Points()), chain);
  EXPECT_FALSE(transformer.CheckUnplottableResult());

  // Point by point the same bits.
  for (size_t i = 0; i < chain.size(); ++i) {
    const std::vector<Vec2d> one = {Points()[i]};
    ExpectSameBits(Transformed(transformer, one), {chain[i]});
  }
}

TEST_F(CSTransformerTest, TransverseMercatorOnOneDatumToGeographicOnAnother) {
  // Expected: PROJ 9.1.1, cct -d 14 +proj=pipeline
  //   +step +inv +proj=tmerc +lat_0=0 +lon_0=9 +k=0.9996 +x_0=500000 +y_0=100 +a=6377397.155 +rf=299.1528128
  //   +step +proj=cart +a=6377397.155 +rf=299.1528128
  //   +step +proj=helmert +x=598.1 +y=73.7 +z=418.2 +rx=0.202 +ry=0.045 +rz=-2.455 +s=6.7
  //   +convention=position_vector +step +inv +proj=cart +a=6378137 +rf=298.257223563
  // Its projection is exact; our series may be 1 mm (1e-8 degrees) away inside 3 degrees of the meridian.
  const Vec2d expected[] = {{8.99896340056633, 49.65649875030886},
                            {7.92958967503239, 47.85141765285761},
                            {11.39961759967838, 55.92504612479992},
                            {7.31244230006174, 37.03732110186633}};
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ProjectionDef latLon(ProjectionMethodUnprojected);
  const ORVDef plain = Geographic(Wgs84Datum()), explicitly = System(Wgs84Datum(), latLon);
  for (const ORVDef* const dest : {&plain, &explicitly}) {
    CSTransformer transformer(&source, dest, false, false);
    transformer.Initialize();
    const std::vector<Vec2d> out = Transformed(transformer, Points());
    for (size_t i = 0; i < out.size(); ++i) {
      EXPECT_NEAR(out[i].x, expected[i].x, 1e-8) << i;
      EXPECT_NEAR(out[i].y, expected[i].y, 1e-8) << i;
    }
  }
}

TEST_F(CSTransformerTest, GeographicSystemsOnOneDatumNeedNoStage) {
  const ORVDef a = Geographic(Wgs84Datum());
  const ORVDef b = System(Wgs84Datum(), ProjectionDef(ProjectionMethodUnprojected));
  CSTransformer transformer(&a, &b, false, false);
  transformer.Initialize();
  // Not even normalised, and nobody looks at markers.
  const std::vector<Vec2d> in = {Vec2d(10.0, 50.0), Vec2d(725.0, 300.0), Vec2d(kMarker, 3.0)};
  ExpectSameBits(Transformed(transformer, in), in);
  EXPECT_FALSE(transformer.CheckUnplottableResult());
  std::string text;
  transformer.DebugDump(text, 0);
  EXPECT_NE(text.find("Source projector:\nNULL\nDatum converter:\nNULL\nDest projector:\nNULL\n"),
            std::string::npos);
}

TEST_F(CSTransformerTest, EqualSystemsDropBothProjectors) {
  const ORVDef a = System(BursaWolfDatum(), TransverseMercator(9.0));
  CSTransformer transformer(&a, &a, false, false);
  transformer.Initialize();
  const std::vector<Vec2d> in = {Vec2d(1e300, -1e300), Vec2d(1.0, 2.0), Vec2d(kMarker, kMarker)};
  ExpectSameBits(Transformed(transformer, in), in);
  EXPECT_FALSE(transformer.CheckUnplottableResult());
}

TEST_F(CSTransformerTest, EqualProjectionsCancelEvenWhenDatumsDiffer) {
  // Deliberate: the datum stage is then fed with projected numbers.
  const ORVDef a = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef b = System(Wgs84Datum(), TransverseMercator(9.0));
  CSTransformer transformer(&a, &b, false, false);
  transformer.Initialize();
  std::vector<Vec2d> expected = Points();
  const DatumDef from = BursaWolfDatum(), to = Wgs84Datum();
  DatumConverter converter(&from, &to);
  converter.Convert(expected);
  ExpectSameBits(Transformed(transformer, Points()), expected);

  // One meridian apart the projections stay.
  const ORVDef c = System(Wgs84Datum(), TransverseMercator(9.5));
  transformer.SetDest(&c, false);
  transformer.Initialize();
  const std::vector<Vec2d> out = Transformed(transformer, Points());
  EXPECT_GT(std::fabs(out[0].x - 500000.0), 1000.0);
  EXPECT_LT(std::fabs(out[0].x - 500000.0), 100000.0);
}

TEST_F(CSTransformerTest, TheShortCutMeasuresOnTheSource) {
  // Flattenings 0.003 and 0.001: equal seen from the first, different seen from the second.
  ProjectionDef thick = Mercator(), thin = Mercator();
  thick.SetParameter(ProjectionParameterIDEllipsoid, EllipsoidDef(6378137.0, 0.003, "", "", "", 0));
  thin.SetParameter(ProjectionParameterIDEllipsoid, EllipsoidDef(6378137.0, 0.001, "", "", "", 0));
  const ORVDef a(nullptr, &thick, nullptr), b(nullptr, &thin, nullptr);
  const std::vector<Vec2d> in = {Vec2d(100000.0, 2000000.0)};
  CSTransformer there(&a, &b, false, false), back(&b, &a, false, false);
  there.Initialize();
  back.Initialize();
  ExpectSameBits(Transformed(there, in), in);
  const std::vector<Vec2d> out = Transformed(back, in);
  EXPECT_GT(std::fabs(out[0].y - in[0].y), 100.0);
}

TEST_F(CSTransformerTest, LocalSystemsAreCarriedByTheirWarpsOnly) {
  const UCSDef a(1.0, 0.0, 0.0, nullptr), b(2.0, 100.0, 200.0, nullptr);
  CSTransformer transformer(&a, &b, true, true);
  transformer.Initialize();
  ExpectSameBits(Transformed(transformer, Points()), Points());  // deliberate: no scale, no origin

  const WarpDef warp = Affine();
  const UCSDef warped(2.0, 100.0, 200.0, &warp);
  CSTransformer warping(&a, &warped, true, true);
  warping.Initialize();
  const std::vector<Vec2d> out = Transformed(warping, {Vec2d(4.0, 8.0)});
  EXPECT_EQ(out[0].x, 2.0 * 4.0 + 0.5 * 8.0 + 10.0);
  EXPECT_EQ(out[0].y, -0.25 * 4.0 + 3.0 * 8.0 - 20.0);
}

TEST_F(CSTransformerTest, TheDestinationWarpComesLastAndWhenEnabled) {
  const WarpDef warp = Affine();
  const DatumDef wgs84 = Wgs84Datum();
  const ProjectionDef mercator = Mercator();
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest(&wgs84, &mercator, &warp);
  CSTransformer without(&source, &dest, true, false), with(&source, &dest, false, true);
  without.Initialize();
  with.Initialize();
  std::vector<Vec2d> expected = Transformed(without, Points());
  const std::vector<Vec2d> warped = Transformed(with, Points());
  for (size_t i = 0; i < expected.size(); ++i) {
    const Vec2d p = expected[i];
    EXPECT_DOUBLE_EQ(warped[i].x, 2.0 * p.x + 0.5 * p.y + 10.0);
    EXPECT_DOUBLE_EQ(warped[i].y, -0.25 * p.x + 3.0 * p.y - 20.0);
  }
}

TEST_F(CSTransformerTest, ASourceWarpIsRefusedByTransformOnly) {
  const WarpDef warp = Affine();
  const DatumDef wgs84 = Wgs84Datum();
  const ORVDef source(&wgs84, nullptr, &warp);
  const ORVDef dest = Geographic(wgs84);
  CSTransformer transformer(&source, &dest, true, true);
  transformer.Initialize();
  EXPECT_TRUE(transformer.IsInitialized());
  std::vector<Vec2d> out = {Vec2d(7.0, 7.0)};
  const Vec2d in(1.0, 2.0);
  EXPECT_RAISES(transformer.Transform(&in, out.data(), 1), 1026, "CSTransformer",
                "Inverse warp not supported.");
  EXPECT_EQ(out[0].x, 1.0);  // the copy comes first
  EXPECT_RAISES(transformer.Transform(nullptr, nullptr, 0), 1026, "CSTransformer",
                "Inverse warp not supported.");

  CSTransformer disabled(&source, &dest, false, true);
  disabled.Initialize();
  ExpectSameBits(Transformed(disabled, Points()), Points());
}

// ---- points without a value ------------------------------------------------------------------------------

TEST_F(CSTransformerTest, UnplottablePointsAreMarkedAndReported) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const ORVDef tm = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef mercator = System(Wgs84Datum(), Mercator());
  const ORVDef bwGeographic = Geographic(BursaWolfDatum()), geographic = Geographic(Wgs84Datum());
  const struct {
    const char* stage;
    const ORVDef* source;
    const ORVDef* dest;
    Vec2d good;
    Vec2d bad;
  } rows[] = {
      {"source projector", &tm, &bwGeographic, Vec2d(500000.0, 5500100.0), Vec2d(nan, 0.0)},
      {"datum converter", &bwGeographic, &geographic, Vec2d(9.0, 50.0), Vec2d(9.0, nan)},
      {"dest projector", &geographic, &mercator, Vec2d(9.0, 50.0), Vec2d(9.0, 90.0)},
      {"all", &tm, &mercator, Vec2d(500000.0, 5500100.0), Vec2d(kMarker, 1.0)},
  };
  for (const auto& row : rows) {
    CSTransformer transformer(row.source, row.dest, false, false);
    transformer.Initialize();
    const std::vector<Vec2d> alone = Transformed(transformer, {row.good});
    EXPECT_FALSE(transformer.CheckUnplottableResult()) << row.stage;
    const std::vector<Vec2d> out = Transformed(transformer, {row.good, row.bad, row.good});
    EXPECT_TRUE(transformer.CheckUnplottableResult()) << row.stage;
    EXPECT_TRUE(internal::IsMarked(out[1])) << row.stage;
    ExpectSameBits({out[0], out[2]}, {alone[0], alone[0]});
    Transformed(transformer, {row.good});
    EXPECT_FALSE(transformer.CheckUnplottableResult()) << row.stage;  // the last run's alone
  }
}

// ---- copies ----------------------------------------------------------------------------------------------

TEST_F(CSTransformerTest, CopiesTransformAlike) {
  const WarpDef warp = Affine();
  const DatumDef wgs84 = Wgs84Datum();
  const ProjectionDef mercator = Mercator();
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest(&wgs84, &mercator, &warp);
  auto original = std::make_unique<CSTransformer>(&source, &dest, false, true);
  original->Initialize();
  const std::vector<Vec2d> expected = Transformed(*original, Points());
  Vec2d marked(kMarker, kMarker);
  original->Transform(&marked, &marked, 1);
  ASSERT_TRUE(original->CheckUnplottableResult());

  // Nothing is planned again: the known datums are gone.
  ORVKnownDatumsList.Flush();
  CSTransformer copy(*original), assigned, dup;
  assigned = *original;
  dup.Dup(*original);
  EXPECT_NE(copy.GetSource(), original->GetSource());
  original.reset();
  for (const CSTransformer* const transformer : {&copy, &assigned, &dup}) {
    EXPECT_TRUE(transformer->IsInitialized());
    EXPECT_FALSE(transformer->CheckUnplottableResult());
    EXPECT_FALSE(transformer->GetSourceWarpEnabled());
    EXPECT_TRUE(transformer->GetDestWarpEnabled());
    EXPECT_TRUE(transformer->GetSource()->Compare(source, false, nullptr));
    EXPECT_TRUE(transformer->GetDest()->Compare(dest, false, nullptr));
    ExpectSameBits(Transformed(*transformer, Points()), expected);
  }
}

TEST_F(CSTransformerTest, CopiesOfUninitializedOnesAreUninitialized) {
  const ORVDef system = Geographic(Wgs84Datum());
  const CSTransformer original(&system, &system, true, false);
  CSTransformer copy(original);
  EXPECT_FALSE(copy.IsInitialized());
  EXPECT_TRUE(copy.GetSourceWarpEnabled());
  copy.Initialize();
  EXPECT_TRUE(copy.IsInitialized());
  copy = CSTransformer();
  EXPECT_EQ(copy.GetSource(), nullptr);
  EXPECT_FALSE(copy.IsInitialized());
}

TEST_F(CSTransformerTest, ACopyOfASourceWarpStillRefusesToTransform) {
  WarpDef warp;
  warp.SetMethod(WarpMethodThinPlateSpline);
  const double xy[][2] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0.5, 0.25}, {0.25, 0.75}};
  for (const auto& p : xy) {
    warp.AddSourcePoint(p[0], p[1]);
    warp.AddDestinationPoint(p[0] + 0.125 * p[1], p[1] - 0.5 * p[0] * p[1]);
  }
  const UCSDef warped(1.0, 0.0, 0.0, &warp), plain;
  CSTransformer source(&warped, &plain, true, true), dest(&plain, &warped, true, true);
  source.Initialize();
  dest.Initialize();
  const CSTransformer sourceCopy(source), destCopy(dest);
  Vec2d point(0.3, 0.4);
  EXPECT_RAISES(sourceCopy.Transform(&point, &point, 1), 1026, "CSTransformer",
                "Inverse warp not supported.");
  const std::vector<Vec2d> in = {Vec2d(0.3, 0.4), Vec2d(0.9, 0.1)};
  ExpectSameBits(Transformed(destCopy, in), Transformed(dest, in));  // calibrated anew, the same numbers
}

TEST_F(CSTransformerTest, DupOfItselfChangesNothing) {
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest = Geographic(Wgs84Datum());
  CSTransformer transformer(&source, &dest, true, false);
  transformer.Initialize();
  const std::vector<Vec2d> expected = Transformed(transformer, Points());
  transformer.Dup(transformer);
  const CSTransformer& same = transformer;
  transformer = same;
  EXPECT_TRUE(transformer.IsInitialized());
  ExpectSameBits(Transformed(transformer, Points()), expected);
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST_F(CSTransformerTest, DumpNamesEverySection) {
  const CSTransformer empty;
  char address[64];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(&empty));
  std::string text;
  empty.DebugDump(text, 1);
  EXPECT_EQ(text, std::string(" CSTransformer at ") + address +
                      "\n Source:\n NULL\n Destination:\n NULL\n Source warp transformer:\n NULL\n"
                      " Source projector:\n NULL\n Datum converter:\n NULL\n Dest projector:\n NULL\n"
                      " Dest warp transformer:\n NULL\n");

  const WarpDef warp = Affine();
  const DatumDef wgs84 = Wgs84Datum();
  const ProjectionDef mercator = Mercator();
  const ORVDef source = System(BursaWolfDatum(), TransverseMercator(9.0));
  const ORVDef dest(&wgs84, &mercator, &warp);
  CSTransformer full(&source, &dest, true, true);
  full.Initialize();
  text.clear();
  full.DebugDump(text, 0);
  size_t at = 0;
  for (const char* const part :
       {"Source:\n", "ORVDef at ", "Destination:\n", "ORVDef at ", "Source warp transformer:\nNULL\n",
        "Source projector:\n", "Projector this=", "Datum converter:\n",
        "DatumConverter this=", "Dest projector:\n", "Projector this=", "Dest warp transformer:\n"}) {
    at = text.find(part, at);
    ASSERT_NE(at, std::string::npos) << part << " in\n" << text;
    at += std::strlen(part);
  }
}

}  // namespace
}  // namespace orv
