#!/usr/bin/env python3
"""Validates what `orv explain --json` writes against docs/schema/explain.schema.json.

usage: explain_schema.py ORV SCHEMA.  Status 77, which CTest takes for skipped, where jsonschema is not installed.
"""
import json
import pathlib
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(77)

PAIRS = [
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


def main():
    orv, schema_path = sys.argv[1:3]
    schema = json.loads(pathlib.Path(schema_path).read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    failures = 0
    for source, target in PAIRS:
        out = subprocess.run([orv, "explain", source, target, "--json"], capture_output=True, check=False)
        if out.returncode != 0:
            print(f"{source} -> {target}: {out.stderr.decode()}")
            failures += 1
            continue
        for error in validator.iter_errors(json.loads(out.stdout.decode("utf-8"))):
            print(f"{source} -> {target}: {error.json_path}: {error.message}")
            failures += 1
    # A schema that takes anything would prove nothing.
    wrong = json.loads(subprocess.run([orv, "explain", *PAIRS[0], "--json"], capture_output=True, check=True).stdout)
    del wrong["stages"][0]["steps"][0]["direction"]
    if validator.is_valid(wrong):
        print("the schema takes a step without a direction")
        failures += 1
    print(f"{len(PAIRS)} explanations, {failures} failures")
    return 1 if failures else 0


sys.exit(main())
