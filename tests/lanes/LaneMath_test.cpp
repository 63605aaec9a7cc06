// Errors of the elementary functions against MPFR, and their special arguments.
//
// The bounds are those that LaneMath.h states.  One lane is tested; that all instruction sets give the same
// bits is Lanes_test.cpp's matter.
#include "orv/lanes/LaneMath.h"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <ostream>
#include <random>
#include <string>

// Inside, so that sin, log ... are those of one lane and not those of <cmath>.
namespace orv::one {
namespace {

// Arguments for each function and range: 50 000 in a usual run; ORV_LANE_MATH_ARGUMENTS=1000000 measures the figures that
// LaneMath.h states.
const int kArguments = [] {
  const char* const asked = std::getenv("ORV_LANE_MATH_ARGUMENTS");
  return asked ? std::atoi(asked) : 50000;
}();
constexpr mpfr_prec_t kPrecision = 110;
constexpr unsigned kSeed = 20240611;

class Big {
 public:
  Big() { mpfr_init2(m_Value, kPrecision); }
  explicit Big(double v) : Big() { mpfr_set_d(m_Value, v, MPFR_RNDN); }
  Big(const Big&) = delete;
  Big& operator=(const Big&) = delete;
  ~Big() { mpfr_clear(m_Value); }
  mpfr_ptr get() { return m_Value; }

 private:
  mpfr_t m_Value;
};

// |got - exact| in units in the last place of the exact value.
double UlpError(double got, Big& exact) {
  const double rounded = mpfr_get_d(exact.get(), MPFR_RNDN);
  if (!std::isfinite(rounded) || !std::isfinite(got)) return got == rounded ? 0 : HUGE_VAL;
  if (rounded == 0) return got == 0 ? 0 : HUGE_VAL;
  const double ulp = std::ldexp(1.0, std::max(std::ilogb(rounded) - 52, -1074));
  Big difference;
  mpfr_sub_d(difference.get(), exact.get(), got, MPFR_RNDN);
  return std::fabs(mpfr_get_d(difference.get(), MPFR_RNDN)) / ulp;
}

enum class Spread { Even, Logarithmic, NearRightAngles };

struct Row {
  std::string name;
  double low, high;
  Spread spread;
  double bound;  // ULP
  std::function<double(double)> ours;
  std::function<void(mpfr_ptr, mpfr_srcptr)> exact;
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

using Exact2 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
Row Of(const char* name, double low, double high, Spread spread, double bound, double (*ours)(double),
       Exact2 exact) {
  return {
      name, low, high, spread, bound, ours, [exact](mpfr_ptr r, mpfr_srcptr x) { exact(r, x, MPFR_RNDN); }};
}

Row PowerRow(const char* name, double low, double high, double power, double bound) {
  return {name,
          low,
          high,
          Spread::Logarithmic,
          bound,
          [power](double x) { return pow(x, power); },
          [power](mpfr_ptr r, mpfr_srcptr x) {
            Big b(power);
            mpfr_pow(r, x, b.get(), MPFR_RNDN);
          }};
}

// The angle of (cos x, sin x) times a length, both as doubles: what is asked is the angle of these doubles.
Row AngleRow(const char* name, double low, double high, double length, double bound) {
  return {name,
          low,
          high,
          Spread::Even,
          bound,
          [length](double x) { return atan2(length * std::sin(x), length * std::cos(x)); },
          [length](mpfr_ptr r, mpfr_srcptr x) {
            const double angle = mpfr_get_d(x, MPFR_RNDN);
            Big s(length * std::sin(angle)), c(length * std::cos(angle));
            mpfr_atan2(r, s.get(), c.get(), MPFR_RNDN);
          }};
}

// LogTan of the angle whose LogTan is x: s = one tanh x and c = one / cosh x, correctly rounded.
Row LogTanRow(const char* name, double low, double high, double one, Spread spread, double bound) {
  return {name,
          low,
          high,
          spread,
          bound,
          [one](double x) {
            Big argument(x), s, c;
            mpfr_tanh(s.get(), argument.get(), MPFR_RNDN);
            mpfr_sech(c.get(), argument.get(), MPFR_RNDN);
            mpfr_mul_d(s.get(), s.get(), one, MPFR_RNDN);
            mpfr_mul_d(c.get(), c.get(), one, MPFR_RNDN);
            return LogTan(mpfr_get_d(s.get(), MPFR_RNDN), mpfr_get_d(c.get(), MPFR_RNDN), one);
          },
          [](mpfr_ptr r, mpfr_srcptr x) { mpfr_set(r, x, MPFR_RNDN); }};
}

class LaneMathErrors : public testing::TestWithParam<Row> {};

TEST_P(LaneMathErrors, StayBelowTheStatedBound) {
  const Row& row = GetParam();
  std::mt19937_64 generator(kSeed);
  const bool logarithmic = row.spread == Spread::Logarithmic;
  std::uniform_real_distribution<double> draw(logarithmic ? std::log(row.low) : row.low,
                                              logarithmic ? std::log(row.high) : row.high);
  std::uniform_real_distribution<double> small(-1e-6, 1e-6);
  double worst = 0, worstAt = 0;
  Big exact;
  for (int i = 0; i < kArguments; ++i) {
    double x = draw(generator);
    if (logarithmic) x = std::exp(x);
    if (row.spread == Spread::NearRightAngles) {
      x = std::round(x / kHalfPi) * kHalfPi + small(generator);
    }
    Big argument(x);
    row.exact(exact.get(), argument.get());
    const double error = UlpError(row.ours(x), exact);
    if (!(error <= worst)) {
      worst = error;
      worstAt = x;
    }
  }
  RecordProperty("worstUlp", std::to_string(worst));
  std::printf("    %-34s %.3f ULP at %.17g\n", row.name.c_str(), worst, worstAt);
  EXPECT_LE(worst, row.bound) << row.name << " at " << worstAt << ", seed " << kSeed;
}

std::string NameOfRow(const testing::TestParamInfo<Row>& row) {
  std::string name;
  for (const char c : row.param.name) name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name + "_" + std::to_string(row.index);
}

constexpr auto kEven = Spread::Even;
constexpr auto kLog = Spread::Logarithmic;
constexpr auto kRight = Spread::NearRightAngles;

INSTANTIATE_TEST_SUITE_P(All, LaneMathErrors,
                         testing::Values(Of("sin up to 7", -7, 7, kEven, 0.83, sin, mpfr_sin),
                                         Of("cos up to 7", -7, 7, kEven, 0.83, cos, mpfr_cos),
                                         Of("sin near right angles", -7, 7, kRight, 0.83, sin, mpfr_sin),
                                         Of("cos near right angles", -7, 7, kRight, 0.83, cos, mpfr_cos),
                                         Of("sin up to 1e6", -1e6, 1e6, kEven, 0.83, sin, mpfr_sin),
                                         Of("cos up to 1e6", -1e6, 1e6, kEven, 0.83, cos, mpfr_cos),
                                         Of("sin of small angles", 1e-90, 1e-2, kLog, 0.83, sin, mpfr_sin),
                                         Of("tan up to 7", -7, 7, kEven, 2.3, tan, mpfr_tan),
                                         Of("tan near right angles", -7, 7, kRight, 2.3, tan, mpfr_tan),
                                         Of("tan up to 1e6", -1e6, 1e6, kEven, 2.3, tan, mpfr_tan),
                                         Of("log from 1/2 to 2", 0.5, 2, kEven, 0.86, log, mpfr_log),
                                         Of("log near 1", 0.9999, 1.0001, kEven, 0.86, log, mpfr_log),
                                         Of("log of any size", DBL_MIN, DBL_MAX, kLog, 0.86, log, mpfr_log),
                                         Of("atanh up to 1", -1, 1, kEven, 3.6, atanh, mpfr_atanh),
                                         Of("atanh of small numbers", 1e-90, 1, kLog, 3.6, atanh, mpfr_atanh),
                                         LogTanRow("LogTan up to 35", -35, 35, 1, kEven, 4.5),
                                         LogTanRow("LogTan up to 1", -1, 1, 1, kEven, 4.5),
                                         LogTanRow("LogTan small", 1e-90, 1, 1, kLog, 4.5),
                                         LogTanRow("LogTan common factor", -35, 35, 1e9, kEven, 4.5),
                                         Of("exp up to 1", -1, 1, kEven, 0.98, exp, mpfr_exp),
                                         Of("exp of any size", -707, 709.78, kEven, 0.98, exp, mpfr_exp),
                                         Of("expm1 up to 1", -1, 1, kEven, 1.7, expm1, mpfr_expm1),
                                         Of("expm1 up to 700", -700, 700, kEven, 1.7, expm1, mpfr_expm1),
                                         Of("expm1 of small numbers", 1e-90, 1, kLog, 1.7, expm1, mpfr_expm1),
                                         Of("sinh up to 2", -2, 2, kEven, 2.3, sinh, mpfr_sinh),
                                         Of("sinh up to 700", -700, 700, kEven, 2.3, sinh, mpfr_sinh),
                                         Of("sinh of small numbers", 1e-90, 1, kLog, 2.3, sinh, mpfr_sinh),
                                         Of("cosh up to 2", -2, 2, kEven, 1.6, cosh, mpfr_cosh),
                                         Of("cosh up to 700", -700, 700, kEven, 1.6, cosh, mpfr_cosh),
                                         Of("tanh up to 2", -2, 2, kEven, 2.5, tanh, mpfr_tanh),
                                         Of("tanh up to 40", -40, 40, kEven, 2.5, tanh, mpfr_tanh),
                                         Of("tanh of small numbers", 1e-90, 1, kLog, 2.5, tanh, mpfr_tanh),
                                         PowerRow("pow 0.73", 1e-300, 1e300, 0.73, 1.146),
                                         PowerRow("pow -0.3", 1e-300, 1e300, -0.3, 1.06),
                                         PowerRow("pow 3.25", 1e-90, 1e90, 3.25, 1.65),
                                         PowerRow("pow 17", 0.01, 1e10, 17, 4.4),
                                         PowerRow("pow -100", 0.01, 100, -100, 21),
                                         PowerRow("pow 0.73 near 1", 0.5, 2, 0.73, 1.146),
                                         PowerRow("pow 1/3", 1e-9, 1e9, 1.0 / 3, 1.066),
                                         Of("atan up to 2", -2, 2, kEven, 1.4, atan, mpfr_atan),
                                         Of("atan of any size", 1e-90, 1e300, kLog, 1.4, atan, mpfr_atan),
                                         AngleRow("atan2 all round", -3.2, 3.2, 1, 1.6),
                                         AngleRow("atan2 all round, metres", -3.2, 3.2, 6378137, 1.6),
                                         AngleRow("atan2 near 0", -1e-3, 1e-3, 1, 1.6),
                                         Of("asin up to 1", -1, 1, kEven, 1.2, asin, mpfr_asin),
                                         Of("asin of small numbers", 1e-90, 1, kLog, 1.2, asin, mpfr_asin),
                                         Of("acos up to 1", -1, 1, kEven, 1.15, acos, mpfr_acos),
                                         Of("acos near 1", 0.999999, 1, kEven, 1.15, acos, mpfr_acos)),
                         NameOfRow);

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNotANumber = std::numeric_limits<double>::quiet_NaN();

bool SameBits(double a, double b) {
  return __builtin_bit_cast(long long, a) == __builtin_bit_cast(long long, b);
}

struct Special {
  const char* name;
  double got, wanted;
};

TEST(LaneMath, SpecialArgumentsGiveExactlyTheStatedValues) {
  const double halfPi = 1.5707963267948966, pi = 3.141592653589793;
  const Special rows[] = {
      {"sin 0", sin(0.0), 0.0},
      {"sin -0", sin(-0.0), -0.0},
      {"cos 0", cos(0.0), 1.0},
      {"sin pi/2", sin(halfPi), 1.0},
      {"sin -pi/2", sin(-halfPi), -1.0},
      {"cos pi/2", cos(halfPi), 6.123233995736766e-17},
      {"cos -pi/2", cos(-halfPi), 6.123233995736766e-17},
      {"sin pi", sin(pi), 1.2246467991473532e-16},
      {"cos pi", cos(pi), -1.0},
      {"tan 0", tan(0.0), 0.0},
      {"log 1", log(1.0), 0.0},
      {"log 0", log(0.0), -kInf},
      {"log -0", log(-0.0), -kInf},
      {"log of a subnormal", log(1e-310), -kInf},
      {"log inf", log(kInf), kInf},
      {"log of the largest", log(DBL_MAX), 709.782712893384},
      {"exp 0", exp(0.0), 1.0},
      {"exp -0", exp(-0.0), 1.0},
      {"exp -708", exp(-708.0), 0.0},
      {"exp -inf", exp(-kInf), 0.0},
      {"exp 709.79", exp(709.79), kInf},
      {"exp inf", exp(kInf), kInf},
      {"expm1 0", expm1(0.0), 0.0},
      {"expm1 -0", expm1(-0.0), 0.0},
      {"sinh 0", sinh(0.0), 0.0},
      {"sinh -0", sinh(-0.0), -0.0},
      {"cosh 0", cosh(0.0), 1.0},
      {"tanh 0", tanh(0.0), 0.0},
      {"tanh -0", tanh(-0.0), -0.0},
      {"tanh 30", tanh(30.0), 1.0},
      {"tanh -inf", tanh(-kInf), -1.0},
      {"atanh 0", atanh(0.0), 0.0},
      {"atanh -0", atanh(-0.0), -0.0},
      {"atanh 1", atanh(1.0), kInf},
      {"atanh -1", atanh(-1.0), -kInf},
      {"atan 0", atan(0.0), 0.0},
      {"atan -0", atan(-0.0), -0.0},
      {"atan 1e300", atan(1e300), halfPi},
      {"atan2 0 0", atan2(0.0, 0.0), 0.0},
      {"atan2 0 -0", atan2(0.0, -0.0), 0.0},
      {"atan2 -0 1", atan2(-0.0, 1.0), -0.0},
      {"atan2 0 -1", atan2(0.0, -1.0), pi},
      {"atan2 -0 -1", atan2(-0.0, -1.0), -pi},
      {"atan2 2 0", atan2(2.0, 0.0), halfPi},
      {"atan2 -2 0", atan2(-2.0, 0.0), -halfPi},
      {"atan2 3 3", atan2(3.0, 3.0), 0.7853981633974483},
      {"atan2 -3 -3", atan2(-3.0, -3.0), -2.356194490192345},
      {"asin 0", asin(0.0), 0.0},
      {"asin -0", asin(-0.0), -0.0},
      {"asin 1", asin(1.0), halfPi},
      {"asin -1", asin(-1.0), -halfPi},
      {"acos 1", acos(1.0), 0.0},
      {"acos 0", acos(0.0), halfPi},
      {"acos -1", acos(-1.0), pi},
      {"pow of 1", pow(1.0, 3.7), 1.0},
      {"pow of 4", pow(4.0, 0.5), 2.0},
      {"pow 0 positive", pow(0.0, 0.7), 0.0},
      {"pow 0 negative", pow(0.0, -0.7), kInf},
      {"pow inf positive", pow(kInf, 0.7), kInf},
      {"pow inf negative", pow(kInf, -0.7), 0.0},
  };
  for (const Special& row : rows) EXPECT_TRUE(SameBits(row.got, row.wanted)) << row.name << ": " << row.got;
}

TEST(LaneMath, NotANumberStaysNotANumber) {
  const Special rows[] = {{"sin", sin(kNotANumber), 0},        {"cos", cos(kNotANumber), 0},
                          {"tan", tan(kNotANumber), 0},        {"log", log(kNotANumber), 0},
                          {"log of -1", log(-1.0), 0},         {"exp", exp(kNotANumber), 0},
                          {"expm1", expm1(kNotANumber), 0},    {"sinh", sinh(kNotANumber), 0},
                          {"cosh", cosh(kNotANumber), 0},      {"atan", atan(kNotANumber), 0},
                          {"pow", pow(kNotANumber, 0.7), 0},   {"pow of -2", pow(-2.0, 0.7), 0},
                          {"asin", asin(kNotANumber), 0},      {"acos", acos(kNotANumber), 0},
                          {"atan2", atan2(kNotANumber, 1), 0}, {"atan2", atan2(1, kNotANumber), 0}};
  for (const Special& row : rows) EXPECT_TRUE(std::isnan(row.got)) << row.name << ": " << row.got;
}

TEST(LaneMath, NoArgumentRaisesDivideByZeroOverflowOrInvalid) {
  const double arguments[] = {
      0.0,   -0.0, 1.0,  -1.0,  0.5,   -0.5,   1e-300,  -1e-300, 1e6,    -1e6,
      700.0, -700, 1e15, -1e15, 1e300, -1e300, DBL_MAX, DBL_MIN, 5e-324, 1.5707963267948966};
  for (const double x : arguments) {
    const double within = std::fmod(x, 700.0), unit = std::fabs(x) <= 1 ? x : 1 / x;
    std::feclearexcept(FE_ALL_EXCEPT);
    volatile double sink = 0;
    if (std::fabs(x) <= 1e15) sink = sin(x) + cos(x);
    if (std::fabs(x) <= 1e6) sink = tan(x);
    sink = log(x);
    sink = atanh(x);
    sink = exp(x);
    sink = expm1(within);
    sink = sinh(within) + cosh(within);
    sink = tanh(x);
    sink = pow(x, 0.3);
    sink = pow(x, -2.5);
    sink = atan(x);
    sink = atan2(x, 0.0);
    sink = atan2(0.0, x);
    sink = asin(unit) + acos(unit);
    (void)sink;
    EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID), 0) << "at " << x;
  }
}

TEST(LaneMath, HugeAnglesStayBounded) {
  std::mt19937_64 generator(kSeed);
  std::uniform_real_distribution<double> draw(std::log(1e6), std::log(1e15));
  for (int i = 0; i < kArguments; ++i) {
    const double x = std::exp(draw(generator));
    const SinCos t = sincos(x);
    // the stated error: half a unit in the last place of x, and the ordinary one
    const double tolerance = std::ldexp(1.0, std::ilogb(x) - 52) + 1e-15;
    ASSERT_NEAR(t.sin, std::sin(x), tolerance) << x;
    ASSERT_NEAR(t.cos, std::cos(x), tolerance) << x;
    ASSERT_LE(std::fabs(t.sin), 1.0001);
    ASSERT_LE(std::fabs(t.cos), 1.0001);
  }
}

TEST(LaneMath, SineNeverExceedsOne) {
  for (int i = 0; i < kArguments; ++i) {
    const double x = kHalfPi + (i - kArguments / 2) * 1e-13;
    ASSERT_LE(sin(x), 1.0) << x;
    ASSERT_GE(sin(-x), -1.0) << x;
  }
}

}  // namespace
}  // namespace orv::one
