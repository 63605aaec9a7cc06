// ShippedCatalogue.h: a fixture that holds the catalogue that the library is installed with.
#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "orv/core/Startup.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "tests/support/Paths.h"
#include "tests/support/Table.h"

namespace orv::test {

/// The known lists hold the shipped files while the tests of such a suite run.
class ShippedCatalogue : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ORVInitialize(CatalogueFolder().c_str(), true);
    ASSERT_TRUE(ORVActive());
  }
  static void TearDownTestSuite() {
    ORVShutdown();
    ORVInitialize("", false);  // back to no configuration path; whatever that found goes again
    ORVShutdown();
  }

  static const ORVDef& System(const std::string& token) {
    const int pos = ORVKnownSystemsList.FindByToken(token.c_str());
    if (pos == 0) throw std::invalid_argument("no system " + token);
    return static_cast<const ORVDef&>(*ORVKnownSystemsList.Enum(pos));
  }
  /// Whichever prefix the code's token has.
  static const ORVDef& SystemOfCode(const std::string& code) {
    const bool isPlain = ORVKnownSystemsList.FindByToken(("EPSG:" + code).c_str()) != 0;
    return System((isPlain ? "EPSG:" : "ORV:") + code);
  }
  /// The known systems, without those made of datums at start-up.
  static std::vector<const ORVDef*> Systems() {
    std::vector<const ORVDef*> systems;
    for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
      const auto* const system = static_cast<const ORVDef*>(ORVKnownSystemsList.Enum(pos));
      if (std::string(system->GetToken()).rfind("GEOGCS_", 0) != 0) systems.push_back(system);
    }
    return systems;
  }
};

}  // namespace orv::test
