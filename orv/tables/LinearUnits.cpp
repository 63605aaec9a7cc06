#include "orv/tables/LinearUnits.h"

#include "orv/tables/internal/UnitListImpl.h"

namespace orv {

template <>
struct internal::TableTraits<LinearUnitInfo> : internal::UnitTraits {
  static constexpr const char* kUnit = "LinearUnits";
  static constexpr ListFile kFile = {
      "linearunit.ocf",
      "Can't find linear units configuration file '%s'",
      "Failed opening linear units configuration file for reading '%s'",
      "Failed opening linear units configuration file for writing '%s'",
      ";\n; Brevan linear unit configuration file.\n;\n\n",
      ";\n; End linear unit configuration file.\n;\n",
      false,
  };
  static constexpr UniqueRule<TableCore<LinearUnitInfo>> kUnique[] = {
      {POSCTaken<LinearUnitInfo>, "Can't have two linear units with same POSC/EPSG number."},
      {TokenTaken<LinearUnitInfo>, "Can't have two linear units with same ID token."},
      {NameTaken<LinearUnitInfo>, "Can't have two linear units with same name."},
  };
  static bool IsKnown(const TableList<LinearUnitInfo>* list) { return list == &ORVKnownLinearUnitsList; }
};

template class TableList<LinearUnitInfo>;
template class UnitList<LinearUnitInfo>;

double ORVConvertLinearUnit(double value, int fromUnit, int toUnit) {
  return internal::ConvertUnit(ORVKnownLinearUnitsList, value, fromUnit, toUnit);
}

}  // namespace orv
