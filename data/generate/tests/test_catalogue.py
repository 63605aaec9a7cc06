"""The whole catalogue: decisions that the files must show.  Needs a proj.db, else it is skipped."""
import pathlib
import unittest
from collections import Counter

from catalogue import units
from catalogue.conversions import Shift
from catalogue.database import Database
from catalogue.datums import Datums
from catalogue.systems import Systems
from catalogue.ways import ED50, NAD27, NAD83, WGS84, Ways

PROJ_DB = pathlib.Path('/usr/share/proj/proj.db')


@unittest.skipUnless(PROJ_DB.exists(), 'no %s' % PROJ_DB)
class Catalogue(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.db = Database(str(PROJ_DB))
        cls.ways = Ways(cls.db)
        cls.datums = Datums(cls.db, cls.ways)
        cls.systems = Systems(cls.db, cls.ways, cls.datums)
        cls.system_entries = [dict(e) for e in cls.systems.table()]
        cls.by_code = {e['posc']: e for e in cls.system_entries}
        cls.datum_entries = [dict(e) for e in cls.datums.table()]
        cls.datum = {e['token']: e for e in cls.datum_entries}

    def test_numbers_of_systems(self):
        self.assertGreaterEqual(len(self.systems.projected), 4980)
        self.assertGreaterEqual(len(self.systems.geographic), 545)
        self.assertEqual(len(self.systems.projected) + len(self.systems.left_out), len(self.db.current(self.db.projected)))
        for definition, reason in self.systems.left_out:
            self.assertTrue(reason, definition.code)

    def test_nothing_deprecated(self):
        for e in self.system_entries:
            row = self.db.projected.get(e['posc']) or self.db.geodetic[e['posc']]
            self.assertFalse(row['deprecated'], e['token'])

    def test_short_names_are_those_of_the_data_set(self):
        for e in self.system_entries:
            row = self.db.projected.get(e['posc']) or self.db.geodetic[e['posc']]
            if row['name'].isascii():
                self.assertEqual(e['name'].split('|')[-1], row['name'])

    def test_tokens_and_names_are_unique(self):
        for entries in (self.system_entries, self.datum_entries):
            for key in ('token', 'name'):
                most, count = Counter(e[key].lower() for e in entries).most_common(1)[0]
                self.assertEqual(count, 1, most)

    def test_every_datum_that_a_system_names_is_there(self):
        self.assertEqual({e['datum'] for e in self.system_entries} - set(self.datum), set())

    def test_prefix_tells_unlisted_conversions(self):
        for code in (4326, 32632, 27700, 2154, 3857, 3031):
            self.assertEqual(self.by_code[code]['token'], 'EPSG:%d' % code)
        for code in (2056, 31300, 27572, 4807):
            self.assertEqual(self.by_code[code]['token'], 'ORV:%d' % code)
        for e in self.system_entries:
            if e['token'].startswith('ORV'):
                self.assertIn('converted: ', e['comment'])
        for token, e in self.datum.items():
            if token.startswith('ORV') and e['method'] in ('None', 'Bursa-Wolf') and e.get('special') != 'NAD83-CANADA':
                self.assertIn('converted: ', e['comment'])

    def test_special_datums_come_first(self):
        self.assertEqual([(e['token'], e['special']) for e in self.datum_entries[:5]],
                         [('EPSG:6326', 'WGS84'), ('ORV:6269', 'NAD83'), ('ORV:NAD83-CANADA', 'NAD83-CANADA'),
                          ('EPSG:6267', 'NAD27'),
                          ('EPSG:6267-1172', 'NAD27-CANADA')])
        self.assertFalse(any('special' in e for e in self.datum_entries[5:]))

    def test_names_that_stand_for_the_old_short_ones(self):
        names = {e['name']: e['token'] for e in self.datum_entries}
        for name, token in (('North American Datum 1927', 'EPSG:6267'), ('North American Datum 1983', 'ORV:6269'),
                            ('World Geodetic System 1984', 'EPSG:6326')):
            self.assertEqual(names[name], token)

    def test_default_ways(self):
        # EPSG: NAD27 to WGS 84 (4) is the mean for the conterminous United States: -8, 160, 176
        self.assertEqual(self.ways.default(NAD27).shift, Shift(-8.0, 160.0, 176.0))
        self.assertEqual(self.ways.default(ED50).operations, (1133,))
        self.assertTrue(self.ways.default(NAD83).shift.is_null())
        self.assertEqual(self.ways.default(WGS84).kind, 'identity')

    def test_default_of_nad27_needs_no_grids(self):
        self.assertEqual(self.datum['EPSG:6267']['method'], 'Bursa-Wolf')
        self.assertEqual(self.by_code[4267]['datum'], 'EPSG:6267')

    def test_way_fits_the_area(self):
        # The conterminous way of NAD27 does not cover Alaska
        alaska = next(c for c, r in self.db.projected.items() if r['name'] == 'NAD27 / Alaska zone 2')
        self.assertNotIn(self.by_code[alaska]['datum'], ('EPSG:6267', 'EPSG:6267-1172'))

    def test_null_shifts_carry_the_ellipsoid_of_wgs84(self):
        for e in self.datum_entries:
            if e['method'] == 'None':
                self.assertEqual(e['ellipsoid'], 'EPSG:7030', e['token'])

    def test_coincident_frames_say_so(self):
        for datum in {s.datum for s in self.systems.all()}:
            way = self.ways.default(datum)
            if way is not None and way.kind == 'coincident':
                e = self.datum[self.datums.token(datum, way)]
                self.assertIn('taken as coincident with WGS 84', e['comment'])
                self.assertIn('accuracy: 2 m', e['comment'])

    def test_accuracy_and_area_of_the_operation(self):
        self.assertEqual(self.datum['EPSG:6314']['comment'],
                         'EPSG operation 1777: DHDN to WGS 84 (2); area: Germany - West Germany all states; accuracy: 3 m')

    def test_datums_without_a_way(self):
        e = self.datum['EPSG:6610']   # Xian 1980
        self.assertEqual((e['method'], e['target'], e['geogcs']), ('Unknown', 'NONE', False))
        self.assertIn(2327, self.by_code)   # a system on it

    def test_meridians_are_folded(self):
        # NTF (Paris) / Lambert zone II: on the datum from Greenwich, central meridian of Paris
        e = self.by_code[27572]
        self.assertEqual(e['datum'].split(':')[1], '6275')
        self.assertAlmostEqual(e['lon0'], 2.5969213 * 0.9, delta=1e-12)

    def test_meridians_without_an_operation_are_folded_too(self):
        # Madrid 1870 (Madrid) / Spain LCC has its own meridian, 3 d 41' 14.55" W, as the central one
        e = self.by_code[2062]
        self.assertEqual((e['token'], e['datum']), ('ORV:2062', 'EPSG:6903'))
        self.assertAlmostEqual(e['lon0'], -(3 + 41 / 60 + 14.55 / 3600), delta=1e-12)
        self.assertEqual(self.by_code[4903]['projtype'], 'Equidistant Cylindrical')

    def test_grads_on_the_sphere(self):
        e = self.by_code[4807]
        self.assertEqual((e['projtype'], e['ellipsoid']), ('Equidistant Cylindrical', 'ORV:SPHERE-6378137'))
        self.assertAlmostEqual(e['scale'] * 6378137.0 * 3.141592653589793, 200.0, delta=1e-11)

    def unit_of(self, row):
        return self.db.axes[row['coordinate_system_code']][0]['uom_code']

    def test_units_in_use_are_there(self):
        linear = {dict(e)['posc'] for e in units.linear(self.db)}
        angular = {dict(e)['posc'] for e in units.angular(self.db)}
        for code in self.db.current(self.db.projected):
            self.assertIn(self.unit_of(self.db.projected[code]), linear)
        for code in self.db.current(self.db.geodetic):
            if self.db.geodetic[code]['type'] == 'geographic 2D':
                self.assertIn(self.unit_of(self.db.geodetic[code]), angular)
        self.assertEqual(dict(units.linear(self.db)[0])['posc'], 9001)
        self.assertEqual(dict(units.angular(self.db)[0])['posc'], 9102)

    def test_units_have_the_factors_of_the_data_set(self):
        for entry in units.linear(self.db):
            e = dict(entry)
            factor = float(e['mul']) if 'mul' in e else 1 / float(e['div'])
            self.assertAlmostEqual(factor / self.db.unit[e['posc']]['conv_factor'], 1.0, delta=3e-15, msg=e['name'])
        for entry in units.angular(self.db):
            e = dict(entry)
            radians = (float(e['mul']) if 'mul' in e else 1 / float(e['div'])) / 57.29577951308232
            self.assertAlmostEqual(radians / self.db.unit[e['posc']]['conv_factor'], 1.0, delta=4e-15, msg=e['name'])


if __name__ == '__main__':
    unittest.main()
