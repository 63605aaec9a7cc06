// KnownNames.h: what texts name and the library's lists hold: datums, ellipsoids, units, meridians, systems.
#pragma once

#include <string>

#include "orv/datum/DatumDef.h"
#include "orv/interop/internal/TextSystem.h"

namespace orv::internal {

/// The known datum that a text's code or name means, or null: by code the first of it, then by name, as texts of ESRI
/// shorten names too ("D_North_American_1983", "D_ETRS_1989"), then by the name of a geographic system that is the
/// datum's.  The name of the text's own system or base system says nothing of its datum.
const DatumDef* KnownDatumOf(const TextSystem& text);
/// The first known datum of this number or, without one, name that converts so and has no meridian of its own; null when
/// there is none.
const DatumDef* KnownDatumLike(const DatumDef& wanted, const TextSystem& text);

/// Whether a datum's name says that it has none: "unknown", "Unknown based on ... ellipsoid", "unnamed", "Not specified".
bool IsUnnamedDatum(const std::string& name);

/// A datum's name without the word "ensemble" behind it, by which the data set names one of several realisations.
std::string WithoutEnsemble(const std::string& name);

/// The known system at a position when it is georeferenced, else null.
const ORVDef* KnownSystemAt(int pos);
/// The known geographic system on a datum, or null.
const ORVDef* KnownGeographicOn(const DatumDef& datum);
/// The ellipsoid of known projected systems on a datum, or null: datums of method None hold that of WGS 84.
const EllipsoidDef* KnownEllipsoidOn(const DatumDef& datum);

/// The name that ESRI's texts have for a datum or geographic system, without "D_" or "GCS_".
std::string EsriName(const std::string& name, int datumCode);

/// What "+ellps=", "+datum=", "+units=" and "+pm=" mean; null for unknown ones.
struct ProjEllipsoid {
  const char* id;
  double a;
  double rf;  // 0: b holds
  double b;
  const char* name;
};
const ProjEllipsoid* FindProjEllipsoid(const std::string& id);
/// The one of these dimensions (1e-4 m, 1e-12), or null.
const ProjEllipsoid* FindProjEllipsoid(double a, double f);
double Flattening(const ProjEllipsoid& ellipsoid);

struct ProjDatum {
  const char* id;
  const char* ellipsoid;
  const char* name;
  int code;
  bool hasShift;
  double shift[7];
};
const ProjDatum* FindProjDatum(const std::string& id);

struct ProjUnit {
  const char* id;
  double metres;
};
const ProjUnit* FindProjUnit(const std::string& id);
const ProjUnit* FindProjUnit(double metres);
struct ProjMeridian {
  const char* id;
  double longitude;
};
const ProjMeridian* FindProjMeridian(const std::string& id);

}  // namespace orv::internal
