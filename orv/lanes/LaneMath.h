// Elementary functions of Lanes: no tables, no calls, no branch on a lane.
//
// They exist because no library gives the same bits on every instruction set at this speed.  All are plain
// + - * / and sqrt in a fixed order, no contraction, so one lane and sixteen lanes agree to the last bit.
//
// Errors are the worst of a million arguments against MPFR, in units in the last place of the exact result; the
// test LaneMath_test.cpp measures them again, over fewer, and asserts them.  Arguments outside the stated range give a wrong
// value but no trap.  The functions raise no divide-by-zero and no overflow; a NaN argument gives NaN (and
// may raise "invalid"); tiny intermediate results (arguments below about 1e-100) may raise "underflow".
//
// Coefficients: tools/generate/lane_coefficients.py.
#pragma once

#include "orv/lanes/Lanes.h"

namespace orv {
namespace ORV_ISA {

// ---- polynomials -----------------------------------------------------------------------------------------

/// c0 + c1 z + c2 z^2 ... by Estrin's scheme: pairs first, which leaves a short chain of dependent
/// operations.
template <std::size_t N>
inline Lanes Estrin(Lanes z, const Lanes (&c)[N]) {
  if constexpr (N == 1) {
    return c[0];
  } else {
    Lanes d[(N + 1) / 2];
    for (std::size_t i = 0; i < N / 2; ++i) d[i] = c[2 * i] + z * c[2 * i + 1];
    if constexpr (N % 2 == 1) d[N / 2] = c[N - 1];
    if constexpr (N == 2) {
      return d[0];
    } else {
      return Estrin(z * z, d);
    }
  }
}
template <class... C>
inline Lanes Poly(Lanes z, C... c) {
  const Lanes lanes[] = {Lanes(c)...};
  return Estrin(z, lanes);
}

/// The nearest integer, ties to even; its low bits are the low bits of n.  For |x| < 2^51.
inline Lanes Round(Lanes x, Ints& n) {
  const double magic = 0x1.8p52;
  const Lanes shifted = x + magic;
  n = BitsOf(shifted);
  return shifted - magic;
}

/// The largest integer that is not above x; of larger x than 2^51, x itself.
inline Lanes Floor(Lanes x) {
  Ints unused;
  const Lanes nearest = Round(x, unused);
  const Lanes floor = Select(nearest > x, nearest - 1.0, nearest);
  return Select(abs(x) < 0x1p51, floor, x);
}

/// An integer 0 <= x < 2^52 as Ints, exactly.
inline Ints ToInts(Lanes x) { return BitsOf(x + 0x1p52) - 0x4330000000000000; }

// ---- sine, cosine, tangent -------------------------------------------------------------------------------

struct SinCos {
  Lanes sin, cos;
};

/// Sine and cosine: 0.83 ULP for |x| <= 1e6.
///
/// Beyond that the error is about that of half a unit in the last place of x; up to 1e15 both stay within
/// [-1, 1] but for round-off.  sin(+-0) is +-0, cos(0) is 1; no other sine or cosine of a double is 0.
inline SinCos sincos(Lanes x) {
  Ints q;
  const Lanes k = Round(x * 0.6366197723675814, q);
  // r + tail = x - k pi/2, in three parts; k times each of the first two is exact
  const Lanes a = x - k * 1.5707963267341256;
  const Lanes t = k * 6.077100506303966e-11;
  const Lanes b = a - t;
  const Lanes e = ((b - a) + t) + k * 2.0222662487959506e-21;
  const Lanes r = b - e;
  const Lanes tail = (b - r) - e;

  const Lanes z = r * r;
  const Lanes zr = z * r;
  const Lanes ps = Poly(z, 0.008333333333330827, -0.0001984126983657571, 2.755731600817155e-06,
                        -2.5051112272573243e-08, 1.5916726193889336e-10);
  const Lanes s = r - ((z * (0.5 * tail - zr * ps) - tail) + zr * 0.16666666666666666);
  const Lanes pc = Poly(z, 0.041666666666666664, -0.0013888888888887322, 2.4801587298651292e-05,
                        -2.755731721268659e-07, 2.0876134024090145e-09, -1.1381754653662937e-11);
  const Lanes h = 0.5 * z;
  const Lanes w = 1.0 - h;
  const Lanes c = w + (((1.0 - w) - h) + (z * z * pc - r * tail));

  const Mask odd = (q & 1) != 0;
  const Lanes sine = Select(odd, c, s);
  const Lanes cosine = Select(odd, s, c);
  return {FromBits(BitsOf(sine) ^ ((q << 62) & kSignBit)),
          FromBits(BitsOf(cosine) ^ (((q + 1) << 62) & kSignBit))};
}
inline Lanes sin(Lanes x) { return sincos(x).sin; }
inline Lanes cos(Lanes x) { return sincos(x).cos; }

/// Tangent: 2.3 ULP for |x| <= 1e6 (a quotient of two rounded numbers).  tan(1.5707963267948966) is 1.6e16,
/// as it should be.
inline Lanes tan(Lanes x) {
  const SinCos t = sincos(x);
  return t.sin / t.cos;
}

// ---- logarithms ------------------------------------------------------------------------------------------

/// 2^k for -1022 <= k <= 1023, from k + 1023.
inline Lanes PowerOfTwo(Ints biased) { return FromBits(biased << 52); }

/// A small integer as Lanes, exactly; 0 <= i < 2^52.
inline Lanes ToLanes(Ints i) { return FromBits(i | 0x4330000000000000) - 0x1p52; }

/// x = 2^k m with m from sqrt(1/2) to sqrt(2); returns k + 1023 as Ints.  x normal and positive.
inline Ints BiasedExponent(Lanes x, Lanes& m) {
  const Ints j = Ints((Bits(BitsOf(x)) - (0x3fe6a09e667f3bcdULL - (1023ULL << 52))) >> 52);
  m = FromBits(BitsOf(x) - ((j - 1023) << 52));
  return j;
}

/// Natural logarithm: 0.86 ULP for normal positive x.
///
/// log(+-0) and of positive numbers below 2.2250738585072014e-308 is -infinity, of negative numbers NaN, of
/// infinity infinity; none of these raises a flag.
inline Lanes log(Lanes x) {
  const Mask fit = x >= 2.2250738585072014e-308;
  Lanes m;
  const Ints j = BiasedExponent(Select(fit, x, 1.0), m);
  const Lanes k = ToLanes(j) - 1023.0;
  const Lanes f = m - 1.0;
  const Lanes s = f / (2.0 + f);
  const Lanes z = s * s;
  const Lanes h = 0.5 * f * f;
  const Lanes r = z * Poly(z, 0.666666666666667, 0.3999999999989322, 0.28571428628810996, 0.22222210674238516,
                           0.18182922513515942, 0.15330617306743305, 0.1463003136412286);
  const Lanes y = k * 0.6931471803691238 - ((h - (s * (h + r) + k * 1.9082149292705877e-10)) - f);
  const Lanes special = Select(x >= 0.0, -kInfinity, kNaN);
  return Select(x == kInfinity, x, Select(fit, y, special));
}

/// ln(p / q) of positive p, q without the quotient, accurate to some ULP where that is near 0 as well.
///
/// Where p and q are within a factor of about 1.4 of each other the tangent form ln(p/q) = 2 artanh(n / d) is
/// used, with n / d = (p - q)/(p + q) given by the caller in a form that does not cancel.
inline Lanes LogRatio(Lanes p, Lanes q, Lanes n, Lanes d) {
  // the difference of the bits is 2^52 log2(p/q), by no more than 0.09 wrong: p/(2^k q) lies in [0.66, 1.51]
  const Bits wrapping = Bits(BitsOf(p)) - Bits(BitsOf(q)) + ((1023ULL << 52) + (1ULL << 51));
  const Ints j = Ints(wrapping >> 52);
  const Lanes k = ToLanes(j) - 1023.0;
  const Lanes qk = q * PowerOfTwo(j);
  const Mask near = k == 0.0;
  const Lanes s = (Select(near, n, p - qk)) / Select(near, d, p + qk);
  const Lanes z = s * s;
  const Lanes r =
      z * Poly(z, 0.6666666666666666, 0.40000000000010355, 0.28571428566211265, 0.22222223222240986,
               0.18181724239322528, 0.15389392433053536, 0.13199584475833384, 0.1368532383241901);
  return k * 0.6931471803691238 + (2.0 * s + (s * r + k * 1.9082149292705877e-10));
}

/// Inverse hyperbolic tangent: 3.6 ULP for |x| < 1 (worst near 0.2).  At |x| >= 1: +-infinity, without a
/// flag.
inline Lanes atanh(Lanes x) {
  const Lanes ax = abs(x);
  const Mask fit = ax < 1.0;
  const Lanes a = Select(fit, ax, 0.0);
  const Lanes y = 0.5 * LogRatio(1.0 + a, 1.0 - a, a, 1.0);
  return WithSign(Select(fit, y, kInfinity), x);
}

/// ln tan(pi/4 + theta/2), the isometric latitude of the sphere, of an angle |theta| < pi/2 that is given by
/// its sine and its (positive) cosine, or by both times a common factor that is given as `one`: 4.5 ULP when
/// s and c are correctly rounded.
///
/// The same as artanh(sin theta) and as ln((1 + sin theta)/(1 - sin theta))/2, but it does not lose digits
/// near the poles.  The cosine must not be 0.
inline Lanes LogTan(Lanes s, Lanes c, Lanes one) {
  const Lanes as = abs(s);
  return FlipSign(LogRatio(one + as, c, as, one + c), s);
}
inline Lanes LogTan(SinCos t) { return LogTan(t.sin, t.cos, 1.0); }

// ---- exponentials ----------------------------------------------------------------------------------------

/// exp(x + low) for a small |low| <= 2^-40 |x|: see exp.
inline Lanes ExpOfSum(Lanes x, Lanes low) {
  const Mask small = x<-707.0, large = x> 709.782712893384;
  const Lanes c = Select((small | large), 0.0, x);
  Ints n;
  const Lanes k = Round(c * 1.4426950408889634, n);
  const Lanes hi = c - k * 0.6931471803691238;
  const Lanes lo = k * 1.9082149292705877e-10 - low;
  const Lanes r = hi - lo;
  const Lanes p = r * r *
                  Poly(r, 0.5000000000000001, 0.16666666666666669, 0.04166666666662064, 0.008333333333329793,
                       0.0013888888918939168, 0.00019841269864380513, 2.4801518641395993e-05,
                       2.75572664186123e-06, 2.7621338669142925e-07, 2.510134692835034e-08);
  const Lanes y = (1.0 + (hi + (p - lo))) * PowerOfTwo(n + 1022) * 2.0;
  return Select(large, kInfinity, Select(small, 0.0, y));
}

/// Exponential: 0.98 ULP for -707 <= x <= 709.78.  Below it is 0, above infinity, without a flag.
inline Lanes exp(Lanes x) { return ExpOfSum(x, 0.0); }

/// exp(x) - 1: 1.7 ULP for |x| <= 700, which the argument must not exceed.
inline Lanes expm1(Lanes x) {
  Ints n;
  const Lanes k = Round(x * 1.4426950408889634, n);
  const Lanes hi = x - k * 0.6931471803691238;
  const Lanes lo = k * 1.9082149292705877e-10;
  const Lanes r = hi - lo;
  const Lanes p =
      r * r *
      Poly(r, 0.5, 0.1666666666666667, 0.04166666666666667, 0.008333333333325544, 0.0013888888888883327,
           0.00019841269876864356, 2.4801587327007187e-05, 2.755725283351691e-06, 2.75572718102198e-07,
           2.5106274733573296e-08, 2.0915442297780116e-09);
  const Lanes two_k = PowerOfTwo(n + 1023);
  return (two_k - 1.0) + two_k * (hi + (p - lo));
}

struct SinhCosh {
  Lanes sinh, cosh;
};

/// Hyperbolic sine and cosine: 2.3 and 1.6 ULP for |x| <= 700, which the argument must not exceed.
inline SinhCosh sinhcosh(Lanes x) {
  const Lanes t = expm1(abs(x));
  const Lanes e = t + 1.0;
  const Lanes inverse = 1.0 / e;
  return {WithSign(0.5 * (t + t * inverse), x), 0.5 * (e + inverse)};
}
inline Lanes sinh(Lanes x) { return sinhcosh(x).sinh; }
inline Lanes cosh(Lanes x) { return sinhcosh(x).cosh; }

/// Hyperbolic tangent: 2.5 ULP for every x.
inline Lanes tanh(Lanes x) {
  const Lanes ax = abs(x);
  const Lanes t = expm1(2.0 * Select(ax < 22.0, ax, 22.0));
  return WithSign(t / (t + 2.0), x);
}

/// a to the power b, for normal positive a and |b| <= 100: 1 + 0.2 |b| ULP.  0 and infinity as exp gives
/// them.
///
/// pow(0, b) is 0 for b > 0; a negative a gives NaN, an infinite one infinity for b > 0.
inline Lanes pow(Lanes a, double b) {
  const Mask fit = (a >= 2.2250738585072014e-308) & (a != kInfinity);
  Lanes m;
  const Ints j = BiasedExponent(Select(fit, a, 1.0), m);
  const Lanes k = ToLanes(j) - 1023.0;
  const Lanes f = m - 1.0;
  const Lanes s = f / (2.0 + f);
  const Lanes z = s * s;
  const Lanes h = 0.5 * f * f;
  const Lanes r = z * Poly(z, 0.666666666666667, 0.3999999999989322, 0.28571428628810996, 0.22222210674238516,
                           0.18182922513515942, 0.15330617306743305, 0.1463003136412286);
  // ln a = top + bottom: k ln 2 + f with the error of that sum, and the rest, which is below f^2/2
  const Lanes kl = k * 0.6931471803691238;
  const Lanes top = kl + f;
  const Lanes lost = (top - kl) - f;  // exact where |kl| >= |f| or k = 0
  const Lanes bottom = -((h - (s * (h + r) + k * 1.9082149292705877e-10)) + lost);
  const Lanes l = top + bottom;
  const Lanes l_low = (top - l) + bottom;
  // b l in two parts: each factor in halves of 26 bits, so that their products are exact
  const Lanes l1 = FromBits(BitsOf(l) & ~0x7ffffffLL), l2 = l - l1;
  const double b1 = __builtin_bit_cast(double, __builtin_bit_cast(long long, b) & ~0x7ffffffLL), b2 = b - b1;
  const Lanes p = b * l;
  const Lanes p_low = (((b1 * l1 - p) + b1 * l2) + b2 * l1) + b2 * l2;
  const Lanes y = ExpOfSum(p, p_low + b * l_low);
  const Lanes small = b > 0 ? 0.0 : kInfinity;
  const Lanes large = b > 0 ? kInfinity : 0.0;
  return Select(fit, y, Select(a >= 0.0, Select(a == kInfinity, large, small), kNaN));
}

// ---- inverse circular functions --------------------------------------------------------------------------

/// The angle of (x, y), in [-pi, pi], with the sign of y: 1.6 ULP (worst near 0.47) for finite x, y whose
/// ratio neither overflows nor underflows.
///
/// atan2(+-0, x) is +-0 for x >= 0 and -0.0 (deliberate: x = -0.0 counts as 0), and +-pi for x < 0.
inline Lanes atan2(Lanes y, Lanes x) {
  const Lanes ax = abs(x), ay = abs(y);
  const Mask steep = ay > ax;
  const Lanes low = Select(steep, ax, ay), high = Select(steep, ay, ax);
  const Mask far = low > 0.5 * high;
  const Lanes num = Select(far, low - high, low);
  const Lanes den = Select(far, low + high, high);
  const Lanes q = num / Select(den == 0.0, 1.0, den);
  const Lanes z = q * q;
  const Lanes p =
      q * z *
      Poly(z, -0.33333333333333326, 0.19999999999991433, -0.14285714284077702, 0.11111110988233033,
           -0.09090904305375164, 0.07692197165867068, -0.06665037048227497, 0.05866372266802917,
           -0.051568882636820045, 0.04281616534792999, -0.02891895079990045, 0.01112665995931184);
  // the angle is hi + (q + (p + lo)), hi + lo a multiple of pi/4; each fold negates q and p
  const Lanes hi1 = Select(far, 0.7853981633974483, 0.0);
  const Lanes lo1 = Select(far, 3.061616997868383e-17, 0.0);
  const Lanes hi2 = Select(steep, 1.5707963267948966 - hi1, hi1);
  const Lanes lo2 = Select(steep, 6.123233995736766e-17 - lo1, lo1);
  const Mask back = x < 0.0;
  const Lanes hi3 = Select(back, 3.141592653589793 - hi2, hi2);
  const Lanes lo3 = Select(back, 1.2246467991473532e-16 - lo2, lo2);
  const Mask negate = steep != back;
  const Lanes q3 = NegatedIf(negate, q);
  const Lanes p3 = NegatedIf(negate, p);
  return FlipSign(hi3 + (q3 + (p3 + lo3)), y);
}

/// Arc tangent, in [-pi/2, pi/2]: 1.4 ULP for |x| <= 1e300.
inline Lanes atan(Lanes x) { return atan2(x, 1.0); }

/// asin of |x| <= 1/2 in x itself, of larger ones by the half angle; both share this.
struct AsinParts {
  Mask large;  // |x| > 1/2
  Lanes s;     // |x|, or sqrt((1 - |x|)/2)
  Lanes p;     // asin(s) - s
};
inline AsinParts AsinOf(Lanes x) {
  const Lanes ax = abs(x);
  const Mask large = ax > 0.5;
  const Lanes z = Select(large, 0.5 * (1.0 - ax), ax * ax);
  const Lanes s = Select(large, sqrt(z), ax);
  const Lanes p = s * z *
                  Poly(z, 0.16666666666666666, 0.07500000000000122, 0.04464285714254326, 0.030381944476347046,
                       0.02237215740373685, 0.01735281769074104, 0.013963758735074137, 0.01156672237119713,
                       0.009619629203687472, 0.009332327156165665, 0.002995311657156326, 0.019678367430162,
                       -0.01942149876336336, 0.029727286869498975);
  return {large, s, p};
}

/// Arc sine: 1.2 ULP for |x| <= 1, which the argument must not exceed.
inline Lanes asin(Lanes x) {
  const AsinParts a = AsinOf(x);
  const Lanes small = a.s + a.p;
  const Lanes twice = 2.0 * a.s;
  const Lanes hi = 1.5707963267948966 - twice;
  const Lanes lost = (1.5707963267948966 - hi) - twice;
  const Lanes large = hi + (lost - (2.0 * a.p - 6.123233995736766e-17));
  return WithSign(Select(a.large, large, small), x);
}

/// Arc cosine: 1.15 ULP for |x| <= 1, which the argument must not exceed.
inline Lanes acos(Lanes x) {
  const AsinParts a = AsinOf(x);
  const Mask negative = x < 0.0;
  const Lanes s = FlipSign(a.s, x), p = FlipSign(a.p, x);
  const Lanes small = 1.5707963267948966 - (s + (p - 6.123233995736766e-17));
  const Lanes twice = 2.0 * a.s + 2.0 * a.p;
  const Lanes large =
      Select(negative, 3.141592653589793 - (2.0 * a.s + (2.0 * a.p - 1.2246467991473532e-16)), twice);
  return Select(a.large, large, small);
}

}  // namespace ORV_ISA
}  // namespace orv
