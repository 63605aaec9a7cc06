// The 25 engines.  Peers of those on the sphere get the sphere; PROJ's Transverse Mercator and UTM are its series
// (+approx), which ours are too and which are its faster ones.
#include <memory>
#include <set>
#include <stdexcept>

#include "bench/Cases.h"
#include "bench/Peers.h"
#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/warp/WarpDef.h"

namespace orv::bench {

namespace {

using P = ProjectionParameters;
using Set = std::function<void(P&)>;

constexpr Box kWorld = {-179, 179, -80, 80}, kZone = {6, 12, -80, 80}, kNear = {6, 12, 40, 60},
              kBorneo = {109, 119, 0, 8}, kAmerica = {-160, -40, 5, 80}, kNorth = {-180, 180, 55, 89},
              kEurope = {-30, 50, 20, 75};  // less than 60 degrees from (10, 52)

constexpr double kHalfCircumference = 6378137.0 * 180.0 * kDegree;

Side OurSide(ProjectionMethod method, const Set& set) {
  P p;
  p.method = method;
  p.ellipsoid = EllipsoidDef(6378137.0, 1.0 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030);
  set(p);
  Side side;
  side.who = "orv";
  side.make = [def = ProjectionDef(p)] {
    const auto projector = std::make_shared<Projector>(def);
    return Both{
        [projector](shr::Vec2d* points, size_t count) { projector->TransformForward(points, count); },
        [projector](shr::Vec2d* points, size_t count) { projector->TransformInverse(points, count); }};
  };
  return side;
}

Case Engine(ProjectionMethod method, const char* where, Goal goal, Goal inverseGoal, const Box& box,
            const std::string& peer, const Set& set) {
  Case result;
  result.subject = std::string(ProjectionDef::MethodToName(method)) + where;
  result.goal = goal;
  result.inverseGoal = inverseGoal;
  result.draw = [box](size_t count) { return RandomPoints(box, count); };
  result.sides = {OurSide(method, set), ProjProjection(peer)};
  for (const Side& side : GeographicLibSides(result.subject)) result.sides.push_back(side);
  result.apart = 0.01;
  return result;
}
Case Closed(ProjectionMethod method, const Box& box, const std::string& peer, const Set& set) {
  return Engine(method, "", Goal::Closed, Goal::Closed, box, peer, set);
}
Case Iterates(ProjectionMethod method, const Box& box, const std::string& peer, const Set& set) {
  return Engine(method, "", Goal::Iterates, Goal::Iterates, box, peer, set);
}

void AddCylinders(std::vector<Case>& cases) {
  cases.push_back(Closed(ProjectionMethodMercator, kWorld, "+proj=merc +lat_ts=30 +ellps=WGS84",
                         [](P& p) { p.Lat0 = 30; }));
  cases.back().backApart = 1e-4;  // a base of five digits, deliberately
  cases.back().huge = true;
  cases.push_back(Closed(ProjectionMethodTransverseMercator, kZone,
                         "+proj=tmerc +approx +lon_0=9 +lat_0=49 +k=0.9996 +ellps=WGS84",
                         [](P& p) { p.Lon0 = 9, p.Lat0 = 49, p.K0 = 0.9996; }));
  cases.back().huge = cases.back().threads = true;
  cases.push_back(Closed(ProjectionMethodUTM, kZone, "+proj=utm +approx +zone=32 +ellps=WGS84",
                         [](P& p) { p.Lon0 = 9, p.K0 = 0.9996, p.xOrg = 500000; }));
  cases.push_back(Closed(ProjectionMethodCassini, kNear, "+proj=cass +lon_0=9 +lat_0=49 +ellps=WGS84",
                         [](P& p) { p.Lon0 = 9, p.Lat0 = 49; }));
  cases.push_back(Iterates(ProjectionMethodHotine, kBorneo,
                           "+proj=omerc +lat_0=4 +lonc=115 +alpha=53.31582 +k=0.99984 +ellps=WGS84",
                           [](P& p) {
                             p.Lat1 = p.Lat0 = 4, p.Lon0 = p.Lon1 = 115, p.Alpha = 53.31582, p.K0 = 0.99984;
                             p.bUseAlpha = p.bRotate = p.bUOffset = true;
                           }));
  cases.push_back(Closed(ProjectionMethodObliqueMercator, kNear,
                         "+proj=omerc +lon_1=0 +lat_1=45 +lon_2=20 +lat_2=60 +R=6378137 +no_rot +no_uoff",
                         [](P& p) { p.Lat1 = 45, p.Lon1 = 0, p.Lat2 = 60, p.Lon2 = 20; }));
  // The map is the other way round here, and counts from half the circumference.
  cases.back().sides[1].reading = [](const shr::Vec2d& p) {
    return shr::Vec2d(kHalfCircumference - p.x, p.y);
  };
  cases.push_back(Closed(ProjectionMethodMiller, kWorld, "+proj=mill +R=6378137", [](P&) {}));
  cases.push_back(Closed(ProjectionMethodEquidistantCylindrical, kWorld, "+proj=eqc +lat_ts=40 +R=6378137",
                         [](P& p) { p.Lat1 = 40; }));
}

void AddCones(std::vector<Case>& cases) {
  const auto cone = [](P& p) { p.Lon0 = -96, p.Lat0 = 23, p.Lat1 = 29.5, p.Lat2 = 45.5; };
  const std::string peer = " +lon_0=-96 +lat_0=23 +lat_1=29.5 +lat_2=45.5 +ellps=WGS84";
  cases.push_back(Closed(ProjectionMethodLambert, kAmerica, "+proj=lcc" + peer, cone));
  cases.push_back(Closed(ProjectionMethodAlbers, kAmerica, "+proj=aea" + peer, cone));
  cases.push_back(Closed(ProjectionMethodEquidistantConic, kAmerica, "+proj=eqdc" + peer, cone));
  cases.push_back(Engine(ProjectionMethodPolyconic, "", Goal::Closed, Goal::Iterates, kAmerica,
                         "+proj=poly +lon_0=-96 +lat_0=23 +ellps=WGS84", cone));
  cases.push_back(
      Iterates(ProjectionMethodBonne, kAmerica, "+proj=bonne +lon_0=-96 +lat_1=29.5 +ellps=WGS84", cone));
}

void AddAzimuthals(std::vector<Case>& cases) {
  const auto centre = [](P& p) { p.Lon0 = 10, p.Lat0 = p.Lat1 = 52; };
  const auto pole = [](P& p) { p.Lat0 = p.Lat1 = 90; };
  const std::string sphere = " +lon_0=10 +lat_0=52 +R=6378137";
  cases.push_back(
      Closed(ProjectionMethodStereographic, kEurope, "+proj=stere +lon_0=10 +lat_0=52 +ellps=WGS84", centre));
  cases.push_back(Engine(ProjectionMethodStereographic, " at the pole", Goal::Closed, Goal::Closed, kNorth,
                         "+proj=stere +lat_0=90 +ellps=WGS84", pole));
  cases.push_back(Closed(ProjectionMethodOrthographic, kEurope, "+proj=ortho" + sphere, centre));
  cases.push_back(Closed(ProjectionMethodGnomonic, kEurope, "+proj=gnom" + sphere, centre));
  cases.push_back(Closed(ProjectionMethodAzimuthalEquidistant, kEurope, "+proj=aeqd" + sphere, centre));
  cases.push_back(Closed(ProjectionMethodLambertAzimuthal, kEurope, "+proj=laea" + sphere, centre));
}

void AddWorldMaps(std::vector<Case>& cases) {
  const auto plain = [](P&) {};
  cases.push_back(Closed(ProjectionMethodSinusoidal, kWorld, "+proj=sinu +ellps=WGS84", plain));
  cases.push_back(Iterates(ProjectionMethodMollweide, kWorld, "+proj=moll +R=6378137", plain));
  cases.push_back(Iterates(ProjectionMethodEckert4, kWorld, "+proj=eck4 +R=6378137", plain));
  cases.push_back(Iterates(ProjectionMethodEckert6, kWorld, "+proj=eck6 +R=6378137", plain));
  // Robinson's node of 40 degrees and Robinson-Sterling's interpolation differ from PROJ's by so much: docs/numerics.md.
  cases.push_back(Closed(ProjectionMethodRobinson, kWorld, "+proj=robin +R=6378137", plain));
  cases.back().apart = 9000.0;
  cases.push_back(Closed(ProjectionMethodRobinsonSterling, kWorld, "+proj=robin +R=6378137", plain));
  cases.back().apart = 9000.0;
  cases.push_back(Iterates(ProjectionMethodVanDerGrinten, kWorld, "+proj=vandg +R=6378137", plain));
}

}  // namespace

std::vector<Case> EngineCases() {
  std::vector<Case> cases;
  AddCylinders(cases);
  AddCones(cases);
  AddAzimuthals(cases);
  AddWorldMaps(cases);
  return cases;
}

void RequireEveryMethod(const std::vector<Case>& cases) {
  const auto require = [&](const std::string& name) {
    for (const Case& one : cases) {
      if (one.subject.rfind(name, 0) == 0) return;
    }
    throw std::runtime_error("no benchmark of " + name);
  };
  for (int method = ProjectionMethodOther + 1; method <= ProjectionMethodVanDerGrinten; ++method) {
    require(ProjectionDef::MethodToName(static_cast<ProjectionMethod>(method)));
  }
  for (int method = DatumMethodNone + 1; method < DatumMethodEnd; ++method) {
    require(DatumDef::MethodToName(static_cast<DatumMethod>(method)));
  }
  for (int method = WarpMethodUnknown + 1;
       const char* name = WarpDef::MethodName(static_cast<WarpMethod>(method)); ++method) {
    require(std::string("Warp: ") + name);
  }
}

}  // namespace orv::bench
