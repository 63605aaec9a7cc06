"""The EPSG rows of a proj.db.

PROJ's data base holds the EPSG data set in tables of its own; only rows with authority EPSG are read.  Angles come out in
degrees and lengths in metres, each the double nearest to the exact value.
"""
import math
import sqlite3
from collections import defaultdict
from decimal import Decimal
from fractions import Fraction

from .areas import Box

GREENWICH = 8901

# Exact sizes, in metres, of the units whose factor in the data base is a rounded fraction.
LENGTH_EXACT = {
    9003: Fraction(1200, 3937), 9033: Fraction(1200 * 66, 3937), 9034: Fraction(1200 * 66, 393700),
    9035: Fraction(1200 * 5280, 3937), 9040: Fraction(36000000, 39370147), 9041: Fraction(12000000, 39370147),
    9042: Fraction(12000000 * 66, 39370147), 9043: Fraction(12000000 * 66, 3937014700), 9051: Fraction(9143992, 30000000),
    9060: Fraction(36000000, 39370113), 9061: Fraction(12000000, 39370113), 9062: Fraction(12000000 * 66, 39370113),
    9063: Fraction(12000000 * 66, 3937011300), 9070: Fraction(9144025, 30000000), 9080: Fraction(12000000, 39370142),
    9084: Fraction(36000000, 39370142), 9094: Fraction(6378300, 20926201), 9300: Fraction(914398, 3000000)}

# Exact sizes, in degrees, of the units of angles that are plain multiples of the degree.
ANGLE_EXACT = {
    9102: Fraction(1), 9122: Fraction(1), 9103: Fraction(1, 60), 9104: Fraction(1, 3600), 1031: Fraction(1, 3600000),
    9105: Fraction(9, 10), 9106: Fraction(9, 10), 9112: Fraction(9, 1000), 9113: Fraction(9, 100000), 9114: Fraction(9, 160)}
RADIANS = {9101: 1.0, 9109: 1e-6}
DMS, DM = 9110, 9111


def exact(value):
    """The decimal number that the data set states, as a fraction."""
    return Fraction(Decimal(repr(value)))


def degrees(value, unit):
    """An angle in degrees.  Sexagesimal numbers, DDD.MMSSsss, are taken apart by their decimals.

    >>> degrees(49.3015, 9110)
    49.50416666666667
    """
    if unit in RADIANS:
        return math.degrees(value * RADIANS[unit])
    if unit in ANGLE_EXACT:
        return float(exact(value) * ANGLE_EXACT[unit])
    if unit not in (DMS, DM):
        raise ValueError('unit of angles %d' % unit)
    number = abs(Decimal(repr(value)))
    whole = int(number)
    rest = (number - whole) * 100
    if unit == DM:
        result = whole + Fraction(rest) / 60
    else:
        minutes = int(rest)
        result = whole + Fraction(minutes, 60) + Fraction((rest - minutes) * 100) / 3600
    return float(-result if value < 0 else result)


class Database:
    """@param path  of proj.db"""

    def __init__(self, path):
        self._connection = sqlite3.connect('file:%s?mode=ro' % path, uri=True)
        self._connection.row_factory = sqlite3.Row
        self.metadata = {r['key']: r['value'] for r in self._rows('select key, value from metadata')}
        self.unit = self._by_code('unit_of_measure')
        self.meridian = self._by_code('prime_meridian')
        self.ellipsoid_row = self._by_code('ellipsoid')
        self.datum = self._by_code('geodetic_datum')
        self.geodetic = self._by_code('geodetic_crs')
        self.projected = self._by_code('projected_crs')
        self.conversion = self._by_code('conversion')
        self.extent = self._by_code('extent')
        self.helmert = self._by_code('helmert_transformation')
        self.other = self._by_code('other_transformation')
        self.axes = defaultdict(list)
        for r in self._rows("select * from axis where auth_name='EPSG' order by coordinate_system_code, coordinate_system_order"):
            self.axes[r['coordinate_system_code']].append(r)
        self._usage = defaultdict(list)
        for r in self._rows("select object_table_name as kind, object_code, extent_code from usage where "
                            "object_auth_name='EPSG' and extent_auth_name='EPSG' order by code"):
            self._usage[r['kind'], r['object_code']].append(r['extent_code'])
        self.superseded = {r['superseded_code'] for r in self._rows(
            "select superseded_code from supersession where superseded_auth_name='EPSG' and same_source_target_crs=1")}

    def _rows(self, query):
        return self._connection.execute(query)

    def _by_code(self, table):
        return {r['code']: r for r in self._rows("select * from %s where auth_name='EPSG' order by code" % table)}

    def current(self, rows):
        """The codes, in order, of the rows that are not deprecated."""
        return [code for code in sorted(rows) if not rows[code]['deprecated']]

    def length_unit(self, code):
        """Metres in one unit, exactly."""
        return LENGTH_EXACT.get(code) or exact(self.unit[code]['conv_factor'])

    def metres(self, value, unit):
        return float(exact(value) * self.length_unit(unit))

    def meridian_degrees(self, code):
        """Longitude of a prime meridian east of Greenwich."""
        row = self.meridian[code]
        return degrees(row['longitude'], row['uom_code'])

    def ellipsoid(self, code):
        """Major radius in metres, and flattening, to the last bit as the library computes it from the file."""
        row = self.ellipsoid_row[code]
        a = self.metres(row['semi_major_axis'], row['uom_code'])
        if row['inv_flattening']:
            return a, 1.0 / row['inv_flattening']
        b = self.metres(row['semi_minor_axis'], row['uom_code'])
        return a, 0.0 if a == b else 1.0 / (a / (a - b))

    def parameters(self, conversion):
        """{parameter code: (value, unit code)} of a conversion row."""
        return {conversion['param%d_code' % i]: (conversion['param%d_value' % i], conversion['param%d_uom_code' % i])
                for i in range(1, 8) if conversion['param%d_code' % i] is not None}

    def boxes(self, kind, code):
        """The areas of use of an object of the table `kind`."""
        found = []
        for extent in self._usage[kind, code]:
            r = self.extent[extent]
            if r['west_lon'] is None:
                found.append(Box(r['name'], -180.0, -90.0, 180.0, 90.0))
            else:
                found.append(Box(r['name'], r['west_lon'], r['south_lat'], r['east_lon'], r['north_lat']))
        return found

    def datum_boxes(self, datum):
        """The areas of use of a geodetic datum, or those of a system on it."""
        found = self.boxes('geodetic_datum', datum)
        for code, row in self.geodetic.items():
            if not found and row['datum_code'] == datum:
                found = self.boxes('geodetic_crs', code)
        return found
