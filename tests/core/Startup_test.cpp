#include "orv/core/Startup.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/GridBytes.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

const std::vector<std::string> kFiles = {"meridian.ocf",  "angularunit.ocf", "linearunit.ocf",
                                         "ellipsoid.ocf", "datum.ocf",       "system.ocf"};

// A folder with one small file for each list, and the library as it is when it has just been loaded.
class Startup : public ::testing::Test {
 protected:
  void SetUp() override {
    m_Before = Globals();
    Globals() = ORVGlobals();
    EmptyLists();
    m_Folder.Write("meridian.ocf", "{ token=G name=Greenwich lon=0 }");
    m_Folder.Write("angularunit.ocf", "{ token=d name=degree mul=1 }");
    m_Folder.Write("linearunit.ocf", "{ token=m name=metre mul=1 }");
    m_Folder.Write("ellipsoid.ocf", "{ token=E name=Ellipsoid radius=6378137 invflat=298 posc=7030 }");
    m_Folder.Write("datum.ocf", Datum("A", "datum a", 6326, true) + Datum("B", "datum b", 6327, false) +
                                    Datum("C", "datum c", 6999, true));
    m_Folder.Write("system.ocf", "{ token=S name='Group|system' datum=A }");
  }
  void TearDown() override {
    Globals() = m_Before;
    EmptyLists();
  }

  static void EmptyLists() {
    ORVKnownSystemsList.Flush();
    ORVKnownDatumsList.Flush();
    ORVKnownEllipsoidsList.Flush();
    ORVKnownAngularUnitsList.Flush();
    ORVKnownLinearUnitsList.Flush();
    ORVKnownMeridiansList.Flush();
  }
  static std::string Datum(const std::string& token, const std::string& name, int posc, bool geogcs) {
    return "{ token=" + token + " name='" + name +
           "' method=Molodensky target=WGS84 ellipsoid=E posc=" + std::to_string(posc) +
           (geogcs ? " geogcs=true }\n" : " }\n");
  }
  /// Entries of the lists in the order of their files.
  static std::vector<int> Counts() {
    return {ORVKnownMeridiansList.Count(),  ORVKnownAngularUnitsList.Count(), ORVKnownLinearUnitsList.Count(),
            ORVKnownEllipsoidsList.Count(), ORVKnownDatumsList.Count(),       ORVKnownSystemsList.Count()};
  }
  static std::string SystemTokens() {
    std::string tokens;
    for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
      tokens += std::string(ORVKnownSystemsList.EnumToken(pos)) + " ";
    }
    return tokens;
  }
  static const ORVDef& System(const char* token) {
    const int pos = ORVKnownSystemsList.FindByToken(token);
    return static_cast<const ORVDef&>(*ORVKnownSystemsList.Enum(pos));
  }
  void Start(bool bThrowIfFileMissing = true) { ORVInitialize(m_Folder.Path().c_str(), bThrowIfFileMissing); }
  void RemoveFile(const std::string& name) { std::filesystem::remove(m_Folder.Path(name)); }

  test::TempFolder m_Folder;
  ORVGlobals m_Before;
};

const std::vector<int> kAllLoaded = {1, 1, 1, 1, 3, 3};  // two geographic systems more than the file has
const std::vector<int> kAllEmpty = {0, 0, 0, 0, 0, 0};

// ---- counting --------------------------------------------------------------------------------------------

TEST_F(Startup, TheFirstCallLoadsAllLists) {
  EXPECT_FALSE(ORVActive());
  EXPECT_EQ(ORVReferenceCount(), 0u);
  Start();
  EXPECT_TRUE(ORVActive());
  EXPECT_EQ(ORVReferenceCount(), 1u);
  EXPECT_EQ(Counts(), kAllLoaded);
  EXPECT_EQ(ORVGetConfigPath(), m_Folder.Path());
}

TEST_F(Startup, FurtherCallsOnlyCount) {
  Start();
  m_Folder.Write("meridian.ocf", "broken");
  const std::string path = ORVGetConfigPath();
  EXPECT_NO_THROW(ORVInitialize("/elsewhere", true));
  EXPECT_EQ(ORVGetConfigPath(), path);
  EXPECT_EQ(ORVReferenceCount(), 2u);
  EXPECT_TRUE(ORVActive());
  EXPECT_EQ(Counts(), kAllLoaded);
}

TEST_F(Startup, TheLastOfEqualShutdownsEmptiesTheLists) {
  Start();
  Start();
  ORVShutdown();
  EXPECT_EQ(ORVReferenceCount(), 1u);
  EXPECT_EQ(Counts(), kAllLoaded);
  ORVShutdown();
  EXPECT_EQ(ORVReferenceCount(), 0u);
  EXPECT_EQ(Counts(), kAllEmpty);
  // Deliberate: a surplus call empties them once more and does not count below 0.
  MeridianInfo info;
  ORVKnownMeridiansList.Add(info);
  ORVShutdown();
  EXPECT_EQ(ORVReferenceCount(), 0u);
  EXPECT_EQ(Counts(), kAllEmpty);
  Start();
  EXPECT_EQ(ORVReferenceCount(), 1u);
  EXPECT_EQ(Counts(), kAllLoaded);
}

TEST_F(Startup, ShutdownLeavesTheRestOfTheState) {
  Start();
  ORVEnableCSMIFace(true, true);
  EXPECT_RAISES(ORVKnownSystemsList.Enum(0), 1032, "CSList", "Bad parameter to function call");
  ORVShutdown();
  EXPECT_TRUE(ORVActive());  // deliberate
  EXPECT_EQ(ORVGetConfigPath(), m_Folder.Path());
  EXPECT_TRUE(Globals().csMapForProjection);
  EXPECT_TRUE(Globals().csMapForDatumConversion);
  EXPECT_EQ(ORVGetErrorCode(), 1032);
}

TEST_F(Startup, ANullPathKeepsTheOneThatIsSetAndAnEmptyOneClearsIt) {
  ORVSetConfigPath(m_Folder.Path().c_str());
  ORVInitialize(nullptr, false);
  EXPECT_EQ(ORVGetConfigPath(), m_Folder.Path());
  EXPECT_TRUE(ORVActive());
  ORVShutdown();
  ORVInitialize("", false);
  EXPECT_EQ(ORVGetConfigPath(), nullptr);
}

// ---- files -----------------------------------------------------------------------------------------------

TEST_F(Startup, FilesAreReadInTheirOrder) {
  ORVSetConfigPath(m_Folder.Path().c_str());
  // With all of them broken from the i-th on, the i-th is the one that is reported.
  for (size_t i = kFiles.size(); i-- > 0;) {
    m_Folder.Write(kFiles[i], "broken");
    EXPECT_THROW(ORVLoadAllConfigs(true), shr::Exception);
    EXPECT_NE(std::string(ORVGetErrorText()).find(kFiles[i] + "(1): Expected '{'"), std::string::npos)
        << ORVGetErrorText();
    std::vector<int> counts = Counts();
    for (size_t j = 0; j < kFiles.size(); ++j) EXPECT_EQ(counts[j] > 0, j < i) << kFiles[j];
    EXPECT_FALSE(ORVActive());
    EmptyLists();
  }
}

TEST_F(Startup, AMissingFileIsReportedOnRequest) {
  for (const std::string& name : kFiles) {
    const std::string bytes = m_Folder.Read(name);
    RemoveFile(name);
    std::string elsewhere;
    ORVSetConfigPath(m_Folder.Path().c_str());
    if (ORVFindConfigFile(name.c_str(), elsewhere)) {
      GTEST_SKIP() << "this machine has an installed catalogue: " << elsewhere;
    }
    EXPECT_RAISES(Start(), 1028, "Globals", "Can't find configuration file '" + name + "'");
    // Deliberate: the call has counted, the next one loads nothing.
    EXPECT_EQ(ORVReferenceCount(), 1u);
    EXPECT_FALSE(ORVActive());
    m_Folder.Write(name, bytes);
    Start();
    EXPECT_FALSE(ORVActive());
    ORVShutdown();
    ORVShutdown();
    Start();
    EXPECT_TRUE(ORVActive());
    ORVShutdown();
  }
}

TEST_F(Startup, AMissingSystemsFileLeavesTheOthersLoaded) {
  RemoveFile("system.ocf");
  ORVSetConfigPath(m_Folder.Path().c_str());
  EXPECT_FALSE(ORVLoadAllConfigs(false));
  EXPECT_FALSE(ORVActive());
  EXPECT_EQ(Counts(), (std::vector<int>{1, 1, 1, 1, 3, 0})) << "and no geographic systems";
}

TEST_F(Startup, AMissingFileInTheMiddleStopsNothing) {
  RemoveFile("meridian.ocf");
  Start(false);
  EXPECT_FALSE(ORVActive());
  EXPECT_EQ(Counts(), (std::vector<int>{0, 1, 1, 1, 3, 1}));
}

TEST_F(Startup, WhatIsWrongWithinAFileRaisesInAnyCase) {
  const std::string path = m_Folder.Write("datum.ocf", "\nbroken");
  EXPECT_RAISES(Start(false), 1029, "DatumList",
                path + "(2): Expected '{', found 'broken' at start of entry");
  EXPECT_EQ(ORVReferenceCount(), 1u);
  EXPECT_FALSE(ORVActive());
  EXPECT_EQ(Counts(), (std::vector<int>{1, 1, 1, 1, 0, 0})) << "later files are not read";
  ORVShutdown();
  m_Folder.Write("datum.ocf", Datum("A", "a", 0, false));
  m_Folder.Write("system.ocf", "; empty");
  EXPECT_RAISES(Start(false), 1029, "CSList", "No coordinate systems in configuration file.");
}

TEST_F(Startup, ASecondLoadReplacesTheFirst) {
  Start();
  EXPECT_TRUE(ORVLoadAllConfigs(true));
  EXPECT_EQ(Counts(), kAllLoaded);
  EXPECT_EQ(ORVReferenceCount(), 1u);
  // A list whose file is gone keeps what it held, geographic systems included.
  RemoveFile("system.ocf");
  m_Folder.Write("meridian.ocf", "{ token=P name=Paris lon=2.5 } { token=G name=Greenwich lon=0 }");
  EXPECT_FALSE(ORVLoadAllConfigs(false));
  EXPECT_FALSE(ORVActive());
  EXPECT_EQ(Counts(), (std::vector<int>{2, 1, 1, 1, 3, 3}));
}

// ---- geographic systems ----------------------------------------------------------------------------------

TEST_F(Startup, FlaggedDatumsGetGeographicSystems) {
  Start();
  EXPECT_EQ(SystemTokens(), "S GEOGCS_A GEOGCS_C ");
  const ORVDef& system = System("GEOGCS_A");
  EXPECT_STREQ(system.GetName(), "Geographic (lat/lon)|datum a");
  EXPECT_EQ(system.GetShortName(), "datum a");
  EXPECT_STREQ(system.GetDatum()->GetToken(), "A");
  EXPECT_EQ(system.GetDatum()->GetPOSCNumber(), 6326);
  EXPECT_EQ(system.GetProjection()->GetMethod(), ProjectionMethodUnprojected);
  EXPECT_STREQ(system.GetProjection()->GetEllipsoid()->GetToken(), "E");
  EXPECT_EQ(system.GetProjection()->GetEllipsoid()->GetMajorRadius(), 6378137.0);
  EXPECT_EQ(system.GetWarp(), nullptr);
  EXPECT_EQ(ORVKnownSystemsList.FindByShortName("DATUM C"), 4);
}

TEST_F(Startup, TheirCodesAre2000LessWithinARange) {
  const std::pair<int, int> rows[] = {{6326, 4326}, {6000, 4000}, {6998, 4998}, {6999, 0},
                                      {5999, 0},    {7000, 0},    {0, 0},       {-6326, 0}};
  std::string datums;
  for (const auto& row : rows) {
    datums += Datum("T" + std::to_string(row.first), "n" + std::to_string(row.first), row.first, true);
  }
  // A minus is an ordinary character of a token.
  m_Folder.Write("datum.ocf", datums);
  m_Folder.Write("system.ocf", "{ token=S name=s }");
  Start();
  for (const auto& row : rows) {
    EXPECT_EQ(System(("GEOGCS_T" + std::to_string(row.first)).c_str()).GetPOSC(), row.second) << row.first;
  }
}

TEST_F(Startup, ADatumWithoutEllipsoidGetsOneToo) {
  m_Folder.Write("datum.ocf", "{ token=N name=n method=NADCON target=NAD83 geogcs=true }");
  m_Folder.Write("system.ocf", "{ token=S name=s }");
  Start();
  EXPECT_EQ(System("GEOGCS_N").GetProjection()->GetEllipsoid()->GetMajorRadius(), 0.0);
}

TEST_F(Startup, ASystemsFileMayNotHoldThemAlready) {
  m_Folder.Write("system.ocf", "{ token=geogcs_a name=s }");
  EXPECT_RAISES(Start(), 1032, "CSList", "Can't have two coordinate systems with the same ID token.");
  EXPECT_FALSE(ORVActive());
  ORVShutdown();
  m_Folder.Write("system.ocf", "{ token=S name='geographic (lat/lon)|DATUM C' }");
  EXPECT_RAISES(Start(), 1032, "CSList", "Can't have two coordinate systems with the same name.");
  EXPECT_EQ(SystemTokens(), "S GEOGCS_A ");
}

TEST_F(Startup, SavedSystemsLoadAgain) {
  Start();
  EXPECT_TRUE(ORVKnownSystemsList.Save(m_Folder.Path("system.ocf").c_str()));
  EXPECT_TRUE(ORVLoadAllConfigs(true));
  EXPECT_EQ(SystemTokens(), "S GEOGCS_A GEOGCS_C ");
}

// ---- settings --------------------------------------------------------------------------------------------

struct Switches {
  bool projection, datum;
};

class Settings : public Startup {
 protected:
  Switches Read(const std::string& text, bool before = false) {
    m_Folder.Write("orvmisc.ocf", text);
    ORVEnableCSMIFace(before, before);
    ORVSetConfigPath(m_Folder.Path().c_str());
    EXPECT_TRUE(ORVLoadAllConfigs(true));
    return {Globals().csMapForProjection, Globals().csMapForDatumConversion};
  }
  void Expect(const std::string& text, bool projection, bool datum, bool before = false) {
    const Switches switches = Read(text, before);
    EXPECT_EQ(switches.projection, projection) << text;
    EXPECT_EQ(switches.datum, datum) << text;
  }
};

TEST_F(Settings, SwitchesAreRead) {
  Expect("EnableCSMIFaceForProjection = true\n", true, false);
  Expect("enablecsmifacefordatumconversion=TRUE", false, true);
  Expect("; note\nEnableCSMIFaceForDatumConversion=true EnableCSMIFaceForProjection=\"True\"", true, true);
  Expect("EnableCSMIFaceForProjection=false", false, true, true);
  Expect("EnableCSMIFaceForProjection=1", false, true, true);  // only "true" sets it
  Expect("other=x EnableCSMIFaceForProjection=true", true, false);
}

TEST_F(Settings, WhatIsNoPairEndsTheFile) {
  Expect("EnableCSMIFaceForProjection : true\nEnableCSMIFaceForDatumConversion=true", false, false);
  Expect("\"\" EnableCSMIFaceForDatumConversion=true", false, false);
  Expect("EnableCSMIFaceForProjection=true\nEnableCSMIFaceForDatumConversion", true, false);
  Expect("EnableCSMIFaceForProjection=true\nEnableCSMIFaceForDatumConversion=", true, false, true);
  Expect("", true, true, true);
}

TEST_F(Settings, GridFilesAreNamed) {
  Read("NTv2GridFile=other.gsb ntv2gridfile = 'my grid.gsb'\nNADCONGRIDPATH=\"/grids/nadcon\"");
  EXPECT_STREQ(ORVGetNTv2GridFile(), "my grid.gsb");
  EXPECT_STREQ(ORVGetNadconGridPath(), "/grids/nadcon");
  Read("NTv2GridFile=\"\" NadconGridPath=\"\"");
  EXPECT_EQ(ORVGetNTv2GridFile(), nullptr);
  EXPECT_EQ(ORVGetNadconGridPath(), nullptr);
}

TEST_F(Settings, ShutdownReleasesTheGrids) {
  const test::TempFolder folder;
  const test::NadconLayout layout;
  const auto one = [](int, int) { return 1.0F; };
  folder.Write("a.los", test::NadconFile(layout, one));
  const std::string las = folder.Write("a.las", test::NadconFile(layout, one));
  Start();
  ORVSetNadconGridPath(folder.Path().c_str());
  EXPECT_TRUE(internal::Grids().LoadNadcon());
  std::filesystem::remove(las);
  EXPECT_TRUE(internal::Grids().LoadNadcon()) << "loaded once, they stay";
  ORVShutdown();
  EXPECT_FALSE(internal::Grids().LoadNadcon()) << "loaded anew, they are gone";
  ORVSetNadconGridPath(nullptr);
}

TEST_F(Settings, WithoutTheFileEverythingStays) {
  ORVEnableCSMIFace(true, true);
  Start();
  EXPECT_TRUE(ORVActive());
  EXPECT_TRUE(Globals().csMapForProjection);
  EXPECT_TRUE(Globals().csMapForDatumConversion);
}

TEST_F(Settings, TheSwitchesOfACallAreProjectionThenDatum) {
  ORVEnableCSMIFace(true, false);
  EXPECT_TRUE(Globals().csMapForProjection);
  EXPECT_FALSE(Globals().csMapForDatumConversion);
  ORVEnableCSMIFace(false, true);
  EXPECT_FALSE(Globals().csMapForProjection);
  EXPECT_TRUE(Globals().csMapForDatumConversion);
}

// ---- benchmarks and trace --------------------------------------------------------------------------------

constexpr const char* kNoTime =
    "The following information was recorded:\n"
    "  Time to load ellipsoid config file:      0.000 seconds\n"
    "  Time to load datum config file:          0.000 seconds\n"
    "  Time to load systems config file:        0.000 seconds\n"
    "  Time to load all config files:           0.000 seconds\n";

TEST_F(Startup, BenchmarksAreZeroBeforeAnyLoad) {
  std::string text = "before";
  ORVDumpBenchmarks(text);
  EXPECT_EQ(text, kNoTime);
}

TEST_F(Startup, BenchmarksAreInSeconds) {
  Globals().ellipsoidLoadTime = 1;
  Globals().datumLoadTime = 20;
  Globals().systemsLoadTime = 1234567;
  Globals().totalLoadTime = 4294967295u;
  const std::string expected =
      "The following information was recorded:\n"
      "  Time to load ellipsoid config file:      0.001 seconds\n"
      "  Time to load datum config file:          0.020 seconds\n"
      "  Time to load systems config file:        1234.567 seconds\n"
      "  Time to load all config files:           4294967.295 seconds\n";
  ORV_WITH_COMMA_LOCALE();
  std::string text;
  ORVDumpBenchmarks(text);
  EXPECT_EQ(text, expected);
}

TEST_F(Startup, LoadsAreTimed) {
  Globals().ellipsoidLoadTime = Globals().datumLoadTime = Globals().systemsLoadTime = 3000000000u;
  Globals().totalLoadTime = 3000000000u;
  Start();
  const ORVGlobals& globals = Globals();
  for (const uint32_t time : {globals.ellipsoidLoadTime, globals.datumLoadTime, globals.systemsLoadTime}) {
    EXPECT_LE(time, globals.totalLoadTime);
  }
  EXPECT_LT(globals.totalLoadTime, 60000u);
}

TEST_F(Startup, TraceLinesGoToTheCallback) {
  std::vector<std::string> lines;
  const ORVTraceCallback keep = [](const char* line, void* context) {
    static_cast<std::vector<std::string>*>(context)->push_back(line);
  };
  ORVSetTraceCallback(keep, &lines);
  Start();
  Start();
  Start();
  std::vector<std::string> expected = {"ORV starting up.\n",
                                       "uiInitializeReferenceCount now 2, so not starting up again.\n",
                                       "uiInitializeReferenceCount now 3, so not starting up again.\n"};
  EXPECT_EQ(lines, expected);
  for (int i = 0; i < 3; ++i) ORVShutdown();
  lines.clear();
  m_Folder.Write("coordsys.csd", "x");
  Start();
  EXPECT_EQ(lines, (std::vector<std::string>{"ORV starting up.\n", "Looking for CS-Map dictionaries.\n"}));
  ORVSetTraceCallback(nullptr, nullptr);
  ORVShutdown();
  Start();
  EXPECT_EQ(lines.size(), 2u);
}

}  // namespace
}  // namespace orv
