// Berlin, from longitude and latitude on WGS 84 to UTM zone 33.
#include <cstdio>
#include <vector>

#include "orv/ORVCore.h"

int main() {
  orv::ORVInitialize(nullptr, true);  // finds the installed catalogue
  const orv::CSList& systems = orv::ORVKnownSystemsList;
  const orv::CSDef* const wgs84 = systems.Enum(systems.FindByToken("EPSG:4326"));
  const orv::CSDef* const utm33 = systems.Enum(systems.FindByToken("EPSG:32633"));

  orv::CSTransformer transformer(wgs84, utm33, false, false);
  transformer.Initialize();
  std::vector<shr::Vec2d> points = {{13.405, 52.52}};  // longitude, latitude
  transformer.Transform(points, points);
  for (const shr::Vec2d& point : points) std::printf("%.3f %.3f\n", point.x, point.y);
  orv::ORVShutdown();
}
