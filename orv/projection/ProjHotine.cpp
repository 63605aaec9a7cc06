#include "orv/projection/ProjHotine.h"

#include <cmath>
#include <limits>

#include "orv/core/internal/Angle.h"
#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjHotine")

namespace orv {

namespace {

using internal::kPi;

constexpr internal::EngineRow<Hotine> kRow = {kUnit, &lanes::KernelTable::hotine, internal::InsideHotine,
                                              internal::SplitNowhere};

// What both forms of the central line share.
struct CentralLine {
  double E, gamma0, lambda0, azimuth;
};

bool FailOnZeroTerm(int line) {
  return ORV_FAIL_AT(
      (ErrorSite{kUnit, line}), ErrCorrupt,
      "Undefined mathematical result during projection.  Unexpected zero value in intermediate term.");
}

double ClampToOne(double value) { return value > 1.0 ? 1.0 : (value < -1.0 ? -1.0 : value); }

// t of (9-13).  Deliberate: at the south pole, where t is infinite, a small number takes its place and keeps
// the later powers finite.  Points never use it.
double SmallT(double e, double phi) {
  constexpr double kSubstitute = 1.1920928955078125e-07;
  const double s = std::sin(phi), es = e * s;
  if (s == -1.0 || es == 1.0) return kSubstitute;
  return std::sqrt(((1.0 - s) / (1.0 + s)) * std::pow((1.0 + es) / (1.0 - es), e));
}

// (A/B) ln tan(angle), where `angle` is pi/4 -+ gamma_0/2.
double PoleV(double scale, double angle) { return scale * std::log(std::tan(angle)); }

// The form by azimuth: the line through (Lon1, Lat0) with azimuth Alpha.  False after a report.
bool LineByAzimuth(const ProjectionParameters& p, double B, double D, double t0, CentralLine& line) {
  if (p.Alpha == 0.0) {
    return ORV_FAIL(
        ErrCorrupt,
        "Undefined mathematical result during projection.  Alpha parameter for Hotine Oblique Mercator "
        "projection must be nonzero.");
  }
  const double root = std::sqrt(D * D - 1.0);
  const double F = p.Lat0 >= 0.0 ? D + root : D - root;  // (9-35)
  if (F == 0.0 || D == 0.0) return FailOnZeroTerm(__LINE__);
  line.E = F * std::pow(t0, B);                                // (9-36)
  const double G = (F - 1.0 / F) / 2.0;                        // (9-19), of (9-37)
  line.gamma0 = std::asin(ClampToOne(std::sin(p.Alpha) / D));  // (9-37)
  if (B == 0.0) return FailOnZeroTerm(__LINE__);
  line.lambda0 = p.Lon1 - std::asin(ClampToOne(G * std::tan(line.gamma0))) / B;  // (9-38)
  line.azimuth = p.Alpha;
  if (std::cos(p.Alpha) == 0.0) return FailOnZeroTerm(__LINE__);
  return true;
}

// The form by two points, (Lon1, Lat1) and (Lon2, Lat2).  False after a report.
bool LineByPoints(const ProjectionParameters& p, double e, double B, double D, double t0, CentralLine& line) {
  constexpr double kLargest = 3.4028234663852886e38;  // deliberate: of single precision
  const double root = std::sqrt(D * D - 1.0);
  line.E = (p.Lat0 >= 0.0 ? D + root : D - root) * std::pow(t0, B);  // (9-15)
  const double H = std::pow(SmallT(e, p.Lat1), B);                   // (9-16)
  const double L = std::pow(SmallT(e, p.Lat2), B);                   // (9-17)
  const double F = H == 0.0 ? kLargest : line.E / H;                 // (9-18)
  if (F == 0.0) return FailOnZeroTerm(__LINE__);  // the centre at the south pole: G would be infinite
  const double G = (F - 1.0 / F) / 2.0;           // (9-19)
  const double E2 = line.E * line.E;
  if (E2 + L * H == 0.0) return FailOnZeroTerm(__LINE__);
  const double J = (E2 - L * H) / (E2 + L * H);  // (9-20)
  if (L + H == 0.0) return FailOnZeroTerm(__LINE__);
  const double P = (L - H) / (L + H);  // (9-21)
  if (P == 0.0 || B == 0.0 || G == 0.0) return FailOnZeroTerm(__LINE__);
  // (9-22).  Lon1 - Lon2 is taken as it is: points on both sides of 180 degrees must be given as 170 and 190.
  line.lambda0 = (p.Lon1 + p.Lon2) / 2.0 - std::atan(J * std::tan(B * (p.Lon1 - p.Lon2) / 2.0) / P) / B;
  line.gamma0 = std::atan(std::sin(B * (p.Lon1 - line.lambda0)) / G);  // (9-23)
  line.azimuth = std::asin(ClampToOne(D * std::sin(line.gamma0)));     // (9-24)
  return true;
}

bool SetUp(ProjectionParameters& p, Hotine& c) {
  const double a = p.ellipsoid.GetMajorRadius(), f = p.ellipsoid.GetFlattening();
  const double e = std::sqrt(2.0 * f - f * f);
  if (e * e == 1.0) {
    return ORV_FAIL(
        ErrCorrupt,
        "Undefined mathematical result during projection.  Square of ellipsoid eccentricity value must not "
        "be exactly one.");
  }
  const double e2 = e * e;
  const double sin0 = std::sin(p.Lat0), cos0 = std::cos(p.Lat0);
  const double cos0p4 = cos0 * cos0 * cos0 * cos0;
  const double B = std::sqrt(1.0 + e2 * cos0p4 / (1.0 - e2));  // (9-11)
  const double w = 1.0 - e2 * sin0 * sin0;
  if (w == 0.0) return FailOnZeroTerm(__LINE__);
  const double A = a * B * p.K0 * std::sqrt(1.0 - e2) / w;  // (9-12)
  const double t0 = SmallT(e, p.Lat0);                      // (9-13)
  if (std::sqrt(w) * cos0 == 0.0) return FailOnZeroTerm(__LINE__);
  const double DRaw = B * std::sqrt(1.0 - e2) / (cos0 * std::sqrt(w));  // (9-14)
  const double D = DRaw * DRaw < 1.0 ? 1.0 : DRaw;

  CentralLine line{};
  if (!(p.bUseAlpha ? LineByAzimuth(p, B, D, t0, line) : LineByPoints(p, e, B, D, t0, line))) return false;
  p.Alpha = line.azimuth;

  c.e = e;
  c.latitude = internal::MakeLatitudeSeries(e);
  c.A = A;
  c.B = B;
  // With Lat0 at a pole t0 is 0 and no point has a place: all are marked, and none divides by 0.
  c.E = line.E > 0.0 ? line.E : std::numeric_limits<double>::quiet_NaN();
  c.sinGamma0 = std::sin(line.gamma0);
  c.cosGamma0 = std::cos(line.gamma0);
  c.lambda0 = line.lambda0;
  c.sinAzimuth = std::sin(line.azimuth);
  c.cosAzimuth = std::cos(line.azimuth);
  // (9-39), also in the form by two points: u where the central line meets the parallel Lat0
  const double uc = (A / B) * std::atan(std::sqrt(D * D - 1.0) / c.cosAzimuth);
  c.uc = p.Lat0 < 0.0 ? -uc : uc;
  // Notes to (9-30).  With gamma_0 of +-90 degrees the poles are those of the oblique graticule, where v is
  // infinite.
  const bool arePoles = std::fabs(c.cosGamma0) < 1e-15;
  c.vNorth =
      arePoles ? std::numeric_limits<double>::quiet_NaN() : PoleV(A / B, kPi / 4.0 - line.gamma0 / 2.0);
  c.vSouth =
      arePoles ? std::numeric_limits<double>::quiet_NaN() : PoleV(A / B, kPi / 4.0 + line.gamma0 / 2.0);
  c.rotate = p.bRotate;
  c.offsetU = p.bUOffset;
  return true;
}

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorHotine() { return MakeEngine(kRow, &SetUp); }

}  // namespace orv
