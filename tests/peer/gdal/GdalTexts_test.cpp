// The texts that GDAL writes of the catalogue's systems (as gdalsrsinfo prints them), read: each places points as the
// catalogue's system of that code does, or is refused.  GDAL's WKT1 has axes, and its PROJ strings have shifts, which PROJ's own
// do not.  Each fortieth system; all with ORV_EVERY_SYSTEM set.
#include <cpl_conv.h>
#include <cpl_error.h>
#include <gtest/gtest.h>
#include <ogr_srs_api.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "orv/convert/internal/OneDatum.h"
#include "orv/datum/DatumDef.h"
#include "orv/interop/Interchange.h"
#include "orv/projection/internal/MapPlaces.h"
#include "orv/shared/Exception.h"
#include "orv/system/internal/Angles.h"
#include "tests/support/ShippedCatalogue.h"

namespace orv {
namespace {

using Counts = std::map<std::string, int>;

constexpr const char* kForms[] = {"WKT1_GDAL", "WKT1_ESRI", "WKT2_2019", "PROJ4"};

class GdalTexts : public test::ShippedCatalogue {
 protected:
  static void SetUpTestSuite() {
    ShippedCatalogue::SetUpTestSuite();
    CPLPushErrorHandler(CPLQuietErrorHandler);
  }
  static void TearDownTestSuite() {
    CPLPopErrorHandler();
    ShippedCatalogue::TearDownTestSuite();
  }

  /// "" when GDAL cannot write it.
  static std::string TextOf(int code, const std::string& form) {
    const std::unique_ptr<void, void (*)(void*)> system(OSRNewSpatialReference(nullptr),
                                                        [](void* s) { OSRDestroySpatialReference(s); });
    if (OSRImportFromEPSG(system.get(), code) != OGRERR_NONE) return "";
    char* written = nullptr;
    const std::string option = "FORMAT=" + form;
    const char* const options[] = {option.c_str(), nullptr};
    const OGRErr status = form == "PROJ4" ? OSRExportToProj4(system.get(), &written)
                                          : OSRExportToWktEx(system.get(), &written, options);
    std::string text = status == OGRERR_NONE && written ? written : "";
    CPLFree(written);
    return text;
  }

  /// Of the places: "within 1 mm", or how far apart.
  static std::string PlacesOf(const ORVDef& known, const ORVDef& read) {
    const double here = internal::DegreesPerUnit(known), there = internal::DegreesPerUnit(read);
    if (here != 0.0 && there != 0.0 && here != there) return "another unit of angles";
    if (here == 1.0 && !known.HasProjection(false, true)) return "within 1 mm";
    const double distance = internal::MapPlaces(*known.GetProjection()).DistanceTo(*read.GetProjection());
    return distance <= 1e-3 ? "within 1 mm" : "farther apart";
  }

  static std::string DatumsOf(const DatumDef& known, const DatumDef& read) {
    if (internal::IsOneDatum(known, read)) return "the same datum";
    if (read.IsUnknown()) return "no known datum of that name";
    return known.GetPOSCNumber() == read.GetPOSCNumber() ? "another way of the same datum"
                                                         : "a datum by the text's own shift or name";
  }

  static std::string VerdictOf(const ORVDef& known, const std::string& text) {
    if (text.empty()) return "GDAL writes none";
    try {
      const std::unique_ptr<ORVDef> read = ORVReadText(text);
      return PlacesOf(known, *read) + ", " + DatumsOf(*known.GetDatum(), *read->GetDatum());
    } catch (const shr::Exception&) {
      return "refused";
    }
  }
};

TEST_F(GdalTexts, PlacePointsAsTheCatalogueDoes) {
  const bool isAll = std::getenv("ORV_EVERY_SYSTEM") != nullptr;
  const std::vector<const ORVDef*> systems = Systems();
  std::map<std::string, Counts> counts;
  for (size_t i = 0; i < systems.size(); i += isAll ? 1 : 40) {
    for (const char* const form : kForms) {
      const std::string text = TextOf(systems[i]->GetPOSC(), form), verdict = VerdictOf(*systems[i], text);
      ++counts[form][verdict];
      // What places points elsewhere says so itself: strings count degrees, and know nothing of Belgium's turn.
      if (verdict.find("within") != 0)
        std::printf("%s %d %s: %s\n", form, systems[i]->GetPOSC(), verdict.c_str(), text.c_str());
    }
  }
  for (const auto& [form, verdicts] : counts) {
    std::printf("%s\n", form.c_str());
    for (const auto& [verdict, count] : verdicts) std::printf("%7d  %s\n", count, verdict.c_str());
  }
  if (isAll) return;
  // A reader that refuses fails here; so does one that takes another datum.
  const std::string same = "within 1 mm, the same datum",
                    other = "within 1 mm, another way of the same datum";
  const std::map<std::string, Counts> expected = {
      {"WKT1_GDAL", {{same, 139}}},
      {"WKT1_ESRI", {{same, 136}, {other, 3}}},
      {"WKT2_2019", {{same, 139}}},
      {"PROJ4", {{same, 90}, {other, 2}, {"within 1 mm, no known datum of that name", 47}}}};
  EXPECT_EQ(counts, expected);
}

}  // namespace
}  // namespace orv
