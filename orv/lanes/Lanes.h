// Lanes: ORV_LANES doubles that are computed on together, in namespace orv::ORV_ISA.
//
// The build compiles the kernel unit once for each instruction set, with ORV_ISA its name and ORV_LANES 1, 4,
// 8 or 16.  Without ORV_ISA this header chooses `one`, one lane, which is a plain double: the reference that
// tests use, and all that a compiler without vector types (MSVC) has.
//
// Four lanes and more are two registers of the vector extension of GCC and clang, and whatever is computed is computed on
// the one and then on the other: a kernel is a long chain of steps, each of which waits for the one before it, and while
// those of one register wait those of the other run (up to 1.7 times as many points a second).  + - * / < == & | ^ >> are
// operators, so that a kernel reads like scalar code, a number stands for lanes that all have its value, and
// Select(mask, a, b) is the choice of each lane.
//
// Kernel units are compiled with -m flags, so they must not use an inline function of another header: the
// linker may keep that copy for everyone.  This header includes nothing but <cstddef> and, on x86, the
// intrinsics.
#pragma once

#include <cstddef>

#ifndef ORV_ISA
#define ORV_ISA one
#define ORV_LANES 1
#endif

#if ORV_LANES > 1 && (defined(__x86_64__) || defined(__i386__))
#define ORV_LANES_X86 1
#include <immintrin.h>
#else
#define ORV_LANES_X86 0
#endif

// A batch function: all it calls is inlined, whatever the compiler's own measure says.  Without this GCC
// leaves an engine out of line now and then, and points travel through memory (up to 1.7 times slower).
#if defined(__GNUC__)
#define ORV_KERNEL __attribute__((flatten))
#else
#define ORV_KERNEL
extern "C" double __cdecl sqrt(double);
extern "C" double __cdecl fmod(double, double);
#endif

namespace orv {
namespace ORV_ISA {

inline constexpr std::size_t kLanes = ORV_LANES;

#if ORV_LANES == 1

using Lanes = double;
using Ints = long long;
using Bits = unsigned long long;
using Mask = bool;

inline bool Any(Mask m) { return m; }
inline bool AnyNegative(Ints i) { return i < 0; }
inline Lanes Select(Mask m, Lanes x, Lanes otherwise) { return m ? x : otherwise; }
inline Ints BitsOf(Lanes x) { return __builtin_bit_cast(Ints, x); }
inline Lanes FromBits(Ints i) { return __builtin_bit_cast(Lanes, i); }
inline Lanes LoadLanes(const double* from) { return *from; }
inline void StoreLanes(double* to, Lanes x) { *to = x; }
inline void Load(const double* xy, Lanes& x, Lanes& y) {
  x = xy[0];
  y = xy[1];
}
inline void Store(double* xy, Lanes x, Lanes y) {
  xy[0] = x;
  xy[1] = y;
}

#else

inline constexpr std::size_t kRegisterLanes = ORV_LANES / 2;

/// Two registers.  Each operation is done on both.
template <class R>
struct Twin {
  using Number = decltype(R{}[0] + R{}[0]);
  using Compared = Twin<decltype(R{} < R{})>;

  R a, b;

  Twin() = default;
  Twin(R first, R second) : a(first), b(second) {}
  Twin(Number v) : a(v - R{}), b(v - R{}) {}  // v + 0 would lose the sign of -0
  template <class Other>
  explicit Twin(Twin<Other> other)
      : a(__builtin_bit_cast(R, other.a)), b(__builtin_bit_cast(R, other.b)) {}  // the same bits

  friend Twin operator-(Twin x) { return {-x.a, -x.b}; }
  friend Twin operator+(Twin x, Twin y) { return {x.a + y.a, x.b + y.b}; }
  friend Twin operator-(Twin x, Twin y) { return {x.a - y.a, x.b - y.b}; }
  friend Twin operator*(Twin x, Twin y) { return {x.a * y.a, x.b * y.b}; }
  friend Twin operator/(Twin x, Twin y) { return {x.a / y.a, x.b / y.b}; }
  friend Twin operator~(Twin x) { return {~x.a, ~x.b}; }
  friend Twin operator!(Twin x) { return {~x.a, ~x.b}; }  // of a mask
  friend Twin operator&(Twin x, Twin y) { return {x.a & y.a, x.b & y.b}; }
  friend Twin operator|(Twin x, Twin y) { return {x.a | y.a, x.b | y.b}; }
  friend Twin operator^(Twin x, Twin y) { return {x.a ^ y.a, x.b ^ y.b}; }
  friend Twin operator<<(Twin x, int bits) { return {x.a << bits, x.b << bits}; }
  friend Twin operator>>(Twin x, int bits) { return {x.a >> bits, x.b >> bits}; }
  friend Compared operator<(Twin x, Twin y) { return {x.a < y.a, x.b < y.b}; }
  friend Compared operator>(Twin x, Twin y) { return {x.a > y.a, x.b > y.b}; }
  friend Compared operator<=(Twin x, Twin y) { return {x.a <= y.a, x.b <= y.b}; }
  friend Compared operator>=(Twin x, Twin y) { return {x.a >= y.a, x.b >= y.b}; }
  friend Compared operator==(Twin x, Twin y) { return {x.a == y.a, x.b == y.b}; }
  friend Compared operator!=(Twin x, Twin y) { return {x.a != y.a, x.b != y.b}; }
  Twin& operator+=(Twin y) { return *this = *this + y; }
  Twin& operator|=(Twin y) { return *this = *this | y; }
};

using Register = double __attribute__((vector_size(8 * kRegisterLanes)));
using IntRegister = decltype(Register{} < Register{});  // signed, 64 bits a lane
using BitRegister = std::size_t __attribute__((vector_size(8 * kRegisterLanes)));
static_assert(sizeof(std::size_t) == 8, "lanes need a 64-bit machine");

using Lanes = Twin<Register>;
using Ints = Twin<IntRegister>;
using Bits = Twin<BitRegister>;
using Mask = Ints;  // all bits of a lane, or none

inline bool AnyNegative(Ints i) {
  const IntRegister met = i.a | i.b;
#if ORV_LANES_X86 && ORV_LANES == 4
  return _mm_movemask_pd(reinterpret_cast<__m128d>(met)) != 0;
#elif ORV_LANES_X86 && ORV_LANES == 8
  return _mm256_movemask_pd(reinterpret_cast<__m256d>(met)) != 0;
#elif ORV_LANES_X86 && ORV_LANES == 16
  return _mm512_movepi64_mask(reinterpret_cast<__m512i>(met)) != 0;
#else
  auto all = met[0];
  for (std::size_t k = 1; k < kRegisterLanes; ++k) all |= met[k];
  return all < 0;
#endif
}
inline bool Any(Mask m) { return AnyNegative(m); }

inline Lanes Select(Mask m, Lanes x, Lanes otherwise) {
  return {m.a ? x.a : otherwise.a, m.b ? x.b : otherwise.b};
}

inline Ints BitsOf(Lanes x) { return Ints(x); }
inline Lanes FromBits(Ints i) { return Lanes(i); }

#if ORV_LANES == 4
#define ORV_LANES_EVEN 0, 2
#define ORV_LANES_ODD 1, 3
#define ORV_LANES_LOW 0, 2
#define ORV_LANES_HIGH 1, 3
#elif ORV_LANES == 8
#define ORV_LANES_EVEN 0, 2, 4, 6
#define ORV_LANES_ODD 1, 3, 5, 7
#define ORV_LANES_LOW 0, 4, 1, 5
#define ORV_LANES_HIGH 2, 6, 3, 7
#elif ORV_LANES == 16
#define ORV_LANES_EVEN 0, 2, 4, 6, 8, 10, 12, 14
#define ORV_LANES_ODD 1, 3, 5, 7, 9, 11, 13, 15
#define ORV_LANES_LOW 0, 8, 1, 9, 2, 10, 3, 11
#define ORV_LANES_HIGH 4, 12, 5, 13, 6, 14, 7, 15
#else
#error "ORV_LANES is 1, 4, 8 or 16"
#endif

/// kLanes numbers as they lie.  (A copy of both registers at once would go through memory.)
inline Lanes LoadLanes(const double* from) {
  Lanes x;
  __builtin_memcpy(&x.a, from, sizeof x.a);
  __builtin_memcpy(&x.b, from + kRegisterLanes, sizeof x.b);
  return x;
}
inline void StoreLanes(double* to, Lanes x) {
  __builtin_memcpy(to, &x.a, sizeof x.a);
  __builtin_memcpy(to + kRegisterLanes, &x.b, sizeof x.b);
}

inline void Load(const double* xy, Register& x, Register& y) {
  Register a, b;
  __builtin_memcpy(&a, xy, sizeof a);
  __builtin_memcpy(&b, xy + kRegisterLanes, sizeof b);
  x = __builtin_shufflevector(a, b, ORV_LANES_EVEN);
  y = __builtin_shufflevector(a, b, ORV_LANES_ODD);
}
inline void Store(double* xy, Register x, Register y) {
  const Register a = __builtin_shufflevector(x, y, ORV_LANES_LOW);
  const Register b = __builtin_shufflevector(x, y, ORV_LANES_HIGH);
  __builtin_memcpy(xy, &a, sizeof a);
  __builtin_memcpy(xy + kRegisterLanes, &b, sizeof b);
}

/// kLanes points (x, y), interleaved, to their x and their y.
inline void Load(const double* xy, Lanes& x, Lanes& y) {
  Load(xy, x.a, y.a);
  Load(xy + 2 * kRegisterLanes, x.b, y.b);
}
inline void Store(double* xy, Lanes x, Lanes y) {
  Store(xy, x.a, y.a);
  Store(xy + 2 * kRegisterLanes, x.b, y.b);
}

#endif

#if ORV_LANES == 1
using Register = double;
#endif

/// The square root, correctly rounded.
inline Register SqrtOf(Register x) {
#if ORV_LANES_X86 && ORV_LANES == 4
  return reinterpret_cast<Register>(_mm_sqrt_pd(reinterpret_cast<__m128d>(x)));
#elif ORV_LANES_X86 && ORV_LANES == 8
  return reinterpret_cast<Register>(_mm256_sqrt_pd(reinterpret_cast<__m256d>(x)));
#elif ORV_LANES_X86 && ORV_LANES == 16
  return reinterpret_cast<Register>(
      _mm512_maskz_sqrt_pd(0xff, reinterpret_cast<__m512d>(x)));  // maskz: no warning in GCC 12
#elif ORV_LANES > 1
  for (std::size_t i = 0; i < kRegisterLanes; ++i) x[i] = __builtin_sqrt(x[i]);
  return x;
#elif defined(__GNUC__)
  return __builtin_sqrt(x);
#else
  return ::sqrt(x);
#endif
}

/// The exact remainder with the sign of x, one lane after the other: for rare paths.
inline double ScalarFmod(double x, double m) {
#if defined(__GNUC__)
  return __builtin_fmod(x, m);
#else
  return ::fmod(x, m);
#endif
}
inline Register FmodOf(Register x, double m) {
#if ORV_LANES == 1
  return ScalarFmod(x, m);
#else
  for (std::size_t i = 0; i < kRegisterLanes; ++i) x[i] = ScalarFmod(x[i], m);
  return x;
#endif
}

/// x, of which the compiler knows nothing from here on.
inline Register OpaqueOf(Register x) {
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
  __asm__("" : "+x"(x));
#elif defined(__GNUC__) && defined(__aarch64__)
  __asm__("" : "+w"(x));
#endif
  return x;
}

/// f of each register.
template <class F>
inline Lanes OfEach(Lanes x, F f) {
#if ORV_LANES == 1
  return f(x);
#else
  return {f(x.a), f(x.b)};
#endif
}

inline Lanes sqrt(Lanes x) { return OfEach(x, SqrtOf); }
inline Lanes fmod(Lanes x, double m) {
  return OfEach(x, [m](Register r) { return FmodOf(r, m); });
}
/// It stands between a safe operand and its use: a compiler that saw both this choice of the operand and the later choice
/// of the result would compute on the unsafe one.
inline Lanes Opaque(Lanes x) { return OfEach(x, OpaqueOf); }

// Constants, as bits where the language has no literal.
inline constexpr double kPi = 3.141592653589793;
inline constexpr double kHalfPi = 1.5707963267948966;
inline constexpr double kQuarterPi = 0.7853981633974483;
inline constexpr double kMarker = 1.7976931348623157e308;  // an unplottable coordinate
inline constexpr double kInfinity = __builtin_bit_cast(double, 0x7ff0000000000000ull);
inline constexpr double kNaN = __builtin_bit_cast(double, 0x7ff8000000000000ull);
inline constexpr long long kSignBit = static_cast<long long>(0x8000000000000000ull);

inline Lanes abs(Lanes x) { return FromBits(BitsOf(x) & ~kSignBit); }
/// x with its sign turned where `sign` is negative (-0.0 included).
inline Lanes FlipSign(Lanes x, Lanes sign) { return FromBits(BitsOf(x) ^ (BitsOf(sign) & kSignBit)); }
/// The magnitude of a non-negative x, with the sign of `sign`.
inline Lanes WithSign(Lanes x, Lanes sign) { return FromBits(BitsOf(x) | (BitsOf(sign) & kSignBit)); }

/// -x in the lanes of m, x in the others.
inline Lanes NegatedIf(Mask m, Lanes x) {
#if ORV_LANES == 1
  return m ? -x : x;
#else
  return FromBits(BitsOf(x) ^ (m & kSignBit));
#endif
}

/// Neither NaN nor infinite.  Raises no exception flag, as < and <= would for a NaN.
inline Mask IsFinite(Lanes x) { return (x == x) & (abs(x) != kInfinity); }

inline Lanes Square(Lanes x) { return x * x; }

/// x, but v in the lanes of m.  For a mask that is hardly ever set: a branch that is never taken costs less
/// than a blend, of three instructions in SSE2.  A safe operand chosen by this stays one (Opaque).
inline Lanes Except(Lanes x, Mask m, Lanes v) {
  if (!Any(m)) return x;
  return Opaque(Select(m, v, x));
}

/// x, or the bound that it exceeds, which is rare.  A NaN passes.
inline Lanes Clamp(Lanes x, double bound) {
  const Mask outside = abs(x) > bound;
  return Except(x, outside, FlipSign(bound, x));
}

/// from[i], each lane its own; every i must lie within the array.
template <class T>
inline Lanes Gather(const T* from, Ints i) {
#if ORV_LANES == 1
  return from[i];
#else
  Lanes x = 0.0;
  for (std::size_t k = 0; k < kRegisterLanes; ++k) x.a[k] = from[i.a[k]];
  for (std::size_t k = 0; k < kRegisterLanes; ++k) x.b[k] = from[i.b[k]];
  return x;
#endif
}

#if ORV_LANES > 1
/// Two doubles of each lane, to all first ones and all second ones.
inline void Deal(const double* const* from, Register& a, Register& b) {
  using Two = double __attribute__((vector_size(16)));
  Two pair[kRegisterLanes];
  for (std::size_t k = 0; k < kRegisterLanes; ++k) __builtin_memcpy(&pair[k], from[k], sizeof pair[k]);
#if ORV_LANES == 4
  a = __builtin_shufflevector(pair[0], pair[1], 0, 2);
  b = __builtin_shufflevector(pair[0], pair[1], 1, 3);
#elif ORV_LANES == 8
  const Register even = __builtin_shufflevector(pair[0], pair[2], 0, 1, 2, 3);
  const Register odd = __builtin_shufflevector(pair[1], pair[3], 0, 1, 2, 3);
  a = __builtin_shufflevector(even, odd, 0, 4, 2, 6);
  b = __builtin_shufflevector(even, odd, 1, 5, 3, 7);
#else
  using Four = double __attribute__((vector_size(32)));
  const Four f02 = __builtin_shufflevector(pair[0], pair[2], 0, 1, 2, 3);
  const Four f46 = __builtin_shufflevector(pair[4], pair[6], 0, 1, 2, 3);
  const Four f13 = __builtin_shufflevector(pair[1], pair[3], 0, 1, 2, 3);
  const Four f57 = __builtin_shufflevector(pair[5], pair[7], 0, 1, 2, 3);
  const Register even = __builtin_shufflevector(f02, f46, 0, 1, 2, 3, 4, 5, 6, 7);
  const Register odd = __builtin_shufflevector(f13, f57, 0, 1, 2, 3, 4, 5, 6, 7);
  a = __builtin_shufflevector(even, odd, 0, 8, 2, 10, 4, 12, 6, 14);
  b = __builtin_shufflevector(even, odd, 1, 9, 3, 11, 5, 13, 7, 15);
#endif
}
#endif

/// from[2 i] and from[2 i + 1], each lane its own i; all must lie within the array.  By loads of pairs: the gather
/// instructions of x86 are slower, where they are not switched off.
inline void GatherPairs(const double* from, Ints i, Lanes& a, Lanes& b) {
#if ORV_LANES == 1
  a = from[2 * i];
  b = from[2 * i + 1];
#else
  long long at[kLanes];
  __builtin_memcpy(at, &i.a, sizeof i.a);
  __builtin_memcpy(at + kRegisterLanes, &i.b, sizeof i.b);
  const double* pairs[kLanes];
  for (std::size_t k = 0; k < kLanes; ++k) pairs[k] = from + 2 * at[k];
  Deal(pairs, a.a, b.a);
  Deal(pairs + kRegisterLanes, a.b, b.b);
#endif
}

/// The points that a kernel works on at once: radians, degrees or metres.
struct Point {
  Lanes x, y;
};

}  // namespace ORV_ISA
}  // namespace orv
