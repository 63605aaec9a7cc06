#include "orv/projection/ProjectionDef.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/projection/ProjectionSamples.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using namespace test;  // the samples

constexpr const char* kUnit = "ProjectionDef";
constexpr const char* kBadParameter = "Bad parameter to function call";
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- vocabulary ------------------------------------------------------------------------------------------

TEST(ProjectionDef, MethodsHaveTheirNamesAndFlags) {
  ASSERT_EQ(MethodRows().size(), 28u);
  for (const MethodRow& row : MethodRows()) {
    const ProjectionMethod method = Method(row.number);
    EXPECT_STREQ(ProjectionDef::MethodToName(method), row.longName);
    EXPECT_EQ(ProjectionDef::Flags(method), row.flags) << row.longName;
    EXPECT_EQ(ProjectionDef::NameToMethod(row.longName), method);
    EXPECT_EQ(ProjectionDef::NameToMethod(row.shortName), method);
    EXPECT_EQ(ProjectionDef::NameToMethod(Upper(row.longName).c_str()), method);
    EXPECT_EQ(ProjectionDef::NameToMethod(Upper(row.shortName).c_str()), method);
  }
}

TEST(ProjectionDef, EnumeratorsCarryThePersistentNumbers) {
  EXPECT_EQ(ProjectionMethodMercator, 13);
  EXPECT_EQ(ProjectionMethodEquidistantCylindrical, 9);
  EXPECT_EQ(ProjectionMethodVanDerGrinten, 27);
  EXPECT_EQ(ProjectionParameterIDLon0, 6);
  EXPECT_EQ(ProjectionParameterIDNoWrap, 18);
}

TEST(ProjectionDef, NameToMethodKnowsShortAndLongNamesAndIgnoresCase) {
  EXPECT_EQ(ProjectionDef::NameToMethod("merc"), 13);
  EXPECT_EQ(ProjectionDef::NameToMethod("MERCATOR"), 13);
  EXPECT_EQ(ProjectionDef::NameToMethod("Unknown"), 0);
  EXPECT_EQ(ProjectionDef::NameToMethod("No such projection"), 0);
  EXPECT_EQ(ProjectionDef::NameToMethod(""), 0);
  EXPECT_EQ(ProjectionDef::NameToMethod(nullptr), 0);
}

TEST(ProjectionDef, UnknownMethodNumbersHaveNoFlagsAndTheirNameRaises) {
  for (const int number : {-1, 28, 29, INT_MIN, INT_MAX}) {
    EXPECT_EQ(ProjectionDef::Flags(Method(number)), 0u);
    // Deliberate: the one text here that ends in a full stop.
    EXPECT_RAISES(ProjectionDef::MethodToName(Method(number)), 1032, kUnit,
                  "Bad parameter to function call.");
  }
}

TEST(ProjectionDef, ParametersHaveTheirNamesAndTypes) {
  for (const ParameterRow& row : kParameterRows) {
    const ProjectionParameterID id = Id(row.number);
    EXPECT_STREQ(ProjectionDef::ParameterShortName(id), row.shortName);
    EXPECT_STREQ(ProjectionDef::ParameterName(id), row.longName);
    EXPECT_EQ(ProjectionDef::ParameterDataType(id), row.type) << row.shortName;
    EXPECT_EQ(ProjectionDef::NameToParameter(row.shortName), id);
    EXPECT_EQ(ProjectionDef::NameToParameter(Upper(row.longName).c_str()), id);
    std::string name = "old";
    ProjectionDef::ParameterName(id, name);
    EXPECT_EQ(name, row.longName);
  }
  EXPECT_EQ(ProjectionDef::NameToParameter(nullptr), 0);
  EXPECT_EQ(ProjectionDef::NameToParameter(""), 0);
  EXPECT_EQ(ProjectionDef::NameToParameter("Lon3"), 0);
}

TEST(ProjectionDef, NoWrapAndUnknownParametersHaveNoRow) {
  for (const int number : {0, 18, 19, -1}) {
    const ProjectionParameterID id = Id(number);
    EXPECT_EQ(ProjectionDef::ParameterShortName(id), nullptr);
    EXPECT_EQ(ProjectionDef::ParameterName(id), nullptr);
    EXPECT_EQ(ProjectionDef::ParameterDataType(id), ORVDataTypeIDNone);
    std::string name = "old";
    EXPECT_RAISES(ProjectionDef::ParameterName(id, name), 1032, kUnit, kBadParameter);
    EXPECT_EQ(name, "");
  }
  EXPECT_EQ(ProjectionDef::NameToParameter("bNoWrap"), 0);
}

TEST(ProjectionDef, MethodsListTheirParametersInStoredOrder) {
  for (const MethodRow& row : MethodRows()) {
    const ProjectionMethod method = Method(row.number);
    EXPECT_EQ(ProjectionDef::NumParameters(method), row.uses.size()) << row.longName;
    for (size_t i = 0; i < row.uses.size(); ++i)
      EXPECT_EQ(ProjectionDef::EnumParameter(method, i), row.uses[i]);
    for (const size_t past : {row.uses.size(), row.uses.size() + 1, size_t{1000}}) {
      EXPECT_EQ(ProjectionDef::EnumParameter(method, past), 0) << row.longName;
    }
    const std::set<int> used(row.uses.begin(), row.uses.end());
    for (int id = -1; id <= 20; ++id) {
      EXPECT_EQ(ProjectionDef::UsesParameter(method, Id(id)), used.count(id) == 1)
          << row.longName << ' ' << id;
    }
    ProjectionDef def;
    def.SetMethod(method);
    EXPECT_EQ(def.NumParameters(), row.uses.size());
    EXPECT_EQ(def.EnumParameter(0), row.uses.empty() ? 0 : row.uses[0]);
    EXPECT_EQ(def.UsesParameter(Id(6)), used.count(6) == 1);
  }
  EXPECT_EQ(ProjectionDef::NumParameters(Method(28)), 0u);
  EXPECT_EQ(ProjectionDef::EnumParameter(Method(-1), 0), 0);
}

TEST(ProjectionDef, NoMethodUsesNoWrap) {
  for (int method = -1; method <= 28; ++method) {
    EXPECT_FALSE(ProjectionDef::UsesParameter(Method(method), ProjectionParameterIDNoWrap));
  }
}

// ---- construction and defaults ---------------------------------------------------------------------------

void ExpectConstructed(const ProjectionParameters& p) {
  EXPECT_EQ(p.method, 0);
  EXPECT_EQ(p.ellipsoid.GetName(), nullptr);
  EXPECT_EQ(p.ellipsoid.GetToken(), nullptr);
  EXPECT_EQ(p.ellipsoid.GetMajorRadius(), 0.0);
  EXPECT_EQ(p.ellipsoid.GetFlattening(), 0.0);
  EXPECT_EQ(p.Scale, 1.0);
  EXPECT_EQ(p.K0, 1.0);
  for (const double value : {p.xOrg, p.yOrg, p.Lon0, p.Lon1, p.Lon2, p.Lat0, p.Lat1, p.Lat2, p.Alpha})
    EXPECT_EQ(value, 0.0);
  for (const bool flag : {p.bSouth, p.bUseAlpha, p.bRotate, p.bUOffset, p.bNoWrap}) EXPECT_FALSE(flag);
}

TEST(ProjectionDef, FlushReturnsEveryFieldToItsConstructedValue) {
  ExpectConstructed(ProjectionParameters());
  ExpectConstructed(*ProjectionDef().GetParameters());
  ProjectionParameters p = Odd(16);
  p.Flush();
  ExpectConstructed(p);
  ProjectionDef def(Odd(16));
  def.Flush();
  ExpectConstructed(*def.GetParameters());
  ProjectionDef other(Odd(16));
  other.SetParameters(nullptr);
  ExpectConstructed(*other.GetParameters());
}

TEST(ProjectionDef, GettersGiveTheBlockItself) {
  const ProjectionDef def(Odd(16));
  EXPECT_EQ(def.GetEllipsoid(), &def.GetParameters()->ellipsoid);
  ProjectionParameters out;
  def.GetParameters(out);
  EXPECT_EQ(out.Lat2, 18.0);
  EXPECT_EQ(out.bNoWrap, true);
  EXPECT_STREQ(out.ellipsoid.GetToken(), "ODD");
  EXPECT_EQ(def.GetMethod(), 16);
}

TEST(ProjectionDef, SetDefaultParametersSetsTheCustomaryValues) {
  using Values = std::map<int, double>;
  const std::map<int, Values> further = {
      {3, {{10, 29.5}, {11, 45.5}}},
      {4, {{6, -90}, {9, 45}}},
      {19, {{6, -90}, {9, 45}}},
      {20, {{6, -90}, {9, 45}}},
      {25, {{6, -90}, {9, 45}}},
      {5, {{10, 45}}},
      {11, {{10, 45}}},
      {17, {{10, 45}}},
      {6, {{9, 45}}},
      {10, {{10, 45}, {11, 22.5}}},
      {15, {{10, 45}, {11, 22.5}}},
      {12, {{14, 1}, {16, 1}, {17, 1}, {10, 45}, {15, 22.5}}},
      {16, {{10, 33}, {11, 45}}},
      {26, {{6, -90}, {9, 45}, {4, 500000}}},
  };
  for (int method = 0; method <= 27; ++method) {
    ProjectionDef def(Odd(3));
    def.SetDefaultParameters(Method(method));
    EXPECT_EQ(def.GetMethod(), method);
    Values expected = {{3, 1.0}, {12, 1.0}, {15, 19.0}};  // Alpha stays as it was
    if (further.count(method)) {
      for (const auto& [id, value] : further.at(method)) expected[id] = value;
    }
    for (int id = 3; id <= 18; ++id)
      EXPECT_EQ(def.GetParameter(Id(id)), expected[id]) << "method " << method << " id " << id;
    EXPECT_EQ(def.GetEllipsoid()->GetMajorRadius(), 6378206.4);
    EXPECT_EQ(def.GetEllipsoid()->GetFlattening(), 0.0033900753040885176);
    // The ellipsoid's identity is not touched.
    EXPECT_STREQ(def.GetEllipsoid()->GetToken(), "ODD");
    EXPECT_STREQ(def.GetEllipsoid()->GetName(), "An odd one");
    EXPECT_EQ(def.GetEllipsoid()->GetPOSCNumber(), 77);
  }
}

TEST(ProjectionDef, ConstructedByMethodItHasTheDefaults) {
  const ProjectionDef def(ProjectionMethodUTM);
  EXPECT_EQ(def.GetParameter(Id(4)), 500000.0);
  EXPECT_EQ(def.GetParameter(Id(5)), 0.0);
  EXPECT_EQ(def.GetParameter(Id(12)), 1.0);
  EXPECT_EQ(def.GetParameter(Id(9)), 45.0);
  EXPECT_EQ(def.GetEllipsoid()->GetName(), nullptr);
}

TEST(ProjectionDef, SetDefaultParametersOfABadMethodChangesNothing) {
  ProjectionDef def(Odd(3));
  EXPECT_RAISES(def.SetDefaultParameters(Method(28)), 1032, kUnit, kBadParameter);
  EXPECT_EQ(def.GetMethod(), 3);
  EXPECT_EQ(def.GetParameter(Id(3)), 2.5);
  EXPECT_RAISES(ProjectionDef(Method(28)), 1032, kUnit, kBadParameter);
}

TEST(ProjectionDef, SetMethodRefusesNumbersAbove27OnlyAndTouchesNothingElse) {
  ProjectionDef def(Odd(3));
  def.SetMethod(ProjectionMethodRobinson);
  EXPECT_EQ(def.GetMethod(), 22);
  EXPECT_EQ(def.GetParameter(Id(4)), 11.0);
  EXPECT_EQ(def.GetParameter(Id(3)), 2.5);
  EXPECT_RAISES(def.SetMethod(Method(28)), 1032, kUnit, kBadParameter);
  EXPECT_EQ(def.GetMethod(), 22);
  def.SetMethod(Method(-5));
  EXPECT_EQ(def.GetMethod(), -5);
  std::string why;
  EXPECT_EQ(def.CheckParameters(why), 1);
}

TEST(ProjectionDef, SetParametersTurnsAScaleOfZeroIntoOne) {
  ProjectionParameters p = Odd(16);
  p.Scale = 0.0;
  EXPECT_EQ(ProjectionDef(p).GetParameter(Id(3)), 1.0);
  ProjectionDef def;
  def.SetParameters(&p);
  EXPECT_EQ(def.GetParameter(Id(3)), 1.0);
  EXPECT_EQ(def.GetParameter(Id(4)), 11.0);
}

TEST(ProjectionDef, IsUnknownOutsideTheMethodsAndForOtherWhenAsked) {
  for (int method = -2; method <= 27; ++method) {
    ProjectionDef def;
    def.SetMethod(Method(method));
    EXPECT_EQ(def.IsUnknown(false), method < 1) << method;
    EXPECT_EQ(def.IsUnknown(true), method < 1 || method == 2) << method;
  }
  ProjectionDef def;
  def.SetParameter(Id(1), 28);
  EXPECT_TRUE(def.IsUnknown(false));
}

// ---- the false origin of UTM -----------------------------------------------------------------------------

TEST(ProjectionDef, UTMOverwritesTheCallersFalseOrigin) {
  ProjectionDef def(ProjectionMethodUTM);
  def.SetParameter(ProjectionParameterIDXOrg, 123.0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDXOrg), 500000.0);
  def.SetParameter(ProjectionParameterIDYOrg, 123);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDYOrg), 0.0);
  def.SetParameter(ProjectionParameterIDSouth, true);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDXOrg), 500000.0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDYOrg), 10000000.0);
  def.SetParameter(ProjectionParameterIDSouth, 0.0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDYOrg), 0.0);
  def.SetParameter(ProjectionParameterIDSouth, 1);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDYOrg), 10000000.0);
}

TEST(ProjectionDef, UTMTakesItsFalseOriginWhereverItBecomesUTM) {
  const auto expectUTM = [](const ProjectionParameters& p) {
    EXPECT_EQ(p.xOrg, 500000.0);
    EXPECT_EQ(p.yOrg, 10000000.0);
  };
  ProjectionDef bySetMethod(Odd(25));
  bySetMethod.SetMethod(ProjectionMethodUTM);
  expectUTM(*bySetMethod.GetParameters());

  ProjectionDef byNumber(Odd(25));
  byNumber.SetParameter(ProjectionParameterIDMethod, 26.9);
  expectUTM(*byNumber.GetParameters());

  ProjectionParameters block = Odd(25);
  ProjectionDef::SetParameter(block, ProjectionParameterIDMethod, 26);
  expectUTM(block);

  const ProjectionParameters utm = Odd(26);
  expectUTM(*ProjectionDef(utm).GetParameters());
  ProjectionDef byBlock;
  byBlock.SetParameters(&utm);
  expectUTM(*byBlock.GetParameters());

  for (const int id : {4, 5, 13}) {
    ProjectionParameters p = Odd(26);
    if (id == 13) {
      ProjectionDef::SetParameter(p, Id(id), true);
    } else {
      ProjectionDef::SetParameter(p, Id(id), 1.0);
    }
    expectUTM(p);
  }
}

TEST(ProjectionDef, OtherSettersAndCopiesLeaveTheFalseOriginAlone) {
  ProjectionParameters p = Odd(26);
  for (const int id : {3, 6, 7, 8, 9, 10, 11, 12, 14, 15, 16, 17, 18})
    ProjectionDef::SetParameter(p, Id(id), 1.0);
  ProjectionDef::SetParameter(p, ProjectionParameterIDEllipsoid, EllipsoidDef(1.0, 0.0, "", "", "", 0));
  ProjectionDef::SetParameter(p, ProjectionParameterIDRotate, true);
  const ProjectionParameters copy = p;
  EXPECT_EQ(copy.xOrg, 11.0);
  EXPECT_EQ(copy.yOrg, 12.0);
}

TEST(ProjectionDef, OtherMethodsKeepTheirFalseOrigin) {
  ProjectionDef def(Odd(25));
  def.SetParameter(ProjectionParameterIDXOrg, 123.0);
  def.SetParameter(ProjectionParameterIDSouth, true);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDXOrg), 123.0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDYOrg), 12.0);
}

// ---- single parameters -----------------------------------------------------------------------------------

TEST(ProjectionDef, SetParameterScaleZeroStoresOne) {
  ProjectionDef def;
  def.SetParameter(ProjectionParameterIDScale, 0.0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDScale), 1.0);
  def.SetParameter(ProjectionParameterIDScale, 7);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDScale), 7.0);
  def.SetParameter(ProjectionParameterIDScale, 0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDScale), 1.0);
  def.SetParameter(ProjectionParameterIDK0, 0.0);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDK0), 0.0);
}

TEST(ProjectionDef, EveryParameterIsSetAndGotInItsOwnField) {
  // The field of each number, told apart by what Odd() gives all the others.
  const auto fieldOf = [](const ProjectionParameters& p, int id) -> double {
    switch (id) {
      case 3:
        return p.Scale;
      case 4:
        return p.xOrg;
      case 5:
        return p.yOrg;
      case 6:
        return p.Lon0;
      case 7:
        return p.Lon1;
      case 8:
        return p.Lon2;
      case 9:
        return p.Lat0;
      case 10:
        return p.Lat1;
      case 11:
        return p.Lat2;
      case 12:
        return p.K0;
      case 13:
        return p.bSouth;
      case 14:
        return p.bUseAlpha;
      case 15:
        return p.Alpha;
      case 16:
        return p.bRotate;
      case 17:
        return p.bUOffset;
      default:
        return p.bNoWrap;
    }
  };
  for (int id = 3; id <= 18; ++id) {
    ProjectionParameters p = Odd(16);
    const double value = IsFlag(id) ? 0.0 : 4.75;
    ProjectionDef::SetParameter(p, Id(id), value);
    const ProjectionParameters odd = Odd(16);
    for (int other = 3; other <= 18; ++other) {
      EXPECT_EQ(fieldOf(p, other), other == id ? value : fieldOf(odd, other)) << id << " changed " << other;
    }
    EXPECT_EQ(ProjectionDef::GetParameter(p, Id(id)), value);
    double number = -1.0;
    ProjectionDef::GetParameter(odd, Id(id), number);
    EXPECT_EQ(number, fieldOf(odd, id));
    int whole = -1;
    ProjectionDef::GetParameter(odd, Id(id), whole);
    EXPECT_EQ(whole, static_cast<int>(fieldOf(odd, id)));
    ProjectionDef::SetParameter(p, Id(id), 3);
    EXPECT_EQ(fieldOf(p, id), IsFlag(id) ? 1.0 : 3.0);
    if (IsFlag(id)) {
      ProjectionDef::SetParameter(p, Id(id), false);
      bool flag = true;
      ProjectionDef::GetParameter(p, Id(id), flag);
      EXPECT_FALSE(flag);
      ProjectionDef::SetParameter(p, Id(id), 0.1);
      EXPECT_EQ(fieldOf(p, id), 1.0);
    }
    // The member forms are the same.
    ProjectionDef def(Odd(16));
    def.SetParameter(Id(id), value);
    EXPECT_EQ(def.GetParameter(Id(id)), value);
    def.GetParameter(Id(id), whole);
    EXPECT_EQ(whole, static_cast<int>(value));
    def.SetParameter(Id(id), 2);
    def.GetParameter(Id(id), number);
    EXPECT_EQ(number, IsFlag(id) ? 1.0 : 2.0);
  }
}

TEST(ProjectionDef, TheEllipsoidIsSetAndGotAsAWhole) {
  ProjectionDef def;
  def.SetParameter(ProjectionParameterIDEllipsoid,
                   EllipsoidDef(6377563.396, 0.00334, "AIRY", "Airy 1830", "", 7001));
  EXPECT_EQ(def.GetEllipsoid()->GetMajorRadius(), 6377563.396);
  EllipsoidDef out;
  def.GetParameter(ProjectionParameterIDEllipsoid, out);
  EXPECT_STREQ(out.GetToken(), "AIRY");
  EXPECT_EQ(out.GetFlattening(), 0.00334);
}

TEST(ProjectionDef, TheMethodIsANumberAmongTheParametersAndUnchecked) {
  ProjectionDef def;
  def.SetParameter(ProjectionParameterIDMethod, 13.99);
  EXPECT_EQ(def.GetMethod(), 13);
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDMethod), 13.0);
  def.SetParameter(ProjectionParameterIDMethod, -3.9);
  EXPECT_EQ(def.GetMethod(), -3);
  def.SetParameter(ProjectionParameterIDMethod, 4000);
  EXPECT_EQ(def.GetMethod(), 4000);
  for (const double wild : {kNaN, kInfinity, -kInfinity, 2147483648.0, -2147483649.0, 1e300}) {
    def.SetParameter(ProjectionParameterIDMethod, wild);
    EXPECT_EQ(def.GetMethod(), INT_MIN) << wild;
  }
  def.SetParameter(ProjectionParameterIDMethod, 2147483647.5);
  EXPECT_EQ(def.GetMethod(), INT_MAX);
  def.SetParameter(ProjectionParameterIDMethod, -2147483648.5);
  EXPECT_EQ(def.GetMethod(), INT_MIN);
}

TEST(ProjectionDef, NumbersThatNoIntHoldsAreGotAsTheLowestInt) {
  ProjectionDef def(Odd(16));
  int value = 0;
  def.SetParameter(ProjectionParameterIDXOrg, 1e20);
  def.GetParameter(ProjectionParameterIDXOrg, value);
  EXPECT_EQ(value, INT_MIN);
  def.SetParameter(ProjectionParameterIDXOrg, -7.9);
  def.GetParameter(ProjectionParameterIDXOrg, value);
  EXPECT_EQ(value, -7);
}

TEST(ProjectionDef, FormsThatCannotCarryAParameterRaise) {
  ProjectionParameters p = Odd(16);
  ProjectionDef def(p);
  const EllipsoidDef ellipsoid(1.0, 0.0, "", "", "", 0);
  for (const int id : {2, 0, 19, -1}) {
    EXPECT_RAISES(ProjectionDef::SetParameter(p, Id(id), 1.0), 1032, kUnit, kBadParameter);
    EXPECT_RAISES(ProjectionDef::SetParameter(p, Id(id), 1), 1032, kUnit, kBadParameter);
    EXPECT_RAISES(def.SetParameter(Id(id), 1.0), 1032, kUnit, kBadParameter);
    double number = 5.0;
    EXPECT_RAISES(def.GetParameter(Id(id), number), 1032, kUnit, kBadParameter);
    EXPECT_EQ(number, 0.0);
    int whole = 5;
    EXPECT_RAISES(def.GetParameter(Id(id), whole), 1032, kUnit, kBadParameter);
    EXPECT_EQ(whole, 0);
    EXPECT_RAISES(def.GetParameter(Id(id)), 1032, kUnit, kBadParameter);
  }
  for (int id = -1; id <= 19; ++id) {
    if (!IsFlag(id)) {
      EXPECT_RAISES(ProjectionDef::SetParameter(p, Id(id), true), 1032, kUnit, kBadParameter);
      EXPECT_RAISES(def.SetParameter(Id(id), false), 1032, kUnit, kBadParameter);
      bool flag = true;
      EXPECT_RAISES(def.GetParameter(Id(id), flag), 1032, kUnit, kBadParameter);
      EXPECT_TRUE(flag);
    }
    if (id != 2) {
      EXPECT_RAISES(ProjectionDef::SetParameter(p, Id(id), ellipsoid), 1032, kUnit, kBadParameter);
      EllipsoidDef out = ellipsoid;
      EXPECT_RAISES(def.GetParameter(Id(id), out), 1032, kUnit, kBadParameter);
      EXPECT_EQ(out.GetMajorRadius(), 1.0);
    }
  }
  EXPECT_TRUE(ProjectionDef::CompareParameters(p, Odd(16), nullptr));  // nothing has been changed
}

}  // namespace
}  // namespace orv
