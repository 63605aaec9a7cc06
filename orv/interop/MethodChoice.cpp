// What a map of the library is as a method of a text, form by form; MethodForms.cpp goes the other way.
#include <cmath>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"
#include "orv/interop/internal/Conformal.h"
#include "orv/interop/internal/TextSystem.h"
#include "orv/projection/ProjectionDef.h"

ORV_UNIT("Interchange")

namespace orv::internal {

namespace {

/// A value that came out of a computation as the round one that it stands for, when there is one of `digits`
/// significant digits within `tolerance` (relative).
double Snapped(double value, int digits, double tolerance) {
  if (value == 0.0) return value;
  const double unit = std::pow(10.0, digits - 1 - std::floor(std::log10(std::fabs(value))));
  const double round = std::round(value * unit) / unit;
  return std::fabs(round - value) <= tolerance * std::fabs(value) ? round : value;
}
double SnappedRatio(double value) { return Snapped(value, 10, 2e-13); }

/// The same of an angle, degrees: to 1e-5 seconds within 2e-8 seconds.
double SnappedAngle(double degrees) {
  const double seconds = degrees * 3600.0, round = std::round(seconds * 1e5) / 1e5;
  return std::fabs(round - seconds) <= 2e-8 ? round / 3600.0 : degrees;
}
bool IsRoundAngle(double degrees) {
  return SnappedAngle(degrees) != degrees || std::fmod(degrees * 3600.0, 1.0) == 0.0;
}

class ToText {
 public:
  ToText(const ProjectionParameters& parameters, TextDialect dialect, bool pseudo, TextSystem& text)
      : p(parameters), m_Dialect(dialect), m_IsPseudo(pseudo), t(text), v(text.values) {}

  void Describe() {
    // The unit is the nearest known one; what is left is a factor of the map.  Forms that have no place for it take a
    // unit of the very size.
    const double exact = 1.0 / p.Scale;
    if (!(exact >= 1e-12) || !(exact <= 1e12)) Refuse("its Scale is that of no unit of 1e-12 to 1e12 metres");
    t.length = LengthUnit(exact, 1e-7);
    if (t.length.code == 0 && p.method == ProjectionMethodLambert) t.length = LengthUnit(exact, 0.02);
    m_Factor = p.Scale * t.length.size;
    if (std::fabs(m_Factor - 1.0) <= 1e-14) m_Factor = 1.0;
    if (m_Factor != 1.0 && !TakesFactor()) {
      t.length = {"unnamed", 0, exact};
      m_Factor = 1.0;
    }
    v[Par::X] = p.xOrg * m_Factor;
    v[Par::Y] = p.yOrg * m_Factor;
    v[Par::Lon0] = p.Lon0;
    v[Par::Lat0] = p.Lat0;
    Set();
    CheckFigure();
  }

 private:
  bool TakesFactor() const {
    return p.method == ProjectionMethodTransverseMercator || p.method == ProjectionMethodUTM ||
           p.method == ProjectionMethodStereographic || p.method == ProjectionMethodHotine ||
           p.method == ProjectionMethodLambert || (p.method == ProjectionMethodMercator && !m_IsPseudo);
  }

  void Refuse(const char* reason) const {
    ORV_FAIL(ErrBadParameter, "The projection '%s' cannot be written as %s: %s.",
             ProjectionDef::MethodToName(p.method), ORVTextDialectName(m_Dialect), reason);
  }

  void Take(Form form) { t.method = &RowOfForm(form); }

  void Set() {
    switch (p.method) {
      case ProjectionMethodTransverseMercator:
      case ProjectionMethodUTM:
        SetTransverseMercator();
        return;
      case ProjectionMethodLambert:
        SetLambert();
        return;
      case ProjectionMethodMercator:
        SetMercator();
        return;
      case ProjectionMethodStereographic:
        SetStereographic();
        return;
      case ProjectionMethodHotine:
        SetHotine();
        return;
      case ProjectionMethodAlbers:
        SetParallels(Form::Albers);
        return;
      case ProjectionMethodEquidistantConic:
        SetParallels(Form::EquidistantConic);
        return;
      case ProjectionMethodCassini:
        v[Par::K] = 1.0;
        Take(Form::Cassini);
        return;
      case ProjectionMethodPolyconic:
        Take(Form::Polyconic);
        return;
      case ProjectionMethodBonne:
        v[Par::Lat0] = NAN;
        v[Par::Lat1] = p.Lat1;
        Take(Form::Bonne);
        return;
      case ProjectionMethodEquidistantCylindrical:
        v[Par::Lat0] = 0.0;
        v[Par::Lat1] = p.Lat1;
        Take(Form::EquidistantCylindrical);
        return;
      case ProjectionMethodLambertAzimuthal:
        v[Par::Lat0] = p.Lat1;
        Take(Form::LambertAzimuthal);
        return;
      case ProjectionMethodAzimuthalEquidistant:
        v[Par::Lat0] = p.Lat1;
        Take(Form::AzimuthalEquidistant);
        return;
      case ProjectionMethodGnomonic:
        if (p.Lat1 < -89.999) Refuse("the library's map of the south pole is mirrored");
        v[Par::Lat0] = p.Lat1;
        Take(Form::Gnomonic);
        return;
      case ProjectionMethodOrthographic:
        Take(Form::Orthographic);
        return;
      case ProjectionMethodSinusoidal:
        Take(Form::Sinusoidal);
        return;
      case ProjectionMethodMiller:
        v[Par::Lat0] = 0.0;
        Take(Form::Miller);
        return;
      case ProjectionMethodMollweide:
        Take(Form::Mollweide);
        return;
      case ProjectionMethodEckert4:
        Take(Form::Eckert4);
        return;
      case ProjectionMethodEckert6:
        Take(Form::Eckert6);
        return;
      case ProjectionMethodVanDerGrinten:
        Take(Form::VanDerGrinten);
        return;
      case ProjectionMethodRobinson:
      case ProjectionMethodRobinsonSterling:
        Refuse("its nodes and interpolation are not those of other software, up to 8.6 km apart");
        return;
      case ProjectionMethodObliqueMercator:
        Refuse("texts have the method on the ellipsoid only, with another origin");
        return;
      default:
        Refuse("texts have no such method");
    }
  }

  void CheckFigure() {
    const bool isSphere = p.ellipsoid.GetFlattening() == 0.0;
    if (t.method->figure == Figure::Sphere && !isSphere) {
      if (m_Dialect != TextDialectProj) {
        Refuse("the library has the method on the sphere of the major radius, the text would mean another");
      }
      t.isPlainSphere = true;
    }
    const bool isNamed = m_Dialect == TextDialectWkt2       ? t.method->wkt2
                         : m_Dialect == TextDialectWkt1Gdal ? t.method->gdal
                         : m_Dialect == TextDialectWkt1Esri ? t.method->esri
                                                            : t.method->proj;
    if (!isNamed && t.method->form != Form::PseudoMercator) Refuse("the dialect has no name for it");
  }

  void SetTransverseMercator() {
    Take(Form::TransverseMercator);
    v[Par::K] = SnappedRatio(p.K0 * m_Factor);
    if (p.method != ProjectionMethodUTM) return;
    v[Par::X] = 500000.0 * m_Factor;
    v[Par::Y] = (p.bSouth ? 10000000.0 : 0.0) * m_Factor;
    // "+proj=utm" is one of the ellipsoid: PROJ refuses the sphere there.
    if (m_Dialect == TextDialectProj && p.ellipsoid.GetFlattening() == 0.0) return;
    const double zone = (p.Lon0 + 183.0) / 6.0;
    if (zone != std::floor(zone) || zone < 1.0 || zone > 60.0) return;
    if (v.At(Par::K) != 0.9996 || p.Lat0 != 0.0 || m_Factor != 1.0) return;
    t.zone = static_cast<int>(zone);
    t.isSouth = p.bSouth;
    t.conversionName = Format("UTM zone %d%c", t.zone, p.bSouth ? 'S' : 'N');
  }

  void SetLambert() {
    const double f = p.ellipsoid.GetFlattening();
    if (std::fabs(p.Lat1) > 89.9 || std::fabs(p.Lat2) > 89.9 || std::fabs(p.Lat1 + p.Lat2) < 0.001) {
      if (m_Factor != 1.0) Refuse("its Scale is none of a unit, and its cone is a cylinder or a plane");
      SetParallels(Form::Lambert2);
      return;
    }
    const ConformalCone cone = ConformalCone::OfParallels(p.Lat1, p.Lat2, f);
    const double phi0 = ToDegrees(cone.Phi0()), k = cone.K0() * m_Factor;
    if (SameLatitude(phi0, p.Lat0)) {
      // One standard parallel that had been made two, or two whose middle is the origin: the same map.
      SetLambert1(SnappedAngle(p.Lat0), k);
      return;
    }
    if (m_Factor == 1.0) {
      SetParallels(Form::Lambert2);
    } else if (k < 1.0 - 5e-6) {
      const auto [south, north] = ConformalCone(cone.Phi0(), k, f).Parallels();
      v[Par::Lat1] = SnappedAngle(p.Lat1 < p.Lat2 ? south : north);
      v[Par::Lat2] = SnappedAngle(p.Lat1 < p.Lat2 ? north : south);
      Take(Form::Lambert2);
    } else {
      const double lat0 = SnappedAngle(phi0), a = p.ellipsoid.GetMajorRadius() * m_Factor;
      v[Par::Y] += a * (cone.Rho(p.Lat0) - cone.Rho(lat0));
      SetLambert1(lat0, k);
    }
  }
  void SetLambert1(double lat0, double k) {
    v[Par::Lat0] = v[Par::Lat1] = lat0;
    v[Par::K] = SnappedRatio(k);
    Take(Form::Lambert1);
  }

  void SetParallels(Form form) {
    v[Par::Lat1] = p.Lat1;
    v[Par::Lat2] = p.Lat2;
    Take(form);
  }

  void SetMercator() {
    v[Par::Lat0] = 0.0;
    const double f = p.ellipsoid.GetFlattening();
    if (m_IsPseudo) {
      if (p.Lat0 != 0.0)
        Refuse("the method of the sphere on ellipsoidal coordinates has no latitude of true scale");
      v[Par::Lat1] = v[Par::Zero] = 0.0;
      Take(Form::PseudoMercator);
    } else if (p.Lat0 == 0.0 && m_Factor == 1.0 && m_Dialect != TextDialectWkt1Esri) {
      v[Par::K] = 1.0;
      Take(Form::MercatorA);
    } else if (m_Factor == 1.0 && IsRoundAngle(p.Lat0)) {
      v[Par::Lat1] = p.Lat0;
      Take(Form::MercatorB);
    } else {
      v[Par::K] = SnappedRatio(MercatorScale(p.Lat0, f) * m_Factor);
      Take(Form::MercatorA);
    }
  }

  void SetStereographic() {
    const double k = SnappedRatio(p.K0 * m_Factor), f = p.ellipsoid.GetFlattening();
    v[Par::K] = k;
    if (std::fabs(p.Lat0) != 90.0) {
      Take(Form::Stereographic);
      return;
    }
    // A scale factor that stands for a round standard parallel is written as that.
    const double parallel = SnappedAngle(PolarParallel(k, f));
    const bool isParallel = parallel < 90.0 && parallel > 1.0 && IsRoundAngle(parallel) &&
                            std::fabs(PolarScale(parallel, f) - k) <= 1e-14;
    if (isParallel) {
      v[Par::Lat1] = std::copysign(parallel, p.Lat0);
      if (m_Dialect == TextDialectWkt1Gdal) {
        v[Par::Lat0] = v.At(Par::Lat1);
        v[Par::K] = 1.0;
      }
    }
    if (m_Dialect == TextDialectWkt1Gdal) {
      Take(Form::PolarOgc);
    } else {
      Take(isParallel ? Form::PolarB : Form::PolarA);
    }
    if (isParallel && t.method->form == Form::PolarB) v[Par::K] = NAN;
  }

  void SetHotine() {
    v[Par::K] = SnappedRatio(p.K0 * m_Factor);
    t.isUnrotated = !p.bRotate;
    t.isFromNatural = !p.bUOffset;
    if (!p.bRotate && m_Dialect != TextDialectProj)
      Refuse("its axes are not rotated, which the dialect cannot say");
    if (!p.bRotate && p.bUOffset)
      Refuse("its axes are not rotated and u is counted from the centre, which the string cannot say");
    if (p.bUseAlpha) {
      const double alpha = p.bUOffset ? std::remainder(p.Alpha, 360.0) : p.Alpha;
      if (p.bUOffset && std::fabs(alpha) > 90.0) Refuse(kAzimuthBeyond90);
      const double azimuth =
          std::fabs(std::fabs(alpha) - kAzimuthBeside90) < 1e-9 ? std::copysign(90.0, alpha) : alpha;
      v[Par::Lon0] = p.Lon1;
      v[Par::Azimuth] = v[Par::Gamma] = azimuth;
      Take(p.bUOffset ? Form::HotineB : Form::HotineA);
      return;
    }
    if (m_Dialect != TextDialectProj)
      Refuse("its line is given by two points, and readers differ on where its origin is");
    if (p.bRotate && !p.bUOffset)
      Refuse("its line is given by two points and u is counted from the natural origin, which PROJ drops");
    v[Par::Lon0] = NAN;
    v[Par::Lat1] = p.Lat1;
    v[Par::Lon1] = p.Lon1;
    v[Par::Lat2] = p.Lat2;
    v[Par::Lon2] = p.Lon2;
    Take(Form::HotinePoints);
  }

  const ProjectionParameters& p;
  TextDialect m_Dialect;
  bool m_IsPseudo;
  TextSystem& t;
  Values& v;
  double m_Factor = 1.0;
};

}  // namespace

void DescribeProjection(const ProjectionParameters& p, TextDialect dialect, bool pseudo, TextSystem& text) {
  ToText(p, dialect, pseudo, text).Describe();
}

}  // namespace orv::internal
