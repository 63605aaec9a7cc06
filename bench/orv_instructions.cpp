// Instructions for each point of ten cases, counted by callgrind: repeatable, so that a slow-down is seen without
// timing anything.  scripts/instructions runs it, compares with bench/instructions.txt and writes that file.
//
// Each case runs once before it is counted, so that what is done once in a process does not count.  By itself
// the program only tells whether it can be counted: 77 when not.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#define ORV_HAS_CALLGRIND
#endif

#include "orv/core/Startup.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/lanes/Dispatch.h"
#include "orv/projection/Projector.h"
#include "orv/system/CSList.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"

#if defined(ORV_HAS_CALLGRIND)

namespace {

using Points = std::vector<shr::Vec2d>;
using Work = std::function<void(Points&)>;

constexpr size_t kPoints = 4096;

/// A grid of points, the same everywhere.
Points Grid(double west, double south, double width, double height) {
  Points points(kPoints);
  for (size_t i = 0; i < kPoints; ++i) {
    const double column = static_cast<double>(i % 64) / 63, row = static_cast<double>(i) / (kPoints - 1);
    points[i] = {west + width * column, south + height * row};
  }
  return points;
}

/// Counts `work` and hands the count to callgrind's output under the case's name and number of units.
void Count(const char* name, size_t units, const Points& points, const Work& work) {
  Points first = points, counted = points;
  work(first);
  CALLGRIND_ZERO_STATS;
  CALLGRIND_START_INSTRUMENTATION;
  work(counted);
  CALLGRIND_STOP_INSTRUMENTATION;
  const std::string title = std::string(name) + ", " + std::to_string(units);
  CALLGRIND_DUMP_STATS_AT(title.c_str());
}

orv::ProjectionDef Definition(orv::ProjectionMethod method,
                              const std::vector<std::pair<orv::ProjectionParameterID, double>>& parameters) {
  orv::ProjectionDef def;
  def.SetDefaultParameters(method);
  for (const auto& [id, value] : parameters) def.SetParameter(id, value);
  return def;
}

void CountProjection(const char* name, const orv::ProjectionDef& def, const Points& degrees, bool inverse) {
  orv::Projector projector(def);
  Points points = degrees;
  if (inverse) projector.TransformForward(points);
  Count(name, kPoints, points, [&](Points& batch) {
    inverse ? projector.TransformInverse(batch) : projector.TransformForward(batch);
  });
}

void CountAll() {
  Count("start-up, for each system", 5532, {}, [](Points&) {
    orv::ORVInitialize(ORV_CATALOGUE_DIR, true);
    CALLGRIND_STOP_INSTRUMENTATION;
    orv::ORVShutdown();
  });
  orv::ORVInitialize(ORV_CATALOGUE_DIR, true);

  using P = orv::ProjectionParameterID;
  const Points world = Grid(-179, -80, 358, 160), zone = Grid(6, 0, 6, 80), america = Grid(-160, 5, 120, 75);
  const orv::ProjectionDef tm =
      Definition(orv::ProjectionMethodTransverseMercator,
                 {{P::ProjectionParameterIDLon0, 9}, {P::ProjectionParameterIDXOrg, 3500000}});
  const orv::ProjectionDef lambert =
      Definition(orv::ProjectionMethodLambert, {{P::ProjectionParameterIDLon0, -96},
                                                {P::ProjectionParameterIDLat0, 23},
                                                {P::ProjectionParameterIDLat1, 29.5},
                                                {P::ProjectionParameterIDLat2, 45.5}});
  CountProjection("Mercator forward", Definition(orv::ProjectionMethodMercator, {}), world, false);
  CountProjection("Transverse Mercator forward", tm, zone, false);
  CountProjection("Transverse Mercator inverse", tm, zone, true);
  CountProjection("Lambert Conformal Conic forward", lambert, america, false);
  CountProjection("Lambert Conformal Conic inverse", lambert, america, true);
  CountProjection("Mollweide forward", Definition(orv::ProjectionMethodMollweide, {}), world, false);

  orv::DatumDef dhdn, wgs84;
  orv::ORVKnownDatumsList.FindByToken("EPSG:6314", &dhdn);
  orv::ORVKnownDatumsList.FindByToken("EPSG:6326", &wgs84);
  orv::DatumConverter converter(&dhdn, &wgs84);
  converter.Initialize();
  Count("Bursa-Wolf", kPoints, zone, [&](Points& batch) { converter.Convert(batch); });

  const orv::ProjectionDef geographic(orv::ProjectionMethodUnprojected);
  const orv::ORVDef from(&dhdn, &tm, nullptr), to(&wgs84, &geographic, nullptr);
  orv::CSTransformer transformer(&from, &to, false, false);
  transformer.Initialize();
  Points metres = zone;
  orv::Projector(tm).TransformForward(metres);
  Count("Transverse Mercator on DHDN to WGS 84", kPoints, metres,
        [&](Points& batch) { transformer.Transform(batch.data(), batch.data(), batch.size()); });
  Count("the same, one point at a time", kPoints, metres, [&](Points& batch) {
    for (shr::Vec2d& point : batch) transformer.Transform(&point, &point, 1);
  });
  orv::ORVShutdown();
}

}  // namespace

int main() {
  if (!RUNNING_ON_VALGRIND) {
    std::fputs("orv_instructions: to be run by scripts/instructions\n", stderr);
    return 77;
  }
  if (std::strcmp(orv::lanes::Kernels().isa, "avx2") != 0) {
    std::fputs("orv_instructions: the counts belong to AVX2, which ORV_ISA or this machine lacks\n", stderr);
    return 77;
  }
  CountAll();
  return 0;
}

#else

int main() {
  std::fputs("orv_instructions: built without valgrind's headers\n", stderr);
  return 77;
}

#endif
