// Peer.h: operations of PROJ, as an oracle that shares no code with this library, and how far two sets of
// points are apart.
#pragma once

#include <proj.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "orv/shared/Vec2d.h"

namespace orv::test {

inline constexpr uint64_t kPeerSeed = 19840229;

/// Random points, x from west to east, y from south to north, in whatever unit; the same ones in every
/// standard library.
inline std::vector<shr::Vec2d> RandomPoints(size_t count, double west, double east, double south,
                                            double north, uint64_t seed = kPeerSeed) {
  std::mt19937_64 random(seed);
  // Not std::uniform_real_distribution, whose numbers differ between libraries.
  const auto unit = [&random] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  std::vector<shr::Vec2d> points;
  for (size_t i = 0; i < count; ++i) {
    const double u = unit(), v = unit();
    points.emplace_back(west + (east - west) * u, south + (north - south) * v);
  }
  return points;
}

/// The distance of two points of the plane, in their unit.
inline double Distance(const shr::Vec2d& a, const shr::Vec2d& b) { return std::hypot(a.x - b.x, a.y - b.y); }

/// The arc between two close geographic points, degrees; longitudes of any turn.
inline double ArcBetween(const shr::Vec2d& a, const shr::Vec2d& b) {
  const double dLon = std::remainder(a.x - b.x, 360.0) * std::cos(b.y * 3.141592653589793 / 180.0);
  return std::hypot(a.y - b.y, dLon);
}

namespace internal {
template <class Measure>
double Largest(const std::vector<shr::Vec2d>& a, const std::vector<shr::Vec2d>& b, Measure measure) {
  if (a.size() != b.size()) throw std::invalid_argument("lists of different lengths");
  double largest = 0.0;
  for (size_t i = 0; i < a.size(); ++i) {
    const double apart = measure(a[i], b[i]);
    if (!(apart <= largest)) largest = apart;  // a NaN counts
  }
  return largest;
}
}  // namespace internal

/// The largest distance between points of the same place in two lists.
inline double LargestDistance(const std::vector<shr::Vec2d>& a, const std::vector<shr::Vec2d>& b) {
  return internal::Largest(a, b, Distance);
}
/// The same of geographic points: degrees of arc, and metres on the ground (of a sphere of 6371 km).
inline double LargestArc(const std::vector<shr::Vec2d>& a, const std::vector<shr::Vec2d>& b) {
  return internal::Largest(a, b, ArcBetween);
}
inline double LargestGroundDistance(const std::vector<shr::Vec2d>& a, const std::vector<shr::Vec2d>& b) {
  return LargestArc(a, b) * 3.141592653589793 / 180.0 * 6371000.0;
}

/// One operation of PROJ, "+proj=...".  Geographic points go in and come out in degrees, whatever PROJ itself
/// takes.
class Peer {
 public:
  /// Throws what PROJ says when it cannot make the operation.
  explicit Peer(const std::string& definition) : m_pContext(proj_context_create()) {
    proj_log_level(m_pContext, PJ_LOG_NONE);
    proj_context_set_enable_network(m_pContext, 0);
    m_pOperation = proj_create(m_pContext, definition.c_str());
    if (m_pOperation) return;
    const std::string why = proj_context_errno_string(m_pContext, proj_context_errno(m_pContext));
    proj_context_destroy(m_pContext);
    throw std::runtime_error("PROJ refuses " + definition + ": " + why);
  }
  /// PROJ's way between two coordinate systems by code, such as "EPSG:4326": x and y are easting and northing, or
  /// longitude and latitude in the system's own unit, whatever the order of the axes.
  Peer(const std::string& source, const std::string& dest) : m_pContext(proj_context_create()) {
    proj_log_level(m_pContext, PJ_LOG_NONE);
    proj_context_set_enable_network(m_pContext, 0);
    Adopt(proj_create_crs_to_crs(m_pContext, source.c_str(), dest.c_str(), nullptr), source + " to " + dest);
  }
  ~Peer() {
    proj_destroy(m_pOperation);
    proj_context_destroy(m_pContext);
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  shr::Vec2d Forward(const shr::Vec2d& point) const { return Run(point, PJ_FWD); }
  shr::Vec2d Inverse(const shr::Vec2d& point) const { return Run(point, PJ_INV); }
  std::vector<shr::Vec2d> Forward(std::vector<shr::Vec2d> points) const {
    return RunAll(std::move(points), PJ_FWD);
  }
  std::vector<shr::Vec2d> Inverse(std::vector<shr::Vec2d> points) const {
    return RunAll(std::move(points), PJ_INV);
  }

 private:
  void Adopt(PJ* operation, const std::string& what) {
    m_pOperation = operation ? proj_normalize_for_visualization(m_pContext, operation) : nullptr;
    proj_destroy(operation);
    if (m_pOperation) return;
    proj_context_destroy(m_pContext);
    throw std::runtime_error("PROJ refuses " + what);
  }

  shr::Vec2d Run(const shr::Vec2d& point, PJ_DIRECTION direction) const {
    PJ_COORD c = proj_coord(point.x, point.y, 0.0, 0.0);
    if (proj_angular_input(m_pOperation, direction)) {
      c.lp.lam = proj_torad(c.lp.lam);
      c.lp.phi = proj_torad(c.lp.phi);
    }
    proj_errno_reset(m_pOperation);
    c = proj_trans(m_pOperation, direction, c);
    if (proj_errno(m_pOperation) != 0) throw std::runtime_error("PROJ cannot transform a point");
    if (proj_angular_output(m_pOperation, direction)) {
      c.lp.lam = proj_todeg(c.lp.lam);
      c.lp.phi = proj_todeg(c.lp.phi);
    }
    return {c.xy.x, c.xy.y};
  }

  std::vector<shr::Vec2d> RunAll(std::vector<shr::Vec2d> points, PJ_DIRECTION direction) const {
    for (shr::Vec2d& point : points) point = Run(point, direction);
    return points;
  }

  PJ_CONTEXT* m_pContext;
  PJ* m_pOperation = nullptr;
};

}  // namespace orv::test
