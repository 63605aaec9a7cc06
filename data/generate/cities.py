#!/usr/bin/env python3
"""Makes data/samples/cities.csv from the public-domain tz database's zone1970.tab.

    data/generate/cities.py [/usr/share/zoneinfo/zone1970.tab] > data/samples/cities.csv

One row for each line of the table, in its order: name (the last part of the zone's name, blanks for underscores), longitude and
latitude in decimal degrees (six decimals: the source has whole arc-seconds), country (the first one named).
"""
import re
import sys

ISO6709 = re.compile(r"([+-])(\d{2})(\d{2})(\d{2})?([+-])(\d{3})(\d{2})(\d{2})?")


def degrees(sign, d, m, s):
    value = int(d) + int(m) / 60 + int(s or 0) / 3600
    return -value if sign == "-" else value


def main():
    table = sys.argv[1] if len(sys.argv) > 1 else "/usr/share/zoneinfo/zone1970.tab"
    print("name,lon,lat,country")
    with open(table, encoding="utf-8") as lines:
        for line in lines:
            if line.startswith("#") or not line.strip():
                continue
            countries, place, zone = line.rstrip("\n").split("\t")[:3]
            found = ISO6709.fullmatch(place).groups()
            name = zone.split("/")[-1].replace("_", " ")
            print(f"{name},{degrees(*found[4:]):.6f},{degrees(*found[:4]):.6f},{countries.split(',')[0]}")


if __name__ == "__main__":
    main()
