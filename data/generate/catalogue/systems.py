"""The systems: every current geographic 2-D and projected one of the data set that the library can express."""
from dataclasses import dataclass

from . import ocf, projections, shortcut
from .database import GREENWICH
from .datums import prefix
from .projections import LeftOut, Note

_GRADS = (9105, 9106)


@dataclass
class System:
    code: int
    name: str          #: EPSG's own
    group: str
    datum: int         #: the one whose entry it takes: from Greenwich
    way: object        #: or None
    datum_key: tuple
    projection: object
    boxes: list
    method: int = 0    #: EPSG method, 0 for geographic ones
    unit: int = 0
    base: int = 0      #: EPSG code of the geographic system below
    meridian: float = 0.0        #: degrees east of Greenwich that the base system's longitudes count from
    northing_first: bool = False #: in EPSG; here easting always is

    def token(self):
        return '%s:%d' % (prefix(self.projection.notes if self.projection else []), self.code)


class Systems:
    def __init__(self, db, ways, datums):
        self._db, self._ways, self._datums = db, ways, datums
        self.geographic = [self._geographic(code) for code in db.current(db.geodetic)
                           if db.geodetic[code]['type'] == 'geographic 2D']
        self.projected, self.left_out = [], []   #: the second holds (Definition, reason)
        for code in db.current(db.projected):
            try:
                self.projected.append(self._projected(code))
            except LeftOut as why:
                self.left_out.append((projections.Definition(db, code, 0.0), str(why)))
        #: {code: projection} of those that got another form, as they were
        self.nominal = shortcut.separate([s for s in self.geographic if s.projection] + self.projected)

    def all(self):
        return self.geographic + self.projected

    def _datum(self, code):
        """The datum from Greenwich, and the degrees that the system's longitudes count from it.

        A datum with a meridian of its own that no operation changes has none from Greenwich: it stays, and has no way to WGS 84
        either, so that longitudes on it may be taken from Greenwich too.
        """
        datum = self._db.geodetic[code]['datum_code']
        meridian = self._db.datum[datum]['prime_meridian_code']
        if meridian == GREENWICH:
            return datum, 0.0
        return self._ways.rotation[datum][:2] if datum in self._ways.rotation else (datum, self._db.meridian_degrees(meridian))

    def _geographic(self, code):
        db = self._db
        row = db.geodetic[code]
        datum, meridian = self._datum(code)
        grads = db.axes[row['coordinate_system_code']][0]['uom_code'] in _GRADS
        projection = None
        if meridian or grads:
            name = db.meridian[db.datum[row['datum_code']]['prime_meridian_code']]['name']
            unit = 'grads' if grads else 'degrees'
            note = Note('longitudes from %s in %s, as an Equidistant Cylindrical' % (name, unit), False,
                        'longitudes from another meridian or in grads, as an Equidistant Cylindrical')
            projection = projections.of_angles(meridian, 400 if grads else 360).altered(note)
        else:
            datum = row['datum_code']
        way = self._ways.default(datum)
        return System(code, row['name'], 'Geographic 2D', datum, way, self._datums.key(way), projection,
                      db.boxes('geodetic_crs', code), base=code, meridian=meridian)

    def _projected(self, code):
        db = self._db
        row = db.projected[code]
        base = row['geodetic_crs_code']
        datum, meridian = self._datum(base)
        definition = projections.Definition(db, code, meridian)
        projection = projections.express(definition)
        boxes = db.boxes('projected_crs', code)
        way = self._ways.for_area(datum, boxes[0]) if boxes else self._ways.default(datum)
        return System(code, row['name'], self._group(definition, base, boxes), datum, way, self._datums.key(way), projection,
                      boxes, definition.method, definition.unit, base, meridian, definition.northing_first())

    def _group(self, definition, base, boxes):
        conversion, base_name = definition.conversion['name'], self._db.geodetic[base]['name']
        if 'UTM zone' in definition.row['name'] or conversion.startswith('UTM zone'):
            return 'UTM|' + base_name
        if not boxes:
            return 'Other'
        area = boxes[0].name
        if ('SPCS' in conversion or 'CS27' in conversion) and area.startswith(('USA', 'Puerto', 'American', 'Guam')):
            return 'USA|State Plane|' + base_name
        return area.split(' - ')[0].strip().replace('|', '/')

    # ---- the table ---------------------------------------------------------------------------------------------------

    def _comment(self, system):
        parts = [system.boxes[0].name] if system.boxes else []
        if system.unit not in (0, 9001):
            parts.append('unit: ' + self._db.unit[system.unit]['name'])
        if system.northing_first:
            parts.append('axes in EPSG: northing, easting')
        if system.projection and system.projection.notes:
            parts.append('converted: ' + ', '.join(note.text for note in system.projection.notes))
        return ocf.comment(parts)

    def table(self):
        entries, names = [], set()
        for system in self.all():
            p = system.projection
            name = '%s|%s' % (system.group, system.name)
            if name.lower() in names:
                name = '%s (EPSG %d)' % (name, system.code)
            names.add(name.lower())
            entry = [('token', system.token()), ('name', name), ('datum', self._datums.take(system.datum, system.way)),
                     ('projtype', p.method if p else 'Unprojected Lat/Long')]
            if p:
                entry.append(('ellipsoid', p.ellipsoid))
                for key in p.keys():
                    value = getattr(p, key)
                    entry.append((key, value if isinstance(value, bool) else ocf.Number(value)))
            entry.append(('posc', system.code))
            if self._comment(system):
                entry.append(('comment', self._comment(system)))
            entries.append(entry)
        return entries
