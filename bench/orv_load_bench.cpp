// Times and memory of what is done once: loading lists, finding systems, starting up, with PROJ's creation of one
// transformation between two named systems beside the start.
//
// Prints a Markdown table.  Each time is the median of interleaved repetitions; resident memory is taken around
// the first load of a fresh process.
#include <proj.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/core/Startup.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/EllipsoidList.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::CSList;
using Clock = std::chrono::steady_clock;

constexpr int kSystems = 10000;
constexpr int kRepetitions = 9;

double SecondsOf(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

double ResidentMegabytes() {
  long total = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// Runs in a process of its own, so that memory that others have used and given back does not hide what is used.
void InFreshProcess(void (*work)(const std::string& path), const std::string& path) {
  std::fflush(stdout);
  const pid_t process = fork();
  if (process == 0) {
    int status = 0;
    try {
      work(path);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "orv_load_bench: %s\n", e.what());
      status = 1;
    }
    std::fflush(stdout);
    _exit(status);
  }
  int status = 0;
  if (process < 0 || waitpid(process, &status, 0) != process || status != 0) {
    throw std::runtime_error("a part has failed");
  }
}

orv::DatumDef AddKnownDatum() {
  orv::DatumParameters p;
  p.method = orv::DatumMethodNone;
  p.target = orv::DatumTargetWGS84;
  p.ellipsoid = orv::EllipsoidDef(6378137.0, 1.0 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030);
  orv::ORVKnownEllipsoidsList.Add(p.ellipsoid);
  orv::DatumDef known(&p, 6326);
  known.SetToken("WGS84");
  known.SetName("World Geodetic System 1984");
  orv::ORVKnownDatumsList.Add(known, 1);
  return known;
}

/// Systems of many tokens and names, on a datum by reference and, one in eight, on one written out.
void SaveSystems(const std::string& path) {
  const orv::DatumDef known = AddKnownDatum();
  const orv::DatumParameters p = *known.GetParameters();
  CSList list;
  for (int i = 0; i < kSystems; ++i) {
    orv::ProjectionDef projection(orv::ProjectionMethodTransverseMercator);
    projection.SetParameter(orv::ProjectionParameterIDEllipsoid, p.ellipsoid);
    projection.SetParameter(orv::ProjectionParameterIDLon0,
                            static_cast<double>(i * 7919 % 36000 - 18000) / 100.0);
    orv::DatumParameters own = p;
    own.method = orv::DatumMethodMolodensky;
    own.dx = i % 100;
    orv::DatumDef ownDatum(&own, 0);
    ownDatum.SetToken("OWN");
    ownDatum.SetName("a datum written out");
    orv::ORVDef system(i % 8 != 0 ? &known : &ownDatum, &projection, nullptr);
    const int number = i * 7919 % kSystems;  // in no order
    system.SetToken(("SYS:" + std::to_string(number)).c_str());
    system.SetName(
        ("Projected|Region " + std::to_string(number % 97) + "|Grid number " + std::to_string(number))
            .c_str());
    system.SetPOSC(20000 + number);
    system.SetComment("made by the benchmark");
    list.Add(system);
  }
  list.Save(path.c_str());
}

void Row(const char* what, double value, const char* unit) {
  std::printf("| %s | %.4g %s |\n", what, value, unit);
}

void MeasureSystems(const std::string& path) {
  AddKnownDatum();
  const auto bytes = static_cast<double>(std::filesystem::file_size(path));

  CSList& list = orv::ORVKnownSystemsList;
  const double before = ResidentMegabytes();
  list.Load(path.c_str(), true);
  const double growth = ResidentMegabytes() - before;
  if (list.Count() != kSystems) throw std::runtime_error("systems are missing");
  std::vector<double> loads;
  for (int i = 0; i < kRepetitions; ++i) loads.push_back(SecondsOf([&] { list.Load(path.c_str(), true); }));

  size_t found = 0;
  const double finds = SecondsOf([&] {
    for (int i = 0; i < kSystems; ++i) found += list.FindByToken(("sys:" + std::to_string(i)).c_str()) != 0;
  });
  if (found != kSystems) throw std::runtime_error("a token is not found");
  const orv::ORVDef asked = static_cast<const orv::ORVDef&>(*list.Enum(list.Last()));
  int position = 0;
  const double search = SecondsOf([&] { position = list.FindSystem(asked, false, false); });
  if (position == 0) throw std::runtime_error("the system is not found");

  Row("a file of 10 000 systems", bytes / 1e6, "MB");
  Row("its load, for each byte", Median(loads) / bytes * 1e9, "ns");
  Row("growth of resident memory by it", growth, "MB");
  Row("FindByToken among them", finds / kSystems * 1e9, "ns");
  Row("FindSystem among them", search * 1e6, "us");
}

/// Starting up with the shipped catalogue, and PROJ's way from nothing to one transformation.
void MeasureStart(const std::string&) {
  std::vector<double> ours, peers;
  const double before = ResidentMegabytes();
  double growth = 0.0;
  for (int i = 0; i < kRepetitions; ++i) {
    ours.push_back(SecondsOf([] { orv::ORVInitialize(ORV_CATALOGUE_DIR, true); }));
    if (i == 0) growth = ResidentMegabytes() - before;
    orv::ORVShutdown();
    peers.push_back(SecondsOf([] {
      PJ_CONTEXT* const context = proj_context_create();
      PJ* const way = proj_create_crs_to_crs(context, "EPSG:31467", "EPSG:25832", nullptr);
      if (!way) throw std::runtime_error("PROJ has no database");
      proj_destroy(way);
      proj_context_destroy(context);
    }));
  }
  orv::ORVInitialize(ORV_CATALOGUE_DIR, true);
  const double systems = orv::ORVKnownSystemsList.Count(), datums = orv::ORVKnownDatumsList.Count();
  orv::ORVShutdown();
  Row("systems in the catalogue", systems, "");
  Row("datums in the catalogue", datums, "");
  Row("ORVInitialize with all of it", Median(ours) * 1e3, "ms");
  Row("growth of resident memory by it", growth, "MB");
  Row("PROJ: context and one transformation, EPSG:31467 to EPSG:25832", Median(peers) * 1e3, "ms");
}

}  // namespace

int main() {
  try {
    std::printf("| once | |\n|---|--:|\n");
    const orv::test::TempFolder folder;
    const std::string path = folder.Path("system.ocf");
    InFreshProcess(&SaveSystems, path);
    InFreshProcess(&MeasureSystems, path);
    InFreshProcess(&MeasureStart, path);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orv_load_bench: %s\n", e.what());
    return 1;
  }
  return 0;
}
