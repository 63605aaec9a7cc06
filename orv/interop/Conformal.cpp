#include "orv/interop/internal/Conformal.h"

#include <algorithm>
#include <cmath>

#include "orv/core/internal/Angle.h"

namespace orv::internal {

namespace {

double Eccentricity(double f) { return std::sqrt(2.0 * f - f * f); }

/// Isometric latitude, minus the logarithm of t of [Sny87] (15-9); radians.
double Isometric(double phi, double e) {
  return std::asinh(std::tan(phi)) - (e > 0.0 ? e * std::atanh(e * std::sin(phi)) : 0.0);
}

/// Logarithm of m of [Sny87] (14-15).
double LogM(double phi, double e) {
  const double es = e * std::sin(phi);
  return std::log(std::cos(phi)) - 0.5 * std::log1p(-es * es);
}

// Parallels nearer than about 0.2 degree give the cone constant badly.
constexpr double kLeastGrowth = 5e-6;

}  // namespace

ConformalCone::ConformalCone(double phi0, double k0, double flattening)
    : m_Phi0(phi0), m_K0(k0), m_E(Eccentricity(flattening)) {}

ConformalCone ConformalCone::OfParallels(double lat1, double lat2, double flattening) {
  const double e = Eccentricity(flattening), p1 = ToRadians(lat1), p2 = ToRadians(lat2);
  const double n = (LogM(p1, e) - LogM(p2, e)) / (Isometric(p2, e) - Isometric(p1, e));
  ConformalCone cone(std::asin(n), 1.0, flattening);
  cone.m_K0 = std::exp(-cone.LogGrowth(p1));
  return cone;
}

double ConformalCone::LogGrowth(double phi) const {
  return LogM(m_Phi0, m_E) - LogM(phi, m_E) -
         std::sin(m_Phi0) * (Isometric(phi, m_E) - Isometric(m_Phi0, m_E));
}

double ConformalCone::Distance(double growth, double side) const {
  double low = 0.0, high = ToRadians(0.5);
  const double most = kPi / 2.0 - side * m_Phi0;
  while (high < most && LogGrowth(m_Phi0 + side * high) < growth) high *= 1.5;
  high = std::min(high, most);
  for (int i = 0; i < 200; ++i) {
    const double middle = (low + high) / 2.0;
    (LogGrowth(m_Phi0 + side * middle) < growth ? low : high) = middle;
  }
  return (low + high) / 2.0;
}

std::pair<double, double> ConformalCone::Parallels() const {
  const double growth = -std::log(m_K0);
  return {ToDegrees(m_Phi0 - Distance(growth, -1.0)), ToDegrees(m_Phi0 + Distance(growth, 1.0))};
}

double ConformalCone::Rho(double latitude) const {
  const double n = std::sin(m_Phi0);
  return m_K0 *
         std::exp(LogM(m_Phi0, m_E) - n * (Isometric(ToRadians(latitude), m_E) - Isometric(m_Phi0, m_E))) / n;
}

TwoParallels LambertParallels(double lat0, double k0, double flattening) {
  const double phi0 = ToRadians(lat0);
  if (-std::log(k0) >= kLeastGrowth) {
    const auto [south, north] = ConformalCone(phi0, k0, flattening).Parallels();
    return {south, north, 1.0};
  }
  const ConformalCone tangent(phi0, 1.0, flattening);
  const double growth =
      std::max(tangent.LogGrowth(phi0 - ToRadians(1.0)), tangent.LogGrowth(phi0 + ToRadians(1.0)));
  const double smaller = std::exp(-growth);
  const auto [south, north] = ConformalCone(phi0, smaller, flattening).Parallels();
  return {south, north, k0 / smaller};
}

double BelgianLongitude(double lon0, double lat1, double lat2, double flattening) {
  constexpr double kTurn = 29.2985 / 3600.0;
  return lon0 + kTurn / std::sin(ConformalCone::OfParallels(lat1, lat2, flattening).Phi0());
}

double MercatorScale(double latitude, double flattening) { return ParallelRadius(latitude, flattening); }

double MercatorLatitude(double k0, double flattening) {
  const double e = Eccentricity(flattening);
  return ToDegrees(std::asin(std::sqrt((1.0 - k0 * k0) / (1.0 - k0 * k0 * e * e))));
}

double PolarScale(double parallel, double flattening) {
  if (std::fabs(parallel) == 90.0) return 1.0;
  const double e = Eccentricity(flattening), phi = ToRadians(std::fabs(parallel));
  const double c = std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e));
  return std::exp(LogM(phi, e) + Isometric(phi, e)) * c / 2.0;
}

double PolarParallel(double k0, double flattening) {
  double low = 0.0, high = 90.0;  // the scale grows towards the pole
  if (!(k0 <= 1.0) || k0 < PolarScale(low, flattening)) return NAN;
  for (int i = 0; i < 100; ++i) {
    const double middle = (low + high) / 2.0;
    (PolarScale(middle, flattening) < k0 ? low : high) = middle;
  }
  return (low + high) / 2.0;
}

double ParallelRadius(double latitude, double flattening) {
  return std::exp(LogM(ToRadians(latitude), Eccentricity(flattening)));
}

}  // namespace orv::internal
