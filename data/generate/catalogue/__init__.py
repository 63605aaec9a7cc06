"""Makes the library's catalogue, data/catalogue, of the EPSG data set in PROJ's proj.db.

One module for each table (units, meridians, ellipsoids, datums, systems), and beside them
    database      reads proj.db, and brings its numbers to metres and degrees
    areas         boxes of longitude and latitude
    conversions   the exact conversions of parameters, each with its source
    projections   an EPSG method and its parameters as a projection of the library
    ways          how a geodetic datum gets to WGS 84
    shortcut      keeps projections of different datums from comparing equal
    sample        what the tests need to know beside the files
    coverage      what is expressed, what is left out and why
    ocf           the text of the files

Standard library only.  See docs/catalogue.md.
"""
