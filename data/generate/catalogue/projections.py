"""EPSG methods and parameters as projections of the library.

Only what the library can do exactly: everything else raises LeftOut with the reason.  A conversion that the EPSG Terms of Use
do not list among the permitted ones makes a note that is not `listed`; such an entry is not attributed to EPSG.
"""
import copy
from dataclasses import dataclass, field
from typing import NamedTuple

from . import conversions, ellipsoids
from .database import degrees

# The library's methods: what each is called in the files, and its parameters in the order in which it saves them.
PARAMETERS = {
    'Unprojected Lat/Long': '',
    'Transverse Mercator': 'scale xorg yorg lon0 lat0 kscale',
    'Universal Transverse Mercator (UTM)': 'scale lon0 lat0 kscale bsouth',
    'Lambert Conformal Conic': 'scale xorg yorg lon0 lat0 lat1 lat2',
    'Albers Equal Area Conic': 'scale xorg yorg lon0 lat0 lat1 lat2',
    'Mercator': 'scale xorg yorg lon0 lat0',
    'Stereographic': 'scale xorg yorg lon0 lat0 kscale',
    'Cassini': 'scale xorg yorg lon0 lat0',
    'Polyconic': 'scale xorg yorg lon0 lat0',
    'Hotine Oblique Mercator': 'scale xorg yorg lon1 lon2 lat0 lat1 lat2 kscale busealpha alpha brotate buoffset',
    'Equidistant Cylindrical': 'scale xorg yorg lon0 lat1'}
TM, UTM, LAMBERT, ALBERS, MERCATOR, STEREO, CASSINI, POLYCONIC, HOTINE, EQUICYL = list(PARAMETERS)[1:]


class LeftOut(Exception):
    """A system that the library cannot express; the text is the reason."""


class Note(NamedTuple):
    """What was converted between the data set's numbers and an entry's."""
    text: str
    listed: bool = True  #: the conversion is among those that the EPSG Terms of Use permit under EPSG's name
    kind: str = ''       #: the text without this entry's numbers, where it has such

    def general(self):
        return self.kind or self.text


@dataclass
class Projection:
    """Names as in the files; angles degrees, xorg and yorg metres.  The map is (engine + origin) scale."""
    method: str
    ellipsoid: str
    a: float
    f: float
    scale: float = 1.0
    xorg: float = 0.0
    yorg: float = 0.0
    lon0: float = 0.0
    lon1: float = 0.0
    lon2: float = 0.0
    lat0: float = 0.0
    lat1: float = 0.0
    lat2: float = 0.0
    kscale: float = 1.0
    alpha: float = 0.0
    bsouth: bool = False
    busealpha: bool = False
    brotate: bool = False
    buoffset: bool = False
    notes: list = field(default_factory=list)

    def keys(self):
        return PARAMETERS[self.method].split()

    def altered(self, note=None, **changes):
        other = copy.copy(self)
        other.notes = self.notes + ([note] if note else [])
        for key, value in changes.items():
            setattr(other, key, value)
        return other


class Definition:
    """A projected system's conversion: parameters by EPSG code, in metres and degrees from Greenwich.

    @param meridian  degrees to add to longitudes: that of the prime meridian, or 0
    """

    def __init__(self, db, code, meridian):
        self._db, self.code, self.meridian = db, code, meridian
        self.row = db.projected[code]
        self.conversion = db.conversion[self.row['conversion_code']]
        self.method = self.conversion['method_code']
        self._values = db.parameters(self.conversion)
        datum = db.datum[db.geodetic[self.row['geodetic_crs_code']]['datum_code']]
        self.ellipsoid_code = datum['ellipsoid_code']
        self.a, self.f = db.ellipsoid(self.ellipsoid_code)
        self.axes = db.axes[self.row['coordinate_system_code']]
        self.unit = self.axes[0]['uom_code']

    def angle(self, code, default=None):
        return degrees(*self._values[code]) if code in self._values else default

    def longitude(self, code):
        return conversions.fold_meridian(self.angle(code), self.meridian)

    def northing_first(self):
        """Whether EPSG's order of axes is not easting, northing, which it always is here."""
        return self.axes[0]['orientation'] == 'north' or self.axes[0]['name'].lower().startswith('northing')

    def length(self, code):
        return self._db.metres(*self._values[code]) if code in self._values else 0.0

    def number(self, code, default=1.0):
        return self._values[code][0] if code in self._values else default

    def origin(self):
        return {'xorg': self.length(8806), 'yorg': self.length(8807)}

    def start(self, method, **parameters):
        """A projection of the library on the system's ellipsoid and in its unit."""
        scale = conversions.scale_of_unit(self._db.length_unit(self.unit))
        return Projection(method, ellipsoids.token(self.ellipsoid_code), self.a, self.f, scale=scale, **parameters)


def _scaled(projection, factor):
    """The same map drawn by an engine whose scale is smaller by `factor`."""
    return projection.altered(scale=projection.scale * factor, xorg=projection.xorg / factor, yorg=projection.yorg / factor)


# ---- one function for each method ------------------------------------------------------------------------------------

_METHODS = {}
_IMPOSSIBLE = {
    1027: 'spherical method on an ellipsoidal datum: which sphere is meant is not settled',
    1028: 'the library has the method on the sphere only; off by up to 17 km',
    1041: 'no such method in the library', 1042: 'no such method in the library', 1043: 'no such method in the library',
    9819: 'no such method in the library', 1052: 'no such method in the library', 1078: 'no such method in the library',
    9811: 'no such method in the library', 9813: 'no such method in the library', 9816: 'no such method in the library',
    9817: 'no such method in the library', 9824: 'no such method in the library', 9835: 'no such method in the library',
    9808: 'axes point west and south, and no scale may be negative', 9826: 'axes point west, and no scale may be negative',
    9828: 'axes point west and south, and no scale may be negative',
    9809: 'the library has the one-step form over the conformal latitude, EPSG the two-step form; 9 to 88 m apart',
    9820: 'the library has the method on the sphere only; 2 to 10 km apart',
    9831: 'the library has the method on the sphere only; 202 m apart',
    9832: 'the library has the method on the sphere only; 113 m apart',
    9833: 'the library has the plain Cassini; 3 m apart'}


def expresses(*methods):
    """Registers a function from a Definition to a Projection for these EPSG methods."""
    def register(function):
        _METHODS.update({method: function for method in methods})
        return function
    return register


@expresses(9807, 1111)
def _transverse_mercator(d):
    p = d.start(TM, lon0=d.longitude(8802), lat0=d.angle(8801), kscale=d.number(8805), **d.origin())
    zone = (p.lon0 + 183) % 6 == 0 and (p.kscale, p.lat0, p.xorg) == (0.9996, 0.0, 500000.0) and p.yorg in (0.0, 10000000.0)
    return p.altered(method=UTM, bsouth=p.yorg != 0) if zone and 'UTM' in d.conversion['name'] else p


@expresses(9801)
def _lambert_1sp(d):
    lat0, k0 = d.angle(8801), d.number(8805)
    parallels = conversions.lambert_1sp_to_2sp(lat0, k0, d.f)
    p = d.start(LAMBERT, lat0=lat0, lon0=d.longitude(8802), lat1=parallels.lat1, lat2=parallels.lat2, **d.origin())
    text, kind = 'one parallel %s and scale factor %s as two parallels' % (_text(lat0), _text(k0)), 'one parallel as two'
    if parallels.scale == 1.0:
        return p.altered(Note(text, kind=kind))
    return _scaled(p, parallels.scale).altered(Note(text + ' and Scale', False, kind + ' and Scale'))


@expresses(9802, 9803, 1051)
def _lambert_2sp(d):
    p = d.start(LAMBERT, lat0=d.angle(8821), lon0=d.longitude(8822), lat1=d.angle(8823), lat2=d.angle(8824),
                xorg=d.length(8826), yorg=d.length(8827))
    if p.lat1 == p.lat2:
        parallels = conversions.lambert_1sp_to_2sp(p.lat1, 1.0, d.f)
        p = _scaled(p.altered(Note('equal parallels as two and Scale', listed=False), lat1=parallels.lat1, lat2=parallels.lat2),
                    parallels.scale)
    elif abs(p.lat1 - p.lat2) <= 0.01:
        raise LeftOut('parallels nearly equal')
    if d.method == 9803:
        lon0 = conversions.lambert_belgium_lon0(p.lon0, p.lat1, p.lat2, d.f)
        p = p.altered(Note('angle of the Belgian variant in Lon0', listed=False), lon0=lon0)
    if d.method == 1051:
        factor = d.number(1038)
        p = _scaled(p, factor).altered(Note('ellipsoid scaling factor %s in Scale' % _text(factor), False,
                                              'ellipsoid scaling factor in Scale'))
    return p


@expresses(9822)
def _albers(d):
    return d.start(ALBERS, lat0=d.angle(8821), lon0=d.longitude(8822), lat1=d.angle(8823), lat2=d.angle(8824),
                   xorg=d.length(8826), yorg=d.length(8827))


@expresses(9806)
def _cassini(d):
    return d.start(CASSINI, lat0=d.angle(8801), lon0=d.longitude(8802), **d.origin())


@expresses(9818)
def _polyconic(d):
    return d.start(POLYCONIC, lat0=d.angle(8801), lon0=d.longitude(8802), **d.origin())


@expresses(9804)
def _mercator_a(d):
    k0 = d.number(8805)
    if d.angle(8801, 0.0) != 0 or k0 > 1:
        raise LeftOut('a latitude of origin, or a scale factor above 1')
    p = d.start(MERCATOR, lon0=d.longitude(8802), **d.origin())
    if k0 == 1:
        return p
    note = Note('scale factor %s as latitude of true scale' % _text(k0), kind='scale factor as latitude of true scale')
    return p.altered(note, lat0=conversions.mercator_k0_to_latitude(k0, d.f))


@expresses(9805)
def _mercator_b(d):
    return d.start(MERCATOR, lat0=d.angle(8823), lon0=d.longitude(8802), **d.origin())


@expresses(1024)
def _pseudo_mercator(d):
    """The method is the spherical Mercator with the ellipsoid's major radius."""
    if d.a != ellipsoids.SPHERE_RADIUS:
        raise LeftOut('no such sphere')
    return d.start(MERCATOR, lon0=d.longitude(8802), **d.origin()).altered(ellipsoid=ellipsoids.SPHERE_TOKEN, f=0.0)


@expresses(9810)
def _polar_stereographic_a(d):
    if abs(d.angle(8801)) != 90:
        raise LeftOut('origin not at a pole')
    return d.start(STEREO, lat0=d.angle(8801), lon0=d.longitude(8802), kscale=d.number(8805), **d.origin())


@expresses(9829, 9830)
def _polar_stereographic_b_c(d):
    parallel = d.angle(8832)
    p = d.start(STEREO, lat0=-90.0 if parallel < 0 else 90.0, lon0=d.longitude(8833),
                kscale=conversions.polar_stereographic_k0(parallel, d.f), **d.origin())
    if d.method == 9830:
        p = p.altered(xorg=d.length(8826), yorg=conversions.polar_stereographic_c_northing(d.length(8827), parallel, d.a, d.f))
    return p.altered(Note('standard parallel %s as scale factor at the pole' % _text(parallel),
                          kind='standard parallel as scale factor at the pole'))


@expresses(9812, 9815)
def _hotine(d):
    azimuth, rectified = d.angle(8813), d.angle(8814)
    if abs(azimuth - rectified) > 1e-9:
        raise LeftOut('the library rotates by the azimuth; the rectified grid angle differs, 1.8 to 4.5 km')
    p = d.start(HOTINE, lat0=d.angle(8811), lon1=d.longitude(8812), kscale=d.number(8815), busealpha=True,
                alpha=conversions.hotine_azimuth(azimuth), brotate=True, **d.origin())
    if d.method == 9815:
        p = p.altered(buoffset=True, xorg=d.length(8816), yorg=d.length(8817))
    return p if p.alpha == azimuth else p.altered(Note('azimuth %s as %s' % (_text(azimuth), _text(p.alpha)), listed=False))


def _text(value):
    return '%.15g' % value


# ---- the systems -----------------------------------------------------------------------------------------------------

def express(definition):
    """The library's projection for a system, or LeftOut."""
    reason = _IMPOSSIBLE.get(definition.method)
    if reason:
        raise LeftOut(reason)
    if {axis['orientation'] for axis in definition.axes[:2]} & {'west', 'south'}:
        raise LeftOut('axes point west or south, and no scale may be negative')
    if definition.method not in _METHODS:
        raise LeftOut('no such method in the library')
    p = _METHODS[definition.method](definition)
    if definition.meridian:
        p = p.altered(Note('central longitude counted from Greenwich', listed=False))
    return p


def of_angles(meridian, turn):
    """Longitudes from a meridian and latitudes themselves, as a map: the Equidistant Cylindrical of a sphere."""
    scale = conversions.angles_per_metre(turn, ellipsoids.SPHERE_RADIUS)
    return Projection(EQUICYL, ellipsoids.SPHERE_TOKEN, ellipsoids.SPHERE_RADIUS, 0.0, scale=scale, lon0=meridian)
