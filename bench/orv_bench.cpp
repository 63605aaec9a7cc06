// Points per second of the engines, the datum methods and a whole transformation, with PROJ beside them.
//
// Each benchmark converts a fresh copy of the same random valid points (the copy is timed, on both sides) in
// batches of 1, 10, 1000 and 1 000 000.  PROJ gets its points in radians, so that it need not convert degrees
// as we do; its Transverse Mercator and UTM are the series (+approx), which ours are too.  Names:
// subject/direction/who/points.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/GridFiles.h"
#include "orv/projection/Projector.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/EllipsoidList.h"
#include "tests/support/GridBytes.h"
#include "tests/support/Paths.h"
#include "tests/support/TempFolder.h"
#include "tests/support/World.h"

namespace {

using Points = std::vector<shr::Vec2d>;
using Work = std::function<void(shr::Vec2d*, size_t)>;

constexpr double kDegree = 3.141592653589793 / 180.0;
constexpr unsigned kSeed = 20260104;
const std::vector<int64_t> kSizes = {1, 10, 1000, 1000000};

struct Box {
  double west, east, south, north;
};

Points RandomPoints(const Box& box) {
  std::mt19937_64 random(kSeed);
  std::uniform_real_distribution<double> lon(box.west, box.east), lat(box.south, box.north);
  Points points(static_cast<size_t>(kSizes.back()));
  for (shr::Vec2d& point : points) point = {lon(random), lat(random)};
  return points;
}

Points Scaled(Points points, double factor) {
  for (shr::Vec2d& point : points) point = {point.x * factor, point.y * factor};
  return points;
}

/// Benchmarks that convert nothing, or to nothing, would be fast for no reason.
void RequirePlaced(const Points& points, const std::string& name) {
  for (const shr::Vec2d& point : points) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || point.x == std::numeric_limits<double>::max()) {
      throw std::runtime_error(name + ": a point has no result");
    }
  }
}

void Register(const std::string& name, const std::shared_ptr<const Points>& input, const Work& work) {
  for (const int64_t size : kSizes) {
    benchmark::RegisterBenchmark((name + "/" + std::to_string(size)).c_str(), [=](benchmark::State& state) {
      const auto count = static_cast<size_t>(size);
      Points points(count);
      for (auto _ : state) {
        std::copy(input->begin(), input->begin() + size, points.begin());
        work(points.data(), count);
        benchmark::DoNotOptimize(points.data());
        benchmark::ClobberMemory();
      }
      state.SetItemsProcessed(state.iterations() * size);
    });
  }
}

/// PROJ's transformation, forward or inverse, of points in place.
class Proj {
 public:
  explicit Proj(const std::string& definition)
      : m_Transformation(proj_create(PJ_DEFAULT_CTX, definition.c_str())) {
    if (!m_Transformation) throw std::runtime_error("PROJ refuses " + definition);
  }
  Work Run(PJ_DIRECTION direction) const {
    PJ* const transformation = m_Transformation.get();
    return [transformation, direction](shr::Vec2d* points, size_t count) {
      proj_trans_generic(transformation, direction, &points->x, sizeof(shr::Vec2d), count, &points->y,
                         sizeof(shr::Vec2d), count, nullptr, 0, 0, nullptr, 0, 0);
    };
  }

 private:
  struct Destroy {
    void operator()(PJ* transformation) const { proj_destroy(transformation); }
  };
  std::unique_ptr<PJ, Destroy> m_Transformation;
};

template <class T, class... Arguments>
T& Keep(Arguments&&... arguments) {
  static std::vector<std::unique_ptr<T>> kept;  // as long as the process
  kept.push_back(std::make_unique<T>(std::forward<Arguments>(arguments)...));
  return *kept.back();
}

/// Both sides in both directions; `degrees` are geographic points.
void RegisterBoth(const std::string& name, const Box& box, const Work& forward, const Work& inverse,
                  const std::string& projDefinition) {
  const auto degrees = std::make_shared<const Points>(RandomPoints(box));
  auto projected = std::make_shared<Points>(*degrees);
  forward(projected->data(), projected->size());
  RequirePlaced(*projected, name);
  Register(name + "/forward/orv", degrees, forward);
  if (inverse) Register(name + "/inverse/orv", projected, inverse);
  if (projDefinition.empty()) return;

  const Proj& proj = Keep<Proj>(projDefinition);
  const auto radians = std::make_shared<const Points>(Scaled(*degrees, kDegree));
  auto peerProjected = std::make_shared<Points>(*radians);
  proj.Run(PJ_FWD)(peerProjected->data(), peerProjected->size());
  RequirePlaced(*peerProjected, name + " of PROJ");
  Register(name + "/forward/proj", radians, proj.Run(PJ_FWD));
  if (inverse) Register(name + "/inverse/proj", peerProjected, proj.Run(PJ_INV));
}

orv::EllipsoidDef Ellipsoid(const char* token) {
  orv::EllipsoidDef ellipsoid;
  orv::ORVKnownEllipsoidsList.FindByToken(token, &ellipsoid);
  return ellipsoid;
}

void RegisterEngine(const std::string& name, orv::ProjectionMethod method, const Box& box,
                    const std::string& projDefinition,
                    const std::function<void(orv::ProjectionParameters&)>& set) {
  orv::ProjectionParameters p;
  p.method = method;
  p.ellipsoid = Ellipsoid("EPSG:7030");
  set(p);
  orv::Projector& projector = Keep<orv::Projector>(orv::ProjectionDef(p));
  RegisterBoth(
      name, box,
      [&projector](shr::Vec2d* points, size_t count) { projector.TransformForward(points, count); },
      [&projector](shr::Vec2d* points, size_t count) { projector.TransformInverse(points, count); },
      projDefinition);
}

void RegisterEngines() {
  using P = orv::ProjectionParameters;
  const Box world = {-179, 179, -80, 80}, zone = {6, 12, -80, 80}, near = {6, 12, 40, 60},
            borneo = {109, 119, 0, 8};
  RegisterEngine("Mercator", orv::ProjectionMethodMercator, world, "+proj=merc +lat_ts=30 +ellps=WGS84",
                 [](P& p) { p.Lat0 = 30; });
  RegisterEngine("Transverse Mercator", orv::ProjectionMethodTransverseMercator, zone,
                 "+proj=tmerc +approx +lon_0=9 +lat_0=49 +k=0.9996 +ellps=WGS84",
                 [](P& p) { p.Lon0 = 9, p.Lat0 = 49, p.K0 = 0.9996; });
  RegisterEngine("UTM", orv::ProjectionMethodUTM, zone, "+proj=utm +approx +zone=32 +ellps=WGS84",
                 [](P& p) { p.Lon0 = 9, p.K0 = 0.9996; });
  RegisterEngine("Cassini", orv::ProjectionMethodCassini, near, "+proj=cass +lon_0=9 +lat_0=49 +ellps=WGS84",
                 [](P& p) { p.Lon0 = 9, p.Lat0 = 49; });
  RegisterEngine("Hotine", orv::ProjectionMethodHotine, borneo,
                 "+proj=omerc +lat_0=4 +lonc=115 +alpha=53.31582 +gamma=53.13010 +k=0.99984 +ellps=WGS84",
                 [](P& p) {
                   p.Lat1 = p.Lat0 = 4, p.Lon0 = p.Lon1 = 115, p.Alpha = 53.31582, p.K0 = 0.99984;
                   p.bUseAlpha = p.bRotate = p.bUOffset = true;
                 });
  RegisterEngine("Oblique Mercator", orv::ProjectionMethodObliqueMercator, near,
                 "+proj=omerc +lon_1=0 +lat_1=45 +lon_2=20 +lat_2=60 +R=6378137",
                 [](P& p) { p.Lat1 = 45, p.Lon1 = 0, p.Lat2 = 60, p.Lon2 = 20; });
  RegisterEngine("Miller", orv::ProjectionMethodMiller, world, "+proj=mill +R=6378137", [](P&) {});
  RegisterEngine("Equidistant Cylindrical", orv::ProjectionMethodEquidistantCylindrical, world,
                 "+proj=eqc +lat_ts=40 +R=6378137", [](P& p) { p.Lat1 = 40; });
}

void RegisterConicEngines() {
  using P = orv::ProjectionParameters;
  const Box america = {-160, -40, 5, 80};
  const auto cone = [](P& p) { p.Lon0 = -96, p.Lat0 = 23, p.Lat1 = 29.5, p.Lat2 = 45.5; };
  const std::string peerCone = " +lon_0=-96 +lat_0=23 +lat_1=29.5 +lat_2=45.5 +ellps=WGS84";
  RegisterEngine("Lambert Conformal Conic", orv::ProjectionMethodLambert, america, "+proj=lcc" + peerCone,
                 cone);
  RegisterEngine("Albers", orv::ProjectionMethodAlbers, america, "+proj=aea" + peerCone, cone);
  RegisterEngine("Equidistant Conic", orv::ProjectionMethodEquidistantConic, america, "+proj=eqdc" + peerCone,
                 cone);
  RegisterEngine("Polyconic", orv::ProjectionMethodPolyconic, america,
                 "+proj=poly +lon_0=-96 +lat_0=23 +ellps=WGS84", cone);
  RegisterEngine("Bonne", orv::ProjectionMethodBonne, america,
                 "+proj=bonne +lon_0=-96 +lat_1=29.5 +ellps=WGS84", cone);
}

void RegisterAzimuthalEngines() {
  using P = orv::ProjectionParameters;
  const Box europe = {-30, 50, 20, 75};  // less than 60 degrees from the centre
  const auto centre = [](P& p) { p.Lon0 = 10, p.Lat0 = p.Lat1 = 52; };
  const std::string sphere = " +lon_0=10 +lat_0=52 +R=6378137";
  RegisterEngine("Stereographic", orv::ProjectionMethodStereographic, europe,
                 "+proj=stere +lon_0=10 +lat_0=52 +ellps=WGS84", centre);
  RegisterEngine("Orthographic", orv::ProjectionMethodOrthographic, europe, "+proj=ortho" + sphere, centre);
  RegisterEngine("Gnomonic", orv::ProjectionMethodGnomonic, europe, "+proj=gnom" + sphere, centre);
  RegisterEngine("Azimuthal Equidistant", orv::ProjectionMethodAzimuthalEquidistant, europe,
                 "+proj=aeqd" + sphere, centre);
  RegisterEngine("Lambert Azimuthal", orv::ProjectionMethodLambertAzimuthal, europe, "+proj=laea" + sphere,
                 centre);
}

void RegisterWorldEngines() {
  using P = orv::ProjectionParameters;
  const Box world = {-179, 179, -80, 80};
  const auto plain = [](P&) {};
  RegisterEngine("Sinusoidal", orv::ProjectionMethodSinusoidal, world, "+proj=sinu +ellps=WGS84", plain);
  RegisterEngine("Mollweide", orv::ProjectionMethodMollweide, world, "+proj=moll +R=6378137", plain);
  RegisterEngine("Eckert IV", orv::ProjectionMethodEckert4, world, "+proj=eck4 +R=6378137", plain);
  RegisterEngine("Eckert VI", orv::ProjectionMethodEckert6, world, "+proj=eck6 +R=6378137", plain);
  RegisterEngine("Robinson", orv::ProjectionMethodRobinson, world, "+proj=robin +R=6378137", plain);
  RegisterEngine("Robinson-Sterling", orv::ProjectionMethodRobinsonSterling, world, "+proj=robin +R=6378137",
                 plain);
  RegisterEngine("Van Der Grinten", orv::ProjectionMethodVanDerGrinten, world, "+proj=vandg +R=6378137",
                 plain);
}

orv::DatumDef Datum(const char* token) {
  orv::DatumDef datum;
  orv::ORVKnownDatumsList.FindByToken(token, &datum);
  return datum;
}

Work Conversion(const orv::DatumDef& from, const orv::DatumDef& to) {
  orv::DatumConverter& converter = Keep<orv::DatumConverter>(&from, &to);
  converter.Initialize();
  return [&converter](shr::Vec2d* points, size_t count) { converter.Convert(points, count); };
}

void RegisterDatum(const std::string& name, const orv::DatumDef& datum, const Box& box, bool invertible,
                   const std::string& projDefinition) {
  const orv::DatumDef wgs84 = Datum("EPSG:6326");
  RegisterBoth(name, box, Conversion(datum, wgs84), invertible ? Conversion(wgs84, datum) : Work(),
               projDefinition);
}

orv::DatumDef GridDatum(orv::DatumMethod method, orv::DatumTarget special, bool inverse = false) {
  orv::DatumParameters p;
  p.method = method;
  p.target = method == orv::DatumMethodNone ? orv::DatumTargetWGS84 : orv::DatumTargetNAD83;
  p.ellipsoid = Ellipsoid("EPSG:7030");
  p.inverse = inverse;
  orv::DatumDef datum(&p, 0);
  datum.SetSpecial(special);
  return datum;
}

/// NADCON grids of the published ones' number, sizes and spacings, with shifts of their order; PROJ gets the nodes of
/// the first, in which all points lie, as an NTv2 file.  NTv2: one file for both.
void RegisterGrids() {
  static const orv::test::TempFolder folder;  // as long as the process
  const orv::DatumDef nad83 = GridDatum(orv::DatumMethodNone, orv::DatumTargetNAD83);

  const auto west = [](int col, int row) {
    return 1.5F + 0.01F * static_cast<float>(col) - 0.004F * static_cast<float>(row);
  };
  const auto north = [](int col, int row) {
    return 0.5F - 0.003F * static_cast<float>(col) + 0.002F * static_cast<float>(row);
  };
  const orv::test::NadconLayout layouts[] = {
      {273, 121, -131.0F, 0.25F, 20.0F, 0.25F},        {529, 249, -194.0F, 0.125F, 46.0F, 0.125F},
      {281, 201, -161.0F, 0.025F, 18.0F, 0.025F},      {81, 41, -68.0F, 0.05F, 17.0F, 0.05F},
      {121, 61, -171.0F, 1.0F / 60, 56.0F, 1.0F / 60}, {41, 21, -171.0F, 0.05F, 57.0F, 0.05F}};
  for (size_t i = 0; i < std::size(layouts); ++i) {
    folder.Write(std::to_string(i) + ".los", orv::test::NadconFile(layouts[i], west));
    folder.Write(std::to_string(i) + ".las", orv::test::NadconFile(layouts[i], north));
  }
  const std::string nodes = folder.Write(
      "nodes.gsb", orv::test::NTv2File(
                       {orv::test::NTv2Box("NODES", "NONE", -131, 20, 0.25, 273, 121, [&](int col, int row) {
                         return orv::test::NTv2Shift{north(col + 1, row + 1), west(col + 1, row + 1)};
                       })}));
  orv::ORVSetNadconGridPath(folder.Path().c_str());
  const orv::DatumDef nad27 = GridDatum(orv::DatumMethodNADCON, orv::DatumTargetNAD27);
  RegisterBoth("NADCON", {-125, -70, 25, 45}, Conversion(nad27, nad83), Conversion(nad83, nad27),
               "+proj=hgridshift +grids=" + nodes);

  const std::string france = "/usr/share/proj/ntf_r93.gsb";
  if (!std::filesystem::exists(france)) {
    std::fprintf(stderr, "orv_bench: %s is missing (package proj-data); NTv2 is left out\n", france.c_str());
    return;
  }
  orv::ORVSetNTv2GridFile(france.c_str());
  RegisterBoth("NTv2", {-5, 9.5, 41.5, 51.5},
               Conversion(GridDatum(orv::DatumMethodNTV2, orv::DatumTargetNone), nad83),
               Conversion(GridDatum(orv::DatumMethodNTV2, orv::DatumTargetNone, true), nad83),
               "+proj=hgridshift +grids=" + france);
}

const std::string kHelmertDhdn =
    "+step +proj=cart +ellps=bessel +step +proj=helmert +x=598.1 +y=73.7 +z=418.2 +rx=0.202 +ry=0.045 +rz=-2.455 +s=6.7 "
    "+convention=position_vector +step +inv +proj=cart +ellps=WGS84";

void RegisterDatums() {
  const Box europe = {5, 15, 45, 55};
  orv::DatumDef ed50 = Datum("EPSG:6230");  // three shifts, which the catalogue has as seven parameters
  ed50.SetMethod(orv::DatumMethodMolodensky, false);
  RegisterDatum("Molodensky", ed50, europe, true,
                "+proj=molodensky +ellps=intl +dx=-87 +dy=-98 +dz=-121 +da=-251 +df=-1.41927027e-05");
  RegisterDatum("Bursa-Wolf", Datum("EPSG:6314"), europe, true, "+proj=pipeline " + kHelmertDhdn);
  orv::DatumParameters mre;
  mre.method = orv::DatumMethodMRE;
  mre.target = orv::DatumTargetWGS84;
  mre.mreType = orv::DatumMRETypeED50;
  RegisterDatum("Regression (ED50)", orv::DatumDef(&mre, 0), europe, false, "");  // PROJ has none
}

void RegisterTransformer() {
  orv::ProjectionParameters p;
  p.method = orv::ProjectionMethodTransverseMercator;
  p.ellipsoid = Ellipsoid("EPSG:7004");
  p.Lon0 = 9;
  p.xOrg = 3500000;
  const orv::DatumDef dhdn = Datum("EPSG:6314"), wgs84 = Datum("EPSG:6326");
  const orv::ProjectionDef grid(p), geographic(orv::ProjectionMethodUnprojected);
  const orv::ORVDef from(&dhdn, &grid, nullptr), to(&wgs84, &geographic, nullptr);
  orv::CSTransformer& transformer = Keep<orv::CSTransformer>(&from, &to, false, false);
  transformer.Initialize();
  const Work work = [&transformer](shr::Vec2d* points, size_t count) {
    transformer.Transform(points, points, count);
  };

  auto input = std::make_shared<Points>(RandomPoints({6, 12, 45, 55}));
  orv::Projector(grid).TransformForward(*input);
  Points result = *input;
  work(result.data(), result.size());
  RequirePlaced(result, "transformer");
  const std::string name = "TM on DHDN to geographic on WGS 84/transform";
  Register(name + "/orv", input, work);
  const Proj& proj = Keep<Proj>(
      "+proj=pipeline +step +inv +proj=tmerc +approx +lon_0=9 +x_0=3500000 +ellps=bessel " + kHelmertDhdn);
  Register(name + "/proj", input, proj.Run(PJ_FWD));
}

/// What is not done for each point: no items, but times.
void RegisterOnce() {
  const orv::DatumDef dhdn = Datum("EPSG:6314"), wgs84 = Datum("EPSG:6326");
  orv::ProjectionParameters p;
  p.method = orv::ProjectionMethodUTM;
  p.ellipsoid = Ellipsoid("EPSG:7030");
  const orv::ProjectionDef utm(p);
  std::string text;
  orv::ORVDef(&wgs84, &utm, nullptr).EncodeToText(text);
  benchmark::RegisterBenchmark("once/decode a system", [text](benchmark::State& state) {
    for (auto _ : state) {
      benchmark::DoNotOptimize(std::unique_ptr<orv::CSDef>(orv::CSDef::BuildFromEncodedText(text, nullptr)));
    }
  });
  benchmark::RegisterBenchmark("once/plan a datum route", [dhdn, wgs84](benchmark::State& state) {
    for (auto _ : state) {
      orv::DatumConverter converter(&dhdn, &wgs84);
      converter.Initialize();
      benchmark::DoNotOptimize(&converter);
    }
  });
  benchmark::RegisterBenchmark("once/load the datums", [](benchmark::State& state) {
    for (auto _ : state) {
      orv::DatumList list;
      benchmark::DoNotOptimize(list.Load(nullptr, true));
    }
  });
}

bool TakePolygon(void* context, size_t, const size_t*, const shr::Vec2d* points) {
  benchmark::DoNotOptimize(points);
  ++*static_cast<size_t*>(context);
  return true;
}
bool TakeLine(void*, size_t, const shr::Vec2d* points) {
  benchmark::DoNotOptimize(points);
  return true;
}

/// The land of the world, clipped polygon by polygon: points of the input per second.
void RegisterClipping() {
  struct Flat {
    std::vector<size_t> counts;
    Points points;
  };
  std::vector<Flat> land;
  size_t points = 0;
  for (const orv::test::LandPolygon& polygon : orv::test::ReadLand("land-50m")) {
    Flat& flat = land.emplace_back();
    for (const auto& ring : polygon) {
      flat.counts.push_back(ring.size());
      flat.points.insert(flat.points.end(), ring.begin(), ring.end());
      points += ring.size();
    }
  }
  const struct {
    const char* name;
    orv::ProjectionMethod method;
    double lon, lat;
  } kRows[] = {{"clip/land-50m/Mercator", orv::ProjectionMethodMercator, 100.0, 0.0},
               {"clip/land-50m/Cassini", orv::ProjectionMethodCassini, 100.0, 40.0}};
  for (const auto& row : kRows) {
    orv::ProjectionParameters p;
    p.method = row.method;
    p.ellipsoid = Ellipsoid("EPSG:7030");
    p.Lon0 = row.lon;
    p.Lat0 = row.lat;
    const orv::ProjectionDef def(p);
    benchmark::RegisterBenchmark(row.name, [land, points, def](benchmark::State& state) {
      orv::Projector projector(def);
      size_t pieces = 0;
      for (auto _ : state) {
        for (const Flat& flat : land) {
          projector.PreclipPolygon(&pieces, flat.counts.size(), flat.counts.data(), flat.points.data(),
                                   &TakePolygon, &TakeLine);
        }
      }
      if (pieces == 0) state.SkipWithError("nothing is left");
      state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(points));
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  try {
    orv::ORVSetConfigPath(orv::test::CatalogueFolder().c_str());
    orv::ORVKnownEllipsoidsList.Load(nullptr, true);
    orv::ORVKnownDatumsList.Load(nullptr, true);
    RegisterEngines();
    RegisterConicEngines();
    RegisterAzimuthalEngines();
    RegisterWorldEngines();
    RegisterDatums();
    RegisterGrids();
    RegisterTransformer();
    RegisterClipping();
    RegisterOnce();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orv_bench: %s\n", e.what());
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
