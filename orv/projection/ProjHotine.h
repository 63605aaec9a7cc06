// ProjHotine.h: Hotine Oblique Mercator of the ellipsoid, by azimuth or by two points.
//
// Source      Snyder 1987 [Sny87], section 9, equations (9-25) to (9-34), (9-39) to (9-48), with (7-9).
// Input       lambda, phi in radians.   Output  x, y in the unit of a, before false origin and scale.
// Set-up      A, B, E, gamma_0, lambda_0, azimuth and uc; see the members.
// Marks       forward: |U| = 1, where v is infinite.  Inverse: K0 = 0; |u| beyond 1e15 radii; no convergence
//             in 100 steps.
// Departures  Not rotated, x is u and y is v.  lambda - lambda_0 is brought into (-180, 180] degrees, since B
//             is not 1.  At phi = +-pi/2 the closed forms of the notes to (9-30) and (9-31).  |U| = 1 in the
//             inverse is the pole, at longitude lambda_0.
#pragma once

#include "orv/lanes/LaneMath.h"
#include "orv/projection/ConformalLatitude.h"
#include "orv/projection/InverseLimits.h"

namespace orv {

struct Hotine {
  double e;           // sqrt(2 f - f^2)
  double A;           // a B K0 sqrt(1 - e^2) / (1 - e^2 sin^2 Lat0), metres
  double B;           // sqrt(1 + e^2 cos^4 Lat0 / (1 - e^2))
  double E;           // azimuth form: F t0^B; two-point form: (D +- sqrt(D^2 - 1)) t0^B; NaN marks all
  double sinGamma0;   // sin gamma_0
  double cosGamma0;   // cos gamma_0
  double lambda0;     // lambda_0, radians, as the set-up gives it (not wrapped)
  double sinAzimuth;  // sin Alpha; two-point form: of asin(D sin gamma_0), argument clamped to [-1, 1]
  double cosAzimuth;  // cos of the same
  double uc;          // (A/B) atan(sqrt(D^2 - 1) / cos azimuth), negated when Lat0 < 0; (9-39) in both forms
  double vNorth;      // (A/B) ln tan(pi/4 - gamma_0/2): v of the north pole
  double vSouth;      // (A/B) ln tan(pi/4 + gamma_0/2): v of the south pole
  bool rotate;        // bRotate: (u, v) rotated to (x, y); else x = u, y = v
  bool offsetU;       // bUOffset: u is counted from uc
  LatitudeSeries latitude;  // of e
};

namespace ORV_ISA {

/// Beyond this exponent the smaller of Q and 1/Q is lost.
inline constexpr double kHotineLargestExponent = 150.0;

/// d brought into (-pi, pi]; unchanged when it is there.
inline Lanes WrapLongitude(Lanes d) {
  Ints turns;
  const Lanes w = d - Round(d * (0.5 / kPi), turns) * (2.0 * kPi);
  const Lanes up = Except(w, w <= -kPi, w + 2.0 * kPi);
  return Except(up, up > kPi, up - 2.0 * kPi);
}

inline Point Forward(const Hotine& c, Point p) {
  const double scale = c.A / c.B;
  const Mask pole = abs(p.y) >= kHalfPi;
  const SinCos f = sincos(Except(p.y, pole, 0.0));
  const Lanes d = WrapLongitude(p.x - c.lambda0);
  // Q = E / t^B (9-25); t of (9-13) is exp(-(ln tan(pi/4 + phi/2) - e artanh(e sin phi)))
  const Lanes psi = LogTan(f) - EAtanh(c.e, f.sin);
  const Lanes Q = c.E * exp(c.B * psi);
  const Lanes inverseQ = 1.0 / Q;
  const Lanes S = 0.5 * (Q - inverseQ);  // (9-26)
  const Lanes T = 0.5 * (Q + inverseQ);  // (9-27)
  const SinCos bd = sincos(c.B * d);
  const Lanes V = bd.sin;                             // (9-28)
  const Lanes W = S * c.sinGamma0 - V * c.cosGamma0;  // T U, of (9-29)
  const Lanes n = S * c.cosGamma0 + V * c.sinGamma0;
  const Lanes root = sqrt(n * n + bd.cos * bd.cos);  // T sqrt(1 - U^2), without its cancellation
  const Mask finite = pole | ((abs(W) < T) & (root > 0.0));
  const Lanes safeW = Except(W, !finite, 0.0), safeRoot = Except(root, !finite, T);
  const Lanes vPoint = -scale * LogTan(safeW, safeRoot, T);  // (9-30): A ln((1-U)/(1+U))/(2B)
  const Lanes uPoint = Select(bd.cos == 0.0, c.A * c.B * d, scale * atan2(n, bd.cos));  // (9-31)
  const Lanes vPole = Select(p.y > 0.0, c.vNorth, c.vSouth);                            // note to (9-30)
  const Lanes v = Except(Except(vPoint, !finite, kNaN), pole, vPole);
  const Lanes uRaw = Except(uPoint, pole, scale * p.y);  // note to (9-31)
  const Lanes u = c.offsetU ? uRaw - c.uc : uRaw;
  if (!c.rotate) return {u, v};
  return {v * c.cosAzimuth + u * c.sinAzimuth, u * c.cosAzimuth - v * c.sinAzimuth};  // (9-33), (9-34)
}

inline Point Inverse(const Hotine& c, Point p) {
  const double inverseScale = c.B / Divisor(c.A), inverseB = 1.0 / c.B;
  const Lanes v = c.rotate ? p.x * c.cosAzimuth - p.y * c.sinAzimuth : p.y;     // (9-40)
  const Lanes uRaw = c.rotate ? p.y * c.cosAzimuth + p.x * c.sinAzimuth : p.x;  // (9-41)
  const Lanes u = c.offsetU ? uRaw + c.uc : uRaw;
  const Lanes angle = u * inverseScale;
  const Mask far = abs(angle) > kLargestAngle;
  const SinCos bu = sincos(Except(angle, far, 0.0));
  const Lanes Q = exp(Clamp(v * -inverseScale, kHotineLargestExponent));  // (9-42)
  const Lanes inverseQ = 1.0 / Q;
  const Lanes S = 0.5 * (Q - inverseQ);               // (9-43)
  const Lanes T = 0.5 * (Q + inverseQ);               // (9-44)
  const Lanes V = bu.sin;                             // (9-45)
  const Lanes W = V * c.cosGamma0 + S * c.sinGamma0;  // T U', of (9-46)
  const Lanes n = S * c.cosGamma0 - V * c.sinGamma0;
  const Lanes root = sqrt(n * n + bu.cos * bu.cos);  // T sqrt(1 - U'^2)
  const Mask pole = (abs(W) >= T) | (root <= 0.0);   // a NaN is none
  // (9-47): t = (E / sqrt((1 + U')/(1 - U')))^(1/B)
  const Lanes lnT = (log(c.E) - LogTan(Except(W, pole, 0.0), Except(root, pole, T), T)) * inverseB;
  const Lanes phi = LatitudeOf(exp(Clamp(lnT, kLargestLnT)), c.e, c.latitude);
  const Lanes lambda = c.lambda0 - atan2(n, bu.cos) * inverseB;  // (9-48)
  const Lanes lambdaOrPole = Except(lambda, pole, c.lambda0);
  return {c.A == 0.0 ? kNaN : Except(lambdaOrPole, far, kNaN), Except(phi, pole, WithSign(kHalfPi, W))};
}

}  // namespace ORV_ISA
}  // namespace orv
