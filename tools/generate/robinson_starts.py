#!/usr/bin/env python3
"""Starts of the inverse of the Robinson projection's cubics, row by row.

    python3 tools/generate/robinson_starts.py        needs mpmath

For each row of kRobinsonDistance the degrees d from the row's node as a polynomial of u, the distance from it:
d = u (b1 + b2 u + b3 u^2 + b4 u^3), least squares at Chebyshev nodes.  The starts need no accuracy of their own:
one step of the fourth order from the worst of them, 0.002 degrees off, leaves less than round-off.
"""
import pathlib
import re
import struct

from mpmath import cos, lu_solve, matrix, mp, mpf, nstr, pi, polyval

mp.dps = 40
NODES = 40
TERMS = 4
SOURCE = pathlib.Path(__file__).resolve().parents[2] / "orv/projection/RobinsonTables.cpp"


def single(text):
    return mpf(struct.unpack("f", struct.pack("f", float(text)))[0])


def rows():
    table = SOURCE.read_text().split("kRobinsonDistance[")[1].split("};")[0]
    return [[single(c) for c in re.findall(r"(-?[\d.]+(?:e-\d+)?)f", line)] for line in re.findall(r"\{(-?[\d.].*)\}", table)]


def inverse(row, u):
    d = u / row[1]
    for _ in range(60):
        d -= (polyval([row[3], row[2], row[1], 0], d) - u) / polyval([3 * row[3], 2 * row[2], row[1]], d)
    return d


table = rows()
for row, following in zip(table, table[1:]):
    end = (following[0] - row[0]) * (1 + mpf("2e-4"))  # rows overshoot a little, and the pole's rim is 1e-6 wide
    points = [(1 + cos((i + mpf(1) / 2) * pi / NODES)) / 2 * end for i in range(NODES)]
    a, b = matrix(NODES, TERMS), matrix(NODES, 1)
    for i, u in enumerate(points):
        b[i] = inverse(row, u)
        for j in range(TERMS):
            a[i, j] = u**(j + 1)
    c = lu_solve(a, b)
    worst = max(abs(sum(a[i, j] * c[j] for j in range(TERMS)) - b[i]) for i in range(NODES))
    print("    {%s},  // error %s degrees" % (", ".join(nstr(v, 9) for v in c), nstr(worst, 2)))
