#!/usr/bin/env python3
"""orv convert on vector files: what it reads is made here byte by byte, what it writes is read without GDAL.

usage: vector_files.py ORV MODULE OTHER_MODULE.  MODULE is liborv_gdal.so; where it was not built all but the messages about
that is skipped (status 77 for CTest), and said.

13.5, 52.5 is 398178.40, 5817709.53 in UTM zone 33: proj +proj=utm +zone=33 +ellps=WGS84.  On a sphere of 180/pi the equator of
Mercator is measured in degrees.
"""
import json
import os
import pathlib
import shutil
import sqlite3
import struct
import subprocess
import sys
import tempfile

SPHERE, MERCATOR = "method=geographic,a=57.29577951308232,f=0", "method=Merc,a=57.29577951308232,f=0"
# As PROJ writes it: projinfo -q --single-line -o WKT1:ESRI EPSG:4326
PRJ = ('GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],'
       'UNIT["Degree",0.0174532925199433]]')
failures = 0


def expect(value, wanted, what):
    global failures
    if value != wanted:
        print(f"{what}: {value!r}, not {wanted!r}")
        failures += 1


class Orv:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder

    def __call__(self, *arguments, status=0, err=None, variables=None):
        done = subprocess.run([self.program, "convert", *map(str, arguments)], capture_output=True, check=False, cwd=self.folder,
                              env={**os.environ, **(variables or {})})
        label = " ".join(map(str, arguments))
        expect(done.returncode, status, f"{label}: status, {done.stderr.decode()}")
        if err is not None:
            expect(done.stderr.decode(), err, f"{label}: messages")
        return done.stdout.decode()


def shapefile(path, points, measures=None, prj=None, names=None):
    """Points, with measures if any [ESRI98], and a table with a column NAME."""
    kind = 21 if measures else 1
    size = 4 + (24 if measures else 16)
    xs, ys = [p[0] for p in points], [p[1] for p in points]

    def header(length):
        return (struct.pack(">7i", 9994, 0, 0, 0, 0, 0, length // 2) + struct.pack("<2i", 1000, kind) +
                struct.pack("<8d", min(xs), min(ys), max(xs), max(ys), 0, 0, min(measures or [0]), max(measures or [0])))

    shp, shx = b"", b""
    for i, (x, y) in enumerate(points):
        shx += struct.pack(">2i", (100 + len(shp)) // 2, size // 2)
        shp += struct.pack(">2i", i + 1, size // 2) + struct.pack("<i2d", kind, x, y)
        shp += struct.pack("<d", measures[i]) if measures else b""
    path.write_bytes(header(100 + len(shp)) + shp)
    path.with_suffix(".shx").write_bytes(header(100 + len(shx)) + shx)
    rows = b"".join(b" " + name.ljust(12).encode() for name in names or ["x"] * len(points))
    field = b"NAME".ljust(11, b"\0") + b"C" + bytes(4) + bytes([12, 0]) + bytes(14)
    path.with_suffix(".dbf").write_bytes(struct.pack("<4BI2H20x", 3, 126, 11, 21, len(points), 32 + 32 + 1, 13) + field +
                                         b"\r" + rows + b"\x1a")
    if prj:
        path.with_suffix(".prj").write_text(prj)
    return path


def gpkg_points(path, table):
    """Numbers of each point geometry, its type, and the other columns."""
    with sqlite3.connect(path) as base:
        rows = base.execute(f'select * from "{table}" order by fid').fetchall()
        code = base.execute("select srs_id from gpkg_geometry_columns").fetchone()[0]
    found = []
    for row in rows:
        blob = row[1]
        wkb = blob[8 + (0, 32, 48, 48, 64)[blob[3] >> 1 & 7]:]
        kind = struct.unpack("<I", wkb[1:5])[0]
        found.append((kind, [round(v, 2) for v in struct.unpack(f"<{(len(wkb) - 5) // 8}d", wkb[5:])], *row[2:]))
    return code, found


def missing_modules(orv, folder, other):
    shapefile(folder / "points.shp", [(13.5, 52.5)])
    nowhere = {"ORV_MODULE_PATH": "/no/such/folder"}
    orv("--to", "EPSG:32633", "points.shp", status=2, variables=nowhere,
        err="orv: vector files need the module /no/such/folder/liborv_gdal.so, which is not there: build with libgdal-dev "
            "installed and -DORV_GDAL=ON, or make the file GeoJSON first\n")
    modules = folder / "modules"
    modules.mkdir()
    module = modules / "liborv_gdal.so"
    here = {"ORV_MODULE_PATH": str(modules)}
    module.write_text("no module")
    orv("--to", "EPSG:32633", "points.shp", status=2, variables=here,
        err=f"orv: the module for vector files cannot be loaded: {module}: file too short; it needs GDAL (Debian's "
            "libgdal32)\n")
    if pathlib.Path(other).exists():
        shutil.copy(other, module)
        orv("--to", "EPSG:32633", "points.shp", status=2, variables=here,
            err=f"orv: {module} has version 2 and this program needs 1: both must come from one build\n")


def systems(orv, folder):
    names = ["Berlin", "\"a, b\""]
    shapefile(folder / "prj.shp", [(13.5, 52.5), (-0.0, 90.0)], prj=PRJ, names=names)
    lost = ("orv: layer 'prj': from its own system, EPSG:4326\n"
            "orv: feature 2: 1 position has no place in the target system and is left out\n")
    report = folder / "report.json"
    out = json.loads(orv("--to", "EPSG:3395", "prj.shp", "--report", report, status=1, err=lost))
    expect([f["properties"]["NAME"] for f in out["features"]], names, "the fields")
    expect(out["features"][1]["geometry"], None, "a lost point")
    counts = json.loads(report.read_text())
    expect((counts["points"], counts["placed"], counts["lost"]), (2, 1, 1), "the report")
    expect(counts["unplaced"][0]["count"], 1, "the report's reasons")

    # A system is given, or the layer has none.
    orv("--from", "EPSG:4326", "--to", "EPSG:32633", "prj.shp", "-o", "utm.gpkg", err="")
    orv("--to", "EPSG:32633", "prj.shp", "-o", "utm.gpkg", status=2, err="orv: --output: 'utm.gpkg' is there already\n")
    shapefile(folder / "unknown.shp", [(13.5, 52.5)])
    orv("--to", "EPSG:32633", "unknown.shp", status=2, err="orv: layer 'unknown' does not say its system: give --from\n")
    for output in ("utm2.gpkg", "utm2.shp"):  # nothing is left of an output that fails
        orv("--to", "EPSG:32633", "unknown.shp", "-o", output, status=2,
            err="orv: layer 'unknown' does not say its system: give --from\n")
        expect((folder / output).exists(), False, output)
    orv("--from", "EPSG:4326", "--to", "EPSG:32633", "unknown.shp", "-o", "utm2.gpkg", err="")
    code, rows = gpkg_points(folder / "utm2.gpkg", "unknown")
    expect(code, 32633, "the code of the target")
    expect(rows, [(1, [398178.40, 5817709.53], "x")], "a point in UTM")
    # And from there back, by the system that was written.
    out = json.loads(orv("--to", "EPSG:4326", "utm2.gpkg", err="orv: layer 'unknown': from its own system, EPSG:32633\n"))
    expect([round(v, 7) for v in out["features"][0]["geometry"]["coordinates"]], [13.5, 52.5], "back again")
    shapefile(folder / "local.shp", [(1, 2)], prj='LOCAL_CS["site",UNIT["metre",1]]')
    text = subprocess.run([orv.program, "convert", "--to", "EPSG:32633", folder / "local.shp"], capture_output=True, check=False)
    expect((text.returncode, text.stderr.decode().startswith("orv: the system of layer 'local' cannot be used: "),
            text.stderr.decode().endswith(" Give --from\n")), (2, True, True), text.stderr.decode())
    # Targets that no text tells exactly; a feature without any fields.
    (folder / "bare.geojson").write_text('{"type":"Point","coordinates":[13.5,52.5]}')
    orv("--from", "datum=ORV:NADCON-6267", "--to", "method=UTM,Lon0=15,datum=ORV:NADCON-6267", "bare.geojson", "-o",
        "grids.gpkg",
        err="orv: the layers are written without their system: The system cannot be written as WKT2:2019: its datum is "
            "converted by grids\n")
    local = "<{6,UCSDef[1]>\r\n<f5,Scale[1]=2.5>\r\n<f4,XOrg[1]=-10>\r\n<}6,UCSDef[1]>\r\n"
    orv("--from", local, "--to", local, "bare.geojson", "-o", "local.gpkg",
        err="orv: the layers are written without their system: a local system has no well-known text\n")
    expect(gpkg_points(folder / "local.gpkg", "bare")[1], [(1, [13.5, 52.5])], "a local system")


def further_numbers(orv, folder):
    shapefile(folder / "measured.shp", [(13.5, 52.5)], measures=[7.25], prj=PRJ)
    orv("--to", "EPSG:32633", "measured.shp", "-o", "m.gpkg", "--quiet")
    expect(gpkg_points(folder / "m.gpkg", "measured")[1], [(2001, [398178.40, 5817709.53, 7.25], "x")], "a measure")
    (folder / "z.geojson").write_text('{"type":"Feature","properties":{"n":3},"geometry":{"type":"Point","coordinates":[13.5,52.5,99.5]}}')
    orv("--from", "EPSG:4326", "--to", "EPSG:32633", "z.geojson", "-o", "z.gpkg", "--quiet")
    expect(gpkg_points(folder / "z.gpkg", "z")[1], [(1001, [398178.40, 5817709.53, 99.5], 3)], "a height")


def rounded(value):
    if isinstance(value, list):
        return [rounded(v) for v in value]
    if isinstance(value, dict):
        return {key: rounded(v) for key, v in value.items()}
    return round(value, 6) if isinstance(value, float) else value


def like_native(orv, folder):
    """GeoJSON to GeoPackage to GeoJSON gives what the tool's own GeoJSON gives."""
    shapes = [
        {"type": "Point", "coordinates": [12.25, 0]},
        {"type": "MultiPoint", "coordinates": [[1, 0], [2, 90], [3, 0]]},
        {"type": "LineString", "coordinates": [[-20, 0], [10, 0]]},
        {"type": "LineString", "coordinates": [[150, 1], [190, 1]]},
        {"type": "MultiLineString", "coordinates": [[[0, 0], [10, 5]], [[20, 0], [30, 5], [30, 6]]]},
        {"type": "Polygon", "coordinates": [[[0, 60], [20, 60], [20, 90], [0, 90], [0, 60]],
                                            [[5, 65], [6, 65], [6, 66], [5, 66], [5, 65]]]},
        {"type": "MultiPolygon", "coordinates": [[[[170, -5], [190, -5], [190, 5], [170, 5], [170, -5]]],
                                                 [[[0, 0], [1, 0], [1, 1], [0, 0]]]]},
        {"type": "GeometryCollection", "geometries": [{"type": "Point", "coordinates": [7, 0]},
                                                      {"type": "LineString", "coordinates": [[0, 0], [10, 0]]}]},
        None,
        {"type": "Point", "coordinates": [0, 90]},
    ]
    features = [{"type": "Feature", "properties": {"name": f"ä \"{i}\"", "n": i, "x": i / 4}, "geometry": shape}
                for i, shape in enumerate(shapes)]
    (folder / "all.geojson").write_text(json.dumps({"type": "FeatureCollection", "features": features}))
    for more in ([], ["--no-clip"]):
        common = ["--from", SPHERE, "--to", MERCATOR, "-p", "9", *more]
        native = json.loads(orv(*common, "all.geojson", "--quiet", status=1))
        (folder / "all.gpkg").unlink(missing_ok=True)
        orv(*common, "all.geojson", "-o", "all.gpkg", "--quiet", status=1)
        back = json.loads(orv("--from", MERCATOR, "--to", MERCATOR, "--no-clip", "-p", "9", "all.gpkg", "--quiet"))
        expect(len(back["features"]), len(shapes), "features")
        for one, other in zip(native["features"], back["features"]):
            expect(other["properties"], one["properties"], f"properties {more}")
            expect(rounded(other["geometry"]), rounded(one["geometry"]), f"{one['properties']['name']} {more}")
    told = "orv: feature 10: 1 position has no place in the target system and is left out\n"
    told = told.replace("feature 10", "feature 2") + told
    told += "orv: 5 lines and polygons whole, 3 clipped, 2 of them split, 0 dropped\n"
    orv("--from", SPHERE, "--to", MERCATOR, "all.geojson", "-o", "told.fgb", status=1, err=told)


def mistakes(orv, folder):
    shapefile(folder / "one.shp", [(13.5, 52.5)], prj=PRJ)
    (folder / "bad.gpkg").write_text("x")
    for arguments, err in (
            (["nothere.shp"], "cannot read 'nothere.shp': nothere.shp: No such file or directory"),
            (["bad.gpkg"], "cannot read 'bad.gpkg': `bad.gpkg' not recognized as a supported file format"),
            (["one.shp", "--format", "Nonsense"], "GDAL has no format 'Nonsense'"),
            (["one.shp", "-o", "a.shp", "--output-format", "Nonsense"], "GDAL has no format 'Nonsense'"),
            (["one.shp", "-o", "a.x", "--output-format", "VRT"], "GDAL cannot write vector files of the format 'VRT'"),
            (["one.shp", "-o", "a.xyz123"], "GDAL writes no vector files that are named like 'a.xyz123': give --output-format"),
            (["one.shp", "--lat-first"], "--lat-first: vector files hold longitude before latitude"),
            (["one.shp", "--format", "text", "-o", "a.shp"], "--output: points in lines of text go to standard output"),
    ):
        orv("--to", "EPSG:32633", *arguments, status=2, err=f"orv: {err}\n")
    done = orv("--to", "EPSG:32633", "one.shp", "-o", "/no/such/folder/a.gpkg", status=2)
    expect(done, "", "an output that cannot be made")
    orv("--to", "EPSG:32633", "points.csv", status=2, err="orv: --from is required\n")


def main():
    program, module, other = sys.argv[1:4]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        orv = Orv(program, folder)
        missing_modules(orv, folder, other)
        if pathlib.Path(module).exists():
            systems(orv, folder)
            further_numbers(orv, folder)
            like_native(orv, folder)
            mistakes(orv, folder)
        else:
            print(f"SKIPPED, LOUDLY: {module} was not built (libgdal-dev is missing, or -DORV_GDAL=OFF)")
            return 1 if failures else 77
    print(f"{failures} failures")
    return 1 if failures else 0


sys.exit(main())
