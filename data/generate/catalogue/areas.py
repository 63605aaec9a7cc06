"""Boxes of longitude and latitude, and how much of one is covered by others."""
import math
from typing import NamedTuple


class Box(NamedTuple):
    """Degrees; one whose west lies east of its east crosses the antimeridian."""
    name: str
    west: float
    south: float
    east: float
    north: float


WORLD = Box('World', -180.0, -90.0, 180.0, 90.0)


def _parts(box):
    if box.west <= box.east:
        return [tuple(box)[1:]]
    return [(box.west, box.south, 180.0, box.north), (-180.0, box.south, box.east, box.north)]


def _size(west, south, east, north):
    return max(0.0, east - west) * max(0.0, math.sin(math.radians(north)) - math.sin(math.radians(south)))


def size(box):
    """Proportional to the surface on a sphere."""
    return sum(_size(*part) for part in _parts(box))


def common(a, b):
    """Size of the part that two boxes share."""
    return sum(_size(max(p[0], q[0]), max(p[1], q[1]), min(p[2], q[2]), min(p[3], q[3]))
               for p in _parts(a) for q in _parts(b))


def is_offshore(name):
    """Whether an area's name says that it holds sea only."""
    return 'offshore' in name.lower() and 'onshore' not in name.lower()


def coverage(target, boxes):
    """Share of the target that the best single box covers.

    The data set has boxes only: one that is offshore counts half for a target that is not.
    """
    whole = size(target)
    if whole <= 0:
        return 0.0

    def share(box):
        half = is_offshore(box.name) and not is_offshore(target.name)
        return common(target, box) / whole * (0.5 if half else 1.0)
    return max([share(box) for box in boxes], default=0.0)
