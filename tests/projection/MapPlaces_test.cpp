#include "orv/projection/internal/MapPlaces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "orv/projection/ProjectionDef.h"

namespace orv {
namespace {

ProjectionParameters Sphere(ProjectionMethod method) {
  ProjectionParameters p;
  p.method = method;
  p.ellipsoid = EllipsoidDef(6371000.0, 0.0, nullptr, nullptr, nullptr, 0);
  return p;
}

/// How far a map moves that is drawn a millionth larger: a millionth of its farthest sample from the origin.
double FarthestOf(ProjectionParameters p) {
  const internal::MapPlaces places{ProjectionDef(p)};
  EXPECT_EQ(places.DistanceTo(ProjectionDef(p)), 0.0);
  p.Scale *= 1.000001;
  return places.DistanceTo(ProjectionDef(p)) * 1e6;
}

TEST(MapPlaces, AreTakenAroundTheCentreThatTheMethodHas) {
  // The origin of each of these maps is its centre; samples lie 0.4 to 3.6 degrees from it (a degree is 111 km), those of a
  // pole up to 7.2 degrees.  Parameters that a method does not use would lead thousands of kilometres away.
  const struct {
    ProjectionMethod method;
    std::function<void(ProjectionParameters&)> set;
    double least, most;  // km
  } kRows[] = {
      {ProjectionMethodOrthographic, [](auto& p) { p.Lat0 = 50, p.Lat1 = -60; }, 300, 450},
      {ProjectionMethodLambertAzimuthal, [](auto& p) { p.Lat1 = 50, p.Lat0 = -60; }, 300, 450},
      {ProjectionMethodLambertAzimuthal, [](auto& p) { p.Lat1 = -90, p.Lat0 = 10; }, 700, 850},
      {ProjectionMethodHotine,
       [](auto& p) {
         p.Lat0 = 40, p.Lon1 = -86, p.Lon0 = 10, p.Lat1 = p.Lat2 = -50, p.Alpha = 30;
         p.bUseAlpha = p.bRotate = p.bUOffset = true;
       },
       300, 450},
      {ProjectionMethodHotine,
       [](auto& p) {
         p.Lat0 = 40, p.Lon1 = -96, p.Lat1 = 35, p.Lon2 = -86, p.Lat2 = 45, p.Lon0 = 10;
         p.bRotate = p.bUOffset = true;
       },
       300, 500},
  };
  for (const auto& row : kRows) {
    ProjectionParameters p = Sphere(row.method);
    p.Lon0 = 20;
    row.set(p);
    if (row.method == ProjectionMethodHotine) {
      p.ellipsoid = EllipsoidDef(6378137.0, 1 / 298.257223563, nullptr, nullptr, nullptr, 0);
    }
    const double farthest = FarthestOf(p) / 1000;
    EXPECT_GT(farthest, row.least) << ProjectionDef::MethodToName(row.method);
    EXPECT_LT(farthest, row.most) << ProjectionDef::MethodToName(row.method);
  }
}

TEST(MapPlaces, LieBetweenTwoParallels) {
  ProjectionParameters p = Sphere(ProjectionMethodAlbers);
  p.Lat0 = 47;  // the origin, where the parallels have their middle
  p.Lat1 = 45;
  p.Lat2 = 49;
  EXPECT_LT(FarthestOf(p), 450e3);
}

TEST(MapPlaces, AreInMetresOfTheFirstMap) {
  ProjectionParameters p = Sphere(ProjectionMethodMercator);
  p.Scale = 100.0;  // centimetres
  const internal::MapPlaces places{ProjectionDef(p)};
  p.xOrg = 2.5;  // metres: the scale is applied behind it
  const double moved = places.DistanceTo(ProjectionDef(p));
  EXPECT_NEAR(moved, 2.5, 1e-9);
}

TEST(MapPlaces, TellsMapsApartOfWhichOneHasNoPlaceForAPoint) {
  ProjectionParameters here = Sphere(ProjectionMethodGnomonic), there = here;
  there.Lon0 = 180;  // the other half of the world
  EXPECT_EQ(internal::MapPlaces(ProjectionDef(here)).DistanceTo(ProjectionDef(there)), HUGE_VAL);
  EXPECT_EQ(internal::MapPlaces(ProjectionDef(there)).DistanceTo(ProjectionDef(here)), HUGE_VAL);
}

TEST(MapPlaces, HasNoDistanceWhereNoPointHasAPlace) {
  ProjectionParameters p = Sphere(ProjectionMethodBonne);  // Lat1 = 0 is refused
  const internal::MapPlaces places{ProjectionDef(p)};
  EXPECT_TRUE(std::isnan(places.DistanceTo(ProjectionDef(p))));
}

}  // namespace
}  // namespace orv
