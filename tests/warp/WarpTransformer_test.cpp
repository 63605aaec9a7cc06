#include "orv/warp/WarpTransformer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "orv/core/internal/Globals.h"
#include "orv/shared/ImageRegistration.h"
#include "orv/warp/internal/WarpAccess.h"
#include "orv/warp/internal/WarpPolynomial.h"
#include "tests/support/Generators.h"
#include "tests/support/Raises.h"
#include "tests/warp/WarpExpected.h"

namespace {

using namespace orv::test::warp;
using orv::WarpDef;
using orv::WarpMethod;
using orv::WarpTransformer;
using orv::internal::WarpAccess;
using shr::Vec2d;

constexpr double kMarker = std::numeric_limits<double>::max();
constexpr const char* kNoContext = "Invalid or insufficiently initialized warping context.";
constexpr const char* kNoPoints = "No points to transform.";
constexpr const char* kSingular = "Matrix solution not possible.  Invalid coefficients.";
constexpr const char* kNotCalibrated =
    "Coordinate warping calibration failed.  One or more control points may be colinear, or there may not be "
    "enough control points for the selected warping method.";

WarpMethod Method(int number) { return static_cast<WarpMethod>(number); }

/// A valid warp of any method over kCloud.
WarpDef CloudWarp(int method) {
  WarpDef def = MakeWarp(method, kCloud, 16);
  if (method == 7) def.SetCoefficients(2, -0.5, 100, 0.25, 3, -200);
  return def;
}

Vec2d Image(WarpTransformer& warp, double x, double y) {
  Vec2d point(x, y);
  warp.TransformForward(&point, 1);
  return point;
}

bool SameBits(const Vec2d& a, const Vec2d& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// Throwing is off while it lives, so that what follows a report can be seen.
struct Quiet {
  Quiet() { orv::Globals().throwOnError = false; }
  ~Quiet() { orv::Globals().throwOnError = true; }
};

static_assert(!std::is_copy_constructible_v<WarpTransformer>);
static_assert(!std::is_copy_assignable_v<WarpTransformer>);
static_assert(std::is_constructible_v<WarpTransformer, const WarpDef&>);
static_assert(!std::is_convertible_v<const WarpDef&, WarpTransformer>);

// ---- terms and solver ------------------------------------------------------------------------------------

TEST(WarpPolynomial, TermsAreNumberedFromOneToTwentyEight) {
  // Exponents of x and y; the sixth degree runs the other way round (deliberate).
  constexpr int kExponents[28][2] = {{0, 0}, {1, 0}, {0, 1}, {2, 0}, {1, 1}, {0, 2}, {3, 0},
                                     {2, 1}, {1, 2}, {0, 3}, {4, 0}, {3, 1}, {2, 2}, {1, 3},
                                     {0, 4}, {5, 0}, {4, 1}, {3, 2}, {2, 3}, {1, 4}, {0, 5},
                                     {0, 6}, {1, 5}, {2, 4}, {3, 3}, {4, 2}, {5, 1}, {6, 0}};
  for (int number = 1; number <= 28; ++number) {
    double expected = 1.0;
    for (int i = 0; i < kExponents[number - 1][0]; ++i) expected *= 3.0;
    for (int i = 0; i < kExponents[number - 1][1]; ++i) expected *= -5.0;
    EXPECT_EQ(orv::internal::PolynomialTerm(number, 3.0, -5.0, false), expected) << number;
    EXPECT_EQ(orv::internal::PolynomialTerm(number, 3.0, -5.0, true), number == 4 ? -15.0 : expected)
        << number;
  }
  for (const int outside : {-1, 0, 29, 1000}) {
    EXPECT_EQ(orv::internal::PolynomialTerm(outside, 3.0, -5.0, false), 0.0) << outside;
    EXPECT_EQ(orv::internal::PolynomialTerm(outside, 3.0, -5.0, true), 0.0) << outside;
  }
}

TEST(WarpPolynomial, OrdersHaveTheirNumberOfTerms) {
  constexpr int kCounts[] = {0, 4, 3, 6, 10};  // from order -1 on
  for (int order = -1; order <= 3; ++order) {
    EXPECT_TRUE(orv::internal::IsOrder(order));
    EXPECT_EQ(orv::internal::TermCount(order), kCounts[order + 1]) << order;
  }
  EXPECT_FALSE(orv::internal::IsOrder(-2));
  EXPECT_FALSE(orv::internal::IsOrder(4));
}

TEST(WarpPolynomial, TheSolverKeepsTheEarlierRowOfATieAndEachRounding) {
  orv::internal::FitSystem system;
  for (size_t i = 0; i < 4; ++i) {
    for (size_t j = 0; j < 4; ++j) system.a[i][j] = kSystem[i][j];
    system.bX[i] = kRightX[i];
    system.bY[i] = kRightY[i];
  }
  ASSERT_TRUE(orv::internal::SolveFit(system, 4));
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(system.bX[i], kSolutionX[i]) << i;
    EXPECT_EQ(system.bY[i], kSolutionY[i]) << i;
  }
}

TEST(WarpPolynomial, OnlyAPivotOfExactlyZeroIsSingular) {
  orv::internal::FitSystem system;
  system.a[0] = {0.0, 2.0};  // needs the exchange of rows
  system.a[1] = {4.0, 0.0};
  system.bX = {6.0, 20.0};
  EXPECT_TRUE(orv::internal::SolveFit(system, 2));
  EXPECT_EQ(system.bX[0], 5.0);
  EXPECT_EQ(system.bX[1], 3.0);

  system = {};
  system.a[0] = {1.0, 2.0};
  system.a[1] = {2.0, 4.0};
  EXPECT_FALSE(orv::internal::SolveFit(system, 2));
  system.a[0] = {1.0, 2.0};
  system.a[1] = {2.0, std::nextafter(4.0, 5.0)};
  EXPECT_TRUE(orv::internal::SolveFit(system, 2));
}

// ---- displacement ----------------------------------------------------------------------------------------

TEST(WarpTranOffset, ShiftsByTheMeanAndLeavesMarkedPoints) {
  WarpDef def;
  def.SetMethod(Method(1));
  def.AddSourcePoint(0, 0);
  def.AddSourcePoint(1, 1);
  def.AddDestinationPoint(10, 5);
  def.AddDestinationPoint(13, 4);
  WarpTransformer warp(def);
  EXPECT_EQ(WarpAccess::ShiftX(warp), 11.0);
  EXPECT_EQ(WarpAccess::ShiftY(warp), 4.0);
  std::vector<Vec2d> points = {{2.5, -3}, {kMarker, 0}, {0, kMarker}};
  warp.TransformForward(points);
  EXPECT_TRUE(SameBits(points[0], {13.5, 1}));
  EXPECT_TRUE(SameBits(points[1], {kMarker, 0}));
  EXPECT_TRUE(SameBits(points[2], {0, kMarker}));
}

TEST(WarpTranOffset, MeetsTheMeanOfASheet) {
  WarpTransformer warp(MakeWarp(1, kSheet, 5));
  const Vec2d p = Image(warp, 100, -200);
  EXPECT_NEAR(p.x, kShift[0] + 100, 1e-8);
  EXPECT_NEAR(p.y, kShift[1] - 200, 1e-8);
}

TEST(WarpTranOffset, WantsAPointOnEachSide) {
  constexpr const char* kText = "Offset transform requires at least one control point.";
  WarpTransformer warp;
  WarpAccess::Def(warp).AddDestinationPoint(1, 2);
  EXPECT_RAISES(WarpAccess::InitializeOffset(warp), 1032, "WarpTranOffset", kText);
  WarpAccess::Def(warp).Flush();
  WarpAccess::Def(warp).AddSourcePoint(1, 2);
  EXPECT_RAISES(WarpAccess::InitializeOffset(warp), 1032, "WarpTranOffset", kText);
}

// ---- Helmert ---------------------------------------------------------------------------------------------

TEST(WarpTranHelmert, TurnsAndShifts) {
  WarpDef def;
  def.SetMethod(Method(2));
  def.AddSourcePoint(0, 0);
  def.AddSourcePoint(1, 0);
  def.AddDestinationPoint(1, 2);
  def.AddDestinationPoint(1, 3);
  WarpTransformer warp(def);
  EXPECT_EQ(WarpAccess::HelmertA(warp), 0.0);
  EXPECT_EQ(WarpAccess::HelmertB(warp), 1.0);
  EXPECT_EQ(WarpAccess::HelmertC(warp), 1.0);
  EXPECT_EQ(WarpAccess::HelmertD(warp), 2.0);
  EXPECT_TRUE(SameBits(Image(warp, 1, 0), {1, 3}));
  EXPECT_TRUE(SameBits(Image(warp, 0, 1), {0, 2}));
}

TEST(WarpTranHelmert, MeetsExactLeastSquares) {
  for (const HelmertRow& row : kHelmerts) {
    WarpTransformer warp(MakeWarp(2, kSheet, row.used));
    // Sums of products of 1e6 and 1e3, of which two thirds of the digits remain.
    EXPECT_NEAR(WarpAccess::HelmertA(warp), row.abcd[0], 1e-8);
    EXPECT_NEAR(WarpAccess::HelmertB(warp), row.abcd[1], 1e-8);
    EXPECT_NEAR(WarpAccess::HelmertC(warp), row.abcd[2], 1e-5);
    EXPECT_NEAR(WarpAccess::HelmertD(warp), row.abcd[3], 1e-5);
    const Vec2d p = Image(warp, 100.25, 301.5);
    EXPECT_NEAR(p.x, row.image[0], 1e-5);
    EXPECT_NEAR(p.y, row.image[1], 1e-5);
    double mean = -1.0;
    std::vector<double> residuals;
    warp.ComputeError(mean, residuals);
    EXPECT_NEAR(mean, row.meanResidual, 1e-5);
  }
}

TEST(WarpTranHelmert, EqualSourcePointsSucceedAndGiveNoNumbers) {
  WarpDef def = MakeWarp(2, kSheet, 3);
  for (size_t i = 0; i < 3; ++i) def.ReplaceSourcePoint(i, 5, 5);
  WarpTransformer warp(def);
  const Vec2d p = Image(warp, 5, 5);
  EXPECT_FALSE(std::isfinite(p.x));
  EXPECT_FALSE(std::isfinite(p.y));
}

TEST(WarpTranHelmert, WantsTwoPoints) {
  WarpTransformer warp;
  WarpAccess::Def(warp) = MakeWarp(2, kSheet, 1);
  EXPECT_RAISES(WarpAccess::InitializeHelmert(warp), 1032, "WarpTranHelmert",
                "Helmert transform requires at least two control points.");
}

// ---- polynomials -----------------------------------------------------------------------------------------

TEST(WarpTranOrder3, MeetsExactFits) {
  for (const FitRow& row : kFits) {
    SCOPED_TRACE(testing::Message() << "method " << row.method << ", " << row.used << " points");
    WarpTransformer warp(MakeWarp(row.method, kCloud, row.used));
    // Values of some 2000; the normal equations of method 6 lose six digits at most.
    const double tolerance = row.method == 6 ? 1e-7 : 1e-9;
    const size_t terms = row.method == 4 ? 4 : orv::WarpDef::RequiredControls(Method(row.method));
    for (size_t j = 0; j < terms; ++j) {
      EXPECT_NEAR(WarpAccess::E(warp)[j], row.x[j], tolerance) << j;
      EXPECT_NEAR(WarpAccess::N(warp)[j], row.y[j], tolerance) << j;
    }
    for (size_t i = 0; i < 4; ++i) {
      const Vec2d p = Image(warp, kQueries[i][0], kQueries[i][1]);
      EXPECT_NEAR(p.x, row.queryX[i], 50 * tolerance) << i;
      EXPECT_NEAR(p.y, row.queryY[i], 50 * tolerance) << i;
    }
    double mean = -1.0;
    std::vector<double> residuals;
    warp.ComputeError(mean, residuals);
    EXPECT_EQ(residuals.size(), row.used);
    EXPECT_NEAR(mean, row.meanResidual, 10 * tolerance);
  }
}

TEST(WarpTranOrder3, BilinearMeetsTheCornersOfAQuadrilateral) {
  constexpr double kSquare[4][4] = {{0, 0, 10, 20}, {1, 0, 17, 21}, {1, 1, 19, 30}, {0, 1, 9, 27}};
  WarpTransformer warp(MakeWarp(4, kSquare, 4));
  for (const auto& corner : kSquare) {
    EXPECT_TRUE(SameBits(Image(warp, corner[0], corner[1]), {corner[2], corner[3]}));
  }
  // Terms 1, x, y, xy: 10 + 7x - y + 3xy and 20 + x + 7y + 2xy.
  EXPECT_TRUE(SameBits(Image(warp, 2, 3), {39, 55}));
}

TEST(WarpTranOrder3, RecoversAnyAffineMap) {
  EXPECT_TRUE(orv::test::Holds([] {
    double c[6];
    for (double& value : c) value = orv::test::NumberIn(-10.0, 10.0);
    for (const int method : {3, 4, 5}) {
      WarpDef def;
      def.SetMethod(Method(method));
      for (const auto& row : kCloud) {
        def.AddSourcePoint(row[0], row[1]);
        def.AddDestinationPoint(c[0] * row[0] + c[1] * row[1] + c[2], c[3] * row[0] + c[4] * row[1] + c[5]);
      }
      WarpTransformer warp(def);
      const double x = orv::test::NumberIn(-3.0, 3.0);
      const double y = orv::test::NumberIn(-3.0, 3.0);
      const Vec2d p = Image(warp, x, y);
      ORV_HOLDS(std::fabs(p.x - (c[0] * x + c[1] * y + c[2])) < 1e-10);
      ORV_HOLDS(std::fabs(p.y - (c[3] * x + c[4] * y + c[5])) < 1e-10);
    }
  }));
}

TEST(WarpTranOrder3, CollinearPointsHaveNoSolution) {
  for (const int count : {3, 4}) {  // the exact system and the normal equations
    WarpDef def;
    def.SetMethod(Method(3));
    for (int i = 0; i < count; ++i) {
      def.AddSourcePoint(i, i);
      def.AddDestinationPoint(i * i, 7 - i);
    }
    EXPECT_RAISES(WarpTransformer{def}, 1026, "WarpTranOrder3", kSingular);
  }
}

TEST(WarpTranOrder3, NearlyCollinearPointsPass) {
  WarpDef def;
  def.SetMethod(Method(3));
  for (int i = 0; i < 3; ++i) {
    def.AddSourcePoint(i, i == 2 ? std::nextafter(2.0, 3.0) : i);
    def.AddDestinationPoint(i * i, 7 - i);
  }
  WarpTransformer warp(def);
  EXPECT_TRUE(std::isfinite(Image(warp, 0.5, 0.5).x));
}

TEST(WarpTranOrder3, OrdersAreMinusOneToThree) {
  constexpr const char* kText = "Polynomial order invalid.";
  WarpTransformer warp;
  WarpAccess::Def(warp) = MakeWarp(6, kCloud, 16);
  Vec2d point(1, 2);
  for (const int order : {-2, 4}) {
    EXPECT_RAISES(WarpAccess::InitializeOrder3(warp, order), 1026, "WarpTranOrder3", kText);
    EXPECT_RAISES(WarpAccess::TransformOrder3(warp, &point, 1, order), 1026, "WarpTranOrder3", kText);
    // The points are looked at first.
    EXPECT_RAISES(WarpAccess::TransformOrder3(warp, nullptr, 1, order), 1026, "WarpTranOrder3", kNoPoints);
  }
  // -1 has no terms, so its sums are 0.
  EXPECT_TRUE(WarpAccess::InitializeOrder3(warp, -1));
  EXPECT_TRUE(WarpAccess::TransformOrder3(warp, &point, 1, -1));
  EXPECT_TRUE(SameBits(point, {0, 0}));
}

TEST(WarpTranOrder3, WantsAPointForEachTerm) {
  WarpTransformer warp;
  constexpr size_t kTerms[] = {4, 3, 6, 10};
  for (int order = 0; order <= 3; ++order) {
    WarpAccess::Def(warp) = MakeWarp(3, kCloud, kTerms[order] - 1);
    EXPECT_RAISES(WarpAccess::InitializeOrder3(warp, order), 1026, "WarpTranOrder3",
                  "Not enough control points for specified transform.");
    WarpAccess::Def(warp) = MakeWarp(3, kCloud, kTerms[order]);
    EXPECT_TRUE(WarpAccess::InitializeOrder3(warp, order));
  }
}

TEST(WarpTranOrder3, ASecondReportFollowsWhenThrowingIsOff) {
  EXPECT_RAISES(
      orv::internal::ReportNoFit(), 1026, "WarpTranOrder3",
      "Can't calculate coefficients for specified control points.  Control points may be colinear.");
  const int lineOfSecond = orv::ORVGetErrorLine();
  WarpTransformer warp;
  WarpAccess::Def(warp) = MakeWarp(3, kCloud, 3);
  for (size_t i = 0; i < 3; ++i) WarpAccess::Def(warp).ReplaceSourcePoint(i, 1, 1);
  EXPECT_RAISES(WarpAccess::InitializeOrder3(warp, 1), 1026, "WarpTranOrder3", kSingular);
  EXPECT_NE(orv::ORVGetErrorLine(), lineOfSecond);
  const Quiet quiet;
  EXPECT_FALSE(WarpAccess::InitializeOrder3(warp, 1));
  EXPECT_EQ(orv::ORVGetErrorLine(), lineOfSecond);
}

// ---- coefficients ----------------------------------------------------------------------------------------

TEST(WarpTranCoeff, MapsByTheSixCoefficients) {
  WarpDef def;
  def.SetCoefficients(2, 3, 5, 7, 11, 13);
  WarpTransformer warp(def);
  EXPECT_TRUE(SameBits(Image(warp, 17, 19), {2 * 17 + 3 * 19 + 5, 7 * 17 + 11 * 19 + 13}));
}

TEST(WarpTranCoeff, WantsMethodSeven) {
  WarpTransformer warp;
  for (const int method : {0, 3, 8}) {
    WarpAccess::Def(warp).SetMethod(Method(method));
    EXPECT_RAISES(WarpAccess::InitializeCoeff(warp), 1026, "WarpTranCoeff", "Bad transform method.");
  }
}

// ---- splines ---------------------------------------------------------------------------------------------

TEST(WarpTransformer, SplinesPassThroughTheirControlPoints) {
  for (int method = 8; method <= 13; ++method) {
    WarpTransformer warp(CloudWarp(method));
    for (const auto& row : kCloud) {
      const Vec2d p = Image(warp, row[0], row[1]);
      EXPECT_NEAR(p.x, row[2], 1e-6) << method;
      EXPECT_NEAR(p.y, row[3], 1e-6) << method;
    }
  }
}

TEST(WarpTransformer, EachSplineMethodAsksForItsRegistration) {
  constexpr shr::WarpingMethod kAsked[] = {shr::WarpingMethodThinPlateSpline,
                                           shr::WarpingMethodNaturalCubicSpline,
                                           shr::WarpingMethodMarcovSpline,
                                           shr::WarpingMethodExponentialSpline,
                                           shr::WarpingMethodRationalQuadraticSpline,
                                           shr::WarpingMethodInverseDistanceSquared};
  shr::RPoints source, destination;
  for (const auto& row : kCloud) {
    source.Append({row[0], row[1]});
    destination.Append({row[2], row[3]});
  }
  std::vector<double> found;
  for (int method = 8; method <= 13; ++method) {
    WarpTransformer warp(CloudWarp(method));
    shr::CImageRegistration registration;
    ASSERT_EQ(registration.Calibrate(source, destination, kAsked[method - 8]), kAsked[method - 8]);
    const shr::RPoint expected = registration.Transform({0.9, -0.2});
    const Vec2d p = Image(warp, 0.9, -0.2);
    EXPECT_TRUE(SameBits(p, {expected.x, expected.y})) << method;
    for (const double earlier : found) EXPECT_NE(earlier, p.x) << method;  // no two are the same
    found.push_back(p.x);
  }
}

TEST(WarpTransformer, InverseDistanceSquaredIsTheLastRegistrationMethod) {
  // Between two points of equal weight, inverse distance squared (method 13) adds the mean of the residuals
  // of the affine fit to it: (0,0), (4,0), (0,4), (4,4) and (2,1), (2,3) with X = 0, 0, 0, 0, 6, 6 and Y = y.
  // The affine fit is X = 2; its residuals are -2 at the corners, 4 inside.  At the centre the corners' r2 in
  // units of the box is 1/2 and that of the two points 1/16, so X = 2 + (4 * -2 * 2 + 2 * 4 * 16) / (4 * 2 +
  // 2 * 16) = 4.8.
  constexpr double kRows[6][4] = {{0, 0, 0, 0}, {4, 0, 0, 0}, {0, 4, 0, 4},
                                  {4, 4, 0, 4}, {2, 1, 6, 1}, {2, 3, 6, 3}};
  WarpTransformer warp(MakeWarp(13, kRows, 6));
  const Vec2d p = Image(warp, 2, 2);
  EXPECT_NEAR(p.x, 4.8, 1e-12);
  EXPECT_NEAR(p.y, 2.0, 1e-12);
}

TEST(WarpTransformer, ASplineThatCannotBeCalibratedFailsAndEmptiesTheDefinition) {
  for (int method = 8; method <= 13; ++method) {
    WarpDef def = CloudWarp(method);
    def.ReplaceSourcePoint(4, kCloud[7][0], kCloud[7][1]);  // coincides with another
    WarpTransformer warp;
    EXPECT_RAISES(warp.SetSystem(&def), 1026, "WarpTransformer", kNotCalibrated);
    WarpDef held = CloudWarp(3);
    warp.GetSystem(held);
    EXPECT_TRUE(held.Compare(WarpDef()));
    Vec2d point(1, 1);
    EXPECT_RAISES(warp.TransformForward(&point, 1), 1026, "WarpTransformer", kNoContext);

    const WarpDef good = CloudWarp(method);
    warp.SetSystem(&good);  // a new calibration heals it
    EXPECT_NEAR(Image(warp, kCloud[0][0], kCloud[0][1]).x, kCloud[0][2], 1e-6);
  }
}

TEST(WarpTransformer, TheSplineStepsFailWithoutAReport) {
  WarpTransformer warp;
  Vec2d point(1, 1);
  EXPECT_FALSE(WarpAccess::ExTransform(warp, &point, 1));  // nothing is calibrated
  for (const int method : {0, 3, 7}) {
    WarpAccess::Def(warp).SetMethod(Method(method));
    EXPECT_FALSE(WarpAccess::ExCalibrate(warp)) << method;
  }
  const WarpDef def = CloudWarp(9);
  warp.SetSystem(&def);
  EXPECT_FALSE(WarpAccess::ExTransform(warp, nullptr, 1));
  EXPECT_FALSE(WarpAccess::ExTransform(warp, &point, 0));
  EXPECT_TRUE(WarpAccess::ExTransform(warp, &point, 1));
}

// ---- the frame -------------------------------------------------------------------------------------------

TEST(WarpTransformer, AnInvalidDefinitionIsRefusedAndChangesNothing) {
  const WarpDef good = CloudWarp(3);
  WarpTransformer warp(good);
  const Vec2d before = Image(warp, 1, 2);
  for (const WarpDef& bad : {WarpDef(), MakeWarp(6, kCloud, 9), MakeWarp(7, kCloud, 9)}) {
    EXPECT_RAISES(warp.SetSystem(&bad), 1032, "WarpTransformer", "Bad parameter to function call");
    WarpDef held;
    warp.GetSystem(held);
    EXPECT_TRUE(held.Compare(good));
    EXPECT_TRUE(SameBits(Image(warp, 1, 2), before));
  }
  EXPECT_RAISES(WarpTransformer{WarpDef()}, 1032, "WarpTransformer", "Bad parameter to function call");
}

TEST(WarpTransformer, AFitThatThrowsLeavesTheNewDefinitionAndStaleNumbers) {
  const WarpDef good = CloudWarp(3);
  WarpTransformer warp(good);
  const Vec2d before = Image(warp, 1, 2);
  WarpDef bad = MakeWarp(3, kCloud, 3);
  for (size_t i = 0; i < 3; ++i) bad.ReplaceSourcePoint(i, 1, 1);
  EXPECT_RAISES(warp.SetSystem(&bad), 1026, "WarpTranOrder3", kSingular);
  WarpDef held;
  warp.GetSystem(held);
  EXPECT_TRUE(held.Compare(bad));
  EXPECT_TRUE(SameBits(Image(warp, 1, 2), before));

  // With throwing off the definition is emptied and the outer report follows.
  const Quiet quiet;
  warp.SetSystem(&bad);
  EXPECT_STREQ(orv::ORVGetErrorFile(), "WarpTransformer");
  EXPECT_EQ(orv::ORVGetErrorCode(), 1026);
  warp.GetSystem(held);
  EXPECT_TRUE(held.Compare(WarpDef()));
}

TEST(WarpTransformer, NullEmptiesTheDefinitionWithoutAReport) {
  WarpTransformer warp(CloudWarp(5));
  warp.SetSystem(nullptr);
  WarpDef held = CloudWarp(3);
  warp.GetSystem(held);
  EXPECT_TRUE(held.Compare(WarpDef()));
}

TEST(WarpTransformer, WithoutADefinitionNothingIsTransformed) {
  WarpTransformer warp;
  Vec2d point(1, 2);
  double mean = 5.0;
  std::vector<double> residuals = {1.0, 2.0};
  EXPECT_RAISES(warp.TransformForward(&point, 1), 1026, "WarpTransformer", kNoContext);
  EXPECT_RAISES(warp.TransformForward(nullptr, 0), 1026, "WarpTransformer", kNoContext);
  EXPECT_RAISES(warp.ComputeError(mean, residuals), 1026, "WarpTransformer", kNoContext);
  EXPECT_EQ(mean, 5.0);
  EXPECT_EQ(residuals.size(), 2u);
  EXPECT_RAISES(warp.ComputeError(&mean, nullptr, 0), 1026, "WarpTransformer", kNoContext);
  EXPECT_EQ(mean, 5.0);
}

TEST(WarpTransformer, EachMethodReportsThatThereAreNoPoints) {
  constexpr const char* kUnits[] = {"",
                                    "WarpTranOffset",
                                    "WarpTranHelmert",
                                    "WarpTranOrder3",
                                    "WarpTranOrder3",
                                    "WarpTranOrder3",
                                    "WarpTranOrder3",
                                    "WarpTranCoeff"};
  for (int method = 1; method <= 13; ++method) {
    SCOPED_TRACE(method);
    WarpTransformer warp(CloudWarp(method));
    const char* const unit = method <= 7 ? kUnits[method] : "WarpTransformer";
    const char* const text = method <= 7 ? kNoPoints : "Failure during coordinate transform.";
    Vec2d point(1, 2);
    std::vector<Vec2d> none;
    EXPECT_RAISES(warp.TransformForward(nullptr, 1), 1026, unit, text);
    EXPECT_RAISES(warp.TransformForward(&point, 0), 1026, unit, text);
    EXPECT_RAISES(warp.TransformForward(none), 1026, unit, text);
    EXPECT_TRUE(SameBits(point, {1, 2}));

    // With throwing off, the outer report follows the step's own.
    const Quiet quiet;
    warp.TransformForward(nullptr, 1);
    EXPECT_STREQ(orv::ORVGetErrorFile(), "WarpTransformer");
    EXPECT_EQ(orv::ORVGetErrorCode(), 1026);
  }
}

TEST(WarpTransformer, EachMethodHasItsOuterMessage) {
  constexpr const char* kTexts[] = {
      "Unrecognized warping method selected.",
      "Failure during offset/displacement coordinate transform.",
      "Failure during Helmert coordinate transform.",
      "Failure during affine coordinate transform.",
      "Failure during first order polynomial coordinate transform.",
      "Failure during second order polynomial coordinate transform.",
      "Failure during third order polynomial coordinate transform.",
      "Failure during linear coordinate transform.",
      "Failure during coordinate transform.",
      "Failure during coordinate transform.",
      "Failure during coordinate transform.",
      "Failure during coordinate transform.",
      "Failure during coordinate transform.",
      "Failure during coordinate transform.",
      "Unrecognized warping method selected.",
  };
  for (int method = 0; method <= 14; ++method) {
    EXPECT_RAISES(orv::internal::ReportTransformFailure(Method(method)), 1026, "WarpTransformer",
                  kTexts[method]);
  }
}

TEST(WarpTransformer, MarkedPointsStayAndABatchIsItsPoints) {
  for (int method = 1; method <= 13; ++method) {
    SCOPED_TRACE(method);
    WarpTransformer warp(CloudWarp(method));
    std::vector<Vec2d> points;
    for (int i = 0; i < 101; ++i) {
      points.emplace_back(-2.0 + 0.04 * i, 2.5 - 0.05 * i);
      if (i % 7 == 3) points.back().x = kMarker;
      if (i % 11 == 5) points.back().y = kMarker;
    }
    const std::vector<Vec2d> before = points;
    warp.TransformForward(points);
    std::vector<Vec2d> reversed(before.rbegin(), before.rend());
    warp.TransformForward(reversed.data(), reversed.size());
    for (size_t i = 0; i < points.size(); ++i) {
      EXPECT_TRUE(SameBits(points[i], Image(warp, before[i].x, before[i].y))) << i;
      EXPECT_TRUE(SameBits(points[i], reversed[points.size() - 1 - i])) << i;
      const bool marked = before[i].x == kMarker || before[i].y == kMarker;
      EXPECT_EQ(SameBits(points[i], before[i]), marked) << i;
    }
  }
}

TEST(WarpTransformer, DistinctFitsDoNotDisturbEachOther) {
  // Whether term 4 is x2 or xy belongs to each fit.
  WarpTransformer second(CloudWarp(5));
  const Vec2d before = Image(second, 1.25, -0.5);
  WarpTransformer first(CloudWarp(4));
  EXPECT_TRUE(SameBits(Image(second, 1.25, -0.5), before));
  WarpTransformer again(CloudWarp(5));
  EXPECT_TRUE(SameBits(Image(again, 1.25, -0.5), before));
}

TEST(WarpTransformer, AnotherDefinitionReplacesTheFirst) {
  WarpTransformer reused;
  for (const int method : {8, 3, 12, 1, 6, 7, 2, 13, 4}) {
    const WarpDef def = CloudWarp(method);
    reused.SetSystem(&def);
    WarpTransformer fresh(def);
    EXPECT_TRUE(SameBits(Image(reused, 0.3, 0.4), Image(fresh, 0.3, 0.4))) << method;
  }
}

// ---- errors ----------------------------------------------------------------------------------------------

TEST(WarpTransformer, ComputeErrorIsZeroAfterAnExactFit) {
  WarpTransformer warp(MakeWarp(3, kCloud, 3));
  double mean = -1.0;
  std::vector<double> residuals = {9, 9, 9, 9, 9};
  warp.ComputeError(mean, residuals);
  EXPECT_EQ(residuals.size(), 3u);
  for (const double r : residuals) EXPECT_NEAR(r, 0.0, 1e-11);
  EXPECT_NEAR(mean, 0.0, 1e-11);
}

TEST(WarpTransformer, ComputeErrorGivesTheMeanDistance) {
  // Shifts (3, 4), (-3, -4), (0, 0): mean shift 0, distances 5, 5, 0, mean 10 / 3 (root mean square: 4.08).
  constexpr double kRows[3][4] = {{1, 1, 4, 5}, {2, 2, -1, -2}, {7, 8, 7, 8}};
  WarpTransformer warp(MakeWarp(1, kRows, 3));
  double mean = -1.0;
  std::vector<double> residuals;
  warp.ComputeError(mean, residuals);
  EXPECT_EQ(residuals, (std::vector<double>{5, 5, 0}));
  EXPECT_EQ(mean, 10.0 / 3.0);

  double few[3] = {-1, -1, -1};
  mean = -1.0;
  warp.ComputeError(&mean, few, 2);
  EXPECT_EQ(mean, 10.0 / 3.0);
  EXPECT_EQ(few[1], 5.0);
  EXPECT_EQ(few[2], -1.0);
  double many[4] = {-1, -1, -1, -1};
  warp.ComputeError(nullptr, many, 4);
  EXPECT_EQ(many[2], 0.0);
  EXPECT_EQ(many[3], -1.0);
  warp.ComputeError(nullptr, nullptr, 4);
}

TEST(WarpTransformer, ComputeErrorOfMethodSevenTakesThePairsThatThereAre) {
  WarpDef def;
  def.SetCoefficients(1, 0, 10, 0, 1, 20);
  double mean = 5.0;
  std::vector<double> residuals = {1.0};
  {  // no points: the report of the transform comes out, after both results were cleared
    WarpTransformer warp(def);
    EXPECT_RAISES(warp.ComputeError(mean, residuals), 1026, "WarpTranCoeff", kNoPoints);
    EXPECT_EQ(mean, 0.0);
    EXPECT_TRUE(residuals.empty());
  }
  def.AddSourcePoint(1, 1);
  def.AddSourcePoint(2, 2);
  {  // no destination: 0/0 is not guarded
    WarpTransformer warp(def);
    warp.ComputeError(mean, residuals);
    EXPECT_TRUE(std::isnan(mean));
    EXPECT_TRUE(residuals.empty());
  }
  def.AddDestinationPoint(11 + 3, 21 - 4);
  {  // the smaller number
    WarpTransformer warp(def);
    warp.ComputeError(mean, residuals);
    EXPECT_EQ(residuals, (std::vector<double>{5}));
    EXPECT_EQ(mean, 5.0);
  }
  def.AddDestinationPoint(12, 22);
  def.AddDestinationPoint(0, 0);
  WarpTransformer warp(def);
  warp.ComputeError(mean, residuals);
  EXPECT_EQ(residuals, (std::vector<double>{5, 0}));
  EXPECT_EQ(mean, 2.5);
}

// ---- dump ------------------------------------------------------------------------------------------------

/// The dump with its addresses masked: the word behind "this=" and "m_WarpCtx = ".
std::string Dumped(const WarpTransformer& warp, size_t indent) {
  std::string text;
  warp.DebugDump(text, indent);
  for (const std::string label : {"this=", "m_WarpCtx = "}) {
    const size_t at = text.find(label);
    if (at == std::string::npos) continue;
    const size_t from = at + label.size();
    text.replace(from, text.find_first_of(":\n", from) - from, "ADDRESS");
  }
  return text;
}

TEST(WarpTransformer, DumpsTheShift) {
  constexpr double kRows[1][4] = {{1, 2, 4, 0.5}};
  WarpTransformer warp(MakeWarp(1, kRows, 1));
  EXPECT_EQ(Dumped(warp, 2),
            "  WarpTransformer this=ADDRESS:\n"
            "  ---m_Def:\n"
            "  Georef:\n"
            "    Method:  Displacement\n"
            "    Control Points (src=1, dest=1):\n"
            "      Point[0] Src( 1.000000000000000000, 2.000000000000000000 ) "
            "Dest( 4.000000000000000000, 0.500000000000000000 ) \n"
            "  ---Other members:\n"
            "       m_ShiftX=        3.0000000000  m_ShiftY=       -1.5000000000\n");
}

TEST(WarpTransformer, DumpsTheHelmertParameters) {
  constexpr double kRows[2][4] = {{0, 0, 1, 2}, {1, 0, 1, 3}};
  WarpTransformer warp(MakeWarp(2, kRows, 2));
  const std::string text = Dumped(warp, 1);
  EXPECT_EQ(text.substr(text.find(" ---Other")),
            " ---Other members:\n"
            "      m_Helm_a =         0.0000000000\n"
            "      m_Helm_b =         1.0000000000\n"
            "      m_Helm_c =         1.0000000000\n"
            "      m_Helm_d =         2.0000000000\n");
}

TEST(WarpTransformer, DumpsThePolynomialForAllOtherMethods) {
  WarpTransformer empty;
  const std::string zeros =
      "     m_e[ 0] =         0.0000000000  m_n[ 0] =         0.0000000000\n"
      "     m_e[ 1] =         0.0000000000  m_n[ 1] =         0.0000000000\n"
      "     m_e[ 2] =         0.0000000000  m_n[ 2] =         0.0000000000\n"
      "     m_e[ 3] =         0.0000000000  m_n[ 3] =         0.0000000000\n"
      "     m_e[ 4] =         0.0000000000  m_n[ 4] =         0.0000000000\n"
      "     m_e[ 5] =         0.0000000000  m_n[ 5] =         0.0000000000\n"
      "     m_e[ 6] =         0.0000000000  m_n[ 6] =         0.0000000000\n"
      "     m_e[ 7] =         0.0000000000  m_n[ 7] =         0.0000000000\n"
      "     m_e[ 8] =         0.0000000000  m_n[ 8] =         0.0000000000\n"
      "     m_e[ 9] =         0.0000000000  m_n[ 9] =         0.0000000000\n";
  EXPECT_EQ(Dumped(empty, 0),
            "WarpTransformer this=ADDRESS:\n"
            "---m_Def:\n"
            "Georef:\n"
            "  Method:  Unknown\n"
            "  Control Points (src=0, dest=0):\n"
            "---Other members:\n" +
                zeros);

  constexpr double kUnit[3][4] = {{0, 0, 10, 20}, {1, 0, 12.5, 20.25}, {0, 1, 9, 23}};
  WarpTransformer affine(MakeWarp(3, kUnit, 3));
  std::string text = Dumped(affine, 0);
  const std::string terms =
      "     m_e[ 0] =        10.0000000000  m_n[ 0] =        20.0000000000\n"
      "     m_e[ 1] =         2.5000000000  m_n[ 1] =         0.2500000000\n"
      "     m_e[ 2] =        -1.0000000000  m_n[ 2] =         3.0000000000\n";
  EXPECT_EQ(text.substr(text.find("---Other")),
            "---Other members:\n" + terms + zeros.substr(zeros.find("     m_e[ 3]")));

  WarpTransformer spline(CloudWarp(8));
  text = Dumped(spline, 0);
  EXPECT_EQ(text.substr(text.find("---Other")), "---Other members:\n" + zeros + "     m_WarpCtx = ADDRESS\n");
}

}  // namespace
