#!/usr/bin/python3
"""Expected values of ImageRegistration_test.cpp, computed independently of the library.

The bordered system [K P; P' 0] [w; a] = [d; 0] is set up and solved in 50-digit decimal arithmetic (numpy object
arrays, Gaussian elimination with partial pivoting), so that every printed digit of the values is good; the library
solves the same problem in double precision on the null space of P'.

    /usr/bin/python3 tests/shared/image_registration_expected.py

prints the lines that stand between the two "generated" marks of the test.  Needs numpy.
"""
from decimal import Decimal, getcontext

import numpy as np

getcontext().prec = 50

# Each cloud: rows x, y, X, Y of control points; then the points x, y where the warps are evaluated.
CLOUDS = {
    # A scanned sheet, 640 by 480 pixels, y downwards, turned a little, on a grid in metres.
    "Scan": (
        [
            (12.5, 9.0, 431207.25, 5413988.5),
            (628.0, 14.25, 437356.0, 5413322.75),
            (631.5, 470.0, 436877.5, 5408779.25),
            (8.0, 466.75, 430668.75, 5409437.5),
            (320.0, 240.0, 434041.5, 5411379.0),
            (150.25, 333.5, 432216.25, 5410633.75),
            (471.75, 120.5, 435681.0, 5412411.25),
            (402.0, 391.0, 434690.5, 5409802.0),
        ],
        [(320.0, 241.0), (100.0, 100.0), (555.5, 300.25), (13.0, 460.0), (-250.0, 900.0)],
    ),
    # Local metres, an elongated box on both sides of the axes, mirrored and rough displacements.
    "Field": (
        [
            (-1200.0, 35.0, 8.0, -3.0),
            (-840.5, -22.0, 5.5, 0.25),
            (-610.25, 61.5, 4.25, -5.0),
            (-333.0, 3.0, 2.0, 1.0),
            (-12.0, -48.75, 0.5, 3.5),
            (77.5, 54.0, -1.0, -4.75),
            (260.0, -5.5, -1.5, 0.0),
            (501.0, 40.25, -4.0, -2.5),
            (690.75, -60.0, -4.25, 4.5),
            (915.0, 12.0, -6.5, -1.75),
            (1180.0, -30.5, -7.0, 2.25),
        ],
        [(0.0, 0.0), (-1000.0, -40.0), (503.0, 40.0), (880.0, 60.0), (2500.0, 300.0)],
    ),
}

PHI = [  # of r squared
    ("ThinPlateSpline", lambda s: Decimal(0) if s == 0 else s * s.sqrt().ln()),
    ("NaturalCubicSpline", lambda s: s.sqrt() ** 3),
    ("MarcovSpline", lambda s: (-s.sqrt()).exp()),
    ("ExponentialSpline", lambda s: (-s).exp()),
    ("RationalQuadraticSpline", lambda s: 1 / (1 + s)),
]


def solve(matrix, right):
    """Gaussian elimination with partial pivoting; right has one column for each right-hand side."""
    a = np.concatenate([matrix, right], axis=1)
    n = len(matrix)
    for k in range(n):
        pivot = k + max(range(n - k), key=lambda i: abs(a[k + i, k]))
        a[[k, pivot]] = a[[pivot, k]]
        a[k] = a[k] / a[k, k]
        for i in range(n):
            if i != k:
                a[i] = a[i] - a[i, k] * a[k]
    return a[:, n:]


def decimals(rows):
    return np.array([[Decimal(value) for value in row] for row in rows], dtype=object)


def evaluate(method_phi, controls, queries):
    control, query = decimals(controls), decimals(queries)
    low, high = control[:, :2].min(axis=0), control[:, :2].max(axis=0)
    node, at = (control[:, :2] - low) / (high - low), (query - low) / (high - low)
    target = control[:, 2:]
    n = len(node)

    def basis(points):
        return np.concatenate([decimals([[1]] * len(points)), points], axis=1)

    def squares(points):
        return np.array([[((p - q) ** 2).sum() for q in node] for p in points], dtype=object)

    P, Q = basis(node), basis(at)
    if method_phi is None:
        affine = solve(P.T.dot(P), P.T.dot(target))
        residual = target - P.dot(affine)
        weight = 1 / squares(at)
        return Q.dot(affine) + weight.dot(residual) / weight.sum(axis=1)[:, None]

    phi = np.vectorize(method_phi, otypes=[object])
    zero = decimals([[0] * 3] * 3)
    system = np.block([[phi(squares(node)), P], [P.T, zero]])
    solution = solve(system, np.concatenate([target, zero[:, :2]]))
    return phi(squares(at)).dot(solution[:n]) + Q.dot(solution[n:])


def main():
    for name, (controls, queries) in CLOUDS.items():
        print(f"const Pair k{name}[] = {{")
        for row in controls:
            print("    {%r, %r, %r, %r}," % row)
        print("};")
    print("const ExpectedRow kExpected[] = {")
    for method, phi in PHI + [("InverseDistanceSquared", None)]:
        for name, (controls, queries) in CLOUDS.items():
            for (x, y), (X, Y) in zip(queries, evaluate(phi, controls, queries)):
                print(f"    {{WarpingMethod{method}, Cloud::{name}, {x!r}, {y!r}, {float(X)!r}, {float(Y)!r}}},")
    print("};")


if __name__ == "__main__":
    main()
