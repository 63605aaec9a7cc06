"""The linear and the angular units: all of the data set that measure a length or an angle.

The base units are the metre and the degree.  They come first, then the others by code.
"""
import re

from . import ocf
from .database import ANGLE_EXACT, RADIANS, exact

METRE, DEGREE = 9001, 9102
_RATE = re.compile(r' per (second|year)')
_IRREGULAR = {'foot': 'feet', 'inch': 'inches'}
_MEASURES = ('metre millimetre centimetre kilometre foot fathom mile chain link yard degree radian arc-minute arc-second '
             'milliarc-second minute second grad gon microradian').split()
RADIAN_DEGREES = 57.29577951308232087680  # 180 / pi


def plural(name):
    """The name with its unit in the plural.

    >>> plural('British chain (Sears 1922)'), plural("Clarke's foot"), plural('mil_6400')
    ('British chains (Sears 1922)', "Clarke's feet", '')
    """
    def grown(match):
        return _IRREGULAR.get(match.group(0), match.group(0) + 's')
    text, count = re.subn(r'\b(%s)\b' % '|'.join(sorted(_MEASURES, key=len, reverse=True)), grown, name, count=1)
    return text if count else ''


def _codes(db, kind, first):
    codes = [c for c in db.current(db.unit)
             if db.unit[c]['type'] == kind and db.unit[c]['conv_factor'] and not _RATE.search(db.unit[c]['name'])]
    return sorted(codes, key=lambda c: (c != first, c))


def _entry(db, code, size):
    """@param size  in base units, exact or a double"""
    name = db.unit[code]['name']
    entry = [('token', 'EPSG:%d' % code), ('name', name)]
    if plural(name):
        entry.append(('namep', plural(name)))
    if isinstance(size, float) or exact(float(size)) == size:
        entry.append(('mul', ocf.Number(size)))
    else:
        entry.append(('div', ocf.Number(1 / size)))  # an exact ratio the other way round
    return entry + [('posc', code)]


def linear(db):
    return [_entry(db, code, db.length_unit(code)) for code in _codes(db, 'length', METRE)]


def angular(db):
    def size(code):
        return ANGLE_EXACT[code] if code in ANGLE_EXACT else RADIANS[code] * RADIAN_DEGREES
    return [_entry(db, code, size(code)) for code in _codes(db, 'angle', DEGREE)]
