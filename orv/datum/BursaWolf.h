// BursaWolf.h: seven-parameter similarity through geocentric coordinates, position-vector sense, at height 0.
//
// Source      [EPSG9], method 9606; geocentric to geodetic by Bowring 1985 [Bow85], one evaluation.
// Input       longitude, latitude in degrees.   Output  the same on the other datum.
// Set-up      see the members; one kernel serves both directions.
// Marks       nothing of its own; only the centre of the Earth has no finite result.
// Departures  Deliberate: the inverse is approximate, the forward with negated constants (the rotation before
//             scale and translation).  The rotation is linear.  No iteration.
#pragma once

#include "orv/lanes/Ellipsoid.h"

namespace orv {

// Forward: from the datum's own ellipsoid to the step's target ellipsoid.  Inverse: ellipsoids exchanged,
// dx, dy, dz, rx, ry, rz, pmShift negated, s = 1 / (1 + k 1e-6).
struct BursaWolf {
  double aFrom;       // major radius of the from ellipsoid, metres
  double e2From;      // (2 - f) f of the from ellipsoid
  double aTo;         // major radius of the to ellipsoid, metres
  double fTo;         // flattening of the to ellipsoid
  double dx, dy, dz;  // metres
  double rx, ry, rz;  // radians: arc-seconds / 3600 * (pi / 180)
  double s;           // forward 1 + k 1e-6
  double pmShift;     // degrees
};

namespace ORV_ISA {

inline Point Shift(const BursaWolf& c, Point p) {
  const SinCos l = sincos((p.x + c.pmShift) * (kPi / 180.0)), f = sincos(p.y * (kPi / 180.0));
  const Lanes N = c.aFrom * InverseRoot(c.e2From, Square(f.sin));
  const Lanes parallel = N * f.cos;
  const Lanes X = parallel * l.cos;
  const Lanes Y = parallel * l.sin;
  const Lanes Z = (1.0 - c.e2From) * N * f.sin;

  const Lanes X2 = c.s * (X - c.rz * Y + c.ry * Z) + c.dx;
  const Lanes Y2 = c.s * (c.rz * X + Y - c.rx * Z) + c.dy;
  const Lanes Z2 = c.s * (c.rx * Y - c.ry * X + Z) + c.dz;

  const double g = 1.0 - c.fTo, e2a = (2.0 - c.fTo) * c.fTo * c.aTo;
  const Lanes pp = X2 * X2 + Y2 * Y2;
  const Lanes rr0 = pp + Z2 * Z2;
  const Mask centre = rr0 == 0.0;
  const Lanes rr = Except(rr0, centre, 1.0);
  // At height 0, r and the hypotenuse of tan u are the major radius but for some thousandths.
  const double inverseA = 1.0 / c.aTo, inverseSquare = inverseA * inverseA;
  const Lanes axis = sqrt(pp), inverseR = inverseA * InverseRootNearOne(rr * inverseSquare);
  const Lanes zu =
      Z2 * (g + e2a * inverseR);  // tan u = zu / axis, from which sin u and cos u without the angle
  const Lanes hh = zu * zu + pp;
  const Lanes h = inverseA * InverseRootNearOne(Except(hh, centre, 1.0) * inverseSquare);
  const Lanes su = zu * h, cu = axis * h;
  const Lanes phi = atan2(g * Z2 + e2a * su * su * su, g * (axis - e2a * cu * cu * cu));
  const Lanes lambda = atan2(Y2, X2);
  return {lambda * (180.0 / kPi), Except(phi * (180.0 / kPi), centre, kNaN)};
}

}  // namespace ORV_ISA
}  // namespace orv
