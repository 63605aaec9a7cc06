#include "orv/datum/DatumDef.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/datum/Datums.h"
#include "tests/support/Generators.h"
#include "tests/support/Masked.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using test::Make;
using test::Wgs84;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();
const char* const kBad = "Bad parameter to function call";
const char* const kCorrupt = "Corrupt data enountered in encoded datum parameters.";

DatumParameterID Id(int number) { return static_cast<DatumParameterID>(number); }

/// Every field away from its default.
DatumDef Full() {
  DatumParameters p;
  p.method = DatumMethodBursaWolf;
  p.target = DatumTargetNAD83;
  p.ellipsoid = Wgs84();
  p.pmShift = 2.5;
  p.dx = 10.25;
  p.dy = -20.5;
  p.dz = 30.75;
  p.rx = 0.5;
  p.ry = -0.25;
  p.rz = 0.125;
  p.k = -1.5;
  p.mreType = DatumMRETypeSA69;
  p.nadconPrvi = true;
  p.inverse = true;
  DatumDef datum(&p, 6326);
  datum.SetToken("TOK");
  datum.SetName("Name");
  datum.SetComment("Comment");
  datum.SetSpecial(DatumTargetNAD27);
  return datum;
}

// ---- vocabulary ------------------------------------------------------------------------------------------

struct NameCase {
  const char* name;
  int number;
  bool canonical;
};

const NameCase kMethods[] = {
    {"Unknown", 0, true}, {"None", 1, true},       {"Molodensky", 2, true},   {"Molodenski", 2, false},
    {"Mol", 2, false},    {"Bursa-Wolf", 3, true}, {"Bursa-Wolfe", 3, false}, {"Bursa", 3, false},
    {"NADCON", 4, true},  {"NTV2", 5, true},       {"NTV-2", 5, false},       {"MRE", 6, true},
};
const NameCase kTargets[] = {
    {"NONE", 0, true},  {"WGS84", 1, true},        {"NAD27", 2, true},        {"NAD27-CONUS", 2, false},
    {"NAD83", 3, true}, {"NAD83-CONUS", 3, false}, {"NAD27-CANADA", 4, true}, {"NAD83-CANADA", 5, true},
};
const NameCase kMRETypes[] = {
    {"AGD1966", 1, true},    {"AGD1984", 2, true}, {"CAMPO", 3, true},
    {"CORREGO", 4, true},    {"ED50", 5, true},    {"NAD27CANADA", 6, true},
    {"NAD27CONUS", 7, true}, {"NAD27", 7, false},  {"SA69", 8, true},
};

std::string Folded(std::string text, bool upper) {
  for (char& c : text) {
    if (upper && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (!upper && c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

template <class E, size_t N>
void ExpectVocabulary(const NameCase (&rows)[N], const char* (*nameOf)(E), bool (*nameInto)(E, std::string&),
                      E (*idOf)(const char*)) {
  for (const NameCase& row : rows) {
    SCOPED_TRACE(row.name);
    const E number = static_cast<E>(row.number);
    EXPECT_EQ(number, idOf(row.name));
    EXPECT_EQ(number, idOf(Folded(row.name, true).c_str()));
    EXPECT_EQ(number, idOf(Folded(row.name, false).c_str()));
    if (!row.canonical) continue;
    EXPECT_STREQ(row.name, nameOf(number));
    std::string text = "old";
    EXPECT_TRUE(nameInto(number, text));
    EXPECT_EQ(row.name, text);
  }
  for (const char* const unknown : {static_cast<const char*>(nullptr), "", "Mo", "WGS 84", "AGD1966 "}) {
    EXPECT_EQ(static_cast<E>(0), idOf(unknown));
  }
}

TEST(DatumDef, MethodsHaveTheirNames) {
  ExpectVocabulary<DatumMethod>(kMethods, &DatumDef::MethodToName, &DatumDef::MethodToName,
                                &DatumDef::NameToMethod);
  EXPECT_EQ(DatumMethodMolodensky, DatumDef::NameToMethod("mol"));
  EXPECT_STREQ("Molodensky", DatumDef::MethodToName(DatumMethodMolodensky));
}

TEST(DatumDef, TargetsHaveTheirNames) {
  ExpectVocabulary<DatumTarget>(kTargets, &DatumDef::TargetToName, &DatumDef::TargetToName,
                                &DatumDef::NameToTarget);
}

TEST(DatumDef, RegressionRegionsHaveTheirNames) {
  ExpectVocabulary<DatumMREType>(kMRETypes, &DatumDef::MRETypeToName, &DatumDef::MRETypeToName,
                                 &DatumDef::NameToMREType);
  EXPECT_EQ(DatumMRETypeNAD27Conus, DatumDef::NameToMREType("NAD27"));
}

TEST(DatumDef, ANumberWithoutANameIsNullOrRaises) {
  std::string text = "old";
  for (const int number : {-1, 7, 8, 1000}) {
    EXPECT_EQ(nullptr, DatumDef::MethodToName(static_cast<DatumMethod>(number)));
    EXPECT_RAISES(DatumDef::MethodToName(static_cast<DatumMethod>(number), text), 1032, "DatumDef", kBad);
  }
  for (const int number : {-1, 6, 1000}) {
    EXPECT_EQ(nullptr, DatumDef::TargetToName(static_cast<DatumTarget>(number)));
    EXPECT_RAISES(DatumDef::TargetToName(static_cast<DatumTarget>(number), text), 1032, "DatumDef", kBad);
  }
  for (const int number : {-1, 0, 9}) {
    EXPECT_EQ(nullptr, DatumDef::MRETypeToName(static_cast<DatumMREType>(number)));
    EXPECT_RAISES(DatumDef::MRETypeToName(static_cast<DatumMREType>(number), text), 1032, "DatumDef", kBad);
  }
  EXPECT_EQ("old", text);
}

struct ParameterCase {
  int id;
  const char* shortName;
  const char* name;
  int type;
};

const ParameterCase kParameters[] = {
    {1, "Method", "Conversion Method", 4},
    {2, "Target", "Conversion Target", 4},
    {3, "Ellipsoid", "Ellipsoid", 5},
    {4, "PMShift", "Prime Meridian Shift", 1},
    {5, "dx", "X Displacement", 1},
    {6, "dy", "Y Displacement", 1},
    {7, "dz", "Z Displacement", 1},
    {8, "rx", "X Rotation", 1},
    {9, "ry", "Y Rotation", 1},
    {10, "rz", "Z Rotation", 1},
    {11, "K", "K Scale", 1},
    {12, "Equation", "Regional Equation", 4},
    {13, "NadconPrvi", "Use PRVI NADCON File Set", 3},
    {14, "Inverse", "Inverse", 3},
};

TEST(DatumDef, ParametersHaveTheirNamesAndTypes) {
  for (const ParameterCase& row : kParameters) {
    SCOPED_TRACE(row.name);
    EXPECT_STREQ(row.name, DatumDef::ParameterName(Id(row.id)));
    EXPECT_STREQ(row.shortName, DatumDef::ParameterShortName(Id(row.id)));
    EXPECT_EQ(row.type, DatumDef::ParameterDataType(Id(row.id)));
    EXPECT_EQ(row.id, DatumDef::NameToParameter(row.name));
    EXPECT_EQ(row.id, DatumDef::NameToParameter(Folded(row.shortName, true).c_str()));
    std::string text;
    EXPECT_TRUE(DatumDef::ParameterName(Id(row.id), text));
    EXPECT_EQ(row.name, text);
  }
  std::string text = "old";
  for (const int id : {-1, 0, 15, 99}) {
    EXPECT_EQ(nullptr, DatumDef::ParameterName(Id(id)));
    EXPECT_EQ(nullptr, DatumDef::ParameterShortName(Id(id)));
    EXPECT_EQ(ORVDataTypeIDNone, DatumDef::ParameterDataType(Id(id)));
    EXPECT_RAISES(DatumDef::ParameterName(Id(id), text), 1032, "DatumDef", kBad);
  }
  EXPECT_EQ("old", text);
  EXPECT_EQ(0, DatumDef::NameToParameter(nullptr));
  EXPECT_EQ(0, DatumDef::NameToParameter("ddx"));
}

const std::vector<int> kUsed[] = {
    {},     {1, 2, 3, 4}, {1, 2, 3, 5, 6, 7, 4}, {1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 4}, {1, 2, 13},
    {1, 2}, {1, 2, 12},
};

TEST(DatumDef, MethodsHaveTheirParametersInOrder) {
  for (int number = 0; number <= 6; ++number) {
    const auto method = static_cast<DatumMethod>(number);
    SCOPED_TRACE(number);
    DatumDef datum;
    if (number > 0) datum.SetMethod(method, false);
    EXPECT_EQ(kUsed[number].size(), DatumDef::NumParameters(method));
    EXPECT_EQ(kUsed[number].size(), datum.NumParameters());
    for (size_t i = 0; i < 20; ++i) {
      const int expected = i < kUsed[number].size() ? kUsed[number][i] : 0;
      EXPECT_EQ(expected, DatumDef::EnumParameter(method, i));
      EXPECT_EQ(expected, datum.EnumParameter(i));
    }
    for (int id = -1; id <= 16; ++id) {
      const bool used = std::find(kUsed[number].begin(), kUsed[number].end(), id) != kUsed[number].end();
      EXPECT_EQ(used, DatumDef::UsesParameter(method, Id(id))) << id;
      EXPECT_EQ(used, datum.UsesParameter(Id(id))) << id;
    }
  }
}

TEST(DatumDef, AnUnknownMethodHasNoParameters) {
  for (const int number : {-1, 7, 1000}) {
    const auto method = static_cast<DatumMethod>(number);
    EXPECT_EQ(0u, DatumDef::NumParameters(method));
    EXPECT_EQ(0, DatumDef::EnumParameter(method, 0));
    EXPECT_FALSE(DatumDef::UsesParameter(method, DatumParameterIDMethod));
  }
}

// ---- the definition --------------------------------------------------------------------------------------

TEST(DatumDef, DefaultsAreEmpty) {
  const DatumDef datum;
  EXPECT_EQ(nullptr, datum.GetToken());
  EXPECT_EQ(nullptr, datum.GetName());
  EXPECT_EQ(nullptr, datum.GetComment());
  EXPECT_EQ(0, datum.GetPOSCNumber());
  EXPECT_EQ(DatumTargetNone, datum.GetSpecial());
  EXPECT_EQ(DatumMethodUnknown, datum.GetMethod());
  EXPECT_EQ(DatumTargetNone, datum.GetTarget());
  EXPECT_EQ(DatumTargetNone, datum.GetConversionTarget());
  EXPECT_TRUE(datum.GetEllipsoid()->IsUnknown());
  EXPECT_TRUE(datum.IsUnknown());
  for (int id = 4; id <= 14; ++id) EXPECT_EQ(0.0, datum.GetParameter(Id(id)));
}

TEST(DatumDef, TextsAreSetFromPointersAndStrings) {
  DatumDef datum;
  std::string token = "t", name = "n", comment = "c";
  datum.SetToken(token);
  datum.SetName(name);
  datum.SetComment(comment);
  EXPECT_STREQ("t", datum.GetToken());
  EXPECT_STREQ("n", datum.GetName());
  EXPECT_STREQ("c", datum.GetComment());
  datum.SetToken("T");
  datum.SetName("N");
  datum.SetComment("C");
  EXPECT_STREQ("T", datum.GetToken());
  EXPECT_STREQ("N", datum.GetName());
  EXPECT_STREQ("C", datum.GetComment());
  datum.SetToken(nullptr);
  datum.SetName(nullptr);
  datum.SetComment(nullptr);
  EXPECT_EQ(nullptr, datum.GetToken());
  EXPECT_EQ(nullptr, datum.GetName());
  EXPECT_EQ(nullptr, datum.GetComment());
}

TEST(DatumDef, SetMethodTakesOneToSix) {
  for (int number = 1; number <= 6; ++number) {
    DatumDef datum = Full();
    datum.SetMethod(static_cast<DatumMethod>(number), false);
    EXPECT_EQ(number, datum.GetMethod());
    EXPECT_EQ(10.25, datum.GetParameter(DatumParameterIDdx));
    EXPECT_STREQ("TOK", datum.GetToken());
  }
  for (const int number : {-1, 0, 7}) {
    DatumDef datum = Full();
    EXPECT_RAISES(datum.SetMethod(static_cast<DatumMethod>(number), true), 1032, "DatumDef", kBad);
    EXPECT_EQ(DatumMethodBursaWolf, datum.GetMethod());
    EXPECT_STREQ("TOK", datum.GetToken());
  }
}

TEST(DatumDef, SetMethodWithFlushEmptiesEverythingElse) {
  DatumDef datum = Full();
  datum.SetMethod(DatumMethodNADCON, true);
  EXPECT_EQ(DatumMethodNADCON, datum.GetMethod());
  EXPECT_EQ(nullptr, datum.GetToken());
  EXPECT_EQ(0, datum.GetPOSCNumber());
  EXPECT_EQ(DatumTargetNone, datum.GetSpecial());
  EXPECT_EQ(DatumTargetNone, datum.GetTarget());
  EXPECT_EQ(0.0, datum.GetParameter(DatumParameterIDdx));
  EXPECT_TRUE(datum.GetEllipsoid()->IsUnknown());
}

TEST(DatumDef, ParametersGoInAndOutAsABlock) {
  const DatumDef full = Full();
  DatumParameters p;
  full.GetParameters(p);
  EXPECT_EQ(-20.5, p.dy);
  EXPECT_TRUE(p.inverse);
  EXPECT_EQ(&full.GetParameters()->ellipsoid, full.GetEllipsoid());

  DatumDef datum(&p, 12);
  EXPECT_EQ(12, datum.GetPOSCNumber());
  EXPECT_EQ(DatumMRETypeSA69, datum.GetParameters()->mreType);
  EXPECT_EQ(nullptr, datum.GetName());
}

TEST(DatumDef, NullParametersFlushTheWholeDatum) {
  DatumDef datum = Full();
  datum.SetParameters(nullptr);
  EXPECT_EQ(nullptr, datum.GetToken());
  EXPECT_EQ(nullptr, datum.GetName());
  EXPECT_EQ(nullptr, datum.GetComment());
  EXPECT_EQ(0, datum.GetPOSCNumber());
  EXPECT_EQ(DatumTargetNone, datum.GetSpecial());
  EXPECT_TRUE(datum.IsUnknown());
  EXPECT_EQ(0, DatumDef(nullptr, 77).GetPOSCNumber());
}

TEST(DatumDef, FlushedParametersAreThoseConstructed) {
  DatumParameters p = *Full().GetParameters();
  p.Flush();
  EXPECT_EQ(DatumMethodUnknown, p.method);
  EXPECT_EQ(DatumTargetNone, p.target);
  EXPECT_TRUE(p.ellipsoid.IsUnknown());
  for (const double value : {p.pmShift, p.dx, p.dy, p.dz, p.rx, p.ry, p.rz, p.k}) EXPECT_EQ(0.0, value);
  EXPECT_EQ(DatumMRETypeNone, p.mreType);
  EXPECT_FALSE(p.nadconPrvi);
  EXPECT_FALSE(p.inverse);
}

// ---- single parameters -----------------------------------------------------------------------------------

TEST(DatumDef, SetParameterReachesItsOwnField) {
  DatumDef datum;
  for (int id = 4; id <= 11; ++id) datum.SetParameter(Id(id), id + 0.5);
  const DatumParameters* const p = datum.GetParameters();
  EXPECT_EQ(4.5, p->pmShift);
  EXPECT_EQ(5.5, p->dx);
  EXPECT_EQ(6.5, p->dy);
  EXPECT_EQ(7.5, p->dz);
  EXPECT_EQ(8.5, p->rx);
  EXPECT_EQ(9.5, p->ry);
  EXPECT_EQ(10.5, p->rz);
  EXPECT_EQ(11.5, p->k);
  for (int id = 4; id <= 11; ++id) EXPECT_EQ(id + 0.5, datum.GetParameter(Id(id)));
  datum.SetParameter(DatumParameterIDdx, -7);
  EXPECT_EQ(-7.0, p->dx);

  datum.SetParameter(DatumParameterIDMethod, 2.9);
  datum.SetParameter(DatumParameterIDTarget, 4.2);
  datum.SetParameter(DatumParameterIDEquation, 7.99);
  EXPECT_EQ(DatumMethodMolodensky, p->method);
  EXPECT_EQ(DatumTargetNAD27Canada, p->target);
  EXPECT_EQ(DatumMRETypeNAD27Conus, p->mreType);
  datum.SetParameter(DatumParameterIDMethod, 6);
  datum.SetParameter(DatumParameterIDTarget, 1);
  datum.SetParameter(DatumParameterIDEquation, 3);
  EXPECT_EQ(DatumMethodMRE, p->method);
  EXPECT_EQ(DatumTargetWGS84, p->target);
  EXPECT_EQ(DatumMRETypeCampo, p->mreType);

  datum.SetParameter(DatumParameterIDNadconPrvi, 0.001);
  datum.SetParameter(DatumParameterIDInverse, -3);
  EXPECT_TRUE(p->nadconPrvi);
  EXPECT_TRUE(p->inverse);
  datum.SetParameter(DatumParameterIDNadconPrvi, -0.0);
  datum.SetParameter(DatumParameterIDInverse, 0);
  EXPECT_FALSE(p->nadconPrvi);
  EXPECT_FALSE(p->inverse);
}

TEST(DatumDef, EnumerationsTakeAnyNumber) {
  DatumDef datum;
  datum.SetParameter(DatumParameterIDMethod, 99);
  EXPECT_EQ(99, datum.GetMethod());
  datum.SetParameter(DatumParameterIDMethod, -3.7);
  EXPECT_EQ(-3, datum.GetMethod());
  datum.SetParameter(DatumParameterIDMethod, 1e300);
  EXPECT_EQ(std::numeric_limits<int>::max(), datum.GetMethod());
  datum.SetParameter(DatumParameterIDMethod, -1e300);
  EXPECT_EQ(std::numeric_limits<int>::min(), datum.GetMethod());
  datum.SetParameter(DatumParameterIDMethod, kNaN);
  EXPECT_EQ(0, datum.GetMethod());
}

class DatumDefEllipsoids : public test::KnownLists {};

TEST_F(DatumDefEllipsoids, SetParameterTakesAnIndexOfTheKnownOnes) {
  ORVKnownEllipsoidsList.Add(test::Clarke66());
  ORVKnownEllipsoidsList.Add(test::Grs80());
  DatumDef datum;
  datum.SetParameter(DatumParameterIDEllipsoid, Wgs84());
  // The first entry is 2, and what names no entry is ignored.
  for (const int index : {-1, 0, 1, 4, 100}) {
    datum.SetParameter(DatumParameterIDEllipsoid, index);
    datum.SetParameter(DatumParameterIDEllipsoid, static_cast<double>(index));
    EXPECT_STREQ("WGS84", datum.GetEllipsoid()->GetToken()) << index;
  }
  datum.SetParameter(DatumParameterIDEllipsoid, kNaN);
  EXPECT_STREQ("WGS84", datum.GetEllipsoid()->GetToken());
  datum.SetParameter(DatumParameterIDEllipsoid, 2);
  EXPECT_STREQ("CLRK66", datum.GetEllipsoid()->GetToken());
  datum.SetParameter(DatumParameterIDEllipsoid, 3.9);
  EXPECT_STREQ("GRS80", datum.GetEllipsoid()->GetToken());
}

TEST(DatumDef, GettersHaveTheirOwnParameters) {
  const DatumDef datum = Full();
  double number = 1.0;
  datum.GetParameter(DatumParameterIDEquation, number);
  EXPECT_EQ(8.0, number);
  datum.GetParameter(DatumParameterIDNadconPrvi, number);
  EXPECT_EQ(1.0, number);
  EXPECT_EQ(1.0, datum.GetParameter(DatumParameterIDInverse));

  int integer = 0;
  datum.GetParameter(DatumParameterIDMethod, integer);
  EXPECT_EQ(3, integer);
  datum.GetParameter(DatumParameterIDTarget, integer);
  EXPECT_EQ(3, integer);
  datum.GetParameter(DatumParameterIDEquation, integer);
  EXPECT_EQ(8, integer);
  datum.GetParameter(DatumParameterIDdy, integer);
  EXPECT_EQ(-20, integer);
  datum.GetParameter(DatumParameterIDInverse, integer);
  EXPECT_EQ(1, integer);

  bool flag = false;
  datum.GetParameter(DatumParameterIDNadconPrvi, flag);
  EXPECT_TRUE(flag);
  DatumDef without = datum;
  without.SetParameter(DatumParameterIDInverse, 0);
  without.GetParameter(DatumParameterIDInverse, flag);
  EXPECT_FALSE(flag);
  without.GetParameter(DatumParameterIDNadconPrvi, flag);
  EXPECT_TRUE(flag);

  DatumTarget target = DatumTargetNone;
  datum.GetParameter(DatumParameterIDTarget, target);
  EXPECT_EQ(DatumTargetNAD83, target);
  DatumMREType type = DatumMRETypeNone;
  datum.GetParameter(DatumParameterIDEquation, type);
  EXPECT_EQ(DatumMRETypeSA69, type);
  EllipsoidDef ellipsoid;
  datum.GetParameter(DatumParameterIDEllipsoid, ellipsoid);
  EXPECT_STREQ("WGS84", ellipsoid.GetToken());
}

TEST(DatumDef, ABadParameterIDRaises) {
  DatumDef datum = Full();
  for (const int id : {-1, 0, 15, 99}) {
    EXPECT_RAISES(datum.SetParameter(Id(id), 1.0), 1032, "DatumDef", kBad);
    EXPECT_RAISES(datum.SetParameter(Id(id), 1), 1032, "DatumDef", kBad);
  }
  for (const int id : {-1, 0, 1, 2, 3, 15}) {
    double number = 5.0;
    EXPECT_RAISES(datum.GetParameter(Id(id), number), 1032, "DatumDef", kBad);
    EXPECT_EQ(0.0, number);  // zeroed before the report
    EXPECT_RAISES(datum.GetParameter(Id(id)), 1032, "DatumDef", kBad);
  }
  int integer = 5;
  for (const int id : {-1, 0, 3, 15})
    EXPECT_RAISES(datum.GetParameter(Id(id), integer), 1032, "DatumDef", kBad);
  bool flag = true;
  DatumTarget target = DatumTargetWGS84;
  DatumMREType type = DatumMRETypeED50;
  EllipsoidDef ellipsoid;
  for (int id = 0; id <= 15; ++id) {
    SCOPED_TRACE(id);
    if (id != 13 && id != 14) {
      EXPECT_RAISES(datum.GetParameter(Id(id), flag), 1032, "DatumDef", kBad);
    }
    if (id != 2) {
      EXPECT_RAISES(datum.GetParameter(Id(id), target), 1032, "DatumDef", kBad);
    }
    if (id != 12) {
      EXPECT_RAISES(datum.GetParameter(Id(id), type), 1032, "DatumDef", kBad);
    }
    if (id != 3) {
      EXPECT_RAISES(datum.GetParameter(Id(id), ellipsoid), 1032, "DatumDef", kBad);
    }
    if (id != 3) {
      EXPECT_RAISES(datum.SetParameter(Id(id), Wgs84()), 1032, "DatumDef", kBad);
    }
  }
  EXPECT_TRUE(flag);
  EXPECT_EQ(DatumTargetWGS84, target);
  EXPECT_EQ(DatumMRETypeED50, type);
  EXPECT_TRUE(ellipsoid.IsUnknown());
}

// ---- check -----------------------------------------------------------------------------------------------

struct CheckCase {
  const char* what;
  void (*spoil)(DatumParameters& p);
  int id;
  const char* message;
};

const double kHalfOfFloat = 1.7014117331926443e38;

const CheckCase kChecks[] = {
    {"good", [](DatumParameters&) {}, 0, ""},
    {"method below", [](DatumParameters& p) { p.method = static_cast<DatumMethod>(-1); }, 1,
     "Datum conversion method not valid."},
    {"method above", [](DatumParameters& p) { p.method = DatumMethodEnd; }, 1,
     "Datum conversion method not valid."},
    {"unknown passes whatever else",
     [](DatumParameters& p) {
       p.method = DatumMethodUnknown;
       p.target = DatumTargetNone;
       p.dx = 1e39;
     },
     0, ""},
    {"target none", [](DatumParameters& p) { p.target = DatumTargetNone; }, 2,
     "Conversion target not valid."},
    {"target above", [](DatumParameters& p) { p.target = static_cast<DatumTarget>(6); }, 2,
     "Conversion target not valid."},
    {"target of a method without parameters",
     [](DatumParameters& p) {
       p.method = DatumMethodNone;
       p.target = static_cast<DatumTarget>(-1);
     },
     2, "Conversion target not valid."},
    {"region none",
     [](DatumParameters& p) {
       p.method = DatumMethodMRE;
       p.mreType = DatumMRETypeNone;
     },
     12, "Invalid MRE type code specified for MRE datum conversion method."},
    {"region above",
     [](DatumParameters& p) {
       p.method = DatumMethodMRE;
       p.mreType = static_cast<DatumMREType>(9);
     },
     12, "Invalid MRE type code specified for MRE datum conversion method."},
    {"region below 0 passes",
     [](DatumParameters& p) {
       p.method = DatumMethodMRE;
       p.mreType = static_cast<DatumMREType>(-1);
     },
     0, ""},
    {"region of another method", [](DatumParameters& p) { p.mreType = static_cast<DatumMREType>(9); }, 0, ""},
    {"grid methods have no ellipsoid",
     [](DatumParameters& p) {
       p.method = DatumMethodNADCON;
       p.ellipsoid.Flush();
       p.dx = 1e39;
       p.pmShift = 181.0;
     },
     0, ""},
    {"method none does not check its ellipsoid",
     [](DatumParameters& p) {
       p.method = DatumMethodNone;
       p.ellipsoid.Flush();
       p.pmShift = 181.0;
     },
     0, ""},
    {"ellipsoid without radius", [](DatumParameters& p) { p.ellipsoid.Flush(); }, 3,
     "Ellipsoid radius must be positive."},
    {"ellipsoid too flat", [](DatumParameters& p) { p.ellipsoid.SetFlattening(1.5); }, 3,
     "Ellipsoid flattening must be less than one."},
    {"shift west", [](DatumParameters& p) { p.pmShift = -180.1; }, 4,
     "Prime meridian shift parameter must be between +/-180 degrees."},
    {"shift east", [](DatumParameters& p) { p.pmShift = 180.1; }, 4,
     "Prime meridian shift parameter must be between +/-180 degrees."},
    {"shift at its bound", [](DatumParameters& p) { p.pmShift = -180.0; }, 0, ""},
    {"dx", [](DatumParameters& p) { p.dx = 1e39; }, 5, "Invalid X displacement parameter."},
    {"dy", [](DatumParameters& p) { p.dy = -1e39; }, 6, "Invalid y displacement parameter."},
    {"dz", [](DatumParameters& p) { p.dz = 1.71e38; }, 7, "Invalid z displacement parameter."},
    {"displacement at its bound", [](DatumParameters& p) { p.dx = p.dy = p.dz = -kHalfOfFloat; }, 0, ""},
    {"displacement beyond its bound", [](DatumParameters& p) { p.dx = std::nextafter(kHalfOfFloat, 1e39); },
     5, "Invalid X displacement parameter."},
    {"rx", [](DatumParameters& p) { p.rx = 1e39; }, 8, "Invalid X rotation parameter."},
    {"ry", [](DatumParameters& p) { p.ry = -1e39; }, 9, "Invalid Y rotation parameter."},
    {"rz", [](DatumParameters& p) { p.rz = kInfinity; }, 10, "Invalid Z rotation parameter."},
    {"k is not checked", [](DatumParameters& p) { p.k = 1e39; }, 0, ""},
    {"Molodensky has no rotations",
     [](DatumParameters& p) {
       p.method = DatumMethodMolodensky;
       p.rx = 1e39;
     },
     0, ""},
    {"NaN passes",
     [](DatumParameters& p) { p.pmShift = p.dx = p.dy = p.dz = p.rx = p.ry = p.rz = p.k = kNaN; }, 0, ""},
    {"the first fault wins",
     [](DatumParameters& p) {
       p.dz = 1e39;
       p.dy = 1e39;
       p.rx = 1e39;
     },
     6, "Invalid y displacement parameter."},
    {"method before target",
     [](DatumParameters& p) {
       p.method = DatumMethodEnd;
       p.target = DatumTargetNone;
     },
     1, "Datum conversion method not valid."},
    {"ellipsoid before shift",
     [](DatumParameters& p) {
       p.ellipsoid.Flush();
       p.pmShift = 200.0;
     },
     3, "Ellipsoid radius must be positive."},
    {"shift before displacement",
     [](DatumParameters& p) {
       p.pmShift = 200.0;
       p.dx = 1e39;
     },
     4, "Prime meridian shift parameter must be between +/-180 degrees."},
};

TEST(DatumDef, CheckNamesTheFirstFault) {
  for (const CheckCase& row : kChecks) {
    SCOPED_TRACE(row.what);
    DatumParameters p = *Full().GetParameters();
    row.spoil(p);
    const DatumDef datum(&p, 0);
    std::string message = "old";
    EXPECT_EQ(row.id, datum.CheckParameters(message));
    EXPECT_EQ(row.message, message);
    EXPECT_EQ(row.id, datum.CheckParameters());
  }
}

// ---- compare ---------------------------------------------------------------------------------------------

struct CompareCase {
  const char* what;
  DatumMethod method;
  void (*change)(DatumParameters& p);
  bool equal;
};

const CompareCase kCompares[] = {
    {"nothing", DatumMethodBursaWolf, [](DatumParameters&) {}, true},
    {"target", DatumMethodBursaWolf, [](DatumParameters& p) { p.target = DatumTargetWGS84; }, false},
    {"method", DatumMethodBursaWolf, [](DatumParameters& p) { p.method = DatumMethodMolodensky; }, false},
    {"radius within", DatumMethodNone,
     [](DatumParameters& p) { p.ellipsoid.SetMajorRadius(6378137.0 + 9e-9); }, true},
    {"radius beyond", DatumMethodNone,
     [](DatumParameters& p) { p.ellipsoid.SetMajorRadius(6378137.0 + 2e-8); }, false},
    {"flattening within", DatumMethodNone,
     [](DatumParameters& p) { p.ellipsoid.SetFlattening(1 / 298.257223563 + 9e-13); }, true},
    {"flattening beyond", DatumMethodNone,
     [](DatumParameters& p) { p.ellipsoid.SetFlattening(1 / 298.257223563 + 2e-12); }, false},
    {"ellipsoid's texts", DatumMethodNone, [](DatumParameters& p) { p.ellipsoid.SetToken("other"); }, true},
    {"shift of method None", DatumMethodNone, [](DatumParameters& p) { p.pmShift = 17.0; }, true},
    {"shift beyond", DatumMethodMolodensky, [](DatumParameters& p) { p.pmShift += 2e-8; }, false},
    {"shift within", DatumMethodMolodensky, [](DatumParameters& p) { p.pmShift += 9e-9; }, true},
    {"dx beyond", DatumMethodMolodensky, [](DatumParameters& p) { p.dx -= 2e-8; }, false},
    {"dx within", DatumMethodMolodensky, [](DatumParameters& p) { p.dx -= 9e-9; }, true},
    {"dy beyond", DatumMethodMolodensky, [](DatumParameters& p) { p.dy += 2e-8; }, false},
    {"dz beyond", DatumMethodMolodensky, [](DatumParameters& p) { p.dz += 2e-8; }, false},
    {"rotations of Molodensky", DatumMethodMolodensky, [](DatumParameters& p) { p.rx = p.ry = p.rz = 9.0; },
     true},
    {"scale of Molodensky", DatumMethodMolodensky, [](DatumParameters& p) { p.k = 9.0; }, true},
    {"rx beyond", DatumMethodBursaWolf, [](DatumParameters& p) { p.rx += 2e-8; }, false},
    {"ry beyond", DatumMethodBursaWolf, [](DatumParameters& p) { p.ry += 2e-8; }, false},
    {"rz beyond", DatumMethodBursaWolf, [](DatumParameters& p) { p.rz += 2e-8; }, false},
    {"k beyond", DatumMethodBursaWolf, [](DatumParameters& p) { p.k += 2e-8; }, false},
    {"k within", DatumMethodBursaWolf, [](DatumParameters& p) { p.k += 9e-9; }, true},
    {"NaN difference", DatumMethodBursaWolf, [](DatumParameters& p) { p.k = kNaN; }, true},
    {"region", DatumMethodMRE, [](DatumParameters& p) { p.mreType = DatumMRETypeED50; }, false},
    {"ellipsoid of MRE", DatumMethodMRE, [](DatumParameters& p) { p.ellipsoid.Flush(); }, true},
    {"region of NADCON", DatumMethodNADCON, [](DatumParameters& p) { p.mreType = DatumMRETypeED50; }, true},
    {"prvi of NADCON", DatumMethodNADCON, [](DatumParameters& p) { p.nadconPrvi = false; }, false},
    {"inverse of NADCON", DatumMethodNADCON, [](DatumParameters& p) { p.inverse = false; }, true},
    {"everything of NTV2", DatumMethodNTV2,
     [](DatumParameters& p) {
       const DatumTarget target = p.target;
       p.Flush();
       p.method = DatumMethodNTV2;
       p.target = target;
     },
     true},
};

TEST(DatumDef, CompareLooksAtWhatTheMethodUses) {
  for (const CompareCase& row : kCompares) {
    SCOPED_TRACE(row.what);
    DatumDef a = Full();
    a.SetMethod(row.method, false);
    DatumParameters changed = *a.GetParameters();
    row.change(changed);
    const DatumDef b(&changed, 1);  // texts, POSC number and special role differ too
    EXPECT_EQ(row.equal, a.CompareParameters(&b));
    EXPECT_EQ(row.equal, b.CompareParameters(&a));
    EXPECT_EQ(row.equal, a.CompareParameters(&changed));
    EXPECT_EQ(row.equal, DatumDef::CompareParameters(a.GetParameters(), &changed));
  }
}

TEST(DatumDef, NothingEqualsNull) {
  const DatumDef datum;
  EXPECT_FALSE(datum.CompareParameters(static_cast<const DatumDef*>(nullptr)));
  EXPECT_FALSE(datum.CompareParameters(static_cast<const DatumParameters*>(nullptr)));
  EXPECT_FALSE(DatumDef::CompareParameters(datum.GetParameters(), nullptr));
  EXPECT_FALSE(DatumDef::CompareParameters(nullptr, datum.GetParameters()));
  EXPECT_FALSE(DatumDef::CompareParameters(nullptr, nullptr));
}

// ---- encoded text ----------------------------------------------------------------------------------------

TEST(DatumDef, EncodesItsFieldsInOrder) {
  std::string text;
  Full().EncodeToText(text);
  const char* const expected =
      "<{5,Datum[1]>\r\n"
      "<s5,Token[3]=\"TOK\">\r\n"
      "<s4,Name[4]=\"Name\">\r\n"
      "<s7,Comment[7]=\"Comment\">\r\n"
      "<s7,Special[5]=\"NAD27\">\r\n"
      "<d4,POSC[1]=6326>\r\n"
      "<s6,Method[10]=\"Bursa-Wolf\">\r\n"
      "<s6,Target[5]=\"NAD83\">\r\n"
      "<{9,Ellipsoid[1]>\r\n"
      "<s5,Token[5]=\"WGS84\">\r\n"
      "<s4,Name[6]=\"WGS 84\">\r\n"
      "<d4,POSC[1]=7030>\r\n"
      "<f6,Radius[1]=6.378137000000000000e+06>\r\n"
      "<f4,Flat[1]=3.352810664747480490e-03>\r\n"
      "<}9,Ellipsoid[1]>\r\n"
      "<f7,PMShift[1]=2.500000000000000000e+00>\r\n"
      "<f2,dx[1]=1.025000000000000000e+01>\r\n"
      "<f2,dy[1]=-2.050000000000000000e+01>\r\n"
      "<f2,dz[1]=3.075000000000000000e+01>\r\n"
      "<f2,rx[1]=5.000000000000000000e-01>\r\n"
      "<f2,ry[1]=-2.500000000000000000e-01>\r\n"
      "<f2,rz[1]=1.250000000000000000e-01>\r\n"
      "<f1,k[1]=-1.500000000000000000e+00>\r\n"
      "<}5,Datum[1]>\r\n";
  // The flattening is the double nearest to 1/298.257223563; its digits are its exact decimal value, rounded.
  EXPECT_EQ(expected, text);
}

TEST(DatumDef, ADatumOfGridsEncodesNeitherEllipsoidNorInverse) {
  DatumDef datum = Full();
  datum.SetMethod(DatumMethodNADCON, false);
  datum.SetToken(nullptr);
  datum.SetName(nullptr);
  datum.SetComment(nullptr);
  datum.SetSpecial(DatumTargetNone);
  std::string text;
  datum.EncodeToText(text);
  EXPECT_EQ(
      "<{5,Datum[1]>\r\n"
      "<d4,POSC[1]=6326>\r\n"
      "<s6,Method[6]=\"NADCON\">\r\n"
      "<s6,Target[5]=\"NAD83\">\r\n"
      "<b10,NadconPrvi[1]=t>\r\n"
      "<}5,Datum[1]>\r\n",
      text);
}

TEST(DatumDef, ARegionIsEncodedByItsName) {
  DatumDef datum = Full();
  datum.SetMethod(DatumMethodMRE, true);
  datum.SetParameter(DatumParameterIDEquation, 7);
  std::string text;
  datum.EncodeToText(text);
  EXPECT_EQ(
      "<{5,Datum[1]>\r\n"
      "<d4,POSC[1]=0>\r\n"
      "<s6,Method[3]=\"MRE\">\r\n"
      "<s6,Target[4]=\"NONE\">\r\n"
      "<s7,MREType[10]=\"NAD27CONUS\">\r\n"
      "<}5,Datum[1]>\r\n",
      text);
}

TEST(DatumDef, NumbersWithoutANameAreEncodedEmpty) {
  DatumDef datum;
  datum.SetParameter(DatumParameterIDMethod, 99);
  datum.SetParameter(DatumParameterIDTarget, 99);
  datum.SetSpecial(static_cast<DatumTarget>(99));
  std::string text;
  datum.EncodeToText(text);
  EXPECT_EQ(
      "<{5,Datum[1]>\r\n"
      "<s7,Special[0]=\"\">\r\n"
      "<d4,POSC[1]=0>\r\n"
      "<s6,Method[0]=\"\">\r\n"
      "<s6,Target[0]=\"\">\r\n"
      "<}5,Datum[1]>\r\n",
      text);
}

TEST(DatumDef, DecodesEveryItemWhateverTheMethod) {
  const std::string text =
      "<{5,DATUM[1]>\r\n<s5,token[1]=\"T\">\r\n<s4,NAME[1]=\"N\">\r\n<s7,comment[1]=\"C\">\r\n"
      "<s7,special[11]=\"nad27-conus\">\r\n<d4,posc[1]=-5>\r\n<s6,method[5]=\"ntv-2\">\r\n"
      "<s6,target[12]=\"nad83-canada\">\r\n"
      "<{9,Ellipsoid[1]>\r\n<f6,Radius[1]=100>\r\n<f4,Flat[1]=0.25>\r\n<}9,Ellipsoid[1]>\r\n"
      "<f7,pmshift[1]=4>\r\n<f2,DX[1]=5>\r\n<f2,dy[1]=6>\r\n<f2,dz[1]=7>\r\n<f2,rx[1]=8>\r\n<f2,ry[1]=9>\r\n"
      "<f2,rz[1]=10>\r\n<f1,K[1]=11>\r\n<s7,mretype[5]=\"campo\">\r\n<b10,nadconprvi[1]=t>\r\n"
      "<b7,inverse[1]=t>\r\n<s6,Future[1]=\"?\">\r\n<}5,datum[1]>\r\n";
  DatumDef datum;
  size_t cursor = 0;
  datum.DecodeFromText(text, &cursor);
  EXPECT_EQ(text.rfind('<'), cursor);  // on the item that ends the block
  EXPECT_STREQ("T", datum.GetToken());
  EXPECT_STREQ("N", datum.GetName());
  EXPECT_STREQ("C", datum.GetComment());
  EXPECT_EQ(DatumTargetNAD27, datum.GetSpecial());
  EXPECT_EQ(-5, datum.GetPOSCNumber());
  const DatumParameters* const p = datum.GetParameters();
  EXPECT_EQ(DatumMethodNTV2, p->method);
  EXPECT_EQ(DatumTargetNAD83Canada, p->target);
  EXPECT_EQ(100.0, p->ellipsoid.GetMajorRadius());
  EXPECT_EQ(0.25, p->ellipsoid.GetFlattening());
  EXPECT_EQ(4.0, p->pmShift);
  EXPECT_EQ(5.0, p->dx);
  EXPECT_EQ(6.0, p->dy);
  EXPECT_EQ(7.0, p->dz);
  EXPECT_EQ(8.0, p->rx);
  EXPECT_EQ(9.0, p->ry);
  EXPECT_EQ(10.0, p->rz);
  EXPECT_EQ(11.0, p->k);
  EXPECT_EQ(DatumMRETypeCampo, p->mreType);
  EXPECT_TRUE(p->nadconPrvi);
  EXPECT_TRUE(p->inverse);
}

TEST(DatumDef, AbsentItemsKeepTheirValues) {
  DatumDef datum = Full();
  datum.DecodeFromText("<{5,Datum[1]>\r\n<f2,dy[1]=1>\r\n<}5,Datum[1]>\r\n", nullptr);
  EXPECT_STREQ("TOK", datum.GetToken());
  EXPECT_EQ(10.25, datum.GetParameters()->dx);
  EXPECT_EQ(1.0, datum.GetParameters()->dy);
  EXPECT_EQ(DatumTargetNAD27, datum.GetSpecial());
}

TEST(DatumDef, UnknownNamesDecodeAsNone) {
  DatumDef datum = Full();
  datum.DecodeFromText(
      "<{5,Datum[1]>\r\n<s7,Special[1]=\"x\">\r\n<s6,Method[1]=\"x\">\r\n<s6,Target[1]=\"x\">\r\n"
      "<s7,MREType[1]=\"x\">\r\n<}5,Datum[1]>\r\n",
      nullptr);
  EXPECT_EQ(DatumTargetNone, datum.GetSpecial());
  EXPECT_EQ(DatumMethodUnknown, datum.GetMethod());
  EXPECT_EQ(DatumTargetNone, datum.GetTarget());
  EXPECT_EQ(DatumMRETypeNone, datum.GetParameters()->mreType);
}

TEST(DatumDef, ABlockThatCannotBeReadIsCorrupt) {
  const char* const texts[] = {
      "",
      "Datum",
      "<s5,Datum[1]=\"x\">\r\n",                                           // opens no block
      "<{9,Ellipsoid[1]>\r\n<}9,Ellipsoid[1]>\r\n",                        // another block
      "<{5,Datum[1]>\r\n",                                                 // no end
      "<{5,Datum[1]>\r\n<d4,POSC[1]=1>\r\n",                               // no end
      "<{5,Datum[1]>\r\n<d4,POSC 1]=1>\r\n<}5,Datum[1]>\r\n",              // an item without a header
      "<{5,Datum[1]>\r\n<}9,Ellipsoid[1]>\r\n",                            // another block ends
      "<{5,Datum[1]>\r\n<{3,New[1]>\r\n<}3,New[1]>\r\n<}5,Datum[1]>\r\n",  // inner blocks are not skipped
  };
  for (const char* const text : texts) {
    SCOPED_TRACE(text);
    DatumDef datum;
    size_t cursor = 0;
    EXPECT_RAISES(datum.DecodeFromText(text, &cursor), 1026, "DatumDef", kCorrupt);
    EXPECT_EQ(0u, cursor);
  }
}

TEST(DatumDef, ABadValueIsReportedByItsReader) {
  DatumDef datum;
  EXPECT_RAISES(datum.DecodeFromText("<{5,Datum[1]>\r\n<f4,POSC[1]=1>\r\n<}5,Datum[1]>\r\n", nullptr), 1026,
                "EncodeText", "Mismatched data type while parsing encoded data.");
  EXPECT_RAISES(datum.DecodeFromText("<{5,Datum[1]>\r\n<d2,dx[1]=1>\r\n<}5,Datum[1]>\r\n", nullptr), 1026,
                "EncodeText", "Corrupt data while parsing encoded data.");
  EXPECT_RAISES(datum.DecodeFromText("<{5,Datum[1]>\r\n<{9,Ellipsoid[1]>\r\n<}5,Datum[1]>\r\n", nullptr),
                1026, "EllipsoidDef", "Corrupt data encountered in encoded ellipsoid data.");
}

TEST(DatumDef, EncodedTextComesBackEqual) {
  EXPECT_TRUE(test::Holds([] {
    const DatumDef datum = test::AnyDatum();
    std::string text = "before";
    datum.EncodeToText(text);
    text += "behind";
    DatumDef read;
    size_t cursor = 6;
    read.DecodeFromText(text, &cursor);
    ORV_HOLDS(read.CompareParameters(&datum));
    ORV_HOLDS(text.compare(cursor, std::string::npos, "<}5,Datum[1]>\r\nbehind") == 0);
    ORV_HOLDS(read.GetPOSCNumber() == datum.GetPOSCNumber());
    ORV_HOLDS(read.GetSpecial() == datum.GetSpecial());
    ORV_HOLDS(std::string(read.GetToken() ? read.GetToken() : "") ==
              (datum.GetToken() ? datum.GetToken() : ""));
    std::string again = "before";
    read.EncodeToText(again);
    ORV_HOLDS(again + "behind" == text);
  }));
}

TEST(DatumDef, EveryCutTextRaisesAndNothingElse) {
  std::string text;
  Full().EncodeToText(text);
  // The end of the block is read by its header alone: its ">" and line end may be missing.
  for (size_t length = 0; length < text.size() - 3; ++length) {
    DatumDef datum;
    EXPECT_THROW(datum.DecodeFromText(text.substr(0, length), nullptr), shr::Exception) << length;
  }
}

// ---- dump ------------------------------------------------------------------------------------------------

TEST(DatumDef, DumpShowsEveryField) {
  std::string text = "before\n";
  Full().DebugDump(text, 1);
  EXPECT_EQ(
      "before\n"
      " Datum this=ADDRESS\n"
      "   Token   = 'TOK'\n"
      "   Name    = 'Name'\n"
      "   POSC    = 6326\n"
      "   Comment = 'Comment'\n"
      "   Special = 'NAD27'\n"
      "     Method = 'Bursa-Wolf'\n"
      "     Target = 'NAD83'\n"
      "       Ellipsoid this=ADDRESS:\n"
      "         Token      = 'WGS84'\n"
      "         Name       = 'WGS 84'\n"
      "         POSC       = 7030\n"
      "         Comment    = ''\n"
      "         Radius     =           6378137.000000\n"
      "         Flattening =     0.003352810664747480\n"
      "     PMShift =     2.500000000000000000\n"
      "     dx      =    10.250000000000000000\n"
      "     dy      =   -20.500000000000000000\n"
      "     dz      =    30.750000000000000000\n"
      "     rx      =     0.500000000000000000\n"
      "     ry      =    -0.250000000000000000\n"
      "     rz      =     0.125000000000000000\n"
      "     k       =    -1.500000000000000000\n"
      "     Inverse = true\n"
      "     NadconPrvi = true\n",
      test::Masked(text));
}

TEST(DatumDef, DumpOfAnEmptyDatumHasEmptyTexts) {
  DatumDef datum;
  datum.SetParameter(DatumParameterIDMethod, 99);
  std::string text;
  datum.DebugDump(text, 0);
  EXPECT_NE(std::string::npos, text.find("  Token   = ''\n"));
  EXPECT_NE(std::string::npos, text.find("  Special = 'NONE'\n"));
  EXPECT_NE(std::string::npos, text.find("    Method = ''\n"));
  EXPECT_NE(std::string::npos, text.find("    Inverse = false\n    NadconPrvi = false\n"));
}

TEST(DatumDef, DumpLinesAreCutAt2047Bytes) {
  DatumDef datum;
  datum.SetComment(std::string(5000, 'x').c_str());
  std::string text;
  datum.DebugDump(text, 3);
  const size_t begin = text.find(
      "   "
      "  Comment");
  ASSERT_NE(std::string::npos, begin);
  const std::string line = text.substr(begin, text.find('\n', begin) - begin);
  EXPECT_EQ("     Comment = '" + std::string(2047 - 13, 'x'), line);
}

}  // namespace
}  // namespace orv
