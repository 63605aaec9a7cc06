#!/usr/bin/env python3
"""The cosine of a third of an angle from the cosine of its half, for the cubic of Van der Grinten's inverse.

    python3 tools/generate/van_der_grinten_root.py        needs mpmath

Prints the quotient of two polynomials that is fitted to cos(2/3 acos s) over 0 <= s <= 1: least squares of
numerator - denominator * function at Chebyshev nodes, over the denominator of the round before, in four rounds.
The function is singular at s = -1, so that a quotient needs far fewer terms than a polynomial; all
coefficients are positive, so that nothing cancels.
"""
from mpmath import acos, cos, lu_solve, matrix, mp, mpf, nstr, pi

mp.dps = 60
NODES = 120
DEGREE = 6


def value(c, s):
    total = mpf(0)
    for k in reversed(c):
        total = total * s + k
    return total


def fit():
    nodes = [(1 + cos((i + mpf(1) / 2) * pi / NODES)) / 2 for i in range(NODES)]
    top, below = [], [mpf(1)]
    for _ in range(4):
        a, b = matrix(NODES, 2 * DEGREE + 1), matrix(NODES, 1)
        for i, s in enumerate(nodes):
            weight, w = 1 / value(below, s), cos(2 * acos(s) / 3)
            for j in range(DEGREE + 1):
                a[i, j] = weight * s**j
            for j in range(1, DEGREE + 1):
                a[i, DEGREE + j] = -weight * w * s**j
            b[i] = weight * w
        c = lu_solve(a, b)
        top, below = list(c[:DEGREE + 1]), [mpf(1)] + list(c[DEGREE + 1:])
    return top, below


top, below = fit()
top, below = [mpf(float(k)) for k in top], [mpf(float(k)) for k in below]
points = [mpf(i) / 5000 for i in range(5001)]
worst = max(abs(value(top, s) / value(below, s) - cos(2 * acos(s) / 3)) for s in points)
print("numerator  ", ", ".join(nstr(k, 17) for k in top))
print("denominator", ", ".join(nstr(k, 17) for k in below))
print("error with the coefficients as doubles", nstr(worst, 2))
