// A host's program: public headers as C++17, exported names only.
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "orv/ORVCore.h"

int UsePublicInterface();  // Interface.cpp

namespace {

bool Near(double a, double b, double tolerance) { return std::fabs(a - b) <= tolerance; }

orv::DatumDef MakeWgs84() {
  orv::DatumParameters p;
  p.method = orv::DatumMethodNone;
  p.target = orv::DatumTargetWGS84;
  p.ellipsoid = orv::EllipsoidDef(6378137.0, 1.0 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030);
  orv::DatumDef datum(&p, 6326);
  datum.SetSpecial(orv::DatumTargetWGS84);
  return datum;
}

}  // namespace

int main() {
  if (UsePublicInterface() == 0) return 7;
  try {
    const orv::DatumDef datum = MakeWgs84();
    orv::ProjectionDef utm(orv::ProjectionMethodUTM);
    utm.SetParameter(orv::ProjectionParameterIDLon0, 15.0);
    utm.SetParameter(orv::ProjectionParameterIDLat0, 0.0);
    utm.SetParameter(orv::ProjectionParameterIDK0, 0.9996);
    utm.SetParameter(orv::ProjectionParameterIDEllipsoid, *datum.GetEllipsoid());
    orv::ProjectionDef geographic(orv::ProjectionMethodUnprojected);

    const orv::ORVDef from(&datum, &geographic, nullptr);
    const orv::ORVDef to(&datum, &utm, nullptr);
    orv::CSTransformer transformer(&from, &to, false, false);
    transformer.Initialize();
    std::vector<shr::Vec2d> points = {shr::Vec2d(15.0, 0.0), shr::Vec2d(15.0, 45.0)};
    transformer.Transform(points, points);
    // On the central meridian: the false easting, and 0.9996 of the meridian arc (4984944.378 m to 45 degrees
    // north).
    if (!Near(points[0].x, 500000.0, 1e-6) || !Near(points[0].y, 0.0, 1e-6)) return 1;
    if (!Near(points[1].x, 500000.0, 1e-6) || !Near(points[1].y, 0.9996 * 4984944.378, 2e-3)) return 2;

    std::string text;
    to.EncodeToText(text);
    std::unique_ptr<orv::CSDef> read(orv::CSDef::BuildFromEncodedText(text, nullptr));
    if (!read->Compare(to, false, nullptr)) return 3;
  } catch (const shr::Exception& e) {
    std::printf("%d %s(%d): %s\n", e.Code(), e.File(), e.Line(), e.Message());
    return 4;
  }
  try {
    orv::EllipsoidDef ellipsoid;
    ellipsoid.SetMajorRadius(-1.0);
    return 5;
  } catch (const shr::Exception& e) {
    if (e.Code() != orv::ErrBadParameter || orv::ORVGetErrorCode() != e.Code()) return 6;
  }
  std::puts("consumer: the installed package works");
  return 0;
}
