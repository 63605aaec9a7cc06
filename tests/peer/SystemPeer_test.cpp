// Whole transformations beside PROJ: source projection backward, datum conversion, destination projection
// forward.
#include <gtest/gtest.h>

#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "tests/peer/Peer.h"
#include "tests/support/KnownDatums.h"

namespace orv {
namespace {

using shr::Vec2d;

class SystemPeer : public test::KnownDatums {};

std::vector<Vec2d> Transformed(const ORVDef& source, const ORVDef& dest, const std::vector<Vec2d>& in) {
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();
  std::vector<Vec2d> out;
  transformer.Transform(in, out);
  EXPECT_FALSE(transformer.CheckUnplottableResult());
  return out;
}

TEST_F(SystemPeer, TransverseMercatorOnSevenParametersToGeographic) {
  ProjectionParameters p;
  p.method = ProjectionMethodTransverseMercator;
  p.ellipsoid = test::Bessel();
  p.Lon0 = 9.0;
  p.Lat0 = 10.0;
  p.K0 = 0.9996;
  p.xOrg = 3500000.0;
  p.yOrg = -250000.0;
  const ProjectionDef projection(p);
  const DatumDef from = test::BursaWolfDatum(), to = test::Wgs84Datum();
  const ORVDef source(&from, &projection, nullptr), dest(&to, nullptr, nullptr);
  const test::Peer peer(
      "+proj=pipeline "
      "+step +inv +proj=tmerc +lat_0=10 +lon_0=9 +k=0.9996 +x_0=3500000 +y_0=-250000 +a=6377397.155 +rf=299.1528128 "
      "+step +proj=cart +a=6377397.155 +rf=299.1528128 "
      "+step +proj=helmert +x=598.1 +y=73.7 +z=418.2 +rx=0.202 +ry=0.045 +rz=-2.455 +s=6.7 "
      "+convention=position_vector "
      "+step +inv +proj=cart +a=6378137 +rf=298.257223563");
  // 190 km to either side of the meridian, from 15 to 60 degrees north: at most 3.4 degrees of longitude
  // away.
  const std::vector<Vec2d> in = test::RandomPoints(1000, 3310000.0, 3690000.0, 300000.0, 5200000.0);
  // The peer's projection is exact, ours the series of the formulary, which is good for 2 mm inside 3.5
  // degrees; all other steps agree within the rounding of the coordinates (micrometres); 0.6 mm are seen.
  EXPECT_LE(test::LargestGroundDistance(Transformed(source, dest, in), peer.Forward(in)), 0.002);
}

TEST_F(SystemPeer, GeographicOnThreeParametersToMercator) {
  DatumParameters d;
  test::MolodenskyDatum().GetParameters(d);
  d.pmShift = 2.337229166667;  // longitudes count from Paris
  const DatumDef from(&d, 0), to = test::Wgs84Datum();
  ProjectionParameters p;
  p.method = ProjectionMethodMercator;
  p.ellipsoid = test::Wgs84Ellipsoid();
  p.Lon0 = 12.5;
  p.Lat0 = 42.0;
  p.xOrg = 20000.0;
  p.yOrg = -30000.0;
  p.Scale = 0.25;
  const ProjectionDef projection(p);
  const ORVDef source(&from, nullptr, nullptr), dest(&to, &projection, nullptr);
  // Scale takes in the false origin: 0.25 (x + 20000), in metres 4 of which are one unit.
  const test::Peer peer(
      "+proj=pipeline "
      "+step +proj=longlat +a=6378388 +rf=297 "
      "+step +proj=molodensky +a=6378388 +rf=297 +dx=-87 +dy=-98 +dz=-121 +da=-251 "
      "+df=-1.4192702255886284e-05 "  // 1/298.257223563 - 1/297
      "+step +proj=merc +lat_ts=42 +lon_0=12.5 +x_0=20000 +y_0=-30000 +a=6378137 +rf=298.257223563 "
      "+step +proj=affine +s11=0.25 +s22=0.25");
  const std::vector<Vec2d> in = test::RandomPoints(1000, -40.0, 60.0, -70.0, 75.0);
  std::vector<Vec2d> fromGreenwich = in;
  for (Vec2d& point : fromGreenwich) point.x += 2.337229166667;
  // No series and no iteration on either side: what remains is the rounding of angles of up to 75 degrees
  // (1e-9 m each) through a dozen operations; 2e-9 m are seen.
  EXPECT_LE(test::LargestDistance(Transformed(source, dest, in), peer.Forward(fromGreenwich)), 1e-7);
}

}  // namespace
}  // namespace orv
