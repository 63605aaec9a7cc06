#include "orv/projection/internal/ProjArea.h"

#include <cmath>
#include <limits>

#include "orv/core/internal/Angle.h"

namespace orv::internal {

namespace {

bool IsBetween(double low, double value, double high) { return low < value && value < high; }

/// The cosine of the great circle arc from (lon0, lat0) to a point, degrees.
double CosineOfArc(double lon0, double lat0, const shr::Vec2d& at) {
  const double phi0 = ToRadians(lat0), phi = ToRadians(at.y);
  const double dLambda = ToRadians(at.x) - ToRadians(lon0);
  return std::sin(phi0) * std::sin(phi) + std::cos(phi0) * std::cos(phi) * std::cos(dLambda);
}

bool SplitAt(double lon0, const shr::Vec2d* pts, size_t n, double* dx, double* dy) {
  if (!pts || !dx || !dy || n == 0) return false;
  *dx = 0.0;
  *dy = 0.0;
  double smallest = std::numeric_limits<double>::max(), largest = -smallest;
  for (size_t i = 0; i < n; ++i) {
    if (pts[i].x < smallest) smallest = pts[i].x;
    if (pts[i].x > largest) largest = pts[i].x;
  }
  if (lon0 - 180.0 >= smallest) {
    *dx = 360.0;
    return true;
  }
  if (largest >= lon0 + 180.0) {
    *dx = -360.0;
    return true;
  }
  return false;
}

}  // namespace

bool InsideWindow(const ProjectionParameters& p, const shr::Vec2d& at) {
  return IsBetween(p.Lon0 - 180.0, at.x, p.Lon0 + 180.0);
}

bool InsideWindowBelowPoles(const ProjectionParameters& p, const shr::Vec2d& at) {
  return InsideWindow(p, at) && IsBetween(-90.0, at.y, 90.0);
}

bool InsideSinusoidalWindow(const ProjectionParameters& p, const shr::Vec2d& at) {
  return p.method == ProjectionMethodSinusoidal && InsideWindow(p, at);
}

bool InsideGreenwichWindow(const ProjectionParameters&, const shr::Vec2d& at) {
  return IsBetween(-180.0, at.x, 180.0);
}

bool InsideHemisphere(const ProjectionParameters& p, const shr::Vec2d& at) {
  return CosineOfArc(p.Lon0, p.Lat0, at) >= 0.0;
}

bool InsideGnomonic(const ProjectionParameters& p, const shr::Vec2d& at) {
  return CosineOfArc(p.Lon0, p.Lat1, at) >= 0.5;
}

bool InsideAzimuthalEquidistant(const ProjectionParameters& p, const shr::Vec2d& at) {
  return CosineOfArc(p.Lon0, p.Lat1, at) >= std::cos(2.9670597283903604);  // 170 degrees
}

bool InsideObliqueMercator(const ProjectionParameters& p, const shr::Vec2d& at) {
  return IsBetween(p.Lat1 - 45.0, at.y, p.Lat1 + 45.0) && IsBetween(p.Lat2 - 45.0, at.y, p.Lat2 + 45.0);
}

bool InsideHotine(const ProjectionParameters& p, const shr::Vec2d& at) {
  return IsBetween(p.Lon1 - 15.0, at.x, p.Lon1 + 15.0) &&
         (p.bUseAlpha || IsBetween(p.Lat1 - 15.0, at.y, p.Lat1 + 15.0));
}

bool InsideEverywhere(const ProjectionParameters&, const shr::Vec2d&) { return true; }

bool SplitAtWindow(const ProjectionParameters& p, const shr::Vec2d* pts, size_t n, double* dx, double* dy) {
  return SplitAt(p.Lon0, pts, n, dx, dy);
}

bool SplitAtGreenwichWindow(const ProjectionParameters&, const shr::Vec2d* pts, size_t n, double* dx,
                            double* dy) {
  return SplitAt(0.0, pts, n, dx, dy);
}

bool SplitNowhere(const ProjectionParameters&, const shr::Vec2d*, size_t, double* dx, double* dy) {
  if (dx) *dx = 0.0;
  if (dy) *dy = 0.0;
  return false;
}

}  // namespace orv::internal
