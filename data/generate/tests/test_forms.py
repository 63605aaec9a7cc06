"""Forms of the same map that do not compare equal."""
import math
import unittest
from types import SimpleNamespace

import maps
from catalogue import shortcut
from catalogue.projections import (CASSINI, EQUICYL, HOTINE, LAMBERT, MERCATOR, POLYCONIC, STEREO, TM, UTM, Projection)

A, F = 6378388.0, 1 / 297
ZONE = Projection(UTM, 'E', A, F, lon0=9.0, kscale=0.9996)


def system(code, projection, datum_key, datum=0):
    return SimpleNamespace(code=code, projection=projection, datum_key=datum_key, datum=datum)


class Equality(unittest.TestCase):
    """The tolerances are absolute but for false origins and ellipsoids."""

    def test_angles_and_scales(self):
        self.assertTrue(shortcut.projections_equal(ZONE, ZONE.altered(lon0=9.0 + 0.9e-9)))
        self.assertFalse(shortcut.projections_equal(ZONE, ZONE.altered(lon0=9.0 + 1.1e-9)))
        self.assertFalse(shortcut.projections_equal(ZONE, ZONE.altered(kscale=0.9996 + 1.1e-9)))
        self.assertFalse(shortcut.projections_equal(ZONE, ZONE.altered(bsouth=True)))

    def test_false_origins_are_relative(self):
        p = Projection(TM, 'E', A, F, xorg=500000.0)
        self.assertTrue(shortcut.projections_equal(p, p.altered(xorg=500000.4)))
        self.assertFalse(shortcut.projections_equal(p, p.altered(xorg=500000.6)))
        self.assertFalse(shortcut.projections_equal(p, p.altered(yorg=1e-12)))

    def test_ellipsoids_within_a_millionth(self):
        self.assertTrue(shortcut.projections_equal(ZONE, ZONE.altered(a=A + 6.3, f=F * 1.9)))
        self.assertFalse(shortcut.projections_equal(ZONE, ZONE.altered(a=A + 6.5)))

    def test_parallels_in_either_order(self):
        p = Projection(LAMBERT, 'E', A, F, lat1=44.0, lat2=46.0)
        self.assertTrue(shortcut.projections_equal(p, p.altered(lat1=46.0, lat2=44.0)))
        self.assertFalse(shortcut.projections_equal(p, p.altered(lat1=46.0, lat2=44.1)))

    def test_methods_differ(self):
        self.assertFalse(shortcut.projections_equal(ZONE, ZONE.altered(method=TM)))


class SameMap(unittest.TestCase):
    FACTOR = 1 + 2e-9

    def check_scaled(self, p):
        q = shortcut.rescaled(p, self.FACTOR)
        self.assertFalse(shortcut.projections_equal(p, q))
        self.assertFalse(q.notes[-1].listed)
        self.assertAlmostEqual(q.xorg * q.scale, p.xorg * p.scale, delta=1e-8)
        self.assertAlmostEqual(q.yorg * q.scale, p.yorg * p.scale, delta=1e-8)
        return q

    def test_methods_with_a_scale_factor(self):
        for method in (TM, HOTINE, STEREO):
            p = Projection(method, 'E', A, F, xorg=500000.0, yorg=-4000000.0, kscale=0.9996)
            q = self.check_scaled(p)
            self.assertAlmostEqual(q.kscale * q.scale, 0.9996, delta=1e-15)

    def test_lambert(self):
        p = Projection(LAMBERT, 'E', A, F, xorg=600000.0, yorg=2e6, lon0=3.0, lat0=46.5, lat1=45.0, lat2=48.0)
        q = self.check_scaled(p)
        at = [[m.scale * (v + o) for v, o in zip(maps.lambert_2sp(49.0, 8.0, A, F, 46.5, 3.0, m.lat1, m.lat2), (m.xorg, m.yorg))]
              for m in (p, q)]
        self.assertLess(math.dist(*at), 1e-7)

    def test_mercator(self):
        p = Projection(MERCATOR, 'E', A, F, lat0=4.45, xorg=3900000.0, yorg=900000.0)
        q = self.check_scaled(p)
        k = [math.cos(math.radians(m.lat0)) / math.sqrt(1 - (2 * F - F * F) * math.sin(math.radians(m.lat0)) ** 2) * m.scale
             for m in (p, q)]
        self.assertAlmostEqual(*k, delta=1e-15)

    def test_polyconic_moves_its_origin(self):
        p = Projection(POLYCONIC, 'E', A, F, lon0=-54.0, xorg=5e6, yorg=1e7)
        q = shortcut.moved_origin(p, 2e-9)
        self.assertFalse(shortcut.projections_equal(p, q))
        self.assertAlmostEqual(q.yorg - p.yorg, 2e-9 * math.pi / 180 * A * (1 - F) ** 2, delta=2e-9)
        with self.assertRaises(ValueError):
            shortcut.moved_origin(p.altered(lat0=10.0), 2e-9)

    def test_no_form_for_a_method_without_one(self):
        with self.assertRaises(ValueError):
            shortcut.rescaled(Projection(CASSINI, 'E', A, F), self.FACTOR)


class Separation(unittest.TestCase):
    def test_first_as_it_is_second_as_tm_third_scaled(self):
        systems = [system(3, ZONE, ('Bursa-Wolf', 1)), system(2, ZONE, ('Bursa-Wolf', 2)), system(1, ZONE, ('None',))]
        nominal = shortcut.separate(systems)
        third, second, first = systems
        self.assertEqual((first.projection.method, second.projection.method, third.projection.method), (UTM, TM, TM))
        self.assertEqual(second.projection.kscale, 0.9996)
        self.assertNotEqual(third.projection.kscale, 0.9996)
        self.assertEqual(sorted(nominal), [2, 3])
        self.assertEqual(nominal[3].method, UTM)

    def test_same_datum_keeps_the_same_form(self):
        systems = [system(1, ZONE, ('None',)), system(2, ZONE, ('None',))]
        self.assertEqual(shortcut.separate(systems), {})

    def test_datum_with_more_systems_keeps_its_form(self):
        other = ZONE.altered(lon0=15.0)
        systems = [system(1, ZONE, ('B',)), system(2, ZONE, ('C',)), system(3, other, ('C',))]
        self.assertEqual(sorted(shortcut.separate(systems)), [1])

    def test_wgs_72_keeps_its_form_before_others(self):
        systems = [system(1, ZONE, ('B',)), system(2, ZONE, ('B',)), system(3, ZONE, ('C',), 6322)]
        self.assertEqual(sorted(shortcut.separate(systems)), [1, 2])

    def test_datums_without_a_way_come_last(self):
        systems = [system(1, ZONE, ('Unknown',)), system(2, ZONE, ('Unknown',)), system(3, ZONE, ('C',))]
        self.assertEqual(sorted(shortcut.separate(systems)), [1, 2])

    def test_systems_of_angles(self):
        p = Projection(EQUICYL, 'S', 6378137.0, 0.0, scale=200 / math.pi / 6378137.0, lon0=2.33722917)
        systems = [system(code, p, ('B', code)) for code in range(5)]
        shortcut.separate(systems)
        for i in range(5):
            for j in range(i):
                self.assertFalse(shortcut.projections_equal(systems[i].projection, systems[j].projection))
        self.assertLess(max(abs(s.projection.yorg) for s in systems), 1e-8)


if __name__ == '__main__':
    unittest.main()
