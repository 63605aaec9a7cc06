#include "orv/tables/Meridians.h"

#include <climits>
#include <cmath>

#include "orv/tables/LatLonText.h"
#include "orv/tables/internal/TableListImpl.h"

namespace orv {

template <>
struct internal::TableTraits<MeridianInfo> {
  static constexpr const char* kUnit = "Meridians";
  static constexpr ListFile kFile = {
      "meridian.ocf",
      "Can't find meridians configuration file '%s'",
      "Failed opening meridians configuration file for reading '%s'",
      "Failed opening meridians configuration file for writing '%s'",
      ";\n; Brevan meridians configuration file.\n;\n\n",
      ";\n; End meridians configuration file.\n;\n",
      false,
  };
  // Deliberate: "the same" here, "same" in the messages about units.
  static constexpr UniqueRule<TableCore<MeridianInfo>> kUnique[] = {
      {POSCTaken<MeridianInfo>, "Can't have two meridians with the same POSC/EPSG number."},
      {TokenTaken<MeridianInfo>, "Can't have two meridians with the same ID token."},
      {NameTaken<MeridianInfo>, "Can't have two meridians with the same name."},
  };
  // Deliberate: every number is looked for, 0 too.
  static constexpr int kLeastPOSC = INT_MIN;

  static bool IsKnown(const TableList<MeridianInfo>* list) { return list == &ORVKnownMeridiansList; }
  static bool HasName(const MeridianInfo& meridian, const char* name) {
    return EqualIgnoringCase(meridian.name, name);
  }

  static bool ParseLongitude(MeridianInfo& meridian, std::string_view text) {
    return LatLonToDegrees(std::string(text).c_str(), &meridian.longitude, 'd');
  }
  template <class Walker, class Self>
  static void Walk(Walker& w, Self& d) {
    w.Text("token", d.token);
    w.Text("name", d.name);
    w.Parsed("lon", "%.20f", d, d.longitude, &ParseLongitude,
             "%s(%d):  Failed reading degrees or degree, minute, second value '%s'\n");
    w.Int("posc", d.posc, d.posc != 0);
  }
  static const char* Fault(const MeridianInfo& meridian) {
    return meridian.longitude < -360.0 || meridian.longitude > 360.0 ? "%s(%d):  Longitude out of range.\n"
                                                                     : nullptr;
  }
};

template class TableList<MeridianInfo>;

double MeridianList::EnumLongitude(int index) const {
  const MeridianInfo* const entry =
      m_pImpl->core.Get(index, (ErrorSite{internal::TableTraits<MeridianInfo>::kUnit, __LINE__}));
  return entry ? entry->longitude : 0.0;
}

int MeridianList::FindByLongitude(double longitude) const {
  return m_pImpl->core.Find(
      [=](const MeridianInfo& entry) { return std::fabs(entry.longitude - longitude) < 1e-9; });
}

}  // namespace orv
