/* The C interface, from C99.  Coordinates are those of PROJ 9.1.1 (cs2cs EPSG:4326 EPSG:32633), 1 mm.
 *
 * capi_test FOLDER: a folder that can be written to. */
#include "orv/capi/orv.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

#define EXPECT(condition)                                                                         \
  do {                                                                                            \
    if (!(condition)) {                                                                           \
      orv_error why;                                                                              \
      orv_last_error(&why);                                                                       \
      printf("%s:%d: %s  (last error: %d %d %s)\n", __FILE__, __LINE__, #condition, (int)why.status, why.code, \
             why.text);                                                                           \
      ++failures;                                                                                 \
    }                                                                                             \
  } while (0)

static orv_system* read_system(const char* text) {
  orv_system* system = NULL;
  EXPECT(orv_system_create(text, &system) == ORV_OK);
  if (!system) exit(1);
  return system;
}

static orv_conversion* plan(const char* from, const char* to) {
  orv_system *source = read_system(from), *target = read_system(to);
  orv_conversion* conversion = NULL;
  EXPECT(orv_conversion_create(source, target, &conversion) == ORV_OK);
  if (!conversion) exit(1);
  orv_system_destroy(source); /* the conversion has copies */
  orv_system_destroy(target);
  return conversion;
}

static int is_last(orv_status status, int code, const char* part) {
  orv_error error;
  if (orv_last_error(&error) != ORV_OK) return 0;
  return error.status == status && error.code == code && strstr(error.text, part) != NULL && error.unit[0] != '\0' &&
         error.line > 0;
}

static void test_errors_before_the_start(void) {
  orv_error error;
  orv_entries* entries = NULL;
  orv_system* system = NULL;
  int api = 0;
  const char* version = NULL;
  EXPECT(orv_last_error(&error) == ORV_OK);
  EXPECT(error.status == ORV_OK && error.code == 0 && error.line == 0);
  EXPECT(strcmp(error.text, "") == 0 && strcmp(error.unit, "") == 0);
  EXPECT(orv_version(&version, &api) == ORV_OK);
  EXPECT(api == ORV_C_API_VERSION && strchr(version, '.') != NULL);
  EXPECT(orv_version(NULL, NULL) == ORV_OK);

  EXPECT(orv_entries_create(ORV_LIST_SYSTEMS, NULL, 0, &entries) == ORV_ERROR_STATE);
  EXPECT(is_last(ORV_ERROR_STATE, 0, "call orv_initialize first"));
  EXPECT(orv_shutdown() == ORV_ERROR_STATE);
  EXPECT(orv_system_create("EPSG:4326", &system) == ORV_ERROR_STATE);
  EXPECT(system == NULL && entries == NULL);
}

static void test_start(const char* folder) {
  char path[1024];
  FILE* file;
  snprintf(path, sizeof path, "%s/ellipsoid.ocf", folder);
  file = fopen(path, "w");
  EXPECT(file != NULL);
  if (!file) exit(1);
  fputs("{\n  nonsense\n}\n", file);
  fclose(file);
  EXPECT(orv_initialize(folder) == ORV_ERROR_FILE);
  EXPECT(is_last(ORV_ERROR_FILE, 1029, "ellipsoid.ocf"));
  EXPECT(orv_shutdown() == ORV_ERROR_STATE); /* what failed is not counted */
  remove(path);

  EXPECT(orv_initialize("") == ORV_OK);
  EXPECT(orv_initialize(NULL) == ORV_OK);
  EXPECT(orv_shutdown() == ORV_OK); /* one start is left */
}

static void test_systems(void) {
  orv_system *system = read_system("EPSG:32633"), *copy, *geographic = read_system("4326");
  const char *token = NULL, *text = NULL, *again = NULL;
  int code = 0, yes = -1;
  EXPECT(orv_system_text(system, ORV_SYSTEM_TOKEN, &token) == ORV_OK && strcmp(token, "EPSG:32633") == 0);
  EXPECT(orv_system_text(system, ORV_SYSTEM_NAME, &text) == ORV_OK);
  EXPECT(strcmp(text, "UTM|WGS 84|WGS 84 / UTM zone 33N") == 0);
  EXPECT(orv_system_text(system, ORV_SYSTEM_SHORT_NAME, &text) == ORV_OK);
  EXPECT(strcmp(text, "WGS 84 / UTM zone 33N") == 0);
  EXPECT(orv_system_text(system, ORV_SYSTEM_COMMENT, &text) == ORV_OK && strstr(text, "12 deg E") != NULL);
  EXPECT(orv_system_text(system, ORV_SYSTEM_DATUM, &text) == ORV_OK);
  EXPECT(strcmp(text, "World Geodetic System 1984") == 0);
  EXPECT(orv_system_text(system, ORV_SYSTEM_ENCODED, &text) == ORV_OK);
  EXPECT(orv_system_code(system, &code) == ORV_OK && code == 32633);
  EXPECT(orv_system_is_geographic(system, &yes) == ORV_OK && yes == 0);
  EXPECT(orv_system_is_geographic(geographic, &yes) == ORV_OK && yes == 1);

  copy = read_system("4807"); /* grads from Paris */
  EXPECT(orv_system_is_geographic(copy, &yes) == ORV_OK && yes == 1);
  orv_system_destroy(copy);
  copy = read_system("name=Caf\xE9,method=UTM,Lon0=9,datum=EPSG:6326"); /* Latin 1 */
  EXPECT(orv_system_text(copy, ORV_SYSTEM_NAME, &again) == ORV_OK && strcmp(again, "Caf\xEF\xBF\xBD") == 0);
  orv_system_destroy(copy);

  copy = read_system(text);
  EXPECT(orv_system_equals(system, copy, &yes) == ORV_OK && yes == 1);
  EXPECT(orv_system_equals(system, geographic, &yes) == ORV_OK && yes == 0);
  EXPECT(orv_system_code(copy, &code) == ORV_OK && code == 0); /* encoded text has no code */
  EXPECT(orv_system_text(system, ORV_SYSTEM_ENCODED, &again) == ORV_OK && again == text);

  EXPECT(orv_system_text(system, (orv_system_text_id)6, &text) == ORV_ERROR_ARGUMENT);
  EXPECT(is_last(ORV_ERROR_ARGUMENT, 0, "bad argument"));
  EXPECT(orv_system_text(NULL, ORV_SYSTEM_TOKEN, &text) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_text(system, ORV_SYSTEM_TOKEN, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_code(NULL, &code) == ORV_ERROR_ARGUMENT && orv_system_code(system, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_is_geographic(NULL, &yes) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_is_geographic(system, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_equals(NULL, system, &yes) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_equals(system, NULL, &yes) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_equals(system, system, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_last_error(NULL) == ORV_ERROR_ARGUMENT);
  orv_system_destroy(system);
  orv_system_destroy(copy);

  system = geographic;
  EXPECT(orv_system_create("EPSG:99999", &system) == ORV_ERROR_DEFINITION);
  EXPECT(is_last(ORV_ERROR_DEFINITION, 1032, "EPSG:99999"));
  EXPECT(system == geographic); /* as it was */
  EXPECT(orv_system_create(NULL, &system) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_create("4326", NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_system_destroy(geographic) == ORV_OK && orv_system_destroy(NULL) == ORV_OK);
}

static void test_catalogue(void) {
  static const orv_list lists[] = {ORV_LIST_SYSTEMS,  ORV_LIST_DATUMS,       ORV_LIST_ELLIPSOIDS,
                                   ORV_LIST_MERIDIANS, ORV_LIST_LINEAR_UNITS, ORV_LIST_ANGULAR_UNITS};
  orv_entries* entries = NULL;
  orv_entry entry;
  size_t count = 0, i, list, tokens = 0;
  for (list = 0; list < sizeof lists / sizeof lists[0]; ++list) {
    EXPECT(orv_entries_create(lists[list], "", 0, &entries) == ORV_OK);
    EXPECT(orv_entries_count(entries, &count) == ORV_OK && count > 3);
    for (i = 0; i < count; ++i) {
      EXPECT(orv_entries_get(entries, i, &entry) == ORV_OK);
      if (entry.token[0] != '\0' && entry.name && entry.short_name && entry.about) ++tokens;
    }
    EXPECT(orv_entries_get(entries, count, &entry) == ORV_ERROR_ARGUMENT);
    orv_entries_destroy(entries);
  }
  EXPECT(tokens > 6400);

  EXPECT(orv_entries_create(ORV_LIST_SYSTEMS, "33 utm", 2, &entries) == ORV_OK);
  EXPECT(orv_entries_count(entries, &count) == ORV_OK && count == 2);
  EXPECT(orv_entries_get(entries, 0, &entry) == ORV_OK && entry.code == 32633);
  EXPECT(strcmp(entry.token, "EPSG:32633") == 0 && strcmp(entry.short_name, "WGS 84 / UTM zone 33N") == 0);
  EXPECT(orv_entries_get(NULL, 0, &entry) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_entries_get(entries, 0, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_entries_count(NULL, &count) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_entries_count(entries, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_entries_create((orv_list)6, NULL, 0, &entries) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_entries_create(ORV_LIST_DATUMS, NULL, 0, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_entries_destroy(entries) == ORV_OK && orv_entries_destroy(NULL) == ORV_OK);

  EXPECT(orv_entries_create(ORV_LIST_SYSTEMS, "atlantis", 0, &entries) == ORV_OK);
  EXPECT(orv_entries_count(entries, &count) == ORV_OK && count == 0);
  orv_entries_destroy(entries);
}

static void test_conversion(void) {
  struct record {
    char tag;
    double y;
    double x;
  } records[3] = {{'a', 52.5, 13.5}, {'b', 95.0, 13.5}, {'c', 52.5, 13.5}};
  double xy[6] = {13.5, 52.5, 13.5, ORV_NO_VALUE, 50.0, 10.0};
  orv_report report;
  const char *text = NULL, *json = NULL, *again = NULL;
  orv_conversion* conversion = plan("EPSG:4326", "EPSG:32633");
  EXPECT(orv_conversion_points(conversion, xy, 3, &report) == ORV_OK);
  EXPECT(fabs(xy[0] - 398178.3970) < 1e-3 && fabs(xy[1] - 5817709.5264) < 1e-3);
  EXPECT(xy[2] == ORV_NO_VALUE && xy[3] == ORV_NO_VALUE);
  EXPECT(report.points == 3 && report.placed == 2 && report.lost == 1 && report.first_lost == 1);
  EXPECT(report.doubtful == 1 && report.outside_grids == 0); /* the third point is 35 degrees from the meridian */
  EXPECT(report.far_from_source_meridian == 0 && report.far_from_target_meridian == 1);

  EXPECT(orv_conversion_strided(conversion, &records[0].x, sizeof(struct record), &records[0].y, sizeof(struct record),
                                3, &report) == ORV_OK);
  EXPECT(fabs(records[0].x - 398178.3970) < 1e-3 && fabs(records[2].y - 5817709.5264) < 1e-3);
  EXPECT(records[1].x == ORV_NO_VALUE && records[1].y == ORV_NO_VALUE && records[1].tag == 'b');
  EXPECT(report.points == 3 && report.lost == 1 && report.first_lost == 1);

  EXPECT(orv_conversion_points(conversion, NULL, 0, &report) == ORV_OK && report.points == 0 && report.first_lost == 0);
  EXPECT(orv_conversion_points(conversion, xy, 1, NULL) == ORV_OK);
  EXPECT(orv_conversion_points(conversion, NULL, 1, &report) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_points(NULL, xy, 1, &report) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_strided(conversion, xy, 4, xy + 1, 16, 1, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_strided(conversion, xy, 16, NULL, 16, 1, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_strided(NULL, xy, 16, xy + 1, 16, 1, NULL) == ORV_ERROR_ARGUMENT);

  EXPECT(orv_conversion_explain(conversion, 0, &text) == ORV_OK && strstr(text, "UTM") != NULL);
  EXPECT(orv_conversion_explain(conversion, 1, &json) == ORV_OK && json[0] == '{');
  EXPECT(orv_conversion_explain(conversion, 0, &again) == ORV_OK && again == text);
  EXPECT(orv_conversion_explain(NULL, 0, &text) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_explain(conversion, 0, NULL) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_destroy(conversion) == ORV_OK && orv_conversion_destroy(NULL) == ORV_OK);
}

static void test_conversions_that_fail(void) {
  orv_system *wgs84 = read_system("EPSG:4326"), *sphere = read_system("method=Mercator,a=6378137,f=0"), *other;
  orv_conversion* conversion = NULL;
  double xy[2] = {-100.0, 40.0}, metres[2] = {500000.0, 4000000.0};
  orv_report report = {77, 0, 0, 0, 0, 0, 0, 0};
  EXPECT(orv_conversion_create(sphere, wgs84, &conversion) == ORV_ERROR_NO_ROUTE);
  EXPECT(is_last(ORV_ERROR_NO_ROUTE, 1041, ""));
  EXPECT(orv_conversion_create(NULL, wgs84, &conversion) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_create(wgs84, NULL, &conversion) == ORV_ERROR_ARGUMENT);
  EXPECT(orv_conversion_create(wgs84, wgs84, NULL) == ORV_ERROR_ARGUMENT);

  other = read_system(
      "<{6,UCSDef[1]><f5,Scale[1]=1><{6,Georef[1]><s6,Method[24]=\"Affine With Coefficients\"><f5,Coeff[6]=0,1,0,0,0,1>"
      "<}6,Georef[1]><}6,UCSDef[1]>");
  EXPECT(orv_conversion_create(other, other, &conversion) == ORV_ERROR_FAILED); /* its warp cannot be undone */
  EXPECT(is_last(ORV_ERROR_FAILED, 1026, "warp"));
  EXPECT(conversion == NULL);
  orv_system_destroy(other);

  conversion = plan("datum.method=NTV2,datum.target=NAD83", "datum=NAD83");
  EXPECT(orv_conversion_points(conversion, xy, 1, NULL) == ORV_ERROR_GRIDS);
  EXPECT(is_last(ORV_ERROR_GRIDS, 1034, ""));
  orv_conversion_destroy(conversion);

  /* what fails leaves its results as they were, also behind a projection that could be done */
  conversion = plan("method=UTM,Lon0=-111,ellipsoid=EPSG:7008,datum.method=NTV2,datum.target=NAD83", "datum=NAD83");
  EXPECT(orv_conversion_points(conversion, metres, 1, &report) == ORV_ERROR_GRIDS);
  EXPECT(metres[0] == 500000.0 && metres[1] == 4000000.0 && report.points == 77);
  EXPECT(orv_conversion_strided(conversion, metres, 16, metres + 1, 16, 1, &report) == ORV_ERROR_GRIDS);
  EXPECT(metres[0] == 500000.0 && metres[1] == 4000000.0 && report.points == 77);
  orv_conversion_destroy(conversion);

  /* 11 degrees from one meridian and 17 from the other: both notes, one point */
  conversion = plan("EPSG:32633", "EPSG:32631");
  metres[0] = 1600000.0;
  metres[1] = 5500000.0;
  EXPECT(orv_conversion_points(conversion, metres, 1, &report) == ORV_OK);
  EXPECT(report.points == 1 && report.placed == 1 && report.doubtful == 1);
  EXPECT(report.far_from_source_meridian == 1 && report.far_from_target_meridian == 1);
  orv_conversion_destroy(conversion);
  orv_system_destroy(wgs84);
  orv_system_destroy(sphere);
}

static void test_after_the_end(void) {
  orv_system *wgs84 = read_system("EPSG:4326"), *utm = read_system("EPSG:32633"), *none = NULL;
  orv_conversion *conversion = NULL, *another = NULL;
  const char* text = NULL;
  double xy[2] = {15.0, 0.0};
  EXPECT(orv_conversion_create(wgs84, utm, &conversion) == ORV_OK);
  EXPECT(orv_shutdown() == ORV_OK);
  /* handles stay valid, but nothing new is planned or explained */
  EXPECT(orv_conversion_points(conversion, xy, 1, NULL) == ORV_OK && fabs(xy[0] - 500000.0) < 1e-6 && fabs(xy[1]) < 1e-6);
  EXPECT(orv_system_text(wgs84, ORV_SYSTEM_TOKEN, &text) == ORV_OK && strcmp(text, "EPSG:4326") == 0);
  EXPECT(orv_conversion_create(wgs84, utm, &another) == ORV_ERROR_STATE && another == NULL);
  EXPECT(orv_conversion_explain(conversion, 0, &text) == ORV_ERROR_STATE);
  EXPECT(is_last(ORV_ERROR_STATE, 0, "call orv_initialize first"));
  EXPECT(orv_system_create("EPSG:4326", &none) == ORV_ERROR_STATE && none == NULL);
  orv_conversion_destroy(conversion);
  orv_system_destroy(wgs84);
  orv_system_destroy(utm);
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  test_errors_before_the_start();
  test_start(argv[1]);
  test_systems();
  test_catalogue();
  test_conversion();
  test_conversions_that_fail();
  test_after_the_end();
  EXPECT(orv_shutdown() == ORV_ERROR_STATE);
  printf(failures == 0 ? "all passed\n" : "%d failed\n", failures);
  return failures == 0 ? 0 : 1;
}
