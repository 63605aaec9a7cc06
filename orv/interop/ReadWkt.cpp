// What a tree of well-known text says: WKT1 of both dialects, and WKT2.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"
#include "orv/interop/internal/KnownNames.h"
#include "orv/interop/internal/TextSystem.h"
#include "orv/interop/internal/WktParts.h"
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
      ReadGeographicAxes(*system);
      ReadBase(*system);
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
    const Turn turn = TurnOf(method, name, CodeOf(method));
    static const struct {
      int code;
      const char* name;
    } kShifts[7] = {{8605, "X-axis translation"}, {8606, "Y-axis translation"}, {8607, "Z-axis translation"},
                    {8608, "X-axis rotation"},    {8609, "Y-axis rotation"},    {8610, "Z-axis rotation"},
                    {8611, "Scale difference"}};
    t.hasShift = true;
    bool isGiven[7] = {};
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
      if (isGiven[index]) OnlyOnce(item, kShifts[index].name);
      isGiven[index] = true;
      const double value = ShiftValue(item, index);
      if (turn == Turn::None && index >= 3 && value != 0.0)
        Refuse(item, "a geocentric translation has neither rotation nor scale");
      t.shift[index] = value * (turn == Turn::Frame && index >= 3 && index < 6 ? -1.0 : 1.0) + 0.0;
    }
    for (int i = 0; i < (turn == Turn::None ? 3 : 7); ++i) {
      if (!isGiven[i]) Expected(shift, kShifts[i].name);
    }
  }

  /// How a transformation turns: not at all, as position vector, as coordinate frame.
  enum class Turn : unsigned char { None, Vector, Frame, Unknown };

  /// By code, else by name; of the frames only the one of small angles.
  static Turn TurnOf(const WktNode& method, const std::string& name, int code) {
    static const struct {
      Turn turn;
      int codes[3];  // of coordinates in two dimensions, geocentric ones, in three
      const char* name;
    } kTurns[] = {{Turn::None, {9603, 1031, 1035}, "Geocentric translation"},
                  {Turn::Vector, {9606, 1033, 1037}, "Position Vector"},
                  {Turn::Frame, {9607, 1032, 1038}, "Coordinate Frame"}};
    const bool isFull = name.find("full matrix") != std::string::npos;
    Turn byCode = Turn::Unknown, byName = Turn::Unknown;
    for (const auto& row : kTurns) {
      if (std::count(row.codes, row.codes + 3, code) != 0) byCode = row.turn;
      if (!isFull && EqualIgnoringCase(name.substr(0, std::strlen(row.name)), row.name)) byName = row.turn;
    }
    if (code > 0 && byName != Turn::Unknown && byCode != Turn::Unknown && byName != byCode) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the transformation '%s' cannot be expressed: its code %d means another.",
               method.place.line, method.place.column, name.substr(0, 80).c_str(), code);
    }
    const Turn turn = code > 0 ? byCode : byName;
    if (turn == Turn::Unknown || isFull) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the transformation '%s' cannot be expressed: only geocentric "
               "translations, position vector and coordinate frame can.",
               method.place.line, method.place.column, name.substr(0, 80).c_str());
    }
    return turn;
  }

  /// Metres, arc-seconds, parts per million.  Without a unit: these, and 1 plus the scale difference.
  static double ShiftValue(const WktNode& item, int index) {
    const double value = NeedNumber(item, 1, "the value of the parameter");
    if (index < 3) {
      const WktNode* const unit = UnitOf(item, kLength);
      return unit ? value * UnitSize(*unit) : value;
    }
    if (index < 6) {
      const WktNode* const unit = UnitOf(item, kAngle);
      if (!unit) return value;
      const double size = UnitSize(*unit), second = ToRadians(1.0) / 3600.0;
      return std::fabs(size / second - 1.0) < 1e-9 ? value : value * (size / second);
    }
    const WktNode* const unit = UnitOf(item, kRatio);
    const double scale = unit ? value * UnitSize(*unit) : value;
    const double difference = unit && std::fabs(scale) < 0.5 ? scale : scale - 1.0;
    if (!(std::fabs(difference) <= kMostScale))
      Refuse(item, "its scale differs from 1 by more than a hundredth, as it does with its unit missing");
    return std::round(difference * 1e15) / 1e9;
  }
  static constexpr double kMostScale = 0.01;

  // ---- the geographic part -------------------------------------------------------------------------------

  void ReadBase(const WktNode& base) {
    if (t.isGeographic) t.name = Without("GCS_", t.name);
    const WktNode& datum = Need(base, kDatumKeywords, "DATUM");
    const bool isWkt1 = base.Is("GEOGCS");
    if (const WktNode* const unit = UnitOf(base, kAngle)) {
      t.angle = AngleOf(*unit);
      m_HasAngle = true;
    } else if (isWkt1) {
      Expected(base, "UNIT");
    }
    ReadDatum(datum);
    for (const WktNode& item : base.items) {
      if (item.kind == WktNode::Block && item.Is("EXTENSION")) RefuseExtension(item);
    }
    if (const WktNode* const prime = FindOne(base, kPrimes)) ReadMeridian(*prime, isWkt1);
  }

  /// Of a datum or a geographic system.
  static void RefuseExtension(const WktNode& extension) {
    const bool isGrid = EqualIgnoringCase(extension.TextAt(0), "PROJ4_GRIDS") ||
                        extension.TextAt(1).find("nadgrids") != std::string::npos;
    Refuse(extension, isGrid ? "its datum is converted by grids"
                             : "an EXTENSION is understood at a projected system only");
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
    if (const WktNode* const unit = UnitOf(ellipsoid, kLength)) {
      t.a *= LengthOf(*unit).size;
    }
    for (const char* const name : {"WGS 84", "WGS 1984", "World Geodetic System 1984"}) {
      t.isWgs84 = t.isWgs84 || EqualBare(name, t.datumName.c_str());
    }
    t.isWgs84 = (t.isWgs84 || t.datumCode == 6326) && !t.hasShift && t.a == 6378137.0 &&
                std::fabs(inverse - 298.257223563) < 1e-6;
    for (const WktNode& item : datum.items) {
      if (item.kind != WktNode::Block) continue;
      if (item.Is("EXTENSION")) RefuseExtension(item);
      if (item.Is("TOWGS84")) ReadShift(item);
    }
  }

  void ReadShift(const WktNode& shift) {
    if (t.hasShift) OnlyOnce(shift, "a shift to WGS 84");
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
    if (const WktNode* const unit = UnitOf(prime, kAngle)) {
      size = AngleOf(*unit).size;
    } else if (!isWkt1 && value != 0.0 && !m_HasAngle) {
      Expected(prime, kAngle);
    }
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
    const bool isWkt1 = system.Is("GEOGCS");
    if (!isWkt1) CheckCs(system, "ellipsoidal", "its coordinates are not longitude and latitude");
    const WktNode* const unit = AxesUnit(system, kAngle, isWkt1);
    CheckAxes(system, isWkt1, nullptr);
    if (!unit) return;
    t.angle = AngleOf(*unit);
    m_HasAngle = true;
  }

  /// CS[type,2] of WKT2.
  static void CheckCs(const WktNode& system, const char* type, const char* reason) {
    static const char* const kCs[] = {"CS", nullptr};
    const WktNode& cs = Need(system, kCs, "CS");
    if (cs.items.empty() || !cs.items[0].Is(type)) Refuse(cs, reason);
    const double count = NeedNumber(cs, 1, "the number of axes");
    if (count > 2.0) Refuse(cs, "it has more than two axes");
    if (count != 2.0) Expected(cs, "two axes");
  }

  /// The unit of the axes: their own, or that of the system.  Null in WKT1 only.  Raised: there is none, or there are two.
  static const WktNode* AxesUnit(const WktNode& system, const char* keyword, bool isWkt1) {
    const WktNode* unit = UnitOf(system, keyword);
    const WktNode* without = nullptr;
    for (const WktNode& item : system.items) {
      if (item.kind != WktNode::Block || !item.Is("AXIS")) continue;
      const WktNode* const own = UnitOf(item, keyword);
      if (own && unit && UnitSize(*own) != UnitSize(*unit)) Refuse(item, "its axes have different units");
      if (own) unit = own;
      if (!own) without = &item;
    }
    if (isWkt1) return unit;
    if (!unit) Expected(system, keyword);
    if (without && !UnitOf(system, keyword)) Expected(*without, keyword);
    return unit;
  }

  // ---- axes ----------------------------------------------------------------------------------------------

  /// x is the easting and y the northing here, in whatever order a text gives them.
  ///
  /// @param projected  of the axes of a polar map, which may all point north or south; else null.
  void CheckAxes(const WktNode& system, bool isWkt1, const TextSystem* projected) const {
    const WktNode* first = nullptr;
    Runs firstRuns = Runs::Untold;
    int axes = 0;
    for (const WktNode& item : system.items) {
      if (item.kind != WktNode::Block || !item.Is("AXIS")) continue;
      if (++axes > 2) Refuse(item, "it has more than two axes");
      const Runs runs = DirectionOf(item, projected);
      if (first && runs == firstRuns && runs != Runs::Untold) Refuse(item, "both of its axes run one way");
      first = &item;
      firstRuns = runs;
    }
    if (axes != 2 && !(isWkt1 && axes == 0)) Expected(system, "two axes (AXIS)");
  }

  /// Which way an axis runs; untold for the axes of a polar map without meridians.
  enum class Runs : unsigned char { East, North, Untold };

  Runs DirectionOf(const WktNode& axis, const TextSystem* projected) const {
    if (axis.items.size() < 2 || axis.items[1].kind != WktNode::Word)
      Expected(axis, "the direction of the axis");
    const std::string& direction = axis.items[1].text;
    const bool isNorth = EqualIgnoringCase(direction, "north"),
               isSouth = EqualIgnoringCase(direction, "south");
    if (projected && IsPolar(*projected) && (isNorth || isSouth)) return PolarDirectionOf(axis, isSouth);
    if (isNorth) return Runs::North;
    if (EqualIgnoringCase(direction, "east")) return Runs::East;
    ORV_FAIL(ErrBadParameter,
             "Line %d, column %d: the axis '%s' points %s: x is the easting and y the northing here.",
             axis.place.line, axis.place.column, axis.TextAt(0).substr(0, 80).c_str(),
             direction.substr(0, 20).c_str());
    return Runs::Untold;
  }

  static bool IsPolar(const TextSystem& t) {
    const Form form = t.method->form;
    return form == Form::PolarA || form == Form::PolarB || form == Form::PolarC || form == Form::PolarOgc ||
           std::fabs(t.values.Or(Par::Lat0, 0.0)) == 90.0;
  }

  /// Away from the pole, the easting runs along the meridian a right angle east of the central one, the northing along
  /// the one opposite to it (north pole) or along itself (south pole).
  Runs PolarDirectionOf(const WktNode& axis, bool isSouth) const {
    const WktNode* const meridian = axis.Find("MERIDIAN");
    if (!meridian) return Runs::Untold;
    double longitude = NeedNumber(*meridian, 0, "the longitude of the axis");
    if (const WktNode* const unit = UnitOf(*meridian, kAngle)) longitude *= AngleOf(*unit).size;
    const double away = std::remainder(longitude - t.values.Or(Par::Lon0, 0.0), 360.0);
    const double northing = isSouth ? 180.0 : 0.0;
    if (std::fabs(away - 90.0) < 1e-6) return Runs::East;
    if (std::fabs(std::fabs(away) - northing) < 1e-6) return Runs::North;
    ORV_FAIL(ErrBadParameter,
             "Line %d, column %d: the axis '%s' points %s: x is the easting and y the northing here.",
             axis.place.line, axis.place.column, axis.TextAt(0).substr(0, 80).c_str(),
             isSouth ? "south" : "north");
    return Runs::Untold;
  }

  // ---- projected systems ---------------------------------------------------------------------------------

  void ReadProjected(const WktNode& system) {
    t.name = NeedText(system, "a name in double quotes");
    t.code = CodeOf(system);
    ReadBase(Need(system, kBases, "GEOGCS or BASEGEOGCRS"));
    const bool isWkt1 = system.Is("PROJCS");
    if (!isWkt1) CheckCs(system, "Cartesian", "its coordinates are not those of a plane");
    ReadLengthUnit(system, isWkt1);
    const WktNode* conversion = &system;
    if (!isWkt1) {
      static const char* const kConversion[] = {"CONVERSION", nullptr};
      conversion = &Need(system, kConversion, "CONVERSION");
      t.conversionName = conversion->TextAt(0);
    }
    ReadMethod(*conversion, isWkt1);
    if (isWkt1) ReadExtensions(system);
    CheckAxes(system, isWkt1, &t);
  }

  void ReadLengthUnit(const WktNode& system, bool isWkt1) {
    const WktNode* const unit = AxesUnit(system, kLength, isWkt1);
    if (!unit) Expected(system, "UNIT");
    t.length = LengthOf(*unit);
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
    if (IsOtherMethod(*t.method, name)) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the projection '%s' cannot be expressed: its code %d means another.",
               method.place.line, method.place.column, name.substr(0, 80).c_str(), code);
    }
    for (const WktNode& item : conversion.items) {
      if (item.kind == WktNode::Block && item.Is("PARAMETER")) ReadParameter(item, isWkt1);
    }
    SettleForm(method, name);
  }

  /// What the name of the method tells beside its row.
  void SettleForm(const WktNode& method, const std::string& name) {
    const Values& v = t.values;
    if (t.method->form == Form::LambertScaled && EqualBare(t.method->esri, name.c_str())) {
      // ESRI's one name of the forms of one and of two parallels, with or without a factor.
      if (!v.Has(Par::Lat2)) {
        t.method = &RowOfForm(Form::Lambert1);
      } else if (!v.Has(Par::K)) {
        t.method = &RowOfForm(Form::Lambert2);
      }
    } else if (t.method->form == Form::PolarB && v.Has(Par::Lat1)) {
      const bool isSouth = v.At(Par::Lat1) < 0.0;
      if (EqualBare(isSouth ? "Stereographic_North_Pole" : "Stereographic_South_Pole", name.c_str())) {
        ORV_FAIL(
            ErrBadParameter,
            "Line %d, column %d: the projection '%s' cannot be expressed: its standard parallel lies in the "
            "other hemisphere.",
            method.place.line, method.place.column, name.substr(0, 80).c_str());
      }
    }
  }

  void ReadParameter(const WktNode& item, bool isWkt1) {
    const std::string& name = NeedText(item, "the name of the parameter");
    const double value = NeedNumber(item, 1, "the value of the parameter");
    const int code = CodeOf(item);
    const ParameterRow* const row = FindParameter(*t.method, name, code);
    if (!row) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the parameter '%s' cannot be expressed: the projection has none such.",
               item.place.line, item.place.column, name.substr(0, 80).c_str());
    }
    const ParameterRow* const named = FindParameter(*t.method, name, 0);
    if (named && named->par != row->par) {
      ORV_FAIL(ErrBadParameter,
               "Line %d, column %d: the parameter '%s' cannot be expressed: its code %d means another.",
               item.place.line, item.place.column, name.substr(0, 80).c_str(), code);
    }
    if (t.values.Has(row->par)) OnlyOnce(item, ParName(row->par));
    const WktNode* const unit = UnitOf(item, IsLength(row->par)  ? kLength
                                             : IsRatio(row->par) ? kRatio
                                                                 : kAngle);
    // WKT2 without a unit: the axes' unit when PROJ writes it, the metre and the degree when PROJ reads it.
    const bool isBare = !unit && !isWkt1 && value != 0.0;
    double& to = t.values[row->par];
    if (IsLength(row->par)) {
      if (isBare && t.length.size != 1.0)
        Refuse(item, "its unit is missing, by which some mean the metre and some the unit of the axes");
      to = value * (unit ? LengthOf(*unit).size : t.length.size);
    } else if (IsRatio(row->par)) {
      to = unit ? value * UnitSize(*unit) : value;
    } else {
      if (isBare && !m_HasAngle) Expected(item, kAngle);
      if (isBare && t.angle.size != 1.0)
        Refuse(
            item,
            "its unit is missing, by which some mean the degree and some the unit of the geographic system");
      to = value * (unit ? AngleOf(*unit).size : t.angle.size);
    }
  }

  void ReadExtensions(const WktNode& system) {
    const WktNode* first = nullptr;
    for (const WktNode& item : system.items) {
      if (item.kind != WktNode::Block || !item.Is("EXTENSION")) continue;
      if (!EqualIgnoringCase(item.TextAt(0), "PROJ4"))
        Refuse(item, "its EXTENSION is not the PROJ4 that is understood");
      if (first) OnlyOnce(item, "EXTENSION");
      first = &item;
      ReadExtension(item);
    }
  }

  /// GDAL's way out for what WKT1 has no name for: the projection as a PROJ string.  What that says of unit, meridian and
  /// datum must be what the text says.
  void ReadExtension(const WktNode& extension) {
    const TextSystem other = ReadProjString(extension.TextAt(1), extension.place);
    if (other.isGeographic) Expected(extension, "a projection");
    const bool isSphere = other.f == 0.0 && t.f != 0.0;
    if ((!isSphere && std::fabs(other.f - t.f) > 1e-9) || std::fabs(other.a - t.a) > 1e-3)
      Refuse(extension, "its ellipsoid is not that of its datum");
    if (std::fabs(other.length.size / t.length.size - 1.0) > 1e-9)
      Refuse(extension, "its PROJ string has another unit");
    if (std::fabs(other.meridian - t.meridian) > 1e-9)
      Refuse(extension, "its PROJ string has another prime meridian");
    if (!IsOnDatumOf(other)) Refuse(extension, "its PROJ string has another datum or shift");
    t.method = other.method;
    t.values = other.values;
    t.hasDefaults = other.hasDefaults;
    t.zone = other.zone;
    t.isSouth = other.isSouth;
    t.conversionName = other.conversionName;
    t.isPlainSphere = isSphere;
    const bool isMercator = t.method->form == Form::MercatorA || t.method->form == Form::MercatorB;
    if (isMercator && t.isPlainSphere) t.method = &RowOfForm(Form::PseudoMercator);
    t.isUnrotated = other.isUnrotated;
    t.isFromNatural = other.isFromNatural;
  }

  /// Whether what a PROJ string says of the datum, if it does, is what the text says.
  bool IsOnDatumOf(const TextSystem& other) const {
    const auto isNull = [](const TextSystem& s) {
      return s.isWgs84 ||
             (s.hasShift && std::all_of(s.shift, s.shift + 7, [](double v) { return v == 0.0; }));
    };
    if (other.isNullGrid) return isNull(t);
    if (isNull(other) && isNull(t)) return true;
    if (other.hasShift || t.hasShift)
      return other.hasShift && t.hasShift && std::equal(t.shift, t.shift + 7, other.shift);
    return other.datumCode == 0 || KnownDatumOf(other) == KnownDatumOf(t);
  }

  bool m_HasAngle = false;  // a unit of the geographic system, or of its axes
  TextSystem t;
};

}  // namespace

TextSystem ReadWkt(std::string_view text) { return Reader().Read(ReadWktTree(text)); }

}  // namespace orv::internal
