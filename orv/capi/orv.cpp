#include "orv/capi/orv.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "orv/convert/Conversion.h"
#include "orv/convert/Explanation.h"
#include "orv/convert/KnownSearch.h"
#include "orv/convert/SystemText.h"
#include "orv/core/Error.h"
#include "orv/core/Startup.h"
#include "orv/core/internal/Utf8.h"
#include "orv/datum/DatumDef.h"
#include "orv/shared/Exception.h"
#include "orv/system/ORVDef.h"
#include "orv/system/internal/Angles.h"
#include "orv/system/internal/Georeferenced.h"

struct orv_system {
  std::unique_ptr<orv::CSDef> definition;
  std::array<std::string, ORV_SYSTEM_ENCODED + 1> texts;
};

struct orv_entries {
  std::vector<orv::KnownEntry> entries;
  std::vector<std::string> shortNames;
};

struct orv_conversion {
  orv::Conversion conversion;
  std::once_flag explained;
  std::string text, json;
};

namespace {

// ---- failures --------------------------------------------------------------------------------------------

/// What orv_last_error tells of this thread.
struct LastError {
  orv_status status = ORV_OK;
  int code = 0;
  int line = 0;
  std::string unit, text;
};
thread_local LastError t_LastError;

orv_status StatusOf(int code) {
  switch (code) {
    case orv::ErrBadParameter:
    case orv::ErrSerialized:
      return ORV_ERROR_DEFINITION;
    case orv::ErrNoRoute:
    case orv::ErrTypesDiffer:
    case orv::ErrSourceWarp:
    case orv::ErrDestWarp:
    case orv::ErrSourceProjection:
    case orv::ErrDestProjection:
    case orv::ErrNoSourceDatum:
    case orv::ErrNoDestDatum:
    case orv::ErrSourceDatumMethod:
    case orv::ErrDestDatumMethod:
      return ORV_ERROR_NO_ROUTE;
    case orv::ErrDatumMethod:
      return ORV_ERROR_GRIDS;
    case orv::ErrFileMissing:
    case orv::ErrSyntax:
    case orv::ErrWriteFailed:
      return ORV_ERROR_FILE;
    case orv::ErrWrongState:
      return ORV_ERROR_STATE;
    default:
      return ORV_ERROR_FAILED;
  }
}

orv_status Fail(orv_status status, int code, const char* unit, int line, const char* text) noexcept {
  try {
    t_LastError = LastError{status, code, line, unit, text};
  } catch (...) {  // no memory for the text: the status still stands
    t_LastError.status = status;
  }
  return status;
}

orv_status FailHere(orv_status status, int line, const char* text) noexcept {
  return Fail(status, 0, "orv", line, text);
}
#define ORV_C_FAIL(status, text) FailHere((status), __LINE__, (text))
#define ORV_C_REQUIRE(condition) \
  if (!(condition)) return ORV_C_FAIL(ORV_ERROR_ARGUMENT, "bad argument: " #condition " does not hold")

/// Runs the work; whatever it raises becomes a status.
template <class Work>
orv_status Guarded(Work work) noexcept {
  try {
    return work();
  } catch (const shr::Exception& e) {
    return Fail(StatusOf(e.Code()), e.Code(), e.File(), e.Line(), e.Message());
  } catch (const std::bad_alloc&) {
    return ORV_C_FAIL(ORV_ERROR_FAILED, "out of memory");
  } catch (const std::exception& e) {
    return ORV_C_FAIL(ORV_ERROR_FAILED, e.what());
  } catch (...) {
    return ORV_C_FAIL(ORV_ERROR_FAILED, "an exception of unknown type");
  }
}

// ---- start-up --------------------------------------------------------------------------------------------

/// Starts that this interface has made and not taken back; the library's own count serves C++ hosts as well.
struct Starts {
  std::mutex mutex;
  unsigned int count = 0;
};
Starts& TheStarts() {
  static Starts starts;
  return starts;
}

/// Whatever names or plans needs the catalogue.
#define ORV_C_REQUIRE_CATALOGUE()                         \
  if (!orv::ORVActive() || orv::ORVReferenceCount() == 0) \
  return ORV_C_FAIL(ORV_ERROR_STATE, "the catalogue is not loaded: call orv_initialize first")

// ---- points ----------------------------------------------------------------------------------------------

static_assert(sizeof(shr::Vec2d) == 2 * sizeof(double), "pairs of doubles are points");

void Fill(orv_report* out, const orv::ConversionReport& report) {
  if (!out) return;
  const auto count = [&](orv::ConversionEvent event) { return report.Tally(event).count; };
  out->points = report.Points();
  out->placed = report.Placed();
  out->lost = report.Lost();
  out->first_lost = report.Points();
  for (int number = 0; number < orv::kConversionEvents; ++number) {
    const auto event = static_cast<orv::ConversionEvent>(number);
    if (orv::ConversionReport::IsLoss(event) && count(event) > 0) {
      out->first_lost = std::min(out->first_lost, report.Tally(event).first);
    }
  }
  out->doubtful = report.Doubtful();
  out->outside_grids = count(orv::ConversionNotedOutsideGrids);
  out->far_from_source_meridian = count(orv::ConversionNotedFarFromSourceMeridian);
  out->far_from_target_meridian = count(orv::ConversionNotedFarFromDestMeridian);
}

double* Step(double* at, size_t bytes) {
  return reinterpret_cast<double*>(reinterpret_cast<unsigned char*>(at) + bytes);
}

double Load(const double* at) {  // records may be packed, so that a double stands anywhere
  double value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

void Store(double* at, double value) { std::memcpy(at, &value, sizeof value); }

const orv::ORVDef* Georeferenced(const orv_system& system) {
  return orv::internal::Georeferenced(*system.definition);
}

std::string DatumName(const orv_system& system) {
  const orv::ORVDef* const def = Georeferenced(system);
  const char* const name = def && def->GetDatum() ? def->GetDatum()->GetName() : nullptr;
  return name ? name : "";
}

}  // namespace

extern "C" {

orv_status orv_last_error(orv_error* error) {
  ORV_C_REQUIRE(error);
  const LastError& last = t_LastError;
  *error = {last.status, last.code, last.unit.c_str(), last.line, last.text.c_str()};
  return ORV_OK;
}

orv_status orv_version(const char** text, int* c_api_version) {
  if (text) *text = ORV_VERSION;
  if (c_api_version) *c_api_version = ORV_C_API_VERSION;
  return ORV_OK;
}

orv_status orv_initialize(const char* folder) {
  return Guarded([&] {
    Starts& starts = TheStarts();
    const std::lock_guard<std::mutex> lock(starts.mutex);
    try {
      orv::ORVInitialize(folder, true);
    } catch (...) {
      orv::ORVShutdown();  // a start that fails is counted all the same
      throw;
    }
    ++starts.count;
    return ORV_OK;
  });
}

orv_status orv_shutdown(void) {
  return Guarded([&] {
    Starts& starts = TheStarts();
    const std::lock_guard<std::mutex> lock(starts.mutex);
    if (starts.count == 0) return ORV_C_FAIL(ORV_ERROR_STATE, "no orv_initialize is left to take back");
    --starts.count;
    orv::ORVShutdown();
    return ORV_OK;
  });
}

// ---- systems ---------------------------------------------------------------------------------------------

orv_status orv_system_create(const char* text, orv_system** system) {
  ORV_C_REQUIRE(text);
  ORV_C_REQUIRE(system);
  return Guarded([&] {
    ORV_C_REQUIRE_CATALOGUE();
    auto made = std::make_unique<orv_system>();
    made->definition = orv::ORVReadSystem(text);
    const orv::CSDef& definition = *made->definition;
    made->texts[ORV_SYSTEM_TOKEN] = definition.GetToken();
    made->texts[ORV_SYSTEM_NAME] = definition.GetName();
    made->texts[ORV_SYSTEM_SHORT_NAME] = definition.GetShortName();
    made->texts[ORV_SYSTEM_COMMENT] = definition.GetComment();
    made->texts[ORV_SYSTEM_DATUM] = DatumName(*made);
    definition.EncodeToText(made->texts[ORV_SYSTEM_ENCODED]);
    for (std::string& each : made->texts) each = orv::internal::WellFormedUtf8(each);
    *system = made.release();
    return ORV_OK;
  });
}

orv_status orv_system_destroy(orv_system* system) {
  delete system;
  return ORV_OK;
}

orv_status orv_system_text(const orv_system* system, orv_system_text_id id, const char** text) {
  ORV_C_REQUIRE(system);
  ORV_C_REQUIRE(text);
  const auto index = static_cast<size_t>(id);
  ORV_C_REQUIRE(index < system->texts.size());
  *text = system->texts[index].c_str();
  return ORV_OK;
}

orv_status orv_system_code(const orv_system* system, int* code) {
  ORV_C_REQUIRE(system);
  ORV_C_REQUIRE(code);
  const orv::ORVDef* const def = Georeferenced(*system);
  *code = def ? def->GetPOSC() : 0;
  return ORV_OK;
}

orv_status orv_system_is_geographic(const orv_system* system, int* geographic) {
  ORV_C_REQUIRE(system);
  ORV_C_REQUIRE(geographic);
  const orv::ORVDef* const def = Georeferenced(*system);
  *geographic = def && orv::internal::DegreesPerUnit(*def) != 0.0 ? 1 : 0;
  return ORV_OK;
}

orv_status orv_system_equals(const orv_system* system, const orv_system* other, int* equal) {
  ORV_C_REQUIRE(system);
  ORV_C_REQUIRE(other);
  ORV_C_REQUIRE(equal);
  return Guarded([&] {
    *equal = system->definition->Compare(*other->definition, false, nullptr) ? 1 : 0;
    return ORV_OK;
  });
}

// ---- catalogue -------------------------------------------------------------------------------------------

static_assert(static_cast<int>(ORV_LIST_SYSTEMS) == static_cast<int>(orv::KnownListSystems));
static_assert(static_cast<int>(ORV_LIST_DATUMS) == static_cast<int>(orv::KnownListDatums));
static_assert(static_cast<int>(ORV_LIST_ELLIPSOIDS) == static_cast<int>(orv::KnownListEllipsoids));
static_assert(static_cast<int>(ORV_LIST_MERIDIANS) == static_cast<int>(orv::KnownListMeridians));
static_assert(static_cast<int>(ORV_LIST_LINEAR_UNITS) == static_cast<int>(orv::KnownListLinearUnits));
static_assert(static_cast<int>(ORV_LIST_ANGULAR_UNITS) == static_cast<int>(orv::KnownListAngularUnits));

orv_status orv_entries_create(orv_list list, const char* words, size_t limit, orv_entries** entries) {
  ORV_C_REQUIRE(static_cast<unsigned int>(list) <= ORV_LIST_ANGULAR_UNITS);
  ORV_C_REQUIRE(entries);
  return Guarded([&] {
    ORV_C_REQUIRE_CATALOGUE();
    auto made = std::make_unique<orv_entries>();
    made->entries = orv::ORVSearchKnown(static_cast<orv::KnownList>(list), words ? words : "", limit);
    for (orv::KnownEntry& entry : made->entries) {
      for (std::string* const text : {&entry.token, &entry.name, &entry.about})
        *text = orv::internal::WellFormedUtf8(*text);
      made->shortNames.push_back(entry.ShortName());
    }
    *entries = made.release();
    return ORV_OK;
  });
}

orv_status orv_entries_destroy(orv_entries* entries) {
  delete entries;
  return ORV_OK;
}

orv_status orv_entries_count(const orv_entries* entries, size_t* count) {
  ORV_C_REQUIRE(entries);
  ORV_C_REQUIRE(count);
  *count = entries->entries.size();
  return ORV_OK;
}

orv_status orv_entries_get(const orv_entries* entries, size_t index, orv_entry* entry) {
  ORV_C_REQUIRE(entries);
  ORV_C_REQUIRE(entry);
  ORV_C_REQUIRE(index < entries->entries.size());
  const orv::KnownEntry& known = entries->entries[index];
  *entry = {known.token.c_str(), known.name.c_str(), entries->shortNames[index].c_str(), known.about.c_str(),
            known.code};
  return ORV_OK;
}

// ---- conversions -----------------------------------------------------------------------------------------

orv_status orv_conversion_create(const orv_system* from, const orv_system* to, orv_conversion** conversion) {
  ORV_C_REQUIRE(from);
  ORV_C_REQUIRE(to);
  ORV_C_REQUIRE(conversion);
  return Guarded([&] {
    ORV_C_REQUIRE_CATALOGUE();
    *conversion = new orv_conversion{orv::Conversion::Create(*from->definition, *to->definition), {}, {}, {}};
    return ORV_OK;
  });
}

orv_status orv_conversion_destroy(orv_conversion* conversion) {
  delete conversion;
  return ORV_OK;
}

orv_status orv_conversion_points(const orv_conversion* conversion, double* xy, size_t count,
                                 orv_report* report) {
  ORV_C_REQUIRE(conversion);
  ORV_C_REQUIRE(xy || count == 0);
  return Guarded([&] {
    orv::ConversionReport counted;
    if (count > 0) conversion->conversion.Convert(reinterpret_cast<shr::Vec2d*>(xy), count, counted);
    Fill(report, counted);
    return ORV_OK;
  });
}

orv_status orv_conversion_strided(const orv_conversion* conversion, double* x, size_t x_stride, double* y,
                                  size_t y_stride, size_t count, orv_report* report) {
  ORV_C_REQUIRE(conversion);
  ORV_C_REQUIRE((x && y) || count == 0);
  ORV_C_REQUIRE(x_stride >= sizeof(double) && y_stride >= sizeof(double));
  return Guarded([&] {
    constexpr size_t kBlock = 4096;
    std::array<shr::Vec2d, kBlock> block;
    orv::ConversionReport counted;
    orv::Conversion::Worker worker = conversion->conversion.MakeWorker();
    for (size_t done = 0; done < count;) {
      const size_t n = std::min(kBlock, count - done);
      double *atX = Step(x, done * x_stride), *atY = Step(y, done * y_stride);
      for (size_t i = 0; i < n; ++i) {
        block[i] = shr::Vec2d(Load(Step(atX, i * x_stride)), Load(Step(atY, i * y_stride)));
      }
      worker.Convert(block.data(), n, counted);
      for (size_t i = 0; i < n; ++i) {
        Store(Step(atX, i * x_stride), block[i].x);
        Store(Step(atY, i * y_stride), block[i].y);
      }
      done += n;
    }
    Fill(report, counted);
    return ORV_OK;
  });
}

orv_status orv_conversion_explain(orv_conversion* conversion, int json, const char** text) {
  ORV_C_REQUIRE(conversion);
  ORV_C_REQUIRE(text);
  return Guarded([&] {
    ORV_C_REQUIRE_CATALOGUE();
    std::call_once(conversion->explained, [&] {
      const orv::Explanation explanation = conversion->conversion.Explain();
      conversion->text = explanation.ToText();
      conversion->json = explanation.ToJson();
    });
    *text = (json ? conversion->json : conversion->text).c_str();
    return ORV_OK;
  });
}

}  // extern "C"
