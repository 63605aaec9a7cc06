#include "orv/convert/WarpFit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "orv/core/internal/Fail.h"
#include "orv/warp/WarpTransformer.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

std::vector<ControlPair> UnitSquare() {
  return {{{0, 0}, {10, 20}}, {{1, 0}, {12, 20}}, {{1, 1}, {12, 23}}, {{0, 1}, {10, 23}}};
}

TEST(WarpFit, AnExactFitLeavesNothingOver) {
  const WarpFit fit = ORVFitWarp(WarpMethodAffinePolynomial, UnitSquare());  // X = 2 x + 10, Y = 3 y + 20
  ASSERT_EQ(fit.residuals.size(), 4u);
  for (const double residual : fit.residuals) EXPECT_NEAR(residual, 0.0, 1e-12);
  shr::Vec2d point(5, 7);
  WarpTransformer(fit.definition).TransformForward(&point, 1);
  EXPECT_NEAR(point.x, 20, 1e-10);
  EXPECT_NEAR(point.y, 41, 1e-10);
}

TEST(WarpFit, TheWorstPairIsNamed) {
  std::vector<ControlPair> pairs = {{{0, 0}, {0, 0}}, {{1, 0}, {1, 0}}, {{5, 5}, {5, 17}}, {{9, 9}, {9, 9}}};
  const WarpFit fit = ORVFitWarp(WarpMethodDisplacement, pairs);
  // The mean shift is (0, 3), so three pairs are 3 off and one is 9 off.
  EXPECT_EQ(fit.worst, 2u);
  EXPECT_DOUBLE_EQ(fit.maximum, 9);
  EXPECT_DOUBLE_EQ(fit.mean, 4.5);
  EXPECT_EQ(fit.residuals, (std::vector<double>{3, 3, 9, 3}));
}

TEST(WarpFit, FailuresNameTheControlPointsByNumber) {
  EXPECT_RAISES(ORVFitWarp(WarpMethodAffineWithCoefficients, UnitSquare()), ErrBadParameter, "WarpFit",
                "The warp method has no control points: give its coefficients instead.");
  EXPECT_RAISES(ORVFitWarp(WarpMethodUnknown, UnitSquare()), ErrBadParameter, "WarpFit",
                "No such warp method.");
  EXPECT_RAISES(ORVFitWarp(WarpMethod(14), UnitSquare()), ErrBadParameter, "WarpFit", "No such warp method.");
  EXPECT_RAISES(ORVFitWarp(WarpMethodThinPlateSpline, UnitSquare()), ErrBadParameter, "WarpFit",
                "The warp method 'Thin Plate Spline' needs at least 6 control points; there are 4.");
  std::vector<ControlPair> pairs = UnitSquare();
  pairs[2].destination.y = std::numeric_limits<double>::quiet_NaN();
  EXPECT_RAISES(ORVFitWarp(WarpMethodHelmert, pairs), ErrBadParameter, "WarpFit",
                "Control point 3 holds no coordinates.");

  pairs = UnitSquare();
  pairs.push_back({{7, 7}, {1, 1}});
  pairs.push_back({{1, 0}, {12, 20}});  // an equal pair is no conflict
  EXPECT_NO_THROW(ORVFitWarp(WarpMethodAffinePolynomial, pairs));
  pairs.push_back({{1, 0}, {12, 20.5}});
  pairs.push_back({{0, 0}, {1, 1}});
  EXPECT_RAISES(ORVFitWarp(WarpMethodAffinePolynomial, pairs), ErrBadParameter, "WarpFit",
                "Control points 2 and 7 conflict: the same source point goes to two places.");
  EXPECT_NO_THROW(ORVFitWarp(WarpMethodDisplacement, pairs));

  std::vector<ControlPair> line;
  for (int i = 0; i < 12; ++i) line.push_back({{1e6 + 0.1 * i, 2e6 + 0.3 * i}, {i * 1.0, i * i * 1.0}});
  EXPECT_RAISES(
      ORVFitWarp(WarpMethodAffinePolynomial, line), ErrCorrupt, "WarpFit",
      "Control points 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 ... lie on one line: the warp method 'Affine Polynomial' "
      "cannot be fitted to them.");
  EXPECT_NO_THROW(ORVFitWarp(WarpMethodHelmert, line)) << "a line has a scale and a direction";
  line[11].source.x += 0.01;
  EXPECT_NO_THROW(ORVFitWarp(WarpMethodDisplacement, line));

  const std::vector<ControlPair> one = {{{3, 4}, {1, 2}}, {{3, 4}, {1, 2}}, {{3, 4}, {1, 2}}};
  EXPECT_RAISES(ORVFitWarp(WarpMethodHelmert, one), ErrCorrupt, "WarpFit",
                "Control points 1, 2, 3 are one point: the warp method 'Helmert' cannot be fitted to them.");
  // Two rows of four: the terms of second degree are not independent over them.
  std::vector<ControlPair> rows;
  for (int i = 0; i < 8; ++i) rows.push_back({{i % 4 * 1.0, i / 4 * 1.0}, {i * 1.0, 0}});
  EXPECT_RAISES(
      ORVFitWarp(WarpMethodSecondOrderPolynomial, rows), ErrCorrupt, "WarpFit",
      "The warp method 'Second Order Polynomial' cannot be fitted to these control points: Matrix solution not "
      "possible.  Invalid coefficients.");
}

}  // namespace
}  // namespace orv
