"""The ellipsoids: all current ones of the data set, older ones that something in use needs, and the library's own spheres.

Each is given by the two values that define it: radius with inverse flattening, or both radii.  Radii in feet become metres.
"""
from . import ocf

WGS84 = 7030
SPHERE_RADIUS = 6378137.0
SPHERE_TOKEN = 'ORV:SPHERE-6378137'


def token(code):
    return 'EPSG:%d' % code


def _length(metres):
    """Four decimals, as the library saves it, or all that a radius from feet needs."""
    return ocf.Number(metres, '%.4f') if float('%.4f' % metres) == metres else ocf.Number(metres, '%.9f')


def table(db, used):
    """@param used  codes that must be there"""
    entries, names = [], set()
    for code in sorted(db.ellipsoid_row):
        row = db.ellipsoid_row[code]
        if row['deprecated'] and code not in used:
            continue
        name = row['name']
        if name.lower() in names:
            name = '%s (EPSG %d)' % (name, code)
        names.add(name.lower())
        a, flattening = db.ellipsoid(code)
        entry = [('token', token(code)), ('name', name), ('radius', _length(a))]
        if row['inv_flattening']:
            entry.append(('invflat', ocf.Number(row['inv_flattening'], '%.19f')))
        elif flattening == 0.0:
            entry.append(('flat', ocf.Number(0.0, '%.19f')))
        else:
            entry.append(('minrad', _length(db.metres(row['semi_minor_axis'], row['uom_code']))))
        entries.append(entry + [('posc', code)])
    entries.append([('token', SPHERE_TOKEN), ('name', 'Sphere of radius 6378137 m'), ('radius', _length(SPHERE_RADIUS)),
                    ('flat', ocf.Number(0.0, '%.19f')),
                    ('comment', 'of the WGS 84 major radius: for Pseudo-Mercator and for systems of angles')])
    return entries
