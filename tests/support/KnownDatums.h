// KnownDatums.h: datums for tests, and a fixture that holds the targets of their conversions.
#pragma once

#include <gtest/gtest.h>

#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/tables/EllipsoidDef.h"

namespace orv::test {

inline EllipsoidDef Bessel() {
  return EllipsoidDef(6377397.155, 1.0 / 299.1528128, "BESSEL", "Bessel 1841", nullptr, 7004);
}
inline EllipsoidDef International() {
  return EllipsoidDef(6378388.0, 1.0 / 297.0, "INTL", "International 1924", nullptr, 7022);
}
inline EllipsoidDef Wgs84Ellipsoid() {
  return EllipsoidDef(6378137.0, 1.0 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030);
}

/// The target datum itself.
inline DatumDef Wgs84Datum() {
  DatumParameters p;
  p.method = DatumMethodNone;
  p.target = DatumTargetWGS84;
  p.ellipsoid = Wgs84Ellipsoid();
  DatumDef datum(&p, 6326);
  datum.SetToken("WGS84");
  datum.SetName("World Geodetic System 1984");
  datum.SetSpecial(DatumTargetWGS84);
  return datum;
}

/// Seven parameters to WGS 84, of the order of those of central Europe.
inline DatumDef BursaWolfDatum() {
  DatumParameters p;
  p.method = DatumMethodBursaWolf;
  p.target = DatumTargetWGS84;
  p.ellipsoid = Bessel();
  p.dx = 598.1;
  p.dy = 73.7;
  p.dz = 418.2;
  p.rx = 0.202;
  p.ry = 0.045;
  p.rz = -2.455;
  p.k = 6.7;
  return DatumDef(&p, 6314);
}

/// Three parameters to WGS 84.
inline DatumDef MolodenskyDatum() {
  DatumParameters p;
  p.method = DatumMethodMolodensky;
  p.target = DatumTargetWGS84;
  p.ellipsoid = International();
  p.dx = -87.0;
  p.dy = -98.0;
  p.dz = -121.0;
  return DatumDef(&p, 6230);
}

/// The known datums hold WGS 84 alone while such a test runs.
class KnownDatums : public ::testing::Test {
 protected:
  void SetUp() override {
    ORVKnownDatumsList.Flush();
    ORVKnownDatumsList.Add(Wgs84Datum(), 0);
  }
  void TearDown() override { ORVKnownDatumsList.Flush(); }
};

}  // namespace orv::test
