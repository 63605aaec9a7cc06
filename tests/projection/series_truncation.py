"""How far a point misses itself on the way through a series and its inverse, at 40 digits: the tolerances of the cases
TransverseMercatorEllipsoid, UTMEllipsoid and CassiniEllipsoid in CylindricalEngines_test.cpp, and of those that come
back by the footpoint series in ConicEngines_test.cpp and WorldEngines_test.cpp.  At the end how far the series of the
arc puts the Equidistant Conic from the exact one: the bounds of tests/peer/ConicPeer_test.cpp.

Series as printed: [Sny87] (8-9), (8-10), (8-17), (8-18), UTM with the next term of the last two; (13-7), (13-8), (13-10), (13-11); the
meridian arc (3-21) and its inverse (3-26).  Run: python3 series_truncation.py
"""
from mpmath import mp, mpf, sin, cos, tan, sqrt, hypot, radians, degrees, nstr, ellipe

mp.dps = 40
f = 1 / mpf("298.257223563")
e2 = 2 * f - f * f
ep2 = e2 / (1 - e2)
e1 = (1 - sqrt(1 - e2)) / (1 + sqrt(1 - e2))
c0 = 1 - e2 / 4 - 3 * e2**2 / 64 - 5 * e2**3 / 256
c2 = 3 * e2 / 8 + 3 * e2**2 / 32 + 45 * e2**3 / 1024
c4 = 15 * e2**2 / 256 + 45 * e2**3 / 1024
c6 = 35 * e2**3 / 3072


def arc(p):
    return c0 * p - c2 * sin(2 * p) + c4 * sin(4 * p) - c6 * sin(6 * p)


def footpoint(m):
    mu = m / c0
    return (mu + (3 * e1 / 2 - 27 * e1**3 / 32) * sin(2 * mu) + (21 * e1**2 / 16 - 55 * e1**4 / 32) * sin(4 * mu)
            + 151 * e1**3 / 96 * sin(6 * mu) + 1097 * e1**4 / 512 * sin(8 * mu))


def parts(p):
    w = 1 - e2 * sin(p)**2
    return 1 / sqrt(w), tan(p)**2, ep2 * cos(p)**2, w / (1 - e2)  # N, T, C, N/R


def tm_forward(p, L):
    N, T, C, _ = parts(p)
    A = L * cos(p)
    return (N * (A + (1 - T + C) * A**3 / 6 + (5 - 18 * T + T**2 + 72 * C - 58 * ep2) * A**5 / 120),
            arc(p) + N * tan(p) * (A**2 / 2 + (5 - T + 9 * C + 4 * C**2) * A**4 / 24
                                   + (61 - 58 * T + T**2 + 600 * C - 330 * ep2) * A**6 / 720))


def tm_inverse(x, y, longer):
    p = footpoint(y)
    N, T, C, ratio = parts(p)
    D = x / N
    b = (D**2 / 2 - (5 + 3 * T + 10 * C - 4 * C**2 - 9 * ep2) * D**4 / 24
         + (61 + 90 * T + 298 * C + 45 * T**2 - 252 * ep2 - 3 * C**2) * D**6 / 720)
    l = D - (1 + 2 * T + C) * D**3 / 6 + (5 - 2 * C + 28 * T - 3 * C**2 + 8 * ep2 + 24 * T**2) * D**5 / 120
    if longer:
        b -= (1385 + 3633 * T + 4095 * T**2 + 1575 * T**3) * D**8 / 40320
        l -= (61 + 662 * T + 1320 * T**2 + 720 * T**3) * D**7 / 5040
    return p - ratio * tan(p) * b, l / cos(p)


def cassini_forward(p, L):
    N, T, C, _ = parts(p)
    A = L * cos(p)
    return (N * (A - T * A**3 / 6 - (8 - T + 8 * C) * T * A**5 / 120),
            arc(p) + N * tan(p) * (A**2 / 2 + (5 - T + 6 * C) * A**4 / 24))


def cassini_inverse(x, y):
    p = footpoint(y)
    N, T, C, ratio = parts(p)
    D = x / N
    return (p - ratio * tan(p) * (D**2 / 2 - (1 + 3 * T) * D**4 / 24),
            (D - T * D**3 / 3 + (1 + 3 * T) * T * D**5 / 15) / cos(p))


for name, forward, inverse, widest in (
        ("Transverse Mercator", tm_forward, lambda x, y: tm_inverse(x, y, False), "3.5"),
        ("UTM", tm_forward, lambda x, y: tm_inverse(x, y, True), "3.5"),
        ("Cassini", cassini_forward, cassini_inverse, "3")):
    worst, at = 0, None
    for lat in range(0, 85):
        for part in range(1, 5):
            p, L = radians(mpf(lat)), radians(mpf(widest)) * part / 4
            q, l = inverse(*forward(p, L))
            miss = degrees(hypot(q - p, (l - L) * cos(p)))
            if miss > worst:
                worst, at = miss, (lat, part)
    print(name, "within", widest, "degrees:", nstr(worst, 4), "degrees, at", at)

worst, at = max((abs(degrees(footpoint(arc(radians(mpf(i) / 10))) - radians(mpf(i) / 10))), i / 10) for i in range(901))
print("footpoint latitude of an arc:", nstr(worst, 4), "degrees, at", at)


def equidistant_conic(a, f, lat0, lat1, lat2, south, north):
    """The largest distance, metres, of the map by the series from that by the exact arc."""
    e2 = 2 * f - f * f
    lat0, lat1, lat2 = radians(mpf(lat0)), radians(mpf(lat1)), radians(mpf(lat2))
    c = (1 - e2 / 4 - 3 * e2**2 / 64 - 5 * e2**3 / 256, 3 * e2 / 8 + 3 * e2**2 / 32 + 45 * e2**3 / 1024,
         15 * e2**2 / 256 + 45 * e2**3 / 1024, 35 * e2**3 / 3072)

    def series(p):
        return a * (c[0] * p - c[1] * sin(2 * p) + c[2] * sin(4 * p) - c[3] * sin(6 * p))

    def exact(p):
        return a * (ellipe(p, e2) - e2 * sin(p) * cos(p) / sqrt(1 - e2 * sin(p)**2))

    def m(p):
        return cos(p) / sqrt(1 - e2 * sin(p)**2)

    def point(M, p, L):
        n = a * (m(lat1) - m(lat2)) / (M(lat2) - M(lat1))
        G = a * m(lat1) / n + M(lat1)
        return (G - M(p)) * sin(n * L), G - M(lat0) - (G - M(p)) * cos(n * L)

    worst = 0
    for lat in range(south, north + 1, 5):
        for lon in range(0, 181, 30):
            p, L = radians(mpf(lat)), radians(mpf(lon))
            x, y = point(series, p, L)
            X, Y = point(exact, p, L)
            worst = max(worst, hypot(x - X, y - Y))
    return worst


for name, south, north in (("its own side", 0, 90), ("both sides", -90, 90)):
    print("Equidistant Conic of the peer test, " + name + ":",
          nstr(equidistant_conic(mpf("6377563.396"), 1 / mpf("299.3249646"), 23, 29.5, 45.5, south, north), 3), "m and",
          nstr(equidistant_conic(mpf(6378137), 1 / mpf("298.257223563"), -31.5, -18, -36, -north, -south), 3), "m")
