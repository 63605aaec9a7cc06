#include "orv/datum/DatumList.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "tests/datum/Datums.h"
#include "tests/support/Generators.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using test::Make;
using test::Named;

const char* const kBad = "Bad parameter to function call";

DatumDef Datum(const char* token, const char* name, int posc = 0, DatumTarget special = DatumTargetNone,
               DatumMethod method = DatumMethodMolodensky, double dx = 0.0) {
  return Named(Make{method, DatumTargetWGS84, special, posc, dx}, token, name);
}

/// A file in a folder of its own, gone behind the test.
class File {
 public:
  explicit File(const std::string& content = "") : m_Path(m_Folder.Write("test.ocf", content)) {}

  const char* Path() const { return m_Path.c_str(); }
  std::string Content() const { return test::ReadBytes(m_Path); }

 private:
  test::TempFolder m_Folder;
  std::string m_Path;
};

class DatumListTest : public test::KnownLists {};

// ---- indices and finds -----------------------------------------------------------------------------------

TEST_F(DatumListTest, IndicesRunFromTwo) {
  DatumList list;
  EXPECT_EQ(0, list.Count());
  EXPECT_EQ(2, list.First());
  EXPECT_EQ(1, list.Last());
  EXPECT_EQ(2, list.Add(Datum("A", "Alpha", 10), 0));
  EXPECT_EQ(3, list.Add(Datum("B", "Beta", 20), 5));
  EXPECT_EQ(2, list.Count());
  EXPECT_EQ(2, list.First());
  EXPECT_EQ(3, list.Last());
}

TEST_F(DatumListTest, AccessorsGiveTheEntry) {
  DatumList list;
  list.Add(Datum("A", "Alpha", 10), 0);
  list.Add(Datum("B", "Beta", 20, DatumTargetNone, DatumMethodMolodensky, 3.0), 5);
  DatumDef datum;
  EXPECT_TRUE(list.Enum(3, datum));
  EXPECT_STREQ("B", datum.GetToken());
  EXPECT_STREQ("Alpha", list.Enum(2)->GetName());
  EXPECT_STREQ("Beta", list.EnumName(3));
  EXPECT_STREQ("A", list.EnumToken(2));
  std::string text;
  EXPECT_TRUE(list.EnumName(2, text));
  EXPECT_EQ("Alpha", text);
  EXPECT_TRUE(list.EnumToken(3, text));
  EXPECT_EQ("B", text);
  EXPECT_EQ(20, list.EnumPOSCNumber(3));
  EXPECT_EQ(0u, list.EnumFlags(2));
  EXPECT_EQ(5u, list.EnumFlags(3));
  DatumParameters p;
  EXPECT_TRUE(list.EnumParameters(3, p));
  EXPECT_EQ(3.0, p.dx);
}

TEST_F(DatumListTest, AnEntryWithoutTextsHasEmptyOnes) {
  DatumList list;
  list.Add(Make{}, 0);
  EXPECT_STREQ("", list.EnumName(2));
  EXPECT_STREQ("", list.EnumToken(2));
}

TEST_F(DatumListTest, FlagsKeep32Bits) {
  DatumList list;
  list.Add(Make{}, 0xfffffffful);
  EXPECT_EQ(0xfffffffful, list.EnumFlags(2));
}

TEST_F(DatumListTest, ABadIndexRaises) {
  DatumList list;
  list.Add(Datum("A", "Alpha"), 0);
  DatumDef datum;
  DatumParameters p;
  std::string text;
  for (const int index : {-1, 0, 1, 3}) {
    SCOPED_TRACE(index);
    EXPECT_RAISES(list.Enum(index), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.Enum(index, datum), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.EnumName(index), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.EnumName(index, text), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.EnumToken(index), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.EnumToken(index, text), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.EnumPOSCNumber(index), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.EnumFlags(index), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.EnumParameters(index, p), 1032, "DatumList", kBad);
    EXPECT_RAISES(list.Replace(index, Datum("B", "Beta"), 0), 1032, "DatumList", kBad);
    // The one text with a full stop.
    EXPECT_RAISES(list.Remove(index), 1032, "DatumList", "Bad parameter to function call.");
  }
}

TEST_F(DatumListTest, FindsIgnoreCase) {
  DatumList list;
  list.Add(Datum("tok_b", "Beta"), 0);
  list.Add(Datum("TokA", "alpha"), 0);
  DatumDef found;
  EXPECT_EQ(3, list.FindByName("ALPHA", &found));
  EXPECT_STREQ("TokA", found.GetToken());
  EXPECT_EQ(2, list.FindByName("beta", nullptr));
  EXPECT_EQ(2, list.FindByToken("TOK_B", &found));
  EXPECT_STREQ("Beta", found.GetName());
  EXPECT_EQ(3, list.FindByToken("toka", nullptr));
  for (const char* const none : {static_cast<const char*>(nullptr), "", "gamma"}) {
    EXPECT_EQ(0, list.FindByName(none, &found));
    EXPECT_EQ(0, list.FindByToken(none, &found));
  }
  EXPECT_STREQ("Beta", found.GetName());
}

TEST_F(DatumListTest, FindsByNameMeetEveryEntry) {
  DatumList list;
  const int order[] = {7, 3, 9, 0, 5, 8, 1, 6, 2, 4};
  for (const int n : order) {
    const std::string text = std::to_string(n);
    list.Add(Datum(("T" + text).c_str(), ("N" + text).c_str(), 100 + n), 0);
  }
  for (int i = 0; i < 10; ++i) {
    const std::string text = std::to_string(order[i]);
    EXPECT_EQ(i + 2, list.FindByName(("n" + text).c_str(), nullptr));
    EXPECT_EQ(i + 2, list.FindByToken(("t" + text).c_str(), nullptr));
    EXPECT_EQ(i + 2, list.FindByPOSCNumber(100 + order[i], nullptr, -1));
    EXPECT_EQ(i + 2, list.FindByPOSCNumber(100 + order[i], nullptr, 0));
  }
}

TEST_F(DatumListTest, FindSpecialScansFromTheStart) {
  DatumList list;
  EXPECT_EQ(0, list.FindSpecial(DatumTargetWGS84, 0));
  list.Add(Datum("A", "a"), 0);
  EXPECT_EQ(0, list.FindSpecial(DatumTargetWGS84, 0));
  list.Add(Datum("B", "b", 0, DatumTargetWGS84), 0);
  list.Add(Datum("C", "c", 0, DatumTargetNAD27), 0);
  list.Add(Datum("D", "d", 0, DatumTargetWGS84), 0);
  for (const int start : {-5, 0, 1, 2, 3}) EXPECT_EQ(3, list.FindSpecial(DatumTargetWGS84, start));
  EXPECT_EQ(5, list.FindSpecial(DatumTargetWGS84, 4));
  EXPECT_EQ(5, list.FindSpecial(DatumTargetWGS84, 5));
  EXPECT_EQ(0, list.FindSpecial(DatumTargetWGS84, 6));
  EXPECT_EQ(2, list.FindSpecial(DatumTargetNone, 0));  // the first plain datum
}

TEST_F(DatumListTest, FindByPOSCNumberScansUnlessTheStartIsBelowZero) {
  DatumList list;
  list.Add(Datum("A", "a", 30), 0);
  list.Add(Datum("B", "b", 20), 0);
  list.Add(Datum("C", "c", 30, DatumTargetNone, DatumMethodBursaWolf), 0);
  list.Add(Datum("D", "d", -4), 0);
  DatumDef found;
  EXPECT_EQ(2, list.FindByPOSCNumber(30, &found, 0));
  EXPECT_STREQ("A", found.GetToken());
  EXPECT_EQ(4, list.FindByPOSCNumber(30, &found, 3));
  EXPECT_STREQ("C", found.GetToken());
  EXPECT_EQ(0, list.FindByPOSCNumber(30, &found, 5));
  EXPECT_EQ(3, list.FindByPOSCNumber(20, nullptr, -1));
  const int any = list.FindByPOSCNumber(30, nullptr, -1);
  EXPECT_TRUE(any == 2 || any == 4);
  for (const int start : {-1, 0}) {
    EXPECT_EQ(0, list.FindByPOSCNumber(0, nullptr, start));
    EXPECT_EQ(0, list.FindByPOSCNumber(-4, nullptr, start));
    EXPECT_EQ(0, list.FindByPOSCNumber(31, nullptr, start));
    EXPECT_EQ(4, list.FindByPOSCNumberAndMethod(30, DatumMethodBursaWolf, &found, start));
    EXPECT_STREQ("C", found.GetToken());
    EXPECT_EQ(2, list.FindByPOSCNumberAndMethod(30, DatumMethodMolodensky, nullptr, start));
    EXPECT_EQ(0, list.FindByPOSCNumberAndMethod(30, DatumMethodNADCON, nullptr, start));
    EXPECT_EQ(0, list.FindByPOSCNumberAndMethod(-4, DatumMethodMolodensky, nullptr, start));
  }
  EXPECT_EQ(0, list.FindByPOSCNumberAndMethod(30, DatumMethodMolodensky, nullptr, 3));
}

TEST_F(DatumListTest, FindDatumComparesParameters) {
  DatumList list;
  list.Add(Datum("A", "a", 1, DatumTargetNone, DatumMethodMolodensky, 1.0), 0);
  list.Add(Datum("B", "b", 2, DatumTargetNone, DatumMethodMolodensky, 2.0), 0);
  list.Add(Datum("C", "c", 3, DatumTargetNone, DatumMethodMolodensky, 2.0), 0);
  EXPECT_EQ(3, list.FindDatum(Datum("X", "x", 9, DatumTargetWGS84, DatumMethodMolodensky, 2.0)));
  EXPECT_EQ(0, list.FindDatum(Datum("A", "a", 1, DatumTargetNone, DatumMethodMolodensky, 3.0)));
}

// ---- changes ---------------------------------------------------------------------------------------------

TEST_F(DatumListTest, AddRefusesInvalidParameters) {
  DatumDef bad = Datum("A", "a");
  bad.SetParameter(DatumParameterIDTarget, 0);
  DatumList list;
  EXPECT_RAISES(list.Add(bad, 0), 1032, "DatumList", "Invalid datum parameters specified.");
  list.Add(Datum("A", "a"), 0);
  EXPECT_RAISES(list.Replace(2, bad, 0), 1032, "DatumList", "Invalid datum parameters specified.");
  EXPECT_EQ(1, list.Count());
}

TEST_F(DatumListTest, APrivateListTakesDuplicates) {
  DatumList list;
  list.Add(Datum("A", "a", 1), 0);
  EXPECT_EQ(3, list.Add(Datum("A", "a", 1), 0));
  EXPECT_TRUE(list.Replace(3, Datum("A", "a", 1), 0));
}

TEST_F(DatumListTest, TheKnownListKeepsNamesAndTokensUnique) {
  DatumList& known = ORVKnownDatumsList;
  known.Add(Datum("A", "Alpha", 1), 0);
  known.Add(Datum("B", "Beta", 2), 0);
  EXPECT_RAISES(known.Add(Datum("C", "ALPHA"), 0), 1032, "DatumList",
                "Can't have two datums with the same name.");
  EXPECT_RAISES(known.Add(Datum("b", "Gamma"), 0), 1032, "DatumList",
                "Can't have two datums with the same ID token.");
  // The name is looked at first.
  EXPECT_RAISES(known.Add(Datum("A", "beta"), 0), 1032, "DatumList",
                "Can't have two datums with the same name.");
  EXPECT_RAISES(known.Replace(2, Datum("A", "Beta"), 0), 1032, "DatumList",
                "Can't have two datums with the same name.");
  EXPECT_RAISES(known.Replace(2, Datum("B", "Alpha"), 0), 1032, "DatumList",
                "Can't have two datums with the same ID token.");
  EXPECT_EQ(2, known.Count());
  // An entry does not clash with itself, POSC numbers may repeat, and what is empty clashes with nothing.
  EXPECT_TRUE(known.Replace(2, Datum("A", "Alpha", 2), 1));
  EXPECT_EQ(4, known.Add(Datum(nullptr, nullptr, 2), 0));
  EXPECT_EQ(5, known.Add(Datum(nullptr, nullptr, 2), 0));
}

TEST_F(DatumListTest, ReplaceMovesTheEntryInTheIndexes) {
  DatumList list;
  list.Add(Datum("A", "a", 10), 1);
  list.Add(Datum("M", "m", 20), 1);
  list.Add(Datum("Z", "z", 30), 1);
  EXPECT_TRUE(list.Replace(2, Datum("X", "x", 25), 6));
  EXPECT_EQ(0, list.FindByName("a", nullptr));
  EXPECT_EQ(0, list.FindByPOSCNumber(10, nullptr, -1));
  EXPECT_EQ(2, list.FindByName("x", nullptr));
  EXPECT_EQ(2, list.FindByToken("x", nullptr));
  EXPECT_EQ(2, list.FindByPOSCNumber(25, nullptr, -1));
  EXPECT_EQ(4, list.FindByName("z", nullptr));
  EXPECT_EQ(6u, list.EnumFlags(2));
}

TEST_F(DatumListTest, RemoveMovesLaterEntriesDown) {
  DatumList list;
  list.Add(Datum("Z", "z", 30), 0);
  list.Add(Datum("A", "a", 10), 1);
  list.Add(Datum("M", "m", 20), 2);
  EXPECT_TRUE(list.Remove(2));
  EXPECT_EQ(2, list.Count());
  EXPECT_EQ(0, list.FindByName("z", nullptr));
  EXPECT_EQ(2, list.FindByToken("a", nullptr));
  EXPECT_EQ(3, list.FindByName("m", nullptr));
  EXPECT_EQ(3, list.FindByPOSCNumber(20, nullptr, -1));
  EXPECT_EQ(2u, list.EnumFlags(3));
}

TEST_F(DatumListTest, CopiesAreIndependent) {
  DatumList list;
  list.Add(Datum("A", "a", 10), 1);
  DatumList copy(list);
  DatumList assigned;
  assigned.Add(Datum("Q", "q"), 0);
  assigned.CopyAll(list);
  list.Flush();
  EXPECT_EQ(0, list.Count());
  EXPECT_EQ(0, list.FindByName("a", nullptr));
  EXPECT_EQ(2, copy.FindByName("a", nullptr));
  EXPECT_EQ(1u, copy.EnumFlags(2));
  EXPECT_EQ(2, assigned.FindByToken("A", nullptr));
  EXPECT_EQ(0, assigned.FindByToken("Q", nullptr));
}

// ---- load ------------------------------------------------------------------------------------------------

const char* const kEveryKey = R"(
; a comment
{
  TOKEN=tok  NAME="A name; with more"  comment='c'
  posc=6202  special=nad27-conus  method=bursa  target=WGS84
  ellipsoid_token=E  ellipsoid_name="Ell"  ellipsoid_radius=6378137.25  ellipsoid_flat=0.0033
  pmshift=1.5 dx=-2.5 dy=3 dz=4 rx=5 ry=6 rz=7 k=8
  mretype=nad27 prvi=True inverse=TRUE geogcs=TRUE
  future=7
}
{ token=second name=Second method=None target=NAD83 prvi=yes inverse=false geogcs=1 }
)";

TEST_F(DatumListTest, LoadReadsEveryKey) {
  const File file(kEveryKey);
  DatumList list;
  list.Add(Datum("gone", "gone"), 0);
  ASSERT_TRUE(list.Load(file.Path(), true));
  ASSERT_EQ(2, list.Count());
  const DatumDef& datum = *list.Enum(2);
  EXPECT_STREQ("tok", datum.GetToken());
  EXPECT_STREQ("A name; with more", datum.GetName());
  EXPECT_STREQ("c", datum.GetComment());
  EXPECT_EQ(6202, datum.GetPOSCNumber());
  EXPECT_EQ(DatumTargetNAD27, datum.GetSpecial());
  const DatumParameters& p = *datum.GetParameters();
  EXPECT_EQ(DatumMethodBursaWolf, p.method);
  EXPECT_EQ(DatumTargetWGS84, p.target);
  EXPECT_STREQ("E", p.ellipsoid.GetToken());
  EXPECT_STREQ("Ell", p.ellipsoid.GetName());
  EXPECT_EQ(6378137.25, p.ellipsoid.GetMajorRadius());
  EXPECT_EQ(0.0033, p.ellipsoid.GetFlattening());
  EXPECT_EQ(1.5, p.pmShift);
  EXPECT_EQ(-2.5, p.dx);
  EXPECT_EQ(3.0, p.dy);
  EXPECT_EQ(4.0, p.dz);
  EXPECT_EQ(5.0, p.rx);
  EXPECT_EQ(6.0, p.ry);
  EXPECT_EQ(7.0, p.rz);
  EXPECT_EQ(8.0, p.k);
  EXPECT_EQ(DatumMRETypeNAD27Conus, p.mreType);
  EXPECT_TRUE(p.nadconPrvi);
  EXPECT_TRUE(p.inverse);
  EXPECT_EQ(1u, list.EnumFlags(2));

  // Every entry starts afresh.
  const DatumParameters& second = *list.Enum(3)->GetParameters();
  EXPECT_EQ(nullptr, list.Enum(3)->GetComment());
  EXPECT_EQ(0, list.EnumPOSCNumber(3));
  EXPECT_EQ(DatumTargetNone, list.Enum(3)->GetSpecial());
  EXPECT_EQ(0.0, second.dx);
  EXPECT_TRUE(second.ellipsoid.IsUnknown());
  EXPECT_EQ(DatumMRETypeNone, second.mreType);
  EXPECT_FALSE(second.nadconPrvi);  // only "true" is true
  EXPECT_FALSE(second.inverse);
  EXPECT_EQ(0u, list.EnumFlags(3));
}

TEST_F(DatumListTest, LoadTakesAnEllipsoidOfTheKnownOnes) {
  ORVKnownEllipsoidsList.Add(test::Clarke66());
  const File file("{ token=a name=A method=Molodensky target=WGS84 ellipsoid=clrk66 ellipsoid_radius=7 }");
  DatumList list;
  ASSERT_TRUE(list.Load(file.Path(), true));
  EXPECT_STREQ("CLRK66", list.Enum(2)->GetEllipsoid()->GetToken());
  EXPECT_EQ(test::Clarke66().GetFlattening(), list.Enum(2)->GetEllipsoid()->GetFlattening());
  EXPECT_EQ(7.0, list.Enum(2)->GetEllipsoid()->GetMajorRadius());  // keys are applied as they are read
}

TEST_F(DatumListTest, LoadAcceptsTheNamesOfNothing) {
  const File file("{ token=a name=A method=Unknown target=NONE special=none }");
  DatumList list;
  ASSERT_TRUE(list.Load(file.Path(), true));
  EXPECT_TRUE(list.Enum(2)->IsUnknown());
}

struct LoadCase {
  const char* content;
  const char* message;  // behind the file's name
  int read;             // entries read before
};

const LoadCase kLoads[] = {
    {"\n\ntoken=a", "(3): Expected '{', found 'token' at start of entry", 0},
    {"{token=a name=A}}", "(1): Expected '{', found '}' at start of entry", 1},
    {"{token a}", "(1):  Expected '=' between parameter and value.", 0},
    {"{\n", "(2):  Unexpected end of file.", 0},
    {"{token", "(1):  Unexpected end of file.", 0},
    {"{token=", "(1):  Unexpected end of file.", 0},
    {"{token=a\nspecial=moon}", "(2):  Unknown special token for datum 'moon'", 0},
    {"{method=\"Molo\"}", "(1):  Unknown datum method 'Molo'", 0},
    {"{target=\"\"}", "(1):  Unknown target ''", 0},
    {"{mretype=NAD83}", "(1):  Unknown MRE type code 'NAD83'", 0},
    {"{ellipsoid=sphere}", "(1):  Unknown ellipsoid token 'sphere'", 0},
    {"{token=a name=A}\n{ token=a }", "(2):  Datum has no NAME parameter.", 1},
    {"{\n}", "(2):  Datum has no NAME parameter.", 0},
    {"{ name=a }", "(1):  Datum has no TOKEN parameter.", 0},
    {"{ token=a name=A method=None }", "(1):  Datum fails validity check.\nConversion target not valid.", 0},
    {"{ token=a name=A method=Mol target=WGS84 ellipsoid_radius=-1 }",
     "(1):  Datum fails validity check.\nEllipsoid radius must be positive.", 0},
    {"{ token=a name=A method=Mol target=WGS84 ellipsoid_radius=1 ellipsoid_flat=-1 }",
     "(1):  Datum fails validity check.\nEllipsoid flattening must not be negative.", 0},
};

TEST_F(DatumListTest, LoadReportsWhatItCannotRead) {
  for (const LoadCase& row : kLoads) {
    SCOPED_TRACE(row.content);
    const File file(row.content);
    DatumList list;
    EXPECT_RAISES(list.Load(file.Path(), false), 1029, "DatumList", file.Path() + std::string(row.message));
    EXPECT_EQ(row.read, list.Count());
  }
}

TEST_F(DatumListTest, LoadIntoTheKnownListReportsDuplicates) {
  const File file("{token=a name=A}\n{token=b name=a}");
  EXPECT_RAISES(ORVKnownDatumsList.Load(file.Path(), true), 1032, "DatumList",
                "Can't have two datums with the same name.");
  EXPECT_EQ(1, ORVKnownDatumsList.Count());
  DatumList list;
  EXPECT_TRUE(list.Load(file.Path(), true));
  EXPECT_EQ(2, list.Count());
}

TEST_F(DatumListTest, AMissingFileIsReportedOnDemand) {
  DatumList list;
  list.Add(Datum("A", "a"), 0);
  EXPECT_FALSE(list.Load("/no such folder/no.ocf", false));
  EXPECT_EQ(0, list.Count());
  EXPECT_RAISES(list.Load("/no such folder/no.ocf", true), 1028, "DatumList",
                "Can't find datum configuration file '/no such folder/no.ocf'");
}

TEST_F(DatumListTest, TheDefaultFileIsDatumOcfInTheConfigurationFolder) {
  const test::TempFolder folder;
  folder.Write("datum.ocf", "{token=here name=Here}");
  ORVSetConfigPath(folder.Path().c_str());
  DatumList list;
  EXPECT_TRUE(list.Load(nullptr, true));
  ORVSetConfigPath(nullptr);
  EXPECT_EQ(2, list.FindByToken("here", nullptr));
}

// ---- save ------------------------------------------------------------------------------------------------

TEST_F(DatumListTest, SaveWritesWhatTheMethodUses) {
  ORVKnownEllipsoidsList.Add(test::Clarke66());
  DatumParameters p;
  p.method = DatumMethodBursaWolf;
  p.target = DatumTargetWGS84;
  p.ellipsoid = test::Clarke66();
  p.pmShift = 2.5;
  p.dx = -10.25;
  p.dy = 20.5;
  p.dz = 30.75;
  p.rx = 0.5;
  p.ry = -0.25;
  p.rz = 0.125;
  p.k = -1.5;
  p.mreType = DatumMRETypeSA69;
  p.nadconPrvi = true;
  p.inverse = true;
  DatumList list;
  DatumDef datum = Named(DatumDef(&p, 6267), "NAD27B", "North American");
  datum.SetComment("a comment");
  datum.SetSpecial(DatumTargetNAD27);
  list.Add(datum, 1);
  p.method = DatumMethodMolodensky;
  p.ellipsoid = EllipsoidDef(6371000.12344, 0.0, "SPH", nullptr, nullptr, 5);
  list.Add(Named(DatumDef(&p, 0), "SPHERE", "Sphere"), 0);
  p.method = DatumMethodNADCON;
  p.target = DatumTargetNAD83;
  // The token of a known ellipsoid with other dimensions.
  p.ellipsoid = EllipsoidDef(6378206.4, 0.0033, "CLRK66", "not Clarke", nullptr, 5);
  list.Add(Named(DatumDef(&p, 1), "N", "Nadcon"), 2);
  p.method = DatumMethodMRE;
  p.ellipsoid.Flush();
  list.Add(Named(DatumDef(&p, 2), "M", "Regression"), 3);
  p.method = DatumMethodNTV2;
  list.Add(Named(DatumDef(&p, 3), "G", "Grid"), 0);
  p.method = DatumMethodNone;
  list.Add(Named(DatumDef(&p, 4), "W", "None"), 0);

  const File file;
  ASSERT_TRUE(list.Save(file.Path()));
  // Numbers are printf's %24.18f, %.4f and %.19f of the doubles (python3: '%24.18f' % value).
  EXPECT_EQ(R"(;
; Brevan horizontal geodetic datum configuration file.
;

; Entry 1 of 6
{
   token="NAD27B"
   name="North American"
   comment="a comment"
   posc=6267
   special="NAD27"
   method="Bursa-Wolf"
   target="WGS84"
   ellipsoid="CLRK66"
   pmshift=    2.500000000000000000
   dx=  -10.250000000000000000
   dy=   20.500000000000000000
   dz=   30.750000000000000000
   rx=    0.500000000000000000
   ry=   -0.250000000000000000
   rz=    0.125000000000000000
   k=   -1.500000000000000000
   geogcs=true
}

; Entry 2 of 6
{
   token="SPHERE"
   name="Sphere"
   posc=0
   method="Molodensky"
   target="WGS84"
   ellipsoid_token="SPH"
   ellipsoid_radius=6371000.1234
   ellipsoid_flat=0.0000000000000000000
   pmshift=    2.500000000000000000
   dx=  -10.250000000000000000
   dy=   20.500000000000000000
   dz=   30.750000000000000000
   geogcs=false
}

; Entry 3 of 6
{
   token="N"
   name="Nadcon"
   posc=1
   method="NADCON"
   target="NAD83"
   ellipsoid_token="CLRK66"
   ellipsoid_name="not Clarke"
   ellipsoid_radius=6378206.4000
   ellipsoid_flat=0.0033000000000000000
   prvi=true
   geogcs=false
}

; Entry 4 of 6
{
   token="M"
   name="Regression"
   posc=2
   method="MRE"
   target="NAD83"
   mretype="SA69"
   geogcs=true
}

; Entry 5 of 6
{
   token="G"
   name="Grid"
   posc=3
   method="NTV2"
   target="NAD83"
   geogcs=false
}

; Entry 6 of 6
{
   token="W"
   name="None"
   posc=4
   method="None"
   target="NAD83"
   pmshift=    2.500000000000000000
   geogcs=false
}

;
; End datum configuration file.
;
)",
            file.Content());
}

TEST_F(DatumListTest, SaveReportsAFileThatCannotBeCreated) {
  const DatumList list;
  EXPECT_RAISES(list.Save("/no such folder/no.ocf"), 1028, "DatumList",
                "Failed opening configuration file for writing '/no such folder/no.ocf'");
}

/// A text that a quoted token can hold, and not empty.
std::string FileText() { return "t" + test::QuotableText(); }

TEST_F(DatumListTest, ASavedListComesBackEqual) {
  ORVKnownEllipsoidsList.Add(test::Clarke66());
  ORVKnownEllipsoidsList.Add(test::International());
  const File file;
  EXPECT_TRUE(test::Holds(
      [&file] {
        DatumList list;
        const int count = test::IntIn(0, 8);
        for (int i = 0; i < count; ++i) {
          DatumDef datum = test::ValidDatum();
          datum.SetToken(FileText().c_str());
          datum.SetName(FileText().c_str());
          datum.SetComment(test::AnyBool() ? FileText().c_str() : nullptr);
          // The file keeps four decimals of a radius.
          const double radius = static_cast<double>(test::IntegerIn(1, 70000000000)) / 10000.0;
          EllipsoidDef ellipsoid(radius, datum.GetEllipsoid()->GetFlattening(), FileText().c_str(), "e", "",
                                 0);
          if (test::IntIn(0, 3) == 0) ellipsoid = test::International();
          datum.SetParameter(DatumParameterIDEllipsoid, ellipsoid);
          list.Add(datum, test::SizeIn(0, 2));
        }
        ORV_HOLDS(list.Save(file.Path()));
        DatumList read;
        ORV_HOLDS(read.Load(file.Path(), true));
        ORV_HOLDS(read.Count() == list.Count());
        for (int i = list.First(); i <= list.Last(); ++i) {
          const DatumDef& a = *list.Enum(i);
          const DatumDef& b = *read.Enum(i);
          ORV_HOLDS(a.CompareParameters(&b));
          ORV_HOLDS(std::string(list.EnumToken(i)) == read.EnumToken(i));
          ORV_HOLDS(std::string(list.EnumName(i)) == read.EnumName(i));
          ORV_HOLDS(a.GetPOSCNumber() == b.GetPOSCNumber());
          ORV_HOLDS(a.GetSpecial() == b.GetSpecial());
          ORV_HOLDS(list.EnumFlags(i) == read.EnumFlags(i));
          ORV_HOLDS(std::string(a.GetComment() ? a.GetComment() : "") ==
                    (b.GetComment() ? b.GetComment() : ""));
          // Ellipsoids of methods that do not compare them come back too.
          ORV_HOLDS(a.GetEllipsoid()->GetMajorRadius() == b.GetEllipsoid()->GetMajorRadius());
          ORV_HOLDS(std::string(a.GetEllipsoid()->GetToken()) == b.GetEllipsoid()->GetToken());
        }
      },
      60));
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST_F(DatumListTest, DumpShowsEntriesAndIndexes) {
  DatumList list;
  list.Add(Datum("Zed", "alpha", 20), 0);
  list.Add(Datum("a_b", "Beta", 10), 0);
  std::string text;
  list.DebugDump(text, 1);
  text = test::Masked(text);
  EXPECT_EQ(0u, text.find(" DatumList this=ADDRESS:\n ENTRY 2\n Datum this=ADDRESS\n   Token   = 'Zed'\n"));
  EXPECT_NE(std::string::npos,
            text.find("NadconPrvi = false\n ENTRY 3\n Datum this=ADDRESS\n   Token   = 'a_b'\n"));
  const std::string indexes =
      "NadconPrvi = false\n"
      " IndexByName:\n"
      "   0:     0 (alpha)\n"
      "   1:     1 (Beta)\n"
      " IndexByToken:\n"
      "   0:     1 (a_b)\n"
      "   1:     0 (Zed)\n"
      " IndexByPOSC:\n"
      "   0:     1 (POSC=10)\n"
      "   1:     0 (POSC=20)\n";
  ASSERT_GT(text.size(), indexes.size());
  EXPECT_EQ(indexes, text.substr(text.size() - indexes.size()));
}

TEST(DatumList, TheDefaultFileIsSavedInTheWorkingDirectory) {
  const test::TempFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  DatumList list;
  list.Add(Named(Make{DatumMethodNone, DatumTargetWGS84, DatumTargetWGS84}, "W", "WGS"), 0);
  ASSERT_TRUE(list.Save(folder.Path("named.ocf").c_str()));
  std::filesystem::current_path(folder.Path());
  EXPECT_TRUE(list.Save(nullptr));
  std::filesystem::current_path(before);
  EXPECT_EQ(folder.Read("datum.ocf"), folder.Read("named.ocf"));
}

}  // namespace
}  // namespace orv
