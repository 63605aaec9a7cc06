#include "bench/Peers.h"

#include <proj.h>

#include <memory>
#include <stdexcept>

#if defined(ORV_BENCH_GEOGRAPHICLIB)
#include <GeographicLib/AlbersEqualArea.hpp>
#include <GeographicLib/AzimuthalEquidistant.hpp>
#include <GeographicLib/CassiniSoldner.hpp>
#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/Gnomonic.hpp>
#include <GeographicLib/LambertConformalConic.hpp>
#include <GeographicLib/PolarStereographic.hpp>
#include <GeographicLib/TransverseMercator.hpp>
#endif

namespace orv::bench {

namespace {

class Operation {
 public:
  explicit Operation(const std::string& definition) : m_pContext(proj_context_create()) {
    proj_log_level(m_pContext, PJ_LOG_NONE);
    proj_context_set_enable_network(m_pContext, 0);
    m_pOperation = proj_create(m_pContext, definition.c_str());
    if (m_pOperation) return;
    proj_context_destroy(m_pContext);
    throw std::runtime_error("PROJ refuses " + definition);
  }
  ~Operation() {
    proj_destroy(m_pOperation);
    proj_context_destroy(m_pContext);
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  void Run(PJ_DIRECTION direction, shr::Vec2d* points, size_t count) const {
    proj_trans_generic(m_pOperation, direction, &points->x, sizeof(shr::Vec2d), count, &points->y,
                       sizeof(shr::Vec2d), count, nullptr, 0, 0, nullptr, 0, 0);
  }
  bool HasInverse() const { return proj_pj_info(m_pOperation).has_inverse != 0; }

 private:
  PJ_CONTEXT* m_pContext;
  PJ* m_pOperation;
};

}  // namespace

Side ProjSide(const std::string& definition, bool angularIn, bool angularOut) {
  Side side;
  side.who = "proj";
  side.inputUnit = angularIn ? kDegree : 1.0;
  side.outputUnit = angularOut ? kDegree : 1.0;
  side.make = [definition] {
    const auto operation = std::make_shared<const Operation>(definition);
    Both both;
    both.forward = [operation](shr::Vec2d* points, size_t count) { operation->Run(PJ_FWD, points, count); };
    if (operation->HasInverse()) {
      both.inverse = [operation](shr::Vec2d* points, size_t count) { operation->Run(PJ_INV, points, count); };
    }
    return both;
  };
  return side;
}

std::string ProjVersion() { return proj_info().version; }

#if defined(ORV_BENCH_GEOGRAPHICLIB)

namespace {

using namespace GeographicLib;

constexpr double kA = 6378137.0, kF = 1 / 298.257223563;

/// forward(lon, lat, x, y) and inverse(x, y, lon, lat) for each point.
template <class Forward, class Inverse>
std::vector<Side> EachPoint(Forward forward, Inverse inverse) {
  Side side;
  side.who = "geographiclib";
  side.takesBatches = false;
  side.make = [forward, inverse] {
    Both both;
    both.forward = [forward](shr::Vec2d* points, size_t count) {
      for (size_t i = 0; i < count; ++i) {
        const shr::Vec2d in = points[i];
        forward(in.x, in.y, points[i].x, points[i].y);
      }
    };
    both.inverse = [inverse](shr::Vec2d* points, size_t count) {
      for (size_t i = 0; i < count; ++i) {
        const shr::Vec2d in = points[i];
        inverse(in.x, in.y, points[i].x, points[i].y);
      }
    };
    return both;
  };
  return {side};
}

/// A projection that knows its central meridian only, with northings from (lon0, lat0).
template <class P>
std::vector<Side> AboutMeridian(const P& p, double lon0, double lat0) {
  double x0 = 0.0, y0 = 0.0;
  p.Forward(lon0, lat0, lon0, x0, y0);
  return EachPoint(
      [=](double lon, double lat, double& x, double& y) {
        p.Forward(lon0, lat, lon, x, y);
        y -= y0;
      },
      [=](double x, double y, double& lon, double& lat) { p.Reverse(lon0, x, y + y0, lat, lon); });
}

/// A projection about a centre.
template <class P>
std::vector<Side> AboutCentre(const P& p, double lon0, double lat0) {
  return EachPoint(
      [=](double lon, double lat, double& x, double& y) { p.Forward(lat0, lon0, lat, lon, x, y); },
      [=](double x, double y, double& lon, double& lat) { p.Reverse(lat0, lon0, x, y, lat, lon); });
}

}  // namespace

std::vector<Side> GeographicLibSides(const std::string& subject) {
  if (subject == "Mercator") {
    // The parallels +-30 make the cone a cylinder of true scale at 30 degrees.
    return AboutMeridian(LambertConformalConic(kA, kF, 30.0, -30.0, 1.0), 0.0, 0.0);
  }
  if (subject == "Transverse Mercator") return AboutMeridian(TransverseMercator(kA, kF, 0.9996), 9.0, 49.0);
  if (subject == "Lambert Conformal Conic") {
    return AboutMeridian(LambertConformalConic(kA, kF, 29.5, 45.5, 1.0), -96.0, 23.0);
  }
  if (subject == "Albers Equal Area Conic")
    return AboutMeridian(AlbersEqualArea(kA, kF, 29.5, 45.5, 1.0), -96.0, 23.0);
  if (subject == "Cassini") {
    const CassiniSoldner p(49.0, 9.0);
    return EachPoint([p](double lon, double lat, double& x, double& y) { p.Forward(lat, lon, x, y); },
                     [p](double x, double y, double& lon, double& lat) { p.Reverse(x, y, lat, lon); });
  }
  if (subject == "Stereographic at the pole") {
    const PolarStereographic p(kA, kF, 1.0);
    return EachPoint([p](double lon, double lat, double& x, double& y) { p.Forward(true, lat, lon, x, y); },
                     [p](double x, double y, double& lon, double& lat) { p.Reverse(true, x, y, lat, lon); });
  }
  // By geodesics, of a sphere as ours: the same maps, but by more general means.
  if (subject == "Gnomonic") return AboutCentre(Gnomonic(Geodesic(kA, 0.0)), 10.0, 52.0);
  if (subject == "Azimuthal Equidistant")
    return AboutCentre(AzimuthalEquidistant(Geodesic(kA, 0.0)), 10.0, 52.0);
  return {};
}

std::string GeographicLibVersion() { return GEOGRAPHICLIB_VERSION_STRING; }

#else

std::vector<Side> GeographicLibSides(const std::string&) { return {}; }
std::string GeographicLibVersion() { return ""; }

#endif

}  // namespace orv::bench
