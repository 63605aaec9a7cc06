#!/usr/bin/env python3
"""Starts of Newton's iteration for Mollweide, Eckert IV and Eckert VI: polynomials fitted to the solution.

    python3 tools/generate/newton_starts.py        needs mpmath

Least squares of the relative error at Chebyshev nodes.  One step of third order follows, so a start must be within 1e-6 of the
solution; from any such fit it leads to the same solution within round-off.
"""
from mpmath import asin, cbrt, cos, findroot, lu_solve, matrix, mp, mpf, nstr, pi, sin, sqrt

mp.dps = 30
NODES = 60
FROM = mpf("0.01")  # the lower end: the ratio is smooth and even further down


def fit(title, point, low, high, terms):
    """ratio = sum of c_j x^j, where point(t) = (x, ratio)."""
    a, b = matrix(NODES, terms), matrix(NODES, 1)
    for i in range(NODES):
        x, ratio = point((low + high) / 2 + (high - low) / 2 * cos((i + mpf(1) / 2) * pi / NODES))
        b[i] = 1
        for j in range(terms):
            a[i, j] = x**j / ratio
    c = lu_solve(a, b)
    worst = max(abs(sum(a[i, j] * c[j] for j in range(terms)) - 1) for i in range(NODES))
    print("%s: %s, relative error %s" % (title, ", ".join(nstr(v, 17) for v in c), nstr(worst, 2)))
    assert worst < mpf("1e-6"), title


def by_latitude(left, whole):
    """theta / phi as a polynomial of phi^2, where left(theta) = whole sin phi."""
    def point(theta):
        phi = asin(left(theta) / whole)
        return phi * phi, theta / phi
    return point


def eckert4_near_pole(u):
    r = sqrt(u - sin(u) * cos(u) + 4 * sin(u / 2)**2)
    return r, u / r


def mollweide_near_pole(u):
    w = cbrt(6 * (u - sin(u)))
    return w * w, u / w


def eckert4(t):
    return t + sin(t) * cos(t) + 2 * sin(t)


def mollweide(t):
    return t + sin(t)


at1 = findroot(lambda t: eckert4(t) - (2 + pi / 2) * sin(1), (0.1, 1.5), solver="anderson")
fit("Eckert IV up to 1 rad", by_latitude(eckert4, 2 + pi / 2), FROM, at1 * mpf("1.001"), 5)
fit("Eckert IV near the pole", eckert4_near_pole, FROM, (pi / 2 - at1) * mpf("1.001"), 7)
at1 = findroot(lambda t: mollweide(t) - pi * sin(1), (0.1, 3), solver="anderson")
fit("Mollweide up to 1 rad", by_latitude(mollweide, pi), FROM, at1 * mpf("1.001"), 5)
fit("Mollweide near the pole", mollweide_near_pole, FROM, (pi - at1) * mpf("1.001"), 4)
fit("Eckert VI", by_latitude(mollweide, 1 + pi / 2), FROM, pi / 2 * mpf("0.9999"), 8)
