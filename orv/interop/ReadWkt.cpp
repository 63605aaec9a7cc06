// What a tree of well-known text says: WKT1 of both dialects, and WKT2.
#include <cmath>
#include <cstring>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"
#include "orv/interop/internal/KnownNames.h"
#include "orv/interop/internal/TextSystem.h"
#include "orv/tables/Meridians.h"

ORV_UNIT("Interchange")

namespace orv::internal {

namespace {

constexpr const char* kProjected[] = {"PROJCS", "PROJCRS", "PROJECTEDCRS", nullptr};
constexpr const char* kGeographic[] = {"GEOGCS",  "GEOGCRS",     "GEOGRAPHICCRS",
                                       "GEODCRS", "GEODETICCRS", nullptr};
constexpr const char* kBases[] = {"GEOGCS", "BASEGEOGCRS", "BASEGEODCRS", nullptr};
constexpr const char* kDatumKeywords[] = {"DATUM", "GEODETICDATUM", "TRF", "ENSEMBLE", nullptr};
constexpr const char* kEllipsoids[] = {"SPHEROID", "ELLIPSOID", nullptr};
constexpr const char* kPrimes[] = {"PRIMEM", "PRIMEMERIDIAN", nullptr};
constexpr const char* kMethods[] = {"PROJECTION", "METHOD", nullptr};
constexpr const char* kAngleUnits[] = {"ANGLEUNIT", "UNIT", nullptr};
constexpr const char* kLengthUnits[] = {"LENGTHUNIT", "UNIT", nullptr};
constexpr const char* kScaleUnits[] = {"SCALEUNIT", "UNIT", nullptr};

bool IsAny(const WktNode& node, const char* const* keywords) {
  for (; *keywords; ++keywords) {
    if (node.Is(*keywords)) return true;
  }
  return false;
}

void Expected(const WktNode& node, const char* what) {
  ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected %s in %s.", node.place.line, node.place.column, what,
           node.text.substr(0, 40).c_str());
}
void Refuse(const WktNode& node, const char* reason) {
  ORV_FAIL(ErrBadParameter, "Line %d, column %d: the system cannot be expressed: %s.", node.place.line,
           node.place.column, reason);
}

const WktNode& Need(const WktNode& node, const char* const* keywords, const char* what) {
  const WktNode* const found = node.FindAny(keywords);
  if (!found) Expected(node, what);
  return *found;
}
const std::string& NeedText(const WktNode& node, const char* what) {
  if (node.items.empty() || node.items[0].kind != WktNode::Text) Expected(node, what);
  return node.items[0].text;
}
double NeedNumber(const WktNode& node, size_t index, const char* what) {
  if (index >= node.items.size() || node.items[index].kind != WktNode::Number) Expected(node, what);
  return node.items[index].number;
}

/// The EPSG code of a block, AUTHORITY["EPSG","4326"] or ID["EPSG",4326]; 0 for none.
int CodeOf(const WktNode& node) {
  static const char* const kIds[] = {"ID", "AUTHORITY", nullptr};
  const WktNode* const id = node.FindAny(kIds);
  if (!id || id->items.size() < 2 || !EqualIgnoringCase(id->TextAt(0), "EPSG")) return 0;
  const WktNode& value = id->items[1];
  return value.kind == WktNode::Number || value.kind == WktNode::Text ? ReadInteger(value.text) : 0;
}

double UnitSize(const WktNode& unit) {
  const double size = NeedNumber(unit, 1, "the size of the unit");
  if (!(size >= 1e-12) || !(size <= 1e12)) Expected(unit, "a size from 1e-12 to 1e12");
  return size;
}
TextUnit AngleOf(const WktNode& unit) {
  TextUnit angle = AngleUnit(ToDegrees(UnitSize(unit)));
  if (angle.code == 0) angle.name = unit.TextAt(0);
  return angle;
}
TextUnit LengthOf(const WktNode& unit) {
  const double size = UnitSize(unit);
  // Sizes come with 15 digits: the known unit has them all.
  TextUnit length = LengthUnit(size, 1e-13);
  if (length.code == 0) length = {unit.TextAt(0), 0, size};
  return length;
}

class Reader {
 public:
  TextSystem Read(const WktNode& root) {
    t.place = t.methodPlace = root.place;
    const WktNode* system = &root;
    if (root.Is("BOUNDCRS")) system = &BoundSystem(root);
    if (IsAny(*system, kProjected)) {
      ReadProjected(*system);
    } else if (IsAny(*system, kGeographic)) {
      t.isGeographic = true;
      t.name = NeedText(*system, "a name in double quotes");
      t.code = CodeOf(*system);
      ReadBase(*system);
      ReadGeographicAxes(*system);
    } else {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: expected a projected or geographic system (PROJCS, GEOGCS, PROJCRS, "
               "GEOGCRS, BOUNDCRS), found %s.",
               system->place.line, system->place.column, system->text.substr(0, 40).c_str());
    }
    return t;
  }

 private:
  // ---- BOUNDCRS ------------------------------------------------------------------------------------------

  const WktNode& BoundSystem(const WktNode& bound) {
    static const char* const kSource[] = {"SOURCECRS", nullptr};
    static const char* const kTarget[] = {"TARGETCRS", nullptr};
    static const char* const kShift[] = {"ABRIDGEDTRANSFORMATION", nullptr};
    const WktNode& source = Need(bound, kSource, "SOURCECRS");
    const WktNode& target = Need(bound, kTarget, "TARGETCRS");
    if (source.items.empty() || source.items[0].kind != WktNode::Block) Expected(source, "a system");
    if (target.items.empty() || target.items[0].kind != WktNode::Block) Expected(target, "a system");
    const WktNode& to = target.items[0];
    const int code = CodeOf(to);
    if (code != 4326 && code != 4979 && !EqualBare(to.TextAt(0).c_str(), "WGS 84")) {
      Refuse(to, "its transformation leads elsewhere than to WGS 84");
    }
    ReadTransformation(Need(bound, kShift, "ABRIDGEDTRANSFORMATION"));
    return source.items[0];
  }

  void ReadTransformation(const WktNode& shift) {
    static const char* const kMethod[] = {"METHOD", nullptr};
    const WktNode& method = Need(shift, kMethod, "METHOD");
    const std::string& name = NeedText(method, "the name of the method");
    const int code = CodeOf(method);
    const auto begins = [&name](const char* text) {
      return EqualIgnoringCase(name.substr(0, std::strlen(text)), text);
    };
    const bool isTranslation =
        code == 9603 || code == 1031 || code == 1035 || begins("Geocentric translation");
    const bool isVector = code == 9606 || code == 1033 || code == 1037 || begins("Position Vector");
    const bool isFrame = code == 9607 || code == 1032 || code == 1038 || begins("Coordinate Frame");
    if (!isTranslation && !isVector && !isFrame) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the transformation '%s' cannot be expressed: only geocentric "
               "translations, position vector and coordinate frame can.",
               method.place.line, method.place.column, name.substr(0, 80).c_str());
    }
    static const struct {
      int code;
      const char* name;
    } kShifts[7] = {{8605, "X-axis translation"}, {8606, "Y-axis translation"}, {8607, "Z-axis translation"},
                    {8608, "X-axis rotation"},    {8609, "Y-axis rotation"},    {8610, "Z-axis rotation"},
                    {8611, "Scale difference"}};
    t.hasShift = true;
    for (const WktNode& item : shift.items) {
      if (item.Is("PARAMETERFILE")) Refuse(item, "its transformation needs a grid file");
      if (item.kind != WktNode::Block || !item.Is("PARAMETER")) continue;
      const std::string& parameter = NeedText(item, "the name of the parameter");
      const int id = CodeOf(item);
      int index = -1;
      for (int i = 0; i < 7; ++i) {
        if ((id > 0 && id == kShifts[i].code) || EqualBare(kShifts[i].name, parameter.c_str())) index = i;
      }
      if (index < 0) Refuse(item, "its transformation has a parameter that the library's has not");
      t.shift[index] = ShiftValue(item, index) * (isFrame && index >= 3 && index < 6 ? -1.0 : 1.0) + 0.0;
    }
  }

  /// Metres, arc-seconds, parts per million.  Without a unit: these, and 1 plus the scale difference.
  static double ShiftValue(const WktNode& item, int index) {
    const double value = NeedNumber(item, 1, "the value of the parameter");
    if (index < 3) {
      const WktNode* const unit = item.FindAny(kLengthUnits);
      return unit ? value * UnitSize(*unit) : value;
    }
    if (index < 6) {
      const WktNode* const unit = item.FindAny(kAngleUnits);
      if (!unit) return value;
      const double size = UnitSize(*unit), second = ToRadians(1.0) / 3600.0;
      return std::fabs(size / second - 1.0) < 1e-9 ? value : value * (size / second);
    }
    const WktNode* const unit = item.FindAny(kScaleUnits);
    const double scale = unit ? value * UnitSize(*unit) : value;
    if (unit && std::fabs(scale) < 0.5) return std::round(scale * 1e15) / 1e9;
    return std::round((scale - 1.0) * 1e15) / 1e9;
  }

  // ---- the geographic part -------------------------------------------------------------------------------

  void ReadBase(const WktNode& base) {
    t.baseName = Without("GCS_", base.TextAt(0));
    if (t.isGeographic) t.name = Without("GCS_", t.name);
    t.baseCode = CodeOf(base);
    const WktNode& datum = Need(base, kDatumKeywords, "DATUM");
    const bool isWkt1 = base.Is("GEOGCS");
    if (const WktNode* const unit = base.FindAny(kAngleUnits)) {
      t.angle = AngleOf(*unit);
    } else if (isWkt1) {
      Expected(base, "UNIT");
    }
    ReadDatum(datum);
    if (const WktNode* const prime = base.FindAny(kPrimes)) ReadMeridian(*prime, isWkt1);
  }

  /// A name without the prefix that ESRI's texts put in front of it.
  static std::string Without(const char* prefix, const std::string& name) {
    const size_t length = std::strlen(prefix);
    return name.compare(0, length, prefix) == 0 && name.size() > length ? name.substr(length) : name;
  }

  void ReadDatum(const WktNode& datum) {
    t.datumName = WithoutEnsemble(Without("D_", NeedText(datum, "the name of the datum")));
    t.datumCode = CodeOf(datum);
    const WktNode& ellipsoid = Need(datum, kEllipsoids, "SPHEROID or ELLIPSOID");
    t.ellipsoidName = NeedText(ellipsoid, "the name of the ellipsoid");
    t.ellipsoidCode = CodeOf(ellipsoid);
    t.a = NeedNumber(ellipsoid, 1, "the major radius");
    const double inverse = NeedNumber(ellipsoid, 2, "the inverse flattening");
    t.f = inverse == 0.0 ? 0.0 : 1.0 / inverse;
    if (const WktNode* const unit = ellipsoid.FindAny(kLengthUnits)) {
      t.a *= LengthOf(*unit).size;
    }
    for (const char* const name : {"WGS 84", "WGS 1984", "World Geodetic System 1984"}) {
      t.isWgs84 = t.isWgs84 || EqualBare(name, t.datumName.c_str());
    }
    t.isWgs84 = (t.isWgs84 || t.datumCode == 6326) && !t.hasShift && t.a == 6378137.0 &&
                std::fabs(inverse - 298.257223563) < 1e-6;
    for (const WktNode& item : datum.items) {
      if (item.kind != WktNode::Block) continue;
      if (item.Is("EXTENSION")) Refuse(item, "its datum is converted by grids");
      if (item.Is("TOWGS84")) ReadShift(item);
    }
  }

  void ReadShift(const WktNode& shift) {
    if (shift.items.size() != 3 && shift.items.size() != 7) Expected(shift, "three or seven numbers");
    for (size_t i = 0; i < shift.items.size(); ++i)
      t.shift[i] = NeedNumber(shift, i, "three or seven numbers");
    t.hasShift = true;
    t.isWgs84 = false;
  }

  void ReadMeridian(const WktNode& prime, bool isWkt1) {
    t.meridianName = NeedText(prime, "the name of the meridian");
    const double value = NeedNumber(prime, 1, "the longitude of the meridian");
    double size = t.angle.size;
    if (const WktNode* const unit = prime.FindAny(kAngleUnits)) size = AngleOf(*unit).size;
    t.meridian = value * size;
    // WKT1 has it in the unit of the system; both dialects write degrees nevertheless.  The known one tells.
    const double degrees = KnownMeridian(value, t.meridian);
    if (isWkt1 && size != 1.0 && std::fabs(value - degrees) < 1e-6) t.meridian = value;
    if (std::fabs(t.meridian) > 360.0) Expected(prime, "a longitude of at most a turn");
    if (std::fabs(t.meridian) < 1e-12) t.meridian = 0.0;
    if (std::fabs(t.meridian - degrees) < 1e-9) t.meridian = degrees;
  }

  /// The longitude of the known meridian of either value, degrees; NaN when there is none.
  static double KnownMeridian(double first, double second) {
    constexpr double kParis = 2.33722917;
    for (const double longitude : {second, first}) {
      for (int i = ORVKnownMeridiansList.First(); i <= ORVKnownMeridiansList.Last(); ++i) {
        const double known = ORVKnownMeridiansList.EnumLongitude(i);
        if (std::fabs(known - longitude) < 1e-7) return known;
      }
      if (std::fabs(kParis - longitude) < 1e-7) return kParis;
    }
    return NAN;
  }

  void ReadGeographicAxes(const WktNode& system) {
    int axes = 0;
    const WktNode* unit = nullptr;
    for (const WktNode& item : system.items) {
      if (item.kind != WktNode::Block) continue;
      if (item.Is("CS") && !item.items.empty() && !item.items[0].Is("ellipsoidal")) {
        Refuse(item, "its coordinates are not longitude and latitude");
      }
      if (!item.Is("AXIS")) continue;
      if (++axes > 2) Refuse(item, "it has more than two axes");
      CheckDirection(item, nullptr);
      const WktNode* const own = item.FindAny(kAngleUnits);
      if (own && unit && UnitSize(*own) != UnitSize(*unit)) Refuse(item, "its axes have different units");
      if (own) unit = own;
    }
    if (unit) t.angle = AngleOf(*unit);
  }

  // ---- axes ----------------------------------------------------------------------------------------------

  /// x is the easting and y the northing here, in whatever order a text gives them.
  ///
  /// @param projected  of the axes of a polar map, which all point north or south; else null.
  void CheckDirection(const WktNode& axis, const TextSystem* projected) const {
    if (axis.items.size() < 2 || axis.items[1].kind != WktNode::Word)
      Expected(axis, "the direction of the axis");
    const std::string& direction = axis.items[1].text;
    const bool isNorth = EqualIgnoringCase(direction, "north"),
               isSouth = EqualIgnoringCase(direction, "south");
    if (projected && IsPolar(*projected) && (isNorth || isSouth)) {
      CheckPolarAxis(axis, isSouth);
      return;
    }
    if (isNorth || EqualIgnoringCase(direction, "east")) return;
    ORV_FAIL(ErrBadParameter,
             "Line %d, column %d: the axis '%s' points %s: x is the easting and y the northing here.",
             axis.place.line, axis.place.column, axis.TextAt(0).substr(0, 80).c_str(),
             direction.substr(0, 20).c_str());
  }

  static bool IsPolar(const TextSystem& t) {
    const Form form = t.method->form;
    return form == Form::PolarA || form == Form::PolarB || form == Form::PolarC || form == Form::PolarOgc ||
           std::fabs(t.values.Or(Par::Lat0, 0.0)) == 90.0;
  }

  /// Away from the pole, the easting runs along the meridian a right angle east of the central one, the northing along
  /// the one opposite to it (north pole) or along itself (south pole).
  void CheckPolarAxis(const WktNode& axis, bool isSouth) const {
    const WktNode* const meridian = axis.Find("MERIDIAN");
    if (!meridian) return;
    double longitude = NeedNumber(*meridian, 0, "the longitude of the axis");
    if (const WktNode* const unit = meridian->FindAny(kAngleUnits)) longitude *= AngleOf(*unit).size;
    const double away = std::remainder(longitude - t.values.Or(Par::Lon0, 0.0), 360.0);
    const double northing = isSouth ? 180.0 : 0.0;
    if (std::fabs(away - 90.0) < 1e-6 || std::fabs(std::fabs(away) - northing) < 1e-6) return;
    ORV_FAIL(ErrBadParameter,
             "Line %d, column %d: the axis '%s' points %s: x is the easting and y the northing here.",
             axis.place.line, axis.place.column, axis.TextAt(0).substr(0, 80).c_str(),
             isSouth ? "south" : "north");
  }

  // ---- projected systems ---------------------------------------------------------------------------------

  void ReadProjected(const WktNode& system) {
    t.name = NeedText(system, "a name in double quotes");
    t.code = CodeOf(system);
    ReadBase(Need(system, kBases, "GEOGCS or BASEGEOGCRS"));
    const bool isWkt1 = system.Is("PROJCS");
    ReadLengthUnit(system, isWkt1);
    const WktNode* conversion = &system;
    if (!isWkt1) {
      static const char* const kConversion[] = {"CONVERSION", nullptr};
      conversion = &Need(system, kConversion, "CONVERSION");
      t.conversionName = conversion->TextAt(0);
    }
    ReadMethod(*conversion, isWkt1);
    if (isWkt1) ReadExtension(system);
    int axes = 0;
    for (const WktNode& item : system.items) {
      if (item.kind != WktNode::Block || !item.Is("AXIS")) continue;
      if (++axes > 2) Refuse(item, "it has more than two axes");
      CheckDirection(item, &t);
    }
  }

  void ReadLengthUnit(const WktNode& system, bool isWkt1) {
    const WktNode* unit = system.FindAny(kLengthUnits);
    for (const WktNode& item : system.items) {
      if (item.kind != WktNode::Block || !item.Is("AXIS")) continue;
      const WktNode* const own = item.FindAny(kLengthUnits);
      if (own && unit && UnitSize(*own) != UnitSize(*unit)) Refuse(item, "its axes have different units");
      if (own) unit = own;
    }
    if (unit) {
      t.length = LengthOf(*unit);
    } else if (isWkt1) {
      Expected(system, "UNIT");
    } else {
      Expected(system, "LENGTHUNIT");
    }
  }

  void ReadMethod(const WktNode& conversion, bool isWkt1) {
    const WktNode& method = Need(conversion, kMethods, isWkt1 ? "PROJECTION" : "METHOD");
    t.methodPlace = method.place;
    const std::string& name = NeedText(method, "the name of the projection");
    const int code = CodeOf(method);
    if (const char* const reason = WhyNotMethod(name, code)) {
      ORV_FAIL(ErrBadParameter, "Line %d, column %d: the projection '%s' cannot be expressed: %s.",
               method.place.line, method.place.column, name.substr(0, 80).c_str(), reason);
    }
    t.method = FindMethod(name, code);
    if (!t.method) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the projection '%s' cannot be expressed: the library has no such method.",
               method.place.line, method.place.column, name.substr(0, 80).c_str());
    }
    for (const WktNode& item : conversion.items) {
      if (item.kind == WktNode::Block && item.Is("PARAMETER")) ReadParameter(item);
    }
  }

  void ReadParameter(const WktNode& item) {
    const std::string& name = NeedText(item, "the name of the parameter");
    const double value = NeedNumber(item, 1, "the value of the parameter");
    const ParameterRow* const row = FindParameter(*t.method, name, CodeOf(item));
    if (!row) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the parameter '%s' cannot be expressed: the projection has none such.",
               item.place.line, item.place.column, name.substr(0, 80).c_str());
    }
    double& to = t.values[row->par];
    if (IsLength(row->par)) {
      const WktNode* const unit = item.FindAny(kLengthUnits);
      to = value * (unit ? LengthOf(*unit).size : t.length.size);
    } else if (IsRatio(row->par)) {
      const WktNode* const unit = item.FindAny(kScaleUnits);
      to = unit ? value * UnitSize(*unit) : value;
    } else {
      const WktNode* const unit = item.FindAny(kAngleUnits);
      to = value * (unit ? AngleOf(*unit).size : t.angle.size);
    }
  }

  /// GDAL's way out for what WKT1 has no name for: the projection as a PROJ string.
  void ReadExtension(const WktNode& system) {
    const WktNode* const extension = system.Find("EXTENSION");
    if (!extension || !EqualIgnoringCase(extension->TextAt(0), "PROJ4")) return;
    const TextSystem other = ReadProjString(extension->TextAt(1), extension->place);
    if (other.isGeographic) Expected(*extension, "a projection");
    t.method = other.method;
    t.values = other.values;
    t.isPlainSphere = other.f == 0.0 && t.f != 0.0;
    const bool isMercator = t.method->form == Form::MercatorA || t.method->form == Form::MercatorB;
    if (isMercator && t.isPlainSphere) t.method = &RowOfForm(Form::PseudoMercator);
    t.isUnrotated = other.isUnrotated;
    t.isFromNatural = other.isFromNatural;
    if (!t.isPlainSphere && std::fabs(other.f - t.f) > 1e-9)
      Refuse(*extension, "its ellipsoid is not that of its datum");
    if (std::fabs(other.a - t.a) > 1e-3) Refuse(*extension, "its ellipsoid is not that of its datum");
  }

  TextSystem t;
};

}  // namespace

TextSystem ReadWkt(std::string_view text) { return Reader().Read(ReadWktTree(text)); }

}  // namespace orv::internal
