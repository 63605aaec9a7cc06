// Systems as well-known text.
#include <cmath>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Text.h"
#include "orv/interop/internal/KnownNames.h"
#include "orv/interop/internal/TextSystem.h"

namespace orv::internal {

namespace {

WktNode Id(int code) { return WktNode::Of("ID").With(std::string("EPSG")).With(static_cast<double>(code)); }
WktNode Authority(int code) {
  return WktNode::Of("AUTHORITY").With(std::string("EPSG")).With(std::to_string(code));
}

double InverseFlattening(double f) { return f == 0.0 ? 0.0 : Tidied(1.0 / f); }

/// A parameter's value in the units of the text: degrees, the unit of the plane, or none.
double ValueIn(const TextSystem& t, Par par) {
  const double value = t.values.Or(par, par == Par::K ? 1.0 : 0.0);
  return IsLength(par) ? Tidied(value / t.length.size) : value;
}

// ---- WKT1 ------------------------------------------------------------------------------------------------

class Wkt1 {
 public:
  Wkt1(const TextSystem& text, bool isEsri) : t(text), m_IsEsri(isEsri) {}

  WktNode System() const {
    if (t.isGeographic) return Geographic(t.name, t.code, true);
    WktNode node = WktNode::Of("PROJCS").With(m_IsEsri ? EsriName(t.name, 0) : t.name);
    node.Add(Geographic(t.baseName, t.baseCode, false));
    node.Add(WktNode::Of("PROJECTION").With(std::string(MethodName())));
    for (const ParameterRow& row : *t.method) {
      const char* const name = m_IsEsri ? row.esri : GdalName(row);
      if (!name || (IsUnset(row.par))) continue;
      node.Add(WktNode::Of("PARAMETER").With(std::string(name)).With(ValueIn(t, row.par)));
    }
    node.Add(Unit(t.length, Tidied(t.length.size)));
    if (m_IsEsri) return node;
    if (t.method->form == Form::PseudoMercator) {
      node.Add(WktNode::Of("EXTENSION").With(std::string("PROJ4")).With(WriteProjString(t)));
    }
    // Around a pole there is no east; the default is meant.
    if (std::fabs(t.values.Or(Par::Lat0, 0.0)) != 90.0 && t.method->form != Form::PolarOgc) {
      node.Add(WktNode::Of("AXIS").With(std::string("Easting")).WithWord("EAST"));
      node.Add(WktNode::Of("AXIS").With(std::string("Northing")).WithWord("NORTH"));
    }
    if (t.code > 0) node.Add(Authority(t.code));
    return node;
  }

 private:
  bool IsPseudo() const { return t.method->form == Form::PseudoMercator; }
  /// A value that only another dialect has.
  bool IsUnset(Par par) const {
    return !t.values.Has(par) && par != Par::K && !IsLength(par) && par != Par::Zero;
  }

  std::string MethodName() const {
    if (!m_IsEsri) return IsPseudo() ? RowOfForm(Form::MercatorA).gdal : t.method->gdal;
    if (t.method->form == Form::PolarB && t.values.At(Par::Lat1) < 0.0) return "Stereographic_South_Pole";
    return t.method->esri;
  }
  const char* GdalName(const ParameterRow& row) const {
    return row.par == Par::Lat0 && (IsPseudo() || t.method->form == Form::MercatorA) ? nullptr : row.gdal;
  }

  WktNode Unit(const TextUnit& unit, double size) const {
    std::string name = unit.name;
    if (m_IsEsri) {
      name = unit.code == 9001   ? "Meter"
             : unit.code == 9003 ? "Foot_US"
             : unit.code == 9002 ? "Foot"
             : unit.code == 9122 ? "Degree"
             : unit.code == 9105 ? "Grad"
             : unit.code == 9101 ? "Radian"
                                 : EsriName(name, 0);
    }
    WktNode node = WktNode::Of("UNIT").With(name).With(size);
    if (!m_IsEsri && unit.code > 0) node.Add(Authority(unit.code));
    return node;
  }

  WktNode Geographic(const std::string& name, int code, bool isWhole) const {
    WktNode node = WktNode::Of("GEOGCS").With(m_IsEsri ? "GCS_" + GcsName(name) : name);
    node.Add(Datum());
    // Known meridians stand in degrees in both dialects; others in the unit of the system, as the standard has it.
    const double meridian = t.meridianName == "unnamed" ? Tidied(t.meridian / t.angle.size) : t.meridian;
    WktNode prime = WktNode::Of("PRIMEM").With(t.meridianName).With(meridian);
    if (!m_IsEsri && t.meridian == 0.0) prime.Add(Authority(8901));
    node.Add(prime);
    node.Add(Unit(t.angle, Tidied(ToRadians(t.angle.size))));
    if (m_IsEsri) return node;
    if (isWhole) {
      node.Add(WktNode::Of("AXIS").With(std::string("Longitude")).WithWord("EAST"));
      node.Add(WktNode::Of("AXIS").With(std::string("Latitude")).WithWord("NORTH"));
    }
    if (code > 0) node.Add(Authority(code));
    return node;
  }
  /// ESRI calls systems and datums of one name alike.
  std::string GcsName(const std::string& name) const {
    const std::string datum = EsriName(t.datumName, t.datumCode);
    return datum != EsriName(t.datumName, 0) && t.meridian == 0.0 ? datum : EsriName(name, 0);
  }

  WktNode Datum() const {
    const std::string name = EsriName(t.datumName, m_IsEsri || t.datumCode == 6326 ? t.datumCode : 0);
    WktNode ellipsoid =
        WktNode::Of("SPHEROID").With(m_IsEsri ? EsriName(t.ellipsoidName, 0) : t.ellipsoidName);
    ellipsoid = std::move(ellipsoid).With(t.a).With(InverseFlattening(t.f));
    WktNode node = WktNode::Of("DATUM").With(m_IsEsri ? "D_" + name : name);
    if (m_IsEsri) return std::move(node).With(ellipsoid);
    if (t.ellipsoidCode > 0) ellipsoid.Add(Authority(t.ellipsoidCode));
    node.Add(ellipsoid);
    if (t.hasShift) {
      WktNode shift = WktNode::Of("TOWGS84");
      for (const double value : t.shift) shift = std::move(shift).With(value);
      node.Add(shift);
    }
    if (t.datumCode > 0) node.Add(Authority(t.datumCode));
    return node;
  }

  const TextSystem& t;
  bool m_IsEsri;
};

// ---- WKT2 ------------------------------------------------------------------------------------------------

WktNode DegreeUnit() {
  return WktNode::Of("ANGLEUNIT").With(std::string("degree")).With(Tidied(ToRadians(1.0)));
}
WktNode MetreUnit() { return WktNode::Of("LENGTHUNIT").With(std::string("metre")).With(1.0); }

class Wkt2 {
 public:
  explicit Wkt2(const TextSystem& text) : t(text) {}

  WktNode System() const {
    WktNode system = t.isGeographic ? Geographic() : Projected();
    if (!t.hasShift) return system;
    WktNode bound = WktNode::Of("BOUNDCRS");
    bound.Add(WktNode::Of("SOURCECRS").With(std::move(system)));
    bound.Add(WktNode::Of("TARGETCRS").With(Wgs84()));
    bound.Add(Transformation());
    return bound;
  }

 private:
  static void AddId(WktNode& node, int code) {
    if (code > 0) node.Add(Id(code));
  }

  static WktNode Datum(const std::string& name, int code, const std::string& ellipsoid, double a, double f) {
    WktNode node = WktNode::Of("DATUM").With(name);
    node.Add(WktNode::Of("ELLIPSOID").With(ellipsoid).With(a).With(InverseFlattening(f)).With(MetreUnit()));
    AddId(node, code);
    return node;
  }
  WktNode Prime() const {
    return WktNode::Of("PRIMEM").With(t.meridianName).With(t.meridian).With(DegreeUnit());
  }

  static void AddAngleAxes(WktNode& node, const WktNode& unit) {
    node.Add(WktNode::Of("CS").WithWord("ellipsoidal").With(2.0));
    node.Add(WktNode::Of("AXIS")
                 .With(std::string("geodetic longitude (Lon)"))
                 .WithWord("east")
                 .With(Order(1))
                 .With(unit));
    node.Add(WktNode::Of("AXIS")
                 .With(std::string("geodetic latitude (Lat)"))
                 .WithWord("north")
                 .With(Order(2))
                 .With(unit));
  }
  static WktNode Order(int order) { return WktNode::Of("ORDER").With(static_cast<double>(order)); }

  WktNode Geographic() const {
    WktNode node = WktNode::Of("GEOGCRS").With(t.name);
    node.Add(Datum(t.datumName, t.datumCode, t.ellipsoidName, t.a, t.f));
    node.Add(Prime());
    AddAngleAxes(node, WktNode::Of("ANGLEUNIT").With(t.angle.name).With(Tidied(ToRadians(t.angle.size))));
    AddId(node, t.code);
    return node;
  }

  static WktNode Wgs84() {
    WktNode node = WktNode::Of("GEOGCRS").With(std::string("WGS 84"));
    node.Add(Datum("World Geodetic System 1984", 6326, "WGS 84", 6378137.0, 1.0 / 298.257223563));
    node.Add(WktNode::Of("PRIMEM").With(std::string("Greenwich")).With(0.0).With(DegreeUnit()));
    node.Add(WktNode::Of("CS").WithWord("ellipsoidal").With(2.0));
    node.Add(WktNode::Of("AXIS")
                 .With(std::string("latitude"))
                 .WithWord("north")
                 .With(Order(1))
                 .With(DegreeUnit()));
    node.Add(WktNode::Of("AXIS")
                 .With(std::string("longitude"))
                 .WithWord("east")
                 .With(Order(2))
                 .With(DegreeUnit()));
    node.Add(Id(4326));
    return node;
  }

  WktNode Transformation() const {
    bool isTranslation = true;
    for (int i = 3; i < 7; ++i) isTranslation = isTranslation && t.shift[i] == 0.0;
    WktNode node = WktNode::Of("ABRIDGEDTRANSFORMATION").With(t.datumName + " to WGS 84");
    node.Add(WktNode::Of("METHOD")
                 .With(std::string(isTranslation ? "Geocentric translations (geog2D domain)"
                                                 : "Position Vector transformation (geog2D domain)"))
                 .With(Id(isTranslation ? 9603 : 9606)));
    static const char* const kNames[] = {"X-axis translation", "Y-axis translation", "Z-axis translation",
                                         "X-axis rotation",    "Y-axis rotation",    "Z-axis rotation",
                                         "Scale difference"};
    for (int i = 0; i < (isTranslation ? 3 : 7); ++i) {
      const double value = i == 6 ? Tidied(1.0 + t.shift[i] * 1e-6) : t.shift[i];
      node.Add(WktNode::Of("PARAMETER").With(std::string(kNames[i])).With(value).With(Id(8605 + i)));
    }
    return node;
  }

  WktNode Projected() const {
    WktNode base = WktNode::Of("BASEGEOGCRS").With(t.baseName);
    base.Add(Datum(t.datumName, t.datumCode, t.ellipsoidName, t.a, t.f));
    base.Add(Prime());
    AddId(base, t.baseCode);
    WktNode node = WktNode::Of("PROJCRS").With(t.name);
    node.Add(std::move(base));
    node.Add(Conversion());
    node.Add(WktNode::Of("CS").WithWord("Cartesian").With(2.0));
    AddAxes(node);
    AddId(node, t.code);
    return node;
  }

  WktNode LengthUnitNode() const {
    return WktNode::Of("LENGTHUNIT").With(t.length.name).With(Tidied(t.length.size));
  }

  WktNode Conversion() const {
    const std::string name = t.conversionName.empty() ? t.name : t.conversionName;
    WktNode node = WktNode::Of("CONVERSION").With(name);
    WktNode method = WktNode::Of("METHOD").With(std::string(t.method->wkt2));
    AddId(method, t.method->epsg);
    node.Add(std::move(method));
    for (const ParameterRow& row : *t.method) {
      if (!row.wkt2) continue;
      WktNode parameter = WktNode::Of("PARAMETER").With(std::string(row.wkt2)).With(ValueIn(t, row.par));
      parameter.Add(IsLength(row.par)  ? LengthUnitNode()
                    : IsRatio(row.par) ? WktNode::Of("SCALEUNIT").With(std::string("unity")).With(1.0)
                                       : DegreeUnit());
      AddId(parameter, row.epsg);
      node.Add(std::move(parameter));
    }
    return node;
  }

  /// Around a pole both axes point along meridians.
  void AddAxes(WktNode& node) const {
    const Form form = t.method->form;
    const double lat0 =
        form == Form::PolarB ? std::copysign(90.0, t.values.At(Par::Lat1)) : t.values.Or(Par::Lat0, 0.0);
    const bool isPolar = std::fabs(lat0) == 90.0 && (form == Form::PolarA || form == Form::PolarB);
    WktNode east = WktNode::Of("AXIS").With(std::string("easting (E)"));
    WktNode north = WktNode::Of("AXIS").With(std::string("northing (N)"));
    if (isPolar) {
      const double lon0 = t.values.Or(Par::Lon0, 0.0);
      const char* const away = lat0 > 0.0 ? "south" : "north";
      const auto meridian = [](double longitude) {
        return WktNode::Of("MERIDIAN").With(FoldMeridian(longitude, 0.0)).With(DegreeUnit());
      };
      east = std::move(east).WithWord(away).With(meridian(lon0 + 90.0));
      north = std::move(north).WithWord(away).With(meridian(lat0 > 0.0 ? lon0 + 180.0 : lon0));
    } else {
      east = std::move(east).WithWord("east");
      north = std::move(north).WithWord("north");
    }
    node.Add(std::move(east).With(Order(1)).With(LengthUnitNode()));
    node.Add(std::move(north).With(Order(2)).With(LengthUnitNode()));
  }

  const TextSystem& t;
};

}  // namespace

std::string WriteWkt(const TextSystem& text, TextDialect dialect, bool indented) {
  const bool isEsri = dialect == TextDialectWkt1Esri;
  const WktNode node = dialect == TextDialectWkt2 ? Wkt2(text).System() : Wkt1(text, isEsri).System();
  return WriteWktTree(node, indented, isEsri);
}

}  // namespace orv::internal
