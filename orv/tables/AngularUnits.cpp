#include "orv/tables/AngularUnits.h"

#include "orv/tables/internal/UnitListImpl.h"

namespace orv {

template <>
struct internal::TableTraits<AngularUnitInfo> : internal::UnitTraits {
  static constexpr const char* kUnit = "AngularUnits";
  static constexpr ListFile kFile = {
      "angularunit.ocf",
      "Can't find angular units configuration file '%s'",
      "Failed opening angular units configuration file for reading '%s'",
      "Failed opening angular units configuration file for writing '%s'",
      ";\n; Brevan angular unit configuration file.\n;\n\n",
      ";\n; End angular unit configuration file.\n;\n",
      false,
  };
  static constexpr UniqueRule<TableCore<AngularUnitInfo>> kUnique[] = {
      {POSCTaken<AngularUnitInfo>, "Can't have two angular units with same POSC/EPSG number."},
      {TokenTaken<AngularUnitInfo>, "Can't have two angular units with same ID token."},
      {NameTaken<AngularUnitInfo>, "Can't have two angular units with same name."},
  };
  static bool IsKnown(const TableList<AngularUnitInfo>* list) { return list == &ORVKnownAngularUnitsList; }
};

template class TableList<AngularUnitInfo>;
template class UnitList<AngularUnitInfo>;

double ORVConvertAngularUnit(double value, int fromUnit, int toUnit) {
  return internal::ConvertUnit(ORVKnownAngularUnitsList, value, fromUnit, toUnit);
}

}  // namespace orv
