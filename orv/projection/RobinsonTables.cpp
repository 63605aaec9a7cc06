#include "orv/projection/RobinsonTables.h"

namespace orv {

// clang-format off

// c0              c1              c2              c3                  degrees
constexpr float kRobinsonLength[kRobinsonNodes][kRobinsonTerms] = {
    {1.0f,           -0.0f,          -7.1551e-05f,   3.11e-06f},     // 0
    {0.9986f,        -0.000482241f,  -2.4897e-05f,   -1.331e-06f},   // 5
    {0.9954f,        -0.000831031f,  -4.4861e-05f,   -9.87e-07f},    // 10
    {0.99f,          -0.00135363f,   -5.966e-05f,    3.677e-06f},    // 15
    {0.9822f,        -0.00167442f,   -4.497e-06f,    -5.724e-06f},   // 20
    {0.973f,         -0.00214869f,   -9.0357e-05f,   1.9e-08f},      // 25
    {0.96f,          -0.00305084f,   -9.0073e-05f,   1.649e-06f},    // 30
    {0.9427f,        -0.00382792f,   -6.5343e-05f,   -2.615e-06f},   // 35
    {0.9216f,        -0.00467747f,   -0.000104566f,  4.812e-06f},    // 40
    {0.8962f,        -0.00536222f,   -3.2383e-05f,   -5.434e-06f},   // 45
    {0.8679f,        -0.00609364f,   -0.0001139f,    3.325e-06f},    // 50
    {0.835f,         -0.00698325f,   -6.4022e-05f,   9.35e-07f},     // 55
    {0.7986f,        -0.00755337f,   -5.0004e-05f,   9.36e-07f},     // 60
    {0.7597f,        -0.00798325f,   -3.5972e-05f,   -2.276e-06f},   // 65
    {0.7186f,        -0.00851366f,   -7.0112e-05f,   -8.631e-06f},   // 70
    {0.6732f,        -0.00986209f,   -0.000199572f,  1.9198e-05f},   // 75
    {0.6213f,        -0.010418f,     8.8395e-05f,    6.24e-06f},     // 80
    {0.5722f,        -0.00906601f,   0.000181999f,   6.24e-06f},     // 85
    {0.5322f,        0.0f,           0.0f,           0.0f},          // 90
};

// c0              c1              c2              c3                  degrees
constexpr float kRobinsonDistance[kRobinsonNodes][kRobinsonTerms] = {
    {0.0f,           0.0124f,        0.0f,           1e-09f},        // 0
    {0.062f,         0.0124001f,     1.8e-08f,       -6e-09f},       // 5
    {0.124f,         0.0123998f,     -7.1e-08f,      2.3e-08f},      // 10
    {0.186f,         0.0124008f,     2.67e-07f,      -8.4e-08f},     // 15
    {0.248f,         0.0123971f,     -1e-06f,        3.16e-07f},     // 20
    {0.31f,          0.0124108f,     3.733e-06f,     -1.178e-06f},   // 25
    {0.372f,         0.0123598f,     -1.3935e-05f,   4.396e-06f},    // 30
    {0.434f,         0.0125501f,     5.2003e-05f,    -1.0005e-05f},  // 35
    {0.4968f,        0.0123198f,     -9.8073e-05f,   9.224e-06f},    // 40
    {0.5571f,        0.0120308f,     4.0286e-05f,    -5.29e-06f},    // 45
    {0.6176f,        0.0120369f,     -3.9066e-05f,   7.36e-07f},     // 50
    {0.6769f,        0.0117015f,     -2.8025e-05f,   -8.54e-07f},    // 55
    {0.7346f,        0.0113572f,     -4.0839e-05f,   -5.19e-07f},    // 60
    {0.7903f,        0.0109099f,     -4.8617e-05f,   -1.072e-06f},   // 65
    {0.8435f,        0.0103433f,     -6.4693e-05f,   5e-09f},        // 70
    {0.8936f,        0.00969679f,    -6.4613e-05f,   -8.549e-06f},   // 75
    {0.9394f,        0.00840949f,    -0.000192847f,  -4.21e-06f},    // 80
    {0.9761f,        0.00616525f,    -0.000256001f,  -4.21e-06f},    // 85
    {1.0f,           0.0f,           0.0f,           0.0f},          // 90
};

constexpr double kRobinsonLengthNodes[kRobinsonNodes] = {
    1.0000, 0.9986, 0.9954, 0.9900, 0.9822, 0.9730, 0.9600, 0.9427, 0.9216, 0.8962,
    0.8679, 0.8350, 0.7986, 0.7597, 0.7186, 0.6732, 0.6213, 0.5722, 0.5322};

constexpr double kRobinsonDistanceNodes[kRobinsonNodes] = {
    0.0000, 0.0620, 0.1240, 0.1860, 0.2480, 0.3100, 0.3720, 0.4340, 0.4958, 0.5571,
    0.6176, 0.6769, 0.7346, 0.7903, 0.8435, 0.8936, 0.9394, 0.9761, 1.0000};

namespace {

// b1          b2              b3             b4                degrees; tools/generate/robinson_starts.py
constexpr double kStarts[kRobinsonIntervals][kRobinsonTerms] = {
    {80.645159,  1.09109778e-8,  -0.0422978816, 1.00883534e-5},   // 0
    {80.6445109, -0.00944014932, 0.253759181,   0.000214636474},  // 5
    {80.6464612, 0.0372461691,   -0.973146841,  0.0030906396},    // 10
    {80.6399559, -0.139933969,   3.54882226,    0.0403388772},    // 15
    {80.6640178, 0.525943708,    -13.4243316,   0.572585171},     // 20
    {80.5748848, -1.93759853,    49.0139697,    7.96037215},      // 25
    {80.9061287, 7.58777555,     -197.157964,   110.217649},      // 30
    {79.6738065, -25.2673342,    371.001511,    272.527234},      // 35
    {81.1643143, 53.3511024,     -375.124016,   -451.958079},     // 40
    {83.1178545, -22.79381,      248.247588,    -12.5302927},     // 45
    {83.0778625, 22.4012657,     -23.0190044,   -38.6699167},     // 50
    {85.4590118, 17.5104257,     51.7392181,    69.2328722},      // 55
    {88.0497688, 27.8949339,     47.9592678,    81.2706704},      // 60
    {91.6594637, 37.5104444,     102.37895,     265.897504},      // 65
    {96.680839,  58.4821923,     69.1379611,    130.987834},      // 70
    {103.097561, 76.6696539,     718.058688,    10970.1225},      // 75
    {118.793294, 353.300273,     516.054832,    76473.5953},      // 80
    {160.585496, 1666.18424,     -41853.6083,   2389243.7},       // 85
};

}  // namespace

// clang-format on

constexpr RobinsonPairs kRobinsonPairs = [] {
  RobinsonPairs pairs{};
  for (int i = 0; i < kRobinsonIntervals; ++i) {
    for (int k = 0; k < kRobinsonTerms; ++k) {
      pairs.distance[k / 2][i][k % 2] = static_cast<double>(kRobinsonDistance[i][k]);
      pairs.start[k / 2][i][k % 2] = kStarts[i][k];
      pairs.length[k / 2][i][k % 2] = static_cast<double>(kRobinsonLength[i][k]);
    }
  }
  return pairs;
}();

constexpr SterlingPairs kSterlingPairs = [] {
  SterlingPairs pairs{};
  for (int i = 0; i < kRobinsonIntervals; ++i) {
    const double y = kRobinsonDistanceNodes[i], yNext = kRobinsonDistanceNodes[i + 1];
    const double x = kRobinsonLengthNodes[i], xNext = kRobinsonLengthNodes[i + 1];
    const double yLast = i == 0 ? -yNext : kRobinsonDistanceNodes[i - 1];
    const double xLast = i == 0 ? xNext : kRobinsonLengthNodes[i - 1];
    pairs.distance[i][0] = y;
    pairs.distance[i][1] = (yNext - yLast) / 2.0;
    pairs.length[i][0] = x;
    pairs.length[i][1] = (xNext - xLast) / 2.0;
    pairs.seconds[i][0] = (yNext - 2.0 * y + yLast) / 2.0;
    pairs.seconds[i][1] = (xNext - 2.0 * x + xLast) / 2.0;
  }
  return pairs;
}();

namespace {

/// Fails to compile where two nodes are too close to each other for it.
template <class Nodes>
constexpr RobinsonSearch SearchOf(Nodes node) {
  RobinsonSearch search{};
  int before = 0;  // the last interval that begins below the distances in question
  for (int k = 0; k < 33; ++k) {
    const double end = (k + 0.5) / 32.0;
    search.at[k] = {2.0, static_cast<double>(before)};
    if (before + 1 < kRobinsonIntervals && node(before + 1) < end) search.at[k].node = node(++before);
    if (before + 1 < kRobinsonIntervals && node(before + 1) < end) throw "two nodes";
  }
  return search;
}

}  // namespace

constexpr RobinsonSearch kRobinsonSearch =
    SearchOf([](int i) { return static_cast<double>(kRobinsonDistance[i][0]); });

constexpr RobinsonSearch kSterlingSearch = SearchOf([](int i) { return kRobinsonDistanceNodes[i]; });

// A row for each node; a test looks for rows left out, which would be zeros at the end.
static_assert(kRobinsonNodes == 90 / 5 + 1);

}  // namespace orv
