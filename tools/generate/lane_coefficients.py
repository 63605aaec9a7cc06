#!/usr/bin/env python3
"""Coefficients and split constants of orv/lanes/LaneMath.h.

Chebyshev fits in 60 digits (python3-mpmath), rounded to doubles; lowest order first.

    tools/generate/lane_coefficients.py                          prints all
    tools/generate/lane_coefficients.py --check HEADER...        fails when one of them stands in none of the headers

Each line says which function it serves, and the largest absolute error of the unrounded polynomial.
"""
import sys

from mpmath import asin, atan, chebyfit, cos, exp, factorial, floor, log, mp, mpf, pi, sin, sqrt

mp.dps = 60
PRINTED = []  # every number, as it is printed
TINY = mpf(10) ** -6
MARGIN = mpf("1.01")  # fitted a little beyond the range that is used


def show(numbers):
    texts = [repr(float(n)) for n in numbers]
    PRINTED.extend(texts)
    print(", ".join(texts))


def fit(name, function, low, high, terms):
    coefficients, error = chebyfit(function, [low, high], terms, error=True)
    print(f"// {name}, error {float(error):.1e}")
    show(reversed(coefficients))


def split(name, value, sizes):
    """value as a sum of doubles, each but the last with so many significant bits"""
    parts = []
    for bits in sizes:
        scale = mpf(2) ** (bits - 1 - floor(mp.log(abs(value), 2)))
        part = floor(value * scale) / scale
        parts.append(part)
        value -= part
    parts.append(value)
    print(f"// {name}")
    show(parts)


def series(z, terms):
    return sum(t * z**i for i, t in enumerate(terms))


def f_sin(z):  # sin r = r + r z f, z = r^2
    if z < TINY:
        return series(z, [mpf((-1) ** (k + 1)) / factorial(2 * k + 3) for k in range(6)])
    r = sqrt(z)
    return (sin(r) - r) / (r * z)


def f_cos(z):  # cos r = 1 - z/2 + z^2 f
    if z < TINY:
        return series(z, [mpf((-1) ** k) / factorial(2 * k + 4) for k in range(6)])
    r = sqrt(z)
    return (cos(r) - 1 + z / 2) / (z * z)


def f_log(z):  # ln((1 + s)/(1 - s)) = 2 s + s z f, z = s^2
    if z < TINY:
        return series(z, [mpf(2) / (2 * k + 3) for k in range(8)])
    s = sqrt(z)
    return (log((1 + s) / (1 - s)) / s - 2) / z


def f_exp(r):  # exp r = 1 + r + r^2 f
    if abs(r) < TINY:
        return series(r, [1 / factorial(k + 2) for k in range(9)])
    return (exp(r) - 1 - r) / (r * r)


def f_atan(z):  # atan q = q + q z f, z = q^2
    if z < TINY:
        return series(z, [mpf((-1) ** (k + 1)) / (2 * k + 3) for k in range(9)])
    q = sqrt(z)
    return (atan(q) / q - 1) / z


def f_asin(z):  # asin s = s + s z f, z = s^2
    if z < TINY:
        return series(z, [mpf(1) / 6, mpf(3) / 40, mpf(5) / 112, mpf(35) / 1152, mpf(63) / 2816])
    s = sqrt(z)
    return (asin(s) / s - 1) / z


q = pi / 4
fit("sin, |r| <= pi/4", f_sin, mpf(0), q * q * MARGIN, 6)
fit("cos, |r| <= pi/4", f_cos, mpf(0), q * q * MARGIN, 6)
s = (sqrt(2) - 1) / (sqrt(2) + 1)
fit("log, |s| <= 0.1716", f_log, mpf(0), s * s * MARGIN, 7)
fit("log_ratio, |s| <= 0.204", f_log, mpf(0), mpf("0.204") ** 2, 8)
h = log(2) / 2 * MARGIN
fit("exp, |r| <= ln 2 / 2", f_exp, -h, h, 10)
fit("expm1, |r| <= ln 2 / 2", f_exp, -h, h, 11)
fit("atan, |q| <= 1/2", f_atan, mpf(0), mpf("0.2505"), 12)
fit("asin, |s| <= 1/2", f_asin, mpf(0), mpf("0.2505"), 14)
split("pi/2 in three, two of 33 bits", pi / 2, [33, 33])
split("pi/2 in two", pi / 2, [53])
split("pi in two", pi, [53])
split("pi/4 in two", pi / 4, [53])
split("ln 2 in two, one of 32 bits", log(2), [32])
split("1 / ln 2", 1 / log(2), [])
split("2 / pi", 2 / pi, [])
split("ln 2.71828", log(mpf("2.71828")), [])

if sys.argv[1:2] == ["--check"]:
    text = "".join(open(path, encoding="utf-8").read() for path in sys.argv[2:])
    missing = [number for number in PRINTED if number.lstrip("-") not in text]
    if missing:
        sys.exit("not in the headers: " + ", ".join(missing))
