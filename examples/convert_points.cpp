// Berlin, from longitude and latitude on WGS 84 to UTM zone 33.
#include <cstdio>
#include <vector>

#include "orv/ORVCore.h"

int main() {
  orv::DatumParameters wgs84;
  wgs84.method = orv::DatumMethodNone;
  wgs84.target = orv::DatumTargetWGS84;
  wgs84.ellipsoid = orv::EllipsoidDef(6378137.0, 1 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030);
  const orv::DatumDef datum(&wgs84, 6326);

  orv::ProjectionDef utm(orv::ProjectionMethodUTM), geographic(orv::ProjectionMethodUnprojected);
  utm.SetParameter(orv::ProjectionParameterIDEllipsoid, wgs84.ellipsoid);
  utm.SetParameter(orv::ProjectionParameterIDLon0, 15.0);  // zone 33
  utm.SetParameter(orv::ProjectionParameterIDLat0, 0.0);
  utm.SetParameter(orv::ProjectionParameterIDK0, 0.9996);

  const orv::ORVDef from(&datum, &geographic, nullptr), to(&datum, &utm, nullptr);
  orv::CSTransformer transformer(&from, &to, false, false);
  transformer.Initialize();
  std::vector<shr::Vec2d> points = {{13.405, 52.52}};  // longitude, latitude
  transformer.Transform(points, points);
  for (const shr::Vec2d& point : points) std::printf("%.3f %.3f\n", point.x, point.y);
}
