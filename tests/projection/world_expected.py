#!/usr/bin/env python3
"""Expected values of WorldEngines_test.cpp, on a sphere of radius 6378137: the printed equations of
[Sny87] at 60 digits, the table of the Robinson projection in exact arithmetic on its single-precision numbers."""
import struct
from fractions import Fraction

from mpmath import asin, cos, findroot, mp, mpf, pi, polyroots, radians, sin, sqrt, tan

mp.dps = 60
A = mpf(6378137)


def mollweide(lam, phi):
    # bisection: at the pole the root is triple
    low, high = mpf(0), pi
    for _ in range(400):
        mid = (low + high) / 2
        low, high = (mid, high) if mid + sin(mid) < pi * sin(phi) else (low, mid)
    theta = low / 2
    return sqrt(8) / pi * A * lam * cos(theta), sqrt(2) * A * sin(theta)


def eckert4(lam, phi):
    low, high = mpf(0), pi / 2
    for _ in range(400):
        mid = (low + high) / 2
        value = mid + sin(mid) * cos(mid) + 2 * sin(mid)
        low, high = (mid, high) if value < (2 + pi / 2) * sin(phi) else (low, mid)
    return 2 / sqrt(pi * (4 + pi)) * A * lam * (1 + cos(low)), 2 * sqrt(pi / (4 + pi)) * A * sin(low)


def eckert6(lam, phi):
    theta = findroot(lambda t: t + sin(t) - (1 + pi / 2) * sin(phi), phi)
    return A * lam * (1 + cos(theta)) / sqrt(2 + pi), 2 * A * theta / sqrt(2 + pi)


def van_der_grinten(lam, phi):
    theta = asin(abs(2 * phi / pi))
    a = abs(pi / lam - lam / pi) / 2
    g = cos(theta) / (sin(theta) + cos(theta) - 1)
    p = g * (2 / sin(theta) - 1)
    q = a * a + g
    u = p * p + a * a
    x = pi * A * (a * (g - p * p) + sqrt(a**2 * (g - p * p) ** 2 - u * (g * g - p * p))) / u
    y = pi * A * (p * q - a * sqrt((a * a + 1) * u - q * q)) / u
    return x, y


def van_der_grinten_latitude(x, y):
    """x, y: doubles, on a sphere of radius 1.  The smallest positive root of the cubic of (29-11) to (29-13)."""
    X, Y = mpf(x) / pi, abs(mpf(y)) / pi
    r2 = X * X + Y * Y
    c1 = -Y * (1 + r2)
    c2 = c1 - 2 * Y * Y + X * X
    c3 = -2 * c1 + 1 + 2 * Y * Y + r2 * r2
    roots = polyroots([c3, c2, c1, Y * Y], maxsteps=500, extraprec=300)
    return pi * min(root.real for root in roots if root.real > 0 and abs(root.imag) < mpf(10) ** -25)


def single(text):
    return Fraction(struct.unpack("f", struct.pack("f", float(text)))[0])


def robinson(lam, phi, length, distance):
    """lam, phi: doubles, radians; the rows are those of the table that holds phi."""
    i = int(Fraction(phi) * Fraction(11.459156036376953))
    i = min(i, 17)
    d = (Fraction(phi) - i * single("0.08726646")) * Fraction(57.29577951308232)
    value = lambda row: sum(single(c) * d**k for k, c in enumerate(row))
    return (float(value(length) * Fraction(0.8486999869346619) * Fraction(lam) * 6378137),
            float(value(distance) * Fraction(1.3523000478744507) * 6378137))


def show(name, lon, lat, xy):
    print(f"{name:16} {{{lon}, {lat}, {mp.nstr(xy[0], 17)}, {mp.nstr(xy[1], 17)}}},")


for name, f in (("Mollweide", mollweide), ("Eckert IV", eckert4), ("Eckert VI", eckert6),
                ("Van der Grinten", van_der_grinten)):
    for lon, lat in ((170, 30), (170, 57.5), (170, 80), (170, 89.9999), (170, 89.9999999), (1e-9, 30), (0.6, 60),
                     (170, 1e-9), (1e-6, 89.999), (180, 45)):
        # the angles are doubles: phi as the library computes it
        lam, phi = mpf(lon * 3.141592653589793 / 180.0), mpf(lat * 3.141592653589793 / 180.0)
        show(name, lon, lat, f(lam, phi))

# from the middle of the disc to its rim, where two roots of the cubic meet, the Equator and the poles
for x, y in ((1.0, 1.5), (2.5, 1.9), (2.5, 1.9025), (2.5, 1.902525795), (2.5, 1.9025257951179), (0.25, 3.13162967),
             (3.14, 0.1), (3.1415926535, 0.00002), (2.0, 1e-9), (1e-9, 3.1415), (1e-7, 3.14159265)):
    print(f"Van der Grinten  {{{x!r}, {y!r}, {mp.nstr(van_der_grinten_latitude(x, y), 17)}}},")

rad = lambda degrees: degrees * 3.141592653589793 / 180.0
rows = {
    2.5: (("1.0", "-0.0", "-7.1551e-05", "3.11e-06"), ("0.0", "0.0124", "0.0", "1e-09")),
    37.5: (("0.9427", "-0.00382792", "-6.5343e-05", "-2.615e-06"), ("0.434", "0.0125501", "5.2003e-05", "-1.0005e-05")),
    43.25: (("0.9216", "-0.00467747", "-0.000104566", "4.812e-06"), ("0.4968", "0.0123198", "-9.8073e-05", "9.224e-06")),
    78.0: (("0.6732", "-0.00986209", "-0.000199572", "1.9198e-05"), ("0.8936", "0.00969679", "-6.4613e-05", "-8.549e-06")),
    90.0: (("0.5722", "-0.00906601", "0.000181999", "6.24e-06"), ("0.9761", "0.00616525", "-0.000256001", "-4.21e-06")),
}
for lat, (length, distance) in rows.items():
    x, y = robinson(rad(170.0), rad(lat), length, distance)
    print(f"Robinson         {{170, {lat}, {x!r}, {y!r}}},")
