// UnitList.h: what linear and angular units have in common.
#pragma once

#include "orv/tables/TableList.h"

namespace orv {

/// A unit of measure.  It is defined by its multiplier or, when that is 0, by its divider; which of the two
/// is given is kept as it is, so that exact ratios survive.
class ORV_API UnitInfo {
 public:
  std::string token;        ///< short key
  std::string name;         ///< display name, singular
  std::string namePlural;   ///< display name, plural; may be empty
  double multiplier = 0.0;  ///< value * multiplier = value in the base unit; 0 means not given
  double divider = 0.0;     ///< value / divider = value in the base unit; used when the multiplier is 0
  int posc = 0;             ///< POSC (EPSG) code; 0 means none
};

/// A list of units: see TableList.  FindByName tries name and plural name of each entry; FindByPOSCNumber
/// gives -1 for numbers below 1.
template <class Info>
class ORV_API UnitList : public TableList<Info> {
 public:
  const char* EnumNamePlural(int index) const;
  double EnumMultiplier(int index) const;
  double EnumDivider(int index) const;

  /// First entry whose effective multiplier differs from the given one by less than 1e-9 (absolute), or -1.
  /// The effective multiplier is the multiplier when above 0, else 1 / divider when that is above 0, else 0.
  int FindByMultiplier(double multiplier) const;
  /// The same with the effective divider: the divider when above 0, else 1 / multiplier when that is above 0,
  /// else 0.
  int FindByDivider(double divider) const;
};

}  // namespace orv
