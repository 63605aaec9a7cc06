#!/usr/bin/env python3
"""Writes the corpora's first inputs, fuzz/corpus/<reader>/seed-*: small texts of every kind that the readers know."""
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def write(reader, seeds):
    folder = os.path.join(HERE, "corpus", reader)
    os.makedirs(folder, exist_ok=True)
    for name, content in seeds.items():
        with open(os.path.join(folder, "seed-" + name), "wb") as out:
            out.write(content if isinstance(content, bytes) else content.encode("latin-1"))


def item(kind, name, values=None, count=1):
    if kind in "{}":
        return f"<{kind}{len(name)},{name}[1]>\r\n"
    if kind == "s":
        return f'<s{len(name)},{name}[{len(values)}]="{values}">\r\n'
    values = values if isinstance(values, list) else [values]
    return f"<{kind}{len(name)},{name}[{len(values)}]={','.join(map(str, values))}>\r\n"


def block(name, *content):
    return item("{", name) + "".join(content) + item("}", name)


ELLIPSOID = block("Ellipsoid", item("s", "Token", "WGS84"), item("s", "Name", "WGS 84"), item("d", "POSC", 7030),
                  item("f", "Radius", "6.378137000000000000e+06"), item("f", "Flat", "3.352810664747480490e-03"))


def projection(method, flags=(), **values):
    return block("Projection", item("s", "Method", method), ELLIPSOID,
                 *(item("f", key, value) for key, value in values.items()),
                 *(item("b", key, "t") for key in flags))


def datum(method, target, *content):
    return block("Datum", item("s", "Token", "D"), item("d", "POSC", 6314), item("s", "Method", method),
                 item("s", "Target", target), *content)


def warp(method, *content):
    return block("Georef", item("s", "Method", method), *content)


def encoded_text():
    shifts = [item("f", key, value) for key, value in
              dict(PMShift=0, dx=598.1, dy=73.7, dz=418.2, rx=0.202, ry=0.045, rz=-2.455, k=6.7).items()]
    points = [1.5, -2.5, 100, 0, 7e3, -8]
    write("encoded_text", {
        "empty-system": block("ORVDef", item("s", "Token", "MYGRID"), item("s", "Name", "My grid")),
        "utm-on-dhdn": block("ORVDef", projection("UTM", ("bSouth",), Scale=1, Lon0=15, Lat0=0, K0=0.9996),
                             datum("Bursa-Wolf", "WGS84", ELLIPSOID, *shifts)),
        "hotine": block("ORVDef", projection("Hotine Oblique Mercator", ("bUseAlpha", "bRotate", "bUOffset"), Alpha=53.3,
                                             Lat0=4, Lat1=4, Lon1=115, K0=0.99984, xOrg=590476.87)),
        "mre": block("ORVDef", datum("MRE", "WGS84", item("s", "MREType", "ED50"), item("s", "Special", "NAD83"))),
        "nadcon": block("ORVDef", datum("NADCON", "NAD83", item("b", "NadconPrvi", "t"), item("b", "Inverse", "t"))),
        "coefficients": block("ORVDef", warp("Affine with coefficients", item("f", "Coeff", [1, 0, 0, 0, 1, 0]))),
        "local": block("UCSDef", item("s", "Name", r"Site \x22A\x22"), item("f", "Scale", 0.3048), item("f", "XOrg", -5),
                       item("f", "YOrg", 1e3),
                       warp("Helmert", item("f", "SrcControls", points), item("f", "DestControls", points))),
        "unknown-items": block("ORVDef", item("u", "Future", 4294967295), "<v3,Raw[4]=00FF10AB>\r\n",
                               item("f", "x", [1, 2, 3]), item("s", "Comment", "c")),
        "unknown-block": block("ORVDef", block("Tomorrow", item("f", "x", 1)), item("s", "Comment", "c")),
        "nested-deep": "".join(item("{", "ORVDef") for _ in range(300)),
        "huge-count": "<{6,ORVDef[4294967295]>\r\n<s5,Token[4294967295]=\"a\">\r\n<f5,Scale[4294967295]=1,2>\r\n",
    })


def lists():
    write("ellipsoid_list", {
        "all-keys": '; comment\n{\n token="A" name="a b" comment=\'it is "quoted"\' radius=6378137 invflat=298.257223563'
                    ' posc=7030\n}\n{ Token=B Name=B radius=6370997.5 flat=0 }\n',
        "minor-radius": "{ token=C name=C radius=6378206.4 minrad=6356583.8 posc=7008 unknown=x }",
        "minor-radius-first": "{ token=C name=C minrad=6356583.8 radius=6378206.4 }",
        "no-brace": "token=A",
        "no-equals": "{ token A }",
        "no-end": '{ token="A" name="',
        "numbers": "{ token=N name=N radius=1e300 flat=0.99999999999999999999 }{ token=M name=M radius=0.0001 flat=1e-300 }",
        "negative": "{ radius=-1 flat=-0.5 posc=-99999999999999999999 }",
        "empty": "",
    })
    write("datum_list", {
        "bursa-wolf": '{\n token="D" name="d" comment="c" posc=6314 method="Bursa-Wolf" target="WGS84" ellipsoid="WGS84"\n'
                      " dx=598.1 dy=73.7 dz=418.2 rx=0.202 ry=0.045 rz=-2.455 k=6.7 pmshift=-17.4 geogcs=true\n}\n",
        "own-ellipsoid": "{ token=E name=E method=Mol target=NAD83 ellipsoid_token=X ellipsoid_name=Y "
                         "ellipsoid_radius=6378000.1234 ellipsoid_flat=0.0033 dx=1 }",
        "grids": "{ token=F name=F special=NAD27 method=NADCON target=NAD83 prvi=true inverse=true }"
                 "{ token=G name=G method=NTV2 target=NAD83-CANADA }{ token=H name=H method=MRE target=WGS84 mretype=ED50 }",
        "unknown-words": "{ token=I name=I method=Teleport }",
        "unknown-ellipsoid": "{ token=I name=I ellipsoid=Potato }",
        "unnamed": "{ token=J method=None target=WGS84 }",
        "out-of-range": "{ token=K name=K method=Bursa target=WGS84 ellipsoid=WGS84 pmshift=181 dx=1e39 k=1e308 }",
        "empty": "",
    })

    write("unit_list", {
        "foot": '{\n token="ft" name="foot" namep="feet" mul=0.3048 posc=9002\n}\n',
        "divided": "{ token=km name=kilometre div=0.001 }{ token=none name=none }",
        "meridian": "{ token=P name=Paris lon=2d20m14.025sE posc=8903 }{ token=G name=Greenwich lon=0 }",
        "far": "{ token=F name=Far lon=-361 }",
        "not-an-angle": "{ token=F name=Far lon=north }",
        "negative": "{ token=n name=n mul=-1 }",
        "tiny": "{ token=s name=second mul=0.00000484813681109535993590 }",
        "empty": "",
    })
    write("system_list", {
        "by-reference": "{ token=A name='g|a' datum=WGS84 projtype=UTM ellipsoid=WGS84 kscale=0.9996 lon0=9 scale=1 }",
        "inline": "{ token=B name=b datum_method=Mol datum_target=WGS84 datum_dx=1 datum_ellipsoid_radius=6378000\n"
                  " datum_ellipsoid_flat=0.0033 datum_ellipsoid_name=X projtype='Lambert Conformal Conic'\n"
                  " ellipsoid_radius=6378000 ellipsoid_flat=0.0033 lat1=45d30mN lat2=49 lat0=47 lon0=2d20m14sE posc=1 }",
        "local": "{ type=unref token=U name=u scale=0.3048 xorg=1 yorg=-2 }",
        "warp": "{ token=C name=c warp_method=Affine warp_pt=0 0 1 1 warp_pt=1 0 2 1 warp_pt=0 1 1 2 }",
        "coefficients": "{ token=C name=c warp_coeff=1 0 0 0 1 0 }",
        "plain": "{ token=P name=p comment='c' legacyname=old usgs=7 posc=8 future=1 }",
        "flags": "{ token=H name=h projtype=Hotine bsouth=true busealpha=TRUE brotate=no buoffset=1 alpha=53.3 }",
        "unknown-datum": "{ token=H name=h datum=Q }",
        "no-name": "{ token=H }",
        "type-without-value": "{ type",
        "empty": "",
    })


def lat_lon_text():
    write("lat_lon_text", {
        "seconds": "d10d30m36sS", "minutes": "d10d30", "plain": "d10.5", "west": "d  -7.25 w ", "quotes": "d12D30'59.999\"n",
        "symbol": "\xb052\xb031'12\"", "no-symbol": "\x0012.5E", "point": "d.", "trailing": "d10 30", "letter": "dN",
        "long": "d" + "9" * 400, "tiny": "d0." + "0" * 330 + "1", "carry": "d59.99999999999999", "spaces": "d10d 30' 15\" E",
    })


def nadcon_file(columns, rows, shift, spacing=0.5):
    record = 4 * (columns + 1)
    header = b"NADCON EXTRACTED REGION".ljust(56) + b"NADGRD  " + struct.pack(
        "<iiifffff", columns, rows, 1, -100, spacing, 40, spacing, 0)
    return header.ljust(record, b"\0") + b"".join(
        struct.pack(f"<{columns + 1}f", 0, *(shift * (col - row) for col in range(columns))) for row in range(rows))


def zip_file(members, comment=b""):
    archive = directory = b""
    for name, content, method in members:
        packer = zlib.compressobj(9, zlib.DEFLATED, -15)
        data = packer.compress(content) + packer.flush() if method == 8 else content
        sizes = struct.pack("<III", zlib.crc32(content), len(data), len(content))
        directory += (struct.pack("<IHHHHI", 0x02014B50, 20, 20, 0, method, 0) + sizes
                      + struct.pack("<HHHHHII", len(name), 0, 0, 0, 0, 0, len(archive)) + name)
        archive += struct.pack("<IHHHI", 0x04034B50, 20, 0, method, 0) + sizes + struct.pack("<HH", len(name), 0) + name + data
    end = struct.pack("<IHHHHIIH", 0x06054B50, 0, 0, len(members), len(members), len(directory), len(archive), len(comment))
    return archive + directory + end + comment


def nadcon():
    # The length of the .los file, that file, and the .las file.
    def pair(los, las):
        return struct.pack("<I", len(los)) + los + las
    grid = nadcon_file(23, 3, 3.5)
    write("nadcon", {
        "pair": pair(grid, nadcon_file(23, 3, -1)),
        "large-shifts": pair(nadcon_file(23, 3, 3600), nadcon_file(23, 3, 1800)),
        "other-spacing": pair(grid, nadcon_file(23, 3, -1, 0.25)),
        "short": pair(grid[:-1], grid),
        "huge-count": pair(grid[:64] + b"\xff\xff\xff\x7f" * 2 + grid[72:], grid),
        "empty": b"",
    })


def ntv2_grid(name, parent, south, north, east, west, step, shift=1.0, count=None):
    columns, rows = int((west - east) / step) + 1, int((north - south) / step) + 1
    header = b"".join(key.ljust(8) + value for key, value in (
        (b"SUB_NAME", name.ljust(8)), (b"PARENT", parent.ljust(8)), (b"CREATED", bytes(8)), (b"UPDATED", bytes(8)),
        *((key, struct.pack("<d", value)) for key, value in (
            (b"S_LAT", south), (b"N_LAT", north), (b"E_LONG", east), (b"W_LONG", west), (b"LAT_INC", step),
            (b"LONG_INC", step))),
        (b"GS_COUNT", struct.pack("<ii", columns * rows if count is None else count, 0))))
    return header + b"".join(struct.pack("<4f", shift * i, -shift * i, 0, 0) for i in range(columns * rows))


def ntv2():
    def file(*grids, count=None):
        records = ((b"NUM_OREC", 11), (b"NUM_SREC", 11), (b"NUM_FILE", len(grids) if count is None else count))
        return (b"".join(key + struct.pack("<ii", value, 0) for key, value in records) + b"GS_TYPE SECONDS "
                + b"".join(key.ljust(8) + bytes(8) for key in (b"VERSION", b"SYSTEM_F", b"SYSTEM_T", b"MAJOR_F", b"MINOR_F",
                                                               b"MAJOR_T", b"MINOR_T")) + b"".join(grids))
    main = ntv2_grid(b"MAIN", b"NONE", 180000, 187200, -43200, -36000, 3600)
    child = ntv2_grid(b"CHILD", b"MAIN", 181800, 183600, -39600, -37800, 1800)
    write("ntv2", {
        "one": file(main),
        "child": file(child, main),
        "twins": file(main, child, child),
        "large-shifts": file(ntv2_grid(b"MAIN", b" NONE", 180000, 187200, -43200, -36000, 3600, 900)),
        "own-parent": file(main, ntv2_grid(b"A", b"B", 0, 10, 0, 10, 10), ntv2_grid(b"B", b"A", 0, 10, 0, 10, 10)),
        "huge-count": file(main, count=2**31 - 1),
        "huge-grid": file(ntv2_grid(b"MAIN", b"NONE", 0, 1, 0, 1, 1, count=2**31 - 1)),
        "none": file(),
        "empty": b"",
    })


def zips():
    grid = nadcon_file(23, 3, 3.5)
    write("zip", {
        "pair": zip_file([(b"A.LOS", grid, 8), (b"a.las", grid, 8)]),
        "stored": zip_file([(b"a.los", grid, 0), (b"a.las", grid, 8)], b"comment"),
        "alone": zip_file([(b"dir/a.los", grid, 8), (b"empty", b"", 0), (b"odd", b"x", 12)]),
        "zeros": zip_file([(b"a.los", bytes(100000), 8)]),
        "no-members": zip_file([]),
        "empty": b"",
    })


def well_known_text():
    base = ('GEOGCS["DHDN",DATUM["Deutsches_Hauptdreiecksnetz",SPHEROID["Bessel 1841",6377397.155,299.1528128],'
            'TOWGS84[598.1,73.7,418.2,0.202,0.045,-2.455,6.7]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]]')
    axes = ',AXIS["Easting",EAST],AXIS["Northing",NORTH],AUTHORITY["EPSG","31467"]'
    parameters = ''.join(f',PARAMETER["{name}",{value}]' for name, value in [
        ("latitude_of_origin", 50), ("central_meridian", 9), ("scale_factor", 1), ("false_easting", 3500000)])
    wkt1 = f'PROJCS["x",{base},PROJECTION["Transverse_Mercator"]{parameters},UNIT["metre",1]{axes}]'
    geographic2 = ('GEOGCRS["x",DATUM["x",ELLIPSOID["b",6377397.155,299.1528128,LENGTHUNIT["metre",1]]],PRIMEM["Paris",2.5969213,'
                   'ANGLEUNIT["grad",0.0157079632679489]],CS[ellipsoidal,2],AXIS["lat",north],AXIS["lon",east],'
                   'ANGLEUNIT["grad",0.0157079632679489]]')
    wgs84 = 'GEOGCRS["WGS 84",DATUM["World Geodetic System 1984",ELLIPSOID["WGS 84",6378137,298.257223563]],ID["EPSG",4326]]'
    wkt2 = ('PROJCRS["x",BASEGEOGCRS["x",DATUM["x",ELLIPSOID["b",6377397,299]]],CONVERSION["c",METHOD["Polar Stereographic (variant '
            'B)",ID["EPSG",9829]],PARAMETER["Latitude of standard parallel",71,ANGLEUNIT["degree",0.0174532925199433]],PARAMETER['
            '"Longitude of origin",-45,ANGLEUNIT["degree",0.0174532925199433]]],CS[Cartesian,2],AXIS["e",south,MERIDIAN[45,ANGLEUNIT["degree",0.0174532925199433]]],AXIS["n",south,MERIDIAN[135]],LENGTHUNIT["m",1]]')
    write("wkt", {
        "wkt1": wkt1,
        "geographic": base,
        "wkt2": wkt2,
        "bound": f'BOUNDCRS[SOURCECRS[{geographic2}],TARGETCRS[{wgs84}],ABRIDGEDTRANSFORMATION["t",METHOD["Coordinate Frame"],'
                 + ",".join(f'PARAMETER["{axis}-axis {what}",{value}]' for what, value in [("translation", 1), ("rotation", 2)]
                            for axis in "XYZ") + ',PARAMETER["Scale difference",1.000001]]]',
        "lambert": wkt1.replace("Transverse_Mercator", "Lambert_Conformal_Conic_1SP"),
        "hotine": wkt1.replace("Transverse_Mercator", "Hotine_Oblique_Mercator").replace("PARAMETER[", 'PARAMETER["azimuth",1],PARAMETER[', 1),
        "extension": wkt1.replace(axes, ',EXTENSION["PROJ4","+proj=cass +lat_0=50 +lon_0=9 +ellps=bessel '
                                   '+towgs84=598.1,73.7,418.2,0.202,0.045,-2.455,6.7"]'),
        "utm": "+proj=utm +zone=33 +south +datum=WGS84 +units=us-ft +no_defs",
        "lcc": "+proj=lcc +lat_1=49 +lat_2=44 +lat_0=46.5 +lon_0=3 +x_0=700000 +ellps=GRS80 +towgs84=0,0,0 +pm=paris",
        "far": "+proj=longlat +ellps=intl +towgs84=1e39,0,0",
        "longlat": "+proj=longlat +a=6377397 +rf=299 +pm=2.5",
        "empty": "",
    })


encoded_text()
well_known_text()
nadcon()
ntv2()
zips()
lists()
lat_lon_text()
