#include <algorithm>
#include <cmath>
#include <limits>

#include "orv/core/internal/Angle.h"
#include "orv/projection/internal/ClipRim.h"

namespace orv::internal {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kOnPole = 1e-9;    // degrees: a rim this near to a pole passes through it
constexpr double kDepth = 1e-6;     // degrees: a point of the rim is taken this far inside
constexpr double kDeepest = 0.001;  // degrees
constexpr long kMostPieces = 1000;  // of an object that is wider than the globe

double Sine(double degrees) { return std::sin(ToRadians(degrees)); }
double Cosine(double degrees) { return std::cos(ToRadians(degrees)); }

}  // namespace

void ClipBox::Add(const shr::Vec2d& p) {
  if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
  if (!bAny) low = high = p;
  bAny = true;
  low = shr::Vec2d(std::min(low.x, p.x), std::min(low.y, p.y));
  high = shr::Vec2d(std::max(high.x, p.x), std::max(high.y, p.y));
}

bool ClipBox::Holds(const ClipBox& other) const {
  return bAny && low.x <= other.low.x && low.y <= other.low.y && high.x >= other.high.x &&
         high.y >= other.high.y;
}

ClipRim::ClipRim(const ClipArea& area, const ClipBox& data) : m_Area(area) {
  if (!data.bAny) return;
  const ClipBox& window = area.Window();
  if (area.HasEngine()) {
    SetShape(area.Degrees(), data);
  } else if (window.bAny) {
    SetWindow(window.low.x, window.high.x, window.low.y, window.high.y, data);
  }
}

void ClipRim::SetShape(const ProjectionParameters& p, const ClipBox& data) {
  m_bCassini = p.method == ProjectionMethodCassini;
  m_bEquidistant = p.method == ProjectionMethodAzimuthalEquidistant;
  switch (p.method) {
    case ProjectionMethodEquidistantCylindrical:
    case ProjectionMethodLambertAzimuthal:
      return;
    case ProjectionMethodCassini:
    case ProjectionMethodStereographic:
    case ProjectionMethodOrthographic:
      return SetCap(p.Lon0, p.Lat0, 90.0, data);
    case ProjectionMethodGnomonic:
      return SetCap(p.Lon0, p.Lat1, 60.0, data);
    case ProjectionMethodAzimuthalEquidistant:
      return SetCap(p.Lon0, p.Lat1, 170.0, data);
    case ProjectionMethodRobinson:
      return SetWindow(-180.0, 180.0, -kInfinity, kInfinity, data);
    case ProjectionMethodMercator:
    case ProjectionMethodMiller:
      return SetWindow(p.Lon0 - 180.0, p.Lon0 + 180.0, -90.0, 90.0, data);
    case ProjectionMethodObliqueMercator:
      return SetWindow(-kInfinity, kInfinity, std::max(p.Lat1, p.Lat2) - 45.0,
                       std::min(p.Lat1, p.Lat2) + 45.0, data);
    case ProjectionMethodHotine:
      if (p.bUseAlpha) return SetWindow(p.Lon1 - 15.0, p.Lon1 + 15.0, -kInfinity, kInfinity, data);
      return SetWindow(p.Lon1 - 15.0, p.Lon1 + 15.0, p.Lat1 - 15.0, p.Lat1 + 15.0, data);
    default:
      return SetWindow(p.Lon0 - 180.0, p.Lon0 + 180.0, -kInfinity, kInfinity, data);
  }
}

void ClipRim::SetWindow(double west, double east, double south, double north, const ClipBox& data) {
  m_Kind = Kind::Rectangle;
  m_bReal[0] = std::isfinite(south);
  m_bReal[1] = std::isfinite(east);
  m_bReal[2] = std::isfinite(north);
  m_bReal[3] = std::isfinite(west);
  // Without a limit of latitude the poles are it, so that an object which covers them all covers the area.
  m_Low = shr::Vec2d(m_bReal[3] ? west : data.low.x - 1.0, m_bReal[0] ? south : std::min(-90.0, data.low.y));
  m_High =
      shr::Vec2d(m_bReal[1] ? east : data.high.x + 1.0, m_bReal[2] ? north : std::max(90.0, data.high.y));
}

void ClipRim::SetCap(double lon, double lat, double radius, const ClipBox& data) {
  const double toNorth = 90.0 - lat, toSouth = 90.0 + lat;
  if (std::abs(toNorth - radius) < kOnPole && std::abs(toSouth - radius) < kOnPole) {
    // The hemisphere about a point of the Equator: its rim is two meridians.
    SetWindow(lon - 90.0, lon + 90.0, -kInfinity, kInfinity, data);
    m_bRepeats = true;
    m_Lon = lon;
    return;
  }
  const bool bNorth = toNorth < radius - kOnPole, bSouth = toSouth < radius - kOnPole;
  m_bRepeats = true;
  m_bHole = bNorth && bSouth;
  m_Kind = bNorth != bSouth ? Kind::Open : Kind::Closed;
  m_bFromNorth = bSouth && !bNorth;
  m_Lon = m_bHole ? lon + 180.0 : lon;
  m_Lat = m_bHole ? -lat : lat;
  m_Radius = m_bHole ? 180.0 - radius : radius;
}

RimSpot ClipRim::Locate(const shr::Vec2d& at) const {
  RimSpot spot;
  if (m_bRepeats) {
    const double turns = std::floor((at.x - m_Lon + 180.0) / 360.0);
    spot.piece = static_cast<long>(std::clamp(turns, -1e9, 1e9));
  }
  const double x = at.x - 360.0 * static_cast<double>(spot.piece);
  if (m_Kind == Kind::Rectangle) {
    const double distance[4] = {std::abs(at.y - m_Low.y), std::abs(x - m_High.x), std::abs(at.y - m_High.y),
                                std::abs(x - m_Low.x)};
    int side = -1;
    for (int i = 0; i < 4; ++i) {
      if (m_bReal[i] && (side < 0 || distance[i] < distance[side])) side = i;
    }
    double part = 0.0;
    switch (side) {
      case 0:
        part = (x - m_Low.x) / (m_High.x - m_Low.x);
        break;
      case 1:
        part = (at.y - m_Low.y) / (m_High.y - m_Low.y);
        break;
      case 2:
        part = (m_High.x - x) / (m_High.x - m_Low.x);
        break;
      default:
        part = (m_High.y - at.y) / (m_High.y - m_Low.y);
        break;
    }
    spot.s = side + std::clamp(part, 0.0, 1.0);
    return spot;
  }
  const double dLambda = x - m_Lon;
  const double east = Cosine(at.y) * Sine(dLambda);
  const double north = Cosine(m_Lat) * Sine(at.y) - Sine(m_Lat) * Cosine(at.y) * Cosine(dLambda);
  spot.s = ToDegrees(std::atan2(east, m_bFromNorth ? north : -north));
  if (m_Kind == Kind::Open) {
    spot.s += 360.0 * static_cast<double>(spot.piece);
    spot.piece = 0;
  }
  return spot;
}

shr::Vec2d ClipRim::At(long piece, double s, double depth) const {
  if (m_Kind == Kind::Rectangle) {
    const double t = s - 4.0 * std::floor(s / 4.0);
    const int side = std::min(3, static_cast<int>(t));
    const double part = t - side;
    const double dx = m_High.x - m_Low.x, dy = m_High.y - m_Low.y;
    const double x = side == 0   ? m_Low.x + part * dx
                     : side == 1 ? m_High.x
                     : side == 2 ? m_High.x - part * dx
                                 : m_Low.x;
    const double y = side == 0   ? m_Low.y
                     : side == 1 ? m_Low.y + part * dy
                     : side == 2 ? m_High.y
                                 : m_High.y - part * dy;
    const double west = m_Low.x + (m_bReal[3] ? depth : 0.0), east = m_High.x - (m_bReal[1] ? depth : 0.0);
    const double south = m_Low.y + (m_bReal[0] ? depth : 0.0), north = m_High.y - (m_bReal[2] ? depth : 0.0);
    return shr::Vec2d(std::max(west, std::min(x, east)) + 360.0 * static_cast<double>(piece),
                      std::max(south, std::min(y, north)));
  }
  double turns = static_cast<double>(piece), azimuth = s;
  if (m_Kind == Kind::Open) {
    turns = std::floor((s + 180.0) / 360.0);
    azimuth = s - 360.0 * turns;
  }
  // The point at the azimuth and the radius, as a vector whose first axis points to the centre's meridian.
  const double rho = m_bHole ? m_Radius + depth : m_Radius - depth;
  const double toNorth = (m_bFromNorth ? 1.0 : -1.0) * Cosine(azimuth), toEast = Sine(azimuth);
  const double x = Cosine(rho) * Cosine(m_Lat) - Sine(rho) * toNorth * Sine(m_Lat);
  const double y = Sine(rho) * toEast;
  const double z = Cosine(rho) * Sine(m_Lat) + Sine(rho) * toNorth * Cosine(m_Lat);
  return shr::Vec2d(m_Lon + ToDegrees(std::atan2(y, x)) + 360.0 * turns,
                    ToDegrees(std::atan2(z, std::hypot(x, y))));
}

shr::Vec2d ClipRim::InsideAt(long piece, double s) const {
  const shr::Vec2d point = At(piece, s, kDepth);
  return m_Area.Inside(point) ? point : At(piece, s, kDeepest);
}

double ClipRim::Fineness() const { return m_bHole ? 0.08 : kInfinity; }

double ClipRim::LongestEdge() const { return m_bEquidistant ? 10.0 : kInfinity; }

double ClipRim::ToSingular(const shr::Vec2d& at) const {
  if (!m_bCassini) return kInfinity;
  return std::hypot(std::remainder(at.x - m_Lon - 90.0, 180.0), at.y);
}

std::vector<long> ClipRim::PiecesWithin(const ClipBox& box) const {
  std::vector<long> pieces;
  if (!box.bAny || m_Kind == Kind::None || m_Kind == Kind::Open) return pieces;
  if (m_Kind == Kind::Rectangle && !(m_Low.x < m_High.x && m_Low.y < m_High.y)) return pieces;
  ClipBox own;
  if (m_Kind == Kind::Rectangle) {
    own.Add(m_Low);
    own.Add(m_High);
  } else {
    for (double s : {-180.0, -90.0, 0.0, 90.0}) own.Add(At(0, s, 0.0));
  }
  if (!m_bRepeats) {
    if (box.Holds(own)) pieces.push_back(0);
    return pieces;
  }
  const double first = std::ceil((box.low.x - own.low.x) / 360.0);
  const double last = std::floor((box.high.x - own.high.x) / 360.0);
  if (!(last - first < static_cast<double>(kMostPieces)) || std::abs(first) > 1e9) return pieces;
  if (!(box.low.y <= own.low.y && box.high.y >= own.high.y)) return pieces;
  for (long k = static_cast<long>(first); k <= static_cast<long>(last); ++k) pieces.push_back(k);
  return pieces;
}

}  // namespace orv::internal
