"""Keeps projections of different datums from comparing equal.

The transformer drops both projections when they compare equal, whatever the datums; a datum step would then run on projected
numbers.  So of systems on different datums that share a projection, all but one get another form of the same map.
"""
from collections import Counter, defaultdict

from . import conversions, ocf
from .projections import EQUICYL, HOTINE, LAMBERT, MERCATOR, POLYCONIC, STEREO, TM, UTM, Note

# The comparison's absolute tolerance for scales and angles is 1e-9.
STEP = 2e-9
_TOLERANCE = 1e-9
_WHY = 'to differ from other datums'
# Datums whose systems keep their form before all but those that coincide with WGS 84: WGS 72, of which the number of
# systems says too little beside that of its broadcast ephemeris.
_FIRST = {6322}


def kept(projection):
    """The projection that remains when it has been written."""
    return projection.altered(**{key: ocf.kept(getattr(projection, key)) for key in projection.keys()
                                 if not isinstance(getattr(projection, key), bool)})


def _same_ellipsoid(p, q):
    return (p.a, p.f) == (q.a, q.f) or (abs(p.a - q.a) < p.a / 1e6 and abs(p.f - q.f) < p.f)


def _same_parallels(p, q):
    def near(a, b):
        return all(abs(x - y) <= _TOLERANCE for x, y in zip(a, b))
    return near((p.lat1, p.lat2), (q.lat1, q.lat2)) or near((p.lat1, p.lat2), (q.lat2, q.lat1))


def projections_equal(p, q):
    """The library's comparison of two projections, either way round."""
    if p.method != q.method or not (_same_ellipsoid(p, q) or _same_ellipsoid(q, p)):
        return False
    for key in p.keys():
        a, b = getattr(p, key), getattr(q, key)
        if p.method == LAMBERT and key in ('lat1', 'lat2'):
            continue
        if isinstance(a, bool):
            if a != b:
                return False
        elif abs(a - b) > (max(abs(a), abs(b)) / 1e6 if key in ('xorg', 'yorg') else _TOLERANCE):
            return False
    return p.method != LAMBERT or _same_parallels(p, q)


def rescaled(p, factor):
    """The same map with Scale times `factor`: what else scales it is divided by that.

    K0 where the method has one, the standard parallels of a Lambert, the latitude of true scale of a Mercator.
    """
    if p.method in (TM, UTM, HOTINE, STEREO):
        changes = {'method': TM if p.method == UTM else p.method, 'kscale': p.kscale / factor}
    elif p.method == LAMBERT:
        lat1, lat2 = conversions.lambert_rescaled(p.lat1, p.lat2, factor, p.f)
        changes = {'lat1': lat1, 'lat2': lat2}
    elif p.method == MERCATOR:
        k0 = conversions.mercator_latitude_to_k0(p.lat0, p.f) / factor
        changes = {'lat0': conversions.mercator_k0_to_latitude(k0, p.f)}
    else:
        raise ValueError(p.method)
    note = Note('Scale times 1%+.0e, the rest divided by it: same map, %s' % (factor - 1, _WHY), False,
                'Scale off 1 by a few 1e-9, the rest divided by it: same map, ' + _WHY)
    return p.altered(note, scale=p.scale * factor, xorg=p.xorg / factor, yorg=p.yorg / factor, **changes)


def moved_origin(p, step):
    """The same map with its origin moved by `step` degrees northward and the false northing by the same arc.

    For the Polyconic, which has no scale factor.  Origin on the equator only.
    """
    if p.lat0 != 0:
        raise ValueError('origin away from the equator')
    note = Note('origin moved by %.0e degree and false northing with it: same map, %s' % (step, _WHY), False,
                'origin and false northing moved alike: same map, ' + _WHY)
    return p.altered(note, lat0=step, yorg=p.yorg + conversions.meridian_arc_at_equator(step, p.a, p.f))


def nudged(p, metres):
    """A map whose false northing of 0 has become a few nanometres, 1e-14 degrees: for the systems of angles."""
    note = Note('false northing of %.0e m: same map, %s' % (metres, _WHY), False,
                'false northing of nanometres: same map, ' + _WHY)
    return p.altered(note, yorg=metres)


def forms(p):
    """The projection as it is, then other forms of it, in order of preference."""
    yield p
    if p.method == UTM:
        yield p.altered(Note('UTM as Transverse Mercator: same map, ' + _WHY), method=TM)
    for distance in range(1, 10):
        for count in (distance, -distance):
            if p.method == POLYCONIC:
                yield moved_origin(p, count * STEP)
            elif p.method == EQUICYL:
                yield nudged(p, count * 1e-9)
            else:
                yield rescaled(p, 1 + count * STEP / min(1.0, p.scale))


def separate(systems):
    """Gives systems other forms until no two compare equal whose datums do not.

    @param systems  objects with `projection` (replaced), `datum`, `datum_key` (equal for datums that compare equal) and `code`
    @returns        {code: the projection it had} of those that were changed
    Datums that coincide with WGS 84 keep their form first, then WGS 72, those with the most systems, the lowest codes; last
    those without a way to WGS 84.
    """
    popular = Counter(s.datum_key for s in systems)
    near = defaultdict(list)
    nominal = {}

    def rank(s):
        return {'None': 0, 'Unknown': 3}.get(s.datum_key[0], 1 if s.datum in _FIRST else 2), -popular[s.datum_key], s.code
    for s in sorted(systems, key=rank):
        p = s.projection
        place = near[round((p.lon1 if p.method == HOTINE else p.lon0) % 360, 4)]
        for form in forms(p):
            form = kept(form)
            if not any(key != s.datum_key and projections_equal(form, other) for key, other in place):
                break
        else:
            raise RuntimeError('no form left for EPSG:%d' % s.code)
        if form.altered(notes=[]) != kept(p).altered(notes=[]):
            nominal[s.code] = kept(p)
        s.projection = form
        place.append((s.datum_key, form))
    return nominal
