"""Expected latitudes of CylindricalEngines_test.cpp: what the Mercator inverse gives for the image of a latitude on the
ellipsoid of Clarke 1866 (f = 0.0033900753040885176), K = 1.

The image is exact to 50 digits ([Sny87] (7-7)); the inverse is [Sny87] (7-9) with powers of 2.71828 instead of (7-10)'s powers of e,
iterated until two successive values differ by no more than 1.1920928955078125e-6 rad.  Run: python3 mercator_inverse_expected.py
"""
from mpmath import mp, mpf, sin, log, atan, pi, sqrt, power

mp.dps = 50
f = mpf("0.0033900753040885176")
e = sqrt(2 * f - f * f)


def image(phi):
    s = sin(phi)
    return log((1 + s) / (1 - s) * power((1 - e * s) / (1 + e * s), e)) / 2


def inverse(q):
    t = power(mpf("2.71828"), -q)
    phi = pi / 2 - 2 * atan(t)
    while True:
        s = e * sin(phi)
        following = pi / 2 - 2 * atan(t * power((1 - s) / (1 + s), e / 2))
        done = abs(following - phi) <= mpf("1.1920928955078125e-6")
        phi = following
        if done:
            return phi


for degrees in (-60, 10, 45, 60, 85):
    got = inverse(image(mpf(degrees) * pi / 180)) * 180 / pi
    print(degrees, mp.nstr(got, 17), mp.nstr(got - degrees, 6))
