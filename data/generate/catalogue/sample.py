"""What the tests need to know beside the files."""
import random

from .ocf import short

SEED = 19840229
SYSTEMS, POINTS = 300, 5
_OF_EACH_METHOD = 8
_COLUMNS = ('scale', 'xorg', 'yorg', 'lon0', 'lat0', 'lat1', 'lat2', 'kscale')


def _line(cells):
    return '\t'.join(short(c) if isinstance(c, float) else str(c) for c in cells) + '\n'


def _inside(box, random_unit):
    """A point of the box, its edges and the poles left alone; the longitude rises eastward from the box's west."""
    east = box.east + 360 if box.east < box.west else box.east
    lon = box.west + (east - box.west) * (0.05 + 0.9 * random_unit())
    lat = box.south + (box.north - box.south) * (0.05 + 0.9 * random_unit())
    return round(lon, 6), round(max(-89.5, min(89.5, lat)), 6)


def _near(lon, centre):
    """A longitude's turn that is nearest to the central one: the library takes it as it is."""
    while lon > centre + 180:
        lon -= 360
    while lon < centre - 180:
        lon += 360
    return round(lon, 6)


def _centre(projection):
    return (projection.lon1 if 'lon1' in projection.keys() else projection.lon0) if projection else 0.0


def forms(systems):
    """The systems that got another form, with their projections as they were and a point inside the area."""
    lines = ['# Projections as EPSG has them of the systems that were given another form of the same map: the form must not\n',
             '# move points.  Made by data/generate/make_catalogue.py.\n',
             _line(('code', 'method', *_COLUMNS, 'bsouth', 'lon', 'lat'))]
    for s in systems.all():
        if s.code in systems.nominal:
            p = systems.nominal[s.code]
            lon, lat = _inside(s.boxes[0], lambda: 0.75)
            lines.append(_line((s.code, p.method, *(getattr(p, key) for key in _COLUMNS), int(p.bsouth),
                                _near(lon, _centre(p)), lat)))
    return ''.join(lines)


def _draw(systems, rng):
    """Some systems of each method, then such on datums that are not among them yet, then any."""
    order = sorted(systems.all(), key=lambda s: (rng.random(), s.code))
    kind = {s.code: (s.method, s.projection.method if s.projection else '') for s in order}
    drawn, methods, datums = [], {}, set()

    def take(s):
        drawn.append(s)
        methods[kind[s.code]] = methods.get(kind[s.code], 0) + 1
        datums.add(s.datum)
    for s in order:
        if methods.get(kind[s.code], 0) < _OF_EACH_METHOD:
            take(s)
    for fresh in (True, False):
        for s in order:
            if len(drawn) < SYSTEMS and s not in drawn and not (fresh and s.datum in datums):
                take(s)
    return sorted(drawn, key=lambda s: s.code)


def drawn(db, systems):
    """Systems for the comparison with a peer: points of each, from Greenwich on the system's own datum.

    `base` is the geographic system below, whose longitudes count from `meridian` in a unit of which `turn` make a circle;
    `operations` are EPSG's to WGS 84 in order, a negative one backward, "-" when none is needed, "none" when there is no way.
    """
    rng = random.Random(SEED)
    columns = ('token', 'code', 'base', 'meridian', 'turn', 'metres', 'operations')
    lines = ['# %d systems, drawn with the seed %d by data/generate/make_catalogue.py, and %d points of each.\n' %
             (SYSTEMS, SEED, POINTS),
             _line((*columns, *(axis + str(i) for i in range(POINTS) for axis in ('lon', 'lat'))))]
    for s in _draw(systems, rng):
        base_unit = db.axes[db.geodetic[s.base]['coordinate_system_code']][0]['uom_code']
        operations = '+'.join(map(str, s.way.operations)) or '-' if s.way else 'none'
        metres = float(db.length_unit(s.unit)) if s.unit else 0.0
        points = [_inside(s.boxes[0], rng.random) for _ in range(POINTS)]
        lines.append(_line((s.token(), s.code, s.base, s.meridian, 400 if base_unit == 9105 else 360, metres, operations,
                            *(v for lon, lat in points for v in (_near(lon, _centre(s.projection)), lat)))))
    return ''.join(lines)
