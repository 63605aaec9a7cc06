#!/usr/bin/env python3
"""Makes land-110m.txt and land-50m.txt from the npm package world-atlas 2.0.2 (Natural Earth 4.1.0, public domain).

    npm pack world-atlas@2.0.2 && tar xzf world-atlas-2.0.2.tgz
    tests/data/world/make_land.py package/land-110m.json tests/data/world/land-110m.txt
    tests/data/world/make_land.py package/land-50m.json tests/data/world/land-50m.txt

The package's rings lie on the sphere: one that passes 180 degrees of longitude goes on at -180, and the ring of
Antarctica goes once around and never sees the pole.  The files have plain rings in the plane: the longitude goes on
beyond 180, with the middle of an outer ring within -180 to 180, and a ring around a pole is closed along a meridian, 90 degrees of latitude
and the meridian again, in steps of at most 5 degrees.  A ring without area is left out, and so is a hole of 0.001 degree at the pole.  Nothing else is
changed.

Format: lines of whole numbers.  "polygon R" is followed by R rings, each "ring N" and one line with N pairs: the first
point and then the differences, in units of 0.001 degree; the first point is not repeated at the end.
"""
import json
import sys

UNIT = 1e-3


def read_rings(path):
    topology = json.load(open(path))
    scale, origin = topology["transform"]["scale"], topology["transform"]["translate"]
    arcs = []
    for deltas in topology["arcs"]:
        x = y = 0
        arc = []
        for dx, dy in deltas:
            x, y = x + dx, y + dy
            arc.append((x * scale[0] + origin[0], y * scale[1] + origin[1]))
        arcs.append(arc)
    for geometry in topology["objects"]["land"]["geometries"]:
        for polygon in geometry["arcs"] if geometry["type"] == "MultiPolygon" else [geometry["arcs"]]:
            rings = []
            for numbers in polygon:
                ring = []
                for i in numbers:
                    arc = arcs[i] if i >= 0 else arcs[~i][::-1]
                    ring += arc[1:] if ring else arc
                rings.append(ring)
            yield rings


def unroll(ring):
    """The ring without jumps; it ends where it begins or one turn away."""
    out = [ring[0]]
    for x, y in ring[1:]:
        while x - out[-1][0] > 180.0:
            x -= 360.0
        while x - out[-1][0] < -180.0:
            x += 360.0
        out.append((x, y))
    return out


def steps(a, b, step=5.0):
    """Points from a (left out) to b (with it), at most a step apart."""
    n = max(1, int(max(abs(b[0] - a[0]), abs(b[1] - a[1])) / step + 0.999999))
    return [(a[0] + (b[0] - a[0]) * k / n, a[1] + (b[1] - a[1]) * k / n) for k in range(1, n + 1)]


def plane(ring):
    closed = unroll(ring)
    turn = closed[-1][0] - closed[0][0]
    if abs(turn) > 1.0:
        # Begin at 180 degrees, where the ring has a point.
        first = min(range(len(ring)), key=lambda i: 180.0 - abs(ring[i][0]))
        ring = ring[first:-1] + ring[:first + 1]
        start = (-180.0 if turn > 0 else 180.0, ring[0][1])
        closed = unroll([start] + ring[1:])
        pole = 90.0 if ring[0][1] > 0 else -90.0
        last = closed[-1]
        closed += steps(last, (last[0], pole)) + steps((last[0], pole), (start[0], pole))
        closed += steps((start[0], pole), start)
    whole = [(round(x / UNIT), round(y / UNIT)) for x, y in closed]
    return [p for i, p in enumerate(whole[:-1]) if i == 0 or p != whole[i - 1]]


def twice_area(ring):
    return sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(ring, ring[1:] + ring[:1]))


def moved(ring, centre):
    """The ring shifted by whole turns so that its middle lies as near to a longitude as can be."""
    middle = (min(x for x, y in ring) + max(x for x, y in ring)) / 2 * UNIT
    turns = round((middle - centre) / 360.0)
    return [(x - turns * 360000, y) for x, y in ring], middle - 360.0 * turns


def main(source, target):
    with open(target, "w") as out:
        for rings in read_rings(source):
            centre, planes = 0.0, []
            for ring in rings:
                ring, centre = moved(plane(ring), centre)
                planes.append(ring)
            rings = [ring for ring in planes if twice_area(ring) != 0 and max(y for x, y in ring) > -89990]
            if not rings:
                continue
            out.write("polygon %d\n" % len(rings))
            for ring in rings:
                numbers, last = [], (0, 0)
                for x, y in ring:
                    numbers.append("%d %d" % (x - last[0], y - last[1]))
                    last = (x, y)
                out.write("ring %d\n%s\n" % (len(ring), " ".join(numbers)))


main(sys.argv[1], sys.argv[2])
