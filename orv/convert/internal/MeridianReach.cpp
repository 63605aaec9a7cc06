#include "orv/convert/internal/MeridianReach.h"

#include <cmath>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Marker.h"

namespace orv::internal {

namespace {

constexpr double kReach = 10.0;                    // degrees of longitude
constexpr double kTanReach = 0.17632698070846498;  // tan 10 degrees
constexpr double kSafeSlope = kTanReach / 1.01;    // sinh(x) <= 1.01 x as long as x <= 0.2

/// First a look at the whole block that the compiler turns into lanes, then, rarely, at each point.
template <class Suspect, class IsFar>
bool Flag(const shr::Vec2d* points, size_t count, unsigned char* flags, Suspect suspect, IsFar isFar) {
  int suspicious = 0;
  for (size_t i = 0; i < count; ++i) suspicious |= suspect(points[i]);
  bool any = false;
  for (size_t i = 0; suspicious != 0 && i < count; ++i) {
    if (IsMarked(points[i]) || !isFar(points[i])) continue;
    flags[i] = 1;
    any = true;
  }
  return any;
}

}  // namespace

MeridianReach::MeridianReach(const ProjectionDef& projection) {
  const ProjectionParameters& p = *projection.GetParameters();
  if (p.method != ProjectionMethodTransverseMercator && p.method != ProjectionMethodUTM) return;
  const double radius = p.ellipsoid.GetMajorRadius() * p.K0 * p.Scale;
  if (p.ellipsoid.GetFlattening() == 0.0 || radius == 0.0) return;
  m_bLimited = true;
  m_Lon0 = p.Lon0;
  m_X0 = p.xOrg * p.Scale;
  m_PerUnit = 1.0 / radius;
  m_Y0 = p.yOrg * p.Scale - ToRadians(p.Lat0) * radius;
}

bool MeridianReach::IsFarForward(const shr::Vec2d& point) const {
  return std::fabs(std::fmod(point.x, 360.0) - m_Lon0) > kReach;
}

bool MeridianReach::IsFarInverse(const shr::Vec2d& point) const {
  // [Sny87] (8-7): tan(lambda - lambda0) = sinh x' / cos D
  const double x = std::fabs((point.x - m_X0) * m_PerUnit), d = (point.y - m_Y0) * m_PerUnit;
  return std::sinh(x) > kTanReach * std::fabs(std::cos(d));
}

bool MeridianReach::FlagFarForward(const shr::Vec2d* points, size_t count, unsigned char* flags) const {
  return Flag(
      points, count, flags,
      [this](const shr::Vec2d& p) {
        return static_cast<int>(std::fabs(p.x - m_Lon0) > kReach) | static_cast<int>(std::fabs(p.x) >= 360.0);
      },
      [this](const shr::Vec2d& p) { return IsFarForward(p); });
}

bool MeridianReach::FlagFarInverse(const shr::Vec2d* points, size_t count, unsigned char* flags) const {
  // cos D lies above its chord 1 - 2 |D| / pi, so a point below the line that this makes is near.
  const double slope = kSafeSlope * 2.0 / kPi;
  return Flag(
      points, count, flags,
      [this, slope](const shr::Vec2d& p) {
        const double x = std::fabs((p.x - m_X0) * m_PerUnit), d = std::fabs((p.y - m_Y0) * m_PerUnit);
        return static_cast<int>(x > kSafeSlope - slope * d);
      },
      [this](const shr::Vec2d& p) { return IsFarInverse(p); });
}

}  // namespace orv::internal
