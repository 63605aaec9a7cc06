"""The prime meridians: all of the data set, in degrees east of Greenwich."""
from . import ocf


def table(db):
    return [[('token', 'EPSG:%d' % code), ('name', db.meridian[code]['name']),
             ('lon', ocf.Number(db.meridian_degrees(code))), ('posc', code)] for code in db.current(db.meridian)]
