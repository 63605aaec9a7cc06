"""Projections and transformations by other formulas than the generator's, for its tests.  Degrees and metres."""
import math


def lambert_2sp(lat, lon, a, f, lat0, lon0, lat1, lat2, turn=0.0):
    """[Sny87] (15-7) to (15-11), written with t and m.

    @param turn  seconds subtracted from theta: the Belgian variant's
    """
    e = math.sqrt(2 * f - f * f)

    def t(phi):
        s = e * math.sin(phi)
        return math.tan(math.pi / 4 - phi / 2) / ((1 - s) / (1 + s)) ** (e / 2) if phi < math.pi / 2 else 0.0

    def m(phi):
        return math.cos(phi) / math.sqrt(1 - (e * math.sin(phi)) ** 2)
    phi, phi0, phi1, phi2 = (math.radians(v) for v in (lat, lat0, lat1, lat2))
    n = math.log(m(phi1) / m(phi2)) / math.log(t(phi1) / t(phi2))
    big_f = m(phi1) / (n * t(phi1) ** n)
    rho, rho0 = (a * big_f * (t(p) ** n if t(p) else 0.0) for p in (phi, phi0))
    theta = n * math.radians(lon - lon0) - math.radians(turn / 3600)
    return rho * math.sin(theta), rho0 - rho * math.cos(theta)


def mercator(lat, lon, a, f, lon0, k0):
    """[Sny87] (7-6) and (7-7)."""
    e = math.sqrt(2 * f - f * f)
    phi, s = math.radians(lat), e * math.sin(math.radians(lat))
    return (a * k0 * math.radians(lon - lon0),
            a * k0 * math.log(math.tan(math.pi / 4 + phi / 2) * ((1 - s) / (1 + s)) ** (e / 2)))


def south_polar_stereographic(lat, lon, a, f, lon0, k0):
    """[EPSG9], variant A in the southern hemisphere."""
    e = math.sqrt(2 * f - f * f)
    phi, s = math.radians(lat), e * math.sin(math.radians(lat))
    t = math.tan(math.pi / 4 + phi / 2) / ((1 + s) / (1 - s)) ** (e / 2)
    rho = 2 * a * k0 * t / math.sqrt((1 + e) ** (1 + e) * (1 - e) ** (1 - e))
    theta = math.radians(lon - lon0)
    return rho * math.sin(theta), rho * math.cos(theta)


def seven_parameters(point, shift):
    """Position vector, small angles."""
    x, y, z = point
    rx, ry, rz = (math.radians(v / 3600) for v in shift[3:6])
    s = 1 + shift[6] * 1e-6
    return (s * (x - rz * y + ry * z) + shift[0], s * (rz * x + y - rx * z) + shift[1], s * (-ry * x + rx * y + z) + shift[2])


def dms(degrees, minutes=0, seconds=0.0):
    return math.copysign(abs(degrees) + minutes / 60 + seconds / 3600, degrees)
