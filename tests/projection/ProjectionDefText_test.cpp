#include "orv/projection/ProjectionDef.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orv/core/internal/Text.h"
#include "tests/projection/ProjectionSamples.h"
#include "tests/support/Generators.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using namespace test;  // the samples

constexpr const char* kUnit = "ProjectionDef";

// ---- encoded text ----------------------------------------------------------------------------------------

std::string Item(const char* name, char type, const std::string& value) {
  return std::string("<") + type + std::to_string(std::string(name).size()) + ',' + name + "[1]=" + value +
         ">\r\n";
}
std::string Text(const char* name, const std::string& value) {
  return "<s" + std::to_string(std::string(name).size()) + ',' + name + '[' + std::to_string(value.size()) +
         "]=\"" + value + "\">\r\n";
}
const std::string kBegin = "<{10,Projection[1]>\r\n";
const std::string kEnd = "<}10,Projection[1]>\r\n";

TEST(ProjectionDef, EncodesTheParametersOfTheMethodInTheOrderOfTheirNumbers) {
  const MethodRow& hotine = MethodRows()[12];
  ProjectionParameters p = Odd(12);
  p.ellipsoid = EllipsoidDef(2.0, 0.5, "T", "N", nullptr, 9);
  p.bUseAlpha = false;
  std::string text = "before";
  ProjectionDef(p).EncodeToText(text);
  EXPECT_EQ(text, "before" + kBegin + Text("Method", hotine.longName) +                               //
                      "<{9,Ellipsoid[1]>\r\n" + Text("Token", "T") + Text("Name", "N") +              //
                      Item("POSC", 'd', "9") + Item("Radius", 'f', "2.000000000000000000e+00") +      //
                      Item("Flat", 'f', "5.000000000000000000e-01") + "<}9,Ellipsoid[1]>\r\n" +       //
                      Item("Scale", 'f', "2.500000000000000000e+00") +                                //
                      Item("xOrg", 'f', "1.100000000000000000e+01") +                                 //
                      Item("yOrg", 'f', "1.200000000000000000e+01") +                                 //
                      Item("Lon1", 'f', "1.400000000000000000e+01") +                                 //
                      Item("Lon2", 'f', "1.500000000000000000e+01") +                                 //
                      Item("Lat0", 'f', "1.600000000000000000e+01") +                                 //
                      Item("Lat1", 'f', "1.700000000000000000e+01") +                                 //
                      Item("Lat2", 'f', "1.800000000000000000e+01") +                                 //
                      Item("K0", 'f', "5.000000000000000000e-01") +                                   //
                      Item("bUseAlpha", 'b', "f") + Item("Alpha", 'f', "1.900000000000000000e+01") +  //
                      Item("bRotate", 'b', "t") + Item("bUOffset", 'b', "t") + kEnd);
}

TEST(ProjectionDef, EncodesMethodsWithoutParametersAsTheirNameOnly) {
  for (const int method : {0, 1, 2}) {
    std::string text;
    ProjectionDef(Odd(method)).EncodeToText(text);
    EXPECT_EQ(text, kBegin + Text("Method", MethodRows()[static_cast<size_t>(method)].longName) + kEnd);
  }
}

TEST(ProjectionDef, EncodesAndDumpsNoMethodOutsideTheTable) {
  ProjectionDef def;
  def.SetParameter(ProjectionParameterIDMethod, 28);
  std::string text;
  EXPECT_RAISES(def.EncodeToText(text), 1032, kUnit, "Bad parameter to function call.");
  EXPECT_RAISES(def.DebugDump(text, 0), 1032, kUnit, "Bad parameter to function call.");
  EXPECT_EQ(text, "");
}

TEST(ProjectionDef, DecodesEveryItemWithoutRegardToCaseAndOrder) {
  const std::string text = kBegin + Item("BNOWRAP", 'b', "t") + Item("alpha", 'f', "1.5") +
                           Item("bUseAlpha", 'b', "t") + Item("bSouth", 'b', "t") +
                           Item("bRotate", 'b', "t") + Item("bUOffset", 'b', "t") + Item("K0", 'f', "2.5") +
                           Item("Lat2", 'f', "3.5") + Item("Lat1", 'f', "4.5") + Item("Lat0", 'f', "5.5") +
                           Item("Lon2", 'f', "6.5") + Item("Lon1", 'f', "7.5") + Item("Lon0", 'f', "8.5") +
                           Item("YORG", 'f', "9.5") + Item("xOrg", 'f', "10.5") + Item("Scale", 'f', "0") +
                           "<{9,ellipsoid[1]>\r\n" + Item("Radius", 'f', "11.5") + "<}9,Ellipsoid[1]>\r\n" +
                           Text("Unheard", "of") + Text("method", "tmerc") + kEnd;
  ProjectionDef def;
  size_t pos = 0;
  def.DecodeFromText(text, &pos);
  EXPECT_EQ(pos, text.size());
  const ProjectionParameters& p = *def.GetParameters();
  EXPECT_EQ(p.method, 25);  // short names are known too
  EXPECT_EQ(p.ellipsoid.GetMajorRadius(), 11.5);
  EXPECT_EQ(p.Scale, 0.0);  // deliberate: the setters' rule does not hold here
  EXPECT_EQ(p.xOrg, 10.5);
  EXPECT_EQ(p.yOrg, 9.5);
  EXPECT_EQ(p.Lon0, 8.5);
  EXPECT_EQ(p.Lon1, 7.5);
  EXPECT_EQ(p.Lon2, 6.5);
  EXPECT_EQ(p.Lat0, 5.5);
  EXPECT_EQ(p.Lat1, 4.5);
  EXPECT_EQ(p.Lat2, 3.5);
  EXPECT_EQ(p.K0, 2.5);
  EXPECT_EQ(p.Alpha, 1.5);
  EXPECT_TRUE(p.bSouth && p.bUseAlpha && p.bRotate && p.bUOffset && p.bNoWrap);
}

TEST(ProjectionDef, DecodingKeepsWhatTheTextDoesNotHold) {
  ProjectionDef def(Odd(16));
  def.DecodeFromText(kBegin + Item("Lat1", 'f', "7") + kEnd, nullptr);
  ProjectionDef expected(Odd(16));
  expected.SetParameter(ProjectionParameterIDLat1, 7.0);
  EXPECT_TRUE(def.Compare(expected, nullptr));
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDNoWrap), 1.0);
  EXPECT_STREQ(def.GetEllipsoid()->GetToken(), "ODD");
}

TEST(ProjectionDef, AnUnknownMethodNameDecodesAsUnknown) {
  ProjectionDef def(Odd(16));
  def.DecodeFromText(kBegin + Text("Method", "Dymaxion") + kEnd, nullptr);
  EXPECT_EQ(def.GetMethod(), 0);
}

TEST(ProjectionDef, DecodedUTMHasItsFalseOrigin) {
  ProjectionDef def;
  def.DecodeFromText(kBegin + Text("Method", "UTM") + Item("bSouth", 'b', "t") + Item("xOrg", 'f', "5") +
                         Item("yOrg", 'f', "6") + kEnd,
                     nullptr);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDXOrg), 500000.0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDYOrg), 10000000.0);
}

TEST(ProjectionDef, AFailedDecodeKeepsWhatItReadAndDoesNotRunTheUTMRule) {
  ProjectionDef def;
  size_t pos = 0;
  EXPECT_RAISES(def.DecodeFromText(kBegin + Text("Method", "UTM") + Item("xOrg", 'f', "5"), &pos), 1026,
                kUnit, "Corrupt projection data.  Unexpected end of encoded data.");
  EXPECT_EQ(pos, 0u);
  EXPECT_EQ(def.GetMethod(), 26);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDXOrg), 5.0);
  EXPECT_EQ(ProjectionDef(def).GetParameter(ProjectionParameterIDXOrg), 5.0);  // nor does a copy
}

TEST(ProjectionDef, DecodingStartsAtThePositionAndEndsBehindTheBlock) {
  ProjectionDef def;
  const std::string block = kBegin + Text("Method", "Robinson") + kEnd;
  const std::string text = "rubbish" + block + block;
  size_t pos = 7;
  def.DecodeFromText(text, &pos);
  EXPECT_EQ(pos, 7 + block.size());
  EXPECT_EQ(def.GetMethod(), 22);
  def.DecodeFromText(text, &pos);
  EXPECT_EQ(pos, text.size());
  // Line ends are optional, and no more than one is passed.
  for (const char* tail : {"", "\n", "\r\n", "\r\n\r\n", "x"}) {
    const std::string bare = "<{10,Projection[1]><}10,Projection[1]>" + std::string(tail);
    pos = 0;
    def.DecodeFromText(bare, &pos);
    const std::string rest = bare.substr(pos);
    EXPECT_EQ(rest, std::string(tail) == "\r\n\r\n" ? "\r\n" : (std::string(tail) == "x" ? "x" : ""));
  }
}

struct DecodeRow {
  std::string text, message;
};

TEST(ProjectionDef, CorruptBlocksRaiseTheirMessage) {
  const std::string ellipsoid = "<{9,Ellipsoid[1]>\r\n<}9,Ellipsoid[1]>\r\n";
  const std::string malformed = "Corrupt projection data.  Malformed header.";
  const std::string endOfData = "Corrupt projection data.  Unexpected end of encoded data.";
  const DecodeRow rows[] = {
      {"", malformed},
      {"x" + kBegin + kEnd, malformed},
      {"<{10,Projection[1", malformed},
      {"<{99,Projection[1]>", malformed},
      {Text("Method", "UTM"), "Corrupt projection data.  BLOCKBEGIN missing."},
      {kEnd, "Corrupt projection data.  BLOCKBEGIN missing."},
      {"<{5,Datum[1]>\r\n<}5,Datum[1]>\r\n", "Corrupt projection data.  Not a projection block."},
      {kBegin + "<}5,Datum[1]>\r\n", "Corrupt projection data.  Expected end of projection block."},
      // An unknown block is entered, and its end is taken for a wrong one.
      {kBegin + "<{4,Warp[1]>\r\n<}4,Warp[1]>\r\n" + kEnd,
       "Corrupt projection data.  Expected end of projection block."},
      {kBegin, endOfData},
      {kBegin + Item("Lon0", 'f', "1"), endOfData},
      {kBegin + ellipsoid, "Unexpected end of encoded data."},
      {kBegin + ellipsoid + Item("Lon0", 'f', "1"), endOfData},
      {kBegin + "<f4,Lon0(1)=1>\r\n" + kEnd, malformed},
  };
  for (const DecodeRow& row : rows) {
    ProjectionDef def;
    size_t pos = 0;
    EXPECT_RAISES(def.DecodeFromText(row.text, &pos), 1026, kUnit, row.message) << row.text;
    EXPECT_EQ(pos, 0u);
    EXPECT_RAISES(def.DecodeFromText(row.text, nullptr), 1026, kUnit, row.message) << row.text;
  }
}

TEST(ProjectionDef, CorruptValuesRaiseAsTheirReadersDo) {
  ProjectionDef def;
  EXPECT_RAISES(def.DecodeFromText(kBegin + Item("Lon0", 'b', "t") + kEnd, nullptr), 1026, "EncodeText",
                "Corrupt data while parsing encoded data.");
  EXPECT_RAISES(def.DecodeFromText(kBegin + Item("bSouth", 'f', "1") + kEnd, nullptr), 1026, "EncodeText",
                "Mismatched data type while parsing encoded data.");
  EXPECT_RAISES(def.DecodeFromText(kBegin + Item("Ellipsoid", 'f', "1") + kEnd, nullptr), 1026,
                "EllipsoidDef", "Corrupt data encountered in encoded ellipsoid data.");
}

TEST(ProjectionDef, PositionsBeyondTheTextAreMalformed) {
  ProjectionDef def;
  size_t pos = 1000;
  EXPECT_RAISES(def.DecodeFromText(kBegin + kEnd, &pos), 1026, kUnit,
                "Corrupt projection data.  Malformed header.");
  EXPECT_EQ(pos, 1000u);
}

TEST(ProjectionDef, EncodedTextRoundTripsForRandomDefinitions) {
  EXPECT_TRUE(test::Holds([] {
    const ProjectionDef def = test::AnyProjection();
    std::string text;
    def.EncodeToText(text);
    ProjectionDef read;
    size_t pos = 0;
    read.DecodeFromText(text, &pos);
    ORV_HOLDS(pos == text.size());
    ProjectionParameterID which = ProjectionParameterIDNone;
    ORV_HOLDS(def.Compare(read, &which));
    ORV_HOLDS(read.Compare(def, &which));
    std::string again;
    read.EncodeToText(again);
    ORV_HOLDS(again == text);
  }));
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST(ProjectionDef, DumpListsTheParametersOfTheMethodInTheOrderOfTheirNumbers) {
  ProjectionParameters p = Odd(12);
  p.bUOffset = false;
  const ProjectionDef def(p);
  std::string text;
  def.DebugDump(text, 3);
  const std::string line(55, '-');
  std::string expected = "   " + line + "\n   Projection Parameters (this=" +
                         internal::Format("%p", static_cast<const void*>(&def)) + ")\n   " + line + "\n   " +
                         "  Method:  'Hotine Oblique Mercator' (12)\n" +
                         "     Scale:  2.5000000000000000\n"
                         "     xOrg:   11.0000000000000000\n"
                         "     yOrg:   12.0000000000000000\n"
                         "     Lon1:   14.0000000000000000\n"
                         "     Lon2:   15.0000000000000000\n"
                         "     Lat0:   16.0000000000000000\n"
                         "     Lat1:   17.0000000000000000\n"
                         "     Lat2:   18.0000000000000000\n"
                         "     K0:     0.5000000000000000\n"
                         "     bUseAlpha:  true\n"
                         "     Alpha:      19.0000000000000000\n"
                         "     bRotate:    true\n"
                         "     bUOffset:   false\n"
                         "     Ellipsoid:\n";
  def.GetEllipsoid()->DebugDump(expected, 5);
  EXPECT_EQ(text, expected);

  std::string utm;
  ProjectionDef(Odd(26)).DebugDump(utm, 0);
  EXPECT_NE(
      utm.find(
          "\n  Lon0:   13.0000000000000000\n  Lat0:   16.0000000000000000\n  K0:     0.5000000000000000\n"
          "  bSouth:     true\n  Ellipsoid:\n"),
      std::string::npos)
      << utm;
  std::string none;
  ProjectionDef().DebugDump(none, 0);
  EXPECT_NE(none.find("  Method:  'Unknown' (0)\n"), std::string::npos);
  EXPECT_EQ(none.find("Ellipsoid"), std::string::npos);
}

}  // namespace
}  // namespace orv
