// Between what a text says of a system and the library's own definitions.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/DatumList.h"
#include "orv/interop/internal/KnownNames.h"
#include "orv/interop/internal/TextSystem.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/internal/MapPlaces.h"
#include "orv/system/CSList.h"
#include "orv/system/internal/Angles.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/Meridians.h"

ORV_UNIT("Interchange")

namespace orv::internal {

namespace {

constexpr double kWgs84Radius = 6378137.0, kWgs84Flattening = 1.0 / 298.257223563;

// A null shift on GRS 1980 and one on WGS 84 are a tenth of a millimetre apart; others are not the same.
bool IsLikeWgs84(double a, double f) {
  return std::fabs(a - kWgs84Radius) < 1e-3 && std::fabs(f - kWgs84Flattening) < 1e-10;
}
bool IsSameFigure(const EllipsoidDef& e, double a, double f) {
  return std::fabs(e.GetMajorRadius() - a) < 1e-3 && std::fabs(e.GetFlattening() - f) < 1e-10;
}

/// The known ellipsoid of a text's dimensions with all its digits, by code first; one of the text's own else.
EllipsoidDef EllipsoidOf(const TextSystem& t) {
  const EllipsoidList& known = ORVKnownEllipsoidsList;
  const int byCode = known.FindByPOSCNumber(t.ellipsoidCode);
  for (const int index : {byCode, known.FindByDimensions(t.a, t.f)}) {
    if (index == 0) continue;
    const EllipsoidDef& e = *known.Enum(index);
    if (std::fabs(e.GetMajorRadius() - t.a) < 1e-6 && std::fabs(e.GetFlattening() - t.f) < 1e-13) return e;
  }
  return EllipsoidDef(t.a, t.f, nullptr, t.ellipsoidName.empty() ? nullptr : t.ellipsoidName.c_str(), nullptr,
                      0);
}

EllipsoidDef Wgs84Ellipsoid() {
  TextSystem t;
  t.a = kWgs84Radius;
  t.f = kWgs84Flattening;
  t.ellipsoidName = "WGS 84";
  t.ellipsoidCode = 7030;
  return EllipsoidOf(t);
}

/// Longitudes from a meridian and latitudes themselves, as a map: an Equidistant Cylindrical of the sphere.
ProjectionParameters AnglesAsMap(double meridian, double degreesPerUnit) {
  TextSystem sphere;
  sphere.a = kAngleSphereRadius;
  ProjectionParameters p;
  p.method = ProjectionMethodEquidistantCylindrical;
  p.ellipsoid = EllipsoidOf(sphere);
  p.Scale = (360.0 / degreesPerUnit) / (2.0 * kPi * kAngleSphereRadius);
  p.Lon0 = FoldMeridian(0.0, meridian);
  return p;
}

ProjectionDef ProjectionOf(const TextSystem& t, const EllipsoidDef& ellipsoid) {
  ProjectionParameters p;
  if (!t.isGeographic) {
    p = ParametersOf(t);
    const double f = p.ellipsoid.GetFlattening();
    if (f == ellipsoid.GetFlattening() || f != 0.0) {
      p.ellipsoid = ellipsoid;
    } else {  // a sphere of the text's major radius
      TextSystem sphere;
      sphere.a = t.a;
      p.ellipsoid = EllipsoidOf(sphere);
    }
  } else if (t.meridian == 0.0 && t.angle.size == 1.0) {
    p.method = ProjectionMethodUnprojected;
    p.ellipsoid = ellipsoid;
  } else {
    p = AnglesAsMap(t.meridian, t.angle.size);
  }
  ProjectionDef projection;
  projection.SetParameters(&p);
  return projection;
}

// ---- the same map ----------------------------------------------------------------------------------------

/// A projection that others are compared with.
class Map {
 public:
  explicit Map(const ProjectionDef& projection)
      : m_Parameters(*projection.GetParameters()), m_Places(projection) {}
  const ProjectionParameters& Parameters() const { return m_Parameters; }

  /// Whether another projection draws the same map: to half a millimetre around the middle; texts have 15 digits, and an
  /// oblique cylinder whose azimuth is next to 90 degrees makes 0.2 mm of the last one.
  bool IsDrawnBy(const ProjectionDef& other) const {
    constexpr double kMetres = 5e-4;
    const ProjectionParameters& q = *other.GetParameters();
    const bool isPlain = m_Parameters.method == ProjectionMethodUnprojected;
    if (isPlain || q.method == ProjectionMethodUnprojected) return isPlain && q.method == m_Parameters.method;
    return std::fabs(m_Parameters.Scale / q.Scale - 1.0) < 0.1 && m_Places.DistanceTo(other) < kMetres;
  }

 private:
  const ProjectionParameters& m_Parameters;
  MapPlaces m_Places;
};

// ---- datums ----------------------------------------------------------------------------------------------

bool IsNull(const double (&shift)[7]) {
  for (const double value : shift) {
    if (value != 0.0) return false;
  }
  return true;
}

/// A datum as a text's shift gives it.
DatumDef DatumOfShift(const TextSystem& t, const EllipsoidDef& ellipsoid) {
  DatumParameters d;
  d.target = DatumTargetWGS84;
  if (IsNull(t.shift) && IsLikeWgs84(t.a, t.f)) {
    d.method = DatumMethodNone;
    d.ellipsoid = Wgs84Ellipsoid();
  } else {
    d.method = DatumMethodBursaWolf;
    d.ellipsoid = ellipsoid;
    d.dx = t.shift[0];
    d.dy = t.shift[1];
    d.dz = t.shift[2];
    d.rx = t.shift[3];
    d.ry = t.shift[4];
    d.rz = t.shift[5];
    d.k = t.shift[6];
  }
  DatumDef datum(&d, t.datumCode);
  datum.SetName(t.datumName.empty() ? "unknown" : t.datumName.c_str());
  return datum;
}

/// A datum that nothing converts to another.
DatumDef UnknownDatum(const TextSystem& t, const EllipsoidDef& ellipsoid) {
  DatumParameters d;
  d.method = DatumMethodUnknown;
  d.ellipsoid = ellipsoid;
  DatumDef datum(&d, t.datumCode);
  datum.SetName(t.datumName.empty() ? "unknown" : t.datumName.c_str());
  return datum;
}

DatumDef DatumOf(const TextSystem& t, const EllipsoidDef& ellipsoid) {
  if (t.isNullGrid || t.isWgs84) {
    TextSystem wgs84;
    wgs84.a = kWgs84Radius;
    wgs84.f = kWgs84Flattening;
    wgs84.datumName = "World Geodetic System 1984";
    wgs84.datumCode = 6326;
    if (const DatumDef* const known = KnownDatumOf(wgs84)) return *known;
    return DatumOfShift(wgs84, Wgs84Ellipsoid());
  }
  if (t.hasShift) {
    const DatumDef own = DatumOfShift(t, ellipsoid);
    const DatumDef* const known = KnownDatumLike(own, t);
    return known ? *known : own;
  }
  const DatumDef* const known = KnownDatumOf(t);
  if (!known) return UnknownDatum(t, ellipsoid);
  const double pmShift = known->GetParameters()->pmShift;
  // A shift that is no prime meridian's belongs to the datum: Tokyo 1892, whose Greenwich is 10.4 seconds off.
  if (pmShift == 0.0 || (t.meridian == 0.0 && ORVKnownMeridiansList.FindByLongitude(pmShift) < 0))
    return *known;
  // Longitudes are counted from Greenwich here: the same way from there.
  DatumParameters d = *known->GetParameters();
  d.pmShift = 0.0;
  DatumDef fromGreenwich(&d, 0);
  const int index = ORVKnownDatumsList.FindDatum(fromGreenwich);
  if (index != 0) return *ORVKnownDatumsList.Enum(index);
  fromGreenwich.SetName(known->GetName());
  return fromGreenwich;
}

bool SameText(const char* a, const char* b) { return a && b && EqualIgnoringCase(a, b); }

/// Whether the text means a system on this datum, given the datum that it leads to by itself.
bool MeansDatum(const TextSystem& t, const DatumDef& own, const DatumDef& entry) {
  if (SameText(own.GetToken(), entry.GetToken())) return true;
  if (t.hasShift || t.isNullGrid) return own.CompareParameters(&entry);
  if (own.IsUnknown() && !own.GetToken()) {
    // No known datum has that name: the system's code decides, if the ellipsoid does not speak against it.
    const EllipsoidDef& e = *entry.GetEllipsoid();
    return e.IsUnknown() || IsSameFigure(e, t.a, t.f);
  }
  // Another way of the same datum, as the area of the system wants it.  Datums without a way compare equal among each
  // other, which tells nothing.
  return (own.GetPOSCNumber() != 0 && own.GetPOSCNumber() == entry.GetPOSCNumber()) ||
         (!own.IsUnknown() && own.CompareParameters(&entry));
}

/// The known system on a datum that draws this map, or null: its projection differs from those on other datums.
/// Of several one with the method itself.
const ORVDef* AlikeOn(const DatumDef& datum, const Map& map) {
  const ProjectionParameters& p = map.Parameters();
  const bool isHotine = p.method == ProjectionMethodHotine;
  const auto family = [](ProjectionMethod method) {
    return method == ProjectionMethodUTM ? ProjectionMethodTransverseMercator : method;
  };
  const auto isOn = [&datum](const DatumDef& other) {
    return SameText(other.GetToken(), datum.GetToken()) ||
           (datum.GetMethod() == DatumMethodBursaWolf && datum.CompareParameters(&other));
  };
  const ORVDef* found = nullptr;
  if (p.method == ProjectionMethodUnprojected) return found;
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    const ORVDef* const system = KnownSystemAt(pos);
    if (!system || !system->HasProjection(true, true) || !system->HasDatum(false)) continue;
    const ProjectionParameters& q = *system->GetProjection()->GetParameters();
    if (family(q.method) != family(p.method) || (found && q.method != p.method)) continue;
    if (std::fabs(std::remainder(isHotine ? q.Lon1 - p.Lon1 : q.Lon0 - p.Lon0, 360.0)) > 1e-8) continue;
    if (!isOn(*system->GetDatum()) || !map.IsDrawnBy(*system->GetProjection())) continue;
    found = system;
    if (q.method == p.method) return found;
  }
  return found;
}

/// Whether the text means a system whose datum has a meridian of its own, which the text has as prime meridian.
bool MeansShifted(const TextSystem& t, const EllipsoidDef& ellipsoid, const ORVDef& system) {
  const double pmShift = system.GetDatum()->GetParameters()->pmShift;
  if (pmShift == 0.0 || std::fabs(pmShift - t.meridian) > 1e-9) return false;
  TextSystem own = t;
  own.meridian = 0.0;
  DatumParameters d = *DatumOf(own, ellipsoid).GetParameters();
  d.pmShift = pmShift;
  return system.GetDatum()->CompareParameters(&d) &&
         Map(ProjectionOf(own, ellipsoid)).IsDrawnBy(*system.GetProjection());
}

/// The known system that the text's code means, or without a code its name, if it draws the map on that datum.
const ORVDef* SystemMeant(const TextSystem& t, const EllipsoidDef& ellipsoid, const Map& map,
                          const DatumDef& datum) {
  // A datum that is not known and has a name of its own is not that of a system of the same name: only a code says so.
  const bool isOwnDatum = datum.IsUnknown() && !datum.GetToken() && !IsUnnamedDatum(t.datumName);
  const bool nameCounts = !t.isNameRemark && !isOwnDatum;
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    const ORVDef* const system = KnownSystemAt(pos);
    if (!system) continue;
    const bool isNamed = t.code > 0 ? system->GetPOSC() == t.code
                                    : nameCounts && EqualBare(ShortNameOf(system->GetName()), t.name.c_str());
    if (!isNamed || system->HasWarp() || !system->HasDatum(false) || !system->HasProjection(false, false)) {
      continue;
    }
    const bool isMeant = map.IsDrawnBy(*system->GetProjection()) && MeansDatum(t, datum, *system->GetDatum());
    if (isMeant || MeansShifted(t, ellipsoid, *system)) return system;
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<ORVDef> DefinitionOf(const TextSystem& t) {
  if (!(t.a > 0.0) || !(t.a < 1e12) || !(t.f >= 0.0) || !(t.f < 1.0)) {
    ORV_FAIL(ErrBadParameter,
             "Line %d, column %d: expected an ellipsoid with a radius above 0 and a flattening from 0 to 1.",
             t.place.line, t.place.column);
  }
  const EllipsoidDef ellipsoid = EllipsoidOf(t);
  const ProjectionDef projection = ProjectionOf(t, ellipsoid);
  const DatumDef datum = DatumOf(t, ellipsoid);
  const Map map(projection);
  if (const ORVDef* const meant = SystemMeant(t, ellipsoid, map, datum))
    return std::unique_ptr<ORVDef>(meant->Clone());
  auto system = std::make_unique<ORVDef>();
  system->SetName(t.name.c_str());
  system->SetPOSC(t.code);
  const ORVDef* const alike = AlikeOn(datum, map);
  const ProjectionDef& form = alike ? *alike->GetProjection() : projection;
  std::string why;
  const bool isFaulty = datum.CheckParameters(why) != DatumParameterIDNone ||
                        form.CheckParameters(why) != ProjectionParameterIDNone;
  if (isFaulty) {
    ORV_FAIL(ErrBadParameter, "Line %d, column %d: the system is not valid: %s", t.place.line, t.place.column,
             why.c_str());
  }
  system->SetDatum(&datum);
  system->SetProjection(&form);
  return system;
}

// ---- to a text -------------------------------------------------------------------------------------------

namespace {

class Describer {
 public:
  Describer(const ORVDef& system, TextDialect dialect) : m_System(system), m_Dialect(dialect) {}

  TextSystem Describe() {
    if (m_System.HasWarp()) Refuse("it has a warp");
    t.name = m_System.GetShortName();
    if (t.name.empty()) t.name = "unnamed";
    t.code = m_System.GetPOSC();
    const ProjectionDef* const projection = m_System.GetProjection();
    if (projection && projection->IsUnknown(true)) Refuse("its projection is unknown");
    TakeDatum();
    if (!projection || projection->GetMethod() == ProjectionMethodUnprojected) {
      t.isGeographic = true;
      TakeEllipsoid(OwnEllipsoid(projection));
    } else if (!TakeAngles(*projection->GetParameters())) {
      TakeProjection(*projection->GetParameters());
    }
    TakeNames();
    return t;
  }

 private:
  void Refuse(const char* reason) const {
    ORV_FAIL(ErrBadParameter, "The system cannot be written as %s: %s.", ORVTextDialectName(m_Dialect),
             reason);
  }

  void TakeDatum() {
    const DatumDef* const d = m_System.GetDatum();
    if (!d) return;
    const DatumParameters& p = *d->GetParameters();
    switch (p.method) {
      case DatumMethodUnknown:
        return;
      case DatumMethodNone:
        t.isWgs84 = d->GetSpecial() == DatumTargetWGS84 || d->GetPOSCNumber() == 6326;
        t.hasShift = !t.isWgs84;
        break;
      case DatumMethodBursaWolf: {
        t.hasShift = true;
        const double shift[7] = {p.dx, p.dy, p.dz, p.rx, p.ry, p.rz, p.k};
        std::copy(shift, shift + 7, t.shift);
        t.meridian = p.pmShift;
        if (p.inverse) Refuse("its datum's shift runs backward");
        break;
      }
      case DatumMethodMolodensky:
        Refuse("its datum is converted by Molodensky's formulas, texts know geocentric shifts only");
        break;
      case DatumMethodNADCON:
      case DatumMethodNTV2:
        Refuse("its datum is converted by grids");
        break;
      default:
        Refuse("its datum is converted by regression equations");
    }
    if (p.target != DatumTargetWGS84) Refuse("its datum leads elsewhere than to WGS 84");
  }

  /// The ellipsoid of a geographic system: the datum's own, which a method of None does not tell.
  EllipsoidDef OwnEllipsoid(const ProjectionDef* projection) const {
    const DatumDef* const d = m_System.GetDatum();
    if (d && d->GetMethod() == DatumMethodNone && !t.isWgs84) {
      const EllipsoidDef* const known = KnownEllipsoidOn(*d);
      if (known && IsLikeWgs84(known->GetMajorRadius(), known->GetFlattening())) return *known;
    }
    if (d && !d->GetEllipsoid()->IsUnknown()) return *d->GetEllipsoid();
    if (projection && !projection->GetEllipsoid()->IsUnknown()) return *projection->GetEllipsoid();
    Refuse("it has no ellipsoid");
    return EllipsoidDef();
  }

  void TakeEllipsoid(const EllipsoidDef& e) {
    t.a = e.GetMajorRadius();
    t.f = e.GetFlattening();
    if (!(t.a > 0.0)) Refuse("it has no ellipsoid");
    t.ellipsoidName = EmptyIfNull(e.GetName());
    t.ellipsoidCode = e.GetPOSCNumber();
    if (t.ellipsoidName.empty()) {
      const EllipsoidDef known = EllipsoidOf(t);
      t.ellipsoidName = known.GetName() ? known.GetName() : "unnamed";
      t.ellipsoidCode = known.GetPOSCNumber();
    }
  }

  /// An Equidistant Cylindrical that gives longitude and latitude themselves is a geographic system.
  bool TakeAngles(const ProjectionParameters& p) {
    const double degrees = DegreesPerUnit(m_System);
    if (degrees == 0.0) return false;
    t.isGeographic = true;
    t.angle = AngleUnit(degrees);
    if (t.meridian != 0.0) Refuse("its datum and its map both have a prime meridian of their own");
    t.meridian = p.Lon0;
    TakeEllipsoid(OwnEllipsoid(nullptr));
    return true;
  }

  void TakeProjection(const ProjectionParameters& p) {
    TakeEllipsoid(p.ellipsoid);
    const EllipsoidDef* const own = m_System.GetDatum() ? m_System.GetDatum()->GetEllipsoid() : nullptr;
    const bool isConverted = t.hasShift || t.isWgs84;
    bool isPseudo = false;
    if (isConverted && own && !IsSameFigure(*own, t.a, t.f)) {
      const bool isSphere = t.f == 0.0 && own->GetMajorRadius() == t.a;
      isPseudo = isSphere && p.method == ProjectionMethodMercator;
      if (isPseudo) {
        TakeEllipsoid(*own);
      } else if (isSphere && m_Dialect == TextDialectProj && IsNull(t.shift)) {
        t.isPlainSphere = t.isNullGrid = true;
      } else {
        Refuse("the ellipsoid of its projection is not that of its datum");
      }
    }
    DescribeProjection(p, m_Dialect, isPseudo, t);
    if (t.isPlainSphere && isConverted) {
      if (!IsNull(t.shift)) Refuse("its datum has a shift on the ellipsoid, its projection the sphere");
      t.isNullGrid = true;
    }
  }

  void TakeNames() {
    if (t.meridian != 0.0) {
      const int index = ORVKnownMeridiansList.FindByLongitude(t.meridian);
      t.meridianName = index >= 0 ? ORVKnownMeridiansList.EnumName(index) : "unnamed";
    }
    const DatumDef* const d = m_System.GetDatum();
    t.datumName = d ? EmptyIfNull(d->GetName()) : "";
    t.datumCode = d ? d->GetPOSCNumber() : 0;
    if (t.datumCode > 0 && d->GetToken()) {
      // A variant's name tells its area: "European Datum 1950 - Denmark (EPSG 1626)".
      const int index = ORVKnownDatumsList.FindByPOSCNumber(t.datumCode, nullptr, ORVKnownDatumsList.First());
      if (index != 0) t.datumName = ORVKnownDatumsList.EnumName(index);
    }
    t.datumName = WithoutEnsemble(t.datumName);
    if (t.datumName.empty()) t.datumName = "unknown";
    t.baseName = t.datumName;
    if (!d || t.isGeographic || t.meridian != 0.0) return;
    if (const ORVDef* const base = KnownGeographicOn(*d)) {
      t.baseName = base->GetShortName();
      t.baseCode = base->GetPOSC();
    }
  }

  const ORVDef& m_System;
  TextDialect m_Dialect;
  TextSystem t;
};

}  // namespace

TextSystem DescribeSystem(const ORVDef& system, TextDialect dialect) {
  return Describer(system, dialect).Describe();
}

}  // namespace orv::internal
