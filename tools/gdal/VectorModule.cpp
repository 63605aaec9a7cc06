// The module that reads and writes vector files by GDAL.
#include "tools/gdal/VectorModule.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Json = nlohmann::json;

/// Ends the run; the text is for the user, "" when a callback knows.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string GdalSays() {
  std::string text = CPLGetLastErrorMsg();
  while (!text.empty() && (text.back() == '\n' || text.back() == '.')) text.pop_back();
  return text.empty() ? "no reason is given" : text;
}

// ---- geometries --------------------------------------------------------------------------------------------------

const struct {
  OGRwkbGeometryType type;
  const char* name;
} kTypes[] = {{wkbPoint, "Point"},
              {wkbLineString, "LineString"},
              {wkbPolygon, "Polygon"},
              {wkbMultiPoint, "MultiPoint"},
              {wkbMultiLineString, "MultiLineString"},
              {wkbMultiPolygon, "MultiPolygon"},
              {wkbGeometryCollection, "GeometryCollection"}};

void AppendNumber(std::string& out, double value) {
  std::array<char, 32> digits;
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

void AppendPosition(std::string& out, OGRGeometryH geometry, int i) {
  out += '[';
  AppendNumber(out, OGR_G_GetX(geometry, i));
  out += ',';
  AppendNumber(out, OGR_G_GetY(geometry, i));
  if (OGR_G_Is3D(geometry)) AppendNumber(out += ',', OGR_G_GetZ(geometry, i));
  if (OGR_G_IsMeasured(geometry)) AppendNumber(out += ',', OGR_G_GetM(geometry, i));
  out += ']';
}

/// The parts that are not empty, by append(out, part), with commas between.
void AppendParts(std::string& out, OGRGeometryH geometry,
                 void (*append)(std::string& out, OGRGeometryH part)) {
  bool bFirst = true;
  for (int i = 0; i < OGR_G_GetGeometryCount(geometry); ++i) {
    const OGRGeometryH part = OGR_G_GetGeometryRef(geometry, i);
    if (OGR_G_IsEmpty(part)) continue;
    if (!bFirst) out += ',';
    bFirst = false;
    append(out, part);
  }
}

void AppendCoordinates(std::string& out, OGRGeometryH geometry) {
  const OGRwkbGeometryType type = wkbFlatten(OGR_G_GetGeometryType(geometry));
  if (type == wkbPoint) return AppendPosition(out, geometry, 0);
  out += '[';
  if (type == wkbLineString) {
    for (int i = 0; i < OGR_G_GetPointCount(geometry); ++i) {
      if (i > 0) out += ',';
      AppendPosition(out, geometry, i);
    }
  } else {
    AppendParts(out, geometry, &AppendCoordinates);
  }
  out += ']';
}

void AppendGeometry(std::string& out, OGRGeometryH geometry) {
  const OGRwkbGeometryType type = wkbFlatten(OGR_G_GetGeometryType(geometry));
  const auto* const row =
      std::find_if(std::begin(kTypes), std::end(kTypes), [&](const auto& r) { return r.type == type; });
  if (row == std::end(kTypes))
    throw Failure(std::string("geometries of type ") + OGRGeometryTypeToName(type) + " are not converted");
  out += std::string(R"({"type":")") + row->name + "\",";
  if (type != wkbGeometryCollection) {
    AppendCoordinates(out += R"("coordinates":)", geometry);
  } else {
    out += R"("geometries":[)";
    AppendParts(out, geometry, &AppendGeometry);
    out += ']';
  }
  out += '}';
}

/// Which further numbers a position has.
struct Further {
  bool bZ, bM;
};

void AddPosition(OGRGeometryH geometry, const Json& position, Further further) {
  const double x = position[0], y = position[1];
  const size_t has = position.size();
  const bool bZ = further.bZ && has > 2, bM = further.bM && has > (further.bZ ? 3U : 2U);
  const double z = bZ ? position[2].get<double>() : 0.0, m = bM ? position.back().get<double>() : 0.0;
  if (bZ && bM) return OGR_G_AddPointZM(geometry, x, y, z, m);
  if (bZ) return OGR_G_AddPoint(geometry, x, y, z);
  if (bM) return OGR_G_AddPointM(geometry, x, y, m);
  OGR_G_AddPoint_2D(geometry, x, y);
}

struct GeometryEnd {
  void operator()(OGRGeometryH geometry) const { OGR_G_DestroyGeometry(geometry); }
};
using Geometry = std::unique_ptr<void, GeometryEnd>;

Geometry FromCoordinates(OGRwkbGeometryType type, const Json& coordinates, Further further) {
  Geometry geometry(OGR_G_CreateGeometry(type));
  if (type == wkbPoint) {
    AddPosition(geometry.get(), coordinates, further);
    return geometry;
  }
  for (const Json& part : coordinates) {
    if (type == wkbLineString || type == wkbLinearRing) {
      AddPosition(geometry.get(), part, further);
    } else {
      const OGRwkbGeometryType partType = type == wkbPolygon           ? wkbLinearRing
                                          : type == wkbMultiPoint      ? wkbPoint
                                          : type == wkbMultiLineString ? wkbLineString
                                                                       : wkbPolygon;
      OGR_G_AddGeometryDirectly(geometry.get(), FromCoordinates(partType, part, further).release());
    }
  }
  return geometry;
}

/// Null for "null".
Geometry FromJson(const Json& json, Further further) {
  if (json.is_null()) return nullptr;
  const std::string name = json["type"];
  const auto* const row =
      std::find_if(std::begin(kTypes), std::end(kTypes), [&](const auto& r) { return name == r.name; });
  if (row->type != wkbGeometryCollection) return FromCoordinates(row->type, json["coordinates"], further);
  Geometry collection(OGR_G_CreateGeometry(wkbGeometryCollection));
  for (const Json& part : json["geometries"])
    OGR_G_AddGeometryDirectly(collection.get(), FromJson(part, further).release());
  return collection;
}

// ---- files -------------------------------------------------------------------------------------------------------

struct DatasetEnd {
  void operator()(GDALDatasetH dataset) const { GDALClose(dataset); }
};
using Dataset = std::unique_ptr<void, DatasetEnd>;

struct FeatureEnd {
  void operator()(OGRFeatureH feature) const { OGR_F_Destroy(feature); }
};
using Feature = std::unique_ptr<void, FeatureEnd>;

bool Writes(GDALDriverH driver) {
  return GDALGetMetadataItem(driver, GDAL_DCAP_VECTOR, nullptr) &&
         GDALGetMetadataItem(driver, GDAL_DCAP_CREATE, nullptr);
}

/// Whether the word is one of those between blanks.
bool IsAmong(const std::string& word, const char* words) {
  return words && (" " + std::string(words) + " ").find(" " + word + " ") != std::string::npos;
}

GDALDriverH OutputDriver(const OrvVectorJob& job) {
  if (job.outputFormat) {
    const GDALDriverH driver = GDALGetDriverByName(job.outputFormat);
    if (!driver) throw Failure(std::string("GDAL has no format '") + job.outputFormat + "'");
    if (!Writes(driver))
      throw Failure(std::string("GDAL cannot write vector files of the format '") + job.outputFormat + "'");
    return driver;
  }
  std::string extension = CPLGetExtension(job.output);
  for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  for (int i = 0; !extension.empty() && i < GDALGetDriverCount(); ++i) {
    const GDALDriverH driver = GDALGetDriver(i);
    if (Writes(driver) && IsAmong(extension, GDALGetMetadataItem(driver, GDAL_DMD_EXTENSIONS, nullptr)))
      return driver;
  }
  throw Failure(std::string("GDAL writes no vector files that are named like '") + job.output +
                "': give --output-format");
}

std::string WktOf(OGRLayerH layer) {
  const OGRSpatialReferenceH system = OGR_L_GetSpatialRef(layer);
  if (!system) return "";
  char* wkt = nullptr;
  const char* const form[] = {"FORMAT=WKT2_2019", nullptr};
  std::string text;
  if (OSRExportToWktEx(system, &wkt, form) == OGRERR_NONE && wkt) text = wkt;
  CPLFree(wkt);
  return text;
}

class Run {
 public:
  explicit Run(const OrvVectorJob& job) : m_Job(job) {}

  /// What has been written when it fails is taken away again.
  void Convert() {
    try {
      ConvertAll();
    } catch (...) {
      m_Output.reset();
      if (m_pCreatedBy && std::string_view(m_Job.output) != "/vsistdout/")
        GDALDeleteDataset(m_pCreatedBy, m_Job.output);
      throw;
    }
  }

 private:
  void ConvertAll() {
    const char* const formats[] = {m_Job.inputFormat, nullptr};
    if (m_Job.inputFormat && !GDALGetDriverByName(m_Job.inputFormat))
      throw Failure(std::string("GDAL has no format '") + m_Job.inputFormat + "'");
    const Dataset input(GDALOpenEx(m_Job.input, GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR,
                                   m_Job.inputFormat ? formats : nullptr, nullptr, nullptr));
    if (!input) throw Failure(std::string("cannot read '") + m_Job.input + "': " + GdalSays());
    const GDALDriverH driver = OutputDriver(m_Job);
    m_Output.reset(GDALCreate(driver, m_Job.output, 0, 0, 0, GDT_Unknown, nullptr));
    if (!m_Output) FailToWrite();
    m_pCreatedBy = driver;
    const bool bTransaction = GDALDatasetTestCapability(m_Output.get(), ODsCTransactions) != 0 &&
                              GDALDatasetStartTransaction(m_Output.get(), FALSE) == OGRERR_NONE;
    for (int i = 0; i < GDALDatasetGetLayerCount(input.get()); ++i)
      Layer(GDALDatasetGetLayer(input.get(), i));
    if (bTransaction && GDALDatasetCommitTransaction(m_Output.get()) != OGRERR_NONE) FailToWrite();
    // What a full disk says is only heard when the file is closed.
    CPLErrorReset();
    m_Output.reset();
    if (CPLGetLastErrorType() >= CE_Failure) FailToWrite();
  }

  [[noreturn]] void FailToWrite() const {
    throw Failure(std::string("cannot write '") + m_Job.output + "': " + GdalSays());
  }

  void Layer(OGRLayerH source) {
    const char* const target = m_Job.layer(m_Job.context, OGR_L_GetName(source), WktOf(source).c_str());
    if (!target) throw Failure("");
    OGRSpatialReferenceH system = nullptr;
    if (*target != '\0') {
      system = OSRNewSpatialReference(target);
      if (system) OSRSetAxisMappingStrategy(system, OAMS_TRADITIONAL_GIS_ORDER);
    }
    OGRwkbGeometryType type = OGR_L_GetGeomType(source);
    const OGRwkbGeometryType flat = wkbFlatten(type);
    const bool bPoints = flat == wkbPoint || flat == wkbMultiPoint || flat == wkbNone;
    if (OGR_GT_IsNonLinear(type) || (m_Job.otherTypes && !bPoints)) type = wkbUnknown;
    const OGRLayerH sink =
        GDALDatasetCreateLayer(m_Output.get(), OGR_L_GetName(source), system, type, nullptr);
    if (system) OSRRelease(system);
    if (!sink) FailToWrite();
    const std::vector<int> fields = CopyFields(OGR_L_GetLayerDefn(source), sink);
    OGR_L_ResetReading(source);
    unsigned long long number = 0;
    CPLErrorReset();
    while (const Feature feature{OGR_L_GetNextFeature(source)}) Copy(feature.get(), ++number, sink, fields);
    if (CPLGetLastErrorType() >= CE_Failure)
      throw Failure(std::string("cannot read '") + m_Job.input + "': " + GdalSays());
  }

  /// Where each field of the source stands in the sink; -1 for one that its format does not take, and behind the last, for
  /// GDAL takes no empty list.
  static std::vector<int> CopyFields(OGRFeatureDefnH source, OGRLayerH sink) {
    std::vector<int> places;
    for (int i = 0; i < OGR_FD_GetFieldCount(source); ++i) {
      const int before = OGR_FD_GetFieldCount(OGR_L_GetLayerDefn(sink));
      const bool bTaken = OGR_L_CreateField(sink, OGR_FD_GetFieldDefn(source, i), TRUE) == OGRERR_NONE;
      const int after = OGR_FD_GetFieldCount(OGR_L_GetLayerDefn(sink));
      // A format with fields of its own may have that one already.
      places.push_back(!bTaken ? -1
                       : after > before
                           ? before
                           : OGR_FD_GetFieldIndex(OGR_L_GetLayerDefn(sink),
                                                  OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(source, i))));
    }
    places.push_back(-1);
    return places;
  }

  void Copy(OGRFeatureH source, unsigned long long number, OGRLayerH sink, const std::vector<int>& fields) {
    const Feature copy(OGR_F_Create(OGR_L_GetLayerDefn(sink)));
    if (OGR_F_SetFromWithMap(copy.get(), source, TRUE, fields.data()) != OGRERR_NONE) FailToWrite();
    OGR_F_SetFID(copy.get(), OGR_F_GetFID(source));
    if (const OGRGeometryH before = OGR_F_GetGeometryRef(source); before && !OGR_G_IsEmpty(before)) {
      const Geometry linear(OGR_G_GetLinearGeometry(before, 0.0, nullptr));
      std::string text;
      AppendGeometry(text, linear.get());
      const char* const answer = m_Job.geometry(m_Job.context, number, text.c_str());
      if (!answer) throw Failure("");
      const Further further{OGR_G_Is3D(linear.get()) != 0, OGR_G_IsMeasured(linear.get()) != 0};
      OGR_F_SetGeometryDirectly(copy.get(), FromJson(Json::parse(answer), further).release());
    }
    if (OGR_L_CreateFeature(sink, copy.get()) != OGRERR_NONE) FailToWrite();
  }

  const OrvVectorJob& m_Job;
  Dataset m_Output;
  GDALDriverH m_pCreatedBy = nullptr;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) int orv_vector_version(void) { return ORV_VECTOR_VERSION; }

extern "C" __attribute__((visibility("default"))) int orv_vector_convert(const OrvVectorJob* job, char* error,
                                                                         size_t errorSize) {
  GDALAllRegister();
  CPLPushErrorHandler(&CPLQuietErrorHandler);
  int status = 0;
  try {
    Run(*job).Convert();
  } catch (const std::exception& e) {
    std::snprintf(error, errorSize, "%s", e.what());
    status = 1;
  }
  CPLPopErrorHandler();
  return status;
}
