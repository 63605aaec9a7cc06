// Datums.h: datums for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/tables/EllipsoidList.h"

namespace orv::test {

inline EllipsoidDef Wgs84() { return {6378137.0, 1 / 298.257223563, "WGS84", "WGS 84", nullptr, 7030}; }
inline EllipsoidDef Grs80() { return {6378137.0, 1 / 298.257222101, "GRS80", "GRS 1980", nullptr, 7019}; }
inline EllipsoidDef Clarke66() {
  return {6378206.4, 0.0033900753039287634, "CLRK66", "Clarke 1866", nullptr, 7008};
}
inline EllipsoidDef International() {
  return {6378388.0, 1 / 297.0, "INTL", "International 1924", nullptr, 7022};
}

/// A datum whose x translation tells it from all others: a route's steps are known by it.
struct Make {
  DatumMethod method = DatumMethodMolodensky;
  DatumTarget target = DatumTargetWGS84;
  DatumTarget special = DatumTargetNone;
  int posc = 0;
  double dx = 0.0;

  operator DatumDef() const {
    DatumParameters p;
    p.method = method;
    p.target = target;
    p.ellipsoid = Wgs84();
    p.dx = dx;
    p.mreType = DatumMRETypeED50;
    DatumDef datum(&p, posc);
    datum.SetSpecial(special);
    return datum;
  }
};

/// Named, as entries of a file have to be.
inline DatumDef Named(DatumDef datum, const char* token, const char* name) {
  datum.SetToken(token);
  datum.SetName(name);
  return datum;
}

/// Empties the known ellipsoids and datums before and behind each test.
class KnownLists : public ::testing::Test {
 protected:
  KnownLists() { Flush(); }
  ~KnownLists() override { Flush(); }
  static void Flush() {
    ORVKnownDatumsList.Flush();
    ORVKnownEllipsoidsList.Flush();
  }
};

}  // namespace orv::test
