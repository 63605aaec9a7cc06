"""The datums: each current one of the data set with its default way to WGS 84, then the other ways as further entries.

The file's order is the tie-break of every search: the five special datums come first, the others by name, the default of a datum
before its variants.
"""
from . import ellipsoids, ocf
from .database import GREENWICH
from .ocf import short
from .projections import Note
from .ways import NAD27, NAD27_CANADA_OPERATION, NAD83, WGS84

_LAYOUT = '%24.18f'

# Entries that need grid files, which are not supplied: (datum, target, special grid set, files)
_NADCON = [(6267, 'NAD83', False, 'conus, alaska'), (6135, 'NAD83', False, 'hawaii'), (6139, 'NAD83', True, 'prvi'),
           (6138, 'NAD83', False, 'stgeorge'), (6136, 'NAD83', False, 'stlrnc'), (6137, 'NAD83', False, 'stpaul')]
# Regression equations of DMA TR 8350.2 [DMA91], which the library has built in: (name, datum)
_MRE = [('AGD1966', 6202), ('AGD1984', 6203), ('CAMPO', 6221), ('CORREGO', 6225), ('ED50', 6230), ('NAD27CANADA', 6267),
        ('NAD27CONUS', 6267), ('SA69', 6618)]


def way_notes(db, ways, way):
    """What was converted between the data set's numbers and the entry's."""
    if way is None:
        return []
    notes = []
    ellipsoid = db.datum[way.datum]['ellipsoid_code']
    if ways.is_none(way) and ellipsoid != ellipsoids.WGS84:
        notes.append(Note('ellipsoid EPSG:%d %s given as WGS 84' % (ellipsoid, db.ellipsoid_row[ellipsoid]['name']), False,
                          'ellipsoid given as WGS 84'))
    if way.pivot:
        notes.append(Note('Molodensky-Badekas as seven parameters', listed=False))
    if way.kind == 'coincident':
        notes.append(Note('taken as coincident with WGS 84', listed=False))
    return notes


def prefix(notes):
    return 'EPSG' if all(note.listed for note in notes) else 'ORV'


class Datums:
    """Knows the tokens of entries; collects them."""

    def __init__(self, db, ways):
        self._db, self._ways = db, ways
        self.used_ellipsoids = {ellipsoids.WGS84}
        self.entries, self._names, self._tokens = [], set(), set()
        self.needed = []   #: (datum, way) that systems take

    # ---- what systems ask --------------------------------------------------------------------------------------------

    def token(self, datum, way):
        """"EPSG:6230" for the default way, "EPSG:6230-1784" for another; ORV for EPSG when numbers were converted."""
        head = '%s:%d' % (prefix(way_notes(self._db, self._ways, way)), datum)
        if way is None or way is self._ways.default(datum):
            return head
        return head + ''.join('-%d' % code for code in way.codes())

    def take(self, datum, way):
        """The token, for a system that needs the entry to be there."""
        if not any(d == datum and w is way for d, w in self.needed):
            self.needed.append((datum, way))
        return self.token(datum, way)

    def key(self, way):
        """Equal for entries that the library's comparison of datums finds equal."""
        if way is None:
            return ('Unknown',)
        if self._ways.is_none(way):
            return ('None',)
        a, f = self._db.ellipsoid(self._db.datum[way.datum]['ellipsoid_code'])
        return ('Bursa-Wolf', round(a, 8), round(f, 12), round(way.meridian, 8)) + tuple(round(v, 8) for v in way.shift)

    # ---- the table ---------------------------------------------------------------------------------------------------

    def _comment(self, datum, way):
        if way is None:
            return 'no conversion to WGS 84 in EPSG'
        parts = []
        if way.operations:
            names = ' and '.join('%d%s' % (abs(c), ' reversed' if c < 0 else '') for c in way.operations)
            parts.append('EPSG operation%s %s: %s' % ('s' if len(way.operations) > 1 else '', names, way.title))
        else:
            parts.append(way.title)
        if way.boxes:
            parts.append('area: ' + way.boxes[0].name)
        if way.accuracy is not None:
            parts.append('accuracy: %s m' % short(way.accuracy))
        notes = way_notes(self._db, self._ways, way)
        if notes:
            parts.append('converted: ' + ', '.join(note.text for note in notes))
        if way.meridian:
            parts.append('longitudes from %s degrees, exact towards WGS 84 only' % short(way.meridian))
        return ocf.comment(parts)

    def _add(self, token, name, posc, head, tail, geogcs, comment, special=None):
        if name.lower() in self._names:
            name = '%s (%s)' % (name, token)
        if token in self._tokens or name.lower() in self._names:
            raise RuntimeError('two datums %s' % token)
        self._names.add(name.lower())
        self._tokens.add(token)
        entry = [('token', token), ('name', name), ('comment', comment), ('posc', posc)]
        if special:
            entry.append(('special', special))
        self.entries.append(entry + head + tail + [('geogcs', geogcs)])

    def _add_way(self, datum, way, token=None, name=None, special=None, geogcs=False):
        row = self._db.datum[datum]
        token = token or self.token(datum, way)
        if token in self._tokens:
            return
        ellipsoid = row['ellipsoid_code']
        self.used_ellipsoids.add(ellipsoid)
        tail = []
        if way is None:
            head = [('method', 'Unknown'), ('target', 'NONE')]
        elif self._ways.is_none(way):
            head, ellipsoid = [('method', 'None'), ('target', 'WGS84')], ellipsoids.WGS84
            tail = [('pmshift', 0.0)]
        else:
            head = [('method', 'Bursa-Wolf'), ('target', 'WGS84')]
            tail = [('pmshift', way.meridian)] + list(zip(('dx', 'dy', 'dz', 'rx', 'ry', 'rz', 'k'), way.shift))
        head = head + [('ellipsoid', ellipsoids.token(ellipsoid))]
        self._add(token, name or row['name'], datum, head, [(key, ocf.Number(value, _LAYOUT)) for key, value in tail], geogcs,
                  self._comment(datum, way), special)

    def _add_special(self):
        w = self._ways
        self._add_way(WGS84, w.default(WGS84), name='World Geodetic System 1984', special='WGS84', geogcs=True)
        self._add_way(NAD83, w.default(NAD83), special='NAD83', geogcs=True)
        self._add_way(NAD83, w.default(NAD83), 'ORV:NAD83-CANADA', 'North American Datum 1983 (Canada)', 'NAD83-CANADA')
        self._add_way(NAD27, w.default(NAD27), special='NAD27', geogcs=True)
        canada = next(way for way in w.all(NAD27) if NAD27_CANADA_OPERATION in way.codes())
        self._add_way(NAD27, canada, name='North American Datum 1927 (Canada)', special='NAD27-CANADA', geogcs=True)

    def _add_variants(self, datum):
        for way in self._ways.all(datum):
            needed = any(d == datum and w is way for d, w in self.needed)
            if way is not self._ways.default(datum) and (needed or not way.superseded):
                area = way.boxes[0].name if way.boxes else ''
                self._add_way(datum, way, name='%s - %s (EPSG %s)' %
                              (self._db.datum[datum]['name'], area, '+'.join(map(str, way.codes()))))

    def _add_other_methods(self):
        """NADCON, NTv2 and regression equations.

        Those have no number for which a search for another datum of it would give a wrong answer on the way back: the Canadian
        ones, which cannot run backward, would get the default of the conterminous United States; others a datum without any way.
        """
        def ellipsoid(datum):
            return [('ellipsoid', ellipsoids.token(self._db.datum[datum]['ellipsoid_code']))]
        for datum, target, prvi, files in _NADCON:
            number = datum if self._ways.default(datum) else 0
            self._add('ORV:NADCON-%d' % datum, '%s (NADCON grids)' % self._db.datum[datum]['name'], number,
                      [('method', 'NADCON'), ('target', target), *ellipsoid(datum), ('prvi', prvi)], [], False,
                      'needs the NADCON grid files ' + files)
        self._add('ORV:NTV2-6267', 'North American Datum 1927 (NTv2 grid, Canada)', 0,
                  [('method', 'NTV2'), ('target', 'NAD83-CANADA'), *ellipsoid(NAD27)], [], False,
                  'needs the Canadian national NTv2 grid file, towards NAD83 only')
        for name, datum in _MRE:
            self._add('DMA:MRE-' + name, '%s (multiple regression, %s)' % (self._db.datum[datum]['name'], name),
                      0 if name == 'NAD27CANADA' else datum,
                      [('method', 'MRE'), ('target', 'WGS84'), *ellipsoid(datum), ('mretype', name)], [], False,
                      'DMA TR 8350.2, multiple regression equations, towards WGS 84 only')

    def table(self):
        """The entries; call it when all systems have taken theirs."""
        db = self._db
        self._add_special()
        on_systems = {row['datum_code'] for row in db.geodetic.values() if not row['deprecated']}
        wanted = {d for d in db.current(db.datum) if d in on_systems} | {d for d, _ in self.needed}
        for datum in sorted(wanted - {WGS84}, key=lambda d: (db.datum[d]['name'].lower(), d)):
            default = self._ways.default(datum)
            from_greenwich = db.datum[datum]['prime_meridian_code'] == GREENWICH
            self._add_way(datum, default, geogcs=from_greenwich and default is not None)
            self._add_variants(datum)
        self._add_other_methods()
        return self.entries
