/**
 * @file orv.h
 * The C interface of ORVCore, for C99 and for every language that calls C.
 *
 * - Every function returns a status. On any status but ORV_OK its results are as they were, and orv_last_error tells
 *   why. No exception leaves the library.
 * - Objects are opaque handles: *_create makes one, *_destroy frees it (a null handle is nothing to do). Distinct
 *   handles may be used on distinct threads; one conversion serves any number of threads at once.
 * - Texts are UTF-8, never null, and end with a zero byte. A text that a function gives belongs to the handle that was
 *   asked and stays valid, unchanged, until that handle is destroyed.
 * - Points are pairs of doubles: x is longitude or easting, y is latitude or northing, angles in degrees.
 * - One call is needed before systems, entries and conversions are made or explained: orv_initialize(NULL), which finds the
 *   installed catalogue. Neither it nor orv_shutdown may run while another thread is in such a call.
 */
#ifndef ORV_CAPI_ORV_H
#define ORV_CAPI_ORV_H

#include <stddef.h>

#include "orv/core/Export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Grows with every change of this header. orv_version tells the number that the module was built with. */
#define ORV_C_API_VERSION 2

/** A coordinate that holds this number has no value. */
#define ORV_NO_VALUE 1.7976931348623157e308

/** How a call ended. The numbers are persistent. */
typedef enum orv_status {
  ORV_OK = 0,
  ORV_ERROR_ARGUMENT = 1,   /**< a null pointer or a number out of range */
  ORV_ERROR_DEFINITION = 2, /**< a text that names no system, or a definition that is not valid */
  ORV_ERROR_NO_ROUTE = 3,   /**< there is no way from the one system to the other */
  ORV_ERROR_GRIDS = 4,      /**< a datum method failed: a grid file is missing or cannot be read */
  ORV_ERROR_FILE = 5,       /**< a configuration file is missing, does not open or has an error in it */
  ORV_ERROR_STATE = 6,      /**< a call out of order: no orv_initialize before */
  ORV_ERROR_FAILED = 7 /**< anything else: data that cannot be used, a computation that failed, no memory */
} orv_status;

/** The last failure of the calling thread. */
typedef struct orv_error {
  orv_status status;
  int code;         /**< the library's own number, see orv/core/Error.h; 0 when it has none */
  const char* unit; /**< the source unit that recorded it */
  int line;         /**< and its line */
  const char* text; /**< what is wrong, for people */
} orv_error;

/**
 * The last failure of the calling thread; ORV_OK, zeros and empty texts when there was none. No success clears it.
 * The texts stay valid until the thread's next failure, or its end.
 */
ORV_API orv_status orv_last_error(orv_error* error);

/** "0.1.0", and ORV_C_API_VERSION as the module was built; either may be null. The text is never freed. */
ORV_API orv_status orv_version(const char** text, int* c_api_version);

/**
 * Loads the catalogue; counted, so that only the first call loads.
 *
 * @param folder  where the configuration files are, or null: beside the module and where the library was installed.
 * ORV_ERROR_FILE when one is missing or has an error in it: then nothing is counted.
 */
ORV_API orv_status orv_initialize(const char* folder);

/** Counts down; the last call empties the catalogue and releases grids. Handles stay valid. ORV_ERROR_STATE when no
 * orv_initialize is left to take back. */
ORV_API orv_status orv_shutdown(void);

/* ---- systems ------------------------------------------------------------------------------------------------------ */

/** A coordinate system. */
typedef struct orv_system orv_system;

/** A text of a system; "" for none. */
typedef enum orv_system_text_id {
  ORV_SYSTEM_TOKEN = 0,      /**< "EPSG:32633" */
  ORV_SYSTEM_NAME = 1,       /**< with its groups: "UTM|WGS 84|WGS 84 / UTM zone 33N" */
  ORV_SYSTEM_SHORT_NAME = 2, /**< the name's last part */
  ORV_SYSTEM_COMMENT = 3,    /**< area of use and the like */
  ORV_SYSTEM_DATUM = 4,      /**< name of its datum */
  ORV_SYSTEM_ENCODED = 5     /**< the whole definition; orv_system_create reads it */
} orv_system_text_id;

/**
 * Reads a system.
 *
 * @param text  a token ("EPSG:32633"), a code ("32633"), a name or short name; or parameters
 *              ("method=UTM,Lon0=15,datum=EPSG:6326"); or encoded text, well-known text or a PROJ string; or the name of a
 *              file (".prj" for one) that holds one of the last four. See orv/convert/SystemText.h.
 */
ORV_API orv_status orv_system_create(const char* text, orv_system** system);
ORV_API orv_status orv_system_destroy(orv_system* system);
ORV_API orv_status orv_system_text(const orv_system* system, orv_system_text_id id, const char** text);
/** EPSG code; 0 for none. */
ORV_API orv_status orv_system_code(const orv_system* system, int* code);
/** 1 when points of the system are longitudes and latitudes, else 0. */
ORV_API orv_status orv_system_is_geographic(const orv_system* system, int* geographic);
/** 1 when both systems place points alike, else 0; names, tokens and comments are not compared. */
ORV_API orv_status orv_system_equals(const orv_system* system, const orv_system* other, int* equal);

/* ---- catalogue ---------------------------------------------------------------------------------------------------- */

/** The lists of the catalogue. */
typedef enum orv_list {
  ORV_LIST_SYSTEMS = 0,
  ORV_LIST_DATUMS = 1,
  ORV_LIST_ELLIPSOIDS = 2,
  ORV_LIST_MERIDIANS = 3,
  ORV_LIST_LINEAR_UNITS = 4,
  ORV_LIST_ANGULAR_UNITS = 5
} orv_list;

/** Entries of a list, as they were found. */
typedef struct orv_entries orv_entries;

/** One entry; its texts belong to the handle. */
typedef struct orv_entry {
  const char* token;
  const char* name;
  const char* short_name;
  const char* about; /**< area of use and the like */
  int code;          /**< EPSG code; 0 for none */
} orv_entry;

/**
 * Finds entries of a list.
 *
 * @param words  words in any order, all of which an entry has in its token, code, name or comment; the best entries come
 *               first. Null or empty: every entry, in the list's order.
 * @param limit  at most so many; 0 for all. Nothing found is ORV_OK with no entries.
 */
ORV_API orv_status orv_entries_create(orv_list list, const char* words, size_t limit, orv_entries** entries);
ORV_API orv_status orv_entries_destroy(orv_entries* entries);
ORV_API orv_status orv_entries_count(const orv_entries* entries, size_t* count);
/** @param index  from 0. */
ORV_API orv_status orv_entries_get(const orv_entries* entries, size_t index, orv_entry* entry);

/* ---- conversions -------------------------------------------------------------------------------------------------- */

/** A conversion from one system to another. */
typedef struct orv_conversion orv_conversion;

/** What became of the points of one call. */
typedef struct orv_report {
  size_t points;        /**< placed and lost together */
  size_t placed;        /**< have a place in the target system */
  size_t lost;          /**< have none: both coordinates are ORV_NO_VALUE */
  size_t first_lost;    /**< index of the first lost one; equal to points when none is */
  size_t doubtful;      /**< placed, but one or more of the following holds; each point counts once */
  size_t outside_grids; /**< outside all grids of a grid method, which left them unshifted */
  size_t
      far_from_source_meridian; /**< so far from the meridian of the source's Transverse Mercator that it means little */
  size_t far_from_target_meridian; /**< the same of the target's */
} orv_report;

/** Plans a conversion. Grids are read when points first need them; when one is missing, no point is touched. */
ORV_API orv_status orv_conversion_create(const orv_system* from, const orv_system* to,
                                         orv_conversion** conversion);
ORV_API orv_status orv_conversion_destroy(orv_conversion* conversion);

/**
 * Converts points in place.
 *
 * @param xy      x, y, x, y ...: 2 * count numbers; may be null when count is 0.
 * @param report  may be null.
 * A point that cannot be placed is no failure: it becomes ORV_NO_VALUE and is counted.
 */
ORV_API orv_status orv_conversion_points(const orv_conversion* conversion, double* xy, size_t count,
                                         orv_report* report);

/**
 * The same for points whose coordinates stand elsewhere: in two arrays, or in records.
 *
 * @param x_stride, y_stride  bytes from one x to the next, and from one y to the next; at least those of a double.
 */
ORV_API orv_status orv_conversion_strided(const orv_conversion* conversion, double* x, size_t x_stride,
                                          double* y, size_t y_stride, size_t count, orv_report* report);

/**
 * What the conversion does, stage by stage, which grids it needs, and which better ways were not taken and why.
 *
 * @param json  0 for lines of text, else JSON.
 */
ORV_API orv_status orv_conversion_explain(orv_conversion* conversion, int json, const char** text);

#ifdef __cplusplus
}
#endif

#endif
