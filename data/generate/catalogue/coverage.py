"""What the catalogue expresses, what it leaves out and why; and the notice that goes with the files."""
from collections import Counter, defaultdict

from . import ocf
from .datums import way_notes

_NOTICE = '''ORVCore catalogue

This product contains values derived from the EPSG Geodetic Parameter Dataset %s, owned by the International
Association of Oil & Gas Producers (IOGP), used under the EPSG Terms of Use, https://epsg.org/terms-of-use.html, to which
recipients of the data are subject.  The data are provided as is, without warranty.  Entries whose token does not begin with
EPSG are not EPSG data, and parameters have been converted to the forms this library needs.
'''


def notice(version):
    return _NOTICE % version


def _table(head, rows):
    lines = ['| ' + ' | '.join(head) + ' |', '|' + '---|' * len(head)]
    return lines + ['| ' + ' | '.join(str(cell) for cell in row) + ' |' for row in rows] + ['']


def _by_method(db, systems):
    """Rows of the projected systems, the commonest method first."""
    methods = defaultdict(lambda: [set(), 0, Counter()])
    for s in systems.projected:
        methods[s.method][0].add(s.projection.method)
        methods[s.method][1] += 1
    for definition, reason in systems.left_out:
        methods[definition.method][2][reason] += 1
    names = {row['method_code']: row['method_name'] for row in db.conversion.values()}
    rows = []
    for method, (ours, expressed, left) in methods.items():
        out = sum(left.values())
        why = '; '.join('%s%s' % ('%d: ' % n if len(left) > 1 or n < out + expressed else '', w) for w, n in left.items())
        rows.append((expressed + out, method, names[method], ', '.join(sorted(ours)) or '-', expressed, out, why))
    rows.sort(key=lambda r: (-r[0], r[1]))
    cells = [('%d %s' % r[1:3], r[3], r[0], r[4], r[5] or '', r[6]) for r in rows]
    total = ('**all**', '', sum(r[0] for r in rows), sum(r[4] for r in rows), sum(r[5] for r in rows), '')
    return cells + [total]


def _datum_rows(ways, datums):
    kinds = Counter()
    for code in _codes(datums):
        way = ways.default(code)
        kinds['none' if way is None else way.kind] += 1
    names = [('identity', 'WGS 84 itself'), ('direct', 'an EPSG operation to WGS 84'), ('inverse', 'one from WGS 84, reversed'),
             ('two steps', 'two operations'), ('meridian', 'a change of the prime meridian, then one of these'),
             ('coincident', 'none in EPSG; a modern geocentric frame, taken as coincident with WGS 84 (2 m)'),
             ('none', 'none: converts within itself only')]
    return [(text, kinds[kind]) for kind, text in names]


def _note_rows(db, ways, systems, datums):
    kinds = Counter()
    for s in systems.all():
        kinds.update(('system', note.general(), note.listed) for note in (s.projection.notes if s.projection else []))
    for code in _codes(datums):
        kinds.update(('default datum', note.general(), note.listed) for note in way_notes(db, ways, ways.default(code)))
    return [(kind, text, 'EPSG' if listed else 'ORV', n) for (kind, text, listed), n in sorted(kinds.items())]


def _codes(datums):
    """EPSG codes of the datums that have entries."""
    return sorted({value for entry in datums.entries for key, value in entry if key == 'posc' and value})


def report(db, ways, datums, systems, version):
    geographic, projected = systems.geographic, systems.projected
    as_angles = sum(1 for s in geographic if s.projection)
    reached = [sum(1 for s in group if s.way is not None) for group in (geographic, projected)]
    tokens = Counter(s.token()[:4] for s in systems.all())
    by_method = Counter(systems.nominal[s.code].method for s in systems.all() if s.code in systems.nominal)
    lines = ['# Coverage of the catalogue', '',
             'Made by data/generate/make_catalogue.py of EPSG %s; do not edit.' % version,
             'Current systems only; deprecated ones are left out.', '', '## Systems', '']
    lines += _table(('', 'current', 'expressed', 'with a conversion to WGS 84'),
                    [('geographic 2-D', len(geographic), '%d (%d plain, %d as Equidistant Cylindrical)' %
                      (len(geographic), len(geographic) - as_angles, as_angles), reached[0]),
                     ('projected', len(projected) + len(systems.left_out), len(projected), reached[1])])
    lines += ['%d tokens begin with EPSG, %d with ORV.' % (tokens['EPSG'], tokens['ORV:']), '',
              '## Projected systems by method', '']
    lines += _table(('EPSG method', 'method here', 'current', 'expressed', 'left out', 'why'), _by_method(db, systems))
    lines += ['## Conversions of parameters', '',
              'Entries whose numbers were converted in a way that the EPSG Terms of Use do not list have ORV before their',
              'code.', '']
    lines += _table(('entries', 'conversion', 'prefix', 'number'), _note_rows(db, ways, systems, datums))
    lines += ['## Forms', '', 'Systems that share a projection with one on another datum and have another form of it: %d.' %
              len(systems.nominal), '']
    lines += _table(('method', 'number'), sorted(by_method.items()))
    lines += ['## Datums', '', '%d entries.  The default way of a datum to WGS 84:' % len(datums.entries), '']
    lines += _table(('way', 'datums'), _datum_rows(ways, datums))
    lines += ['## Left out', '']
    lines += _table(('code', 'system', 'EPSG method', 'why'),
                    [(d.code, ocf.ascii_text(d.row['name']).replace('|', '/'),
                      '%d %s' % (d.method, d.conversion['method_name']), why) for d, why in systems.left_out])
    return '\n'.join(lines)
