// VectorModule.h: what orv and its module for vector files agree on.
//
// The module links GDAL, and orv does not: it loads the module when a file needs it.  Nothing but C crosses this border:
// geometries as GeoJSON texts, systems as well-known text, failures as text.
#pragma once

#include <stddef.h>

#define ORV_VECTOR_VERSION 1

#ifdef __cplusplus
extern "C" {
#endif

/// Texts are UTF-8 and end with a zero; those that a callback gives stay as they are until the next call.
typedef struct OrvVectorJob {
  const char* input;
  const char* inputFormat; /**< GDAL's short name of it, or null: GDAL finds it */
  const char* output;
  const char* outputFormat; /**< GDAL's short name of it, or null: by the output's extension */
  int otherTypes;           /**< whether lines and polygons may become others: one may become several */
  void* context;            /**< handed to the callbacks */
  /** A layer begins.  wkt is its system, WKT2:2019, or "".  Answers that of its output, or ""; null ends the run. */
  const char* (*layer)(void* context, const char* name, const char* wkt);
  /** A geometry of a feature, which is numbered from 1 in its layer: positions hold x, y, then z and m if there are any.
      Answers what comes of it, "null" for nothing left; null ends the run. */
  const char* (*geometry)(void* context, unsigned long long feature, const char* json);
} OrvVectorJob;

/// ORV_VECTOR_VERSION of the module.
int orv_vector_version(void);
/// Converts all layers; an output that fails is removed.  @return 0, or 1 with what has failed in `error`, cut to its size ("" when a callback did).
int orv_vector_convert(const OrvVectorJob* job, char* error, size_t errorSize);

#ifdef __cplusplus
}
#endif
