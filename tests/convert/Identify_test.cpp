#include "orv/convert/Identify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/system/UCSDef.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/ShippedCatalogue.h"

namespace orv {
namespace {

class Identify : public test::ShippedCatalogue {
 protected:
  /// A system of the catalogue with another projection.
  static ORVDef With(const std::string& token, const ProjectionParameters& p) {
    ORVDef system = System(token);
    const ProjectionDef projection(p);
    system.SetProjection(&projection);
    return system;
  }
  static ProjectionParameters ParametersOf(const std::string& token) {
    return *System(token).GetProjection()->GetParameters();
  }
  static const SystemMatch* Find(const std::vector<SystemMatch>& matches, const std::string& token) {
    const int position = ORVKnownSystemsList.FindByToken(token.c_str());
    const auto found = std::find_if(matches.begin(), matches.end(),
                                    [&](const SystemMatch& match) { return match.position == position; });
    return found == matches.end() ? nullptr : &*found;
  }
  static std::string Token(const SystemMatch& match) { return ORVKnownSystemsList.EnumToken(match.position); }
};

TEST_F(Identify, FindsEverySystemOfTheCatalogueAsItself) {
  const std::vector<const ORVDef*> systems = Systems();
  for (size_t i = 0; i < systems.size(); i += 61) {
    const std::vector<SystemMatch> matches = ORVIdentifySystem(*systems[i], 0);
    const SystemMatch* const match = Find(matches, systems[i]->GetToken());
    ASSERT_TRUE(match) << systems[i]->GetToken();
    EXPECT_EQ(match->kind, SystemMatch::Equal) << systems[i]->GetToken();
    EXPECT_TRUE(match->differences.empty());
  }
}

TEST_F(Identify, PutsTheBestOfEqualSystemsInFront) {
  // ETRS89 and others count as WGS 84 here; name and token of the datum decide.
  EXPECT_EQ(Token(ORVIdentifySystem(System("EPSG:32633"), 0).front()), "EPSG:32633");
  EXPECT_EQ(Token(ORVIdentifySystem(System("EPSG:25833"), 0).front()), "EPSG:25833");
}

TEST_F(Identify, TakesAnotherWayToWriteAProjectionForAlike) {
  ProjectionParameters p = ParametersOf("EPSG:32633");
  p.method = ProjectionMethodTransverseMercator;
  p.Scale = 1.0 + 5e-9;  // too far from 1 for Compare; K0 and the origin take it back
  p.K0 = 0.9996 / p.Scale;
  p.xOrg = 500000.0 / p.Scale;
  const std::vector<SystemMatch> matches = ORVIdentifySystem(With("EPSG:32633", p), 0);
  const SystemMatch* const match = Find(matches, "EPSG:32633");
  ASSERT_TRUE(match);
  EXPECT_EQ(match->kind, SystemMatch::Alike);
  EXPECT_LE(match->distance, kAlikeDistance);
  ASSERT_FALSE(match->differences.empty());
  EXPECT_EQ(match->differences[0].what, "Method");
  EXPECT_EQ(match->differences[0].asked, "Transverse Mercator");
  EXPECT_EQ(match->differences[0].known, "Universal Transverse Mercator (UTM)");
  for (size_t i = 1; i < matches.size(); ++i) {
    EXPECT_FALSE(matches[i].kind == SystemMatch::Alike && matches[i].distance < matches[i - 1].distance);
    EXPECT_NE(matches[i].kind, SystemMatch::Different);
  }
}

TEST_F(Identify, MeasuresAroundThePlaceWhereTheMapIsCentred) {
  // Iran: the cylinder is centred at Lon1; at Lon0, which Hotine does not use, the difference is 1.7 mm.
  ProjectionParameters p = ParametersOf("EPSG:2057");
  ASSERT_EQ(p.method, ProjectionMethodHotine);
  ASSERT_EQ(p.Lon0, 0.0);
  ASSERT_NEAR(p.Lon1, 52.6, 0.1);
  p.Lon1 += 2e-9;       // degrees: more than Compare overlooks, 0.2 mm
  p.K0 *= 1.0 + 3e-10;  // 0.1 mm at 300 km
  const std::vector<SystemMatch> matches = ORVIdentifySystem(With("EPSG:2057", p), 0);
  const SystemMatch* const match = Find(matches, "EPSG:2057");
  ASSERT_TRUE(match);
  EXPECT_EQ(match->kind, SystemMatch::Alike);
  EXPECT_GT(match->distance, 1e-5);
}

TEST_F(Identify, DatumsOfWhichNothingIsKnownAreToldApart) {
  // Qatar 1948: known by number and name, not by how it converts.
  const std::vector<SystemMatch> same = ORVIdentifySystem(System("EPSG:4286"), 0);
  ASSERT_EQ(same.size(), 1U);
  EXPECT_EQ(Token(same[0]), "EPSG:4286");
  EXPECT_EQ(same[0].kind, SystemMatch::Equal);

  ORVDef nameless = System("EPSG:4286");
  DatumParameters p;
  p.ellipsoid = *nameless.GetDatum()->GetEllipsoid();
  DatumDef datum(&p, 0);
  datum.SetName("unknown");
  nameless.SetDatum(&datum);
  for (const SystemMatch& match : ORVIdentifySystem(nameless, 0)) {
    EXPECT_EQ(match.kind, SystemMatch::Different) << Token(match);
    ASSERT_FALSE(match.differences.empty());
    EXPECT_EQ(match.differences.back().what, "Datum");
    EXPECT_EQ(match.differences.back().asked, "unknown (Unknown)");
  }

  // UTM zone 33 on an unknown datum is nearest to UTM zone 33 on others.
  ORVDef utm = System("EPSG:32633");
  utm.SetDatum(&datum);
  const std::vector<SystemMatch> nearest = ORVIdentifySystem(utm, 3);
  ASSERT_EQ(nearest.size(), 3U);
  for (const SystemMatch& match : nearest) EXPECT_LE(match.distance, 1e-3) << Token(match);
}

TEST_F(Identify, MeasuresTheNearestMiss) {
  ProjectionParameters p = ParametersOf("EPSG:3857");
  ASSERT_EQ(p.method, ProjectionMethodMercator);
  p.Lon0 = 0.01;
  const std::vector<SystemMatch> matches = ORVIdentifySystem(With("EPSG:3857", p), 1);
  ASSERT_EQ(matches.size(), 1U);
  EXPECT_EQ(Token(matches[0]), "EPSG:3857");
  EXPECT_EQ(matches[0].kind, SystemMatch::Different);
  ASSERT_EQ(matches[0].differences.size(), 1U);
  EXPECT_EQ(matches[0].differences[0].what, "Central Longitude");
  EXPECT_EQ(matches[0].differences[0].asked, "0.01");
  EXPECT_EQ(matches[0].differences[0].known, "0");
  // A hundredth of a degree on the equator of a sphere of 6378137 m, at every latitude of this projection.
  EXPECT_NEAR(matches[0].distance, 6378137.0 * 0.01 * M_PI / 180.0, 1e-6);
}

TEST_F(Identify, GivesAMillimetreAsTheLimit) {
  const double degree = 6378137.0 * M_PI / 180.0;
  ProjectionParameters p = ParametersOf("EPSG:3857");
  p.Lon0 = 0.9e-3 / degree;
  const auto kindOf = [&] { return Find(ORVIdentifySystem(With("EPSG:3857", p), 0), "EPSG:3857")->kind; };
  EXPECT_EQ(kindOf(), SystemMatch::Alike);
  p.Lon0 = 1.1e-3 / degree;
  EXPECT_EQ(kindOf(), SystemMatch::Different);
}

TEST_F(Identify, SaysThatTheDatumDiffers) {
  // UTM zone 33 on a datum of the user's own.
  DatumParameters shifts;
  shifts.method = DatumMethodMolodensky;
  shifts.target = DatumTargetWGS84;
  shifts.ellipsoid = *System("EPSG:32633").GetDatum()->GetEllipsoid();
  shifts.dx = 12.0;
  DatumDef datum(&shifts, 0);
  datum.SetName("Site");
  ORVDef system = System("EPSG:32633");
  system.SetDatum(&datum);
  std::vector<SystemMatch> matches = ORVIdentifySystem(system, 0);
  EXPECT_EQ(matches.size(), 3U) << "as many near misses as are given when no limit is";
  EXPECT_EQ(matches[0].kind, SystemMatch::Different);
  ASSERT_EQ(matches[0].differences.size(), 1U);
  EXPECT_EQ(matches[0].differences[0].what, "Datum");
  EXPECT_EQ(matches[0].differences[0].asked, "Site (Molodensky)");
  EXPECT_LT(matches[0].distance, 1e-4) << "the ellipsoids of equal projections may differ by hairs";

  // The catalogue's datum with one shift changed.
  datum = *System("EPSG:31467").GetDatum();
  datum.SetParameter(DatumParameterIDdx, 600.0);
  system = System("EPSG:31467");
  system.SetDatum(&datum);
  matches = ORVIdentifySystem(system, 0);
  ASSERT_EQ(matches[0].differences.size(), 1U);
  EXPECT_EQ(matches[0].differences[0].what, "Datum Parameters");

  system.SetDatum(nullptr);
  matches = ORVIdentifySystem(system, 1);
  EXPECT_EQ(matches[0].differences[0].what, "Datum");
  EXPECT_EQ(matches[0].differences[0].asked, "none");
}

TEST_F(Identify, NamesEllipsoidFlagAndWarp) {
  ProjectionParameters p = ParametersOf("EPSG:32733");
  ASSERT_TRUE(p.bSouth);
  p.ellipsoid = *System("EPSG:31467").GetProjection()->GetEllipsoid();
  ORVDef system = With("EPSG:32733", p);
  const std::vector<SystemMatch> other = ORVIdentifySystem(system, 40);
  const SystemMatch* const south = Find(other, "EPSG:32733");
  ASSERT_TRUE(south);
  ASSERT_EQ(south->differences.size(), 1U);
  EXPECT_EQ(south->differences[0].what, "Ellipsoid");
  EXPECT_EQ(south->differences[0].asked, "Bessel 1841: a=6377397.155, rf=299.1528128");
  EXPECT_EQ(south->differences[0].known, "WGS 84: a=6378137, rf=298.257223563");

  system = System("EPSG:32733");
  p = ParametersOf("EPSG:32733");
  p.bSouth = false;
  p.Lon0 = 15.5;  // no zone has it
  const std::vector<SystemMatch> flags = ORVIdentifySystem(With("EPSG:32733", p), 10000);
  const SystemMatch* const flag = Find(flags, "EPSG:32733");
  ASSERT_TRUE(flag);
  const auto isFlag = [](const SystemDifference& d) { return d.known == "true" && d.asked == "false"; };
  EXPECT_EQ(std::count_if(flag->differences.begin(), flag->differences.end(), isFlag), 1);

  WarpDef warp;

  warp.SetCoefficients(1.0, 2.0, 0.0, 1.0, 0.0, 2.0);
  system.SetWarp(&warp);
  const std::vector<SystemMatch> warped = ORVIdentifySystem(system, 1);
  ASSERT_EQ(warped.size(), 1U);
  EXPECT_EQ(warped[0].differences[0].what, "Warp");
  EXPECT_EQ(warped[0].kind, SystemMatch::Different);
}

TEST_F(Identify, TellsGeographicFromProjected) {
  const std::vector<SystemMatch> matches = ORVIdentifySystem(System("EPSG:4326"), 1);
  ASSERT_EQ(matches.size(), 1U);
  EXPECT_EQ(Token(matches[0]), "EPSG:4326");
  EXPECT_EQ(matches[0].kind, SystemMatch::Equal);
}

TEST_F(Identify, MeasuresNoDistanceWherePointsHaveNoPlace) {
  // Points around the far side of the globe, which the known one cannot show.
  ProjectionParameters p;
  p.method = ProjectionMethodOrthographic;
  p.ellipsoid = *System("EPSG:4326").GetDatum()->GetEllipsoid();
  ORVDef front = With("EPSG:4326", p);
  front.SetToken("FRONT");
  front.SetName("Front");
  const int position = ORVKnownSystemsList.Add(front);
  p.Lon0 = 170.0;
  const std::vector<SystemMatch> matches = ORVIdentifySystem(With("EPSG:4326", p), 1);
  ORVKnownSystemsList.Remove(position);
  ASSERT_EQ(matches.size(), 1U);
  EXPECT_EQ(matches[0].position, position);
  EXPECT_EQ(matches[0].distance, std::numeric_limits<double>::infinity());
  EXPECT_EQ(matches[0].kind, SystemMatch::Different);
}

TEST_F(Identify, KnowsALocalSystemOnlyWhenItIsEqual) {
  UCSDef local;
  local.SetToken("SITE");
  local.SetName("Site");
  local.SetScale(0.3048);
  EXPECT_TRUE(ORVIdentifySystem(local, 0).empty());
  const int position = ORVKnownSystemsList.Add(local);
  const std::vector<SystemMatch> matches = ORVIdentifySystem(local, 0);
  ORVKnownSystemsList.Remove(position);
  ASSERT_EQ(matches.size(), 1U);
  EXPECT_EQ(matches[0].position, position);
}

}  // namespace
}  // namespace orv
