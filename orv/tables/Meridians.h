// Meridians.h: prime meridians, and the library-wide list of them.
#pragma once

#include "orv/tables/TableList.h"

namespace orv {

class ORV_API MeridianInfo {
 public:
  std::string token;       ///< short key
  std::string name;        ///< display name
  double longitude = 0.0;  ///< degrees east of Greenwich, -360 to 360
  int posc = 0;            ///< POSC (EPSG) code; 0 means none
};

/// Prime meridians: see TableList.  Unit of its failures: "Meridians".
///
/// FindByName compares the name only.  Deliberate: FindByPOSCNumber searches every number, so 0 finds the
/// first meridian that has none; who means "none" must not search. Uniqueness in ORVKnownMeridiansList
/// (1032): "Can't have two meridians with the same POSC/EPSG number.", "... with the same ID token.", "...
/// with the same name.". Load: default file "meridian.ocf"; 1028 "Can't find meridians configuration file
/// '%s'", "Failed opening meridians configuration file for reading '%s'"; 1029 "%s(%d):  Failed reading
/// degrees or degree, minute, second value '%s'\n",
/// "%s(%d):  Longitude out of range.\n", and in the library-wide list "%s(%d):  No name parameter
/// specified.\n", "%s(%d):  No token parameter specified.\n". Save: 1028 "Failed opening meridians
/// configuration file for writing '%s'".
class ORV_API MeridianList : public TableList<MeridianInfo> {
 public:
  double EnumLongitude(int index) const;
  /// First entry whose longitude differs by less than 1e-9 degrees (absolute), or -1.  180 and -180 are
  /// different.
  int FindByLongitude(double longitude) const;
};

/// The prime meridians that the library knows.
extern ORV_API MeridianList ORVKnownMeridiansList;

}  // namespace orv
