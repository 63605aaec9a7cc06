// Conformal.h: the exact conversions between parameter forms of conformal maps.
//
// Angles are degrees unless said otherwise.  Equation numbers [Sny87] and [EPSG9] as in docs/bibliography.md.  "Exact"
// means: the same map but for the rounding of doubles.
#pragma once

#include <utility>

namespace orv::internal {

/// A conformal cone of constant n = sin(phi0) with the scale k0 at phi0, where the scale is least.
///
/// From [Sny87] (15-1) to (15-4) the scale at phi is k = k0 (m0 / m) exp(-n (q - q0)) with the isometric latitude q.
class ConformalCone {
 public:
  /// @param phi0  radians, not 0
  ConformalCone(double phi0, double k0, double flattening);
  /// The one whose scale is 1 on both parallels, [Sny87] (15-8).
  static ConformalCone OfParallels(double lat1, double lat2, double flattening);

  double Phi0() const { return m_Phi0; }  ///< radians
  double K0() const { return m_K0; }
  /// The latitudes on both sides of phi0 whose scale is 1, the southern one first.  Needs k0 below 1.
  std::pair<double, double> Parallels() const;
  /// Logarithm of the scale at phi (radians) over that at phi0; 0 there and more on both sides.
  double LogGrowth(double phi) const;
  /// Radius of the parallel of a latitude (degrees) on the map, in major radii.
  double Rho(double latitude) const;

 private:
  double Distance(double growth, double side) const;

  double m_Phi0;
  double m_K0;
  double m_E;  // eccentricity
};

/// A Lambert cone of one parallel as one of two; what remains of the scale is a factor.
struct TwoParallels {
  double lat1;
  double lat2;
  double scale;
};
/// The parallels are those where the scale is 1.  They exist for k0 below 1; for a k0 of 1 or more, or a shade less, those
/// of the cone of smaller k0, one degree away, are taken, and the rest of the scale is given as a factor.
TwoParallels LambertParallels(double lat0, double k0, double flattening);

/// Central longitude of the plain Lambert that equals the Belgian variant: that one turns the map by 29.2985 seconds [EPSG9].
double BelgianLongitude(double lon0, double lat1, double lat2, double flattening);

/// Scale on the Equator of a Mercator that is true at the latitude [EPSG9], and the latitude (not negative) of a scale of at
/// most 1.
double MercatorScale(double latitude, double flattening);
double MercatorLatitude(double k0, double flattening);

/// Scale at the pole of a Polar Stereographic that is true at the parallel, [EPSG9] and [Sny87] (21-33); 1 for the pole.
double PolarScale(double parallel, double flattening);
/// The parallel (0 to 90) of a scale at the pole of at most 1; NaN when there is none.
double PolarParallel(double k0, double flattening);
/// m of [Sny87] (14-15): the radius of a parallel in major radii.
double ParallelRadius(double latitude, double flattening);

}  // namespace orv::internal
