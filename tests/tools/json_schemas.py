#!/usr/bin/env python3
"""Validates what the commands of orv write with --json against docs/schema, and reads values out of it.

usage: json_schemas.py ORV SCHEMA_FOLDER.  Status 77, which CTest takes for skipped, where jsonschema is not installed.
"""
import copy
import json
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib

try:
    import jsonschema
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(77)

EXPLAIN = [
    ("EPSG:4267", "EPSG:4326"),
    ("EPSG:4326", "EPSG:4267"),
    ("EPSG:32633", "EPSG:31468"),
    ("EPSG:4326", "EPSG:4326"),
    ("datum=ORV:NADCON-6267", "EPSG:4326"),
    ("datum=ORV:NTV2-6267", "EPSG:4269"),
    ("datum=DMA:MRE-ED50", "method=Mercator,datum=WGS84"),
    ("method=UTM,Lon0=15,datum=WGS84", 'method=UTM,Lon0=15,ellipsoid=WGS84,datum=DHDN,name="quote "" and \\ and ü"'),
    ("datum=WGS84", "a=6378137,rf=298.257223563,datum.method=Molodensky,datum.target=WGS84,datum.dx=1"),
]
IDENTIFY = [
    ("method=UTM,Lon0=15,datum=EPSG:6326", 0),
    ("+proj=utm +zone=33 +datum=WGS84", 0),
    ("+proj=tmerc +lon_0=15.1 +k=0.9996 +x_0=500000 +datum=WGS84", 1),  # nothing places points so
    ("a=6378137,f=0,datum.method=Molodensky,datum.target=WGS84,datum.dx=1000", 1),  # nothing to measure
]
# A corner of a square lies 0.5 off: of the fitted affine each of the four is 0.125 off.
CONTROL = "x,y,X,Y\n0,0,10,10\n1,0,11,10\n0,1,10,11\n1,1,11,11.5\n"


class Run:
    def __init__(self, orv, folder):
        self.orv, self.folder, self.count, self.failures = orv, pathlib.Path(folder), 0, 0
        self.validators = {}
        for name in ("check", "explain", "identify", "latlon", "warp"):
            schema = json.loads((self.folder / f"{name}.schema.json").read_text())
            jsonschema.Draft7Validator.check_schema(schema)
            self.validators[name] = jsonschema.Draft7Validator(schema)

    def fail(self, what):
        print(what)
        self.failures += 1

    def expect(self, value, wanted, what):
        if value != wanted:
            self.fail(f"{what}: {value!r}, not {wanted!r}")

    def json(self, *arguments, status=0, stdin="", config=None):
        """What the command writes; checked against the schema where there is one."""
        self.count += 1
        before = ["--config", config] if config else []
        out = subprocess.run([self.orv, *before, *arguments, "--json"], input=stdin.encode(), capture_output=True, check=False)
        label = " ".join(map(str, arguments))
        self.expect(out.returncode, status, f"{label}: status, {out.stderr.decode()}")
        value = json.loads(out.stdout.decode("utf-8"))
        if validator := self.validators.get(arguments[0]):
            for error in validator.iter_errors(value):
                self.fail(f"{label}: {error.json_path}: {error.message}")
            self.reject_changed(arguments[0], value)
        return value

    def reject_changed(self, name, value):
        """A schema that takes anything would prove nothing."""
        one = value[0] if isinstance(value, list) and value else value
        if not isinstance(one, dict):
            return
        for change in ("token", "match", "file", "errors", "stages", "text", "degrees", "definition", "worstPoint"):
            if change not in one:
                continue
            wrong = copy.deepcopy(value)
            del (wrong[0] if isinstance(value, list) else wrong)[change]
            if self.validators[name].is_valid(wrong):
                self.fail(f"the schema of {name} takes one without {change}")
        wrong = copy.deepcopy(value)
        (wrong[0] if isinstance(value, list) else wrong)["surplus"] = 1
        if self.validators[name].is_valid(wrong):
            self.fail(f"the schema of {name} takes anything beside")


def nadcon_file(columns=23, rows=5):
    """A grid of no shift at all: -100 to -95.6 and 40 to 40.8, every 0.2 degrees."""
    record = 4 * (columns + 1)
    header = b"NADCON EXTRACTED REGION".ljust(56) + b"NADGRD".ljust(8) + struct.pack("<3i5f", columns, rows, 1, -100, 0.2, 40, 0.2, 0)
    return header.ljust(record, b"\0") + bytes(record) * rows


def explain(run, folder):
    grids = folder / "grids"
    grids.mkdir()
    for ending in ("los", "las"):
        (grids / f"a.{ending}").write_bytes(nadcon_file())
    plan = run.json("explain", "datum=ORV:NADCON-6267", "EPSG:4326", config=grids)
    step = plan["stages"][0]["steps"][0]
    crc = f"{zlib.crc32(nadcon_file()):08x}"
    found = [(file["path"], file["size"], file["crc32"]) for file in step["grids"]["files"]]
    run.expect(found, [(str(grids / f"a.{ending}"), len(nadcon_file()), crc) for ending in ("los", "las")], "found grids")
    for pair in EXPLAIN:
        plan = run.json("explain", *pair)
    del plan["stages"][0]["steps"][0]["direction"]
    if run.validators["explain"].is_valid(plan):
        run.fail("the schema takes a step without a direction")


def identify(run):
    for what, status in IDENTIFY:
        matches = run.json("identify", what, status=status)
        run.expect(any(m["match"] == "different" for m in matches), status == 1, what)
    equal, alike = run.json("identify", IDENTIFY[0][0])[0], run.json("identify", IDENTIFY[1][0])[-1]
    run.expect((equal["token"], equal["code"]), ("EPSG:32633", 32633), "the best match")
    # Sweden's system is UTM zone 33 written as Transverse Mercator.
    run.expect((alike["code"], alike["match"], alike["distance"] < 1e-3), (3006, "alike", True), "the last match")
    near = run.json("identify", IDENTIFY[2][0], status=1)[0]["differences"]
    run.expect(near, [{"what": "Central Longitude", "asked": "15.1", "known": "15"}], "the nearest miss")


def check(run, folder):
    good = folder / "ellipsoid.ocf"
    good.write_text("{ token=E name=Earth radius=6378137 invflat=298.25 }\n")
    value = run.json("check", str(good))
    run.expect(value, {"file": str(good), "kind": "ellipsoid", "entries": 1, "complete": True, "errors": []}, "check")
    good.unlink()  # what stands beside a file goes with it
    # Quotes, a backslash and a byte that is no UTF-8, in the name and so in the file's name as well.
    odd = folder / 'a "b" \\.ocf'
    odd.write_bytes(b'{ token=S name=System\n datum="\\\xff" }\n{ token=T name=Other }')
    value = run.json("check", "--as", "system", str(odd), status=1)
    run.expect(value["file"], str(odd), "check, the name")
    run.expect(value["errors"], [{"line": 2, "message": "Unknown datum '\\\ufffd'"}], "check, the bytes")
    run.expect((value["entries"], value["complete"]), (1, True), "check, the rest")
    odd.write_text("{ token=m name=metre mul=1 }\n{ token=x name=y\n")
    value = run.json("check", "--as", "linearunit", str(odd), status=1)
    run.expect((value["entries"], value["complete"], len(value["errors"])), (1, False, 1), "check, an open entry")
    odd.write_text("a=1\nb 2\n")
    value = run.json("check", "--as", "orvmisc", str(odd), status=1)
    message = "Expected '=' and a value behind 'b'; what follows is not read"
    run.expect(value["errors"], [{"line": 2, "message": message}], "check, settings")
    run.expect((value["entries"], value["complete"]), (1, False), "check, settings")
    # A hundred errors are enough.
    odd.write_text("{ token=G name=Greenwich lon=0 }\n" + "{ token=X name=y lon=400 }\n" * 101)
    value = run.json("check", "--as", "meridian", str(odd), status=1)
    run.expect((value["entries"], value["complete"], len(value["errors"])), (1, False, 100), "check, too many")
    run.expect(value["errors"][99], {"line": 101, "message": "Longitude out of range."}, "check, the hundredth")


def definition(run):
    value = run.json("def", 'method=Mercator,datum=WGS84,Lon0=9d30mE,name="a ""b"" \\, ü"')
    run.expect(value, {"name": 'a "b" \\, ü', "method": "Mercator", "ellipsoid": "EPSG:7030", "Scale": 1, "xOrg": 0,
                       "yOrg": 0, "Lon0": 9.5, "Lat0": 0, "datum": "EPSG:6326"}, "def")
    value = run.json("def", "EPSG:32733")
    run.expect((value["bSouth"], value["K0"], value["token"]), (True, 0.9996, "EPSG:32733"), "def")


def route(run):
    """For programs a comment stays whole; for people the Manual test has its fields in lines."""
    value = run.json("route", "DHDN", "WGS84")
    run.expect(value["steps"][0]["datum"]["comment"],
               "EPSG operation 1777: DHDN to WGS 84 (2); area: Germany - West Germany all states; accuracy: 3 m", "route")


def latlon(run):
    value = run.json("latlon", "--dms", "--letter", "lat", "10d30mS", 'x"y', status=1)
    run.expect(value, [{"text": "10d30mS", "degrees": -10.5, "written": "10d30m0.00sS"},
                       {"text": 'x"y', "degrees": None, "written": None}], "latlon")


def warp(run, folder):
    file = folder / "control.csv"
    file.write_text(CONTROL)
    value = run.json("warp", str(file))
    run.expect(value["method"], "Affine Polynomial", "warp")
    run.expect([value["meanError"], value["largestError"], value["worstPoint"]], [0.125, 0.125, 1], "warp")
    run.expect(value["controlPoints"][3], {"x": 1, "y": 1, "toX": 11, "toY": 11.5, "residual": 0.125}, "warp")
    run.expect("points" in value, False, "warp")
    value = run.json("warp", str(file), "--apply", "-", status=1, stdin="0.5,0.5\n1.7976931348623157e308,0\n")
    run.expect(value["points"], [{"x": 0.5, "y": 0.5, "toX": 10.5, "toY": 10.625},
                                 {"x": None, "y": None, "toX": None, "toY": None}], "warp --apply")


def main():
    run = Run(*sys.argv[1:3])
    with tempfile.TemporaryDirectory() as name:
        explain(run, pathlib.Path(name))
        identify(run)
        check(run, pathlib.Path(name))
        definition(run)
        latlon(run)
        route(run)
        warp(run, pathlib.Path(name))
    print(f"{run.count} texts, {run.failures} failures")
    return 1 if run.failures else 0


sys.exit(main())
