"""Numbers and texts: reading them from the data set, writing them to the files."""
import tempfile
import unittest
from fractions import Fraction
from pathlib import Path

from catalogue import database, ocf, units
from catalogue.areas import WORLD, Box, common, coverage, is_offshore, size


class Angles(unittest.TestCase):
    def test_sexagesimal(self):
        self.assertEqual(database.degrees(-76.563726, 9110), -(76 + 56 / 60 + 37.26 / 3600))
        self.assertEqual(database.degrees(4.2124983, 9110), float(4 + Fraction(21, 60) + Fraction('24.983') / 3600))
        self.assertEqual(database.degrees(9.5, 9111), 9 + 50 / 60)

    def test_multiples(self):
        self.assertEqual(database.degrees(2.5969213, 9105), 2.33722917)
        self.assertEqual(database.degrees(10.405, 9104), 10.405 / 3600)
        self.assertAlmostEqual(database.degrees(1.0, 9101), 57.29577951308232, delta=1e-14)

    def test_unknown_unit(self):
        with self.assertRaises(ValueError):
            database.degrees(1.0, 9001)


class Texts(unittest.TestCase):
    def test_ascii(self):
        self.assertEqual(ocf.ascii_text('Réunion "1947"\n– 5°W'), "Reunion '1947' - 5 deg W")
        self.assertEqual(ocf.ascii_text('Østfold, Þingvellir'.replace('Þ', 'þ')), 'Ostfold, thingvellir')

    def test_fields_of_a_comment(self):
        self.assertEqual(ocf.comment(['India; Pakistan', 'unit: foot']), 'India, Pakistan; unit: foot')

    def test_numbers_have_the_layout_of_the_library(self):
        self.assertEqual(ocf.value_text(ocf.Number(0.9996)), '0.99960000000000004405')
        self.assertEqual(ocf.value_text(ocf.Number(-8.0, '%24.18f')), '   -8.000000000000000000')
        self.assertEqual([ocf.value_text(v) for v in (True, False, 4326, 'a')], ['true', 'false', '4326', '"a"'])

    def test_shortest_number(self):
        self.assertEqual(ocf.short(6377397.155), '6377397.155')
        self.assertEqual(ocf.short(2e-9), '0.000000002')
        self.assertEqual(ocf.short(500000.0), '500000')

    def test_kept_survives_the_file(self):
        value = ocf.kept(8.983152841195214e-06)
        self.assertEqual(float('%.20f' % value), value)
        self.assertEqual(str(ocf.kept(-0.0)), '0.0')

    def test_file(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / 'x.ocf'
            ocf.write(path, 'Things', 'v1', [[('token', 'A'), ('posc', 7)]], ['Note.'])
            data = path.read_bytes()
        self.assertIn(b'Geodetic Parameter Dataset v1, owned by', data)
        self.assertIn(b'https://epsg.org/terms-of-use.html', data)
        self.assertTrue(data.endswith(b'; Entry 1 of 1\n{\n   token="A"\n   posc=7\n}\n\n;\n; End of things.\n;\n'))
        self.assertNotIn(b'\r', data)


class Plurals(unittest.TestCase):
    def test_names(self):
        for singular, plural in (('metre', 'metres'), ('US survey foot', 'US survey feet'), ("Clarke's foot", "Clarke's feet"),
                                 ('British chain (Benoit 1895 A)', 'British chains (Benoit 1895 A)'), ('degree', 'degrees'),
                                 ('milliarc-second', 'milliarc-seconds'), ('kilometre', 'kilometres'), ('mil_6400', '')):
            self.assertEqual(units.plural(singular), plural)


class Areas(unittest.TestCase):
    FIJI = Box('Fiji', 176.0, -21.0, -178.0, -12.0)   # crosses the antimeridian

    def test_antimeridian(self):
        self.assertAlmostEqual(size(self.FIJI), size(Box('', 10.0, -21.0, 16.0, -12.0)), delta=1e-12)
        self.assertAlmostEqual(common(self.FIJI, Box('', -180.0, -21.0, -178.0, -12.0)), size(self.FIJI) / 3, delta=1e-12)

    def test_half_of_an_offshore_area(self):
        sea = Box('Fiji - offshore', *self.FIJI[1:])
        self.assertAlmostEqual(coverage(self.FIJI, [sea]), 0.5)
        self.assertAlmostEqual(coverage(sea, [sea]), 1.0)
        self.assertFalse(is_offshore('Fiji - onshore and offshore'))

    def test_best_single_box(self):
        self.assertAlmostEqual(coverage(Box('', 0, 0, 10, 10), [Box('', 0, 0, 5, 10), Box('', 5, 0, 7, 10)]), 0.5)
        self.assertAlmostEqual(coverage(Box('', 0, 0, 10, 10), [WORLD]), 1.0)
        self.assertEqual(coverage(Box('', 0, 0, 10, 10), []), 0.0)


if __name__ == '__main__':
    unittest.main()
