"""The exact conversions of parameters that the catalogue needs.

Angles are degrees, lengths metres; a flattening is dimensionless.  Equation numbers [Sny87] and [EPSG9] as in
docs/bibliography.md.  "Exact" means: the same map but for the rounding of doubles.
"""
import math
from typing import NamedTuple

from .database import exact


# ---- conformal cones --------------------------------------------------------------------------------------------------

class Spheroid:
    """What conformal projections need of an ellipsoid, as functions of a latitude in radians."""

    def __init__(self, flattening):
        self.e2 = 2 * flattening - flattening * flattening
        self.e = math.sqrt(self.e2)

    def isometric(self, phi):
        """Isometric latitude, minus the logarithm of t of [Sny87] (15-9)."""
        return math.asinh(math.tan(phi)) - (self.e * math.atanh(self.e * math.sin(phi)) if self.e else 0.0)

    def log_m(self, phi):
        """Logarithm of m of [Sny87] (14-15): the radius of the parallel in major radii."""
        return math.log(math.cos(phi)) - 0.5 * math.log1p(-self.e2 * math.sin(phi) ** 2)


class Cone:
    """A conformal cone of constant n = sin(phi0) with the scale k0 at phi0, where the scale is least.

    From [Sny87] (15-1) to (15-4) the scale at phi is k = k0 (m0 / m) exp(-n (q - q0)) with the isometric latitude q.
    """

    def __init__(self, phi0, k0, flattening):
        """@param phi0  radians, not 0"""
        self.phi0, self.k0, self.flattening = phi0, k0, flattening
        self.spheroid = Spheroid(flattening)

    @classmethod
    def of_parallels(cls, lat1, lat2, flattening):
        """The one whose scale is 1 on both parallels, [Sny87] (15-8)."""
        s = Spheroid(flattening)
        p1, p2 = math.radians(lat1), math.radians(lat2)
        n = (s.log_m(p1) - s.log_m(p2)) / (s.isometric(p2) - s.isometric(p1))
        cone = cls(math.asin(n), 1.0, flattening)
        cone.k0 = math.exp(-cone.log_growth(p1))
        return cone

    def log_growth(self, phi):
        """Logarithm of the scale at phi over that at phi0; 0 at phi0 and more on both sides."""
        s = self.spheroid
        return s.log_m(self.phi0) - s.log_m(phi) - math.sin(self.phi0) * (s.isometric(phi) - s.isometric(self.phi0))

    def _distance(self, growth, side):
        """How far from phi0 the scale has grown by exp(growth), on the side +1 or -1: bisection."""
        low, high = 0.0, math.radians(0.5)
        while self.log_growth(self.phi0 + side * high) < growth:
            high *= 1.5
        for _ in range(200):
            middle = (low + high) / 2
            if self.log_growth(self.phi0 + side * middle) < growth:
                low = middle
            else:
                high = middle
        return (low + high) / 2

    def parallels(self):
        """The latitudes, degrees, on both sides of phi0 whose scale is 1.  Needs k0 below 1."""
        growth = -math.log(self.k0)
        return tuple(math.degrees(self.phi0 + side * self._distance(growth, side)) for side in (-1, 1))


class TwoParallels(NamedTuple):
    lat1: float
    lat2: float
    scale: float  #: by which the cone of the two parallels is still to be multiplied


# Parallels nearer than about 0.2 degree give the cone constant badly.
_LEAST_GROWTH = 5e-6


def lambert_1sp_to_2sp(lat0, k0, flattening):
    """Lambert Conformal Conic with one standard parallel as one with two: same cone.

    The parallels are those where the scale is 1.  They exist for k0 below 1; for a k0 of 1 or more, or a shade less, the
    parallels of a cone of smaller k0, one degree away, are taken, and the rest of the scale is given as a factor.
    """
    phi0 = math.radians(lat0)
    if -math.log(k0) >= _LEAST_GROWTH:
        return TwoParallels(*Cone(phi0, k0, flattening).parallels(), 1.0)
    tangent = Cone(phi0, 1.0, flattening)
    growth = max(tangent.log_growth(phi0 + math.radians(side)) for side in (-1, 1))
    smaller = math.exp(-growth)
    return TwoParallels(*Cone(phi0, smaller, flattening).parallels(), k0 / smaller)


def lambert_rescaled(lat1, lat2, factor, flattening):
    """Parallels of the cone whose scale is that of the given parallels divided by `factor`."""
    cone = Cone.of_parallels(lat1, lat2, flattening)
    cone.k0 /= factor
    low, high = cone.parallels()
    return (low, high) if lat1 < lat2 else (high, low)


def lambert_belgium_lon0(lon0, lat1, lat2, flattening):
    """Central longitude of the plain Lambert (2SP) that equals the Belgian variant.

    That one turns the map by the constant a = 29.2985 seconds, theta - a in place of theta [EPSG9]; with theta =
    n (lambda - lambda0), lambda0 + a / n does the same.
    """
    return lon0 + 29.2985 / 3600 / math.sin(Cone.of_parallels(lat1, lat2, flattening).phi0)


# ---- Mercator, Polar Stereographic, Hotine ---------------------------------------------------------------------------

def mercator_k0_to_latitude(k0, flattening):
    """Latitude of true scale of a Mercator with the scale k0 (at most 1) on the equator.

    k0 = cos(phi) / sqrt(1 - e2 sin(phi)^2) [EPSG9], solved for phi.
    """
    e2 = Spheroid(flattening).e2
    return math.degrees(math.asin(math.sqrt((1 - k0 * k0) / (1 - k0 * k0 * e2))))


def mercator_latitude_to_k0(latitude, flattening):
    """Scale on the equator of a Mercator that is true at the latitude, [EPSG9]."""
    return math.exp(Spheroid(flattening).log_m(math.radians(latitude)))


def polar_stereographic_k0(parallel, flattening):
    """Scale at the pole of a Polar Stereographic (variant B or C) that is true at the parallel, [EPSG9] and [Sny87] (21-33).

    k0 = m sqrt((1+e)^(1+e) (1-e)^(1-e)) / (2 t), in either hemisphere; 1 when the parallel is the pole.
    """
    if abs(parallel) == 90:
        return 1.0
    s = Spheroid(flattening)
    phi = math.radians(abs(parallel))
    c = math.sqrt((1 + s.e) ** (1 + s.e) * (1 - s.e) ** (1 - s.e))
    return math.exp(s.log_m(phi) + s.isometric(phi)) * c / 2


def polar_stereographic_c_northing(northing, parallel, a, flattening):
    """Northing of the pole, from the one that variant C gives where the central meridian meets the parallel: the radius of the
    parallel on the map, a m, away [EPSG9]."""
    rho = a * math.exp(Spheroid(flattening).log_m(math.radians(parallel)))
    return northing - rho if parallel < 0 else northing + rho


AZIMUTH_BESIDE_90 = 89.9998


def hotine_azimuth(azimuth):
    """An azimuth of exactly 90 degrees as 89.9998.

    The set-up takes the arc sine of a number that is 1 but for rounding, which loses half the digits: up to 9 cm.  0.7 seconds
    less cost half a millimetre in the area of use of the systems concerned.
    """
    return math.copysign(AZIMUTH_BESIDE_90, azimuth) if abs(abs(azimuth) - 90) < 1e-12 else azimuth


# ---- scales and origins ----------------------------------------------------------------------------------------------

def scale_of_unit(metres_per_unit):
    """Scale of a system in another unit: the library multiplies metres, false origin and all, by it."""
    return float(1 / metres_per_unit)


def fold_meridian(longitude, meridian):
    """A longitude from some prime meridian, counted from Greenwich and brought into (-180, 180]."""
    folded = round(longitude + meridian, 13) if meridian else longitude
    while folded > 180:
        folded -= 360
    while folded <= -180:
        folded += 360
    return folded


def angles_per_metre(turn, radius):
    """Scale of an Equidistant Cylindrical on a sphere that gives longitude and latitude themselves.

    @param turn  units in a full circle: 360 for degrees, 400 for grads
    """
    return turn / (2 * math.pi * radius)


def meridian_arc_at_equator(latitude, a, flattening):
    """Length of the meridian from the equator to a latitude so small that its curvature is that of the equator."""
    return a * (1 - flattening) ** 2 * math.radians(latitude)


# ---- seven parameters ------------------------------------------------------------------------------------------------

class Shift(NamedTuple):
    """Translations in metres, rotations in arc-seconds (position vector), scale difference in parts per million."""
    dx: float = 0.0
    dy: float = 0.0
    dz: float = 0.0
    rx: float = 0.0
    ry: float = 0.0
    rz: float = 0.0
    k: float = 0.0

    def is_null(self):
        return not any(self)

    def reversed(self):
        return Shift(*(-value + 0.0 for value in self))

    def plus(self, other):
        """One behind the other: parameters of this size simply add up."""
        return Shift(*(a + b for a, b in zip(self, other)))


def position_vector(shift):
    """Coordinate frame rotations as position vector ones: the signs change [EPSG9]."""
    return shift._replace(rx=-shift.rx + 0.0, ry=-shift.ry + 0.0, rz=-shift.rz + 0.0)


def without_pivot(shift, px, py, pz):
    """A Molodensky-Badekas transformation (position vector) about the point P as seven parameters about the origin.

    X' = P + T + s R (X - P) = s R X + (T + P - s R P) [EPSG9], with R of small angles.
    """
    rx, ry, rz = (math.radians(angle / 3600) for angle in (shift.rx, shift.ry, shift.rz))
    s = 1 + shift.k * 1e-6
    return shift._replace(dx=shift.dx + px - s * (px - rz * py + ry * pz),
                          dy=shift.dy + py - s * (rz * px + py - rx * pz),
                          dz=shift.dz + pz - s * (-ry * px + rx * py + pz))


def arc_seconds(value, unit):
    """A rotation in arc-seconds from seconds, milliarc-seconds, radians, microradians or centesimal seconds; none is 0."""
    if value is None:
        return 0.0
    if unit == 9104:
        return float(value)
    if unit in (1031, 9113):
        return float(exact(value) / 1000 if unit == 1031 else exact(value) * 9 * 3600 / 100000)
    return math.degrees(value * {9101: 1.0, 9109: 1e-6}[unit]) * 3600


def parts_per_million(value, unit):
    """A scale difference in parts per million from those, parts per billion or unity; none is 0."""
    if value is None:
        return 0.0
    return float(exact(value) * {9202: 1, 1028: exact(0.001), 9201: 1000000}[unit])
