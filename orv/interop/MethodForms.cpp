// What a method's values mean for the library, form by form; MethodChoice.cpp goes the other way.
//
// The library's map is (engine on the ellipsoid in metres + origin) Scale.  A text's map is the same with Scale as the
// reciprocal of its unit; what else scales a text's map goes into K0, into the parallels, or into Scale, with the origin
// divided by it.
#include <cmath>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Text.h"
#include "orv/interop/internal/Conformal.h"
#include "orv/interop/internal/TextSystem.h"
#include "orv/projection/ProjectionDef.h"

ORV_UNIT("Interchange")

namespace orv::internal {

namespace {

/// The same map drawn by an engine whose scale is smaller by `factor`.
void Rescale(ProjectionParameters& p, double factor) {
  if (factor == 1.0) return;
  p.Scale *= factor;
  p.xOrg /= factor;
  p.yOrg /= factor;
}

double Folded(double longitude) {
  while (longitude > 180.0) longitude -= 360.0;
  while (longitude <= -180.0) longitude += 360.0;
  return longitude;
}

}  // namespace

double FoldMeridian(double longitude, double meridian) {
  if (std::fabs(longitude) > 1e6) return longitude;  // the definition's check refuses it
  return Folded(meridian == 0.0 ? longitude : std::round((longitude + meridian) * 1e13) / 1e13);
}

namespace {

class FromText {
 public:
  explicit FromText(const TextSystem& text) : t(text), v(text.values) {
    p.method = t.method->method;
    p.ellipsoid = EllipsoidDef(t.a, t.f, nullptr, nullptr, nullptr, 0);
    p.Scale = 1.0 / t.length.size;
    p.xOrg = v.Or(Par::X, 0.0);
    p.yOrg = v.Or(Par::Y, 0.0);
    p.Lon0 = Longitude(Par::Lon0);
    p.Lat0 = v.Or(Par::Lat0, 0.0);
  }

  ProjectionParameters Parameters() {
    if (v.Has(Par::Zero) && v.At(Par::Zero) != 0.0) {
      Refuse("the only kind of auxiliary sphere is the one of the major radius (type 0)");
    }
    const double k = v.Or(Par::K, 1.0);
    if (!(k > 0.0) || k > 1e6) Refuse("the scale factor is not above 0");
    CheckFigure();
    for (const ParameterRow& row : *t.method) {
      if (!t.hasDefaults && !row.isOptional && !IsLength(row.par)) Needed(row.par);
    }
    Set(k);
    ProjectionDef definition;
    definition.SetParameters(&p);
    std::string why;
    if (definition.CheckParameters(why) != ProjectionParameterIDNone) Refuse(why.c_str());
    return *definition.GetParameters();
  }

 private:
  void Refuse(const char* reason) const {
    ORV_FAIL(ErrBadParameter, "Line %d, column %d: the projection '%s' cannot be expressed: %s.",
             t.methodPlace.line, t.methodPlace.column, MethodName(), Unstopped(reason).c_str());
  }
  const char* MethodName() const {
    return t.method->wkt2 ? t.method->wkt2 : t.method->proj ? t.method->proj : t.method->gdal;
  }
  static std::string Unstopped(std::string text) {
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text;
  }

  double Longitude(Par par) const { return FoldMeridian(v.Or(par, 0.0), t.meridian); }

  /// The value of a parameter that must be given.
  double Needed(Par par) const {
    if (!v.Has(par)) {
      ORV_FAIL(ErrBadParameter, "Line %d, column %d: expected %s of the projection '%s'.", t.methodPlace.line,
               t.methodPlace.column, ParName(par), MethodName());
    }
    return v.At(par);
  }

  void CheckFigure() const {
    if (t.method->figure == Figure::Sphere && t.f != 0.0 && !t.isPlainSphere) {
      Refuse("the library has the method on the sphere of the major radius only, the text means another");
    }
  }

  void Set(double k) {
    switch (t.method->form) {
      case Form::TransverseMercator:
      case Form::Utm:
        p.K0 = k;
        SetUtm();
        return;
      case Form::Lambert1:
        if (v.Has(Par::Lat1) && v.Has(Par::Lat0) && !SameLatitude(v.At(Par::Lat1), p.Lat0)) {
          SetLambertEqual(v.At(Par::Lat1), k);
        } else {
          SetLambert1(v.Has(Par::Lat0) ? p.Lat0 : v.Or(Par::Lat1, 0.0), k);
        }
        return;
      case Form::Lambert2:
      case Form::LambertScaled:
      case Form::LambertBelgium:
        SetLambert2(k);
        return;
      case Form::MercatorA:
        SetMercator(k);
        return;
      case Form::MercatorB:
        // Deliberate: the name "Mercator_2SP" stands for one parallel, on which the scale is 1.
        if (p.Lat0 != 0.0) Refuse("the latitude of origin is not the Equator");
        p.Lat0 = v.Or(Par::Lat1, 0.0);
        Rescale(p, k);
        return;
      case Form::PseudoMercator:
        if (p.Lat0 != 0.0 || v.Or(Par::Lat1, 0.0) != 0.0) Refuse("the latitude of origin is not the Equator");
        p.ellipsoid.SetFlattening(0.0);
        Rescale(p, k);
        return;
      case Form::PolarA:
        SetPolar(p.Lat0, k);
        return;
      case Form::PolarOgc:
        if (std::fabs(p.Lat0) == 90.0) {
          SetPolar(p.Lat0, Needed(Par::K));
        } else {
          CheckParallel(p.Lat0);
          if (k != 1.0) Refuse("it has both a standard parallel and a scale factor");
          SetPolar(std::copysign(90.0, p.Lat0), PolarScale(p.Lat0, t.f));
        }
        return;
      case Form::PolarB:
      case Form::PolarC:
        SetPolarParallel(k);
        return;
      case Form::Stereographic:
        p.K0 = k;
        return;
      case Form::Albers:
      case Form::EquidistantConic:
        p.Lat1 = Needed(Par::Lat1);
        p.Lat2 = Needed(Par::Lat2);
        Rescale(p, k);
        return;
      case Form::HotineA:
      case Form::HotineB:
      case Form::SwissOblique:
        SetHotine(k);
        return;
      case Form::HotinePoints:
        p.bRotate = !t.isUnrotated;
        p.bUOffset = !t.isFromNatural;
        p.K0 = k;
        p.Lon0 = 0.0;
        p.Lat1 = Needed(Par::Lat1);
        p.Lat2 = Needed(Par::Lat2);
        Needed(Par::Lon1);
        Needed(Par::Lon2);
        p.Lon1 = Longitude(Par::Lon1);
        p.Lon2 = Longitude(Par::Lon2);
        return;
      case Form::EquidistantCylindrical:
        if (p.Lat0 != 0.0) Refuse("the latitude of origin is not the Equator");
        p.Lat1 = v.Or(Par::Lat1, 0.0);
        UseSphere();
        Rescale(p, k);
        return;
      case Form::Bonne:
        p.Lat0 = 0.0;
        p.Lat1 = Needed(Par::Lat1);
        Rescale(p, k);
        return;
      case Form::Gnomonic:
        // Deliberate: the library's south polar form is mirrored.
        if (p.Lat0 < -89.999) Refuse("the library's map of the south pole is mirrored");
        [[fallthrough]];
      case Form::AzimuthalEquidistant:
      case Form::LambertAzimuthal:
        p.Lat1 = p.Lat0;
        p.Lat0 = 0.0;
        UseSphere();
        Rescale(p, k);
        return;
      case Form::Orthographic:
        UseSphere();
        Rescale(p, k);
        return;
      case Form::Miller:
        if (p.Lat0 != 0.0) Refuse("the latitude of origin is not the Equator");
        [[fallthrough]];
      case Form::Cassini:
      case Form::Polyconic:
      case Form::Sinusoidal:
      case Form::Mollweide:
      case Form::Eckert4:
      case Form::Eckert6:
      case Form::VanDerGrinten:
        Rescale(p, k);
        return;
    }
  }

  void UseSphere() {
    if (t.isPlainSphere) p.ellipsoid.SetFlattening(0.0);
  }

  /// A zone of UTM is one when the text calls it so; another map of the same numbers is a Transverse Mercator.
  void SetUtm() {
    const bool isZone = std::fabs(std::remainder(p.Lon0 + 183.0, 6.0)) < 1e-11 && p.K0 == 0.9996 &&
                        p.Lat0 == 0.0 && std::fabs(p.xOrg - 500000.0) < 1e-8 &&
                        (p.yOrg == 0.0 || std::fabs(p.yOrg - 10000000.0) < 1e-7);
    p.method = ProjectionMethodTransverseMercator;
    if (!isZone || !(t.zone != 0 || HoldsUtm(t.conversionName) || HoldsUtm(t.name))) return;
    p.method = ProjectionMethodUTM;
    p.bSouth = p.yOrg != 0.0;
  }
  static bool HoldsUtm(const std::string& name) {
    for (size_t at = 0; at + 3 <= name.size(); ++at) {
      if (EqualIgnoringCase(name.substr(at, 3), "UTM")) return true;
    }
    return false;
  }

  void SetLambert1(double lat0, double k) {
    if (std::fabs(lat0) < 0.001 || std::fabs(lat0) > 89.9) Refuse("its cone is a cylinder or a plane");
    if (k < 0.9) Refuse("the scale factor is below 0.9");
    const TwoParallels two = LambertParallels(lat0, k, t.f);
    p.Lat1 = two.lat1;
    p.Lat2 = two.lat2;
    Rescale(p, two.scale);
  }
  /// Two equal parallels, elsewhere than at the latitude of origin.
  void SetLambertEqual(double parallel, double k) {
    if (std::fabs(parallel) < 0.001 || std::fabs(parallel) > 89.9)
      Refuse("its cone is a cylinder or a plane");
    const TwoParallels two = LambertParallels(parallel, 1.0, t.f);
    p.Lat1 = two.lat1;
    p.Lat2 = two.lat2;
    Rescale(p, two.scale * k);
  }
  void SetLambert2(double k) {
    // ESRI has one name for the forms of one and of two parallels.
    const double lat1 = Needed(Par::Lat1), lat2 = v.Or(Par::Lat2, lat1);
    if (lat1 == lat2) {
      if (SameLatitude(lat1, p.Lat0)) {
        SetLambert1(p.Lat0, k);
      } else {
        SetLambertEqual(lat1, k);
      }
      return;
    }
    if (std::fabs(lat1 + lat2) < 0.001) Refuse("its cone is a cylinder");
    p.Lat1 = lat1;
    p.Lat2 = lat2;
    Rescale(p, k);
    if (t.method->form != Form::LambertBelgium) return;
    if (std::fabs(lat1) > 89.0 || std::fabs(lat2) > 89.0) Refuse("a parallel is next to a pole");
    p.Lon0 = Folded(BelgianLongitude(p.Lon0, lat1, lat2, t.f));
  }

  void SetMercator(double k) {
    if (p.Lat0 != 0.0) Refuse("the latitude of origin is not the Equator");
    if (k > 1.0) {
      Rescale(p, k);
    } else if (k < 1.0) {
      p.Lat0 = MercatorLatitude(k, t.f);
    }
  }

  void SetPolar(double pole, double k) {
    if (std::fabs(pole) != 90.0) Refuse("its origin is not a pole");
    p.Lat0 = pole;
    p.K0 = k;
  }
  void CheckParallel(double parallel) const {
    if (std::fabs(parallel) < 0.001 || std::fabs(parallel) > 90.0)
      Refuse("the standard parallel is none of a polar map");
  }
  void SetPolarParallel(double k) {
    const double parallel = Needed(Par::Lat1);
    if (v.Has(Par::Lat0) && std::fabs(p.Lat0) == 90.0) {
      if (p.Lat0 * parallel < 0.0) Refuse("the pole and the standard parallel lie in different hemispheres");
    } else {
      if (v.Has(Par::Lat0)) Refuse("its origin is not a pole");
      p.Lat0 = parallel < 0.0 ? -90.0 : 90.0;
    }
    CheckParallel(parallel);
    if (t.method->form == Form::PolarC) {
      const double rho = t.a * ParallelRadius(parallel, t.f);  // [EPSG9]: the origin lies on the parallel
      p.yOrg += parallel < 0.0 ? -rho : rho;
    }
    p.K0 = PolarScale(parallel, t.f) * k;
  }

  void SetHotine(double k) {
    const bool isSwiss = t.method->form == Form::SwissOblique;
    const double azimuth = isSwiss ? 90.0 : Needed(Par::Azimuth);
    if (v.Has(Par::Gamma) && std::fabs(std::remainder(v.At(Par::Gamma) - azimuth, 360.0)) > 1e-9) {
      Refuse("the library rotates by the azimuth, and the rectified grid angle differs");
    }
    p.Lon1 = p.Lon0;
    p.Lon0 = 0.0;
    p.K0 = k;
    p.bUseAlpha = true;
    p.bRotate = !t.isUnrotated;
    p.bUOffset = t.method->form != Form::HotineA;
    const double folded = std::remainder(azimuth, 360.0);
    if (std::fabs(std::fabs(folded) - 90.0) < 1e-12) {
      p.Alpha = std::copysign(kAzimuthBeside90, folded);
    } else if (!p.bUOffset) {
      p.Alpha = azimuth;
    } else {
      if (std::fabs(folded) > 90.0) Refuse(kAzimuthBeyond90);
      p.Alpha = folded;
    }
  }

  const TextSystem& t;
  const Values& v;
  ProjectionParameters p;
};

}  // namespace

ProjectionParameters ParametersOf(const TextSystem& text) { return FromText(text).Parameters(); }

}  // namespace orv::internal
