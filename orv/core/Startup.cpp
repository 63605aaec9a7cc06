#include "orv/core/Startup.h"

#include <cstdarg>
#include <memory>
#include <utility>

#include "orv/core/ConfigFile.h"
#include "orv/core/ORVGlobals.h"
#include "orv/core/Platform.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/core/internal/Text.h"
#include "orv/core/internal/Trace.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/system/internal/SharedParts.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"

// Reports are those of the state of the process.
ORV_UNIT("Globals")

namespace orv {

// The known lists stand together in one unit, so that none of them can be used before another exists.  Their
// constructors touch nothing outside themselves.
MeridianList ORVKnownMeridiansList;
AngularUnitList ORVKnownAngularUnitsList;
LinearUnitList ORVKnownLinearUnitsList;
EllipsoidList ORVKnownEllipsoidsList;
DatumList ORVKnownDatumsList;
CSList ORVKnownSystemsList;

// ---- trace -----------------------------------------------------------------------------------------------

void ORVSetTraceCallback(ORVTraceCallback callback, void* context) {
  Globals().traceCallback = callback;
  Globals().traceContext = context;
}

void internal::Trace(const char* format, ...) {
  const ORVGlobals& globals = Globals();
  if (!globals.traceCallback) return;
  std::va_list args;
  va_start(args, format);
  const std::string line = FormatV(format, args);
  va_end(args);
  globals.traceCallback(line.c_str(), globals.traceContext);
}

// ---- loading ---------------------------------------------------------------------------------------------

namespace {

/// A setting of the settings file: its key, and what takes its value.
struct Setting {
  const char* key;
  void (*set)(const std::string& value);
};

bool IsTrue(const std::string& value) { return internal::EqualIgnoringCase(value, "true"); }

const Setting kSettings[] = {
    {"EnableCSMIFaceForProjection", [](const std::string& v) { Globals().csMapForProjection = IsTrue(v); }},
    {"EnableCSMIFaceForDatumConversion",
     [](const std::string& v) { Globals().csMapForDatumConversion = IsTrue(v); }},
    {"NTv2GridFile", [](const std::string& v) { ORVSetNTv2GridFile(v.c_str()); }},
    {"NadconGridPath", [](const std::string& v) { ORVSetNadconGridPath(v.c_str()); }},
};

/// Pairs key = value up to the end of the file or to whatever is no pair.  Unknown keys are skipped with their
/// value; without the file everything stays as it is.
void ReadSettings() {
  std::string path;
  if (!ORVFindConfigFile("orvmisc.ocf", path)) return;
  ConfigFileReader reader;
  reader.Open(path.c_str());
  while (reader.Next() && !reader.Token().empty()) {
    const std::string_view key = reader.Token();
    if (!reader.Next() || reader.Token() != "=") return;
    reader.Next();  // a value that the end of the file cuts off is empty
    for (const Setting& setting : kSettings) {
      if (internal::EqualIgnoringCase(key, setting.key)) setting.set(std::string(reader.Token()));
    }
  }
}

/// A known list's file, and where the time that its load takes is kept.
struct KnownFile {
  const char* name;
  bool (*load)(const char* path, bool bThrowIfFileMissing);
  uint32_t ORVGlobals::*time;  // null: not kept
};

template <auto* list>
bool LoadInto(const char* path, bool bThrowIfFileMissing) {
  return list->Load(path, bThrowIfFileMissing);
}

// The order matters: datums name ellipsoids, systems name both.
const KnownFile kKnownFiles[] = {
    {"meridian.ocf", &LoadInto<&ORVKnownMeridiansList>, nullptr},
    {"angularunit.ocf", &LoadInto<&ORVKnownAngularUnitsList>, nullptr},
    {"linearunit.ocf", &LoadInto<&ORVKnownLinearUnitsList>, nullptr},
    {"ellipsoid.ocf", &LoadInto<&ORVKnownEllipsoidsList>, &ORVGlobals::ellipsoidLoadTime},
    {"datum.ocf", &LoadInto<&ORVKnownDatumsList>, &ORVGlobals::datumLoadTime},
    {"system.ocf", &LoadInto<&ORVKnownSystemsList>, &ORVGlobals::systemsLoadTime},
};

using internal::SharedParts;

constexpr unsigned long kHasGeographicSystem = 1;  // flag of a datum

/// The geographic system of a known datum.
std::unique_ptr<ORVDef> GeographicSystem(std::shared_ptr<const DatumDef> shared) {
  const DatumDef& datum = *shared;
  // The projection carries the datum's ellipsoid although longitude and latitude need none; a datum without one
  // is no obstacle.
  auto projection = std::make_unique<ProjectionDef>(ProjectionMethodUnprojected);
  projection->SetParameter(ProjectionParameterIDEllipsoid, *datum.GetEllipsoid());
  auto system = std::make_unique<ORVDef>();
  SharedParts::SetDatum(*system, shared);
  SharedParts::SetProjection(*system, std::move(projection));
  system->SetToken((std::string("GEOGCS_") + internal::EmptyIfNull(datum.GetToken())).c_str());
  system->SetName((std::string("Geographic (lat/lon)|") + internal::EmptyIfNull(datum.GetName())).c_str());
  const int posc = datum.GetPOSCNumber();
  // Deliberate: 6999 itself has no geographic counterpart.
  if (posc >= 6000 && posc <= 6998) system->SetPOSC(posc - 2000);
  return system;
}

void AddGeographicSystems() {
  for (int index = ORVKnownDatumsList.First(); index <= ORVKnownDatumsList.Last(); ++index) {
    if (!(ORVKnownDatumsList.EnumFlags(index) & kHasGeographicSystem)) continue;
    SharedParts::Add(ORVKnownSystemsList, GeographicSystem(SharedParts::DatumAt(ORVKnownDatumsList, index)));
  }
}

bool LoadAll(bool bThrowIfFileMissing) {
  const uint32_t begin = platform::TickMilliseconds();
  int failures = 0;
  ReadSettings();
  for (const KnownFile& file : kKnownFiles) {
    std::string path;
    if (!ORVFindConfigFile(file.name, path)) {
      ++failures;
      if (bThrowIfFileMissing)
        return ORV_FAIL(ErrFileMissing, "Can't find configuration file '%s'", file.name);
      continue;
    }
    const uint32_t fileBegin = platform::TickMilliseconds();
    if (!file.load(path.c_str(), bThrowIfFileMissing)) ++failures;
    if (file.time) Globals().*file.time = platform::TickMilliseconds() - fileBegin;
  }
  Globals().totalLoadTime = platform::TickMilliseconds() - begin;
  if (failures > 0) return false;
  AddGeographicSystems();
  return true;
}

}  // namespace

bool ORVLoadAllConfigs(bool bThrowIfFileMissing) {
  Globals().active = false;
  const bool loaded = LoadAll(bThrowIfFileMissing);
  if (loaded) Globals().active = true;
  return loaded;
}

// ---- start and end ---------------------------------------------------------------------------------------

void ORVInitialize(const char* configPath, bool bThrowIfFileMissing) {
  ORVGlobals& globals = Globals();
  if (++globals.referenceCount > 1) {
    internal::Trace("uiInitializeReferenceCount now %u, so not starting up again.\n", globals.referenceCount);
    return;
  }
  internal::Trace("ORV starting up.\n");
  if (configPath) ORVSetConfigPath(configPath);
  ORVLoadAllConfigs(bThrowIfFileMissing);
  // The dictionaries' folder would be handed to an engine that is not available here.
  std::string dictionary;
  if (ORVFindConfigFile("coordsys.csd", dictionary)) internal::Trace("Looking for CS-Map dictionaries.\n");
}

void ORVShutdown() {
  ORVGlobals& globals = Globals();
  if (globals.referenceCount > 0) --globals.referenceCount;
  if (globals.referenceCount > 0) return;
  // Deliberate: a surplus call comes here again.
  ORVKnownSystemsList.Flush();
  ORVKnownDatumsList.Flush();
  ORVKnownEllipsoidsList.Flush();
  ORVKnownAngularUnitsList.Flush();
  ORVKnownLinearUnitsList.Flush();
  ORVKnownMeridiansList.Flush();
  internal::ReleaseGrids();
}

unsigned int ORVReferenceCount() { return Globals().referenceCount; }

bool ORVActive() { return Globals().active; }

void ORVDumpBenchmarks(std::string& text) {
  const ORVGlobals& globals = Globals();
  const auto seconds = [](uint32_t milliseconds) { return (milliseconds + 0.0001) / 1000; };
  text.clear();
  text += "The following information was recorded:\n";
  text += internal::Format("  Time to load ellipsoid config file:      %.3f seconds\n",
                           seconds(globals.ellipsoidLoadTime));
  text += internal::Format("  Time to load datum config file:          %.3f seconds\n",
                           seconds(globals.datumLoadTime));
  text += internal::Format("  Time to load systems config file:        %.3f seconds\n",
                           seconds(globals.systemsLoadTime));
  text += internal::Format("  Time to load all config files:           %.3f seconds\n",
                           seconds(globals.totalLoadTime));
}

void ORVEnableCSMIFace(bool forProjection, bool forDatumConversion) {
  Globals().csMapForProjection = forProjection;
  Globals().csMapForDatumConversion = forDatumConversion;
}

}  // namespace orv
