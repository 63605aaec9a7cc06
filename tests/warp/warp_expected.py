#!/usr/bin/python3
"""Expected values of the warp tests, computed independently of the library.

The fits are solved as normal equations in exact fractions, so that every printed digit is good, and checked against
numpy's lstsq.  The solver rows follow the stated elimination literally in Python's doubles: they pin each rounding.

    /usr/bin/python3 tests/warp/warp_expected.py > tests/warp/warp_expected.inc

regenerates the rows that WarpExpected.h includes.  Needs numpy.  Nothing is random.
"""
from decimal import Decimal, getcontext
from fractions import Fraction as F

import numpy as np

getcontext().prec = 40

# x, y, X, Y.  Source coordinates are exact in binary; the destinations are no polynomial of them.
CLOUD = [
    (-1.5, -0.75, 1032.5, 2077.25), (2.25, -1.125, 1391.0, 1985.5), (1.75, 2.0, 1290.25, 2311.0),
    (-1.0, 1.625, 1021.75, 2329.5), (0.25, 0.375, 1187.5, 2201.75), (0.5, -1.75, 1251.0, 1940.25),
    (-0.625, 0.5, 1088.25, 2198.0), (1.125, 0.875, 1264.75, 2245.5), (2.5, 0.625, 1399.5, 2186.25),
    (-1.875, 0.625, 957.25, 2252.0), (0.75, 1.375, 1223.0, 2299.75), (-0.25, -1.25, 1148.5, 2007.5),
    (1.5, -0.5, 1322.75, 2078.0), (-1.25, 2.25, 980.0, 2418.75), (2.0, 1.25, 1330.5, 2263.5),
    (0.0, 2.375, 1114.25, 2403.0),
]
QUERIES = [(0.3125, 0.1875), (-1.375, 1.0), (2.25, -0.875), (3.5, -2.5)]

# An image on a map grid: pixels to metres.
SHEET = [
    (12.5, 9.0, 431207.25, 5413988.5), (628.0, 14.25, 437356.0, 5413322.75), (631.5, 470.0, 436877.5, 5408779.25),
    (8.0, 466.75, 430668.75, 5409437.5), (320.0, 240.0, 434041.5, 5411379.0),
]

EXPONENTS = [(0, 0), (1, 0), (0, 1), (2, 0), (1, 1), (0, 2), (3, 0), (2, 1), (1, 2), (0, 3)]
BILINEAR = [(0, 0), (1, 0), (0, 1), (1, 1)]
METHODS = {3: EXPONENTS[:3], 4: BILINEAR, 5: EXPONENTS[:6], 6: EXPONENTS}


def solve(a, b):
    """Gauss-Jordan in exact fractions."""
    n = len(a)
    rows = [list(map(F, r)) + [F(v)] for r, v in zip(a, b)]
    for k in range(n):
        p = next(r for r in range(k, n) if rows[r][k] != 0)
        rows[k], rows[p] = rows[p], rows[k]
        rows[k] = [v / rows[k][k] for v in rows[k]]
        for r in range(n):
            if r != k:
                rows[r] = [v - rows[r][k] * w for v, w in zip(rows[r], rows[k])]
    return [row[n] for row in rows]


def least_squares(matrix, right):
    n = len(matrix[0])
    a = [[sum(row[j] * row[k] for row in matrix) for k in range(n)] for j in range(n)]
    b = [sum(row[j] * v for row, v in zip(matrix, right)) for j in range(n)]
    solution = solve(a, b)
    peer = np.linalg.lstsq(np.array(matrix, dtype=float), np.array(right, dtype=float), rcond=None)[0]
    assert np.allclose([float(v) for v in solution], peer, rtol=1e-8, atol=1e-8), (solution, peer)
    return solution


def number(value):
    return "%.17g" % float(value)


def root(value):
    return (Decimal(value.numerator) / Decimal(value.denominator)).sqrt()


def mean_distance(pairs):
    distances = [root((X - x) ** 2 + (Y - y) ** 2) for (x, y), (X, Y) in pairs]
    return sum(distances) / len(distances)


def row(head, parts):
    print("    {%s,\n     %s}," % (head, ",\n     ".join("{%s}" % ", ".join(map(number, part)) for part in parts)))


def points(name, values):
    print("inline constexpr double %s[][4] = {" % name)
    for value in values:
        print("    {%s}," % ", ".join(map(number, value)))
    print("};")


def polynomial_rows():
    print("// method, control points used, mean residual; terms of X; terms of Y; X and Y of the queries")
    print("inline constexpr FitRow kFits[] = {")
    for method, exponents in METHODS.items():
        for used in (len(exponents), len(exponents) + 3, len(CLOUD)):
            cloud = [tuple(map(F, c)) for c in CLOUD[:used]]
            def terms(x, y):
                return [F(x) ** i * F(y) ** j for i, j in exponents]
            matrix = [terms(x, y) for x, y, _, _ in cloud]
            e = least_squares(matrix, [c[2] for c in cloud])
            n = least_squares(matrix, [c[3] for c in cloud])
            def image(x, y):
                t = terms(x, y)
                return sum(v * w for v, w in zip(e, t)), sum(v * w for v, w in zip(n, t))
            mean = mean_distance([(image(c[0], c[1]), (c[2], c[3])) for c in cloud])
            images = [image(*q) for q in QUERIES]
            row("%d, %d, %s" % (method, used, number(mean)),
                [e, n, [i[0] for i in images], [i[1] for i in images]])
    print("};")


def helmert_rows():
    print("// control points used, mean residual; a, b, c, d; X and Y of the point (100.25, 301.5)")
    print("inline constexpr HelmertRow kHelmerts[] = {")
    for used in (2, 5):
        sheet = [tuple(map(F, c)) for c in SHEET[:used]]
        matrix, right = [], []
        for x, y, X, Y in sheet:  # the similarity's own design matrix, unknowns a, b, c, d
            matrix += [[x, -y, F(1), F(0)], [y, x, F(0), F(1)]]
            right += [X, Y]
        a, b, c, d = least_squares(matrix, right)
        def image(x, y):
            return a * x - b * y + c, b * x + a * y + d
        mean = mean_distance([(image(s[0], s[1]), (s[2], s[3])) for s in sheet])
        row("%d, %s" % (used, number(mean)), [[a, b, c, d], image(F("100.25"), F("301.5"))])
    print("};")


def offset_row():
    count = len(SHEET)
    print("// the mean shift over all points of kSheet")
    print("inline constexpr double kShift[2] = {%s, %s};" % tuple(
        number(sum(F(c[2 + k]) - F(c[k]) for c in SHEET) / count) for k in range(2)))


def eliminate(a, bx, by, later=False):
    """The elimination in doubles.  later: a tie takes the later row, which is wrong."""
    n = len(a)
    a, bx, by = [list(r) for r in a], list(bx), list(by)
    for k in range(n):
        p = k
        for r in range(k + 1, n):
            if abs(a[r][k]) > abs(a[p][k]) or (later and abs(a[r][k]) == abs(a[p][k])):
                p = r
        for v in (a, bx, by):
            v[k], v[p] = v[p], v[k]
        for r in range(n):
            if r == k:
                continue
            multiple = a[r][k] / a[k][k]
            for j in range(k, n):
                a[r][j] -= multiple * a[k][j]
            bx[r] -= multiple * bx[k]
            by[r] -= multiple * by[k]
    return [bx[k] / a[k][k] for k in range(n)], [by[k] / a[k][k] for k in range(n)]


# The first column ties; no smaller pivot would do.
SYSTEM = (
    [[0.25, 1.3, -0.7, 2.9], [3.1, -0.2, 1.7, 0.6], [-3.1, 2.3, 0.9, -1.1], [3.1, 1.9, -2.3, 0.3]],
    [1.1, -2.7, 0.9, 3.3], [0.7, 5.9, -1.3, 2.1],
)


def solver_row():
    x, y = eliminate(*SYSTEM)
    assert (x, y) != eliminate(*SYSTEM, later=True), "the tie does not show"
    print("// the system's matrix, right-hand sides, and solutions to the last bit")
    print("inline constexpr double kSystem[4][4] = {%s};" % ", ".join("{%s}" % ", ".join(map(number, r)) for r in SYSTEM[0]))
    for name, values in (("RightX", SYSTEM[1]), ("RightY", SYSTEM[2]), ("SolutionX", x), ("SolutionY", y)):
        print("inline constexpr double k%s[4] = {%s};" % (name, ", ".join(map(number, values))))


print("// Made by tests/warp/warp_expected.py; not to be edited.  clang-format off")
points("kCloud", CLOUD)
points("kSheet", SHEET)
print("inline constexpr double kQueries[][2] = {%s};" % ", ".join("{%s}" % ", ".join(map(number, q)) for q in QUERIES))
polynomial_rows()
helmert_rows()
offset_row()
solver_row()
