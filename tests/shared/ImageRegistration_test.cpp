#include "orv/shared/ImageRegistration.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "gtest/gtest.h"

using namespace shr;

namespace {

// A control point: source x, y, destination X, Y.
struct Pair {
  double x, y, X, Y;
};

enum class Cloud { Scan, Field };

struct ExpectedRow {
  WarpingMethod method;
  Cloud cloud;
  double x, y, X, Y;
};

// clang-format off
// Generated: /usr/bin/python3 tests/shared/image_registration_expected.py (numpy, 50-digit decimal arithmetic).
const Pair kScan[] = {
    {12.5, 9.0, 431207.25, 5413988.5},
    {628.0, 14.25, 437356.0, 5413322.75},
    {631.5, 470.0, 436877.5, 5408779.25},
    {8.0, 466.75, 430668.75, 5409437.5},
    {320.0, 240.0, 434041.5, 5411379.0},
    {150.25, 333.5, 432216.25, 5410633.75},
    {471.75, 120.5, 435681.0, 5412411.25},
    {402.0, 391.0, 434690.5, 5409802.0},
};
const Pair kField[] = {
    {-1200.0, 35.0, 8.0, -3.0},
    {-840.5, -22.0, 5.5, 0.25},
    {-610.25, 61.5, 4.25, -5.0},
    {-333.0, 3.0, 2.0, 1.0},
    {-12.0, -48.75, 0.5, 3.5},
    {77.5, 54.0, -1.0, -4.75},
    {260.0, -5.5, -1.5, 0.0},
    {501.0, 40.25, -4.0, -2.5},
    {690.75, -60.0, -4.25, 4.5},
    {915.0, 12.0, -6.5, -1.75},
    {1180.0, -30.5, -7.0, 2.25},
};
const ExpectedRow kExpected[] = {
    {WarpingMethodThinPlateSpline, Cloud::Scan, 320.0, 241.0, 434040.38147368585, 5411369.1201891},
    {WarpingMethodThinPlateSpline, Cloud::Scan, 100.0, 100.0, 431981.6243286966, 5412995.736638073},
    {WarpingMethodThinPlateSpline, Cloud::Scan, 555.5, 300.25, 436320.62882039987, 5410543.620385083},
    {WarpingMethodThinPlateSpline, Cloud::Scan, 13.0, 460.0, 430725.0755006968, 5409500.334926672},
    {WarpingMethodThinPlateSpline, Cloud::Scan, -250.0, 900.0, 427635.94233863906, 5405363.042741427},
    {WarpingMethodThinPlateSpline, Cloud::Field, 0.0, 0.0, 0.0037998356184094748, 0.46355294356697707},
    {WarpingMethodThinPlateSpline, Cloud::Field, -1000.0, -40.0, 6.647815376755835, 0.9081280734910268},
    {WarpingMethodThinPlateSpline, Cloud::Field, 503.0, 40.0, -4.012431460948094, -2.479176689941567},
    {WarpingMethodThinPlateSpline, Cloud::Field, 880.0, 60.0, -6.67768885872038, -4.515996315607884},
    {WarpingMethodThinPlateSpline, Cloud::Field, 2500.0, 300.0, -17.28107732778937, -22.97377765696104},
    {WarpingMethodNaturalCubicSpline, Cloud::Scan, 320.0, 241.0, 434040.38220036606, 5411369.124682679},
    {WarpingMethodNaturalCubicSpline, Cloud::Scan, 100.0, 100.0, 431980.2800463046, 5412995.724393208},
    {WarpingMethodNaturalCubicSpline, Cloud::Scan, 555.5, 300.25, 436320.80953487154, 5410542.81737432},
    {WarpingMethodNaturalCubicSpline, Cloud::Scan, 13.0, 460.0, 430724.48581985664, 5409500.619106334},
    {WarpingMethodNaturalCubicSpline, Cloud::Scan, -250.0, 900.0, 427704.18764315883, 5405325.386211445},
    {WarpingMethodNaturalCubicSpline, Cloud::Field, 0.0, 0.0, 0.010571050938948546, 0.5014117060795821},
    {WarpingMethodNaturalCubicSpline, Cloud::Field, -1000.0, -40.0, 6.593261899703986, 0.14030525911331745},
    {WarpingMethodNaturalCubicSpline, Cloud::Field, 503.0, 40.0, -4.012302772700933, -2.4775591464901},
    {WarpingMethodNaturalCubicSpline, Cloud::Field, 880.0, 60.0, -6.8653770872859186, -4.525596511418098},
    {WarpingMethodNaturalCubicSpline, Cloud::Field, 2500.0, 300.0, -17.266263109103072, -29.308818629533317},
    {WarpingMethodMarcovSpline, Cloud::Scan, 320.0, 241.0, 434040.28510101466, 5411369.138901172},
    {WarpingMethodMarcovSpline, Cloud::Scan, 100.0, 100.0, 431983.39505491895, 5412995.935138163},
    {WarpingMethodMarcovSpline, Cloud::Scan, 555.5, 300.25, 436318.42101249273, 5410544.95654168},
    {WarpingMethodMarcovSpline, Cloud::Scan, 13.0, 460.0, 430725.23452855786, 5409500.237954398},
    {WarpingMethodMarcovSpline, Cloud::Scan, -250.0, 900.0, 427612.0414076651, 5405383.17471343},
    {WarpingMethodMarcovSpline, Cloud::Field, 0.0, 0.0, -0.012036871809976441, 0.30812466666983335},
    {WarpingMethodMarcovSpline, Cloud::Field, -1000.0, -40.0, 6.753525947163527, 1.7071239116703412},
    {WarpingMethodMarcovSpline, Cloud::Field, 503.0, 40.0, -4.010344520295115, -2.490854532817162},
    {WarpingMethodMarcovSpline, Cloud::Field, 880.0, 60.0, -6.471795959039397, -4.504093657650678},
    {WarpingMethodMarcovSpline, Cloud::Field, 2500.0, 300.0, -18.062508254612904, -21.947299772834057},
    {WarpingMethodExponentialSpline, Cloud::Scan, 320.0, 241.0, 434040.39183197706, 5411369.123383601},
    {WarpingMethodExponentialSpline, Cloud::Scan, 100.0, 100.0, 431976.1212872262, 5412994.968768151},
    {WarpingMethodExponentialSpline, Cloud::Scan, 555.5, 300.25, 436323.04101992166, 5410541.59312861},
    {WarpingMethodExponentialSpline, Cloud::Scan, 13.0, 460.0, 430722.8173693755, 5409501.31932892},
    {WarpingMethodExponentialSpline, Cloud::Scan, -250.0, 900.0, 427837.6133337577, 5405260.43205554},
    {WarpingMethodExponentialSpline, Cloud::Field, 0.0, 0.0, 0.0007914713220011702, 0.5156863385977662},
    {WarpingMethodExponentialSpline, Cloud::Field, -1000.0, -40.0, 6.499826168925367, -2.0501405063316502},
    {WarpingMethodExponentialSpline, Cloud::Field, 503.0, 40.0, -4.014191786833239, -2.489369179828759},
    {WarpingMethodExponentialSpline, Cloud::Field, 880.0, 60.0, -6.189239995044698, 1.737719136178185},
    {WarpingMethodExponentialSpline, Cloud::Field, 2500.0, 300.0, -3.4361156390958816, 46.147149195056386},
    {WarpingMethodRationalQuadraticSpline, Cloud::Scan, 320.0, 241.0, 434040.388874856, 5411369.13057706},
    {WarpingMethodRationalQuadraticSpline, Cloud::Scan, 100.0, 100.0, 431978.7942440295, 5412995.0874446},
    {WarpingMethodRationalQuadraticSpline, Cloud::Scan, 555.5, 300.25, 436323.20201299427, 5410542.016165115},
    {WarpingMethodRationalQuadraticSpline, Cloud::Scan, 13.0, 460.0, 430724.051301393, 5409500.794954937},
    {WarpingMethodRationalQuadraticSpline, Cloud::Scan, -250.0, 900.0, 427659.9730710054, 5405345.864947049},
    {WarpingMethodRationalQuadraticSpline, Cloud::Field, 0.0, 0.0, 0.012312202783880071, 0.5717852530985178},
    {WarpingMethodRationalQuadraticSpline, Cloud::Field, -1000.0, -40.0, 6.685175669090787, -0.4587779250022545},
    {WarpingMethodRationalQuadraticSpline, Cloud::Field, 503.0, 40.0, -4.012997609930008, -2.480388029655305},
    {WarpingMethodRationalQuadraticSpline, Cloud::Field, 880.0, 60.0, -6.6472371819876575, -2.4649536882912484},
    {WarpingMethodRationalQuadraticSpline, Cloud::Field, 2500.0, 300.0, -14.800454315989766, -10.77346348695044},
    {WarpingMethodInverseDistanceSquared, Cloud::Scan, 320.0, 241.0, 434040.39334112965, 5411369.055369876},
    {WarpingMethodInverseDistanceSquared, Cloud::Scan, 100.0, 100.0, 431984.3482128583, 5412996.116035185},
    {WarpingMethodInverseDistanceSquared, Cloud::Scan, 555.5, 300.25, 436318.1190642822, 5410545.973733461},
    {WarpingMethodInverseDistanceSquared, Cloud::Scan, 13.0, 460.0, 430726.1065284504, 5409499.637000738},
    {WarpingMethodInverseDistanceSquared, Cloud::Scan, -250.0, 900.0, 427606.7233903975, 5405392.478597736},
    {WarpingMethodInverseDistanceSquared, Cloud::Field, 0.0, 0.0, 0.015997620730843345, 0.07490443541228071},
    {WarpingMethodInverseDistanceSquared, Cloud::Field, -1000.0, -40.0, 6.814760323275884, 2.070589462149823},
    {WarpingMethodInverseDistanceSquared, Cloud::Field, 503.0, 40.0, -4.011550634424203, -2.4813108383895157},
    {WarpingMethodInverseDistanceSquared, Cloud::Field, 880.0, 60.0, -6.447619444756915, -4.456482840363154},
    {WarpingMethodInverseDistanceSquared, Cloud::Field, 2500.0, 300.0, -18.746175749837136, -22.18526992535532},
};
// End of generated lines.
// clang-format on

constexpr WarpingMethod kAll[] = {WarpingMethodThinPlateSpline,
                                  WarpingMethodNaturalCubicSpline,
                                  WarpingMethodMarcovSpline,
                                  WarpingMethodExponentialSpline,
                                  WarpingMethodRationalQuadraticSpline,
                                  WarpingMethodInverseDistanceSquared};

std::vector<Pair> Pairs(Cloud cloud) {
  if (cloud == Cloud::Scan) return {std::begin(kScan), std::end(kScan)};
  return {std::begin(kField), std::end(kField)};
}

WarpingMethod Calibrate(CImageRegistration& registration, const std::vector<Pair>& pairs,
                        WarpingMethod method) {
  RPoints source, destination;
  for (const Pair& pair : pairs) {
    source.Append({pair.x, pair.y});
    destination.Append({pair.X, pair.Y});
  }
  return registration.Calibrate(source, destination, method);
}

// The larger side of the destination box: what tolerances are relative to.
double Size(const std::vector<Pair>& pairs) {
  double lowX = pairs[0].X, highX = lowX, lowY = pairs[0].Y, highY = lowY;
  for (const Pair& pair : pairs) {
    lowX = std::min(lowX, pair.X);
    highX = std::max(highX, pair.X);
    lowY = std::min(lowY, pair.Y);
    highY = std::max(highY, pair.Y);
  }
  return std::max(highX - lowX, highY - lowY);
}

// Uniform numbers in [0, 1), the same with every standard library.
class Uniform {
 public:
  explicit Uniform(std::uint32_t seed) : m_Engine(seed) {}
  double operator()() { return static_cast<double>(m_Engine()) / 4294967296.0; }

 private:
  std::mt19937 m_Engine;
};

// Image pixels, moved by a smooth bend of some ten pixels and a random displacement up to the given size.
std::vector<Pair> Bent(std::size_t count, double random) {
  Uniform uniform(20240229);
  std::vector<Pair> pairs;
  for (std::size_t i = 0; i < count; ++i) {
    const double x = 1000 * uniform(), y = 800 * uniform();
    const double X = 3 * x + 30 * std::sin(x / 400) + random * (2 * uniform() - 1);
    const double Y = -2 * y + 1e-5 * x * y + random * (2 * uniform() - 1);
    pairs.push_back({x, y, X, Y});
  }
  return pairs;
}

// Bounds are relative to the destination box.  They follow the condition of each system: near 1e-15 for the
// first three and the last, the size of the weights above that for the two smooth kernels.
double Accuracy(WarpingMethod method) {
  if (method == WarpingMethodExponentialSpline) return 1e-9;
  if (method == WarpingMethodRationalQuadraticSpline) return 1e-11;
  return 1e-13;
}

void ExpectUnchanged(const CImageRegistration& registration) {
  const RPoint image = registration.Transform({0.1, -7e300});
  EXPECT_EQ(image.x, 0.1);
  EXPECT_EQ(image.y, -7e300);
}

}  // namespace

TEST(ImageRegistration, NumbersOfTheMethodsArePersistent) {
  EXPECT_EQ(static_cast<int>(WarpingMethodThinPlateSpline), 0);
  EXPECT_EQ(static_cast<int>(WarpingMethodNaturalCubicSpline), 1);
  EXPECT_EQ(static_cast<int>(WarpingMethodMarcovSpline), 2);
  EXPECT_EQ(static_cast<int>(WarpingMethodExponentialSpline), 3);
  EXPECT_EQ(static_cast<int>(WarpingMethodRationalQuadraticSpline), 4);
  EXPECT_EQ(static_cast<int>(WarpingMethodInverseDistanceSquared), 5);
  EXPECT_EQ(static_cast<int>(WarpingMethodNone), -1);
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<WarpingMethod>, int>));
}

TEST(ImageRegistration, RPointsGrowAndClear) {
  RPoints points;
  EXPECT_EQ(points.Count(), 0u);
  for (int i = 0; i < 100; ++i) points.Append({i + 0.5, -i - 0.25});
  ASSERT_EQ(points.Count(), 100u);
  EXPECT_EQ(points[99].x, 99.5);
  EXPECT_EQ(points[99].y, -99.25);
  points[0].x = 7;
  const RPoints copy = points;
  points.Clear();
  EXPECT_EQ(points.Count(), 0u);
  EXPECT_EQ(copy[0].x, 7);
}

TEST(ImageRegistration, ValuesOfAllMethodsAreThoseOfAnIndependentSolution) {
  std::array<int, 6> rows{};
  for (const ExpectedRow& row : kExpected) {
    SCOPED_TRACE(testing::Message() << "method " << row.method << ", point " << row.x << " " << row.y);
    const std::vector<Pair> pairs = Pairs(row.cloud);
    CImageRegistration registration;
    ASSERT_EQ(Calibrate(registration, pairs, row.method), row.method);
    const RPoint image = registration.Transform({row.x, row.y});
    const double bound = Accuracy(row.method) * Size(pairs) + 4e-16 * std::hypot(row.X, row.Y);
    EXPECT_NEAR(image.x, row.X, bound);
    EXPECT_NEAR(image.y, row.Y, bound);
    ++rows[static_cast<std::size_t>(row.method)];
  }
  for (int count : rows) EXPECT_EQ(count, 10);
}

TEST(ImageRegistration, ControlPointsAreMet) {
  for (Cloud cloud : {Cloud::Scan, Cloud::Field}) {
    const std::vector<Pair> pairs = Pairs(cloud);
    for (WarpingMethod method : kAll) {
      CImageRegistration registration;
      ASSERT_EQ(Calibrate(registration, pairs, method), method);
      for (const Pair& pair : pairs) {
        SCOPED_TRACE(testing::Message() << "method " << method << ", control " << pair.x << " " << pair.y);
        const RPoint image = registration.Transform({pair.x, pair.y});
        const double bound = Accuracy(method) * Size(pairs) + 4e-16 * std::hypot(pair.X, pair.Y);
        EXPECT_NEAR(image.x, pair.X, bound);
        EXPECT_NEAR(image.y, pair.Y, bound);
      }
    }
  }
}

TEST(ImageRegistration, ValuesCloseToAControlPointStayCloseToItsImage) {
  // Inverse distance: r^2 underflows, is subnormal, or gives weights that would overflow.
  const std::vector<Pair> pairs = {
      {0, 0, 10, 20}, {1, 0, 12, 20}, {1, 1, 12, 23}, {0, 1, 9, 24}, {0.5, 0.5, 11, 21}};
  for (WarpingMethod method : kAll) {
    CImageRegistration registration;
    ASSERT_EQ(Calibrate(registration, pairs, method), method);
    for (double step : {5e-324, 1e-170, 1e-160, 1e-155, 1e-20, -1e-160}) {
      SCOPED_TRACE(testing::Message() << "method " << method << ", step " << step);
      const RPoint image = registration.Transform({step, -step});
      EXPECT_NEAR(image.x, 10, 1e-11);
      EXPECT_NEAR(image.y, 20, 1e-11);
    }
  }
}

TEST(ImageRegistration, AffineMapsComeBackAffineEverywhere) {
  // Few and many points; far outside the box; large offsets, so that the destination is rounded.
  for (std::size_t count : {3u, 4u, 8u, 60u, 300u}) {
    std::vector<Pair> pairs = Bent(count, 0);
    const auto map = [](double x, double y) {
      return RPoint{0.7301 * x - 1.913 * y + 500123.4, -2.217 * x - 0.3307 * y + 5412345.6};
    };
    for (Pair& pair : pairs) {
      const RPoint image = map(pair.x, pair.y);
      pair.X = image.x;
      pair.Y = image.y;
    }
    const double size = Size(pairs);
    for (WarpingMethod method : kAll) {
      CImageRegistration registration;
      ASSERT_EQ(Calibrate(registration, pairs, method), method);
      for (const RPoint& point : {RPoint{500.0, 400.0}, RPoint{3.0, 790.0}, RPoint{-4000.0, 7000.0}}) {
        SCOPED_TRACE(testing::Message() << count << " points, method " << method << ", point " << point.x);
        const RPoint image = registration.Transform(point);
        const RPoint expected = map(point.x, point.y);
        EXPECT_NEAR(image.x, expected.x, 1e-9 * 10 * size);  // the last point is some ten boxes away
        EXPECT_NEAR(image.y, expected.y, 1e-9 * 10 * size);
      }
    }
  }
}

TEST(ImageRegistration, BentMapsAreNotAffine) {
  // The counterpart of the test above: a displacement of a millionth of the box is kept, not taken for
  // rounding.
  std::vector<Pair> pairs = {
      {0, 0, 0, 0}, {100, 0, 100, 0}, {100, 100, 100, 100}, {0, 100, 0, 100}, {50, 50, 50, 50}};
  pairs[4].X += 1e-4;
  for (WarpingMethod method : kAll) {
    SCOPED_TRACE(method);
    CImageRegistration registration;
    ASSERT_EQ(Calibrate(registration, pairs, method), method);
    EXPECT_NEAR(registration.Transform({50, 50}).x - 50, 1e-4, 1e-11);
    EXPECT_NEAR(registration.Transform({100, 100}).x - 100, 0, 1e-11);
  }
}

TEST(ImageRegistration, TranslatedAndScaledDestinationsGiveTranslatedAndScaledImages) {
  for (Cloud cloud : {Cloud::Scan, Cloud::Field}) {
    const std::vector<Pair> pairs = Pairs(cloud);
    for (WarpingMethod method : kAll) {
      CImageRegistration plain, moved;
      std::vector<Pair> changed = pairs;
      for (Pair& pair : changed) {
        pair.X = 3 * pair.X + 1000;  // exact
        pair.Y = -0.5 * pair.Y - 7000;
      }
      ASSERT_EQ(Calibrate(plain, pairs, method), method);
      ASSERT_EQ(Calibrate(moved, changed, method), method);
      for (const ExpectedRow& row : kExpected) {
        if (row.cloud != cloud) continue;
        SCOPED_TRACE(testing::Message() << "method " << method << ", point " << row.x << " " << row.y);
        const RPoint a = plain.Transform({row.x, row.y});
        const RPoint b = moved.Transform({row.x, row.y});
        const double bound = Accuracy(method) * Size(changed) + 1e-15 * std::hypot(b.x, b.y);
        EXPECT_NEAR(b.x, 3 * a.x + 1000, bound);
        EXPECT_NEAR(b.y, -0.5 * a.y - 7000, bound);
      }
    }
  }
}

TEST(ImageRegistration, UnitOriginAndDirectionOfEachSourceAxisDoNotMatter) {
  // Deliberate: each axis has its own scale, so an image resampled to another width and height keeps its
  // warp.
  for (Cloud cloud : {Cloud::Scan, Cloud::Field}) {
    const std::vector<Pair> pairs = Pairs(cloud);
    for (WarpingMethod method : kAll) {
      CImageRegistration plain, resampled;
      std::vector<Pair> changed = pairs;
      for (Pair& pair : changed) {
        pair.x = 2 * pair.x + 100;  // exact
        pair.y = -0.125 * pair.y + 7;
      }
      ASSERT_EQ(Calibrate(plain, pairs, method), method);
      ASSERT_EQ(Calibrate(resampled, changed, method), method);
      for (const ExpectedRow& row : kExpected) {
        if (row.cloud != cloud) continue;
        SCOPED_TRACE(testing::Message() << "method " << method << ", point " << row.x << " " << row.y);
        const RPoint a = plain.Transform({row.x, row.y});
        const RPoint b = resampled.Transform({2 * row.x + 100, -0.125 * row.y + 7});
        const double bound = Accuracy(method) * Size(pairs) + 1e-15 * std::hypot(b.x, b.y);
        EXPECT_NEAR(b.x, a.x, bound);
        EXPECT_NEAR(b.y, a.y, bound);
      }
    }
  }
}

TEST(ImageRegistration, EqualDestinationsGiveAConstant) {
  for (WarpingMethod method : kAll) {
    std::vector<Pair> pairs = Pairs(Cloud::Scan);
    for (Pair& pair : pairs) pair.Y = 77.25;
    CImageRegistration registration;
    ASSERT_EQ(Calibrate(registration, pairs, method), method);
    EXPECT_NEAR(registration.Transform({pairs[5].x, pairs[5].y}).x, pairs[5].X, 1e-4);
    EXPECT_DOUBLE_EQ(registration.Transform({-300, 900}).y, 77.25);
  }
}

TEST(ImageRegistration, ConstantDestinationWithRoundingNoiseIsMetWithinTheNoise) {
  for (WarpingMethod method : kAll) {
    std::vector<Pair> pairs = Bent(40, 0);
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i].Y = i % 3 ? 5e6 : std::nextafter(5e6, 6e6);
    CImageRegistration registration;
    ASSERT_EQ(Calibrate(registration, pairs, method), method);
    EXPECT_NEAR(registration.Transform({500, 400}).y, 5e6, 2e-9);
  }
}

TEST(ImageRegistration, ManyPointsOfASmoothBendAreMetByAllMethods) {
  for (std::size_t count : {60u, 300u}) {
    const std::vector<Pair> pairs = Bent(count, 0);
    for (WarpingMethod method : kAll) {
      SCOPED_TRACE(testing::Message() << count << " points, method " << method);
      CImageRegistration registration;
      ASSERT_EQ(Calibrate(registration, pairs, method), method);
      for (const Pair& pair : pairs) {
        const RPoint image = registration.Transform({pair.x, pair.y});
        ASSERT_NEAR(image.x, pair.X, 1e-6 * 3000);
        ASSERT_NEAR(image.y, pair.Y, 1e-6 * 1600);
      }
    }
  }
}

TEST(ImageRegistration, AFitThatMissesItsControlPointsFails) {
  // Rough data at 100 points: beyond double precision for the two smooth kernels, easy for the others.
  const std::vector<Pair> pairs = Bent(100, 100);
  for (WarpingMethod method : kAll) {
    SCOPED_TRACE(method);
    CImageRegistration registration;
    ASSERT_EQ(Calibrate(registration, Pairs(Cloud::Scan), method), method);
    if (method == WarpingMethodExponentialSpline || method == WarpingMethodRationalQuadraticSpline) {
      EXPECT_EQ(Calibrate(registration, pairs, method), WarpingMethodNone);
      ExpectUnchanged(registration);
    } else {
      EXPECT_EQ(Calibrate(registration, pairs, method), method);
      EXPECT_NEAR(registration.Transform({pairs[99].x, pairs[99].y}).x, pairs[99].X, 1e-6 * 3000);
    }
  }
}

TEST(ImageRegistration, NotCalibratedLeavesPointsUnchanged) {
  const CImageRegistration registration;
  ExpectUnchanged(registration);
}

TEST(ImageRegistration, UnknownMethodsFail) {
  for (int number : {-2, -1, 6, 7, 1000}) {
    CImageRegistration registration;
    ASSERT_EQ(Calibrate(registration, Pairs(Cloud::Scan), WarpingMethodMarcovSpline),
              WarpingMethodMarcovSpline);
    EXPECT_EQ(Calibrate(registration, Pairs(Cloud::Scan), static_cast<WarpingMethod>(number)),
              WarpingMethodNone);
    ExpectUnchanged(registration);
  }
}

TEST(ImageRegistration, BadControlPointsFailAndUndoTheFormerCalibration) {
  constexpr double kInf = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kMax = std::numeric_limits<double>::max();
  struct Case {
    const char* name;
    std::vector<Pair> pairs;
  };
  std::vector<Case> cases = {
      {"no points", {}},
      {"one point", {{0, 0, 1, 1}}},
      {"two points", {{0, 0, 1, 1}, {1, 2, 3, 4}}},
      {"all points equal", {{5, 5, 1, 1}, {5, 5, 2, 1}, {5, 5, 1, 2}}},
      {"vertical line", {{5, 0, 1, 1}, {5, 1, 2, 1}, {5, 2, 1, 2}, {5, 7, 0, 0}}},
      {"horizontal line", {{0, -5, 1, 1}, {1, -5, 2, 1}, {2, -5, 1, 2}, {7, -5, 0, 0}}},
      {"diagonal", {{0, 0, 1, 1}, {1, 3, 2, 1}, {2, 6, 1, 2}, {7, 21, 0, 0}}},
      {"falling line", {{0, 0, 1, 1}, {1, -3, 2, 1}, {2, -6, 1, 2}, {7, -21, 0, 0}}},
      {"extent overflows", {{-kMax, 0, 1, 1}, {kMax, 1, 2, 1}, {2, 6, 1, 2}}},
      {"destination overflows", {{0, 0, 1, -kMax}, {5, 1, 2, kMax}, {2, 6, 1, 2}}},
      {"equal in box units", {{-1, 0, 1, 1}, {1e-20, 1, 2, 1}, {2e-20, 1, 1, 2}, {3, 4, 5, 6}}},
  };
  {
    // A line that is only as straight as its rounded coordinates: a tenth of a metre apart, at map
    // coordinates.
    std::vector<Pair> line;
    for (int i = 0; i < 9; ++i)
      line.push_back({500000 + 0.1 * i, 5400000 + 0.037 * i, 1.0 * i, 2.0 * (i % 3)});
    cases.push_back({"line of rounded coordinates", line});
    std::vector<Pair> skew;
    for (int i = 0; i < 9; ++i) skew.push_back({0.1 * i, 0.3 * i + 0.7, 1.0 * i, 2.0 * (i % 3)});
    cases.push_back({"line with rounding in the last place", skew});
  }
  {
    std::vector<Pair> twice = Pairs(Cloud::Scan);
    twice.push_back(twice[2]);
    cases.push_back({"a pair twice", twice});
    twice.back().X += 100;
    cases.push_back({"a source point twice", twice});
    std::vector<Pair> zeros = Pairs(Cloud::Field);
    zeros.push_back({0.0, 0.0, 1, 1});
    zeros.push_back({-0.0, 0.0, 2, 2});
    cases.push_back({"zero and minus zero", zeros});
  }
  for (double bad : {kInf, -kInf, kNan}) {
    for (double Pair::*member : {&Pair::x, &Pair::y, &Pair::X, &Pair::Y}) {
      std::vector<Pair> pairs = Pairs(Cloud::Scan);
      pairs[3].*member = bad;
      cases.push_back({"not finite", pairs});
      std::rotate(pairs.begin(), pairs.begin() + 3, pairs.end());
      cases.push_back({"not finite, first point", pairs});
    }
  }
  for (const Case& bad : cases) {
    for (WarpingMethod method : kAll) {
      SCOPED_TRACE(testing::Message() << bad.name << ", method " << method);
      CImageRegistration registration;
      ASSERT_EQ(Calibrate(registration, Pairs(Cloud::Scan), method), method);
      EXPECT_EQ(Calibrate(registration, bad.pairs, method), WarpingMethodNone);
      ExpectUnchanged(registration);
    }
  }
}

TEST(ImageRegistration, UnequalCountsFail) {
  RPoints three, four;
  for (const RPoint& point : {RPoint{0, 0}, RPoint{1, 0}, RPoint{0, 1}}) {
    three.Append(point);
    four.Append(point);
  }
  four.Append({1, 1});
  for (WarpingMethod method : kAll) {
    CImageRegistration registration;
    EXPECT_EQ(registration.Calibrate(three, four, method), WarpingMethodNone);
    EXPECT_EQ(registration.Calibrate(four, three, method), WarpingMethodNone);
    ExpectUnchanged(registration);
    EXPECT_EQ(registration.Calibrate(four, four, method), method);
  }
}

TEST(ImageRegistration, LineTestIsRelativeToTheBox) {
  // Three points on the box diagonal, the fourth off it by a part of the box; the tolerance is 1e-10.
  const auto pairs = [](double off) {
    return std::vector<Pair>{
        {0, 0, 0, 0}, {1, 1e6, 1, 1}, {0.25, 0.25e6, 2, 0}, {0.5, (0.5 + off) * 1e6, 0.5, 0.5 + off}};
  };
  for (WarpingMethod method : kAll) {
    SCOPED_TRACE(method);
    CImageRegistration registration;
    EXPECT_EQ(Calibrate(registration, pairs(1e-11), method), WarpingMethodNone);
    // Affine on these pairs, so only the line test could refuse them.
    std::vector<Pair> narrow = pairs(1e-8);
    for (Pair& pair : narrow) {
      pair.X = 2 * pair.x + 1;
      pair.Y = 3 * pair.x - 5;
    }
    EXPECT_EQ(Calibrate(registration, narrow, method), method);
    EXPECT_NEAR(registration.Transform({0.75, 0.75e6}).x, 2.5, 1e-6);
  }
}

TEST(ImageRegistration, ASecondCalibrationReplacesTheFirst) {
  const std::vector<Pair> scan = Pairs(Cloud::Scan), field = Pairs(Cloud::Field);
  for (WarpingMethod first : kAll) {
    for (WarpingMethod second : kAll) {
      CImageRegistration reused, fresh;
      ASSERT_EQ(Calibrate(reused, scan, first), first);
      ASSERT_EQ(Calibrate(reused, field, second), second);
      ASSERT_EQ(Calibrate(fresh, field, second), second);
      EXPECT_EQ(reused.Transform({880, 60}).x, fresh.Transform({880, 60}).x);
      EXPECT_EQ(reused.Transform({880, 60}).y, fresh.Transform({880, 60}).y);
    }
  }
}

TEST(ImageRegistration, RankDeficientSystemsAreSolvedUpToTwoThousandPoints) {
  CImageRegistration registration;
  EXPECT_EQ(Calibrate(registration, Bent(500, 0), WarpingMethodExponentialSpline),
            WarpingMethodExponentialSpline);
  EXPECT_EQ(Calibrate(registration, Bent(2001, 0), WarpingMethodExponentialSpline), WarpingMethodNone);
  EXPECT_EQ(Calibrate(registration, Bent(2001, 0), WarpingMethodMarcovSpline), WarpingMethodMarcovSpline);
}

TEST(ImageRegistration, SplinesRefuseMoreThanFiveThousandPoints) {
  const std::vector<Pair> pairs = Bent(5001, 1);
  for (WarpingMethod method : kAll) {
    SCOPED_TRACE(method);
    CImageRegistration registration;
    const bool spline = method != WarpingMethodInverseDistanceSquared;
    EXPECT_EQ(Calibrate(registration, pairs, method), spline ? WarpingMethodNone : method);
  }
}
