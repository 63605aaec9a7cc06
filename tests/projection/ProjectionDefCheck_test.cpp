#include "orv/projection/ProjectionDef.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/projection/ProjectionSamples.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using namespace test;  // the samples

constexpr const char* kUnit = "ProjectionDef";
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- checks ----------------------------------------------------------------------------------------------

struct CheckRow {
  int method;
  std::vector<std::pair<int, double>> set;
  int which;
  const char* message;
};

class ProjectionDefCheck : public testing::TestWithParam<CheckRow> {};

TEST_P(ProjectionDefCheck, NamesTheParameterAndTellsWhy) {
  const CheckRow& row = GetParam();
  ProjectionDef def = Valid(row.method);
  for (const auto& [id, value] : row.set) def.SetParameter(Id(id), value);
  std::string why = "old";
  EXPECT_EQ(def.CheckParameters(why), row.which);
  EXPECT_EQ(why, row.message);
  EXPECT_EQ(def.CheckParameters(), row.which);
}

constexpr double kMost = 1.7014117331926443e38;
constexpr const char* kScaleText = "Bad linear scale parameter.";
constexpr const char* kK0Text = "Bad K0 (central scale factor) parameter.";
constexpr const char* kXOrgText = "Bad xOrg (false easting) parameter.";
constexpr const char* kYOrgText = "Bad yOrg (false northing) parameter.";
constexpr const char* kLon0Text = "Lon0 (central longitude) parameter out of range.";
constexpr const char* kLon1Text = "Lon1 (1st standard meridian) parameter out of range.";
constexpr const char* kLon2Text = "Lon2 (2nd standard meridian) parameter out of range.";
constexpr const char* kLat0Text = "Lat0 (central latitude) parameter out of range.";
constexpr const char* kLat1Text = "Lat1 (1st standard parallel) parameter out of range.";
constexpr const char* kLat2Text = "Lat2 (2nd standard parallel) parameter out of range.";
constexpr const char* kAlphaText = "Alpha parameter out of range.";

INSTANTIATE_TEST_SUITE_P(
    Rows, ProjectionDefCheck,
    testing::Values(
        CheckRow{13, {{1, 0}}, 1, "Unrecognized projection method."},
        CheckRow{13, {{1, 28}}, 1, "Unrecognized projection method."},
        CheckRow{13, {{1, -1}}, 1, "Unrecognized projection method."},
        // Unprojected and Other are valid whatever else they hold.
        CheckRow{1, {{3, -1}, {6, 400}, {9, 100}}, 0, ""}, CheckRow{2, {{3, -1}, {6, 400}, {9, 100}}, 0, ""},
        CheckRow{13, {{3, -1e-300}}, 3, kScaleText}, CheckRow{13, {{3, 1.71e38}}, 3, kScaleText},
        CheckRow{13, {{3, kMost}}, 0, ""}, CheckRow{13, {{3, kNaN}}, 0, ""},
        CheckRow{13, {{12, -1e-300}}, 12, kK0Text}, CheckRow{13, {{12, 1.71e37}}, 12, kK0Text},
        // Deliberate: K0 is bounded by a tenth of what bounds Scale.
        CheckRow{13, {{12, kMost}}, 12, kK0Text}, CheckRow{13, {{12, 1.7014117331926443e37}}, 0, ""},
        CheckRow{13, {{12, 0}}, 0, ""}, CheckRow{13, {{12, kNaN}}, 0, ""},
        CheckRow{13, {{4, -kMost}}, 4, kXOrgText}, CheckRow{13, {{4, kMost}}, 0, ""},
        CheckRow{13, {{4, 1.71e38}}, 4, kXOrgText}, CheckRow{13, {{4, kNaN}}, 4, kXOrgText},
        CheckRow{13, {{5, -kMost}}, 5, kYOrgText}, CheckRow{13, {{5, kMost}}, 0, ""},
        CheckRow{13, {{5, kInfinity}}, 5, kYOrgText}, CheckRow{13, {{5, kNaN}}, 5, kYOrgText},
        CheckRow{13, {{6, 360}}, 6, kLon0Text}, CheckRow{13, {{6, -360}}, 6, kLon0Text},
        CheckRow{13, {{6, 359.999}}, 0, ""}, CheckRow{13, {{6, kNaN}}, 6, kLon0Text},
        CheckRow{13, {{7, 360}}, 7, kLon1Text}, CheckRow{13, {{7, -360.5}}, 7, kLon1Text},
        CheckRow{13, {{8, 360}}, 8, kLon2Text}, CheckRow{13, {{8, -361}}, 8, kLon2Text},
        CheckRow{13, {{9, 90.001}}, 9, kLat0Text}, CheckRow{13, {{9, -90.001}}, 9, kLat0Text},
        CheckRow{13, {{9, kNaN}}, 9, kLat0Text}, CheckRow{25, {{9, 90}}, 0, ""},
        CheckRow{25, {{9, -90}}, 0, ""}, CheckRow{13, {{10, 91}}, 10, kLat1Text},
        CheckRow{13, {{10, -91}}, 10, kLat1Text}, CheckRow{13, {{11, 91}}, 11, kLat2Text},
        CheckRow{13, {{11, -91}}, 11, kLat2Text},
        // Parameters that the method does not use are tested as well.
        CheckRow{22, {{9, 95}}, 9, kLat0Text}, CheckRow{22, {{6, 365}}, 6, kLon0Text},
        CheckRow{12, {{15, 360}}, 15, kAlphaText}, CheckRow{12, {{15, -360}}, 15, kAlphaText},
        CheckRow{12, {{15, kNaN}}, 15, kAlphaText}, CheckRow{13, {{15, 360}}, 0, ""},
        CheckRow{5, {{10, 0}}, 10, "Lat1 (standard parallel) parameter can't be zero in Bonne projection."},
        CheckRow{5, {{10, 1e-9}}, 0, ""},
        CheckRow{3,
                 {{10, 30}, {11, -30.0009}},
                 10,
                 "Sum of standard parallel parameters can't be zero in Albers projection."},
        CheckRow{3, {{10, 30}, {11, -30.0011}}, 0, ""},
        CheckRow{3,
                 {{10, 30}, {11, 30.0009}},
                 10,
                 "Difference of standard parallel parameters can't be zero in Albers projection."},
        CheckRow{3, {{10, 30}, {11, 30.0011}}, 0, ""},
        CheckRow{10,
                 {{10, 30}, {11, -30.0009}},
                 10,
                 "Sum of standard parallel parameters can't be zero in Equidistant Conic projection."},
        CheckRow{10,
                 {{10, 30}, {11, 30.0009}},
                 10,
                 "Difference of standard parallel parameters can't be zero in Equidistant Conic projection."},
        CheckRow{10, {{10, 30}, {11, 30.0011}}, 0, ""},
        CheckRow{12, {{15, 0}}, 15, "Alpha parameter can't be zero in Hotine Oblique Mercator projection."},
        CheckRow{12, {{15, 0}, {14, 0}}, 0, ""},
        CheckRow{
            16,
            {{10, 30}, {11, 30.0099}},
            10,
            "Standard parallel parameters can't be equal (or nearly equal) in Lambert Conformal Conic projection."},
        CheckRow{
            16,
            {{10, 0}, {11, 0.01}},
            10,
            "Standard parallel parameters can't be equal (or nearly equal) in Lambert Conformal Conic projection."},
        CheckRow{16, {{10, 30}, {11, 30.011}}, 0, ""}, CheckRow{16, {{10, 30}, {11, -30}}, 0, ""},
        CheckRow{13,
                 {{9, 89.995}},
                 9,
                 "Central latitude parameter can't be +90 or -90 degrees in Mercator projection."},
        CheckRow{13,
                 {{9, -90}},
                 9,
                 "Central latitude parameter can't be +90 or -90 degrees in Mercator projection."},
        CheckRow{13, {{9, 89.989}}, 0, ""},
        CheckRow{15,
                 {{10, 30}, {11, 30.0009}},
                 10,
                 "Standard parallel parameters can't be equal in Oblique Mercator projection."},
        CheckRow{
            15, {{10, -0.0009}}, 10, "1st standard parallel can't be zero in Oblique Mercator projection."},
        CheckRow{15, {{10, 0.0011}}, 0, ""}, CheckRow{15, {{10, 30}, {11, 0}}, 0, ""},
        // Deliberate: the first parallel is tested, against +90 only, and the second is named.
        CheckRow{15,
                 {{10, 90}},
                 11,
                 "2nd standard parallel can't be +90 or -90 degrees in Oblique Mercator projection."},
        CheckRow{15,
                 {{10, 89.9991}},
                 11,
                 "2nd standard parallel can't be +90 or -90 degrees in Oblique Mercator projection."},
        CheckRow{15, {{10, -90}}, 0, ""}, CheckRow{15, {{11, 90}}, 0, ""}, CheckRow{15, {{11, -90}}, 0, ""},
        // In the order of the tests, not of the numbers.
        CheckRow{13, {{3, -1}, {12, -1}, {4, kNaN}, {6, 400}, {9, 99}}, 3, kScaleText},
        CheckRow{13, {{12, -1}, {4, kNaN}, {6, 400}, {9, 99}}, 12, kK0Text},
        CheckRow{13, {{4, kNaN}, {6, 400}, {9, 99}}, 4, kXOrgText},
        CheckRow{13, {{6, 400}, {9, 99}}, 6, kLon0Text}, CheckRow{12, {{15, 400}, {11, 99}}, 11, kLat2Text}));

TEST(ProjectionDef, CheckLooksAtTheEllipsoidLast) {
  const auto check = [](ProjectionDef def, double radius, double flattening) {
    EllipsoidDef ellipsoid(1.0, flattening, "", "", "", 0);
    if (radius > 0.0) ellipsoid.SetMajorRadius(radius);
    if (radius <= 0.0) ellipsoid.Flush();
    def.SetParameter(ProjectionParameterIDEllipsoid, ellipsoid);
    std::string why;
    const int which = def.CheckParameters(why);
    return std::to_string(which) + ": " + why;
  };
  EXPECT_EQ(check(Valid(13), 0.0, 0.0),
            "2: Invalid ellipsoid parameters.  Ellipsoid radius must be positive.");
  EXPECT_EQ(check(Valid(13), 6e6, 1.0),
            "2: Invalid ellipsoid parameters.  Ellipsoid flattening must be less than one.");
  EXPECT_EQ(check(With(Valid(13), 9, 90.0), 0.0, 0.0),
            "9: Central latitude parameter can't be +90 or -90 degrees in Mercator projection.");
  EXPECT_EQ(check(Valid(1), 0.0, 0.0), "0: ");
}

TEST(ProjectionDef, CheckLeavesUTMsFalseOriginAlone) {
  // A failed decode is the way to a UTM with another false origin.
  ProjectionDef def(ProjectionMethodUTM);
  EXPECT_RAISES(def.DecodeFromText("<{10,Projection[1]>\r\n<f4,xOrg[1]=-1e300>\r\n", nullptr), 1026, kUnit,
                "Corrupt projection data.  Unexpected end of encoded data.");
  EXPECT_EQ(def.GetParameter(ProjectionParameterIDXOrg), -1e300);
  EXPECT_EQ(def.CheckParameters(), 0);
}

// ---- comparison ------------------------------------------------------------------------------------------

int FirstDifference(const ProjectionDef& a, const ProjectionDef& b) {
  ProjectionParameterID which = Id(99);
  const bool same = a.Compare(b, &which);
  EXPECT_EQ(same, which == 0);
  EXPECT_EQ(same, a.Compare(b, nullptr));
  EXPECT_EQ(same, ProjectionDef::CompareParameters(*a.GetParameters(), *b.GetParameters(), nullptr));
  return which;
}

TEST(ProjectionDef, CompareNamesTheFirstDifferingParameterThatTheMethodUses) {
  for (const MethodRow& row : MethodRows()) {
    const ProjectionDef a(Odd(row.number));
    EXPECT_EQ(FirstDifference(a, a), 0) << row.longName;
    const std::set<int> used(row.uses.begin(), row.uses.end());
    for (int id = 3; id <= 18; ++id) {
      ProjectionDef b = a;
      b.SetParameter(Id(id), IsFlag(id) ? 0.0 : 1.5);
      int expected = used.count(id) ? id : 0;
      if (row.number == 16 && id == 11) expected = 10;  // Lambert's parallels are one thing
      EXPECT_EQ(FirstDifference(a, b), expected) << row.longName << ' ' << id;
    }
  }
  EXPECT_EQ(FirstDifference(Valid(13), Valid(18)), 1);
}

TEST(ProjectionDef, CompareGoesThroughNumbersFirstAndFlagsLast) {
  // Hotine, all parameters differing, equalised one after the other.
  const int order[] = {2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 15, 14, 16, 17};
  ProjectionDef a(Odd(12)), b(ProjectionMethodHotine);
  b.SetParameter(Id(15), 1.0);
  for (const int id : {14, 16, 17}) b.SetParameter(Id(id), false);
  for (const int id : order) {
    EXPECT_EQ(FirstDifference(a, b), id);
    if (id == 2) {
      b.SetParameter(Id(2), *a.GetEllipsoid());
    } else {
      b.SetParameter(Id(id), a.GetParameter(Id(id)));
    }
  }
  EXPECT_EQ(FirstDifference(a, b), 0);
}

TEST(ProjectionDef, CompareToleratesSmallDifferences) {
  const ProjectionDef tm(Odd(25));
  for (const int id : {3, 6, 9, 12}) {
    const double value = tm.GetParameter(Id(id));
    EXPECT_EQ(FirstDifference(tm, With(tm, id, value + 0.9e-9)), 0) << id;
    EXPECT_EQ(FirstDifference(tm, With(tm, id, value + 1.1e-9)), id) << id;
  }
  const ProjectionDef far = With(With(tm, 4, 2e6), 5, -3e6);
  EXPECT_EQ(FirstDifference(far, With(far, 4, 2e6 + 1.9)), 0);
  EXPECT_EQ(FirstDifference(far, With(far, 4, 2e6 + 2.1)), 4);
  EXPECT_EQ(FirstDifference(far, With(far, 5, -3e6 - 2.9)), 0);
  EXPECT_EQ(FirstDifference(far, With(far, 5, -3e6 - 3.1)), 5);
  const ProjectionDef hotine(Odd(12));
  EXPECT_EQ(FirstDifference(hotine, With(hotine, 15, 19.0 + 0.9e-9)), 0);
  EXPECT_EQ(FirstDifference(hotine, With(hotine, 15, 19.0 + 1.1e-9)), 15);
}

TEST(ProjectionDef, CompareTakesNaNAsEqualWhereItAsksForMoreAndAsDifferentWhereItAsksForLess) {
  const ProjectionDef hotine(Odd(12));
  for (const int id : {3, 4, 5, 7, 8, 9}) EXPECT_EQ(FirstDifference(hotine, With(hotine, id, kNaN)), 0) << id;
  for (const int id : {10, 11, 12, 15}) EXPECT_EQ(FirstDifference(hotine, With(hotine, id, kNaN)), id) << id;
}

TEST(ProjectionDef, LambertsParallelsMayStandInEitherOrderButNotThoseOfOthers) {
  const ProjectionDef lambert(ProjectionMethodLambert);  // 33 and 45
  EXPECT_EQ(FirstDifference(lambert, With(With(lambert, 10, 45), 11, 33)), 0);
  EXPECT_EQ(FirstDifference(lambert, With(With(lambert, 10, 45 + 0.9e-9), 11, 33 - 0.9e-9)), 0);
  EXPECT_EQ(FirstDifference(lambert, With(With(lambert, 10, 45), 11, 33.001)), 10);
  EXPECT_EQ(FirstDifference(lambert, With(lambert, 11, 33)), 10);
  EXPECT_EQ(FirstDifference(lambert, With(With(lambert, 10, 45), 9, 7)), 9);
  const ProjectionDef albers(ProjectionMethodAlbers);
  EXPECT_EQ(FirstDifference(albers, With(With(albers, 10, 45.5), 11, 29.5)), 10);
}

TEST(ProjectionDef, CompareIsLenientAboutTheFlatteningAndMeasuresOnTheFirst) {
  const auto on = [](double radius, double flattening) {
    ProjectionDef def(ProjectionMethodMercator);
    def.SetParameter(ProjectionParameterIDEllipsoid, EllipsoidDef(radius, flattening, "", "", "", 0));
    return def;
  };
  EXPECT_EQ(FirstDifference(on(6378137, 0.0033), on(6378137.5, 0.0001)), 0);
  EXPECT_EQ(FirstDifference(on(6378137, 0.0033), on(6378137.5, 0.0065)), 0);
  EXPECT_EQ(FirstDifference(on(6378137, 0.0033), on(6378137.5, 0.0067)), 2);
  EXPECT_EQ(FirstDifference(on(6378137, 0.0033), on(6378144, 0.0033)), 2);
  EXPECT_EQ(FirstDifference(on(6378137, 0.01), on(6378137, 0.001)), 0);
  EXPECT_EQ(FirstDifference(on(6378137, 0.001), on(6378137, 0.01)), 2);
  // Deliberate: spheres have no tolerance in the flattening, so radii must agree exactly.
  EXPECT_EQ(FirstDifference(on(6378137, 0), on(6378137, 0)), 0);
  EXPECT_EQ(FirstDifference(on(6378137, 0), on(6378137.0001, 0)), 2);
}

}  // namespace
}  // namespace orv
