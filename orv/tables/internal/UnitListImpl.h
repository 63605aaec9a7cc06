// UnitListImpl.h: linear and angular units; what differs between them stands in UnitTraits of each unit's
// file.
#pragma once

#include <cmath>

#include "orv/tables/UnitList.h"
#include "orv/tables/internal/TableListImpl.h"

namespace orv {

namespace internal {

inline double EffectiveMultiplier(const UnitInfo& unit) {
  return unit.multiplier > 0.0 ? unit.multiplier : unit.divider > 0.0 ? 1.0 / unit.divider : 0.0;
}
inline double EffectiveDivider(const UnitInfo& unit) {
  return unit.divider > 0.0 ? unit.divider : unit.multiplier > 0.0 ? 1.0 / unit.multiplier : 0.0;
}

/// What both kinds of units have in common of TableTraits.
struct UnitTraits {
  static constexpr int kLeastPOSC = 1;

  static bool HasName(const UnitInfo& unit, const char* name) {
    return EqualIgnoringCase(unit.name, name) || EqualIgnoringCase(unit.namePlural, name);
  }
  template <class Walker, class Self>
  static void Walk(Walker& w, Self& d) {
    w.Text("token", d.token);
    w.Text("name", d.name);
    w.Text("namep", d.namePlural, !d.namePlural.empty());
    w.Number("mul", "%.20f", d.multiplier, d.multiplier != 0.0);
    w.Number("div", "%.20f", d.divider, d.divider != 0.0);
    w.Int("posc", d.posc, d.posc != 0);
  }
  // 0 is accepted: it means that the value is not given.
  static const char* Fault(const UnitInfo& unit) {
    return unit.multiplier < 0.0 || unit.divider < 0.0 ? "%s(%d):  Scale must be positive.\n" : nullptr;
  }
};

/// value in unit `from` as a value in unit `to` of a list; 0.0 for an index outside it.  The order of the
/// operations is fixed: one multiplication or division into the base unit, one out of it.
template <class List>
double ConvertUnit(const List& list, double value, int from, int to) {
  if (from < 0 || from > list.Last() || to < 0 || to > list.Last()) return 0.0;
  const double base =
      list.EnumMultiplier(from) != 0.0 ? value * list.EnumMultiplier(from) : value / list.EnumDivider(from);
  return list.EnumMultiplier(to) != 0.0 ? base / list.EnumMultiplier(to) : base * list.EnumDivider(to);
}

}  // namespace internal

template <class Info>
const char* UnitList<Info>::EnumNamePlural(int index) const {
  const Info* const entry = this->m_pImpl->core.Get(index, ORV_TABLE_SITE);
  return entry ? entry->namePlural.c_str() : nullptr;
}
template <class Info>
double UnitList<Info>::EnumMultiplier(int index) const {
  const Info* const entry = this->m_pImpl->core.Get(index, ORV_TABLE_SITE);
  return entry ? entry->multiplier : 0.0;
}
template <class Info>
double UnitList<Info>::EnumDivider(int index) const {
  const Info* const entry = this->m_pImpl->core.Get(index, ORV_TABLE_SITE);
  return entry ? entry->divider : 0.0;
}

template <class Info>
int UnitList<Info>::FindByMultiplier(double multiplier) const {
  return this->m_pImpl->core.Find(
      [=](const Info& entry) { return std::fabs(internal::EffectiveMultiplier(entry) - multiplier) < 1e-9; });
}
template <class Info>
int UnitList<Info>::FindByDivider(double divider) const {
  return this->m_pImpl->core.Find(
      [=](const Info& entry) { return std::fabs(internal::EffectiveDivider(entry) - divider) < 1e-9; });
}

}  // namespace orv
