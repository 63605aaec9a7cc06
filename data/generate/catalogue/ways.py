"""How a geodetic datum gets to WGS 84: all ways that the data set's operations allow, and the one to take.

Geocentric transformations in three or seven parameters are used: Helmert (three; position vector; coordinate frame), either
form of Molodensky-Badekas, and changes of the prime meridian.  Grids and time-dependent operations are not.
"""
from collections import defaultdict
from dataclasses import dataclass, field, replace

from . import ellipsoids
from .areas import WORLD, common, coverage, size
from .conversions import Shift, arc_seconds, parts_per_million, position_vector, without_pivot
from .database import GREENWICH, degrees

WGS84, NAD83, NAD27, ED50 = 6326, 6269, 6267, 6230
NAD27_CANADA_OPERATION = 1172

# EPSG methods: three parameters; rotations in the coordinate frame sense; with a pivot; time-dependent; longitude rotation.
_THREE = {9603, 1031}
_FRAME = {9607, 1032, 9636}
_PIVOT = {1061, 1063, 9636}
_USABLE = _THREE | _FRAME | _PIVOT | {9606, 1033}
_TIME_DEPENDENT = {1053, 1056, 1065, 1066}
_LONGITUDE_ROTATION = 9601

# Ellipsoids of frames that are geocentric to a few metres by construction.
_GEOCENTRIC = {7019, 7030, 1024, 1025, 7031, 7032, 7033, 7054}

# Where the rules would choose another: NAD27 = conterminous United States, ED50 = mean of western Europe.
_PREFERRED = {NAD27: 1173, ED50: 1133}

_UNKNOWN_ACCURACY = 999


@dataclass
class Way:
    """From a datum to WGS 84 (or, while ways are built, to `target`)."""
    datum: int
    target: int = WGS84
    operations: tuple = ()    #: EPSG codes in order; one that runs backward is negative
    shift: Shift = Shift()
    meridian: float = 0.0     #: degrees to add to the datum's longitudes first
    accuracy: float = None    #: metres, or None
    boxes: list = field(default_factory=list)
    title: str = ''
    superseded: bool = False
    deprecated: bool = False
    kind: str = 'direct'      #: identity, direct, inverse, two steps, meridian, coincident
    pivot: bool = False       #: made of an operation with a pivot

    def codes(self):
        return [abs(code) for code in self.operations]

    def _rank(self):
        return self.accuracy if self.accuracy is not None else _UNKNOWN_ACCURACY


class Ways:
    def __init__(self, db):
        self._db = db
        self._cache = {}
        self._datum_of = {code: row['datum_code'] for code, row in db.geodetic.items()}
        self._steps = defaultdict(list)
        for row in db.helmert.values():
            if row['method_code'] in _USABLE and self._ends(row)[0] != self._ends(row)[1]:
                self._steps[self._ends(row)[0]].append(self._step(row))
        self._moving = {datum for row in db.helmert.values() if row['method_code'] in _TIME_DEPENDENT
                        for datum in self._ends(row)}
        #: datum: (the datum that it becomes when its longitudes change, degrees, EPSG code)
        self.rotation = {}
        for row in sorted(db.other.values(), key=lambda r: (r['deprecated'], r['code'])):
            if row['method_code'] == _LONGITUDE_ROTATION:
                source, target = self._ends(row)
                self.rotation.setdefault(source, (target, degrees(row['param1_value'], row['param1_uom_code']), row['code']))

    def _ends(self, row):
        return self._datum_of[row['source_crs_code']], self._datum_of[row['target_crs_code']]

    def _step(self, row):
        db, method = self._db, row['method_code']
        shift = Shift(*(db.metres(row[axis], row['translation_uom_code']) for axis in ('tx', 'ty', 'tz')))
        if method not in _THREE:
            rotations = (arc_seconds(row[axis], row['rotation_uom_code']) for axis in ('rx', 'ry', 'rz'))
            shift = Shift(*shift[:3], *rotations, parts_per_million(row['scale_difference'], row['scale_difference_uom_code']))
        if method in _FRAME:
            shift = position_vector(shift)
        if method in _PIVOT:
            shift = without_pivot(shift, *(db.metres(row[axis], row['pivot_uom_code']) for axis in ('px', 'py', 'pz')))
        source, target = self._ends(row)
        return Way(source, target, (row['code'],), shift, accuracy=row['accuracy'],
                   boxes=db.boxes('helmert_transformation', row['code']), title=row['name'],
                   superseded=row['code'] in db.superseded, deprecated=bool(row['deprecated']), pivot=method in _PIVOT)

    # ---- all ways ----------------------------------------------------------------------------------------------------

    def all(self, datum):
        """The ways of a datum, best ones first; of those with the same parameters the newest only."""
        if datum not in self._cache:
            self._cache[datum] = self._find(datum)
        return self._cache[datum]

    def _find(self, datum):
        if datum == WGS84:
            return [Way(datum, accuracy=0.0, boxes=[WORLD], title='World Geodetic System 1984 ensemble', kind='identity')]
        if datum in self.rotation:
            target, meridian, code = self.rotation[datum]
            return [replace(way, datum=datum, operations=(code, *way.operations), meridian=meridian, kind='meridian')
                    for way in self.all(target)]
        found = (self._direct(datum) or self._inverse(datum) or self._two_steps(datum) or self._behind_null(datum) or
                 self._coincident(datum))
        unique = {}
        for way in sorted(found, key=lambda w: (w.superseded, w._rank(), -max(w.codes(), default=0))):
            key = tuple(round(value, 7) for value in way.shift)
            if key in unique:
                unique[key].boxes = unique[key].boxes + [b for b in way.boxes if b not in unique[key].boxes]
            else:
                unique[key] = replace(way)
        return list(unique.values())

    def _current(self, datum, target=WGS84):
        return [step for step in self._steps[datum] if step.target == target and not step.deprecated]

    def _direct(self, datum):
        return self._current(datum) or [step for step in self._steps[datum] if step.target == WGS84]

    def _inverse(self, datum):
        return [replace(step, datum=datum, target=WGS84, operations=(-step.operations[0],), shift=step.shift.reversed(),
                        kind='inverse') for step in self._current(WGS84, datum)]

    def _two_steps(self, datum):
        """Over a datum that has an operation to WGS 84; one way for each first step, a null one preferred behind it."""
        found = []
        for first in self._steps[datum]:
            for second in self._current(first.target) if not first.deprecated else ():
                boxes = [b for b in first.boxes if any(common(b, c) > 0 for c in second.boxes)]
                if boxes:
                    has_null = first.shift.is_null() or second.shift.is_null()
                    found.append((has_null, replace(
                        first, target=WGS84, operations=first.operations + second.operations,
                        shift=first.shift.plus(second.shift), accuracy=(first.accuracy or 0) + (second.accuracy or 0),
                        boxes=boxes, title=first.title + ' + ' + second.title, kind='two steps',
                        superseded=first.superseded or second.superseded, pivot=first.pivot or second.pivot)))
        best = {}
        for _, way in sorted(found, key=lambda f: (not f[0], f[1].accuracy)):
            best.setdefault(way.operations[0], way)
        return list(best.values())

    def _behind_null(self, datum):
        """A null step backward to a datum that has an operation to WGS 84."""
        return [replace(second, datum=datum, operations=(-first.operations[0], *second.operations),
                        title=first.title + ' + ' + second.title, kind='two steps')
                for steps in list(self._steps.values()) for first in steps
                if first.target == datum and not first.deprecated and first.shift.is_null()
                for second in self._current(first.datum)]

    def _coincident(self, datum):
        """Modern geocentric frames without such an operation are taken as WGS 84, which they are within 2 m."""
        row = self._db.datum[datum]
        if row['ellipsoid_code'] not in _GEOCENTRIC or row['prime_meridian_code'] != GREENWICH:
            return []
        if 'Intermediate' in row['name'] or row['name'].startswith('Not specified'):
            return []  # work frames that a grid defines
        modern = (row['name'].startswith(('NAD83', 'North American Datum of 1983')) or datum in self._moving or
                  row['frame_reference_epoch'] is not None or row['ensemble_accuracy'] is not None or
                  row['ellipsoid_code'] == 1024 or (row['publication_date'] or '0') >= '1984')
        if not modern:
            return []
        return [Way(datum, accuracy=2.0, boxes=self._db.datum_boxes(datum) or [WORLD], kind='coincident',
                    title='modern geocentric frame without an operation to WGS 84 in EPSG')]

    # ---- one way -----------------------------------------------------------------------------------------------------

    def default(self, datum):
        """The way of a datum's own entry, or None.

        Of those that cover its area best: on a modern ellipsoid a null shift; else the most accurate, a null shift first, then
        the widest, then the newest.
        """
        ways = self.all(datum)
        if not ways:
            return None
        if ways[0].kind == 'meridian':
            target = self.default(self.rotation[datum][0])
            return next(way for way in ways if way.shift == target.shift)
        for way in ways:
            if _PREFERRED.get(datum) in way.codes():
                return way
        ways = [way for way in ways if not way.superseded] or ways
        area = (self._db.datum_boxes(datum) or [WORLD])[0]
        covered = [coverage(area, way.boxes) for way in ways]
        good = [(way, share) for way, share in zip(ways, covered) if share >= max(covered) - 0.1]
        null = [way for way, _ in good if way.shift.is_null()]
        if null and self._db.datum[datum]['ellipsoid_code'] in _GEOCENTRIC:
            return min(null, key=Way._rank)
        return min(good, key=lambda g: (g[0]._rank(), not g[0].shift.is_null(), -round(g[1], 2),
                                        -max(g[0].codes(), default=0)))[0]

    def for_area(self, datum, box):
        """The default way, unless it covers less than half of the area and another covers more."""
        default = self.default(datum)
        if default is None or coverage(box, default.boxes) >= 0.5:
            return default
        ways = [way for way in self.all(datum) if not way.superseded] or self.all(datum)
        covered = [coverage(box, way.boxes) for way in ways]
        if max(covered) <= coverage(box, default.boxes) + 1e-9:
            return default
        good = [(way, share) for way, share in zip(ways, covered) if share >= max(covered) - 0.1]
        return min(good, key=lambda g: (g[0]._rank(), -round(g[1], 2), sum(size(box) for box in g[0].boxes)))[0]

    def is_none(self, way):
        """Whether the library's method None serves: a null shift on the WGS 84 ellipsoid or one like it."""
        a, f = self._db.ellipsoid(self._db.datum[way.datum]['ellipsoid_code'])
        return way.shift.is_null() and way.meridian == 0 and abs(a - ellipsoids.SPHERE_RADIUS) < 1e-6 and \
            f != 0 and abs(1 / f - 298.257) < 0.001
