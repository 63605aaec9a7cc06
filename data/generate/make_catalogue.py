#!/usr/bin/env python3
"""Makes the files of data/catalogue, and what the tests know beside them, of PROJ's data base of EPSG.

    data/generate/make_catalogue.py [--db /usr/share/proj/proj.db] [--root FOLDER]
    data/generate/make_catalogue.py --check

Writes below FOLDER (the repository): data/catalogue/{*.ocf,NOTICE,coverage.md}, tests/data/catalogue_forms.tsv and
tests/peer/catalogue_sample.tsv.  With --check it writes nothing and compares what it would write with what is there: 0 when all
bytes are the same, 1 when not, 77 (skipped) without proj.db or with one of another EPSG version.  See docs/catalogue.md.
"""
import argparse
import pathlib
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from catalogue import coverage, ellipsoids, meridians, ocf, sample, units  # noqa: E402
from catalogue.database import Database  # noqa: E402
from catalogue.datums import Datums  # noqa: E402
from catalogue.systems import Systems  # noqa: E402
from catalogue.ways import Ways  # noqa: E402


def make(db_path, root):
    db = Database(db_path)
    version = '%s (%s)' % (db.metadata['EPSG.VERSION'], db.metadata['EPSG.DATE'])
    ways = Ways(db)
    datums = Datums(db, ways)
    systems = Systems(db, ways, datums)
    system_entries, datum_entries = systems.table(), datums.table()

    folder = root / 'data' / 'catalogue'
    for place in (folder, root / 'tests' / 'data', root / 'tests' / 'peer'):
        place.mkdir(parents=True, exist_ok=True)
    ocf.write(folder / 'linearunit.ocf', 'Linear units', version, units.linear(db), ['The base unit is the metre.'])
    ocf.write(folder / 'angularunit.ocf', 'Angular units', version, units.angular(db), ['The base unit is the degree.'])
    ocf.write(folder / 'meridian.ocf', 'Prime meridians', version, meridians.table(db), ['Degrees east of Greenwich.'])
    ocf.write(folder / 'ellipsoid.ocf', 'Ellipsoids', version, ellipsoids.table(db, datums.used_ellipsoids), ['Metres.'])
    ocf.write(folder / 'datum.ocf', 'Datums', version, datum_entries,
              ['Metres, arc-seconds (position vector), parts per million.  posc is the EPSG code of the datum.'])
    ocf.write(folder / 'system.ocf', 'Coordinate systems', version, system_entries,
              ['posc is the EPSG code of the system.  False origins in metres; Scale brings them to the unit.'],
              blank_between=False)
    (folder / 'NOTICE').write_text(coverage.notice(version), encoding='ascii')
    (folder / 'coverage.md').write_text(coverage.report(db, ways, datums, systems, version), encoding='ascii')
    (root / 'tests' / 'data' / 'catalogue_forms.tsv').write_text(sample.forms(systems), encoding='ascii')
    (root / 'tests' / 'peer' / 'catalogue_sample.tsv').write_text(sample.drawn(db, systems), encoding='ascii')


SKIPPED = 77


def check(db_path, root):
    if not pathlib.Path(db_path).exists():
        print('skipped: no', db_path)
        return SKIPPED
    version = Database(db_path).metadata['EPSG.VERSION']
    if 'Dataset %s ' % version not in (root / 'data' / 'catalogue' / 'system.ocf').read_text(encoding='ascii')[:2000]:
        print('skipped: the catalogue is of another version than', version)
        return SKIPPED
    different = []
    with tempfile.TemporaryDirectory() as folder:
        fresh = pathlib.Path(folder)
        make(db_path, fresh)
        for path in sorted(p for p in fresh.rglob('*') if p.is_file()):
            there = root / path.relative_to(fresh)
            if not there.exists() or there.read_bytes() != path.read_bytes():
                different.append(str(path.relative_to(fresh)))
    print('\n'.join('differs: ' + name for name in different) or 'all files are the same')
    return 1 if different else 0


def main():
    here = pathlib.Path(__file__).resolve().parents[2]
    parser = argparse.ArgumentParser(description=__doc__.split('\n', 1)[0])
    parser.add_argument('--db', default='/usr/share/proj/proj.db')
    parser.add_argument('--root', type=pathlib.Path, default=here)
    parser.add_argument('--check', action='store_true')
    arguments = parser.parse_args()
    if arguments.check:
        return check(arguments.db, arguments.root)
    make(arguments.db, arguments.root)
    return 0


if __name__ == '__main__':
    sys.exit(main())
